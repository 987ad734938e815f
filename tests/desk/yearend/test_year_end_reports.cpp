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
        // The dump holds the fixture's rules: exonerated and paid bills left out, the zero bill
        // selected and skipped, the added bill in, bill 2's two open installments in the school
        // column with their penalties, bill 3's last adjustment and bill 5's last address, only
        // the unpaid lines of bill 7. (Headings, totals, certification: year_end_returns.scn.)
        QCOMPARE(walked, 7);
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

    // The county and municipal list and the headings: year_end_per_capita.scn.
    void perCapitaList() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
        PcLeftForCollectionReport all(t.db(), PcBodies::All, {});
        const std::optional<Recording> r = DrawForPreview(all.definition(), t.db());
        QVERIFY(r);
        QString diff;
        QVERIFY2(PrintReadback::matchesExpected(expectedPath("left_for_collection_pc.txt"),
                                                r->dump(), &diff),
                 qPrintable(diff));
        // In the dump: Bob's county columns zero (he paid that part), Carr (paid all) absent.
        // The school alone: Dee owes it nothing.
        PcLeftForCollectionReport school(t.db(), PcBodies::School, {});
        const QStringList lines = linesOf(school, t.db());
        QVERIFY(anyLineHas(lines, QStringLiteral("ADAMS ANN 100001 150 Face: .00 .00 .00 .00 5.00 "
                                                 "1.00")));
        QVERIFY(!anyLineHas(lines, QStringLiteral("DAVIS DEE")));
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
        // In the dump: zero amounts print blank, the adjustment number stands before the total.
        // The per capita proof's lines and totals: year_end_per_capita.scn; a person paid in
        // full has no return.
        PcReturnsProof pc(t.db(), {});
        QVERIFY(!anyLineHas(linesOf(pc, t.db()), QStringLiteral("CARR CAL")));
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
        QString diff;
        QVERIFY2(PrintReadback::matchesExpected(expectedPath("RETURNS2013.txt"),
                                                QString::fromUtf8(seen), &diff),
                 qPrintable(diff));
        // The double quote of a name goes out as it is.
        QVERIFY(seen.contains("\"JOHN \"JACK\" OWNER\""));
    }

    // A chain cut off half way stops the returns file and the per capita list at that bill
    // (the real estate return: year_end_returns.scn).
    void integrityFaultStopsTheWalk() {
        TempTaxDatabase t;
        FillYearEndOffice(t);
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
