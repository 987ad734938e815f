#pragma once
// frmREQueryReceipts: the list of real-estate receipts, searched by receipt number, date, name,
// bill, control or map number. A found receipt goes to the void or reprint screen.

#include <QString>
#include <QWidget>

class FieldLeave;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableView;
class QueryGridModel;

// Every receipt with its total (every discount, face and penalty column added); the screen
// sorts it.
QString ReceiptListSql();

class frmREQueryReceipts : public QWidget {
    Q_OBJECT
public:
    explicit frmREQueryReceipts(QWidget* parent = nullptr);

    // Searches again and finds the receipt shown before: a target screen has saved.
    void requery();

    QRadioButton* optName = nullptr;
    QRadioButton* optBill = nullptr;
    QRadioButton* optControl = nullptr;
    QRadioButton* optMap = nullptr;
    QRadioButton* optRecNum = nullptr;
    QRadioButton* optDate = nullptr;
    QGroupBox* fraName = nullptr;
    QGroupBox* fraBill = nullptr;
    QGroupBox* fraControl = nullptr;
    QGroupBox* fraMap = nullptr;
    QGroupBox* fraRecNum = nullptr;
    QGroupBox* fraDate = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtRecNum = nullptr;
    QLineEdit* txtDate = nullptr;
    QLabel* txtSearching = nullptr;

    QGroupBox* fraReceiptList = nullptr;
    QTableView* dtgReceiptList = nullptr;
    QueryGridModel* receiptList = nullptr;

    QPushButton* cmdSearch = nullptr;
    QPushButton* cmdForward = nullptr;
    QPushButton* cmdBackward = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExit = nullptr;
    QPushButton* cmdVoidReceipt = nullptr;
    QPushButton* cmdReprintReceipt = nullptr;

private:
    enum class SearchBy { None, Name, Bill, Control, Map, RecNum, Date };

    void buildScreen();
    void choose(SearchBy by);
    void search();
    bool loadList();
    void move(int rows);
    void clearScreen();
    void setRowButtons(bool enabled);
    int currentRow() const;
    QString currentRecnum() const;
    void toVoid();
    void toReprint();

    SearchBy m_by = SearchBy::None;
    FieldLeave* m_leave = nullptr;
};
