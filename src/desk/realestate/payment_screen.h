#pragma once
// What the two payment screens do alike. frmREReceivePayment and frmPCReceivePayment are each
// a PaymentScreen: the bill number, date, payor, check, amount and buttons (PaymentScreenParts),
// the office's rates and calendar, the field-leave actions, the reading of a bill with its
// refusals, the checks and questions of Accept, and what follows a written payment (receipt,
// refund, "Payment Received"). Each twin adds its bill, its lines and its writes.

#include "core/tax_database.h"
#include "desk/realestate/payment_entry.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/payment_screen_parts.h"
#include "desk/realestate/receipt_writes.h"
#include "desk/realestate/refund.h"

#include <QDate>
#include <QSqlRecord>
#include <QString>
#include <QWidget>
#include <array>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

class QGridLayout;
class QGroupBox;
class QLabel;

class PaymentScreen : public QWidget, public PaymentScreenParts {
    Q_OBJECT
public:
    // Puts a bill number in and runs the field's leave action, as the scan screen does; a bill
    // on the screen is cleared away first.
    void enterBillNo(const QString& billNo);
    // A query screen hands a bill over: the screen is cleared and the bill loaded at once; the
    // bill number stays locked while the query's flag is raised.
    Q_INVOKABLE void openFromQuery(const QString& billNo);

    // The three bodies: frame, box, period, total.
    QGroupBox* fraCounty = nullptr;
    QGroupBox* fraTwp = nullptr;
    QGroupBox* fraSchool = nullptr;
    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTwp = nullptr;
    QCheckBox* chkSchool = nullptr;
    QLabel* lblCPeriod = nullptr;
    QLabel* lblTPeriod = nullptr;
    QLabel* lblSPeriod = nullptr;
    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtSTotal = nullptr;
    // The bill's name and address as it stands, read only.
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;

Q_SIGNALS:
    // A payment was accepted and written; a query screen that opened this one refreshes.
    void paymentReceived(const QString& recnum);

protected:
    explicit PaymentScreen(QWidget* parent = nullptr);
    bool eventFilter(QObject* watched, QEvent* event) override;

    // Lays out a body's frame: its box and period, the twin's rows of caption and field (a
    // row without a field is a caption across both columns), "Total:", then `below` (a frame of
    // the body's own) when given.
    void layBodyFrame(int body, const std::vector<std::pair<QWidget*, QWidget*>>& rows,
                      QWidget* below = nullptr);
    // Lays out the bill's name and address in fraBill: control, name, the row given after the
    // name (the co-owner), the two address lines and city, state, ZIP. The next free row.
    int layOwnerRows(QGridLayout* grid, QWidget* afterName, const QString& afterNameCaption,
                     const QString& addr1Caption, const QString& addr2Caption);
    QGroupBox* fraBill = nullptr;

    // After the twin has built its widgets: the entries' helper and the leave actions.
    void startEntries();
    // The office: tbl_District, the county and municipal Millfile rows, the calendar, the
    // municipality's kind on lblTwp, the states, today as the date credited.
    void loadOffice(QLabel* lblTwp);

    // The twin's parts.
    virtual void billNoLeft() = 0;
    virtual void refreshAmounts(bool offer = true) = 0;
    virtual void updateDetailFields() = 0;
    virtual void acceptPayment() = 0;
    // Its own state and fields back to empty, before the common ones are.
    virtual void clearOwnState() = 0;

    void clearScreen();
    bool dateLeft();
    // Pads and reads the bill; "Bill Number Not On File", or the integrity message (and the
    // screen cleared). The bill, or nothing.
    std::optional<BillNow> readBill(Duplicate duplicate);
    // Every shown body exonerated, or every one settled: its message and the screen cleared.
    bool refuseSettledBill(const std::array<QString, 3>& flags, const std::array<bool, 3>& settled);
    // The bill number locked, the buttons and the payor's fields open; closed bodies unticked.
    void openForPayment(const std::array<bool, 3>& closed);
    PaymentSelection selection() const;
    // The bill's adjustment number, control, name and address, and the markers of an
    // adjustment and an address change.
    void showBillOwner();

    // Accept's checks and questions, with the total due of the ticked bodies as it stands once
    // the date is taken. The overage and refund to write, or nothing.
    std::optional<PaymentCheck> checkAccept(const std::function<Money()>& totalDue);
    // After the writes: the payor kept, the receipt printed when asked for, the refund screen
    // when money goes back, "Payment Received", the screen cleared. A failed write is told.
    void finishPayment(const PostingResult& posted, const PaymentCheck& check,
                       const std::function<void(const QString& recnum)>& printReceipt,
                       const std::function<void(const RefundSource& source)>& openRefund);
    RefundSource refundSource() const;
    void showPaymentInfo(const std::function<QString()>& build);

    // The office.
    QString m_district, m_ward, m_btFlag;
    QSqlRecord m_countyRow, m_municipalRow;
    PaymentCalendar m_calendar;
    std::array<bool, 3> m_block{}; // County, Twp, School blocks shown

    // The bill on the screen.
    bool m_billLoaded = false;
    BillNow m_bill;
    BillPayFlags m_flags;
    QDate m_credited;
    PaymentPeriods m_periods;

    std::optional<PaymentEntry> m_entry;
    bool m_inLeave = false;
    bool m_clearing = false;

private:
    void accept();
};

// The payor and check taken onto a receipt of either duplicate.
void SetReceiptPayor(ReceiptCommon& receipt, const PayorEntry& payor);
