#pragma once
// Second notices: the reminder mailed after the penalty date to everyone who has not paid, for
// the real-estate and the per capita duplicate, in the county's "NOTICE OF DELINQUENTS" form or
// the plain second tax notice. A notice lists the penalty amounts of the bodies still unpaid,
// with the fixed wording and the year's legal dates. Printing marks nothing on the bills.

#include "bills/bill_sheet.h"
#include "bills/re_tax_bill.h"

#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <vector>

class ReportSurface;

enum class NoticeForm { County, ARS };
// The bodies to list: those billed early, late, or both.
enum class NoticeFrame { Early, Late, Both };

// Everything a notice run reads once. `office` holds the district, its names, the specials and
// the Millfile rows of the chosen year.
struct NoticeOffice {
    Duplicate duplicate = Duplicate::RealEstate;
    QString year;
    REBillOffice office;
    // The county's offices, for the fixed wording (tbl_Settings).
    QString bureauAddress;   // TaxClaimBureauAddress
    QString bureauPhone;     // TaxClaimBureauPhone
    QString agingPhones;     // AgingAgencyPhones
    QString collectionAgent; // CollectionAgent: name and telephone
    QString assessmentPhone; // AssessmentOfficePhone (the per capita mailing page)

    enum class Read { Ok, NoCountyRates, Error };
    static Read read(QSqlDatabase db, Duplicate duplicate, const QString& year,
                     NoticeOffice* office, QString* error = nullptr);
    BilledBodies bodies(NoticeFrame frame) const;
};

struct NoticeLook {
    NoticeForm form = NoticeForm::County;
    NoticeFrame frame = NoticeFrame::Both;
    bool noPersonalChecks = true; // optAllowChecks: "I DO NOT accept personal checks ..."
    bool printAddress = false;    // chkPrintAddr: the mailing page before the notice
    double left = 720;            // twips
    double top = 720;
};

// One listed amount. `detail` lines follow it on the plain notice and add nothing to the total.
struct NoticeLine {
    QString label;
    Money amount;
    QStringList detail;
};

// The listed amounts of a bill (as it stands) for the bodies to list.
std::vector<NoticeLine> NoticeLines(const NoticeOffice& office, const BilledBodies& listed,
                                    NoticeForm form, const QSqlRecord& bill);

// The where clause of the unpaid bills of the bodies to list, without its parentheses.
QString NoticeClauses(Duplicate duplicate, const BilledBodies& listed);

// The Code 39 payload of a notice: "20"/"30" real estate, "21"/"31" per capita (early or both /
// late), the two-digit year of `today`, District and the trimmed Control.
QString NoticePayload(Duplicate duplicate, NoticeFrame frame, const QDate& today,
                      const QString& district, const QString& control);

// Draws the pages of one notice: the mailing page when asked, then the notice. Each page ends
// with NewPage.
void DrawSecondNotice(ReportSurface& surface, const NoticeOffice& office, const NoticeLook& look,
                      const QSqlRecord& bill);

struct NoticeRun {
    NoticeLook look;
    QString startBill; // padded
    int mailers = 9999999;
};

// Walks the unpaid bills from the start bill (per capita: from the start bill's name, in name
// order) and draws a notice for each with something to list. NoBodies, NoRows and
// StartNotFound stop it before any page.
BillRunResult RunSecondNotices(QSqlDatabase db, const NoticeOffice& office, const NoticeRun& run,
                               ReportSurface& surface, const BillProgress& progress = {});
