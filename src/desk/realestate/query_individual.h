#pragma once
// frmREQueryIndividual: one taxpayer at a time, in full, with the amounts of the chosen period
// (as the bill stands after its last adjustment), stepping one bill forward or back.

#include "desk/realestate/chain_writes.h"
#include "desk/realestate/query_list.h"

#include <QDate>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <array>

struct BillPayFlags;

class FieldLeave;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// The period the screen opens on for a date: discount up to the last day of discount, face up
// to the last day of face, penalty after ('D', 'F', 'P').
QChar IndividualQueryPeriod(const QDate& today, const QDate& discDate, const QDate& faceDate2);

// The bill numbers of a search on the individual screens, real estate and per capita, in the
// order they are stepped through: by name (upper-cased), bill, map or control, at or after the
// criterion.
QStringList FindIndividualBills(QSqlDatabase db, const ChainTables& tables, QuerySearch by,
                                const QString& criterion);
// A bill as the individual screens show it: the master, and the image its amounts come from
// (the last adjustment, or the master). False, after the integrity message, when the adjustment
// the master is marked with is missing; false without a box when the bill is gone.
bool ReadIndividualBill(QSqlDatabase db, const ChainTables& tables, const QString& billNo,
                        QSqlRecord* master, QSqlRecord* source, bool* incomplete);
// One step from position by `by` in a list of count: the new position, or -1 after "You have
// reached the end of the file" / "... beginning of the file".
int StepIndividual(int position, int by, int count);
// The payment information button of an individual screen: "There Has Been No Payment Made On
// This Account." when the three flags are blank, else the text.
void ShowIndividualPaymentInfo(const BillPayFlags& flags, const QString& text);

class frmREQueryIndividual : public QWidget {
    Q_OBJECT
public:
    explicit frmREQueryIndividual(QWidget* parent = nullptr);

public Q_SLOTS:
    // Shows the bill on the screen again from the file: a target screen has saved.
    void requery();

public:
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

    QRadioButton* optDiscount = nullptr;
    QRadioButton* optFace = nullptr;
    QRadioButton* optPenalty = nullptr;

    QLineEdit* txtPControl = nullptr;
    QLineEdit* txtPName = nullptr;
    QLineEdit* txtPMap3 = nullptr;
    QLineEdit* txtPMap4 = nullptr;
    QLineEdit* txtPMap5 = nullptr;
    QLineEdit* txtPBillNo = nullptr;
    QCheckBox* chkHFFlag = nullptr;
    QLineEdit* txtCPayFlag = nullptr;
    QLineEdit* txtTPayFlag = nullptr;
    QLineEdit* txtSPayFlag = nullptr;
    std::array<QLineEdit*, 3> txtPayFlag{}; // txtPay1Flag .. txtPay3Flag
    QLineEdit* txtAdjFlag = nullptr;
    QLineEdit* txtCAddrFlag = nullptr;
    std::array<QLineEdit*, 3> txtPayment{}; // txtPayment1 .. txtPayment3

    QLabel* lblCounty = nullptr;
    QLabel* lblLibrary = nullptr;
    QLabel* lblC1Face = nullptr;
    QLabel* lblTwp = nullptr;
    std::array<QLabel*, 3> lblSpecFace{};
    QLabel* lblSchool = nullptr;
    QLabel* lblSch1Face = nullptr;
    QLineEdit* txtCounty = nullptr;
    QLineEdit* txtLibrary = nullptr;
    QLineEdit* txtC1Face = nullptr;
    QLineEdit* txtTwp = nullptr;
    std::array<QLineEdit*, 3> txtSpecFace{};
    QLineEdit* txtSchool = nullptr;
    QLineEdit* txtSch1Face = nullptr;
    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtSTotal = nullptr;
    QLineEdit* txtTotal = nullptr;

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
    void loadRates();
    void choose(SearchBy by);
    void search();
    // Shows the bill at that position of the list found; false when the screen closed.
    bool showBill(int position);
    void showAmounts();
    void step(int by);
    void clearScreen();
    void clearBill();
    void setRowButtons(bool enabled);
    void paymentInfo();
    void toPayment();
    void toAdjust();
    void toAddress();
    QChar period() const;

    SearchBy m_by = SearchBy::None;
    QStringList m_found; // bill numbers in the order of the search
    int m_position = -1;
    QSqlRecord m_master;
    QSqlRecord m_source; // the last adjustment, or the master
    QString m_btFlag;
    FieldLeave* m_leave = nullptr;
};
