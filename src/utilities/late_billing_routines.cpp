#include "utilities/late_billing_routines.h"

#include "bills/pc_print_tax_bills.h"
#include "bills/re_print_tax_bills.h"
#include "core/clock.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/reports/change_reports.h"
#include "utilities/late_billing.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

const char* const WarningText =
    "WARNING!  The automated batch process you are initiating may cause some parcels/accounts "
    "to overwrite (Assessed Values or Tax Bill values) in your database that you did not intend "
    "to change.  \u201cWE RECOMMEND THAT YOU BACKUP YOUR DATABASE IMMEDIATELY PRIOR TO RUNNING "
    "THIS PROCESS!\u201d  Then verify the output (bills, lists etc..) and verify that they are "
    "correct.  If they are incorrect, use the utilities menu and restore your backup and "
    "perform this process manually!  This process is provided as an optional choice to automate "
    "your work.  If you choose to run this process neither the County nor ARS is responsible "
    "for any errors that occur as a result of running it!";

// Prints the adjustments of a range through the adjustment report form of the duplicate, as
// the collector would: the form opened, its two dates filled in, Print pressed, the form closed.
// Its boxes (the copies, the closing message) are asked as usual.
void PrintLateBillingAdjustments(Duplicate duplicate, const QDate& start, const QDate& end) {
    ChangeReportForm* form = nullptr;
    if (duplicate == Duplicate::RealEstate)
        form = new frmREPrintAdjustmentReport;
    else
        form = new frmPCPrintAdjustmentReport;
    form->setAttribute(Qt::WA_DeleteOnClose);
    QPointer<ChangeReportForm> guard(form);
    if (ScreenHost* host = screenHost())
        host->showScreen(form, false);
    else
        form->show();
    form->txtStartDate->setText(start.toString(QStringLiteral("MM/dd/yyyy")));
    form->txtEndDate->setText(end.toString(QStringLiteral("MM/dd/yyyy")));
    form->cmdPrint_Click();
    if (guard)
        CloseScreen(guard);
}

// Prints the bills of the late frame whose address changed or that were added, through the
// bill form, as the routine asks: bill number order, descending, from the first bill, the
// mailing page, no box at the end.
template <typename Form> void printThroughForm(Form* form, bool coupons) {
    QPointer<Form> guard(form);
    if (ScreenHost* host = screenHost())
        host->showScreen(form, false);
    else
        form->show();
    form->optBillLate->setChecked(true);
    form->optBillNo->setChecked(true);
    form->chkSamples->setChecked(false);
    form->chkPlainPaperCopy->setChecked(false);
    form->txtBillNo->clear();
    form->txtNumberOfMailers->setText(QStringLiteral("99999"));
    form->chkPrintAddr->setChecked(true);
    if constexpr (std::is_same_v<Form, frmREPrintTaxBills>)
        form->chkPrintHomestead->setChecked(coupons);
    else
        Q_UNUSED(coupons);
    form->cmdOK_Click();
    // A run that stopped before its end leaves the form open: it goes with the step.
    if (guard)
        CloseScreen(guard);
}

} // namespace

QWidget* frmLateBillingRoutines::open() {
    LateBillingOffice office;
    QString error;
    if (!LateBillingOffice::read(session().DbConnection, &office, &error)) {
        MsgBox(error, QStringLiteral("Update Late Billing Exonerations"), MsgButtons::Ok,
               MsgIcon::Critical);
        return nullptr;
    }
    if (!office.anyLate()) {
        MsgBox(QStringLiteral("There are no Late Billing Records for this taxing district"),
               QStringLiteral("Install Tax Collector Late Billing Data Files"), MsgButtons::Ok,
               MsgIcon::Exclamation);
        return nullptr;
    }
    MsgBox(QString::fromUtf8(WarningText), QStringLiteral("WARNING!!!"), MsgButtons::Ok,
           MsgIcon::Critical);
    return new frmLateBillingRoutines;
}

frmLateBillingRoutines::frmLateBillingRoutines(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmLateBillingRoutines"));
    setWindowTitle(QStringLiteral("Update Late Billing Exonerations"));

    txtFileName = ShownField(this, QStringLiteral("txtFileName"));
    txtCount = ShownField(this, QStringLiteral("txtCount"));
    chkREPrintExonerations =
        NamedCheck(this, QStringLiteral("chkREPrintExonerations"),
                   QStringLiteral("Print Real Estate Exonerations For The Year"));
    chkPCPrintExonerations =
        NamedCheck(this, QStringLiteral("chkPCPrintExonerations"),
                   QStringLiteral("Print Per Capita Exonerations For The Year"));
    chkREUpdateAdds = NamedCheck(this, QStringLiteral("chkREUpdateAdds"),
                                 QStringLiteral("Calculate Real Estate Taxes For Added Bills"));
    chkPCUpdateAdds = NamedCheck(this, QStringLiteral("chkPCUpdateAdds"),
                                 QStringLiteral("Calculate Per Capita Taxes For Added Bills"));
    chkREExonerations = NamedCheck(
        this, QStringLiteral("chkREExonerations"),
        QStringLiteral("Exonerate Real Estate Bills That Already Have County Amounts Exonerated"));
    chkPCExonerations = NamedCheck(
        this, QStringLiteral("chkPCExonerations"),
        QStringLiteral("Exonerate Per Capita Bills That Already Have County Amounts Exonerated"));
    chkREPrintExonerations2 = NamedCheck(this, QStringLiteral("chkREPrintExonerations2"),
                                         QStringLiteral("Print These Real Estate Exonerations"));
    chkPCPrintExonerations2 = NamedCheck(this, QStringLiteral("chkPCPrintExonerations2"),
                                         QStringLiteral("Print These Per Capita Exonerations"));
    chkREPrintTaxBills =
        NamedCheck(this, QStringLiteral("chkREPrintTaxBills"),
                   QStringLiteral("Print Real Estate Tax Bills With Address Changes"));
    chkPCPrintTaxBills =
        NamedCheck(this, QStringLiteral("chkPCPrintTaxBills"),
                   QStringLiteral("Print Per Capita Tax Bills With Address Changes"));
    cmdRunRoutines =
        NamedButton(this, QStringLiteral("cmdRunRoutines"), QStringLiteral("&Run Routines"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

    auto* layout = new QVBoxLayout(this);
    for (QCheckBox* box :
         {chkREPrintExonerations, chkPCPrintExonerations, chkREUpdateAdds, chkPCUpdateAdds,
          chkREExonerations, chkPCExonerations, chkREPrintExonerations2, chkPCPrintExonerations2,
          chkREPrintTaxBills, chkPCPrintTaxBills})
        layout->addWidget(box);
    auto* progress = new QGridLayout;
    progress->addWidget(new QLabel(QStringLiteral("Step:"), this), 0, 0);
    progress->addWidget(txtFileName, 0, 1);
    progress->addWidget(new QLabel(QStringLiteral("Count:"), this), 1, 0);
    progress->addWidget(txtCount, 1, 1);
    layout->addLayout(progress);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdRunRoutines);
    buttons->addWidget(cmdExit);
    layout->addLayout(buttons);

    connect(cmdRunRoutines, &QPushButton::clicked, this, [this] { cmdRunRoutines_Click(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] {
        if (!m_running)
            CloseScreen(this);
    });
}

void frmLateBillingRoutines::step(const char* title) {
    txtFileName->setText(QLatin1String(title));
    count(0);
}

void frmLateBillingRoutines::count(int n) {
    txtCount->setText(QString::number(n));
    if (n % 500 == 0)
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 10);
}

void frmLateBillingRoutines::cmdRunRoutines_Click() {
    if (m_running)
        return;
    QSqlDatabase db = session().DbConnection;
    LateBillingOffice office;
    QString error;
    if (!LateBillingOffice::read(db, &office, &error)) {
        MsgBox(error, QStringLiteral("Exonerate Late Bills"), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    const QDate today = Clock::today();
    m_running = true;
    session().LateBillingRun = true;
    for (QWidget* w : std::initializer_list<QWidget*>{cmdRunRoutines, cmdExit})
        w->setEnabled(false);
    auto finish = [&] {
        session().LateBillingRun = false;
        m_running = false;
        for (QWidget* w : std::initializer_list<QWidget*>{cmdRunRoutines, cmdExit})
            w->setEnabled(true);
    };
    auto progress = [this](int n) { count(n); };
    auto wrote = [&](const LateBillingResult& result) {
        count(result.count);
        if (result.ok)
            return true;
        MsgBox(result.error, QStringLiteral("Exonerate Late Bills"), MsgButtons::Ok,
               MsgIcon::Critical);
        return false;
    };

    // 1, 2. The year's adjustments so far.
    const QDate newYear(today.year(), 1, 1);
    if (chkREPrintExonerations->isChecked()) {
        step("PRINT REAL ESTATE EXONERATIONS");
        PrintLateBillingAdjustments(Duplicate::RealEstate, newYear, today);
    }
    if (chkPCPrintExonerations->isChecked()) {
        step("PRINT PER CAPITA EXONERATIONS");
        PrintLateBillingAdjustments(Duplicate::PerCapita, newYear, today);
    }
    // 3, 4. The late bodies' taxes of added bills.
    if (chkREUpdateAdds->isChecked()) {
        step("REAL ESTATE ADDS");
        if (!wrote(UpdateLateBillingAdds(db, Duplicate::RealEstate, office, progress)))
            return finish();
    }
    if (chkPCUpdateAdds->isChecked()) {
        step("PER CAPITA ADDS");
        if (!wrote(UpdateLateBillingAdds(db, Duplicate::PerCapita, office, progress)))
            return finish();
    }
    // 5, 6. The county's exonerations carried to the late bodies.
    if (chkREExonerations->isChecked()) {
        step("REAL ESTATE EXONERATIONS");
        if (!wrote(ExonerateLateBodies(db, Duplicate::RealEstate, office, today, progress)))
            return finish();
    }
    if (chkPCExonerations->isChecked()) {
        step("PER CAPITA EXONERATIONS");
        if (!wrote(ExonerateLateBodies(db, Duplicate::PerCapita, office, today, progress)))
            return finish();
    }
    // 7, 8. What this run has just written.
    if (chkREPrintExonerations2->isChecked()) {
        step("PRINT THESE REAL ESTATE EXONERATIONS");
        PrintLateBillingAdjustments(Duplicate::RealEstate, today, today);
    }
    if (chkPCPrintExonerations2->isChecked()) {
        step("PRINT THESE PER CAPITA EXONERATIONS");
        PrintLateBillingAdjustments(Duplicate::PerCapita, today, today);
    }
    // 9, 10. The bills to mail again: without and then with the coupons; per capita once.
    if (chkREPrintTaxBills->isChecked()) {
        step("PRINT REAL ESTATE TAX BILLS");
        printThroughForm(new frmREPrintTaxBills, false);
        printThroughForm(new frmREPrintTaxBills, true);
    }
    if (chkPCPrintTaxBills->isChecked()) {
        step("PRINT PER CAPITA TAX BILLS");
        printThroughForm(new frmPCPrintTaxBills, false);
    }
    finish();
    txtFileName->setText(QStringLiteral("UPDATE COMPLETED"));
    MsgBox(QStringLiteral("Late Billing Routines have been completed SUCCESSFULLY!"),
           QStringLiteral("Exonerate Late Bills"), MsgButtons::Ok, MsgIcon::Information);
    CloseScreen(this);
}
