#pragma once
// The entries a payment screen takes besides its bill: the date credited, the payor, the check
// and the amount, with their leave checks, the checks of Accept before anything is written
// (the bodies, the date, payor, check and amount, the question), the amount against the total
// due with its questions, and the previous payor's buttons. The real-estate and per capita
// payment screens each hold one over their own fields of the same names.

#include "core/money.h"
#include "desk/realestate/payment_rules.h"

#include <QDate>
#include <QString>
#include <functional>
#include <optional>

class QCheckBox;
class QComboBox;
class QLineEdit;

struct PaymentEntryFields {
    QLineEdit* txtDate = nullptr;
    QLineEdit* txtPayor = nullptr;
    QLineEdit* txtPAddr1 = nullptr;
    QLineEdit* txtPAddr2 = nullptr;
    QLineEdit* txtPCity = nullptr;
    QComboBox* cboPState = nullptr;
    QLineEdit* txtPZipCode = nullptr;
    QLineEdit* txtPZipCode2 = nullptr;
    QLineEdit* txtChecknum = nullptr;
    QLineEdit* txtAmount = nullptr;
    // The bill's name and address as the screen shows them, for "O" in the payor.
    QLineEdit* txtName = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
    // The three bodies.
    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTwp = nullptr;
    QCheckBox* chkSchool = nullptr;
};

// The payor, address and check as the receipt takes them.
struct PayorEntry {
    QString payor, pAddr1, pAddr2, pCity, pState, pZipCode, pZipCode2, checknum;
};

class PaymentEntry {
public:
    explicit PaymentEntry(const PaymentEntryFields& fields) : f(fields) {}

    // Leaving txtDate: "Invalid Date Received" (title "Enter Date Received") for no date, the
    // field focused; otherwise the date, shown as mm/dd/yyyy.
    std::optional<QDate> validateDate(bool showMessage = true);
    // Leaving txtPayor: "O" copies the bill's name and address and moves to the check.
    void payorLeft();
    // Leaving txtChecknum: C, CH, MO become "CASH", "CHECK # ", "MONEY ORDER ".
    void checknumLeft();
    // Leaving txtAmount: "Invalid Payment Amount" or "Payment Amount Must Be Greater Than Zero"
    // (title "Enter Payment Amount"); zero passes. Shown in "$###,###,##0.00".
    bool validateAmount();

    // Accept, before anything is written: a ticked body, then date, payor, check and amount
    // (checked again when blank or changed since they last passed), then "Are you sure you
    // want to receive this payment?". dateTaken runs when the date was taken anew. The amount
    // entered, or nothing when Accept stops (its message shown, the field focused).
    std::optional<Money> checkForAccept(const std::function<void(const QDate&)>& dateTaken);
    // The amount against the total due: nothing when refused or a question was answered No
    // (its message shown); otherwise the overage and refund to write.
    std::optional<PaymentCheck> checkAgainstTotal(Money amount, Money totalDue, Money tolerance);

    PayorEntry payorEntry() const;
    // Keeps the payor and check of an accepted payment for the "Previous" buttons.
    void remember(const PayorEntry& payor) { m_previous = payor; }
    void previousPayor();
    void previousCheck();
    // The texts that passed are forgotten (a new bill).
    void forget();

private:
    PaymentEntryFields f;
    QString m_validDate, m_validPayor, m_validCheck, m_validAmount;
    PayorEntry m_previous;
};

// "    1" from "1": a typed bill number right-aligned in five, as the keys are stored.
QString PadBillNo(const QString& typed);
