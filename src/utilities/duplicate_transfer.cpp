#include "utilities/duplicate_transfer.h"

#include "core/csv.h"
#include "core/money.h"
#include "core/tax_database.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLocale>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSet>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QUuid>
#include <cmath>

#include <sqlite3.h>

namespace {

using TaxDatabase::ColumnType;

// ---- What a value of a column must look like ------------------------------------------------

// One-character flag columns: unset is one blank.
bool IsFlagColumn(const QString& column) {
    static const QSet<QString> others{"secondnotice", "exempt",      "defaulted", "pcexempt",
                                      "scexempt",     "otherexempt", "over65",    "cts",
                                      "billcounty",   "billtwp",     "billschool"};
    const QString lower = column.toLower();
    return lower.endsWith(QLatin1String("flag")) || others.contains(lower);
}

// Checks a text value against the form its column keeps, and brings an unset flag, map part or
// distribution key to its stored form. The reason when the value does not fit.
QString CheckText(const QString& column, QString& value) {
    static const QRegularExpression billNo(QStringLiteral("^( *[0-9]+|[A-Z][0-9]{4})$"));
    static const QRegularExpression digits(QStringLiteral("^[0-9]+$"));
    static const QRegularExpression disbNum(QStringLiteral("^( {6}|[0-9]{6})$"));
    const QString lower = column.toLower();
    if (IsFlagColumn(column)) {
        if (value.isEmpty())
            value = QStringLiteral(" ");
        return value.size() == 1 ? QString() : QStringLiteral("a flag holds one character");
    }
    if (lower == u"billno") {
        if (value.size() != 5 || !billNo.match(value).hasMatch())
            return QStringLiteral("a bill number is 5 characters, right-aligned digits or A and "
                                  "four digits");
        return {};
    }
    if (lower == u"control") {
        if (value.trimmed().isEmpty() || value.size() > 6)
            return QStringLiteral("a control number is 1 to 6 characters");
        return {};
    }
    if (lower == u"district") {
        if (value.size() != 2 || !digits.match(value).hasMatch())
            return QStringLiteral("a district is two digits");
        return {};
    }
    if (lower == u"ward") {
        if (value.size() != 1)
            return QStringLiteral("a ward is one character");
        return {};
    }
    if (lower == u"recnum") {
        if (value.size() != 12 || !digits.match(value).hasMatch())
            return QStringLiteral("a receipt number is 12 digits");
        return {};
    }
    if (lower.endsWith(QLatin1String("disbnum"))) {
        if (value.isEmpty())
            value = QStringLiteral("      ");
        if (!disbNum.match(value).hasMatch())
            return QStringLiteral("a distribution key is six digits or six blanks");
        return {};
    }
    if (lower == u"taxyear") {
        if (value.size() != 4 || !digits.match(value).hasMatch())
            return QStringLiteral("a tax year is four digits");
        return {};
    }
    static const QHash<QString, int> mapWidths{{"map3", 8}, {"map4", 6}, {"map5", 9}};
    if (const auto width = mapWidths.find(lower); width != mapWidths.end()) {
        if (value.isEmpty())
            value = QStringLiteral(" ");
        if (value.size() > width.value())
            return QStringLiteral("this part of the map number holds at most %1 characters")
                .arg(width.value());
        return {};
    }
    return {};
}

// Money as a plain decimal with at most four places: "1234.5", "-3", "0.1250".
std::optional<qint64> ParseMoneyUnits(const QString& text) {
    static const QRegularExpression form(QStringLiteral("^(-?)([0-9]*)(?:\\.([0-9]{0,4}))?$"));
    const QRegularExpressionMatch m = form.match(text.trimmed());
    if (!m.hasMatch() || (m.captured(2).isEmpty() && m.captured(3).isEmpty()))
        return std::nullopt;
    if (m.captured(2).size() > 14)
        return std::nullopt;
    const qint64 whole = m.captured(2).isEmpty() ? 0 : m.captured(2).toLongLong();
    const QString places = m.captured(3).leftJustified(4, QLatin1Char('0'));
    const qint64 units = whole * Money::UnitsPerDollar + places.toLongLong();
    return m.captured(1).isEmpty() ? units : -units;
}

// "MM/DD/YY HH:MM:SS" as mdb-export writes a date; four-digit years and ISO dates are taken
// too. Two-digit years run from 1930 to 2029, as the desktop database engine reads them.
QDate ParseCsvDate(const QString& text) {
    static const QRegularExpression us(
        QStringLiteral("^([0-9]{1,2})/([0-9]{1,2})/([0-9]{2}|[0-9]{4})"
                       "(?: +[0-9]{1,2}:[0-9]{2}(?::[0-9]{2})?(?: ?[AaPp][Mm])?)?$"));
    static const QRegularExpression iso(
        QStringLiteral("^([0-9]{4})-([0-9]{2})-([0-9]{2})(?:[ T][0-9:.]+)?$"));
    const QString t = text.trimmed();
    if (const QRegularExpressionMatch m = us.match(t); m.hasMatch()) {
        int year = m.captured(3).toInt();
        if (m.captured(3).size() == 2)
            year += year < 30 ? 2000 : 1900;
        return QDate(year, m.captured(1).toInt(), m.captured(2).toInt());
    }
    if (const QRegularExpressionMatch m = iso.match(t); m.hasMatch())
        return QDate(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
    return {};
}

// ---- One value bound for SQLite ---------------------------------------------------------------

struct Bound {
    enum Kind { Null, Integer, Real, Text } kind = Null;
    qint64 integer = 0;
    double real = 0;
    QByteArray text;
};

// The stored value of a field, or the reason it does not fit its column.
QString Convert(const QString& column, ColumnType type, const CsvField& field, Bound* out) {
    const bool null = field.isNull();
    switch (type) {
    case ColumnType::Text: {
        QString value = field.text;
        const QString why = CheckText(column, value);
        if (!why.isEmpty())
            return why + QStringLiteral(" (\"") + field.text + QStringLiteral("\")");
        *out = {Bound::Text, 0, 0, value.toUtf8()};
        return {};
    }
    case ColumnType::Money: {
        if (null || field.text.trimmed().isEmpty()) {
            *out = {Bound::Integer, 0, 0, {}};
            return {};
        }
        const std::optional<qint64> units = ParseMoneyUnits(field.text);
        if (!units)
            return QStringLiteral("not an amount with at most four decimals (\"%1\")")
                .arg(field.text);
        *out = {Bound::Integer, *units, 0, {}};
        return {};
    }
    case ColumnType::Integer: {
        if (null || field.text.trimmed().isEmpty()) {
            *out = {Bound::Integer, 0, 0, {}};
            return {};
        }
        bool ok = false;
        const qint64 n = field.text.trimmed().toLongLong(&ok);
        if (!ok)
            return QStringLiteral("not a whole number (\"%1\")").arg(field.text);
        *out = {Bound::Integer, n, 0, {}};
        return {};
    }
    case ColumnType::Real: {
        if (null || field.text.trimmed().isEmpty()) {
            *out = {Bound::Real, 0, 0, {}};
            return {};
        }
        bool ok = false;
        const double r = QLocale::c().toDouble(field.text.trimmed(), &ok);
        if (!ok || !std::isfinite(r))
            return QStringLiteral("not a number (\"%1\")").arg(field.text);
        *out = {Bound::Real, 0, r, {}};
        return {};
    }
    case ColumnType::Date: {
        if (null || field.text.trimmed().isEmpty()) {
            *out = {};
            return {};
        }
        const QDate d = ParseCsvDate(field.text);
        if (!d.isValid())
            return QStringLiteral("not a date MM/DD/YY (\"%1\")").arg(field.text);
        *out = {Bound::Text, 0, 0, d.toString(Qt::ISODate).toLatin1()};
        return {};
    }
    case ColumnType::Boolean: {
        const QString t = field.text.trimmed().toLower();
        if (null || t.isEmpty() || t == u"0" || t == u"false") {
            *out = {Bound::Integer, 0, 0, {}};
            return {};
        }
        if (t == u"1" || t == u"-1" || t == u"true") {
            *out = {Bound::Integer, 1, 0, {}};
            return {};
        }
        return QStringLiteral("not 0 or 1 (\"%1\")").arg(field.text);
    }
    }
    return {};
}

// A column the file does not bring: text empty (a flag, map part or key blank), numbers zero,
// dates none.
Bound Missing(const TaxDatabase::ColumnDef& column) {
    Bound b;
    switch (column.type) {
    case ColumnType::Text: {
        QString value;
        CheckText(column.name, value);
        b = {Bound::Text, 0, 0, value.toUtf8()};
        break;
    }
    case ColumnType::Real:
        b = {Bound::Real, 0, 0, {}};
        break;
    case ColumnType::Date:
        break;
    default:
        b = {Bound::Integer, 0, 0, {}};
        break;
    }
    return b;
}

// The columns without which a table is of no use: the keys the screens find its rows by (not
// the names, map parts, dates and distribution keys they also search), or its one column of
// note.
QSet<QString> NeededColumns(const TaxDatabase::TableDef& table) {
    static const QSet<QString> searchedOnly{"name",     "map3",     "map4",    "map5",
                                            "lname",    "fname",    "adjdate", "adate",
                                            "cdisbnum", "tdisbnum", "sdisbnum"};
    QSet<QString> needed;
    for (const QStringList& index : table.indexes)
        for (const QString& c : index)
            if (!searchedOnly.contains(c.toLower()))
                needed.insert(c.toLower());
    if (needed.isEmpty() && !table.columns.empty())
        needed.insert(table.columns.front().name.toLower());
    return needed;
}

class Statement {
public:
    Statement(sqlite3* db, const QString& sql) {
        sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &m_statement, nullptr);
    }
    ~Statement() { sqlite3_finalize(m_statement); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    bool valid() const { return m_statement != nullptr; }

    bool insert(const std::vector<Bound>& values) {
        for (int i = 0; i < int(values.size()); ++i) {
            const Bound& v = values[std::size_t(i)];
            switch (v.kind) {
            case Bound::Null:
                sqlite3_bind_null(m_statement, i + 1);
                break;
            case Bound::Integer:
                sqlite3_bind_int64(m_statement, i + 1, v.integer);
                break;
            case Bound::Real:
                sqlite3_bind_double(m_statement, i + 1, v.real);
                break;
            case Bound::Text:
                sqlite3_bind_text(m_statement, i + 1, v.text.constData(), int(v.text.size()),
                                  SQLITE_STATIC);
                break;
            }
        }
        const int rc = sqlite3_step(m_statement);
        sqlite3_reset(m_statement);
        return rc == SQLITE_DONE;
    }

private:
    sqlite3_stmt* m_statement = nullptr;
};

sqlite3* Handle(const QSqlDatabase& db) {
    const QVariant v = db.driver()->handle();
    if (qstrcmp(v.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(v.data());
}

struct SourceFile {
    QString path;
    QString fileName;
    const TaxDatabase::TableDef* table = nullptr;
};

class Importer {
public:
    Importer(DuplicateImport& result, const ImportProgress& progress)
        : m_result(result), m_progress(progress) {}

    // Finds the files of the folder and what table each fills.
    bool survey(const QString& folder) {
        const QDir dir(folder);
        if (!dir.exists()) {
            m_result.problems << QStringLiteral("The folder %1 does not exist.")
                                     .arg(QDir::toNativeSeparators(folder));
            return false;
        }
        const QFileInfoList files =
            dir.entryInfoList({QStringLiteral("*.csv"), QStringLiteral("*.CSV")}, QDir::Files,
                              QDir::Name | QDir::IgnoreCase);
        QHash<QString, QFileInfo> byTable;
        for (const QFileInfo& f : files) {
            const TaxDatabase::TableDef* t = nullptr;
            for (const TaxDatabase::TableDef& def : TaxDatabase::schema())
                if (def.name.compare(f.completeBaseName(), Qt::CaseInsensitive) == 0)
                    t = &def;
            if (!t) {
                m_result.notes << QStringLiteral("%1: no table of the tax database; left aside.")
                                      .arg(f.fileName());
                continue;
            }
            byTable.insert(t->name, f);
        }
        // In the order of the schema, so that a rerun lists its findings in the same order.
        for (const TaxDatabase::TableDef& def : TaxDatabase::schema())
            if (const auto f = byTable.find(def.name); f != byTable.end()) {
                m_files.push_back({f->absoluteFilePath(), f->fileName(), &def});
                m_totalBytes += f->size();
            }
        for (const char* required : {"Millfile", "tbl_District"})
            if (!byTable.contains(QLatin1String(required)))
                m_result.problems
                    << QStringLiteral("%1.csv is missing: the tax database cannot open without it.")
                           .arg(QLatin1String(required));
        return m_result.problems.isEmpty();
    }

    bool load(sqlite3* db) {
        for (const SourceFile& f : m_files)
            if (!loadFile(db, f))
                return false;
        return true;
    }

private:
    bool loadFile(sqlite3* db, const SourceFile& f) {
        QFile file(f.path);
        if (!file.open(QIODevice::ReadOnly)) {
            m_result.problems
                << QStringLiteral("%1: cannot be read (%2).").arg(f.fileName, file.errorString());
            return true; // go on listing what else is wrong
        }
        CsvReader reader(file.readAll());
        file.close();
        const TaxDatabase::TableDef& table = *f.table;

        const std::optional<std::vector<CsvField>> header = reader.next();
        if (!header) {
            m_result.problems
                << QStringLiteral("%1: empty, without even its header row.").arg(f.fileName);
            return true;
        }
        // Where each column of the table comes from in a record, or -1.
        std::vector<int> source(table.columns.size(), -1);
        QSet<QString> seen;
        for (int i = 0; i < int(header->size()); ++i) {
            const QString name = (*header)[std::size_t(i)].text.trimmed();
            int found = -1;
            for (int c = 0; c < int(table.columns.size()); ++c)
                if (table.columns[std::size_t(c)].name.compare(name, Qt::CaseInsensitive) == 0)
                    found = c;
            if (found < 0) {
                m_result.notes << QStringLiteral("%1: column %2 is not one the program keeps; "
                                                 "left aside.")
                                      .arg(f.fileName, name);
                continue;
            }
            if (seen.contains(name.toLower())) {
                m_result.problems
                    << QStringLiteral("%1 line 1: column %2 comes twice.").arg(f.fileName, name);
                continue;
            }
            seen.insert(name.toLower());
            source[std::size_t(found)] = i;
        }
        const QSet<QString> needed = NeededColumns(table);
        QStringList lacking;
        for (int c = 0; c < int(table.columns.size()); ++c)
            if (source[std::size_t(c)] < 0 &&
                needed.contains(table.columns[std::size_t(c)].name.toLower()))
                lacking << table.columns[std::size_t(c)].name;
        if (!lacking.isEmpty()) {
            m_result.problems << QStringLiteral("%1: the column %2 that the program needs is "
                                                "missing; the table cannot be taken.")
                                     .arg(f.fileName, lacking.join(QStringLiteral(", ")));
            return true;
        }

        QStringList names;
        for (const TaxDatabase::ColumnDef& c : table.columns)
            names << c.name;
        Statement clear(db, QStringLiteral("DELETE FROM %1").arg(table.name));
        clear.insert({});
        Statement insert(db, QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                                 .arg(table.name, names.join(QLatin1Char(',')),
                                      QStringLiteral("?,").repeated(int(names.size())).chopped(1)));
        if (!insert.valid()) {
            m_result.problems << QStringLiteral("%1: %2").arg(
                f.fileName, QString::fromUtf8(sqlite3_errmsg(db)));
            return false;
        }

        std::vector<Bound> values(table.columns.size());
        std::vector<Bound> defaults;
        for (const TaxDatabase::ColumnDef& c : table.columns)
            defaults.push_back(Missing(c));
        int rowsSinceProgress = 0;
        while (const std::optional<std::vector<CsvField>> record = reader.next()) {
            const std::vector<CsvField>& fields = *record;
            if (fields.size() == 1 && fields.front().isNull())
                continue; // a blank line
            if (reader.unterminatedQuote()) {
                m_result.problems << QStringLiteral("%1 line %2: a quoted text never ends.")
                                         .arg(f.fileName)
                                         .arg(reader.line());
                break;
            }
            if (fields.size() != header->size()) {
                m_result.problems << QStringLiteral("%1 line %2: %3 fields where the header has "
                                                    "%4.")
                                         .arg(f.fileName)
                                         .arg(reader.line())
                                         .arg(fields.size())
                                         .arg(header->size());
                continue;
            }
            bool rowOk = true;
            for (int c = 0; c < int(table.columns.size()); ++c) {
                const int from = source[std::size_t(c)];
                if (from < 0) {
                    values[std::size_t(c)] = defaults[std::size_t(c)];
                    continue;
                }
                const TaxDatabase::ColumnDef& column = table.columns[std::size_t(c)];
                const QString why = Convert(column.name, column.type, fields[std::size_t(from)],
                                            &values[std::size_t(c)]);
                if (!why.isEmpty()) {
                    m_result.problems << QStringLiteral("%1 line %2, %3: %4")
                                             .arg(f.fileName)
                                             .arg(reader.line())
                                             .arg(column.name, why);
                    rowOk = false;
                }
            }
            if (rowOk && m_result.problems.isEmpty()) {
                if (!insert.insert(values)) {
                    m_result.problems << QStringLiteral("%1 line %2: %3")
                                             .arg(f.fileName)
                                             .arg(reader.line())
                                             .arg(QString::fromUtf8(sqlite3_errmsg(db)));
                    return false;
                }
                ++m_result.rows;
            }
            if (m_result.problems.size() > 1000)
                return false; // enough to show what is wrong
            if (++rowsSinceProgress == 500) {
                rowsSinceProgress = 0;
                if (!report(m_doneBytes + reader.position()))
                    return false;
            }
        }
        m_doneBytes += reader.size();
        return report(m_doneBytes);
    }

    bool report(qint64 bytes) {
        if (!m_progress)
            return true;
        const int perMille = m_totalBytes > 0 ? int(1000 * bytes / m_totalBytes) : 1000;
        if (m_progress(std::min(perMille, 1000)))
            return true;
        m_result.problems << QStringLiteral("The import was cancelled.");
        return false;
    }

    DuplicateImport& m_result;
    const ImportProgress& m_progress;
    std::vector<SourceFile> m_files;
    qint64 m_totalBytes = 0;
    qint64 m_doneBytes = 0;
};

} // namespace

DuplicateImport ImportDuplicate(const QString& folder, const QString& databasePath,
                                const ImportProgress& progress) {
    DuplicateImport result;
    if (QFileInfo::exists(databasePath)) {
        result.problems << QStringLiteral("%1 exists already: the import makes a new file and "
                                          "never writes over one.")
                               .arg(QDir::toNativeSeparators(databasePath));
        return result;
    }
    Importer importer(result, progress);
    if (!importer.survey(folder))
        return result;

    // Built beside the target and renamed at the end, so that the target is there whole or
    // not at all.
    const QString building = databasePath + QStringLiteral(".importing");
    QFile::remove(building);
    const QString connection =
        QStringLiteral("levydesk-import-") + QUuid::createUuid().toString(QUuid::Id128);
    bool ok = false;
    {
        QString why;
        QSqlDatabase db = TaxDatabase::create(building, connection, &why);
        sqlite3* handle = db.isOpen() ? Handle(db) : nullptr;
        if (!handle) {
            result.problems << QStringLiteral("The new database cannot be made: %1").arg(why);
        } else {
            ok = db.transaction() && importer.load(handle) && result.problems.isEmpty() &&
                 db.commit();
            if (!ok)
                db.rollback();
        }
    }
    TaxDatabase::close(connection);
    if (ok && !QFile::rename(building, databasePath)) {
        result.problems << QStringLiteral("The new database cannot be put at %1.")
                               .arg(QDir::toNativeSeparators(databasePath));
        ok = false;
    }
    QFile::remove(building);
    QFile::remove(building + QStringLiteral("-journal"));
    result.ok = ok && result.problems.isEmpty();
    if (!result.ok)
        result.rows = 0;
    return result;
}

// ---- Export ----------------------------------------------------------------------------------

namespace {

QString ExportMoney(qint64 units) {
    QString digits =
        QString::number(units < 0 ? -units : units).rightJustified(5, QLatin1Char('0'));
    QString whole = digits.left(digits.size() - 4);
    QString places = digits.right(4);
    while (places.size() > 2 && places.endsWith(QLatin1Char('0')))
        places.chop(1);
    return (units < 0 ? QStringLiteral("-") : QString()) + whole + QLatin1Char('.') + places;
}

} // namespace

bool ExportDuplicate(QSqlDatabase db, const QString& folder, QString* error) {
    if (!QDir().mkpath(folder)) {
        if (error)
            *error = QStringLiteral("The folder %1 cannot be made.").arg(folder);
        return false;
    }
    for (const TaxDatabase::TableDef& table : TaxDatabase::schema()) {
        QStringList names;
        for (const TaxDatabase::ColumnDef& c : table.columns)
            names << c.name;
        QSaveFile file(QDir(folder).filePath(table.name + QStringLiteral(".csv")));
        if (!file.open(QIODevice::WriteOnly)) {
            if (error)
                *error = file.fileName() + QStringLiteral(": ") + file.errorString();
            return false;
        }
        file.write(CsvRecord(names).toUtf8());
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (!q.exec(QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid")
                        .arg(names.join(QLatin1Char(',')), table.name))) {
            QueryFailed(db, q, error);
            return false;
        }
        QByteArray out;
        QStringList fields;
        while (q.next()) {
            fields.clear();
            for (int c = 0; c < int(table.columns.size()); ++c) {
                const QVariant v = q.value(c);
                if (v.isNull()) {
                    fields << QString();
                    continue;
                }
                switch (table.columns[std::size_t(c)].type) {
                case ColumnType::Text:
                    fields << CsvQuoted(v.toString());
                    break;
                case ColumnType::Money:
                    fields << ExportMoney(v.toLongLong());
                    break;
                case ColumnType::Integer:
                case ColumnType::Boolean:
                    fields << QString::number(v.toLongLong());
                    break;
                case ColumnType::Real:
                    fields << QString::number(v.toDouble(), 'g', QLocale::FloatingPointShortest);
                    break;
                case ColumnType::Date: {
                    const QDate d = DateField(v);
                    // Two-digit years as mdb-export writes them, where they read back the same.
                    const bool shortYear = d.year() >= 1930 && d.year() <= 2029;
                    fields << (d.isValid()
                                   ? CsvQuoted(d.toString(shortYear
                                                              ? QStringLiteral("MM/dd/yy")
                                                              : QStringLiteral("MM/dd/yyyy")) +
                                               QStringLiteral(" 00:00:00"))
                                   : QString());
                    break;
                }
                }
            }
            out += CsvRecord(fields).toUtf8();
            if (out.size() > (1 << 20)) {
                file.write(out);
                out.clear();
            }
        }
        file.write(out);
        if (!file.commit()) {
            if (error)
                *error = file.fileName() + QStringLiteral(": ") + file.errorString();
            return false;
        }
    }
    return true;
}
