#include "desk/realestate/payment_rules.h"

#include "core/common_values.h"

#include <QSqlRecord>
#include <QVariant>
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
    return InstallmentsOnComputing(schoolTotal, Installments{}, {false, false, false},
                                   schoolPenaltyPct);
}

Money RealEstateAmounts::twpFace() const {
    return twp.face + special[0].face + special[1].face + special[2].face;
}

RealEstateAmounts ComputeRealEstateAmounts(qint64 land, qint64 impr, const RealEstateRates& rates,
                                           const BillChoices& choices) {
    RealEstateAmounts blank;
    if (choices.act1) {
        blank.exclusion.homestead = choices.homestead;
        blank.exclusion.farmstead = choices.farmstead;
    }
    AssessmentComputation c;
    c.land = land;
    c.impr = impr;
    c.act1 = choices.act1;
    c.installments = choices.installments;
    ComputedBill computed = ComputeFromAssessment(blank, c, rates);
    // The collector's face for the school's percentages is the face before the exclusion.
    const std::optional<Money> share = choices.schoolShareOnGrossFace
                                           ? std::optional<Money>(computed.schoolGross.face)
                                           : std::nullopt;
    RecomputeDiscountPenalty(computed.amounts, rates, c.specialNamed, share);
    return computed.amounts;
}

// ---------------------------------------------------------------------------------------------
// A bill computed from its assessment
// ---------------------------------------------------------------------------------------------

double WholePercent(double pct) {
    // The default rounding mode: to the nearest, halves to the even number.
    return std::nearbyint(pct);
}

RealEstateRates RealEstateRatesFromMillfile(const QSqlRecord& countyRow,
                                            const QSqlRecord& municipalRow,
                                            const std::array<double, 3>& specialMill) {
    auto rate = [](const QSqlRecord& row, const char* column) {
        return row.value(column).toDouble();
    };
    auto schoolRate = [&](const char* mill, const char* formula, const char* market,
                          const char* steb) {
        return SchoolRate{rate(municipalRow, mill),
                          UsesSchoolFormula(municipalRow.value(formula).toString()),
                          rate(municipalRow, market), rate(municipalRow, steb)};
    };
    RealEstateRates r;
    r.countyMill = rate(countyRow, "SMR");
    r.countySpecialMill = rate(countyRow, "S1MR");
    r.countyDiscountPct = WholePercent(rate(countyRow, "SD"));
    r.countyPenaltyPct = WholePercent(rate(countyRow, "SP"));
    r.libraryMill = rate(municipalRow, "LMR");
    r.twpMill = rate(municipalRow, "TMR");
    r.specialMill = specialMill;
    r.twpDiscountPct = rate(municipalRow, "TD");
    r.twpPenaltyPct = rate(municipalRow, "TP");
    r.school = schoolRate("SMR", "SchoolFormula", "SchoolMarketRatio", "SchoolStebRatio");
    r.schoolSpecial =
        schoolRate("S1MR", "School1Formula", "School1MarketRatio", "School1StebRatio");
    r.schoolDiscountPct = rate(municipalRow, "SD");
    r.schoolPenaltyPct = rate(municipalRow, "SP");
    return r;
}

Installments InstallmentsOnComputing(Money schoolTotal, const Installments& image,
                                     const std::array<bool, 3>& paid, double schoolPenaltyPct) {
    // Int(x * 100) / 100 on a double: the cent below, toward minus infinity.
    auto cents = [](double value) {
        return Money::fromCents(static_cast<std::int64_t>(std::floor(value * 100)));
    };
    Installments out;
    if (paid[0] && !paid[1] && !paid[2]) {
        const Money half = cents((schoolTotal - image.payment[0]).toDouble() / 2);
        out.payment = {image.payment[0], half, half};
    } else if (paid[0] && paid[1] && !paid[2]) {
        out.payment = {image.payment[0], image.payment[1],
                       schoolTotal - image.payment[0] - image.payment[1]};
    } else {
        const Money third = cents(schoolTotal.toDouble() / 3);
        out.payment = {third, third, third};
    }
    for (Money& payment : out.payment) {
        if (out.total() < schoolTotal)
            payment += Money::fromCents(1);
    }
    for (int i = 1; i < 3; ++i) {
        const double p = out.payment[i].toDouble();
        out.penPayment[i] = Rounded(p + p * schoolPenaltyPct / 100);
    }
    return out;
}

namespace {

// A line levied on land and improvements apart: computed when its rate is in use, else its
// face stays and its discount and penalty are zero.
void levyLine(AmountTriple& line, bool inUse, qint64 land, qint64 impr, double mill,
              double discountPct, double penaltyPct) {
    if (inUse)
        line = MillageLine(land, impr, mill, discountPct, penaltyPct);
    else
        line = {Money(), line.face, Money()};
}

// The school face of the assessment, or nothing when a plain millage of zero leaves the face
// as it stands.
std::optional<Money> schoolFaceOfAssessment(qint64 value, const SchoolRate& rate) {
    if (!rate.formula && rate.mill == 0)
        return std::nullopt;
    return SchoolFace(value, rate);
}

} // namespace

ComputedBill ComputeFromAssessment(const RealEstateAmounts& before, const AssessmentComputation& c,
                                   const RealEstateRates& rates) {
    ComputedBill out;
    RealEstateAmounts& a = out.amounts;
    a = before;
    const qint64 land = c.land;
    const qint64 impr = c.impr;

    if (c.county) {
        a.county = MillageLine(land, impr, rates.countyMill, rates.countyDiscountPct,
                               rates.countyPenaltyPct);
        levyLine(a.library, rates.libraryMill != 0, land, impr, rates.libraryMill,
                 rates.countyDiscountPct, rates.countyPenaltyPct);
        levyLine(a.countySpecial, rates.countySpecialMill != 0, land, impr, rates.countySpecialMill,
                 rates.countyDiscountPct, rates.countyPenaltyPct);
    }
    if (c.twp) {
        levyLine(a.twp, rates.twpMill != 0, land, impr, rates.twpMill, rates.twpDiscountPct,
                 rates.twpPenaltyPct);
        for (int i = 0; i < 3; ++i)
            levyLine(a.special[i], c.specialNamed[i], land, impr, rates.specialMill[i],
                     rates.twpDiscountPct, rates.twpPenaltyPct);
    }
    out.schoolGross = before.school;
    if (c.school) {
        const std::optional<Money> gross = schoolFaceOfAssessment(land + impr, rates.school);
        const std::optional<Money> share = rates.school.formula ? std::nullopt : c.schoolShareFace;
        out.schoolGross = SchoolLine(gross.value_or(before.school.face), Money(), rates.school,
                                     rates.schoolDiscountPct, rates.schoolPenaltyPct, share);
        if (const std::optional<Money> special =
                schoolFaceOfAssessment(land + impr, rates.schoolSpecial))
            a.schoolSpecial =
                TripleFromFace(*special, rates.schoolDiscountPct, rates.schoolPenaltyPct);
        else
            a.schoolSpecial = {Money(), before.schoolSpecial.face, Money()};

        if (c.act1)
            a.exclusion = ComputeAct1Exclusion(land, impr, before.exclusion.homestead,
                                               before.exclusion.farmstead, rates.school,
                                               rates.schoolDiscountPct, rates.schoolPenaltyPct);
        // A face left as it stands already is what it is; a computed one loses the exclusion,
        // which stays on the bill until it is zeroed by hand.
        if (gross)
            a.school.face = *gross - a.exclusion.excFace.face;
        // Held as Accept saves it: worked on the net face.
        a.school = SchoolLine(a.school.face, Money(), rates.school, rates.schoolDiscountPct,
                              rates.schoolPenaltyPct, share);
        if (c.installments)
            a.installments = InstallmentsOnComputing(a.schoolFace(), before.installments, c.paid,
                                                     rates.schoolPenaltyPct);
        else
            a.installments = Installments{};
    }
    a.homesteadFlag = HomesteadFlag(c.act1, a.exclusion.homestead);
    a.farmsteadFlag = FarmsteadFlag(c.act1, a.exclusion.farmstead);
    return out;
}

void RecomputeDiscountPenalty(RealEstateAmounts& a, const RealEstateRates& rates,
                              const std::array<bool, 3>& specialNamed,
                              std::optional<Money> schoolShareFace) {
    auto fromFace = [](AmountTriple& line, bool inUse, double discountPct, double penaltyPct) {
        line = inUse ? TripleFromFace(line.face, discountPct, penaltyPct)
                     : AmountTriple{Money(), line.face, Money()};
    };
    const double cd = rates.countyDiscountPct;
    const double cp = rates.countyPenaltyPct;
    fromFace(a.county, true, cd, cp);
    fromFace(a.library, rates.libraryMill != 0, cd, cp);
    fromFace(a.countySpecial, rates.countySpecialMill != 0, cd, cp);
    const double td = rates.twpDiscountPct;
    const double tp = rates.twpPenaltyPct;
    fromFace(a.twp, true, td, tp);
    for (int i = 0; i < 3; ++i)
        fromFace(a.special[i], specialNamed[i], td, tp);
    const double sd = rates.schoolDiscountPct;
    const double sp = rates.schoolPenaltyPct;
    a.school = SchoolLine(a.school.face, Money(), rates.school, sd, sp, schoolShareFace);
    // The special's test goes by the school's formula flag, not its own.
    fromFace(a.schoolSpecial, rates.school.formula || rates.schoolSpecial.mill != 0, sd, sp);
}
