#include "bills/mailing_labels.h"
#include "core/tax_database.h"
#include "reports/report_surface.h"

#include "support/test_support.h"

#include <QTest>

namespace {

// The first line of each label, with its place: "page:x:y NAME".
QStringList labelsDrawn(const Recording& r) {
    QStringList out;
    for (std::size_t p = 0; p < r.pages.size(); ++p) {
        double lastX = -1, lastY = -1;
        for (const PrintedText* t : r.pages[p].texts()) {
            // A label's first line: a new column, or the same column below the last label.
            if (t->x != lastX || t->y - lastY > 1000)
                out << QStringLiteral("%1:%2:%3 %4")
                           .arg(p + 1)
                           .arg(qRound(t->x))
                           .arg(qRound(t->y))
                           .arg(t->text);
            if (t->x != lastX || t->y - lastY > 1000)
                lastY = t->y;
            lastX = t->x;
        }
    }
    return out;
}

} // namespace

class TestMailingLabels : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void positions_data();
    void positions();
    void thirtyAPage();
    void startOnAUsedSheet();
    void selection_data();
    void selection();
    void addressFromTheLastChange();
    void perCapitaRoll();

private:
    Recording run(const LabelRun& labels);
    std::unique_ptr<TempTaxDatabase> m_db;
};

void TestMailingLabels::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    // 40 bills "    1" to "   40", each owing county, township and school, none exempt.
    QVERIFY(m_db->exec(QStringLiteral(
        "INSERT INTO TCMaster (District, Ward, Control, BillNo, Name, Addr1, City, State, "
        "ZipCode, ZipCode2, County, Twp, School, Payment1, Payment2, Payment3, AdjFlag, "
        "CPayFlag, TPayFlag, SPayFlag, Pay1Flag, Pay2Flag, Pay3Flag, CAddrFlag, Exempt) "
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40) "
        "SELECT '12', '3', printf('%06d', i), printf('%5d', i), 'OWNER ' || i, i || ' MAIN ST', "
        "'MAPLE', 'PA', '19000', '', 1000000, 500000, 6000000, 0, 0, 0, ' ', ' ', ' ', ' ', ' ', "
        "' ', ' ', ' ', ' ' FROM n")));
}

void TestMailingLabels::cleanup() {
    m_db.reset();
}

Recording TestMailingLabels::run(const LabelRun& labels) {
    ReportSurface surface;
    const LabelRunResult result = RunMailingLabels(m_db->db(), labels, surface);
    surface.NewPage();
    surface.EndDoc();
    if (result.stopped)
        qWarning("the run stopped: %s", qPrintable(result.error));
    return surface.takeRecording();
}

void TestMailingLabels::positions_data() {
    QTest::addColumn<int>("advances");
    QTest::addColumn<int>("column");
    QTest::addColumn<double>("top");
    AddRow("first", 0, 1, 600.0);
    AddRow("third", 2, 3, 600.0);
    AddRow("fourth, second row", 3, 1, 2050.0);
    AddRow("thirtieth, last row", 29, 3, 600.0 + 9 * 1450.0);
    AddRow("thirty-first, next sheet", 30, 1, 600.0);
    AddRow("thirty-fourth", 33, 1, 2050.0);
}

void TestMailingLabels::positions() {
    QFETCH(int, advances);
    QFETCH(int, column);
    QFETCH(double, top);
    LabelPosition p;
    int sheets = 0;
    for (int i = 0; i < advances; ++i)
        sheets += p.advance() ? 1 : 0;
    QCOMPARE(p.column(), column);
    QCOMPARE(p.place().y(), top);
    QCOMPARE(p.place().x(), LabelColumns[column - 1]);
    QCOMPARE(sheets, advances / 30);
}

void TestMailingLabels::thirtyAPage() {
    LabelRun labels;
    labels.labels = 35;
    const Recording r = run(labels);
    QCOMPARE(r.pages.size(), std::size_t(2));
    const QStringList drawn = labelsDrawn(r);
    QCOMPARE(drawn.size(), 35);
    QCOMPARE(drawn.filter(QRegularExpression(QStringLiteral("^1:"))).size(), 30);
    QCOMPARE(drawn.at(30).left(2), QStringLiteral("2:")); // placed as positions() proves
    // A label reads as addressed.
    QVERIFY(r.textLines().contains(QStringLiteral("1 MAIN ST 2 MAIN ST 3 MAIN ST")));
    QVERIFY(
        r.textLines().contains(QStringLiteral("MAPLE PA  19000 MAPLE PA  19000 MAPLE PA  19000")));
}

void TestMailingLabels::startOnAUsedSheet() {
    // Start at 30: one label in the last place, then a new sheet.
    LabelRun labels;
    labels.labels = 2;
    labels.startPosition = 30;
    QCOMPARE(labelsDrawn(run(labels)),
             (QStringList{QStringLiteral("1:%1:13650 OWNER 1").arg(LabelColumns[2]),
                          QStringLiteral("2:%1:600 OWNER 2").arg(LabelColumns[0])}));
    // Start at 5 from bill 39: the second row's middle, then its right.
    labels.startPosition = 5;
    labels.startBill = QStringLiteral("   39");
    labels.labels = 9;
    QCOMPARE(labelsDrawn(run(labels)),
             (QStringList{QStringLiteral("1:%1:2050 OWNER 39").arg(LabelColumns[1]),
                          QStringLiteral("1:%1:2050 OWNER 40").arg(LabelColumns[2])}));
}

void TestMailingLabels::selection_data() {
    QTest::addColumn<bool>("unpaid");
    QTest::addColumn<bool>("exempts");
    QTest::addColumn<QStringList>("names");
    // Bill 1 exempt (E), 2 exempt (N), 3 paid in full, 4 on installments with the third open,
    // 5 on installments all paid, 6 nothing owed, 7 the county part paid only.
    AddRow("all, no exempts", false, false,
           QStringList{"OWNER 3", "OWNER 4", "OWNER 5", "OWNER 6", "OWNER 7"});
    AddRow(
        "all with exempts", false, true,
        QStringList{"OWNER 1", "OWNER 2", "OWNER 3", "OWNER 4", "OWNER 5", "OWNER 6", "OWNER 7"});
    AddRow("unpaid, no exempts", true, false, QStringList{"OWNER 4", "OWNER 7"});
    AddRow("unpaid with exempts", true, true,
           QStringList{"OWNER 1", "OWNER 2", "OWNER 4", "OWNER 7"});
}

void TestMailingLabels::selection() {
    QFETCH(bool, unpaid);
    QFETCH(bool, exempts);
    QFETCH(QStringList, names);
    for (const char* sql :
         {"UPDATE TCMaster SET Exempt = 'E' WHERE BillNo = '    1'",
          "UPDATE TCMaster SET Exempt = 'N' WHERE BillNo = '    2'",
          "UPDATE TCMaster SET CPayFlag = 'D', TPayFlag = 'D', SPayFlag = 'F' WHERE BillNo = '    "
          "3'",
          "UPDATE TCMaster SET CPayFlag = 'D', TPayFlag = 'D', SPayFlag = 'I', Pay1Flag = 'F', "
          "Pay2Flag = 'F', Payment1 = 200, Payment2 = 200, Payment3 = 200 WHERE BillNo = '    4'",
          "UPDATE TCMaster SET CPayFlag = 'D', TPayFlag = 'D', SPayFlag = 'I', Pay1Flag = 'F', "
          "Pay2Flag = 'F', Pay3Flag = 'P', Payment1 = 200 WHERE BillNo = '    5'",
          "UPDATE TCMaster SET County = 0, Twp = 0, School = 0 WHERE BillNo = '    6'",
          "UPDATE TCMaster SET CPayFlag = 'D' WHERE BillNo = '    7'",
          "DELETE FROM TCMaster WHERE BillNo > '    7'"})
        QVERIFY(m_db->exec(QString::fromLatin1(sql)));
    LabelRun labels;
    labels.unpaidOnly = unpaid;
    labels.exempts = exempts;
    labels.labels = 99;
    QStringList drawn;
    for (const QString& l : labelsDrawn(run(labels)))
        drawn << l.section(QLatin1Char(' '), 1);
    QCOMPARE(drawn, names);
}

void TestMailingLabels::addressFromTheLastChange() {
    QVERIFY(
        m_db->exec(QStringLiteral("UPDATE TCMaster SET CAddrFlag = 'A' WHERE BillNo = '    1'")));
    QVERIFY(m_db->exec(QStringLiteral(
        "INSERT INTO TCAddress (BillNo, AddrID, Name, CoOwner, Addr1, Addr2, City, State, ZipCode, "
        "ZipCode2) VALUES ('    1', 1, 'First Mover', '', 'OLD RD', '', 'X', 'PA', '19001', ''), "
        "('    1', 2, 'Mary  McOwner', 'Joe Co', 'PO BOX 9', '', 'OAKTON', 'NJ', '08001', "
        "'1234')")));
    LabelRun labels;
    labels.labels = 1;
    const Recording r = run(labels);
    QCOMPARE(r.pages[0].textLines(),
             (QStringList{"Mary  McOwner", "Joe Co", "PO BOX 9", "OAKTON NJ  08001 1234"}));

    // A change marked but never written stops the run where it stands.
    QVERIFY(
        m_db->exec(QStringLiteral("UPDATE TCMaster SET CAddrFlag = 'A' WHERE BillNo = '    3'")));
    labels.labels = 9;
    ReportSurface surface;
    const LabelRunResult result = RunMailingLabels(m_db->db(), labels, surface);
    QVERIFY(result.stopped);
    QCOMPARE(result.printed, 2);
    QCOMPARE(result.bill.status, BillNow::Status::IncompleteAddress);
}

void TestMailingLabels::perCapitaRoll() {
    QVERIFY(m_db->exec(QStringLiteral(
        "INSERT INTO PCMaster (Control, BillNo, Name, Addr1, City, State, ZipCode, CPerCapita, "
        "COccupation, TPerCapita, TOccupation, SPerCapita, SOccupation, CPayFlag, TPayFlag, "
        "SPayFlag, AdjFlag, CAddrFlag, Exempt) VALUES "
        "('000001', '    1', 'PAID PERSON', '1 A ST', 'MAPLE', 'PA', '19000', 50000, 0, 50000, 0, "
        "50000, 0, 'D', 'D', 'F', ' ', ' ', ' '), "
        "('000002', '    2', 'OWING PERSON', '2 A ST', 'MAPLE', 'PA', '19000', 50000, 0, 50000, "
        "0, 50000, 0, 'D', ' ', 'F', ' ', ' ', ' '), "
        "('000003', '    3', 'EXEMPT PERSON', '3 A ST', 'MAPLE', 'PA', '19000', 50000, 0, 50000, "
        "0, 50000, 0, ' ', ' ', ' ', ' ', ' ', 'E')")));
    LabelRun labels;
    labels.roll = Duplicate::PerCapita;
    labels.labels = 9;
    QCOMPARE(labelsDrawn(run(labels)).size(), 2);
    labels.unpaidOnly = true;
    const QStringList unpaid = labelsDrawn(run(labels));
    QCOMPARE(unpaid.size(), 1);
    QVERIFY(unpaid.at(0).endsWith(QLatin1String("OWING PERSON")));
    labels.exempts = true;
    QCOMPARE(labelsDrawn(run(labels)).size(), 2);
}

QTEST_MAIN(TestMailingLabels)
#include "test_mailing_labels.moc"
