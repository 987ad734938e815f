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

// An amount in "######.00" from ten-thousandths: rounded half away from zero to cents, a minus
// only when the cents are not zero, no digit before the point under one dollar.
void appendAmount(QString& line, qint64 units) {
    const qint64 cents = units >= 0 ? (units + 50) / 100 : -((50 - units) / 100);
    const qint64 whole = cents < 0 ? -cents : cents;
    if (cents < 0)
        line += QLatin1Char('-');
    if (whole >= 100)
        line += QString::number(whole / 100);
    line += QLatin1Char('.');
    line += QLatin1Char(char('0' + whole % 100 / 10));
    line += QLatin1Char(char('0' + whole % 10));
}

void appendQuoted(QString& line, const QString& text) {
    line += QLatin1Char('"');
    line += text;
    line += QLatin1Char('"');
}

} // namespace

QString DistributionLineColumns(const DistributionTables& tables, TaxingBody body) {
    const DistributionBody& b = tables.body(body);
    QStringList columns{
        QStringLiteral("coalesce(Control, '')"), QStringLiteral("coalesce(BillNo, '')"),
        // AdjNo is a number in the table and a text in the file.
        QStringLiteral("CAST(coalesce(AdjNo, 0) AS INTEGER)"),
        QStringLiteral("coalesce(Recnum, '')"), QStringLiteral("coalesce(Name, '')")};
    if (tables.hasMap)
        for (const char* map : {"Map3", "Map4", "Map5"})
            columns << QStringLiteral("coalesce(%1, '')").arg(QLatin1String(map));
    for (const QString& face : b.lines)
        columns << QStringLiteral("coalesce(%1, 0)").arg(face)
                << QStringLiteral("coalesce(%1, 0) + coalesce(%2, 0)")
                       .arg(DiscountColumn(face), PenaltyColumn(face));
    for (const QString& flag : b.flags)
        columns << QStringLiteral("coalesce(%1, '')").arg(flag);
    columns << QStringLiteral("coalesce(%1, '')").arg(b.keyColumn);
    return columns.join(QStringLiteral(", "));
}

QStringList DistributionLinesOf(QSqlQuery& query, const DistributionTables& tables, TaxingBody body,
                                const QString& district, const QString& ward) {
    const DistributionBody& b = tables.body(body);
    const int texts = tables.hasMap ? 8 : 5;
    const int amounts = int(b.lines.size()) * 2;
    const int flags = int(b.flags.size());
    QString start;
    appendQuoted(start, district);
    start += QLatin1Char(',');
    appendQuoted(start, ward);
    QStringList lines;
    while (query.next()) {
        QString line = start;
        line.reserve(160);
        int column = 0;
        for (; column < texts; ++column) {
            line += QLatin1Char(',');
            appendQuoted(line, query.value(column).toString());
        }
        for (int i = 0; i < amounts; ++i, ++column) {
            line += QLatin1Char(',');
            appendAmount(line, query.value(column).toLongLong());
        }
        for (int i = 0; i < flags; ++i, ++column) {
            // A blank flag goes out as one blank.
            const QString flag = query.value(column).toString();
            line += QLatin1Char(',');
            appendQuoted(line, flag.isEmpty() ? QStringLiteral(" ") : flag);
        }
        line += QLatin1Char(',');
        appendQuoted(line, query.value(column).toString());
        lines << line;
    }
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
                      .arg(DistributionLineColumns(tables, body), table, keyColumn));
        q.addBindValue(key);
        if (!q.exec()) {
            QueryFailed(db, q, error);
            return {};
        }
        lines << DistributionLinesOf(q, tables, body, district, ward);
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
