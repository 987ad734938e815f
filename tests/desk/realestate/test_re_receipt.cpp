#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/re_receipt.h"
#include "reports/print_capture.h"

#include "reports/print_readback.h"
#include "reports/receipt_fixture.h"
#include "support/test_support.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QSqlField>
#include <QTest>

namespace {

QString expectedPath(const char* name) {
    return QDir(QStringLiteral(LEVYDESK_TEST_DIR))
        .filePath(QStringLiteral("expected/") + QString::fromLatin1(name));
}

QSqlRecord flags(const QString& s, const QString& p1, const QString& p2, const QString& p3) {
    QSqlRecord r;
    const QStringList values{
        QStringLiteral("2013-11-04"), QStringLiteral(" "), QStringLiteral(" "), s, p1, p2, p3};
    int i = 0;
    for (const char* n :
         {"RDate", "CPayFlag", "TPayFlag", "SPayFlag", "Pay1Flag", "Pay2Flag", "Pay3Flag"}) {
        r.append(QSqlField(QString::fromLatin1(n), QMetaType(QMetaType::QString)));
        r.setValue(i, values[i]);
        ++i;
    }
    return r;
}

// A payment screen's fields, as the receipt reads them by name.
QWidget* paymentScreen(QWidget* parent = nullptr) {
    auto* screen = new QWidget(parent);
    screen->setObjectName(QStringLiteral("frmREReceivePayment"));
    const QString fields =
        "txtPayor=JOHN Q PAYOR|txtPAddr1=|txtPAddr2=APT 4|txtPCity=ALDERBROOK   |"
        "txtPZipCode=17001|txtPZipCode2=|txtChecknum=CASH|txtName=NEW OWNER LLC|"
        "txtCoOwner=|txtAddr1=PO BOX 9|txtAddr2=|txtCity=YORK|txtZipCode=17401|"
        "txtZipCode2=0009|txtControl=004512|txtMap3=07-002|txtMap4=014|txtMap5=0031.000|"
        "txtDesc1=LOT 31|txtDesc2=|txtDesc3=|txtAssLand=12,500|txtAssImpr=48,300";
    for (const QString& field : fields.split(u'|')) {
        auto* edit = new QLineEdit(field.section(u'=', 1), screen);
        edit->setObjectName(field.section(u'=', 0, 0));
    }
    for (const char* name : {"cboPState", "cboState"}) {
        auto* box = new QComboBox(screen);
        box->setObjectName(QString::fromLatin1(name));
        box->addItem(QStringLiteral("PA"));
    }
    return screen;
}

} // namespace

class TestREReceipt : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void receiptAsExpected();
    void rowsFollowTheFlags();
    void installmentWording_data();
    void installmentWording();
    void printsFromTheCallingScreen();
    void readsBackFromThePdf();
    void noReceiptPrinter();
    void copiesQuestionBeforePrinting();

private:
    Recording draw(const QString& recnum, bool duplicate, int copies = 1);
    std::unique_ptr<TempTaxDatabase> m_db;
};

void TestREReceipt::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    QVERIFY(ReceiptFixture::fill(*m_db));
    session().DatabasePath = m_db->path();
    Clock::setToday(QDate(2013, 9, 16));
    PrintCapture::setEnabled(true);
}

void TestREReceipt::cleanup() {
    PrintCapture::setEnabled(false);
    Clock::setToday(std::nullopt);
    m_db.reset();
}

Recording TestREReceipt::draw(const QString& recnum, bool duplicate, int copies) {
    REReceiptData data;
    QString error;
    if (!LoadREReceipt(m_db->db(), recnum, &data, &error))
        qFatal("%s", qPrintable(error));
    const BillNow bill = ReadBillAsItStands(m_db->db(), Duplicate::RealEstate, data.billNo);
    const ReceiptScreenText fields = ReceiptScreenText::fromRows(data.receipt, bill.bill);
    ReportSurface surface(PageFormat{PaperSize::Letter, PageOrientation::Portrait});
    for (int i = 0; i < copies; ++i) {
        DrawREReceipt(surface, data, fields, duplicate);
        surface.NewPage();
    }
    surface.EndDoc();
    return surface.takeRecording();
}

void TestREReceipt::receiptAsExpected() {
    const Recording r = draw(ReceiptFixture::FullRecnum, false);
    QCOMPARE(r.pages.size(), std::size_t(1));
    // The dump holds every text, line, box and bar code at its position.
    QString diff;
    QVERIFY2(PrintReadback::matchesExpected(expectedPath("re_receipt.txt"), r.dump(), &diff),
             qPrintable(diff));
}

void TestREReceipt::rowsFollowTheFlags() {
    const QStringList lines = draw(ReceiptFixture::CountyRecnum, false).textLines();
    QVERIFY(lines.contains(QStringLiteral("2013 COUNTY 3.750 $228.00 $22.80 $250.80")));
    QVERIFY(lines.contains(QStringLiteral("2013 LIBRARY")));
    const QString all = lines.join(QLatin1Char('\n'));
    QVERIFY(!all.contains(QLatin1String("2013 TOWNSHIP")));
    QVERIFY(!all.contains(QLatin1String("2013 SCHOOL")));
    QVERIFY(!all.contains(QLatin1String("FIRE TAX")));
    QVERIFY(lines.contains(
        QStringLiteral("Your payment was credited on 11/02/13. (County paid at Penalty. )")));
    QVERIFY(!all.contains(QLatin1String("Installment")));

    // Without a library millage the county row stands alone; a borough says so.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE Millfile SET LMR = 0 WHERE District = '07'")));
    QVERIFY(m_db->exec(QStringLiteral("UPDATE tbl_Twpboro SET BTFlag = 'B'")));
    QVERIFY(m_db->exec(QStringLiteral("UPDATE TCReceipt SET TPayFlag = 'F', Twp = 1064000 WHERE "
                                      "Recnum = '201311020012'")));
    const QStringList borough = draw(ReceiptFixture::CountyRecnum, false).textLines();
    QVERIFY(!borough.contains(QStringLiteral("2013 LIBRARY")));
    QVERIFY(borough.contains(QStringLiteral("2013 COUNTY 3.500 $228.00 $22.80 $250.80")));
    QVERIFY(borough.contains(QStringLiteral("2013 BOROUGH 1.750 $106.40 $106.40")));
    QVERIFY(borough.join(QLatin1Char(' '))
                .contains(QLatin1String("(County paid at Penalty. Borough paid at Face. )")));
}

void TestREReceipt::installmentWording_data() {
    QTest::addColumn<QString>("p1");
    QTest::addColumn<QString>("p2");
    QTest::addColumn<QString>("p3");
    QTest::addColumn<QString>("sentence");
    AddRow("first at face", "F", " ", " ",
           "Installment payments received. (Payment #1 paid at Face. )");
    // The second's penalty wording follows the third flag.
    AddRow("second at penalty, third unpaid", " ", "P", " ", "Installment payments received. ()");
    AddRow("second unpaid, third at penalty", " ", " ", "P",
           "Installment payments received. (Payment #2 paid at Penalty. Payment #3 paid at "
           "Penalty. )");
    AddRow("all three", "F", "F", "F",
           "Installment payments received. (Payment #1 paid at Face. Payment #2 paid at Face. "
           "Payment #3 paid at Face. )");
}

void TestREReceipt::installmentWording() {
    QFETCH(QString, p1);
    QFETCH(QString, p2);
    QFETCH(QString, p3);
    QFETCH(QString, sentence);
    const QStringList sentences =
        ReceiptCreditSentences(flags(QStringLiteral("I"), p1, p2, p3), QStringLiteral("T"));
    QCOMPARE(sentences.size(), 2);
    QCOMPARE(sentences.at(1), sentence);
    // Not paying in installments: no second sentence.
    QCOMPARE(ReceiptCreditSentences(flags(QStringLiteral("F"), p1, p2, p3), QStringLiteral("T")),
             QStringList{
                 QStringLiteral("Your payment was credited on 11/04/13. (School paid at Face. )")});
}

void TestREReceipt::printsFromTheCallingScreen() {
    std::unique_ptr<QWidget> screen(paymentScreen());
    MessageScript script;
    script.answer(MsgAnswer::Ok, QStringLiteral("2"));
    QCOMPARE(AskAndPrintREReceipt(screen.get(), ReceiptFixture::FullRecnum, m_db->db()),
             ReceiptPrintOutcome::Printed);
    QCOMPARE(session().ReceiptCopies, 2);
    QCOMPARE(session().ReceiptCopiesText, QStringLiteral("2"));
    // One job, a page a copy.
    QCOMPARE(PrintCapture::jobCount(), 1);
    const Recording* job = PrintCapture::lastJob();
    QCOMPARE(job->pages.size(), std::size_t(2));
    QCOMPARE(PrintCapture::lastJobBarcodes(),
             (QStringList{QStringLiteral("40201309150007"), QStringLiteral("40201309150007")}));
    const QString printed = PrintCapture::lastJobLines().join(QLatin1Char('\n'));
    // The screen's payor, owner and parcel: an empty first address line leaves no gap.
    for (const char* wanted : {"Payor: JOHN Q PAYOR Receipt #:", "APT 4 Payment For Tax Year 2013",
                               "ALDERBROOK, PA. 17001 DATE:", "Owner: NEW OWNER LLC",
                               "YORK, PA. 17401-0009", "Total: 60,800"})
        QVERIFY2(PrintCapture::lastJobPrinted(QString::fromLatin1(wanted)), qPrintable(printed));
    QVERIFY(!PrintCapture::lastJobPrinted(QStringLiteral("DUPLICATE RECEIPT")));
    QVERIFY(PrintCapture::lastJobPdf().endsWith(QLatin1String(".pdf")));
    QCOMPARE(script.texts(), QStringList{QStringLiteral("Enter the number of receipts to print:")});

    // The two blocks keep their heights whatever lines they leave out.
    auto ownerY = [](const RecordedPage& page) {
        for (const PrintedText* p : page.texts())
            if (p->text == QLatin1String("Owner:"))
                return p->y;
        return -1.0;
    };
    QCOMPARE(ownerY(job->pages[0]), ownerY(draw(ReceiptFixture::FullRecnum, false).pages[0]));
}

void TestREReceipt::readsBackFromThePdf() {
    if (!PrintReadback::haveTool("pdftotext") || !PrintReadback::haveTool("zbarimg") ||
        !PrintReadback::haveTool("pdftoppm"))
        QSKIP("poppler-utils and zbar-tools are needed to read the PDF back");
    REReceiptRequest request;
    request.recnum = ReceiptFixture::FullRecnum;
    request.copies = 2;
    request.duplicate = true;
    QCOMPARE(PrintREReceipt(m_db->db(), request), ReceiptPrintOutcome::Printed);
    const QString pdf = PrintCapture::lastJobPdf();
    QVERIFY(QFileInfo::exists(pdf));
    for (int page = 1; page <= 2; ++page) {
        QString text = PrintReadback::pdfText(pdf, page);
        text.replace(QRegularExpression(QStringLiteral("[ \\t]+")), QStringLiteral(" "));
        for (const char* wanted :
             {"ALDER TOWNSHIP Tax Collector", "Receipt #: 2013-09-15-0007",
              "REAL ESTATE TAX PAYMENT - TAX YEAR 2013", "2013 SCHOOL 25.300 $1,538.24 $1,538.24",
              "DUPLICATE RECEIPT", "Thank you for your payment!"})
            QVERIFY2(text.contains(QLatin1String(wanted)), qPrintable(text));
        // Every bar code on every page reads back as its payload.
        const auto codes = PrintCapture::lastJob()->pages[page - 1].barcodes();
        QCOMPARE(codes.size(), std::size_t(1));
        QCOMPARE(PrintReadback::scanArea(pdf, page, codes[0]->bounds),
                 QStringList{QStringLiteral("CODE-39:40201309150007")});
        QCOMPARE(PrintReadback::scanPage(pdf, page),
                 QStringList{QStringLiteral("CODE-39:40201309150007")});
    }
}

void TestREReceipt::noReceiptPrinter() {
    QVERIFY(m_db->exec(QStringLiteral("DELETE FROM tbl_Printers WHERE PrinterType = 'Receipt'")));
    MessageScript script;
    REReceiptRequest request;
    request.recnum = ReceiptFixture::FullRecnum;
    QCOMPARE(PrintREReceipt(m_db->db(), request), ReceiptPrintOutcome::NoPrinter);
    QCOMPARE(script.texts(),
             QStringList{QStringLiteral("There is currently no receipt printer assigned.")});
    QCOMPARE(script.titles(), QStringList{QStringLiteral("Printer Error")});
    QCOMPARE(PrintCapture::jobCount(), 0);

    // A receipt number that is not there prints nothing either.
    QVERIFY(m_db->exec(
        QStringLiteral("INSERT INTO tbl_Printers (PrinterType, DeviceName) VALUES ('Receipt', "
                       "'PDF')")));
    request.recnum = QStringLiteral("209901010001");
    QCOMPARE(PrintREReceipt(m_db->db(), request), ReceiptPrintOutcome::Failed);
    QCOMPARE(script.texts().last(), QStringLiteral("Receipt Number Not On File"));
    QCOMPARE(PrintCapture::jobCount(), 0);
}

void TestREReceipt::copiesQuestionBeforePrinting() {
    // No copies asked for prints nothing. (A cancelled question: desk_county_then_rest.scn.)
    std::unique_ptr<QWidget> screen(paymentScreen());
    MessageScript script;
    script.answer(MsgAnswer::Ok, QStringLiteral("0"));
    QCOMPARE(AskAndPrintREReceipt(screen.get(), ReceiptFixture::FullRecnum, m_db->db()),
             ReceiptPrintOutcome::NoCopies);
    QCOMPARE(script.texts().size(), 1);
    QCOMPARE(PrintCapture::jobCount(), 0);
}

QTEST_MAIN(TestREReceipt)
#include "test_re_receipt.moc"
