#include "bills/print_second_notices.h"

#include "bills/second_notice.h"
#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
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
#include <QPushButton>
#include <QRadioButton>
#include <QSqlRecord>
#include <QVBoxLayout>

namespace {

const char* const RunTitle = "Print Second Notices";
const char* const CompleteTitle = "Print Tax Bill Second Notices";

void exclaim(const QString& text, const char* title) {
    MsgBox(text, QLatin1String(title), MsgButtons::Ok, MsgIcon::Exclamation);
}

// A whole number typed in a field, or nothing.
std::optional<double> numberIn(const QLineEdit* field) {
    bool ok = false;
    const double v = field->text().trimmed().toDouble(&ok);
    return ok ? std::optional<double>(v) : std::nullopt;
}

} // namespace

SecondNoticesForm::SecondNoticesForm(Duplicate duplicate, QWidget* parent)
    : QWidget(parent), m_duplicate(duplicate) {
    const bool pc = duplicate == Duplicate::PerCapita;
    setObjectName(pc ? QStringLiteral("frmPCPrintSecondNotices")
                     : QStringLiteral("frmREPrintSecondNotices"));
    setWindowTitle(pc ? QStringLiteral("Print Per Capita Second Notices")
                      : QStringLiteral("Print Real Estate Second Notices"));

    auto* checks = new QGroupBox(QStringLiteral("Personal Checks"), this);
    checks->setObjectName(QStringLiteral("fraChecks"));
    optAllowChecks =
        NamedOption(checks, QStringLiteral("optAllowChecks"),
                    QStringLiteral("I DO NOT accept personal checks after this date."));
    optDoNotAllowChecks =
        NamedOption(checks, QStringLiteral("optDoNotAllowChecks"),
                    QStringLiteral("I DO accept personal checks after this date."));
    auto* checkGroup = new QButtonGroup(this);
    checkGroup->addButton(optAllowChecks);
    checkGroup->addButton(optDoNotAllowChecks);
    optAllowChecks->setChecked(true);
    {
        auto* l = new QVBoxLayout(checks);
        l->addWidget(optAllowChecks);
        l->addWidget(optDoNotAllowChecks);
    }

    auto* type = new QGroupBox(QStringLiteral("Notice Type"), this);
    type->setObjectName(QStringLiteral("fraNoticeType"));
    optCountyNotice =
        NamedOption(type, QStringLiteral("optCountyNotice"), QStringLiteral("County Notice"));
    optARSNotice = NamedOption(type, QStringLiteral("optARSNotice"), QStringLiteral("ARS Notice"));
    auto* typeGroup = new QButtonGroup(this);
    typeGroup->addButton(optCountyNotice);
    typeGroup->addButton(optARSNotice);
    optCountyNotice->setChecked(true);
    {
        auto* l = new QHBoxLayout(type);
        l->addWidget(optCountyNotice);
        l->addWidget(optARSNotice);
    }

    chkPrintAddr = new QCheckBox(QStringLiteral("Print Mailing Address On A Separate Page"), this);
    chkPrintAddr->setObjectName(QStringLiteral("chkPrintAddr"));
    txtYear = NamedField(this, QStringLiteral("txtYear"), 4);

    auto* frame = new QGroupBox(QStringLiteral("Billing Time Frame"), this);
    frame->setObjectName(QStringLiteral("fraBillingTimeFrame"));
    optBillEarly =
        NamedOption(frame, QStringLiteral("optBillEarly"), QStringLiteral("Early Billing"));
    optBillLate = NamedOption(frame, QStringLiteral("optBillLate"), QStringLiteral("Late Billing"));
    optBillBoth =
        NamedOption(frame, QStringLiteral("optBillBoth"), QStringLiteral("Early and Late Billing"));
    auto* frameGroup = new QButtonGroup(this);
    frameGroup->addButton(optBillEarly);
    frameGroup->addButton(optBillLate);
    frameGroup->addButton(optBillBoth);
    {
        auto* l = new QVBoxLayout(frame);
        l->addWidget(optBillEarly);
        l->addWidget(optBillLate);
        l->addWidget(optBillBoth);
    }

    txtSBillNo = NamedField(this, QStringLiteral("txtSBillNo"), 5);
    txtNumberOfMailers = NamedField(this, QStringLiteral("txtNumberOfMailers"), 7);
    txtLeftMargin = NamedField(this, QStringLiteral("txtLeftMargin"), 6);
    txtTopMargin = NamedField(this, QStringLiteral("txtTopMargin"), 6);
    txtDistrict = ShownField(this, QStringLiteral("txtDistrict"));
    txtWard = ShownField(this, QStringLiteral("txtWard"));
    txtControl = ShownField(this, QStringLiteral("txtControl"));
    txtName = ShownField(this, QStringLiteral("txtName"));
    cmdOK = NamedButton(this, QStringLiteral("cmdOK"), QStringLiteral("&OK"));
    cmdCancel = NamedButton(this, QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), false);

    auto* fields = new QGridLayout;
    int row = 0;
    auto add = [&](const char* caption, QWidget* field) {
        fields->addWidget(new QLabel(QLatin1String(caption), this), row, 0);
        fields->addWidget(field, row++, 1);
    };
    add("Tax Year:", txtYear);
    add("Start Bill #:", txtSBillNo);
    add("# Of Mailers:", txtNumberOfMailers);
    add("Left Margin:", txtLeftMargin);
    add("Top Margin:", txtTopMargin);
    add("District:", txtDistrict);
    add("Ward:", txtWard);
    add("Control #:", txtControl);
    add("Name:", txtName);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(checks);
    layout->addWidget(type);
    layout->addWidget(chkPrintAddr);
    layout->addWidget(frame);
    if (pc) {
        lblBillMessage = NamedLabel(
            this, QStringLiteral("lblBillMessage"),
            QStringLiteral("(Bills will print Alphabetically starting with the bill # selected)"));
        layout->addWidget(lblBillMessage);
    }
    layout->addLayout(fields);
    layout->addLayout(buttons);

    setTabOrder(optAllowChecks, optDoNotAllowChecks);
    setTabOrder(optDoNotAllowChecks, optCountyNotice);
    setTabOrder(optCountyNotice, optARSNotice);
    setTabOrder(optARSNotice, chkPrintAddr);
    setTabOrder(chkPrintAddr, txtYear);
    setTabOrder(txtYear, optBillEarly);
    setTabOrder(optBillEarly, optBillLate);
    setTabOrder(optBillLate, optBillBoth);
    setTabOrder(optBillBoth, txtSBillNo);
    setTabOrder(txtSBillNo, txtNumberOfMailers);
    setTabOrder(txtNumberOfMailers, txtLeftMargin);
    setTabOrder(txtLeftMargin, txtTopMargin);
    setTabOrder(txtTopMargin, cmdOK);

    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] {
        if (m_printing)
            m_cancel = true;
        else
            CloseScreen(this);
    });
}

frmREPrintSecondNotices::frmREPrintSecondNotices(QWidget* parent)
    : SecondNoticesForm(Duplicate::RealEstate, parent) {}

frmPCPrintSecondNotices::frmPCPrintSecondNotices(QWidget* parent)
    : SecondNoticesForm(Duplicate::PerCapita, parent) {}

void SecondNoticesForm::closeEvent(QCloseEvent* event) {
    if (m_printing) {
        m_cancel = true;
        event->ignore();
        return;
    }
    QWidget::closeEvent(event);
}

bool SecondNoticesForm::keepGoing(const QSqlRecord& bill) {
    auto field = [&](const char* column) { return TextField(bill.value(QLatin1String(column))); };
    txtDistrict->setText(field("District"));
    txtWard->setText(field("Ward"));
    txtControl->setText(field("Control"));
    txtName->setText(field("Name"));
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (now - m_lastPump >= 100) {
        m_lastPump = now;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return !m_cancel;
}

void SecondNoticesForm::cmdOK_Click() {
    if (m_printing)
        return;
    QSqlDatabase db = session().DbConnection;
    const bool pc = m_duplicate == Duplicate::PerCapita;

    // 1. The start bill: digits, padded as bill numbers are.
    const QString typed = txtSBillNo->text().trimmed();
    bool digits = !typed.isEmpty() && typed.size() <= 5;
    for (const QChar c : typed)
        digits = digits && c.isDigit();
    if (!digits) {
        exclaim(QStringLiteral("Invalid Start Bill Number."), "Enter Start Bill Number");
        txtSBillNo->setFocus();
        return;
    }
    txtSBillNo->setText(PadFormat(typed.toDouble(), "####0"));
    const QString start = txtSBillNo->text();
    // 2. The frame.
    if (!optBillEarly->isChecked() && !optBillLate->isChecked() && !optBillBoth->isChecked()) {
        exclaim(QStringLiteral("Billing Time Frame must be selected."), "Enter Billing Time Frame");
        return;
    }
    // 3. The margins, in twips.
    const std::pair<QLineEdit*, const char*> margins[] = {{txtLeftMargin, "Left"},
                                                          {txtTopMargin, "Top"}};
    for (const auto& [field, side] : margins) {
        const QString title = QStringLiteral("Select %1 Margin").arg(QLatin1String(side));
        if (field->text().trimmed().isEmpty()) {
            exclaim(QStringLiteral("%1 Margin Must Be Specified").arg(QLatin1String(side)),
                    qPrintable(title));
            field->setFocus();
            return;
        }
        if (!numberIn(field) || *numberIn(field) < 0) {
            exclaim(QStringLiteral("%1 Margin Must Be Numeric").arg(QLatin1String(side)),
                    qPrintable(title));
            field->setFocus();
            return;
        }
    }
    // 4. How many: all when empty.
    if (txtNumberOfMailers->text().trimmed().isEmpty())
        txtNumberOfMailers->setText(QStringLiteral("9999999"));
    const std::optional<double> mailers = numberIn(txtNumberOfMailers);
    if (!mailers) {
        exclaim(QStringLiteral("Number Of Mailers Must Be Numeric"), "Select Number Of Mailers");
        txtNumberOfMailers->setFocus();
        return;
    }
    // 5. The printer.
    const std::optional<QString> device = AssignedPrinter(db, QString::fromLatin1(LetterPrinter));
    if (!device) {
        MsgBox(QStringLiteral("There is currently no letter size printer assigned."),
               QStringLiteral("Printer Error"), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }

    NoticeOffice office;
    QString error;
    switch (NoticeOffice::read(db, m_duplicate, txtYear->text(), &office, &error)) {
    case NoticeOffice::Read::Ok:
        break;
    case NoticeOffice::Read::NoCountyRates:
        exclaim(QStringLiteral("County Millage Information not available for this tax year."),
                RunTitle);
        return;
    case NoticeOffice::Read::Error:
        MsgBox(error, QLatin1String(RunTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    NoticeRun run;
    run.look.form = optARSNotice->isChecked() ? NoticeForm::ARS : NoticeForm::County;
    run.look.frame = optBillEarly->isChecked()  ? NoticeFrame::Early
                     : optBillLate->isChecked() ? NoticeFrame::Late
                                                : NoticeFrame::Both;
    run.look.noPersonalChecks = !optDoNotAllowChecks->isChecked();
    run.look.printAddress = chkPrintAddr->isChecked();
    run.look.left = *numberIn(txtLeftMargin);
    run.look.top = *numberIn(txtTopMargin);
    run.startBill = start;
    run.mailers = int(std::max(0.0, std::min(*mailers, 2.0e9)));

    ReportSurface surface;
    SetUpBillSurface(surface);
    PrintJobStream job(QStringLiteral("Second Notices"), surface.format(), *device);
    job.setDuplex(run.look.printAddress);
    job.attach(surface);
    m_printing = true;
    m_cancel = false;
    m_lastPump = 0;
    cmdOK->setEnabled(false);
    const BillRunResult result = RunSecondNotices(
        db, office, run, surface, [this](const QSqlRecord& bill, int) { return keepGoing(bill); });
    surface.EndDoc();
    const PrintResult sent = job.finish();
    m_printing = false;
    cmdOK->setEnabled(true);

    using Stop = BillRunResult::Stop;
    if (!sent.ok)
        MsgBox(sent.error, QStringLiteral("Printer Error"), MsgButtons::Ok, MsgIcon::Critical);
    switch (result.stop) {
    case Stop::NoBodies:
        exclaim(run.look.frame == NoticeFrame::Early
                    ? QStringLiteral(
                          "There are no Early Billing tax bills for this district and tax year.")
                : run.look.frame == NoticeFrame::Late
                    ? QStringLiteral(
                          "There are no Late Billing tax bills for this district and tax year.")
                    : QStringLiteral("There are no tax bills for this district and tax year."),
                pc ? "Print Per Capita Tax Bills" : "Print Real Estate Tax Bills");
        return;
    case Stop::NoRows:
        exclaim(QStringLiteral("There are no tax bills starting with Bill # ") + start +
                    QStringLiteral(" & found to be printed in Tax Billing File"),
                RunTitle);
        return;
    case Stop::StartNotFound:
        exclaim(QStringLiteral("There is no tax bill with Bill # ") + start +
                    QStringLiteral(" found to be printed in Tax Billing File"),
                RunTitle);
        return;
    case Stop::IncompleteChain:
        CheckBillIntegrity(result.bill);
        CloseScreen(this);
        return;
    case Stop::Error:
        MsgBox(result.error, QLatin1String(RunTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    case Stop::Cancelled:
        MsgBox(QStringLiteral("Printing Cancelled. %1 Notices Printed.").arg(result.printed),
               QLatin1String(CompleteTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        return;
    case Stop::Finished:
        MsgBox(QStringLiteral("Printing Complete."), QLatin1String(CompleteTitle));
        return;
    }
}
