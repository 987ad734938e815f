#pragma once
// The message service of a scenario run: boxes are recorded instead of shown, and questions,
// input boxes and file choosers take the answers the scenario queued.

#include "core/messages.h"

#include <QList>
#include <QString>
#include <functional>
#include <optional>

struct ScenarioBox {
    QString title;
    QString text;  // the message, the input box's prompt, or a file chooser's filter
    QString kind;  // "message", "question", "input box", "file chooser"
    QString where; // FILE:LINE of the command that was running when it appeared
};

struct ScenarioAnswer {
    QString button; // "Yes", "No", "OK", "Cancel"
    std::optional<QString> text;
    QString where;
};

class ScriptedMessageService final : public MessageService {
public:
    struct Host {
        // FILE:LINE of the command that is running.
        std::function<QString()> where;
        // Records a failure of the scenario at that place.
        std::function<void(const QString& where, const QString& expected, const QString& saw)> fail;
        // The folder relative file chooser answers are taken from.
        std::function<QString()> programFolder;
    };

    explicit ScriptedMessageService(Host host) : m_host(std::move(host)) {}

    void queueAnswer(ScenarioAnswer answer) { m_answers.append(std::move(answer)); }
    // The oldest box that no expect message has taken yet.
    std::optional<ScenarioBox> takeBox();
    const QList<ScenarioBox>& pendingBoxes() const { return m_boxes; }
    const QList<ScenarioAnswer>& pendingAnswers() const { return m_answers; }
    // From now on nothing is recorded and every question is declined: used while the driver
    // closes what a scenario left open.
    void setClosingDown(bool closing) { m_closing = closing; }

    MsgAnswer message(const QString& title, const QString& text, MsgButtons buttons,
                      MsgIcon icon) override;
    std::optional<QString> input(const QString& title, const QString& prompt,
                                 const QString& defaultText) override;
    std::optional<QString> openFileName(const QString& title, const QString& folder,
                                        const QString& filter) override;
    std::optional<QString> saveFileName(const QString& title, const QString& folder,
                                        const QString& filter) override;

private:
    std::optional<ScenarioAnswer> takeAnswer(const ScenarioBox& box, const QStringList& allowed);
    std::optional<QString> chooseFile(const QString& title, const QString& filter);

    Host m_host;
    QList<ScenarioBox> m_boxes;
    QList<ScenarioAnswer> m_answers;
    bool m_closing = false;
};

// The names of the buttons of a box, as answer takes them.
QStringList ButtonNames(MsgButtons buttons);
