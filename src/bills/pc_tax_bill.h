#pragma once
// The per capita and occupation tax bill: the real-estate bill's sheet with the per capita
// rows, right column and name block, its mailing page, and the run over PCMaster in bill
// number, name or ZIP code order. A second-notice run lists only the bodies still unpaid.

#include "bills/bill_sheet.h"
#include "bills/re_tax_bill.h"

#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>

class ReportSurface;

// Everything a per capita run reads once: the real-estate office's values and the telephone
// of the county's assessment office for the fixed text of the right column.
struct PCBillOffice {
    REBillOffice office;
    QString assessmentPhone; // tbl_Settings AssessmentOfficePhone

    static bool read(QSqlDatabase db, PCBillOffice* office, QString* error = nullptr);
};

enum class PCBillOrder { BillNo, Name, ZipCode };

// The choices of one run that shape a bill.
struct PCBillLook {
    BillingFrame frame = BillingFrame::Early;
    bool printAddress = false; // chkPrintAddr: the mailing page before the bill
    bool secondNotice = false; // chkSecondNotice: the boxed second notice, unpaid bodies only
    bool zipOrder = false;     // the run's sequence number on the mailing page
};

// The bodies a bill lists: those billed in the frame and, on a second notice, still unpaid.
BilledBodies PCBillBodies(const BilledBodies& billed, bool secondNotice, const QSqlRecord& bill);

// The Code 39 payload: "21" (early) or "31" (late), the two-digit year of `today`, District and
// the trimmed Control.
QString PCBillPayload(BillingFrame frame, const QDate& today, const QString& district,
                      const QString& control);

// The name on the mailing page: Prefix, FName, MName, LName and Suffix, each followed by a blank
// when not empty; the stored Name when all are empty.
QString PCMailingName(const QSqlRecord& bill);

// Draws the pages of one bill (as it stands): the mailing page when asked, then the sheet with
// its two copies. Each page ends with NewPage.
void DrawPCTaxBill(ReportSurface& surface, const PCBillOffice& office, const PCBillLook& look,
                   const QSqlRecord& bill, int sequence);

// The mailing page (no back panel) under this headline ("*** OFFICIAL ... ***").
void DrawPCMailingPage(ReportSurface& surface, const PCBillOffice& office, const PCBillLook& look,
                       const QSqlRecord& bill, int sequence, const QString& headline);

// The query of a run by its choices.
QString PCBillQuery(bool samples, PCBillOrder order, bool ascending, bool secondNotice);

struct PCBillRun {
    PCBillLook look;
    PCBillOrder order = PCBillOrder::BillNo;
    bool samples = false;
    bool ascending = false; // chkPlainPaperCopy
    QString startBill;      // padded, or blank for the first row
    int mailers = 0;
    bool lateBillingRun = false;
};

// Walks the bills of the run and draws them on the surface (which may stream its pages). The
// surface is neither set up nor ended here: the caller does both.
BillRunResult RunPCTaxBills(QSqlDatabase db, const PCBillOffice& office, const PCBillRun& run,
                            ReportSurface& surface, const BillProgress& progress = {});
