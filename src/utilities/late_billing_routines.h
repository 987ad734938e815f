#pragma once
// frmLateBillingRoutines ("Update Late Billing Exonerations"): the batch that brings the
// duplicate up to the late bodies' billing, step by step as the collector ticks them: the
// adjustment lists, the late taxes of added bills, the late bodies' exonerations, the lists of
// what it wrote, and the bills whose address changed, printed through the bill forms.

#include <QWidget>

class QCheckBox;
class QLineEdit;
class QPushButton;

class frmLateBillingRoutines : public QWidget {
    Q_OBJECT
public:
    // The screen, after its warning; nullptr (after saying so) when neither the township nor the
    // school bills late.
    static QWidget* open();

    explicit frmLateBillingRoutines(QWidget* parent = nullptr);

    QLineEdit* txtFileName = nullptr;
    QLineEdit* txtCount = nullptr;
    QCheckBox* chkREPrintExonerations = nullptr;
    QCheckBox* chkPCPrintExonerations = nullptr;
    QCheckBox* chkREUpdateAdds = nullptr;
    QCheckBox* chkPCUpdateAdds = nullptr;
    QCheckBox* chkREExonerations = nullptr;
    QCheckBox* chkPCExonerations = nullptr;
    QCheckBox* chkREPrintExonerations2 = nullptr;
    QCheckBox* chkPCPrintExonerations2 = nullptr;
    QCheckBox* chkREPrintTaxBills = nullptr;
    QCheckBox* chkPCPrintTaxBills = nullptr;
    QPushButton* cmdRunRoutines = nullptr;
    QPushButton* cmdExit = nullptr;

    void cmdRunRoutines_Click();

private:
    void step(const char* title);
    void count(int n);
    bool m_running = false;
};
