// The adjustment screen's load on a full-size demo database: a bill whose chain holds five
// adjustments, from the action chosen with the number in the bill field until the last image
// stands on the screen with the next adjustment number known (every box answered at once).
//
//   bench_adjust [--parcels N] [--persons N] [--bills N]
// Run with QT_QPA_PLATFORM=offscreen when there is no display.

#include "bench_desk_support.h"
#include "bench_support.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "desk/realestate/adjust_tax_bill.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

// Answers every box OK and counts the boxes that step through a bill's history.
class CountingBoxes final : public MessageService {
public:
    int history = 0;
    QStringList unexpected;
    MsgAnswer message(const QString& title, const QString& text, MsgButtons buttons,
                      MsgIcon) override {
        if (text == QLatin1String("Original Bill Before Adjustment") ||
            text == QLatin1String("Adjustment Encountered"))
            ++history;
        else
            unexpected << title + QStringLiteral(": ") + text;
        return buttons == MsgButtons::Ok ? MsgAnswer::Ok : MsgAnswer::Yes;
    }
    std::optional<QString> input(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
    std::optional<QString> openFileName(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
    std::optional<QString> saveFileName(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
};

// Five adjustments on each bill: copies of its master image numbered 1 to 5.
bool addChains(QSqlDatabase db, const QStringList& billNos) {
    const TaxDatabase::TableDef* adjust = TaxDatabase::table(QStringLiteral("TCAdjust"));
    const TaxDatabase::TableDef* master = TaxDatabase::table(QStringLiteral("TCMaster"));
    QStringList shared;
    for (const TaxDatabase::ColumnDef& c : adjust->columns) {
        if (c.name == QLatin1String("AdjFlag"))
            continue;
        for (const TaxDatabase::ColumnDef& m : master->columns)
            if (m.name.compare(c.name, Qt::CaseInsensitive) == 0)
                shared << c.name;
    }
    const QString columns = shared.join(QStringLiteral(", "));
    QSqlQuery q(db);
    db.transaction();
    for (const QString& billNo : billNos) {
        for (int n = 1; n <= 5; ++n) {
            q.prepare(QStringLiteral("INSERT INTO TCAdjust (%1, AdjNo, AdjDate, Reason, AdjFlag) "
                                     "SELECT %1, ?, '2013-03-0%2', 'BENCH', 'A' FROM TCMaster "
                                     "WHERE BillNo = ?")
                          .arg(columns)
                          .arg(n));
            q.addBindValue(n);
            q.addBindValue(billNo);
            if (!q.exec())
                return false;
        }
        q.prepare(QStringLiteral("UPDATE TCMaster SET AdjFlag = 'A' WHERE BillNo = ?"));
        q.addBindValue(billNo);
        if (!q.exec())
            return false;
    }
    return db.commit();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    DemoOptions options;
    options.parcels = Argument(args, "--parcels", 50000);
    options.persons = Argument(args, "--persons", 50000);
    const int bills = Argument(args, "--bills", 100);

    QTemporaryDir dir;
    if (!OpenDemoSession(dir, options))
        return 1;
    QSqlDatabase db = session().DbConnection;

    // Bills with nothing paid and no history, spread over the whole file.
    QStringList billNos;
    {
        QSqlQuery q(db);
        q.exec("SELECT BillNo FROM TCMaster WHERE trim(CPayFlag) = '' AND trim(TPayFlag) = '' "
               "AND trim(SPayFlag) = '' AND AdjFlag <> 'A' AND CAddrFlag <> 'A' "
               "AND BillNo < 'A' AND County + Twp + School > 0 ORDER BY BillNo");
        QStringList all;
        while (q.next())
            all << q.value(0).toString();
        const qsizetype step = std::max<qsizetype>(1, all.size() / std::max(1, bills));
        for (qsizetype i = 0; i < all.size() && billNos.size() < bills; i += step)
            billNos << all.at(i);
    }
    if (billNos.isEmpty() || !addChains(db, billNos)) {
        std::fprintf(stderr, "no bills to adjust in the demo database\n");
        return 1;
    }

    auto* boxes = new CountingBoxes;
    installMessageService(std::unique_ptr<MessageService>(boxes));
    auto screen = std::make_unique<frmREAdjustTaxBill>();
    screen->show();
    app.processEvents();

    std::vector<double> loaded;
    for (const QString& billNo : billNos) {
        screen->txtBillNo->setText(billNo.trimmed());
        QElapsedTimer t;
        t.start();
        screen->setAction(frmREAdjustTaxBill::AdjustBill);
        loaded.push_back(t.nsecsElapsed() / 1e6);
        if (screen->txtAdjNo->text() != QLatin1String("5")) {
            std::fprintf(stderr, "bill %s was not loaded through its chain\n", qPrintable(billNo));
            return 1;
        }
        screen->cmdClearScreen->click();
        app.processEvents();
    }

    std::printf("adjustment screen on %d parcels, %lld bills with 5 adjustments each:\n",
                options.parcels, static_cast<long long>(billNos.size()));
    std::printf("  action chosen -> last image shown: median %.2f ms, worst %.2f ms\n",
                Median(loaded), Worst(loaded));
    std::printf("  history boxes: %d (6 a bill)\n", boxes->history);
    for (const QString& box : boxes->unexpected)
        std::printf("  unexpected box: %s\n", qPrintable(box));
    screen.reset();
    CloseSessionDatabase();
    std::printf("RESULT adjust_load_ms=%.2f\n", Median(loaded));
    return boxes->history == 6 * billNos.size() ? 0 : 1;
}
