#pragma once
// The late billing routine's work on the duplicate: bringing the bodies that bill late (the
// township or the school, 'L' in Millfile) in line with what happened after the county's early
// billing. Added bills get the late bodies' taxes computed from their assessment; bills whose
// county amounts were exonerated get the late bodies' amounts exonerated too, as a new
// adjustment row. Each step is one write function, in one transaction.

#include "core/money.h"
#include "core/tax_database.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <array>
#include <functional>

// What the routine reads once: the district, its Millfile row and its special tax slots.
struct LateBillingOffice {
    QString district;
    QString ward;
    QString twpBoro;
    QSqlRecord rates; // the Millfile row of District+Ward
    struct Slot {
        QString taxKey; // blank: an unused slot
        double mill = 0;
        QString specFlag;
    };
    std::array<Slot, 3> slots;

    bool twpLate() const;    // BillTwp 'L'
    bool schoolLate() const; // BillSchool 'L'
    bool anyLate() const { return twpLate() || schoolLate(); }

    static bool read(QSqlDatabase db, LateBillingOffice* office, QString* error = nullptr);
};

// A market value taken for the two-rate tax: 95%, made a whole number (halves to the even
// number), then to the nearest 50 by its last two digits (00-25 down to the hundred, 26-75 to
// the hundred and 50, 76-99 up to the next hundred).
qint64 TwoRateValue(qint64 marketValue);

// The late bodies' amounts of a real-estate bill, in the order of the bill: Twp, S1Face, S2Face,
// S3Face, School, Sch1Face, each as discount, face, penalty. Bodies that do not bill late are
// zero here (and are not written).
struct LateRealEstateAmounts {
    std::array<std::array<Money, 3>, 4> twp{};    // Twp and the three specials
    std::array<std::array<Money, 3>, 2> school{}; // School and Sch1Face
};
LateRealEstateAmounts ComputeLateRealEstate(const LateBillingOffice& office,
                                            const QSqlRecord& master);

// The late bodies' per capita amounts: TPerCapita, TOccupation, SPerCapita, SOccupation, each
// as discount, face, penalty.
struct LatePerCapitaAmounts {
    std::array<Money, 3> twpPerCapita{}, twpOccupation{};
    std::array<Money, 3> schoolPerCapita{}, schoolOccupation{};
};
LatePerCapitaAmounts ComputeLatePerCapita(const LateBillingOffice& office,
                                          const QSqlRecord& master);

// Called at each bill with the count so far.
using LateBillingProgress = std::function<void(int count)>;

struct LateBillingResult {
    bool ok = false;
    int count = 0;
    QString error;
};

// "REAL ESTATE ADDS" / "PER CAPITA ADDS": every added bill (BillNo beginning with "A") gets the
// late bodies' amounts computed from its assessment written on the master and on every
// adjustment row.
LateBillingResult UpdateLateBillingAdds(QSqlDatabase db, Duplicate duplicate,
                                        const LateBillingOffice& office,
                                        const LateBillingProgress& progress = {});

// "REAL ESTATE EXONERATIONS" / "PER CAPITA EXONERATIONS": every adjusted bill whose county
// amounts are zero while the late bodies still have some gets a new adjustment row, a copy of
// the last one with the late bodies' amounts zero, dated `today`.
LateBillingResult ExonerateLateBodies(QSqlDatabase db, Duplicate duplicate,
                                      const LateBillingOffice& office, const QDate& today,
                                      const LateBillingProgress& progress = {});

// The reason of the rows the routine writes, cut to the column's 30 characters.
QString LateBillingReason();
