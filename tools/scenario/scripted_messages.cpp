#include "scripted_messages.h"

#include "scenario_parser.h"

#include <QDir>
#include <QFileInfo>

namespace {

QString describe(const ScenarioBox& box) {
    return QStringLiteral("the %1 %2 %3")
        .arg(box.kind, QuoteForReport(box.title), QuoteForReport(box.text));
}

MsgAnswer declined(MsgButtons buttons) {
    switch (buttons) {
    case MsgButtons::Ok:
        return MsgAnswer::Ok;
    case MsgButtons::YesNo:
        return MsgAnswer::No;
    case MsgButtons::OkCancel:
    case MsgButtons::YesNoCancel:
        return MsgAnswer::Cancel;
    }
    return MsgAnswer::Cancel;
}

} // namespace

QStringList ButtonNames(MsgButtons buttons) {
    switch (buttons) {
    case MsgButtons::Ok:
        return {"OK"};
    case MsgButtons::OkCancel:
        return {"OK", "Cancel"};
    case MsgButtons::YesNo:
        return {"Yes", "No"};
    case MsgButtons::YesNoCancel:
        return {"Yes", "No", "Cancel"};
    }
    return {};
}

std::optional<ScenarioBox> ScriptedMessageService::takeBox() {
    if (m_boxes.isEmpty())
        return std::nullopt;
    return m_boxes.takeFirst();
}

std::optional<ScenarioAnswer> ScriptedMessageService::takeAnswer(const ScenarioBox& box,
                                                                 const QStringList& allowed) {
    if (m_answers.isEmpty()) {
        m_host.fail(box.where, QStringLiteral("an answer queued for %1").arg(describe(box)),
                    QStringLiteral("none"));
        return std::nullopt;
    }
    ScenarioAnswer answer = m_answers.takeFirst();
    if (!allowed.contains(answer.button)) {
        m_host.fail(box.where,
                    QStringLiteral("an answer %1 for %2").arg(allowed.join(u'/'), describe(box)),
                    QStringLiteral("answer %1 queued at %2").arg(answer.button, answer.where));
        return std::nullopt;
    }
    return answer;
}

MsgAnswer ScriptedMessageService::message(const QString& title, const QString& text,
                                          MsgButtons buttons, MsgIcon) {
    if (m_closing)
        return declined(buttons);
    const ScenarioBox box{title, text,
                          buttons == MsgButtons::Ok ? QStringLiteral("message")
                                                    : QStringLiteral("question"),
                          m_host.where()};
    m_boxes.append(box);
    // A box with OK alone is acknowledged; it takes no queued answer.
    if (buttons == MsgButtons::Ok)
        return MsgAnswer::Ok;
    const std::optional<ScenarioAnswer> answer = takeAnswer(box, ButtonNames(buttons));
    if (!answer)
        return declined(buttons);
    if (answer->button == u"Yes")
        return MsgAnswer::Yes;
    if (answer->button == u"No")
        return MsgAnswer::No;
    if (answer->button == u"OK")
        return MsgAnswer::Ok;
    return MsgAnswer::Cancel;
}

std::optional<QString> ScriptedMessageService::input(const QString& title, const QString& prompt,
                                                     const QString& defaultText) {
    if (m_closing)
        return std::nullopt;
    const ScenarioBox box{title, prompt, QStringLiteral("input box"), m_host.where()};
    m_boxes.append(box);
    const std::optional<ScenarioAnswer> answer = takeAnswer(box, {"OK", "Cancel"});
    if (!answer || answer->button == u"Cancel")
        return std::nullopt;
    return answer->text.value_or(defaultText);
}

std::optional<QString> ScriptedMessageService::chooseFile(const QString& title,
                                                          const QString& filter) {
    if (m_closing)
        return std::nullopt;
    const ScenarioBox box{title, filter, QStringLiteral("file chooser"), m_host.where()};
    m_boxes.append(box);
    const std::optional<ScenarioAnswer> answer = takeAnswer(box, {"OK", "Cancel"});
    if (!answer || answer->button == u"Cancel")
        return std::nullopt;
    if (!answer->text || answer->text->isEmpty()) {
        m_host.fail(answer->where, QStringLiteral("answer OK PATH for %1").arg(describe(box)),
                    QStringLiteral("answer OK without a path"));
        return std::nullopt;
    }
    return QDir::cleanPath(QDir(m_host.programFolder()).absoluteFilePath(*answer->text));
}

std::optional<QString> ScriptedMessageService::openFileName(const QString& title, const QString&,
                                                            const QString& filter) {
    return chooseFile(title, filter);
}

std::optional<QString> ScriptedMessageService::saveFileName(const QString& title, const QString&,
                                                            const QString& filter) {
    return chooseFile(title, filter);
}
