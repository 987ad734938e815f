#include "grid_actions.h"

#include "scenario_parser.h"
#include "widget_actions.h"

#include <QAbstractItemModel>
#include <QAbstractItemView>
#include <QApplication>
#include <QHeaderView>
#include <QTableView>
#include <QTest>

namespace {

QAbstractItemView* itemView(QWidget* widget, QString* why) {
    auto* view = qobject_cast<QAbstractItemView*>(widget);
    if (!view || !view->model())
        *why = QStringLiteral("%1, which is no grid or list").arg(Describe(widget));
    return view && view->model() ? view : nullptr;
}

bool usableView(QWidget* widget, const QString& doing, QString* why) {
    if (!widget->isVisible()) {
        *why = QStringLiteral("%1 hidden, so it cannot be %2").arg(Describe(widget), doing);
        return false;
    }
    if (!widget->isEnabled()) {
        *why = QStringLiteral("%1 disabled, so it cannot be %2").arg(Describe(widget), doing);
        return false;
    }
    return true;
}

QString rowsText(int n) {
    return n == 1 ? QStringLiteral("1 row") : QStringLiteral("%1 rows").arg(n);
}

// The first column shown: a click lands on a cell the user can see.
int firstVisibleColumn(QAbstractItemView* view) {
    auto* table = qobject_cast<QTableView*>(view);
    const int columns = view->model()->columnCount(view->rootIndex());
    for (int c = 0; c < columns; ++c)
        if (!table || !table->isColumnHidden(c))
            return c;
    return 0;
}

// A double click as the window system delivers it: press, release, double click, release.
void doubleClickAt(QWidget* target, QPoint at) {
    QTest::mousePress(target, Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseRelease(target, Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseDClick(target, Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseRelease(target, Qt::LeftButton, Qt::NoModifier, at);
}

} // namespace

bool SelectRow(QWidget* widget, int n, QString* why) {
    QAbstractItemView* view = itemView(widget, why);
    if (!view || !usableView(widget, QStringLiteral("clicked"), why))
        return false;
    const int rows = view->model()->rowCount(view->rootIndex());
    if (n < 1 || n > rows) {
        *why = QStringLiteral("%1 holding %2").arg(Describe(widget), rowsText(rows));
        return false;
    }
    const QModelIndex index =
        view->model()->index(n - 1, firstVisibleColumn(view), view->rootIndex());
    ActivateWindowOf(view);
    view->scrollTo(index);
    const QRect cell = view->visualRect(index);
    if (!cell.isValid() || !view->viewport()->rect().intersects(cell)) {
        *why = QStringLiteral("row %1 of %2 out of view after scrolling to it")
                   .arg(n)
                   .arg(Describe(widget));
        return false;
    }
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                      cell.intersected(view->viewport()->rect()).center());
    if (view->currentIndex().row() != n - 1) {
        *why = QStringLiteral("row %1 current after the click")
                   .arg(view->currentIndex().isValid() ? view->currentIndex().row() + 1 : 0);
        return false;
    }
    return true;
}

bool DoubleClickWidget(QWidget* widget, QString* why) {
    auto* view = qobject_cast<QAbstractItemView*>(widget);
    if (!view || !view->model()) {
        if (!usableView(widget, QStringLiteral("double-clicked"), why))
            return false;
        ActivateWindowOf(widget);
        doubleClickAt(widget, widget->rect().center());
        return true;
    }
    if (!usableView(widget, QStringLiteral("double-clicked"), why))
        return false;
    const QModelIndex current = view->currentIndex();
    if (!current.isValid()) {
        *why = QStringLiteral("%1 with no current row").arg(Describe(widget));
        return false;
    }
    ActivateWindowOf(view);
    view->scrollTo(current);
    const QRect cell = view->visualRect(current).intersected(view->viewport()->rect());
    if (cell.isEmpty()) {
        *why = QStringLiteral("the current row of %1 out of view").arg(Describe(widget));
        return false;
    }
    doubleClickAt(view->viewport(), cell.center());
    return true;
}

std::optional<int> RowCount(QWidget* widget, QString* why) {
    QAbstractItemView* view = itemView(widget, why);
    if (!view)
        return std::nullopt;
    return view->model()->rowCount(view->rootIndex());
}

std::optional<QString> CurrentCellText(QWidget* widget, const QString& column, QString* why) {
    QAbstractItemView* view = itemView(widget, why);
    if (!view)
        return std::nullopt;
    QAbstractItemModel* model = view->model();
    const int columns = model->columnCount(view->rootIndex());
    QStringList captions;
    int found = -1;
    for (int c = 0; c < columns; ++c) {
        const QString caption =
            StripAccessKeys(model->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString());
        captions << QuoteForReport(caption);
        if (found < 0 && caption == column)
            found = c;
    }
    if (found < 0) {
        *why = QStringLiteral("no column %1 in %2 (columns %3)")
                   .arg(QuoteForReport(column), Describe(widget),
                        captions.isEmpty() ? QStringLiteral("none")
                                           : captions.join(QStringLiteral(", ")));
        return std::nullopt;
    }
    const QModelIndex current = view->currentIndex();
    if (!current.isValid()) {
        *why = QStringLiteral("%1 with no current row").arg(Describe(widget));
        return std::nullopt;
    }
    return model->index(current.row(), found, current.parent()).data(Qt::DisplayRole).toString();
}
