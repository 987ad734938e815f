#include "bills/pc_print_tax_bills.h"
#include "bills/pc_tax_bill.h"
#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include "bills/bill_fixture.h"
#include "reports/print_readback.h"
#include "support/test_support.h"

#include <QDir>
#include <QLineEdit>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>

using namespace BillFixture;

class TestPCTaxBill : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void earlyBillWithMailingPage();
    void secondNoticeListsUnpaidBodiesOnly();
    void runs_data();
    void runs();
    void streamedPdfReadsBack();
    void handOverFillsTheForm();

private:
    Recording drawBill(const QString& billNo, const PCBillLook& look);
    std::unique_ptr<TempTaxDatabase> m_db;
    PCBillOffice m_office;
};

void TestPCTaxBill::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    QVERIFY(BillFixture::fill(*m_db));
    QVERIFY(BillFixture::fillPerCapita(*m_db));
    session().DatabasePath = m_db->path();
    Clock::setToday(QDate(2013, 3, 5));
    QVERIFY(PCBillOffice::read(m_db->db(), &m_office));
}

void TestPCTaxBill::cleanup() {
    Clock::setToday(std::nullopt);
    m_db.reset();
}

Recording TestPCTaxBill::drawBill(const QString& billNo, const PCBillLook& look) {
    const BillNow bill = ReadBillAsItStands(m_db->db(), Duplicate::PerCapita, billNo);
    if (!bill.found())
        qFatal("bill %s not found", qPrintable(billNo));
    ReportSurface surface;
    SetUpBillSurface(surface);
    DrawPCTaxBill(surface, m_office, look, bill.bill, 3);
    surface.EndDoc();
    return surface.takeRecording();
}

void TestPCTaxBill::earlyBillWithMailingPage() {
    // Adjusted and moved: the amounts of the adjustment, the address of the change.
    PCBillLook look;
    look.printAddress = true;
    look.zipOrder = true;
    const Recording r = drawBill(QStringLiteral("    2"), look);
    QCOMPARE(r.pages.size(), std::size_t(2));
    QString diff;
    QVERIFY2(PrintReadback::matchesExpected(expectedPath("pc_bill_early.txt"), r.dump(), &diff),
             qPrintable(diff));

    // The dump pins every line; what follows are the rules of this bill.
    const QStringList mailing = r.pages[0].textLines();
    // No back panel on a per capita mailer.
    QVERIFY(!joined(mailing).contains(QLatin1String("disabled")));
    QCOMPARE(r.pages[0].barcodes().size(), std::size_t(1));

    const QStringList bill = r.pages[1].textLines();
    expectLines(bill, {"TOTAL TAX DUE 10.78 11.00 12.10"});
    const QString all = joined(bill);
    // The county takes nothing and has no rate: no county rows; no school in the early frame.
    QVERIFY(!all.contains(QLatin1String("COUNTY OCC")));
    QVERIFY(!all.contains(QLatin1String("SCHOOL 5.00")));
    QVERIFY(!all.contains(QLatin1String("SECOND NOTICE")));
    QVERIFY(!all.contains(QLatin1String("escrowed")));
    const qsizetype taxpayer = all.indexOf(QLatin1String("TAXPAYER COPY"));
    const qsizetype tear = all.indexOf(QLatin1String("TEAR ALONG THIS LINE"));
    const qsizetype collector = all.indexOf(QLatin1String("TAX COLLECTOR COPY"));
    QVERIFY(taxpayer >= 0 && taxpayer < tear && tear < collector);
    QCOMPARE(r.barcodePayloads().mid(1),
             (QStringList{QStringLiteral("211312000102"), QStringLiteral("211312000102")}));
    for (const PrintedText* t : r.pages[1].texts())
        QVERIFY2(t->baseline() < r.format.scaleHeight(), qPrintable(t->text));
}

void TestPCTaxBill::secondNoticeListsUnpaidBodiesOnly() {
    // Bill 3 has its township paid: late, the school alone; with every body billed early,
    // the township's rows and sums fall away.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE Millfile SET BillSchool = 'E' WHERE Ward = '3'")));
    QVERIFY(PCBillOffice::read(m_db->db(), &m_office));
    PCBillLook look;
    look.secondNotice = true;
    const Recording r = drawBill(QStringLiteral("    3"), look);
    const QStringList lines = r.textLines();
    expectLines(lines, {"***  SECOND NOTICE  ***", "***  DISREGARD IF PAID  ***",
                        "SCHOOL 5.00 4.90 5.00 5.50", "TOTAL TAX DUE 4.90 5.00 5.50",
                        "Discount: County @ 1%, School @ 2%"});
    QVERIFY(!joined(lines).contains(QLatin1String("TWP OCC")));
    QVERIFY(!joined(lines).contains(QLatin1String("TOWNSHIP 5.00")));
    // Without the tick the paid township is billed as delivered.
    look.secondNotice = false;
    const QString plain = joined(drawBill(QStringLiteral("    3"), look).textLines());
    QVERIFY(plain.contains(QLatin1String("TOTAL TAX DUE 12.74 13.00 14.30")));
    QVERIFY(!plain.contains(QLatin1String("SECOND NOTICE")));
}

void TestPCTaxBill::runs_data() {
    QTest::addColumn<bool>("late");
    QTest::addColumn<int>("order");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<bool>("secondNotice");
    QTest::addColumn<QString>("start");
    QTest::addColumn<int>("mailers");
    QTest::addColumn<bool>("lateBillingRun");
    QTest::addColumn<int>("stop");
    QTest::addColumn<QStringList>("bills");
    using S = BillRunResult::Stop;
    const int byBill = int(PCBillOrder::BillNo);
    const int byName = int(PCBillOrder::Name);
    const int byZip = int(PCBillOrder::ZipCode);
    const QString none;
    // Early: nothing to pay leaves bill 4 out.
    AddRow("early, all", false, byBill, true, false, none, 99, false, int(S::Finished),
           QStringList{"1", "2", "3", "A0001"});
    // Late: a school bill prints even at zero.
    AddRow("late, all", true, byBill, true, false, none, 99, false, int(S::Finished),
           QStringList{"1", "2", "3", "4", "A0001"});
    AddRow("names descending", false, byName, false, false, none, 99, false, int(S::Finished),
           QStringList{"2", "1", "A0001", "3"});
    AddRow("names ascending from 3", true, byName, true, false, QString("    3"), 2, false,
           int(S::Finished), QStringList{"3", "A0001"});
    AddRow("zip ascending", false, byZip, true, false, none, 99, false, int(S::Finished),
           QStringList{"A0001", "2", "1", "3"});
    // A second notice early: bill 3's township is paid and the county takes nothing.
    AddRow("second notice early", false, byBill, true, true, none, 99, false, int(S::Finished),
           QStringList{"1", "2", "A0001"});
    AddRow("second notice late", true, byBill, true, true, none, 99, false, int(S::Finished),
           QStringList{"1", "2", "3", "4", "A0001"});
    AddRow("late billing run", true, byBill, true, false, none, 99, true, int(S::Finished),
           QStringList{"2", "A0001"});
}

void TestPCTaxBill::runs() {
    QFETCH(bool, late);
    QFETCH(int, order);
    QFETCH(bool, ascending);
    QFETCH(bool, secondNotice);
    QFETCH(QString, start);
    QFETCH(int, mailers);
    QFETCH(bool, lateBillingRun);
    QFETCH(int, stop);
    QFETCH(QStringList, bills);
    PCBillRun run;
    run.look.frame = late ? BillingFrame::Late : BillingFrame::Early;
    run.look.secondNotice = secondNotice;
    run.order = PCBillOrder(order);
    run.ascending = ascending;
    run.startBill = start;
    run.mailers = mailers;
    run.lateBillingRun = lateBillingRun;
    ReportSurface surface;
    SetUpBillSurface(surface);
    const BillRunResult result = RunPCTaxBills(m_db->db(), m_office, run, surface);
    surface.EndDoc();
    QCOMPARE(int(result.stop), stop);
    QCOMPARE(result.printed, bills.size());
    QCOMPARE(billsDrawn(surface.recording()), bills);
    // One page a bill.
    QCOMPARE(int(surface.recording().pages.size()), int(bills.size()));
}

void TestPCTaxBill::streamedPdfReadsBack() {
    if (!PrintReadback::haveTool("pdftotext") || !PrintReadback::haveTool("zbarimg"))
        QSKIP("poppler-utils and zbar-tools are needed");
    PCBillRun run;
    run.look.frame = BillingFrame::Late;
    run.look.printAddress = true;
    run.ascending = true;
    run.mailers = 99;
    ReportSurface recorded;
    SetUpBillSurface(recorded);
    QCOMPARE(RunPCTaxBills(m_db->db(), m_office, run, recorded).printed, 5);
    recorded.EndDoc();
    const Recording& pages = recorded.recording();
    QCOMPARE(pages.pages.size(), std::size_t(10));

    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("bills.pdf"));
    ReportSurface streamed;
    SetUpBillSurface(streamed);
    PrintJobStream job = PrintJobStream::toPdfFile(QStringLiteral("Bills"), streamed.format(), pdf);
    job.attach(streamed);
    QCOMPARE(RunPCTaxBills(m_db->db(), m_office, run, streamed).printed, 5);
    streamed.EndDoc();
    const PrintResult sent = job.finish();
    QVERIFY2(sent.ok, qPrintable(sent.error));
    QCOMPARE(job.pages(), 10);

    const QString text = PrintReadback::pdfText(pdf);
    for (const char* want : {"PER CAPITA TAX NOTICE FOR TAX YEAR 2013", "MR ROBERT J SMITH JR",
                             "CARTER ADDED", "TAX COLLECTOR COPY", "SCHOOL"})
        QVERIFY2(text.contains(QLatin1String(want)), want);
    int scanned = 0;
    for (std::size_t p = 0; p < pages.pages.size(); ++p) {
        for (const PrintedBarcode* code : pages.pages[p].barcodes()) {
            if (code->symbology != QLatin1String("CODE39"))
                continue;
            const QStringList found = PrintReadback::scanArea(pdf, int(p) + 1, code->bounds);
            QVERIFY2(found.contains(QStringLiteral("CODE-39:") + code->payload),
                     qPrintable(code->payload + QStringLiteral(" read as ") + found.join(',')));
            QVERIFY(code->payload.startsWith(QLatin1String("3113")));
            ++scanned;
        }
    }
    QCOMPARE(scanned, 10);
}

void TestPCTaxBill::handOverFillsTheForm() {
    Clock::setToday(QDate(2013, 5, 1));
    frmPCPrintTaxBills* form = OpenPCPrintTaxBillsFor(QStringLiteral("   42"));
    QVERIFY(form->optBillLate->isChecked());
    QVERIFY(form->txtControl->isHidden());
    QCOMPARE(form->txtBillNo->text(), QStringLiteral("42"));
    QCOMPARE(form->txtNumberOfMailers->text(), QStringLiteral("1"));
    delete form;
}

QTEST_MAIN(TestPCTaxBill)
#include "test_pc_tax_bill.moc"
