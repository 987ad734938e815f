#include "core/money.h"

#include <QList>
#include <cmath>
#include <limits>

namespace {

enum class TokenKind { Hash, Zero, Point, Percent, Literal };

struct Token {
    TokenKind kind;
    QString text; // the literal's text
};

struct Pattern {
    QList<Token> tokens;
    bool grouping = false;
    int percents = 0;
    int intPlaceholders = 0;
    int intMinDigits = 0; // placeholders from the first "0" of the integer part to the point
    int fracPlaceholders = 0;
    int fracMinDigits = 0; // placeholders up to the last "0" after the point
    bool hasPoint = false;
};

Pattern parsePattern(QStringView pattern) {
    Pattern p;
    int firstIntZero = -1;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        if (c == u'"') {
            // A quoted literal runs to the next quote (or the end).
            const qsizetype end = pattern.indexOf(u'"', i + 1);
            const qsizetype stop = end < 0 ? pattern.size() : end;
            p.tokens.append({TokenKind::Literal, pattern.mid(i + 1, stop - i - 1).toString()});
            i = stop;
        } else if (c == u'\\') {
            if (i + 1 < pattern.size()) {
                p.tokens.append({TokenKind::Literal, QString(pattern[i + 1])});
                ++i;
            }
        } else if (c == u'#' || c == u'0') {
            const TokenKind kind = c == u'0' ? TokenKind::Zero : TokenKind::Hash;
            p.tokens.append({kind, {}});
            if (p.hasPoint) {
                ++p.fracPlaceholders;
                if (kind == TokenKind::Zero)
                    p.fracMinDigits = p.fracPlaceholders;
            } else {
                if (kind == TokenKind::Zero && firstIntZero < 0)
                    firstIntZero = p.intPlaceholders;
                ++p.intPlaceholders;
            }
        } else if (c == u'.' && !p.hasPoint) {
            p.hasPoint = true;
            p.tokens.append({TokenKind::Point, {}});
        } else if (c == u',') {
            // Grouping in the integer part; a comma after the point is ignored.
            if (!p.hasPoint)
                p.grouping = true;
        } else if (c == u'%') {
            ++p.percents;
            p.tokens.append({TokenKind::Percent, {}});
        } else {
            p.tokens.append({TokenKind::Literal, QString(c)});
        }
    }
    if (firstIntZero >= 0)
        p.intMinDigits = p.intPlaceholders - firstIntZero;
    return p;
}

// Rounds the decimal `digits` with `places` after the point to `target` places, half away
// from zero (the sign is kept apart, so this is half up on the magnitude).
void roundDigits(QString& digits, int& places, int target) {
    if (places < 0) {
        digits.append(QString(-places, u'0'));
        places = 0;
    }
    if (digits.size() < places + 1)
        digits.prepend(QString(places + 1 - digits.size(), u'0'));
    if (places > target) {
        const qsizetype keep = digits.size() - (places - target);
        const bool up = digits[keep] >= u'5';
        digits.truncate(keep);
        places = target;
        if (up) {
            qsizetype i = digits.size() - 1;
            for (; i >= 0; --i) {
                if (digits[i] == u'9') {
                    digits[i] = u'0';
                } else {
                    digits[i] = QChar(digits[i].unicode() + 1);
                    break;
                }
            }
            if (i < 0)
                digits.prepend(u'1');
        }
    } else if (places < target) {
        digits.append(QString(target - places, u'0'));
        places = target;
    }
}

QString stripLeadingZeros(QStringView s) {
    qsizetype i = 0;
    while (i < s.size() && s[i] == u'0')
        ++i;
    return s.mid(i).toString();
}

} // namespace

QString Money::formatDigits(bool negative, QStringView digitsIn, int places, QStringView pattern) {
    QString digits;
    for (QChar c : digitsIn)
        if (c.isDigit())
            digits.append(c);
    if (digits.isEmpty())
        digits = QStringLiteral("0");

    if (pattern.isEmpty()) {
        // General form: every digit there is, no trailing zeros after the point.
        roundDigits(digits, places, std::max(places, 0));
        QString intPart = stripLeadingZeros(QStringView(digits).left(digits.size() - places));
        QString frac = digits.right(places);
        while (frac.endsWith(u'0'))
            frac.chop(1);
        if (intPart.isEmpty())
            intPart = QStringLiteral("0");
        QString out = frac.isEmpty() ? intPart : intPart + u'.' + frac;
        if (negative && out != QLatin1String("0"))
            out.prepend(u'-');
        return out;
    }

    const Pattern p = parsePattern(pattern);
    places -= 2 * p.percents;
    roundDigits(digits, places, p.fracPlaceholders);

    const QString intDigits = stripLeadingZeros(QStringView(digits).left(digits.size() - places));
    QString frac = digits.right(places);
    bool isZero = intDigits.isEmpty();
    for (QChar c : frac)
        if (c != u'0')
            isZero = false;
    while (frac.size() > p.fracMinDigits && frac.endsWith(u'0'))
        frac.chop(1);

    // Integer digits: the rightmost placeholders take the rightmost digits; the leftmost one
    // takes every digit that is left over. "0" placeholders force leading zeros.
    const qsizetype n = std::max<qsizetype>(intDigits.size(), p.intMinDigits);
    const QString padded = QString(n - intDigits.size(), u'0') + intDigits;
    QString out;
    auto emitDigit = [&](qsizetype fromRight) {
        out.append(padded[n - 1 - fromRight]);
        if (p.grouping && fromRight > 0 && fromRight % 3 == 0)
            out.append(u',');
    };
    auto emitFrom = [&](qsizetype fromRight) {
        for (qsizetype k = n - 1; k >= fromRight; --k)
            emitDigit(k);
    };

    int intIndex = 0;
    int fracIndex = 0;
    bool afterPoint = false;
    for (const Token& t : p.tokens) {
        switch (t.kind) {
        case TokenKind::Hash:
        case TokenKind::Zero:
            if (!afterPoint) {
                const qsizetype fromRight = p.intPlaceholders - 1 - intIndex;
                if (intIndex == 0)
                    emitFrom(fromRight);
                else if (fromRight < n)
                    emitDigit(fromRight);
                ++intIndex;
            } else {
                if (fracIndex < frac.size())
                    out.append(frac[fracIndex]);
                ++fracIndex;
            }
            break;
        case TokenKind::Point:
            // A pattern with no integer placeholders still shows the integer digits.
            if (p.intPlaceholders == 0)
                emitFrom(0);
            out.append(u'.');
            afterPoint = true;
            break;
        case TokenKind::Percent:
            out.append(u'%');
            break;
        case TokenKind::Literal:
            out.append(t.text);
            break;
        }
    }
    if (negative && !isZero)
        out.prepend(u'-');
    return out;
}

Money Money::fromRounded(double value) {
    if (!std::isfinite(value))
        return Money();
    const double units = std::round(value * double(UnitsPerDollar));
    // Beyond what the 64-bit count holds the amount saturates rather than wrapping.
    if (units >= 9.2e18)
        return Money(std::numeric_limits<std::int64_t>::max());
    if (units <= -9.2e18)
        return Money(-std::numeric_limits<std::int64_t>::max());
    return Money(std::int64_t(units));
}

std::optional<Money> Money::parse(QStringView typed) {
    QStringView s = typed.trimmed();
    bool negative = false;
    if (s.startsWith(u'(') && s.endsWith(u')') && s.size() >= 2) {
        negative = true;
        s = s.mid(1, s.size() - 2).trimmed();
    }
    bool sawSign = false;
    bool sawDollar = false;
    while (!s.isEmpty()) {
        const QChar c = s.front();
        if ((c == u'-' || c == u'+') && !sawSign) {
            sawSign = true;
            if (c == u'-') {
                if (negative)
                    return std::nullopt; // "(-5)" is no amount
                negative = true;
            }
        } else if (c == u'$' && !sawDollar) {
            sawDollar = true;
        } else {
            break;
        }
        s = s.mid(1);
    }

    constexpr std::int64_t maxWhole = std::numeric_limits<std::int64_t>::max() / UnitsPerDollar;
    std::int64_t whole = 0;
    std::int64_t fraction = 0;
    int fracDigits = 0;
    int digitCount = 0;
    bool inFraction = false;
    for (qsizetype i = 0; i < s.size(); ++i) {
        const QChar c = s[i];
        if (c >= u'0' && c <= u'9') {
            const int d = c.unicode() - u'0';
            ++digitCount;
            if (inFraction) {
                if (++fracDigits > 4)
                    return std::nullopt;
                fraction = fraction * 10 + d;
            } else {
                if (whole > (maxWhole - d) / 10)
                    return std::nullopt;
                whole = whole * 10 + d;
            }
        } else if (c == u',' && !inFraction) {
            // Thousands separators: only between digits.
            if (i == 0 || !s[i - 1].isDigit() || i + 1 >= s.size() || !s[i + 1].isDigit())
                return std::nullopt;
        } else if (c == u'.' && !inFraction) {
            inFraction = true;
        } else {
            return std::nullopt;
        }
    }
    if (digitCount == 0)
        return std::nullopt;
    for (int i = fracDigits; i < 4; ++i)
        fraction *= 10;
    if (fraction > std::numeric_limits<std::int64_t>::max() - whole * UnitsPerDollar)
        return std::nullopt;
    const std::int64_t units = whole * UnitsPerDollar + fraction;
    return Money(negative ? -units : units);
}

QString Money::format(QStringView pattern) const {
    const bool negative = m_units < 0;
    const std::uint64_t magnitude =
        negative ? std::uint64_t(0) - std::uint64_t(m_units) : std::uint64_t(m_units);
    return formatDigits(negative, QString::number(magnitude), 4, pattern);
}

QString Money::toPlain() const {
    return format(u"0.00");
}
