#pragma once
// Field-leave actions of a screen: run when the focus moves from the field to another widget,
// on every leave, changed or not. A window losing activation (a box in front, another
// program) is not a leave, and neither is a focus move made while a leave action runs.

#include <QHash>
#include <QObject>
#include <functional>

class QEvent;
class QWidget;

class FieldLeave : public QObject {
    Q_OBJECT
public:
    explicit FieldLeave(QObject* parent) : QObject(parent) {}
    void onLeave(QWidget* field, std::function<void()> action);
    bool running() const { return m_running; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Leave {
        std::function<void()> action;
        // The field's class: a field being destroyed is no longer of it.
        const QMetaObject* type = nullptr;
    };
    QHash<QObject*, Leave> m_actions;
    bool m_running = false;
};

// For screens that run their own leave actions from an event filter.
//
// A focus-out that is a leave of the field: not another window or a popup taking the focus.
bool IsFieldLeave(const QEvent* event);
// A click whose focus move left a field that refused its value does not act: the button the
// press went to is marked (MarkRefusedClick, for a leave made by the mouse), and its release
// is swallowed (SwallowRefusedRelease, true for that release). The mark goes by itself once
// the events of the press are through.
void MarkRefusedClick(QObject* context, QWidget* target, const QEvent* focusOut);
bool SwallowRefusedRelease(QObject* watched);
// After a leave action: a field that took the focus back never lost it, as far as it knows,
// and keeps the selection made for retyping. True when the focus-out is to be eaten.
bool FieldTookFocusBack(QObject* watched);

// Upper-cases what is typed into the field, keeping the cursor where it was.
void UpperCaseTyping(class QLineEdit* field);
