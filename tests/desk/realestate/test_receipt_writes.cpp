#include "desk/realestate/receipt_writes.h"
#include "support/test_support.h"

#include "core/tax_database.h"

#include <QSqlQuery>
#include <QTest>

namespace {

Money M(const char* text) {
    return Money::parse(QString::fromLatin1(text)).value();
}

QDate D(const char* iso) {
    return QDate::fromString(QString::fromLatin1(iso), Qt::ISODate);
}

const auto rows = &QueryRows;

// Every write to the tables a payment or void touches lands in a log, in order.
void logWrites(TempTaxDatabase& t) {
    t.exec("CREATE TABLE WriteLog (n INTEGER PRIMARY KEY, what TEXT)");
    const char* triggers[][2] = {
        {"UPDATE", "TCMaster"},  {"UPDATE", "TCReceiptNum"},  {"INSERT", "TCReceipt"},
        {"UPDATE", "TCReceipt"}, {"INSERT", "TCVoidReceipt"}, {"DELETE", "TCRefund"},
        {"INSERT", "TCRefund"},
    };
    int n = 0;
    for (const auto& t2 : triggers)
        t.exec(QStringLiteral("CREATE TRIGGER log%1 AFTER %2 ON %3 BEGIN INSERT INTO WriteLog "
                              "(what) VALUES ('%2 %3'); END")
                   .arg(++n)
                   .arg(QLatin1String(t2[0]), QLatin1String(t2[1])));
}

QString writeLog(const TempTaxDatabase& t) {
    return rows(t.db(), "SELECT what FROM WriteLog ORDER BY n");
}

// A bill on its master row: county 100/98/110, library 10/9.80/11, twp 200/196/220, street
// lights (S3Face) 30/29.40/33, school 500/490/550, installments 166.67/166.67/166.66.
void insertBill(TempTaxDatabase& t, const QString& billNo = QStringLiteral("   42")) {
    QVERIFY(t.exec(
        QStringLiteral(
            "INSERT INTO TCMaster (District, Ward, Control, BillNo, Name, Map3, Map4, Map5, "
            "DCounty, County, PCounty, DLibrary, Library, PLibrary, DTwp, Twp, PTwp, "
            "DS3Face, S3Face, PS3Face, DSchool, School, PSchool, Payment1, Payment2, Payment3, "
            "PenPayment1, PenPayment2, PenPayment3, AdjFlag, CPayFlag, TPayFlag, SPayFlag, "
            "Pay1Flag, Pay2Flag, Pay3Flag, StLtFlag, TwpPaidFlag, StLtPaidFlag, CAddrFlag) "
            "VALUES ('39', '1', '004200', '%1', 'OWNER NAME', '12', '34', '567', "
            "980000, 1000000, 1100000, 98000, 100000, 110000, 1960000, 2000000, 2200000, "
            "294000, 300000, 330000, 4900000, 5000000, 5500000, 1666700, 1666700, 1666600, "
            "0, 1833400, 1832600, ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ')")
            .arg(billNo)));
}

BillNow readBill(TempTaxDatabase& t, const QString& billNo = QStringLiteral("   42")) {
    return ReadBillAsItStands(t.db(), Duplicate::RealEstate, billNo);
}

PaymentChoice choose(bool county, bool twp, bool school, const char* periods = "DFP") {
    PaymentChoice c;
    c.selection.county = county;
    c.selection.twp = twp;
    c.selection.school = school;
    c.periods = {QChar(periods[0]), QChar(periods[1]), QChar(periods[2])};
    return c;
}

// The posting of that choice on 09/15/2013, with the bill's installment flags as given.
RealEstatePosting posting(TempTaxDatabase& t, const PaymentChoice& c,
                          const std::array<QString, 3>& payFlags = {" ", " ", " "}) {
    const BillNow bill = readBill(t);
    PeriodAmounts shown = AmountsForPeriods(BillLinesFromRecord(bill.bill), c.periods);
    if (c.streetLightShown)
        ApplyStreetLightChoice(shown, c.streetLightOption);
    const InstallmentView inst =
        InstallmentsForDate(InstallmentsFromRecord(bill.bill), payFlags,
                            {D("2013-06-30"), D("2013-08-31"), D("2013-10-31")}, D("2013-09-15"));
    RealEstatePosting p = BuildRealEstatePosting(bill, c, shown, inst);
    p.receipt.rdate = D("2013-09-15");
    p.receipt.payor = "PAYOR O'NEIL";
    p.receipt.checknum = "CASH";
    return p;
}

} // namespace

class TestReceiptWrites : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recnum_data();
    void recnum();
    void buildInstallments();
    void postWritesInOrder();
    void postRefusedWritesNothing();
    void flagsAfterVoid_data();
    void flagsAfterVoid();
    void voidWritesInOrderAndNegates();
    void refundDistributed();
    void voidRefusedWritesNothing();
};

void TestReceiptWrites::recnum_data() {
    QTest::addColumn<qint64>("counter");
    QTest::addColumn<QString>("recnum");
    AddRow("four digits", qint64(9999), "201309159999");
    // The twelve-character field loses the last digit of a five-digit counter.
    AddRow("five digits", qint64(12345), "201309151234");
}

void TestReceiptWrites::recnum() {
    QFETCH(qint64, counter);
    QFETCH(QString, recnum);
    QCOMPARE(MakeRecnum(D("2013-09-15"), counter), recnum);
}

// The screen posts one installment at a time; two ticked together put both faces in School.
void TestReceiptWrites::buildInstallments() {
    TempTaxDatabase t;
    insertBill(t);
    PaymentChoice c = choose(false, false, true);
    c.selection.installment = {true, true, false};
    const RealEstatePosting both = posting(t, c);
    QCOMPARE(both.receipt.line[LineSchool].face, M("333.34"));
}

void TestReceiptWrites::postWritesInOrder() {
    TempTaxDatabase t;
    insertBill(t);
    logWrites(t);
    QVERIFY(t.exec("UPDATE TCReceiptNum SET ReceiptNum = 17"));
    QVERIFY(t.exec("DELETE FROM WriteLog"));

    const PostingResult r =
        PostRealEstatePayment(t.db(), posting(t, choose(true, true, false)), D("2013-09-16"));
    QVERIFY2(r.ok, qPrintable(r.error));
    QCOMPARE(r.recnum, QStringLiteral("201309160017"));
    // The flags first, the counter next, the receipt last.
    QCOMPARE(writeLog(t), QStringLiteral("UPDATE TCMaster;UPDATE TCReceiptNum;INSERT TCReceipt"));
    QCOMPARE(rows(t.db(), "SELECT ReceiptNum FROM TCReceiptNum"), QStringLiteral("18"));
    QCOMPARE(rows(t.db(), "SELECT CPayFlag, TPayFlag, TwpPaidFlag, StLtPaidFlag, SPayFlag, "
                          "StLtFlag FROM TCMaster"),
             QStringLiteral("D|F| | | | "));
}

void TestReceiptWrites::postRefusedWritesNothing() {
    TempTaxDatabase t;
    insertBill(t);
    // The receipt cannot be written: everything before it must go back.
    QVERIFY(t.exec("CREATE TRIGGER refuse BEFORE INSERT ON TCReceipt BEGIN "
                   "SELECT RAISE(ABORT, 'disk full'); END"));
    const PostingResult r =
        PostRealEstatePayment(t.db(), posting(t, choose(true, true, true)), D("2013-09-16"));
    QVERIFY(!r.ok);
    QVERIFY(r.error.contains("disk full"));
    QVERIFY(r.recnum.isEmpty());
    QCOMPARE(rows(t.db(), "SELECT CPayFlag || TPayFlag || SPayFlag || StLtFlag FROM TCMaster"),
             QStringLiteral("    "));
    QCOMPARE(rows(t.db(), "SELECT ReceiptNum FROM TCReceiptNum"), QStringLiteral("1"));
    QCOMPARE(rows(t.db(), "SELECT count(*) FROM TCReceipt"), QStringLiteral("0"));
}

void TestReceiptWrites::flagsAfterVoid_data() {
    QTest::addColumn<QString>("receipt"); // C T S P1 P2 P3
    QTest::addColumn<QString>("bill");    // P1 P2 P3 on the bill
    QTest::addColumn<QString>("written"); // C T S P1 P2 P3, "-" not written

    // The void of the second or the only installment: desk_installments.scn; of the municipal
    // part alone: desk_void.scn.
    AddRow("county and school", "D P   ", "   ", " - ---");
    AddRow("installments 1 and 2 of all three", "  IFF ", "FFF", "--I  -");
    AddRow("nothing paid", "      ", "   ", "------");
}

void TestReceiptWrites::flagsAfterVoid() {
    QFETCH(QString, receipt);
    QFETCH(QString, bill);
    QFETCH(QString, written);
    BillPayFlags r;
    r.cPayFlag = receipt.mid(0, 1);
    r.tPayFlag = receipt.mid(1, 1);
    r.sPayFlag = receipt.mid(2, 1);
    r.payFlag = {receipt.mid(3, 1), receipt.mid(4, 1), receipt.mid(5, 1)};
    BillPayFlags b;
    b.payFlag = {bill.mid(0, 1), bill.mid(1, 1), bill.mid(2, 1)};
    const VoidMasterFlags f = FlagsAfterVoid(r, b);
    auto shown = [](const std::optional<QString>& v) { return v ? *v : QStringLiteral("-"); };
    QCOMPARE(shown(f.cPayFlag) + shown(f.tPayFlag) + shown(f.sPayFlag) + shown(f.payFlag[0]) +
                 shown(f.payFlag[1]) + shown(f.payFlag[2]),
             written);
    QCOMPARE(f.isEmpty(), written == QStringLiteral("------"));
}

void TestReceiptWrites::voidWritesInOrderAndNegates() {
    TempTaxDatabase t;
    insertBill(t);
    logWrites(t);
    // Installment 1 paid earlier; installment 2 at penalty on this receipt, with an overage.
    QVERIFY(t.exec("UPDATE TCMaster SET SPayFlag = 'I', Pay1Flag = 'F'"));
    PaymentChoice c = choose(false, false, true);
    c.selection.installment = {false, true, false};
    RealEstatePosting p = posting(t, c, {"F", " ", " "});
    p.receipt.overage = M("1.25");
    p.receipt.refund = M("4.00");
    QVERIFY(PostRealEstatePayment(t.db(), p, D("2013-09-16")).ok);
    QVERIFY(t.exec("UPDATE TCReceipt SET CDisbNum = '201301', County = 10000, DCounty = -200"));
    QVERIFY(t.exec("INSERT INTO TCRefund (RecNum, RecNumID, Refund, DisbNum) VALUES "
                   "('201309160001', 1, 40000, '201300')"));
    QVERIFY(t.exec("DELETE FROM WriteLog"));

    VoidRequest request{"201309160001", D("2013-09-20"), "KEYED WRONG"};
    const VoidResult r = VoidRealEstateReceipt(t.db(), request, D("2013-09-21"), "2013");
    QVERIFY2(r.ok, qPrintable(r.error));
    QVERIFY(r.refundsRemoved);
    QCOMPARE(writeLog(t), QStringLiteral("UPDATE TCMaster;INSERT TCVoidReceipt;UPDATE "
                                         "TCReceipt;DELETE TCRefund"));
    // Installment 1 stays paid; the school part still pays by installments.
    QCOMPARE(rows(t.db(), "SELECT SPayFlag || Pay1Flag || Pay2Flag || Pay3Flag FROM TCMaster"),
             QStringLiteral("IF  "));
    QCOMPARE(rows(t.db(), "SELECT VDate FROM TCReceipt"), QStringLiteral("2013-09-21"));
    QCOMPARE(rows(t.db(), "SELECT count(*) FROM TCRefund"), QStringLiteral("0"));

    // Every one of the 35 money columns negated; the other columns as on the receipt.
    const TaxDatabase::TableDef* receipt = TaxDatabase::table("TCReceipt");
    int money = 0;
    QSqlQuery original(t.db());
    QSqlQuery copy(t.db());
    QVERIFY(original.exec("SELECT * FROM TCReceipt") && original.next());
    QVERIFY(copy.exec("SELECT * FROM TCVoidReceipt") && copy.next());
    for (const TaxDatabase::ColumnDef& col : receipt->columns) {
        const QVariant o = original.value(col.name);
        const QVariant v = copy.value(col.name);
        if (col.type == TaxDatabase::ColumnType::Money) {
            ++money;
            QCOMPARE(v.toLongLong(), -o.toLongLong());
        } else if (col.name == "VDate") {
            QCOMPARE(v.toString(), QStringLiteral("2013-09-20"));
        } else if (col.name.endsWith("DisbNum")) {
            QCOMPARE(v.toString(), QStringLiteral("      "));
        } else {
            QCOMPARE(v.toString(), o.toString());
        }
    }
    QCOMPARE(money, 35);
    QCOMPARE(rows(t.db(), "SELECT RCDisbNum, RTDisbNum, Reason, SysDate, PenPayment2, Overage "
                          "FROM TCVoidReceipt"),
             QStringLiteral("201301|      |KEYED WRONG|2013-09-21|-166700|-12500"));
}

// Which refunds a void keeps is desk_void.scn's; here the key of a later year counts as paid out.
void TestReceiptWrites::refundDistributed() {
    QVERIFY(RefundDistributed("201401", "2013"));
    QVERIFY(RefundDistributed("201302", "2013"));
    QVERIFY(!RefundDistributed("201300", "2013"));
}

void TestReceiptWrites::voidRefusedWritesNothing() {
    TempTaxDatabase t;
    insertBill(t);
    QVERIFY(
        PostRealEstatePayment(t.db(), posting(t, choose(true, false, false)), D("2013-09-16")).ok);
    const VoidRequest request{"201309160001", D("2013-09-20"), "X"};
    QVERIFY(VoidRealEstateReceipt(t.db(), request, D("2013-09-21"), "2013").ok);
    QVERIFY(t.exec("UPDATE TCMaster SET CPayFlag = 'F'")); // paid again since
    logWrites(t);

    // A second void of the same receipt (the screen's lookups refuse it first: desk_void.scn).
    QVERIFY(!VoidRealEstateReceipt(t.db(), request, D("2013-09-22"), "2013").ok);
    QCOMPARE(writeLog(t), QString());
    QCOMPARE(rows(t.db(), "SELECT CPayFlag FROM TCMaster"), QStringLiteral("F"));
    QCOMPARE(rows(t.db(), "SELECT count(*) FROM TCVoidReceipt"), QStringLiteral("1"));

    // A copy that cannot be written takes the bill's flags back with it.
    QVERIFY(t.exec("CREATE TRIGGER refuse BEFORE INSERT ON TCVoidReceipt BEGIN "
                   "SELECT RAISE(ABORT, 'no room'); END"));
    QVERIFY(
        PostRealEstatePayment(t.db(), posting(t, choose(false, true, false)), D("2013-09-16")).ok);
    const VoidResult failed = VoidRealEstateReceipt(t.db(), {"201309160002", D("2013-09-20"), "X"},
                                                    D("2013-09-22"), "2013");
    QVERIFY(!failed.ok);
    QCOMPARE(rows(t.db(), "SELECT TPayFlag FROM TCMaster"), QStringLiteral("F"));
    QCOMPARE(rows(t.db(), "SELECT VDate FROM TCReceipt WHERE Recnum = '201309160002'"),
             QStringLiteral("<null>"));
}

QTEST_GUILESS_MAIN(TestReceiptWrites)
#include "test_receipt_writes.moc"
