#include "core/money.h"

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

    QTest::newRow("one decimal") << "1234.5" << true << qint64(12345000);
    QTest::newRow("dollar and commas") << "$1,234.50" << true << qint64(12345000);
    QTest::newRow("negative whole") << "-3" << true << qint64(-30000);
    QTest::newRow("parentheses") << "(12.00)" << true << qint64(-120000);
    QTest::newRow("parentheses and dollar") << "($12.00)" << true << qint64(-120000);
    QTest::newRow("outer blanks") << " 7 " << true << qint64(70000);
    QTest::newRow("minus before dollar") << "-$1,234.50" << true << qint64(-12345000);
    QTest::newRow("no whole part") << ".5" << true << qint64(5000);
    QTest::newRow("four places") << "1.2345" << true << qint64(12345);
    QTest::newRow("largest") << "922337203685477.5807" << true
                             << std::numeric_limits<qint64>::max();

    QTest::newRow("empty") << "" << false << qint64(0);
    QTest::newRow("word") << "abc" << false << qint64(0);
    QTest::newRow("five places") << "1.23456" << false << qint64(0);
    QTest::newRow("trailing letter") << "12a" << false << qint64(0);
    QTest::newRow("two points") << "1.2.3" << false << qint64(0);
    QTest::newRow("empty parentheses") << "()" << false << qint64(0);
    QTest::newRow("minus in parentheses") << "(-5)" << false << qint64(0);
    QTest::newRow("leading comma") << ",123" << false << qint64(0);
    QTest::newRow("double comma") << "1,,234" << false << qint64(0);
    QTest::newRow("comma in fraction") << "1.5,0" << false << qint64(0);
    QTest::newRow("inner blank") << "1 234" << false << qint64(0);
    QTest::newRow("whole overflow") << "922337203685478" << false << qint64(0);
    QTest::newRow("fraction overflow") << "922337203685477.5808" << false << qint64(0);
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

    QTest::newRow("receipt total") << qint64(123450000) << "$###,###,##0.00"
                                   << "$12,345.00";
    QTest::newRow("negative with dollar") << qint64(-12345000) << "$###,###,##0.00"
                                          << "-$1,234.50";
    QTest::newRow("zero forced") << qint64(0) << "$###,###,##0.00"
                                 << "$0.00";
    QTest::newRow("zero optional") << qint64(0) << "#,###,###.00"
                                   << ".00";
    QTest::newRow("zero bare") << qint64(0) << "$#,###,###.##"
                               << "$.";
    QTest::newRow("grouping millions") << qint64(12345678900) << "#,###,###.00"
                                       << "1,234,567.89";
    QTest::newRow("more digits than places") << qint64(12345678901000) << "$###,###.00"
                                             << "$1,234,567,890.10";
    QTest::newRow("half cent up") << qint64(50) << "0.00"
                                  << "0.01";
    QTest::newRow("half cent away from zero") << qint64(-50) << "0.00"
                                              << "-0.01";
    QTest::newRow("negative rounds to zero") << qint64(-49) << "0.00"
                                             << "0.00";
    QTest::newRow("carry into new group") << qint64(9999999950) << "#,###.00"
                                          << "1,000,000.00";
    QTest::newRow("odd grouping") << qint64(12345670000) << "$###,###,#.00"
                                  << "$1,234,567.00";
    QTest::newRow("blank field") << qint64(0) << "$.00"
                                 << "$.00";
    QTest::newRow("four places") << std::numeric_limits<qint64>::max() << "#,###.0000"
                                 << "922,337,203,685,477.5807";
    QTest::newRow("lowest") << std::numeric_limits<qint64>::min() << "#,###.0000"
                            << "-922,337,203,685,477.5808";
    QTest::newRow("general") << qint64(12345000) << ""
                             << "1234.5";
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
    QTest::newRow("zero") << qint64(0) << "0.00";
    QTest::newRow("plain") << qint64(12345600) << "1234.56";
    QTest::newRow("negative") << qint64(-25000) << "-2.50";
    QTest::newRow("large, no separators") << qint64(123456789010000) << "12345678901.00";
}

void TestMoney::toPlain() {
    QFETCH(qint64, units);
    QFETCH(QString, expected);
    QCOMPARE(Money::fromUnits(units).toPlain(), expected);
}

void TestMoney::fromRounded_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<qint64>("units");
    QTest::newRow("sum noise") << 0.1 + 0.2 << qint64(3000);
    QTest::newRow("rounded amount") << 2.35 << qint64(23500);
    QTest::newRow("negative") << -1.24 << qint64(-12400);
    QTest::newRow("not a number") << std::nan("") << qint64(0);
    QTest::newRow("too large") << 1e30 << std::numeric_limits<qint64>::max();
}

void TestMoney::fromRounded() {
    QFETCH(double, value);
    QFETCH(qint64, units);
    QCOMPARE(Money::fromRounded(value).units(), units);
}

QTEST_APPLESS_MAIN(TestMoney)
#include "test_money.moc"
