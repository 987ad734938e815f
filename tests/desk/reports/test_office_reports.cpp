// The office's reports on a demo year with voids and distributions added: every figure of the
// balance summary against sums taken straight from the tables, for both duplicates; the Act 169
// report's January; nothing drawn below the page. (The deposit list's totals, a void on either
// side of the range: reports_receipts.scn.)

#include "core/clock.h"
#include "core/common_values.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "desk/reports/act169_report.h"
#include "desk/reports/act1_reports.h"
#include "desk/reports/change_reports.h"
#include "desk/reports/receipt_report.h"
#include "desk/reports/summary_report.h"
#include "distribution/distribution_writes.h"
#include "support/test_support.h"

#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

namespace {

const char* const ReNegated =
    "County Library C1Face Twp S1Face S2Face S3Face School Sch1Face DCounty DLibrary DC1Face DTwp "
    "DS1Face DS2Face DS3Face DSchool DSch1Face PCounty PLibrary PC1Face PTwp PS1Face PS2Face "
    "PS3Face PSchool PSch1Face Payment1 Payment2 Payment3 PenPayment1 PenPayment2 PenPayment3 "
    "Overage Refund";
const char* const PcNegated =
    "CPerCapita COccupation TPerCapita TOccupation SPerCapita SOccupation DCPerCapita "
    "DCOccupation DTPerCapita DTOccupation DSPerCapita DSOccupation PCPerCapita PCOccupation "
    "PTPerCapita PTOccupation PSPerCapita PSOccupation Overage Refund";

Money sumOf(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.exec(sql) || !q.next()) {
        qWarning("failed: %s", qPrintable(sql));
        return Money::fromDollars(-999999);
    }
    return MoneyField(q.value(0));
}

// Sum of some columns over a table's rows under a condition.
Money columnsSum(QSqlDatabase db, const QStringList& columns, const QString& table,
                 const QString& where) {
    Money m;
    for (const QString& c : columns)
        m += sumOf(db, QStringLiteral("SELECT sum(%1) FROM %2 WHERE %3").arg(c, table, where));
    return m;
}

} // namespace

class TestOfficeReports : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QSqlDatabase m_db;

    void distribute(const DistributionTables& tables, int number, const QDate& cutOff) {
        DistributionRun run;
        run.taxYear = QStringLiteral("2013");
        run.district = QStringLiteral("00");
        run.ward = QStringLiteral("0");
        for (TaxingBody b : {TaxingBody::County, TaxingBody::Twp, TaxingBody::School})
            run.bodies.push_back({b, number, cutOff});
        std::vector<BodyOutcome> outcomes;
        QString error;
        QVERIFY2(DistributeReceipts(m_db, tables, run, &outcomes, &error), qPrintable(error));
    }

    void voidSome(const QString& receipts, const QString& voids, const char* negated) {
        QSqlQuery q(m_db);
        QVERIFY(q.exec(QStringLiteral("INSERT INTO %1 SELECT *, '      ', '      ', '      ', "
                                      "'TEST', date(RDate, '+3 days') FROM %2 WHERE rowid % 7 = 0")
                           .arg(voids, receipts)));
        QStringList sets;
        for (const QString& c : QString::fromLatin1(negated).split(QLatin1Char(' ')))
            sets << c + QStringLiteral(" = -") + c;
        QVERIFY(q.exec(QStringLiteral("UPDATE %1 SET VDate = SysDate, %2")
                           .arg(voids, sets.join(QStringLiteral(", ")))));
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        const QString path = m_dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
        DemoOptions options;
        options.parcels = 300;
        options.persons = 200;
        QString error;
        QVERIFY2(CreateDemoDatabase(path, options, &error), qPrintable(error));
        m_db = TaxDatabase::open(path, QStringLiteral("reports"), &error);
        QVERIFY2(m_db.isOpen(), qPrintable(error));
        voidSome(QStringLiteral("TCReceipt"), QStringLiteral("TCVoidReceipt"), ReNegated);
        voidSome(QStringLiteral("PCReceipt"), QStringLiteral("PCVoidReceipt"), PcNegated);
        // Two months distributed, the rest of the year not yet.
        distribute(RealEstateTables(), 1, QDate(2013, 4, 30));
        distribute(RealEstateTables(), 2, QDate(2013, 5, 31));
        distribute(PerCapitaTables(), 1, QDate(2013, 5, 15));
        Clock::setToday(QDate(2013, 10, 1));
    }

    void cleanupTestCase() {
        m_db = QSqlDatabase();
        TaxDatabase::close(QStringLiteral("reports"));
        Clock::setToday(std::nullopt);
    }

    void balanceSummaryAgreesWithTables_data() {
        QTest::addColumn<bool>("realEstate");
        AddRow("real estate", true);
        AddRow("per capita", false);
    }
    void balanceSummaryAgreesWithTables() {
        QFETCH(bool, realEstate);
        const ReportTables& t = realEstate ? RealEstateReportTables() : PerCapitaReportTables();
        const std::vector<SummaryPage> pages = GatherBalanceSummary(m_db, t);
        QCOMPARE(int(pages.size()), realEstate ? 9 : 3);
        // Page by page: its columns and its body's pay flag.
        std::vector<std::pair<QStringList, const DistributionBody*>> columns;
        for (const DistributionBody& b : t.dist->bodies) {
            if (realEstate)
                for (const QString& c : b.lines)
                    columns.push_back({{c}, &b});
            else
                columns.push_back({b.lines, &b});
        }
        Money wholeDuplicate;
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const SummaryPage& page = pages[i];
            const QStringList& cols = columns[i].first;
            const DistributionBody& body = *columns[i].second;
            const QString flag = body.payFlag + QStringLiteral(" IN ('F', 'D', 'P')");
            // The duplicate in force: each taxable bill's last image, or the bill as delivered.
            Money duplicate;
            for (const QString& c : cols)
                duplicate += sumOf(
                    m_db, QStringLiteral("SELECT sum(coalesce((SELECT a.%1 FROM %2 a WHERE "
                                         "a.BillNo = m.BillNo ORDER BY a.AdjNo DESC LIMIT 1), "
                                         "m.%1)) FROM %3 m WHERE substr(m.BillNo, 1, 1) <> 'X'")
                              .arg(c, t.adjust, t.master));
            Money received = columnsSum(m_db, cols, t.dist->receipts, flag) +
                             columnsSum(m_db, cols, t.dist->voidReceipts, flag);
            Money disbursed = columnsSum(m_db, cols, t.dist->distribution, flag) +
                              columnsSum(m_db, cols, t.dist->voidDistribution, flag);
            if (realEstate && cols.first() == u"School") {
                for (int n = 1; n <= 3; ++n) {
                    const QString pay = QStringLiteral("Payment%1").arg(n);
                    const QString where = QStringLiteral("Pay%1Flag IN ('F', 'P')").arg(n);
                    received += columnsSum(m_db, {pay}, t.dist->receipts, where) +
                                columnsSum(m_db, {pay}, t.dist->voidReceipts, where);
                    disbursed += columnsSum(m_db, {pay}, t.dist->distribution, where) +
                                 columnsSum(m_db, {pay}, t.dist->voidDistribution, where);
                }
            }
            const Money discount =
                columnsSum(m_db, QStringList{QLatin1Char('D') + cols.join(QStringLiteral("+D"))},
                           t.dist->receipts, body.payFlag + QStringLiteral(" = 'D'")) +
                columnsSum(m_db, QStringList{QLatin1Char('D') + cols.join(QStringLiteral("+D"))},
                           t.dist->voidReceipts, body.payFlag + QStringLiteral(" = 'D'"));
            wholeDuplicate += duplicate;
            QCOMPARE(page.netDuplicate.face, duplicate);
            QCOMPARE(page.netReceipts.face, received);
            QCOMPARE(page.netReceipts.discount, discount);
            QCOMPARE(page.balance.face, duplicate - received);
            QCOMPARE(page.netDisbursed.face, disbursed);
            QCOMPARE(page.yetToDisburse.face, received - disbursed);
            // How the figures print is the report dumps'; here only the width of the paper.
            for (const QString& l : page.lines)
                QVERIFY2(l.size() <= 132, qPrintable(l));
        }
        // Neither the duplicate nor the money still to pay over is trivially zero.
        QVERIFY(wholeDuplicate != Money());
        Money out;
        for (const SummaryPage& page : pages)
            out += page.yetToDisburse.face;
        QVERIFY(out != Money());
    }

    // Counts print with their thousands separated, the non taxable ones in brackets.
    void summaryCountsFormatted() {
        TempTaxDatabase t;
        QVERIFY(t.exec(QStringLiteral(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1234) "
            "INSERT INTO TCMaster (BillNo, County) SELECT CASE WHEN i > 1200 THEN 'X' || i ELSE "
            "printf('%5d', i) END, 1000000 FROM n")));
        const std::vector<SummaryPage> pages =
            GatherBalanceSummary(t.db(), RealEstateReportTables());
        QVERIFY(!pages.empty());
        const QStringList& lines = pages.front().lines;
        QVERIFY(lines.contains(QStringLiteral(
            "Tax Duplicate As Originally Billed - Taxable                       1,200         "
            "$120,000.00")));
        QVERIFY(lines.contains(QStringLiteral(
            "Tax Duplicate As Originally Billed - Non Taxable                    (34)")));
    }

    // The Act 169 figures of a month: reports_act169.scn, test_act169_rules and the report
    // dumps. Here January, which belongs to the next year.
    void act169January() {
        const Act169Figures january = GatherAct169(m_db, Act169Kind::School, 1);
        QCOMPARE(january.firstDay, QDate(2014, 1, 1));
        QCOMPARE(january.year, QStringLiteral("2014"));
        QCOMPARE(int(january.columns.size()), 4);
    }

    // However many rows, nothing is drawn past the bottom of the printable area: a block of
    // lines that would not fit goes whole to the next page.
    void nothingBelowThePage() {
        MessageScript messages;
        // Forty bills adjusted once more, so that the adjustment blocks fill pages.
        QSqlQuery q(m_db);
        QVERIFY(q.exec(QStringLiteral(
            "INSERT INTO TCAdjust (Control, BillNo, AdjNo, Name, Map3, Map4, Map5, AssLand, "
            "AssImpr, County, Library, Twp, School, AdjDate, Reason, AdjFlag) SELECT Control, "
            "BillNo, 99, Name, Map3, Map4, Map5, AssLand, AssImpr, County, Library, Twp, School, "
            "'2013-09-30', 'REVIEW', 'A' FROM TCMaster WHERE substr(BillNo, 1, 1) <> 'A' LIMIT "
            "40")));
        ChangeReportOptions changes;
        changes.start = QDate(2013, 1, 1);
        changes.end = QDate(2013, 12, 31);
        ReceiptReportOptions receipts;
        receipts.startDate = changes.start;
        receipts.endDate = changes.end;
        AdjustmentReport adjustments(m_db, RealEstateReportTables(), changes);
        AddressReport addresses(m_db, RealEstateReportTables(), changes);
        ReceiptReport deposit(m_db, PerCapitaReportTables(), receipts);
        const std::vector<std::pair<const char*, ReportDefinition>> reports{
            {"adjustments", adjustments.definition()},
            {"addresses", addresses.definition()},
            {"deposit", deposit.definition()},
            {"summary", BalanceSummaryReport(m_db, RealEstateReportTables())},
            {"late payers", LatePayerReport(m_db)}};
        for (const auto& [name, definition] : reports) {
            const std::optional<Recording> r = DrawReport(definition, ReportMode::Print, m_db);
            QVERIFY2(r, name);
            if (std::string(name) == "adjustments" || std::string(name) == "deposit")
                QVERIFY2(r->pages.size() > 1, name);
            const double bottom = r->format.scaleHeight();
            for (const RecordedPage& page : r->pages)
                for (const PrintedText* t : page.texts())
                    QVERIFY2(
                        t->baseline() <= bottom,
                        qPrintable(QStringLiteral("%1: %2 at %3").arg(name, t->text).arg(t->y)));
        }
    }
};

QTEST_MAIN(TestOfficeReports)
#include "test_office_reports.moc"
