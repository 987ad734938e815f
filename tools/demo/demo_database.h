#pragma once
// The demo tax database: one collector's year in Kestrelvale County, tax year 2013, with rates,
// dates, lookups, parcels and per capita persons whose amounts follow the program's own rules,
// and a season of payments, adjustments and address changes up to the end of September.
// The same options always give the same file content.

#include <QString>
#include <QtGlobal>

struct DemoOptions {
    int parcels = 1000; // real-estate bills, added bills included
    int persons = 600;  // per capita bills, added bills included
    quint32 seed = 2013;
};

// Writes a new demo tax database at path (replacing any file). False with the reason on failure.
bool CreateDemoDatabase(const QString& path, const DemoOptions& options, QString* error = nullptr);
