#pragma once
// The real-estate receipt: what it prints, the receipt printer it goes to, and the copies
// question before it. The payment screen calls AskAndPrintREReceipt after writing the receipt
// (when "Print A Receipt" is ticked); the reprint screen calls it from its Print button.

#include "core/money.h"
#include "reports/report_surface.h"

#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
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

// Everything a receipt prints besides the screen's fields, read once.
struct REReceiptData {
    QSqlRecord receipt; // the TCReceipt row
    QString district, ward, billNo;
    QString taxYear;
    QString line1, line2, line3; // the municipal Millfile row's heading lines
    QString twpBoro, btFlag;
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

// The footer's sentences: "Your payment was credited on ..." and, for installments,
// "Installment payments received. (...)".
QStringList ReceiptCreditSentences(const QSqlRecord& receipt, const QString& btFlag);

enum class ReceiptPrintOutcome {
    Printed,   // the copies went to the receipt printer
    NoCopies,  // 0 copies were asked for: nothing printed
    Cancelled, // the copies question was cancelled ("Receipt NOT printed.")
    NoPrinter, // no receipt printer assigned (its message shown)
    Failed     // the receipt or the printer failed (its message shown)
};

struct REReceiptRequest {
    QString recnum;
    int copies = 1;
    bool duplicate = false; // a reprint: "DUPLICATE RECEIPT"
    // The calling screen's fields; without them the receipt's payor and the bill as it stands.
    std::optional<ReceiptScreenText> fields;
};

// The print routine: the receipt printer of tbl_Printers ("There is currently no receipt
// printer assigned." when there is none), then one page per copy in one job.
ReceiptPrintOutcome PrintREReceipt(QSqlDatabase db, const REReceiptRequest& request);

// The copies question of the payment and reprint screens ("Enter the number of receipts to
// print:", 0 to 9, with its cancel question), then the print routine with the screen's fields.
// A reprint (the calling screen is frmREReprintReceipt) prints "DUPLICATE RECEIPT". Sets the
// session's ReceiptCopiesText and ReceiptCopies.
ReceiptPrintOutcome AskAndPrintREReceipt(QWidget* callingScreen, const QString& recnum,
                                         QSqlDatabase db = QSqlDatabase());
