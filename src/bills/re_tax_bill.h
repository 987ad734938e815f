#pragma once
// The real-estate tax bill on plain letter paper: what a run reads once (the office, its rates,
// dates and notice lines), the bill drawn twice with its tear line, the mailing page with its
// back panel, the installment coupons, the late billing test, and the run itself, which walks
// the duplicate in the chosen order and draws bill after bill onto one surface.

#include "core/money.h"
#include "core/tax_database.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <array>
#include <functional>

class ReportSurface;

// The two mailings of a year: county and municipal bills early, school bills late.
enum class BillingFrame { Early, Late };

// The bodies a bill of this frame shows: those whose Millfile flag names the frame.
struct BilledBodies {
    bool county = false;
    bool twp = false;
    bool school = false;
    bool any() const { return county || twp || school; }
};

// Everything a run reads once.
struct REBillOffice {
    QString district;
    QString ward;
    QString twpBoro; // 30 characters, as stored
    QString btFlag;
    QString schoolName;
    QString county; // tbl_County's name
    QString countyAddr2, countyCity, countyState, countyZipCode;
    QSqlRecord countyRates; // the Millfile row '00' '0'
    QSqlRecord rates;       // the Millfile row of the district
    struct SpecialTax {
        double mill = 0;
        QString taxKey;
        QString name; // Desc1 in capitals, 10 characters
    };
    std::array<SpecialTax, 3> specialTaxes;

    // False, with the reason, when the database cannot be read.
    static bool read(QSqlDatabase db, REBillOffice* office, QString* error = nullptr);
    BilledBodies bodies(BillingFrame frame) const;
};

// The choices of one run that shape a bill.
struct REBillLook {
    BillingFrame frame = BillingFrame::Early;
    bool printAddress = false;   // chkPrintAddr: the mailing page and back panel
    bool printHomestead = false; // chkPrintHomestead: the installment guidance and "  H/F"
    bool zipOrder = false;       // the run's sequence number on the mailing page
};

// "Discount: County @ 2%, Twp @ 1.25%, School @ 2%" (or "Penalty: ..."): the billed bodies'
// rates, county, municipal, school.
QString BillRateLine(const REBillOffice& office, const BilledBodies& bodies, bool penalty);
// The collector line of the return block: "Maple Twp Tax Coll." or "Alder Borough Tax Coll.".
QString CollectorLine(const QString& twpBoro);
// The Code 39 payload: "20" (early) or "30" (late), the two-digit year of `today`, District and
// the trimmed Control.
QString REBillPayload(BillingFrame frame, const QDate& today, const QString& district,
                      const QString& control);

// Draws the pages of one bill (as it stands): the mailing page when asked, the two copies, the
// coupon page of a late bill paying in installments. Each page ends with NewPage. `sequence`
// is the bill's number in the run (shown in ZIP code order).
void DrawRETaxBill(ReportSurface& surface, const REBillOffice& office, const REBillLook& look,
                   const QSqlRecord& bill, int sequence);

// The late billing test: true when the bill is to be mailed again because it was added after
// billing or its address changed since it was billed. `bill` is the bill as it stands.
bool PassesLateBillingTest(QSqlDatabase db, const QSqlRecord& bill);

// The query of a run by its choices.
QString REBillQuery(bool samples, bool zipOrder, bool ascending);

struct REBillRun {
    REBillLook look;
    bool samples = false;
    bool ascending = false; // chkPlainPaperCopy
    QString startBill;      // padded, or blank for the first row
    int mailers = 0;
    bool lateBillingRun = false;
};

struct REBillRunResult {
    enum class Stop {
        Finished,
        NoRows,          // the query found no bill
        StartNotFound,   // the start bill is not among them
        NoBodies,        // no body bills in the frame
        IncompleteChain, // a bill's adjustment or address chain is broken (bill in `bill`)
        Cancelled,
        Error,
    };
    Stop stop = Stop::Finished;
    int printed = 0;
    BillNow bill; // the bill the run stopped on
    QString error;
};

// Called before each bill is drawn, with the bill as it stands; false cancels the run there.
using REBillProgress = std::function<bool(const QSqlRecord& bill, int printed)>;

// Walks the bills of the run and draws them on the surface (which may stream its pages). The
// surface is neither set up nor ended here: the caller does both.
REBillRunResult RunRETaxBills(QSqlDatabase db, const REBillOffice& office, const REBillRun& run,
                              ReportSurface& surface, const REBillProgress& progress = {});

// The surface set-up of a bill run: portrait letter, ARIAL bold, transparent text.
void SetUpBillSurface(ReportSurface& surface);
