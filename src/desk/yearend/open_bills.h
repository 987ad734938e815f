#pragma once
// What is left to collect at the end of the year: the open parts of every bill, at face and at
// penalty, read through the bill's adjustment and address chains. The left-for-collection
// reports, the returns proofs and the returns file all walk the bills through here, so the
// three cannot disagree about what is open.

#include "core/money.h"
#include "reports/report_frame.h"

#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <array>
#include <functional>

// The nine real-estate tax lines in the order of the millage table.
inline constexpr int ReLineCount = 9;
extern const std::array<const char*, ReLineCount> ReFaceColumns;    // County ... Sch1Face
extern const std::array<const char*, ReLineCount> RePenaltyColumns; // PCounty ... PSch1Face
// Which body each line belongs to: 0 county, 1 municipality, 2 school.
extern const std::array<int, ReLineCount> ReLineBody;

// The six per capita lines: county, municipal and school per capita and occupation.
inline constexpr int PcLineCount = 6;
extern const std::array<const char*, PcLineCount> PcFaceColumns;
extern const std::array<const char*, PcLineCount> PcPenaltyColumns;

// The office and its millage table, read once per run.
struct YearEndOffice {
    ReportLookups lookups;
    QString taxYear;
    QString collector;         // Line1 of the municipal Millfile row
    QString shortWord;         // "Twp", "Boro", "City"
    bool streetLights = false; // district 39: the third special tax is the street light tax
    // Each line's name in the millage table and its rate; an empty name: the line is not in
    // the table (no library millage, no such special tax).
    std::array<QString, ReLineCount> names;
    std::array<double, ReLineCount> rates{};

    static YearEndOffice read(QSqlDatabase db);
};

// The open amounts of one real-estate bill as it stands.
struct ReOpenBill {
    QSqlRecord bill; // the master row overlaid by its latest adjustment and address change
    int adjNo = 0;
    std::array<Money, ReLineCount> face{};
    std::array<Money, ReLineCount> penalty{};
    bool installmentsOpen = false; // on installments with one still unpaid
    bool prints = false;           // some open part has money

    Money faceTotal() const;
    Money penaltyTotal() const;
};

// The open parts: a body whose flag is blank at its own amounts; a school part on installments
// by its unpaid installments (in the school line); in district 39 the street light split of
// StLtFlag on the municipal lines. `municipalOnly` keeps the county and school lines at zero.
ReOpenBill ReOpenAmounts(const QSqlRecord& bill, bool streetLights, bool municipalOnly = false);

struct PcOpenBill {
    QSqlRecord bill;
    std::array<Money, PcLineCount> face{};
    std::array<Money, PcLineCount> penalty{};
    bool prints = false;
    Money faceTotal() const;
    Money penaltyTotal() const;
};
// `bodies`: which taxing bodies count (county, municipality, school).
PcOpenBill PcOpenAmounts(const QSqlRecord& bill,
                         const std::array<bool, 3>& bodies = {true, true, true});

// How a walk over the bills ended.
struct OpenBillWalk {
    bool ok = true;
    // An integrity fault: the message box to show (the walk stopped at that bill).
    QString faultTitle;
    QString faultText;
    QString error; // a failed statement
};

// Walks the rows of `sql` (a selection of whole master rows), reading each through its chains.
// A missing address chain or adjustment chain stops the walk with the integrity message
// (`adjustmentText` for a missing adjustment). The visitor gets each bill as it stands.
OpenBillWalk WalkBills(QSqlDatabase db, bool perCapita, const QString& sql,
                       const QString& adjustmentText,
                       const std::function<void(const QSqlRecord& bill, int adjNo)>& visit);

// One column of a bill read by a walk. The bills of a walk share the master's layout, so the
// column's place is looked up once rather than by name for every bill.
QVariant BillField(const QSqlRecord& bill, const char* column);

// "012-000001": District as "000" and the bill number as "000000" (an added bill as it is).
QString ParcelNumber(const QString& district, const QString& billNo);
