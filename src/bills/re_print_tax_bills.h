#pragma once
// frmREPrintTaxBills: prints the year's real-estate tax bills of one billing time frame, in bill
// number or ZIP code order, from a start bill, as many as asked, as one print job. Other
// screens hand it one bill to print through OpenREPrintTaxBillsFor.

#include "bills/bill_run_form.h"

#include <QString>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

class frmREPrintTaxBills : public BillRunForm {
    Q_OBJECT
public:
    explicit frmREPrintTaxBills(QWidget* parent = nullptr);

    QCheckBox* chkPrintHomestead = nullptr;

    // Shown only while printing, beside the control number and the name.
    QLabel* lblMap = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;

    // The print action (the late billing routine fires it under LateBillingRun).
    void cmdOK_Click();

protected:
    void showBill(const QSqlRecord& bill) override;

private:
    void ok() override { cmdOK_Click(); }
};

// Opens the bill form (or brings the open one forward) for one bill: its number in txtBillNo,
// "1" in txtNumberOfMailers, chkPrintHomestead ticked when printCoupons (the bill's HFFlag is
// "A"), and the focus on cmdOK, for the collector to choose the frame and press it. The
// screens' "Print A New Tax Bill" and "Print Tax Bill" and the scan screen call it.
frmREPrintTaxBills* OpenREPrintTaxBillsFor(const QString& billNo, bool printCoupons);
