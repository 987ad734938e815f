#pragma once
// The demo tax database: one collector's year in Kestrelvale County, with rates, dates, lookups,
// parcels and per capita persons whose amounts follow the program's own rules, and a season of
// payments, adjustments and address changes.
// Without a tax year it is the fixed 2013 duplicate, worked up to the end of September. With one,
// every body mailed its bills three weeks before today (taken into that year), so today falls in
// the discount period of all three, and the records go up to yesterday.
// The same options (and, with a tax year, the same today) always give the same file content.

#include <QDate>
#include <QString>
#include <QtGlobal>

struct DemoOptions {
    int parcels = 1000; // real-estate bills, added bills included
    int persons = 600;  // per capita bills, added bills included
    quint32 seed = 2013;
    int taxYear = 0; // 0: the fixed 2013 duplicate
    QDate today;     // with a tax year: the day the dates are laid around (default: the clock's)
};

// Writes a new demo tax database at path (replacing any file). False with the reason on failure.
bool CreateDemoDatabase(const QString& path, const DemoOptions& options, QString* error = nullptr);
