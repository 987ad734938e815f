#pragma once
// What the counter benchmarks share: a demo database opened as the program's session, and a
// message service that answers every box as a collector pressing on would.

#include "bench_support.h"
#include "core/messages.h"
#include "core/session.h"
#include "demo/demo_database.h"
#include "desk/realestate/payment_screen.h"

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

// Makes the demo in dir and opens it as the session, with its tax year. False after saying why.
inline bool OpenDemoSession(const QTemporaryDir& dir, const DemoOptions& options) {
    const QString path = dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
    QString error;
    if (!CreateDemoDatabase(path, options, &error)) {
        std::fprintf(stderr, "demo database failed: %s\n", qPrintable(error));
        return false;
    }
    if (!OpenSessionDatabase(path, &error)) {
        std::fprintf(stderr, "cannot open the demo database: %s\n", qPrintable(error));
        return false;
    }
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT TaxYear FROM Millfile WHERE District || Ward = '000'")) &&
        q.next())
        session().TaxYear = q.value(0).toString().left(4);
    return true;
}

// Answers every question Yes and every box OK; counts what was asked, and keeps what it did not
// expect: anything but "Payment Received" and the "Are you sure"/"Do you want" questions.
class YesToEverything final : public MessageService {
public:
    int boxes = 0;
    QStringList unexpected;
    MsgAnswer message(const QString& title, const QString& text, MsgButtons buttons,
                      MsgIcon) override {
        ++boxes;
        if (text != QLatin1String("Payment Received") &&
            !text.startsWith(QLatin1String("Are you sure")) &&
            !text.startsWith(QLatin1String("Do you want")))
            unexpected << title + QStringLiteral(": ") + text;
        return buttons == MsgButtons::Ok ? MsgAnswer::Ok : MsgAnswer::Yes;
    }
    std::optional<QString> input(const QString&, const QString&, const QString&) override {
        return QStringLiteral("0");
    }
    std::optional<QString> openFileName(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
    std::optional<QString> saveFileName(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
};

// Up to `count` bill numbers that the query lists, spread evenly over the whole list.
inline QStringList SpreadBills(const QString& sql, int count) {
    QSqlQuery q(session().DbConnection);
    q.exec(sql);
    QStringList all;
    while (q.next())
        all << q.value(0).toString();
    QStringList picked;
    const qsizetype step = std::max<qsizetype>(1, all.size() / std::max(1, count));
    for (qsizetype i = 0; i < all.size() && picked.size() < count; i += step)
        picked << all.at(i);
    return picked;
}

// Pays each bill at the counter of `screen` without printing, timing the bill number left until
// the bill is shown and Accept until the payment is committed; prints the figures and the boxes
// not expected. False when a bill was not shown or a receipt is missing from receiptTable.
inline bool TimePayments(QApplication& app, std::unique_ptr<PaymentScreen> screen,
                         const QStringList& billNos, const QString& receiptTable,
                         const QString& heading, std::vector<double>* shown,
                         std::vector<double>* accepted) {
    auto* answers = new YesToEverything;
    installMessageService(std::unique_ptr<MessageService>(answers));
    screen->show();
    app.processEvents();
    for (const QString& billNo : billNos) {
        QElapsedTimer t;
        t.start();
        screen->enterBillNo(billNo.trimmed());
        shown->push_back(t.nsecsElapsed() / 1e6);
        if (screen->txtName->text().isEmpty()) {
            std::fprintf(stderr, "bill %s was not shown\n", qPrintable(billNo));
            return false;
        }
        screen->txtPayor->setText(QStringLiteral("BENCH PAYOR"));
        screen->txtChecknum->setText(QStringLiteral("1000"));
        screen->chkPrintReceipt->setChecked(false);
        t.restart();
        screen->cmdAccept->click();
        accepted->push_back(t.nsecsElapsed() / 1e6);
        app.processEvents();
    }
    QSqlQuery q(session().DbConnection);
    q.exec(QStringLiteral("SELECT count(*) FROM %1 WHERE Payor = 'BENCH PAYOR'").arg(receiptTable));
    const int written = q.next() ? q.value(0).toInt() : 0;
    std::printf("%s, %lld bills:\n", qPrintable(heading), static_cast<long long>(billNos.size()));
    std::printf("  bill number left -> bill shown:   median %.2f ms, worst %.2f ms\n",
                Median(*shown), Worst(*shown));
    std::printf("  accept -> payment committed:      median %.2f ms, worst %.2f ms\n",
                Median(*accepted), Worst(*accepted));
    std::printf("  receipts written: %d\n", written);
    for (const QString& box : answers->unexpected)
        std::printf("  unexpected box: %s\n", qPrintable(box));
    screen.reset();
    CloseSessionDatabase();
    return written == billNos.size();
}
