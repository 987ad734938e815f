#pragma once
// How a query screen hands a found bill or receipt to the desk screen that acts on it: the
// session's QueryOpenedScreen flag of the target is raised, the target is shown (opened when it
// is not open) and loads the key at once; the flag goes when the target closes.

#include <QString>
#include <QWidget>
#include <functional>

// Raises the flag of the screen of that name, shows the open one or a new one made by create,
// and returns it (nullptr when none could be made).
QWidget* ShowQueryTarget(const QString& screenName, const std::function<QWidget*()>& create);

template <typename Screen> Screen* ShowQueryTarget(const char* screenName) {
    return qobject_cast<Screen*>(ShowQueryTarget(QString::fromLatin1(screenName),
                                                 [] { return static_cast<QWidget*>(new Screen); }));
}

// Hands a number to the desk screen of that name as above, through its openFromQuery, and makes
// the list search again whenever the screen's `saved` signal reports a change. The screen, or
// nullptr when none could be made.
template <typename Screen, typename List, typename Signal>
Screen* HandToScreen(const char* screenName, const QString& number, List* list, Signal saved) {
    auto* target = ShowQueryTarget<Screen>(screenName);
    if (!target)
        return nullptr;
    QObject::connect(target, saved, list, &List::requery, Qt::UniqueConnection);
    target->openFromQuery(number);
    return target;
}

// Shows the open screen of that name, or a new one made by create, without any flag: a desk
// screen's Query button opening the list.
QWidget* ShowScreenNamed(const QString& screenName, const std::function<QWidget*()>& create);

// The "*" of a scanner typed into the empty bill field of a desk screen: the scan screen opens
// modally, unless it is open already, with `from` recorded as the screen last shown. It opens
// once the keystroke has been dealt with.
void OpenScanScreen(QWidget* from);
