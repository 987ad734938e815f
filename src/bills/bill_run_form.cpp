#include "bills/bill_run_form.h"

#include "bills/bill_sheet.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDateTime>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>
#include <algorithm>

namespace {

void exclaim(const QString& text, const char* title) {
    MsgBox(text, QLatin1String(title), MsgButtons::Ok, MsgIcon::Exclamation);
}

} // namespace

QCheckBox* BillRunForm::buildForm(const FormParts& parts) {
    auto* frame = new QGroupBox(QStringLiteral("Billing Time Frame"), this);
    frame->setObjectName(QStringLiteral("fraBillingTimeFrame"));
    optBillEarly = NamedOption(frame, QStringLiteral("optBillEarly"), parts.earlyCaption);
    optBillLate = NamedOption(frame, QStringLiteral("optBillLate"), parts.lateCaption);
    auto* frames = new QButtonGroup(this);
    auto* frameRow = new QHBoxLayout(frame);
    for (QRadioButton* option : {optBillEarly, optBillLate}) {
        frames->addButton(option);
        frameRow->addWidget(option);
    }
    chkSamples = NamedCheck(this, QStringLiteral("chkSamples"), QStringLiteral("Samples"));
    chkPrintAddr = NamedCheck(this, QStringLiteral("chkPrintAddr"),
                              QStringLiteral("Print Mailing Address On A Separate Page"));
    QCheckBox* ownCheck = NamedCheck(this, parts.ownCheckName, parts.ownCheckCaption);
    chkPlainPaperCopy =
        NamedCheck(this, QStringLiteral("chkPlainPaperCopy"), QStringLiteral("Ascending Order"));

    auto* order = new QGroupBox(QStringLiteral("Order"), this);
    order->setObjectName(QStringLiteral("fraOrder"));
    optBillNo = NamedOption(order, QStringLiteral("optBillNo"), QStringLiteral("Bill #"));
    if (parts.nameOrder)
        optName = NamedOption(order, QStringLiteral("optName"), QStringLiteral("Name"));
    optZipCode = NamedOption(order, QStringLiteral("optZipCode"), QStringLiteral("ZipCode"));
    QList<QRadioButton*> orders{optBillNo};
    if (optName)
        orders << optName;
    orders << optZipCode;
    auto* orderGroup = new QButtonGroup(this);
    auto* orderRow = new QHBoxLayout(order);
    for (QRadioButton* option : orders) {
        orderGroup->addButton(option);
        orderRow->addWidget(option);
    }

    txtBillNo = NamedField(this, QStringLiteral("txtBillNo"), 5);
    txtBillNo->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), txtBillNo));
    txtNumberOfMailers = NamedField(this, QStringLiteral("txtNumberOfMailers"), 6);

    lblControl = NamedLabel(this, QStringLiteral("lblControl"), QStringLiteral("Control #:"));
    lblName = NamedLabel(this, QStringLiteral("lblName"), QStringLiteral("Name:"));
    txtControl = ShownField(this, QStringLiteral("txtControl"));
    txtName = ShownField(this, QStringLiteral("txtName"));
    prgBills = new QProgressBar(this);
    prgBills->setObjectName(QStringLiteral("prgBills"));
    prgBills->setFormat(QStringLiteral("%v of %m"));
    cmdCancel = NamedButton(this, QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), false);
    cmdOK = NamedButton(this, QStringLiteral("cmdOK"), QStringLiteral("&OK"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

    auto* fields = new QGridLayout;
    int row = 0;
    auto addRow = [&](QWidget* label, QWidget* field) {
        fields->addWidget(label, row, 0);
        fields->addWidget(field, row++, 1);
    };
    addRow(new QLabel(QStringLiteral("Start Bill #:"), this), txtBillNo);
    addRow(new QLabel(QStringLiteral("# Of Mailers:"), this), txtNumberOfMailers);
    addRow(lblControl, txtControl);
    if (parts.progressLabel) {
        auto* own = new QHBoxLayout;
        for (QWidget* w : parts.progressFields)
            own->addWidget(w);
        fields->addWidget(parts.progressLabel, row, 0);
        fields->addLayout(own, row++, 1);
        m_ownProgress = QList<QWidget*>{parts.progressLabel} + parts.progressFields;
    }
    addRow(lblName, txtName);
    fields->addWidget(prgBills, row, 0, 1, 2);

    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {cmdOK, cmdCancel, cmdExit})
        buttons->addWidget(button);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    QList<QWidget*> tabs{optBillEarly, optBillLate, chkSamples,
                         chkPrintAddr, ownCheck,    chkPlainPaperCopy};
    for (QWidget* tick : tabs.mid(2))
        layout->addWidget(tick);
    layout->addWidget(order);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    for (QRadioButton* option : orders)
        tabs << option;
    tabs << txtBillNo << txtNumberOfMailers << cmdOK;
    for (qsizetype i = 1; i < tabs.size(); ++i)
        setTabOrder(tabs[i - 1], tabs[i]);

    // From May on the late bills (the school's, on real estate) are the ones to mail.
    if (Clock::today().month() >= 5)
        optBillLate->setChecked(true);
    showProgress(false);

    connect(cmdOK, &QPushButton::clicked, this, [this] { ok(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] {
        if (!printing())
            CloseScreen(this);
    });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cancelRun(); });
    return ownCheck;
}

bool BillRunForm::checkFrameAndStartBill() {
    if (!optBillEarly->isChecked() && !optBillLate->isChecked()) {
        exclaim(QStringLiteral("Billing Time Frame must be selected."), "Enter Billing Time Frame");
        return false;
    }
    if (!txtBillNo->text().trimmed().isEmpty()) {
        const QString typed = txtBillNo->text().trimmed();
        bool numeric = false;
        const double n = typed.toDouble(&numeric);
        txtBillNo->setText(numeric ? PadFormat(n, "####0") : typed.rightJustified(5));
    }
    return true;
}

std::optional<int> BillRunForm::checkMailers() {
    const char* const title = "Select Number Of Mailers";
    const QString mailersText = txtNumberOfMailers->text().trimmed();
    if (mailersText.isEmpty()) {
        exclaim(QStringLiteral("Number Of Mailers Must Be Specified"), title);
        txtNumberOfMailers->setFocus();
        return std::nullopt;
    }
    bool numeric = false;
    const double mailers = mailersText.toDouble(&numeric);
    if (!numeric) {
        exclaim(QStringLiteral("Number Of Mailers Must Be Numeric"), title);
        txtNumberOfMailers->setFocus();
        return std::nullopt;
    }
    return int(std::max(0.0, std::min(mailers, 2.0e9)));
}

std::optional<QString> BillRunForm::letterPrinter(const QString& missingPrinter) {
    const std::optional<QString> device =
        AssignedPrinter(session().DbConnection, QString::fromLatin1(LetterPrinter));
    if (!device)
        MsgBox(missingPrinter, QStringLiteral("Printer Error"), MsgButtons::Ok, MsgIcon::Critical);
    return device;
}

void BillRunForm::closeEvent(QCloseEvent* event) {
    if (m_printing) {
        m_cancel = true;
        event->ignore();
        return;
    }
    QWidget::closeEvent(event);
}

void BillRunForm::showProgress(bool on) {
    QList<QWidget*> fields{lblControl, lblName, txtControl, txtName, prgBills, cmdCancel};
    fields += m_ownProgress;
    for (QWidget* w : fields)
        w->setVisible(on);
}

void BillRunForm::showBill(const QSqlRecord& bill) {
    txtControl->setText(TextField(bill.value(QStringLiteral("Control"))).toUpper());
    txtName->setText(TextField(bill.value(QStringLiteral("Name"))).toUpper());
}

bool BillRunForm::keepGoing(const QSqlRecord& bill, int printed) {
    showBill(bill);
    prgBills->setValue(std::min(printed, prgBills->maximum()));
    // A few times a second the window is redrawn and a press on Cancel is taken.
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (now - m_lastPump >= 100) {
        m_lastPump = now;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return !m_cancel;
}

void BillRunForm::runAndReport(const RunTexts& texts, const QString& device, bool duplex,
                               BillingFrame frame, int mailers, const Run& run) {
    QSqlDatabase db = session().DbConnection;
    // The sheet, and the progress fields.
    ReportSurface surface;
    SetUpBillSurface(surface);
    PrintJobStream job(texts.jobName, surface.format(), device);
    // The mailing page's back panel prints on the other side of the sheet.
    job.setDuplex(duplex);
    job.attach(surface);
    showProgress(true);
    {
        QSqlQuery count(db);
        int bills = 1;
        if (count.exec(QStringLiteral("SELECT count(*) FROM %1").arg(texts.masterTable)) &&
            count.next())
            bills = count.value(0).toInt();
        prgBills->setRange(0, std::max(1, std::min(bills, mailers)));
        prgBills->setValue(0);
    }
    m_printing = true;
    m_cancel = false;
    m_lastPump = 0;
    for (QWidget* w : std::initializer_list<QWidget*>{cmdOK, cmdExit})
        w->setEnabled(false);
    const BillRunResult result = run(
        surface, [this](const QSqlRecord& bill, int printed) { return keepGoing(bill, printed); });
    surface.EndDoc();
    const PrintResult sent = job.finish();
    m_printing = false;
    for (QWidget* w : std::initializer_list<QWidget*>{cmdOK, cmdExit})
        w->setEnabled(true);
    showProgress(false);

    using Stop = BillRunResult::Stop;
    if (!sent.ok)
        MsgBox(sent.error, QStringLiteral("Printer Error"), MsgButtons::Ok, MsgIcon::Critical);
    switch (result.stop) {
    case Stop::NoRows:
        exclaim(QStringLiteral("There are no tax bills for the selected districts and billing "
                               "time frame. Make sure that you have created the tax billing "
                               "files for the selected districts."),
                texts.doneTitle);
        return;
    case Stop::StartNotFound:
        exclaim(QStringLiteral("Start Bill Number does not exist"), "Enter Start Bill Number");
        txtBillNo->clear();
        txtBillNo->setFocus();
        return;
    case Stop::NoBodies:
        exclaim(frame == BillingFrame::Early
                    ? QStringLiteral("There are no Early Billing municipalities for this district "
                                     "and tax year.")
                    : QStringLiteral("There are no Late Billing municipalities for this district "
                                     "and tax year."),
                texts.formTitle);
        return;
    case Stop::IncompleteChain:
        CheckBillIntegrity(result.bill);
        CloseScreen(this);
        return;
    case Stop::Error:
        MsgBox(result.error, QLatin1String(texts.formTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    case Stop::Cancelled:
        MsgBox(QStringLiteral("Printing Cancelled. %1 Bills Printed.").arg(result.printed),
               QLatin1String(texts.formTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        break;
    case Stop::Finished:
        if (!session().LateBillingRun)
            MsgBox(QStringLiteral("Printing Complete."), QLatin1String(texts.doneTitle));
        break;
    }
    txtBillNo->clear();
    txtNumberOfMailers->clear();
    if (session().LateBillingRun) {
        CloseScreen(this);
        return;
    }
    txtBillNo->setFocus();
}
