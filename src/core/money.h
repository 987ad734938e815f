#pragma once
// Money: an exact amount held as a 64-bit count of ten-thousandths of a dollar.
// There is no implicit conversion from or to double: an amount computed from a rate goes
// through RoundTo and then Money::fromRounded, the one named conversion.

#include <QString>
#include <QStringView>
#include <compare>
#include <cstdint>
#include <optional>

class Money {
public:
    static constexpr std::int64_t UnitsPerDollar = 10000;

    constexpr Money() = default;
    static constexpr Money fromUnits(std::int64_t tenThousandths) { return Money(tenThousandths); }
    static constexpr Money fromCents(std::int64_t cents) { return Money(cents * 100); }
    static constexpr Money fromDollars(std::int64_t dollars) {
        return Money(dollars * UnitsPerDollar);
    }
    // A value that has already been rounded (RoundTo) to at most four places; the nearest
    // ten-thousandth is taken, so 0.1 + 0.2 style noise does not leak into the amount.
    static Money fromRounded(double value);
    // A typed amount: "1234.5", "$1,234.50", "-3", "(12.00)", " 7 ". Blank or anything
    // else is no amount. More than four decimal places is refused, not rounded.
    static std::optional<Money> parse(QStringView typed);

    constexpr std::int64_t units() const { return m_units; }
    // For rate arithmetic only (amount times a percentage); the result must pass RoundTo.
    double toDouble() const { return double(m_units) / UnitsPerDollar; }
    constexpr bool isZero() const { return m_units == 0; }

    // Text of the value with the format semantics of "#", "0", ",", "." and literals, e.g.
    // "$###,###,##0.00", "#,###,###.00", "######.00". Exact: no double in between.
    QString format(QStringView pattern) const;
    // "1234.56", "-2.50", "0.00": two places, no separators.
    QString toPlain() const;

    // The format engine under format() and FormatNumber: an exact decimal given as its digits
    // (no sign, no point; leading zeros allowed) and how many of them stand after the point.
    // A minus sign is printed only when the rounded result is not zero. An empty pattern gives
    // the plain decimal without trailing zeros.
    static QString formatDigits(bool negative, QStringView digits, int places, QStringView pattern);

    constexpr Money operator-() const { return Money(-m_units); }
    constexpr Money operator+(Money o) const { return Money(m_units + o.m_units); }
    constexpr Money operator-(Money o) const { return Money(m_units - o.m_units); }
    constexpr Money& operator+=(Money o) {
        m_units += o.m_units;
        return *this;
    }
    constexpr Money& operator-=(Money o) {
        m_units -= o.m_units;
        return *this;
    }
    constexpr Money operator*(std::int64_t n) const { return Money(m_units * n); }
    constexpr auto operator<=>(const Money&) const = default;

private:
    constexpr explicit Money(std::int64_t units) : m_units(units) {}
    std::int64_t m_units = 0;
};

// The three amounts of one tax line on a bill: payable at discount, at face, at penalty.
struct AmountTriple {
    Money discount;
    Money face;
    Money penalty;

    Money total() const { return face + discount + penalty; }
    AmountTriple& operator+=(const AmountTriple& o) {
        discount += o.discount;
        face += o.face;
        penalty += o.penalty;
        return *this;
    }
    bool operator==(const AmountTriple&) const = default;
};
