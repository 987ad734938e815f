#pragma once
// What a user does to a grid or a list: make a row current with a click, double-click it, and
// what the driver reads of it: how many rows it holds and what the current row shows in a
// column. Each returns false (or nothing) with what went wrong, worded to follow "but saw".

#include <QString>
#include <optional>

class QWidget;

// Row n (1 = the first) of a grid or list becomes current, as a click on it does.
bool SelectRow(QWidget* widget, int n, QString* why);
// A double click on the current row of a grid or list, or on the widget itself when it is no
// grid or list.
bool DoubleClickWidget(QWidget* widget, QString* why);
// The rows of a grid or list; nothing (with why) for any other widget.
std::optional<int> RowCount(QWidget* widget, QString* why);
// What the current row of a grid shows in the column of that caption.
std::optional<QString> CurrentCellText(QWidget* widget, const QString& column, QString* why);
