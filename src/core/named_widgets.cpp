#include "core/named_widgets.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

QLineEdit* NamedField(QWidget* parent, const QString& name, int maxLength) {
    auto* field = new QLineEdit(parent);
    field->setObjectName(name);
    if (maxLength > 0)
        field->setMaxLength(maxLength);
    return field;
}

QLineEdit* ShownField(QWidget* parent, const QString& name, int maxLength) {
    QLineEdit* field = NamedField(parent, name, maxLength);
    field->setReadOnly(true);
    field->setFocusPolicy(Qt::NoFocus);
    return field;
}

QLabel* NamedLabel(QWidget* parent, const QString& name, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

QPushButton* NamedButton(QWidget* parent, const QString& name, const QString& caption,
                         bool takesFocus) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setAutoDefault(false);
    if (!takesFocus)
        button->setFocusPolicy(Qt::NoFocus);
    return button;
}

QRadioButton* NamedOption(QWidget* parent, const QString& name, const QString& caption) {
    auto* option = new QRadioButton(caption, parent);
    option->setObjectName(name);
    return option;
}

QCheckBox* NamedCheck(QWidget* parent, const QString& name, const QString& caption) {
    auto* check = new QCheckBox(caption, parent);
    check->setObjectName(name);
    return check;
}
