// The mortgage company screen's run as the collector meets it: the diskette question, the file
// chooser, the unreadable file, the exception list on the Letter printer, "Update Complete".
// Its menu item is hidden, so the screen is driven here rather than from a scenario.
#include "desk/realestate/mortgage_companies.h"
#include "support/test_support.h"

#include "core/clock.h"
#include "core/session.h"
#include "desk/realestate/mortgage_update.h"
#include "reports/print_capture.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

QString rows(const QString& sql) {
    QSqlQuery q(session().DbConnection);
    if (!q.exec(sql))
        return QStringLiteral("ERROR ") + sql;
    QStringList out;
    while (q.next()) {
        QStringList cells;
        for (int i = 0; i < q.record().count(); ++i)
            cells << q.value(i).toString();
        out << cells.join(u'|');
    }
    return out.join(u';');
}

const QString Ask = QString::fromLatin1(MortgageQuestionTitle);
const QString Update = QString::fromLatin1(MortgageUpdateTitle);

} // namespace

class TestMortgageScreen : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void cancelled_data();
    void cancelled();
    void unreadableFile_data();
    void unreadableFile();
    void noLetterPrinter();
    void postsAndLists();

private:
    // Queues the answers of a run that gets as far as the file and runs the screen.
    void runWithFile(const QString& fileName);
    QString writeFile(const QString& name, const QByteArray& bytes);

    std::unique_ptr<TempTaxDatabase> m_db;
    std::unique_ptr<MessageScript> m_boxes;
};

// Bills 1, 2 and 3 with county 98/100/110, library 9.80/10/11, township 49/50/55 and a special
// 19.60/20/22: the two bodies total 176.40 at discount, 180.00 at face, 198.00 at penalty.
// Bill 3 is exonerated.
void TestMortgageScreen::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    QVERIFY(m_db->exec("INSERT INTO tbl_Printers (PrinterType, DeviceName) VALUES ('Letter', "
                       "'PDF')"));
    for (int n = 1; n <= 3; ++n)
        QVERIFY(m_db->exec(
            QStringLiteral(
                "INSERT INTO TCMaster (Control, BillNo, Name, DCounty, County, PCounty, "
                "DLibrary, Library, PLibrary, DTwp, Twp, PTwp, DS1Face, S1Face, PS1Face, "
                "DSchool, School, PSchool, AdjFlag, CAddrFlag, CPayFlag, TPayFlag, SPayFlag, "
                "StLtFlag) VALUES ('00000%1', '    %1', 'OWNER %1', 980000, 1000000, 1100000, "
                "98000, 100000, 110000, 490000, 500000, 550000, 196000, 200000, 220000, "
                "5880000, 6000000, 6600000, ' ', ' ', '%2', '%2', ' ', ' ')")
                .arg(n)
                .arg(n == 3 ? QStringLiteral("X") : QStringLiteral(" "))));
    QVERIFY(OpenSessionDatabase(m_db->path()));
    Clock::setToday(QDate(2013, 9, 15));
    PrintCapture::setEnabled(true);
    m_boxes = std::make_unique<MessageScript>();
}

void TestMortgageScreen::cleanup() {
    m_boxes.reset();
    PrintCapture::setEnabled(false);
    Clock::setToday(std::nullopt);
    CloseSessionDatabase();
    m_db.reset();
}

QString TestMortgageScreen::writeFile(const QString& name, const QByteArray& bytes) {
    const QString path = QDir(m_db->folder()).filePath(name);
    QFile f(path);
    if (f.open(QIODevice::WriteOnly))
        f.write(bytes);
    return path;
}

void TestMortgageScreen::runWithFile(const QString& path) {
    m_boxes->answer(MsgAnswer::Ok);
    m_boxes->answer(MsgAnswer::Ok, path);
    QCOMPARE(frmREMortgageCompanies::open(), nullptr);
    QCOMPARE(m_boxes->service().unanswered, 0);
    QVERIFY(m_boxes->service().answers.empty());
}

void TestMortgageScreen::cancelled_data() {
    QTest::addColumn<bool>("atQuestion");
    AddRow("at the diskette question", true);
    AddRow("at the file chooser", false);
}

void TestMortgageScreen::cancelled() {
    QFETCH(bool, atQuestion);
    m_boxes->answer(atQuestion ? MsgAnswer::Cancel : MsgAnswer::Ok);
    if (!atQuestion)
        m_boxes->answer(MsgAnswer::Cancel);
    frmREMortgageCompanies::open();
    QStringList texts{QString::fromLatin1(MortgageQuestionText)};
    if (!atQuestion)
        texts << m_db->folder(); // the chooser, opened on the program's folder
    texts << QStringLiteral("UPDATE ABORTED!");
    QCOMPARE(m_boxes->texts(), texts);
    QCOMPARE(m_boxes->titles(), QStringList(texts.size(), Ask));
    QCOMPARE(PrintCapture::jobCount(), 0);
    // Nothing is left open.
    for (QWidget* w : QApplication::topLevelWidgets())
        QVERIFY(!(w->objectName() == u"frmREMortgageCompanies" && w->isVisible()));
}

void TestMortgageScreen::unreadableFile_data() {
    QTest::addColumn<QString>("name");
    AddRow("missing", QStringLiteral("Missing.txt"));
    AddRow("a folder", QStringLiteral("Printouts"));
}

void TestMortgageScreen::unreadableFile() {
    QFETCH(QString, name);
    QDir(m_db->folder()).mkpath(QStringLiteral("Printouts"));
    runWithFile(QDir(m_db->folder()).filePath(name));
    QCOMPARE(m_boxes->texts().last(), QString::fromLatin1(MortgageUnreadableText));
    QCOMPARE(m_boxes->titles().last(), Update);
    QCOMPARE(PrintCapture::jobCount(), 0);
}

void TestMortgageScreen::noLetterPrinter() {
    QVERIFY(m_db->exec("DELETE FROM tbl_Printers"));
    m_boxes->answer(MsgAnswer::Ok);
    frmREMortgageCompanies::open();
    QCOMPARE(m_boxes->texts(), QStringList({QString::fromLatin1(MortgageQuestionText),
                                            "There is currently no LETTER size printer "
                                            "assigned."}));
    QCOMPARE(m_boxes->titles().last(), QStringLiteral("Printer Error"));
}

void TestMortgageScreen::postsAndLists() {
    // Bill 1 at discount, bill 2 at penalty, bill 3 exonerated, a wrong control, an amount that
    // is no number, the last record without its CR LF.
    const QString path = writeFile(QStringLiteral("Levydsk.txt"),
                                   "000001    1000017640CK0001FIRST MORTGAGE CO\r\n"
                                   "000002    2000019800CK0002ABCDEFGHIJKLMNOPQRSTUVWXYZ1234\r\n"
                                   "000003    3000018000CK0003THIRD BANK\r\n"
                                   "000009    1000018000CK0009WRONG CONTROL\r\n"
                                   "000002    200001B000CK0002BAD AMOUNT");
    runWithFile(path);
    QCOMPARE(m_boxes->texts().last(), QStringLiteral("Update Complete"));
    QCOMPARE(m_boxes->titles().last(), Update);
    QCOMPARE(rows("SELECT BillNo, CPayFlag, TPayFlag, SPayFlag FROM TCMaster ORDER BY BillNo"),
             QStringLiteral("    1|D|D| ;    2|P|P| ;    3|X|X| "));
    QCOMPARE(rows("SELECT Recnum, BillNo, Payor, Checknum FROM TCReceipt ORDER BY Recnum"),
             QStringLiteral("201309150001|    1|FIRST MORTGAGE CO|CK0001;"
                            "201309150002|    2|ABCDEFGHIJKLMNOPQRSTUVWXYZ1234|CK0002"));
    QCOMPARE(PrintCapture::jobCount(), 1);
    QCOMPARE(PrintCapture::lastJobPages(), 1);
    QVERIFY(PrintCapture::lastJobPrinted(QString::fromLatin1(MortgageExceptionHeading)));
    QVERIFY(PrintCapture::lastJobPrinted("000003 3 $180.00 THIRD BANK CK0003"));
    QVERIFY(PrintCapture::lastJobPrinted("000009 1 $180.00 WRONG CONTROL CK0009"));
    QVERIFY(PrintCapture::lastJobPrinted(
        "000002 2 00001B000 BAD AMOUNT CK0002 (the amount is not a whole number of cents)"));
    QCOMPARE(PrintCapture::lastJobLines().size(), 4);
}

QTEST_MAIN(TestMortgageScreen)
#include "test_mortgage_screen.moc"
