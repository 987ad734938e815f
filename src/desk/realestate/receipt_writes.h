#pragma once
// The write sequences of the counter: post a payment, void a receipt, record a refund. Each
// takes the database and a plain struct of what was chosen, runs in one transaction in the
// order the bill's markers rely on (the bill first, the detail after), and asks nothing. The
// screens validate and ask before they call; mortgage company posting and scanning call the
// same functions. One sequence serves both duplicates, told their tables by a DeskTables; the
// real-estate structs and names below are built on them, the per capita ones beside their
// screens.

#include "core/money.h"
#include "desk/realestate/payment_rules.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <array>
#include <optional>
#include <utility>
#include <vector>

struct BillNow;

// ---------------------------------------------------------------------------------------------
// The tables of a duplicate's counter
// ---------------------------------------------------------------------------------------------

struct DeskTables {
    QString master;         // TCMaster, PCMaster
    QString receipts;       // TCReceipt, PCReceipt
    QString receiptNumbers; // TCReceiptNum, PCReceiptNum
    QString voidReceipts;   // TCVoidReceipt, PCVoidReceipt
    QString refunds;        // where refund rows are written: TCRefund, PCRefund
    // Where a void looks for the receipt's refunds and removes them. The per capita void looks
    // in TCRefund too, by the receipt number alone, and so leaves PCRefund rows standing.
    QString refundsOfVoid;
    bool hasMap = false; // the refund rows carry Map3, Map4, Map5
    QString adjustments; // TCAdjust, PCAdjust
};
const DeskTables& RealEstateDesk();
const DeskTables& PerCapitaDesk();

struct PostingResult {
    bool ok = false;
    QString recnum;
    QString error;
};

// A payment of either duplicate, ready to write: the flags for the master row in the order
// they are set, and every column of the receipt but its number.
struct PaymentRows {
    QString billNo;
    std::vector<std::pair<QString, QString>> masterFlags;
    QStringList receiptColumns;
    QVariantList receiptValues;
};

// Writes a payment: the bill's flags, then the next receipt number, then the receipt row with
// it. All or nothing.
PostingResult PostPayment(QSqlDatabase db, const DeskTables& tables, const PaymentRows& rows,
                          const QDate& today);

// What every receipt row carries besides its amounts.
struct ReceiptCommon {
    QString control;
    QString billNo;
    int adjNo = 0;
    QString name;
    QDate rdate;
    Money overage;
    Money refund;
    QString payor, pAddr1, pAddr2, pCity, pState, pZipCode, pZipCode2;
    QString checknum;
    QString cPayFlag = QStringLiteral(" ");
    QString tPayFlag = QStringLiteral(" ");
    QString sPayFlag = QStringLiteral(" ");

    // Control, bill number, adjustment number and name of the bill as it stands.
    void takeBill(const BillNow& bill);
};

// Appends those columns, with CDisbNum, TDisbNum, SDisbNum six blanks each.
void AppendReceiptColumns(QStringList& columns, QVariantList& values, const ReceiptCommon& r);

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
struct RealEstateReceipt : ReceiptCommon {
    QString map3, map4, map5;
    std::array<AmountTriple, TaxLineCount> line{};
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

// A posting on the bill with its receipt's bill part filled in (control, number, name, map);
// the amounts and flags are the caller's.
RealEstatePosting StartRealEstatePosting(const BillNow& bill);
// The flags and the receipt's amounts of a payment: the bill as it stands, the amounts shown
// (after any street light choice) and the installments on the date credited. Payor, check,
// date, overage and refund are left for the caller.
RealEstatePosting BuildRealEstatePosting(const BillNow& bill, const PaymentChoice& choice,
                                         const PeriodAmounts& shown,
                                         const InstallmentView& installments);

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

// Voids a receipt: the bill's flags, then the negated copy into the void table (every money
// column times -1, the receipt's distribution numbers kept as RCDisbNum.., its own blank), then
// the receipt's VDate (today), then its refunds in tables.refundsOfVoid when none of them has
// been distributed. A receipt that is missing or already voided is refused with nothing
// written.
VoidResult VoidReceipt(QSqlDatabase db, const DeskTables& tables, const VoidRequest& request,
                       const QDate& today, const QString& taxYear);
VoidResult VoidRealEstateReceipt(QSqlDatabase db, const VoidRequest& request, const QDate& today,
                                 const QString& taxYear);

// True when a refund's DisbNum shows it distributed: anything but the tax year and "00".
bool RefundDistributed(const QString& disbNum, const QString& taxYear);

// ---------------------------------------------------------------------------------------------
// Recording a refund
// ---------------------------------------------------------------------------------------------

// A refund row; the map columns are written only where the duplicate has them.
struct RefundRecord {
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

using RealEstateRefund = RefundRecord;

// Inserts one row into tables.refunds. False with the database's reason on failure.
bool AddRefund(QSqlDatabase db, const DeskTables& tables, const RefundRecord& refund,
               QString* error = nullptr);
bool AddRealEstateRefund(QSqlDatabase db, const RealEstateRefund& refund, QString* error = nullptr);
