#include "sql_values.h"

#include <QByteArray>
#include <QMetaType>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <cmath>
#include <limits>
#include <sqlite3.h>

namespace {

constexpr int Places = 4; // ten-thousandths

// Adds one decimal digit to a magnitude, false on overflow.
bool pushDigit(std::uint64_t* value, int digit) {
    constexpr std::uint64_t limit = std::uint64_t(std::numeric_limits<std::int64_t>::max());
    if (*value > (limit - std::uint64_t(digit)) / 10)
        return false;
    *value = *value * 10 + std::uint64_t(digit);
    return true;
}

std::optional<std::int64_t> unitsOfValue(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
        return sqlite3_value_int64(value);
    case SQLITE_FLOAT: {
        const double d = std::round(sqlite3_value_double(value));
        if (!std::isfinite(d) || std::fabs(d) >= 9.2e18)
            return std::nullopt;
        return std::int64_t(d);
    }
    default: {
        const char* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
        // A text holding a stored amount: a whole count of ten-thousandths.
        const std::optional<std::int64_t> scaled =
            DecimalToUnits(QString::fromUtf8(text ? text : ""));
        if (!scaled)
            return std::nullopt;
        const std::int64_t whole = *scaled / 10000;
        const std::int64_t rest = *scaled % 10000;
        return whole + (rest >= 5000 ? 1 : rest <= -5000 ? -1 : 0);
    }
    }
}

void moneyFunction(sqlite3_context* context, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    if (sqlite3_value_type(argv[0]) == SQLITE_INTEGER) {
        const std::int64_t dollars = sqlite3_value_int64(argv[0]);
        if (dollars > std::numeric_limits<std::int64_t>::max() / 10000 ||
            dollars < std::numeric_limits<std::int64_t>::min() / 10000) {
            sqlite3_result_error(context, "money(): amount out of range", -1);
            return;
        }
        sqlite3_result_int64(context, dollars * 10000);
        return;
    }
    // A real prints with 15 significant digits, which gives back the decimal that was written.
    const char* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
    const QString typed = QString::fromUtf8(text ? text : "");
    const std::optional<std::int64_t> units = DecimalToUnits(typed);
    if (!units) {
        const QByteArray message = "money(): not an amount: " + typed.toUtf8();
        sqlite3_result_error(context, message.constData(), -1);
        return;
    }
    sqlite3_result_int64(context, *units);
}

void dollarsFunction(sqlite3_context* context, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const std::optional<std::int64_t> units = unitsOfValue(argv[0]);
    if (!units) {
        sqlite3_result_error(context, "dollars(): not a stored amount", -1);
        return;
    }
    const QByteArray text = UnitsToDollars(*units).toUtf8();
    sqlite3_result_text(context, text.constData(), int(text.size()), SQLITE_TRANSIENT);
}

} // namespace

std::optional<std::int64_t> DecimalToUnits(QStringView text) {
    const QStringView s = text.trimmed();
    int i = 0;
    const int n = int(s.size());
    bool negative = false;
    if (i < n && (s[i] == u'-' || s[i] == u'+')) {
        negative = s[i] == u'-';
        ++i;
    }
    // All digits, with the position of the decimal point among them.
    QString digits;
    int pointAt = -1;
    for (; i < n; ++i) {
        const QChar c = s[i];
        if (c.isDigit() && c.unicode() < 128)
            digits += c;
        else if (c == u'.' && pointAt < 0)
            pointAt = int(digits.size());
        else
            break;
    }
    if (digits.isEmpty())
        return std::nullopt;
    if (pointAt < 0)
        pointAt = int(digits.size());
    int exponent = 0;
    if (i < n && (s[i] == u'e' || s[i] == u'E')) {
        ++i;
        bool expNegative = false;
        if (i < n && (s[i] == u'-' || s[i] == u'+')) {
            expNegative = s[i] == u'-';
            ++i;
        }
        const int expStart = i;
        while (i < n && s[i].isDigit() && s[i].unicode() < 128) {
            if (exponent > 1000)
                return std::nullopt;
            exponent = exponent * 10 + s[i].digitValue();
            ++i;
        }
        if (i == expStart)
            return std::nullopt;
        if (expNegative)
            exponent = -exponent;
    }
    if (i != n)
        return std::nullopt;

    // The value is digits * 10^(exponent - (size - pointAt)); keep Places decimals.
    const int keepUpTo = pointAt + exponent + Places; // digits before this index are kept
    std::uint64_t magnitude = 0;
    for (int k = 0; k < keepUpTo; ++k) {
        const int digit = k < digits.size() ? digits.at(k).digitValue() : 0;
        if (!pushDigit(&magnitude, digit))
            return std::nullopt;
    }
    // Half away from zero: look at the first dropped digit.
    if (keepUpTo >= 0 && keepUpTo < digits.size() && digits.at(keepUpTo).digitValue() >= 5) {
        if (magnitude == std::uint64_t(std::numeric_limits<std::int64_t>::max()))
            return std::nullopt;
        ++magnitude;
    }
    const std::int64_t value = std::int64_t(magnitude);
    return negative ? -value : value;
}

QString UnitsToDollars(std::int64_t units) {
    // Work on the magnitude as unsigned, so that the most negative value is no trouble.
    const bool negative = units < 0;
    const std::uint64_t magnitude =
        negative ? std::uint64_t(0) - std::uint64_t(units) : std::uint64_t(units);
    std::uint64_t cents = magnitude / 100;
    if (magnitude % 100 >= 50)
        ++cents;
    const QString text =
        QStringLiteral("%1.%2").arg(cents / 100).arg(cents % 100, 2, 10, QLatin1Char('0'));
    return negative && cents != 0 ? u'-' + text : text;
}

QString RealText(double value) {
    if (std::isnan(value))
        return QStringLiteral("NaN");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-Inf") : QStringLiteral("Inf");
    if (value == 0)
        return QStringLiteral("0");
    const QString text = QString::number(value, 'g', 15);
    const qsizetype e = text.indexOf(u'e');
    if (e < 0)
        return text;
    // Write the exponent form out in full: "1.5e-05" is "0.000015", "1e+20" a whole number.
    const int exponent = text.mid(e + 1).toInt();
    QString digits = text.left(e);
    const bool negative = digits.startsWith(u'-');
    digits.remove(u'-');
    digits.remove(u'.');
    const int last =
        int(digits.size()) - 1; // the power of ten of the last digit is exponent - last
    QString out;
    if (exponent < 0)
        out = QStringLiteral("0.") + QString(-exponent - 1, u'0') + digits;
    else if (exponent >= last)
        out = digits + QString(exponent - last, u'0');
    else
        out = digits.left(exponent + 1) + u'.' + digits.mid(exponent + 1);
    return negative ? u'-' + out : out;
}

QString SqlValueText(const QVariant& value) {
    if (value.isNull())
        return QStringLiteral("<null>");
    switch (value.metaType().id()) {
    case QMetaType::Double:
    case QMetaType::Float:
        return RealText(value.toDouble());
    case QMetaType::LongLong:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::Short:
        return QString::number(value.toLongLong());
    case QMetaType::ULongLong:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::UShort:
        return QString::number(value.toULongLong());
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::QByteArray:
        return QString::fromUtf8(value.toByteArray());
    default:
        return value.toString();
    }
}

bool RegisterScenarioSqlFunctions(const QSqlDatabase& db, QString* error) {
    if (!db.isOpen() || !db.driver()) {
        if (error)
            *error = QStringLiteral("the connection is not open");
        return false;
    }
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.metaType().name(), "sqlite3*") != 0) {
        if (error)
            *error = QStringLiteral("the connection is not SQLite");
        return false;
    }
    sqlite3* sqlite = *static_cast<sqlite3* const*>(handle.constData());
    if (!sqlite) {
        if (error)
            *error = QStringLiteral("the connection has no SQLite handle");
        return false;
    }
    const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    if (sqlite3_create_function_v2(sqlite, "money", 1, flags, nullptr, moneyFunction, nullptr,
                                   nullptr, nullptr) != SQLITE_OK ||
        sqlite3_create_function_v2(sqlite, "dollars", 1, flags, nullptr, dollarsFunction, nullptr,
                                   nullptr, nullptr) != SQLITE_OK) {
        if (error)
            *error = QString::fromUtf8(sqlite3_errmsg(sqlite));
        return false;
    }
    return true;
}

bool RunScenarioSql(const QSqlDatabase& db, const QString& statement, QStringList* rows,
                    QString* error) {
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(statement)) {
        *error = query.lastError().text();
        return false;
    }
    if (rows) {
        rows->clear();
        while (query.next()) {
            const int columns = query.record().count();
            QStringList values;
            for (int i = 0; i < columns; ++i)
                values << SqlValueText(query.value(i));
            rows->append(values.join(u'|'));
        }
    }
    return true;
}
