#include "bills/school_re_tax_bill_fen.h"
#include "bills/tax_bill_positions.h"
#include "core/clock.h"
#include "core/tax_database.h"
#include "reports/report_surface.h"

#include "bills/bill_fixture.h"
#include "reports/print_readback.h"
#include "support/test_support.h"

#include <QDir>
#include <QSqlQuery>
#include <QTest>

namespace {

QString expectedPath(const char* name) {
    return QDir(QStringLiteral(LEVYDESK_TEST_DIR))
        .filePath(QStringLiteral("expected/") + QString::fromLatin1(name));
}

QStringList billsDrawn(const Recording& r) {
    QStringList out;
    for (const RecordedPage& page : r.pages)
        for (const PrintedText* t : page.texts())
            if (t->text.startsWith(QLatin1String("Bill Number: ")))
                out << t->text.mid(13).trimmed();
    return out;
}

} // namespace

class TestSchoolStatement : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void statementWithCoupons();
    void runs_data();
    void runs();

private:
    std::unique_ptr<TempTaxDatabase> m_db;
};

void TestSchoolStatement::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    QVERIFY(BillFixture::fill(*m_db));
    Clock::setToday(QDate(2013, 3, 5));
}

void TestSchoolStatement::cleanup() {
    Clock::setToday(std::nullopt);
    m_db.reset();
}

void TestSchoolStatement::statementWithCoupons() {
    SchoolStatementRun run;
    run.startBill = QStringLiteral("    2");
    run.mailers = 1;
    ReportSurface surface;
    const SchoolStatementResult result = RunSchoolStatements(m_db->db(), run, surface);
    surface.EndDoc();
    QCOMPARE(result.printed, 1);
    const Recording r = surface.takeRecording();
    QCOMPARE(r.pages.size(), std::size_t(1));
    QString diff;
    QVERIFY2(PrintReadback::matchesExpected(expectedPath("school_statement.txt"), r.dump(), &diff),
             qPrintable(diff));
    const QString lines = r.textLines().join(QLatin1Char('\n'));
    // The adjusted bill at its new address, the school part only, at the early dates.
    for (const char* want : {"2013 STATEMENT OF REAL ESTATE TAXES",
                             "Bill Number:     2",
                             "Control Number  000002",
                             "Mailing Date: 03/01/2013",
                             "HOLLOWAY MARGARET A",
                             "PO BOX 9",
                             "MAPLE AREA SCHOOL DISTRICT School District",
                             "MAPLE AREA SCHOOL DISTRICT SCH DIST",
                             "=> Rate: 20",
                             "2% Discount Face Value 10% Penalty",
                             "$477.20 $490.00 $539.00",
                             "Before 04/30/2013",
                             "After 07/01/2013",
                             "HS/FS CREDIT $150.00",
                             "HS Exclusion: $5,000.00",
                             "Total Assessment: $32,000.00",
                             "INSTALLMENT PAYMENT 1 INSTALLMENT PAYMENT 2",
                             "Amount Due: 163.33 Amount Due: 163.33 Amount Due: 163.33",
                             "DUE BY: 04/30/2013 DUE BY: 06/30/2013 DUE BY: 08/31/2013",
                             "Ctrl - 000002  Bill -     2",
                             "Return Bill with Payment",
                             ">> This Receipt is NOT VALID Until Check Clears <<"})
        QVERIFY2(lines.contains(QLatin1String(want)),
                 qPrintable(QLatin1String(want) + QStringLiteral("\n--- printed:\n") + lines));
    for (const PrintedText* t : r.pages[0].texts())
        QVERIFY2(t->x >= 0 && t->x + t->width() <= r.format.scaleWidth() &&
                     t->baseline() < r.format.scaleHeight(),
                 qPrintable(t->text));
}

void TestSchoolStatement::runs_data() {
    QTest::addColumn<QString>("start");
    QTest::addColumn<int>("mailers");
    QTest::addColumn<int>("stop");
    QTest::addColumn<QStringList>("bills");
    using S = SchoolStatementResult::Stop;
    // The bill with no school tax is never selected (a start bill without one:
    // bills_school_statement.scn).
    AddRow("all", QString(), 9, int(S::Finished), QStringList{"1", "2", "A0001"});
    AddRow("from 2, one", QString("    2"), 1, int(S::Finished), QStringList{"2"});
}

void TestSchoolStatement::runs() {
    QFETCH(QString, start);
    QFETCH(int, mailers);
    QFETCH(int, stop);
    QFETCH(QStringList, bills);
    SchoolStatementRun run;
    run.startBill = start;
    run.mailers = mailers;
    ReportSurface surface;
    const SchoolStatementResult result = RunSchoolStatements(m_db->db(), run, surface);
    surface.EndDoc();
    QCOMPARE(int(result.stop), stop);
    QCOMPARE(billsDrawn(surface.recording()), bills);
}

QTEST_MAIN(TestSchoolStatement)
#include "test_school_statement.moc"
