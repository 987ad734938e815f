#include "core/common_values.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

// The decimal text of a double as the standard double-to-text conversion gives it: at most
// 15 significant digits. `places` is how many of the digits stand after the point; it is
// negative when the value has trailing zeros before the point (1e20).
struct Decimal15 {
    bool negative = false;
    QString digits;
    int places = 0;
};

Decimal15 toDecimal15(double value) {
    if (value == 0)
        return {false, QStringLiteral("0"), 0};
    // Fifteen significant digits in scientific form: "2.34500000000000e+02".
    char text[40];
    const auto end =
        std::to_chars(text, text + sizeof text, std::fabs(value), std::chars_format::scientific, 14)
            .ptr;
    const char* e = std::find(text, end, 'e');
    QString digits;
    digits.reserve(16);
    for (const char* c = text; c != e; ++c)
        if (*c != '.')
            digits.append(QLatin1Char(*c));
    int exponent = 0;
    std::from_chars(e + (e[1] == '+' ? 2 : 1), end, exponent);
    return {value < 0, digits, int(digits.size()) - 1 - exponent};
}

QString padToPattern(QString result, qsizetype patternLength) {
    if (result == QLatin1String("."))
        result.clear();
    const qsizetype pad = patternLength - result.size();
    // A result wider than its pattern is a caller's mistake; it is shown whole, never cut.
    if (pad <= 0)
        return result;
    return QString(std::min<qsizetype>(pad, 20), u' ') + result;
}

bool isBlankNull(const QVariant& value) {
    return !value.isValid() || value.isNull();
}

} // namespace

QString FormatNumber(double value, QStringView pattern) {
    if (!std::isfinite(value))
        return {};
    const Decimal15 d = toDecimal15(value);
    return Money::formatDigits(d.negative, d.digits, d.places, pattern);
}

QString PadFormat(double value, QString& pattern) {
    if (value != 0 && pattern.endsWith(QLatin1String(".##")))
        pattern = pattern.left(pattern.size() - 3) + QLatin1String(".00");
    return padToPattern(FormatNumber(value, pattern), pattern.size());
}

QString PadFormat(Money value, QString& pattern) {
    if (!value.isZero() && pattern.endsWith(QLatin1String(".##")))
        pattern = pattern.left(pattern.size() - 3) + QLatin1String(".00");
    return padToPattern(value.format(pattern), pattern.size());
}

QString FormatPercent(double value, QStringView pattern) {
    // The value is already a percentage (5 means 5%), while "%" in a pattern multiplies by 100.
    QString result = FormatNumber(value / 100.0, pattern);
    if (result.endsWith(QLatin1String(".%"))) {
        result.chop(2);
        result.append(u'%');
    }
    return result;
}

QString QuoteSql(QStringView text) {
    QString out;
    out.reserve(text.size() + 8);
    for (QChar c : text) {
        out.append(c);
        if (c == u'\'')
            out.append(c);
    }
    return out;
}

QString NullToText(const QVariant& value) {
    if (isBlankNull(value))
        return {};
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        return QString::number(value.toDouble(), 'g', 15);
    return value.toString();
}

QVariant NullToZero(const QVariant& value) {
    if (isBlankNull(value))
        return QVariant(0);
    return value;
}

QString ProperName(QStringView text) {
    // Only the blank is trimmed and only the blank breaks words.
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text[begin] == u' ')
        ++begin;
    while (end > begin && text[end - 1] == u' ')
        --end;
    QString out;
    out.reserve(end - begin);
    bool startOfWord = true;
    for (qsizetype i = begin; i < end; ++i) {
        const QChar c = text[i];
        out.append(startOfWord ? c.toUpper() : c.toLower());
        startOfWord = c == u' ';
    }
    return out;
}

double RoundTo(double value, double places) {
    int count = 0;
    if (std::isfinite(places))
        count = int(std::clamp(std::nearbyint(places), 0.0, 10.0));
    double m = 1;
    for (int i = 0; i < count; ++i)
        m *= 10;

    const double t = value * m + 0.5;
    if (!std::isfinite(t))
        return value;
    // Cut the 15-digit text of t after its whole part, toward zero.
    const Decimal15 d = toDecimal15(t);
    const qsizetype wholeDigits = d.digits.size() - d.places;
    double whole = 0;
    if (wholeDigits > 0) {
        QString text = d.digits.left(wholeDigits);
        if (text.size() < wholeDigits)
            text.append(QString(wholeDigits - text.size(), u'0'));
        whole = text.toDouble();
    }
    if (d.negative)
        whole = -whole;
    return whole / m + 0.0; // + 0.0: a cut to nothing is 0, not -0
}

bool FileExists(const QString& path) {
    if (path.isEmpty() || QFileInfo(path).isDir())
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadOnly);
}

int CountSeparators(QStringView text, QStringView separator) {
    if (text.isEmpty())
        return -1;
    if (separator.isEmpty())
        return 0;
    int count = 0;
    qsizetype from = 0;
    while (true) {
        const qsizetype at = text.indexOf(separator, from);
        if (at < 0)
            break;
        ++count;
        from = at + separator.size();
    }
    return count;
}

QString DesktopFolderPath() {
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}

QString FormatDate(const QDate& date) {
    if (!date.isValid())
        return {};
    return QString::asprintf("%02d/%02d/%04d", date.month(), date.day(), date.year());
}

std::optional<QDate> ParseTypedDate(QStringView typed) {
    const QStringView s = typed.trimmed();
    const qsizetype firstSep = [&] {
        for (qsizetype i = 0; i < s.size(); ++i)
            if (s[i] < u'0' || s[i] > u'9')
                return i;
        return qsizetype(-1);
    }();
    if (firstSep < 0)
        return std::nullopt;
    const QChar sep = s[firstSep];
    if (sep != u'/' && sep != u'-')
        return std::nullopt;
    const auto parts = s.split(sep);
    if (parts.size() != 3)
        return std::nullopt;
    int values[3] = {0, 0, 0};
    for (int i = 0; i < 3; ++i) {
        const QStringView part = parts[i];
        const bool sizeOk =
            i < 2 ? (part.size() == 1 || part.size() == 2) : (part.size() == 2 || part.size() == 4);
        if (!sizeOk)
            return std::nullopt;
        for (QChar c : part) {
            if (c < u'0' || c > u'9')
                return std::nullopt;
            values[i] = values[i] * 10 + (c.unicode() - u'0');
        }
    }
    int year = values[2];
    if (parts[2].size() == 2)
        year += year < 30 ? 2000 : 1900;
    const QDate date(year, values[0], values[1]);
    if (!date.isValid())
        return std::nullopt;
    return date;
}
