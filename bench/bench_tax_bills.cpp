// Real-estate tax bills of the early frame written to one PDF, in bills per second, against a
// floor of plain QPdfWriter pages carrying the same texts, lines, boxes and bars, measured in
// the same run; and the peak resident memory of the run.
//
//   bench_tax_bills [--database FILE] [--parcels N] [--runs N] [--floor-bills N]
// Without --database a demo database of N parcels (default 50,000) is made first.
// Run with QT_QPA_PLATFORM=offscreen when there is no display.
//
// Figures:
//   bills          the whole run of RunRETaxBills: rows read, each bill drawn, its page
//                  streamed into one PDF file
//   floor          the pages of the first --floor-bills bills (default 2,000), recorded once,
//                  then drawn straight onto a QPdfWriter: bills per second
//   drawn          the same run with its pages thrown away: the drawing alone
//   peak           the resident set's high-water mark after the bill runs (VmHWM)

#include "bench_support.h"
#include "bills/re_tax_bill.h"
#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int runs = std::max(1, Argument(args, QStringLiteral("--runs"), 3));
    const int floorBills = std::max(1, Argument(args, QStringLiteral("--floor-bills"), 2000));
    QTemporaryDir dir;
    QString path = TextArgument(args, QStringLiteral("--database"));
    QString error;
    if (path.isEmpty()) {
        DemoOptions options;
        options.parcels = std::max(1, Argument(args, QStringLiteral("--parcels"), 50000));
        options.persons = 10;
        path = dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
        std::printf("making a demo of %d parcels\n", options.parcels);
        std::fflush(stdout);
        if (!CreateDemoDatabase(path, options, &error)) {
            std::fprintf(stderr, "cannot make the demo: %s\n", qPrintable(error));
            return 1;
        }
    }
    QSqlDatabase db = TaxDatabase::open(path, QStringLiteral("bench"), &error);
    if (!db.isValid()) {
        std::fprintf(stderr, "cannot open %s: %s\n", qPrintable(path), qPrintable(error));
        return 1;
    }
    session().DatabasePath = dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
    Clock::setToday(QDate(2013, 3, 5));
    REBillOffice office;
    if (!REBillOffice::read(db, &office, &error)) {
        std::fprintf(stderr, "cannot read the office: %s\n", qPrintable(error));
        return 1;
    }
    REBillRun run;
    run.look.frame = BillingFrame::Early;
    run.mailers = 1000000;

    // The bills, streamed into one PDF.
    std::vector<double> rates;
    int bills = 0;
    qint64 pdfBytes = 0;
    for (int r = 0; r < runs; ++r) {
        const QString pdf = dir.filePath(QStringLiteral("bills.pdf"));
        QFile::remove(pdf);
        QElapsedTimer t;
        t.start();
        ReportSurface surface;
        SetUpBillSurface(surface);
        PrintJobStream job =
            PrintJobStream::toPdfFile(QStringLiteral("Bills"), surface.format(), pdf);
        job.attach(surface);
        const REBillRunResult result = RunRETaxBills(db, office, run, surface);
        surface.EndDoc();
        const PrintResult sent = job.finish();
        const double seconds = t.nsecsElapsed() / 1e9;
        if (!sent.ok || result.stop != REBillRunResult::Stop::Finished) {
            std::fprintf(stderr, "the run stopped (%d): %s %s\n", int(result.stop),
                         qPrintable(result.error), qPrintable(sent.error));
            return 1;
        }
        bills = result.printed;
        pdfBytes = QFileInfo(pdf).size();
        rates.push_back(bills / seconds);
        std::printf("run %d: %d bills, %d pages in %.1f s (%.0f bills/s), PDF %.1f MB\n", r + 1,
                    bills, job.pages(), seconds, bills / seconds, pdfBytes / 1048576.0);
        std::fflush(stdout);
    }
    const double peak = PeakMegabytes();

    // The same run drawn with its pages thrown away: what drawing costs without the PDF.
    std::vector<double> drawRates;
    for (int r = 0; r < runs; ++r) {
        QElapsedTimer t;
        t.start();
        ReportSurface surface;
        SetUpBillSurface(surface);
        surface.setPageSink([](RecordedPage&&) {});
        const REBillRunResult result = RunRETaxBills(db, office, run, surface);
        surface.EndDoc();
        drawRates.push_back(result.printed / (t.nsecsElapsed() / 1e9));
    }
    std::printf("drawn without output: %.0f bills/s\n", Median(drawRates));
    std::fflush(stdout);

    // The floor: the first bills' pages, recorded once, drawn plainly onto one PDF writer.
    std::vector<FloorPage> pages;
    {
        REBillRun some = run;
        some.mailers = floorBills;
        ReportSurface recorded;
        SetUpBillSurface(recorded);
        const REBillRunResult result = RunRETaxBills(db, office, some, recorded);
        recorded.EndDoc();
        for (const RecordedPage& page : recorded.recording().pages)
            pages.push_back(FloorOf(page));
        if (result.printed <= 0)
            return 1;
        const int floorCount = result.printed;
        std::vector<double> floorRates;
        for (int r = 0; r < runs; ++r) {
            QElapsedTimer t;
            t.start();
            QPdfWriter writer(dir.filePath(QStringLiteral("floor.pdf")));
            writer.setResolution(1440);
            writer.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                                             QMarginsF(0, 0, 0, 0)));
            QPainter painter;
            if (!painter.begin(&writer))
                return 1;
            for (std::size_t i = 0; i < pages.size(); ++i) {
                if (i > 0)
                    writer.newPage();
                DrawFloorPage(painter, pages[i]);
            }
            painter.end();
            floorRates.push_back(floorCount / (t.nsecsElapsed() / 1e9));
        }
        const double b = Median(rates);
        const double f = Median(floorRates);
        std::printf("%d bills of the early frame, median of %d runs\n", bills, runs);
        std::printf("bills  %8.1f bills/s   floor %8.1f bills/s (%d bills)   ratio %.2f   peak "
                    "%.0f MB\n",
                    b, f, floorCount, b / f, peak);
        std::printf("RESULT bills_per_s=%.0f floor_per_s=%.0f ratio=%.2f peak_mb=%.0f\n", b, f,
                    b / f, peak);
    }
    return 0;
}
