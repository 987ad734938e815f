#pragma once
// The county's duplicate in and out as CSV: one file per table (TCMaster.csv, Millfile.csv, ...),
// each with a header row of column names, in the form Debian's mdb-export writes by default
// (texts and dates in double quotes, a quote doubled; dates MM/DD/YY HH:MM:SS; money and rates
// plain decimals; booleans 0/1; an empty field is no value).

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>

struct DuplicateImport {
    bool ok = false;
    // Values, files and columns refused, each as "FILE line N, COLUMN: what is wrong", or a
    // reason that stopped the import as a whole. Empty when ok.
    QStringList problems;
    // What was left aside without harm: files of no table, columns the program does not know.
    QStringList notes;
    qint64 rows = 0; // rows written
};

// Called now and then with the share done (0 to 1000). Returning false cancels the import.
using ImportProgress = std::function<bool(int perMille)>;

// Builds a new tax database at databasePath from the CSV files in folder. All or nothing: with
// any problem (or a cancel) no file is left at databasePath and the problems are listed. An
// existing file at databasePath is never touched.
DuplicateImport ImportDuplicate(const QString& folder, const QString& databasePath,
                                const ImportProgress& progress = {});

// Writes every table of the open database into folder (created when missing) as TABLE.csv, in
// the same form, so that importing the folder gives the same rows. False with the reason.
bool ExportDuplicate(QSqlDatabase db, const QString& folder, QString* error = nullptr);
