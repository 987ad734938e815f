// The adjustment screen's writes on a temporary database: what each leaves behind, in which
// order, and that a failure leaves nothing.
#include "desk/realestate/adjust_writes.h"
#include "support/test_support.h"

#include "core/tax_database.h"

#include <QTest>

namespace {

const auto rows = &QueryRows;

// Every write to the tables the screen touches lands in a log, in order.
void logWrites(TempTaxDatabase& t) {
    t.exec("CREATE TABLE WriteLog (n INTEGER PRIMARY KEY, what TEXT)");
    const char* triggers[][2] = {{"UPDATE", "TCMaster"},  {"INSERT", "TCMaster"},
                                 {"INSERT", "TCAdjust"},  {"DELETE", "TCAdjust"},
                                 {"UPDATE", "TCBillNum"}, {"INSERT", "TCAdds"}};
    int n = 0;
    for (const auto& w : triggers)
        t.exec(QStringLiteral("CREATE TRIGGER log%1 AFTER %2 ON %3 BEGIN INSERT INTO WriteLog "
                              "(what) VALUES ('%2 %3'); END")
                   .arg(++n)
                   .arg(QLatin1String(w[0]), QLatin1String(w[1])));
}

QString writeLog(const TempTaxDatabase& t) {
    return rows(t.db(), "SELECT what FROM WriteLog ORDER BY n");
}

RealEstateBillImage image(const QString& billNo) {
    RealEstateBillImage b;
    b.control = QStringLiteral("123456");
    b.billNo = billNo;
    b.name = QStringLiteral("O'BRIEN PAT");
    b.land = 10000;
    b.impr = 20000;
    b.amounts.county = {Money::fromDollars(98), Money::fromDollars(100), Money::fromDollars(110)};
    b.amounts.twp = {Money::fromDollars(49), Money::fromDollars(50), Money::fromDollars(55)};
    b.amounts.school = {Money::fromDollars(588), Money::fromDollars(600), Money::fromDollars(660)};
    b.amounts.installments = SplitSchoolInstallments(Money::fromDollars(600), 10);
    b.amounts.exclusion.homestead = Money::fromDollars(5000);
    b.amounts.exclusion.excFace = {Money::fromCents(9800), Money::fromDollars(100),
                                   Money::fromDollars(110)};
    b.hfFlag = QStringLiteral("A");
    b.homesteadFlag = QStringLiteral("H");
    b.aaFlag = QStringLiteral("A");
    return b;
}

void insertMaster(TempTaxDatabase& t, const QString& billNo, const QString& flags = "' ',' ',' '") {
    QVERIFY(t.exec(QStringLiteral("INSERT INTO TCMaster (BillNo, Control, AdjFlag, CPayFlag, "
                                  "TPayFlag, SPayFlag) VALUES ('%1', '000042', ' ', %2)")
                       .arg(billNo, flags)));
}

} // namespace

class TestAdjustWrites : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addBill();
    void addBillRefusesAWrongNumber();
    void adjustment();
    void exoneration();
    void unexoneration_data();
    void unexoneration();
    void failureWritesNothing();
    void exoneratedAmounts();
};

void TestAdjustWrites::addBill() {
    TempTaxDatabase t;
    QVERIFY(t.exec("UPDATE TCBillNum SET BillNum = 42"));
    logWrites(t);
    BillAddition a;
    a.image = image(QStringLiteral("A0042"));
    a.addDate = QDate(2013, 5, 6);
    QString error;
    QVERIFY2(AddRealEstateBill(t.db(), a, &error), qPrintable(error));
    QCOMPARE(writeLog(t), QStringLiteral("UPDATE TCBillNum;INSERT TCMaster;INSERT TCAdds"));
    // Every flag of a new bill is one blank.
    QCOMPARE(rows(t.db(), "SELECT AdjFlag || CPayFlag || TPayFlag || SPayFlag || Pay1Flag || "
                          "Pay2Flag || Pay3Flag || StLtFlag || CAddrFlag || BankFlag || "
                          "SecondNotice || Exempt || Defaulted || TaxClaimFlag FROM TCMaster"),
             QString(14, u' '));
}

void TestAdjustWrites::addBillRefusesAWrongNumber() {
    TempTaxDatabase t;
    BillAddition a;
    a.image = image(QStringLiteral("   42"));
    QString error;
    QVERIFY(!AddRealEstateBill(t.db(), a, &error));
    QVERIFY(!error.isEmpty());
    QCOMPARE(rows(t.db(), "SELECT count(*) FROM TCMaster"), QStringLiteral("0"));
    QCOMPARE(rows(t.db(), "SELECT BillNum FROM TCBillNum"), QStringLiteral("1"));
}

void TestAdjustWrites::adjustment() {
    TempTaxDatabase t;
    insertMaster(t, QStringLiteral("   42"), QStringLiteral("'D',' ','I'"));
    logWrites(t);
    BillAdjustment a;
    a.image = image(QStringLiteral("   42"));
    a.adjNo = 3;
    a.adjDate = QDate(2013, 6, 1);
    a.reason = QStringLiteral("REASSESSED");
    QString error;
    QVERIFY2(RecordBillAdjustment(t.db(), a, &error), qPrintable(error));
    // The marker first; the image read back as the bill in force: adjust_history_and_refusals.scn.
    QCOMPARE(writeLog(t), QStringLiteral("UPDATE TCMaster;INSERT TCAdjust"));
}

// All three bodies and the county alone go through the screen (test_adjust_screen); here the
// ticks without the county.
void TestAdjustWrites::exoneration() {
    const BodyTicks bodies{false, true, true};
    TempTaxDatabase t;
    insertMaster(t, QStringLiteral("    7"));
    BillAdjustment a;
    a.kind = BillAdjustment::Kind::Exonerate;
    a.image = image(QStringLiteral("    7"));
    a.image.amounts = ExoneratedAmounts(a.image.amounts, bodies);
    a.adjNo = 1;
    a.reason = QStringLiteral("EXONERATION");
    a.bodies = bodies;
    QString error;
    QVERIFY2(RecordBillAdjustment(t.db(), a, &error), qPrintable(error));
    QCOMPARE(rows(t.db(), "SELECT AdjFlag, CPayFlag, TPayFlag, SPayFlag FROM TCMaster"),
             QStringLiteral("A| |X|X"));
    QCOMPARE(rows(t.db(), "SELECT AdjNo, AdjFlag, Reason FROM TCAdjust"),
             QStringLiteral("1|X|EXONERATION"));
}

// Taking back the only adjustment goes through the screen (test_adjust_screen).
void TestAdjustWrites::unexoneration_data() {
    QTest::addColumn<int>("lastAdjNo");
    QTest::addColumn<BodyTicks>("bodies");
    QTest::addColumn<QString>("master");
    QTest::addColumn<QString>("adjustments");

    AddRow("earlier adjustment stays", 2, BodyTicks{true, true, true}, "A| | | ", "1");
    AddRow("school left exonerated", 2, BodyTicks{true, true, false}, "A| | |X", "1");
}

void TestAdjustWrites::unexoneration() {
    QFETCH(int, lastAdjNo);
    QFETCH(BodyTicks, bodies);
    QFETCH(QString, master);
    QFETCH(QString, adjustments);

    TempTaxDatabase t;
    insertMaster(t, QStringLiteral("    7"), QStringLiteral("'X','X','X'"));
    QVERIFY(t.exec("UPDATE TCMaster SET AdjFlag = 'A'"));
    for (int n = 1; n <= lastAdjNo; ++n)
        QVERIFY(t.exec(QStringLiteral("INSERT INTO TCAdjust (BillNo, AdjNo, AdjFlag) VALUES "
                                      "('    7', %1, '%2')")
                           .arg(n)
                           .arg(n == lastAdjNo ? u'X' : u'A')));
    logWrites(t);
    QString error;
    QVERIFY2(RecordBillUnexoneration(t.db(), {QStringLiteral("    7"), lastAdjNo, bodies}, &error),
             qPrintable(error));
    QCOMPARE(writeLog(t), QStringLiteral("UPDATE TCMaster;DELETE TCAdjust"));
    QCOMPARE(rows(t.db(), "SELECT AdjFlag, CPayFlag, TPayFlag, SPayFlag FROM TCMaster"), master);
    QCOMPARE(rows(t.db(), "SELECT AdjNo FROM TCAdjust ORDER BY AdjNo"), adjustments);
}

// A write that fails half way leaves neither the marker nor the counter moved.
void TestAdjustWrites::failureWritesNothing() {
    TempTaxDatabase t;
    insertMaster(t, QStringLiteral("   42"));
    QVERIFY(t.exec("CREATE TRIGGER refuse BEFORE INSERT ON TCAdjust BEGIN "
                   "SELECT RAISE(ABORT, 'disk full'); END"));
    QVERIFY(t.exec("CREATE TRIGGER refuse2 BEFORE INSERT ON TCAdds BEGIN "
                   "SELECT RAISE(ABORT, 'disk full'); END"));
    BillAdjustment a;
    a.image = image(QStringLiteral("   42"));
    QString error;
    QVERIFY(!RecordBillAdjustment(t.db(), a, &error));
    QVERIFY(error.contains(QLatin1String("disk full")));
    QCOMPARE(rows(t.db(), "SELECT AdjFlag FROM TCMaster"), QStringLiteral(" "));

    BillAddition add;
    add.image = image(QStringLiteral("A0001"));
    QVERIFY(!AddRealEstateBill(t.db(), add, &error));
    QCOMPARE(rows(t.db(), "SELECT count(*), (SELECT BillNum FROM TCBillNum) FROM TCMaster"),
             QStringLiteral("1|1"));
}

void TestAdjustWrites::exoneratedAmounts() {
    const RealEstateAmounts before = image(QStringLiteral("    1")).amounts;
    const RealEstateAmounts county = ExoneratedAmounts(before, {true, false, false});
    QCOMPARE(county.county, AmountTriple{});
    QCOMPARE(county.twp, before.twp);
    QCOMPARE(county.school, before.school);
    QCOMPARE(county.installments, before.installments);
    const RealEstateAmounts school = ExoneratedAmounts(before, {false, false, true});
    QCOMPARE(school.county, before.county);
    QCOMPARE(school.school, AmountTriple{});
    QCOMPARE(school.installments, Installments{});
    QCOMPARE(school.exclusion.excFace, AmountTriple{});
    // The exclusion itself is an assessment, not an amount: it stays.
    QCOMPARE(school.exclusion.homestead, before.exclusion.homestead);
}

QTEST_GUILESS_MAIN(TestAdjustWrites)
#include "test_adjust_writes.moc"
