#include "distribution/distribution_report_forms.h"

#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "distribution/distribution_file.h"
#include "distribution/distribution_numbers.h"
#include "distribution/distribution_report.h"
#include "distribution/screen_parts.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QSqlRecord>
#include <QTimer>
#include <QVBoxLayout>

namespace {

const char* const ReportTitle = "Print Distribution Report";
const char* const NumberTitle = "Enter Distribution Number";

} // namespace

DistributionReportForm::DistributionReportForm(const DistributionTables& tables, TaxingBody body,
                                               const QString& name, QWidget* parent)
    : QWidget(parent), m_tables(tables), m_body(body) {
    setObjectName(name);
    buildScreen();
    load();
    session().LastScreenName = objectName();
}

void DistributionReportForm::buildScreen() {
    txtDisbNum = ShownField(this, QStringLiteral("txtDisbNum"), 2);
    txtDisbDate = ShownField(this, QStringLiteral("txtDisbDate"), 10);
    txtPrintDisbNum = NamedField(this, QStringLiteral("txtPrintDisbNum"), 2);
    txtPrintDisbNum->setValidator(new QRegularExpressionValidator(
        QRegularExpression(QStringLiteral("[0-9]*")), txtPrintDisbNum));
    chkSummaryOnly = new QCheckBox(QStringLiteral("Print only totals page"), this);
    chkSummaryOnly->setObjectName(QStringLiteral("chkSummaryOnly"));
    chkCalculated =
        new QCheckBox(QStringLiteral("Sunnary totals are calculated (not actual)"), this);
    chkCalculated->setObjectName(QStringLiteral("chkCalculated"));
    QHBoxLayout* buttons = ReportButtons(this, &cmdPrint, &cmdPrintPreview, &cmdExit);
    txtRecnum = ShownField(this, QStringLiteral("txtRecnum"), 12);
    txtVoid = ShownField(this, QStringLiteral("txtVoid"), 1);
    txtControl = ShownField(this, QStringLiteral("txtControl"), 6);
    QHBoxLayout* map = MapFields(this, m_tables.hasMap, &txtMap3, &txtMap4, &txtMap5);
    txtName = ShownField(this, QStringLiteral("txtName"), 50);

    auto* form = new QGridLayout;
    form->addWidget(new QLabel(QStringLiteral("Last Distribution #:"), this), 0, 0);
    form->addWidget(txtDisbNum, 0, 1);
    form->addWidget(new QLabel(QStringLiteral("Date:"), this), 0, 2);
    form->addWidget(txtDisbDate, 0, 3);
    form->addWidget(new QLabel(QStringLiteral("Print Distribution #:"), this), 1, 0);
    form->addWidget(txtPrintDisbNum, 1, 1);
    form->addWidget(chkSummaryOnly, 2, 0, 1, 4);
    form->addWidget(chkCalculated, 3, 0, 1, 4);
    auto* progress = new QGridLayout;
    progress->addWidget(new QLabel(QStringLiteral("Receipt #:"), this), 0, 0);
    progress->addWidget(txtRecnum, 0, 1);
    progress->addWidget(txtVoid, 0, 2);
    progress->addWidget(new QLabel(QStringLiteral("Control #:"), this), 1, 0);
    progress->addWidget(txtControl, 1, 1);
    progress->addLayout(map, 1, 2);
    progress->addWidget(new QLabel(QStringLiteral("Name:"), this), 2, 0);
    progress->addWidget(txtName, 2, 1, 1, 2);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(progress);
    layout->addLayout(buttons);

    connect(cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(cmdPrintPreview, &QPushButton::clicked, this, [this] { cmdPrintPreview_Click(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void DistributionReportForm::load() {
    QSqlDatabase db = session().DbConnection;
    m_taxYear = SessionTaxYear(db);
    const LastDistribution last =
        ReadLastDistribution(db, m_tables.disbType, m_tables.body(m_body).cts);
    m_lastNumber = last.number;
    if (last.exists()) {
        txtDisbDate->setText(FormatDate(last.date));
        txtDisbNum->setText(QString::number(last.number));
        txtPrintDisbNum->setText(QString::number(last.number));
    }
    const DistributionReportPlan plan = DistributionReportFor(db, m_tables, m_body);
    setWindowTitle(plan.caption);
}

void DistributionReportForm::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (m_checkedOnShow)
        return;
    m_checkedOnShow = true;
    if (m_lastNumber > 0)
        return;
    // Nothing to print: say so once the form is up, and go.
    QPointer<DistributionReportForm> self(this);
    QTimer::singleShot(0, this, [self] {
        if (!self)
            return;
        MsgBox(QStringLiteral("There are no distributions to print."),
               QString::fromLatin1(ReportTitle));
        if (self)
            CloseScreen(self);
    });
}

int DistributionReportForm::validNumber() {
    auto refuse = [this](const QString& text) {
        MsgBox(text, QString::fromLatin1(NumberTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        txtPrintDisbNum->setFocus(Qt::OtherFocusReason);
        return 0;
    };
    const std::optional<int> number = ParseWholeNumber(txtPrintDisbNum->text());
    if (!number)
        return refuse(QStringLiteral("Distribution Number Must Be Numeric"));
    if (*number < 1 || *number > m_lastNumber)
        return refuse(
            QStringLiteral("Distribution Number Must Be A Valid Distribution Number between 1 "
                           "and ") +
            QString::number(m_lastNumber));
    txtPrintDisbNum->setText(TwoDigits(*number));
    return *number;
}

void DistributionReportForm::run(bool print) {
    const int number = validNumber();
    if (number == 0)
        return;
    QSqlDatabase db = session().DbConnection;
    DistributionReportOptions options;
    options.number = number;
    options.taxYear = m_taxYear;
    const DistributionRange range =
        ReadDistributionRange(db, m_tables.disbType, m_tables.body(m_body).cts, number, m_taxYear);
    options.from = range.from;
    options.to = range.to;
    options.summaryOnly = chkSummaryOnly->isChecked();
    options.calculated = chkCalculated->isChecked();
    options.progress = [this](const QSqlRecord& row, bool voided) {
        ShowColumns(row, {{txtRecnum, "Recnum"}, {txtControl, "Control"}, {txtName, "Name"}});
        txtVoid->setText(voided ? QStringLiteral("V") : QString());
        if (m_tables.hasMap)
            ShowColumns(row, {{txtMap3, "Map3"}, {txtMap4, "Map4"}, {txtMap5, "Map5"}});
    };
    DistributionReport report(db, DistributionReportFor(db, m_tables, m_body), std::move(options));
    // A distribution report printed to the end closes its form.
    if (PrintOrPreview(report.definition(), this, print, db))
        CloseScreen(this);
}

void DistributionReportForm::cmdPrint_Click() {
    run(true);
}

void DistributionReportForm::cmdPrintPreview_Click() {
    run(false);
}

frmREPrintDistributionCounty::frmREPrintDistributionCounty(QWidget* parent)
    : DistributionReportForm(RealEstateTables(), TaxingBody::County,
                             QStringLiteral("frmREPrintDistributionCounty"), parent) {}
frmREPrintDistributionTwp::frmREPrintDistributionTwp(QWidget* parent)
    : DistributionReportForm(RealEstateTables(), TaxingBody::Twp,
                             QStringLiteral("frmREPrintDistributionTwp"), parent) {}
frmREPrintDistributionSchool::frmREPrintDistributionSchool(QWidget* parent)
    : DistributionReportForm(RealEstateTables(), TaxingBody::School,
                             QStringLiteral("frmREPrintDistributionSchool"), parent) {}
frmPCPrintDistributionCounty::frmPCPrintDistributionCounty(QWidget* parent)
    : DistributionReportForm(PerCapitaTables(), TaxingBody::County,
                             QStringLiteral("frmPCPrintDistributionCounty"), parent) {}
frmPCPrintDistributionTwp::frmPCPrintDistributionTwp(QWidget* parent)
    : DistributionReportForm(PerCapitaTables(), TaxingBody::Twp,
                             QStringLiteral("frmPCPrintDistributionTwp"), parent) {}
frmPCPrintDistributionSchool::frmPCPrintDistributionSchool(QWidget* parent)
    : DistributionReportForm(PerCapitaTables(), TaxingBody::School,
                             QStringLiteral("frmPCPrintDistributionSchool"), parent) {}
