#pragma once
// frmREQueryTC: the list of every bill, each also under the names of its address changes,
// searched by name, bill, control or map number. A found row goes to the payment, adjustment or
// address screen or to the bill form, or shows what was paid on it.

#include "desk/realestate/query_list.h"

#include <QString>
#include <vector>

class QPushButton;
class QTableView;

// The master list: every TCMaster row, and one more row for each TCAddress row with the name
// and map of the change and the flags of the master. The list drops the rows that
// repeat another in every column, as a union does, and is sorted on the screen.
QString MasterListSql();
// The amounts of a bill the list shows (Discount, Face, Penalty), read for the rows shown.
QString MasterAmountsSql();
// Its keys: Map (Map3 & Map4 & Map5) and UName (the name upper-cased).
std::vector<QueryGridModel::Derived> MasterListKeys();

class frmREQueryTC : public QueryListScreen {
    Q_OBJECT
public:
    explicit frmREQueryTC(QWidget* parent = nullptr);

    QTableView* dtgMasterList = nullptr;
    QueryGridModel* masterList = nullptr;
    QPushButton* cmdPayment = nullptr;
    QPushButton* cmdAdjust = nullptr;
    QPushButton* cmdAddress = nullptr;
    QPushButton* cmdPrintTaxBill = nullptr;
    QPushButton* cmdPaymentInfo = nullptr;

private:
    void paymentInfo();
    void toPayment();
    void toAdjust();
    void toAddress();
    void printTaxBill();

    QString m_btFlag;
};

// The payment information of a list's row: the text, or when there is none "There have been no
// payments made on this account", both titled "Payment Information".
void ShowListPaymentInfo(const QString& text);
// The municipality's BTFlag (T, B, C) for the payment information texts.
QString DistrictBTFlag();
