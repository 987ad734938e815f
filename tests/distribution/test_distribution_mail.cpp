// The distribution number typed for a transfer by mail. (The files' names and the mails'
// subjects, and the numbers a person types most: distribution_transfer_email.scn.)

#include "distribution/transfer_distribution_email.h"
#include "support/test_support.h"

#include <QTest>

class TestDistributionMail : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void numberText_data();
    void numberText();
};

void TestDistributionMail::numberText_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("number"); // "-" for none
    AddRow("leading zeros", "007", "07");
    AddRow("three digits", "123", "123");
    AddRow("zero", "0", "00");
    AddRow("decimal", "1.5", "-");
    AddRow("blank", "  ", "-");
}

void TestDistributionMail::numberText() {
    QFETCH(QString, typed);
    QFETCH(QString, number);
    QCOMPARE(DistributionNumberText(typed).value_or("-"), number);
}

QTEST_GUILESS_MAIN(TestDistributionMail)
#include "test_distribution_mail.moc"
