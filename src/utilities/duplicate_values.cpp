#include "utilities/duplicate_values.h"

#include "core/money.h"

#include <QSet>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

using TaxDatabase::ColumnType;

namespace {

// One-character flag columns: unset is one blank.
bool IsFlagColumn(const QString& column) {
    static const QSet<QString> others{"secondnotice", "exempt",      "defaulted", "pcexempt",
                                      "scexempt",     "otherexempt", "over65",    "cts",
                                      "billcounty",   "billtwp",     "billschool"};
    const QString lower = column.toLower();
    return lower.endsWith(QLatin1String("flag")) || others.contains(lower);
}

} // namespace

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

namespace {

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

} // namespace

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

namespace {

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

} // namespace

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

namespace {

QString Quoting(const CsvBytes& field) {
    return QStringLiteral(" (\"") + field.text() + QStringLiteral("\")");
}

} // namespace

// The stored value of a field, or the reason it does not fit its column.
QString ConvertCsvField(const ColumnPlan& column, const CsvBytes& field, Bound* out) {
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
Bound MissingValue(const ColumnPlan& column) {
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
