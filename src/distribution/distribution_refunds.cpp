#include "distribution/distribution_refunds.h"

#include "core/common_values.h"
#include "core/money.h"
#include "core/tax_database.h"
#include "distribution/distribution_numbers.h"

#include <QSqlQuery>
#include <optional>

namespace {

// X positions of the refund blocks, in twips: the name and address at the left, the bill,
// receipt, refund and reason in the middle, the control number at the right.
constexpr double LeftX = 100;
constexpr double MiddleX = 5000;
constexpr double RightX = 8200;

// A number as its pattern shows it when the text is a number; the text as it stands otherwise
// (an added bill's "A0001").
QString numberText(const QString& text, QStringView pattern) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    return ok ? FormatNumber(value, pattern) : text.trimmed();
}

// The highest key of the refund table; with `except`, the highest other than that one.
QString maxKey(QSqlDatabase db, const DistributionTables& tables,
               const std::optional<QString>& except = std::nullopt) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT max(DisbNum) AS MaxDisbNum FROM %1%2")
                  .arg(tables.refunds, except ? QStringLiteral(" WHERE DisbNum <> ?") : QString()));
    if (except)
        q.addBindValue(*except);
    return q.exec() && q.next() ? TextField(q.value(0)) : QString();
}

} // namespace

QString UndistributedRefundKey(const QString& taxYear) {
    return taxYear + QStringLiteral("00");
}

QString NextRefundDistributionKey(QSqlDatabase db, const DistributionTables& tables,
                                  const QString& taxYear) {
    // The maximum over every row, "00" ones included.
    bool numeric = false;
    const qlonglong highest = maxKey(db, tables).trimmed().toLongLong(&numeric);
    if (!numeric)
        return taxYear + QStringLiteral("01");
    return QString::number(highest + 1);
}

int LastRefundDistribution(QSqlDatabase db, const DistributionTables& tables,
                           const QString& taxYear) {
    const QString key = maxKey(db, tables, UndistributedRefundKey(taxYear));
    if (key.size() != 6)
        return 0;
    return ParseWholeNumber(key.mid(4, 2)).value_or(0);
}

bool ReadUndistributedRefunds(QSqlDatabase db, const DistributionTables& tables,
                              const QString& taxYear, std::vector<QSqlRecord>* refunds,
                              QString* error) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE DisbNum = ? ORDER BY RecNum, RecNumID")
                  .arg(tables.refunds));
    q.addBindValue(UndistributedRefundKey(taxYear));
    if (!q.exec())
        return QueryFailed(db, q, error);
    refunds->clear();
    while (q.next())
        refunds->push_back(q.record());
    return true;
}

bool DistributeRefund(QSqlDatabase db, const DistributionTables& tables,
                      const RefundToDistribute& refund, QString* error) {
    if (refund.key.size() != 6) {
        if (error)
            *error = QStringLiteral("The refund distribution key \"%1\" is not six characters.")
                         .arg(refund.key);
        return false;
    }
    return InOneTransaction(db, error, [&] {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("UPDATE %1 SET DisbNum = ? WHERE RecNum = ? AND RecNumID = ?")
                      .arg(tables.refunds));
        q.addBindValue(refund.key);
        q.addBindValue(refund.recnum);
        q.addBindValue(refund.recnumId);
        if (!q.exec())
            return QueryFailed(db, q, error);
        if (q.numRowsAffected() == 0) {
            if (error)
                *error = QStringLiteral("There is no refund %1 of receipt %2.")
                             .arg(refund.recnumId)
                             .arg(refund.recnum);
            return false;
        }
        return true;
    });
}

int CountDistributedRefunds(QSqlDatabase db, const DistributionTables& tables, const QString& key) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT count(*) FROM %1 WHERE DisbNum = ?").arg(tables.refunds));
    q.addBindValue(key);
    return q.exec() && q.next() ? q.value(0).toInt() : 0;
}

RefundDistributionReport::RefundDistributionReport(QSqlDatabase db,
                                                   const DistributionTables& tables,
                                                   RefundReportOptions options)
    : m_db(db), m_tables(tables), m_options(std::move(options)) {
    ReportDefinition& d = m_definition;
    d.caption = m_options.caption;
    d.completeTitle = QString::fromLatin1(PrintRefundsTitle);
    d.completeText = QStringLiteral("Printing Complete");
    d.margin = 1000;
    if (m_tables.hasMap) {
        // The real estate list prints upright on paper and lies across in the preview.
        d.print = {PaperSize::Letter, PageOrientation::Portrait};
        d.preview = {PaperSize::Letter, PageOrientation::Landscape};
        d.interim = true;
        d.titles = {QString(),
                    QStringLiteral("Distribution # ") + FormatNumber(m_options.number, u"##0")};
    } else {
        d.print = d.preview = {PaperSize::Letter, PageOrientation::Landscape};
        d.captions = [this](ReportPage& page) { perCapitaTitle(page); };
    }
    d.body = [this](ReportPage& page) { return draw(page); };
}

void RefundDistributionReport::perCapitaTitle(ReportPage& page) {
    // One fixed title line with its own page number, the number under it, a rule of hyphens.
    ReportSurface& s = page.surface();
    s.FontName = QStringLiteral("Courier New");
    s.FontSize = 12;
    s.FontBold = true;
    s.CurrentX = 0;
    s.Print(QStringLiteral("            Tax Collector Per Capita Distributed Refunds              "
                           "  Page: ") +
            QString::number(page.pageNumber()));
    s.Print(QStringLiteral("       Distribution # ") + TwoDigits(m_options.number));
    s.FontSize = 9;
    QString hyphens;
    while (s.TextWidth(hyphens + QLatin1Char('-')) <= s.ScaleWidth())
        hyphens += QLatin1Char('-');
    s.Print(hyphens);
    s.FontName = QStringLiteral("ARIAL");
}

bool RefundDistributionReport::draw(ReportPage& page) {
    if (m_tables.hasMap)
        m_definition.titles[0] = QStringLiteral("Tax Collector Distributed Refunds - County / ") +
                                 page.lookups().bodyWord.trimmed();
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE DisbNum = ? ORDER BY RecNum, RecNumID")
                  .arg(m_tables.refunds));
    q.addBindValue(m_options.taxYear + TwoDigits(m_options.number));
    if (!q.exec())
        return false;
    qint64 count = 0;
    Money total;
    while (q.next()) {
        const QSqlRecord r = q.record();
        auto field = [&r](const char* column) {
            return TextField(r.value(QString::fromLatin1(column)));
        };
        if (m_options.progress)
            m_options.progress(r);
        const Money refund = MoneyField(r.value(QStringLiteral("Refund")));
        QString bill = numberText(field("BillNo"), u"####0");
        const int adjNo = r.value(QStringLiteral("AdjNo")).toInt();
        if (adjNo > 0)
            bill += QLatin1Char('-') + FormatNumber(adjNo, u"#0");

        page.startRow();
        page.text(LeftX, field("Name").trimmed());
        page.text(MiddleX, QStringLiteral("Bill #: ") + bill);
        page.text(RightX, QStringLiteral("Control #: ") + field("Control"));
        page.nextLine();
        page.text(LeftX, field("Addr1"));
        page.text(MiddleX, QStringLiteral("Receipt #: ") + field("RecNum"));
        page.nextLine();
        page.text(LeftX, field("Addr2"));
        page.text(MiddleX, QStringLiteral("Refund: ") + refund.format(u"$###,###,###.00"));
        page.nextLine();
        page.text(LeftX, field("City") + QStringLiteral(", ") + field("State") +
                             QStringLiteral(".  ") + field("ZipCode") + QLatin1Char(' ') +
                             field("ZipCode2"));
        page.text(MiddleX, QStringLiteral("Reason: ") + field("Desc1"));
        page.nextLine();
        page.text(MiddleX, QStringLiteral("Refund Date: ") +
                               FormatDate(DateField(r.value(QStringLiteral("RDate")))));
        page.nextLine(2);
        ++count;
        total += refund;
    }
    page.ensureHeader();
    page.nextLine();
    page.text(LeftX, QStringLiteral("Total Refunds Printed: ") + QString::number(count));
    page.nextLine();
    page.text(LeftX, QStringLiteral("Total Refund Amount: ") + total.format(u"$###,###,###.00"));
    page.nextLine();
    return true;
}
