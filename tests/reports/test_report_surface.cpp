#include "core/session.h"
#include "reports/print_capture.h"
#include "reports/print_output.h"
#include "reports/print_preview.h"
#include "reports/report_surface.h"

#include "reports/print_readback.h"

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QPrinter>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

namespace {

// A small page with a label beside a larger value, a right-aligned amount and a rule.
Recording samplePage(PageFormat format = {}) {
    ReportSurface s(format);
    s.FontBold = false;
    s.FontSize = 10;
    s.CurrentY = 1000;
    s.CurrentX = 600;
    s.Write(QStringLiteral("Payor:"));
    s.FontSize = 12;
    s.CurrentY = 1000;
    s.CurrentX = 1200;
    s.Write(QStringLiteral("HOLLOWAY MARGARET A"));
    s.WriteRight(10900, QStringLiteral("$1,234.50"));
    s.Line(0, 2000, s.ScaleWidth(), 2000);
    s.EndDoc();
    Recording r = s.takeRecording();
    r.jobName = QStringLiteral("Sample");
    return r;
}

double number(const QString& word, int field) {
    return word.split(QLatin1Char(' ')).at(field).toDouble();
}

QString findWord(const QStringList& boxes, const QString& word) {
    for (const QString& b : boxes)
        if (b.section(QLatin1Char(' '), 4) == word)
            return b;
    return QString();
}

} // namespace

class TestReportSurface : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void printMovesLikeAPrinter();
    void pagesAndEndDoc();
    void streamedJobs();
    void linesReadAsAPersonReads();
    void pdfPlacesTextInTwips();
    void printerReplayMatchesThePdf();
    void captureMatching();
    void previewStacksPagesAndPrintsThroughItsCaller();
};

void TestReportSurface::printMovesLikeAPrinter() {
    ReportSurface s;
    QCOMPARE(s.Width(), 12240.0);
    QCOMPARE(s.Height(), 15840.0);
    QCOMPARE(s.ScaleWidth(), 11520.0);
    s.FontName = QStringLiteral("ARIAL");
    s.FontSize = 9;
    s.FontBold = false;
    // A 9 point line is about 207 twips, whatever the screen's resolution.
    const double line = s.TextHeight();
    QVERIFY2(line > 195 && line < 215, qPrintable(QString::number(line)));
    const double w9 = s.TextWidth(QStringLiteral("RECEIPTS"));
    s.FontSize = 18;
    QVERIFY(std::abs(s.TextWidth(QStringLiteral("RECEIPTS")) - 2 * w9) < 2);
    s.FontSize = 9;
    QCOMPARE(s.TextWidth(QString()), 0.0);

    s.CurrentX = 700;
    s.CurrentY = 300;
    s.Write(QStringLiteral("Date: "));
    QCOMPARE(s.CurrentX, 700 + s.TextWidth(QStringLiteral("Date: ")));
    QCOMPARE(s.CurrentY, 300.0);
    s.Print(QStringLiteral("09/16/2013"));
    QCOMPARE(s.CurrentX, 0.0);
    QCOMPARE(s.CurrentY, 300 + line);
    s.Print();
    QCOMPARE(s.CurrentY, 300 + 2 * line);

    s.WriteRight(5000, QStringLiteral("$12.00"));
    QCOMPARE(s.CurrentX, 5000.0);
    s.WriteCentred(QStringLiteral("TITLE"), 10000);
    const auto texts = s.recording().pages.at(0).texts();
    QCOMPARE(texts.size(), std::size_t(4));
    QCOMPARE(texts[0]->x, 700.0);
    QCOMPARE(texts[1]->x, 700 + s.TextWidth(QStringLiteral("Date: ")));
    QCOMPARE(texts[2]->x + texts[2]->width(), 5000.0);
    QCOMPARE(texts[3]->x, (10000 - texts[3]->width()) / 2);
    QCOMPARE(texts[3]->font.name, QStringLiteral("ARIAL"));
    QCOMPARE(texts[3]->font.size, 9.0);

    // Line widths are printer dots; boxes and lines leave the position at their end.
    s.DrawWidth = 5;
    s.Box(100, 200, 900, 700);
    QCOMPARE(s.CurrentX, 900.0);
    QCOMPARE(s.CurrentY, 700.0);
    const auto& box = std::get<PrintedBox>(s.recording().pages[0].items.back());
    QCOMPARE(box.width, 12.0);
    QCOMPARE(box.rect, QRectF(100, 200, 800, 500));
}

void TestReportSurface::pagesAndEndDoc() {
    // Each page is handed over when the next begins; the recording keeps only the page drawn.
    ReportSurface s;
    std::vector<RecordedPage> sent;
    s.setPageSink([&](RecordedPage&& page) { sent.push_back(std::move(page)); });
    QCOMPARE(s.Page(), 1);
    s.Print(QStringLiteral("one"));
    s.NewPage();
    QCOMPARE(s.Page(), 2);
    QCOMPARE(s.CurrentY, 0.0);
    QCOMPARE(sent.size(), std::size_t(1));
    s.NewPage(); // an empty sheet between two drawn ones still comes out
    s.Print(QStringLiteral("three"));
    QCOMPARE(s.recording().pages.size(), std::size_t(1));
    s.NewPage();
    s.EndDoc(); // NewPage then EndDoc: no blank fourth sheet
    QVERIFY(s.ended());
    QCOMPARE(sent.size(), std::size_t(3));
    QVERIFY(sent[1].items.empty());
    QCOMPARE(sent[2].textLines(), QStringList{QStringLiteral("three")});
    QVERIFY(s.recording().pages.empty());
    QCOMPARE(s.pagesFinished(), 3);

    ReportSurface nothing;
    nothing.NewPage();
    nothing.EndDoc();
    const Recording r = nothing.takeRecording();
    QCOMPARE(r.pages.size(), std::size_t(1));
    QCOMPARE(nothing.Page(), 1);
}

void TestReportSurface::streamedJobs() {
    QTemporaryDir dir;
    const PageFormat format;
    // Streamed straight into a file.
    const QString pdf = dir.filePath(QStringLiteral("stream.pdf"));
    {
        ReportSurface s;
        PrintJobStream job = PrintJobStream::toPdfFile(QStringLiteral("Stream"), format, pdf);
        job.attach(s);
        for (int i = 1; i <= 3; ++i) {
            s.Print(QStringLiteral("PAGE %1").arg(i));
            s.NewPage();
        }
        s.EndDoc();
        const PrintResult result = job.finish();
        QVERIFY2(result.ok, qPrintable(result.error));
        QCOMPARE(job.pages(), 3);
    }
    if (PrintReadback::haveTool("pdftotext"))
        QVERIFY(PrintReadback::pdfText(pdf, 3).contains(QLatin1String("PAGE 3")));
    // Nothing drawn: no job and no file.
    const QString none = dir.filePath(QStringLiteral("none.pdf"));
    {
        ReportSurface s;
        PrintJobStream job = PrintJobStream::toPdfFile(QStringLiteral("None"), format, none);
        job.attach(s);
        s.EndDoc();
        QVERIFY(job.finish().ok);
    }
    QVERIFY(!QFileInfo::exists(none));
    // Under capture the whole job is kept, as one job.
    session().DatabasePath = dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
    PrintCapture::setEnabled(true);
    {
        ReportSurface s;
        PrintJobStream job(QStringLiteral("Captured"), format, QStringLiteral("PDF"));
        job.attach(s);
        s.Print(QStringLiteral("FIRST"));
        s.NewPage();
        s.Print(QStringLiteral("SECOND"));
        s.EndDoc();
        job.finish();
        ReportSurface empty;
        PrintJobStream nothing(QStringLiteral("Nothing"), format, QStringLiteral("PDF"));
        nothing.attach(empty);
        empty.EndDoc();
        nothing.finish();
    }
    QCOMPARE(PrintCapture::jobCount(), 1);
    QCOMPARE(PrintCapture::lastJob()->pages.size(), std::size_t(2));
    QVERIFY(PrintCapture::lastJobPrinted(QStringLiteral("SECOND")));
    PrintCapture::setEnabled(false);
}

void TestReportSurface::linesReadAsAPersonReads() {
    const Recording r = samplePage();
    // The 10 point label and the 12 point value share a line; the amount too.
    QCOMPARE(r.textLines(), QStringList{QStringLiteral("Payor: HOLLOWAY MARGARET A $1,234.50")});

    ReportSurface s;
    s.FontBold = false;
    s.CurrentY = 500;
    s.CurrentX = 3000;
    s.Write(QStringLiteral("second"));
    s.CurrentX = 100;
    s.Write(QStringLiteral("first"));
    // Pieces printed one after the other are one word.
    s.CurrentY = 800;
    s.CurrentX = 100;
    s.Write(QStringLiteral("Page: "));
    s.Write(QStringLiteral("1"));
    s.Write(QStringLiteral("2"));
    s.CurrentY = 1100;
    s.CurrentX = 100;
    s.Write(QStringLiteral("AB"));
    s.Write(QStringLiteral("CD"));
    s.DrawTurnedText(9000, 9000, 180, QStringLiteral("UPSIDE DOWN"));
    s.CurrentY = 1400;
    s.CurrentX = 100;
    s.Write(QStringLiteral("last"));
    QCOMPARE(s.recording().textLines(),
             (QStringList{QStringLiteral("first second"), QStringLiteral("Page: 12"),
                          QStringLiteral("ABCD"), QStringLiteral("last"),
                          QStringLiteral("UPSIDE DOWN")}));
}

void TestReportSurface::pdfPlacesTextInTwips() {
    if (!PrintReadback::haveTool("pdftotext"))
        QSKIP("pdftotext is needed to read the PDF back");
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("sample.pdf"));
    const Recording r = samplePage();
    QVERIFY(WritePdf(r, pdf));
    const QStringList boxes = PrintReadback::pdfWordBoxes(pdf, 1);
    // X 600 of the printable area is 960 twips from the sheet's edge: 48 points.
    const QString payor = findWord(boxes, QStringLiteral("Payor:"));
    QVERIFY2(!payor.isEmpty(), qPrintable(boxes.join(QLatin1Char('\n'))));
    QVERIFY(std::abs(number(payor, 0) - 48) < 0.5);
    const QString holloway = findWord(boxes, QStringLiteral("HOLLOWAY"));
    QVERIFY(std::abs(number(holloway, 0) - 78) < 0.5);
    // 12 point text stands about 12 points high.
    const double height = number(holloway, 3) - number(holloway, 1);
    QVERIFY2(height > 10 && height < 16, qPrintable(holloway));
    // Right-aligned by its measured width: the drawn word ends where the recording says.
    const QString amount = findWord(boxes, QStringLiteral("$1,234.50"));
    QVERIFY(std::abs(number(amount, 2) - (10900 + 360) / 20.0) < 0.6);

    // Landscape legal is a landscape legal sheet.
    const QString legal = dir.filePath(QStringLiteral("legal.pdf"));
    QVERIFY(WritePdf(samplePage({PaperSize::Legal, PageOrientation::Landscape}), legal));
    const QString info = PrintReadback::run(QStringLiteral("pdfinfo"), {legal});
    QVERIFY2(info.contains(QLatin1String("1008 x 612 pts")), qPrintable(info));

    QString error;
    QVERIFY(!WritePdf(Recording(), dir.filePath(QStringLiteral("empty.pdf")), &error));
    QVERIFY(!WritePdf(r, QStringLiteral("/nonexistent/folder/x.pdf"), &error));
    QVERIFY(!error.isEmpty());
}

void TestReportSurface::printerReplayMatchesThePdf() {
    if (!PrintReadback::haveTool("pdftotext"))
        QSKIP("pdftotext is needed to read the PDF back");
    // A printer has its own resolution; the replay scales twips to it.
    QTemporaryDir dir;
    const QString direct = dir.filePath(QStringLiteral("direct.pdf"));
    const QString printed = dir.filePath(QStringLiteral("printed.pdf"));
    const Recording r = samplePage();
    QVERIFY(WritePdf(r, direct));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(printed);
    QVERIFY(PrintRecording(r, printer));
    const QStringList a = PrintReadback::pdfWordBoxes(direct, 1);
    const QStringList b = PrintReadback::pdfWordBoxes(printed, 1);
    QCOMPARE(a.size(), b.size());
    for (qsizetype i = 0; i < a.size(); ++i)
        for (int field = 0; field < 4; ++field)
            QVERIFY2(std::abs(number(a[i], field) - number(b[i], field)) < 0.5,
                     qPrintable(a[i] + QStringLiteral(" / ") + b[i]));
}

void TestReportSurface::captureMatching() {
    PrintCapture::setEnabled(true);
    QVERIFY(!PrintCapture::lastJobPrinted(QStringLiteral("Payor")));

    ReportSurface s;
    s.FontBold = false;
    s.CurrentX = 0;
    s.Write(QStringLiteral("Receipt #:   2013-09-15-0007"));
    s.CurrentX = 6000;
    s.Write(QStringLiteral("TOTAL"));
    s.CurrentY = 400;
    s.CurrentX = 0;
    s.Write(QStringLiteral("Thank you for your payment!"));
    s.EndDoc();
    Recording job = s.takeRecording();
    Recording barcoded = job;
    barcoded.pages[0].items.push_back(
        PrintedBarcode{QStringLiteral("CODE39"), QStringLiteral("40201309150007"), {}, {}});
    PrintCapture::recordJob(job, QString());
    PrintCapture::recordJob(barcoded, QStringLiteral("/tmp/x.pdf"));
    QCOMPARE(PrintCapture::jobCount(), 2);
    QCOMPARE(PrintCapture::lastJobPdf(), QStringLiteral("/tmp/x.pdf"));

    QVERIFY(PrintCapture::lastJobPrinted(QStringLiteral("Receipt #: 2013-09-15-0007 TOTAL")));
    QVERIFY(PrintCapture::lastJobPrinted(QStringLiteral("2013-09-15-0007      TOTAL")));
    QVERIFY(PrintCapture::lastJobPrinted(QStringLiteral("Thank you...")));
    QVERIFY(PrintCapture::lastJobPrinted(QStringLiteral("payment!")));
    QVERIFY(!PrintCapture::lastJobPrinted(QStringLiteral("TOTAL Thank")));
    QVERIFY(!PrintCapture::lastJobPrinted(QStringLiteral("Receipt #:2013")));
    QVERIFY(PrintCapture::lastJobHasBarcode(QStringLiteral("40201309150007")));
    QVERIFY(!PrintCapture::lastJobHasBarcode(QStringLiteral("4020130915000")));
    QCOMPARE(PrintCapture::lastJobBarcodes(), QStringList{QStringLiteral("40201309150007")});

    PrintCapture::clear();
    QCOMPARE(PrintCapture::jobCount(), 0);
    PrintCapture::setEnabled(false);
}

void TestReportSurface::previewStacksPagesAndPrintsThroughItsCaller() {
    ReportSurface s;
    s.Print(QStringLiteral("page one"));
    s.NewPage();
    s.Print(QStringLiteral("page two"));
    s.NewPage();
    s.Print(QStringLiteral("page three"));
    s.EndDoc();
    const Recording pages = s.takeRecording();

    int printed = 0;
    auto* caller = new QWidget;
    frmPrintPreview* preview = ShowPrintPreview(pages, QStringLiteral("Print Receipts For Deposit"),
                                                caller, [&printed] { ++printed; });
    QVERIFY(preview);
    QCOMPARE(PrintCapture::lastPreview()->textLines(), pages.textLines());
    QCOMPARE(preview->lblCallerCaption->text(),
             QStringLiteral("  *** Print Receipts For Deposit ***  "));
    QCOMPARE(preview->recording().pages.size(), std::size_t(3));
    // The pages stand one under the other in one picture.
    QCOMPARE(preview->picPreview->height(), qRound(15840.0 * 3 / 15));
    preview->show();
    QVERIFY(QTest::qWaitForWindowExposed(preview));
    QCOMPARE(preview->VScroll1->maximum(), 100);
    preview->VScroll1->setValue(50);
    QCOMPARE(preview->picPreview->y(),
             -(50 * (preview->picPreview->height() - preview->picMain->height()) / 100));
    preview->VScroll1->setValue(100);
    QCOMPARE(preview->picPreview->y() + preview->picPreview->height(), preview->picMain->height());

    QTest::mouseClick(preview->cmdPrint, Qt::LeftButton);
    QCOMPARE(printed, 1);
    delete caller; // the report form closed: Print has nothing to run
    QTest::mouseClick(preview->cmdPrint, Qt::LeftButton);
    QCOMPARE(printed, 1);

    QPointer<frmPrintPreview> guard(preview);
    QTest::mouseClick(preview->cmdClose, Qt::LeftButton);
    QTRY_VERIFY(!guard || !guard->isVisible());
}

QTEST_MAIN(TestReportSurface)
#include "test_report_surface.moc"
