#include "core/field_leave.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFocusEvent>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>
#include <QWidget>

void FieldLeave::onLeave(QWidget* field, std::function<void()> action) {
    m_actions.insert(field, {std::move(action), field->metaObject()});
    field->installEventFilter(this);
}

bool FieldLeave::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::FocusOut || m_running)
        return false;
    const auto reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
        return false;
    auto it = m_actions.find(watched);
    if (it == m_actions.end())
        return false;
    // A focused field gives up the focus while it is destroyed, its screen going with it:
    // by then it is a plain widget, and no action may run on what is left of the screen.
    if (watched->metaObject() != it->type)
        return false;
    // A press on a button that takes no focus gives the focus to the nearest container that
    // does (the screen's client-area window), which hands it straight back to the field: the
    // focus has not left the field's screen, and that is no leave.
    auto* field = qobject_cast<QWidget*>(watched);
    const QWidget* now = QApplication::focusWidget();
    if (field && now && now != field && now->isAncestorOf(field))
        return false;
    m_running = true;
    const std::function<void()> action = it->action;
    action();
    m_running = false;
    // When the action sent the focus back to the field, the field has it again: it must not
    // also take the leave as its own.
    auto* widget = qobject_cast<QWidget*>(watched);
    return widget && widget->hasFocus();
}

namespace {

const char* const RefusedClick = "levydeskRefusedClick";

} // namespace

bool IsFieldLeave(const QEvent* event) {
    if (event->type() != QEvent::FocusOut)
        return false;
    const auto reason = static_cast<const QFocusEvent*>(event)->reason();
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
}

void MarkRefusedClick(QObject* context, QWidget* target, const QEvent* focusOut) {
    if (static_cast<const QFocusEvent*>(focusOut)->reason() != Qt::MouseFocusReason)
        return;
    auto* b = qobject_cast<QAbstractButton*>(target);
    if (!b)
        return;
    b->setProperty(RefusedClick, true);
    QPointer<QAbstractButton> button(b);
    QTimer::singleShot(0, context, [button] {
        if (button) {
            button->setProperty(RefusedClick, false);
            button->setDown(false);
        }
    });
}

bool SwallowRefusedRelease(QObject* watched) {
    auto* b = qobject_cast<QAbstractButton*>(watched);
    if (!b || !b->property(RefusedClick).toBool())
        return false;
    b->setProperty(RefusedClick, false);
    b->setDown(false);
    return true;
}

bool FieldTookFocusBack(QObject* watched) {
    auto* field = qobject_cast<QWidget*>(watched);
    return field && field->hasFocus();
}

void UpperCaseTyping(QLineEdit* field) {
    QObject::connect(field, &QLineEdit::textEdited, field, [field](const QString& text) {
        const QString upper = text.toUpper();
        if (upper == text)
            return;
        const int cursor = field->cursorPosition();
        field->setText(upper);
        field->setCursorPosition(cursor);
    });
}
