#include "desk/realestate/payment_rules.h"
#include "support/test_support.h"

#include <QTest>

namespace {

Money M(const char* text) {
    return Money::parse(QString::fromLatin1(text)).value();
}

QString plain(const AmountTriple& t) {
    return t.discount.toPlain() + u'/' + t.face.toPlain() + u'/' + t.penalty.toPlain();
}

QString plain(const std::array<Money, 3>& a) {
    return a[0].toPlain() + u'/' + a[1].toPlain() + u'/' + a[2].toPlain();
}

SchoolRate plainMillage(double mill) {
    return {mill, false, 0, 0};
}

} // namespace

class TestPaymentRulesAmounts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void millageFace_data();
    void millageFace();
    void discountAndPenalty_data();
    void discountAndPenalty();
    void schoolFace_data();
    void schoolFace();
    void schoolFormulaFlag_data();
    void schoolFormulaFlag();
    void act1Exclusion_data();
    void act1Exclusion();
    void schoolLineAfterExclusion_data();
    void schoolLineAfterExclusion();
    void act1Flags();
    void installments_data();
    void installments();
    void installmentsAlwaysAddUp();
    void wholeBill();
};

void TestPaymentRulesAmounts::millageFace_data() {
    QTest::addColumn<qint64>("land");
    QTest::addColumn<qint64>("impr");
    QTest::addColumn<double>("mill");
    QTest::addColumn<QString>("face");
    QTest::addColumn<QString>("sumRoundedOnce");

    // Rounding land and improvements apart gains a cent over rounding their sum.
    AddRow("parts round up apart", qint64(10001), qint64(20003), 5.55, "166.53", "166.52");
    AddRow("two halves", qint64(1050), qint64(1050), 0.5, "1.06", "1.05");
    AddRow("no difference", qint64(12345), qint64(67890), 4.174, "334.90", "334.90");
}

void TestPaymentRulesAmounts::millageFace() {
    QFETCH(qint64, land);
    QFETCH(qint64, impr);
    QFETCH(double, mill);
    QFETCH(QString, face);
    QFETCH(QString, sumRoundedOnce);

    QCOMPARE(MillageFace(land, impr, mill).toPlain(), face);
    // The school rule rounds once on the sum; the same assessment shows the difference.
    QCOMPARE(SchoolFace(land + impr, plainMillage(mill)).toPlain(), sumRoundedOnce);
}

void TestPaymentRulesAmounts::discountAndPenalty_data() {
    QTest::addColumn<QString>("face");
    QTest::addColumn<double>("discountPct");
    QTest::addColumn<double>("penaltyPct");
    QTest::addColumn<QString>("triple");

    AddRow("discount rounds up", "166.53", 2.0, 10.0, "163.20/166.53/183.18");
    AddRow("penalty rounds down", "334.90", 2.0, 10.0, "328.20/334.90/368.39");
    AddRow("quarter", "0.25", 2.0, 10.0, "0.25/0.25/0.28");
    AddRow("fractional rates", "1000.00", 1.5, 5.25, "985.00/1000.00/1052.50");
    AddRow("zero rates", "123.45", 0.0, 0.0, "123.45/123.45/123.45");
}

void TestPaymentRulesAmounts::discountAndPenalty() {
    QFETCH(QString, face);
    QFETCH(double, discountPct);
    QFETCH(double, penaltyPct);
    QFETCH(QString, triple);

    const Money f = M(face.toLatin1().constData());
    QCOMPARE(plain(TripleFromFace(f, discountPct, penaltyPct)), triple);
    QCOMPARE(DiscountAmount(f, discountPct).toPlain(), triple.section(u'/', 0, 0));
    QCOMPARE(PenaltyAmount(f, penaltyPct).toPlain(), triple.section(u'/', 2, 2));
}

void TestPaymentRulesAmounts::schoolFace_data() {
    QTest::addColumn<qint64>("value");
    QTest::addColumn<bool>("formula");
    QTest::addColumn<double>("mill");
    QTest::addColumn<double>("market");
    QTest::addColumn<double>("steb");
    QTest::addColumn<QString>("face");

    AddRow("millage on the sum", qint64(30004), false, 18.5, 0.0, 0.0, "555.07");
    AddRow("millage ignores the ratios", qint64(30004), false, 18.5, 0.6, 0.5, "555.07");
    AddRow("formula", qint64(30004), true, 18.5, 0.6, 0.5, "666.09");
    AddRow("formula steb zero", qint64(30004), true, 18.5, 0.6, 0.0, "0.00");
    AddRow("formula steb negative", qint64(30004), true, 18.5, 0.6, -1.0, "0.00");
}

void TestPaymentRulesAmounts::schoolFace() {
    QFETCH(qint64, value);
    QFETCH(bool, formula);
    QFETCH(double, mill);
    QFETCH(double, market);
    QFETCH(double, steb);
    QFETCH(QString, face);

    const SchoolRate rate{mill, formula, market, steb};
    QCOMPARE(SchoolFace(value, rate).toPlain(), face);
    QCOMPARE(SchoolFace(Money::fromDollars(value), rate).toPlain(), face);
}

void TestPaymentRulesAmounts::schoolFormulaFlag_data() {
    QTest::addColumn<QString>("flag");
    QTest::addColumn<bool>("formula");

    AddRow("N", "N", false);
    AddRow("N padded", "N ", false);
    AddRow("Y", "Y", true);
    // Only "N" means plain millage: a blank or lower-case flag takes the formula.
    AddRow("blank", " ", true);
    AddRow("empty", "", true);
    AddRow("lower n", "n", true);
}

void TestPaymentRulesAmounts::schoolFormulaFlag() {
    QFETCH(QString, flag);
    QFETCH(bool, formula);
    QCOMPARE(UsesSchoolFormula(flag), formula);
}

void TestPaymentRulesAmounts::act1Exclusion_data() {
    QTest::addColumn<QString>("asked"); // land/improvements/homestead/farmstead
    QTest::addColumn<double>("mill");
    QTest::addColumn<QString>("expected"); // homestead/farmstead excluded, then the exclusion

    // 647.50 goes to the even dollar 648 for its discount and penalty. The cut to the
    // assessment goes through the adjustment's computation (test_bill_computation).
    AddRow("within the assessment", "20000/60000/30000/5000", 18.5,
           "30000.00/5000.00 635.04/647.50/712.80");
    AddRow("half dollar up to even", "5000/20000/10000/0", 12.35,
           "10000.00/0.00 121.52/123.50/136.40");
    AddRow("half dollar down to even", "5000/20000/10000/0", 12.25,
           "10000.00/0.00 119.56/122.50/134.20");
    AddRow("zero school rate", "5000/20000/10000/2000", 0.0, "10000.00/2000.00 0.00/0.00/0.00");
}

void TestPaymentRulesAmounts::act1Exclusion() {
    QFETCH(QString, asked);
    QFETCH(double, mill);
    QFETCH(QString, expected);
    const QStringList a = asked.split(u'/');
    const Act1Exclusion e =
        ComputeAct1Exclusion(a[0].toLongLong(), a[1].toLongLong(), *Money::parse(a[2]),
                             *Money::parse(a[3]), plainMillage(mill), 2, 10);
    QCOMPARE(e.homestead.toPlain() + u'/' + e.farmstead.toPlain() + u' ' + plain(e.excFace),
             expected);
}

void TestPaymentRulesAmounts::schoolLineAfterExclusion_data() {
    QTest::addColumn<bool>("formula");
    QTest::addColumn<double>("mill");
    QTest::addColumn<bool>("shareOnGross");
    QTest::addColumn<QString>("school");

    // Gross 1480.00, exclusion 647.50, net 832.50.
    AddRow("on the net face", false, 18.5, false, "815.85/832.50/915.75");
    AddRow("share of the gross face", false, 18.5, true, "802.90/832.50/980.50");
    // Under the formula the collector's face plays no part.
    AddRow("formula ignores the share", true, 18.5, true, "815.85/832.50/915.75");
    AddRow("plain zero mill", false, 0.0, false, "0.00/832.50/0.00");
}

void TestPaymentRulesAmounts::schoolLineAfterExclusion() {
    QFETCH(bool, formula);
    QFETCH(double, mill);
    QFETCH(bool, shareOnGross);
    QFETCH(QString, school);

    const SchoolRate rate{mill, formula, 0.5, 0.5};
    const Money gross = M("1480.00");
    const AmountTriple line = SchoolLine(gross, M("647.50"), rate, 2, 10,
                                         shareOnGross ? std::optional<Money>(gross) : std::nullopt);
    QCOMPARE(plain(line), school);
}

void TestPaymentRulesAmounts::act1Flags() {
    // Set when approved and not zero.
    QCOMPARE(HomesteadFlag(true, M("1")) + FarmsteadFlag(true, M("1")) +
                 HomesteadFlag(true, Money()) + FarmsteadFlag(true, Money()) +
                 HomesteadFlag(false, M("30000")) + FarmsteadFlag(false, M("30000")),
             QStringLiteral("HF    "));
}

void TestPaymentRulesAmounts::installments_data() {
    QTest::addColumn<QString>("total");
    QTest::addColumn<QString>("payments");
    QTest::addColumn<QString>("penalties");

    // The cent steps of every total are installmentsAlwaysAddUp's; here the penalty forms.
    AddRow("100.01", "100.01", "33.34/33.34/33.33", "0.00/36.67/36.66");
    AddRow("100.02", "100.02", "33.34/33.34/33.34", "0.00/36.67/36.67");
    AddRow("zero", "0.00", "0.00/0.00/0.00", "0.00/0.00/0.00");
}

void TestPaymentRulesAmounts::installments() {
    QFETCH(QString, total);
    QFETCH(QString, payments);
    QFETCH(QString, penalties);

    const Installments split = SplitSchoolInstallments(M(total.toLatin1().constData()), 10);
    QCOMPARE(plain(split.payment), payments);
    QCOMPARE(plain(split.penPayment), penalties);
    QCOMPARE(split.offered(), total != QLatin1String("0.00"));
}

// Int(T / 3 * 100) is taken on a double; at a whole third it can land a cent low, and the
// three cent steps must still bring the sum to T.
void TestPaymentRulesAmounts::installmentsAlwaysAddUp() {
    for (std::int64_t cents = 0; cents <= 300000; ++cents) {
        const Money total = Money::fromCents(cents);
        const Installments split = SplitSchoolInstallments(total, 10);
        if (split.total() != total || split.payment[0] < split.payment[1] ||
            split.payment[1] < split.payment[2] ||
            split.payment[0] - split.payment[2] > Money::fromCents(1))
            QFAIL(qPrintable(
                QStringLiteral("%1 splits into %2").arg(total.toPlain(), plain(split.payment))));
    }
}

void TestPaymentRulesAmounts::wholeBill() {
    RealEstateRates rates;
    rates.countyMill = 4.174;
    rates.libraryMill = 0.25;
    rates.countyDiscountPct = 2;
    rates.countyPenaltyPct = 10;
    rates.twpMill = 1.5;
    rates.specialMill = {0.5, 0, 0};
    rates.twpDiscountPct = 2;
    rates.twpPenaltyPct = 10;
    rates.school = plainMillage(18.5);
    rates.schoolSpecial = plainMillage(0.75);
    rates.schoolDiscountPct = 2;
    rates.schoolPenaltyPct = 10;

    BillChoices choices;
    choices.act1 = true;
    choices.homestead = M("30000");
    choices.installments = true;

    const RealEstateAmounts a = ComputeRealEstateAmounts(20000, 60000, rates, choices);
    QCOMPARE(plain(a.county), QStringLiteral("327.24/333.92/367.31"));
    QCOMPARE(plain(a.library), QStringLiteral("19.60/20.00/22.00"));
    QCOMPARE(plain(a.twp), QStringLiteral("117.60/120.00/132.00"));
    QCOMPARE(plain(a.special[0]), QStringLiteral("39.20/40.00/44.00"));
    // 1480.00 gross less 555.00 for 30000 excluded.
    QCOMPARE(plain(a.exclusion.excFace), QStringLiteral("543.90/555.00/610.50"));
    QCOMPARE(plain(a.school), QStringLiteral("906.50/925.00/1017.50"));
    QCOMPARE(plain(a.schoolSpecial), QStringLiteral("58.80/60.00/66.00"));
    // Installments split the net school total with its special: 985.00.
    QCOMPARE(plain(a.installments.payment), QStringLiteral("328.34/328.33/328.33"));
    QCOMPARE(plain(a.installments.penPayment), QStringLiteral("0.00/361.16/361.16"));
    QCOMPARE(a.homesteadFlag, QStringLiteral("H"));
    QCOMPARE(a.farmsteadFlag, QStringLiteral(" "));
    QCOMPARE(a.schoolFace().toPlain(), QStringLiteral("985.00"));

    // Without the approval the asked exclusion is not taken, and no installments unless asked.
    const RealEstateAmounts plainBill = ComputeRealEstateAmounts(20000, 60000, rates);
    QCOMPARE(plain(plainBill.school), QStringLiteral("1450.40/1480.00/1628.00"));
    QCOMPARE(plainBill.exclusion, Act1Exclusion{});
    QCOMPARE(plainBill.installments, Installments{});
    QCOMPARE(plainBill.homesteadFlag, QStringLiteral(" "));
}

QTEST_GUILESS_MAIN(TestPaymentRulesAmounts)
#include "test_payment_rules_amounts.moc"
