// The millage saves: what each screen's save writes on which Millfile row, what it leaves,
// and that rates read back exactly as typed. The screens' checks are in the rates scenarios.

#include "rates/maintain_millages_county.h"
#include "rates/maintain_millages_school.h"
#include "rates/maintain_millages_township.h"
#include "rates/millage_common.h"
#include "support/test_support.h"

#include <QSqlQuery>
#include <QTest>

namespace {

// One column of one Millfile row, as text ("<null>" for Null).
QString millfile(const TempTaxDatabase& t, const QString& districtWard, const QString& column) {
    QSqlQuery q(t.db());
    q.prepare(QStringLiteral("SELECT %1 FROM Millfile WHERE District || Ward = ?").arg(column));
    q.addBindValue(districtWard);
    if (!q.exec() || !q.next())
        return QStringLiteral("<no row>");
    return q.value(0).isNull() ? QStringLiteral("<null>") : q.value(0).toString();
}

// A county row and a district row for 2013, every column the screens leave alone filled in.
void seedMillfile(const TempTaxDatabase& t) {
    QVERIFY(t.exec("INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('12', '3', 0)"));
    QVERIFY(t.exec("INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName, SD, SP, "
                   "SMO, SPC, PCSD, PCSP, TMR, MailDate, Line1) VALUES ('00', '0', '2013', 5.5, "
                   "0.25, 'COUNTY SP', 2, 10, 1, 5, 2, 10, 99, '2013-03-01', 'county line')"));
    QVERIFY(t.exec(
        "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName, SD, SP, SMO, SPC, "
        "PCSD, PCSP, TMR, LMR, TD, TP, TMO, TPC, PCTD, PCTP, BillCounty, BillTwp, BillSchool, "
        "Tolerance, MailDate, DiscDate, LateMailDate, LateDiscDate, Payment1Date, "
        "LatePayment1Date, Line1, LateLine1, PLine1, PLine2, LatePLine1, LatePLine2, TCPhone, "
        "PrintEscrow, SchoolFormula, SchoolStebRatio, SchoolMarketRatio, School1Formula, "
        "HSExclusion, FSExclusion) VALUES ('12', '3', '2013', 20.5, 0.5, 'LIBRARY', 2, 10, 1, "
        "10, 2, 10, 1.75, 0.3, 2, 10, 1, 5, 2, 10, 'E', 'E', 'L', 10000, '2013-03-01', "
        "'2013-04-30', '2013-07-01', '2013-08-31', '2013-09-01', '2013-10-01', 'old line', "
        "'old late line', 'p1', 'p2', 'lp1', 'lp2', '555-1234', 1, 'Y', 1.1, 0.9, 'Y', "
        "150000000, 0)"));
}

MillageDateSet datesFrom(const QDate& mail) {
    return {mail,
            mail.addMonths(2).addDays(-1),
            mail.addMonths(2),
            mail.addMonths(4).addDays(-1),
            mail.addMonths(4),
            QDate(mail.year(), 12, 31),
            QDate(mail.year() + 1, 1, 1)};
}

} // namespace

class TestMillageSaves : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void typedRates_data();
    void typedRates();
    void rateReadsBackAsTyped_data();
    void rateReadsBackAsTyped();
    void countySave();
    void countySaveOtherYearChangesNothing();
    void townshipSave();
    void townshipBlankDatesAreNull();
    void schoolSaveEarly();
    void schoolSaveLate();
};

void TestMillageSaves::typedRates_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("numeric");
    QTest::addColumn<double>("value");
    QTest::newRow("plain") << "12.345" << true << 12.345;
    QTest::newRow("blanks around") << "  7 " << true << 7.0;
    QTest::newRow("leading point") << ".5" << true << 0.5;
    QTest::newRow("trailing point") << "3." << true << 3.0;
    QTest::newRow("negative") << "-1.25" << true << -1.25;
    QTest::newRow("letter") << "12a" << false << 0.0;
    QTest::newRow("two points") << "1.2.3" << false << 0.0;
    QTest::newRow("comma") << "1,5" << false << 0.0;
    QTest::newRow("blank") << "   " << false << 0.0;
    QTest::newRow("sign only") << "-" << false << 0.0;
    QTest::newRow("exponent") << "1e3" << false << 0.0;
}

void TestMillageSaves::typedRates() {
    QFETCH(QString, typed);
    QFETCH(bool, numeric);
    const std::optional<double> rate = ParseRate(typed);
    QCOMPARE(rate.has_value(), numeric);
    if (numeric)
        QTEST(*rate, "value");
}

void TestMillageSaves::rateReadsBackAsTyped_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::newRow("three places") << "12.345"
                                  << "12.345";
    QTest::newRow("whole") << "20"
                           << "20";
    QTest::newRow("trailing zero dropped") << "2.50"
                                           << "2.5";
    QTest::newRow("small") << "0.0001"
                           << "0.0001";
    QTest::newRow("many digits") << "1.23456789012"
                                 << "1.23456789012";
    QTest::newRow("one tenth") << "0.1"
                               << "0.1";
}

void TestMillageSaves::rateReadsBackAsTyped() {
    QFETCH(QString, typed);
    TempTaxDatabase t;
    seedMillfile(t);
    CountyMillages v;
    v.taxYear = "2013";
    v.smr = *ParseRate(typed);
    QVERIFY(SaveCountyMillages(t.db(), v));
    QSqlQuery q(t.db());
    QVERIFY(q.exec("SELECT SMR FROM Millfile WHERE District || Ward = '000'") && q.next());
    QCOMPARE(q.value(0).toDouble(), *ParseRate(typed));
    QTEST(RateText(q.value(0)), "shown");
}

void TestMillageSaves::countySave() {
    TempTaxDatabase t;
    seedMillfile(t);
    CountyMillages v{"2013", 12.345, 0.75, "PARKS", 3, 12, 2.5, 10, 1.5, 9};
    QVERIFY(SaveCountyMillages(t.db(), v));
    const QStringList written{"SMR", "S1MR", "S1TaxName", "SD", "SP", "SMO", "SPC", "PCSD", "PCSP"};
    const QStringList expected{"12.345", "0.75", "PARKS", "3", "12", "2.5", "10", "1.5", "9"};
    for (int i = 0; i < written.size(); ++i)
        QCOMPARE(millfile(t, "000", written[i]), expected[i]);
    // The county row's other columns and the whole district row stay.
    QCOMPARE(millfile(t, "000", "TMR"), "99");
    QCOMPARE(millfile(t, "000", "MailDate"), "2013-03-01");
    QCOMPARE(millfile(t, "000", "Line1"), "county line");
    QCOMPARE(millfile(t, "123", "SMR"), "20.5");
    QCOMPARE(millfile(t, "123", "S1TaxName"), "LIBRARY");
}

void TestMillageSaves::countySaveOtherYearChangesNothing() {
    TempTaxDatabase t;
    seedMillfile(t);
    CountyMillages v{"2014", 1, 1, "X", 1, 1, 1, 1, 1, 1};
    QVERIFY(SaveCountyMillages(t.db(), v));
    QCOMPARE(millfile(t, "000", "SMR"), "5.5");
    QCOMPARE(millfile(t, "000", "S1TaxName"), "COUNTY SP");
}

void TestMillageSaves::townshipSave() {
    TempTaxDatabase t;
    seedMillfile(t);
    TownshipMillages v;
    v.district = "12";
    v.ward = "3";
    v.taxYear = "2013";
    v.tmr = 1.875;
    v.lmr = 0.125;
    v.tmo = 10;
    v.tpc = 5;
    v.td = 2;
    v.tp = 10;
    v.pctd = 1;
    v.pctp = 5;
    v.early.lines = {"Line one", "O'Brien's office", "", "", "", "", "seven"};
    v.early.phone = "(610) 555-0100";
    v.early.printEscrow = false;
    v.late.lines = {"Late one", "", "", "", "", "", ""};
    v.late.phone = "610-555-0199";
    v.late.printEscrow = true;
    v.earlyDates = datesFrom(QDate(2013, 3, 1));
    v.lateDates = datesFrom(QDate(2013, 8, 1));
    v.billCounty = "L";
    v.billTwp = "E";
    v.tolerance = Money::fromCents(150);
    QVERIFY(SaveTownshipMillages(t.db(), v));

    QCOMPARE(millfile(t, "123", "TMR"), "1.875");
    QCOMPARE(millfile(t, "123", "LMR"), "0.125");
    QCOMPARE(millfile(t, "123", "PCTP"), "5");
    QCOMPARE(millfile(t, "123", "Line2"), "O'Brien's office");
    QCOMPARE(millfile(t, "123", "Line7"), "seven");
    QCOMPARE(millfile(t, "123", "TCPhone"), "(610) 555-0100");
    QCOMPARE(millfile(t, "123", "PrintEscrow"), "0");
    QCOMPARE(millfile(t, "123", "LateLine1"), "Late one");
    QCOMPARE(millfile(t, "123", "LatePrintEscrow"), "1");
    QCOMPARE(millfile(t, "123", "MailDate"), "2013-03-01");
    QCOMPARE(millfile(t, "123", "DiscDate"), "2013-04-30");
    QCOMPARE(millfile(t, "123", "TaxDate"), "2014-01-01");
    QCOMPARE(millfile(t, "123", "LateMailDate"), "2013-08-01");
    QCOMPARE(millfile(t, "123", "LateLastDate"), "2013-12-31");
    QCOMPARE(millfile(t, "123", "BillCounty"), "L");
    QCOMPARE(millfile(t, "123", "BillTwp"), "E");
    QCOMPARE(millfile(t, "123", "Tolerance"), "15000");
    // The per capita lines are blanked whatever they held.
    for (const char* column : {"PLine1", "PLine2", "LatePLine1", "LatePLine2"})
        QCOMPARE(millfile(t, "123", column), QString());
    // The school's columns, its time frame and the installment dates stay; so does the
    // county row.
    QCOMPARE(millfile(t, "123", "SMR"), "20.5");
    QCOMPARE(millfile(t, "123", "BillSchool"), "L");
    QCOMPARE(millfile(t, "123", "Payment1Date"), "2013-09-01");
    QCOMPARE(millfile(t, "123", "LatePayment1Date"), "2013-10-01");
    QCOMPARE(millfile(t, "123", "HSExclusion"), "150000000");
    QCOMPARE(millfile(t, "000", "TMR"), "99");
    QCOMPARE(millfile(t, "000", "Line1"), "county line");
}

void TestMillageSaves::townshipBlankDatesAreNull() {
    TempTaxDatabase t;
    seedMillfile(t);
    TownshipMillages v;
    v.district = "12";
    v.ward = "3";
    v.taxYear = "2013";
    v.billCounty = "E";
    v.billTwp = "E";
    QVERIFY(SaveTownshipMillages(t.db(), v));
    QCOMPARE(millfile(t, "123", "MailDate"), "<null>");
    QCOMPARE(millfile(t, "123", "LateDiscDate"), "<null>");
    QCOMPARE(StoredDateText(QVariant()), QString());
}

void TestMillageSaves::schoolSaveEarly() {
    TempTaxDatabase t;
    seedMillfile(t);
    SchoolMillages v;
    v.district = "12";
    v.ward = "3";
    v.taxYear = "2013";
    v.smr = 21.0625;
    v.s1mr = 0.4;
    v.s1TaxName = "SCH LIB";
    v.sd = 2;
    v.sp = 10;
    v.smo = 1;
    v.spc = 5;
    v.pcsd = 2;
    v.pcsp = 10;
    v.lateBilling = false;
    v.dates = datesFrom(QDate(2013, 7, 1));
    v.paymentDates = {QDate(2013, 8, 31), QDate(2013, 10, 31), QDate(2013, 12, 31)};
    v.formula = false;
    v.stebRatio = 0.52;
    v.marketRatio = 1.15;
    v.hsExclusion = Money::fromDollars(200);
    v.fsExclusion = Money::fromCents(5050);
    QVERIFY(SaveSchoolMillages(t.db(), v));
    QCOMPARE(millfile(t, "123", "SMR"), "21.0625");
    QCOMPARE(millfile(t, "123", "S1TaxName"), "SCH LIB");
    QCOMPARE(millfile(t, "123", "MailDate"), "2013-07-01");
    QCOMPARE(millfile(t, "123", "Payment3Date"), "2013-12-31");
    QCOMPARE(millfile(t, "123", "BillSchool"), "E");
    QCOMPARE(millfile(t, "123", "SchoolFormula"), "N");
    QCOMPARE(millfile(t, "123", "SchoolStebRatio"), "0.52");
    QCOMPARE(millfile(t, "123", "SchoolMarketRatio"), "1.15");
    QCOMPARE(millfile(t, "123", "HSExclusion"), "2000000");
    QCOMPARE(millfile(t, "123", "FSExclusion"), "505000");
    // The late set, the municipality's columns, the notice lines, the school special's
    // formula and the county row stay.
    QCOMPARE(millfile(t, "123", "LateMailDate"), "2013-07-01");
    QCOMPARE(millfile(t, "123", "LateDiscDate"), "2013-08-31");
    QCOMPARE(millfile(t, "123", "LatePayment1Date"), "2013-10-01");
    QCOMPARE(millfile(t, "123", "TMR"), "1.75");
    QCOMPARE(millfile(t, "123", "BillTwp"), "E");
    QCOMPARE(millfile(t, "123", "Line1"), "old line");
    QCOMPARE(millfile(t, "123", "PLine1"), "p1");
    QCOMPARE(millfile(t, "123", "School1Formula"), "Y");
    QCOMPARE(millfile(t, "000", "SMR"), "5.5");
}

void TestMillageSaves::schoolSaveLate() {
    TempTaxDatabase t;
    seedMillfile(t);
    SchoolMillages v;
    v.district = "12";
    v.ward = "3";
    v.taxYear = "2013";
    v.smr = 19;
    v.lateBilling = true;
    v.dates = datesFrom(QDate(2013, 9, 15));
    v.paymentDates = {QDate(2013, 10, 15), QDate(), QDate()};
    v.formula = true;
    QVERIFY(SaveSchoolMillages(t.db(), v));
    QCOMPARE(millfile(t, "123", "BillSchool"), "L");
    QCOMPARE(millfile(t, "123", "SchoolFormula"), "Y");
    QCOMPARE(millfile(t, "123", "LateMailDate"), "2013-09-15");
    QCOMPARE(millfile(t, "123", "LateFaceDate1"), "2013-11-15");
    QCOMPARE(millfile(t, "123", "LatePayment1Date"), "2013-10-15");
    QCOMPARE(millfile(t, "123", "LatePayment2Date"), "<null>");
    // The early set is the township's too: it stays.
    QCOMPARE(millfile(t, "123", "MailDate"), "2013-03-01");
    QCOMPARE(millfile(t, "123", "DiscDate"), "2013-04-30");
    QCOMPARE(millfile(t, "123", "Payment1Date"), "2013-09-01");
}

QTEST_GUILESS_MAIN(TestMillageSaves)
#include "test_millage_saves.moc"
