#include "widget_actions.h"

#include "scenario_parser.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTest>
#include <QTextEdit>

namespace {

class FocusOutWatcher : public QObject {
public:
    explicit FocusOutWatcher(QWidget* watched) : m_watched(watched) {
        watched->installEventFilter(this);
    }
    ~FocusOutWatcher() override {
        if (m_watched)
            m_watched->removeEventFilter(this);
    }
    bool seen = false;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_watched && event->type() == QEvent::FocusOut)
            seen = true;
        return false;
    }

private:
    QPointer<QWidget> m_watched;
};

QMdiSubWindow* subWindowOf(QWidget* widget) {
    for (QWidget* w = widget; w; w = w->parentWidget()) {
        if (auto* sub = qobject_cast<QMdiSubWindow*>(w))
            return sub;
        if (w->isWindow())
            return nullptr;
    }
    return nullptr;
}

bool usable(QWidget* widget, const QString& doing, QString* why) {
    if (!widget->isVisible()) {
        *why = QStringLiteral("%1 hidden, so it cannot be %2").arg(Describe(widget), doing);
        return false;
    }
    if (!widget->isEnabled()) {
        *why = QStringLiteral("%1 disabled, so it cannot be %2").arg(Describe(widget), doing);
        return false;
    }
    return true;
}

Qt::Key keyFor(QChar c) {
    if (c == u'\n' || c == u'\r')
        return Qt::Key_Return;
    if (c == u'\t')
        return Qt::Key_Tab;
    if (c.unicode() < 128)
        return QTest::asciiToKey(char(c.unicode()));
    // Latin-1 keys carry the code of their capital letter.
    if (c.unicode() < 256)
        return Qt::Key(c.toUpper().unicode());
    return Qt::Key_unknown;
}

void pressKey(QWidget* fallback, Qt::Key key, const QString& text) {
    QWidget* target = QApplication::focusWidget();
    if (!target)
        target = fallback;
    QTest::sendKeyEvent(QTest::Click, target, key, text, Qt::NoModifier);
}

// Where a click lands on a check box or option button: on its indicator and caption, as the
// button's own hit test wants it; the middle of a wide button may be empty space.
QPoint clickPoint(QWidget* widget) {
    auto* box = qobject_cast<QCheckBox*>(widget);
    auto* option = qobject_cast<QRadioButton*>(widget);
    if (!box && !option)
        return widget->rect().center();
    QStyleOptionButton opt;
    opt.initFrom(widget);
    opt.text = static_cast<QAbstractButton*>(widget)->text();
    opt.iconSize = static_cast<QAbstractButton*>(widget)->iconSize();
    const QRect area = widget->style()->subElementRect(
        box ? QStyle::SE_CheckBoxClickRect : QStyle::SE_RadioButtonClickRect, &opt, widget);
    return area.isValid() && widget->rect().contains(area.center()) ? area.center()
                                                                    : widget->rect().center();
}

QString listOf(const QStringList& items) {
    QStringList quoted;
    for (const QString& item : items.mid(0, 12))
        quoted << QuoteForReport(item);
    if (items.size() > 12)
        quoted << QStringLiteral("...");
    return quoted.isEmpty() ? QStringLiteral("none") : quoted.join(QStringLiteral(", "));
}

} // namespace

QString StripAccessKeys(const QString& caption) {
    QString out;
    out.reserve(caption.size());
    for (int i = 0; i < caption.size(); ++i) {
        if (caption.at(i) == u'&' && i + 1 < caption.size()) {
            ++i;
            out += caption.at(i);
            continue;
        }
        out += caption.at(i);
    }
    return out;
}

std::optional<QString> WidgetText(const QObject* object) {
    if (auto* w = qobject_cast<const QLineEdit*>(object))
        return w->text();
    if (auto* w = qobject_cast<const QLabel*>(object))
        return w->text();
    if (auto* w = qobject_cast<const QTextEdit*>(object))
        return w->toPlainText();
    if (auto* w = qobject_cast<const QPlainTextEdit*>(object))
        return w->toPlainText();
    if (auto* w = qobject_cast<const QComboBox*>(object))
        return w->currentText();
    if (auto* w = qobject_cast<const QAbstractButton*>(object))
        return w->text();
    if (auto* w = qobject_cast<const QAbstractSpinBox*>(object))
        return w->text();
    if (auto* w = qobject_cast<const QGroupBox*>(object))
        return w->title();
    if (auto* w = qobject_cast<const QAction*>(object))
        return w->text();
    if (auto* w = qobject_cast<const QListWidget*>(object))
        return w->currentItem() ? w->currentItem()->text() : QString();
    return std::nullopt;
}

std::optional<QString> WidgetCaption(const QObject* object) {
    const std::optional<QString> text = WidgetText(object);
    if (text &&
        (qobject_cast<const QAbstractButton*>(object) || qobject_cast<const QLabel*>(object) ||
         qobject_cast<const QGroupBox*>(object) || qobject_cast<const QAction*>(object)))
        return StripAccessKeys(*text);
    return text;
}

QString Describe(const QObject* object) {
    if (!object)
        return QStringLiteral("no widget");
    if (!object->objectName().isEmpty())
        return object->objectName();
    return QStringLiteral("a %1").arg(QString::fromLatin1(object->metaObject()->className()));
}

QWidget* ScreenOf(QWidget* widget) {
    for (QWidget* w = widget; w; w = w->parentWidget()) {
        if (qobject_cast<QMdiSubWindow*>(w->parentWidget()))
            return w;
        if (w->isWindow())
            return w;
    }
    return widget;
}

void ActivateWindowOf(QWidget* widget) {
    QWidget* window = widget->window();
    if (QApplication::activeWindow() != window) {
        window->activateWindow();
        QApplication::setActiveWindow(window);
    }
    if (QMdiSubWindow* sub = subWindowOf(widget)) {
        if (QMdiArea* area = sub->mdiArea(); area && area->activeSubWindow() != sub)
            area->setActiveSubWindow(sub);
    }
}

bool FocusWidget(QWidget* widget, QString* why) {
    if (!usable(widget, QStringLiteral("focused"), why))
        return false;
    ActivateWindowOf(widget);
    if (!widget->hasFocus())
        widget->setFocus(Qt::OtherFocusReason);
    if (!widget->hasFocus()) {
        *why = QStringLiteral("the focus on %1").arg(Describe(QApplication::focusWidget()));
        return false;
    }
    return true;
}

QWidget* NextInTabOrder(QWidget* from) {
    QWidget* screen = ScreenOf(from);
    for (QWidget* w = from->nextInFocusChain(); w && w != from; w = w->nextInFocusChain()) {
        if (!screen->isAncestorOf(w) || from->isAncestorOf(w))
            continue;
        if (w->focusProxy() || !w->isVisible() || !w->isEnabled())
            continue;
        if ((w->focusPolicy() & Qt::TabFocus) != Qt::TabFocus)
            continue;
        return w;
    }
    return nullptr;
}

bool LeaveWidget(QWidget* widget, QString* why) {
    if (!widget->hasFocus() && !FocusWidget(widget, why))
        return false;
    QWidget* from = QApplication::focusWidget();
    QWidget* next = NextInTabOrder(from);
    if (!next) {
        *why =
            QStringLiteral("no other widget in the tab order of %1").arg(Describe(ScreenOf(from)));
        return false;
    }
    FocusOutWatcher watcher(from);
    next->setFocus(Qt::TabFocusReason);
    if (!watcher.seen) {
        *why = QStringLiteral("no focus-out delivered to %1 (the focus is on %2)")
                   .arg(Describe(from), Describe(QApplication::focusWidget()));
        return false;
    }
    return true;
}

bool TypeText(QWidget* widget, const QString& text, QString* why) {
    if (!FocusWidget(widget, why))
        return false;
    QPointer<QWidget> guard(widget);
    for (const QChar c : text) {
        const Qt::Key key = keyFor(c);
        const QString keyText = key == Qt::Key_Return ? QStringLiteral("\r") : QString(c);
        pressKey(guard ? guard.data() : nullptr, key, keyText);
        if (!guard && !QApplication::focusWidget())
            break;
    }
    return true;
}

bool ClearField(QWidget* widget, QString* why) {
    if (!FocusWidget(widget, why))
        return false;
    QLineEdit* line = qobject_cast<QLineEdit*>(widget);
    if (auto* combo = qobject_cast<QComboBox*>(widget))
        line = combo->lineEdit();
    bool checkEmpty = false;
    if (line) {
        if (line->isReadOnly()) {
            *why = QStringLiteral("%1 read-only").arg(Describe(widget));
            return false;
        }
        line->selectAll();
        checkEmpty = line->inputMask().isEmpty();
    } else if (auto* edit = qobject_cast<QTextEdit*>(widget)) {
        edit->selectAll();
        checkEmpty = true;
    } else if (auto* plain = qobject_cast<QPlainTextEdit*>(widget)) {
        plain->selectAll();
        checkEmpty = true;
    } else if (auto* spin = qobject_cast<QAbstractSpinBox*>(widget)) {
        spin->selectAll();
    } else {
        *why = QStringLiteral("%1, which is not a text field").arg(Describe(widget));
        return false;
    }
    pressKey(widget, Qt::Key_Delete, QString());
    const std::optional<QString> left = line ? line->text() : WidgetText(widget);
    if (checkEmpty && left && !left->isEmpty()) {
        *why = QStringLiteral("%1 still showing %2").arg(Describe(widget), QuoteForReport(*left));
        return false;
    }
    return true;
}

bool ClickWidget(QWidget* widget, QString* why) {
    if (!usable(widget, QStringLiteral("clicked"), why))
        return false;
    ActivateWindowOf(widget);
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, clickPoint(widget));
    return true;
}

bool SetTicked(QWidget* widget, bool ticked, QString* why) {
    auto* button = qobject_cast<QAbstractButton*>(widget);
    if (!qobject_cast<QCheckBox*>(widget) && !qobject_cast<QRadioButton*>(widget)) {
        *why =
            QStringLiteral("%1, which is not a check box or option button").arg(Describe(widget));
        return false;
    }
    if (button->isChecked() == ticked)
        return true;
    if (!ticked && qobject_cast<QRadioButton*>(widget)) {
        *why = QStringLiteral("%1 an option button, which a click does not untick; choose another")
                   .arg(Describe(widget));
        return false;
    }
    QPointer<QAbstractButton> guard(button);
    if (!ClickWidget(widget, why))
        return false;
    if (guard && guard->isChecked() != ticked) {
        *why = QStringLiteral("%1 still %2 after a click")
                   .arg(Describe(widget), ticked ? "unticked" : "ticked");
        return false;
    }
    return true;
}

bool ChooseEntry(QWidget* widget, const QString& text, QString* why) {
    if (auto* combo = qobject_cast<QComboBox*>(widget)) {
        QStringList items;
        int found = -1;
        for (int i = 0; i < combo->count(); ++i) {
            items << combo->itemText(i);
            if (found < 0 && TextMatches(text, combo->itemText(i)))
                found = i;
        }
        if (found < 0) {
            *why = QStringLiteral("the entries %1").arg(listOf(items));
            return false;
        }
        if (!FocusWidget(widget, why))
            return false;
        // As a pick from the list: the entry becomes current and the box reports it activated.
        QPointer<QComboBox> guard(combo);
        combo->setCurrentIndex(found);
        if (guard)
            Q_EMIT combo->activated(found);
        if (guard)
            Q_EMIT combo->textActivated(combo->itemText(found));
        return true;
    }
    if (auto* list = qobject_cast<QListWidget*>(widget)) {
        QStringList items;
        for (int i = 0; i < list->count(); ++i) {
            items << list->item(i)->text();
            if (TextMatches(text, list->item(i)->text())) {
                if (!usable(list, QStringLiteral("chosen from"), why))
                    return false;
                ActivateWindowOf(list);
                list->scrollToItem(list->item(i));
                QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                                  list->visualItemRect(list->item(i)).center());
                return true;
            }
        }
        *why = QStringLiteral("the entries %1").arg(listOf(items));
        return false;
    }
    QList<QRadioButton*> options;
    if (auto* option = qobject_cast<QRadioButton*>(widget))
        options << option;
    else
        options = widget->findChildren<QRadioButton*>();
    QStringList captions;
    for (QRadioButton* option : options) {
        if (!option->isVisible())
            continue;
        captions << StripAccessKeys(option->text());
        if (TextMatches(text, StripAccessKeys(option->text())) || TextMatches(text, option->text()))
            return SetTicked(option, true, why);
    }
    *why = QStringLiteral("the options %1 in %2").arg(listOf(captions), Describe(widget));
    return false;
}
