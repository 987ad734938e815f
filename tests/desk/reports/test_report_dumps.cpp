// Each report of the office drawn from a fixed demo year and compared line by line with its
// checked-in dump (expected/*.txt): what a person reads on the pages, page after page. The
// print and the preview draw the same lines. LEVYDESK_UPDATE_EXPECTED=1 rewrites the dumps after
// a wanted change, for review in the diff.

#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "desk/reports/act169_report.h"
#include "desk/reports/act1_reports.h"
#include "desk/reports/change_reports.h"
#include "desk/reports/receipt_report.h"
#include "desk/reports/summary_report.h"
#include "distribution/distribution_writes.h"
#include "reports/print_readback.h"
#include "support/test_support.h"

#include <QDir>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <memory>

class TestReportDumps : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QSqlDatabase m_db;

    static QString expectedPath(const QString& name) {
        return QDir(QStringLiteral(LEVYDESK_TEST_DIR))
            .filePath(QStringLiteral("expected/") + name + QStringLiteral(".txt"));
    }

    void compare(const QString& name, const ReportDefinition& definition) {
        MessageScript messages;
        const std::optional<Recording> print = DrawReport(definition, ReportMode::Print, m_db);
        QVERIFY2(print, qPrintable(name));
        const std::optional<Recording> preview = DrawReport(definition, ReportMode::Preview, m_db);
        QVERIFY(preview);
        QCOMPARE(preview->textLines(), print->textLines());
        QStringList lines;
        for (std::size_t p = 0; p < print->pages.size(); ++p)
            lines << QStringLiteral("=== page %1").arg(p + 1) << print->pages[p].textLines();
        QString diff;
        QVERIFY2(
            PrintReadback::matchesExpected(expectedPath(name), lines.join(u'\n') + u'\n', &diff),
            qPrintable(name + QStringLiteral(" ") + diff));
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        const QString path = m_dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
        DemoOptions options;
        options.parcels = 120;
        options.persons = 80;
        QString error;
        QVERIFY2(CreateDemoDatabase(path, options, &error), qPrintable(error));
        m_db = TaxDatabase::open(path, QStringLiteral("dumps"), &error);
        QVERIFY2(m_db.isOpen(), qPrintable(error));
        QSqlQuery q(m_db);
        // A void of every fifth receipt, three days after it was taken.
        QVERIFY(q.exec(QStringLiteral(
            "INSERT INTO TCVoidReceipt SELECT *, '      ', '      ', '      ', 'TEST', "
            "date(RDate, '+3 days') FROM TCReceipt WHERE rowid % 5 = 0")));
        QVERIFY(q.exec(QStringLiteral(
            "UPDATE TCVoidReceipt SET VDate = SysDate, County = -County, DCounty = -DCounty, "
            "PCounty = -PCounty, Library = -Library, DLibrary = -DLibrary, PLibrary = -PLibrary, "
            "Twp = -Twp, DTwp = -DTwp, PTwp = -PTwp, S1Face = -S1Face, DS1Face = -DS1Face, "
            "PS1Face = -PS1Face, School = -School, DSchool = -DSchool, PSchool = -PSchool, "
            "Payment1 = -Payment1, Payment2 = -Payment2, Payment3 = -Payment3")));
        DistributionRun run{QStringLiteral("2013"), QStringLiteral("00"), QStringLiteral("0"), {}};
        for (TaxingBody b : {TaxingBody::County, TaxingBody::Twp, TaxingBody::School})
            run.bodies.push_back({b, 1, QDate(2013, 4, 30)});
        std::vector<BodyOutcome> outcomes;
        QVERIFY2(DistributeReceipts(m_db, RealEstateTables(), run, &outcomes, &error),
                 qPrintable(error));
        Clock::setToday(QDate(2013, 10, 1));
        session().TaxYear = QStringLiteral("2013");
    }

    void cleanupTestCase() {
        m_db = QSqlDatabase();
        TaxDatabase::close(QStringLiteral("dumps"));
        Clock::setToday(std::nullopt);
    }

    void depositLists() {
        ReceiptReportOptions o;
        o.range = ReceiptRange::DateCredited;
        o.order = QStringLiteral("BILL");
        o.startDate = QDate(2013, 4, 1);
        o.endDate = QDate(2013, 4, 7);
        ReceiptReport re(m_db, RealEstateReportTables(), o);
        compare(QStringLiteral("re_receipts_date_credited"), re.definition());
        o.range = ReceiptRange::DateEntered;
        o.order = QStringLiteral("DATE");
        o.summaryOnly = true;
        ReceiptReport entered(m_db, RealEstateReportTables(), o);
        compare(QStringLiteral("re_receipts_entered_summary"), entered.definition());
        o.range = ReceiptRange::DateCredited;
        o.summaryOnly = false;
        o.order = QStringLiteral("RECN");
        o.endDate = QDate(2013, 4, 30);
        ReceiptReport pc(m_db, PerCapitaReportTables(), o);
        compare(QStringLiteral("pc_receipts"), pc.definition());
    }

    void changeReports() {
        ChangeReportOptions o;
        o.start = QDate(2013, 1, 1);
        o.end = QDate(2013, 12, 31);
        o.order = ChangeOrder::Name;
        AdjustmentReport re(m_db, RealEstateReportTables(), o);
        compare(QStringLiteral("re_adjustments"), re.definition());
        AdjustmentReport pc(m_db, PerCapitaReportTables(), o);
        compare(QStringLiteral("pc_adjustments"), pc.definition());
        o.order = ChangeOrder::Map;
        AddressReport address(m_db, RealEstateReportTables(), o);
        compare(QStringLiteral("re_addresses"), address.definition());
        // The demo year has no per capita address change: the report says so and prints
        // nothing.
        MessageScript messages;
        AddressReport pcAddress(m_db, PerCapitaReportTables(), o);
        QVERIFY(!DrawReport(pcAddress.definition(), ReportMode::Print, m_db));
        QCOMPARE(messages.texts(),
                 QStringList{"There are no address changes made in this date range."});
    }

    void summaries() {
        compare(QStringLiteral("re_summary"), BalanceSummaryReport(m_db, RealEstateReportTables()));
        compare(QStringLiteral("pc_summary"), BalanceSummaryReport(m_db, PerCapitaReportTables()));
    }

    void act169() {
        compare(QStringLiteral("act169_county_april"),
                Act169Report(GatherAct169(m_db, Act169Kind::County, 4)));
        compare(QStringLiteral("act169_school_april"),
                Act169Report(GatherAct169(m_db, Act169Kind::School, 4)));
    }

    void act1() {
        compare(QStringLiteral("act1_late_payers"), LatePayerReport(m_db));
        compare(QStringLiteral("act1_zero_amounts"), ZeroAmountReport(m_db));
    }
};

QTEST_MAIN(TestReportDumps)
#include "test_report_dumps.moc"
