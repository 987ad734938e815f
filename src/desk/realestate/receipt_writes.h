#pragma once
// The write sequences of the real-estate counter: post a payment, void a receipt, record a
// refund. Each takes the database and a plain struct of what was chosen, runs in one
// transaction in the order the bill's markers rely on (the bill first, the detail after), and
// asks nothing. The screens validate and ask before they call; mortgage company posting and
// scanning call the same functions.

#include "core/money.h"
#include "desk/realestate/payment_rules.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <array>
#include <optional>

struct BillNow;

// ---------------------------------------------------------------------------------------------
// Posting a payment
// ---------------------------------------------------------------------------------------------

// The flags a payment sets on TCMaster. A flag without a value is left as it stands.
struct MasterPayFlags {
    std::optional<QString> cPayFlag;
    std::optional<QString> tPayFlag;
    std::optional<QString> twpPaidFlag;
    std::optional<QString> stLtPaidFlag;
    std::optional<QString> sPayFlag;
    std::array<std::optional<QString>, 3> payFlag{};
    QString stLtFlag = QStringLiteral(" "); // written by every payment

    bool operator==(const MasterPayFlags&) const = default;
};

// A TCReceipt row but its number. On a receipt each line's triple is the face taken with the
// signed differences: discount = discount - face, penalty = penalty - face.
struct RealEstateReceipt {
    QString control;
    QString billNo;
    int adjNo = 0;
    QString name;
    QString map3, map4, map5;
    QDate rdate;
    std::array<AmountTriple, TaxLineCount> line{};
    Money overage;
    Money refund;
    QString payor, pAddr1, pAddr2, pCity, pState, pZipCode, pZipCode2;
    QString checknum;
    QString cPayFlag = QStringLiteral(" ");
    QString tPayFlag = QStringLiteral(" ");
    QString sPayFlag = QStringLiteral(" ");
    std::array<Money, 3> payment{};    // the chosen installments' faces
    std::array<Money, 3> penPayment{}; // their penalty minus face
    std::array<QString, 3> payFlag{QStringLiteral(" "), QStringLiteral(" "), QStringLiteral(" ")};

    // The money taken on the receipt's lines (every amount column and the installments'
    // penalties), without overage and refund.
    Money linesTotal() const;
};

// What the collector chose on the payment screen, resolved against the bill on the screen.
struct PaymentChoice {
    PaymentSelection selection;    // the ticked bodies and installments
    PaymentPeriods periods;        // each body's period on the date credited
    bool streetLightShown = false; // district 39 with the street light choice on screen
    StreetLightChoice streetLightOption = StreetLightChoice::All; // the selected option
    bool district39 = false;
};

struct RealEstatePosting {
    QString billNo;
    MasterPayFlags master;
    RealEstateReceipt receipt;
};

// The flags and the receipt's amounts of a payment: the bill as it stands, the amounts shown
// (after any street light choice) and the installments on the date credited. Payor, check,
// date, overage and refund are left for the caller.
RealEstatePosting BuildRealEstatePosting(const BillNow& bill, const PaymentChoice& choice,
                                         const PeriodAmounts& shown,
                                         const InstallmentView& installments);

struct PostingResult {
    bool ok = false;
    QString recnum;
    QString error;
};

// The receipt number of counter value n on that day: "yyyymmdd" and n in "0000", held in 12
// characters, so a counter of 10000 or more loses its last digit.
QString MakeRecnum(const QDate& today, qint64 counter);

// Writes a payment: the bill's flags, then the next receipt number (TCReceiptNum), then the
// TCReceipt row. All or nothing.
PostingResult PostRealEstatePayment(QSqlDatabase db, const RealEstatePosting& posting,
                                    const QDate& today);

// ---------------------------------------------------------------------------------------------
// Voiding a receipt
// ---------------------------------------------------------------------------------------------

// The flags a void puts back on the bill, from the receipt's flags and the bill's installment
// flags. A flag without a value is left as it stands; TwpPaidFlag, StLtPaidFlag and StLtFlag
// are never touched.
struct VoidMasterFlags {
    std::optional<QString> cPayFlag;
    std::optional<QString> tPayFlag;
    std::optional<QString> sPayFlag;
    std::array<std::optional<QString>, 3> payFlag{};

    bool isEmpty() const;
    bool operator==(const VoidMasterFlags&) const = default;
};
VoidMasterFlags FlagsAfterVoid(const BillPayFlags& receipt, const BillPayFlags& bill);

struct VoidRequest {
    QString recnum;
    QDate voidDate; // the date typed as voided: the void copy's VDate
    QString reason;
};

struct VoidResult {
    bool ok = false;
    bool refundsRemoved = false;
    QString error;
};

// Voids a receipt: the bill's flags, then the negated copy into TCVoidReceipt, then the
// receipt's VDate (today), then its refunds when none of them has been distributed. A receipt
// that is missing or already voided is refused with nothing written.
VoidResult VoidRealEstateReceipt(QSqlDatabase db, const VoidRequest& request, const QDate& today,
                                 const QString& taxYear);

// True when a refund's DisbNum shows it distributed: anything but the tax year and "00".
bool RefundDistributed(const QString& disbNum, const QString& taxYear);

// ---------------------------------------------------------------------------------------------
// Recording a refund
// ---------------------------------------------------------------------------------------------

struct RealEstateRefund {
    QString control;
    QString billNo;
    int adjNo = 0;
    QString recnum;
    int recNumId = 0;
    QString map3, map4, map5;
    QString name, addr1, addr2, city, state, zipCode, zipCode2;
    QString desc1; // the reason
    Money refund;
    QString disbNum; // the tax year and "00" until the refund is distributed
    QDate rdate;
};

// Inserts one TCRefund row. False with the database's reason on failure.
bool AddRealEstateRefund(QSqlDatabase db, const RealEstateRefund& refund, QString* error = nullptr);
