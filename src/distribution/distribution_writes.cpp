#include "distribution/distribution_writes.h"

#include "core/tax_database.h"
#include "distribution/distribution_file.h"

#include <QSet>
#include <QSqlQuery>

namespace {

// The columns of a distribution row and, for each, what the receipt gives it: its own
// columns by name, the key and CTS as parameters, everything else zero, blank or six blanks.
struct RowCopy {
    QStringList columns;
    QStringList sources;
};

RowCopy rowCopy(const DistributionTables& tables, const DistributionBody& body) {
    QSet<QString> copied{QStringLiteral("Control"), QStringLiteral("BillNo"),
                         QStringLiteral("AdjNo"),   QStringLiteral("Recnum"),
                         QStringLiteral("Name"),    QStringLiteral("Map3"),
                         QStringLiteral("Map4"),    QStringLiteral("Map5")};
    for (const QString& face : body.lines)
        copied << face << DiscountColumn(face) << PenaltyColumn(face);
    for (const QString& flag : body.flags)
        copied << flag;
    for (const QString& column : body.extra)
        copied << column;
    const QSet<QString> keys{QStringLiteral("CDisbNum"), QStringLiteral("TDisbNum"),
                             QStringLiteral("SDisbNum")};

    RowCopy out;
    const TaxDatabase::TableDef* def = TaxDatabase::table(tables.distribution);
    for (const TaxDatabase::ColumnDef& column : def->columns) {
        out.columns << column.name;
        if (column.name == u"CTS")
            out.sources << QStringLiteral(":cts");
        else if (column.name == body.keyColumn)
            out.sources << QStringLiteral(":key");
        else if (copied.contains(column.name))
            // A Null amount in a receipt counts as 0.
            out.sources << (column.type == TaxDatabase::ColumnType::Money
                                ? QStringLiteral("coalesce(%1, 0)").arg(column.name)
                                : column.name);
        else if (keys.contains(column.name))
            out.sources << QStringLiteral("'      '");
        else if (column.type == TaxDatabase::ColumnType::Money ||
                 column.type == TaxDatabase::ColumnType::Integer)
            out.sources << QStringLiteral("0");
        else
            out.sources << QStringLiteral("' '");
    }
    return out;
}

QString selection(const DistributionBody& body) {
    return QStringLiteral("Recnum <= :cut AND trim(%1) <> '' AND trim(%2) = ''")
        .arg(body.payFlag, body.keyColumn);
}

bool maxRowid(QSqlDatabase db, const QString& table, qint64* out, QString* error) {
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT coalesce(max(rowid), 0) FROM %1").arg(table)) || !q.next())
        return QueryFailed(db, q, error);
    *out = q.value(0).toLongLong();
    return true;
}

// Copies the selected rows of one receipt table into its distribution table; the count taken.
bool copyRows(QSqlDatabase db, const RowCopy& copy, const QString& from, const QString& into,
              const DistributionBody& body, const QString& key, const QString& cut, int* count,
              QString* error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO %1 (%2) SELECT %3 FROM %4 WHERE %5 ORDER BY Recnum, "
                             "rowid")
                  .arg(into, copy.columns.join(QStringLiteral(", ")),
                       copy.sources.join(QStringLiteral(", ")), from, selection(body)));
    q.bindValue(QStringLiteral(":cts"), body.cts);
    q.bindValue(QStringLiteral(":key"), key);
    q.bindValue(QStringLiteral(":cut"), cut);
    if (!q.exec())
        return QueryFailed(db, q, error);
    *count = q.numRowsAffected();
    return true;
}

bool stamp(QSqlDatabase db, const QString& table, const DistributionBody& body, const QString& key,
           const QString& cut, QString* error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("UPDATE %1 SET %2 = :key WHERE %3")
                  .arg(table, body.keyColumn, selection(body)));
    q.bindValue(QStringLiteral(":key"), key);
    q.bindValue(QStringLiteral(":cut"), cut);
    return q.exec() || QueryFailed(db, q, error);
}

bool linesSince(QSqlDatabase db, const DistributionTables& tables, const DistributionRun& run,
                TaxingBody body, const QString& table, qint64 after, QStringList* lines,
                QString* error) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT %1 FROM %2 WHERE rowid > ? ORDER BY rowid")
                  .arg(DistributionLineColumns(tables, body), table));
    q.addBindValue(after);
    if (!q.exec())
        return QueryFailed(db, q, error);
    *lines << DistributionLinesOf(q, tables, body, run.district, run.ward);
    return true;
}

bool recordNumber(QSqlDatabase db, const DistributionTables& tables, const DistributionBody& body,
                  const BodyDistribution& request, QString* error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT count(*) FROM tbl_DisbDates WHERE DisbNum = ? AND CTS = ? "
                             "AND DisbType = ?"));
    q.addBindValue(request.number);
    q.addBindValue(body.cts);
    q.addBindValue(tables.disbType);
    if (!q.exec() || !q.next())
        return QueryFailed(db, q, error);
    const bool reused = q.value(0).toInt() > 0;
    if (reused)
        q.prepare(QStringLiteral("UPDATE tbl_DisbDates SET DisbDate = ? WHERE DisbNum = ? AND "
                                 "CTS = ? AND DisbType = ?"));
    else
        q.prepare(QStringLiteral("INSERT INTO tbl_DisbDates (DisbDate, DisbNum, CTS, DisbType) "
                                 "VALUES (?, ?, ?, ?)"));
    q.addBindValue(DateValue(request.cutOff));
    q.addBindValue(request.number);
    q.addBindValue(body.cts);
    q.addBindValue(tables.disbType);
    return q.exec() || QueryFailed(db, q, error);
}

} // namespace

QString CutOffKey(const QDate& day) {
    return day.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral("9999");
}

bool DistributeBody(QSqlDatabase db, const DistributionTables& tables, const DistributionRun& run,
                    const BodyDistribution& request, BodyOutcome* outcome, QString* error) {
    const DistributionBody& body = tables.body(request.body);
    *outcome = BodyOutcome();
    outcome->body = request.body;
    outcome->number = request.number;
    outcome->key = DistributionKey(run.taxYear, request.number);
    const QString cut = CutOffKey(request.cutOff);
    const RowCopy copy = rowCopy(tables, body);

    qint64 receiptsAfter = 0;
    qint64 voidsAfter = 0;
    if (!maxRowid(db, tables.distribution, &receiptsAfter, error) ||
        !maxRowid(db, tables.voidDistribution, &voidsAfter, error))
        return false;
    if (!copyRows(db, copy, tables.receipts, tables.distribution, body, outcome->key, cut,
                  &outcome->receipts, error) ||
        !copyRows(db, copy, tables.voidReceipts, tables.voidDistribution, body, outcome->key, cut,
                  &outcome->voids, error))
        return false;
    if (outcome->nothingToDistribute())
        return true;
    return stamp(db, tables.receipts, body, outcome->key, cut, error) &&
           stamp(db, tables.voidReceipts, body, outcome->key, cut, error) &&
           recordNumber(db, tables, body, request, error) &&
           linesSince(db, tables, run, request.body, tables.distribution, receiptsAfter,
                      &outcome->lines, error) &&
           linesSince(db, tables, run, request.body, tables.voidDistribution, voidsAfter,
                      &outcome->lines, error);
}

bool DistributeReceipts(QSqlDatabase db, const DistributionTables& tables,
                        const DistributionRun& run, std::vector<BodyOutcome>* outcomes,
                        QString* error) {
    // A run touches every undistributed receipt and the indexes of four tables: it runs with a
    // page cache large enough to hold them, and gives the connection its own back after.
    QSqlQuery pragma(db);
    QVariant cacheSize;
    if (pragma.exec(QStringLiteral("PRAGMA cache_size")) && pragma.next())
        cacheSize = pragma.value(0);
    pragma.exec(QStringLiteral("PRAGMA cache_size = -65536"));
    std::vector<BodyOutcome> done;
    const bool ok = InOneTransaction(db, error, [&] {
        for (const BodyDistribution& request : run.bodies) {
            BodyOutcome outcome;
            if (!DistributeBody(db, tables, run, request, &outcome, error))
                return false;
            done.push_back(std::move(outcome));
        }
        return true;
    });
    if (cacheSize.isValid())
        pragma.exec(QStringLiteral("PRAGMA cache_size = %1").arg(cacheSize.toLongLong()));
    if (ok)
        *outcomes = std::move(done);
    return ok;
}

std::vector<FileFailure> WriteDistributionFiles(const QString& programFolder,
                                                const DistributionTables& tables,
                                                const QString& district,
                                                const std::vector<BodyOutcome>& outcomes) {
    std::vector<FileFailure> failures;
    for (const BodyOutcome& outcome : outcomes) {
        if (outcome.nothingToDistribute())
            continue;
        const QString path =
            DistributionFilePath(programFolder, tables, outcome.body, district, outcome.key);
        QString why;
        if (!WriteDistributionFile(path, outcome.lines, &why))
            failures.push_back({path, why});
    }
    return failures;
}
