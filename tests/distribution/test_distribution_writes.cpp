// The distribution's writes on temporary databases: each body's share with its specials, the
// cut-off compared as text, a number used again, nothing written when there is nothing to
// distribute or a write fails, the per capita tables through the same function; the files against
// checked-in expected files; one body's report read from its recording.

#include "distribution/distribution_file.h"
#include "distribution/distribution_report.h"
#include "distribution/distribution_writes.h"
#include "support/test_support.h"

#include <QDir>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

namespace {

QStringList rows(const TempTaxDatabase& t, const QString& sql) {
    return QueryRows(t.db(), sql).split(u';');
}

// A real estate receipt (or void, its amounts negated) with every column set: amounts as
// "Column cents ..." (in cents), the rest blank. Pay flags as given.
void addReceipt(const TempTaxDatabase& t, const QString& table, const QString& recnum,
                const QString& billNo, const QString& name, const QString& flags,
                const QString& cents, const QString& installment = " ", int sign = 1) {
    const QStringList amounts = cents.split(u' ', Qt::SkipEmptyParts);
    QString columns, values;
    for (int i = 0; i + 1 < amounts.size(); i += 2) {
        columns += ", " + amounts[i];
        values += QStringLiteral(", %1").arg(sign * amounts[i + 1].toLongLong() * 100);
    }
    QSqlQuery q(t.db());
    q.prepare(QStringLiteral("INSERT INTO %1 (Control, BillNo, AdjNo, Recnum, Name, Map3, Map4, "
                             "Map5, CPayFlag, TPayFlag, SPayFlag, Pay1Flag, Pay2Flag, Pay3Flag, "
                             "CDisbNum, TDisbNum, SDisbNum%2) VALUES (?, ?, 0, ?, ?, '01', '02', "
                             "'003', ?, ?, ?, ?, ' ', ' ', ?, ?, ?%3)")
                  .arg(table, columns, values));
    for (const QVariant& v : QVariantList{"C" + billNo.trimmed(), billNo, recnum, name,
                                          flags.mid(0, 1), flags.mid(1, 1), flags.mid(2, 1),
                                          installment, BlankDisbKey, BlankDisbKey, BlankDisbKey})
        q.addBindValue(v);
    QVERIFY2(q.exec(), qPrintable(q.lastError().text()));
}

// Three receipts and a void, a county special at .50 and a name with quotes.
void seedRealEstate(const TempTaxDatabase& t) {
    QVERIFY(t.exec("INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('12', '3', 0)"));
    QVERIFY(t.exec("INSERT INTO Millfile (District, Ward, TaxYear, SD, SP) VALUES "
                   "('00', '0', '2013', 2, 10)"));
    const QString first = "County 10000 DCounty -200 Library 1000 DLibrary -20 C1Face 50 Twp 5000 "
                          "DTwp -100 S1Face 2000 DS1Face -40 S3Face 700 PS3Face 70";
    addReceipt(t, "TCReceipt", "201304150001", "    1", "JOHN Q OWNER", "DD ", first);
    addReceipt(t, "TCReceipt", "201304300002", "    2", "O\"NEIL 'JR'", "  I",
               "School 20000 Payment1 20000 Sch1Face 1500 PSch1Face 150", "F");
    addReceipt(t, "TCReceipt", "201305010001", "   10", "LATE PAYER", "PP ",
               "County 10000 PCounty 1000 Twp 5000 PTwp 500");
    addReceipt(t, "TCVoidReceipt", "201304150001", "    1", "JOHN Q OWNER", "DD ", first, " ", -1);
}

DistributionRun runOf(std::initializer_list<BodyDistribution> bodies) {
    DistributionRun run;
    run.taxYear = "2013";
    run.district = "12";
    run.ward = "3";
    run.bodies = bodies;
    return run;
}

bool distribute(const TempTaxDatabase& t, const DistributionRun& run,
                std::vector<BodyOutcome>* outcomes,
                const DistributionTables& tables = RealEstateTables()) {
    QString error;
    const bool ok = DistributeReceipts(t.db(), tables, run, outcomes, &error);
    if (!ok)
        qWarning("%s", qPrintable(error));
    return ok;
}

QByteArray expectedFile(const char* name) {
    QFile f(QDir(QStringLiteral(LEVYDESK_TEST_DIR))
                .filePath(QStringLiteral("expected/") + QString::fromLatin1(name)));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing expected file>");
}

QByteArray fileText(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

const QDate April30(2013, 4, 30);

} // namespace

class TestDistributionWrites : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void sharesPerBody();
    void cutOffIsText_data();
    void cutOffIsText();
    void reusedNumberMovesTheDate();
    void nothingToDistribute();
    void failedWriteLeavesNothing();
    void perCapitaThroughTheSameFunction();
    void filesAsExpected();
    void amountsInTheFile_data();
    void amountsInTheFile();
    void countyReportTotals();
};

void TestDistributionWrites::sharesPerBody() {
    TempTaxDatabase t;
    seedRealEstate(t);
    std::vector<BodyOutcome> outcomes;
    QVERIFY(distribute(t,
                       runOf({{TaxingBody::County, 1, April30},
                              {TaxingBody::Twp, 1, April30},
                              {TaxingBody::School, 1, April30}}),
                       &outcomes));
    // Amounts in cents: the body's first line, its second line (or the specials), its third
    // (county special), and what stands in the columns of the other bodies or installments;
    // then the flags and the keys.
    QCOMPARE(rows(t, "SELECT CTS, Recnum, (County + DCounty + PCounty + Twp + DTwp + PTwp + "
                     "School + DSchool + PSchool) / 100, (Library + DLibrary + PLibrary + S1Face + "
                     "DS1Face + PS1Face + S3Face + DS3Face + PS3Face + Sch1Face + DSch1Face + "
                     "PSch1Face) / 100, (C1Face + DC1Face + PC1Face) / 100, CASE CTS WHEN 'T' "
                     "THEN S3Face + DS3Face + PS3Face WHEN 'S' THEN Payment1 ELSE Twp + School + "
                     "Payment1 END / 100, CPayFlag, TPayFlag, SPayFlag, Pay1Flag, Pay2Flag, "
                     "CDisbNum, TDisbNum, SDisbNum FROM TCDistribution ORDER BY CTS"),
             (QStringList{"C|201304150001|9800|980|50|0|D| | | | |201301|      |      ",
                          "S|201304300002|20000|1650|0|20000| | |I|F| |      |      |201301",
                          "T|201304150001|4900|2730|0|770| |D| | | |      |201301|      "}));
}

void TestDistributionWrites::cutOffIsText_data() {
    QTest::addColumn<QString>("recnum");
    QTest::addColumn<bool>("taken");
    AddRow("last counter of the day", "201304309999", true);
    AddRow("next day", "201305010000", false);
    AddRow("truncated counter still sorts in its day", "20130430123", true);
}

void TestDistributionWrites::cutOffIsText() {
    QFETCH(QString, recnum);
    QFETCH(bool, taken);
    TempTaxDatabase t;
    QVERIFY(t.exec("INSERT INTO tbl_District (District, Ward) VALUES ('12', '3')"));
    addReceipt(t, "TCReceipt", recnum, "    1", "A", "F  ", "County 100");
    std::vector<BodyOutcome> outcomes;
    QVERIFY(distribute(t, runOf({{TaxingBody::County, 1, April30}}), &outcomes));
    QCOMPARE(outcomes[0].receipts, taken ? 1 : 0);
    QCOMPARE(CutOffKey(April30), QStringLiteral("201304309999"));
}

void TestDistributionWrites::reusedNumberMovesTheDate() {
    // The rows and file of a reused number are distribution_reuse.scn's; here the number used
    // again moves its own date only.
    TempTaxDatabase t;
    seedRealEstate(t);
    std::vector<BodyOutcome> outcomes;
    QVERIFY(distribute(t, runOf({{TaxingBody::County, 1, QDate(2013, 4, 15)}}), &outcomes));
    QVERIFY(distribute(t, runOf({{TaxingBody::County, 2, QDate(2013, 5, 1)}}), &outcomes));
    addReceipt(t, "TCReceipt", "201305060001", "    3", "B", "F  ", "County 100");
    QVERIFY(distribute(t, runOf({{TaxingBody::County, 1, QDate(2013, 5, 6)}}), &outcomes));
    QCOMPARE(rows(t, "SELECT DisbNum, DisbDate FROM tbl_DisbDates ORDER BY DisbNum"),
             (QStringList{"1|2013-05-06", "2|2013-05-01"}));
}

void TestDistributionWrites::nothingToDistribute() {
    TempTaxDatabase t;
    seedRealEstate(t);
    std::vector<BodyOutcome> outcomes;
    QVERIFY(distribute(
        t, runOf({{TaxingBody::School, 1, QDate(2013, 4, 1)}, {TaxingBody::County, 1, April30}}),
        &outcomes));
    QVERIFY(outcomes[0].nothingToDistribute());
    QVERIFY(!outcomes[1].nothingToDistribute());
    QCOMPARE(rows(t, "SELECT CTS FROM tbl_DisbDates"), QStringList{"C"});
    // No file for the body that had nothing. (Its rows and keys: distribution_refusals.scn.)
    QTemporaryDir folder;
    QVERIFY(WriteDistributionFiles(folder.path(), RealEstateTables(), "12", outcomes).empty());
    QVERIFY(!QFile::exists(folder.filePath("Distributions/RE12School201301.txt")));
    QVERIFY(QFile::exists(folder.filePath("Distributions/RE12County201301.txt")));
}

void TestDistributionWrites::failedWriteLeavesNothing() {
    TempTaxDatabase t;
    seedRealEstate(t);
    // The township's number cannot be recorded: the county's work before it goes too.
    QVERIFY(t.exec("CREATE TRIGGER refuse BEFORE INSERT ON tbl_DisbDates WHEN NEW.CTS = 'T' "
                   "BEGIN SELECT RAISE(ABORT, 'refused'); END"));
    std::vector<BodyOutcome> outcomes;
    QString error;
    QVERIFY(!DistributeReceipts(
        t.db(), RealEstateTables(),
        runOf({{TaxingBody::County, 1, April30}, {TaxingBody::Twp, 1, April30}}), &outcomes,
        &error));
    QVERIFY2(error.contains("refused"), qPrintable(error));
    QVERIFY(outcomes.empty());
    QCOMPARE(rows(t, "SELECT (SELECT count(*) FROM TCDistribution) + (SELECT count(*) FROM "
                     "TCVoidDistribution) + (SELECT count(*) FROM tbl_DisbDates)"),
             QStringList{"0"});
    QCOMPARE(rows(t, "SELECT count(*) FROM TCReceipt WHERE CDisbNum <> '      ' OR TDisbNum <> "
                     "'      '"),
             QStringList{"0"});
}

void TestDistributionWrites::perCapitaThroughTheSameFunction() {
    TempTaxDatabase t;
    QVERIFY(t.exec("INSERT INTO tbl_District (District, Ward) VALUES ('12', '3')"));
    QVERIFY(t.exec("INSERT INTO PCReceipt (Control, BillNo, AdjNo, Recnum, Name, CPerCapita, "
                   "DCPerCapita, COccupation, TPerCapita, SPerCapita, SOccupation, PSOccupation, "
                   "CPayFlag, TPayFlag, SPayFlag, CDisbNum, TDisbNum, SDisbNum) VALUES ('P1', "
                   "'    1', 0, '201304150001', 'PAT \"P\"', 50000, -1000, 2500, 100000, 50000, "
                   "7500, 750, 'D', 'F', 'P', '      ', '      ', '      ')"));
    std::vector<BodyOutcome> outcomes;
    QVERIFY(distribute(t,
                       runOf({{TaxingBody::County, 1, April30},
                              {TaxingBody::Twp, 3, April30},
                              {TaxingBody::School, 2, April30}}),
                       &outcomes, PerCapitaTables()));
    QCOMPARE(rows(t, "SELECT CTS, CPerCapita + DCPerCapita + COccupation, TPerCapita, SPerCapita + "
                     "SOccupation + PSOccupation, CDisbNum, TDisbNum, SDisbNum FROM "
                     "PCDistribution ORDER BY rowid"),
             (QStringList{"C|51500|0|0|201301|      |      ", "T|0|100000|0|      |201303|      ",
                          "S|0|0|58250|      |      |201302"}));
    // The receipt's keys: distribution_pc_receipts.scn.
    QCOMPARE(rows(t, "SELECT DisbType, CTS, DisbNum FROM tbl_DisbDates ORDER BY CTS"),
             (QStringList{"PC|C|1", "PC|S|2", "PC|T|3"}));
    QCOMPARE(outcomes[2].lines,
             QStringList{"\"12\",\"3\",\"P1\",\"    1\",\"0\",\"201304150001\",\"PAT \"P\"\","
                         "5.00,.00,.75,.08,\"P\",\"201302\""});
}

void TestDistributionWrites::filesAsExpected() {
    TempTaxDatabase t;
    seedRealEstate(t);
    std::vector<BodyOutcome> outcomes;
    QVERIFY(distribute(t,
                       runOf({{TaxingBody::County, 1, QDate(2013, 5, 1)},
                              {TaxingBody::Twp, 1, QDate(2013, 5, 1)},
                              {TaxingBody::School, 1, QDate(2013, 5, 1)}}),
                       &outcomes));
    QTemporaryDir folder;
    QVERIFY(WriteDistributionFiles(folder.path(), RealEstateTables(), "12", outcomes).empty());
    for (const char* name :
         {"RE12County201301.txt", "RE12TwpBoroCity201301.txt", "RE12School201301.txt"}) {
        const QString path = folder.filePath(QStringLiteral("Distributions/") + name);
        QCOMPARE(fileText(path), expectedFile(name));
    }
    // (The file rebuilt from the rows: distribution_reuse.scn.) A file that cannot be written is
    // reported, with its path.
    QVERIFY(QFile(folder.filePath("blocked")).open(QIODevice::WriteOnly));
    const std::vector<FileFailure> failures =
        WriteDistributionFiles(folder.filePath("blocked"), RealEstateTables(), "12", outcomes);
    QCOMPARE(failures.size(), std::size_t(3));
    QVERIFY(failures[0].path.endsWith("RE12County201301.txt"));
}

void TestDistributionWrites::amountsInTheFile_data() {
    QTest::addColumn<qlonglong>("units");
    QTest::addColumn<QString>("text");
    AddRow("under a dollar", 5000LL, ".50");
    AddRow("negative under a dollar", -5000LL, "-.50");
    AddRow("no thousands separator", 12345600LL, "1234.56");
    AddRow("negative dollar", -10000LL, "-1.00");
    AddRow("half a cent rounds away from zero", 50LL, ".01");
    AddRow("negative half a cent", -50LL, "-.01");
    AddRow("less than half a cent is no minus", -49LL, ".00");
}

void TestDistributionWrites::amountsInTheFile() {
    QFETCH(qlonglong, units);
    QFETCH(QString, text);
    TempTaxDatabase t;
    QSqlQuery q(t.db());
    q.prepare("INSERT INTO PCDistribution (CTS, Control, BillNo, AdjNo, Recnum, Name, CPerCapita, "
              "CPayFlag, CDisbNum) VALUES ('C', 'X', '    1', NULL, '1', NULL, ?, NULL, '201301')");
    q.addBindValue(units);
    QVERIFY(q.exec());
    const QStringList lines =
        DistributionRowsAsLines(t.db(), PerCapitaTables(), TaxingBody::County, "12", "3", "201301");
    // Nulls go out as an empty text, a zero AdjNo and a blank flag.
    QCOMPARE(lines, QStringList{"\"12\",\"3\",\"X\",\"    1\",\"0\",\"1\",\"\"," + text +
                                ",.00,.00,.00,\" \",\"201301\""});
    // The same text as the money format the reports use.
    QCOMPARE(Money::fromUnits(units).format(u"######.00"), text);
}

void TestDistributionWrites::countyReportTotals() {
    TempTaxDatabase t;
    seedRealEstate(t);
    QVERIFY(t.exec("INSERT INTO tbl_Twpboro (District, Ward, TwpBoro, BTFlag) VALUES ('12', '3', "
                   "'MAPLE TOWNSHIP', 'T')"));
    std::vector<BodyOutcome> outcomes;
    QVERIFY(distribute(t, runOf({{TaxingBody::County, 1, QDate(2013, 5, 1)}}), &outcomes));
    DistributionReportOptions options;
    options.number = 1;
    options.taxYear = "2013";
    options.from = QDate(2013, 3, 1);
    options.to = QDate(2013, 5, 1);
    options.calculated = true;
    DistributionReport report(
        t.db(), DistributionReportFor(t.db(), RealEstateTables(), TaxingBody::County), options);
    const std::optional<Recording> pages =
        DrawReport(report.definition(), ReportMode::Print, t.db());
    QVERIFY(pages);
    QCOMPARE(pages->pages.size(), std::size_t(4));
    const QStringList lines = pages->textLines();
    auto holds = [&lines](const QString& text) {
        for (const QString& line : lines)
            if (line.simplified().contains(text))
                return true;
        return false;
    };
    // The sections, a receipt hidden by its void and the date range: distribution_reports.scn.
    // Here a receipt at penalty and the penalty the county's rates give.
    QVERIFY(holds("10 C10 01.02.003 201305010001 LATE PAYER 100.00 10.00 .00 .00 .00 .00 110.00"));
    QVERIFY(holds("Total County: .00 100.00 10.00 110.00"));
    QVERIFY(holds("Total Penalty: 100.00 10.00 110.00"));
    // As calculated, the penalty is the county's 10 percent of the face.
    QVERIFY(holds("CALCULATED AMOUNTS AS PER THE COUNTY:"));
    QVERIFY(holds("County: .00 100.00 10.00 110.00"));
}

QTEST_MAIN(TestDistributionWrites)
#include "test_distribution_writes.moc"
