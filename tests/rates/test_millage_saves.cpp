// The millage saves below the screens: typed rates, rates reading back exactly as typed, a
// save of another year and blank dates. What each screen's save writes and leaves is proved
// through the screens in the rates scenarios.

#include "rates/maintain_millages_county.h"
#include "rates/maintain_millages_township.h"
#include "rates/millage_common.h"
#include "support/test_support.h"

#include <QSqlQuery>
#include <QTest>

namespace {

// One column of one Millfile row, as text ("<null>" for Null).
QString millfile(const TempTaxDatabase& t, const QString& districtWard, const QString& column) {
    QSqlQuery q(t.db());
    q.prepare(QStringLiteral("SELECT %1 FROM Millfile WHERE District || Ward = ?").arg(column));
    q.addBindValue(districtWard);
    if (!q.exec() || !q.next())
        return QStringLiteral("<no row>");
    return q.value(0).isNull() ? QStringLiteral("<null>") : q.value(0).toString();
}

// A county row and a district row for 2013.
void seedMillfile(const TempTaxDatabase& t) {
    QVERIFY(t.exec("INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('12', '3', 0)"));
    QVERIFY(t.exec("INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1TaxName) VALUES "
                   "('00', '0', '2013', 5.5, 'COUNTY SP')"));
    QVERIFY(t.exec("INSERT INTO Millfile (District, Ward, TaxYear, MailDate, LateDiscDate) "
                   "VALUES ('12', '3', '2013', '2013-03-01', '2013-08-31')"));
}

} // namespace

class TestMillageSaves : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void typedRates_data();
    void typedRates();
    void rateReadsBackAsTyped_data();
    void rateReadsBackAsTyped();
    void countySaveOtherYearChangesNothing();
    void townshipBlankDatesAreNull();
};

void TestMillageSaves::typedRates_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("numeric");
    QTest::addColumn<double>("value");
    // A plain rate and letters typed for one: rates_county_millages.scn.
    AddRow("blanks around", "  7 ", true, 7.0);
    AddRow("leading point", ".5", true, 0.5);
    AddRow("trailing point", "3.", true, 3.0);
    AddRow("negative", "-1.25", true, -1.25);
    AddRow("two points", "1.2.3", false, 0.0);
    AddRow("comma", "1,5", false, 0.0);
    AddRow("blank", "   ", false, 0.0);
    AddRow("sign only", "-", false, 0.0);
    AddRow("exponent", "1e3", false, 0.0);
}

void TestMillageSaves::typedRates() {
    QFETCH(QString, typed);
    QFETCH(bool, numeric);
    const std::optional<double> rate = ParseRate(typed);
    QCOMPARE(rate.has_value(), numeric);
    if (numeric)
        QTEST(*rate, "value");
}

void TestMillageSaves::rateReadsBackAsTyped_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    // 12.345, 5.5 and whole rates: rates_county_millages.scn.
    AddRow("trailing zero dropped", "2.50", "2.5");
    AddRow("small", "0.0001", "0.0001");
    AddRow("many digits", "1.23456789012", "1.23456789012");
    AddRow("one tenth", "0.1", "0.1");
}

void TestMillageSaves::rateReadsBackAsTyped() {
    QFETCH(QString, typed);
    TempTaxDatabase t;
    seedMillfile(t);
    CountyMillages v;
    v.taxYear = "2013";
    v.smr = *ParseRate(typed);
    QVERIFY(SaveCountyMillages(t.db(), v));
    QSqlQuery q(t.db());
    QVERIFY(q.exec("SELECT SMR FROM Millfile WHERE District || Ward = '000'") && q.next());
    QCOMPARE(q.value(0).toDouble(), *ParseRate(typed));
    QTEST(RateText(q.value(0)), "shown");
}

void TestMillageSaves::countySaveOtherYearChangesNothing() {
    TempTaxDatabase t;
    seedMillfile(t);
    CountyMillages v{"2014", 1, 1, "X", 1, 1, 1, 1, 1, 1};
    QVERIFY(SaveCountyMillages(t.db(), v));
    QCOMPARE(millfile(t, "000", "SMR"), "5.5");
    QCOMPARE(millfile(t, "000", "S1TaxName"), "COUNTY SP");
}

void TestMillageSaves::townshipBlankDatesAreNull() {
    TempTaxDatabase t;
    seedMillfile(t);
    TownshipMillages v;
    v.district = "12";
    v.ward = "3";
    v.taxYear = "2013";
    v.billCounty = "E";
    v.billTwp = "E";
    QVERIFY(SaveTownshipMillages(t.db(), v));
    QCOMPARE(millfile(t, "123", "MailDate"), "<null>");
    QCOMPARE(millfile(t, "123", "LateDiscDate"), "<null>");
    QCOMPARE(StoredDateText(QVariant()), QString());
}

QTEST_GUILESS_MAIN(TestMillageSaves)
#include "test_millage_saves.moc"
