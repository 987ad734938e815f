#pragma once
// frmREAdjustTaxBill: where the real-estate duplicate changes after billing. A bill is added, or
// an existing bill is stepped through its history and adjusted: new assessments, exclusions or
// amounts for the bodies not yet paid. The master row never changes but for its flags; each
// adjustment is a whole new image in TCAdjust.

#include "core/tax_database.h"
#include "desk/realestate/adjust_common.h"
#include "desk/realestate/adjust_writes.h"
#include "desk/realestate/payment_rules.h"

#include <QSqlRecord>
#include <QString>
#include <QWidget>
#include <array>
#include <optional>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

class frmREAdjustTaxBill : public AdjustTaxBillScreen {
    Q_OBJECT
public:
    explicit frmREAdjustTaxBill(QWidget* parent = nullptr);

    QLineEdit* txtAdjNo = nullptr;

    QLineEdit* txtControl = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtCoOwner = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QComboBox* cboCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtDesc1 = nullptr;
    QLineEdit* txtDesc2 = nullptr;
    QLineEdit* txtDesc3 = nullptr;
    QLineEdit* txtDeedBook = nullptr;
    QLineEdit* txtDeedPage = nullptr;
    QComboBox* cboLandUse = nullptr;
    QLineEdit* txtAcreage = nullptr;
    QLineEdit* txtAssLand = nullptr;
    QLineEdit* txtAssImpr = nullptr;
    QLineEdit* txtAssTotal = nullptr;

    QCheckBox* chkHFFlag = nullptr;
    QCheckBox* chkAAFlag = nullptr;
    QGroupBox* fraExclusion = nullptr;
    QLineEdit* txtHSExclusion = nullptr;
    QLineEdit* txtFSExclusion = nullptr;
    QLineEdit* txtExcFace = nullptr;

    QGroupBox* fraAdjustFor = nullptr;
    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTwp = nullptr;
    QCheckBox* chkSchool = nullptr;

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

    QLineEdit* txtPayment1 = nullptr;
    QLineEdit* txtPayment2 = nullptr;
    QLineEdit* txtPayment3 = nullptr;
    QCheckBox* chkInstallments = nullptr;
    QPushButton* cmdCalculate = nullptr;
    QCheckBox* chkCalcSchoolHomestead = nullptr;
    QLineEdit* txtHFace = nullptr;
    QLineEdit* txtHDiscount = nullptr;
    QLineEdit* txtHPenalty = nullptr;

protected:
    bool fieldLeft(QLineEdit* field, QWidget* target) override;

private:
    void buildScreen();
    void loadRates();
    void clearOwn() override;
    void handedOver() override { m_fromQuery = true; }

    // Loading.
    void showImage(const QSqlRecord& image) override;
    void showAddress(const QSqlRecord& address) override;
    bool bodySettled(int body) const override;
    QString paymentInfoText(const QString& billNo) const override;
    void billLoaded() override;
    bool bodyVisible(int body) const { return m_bodyVisible[size_t(body)]; }
    void openForAdjustment();
    void startExoneration();
    void exonerationTicked();
    void startUnexoneration();
    void startAddition() override;

    // Fields and computing.
    std::array<QLineEdit*, 9> faceFields() const;
    std::array<QLineEdit*, 3> paymentFields() const {
        return {txtPayment1, txtPayment2, txtPayment3};
    }
    std::array<QCheckBox*, 3> bodyBoxes() const override { return {chkCounty, chkTwp, chkSchool}; }
    bool assessmentLeft(QLineEdit* field, const char* message);
    bool exclusionLeft(QLineEdit* field, const char* message);
    bool faceLeft(QLineEdit* field);
    bool paymentLeft(int n);
    void hfFlagClicked();
    void computeFromAssessment();
    void calculateInstallments();
    void recomputeFromFaces();
    void showAmounts();
    void showTotals();
    RealEstateAmounts amountsOnScreen() const;
    void enableAmountFields();
    void zipCodeLeft();

    bool accept() override;
    bool acceptChecks();
    RealEstateBillImage imageOnScreen() const;

    // The rates read at opening.
    RealEstateRates m_rates;
    std::array<QString, 3> m_specialName{};

    // The bill on the screen.
    QSqlRecord m_image;       // the image shown last: master or last adjustment
    RealEstateAmounts m_held; // discount and penalty of each line, exclusion, installments
    // The image's amounts while an exoneration is chosen.
    RealEstateAmounts m_beforeExoneration;
    bool m_fromQuery = false;
};
