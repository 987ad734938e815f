#pragma once
// frmARS: the office's logo, filling the main window's client area behind the screens.

#include <QWidget>

class frmARS : public QWidget {
    Q_OBJECT
public:
    explicit frmARS(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};
