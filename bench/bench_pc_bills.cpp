// Per capita tax bills and second notices written to one PDF each, in pieces per second, and
// the peak resident memory of the runs.
//
//   bench_pc_bills [--database FILE] [--persons N] [--parcels N] [--runs N]
// Without --database a demo database of N persons and N parcels (default 50,000 each) is made
// first. Half of the parcels are then made unpaid in every part and the other half paid.
// Run with QT_QPA_PLATFORM=offscreen when there is no display.
//
// Figures:
//   pc bills   the whole early run of RunPCTaxBills in bill number order: rows read, each bill
//              drawn, its page streamed into one PDF file
//   notices    the county notice of every unpaid parcel, early and late bodies, from bill 1
//   peak       the resident set's high-water mark after the runs (VmHWM)
//   floor      (with --floor-bills N) the pages of the first N per capita bills, recorded once,
//              then drawn straight onto a QPdfWriter: bills per second, for the ratio

#include "bills/pc_tax_bill.h"
#include "bills/second_notice.h"
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
#include <QSqlError>
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

QString textArgument(const QStringList& args, const QString& name) {
    const int at = args.indexOf(name);
    return at >= 0 && at + 1 < args.size() ? args.at(at + 1) : QString();
}

int argument(const QStringList& args, const QString& name, int fallback) {
    const QString v = textArgument(args, name);
    return v.isEmpty() ? fallback : v.toInt();
}

double peakMegabytes() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    return 0;
}

// Runs `draw` onto a surface streamed into one PDF, `runs` times; the median of pieces per
// second, or a negative number when a run failed.
double streamed(const QString& pdf, int runs, const char* what,
                const std::function<BillRunResult(ReportSurface&)>& draw) {
    std::vector<double> rates;
    for (int r = 0; r < runs; ++r) {
        QFile::remove(pdf);
        QElapsedTimer t;
        t.start();
        ReportSurface surface;
        SetUpBillSurface(surface);
        PrintJobStream job =
            PrintJobStream::toPdfFile(QString::fromLatin1(what), surface.format(), pdf);
        job.attach(surface);
        const BillRunResult result = draw(surface);
        surface.EndDoc();
        const PrintResult sent = job.finish();
        const double seconds = t.nsecsElapsed() / 1e9;
        if (!sent.ok || result.stop != BillRunResult::Stop::Finished) {
            std::fprintf(stderr, "the %s run stopped (%d): %s %s\n", what, int(result.stop),
                         qPrintable(result.error), qPrintable(sent.error));
            return -1;
        }
        rates.push_back(result.printed / seconds);
        std::printf("%s run %d: %d printed, %d pages in %.1f s (%.0f/s), PDF %.1f MB\n", what,
                    r + 1, result.printed, job.pages(), seconds, result.printed / seconds,
                    QFileInfo(pdf).size() / 1048576.0);
        std::fflush(stdout);
    }
    return median(rates);
}

// The floor: recorded pages drawn plainly onto one PDF writer, in pages per second.
double floorRate(const Recording& recording, const QString& pdf) {
    QElapsedTimer t;
    t.start();
    QPdfWriter writer(pdf);
    writer.setResolution(1440);
    writer.setPageLayout(
        QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
    QPainter painter;
    if (!painter.begin(&writer))
        return 0;
    for (std::size_t i = 0; i < recording.pages.size(); ++i) {
        if (i > 0)
            writer.newPage();
        painter.save();
        painter.translate(360, 360);
        QPen pen(Qt::black);
        pen.setWidthF(12);
        painter.setPen(pen);
        for (const PrintedItem& item : recording.pages[i].items) {
            if (const auto* text = std::get_if<PrintedText>(&item)) {
                painter.setFont(text->font.qfont());
                painter.drawText(QPointF(text->x, text->baseline()), text->text);
            } else if (const auto* l = std::get_if<PrintedLine>(&item)) {
                painter.drawLine(l->line);
            } else if (const auto* b = std::get_if<PrintedBox>(&item)) {
                painter.drawRect(b->rect);
            } else if (const auto* c = std::get_if<PrintedBarcode>(&item)) {
                for (const QRectF& bar : c->bars)
                    painter.fillRect(bar, Qt::black);
            }
        }
        painter.restore();
    }
    painter.end();
    return recording.pages.size() / (t.nsecsElapsed() / 1e9);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int runs = std::max(1, argument(args, QStringLiteral("--runs"), 3));
    QTemporaryDir dir;
    QString path = textArgument(args, QStringLiteral("--database"));
    QString error;
    if (path.isEmpty()) {
        DemoOptions options;
        options.parcels = std::max(1, argument(args, QStringLiteral("--parcels"), 50000));
        options.persons = std::max(1, argument(args, QStringLiteral("--persons"), 50000));
        path = dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
        std::printf("making a demo of %d parcels and %d persons\n", options.parcels,
                    options.persons);
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
    Clock::setToday(QDate(2013, 11, 16));

    // Half of the parcels unpaid in every part, the other half paid.
    {
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral(
                "UPDATE TCMaster SET CPayFlag = CASE WHEN rowid % 2 = 1 THEN ' ' ELSE 'D' END, "
                "TPayFlag = CASE WHEN rowid % 2 = 1 THEN ' ' ELSE 'D' END, SPayFlag = CASE WHEN "
                "rowid % 2 = 1 THEN ' ' ELSE 'F' END"))) {
            std::fprintf(stderr, "cannot set the flags: %s\n", qPrintable(q.lastError().text()));
            return 1;
        }
    }

    PCBillOffice pcOffice;
    if (!PCBillOffice::read(db, &pcOffice, &error)) {
        std::fprintf(stderr, "cannot read the office: %s\n", qPrintable(error));
        return 1;
    }
    PCBillRun pcRun;
    pcRun.look.frame = BillingFrame::Early;
    pcRun.mailers = 1000000;
    const double pcRate =
        streamed(dir.filePath(QStringLiteral("pc_bills.pdf")), runs, "pc bills",
                 [&](ReportSurface& s) { return RunPCTaxBills(db, pcOffice, pcRun, s); });

    const int floorBills = argument(args, QStringLiteral("--floor-bills"), 0);
    if (floorBills > 0) {
        PCBillRun some = pcRun;
        some.mailers = floorBills;
        ReportSurface recorded;
        SetUpBillSurface(recorded);
        const BillRunResult result = RunPCTaxBills(db, pcOffice, some, recorded);
        recorded.EndDoc();
        std::vector<double> floors;
        for (int r = 0; r < runs; ++r)
            floors.push_back(
                floorRate(recorded.recording(), dir.filePath(QStringLiteral("floor.pdf"))));
        const double f = median(floors) * result.printed /
                         std::max<double>(1, recorded.recording().pages.size());
        std::printf("floor %.1f pc bills/s (%d bills)   ratio %.2f\n", f, result.printed,
                    pcRate / std::max(f, 1e-9));
        std::fflush(stdout);
    }

    NoticeOffice noticeOffice;
    QSqlQuery year(db);
    year.exec(QStringLiteral("SELECT TaxYear FROM Millfile WHERE District = '00'"));
    const QString taxYear = year.next() ? year.value(0).toString() : QStringLiteral("2013");
    if (NoticeOffice::read(db, Duplicate::RealEstate, taxYear, &noticeOffice, &error) !=
        NoticeOffice::Read::Ok) {
        std::fprintf(stderr, "cannot read the notice office: %s\n", qPrintable(error));
        return 1;
    }
    NoticeRun noticeRun;
    noticeRun.look.frame = NoticeFrame::Both;
    noticeRun.startBill = QStringLiteral("    1");
    const double noticeRate = streamed(
        dir.filePath(QStringLiteral("notices.pdf")), runs, "notices",
        [&](ReportSurface& s) { return RunSecondNotices(db, noticeOffice, noticeRun, s); });
    if (pcRate < 0 || noticeRate < 0)
        return 1;
    const double peak = peakMegabytes();
    std::printf("pc bills %.1f/s, notices %.1f/s, median of %d runs, peak %.0f MB\n", pcRate,
                noticeRate, runs, peak);
    std::printf("RESULT pc_bills_per_s=%.0f notices_per_s=%.0f peak_mb=%.0f\n", pcRate, noticeRate,
                peak);
    return 0;
}
