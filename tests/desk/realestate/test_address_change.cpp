// The address change's write and the checks of a new ZIP code; the query lists' criteria and
// the grid model's order, union and finding under the database's binary order.
#include "desk/realestate/address_change.h"
#include "support/test_support.h"

#include "core/query_grid.h"
#include "core/tax_database.h"
#include "desk/realestate/query_individual.h"
#include "desk/realestate/query_search.h"
#include "desk/realestate/query_tc.h"

#include <QTest>

namespace {

const auto rows = &QueryRows;

void insertBill(TempTaxDatabase& t, const char* billNo, const char* control, const char* name,
                const char* map3 = "01") {
    QVERIFY(t.exec(QStringLiteral("INSERT INTO TCMaster (Control, BillNo, Name, Map3, Map4, Map5, "
                                  "County, DCounty, PCounty, CPayFlag, TPayFlag, SPayFlag, "
                                  "CAddrFlag) VALUES ('%1', '%2', '%3', '%4', '02', '003', "
                                  "1000000, 980000, 1100000, ' ', ' ', ' ', ' ')")
                       .arg(QLatin1String(control), QLatin1String(billNo),
                            QString::fromUtf8(name).replace(u'\'', QStringLiteral("''")),
                            QLatin1String(map3))));
}

AddressChangeRecord change(const char* billNo, int addrId, const char* name) {
    AddressChangeRecord c;
    c.control = QStringLiteral("000042");
    c.billNo = QString::fromLatin1(billNo);
    c.addrId = addrId;
    c.name = QString::fromUtf8(name);
    c.aDate = QDate(2013, 5, 2);
    return c;
}

} // namespace

class TestAddressChange : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void zipChecks_data();
    void zipChecks();
    void writesFlagThenRow();
    void failedRowLeavesNoFlag();
    void criteria_data();
    void criteria();
    void masterListOrderAndUnion();
    void individualPeriod_data();
    void individualPeriod();
};

void TestAddressChange::zipChecks_data() {
    QTest::addColumn<bool>("extension");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("message"); // empty: passes

    // Blank, letters, short and a good code of each field go through the screen
    // (desk_address_change.scn); here the forms a number conversion would let through.
    AddRow("zip with a point", false, QString("1234."), QString("Invalid Zip Code"));
    AddRow("zip negative", false, QString("-1234"), QString("Invalid Zip Code"));
    AddRow("extension blank", true, QString(""), QString());
    AddRow("extension sign", true, QString("+123"), QString("Invalid Zip Code Extension"));
    AddRow("extension point", true, QString("1.25"), QString("Invalid Zip Code Extension"));
}

void TestAddressChange::zipChecks() {
    QFETCH(bool, extension);
    QFETCH(QString, typed);
    QFETCH(QString, message);
    const FieldRefusal refusal = extension ? CheckNewZipCode2(typed) : CheckNewZipCode(typed);
    QCOMPARE(refusal.text, message);
    if (!message.isEmpty())
        QCOMPARE(refusal.title,
                 extension ? QString("Enter Zip Code Extension") : QString("Enter Zip Code"));
}

void TestAddressChange::writesFlagThenRow() {
    TempTaxDatabase t;
    insertBill(t, "   42", "000042", "ANN OWNER");
    insertBill(t, "   43", "000043", "NEXT DOOR");
    t.exec("CREATE TABLE WriteLog (n INTEGER PRIMARY KEY, what TEXT)");
    t.exec("CREATE TRIGGER a AFTER UPDATE ON TCMaster BEGIN INSERT INTO WriteLog (what) VALUES "
           "('flag ' || new.CAddrFlag); END");
    t.exec("CREATE TRIGGER b AFTER INSERT ON TCAddress BEGIN INSERT INTO WriteLog (what) VALUES "
           "('row ' || new.AddrID); END");
    QString error;
    QVERIFY2(RecordAddressChange(t.db(), change("   42", 1, "ANN O'HARA"), &error),
             qPrintable(error));
    QVERIFY2(RecordAddressChange(t.db(), change("   42", 2, "ANN O'HARA"), &error),
             qPrintable(error));
    QCOMPARE(rows(t.db(), "SELECT what FROM WriteLog ORDER BY n"),
             QString("flag A;row 1;flag A;row 2"));
    QCOMPARE(rows(t.db(), "SELECT BillNo, CAddrFlag FROM TCMaster ORDER BY BillNo"),
             QString("   42|A;   43| "));
}

void TestAddressChange::failedRowLeavesNoFlag() {
    TempTaxDatabase t;
    insertBill(t, "   42", "000042", "ANN OWNER");
    t.exec("CREATE TRIGGER refuse BEFORE INSERT ON TCAddress BEGIN SELECT RAISE(ABORT, 'full'); "
           "END");
    QString error;
    QVERIFY(!RecordAddressChange(t.db(), change("   42", 1, "ANN O'HARA"), &error));
    QVERIFY2(error.contains("full"), qPrintable(error));
    QCOMPARE(rows(t.db(), "SELECT CAddrFlag FROM TCMaster"), QString(" "));
    QCOMPARE(rows(t.db(), "SELECT count(*) FROM TCAddress"), QString("0"));
}

void TestAddressChange::criteria_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("typed");
    QTest::addColumn<QString>("criterion");
    // A short number and a full map go through the list screen (query_master_list.scn).

    AddRow("bill number with blanks", QString("bill"), QStringList{" 12 "}, QString("   12"));
    AddRow("added bill upper-cased", QString("bill"), QStringList{"a0001"}, QString("A0001"));
    AddRow("map padded 4 3 5", QString("map"), QStringList{"12", "3", "45"},
           QString("12  3  45   "));
    AddRow("map apostrophe kept", QString("map"), QStringList{"O'", "", ""},
           QString("O'          "));
}

void TestAddressChange::criteria() {
    QFETCH(QString, kind);
    QFETCH(QStringList, typed);
    QFETCH(QString, criterion);
    if (kind == "bill")
        QCOMPARE(NormalizeQueryBillNo(typed.at(0)), criterion);
    else
        QCOMPARE(MapCriterion(typed.at(0), typed.at(1), typed.at(2)), criterion);
}

void TestAddressChange::masterListOrderAndUnion() {
    TempTaxDatabase t;
    insertBill(t, "    1", "000001", "zed owner");
    insertBill(t, "    2", "000002", "ANN O'NEIL");
    insertBill(t, "   10", "000010", "BOB");
    insertBill(t, "A0001", "000900", "ADDED LATER");
    t.exec("UPDATE TCMaster SET CAddrFlag = 'A' WHERE BillNo = '    2'");
    // Two changes under new names, and one that repeats the master row in every column.
    t.exec("INSERT INTO TCAddress (Control, BillNo, AddrID, Name, Map3, Map4, Map5) VALUES "
           "('000002', '    2', 1, 'CARL NEW', '01', '02', '003'), "
           "('000002', '    2', 2, 'ANN O''NEIL', '01', '02', '003'), "
           "('000002', '    2', 3, 'DORA NEWER', '01', '02', '003')");
    QueryGridModel list({{"Name", "Name", QueryGridModel::Format::Text},
                         {"Face", "Face", QueryGridModel::Format::Money}},
                        MasterListKeys());
    list.setLateFields("BillNo", MasterAmountsSql());
    QString error;
    QVERIFY2(list.load(t.db(), MasterListSql(), {}, {"UName", "BillNo"}, true, &error),
             qPrintable(error));
    QStringList names;
    for (int r = 0; r < list.rowCount(); ++r)
        names << list.text(r, list.field("Name"));
    QCOMPARE(names, QStringList({"ADDED LATER", "ANN O'NEIL", "BOB", "CARL NEW", "DORA NEWER",
                                 "zed owner"}));
    // Every row of bill 2 carries the master's amounts.
    QCOMPARE(list.data(list.index(3, 1)).toString(), QString("$100.00"));

    // Found at or after the criterion in binary order (beyond the last, the last row:
    // query_master_list.scn).
    QCOMPARE(list.findAtOrAfter(list.field("UName"), "ANN O'N"), 1);
    QCOMPARE(list.findAtOrAfter(list.field("UName"), "C"), 3);
    QCOMPARE(list.findAtOrAfter(list.field("UName"), "ZED OWNER"), 5);

    // By bill number as text: the padded numbers in numeric order, bill 2 under its three
    // names, and the added bill after every number.
    QVERIFY(list.load(t.db(), MasterListSql(), {}, {"BillNo"}, true, &error));
    QStringList bills;
    for (int r = 0; r < list.rowCount(); ++r)
        bills << list.text(r, list.field("BillNo"));
    QCOMPARE(bills, QStringList({"    1", "    2", "    2", "    2", "   10", "A0001"}));
    QCOMPARE(list.findAtOrAfter(list.field("BillNo"), "    3"), 4);
}

void TestAddressChange::individualPeriod_data() {
    QTest::addColumn<QDate>("today");
    QTest::addColumn<QDate>("discDate");
    QTest::addColumn<QDate>("faceDate2");
    QTest::addColumn<QString>("period");

    const QDate disc(2013, 4, 30);
    const QDate face(2013, 6, 30);
    // The last day of discount, the day after and the day after face: query_individual.scn.
    AddRow("last day of face", QDate(2013, 6, 30), disc, face, QString("F"));
    AddRow("no discount date", QDate(2013, 3, 1), QDate(), face, QString("F"));
    AddRow("no dates", QDate(2013, 3, 1), QDate(), QDate(), QString("P"));
}

void TestAddressChange::individualPeriod() {
    QFETCH(QDate, today);
    QFETCH(QDate, discDate);
    QFETCH(QDate, faceDate2);
    QFETCH(QString, period);
    QCOMPARE(QString(IndividualQueryPeriod(today, discDate, faceDate2)), period);
}

QTEST_MAIN(TestAddressChange)
#include "test_address_change.moc"
