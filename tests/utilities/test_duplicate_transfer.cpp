#include "core/csv.h"
#include "core/money.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "support/test_support.h"
#include "utilities/duplicate_transfer.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

namespace {

void WriteFile(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(text);
}

// The smallest delivery the program opens: the county and municipal rows, the office.
void WriteOffice(const QString& folder) {
    WriteFile(folder + "/Millfile.csv",
              "District,Ward,TaxYear,SMR,SD,SP,TMR,TD,TP,BillCounty,MailDate,PrintEscrow,"
              "Tolerance\n"
              "\"00\",\"0\",\"2013\",4.174,2,10,0,0,0,,\"03/01/13 00:00:00\",0,0\n"
              "\"12\",\"3\",\"2013\",18.52,2,10,1.65,2,10,\"E\",\"03/01/13 00:00:00\",1,1.00\n");
    WriteFile(folder + "/tbl_District.csv", "District,Ward,IntNo\n\"12\",\"3\",7\n");
}

const QByteArray MasterHeader =
    "District,Ward,Control,BillNo,Name,Addr1,AssLand,County,DCounty,CPayFlag,Map3\n";

// Every value of a table in row order.
QString Dump(QSqlDatabase db, const QString& table) {
    return QueryRows(db, QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(table));
}

} // namespace

class TestDuplicateTransfer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void csvRecords_data();
    void csvRecords();
    void exportThenImportGivesTheSameRows();
    void readsWhatMdbExportWrites();
    void refusesABadValue_data();
    void refusesABadValue();
    void refusesAMissingColumnOrTableAndNeverOverwrites();
    void readsTheFormsOfADateAndANumber_data();
    void readsTheFormsOfADateAndANumber();

private:
    QTemporaryDir m_dir;
};

void TestDuplicateTransfer::csvRecords_data() {
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QStringList>("records"); // fields joined by |, a Null as <null>

    AddRow("plain and quoted", QByteArray("a,\"b\",3\n"), QStringList{"a|b|3"});
    AddRow("comma, quote and line break inside quotes",
           QByteArray("\"SMITH, JOHN\",\"SAYS \"\"HI\"\"\",\"LINE\nTWO\"\n"),
           QStringList{"SMITH, JOHN|SAYS \"HI\"|LINE\nTWO"});
    AddRow("empty quoted is a text, empty bare is no value", QByteArray("\"\",,x\n"),
           QStringList{"|<null>|x"});
    AddRow("CR LF records, the last without an end", QByteArray("a,b\r\nc,d"),
           QStringList{"a|b", "c|d"});
    AddRow("byte order mark and UTF-8", QByteArray("\xEF\xBB\xBF\"M\xC3\x9CLLER\",1\n"),
           QStringList{"M\u00dcLLER|1"});
}

void TestDuplicateTransfer::csvRecords() {
    QFETCH(QByteArray, data);
    QFETCH(QStringList, records);
    CsvReader reader(data);
    QStringList seen;
    while (const auto record = reader.next()) {
        QStringList fields;
        for (const CsvField& f : *record)
            fields << (f.isNull() ? QStringLiteral("<null>") : f.text);
        seen << fields.join(u'|');
    }
    QCOMPARE(seen, records);
    QVERIFY(!reader.unterminatedQuote());
}

void TestDuplicateTransfer::exportThenImportGivesTheSameRows() {
    const QString original = m_dir.filePath("round/original.sqlite");
    QDir().mkpath(m_dir.filePath("round"));
    DemoOptions options;
    options.parcels = 150;
    options.persons = 80;
    QVERIFY(CreateDemoDatabase(original, options));
    // Texts that CSV must carry: a comma, quotes, an apostrophe, a line break, a letter
    // beyond ASCII.
    {
        QSqlDatabase db = TaxDatabase::open(original, "round");
        QSqlQuery q(db);
        QVERIFY(q.exec("UPDATE TCMaster SET Name = 'O''NEIL, \"RED\" J\u00d6RG', "
                       "Desc1 = 'TWO' || char(10) || 'LINES' WHERE BillNo = '    1'"));
        QVERIFY(q.exec("UPDATE Millfile SET SchoolStebRatio = 0.1 + 0.2"));
        QString error;
        QVERIFY2(ExportDuplicate(db, m_dir.filePath("round/out"), &error), qPrintable(error));
    }
    TaxDatabase::close("round");

    const QString copy = m_dir.filePath("round/copy.sqlite");
    const DuplicateImport result = ImportDuplicate(m_dir.filePath("round/out"), copy);
    QVERIFY2(result.ok, qPrintable(result.problems.join('\n')));
    QVERIFY(result.notes.isEmpty());
    QVERIFY(result.rows > 230);

    QSqlDatabase a = TaxDatabase::open(original, "a");
    QSqlDatabase b = TaxDatabase::open(copy, "b");
    for (const TaxDatabase::TableDef& table : TaxDatabase::schema())
        QCOMPARE(Dump(b, table.name), Dump(a, table.name));
    a = b = QSqlDatabase();
    TaxDatabase::close("a");
    TaxDatabase::close("b");
}

void TestDuplicateTransfer::readsWhatMdbExportWrites() {
    const QString folder = m_dir.filePath("mdb");
    WriteOffice(folder);
    WriteFile(folder + "/TCMaster.csv",
              MasterHeader.trimmed() + ",WebPage\n" +
                  "\"12\",\"3\",\"100001\",\"    1\",\"O'NEIL, \"\"RED\"\" J\xC3\x96RG\",\"1 MAIN "
                  "ST\",30000,125.2,122.6960,\"\",\"\",\"x\"\n"
                  "\"12\",\"3\",\"100002\",\"A0001\",\"SMITH\",,0,0,0,\"D\",\"1-2\",\n");
    WriteFile(folder + "/Notes.csv", "anything\n");
    const QString path = m_dir.filePath("mdb/KestLevyDsk2013.sqlite");
    const DuplicateImport result = ImportDuplicate(folder, path);
    QVERIFY2(result.ok, qPrintable(result.problems.join('\n')));
    QCOMPARE(result.notes.size(), 2); // the unknown file and the unknown column
    QVERIFY(result.notes.join('\n').contains("WebPage"));

    QSqlDatabase db = TaxDatabase::open(path, "mdb");
    QCOMPARE(Dump(db, "tbl_District"), QString("12|3|7"));
    // Money to the ten-thousandth, an empty flag and map part as one blank, unset columns
    // filled (no Null).
    QCOMPARE(QueryRows(db, "SELECT BillNo, Name, Addr1, AssLand, County, DCounty, CPayFlag, Map3, "
                           "Map4, AdjFlag, Payment1 FROM TCMaster ORDER BY BillNo"),
             QString("    1|O'NEIL, \"RED\" J\u00d6RG|1 MAIN ST|30000|1252000|1226960| | | | |0;"
                     "A0001|SMITH||0|0|0|D|1-2| | |0"));
    QSqlQuery q(db);
    QVERIFY(q.exec("SELECT MailDate, PrintEscrow, Tolerance, BillTwp FROM Millfile "
                   "WHERE District = '12'") &&
            q.next());
    QCOMPARE(q.value(0).toString(), QString("2013-03-01"));
    QCOMPARE(q.value(1).toInt(), 1);
    QCOMPARE(q.value(2).toLongLong(), 10000);
    QCOMPARE(q.value(3).toString(), QString(" "));
    // The number tables hold 1, as in any new tax database.
    QCOMPARE(Dump(db, "TCReceiptNum"), QString("1"));
    db = QSqlDatabase();
    TaxDatabase::close("mdb");
}

void TestDuplicateTransfer::refusesABadValue_data() {
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QString>("problem");

    const QString at = "TCMaster.csv line 3, ";
    AddRow("unpadded bill number", QByteArray("\"12\",\"3\",\"1\",\"1\",\"A\",,0,0,0,,"),
           at + "BillNo: a bill number is 5 characters");
    AddRow("bill number too wide", QByteArray("\"12\",\"3\",\"1\",\"123456\",\"A\",,0,0,0,,"),
           at + "BillNo:");
    AddRow("control number too wide",
           QByteArray("\"12\",\"3\",\"1234567\",\"    1\",\"A\",,0,0,0,,"),
           at + "Control: a control number is 1 to 6 characters");
    AddRow("one-digit district", QByteArray("\"7\",\"3\",\"1\",\"    1\",\"A\",,0,0,0,,"),
           at + "District: a district is two digits");
    AddRow("five decimals", QByteArray("\"12\",\"3\",\"1\",\"    1\",\"A\",,0,1.23456,0,,"),
           at + "County: not an amount with at most four decimals (\"1.23456\")");
    AddRow("amount in words", QByteArray("\"12\",\"3\",\"1\",\"    1\",\"A\",,0,ten,0,,"),
           at + "County: not an amount");
    AddRow("assessment with a fraction",
           QByteArray("\"12\",\"3\",\"1\",\"    1\",\"A\",,100.5,0,0,,"),
           at + "AssLand: not a whole number (\"100.5\")");
    AddRow("two-letter flag", QByteArray("\"12\",\"3\",\"1\",\"    1\",\"A\",,0,0,0,\"DD\","),
           at + "CPayFlag: a flag holds one character");
    AddRow("map part too wide",
           QByteArray("\"12\",\"3\",\"1\",\"    1\",\"A\",,0,0,0,,\"123456789\""),
           at + "Map3: this part of the map number holds at most 8 characters");
    AddRow("a field short", QByteArray("\"12\",\"3\",\"1\",\"    1\",\"A\",,0,0,0,"),
           "TCMaster.csv line 3: 10 fields where the header has 11.");
    AddRow("a quote that never ends", QByteArray("\"12\",\"3\",\"1\",\"    1\",\"A,,0,0,0,,"),
           "TCMaster.csv line 3: a quoted text never ends.");
}

void TestDuplicateTransfer::refusesABadValue() {
    QFETCH(QByteArray, row);
    QFETCH(QString, problem);
    const QString folder = m_dir.filePath(QString("bad/") + QTest::currentDataTag());
    WriteOffice(folder);
    // The good row before the bad one is not kept either.
    WriteFile(folder + "/TCMaster.csv",
              MasterHeader + "\"12\",\"3\",\"9\",\"    9\",\"GOOD\",,0,0,0,,\n" + row + "\n");
    const QString path = folder + "/new.sqlite";
    const DuplicateImport result = ImportDuplicate(folder, path);
    QVERIFY(!result.ok);
    QCOMPARE(result.rows, 0);
    QVERIFY2(result.problems.size() == 1 && result.problems.front().startsWith(problem),
             qPrintable(result.problems.join('\n')));
    QVERIFY(!QFile::exists(path));
    QVERIFY(QDir(folder).entryList({"new.sqlite*"}).isEmpty());
}

void TestDuplicateTransfer::refusesAMissingColumnOrTableAndNeverOverwrites() {
    const QString folder = m_dir.filePath("missing");
    WriteOffice(folder);
    WriteFile(folder + "/TCMaster.csv", "District,Ward,Control,Name\n\"12\",\"3\",\"1\",\"A\"\n");
    DuplicateImport result = ImportDuplicate(folder, folder + "/new.sqlite");
    QVERIFY(!result.ok);
    QCOMPARE(result.problems,
             QStringList{"TCMaster.csv: the column BillNo that the program needs is missing; "
                         "the table cannot be taken."});
    QVERIFY(!QFile::exists(folder + "/new.sqlite"));

    QFile::remove(folder + "/TCMaster.csv");
    QFile::remove(folder + "/Millfile.csv");
    result = ImportDuplicate(folder, folder + "/new.sqlite");
    QCOMPARE(result.problems,
             QStringList{"Millfile.csv is missing: the tax database cannot open without it."});

    WriteOffice(folder);
    WriteFile(folder + "/existing.sqlite", "keep me");
    result = ImportDuplicate(folder, folder + "/existing.sqlite");
    QVERIFY(!result.ok);
    QVERIFY(result.problems.front().contains("exists already"));
    QFile kept(folder + "/existing.sqlite");
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), QByteArray("keep me"));
}

void TestDuplicateTransfer::readsTheFormsOfADateAndANumber_data() {
    QTest::addColumn<QByteArray>("mailDate");
    QTest::addColumn<QByteArray>("rate");
    QTest::addColumn<QString>("stored"); // MailDate|SMR, or empty when refused

    AddRow("mdb-export's form", QByteArray("\"07/01/13 00:00:00\""), QByteArray("18.52"),
           QString("2013-07-01|18.52"));
    AddRow("two-digit years 29 and 30", QByteArray("\"12/31/29\""), QByteArray("+4"),
           QString("2029-12-31|4"));
    AddRow("1930", QByteArray("1/2/30"), QByteArray("0.5"), QString("1930-01-02|0.5"));
    AddRow("four-digit year, time with AM", QByteArray("\"7/1/2031 10:05 AM\""), QByteArray("1e1"),
           QString("2031-07-01|10"));
    AddRow("ISO with a time", QByteArray("2013-03-01T00:00:00"), QByteArray(" 7 "),
           QString("2013-03-01|7"));
    AddRow("no February 30", QByteArray("02/30/13"), QByteArray("1"), QString());
    AddRow("month 13", QByteArray("13/01/13"), QByteArray("1"), QString());
    AddRow("three-digit year", QByteArray("01/01/013"), QByteArray("1"), QString());
    AddRow("words after the time", QByteArray("\"07/01/13 10:00 noon\""), QByteArray("1"),
           QString());
    AddRow("a rate in words", QByteArray("07/01/13"), QByteArray("ten"), QString());
    AddRow("a rate with a comma", QByteArray("07/01/13"), QByteArray("\"1,5\""), QString());
}

void TestDuplicateTransfer::readsTheFormsOfADateAndANumber() {
    QFETCH(QByteArray, mailDate);
    QFETCH(QByteArray, rate);
    QFETCH(QString, stored);
    const QString folder = m_dir.filePath(QString("forms/%1").arg(QTest::currentDataTag()));
    WriteOffice(folder);
    WriteFile(folder + "/Millfile.csv", "District,Ward,TaxYear,SMR,MailDate\n"
                                        "\"00\",\"0\",\"2013\"," +
                                            rate + "," + mailDate + "\n");
    const QString path = folder + "/new.sqlite";
    const DuplicateImport result = ImportDuplicate(folder, path);
    if (stored.isEmpty()) {
        QVERIFY(!result.ok);
        QCOMPARE(result.problems.size(), 1);
        QVERIFY2(result.problems.first().startsWith("Millfile.csv line 2, "),
                 qPrintable(result.problems.first()));
        QVERIFY(!QFile::exists(path));
        return;
    }
    QVERIFY2(result.ok, qPrintable(result.problems.join('\n')));
    QString error;
    QSqlDatabase db = TaxDatabase::open(path, "forms", &error);
    QVERIFY2(db.isOpen(), qPrintable(error));
    {
        QSqlQuery q(db);
        QVERIFY(q.exec("SELECT MailDate, SMR FROM Millfile"));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString() + "|" + QString::number(q.value(1).toDouble()), stored);
    }
    db = QSqlDatabase();
    TaxDatabase::close("forms");
}

QTEST_GUILESS_MAIN(TestDuplicateTransfer)
#include "test_duplicate_transfer.moc"
