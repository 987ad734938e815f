// "Figure Dates On Mail Date": month ends, leap years, and the way a clipped day carries
// from the first day of face into the later dates.

#include "rates/millage_dates.h"
#include "support/test_support.h"

#include <QTest>

class TestMillageDates : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void figure_data();
    void figure();
    void invalidMailDate();
    void shortText_data();
    void shortText();
};

void TestMillageDates::figure_data() {
    QTest::addColumn<QDate>("mail");
    QTest::addColumn<QDate>("faceFirst");
    QTest::addColumn<QDate>("discountEnd");
    QTest::addColumn<QDate>("penaltyFirst");
    QTest::addColumn<QDate>("faceLast");
    QTest::addColumn<QDate>("lastDay");
    QTest::addColumn<QDate>("taxClaim");

    // The first of a month: every boundary falls on a month's first and last days.
    AddRow("3/1/2024", QDate(2024, 3, 1), QDate(2024, 5, 1), QDate(2024, 4, 30), QDate(2024, 7, 1),
           QDate(2024, 6, 30), QDate(2024, 12, 31), QDate(2025, 1, 1));
    // The clipped 29th of February carries into penalty and face end.
    AddRow("12/31/2023", QDate(2023, 12, 31), QDate(2024, 2, 29), QDate(2024, 2, 28),
           QDate(2024, 4, 29), QDate(2024, 4, 28), QDate(2023, 12, 31), QDate(2024, 1, 1));
    AddRow("12/31/2024 common year", QDate(2024, 12, 31), QDate(2025, 2, 28), QDate(2025, 2, 27),
           QDate(2025, 4, 28), QDate(2025, 4, 27), QDate(2024, 12, 31), QDate(2025, 1, 1));
    // Face on March 1st: the discount ends on the last day of February.
    AddRow("1/1/2024 leap", QDate(2024, 1, 1), QDate(2024, 3, 1), QDate(2024, 2, 29),
           QDate(2024, 5, 1), QDate(2024, 4, 30), QDate(2024, 12, 31), QDate(2025, 1, 1));
    AddRow("1/1/2023 common", QDate(2023, 1, 1), QDate(2023, 3, 1), QDate(2023, 2, 28),
           QDate(2023, 5, 1), QDate(2023, 4, 30), QDate(2023, 12, 31), QDate(2024, 1, 1));
    // March 31st has a May 31st: nothing is clipped on the way.
    AddRow("1/31/2024", QDate(2024, 1, 31), QDate(2024, 3, 31), QDate(2024, 3, 30),
           QDate(2024, 5, 31), QDate(2024, 5, 30), QDate(2024, 12, 31), QDate(2025, 1, 1));
    // Face clipped to the 30th of June; penalty keeps the 30th, not the mail date's 31st.
    AddRow("4/30/2013", QDate(2013, 4, 30), QDate(2013, 6, 30), QDate(2013, 6, 29),
           QDate(2013, 8, 30), QDate(2013, 8, 29), QDate(2013, 12, 31), QDate(2014, 1, 1));
    AddRow("2/29/2024 mail", QDate(2024, 2, 29), QDate(2024, 4, 29), QDate(2024, 4, 28),
           QDate(2024, 6, 29), QDate(2024, 6, 28), QDate(2024, 12, 31), QDate(2025, 1, 1));
    // Mailing late in the year runs the periods into the next year; the last day stays.
    AddRow("11/30/2013", QDate(2013, 11, 30), QDate(2014, 1, 30), QDate(2014, 1, 29),
           QDate(2014, 3, 30), QDate(2014, 3, 29), QDate(2013, 12, 31), QDate(2014, 1, 1));
}

void TestMillageDates::figure() {
    QFETCH(QDate, mail);
    const FiguredDates d = FigureDatesOnMailDate(mail);
    QCOMPARE(d.mail, mail);
    QTEST(d.faceFirst, "faceFirst");
    QTEST(d.discountEnd, "discountEnd");
    QTEST(d.penaltyFirst, "penaltyFirst");
    QTEST(d.faceLast, "faceLast");
    QTEST(d.lastDay, "lastDay");
    QTEST(d.taxClaim, "taxClaim");
}

void TestMillageDates::invalidMailDate() {
    const FiguredDates d = FigureDatesOnMailDate(QDate());
    QVERIFY(!d.mail.isValid());
    QVERIFY(!d.faceFirst.isValid());
    QVERIFY(!d.taxClaim.isValid());
    QCOMPARE(ShortDateText(QDate()), QString());
}

void TestMillageDates::shortText_data() {
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QString>("text");
    AddRow("no leading zeros", QDate(2024, 3, 1), "3/1/2024");
    AddRow("two digits", QDate(2023, 12, 31), "12/31/2023");
    AddRow("four-digit year", QDate(905, 1, 1), "1/1/0905");
}

void TestMillageDates::shortText() {
    QFETCH(QDate, date);
    QTEST(ShortDateText(date), "text");
}

QTEST_GUILESS_MAIN(TestMillageDates)
#include "test_millage_dates.moc"
