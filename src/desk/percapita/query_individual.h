#pragma once
// frmPCQueryIndividual: one per capita taxpayer at a time, with the amounts of the chosen period
// as the bill stands after its last adjustment, stepping one bill forward or back. The search,
// the reading of the bill and the stepping are those of the real-estate screen.

#include "desk/percapita/adjust_writes.h"

#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <array>

class FieldLeave;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

class frmPCQueryIndividual : public QWidget {
    Q_OBJECT
public:
    explicit frmPCQueryIndividual(QWidget* parent = nullptr);

    QRadioButton* optName = nullptr;
    QRadioButton* optBill = nullptr;
    QRadioButton* optControl = nullptr;
    QGroupBox* fraName = nullptr;
    QGroupBox* fraBill = nullptr;
    QGroupBox* fraControl = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtControl = nullptr;
    QRadioButton* optDiscount = nullptr;
    QRadioButton* optFace = nullptr;
    QRadioButton* optPenalty = nullptr;

    QLineEdit* txtPControl = nullptr;
    QLineEdit* txtPName = nullptr;
    QLineEdit* txtPBillNo = nullptr;
    QLineEdit* txtCPayFlag = nullptr;
    QLineEdit* txtTPayFlag = nullptr;
    QLineEdit* txtSPayFlag = nullptr;
    QLineEdit* txtAdjFlag = nullptr;
    QLineEdit* txtCAddrFlag = nullptr;
    std::array<QLineEdit*, PerCapitaLineCount> txtLine{}; // txtCPerCapita .. txtSOccupation
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

public Q_SLOTS:
    // Shows the bill on the screen again from the file: a target screen has saved.
    void requery();

private:
    enum class SearchBy { None, Name, Bill, Control };

    void buildScreen();
    void loadRates();
    void choose(SearchBy by);
    void search();
    bool showBill(int position);
    void showAmounts();
    void clearScreen();
    void setRowButtons(bool enabled);
    void toAdjust();
    void toAddress();

    SearchBy m_by = SearchBy::None;
    QStringList m_found;
    int m_position = -1;
    QSqlRecord m_master;
    QSqlRecord m_source;
    QString m_btFlag;
    FieldLeave* m_leave = nullptr;
};
