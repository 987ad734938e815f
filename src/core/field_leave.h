#pragma once
// Field-leave actions of a screen: run when the focus moves from the field to another widget,
// on every leave, changed or not. A window losing activation (a box in front, another
// program) is not a leave, and neither is a focus move made while a leave action runs.

#include <QHash>
#include <QObject>
#include <functional>

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

// Upper-cases what is typed into the field, keeping the cursor where it was.
void UpperCaseTyping(class QLineEdit* field);
