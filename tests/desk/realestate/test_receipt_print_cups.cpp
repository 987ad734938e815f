// One real print job: a receipt through CUPS to a cups-pdf queue. It needs root (to start the
// scheduler and add a queue) and the cups and printer-driver-cups-pdf packages; without them
// it is skipped.

#include "core/clock.h"
#include "core/session.h"
#include "desk/realestate/re_receipt.h"
#include "reports/print_capture.h"
#include "reports/print_output.h"

#include "reports/print_readback.h"
#include "reports/receipt_fixture.h"
#include "support/test_support.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPrinterInfo>
#include <QProcess>
#include <QSet>
#include <QTest>
#include <unistd.h>

namespace {

const QString Queue = QStringLiteral("LevyDeskCupsPdf");

// The print system's tools answer in the machine's language; the tests run under German.
QString runCups(const QString& program, const QStringList& arguments, int* exitCode = nullptr) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    env.insert(QStringLiteral("LANG"), QStringLiteral("C"));
    p.setProcessEnvironment(env);
    p.start(program, arguments);
    p.waitForFinished(60000);
    if (exitCode)
        *exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    return QString::fromUtf8(p.readAllStandardOutput());
}

bool schedulerRunning() {
    return runCups(QStringLiteral("lpstat"), {QStringLiteral("-r")})
        .contains(QLatin1String("scheduler is running"));
}

// Where cups-pdf leaves its files: the submitting user's PDF folder, or the spool.
QSet<QString> cupsPdfFiles() {
    QSet<QString> files;
    for (const QString& folder :
         {QDir::homePath() + QStringLiteral("/PDF"), QStringLiteral("/root/PDF"),
          QStringLiteral("/var/spool/cups-pdf")}) {
        QDirIterator it(folder, {QStringLiteral("*.pdf")}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext())
            files.insert(it.next());
    }
    return files;
}

} // namespace

class TestPrintCups : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void receiptComesOutOfTheQueue();

private:
    QProcess m_cupsd;
    bool m_startedScheduler = false;
    bool m_addedQueue = false;
};

void TestPrintCups::initTestCase() {
    if (geteuid() != 0)
        QSKIP("starting the print scheduler needs root");
    if (!QFileInfo::exists(QStringLiteral("/usr/sbin/cupsd")) ||
        !QFileInfo::exists(QStringLiteral("/usr/lib/cups/backend/cups-pdf")) ||
        !PrintReadback::haveTool("lpadmin"))
        QSKIP("cups and printer-driver-cups-pdf are not installed");
    if (!schedulerRunning()) {
        QDir().mkpath(QStringLiteral("/run/cups"));
        m_cupsd.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_cupsd.start(QStringLiteral("/usr/sbin/cupsd"), {QStringLiteral("-f")});
        if (!m_cupsd.waitForStarted(10000))
            QSKIP("the print scheduler cannot be started");
        m_startedScheduler = true;
        QElapsedTimer waited;
        waited.start();
        while (!schedulerRunning() && waited.elapsed() < 20000)
            QTest::qWait(200);
        if (!schedulerRunning())
            QSKIP("the print scheduler did not come up");
    }
    int exitCode = -1;
    runCups(QStringLiteral("lpadmin"),
            {QStringLiteral("-p"), Queue, QStringLiteral("-v"), QStringLiteral("cups-pdf:/"),
             QStringLiteral("-m"), QStringLiteral("lsb/usr/cups-pdf/CUPS-PDF_opt.ppd"),
             QStringLiteral("-E")},
            &exitCode);
    QCOMPARE(exitCode, 0);
    m_addedQueue = true;
}

void TestPrintCups::cleanupTestCase() {
    if (m_addedQueue)
        runCups(QStringLiteral("lpadmin"), {QStringLiteral("-x"), Queue});
    if (m_startedScheduler) {
        m_cupsd.terminate();
        if (!m_cupsd.waitForFinished(10000))
            m_cupsd.kill();
    }
}

void TestPrintCups::receiptComesOutOfTheQueue() {
    // The machine's printers are offered with "PDF" behind them.
    QTRY_VERIFY_WITH_TIMEOUT(QPrinterInfo::availablePrinterNames().contains(Queue), 10000);
    QVERIFY(AvailablePrinterNames().contains(Queue));
    QCOMPARE(AvailablePrinterNames().last(), QStringLiteral("PDF"));

    TempTaxDatabase db;
    QVERIFY(ReceiptFixture::fill(db));
    QVERIFY(db.exec(QStringLiteral("UPDATE tbl_Printers SET DeviceName = '%1' WHERE PrinterType "
                                   "= 'Receipt'")
                        .arg(Queue)));
    session().DatabasePath = db.path();
    Clock::setToday(QDate(2013, 9, 16));
    PrintCapture::setEnabled(false);

    const QSet<QString> before = cupsPdfFiles();
    REReceiptRequest request;
    request.recnum = ReceiptFixture::FullRecnum;
    MessageScript script;
    QCOMPARE(PrintREReceipt(db.db(), request), ReceiptPrintOutcome::Printed);
    QVERIFY(script.texts().isEmpty());
    // Nothing went to Printouts/: the job went to the queue.
    QVERIFY(!QDir(db.folder() + QStringLiteral("/Printouts")).exists() ||
            QDir(db.folder() + QStringLiteral("/Printouts")).isEmpty());

    QString produced;
    QElapsedTimer waited;
    waited.start();
    while (produced.isEmpty() && waited.elapsed() < 60000) {
        const QSet<QString> now = cupsPdfFiles() - before;
        for (const QString& file : now)
            if (QFileInfo(file).size() > 0)
                produced = file;
        if (produced.isEmpty())
            QTest::qWait(250);
    }
    QVERIFY2(!produced.isEmpty(), "no PDF came out of the cups-pdf queue within a minute");
    QTest::qWait(500); // let the backend finish writing
    QFile file(produced);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.read(5).startsWith("%PDF"));
    file.close();
    // The bars survive the trip through the print system and still scan.
    if (PrintReadback::haveTool("zbarimg") && PrintReadback::haveTool("pdftoppm"))
        QCOMPARE(PrintReadback::scanPage(produced, 1),
                 QStringList{QStringLiteral("CODE-39:40201309150007")});
    QFile::remove(produced);
    Clock::setToday(std::nullopt);
}

QTEST_MAIN(TestPrintCups)
#include "test_receipt_print_cups.moc"
