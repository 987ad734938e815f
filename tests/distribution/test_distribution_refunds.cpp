// Refund distributions on temporary databases: the next key, the walk's selection, nothing
// written on a refusal, the printed list of both duplicates read from its recording; and the per
// capita distribution's frames by the per capita rates, beside those of real estate.

#include "distribution/distribute_receipts.h"
#include "distribution/distribution_refunds.h"
#include "support/test_support.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

// A refund row of either table; the map columns only for real estate.
void addRefund(const TempTaxDatabase& t, const DistributionTables& tables, const QString& recnum,
               int id, const QString& disbNum, qint64 cents, const QString& name = "A PAYEE",
               int adjNo = 0) {
    QSqlQuery q(t.db());
    q.prepare(QStringLiteral("INSERT INTO %1 (Control, BillNo, AdjNo, RecNum, RecNumID, Name, "
                             "Addr1, Addr2, City, State, ZipCode, ZipCode2, Desc1, Refund, "
                             "DisbNum, RDate%2) VALUES ('C1', '   12', ?, ?, ?, ?, '1 MAIN ST', "
                             "'', 'MAPLE', 'PA', '19000', '', 'OVERPAID', ?, ?, '2013-04-15'%3)")
                  .arg(tables.refunds, tables.hasMap ? ", Map3, Map4, Map5" : "",
                       tables.hasMap ? ", '01', '02', '003'" : ""));
    q.addBindValue(adjNo);
    q.addBindValue(recnum);
    q.addBindValue(id);
    q.addBindValue(name);
    q.addBindValue(qlonglong(cents * 100));
    q.addBindValue(disbNum);
    QVERIFY2(q.exec(), qPrintable(q.lastError().text()));
}

const DistributionTables& tablesOf(bool perCapita) {
    return perCapita ? PerCapitaTables() : RealEstateTables();
}

} // namespace

class TestDistributionRefunds : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nextKey_data();
    void nextKey();
    void walkSelection();
    void refusalsWriteNothing();
    void printedList_data();
    void printedList();
    void listRunsOverPages();
    void framesByRates_data();
    void framesByRates();
};

void TestDistributionRefunds::nextKey_data() {
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<QString>("next");
    QTest::addColumn<int>("last");
    AddRow("empty table", QStringList{}, QString("201301"), 0);
    AddRow("after 02", QStringList{"201300", "201302", "201301"}, QString("201303"), 2);
    AddRow("the tenth", QStringList{"201309"}, QString("201310"), 9);
    // A key of no number (a damaged row) cannot be counted on: the sequence starts again.
    AddRow("not a number", QStringList{"20130X"}, QString("201301"), 0);
}

void TestDistributionRefunds::nextKey() {
    QFETCH(QStringList, stored);
    QFETCH(QString, next);
    QFETCH(int, last);
    TempTaxDatabase t;
    int id = 0;
    for (const QString& key : stored)
        addRefund(t, RealEstateTables(), "201304150001", ++id, key, 100);
    QCOMPARE(NextRefundDistributionKey(t.db(), RealEstateTables(), "2013"), next);
    QCOMPARE(LastRefundDistribution(t.db(), RealEstateTables(), "2013"), last);
}

void TestDistributionRefunds::walkSelection() {
    TempTaxDatabase t;
    addRefund(t, RealEstateTables(), "201304160001", 1, "201300", 100);
    addRefund(t, RealEstateTables(), "201304150001", 2, "201300", 100);
    addRefund(t, RealEstateTables(), "201304150001", 1, "201300", 100);
    addRefund(t, RealEstateTables(), "201304140001", 1, "201301", 100);
    // Another year's undistributed refund is not this year's.
    addRefund(t, RealEstateTables(), "201204140001", 1, "201200", 100);
    std::vector<QSqlRecord> refunds;
    QString error;
    QVERIFY(ReadUndistributedRefunds(t.db(), RealEstateTables(), "2013", &refunds, &error));
    QStringList order;
    for (const QSqlRecord& r : refunds)
        order << r.value("RecNum").toString() + "/" + r.value("RecNumID").toString();
    QCOMPARE(order, (QStringList{"201304150001/1", "201304150001/2", "201304160001/1"}));
}

void TestDistributionRefunds::refusalsWriteNothing() {
    TempTaxDatabase t;
    addRefund(t, RealEstateTables(), "201304150001", 1, "201300", 100);
    const QString keys = "SELECT RecNum, RecNumID, DisbNum FROM TCRefund";
    const QString before = QueryRows(t.db(), keys);
    QString error;
    // No such refund number on the receipt.
    QVERIFY(!DistributeRefund(t.db(), RealEstateTables(), {"201304150001", 3, "201301"}, &error));
    QVERIFY2(error.contains("201304150001"), qPrintable(error));
    // A key that is not six characters.
    error.clear();
    QVERIFY(!DistributeRefund(t.db(), RealEstateTables(), {"201304150001", 1, "1"}, &error));
    QVERIFY(!error.isEmpty());
    // The database refuses the write.
    QVERIFY(t.exec("CREATE TRIGGER refuse BEFORE UPDATE ON TCRefund BEGIN SELECT "
                   "RAISE(ABORT, 'refused'); END"));
    error.clear();
    QVERIFY(!DistributeRefund(t.db(), RealEstateTables(), {"201304150001", 1, "201301"}, &error));
    QVERIFY2(error.contains("refused"), qPrintable(error));
    QCOMPARE(QueryRows(t.db(), keys), before);
}

void TestDistributionRefunds::printedList_data() {
    QTest::addColumn<bool>("perCapita");
    QTest::addColumn<QStringList>("expected");
    AddRow("real estate", false,
           QStringList{"Tax Collector Distributed Refunds - County / Borough Interim #2",
                       "Distribution # 3", "O'HARA Bill #: 12-4 Control #: C1",
                       "1 MAIN ST Receipt #: 201304150001", "Refund: $1,234.50",
                       "MAPLE, PA. 19000 Reason: OVERPAID", "Refund Date: 04/15/2013",
                       "Total Refunds Printed: 2", "Total Refund Amount: $1,235.50"});
    // The per capita lines are distribution_refunds.scn's; here its landscape page.
    AddRow("per capita", true, QStringList{});
}

void TestDistributionRefunds::printedList() {
    QFETCH(bool, perCapita);
    QFETCH(QStringList, expected);
    const DistributionTables& tables = tablesOf(perCapita);
    TempTaxDatabase t;
    QVERIFY(t.exec("INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('12', '3', 2)"));
    QVERIFY(t.exec("INSERT INTO tbl_Twpboro (District, Ward, TwpBoro, BTFlag) VALUES ('12', '3', "
                   "'OAK BOROUGH', 'B')"));
    addRefund(t, tables, "201304150001", 1, "201303", 123450, "O'HARA", 4);
    addRefund(t, tables, "201304150001", 2, "201303", 100, "B PAYEE");
    // Not of this distribution.
    addRefund(t, tables, "201304150001", 3, "201302", 99900, "ELSEWHERE");
    addRefund(t, tables, "201304150001", 4, "201300", 99900, "WAITING");
    QCOMPARE(CountDistributedRefunds(t.db(), tables, "201303"), 2);

    QStringList shown;
    RefundReportOptions options;
    options.number = 3;
    options.taxYear = "2013";
    options.progress = [&shown](const QSqlRecord& r) { shown << r.value("Name").toString(); };
    RefundDistributionReport report(t.db(), tables, options);
    const std::optional<Recording> pages =
        DrawReport(report.definition(), ReportMode::Print, t.db());
    QVERIFY(pages);
    QCOMPARE(pages->pages.size(), std::size_t(1));
    QCOMPARE(pages->format.orientation,
             perCapita ? PageOrientation::Landscape : PageOrientation::Portrait);
    QCOMPARE(report.definition().preview.orientation, PageOrientation::Landscape);
    QCOMPARE(shown, (QStringList{"O'HARA", "B PAYEE"}));
    const QString text = pages->textLines().join(u'\n');
    for (const QString& line : expected)
        QVERIFY2(pages->textLines().contains(line) || text.simplified().contains(line),
                 qPrintable(line + "\n--- in ---\n" + text));
    QVERIFY(!text.contains("ELSEWHERE"));
    QVERIFY(!text.contains("WAITING"));
}

void TestDistributionRefunds::listRunsOverPages() {
    TempTaxDatabase t;
    QVERIFY(t.exec("INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('12', '3', 0)"));
    for (int i = 1; i <= 40; ++i)
        addRefund(t, PerCapitaTables(), "201304150001", i, "201301", 100);
    RefundReportOptions options;
    options.number = 1;
    options.taxYear = "2013";
    RefundDistributionReport report(t.db(), PerCapitaTables(), options);
    const std::optional<Recording> pages =
        DrawReport(report.definition(), ReportMode::Print, t.db());
    QVERIFY(pages);
    QVERIFY(pages->pages.size() > 2);
    // Each page's own title line carries its number; the totals stand once, on the last.
    const QString last = pages->pages.back().textLines().join(u'\n').simplified();
    QVERIFY2(last.contains(QStringLiteral("Distributed Refunds Page: %1").arg(pages->pages.size())),
             qPrintable(last));
    QVERIFY(last.contains("Total Refunds Printed: 40"));
    QVERIFY(last.contains("Total Refund Amount: $40.00"));
    QVERIFY(!pages->pages.front().textLines().join(u' ').contains("Total Refunds"));
}

void TestDistributionRefunds::framesByRates_data() {
    QTest::addColumn<QString>("county");
    QTest::addColumn<QString>("own");
    QTest::addColumn<bool>("perCapita");
    QTest::addColumn<QString>("shown");
    // The county's per capita, the municipality's occupation and every real estate frame shown
    // or hidden by its millage: the distribution scenarios.
    AddRow("school occupation", QString("0, 0, 0, 0, NULL, 0, 0, 0"),
           QString("0, 0, 0, 0, NULL, 0, 1, 0"), true, QString("--S"));
    // The municipality's own SPC is the school's; the county's own TPC means nothing.
    AddRow("rates in the other row", QString("0, 0, 0, 0, NULL, 0, 0, 3"),
           QString("0, 0, 0, 0, NULL, 10, 0, 0"), true, QString("--S"));
    // Real estate millage does not show a per capita frame, nor the other way.
    AddRow("real estate rates, per capita frames", QString("5.5, 0, 0, 0, NULL, 0, 0, 0"),
           QString("20, 0, 1.5, 0.25, NULL, 0, 0, 0"), true, QString("---"));
    AddRow("per capita rates, real estate frames", QString("0, 0, 0, 0, NULL, 5, 1, 0"),
           QString("0, 0, 0, 0, NULL, 5, 1, 1"), false, QString("---"));
    AddRow("library alone shows the county", QString("0, 0, 0, 0, NULL, 0, 0, 0"),
           QString("0, 0, 0, 0.1, NULL, 0, 0, 0"), false, QString("C--"));
    AddRow("a school special name shows the school", QString("0, 0, 0, 0, NULL, 0, 0, 0"),
           QString("0, 0, 0, 0, 'ACT 511', 0, 0, 0"), false, QString("--S"));
}

void TestDistributionRefunds::framesByRates() {
    QFETCH(QString, county);
    QFETCH(QString, own);
    QFETCH(bool, perCapita);
    QFETCH(QString, shown);
    TempTaxDatabase t;
    const QString insert = "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, TMR, LMR, "
                           "S1TaxName, SPC, SMO, TMO) VALUES (%1, '2013', %2)";
    QVERIFY(t.exec(insert.arg("'00', '0'", county)));
    QVERIFY(t.exec(insert.arg("'12', '3'", own)));
    const std::array<bool, 3> frames = perCapita ? PerCapitaBodiesWithRates(t.db(), "12", "3")
                                                 : RealEstateBodiesWithRates(t.db(), "12", "3");
    const QString got =
        QString(frames[0] ? 'C' : '-') + (frames[1] ? 'T' : '-') + (frames[2] ? 'S' : '-');
    QCOMPARE(got, shown);
}

QTEST_MAIN(TestDistributionRefunds)
#include "test_distribution_refunds.moc"
