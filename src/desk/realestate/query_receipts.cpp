#include "desk/realestate/query_receipts.h"

#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/reprint_receipt.h"
#include "desk/realestate/void_receipt.h"

#include <QPushButton>
#include <QStringList>

namespace {

QueryListKind receiptListKind() {
    using F = QueryGridModel::Format;
    QueryListKind k;
    k.screenName = "frmREQueryReceipts";
    k.caption = "Query Real Estate Tax Receipts";
    k.boxTitle = "Query Receipts";
    k.gridName = "dtgReceiptList";
    k.gridFrameName = "fraReceiptList";
    k.gridCaption = "Search Receipts File";
    k.columns = {
        {"Control", "Control", F::Text},
        {"Bill #", "BillNo", F::Text},
        {"Name", "Name", F::Text},
        {"Map3", "Map3", F::Text},
        {"Map4", "Map4", F::Text},
        {"Map5", "Map5", F::Text},
        {"Receipt Number", "RecNum", F::Text},
        {"Payment", "Total", F::Money},
        {"Date", "RDate", F::Date},
        {"Voided", "VDate", F::Date},
        {"C Pd", "CPayFlag", F::Text},
        {"M Pd", "TPayFlag", F::Text},
        {"S Pd", "SPayFlag", F::Text},
        {"Pay1Flag", "Pay1Flag", F::Text},
        {"Pay2Flag", "Pay2Flag", F::Text},
        {"Pay3Flag", "Pay3Flag", F::Text},
    };
    k.widths = {60, 50, 200, 50, 50, 50, 110, 90, 80, 80, 40, 40, 40, 60, 60, 60};
    k.derived = {{"Map", {"Map3", "Map4", "Map5"}, false}, {"UName", {"Name"}, true}};
    k.sql = ReceiptListSql();
    k.options = {{QuerySearch::RecNum, "optRecNum", "Receipt &Number", {"RecNum"}},
                 {QuerySearch::Date, "optDate", "&Date Received", {"RDate", "RecNum"}},
                 {QuerySearch::Name, "optName", "N&ame", {"Name", "Control"}},
                 {QuerySearch::Bill, "optBill", "&Bill #", {"BillNo", "RecNum"}},
                 {QuerySearch::Control, "optControl", "C&ontrol #", {"Control"}},
                 {QuerySearch::Map, "optMap", "&Map #", {"Map3", "Map4", "Map5"}}};
    k.rowButtons = {{"cmdVoidReceipt", "&Void Receipt"}, {"cmdReprintReceipt", "&Reprint Receipt"}};
    k.numberField = "RecNum";
    k.receipts = true;
    return k;
}

} // namespace

QString ReceiptListSql() {
    QStringList amounts;
    for (int line = 0; line < TaxLineCount; ++line)
        amounts << DiscountColumn(line) << FaceColumn(line) << PenaltyColumn(line);
    return QStringLiteral("SELECT Control, BillNo, Name, Map3, Map4, Map5, Recnum AS RecNum, "
                          "RDate, %1 AS Total, VDate, CPayFlag, TPayFlag, SPayFlag, Pay1Flag, "
                          "Pay2Flag, Pay3Flag FROM TCReceipt")
        .arg(AmountSum(amounts));
}

frmREQueryReceipts::frmREQueryReceipts(QWidget* parent)
    : QueryListScreen(receiptListKind(), parent) {
    dtgReceiptList = grid;
    receiptList = model;
    cmdVoidReceipt = rowButton("cmdVoidReceipt");
    cmdReprintReceipt = rowButton("cmdReprintReceipt");
    connect(cmdVoidReceipt, &QPushButton::clicked, this, [this] { toVoid(); });
    connect(cmdReprintReceipt, &QPushButton::clicked, this, [this] { toReprint(); });
}

void frmREQueryReceipts::toVoid() {
    const QString recnum = currentNumber();
    if (recnum.isEmpty())
        return;
    HandToScreen<frmREVoidReceipt>("frmREVoidReceipt", recnum, this,
                                   &frmREVoidReceipt::receiptVoided);
}

void frmREQueryReceipts::toReprint() {
    const QString recnum = currentNumber();
    if (recnum.isEmpty())
        return;
    if (auto* target = ShowQueryTarget<frmREReprintReceipt>("frmREReprintReceipt"))
        target->openFromQuery(recnum);
}
