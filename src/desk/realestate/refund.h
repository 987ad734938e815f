#pragma once
// The refund screens: where the excess of a payment goes back, possibly split over several
// payees. Opened modally by a payment screen after the receipt is written, for the receipt in
// the session's RefundRecnum and the amount in RefundAmount; it closes only when all of it is
// applied. frmRERefund and frmPCRefund are one RefundDialog told their duplicate.

#include "core/money.h"
#include "desk/realestate/receipt_writes.h"

#include <QDialog>
#include <QString>

class QComboBox;
class QLineEdit;
class QPushButton;

// A name and mailing address as the payment screen shows it.
struct RefundPayee {
    QString name, addr1, addr2, city, state, zipCode, zipCode2;
};

// What the refund screen takes from the payment screen.
struct RefundSource {
    QString control;
    QString map3, map4, map5;
    QString billNo;
    QString adjNo;
    RefundPayee payor;
    RefundPayee owner;
};

// What differs between the duplicates' refund screens.
struct RefundKind {
    QString objectName;
    QString title;
    const DeskTables* tables = nullptr;
    // The per capita screen tells what is left after each payee before the next one.
    bool tellWhatIsLeft = false;
};

class RefundDialog : public QDialog {
    Q_OBJECT
public:
    RefundDialog(const RefundSource& source, const RefundKind& kind, QWidget* parent = nullptr);

    QLineEdit* txtControl = nullptr;
    // The map number: real estate only (null on the per capita screen).
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    QLineEdit* txtRecnum = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
    QLineEdit* txtDesc1 = nullptr;
    QLineEdit* txtRefund = nullptr;
    QLineEdit* txtRefundLeft = nullptr;
    QPushButton* cmdApplyRefund = nullptr;
    QPushButton* cmdDisplayOwnersAddress = nullptr;

    // Only the whole amount being applied closes the screen.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showPayee(const RefundPayee& payee);
    void applyRefund();

    RefundSource m_source;
    RefundKind m_kind;
    Money m_left;
    int m_recNumId = 0;
    bool m_done = false;
};

class frmRERefund : public RefundDialog {
    Q_OBJECT
public:
    explicit frmRERefund(const RefundSource& source, QWidget* parent = nullptr);
};
