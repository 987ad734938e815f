#include "desk/realestate/query_tc.h"

#include "bills/re_print_tax_bills.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/adjust_tax_bill.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/receive_payment.h"

#include <QPushButton>
#include <QSqlQuery>
#include <QTableView>

namespace {

const char* const QueryTitle = "Query Tax Collector Master File";

QueryListKind masterListKind() {
    using F = QueryGridModel::Format;
    QueryListKind k;
    k.screenName = "frmREQueryTC";
    k.caption = QueryTitle;
    k.boxTitle = QueryTitle;
    k.gridName = "dtgMasterList";
    k.gridFrameName = "fraMasterList";
    k.gridCaption = "Search Master File";
    k.columns = {
        {"Control", "Control", F::Text},    {"Bill #", "BillNo", F::Text},
        {"Name", "Name", F::Text},          {"Map3", "Map3", F::Text},
        {"Map4", "Map4", F::Text},          {"Map5", "Map5", F::Text},
        {"Discount", "Discount", F::Money}, {"Face", "Face", F::Money},
        {"Penalty", "Penalty", F::Money},   {"C Pd", "CPayFlag", F::Text},
        {"M Pd", "TPayFlag", F::Text},      {"S Pd", "SPayFlag", F::Text},
        {"Pay1Flag", "Pay1Flag", F::Text},  {"Pay2Flag", "Pay2Flag", F::Text},
        {"Pay3Flag", "Pay3Flag", F::Text},  {"Adj", "AdjFlag", F::Text},
        {"Addr", "CAddrFlag", F::Text},     {"H/F", "HFFlag", F::Text},
    };
    k.widths = {60, 50, 220, 50, 50, 50, 90, 90, 90, 40, 40, 40, 60, 60, 60, 35, 40, 35};
    k.derived = MasterListKeys();
    k.sql = MasterListSql();
    k.lateKey = "BillNo";
    k.lateSql = MasterAmountsSql();
    k.distinct = true;
    k.options = {{QuerySearch::Name, "optName", "&Name", {"UName", "BillNo"}},
                 {QuerySearch::Bill, "optBill", "&Bill #", {"BillNo"}},
                 {QuerySearch::Control, "optControl", "C&ontrol #", {"Control"}},
                 {QuerySearch::Map, "optMap", "&Map #", {"Map", "UName", "BillNo"}}};
    k.rowButtons = {{"cmdPayment", "P&ayment"},
                    {"cmdAdjust", "A&djust"},
                    {"cmdAddress", "Add&ress"},
                    {"cmdPrintTaxBill", "Print &Tax Bill"},
                    {"cmdPaymentInfo", "Payment &Info"}};
    k.numberField = "BillNo";
    return k;
}

} // namespace

QString MasterAmountsSql() {
    QStringList d, f, p;
    for (int line = 0; line < TaxLineCount; ++line) {
        d << DiscountColumn(line);
        f << FaceColumn(line);
        p << PenaltyColumn(line);
    }
    // The master's amounts, under either name.
    return QStringLiteral("SELECT %1 AS Discount, %2 AS Face, %3 AS Penalty FROM TCMaster WHERE "
                          "BillNo = ? ORDER BY rowid LIMIT 1")
        .arg(AmountSum(d), AmountSum(f), AmountSum(p));
}

std::vector<QueryGridModel::Derived> MasterListKeys() {
    return {{"Map", {"Map3", "Map4", "Map5"}, false}, {"UName", {"Name"}, true}};
}

QString MasterListSql() {
    return MasterUnionSql("TCMaster", "TCAddress",
                          {"Control", "BillNo", "Name", "Map3", "Map4", "Map5"},
                          {"CPayFlag", "TPayFlag", "SPayFlag", "Pay1Flag", "Pay2Flag", "Pay3Flag",
                           "AdjFlag", "CAddrFlag", "HFFlag"});
}

QString DistrictBTFlag() {
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT t.BTFlag FROM tbl_Twpboro t JOIN tbl_District d ON "
                              "t.District = d.District AND t.Ward = d.Ward")) &&
        q.next())
        return TextField(q.value(0)).trimmed();
    return {};
}

void ShowListPaymentInfo(const QString& text) {
    session().PaymentInfoText = text;
    MsgBox(text.trimmed().isEmpty()
               ? QStringLiteral("There have been no payments made on this account")
               : text,
           QString::fromLatin1(PaymentInfoTitle), MsgButtons::Ok, MsgIcon::Information);
}

MasterListScreen::MasterListScreen(const QueryListKind& kind, QWidget* parent)
    : QueryListScreen(kind, parent) {
    dtgMasterList = grid;
    masterList = model;
    cmdPayment = rowButton("cmdPayment");
    cmdAdjust = rowButton("cmdAdjust");
    cmdAddress = rowButton("cmdAddress");
    cmdPrintTaxBill = rowButton("cmdPrintTaxBill");
    cmdPaymentInfo = rowButton("cmdPaymentInfo");
    m_btFlag = DistrictBTFlag();
    auto onRow = [this](void (MasterListScreen::*action)(const QString&)) {
        return [this, action] {
            const QString billNo = currentNumber();
            if (!billNo.isEmpty())
                (this->*action)(billNo);
        };
    };
    auto paymentInfo = [this] {
        if (currentRow() >= 0)
            ShowListPaymentInfo(paymentInfoText(currentNumber()));
    };
    connect(cmdPaymentInfo, &QPushButton::clicked, this, paymentInfo);
    connect(dtgMasterList, &QTableView::doubleClicked, this, paymentInfo);
    connect(cmdPayment, &QPushButton::clicked, this, onRow(&MasterListScreen::toPayment));
    connect(cmdAdjust, &QPushButton::clicked, this, onRow(&MasterListScreen::toAdjust));
    connect(cmdAddress, &QPushButton::clicked, this, onRow(&MasterListScreen::toAddress));
    connect(cmdPrintTaxBill, &QPushButton::clicked, this, onRow(&MasterListScreen::printTaxBill));
}

BillPayFlags MasterListScreen::currentFlags(bool installments) const {
    auto flag = [this](const char* name) {
        const QString value = currentText(name);
        return value.isEmpty() ? QStringLiteral(" ") : value;
    };
    BillPayFlags flags;
    flags.cPayFlag = flag("CPayFlag");
    flags.tPayFlag = flag("TPayFlag");
    flags.sPayFlag = flag("SPayFlag");
    if (installments)
        flags.payFlag = {flag("Pay1Flag"), flag("Pay2Flag"), flag("Pay3Flag")};
    return flags;
}

frmREQueryTC::frmREQueryTC(QWidget* parent) : MasterListScreen(masterListKind(), parent) {}

QString frmREQueryTC::paymentInfoText(const QString& billNo) {
    return RealEstatePaymentInfoText(currentFlags(true), btFlag(),
                                     ReadRealEstatePaidReceipts(session().DbConnection, billNo));
}

void frmREQueryTC::toPayment(const QString& billNo) {
    HandToScreen<frmREReceivePayment>("frmREReceivePayment", billNo, this,
                                      &frmREReceivePayment::paymentReceived);
}

void frmREQueryTC::toAdjust(const QString& billNo) {
    if (auto* target = HandToScreen<frmREAdjustTaxBill>("frmREAdjustTaxBill", billNo, this,
                                                        &frmREAdjustTaxBill::billSaved))
        // The number is in; the screen's own checks work again once an action is chosen.
        session().QueryOpenedScreen.remove(target->objectName());
}

void frmREQueryTC::toAddress(const QString& billNo) {
    HandToScreen<frmREAddressChange>("frmREAddressChange", billNo, this,
                                     &frmREAddressChange::addressChanged);
}

void frmREQueryTC::printTaxBill(const QString& billNo) {
    OpenREPrintTaxBillsFor(billNo, currentText("HFFlag").trimmed() == QLatin1String("A"));
}
