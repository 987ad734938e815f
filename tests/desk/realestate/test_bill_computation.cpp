// A bill computed from its assessment as the adjustment screen does it: which lines move, which
// keep their face, the exclusion, the installments after payments, and the discount and penalty
// that Accept saves.
#include "desk/realestate/payment_rules.h"
#include "support/test_support.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

Money M(const QString& text) {
    return Money::parse(text).value();
}

QString plain(const AmountTriple& t) {
    return t.discount.toPlain() + u'/' + t.face.toPlain() + u'/' + t.penalty.toPlain();
}

QString plain(const std::array<Money, 3>& a) {
    return a[0].toPlain() + u'/' + a[1].toPlain() + u'/' + a[2].toPlain();
}

// County 5.55 mills with a library of 0.25, township 5.55 with one special of 0.5, school 5.55
// on plain millage; 2% discount and 10% penalty everywhere.
RealEstateRates officeRates() {
    RealEstateRates r;
    r.countyMill = 5.55;
    r.libraryMill = 0.25;
    r.countyDiscountPct = 2;
    r.countyPenaltyPct = 10;
    r.twpMill = 5.55;
    r.specialMill = {0.5, 0, 0};
    r.twpDiscountPct = 2;
    r.twpPenaltyPct = 10;
    r.school = {5.55, false, 0, 0};
    r.schoolSpecial = {0, false, 0, 0};
    r.schoolDiscountPct = 2;
    r.schoolPenaltyPct = 10;
    return r;
}

// A bill as a screen holds it before the computation: every face 50.00, nothing else.
RealEstateAmounts heldBill() {
    RealEstateAmounts a;
    const AmountTriple fifty{Money(), Money::fromDollars(50), Money()};
    a.county = a.library = a.countySpecial = a.twp = fifty;
    a.special = {fifty, fifty, fifty};
    a.school = a.schoolSpecial = fifty;
    return a;
}

} // namespace

class TestBillComputation : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wholePercent();
    void installmentsOnComputing_data();
    void installmentsOnComputing();
    void fromAssessment_data();
    void fromAssessment();
    void exclusionOnTheScreen_data();
    void exclusionOnTheScreen();
    void recomputeFromFaces();
    void ratesFromMillfile();
};

void TestBillComputation::wholePercent() {
    const std::pair<double, double> cases[] = {{2, 2},   {2.4, 2},   {2.5, 2}, {2.6, 3}, {3.5, 4},
                                               {10, 10}, {9.75, 10}, {0, 0},   {0.5, 0}};
    for (const auto& [pct, whole] : cases)
        QCOMPARE(WholePercent(pct), whole);
}

void TestBillComputation::installmentsOnComputing_data() {
    QTest::addColumn<QString>("total");
    QTest::addColumn<QString>("image"); // the installments of the image shown
    QTest::addColumn<QString>("paid");  // Pay1Flag..Pay3Flag non-blank
    QTest::addColumn<QString>("payments");
    QTest::addColumn<QString>("penalties");

    AddRow("none paid: first gets the cent", "1000.00", "0/0/0", "---", "333.34/333.33/333.33",
           "0.00/366.66/366.66");
    AddRow("first paid takes the cent", "900.01", "300/300/300", "F--", "300.01/300.00/300.00",
           "0.00/330.00/330.00");
    AddRow("first paid, odd cents", "900.03", "300/300/300", "F--", "300.01/300.01/300.01",
           "0.00/330.01/330.01");
    // RoundTo cuts a negative value toward zero: a negative penalty form is a cent short.
    AddRow("first paid, new total below it", "200.00", "300/300/300", "F--", "300.00/-50.00/-50.00",
           "0.00/-54.99/-54.99");
    // A cent short: the halves go a cent below, and the first installment takes the cent back.
    AddRow("first paid, a cent below it", "299.99", "300/300/300", "F--", "300.01/-0.01/-0.01",
           "0.00/0.00/0.00");
    AddRow("first two paid", "950.00", "300/300/300", "FP-", "300.00/300.00/350.00",
           "0.00/330.00/385.00");
    AddRow("first two paid, below them", "500.00", "300/300/300", "FF-", "300.00/300.00/-100.00",
           "0.00/330.00/-109.99");
    AddRow("second only paid splits anew", "100.00", "40/30/30", "-F-", "33.34/33.33/33.33",
           "0.00/36.66/36.66");
    AddRow("all paid splits anew", "100.01", "40/30/30", "FFF", "33.34/33.34/33.33",
           "0.00/36.67/36.66");
}

void TestBillComputation::installmentsOnComputing() {
    QFETCH(QString, total);
    QFETCH(QString, image);
    QFETCH(QString, paid);
    QFETCH(QString, payments);
    QFETCH(QString, penalties);

    Installments shown;
    const QStringList parts = image.split(u'/');
    for (int n = 0; n < 3; ++n)
        shown.payment[n] = M(parts[n]);
    const std::array<bool, 3> flags{paid[0] != u'-', paid[1] != u'-', paid[2] != u'-'};
    const Installments out = InstallmentsOnComputing(M(total), shown, flags, 10);
    QCOMPARE(plain(out.payment), payments);
    QCOMPARE(plain(out.penPayment), penalties);
    QCOMPARE(out.total(), M(total));
}

void TestBillComputation::fromAssessment_data() {
    QTest::addColumn<QString>("change"); // what differs from the office's rates and choices
    QTest::addColumn<QString>("county"); // county, library
    QTest::addColumn<QString>("twp");    // township, special 1, special 2
    QTest::addColumn<QString>("school"); // school, school special
    QTest::addColumn<QString>("installments");

    // Land 10,001 and improvements 20,003: county and township round the parts apart (166.53),
    // the school once on the sum (166.52). "=" is the amounts of the first row. A paid county and
    // a paid first installment: adjust_partly_paid.scn.
    AddRow("every body", "", "163.20/166.53/183.18 7.35/7.50/8.25",
           "163.20/166.53/183.18 14.70/15.00/16.50 0.00/50.00/0.00",
           "163.19/166.52/183.17 0.00/50.00/0.00", "72.18/72.17/72.17");
    AddRow("school unticked keeps its amounts and installments", "school off", "=", "=",
           "0.00/50.00/0.00 0.00/50.00/0.00", "10.00/10.00/10.00");
    AddRow("zero library and township keep their faces", "no library, no township",
           "163.20/166.53/183.18 0.00/50.00/0.00",
           "0.00/50.00/0.00 14.70/15.00/16.50 0.00/50.00/0.00", "=", "=");
    AddRow("a named special of zero mill is zero", "second special named", "=",
           "163.20/166.53/183.18 14.70/15.00/16.50 0.00/0.00/0.00", "=", "=");
    AddRow("plain zero school mill keeps the face", "school mill 0", "=", "=",
           "0.00/50.00/0.00 0.00/50.00/0.00", "33.34/33.33/33.33");
    // (30004 / 0.5 x 0.6) x 5.55 / 1000 = 199.83
    AddRow("formula", "formula 0.6/0.5", "=", "=", "195.83/199.83/219.81 0.00/50.00/0.00",
           "83.28/83.28/83.27");
    AddRow("formula with steb ratio 0", "formula 0.6/0", "=", "=", "0.00/0.00/0.00 0.00/50.00/0.00",
           "16.67/16.67/16.66");
    AddRow("installments not applicable", "no installments", "=", "=", "=", "0.00/0.00/0.00");
    // The special levied by the school's rate goes by its own formula flag and ratios.
    AddRow("school special", "school special 1.0", "=", "=",
           "163.19/166.52/183.17 29.40/30.00/33.00", "65.51/65.51/65.50");
}

void TestBillComputation::fromAssessment() {
    QFETCH(QString, change);
    QFETCH(QString, county);
    QFETCH(QString, twp);
    QFETCH(QString, school);
    QFETCH(QString, installments);

    RealEstateRates rates = officeRates();
    AssessmentComputation c;
    c.land = 10001;
    c.impr = 20003;
    c.specialNamed = {true, false, false};
    RealEstateAmounts before = heldBill();
    before.installments.payment = {Money::fromDollars(10), Money::fromDollars(10),
                                   Money::fromDollars(10)};
    if (change == QLatin1String("school off"))
        c.school = false;
    if (change == QLatin1String("no library, no township"))
        rates.libraryMill = rates.twpMill = 0;
    if (change == QLatin1String("second special named"))
        c.specialNamed[1] = true;
    if (change == QLatin1String("school mill 0"))
        rates.school.mill = 0;
    if (change.startsWith(QLatin1String("formula"))) {
        rates.school.formula = true;
        rates.school.marketRatio = 0.6;
        rates.school.stebRatio = change.endsWith(QLatin1String("/0")) ? 0 : 0.5;
    }
    if (change == QLatin1String("no installments"))
        c.installments = false;
    if (change == QLatin1String("school special 1.0"))
        rates.schoolSpecial = {1.0, true, 0.5, 0.5};

    const ComputedBill out = ComputeFromAssessment(before, c, rates);
    const RealEstateAmounts& a = out.amounts;
    auto or1st = [](const QString& v, const char* first) { return v == u"=" ? first : v; };
    QCOMPARE(plain(a.county) + u' ' + plain(a.library),
             or1st(county, "163.20/166.53/183.18 7.35/7.50/8.25"));
    QCOMPARE(plain(a.twp) + u' ' + plain(a.special[0]) + u' ' + plain(a.special[1]),
             or1st(twp, "163.20/166.53/183.18 14.70/15.00/16.50 0.00/50.00/0.00"));
    QCOMPARE(plain(a.school) + u' ' + plain(a.schoolSpecial),
             or1st(school, "163.19/166.52/183.17 0.00/50.00/0.00"));
    QCOMPARE(plain(a.installments.payment), or1st(installments, "72.18/72.17/72.17"));
    // Untouched by any computation: the county special's face, the third special's.
    QCOMPARE(plain(a.countySpecial), QStringLiteral("0.00/50.00/0.00"));
    QCOMPARE(a.special[2].face, Money::fromDollars(50));
}

void TestBillComputation::exclusionOnTheScreen_data() {
    QTest::addColumn<QString>("asked"); // homestead/farmstead typed
    QTest::addColumn<QString>("cut");   // homestead/farmstead after the cut
    QTest::addColumn<QString>("excFace");
    QTest::addColumn<QString>("school");

    // Land 20,000 and improvements 60,000 at 18.5 mills: 1480.00 gross. The half dollar taken
    // to the even dollar is the exclusion's own rule (test_payment_rules_amounts); a homestead
    // above the assessment, the box unticked and the face the collector names are
    // adjust_exclusion.scn's.
    AddRow("homestead", "30000/0", "30000.00/0.00", "543.90/555.00/610.50",
           "906.50/925.00/1017.50");
    AddRow("farmstead cut to what is left", "70000/20000", "70000.00/10000.00",
           "1450.40/1480.00/1628.00", "0.00/0.00/0.00");
}

void TestBillComputation::exclusionOnTheScreen() {
    QFETCH(QString, asked);
    QFETCH(QString, cut);
    QFETCH(QString, excFace);
    QFETCH(QString, school);

    RealEstateRates rates = officeRates();
    rates.school.mill = 18.5;
    AssessmentComputation c;
    c.land = 20000;
    c.impr = 60000;
    c.act1 = true;
    RealEstateAmounts before = heldBill();
    before.exclusion.homestead = M(asked.section(u'/', 0, 0));
    before.exclusion.farmstead = M(asked.section(u'/', 1, 1));

    const ComputedBill out = ComputeFromAssessment(before, c, rates);
    const Act1Exclusion& e = out.amounts.exclusion;
    QCOMPARE(e.homestead.toPlain() + u'/' + e.farmstead.toPlain(), cut);
    QCOMPARE(plain(e.excFace), excFace);
    QCOMPARE(plain(out.schoolGross), QStringLiteral("1450.40/1480.00/1628.00"));
    QCOMPARE(plain(out.amounts.school), school);
    QCOMPARE(out.amounts.homesteadFlag, QStringLiteral("H"));
}

// Accept's step: hand-typed faces get their discount and penalty; the exclusion and the
// installments keep what the last computation gave them.
void TestBillComputation::recomputeFromFaces() {
    RealEstateRates rates = officeRates();
    rates.libraryMill = 0;
    RealEstateAmounts a = heldBill();
    a.exclusion.excFace = {M("1"), M("2"), M("3")};
    a.installments.penPayment = {Money(), M("5"), M("6")};
    RecomputeDiscountPenalty(a, rates, {true, false, true});
    QCOMPARE(plain(a.county), QStringLiteral("49.00/50.00/55.00"));
    QCOMPARE(plain(a.library), QStringLiteral("0.00/50.00/0.00"));
    QCOMPARE(plain(a.countySpecial), QStringLiteral("0.00/50.00/0.00"));
    QCOMPARE(plain(a.twp), QStringLiteral("49.00/50.00/55.00"));
    QCOMPARE(plain(a.special[1]), QStringLiteral("0.00/50.00/0.00"));
    QCOMPARE(plain(a.special[2]), QStringLiteral("49.00/50.00/55.00"));
    QCOMPARE(plain(a.school), QStringLiteral("49.00/50.00/55.00"));
    // The school special of zero mill: zero under plain millage for the school...
    QCOMPARE(plain(a.schoolSpecial), QStringLiteral("0.00/50.00/0.00"));
    QCOMPARE(plain(a.exclusion.excFace), QStringLiteral("1.00/2.00/3.00"));
    QCOMPARE(plain(a.installments.penPayment), QStringLiteral("0.00/5.00/6.00"));
    // ...but from its face when the school is on the formula, whatever its own flag says.
    rates.school.formula = true;
    RecomputeDiscountPenalty(a, rates, {true, false, true});
    QCOMPARE(plain(a.schoolSpecial), QStringLiteral("49.00/50.00/55.00"));
    // The collector's face counts under plain millage only.
    RecomputeDiscountPenalty(a, rates, {true, false, true}, M("100"));
    QCOMPARE(plain(a.school), QStringLiteral("49.00/50.00/55.00"));
    rates.school.formula = false;
    RecomputeDiscountPenalty(a, rates, {true, false, true}, M("100"));
    QCOMPARE(plain(a.school), QStringLiteral("48.00/50.00/60.00"));
    // A plain school of zero mill has zero discount and penalty.
    rates.school.mill = 0;
    RecomputeDiscountPenalty(a, rates, {true, false, true});
    QCOMPARE(plain(a.school), QStringLiteral("0.00/50.00/0.00"));
}

void TestBillComputation::ratesFromMillfile() {
    TempTaxDatabase t;
    QVERIFY(t.exec("INSERT INTO Millfile (District, Ward, SMR, S1MR, SD, SP) "
                   "VALUES ('00', '0', 5.5, 0.75, 2.5, 9.6)"));
    QVERIFY(t.exec("INSERT INTO Millfile (District, Ward, SMR, S1MR, SD, SP, TMR, LMR, TD, TP, "
                   "SchoolFormula, SchoolMarketRatio, SchoolStebRatio, School1Formula) "
                   "VALUES ('12', '3', 18.5, 1.25, 1.5, 10.5, 1.5, 0.25, 2.5, 9.5, 'Y', 0.6, "
                   "0.5, 'N')"));
    QSqlQuery q(t.db());
    QVERIFY(q.exec("SELECT * FROM Millfile ORDER BY District"));
    QVERIFY(q.next());
    const QSqlRecord county = q.record();
    QVERIFY(q.next());
    const RealEstateRates r = RealEstateRatesFromMillfile(county, q.record(), {0.5, 0, 0});
    // Mills: county, county special, library, township, special 1, school, school special; then
    // the percentages, the county's in whole percent and the others as stored; then the
    // school's formula and ratios and the school special's formula.
    QList<double> read;
    read << r.countyMill << r.countySpecialMill << r.libraryMill << r.twpMill << r.specialMill[0]
         << r.school.mill << r.schoolSpecial.mill << r.countyDiscountPct << r.countyPenaltyPct
         << r.twpDiscountPct << r.twpPenaltyPct << r.schoolDiscountPct << r.schoolPenaltyPct
         << r.school.formula << r.school.marketRatio << r.school.stebRatio
         << r.schoolSpecial.formula;
    QCOMPARE(read, (QList<double>{5.5, 0.75, 0.25, 1.5, 0.5, 18.5, 1.25, 2, 10, 2.5, 9.5, 1.5, 10.5,
                                  1, 0.6, 0.5, 0}));
}

QTEST_GUILESS_MAIN(TestBillComputation)
#include "test_bill_computation.moc"
