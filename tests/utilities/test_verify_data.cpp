#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/receipt_writes.h"
#include "distribution/distribution_tables.h"
#include "distribution/distribution_writes.h"
#include "utilities/duplicate_transfer.h"
#include "utilities/verify_data.h"

#include "desk/yearend/yearend_fixture.h"
#include "support/test_support.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Every row of every table, for "nothing changed".
QByteArray Fingerprint(QSqlDatabase db) {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const TaxDatabase::TableDef& table : TaxDatabase::schema()) {
        QSqlQuery q(db);
        q.exec(QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(table.name));
        while (q.next()) {
            const QSqlRecord r = q.record();
            for (int i = 0; i < r.count(); ++i)
                hash.addData(
                    (r.value(i).isNull() ? QStringLiteral("<null>") : r.value(i).toString() + u'|')
                        .toUtf8());
        }
    }
    return hash.result();
}

QStringList Column(QSqlDatabase db, const QString& sql) {
    QStringList out;
    QSqlQuery q(db);
    if (!q.exec(sql))
        return {QStringLiteral("<failed>")};
    while (q.next()) {
        QStringList row;
        for (int i = 0; i < q.record().count(); ++i)
            row << (q.value(i).isNull() ? QStringLiteral("<null>") : q.value(i).toString());
        out << row.join(u'|');
    }
    return out;
}

// Columns of the schema (dates aside) that hold a Null somewhere.
QStringList NullColumns(QSqlDatabase db) {
    QStringList out;
    for (const TaxDatabase::TableDef& table : TaxDatabase::schema())
        for (const TaxDatabase::ColumnDef& column : table.columns) {
            if (column.type == TaxDatabase::ColumnType::Date)
                continue;
            QSqlQuery q(db);
            q.exec(QStringLiteral("SELECT count(*) FROM %1 WHERE %2 IS NULL")
                       .arg(table.name, column.name));
            if (q.next() && q.value(0).toInt() > 0)
                out << table.name + u'.' + column.name;
        }
    return out;
}

const char* const ReceiptColumns =
    "Control, BillNo, AdjNo, Recnum, Name, RDate, County, Library, C1Face, Twp, S1Face, S2Face, "
    "S3Face, School, Sch1Face, CPayFlag, TPayFlag, SPayFlag, CDisbNum, TDisbNum, SDisbNum";

} // namespace

class TestVerifyData : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // Every kind of half-done state at once, each mended (or only told) as the office expects.
    void halfDoneStatesAreMendedRowByRow() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        QSqlDatabase db = t.db();
        // Bill 1: an adjustment cut off after its marker; bill 7 an address change likewise,
        // and a county receipt whose insert never ran (its flag F stands alone).
        QVERIFY(t.exec("UPDATE TCMaster SET AdjFlag = 'A' WHERE BillNo = '    1'"));
        QVERIFY(
            t.exec("UPDATE TCMaster SET CAddrFlag = 'A', TPayFlag = 'D' WHERE BillNo = '    7'"));
        // Bill 6 (paid D/F/P): one receipt for county and school. The test is for a receipt of
        // any kind, so its township flag stands too.
        QVERIFY(t.exec(QStringLiteral("INSERT INTO TCReceipt (%1) VALUES ('000006', '    6', 0, "
                                      "'201304010001', 'PAID ALREADY', '2013-04-01', 1000000, "
                                      "100000, 0, 0, 0, 0, 0, 6000000, 225000, 'D', ' ', 'P', "
                                      "'      ', '      ', '      ')")
                           .arg(QLatin1String(ReceiptColumns))));
        // Bill 8: adjustment rows without the marker.
        QVERIFY(t.exec("INSERT INTO TCAdjust (BillNo, AdjNo, AdjFlag) VALUES ('    8', 1, 'A')"));
        QVERIFY(t.exec("INSERT INTO TCAdjust (BillNo, AdjNo, AdjFlag) VALUES ('    8', 2, 'A')"));
        // Per capita bill 1: an address change cut off; bill 2 a county receipt missing.
        QVERIFY(t.exec("UPDATE PCMaster SET CAddrFlag = 'A' WHERE BillNo = '    1'"));
        QVERIFY(t.exec("INSERT INTO PCAdjust (BillNo, AdjNo, AdjFlag) VALUES ('    3', 1, 'A')"));

        MessageScript boxes;
        VerifyEvents events;
        QStringList told;
        events.tell = [&](const QString& title, const QString& text) {
            QCOMPARE(title, QStringLiteral("Verify Data"));
            told << text;
        };
        const VerifyWalk walk = VerifyDataWalk(db, QStringLiteral("Township"), events);
        QVERIFY2(walk.ok, qPrintable(walk.error));
        QVERIFY(told.isEmpty());

        // The markers are cleared; only bill 3's adjustment and bill 5's address stay.
        QCOMPARE(Column(db, "SELECT BillNo, AdjFlag, CAddrFlag, CPayFlag, TPayFlag, SPayFlag "
                            "FROM TCMaster ORDER BY BillNo"),
                 QStringList({"    1| | | | | ", "    2| | | | | ", "    3|A| | | | ",
                              "    4| | | | | ", "    5| |A| | | ", "    6| | |D|F|P",
                              "    7| | | | | ", "    8| | | | | ", "A0001| | | | | "}));
        QCOMPARE(Column(db, "SELECT BillNo, AdjNo FROM TCAdjust ORDER BY BillNo, AdjNo"),
                 QStringList({"    3|1", "    3|2"}));
        QCOMPARE(Column(db, "SELECT BillNo, CAddrFlag, CPayFlag, TPayFlag, SPayFlag FROM "
                            "PCMaster ORDER BY BillNo"),
                 QStringList({"    1|A| | | ", "    2| | | | ", "    3| | | | ", "    4| | | | "}));
        QCOMPARE(Column(db, "SELECT count(*) FROM PCAdjust"), QStringList{"0"});

        const QStringList printed = walk.printed;
        auto has = [&printed](const QString& first, const QString& action) {
            const qsizetype at = printed.indexOf(first);
            return at >= 0 && printed.value(at + 1) == u"Status: REPAIRED" &&
                   printed.value(at + 2) == QStringLiteral("Action required by user: ") + action;
        };
        QVERIFY(has("Bill #     1 has an incomplete ADJUSTMENT.", "Re-enter the adjustment."));
        // The other real estate lines, exonerated parts among them: verify_data.scn. A receipt
        // of any kind settles its bill's flags.
        QVERIFY(!printed.join(u'\n').contains(QLatin1String("#     6 ")));
        QVERIFY(has("Per Capita Bill #     1 has an incomplete ADDRESS CHANGE.",
                    "Re-enter the address change."));
        QVERIFY(has("Per Capita Bill #     2 has an incomplete COUNTY RECEIPT.",
                    "Re-enter the county receipt."));
        QVERIFY(has("Per Capita Bill #     3 has an incomplete ADJUSTMENT.",
                    "Re-enter the adjustment."));
        QCOMPARE(printed.count(QStringLiteral("Real Estate Bill #     8 has an incomplete "
                                              "ADJUSTMENT.")),
                 1);

        // A second run finds only what the per capita address repair leaves behind.
        const VerifyWalk again = VerifyDataWalk(db, QStringLiteral("Township"), events);
        QCOMPARE(again.printed,
                 QStringList({"Per Capita Bill #     1 has an incomplete ADDRESS CHANGE.",
                              "Status: REPAIRED",
                              "Action required by user: Re-enter the "
                              "address change.",
                              ""}));
        QVERIFY(told.isEmpty());
    }

    // What the walk can only report: boxes, and nothing changed.
    void mismatchesAreToldNotMended() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        QSqlDatabase db = t.db();
        QVERIFY(t.exec("UPDATE TCMaster SET CPayFlag = ' ', TPayFlag = ' ', SPayFlag = ' ', "
                       "AdjFlag = ' ', CAddrFlag = ' '"));
        QVERIFY(t.exec("DELETE FROM TCAdjust"));
        QVERIFY(t.exec("UPDATE PCMaster SET CPayFlag = ' ', TPayFlag = ' ', SPayFlag = ' '"));
        // Bill 1: two live county receipts, the flag set; the second was distributed, with
        // the wrong amount in its county row. Bill 2: a receipt distributed with no row.
        QVERIFY(t.exec("UPDATE TCMaster SET CPayFlag = 'D' WHERE BillNo IN ('    1', '    2')"));
        for (const char* values :
             {"'000001', '    1', 0, '201304010001', 'A', '2013-04-01', 1000000, 100000, 0, 0, 0, "
              "0, 0, 0, 0, 'D', ' ', ' ', '      ', '      ', '      '",
              "'000001', '    1', 0, '201304020001', 'A', '2013-04-02', 1000000, 100000, 0, 0, 0, "
              "0, 0, 0, 0, 'D', ' ', ' ', '201301', '      ', '      '",
              "'000002', '    2', 0, '201304030001', 'B', '2013-04-03', 1000000, 100000, 0, 0, 0, "
              "0, 0, 0, 0, 'D', ' ', ' ', '201301', '      ', '      '"})
            QVERIFY(t.exec(QStringLiteral("INSERT INTO TCReceipt (%1) VALUES (%2)")
                               .arg(QLatin1String(ReceiptColumns), QLatin1String(values))));
        QVERIFY(t.exec("INSERT INTO TCDistribution (CTS, BillNo, Recnum, County, Library, "
                       "C1Face, CPayFlag) VALUES ('C', '    1', '201304020001', 900000, 100000, "
                       "0, 'D')"));
        // Bill 7: a voided receipt paid again -- no mismatch.
        QVERIFY(t.exec("UPDATE TCMaster SET CPayFlag = 'F' WHERE BillNo = '    7'"));
        for (const char* recnum : {"201305010001", "201305020001"})
            QVERIFY(t.exec(QStringLiteral("INSERT INTO TCReceipt (%1) VALUES ('000007', '    7', "
                                          "0, '%2', 'C', '2013-05-01', 1000000, 100000, 0, 0, 0, "
                                          "0, 0, 0, 0, 'F', ' ', ' ', '      ', '      ', "
                                          "'      ')")
                               .arg(QLatin1String(ReceiptColumns), QLatin1String(recnum))));
        QVERIFY(t.exec("INSERT INTO TCVoidReceipt (BillNo, Recnum, CPayFlag) VALUES ('    7', "
                       "'201305010001', 'F')"));
        const QByteArray before = Fingerprint(db);

        QStringList told;
        VerifyEvents events;
        events.tell = [&](const QString&, const QString& text) { told << text; };
        const VerifyWalk walk = VerifyDataWalk(db, QStringLiteral("Borough"), events);
        QVERIFY(walk.ok);
        QCOMPARE(told, QStringList({
                           "Receipts for Bill #     1 do not match. Call Support.",
                           "RE Receipts for Bill #     1 do not match distribution amounts. Call "
                           "Support.",
                           "Real Estate Distribution Record for Receipt # 201304030001 can not "
                           "be found in the Distribution File. Call Support.",
                       }));
        QVERIFY(walk.printed.isEmpty());
        QCOMPARE(Fingerprint(db), before);
    }

    void adjustedAmountsAgainstReceipts() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        QSqlDatabase db = t.db();
        QVERIFY(t.exec("UPDATE TCMaster SET CPayFlag = 'F' WHERE BillNo = '    3'"));
        // A live county receipt at the first adjustment's amounts, and a voided one.
        for (const char* recnum : {"201306010001", "201306020001"})
            QVERIFY(t.exec(QStringLiteral("INSERT INTO TCReceipt (%1) VALUES ('000003', '    3', "
                                          "1, '%2', 'C', '2013-06-01', 800000, 80000, 0, 0, 0, 0, "
                                          "0, 0, 0, 'F', ' ', ' ', '      ', '      ', '      ')")
                               .arg(QLatin1String(ReceiptColumns), QLatin1String(recnum))));
        QVERIFY(t.exec("INSERT INTO TCVoidReceipt (BillNo, Recnum) VALUES ('    3', "
                       "'201306010001')"));
        QStringList told;
        VerifyEvents events;
        events.tell = [&](const QString&, const QString& text) { told << text; };
        QVERIFY(VerifyDataWalk(db, QStringLiteral("Township"), events).ok);
        // The second adjustment (county 70.00) no longer matches the receipt's 80.00.
        QVERIFY(told.contains(QStringLiteral(
            "RE Receipts for Bill #     3 do not match adjusted amounts. Call Support.")));
    }

    void nullsAreCleanedDatesKept() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        QSqlDatabase db = t.db();
        QVERIFY(t.exec("UPDATE TCMaster SET County = NULL, AssLand = NULL, Name = NULL, "
                       "SPayFlag = NULL WHERE BillNo = '    1'"));
        QVERIFY(t.exec("INSERT INTO TCReceipt (BillNo, Recnum) VALUES ('    9', '201301010001')"));
        QVERIFY(t.exec("CREATE TABLE Extra (Gen_Id TEXT, Note TEXT, Amount INTEGER, Seen DATE)"));
        QVERIFY(t.exec("INSERT INTO Extra VALUES (NULL, NULL, NULL, NULL)"));
        QString error;
        QVERIFY2(CleanNulls(db, &error), qPrintable(error));
        QCOMPARE(Column(db, "SELECT County, AssLand, Name, SPayFlag FROM TCMaster WHERE BillNo = "
                            "'    1'"),
                 QStringList{"0|0||"});
        QCOMPARE(Column(db, "SELECT Overage, Payor, RDate, VDate FROM TCReceipt"),
                 QStringList{"0||<null>|<null>"});
        QCOMPARE(Column(db, "SELECT Gen_Id, Note, Amount, Seen FROM Extra"),
                 QStringList{"<null>||0|<null>"});
        QCOMPARE(NullColumns(db), QStringList());
    }

    // The county's duplicate, exported and imported again, opens clean: nothing to mend but
    // the exonerated parts (which the walk always clears), no other row changed, no Null left,
    // and the file compacts.
    void importedDuplicateVerifiesClean() {
        QTemporaryDir dir;
        const QString original = dir.filePath(QStringLiteral("demo.sqlite"));
        DemoOptions options;
        options.parcels = 300;
        options.persons = 200;
        QVERIFY(CreateDemoDatabase(original, options));
        {
            QSqlDatabase db = TaxDatabase::open(original, QStringLiteral("verify-original"));
            QString error;
            QVERIFY2(ExportDuplicate(db, dir.filePath(QStringLiteral("out")), &error),
                     qPrintable(error));
        }
        TaxDatabase::close(QStringLiteral("verify-original"));
        const QString copy = dir.filePath(QStringLiteral("copy.sqlite"));
        const DuplicateImport imported = ImportDuplicate(dir.filePath(QStringLiteral("out")), copy);
        QVERIFY2(imported.ok, qPrintable(imported.problems.join(u'\n')));

        {
            QSqlDatabase db = TaxDatabase::open(copy, QStringLiteral("verify-copy"));
            const QByteArray before = Fingerprint(db);
            // Exonerated parts carry the flag X and no receipt: the walk clears and reports
            // them, as it must. Everything else is whole.
            QStringList exonerated;
            for (const char* table : {"TCMaster", "PCMaster"})
                for (const char* flag : {"CPayFlag", "TPayFlag", "SPayFlag"})
                    for (const QString& bill :
                         Column(db, QStringLiteral("SELECT BillNo FROM %1 WHERE %2 = 'X'")
                                        .arg(QLatin1String(table), QLatin1String(flag))))
                        exonerated << QStringLiteral("UPDATE %1 SET %2 = 'X' WHERE BillNo = '%3'")
                                          .arg(QLatin1String(table), QLatin1String(flag), bill);
            QStringList told;
            VerifyEvents events;
            events.tell = [&](const QString&, const QString& text) { told << text; };
            const VerifyWalk walk = VerifyDataWalk(db, QStringLiteral("Township"), events);
            QVERIFY2(walk.ok, qPrintable(walk.error));
            QVERIFY2(told.isEmpty(), qPrintable(told.join(u'\n')));
            QCOMPARE(walk.printed.size(), 4 * exonerated.size());
            for (const QString& line : walk.printed)
                QVERIFY2(line.isEmpty() || line.contains(QLatin1String(" RECEIPT.")) ||
                             line.startsWith(QLatin1String("Status: REPAIRED")) ||
                             line.endsWith(QLatin1String(" receipt.")),
                         qPrintable(line));
            QCOMPARE(walk.repairs, int(exonerated.size()));
            QSqlQuery restore(db);
            for (const QString& sql : exonerated)
                QVERIFY(restore.exec(sql));
            QVERIFY(CleanNulls(db));
            QCOMPARE(Fingerprint(db), before);
            QCOMPARE(NullColumns(db), QStringList());
            QCOMPARE(DrawVerifyList({}).pages.size(), std::size_t(0));
        }
        TaxDatabase::close(QStringLiteral("verify-copy"));
        QString error;
        QVERIFY2(CompactDatabaseFile(copy, &error), qPrintable(error));
        QVERIFY(TaxDatabase::isValidTaxDatabase(copy));
    }

    // New Nulls are kept out by the program's own writes: every column a payment, a void, an
    // address change and a distribution write gets a value.
    void programWritesLeaveNoNulls() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("year.sqlite"));
        DemoOptions options;
        options.parcels = 120;
        options.persons = 60;
        QVERIFY(CreateDemoDatabase(path, options));
        {
            QSqlDatabase db = TaxDatabase::open(path, QStringLiteral("verify-year"));
            QVERIFY(CleanNulls(db));
            QCOMPARE(NullColumns(db), QStringList());
            const QDate day(2013, 10, 15);
            const QStringList bills = Column(
                db, "SELECT BillNo FROM TCMaster WHERE CPayFlag = ' ' AND TPayFlag = ' ' AND "
                    "SPayFlag = ' ' AND AdjFlag = ' ' AND CAddrFlag = ' ' ORDER BY BillNo "
                    "LIMIT 4");
            QCOMPARE(bills.size(), 4);
            QStringList recnums;
            for (const QString& billNo : bills) {
                const BillNow bill = ReadBillAsItStands(db, Duplicate::RealEstate, billNo);
                QVERIFY(bill.found());
                PaymentChoice choice;
                choice.selection.county = choice.selection.twp = choice.selection.school = true;
                choice.periods = {QChar(u'P'), QChar(u'P'), QChar(u'F')};
                const PeriodAmounts shown =
                    AmountsForPeriods(BillLinesFromRecord(bill.bill), choice.periods);
                const InstallmentView installments = InstallmentsForDate(
                    InstallmentsFromRecord(bill.bill),
                    {QStringLiteral(" "), QStringLiteral(" "), QStringLiteral(" ")},
                    {QDate(2013, 8, 31), QDate(2013, 10, 31), QDate(2013, 12, 31)}, day);
                RealEstatePosting posting =
                    BuildRealEstatePosting(bill, choice, shown, installments);
                posting.receipt.rdate = day;
                posting.receipt.payor = QStringLiteral("PAYOR");
                posting.receipt.checknum = QStringLiteral("CASH");
                const PostingResult posted = PostRealEstatePayment(db, posting, day);
                QVERIFY2(posted.ok, qPrintable(posted.error));
                recnums << posted.recnum;
            }
            const VoidResult voided =
                VoidRealEstateReceipt(db, {recnums.first(), day, QStringLiteral("WRONG BILL")}, day,
                                      QStringLiteral("2013"));
            QVERIFY2(voided.ok, qPrintable(voided.error));

            AddressChangeRecord change;
            const QSqlRecord master =
                ReadBillAsItStands(db, Duplicate::RealEstate, bills.last()).bill;
            change.control = TextField(master.value("Control"));
            change.billNo = bills.last();
            change.addrId = 1;
            change.name = QStringLiteral("NEW OWNER");
            change.addr1 = QStringLiteral("1 NEW RD");
            change.city = QStringLiteral("MAPLE");
            change.state = QStringLiteral("PA");
            change.zipCode = QStringLiteral("19000");
            change.reason = QStringLiteral("SOLD");
            change.aDate = day;
            QString error;
            QVERIFY2(RecordAddressChange(db, change, &error), qPrintable(error));

            const QStringList office = Column(db, "SELECT District, Ward FROM tbl_District");
            DistributionRun run;
            run.taxYear = QStringLiteral("2013");
            run.district = office.value(0).section(u'|', 0, 0);
            run.ward = office.value(0).section(u'|', 1, 1);
            const QStringList numbers = Column(
                db, "SELECT CTS, max(DisbNum) FROM tbl_DisbDates WHERE DisbType = 'RE' GROUP BY "
                    "CTS");
            auto next = [&numbers](const char* cts) {
                for (const QString& row : numbers)
                    if (row.startsWith(QLatin1String(cts)))
                        return row.section(u'|', 1, 1).toInt() + 1;
                return 1;
            };
            run.bodies = {{TaxingBody::County, next("C"), day},
                          {TaxingBody::Twp, next("T"), day},
                          {TaxingBody::School, next("S"), day}};
            std::vector<BodyOutcome> outcomes;
            QVERIFY2(DistributeReceipts(db, RealEstateTables(), run, &outcomes, &error),
                     qPrintable(error));
            QVERIFY(!outcomes.empty() && outcomes.front().receipts > 0);

            const QStringList nulls = NullColumns(db);
            QVERIFY2(nulls.isEmpty(), qPrintable(nulls.join(u' ')));
        }
        TaxDatabase::close(QStringLiteral("verify-year"));
    }

    void printedListBreaksPages() {
        QStringList lines;
        for (int i = 0; i < 200; ++i)
            lines << QStringLiteral("Bill # %1 has an incomplete ADJUSTMENT.").arg(i);
        const Recording r = DrawVerifyList(lines);
        QVERIFY(r.pages.size() >= 2);
        QCOMPARE(r.textLines().size(), 200);
        const auto* first = r.pages.front().texts().front();
        QCOMPARE(first->font.name, QStringLiteral("Courier New"));
        QCOMPARE(first->font.size, 8.0);
        QVERIFY(!first->font.bold);
    }
};

QTEST_MAIN(TestVerifyData)

#include "test_verify_data.moc"
