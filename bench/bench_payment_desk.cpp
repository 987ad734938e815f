// The payment desk's figures on a full-size demo database: a bill number left on the payment
// screen until the bill is shown, and Accept until the payment is committed (no printing).
//
//   bench_payment_desk [--parcels N] [--persons N] [--bills N]
// Run with QT_QPA_PLATFORM=offscreen when there is no display.

#include "bench_desk_support.h"
#include "bench_support.h"
#include "core/messages.h"
#include "core/session.h"
#include "demo/demo_database.h"
#include "desk/realestate/receive_payment.h"

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
    const QStringList billNos = SpreadBills(
        QString::fromLatin1(
            "SELECT BillNo FROM TCMaster WHERE trim(CPayFlag) = '' AND trim(TPayFlag) = '' "
            "AND trim(SPayFlag) = '' AND AdjFlag <> 'A' AND CAddrFlag <> 'A' "
            "AND TaxClaimFlag <> 'Y' AND County + Twp + School > 0 ORDER BY BillNo"),
        bills);
    if (billNos.isEmpty()) {
        std::fprintf(stderr, "no unpaid bills in the demo database\n");
        return 1;
    }
    std::vector<double> shown;
    std::vector<double> accepted;
    const bool ok = TimePayments(
        app, std::make_unique<frmREReceivePayment>(), billNos, QStringLiteral("TCReceipt"),
        QStringLiteral("payment desk on %1 parcels").arg(options.parcels), &shown, &accepted);
    return ok ? 0 : 1;
}
