#include "desk/realestate/receipt_writes.h"

#include "core/tax_database.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QVariantList>

namespace {

const QString Blank = QStringLiteral(" ");
const QString SixBlanks = QStringLiteral("      ");

bool isBlank(QStringView flag) {
    return flag.trimmed().isEmpty();
}

// A statement with its values bound in order. False, with the database's reason, on failure.
bool run(QSqlQuery& q, const QString& sql, const QVariantList& values, QString* error) {
    if (!q.prepare(sql)) {
        *error = q.lastError().text();
        return false;
    }
    for (const QVariant& v : values)
        q.addBindValue(BoundText(v));
    if (!q.exec()) {
        *error = q.lastError().text();
        return false;
    }
    return true;
}

// Collects "Column = ?" parts and their values for an UPDATE.
struct Assignments {
    QStringList parts;
    QVariantList values;

    void set(const QString& column, const QVariant& value) {
        parts << column + QStringLiteral(" = ?");
        values << value;
    }
    void setIf(const QString& column, const std::optional<QString>& value) {
        if (value)
            set(column, *value);
    }
    QString sql(const QString& table, const QString& where) const {
        return QStringLiteral("UPDATE %1 SET %2 WHERE %3")
            .arg(table, parts.join(QStringLiteral(", ")), where);
    }
};

// Ends a write sequence: commit, or roll back with the reason.
template <typename Result> Result finish(QSqlDatabase& db, bool ok, Result result) {
    if (ok && db.commit()) {
        result.ok = true;
        return result;
    }
    if (ok)
        result.error = db.lastError().text();
    db.rollback();
    result.ok = false;
    return result;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Posting a payment
// ---------------------------------------------------------------------------------------------

Money RealEstateReceipt::linesTotal() const {
    Money sum;
    for (const AmountTriple& t : line)
        sum += t.discount + t.face + t.penalty;
    for (const Money& p : penPayment)
        sum += p;
    return sum;
}

RealEstatePosting StartRealEstatePosting(const BillNow& bill) {
    RealEstatePosting p;
    RealEstateReceipt& r = p.receipt;
    r.takeBill(bill);
    p.billNo = r.billNo;
    r.map3 = bill.text("Map3");
    r.map4 = bill.text("Map4");
    r.map5 = bill.text("Map5");
    return p;
}

RealEstatePosting BuildRealEstatePosting(const BillNow& bill, const PaymentChoice& choice,
                                         const PeriodAmounts& shown,
                                         const InstallmentView& installments) {
    RealEstatePosting p = StartRealEstatePosting(bill);
    RealEstateReceipt& r = p.receipt;

    const PaymentSelection& sel = choice.selection;
    auto take = [&](int from, int to) {
        for (int i = from; i <= to; ++i) {
            const LineTake& t = shown.line[i];
            r.line[i] = {t.discountDiff, t.face, t.penaltyDiff};
        }
    };

    if (sel.county) {
        r.cPayFlag = QString(choice.periods.county);
        p.master.cPayFlag = r.cPayFlag;
        take(LineCounty, LineCountySpecial);
    }

    const MunicipalPayFlags municipal =
        MunicipalFlagsForPayment(sel.twp, choice.streetLightShown, choice.streetLightOption,
                                 bill.text("StLtFlag"), choice.periods.twp);
    p.master.tPayFlag = municipal.tPayFlag;
    p.master.twpPaidFlag = municipal.twpPaidFlag;
    p.master.stLtPaidFlag = municipal.stLtPaidFlag;
    p.master.stLtFlag = municipal.stLtFlag;
    if (sel.twp) {
        r.tPayFlag = QString(choice.periods.twp);
        take(LineTwp, LineSpecial3);
        // In district 39 the receipt holds only the municipal lines that were chosen.
        if (choice.district39)
            for (int i = LineTwp; i <= LineSpecial3; ++i)
                if (shown.line[i].amount.isZero())
                    r.line[i] = {};
    }

    if (sel.school) {
        const bool byInstallment = sel.installment[0] || sel.installment[1] || sel.installment[2];
        if (!byInstallment) {
            r.sPayFlag = QString(choice.periods.school);
            take(LineSchool, LineSchoolSpecial);
        } else {
            r.sPayFlag = QStringLiteral("I");
            Money faces;
            for (int n = 0; n < 3; ++n) {
                if (!sel.installment[n])
                    continue;
                const InstallmentLine& l = installments.line[n];
                const bool penalty = l.code == QChar(PeriodPenalty);
                r.payFlag[n] = penalty ? QStringLiteral("P") : QStringLiteral("F");
                r.payment[n] = l.face;
                r.penPayment[n] = penalty ? l.penaltyDiff : Money();
                faces += l.face;
                p.master.payFlag[n] = r.payFlag[n];
            }
            // The penalty of an installment stays in PenPaymentN only.
            r.line[LineSchool] = {Money(), faces, Money()};
        }
        p.master.sPayFlag = r.sPayFlag;
    }
    return p;
}

QString MakeRecnum(const QDate& today, qint64 counter) {
    return (today.toString(QStringLiteral("yyyyMMdd")) +
            QStringLiteral("%1").arg(counter, 4, 10, QLatin1Char('0')))
        .left(12);
}

const DeskTables& RealEstateDesk() {
    static const DeskTables t{QStringLiteral("TCMaster"),
                              QStringLiteral("TCReceipt"),
                              QStringLiteral("TCReceiptNum"),
                              QStringLiteral("TCVoidReceipt"),
                              QStringLiteral("TCRefund"),
                              QStringLiteral("TCRefund"),
                              true,
                              QStringLiteral("TCAdjust")};
    return t;
}

const DeskTables& PerCapitaDesk() {
    static const DeskTables t{QStringLiteral("PCMaster"),
                              QStringLiteral("PCReceipt"),
                              QStringLiteral("PCReceiptNum"),
                              QStringLiteral("PCVoidReceipt"),
                              QStringLiteral("PCRefund"),
                              QStringLiteral("TCRefund"),
                              false,
                              QStringLiteral("PCAdjust")};
    return t;
}

PostingResult PostPayment(QSqlDatabase db, const DeskTables& tables, const PaymentRows& rows,
                          const QDate& today) {
    PostingResult result;
    if (!db.transaction()) {
        result.error = db.lastError().text();
        return result;
    }
    QSqlQuery q(db);

    // 1. The bill's flags first: a flag without its receipt is the trace of a cut-off payment.
    bool ok = true;
    if (!rows.masterFlags.empty()) {
        Assignments flags;
        for (const auto& [column, value] : rows.masterFlags)
            flags.set(column, value);
        flags.values << rows.billNo;
        ok = run(q, flags.sql(tables.master, QStringLiteral("BillNo = ?")), flags.values,
                 &result.error);
    }

    // 2. The receipt number.
    qint64 counter = 0;
    if (ok) {
        ok = run(q, QStringLiteral("SELECT ReceiptNum FROM %1").arg(tables.receiptNumbers), {},
                 &result.error);
        if (ok && !q.next()) {
            ok = false;
            result.error =
                QStringLiteral("The table %1 holds no receipt number.").arg(tables.receiptNumbers);
        }
        if (ok)
            counter = q.value(0).toLongLong();
    }
    if (ok)
        ok = run(q, QStringLiteral("UPDATE %1 SET ReceiptNum = ?").arg(tables.receiptNumbers),
                 {counter + 1}, &result.error);
    result.recnum = MakeRecnum(today, counter);

    // 3. The receipt.
    if (ok) {
        QStringList columns = rows.receiptColumns;
        QVariantList values = rows.receiptValues;
        columns << QStringLiteral("Recnum");
        values << result.recnum;
        const QString marks = QStringList(columns.size(), QStringLiteral("?")).join(u',');
        ok = run(q,
                 QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                     .arg(tables.receipts, columns.join(QStringLiteral(", ")), marks),
                 values, &result.error);
    }
    q.finish();
    result = finish(db, ok, result);
    if (!result.ok)
        result.recnum.clear();
    return result;
}

PostingResult PostRealEstatePayment(QSqlDatabase db, const RealEstatePosting& posting,
                                    const QDate& today) {
    const MasterPayFlags& m = posting.master;
    const RealEstateReceipt& r = posting.receipt;
    PaymentRows rows;
    rows.billNo = posting.billNo;
    auto flag = [&](const QString& column, const std::optional<QString>& value) {
        if (value)
            rows.masterFlags.emplace_back(column, *value);
    };
    flag(QStringLiteral("CPayFlag"), m.cPayFlag);
    flag(QStringLiteral("TPayFlag"), m.tPayFlag);
    flag(QStringLiteral("TwpPaidFlag"), m.twpPaidFlag);
    flag(QStringLiteral("StLtPaidFlag"), m.stLtPaidFlag);
    flag(QStringLiteral("SPayFlag"), m.sPayFlag);
    for (int n = 0; n < 3; ++n)
        flag(QStringLiteral("Pay%1Flag").arg(n + 1), m.payFlag[n]);
    flag(QStringLiteral("StLtFlag"), m.stLtFlag);

    QStringList& columns = rows.receiptColumns;
    QVariantList& values = rows.receiptValues;
    AppendReceiptColumns(columns, values, r);
    columns << "Map3"
            << "Map4"
            << "Map5";
    values << r.map3 << r.map4 << r.map5;
    for (int i = 0; i < TaxLineCount; ++i) {
        columns << DiscountColumn(i) << FaceColumn(i) << PenaltyColumn(i);
        values << MoneyValue(r.line[i].discount) << MoneyValue(r.line[i].face)
               << MoneyValue(r.line[i].penalty);
    }
    for (int n = 0; n < 3; ++n) {
        columns << QStringLiteral("Payment%1").arg(n + 1);
        values << MoneyValue(r.payment[n]);
    }
    for (int n = 0; n < 3; ++n) {
        columns << QStringLiteral("PenPayment%1").arg(n + 1);
        values << MoneyValue(r.penPayment[n]);
    }
    for (int n = 0; n < 3; ++n) {
        columns << QStringLiteral("Pay%1Flag").arg(n + 1);
        values << r.payFlag[n];
    }
    return PostPayment(db, RealEstateDesk(), rows, today);
}

void ReceiptCommon::takeBill(const BillNow& bill) {
    control = bill.text("Control");
    billNo = bill.text("BillNo");
    adjNo = bill.adjNo;
    name = bill.text("Name");
}

void AppendReceiptColumns(QStringList& columns, QVariantList& values, const ReceiptCommon& r) {
    columns << "Control"
            << "BillNo"
            << "AdjNo"
            << "Name"
            << "RDate"
            << "Overage"
            << "Refund"
            << "Payor"
            << "PAddr1"
            << "PAddr2"
            << "PCity"
            << "PState"
            << "PZipCode"
            << "PZipCode2"
            << "Checknum"
            << "CPayFlag"
            << "TPayFlag"
            << "SPayFlag"
            << "CDisbNum"
            << "TDisbNum"
            << "SDisbNum";
    values << r.control << r.billNo << r.adjNo << r.name << DateValue(r.rdate)
           << MoneyValue(r.overage) << MoneyValue(r.refund) << r.payor << r.pAddr1 << r.pAddr2
           << r.pCity << r.pState << r.pZipCode << r.pZipCode2 << r.checknum << r.cPayFlag
           << r.tPayFlag << r.sPayFlag << SixBlanks << SixBlanks << SixBlanks;
}

// ---------------------------------------------------------------------------------------------
// Voiding a receipt
// ---------------------------------------------------------------------------------------------

bool VoidMasterFlags::isEmpty() const {
    return !cPayFlag && !tPayFlag && !sPayFlag && !payFlag[0] && !payFlag[1] && !payFlag[2];
}

VoidMasterFlags FlagsAfterVoid(const BillPayFlags& receipt, const BillPayFlags& bill) {
    VoidMasterFlags f;
    if (!isBlank(receipt.cPayFlag))
        f.cPayFlag = Blank;
    if (!isBlank(receipt.tPayFlag))
        f.tPayFlag = Blank;
    if (receipt.sPayFlag.trimmed() == QLatin1String("I")) {
        // What stays paid of the installments once this receipt's ones are taken back.
        bool anyLeft = false;
        for (int n = 0; n < 3; ++n) {
            if (!isBlank(receipt.payFlag[n]))
                f.payFlag[n] = Blank;
            else if (!isBlank(bill.payFlag[n]))
                anyLeft = true;
        }
        f.sPayFlag = anyLeft ? QStringLiteral("I") : Blank;
    } else if (!isBlank(receipt.sPayFlag)) {
        f.sPayFlag = Blank;
    }
    return f;
}

bool RefundDistributed(const QString& disbNum, const QString& taxYear) {
    return disbNum != taxYear + QStringLiteral("00");
}

VoidResult VoidRealEstateReceipt(QSqlDatabase db, const VoidRequest& request, const QDate& today,
                                 const QString& taxYear) {
    return VoidReceipt(db, RealEstateDesk(), request, today, taxYear);
}

VoidResult VoidReceipt(QSqlDatabase db, const DeskTables& tables, const VoidRequest& request,
                       const QDate& today, const QString& taxYear) {
    VoidResult result;
    if (!db.transaction()) {
        result.error = db.lastError().text();
        return result;
    }
    QSqlQuery q(db);

    // The receipt (the first of its number) and whether it was voided before.
    bool ok = run(q,
                  QStringLiteral("SELECT rowid, * FROM %1 WHERE Recnum = ? "
                                 "ORDER BY rowid LIMIT 1")
                      .arg(tables.receipts),
                  {request.recnum}, &result.error);
    qint64 rowid = 0;
    BillPayFlags receiptFlags;
    QString billNo;
    if (ok && !q.next()) {
        ok = false;
        result.error = QStringLiteral("Receipt Number Not On File");
    }
    if (ok) {
        const QSqlRecord rec = q.record();
        rowid = rec.value(0).toLongLong();
        receiptFlags = BillPayFlagsFromRecord(rec);
        billNo = TextField(rec.value("BillNo"));
        ok = run(
            q, QStringLiteral("SELECT count(*) FROM %1 WHERE Recnum = ?").arg(tables.voidReceipts),
            {request.recnum}, &result.error);
        if (ok && q.next() && q.value(0).toLongLong() > 0) {
            ok = false;
            result.error = QStringLiteral("Receipt Has Already Been Voided");
        }
    }

    // 1. The bill.
    if (ok) {
        BillPayFlags billFlags;
        ok = run(q, QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? LIMIT 1").arg(tables.master),
                 {billNo}, &result.error);
        if (ok && q.next())
            billFlags = BillPayFlagsFromRecord(q.record());
        const VoidMasterFlags f = FlagsAfterVoid(receiptFlags, billFlags);
        if (ok && !f.isEmpty()) {
            Assignments a;
            a.setIf(QStringLiteral("CPayFlag"), f.cPayFlag);
            a.setIf(QStringLiteral("TPayFlag"), f.tPayFlag);
            a.setIf(QStringLiteral("SPayFlag"), f.sPayFlag);
            for (int n = 0; n < 3; ++n)
                a.setIf(QStringLiteral("Pay%1Flag").arg(n + 1), f.payFlag[n]);
            a.values << billNo;
            ok =
                run(q, a.sql(tables.master, QStringLiteral("BillNo = ?")), a.values, &result.error);
        }
    }

    // 2. The copy, every money column negated so that it adds to any total as it stands.
    if (ok) {
        const TaxDatabase::TableDef* receipt = TaxDatabase::table(tables.receipts);
        QStringList columns;
        QStringList expressions;
        QVariantList values;
        for (const TaxDatabase::ColumnDef& c : receipt->columns) {
            columns << c.name;
            if (c.type == TaxDatabase::ColumnType::Money) {
                expressions << QStringLiteral("-") + c.name;
            } else if (c.name == QLatin1String("VDate")) {
                expressions << QStringLiteral("?");
                values << DateValue(request.voidDate);
            } else if (c.name.endsWith(QLatin1String("DisbNum"))) {
                expressions << QStringLiteral("?");
                values << SixBlanks;
            } else {
                expressions << c.name;
            }
        }
        columns << "RCDisbNum"
                << "RTDisbNum"
                << "RSDisbNum"
                << "Reason"
                << "SysDate";
        expressions << "CDisbNum"
                    << "TDisbNum"
                    << "SDisbNum"
                    << "?"
                    << "?";
        values << request.reason << DateValue(today) << rowid;
        ok = run(q,
                 QStringLiteral("INSERT INTO %1 (%2) SELECT %3 FROM %4 WHERE rowid = ?")
                     .arg(tables.voidReceipts, columns.join(QStringLiteral(", ")),
                          expressions.join(QStringLiteral(", ")), tables.receipts),
                 values, &result.error);
    }

    // 3. The receipt's date of voiding.
    if (ok)
        ok = run(q, QStringLiteral("UPDATE %1 SET VDate = ? WHERE Recnum = ?").arg(tables.receipts),
                 {DateValue(today), request.recnum}, &result.error);

    // 4. Its refunds, unless one of them has gone out in a distribution.
    if (ok) {
        ok = run(
            q, QStringLiteral("SELECT DisbNum FROM %1 WHERE RecNum = ?").arg(tables.refundsOfVoid),
            {request.recnum}, &result.error);
        bool any = false;
        bool distributed = false;
        while (ok && q.next()) {
            any = true;
            if (RefundDistributed(TextField(q.value(0)), taxYear))
                distributed = true;
        }
        if (ok && any && !distributed) {
            ok = run(q, QStringLiteral("DELETE FROM %1 WHERE RecNum = ?").arg(tables.refundsOfVoid),
                     {request.recnum}, &result.error);
            result.refundsRemoved = ok;
        }
    }
    q.finish();
    result = finish(db, ok, result);
    if (!result.ok)
        result.refundsRemoved = false;
    return result;
}

// ---------------------------------------------------------------------------------------------
// Recording a refund
// ---------------------------------------------------------------------------------------------

bool AddRealEstateRefund(QSqlDatabase db, const RealEstateRefund& refund, QString* error) {
    return AddRefund(db, RealEstateDesk(), refund, error);
}

bool AddRefund(QSqlDatabase db, const DeskTables& tables, const RefundRecord& f, QString* error) {
    QString why;
    if (!db.transaction()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    QStringList columns{"Control", "BillNo", "AdjNo", "RecNum", "RecNumID"};
    QVariantList values{f.control, f.billNo, f.adjNo, f.recnum, f.recNumId};
    if (tables.hasMap) {
        columns << "Map3"
                << "Map4"
                << "Map5";
        values << f.map3 << f.map4 << f.map5;
    }
    columns << "Name"
            << "Addr1"
            << "Addr2"
            << "City"
            << "State"
            << "ZipCode"
            << "ZipCode2"
            << "Desc1"
            << "Refund"
            << "DisbNum"
            << "RDate";
    values << f.name << f.addr1 << f.addr2 << f.city << f.state << f.zipCode << f.zipCode2
           << f.desc1 << MoneyValue(f.refund) << f.disbNum << DateValue(f.rdate);
    QSqlQuery q(db);
    bool ok = run(q,
                  QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                      .arg(tables.refunds, columns.join(QStringLiteral(", ")),
                           QStringList(columns.size(), QStringLiteral("?")).join(u',')),
                  values, &why);
    q.finish();
    if (ok && db.commit())
        return true;
    if (ok)
        why = db.lastError().text();
    db.rollback();
    if (error)
        *error = why;
    return false;
}
