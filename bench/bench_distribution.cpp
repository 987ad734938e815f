// One body's distribution over 50,000 undistributed receipts (rows, keys, file), and the
// county report of that distribution written to PDF.
//
//   bench_distribution [--parcels N] [--receipts N] [--runs N] [--database FILE]
// Run with QT_QPA_PLATFORM=offscreen when there is no display. Without --database a demo
// database of N parcels and persons is made first (the set-up is not timed). Each run works on
// a fresh copy of the prepared database; the figures are medians.

#include "bench_support.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "distribution/distribution_file.h"
#include "distribution/distribution_report.h"
#include "distribution/distribution_writes.h"
#include "rates/millage_common.h"
#include "reports/report_frame.h"
#include "reports/report_surface.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

bool exec(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.exec(sql)) {
        std::fprintf(stderr, "statement failed: %s\n", qPrintable(sql));
        return false;
    }
    return true;
}

// Every receipt so far is taken out of the way (stamped for an earlier number), and `receipts`
// new county receipts, one per bill in turn, wait for the distribution of 09/30.
bool prepare(QSqlDatabase db, int receipts) {
    if (!exec(db, "UPDATE TCReceipt SET CDisbNum = 'XXXX00', TDisbNum = 'XXXX00', SDisbNum = "
                  "'XXXX00'") ||
        !exec(db, "UPDATE TCVoidReceipt SET CDisbNum = 'XXXX00', TDisbNum = 'XXXX00', SDisbNum = "
                  "'XXXX00'"))
        return false;
    return exec(db, QStringLiteral(
                        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
                        "%1) INSERT INTO TCReceipt (Control, BillNo, AdjNo, Recnum, Name, Map3, "
                        "Map4, Map5, RDate, County, DCounty, PCounty, Library, DLibrary, PLibrary, "
                        "C1Face, DC1Face, PC1Face, Twp, DTwp, PTwp, School, DSchool, PSchool, "
                        "Overage, Refund, Payor, Checknum, CPayFlag, TPayFlag, SPayFlag, CDisbNum, "
                        "TDisbNum, SDisbNum, Pay1Flag, Pay2Flag, Pay3Flag) SELECT m.Control, "
                        "m.BillNo, 0, '201309' || printf('%02d', 1 + n.i % 28) || "
                        "printf('%04d', n.i % 10000), m.Name, m.Map3, m.Map4, m.Map5, "
                        "'2013-09-15', m.County, m.DCounty - m.County, 0, m.Library, m.DLibrary - "
                        "m.Library, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, m.Name, 'CASH', 'D', ' ', "
                        "' ', '      ', '      ', '      ', ' ', ' ', ' ' FROM n JOIN TCMaster m "
                        "ON m.rowid = 1 + (n.i - 1) % (SELECT count(*) FROM TCMaster)")
                        .arg(receipts));
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int parcels = Argument(args, "--parcels", 50000);
    const int receipts = Argument(args, "--receipts", 50000);
    const int runs = std::max(1, Argument(args, "--runs", 3));

    QTemporaryDir dir;
    QString source = dir.filePath("prepared.sqlite");
    const int at = args.indexOf("--database");
    QString error;
    if (at >= 0 && at + 1 < args.size()) {
        QFile::copy(args.at(at + 1), source);
    } else {
        DemoOptions options;
        options.parcels = parcels;
        options.persons = parcels;
        std::printf("making a demo of %d parcels...\n", parcels);
        std::fflush(stdout);
        if (!CreateDemoDatabase(source, options, &error)) {
            std::fprintf(stderr, "demo failed: %s\n", qPrintable(error));
            return 1;
        }
    }
    {
        QSqlDatabase db = TaxDatabase::open(source, "prepare", &error);
        if (!db.isOpen() || !prepare(db, receipts)) {
            std::fprintf(stderr, "set-up failed: %s\n", qPrintable(error));
            return 1;
        }
        db.close();
    }
    TaxDatabase::close("prepare");

    std::vector<double> distributeSeconds;
    std::vector<double> pagesPerSecond;
    int rows = 0;
    int pages = 0;
    for (int run = 0; run < runs; ++run) {
        const QString folder = dir.filePath(QStringLiteral("run%1").arg(run));
        QDir().mkpath(folder);
        const QString path = folder + "/KestLevyDsk2013.sqlite";
        QFile::copy(source, path);
        QSqlDatabase db = TaxDatabase::open(path, "bench", &error);
        const OfficeDistrict office = ReadOfficeDistrict(db);
        const QString taxYear = ReadCountyTaxYear(db).left(4);

        DistributionRun request;
        request.taxYear = taxYear;
        request.district = office.district;
        request.ward = office.ward;
        request.bodies = {{TaxingBody::County, 1, QDate(2013, 9, 30)}};
        QElapsedTimer timer;
        timer.start();
        std::vector<BodyOutcome> outcomes;
        if (!DistributeReceipts(db, RealEstateTables(), request, &outcomes, &error)) {
            std::fprintf(stderr, "distribution failed: %s\n", qPrintable(error));
            return 1;
        }
        const std::vector<FileFailure> failures =
            WriteDistributionFiles(folder, RealEstateTables(), office.district, outcomes);
        distributeSeconds.push_back(timer.nsecsElapsed() / 1e9);
        if (!failures.empty()) {
            std::fprintf(stderr, "file failed: %s\n", qPrintable(failures.front().error));
            return 1;
        }
        rows = outcomes.front().receipts + outcomes.front().voids;

        DistributionReportOptions options;
        options.number = 1;
        options.taxYear = taxYear;
        options.from = QDate(taxYear.toInt(), 3, 1);
        options.to = QDate(2013, 9, 30);
        double seconds = 0;
        {
            timer.restart();
            DistributionReport report(
                db, DistributionReportFor(db, RealEstateTables(), TaxingBody::County), options);
            const std::optional<Recording> drawn =
                DrawReport(report.definition(), ReportMode::Print, db);
            if (!drawn || !WritePdf(*drawn, folder + "/county.pdf", &error)) {
                std::fprintf(stderr, "report failed: %s\n", qPrintable(error));
                return 1;
            }
            seconds = timer.nsecsElapsed() / 1e9;
            pages = int(drawn->pages.size());
            pagesPerSecond.push_back(pages / seconds);
        }
        std::printf("run %d: distributed %d rows in %.3f s; report %d pages in %.2f s\n", run + 1,
                    rows, distributeSeconds.back(), pages, seconds);
        std::fflush(stdout);
        db.close();
        db = QSqlDatabase();
        TaxDatabase::close("bench");
    }
    std::printf("distribution of one body: %d rows, median %.3f s (budget < 2 s)\n", rows,
                Median(distributeSeconds));
    std::printf("county report to PDF: %d pages, median %.1f pages/s\n", pages,
                Median(pagesPerSecond));
    std::printf("RESULT distribute_s=%.3f report_pages_per_s=%.1f\n", Median(distributeSeconds),
                Median(pagesPerSecond));
    return 0;
}
