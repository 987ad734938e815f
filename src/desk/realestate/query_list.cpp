#include "desk/realestate/query_list.h"

#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/realestate/query_search.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <optional>

namespace {

// The key a search finds on.
QByteArray keyOf(QuerySearch by) {
    switch (by) {
    case QuerySearch::Name:
        return "UName";
    case QuerySearch::Bill:
        return "BillNo";
    case QuerySearch::Control:
        return "Control";
    case QuerySearch::Map:
        return "Map";
    case QuerySearch::RecNum:
        return "RecNum";
    case QuerySearch::Date:
        return "RDate";
    case QuerySearch::None:
        break;
    }
    return {};
}

} // namespace

QString MasterUnionSql(const char* master, const char* address, const QStringList& changeFields,
                       const QStringList& masterFields) {
    const QString m = QString::fromLatin1(master);
    const QString a = QString::fromLatin1(address);
    auto columns = [&](const QString& changeTable) {
        QStringList out;
        for (const QString& f : changeFields)
            out << QStringLiteral("%1.%2 AS %2").arg(changeTable, f);
        for (const QString& f : masterFields)
            out << QStringLiteral("%1.%2 AS %2").arg(m, f);
        return out.join(QStringLiteral(", "));
    };
    return QStringLiteral("SELECT %1 FROM %2 UNION ALL SELECT %3 FROM %2 INNER JOIN %4 ON "
                          "%2.BillNo = %4.BillNo")
        .arg(columns(m), m, columns(a), a);
}

QString AmountSum(const QStringList& columns) {
    QStringList terms;
    for (const QString& c : columns)
        terms << QStringLiteral("ifnull(%1, 0)").arg(c);
    return terms.join(u'+');
}

QueryListScreen::QueryListScreen(QueryListKind kind, QWidget* parent)
    : QWidget(parent), m_kind(std::move(kind)) {
    setObjectName(QString::fromLatin1(m_kind.screenName));
    setWindowTitle(QString::fromLatin1(m_kind.caption));
    buildScreen();
    clearScreen();
    for (const QuerySearchOption& o : m_kind.options)
        frameOf(o.by)->setEnabled(false);
    cmdSearch->setEnabled(false);
}

void QueryListScreen::buildScreen() {
    auto frame = [this](const char* name, const char* title) {
        auto* f = new QGroupBox(QString::fromLatin1(title), this);
        f->setObjectName(QString::fromLatin1(name));
        f->hide();
        return f;
    };
    fraName = frame("fraName", "Name Criteria");
    fraBill = frame("fraBill", "Bill # Criteria");
    fraControl = frame("fraControl", "Control # Criteria");
    fraMap = frame("fraMap", "Map # Criteria");
    fraRecNum = frame("fraRecNum", "Receipt Number");
    fraDate = frame("fraDate", "Date Received");
    txtName = NamedField(fraName, QStringLiteral("txtName"), 50);
    txtBillNo = NamedField(fraBill, QStringLiteral("txtBillNo"), 5);
    txtControl = NamedField(fraControl, QStringLiteral("txtControl"), 6);
    txtMap3 = NamedField(fraMap, QStringLiteral("txtMap3"), 8);
    txtMap4 = NamedField(fraMap, QStringLiteral("txtMap4"), 6);
    txtMap5 = NamedField(fraMap, QStringLiteral("txtMap5"), 9);
    txtRecNum = NamedField(fraRecNum, QStringLiteral("txtRecNum"), 12);
    txtDate = NamedField(fraDate, QStringLiteral("txtDate"), 10);
    (new QHBoxLayout(fraName))->addWidget(txtName);
    (new QHBoxLayout(fraBill))->addWidget(txtBillNo);
    (new QHBoxLayout(fraControl))->addWidget(txtControl);
    (new QHBoxLayout(fraRecNum))->addWidget(txtRecNum);
    (new QHBoxLayout(fraDate))->addWidget(txtDate);
    {
        auto* h = new QHBoxLayout(fraMap);
        h->addWidget(txtMap3);
        h->addWidget(txtMap4);
        h->addWidget(txtMap5);
    }
    txtSearching = NamedLabel(this, QStringLiteral("txtSearching"), QStringLiteral("Please Wait"));
    txtSearching->setStyleSheet(QStringLiteral("color: #b00000; font-weight: bold;"));
    txtSearching->hide();

    auto* criteria = new QGridLayout;
    const bool twoColumns = m_kind.options.size() > 4;
    int row = 0;
    for (const QuerySearchOption& o : m_kind.options) {
        auto* button = new QRadioButton(QString::fromLatin1(o.caption), this);
        button->setObjectName(QString::fromLatin1(o.optionName));
        switch (o.by) {
        case QuerySearch::Name:
            optName = button;
            break;
        case QuerySearch::Bill:
            optBill = button;
            break;
        case QuerySearch::Control:
            optControl = button;
            break;
        case QuerySearch::Map:
            optMap = button;
            break;
        case QuerySearch::RecNum:
            optRecNum = button;
            break;
        case QuerySearch::Date:
            optDate = button;
            break;
        case QuerySearch::None:
            break;
        }
        QGroupBox* f = frameOf(o.by);
        f->show();
        const int r = twoColumns ? row % 3 : row;
        const int c = twoColumns ? (row / 3) * 2 : 0;
        criteria->addWidget(button, r, c);
        criteria->addWidget(f, r, c + 1);
        ++row;
        const QuerySearch by = o.by;
        connect(button, &QRadioButton::clicked, this, [this, by] { choose(by); });
    }
    criteria->addWidget(txtSearching, twoColumns ? 3 : row, 1);

    cmdSearch = NamedButton(this, QStringLiteral("cmdSearch"), QStringLiteral("&Search"));
    cmdForward =
        NamedButton(this, QStringLiteral("cmdForward"), QStringLiteral("Search &Forward"), false);
    cmdBackward =
        NamedButton(this, QStringLiteral("cmdBackward"), QStringLiteral("Search Bac&kward"), false);
    cmdClearScreen =
        NamedButton(this, QStringLiteral("cmdClearScreen"), QStringLiteral("C&lear Screen"), false);
    cmdPrintScreen =
        NamedButton(this, QStringLiteral("cmdPrintScreen"), QStringLiteral("&Print Screen"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);
    for (const QueryRowButton& b : m_kind.rowButtons)
        m_rowButtons.push_back(
            NamedButton(this, QString::fromLatin1(b.name), QString::fromLatin1(b.caption)));

    model = new QueryGridModel(m_kind.columns, m_kind.derived, this);
    if (!m_kind.lateSql.isEmpty())
        model->setLateFields(m_kind.lateKey, m_kind.lateSql);
    fraList = new QGroupBox(QString::fromLatin1(m_kind.gridCaption), this);
    fraList->setObjectName(QString::fromLatin1(m_kind.gridFrameName));
    grid = NamedGrid(fraList, QString::fromLatin1(m_kind.gridName), model);
    (new QVBoxLayout(fraList))->addWidget(grid);
    for (int c = 0; c < int(m_kind.widths.size()); ++c)
        grid->setColumnWidth(c, m_kind.widths[std::size_t(c)]);
    grid->setMinimumSize(900, 300);
    cmdExportCsv = AddCsvExport(grid, this, QString::fromLatin1(m_kind.caption));

    auto* buttons = new QGridLayout;
    std::vector<QPushButton*> order{cmdSearch, cmdForward, cmdBackward, cmdClearScreen};
    order.insert(order.end(), m_rowButtons.begin(), m_rowButtons.end());
    for (QPushButton* b : {cmdPrintScreen, cmdExportCsv, cmdExit})
        order.push_back(b);
    for (int i = 0; i < int(order.size()); ++i)
        buttons->addWidget(order[std::size_t(i)], i % 4, i / 4);
    auto* top = new QHBoxLayout;
    top->addLayout(criteria, 1);
    top->addLayout(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(fraList, 1);

    m_leave = new FieldLeave(this);
    m_leave->onLeave(txtBillNo,
                     [this] { txtBillNo->setText(NormalizeQueryBillNo(txtBillNo->text())); });
    if (m_kind.receipts) {
        // Four characters of the first map part and three of the second move on.
        connect(txtMap3, &QLineEdit::textEdited, this, [this](const QString& text) {
            if (text.size() == 4)
                txtMap4->setFocus(Qt::TabFocusReason);
        });
        connect(txtMap4, &QLineEdit::textEdited, this, [this](const QString& text) {
            if (text.size() == 3)
                txtMap5->setFocus(Qt::TabFocusReason);
        });
    }
    connect(cmdSearch, &QPushButton::clicked, this, [this] { search(); });
    connect(cmdForward, &QPushButton::clicked, this, [this] { move(QueryPageRows); });
    connect(cmdBackward, &QPushButton::clicked, this, [this] { move(-QueryPageRows); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

QRadioButton* QueryListScreen::option(QuerySearch by) const {
    switch (by) {
    case QuerySearch::Name:
        return optName;
    case QuerySearch::Bill:
        return optBill;
    case QuerySearch::Control:
        return optControl;
    case QuerySearch::Map:
        return optMap;
    case QuerySearch::RecNum:
        return optRecNum;
    case QuerySearch::Date:
        return optDate;
    case QuerySearch::None:
        break;
    }
    return nullptr;
}

QGroupBox* QueryListScreen::frameOf(QuerySearch by) const {
    switch (by) {
    case QuerySearch::Name:
        return fraName;
    case QuerySearch::Bill:
        return fraBill;
    case QuerySearch::Control:
        return fraControl;
    case QuerySearch::Map:
        return fraMap;
    case QuerySearch::RecNum:
        return fraRecNum;
    case QuerySearch::Date:
        return fraDate;
    case QuerySearch::None:
        break;
    }
    return nullptr;
}

QLineEdit* QueryListScreen::firstFieldOf(QuerySearch by) const {
    switch (by) {
    case QuerySearch::Name:
        return txtName;
    case QuerySearch::Bill:
        return txtBillNo;
    case QuerySearch::Control:
        return txtControl;
    case QuerySearch::Map:
        return txtMap3;
    case QuerySearch::RecNum:
        return txtRecNum;
    case QuerySearch::Date:
        return txtDate;
    case QuerySearch::None:
        break;
    }
    return nullptr;
}

QPushButton* QueryListScreen::rowButton(const char* name) const {
    for (QPushButton* b : m_rowButtons)
        if (b->objectName() == QLatin1String(name))
            return b;
    return nullptr;
}

const QuerySearchOption* QueryListScreen::chosen() const {
    for (const QuerySearchOption& o : m_kind.options)
        if (o.by == m_by)
            return &o;
    return nullptr;
}

void QueryListScreen::choose(QuerySearch by) {
    m_by = by;
    for (QLineEdit* field :
         {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5, txtRecNum, txtDate})
        field->clear();
    for (const QuerySearchOption& o : m_kind.options)
        frameOf(o.by)->setEnabled(o.by == by);
    cmdSearch->setEnabled(true);
    firstFieldOf(by)->setFocus(Qt::OtherFocusReason);
}

bool QueryListScreen::loadList() {
    const QuerySearchOption* o = chosen();
    if (!o)
        return false;
    QString error;
    if (!model->load(session().DbConnection, m_kind.sql, {}, o->orderBy, m_kind.distinct, &error)) {
        MsgBox(QStringLiteral("The file could not be read: ") + error,
               QString::fromLatin1(m_kind.boxTitle), MsgButtons::Ok, MsgIcon::Critical);
        return false;
    }
    return true;
}

void QueryListScreen::search() {
    if (!chosen())
        return;
    // 1. A date search needs a date; the bill number as it is stored.
    std::optional<QDate> date;
    if (m_by == QuerySearch::Date) {
        date = ParseTypedDate(txtDate->text());
        if (!date) {
            MsgBox(QStringLiteral("Invalid Date"), QStringLiteral("Search By Date"), MsgButtons::Ok,
                   MsgIcon::Critical);
            txtDate->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
    if (m_by == QuerySearch::Bill)
        txtBillNo->setText(NormalizeQueryBillNo(txtBillNo->text()));
    // 2. The list in the order of the search.
    txtSearching->show();
    txtSearching->repaint();
    const bool ok = loadList();
    txtSearching->hide();
    if (!ok)
        return;
    if (m_kind.receipts && model->rowCount() == 0) {
        MsgBox(QStringLiteral("There are no receipts in the receipts file."),
               QStringLiteral("Query Receipts"), MsgButtons::Ok, MsgIcon::Information);
        model->clear();
        return;
    }
    QString criterion;
    switch (m_by) {
    case QuerySearch::Name:
        criterion = txtName->text().toUpper();
        break;
    case QuerySearch::Bill:
        criterion = txtBillNo->text();
        break;
    case QuerySearch::Control:
        criterion = txtControl->text();
        break;
    case QuerySearch::Map:
        criterion = MapCriterion(txtMap3->text(), txtMap4->text(), txtMap5->text());
        break;
    case QuerySearch::RecNum:
        criterion = txtRecNum->text();
        break;
    case QuerySearch::Date:
        criterion = date->toString(Qt::ISODate);
        break;
    case QuerySearch::None:
        break;
    }
    // 3. The nearest row at or after the criterion, or the last.
    const int row = model->findAtOrAfter(model->field(keyOf(m_by)), criterion);
    ShowGridRow(grid, row);
    // 4.
    for (const QuerySearchOption& o : m_kind.options) {
        option(o.by)->setEnabled(false);
        frameOf(o.by)->setEnabled(false);
    }
    setRowButtons(true);
    if (m_kind.receipts && m_by == QuerySearch::Map && row >= 0) {
        const QString found = MapCriterion(model->text(row, model->field("Map3")).trimmed(),
                                           model->text(row, model->field("Map4")).trimmed(),
                                           model->text(row, model->field("Map5")).trimmed());
        if (found != criterion)
            MsgBox(QStringLiteral("This map number is NOT an exact match of what you have "
                                  "entered in the map number criteria field."),
                   QStringLiteral("Query By Map Number"), MsgButtons::Ok, MsgIcon::Information);
    }
}

void QueryListScreen::requery() {
    const int row = currentRow();
    if (!model->loaded() || row < 0)
        return;
    // The row is found again by every key the list searches on, and its number.
    QList<QByteArray> keys{m_kind.numberField};
    for (const QuerySearchOption& o : m_kind.options)
        if (!keys.contains(keyOf(o.by)))
            keys << keyOf(o.by);
    std::vector<int> fields;
    QStringList before;
    for (const QByteArray& k : keys) {
        fields.push_back(model->field(k));
        before << model->text(row, fields.back());
    }
    if (!loadList())
        return;
    int found = -1;
    for (int r = 0; r < model->rowCount() && found < 0; ++r) {
        bool same = true;
        for (std::size_t i = 0; i < fields.size() && same; ++i)
            same = model->text(r, fields[i]) == before.at(qsizetype(i));
        if (same)
            found = r;
    }
    if (found < 0)
        found = model->findAtOrAfter(fields.front(), before.front());
    ShowGridRow(grid, found);
}

void QueryListScreen::move(int rows) {
    if (!model->loaded() || model->rowCount() == 0)
        return;
    ShowGridRow(grid, std::clamp(currentRow() + rows, 0, model->rowCount() - 1));
}

void QueryListScreen::clearScreen() {
    for (QLineEdit* field :
         {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5, txtRecNum, txtDate})
        field->clear();
    model->clear();
    txtSearching->hide();
    for (const QuerySearchOption& o : m_kind.options) {
        option(o.by)->setEnabled(true);
        frameOf(o.by)->setEnabled(o.by == m_by);
    }
    setRowButtons(false);
    if (QLineEdit* field = firstFieldOf(m_by))
        field->setFocus(Qt::OtherFocusReason);
}

void QueryListScreen::setRowButtons(bool enabled) {
    for (QPushButton* b : m_rowButtons)
        b->setEnabled(enabled);
}

int QueryListScreen::currentRow() const {
    const QModelIndex index = grid->currentIndex();
    return index.isValid() ? index.row() : -1;
}

QString QueryListScreen::currentNumber() const {
    return currentText(m_kind.numberField);
}

QString QueryListScreen::currentText(const QByteArray& field) const {
    return model->text(currentRow(), model->field(field));
}
