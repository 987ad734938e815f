#include "distribution/screen_parts.h"

#include "core/named_widgets.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "distribution/distribution_file.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlRecord>

QString SessionTaxYear(QSqlDatabase db) {
    return session().TaxYear.isEmpty() ? ReadCountyTaxYear(db).left(4) : session().TaxYear;
}

QHBoxLayout* MapFields(QWidget* parent, bool shown, QLineEdit** map3, QLineEdit** map4,
                       QLineEdit** map5) {
    *map3 = ShownField(parent, QStringLiteral("txtMap3"), 8);
    *map4 = ShownField(parent, QStringLiteral("txtMap4"), 6);
    *map5 = ShownField(parent, QStringLiteral("txtMap5"), 9);
    auto* layout = new QHBoxLayout;
    for (QLineEdit* part : {*map3, *map4, *map5}) {
        layout->addWidget(part);
        if (!shown)
            part->hide();
    }
    return layout;
}

QHBoxLayout* ReportButtons(QWidget* parent, QPushButton** print, QPushButton** preview,
                           QPushButton** exit) {
    *print = NamedButton(parent, QStringLiteral("cmdPrint"), QStringLiteral("&Print"));
    *preview =
        NamedButton(parent, QStringLiteral("cmdPrintPreview"), QStringLiteral("Print Pre&view"));
    *exit = NamedButton(parent, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);
    auto* layout = new QHBoxLayout;
    layout->addWidget(*print);
    layout->addWidget(*preview);
    layout->addStretch();
    layout->addWidget(*exit);
    return layout;
}

void ShowColumns(const QSqlRecord& row,
                 std::initializer_list<std::pair<QLineEdit*, const char*>> fields) {
    for (const auto& [field, column] : fields)
        field->setText(TextField(row.value(QString::fromLatin1(column))));
}
