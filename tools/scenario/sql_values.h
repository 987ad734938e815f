#pragma once
// The scenario's view of SQL: the money() and dollars() functions that scenarios use to write
// and read stored amounts, and the text form of a result value in "expect sql".

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <cstdint>
#include <optional>

// A decimal text ("1234.56", "-0.5", "12", "1.5e-3", "+7.") as ten-thousandths of a dollar,
// rounded half away from zero at the fourth place. Exact: the digits are shifted, never
// multiplied as a double. Nothing for anything else or for an amount out of range.
std::optional<std::int64_t> DecimalToUnits(QStringView text);
// Ten-thousandths as dollars with two places, no separators: "1234.56", "-2.50", "0.00".
// Cents are rounded half away from zero.
QString UnitsToDollars(std::int64_t units);

// A result value as expect sql shows it: Null as <null>, integers as integers, a real number
// with up to 15 significant digits and no trailing zeros, texts as they are.
QString SqlValueText(const QVariant& value);
// A real number with up to 15 significant digits, never in exponent form.
QString RealText(double value);

// Adds money() and dollars() to an open SQLite connection. False when the connection is not
// SQLite or not open.
bool RegisterScenarioSqlFunctions(const QSqlDatabase& db, QString* error = nullptr);

// Runs one statement and gives every row as "v1|v2|..."; false with the database's error.
bool RunScenarioSql(const QSqlDatabase& db, const QString& statement, QStringList* rows,
                    QString* error);
