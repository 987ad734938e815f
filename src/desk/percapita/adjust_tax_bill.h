#pragma once
// frmPCAdjustTaxBill: where the per capita duplicate changes after billing. A bill is added
// (its own generated number and control), or an existing bill is stepped through its history
// and adjusted: new occupation data or amounts for the bodies not yet paid. The master row never
// changes but for its flags; each adjustment is a whole new image in PCAdjust.

#include "core/tax_database.h"
#include "desk/percapita/adjust_writes.h"
#include "desk/realestate/adjust_common.h"
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

class frmPCAdjustTaxBill : public AdjustTaxBillScreen {
    Q_OBJECT
public:
    explicit frmPCAdjustTaxBill(QWidget* parent = nullptr);

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

protected:
    bool fieldLeft(QLineEdit* field, QWidget* target) override;

private:
    void buildScreen();
    void loadRates();
    void clearOwn() override;
    void showImage(const QSqlRecord& image) override;
    void showAddress(const QSqlRecord& row) override;
    bool bodySettled(int body) const override;
    QString paymentInfoText(const QString& billNo) const override;
    void billLoaded() override;
    void openForAdjustment();
    void startAddition() override;
    void enableAmountFields();
    void buildNames();

    std::array<QLineEdit*, PerCapitaLineCount> faceFields() const {
        return {txtCPerCapita,  txtCOccupation, txtTPerCapita,
                txtTOccupation, txtSPerCapita,  txtSOccupation};
    }
    std::array<QCheckBox*, 3> bodyBoxes() const override { return {chkCounty, chkTwp, chkSchool}; }
    BodyTicks ticked() const;
    bool occuValueLeft();
    bool faceLeft(QLineEdit* field);
    void computeFromRates();
    PerCapitaBillAmounts amountsOnScreen() const;
    void showAmounts();
    void showTotals();

    bool accept() override;
    PerCapitaBillImage imageOnScreen() const;

    PerCapitaRates m_rates;

    PerCapitaBillAmounts m_held; // every line with its discount and penalty
    PerCapitaBillAmounts m_beforeExoneration;
};
