// The schema as the program creates it, opening files, typed fields, and reading a bill as it
// now stands through its adjustment and address chains.

#include "core/tax_database.h"
#include "support/test_support.h"

#include <QFile>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

QSet<QString> columnsOf(QSqlDatabase db, const QString& table) {
    QSet<QString> out;
    const QSqlRecord r = db.record(table);
    for (int i = 0; i < r.count(); ++i)
        out.insert(r.fieldName(i));
    return out;
}

int countColumns(const QString& table, TaxDatabase::ColumnType type) {
    int n = 0;
    for (const auto& c : TaxDatabase::table(table)->columns)
        n += c.type == type;
    return n;
}

QVariant scalar(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.exec(sql) || !q.next())
        return QVariant();
    return q.value(0);
}

// A bill with the columns the chains touch; the rest stay Null.
void insertBill(const TempTaxDatabase& t, const QString& billNo, const QString& adjFlag,
                const QString& addrFlag) {
    QVERIFY(
        t.exec(QStringLiteral(
                   "INSERT INTO TCMaster (District, Ward, Control, BillNo, Name, Addr1, City, "
                   "County, School, AdjFlag, CAddrFlag, CPayFlag) VALUES ('27', '1', '000123', "
                   "'%1', 'SMITH JOHN', '12 ELM ST', 'LITITZ', 1000000, 25000000, '%2', '%3', ' ')")
                   .arg(billNo, adjFlag, addrFlag)));
}

void insertAdjustment(const TempTaxDatabase& t, const QString& billNo, int adjNo, qint64 county,
                      const QString& name, const QString& kind = QStringLiteral("A")) {
    QVERIFY(t.exec(
        QStringLiteral(
            "INSERT INTO TCAdjust (Control, BillNo, AdjNo, Name, Addr1, City, County, School, "
            "AdjFlag, AdjDate) VALUES ('000123', '%1', %2, '%3', '12 ELM ST', 'LITITZ', %4, "
            "20000000, '%5', '2013-05-01')")
            .arg(billNo)
            .arg(adjNo)
            .arg(name)
            .arg(county)
            .arg(kind)));
}

void insertAddress(const TempTaxDatabase& t, const QString& billNo, int addrId,
                   const QString& addr1) {
    QVERIFY(t.exec(
        QStringLiteral("INSERT INTO TCAddress (Control, BillNo, AddrID, Name, Addr1, City, ADate) "
                       "VALUES ('000123', '%1', %2, 'SMITH JOHN', '%3', 'MANHEIM', '2013-06-01')")
            .arg(billNo)
            .arg(addrId)
            .arg(addr1)));
}

} // namespace

class TestTaxDatabase : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void schemaIsCreatedWithEveryTable();
    void amountColumnsAreExactAndComplete();
    void voidAndDistributionTablesCarryTheReceiptColumns();
    void numberTablesAndVersion();
    void openRefusesMissingAndForeignFiles();
    void validityCheck();
    void typedFields();
    void paddedBillNumbersCompareAsText();
    void adjustmentChainLatestWins();
    void addressChainOverlaysAfterAdjustment();
    void incompleteChainsAreRefusedWithTheirMessages();
};

void TestTaxDatabase::schemaIsCreatedWithEveryTable() {
    TempTaxDatabase t;
    QSqlDatabase db = t.db();
    for (const auto& def : TaxDatabase::schema()) {
        const QSet<QString> present = columnsOf(db, def.name);
        QVERIFY2(!present.isEmpty(), qPrintable(def.name));
        QCOMPARE(present.size(), int(def.columns.size()));
        for (const auto& c : def.columns)
            QVERIFY2(present.contains(c.name), qPrintable(def.name + "." + c.name));
    }
    // Searched keys are indexed.
    for (const auto& [table, key] : {std::pair{"TCMaster", "BillNo"}, {"TCReceipt", "Recnum"}})
        QCOMPARE(scalar(db, QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = "
                                           "'index' AND tbl_name = '%1' AND sql LIKE '%(%2)%'")
                                .arg(table, key))
                     .toInt(),
                 1);
}

void TestTaxDatabase::amountColumnsAreExactAndComplete() {
    using T = TaxDatabase::ColumnType;
    // 27 amounts, 6 installment columns, 2 exclusions and 3 exclusion amounts.
    QCOMPARE(countColumns("TCMaster", T::Money), 27 + 6 + 5);
    QCOMPARE(countColumns("PCMaster", T::Money), 18);
    // The void copies 35 money columns of a real estate receipt and 20 of a per capita one.
    QCOMPARE(countColumns("TCReceipt", T::Money), 35);
    QCOMPARE(countColumns("PCReceipt", T::Money), 20);

    // Money is stored as ten-thousandths, so sums in SQL stay exact.
    TempTaxDatabase t;
    for (int i = 0; i < 10; ++i)
        QVERIFY(t.exec(QStringLiteral("INSERT INTO TCReceipt (Recnum, County) VALUES ('r%1', %2)")
                           .arg(i)
                           .arg(MoneyValue(*Money::parse(u"0.10")).toLongLong())));
    QCOMPARE(MoneyField(scalar(t.db(), "SELECT sum(County) FROM TCReceipt")),
             Money::fromDollars(1));
}

void TestTaxDatabase::voidAndDistributionTablesCarryTheReceiptColumns() {
    TempTaxDatabase t;
    const QSet<QString> receipt = columnsOf(t.db(), "TCReceipt");
    const QSet<QString> voided = columnsOf(t.db(), "TCVoidReceipt");
    QVERIFY(voided.contains(receipt));
    for (const char* c : {"RCDisbNum", "RTDisbNum", "RSDisbNum", "VDate", "Reason", "SysDate"})
        QVERIFY2(voided.contains(QString::fromLatin1(c)), c);
    QVERIFY(columnsOf(t.db(), "PCVoidReceipt").contains(columnsOf(t.db(), "PCReceipt")));
    QCOMPARE(columnsOf(t.db(), "TCDistribution"), columnsOf(t.db(), "TCVoidDistribution"));
    QCOMPARE(columnsOf(t.db(), "PCDistribution"), columnsOf(t.db(), "PCVoidDistribution"));
    QVERIFY(!columnsOf(t.db(), "PCDistribution").contains("Map3"));
}

void TestTaxDatabase::numberTablesAndVersion() {
    TempTaxDatabase t;
    // Each number table holds one row, its counter at 1.
    for (const auto& [table, column] : {std::pair{"TCReceiptNum", "ReceiptNum"},
                                        {"PCReceiptNum", "ReceiptNum"},
                                        {"TCBillNum", "BillNum"},
                                        {"PCBillNum", "BillNum"}})
        QCOMPARE(
            scalar(t.db(),
                   QStringLiteral("SELECT count(*) || '|' || max(%2) FROM %1").arg(table, column))
                .toString(),
            QStringLiteral("1|1"));
    QCOMPARE(scalar(t.db(), "PRAGMA user_version").toInt(), TaxDatabase::SchemaVersion);
    QCOMPARE(scalar(t.db(), "PRAGMA journal_mode").toString(), QStringLiteral("delete"));
}

void TestTaxDatabase::openRefusesMissingAndForeignFiles() {
    TempTaxDatabase t;
    QString error;
    const QString missing = t.folder() + "/nothing.sqlite";
    QVERIFY(!TaxDatabase::open(missing, "probe", &error).isValid());
    QVERIFY(!error.isEmpty());
    QVERIFY2(!QFile::exists(missing), "opening must not create a file");

    const QString garbage = t.folder() + "/garbage.sqlite";
    QFile f(garbage);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(4096, 'x'));
    f.close();
    error.clear();
    QVERIFY(!TaxDatabase::open(garbage, "probe", &error).isValid());
    QVERIFY(!error.isEmpty());
    QVERIFY(!QSqlDatabase::contains("probe"));

    QSqlDatabase again = TaxDatabase::open(t.path(), "probe", &error);
    QVERIFY(again.isOpen());
    again = QSqlDatabase();
    TaxDatabase::close("probe");
}

void TestTaxDatabase::validityCheck() {
    TempTaxDatabase t;
    QString why;
    QVERIFY(TaxDatabase::isValidTaxDatabase(t.path(), &why));
    QVERIFY(!TaxDatabase::isValidTaxDatabase(t.folder() + "/none.sqlite", &why));

    // A sound SQLite file that is some other database.
    const QString other = t.folder() + "/other.sqlite";
    {
        TempTaxDatabase scratch;
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "other");
        db.setDatabaseName(other);
        QVERIFY(db.open());
        QSqlQuery(db).exec("CREATE TABLE Foo (x)");
        db.close();
    }
    QSqlDatabase::removeDatabase("other");
    why.clear();
    QVERIFY(!TaxDatabase::isValidTaxDatabase(other, &why));
    QVERIFY(why.contains("missing"));

    // A file in write-ahead mode is checked as it is: the check never turns it into our
    // journal mode, which would rewrite the chosen file's header.
    const QString wal = t.folder() + "/wal.sqlite";
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "wal");
        db.setDatabaseName(wal);
        QVERIFY(db.open());
        QSqlQuery(db).exec("PRAGMA journal_mode=WAL");
        QSqlQuery(db).exec("CREATE TABLE Foo (x)");
        db.close();
    }
    QSqlDatabase::removeDatabase("wal");
    QFile walFile(wal);
    QVERIFY(walFile.open(QIODevice::ReadOnly));
    const QByteArray before = walFile.readAll();
    walFile.close();
    QCOMPARE(before.at(18), char(2));
    QVERIFY(!TaxDatabase::isValidTaxDatabase(wal, &why));
    QVERIFY(walFile.open(QIODevice::ReadOnly));
    QCOMPARE(walFile.readAll(), before);

    // One table dropped from a tax database.
    QVERIFY(t.exec("DROP TABLE Specpay"));
    QVERIFY(!TaxDatabase::isValidTaxDatabase(t.path(), &why));
    QVERIFY(why.contains("Specpay"));
}

void TestTaxDatabase::typedFields() {
    QCOMPARE(MoneyField(QVariant()), Money());
    QVERIFY(!DateField(QVariant()).isValid());
    QVERIFY(DateValue(QDate()).isNull());
    QCOMPARE(FlagField(QVariant()), QStringLiteral(" "));
    QCOMPARE(FlagField(QVariant(QString())), QStringLiteral(" "));
}

void TestTaxDatabase::paddedBillNumbersCompareAsText() {
    TempTaxDatabase t;
    insertBill(t, "    1", " ", " ");
    insertBill(t, "   10", " ", " ");
    insertBill(t, "A0001", " ", " ");
    QCOMPARE(ReadBillAsItStands(t.db(), Duplicate::RealEstate, "1").status,
             BillNow::Status::NotFound);
    // Without adjustments or address changes the master row is the bill.
    const BillNow bill = ReadBillAsItStands(t.db(), Duplicate::RealEstate, "    1");
    QVERIFY(bill.found());
    QCOMPARE(bill.text("Name"), QStringLiteral("SMITH JOHN"));
    QCOMPARE(bill.money("County"), Money::fromDollars(100));
    QCOMPARE(bill.adjNo + bill.addrId, 0);
    QVERIFY(CheckBillIntegrity(bill));
    QSqlQuery q(t.db());
    QVERIFY(q.exec("SELECT BillNo FROM TCMaster ORDER BY BillNo"));
    QStringList order;
    while (q.next())
        order << q.value(0).toString();
    QCOMPARE(order, (QStringList{"    1", "   10", "A0001"}));
    QCOMPARE(scalar(t.db(), "SELECT count(*) FROM TCMaster WHERE BillNo < 'A'").toInt(), 2);
}

void TestTaxDatabase::adjustmentChainLatestWins() {
    TempTaxDatabase t;
    insertBill(t, "    7", "A", " ");
    // Inserted out of order: the highest number is the one in force.
    insertAdjustment(t, "    7", 2, 3000000, "SMITH JOHN & MARY");
    insertAdjustment(t, "    7", 1, 2000000, "SMITH J");
    const BillNow bill = ReadBillAsItStands(t.db(), Duplicate::RealEstate, "    7");
    QVERIFY(bill.found());
    QCOMPARE(bill.adjNo, 2);
    QCOMPARE(bill.adjustmentKind, QStringLiteral("A"));
    QCOMPARE(bill.text("Name"), QStringLiteral("SMITH JOHN & MARY"));
    QCOMPARE(bill.money("County"), Money::fromDollars(300));
    QCOMPARE(bill.money("School"), Money::fromDollars(2000));
    // The master's own flag stays: the adjustment's flag says what kind it was.
    QCOMPARE(bill.text("AdjFlag"), QStringLiteral("A"));
    // The master row itself is never changed by reading.
    QCOMPARE(MoneyField(scalar(t.db(), "SELECT County FROM TCMaster")), Money::fromDollars(100));

    // An exoneration is an adjustment of its own kind.
    insertBill(t, "    9", "A", " ");
    insertAdjustment(t, "    9", 1, 0, "SMITH JOHN", "X");
    const BillNow exonerated = ReadBillAsItStands(t.db(), Duplicate::RealEstate, "    9");
    QCOMPARE(exonerated.adjustmentKind, QStringLiteral("X"));
    QCOMPARE(exonerated.money("County"), Money());
}

void TestTaxDatabase::addressChainOverlaysAfterAdjustment() {
    TempTaxDatabase t;
    insertBill(t, "   12", "A", "A");
    insertAdjustment(t, "   12", 1, 2000000, "SMITH JOHN");
    insertAddress(t, "   12", 1, "1 OLD RD");
    insertAddress(t, "   12", 2, "99 NEW RD");
    const BillNow bill = ReadBillAsItStands(t.db(), Duplicate::RealEstate, "   12");
    QVERIFY(bill.found());
    QCOMPARE(bill.addrId, 2);
    QCOMPARE(bill.text("Addr1"), QStringLiteral("99 NEW RD"));
    QCOMPARE(bill.text("City"), QStringLiteral("MANHEIM"));
    QCOMPARE(bill.money("County"), Money::fromDollars(200));

    // Per capita reads its own tables.
    QVERIFY(t.exec("INSERT INTO PCMaster (BillNo, Name, Addr2, AdjFlag, CAddrFlag) VALUES ('    "
                   "3', 'DOE JANE', "
                   "'5 MAIN ST', ' ', 'A')"));
    QVERIFY(t.exec("INSERT INTO PCAddress (BillNo, AddrID, Name, Addr2) VALUES ('    3', 1, 'DOE "
                   "JANE', '6 MAIN ST')"));
    const BillNow person = ReadBillAsItStands(t.db(), Duplicate::PerCapita, "    3");
    QVERIFY(person.found());
    QCOMPARE(person.text("Addr2"), QStringLiteral("6 MAIN ST"));
}

void TestTaxDatabase::incompleteChainsAreRefusedWithTheirMessages() {
    TempTaxDatabase t;
    insertBill(t, "    4", "A", " ");
    insertBill(t, "    5", " ", "A");
    insertBill(t, "    6", "A", "A");
    insertAdjustment(t, "    6", 1, 2000000, "SMITH");
    MessageScript script;

    const BillNow adj = ReadBillAsItStands(t.db(), Duplicate::RealEstate, "    4");
    QCOMPARE(adj.status, BillNow::Status::IncompleteAdjustment);
    QVERIFY(!CheckBillIntegrity(adj));

    const BillNow addr = ReadBillAsItStands(t.db(), Duplicate::RealEstate, "    5");
    QCOMPARE(addr.status, BillNow::Status::IncompleteAddress);
    QVERIFY(!CheckBillIntegrity(addr));

    // A whole adjustment chain does not excuse a broken address chain.
    QCOMPARE(ReadBillAsItStands(t.db(), Duplicate::RealEstate, "    6").status,
             BillNow::Status::IncompleteAddress);

    // One message for each refused bill; their words: adjust_history_and_refusals.scn.
    QCOMPARE(script.titles(),
             (QStringList{"Database Integrity Error", "Database Integrity Error"}));
    QVERIFY(script.texts().at(0).contains("incomplete adjustment transaction"));
    QVERIFY(script.texts().at(1).contains("incomplete address change transaction"));

    // A missing bill shows nothing here: the screens give their own message.
    QVERIFY(!CheckBillIntegrity(ReadBillAsItStands(t.db(), Duplicate::RealEstate, "99999")));
    QCOMPARE(script.titles().size(), 2);
}

QTEST_GUILESS_MAIN(TestTaxDatabase)
#include "test_tax_database.moc"
