#pragma once
// frmREPrintTaxBills: prints the year's real-estate tax bills of one billing time frame, in bill
// number or ZIP code order, from a start bill, as many as asked, as one print job. Other
// screens hand it one bill to print through OpenREPrintTaxBillsFor.

#include <QString>
#include <QWidget>

class QButtonGroup;
class QCloseEvent;
class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;

class frmREPrintTaxBills : public QWidget {
    Q_OBJECT
public:
    explicit frmREPrintTaxBills(QWidget* parent = nullptr);

    QRadioButton* optBillEarly = nullptr;
    QRadioButton* optBillLate = nullptr;
    QCheckBox* chkSamples = nullptr;
    QCheckBox* chkPrintAddr = nullptr;
    QCheckBox* chkPrintHomestead = nullptr;
    QCheckBox* chkPlainPaperCopy = nullptr;
    QRadioButton* optBillNo = nullptr;
    QRadioButton* optZipCode = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtNumberOfMailers = nullptr;

    // Shown only while printing: where the run is.
    QLabel* lblControl = nullptr;
    QLabel* lblMap = nullptr;
    QLabel* lblName = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtName = nullptr;
    QProgressBar* prgBills = nullptr;
    QPushButton* cmdCancel = nullptr;

    QPushButton* cmdOK = nullptr;
    QPushButton* cmdExit = nullptr;

    // The print action (the late billing routine fires it under LateBillingRun).
    void cmdOK_Click();
    bool printing() const { return m_printing; }

protected:
    // Closing while a run prints stops the run after the bill in hand instead.
    void closeEvent(QCloseEvent* event) override;

private:
    void showProgress(bool on);
    bool keepGoing(const class QSqlRecord& bill, int printed);

    QButtonGroup* m_frames = nullptr;
    QButtonGroup* m_orders = nullptr;
    bool m_printing = false;
    bool m_cancel = false;
    qint64 m_lastPump = 0;
};

// Opens the bill form (or brings the open one forward) for one bill: its number in txtBillNo,
// "1" in txtNumberOfMailers, chkPrintHomestead ticked when printCoupons (the bill's HFFlag is
// "A"), and the focus on cmdOK, for the collector to choose the frame and press it. The
// screens' "Print A New Tax Bill" and "Print Tax Bill" and the scan screen call it.
frmREPrintTaxBills* OpenREPrintTaxBillsFor(const QString& billNo, bool printCoupons);
