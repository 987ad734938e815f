// Receipts written to PDF, in pages per second, against the floor of plain QPdfWriter pages
// carrying the same number of texts, lines and one bar code, measured in the same run.
//
//   bench_receipts [--receipts N] [--runs N]
// Run with QT_QPA_PLATFORM=offscreen when there is no display.
//
// Figures:
//   receipt jobs     the whole print routine per receipt: its rows read, drawn, one PDF file each
//   receipt batch    the receipts drawn and written as the pages of one PDF
//   floor jobs/batch the same pages drawn straight onto a QPdfWriter, one file each or one file

#include "bench_support.h"
#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/re_receipt.h"
#include "reports/print_capture.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
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

QString recnum(int i) {
    return QStringLiteral("20130915%1").arg(i, 4, 10, QLatin1Char('0'));
}

bool fillOffice(QSqlDatabase db, int receipts) {
    const char* const setup[] = {
        "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName) VALUES ('00', '0', "
        "'2013', 3.5, 0, '')",
        "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName, LMR, TMR, Line1, "
        "Line2, Line3) VALUES ('07', '2', '2013', 25.3, 0.5, 'SCH LIB', 0.25, 1.75, "
        "'KESTRELVALE COUNTY REAL ESTATE TAX', 'Dorothy Penrose, Tax Collector', "
        "'118 Mill Street, Alderbrook PA 17001')",
        "INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('07', '2', 0)",
        "INSERT INTO tbl_Twpboro (District, Ward, TwpBoro, BTFlag) VALUES ('07', '2', "
        "'ALDER TOWNSHIP', 'T')",
        "INSERT INTO Spectax (District, Ward, TaxKey, Desc1, Mill) VALUES ('07', '2', 'FIRE01', "
        "'FIRE TAX', 0.5)",
        "INSERT INTO tbl_Printers (PrinterType, DeviceName) VALUES ('Receipt', 'PDF')",
        "INSERT INTO TCMaster (District, Ward, Control, BillNo, Name, CoOwner, Addr1, City, State, "
        "ZipCode, ZipCode2, Map3, Map4, Map5, Desc1, Desc2, AssLand, AssImpr, AdjFlag, CAddrFlag) "
        "VALUES ('07', '2', '004512', '   42', 'HOLLOWAY MARGARET A', 'HOLLOWAY DAVID R', "
        "'118 CREEK RD', 'ALDERBROOK', 'PA', '17001', '2231', '07-002', '014', '0031.000', "
        "'LOT 31 CREEK RD', 'DWELLING', 12500, 48300, ' ', ' ')",
    };
    for (const char* sql : setup)
        if (!exec(db, QString::fromLatin1(sql)))
            return false;
    db.transaction();
    for (int i = 1; i <= receipts; ++i) {
        const QString sql =
            QStringLiteral(
                "INSERT INTO TCReceipt (Control, BillNo, AdjNo, Recnum, Name, RDate, County, "
                "DCounty, Library, DLibrary, Twp, DTwp, S1Face, DS1Face, School, Sch1Face, Payor, "
                "PAddr1, PCity, PState, PZipCode, Checknum, CPayFlag, TPayFlag, SPayFlag) VALUES "
                "('004512', '   42', 0, '%1', 'HOLLOWAY MARGARET A', '2013-09-15', 2128000, "
                "-42600, 152000, -3000, 1064000, -21300, 304000, -6100, 15382400, 304000, "
                "'FIRST ALDER BANK ESCROW', 'PO BOX 4410', 'HARRISBURG', 'PA', '17105', '%2', "
                "'D', 'D', 'F')")
                .arg(recnum(i))
                .arg(1000 + i);
        if (!exec(db, sql))
            return false;
    }
    db.commit();
    return true;
}

// The floor: the same texts (with their fonts and places), lines, boxes and bars drawn straight
// onto a PDF writer at 1440 dots an inch.
bool writeFloor(const QString& path, const FloorPage& page, int pages) {
    QPdfWriter writer(path);
    writer.setResolution(1440);
    writer.setPageLayout(
        QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    for (int i = 0; i < pages; ++i) {
        if (i > 0)
            writer.newPage();
        DrawFloorPage(painter, page);
    }
    return painter.end();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int receipts = std::max(1, Argument(args, QStringLiteral("--receipts"), 200));
    const int runs = std::max(1, Argument(args, QStringLiteral("--runs"), 5));

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
    QString error;
    QSqlDatabase db = TaxDatabase::create(path, QStringLiteral("bench"), &error);
    if (!db.isValid() || !fillOffice(db, receipts)) {
        std::fprintf(stderr, "cannot build the office: %s\n", qPrintable(error));
        return 1;
    }
    session().DatabasePath = path;
    Clock::setToday(QDate(2013, 9, 16));

    // One receipt page, to count what it carries and to build the floor from.
    REReceiptData data;
    LoadREReceipt(db, recnum(1), &data);
    const ReceiptScreenText fields = ReceiptScreenText::fromRows(
        data.receipt, ReadBillAsItStands(db, Duplicate::RealEstate, data.billNo).bill);
    ReportSurface sample;
    DrawREReceipt(sample, data, fields, false);
    sample.EndDoc();
    const RecordedPage& page = sample.recording().pages.at(0);
    const FloorPage floorPage = FloorOf(page);
    std::printf("a receipt page: %zu texts, %zu lines, %zu boxes, one bar code of %lld bars\n",
                floorPage.texts.size(), floorPage.lines.size(), floorPage.boxes.size(),
                static_cast<long long>(floorPage.bars.size()));

    std::vector<double> jobs, batch, floorJobs, floorBatch;
    for (int run = 0; run < runs; ++run) {
        QDir(PrintoutsFolder()).removeRecursively();

        // The whole print routine, one job (one PDF file) per receipt.
        QElapsedTimer t;
        t.start();
        for (int i = 1; i <= receipts; ++i) {
            REReceiptRequest request;
            request.recnum = recnum(i);
            request.fields = fields;
            if (PrintREReceipt(db, request) != ReceiptPrintOutcome::Printed) {
                std::fprintf(stderr, "receipt %d did not print\n", i);
                return 1;
            }
        }
        jobs.push_back(receipts / (t.nsecsElapsed() / 1e9));

        // Drawn and written as the pages of one PDF.
        t.restart();
        ReportSurface surface;
        for (int i = 1; i <= receipts; ++i) {
            REReceiptData each;
            LoadREReceipt(db, recnum(i), &each);
            DrawREReceipt(surface, each, fields, false);
            surface.NewPage();
        }
        surface.EndDoc();
        if (!WritePdf(surface.takeRecording(), dir.filePath(QStringLiteral("batch.pdf"))))
            return 1;
        batch.push_back(receipts / (t.nsecsElapsed() / 1e9));

        // The floor, both ways.
        t.restart();
        for (int i = 0; i < receipts; ++i)
            if (!writeFloor(dir.filePath(QStringLiteral("floor-%1.pdf").arg(i)), floorPage, 1))
                return 1;
        floorJobs.push_back(receipts / (t.nsecsElapsed() / 1e9));
        t.restart();
        if (!writeFloor(dir.filePath(QStringLiteral("floor.pdf")), floorPage, receipts))
            return 1;
        floorBatch.push_back(receipts / (t.nsecsElapsed() / 1e9));
    }

    const double j = Median(jobs), b = Median(batch), fj = Median(floorJobs),
                 fb = Median(floorBatch);
    std::printf("%d receipts, median of %d runs\n", receipts, runs);
    std::printf("receipt jobs   %8.1f pages/s   floor %8.1f pages/s   ratio %.2f\n", j, fj, j / fj);
    std::printf("receipt batch  %8.1f pages/s   floor %8.1f pages/s   ratio %.2f\n", b, fb, b / fb);
    return 0;
}
