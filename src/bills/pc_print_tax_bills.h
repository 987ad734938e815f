#pragma once
// frmPCPrintTaxBills: prints the year's per capita and occupation tax bills of one billing time
// frame, in bill number, name or ZIP code order, from a start bill, as many as asked, as one
// print job; with "Print 2nd Notice Disregard If Paid" a second notice of the unpaid bodies.

#include "bills/bill_run_form.h"

#include <QString>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSqlRecord;

class frmPCPrintTaxBills : public BillRunForm {
    Q_OBJECT
public:
    explicit frmPCPrintTaxBills(QWidget* parent = nullptr);

    QCheckBox* chkSecondNotice = nullptr;

    // The print action (the late billing routine fires it under LateBillingRun).
    void cmdOK_Click();

private:
    void ok() override { cmdOK_Click(); }
};

// Opens the per capita bill form (or brings the open one forward) for one bill: its number in
// txtBillNo, "1" in txtNumberOfMailers and the focus on cmdOK, for the collector to choose the
// frame and press it (the scan screen's way in).
frmPCPrintTaxBills* OpenPCPrintTaxBillsFor(const QString& billNo);
