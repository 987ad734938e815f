#pragma once
// frmREAdjustTaxBill: where the real-estate duplicate changes after billing. A bill is added, or
// an existing bill is stepped through its history and adjusted: new assessments, exclusions or
// amounts for the bodies not yet paid. The master row never changes but for its flags; each
// adjustment is a whole new image in TCAdjust.

#include "core/tax_database.h"
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

class frmREAdjustTaxBill : public QWidget {
    Q_OBJECT
public:
    explicit frmREAdjustTaxBill(QWidget* parent = nullptr);

    // A query screen hands a bill over: the screen is cleared, the number stands in the bill
    // field, and the bill loads once "Adjust An Existing Tax Bill" is chosen.
    void openFromQuery(const QString& billNo);

    // The positions of cboAction. Only the first two are listed; the other two are reached by
    // setAction alone.
    enum Action { NoAction = -1, AdjustBill = 0, AddBill = 1, Exonerate = 2, Unexonerate = 3 };
    // Runs the choice of an action, as a choice in the list does.
    void setAction(int action);

    QComboBox* cboAction = nullptr;
    QLineEdit* txtBillNo = nullptr;
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
    // A bill was added, adjusted, exonerated or unexonerated; a query list that handed the bill
    // over refreshes.
    void billSaved(const QString& billNo);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildScreen();
    void loadRates();
    void clearScreen();
    struct AdjustActionFlow actionFlow();
    void actionChosen(int action);

    // Loading.
    void billNoLeft();
    void loadBill();
    void showImage(const QSqlRecord& image);
    void showAddress(const QSqlRecord& address);
    bool bodySettled(int body) const;
    bool bodyVisible(int body) const { return m_bodyVisible[size_t(body)]; }
    void openForAdjustment();
    void startExoneration();
    void exonerationTicked();
    void startUnexoneration();
    void startAddition();

    // Fields and computing.
    std::array<QLineEdit*, 9> faceFields() const;
    std::array<QLineEdit*, 3> paymentFields() const {
        return {txtPayment1, txtPayment2, txtPayment3};
    }
    std::array<QCheckBox*, 3> bodyBoxes() const { return {chkCounty, chkTwp, chkSchool}; }
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

    bool accept();
    bool acceptChecks();
    RealEstateBillImage imageOnScreen() const;
    void showPaymentInfo();

    // The rates read at opening.
    QString m_district;
    QString m_ward;
    QString m_taxYear;
    QString m_btFlag;
    RealEstateRates m_rates;
    std::array<QString, 3> m_specialName{};
    std::array<bool, 3> m_bodyVisible{};

    // The bill on the screen.
    int m_action = NoAction;
    bool m_loaded = false;
    QString m_billNo;
    QSqlRecord m_image;   // the image shown last: master or last adjustment
    BillPayFlags m_flags; // the master's pay flags
    int m_nextAdjNo = 1;
    RealEstateAmounts m_held; // discount and penalty of each line, exclusion, installments
    // The image's amounts while an exoneration is chosen.
    RealEstateAmounts m_beforeExoneration;
    bool m_fromQuery = false;
    bool m_inLeave = false;
    bool m_clearing = false;
};
