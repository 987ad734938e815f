#include "bills/re_print_tax_bills.h"

#include "bills/re_tax_bill.h"
#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlRecord>

namespace {

const char* const FormTitle = "Print Real Estate Tax Bills";
// The title this form shows on its "no bills" and "Printing Complete." messages.
const char* const PerCapitaTitle = "Print Per Capita Tax Bills";

void exclaim(const QString& text, const char* title) {
    MsgBox(text, QLatin1String(title), MsgButtons::Ok, MsgIcon::Exclamation);
}

} // namespace

frmREPrintTaxBills::frmREPrintTaxBills(QWidget* parent) : BillRunForm(parent) {
    setObjectName(QStringLiteral("frmREPrintTaxBills"));
    // The scan screen presets its action from the screen last shown.
    session().LastScreenName = objectName();
    setWindowTitle(QLatin1String(FormTitle));

    lblMap = NamedLabel(this, QStringLiteral("lblMap"), QStringLiteral("Map #:"));
    txtMap3 = ShownField(this, QStringLiteral("txtMap3"));
    txtMap4 = ShownField(this, QStringLiteral("txtMap4"));
    txtMap5 = ShownField(this, QStringLiteral("txtMap5"));
    FormParts parts;
    parts.earlyCaption = QStringLiteral("County Bill");
    parts.lateCaption = QStringLiteral("School Bill");
    parts.ownCheckName = QStringLiteral("chkPrintHomestead");
    parts.ownCheckCaption = QStringLiteral("Print Coupons");
    parts.progressLabel = lblMap;
    parts.progressFields = {txtMap3, txtMap4, txtMap5};
    chkPrintHomestead = buildForm(parts);
}

void frmREPrintTaxBills::cmdOK_Click() {
    if (printing())
        return;
    QSqlDatabase db = session().DbConnection;
    // 1, 2. The frame, and the start bill padded as bill numbers are.
    if (!checkFrameAndStartBill())
        return;
    // 3. The order.
    if (!optBillNo->isChecked() && !optZipCode->isChecked()) {
        exclaim(QStringLiteral("Either Bill # or Zip Code Order Must Be Selected"), "Select Order");
        optBillNo->setFocus();
        return;
    }
    // 4. How many, 5. the printer.
    const std::optional<int> mailers = checkMailers();
    if (!mailers)
        return;
    const std::optional<QString> device =
        letterPrinter(QStringLiteral("There is currently no Laser size printer assigned."));
    if (!device)
        return;

    REBillOffice office;
    QString error;
    if (!REBillOffice::read(db, &office, &error)) {
        MsgBox(error, QLatin1String(FormTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    REBillRun run;
    run.look.frame = optBillLate->isChecked() ? BillingFrame::Late : BillingFrame::Early;
    run.look.printAddress = chkPrintAddr->isChecked();
    run.look.printHomestead = chkPrintHomestead->isChecked();
    run.look.zipOrder = optZipCode->isChecked();
    run.samples = chkSamples->isChecked();
    run.ascending = chkPlainPaperCopy->isChecked();
    run.startBill = txtBillNo->text();
    run.mailers = *mailers;
    run.lateBillingRun = session().LateBillingRun;

    // 6 to the end: the run as one print job, and how it ended.
    const RunTexts texts{QStringLiteral("Real Estate Tax Bills"), QStringLiteral("TCMaster"),
                         FormTitle, PerCapitaTitle};
    runAndReport(texts, *device, run.look.printAddress, run.look.frame, run.mailers,
                 [&](ReportSurface& surface, const Progress& progress) {
                     return RunRETaxBills(db, office, run, surface, progress);
                 });
}

frmREPrintTaxBills* OpenREPrintTaxBillsFor(const QString& billNo, bool printCoupons) {
    frmREPrintTaxBills* form = nullptr;
    if (ScreenHost* host = screenHost()) {
        form = qobject_cast<frmREPrintTaxBills*>(
            host->openScreen(QStringLiteral("frmREPrintTaxBills")));
    } else {
        // No main window (a test): a form already shown on its own.
        const QList<QWidget*> windows = QApplication::topLevelWidgets();
        for (QWidget* w : windows)
            if (auto* open = qobject_cast<frmREPrintTaxBills*>(w); open && open->isVisible())
                form = open;
    }
    if (!form) {
        form = new frmREPrintTaxBills;
        if (ScreenHost* host = screenHost())
            host->showScreen(form, false);
        else
            form->show();
    } else if (ScreenHost* host = screenHost()) {
        host->showScreen(form, false);
    }
    form->txtBillNo->setText(billNo.trimmed());
    form->txtNumberOfMailers->setText(QStringLiteral("1"));
    form->chkPrintHomestead->setChecked(printCoupons);
    form->cmdOK->setFocus();
    return form;
}

void frmREPrintTaxBills::showBill(const QSqlRecord& bill) {
    BillRunForm::showBill(bill);
    auto field = [&](const char* column) {
        return TextField(bill.value(QLatin1String(column))).toUpper();
    };
    txtMap3->setText(field("Map3"));
    txtMap4->setText(field("Map4"));
    txtMap5->setText(field("Map5"));
}
