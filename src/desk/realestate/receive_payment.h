#pragma once
// frmREReceivePayment: the collector's main screen. A bill number comes in, the bill shows as
// it stands with the amounts of each body's period, the collector ticks what is paid, enters
// who paid and how, and accepts: the bill is marked, the receipt written and printed, and the
// refund screen opens when money goes back.

#include "core/tax_database.h"
#include "desk/realestate/payment_entry.h"
#include "desk/realestate/payment_rules.h"

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

class frmREReceivePayment : public QWidget {
    Q_OBJECT
public:
    explicit frmREReceivePayment(QWidget* parent = nullptr);

    // Puts a bill number in and runs the field's leave action, as the scan and query screens do.
    void enterBillNo(const QString& billNo);
    // A query screen hands a bill over: the screen is cleared and the bill loaded at once; the
    // bill number stays locked while the query's flag is raised.
    void openFromQuery(const QString& billNo);

    // The bill number and date.
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    QLineEdit* txtDate = nullptr;
    QPushButton* cmdDate = nullptr;

    // The three bodies: box, period, lines and total.
    QGroupBox* fraCounty = nullptr;
    QGroupBox* fraTwp = nullptr;
    QGroupBox* fraSchool = nullptr;
    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTwp = nullptr;
    QCheckBox* chkSchool = nullptr;
    QLabel* lblCPeriod = nullptr;
    QLabel* lblTPeriod = nullptr;
    QLabel* lblSPeriod = nullptr;
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

    // The payor and the money.
    QLineEdit* txtPayor = nullptr;
    QLineEdit* txtPAddr1 = nullptr;
    QLineEdit* txtPAddr2 = nullptr;
    QLineEdit* txtPCity = nullptr;
    QComboBox* cboPState = nullptr;
    QLineEdit* txtPZipCode = nullptr;
    QLineEdit* txtPZipCode2 = nullptr;
    QLineEdit* txtChecknum = nullptr;
    QLineEdit* txtAmount = nullptr;
    QCheckBox* chkPrintReceipt = nullptr;

    // The bill as it stands, read only.
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtCoOwner = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
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
    QLineEdit* txtHSExclusion = nullptr;
    QLineEdit* txtFSExclusion = nullptr;
    QLineEdit* txtExcFace = nullptr;
    QCheckBox* chkHFFlag = nullptr;
    QLabel* lblAdjustment = nullptr;
    QLabel* lblAddressChange = nullptr;
    QLabel* lblPaymentReceived = nullptr;

    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdQuery = nullptr;
    QPushButton* cmdPaymentInfo = nullptr;
    QPushButton* cmdPrevPayor = nullptr;
    QPushButton* cmdPrevComments = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExit = nullptr;

Q_SIGNALS:
    // A payment was accepted and written; a query screen that opened this one refreshes.
    void paymentReceived(const QString& recnum);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildScreen();
    void loadRates();
    void applyDefaultTicks();
    void lockEntryFields();

    // Field-leave actions. False when the field was refused (its message shown, focus back).
    void billNoLeft();
    bool dateLeft();
    void payorLeft();
    void checknumLeft();
    bool amountLeft();
    bool validateDate(bool showMessage);
    bool validateChecknum();
    bool validateAmount();

    void showBill();
    void fillInstallments();
    void refreshAmounts(bool offer = true);
    void updateDetailFields();
    void updateStreetLightFrame();
    bool streetLightApplies() const;
    void bodyTicked();
    void installmentClicked(int index, bool wasTicked);
    void streetLightChosen(StreetLightChoice choice);
    PaymentSelection selection() const;
    bool blockVisible(TaxBody body) const;
    bool bodySettled(TaxBody body) const;
    bool bodyZero(TaxBody body) const;

    void accept();
    void acceptPayment();
    // Step 12: the copies question and the receipt print, after the payment is written.
    void printReceipt(const QString& recnum);
    void openRefund();
    void showPaymentInfo();
    void clearScreen();
    void previousPayor();
    void previousCheck();

    std::array<QCheckBox*, 3> payBoxes() const { return {chkPay1, chkPay2, chkPay3}; }
    std::array<QLineEdit*, 3> paymentFields() const {
        return {txtPayment1, txtPayment2, txtPayment3};
    }

    // The rates read at opening.
    QString m_district;
    QString m_ward;
    QString m_btFlag;
    QSqlRecord m_countyRow;
    QSqlRecord m_municipalRow;
    PaymentCalendar m_calendar;
    bool m_countyBlock = false;
    bool m_twpBlock = false;
    bool m_schoolBlock = false;
    QString m_claimPhone;

    // The bill on the screen.
    bool m_billLoaded = false;
    BillNow m_bill;
    BillLines m_lines;
    BillPayFlags m_flags;
    Installments m_billInstallments;
    QDate m_credited;
    PaymentPeriods m_periods;
    PeriodAmounts m_amounts;
    InstallmentView m_installments;
    StreetLightChoice m_streetLight = StreetLightChoice::All;

    // Date, payor, check and amount, with the texts that last passed.
    std::optional<PaymentEntry> m_entry;

    bool m_inLeave = false;
    bool m_clearing = false;
};
