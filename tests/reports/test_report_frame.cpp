#include "core/clock.h"
#include "core/session.h"
#include "reports/print_capture.h"
#include "reports/print_preview.h"
#include "reports/report_frame.h"

#include "reports/print_readback.h"
#include "reports/receipt_fixture.h"
#include "support/test_support.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace {

QString expectedPath(const char* name) {
    return QDir(QStringLiteral(LEVYDESK_TEST_DIR))
        .filePath(QStringLiteral("expected/") + QString::fromLatin1(name));
}

// A report of `rows` numbered rows with a money column and a total, as the report Parts write
// them.
ReportDefinition sampleReport(int rows, bool* bodyRan = nullptr) {
    ReportDefinition report;
    report.caption = QStringLiteral("Print Sample Report");
    report.margin = 1500;
    report.titles = {QStringLiteral("SAMPLE RECEIPTS REPORT"), QStringLiteral("Distribution # 4")};
    report.interim = true;
    report.columns = {{QStringLiteral("RECEIPT #"), 0},
                      {QStringLiteral("NAME"), 1800},
                      {QStringLiteral("AMOUNT"), 15000, ReportColumn::Right}};
    report.body = [rows, bodyRan](ReportPage& page) {
        if (bodyRan)
            *bodyRan = true;
        Money total;
        for (int i = 1; i <= rows; ++i) {
            page.startRow();
            const Money amount = Money::fromCents(10000 + i * 1234);
            page.text(0, QStringLiteral("20130915%1").arg(i, 4, 10, QLatin1Char('0')));
            page.text(1800, QStringLiteral("TAXPAYER NUMBER %1").arg(i));
            page.money(15000, amount);
            page.nextLine();
            total += amount;
        }
        page.rule();
        page.bold(true);
        page.text(1800, QStringLiteral("TOTAL"));
        page.money(15000, total);
        page.nextLine();
        return true;
    };
    return report;
}

} // namespace

class TestReportFrame : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void copiesQuestionLoops();
    void copiesQuestionCancels_data();
    void copiesQuestionCancels();
    void printPathNeedsALetterPrinter();
    void printPathCopiesAndSilentPrint();
    void headerFrameAndPageFull();
    void previewDrawsWhatPrintDraws();

private:
    std::unique_ptr<TempTaxDatabase> m_db;
};

void TestReportFrame::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    QVERIFY(ReceiptFixture::fill(*m_db));
    session().DatabasePath = m_db->path();
    session().SilentPrint = false;
    Clock::setToday(QDate(2013, 9, 16));
    PrintCapture::setEnabled(true);
}

void TestReportFrame::cleanup() {
    PrintCapture::setEnabled(false);
    Clock::setToday(std::nullopt);
    session().SilentPrint = false;
    m_db.reset();
}

void TestReportFrame::copiesQuestionLoops() {
    // A wrong word, too many copies and a cancel taken back go through desk_county_then_rest.scn.
    MessageScript script;
    // Blanks are an answer, not a cancel: they are no number.
    script.answer(MsgAnswer::Ok, QStringLiteral("  "));
    script.answer(MsgAnswer::Ok); // "must be numeric"
    script.answer(MsgAnswer::Ok, QStringLiteral("10"));
    script.answer(MsgAnswer::Ok); // "between 0 and 9"
    script.answer(MsgAnswer::Ok, QStringLiteral("2.5"));
    script.answer(MsgAnswer::Ok);
    script.answer(MsgAnswer::Ok, QStringLiteral("-1"));
    script.answer(MsgAnswer::Ok);
    script.answer(MsgAnswer::Ok, QStringLiteral(" 3 "));
    QCOMPARE(AskCopies(CopiesQuestion::receipt()), std::optional<int>(3));
    const QString numeric = QStringLiteral("Number Of Receipts Must Be Numeric.");
    const QString range =
        QStringLiteral("Invalid Number Of Receipts. Number must be between 0 and 9.");
    const QString ask = QStringLiteral("Enter the number of receipts to print:");
    QCOMPARE(script.texts(), (QStringList{ask, numeric, ask, range, ask, range, ask, range, ask}));
    QCOMPARE(script.service().unanswered, 0);

    // The distribution reports' question has its own words, the complaints stay the receipt's.
    MessageScript dist;
    dist.answer(MsgAnswer::Ok, QStringLiteral("x"));
    dist.answer(MsgAnswer::Ok);
    dist.answer(MsgAnswer::Ok, QStringLiteral("0"));
    QCOMPARE(AskCopies(CopiesQuestion::distributionReport()), std::optional<int>(0));
    QCOMPARE(dist.titles(), (QStringList{QStringLiteral("Print Distribution Report"),
                                         QStringLiteral("Print Receipt"),
                                         QStringLiteral("Print Distribution Report")}));
    QCOMPARE(dist.texts().at(0),
             QStringLiteral("Enter the number of distribution reports to print:"));
}

void TestReportFrame::copiesQuestionCancels_data() {
    QTest::addColumn<bool>("distribution");
    QTest::addColumn<bool>("emptyAnswer");
    AddRow("receipt, empty answer", false, true);
    AddRow("distribution report", true, false);
}

void TestReportFrame::copiesQuestionCancels() {
    QFETCH(bool, distribution);
    QFETCH(bool, emptyAnswer);
    MessageScript script;
    if (emptyAnswer)
        script.answer(MsgAnswer::Ok, QString());
    else
        script.answer(MsgAnswer::Cancel);
    script.answer(MsgAnswer::Yes);
    const CopiesQuestion question =
        distribution ? CopiesQuestion::distributionReport() : CopiesQuestion::receipt();
    QVERIFY(!AskCopies(question));
    QCOMPARE(script.texts().size(), 3);
    QCOMPARE(script.texts().at(1),
             distribution
                 ? QStringLiteral("Are you sure you want to cancel the printing of this report?")
                 : QStringLiteral("Are you sure you want to cancel the printing of this receipt?"));
    QCOMPARE(script.titles().at(1), distribution
                                        ? QStringLiteral("Cancel Print Distribution Report")
                                        : QStringLiteral("Cancel Print Receipt"));
    QCOMPARE(script.texts().at(2), distribution ? QStringLiteral("Distribution Report NOT printed.")
                                                : QStringLiteral("Receipt NOT printed."));
    QCOMPARE(script.titles().at(2), distribution ? QStringLiteral("Print Distribution Report")
                                                 : QStringLiteral("Print Receipt"));
}

void TestReportFrame::printPathNeedsALetterPrinter() {
    QVERIFY(m_db->exec(QStringLiteral("DELETE FROM tbl_Printers WHERE PrinterType = 'Letter'")));
    MessageScript script;
    bool bodyRan = false;
    QVERIFY(!PrintReport(sampleReport(3, &bodyRan), m_db->db()));
    QCOMPARE(script.texts(),
             QStringList{QStringLiteral("There is currently no LETTER size printer assigned.")});
    QCOMPARE(script.titles(), QStringList{QStringLiteral("Printer Error")});
    QVERIFY(!bodyRan);
    QCOMPARE(PrintCapture::jobCount(), 0);
}

void TestReportFrame::printPathCopiesAndSilentPrint() {
    // Two copies as two jobs and a report's own closing words: distribution_reports.scn and
    // distribution_refunds.scn.
    ReportDefinition report = sampleReport(3);
    report.copies = CopiesQuestion::distributionReport();
    {
        // 0 copies: no page, and still the closing message.
        MessageScript script;
        script.answer(MsgAnswer::Ok, QStringLiteral("0"));
        QVERIFY(PrintReport(report, m_db->db()));
        QCOMPARE(PrintCapture::jobCount(), 0);
        QCOMPARE(script.texts().last(), QStringLiteral("Printing Complete."));
    }
    {
        // Under SilentPrint: one copy, no question, no closing message.
        session().SilentPrint = true;
        MessageScript script;
        QVERIFY(PrintReport(report, m_db->db()));
        QCOMPARE(PrintCapture::jobCount(), 1);
        QVERIFY(script.texts().isEmpty());
    }
}

void TestReportFrame::headerFrameAndPageFull() {
    QVERIFY(m_db->exec(QStringLiteral("UPDATE tbl_District SET IntNo = 2")));
    const std::optional<Recording> drawn =
        DrawReport(sampleReport(60), ReportMode::Print, m_db->db());
    QVERIFY(drawn);
    const Recording& r = *drawn;
    QCOMPARE(r.pages.size(), std::size_t(2));
    QString diff;
    QVERIFY2(PrintReadback::matchesExpected(expectedPath("report_header.txt"), r.dump(), &diff),
             qPrintable(diff));

    // The test stands before each row: the last row of a page began at or above the page's
    // height less the margin, and the next one would have begun below it.
    const double limit = r.format.sheet().height() - 1500;
    double lastRowY = 0;
    for (const PrintedText* t : r.pages[0].texts())
        if (t->text.startsWith(QLatin1String("2013")))
            lastRowY = std::max(lastRowY, t->y);
    QVERIFY(lastRowY <= limit);
    ReportSurface measure;
    measure.FontBold = false;
    QVERIFY(lastRowY + measure.TextHeight() > limit);

    // A blank kind of municipality leaves no body word, and the county-wide line names the
    // county.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE tbl_Twpboro SET BTFlag = ' '")));
    const ReportLookups lookups = ReportLookups::read(m_db->db());
    QCOMPARE(lookups.bodyWord, QString());
    ReportDefinition county = sampleReport(1);
    county.countyWide = true;
    QCOMPARE(DrawReport(county, ReportMode::Print, m_db->db())->pages[0].textLines().at(1),
             QStringLiteral("072 KESTRELVALE"));
}

void TestReportFrame::previewDrawsWhatPrintDraws() {
    const ReportDefinition report = sampleReport(70);
    const std::optional<Recording> printed = DrawReport(report, ReportMode::Print, m_db->db());
    const std::optional<Recording> previewed = DrawReport(report, ReportMode::Preview, m_db->db());
    QVERIFY(printed && previewed);
    QCOMPARE(previewed->dump(), printed->dump());

    // The refund report: portrait on paper, landscape in the preview; the same rows either way.
    ReportDefinition odd = sampleReport(100);
    odd.print = {PaperSize::Letter, PageOrientation::Portrait};
    const std::optional<Recording> portrait = DrawReport(odd, ReportMode::Print, m_db->db());
    const std::optional<Recording> landscape = DrawReport(odd, ReportMode::Preview, m_db->db());
    QCOMPARE(portrait->format.orientation, PageOrientation::Portrait);
    QCOMPARE(landscape->format.orientation, PageOrientation::Landscape);
    QCOMPARE(portrait->pages.size(), std::size_t(2));
    QCOMPARE(landscape->pages.size(), std::size_t(3));
    const auto firstPage = portrait->pages[0].texts();
    QCOMPARE(firstPage[firstPage.size() - 2]->text, QStringLiteral("TAXPAYER NUMBER 64"));

    // Print in the preview runs the form's whole print path, its questions with it.
    QWidget form;
    form.setWindowTitle(report.caption);
    ReportDefinition withCopies = report;
    withCopies.copies = CopiesQuestion::distributionReport();
    MessageScript script;
    PreviewReport(
        withCopies, &form, [&] { PrintReport(withCopies, m_db->db()); }, m_db->db());
    QCOMPARE(PrintCapture::jobCount(), 0);
    QVERIFY(script.texts().isEmpty()); // the preview asks nothing and prints nothing
    frmPrintPreview* preview = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* p = qobject_cast<frmPrintPreview*>(w); p && p->isVisible())
            preview = p;
    QVERIFY(preview);
    QCOMPARE(preview->lblCallerCaption->text(), QStringLiteral("  *** Print Sample Report ***  "));
    QCOMPARE(preview->recording().dump(), previewed->dump());
    script.answer(MsgAnswer::Ok, QStringLiteral("1"));
    QTest::mouseClick(preview->cmdPrint, Qt::LeftButton);
    QCOMPARE(script.texts().first(),
             QStringLiteral("Enter the number of distribution reports to print:"));
    QCOMPARE(script.texts().last(), QStringLiteral("Printing Complete."));
    QCOMPARE(PrintCapture::jobCount(), 1);
    QCOMPARE(PrintCapture::lastJob()->dump(), printed->dump());
    preview->close();
}

QTEST_MAIN(TestReportFrame)
#include "test_report_frame.moc"
