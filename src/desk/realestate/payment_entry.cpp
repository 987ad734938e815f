#include "desk/realestate/payment_entry.h"

#include "core/common_values.h"
#include "core/messages.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

namespace {

const char* const ReceivePaymentTitle = "Receive Payment";
const char16_t* const AmountPattern = u"$###,###,##0.00";

} // namespace

QString PadBillNo(const QString& typed) {
    const QString text = typed.trimmed();
    bool digits = !text.isEmpty();
    for (QChar c : text)
        if (!c.isDigit())
            digits = false;
    if (digits)
        return PadFormat(text.toDouble(), "####0");
    // An added bill ("A0001") or anything else is right-aligned as it stands.
    return text.rightJustified(5, QLatin1Char(' '));
}

std::optional<QDate> PaymentEntry::validateDate(bool showMessage) {
    const std::optional<QDate> date = ParseTypedDate(f.txtDate->text());
    if (!date) {
        if (showMessage)
            MsgBox(QStringLiteral("Invalid Date Received"), QStringLiteral("Enter Date Received"),
                   MsgButtons::Ok, MsgIcon::Exclamation);
        f.txtDate->setEnabled(true);
        f.txtDate->setFocus(Qt::OtherFocusReason);
        f.txtDate->selectAll();
        return std::nullopt;
    }
    f.txtDate->setText(FormatDate(*date));
    m_validDate = f.txtDate->text();
    return date;
}

void PaymentEntry::payorLeft() {
    if (f.txtPayor->text().trimmed().toUpper() == QLatin1String("O")) {
        // The owner as the screen shows the bill now, address changes included.
        f.txtPayor->setText(f.txtName->text());
        f.txtPAddr1->setText(f.txtAddr1->text());
        f.txtPAddr2->setText(f.txtAddr2->text());
        f.txtPCity->setText(f.txtCity->text());
        f.cboPState->setEditText(f.cboState->currentText());
        f.txtPZipCode->setText(f.txtZipCode->text());
        f.txtPZipCode2->setText(f.txtZipCode2->text());
        f.txtChecknum->setFocus(Qt::OtherFocusReason);
    }
    m_validPayor = f.txtPayor->text();
}

void PaymentEntry::checknumLeft() {
    const QString typed = f.txtChecknum->text().trimmed().toUpper();
    if (typed == QLatin1String("C"))
        f.txtChecknum->setText(QStringLiteral("CASH"));
    else if (typed == QLatin1String("CH"))
        f.txtChecknum->setText(QStringLiteral("CHECK # "));
    else if (typed == QLatin1String("MO"))
        f.txtChecknum->setText(QStringLiteral("MONEY ORDER "));
    m_validCheck = f.txtChecknum->text();
}

bool PaymentEntry::validateAmount() {
    const std::optional<Money> amount = Money::parse(f.txtAmount->text());
    QString problem;
    if (!amount)
        problem = QStringLiteral("Invalid Payment Amount");
    else if (*amount < Money())
        problem = QStringLiteral("Payment Amount Must Be Greater Than Zero");
    if (!problem.isEmpty()) {
        MsgBox(problem, QStringLiteral("Enter Payment Amount"), MsgButtons::Ok,
               MsgIcon::Exclamation);
        f.txtAmount->setFocus(Qt::OtherFocusReason);
        f.txtAmount->selectAll();
        return false;
    }
    // Zero passes: a bill of nothing can so be marked paid.
    f.txtAmount->setText(amount->format(AmountPattern));
    m_validAmount = f.txtAmount->text();
    return true;
}

std::optional<Money>
PaymentEntry::checkForAccept(const std::function<void(const QDate&)>& dateTaken) {
    const QString title = QString::fromLatin1(ReceivePaymentTitle);

    // 1. Something must be paid.
    if (!f.chkCounty->isChecked() && !f.chkTwp->isChecked() && !f.chkSchool->isChecked()) {
        MsgBox(QStringLiteral("County, Twp/Boro/City and/or School Payment must be checked"), title,
               MsgButtons::Ok, MsgIcon::Exclamation);
        for (QCheckBox* box : {f.chkCounty, f.chkTwp, f.chkSchool})
            if (box->isEnabled()) {
                box->setFocus(Qt::OtherFocusReason);
                break;
            }
        return std::nullopt;
    }
    // 2 to 5. A field is checked again when blank or changed since it last passed.
    auto stale = [](QLineEdit* field, const QString& valid) {
        return field->text().trimmed().isEmpty() || field->text() != valid;
    };
    if (stale(f.txtDate, m_validDate)) {
        const std::optional<QDate> date = validateDate(true);
        if (!date)
            return std::nullopt;
        dateTaken(*date);
    }
    if (f.txtPayor->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Payor Must Be Specified"), QStringLiteral("Enter Payor"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        f.txtPayor->setFocus(Qt::OtherFocusReason);
        return std::nullopt;
    }
    if (stale(f.txtPayor, m_validPayor)) {
        if (f.txtPayor->text().trimmed().toUpper() == QLatin1String("O"))
            f.txtPayor->setText(f.txtName->text());
        m_validPayor = f.txtPayor->text();
    }
    if (f.txtChecknum->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Check Number/Cash Must Be Specified"),
               QStringLiteral("Enter Check Number"), MsgButtons::Ok, MsgIcon::Exclamation);
        f.txtChecknum->setFocus(Qt::OtherFocusReason);
        return std::nullopt;
    }
    if (stale(f.txtChecknum, m_validCheck))
        checknumLeft();
    if (stale(f.txtAmount, m_validAmount) && !validateAmount())
        return std::nullopt;
    const Money amount = Money::parse(f.txtAmount->text()).value_or(Money());

    // 6. The collector confirms.
    if (MsgBox(QStringLiteral("Are you sure you want to receive this payment?"), title,
               MsgButtons::YesNo, MsgIcon::Question) != MsgAnswer::Yes) {
        MsgBox(QStringLiteral("Payment NOT received."), title);
        return std::nullopt;
    }
    return amount;
}

std::optional<PaymentCheck> PaymentEntry::checkAgainstTotal(Money amount, Money totalDue,
                                                            Money tolerance) {
    const PaymentCheck check = CheckPaymentAgainstTotal(amount, totalDue, tolerance);
    if (check.kind == PaymentCheck::Kind::Refused) {
        MsgBox(check.text, check.title, MsgButtons::Ok, MsgIcon::Exclamation);
        f.txtAmount->setFocus(Qt::OtherFocusReason);
        f.txtAmount->selectAll();
        return std::nullopt;
    }
    if (check.asks() &&
        MsgBox(check.text, check.title, MsgButtons::YesNo, MsgIcon::Question) != MsgAnswer::Yes) {
        MsgBox(QString::fromLatin1(PaymentNotAppliedText),
               QString::fromLatin1(ReceivePaymentTitle));
        f.txtAmount->setFocus(Qt::OtherFocusReason);
        return std::nullopt;
    }
    return check;
}

PayorEntry PaymentEntry::payorEntry() const {
    return {f.txtPayor->text(),     f.txtPAddr1->text(),        f.txtPAddr2->text(),
            f.txtPCity->text(),     f.cboPState->currentText(), f.txtPZipCode->text(),
            f.txtPZipCode2->text(), f.txtChecknum->text()};
}

void PaymentEntry::previousPayor() {
    f.txtPayor->setText(m_previous.payor);
    f.txtPAddr1->setText(m_previous.pAddr1);
    f.txtPAddr2->setText(m_previous.pAddr2);
    f.txtPCity->setText(m_previous.pCity);
    f.cboPState->setEditText(m_previous.pState);
    f.txtPZipCode->setText(m_previous.pZipCode);
    f.txtPZipCode2->setText(m_previous.pZipCode2);
}

void PaymentEntry::previousCheck() {
    f.txtChecknum->setText(m_previous.checknum);
}

void PaymentEntry::forget() {
    m_validDate.clear();
    m_validPayor.clear();
    m_validCheck.clear();
    m_validAmount.clear();
}
