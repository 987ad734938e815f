#include "desk/reports/report_common.h"

#include "core/common_values.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/tax_database.h"
#include "reports/report_frame.h"

#include <QBoxLayout>
#include <QPushButton>
#include <QSqlQuery>

QStringList ReportTables::faceColumns() const {
    QStringList out;
    for (const DistributionBody& b : dist->bodies)
        out << b.lines;
    return out;
}

const ReportTables& RealEstateReportTables() {
    static const ReportTables tables{&RealEstateTables(),         true,
                                     QStringLiteral("TCMaster"),  QStringLiteral("TCAdjust"),
                                     QStringLiteral("TCAddress"), QStringLiteral("TCAdds")};
    return tables;
}

const ReportTables& PerCapitaReportTables() {
    static const ReportTables tables{&PerCapitaTables(),          false,
                                     QStringLiteral("PCMaster"),  QStringLiteral("PCAdjust"),
                                     QStringLiteral("PCAddress"), QStringLiteral("PCAdds")};
    return tables;
}

TaxNames TaxNames::read(QSqlDatabase db) {
    TaxNames names;
    const ReportLookups lookups = ReportLookups::read(db);
    names.bodyWord = lookups.bodyWord;
    names.municipality = lookups.twpBoro;
    names.county = lookups.county;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT SchoolName FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(lookups.district);
    q.addBindValue(lookups.ward);
    if (q.exec() && q.next())
        names.schoolName = TextField(q.value(0)).trimmed();

    auto taxName = [&db](const QString& district, const QString& ward) {
        QSqlQuery m(db);
        m.prepare(QStringLiteral("SELECT S1TaxName FROM Millfile WHERE District = ? AND Ward = ? "
                                 "ORDER BY TaxYear DESC"));
        m.addBindValue(district);
        m.addBindValue(ward);
        return m.exec() && m.next() ? TextField(m.value(0)).trimmed() : QString();
    };
    names.countyTaxName = taxName(QStringLiteral("00"), QStringLiteral("0"));
    if (names.countyTaxName.isEmpty())
        names.countyTaxName = QStringLiteral("Act 1");
    names.schoolSpecial = taxName(lookups.district, lookups.ward);
    if (names.schoolSpecial.isEmpty())
        names.schoolSpecial = QStringLiteral("Sch. Spec.");

    auto specials = [&db](const QString& district, const QString& ward) {
        QStringList out;
        QSqlQuery s(db);
        s.prepare(QStringLiteral(
            "SELECT Desc1 FROM Spectax WHERE District = ? AND Ward = ? ORDER BY TaxKey"));
        s.addBindValue(district);
        s.addBindValue(ward);
        if (s.exec())
            while (s.next())
                out << TextField(s.value(0)).trimmed().left(10);
        return out;
    };
    const QStringList county = specials(QStringLiteral("00"), QStringLiteral("0"));
    names.countySpecial =
        county.isEmpty() || county.first().isEmpty() ? QStringLiteral("Cnty Spc") : county.first();
    const QStringList own = specials(lookups.district, lookups.ward);
    for (int i = 0; i < 3; ++i) {
        const QString name = i < own.size() ? own.at(i) : QString();
        names.municipal << (name.isEmpty() ? QStringLiteral("Spec. #%1").arg(i + 1) : name);
    }
    return names;
}

QString IsoDate(const QDate& date) {
    return date.toString(QStringLiteral("yyyy-MM-dd"));
}

void PadTo(QString& line, int column, const QString& text) {
    const int width = column - int(line.size());
    if (width >= int(text.size()))
        line += text.rightJustified(width);
    else
        line += QLatin1Char(' ') + text;
}

Money SumColumns(const QSqlRecord& row, const QStringList& columns) {
    Money sum;
    for (const QString& c : columns)
        sum += MoneyField(row.value(c));
    return sum;
}

ReportButtons MakeReportButtons(QWidget* form, QBoxLayout* layout) {
    ReportButtons b;
    b.cmdPrint = NamedButton(form, QStringLiteral("cmdPrint"), QStringLiteral("&Print"));
    b.cmdPrintPreview =
        NamedButton(form, QStringLiteral("cmdPrintPreview"), QStringLiteral("Print Pre&view"));
    b.cmdExit = NamedButton(form, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);
    layout->addWidget(b.cmdPrint);
    layout->addWidget(b.cmdPrintPreview);
    layout->addStretch();
    layout->addWidget(b.cmdExit);
    QObject::connect(b.cmdExit, &QPushButton::clicked, form, [form] { CloseScreen(form); });
    return b;
}

std::optional<QDate> ReportDate(const QString& typed) {
    // Any date the office types is taken, and shown again with its four-digit year.
    return ParseTypedDate(typed.trimmed());
}
