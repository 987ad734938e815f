#include "core/clock.h"
#include "core/session.h"
#include "desk/realestate/reprint_receipt.h"
#include "reports/print_capture.h"
#include "reports/print_output.h"
#include "reports/select_printer.h"

#include "reports/receipt_fixture.h"
#include "support/test_support.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

void leave(QWidget* field) {
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QCoreApplication::sendEvent(field, &out);
}

} // namespace

class TestPrintScreens : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void reprintFindsTheReceipt();
    void reprintShowsTheBillAsItStands();
    void reprintPrintsADuplicate();
    void reprintPrintScreen();
    void selectPrinterPreselects();

private:
    std::unique_ptr<TempTaxDatabase> m_db;
};

void TestPrintScreens::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    QVERIFY(ReceiptFixture::fill(*m_db));
    QVERIFY(OpenSessionDatabase(m_db->path()));
    Clock::setToday(QDate(2013, 11, 4));
    PrintCapture::setEnabled(true);
}

void TestPrintScreens::cleanup() {
    PrintCapture::setEnabled(false);
    Clock::setToday(std::nullopt);
    CloseSessionDatabase();
    m_db.reset();
}

void TestPrintScreens::reprintFindsTheReceipt() {
    frmREReprintReceipt screen;
    MessageScript script;
    screen.txtRecnum->setText(QStringLiteral("201309159999"));
    leave(screen.txtRecnum);
    QCOMPARE(script.texts(), QStringList{QStringLiteral("Receipt Number Not On File")});
    QCOMPARE(script.titles(), QStringList{QStringLiteral("Void Receipt")});
    QVERIFY(screen.shownRecnum().isEmpty());
    // Print on a number that was refused does not complain twice, and prints nothing.
    QTest::mouseClick(screen.cmdPrint, Qt::LeftButton);
    QCOMPARE(script.texts().size(), 1);
    QCOMPARE(PrintCapture::jobCount(), 0);

    screen.txtRecnum->setText(ReceiptFixture::InstallmentRecnum);
    leave(screen.txtRecnum);
    QCOMPARE(script.texts().size(), 1);
    QCOMPARE(screen.shownRecnum(), ReceiptFixture::InstallmentRecnum);
    QCOMPARE(screen.txtBillNo->text(), QStringLiteral("   42"));
    QCOMPARE(screen.lblSPeriod->text(), QStringLiteral("INSTALLMENTS"));
    QVERIFY(!screen.fraInstallments->isHidden());
    QCOMPARE(screen.txtPayment2->text(), QStringLiteral("$512.75"));
    QCOMPARE(screen.txtInstDFP3->text(), QStringLiteral("P"));
    // The installment's penalty is money taken for the school.
    QCOMPARE(screen.txtSchool->text(), QStringLiteral("$1,076.76"));
    QCOMPARE(screen.txtAmount->text(), QStringLiteral("$1,076.76"));

    // Another receipt replaces everything shown.
    screen.txtRecnum->setText(ReceiptFixture::FullRecnum);
    leave(screen.txtRecnum);
    QVERIFY(screen.fraInstallments->isHidden());
    QCOMPARE(screen.txtPayment3->text(), QString());
    QCOMPARE(screen.txtCounty->text(), QStringLiteral("$208.54"));
    QCOMPARE(screen.txtCTotal->text(), QStringLiteral("$223.44"));
    QCOMPARE(screen.txtTotal->text(), QStringLiteral("$1,926.14"));

    // A borough reads "Boro:".
    QVERIFY(m_db->exec(QStringLiteral("UPDATE tbl_Twpboro SET BTFlag = 'B'")));
    screen.txtRecnum->setText(ReceiptFixture::CountyRecnum);
    leave(screen.txtRecnum);
    QCOMPARE(screen.lblTwp->text(), QStringLiteral("Boro:"));
    QCOMPARE(script.service().unanswered, 0);
}

void TestPrintScreens::reprintShowsTheBillAsItStands() {
    QVERIFY(m_db->exec(QStringLiteral("UPDATE TCMaster SET CAddrFlag = 'A'")));
    QVERIFY(m_db->exec(QStringLiteral(
        "INSERT INTO TCAddress (Control, BillNo, AddrID, Name, Addr1, City, State, ZipCode) "
        "VALUES ('004512', '   42', 1, 'HOLLOWAY MARGARET A', '9 NEW ST', 'YORK', 'PA', "
        "'17401')")));
    frmREReprintReceipt screen;
    MessageScript script;
    screen.txtRecnum->setText(ReceiptFixture::FullRecnum);
    leave(screen.txtRecnum);
    QCOMPARE(screen.txtAddr1->text(), QStringLiteral("9 NEW ST"));
    QCOMPARE(screen.txtCity->text(), QStringLiteral("YORK"));
    script.answer(MsgAnswer::Ok, QStringLiteral("1"));
    QTest::mouseClick(screen.cmdPrint, Qt::LeftButton);
    QVERIFY(PrintCapture::lastJobPrinted(QStringLiteral("9 NEW ST")));
    QVERIFY(PrintCapture::lastJobPrinted(QStringLiteral("YORK, PA. 17401")));

    // A half-finished adjustment stops the screen with the integrity message.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE TCMaster SET AdjFlag = 'A'")));
    screen.txtRecnum->setText(ReceiptFixture::CountyRecnum);
    leave(screen.txtRecnum);
    QCOMPARE(script.titles().last(), QStringLiteral("Database Integrity Error"));
    QVERIFY(screen.shownRecnum().isEmpty());
    QCOMPARE(screen.txtPayor->text(), QString());
}

void TestPrintScreens::reprintPrintsADuplicate() {
    frmREReprintReceipt screen;
    MessageScript script;
    // Typed and printed at once: the number is looked up first.
    screen.txtRecnum->setText(ReceiptFixture::InstallmentRecnum);
    script.answer(MsgAnswer::Ok, QStringLiteral("2"));
    script.answer(MsgAnswer::Ok);
    QTest::mouseClick(screen.cmdPrint, Qt::LeftButton);
    QCOMPARE(script.texts(), (QStringList{QStringLiteral("Enter the number of receipts to print:"),
                                          QStringLiteral("Receipt Printed")}));
    QCOMPARE(script.titles().last(), QStringLiteral("Reprint Receipt"));
    QCOMPARE(PrintCapture::jobCount(), 1);
    QCOMPARE(PrintCapture::lastJob()->pages.size(), std::size_t(2));
    QVERIFY(PrintCapture::lastJobPrinted(QStringLiteral("DATE: 11/04/2013")));

    // Cancelled: no job and no "Receipt Printed".
    script.answer(MsgAnswer::Cancel);
    script.answer(MsgAnswer::Yes);
    QTest::mouseClick(screen.cmdPrint, Qt::LeftButton);
    QCOMPARE(script.texts().last(), QStringLiteral("Receipt NOT printed."));
    QCOMPARE(PrintCapture::jobCount(), 1);

    // An empty number: nothing to print.
    screen.txtRecnum->clear();
    QTest::mouseClick(screen.cmdPrint, Qt::LeftButton);
    QCOMPARE(script.texts().last(), QStringLiteral("Receipt Number Not On File"));
    QCOMPARE(script.service().unanswered, 0);
}

void TestPrintScreens::reprintPrintScreen() {
    frmREReprintReceipt screen;
    screen.resize(900, 600);
    MessageScript script;
    QTest::mouseClick(screen.cmdPrintScreen, Qt::LeftButton);
    QCOMPARE(script.texts(),
             QStringList{QStringLiteral("There is currently no LETTER size printer assigned.")});
    QCOMPARE(PrintCapture::jobCount(), 0);

    QVERIFY(m_db->exec(QStringLiteral(
        "INSERT INTO tbl_Printers (PrinterType, DeviceName) VALUES ('TVLetter', 'PDF')")));
    QTest::mouseClick(screen.cmdPrintScreen, Qt::LeftButton);
    QCOMPARE(PrintCapture::jobCount(), 1);
    const RecordedPage& page = PrintCapture::lastJob()->pages.at(0);
    QCOMPARE(page.items.size(), std::size_t(1));
    const auto& image = std::get<PrintedImage>(page.items[0]);
    QCOMPARE(image.image.size(), screen.size() * screen.devicePixelRatio());
    QVERIFY(image.rect.width() <= PrintCapture::lastJob()->format.scaleWidth());
}

void TestPrintScreens::selectPrinterPreselects() {
    QVERIFY(m_db->exec(QStringLiteral("UPDATE tbl_Printers SET DeviceName = 'Gone Printer' WHERE "
                                      "PrinterType = 'Receipt'")));
    frmSelectPrinter screen;
    QCOMPARE(screen.windowTitle(), QStringLiteral("Select Printer"));
    QVERIFY(!screen.cboLetter->isEditable());
    QCOMPARE(screen.cboLetter->itemText(screen.cboLetter->count() - 1), QStringLiteral("PDF"));
    QCOMPARE(screen.cboLetter->currentText(), QStringLiteral("PDF"));
    // A saved printer the machine no longer has is not offered.
    QCOMPARE(screen.cboReceipt->currentIndex(), -1);
}

QTEST_MAIN(TestPrintScreens)
#include "test_print_screens.moc"
