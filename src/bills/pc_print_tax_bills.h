#pragma once
// frmPCPrintTaxBills: prints the year's per capita and occupation tax bills of one billing time
// frame, in bill number, name or ZIP code order, from a start bill, as many as asked, as one
// print job; with "Print 2nd Notice Disregard If Paid" a second notice of the unpaid bodies.

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
class QSqlRecord;

class frmPCPrintTaxBills : public QWidget {
    Q_OBJECT
public:
    explicit frmPCPrintTaxBills(QWidget* parent = nullptr);

    QRadioButton* optBillEarly = nullptr;
    QRadioButton* optBillLate = nullptr;
    QCheckBox* chkSamples = nullptr;
    QCheckBox* chkPrintAddr = nullptr;
    QCheckBox* chkSecondNotice = nullptr;
    QCheckBox* chkPlainPaperCopy = nullptr;
    QRadioButton* optBillNo = nullptr;
    QRadioButton* optName = nullptr;
    QRadioButton* optZipCode = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtNumberOfMailers = nullptr;

    // Shown only while printing: where the run is.
    QLabel* lblControl = nullptr;
    QLabel* lblName = nullptr;
    QLineEdit* txtControl = nullptr;
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
    bool keepGoing(const QSqlRecord& bill, int printed);

    QButtonGroup* m_frames = nullptr;
    QButtonGroup* m_orders = nullptr;
    bool m_printing = false;
    bool m_cancel = false;
    qint64 m_lastPump = 0;
};

// Opens the per capita bill form (or brings the open one forward) for one bill: its number in
// txtBillNo, "1" in txtNumberOfMailers and the focus on cmdOK, for the collector to choose the
// frame and press it (the scan screen's way in).
frmPCPrintTaxBills* OpenPCPrintTaxBillsFor(const QString& billNo);
