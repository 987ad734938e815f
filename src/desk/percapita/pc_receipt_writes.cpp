#include "desk/percapita/pc_receipt_writes.h"

#include "core/tax_database.h"

#include <QStringList>
#include <QVariantList>

Money PerCapitaReceipt::linesTotal() const {
    Money sum;
    for (const AmountTriple& t : line)
        sum += t.discount + t.face + t.penalty;
    return sum;
}

PerCapitaPosting BuildPerCapitaPosting(const BillNow& bill, const PaymentSelection& selection,
                                       const PaymentPeriods& periods,
                                       const PerCapitaAmounts& amounts) {
    PerCapitaPosting p;
    PerCapitaReceipt& r = p.receipt;
    r.takeBill(bill);
    p.billNo = r.billNo;

    const bool ticked[3] = {selection.county, selection.twp, selection.school};
    const QChar period[3] = {periods.county, periods.twp, periods.school};
    QString* flags[3] = {&r.cPayFlag, &r.tPayFlag, &r.sPayFlag};
    for (int b = 0; b < 3; ++b) {
        if (!ticked[b])
            continue;
        *flags[b] = QString(period[b]);
        p.master[b] = *flags[b];
    }
    for (int i = 0; i < PerCapitaLineCount; ++i) {
        if (!ticked[int(BodyOfPerCapitaLine(i))])
            continue;
        const LineTake& t = amounts.line[i];
        r.line[i] = {t.discountDiff, t.face, t.penaltyDiff};
    }
    return p;
}

PostingResult PostPerCapitaPayment(QSqlDatabase db, const PerCapitaPosting& posting,
                                   const QDate& today) {
    const PerCapitaReceipt& r = posting.receipt;
    PaymentRows rows;
    rows.billNo = posting.billNo;
    const char* const flagColumns[3] = {"CPayFlag", "TPayFlag", "SPayFlag"};
    for (int b = 0; b < 3; ++b)
        if (posting.master[b])
            rows.masterFlags.emplace_back(QString::fromLatin1(flagColumns[b]), *posting.master[b]);

    QStringList& columns = rows.receiptColumns;
    QVariantList& values = rows.receiptValues;
    AppendReceiptColumns(columns, values, r);
    for (int i = 0; i < PerCapitaLineCount; ++i) {
        const QString face = PerCapitaFaceColumn(i);
        columns << QLatin1Char('D') + face << face << QLatin1Char('P') + face;
        values << MoneyValue(r.line[i].discount) << MoneyValue(r.line[i].face)
               << MoneyValue(r.line[i].penalty);
    }
    return PostPayment(db, PerCapitaDesk(), rows, today);
}

VoidResult VoidPerCapitaReceipt(QSqlDatabase db, const VoidRequest& request, const QDate& today,
                                const QString& taxYear) {
    return VoidReceipt(db, PerCapitaDesk(), request, today, taxYear);
}

bool AddPerCapitaRefund(QSqlDatabase db, const RefundRecord& refund, QString* error) {
    return AddRefund(db, PerCapitaDesk(), refund, error);
}
