#include "bills/re_print_tax_bills.h"

#include "bills/re_tax_bill.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
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

    auto* frame = new QGroupBox(QStringLiteral("Billing Time Frame"), this);
    frame->setObjectName(QStringLiteral("fraBillingTimeFrame"));
    optBillEarly =
        NamedOption(frame, QStringLiteral("optBillEarly"), QStringLiteral("County Bill"));
    optBillLate = NamedOption(frame, QStringLiteral("optBillLate"), QStringLiteral("School Bill"));
    m_frames = new QButtonGroup(this);
    m_frames->addButton(optBillEarly);
    m_frames->addButton(optBillLate);
    {
        auto* l = new QHBoxLayout(frame);
        l->addWidget(optBillEarly);
        l->addWidget(optBillLate);
    }
    chkSamples = NamedCheck(this, QStringLiteral("chkSamples"), QStringLiteral("Samples"));
    chkPrintAddr = NamedCheck(this, QStringLiteral("chkPrintAddr"),
                              QStringLiteral("Print Mailing Address On A Separate Page"));
    chkPrintHomestead =
        NamedCheck(this, QStringLiteral("chkPrintHomestead"), QStringLiteral("Print Coupons"));
    chkPlainPaperCopy =
        NamedCheck(this, QStringLiteral("chkPlainPaperCopy"), QStringLiteral("Ascending Order"));

    auto* order = new QGroupBox(QStringLiteral("Order"), this);
    order->setObjectName(QStringLiteral("fraOrder"));
    optBillNo = NamedOption(order, QStringLiteral("optBillNo"), QStringLiteral("Bill #"));
    optZipCode = NamedOption(order, QStringLiteral("optZipCode"), QStringLiteral("ZipCode"));
    m_orders = new QButtonGroup(this);
    m_orders->addButton(optBillNo);
    m_orders->addButton(optZipCode);
    {
        auto* l = new QHBoxLayout(order);
        l->addWidget(optBillNo);
        l->addWidget(optZipCode);
    }

    txtBillNo = NamedField(this, QStringLiteral("txtBillNo"), 5);
    txtBillNo->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), txtBillNo));
    txtNumberOfMailers = NamedField(this, QStringLiteral("txtNumberOfMailers"), 6);

    lblControl = NamedLabel(this, QStringLiteral("lblControl"), QStringLiteral("Control #:"));
    lblMap = NamedLabel(this, QStringLiteral("lblMap"), QStringLiteral("Map #:"));
    lblName = NamedLabel(this, QStringLiteral("lblName"), QStringLiteral("Name:"));
    txtControl = ShownField(this, QStringLiteral("txtControl"));
    txtMap3 = ShownField(this, QStringLiteral("txtMap3"));
    txtMap4 = ShownField(this, QStringLiteral("txtMap4"));
    txtMap5 = ShownField(this, QStringLiteral("txtMap5"));
    txtName = ShownField(this, QStringLiteral("txtName"));
    prgBills = new QProgressBar(this);
    prgBills->setObjectName(QStringLiteral("prgBills"));
    prgBills->setFormat(QStringLiteral("%v of %m"));
    cmdCancel = NamedButton(this, QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), false);

    cmdOK = NamedButton(this, QStringLiteral("cmdOK"), QStringLiteral("&OK"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

    auto* fields = new QGridLayout;
    fields->addWidget(new QLabel(QStringLiteral("Start Bill #:"), this), 0, 0);
    fields->addWidget(txtBillNo, 0, 1);
    fields->addWidget(new QLabel(QStringLiteral("# Of Mailers:"), this), 1, 0);
    fields->addWidget(txtNumberOfMailers, 1, 1);
    fields->addWidget(lblControl, 2, 0);
    fields->addWidget(txtControl, 2, 1);
    fields->addWidget(lblMap, 3, 0);
    {
        auto* map = new QHBoxLayout;
        map->addWidget(txtMap3);
        map->addWidget(txtMap4);
        map->addWidget(txtMap5);
        fields->addLayout(map, 3, 1);
    }
    fields->addWidget(lblName, 4, 0);
    fields->addWidget(txtName, 4, 1);
    fields->addWidget(prgBills, 5, 0, 1, 2);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    buttons->addWidget(cmdExit);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    layout->addWidget(chkSamples);
    layout->addWidget(chkPrintAddr);
    layout->addWidget(chkPrintHomestead);
    layout->addWidget(chkPlainPaperCopy);
    layout->addWidget(order);
    layout->addLayout(fields);
    layout->addLayout(buttons);

    setTabOrder(optBillEarly, optBillLate);
    setTabOrder(optBillLate, chkSamples);
    setTabOrder(chkSamples, chkPrintAddr);
    setTabOrder(chkPrintAddr, chkPrintHomestead);
    setTabOrder(chkPrintHomestead, chkPlainPaperCopy);
    setTabOrder(chkPlainPaperCopy, optBillNo);
    setTabOrder(optBillNo, optZipCode);
    setTabOrder(optZipCode, txtBillNo);
    setTabOrder(txtBillNo, txtNumberOfMailers);
    setTabOrder(txtNumberOfMailers, cmdOK);

    // From May on the school bills are the ones to mail.
    if (Clock::today().month() >= 5)
        optBillLate->setChecked(true);
    showProgress(false);

    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] {
        if (!printing())
            CloseScreen(this);
    });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cancelRun(); });
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

QList<QWidget*> frmREPrintTaxBills::moreProgressFields() const {
    return {lblMap, txtMap3, txtMap4, txtMap5};
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
