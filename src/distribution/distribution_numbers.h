#pragma once
// The last distribution of a body as tbl_DisbDates holds it, and the checks of a number typed
// for a body, shared by the distribution, file and report screens.

#include "distribution/distribution_tables.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <optional>

struct LastDistribution {
    int number = 0; // 0: none yet
    QDate date;
    bool exists() const { return number > 0; }
};

// The last row of "tbl_DisbDates where CTS and DisbType order by DisbNum".
LastDistribution ReadLastDistribution(QSqlDatabase db, const QString& disbType, const QString& cts);
// The row of that number up to which dates run, and the one before it: the date range a
// distribution report prints ("from" is March 1 of the tax year for the first).
struct DistributionRange {
    QDate from;
    QDate to;
};
DistributionRange ReadDistributionRange(QSqlDatabase db, const QString& disbType,
                                        const QString& cts, int number, const QString& taxYear);

// A typed whole number ("3", " 03 "); nothing for anything else.
std::optional<int> ParseWholeNumber(const QString& typed);
// A number in "00".
QString TwoDigits(int number);
