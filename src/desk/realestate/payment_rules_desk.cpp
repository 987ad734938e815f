// The money rules of the counter: periods, the amounts of a period, installments, the amount
// offered, the payment against the total due and the payment information text.

#include "desk/realestate/payment_rules.h"

#include "core/common_values.h"
#include "core/tax_database.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>

namespace {

bool isBlank(QStringView flag) {
    return flag.trimmed().isEmpty();
}

QChar letterOf(QStringView flag) {
    const QStringView t = flag.trimmed();
    return t.isEmpty() ? QChar() : t.front();
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Periods
// ---------------------------------------------------------------------------------------------

QChar PeriodForDate(const QDate& credited, const PeriodDates& dates) {
    if (!credited.isValid())
        return QChar(PeriodFace);
    if (dates.discDate.isValid() && credited <= dates.discDate)
        return QChar(PeriodDiscount);
    if (dates.penDate.isValid() && credited >= dates.penDate)
        return QChar(PeriodPenalty);
    return QChar(PeriodFace);
}

QString PeriodLabel(QChar period) {
    switch (period.unicode()) {
    case PeriodDiscount:
        return QStringLiteral("DISCOUNT");
    case PeriodFace:
        return QStringLiteral("FACE");
    case PeriodPenalty:
        return QStringLiteral("PENALTY");
    default:
        return QString();
    }
}

PaymentCalendar PaymentCalendarFromMillfile(const QSqlRecord& row) {
    PaymentCalendar c;
    c.early = {DateField(row.value("DiscDate")), DateField(row.value("PenDate"))};
    c.late = {DateField(row.value("LateDiscDate")), DateField(row.value("LatePenDate"))};
    auto early = [&](const char* column) {
        return TextField(row.value(column)).trimmed() == QLatin1String("E");
    };
    c.countyEarly = early("BillCounty");
    c.twpEarly = early("BillTwp");
    c.schoolEarly = early("BillSchool");
    c.installmentDates = {DateField(row.value("LatePayment1Date")),
                          DateField(row.value("LatePayment2Date")),
                          DateField(row.value("LatePayment3Date"))};
    c.tolerance = MoneyField(row.value("Tolerance"));
    return c;
}

PaymentPeriods PeriodsForDate(const PaymentCalendar& c, const QDate& credited) {
    PaymentPeriods p;
    p.county = PeriodForDate(credited, c.countyEarly ? c.early : c.late);
    p.twp = PeriodForDate(credited, c.twpEarly ? c.early : c.late);
    p.school = PeriodForDate(credited, c.schoolEarly ? c.early : c.late);
    return p;
}

// ---------------------------------------------------------------------------------------------
// Amounts of a period
// ---------------------------------------------------------------------------------------------

namespace {

const char* const LineFaceColumns[TaxLineCount] = {
    "County", "Library", "C1Face", "Twp", "S1Face", "S2Face", "S3Face", "School", "Sch1Face"};

} // namespace

TaxBody BodyOfLine(int line) {
    if (line <= LineCountySpecial)
        return TaxBody::County;
    if (line <= LineSpecial3)
        return TaxBody::Twp;
    return TaxBody::School;
}

QString FaceColumn(int line) {
    return QString::fromLatin1(LineFaceColumns[line]);
}

QString DiscountColumn(int line) {
    return QLatin1Char('D') + FaceColumn(line);
}

QString PenaltyColumn(int line) {
    return QLatin1Char('P') + FaceColumn(line);
}

Money ReceiptLineAmount(const QSqlRecord& receipt, int line) {
    return MoneyField(receipt.value(FaceColumn(line))) +
           MoneyField(receipt.value(DiscountColumn(line))) +
           MoneyField(receipt.value(PenaltyColumn(line)));
}

AmountTriple& LineOf(RealEstateAmounts& a, int line) {
    switch (line) {
    case LineCounty:
        return a.county;
    case LineLibrary:
        return a.library;
    case LineCountySpecial:
        return a.countySpecial;
    case LineTwp:
        return a.twp;
    case LineSpecial1:
    case LineSpecial2:
    case LineSpecial3:
        return a.special[line - LineSpecial1];
    case LineSchool:
        return a.school;
    default:
        return a.schoolSpecial;
    }
}

const AmountTriple& LineOf(const RealEstateAmounts& a, int line) {
    return LineOf(const_cast<RealEstateAmounts&>(a), line);
}

BillLines BillLinesFromRecord(const QSqlRecord& bill) {
    BillLines out;
    for (int i = 0; i < TaxLineCount; ++i)
        out.line[i] = {MoneyField(bill.value(DiscountColumn(i))),
                       MoneyField(bill.value(FaceColumn(i))),
                       MoneyField(bill.value(PenaltyColumn(i)))};
    return out;
}

Installments InstallmentsFromRecord(const QSqlRecord& bill) {
    Installments out;
    for (int i = 0; i < 3; ++i) {
        out.payment[i] = MoneyField(bill.value(QStringLiteral("Payment%1").arg(i + 1)));
        out.penPayment[i] = MoneyField(bill.value(QStringLiteral("PenPayment%1").arg(i + 1)));
    }
    return out;
}

LineTake TakeLine(const AmountTriple& due, QChar period) {
    LineTake t;
    t.face = due.face;
    if (period == QChar(PeriodDiscount)) {
        t.amount = due.discount;
        t.discountDiff = due.discount - due.face;
    } else if (period == QChar(PeriodPenalty)) {
        t.amount = due.penalty;
        t.penaltyDiff = due.penalty - due.face;
    } else {
        t.amount = due.face;
    }
    return t;
}

Money PeriodAmounts::countyTotal() const {
    return line[LineCounty].amount + line[LineLibrary].amount + line[LineCountySpecial].amount;
}

Money PeriodAmounts::twpTotal() const {
    return line[LineTwp].amount + line[LineSpecial1].amount + line[LineSpecial2].amount +
           line[LineSpecial3].amount;
}

Money PeriodAmounts::schoolTotal() const {
    return line[LineSchool].amount + line[LineSchoolSpecial].amount;
}

PeriodAmounts AmountsForPeriods(const BillLines& bill, const PaymentPeriods& periods) {
    PeriodAmounts out;
    for (int i = 0; i < TaxLineCount; ++i) {
        QChar period = periods.school;
        switch (BodyOfLine(i)) {
        case TaxBody::County:
            period = periods.county;
            break;
        case TaxBody::Twp:
            period = periods.twp;
            break;
        case TaxBody::School:
            break;
        }
        out.line[i] = TakeLine(bill.line[i], period);
    }
    return out;
}

void ApplyStreetLightChoice(PeriodAmounts& amounts, StreetLightChoice choice) {
    switch (choice) {
    case StreetLightChoice::All:
        break;
    case StreetLightChoice::TwpOnly:
        amounts.line[LineSpecial3] = {};
        break;
    case StreetLightChoice::StreetLightOnly:
        amounts.line[LineTwp] = {};
        amounts.line[LineSpecial1] = {};
        amounts.line[LineSpecial2] = {};
        break;
    }
}

MunicipalPayFlags MunicipalFlagsForPayment(bool twpTicked, bool split, StreetLightChoice choice,
                                           QStringView stLtFlagBefore, QChar twpPeriod) {
    const QString blank = QStringLiteral(" ");
    const QString period(twpPeriod);
    MunicipalPayFlags f;
    if (!twpTicked)
        return f; // only StLtFlag, back to blank
    if (!split) {
        f.tPayFlag = period;
        f.twpPaidFlag = blank;
        f.stLtPaidFlag = blank;
        return f;
    }
    const QChar before = letterOf(stLtFlagBefore);
    switch (choice) {
    case StreetLightChoice::TwpOnly:
        // The street light part paid before makes this the last of the two.
        f.tPayFlag = before == u'S' ? period : blank;
        f.twpPaidFlag = period;
        f.stLtPaidFlag = blank;
        f.stLtFlag = before == u'S' ? blank : QStringLiteral("T");
        break;
    case StreetLightChoice::StreetLightOnly:
        f.tPayFlag = before == u'T' ? period : blank;
        f.twpPaidFlag = blank;
        f.stLtPaidFlag = period;
        f.stLtFlag = before == u'T' ? blank : QStringLiteral("S");
        break;
    case StreetLightChoice::All:
        f.tPayFlag = period;
        f.twpPaidFlag = period;
        f.stLtPaidFlag = period;
        break;
    }
    return f;
}

// ---------------------------------------------------------------------------------------------
// School installments
// ---------------------------------------------------------------------------------------------

bool InstallmentView::anyPaid() const {
    for (const InstallmentLine& l : line)
        if (l.paid)
            return true;
    return false;
}

InstallmentView InstallmentsForDate(const Installments& bill,
                                    const std::array<QString, 3>& payFlags,
                                    const std::array<QDate, 3>& dueDates, const QDate& credited) {
    InstallmentView v;
    for (int n = 0; n < 3; ++n) {
        InstallmentLine& l = v.line[n];
        l.face = bill.payment[n];
        const QChar flag = letterOf(payFlags[n]);
        const bool withPenalty = n > 0;
        if (!flag.isNull()) {
            l.paid = true;
            if (withPenalty && flag == u'P') {
                l.amount = bill.penPayment[n];
                l.code = QChar(PeriodPenalty);
                l.penaltyDiff = bill.penPayment[n] - bill.payment[n];
            } else {
                l.amount = bill.payment[n];
                l.code = QChar(PeriodFace);
            }
            continue;
        }
        const bool late = dueDates[n].isValid() && credited.isValid() && credited > dueDates[n];
        if (!late) {
            l.amount = bill.payment[n];
            l.code = QChar(PeriodFace);
            l.label = QStringLiteral("FACE");
        } else if (!withPenalty) {
            // The first installment has no penalty form: past its date it cannot be chosen.
            l.amount = bill.payment[n];
            l.pastDate = true;
            l.label = QString::fromLatin1(InstallmentPastDate);
        } else {
            l.amount = bill.penPayment[n];
            l.code = QChar(PeriodPenalty);
            l.label = QStringLiteral("PENALTY");
            l.penaltyDiff = bill.penPayment[n] - bill.payment[n];
        }
    }
    for (int n = 0; n < 3; ++n) {
        if (!v.line[n].paid) {
            v.nextUnpaid = n;
            v.periodLabel = v.line[n].label;
            v.nextDate = dueDates[n];
            return v;
        }
    }
    v.periodLabel = QString::fromLatin1(InstallmentsPaidInFull);
    return v;
}

std::array<bool, 3> ApplyInstallmentBoxRules(const std::array<bool, 3>& before,
                                             const std::array<bool, 3>& after, bool schoolTicked,
                                             const InstallmentView& inst) {
    std::array<bool, 3> t = after;
    for (int n = 0; n < 3; ++n)
        if (!schoolTicked || inst.line[n].paid)
            t[n] = false;
    if (inst.line[0].pastDate)
        t[0] = false;
    // An installment only together with every earlier unpaid one.
    if (!t[0] && !inst.line[0].paid)
        t[1] = false;
    if (!t[1] && !inst.line[1].paid)
        t[2] = false;
    if (before[0] && !t[0]) {
        t[1] = false;
        t[2] = false;
    }
    return t;
}

// ---------------------------------------------------------------------------------------------
// Amount offered, total due, payment against the total
// ---------------------------------------------------------------------------------------------

namespace {

bool anyTicked(const std::array<bool, 3>& t) {
    return t[0] || t[1] || t[2];
}

Money tickedInstallments(const std::array<bool, 3>& t, const InstallmentView& inst) {
    Money sum;
    for (int n = 0; n < 3; ++n)
        if (t[n])
            sum += inst.line[n].amount;
    return sum;
}

} // namespace

AmountOffer AmountOffered(const PaymentSelection& sel, QStringView cPayFlag, QStringView tPayFlag,
                          QStringView sPayFlag, const PeriodAmounts& amounts,
                          const InstallmentView& inst) {
    AmountOffer offer;
    offer.installment = sel.installment;
    if (sel.county && isBlank(cPayFlag))
        offer.amount += amounts.countyTotal();
    if (sel.twp && isBlank(tPayFlag))
        offer.amount += amounts.twpTotal();
    if (!sel.school)
        return offer;
    if (anyTicked(sel.installment)) {
        offer.amount += tickedInstallments(sel.installment, inst);
    } else if (isBlank(sPayFlag) || inst.allUnpaid()) {
        offer.amount += amounts.schoolTotal();
    } else if (!inst.line[1].paid) {
        offer.amount += inst.line[1].amount;
        offer.installment[1] = true;
    } else if (!inst.line[2].paid) {
        offer.amount += inst.line[2].amount;
        offer.installment[2] = true;
    }
    return offer;
}

Money TotalDue(const PaymentSelection& sel, const PeriodAmounts& amounts,
               const InstallmentView& inst) {
    Money due;
    if (sel.county)
        due += amounts.countyTotal();
    if (sel.twp)
        due += amounts.twpTotal();
    if (sel.school)
        due += anyTicked(sel.installment) ? tickedInstallments(sel.installment, inst)
                                          : amounts.schoolTotal();
    return due;
}

// ---------------------------------------------------------------------------------------------
// Per capita amounts of a period
// ---------------------------------------------------------------------------------------------

namespace {

const char* const PerCapitaFaceColumns[PerCapitaLineCount] = {
    "CPerCapita", "COccupation", "TPerCapita", "TOccupation", "SPerCapita", "SOccupation"};

QChar periodOfBody(const PaymentPeriods& periods, TaxBody body) {
    switch (body) {
    case TaxBody::County:
        return periods.county;
    case TaxBody::Twp:
        return periods.twp;
    case TaxBody::School:
        break;
    }
    return periods.school;
}

} // namespace

TaxBody BodyOfPerCapitaLine(int line) {
    return line < LineTPerCapita ? TaxBody::County
                                 : (line < LineSPerCapita ? TaxBody::Twp : TaxBody::School);
}

QString PerCapitaFaceColumn(int line) {
    return QString::fromLatin1(PerCapitaFaceColumns[line]);
}

Money PerCapitaAmounts::bodyTotal(TaxBody body) const {
    Money sum;
    for (int i = 0; i < PerCapitaLineCount; ++i)
        if (BodyOfPerCapitaLine(i) == body)
            sum += line[i].amount;
    return sum;
}

Money PerCapitaAmounts::total() const {
    return bodyTotal(TaxBody::County) + bodyTotal(TaxBody::Twp) + bodyTotal(TaxBody::School);
}

PerCapitaAmounts PerCapitaAmountsForPeriods(const QSqlRecord& bill, const PaymentPeriods& periods) {
    PerCapitaAmounts out;
    for (int i = 0; i < PerCapitaLineCount; ++i) {
        const QString face = PerCapitaFaceColumn(i);
        const AmountTriple due{MoneyField(bill.value(QLatin1Char('D') + face)),
                               MoneyField(bill.value(face)),
                               MoneyField(bill.value(QLatin1Char('P') + face))};
        out.line[i] = TakeLine(due, periodOfBody(periods, BodyOfPerCapitaLine(i)));
    }
    return out;
}

Money PerCapitaBodyFace(const QSqlRecord& bill, TaxBody body) {
    Money sum;
    for (int i = 0; i < PerCapitaLineCount; ++i)
        if (BodyOfPerCapitaLine(i) == body)
            sum += MoneyField(bill.value(PerCapitaFaceColumn(i)));
    return sum;
}

Money PerCapitaAmountOffered(const PaymentSelection& sel, QStringView cPayFlag,
                             QStringView tPayFlag, QStringView sPayFlag,
                             const PerCapitaAmounts& amounts) {
    Money offer;
    if (sel.county && isBlank(cPayFlag))
        offer += amounts.bodyTotal(TaxBody::County);
    if (sel.twp && isBlank(tPayFlag))
        offer += amounts.bodyTotal(TaxBody::Twp);
    if (sel.school && isBlank(sPayFlag))
        offer += amounts.bodyTotal(TaxBody::School);
    return offer;
}

Money PerCapitaTotalDue(const PaymentSelection& sel, const PerCapitaAmounts& amounts) {
    Money due;
    if (sel.county)
        due += amounts.bodyTotal(TaxBody::County);
    if (sel.twp)
        due += amounts.bodyTotal(TaxBody::Twp);
    if (sel.school)
        due += amounts.bodyTotal(TaxBody::School);
    return due;
}

PaymentCheck CheckPaymentAgainstTotal(Money amount, Money totalDue, Money tolerance) {
    // A tolerance below zero is no tolerance.
    if (tolerance < Money())
        tolerance = Money();
    PaymentCheck c;
    c.difference = amount - totalDue;
    const QString diffText = c.difference.format(u"$##,###,##0.00");
    if (c.difference > tolerance) {
        c.kind = PaymentCheck::Kind::Refund;
        c.text =
            QStringLiteral("Do you want to apply a refund of ") + diffText + QStringLiteral(" ?");
        c.title = QStringLiteral("Apply Refund");
        c.refund = c.difference;
    } else if (c.difference > Money()) {
        c.kind = PaymentCheck::Kind::Overage;
        c.text = QStringLiteral("Do you want to apply an overage of  ") + diffText +
                 QStringLiteral(" ?");
        c.title = QStringLiteral("Apply Overage");
        c.overage = c.difference;
    } else if (c.difference.isZero()) {
        c.kind = PaymentCheck::Kind::Exact;
    } else if (c.difference >= -tolerance) {
        c.kind = PaymentCheck::Kind::Underage;
        c.text = QStringLiteral("Do you want to apply an underage of  ") + diffText +
                 QStringLiteral(" ?");
        c.title = QStringLiteral("Apply Overage");
        c.overage = c.difference;
    } else {
        c.kind = PaymentCheck::Kind::Refused;
        c.text = QStringLiteral("Payment must be within ") + tolerance.format(u"$##.00") +
                 QStringLiteral(" of total due.");
        c.title = QStringLiteral("Receive Payment");
    }
    return c;
}

// ---------------------------------------------------------------------------------------------
// Payment information text
// ---------------------------------------------------------------------------------------------

BillPayFlags BillPayFlagsFromRecord(const QSqlRecord& bill) {
    BillPayFlags f;
    f.cPayFlag = FlagField(bill.value("CPayFlag"));
    f.tPayFlag = FlagField(bill.value("TPayFlag"));
    f.sPayFlag = FlagField(bill.value("SPayFlag"));
    for (int n = 0; n < 3; ++n)
        f.payFlag[n] = FlagField(bill.value(QStringLiteral("Pay%1Flag").arg(n + 1)));
    return f;
}

QString MunicipalKind(QStringView btFlag) {
    const QChar kind = letterOf(btFlag);
    if (kind == u'B')
        return QStringLiteral("BOROUGH");
    if (kind == u'C')
        return QStringLiteral("CITY");
    return QStringLiteral("TOWNSHIP");
}

namespace {

enum class InfoVariant { RealEstate, PerCapita };

const char* const Indent = "          ";

// The three lines under a paid block.
QStringList receiptLines(const PaidReceipt& r, Money amount, QStringView amountPattern,
                         bool glueCheckNumber) {
    const QString indent = QString::fromLatin1(Indent);
    return {indent + QStringLiteral("Paid By: ") + r.payor,
            indent + QStringLiteral("Receipt #: ") + r.recnum +
                (glueCheckNumber ? QStringLiteral(" - Check #:") : QStringLiteral(" - Check #: ")) +
                r.checknum,
            indent + QStringLiteral("Date Credited: ") + FormatDate(r.rdate) +
                QStringLiteral(" - Amount Paid: ") + amount.format(amountPattern)};
}

// The latest receipt whose flag for the body is set, or nullptr.
const PaidReceipt* latestFor(const std::vector<PaidReceipt>& receipts, QString PaidReceipt::*flag) {
    for (auto it = receipts.rbegin(); it != receipts.rend(); ++it)
        if (!isBlank((*it).*flag))
            return &*it;
    return nullptr;
}

struct BodyBlock {
    QString subject;  // "COUNTY", "SCHOOL", or the municipality's kind
    QString billFlag; // the bill's flag of the body
    QString PaidReceipt::*receiptFlag;
    Money PaidReceipt::*amount;
    const char16_t* amountPattern;
};

QString paymentInfoText(const BillPayFlags& bill, QStringView btFlag,
                        const std::vector<PaidReceipt>& receipts, InfoVariant variant) {
    const BodyBlock bodies[3] = {
        {QStringLiteral("COUNTY"), bill.cPayFlag, &PaidReceipt::cPayFlag,
         &PaidReceipt::countyAmount, u"$###,###,###.00"},
        {MunicipalKind(btFlag), bill.tPayFlag, &PaidReceipt::tPayFlag, &PaidReceipt::twpAmount,
         u"$###,###,#.00"},
        {QStringLiteral("SCHOOL"), bill.sPayFlag, &PaidReceipt::sPayFlag,
         &PaidReceipt::schoolAmount, u"$###,###,###.00"},
    };
    QStringList blocks;
    Money total;
    for (int b = 0; b < 3; ++b) {
        const BodyBlock& body = bodies[b];
        const QChar flag = letterOf(body.billFlag);
        if (flag == u'X') {
            blocks << QStringLiteral("The ") + body.subject +
                          QStringLiteral(" portion of this bill has been exonerated.");
        } else if (flag == u'D' || flag == u'F' || flag == u'P') {
            QStringList lines{QStringLiteral("The ") + body.subject +
                              QStringLiteral(" portion of this bill has been paid in full at ") +
                              PeriodLabel(flag) + QLatin1Char('.')};
            if (const PaidReceipt* r = latestFor(receipts, body.receiptFlag)) {
                const Money amount = r->*body.amount;
                // The per capita school block at face glues the check number on.
                const bool glue = variant == InfoVariant::PerCapita && b == 2 && flag == u'F';
                lines << receiptLines(*r, amount, body.amountPattern, glue);
                total += amount;
            }
            blocks << lines.join(QLatin1Char('\n'));
        } else if (flag == u'I' && b == 2 && variant == InfoVariant::RealEstate) {
            for (int n = 0; n < 3; ++n) {
                if (isBlank(bill.payFlag[n]))
                    continue;
                const PaidReceipt* found = nullptr;
                for (const PaidReceipt& r : receipts)
                    if (letterOf(r.sPayFlag) == u'I' && !isBlank(r.payFlag[n]))
                        found = &r;
                const QChar paidAt = letterOf(found ? found->payFlag[n] : bill.payFlag[n]);
                QStringList lines{
                    QStringLiteral("The SCHOOL PAYMENT #%1 portion of this bill has "
                                   "been paid at %2.")
                        .arg(n + 1)
                        .arg(paidAt == u'P' ? QStringLiteral("PENALTY") : QStringLiteral("FACE"))};
                if (found) {
                    const Money amount = found->payment[n] + found->penPayment[n];
                    lines << receiptLines(*found, amount, u"$###,###,###.00", false);
                    total += amount;
                }
                blocks << lines.join(QLatin1Char('\n'));
            }
        }
    }
    if (blocks.isEmpty())
        return QString();
    blocks << QStringLiteral("TOTAL PAID: ") + total.format(u"$###,###,###.00");
    return blocks.join(QStringLiteral("\n\n"));
}

Money sumColumns(const QSqlRecord& r, std::initializer_list<const char*> faces) {
    Money sum;
    for (const char* face : faces) {
        const QString f = QString::fromLatin1(face);
        sum += MoneyField(r.value(f)) + MoneyField(r.value(QLatin1Char('D') + f)) +
               MoneyField(r.value(QLatin1Char('P') + f));
    }
    return sum;
}

PaidReceipt receiptFrom(const QSqlRecord& r) {
    PaidReceipt p;
    p.recnum = TextField(r.value("Recnum"));
    p.payor = TextField(r.value("Payor"));
    p.checknum = TextField(r.value("Checknum"));
    p.rdate = DateField(r.value("RDate"));
    p.cPayFlag = FlagField(r.value("CPayFlag"));
    p.tPayFlag = FlagField(r.value("TPayFlag"));
    p.sPayFlag = FlagField(r.value("SPayFlag"));
    return p;
}

} // namespace

QString RealEstatePaymentInfoText(const BillPayFlags& bill, QStringView btFlag,
                                  const std::vector<PaidReceipt>& receipts) {
    return paymentInfoText(bill, btFlag, receipts, InfoVariant::RealEstate);
}

QString PerCapitaPaymentInfoText(const BillPayFlags& bill, QStringView btFlag,
                                 const std::vector<PaidReceipt>& receipts) {
    return paymentInfoText(bill, btFlag, receipts, InfoVariant::PerCapita);
}

std::vector<PaidReceipt> ReadRealEstatePaidReceipts(QSqlDatabase db, const QString& billNo) {
    std::vector<PaidReceipt> out;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral(
        "SELECT r.* FROM TCReceipt r LEFT OUTER JOIN TCVoidReceipt v ON v.Recnum = r.Recnum "
        "WHERE r.BillNo = ? AND v.Recnum IS NULL ORDER BY r.Recnum, r.rowid"));
    q.addBindValue(billNo);
    if (!q.exec())
        return out;
    while (q.next()) {
        const QSqlRecord r = q.record();
        PaidReceipt p = receiptFrom(r);
        for (int n = 0; n < 3; ++n) {
            p.payFlag[n] = FlagField(r.value(QStringLiteral("Pay%1Flag").arg(n + 1)));
            p.payment[n] = MoneyField(r.value(QStringLiteral("Payment%1").arg(n + 1)));
            p.penPayment[n] = MoneyField(r.value(QStringLiteral("PenPayment%1").arg(n + 1)));
        }
        p.countyAmount = sumColumns(r, {"County", "Library", "C1Face"});
        p.twpAmount = sumColumns(r, {"Twp", "S1Face", "S2Face", "S3Face"});
        p.schoolAmount = sumColumns(r, {"School", "Sch1Face"});
        out.push_back(std::move(p));
    }
    return out;
}

std::vector<PaidReceipt> ReadPerCapitaReceipts(QSqlDatabase db, const QString& billNo) {
    std::vector<PaidReceipt> out;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(
        QStringLiteral("SELECT * FROM PCReceipt WHERE BillNo = ? ORDER BY BillNo, Recnum, rowid"));
    q.addBindValue(billNo);
    if (!q.exec())
        return out;
    while (q.next()) {
        const QSqlRecord r = q.record();
        PaidReceipt p = receiptFrom(r);
        p.countyAmount = sumColumns(r, {"CPerCapita", "COccupation"});
        p.twpAmount = sumColumns(r, {"TPerCapita", "TOccupation"});
        p.schoolAmount = sumColumns(r, {"SPerCapita", "SOccupation"});
        out.push_back(std::move(p));
    }
    return out;
}
