#include "desk/realestate/chain_writes.h"

#include "core/tax_database.h"

#include <QSqlQuery>

namespace {

const char* const PayFlagColumns[3] = {"CPayFlag", "TPayFlag", "SPayFlag"};

bool exec(QSqlDatabase db, const QString& sql, const QVariantList& values, QString* error) {
    QSqlQuery q(db);
    q.prepare(sql);
    for (const QVariant& value : values)
        q.addBindValue(BoundText(value));
    return q.exec() || QueryFailed(db, q, error);
}

QString table(const char* name) {
    return QString::fromLatin1(name);
}

} // namespace

QVariant RowValues::value(const QString& column) const {
    const qsizetype at = m_columns.indexOf(column);
    return at < 0 ? QVariant() : m_values[std::size_t(at)];
}

bool RowValues::insert(QSqlDatabase db, const QString& tableName, QString* error) const {
    QStringList marks;
    for (qsizetype i = 0; i < m_columns.size(); ++i)
        marks << QStringLiteral("?");
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                  .arg(tableName, m_columns.join(QStringLiteral(", ")),
                       marks.join(QStringLiteral(", "))));
    for (const QVariant& value : m_values)
        q.addBindValue(BoundText(value));
    return q.exec() || QueryFailed(db, q, error);
}

bool AddBillToChain(QSqlDatabase db, const ChainAddition& a, QString* error) {
    bool numeric = false;
    const int number = a.billNo.mid(1).toInt(&numeric);
    if (!numeric || !a.billNo.startsWith(QLatin1Char('A'))) {
        if (error)
            *error = QStringLiteral("An added bill's number is A and four digits.");
        return false;
    }
    return InOneTransaction(db, error, [&] {
        if (!exec(db, QStringLiteral("UPDATE %1 SET BillNum = ?").arg(table(a.tables.billNum)),
                  {number + 1}, error))
            return false;
        if (!a.masterRow.insert(db, table(a.tables.master), error))
            return false;
        return exec(db,
                    QStringLiteral("INSERT INTO %1 (Control, BillNo, AdjDate, Reason) "
                                   "VALUES (?, ?, ?, ?)")
                        .arg(table(a.tables.adds)),
                    {a.control, a.billNo, DateValue(a.addDate), a.reason}, error);
    });
}

bool AppendAdjustment(QSqlDatabase db, const ChainAdjustment& a, QString* error) {
    return InOneTransaction(db, error, [&] {
        // The marker on the master first: cut off here, the bill shows as half adjusted.
        QString sql = QStringLiteral("UPDATE %1 SET AdjFlag = 'A'").arg(table(a.tables.master));
        if (a.exonerate)
            for (int b = 0; b < 3; ++b)
                if (a.bodies[std::size_t(b)])
                    sql += QStringLiteral(", %1 = 'X'").arg(QLatin1String(PayFlagColumns[b]));
        sql += QStringLiteral(" WHERE BillNo = ?");
        if (!exec(db, sql, {a.billNo}, error))
            return false;
        RowValues row = a.image;
        row.add("AdjNo", a.adjNo);
        row.add("AdjDate", DateValue(a.adjDate));
        row.add("Reason", a.reason);
        row.add("AdjFlag", a.exonerate ? QStringLiteral("X") : QStringLiteral("A"));
        return row.insert(db, table(a.tables.adjust), error);
    });
}

bool RemoveExoneration(QSqlDatabase db, const ChainUnexoneration& u, QString* error) {
    return InOneTransaction(db, error, [&] {
        QString sql = QStringLiteral("UPDATE %1 SET AdjFlag = ?").arg(table(u.tables.master));
        for (int b = 0; b < 3; ++b)
            if (u.bodies[std::size_t(b)])
                sql += QStringLiteral(", %1 = ' '").arg(QLatin1String(PayFlagColumns[b]));
        sql += QStringLiteral(" WHERE BillNo = ?");
        const QString adjFlag = u.lastAdjNo > 1 ? QStringLiteral("A") : QStringLiteral(" ");
        if (!exec(db, sql, {adjFlag, u.billNo}, error))
            return false;
        return exec(db,
                    QStringLiteral("DELETE FROM %1 WHERE BillNo = ? AND AdjNo = ?")
                        .arg(table(u.tables.adjust)),
                    {u.billNo, u.lastAdjNo}, error);
    });
}

bool AppendAddressChange(QSqlDatabase db, const ChainTables& tables, const QString& billNo,
                         const RowValues& row, QString* error) {
    return InOneTransaction(db, error, [&] {
        // The marker first: a change cut off here is found as incomplete and mended.
        if (!exec(db,
                  QStringLiteral("UPDATE %1 SET CAddrFlag = 'A' WHERE BillNo = ?")
                      .arg(table(tables.master)),
                  {billNo}, error))
            return false;
        return row.insert(db, table(tables.address), error);
    });
}

QString BoxValue(bool ticked) {
    return ticked ? QStringLiteral("1") : QStringLiteral("0");
}
