#include "core/common_values.h"
#include "core/value_functions.h"
#include "support/test_support.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QMetaType>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

class TestCommonValues : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void padFormat_data();
    void padFormat();
    void padFormatMoney_data();
    void padFormatMoney();
    void formatNumber_data();
    void formatNumber();
    void formatPercent_data();
    void formatPercent();
    void properName_data();
    void properName();
    void roundTo_data();
    void roundTo();
    void countSeparators_data();
    void countSeparators();
    void nulls();
    void typedDates_data();
    void typedDates();
    void fileExists();
    void callValueFunction_data();
    void callValueFunction();
};

void TestCommonValues::initTestCase() {
    // Amounts and dates are the US forms whatever the machine's locale says.
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

void TestCommonValues::padFormat_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("patternAfter");

    AddRow("zero is blanks", 0.0, "###,###.##", QString(10, u' '), "###,###.##");
    AddRow("amount gets two places", 1234.5, "###,###.##", "  1,234.50", "###,###.00");
    AddRow("tiny amount changes pattern", 0.004, "###,###.##", "       .00", "###,###.00");
    AddRow("wider than pattern", 123456.0, "####0", "123456", "####0");
    AddRow("dollar zero", 0.0, "$#,###,###.00", "         $.00", "$#,###,###.00");
    AddRow("dollar width 13", 1234567.891, "$#,###,###.##", "$1,234,567.89", "$#,###,###.00");
    AddRow("negative", -5.5, "#,###,###.00", "       -5.50", "#,###,###.00");
    AddRow("mills", 2.5, "###.000", "  2.500", "###.000");
    AddRow("only .## at the end", 5.0, "##.##0", " 5.000", "##.##0");
}

void TestCommonValues::padFormat() {
    QFETCH(double, value);
    QFETCH(QString, pattern);
    QFETCH(QString, expected);
    QFETCH(QString, patternAfter);
    QString callerPattern = pattern;
    QCOMPARE(PadFormat(value, callerPattern), expected);
    QCOMPARE(callerPattern, patternAfter);
    // A literal pattern gives the same text.
    QCOMPARE(PadFormat(value, pattern.toLatin1().constData()), expected);
}

void TestCommonValues::padFormatMoney_data() {
    QTest::addColumn<qint64>("units");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("patternAfter");

    AddRow("zero is blanks", qint64(0), "###,###.##", QString(10, u' '), "###,###.##");
    AddRow("amount", qint64(12345000), "###,###.##", "  1,234.50", "###,###.00");
    AddRow("sub-cent is not zero", qint64(1), "###,###.##", "       .00", "###,###.00");
}

void TestCommonValues::padFormatMoney() {
    QFETCH(qint64, units);
    QFETCH(QString, pattern);
    QFETCH(QString, expected);
    QFETCH(QString, patternAfter);
    QCOMPARE(PadFormat(Money::fromUnits(units), pattern), expected);
    QCOMPARE(pattern, patternAfter);
}

void TestCommonValues::formatNumber_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");

    AddRow("zero bare point", 0.0, "###,###.##", ".");
    AddRow("zero forced digit", 0.0, "$###,###,##0.00", "$0.00");
    AddRow("zero no placeholders shown", 0.0, "##", "");
    AddRow("grouping", 1234567.5, "#,###,###.00", "1,234,567.50");
    AddRow("overflowing placeholders", 1234567890.5, "#,###,###.00", "1,234,567,890.50");
    AddRow("negative literal", -1234.5, "$###,###,##0.00", "-$1,234.50");
    AddRow("no negative zero", -0.001, "0.00", "0.00");
    AddRow("decimal text first", 2.345, "0.00", "2.35");
    AddRow("1.005 up", 1.005, "0.00", "1.01");
    AddRow("half away up", 2.5, "0", "3");
    AddRow("half away down", -2.5, "0", "-3");
    AddRow("leading zero", 5.0, "00", "05");
    AddRow("inner zero forces", 5.0, "#0#", "05");
    AddRow("optional places", 12.3456789, "##0.##########", "12.3456789");
    AddRow("optional third place", 1.5, "###.00#", "1.50");
    AddRow("third place used", 1.2345, "###.00#", "1.235");
    AddRow("acreage below one", 0.25, "#########.###", ".25");
    AddRow("huge", 1e20, "###,###,###,###", "100,000,000,000,000,000,000");
    AddRow("comma late in pattern", 1234567.0, "$###,###,#.00", "$1,234,567.00");
    AddRow("carry with grouping", 999.995, "#,###.00", "1,000.00");
    AddRow("literal text", 7.0, "(#0)", "(7)");
    AddRow("percent", 0.025, "#0.##%", "2.5%");
}

void TestCommonValues::formatNumber() {
    QFETCH(double, value);
    QFETCH(QString, pattern);
    QFETCH(QString, expected);
    QCOMPARE(FormatNumber(value, pattern), expected);
}

void TestCommonValues::formatPercent_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");
    AddRow("fraction kept", 2.5, "#0.##%", "2.5%");
    AddRow("zero", 0.0, "#0.##%", "0%");
    AddRow("forced places keep point", 5.0, "0.00%", "5.00%");
}

void TestCommonValues::formatPercent() {
    QFETCH(double, value);
    QFETCH(QString, pattern);
    QFETCH(QString, expected);
    QCOMPARE(FormatPercent(value, pattern), expected);
}

void TestCommonValues::properName_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    AddRow("apostrophe no break", "O'BRIEN", "O'brien");
    AddRow("hyphen no break", "MARY-ANN", "Mary-ann");
    AddRow("empty", "", "");
    AddRow("tab is no break", "ann\tLEE", "Ann\tlee");
    AddRow("accented", "ÉMILE ZOLA", "Émile Zola");
}

void TestCommonValues::properName() {
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(ProperName(text), expected);
}

void TestCommonValues::roundTo_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("places");
    QTest::addColumn<double>("expected");

    // 2.345 and -1.254 to two places: driver_values.scn.
    AddRow("small negative cut to zero", -0.004, 2.0, 0.0);
    // -124.99999999999999 prints as -125 with 15 digits, and the text is what is cut.
    AddRow("negative whole by text", -1.255, 2.0, -1.25);
    AddRow("1.005 by text", 1.005, 2.0, 1.01);
    AddRow("large half", 123456.785, 2.0, 123456.79);
    AddRow("no places negative", -2.5, 0.0, -2.0);
    AddRow("four places", 1.23456, 4.0, 1.2346);
    AddRow("places capped at ten", 1.23456789012345, 12.0, 1.2345678901);
    AddRow("exponent text large", 1e20, 2.0, 1e20);
    AddRow("exponent text small", 1e-20, 2.0, 0.0);
    AddRow("sixteen digits", 1234567890123.456, 2.0, 1234567890123.46);
}

void TestCommonValues::roundTo() {
    QFETCH(double, value);
    QFETCH(double, places);
    QFETCH(double, expected);
    const double result = RoundTo(value, places);
    // Exact: the amounts must equal the double of their text, not merely come near it.
    QVERIFY2(result == expected, qPrintable(QString::number(result, 'g', 17)));
    QVERIFY(!std::signbit(result) || result != 0);
}

void TestCommonValues::countSeparators_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("separator");
    QTest::addColumn<int>("expected");
    AddRow("none", "abc", ",", 0);
    AddRow("only separators", ",,", ",", 2);
    AddRow("long separator no overlap", "aaaa", "aa", 2);
    AddRow("long separator odd", "aaa", "aa", 1);
    AddRow("empty separator", "abc", "", 0);
}

void TestCommonValues::countSeparators() {
    QFETCH(QString, text);
    QFETCH(QString, separator);
    QFETCH(int, expected);
    QCOMPARE(CountSeparators(text, separator), expected);
}

void TestCommonValues::nulls() {
    // A database Null arrives typed but without a value.
    const QVariant sqlNull{QMetaType::fromType<QString>()};
    QCOMPARE(NullToText(QVariant()), QString());
    QCOMPARE(NullToText(sqlNull), QString());
    QCOMPARE(NullToText(QVariant(QStringLiteral(" x "))), QStringLiteral(" x "));
    QCOMPARE(NullToText(QVariant(0.1 + 0.2)), QStringLiteral("0.3"));
    QCOMPARE(NullToZero(QVariant()).toInt(), 0);
    QCOMPARE(NullToZero(QVariant(QMetaType::fromType<double>())).toDouble(), 0.0);
    // Other values pass untouched, exact money units included.
    const QVariant units(qlonglong(123456789012345));
    QCOMPARE(NullToZero(units), units);
    QCOMPARE(NullToZero(QVariant(QStringLiteral("abc"))).toString(), QStringLiteral("abc"));
}

void TestCommonValues::typedDates_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown"); // empty: no date
    AddRow("short", "3/7/2024", "03/07/2024");
    AddRow("dashes", "3-7-2024", "03/07/2024");
    AddRow("two digits 20xx", "12/31/29", "12/31/2029");
    AddRow("two digits 19xx", "1/1/30", "01/01/1930");
    AddRow("outer blanks", " 3/7/2024 ", "03/07/2024");
    AddRow("no leap day", "2/29/2023", "");
    AddRow("month 13", "13/1/2024", "");
    AddRow("mixed separators", "3/7-2024", "");
    AddRow("three-digit year", "3/7/202", "");
    AddRow("iso", "2024-03-07", "");
    AddRow("digits only", "03072024", "");
}

void TestCommonValues::typedDates() {
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    const std::optional<QDate> date = ParseTypedDate(typed);
    QCOMPARE(date.has_value(), !shown.isEmpty());
    QCOMPARE(FormatDate(date.value_or(QDate())), shown);
}

void TestCommonValues::fileExists() {
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("a file.txt"));
    QVERIFY(!FileExists(path));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QVERIFY(FileExists(path));
    QVERIFY(!FileExists(dir.path()));
    QVERIFY(!FileExists(QString()));
}

void TestCommonValues::callValueFunction_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<bool>("answered");
    QTest::addColumn<QString>("expected");

    // RoundTo, PadFormat, QuoteSql and CountSeparators are called by name in driver_values.scn.
    AddRow("FormatPercent", "FormatPercent", QStringList{"5", "#0.##%"}, true, "5%");
    AddRow("FormatMoney", "FormatMoney", QStringList{"-1234.5", "$###,###,##0.00"}, true,
           "-$1,234.50");
    AddRow("ProperName", "ProperName", QStringList{"  mc donald  JR "}, true, "Mc Donald  Jr");
    AddRow("CountSeparators", "CountSeparators", QStringList{"", ","}, true, "-1");
    AddRow("NullToText null", "NullToText", QStringList{}, true, "");
    AddRow("NullToZero null", "NullToZero", QStringList{"<null>"}, true, "0");

    AddRow("unknown", "Nothing", QStringList{"1"}, false, "");
    AddRow("not a number", "RoundTo", QStringList{"abc", "2"}, false, "");
    AddRow("missing argument", "PadFormat", QStringList{"1"}, false, "");
    AddRow("bad amount", "FormatMoney", QStringList{"1.23456", "0.00"}, false, "");
}

void TestCommonValues::callValueFunction() {
    QFETCH(QString, name);
    QFETCH(QStringList, args);
    QFETCH(bool, answered);
    QFETCH(QString, expected);
    const std::optional<QString> result = CallValueFunction(name, args);
    QCOMPARE(result.has_value(), answered);
    if (answered)
        QCOMPARE(*result, expected);
}

QTEST_GUILESS_MAIN(TestCommonValues)
#include "test_common_values.moc"
