#pragma once
// frmPCAdjustTaxBill: where the per capita duplicate changes after billing. A bill is added
// (its own generated number and control), or an existing bill is stepped through its history
// and adjusted: new occupation data or amounts for the bodies not yet paid. The master row never
// changes but for its flags; each adjustment is a whole new image in PCAdjust.

#include "core/tax_database.h"
#include "desk/percapita/adjust_writes.h"
#include "desk/realestate/payment_rules.h"

#include <QSqlRecord>
#include <QString>
#include <QWidget>
#include <array>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

class frmPCAdjustTaxBill : public QWidget {
    Q_OBJECT
public:
    explicit frmPCAdjustTaxBill(QWidget* parent = nullptr);

    // A query screen hands a bill over: the screen is cleared, the number stands in the bill
    // field, and the bill loads once "Adjust An Existing Tax Bill" is chosen.
    void openFromQuery(const QString& billNo);

    // The positions of cboAction; only the first two are listed.
    enum Action { NoAction = -1, AdjustBill = 0, AddBill = 1, Exonerate = 2, Unexonerate = 3 };
    void setAction(int action);

    QComboBox* cboAction = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    QLabel* lblTaxKind = nullptr; // "TWP P/C", "BORO P/C", "CITY P/C"

    QLineEdit* txtControl = nullptr;
    QLineEdit* txtPrefix = nullptr;
    QLineEdit* txtFName = nullptr;
    QLineEdit* txtMName = nullptr;
    QLineEdit* txtLName = nullptr;
    QLineEdit* txtSuffix = nullptr;
    QLineEdit* txtRelationship = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtPrintName = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtStreetNumber = nullptr;
    QLineEdit* txtStreetName = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QComboBox* cboCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
    QComboBox* cboOccuCode = nullptr;
    QLineEdit* txtOccuDesc = nullptr;
    QLineEdit* txtOccuValue = nullptr;
    QLineEdit* txtBirthdate = nullptr;

    QGroupBox* fraAdjustFor = nullptr;
    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTwp = nullptr;
    QCheckBox* chkSchool = nullptr;
    QLineEdit* txtCPerCapita = nullptr;
    QLineEdit* txtCOccupation = nullptr;
    QLineEdit* txtTPerCapita = nullptr;
    QLineEdit* txtTOccupation = nullptr;
    QLineEdit* txtSPerCapita = nullptr;
    QLineEdit* txtSOccupation = nullptr;
    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtSTotal = nullptr;
    QLineEdit* txtTotal = nullptr;

    QLineEdit* txtReason = nullptr;
    QCheckBox* chkPrintBill = nullptr;
    QCheckBox* chkReportable = nullptr;
    QCheckBox* chkUSPS = nullptr;

    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdPaymentInfo = nullptr;
    QPushButton* CmdQuery = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdExit = nullptr;

Q_SIGNALS:
    // A bill was added, adjusted, exonerated or unexonerated.
    void billSaved(const QString& billNo);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildScreen();
    void loadRates();
    void clearScreen();
    struct AdjustActionFlow actionFlow();
    void actionChosen(int action);
    void billNoLeft();
    void loadBill();
    void showImage(const QSqlRecord& image);
    void showAddress(const QSqlRecord& row);
    bool bodySettled(int body) const;
    void openForAdjustment();
    void startAddition();
    void enableAmountFields();
    void buildNames();

    std::array<QLineEdit*, PerCapitaLineCount> faceFields() const {
        return {txtCPerCapita,  txtCOccupation, txtTPerCapita,
                txtTOccupation, txtSPerCapita,  txtSOccupation};
    }
    std::array<QCheckBox*, 3> bodyBoxes() const { return {chkCounty, chkTwp, chkSchool}; }
    BodyTicks ticked() const;
    bool occuValueLeft();
    bool faceLeft(QLineEdit* field);
    void computeFromRates();
    PerCapitaBillAmounts amountsOnScreen() const;
    void showAmounts();
    void showTotals();

    bool accept();
    PerCapitaBillImage imageOnScreen() const;
    void showPaymentInfo();

    QString m_district;
    QString m_ward;
    QString m_taxYear;
    QString m_btFlag;
    PerCapitaRates m_rates;
    std::array<bool, 3> m_bodyVisible{};

    int m_action = NoAction;
    bool m_loaded = false;
    QString m_billNo;
    BillPayFlags m_flags;
    int m_nextAdjNo = 1;
    PerCapitaBillAmounts m_held; // every line with its discount and penalty
    PerCapitaBillAmounts m_beforeExoneration;
    bool m_inLeave = false;
    bool m_clearing = false;
};
