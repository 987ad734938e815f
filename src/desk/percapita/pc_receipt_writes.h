#pragma once
// The write sequences of the per capita counter: post a payment, void a receipt, record a
// refund. They run the counter's one sequence (desk/realestate/receipt_writes.h) on the PC
// tables; what is the per capita duplicate's own is the receipt's columns and the flags.

#include "core/money.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/receipt_writes.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <array>
#include <optional>

struct BillNow;

// A PCReceipt row but its number. Each line's triple is the face taken with the signed
// differences: discount = discount - face, penalty = penalty - face.
struct PerCapitaReceipt : ReceiptCommon {
    std::array<AmountTriple, PerCapitaLineCount> line{};

    // The money taken on the receipt's lines, without overage and refund.
    Money linesTotal() const;
};

struct PerCapitaPosting {
    QString billNo;
    // CPayFlag, TPayFlag, SPayFlag of PCMaster: set for the ticked bodies only.
    std::array<std::optional<QString>, 3> master{};
    PerCapitaReceipt receipt;
};

// The flags and the receipt's amounts of a payment of the ticked bodies at their periods: the
// face columns from the bill as it stands, the D and P columns as differences. Payor, check,
// date, overage and refund are left for the caller.
PerCapitaPosting BuildPerCapitaPosting(const BillNow& bill, const PaymentSelection& selection,
                                       const PaymentPeriods& periods,
                                       const PerCapitaAmounts& amounts);

// PCMaster's flags, then the next number of PCReceiptNum, then the PCReceipt row.
PostingResult PostPerCapitaPayment(QSqlDatabase db, const PerCapitaPosting& posting,
                                   const QDate& today);

// PCMaster's flags, the negated copy into PCVoidReceipt, PCReceipt's VDate, and the receipt
// number's undistributed refunds in TCRefund (not PCRefund: the per capita void has always
// looked in the real-estate table).
VoidResult VoidPerCapitaReceipt(QSqlDatabase db, const VoidRequest& request, const QDate& today,
                                const QString& taxYear);

// One PCRefund row (no map columns).
bool AddPerCapitaRefund(QSqlDatabase db, const RefundRecord& refund, QString* error = nullptr);
