#pragma once
// The real-estate tax bill on plain letter paper: what a run reads once (the office, its rates,
// dates and notice lines), the bill drawn twice with its tear line, the mailing page with its
// back panel, the installment coupons, the late billing test, and the run itself, which walks
// the duplicate in the chosen order and draws bill after bill onto one surface.

#include "bills/bill_sheet.h"
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
// What a bill of either duplicate takes from the office in its frame: the "Payable To:" and
// office hours lines, the county, the bill number, the dates under the amount captions and the
// mailing date.
void FillFaceFromOffice(BillFace& face, const REBillOffice& office, BillingFrame frame,
                        const QSqlRecord& bill);
// The Code 39 payload: "20" (early) or "30" (late), the two-digit year of `today`, District and
// the trimmed Control.
QString REBillPayload(BillingFrame frame, const QDate& today, const QString& district,
                      const QString& control);

// Draws the pages of one bill (as it stands): the mailing page when asked, the two copies, the
// coupon page of a late bill paying in installments. Each page ends with NewPage. `sequence`
// is the bill's number in the run (shown in ZIP code order).
void DrawRETaxBill(ReportSurface& surface, const REBillOffice& office, const REBillLook& look,
                   const QSqlRecord& bill, int sequence);

// The mailing page with its back panel, under this headline ("*** OFFICIAL ... ***").
void DrawREMailingPage(ReportSurface& surface, const REBillOffice& office, const REBillLook& look,
                       const QSqlRecord& bill, int sequence, const QString& headline);

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

using REBillRunResult = BillRunResult;
using REBillProgress = BillProgress;

// Walks the bills of the run and draws them on the surface (which may stream its pages). The
// surface is neither set up nor ended here: the caller does both.
REBillRunResult RunRETaxBills(QSqlDatabase db, const REBillOffice& office, const REBillRun& run,
                              ReportSurface& surface, const REBillProgress& progress = {});
