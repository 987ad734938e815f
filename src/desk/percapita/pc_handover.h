#pragma once
// How the per capita screens reach the screens they open by name: the desk screens a query hands a
// bill or receipt to, and the query list the desk screens' Query button opens. A screen that this
// part of the program does not build itself is made through the screen host from the program's
// catalog, so it joins as soon as the catalog lists it.

#include <QString>

class QObject;
class QWidget;

// Hands a bill or receipt number to the desk screen of that name, as a query does: its
// QueryOpenedScreen flag is raised while it is shown and cleared, the number goes to its
// openFromQuery(QString), and its savedSignal (a SIGNAL() text), when it has one, makes the list
// requery through the list's requery() slot. Returns the screen, or nullptr when the program has
// no such screen.
QWidget* HandToDeskScreen(const QString& screenName, const QString& number, QObject* list,
                          const char* savedSignal);

// frmPCQueryTC, opened or brought forward (a desk screen's Query button).
void ShowPerCapitaQueryList();
