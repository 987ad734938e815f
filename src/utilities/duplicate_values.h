#pragma once
// The values of the county's CSV files as the import reads them: what each column's text must
// look like, amounts, numbers, dates and flags, each field to its stored value or the reason it
// does not fit.

#include "core/csv.h"
#include "core/tax_database.h"

#include <QDate>
#include <QString>
#include <optional>
#include <string>
#include <string_view>

// The form a text column keeps, worked out once per column rather than once per value.
struct TextRule {
    enum Kind { Free, Flag, BillNo, Control, District, Ward, RecNum, DisbNum, TaxYear, MapPart };
    Kind kind = Free;
    int width = 0; // of a map part
};

TextRule RuleOf(const QString& column);

// One value bound for SQLite.
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
    TaxDatabase::ColumnType type = TaxDatabase::ColumnType::Text;
    TextRule rule;
};

// Money as a plain decimal with at most four places: "1234.5", "-3", "0.1250", in
// ten-thousandths.
std::optional<qint64> ParseMoneyUnits(std::string_view text);
// "MM/DD/YY HH:MM:SS" as mdb-export writes a date; four-digit years, a time with or without
// seconds and AM/PM, and ISO dates are taken too. Invalid when the text is none of these.
QDate ParseCsvDate(std::string_view text);
// The stored value of a field, or the reason it does not fit its column.
QString ConvertCsvField(const ColumnPlan& column, const CsvBytes& field, Bound* out);
// A column the file does not bring: text empty (a flag, map part or key blank), numbers zero,
// dates none.
Bound MissingValue(const ColumnPlan& column);
