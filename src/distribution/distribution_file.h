#pragma once
// The distribution file of one taxing body: where it lives, what it is called, and its lines.
// One line per distribution row, fields separated by commas, texts in double quotes with no
// escaping, amounts in "######.00" (discount and penalty added into one field), lines ended
// by LF.
//
//     Distributions/RE12County202601.txt   (real estate, district 12, county, key 202601)

#include "distribution/distribution_tables.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

class QSqlQuery;

// "RE" or "PC" + District + body word + key + ".txt": the file's own name, also the name it
// takes on the desktop and as a mail attachment.
QString DistributionFileName(const DistributionTables& tables, TaxingBody body,
                             const QString& district, const QString& key);
// The file in the Distributions folder of the program's folder.
QString DistributionFilePath(const QString& programFolder, const DistributionTables& tables,
                             TaxingBody body, const QString& district, const QString& key);

// The columns a distribution row's line is made of, as an SQL select list, and the lines of a
// query that selects them first (in that order) and nothing before them.
QString DistributionLineColumns(const DistributionTables& tables, TaxingBody body);
QStringList DistributionLinesOf(QSqlQuery& query, const DistributionTables& tables, TaxingBody body,
                                const QString& district, const QString& ward);

// Writes the lines, each ended by LF, replacing any older file; the folder is made when
// missing. False with the reason in *error.
bool WriteDistributionFile(const QString& path, const QStringList& lines, QString* error);

// The lines of a whole distribution from the tables: the rows of the key, receipts then voids,
// each by BillNo, AdjNo, RecNum.
QStringList DistributionRowsAsLines(QSqlDatabase db, const DistributionTables& tables,
                                    TaxingBody body, const QString& district, const QString& ward,
                                    const QString& key, QString* error = nullptr);

// TaxYear of the county's Millfile row.
QString ReadCountyTaxYear(QSqlDatabase db);

// A distribution key: the tax year and the number in "00".
QString DistributionKey(const QString& taxYear, int number);
