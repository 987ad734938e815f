#pragma once
// frmSelectPrinter: which of the machine's printers (or "PDF") takes the letter-size reports
// and which the receipts.

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;

class frmSelectPrinter : public QWidget {
    Q_OBJECT
public:
    explicit frmSelectPrinter(QWidget* parent = nullptr);

    QComboBox* cboLetter = nullptr;
    QComboBox* cboReceipt = nullptr;
    QLabel* lblMessage = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

private:
    void load();
    void cmdOK_Click();
};
