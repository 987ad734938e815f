#pragma once
// The per capita receipt: the counter's receipt page (desk/realestate/re_receipt.h) with the
// per capita lines, the owner's name and address, control and bill number in the parcel block,
// and the bar code kind "41".

#include "desk/realestate/re_receipt.h"

#include <QSqlDatabase>
#include <QString>
#include <optional>

class QWidget;

// Reads PCReceipt and what goes with it. False with the reason when there is no such receipt.
bool LoadPCReceipt(QSqlDatabase db, const QString& recnum, ReceiptOffice* data,
                   QString* error = nullptr);

// The page of a per capita receipt: for each body paid on it, its per capita and occupation
// rows named by the body (a line without rate or money left out), the per capita amount and the
// occupation millage in the MILLS column in "####.00", and the total of the 18 columns.
ReceiptPage PCReceiptPage(const ReceiptOffice& data, const ReceiptScreenText& fields,
                          bool duplicate);

ReceiptPrintOutcome PrintPCReceipt(QSqlDatabase db, const ReceiptRequest& request);

// The copies question, then the print with the calling screen's fields; "DUPLICATE RECEIPT"
// when the calling screen is frmPCReprintReceipt.
ReceiptPrintOutcome AskAndPrintPCReceipt(QWidget* callingScreen, const QString& recnum,
                                         QSqlDatabase db = QSqlDatabase());
