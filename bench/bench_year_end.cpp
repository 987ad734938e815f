// The year end on a full-size demo database: Verify Data Integrity whole (the walk, the Null
// cleaning, the compaction) on a fresh copy each run, and the real-estate left for collection
// report drawn to a PDF file, median of the runs.
//
//   bench_year_end [--parcels N] [--persons N] [--runs N] [--report-only]

#include "bench_support.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "desk/yearend/left_for_collection.h"
#include "utilities/verify_data.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    DemoOptions options;
    options.parcels = Argument(args, "--parcels", 50000);
    options.persons = Argument(args, "--persons", 50000);
    const int runs = std::max(1, Argument(args, "--runs", 3));

    QTemporaryDir dir;
    const QString source = dir.filePath("demo.sqlite");
    QString error;
    if (!CreateDemoDatabase(source, options, &error)) {
        std::fprintf(stderr, "demo database failed: %s\n", qPrintable(error));
        return 1;
    }

    // The machine is shared: the processor time of each part is shown beside the wall time.
    auto cpu = [] { return double(std::clock()) / CLOCKS_PER_SEC; };
    double verifyCpu = 0;
    double reportCpu = 0;
    std::vector<double> verifies;
    int findings = 0;
    const bool verifyToo = !args.contains(QStringLiteral("--report-only"));
    for (int i = 0; verifyToo && i < runs; ++i) {
        const QString copy = dir.filePath("KestLevyDsk2013.sqlite");
        QFile::remove(copy);
        QFile::copy(source, copy);
        QElapsedTimer t;
        t.start();
        const double cpuStart = cpu();
        bool ok = false;
        {
            QSqlDatabase db = TaxDatabase::open(copy, "bench", &error);
            const VerifyWalk walk = VerifyDataWalk(db, QStringLiteral("Township"), {});
            const Recording printed = DrawVerifyList(walk.printed);
            findings = int(walk.printed.size() / 4);
            ok = walk.ok && !printed.jobName.isEmpty() && CleanNulls(db, &error);
        }
        TaxDatabase::close("bench");
        ok = ok && CompactDatabaseFile(copy, &error);
        if (!ok) {
            std::fprintf(stderr, "verify failed: %s\n", qPrintable(error));
            return 1;
        }
        verifies.push_back(t.nsecsElapsed() / 1e9);
        verifyCpu = cpu() - cpuStart;
    }

    std::vector<double> reports;
    qint64 bytes = 0;
    {
        QSqlDatabase db = TaxDatabase::open(source, "bench-report", &error);
        for (int i = 0; i < runs; ++i) {
            const QString pdf = dir.filePath(QStringLiteral("lfc%1.pdf").arg(i));
            QElapsedTimer t;
            t.start();
            const double cpuStart = cpu();
            ReLeftForCollectionReport report(db, false, {});
            const PrintResult printed = PrintStreamed(report.definition(), db, QString(), pdf);
            if (!printed.ok || !report.walk().ok) {
                std::fprintf(stderr, "left for collection failed: %s %s\n",
                             qPrintable(printed.error), qPrintable(report.walk().faultText));
                return 1;
            }
            reports.push_back(t.nsecsElapsed() / 1e9);
            reportCpu = cpu() - cpuStart;
            bytes = QFileInfo(pdf).size();
            QFile::remove(pdf);
        }
    }
    TaxDatabase::close("bench-report");

    std::printf("%d parcels + %d persons: verify median %.2f s (last run %.2f s of processor, "
                "%d findings), left for collection to PDF median %.2f s (last run %.2f s of "
                "processor, all threads; %lld bytes)\n",
                options.parcels, options.persons, Median(verifies), verifyCpu, findings,
                Median(reports), reportCpu, static_cast<long long>(bytes));
    std::printf("RESULT verify_s=%.2f left_for_collection_s=%.2f\n", Median(verifies),
                Median(reports));
    return 0;
}
