#include "desk/yearend/yearend_form.h"

#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_preview.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlError>
#include <QVBoxLayout>

PrintResult PrintStreamed(const ReportDefinition& definition, QSqlDatabase db,
                          const QString& deviceName, const QString& pdfPath) {
    ReportSurface surface;
    SetUpReportSurface(surface, definition.print);
    PrintJobStream job =
        pdfPath.isEmpty()
            ? PrintJobStream(definition.caption, definition.print, deviceName)
            : PrintJobStream::toPdfFile(definition.caption, definition.print, pdfPath);
    job.attach(surface);
    const ReportLookups lookups = ReportLookups::read(db);
    ReportPage page(surface, definition, lookups, ReportMode::Print);
    if (definition.body)
        definition.body(page);
    surface.NewPage();
    surface.EndDoc();
    return job.finish();
}

std::optional<Recording> DrawForPreview(const ReportDefinition& definition, QSqlDatabase db) {
    ReportSurface surface;
    SetUpReportSurface(surface, definition.preview);
    const ReportLookups lookups = ReportLookups::read(db);
    ReportPage page(surface, definition, lookups, ReportMode::Preview);
    if (definition.body && !definition.body(page))
        return std::nullopt;
    surface.NewPage();
    surface.EndDoc();
    Recording recording = surface.takeRecording();
    recording.jobName = definition.caption;
    return recording;
}

YearEndReportForm::YearEndReportForm(const char* screenName, const QString& title, bool perCapita,
                                     QWidget* parent)
    : QWidget(parent), m_perCapita(perCapita) {
    setObjectName(QString::fromLatin1(screenName));
    setWindowTitle(title);
    txtControl = ShownField(this, QStringLiteral("txtControl"), 6);
    txtMap3 = ShownField(this, QStringLiteral("txtMap3"), 8);
    txtMap4 = ShownField(this, QStringLiteral("txtMap4"), 6);
    txtMap5 = ShownField(this, QStringLiteral("txtMap5"), 9);
    txtName = ShownField(this, QStringLiteral("txtName"), 50);
    cmdPrint = NamedButton(this, QStringLiteral("cmdPrint"), QStringLiteral("&Print"));
    cmdPrintPreview =
        NamedButton(this, QStringLiteral("cmdPrintPreview"), QStringLiteral("Print Pre&view"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

    auto* fields = new QFormLayout;
    fields->addRow(QStringLiteral("Control:"), txtControl);
    if (!perCapita) {
        auto* map = new QHBoxLayout;
        map->addWidget(txtMap3);
        map->addWidget(txtMap4);
        map->addWidget(txtMap5);
        fields->addRow(QStringLiteral("Map:"), map);
    } else {
        txtMap3->hide();
        txtMap4->hide();
        txtMap5->hide();
    }
    fields->addRow(QStringLiteral("Name:"), txtName);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdPrintPreview);
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    m_choices = new QVBoxLayout;
    layout->addLayout(m_choices);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    setMinimumWidth(520);

    connect(cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(cmdPrintPreview, &QPushButton::clicked, this, [this] { cmdPrintPreview_Click(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void YearEndReportForm::showProgress(const QSqlRecord& bill) {
    txtControl->setText(TextField(bill.value(QStringLiteral("Control"))));
    if (!m_perCapita) {
        txtMap3->setText(TextField(bill.value(QStringLiteral("Map3"))));
        txtMap4->setText(TextField(bill.value(QStringLiteral("Map4"))));
        txtMap5->setText(TextField(bill.value(QStringLiteral("Map5"))));
    }
    txtName->setText(TextField(bill.value(QStringLiteral("Name"))));
}

bool YearEndReportForm::faulted(const YearEndReport& report) {
    const OpenBillWalk& walk = report.walk();
    if (walk.ok)
        return false;
    if (!walk.faultText.isEmpty())
        MsgBox(walk.faultText, walk.faultTitle, MsgButtons::Ok, MsgIcon::Critical);
    else
        MsgBox(walk.error, windowTitle(), MsgButtons::Ok, MsgIcon::Critical);
    CloseScreen(this);
    return true;
}

void YearEndReportForm::cmdPrint_Click() {
    QSqlDatabase db = session().DbConnection;
    const std::optional<QString> device = AssignedPrinter(db, QString::fromLatin1(LetterPrinter));
    if (!device) {
        MsgBox(QString::fromLatin1(NoLetterPrinterText), QString::fromLatin1(PrinterErrorTitle),
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    const std::unique_ptr<YearEndReport> report =
        makeReport([this](const QSqlRecord& bill) { showProgress(bill); });
    const PrintResult printed = PrintStreamed(report->definition(), db, *device);
    if (!printed.ok)
        MsgBox(printed.error, QString::fromLatin1(PrinterErrorTitle), MsgButtons::Ok,
               MsgIcon::Critical);
    if (faulted(*report) || !printed.ok)
        return;
    const ReportDefinition& d = report->definition();
    if (!session().SilentPrint)
        MsgBox(d.completeText, d.completeTitle.isEmpty() ? d.caption : d.completeTitle);
}

void YearEndReportForm::cmdPrintPreview_Click() {
    QSqlDatabase db = session().DbConnection;
    const std::unique_ptr<YearEndReport> report =
        makeReport([this](const QSqlRecord& bill) { showProgress(bill); });
    const std::optional<Recording> pages = DrawForPreview(report->definition(), db);
    if (faulted(*report) || !pages)
        return;
    ShowPrintPreview(*pages, report->definition().caption, this, [this] { cmdPrint_Click(); });
}
