#pragma once
// The work of a distribution: for each taxing body, every receipt and void up to the cut-off
// that has money for the body and no key yet gets the body's key, its share goes into the
// distribution tables, and tbl_DisbDates gets the number (or its date moves, for a number used
// again). One run is one transaction for all its bodies; the files are written after it.
// The same functions serve both duplicates through their table descriptions.

#include "distribution/distribution_tables.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <vector>

struct BodyDistribution {
    TaxingBody body = TaxingBody::County;
    int number = 0; // the distribution number, 1 and up
    QDate cutOff;   // receipts up to this day, the whole day
};

struct DistributionRun {
    QString taxYear;
    QString district;
    QString ward;
    std::vector<BodyDistribution> bodies; // in the order County, Twp, School
};

struct BodyOutcome {
    TaxingBody body = TaxingBody::County;
    int number = 0;
    QString key;
    int receipts = 0;
    int voids = 0;
    // The file's lines: receipts first, then voids, in the order they were taken.
    QStringList lines;

    bool nothingToDistribute() const { return receipts == 0 && voids == 0; }
};

// The cut-off key of a day: yyyymmdd and "9999", compared as text with Recnum.
QString CutOffKey(const QDate& day);

// One body's work inside the caller's transaction. A body with nothing to distribute writes
// nothing at all, not even tbl_DisbDates.
bool DistributeBody(QSqlDatabase db, const DistributionTables& tables, const DistributionRun& run,
                    const BodyDistribution& body, BodyOutcome* outcome, QString* error);

// Every body of the run in one transaction. On failure nothing is written and *error tells why.
bool DistributeReceipts(QSqlDatabase db, const DistributionTables& tables,
                        const DistributionRun& run, std::vector<BodyOutcome>* outcomes,
                        QString* error);

// A file that could not be written, and why.
struct FileFailure {
    QString path;
    QString error;
};

// Writes the file of each body that distributed something, replacing an older one.
std::vector<FileFailure> WriteDistributionFiles(const QString& programFolder,
                                                const DistributionTables& tables,
                                                const QString& district,
                                                const std::vector<BodyOutcome>& outcomes);
