#include "core/money.h"
#include "support/test_support.h"

#include <QLocale>
#include <QTest>
#include <limits>

class TestMoney : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void parse_data();
    void parse();
    void format_data();
    void format();
    void toPlain_data();
    void toPlain();
    void fromRounded_data();
    void fromRounded();
};

void TestMoney::initTestCase() {
    // Amounts and dates are the US forms whatever the machine's locale says.
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

void TestMoney::parse_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<qint64>("units");

    AddRow("dollar and commas", "$1,234.50", true, qint64(12345000));
    AddRow("negative whole", "-3", true, qint64(-30000));
    AddRow("parentheses", "(12.00)", true, qint64(-120000));
    AddRow("parentheses and dollar", "($12.00)", true, qint64(-120000));
    AddRow("outer blanks", " 7 ", true, qint64(70000));
    AddRow("minus before dollar", "-$1,234.50", true, qint64(-12345000));
    AddRow("no whole part", ".5", true, qint64(5000));
    AddRow("four places", "1.2345", true, qint64(12345));
    AddRow("largest", "922337203685477.5807", true, std::numeric_limits<qint64>::max());

    AddRow("empty", "", false, qint64(0));
    AddRow("word", "abc", false, qint64(0));
    AddRow("five places", "1.23456", false, qint64(0));
    AddRow("trailing letter", "12a", false, qint64(0));
    AddRow("two points", "1.2.3", false, qint64(0));
    AddRow("empty parentheses", "()", false, qint64(0));
    AddRow("minus in parentheses", "(-5)", false, qint64(0));
    AddRow("leading comma", ",123", false, qint64(0));
    AddRow("double comma", "1,,234", false, qint64(0));
    AddRow("comma in fraction", "1.5,0", false, qint64(0));
    AddRow("inner blank", "1 234", false, qint64(0));
    AddRow("whole overflow", "922337203685478", false, qint64(0));
    AddRow("fraction overflow", "922337203685477.5808", false, qint64(0));
}

void TestMoney::parse() {
    QFETCH(QString, typed);
    QFETCH(bool, accepted);
    QFETCH(qint64, units);
    const std::optional<Money> result = Money::parse(typed);
    QCOMPARE(result.has_value(), accepted);
    if (accepted)
        QCOMPARE(result->units(), units);
}

void TestMoney::format_data() {
    QTest::addColumn<qint64>("units");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");

    // The pattern's rules are the ones FormatNumber follows (test_common_values); these rows
    // are the amount's own digits, signs and rounding.
    AddRow("zero bare", qint64(0), "$#,###,###.##", "$.");
    AddRow("grouping millions", qint64(12345678900), "#,###,###.00", "1,234,567.89");
    AddRow("half cent away from zero", qint64(-50), "0.00", "-0.01");
    AddRow("negative rounds to zero", qint64(-49), "0.00", "0.00");
    AddRow("carry into new group", qint64(9999999950), "#,###.00", "1,000,000.00");
    AddRow("blank field", qint64(0), "$.00", "$.00");
    AddRow("four places", std::numeric_limits<qint64>::max(), "#,###.0000",
           "922,337,203,685,477.5807");
    AddRow("lowest", std::numeric_limits<qint64>::min(), "#,###.0000", "-922,337,203,685,477.5808");
    AddRow("general", qint64(12345000), "", "1234.5");
}

void TestMoney::format() {
    QFETCH(qint64, units);
    QFETCH(QString, pattern);
    QFETCH(QString, expected);
    QCOMPARE(Money::fromUnits(units).format(pattern), expected);
}

void TestMoney::toPlain_data() {
    QTest::addColumn<qint64>("units");
    QTest::addColumn<QString>("expected");
    AddRow("zero", qint64(0), "0.00");
    AddRow("plain", qint64(12345600), "1234.56");
    AddRow("negative", qint64(-25000), "-2.50");
    AddRow("large, no separators", qint64(123456789010000), "12345678901.00");
}

void TestMoney::toPlain() {
    QFETCH(qint64, units);
    QFETCH(QString, expected);
    QCOMPARE(Money::fromUnits(units).toPlain(), expected);
}

void TestMoney::fromRounded_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<qint64>("units");
    AddRow("sum noise", 0.1 + 0.2, qint64(3000));
    AddRow("rounded amount", 2.35, qint64(23500));
    AddRow("negative", -1.24, qint64(-12400));
    AddRow("not a number", std::nan(""), qint64(0));
    AddRow("too large", 1e30, std::numeric_limits<qint64>::max());
}

void TestMoney::fromRounded() {
    QFETCH(double, value);
    QFETCH(qint64, units);
    QCOMPARE(Money::fromRounded(value).units(), units);
}

QTEST_APPLESS_MAIN(TestMoney)
#include "test_money.moc"
