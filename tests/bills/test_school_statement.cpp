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

QStringList statementsDrawn(const Recording& r) {
    QStringList out;
    for (const RecordedPage& page : r.pages)
        for (const PrintedText* t : page.texts())
            if (t->text.startsWith(QLatin1String("Bill Number: ")))
                out << t->text.mid(13).trimmed();
    return out;
}

} // namespace

using namespace BillFixture;

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
    // The dump pins every line; the amounts are spelled out here as the figures to check by hand.
    const QString lines = r.textLines().join(QLatin1Char('\n'));
    QVERIFY(lines.contains(QLatin1String("$477.20 $490.00 $539.00")));
    QVERIFY(
        lines.contains(QLatin1String("Amount Due: 163.33 Amount Due: 163.33 Amount Due: 163.33")));
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
    QCOMPARE(statementsDrawn(surface.recording()), bills);
}

QTEST_MAIN(TestSchoolStatement)
#include "test_school_statement.moc"
