#pragma once
// What the counter benchmarks share: a demo database opened as the program's session, and a
// message service that answers every box as a collector pressing on would.

#include "core/messages.h"
#include "core/session.h"
#include "demo/demo_database.h"

#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <cstdio>

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
