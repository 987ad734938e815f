#include "bills/pc_print_tax_bills.h"

#include "bills/pc_tax_bill.h"
#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlRecord>

namespace {

const char* const FormTitle = "Print Per Capita Tax Bills";

void exclaim(const QString& text, const char* title) {
    MsgBox(text, QLatin1String(title), MsgButtons::Ok, MsgIcon::Exclamation);
}

} // namespace

frmPCPrintTaxBills::frmPCPrintTaxBills(QWidget* parent) : BillRunForm(parent) {
    setObjectName(QStringLiteral("frmPCPrintTaxBills"));
    // The scan screen presets its action from the screen last shown.
    session().LastScreenName = objectName();
    setWindowTitle(QLatin1String(FormTitle));

    FormParts parts;
    parts.earlyCaption = QStringLiteral("Early Billing");
    parts.lateCaption = QStringLiteral("Late Billing");
    parts.ownCheckName = QStringLiteral("chkSecondNotice");
    parts.ownCheckCaption = QStringLiteral("Print 2nd Notice Disregard If Paid");
    parts.nameOrder = true;
    chkSecondNotice = buildForm(parts);
}

void frmPCPrintTaxBills::cmdOK_Click() {
    if (printing())
        return;
    QSqlDatabase db = session().DbConnection;
    // 1, 2. The frame, and the start bill padded as bill numbers are.
    if (!checkFrameAndStartBill())
        return;
    // 3. The order.
    if (!optBillNo->isChecked() && !optName->isChecked() && !optZipCode->isChecked()) {
        exclaim(QStringLiteral("Either Bill #, Name or Zip Code Order Must Be Selected"),
                "Select Order");
        optBillNo->setFocus();
        return;
    }
    // 4. How many, 5. the printer.
    const std::optional<int> mailers = checkMailers();
    if (!mailers)
        return;
    const std::optional<QString> device =
        letterPrinter(QStringLiteral("There is currently no LETTER size printer assigned."));
    if (!device)
        return;

    PCBillOffice office;
    QString error;
    if (!PCBillOffice::read(db, &office, &error)) {
        MsgBox(error, QLatin1String(FormTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    PCBillRun run;
    run.look.frame = optBillLate->isChecked() ? BillingFrame::Late : BillingFrame::Early;
    run.look.printAddress = chkPrintAddr->isChecked();
    run.look.secondNotice = chkSecondNotice->isChecked();
    run.look.zipOrder = optZipCode->isChecked();
    run.order = optName->isChecked()      ? PCBillOrder::Name
                : optZipCode->isChecked() ? PCBillOrder::ZipCode
                                          : PCBillOrder::BillNo;
    run.samples = chkSamples->isChecked();
    run.ascending = chkPlainPaperCopy->isChecked();
    run.startBill = txtBillNo->text();
    run.mailers = *mailers;
    run.lateBillingRun = session().LateBillingRun;

    // 6 to the end: the run as one print job, and how it ended.
    const RunTexts texts{QStringLiteral("Per Capita Tax Bills"), QStringLiteral("PCMaster"),
                         FormTitle, FormTitle};
    runAndReport(texts, *device, run.look.printAddress, run.look.frame, run.mailers,
                 [&](ReportSurface& surface, const Progress& progress) {
                     return RunPCTaxBills(db, office, run, surface, progress);
                 });
}

frmPCPrintTaxBills* OpenPCPrintTaxBillsFor(const QString& billNo) {
    frmPCPrintTaxBills* form = nullptr;
    if (ScreenHost* host = screenHost())
        form = qobject_cast<frmPCPrintTaxBills*>(
            host->openScreen(QStringLiteral("frmPCPrintTaxBills")));
    if (!form)
        form = new frmPCPrintTaxBills;
    if (ScreenHost* host = screenHost())
        host->showScreen(form, false);
    else
        form->show();
    form->txtBillNo->setText(billNo.trimmed());
    form->txtNumberOfMailers->setText(QStringLiteral("1"));
    form->cmdOK->setFocus();
    return form;
}
