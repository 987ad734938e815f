// Special taxes and special taxpayers below their screens: the previous year's copy, the flat
// amounts on the bill's specials and their slots, and that a failed save leaves nothing half
// written.

#include "rates/edit_special_taxes.h"
#include "rates/edit_special_taxpayers.h"
#include "support/test_support.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

QStringList rows(const TempTaxDatabase& t, const QString& sql) {
    QStringList out;
    QSqlQuery q(t.db());
    if (!q.exec(sql))
        return {QStringLiteral("<error>")};
    while (q.next()) {
        QStringList values;
        for (int i = 0; i < q.record().count(); ++i)
            values << (q.value(i).isNull() ? QStringLiteral("<null>") : q.value(i).toString());
        out << values.join(u'|');
    }
    return out;
}

void seedTaxes(const TempTaxDatabase& t) {
    QVERIFY(t.exec("INSERT INTO Spectax (District, Ward, TaxKey, Desc1, Mill, ExFlag, SpecFlag, "
                   "TaxYear) VALUES "
                   "('12', '3', 'FIRE', 'FIRE TAX', 0.5, 'N', 'N', '2012'), "
                   "('12', '3', 'LIGHT', 'STREET LIGHTS', 0, 'N', 'Y', '2012'), "
                   "('12', '3', 'LIGHT', 'ST LIGHTS NEW', 0.75, 'Y', 'Y', '2013'), "
                   "('45', '1', 'AMBUL', 'AMBULANCE', 0.2, 'N', 'N', '2012')"));
}

void seedBills(const TempTaxDatabase& t) {
    QVERIFY(t.exec("INSERT INTO TCMaster (District, Ward, Control, BillNo, Name, Map3, Map4, "
                   "Map5, S1Face, DS1Face, PS1Face, S2Face, DS2Face, PS2Face, S3Face, DS3Face, "
                   "PS3Face) VALUES "
                   "('12', '3', '000101', '    1', 'SMITH JOHN', '12-003', '001', '0000', "
                   "110000, 107800, 121000, 220000, 215600, 242000, 330000, 323400, 363000), "
                   "('45', '1', '000101', '    1', 'OTHER DISTRICT', '45', '1', '0', 110000, "
                   "107800, 121000, 0, 0, 0, 330000, 323400, 363000)"));
}

SpecialTaxpayerAmount flat(const QString& key, Money amount) {
    SpecialTaxpayerAmount v;
    v.district = "12";
    v.ward = "3";
    v.control = "000101";
    v.taxKey = key;
    v.map3 = "12-003";
    v.map4 = "001";
    v.map5 = "0000";
    v.map = v.map3 + v.map4 + v.map5;
    v.name = "SMITH JOHN";
    v.amount = amount;
    v.discountPercent = 2;
    v.penaltyPercent = 10;
    return v;
}

const char* const BillSpecials = "SELECT S1Face, DS1Face, PS1Face, S2Face, S3Face, DS3Face, "
                                 "PS3Face FROM TCMaster WHERE District = '%1' AND Ward = '%2'";

} // namespace

class TestSpecialTaxSaves : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void previousYear_data();
    void previousYear();
    void copyPreviousYear();
    void flatAmounts_data();
    void flatAmounts();
    void slots();
    void deleteClearsSlotOfTheTax_data();
    void deleteClearsSlotOfTheTax();
    void failedBillUpdateWritesNothing();
};

void TestSpecialTaxSaves::previousYear_data() {
    QTest::addColumn<QString>("year");
    QTest::addColumn<QString>("previous");
    AddRow("plain", "2013", "2012");
    AddRow("century", "2000", "1999");
    AddRow("blanks", " 2014 ", "2013");
    AddRow("not a year", "20x3", "");
    AddRow("empty", "", "");
}

void TestSpecialTaxSaves::previousYear() {
    QFETCH(QString, year);
    QTEST(PreviousTaxYear(year), "previous");
}

// What the copy brings in goes through the screen (rates_special_taxes.scn); a second press
// must not bring it in twice, and a year with nothing before it (or no year) brings nothing.
void TestSpecialTaxSaves::copyPreviousYear() {
    TempTaxDatabase t;
    seedTaxes(t);
    QVERIFY(CopySpecialTaxesFromPreviousYear(t.db(), "12", "3", "2012"));
    QVERIFY(CopySpecialTaxesFromPreviousYear(t.db(), "12", "3", "year"));
    QCOMPARE(rows(t, "SELECT count(*) FROM Spectax"), QStringList{"4"});
    QVERIFY(CopySpecialTaxesFromPreviousYear(t.db(), "12", "3", "2013"));
    QVERIFY(CopySpecialTaxesFromPreviousYear(t.db(), "12", "3", "2013"));
    QCOMPARE(rows(t, "SELECT count(*) FROM Spectax"), QStringList{"5"});
}

void TestSpecialTaxSaves::flatAmounts_data() {
    QTest::addColumn<qint64>("cents");
    QTest::addColumn<double>("td");
    QTest::addColumn<double>("tp");
    QTest::addColumn<qint64>("discountCents");
    QTest::addColumn<qint64>("penaltyCents");
    // 25.00 and 33.33 at 2 and 10 percent go through the screen (rates_special_taxpayers.scn).
    // 12.25 x 2% = 0.245 and 12.25 x 10% = 1.225: the half goes up.
    AddRow("half up", qint64(1225), 2.0, 10.0, qint64(1200), qint64(1348));
    AddRow("no rates", qint64(1999), 0.0, 0.0, qint64(1999), qint64(1999));
    AddRow("zero amount", qint64(0), 2.0, 10.0, qint64(0), qint64(0));
}

void TestSpecialTaxSaves::flatAmounts() {
    QFETCH(qint64, cents);
    QFETCH(double, td);
    QFETCH(double, tp);
    const FlatSpecialAmounts a = FigureFlatSpecial(Money::fromCents(cents), td, tp);
    QCOMPARE(a.face, Money::fromCents(cents));
    QFETCH(qint64, discountCents);
    QFETCH(qint64, penaltyCents);
    QCOMPARE(a.discount.toPlain(), Money::fromCents(discountCents).toPlain());
    QCOMPARE(a.penalty.toPlain(), Money::fromCents(penaltyCents).toPlain());
}

void TestSpecialTaxSaves::slots() {
    TempTaxDatabase t;
    seedTaxes(t);
    // Every district and year together, by TaxKey: AMBUL, FIRE, LIGHT, LIGHT.
    QCOMPARE(SpecialTaxSlot(t.db(), "AMBUL"), 1);
    QCOMPARE(SpecialTaxSlot(t.db(), "FIRE"), 2);
    QCOMPARE(SpecialTaxSlot(t.db(), "LIGHT"), 3);
    QCOMPARE(SpecialTaxSlot(t.db(), "NONE"), 0);
    QVERIFY(t.exec("INSERT INTO Spectax (District, Ward, TaxKey, TaxYear) VALUES ('12', '3', "
                   "'ZZZ', '2013')"));
    QCOMPARE(SpecialTaxSlot(t.db(), "ZZZ"), 5);
}

void TestSpecialTaxSaves::deleteClearsSlotOfTheTax_data() {
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("bill");
    // AMBUL is slot 1: the first special is zeroed and the third, where its amount stood, stays.
    // Slot 3, and a fourth tax that changes no bill: rates_special_taxpayers.scn.
    AddRow("slot 1", "AMBUL", "0|0|0|220000|330000|323400|363000");
    AddRow("slot 2", "FIRE", "110000|107800|121000|0|330000|323400|363000");
}

void TestSpecialTaxSaves::deleteClearsSlotOfTheTax() {
    QFETCH(QString, key);
    TempTaxDatabase t;
    seedTaxes(t);
    seedBills(t);
    QVERIFY(t.exec("INSERT INTO Spectax (District, Ward, TaxKey, TaxYear) VALUES ('12', '3', "
                   "'ZZZ', '2013')"));
    QVERIFY(t.exec(QString("INSERT INTO Specpay (District, Ward, Control, TaxKey, Amount) VALUES "
                           "('12', '3', '000101', '%1', 10000), ('12', '3', '000101', 'OTHER', "
                           "20000)")
                       .arg(key)));
    QVERIFY(DeleteSpecialTaxpayerAmount(t.db(), "12", "3", "000101", key));
    QCOMPARE(rows(t, "SELECT TaxKey FROM Specpay"), QStringList{"OTHER"});
    QTEST(rows(t, QString::fromLatin1(BillSpecials).arg("12", "3")).value(0), "bill");
    QCOMPARE(rows(t, QString::fromLatin1(BillSpecials).arg("45", "1")),
             QStringList{"110000|107800|121000|0|330000|323400|363000"});
}

void TestSpecialTaxSaves::failedBillUpdateWritesNothing() {
    TempTaxDatabase t;
    seedTaxes(t);
    QVERIFY(t.exec("DROP TABLE TCMaster"));
    QString error;
    QVERIFY(!SaveSpecialTaxpayerAmount(t.db(), flat("LIGHT", Money::fromCents(2500)), &error));
    QVERIFY(!error.isEmpty());
    QCOMPARE(rows(t, "SELECT count(*) FROM Specpay"), QStringList{"0"});
    QVERIFY(t.exec("INSERT INTO Specpay (District, Ward, Control, TaxKey, Amount) VALUES "
                   "('12', '3', '000101', 'LIGHT', 10000)"));
    QVERIFY(!DeleteSpecialTaxpayerAmount(t.db(), "12", "3", "000101", "LIGHT", &error));
    QCOMPARE(rows(t, "SELECT count(*) FROM Specpay"), QStringList{"1"});
    // The connection is usable afterwards: no transaction was left open.
    QVERIFY(t.exec("DELETE FROM Specpay"));
    QVERIFY(t.db().transaction());
    QVERIFY(t.db().rollback());
}

QTEST_GUILESS_MAIN(TestSpecialTaxSaves)
#include "test_special_tax_saves.moc"
