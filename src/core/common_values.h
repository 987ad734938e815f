#pragma once
// The small helpers that every screen and report calls. Their rules show in stored keys and
// on paper, so each is exact; none of them holds any state.

#include "core/money.h"

#include <QDate>
#include <QString>
#include <QStringView>
#include <QVariant>
#include <optional>

// Right-aligned text of a value, blank padded to the pattern's length. A pattern ending in
// ".##" becomes ".00" for a non-zero value, and the caller's pattern changes with it.
QString PadFormat(double value, QString& pattern);
QString PadFormat(Money value, QString& pattern);
// Same, for a pattern the caller does not keep.
inline QString PadFormat(double value, const char* pattern) {
    QString p = QString::fromLatin1(pattern);
    return PadFormat(value, p);
}
inline QString PadFormat(Money value, const char* pattern) {
    QString p = QString::fromLatin1(pattern);
    return PadFormat(value, p);
}

// Format semantics shared by PadFormat, FormatPercent and Money::format for a double:
// "#" a significant digit, "0" a digit always, "," thousands grouping, "." the point,
// "%" multiplies by 100, anything else a literal. Rounds half away from zero to the
// pattern's places. Independent of the machine's locale.
QString FormatNumber(double value, QStringView pattern);

// A percentage number as text without a bare point: 5 under "#0.##%" is "5%", 2.5 is
// "2.5%". The value is the percentage itself, not a fraction of one.
QString FormatPercent(double value, QStringView pattern);

// Every single quote doubled.
QString QuoteSql(QStringView text);

// Null (or invalid) to "" / 0; any other value as it is.
QString NullToText(const QVariant& value);
QVariant NullToZero(const QVariant& value);

// Trimmed; the first character and each one after a blank upper case, all others lower.
QString ProperName(QStringView text);

// The rounding rule of every amount from a rate: add one half and cut, on the text of the
// double (15 significant digits). Negative values are cut toward zero.
double RoundTo(double value, double places);

// True when the file can be opened for reading.
bool FileExists(const QString& path);

// The number of separators in the text: the highest index of a split. -1 for an empty text.
int CountSeparators(QStringView text, QStringView separator);

// The user's desktop folder, or an empty string.
QString DesktopFolderPath();

// Dates as typed and shown: "MM/dd/yyyy". ParseTypedDate accepts m/d/yyyy, mm/dd/yyyy,
// m-d-yyyy and two-digit years (00-29 are 20xx, 30-99 are 19xx); anything else is no date.
QString FormatDate(const QDate& date);
std::optional<QDate> ParseTypedDate(QStringView typed);
