#include "desk/realestate/mortgage_update.h"
#include "support/test_support.h"

#include "reports/report_surface.h"

#include <QTest>

namespace {

// One record as a company writes it: the fixed fields, the payor and the end given.
QByteArray record(const char* control, const char* billNo, const char* amount, const char* check,
                  const QByteArray& payor, const QByteArray& end = "\r\n") {
    return QByteArray(control) + billNo + amount + check + payor + end;
}

// The parse in file order: "n:control|bill|amount|check|payor" or "n!problem".
QString summary(const MortgageFile& f) {
    QStringList out;
    auto good = f.records.begin();
    auto bad = f.malformed.begin();
    while (good != f.records.end() || bad != f.malformed.end()) {
        if (bad != f.malformed.end() && (good == f.records.end() || bad->number < good->number)) {
            out << QStringLiteral("%1!%2").arg(bad->number).arg(bad->problem);
            ++bad;
        } else {
            out << QStringLiteral("%1:%2|%3|%4|%5|%6")
                       .arg(good->number)
                       .arg(good->control, good->billNo, good->amount.toPlain(), good->checknum,
                            good->payor);
            ++good;
        }
    }
    return out.join(u';');
}

const auto rows = &QueryRows;

// Bill "   42", control 004200: county 98/100/110, library 9.80/10/11, county special
// 4.90/5/5.50, township 196/200/220, specials 19.60/20/22 and 29.40/30/33, school 490/500/550.
// Totals of the two bodies: D 357.70, F 365.00, P 401.50.
void insertBill(TempTaxDatabase& t, const char* billNo = "   42", const char* control = "004200",
                const char* cFlag = " ", const char* tFlag = " ", const char* adjFlag = " ") {
    QVERIFY(t.exec(
        QStringLiteral("INSERT INTO TCMaster (Control, BillNo, Name, Map3, Map4, Map5, DCounty, "
                       "County, PCounty, DLibrary, Library, PLibrary, DC1Face, C1Face, PC1Face, "
                       "DTwp, Twp, PTwp, DS1Face, S1Face, PS1Face, DS3Face, S3Face, PS3Face, "
                       "DSchool, School, PSchool, AdjFlag, CAddrFlag, CPayFlag, TPayFlag, "
                       "SPayFlag, StLtFlag) VALUES ('%1', '%2', 'OWNER', '12', '34', '567', "
                       "980000, 1000000, 1100000, 98000, 100000, 110000, 49000, 50000, 55000, "
                       "1960000, 2000000, 2200000, 196000, 200000, 220000, 294000, 300000, "
                       "330000, 4900000, 5000000, 5500000, '%3', ' ', '%4', '%5', ' ', ' ')")
            .arg(QLatin1String(control), QLatin1String(billNo), QLatin1String(adjFlag),
                 QLatin1String(cFlag), QLatin1String(tFlag))));
}

const QDate Today(2013, 9, 15);

MortgageRun runFile(TempTaxDatabase& t, const QByteArray& bytes) {
    return RunMortgageUpdate(t.db(), ParseMortgageCompanyFile(bytes), Today);
}

} // namespace

class TestMortgageUpdate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parse_data();
    void parse();
    void postsAtEachPeriod_data();
    void postsAtEachPeriod();
    void exceptionsWriteNothing_data();
    void exceptionsWriteNothing();
    void secondRunListsEverything();
    void incompleteChainStopsTheRun();
    void exceptionListPrintsHeadingAndLines();
};

void TestMortgageUpdate::parse_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("expected");
    const QByteArray payor30(30, 'P');
    // A plain record and its exact match posted: mortgage_companies.scn.
    AddRow("fields at their edges", record("ABCDEF", "7    ", " 00000001", "      ", ""),
           QStringLiteral("1:ABCDEF|    7|0.01|      |"));
    AddRow("added bill", record("000001", "A0001", "999999999", "C     ", ""),
           QStringLiteral("1:000001|A0001|9999999.99|C     |"));
    AddRow("payor of 30 then CR LF",
           record("004200", "   42", "000000100", "CHK001", payor30) +
               record("004201", "   43", "000000200", "CHK002", "SHORT"),
           QStringLiteral("1:004200|   42|1.00|CHK001|%1;2:004201|   43|2.00|CHK002|SHORT")
               .arg(QString::fromLatin1(payor30)));
    AddRow("payor of 31",
           record("004200", "   42", "000000100", "CHK001", payor30 + "X") +
               record("004201", "   43", "000000200", "CHK002", "NEXT"),
           QStringLiteral("1!the payor is longer than 30 characters;"
                          "2:004201|   43|2.00|CHK002|NEXT"));
    AddRow("no CR LF at the end", record("004200", "   42", "000000100", "CHK001", "BANK", ""),
           QStringLiteral("1:004200|   42|1.00|CHK001|BANK"));
    AddRow("payor of 30 at the end", record("004200", "   42", "000000100", "CHK001", payor30, ""),
           QStringLiteral("1:004200|   42|1.00|CHK001|%1").arg(QString::fromLatin1(payor30)));
    AddRow("CR without LF at the end",
           record("004200", "   42", "000000100", "CHK001", "BANK", "\r"),
           QStringLiteral("1:004200|   42|1.00|CHK001|BANK"));
    AddRow("LF alone ends a record",
           record("004200", "   42", "000000100", "CHK001", "A", "\n") +
               record("004201", "   43", "000000200", "CHK002", "B", "\n"),
           QStringLiteral("1:004200|   42|1.00|CHK001|A;2:004201|   43|2.00|CHK002|B"));
    AddRow("short record",
           QByteArray("004200   420001\r\n") +
               record("004201", "   43", "000000200", "CHK002", "B"),
           QStringLiteral("1!short record;2:004201|   43|2.00|CHK002|B"));
    AddRow("file ends in the fixed fields", QByteArray("004200   42000"),
           QStringLiteral("1!short record: the file ends inside it"));
    AddRow("amount not numeric", record("004200", "   42", "00012A345", "CHK001", "BANK"),
           QStringLiteral("1!the amount is not a whole number of cents"));
    AddRow("amount negative", record("004200", "   42", "-00000100", "CHK001", "BANK"),
           QStringLiteral("1!the amount is not a whole number of cents"));
    AddRow("bill number blank", record("004200", "     ", "000000100", "CHK001", "BANK"),
           QStringLiteral("1!no bill number"));
    AddRow("empty file", QByteArray(), QString());
    AddRow("blank lines and an end mark",
           QByteArray("\r\n") + record("004200", "   42", "000000100", "CHK001", "A") +
               "\r\n\r\n\x1a",
           QStringLiteral("1:004200|   42|1.00|CHK001|A"));
    // Any bytes at all are read without harm: fuzz_mortgage_file.
    AddRow("control characters",
           record("00\x01"
                  "200",
                  "   42", "000000100", "CHK001", "A"),
           QStringLiteral("1!unreadable characters"));
}

void TestMortgageUpdate::parse() {
    QFETCH(QByteArray, bytes);
    QFETCH(QString, expected);
    QCOMPARE(summary(ParseMortgageCompanyFile(bytes)), expected);
}

void TestMortgageUpdate::postsAtEachPeriod_data() {
    QTest::addColumn<QByteArray>("amount");
    QTest::addColumn<QString>("period");
    QTest::addColumn<QString>("receipt");
    // County, DCounty, PCounty, Library.., C1Face.., Twp.., S1Face.., S3Face.., School. (At
    // face: secondRunListsEverything.)
    AddRow("discount", QByteArray("000035770"), QStringLiteral("D"),
           QStringLiteral("100|-2|0|10|-0.2|0|5|-0.1|0|200|-4|0|20|-0.4|0|30|-0.6|0|0"));
    AddRow("penalty", QByteArray("000040150"), QStringLiteral("P"),
           QStringLiteral("100|0|10|10|0|1|5|0|0.5|200|0|20|20|0|2|30|0|3|0"));
}

void TestMortgageUpdate::postsAtEachPeriod() {
    QFETCH(QByteArray, amount);
    QFETCH(QString, period);
    QFETCH(QString, receipt);
    TempTaxDatabase t;
    insertBill(t);
    const MortgageRun run =
        runFile(t, record("004200", "   42", amount.constData(), "CK0077", "MTG CO O'HARA"));
    QCOMPARE(int(run.end), int(MortgageRun::End::Complete));
    QCOMPARE(run.posted, 1);
    QVERIFY(run.exceptions.isEmpty());
    QCOMPARE(rows(t.db(), "SELECT CPayFlag, TPayFlag, SPayFlag FROM TCMaster"),
             QStringLiteral("%1|%1| ").arg(period));
    QCOMPARE(rows(t.db(), "SELECT ReceiptNum FROM TCReceiptNum"), QStringLiteral("2"));
    QCOMPARE(rows(t.db(), "SELECT Recnum, Control, BillNo, Name, RDate, Payor, Checknum, "
                          "CPayFlag, TPayFlag, SPayFlag, Overage, Refund FROM TCReceipt"),
             QStringLiteral("201309150001|004200|   42|OWNER|2013-09-15|MTG CO O'HARA|CK0077|"
                            "%1|%1| |0|0")
                 .arg(period));
    QCOMPARE(rows(t.db(),
                  "SELECT County/1e4, DCounty/1e4, PCounty/1e4, Library/1e4, DLibrary/1e4, "
                  "PLibrary/1e4, C1Face/1e4, DC1Face/1e4, PC1Face/1e4, Twp/1e4, DTwp/1e4, "
                  "PTwp/1e4, S1Face/1e4, DS1Face/1e4, PS1Face/1e4, S3Face/1e4, DS3Face/1e4, "
                  "PS3Face/1e4, School + DSchool + PSchool FROM TCReceipt"),
             receipt);
}

void TestMortgageUpdate::exceptionsWriteNothing_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("cFlag");
    QTest::addColumn<QString>("tFlag");
    // A wrong control number and a bill paid since: mortgage_companies.scn.
    AddRow("bill not on file", record("004200", "   99", "000036500", "CK0001", "BANK"),
           QStringLiteral(" "), QStringLiteral(" "));
    AddRow("township exonerated", record("004200", "   42", "000036500", "CK0001", "BANK"),
           QStringLiteral(" "), QStringLiteral("X"));
    AddRow("no period matches", record("004200", "   42", "000036501", "CK0001", "BANK"),
           QStringLiteral(" "), QStringLiteral(" "));
    AddRow("malformed record", record("004200", "   42", "0003650O0", "CK0001", "BANK"),
           QStringLiteral(" "), QStringLiteral(" "));
}

void TestMortgageUpdate::exceptionsWriteNothing() {
    QFETCH(QByteArray, file);
    QFETCH(QString, cFlag);
    QFETCH(QString, tFlag);
    TempTaxDatabase t;
    insertBill(t, "   42", "004200", qPrintable(cFlag), qPrintable(tFlag));
    const MortgageRun run = runFile(t, file);
    QCOMPARE(int(run.end), int(MortgageRun::End::Complete));
    QCOMPARE(run.posted, 0);
    QCOMPARE(run.exceptions.size(), 1);
    QVERIFY2(run.exceptions[0].contains(QLatin1String("BANK")), qPrintable(run.exceptions[0]));
    QCOMPARE(rows(t.db(), "SELECT count(*) FROM TCReceipt"), QStringLiteral("0"));
    QCOMPARE(rows(t.db(), "SELECT ReceiptNum FROM TCReceiptNum"), QStringLiteral("1"));
    QCOMPARE(rows(t.db(), "SELECT CPayFlag || TPayFlag FROM TCMaster"), cFlag + tFlag);
}

void TestMortgageUpdate::secondRunListsEverything() {
    TempTaxDatabase t;
    insertBill(t);
    insertBill(t, "   43", "004300");
    // Equal discount and face totals on bill 43 post as discount, the first tried.
    QVERIFY(t.exec("UPDATE TCMaster SET DCounty = County, DLibrary = Library, DC1Face = C1Face, "
                   "DTwp = Twp, DS1Face = S1Face, DS3Face = S3Face WHERE BillNo = '   43'"));
    const QByteArray file = record("004200", "   42", "000036500", "CK0001", "FIRST") +
                            record("004300", "43   ", "000036500", "CK0002", "SECOND");
    const MortgageRun first = runFile(t, file);
    QCOMPARE(first.posted, 2);
    QVERIFY(first.exceptions.isEmpty());
    QCOMPARE(rows(t.db(), "SELECT BillNo, CPayFlag, Recnum FROM TCReceipt ORDER BY Recnum"),
             QStringLiteral("   42|F|201309150001;   43|D|201309150002"));

    const MortgageRun second = runFile(t, file);
    QCOMPARE(second.posted, 0);
    // Control, 1 + 5 blanks, bill, 4, amount in 13, 5, payor in 50, 5, check in 10.
    const QString amount = QStringLiteral("      $365.00");
    QCOMPARE(second.exceptions,
             QStringList({QStringLiteral("004200      ") + QStringLiteral("   42    ") + amount +
                              QStringLiteral("     FIRST") + QString(45 + 5, u' ') +
                              QStringLiteral("CK0001    "),
                          QStringLiteral("004300      ") + QStringLiteral("   43    ") + amount +
                              QStringLiteral("     SECOND") + QString(44 + 5, u' ') +
                              QStringLiteral("CK0002    ")}));
    QCOMPARE(rows(t.db(), "SELECT count(*) FROM TCReceipt"), QStringLiteral("2"));
}

void TestMortgageUpdate::incompleteChainStopsTheRun() {
    TempTaxDatabase t;
    insertBill(t);
    insertBill(t, "   43", "004300", " ", " ", "A"); // marked adjusted, no TCAdjust row
    insertBill(t, "   44", "004400");
    const MortgageRun run =
        runFile(t, record("004200", "   42", "000036500", "CK0001", "FIRST") +
                       record("004300", "   43", "000036500", "CK0002", "SECOND") +
                       record("004400", "   44", "000036500", "CK0003", "THIRD"));
    QCOMPARE(int(run.end), int(MortgageRun::End::IncompleteChain));
    QCOMPARE(run.error, QString::fromLatin1(IncompleteAdjustmentText));
    QCOMPARE(rows(t.db(), "SELECT BillNo FROM TCReceipt"), QStringLiteral("   42"));
}

void TestMortgageUpdate::exceptionListPrintsHeadingAndLines() {
    QStringList lines;
    for (int i = 0; i < 150; ++i)
        lines << QStringLiteral("LINE %1").arg(i + 1);
    const Recording job = DrawMortgageExceptions(lines);
    QVERIFY(job.pages.size() >= 2);
    QCOMPARE(job.pages.front().texts().front()->text,
             QString::fromLatin1(MortgageExceptionHeading));
    QCOMPARE(job.pages.front().texts().front()->font.name, QStringLiteral("Courier New"));
    QCOMPARE(job.pages.back().texts().back()->text, QStringLiteral("LINE 150"));
    QCOMPARE(job.textLines().size(), 151);
}

QTEST_MAIN(TestMortgageUpdate)
#include "test_mortgage_update.moc"
