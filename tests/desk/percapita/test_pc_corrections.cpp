// The per capita corrections on temporary databases: the amounts from the rates (flat or on the
// occupation value), the names built from their parts, and the writes of the adjustment chain,
// the added bill and the address chain (in which order, what the next read makes of them, and
// nothing on a failure). The columns each screen writes are proved by the pc_* scenarios.
#include "desk/percapita/address_change.h"
#include "desk/percapita/adjust_writes.h"
#include "desk/percapita/person_name.h"
#include "support/test_support.h"

#include "core/tax_database.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

const auto rows = &QueryRows;

QSqlRecord record(const QSqlDatabase& db, const QString& sql) {
    QSqlQuery q(db);
    if (q.exec(sql) && q.next())
        return q.record();
    return {};
}

void logWrites(TempTaxDatabase& t) {
    t.exec("CREATE TABLE WriteLog (n INTEGER PRIMARY KEY, what TEXT)");
    const char* triggers[][2] = {{"UPDATE", "PCMaster"},  {"INSERT", "PCMaster"},
                                 {"INSERT", "PCAdjust"},  {"DELETE", "PCAdjust"},
                                 {"UPDATE", "PCBillNum"}, {"INSERT", "PCAdds"},
                                 {"INSERT", "PCAddress"}};
    int n = 0;
    for (const auto& w : triggers)
        t.exec(QStringLiteral("CREATE TRIGGER log%1 AFTER %2 ON %3 BEGIN INSERT INTO WriteLog "
                              "(what) VALUES ('%2 %3'); END")
                   .arg(++n)
                   .arg(QLatin1String(w[0]), QLatin1String(w[1])));
}

QString writeLog(const TempTaxDatabase& t) {
    return rows(t.db(), "SELECT what FROM WriteLog ORDER BY n");
}

void insertPerson(TempTaxDatabase& t, const char* billNo, const char* flags = "' ', ' ', ' '") {
    QVERIFY(t.exec(QStringLiteral("INSERT INTO PCMaster (District, Ward, Control, BillNo, Name, "
                                  "LName, FName, CPerCapita, AdjFlag, CPayFlag, TPayFlag, "
                                  "SPayFlag, CAddrFlag) VALUES ('12', '3', '100042', '%1', "
                                  "'DOE, JOHN', 'DOE', 'JOHN', 50000, ' ', %2, ' ')")
                       .arg(QLatin1String(billNo), QLatin1String(flags))));
}

PerCapitaBillImage image(const QString& billNo) {
    PerCapitaBillImage b;
    b.control = QStringLiteral("100042");
    b.billNo = billNo;
    b.name = QStringLiteral("O'BRIEN, PAT");
    b.amounts.line[LineCPerCapita] = {Money::fromCents(490), Money::fromDollars(5),
                                      Money::fromCents(550)};
    b.amounts.line[LineTOccupation] = {Money::fromCents(1960), Money::fromDollars(20),
                                       Money::fromDollars(22)};
    return b;
}

} // namespace

class TestPerCapitaCorrections : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void amountsFromRates_data();
    void amountsFromRates();
    void untickedBodyKeepsItsAmounts();
    void recomputeFromFaces();
    void names_data();
    void names();
    void addedBill();
    void adjustmentChain();
    void exonerationAndBack();
    void failedWriteLeavesNothing();
    void addressChain();
};

void TestPerCapitaCorrections::amountsFromRates_data() {
    QTest::addColumn<QString>("district");
    QTest::addColumn<QString>("schoolName");
    QTest::addColumn<double>("countyDiscountPct");
    QTest::addColumn<QString>("expected"); // C occupation D|F|P, S occupation D|F|P

    // District 37 levies the county and township occupation in mills on the value:
    // 12,345 at 1.5 mills is RoundTo(18.5175) = 18.52; elsewhere the rate is a flat amount.
    AddRow("district 37, mills", QString("37"), QString("MAPLE SD"), 2.0,
           QString("18.15|18.52|20.37;9.80|10.00|11.00"));
    // The school levies in mills only in the Larkspur Hill school district (and the county
    // occupation elsewhere is flat).
    AddRow("Larkspur Hill school", QString("12"), QString("Larkspur Hill"), 2.0,
           QString("1.47|1.50|1.65;120.98|123.45|135.80"));
    // A county percentage with decimals counts in whole percent: 2.5 as 2 (halves to even).
    AddRow("county 2.5% as 2%", QString("37"), QString(""), 2.5,
           QString("18.15|18.52|20.37;9.80|10.00|11.00"));
}

void TestPerCapitaCorrections::amountsFromRates() {
    QFETCH(QString, district);
    QFETCH(QString, schoolName);
    QFETCH(double, countyDiscountPct);
    QFETCH(QString, expected);
    TempTaxDatabase t;
    t.exec(QStringLiteral("INSERT INTO Millfile (District, Ward, SPC, SMO, PCSD, PCSP) VALUES "
                          "('00', '0', 5, 1.5, %1, 10)")
               .arg(countyDiscountPct));
    t.exec("INSERT INTO Millfile (District, Ward, TPC, TMO, PCTD, PCTP, SPC, SMO, PCSD, PCSP) "
           "VALUES ('12', '3', 0, 0, 0, 0, 0, 10, 2, 10)");
    const PerCapitaRates rates = PerCapitaRatesFromMillfile(
        record(t.db(), "SELECT * FROM Millfile WHERE District = '00'"),
        record(t.db(), "SELECT * FROM Millfile WHERE District = '12'"), district, schoolName);
    QVERIFY(rates.body[0].levies());
    QVERIFY(!rates.body[1].levies());
    const PerCapitaBillAmounts a = ComputePerCapitaAmounts({}, 12345, {true, true, true}, rates);
    auto triple = [&](int line) {
        const AmountTriple& x = a.line[std::size_t(line)];
        return x.discount.toPlain() + u'|' + x.face.toPlain() + u'|' + x.penalty.toPlain();
    };
    QCOMPARE(triple(LineCOccupation) + u';' + triple(LineSOccupation), expected);
    QCOMPARE(a.line[LineCPerCapita].face, Money::fromDollars(5));
    QCOMPARE(a.line[LineCPerCapita].discount, Money::fromCents(490));
    QCOMPARE(a.bodyFace(1), Money());
}

void TestPerCapitaCorrections::untickedBodyKeepsItsAmounts() {
    PerCapitaRates rates;
    rates.body[0] = {5, 10, false, 2, 10};
    rates.body[2] = {5, 0, false, 2, 10};
    PerCapitaBillAmounts before;
    before.line[LineSPerCapita] = {Money::fromDollars(1), Money::fromDollars(2),
                                   Money::fromDollars(3)};
    const PerCapitaBillAmounts a = ComputePerCapitaAmounts(before, 0, {true, false, false}, rates);
    QCOMPARE(a.line[LineSPerCapita], before.line[LineSPerCapita]);
    QCOMPARE(a.line[LineCOccupation].face, Money::fromDollars(10));
    QCOMPARE(a.totalFace(), Money::fromDollars(17));
}

void TestPerCapitaCorrections::recomputeFromFaces() {
    // Hand-typed faces get their discount and penalty whatever the ticks, each body at its own
    // percentages.
    PerCapitaRates rates;
    rates.body[0] = {0, 0, false, 2, 10};
    rates.body[1] = {0, 0, false, 1.5, 5};
    PerCapitaBillAmounts a;
    a.line[LineCOccupation].face = Money::fromCents(1234);
    a.line[LineTPerCapita].face = Money::fromCents(1001);
    RecomputePerCapitaDiscountPenalty(a, rates);
    QCOMPARE(a.line[LineCOccupation].discount.toPlain(), QString("12.09"));
    QCOMPARE(a.line[LineCOccupation].penalty.toPlain(), QString("13.57"));
    QCOMPARE(a.line[LineTPerCapita].discount.toPlain(), QString("9.86"));
    QCOMPARE(a.line[LineTPerCapita].penalty.toPlain(), QString("10.51"));
    QCOMPARE(a.line[LineSOccupation], AmountTriple{});
}

void TestPerCapitaCorrections::names_data() {
    QTest::addColumn<QStringList>("parts"); // prefix, first, middle, last, suffix
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("printName");

    // The suffix before the comma: pc_add_bill.scn and pc_address_change.scn.
    AddRow("all parts", QStringList{"DR", "JOHN", "Q", "PUBLIC", "JR"},
           QString("PUBLIC JR, DR JOHN Q"), QString("DR JOHN Q PUBLIC JR"));
    AddRow("last name only: no comma", QStringList{"", "", "", "SMITH", ""}, QString("SMITH"),
           QString("SMITH"));
    AddRow("blank parts are absent", QStringList{" ", "PAT", " ", "O'NEIL", " "},
           QString("O'NEIL, PAT"), QString("PAT O'NEIL"));
    AddRow("no last name: no comma", QStringList{"MR", "PAT", "", "", ""}, QString("MR PAT"),
           QString("MR PAT"));
    AddRow("nothing", QStringList{"", "", "", "", ""}, QString(""), QString(""));
}

void TestPerCapitaCorrections::names() {
    QFETCH(QStringList, parts);
    QFETCH(QString, name);
    QFETCH(QString, printName);
    const PersonNameParts p{parts[0], parts[1], parts[2], parts[3], parts[4]};
    QCOMPARE(BuildPersonName(p), name);
    QCOMPARE(BuildPrintName(p), printName);
    QCOMPARE(BuildStreetLine(" 12 ", " MAIN ST "), QString("12 MAIN ST"));
}

void TestPerCapitaCorrections::addedBill() {
    TempTaxDatabase t;
    t.exec("UPDATE PCBillNum SET BillNum = 42");
    logWrites(t);
    PerCapitaAddition a;
    a.image = image(QStringLiteral("A0042"));
    a.image.control = QStringLiteral("A00042");
    a.addDate = QDate(2013, 5, 6);
    QString error;
    QVERIFY2(AddPerCapitaBill(t.db(), a, &error), qPrintable(error));
    QCOMPARE(writeLog(t), QString("UPDATE PCBillNum;INSERT PCMaster;INSERT PCAdds"));
    // A number that is not "A" and digits is refused, the counter left as it was.
    a.image.billNo = QStringLiteral("   44");
    QVERIFY(!AddPerCapitaBill(t.db(), a, &error));
    QCOMPARE(rows(t.db(), "SELECT BillNum, (SELECT count(*) FROM PCMaster) FROM PCBillNum"),
             QString("43|1"));
}

void TestPerCapitaCorrections::adjustmentChain() {
    TempTaxDatabase t;
    insertPerson(t, "   42");
    insertPerson(t, "   43");
    logWrites(t);
    PerCapitaAdjustment a;
    a.image = image(QStringLiteral("   42"));
    a.adjNo = 1;
    QString error;
    QVERIFY2(RecordPerCapitaAdjustment(t.db(), a, &error), qPrintable(error));
    a.adjNo = 2;
    a.image.amounts.line[LineCPerCapita].face = Money::fromDollars(6);
    QVERIFY2(RecordPerCapitaAdjustment(t.db(), a, &error), qPrintable(error));
    // The marker before each image; the other bill and the pay flags untouched.
    QCOMPARE(writeLog(t),
             QString("UPDATE PCMaster;INSERT PCAdjust;UPDATE PCMaster;INSERT PCAdjust"));
    QCOMPARE(rows(t.db(), "SELECT BillNo, AdjFlag, CPayFlag, TPayFlag, SPayFlag, CPerCapita FROM "
                          "PCMaster ORDER BY BillNo"),
             QString("   42|A| | | |50000;   43| | | | |50000"));
    // The last image read back as the bill in force: the adjustment scenarios.
}

void TestPerCapitaCorrections::exonerationAndBack() {
    TempTaxDatabase t;
    insertPerson(t, "   42", "'D', ' ', ' '");
    PerCapitaAdjustment a;
    a.image = image(QStringLiteral("   42"));
    a.adjDate = QDate(2013, 5, 6);
    a.reason = QStringLiteral("ADJ");
    QString error;
    QVERIFY(RecordPerCapitaAdjustment(t.db(), a, &error));
    // An exoneration sets all three bodies, whatever was paid or ticked.
    a.exonerate = true;
    a.adjNo = 2;
    a.reason = QStringLiteral("EXONERATION");
    QVERIFY2(RecordPerCapitaAdjustment(t.db(), a, &error), qPrintable(error));
    QCOMPARE(rows(t.db(), "SELECT AdjFlag, CPayFlag, TPayFlag, SPayFlag FROM PCMaster"),
             QString("A|X|X|X"));
    QCOMPARE(rows(t.db(), "SELECT AdjNo, AdjFlag FROM PCAdjust ORDER BY AdjNo"),
             QString("1|A;2|X"));
    // Taking it back clears all three flags, keeps the marker for the adjustment before, and
    // removes the exoneration's row.
    QVERIFY2(RecordPerCapitaUnexoneration(t.db(), QStringLiteral("   42"), 2, &error),
             qPrintable(error));
    QCOMPARE(rows(t.db(), "SELECT AdjFlag, CPayFlag, TPayFlag, SPayFlag FROM PCMaster"),
             QString("A| | | "));
    QCOMPARE(rows(t.db(), "SELECT AdjNo FROM PCAdjust"), QString("1"));
    QVERIFY(RecordPerCapitaUnexoneration(t.db(), QStringLiteral("   42"), 1, &error));
    QCOMPARE(rows(t.db(), "SELECT AdjFlag, (SELECT count(*) FROM PCAdjust) FROM PCMaster"),
             QString(" |0"));
}

void TestPerCapitaCorrections::failedWriteLeavesNothing() {
    TempTaxDatabase t;
    insertPerson(t, "   42");
    t.exec("UPDATE PCBillNum SET BillNum = 7");
    for (const char* table : {"PCAdjust", "PCAdds", "PCAddress"})
        t.exec(QStringLiteral("CREATE TRIGGER refuse%1 BEFORE INSERT ON %1 BEGIN SELECT "
                              "RAISE(ABORT, 'disk full'); END")
                   .arg(QLatin1String(table)));
    QString error;
    PerCapitaAdjustment a;
    a.image = image(QStringLiteral("   42"));
    a.adjDate = QDate(2013, 5, 6);
    QVERIFY(!RecordPerCapitaAdjustment(t.db(), a, &error));
    QVERIFY2(error.contains("disk full"), qPrintable(error));
    PerCapitaAddition add;
    add.image = image(QStringLiteral("A0007"));
    add.addDate = QDate(2013, 5, 6);
    QVERIFY(!AddPerCapitaBill(t.db(), add, &error));
    PerCapitaAddressRecord c;
    c.billNo = QStringLiteral("   42");
    c.name = QStringLiteral("X");
    QVERIFY(!RecordPerCapitaAddressChange(t.db(), c, &error));
    QCOMPARE(rows(t.db(), "SELECT BillNo, AdjFlag, CAddrFlag FROM PCMaster"), QString("   42| | "));
    QCOMPARE(rows(t.db(), "SELECT BillNum FROM PCBillNum"), QString("7"));
}

void TestPerCapitaCorrections::addressChain() {
    // The columns, the apostrophe and the address read back are pc_address_change.scn's.
    TempTaxDatabase t;
    insertPerson(t, "   42");
    insertPerson(t, "   43");
    logWrites(t);
    PerCapitaAddressRecord c;
    c.control = QStringLiteral("100042");
    c.billNo = QStringLiteral("   42");
    c.addrId = 1;
    c.name = QStringLiteral("O'HARA, ANN");
    c.aDate = QDate(2013, 5, 6);
    QString error;
    QVERIFY2(RecordPerCapitaAddressChange(t.db(), c, &error), qPrintable(error));
    c.addrId = 2;
    QVERIFY2(RecordPerCapitaAddressChange(t.db(), c, &error), qPrintable(error));
    QCOMPARE(writeLog(t),
             QString("UPDATE PCMaster;INSERT PCAddress;UPDATE PCMaster;INSERT PCAddress"));
    QCOMPARE(rows(t.db(), "SELECT BillNo, CAddrFlag FROM PCMaster ORDER BY BillNo"),
             QString("   42|A;   43| "));
}

QTEST_GUILESS_MAIN(TestPerCapitaCorrections)
#include "test_pc_corrections.moc"
