// The per capita payment desk's figures on a full-size demo database: a person's bill number
// left on frmPCReceivePayment until the bill is shown, and Accept until the payment is
// committed (no printing). Medians of --bills bills; the last line reads
// "RESULT pc_show_ms=<median> pc_accept_ms=<median>".
//
//   bench_pc_desk [--parcels N] [--persons N] [--bills N]
// Run with QT_QPA_PLATFORM=offscreen when there is no display.

#include "bench_desk_support.h"
#include "bench_support.h"
#include "core/messages.h"
#include "core/session.h"
#include "demo/demo_database.h"
#include "desk/percapita/pc_receive_payment.h"

#include <QApplication>
#include <QCheckBox>
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

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    DemoOptions options;
    options.parcels = Argument(args, "--parcels", 50000);
    options.persons = Argument(args, "--persons", 50000);
    const int bills = Argument(args, "--bills", 200);

    QTemporaryDir dir;
    if (!OpenDemoSession(dir, options))
        return 1;

    // Bills with nothing paid, spread over the whole file.
    QStringList billNos;
    {
        QSqlQuery q(session().DbConnection);
        q.exec("SELECT BillNo FROM PCMaster WHERE trim(CPayFlag) = '' AND trim(TPayFlag) = '' "
               "AND trim(SPayFlag) = '' AND AdjFlag <> 'A' AND CAddrFlag <> 'A' "
               "AND CPerCapita + COccupation + TPerCapita + TOccupation + SPerCapita + SOccupation "
               "> 0 "
               "ORDER BY BillNo");
        QStringList all;
        while (q.next())
            all << q.value(0).toString();
        const qsizetype step = std::max<qsizetype>(1, all.size() / std::max(1, bills));
        for (qsizetype i = 0; i < all.size() && billNos.size() < bills; i += step)
            billNos << all.at(i);
    }
    if (billNos.isEmpty()) {
        std::fprintf(stderr, "no unpaid per capita bills in the demo database\n");
        return 1;
    }

    auto* answers = new YesToEverything;
    installMessageService(std::unique_ptr<MessageService>(answers));
    auto screen = std::make_unique<frmPCReceivePayment>();
    screen->show();
    app.processEvents();

    std::vector<double> shown;
    std::vector<double> accepted;
    for (const QString& billNo : billNos) {
        QElapsedTimer t;
        t.start();
        screen->enterBillNo(billNo.trimmed());
        shown.push_back(t.nsecsElapsed() / 1e6);
        if (screen->txtName->text().isEmpty()) {
            std::fprintf(stderr, "bill %s was not shown\n", qPrintable(billNo));
            return 1;
        }

        screen->txtPayor->setText(QStringLiteral("BENCH PAYOR"));
        screen->txtChecknum->setText(QStringLiteral("1000"));
        screen->chkPrintReceipt->setChecked(false);
        t.restart();
        screen->cmdAccept->click();
        accepted.push_back(t.nsecsElapsed() / 1e6);
        app.processEvents();
    }

    QSqlQuery q(session().DbConnection);
    q.exec("SELECT count(*) FROM PCReceipt WHERE Payor = 'BENCH PAYOR'");
    const int written = q.next() ? q.value(0).toInt() : 0;
    std::printf("per capita payment desk on %d persons, %lld bills:\n", options.persons,
                static_cast<long long>(billNos.size()));
    std::printf("  bill number left -> bill shown:   median %.2f ms, worst %.2f ms\n",
                Median(shown), Worst(shown));
    std::printf("  accept -> payment committed:      median %.2f ms, worst %.2f ms\n",
                Median(accepted), Worst(accepted));
    std::printf("  receipts written: %d\n", written);
    for (const QString& box : answers->unexpected)
        std::printf("  unexpected box: %s\n", qPrintable(box));
    screen.reset();
    CloseSessionDatabase();
    std::printf("RESULT pc_show_ms=%.2f pc_accept_ms=%.2f\n", Median(shown), Median(accepted));
    return written == billNos.size() ? 0 : 1;
}
