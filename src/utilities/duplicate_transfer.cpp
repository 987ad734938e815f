#include "utilities/duplicate_transfer.h"

#include "core/csv.h"
#include "core/money.h"
#include "core/tax_database.h"
#include "utilities/duplicate_values.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QSet>
#include <QSqlDriver>
#include <QUuid>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include <sqlite3.h>

namespace {

using TaxDatabase::ColumnType;

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
                sqlite3_bind_text(m_statement, i + 1, v.text.data(), int(v.text.size()),
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

        std::vector<ColumnPlan> plans;
        for (const TaxDatabase::ColumnDef& c : table.columns)
            plans.push_back(
                {c.name, c.type, c.type == ColumnType::Text ? RuleOf(c.name) : TextRule()});
        std::vector<Bound> values(table.columns.size());
        std::vector<Bound> defaults;
        for (const ColumnPlan& c : plans)
            defaults.push_back(MissingValue(c));
        int rowsSinceProgress = 0;
        std::vector<CsvBytes> fields;
        while (reader.next(fields)) {
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
            for (std::size_t c = 0; c < plans.size(); ++c) {
                const int from = source[c];
                if (from < 0) {
                    values[c] = defaults[c];
                    continue;
                }
                const QString why =
                    ConvertCsvField(plans[c], fields[std::size_t(from)], &values[c]);
                if (!why.isEmpty()) {
                    m_result.problems << QStringLiteral("%1 line %2, %3: %4")
                                             .arg(f.fileName)
                                             .arg(reader.line())
                                             .arg(plans[c].name, why);
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
            // The file is new and only renamed into place when whole: a large page cache keeps
            // the indexes in memory while the rows go in.
            sqlite3_exec(handle, "PRAGMA cache_size=-262144", nullptr, nullptr, nullptr);
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

void AppendMoney(std::string& out, qint64 units) {
    // Whole dollars, a point and two to four places: 12.5 -> "12.50", 0.1234 -> "0.1234".
    const bool negative = units < 0;
    const quint64 magnitude = negative ? quint64(0) - quint64(units) : quint64(units);
    char places[5];
    std::snprintf(places, sizeof places, "%04llu",
                  static_cast<unsigned long long>(magnitude % Money::UnitsPerDollar));
    int keep = 4;
    while (keep > 2 && places[keep - 1] == '0')
        --keep;
    char text[40];
    const int n = std::snprintf(text, sizeof text, "%s%llu.%.*s", negative ? "-" : "",
                                static_cast<unsigned long long>(magnitude / Money::UnitsPerDollar),
                                keep, places);
    out.append(text, std::size_t(n));
}

void AppendQuoted(std::string& out, const char* text, int size) {
    out.push_back('"');
    const char* end = text + size;
    while (text < end) {
        const char* quote =
            static_cast<const char*>(std::memchr(text, '"', std::size_t(end - text)));
        const char* stop = quote ? quote + 1 : end;
        out.append(text, std::size_t(stop - text));
        if (quote)
            out.push_back('"'); // doubled
        text = stop;
    }
    out.push_back('"');
}

// A stored date as mdb-export writes one, with a two-digit year where it reads back the same.
void AppendDate(std::string& out, const QDate& d) {
    if (!d.isValid())
        return;
    const bool shortYear = d.year() >= 1930 && d.year() <= 2029;
    char text[32];
    const int n = shortYear ? std::snprintf(text, sizeof text, "\"%02d/%02d/%02d 00:00:00\"",
                                            d.month(), d.day(), d.year() % 100)
                            : std::snprintf(text, sizeof text, "\"%02d/%02d/%04d 00:00:00\"",
                                            d.month(), d.day(), d.year());
    out.append(text, std::size_t(n));
}

QDate StoredDate(sqlite3_stmt* row, int column) {
    const char* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    const int size = sqlite3_column_bytes(row, column);
    return DateField(QString::fromUtf8(text, size));
}

} // namespace

bool ExportDuplicate(QSqlDatabase db, const QString& folder, QString* error) {
    const auto fail = [error](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    if (!QDir().mkpath(folder))
        return fail(QStringLiteral("The folder %1 cannot be made.").arg(folder));
    sqlite3* handle = db.isOpen() ? Handle(db) : nullptr;
    if (!handle)
        return fail(QStringLiteral("The tax database is not open."));
    for (const TaxDatabase::TableDef& table : TaxDatabase::schema()) {
        QStringList names;
        for (const TaxDatabase::ColumnDef& c : table.columns)
            names << c.name;
        QSaveFile file(QDir(folder).filePath(table.name + QStringLiteral(".csv")));
        if (!file.open(QIODevice::WriteOnly))
            return fail(file.fileName() + QStringLiteral(": ") + file.errorString());
        file.write(CsvRecord(names).toUtf8());
        sqlite3_stmt* row = nullptr;
        const QByteArray sql = QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid")
                                   .arg(names.join(QLatin1Char(',')), table.name)
                                   .toUtf8();
        if (sqlite3_prepare_v2(handle, sql.constData(), -1, &row, nullptr) != SQLITE_OK) {
            sqlite3_finalize(row);
            return fail(QString::fromUtf8(sqlite3_errmsg(handle)));
        }
        std::string out;
        int rc = SQLITE_ROW;
        while ((rc = sqlite3_step(row)) == SQLITE_ROW) {
            for (int c = 0; c < int(table.columns.size()); ++c) {
                if (c > 0)
                    out.push_back(',');
                if (sqlite3_column_type(row, c) == SQLITE_NULL)
                    continue;
                switch (table.columns[std::size_t(c)].type) {
                case ColumnType::Text:
                    AppendQuoted(out, reinterpret_cast<const char*>(sqlite3_column_text(row, c)),
                                 sqlite3_column_bytes(row, c));
                    break;
                case ColumnType::Money:
                    AppendMoney(out, sqlite3_column_int64(row, c));
                    break;
                case ColumnType::Integer:
                case ColumnType::Boolean:
                    out += std::to_string(sqlite3_column_int64(row, c));
                    break;
                case ColumnType::Real: {
                    // Whole numbers bare, others in the fewest digits that read back the same.
                    const double value = sqlite3_column_double(row, c);
                    char text[32];
                    const auto [end, ec] =
                        std::abs(value) < 1e15 && value == std::trunc(value)
                            ? std::to_chars(text, text + sizeof text, qint64(value))
                            : std::to_chars(text, text + sizeof text, value);
                    out.append(text, ec == std::errc() ? std::size_t(end - text) : 0);
                    break;
                }
                case ColumnType::Date:
                    AppendDate(out, StoredDate(row, c));
                    break;
                }
            }
            out.push_back('\n');
            if (out.size() > (1u << 20)) {
                file.write(out.data(), qint64(out.size()));
                out.clear();
            }
        }
        sqlite3_finalize(row);
        if (rc != SQLITE_DONE)
            return fail(QString::fromUtf8(sqlite3_errmsg(handle)));
        file.write(out.data(), qint64(out.size()));
        if (!file.commit())
            return fail(file.fileName() + QStringLiteral(": ") + file.errorString());
    }
    return true;
}
