#include "desk/realestate/payment_rules.h"

#include "core/common_values.h"

#include <cmath>

namespace {

// A rate product: RoundTo at two places, then into money by the one named conversion.
Money Rounded(double value) {
    return Money::fromRounded(RoundTo(value, 2));
}

} // namespace

Money MillageFace(qint64 land, qint64 impr, double mill) {
    if (mill == 0)
        return Money();
    return Rounded(double(land) / 1000 * mill) + Rounded(double(impr) / 1000 * mill);
}

Money DiscountAmount(Money face, double pct) {
    const double f = face.toDouble();
    return Rounded(f - f * pct / 100);
}

Money PenaltyAmount(Money face, double pct) {
    const double f = face.toDouble();
    return Rounded(f + f * pct / 100);
}

AmountTriple TripleFromFace(Money face, double discountPct, double penaltyPct) {
    return {DiscountAmount(face, discountPct), face, PenaltyAmount(face, penaltyPct)};
}

AmountTriple MillageLine(qint64 land, qint64 impr, double mill, double discountPct,
                         double penaltyPct) {
    return TripleFromFace(MillageFace(land, impr, mill), discountPct, penaltyPct);
}

bool UsesSchoolFormula(QStringView flag) {
    return flag.trimmed() != u"N";
}

namespace {

Money SchoolFaceOf(double value, const SchoolRate& rate) {
    if (!rate.formula)
        return rate.mill == 0 ? Money() : Rounded(value * rate.mill / 1000);
    if (!(rate.stebRatio > 0))
        return Money();
    return Rounded((value / rate.stebRatio * rate.marketRatio) * (rate.mill / 1000));
}

} // namespace

Money SchoolFace(qint64 value, const SchoolRate& rate) {
    return SchoolFaceOf(double(value), rate);
}

Money SchoolFace(Money value, const SchoolRate& rate) {
    return SchoolFaceOf(value.toDouble(), rate);
}

Act1Exclusion ComputeAct1Exclusion(qint64 land, qint64 impr, Money homestead, Money farmstead,
                                   const SchoolRate& school, double discountPct,
                                   double penaltyPct) {
    const Money assessment = Money::fromDollars(land + impr);
    Act1Exclusion out;
    out.homestead = homestead > assessment ? assessment : homestead;
    out.farmstead = out.homestead + farmstead > assessment ? assessment - out.homestead : farmstead;

    const Money face = SchoolFace(out.homestead + out.farmstead, school);
    if (face.isZero())
        return out;
    // The whole dollar, halves to the even dollar. The face holds whole cents, so a half dollar
    // is exact as a double and nearbyint sees the true half.
    const double whole = std::nearbyint(face.toDouble());
    out.excFace = {Rounded(whole - whole * discountPct / 100), face,
                   Rounded(whole + whole * penaltyPct / 100)};
    return out;
}

AmountTriple SchoolLine(Money grossFace, Money excFace, const SchoolRate& school,
                        double discountPct, double penaltyPct, std::optional<Money> shareFace) {
    const Money net = grossFace - excFace;
    if (!school.formula && school.mill == 0)
        return {Money(), net, Money()};
    if (!school.formula && shareFace) {
        const double n = net.toDouble();
        const double s = shareFace->toDouble();
        return {Rounded(n - s * discountPct / 100), net, Rounded(n + s * penaltyPct / 100)};
    }
    return TripleFromFace(net, discountPct, penaltyPct);
}

QString HomesteadFlag(bool approved, Money homestead) {
    return approved && homestead > Money() ? QStringLiteral("H") : QStringLiteral(" ");
}

QString FarmsteadFlag(bool approved, Money farmstead) {
    return approved && farmstead > Money() ? QStringLiteral("F") : QStringLiteral(" ");
}

Installments SplitSchoolInstallments(Money schoolTotal, double schoolPenaltyPct) {
    Installments out;
    const Money start =
        Money::fromCents(static_cast<std::int64_t>(std::floor(schoolTotal.toDouble() / 3 * 100)));
    out.payment = {start, start, start};
    for (Money& payment : out.payment) {
        if (out.total() < schoolTotal)
            payment += Money::fromCents(1);
    }
    for (int i = 1; i < 3; ++i) {
        const double p = out.payment[i].toDouble();
        out.penPayment[i] = Rounded(p * schoolPenaltyPct / 100 + p);
    }
    return out;
}

Money RealEstateAmounts::twpFace() const {
    return twp.face + special[0].face + special[1].face + special[2].face;
}

RealEstateAmounts ComputeRealEstateAmounts(qint64 land, qint64 impr, const RealEstateRates& rates,
                                           const BillChoices& choices) {
    RealEstateAmounts out;
    out.county =
        MillageLine(land, impr, rates.countyMill, rates.countyDiscountPct, rates.countyPenaltyPct);
    out.library =
        MillageLine(land, impr, rates.libraryMill, rates.countyDiscountPct, rates.countyPenaltyPct);
    out.countySpecial = MillageLine(land, impr, rates.countySpecialMill, rates.countyDiscountPct,
                                    rates.countyPenaltyPct);
    out.twp = MillageLine(land, impr, rates.twpMill, rates.twpDiscountPct, rates.twpPenaltyPct);
    for (int i = 0; i < 3; ++i)
        out.special[i] = MillageLine(land, impr, rates.specialMill[i], rates.twpDiscountPct,
                                     rates.twpPenaltyPct);

    const Money gross = SchoolFace(land + impr, rates.school);
    if (choices.act1)
        out.exclusion =
            ComputeAct1Exclusion(land, impr, choices.homestead, choices.farmstead, rates.school,
                                 rates.schoolDiscountPct, rates.schoolPenaltyPct);
    out.school =
        SchoolLine(gross, out.exclusion.excFace.face, rates.school, rates.schoolDiscountPct,
                   rates.schoolPenaltyPct,
                   choices.schoolShareOnGrossFace ? std::optional<Money>(gross) : std::nullopt);
    out.schoolSpecial =
        SchoolLine(SchoolFace(land + impr, rates.schoolSpecial), Money(), rates.schoolSpecial,
                   rates.schoolDiscountPct, rates.schoolPenaltyPct);
    if (choices.installments)
        out.installments = SplitSchoolInstallments(out.schoolFace(), rates.schoolPenaltyPct);
    out.homesteadFlag = HomesteadFlag(choices.act1, out.exclusion.homestead);
    out.farmsteadFlag = FarmsteadFlag(choices.act1, out.exclusion.farmstead);
    return out;
}
