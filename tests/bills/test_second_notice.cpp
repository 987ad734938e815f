#include "bills/second_notice.h"
#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include "bills/bill_fixture.h"
#include "reports/print_readback.h"
#include "support/test_support.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

// The controls of the notices drawn, in order.
QStringList noticesDrawn(const Recording& r) {
    QStringList out;
    for (const RecordedPage& page : r.pages)
        for (const PrintedBarcode* code : page.barcodes())
            if (code->symbology == QLatin1String("CODE39"))
                out << code->payload.right(6);
    return out;
}

QString labelsOf(const std::vector<NoticeLine>& lines) {
    QStringList out;
    for (const NoticeLine& l : lines)
        out << l.label + QLatin1Char('=') + l.amount.format(u"0.00");
    return out.join(QLatin1Char(' '));
}

} // namespace

using namespace BillFixture;

class TestSecondNotice : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void countyNoticeAsExpected();
    void plainNoticeWithInstallments();
    void listedAmounts();
    void district39KeepsStreetLightsApart();
    void runs_data();
    void runs();
    void perCapitaRunFollowsNames();
    void streamedPdfReadsBack();

private:
    NoticeOffice office(Duplicate duplicate, const char* year = "2013");
    QSqlRecord bill(Duplicate duplicate, const char* billNo);
    std::unique_ptr<TempTaxDatabase> m_db;
};

void TestSecondNotice::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    QVERIFY(BillFixture::fill(*m_db));
    QVERIFY(BillFixture::fillPerCapita(*m_db));
    for (const char* sql :
         {"INSERT INTO tbl_Settings (Name, Value) VALUES ('TaxClaimBureauAddress', '2 Market "
          "Sq, Kestrel PA 17300')",
          "INSERT INTO tbl_Settings (Name, Value) VALUES ('TaxClaimBureauPhone', '(717) "
          "555-0186 ext 2')",
          "INSERT INTO tbl_Settings (Name, Value) VALUES ('AgingAgencyPhones', '(717) 555-0190 "
          "or (800) 555-0191')",
          "INSERT INTO tbl_Settings (Name, Value) VALUES ('CollectionAgent', 'Keystone "
          "Collections at (717) 555-0199')",
          "UPDATE Millfile SET TCPhone = '(717) 555-0100' WHERE District = '12'"})
        QVERIFY(m_db->exec(QString::fromLatin1(sql)));
    session().DatabasePath = m_db->path();
    Clock::setToday(QDate(2013, 11, 16));
}

void TestSecondNotice::cleanup() {
    Clock::setToday(std::nullopt);
    m_db.reset();
}

NoticeOffice TestSecondNotice::office(Duplicate duplicate, const char* year) {
    NoticeOffice o;
    if (NoticeOffice::read(m_db->db(), duplicate, QLatin1String(year), &o) !=
        NoticeOffice::Read::Ok)
        qFatal("no office for %s", year);
    return o;
}

QSqlRecord TestSecondNotice::bill(Duplicate duplicate, const char* billNo) {
    const BillNow b = ReadBillAsItStands(m_db->db(), duplicate, QLatin1String(billNo));
    if (!b.found())
        qFatal("bill %s not found", billNo);
    return b.bill;
}

void TestSecondNotice::countyNoticeAsExpected() {
    // Adjusted and moved: the amounts of the adjustment, the address of the change.
    NoticeLook look;
    look.frame = NoticeFrame::Both;
    ReportSurface surface;
    SetUpBillSurface(surface);
    DrawSecondNotice(surface, office(Duplicate::RealEstate), look,
                     bill(Duplicate::RealEstate, "    2"));
    surface.EndDoc();
    const Recording r = surface.takeRecording();
    QCOMPARE(r.pages.size(), std::size_t(1));
    QString diff;
    QVERIFY2(PrintReadback::matchesExpected(expectedPath("re_county_notice.txt"), r.dump(), &diff),
             qPrintable(diff));
    expectLines(r.textLines(), {"Total Amount Due: $818.84"});
    QCOMPARE(r.barcodePayloads(), QStringList{QStringLiteral("201312000002")});
    // The notice keeps within the sheet.
    for (const PrintedText* t : r.pages[0].texts()) {
        QVERIFY2(t->baseline() < r.format.scaleHeight(), qPrintable(t->text));
        QVERIFY2(t->x + 10 < r.format.scaleWidth(), qPrintable(t->text));
    }
}

void TestSecondNotice::plainNoticeWithInstallments() {
    // Bill 2 pays its school in installments, the first one paid.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE TCMaster SET SPayFlag = 'I', Pay1Flag = 'F', "
                                      "CPayFlag = 'D', TPayFlag = 'D' WHERE BillNo = '    2'")));
    NoticeLook look;
    look.form = NoticeForm::ARS;
    look.frame = NoticeFrame::Late;
    look.printAddress = true;
    ReportSurface surface;
    SetUpBillSurface(surface);
    DrawSecondNotice(surface, office(Duplicate::RealEstate), look,
                     bill(Duplicate::RealEstate, "    2"));
    surface.EndDoc();
    const Recording r = surface.takeRecording();
    QCOMPARE(r.pages.size(), std::size_t(2));
    QString diff;
    QVERIFY2(PrintReadback::matchesExpected(expectedPath("re_plain_notice.txt"), r.dump(), &diff),
             qPrintable(diff));
    const QStringList notice = r.pages[1].textLines();
    expectLines(notice, {"REAL ESTATE SECOND TAX NOTICE", "SCHOOL $359.33",
                         "INSTALLMENT #2  FACE $163.33  PENALTY $179.67",
                         "INSTALLMENT #3  FACE $163.33  PENALTY $179.67", "TOTAL DUE:",
                         "Ann Collector BY MAIL AT 12 Main St Maple PA 19000 OR BY TELEPHONE"});
    QCOMPARE(notice.filter(QStringLiteral("TOTAL DUE:")).value(0).simplified(),
             QStringLiteral("TOTAL DUE: $359.33"));
    // The county and township are paid and billed early anyway: not listed.
    QVERIFY(!joined(notice).contains(QLatin1String("COUNTY $")));
    QCOMPARE(r.barcodePayloads().last(), QStringLiteral("301312000002"));
}

void TestSecondNotice::listedAmounts() {
    const NoticeOffice re = office(Duplicate::RealEstate);
    // Early bodies only: the school is billed late.
    QCOMPARE(labelsOf(NoticeLines(re, re.bodies(NoticeFrame::Early), NoticeForm::County,
                                  bill(Duplicate::RealEstate, "    1"))),
             QStringLiteral("COUNTY=181.50 LIBRARY=8.25 TOWNSHIP=49.50 FIRE=16.50"));
    QCOMPARE(labelsOf(NoticeLines(re, re.bodies(NoticeFrame::Late), NoticeForm::County,
                                  bill(Duplicate::RealEstate, "    1"))),
             QStringLiteral("SCHOOL=660.00 SCH LIB=6.60"));
    // Nothing to pay lists nothing.
    QCOMPARE(labelsOf(NoticeLines(re, re.bodies(NoticeFrame::Both), NoticeForm::County,
                                  bill(Duplicate::RealEstate, "    3"))),
             QString());
    const NoticeOffice pc = office(Duplicate::PerCapita);
    QCOMPARE(labelsOf(NoticeLines(pc, pc.bodies(NoticeFrame::Both), NoticeForm::County,
                                  bill(Duplicate::PerCapita, "    2"))),
             QStringLiteral("TOWNSHIP OCC=6.60 TOWNSHIP P/C=5.50 SCHOOL P/C=5.50"));
    QCOMPARE(labelsOf(NoticeLines(pc, pc.bodies(NoticeFrame::Both), NoticeForm::County,
                                  bill(Duplicate::PerCapita, "    3"))),
             QStringLiteral("SCHOOL P/C=5.50"));
    QCOMPARE(NoticePayload(Duplicate::PerCapita, NoticeFrame::Both, QDate(2026, 11, 16),
                           QStringLiteral("12"), QStringLiteral("000102")),
             QStringLiteral("212612000102"));
}

void TestSecondNotice::district39KeepsStreetLightsApart() {
    for (const char* sql :
         {"UPDATE tbl_District SET District = '39'", "UPDATE tbl_Twpboro SET District = '39'",
          "UPDATE Millfile SET District = '39' WHERE District = '12'",
          "UPDATE Spectax SET District = '39'",
          "INSERT INTO Spectax (District, Ward, TaxKey, Desc1, Mill, TaxYear) VALUES ('39', '3', "
          "'HYD002', 'hydrant', 0.1, '2013')",
          "INSERT INTO Spectax (District, Ward, TaxKey, Desc1, Mill, TaxYear) VALUES ('39', '3', "
          "'STLT03', 'st lights', 0.2, '2013')",
          "UPDATE TCMaster SET S3Face = 60000, PS3Face = 66000, TPayFlag = 'D', TwpPaidFlag = ' ', "
          "StLtPaidFlag = ' ' WHERE BillNo = '    1'"})
        QVERIFY2(m_db->exec(QString::fromLatin1(sql)), sql);
    const NoticeOffice re = office(Duplicate::RealEstate);
    BilledBodies twp;
    twp.twp = true;
    // The township's own paid flag counts there, and the street lights have theirs.
    QCOMPARE(
        labelsOf(NoticeLines(re, twp, NoticeForm::County, bill(Duplicate::RealEstate, "    1"))),
        QStringLiteral("TOWNSHIP=49.50 FIRE=16.50 ST LIGHTS=6.60"));
    QVERIFY(m_db->exec(QStringLiteral(
        "UPDATE TCMaster SET TwpPaidFlag = 'D', StLtPaidFlag = 'D' WHERE BillNo = '    1'")));
    QCOMPARE(
        labelsOf(NoticeLines(re, twp, NoticeForm::County, bill(Duplicate::RealEstate, "    1"))),
        QString());
}

void TestSecondNotice::runs_data() {
    QTest::addColumn<int>("frame");
    QTest::addColumn<QString>("start");
    QTest::addColumn<int>("mailers");
    QTest::addColumn<QString>("setUp");
    QTest::addColumn<int>("stop");
    QTest::addColumn<QStringList>("notices");
    using S = BillRunResult::Stop;
    const int early = int(NoticeFrame::Early);
    const int late = int(NoticeFrame::Late);
    const int both = int(NoticeFrame::Both);
    AddRow("early, all", early, QString("    1"), 9999999, QString(), int(S::Finished),
           QStringList{"000001", "000002", "000901"});
    AddRow("from 2, one", both, QString("    2"), 1, QString(), int(S::Finished),
           QStringList{"000002"});
    // Paid in full: no notice; a school paid leaves the early bodies to list.
    AddRow("paid bills", both, QString("    1"), 9999999,
           QString("UPDATE TCMaster SET CPayFlag = 'D', TPayFlag = 'D', SPayFlag = 'F' WHERE "
                   "BillNo = '    1'"),
           int(S::Finished), QStringList{"000002", "000901"});
    AddRow("school paid, late", late, QString("    1"), 9999999,
           QString("UPDATE TCMaster SET SPayFlag = 'F' WHERE BillNo <> '    2'"), int(S::Finished),
           QStringList{"000002"});
    // Bill numbers from N on are never noticed.
    AddRow("N bills", early, QString("    1"), 9999999,
           QString("UPDATE TCMaster SET BillNo = 'N0001' WHERE BillNo = 'A0001'"), int(S::Finished),
           QStringList{"000001", "000002"});
    AddRow("past the last", early, QString("B0000"), 9999999, QString(), int(S::NoRows),
           QStringList{});
    AddRow("no early bodies", early, QString("    1"), 9999999,
           QString("UPDATE Millfile SET BillCounty = 'L', BillTwp = 'L' WHERE District = '12'"),
           int(S::NoBodies), QStringList{});
}

void TestSecondNotice::runs() {
    QFETCH(int, frame);
    QFETCH(QString, start);
    QFETCH(int, mailers);
    QFETCH(QString, setUp);
    QFETCH(int, stop);
    QFETCH(QStringList, notices);
    if (!setUp.isEmpty())
        QVERIFY(m_db->exec(setUp));
    NoticeRun run;
    run.look.frame = NoticeFrame(frame);
    run.startBill = start;
    run.mailers = mailers;
    ReportSurface surface;
    SetUpBillSurface(surface);
    const BillRunResult result =
        RunSecondNotices(m_db->db(), office(Duplicate::RealEstate), run, surface);
    surface.EndDoc();
    QCOMPARE(int(result.stop), stop);
    QCOMPARE(result.printed, notices.size());
    QCOMPARE(noticesDrawn(surface.recording()), notices);
    QCOMPARE(int(surface.recording().pages.size()), int(notices.size()));
}

void TestSecondNotice::perCapitaRunFollowsNames() {
    const NoticeOffice pc = office(Duplicate::PerCapita);
    auto run = [&](const char* start, NoticeFrame frame, BillRunResult::Stop want) {
        NoticeRun r;
        r.look.frame = frame;
        r.startBill = QLatin1String(start);
        ReportSurface surface;
        SetUpBillSurface(surface);
        const BillRunResult result = RunSecondNotices(m_db->db(), pc, r, surface);
        surface.EndDoc();
        if (result.stop != want)
            qWarning("stop %d, wanted %d", int(result.stop), int(want));
        return result.stop == want ? noticesDrawn(surface.recording()) : QStringList{"?"};
    };
    // From bill 1 the walk starts at the first name: ADAMS has nothing to pay; BROWN, CARTER,
    // DOE, SMITH.
    QCOMPARE(run("    1", NoticeFrame::Both, BillRunResult::Stop::Finished),
             (QStringList{"000103", "000901", "000101", "000102"}));
    // From bill 2's name, SMITH ROBERT, on.
    QCOMPARE(run("    2", NoticeFrame::Both, BillRunResult::Stop::Finished), QStringList{"000102"});
    // Early bodies only: bill 3 has its township paid and the county takes nothing.
    QCOMPARE(run("    3", NoticeFrame::Early, BillRunResult::Stop::Finished),
             (QStringList{"000901", "000101", "000102"}));
}

void TestSecondNotice::streamedPdfReadsBack() {
    if (!PrintReadback::haveTool("pdftotext") || !PrintReadback::haveTool("zbarimg"))
        QSKIP("poppler-utils and zbar-tools are needed");
    NoticeRun run;
    run.look.frame = NoticeFrame::Both;
    run.look.printAddress = true;
    run.startBill = QStringLiteral("    1");
    const NoticeOffice pc = office(Duplicate::PerCapita);
    ReportSurface recorded;
    SetUpBillSurface(recorded);
    QCOMPARE(RunSecondNotices(m_db->db(), pc, run, recorded).printed, 4);
    recorded.EndDoc();
    const Recording& pages = recorded.recording();
    QCOMPARE(pages.pages.size(), std::size_t(8));

    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("notices.pdf"));
    ReportSurface streamed;
    SetUpBillSurface(streamed);
    PrintJobStream job =
        PrintJobStream::toPdfFile(QStringLiteral("Notices"), streamed.format(), pdf);
    job.attach(streamed);
    QCOMPARE(RunSecondNotices(m_db->db(), pc, run, streamed).printed, 4);
    streamed.EndDoc();
    const PrintResult sent = job.finish();
    QVERIFY2(sent.ok, qPrintable(sent.error));
    const QString text = PrintReadback::pdfText(pdf);
    for (const char* want :
         {"OFFICIAL PER CAPITA SECOND TAX NOTICE", "NOTICE OF DELINQUENTS", "MR ROBERT J SMITH JR",
          "TOWNSHIP OCC", "SCHOOL P/C", "bounced checks"})
        QVERIFY2(text.contains(QLatin1String(want)), want);
    int scanned = 0;
    for (std::size_t p = 0; p < pages.pages.size(); ++p) {
        for (const PrintedBarcode* code : pages.pages[p].barcodes()) {
            if (code->symbology != QLatin1String("CODE39"))
                continue;
            const QStringList found = PrintReadback::scanArea(pdf, int(p) + 1, code->bounds);
            QVERIFY2(found.contains(QStringLiteral("CODE-39:") + code->payload),
                     qPrintable(code->payload + QStringLiteral(" read as ") + found.join(',')));
            QVERIFY(code->payload.startsWith(QLatin1String("211312")));
            ++scanned;
        }
    }
    QCOMPARE(scanned, 4);
}

QTEST_MAIN(TestSecondNotice)
#include "test_second_notice.moc"
