#pragma once
// A per capita and occupation bill as the adjustment screen computes and saves it: its six tax
// lines, the rates they come from, and the write sequences (add a bill, record an adjustment or
// an exoneration, take an exoneration back), which run through the chain writes that the
// real-estate duplicate uses too.

#include "core/money.h"
#include "desk/realestate/chain_writes.h"
#include "desk/realestate/payment_rules.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <array>

class QSqlRecord;

// The discount and penalty columns of a line (its face column is PerCapitaFaceColumn).
QString PerCapitaDiscountColumn(int line);
QString PerCapitaPenaltyColumn(int line);

struct PerCapitaBillAmounts {
    std::array<AmountTriple, PerCapitaLineCount> line{};

    Money bodyFace(int body) const {
        return line[std::size_t(body * 2)].face + line[std::size_t(body * 2 + 1)].face;
    }
    Money totalFace() const { return bodyFace(0) + bodyFace(1) + bodyFace(2); }
    bool operator==(const PerCapitaBillAmounts&) const = default;
};
PerCapitaBillAmounts PerCapitaBillAmountsFromRecord(const QSqlRecord& bill);

// The rates of one body's two lines.
struct PerCapitaBodyRates {
    double perCapita = 0;  // SPC (county row), TPC, SPC (municipal row): a flat amount
    double occupation = 0; // SMO, TMO, SMO: a flat amount, or mills on the occupation value
    bool occupationInMills = false;
    double discountPct = 0; // PCSD, PCTD, PCSD
    double penaltyPct = 0;  // PCSP, PCTP, PCSP

    // The body levies something: its lines are shown.
    bool levies() const { return perCapita != 0 || occupation != 0; }
};
struct PerCapitaRates {
    std::array<PerCapitaBodyRates, 3> body{};
};

// The rates from the county and the municipal row of Millfile. The county's percentages count
// in whole percent (WholePercent); the others as stored. The county's and the municipality's
// occupation go by mills in district "37" only, the school's only in the school district named
// "Larkspur Hill" (tbl_Twpboro SchoolName); elsewhere they are flat amounts.
PerCapitaRates PerCapitaRatesFromMillfile(const QSqlRecord& countyRow,
                                          const QSqlRecord& municipalRow, const QString& district,
                                          const QString& schoolName);

// The faces of the ticked bodies from their rates and the occupation value (whole dollars), with
// their discount and penalty: per capita the flat rate; occupation RoundTo(mill / 1000 * value)
// or the flat rate. Bodies not ticked keep what `before` holds.
PerCapitaBillAmounts ComputePerCapitaAmounts(const PerCapitaBillAmounts& before,
                                             qint64 occupationValue, const BodyTicks& ticked,
                                             const PerCapitaRates& rates);
// Every line's discount and penalty again from its face, whatever the ticks.
void RecomputePerCapitaDiscountPenalty(PerCapitaBillAmounts& amounts, const PerCapitaRates& rates);

// A whole per capita bill image, as PCMaster and PCAdjust hold it.
struct PerCapitaBillImage {
    QString control;
    QString billNo;
    QString name; // built from the parts
    QString prefix, lName, fName, mName, suffix, relationship;
    QString addr1; // care of
    QString addr2; // built from street number and name
    QString streetNumber, streetName;
    QString city, state, zipCode, zipCode2;
    QString occuCode, occuDesc, occuValue;
    QString birthdate; // "mm/dd/yyyy", or empty when none is known
    PerCapitaBillAmounts amounts;
};

// Adding a bill: PCBillNum moves past the number taken, the PCMaster row with every flag blank,
// then the PCAdds row. image.billNo is "A" and four digits, image.control "A" and five.
struct PerCapitaAddition {
    PerCapitaBillImage image;
    QString district;
    QString ward;
    QString taxYear;
    QDate addDate;
    QString reason;
};
bool AddPerCapitaBill(QSqlDatabase db, const PerCapitaAddition& addition, QString* error = nullptr);

// An adjustment (AdjFlag "A" on the master, then the image in PCAdjust with AdjFlag "A") or an
// exoneration (AdjFlag "A" and all three pay flags "X" on the master, whatever the ticks; the
// image's AdjFlag "X").
struct PerCapitaAdjustment {
    bool exonerate = false;
    PerCapitaBillImage image;
    int adjNo = 1;
    QDate adjDate;
    QString reason;
};
bool RecordPerCapitaAdjustment(QSqlDatabase db, const PerCapitaAdjustment& adjustment,
                               QString* error = nullptr);

// Taking an exoneration back: all three pay flags cleared, AdjFlag "A" while an earlier
// adjustment remains, the last PCAdjust row deleted.
bool RecordPerCapitaUnexoneration(QSqlDatabase db, const QString& billNo, int lastAdjNo,
                                  QString* error = nullptr);
