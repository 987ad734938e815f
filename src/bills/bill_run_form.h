#pragma once
// What the real-estate and per capita bill forms share: the fields every bill run has, the
// progress shown while it prints, Cancel and closing during a run, and the run itself as one
// print job with the messages of how it ended.

#include <QString>
#include <QWidget>
#include <functional>
#include <optional>

class QCheckBox;
class QCloseEvent;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSqlRecord;
class ReportSurface;
struct BillRunResult;
enum class BillingFrame;

class BillRunForm : public QWidget {
    Q_OBJECT
public:
    QRadioButton* optBillEarly = nullptr;
    QRadioButton* optBillLate = nullptr;
    QCheckBox* chkSamples = nullptr;
    QCheckBox* chkPrintAddr = nullptr;
    QCheckBox* chkPlainPaperCopy = nullptr;
    QRadioButton* optBillNo = nullptr;
    QRadioButton* optName = nullptr; // per capita only
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

    bool printing() const { return m_printing; }

protected:
    explicit BillRunForm(QWidget* parent) : QWidget(parent) {}

    // What sets one bill form apart in its layout.
    struct FormParts {
        QString earlyCaption; // the billing time frame options' captions
        QString lateCaption;
        QString ownCheckName; // the form's own tick, below "Print Mailing Address..."
        QString ownCheckCaption;
        bool nameOrder = false;          // a Name order between Bill # and ZipCode
        QLabel* progressLabel = nullptr; // a progress row of the form's own, after the control
        QList<QWidget*> progressFields;
    };
    // Builds the form: the time frame, the ticks, the order, the start bill and the number of
    // mailers, the progress fields, OK, Cancel and Exit, in that tab order. From May on the late
    // frame is chosen. OK calls ok(). Returns the form's own tick.
    QCheckBox* buildForm(const FormParts& parts);
    virtual void ok() = 0;

    // Closing while a run prints stops the run after the bill in hand instead.
    void closeEvent(QCloseEvent* event) override;

    // Puts the bill in hand into the progress fields (control and name; a form adds its own).
    virtual void showBill(const QSqlRecord& bill);
    void showProgress(bool on);
    // Cancel: the run stops after the bill in hand.
    void cancelRun() { m_cancel = true; }

    // The checks every run starts with, each saying what is wrong and putting the focus there:
    // a billing time frame chosen (and the start bill padded as bill numbers are); the number
    // of mailers given and numeric; the Letter printer assigned (missingPrinter the message when
    // it is not).
    bool checkFrameAndStartBill();
    std::optional<int> checkMailers();
    std::optional<QString> letterPrinter(const QString& missingPrinter);

    struct RunTexts {
        QString jobName;       // "Real Estate Tax Bills"
        QString masterTable;   // counted for the progress bar
        const char* formTitle; // the title of the form's messages
        const char* doneTitle; // the title of "no bills" and "Printing Complete."
    };
    // Where the run is; false stops it after the bill in hand.
    using Progress = std::function<bool(const QSqlRecord& bill, int printed)>;
    using Run = std::function<BillRunResult(ReportSurface& surface, const Progress& progress)>;
    // Draws the bills through `run` into one print job on the device, shows the progress and
    // takes Cancel, then tells how the run ended; after a finished or cancelled run the start
    // bill and the count are cleared (and the form closes under the late billing run).
    void runAndReport(const RunTexts& texts, const QString& device, bool duplex, BillingFrame frame,
                      int mailers, const Run& run);

private:
    bool keepGoing(const QSqlRecord& bill, int printed);

    // The form's own progress row (FormParts), shown and hidden with the others.
    QList<QWidget*> m_ownProgress;
    bool m_printing = false;
    bool m_cancel = false;
    qint64 m_lastPump = 0;
};
