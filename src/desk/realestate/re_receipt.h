#pragma once
// The receipts of the counter: one page drawing and one print routine serve both duplicates.
// A duplicate fills a ReceiptPage (its heading, payor, owner, parcel block, bar code, table rows
// and closing sentences) and DrawReceiptPage draws it; PrintReceiptJob sends the copies to the
// receipt printer, AskAndPrintReceipt asks the copies first. The real-estate receipt is built
// here; the per capita one beside its screens.

#include "core/money.h"
#include "core/tax_database.h"
#include "reports/report_surface.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

class QWidget;

// The payor, owner and parcel as the calling screen shows them (with its adjustments and
// address changes); the receipt prints these, not the stored ones.
struct ReceiptScreenText {
    QString payor, pAddr1, pAddr2, pCity, pState, pZipCode, pZipCode2, checknum;
    QString name, coOwner, addr1, addr2, city, state, zipCode, zipCode2;
    QString control, map3, map4, map5, desc1, desc2, desc3;
    QString assLand, assImpr;

    // Read by name from the screen's fields: txtPayor, txtPAddr1, ..., cboPState, ...,
    // txtAssLand, txtAssImpr. A field the screen lacks reads empty.
    static ReceiptScreenText fromScreen(const QWidget* screen);
    // The receipt's payor and check, and the bill as it stands (for callers without a screen).
    static ReceiptScreenText fromRows(const QSqlRecord& receipt, const QSqlRecord& bill);
};

// ---------------------------------------------------------------------------------------------
// The page of a receipt, for either duplicate
// ---------------------------------------------------------------------------------------------

// One row of the receipt's table: YEAR, DESCRIPTION, MILLS, FACE, DISCOUNT, PENALTY, PAYMENT.
struct ReceiptTableRow {
    QString year, description, mills, face, discount, penalty, payment;
};

// A line of the parcel block in the right column, with an optional figure right-aligned
// beside it (the assessment).
struct ReceiptParcelLine {
    QString text;
    QString figure;
};

struct ReceiptPage {
    QString line1, twpBoro, line2, line3; // the heading
    QStringList payor;                    // name, address lines present, city line
    QStringList owner;
    QString checknum;
    QString recnum;
    QString taxYear;
    QString barcodePayload; // the kind ("40", "41") and the receipt number
    std::vector<ReceiptParcelLine> parcel;
    QString tableTitle;
    std::vector<ReceiptTableRow> rows;
    ReceiptTableRow total;
    bool duplicate = false;             // "DUPLICATE RECEIPT"
    std::vector<QStringList> sentences; // each sentence in pieces, wrapped between them
    QDate voided;                       // "VOIDED " and the date when valid
};

// Draws one copy of a receipt on the current page (no NewPage).
void DrawReceiptPage(ReportSurface& surface, const ReceiptPage& page);

// Helpers for the rows: money in "$#,###,###.##", a rate in the pattern given.
QString ReceiptMoneyText(Money amount);
QString ReceiptRateText(double rate, const char* pattern);
// A row of amounts: the discount filled only at flag D, the penalty only at P (or when given,
// for installments); the payment is face plus what is filled.
ReceiptTableRow ReceiptAmountRow(const QString& year, const QString& description,
                                 const QString& mills, Money face, Money discount, Money penalty,
                                 const QString& periodFlag, bool penaltyGiven = false);
// The "TOTAL" "PAYMENT:" row.
ReceiptTableRow ReceiptTotalRow(Money face, Money discount, Money penalty);
// The payor lines and the owner lines of the left column: the name, the address lines that are
// not empty, and "City, ST.  zip-ext".
QStringList ReceiptAddressLines(const QStringList& nameAndAddress, const QString& city,
                                const QString& state, const QString& zip, const QString& zip2);
// The closing sentences as pieces: "Your payment was credited on ..." and, for installments,
// "Installment payments received. (...)".
std::vector<QStringList> ReceiptSentencePieces(const QSqlRecord& receipt, const QString& btFlag);

enum class ReceiptPrintOutcome {
    Printed,   // the copies went to the receipt printer
    NoCopies,  // 0 copies were asked for: nothing printed
    Cancelled, // the copies question was cancelled ("Receipt NOT printed.")
    NoPrinter, // no receipt printer assigned (its message shown)
    Failed     // the receipt or the printer failed (its message shown)
};

// The print routine of both duplicates: the receipt printer of tbl_Printers ("There is
// currently no receipt printer assigned." when there is none), then the page that `load` gives
// (nothing and a reason when the receipt cannot be read), once per copy, in one job.
using ReceiptPageLoader = std::function<std::optional<ReceiptPage>(QString* error)>;
ReceiptPrintOutcome PrintReceiptJob(QSqlDatabase db, const QString& recnum, int copies,
                                    const ReceiptPageLoader& load);

// The copies question of the payment and reprint screens ("Enter the number of receipts to
// print:", 0 to 9, with its cancel question); sets the session's ReceiptCopiesText and
// ReceiptCopies. Then `print` with the count. Nothing when cancelled.
ReceiptPrintOutcome AskAndPrintReceipt(const std::function<ReceiptPrintOutcome(int)>& print);

// What every receipt prints besides its screen's fields, read once: the receipt row, the bill's
// municipality and number (found by the receipt's control number), the county and municipal
// Millfile rows with the year and heading lines, and the municipality's name and kind.
struct ReceiptOffice {
    QSqlRecord receipt;
    QString district, ward, billNo;
    QString taxYear;
    QString line1, line2, line3; // the municipal Millfile row's heading lines
    QString twpBoro, btFlag;
    QSqlRecord countyRow, municipalRow;
    QString officeDistrict, officeWard; // tbl_District's first row
};
// False with "Receipt Number Not On File" when the receipt table has no such number.
bool LoadReceiptOffice(QSqlDatabase db, const QString& receiptTable, const QString& masterTable,
                       const QString& recnum, ReceiptOffice* office, QString* error = nullptr);
// The heading, receipt number, year, bar code (the kind and the number), closing sentences and
// date of voiding of a page.
void FillReceiptHeading(ReceiptPage& page, const ReceiptOffice& office, const QString& kind);
// "Control #: " with district, ward and control number.
QString ReceiptControlLine(const ReceiptOffice& office, const QString& control);

// ---------------------------------------------------------------------------------------------
// The real-estate receipt
// ---------------------------------------------------------------------------------------------

// Everything a real-estate receipt prints besides the screen's fields, read once.
struct REReceiptData : ReceiptOffice {
    double countySMR = 0, LMR = 0, TMR = 0, SMR = 0, S1MR = 0;
    QString s1TaxName;
    struct SpecialTax {
        QString name;
        double mill = 0;
    };
    std::vector<SpecialTax> specials; // the municipality's Spectax rows in TaxKey order, up to 5
};

// Reads the receipt with that number and what goes with it. False with the reason when there
// is no such receipt.
bool LoadREReceipt(QSqlDatabase db, const QString& recnum, REReceiptData* data,
                   QString* error = nullptr);

// Draws one copy of the receipt on the current page (no NewPage).
void DrawREReceipt(ReportSurface& surface, const REReceiptData& data,
                   const ReceiptScreenText& fields, bool duplicate);

// The page of a real-estate receipt.
ReceiptPage REReceiptPage(const REReceiptData& data, const ReceiptScreenText& fields,
                          bool duplicate);

// The footer's sentences: "Your payment was credited on ..." and, for installments,
// "Installment payments received. (...)".
QStringList ReceiptCreditSentences(const QSqlRecord& receipt, const QString& btFlag);

// A receipt to print: its number, the copies, whether it is a reprint ("DUPLICATE RECEIPT"),
// and the calling screen's fields (without them the receipt's payor and the bill as it stands).
struct ReceiptRequest {
    QString recnum;
    int copies = 1;
    bool duplicate = false;
    std::optional<ReceiptScreenText> fields;
};
using REReceiptRequest = ReceiptRequest;

// The request of a calling screen: its fields, and a reprint when it is the reprint screen
// of that name.
ReceiptRequest ScreenReceiptRequest(QWidget* callingScreen, const QString& recnum, int copies,
                                    const char* reprintScreenName);
// The fields a receipt prints: the request's, or the receipt's payor and the bill as it stands.
ReceiptScreenText ReceiptFieldsFor(QSqlDatabase db, const ReceiptRequest& request,
                                   const ReceiptOffice& office, Duplicate duplicate);

// The print routine: the receipt printer of tbl_Printers ("There is currently no receipt
// printer assigned." when there is none), then one page per copy in one job.
ReceiptPrintOutcome PrintREReceipt(QSqlDatabase db, const REReceiptRequest& request);

// The copies question of the payment and reprint screens ("Enter the number of receipts to
// print:", 0 to 9, with its cancel question), then the print routine with the screen's fields.
// A reprint (the calling screen is frmREReprintReceipt) prints "DUPLICATE RECEIPT". Sets the
// session's ReceiptCopiesText and ReceiptCopies.
ReceiptPrintOutcome AskAndPrintREReceipt(QWidget* callingScreen, const QString& recnum,
                                         QSqlDatabase db = QSqlDatabase());
