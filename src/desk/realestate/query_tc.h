#pragma once
// frmREQueryTC: the list of every bill, each also under the names of its address changes,
// searched by name, bill, control or map number. A found row goes to the payment or address
// screen, or shows what was paid on it.

#include "core/query_grid.h"

#include <QString>
#include <QWidget>
#include <vector>

class FieldLeave;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableView;

// The master list: every TCMaster row, and one more row for each TCAddress row with the name
// and map of the change and the flags of the master. The list drops the rows that
// repeat another in every column, as a union does, and is sorted on the screen.
QString MasterListSql();
// The amounts of a bill the list shows (Discount, Face, Penalty), read for the rows shown.
QString MasterAmountsSql();
// Its keys: Map (Map3 & Map4 & Map5) and UName (the name upper-cased).
std::vector<QueryGridModel::Derived> MasterListKeys();

class frmREQueryTC : public QWidget {
    Q_OBJECT
public:
    explicit frmREQueryTC(QWidget* parent = nullptr);

    // Searches again and finds the row shown before: a target screen has saved.
    void requery();

    QRadioButton* optName = nullptr;
    QRadioButton* optBill = nullptr;
    QRadioButton* optControl = nullptr;
    QRadioButton* optMap = nullptr;
    QGroupBox* fraName = nullptr;
    QGroupBox* fraBill = nullptr;
    QGroupBox* fraControl = nullptr;
    QGroupBox* fraMap = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLabel* txtSearching = nullptr;

    QGroupBox* fraMasterList = nullptr;
    QTableView* dtgMasterList = nullptr;
    QueryGridModel* masterList = nullptr;

    QPushButton* cmdSearch = nullptr;
    QPushButton* cmdForward = nullptr;
    QPushButton* cmdBackward = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExit = nullptr;
    QPushButton* cmdPayment = nullptr;
    QPushButton* cmdAdjust = nullptr;
    QPushButton* cmdAddress = nullptr;
    QPushButton* cmdPrintTaxBill = nullptr;
    QPushButton* cmdPaymentInfo = nullptr;

private:
    enum class SearchBy { None, Name, Bill, Control, Map };

    void buildScreen();
    void choose(SearchBy by);
    void billNoLeft();
    void search();
    // Loads the list in the order of the search; false with the reason shown when it failed.
    bool loadList();
    void move(int rows);
    void clearScreen();
    void setRowButtons(bool enabled);
    int currentRow() const;
    QString currentBillNo() const;
    void paymentInfo();
    void toPayment();
    void toAddress();

    SearchBy m_by = SearchBy::None;
    QString m_btFlag;
    FieldLeave* m_leave = nullptr;
};
