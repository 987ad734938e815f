#pragma once
// The money rules of a real-estate bill, shared by the desk screens, the bills and the batch
// routines. Plain structs and free functions: nothing here reads a screen or holds state.
//
// Every amount that comes out of a rate is a double that passes RoundTo at two places and then
// Money::fromRounded; sums and differences of amounts stay in Money.

#include "core/money.h"

#include <QDate>
#include <QString>
#include <QStringView>
#include <QtGlobal>
#include <array>
#include <optional>
#include <vector>

// ---------------------------------------------------------------------------------------------
// Amounts from rates (adding or adjusting a bill)
// ---------------------------------------------------------------------------------------------

// A line levied in mills on an assessment: land and improvements are taxed and rounded each by
// itself, RoundTo(land / 1000 * mill) + RoundTo(impr / 1000 * mill). A mill of zero gives zero.
Money MillageFace(qint64 land, qint64 impr, double mill);

// RoundTo(face - face * pct / 100) and RoundTo(face + face * pct / 100).
Money DiscountAmount(Money face, double pct);
Money PenaltyAmount(Money face, double pct);
AmountTriple TripleFromFace(Money face, double discountPct, double penaltyPct);

// MillageFace with its discount and penalty columns.
AmountTriple MillageLine(qint64 land, qint64 impr, double mill, double discountPct,
                         double penaltyPct);

// How a school line is levied: plain millage on the assessment, or (with any formula flag but
// "N") the assessment brought to market value through the STEB and market ratios first.
struct SchoolRate {
    double mill = 0;        // SMR (school) or S1MR (school special) of the municipal row
    bool formula = false;   // SchoolFormula / School1Formula other than "N"
    double marketRatio = 0; // SchoolMarketRatio / School1MarketRatio
    double stebRatio = 0;   // SchoolStebRatio / School1StebRatio
};

// True for every stored formula flag but "N" (a blank flag too).
bool UsesSchoolFormula(QStringView flag);

// The school face of a value (land + impr, or an exclusion), computed on the sum in one
// rounding: RoundTo(value * mill / 1000), or with the formula
// RoundTo((value / steb * market) * (mill / 1000)); zero for a zero STEB ratio.
Money SchoolFace(qint64 value, const SchoolRate& rate);
Money SchoolFace(Money value, const SchoolRate& rate);

// The Act 1 homestead and farmstead exclusion of an approved parcel (HFFlag 'A').
struct Act1Exclusion {
    Money homestead; // HSExclusion, cut to the assessment
    Money farmstead; // FSExclusion, cut to what the homestead exclusion left
    // DExcFace, ExcFace, PExcFace: the school tax that the exclusion takes off.
    AmountTriple excFace;

    bool operator==(const Act1Exclusion&) const = default;
};

// Cuts the exclusions to the assessment and computes their school tax. ExcFace is computed from
// homestead + farmstead as the school face is from the assessment. Its discount and penalty are
// worked on ExcFace taken to the whole dollar (halves to the even dollar), so 123.50 takes them
// from 124 and 122.50 from 122; with a zero school rate or STEB ratio all three are zero.
Act1Exclusion ComputeAct1Exclusion(qint64 land, qint64 impr, Money homestead, Money farmstead,
                                   const SchoolRate& school, double discountPct, double penaltyPct);

// The school line net of the exclusion: face = gross - excFace, in exact money. Discount and
// penalty are worked on the net face, or, when shareFace is given (the collector asks for the
// face before the exclusion), the percentage is taken of shareFace and applied to the net face:
// RoundTo(net - shareFace * pct / 100); this choice exists for plain millage only and is ignored
// under the formula. A plain-millage school with a zero mill has zero discount and penalty.
AmountTriple SchoolLine(Money grossFace, Money excFace, const SchoolRate& school,
                        double discountPct, double penaltyPct,
                        std::optional<Money> shareFace = std::nullopt);

// HomesteadFlag "H" and FarmsteadFlag "F" of an approved parcel with a positive exclusion;
// one blank otherwise.
QString HomesteadFlag(bool approved, Money homestead);
QString FarmsteadFlag(bool approved, Money farmstead);

// The three school installments (Payment1..3) and their penalty forms (PenPayment1..3).
struct Installments {
    std::array<Money, 3> payment{};
    std::array<Money, 3> penPayment{};

    Money total() const { return payment[0] + payment[1] + payment[2]; }
    bool offered() const { return payment[0] > Money(); }
    bool operator==(const Installments&) const = default;
};

// Splits the school total T: each installment starts at Int(T / 3 * 100) / 100, then the first,
// second and third in turn grow by a cent while the sum is below T, so 100.00 gives 33.34,
// 33.33, 33.33. PenPayment1 is zero; PenPayment2 and 3 are RoundTo(P * pct / 100 + P).
Installments SplitSchoolInstallments(Money schoolTotal, double schoolPenaltyPct);

// The rates of every line of a real-estate bill, from the county row and the municipal row of
// Millfile and the municipality's special taxes.
struct RealEstateRates {
    // County body: SMR and S1MR of the county row, LMR of the municipal row.
    double countyMill = 0;
    double libraryMill = 0;
    double countySpecialMill = 0;
    double countyDiscountPct = 0; // SD of the county row
    double countyPenaltyPct = 0;  // SP of the county row
    // Township, borough or city: TMR and the Mill of up to three Spectax rows in TaxKey order.
    double twpMill = 0;
    std::array<double, 3> specialMill{};
    double twpDiscountPct = 0; // TD
    double twpPenaltyPct = 0;  // TP
    // School: SMR, S1MR and the formula columns of the municipal row.
    SchoolRate school;
    SchoolRate schoolSpecial;
    double schoolDiscountPct = 0; // SD of the municipal row
    double schoolPenaltyPct = 0;  // SP of the municipal row
};

// What the collector chose for a bill besides its assessment.
struct BillChoices {
    bool act1 = false; // HFFlag 'A': the homestead or farmstead is approved
    Money homestead;   // HSExclusion asked for
    Money farmstead;   // FSExclusion asked for
    bool installments = false;
    // Work the school discount and penalty on the face before the exclusion.
    bool schoolShareOnGrossFace = false;
};

// Every amount of a real-estate bill.
struct RealEstateAmounts {
    AmountTriple county;                   // DCounty, County, PCounty
    AmountTriple library;                  // DLibrary, Library, PLibrary
    AmountTriple countySpecial;            // DC1Face, C1Face, PC1Face
    AmountTriple twp;                      // DTwp, Twp, PTwp
    std::array<AmountTriple, 3> special{}; // DS1Face.. PS3Face
    AmountTriple school;                   // DSchool, School, PSchool: net of the exclusion
    AmountTriple schoolSpecial;            // DSch1Face, Sch1Face, PSch1Face
    Act1Exclusion exclusion;               // zero when the parcel is not approved
    Installments installments;             // zero unless asked for
    QString homesteadFlag = QStringLiteral(" ");
    QString farmsteadFlag = QStringLiteral(" ");

    Money countyFace() const { return county.face + library.face + countySpecial.face; }
    Money twpFace() const;
    Money schoolFace() const { return school.face + schoolSpecial.face; }
};

// The amounts of a bill with this assessment at these rates: a new bill with every body
// computed (ComputeFromAssessment on a blank bill, then RecomputeDiscountPenalty).
RealEstateAmounts ComputeRealEstateAmounts(qint64 land, qint64 impr, const RealEstateRates& rates,
                                           const BillChoices& choices = {});

// ---------------------------------------------------------------------------------------------
// A bill computed from its assessment on the adjustment screen (and the late billing run)
// ---------------------------------------------------------------------------------------------

class QSqlRecord;

// The county's discount and penalty count in whole percent on a bill computed from its
// assessment: the nearest whole number, halves to the even one (2.5 counts 2, 3.5 counts 4).
double WholePercent(double pct);

// The rates of a bill from the county row and the municipal row of Millfile, and the Mill of
// the municipality's first three Spectax rows (zero for a slot without a row). The county's
// discount and penalty pass WholePercent; the others are used as stored.
RealEstateRates RealEstateRatesFromMillfile(const QSqlRecord& countyRow,
                                            const QSqlRecord& municipalRow,
                                            const std::array<double, 3>& specialMill);

// What a computation from the assessment is asked to do.
struct AssessmentComputation {
    qint64 land = 0;
    qint64 impr = 0;
    // The bodies that are recomputed (their boxes ticked); the others keep every amount.
    bool county = true;
    bool twp = true;
    bool school = true;
    // A special slot with a name is computed from its mill; a nameless one keeps its face.
    std::array<bool, 3> specialNamed{true, true, true};
    // chkHFFlag: the exclusions are cut to the assessment and their school tax recomputed.
    // Without it the exclusion face already held is still taken off the school face.
    bool act1 = false;
    // The face the school's discount and penalty percentages are taken of, when the collector
    // names one (plain millage only); otherwise they are taken of the school face itself.
    std::optional<Money> schoolShareFace;
    // The installments: split unless "not applicable"; paid[n] when PaymentN's pay flag on the
    // master is non-blank (all false for an added bill).
    bool installments = true;
    std::array<bool, 3> paid{};
};

// The school installments after a new school total T, worked from the installments of the image
// on the screen and which of them are paid:
//   first paid, second and third not: the first keeps its amount, the others each
//     Int((T - Payment1) / 2 * 100) / 100;
//   first and second paid, third not: the first two keep theirs, the third is T - both;
//   otherwise each Int(T / 3 * 100) / 100.
// Then the first, second and third grow by a cent in turn while the sum is below T, the first
// even when it is paid. A total below what is paid gives negative installments, which Accept
// refuses. PenPayment1 is zero, PenPayment2 and 3 RoundTo(P + P * pct / 100).
Installments InstallmentsOnComputing(Money schoolTotal, const Installments& image,
                                     const std::array<bool, 3>& paid, double schoolPenaltyPct);

// The amounts after a new assessment. `before` is the bill as the screen holds it: the faces
// of bodies not recomputed, the faces of lines whose rate is zero (a library, county special,
// township or plain-millage school line with a zero rate keeps its face, with zero discount
// and penalty), the homestead and farmstead exclusions typed, the exclusion face, and the
// installments of the image shown. County lines, the township and the named specials are
// levied on land and improvements rounded apart; the school lines on their sum, once. The
// school face is net of the exclusion face, and its discount and penalty columns are those of
// RecomputeDiscountPenalty; schoolGross holds the school line before the exclusion, the face
// the percentages of the screen's "Discount:" and "Penalty:" are shown for.
struct ComputedBill {
    RealEstateAmounts amounts;
    AmountTriple schoolGross;
};
ComputedBill ComputeFromAssessment(const RealEstateAmounts& before,
                                   const AssessmentComputation& computation,
                                   const RealEstateRates& rates);

// Every line's discount and penalty again from its face, as Accept saves them: the county and
// township lines always; the library, the county special and each special only when its rate
// is non-zero (its slot named), else zero; the school with a zero plain millage zero, else from
// its net face, the percentages taken of schoolShareFace when named under plain millage; the
// school special zero when the school (not the special) is on plain millage and the special's
// mill is zero, else from its face. The exclusion and the installments are not touched.
void RecomputeDiscountPenalty(RealEstateAmounts& amounts, const RealEstateRates& rates,
                              const std::array<bool, 3>& specialNamed,
                              std::optional<Money> schoolShareFace = std::nullopt);

// ---------------------------------------------------------------------------------------------
// Periods: from the date credited to discount, face or penalty
// ---------------------------------------------------------------------------------------------

class QSqlDatabase;

// The period letters of a body's part of a bill.
inline constexpr char16_t PeriodDiscount = u'D';
inline constexpr char16_t PeriodFace = u'F';
inline constexpr char16_t PeriodPenalty = u'P';

// The two dates of one billing time frame (early or late) that decide the period.
struct PeriodDates {
    QDate discDate; // last day of discount (DiscDate / LateDiscDate)
    QDate penDate;  // first day of penalty (PenDate / LatePenDate)
};

// D on or before the last day of discount, P on or after the first day of penalty, F between.
// A date the schedule lacks takes no part: without a discount date there is no discount,
// without a penalty date no penalty.
QChar PeriodForDate(const QDate& credited, const PeriodDates& dates);
// "DISCOUNT", "FACE", "PENALTY"; empty for any other letter.
QString PeriodLabel(QChar period);

// What the municipal Millfile row says about when and how a payment is taken.
struct PaymentCalendar {
    PeriodDates early;
    PeriodDates late;
    // BillCounty, BillTwp, BillSchool equal to "E": the body uses the early dates.
    bool countyEarly = false;
    bool twpEarly = false;
    bool schoolEarly = false;
    // LatePayment1Date..LatePayment3Date: the installments' due dates in either frame.
    std::array<QDate, 3> installmentDates{};
    Money tolerance; // Null counts as zero
};
PaymentCalendar PaymentCalendarFromMillfile(const QSqlRecord& municipalRow);

struct PaymentPeriods {
    QChar county = QChar(PeriodFace);
    QChar twp = QChar(PeriodFace);
    QChar school = QChar(PeriodFace);

    bool operator==(const PaymentPeriods&) const = default;
};
// Each body's period on that date, each in its own billing time frame.
PaymentPeriods PeriodsForDate(const PaymentCalendar& calendar, const QDate& credited);

// ---------------------------------------------------------------------------------------------
// Amounts of a period
// ---------------------------------------------------------------------------------------------

// The nine tax lines of a real-estate bill in column order, and the body each belongs to.
enum TaxLine {
    LineCounty,
    LineLibrary,
    LineCountySpecial,
    LineTwp,
    LineSpecial1,
    LineSpecial2,
    LineSpecial3,
    LineSchool,
    LineSchoolSpecial,
    TaxLineCount
};
enum class TaxBody { County, Twp, School };
TaxBody BodyOfLine(int line);
// The column names of a line: face ("County"), discount ("DCounty"), penalty ("PCounty").
QString FaceColumn(int line);
QString DiscountColumn(int line);
QString PenaltyColumn(int line);
// What a receipt took on a line: its face, discount and penalty columns together.
Money ReceiptLineAmount(const QSqlRecord& receipt, int line);

// The amounts due of every line of a bill (TCMaster or TCAdjust columns).
struct BillLines {
    std::array<AmountTriple, TaxLineCount> line{};
};
BillLines BillLinesFromRecord(const QSqlRecord& bill);
// A line of a bill's amounts by its TaxLine.
AmountTriple& LineOf(RealEstateAmounts& amounts, int line);
const AmountTriple& LineOf(const RealEstateAmounts& amounts, int line);
Installments InstallmentsFromRecord(const QSqlRecord& bill);

// One line taken at a period: what is payable, and for the receipt the face with the signed
// differences discount minus face (zero unless D) and penalty minus face (zero unless P).
struct LineTake {
    Money amount;
    Money face;
    Money discountDiff;
    Money penaltyDiff;

    bool operator==(const LineTake&) const = default;
};
LineTake TakeLine(const AmountTriple& due, QChar period);

// Every line at its body's period, with the totals per body.
struct PeriodAmounts {
    std::array<LineTake, TaxLineCount> line{};

    Money countyTotal() const;
    Money twpTotal() const;
    Money schoolTotal() const;
    Money total() const { return countyTotal() + twpTotal() + schoolTotal(); }
};
PeriodAmounts AmountsForPeriods(const BillLines& bill, const PaymentPeriods& periods);

// District 39 splits the municipal part into the township lines and the street light tax (the
// third special). Township only leaves the street light line at zero, street light only the
// township and the first two specials; a zeroed line carries nothing to the receipt.
enum class StreetLightChoice { All, TwpOnly, StreetLightOnly };
void ApplyStreetLightChoice(PeriodAmounts& amounts, StreetLightChoice choice);

// The municipal flags a payment writes on the bill. A flag without a value is not written.
struct MunicipalPayFlags {
    std::optional<QString> tPayFlag;
    std::optional<QString> twpPaidFlag;
    std::optional<QString> stLtPaidFlag;
    QString stLtFlag = QStringLiteral(" "); // written by every payment

    bool operator==(const MunicipalPayFlags&) const = default;
};
// twpTicked: the municipal box is ticked. split: the street light choice is shown (district 39
// with a street light amount). choice: the selected option, which stays "All" when the reading
// of the bill only disabled the options. stLtFlagBefore: the bill's StLtFlag.
MunicipalPayFlags MunicipalFlagsForPayment(bool twpTicked, bool split, StreetLightChoice choice,
                                           QStringView stLtFlagBefore, QChar twpPeriod);

// ---------------------------------------------------------------------------------------------
// School installments at the counter
// ---------------------------------------------------------------------------------------------

// One installment as the payment screen shows it on a date.
struct InstallmentLine {
    Money amount;  // txtPaymentN: the face, or the penalty form once past its date
    QChar code;    // txtInstDFPN: F or P; none for a first installment past its date
    QString label; // "FACE", "PENALTY", "PAST DATE!"; empty for a paid installment
    bool paid = false;
    bool pastDate = false; // the first installment past its date: red, cannot be chosen
    Money face;            // PaymentN
    Money penaltyDiff;     // PenPaymentN - PaymentN when the code is P, else zero

    bool operator==(const InstallmentLine&) const = default;
};

struct InstallmentView {
    std::array<InstallmentLine, 3> line{};
    // lblInstPeriod and txtPaymentDate: the first unpaid installment's label and due date;
    // "PAID IN FULL" and no date when none is left.
    QString periodLabel;
    QDate nextDate;
    int nextUnpaid = -1; // 0..2, -1 when all are paid

    bool anyPaid() const;
    bool allUnpaid() const { return !anyPaid(); }
};
inline constexpr const char* InstallmentsPaidInFull = "PAID IN FULL";
inline constexpr const char* InstallmentPastDate = "PAST DATE!";

// The rule per installment: payFlags are the bill's Pay1Flag..Pay3Flag, dueDates the late
// installment dates, credited the date credited.
InstallmentView InstallmentsForDate(const Installments& bill,
                                    const std::array<QString, 3>& payFlags,
                                    const std::array<QDate, 3>& dueDates, const QDate& credited);

// The rules of the three installment boxes, run after every click: before are the ticks
// before the click, after the ticks the click left. Returns the ticks the rules leave.
std::array<bool, 3> ApplyInstallmentBoxRules(const std::array<bool, 3>& before,
                                             const std::array<bool, 3>& after, bool schoolTicked,
                                             const InstallmentView& installments);

// ---------------------------------------------------------------------------------------------
// The amount offered and the payment against the total due
// ---------------------------------------------------------------------------------------------

// The state of the screen that the amount offered and the total due are worked from.
struct PaymentSelection {
    bool county = false;
    bool twp = false;
    bool school = false;
    std::array<bool, 3> installment{}; // chkPay1..chkPay3
};

struct AmountOffer {
    Money amount;
    // The installment boxes after the offer: the next unpaid installment becomes ticked when a
    // bill paying in installments has none ticked.
    std::array<bool, 3> installment{};
};
// cPayFlag..sPayFlag are the bill's flags; a body already paid offers nothing.
AmountOffer AmountOffered(const PaymentSelection& selection, QStringView cPayFlag,
                          QStringView tPayFlag, QStringView sPayFlag, const PeriodAmounts& amounts,
                          const InstallmentView& installments);

// The ticked bodies' totals; for the school the ticked installments when any is ticked.
Money TotalDue(const PaymentSelection& selection, const PeriodAmounts& amounts,
               const InstallmentView& installments);

// How a payment stands against the total due, with the question to ask or the refusal.
struct PaymentCheck {
    enum class Kind { Exact, Refund, Overage, Underage, Refused };
    Kind kind = Kind::Exact;
    Money difference; // amount - total due
    QString text;     // the question (refund, overage, underage) or the refusal
    QString title;
    // Overage and Refund of the receipt when the question is answered Yes (or none is asked).
    Money overage;
    Money refund;

    bool asks() const {
        return kind == Kind::Refund || kind == Kind::Overage || kind == Kind::Underage;
    }
};
PaymentCheck CheckPaymentAgainstTotal(Money amount, Money totalDue, Money tolerance);
// The answer No to any of the questions.
inline constexpr const char* PaymentNotAppliedText = "Payment NOT applied.";

// ---------------------------------------------------------------------------------------------
// Per capita amounts of a period
// ---------------------------------------------------------------------------------------------

// The six lines of a per capita bill in column order: each body's per capita and occupation.
enum PerCapitaLine {
    LineCPerCapita,
    LineCOccupation,
    LineTPerCapita,
    LineTOccupation,
    LineSPerCapita,
    LineSOccupation,
    PerCapitaLineCount
};
TaxBody BodyOfPerCapitaLine(int line);
// "CPerCapita", "COccupation", ...; the discount and penalty columns put D and P in front.
QString PerCapitaFaceColumn(int line);

// Every per capita line at its body's period (D, F or P columns as for real estate).
struct PerCapitaAmounts {
    std::array<LineTake, PerCapitaLineCount> line{};

    Money bodyTotal(TaxBody body) const;
    Money total() const;
};
PerCapitaAmounts PerCapitaAmountsForPeriods(const QSqlRecord& bill, const PaymentPeriods& periods);
// The two face amounts of a body on the bill; a body whose faces add up to zero is closed.
Money PerCapitaBodyFace(const QSqlRecord& bill, TaxBody body);
// The amount offered: each ticked body whose flag is blank, at its period.
Money PerCapitaAmountOffered(const PaymentSelection& selection, QStringView cPayFlag,
                             QStringView tPayFlag, QStringView sPayFlag,
                             const PerCapitaAmounts& amounts);
// The total due of the ticked bodies.
Money PerCapitaTotalDue(const PaymentSelection& selection, const PerCapitaAmounts& amounts);

// ---------------------------------------------------------------------------------------------
// Payment information text
// ---------------------------------------------------------------------------------------------

// What the text needs of one receipt.
struct PaidReceipt {
    QString recnum;
    QString payor;
    QString checknum;
    QDate rdate;
    QString cPayFlag = QStringLiteral(" ");
    QString tPayFlag = QStringLiteral(" ");
    QString sPayFlag = QStringLiteral(" ");
    std::array<QString, 3> payFlag{QStringLiteral(" "), QStringLiteral(" "), QStringLiteral(" ")};
    // The sum of every column (face and both differences) of the body's lines.
    Money countyAmount;
    Money twpAmount;
    Money schoolAmount;
    std::array<Money, 3> payment{};
    std::array<Money, 3> penPayment{};
};

// The pay flags of a bill.
struct BillPayFlags {
    QString cPayFlag = QStringLiteral(" ");
    QString tPayFlag = QStringLiteral(" ");
    QString sPayFlag = QStringLiteral(" ");
    std::array<QString, 3> payFlag{QStringLiteral(" "), QStringLiteral(" "), QStringLiteral(" ")};
};
BillPayFlags BillPayFlagsFromRecord(const QSqlRecord& bill);

// "TOWNSHIP", "BOROUGH", "CITY" by BTFlag T, B, C.
QString MunicipalKind(QStringView btFlag);

// The text of a real-estate bill from its receipts that are not voided, in Recnum order.
// Empty when nothing has been paid.
QString RealEstatePaymentInfoText(const BillPayFlags& bill, QStringView btFlag,
                                  const std::vector<PaidReceipt>& receipts);
// The per capita text from all the bill's receipts in Recnum order, voided ones included, and
// without installments; its school block at face writes " - Check #:" with the number glued on.
QString PerCapitaPaymentInfoText(const BillPayFlags& bill, QStringView btFlag,
                                 const std::vector<PaidReceipt>& receipts);

// The receipts behind the texts, read from the database.
std::vector<PaidReceipt> ReadRealEstatePaidReceipts(QSqlDatabase db, const QString& billNo);
std::vector<PaidReceipt> ReadPerCapitaReceipts(QSqlDatabase db, const QString& billNo);

// The message boxes of the payment information button.
inline constexpr const char* PaymentInfoTitle = "Payment Information";
inline constexpr const char* NoPaymentsTitle = "Receive Payments";
inline constexpr const char* NoPaymentsText = "There have been no payments made on this account";
