#pragma once
// frmREQueryTC: the list of every bill, each also under the names of its address changes,
// searched by name, bill, control or map number. A found row goes to the payment, adjustment or
// address screen or to the bill form, or shows what was paid on it.

#include "desk/realestate/query_list.h"

#include <QString>
#include <vector>

struct BillPayFlags;
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

// A master list of either duplicate: the five buttons of a found row, the payment information
// on a double click, and the hand-over of the row's bill to the duplicate's desk screens.
class MasterListScreen : public QueryListScreen {
    Q_OBJECT
public:
    QTableView* dtgMasterList = nullptr;
    QueryGridModel* masterList = nullptr;
    QPushButton* cmdPayment = nullptr;
    QPushButton* cmdAdjust = nullptr;
    QPushButton* cmdAddress = nullptr;
    QPushButton* cmdPrintTaxBill = nullptr;
    QPushButton* cmdPaymentInfo = nullptr;

protected:
    MasterListScreen(const QueryListKind& kind, QWidget* parent);
    // The row's pay flags as the payment information reads them (a blank flag is one space).
    BillPayFlags currentFlags(bool installments) const;
    const QString& btFlag() const { return m_btFlag; }

    // Each is called with a row current; billNo is the row's bill number.
    virtual QString paymentInfoText(const QString& billNo) = 0;
    virtual void toPayment(const QString& billNo) = 0;
    virtual void toAdjust(const QString& billNo) = 0;
    virtual void toAddress(const QString& billNo) = 0;
    virtual void printTaxBill(const QString& billNo) = 0;

private:
    QString m_btFlag;
};

class frmREQueryTC : public MasterListScreen {
    Q_OBJECT
public:
    explicit frmREQueryTC(QWidget* parent = nullptr);

protected:
    QString paymentInfoText(const QString& billNo) override;
    void toPayment(const QString& billNo) override;
    void toAdjust(const QString& billNo) override;
    void toAddress(const QString& billNo) override;
    void printTaxBill(const QString& billNo) override;
};

// The payment information of a list's row: the text, or when there is none "There have been no
// payments made on this account", both titled "Payment Information".
void ShowListPaymentInfo(const QString& text);
// The municipality's BTFlag (T, B, C) for the payment information texts.
QString DistrictBTFlag();
