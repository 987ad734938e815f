#pragma once
// What the unit tests share: a message service that records boxes and answers from a queue,
// and a temporary tax database.

#include "core/messages.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <deque>
#include <vector>

// One row of a data-driven test: QTest::newRow(name) << values..., on one line.
template <typename... Values> void AddRow(const char* name, Values... values) {
    (QTest::newRow(name) << ... << values);
}

struct RecordedBox {
    QString title;
    QString text;
};

// Records every box; questions and input boxes take the next queued answer, and one with
// no answer queued is recorded as unanswered (and answered No / Cancel).
class ScriptedMessages final : public MessageService {
public:
    struct Answer {
        MsgAnswer button;
        QString text;
    };
    std::vector<RecordedBox> boxes;
    std::deque<Answer> answers;
    int unanswered = 0;

    MsgAnswer message(const QString& title, const QString& text, MsgButtons buttons,
                      MsgIcon icon) override;
    std::optional<QString> input(const QString& title, const QString& prompt,
                                 const QString& defaultText) override;
    std::optional<QString> openFileName(const QString& title, const QString& folder,
                                        const QString& filter) override;
    std::optional<QString> saveFileName(const QString& title, const QString& folder,
                                        const QString& filter) override;
};

// Installs a ScriptedMessages for the life of the object and gives access to it.
class MessageScript {
public:
    MessageScript();
    ~MessageScript();
    ScriptedMessages& service() { return *m_service; }
    void answer(MsgAnswer button, const QString& text = QString()) {
        m_service->answers.push_back({button, text});
    }
    QStringList titles() const;
    QStringList texts() const;

private:
    ScriptedMessages* m_service;
    std::unique_ptr<MessageService> m_previous;
};

// The rows of a query joined as "a|b;c|d", a Null as <null>; "ERROR" and the statement when it
// fails.
QString QueryRows(const QSqlDatabase& db, const QString& sql);

// A new tax database with the whole schema in a temporary folder, open on its own connection.
class TempTaxDatabase {
public:
    explicit TempTaxDatabase(const QString& fileName = QStringLiteral("KestLevyDsk2013.sqlite"));
    ~TempTaxDatabase();
    QSqlDatabase db() const;
    QString path() const { return m_path; }
    QString folder() const { return m_dir.path(); }
    // Runs a statement; fails the current test (QFAIL-style message returned) when it fails.
    bool exec(const QString& sql) const;

private:
    QTemporaryDir m_dir;
    QString m_path;
    QString m_connection;
};
