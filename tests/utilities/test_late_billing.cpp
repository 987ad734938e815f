#include "utilities/late_billing.h"

#include "core/session.h"
#include "core/tax_database.h"

#include "bills/bill_fixture.h"
#include "support/test_support.h"

#include <QSqlQuery>
#include <QTest>

// The per capita adds and exonerations are proved through the screen in
// utilities_late_billing_pc.scn.

namespace {

QString amounts(const std::array<Money, 3>& t) {
    return t[0].format(u"0.00") + QLatin1Char('/') + t[1].format(u"0.00") + QLatin1Char('/') +
           t[2].format(u"0.00");
}

} // namespace

class TestLateBilling : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void twoRateValue_data();
    void twoRateValue();
    void realEstateAmounts();
    void perCapitaAmounts();
    void addsWriteOnlyTheLateBodies();
    void exonerations();

private:
    LateBillingOffice office();
    QSqlRecord master(const char* table, const char* billNo);
    QString rows(const QString& sql) { return QueryRows(m_db->db(), sql); }
    std::unique_ptr<TempTaxDatabase> m_db;
};

void TestLateBilling::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    QVERIFY(BillFixture::fill(*m_db));
    QVERIFY(BillFixture::fillPerCapita(*m_db));
    QVERIFY(m_db->exec(QStringLiteral(
        "UPDATE Millfile SET SchoolFormula = 'N', School1Formula = 'N' WHERE District = '12'")));
}

void TestLateBilling::cleanup() {
    m_db.reset();
}

LateBillingOffice TestLateBilling::office() {
    LateBillingOffice o;
    if (!LateBillingOffice::read(m_db->db(), &o))
        qFatal("no office");
    return o;
}

QSqlRecord TestLateBilling::master(const char* table, const char* billNo) {
    QSqlQuery q(m_db->db());
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE BillNo = ?").arg(QLatin1String(table)));
    q.addBindValue(QLatin1String(billNo));
    if (!q.exec() || !q.next())
        qFatal("no bill %s", billNo);
    return q.record();
}

void TestLateBilling::twoRateValue_data() {
    QTest::addColumn<qint64>("market");
    QTest::addColumn<qint64>("value");
    AddRow("stays", qint64(10000), qint64(9500));
    AddRow("half to even, then up to 50", qint64(10030), qint64(9550));
    AddRow("25 goes down", qint64(10553), qint64(10000)); // 10025.35 -> 10025
    AddRow("76 goes up", qint64(10080), qint64(9600));    // 9576
    AddRow("75 to the 50", qint64(10079), qint64(9550));  // 9575.05 -> 9575
    AddRow("zero", qint64(0), qint64(0));
}

void TestLateBilling::twoRateValue() {
    QFETCH(qint64, market);
    QFETCH(qint64, value);
    QCOMPARE(TwoRateValue(market), value);
}

void TestLateBilling::realEstateAmounts() {
    // The school bills late: 20 mills and 0.2 mills on 30,000 in one rounding each.
    const QSqlRecord bill = master("TCMaster", "    1");
    LateRealEstateAmounts a = ComputeLateRealEstate(office(), bill);
    QCOMPARE(amounts(a.school[0]), QStringLiteral("588.00/600.00/660.00"));
    QCOMPARE(amounts(a.school[1]), QStringLiteral("5.88/6.00/6.60"));
    QCOMPARE(amounts(a.twp[0]), QStringLiteral("0.00/0.00/0.00"));

    // The township late too: 1.5 mills, the fire tax's 0.5; the other slots are unused.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE Millfile SET BillTwp = 'L' WHERE District = '12'")));
    a = ComputeLateRealEstate(office(), bill);
    QCOMPARE(amounts(a.twp[0]), QStringLiteral("44.44/45.00/49.50"));
    QCOMPARE(amounts(a.twp[1]), QStringLiteral("14.81/15.00/16.50"));
    QCOMPARE(amounts(a.twp[2]), QStringLiteral("0.00/0.00/0.00"));
    // A flat special is not levied on the assessment.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE Spectax SET SpecFlag = 'Y'")));
    QCOMPARE(amounts(ComputeLateRealEstate(office(), bill).twp[1]),
             QStringLiteral("0.00/0.00/0.00"));

    // The two-rate municipality, with no township millage: market values at its own rates.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE tbl_Twpboro SET TwpBoro = 'HARROWDALE BOROUGH'")));
    QVERIFY(m_db->exec(QStringLiteral("UPDATE Millfile SET TMR = 0 WHERE District = '12'")));
    QVERIFY(m_db->exec(QStringLiteral(
        "UPDATE TCMaster SET MVLand = 10030, MVImpr = 20000 WHERE BillNo = '    1'")));
    // 9,550 x 0.05916 + 19,000 x 0.019 = 925.978
    QCOMPARE(amounts(ComputeLateRealEstate(office(), master("TCMaster", "    1")).twp[0]),
             QStringLiteral("914.41/925.98/1018.58"));
    // Elsewhere a zero millage levies nothing.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE tbl_Twpboro SET TwpBoro = 'MAPLE TOWNSHIP'")));
    QCOMPARE(amounts(ComputeLateRealEstate(office(), master("TCMaster", "    1")).twp[0]),
             QStringLiteral("0.00/0.00/0.00"));

    // The school on the formula: 30,000 / 0.5 x 0.25 = 15,000 at 20 mills.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE Millfile SET SchoolFormula = 'Y', SchoolStebRatio "
                                      "= 0.5, SchoolMarketRatio = 0.25 WHERE District = '12'")));
    QCOMPARE(amounts(ComputeLateRealEstate(office(), bill).school[0]),
             QStringLiteral("294.00/300.00/330.00"));
    QVERIFY(m_db->exec(
        QStringLiteral("UPDATE Millfile SET SchoolStebRatio = 0 WHERE District = '12'")));
    QCOMPARE(amounts(ComputeLateRealEstate(office(), bill).school[0]),
             QStringLiteral("0.00/0.00/0.00"));

    // An exempt parcel owes nothing.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE TCMaster SET Exempt = 'E' WHERE BillNo = '    1'")));
    a = ComputeLateRealEstate(office(), master("TCMaster", "    1"));
    QCOMPARE(amounts(a.school[1]), QStringLiteral("0.00/0.00/0.00"));
}

void TestLateBilling::perCapitaAmounts() {
    QVERIFY(m_db->exec(QStringLiteral("UPDATE Millfile SET BillTwp = 'L' WHERE District = '12'")));
    LatePerCapitaAmounts a = ComputeLatePerCapita(office(), master("PCMaster", "    1"));
    QCOMPARE(amounts(a.twpPerCapita), QStringLiteral("4.90/5.00/5.50"));
    QCOMPARE(amounts(a.twpOccupation), QStringLiteral("1.47/1.50/1.65"));
    QCOMPARE(amounts(a.schoolPerCapita), QStringLiteral("4.90/5.00/5.50"));
    QCOMPARE(amounts(a.schoolOccupation), QStringLiteral("0.00/0.00/0.00"));
    // An occupation other than "TAX" is not taxed at all.
    QVERIFY(
        m_db->exec(QStringLiteral("UPDATE PCMaster SET OccuCode = 'STU' WHERE BillNo = '    1'")));
    a = ComputeLatePerCapita(office(), master("PCMaster", "    1"));
    QCOMPARE(amounts(a.twpPerCapita), QStringLiteral("0.00/0.00/0.00"));
    QCOMPARE(amounts(a.schoolPerCapita), QStringLiteral("0.00/0.00/0.00"));
}

void TestLateBilling::addsWriteOnlyTheLateBodies() {
    // A0001: no school yet, a township of its own, an adjustment row.
    QVERIFY(m_db->exec(QStringLiteral(
        "UPDATE TCMaster SET School = 0, DSchool = 0, PSchool = 0, Twp = 1230000 WHERE BillNo = "
        "'A0001'")));
    QVERIFY(m_db->exec(QStringLiteral(
        "INSERT INTO TCAdjust (Control, BillNo, AdjNo, Twp, School, AdjFlag) VALUES ('000901', "
        "'A0001', 1, 1230000, 0, 'A')")));
    QList<int> seen;
    const LateBillingResult r = UpdateLateBillingAdds(m_db->db(), Duplicate::RealEstate, office(),
                                                      [&](int n) { seen << n; });
    QVERIFY2(r.ok, qPrintable(r.error));
    QCOMPARE(r.count, 1);
    QCOMPARE(seen, QList<int>{1});
    const QString sql = QStringLiteral(
        "SELECT School / 10000.0, DSchool / 10000.0, PSchool / 10000.0, Sch1Face / 10000.0, Twp "
        "FROM %1 WHERE BillNo = 'A0001'");
    QCOMPARE(rows(sql.arg(QStringLiteral("TCMaster"))), QStringLiteral("600|588|660|6|1230000"));
    QCOMPARE(rows(sql.arg(QStringLiteral("TCAdjust"))), QStringLiteral("600|588|660|6|1230000"));
    // Bills not added are not touched.
    QCOMPARE(rows(QStringLiteral("SELECT School FROM TCMaster WHERE BillNo = '    1'")),
             QStringLiteral("6000000"));
}

void TestLateBilling::exonerations() {
    // "    5": the county exonerated by an adjustment, the school (late) not yet.
    // "    6": county amounts zero on the master, but never adjusted: not touched.
    // "    2": adjusted with county amounts: not touched.
    for (const char* sql :
         {"INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
          "UPDATE TCMaster SET BillNo = '    5', Control = '000005', AdjFlag = 'A' WHERE rowid = "
          "(SELECT max(rowid) FROM TCMaster)",
          "INSERT INTO TCAdjust (Control, BillNo, AdjNo, Name, County, Library, C1Face, Twp, "
          "DTwp, PTwp, School, DSchool, PSchool, Sch1Face, Payment1, ExcFace, AdjDate, Reason, "
          "AdjFlag, MapRef) VALUES ('000005', '    5', 1, 'FIVE', 0, 0, 0, 450000, 441000, "
          "495000, 6000000, 5880000, 6600000, 60000, 2000000, 150000, '2013-04-01', 'CO EXON', "
          "'A', 'M5')",
          "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
          "UPDATE TCMaster SET BillNo = '    6', Control = '000006', County = 0, Library = 0, "
          "C1Face = 0 WHERE rowid = (SELECT max(rowid) FROM TCMaster)"})
        QVERIFY2(m_db->exec(QString::fromLatin1(sql)), sql);
    const QDate today(2013, 7, 10);
    LateBillingResult r = ExonerateLateBodies(m_db->db(), Duplicate::RealEstate, office(), today);
    QVERIFY2(r.ok, qPrintable(r.error));
    QCOMPARE(r.count, 1);
    // The copy: the school's six amounts zero, the township (early) kept, the left-out columns
    // as in the row in force, the reason in 30 characters, no Nulls.
    QCOMPARE(rows(QStringLiteral(
                 "SELECT AdjNo, Name, School, DSchool, PSchool, Sch1Face, Twp, DTwp, Payment1, "
                 "ExcFace, AdjDate, Reason, AdjFlag, MapRef, Lot1, DeedBook IS NULL FROM TCAdjust "
                 "WHERE BillNo = '    5' ORDER BY AdjNo")),
             QStringLiteral("1|FIVE|6000000|5880000|6600000|60000|450000|441000|2000000|150000|"
                            "2013-04-01|CO EXON|A|M5|<null>|1;"
                            "2|FIVE|0|0|0|0|450000|441000|2000000|150000|2013-07-10|UPDATED FROM "
                            "LATE BILLING ROUT|A|||0"));
    QCOMPARE(rows(QStringLiteral("SELECT count(*) FROM TCAdjust WHERE BillNo IN ('    2', '    "
                                 "6')")),
             QStringLiteral("1"));
    // Run again: the late sum is zero now, no second row.
    r = ExonerateLateBodies(m_db->db(), Duplicate::RealEstate, office(), today.addDays(1));
    QVERIFY(r.ok);
    QCOMPARE(r.count, 0);
    QCOMPARE(rows(QStringLiteral("SELECT max(AdjNo) FROM TCAdjust WHERE BillNo = '    5'")),
             QStringLiteral("2"));

    // The township billing late as well: its twelve amounts go too.
    QVERIFY(m_db->exec(QStringLiteral("UPDATE Millfile SET BillTwp = 'L' WHERE District = '12'")));
    r = ExonerateLateBodies(m_db->db(), Duplicate::RealEstate, office(), today);
    QCOMPARE(r.count, 1);
    QCOMPARE(rows(QStringLiteral(
                 "SELECT AdjNo, Twp, DTwp, PTwp, School FROM TCAdjust WHERE BillNo = '    5' AND "
                 "AdjNo = 3")),
             QStringLiteral("3|0|0|0|0"));
}

QTEST_MAIN(TestLateBilling)
#include "test_late_billing.moc"
