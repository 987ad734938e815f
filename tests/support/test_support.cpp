#include "support/test_support.h"

#include "core/tax_database.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>
#include <cstdio>

MsgAnswer ScriptedMessages::message(const QString& title, const QString& text, MsgButtons buttons,
                                    MsgIcon) {
    boxes.push_back({title, text});
    if (buttons == MsgButtons::Ok)
        return answers.empty() || answers.front().button != MsgAnswer::Ok
                   ? MsgAnswer::Ok
                   : (answers.pop_front(), MsgAnswer::Ok);
    if (answers.empty()) {
        ++unanswered;
        return buttons == MsgButtons::OkCancel ? MsgAnswer::Cancel : MsgAnswer::No;
    }
    const MsgAnswer a = answers.front().button;
    answers.pop_front();
    return a;
}

std::optional<QString> ScriptedMessages::input(const QString& title, const QString& prompt,
                                               const QString&) {
    boxes.push_back({title, prompt});
    if (answers.empty()) {
        ++unanswered;
        return std::nullopt;
    }
    const Answer a = answers.front();
    answers.pop_front();
    if (a.button == MsgAnswer::Cancel)
        return std::nullopt;
    return a.text;
}

std::optional<QString> ScriptedMessages::openFileName(const QString& title, const QString& folder,
                                                      const QString&) {
    return input(title, folder, QString());
}

std::optional<QString> ScriptedMessages::saveFileName(const QString& title, const QString& folder,
                                                      const QString&) {
    return input(title, folder, QString());
}

MessageScript::MessageScript() {
    auto service = std::make_unique<ScriptedMessages>();
    m_service = service.get();
    m_previous = installMessageService(std::move(service));
}

MessageScript::~MessageScript() {
    installMessageService(std::move(m_previous));
}

QStringList MessageScript::titles() const {
    QStringList out;
    for (const RecordedBox& b : m_service->boxes)
        out << b.title;
    return out;
}

QStringList MessageScript::texts() const {
    QStringList out;
    for (const RecordedBox& b : m_service->boxes)
        out << b.text;
    return out;
}

TempTaxDatabase::TempTaxDatabase(const QString& fileName)
    : m_path(m_dir.filePath(fileName)),
      m_connection(QStringLiteral("test-") + QUuid::createUuid().toString(QUuid::Id128)) {
    QString error;
    if (!TaxDatabase::create(m_path, m_connection, &error).isValid())
        std::fprintf(stderr, "cannot create the test database: %s\n", qPrintable(error));
}

TempTaxDatabase::~TempTaxDatabase() {
    TaxDatabase::close(m_connection);
}

QSqlDatabase TempTaxDatabase::db() const {
    return QSqlDatabase::database(m_connection, false);
}

bool TempTaxDatabase::exec(const QString& sql) const {
    QSqlQuery q(db());
    if (!q.exec(sql)) {
        std::fprintf(stderr, "statement failed: %s\n  %s\n", qPrintable(q.lastError().text()),
                     qPrintable(sql));
        return false;
    }
    return true;
}

QString QueryRows(const QSqlDatabase& db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.exec(sql))
        return QStringLiteral("ERROR ") + sql;
    QStringList out;
    while (q.next()) {
        QStringList cells;
        for (int i = 0; i < q.record().count(); ++i)
            cells << (q.value(i).isNull() ? QStringLiteral("<null>") : q.value(i).toString());
        out << cells.join(u'|');
    }
    return out.join(u';');
}
