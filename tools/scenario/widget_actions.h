#pragma once
// What a user does to one widget, done with real events: focus, typing key by key, leaving a
// field for the next one in tab order, clicking, ticking and choosing. Each action returns
// false with what went wrong, worded to follow "but saw".

#include <QString>
#include <QStringList>
#include <optional>

class QObject;
class QWidget;

// "&Exit" reads "Exit"; "&&" is one "&".
QString StripAccessKeys(const QString& caption);

// The text a field shows (line edit, label, text box, combo box, button caption, spin box,
// group box title, menu item); nothing for other kinds of widget.
std::optional<QString> WidgetText(const QObject* object);
// The same with the access key markers of a caption removed; equals WidgetText for fields.
std::optional<QString> WidgetCaption(const QObject* object);

// The screen a widget belongs to: the content of its client-area window, else its window.
QWidget* ScreenOf(QWidget* widget);

// Makes the widget's window the active one (and its client-area window the active one) so
// that focus events are delivered, as they are when a user works in that window.
void ActivateWindowOf(QWidget* widget);
bool FocusWidget(QWidget* widget, QString* why);
// The widget the Tab key would move to from this one, within its screen; nullptr if none.
QWidget* NextInTabOrder(QWidget* from);
// Focus moves from the widget to the next one in tab order; the focus-out must be delivered.
bool LeaveWidget(QWidget* widget, QString* why);
// Focuses the widget and types the text key by key into the widget that has the focus.
// A line break types Enter, a tab Tab.
bool TypeText(QWidget* widget, const QString& text, QString* why);
bool ClearField(QWidget* widget, QString* why);
bool ClickWidget(QWidget* widget, QString* why);
bool SetTicked(QWidget* widget, bool ticked, QString* why);
// An entry of a combo box or list box, or the option button with that caption (the widget is
// an option button or holds option buttons).
bool ChooseEntry(QWidget* widget, const QString& text, QString* why);

// "txtBillNo" or "a QLineEdit" for reports.
QString Describe(const QObject* object);
