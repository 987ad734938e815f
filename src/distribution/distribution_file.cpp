#include "distribution/distribution_file.h"

#include "core/tax_database.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSqlQuery>

QString DistributionFileName(const DistributionTables& tables, TaxingBody body,
                             const QString& district, const QString& key) {
    return tables.disbType + district + tables.body(body).fileWord + key + QStringLiteral(".txt");
}

QString DistributionFilePath(const QString& programFolder, const DistributionTables& tables,
                             TaxingBody body, const QString& district, const QString& key) {
    return QDir(programFolder)
        .filePath(QStringLiteral("Distributions/") +
                  DistributionFileName(tables, body, district, key));
}

namespace {

// SQL of a quoted text field: the value between double quotes, as it stands.
QString quotedSql(const QString& expression) {
    return QStringLiteral("'\"' || %1 || '\"'").arg(expression);
}

// SQL of an amount in "######.00" from ten-thousandths: rounded half away from zero to cents,
// a minus only when the cents are not zero, no digit before the point under one dollar.
QString amountSql(const QString& units) {
    const QString cents = QStringLiteral("(CASE WHEN %1 >= 0 THEN (%1 + 50) / 100 ELSE -((50 - "
                                         "%1) / 100) END)")
                              .arg(units);
    return QStringLiteral("(CASE WHEN %1 < 0 THEN '-' ELSE '' END || CASE WHEN abs(%1) >= 100 "
                          "THEN abs(%1) / 100 ELSE '' END || '.' || printf('%02d', abs(%1) % "
                          "100))")
        .arg(cents);
}

} // namespace

QString DistributionLineSql(const DistributionTables& tables, TaxingBody body,
                            const QString& district, const QString& ward) {
    const DistributionBody& b = tables.body(body);
    // District and ward are the office's own two short codes: quotes in them are doubled.
    auto literal = [](QString text) {
        return QLatin1Char('\'') + text.replace(u'\'', QStringLiteral("''")) + QLatin1Char('\'');
    };
    QStringList fields{quotedSql(literal(district)), quotedSql(literal(ward)),
                       quotedSql(QStringLiteral("coalesce(Control, '')")),
                       quotedSql(QStringLiteral("coalesce(BillNo, '')")),
                       // AdjNo is a number in the table and a text in the file.
                       quotedSql(QStringLiteral("CAST(coalesce(AdjNo, 0) AS INTEGER)")),
                       quotedSql(QStringLiteral("coalesce(Recnum, '')")),
                       quotedSql(QStringLiteral("coalesce(Name, '')"))};
    if (tables.hasMap)
        for (const char* map : {"Map3", "Map4", "Map5"})
            fields << quotedSql(QStringLiteral("coalesce(%1, '')").arg(QLatin1String(map)));
    for (const QString& face : b.lines) {
        fields << amountSql(QStringLiteral("coalesce(%1, 0)").arg(face));
        fields << amountSql(QStringLiteral("(coalesce(%1, 0) + coalesce(%2, 0))")
                                .arg(DiscountColumn(face), PenaltyColumn(face)));
    }
    for (const QString& flag : b.flags)
        fields << quotedSql(
            QStringLiteral("CASE WHEN coalesce(%1, '') = '' THEN ' ' ELSE %1 END").arg(flag));
    fields << quotedSql(QStringLiteral("coalesce(%1, '')").arg(b.keyColumn));
    return fields.join(QStringLiteral(" || ',' || "));
}

QStringList DistributionLinesOf(QSqlQuery& query) {
    QStringList lines;
    while (query.next())
        lines << query.value(0).toString();
    return lines;
}

bool WriteDistributionFile(const QString& path, const QStringList& lines, QString* error) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    for (const QString& line : lines) {
        file.write(line.toUtf8());
        file.write("\n");
    }
    if (!file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}

QStringList DistributionRowsAsLines(QSqlDatabase db, const DistributionTables& tables,
                                    TaxingBody body, const QString& district, const QString& ward,
                                    const QString& key, QString* error) {
    QStringList lines;
    const QString keyColumn = tables.body(body).keyColumn;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    for (const QString& table : {tables.distribution, tables.voidDistribution}) {
        // The key column of the other bodies is blank in a row: the key alone selects.
        q.prepare(QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ? ORDER BY BillNo, AdjNo, Recnum")
                      .arg(DistributionLineSql(tables, body, district, ward), table, keyColumn));
        q.addBindValue(key);
        if (!q.exec()) {
            QueryFailed(db, q, error);
            return {};
        }
        lines << DistributionLinesOf(q);
    }
    return lines;
}

QString ReadCountyTaxYear(QSqlDatabase db) {
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT TaxYear FROM Millfile WHERE District || Ward = '000'")) &&
        q.next())
        return TextField(q.value(0));
    return QString();
}

QString DistributionKey(const QString& taxYear, int number) {
    return taxYear + QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}
