// What the action list does not offer: exonerating and unexonerating a bill through the
// screen's own logic and writes. (A query's hand-over, which waits for the action:
// query_joins.scn.)
#include "desk/realestate/adjust_tax_bill.h"
#include "support/test_support.h"

#include "core/clock.h"
#include "core/session.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

QString rows(const QString& sql) {
    return QueryRows(session().DbConnection, sql);
}

} // namespace

class TestAdjustScreen : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void exonerateAndTakeBack();
    void exonerationDeclined();
    void exonerateOneBody();
    void unexonerateRefusesABillNotExonerated();

private:
    std::unique_ptr<TempTaxDatabase> m_db;
};

// District 12 ward 3: county 5.5 mills, township 1.5, school 20 on plain millage; bill 1 of
// land 10,000 and improvements 20,000 with county 100.00, township 50.00, school 600.00.
void TestAdjustScreen::init() {
    m_db = std::make_unique<TempTaxDatabase>();
    for (const char* sql :
         {"INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('12', '3', 0)",
          "INSERT INTO tbl_Twpboro (District, Ward, TwpBoro, BTFlag) VALUES ('12', '3', "
          "'MAPLE', 'T')",
          "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, SD, SP) VALUES ('00', "
          "'0', '2013', 5.5, 0, 2, 10)",
          "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, SD, SP, TMR, LMR, TD, TP, "
          "SchoolFormula) VALUES ('12', '3', '2013', 20, 0, 2, 10, 1.5, 0, 2, 10, 'N')",
          "INSERT INTO TCMaster (District, Ward, Control, BillNo, Name, AssLand, AssImpr, "
          "DCounty, County, PCounty, DTwp, Twp, PTwp, DSchool, School, PSchool, Payment1, "
          "Payment2, Payment3, AdjFlag, CPayFlag, TPayFlag, SPayFlag, Pay1Flag, Pay2Flag, "
          "Pay3Flag, CAddrFlag) VALUES ('12', '3', '000001', '    1', 'JOHN Q OWNER', 10000, "
          "20000, 980000, 1000000, 1100000, 490000, 500000, 550000, 5880000, 6000000, "
          "6600000, 0, 0, 0, ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ')"})
        QVERIFY(m_db->exec(QString::fromLatin1(sql)));
    QVERIFY(OpenSessionDatabase(m_db->path()));
    Clock::setToday(QDate(2013, 5, 6));
}

void TestAdjustScreen::cleanup() {
    Clock::setToday(std::nullopt);
    CloseSessionDatabase();
    m_db.reset();
}

void TestAdjustScreen::exonerateAndTakeBack() {
    MessageScript script;
    {
        frmREAdjustTaxBill screen;
        screen.show();
        screen.txtBillNo->setText(QStringLiteral("1"));
        script.answer(MsgAnswer::Yes);
        screen.setAction(frmREAdjustTaxBill::Exonerate);
        QCOMPARE(script.texts(), QStringList{"Do you want to exonerate this tax bill?"});
        QCOMPARE(script.titles(), QStringList{"Exonerate Tax Bill"});
        QCOMPARE(screen.txtReason->text(), QStringLiteral("EXONERATION"));
        QCOMPARE(screen.txtSchool->text(), QStringLiteral("$.00"));
        QCOMPARE(screen.txtTotal->text(), QStringLiteral("$.00"));
        screen.cmdAccept->click();
        QCOMPARE(script.texts().last(), QStringLiteral("Adjustment Recorded"));
    }
    QCOMPARE(rows("SELECT AdjFlag, CPayFlag, TPayFlag, SPayFlag FROM TCMaster"),
             QStringLiteral("A|X|X|X"));
    QCOMPARE(rows("SELECT AdjNo, AdjFlag, Reason, County, DTwp, School, AssLand FROM TCAdjust"),
             QStringLiteral("1|X|EXONERATION|0|0|0|10000"));

    script.service().boxes.clear();
    {
        frmREAdjustTaxBill screen;
        screen.show();
        screen.txtBillNo->setText(QStringLiteral("1"));
        script.answer(MsgAnswer::Yes);
        screen.setAction(frmREAdjustTaxBill::Unexonerate);
        QCOMPARE(script.texts().mid(0, 2),
                 (QStringList{"Original Bill Before Adjustment", "Adjustment Encountered"}));
        QCOMPARE(script.texts().last(),
                 QStringLiteral("This tax bill has been exonerated. Do you want to unexonerate "
                                "this tax bill?"));
        QCOMPARE(script.titles().last(), QStringLiteral("Unexonerate Tax Bill"));
        QCOMPARE(screen.txtReason->text(), QStringLiteral("UNEXONERATION"));
        screen.cmdAccept->click();
        QCOMPARE(script.texts().last(), QStringLiteral("Adjustment Recorded"));
        QCOMPARE(script.service().unanswered, 0);
    }
    // The exoneration is gone: the bill is as delivered again.
    QCOMPARE(rows("SELECT AdjFlag, CPayFlag, TPayFlag, SPayFlag FROM TCMaster"),
             QStringLiteral(" | | | "));
    QCOMPARE(rows("SELECT count(*) FROM TCAdjust"), QStringLiteral("0"));
}

void TestAdjustScreen::exonerationDeclined() {
    MessageScript script;
    frmREAdjustTaxBill screen;
    screen.show();
    screen.txtBillNo->setText(QStringLiteral("1"));
    script.answer(MsgAnswer::No);
    screen.setAction(frmREAdjustTaxBill::Exonerate);
    QCOMPARE(script.texts(),
             (QStringList{"Do you want to exonerate this tax bill?", "Tax bill NOT exonerated"}));
    QVERIFY(screen.txtBillNo->text().isEmpty());
    QVERIFY(screen.cboAction->isEnabled());
    QCOMPARE(rows("SELECT AdjFlag || CPayFlag FROM TCMaster"), QStringLiteral("  "));
    QCOMPARE(rows("SELECT count(*) FROM TCAdjust"), QStringLiteral("0"));
}

// The ticks choose the bodies: those left unticked keep their amounts and their flags.
void TestAdjustScreen::exonerateOneBody() {
    MessageScript script;
    {
        frmREAdjustTaxBill screen;
        screen.show();
        screen.txtBillNo->setText(QStringLiteral("1"));
        script.answer(MsgAnswer::Yes);
        screen.setAction(frmREAdjustTaxBill::Exonerate);
        screen.chkTwp->click();
        screen.chkSchool->click();
        QCOMPARE(screen.txtCounty->text(), QStringLiteral("$.00"));
        QCOMPARE(screen.txtSchool->text(), QStringLiteral("$600.00"));
        QCOMPARE(screen.txtTotal->text(), QStringLiteral("$650.00"));
        QVERIFY(!screen.txtSchool->isEnabled());
        screen.cmdAccept->click();
        QCOMPARE(script.texts().last(), QStringLiteral("Adjustment Recorded"));
    }
    QCOMPARE(rows("SELECT AdjFlag, CPayFlag, TPayFlag, SPayFlag FROM TCMaster"),
             QStringLiteral("A|X| | "));
    QCOMPARE(rows("SELECT AdjFlag, County, PCounty, Twp, DSchool, School FROM TCAdjust"),
             QStringLiteral("X|0|0|500000|5880000|6000000"));
}

void TestAdjustScreen::unexonerateRefusesABillNotExonerated() {
    MessageScript script;
    frmREAdjustTaxBill screen;
    screen.show();
    screen.txtBillNo->setText(QStringLiteral("1"));
    screen.setAction(frmREAdjustTaxBill::Unexonerate);
    QCOMPARE(script.texts(), QStringList{"You CANNOT unexonerate this tax bill. This is NOT an "
                                         "exonerated tax bill."});
    QCOMPARE(script.titles(), QStringList{"Unexonerate Tax Bill"});
    QVERIFY(!screen.cmdAccept->isEnabled());
}

QTEST_MAIN(TestAdjustScreen)
#include "test_adjust_screen.moc"
