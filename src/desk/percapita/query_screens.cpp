#include "desk/percapita/query_screens.h"

#include "bills/pc_print_tax_bills.h"
#include "core/session.h"
#include "desk/percapita/address_change.h"
#include "desk/percapita/adjust_tax_bill.h"
#include "desk/percapita/adjust_writes.h"
#include "desk/percapita/pc_handover.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/query_tc.h"

#include <QPushButton>
#include <QStringList>
#include <QTableView>

namespace {

QueryListKind masterListKind() {
    using F = QueryGridModel::Format;
    QueryListKind k;
    k.screenName = "frmPCQueryTC";
    k.caption = "Query Per Capita Tax Billing File";
    k.boxTitle = k.caption;
    k.gridName = "dtgMasterList";
    k.gridFrameName = "fraMasterList";
    k.gridCaption = "Search Master File";
    k.columns = {
        {"Control", "Control", F::Text}, {"Bill #", "BillNo", F::Text},
        {"Name", "Name", F::Text},       {"Discount", "Discount", F::Money},
        {"Face", "Face", F::Money},      {"Penalty", "Penalty", F::Money},
        {"C Pd", "CPayFlag", F::Text},   {"T Pd", "TPayFlag", F::Text},
        {"S Pd", "SPayFlag", F::Text},   {"Adj", "AdjFlag", F::Text},
        {"Addr", "CAddrFlag", F::Text},
    };
    k.widths = {60, 50, 260, 90, 90, 90, 40, 40, 40, 35, 40};
    k.derived = {{"UName", {"Name"}, true}};
    k.sql = PerCapitaMasterListSql();
    k.lateKey = "BillNo";
    k.lateSql = PerCapitaAmountsSql();
    k.distinct = true;
    k.options = {{QuerySearch::Name, "optName", "&Name", {"UName", "BillNo"}},
                 {QuerySearch::Bill, "optBillNo", "&Bill #", {"BillNo"}},
                 {QuerySearch::Control, "optControl", "C&ontrol #", {"Control"}}};
    k.rowButtons = {{"cmdPayment", "P&ayment"},
                    {"cmdAdjust", "A&djust"},
                    {"cmdAddress", "Add&ress"},
                    {"cmdPrintTaxBill", "Print &Tax Bill"},
                    {"cmdPaymentInfo", "Payment &Info"}};
    k.numberField = "BillNo";
    return k;
}

QueryListKind receiptListKind() {
    using F = QueryGridModel::Format;
    QueryListKind k;
    k.screenName = "frmPCQueryReceipts";
    k.caption = "Query Per Capita Tax Receipts";
    k.boxTitle = "Query Receipts";
    k.gridName = "dtgReceiptList";
    k.gridFrameName = "fraReceiptList";
    k.gridCaption = "Search Receipts File";
    k.columns = {
        {"Control", "Control", F::Text}, {"Bill #", "BillNo", F::Text},
        {"Name", "Name", F::Text},       {"Receipt Number", "RecNum", F::Text},
        {"Payment", "Total", F::Money},  {"Date", "RDate", F::Date},
        {"Voided", "VDate", F::Date},    {"C Pd", "CPayFlag", F::Text},
        {"M Pd", "TPayFlag", F::Text},   {"S Pd", "SPayFlag", F::Text},
    };
    k.widths = {60, 50, 240, 110, 90, 80, 80, 40, 40, 40};
    k.derived = {{"UName", {"Name"}, true}};
    k.sql = PerCapitaReceiptListSql();
    k.options = {{QuerySearch::RecNum, "optRecNum", "Receipt &Number", {"RecNum"}},
                 {QuerySearch::Date, "optDate", "&Date Received", {"RDate", "RecNum"}},
                 {QuerySearch::Name, "optName", "N&ame", {"Name", "Control"}},
                 {QuerySearch::Control, "optControl", "C&ontrol #", {"Control"}}};
    k.rowButtons = {{"cmdVoidReceipt", "&Void Receipt"}, {"cmdReprintReceipt", "&Reprint Receipt"}};
    k.numberField = "RecNum";
    k.receipts = true;
    return k;
}

QStringList amountColumns(QString (*column)(int)) {
    QStringList out;
    for (int line = 0; line < PerCapitaLineCount; ++line)
        out << column(line);
    return out;
}

} // namespace

QString PerCapitaMasterListSql() {
    return MasterUnionSql("PCMaster", "PCAddress", {"Control", "BillNo", "Name"},
                          {"CPayFlag", "TPayFlag", "SPayFlag", "AdjFlag", "CAddrFlag"});
}

QString PerCapitaAmountsSql() {
    return QStringLiteral("SELECT %1 AS Discount, %2 AS Face, %3 AS Penalty FROM PCMaster WHERE "
                          "BillNo = ? ORDER BY rowid LIMIT 1")
        .arg(AmountSum(amountColumns(PerCapitaDiscountColumn)),
             AmountSum(amountColumns(PerCapitaFaceColumn)),
             AmountSum(amountColumns(PerCapitaPenaltyColumn)));
}

QString PerCapitaReceiptListSql() {
    QStringList amounts = amountColumns(PerCapitaDiscountColumn);
    amounts << amountColumns(PerCapitaFaceColumn) << amountColumns(PerCapitaPenaltyColumn);
    return QStringLiteral("SELECT Control, BillNo, Name, Recnum AS RecNum, RDate, %1 AS Total, "
                          "VDate, CPayFlag, TPayFlag, SPayFlag FROM PCReceipt")
        .arg(AmountSum(amounts));
}

frmPCQueryTC::frmPCQueryTC(QWidget* parent) : MasterListScreen(masterListKind(), parent) {}

QString frmPCQueryTC::paymentInfoText(const QString& billNo) {
    return PerCapitaPaymentInfoText(currentFlags(false), btFlag(),
                                    ReadPerCapitaReceipts(session().DbConnection, billNo));
}

void frmPCQueryTC::toPayment(const QString& billNo) {
    HandToDeskScreen(QStringLiteral("frmPCReceivePayment"), billNo, this,
                     SIGNAL(paymentReceived(QString)));
}

void frmPCQueryTC::toAdjust(const QString& billNo) {
    if (auto* target = HandToScreen<frmPCAdjustTaxBill>("frmPCAdjustTaxBill", billNo, this,
                                                        &frmPCAdjustTaxBill::billSaved))
        session().QueryOpenedScreen.remove(target->objectName());
}

void frmPCQueryTC::toAddress(const QString& billNo) {
    HandToScreen<frmPCAddressChange>("frmPCAddressChange", billNo, this,
                                     &frmPCAddressChange::addressChanged);
}

void frmPCQueryTC::printTaxBill(const QString& billNo) {
    OpenPCPrintTaxBillsFor(billNo);
}

frmPCQueryReceipts::frmPCQueryReceipts(QWidget* parent)
    : QueryListScreen(receiptListKind(), parent) {
    dtgReceiptList = grid;
    receiptList = model;
    cmdVoidReceipt = rowButton("cmdVoidReceipt");
    cmdReprintReceipt = rowButton("cmdReprintReceipt");
    connect(cmdVoidReceipt, &QPushButton::clicked, this, [this] {
        if (!currentNumber().isEmpty())
            HandToDeskScreen(QStringLiteral("frmPCVoidReceipt"), currentNumber(), this,
                             SIGNAL(receiptVoided(QString)));
    });
    connect(cmdReprintReceipt, &QPushButton::clicked, this, [this] {
        if (!currentNumber().isEmpty())
            HandToDeskScreen(QStringLiteral("frmPCReprintReceipt"), currentNumber(), nullptr,
                             nullptr);
    });
}
