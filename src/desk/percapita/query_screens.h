#pragma once
// The per capita query lists: frmPCQueryTC, every bill also under the names of its address
// changes, and frmPCQueryReceipts, the per capita receipts. They are the real-estate lists made
// with the per capita tables, columns and searches (no map); a found row goes to the per capita
// desk screens.

#include "desk/realestate/query_tc.h"

#include <QString>

class QPushButton;
class QTableView;

// PCMaster's rows and one more for each PCAddress row, with the change's control, bill number
// and name and the master's flags; the amounts are read for the rows shown (PerCapitaAmountsSql).
QString PerCapitaMasterListSql();
QString PerCapitaAmountsSql();
// Every per capita receipt with its total, the sum of all 18 amount columns.
QString PerCapitaReceiptListSql();

class frmPCQueryTC : public MasterListScreen {
    Q_OBJECT
public:
    explicit frmPCQueryTC(QWidget* parent = nullptr);

protected:
    QString paymentInfoText(const QString& billNo) override;
    void toPayment(const QString& billNo) override;
    void toAdjust(const QString& billNo) override;
    void toAddress(const QString& billNo) override;
    void printTaxBill(const QString& billNo) override;
};

class frmPCQueryReceipts : public QueryListScreen {
    Q_OBJECT
public:
    explicit frmPCQueryReceipts(QWidget* parent = nullptr);

    QTableView* dtgReceiptList = nullptr;
    QueryGridModel* receiptList = nullptr;
    QPushButton* cmdVoidReceipt = nullptr;
    QPushButton* cmdReprintReceipt = nullptr;
};
