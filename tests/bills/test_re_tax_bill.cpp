#include "bills/re_print_tax_bills.h"
#include "bills/re_tax_bill.h"
#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include "bills/bill_fixture.h"
#include "reports/print_readback.h"
#include "support/test_support.h"

#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>

using namespace BillFixture;

class TestRETaxBill : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void earlyBillAsExpected();
    void lateBillWithMailingPageAndCoupons();
    void rateLinesAndCollector();
    void runs_data();
    void runs();
    void integrityStopKeepsPagesDrawn();
    void cancelledBetweenBills();
    void lateBillingTest_data();
    void lateBillingTest();
    void streamedPdfReadsBack();
    void handOverFillsTheForm();

private:
    Recording drawBill(const QString& billNo, const REBillLook& look);
    std::unique_ptr<TempTaxDatabase> m_db;
    REBillOffice m_office;
};

void TestRETaxBill::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    QVERIFY(BillFixture::fill(*m_db));
    session().DatabasePath = m_db->path();
    Clock::setToday(QDate(2013, 3, 5));
    QVERIFY(REBillOffice::read(m_db->db(), &m_office));
}

void TestRETaxBill::cleanup() {
    Clock::setToday(std::nullopt);
    m_db.reset();
}

Recording TestRETaxBill::drawBill(const QString& billNo, const REBillLook& look) {
    const BillNow bill = ReadBillAsItStands(m_db->db(), Duplicate::RealEstate, billNo);
    if (!bill.found())
        qFatal("bill %s not found", qPrintable(billNo));
    ReportSurface surface;
    SetUpBillSurface(surface);
    DrawRETaxBill(surface, m_office, look, bill.bill, 7);
    surface.EndDoc();
    return surface.takeRecording();
}

void TestRETaxBill::earlyBillAsExpected() {
    // Adjusted and moved: the amounts of the adjustment, the address of the change.
    const Recording r = drawBill(QStringLiteral("    2"), REBillLook{});
    QCOMPARE(r.pages.size(), std::size_t(1));
    QString diff;
    QVERIFY2(PrintReadback::matchesExpected(expectedPath("re_bill_early.txt"), r.dump(), &diff),
             qPrintable(diff));
    // The dump pins every line; the totals are spelled out here as the figures to check by hand.
    const QStringList lines = r.textLines();
    QVERIFY(!lines.filter(QLatin1String("TOTAL TAX DUE 243.04 248.00 272.80")).isEmpty());
    // No school line in the early frame, and no Act 1 lines without the school.
    QVERIFY(lines.filter(QStringLiteral("SCHOOL ")).isEmpty());
    QVERIFY(lines.filter(QStringLiteral("ACT 1")).isEmpty());
    // The copy above the tear line is the taxpayer's, the one below the collector's.
    const QString all = joined(lines);
    const qsizetype taxpayer = all.indexOf(QLatin1String("TAXPAYER OR MORTGAGE HOLDER COPY"));
    const qsizetype tear = all.indexOf(QLatin1String("TEAR ALONG THIS LINE"));
    const qsizetype collector = all.indexOf(QLatin1String("TAX COLLECTOR COPY"));
    QVERIFY(taxpayer >= 0 && taxpayer < tear && tear < collector);
    QCOMPARE(r.barcodePayloads(),
             (QStringList{QStringLiteral("201312000002"), QStringLiteral("201312000002")}));
    // Both copies stay on the sheet.
    for (const PrintedText* t : r.pages[0].texts())
        QVERIFY2(t->baseline() < r.format.scaleHeight(), qPrintable(t->text));
}

void TestRETaxBill::lateBillWithMailingPageAndCoupons() {
    REBillLook look;
    look.frame = BillingFrame::Late;
    look.printAddress = true;
    look.printHomestead = true;
    const Recording r = drawBill(QStringLiteral("    2"), look);
    QCOMPARE(r.pages.size(), std::size_t(3)); // mailing page, bill, coupons
    QString diff;
    QVERIFY2(PrintReadback::matchesExpected(expectedPath("re_bill_late.txt"), r.dump(), &diff),
             qPrintable(diff));
    // Postal bars: ZIP+4 and the weighted 3-1 check digit from the right
    // (1*3+3+2*3+2+1*3+1+1*3+9+1*3 = 33, so 7).
    const auto bars = r.pages[0].barcodes();
    QCOMPARE(bars.size(), std::size_t(1));
    QCOMPARE(bars[0]->symbology, QStringLiteral("POSTNET"));
    QCOMPARE(bars[0]->payload, QStringLiteral("1911122317"));
    // The back panel is upside down.
    for (const PrintedText* t : r.pages[0].texts())
        if (t->text.startsWith(QLatin1String("NOTICE OF PROPERTY")))
            QCOMPARE(t->angle, 180.0);

    const QStringList bill = r.pages[1].textLines();
    QVERIFY(!bill.filter(QLatin1String("TOTAL TAX DUE 483.47 496.40 546.04")).isEmpty());
    QVERIFY(!joined(bill).contains(QLatin1String("escrowed"))); // LatePrintEscrow is off
    QCOMPARE(r.barcodePayloads().mid(1),
             (QStringList{QStringLiteral("301312000002"), QStringLiteral("301312000002")}));

    // Without "Print Coupons" the coupons stay, the guidance and the H/F mark go.
    look.printHomestead = false;
    const Recording plain = drawBill(QStringLiteral("    2"), look);
    QCOMPARE(plain.pages.size(), std::size_t(3));
    QVERIFY(!joined(plain.pages[0].textLines()).contains(QLatin1String("H/F")));
    QVERIFY(!joined(plain.pages[2].textLines()).contains(QLatin1String("Please use")));
}

void TestRETaxBill::rateLinesAndCollector() {
    QCOMPARE(BillRateLine(m_office, {true, true, true}, false),
             QStringLiteral("Discount: County @ 2%, Twp @ 1.25%, School @ 2%"));
    QCOMPARE(BillRateLine(m_office, {false, false, true}, true),
             QStringLiteral("Penalty: School @ 10%"));
    m_office.btFlag = QStringLiteral("B");
    QCOMPARE(BillRateLine(m_office, {false, true, false}, false),
             QStringLiteral("Discount: Boro @ 1.25%"));
    QCOMPARE(CollectorLine(QStringLiteral("MAPLE TOWNSHIP                ")),
             QStringLiteral("Maple Twp Tax Coll."));
    QCOMPARE(CollectorLine(QStringLiteral("ALDER BOROUGH")),
             QStringLiteral("Alder Borough Tax Coll."));
    QCOMPARE(REBillPayload(BillingFrame::Late, QDate(2014, 1, 2), QStringLiteral("12"),
                           QStringLiteral("000002")),
             QStringLiteral("301412000002"));
}

void TestRETaxBill::runs_data() {
    QTest::addColumn<bool>("late");
    QTest::addColumn<bool>("zip");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<bool>("samples");
    QTest::addColumn<QString>("start");
    QTest::addColumn<int>("mailers");
    QTest::addColumn<bool>("lateBillingRun");
    QTest::addColumn<int>("stop");
    QTest::addColumn<QStringList>("bills");
    using S = REBillRunResult::Stop;
    const QString none;
    // Early: the bill with nothing to pay is left out.
    AddRow("early, all", false, false, true, false, none, 99, false, int(S::Finished),
           QStringList{"1", "2", "A0001"});
    // Late: a school bill prints even at zero.
    AddRow("late, all", true, false, true, false, none, 99, false, int(S::Finished),
           QStringList{"1", "2", "3", "A0001"});
    AddRow("descending from 3", false, false, false, false, QString("    3"), 5, false,
           int(S::Finished), QStringList{"2", "1"});
    AddRow("mailers count bills", true, false, true, false, none, 2, false, int(S::Finished),
           QStringList{"1", "2"});
    AddRow("zero mailers", false, false, true, false, none, 0, false, int(S::Finished),
           QStringList{});
    AddRow("samples", false, true, false, true, none, 99, false, int(S::Finished),
           QStringList{"1"});
    AddRow("zip descending", false, true, false, false, none, 99, false, int(S::Finished),
           QStringList{"2", "1", "A0001"});
    AddRow("late billing run", true, false, true, false, none, 99, true, int(S::Finished),
           QStringList{"2", "A0001"});
}

void TestRETaxBill::runs() {
    QFETCH(bool, late);
    QFETCH(bool, zip);
    QFETCH(bool, ascending);
    QFETCH(bool, samples);
    QFETCH(QString, start);
    QFETCH(int, mailers);
    QFETCH(bool, lateBillingRun);
    QFETCH(int, stop);
    QFETCH(QStringList, bills);
    REBillRun run;
    run.look.frame = late ? BillingFrame::Late : BillingFrame::Early;
    run.look.zipOrder = zip;
    run.ascending = ascending;
    run.samples = samples;
    run.startBill = start;
    run.mailers = mailers;
    run.lateBillingRun = lateBillingRun;
    ReportSurface surface;
    SetUpBillSurface(surface);
    const REBillRunResult result = RunRETaxBills(m_db->db(), m_office, run, surface);
    surface.EndDoc();
    QCOMPARE(int(result.stop), stop);
    QCOMPARE(result.printed, bills.size());
    QCOMPARE(billsDrawn(surface.recording()), bills);
}

void TestRETaxBill::integrityStopKeepsPagesDrawn() {
    QVERIFY(BillFixture::addBrokenChain(*m_db));
    REBillRun run;
    run.ascending = true;
    run.mailers = 99;
    ReportSurface surface;
    SetUpBillSurface(surface);
    const REBillRunResult result = RunRETaxBills(m_db->db(), m_office, run, surface);
    surface.EndDoc();
    QCOMPARE(result.stop, REBillRunResult::Stop::IncompleteChain);
    QCOMPARE(result.bill.status, BillNow::Status::IncompleteAdjustment);
    QCOMPARE(billsDrawn(surface.recording()), (QStringList{"1", "2"}));

    // No body bills in the frame: nothing is drawn.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE Millfile SET BillSchool = 'E' WHERE Ward = '3'")));
    QVERIFY(REBillOffice::read(m_db->db(), &m_office));
    run.look.frame = BillingFrame::Late;
    ReportSurface other;
    QCOMPARE(RunRETaxBills(m_db->db(), m_office, run, other).stop, REBillRunResult::Stop::NoBodies);
    QVERIFY(other.recording().pages.empty());
}

void TestRETaxBill::cancelledBetweenBills() {
    REBillRun run;
    run.look.frame = BillingFrame::Late;
    run.ascending = true;
    run.mailers = 99;
    ReportSurface surface;
    QStringList asked;
    const REBillRunResult result =
        RunRETaxBills(m_db->db(), m_office, run, surface, [&](const QSqlRecord& bill, int printed) {
            asked << TextField(bill.value(QStringLiteral("BillNo"))).trimmed();
            return printed < 2;
        });
    surface.EndDoc();
    QCOMPARE(result.stop, REBillRunResult::Stop::Cancelled);
    QCOMPARE(result.printed, 2);
    QCOMPARE(asked, (QStringList{"1", "2", "3"}));
    QCOMPARE(billsDrawn(surface.recording()), (QStringList{"1", "2"}));
}

void TestRETaxBill::lateBillingTest_data() {
    QTest::addColumn<QString>("billNo");
    QTest::addColumn<QString>("setUp");
    QTest::addColumn<bool>("prints");
    AddRow("address never changed", QString("    1"), QString(), false);
    AddRow("added after billing", QString("A0001"), QString(), true);
    AddRow("changed before the cut-off", QString("    2"),
           QString("UPDATE TCAddress SET ADate = '2006-06-15'"), false);
    AddRow("another owner", QString("    2"),
           QString("UPDATE TCLateBillAddress SET Name = 'SOMEONE ELSE'"), false);
    AddRow("mailed to the new address already", QString("    2"),
           QString("UPDATE TCLateBillAddress SET Addr1 = 'PO BOX 9', Addr2 = ' APT 4', City = "
                   "'OAKTON', ZipCode = '19111 '"),
           false);
    AddRow("moved since", QString("    2"), QString(), true);
}

void TestRETaxBill::lateBillingTest() {
    QFETCH(QString, billNo);
    QFETCH(QString, setUp);
    QFETCH(bool, prints);
    if (!setUp.isEmpty())
        QVERIFY(m_db->exec(setUp));
    const BillNow bill = ReadBillAsItStands(m_db->db(), Duplicate::RealEstate, billNo);
    QVERIFY(bill.found());
    QCOMPARE(PassesLateBillingTest(m_db->db(), bill.bill), prints);
}

void TestRETaxBill::streamedPdfReadsBack() {
    if (!PrintReadback::haveTool("pdftotext") || !PrintReadback::haveTool("zbarimg"))
        QSKIP("poppler-utils and zbar-tools are needed");
    REBillRun run;
    run.look.frame = BillingFrame::Late;
    run.look.printAddress = true;
    run.ascending = true;
    run.mailers = 99;

    // The same run recorded, and streamed to a PDF holding one page at a time.
    ReportSurface recorded;
    SetUpBillSurface(recorded);
    QCOMPARE(RunRETaxBills(m_db->db(), m_office, run, recorded).printed, 4);
    recorded.EndDoc();
    const Recording& pages = recorded.recording();

    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("bills.pdf"));
    ReportSurface streamed;
    SetUpBillSurface(streamed);
    PrintJobStream job = PrintJobStream::toPdfFile(QStringLiteral("Bills"), streamed.format(), pdf);
    job.attach(streamed);
    int mostKept = 0;
    const REBillRunResult result =
        RunRETaxBills(m_db->db(), m_office, run, streamed, [&](const QSqlRecord&, int) {
            mostKept = std::max(mostKept, int(streamed.recording().pages.size()));
            return true;
        });
    streamed.EndDoc();
    QCOMPARE(result.printed, 4);
    QVERIFY(mostKept <= 1);
    QVERIFY(streamed.recording().pages.empty());
    const PrintResult sent = job.finish();
    QVERIFY2(sent.ok, qPrintable(sent.error));
    QCOMPARE(job.pages(), int(pages.pages.size()));
    QCOMPARE(sent.pdfPath, pdf);

    const QString text = PrintReadback::pdfText(pdf);
    for (const char* want :
         {"SCHOOL REAL ESTATE TAX NOTICE FOR TAX YEAR 2013", "JOHN Q OWNER", "HOLLOWAY MARGARET A",
          "NOTHING DUE", "ADDED LATER", "TAX COLLECTOR COPY", "PROPERTY TAX REDUCTION"})
        QVERIFY2(text.contains(QLatin1String(want)), want);
    // Every bar code of every page reads back as drawn.
    int scanned = 0;
    for (std::size_t p = 0; p < pages.pages.size(); ++p) {
        for (const PrintedBarcode* code : pages.pages[p].barcodes()) {
            if (code->symbology != QLatin1String("CODE39"))
                continue;
            const QStringList found = PrintReadback::scanArea(pdf, int(p) + 1, code->bounds);
            QVERIFY2(found.contains(QStringLiteral("CODE-39:") + code->payload),
                     qPrintable(code->payload + QStringLiteral(" read as ") + found.join(',')));
            ++scanned;
        }
    }
    QCOMPARE(scanned, 8);
}

void TestRETaxBill::handOverFillsTheForm() {
    // From May on the school bills are chosen (before May none is: bills_re_tax_bills.scn).
    Clock::setToday(QDate(2013, 5, 1));
    frmREPrintTaxBills* form = OpenREPrintTaxBillsFor(QStringLiteral("   42"), true);
    QVERIFY(form->optBillLate->isChecked());
    QCOMPARE(form->txtBillNo->text(), QStringLiteral("42"));
    QCOMPARE(form->txtNumberOfMailers->text(), QStringLiteral("1"));
    QVERIFY(form->chkPrintHomestead->isChecked());
    // The open form is used again, and the coupons' tick follows the bill.
    QCOMPARE(OpenREPrintTaxBillsFor(QStringLiteral("A0001"), false), form);
    QCOMPARE(form->txtBillNo->text(), QStringLiteral("A0001"));
    QVERIFY(!form->chkPrintHomestead->isChecked());
    delete form;
}

QTEST_MAIN(TestRETaxBill)
#include "test_re_tax_bill.moc"
