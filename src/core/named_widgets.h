#pragma once
// Widgets made with their object name, as the screens and their scenarios find them.

#include <QString>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QWidget;

// A line edit; maxLength 0 leaves the length free.
QLineEdit* NamedField(QWidget* parent, const QString& name, int maxLength = 0);
// A field the screen fills and the user only reads: read-only and out of the tab order.
QLineEdit* ShownField(QWidget* parent, const QString& name, int maxLength = 0);
QLabel* NamedLabel(QWidget* parent, const QString& name, const QString& text = QString());
// A button that is never the default one; takesFocus false keeps it out of the tab order.
QPushButton* NamedButton(QWidget* parent, const QString& name, const QString& caption,
                         bool takesFocus = true);
QRadioButton* NamedOption(QWidget* parent, const QString& name, const QString& caption);
QCheckBox* NamedCheck(QWidget* parent, const QString& name, const QString& caption);
