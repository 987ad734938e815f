// The office's reports on a year of activity: the real-estate balance summary, the deposit list
// of one month and one Act 169 report, each from the click to the last page in the PDF.
//
//   bench_office_reports [--parcels N] [--runs N] [--month M] [--database FILE]
// Run with QT_QPA_PLATFORM=offscreen when there is no display. Without --database a demo
// database of N parcels and persons is made first; voids of every seventh receipt and the
// distributions of April, May and June are added (the set-up is not timed). Figures are medians.
// The deposit list covers August, the school's busiest month, unless --month says otherwise.
// BENCH_SPLIT=1 also prints how long each report took to draw, before its PDF was written.

#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "desk/reports/act169_report.h"
#include "desk/reports/receipt_report.h"
#include "desk/reports/summary_report.h"
#include "distribution/distribution_writes.h"
#include "reports/report_frame.h"
#include "reports/report_surface.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

int argument(const QStringList& args, const QString& name, int fallback) {
    const int at = args.indexOf(name);
    return at >= 0 && at + 1 < args.size() ? args.at(at + 1).toInt() : fallback;
}

bool prepare(QSqlDatabase db) {
    QSqlQuery q(db);
    const QString re = "County Library C1Face Twp S1Face S2Face S3Face School Sch1Face DCounty "
                       "DLibrary DC1Face DTwp DS1Face DS2Face DS3Face DSchool DSch1Face PCounty "
                       "PLibrary PC1Face PTwp PS1Face PS2Face PS3Face PSchool PSch1Face Payment1 "
                       "Payment2 Payment3 PenPayment1 PenPayment2 PenPayment3 Overage Refund";
    QStringList sets;
    for (const QString& c : re.split(' '))
        sets << c + " = -" + c;
    if (!q.exec("INSERT INTO TCVoidReceipt SELECT *, '      ', '      ', '      ', 'BENCH', "
                "date(RDate, '+3 days') FROM TCReceipt WHERE rowid % 7 = 0") ||
        !q.exec("UPDATE TCVoidReceipt SET VDate = SysDate, " + sets.join(", ")))
        return false;
    int number = 1;
    for (const QDate& cutOff : {QDate(2013, 4, 30), QDate(2013, 5, 31), QDate(2013, 6, 30)}) {
        DistributionRun run{"2013", "00", "0", {}};
        for (TaxingBody b : {TaxingBody::County, TaxingBody::Twp, TaxingBody::School})
            run.bodies.push_back({b, number, cutOff});
        std::vector<BodyOutcome> outcomes;
        QString error;
        if (!DistributeReceipts(db, RealEstateTables(), run, &outcomes, &error)) {
            std::fprintf(stderr, "distribution failed: %s\n", qPrintable(error));
            return false;
        }
        ++number;
    }
    return true;
}

// From the click to the last page in the PDF.
double timed(const std::function<ReportDefinition()>& make, QSqlDatabase db, const QString& pdf,
             int* pages) {
    QElapsedTimer timer;
    timer.start();
    const ReportDefinition definition = make();
    const std::optional<Recording> recording = DrawReport(definition, ReportMode::Print, db);
    if (qEnvironmentVariableIsSet("BENCH_SPLIT"))
        std::printf("  drawn in %.3f s\n", timer.nsecsElapsed() / 1e9);
    if (!recording || !WritePdf(*recording, pdf))
        return -1;
    *pages = int(recording->pages.size());
    return timer.nsecsElapsed() / 1e9;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int parcels = argument(args, "--parcels", 50000);
    const int runs = std::max(1, argument(args, "--runs", 3));
    // The month of the deposit list (August, the school's busiest, by default).
    const int month = std::clamp(argument(args, "--month", 8), 1, 12);
    QTemporaryDir dir;
    const QString path = dir.filePath("KestLevyDsk2013.sqlite");
    QString error;
    const int at = args.indexOf("--database");
    if (at >= 0 && at + 1 < args.size()) {
        QFile::copy(args.at(at + 1), path);
    } else {
        DemoOptions options;
        options.parcels = parcels;
        options.persons = parcels;
        std::printf("making a demo of %d parcels and persons...\n", parcels);
        std::fflush(stdout);
        if (!CreateDemoDatabase(path, options, &error)) {
            std::fprintf(stderr, "demo failed: %s\n", qPrintable(error));
            return 1;
        }
    }
    QSqlDatabase db = TaxDatabase::open(path, "bench", &error);
    if (!db.isOpen() || !prepare(db)) {
        std::fprintf(stderr, "set-up failed: %s\n", qPrintable(error));
        return 1;
    }
    session().DbConnection = db;
    session().TaxYear = "2013";
    Clock::setToday(QDate(2013, 10, 1));

    std::vector<double> summary, deposit, act169;
    int summaryPages = 0, depositPages = 0, act169Pages = 0;
    for (int run = 0; run < runs; ++run) {
        summary.push_back(timed([db] { return BalanceSummaryReport(db, RealEstateReportTables()); },
                                db, dir.filePath("summary.pdf"), &summaryPages));
        ReceiptReportOptions options;
        options.range = ReceiptRange::DateCredited;
        options.order = "RECN";
        options.startDate = QDate(2013, month, 1);
        options.endDate = options.startDate.addMonths(1).addDays(-1);
        std::unique_ptr<ReceiptReport> report;
        deposit.push_back(timed(
            [&] {
                report = std::make_unique<ReceiptReport>(db, RealEstateReportTables(), options);
                return report->definition();
            },
            db, dir.filePath("deposit.pdf"), &depositPages));
        act169.push_back(
            timed([db] { return Act169Report(GatherAct169(db, Act169Kind::School, 5)); }, db,
                  dir.filePath("act169.pdf"), &act169Pages));
    }
    std::printf("balance summary: %d pages, deposit list of month %d: %d pages, Act 169: %d "
                "pages\n",
                summaryPages, month, depositPages, act169Pages);
    std::printf("RESULT summary_s=%.3f deposit_s=%.3f act169_s=%.3f\n", median(summary),
                median(deposit), median(act169));
    return 0;
}
