#pragma once
// The distribution report of one taxing body: receipts, voided receipts and the grand totals of
// a distribution, drawn on the report frame. One description per report form tells its tables,
// tax lines, words and rates; the walk, the totals and the pages are the same for all six.

#include "distribution/distribution_tables.h"
#include "reports/report_frame.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

struct DistributionReportPlan {
    const DistributionTables* tables = nullptr;
    TaxingBody body = TaxingBody::Twp;
    QString caption;       // the form's caption
    QString receiptsTitle; // the heading of section 1 (and of the grand totals, unless below)
    QString voidsTitle;    // the heading of section 2
    QString totalsTitle;   // the heading of the grand totals page; receiptsTitle when empty
    // Per tax line: the first caption of its face column (10 wide) and its label on the grand
    // totals page (16 wide, then ": ").
    QStringList lineCaptions;
    QStringList lineLabels;
    QString totalLabel; // the grand totals' total line, e.g. "    Total County: "
    QString calculatedHeading;
    double discountRate = 0; // percent, for the calculated amounts
    double penaltyRate = 0;
    // The school report of real estate: homestead/farmstead split, installments, the marker.
    bool school = false;
};

// The description of each of the six report forms, read from the database (names, rates).
DistributionReportPlan DistributionReportFor(QSqlDatabase db, const DistributionTables& tables,
                                             TaxingBody body);

struct DistributionReportOptions {
    int number = 0; // the distribution to print
    QString taxYear;
    QDate from;
    QDate to;
    bool summaryOnly = false;
    bool calculated = false;
    // Shown for each row while the report walks (the form's progress fields).
    std::function<void(const QSqlRecord& row, bool voided)> progress;
};

// The report of one distribution on the frame; it keeps what the body callback needs, so it
// must outlive the PrintReport or PreviewReport that runs it.
class DistributionReport {
public:
    DistributionReport(QSqlDatabase db, DistributionReportPlan plan,
                       DistributionReportOptions options);
    DistributionReport(const DistributionReport&) = delete;
    DistributionReport& operator=(const DistributionReport&) = delete;

    const ReportDefinition& definition() const { return m_definition; }

private:
    struct Lines; // running totals
    bool draw(ReportPage& page);

    QSqlDatabase m_db;
    DistributionReportPlan m_spec;
    DistributionReportOptions m_options;
    ReportDefinition m_definition;
};
