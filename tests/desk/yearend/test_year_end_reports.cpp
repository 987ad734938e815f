#include "core/clock.h"
#include "core/tax_database.h"
#include "desk/yearend/left_for_collection.h"
#include "desk/yearend/returns.h"

#include "desk/yearend/yearend_fixture.h"
#include "reports/print_readback.h"
#include "support/test_support.h"

#include <QDir>
#include <QFile>
#include <QTest>

namespace {

QString expectedPath(const char* name) {
    return QDir(QStringLiteral(LEVYDESK_TEST_DIR))
        .filePath(QStringLiteral("expected/") + QString::fromLatin1(name));
}

QStringList linesOf(const YearEndReport& report, QSqlDatabase db) {
    const std::optional<Recording> r = DrawForPreview(report.definition(), db);
    return r ? r->textLines() : QStringList();
}

bool anyLineHas(const QStringList& lines, const QString& text) {
    // A run of blanks matches any run of blanks, as a person reads paper.
    const QString wanted = text.simplified();
    for (const QString& line : lines)
        if (line.simplified().contains(wanted))
            return true;
    return false;
}

} // namespace

class TestYearEndReports : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { Clock::setToday(QDate(2014, 1, 5)); }
    void cleanup() { Clock::setToday(std::nullopt); }

    void leftForCollectionSchedule() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        int walked = 0;
        ReLeftForCollectionReport report(t.db(), false, [&](const QSqlRecord&) { ++walked; });
        const std::optional<Recording> r = DrawForPreview(report.definition(), t.db());
        QVERIFY(r);
        QVERIFY(report.walk().ok);
        QString diff;
        QVERIFY2(PrintReadback::matchesExpected(expectedPath("left_for_collection_re.txt"),
                                                r->dump(), &diff),
                 qPrintable(diff));
        const QStringList lines = r->textLines();
        // Exonerated and paid bills are not selected; the zero bill is selected and skipped.
        QCOMPARE(walked, 7);
        QVERIFY(!anyLineHas(lines, QStringLiteral("EXONERATED")));
        QVERIFY(!anyLineHas(lines, QStringLiteral("PAID ALREADY")));
        QVERIFY(!anyLineHas(lines, QStringLiteral("NOTHING DUE")));
        QVERIFY(anyLineHas(lines, QStringLiteral("012-A0001 ADDED LATER")));
        // Two installments still open stand in the school column, with their penalties.
        QVERIFY(anyLineHas(lines, QStringLiteral("012-000002 MARY INSTALL 01-02-003 Tax .00 .00 "
                                                 ".00 .00 .00 .00 .00 400.00 .00 400.00")));
        QVERIFY(anyLineHas(lines, QStringLiteral("Penalty .00 .00 .00 .00 .00 .00 .00 440.00 "
                                                 ".00 440.00")));
        QVERIFY(anyLineHas(lines, QStringLiteral("HS/FS")));
        // The last adjustment's amounts, the last address change's name.
        QVERIFY(anyLineHas(lines, QStringLiteral("012-000003 ADJUSTED OWNER 01-02-003 Tax 70.00 "
                                                 "8.00 .00 40.00 16.00 .00 .00 480.00 18.00")));
        QVERIFY(anyLineHas(lines, QStringLiteral("012-000005 PAT NEWNAME")));
        QVERIFY(!anyLineHas(lines, QStringLiteral("PAT MIDNAME")));
        QVERIFY(anyLineHas(lines, QStringLiteral("Assessed Value 24,000.00")));
        // The county part of bill 7 is paid: only its other lines are returned.
        QVERIFY(anyLineHas(lines, QStringLiteral("012-000007 COUNTY PAID 01-02-003 Tax .00 .00 "
                                                 ".00 50.00 20.00")));
        QVERIFY(anyLineHas(lines, QStringLiteral("COUNTY TOTAL")));
        QVERIFY(anyLineHas(lines, QStringLiteral("Township TOTAL")));
        QVERIFY(anyLineHas(lines, QStringLiteral("CERTIFICATION OF AUTHORITIES LEVYING TAXES")));
        QVERIFY(anyLineHas(lines, QStringLiteral("JANE Q COLLECTOR, duly elected or appointed")));
        QVERIFY(anyLineHas(lines, QStringLiteral("January ______, 2014")));
    }

    // Enough bills for several pages: every page ends with its totals within the page, and the
    // district totals are the sum of the pages.
    void pageTotalsFitAndAddUp() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        for (int i = 10; i < 70; ++i) {
            QVERIFY(t.exec(QStringLiteral("INSERT INTO TCMaster SELECT * FROM TCMaster WHERE "
                                          "BillNo = '    1'")));
            QVERIFY(t.exec(QStringLiteral("UPDATE TCMaster SET BillNo = printf('%5d', rowid) "
                                          "WHERE rowid = (SELECT max(rowid) FROM TCMaster)")));
        }
        ReLeftForCollectionReport report(t.db(), false, {});
        const std::optional<Recording> r = DrawForPreview(report.definition(), t.db());
        QVERIFY(r);
        int schedulePages = 0;
        for (const RecordedPage& page : r->pages) {
            const QStringList lines = page.textLines();
            if (!anyLineHas(lines, QStringLiteral("Return Of Uncollected Taxes")))
                continue;
            ++schedulePages;
            QVERIFY(anyLineHas(lines, QStringLiteral("Page Totals Total Tax")));
            for (const PrintedItem& item : page.items)
                if (const auto* text = std::get_if<PrintedText>(&item))
                    QVERIFY(text->y + 200 <= r->format.scaleHeight());
        }
        QVERIFY(schedulePages >= 3);
        // The district's grand total is the sum of the pages' grand totals.
        Money pages, district;
        for (const QString& line : r->textLines()) {
            const Money last = *Money::parse(line.section(u' ', -1));
            if (line.startsWith(QLatin1String("Page Totals Total Tax")))
                pages += last;
            else if (line.startsWith(QLatin1String("District Totals Total Tax")))
                district = last;
        }
        // 63 bills of 802.50, bill 2 (400.00), bill 3 (632.00) and bill 7 (692.50).
        QCOMPARE(district.format(u"#,###,##0.00"), QStringLiteral("52,282.00"));
        QCOMPARE(pages, district);
        QCOMPARE(r->pages.size() - schedulePages, std::size_t(3));
    }

    void streetLightVariant() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        QVERIFY(t.exec("UPDATE tbl_District SET District = '39'"));
        QVERIFY(t.exec("UPDATE tbl_Twpboro SET District = '39'"));
        QVERIFY(t.exec("UPDATE Millfile SET District = '39' WHERE District = '12'"));
        QVERIFY(t.exec("UPDATE Spectax SET District = '39'"));
        QVERIFY(t.exec("UPDATE TCMaster SET S3Face = 150000, PS3Face = 165000"));
        QVERIFY(t.exec("UPDATE TCMaster SET StLtFlag = 'S' WHERE BillNo = '    7'"));
        ReLeftForCollectionReport report(t.db(), true, {});
        const QStringList lines = linesOf(report, t.db());
        // "S": the street light is paid and the township part stays open. ("T", the municipal
        // lines only and no certification: year_end_street_lights.scn.)
        QVERIFY(anyLineHas(lines, QStringLiteral("012-000007 COUNTY PAID 01-02-003 Tax 50.00 "
                                                 "20.00 .00 .00 70.00")));
    }

    void perCapitaList_data() {
        QTest::addColumn<int>("bodies");
        QTest::addColumn<QStringList>("present");
        QTest::addColumn<QStringList>("absent");
        AddRow("all", int(PcBodies::All), QStringList{"ADAMS ANN", "BAKER BOB", "DAVIS DEE"},
               QStringList{"CARR CAL"});
        AddRow("school", int(PcBodies::School), QStringList{"ADAMS ANN", "BAKER BOB"},
               QStringList{"CARR CAL", "DAVIS DEE"});
    }
    void perCapitaList() {
        QFETCH(int, bodies);
        QFETCH(QStringList, present);
        QFETCH(QStringList, absent);
        TempTaxDatabase t;
        FillYearEndOffice(t);
        PcLeftForCollectionReport report(t.db(), PcBodies(bodies), {});
        const std::optional<Recording> r = DrawForPreview(report.definition(), t.db());
        QVERIFY(r);
        const QStringList lines = r->textLines();
        for (const QString& name : present)
            QVERIFY2(anyLineHas(lines, name), qPrintable(name));
        for (const QString& name : absent)
            QVERIFY2(!anyLineHas(lines, name), qPrintable(name));
        QVERIFY(anyLineHas(lines, QStringLiteral("LEFT FOR COLLECTION REPORT FOR TAX YEAR 2013")));
        QVERIFY(anyLineHas(lines, QStringLiteral("District Totals:")));
        if (PcBodies(bodies) == PcBodies::All) {
            QString diff;
            QVERIFY2(PrintReadback::matchesExpected(expectedPath("left_for_collection_pc.txt"),
                                                    r->dump(), &diff),
                     qPrintable(diff));
            // Bob paid his county part: his county columns are zero.
            QVERIFY(anyLineHas(lines, QStringLiteral("BAKER BOB 100002 150 Face: .00 .00 5.00 "
                                                     "2.00 5.00 1.00")));
        } else {
            QVERIFY(anyLineHas(lines, QStringLiteral("ADAMS ANN 100001 150 Face: .00 .00 .00 "
                                                     ".00 5.00 1.00")));
        }
    }

    void returnsProofs() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        ReReturnsProof re(t.db(), {});
        const std::optional<Recording> r = DrawForPreview(re.definition(), t.db());
        QVERIFY(r);
        QString diff;
        QVERIFY2(
            PrintReadback::matchesExpected(expectedPath("returns_proof_re.txt"), r->dump(), &diff),
            qPrintable(diff));
        const QStringList lines = r->textLines();
        QVERIFY(anyLineHas(lines, QStringLiteral("Tax Collector Real Estate Returns Report for "
                                                 "MAPLE TOWNSHIP Page: 1")));
        // Zero amounts print blank; the adjustment number stands before the total.
        QVERIFY(anyLineHas(lines, QStringLiteral("    2  000002  01 02 003")));
        QVERIFY(anyLineHas(lines, QStringLiteral("400.00     400.00")));
        QVERIFY(anyLineHas(lines, QStringLiteral("ADJUSTED OWNER        70.00        8.00        "
                                                 "40.00       16.00      480.00       18.00  2")));
        QVERIFY(anyLineHas(lines, QStringLiteral("Number Of Returns: 6")));

        PcReturnsProof pc(t.db(), {});
        const QStringList pcLines = linesOf(pc, t.db());
        QVERIFY(anyLineHas(pcLines, QStringLiteral("Tax Collector Per Capita Returns Report for "
                                                   "MAPLE TOWNSHIP Page: 1")));
        QVERIFY(anyLineHas(pcLines, QStringLiteral("Number Of Returns: 3")));
        QVERIFY(anyLineHas(pcLines, QStringLiteral("Total Face Amount: 49.00")));
        QVERIFY(!anyLineHas(pcLines, QStringLiteral("CARR CAL")));
    }

    void returnsFile() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        const QString path = QDir(t.folder()).filePath(ReturnsFileName(QStringLiteral("2013")));
        QVERIFY(path.endsWith(QLatin1String("/RETURNS2013.txt")));
        QVERIFY(QFile(path).open(QIODevice::WriteOnly)); // a former file is replaced
        const ReturnsFileResult written = WriteReturnsFile(t.db(), path);
        QVERIFY(written.ok);
        QCOMPARE(written.lines, 6);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray seen = file.readAll();
        QVERIFY(!seen.contains('\r'));
        QFile want(expectedPath("RETURNS2013.txt"));
        if (qEnvironmentVariableIntValue("LEVYDESK_UPDATE_EXPECTED") == 1 &&
            want.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            want.write(seen);
            want.close();
        }
        QVERIFY(want.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(seen), QString::fromUtf8(want.readAll()));
        // The double quote of a name goes out as it is.
        QVERIFY(seen.contains("\"JOHN \"JACK\" OWNER\""));
    }

    // A bill whose adjustment was cut off half way stops every report at that bill.
    void integrityFaultStopsTheWalk() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        QVERIFY(t.exec("UPDATE TCMaster SET AdjFlag = 'A' WHERE BillNo = '    5'"));
        ReLeftForCollectionReport report(t.db(), false, {});
        const QStringList lines = linesOf(report, t.db());
        QVERIFY(!report.walk().ok);
        QCOMPARE(report.walk().faultTitle, QStringLiteral("Database Integrity Error"));
        QCOMPARE(report.walk().faultText, QString::fromLatin1(IncompleteAdjustmentText));
        QVERIFY(anyLineHas(lines, QStringLiteral("012-000003")));
        QVERIFY(!anyLineHas(lines, QStringLiteral("012-000007")));
        QVERIFY(!anyLineHas(lines, QStringLiteral("CERTIFICATION")));

        QVERIFY(t.exec("UPDATE TCMaster SET AdjFlag = ' ' WHERE BillNo = '    5'"));
        QVERIFY(t.exec("DELETE FROM TCAddress"));
        const ReturnsFileResult written =
            WriteReturnsFile(t.db(), QDir(t.folder()).filePath(QStringLiteral("R.txt")));
        QVERIFY(!written.ok);
        QCOMPARE(written.walk.faultText, QString::fromLatin1(IncompleteAddressText));
        QCOMPARE(written.lines, 3);

        QVERIFY(t.exec("UPDATE PCMaster SET AdjFlag = 'A' WHERE BillNo = '    2'"));
        PcLeftForCollectionReport pc(t.db(), PcBodies::All, {});
        linesOf(pc, t.db());
        QVERIFY(pc.walk().faultText.contains(QLatin1String("incomplete adjustment change")));
    }
};

QTEST_MAIN(TestYearEndReports)

#include "test_year_end_reports.moc"
