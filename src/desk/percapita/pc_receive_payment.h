#pragma once
// frmPCReceivePayment: the per capita twin of the real-estate payment screen. A bill number
// comes in, the person's bill shows as it stands with each body's per capita and occupation
// amounts at its period, the collector ticks what is paid, enters who paid and how, and
// accepts: PCMaster is marked, the receipt written and printed, and frmPCRefund opens when
// money goes back. No installments, no street lights, no parcel, no special taxes, and no tax
// claim warning.

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

class frmPCReceivePayment : public QWidget {
    Q_OBJECT
public:
    explicit frmPCReceivePayment(QWidget* parent = nullptr);

    // Puts a bill number in and runs the field's leave action, as the scan screen does.
    void enterBillNo(const QString& billNo);
    // A query screen hands a bill over: the screen is cleared and the bill loaded at once; the
    // bill number stays locked while the query's flag is raised.
    void openFromQuery(const QString& billNo);

    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    QLineEdit* txtDate = nullptr;
    QPushButton* cmdDate = nullptr;

    // The three bodies: box, period, per capita and occupation, total.
    QGroupBox* fraCounty = nullptr;
    QGroupBox* fraTwp = nullptr;
    QGroupBox* fraSchool = nullptr;
    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTwp = nullptr;
    QCheckBox* chkSchool = nullptr;
    QLabel* lblCPeriod = nullptr;
    QLabel* lblTPeriod = nullptr;
    QLabel* lblSPeriod = nullptr;
    QLabel* lblTwp = nullptr;
    QLineEdit* txtCPerCapita = nullptr;
    QLineEdit* txtCOccupation = nullptr;
    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTPerCapita = nullptr;
    QLineEdit* txtTOccupation = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtSPerCapita = nullptr;
    QLineEdit* txtSOccupation = nullptr;
    QLineEdit* txtSTotal = nullptr;
    QLineEdit* txtTotal = nullptr;

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

    // The person's bill as it stands, read only.
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
    QLineEdit* txtBirthdate = nullptr;
    QLineEdit* txtOccuCode = nullptr;
    QLineEdit* txtOccuDesc = nullptr;
    QLineEdit* txtOccuValue = nullptr;
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

    void billNoLeft();
    bool dateLeft();
    void showBill();
    void refreshAmounts(bool offer = true);
    void updateDetailFields();
    PaymentSelection selection() const;

    void accept();
    void acceptPayment();
    void openRefund();
    void showPaymentInfo();
    void clearScreen();

    QString m_btFlag;
    PaymentCalendar m_calendar;
    std::array<bool, 3> m_block{}; // County, Twp, School blocks shown

    bool m_billLoaded = false;
    BillNow m_bill;
    BillPayFlags m_flags;
    QDate m_credited;
    PaymentPeriods m_periods;
    PerCapitaAmounts m_amounts;

    std::optional<PaymentEntry> m_entry;
    bool m_inLeave = false;
    bool m_clearing = false;
};
