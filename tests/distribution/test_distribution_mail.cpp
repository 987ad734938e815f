// The names and texts of a distribution file's transfer by mail.

#include "distribution/distribution_file.h"
#include "distribution/transfer_distribution_email.h"
#include "support/test_support.h"

#include <QTest>

class TestDistributionMail : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void fileName_data();
    void fileName();
    void numberText_data();
    void numberText();
};

void TestDistributionMail::fileName_data() {
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("body");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("subject");
    AddRow("county", "RE", int(TaxingBody::County), "RE12County201302.txt",
           "County R/E Distribution # 02 - District 12-3");
    AddRow("township", "RE", int(TaxingBody::Twp), "RE12TwpBoroCity201302.txt",
           "Twp/Boro/City R/E Distribution # 02 - District 12-3");
    AddRow("per capita school", "PC", int(TaxingBody::School), "PC12School201302.txt",
           "School R/E Distribution # 02 - District 12-3");
}

void TestDistributionMail::fileName() {
    QFETCH(QString, type);
    QFETCH(int, body);
    QFETCH(QString, name);
    QFETCH(QString, subject);
    const auto b = TaxingBody(body);
    const DistributionTables& tables = type == "PC" ? PerCapitaTables() : RealEstateTables();
    QCOMPARE(DistributionFileName(tables, b, "12", "201302"), name);
    QCOMPARE(DistributionFilePath("/office", tables, b, "12", "201302"),
             "/office/Distributions/" + name);
    QCOMPARE(DistributionMailText(b, "02", "12", "3"), subject);
}

void TestDistributionMail::numberText_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("number"); // "-" for none
    AddRow("one digit", "2", "02");
    AddRow("blanks around", " 7 ", "07");
    AddRow("leading zeros", "007", "07");
    AddRow("three digits", "123", "123");
    AddRow("zero", "0", "00");
    AddRow("negative", "-1", "-");
    AddRow("letters", "1x", "-");
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
