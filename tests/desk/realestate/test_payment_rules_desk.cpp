#include "desk/realestate/payment_rules.h"
#include "support/test_support.h"

#include "core/tax_database.h"

#include <QSqlQuery>
#include <QTest>

namespace {

Money M(const char* text) {
    return Money::parse(QString::fromLatin1(text)).value();
}

QDate D(const char* iso) {
    return QDate::fromString(QString::fromLatin1(iso), Qt::ISODate);
}

// A bill whose every line has distinct amounts: face 100 + 10 * line, discount 2% less,
// penalty 10% more, so a wrong column shows at once.
BillLines sampleBill() {
    BillLines b;
    for (int i = 0; i < TaxLineCount; ++i) {
        const Money face = Money::fromDollars(100 + 10 * i);
        b.line[i] = {face - Money::fromDollars(2), face, face + Money::fromDollars(10)};
    }
    return b;
}

// Installments of 33.34/33.33/33.33, penalty forms 36.66 and 36.66, due 06-30, 08-31, 10-31.
Installments sampleInstallments() {
    Installments i;
    i.payment = {M("33.34"), M("33.33"), M("33.33")};
    i.penPayment = {Money(), M("36.66"), M("36.66")};
    return i;
}

const std::array<QDate, 3> InstallmentDates{D("2013-06-30"), D("2013-08-31"), D("2013-10-31")};

std::array<QString, 3> flags(const char* three) {
    std::array<QString, 3> out;
    for (int i = 0; i < 3; ++i)
        out[i] = QString(QLatin1Char(three[i]));
    return out;
}

PaidReceipt receipt(const char* recnum, const char* payor, const char* check, const char* date) {
    PaidReceipt r;
    r.recnum = QString::fromLatin1(recnum);
    r.payor = QString::fromLatin1(payor);
    r.checknum = QString::fromLatin1(check);
    r.rdate = D(date);
    return r;
}

} // namespace

class TestPaymentRulesDesk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void periodForDate_data();
    void periodForDate();
    void bodiesInDifferentFrames();
    void calendarFromMillfile();
    void amountsOfPeriod_data();
    void amountsOfPeriod();
    void municipalFlags_data();
    void municipalFlags();
    void installmentRule_data();
    void installmentRule();
    void installmentBoxes_data();
    void installmentBoxes();
    void amountOffered_data();
    void amountOffered();
    void totalDue();
    void paymentAgainstTotal_data();
    void paymentAgainstTotal();
    void paymentInfoRealEstate();
    void paymentInfoExoneratedAndEmpty();
    void paymentInfoPerCapitaQuirks();
    void paymentInfoFromDatabase();
};

// ---------------------------------------------------------------------------------------------

void TestPaymentRulesDesk::periodForDate_data() {
    QTest::addColumn<QDate>("credited");
    QTest::addColumn<QDate>("disc");
    QTest::addColumn<QDate>("pen");
    QTest::addColumn<QString>("period");

    const QDate disc = D("2013-04-30");
    const QDate pen = D("2013-07-01");
    AddRow("last day of discount", disc, disc, pen, "D");
    AddRow("day after discount", D("2013-05-01"), disc, pen, "F");
    AddRow("day before penalty", D("2013-06-30"), disc, pen, "F");
    AddRow("first day of penalty", pen, disc, pen, "P");
    // With the penalty the day after the discount there is no face period at all.
    AddRow("no face: last discount day", disc, disc, disc.addDays(1), "D");
    AddRow("no face: next day", disc.addDays(1), disc, disc.addDays(1), "P");
    AddRow("no discount date", D("2013-01-01"), QDate(), pen, "F");
    AddRow("no penalty date", D("2014-01-01"), disc, QDate(), "F");
}

void TestPaymentRulesDesk::periodForDate() {
    QFETCH(QDate, credited);
    QFETCH(QDate, disc);
    QFETCH(QDate, pen);
    QFETCH(QString, period);
    const QChar letter = PeriodForDate(credited, {disc, pen});
    QCOMPARE(QString(letter), period);
    const QString label = period == u"D" ? "DISCOUNT" : period == u"F" ? "FACE" : "PENALTY";
    QCOMPARE(PeriodLabel(letter), label);
}

void TestPaymentRulesDesk::bodiesInDifferentFrames() {
    PaymentCalendar c;
    c.early = {D("2013-04-30"), D("2013-07-01")};
    c.late = {D("2013-09-30"), D("2013-12-01")};
    c.countyEarly = true;
    c.twpEarly = false;
    c.schoolEarly = true;

    // Early at face while late at discount: the desk scenarios' office. Early penalty, late
    // discount:
    PaymentPeriods p = PeriodsForDate(c, D("2013-08-01"));
    QCOMPARE(p.county, QChar(u'P'));
    QCOMPARE(p.twp, QChar(u'D'));
    // County at discount, school at face on one date.
    c.schoolEarly = false;
    c.late = {D("2013-03-31"), D("2013-12-01")};
    p = PeriodsForDate(c, D("2013-04-15"));
    QCOMPARE(p.county, QChar(u'D'));
    QCOMPARE(p.school, QChar(u'F'));
}

void TestPaymentRulesDesk::calendarFromMillfile() {
    TempTaxDatabase t;
    QVERIFY(t.exec("INSERT INTO Millfile (District, Ward, BillCounty, BillTwp, BillSchool, "
                   "DiscDate, PenDate, LateDiscDate, LatePenDate, Payment1Date, "
                   "LatePayment1Date, LatePayment2Date, LatePayment3Date, Tolerance) VALUES "
                   "('12', '3', 'E', 'L', ' ', '2013-04-30', '2013-07-01', '2013-09-30', "
                   "'2013-12-01', '2013-01-01', '2013-06-30', '2013-08-31', '2013-10-31', 25000)"));
    QSqlQuery q(t.db());
    QVERIFY(q.exec("SELECT * FROM Millfile") && q.next());
    const PaymentCalendar c = PaymentCalendarFromMillfile(q.record());
    QVERIFY(c.countyEarly);
    QVERIFY(!c.twpEarly);
    QVERIFY(!c.schoolEarly); // anything but E is late
    // The dates of each frame and the late installment dates: the desk scenarios' office.
    QCOMPARE(c.tolerance, M("2.50"));
}

// ---------------------------------------------------------------------------------------------

void TestPaymentRulesDesk::amountsOfPeriod_data() {
    QTest::addColumn<QString>("periods"); // county, twp, school
    QTest::addColumn<QString>("totals");  // county|twp|school

    // Faces: county 100+110+120, twp 130+140+150+160, school 170+180.
    AddRow("all face", "FFF", "330.00|580.00|350.00");
    AddRow("one each", "DFP", "324.00|580.00|370.00");
    AddRow("one each, the other way", "PDF", "360.00|572.00|350.00");
}

void TestPaymentRulesDesk::amountsOfPeriod() {
    QFETCH(QString, periods);
    QFETCH(QString, totals);
    const PaymentPeriods p{periods[0], periods[1], periods[2]};
    const PeriodAmounts a = AmountsForPeriods(sampleBill(), p);
    QCOMPARE(a.countyTotal().toPlain() + u'|' + a.twpTotal().toPlain() + u'|' +
                 a.schoolTotal().toPlain(),
             totals);
    QCOMPARE(a.total(), a.countyTotal() + a.twpTotal() + a.schoolTotal());

    // Every line: the face as billed, the one difference of its period, and the amount equal
    // to face plus differences (what a receipt adds up to).
    for (int i = 0; i < TaxLineCount; ++i) {
        const LineTake& l = a.line[i];
        const QChar period = BodyOfLine(i) == TaxBody::County ? p.county
                             : BodyOfLine(i) == TaxBody::Twp  ? p.twp
                                                              : p.school;
        QCOMPARE(l.face, Money::fromDollars(100 + 10 * i));
        QCOMPARE(l.discountDiff, period == u'D' ? Money::fromDollars(-2) : Money());
        QCOMPARE(l.penaltyDiff, period == u'P' ? Money::fromDollars(10) : Money());
        QCOMPARE(l.amount, l.face + l.discountDiff + l.penaltyDiff);
    }
}

void TestPaymentRulesDesk::municipalFlags_data() {
    QTest::addColumn<bool>("split");
    QTest::addColumn<int>("choice");
    QTest::addColumn<QString>("before");
    // TPayFlag, TwpPaidFlag, StLtPaidFlag ("-" not written), then StLtFlag.
    QTest::addColumn<QString>("flags");

    const int all = int(StreetLightChoice::All);
    const int twp = int(StreetLightChoice::TwpOnly);
    // Each part alone (and the amounts each choice offers), before or after the other, "All"
    // after the township part, and the school-only payment are desk_street_lights.scn's.
    AddRow("all", true, all, " ", "DDD ");
    AddRow("no split", false, twp, "T", "D   ");
}

void TestPaymentRulesDesk::municipalFlags() {
    QFETCH(bool, split);
    QFETCH(int, choice);
    QFETCH(QString, before);
    QFETCH(QString, flags);
    const MunicipalPayFlags f =
        MunicipalFlagsForPayment(true, split, StreetLightChoice(choice), before, u'D');
    auto shown = [](const std::optional<QString>& v) { return v ? *v : QStringLiteral("-"); };
    QCOMPARE(shown(f.tPayFlag) + shown(f.twpPaidFlag) + shown(f.stLtPaidFlag) + f.stLtFlag, flags);
}

// ---------------------------------------------------------------------------------------------

void TestPaymentRulesDesk::installmentRule_data() {
    QTest::addColumn<QString>("payFlags");
    QTest::addColumn<QDate>("credited");
    // Per installment: amount, code ("-" none), label ("-" none).
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QString>("nextLabel");
    QTest::addColumn<QDate>("nextDate");

    AddRow("all unpaid, on the first date", "   ", D("2013-06-30"),
           QStringList{"33.34 F FACE", "33.33 F FACE", "33.33 F FACE"}, "FACE", D("2013-06-30"));
    AddRow("first past its date", "   ", D("2013-07-01"),
           QStringList{"33.34 - PAST DATE!", "33.33 F FACE", "33.33 F FACE"}, "PAST DATE!",
           D("2013-06-30"));
    AddRow("first paid, second on its date", "F  ", D("2013-08-31"),
           QStringList{"33.34 F -", "33.33 F FACE", "33.33 F FACE"}, "FACE", D("2013-08-31"));
    AddRow("first paid, second past its date", "F  ", D("2013-09-01"),
           QStringList{"33.34 F -", "36.66 P PENALTY", "33.33 F FACE"}, "PENALTY", D("2013-08-31"));
    AddRow("second paid at penalty, third late", "FP ", D("2013-11-01"),
           QStringList{"33.34 F -", "36.66 P -", "36.66 P PENALTY"}, "PENALTY", D("2013-10-31"));
    AddRow("all paid", "FFP", D("2013-12-01"), QStringList{"33.34 F -", "33.33 F -", "36.66 P -"},
           "PAID IN FULL", QDate());
}

void TestPaymentRulesDesk::installmentRule() {
    QFETCH(QString, payFlags);
    QFETCH(QDate, credited);
    QFETCH(QStringList, expected);
    QFETCH(QString, nextLabel);
    QFETCH(QDate, nextDate);

    const InstallmentView v = InstallmentsForDate(
        sampleInstallments(), flags(payFlags.toLatin1().constData()), InstallmentDates, credited);
    for (int n = 0; n < 3; ++n) {
        const InstallmentLine& l = v.line[n];
        const QString seen = l.amount.toPlain() + u' ' +
                             (l.code.isNull() ? QStringLiteral("-") : QString(l.code)) + u' ' +
                             (l.label.isEmpty() ? QStringLiteral("-") : l.label);
        QCOMPARE(seen, expected[n]);
        QCOMPARE(l.paid, payFlags[n] != u' ');
        QCOMPARE(l.face, sampleInstallments().payment[n]);
        // A receipt's PenPaymentN: penalty minus face when taken at penalty.
        QCOMPARE(l.penaltyDiff, l.code == u'P' ? M("3.33") : Money());
    }
    QCOMPARE(v.periodLabel, nextLabel);
    QCOMPARE(v.nextDate, nextDate);
}

void TestPaymentRulesDesk::installmentBoxes_data() {
    QTest::addColumn<QString>("payFlags");
    QTest::addColumn<QDate>("credited");
    QTest::addColumn<QString>("ticks"); // before > after = as ruled, each as "101"

    const QDate early = D("2013-06-01");
    // The first alone, the third with the second, the first and the school going off:
    // desk_installments.scn.
    AddRow("second needs the first", "   ", early, "000>010=000");
    AddRow("second off takes the third", "   ", early, "111>101=100");
    AddRow("first paid: second alone", "F  ", early, "000>010=010");
    AddRow("first paid: third needs second", "F  ", early, "000>001=000");
    AddRow("paid box goes off", "F  ", early, "000>110=010");
    AddRow("first past its date", "   ", D("2013-07-15"), "000>110=000");
}

void TestPaymentRulesDesk::installmentBoxes() {
    QFETCH(QString, payFlags);
    QFETCH(QDate, credited);
    QFETCH(QString, ticks);
    auto read = [&ticks](int at) {
        return std::array<bool, 3>{ticks[at] == u'1', ticks[at + 1] == u'1', ticks[at + 2] == u'1'};
    };
    const InstallmentView v = InstallmentsForDate(
        sampleInstallments(), flags(payFlags.toLatin1().constData()), InstallmentDates, credited);
    const std::array<bool, 3> r = ApplyInstallmentBoxRules(read(0), read(4), true, v);
    QCOMPARE(QString("%1%2%3").arg(int(r[0])).arg(int(r[1])).arg(int(r[2])), ticks.mid(8));
}

// ---------------------------------------------------------------------------------------------

void TestPaymentRulesDesk::amountOffered_data() {
    QTest::addColumn<QString>("boxes");     // county, twp, school ticked
    QTest::addColumn<QString>("billFlags"); // C, T, S
    QTest::addColumn<QString>("payFlags");
    QTest::addColumn<QString>("offered"); // the amount, then the installments ticked after

    // At face: county 330, twp 580, school 350; installments 33.34/33.33/33.33 (on time).
    // Everything, the county alone, ticked installments and the next one offered by itself:
    // desk_full_payment.scn, desk_county_then_rest.scn and desk_installments.scn.
    AddRow("county paid offers nothing", "100", "F  ", "   ", "0.00 000");
    AddRow("third by itself", "011", "  I", "FF ", "613.33 001");
    AddRow("paying by installments, none paid", "001", "  I", "   ", "350.00 000");
}

void TestPaymentRulesDesk::amountOffered() {
    QFETCH(QString, boxes);
    QFETCH(QString, billFlags);
    QFETCH(QString, payFlags);
    QFETCH(QString, offered);
    PaymentSelection sel;
    sel.county = boxes[0] == u'1';
    sel.twp = boxes[1] == u'1';
    sel.school = boxes[2] == u'1';
    const PeriodAmounts a = AmountsForPeriods(sampleBill(), {u'F', u'F', u'F'});
    const InstallmentView v =
        InstallmentsForDate(sampleInstallments(), flags(payFlags.toLatin1().constData()),
                            InstallmentDates, D("2013-06-01"));
    const AmountOffer o =
        AmountOffered(sel, billFlags.mid(0, 1), billFlags.mid(1, 1), billFlags.mid(2, 1), a, v);
    QCOMPARE(QStringLiteral("%1 %2%3%4")
                 .arg(o.amount.toPlain())
                 .arg(int(o.installment[0]))
                 .arg(int(o.installment[1]))
                 .arg(int(o.installment[2])),
             offered);
}

void TestPaymentRulesDesk::totalDue() {
    const PeriodAmounts a = AmountsForPeriods(sampleBill(), {u'D', u'F', u'P'});
    const InstallmentView late =
        InstallmentsForDate(sampleInstallments(), flags("F  "), InstallmentDates, D("2013-09-15"));
    PaymentSelection sel;
    sel.county = true;
    sel.school = true;
    QCOMPARE(TotalDue(sel, a, late).toPlain(), QStringLiteral("694.00")); // 324 + 370
    // With installments ticked the school part is the ticked ones, penalty form included.
    sel.installment = {false, true, true};
    QCOMPARE(TotalDue(sel, a, late).toPlain(), QStringLiteral("393.99")); // 324 + 36.66 + 33.33
    sel = {};
    QCOMPARE(TotalDue(sel, a, late), Money());
}

void TestPaymentRulesDesk::paymentAgainstTotal_data() {
    QTest::addColumn<QString>("amount");
    QTest::addColumn<QString>("tolerance");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("expected"); // title|text|overage|refund

    using K = PaymentCheck::Kind;
    // The total due is 1,250.00 throughout. Overage, underage and refund well inside or outside
    // the tolerance, and one cent short with none, are the desk scenarios'.
    AddRow("refund with thousands", "2500.01", "0", int(K::Refund),
           "Apply Refund|Do you want to apply a refund of $1,250.01 ?|0.00|1250.01");
    AddRow("overage at the tolerance", "1252.00", "2.00", int(K::Overage),
           "Apply Overage|Do you want to apply an overage of  $2.00 ?|2.00|0.00");
    AddRow("exact", "1250.00", "0", int(K::Exact), "||0.00|0.00");
    AddRow("underage at the tolerance", "1248.00", "2.00", int(K::Underage),
           "Apply Overage|Do you want to apply an underage of  -$2.00 ?|-2.00|0.00");
    AddRow("short beyond tolerance", "1247.99", "2.00", int(K::Refused),
           "Receive Payment|Payment must be within $2.00 of total due.|0.00|0.00");
    AddRow("one cent over, no tolerance", "1250.01", "0", int(K::Refund),
           "Apply Refund|Do you want to apply a refund of $0.01 ?|0.00|0.01");
    AddRow("large tolerance shown in two digits", "1100.00", "25.00", int(K::Refused),
           "Receive Payment|Payment must be within $25.00 of total due.|0.00|0.00");
}

void TestPaymentRulesDesk::paymentAgainstTotal() {
    QFETCH(QString, amount);
    QFETCH(QString, tolerance);
    QFETCH(int, kind);
    QFETCH(QString, expected);
    const PaymentCheck c =
        CheckPaymentAgainstTotal(*Money::parse(amount), M("1250.00"), *Money::parse(tolerance));
    QCOMPARE(int(c.kind), kind);
    QCOMPARE(QStringList({c.title, c.text, c.overage.toPlain(), c.refund.toPlain()}).join(u'|'),
             expected);
    QCOMPARE(c.asks(), kind == int(PaymentCheck::Kind::Refund) ||
                           kind == int(PaymentCheck::Kind::Overage) ||
                           kind == int(PaymentCheck::Kind::Underage));
}

// ---------------------------------------------------------------------------------------------

void TestPaymentRulesDesk::paymentInfoRealEstate() {
    BillPayFlags bill;
    bill.cPayFlag = "D";
    bill.tPayFlag = "F";
    bill.sPayFlag = "P";

    // The county on two receipts (a later one wins), the rest on one.
    PaidReceipt first = receipt("201304150001", "JOHN DOE", "101", "2013-04-15");
    first.cPayFlag = "D";
    first.countyAmount = M("99.00");
    PaidReceipt second = receipt("201308010007", "MARY DOE", "CASH", "2013-08-01");
    second.cPayFlag = "D";
    second.tPayFlag = "F";
    second.sPayFlag = "P";
    second.countyAmount = M("294.00");
    second.twpAmount = M("1580.00");
    second.schoolAmount = M("1234.56");

    // A block's lines are the desk scenarios'; here the later receipt, the borough, thousands.
    const QString text = RealEstatePaymentInfoText(bill, u"B", {first, second});
    QVERIFY(text.startsWith("The COUNTY portion of this bill has been paid in full at DISCOUNT.\n"
                            "          Paid By: MARY DOE\n"));
    QVERIFY(text.contains("The BOROUGH portion of this bill has been paid in full at FACE."));
    QVERIFY(text.contains("Date Credited: 08/01/2013 - Amount Paid: $1,580.00\n"));
    QVERIFY(text.contains("The SCHOOL portion of this bill has been paid in full at PENALTY."));
    QVERIFY(text.endsWith("\n\nTOTAL PAID: $3,108.56"));
}

void TestPaymentRulesDesk::paymentInfoExoneratedAndEmpty() {
    BillPayFlags bill;
    QCOMPARE(RealEstatePaymentInfoText(bill, u"T", {}), QString());
    bill.cPayFlag = "X";
    bill.tPayFlag = "X";
    bill.sPayFlag = "X";
    QCOMPARE(RealEstatePaymentInfoText(bill, u"T", {}),
             QStringLiteral("The COUNTY portion of this bill has been exonerated.\n\n"
                            "The TOWNSHIP portion of this bill has been exonerated.\n\n"
                            "The SCHOOL portion of this bill has been exonerated.\n\n"
                            "TOTAL PAID: $.00"));
}

void TestPaymentRulesDesk::paymentInfoPerCapitaQuirks() {
    BillPayFlags bill;
    bill.tPayFlag = "F";
    bill.sPayFlag = "F";
    PaidReceipt r = receipt("201305050003", "PAT ROE", "77", "2013-05-05");
    r.tPayFlag = "F";
    r.sPayFlag = "F";
    r.twpAmount = M("10.00");
    r.schoolAmount = M("5.00");
    // A later receipt that paid nothing of these bodies is passed over.
    PaidReceipt later = receipt("201306060004", "NOBODY", "78", "2013-06-06");
    later.cPayFlag = "F";
    const QString text = PerCapitaPaymentInfoText(bill, u"T", {r, later});
    // The school block at face glues the check number on; the municipal one does not.
    QVERIFY(text.contains("Receipt #: 201305050003 - Check #:77\n"));
    QVERIFY(text.contains("Receipt #: 201305050003 - Check #: 77\n"));
    QVERIFY(text.endsWith("TOTAL PAID: $15.00"));
    // At penalty the school block has the blank.
    bill.sPayFlag = "P";
    r.sPayFlag = "P";
    QVERIFY(!PerCapitaPaymentInfoText(bill, u"T", {r}).contains("Check #:77"));
}

void TestPaymentRulesDesk::paymentInfoFromDatabase() {
    TempTaxDatabase t;
    // Two county receipts on bill 7, the later one voided; one on another bill.
    QVERIFY(t.exec("INSERT INTO TCReceipt (BillNo, Recnum, Payor, Checknum, RDate, CPayFlag, "
                   "TPayFlag, SPayFlag, County, DCounty, Library, DLibrary) VALUES "
                   "('    7', '201301020001', 'FIRST', '1', '2013-01-02', 'D', ' ', ' ', "
                   "1000000, -20000, 100000, -2000)"));
    QVERIFY(t.exec("INSERT INTO TCReceipt (BillNo, Recnum, Payor, Checknum, RDate, CPayFlag, "
                   "TPayFlag, SPayFlag, County) VALUES "
                   "('    7', '201301030002', 'VOIDED', '2', '2013-01-03', 'D', ' ', ' ', 1)"));
    QVERIFY(t.exec("INSERT INTO TCVoidReceipt (BillNo, Recnum) VALUES ('    7', '201301030002')"));
    QVERIFY(t.exec("INSERT INTO TCReceipt (BillNo, Recnum, Payor, CPayFlag) VALUES "
                   "('   17', '201301040003', 'OTHER', 'F')"));

    const std::vector<PaidReceipt> re = ReadRealEstatePaidReceipts(t.db(), "    7");
    QCOMPARE(re.size(), size_t(1));
    QCOMPARE(re[0].payor, QStringLiteral("FIRST"));
    // The county's three lines with their differences: 100 - 2 + 10 - 0.20.
    QCOMPARE(re[0].countyAmount.toPlain(), QStringLiteral("107.80"));
    BillPayFlags bill;
    bill.cPayFlag = "D";
    QVERIFY(RealEstatePaymentInfoText(bill, u"T", re).contains("Paid By: FIRST"));

    // Per capita reads voided receipts too.
    QVERIFY(t.exec("INSERT INTO PCReceipt (BillNo, Recnum, Payor, CPayFlag, CPerCapita, "
                   "DCPerCapita, COccupation) VALUES ('    3', '201301050004', 'PC ONE', 'D', "
                   "50000, -1000, 20000)"));
    QVERIFY(t.exec("INSERT INTO PCReceipt (BillNo, Recnum, Payor, CPayFlag) VALUES "
                   "('    3', '201301060005', 'PC VOIDED', 'D')"));
    QVERIFY(t.exec("INSERT INTO PCVoidReceipt (BillNo, Recnum) VALUES ('    3', '201301060005')"));
    const std::vector<PaidReceipt> pc = ReadPerCapitaReceipts(t.db(), "    3");
    QCOMPARE(pc.size(), size_t(2));
    QCOMPARE(pc[0].countyAmount.toPlain(), QStringLiteral("6.90"));
    QVERIFY(PerCapitaPaymentInfoText(bill, u"T", pc).contains("Paid By: PC VOIDED"));
}

QTEST_GUILESS_MAIN(TestPaymentRulesDesk)
#include "test_payment_rules_desk.moc"
