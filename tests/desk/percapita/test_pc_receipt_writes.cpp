// The per capita amount offered and due, and the per capita write functions on temporary
// databases: what a payment and a void write and in which order, the receipt page. Posting and
// voiding run through the same functions as the real estate desk, whose tests prove that nothing is
// written when a write fails or a void is refused.
#include "desk/percapita/pc_receipt.h"
#include "desk/percapita/pc_receipt_writes.h"
#include "support/test_support.h"

#include "core/tax_database.h"

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
        {"UPDATE", "PCMaster"},  {"UPDATE", "PCReceiptNum"},  {"INSERT", "PCReceipt"},
        {"UPDATE", "PCReceipt"}, {"INSERT", "PCVoidReceipt"}, {"DELETE", "TCRefund"},
        {"DELETE", "PCRefund"},  {"UPDATE", "TCMaster"},      {"UPDATE", "TCReceiptNum"},
    };
    int n = 0;
    for (const auto& tr : triggers)
        t.exec(QStringLiteral("CREATE TRIGGER log%1 AFTER %2 ON %3 BEGIN INSERT INTO WriteLog "
                              "(what) VALUES ('%2 %3'); END")
                   .arg(++n)
                   .arg(QLatin1String(tr[0]), QLatin1String(tr[1])));
}

// A person's bill: county 5.00 (4.90 / 5.50) and occupation 2.00 (1.96 / 2.20), borough 10.00
// (9.80 / 11.00) and 4.00 (3.92 / 4.40), school 5.00 (4.90 / 5.50), no school occupation.
void insertBill(TempTaxDatabase& t) {
    QVERIFY(t.exec(
        "INSERT INTO PCMaster (District, Ward, Control, BillNo, Name, LName, FName, Addr2, City, "
        "State, ZipCode, DCPerCapita, CPerCapita, PCPerCapita, DCOccupation, COccupation, "
        "PCOccupation, DTPerCapita, TPerCapita, PTPerCapita, DTOccupation, TOccupation, "
        "PTOccupation, DSPerCapita, SPerCapita, PSPerCapita, DSOccupation, SOccupation, "
        "PSOccupation, AdjFlag, CPayFlag, TPayFlag, SPayFlag, CAddrFlag) VALUES ('12', '3', "
        "'000101', '    1', 'MARY A O''BRIEN', 'O''BRIEN', 'MARY', '12 MAIN ST', 'MAPLE', 'PA', "
        "'19000', 49000, 50000, 55000, 19600, 20000, 22000, 98000, 100000, 110000, 39200, 40000, "
        "44000, 49000, 50000, 55000, 0, 0, 0, ' ', ' ', ' ', ' ', ' ')"));
}

BillNow readBill(TempTaxDatabase& t) {
    return ReadBillAsItStands(t.db(), Duplicate::PerCapita, QStringLiteral("    1"));
}

PaymentPeriods periods(const char* letters) {
    return {QChar(letters[0]), QChar(letters[1]), QChar(letters[2])};
}

PaymentSelection ticks(bool county, bool twp, bool school) {
    PaymentSelection s;
    s.county = county;
    s.twp = twp;
    s.school = school;
    return s;
}

PerCapitaPosting posting(TempTaxDatabase& t, const PaymentSelection& s, const char* letters) {
    const BillNow bill = readBill(t);
    const PaymentPeriods p = periods(letters);
    PerCapitaPosting out =
        BuildPerCapitaPosting(bill, s, p, PerCapitaAmountsForPeriods(bill.bill, p));
    out.receipt.rdate = D("2013-04-15");
    out.receipt.payor = QStringLiteral("PAT O'NEIL");
    out.receipt.checknum = QStringLiteral("CASH");
    return out;
}

} // namespace

class TestPCReceiptWrites : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void offeredAndDue();
    void postWritesInOrder();
    void voidWritesInOrder();
    void receiptPage();
};

// The amounts offered in each period, a paid body closed and a bill of nothing to pay:
// pc_desk_periods.scn and pc_desk_refusals.scn. Here a body paid offers nothing, yet its ticked
// total still counts as due.
void TestPCReceiptWrites::offeredAndDue() {
    TempTaxDatabase t;
    insertBill(t);
    const PerCapitaAmounts a = PerCapitaAmountsForPeriods(readBill(t).bill, periods("DFP"));
    const PaymentSelection all = ticks(true, true, true);
    QCOMPARE(PerCapitaAmountOffered(all, u"D", u" ", u" ", a), M("19.50"));
    QCOMPARE(PerCapitaTotalDue(all, a), M("26.36"));
}

void TestPCReceiptWrites::postWritesInOrder() {
    TempTaxDatabase t;
    insertBill(t);
    t.exec("UPDATE PCReceiptNum SET ReceiptNum = 7");
    logWrites(t);
    PerCapitaPosting p = posting(t, ticks(true, true, false), "DDD");
    p.receipt.overage = M("0.25");
    const PostingResult r = PostPerCapitaPayment(t.db(), p, D("2013-04-16"));
    QVERIFY2(r.ok, qPrintable(r.error));
    // The receipt number is today's date (not the date credited) and the counter.
    QCOMPARE(r.recnum, QStringLiteral("201304160007"));
    QCOMPARE(rows(t.db(), "SELECT what FROM WriteLog ORDER BY n"),
             QStringLiteral("UPDATE PCMaster;UPDATE PCReceiptNum;INSERT PCReceipt"));
    QCOMPARE(rows(t.db(), "SELECT CPayFlag, TPayFlag, SPayFlag FROM PCMaster"),
             QStringLiteral("D|D| "));
    QCOMPARE(rows(t.db(), "SELECT ReceiptNum FROM PCReceiptNum"), QStringLiteral("8"));
    QCOMPARE(rows(t.db(), "SELECT ReceiptNum FROM TCReceiptNum"), QStringLiteral("1"));
}

// The copy's columns and which refunds stay: pc_desk_void.scn; here the order of the writes.
void TestPCReceiptWrites::voidWritesInOrder() {
    TempTaxDatabase t;
    insertBill(t);
    const PostingResult posted =
        PostPerCapitaPayment(t.db(), posting(t, ticks(true, false, true), "DFP"), D("2013-04-16"));
    QVERIFY(posted.ok);
    QVERIFY(t.exec(QStringLiteral("INSERT INTO TCRefund (RecNum, RecNumID, Refund, DisbNum) "
                                  "VALUES ('%1', 1, 70000, '201300')")
                       .arg(posted.recnum)));
    logWrites(t);
    const VoidResult v = VoidPerCapitaReceipt(t.db(), {posted.recnum, D("2013-04-17"), "X"},
                                              D("2013-04-18"), QStringLiteral("2013"));
    QVERIFY2(v.ok, qPrintable(v.error));
    QVERIFY(v.refundsRemoved);
    QCOMPARE(rows(t.db(), "SELECT what FROM WriteLog ORDER BY n"),
             QStringLiteral("UPDATE PCMaster;INSERT PCVoidReceipt;UPDATE PCReceipt;"
                            "DELETE TCRefund"));
}

// The printed rows, bar code and lookups: pc_desk_periods.scn and pc_reprint_receipt.scn; here
// a city, and a school that levies no occupation tax has no row for it.
void TestPCReceiptWrites::receiptPage() {
    TempTaxDatabase t;
    insertBill(t);
    t.exec("INSERT INTO tbl_District (District, Ward) VALUES ('12', '3')");
    t.exec("INSERT INTO tbl_Twpboro (District, Ward, TwpBoro, BTFlag) VALUES ('12', '3', "
           "'MAPLE CITY', 'C')");
    t.exec("INSERT INTO Millfile (District, Ward, TaxYear, SPC, SMO) VALUES ('00', '0', '2013', "
           "5, 1)");
    t.exec("INSERT INTO Millfile (District, Ward, TaxYear, TPC, TMO, SPC, SMO) VALUES ('12', "
           "'3', '2013', 10, 2, 5, 0)");
    const PostingResult posted =
        PostPerCapitaPayment(t.db(), posting(t, ticks(false, true, true), "DPF"), D("2013-04-16"));
    QVERIFY(posted.ok);
    ReceiptOffice office;
    QVERIFY(LoadPCReceipt(t.db(), posted.recnum, &office));
    const ReceiptPage page = PCReceiptPage(office, ReceiptScreenText{}, true);
    QCOMPARE(page.rows.size(), std::size_t(3));
    QCOMPARE(page.rows[0].description, QStringLiteral("CITY"));
    QCOMPARE(page.rows[0].penalty, QStringLiteral("$1.00"));
    QCOMPARE(page.rows[2].description, QStringLiteral("SCHOOL"));
    QCOMPARE(page.total.payment, QStringLiteral("$20.40"));
    QCOMPARE(page.sentences.front().join(QString()),
             QStringLiteral("Your payment was credited on 04/15/13. (City paid at Penalty. "
                            "School paid at Face. )"));
}

QTEST_GUILESS_MAIN(TestPCReceiptWrites)
#include "test_pc_receipt_writes.moc"
