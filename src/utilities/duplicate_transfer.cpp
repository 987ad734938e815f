#include "utilities/duplicate_transfer.h"

#include "core/csv.h"
#include "core/money.h"
#include "core/tax_database.h"

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

// ---- What a value of a column must look like ------------------------------------------------

// One-character flag columns: unset is one blank.
bool IsFlagColumn(const QString& column) {
    static const QSet<QString> others{"secondnotice", "exempt",      "defaulted", "pcexempt",
                                      "scexempt",     "otherexempt", "over65",    "cts",
                                      "billcounty",   "billtwp",     "billschool"};
    const QString lower = column.toLower();
    return lower.endsWith(QLatin1String("flag")) || others.contains(lower);
}

// The form a text column keeps, worked out once per column rather than once per value.
struct TextRule {
    enum Kind { Free, Flag, BillNo, Control, District, Ward, RecNum, DisbNum, TaxYear, MapPart };
    Kind kind = Free;
    int width = 0; // of a map part
};

TextRule RuleOf(const QString& column) {
    const QString lower = column.toLower();
    if (IsFlagColumn(column))
        return {TextRule::Flag};
    if (lower == u"billno")
        return {TextRule::BillNo};
    if (lower == u"control")
        return {TextRule::Control};
    if (lower == u"district")
        return {TextRule::District};
    if (lower == u"ward")
        return {TextRule::Ward};
    if (lower == u"recnum")
        return {TextRule::RecNum};
    if (lower.endsWith(QLatin1String("disbnum")))
        return {TextRule::DisbNum};
    if (lower == u"taxyear")
        return {TextRule::TaxYear};
    if (lower == u"map3")
        return {TextRule::MapPart, 8};
    if (lower == u"map4")
        return {TextRule::MapPart, 6};
    if (lower == u"map5")
        return {TextRule::MapPart, 9};
    return {};
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool AllDigits(std::string_view s) {
    return !s.empty() && std::all_of(s.begin(), s.end(), IsDigit);
}

// Characters, not bytes, of a UTF-8 text.
int CharacterCount(std::string_view s) {
    return int(std::count_if(s.begin(), s.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

// Checks a text value against the form its column keeps, and brings an unset flag, map part or
// distribution key to its stored form. The reason when the value does not fit.
QString CheckText(const TextRule& rule, std::string& value) {
    switch (rule.kind) {
    case TextRule::Free:
        return {};
    case TextRule::Flag:
        if (value.empty())
            value = " ";
        return CharacterCount(value) == 1 ? QString()
                                          : QStringLiteral("a flag holds one character");
    case TextRule::BillNo: {
        // Right-aligned digits, or a letter and four digits.
        const std::size_t digitsFrom = value.find_first_not_of(' ');
        const bool padded = digitsFrom != std::string::npos &&
                            AllDigits(std::string_view(value).substr(digitsFrom));
        const bool lettered = value.size() == 5 && value[0] >= 'A' && value[0] <= 'Z' &&
                              AllDigits(std::string_view(value).substr(1));
        if (value.size() != 5 || !(padded || lettered))
            return QStringLiteral("a bill number is 5 characters, right-aligned digits or A and "
                                  "four digits");
        return {};
    }
    case TextRule::Control:
        if (value.find_first_not_of(" \t") == std::string::npos || CharacterCount(value) > 6)
            return QStringLiteral("a control number is 1 to 6 characters");
        return {};
    case TextRule::District:
        if (value.size() != 2 || !AllDigits(value))
            return QStringLiteral("a district is two digits");
        return {};
    case TextRule::Ward:
        if (CharacterCount(value) != 1)
            return QStringLiteral("a ward is one character");
        return {};
    case TextRule::RecNum:
        if (value.size() != 12 || !AllDigits(value))
            return QStringLiteral("a receipt number is 12 digits");
        return {};
    case TextRule::DisbNum:
        if (value.empty())
            value = "      ";
        if (value != "      " && !(value.size() == 6 && AllDigits(value)))
            return QStringLiteral("a distribution key is six digits or six blanks");
        return {};
    case TextRule::TaxYear:
        if (value.size() != 4 || !AllDigits(value))
            return QStringLiteral("a tax year is four digits");
        return {};
    case TextRule::MapPart:
        if (value.empty())
            value = " ";
        if (CharacterCount(value) > rule.width)
            return QStringLiteral("this part of the map number holds at most %1 characters")
                .arg(rule.width);
        return {};
    }
    return {};
}

std::string_view Trimmed(std::string_view s) {
    const auto space = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!s.empty() && space(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && space(s.back()))
        s.remove_suffix(1);
    return s;
}

// Money as a plain decimal with at most four places: "1234.5", "-3", "0.1250".
std::optional<qint64> ParseMoneyUnits(std::string_view text) {
    std::string_view t = Trimmed(text);
    const bool negative = !t.empty() && t.front() == '-';
    if (negative)
        t.remove_prefix(1);
    const std::size_t point = t.find('.');
    const std::string_view whole = t.substr(0, point);
    const std::string_view places =
        point == std::string_view::npos ? std::string_view() : t.substr(point + 1);
    if ((!whole.empty() && !AllDigits(whole)) || (!places.empty() && !AllDigits(places)) ||
        places.size() > 4 || whole.size() > 14 || (whole.empty() && places.empty()))
        return std::nullopt;
    qint64 units = 0;
    for (const char c : whole)
        units = units * 10 + (c - '0');
    qint64 fraction = 0;
    for (std::size_t i = 0; i < 4; ++i)
        fraction = fraction * 10 + (i < places.size() ? places[i] - '0' : 0);
    units = units * Money::UnitsPerDollar + fraction;
    return negative ? -units : units;
}

// Reads a run of 1 to maxDigits digits at the front of s.
std::optional<int> LeadingNumber(std::string_view& s, std::size_t minDigits,
                                 std::size_t maxDigits) {
    std::size_t n = 0;
    int value = 0;
    while (n < s.size() && n < maxDigits && IsDigit(s[n]))
        value = value * 10 + (s[n++] - '0');
    if (n < minDigits || (n < s.size() && IsDigit(s[n])))
        return std::nullopt;
    s.remove_prefix(n);
    return value;
}

// "MM/DD/YY HH:MM:SS" as mdb-export writes a date; four-digit years, a time with or without
// seconds and AM/PM, and ISO dates are taken too. Two-digit years run from 1930 to 2029, as the
// desktop database engine reads them.
QDate ParseCsvDate(std::string_view text) {
    std::string_view t = Trimmed(text);
    std::string_view rest = t;
    const auto month = LeadingNumber(rest, 1, 2);
    if (month && !rest.empty() && rest.front() == '/') {
        rest.remove_prefix(1);
        const auto day = LeadingNumber(rest, 1, 2);
        if (!day || rest.empty() || rest.front() != '/')
            return {};
        rest.remove_prefix(1);
        const std::size_t yearDigits =
            std::find_if_not(rest.begin(), rest.end(), IsDigit) - rest.begin();
        if (yearDigits != 2 && yearDigits != 4)
            return {};
        int year = *LeadingNumber(rest, yearDigits, yearDigits);
        if (yearDigits == 2)
            year += year < 30 ? 2000 : 1900;
        if (!rest.empty()) {
            // A time of day: H:MM, H:MM:SS, either with AM or PM.
            if (rest.front() != ' ')
                return {};
            rest = Trimmed(rest);
            if (!LeadingNumber(rest, 1, 2) || rest.empty() || rest.front() != ':')
                return {};
            rest.remove_prefix(1);
            if (!LeadingNumber(rest, 2, 2))
                return {};
            if (!rest.empty() && rest.front() == ':') {
                rest.remove_prefix(1);
                if (!LeadingNumber(rest, 2, 2))
                    return {};
            }
            if (!rest.empty() && rest.front() == ' ')
                rest.remove_prefix(1);
            if (!rest.empty()) {
                const auto upper = [](char c) { return char(c & ~0x20); };
                if (rest.size() != 2 || (upper(rest[0]) != 'A' && upper(rest[0]) != 'P') ||
                    upper(rest[1]) != 'M')
                    return {};
            }
        }
        return QDate(year, *month, *day);
    }
    // ISO: YYYY-MM-DD, maybe with a time after a blank or a T.
    rest = t;
    const auto year = LeadingNumber(rest, 4, 4);
    if (!year || rest.empty() || rest.front() != '-')
        return {};
    rest.remove_prefix(1);
    const auto isoMonth = LeadingNumber(rest, 2, 2);
    if (!isoMonth || rest.empty() || rest.front() != '-')
        return {};
    rest.remove_prefix(1);
    const auto isoDay = LeadingNumber(rest, 2, 2);
    if (!isoDay)
        return {};
    if (!rest.empty()) {
        if (rest.front() != ' ' && rest.front() != 'T')
            return {};
        rest.remove_prefix(1);
        if (rest.empty() || rest.find_first_not_of("0123456789:.") != std::string_view::npos)
            return {};
    }
    return QDate(*year, *isoMonth, *isoDay);
}

// ---- One value bound for SQLite ---------------------------------------------------------------

struct Bound {
    enum Kind { Null, Integer, Real, Text } kind = Null;
    qint64 integer = 0;
    double real = 0;
    std::string text;

    void setNull() { kind = Null; }
    void setInteger(qint64 n) {
        kind = Integer;
        integer = n;
    }
    void setReal(double r) {
        kind = Real;
        real = r;
    }
};

// What the loader knows of a column before the first row.
struct ColumnPlan {
    QString name;
    ColumnType type = ColumnType::Text;
    TextRule rule;
};

QString Quoting(const CsvBytes& field) {
    return QStringLiteral(" (\"") + field.text() + QStringLiteral("\")");
}

// The stored value of a field, or the reason it does not fit its column.
QString Convert(const ColumnPlan& column, const CsvBytes& field, Bound* out) {
    const bool null = field.isNull();
    const std::string_view trimmed = Trimmed(field.view());
    switch (column.type) {
    case ColumnType::Text: {
        out->kind = Bound::Text;
        out->text.assign(field.bytes);
        const QString why = CheckText(column.rule, out->text);
        return why.isEmpty() ? QString() : why + Quoting(field);
    }
    case ColumnType::Money: {
        if (null || trimmed.empty()) {
            out->setInteger(0);
            return {};
        }
        const std::optional<qint64> units = ParseMoneyUnits(field.view());
        if (!units)
            return QStringLiteral("not an amount with at most four decimals") + Quoting(field);
        out->setInteger(*units);
        return {};
    }
    case ColumnType::Integer: {
        if (null || trimmed.empty()) {
            out->setInteger(0);
            return {};
        }
        std::string_view digits = trimmed;
        if (digits.front() == '+')
            digits.remove_prefix(1);
        qint64 n = 0;
        const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), n);
        if (ec != std::errc() || end != digits.data() + digits.size())
            return QStringLiteral("not a whole number") + Quoting(field);
        out->setInteger(n);
        return {};
    }
    case ColumnType::Real: {
        if (null || trimmed.empty()) {
            out->setReal(0);
            return {};
        }
        std::string_view number = trimmed;
        if (number.front() == '+')
            number.remove_prefix(1);
        double r = 0;
        const auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), r);
        if (ec != std::errc() || end != number.data() + number.size() || !std::isfinite(r))
            return QStringLiteral("not a number") + Quoting(field);
        out->setReal(r);
        return {};
    }
    case ColumnType::Date: {
        if (null || trimmed.empty()) {
            out->setNull();
            return {};
        }
        const QDate d = ParseCsvDate(field.view());
        if (!d.isValid())
            return QStringLiteral("not a date MM/DD/YY") + Quoting(field);
        char iso[16];
        std::snprintf(iso, sizeof iso, "%04d-%02d-%02d", d.year(), d.month(), d.day());
        out->kind = Bound::Text;
        out->text.assign(iso);
        return {};
    }
    case ColumnType::Boolean: {
        const auto is = [&](std::string_view word) {
            return trimmed.size() == word.size() &&
                   std::equal(trimmed.begin(), trimmed.end(), word.begin(),
                              [](char a, char b) { return (a | 0x20) == b; });
        };
        if (null || trimmed.empty() || trimmed == "0" || is("false")) {
            out->setInteger(0);
            return {};
        }
        if (trimmed == "1" || trimmed == "-1" || is("true")) {
            out->setInteger(1);
            return {};
        }
        return QStringLiteral("not 0 or 1") + Quoting(field);
    }
    }
    return {};
}

// A column the file does not bring: text empty (a flag, map part or key blank), numbers zero,
// dates none.
Bound Missing(const ColumnPlan& column) {
    Bound b;
    switch (column.type) {
    case ColumnType::Text:
        b.kind = Bound::Text;
        CheckText(column.rule, b.text);
        break;
    case ColumnType::Real:
        b.setReal(0);
        break;
    case ColumnType::Date:
        break;
    default:
        b.setInteger(0);
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
            defaults.push_back(Missing(c));
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
                const QString why = Convert(plans[c], fields[std::size_t(from)], &values[c]);
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
