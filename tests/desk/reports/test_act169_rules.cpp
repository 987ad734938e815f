// The Act 169 report's rules on a small hand-made duplicate: an adjustment of one municipal
// special tax moves the whole municipal group (a full reversal and re-billing), an exoneration
// row is outside every figure, a void of an earlier distribution raises the opening balance,
// and a distribution number with no rows adds nothing.

#include "desk/reports/act169_report.h"
#include "support/test_support.h"

#include <QTest>

class TestAct169Rules : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rules() {
        TempTaxDatabase t;
        const QStringList setUp{
            "INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('12', '3', 0)",
            "INSERT INTO tbl_Twpboro (District, Ward, TwpBoro, BTFlag) VALUES ('12', '3', "
            "'MAPLE BOROUGH', 'B')",
            "INSERT INTO Millfile (District, Ward, TaxYear) VALUES ('00', '0', '2013')",
            // Two bills: 50.00 / 20.00 / 10.00 on the municipal lines each.
            "INSERT INTO TCMaster (Control, BillNo, Name, Twp, S1Face, S2Face, County) VALUES "
            "('000001', '    1', 'ONE', 500000, 200000, 100000, 1000000)",
            "INSERT INTO TCMaster (Control, BillNo, Name, Twp, S1Face, S2Face, County) VALUES "
            "('000002', '    2', 'TWO', 500000, 200000, 100000, 1000000)",
            // Bill 1: S2 raised to 15.00 in May. Bill 2: exonerated in May (an 'X' row).
            "INSERT INTO TCAdjust (Control, BillNo, AdjNo, Twp, S1Face, S2Face, County, AdjDate, "
            "AdjFlag) VALUES ('000001', '    1', 1, 500000, 200000, 150000, 1000000, "
            "'2013-05-10', 'A')",
            "INSERT INTO TCAdjust (Control, BillNo, AdjNo, Twp, S1Face, S2Face, County, AdjDate, "
            "AdjFlag) VALUES ('000002', '    2', 1, 0, 0, 0, 0, '2013-05-11', 'X')",
            // Distribution 1 in April: bill 1's township 50.00; its void rides out in May's
            // distribution 2; distribution 3 of May has no rows.
            "INSERT INTO tbl_DisbDates (DisbNum, DisbDate, CTS, DisbType) VALUES (1, "
            "'2013-04-30', 'T', 'RE')",
            "INSERT INTO tbl_DisbDates (DisbNum, DisbDate, CTS, DisbType) VALUES (2, "
            "'2013-05-31', 'T', 'RE')",
            "INSERT INTO tbl_DisbDates (DisbNum, DisbDate, CTS, DisbType) VALUES (3, "
            "'2013-05-31', 'T', 'RE')",
            "INSERT INTO TCDistribution (CTS, BillNo, Twp, DTwp, S1Face, S2Face, TPayFlag, "
            "TDisbNum) VALUES ('T', '    1', 500000, -10000, 0, 0, 'D', '201301')",
            "INSERT INTO TCVoidDistribution (CTS, BillNo, Twp, DTwp, S1Face, S2Face, TPayFlag, "
            "TDisbNum) VALUES ('T', '    1', -500000, 10000, 0, 0, 'D', '201302')"};
        for (const QString& sql : setUp)
            QVERIFY(t.exec(sql));

        const Act169Figures may = GatherAct169(t.db(), Act169Kind::TownshipRE, 5);
        QCOMPARE(may.district, QStringLiteral("MAPLE BOROUGH Taxing District"));
        QCOMPARE(int(may.columns.size()), 4);
        const Act169Column& twp = may.columns[0];
        const Act169Column& s1 = may.columns[1];
        const Act169Column& s2 = may.columns[2];
        // Opening: both bills as billed, less April's distribution.
        QCOMPARE(twp.opening(), Money::fromDollars(50));
        QCOMPARE(s2.opening(), Money::fromDollars(20));
        // Bill 1's S2 change moves every municipal column: in full after, out in full before.
        QCOMPARE(twp.additions, Money::fromDollars(50));
        QCOMPARE(twp.credits, -Money::fromDollars(50));
        QCOMPARE(s1.additions, Money::fromDollars(20));
        QCOMPARE(s2.additions, Money::fromDollars(15));
        QCOMPARE(s2.credits, -Money::fromDollars(10));
        // The void of distribution 1's receipt comes back in May; distribution 3 adds nothing.
        QCOMPARE(twp.faceCollected, -Money::fromDollars(50));
        QCOMPARE(twp.discount, Money::fromDollars(1));
        QCOMPARE(int(may.remittances.size()), 2);
        QCOMPARE(may.remittances[1].total, Money());
        QCOMPARE(twp.closing(), Money::fromDollars(100));

        // June opens where May closed, the void having raised the balance.
        const Act169Figures june = GatherAct169(t.db(), Act169Kind::TownshipRE, 6);
        QCOMPARE(june.columns[0].opening(), twp.closing());
        QCOMPARE(june.columns[2].opening(), s2.closing());
        QCOMPARE(june.columns[2].opening(), Money::fromDollars(25));
        QVERIFY(june.remittances.empty());
        QCOMPARE(Act169KindNames(QStringLiteral("Borough")),
                 (QStringList{"County RE", "Borough RE", "Borough PC", "School RE/PC"}));
    }
};

QTEST_MAIN(TestAct169Rules)
#include "test_act169_rules.moc"
