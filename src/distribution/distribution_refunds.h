#pragma once
// Refund distributions. The county office pays the refunds owed back out of numbered refund
// distributions, one sequence per duplicate shared by all three bodies. A refund not yet
// distributed carries the tax year and "00" in DisbNum; distributing it gives it the key of the
// distribution in hand (the tax year and its number in "00"). The same functions and the same
// report serve both duplicates through their table descriptions.

#include "distribution/distribution_tables.h"
#include "reports/report_frame.h"

#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <functional>
#include <vector>

// The key of an undistributed refund: the tax year and "00".
QString UndistributedRefundKey(const QString& taxYear);

// The key of the refund distribution a screen opens with: the highest DisbNum of the refund
// table as a number, plus one. The tax year and "01" when the table is empty or holds no
// numeric key; also when every refund still stands at "00".
QString NextRefundDistributionKey(QSqlDatabase db, const DistributionTables& tables,
                                  const QString& taxYear);

// The number of the last refund distribution made (characters 5 and 6 of the highest key above
// "00"); 0 when none was made yet.
int LastRefundDistribution(QSqlDatabase db, const DistributionTables& tables,
                           const QString& taxYear);

// The refunds still at "00", in RecNum, RecNumID order. False with the reason on failure.
bool ReadUndistributedRefunds(QSqlDatabase db, const DistributionTables& tables,
                              const QString& taxYear, std::vector<QSqlRecord>* refunds,
                              QString* error);

// One refund that the collector put into the distribution in hand.
struct RefundToDistribute {
    QString recnum;
    int recnumId = 0;
    QString key; // the distribution's key, 6 characters
};

// Gives the refund the distribution's key, in one transaction. False, with nothing written,
// when the key is not six characters or no such refund stands in the table.
bool DistributeRefund(QSqlDatabase db, const DistributionTables& tables,
                      const RefundToDistribute& refund, QString* error = nullptr);

// How many refunds a distribution holds.
int CountDistributedRefunds(QSqlDatabase db, const DistributionTables& tables, const QString& key);

struct RefundReportOptions {
    int number = 0; // the refund distribution to print
    QString taxYear;
    QString caption; // the report form's caption
    // Shown for each refund while the report walks (the form's progress fields).
    std::function<void(const QSqlRecord& row)> progress;
};

// The printed list of one refund distribution: a block of five lines per refund and the
// count and sum at the end. Real estate prints the report frame's titles ("Tax Collector
// Distributed Refunds - County / " and the body word, the number under it), portrait on paper;
// per capita its one fixed title line, landscape. It keeps what the body callback needs, so it
// must outlive the PrintReport or PreviewReport that runs it.
class RefundDistributionReport {
public:
    RefundDistributionReport(QSqlDatabase db, const DistributionTables& tables,
                             RefundReportOptions options);
    RefundDistributionReport(const RefundDistributionReport&) = delete;
    RefundDistributionReport& operator=(const RefundDistributionReport&) = delete;

    const ReportDefinition& definition() const { return m_definition; }

private:
    bool draw(ReportPage& page);
    void perCapitaTitle(ReportPage& page);

    QSqlDatabase m_db;
    const DistributionTables& m_tables;
    RefundReportOptions m_options;
    ReportDefinition m_definition;
};

// Texts of the refund screens.
inline constexpr const char* DistributeRefundsTitle = "Distribute Refunds";
inline constexpr const char* PrintRefundsTitle = "Print Distributed Refunds";
