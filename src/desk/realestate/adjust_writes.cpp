#include "desk/realestate/adjust_writes.h"

#include "core/tax_database.h"

#include <QSqlQuery>
#include <QStringList>
#include <QVariant>
#include <utility>
#include <vector>

namespace {

// A text left unset is written as an empty text, never as Null.
QVariant notNull(const QVariant& value) {
    if (value.typeId() == QMetaType::QString && value.toString().isNull())
        return QVariant(QString::fromLatin1(""));
    return value;
}

const QString Blank = QStringLiteral(" ");

// The columns of an insert with their values, in the order they are listed.
class RowValues {
public:
    void add(const char* column, const QVariant& value) {
        m_columns << QString::fromLatin1(column);
        m_values.push_back(value);
    }
    void add(const QString& column, const QVariant& value) {
        m_columns << column;
        m_values.push_back(value);
    }
    bool insert(QSqlDatabase db, const QString& table, QString* error) const {
        QStringList marks;
        for (qsizetype i = 0; i < m_columns.size(); ++i)
            marks << QStringLiteral("?");
        QSqlQuery q(db);
        q.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                      .arg(table, m_columns.join(QStringLiteral(", ")),
                           marks.join(QStringLiteral(", "))));
        for (const QVariant& value : m_values)
            q.addBindValue(notNull(value));
        return q.exec() || QueryFailed(db, q, error);
    }

private:
    QStringList m_columns;
    std::vector<QVariant> m_values;
};

// The columns that TCMaster and TCAdjust share: the descriptive fields, the assessment, every
// amount, the installments and the Act 1 columns. MapRef and Lot1 are written empty.
void addImage(RowValues& row, const RealEstateBillImage& b) {
    row.add("Control", b.control);
    row.add("BillNo", b.billNo);
    row.add("Name", b.name);
    row.add("Map3", b.map3);
    row.add("Map4", b.map4);
    row.add("Map5", b.map5);
    row.add("CoOwner", b.coOwner);
    row.add("Addr1", b.addr1);
    row.add("Addr2", b.addr2);
    row.add("City", b.city);
    row.add("State", b.state);
    row.add("ZipCode", b.zipCode);
    row.add("ZipCode2", b.zipCode2);
    row.add("Desc1", b.desc1);
    row.add("Desc2", b.desc2);
    row.add("Desc3", b.desc3);
    row.add("Acreage", b.acreage);
    row.add("LandUse", b.landUse);
    row.add("LDesc", b.lDesc);
    row.add("AssLand", b.land);
    row.add("AssImpr", b.impr);
    row.add("DeedBook", b.deedBook);
    row.add("DeedPage", b.deedPage);
    for (int line = 0; line < TaxLineCount; ++line) {
        const AmountTriple& t = LineOf(b.amounts, line);
        row.add(DiscountColumn(line), MoneyValue(t.discount));
        row.add(FaceColumn(line), MoneyValue(t.face));
        row.add(PenaltyColumn(line), MoneyValue(t.penalty));
    }
    const Installments& inst = b.amounts.installments;
    for (int n = 0; n < 3; ++n) {
        row.add(QStringLiteral("Payment%1").arg(n + 1), MoneyValue(inst.payment[n]));
        row.add(QStringLiteral("PenPayment%1").arg(n + 1), MoneyValue(inst.penPayment[n]));
    }
    row.add("MapRef", QString(""));
    row.add("Lot1", QString(""));
    row.add("HFFlag", b.hfFlag);
    row.add("HomesteadFlag", b.homesteadFlag);
    row.add("FarmsteadFlag", b.farmsteadFlag);
    const Act1Exclusion& e = b.amounts.exclusion;
    row.add("HSExclusion", MoneyValue(e.homestead));
    row.add("FSExclusion", MoneyValue(e.farmstead));
    row.add("DExcFace", MoneyValue(e.excFace.discount));
    row.add("ExcFace", MoneyValue(e.excFace.face));
    row.add("PExcFace", MoneyValue(e.excFace.penalty));
}

bool exec(QSqlDatabase db, const QString& sql, const QVariantList& values, QString* error) {
    QSqlQuery q(db);
    q.prepare(sql);
    for (const QVariant& value : values)
        q.addBindValue(notNull(value));
    return q.exec() || QueryFailed(db, q, error);
}

const char* const PayFlagColumns[3] = {"CPayFlag", "TPayFlag", "SPayFlag"};

} // namespace

bool AddRealEstateBill(QSqlDatabase db, const BillAddition& a, QString* error) {
    bool numeric = false;
    const int number = a.image.billNo.mid(1).toInt(&numeric);
    if (!numeric || !a.image.billNo.startsWith(QLatin1Char('A'))) {
        if (error)
            *error = QStringLiteral("An added bill's number is A and four digits.");
        return false;
    }
    return InOneTransaction(db, error, [&] {
        if (!exec(db, QStringLiteral("UPDATE TCBillNum SET BillNum = ?"), {number + 1}, error))
            return false;
        RowValues row;
        row.add("District", a.district);
        row.add("Ward", a.ward);
        addImage(row, a.image);
        row.add("MVLand", 0);
        row.add("MVImpr", 0);
        for (const char* flag :
             {"AdjFlag", "CPayFlag", "TPayFlag", "SPayFlag", "Pay1Flag", "Pay2Flag", "Pay3Flag",
              "StLtFlag", "TwpPaidFlag", "StLtPaidFlag", "CAddrFlag", "BankFlag", "SecondNotice",
              "Exempt", "Defaulted", "TaxClaimFlag", "CleanAndGreen"})
            row.add(flag, Blank);
        row.add("TaxYear", a.taxYear);
        row.add("AAFlag", a.image.aaFlag);
        for (const char* empty : {"WebSite", "WebControl", "WebPassword", "Zip"})
            row.add(empty, QString(""));
        if (!row.insert(db, QStringLiteral("TCMaster"), error))
            return false;
        return exec(db,
                    QStringLiteral("INSERT INTO TCAdds (Control, BillNo, AdjDate, Reason) "
                                   "VALUES (?, ?, ?, ?)"),
                    {a.image.control, a.image.billNo, DateValue(a.addDate), a.reason}, error);
    });
}

bool RecordBillAdjustment(QSqlDatabase db, const BillAdjustment& a, QString* error) {
    const bool exonerate = a.kind == BillAdjustment::Kind::Exonerate;
    return InOneTransaction(db, error, [&] {
        // The marker on the master first: cut off here, the bill shows as half adjusted.
        QString sql = QStringLiteral("UPDATE TCMaster SET AdjFlag = 'A'");
        if (exonerate)
            for (int b = 0; b < 3; ++b)
                if (a.bodies[b])
                    sql += QStringLiteral(", %1 = 'X'").arg(QLatin1String(PayFlagColumns[b]));
        sql += QStringLiteral(" WHERE BillNo = ?");
        if (!exec(db, sql, {a.image.billNo}, error))
            return false;

        RowValues row;
        addImage(row, a.image);
        row.add("AdjNo", a.adjNo);
        row.add("AdjDate", DateValue(a.adjDate));
        row.add("Reason", a.reason);
        row.add("AdjFlag", exonerate ? QStringLiteral("X") : QStringLiteral("A"));
        row.add("AAFlag", Blank);
        return row.insert(db, QStringLiteral("TCAdjust"), error);
    });
}

bool RecordBillUnexoneration(QSqlDatabase db, const BillUnexoneration& u, QString* error) {
    return InOneTransaction(db, error, [&] {
        QString sql = QStringLiteral("UPDATE TCMaster SET AdjFlag = ?");
        for (int b = 0; b < 3; ++b)
            if (u.bodies[b])
                sql += QStringLiteral(", %1 = ' '").arg(QLatin1String(PayFlagColumns[b]));
        sql += QStringLiteral(" WHERE BillNo = ?");
        const QString adjFlag = u.lastAdjNo > 1 ? QStringLiteral("A") : Blank;
        if (!exec(db, sql, {adjFlag, u.billNo}, error))
            return false;
        return exec(db, QStringLiteral("DELETE FROM TCAdjust WHERE BillNo = ? AND AdjNo = ?"),
                    {u.billNo, u.lastAdjNo}, error);
    });
}

RealEstateAmounts ExoneratedAmounts(const RealEstateAmounts& amounts, const BodyTicks& bodies) {
    RealEstateAmounts out = amounts;
    const TaxBody order[3] = {TaxBody::County, TaxBody::Twp, TaxBody::School};
    for (int line = 0; line < TaxLineCount; ++line)
        for (int b = 0; b < 3; ++b)
            if (bodies[b] && BodyOfLine(line) == order[b])
                LineOf(out, line) = AmountTriple{};
    if (bodies[2]) {
        out.installments = Installments{};
        out.exclusion.excFace = AmountTriple{};
    }
    return out;
}
