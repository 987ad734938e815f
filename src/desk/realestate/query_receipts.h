#pragma once
// frmREQueryReceipts: the list of real-estate receipts, searched by receipt number, date, name,
// bill, control or map number. A found receipt goes to the void or reprint screen.

#include "desk/realestate/query_list.h"

#include <QString>

class QPushButton;
class QTableView;

// Every receipt with its total (every discount, face and penalty column added); the screen
// sorts it.
QString ReceiptListSql();

class frmREQueryReceipts : public QueryListScreen {
    Q_OBJECT
public:
    explicit frmREQueryReceipts(QWidget* parent = nullptr);

    QTableView* dtgReceiptList = nullptr;
    QueryGridModel* receiptList = nullptr;
    QPushButton* cmdVoidReceipt = nullptr;
    QPushButton* cmdReprintReceipt = nullptr;

private:
    void toVoid();
    void toReprint();
};
