// The spine's figures on a full-size demo database: generating it, starting the program on it,
// and reading one bill as it now stands through its adjustment and address chains.
//
//   bench_spine [--parcels N] [--persons N] [--runs N]
// Run with QT_QPA_PLATFORM=offscreen when there is no display.

#include "app/main_window.h"
#include "bench_support.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    DemoOptions options;
    options.parcels = Argument(args, "--parcels", 50000);
    options.persons = Argument(args, "--persons", 50000);
    const int runs = Argument(args, "--runs", 5);

    QTemporaryDir dir;
    const QString path = dir.filePath("KestLevyDsk2013.sqlite");

    std::vector<double> generation;
    for (int i = 0; i < std::max(1, runs / 2); ++i) {
        QElapsedTimer t;
        t.start();
        QString error;
        if (!CreateDemoDatabase(path, options, &error)) {
            std::fprintf(stderr, "demo database failed: %s\n", qPrintable(error));
            return 1;
        }
        generation.push_back(t.nsecsElapsed() / 1e6);
    }
    std::printf("demo database %d parcels + %d persons: median %.0f ms\n", options.parcels,
                options.persons, Median(generation));

    std::vector<double> startup;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        auto* window = new frmLevyDeskMain;
        window->show();
        if (!window->start(path)) {
            std::fprintf(stderr, "start failed\n");
            return 1;
        }
        QApplication::processEvents();
        startup.push_back(t.nsecsElapsed() / 1e6);
        session().ShowBackupPrompt = false;
        window->close();
        delete window;
    }
    std::printf("start to main window shown: median %.1f ms (budget 1000 ms)\n", Median(startup));

    // Bills with both chains, and plain ones, read on a connection of their own.
    QSqlDatabase db = TaxDatabase::open(path, "bench");
    QStringList chained, plain;
    QSqlQuery q(db);
    q.exec("SELECT BillNo FROM TCMaster WHERE AdjFlag = 'A' AND CAddrFlag = 'A'");
    while (q.next())
        chained << q.value(0).toString();
    if (chained.isEmpty()) {
        q.exec("SELECT BillNo FROM TCMaster WHERE AdjFlag = 'A' OR CAddrFlag = 'A'");
        while (q.next())
            chained << q.value(0).toString();
    }
    q.exec("SELECT BillNo FROM TCMaster WHERE AdjFlag = ' ' AND CAddrFlag = ' ' LIMIT 500");
    while (q.next())
        plain << q.value(0).toString();
    q.finish();

    auto measure = [&](const QStringList& bills) {
        std::vector<double> us;
        for (int round = 0; round < 3; ++round)
            for (const QString& bill : bills) {
                QElapsedTimer t;
                t.start();
                const BillNow now = ReadBillAsItStands(db, Duplicate::RealEstate, bill);
                us.push_back(t.nsecsElapsed() / 1e3);
                if (!now.found())
                    std::fprintf(stderr, "bill %s not read\n", qPrintable(bill));
            }
        return Median(us);
    };
    std::printf("read a bill with its chains (%lld bills): median %.0f us\n",
                qlonglong(chained.size()), measure(chained));
    std::printf("read a bill without chains (%lld bills): median %.0f us\n",
                qlonglong(plain.size()), measure(plain));
    db = QSqlDatabase();
    TaxDatabase::close("bench");
    return 0;
}
