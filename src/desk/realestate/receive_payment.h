#pragma once
// frmREReceivePayment: the collector's main screen. A bill number comes in, the bill shows as
// it stands with the amounts of each body's period, the collector ticks what is paid, enters
// who paid and how, and accepts: the bill is marked, the receipt written and printed, and the
// refund screen opens when money goes back.

#include "desk/realestate/payment_screen.h"

#include <QDate>
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
class QRadioButton;

class frmREReceivePayment : public PaymentScreen {
    Q_OBJECT
public:
    explicit frmREReceivePayment(QWidget* parent = nullptr);

    // The three bodies: box, period, lines and total.
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

    // District 39's street light choice.
    QGroupBox* fraStLt = nullptr;
    QRadioButton* optAll = nullptr;
    QRadioButton* optTwpOnly = nullptr;
    QRadioButton* optStLtOnly = nullptr;

    // School installments.
    QGroupBox* fraInstallments = nullptr;
    QCheckBox* chkPay1 = nullptr;
    QCheckBox* chkPay2 = nullptr;
    QCheckBox* chkPay3 = nullptr;
    QLineEdit* txtPayment1 = nullptr;
    QLineEdit* txtPayment2 = nullptr;
    QLineEdit* txtPayment3 = nullptr;
    QLineEdit* txtPayment1Pd = nullptr;
    QLineEdit* txtPayment2Pd = nullptr;
    QLineEdit* txtPayment3Pd = nullptr;
    QLineEdit* txtInstDFP1 = nullptr;
    QLineEdit* txtInstDFP2 = nullptr;
    QLineEdit* txtInstDFP3 = nullptr;
    QLabel* lblInstPeriod = nullptr;
    QLineEdit* txtPaymentDate = nullptr;

    // The parcel as it stands, read only.
    QLineEdit* txtCoOwner = nullptr;
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
    QLineEdit* txtHSExclusion = nullptr;
    QLineEdit* txtFSExclusion = nullptr;
    QLineEdit* txtExcFace = nullptr;
    QCheckBox* chkHFFlag = nullptr;

protected:
    void billNoLeft() override;
    void refreshAmounts(bool offer = true) override;
    void updateDetailFields() override;
    void acceptPayment() override;
    void clearOwnState() override;

private:
    void buildScreen();
    void loadRates();

    void showBill();
    void fillInstallments();
    void updateStreetLightFrame();
    bool streetLightApplies() const;
    void bodyTicked();
    void installmentClicked(int index, bool wasTicked);
    void streetLightChosen(StreetLightChoice choice);
    PaymentSelection installmentSelection() const;
    bool bodySettled(TaxBody body) const;
    bool bodyZero(TaxBody body) const;

    std::array<QCheckBox*, 3> payBoxes() const { return {chkPay1, chkPay2, chkPay3}; }
    std::array<QLineEdit*, 3> paymentFields() const {
        return {txtPayment1, txtPayment2, txtPayment3};
    }

    QString m_claimPhone;

    // The bill on the screen.
    BillLines m_lines;
    Installments m_billInstallments;
    PeriodAmounts m_amounts;
    InstallmentView m_installments;
    StreetLightChoice m_streetLight = StreetLightChoice::All;
};
