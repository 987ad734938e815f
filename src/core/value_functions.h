#pragma once
// The common value functions by name, for the scenario driver's "call" command: the
// arguments arrive as text, and the result goes back as text.

#include <QString>
#include <QStringList>
#include <optional>

// A number as the driver shows it: up to 15 significant digits, no trailing zeros, no
// exponent for ordinary magnitudes ("2.35", "0", "-1.24").
QString NumberText(double value);

// RoundTo value places, PadFormat value pattern, FormatNumber value pattern, FormatPercent
// value pattern, FormatMoney amount pattern, QuoteSql text, ProperName text, CountSeparators
// text separator, NullToText [value], NullToZero [value]. For the last two, no argument or
// "<null>" stands for Null. An unknown function or a bad argument gives no result.
std::optional<QString> CallValueFunction(const QString& name, const QStringList& args);
