// The query screens' figures on a full-size demo database: a name search over the master list
// (every bill and every address change) until the grid shows the row found. Each search is
// timed twice: right after a write to the database (a payment's flag, so the list is read
// again from the file) and again with nothing written in between (the rows read stand).
// The figure of the RESULT line is the first: a search as it runs after a desk screen saved.
//
//   bench_queries [--parcels N] [--persons N] [--names N] [--database FILE]
// Run with QT_QPA_PLATFORM=offscreen when there is no display.

#include "bench_support.h"
#include "core/messages.h"
#include "core/query_grid.h"
#include "core/session.h"
#include "demo/demo_database.h"
#include "desk/realestate/query_tc.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <QStringList>
#include <QTableView>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

// Any box is a failure of the run: a search shows none.
class NoBoxes final : public MessageService {
public:
    QStringList seen;
    MsgAnswer message(const QString& title, const QString& text, MsgButtons, MsgIcon) override {
        seen << title + QStringLiteral(": ") + text;
        return MsgAnswer::Ok;
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

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    DemoOptions options;
    options.parcels = Argument(args, "--parcels", 50000);
    options.persons = Argument(args, "--persons", 50000);
    const int names = Argument(args, "--names", 50);

    QTemporaryDir dir;
    QString path = dir.filePath("KestLevyDsk2013.sqlite");
    QString error;
    const int given = int(args.indexOf("--database"));
    if (given >= 0 && given + 1 < args.size()) {
        path = args.at(given + 1);
    } else if (!CreateDemoDatabase(path, options, &error)) {
        std::fprintf(stderr, "demo database failed: %s\n", qPrintable(error));
        return 1;
    }
    if (!OpenSessionDatabase(path, &error)) {
        std::fprintf(stderr, "cannot open the database: %s\n", qPrintable(error));
        return 1;
    }

    // Names spread over the whole file, as typed at the counter: the first word of each.
    QStringList wanted;
    int listRows = 0;
    {
        QSqlQuery q(session().DbConnection);
        q.exec("SELECT count(*) FROM TCMaster");
        listRows = q.next() ? q.value(0).toInt() : 0;
        q.exec("SELECT Name FROM TCMaster ORDER BY BillNo");
        QStringList all;
        while (q.next())
            all << q.value(0).toString();
        const qsizetype step = std::max<qsizetype>(1, all.size() / std::max(1, names));
        for (qsizetype i = 0; i < all.size() && wanted.size() < names; i += step)
            wanted << all.at(i).section(QLatin1Char(' '), 0, 0);
    }
    if (wanted.isEmpty()) {
        std::fprintf(stderr, "no bills in the database\n");
        return 1;
    }

    auto* boxes = new NoBoxes;
    installMessageService(std::unique_ptr<MessageService>(boxes));
    auto screen = std::make_unique<frmREQueryTC>();
    screen->resize(1100, 700);
    screen->show();
    app.processEvents();

    std::vector<double> searches;
    std::vector<double> repeats;
    int misses = 0;
    QSqlQuery write(session().DbConnection);
    write.prepare("UPDATE TCMaster SET CPayFlag = CPayFlag WHERE rowid = ?");
    int writes = 0;
    auto searchOnce = [&](const QString& name) {
        screen->cmdClearScreen->click();
        screen->optName->click();
        screen->txtName->setText(name);
        QElapsedTimer t;
        t.start();
        screen->cmdSearch->click();
        // Shown: the grid has painted the row it was put on.
        screen->dtgMasterList->viewport()->repaint();
        const double ms = t.nsecsElapsed() / 1e6;
        const QModelIndex current = screen->dtgMasterList->currentIndex();
        const QueryGridModel* list = screen->masterList;
        if (!current.isValid() ||
            !list->text(current.row(), list->field("UName")).startsWith(name.toUpper()))
            ++misses;
        return ms;
    };
    for (const QString& name : wanted) {
        write.addBindValue(++writes);
        write.exec();
        searches.push_back(searchOnce(name));
        repeats.push_back(searchOnce(name));
    }

    std::printf("query screens on %d bills (%d rows in the master list):\n", listRows,
                screen->masterList->rowCount());
    std::printf("  name search after a write -> row shown:   median %.2f ms, worst %.2f ms\n",
                Median(searches), Worst(searches));
    std::printf("  name search repeated      -> row shown:   median %.2f ms, worst %.2f ms\n",
                Median(repeats), Worst(repeats));
    std::printf("  names searched: %lld, not found on the row shown: %d\n",
                static_cast<long long>(wanted.size()), misses);
    for (const QString& box : boxes->seen)
        std::printf("  unexpected box: %s\n", qPrintable(box));
    screen.reset();
    CloseSessionDatabase();
    std::printf("RESULT query_ms=%.2f\n", Median(searches));
    return misses == 0 && boxes->seen.isEmpty() ? 0 : 1;
}
