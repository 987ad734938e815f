#include "bills/mailing_labels.h"

#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCoreApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QVBoxLayout>

namespace {

const char* const LabelsTitle = "Print Labels";
const char* const NumberTitle = "Select Number Of Labels";
const char* const StartTitle = "Select Starting Label Number";

QString text(const QSqlRecord& r, const char* column) {
    return TextField(r.value(QLatin1String(column)));
}
bool blank(const QSqlRecord& r, const char* column) {
    return text(r, column).trimmed().isEmpty();
}
Money sum(const QSqlRecord& r, std::initializer_list<const char*> columns) {
    Money total;
    for (const char* c : columns)
        total += MoneyField(r.value(QLatin1String(c)));
    return total;
}

void exclaim(const QString& message, const char* title) {
    MsgBox(message, QLatin1String(title), MsgButtons::Ok, MsgIcon::Exclamation);
}

} // namespace

bool LabelPosition::advance() {
    ++m_counter;
    if (++m_column > 3) {
        m_column = 1;
        m_top += LabelRowPitch;
    }
    if (m_counter % LabelsPerSheet == 0) {
        m_column = 1;
        m_top = LabelFirstTop;
        return true;
    }
    return false;
}

QString LabelQuery(Duplicate roll, bool unpaidOnly, bool exempts) {
    const bool re = roll == Duplicate::RealEstate;
    QString sql = re ? QStringLiteral("SELECT * FROM TCMaster WHERE BillNo >= ?")
                     : QStringLiteral("SELECT * FROM PCMaster WHERE BillNo >= ?");
    // A flag never set (Null) is a blank flag: such a bill is not exempt.
    if (!exempts)
        sql += QStringLiteral(" AND ifnull(Exempt, ' ') <> 'E' AND ifnull(Exempt, ' ') <> 'N'");
    if (unpaidOnly)
        sql += re ? QStringLiteral(" AND (CPayFlag = ' ' OR TPayFlag = ' ' OR SPayFlag = ' ' OR "
                                   "(SPayFlag = 'I' AND (Pay1Flag = ' ' OR Pay2Flag = ' ' OR "
                                   "Pay3Flag = ' ')))")
                  : QStringLiteral(" AND (CPayFlag = ' ' OR TPayFlag = ' ' OR SPayFlag = ' ')");
    return sql + QStringLiteral(" ORDER BY BillNo");
}

bool HasOpenMoney(Duplicate roll, const QSqlRecord& bill) {
    const Money zero;
    if (roll == Duplicate::PerCapita)
        return (blank(bill, "CPayFlag") && sum(bill, {"CPerCapita", "COccupation"}) > zero) ||
               (blank(bill, "TPayFlag") && sum(bill, {"TPerCapita", "TOccupation"}) > zero) ||
               (blank(bill, "SPayFlag") && sum(bill, {"SPerCapita", "SOccupation"}) > zero);
    const bool installments =
        text(bill, "SPayFlag").trimmed().toUpper() == QLatin1String("I") &&
        (blank(bill, "Pay1Flag") || blank(bill, "Pay2Flag") || blank(bill, "Pay3Flag"));
    return (blank(bill, "CPayFlag") && sum(bill, {"County", "Library", "C1Face"}) > zero) ||
           (blank(bill, "TPayFlag") && sum(bill, {"Twp", "S1Face", "S2Face", "S3Face"}) > zero) ||
           (blank(bill, "SPayFlag") && sum(bill, {"School", "Sch1Face"}) > zero) ||
           (installments && sum(bill, {"Payment1", "Payment2", "Payment3"}) > zero);
}

QStringList LabelLines(const QSqlRecord& bill) {
    QStringList lines{text(bill, "Name").trimmed()};
    for (const char* column : {"CoOwner", "Addr1", "Addr2"})
        if (!blank(bill, column))
            lines << text(bill, column).trimmed();
    lines << (text(bill, "City").trimmed() + QLatin1Char(' ') + text(bill, "State").trimmed() +
              QStringLiteral("  ") + text(bill, "ZipCode").trimmed() + QLatin1Char(' ') +
              text(bill, "ZipCode2").trimmed())
                 .trimmed();
    return lines;
}

LabelRunResult RunMailingLabels(QSqlDatabase db, const LabelRun& run, ReportSurface& surface,
                                const std::function<void(int)>& progress) {
    LabelRunResult result;
    LabelPosition position;
    // A partly used sheet: the labels gone already are passed over.
    for (int i = 1; i < run.startPosition; ++i)
        position.advance();
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(LabelQuery(run.roll, run.unpaidOnly, run.exempts));
    // A blank start takes every bill (a null value would take none).
    q.addBindValue(run.startBill.isNull() ? QStringLiteral("") : run.startBill);
    if (!q.exec()) {
        result.stopped = true;
        result.error = q.lastError().text();
        return result;
    }
    while (result.printed < run.labels && q.next()) {
        QSqlRecord bill = q.record();
        if (text(bill, "CAddrFlag").trimmed().toUpper() == QLatin1String("A") ||
            text(bill, "AdjFlag").trimmed().toUpper() == QLatin1String("A")) {
            BillNow now = ReadBillAsItStands(db, run.roll, text(bill, "BillNo"));
            if (!now.found()) {
                result.stopped = true;
                result.bill = std::move(now);
                return result;
            }
            bill = now.bill;
        }
        if (run.unpaidOnly && !HasOpenMoney(run.roll, bill))
            continue;
        const QPointF at = position.place();
        surface.CurrentY = at.y();
        for (const QString& line : LabelLines(bill)) {
            surface.CurrentX = at.x();
            surface.Print(line);
        }
        ++result.printed;
        if (position.advance())
            surface.NewPage();
        if (progress)
            progress(result.printed);
    }
    return result;
}

MailingLabelsForm::MailingLabelsForm(Duplicate roll, const QString& name, const QString& caption,
                                     QWidget* parent)
    : QWidget(parent), m_roll(roll) {
    setObjectName(name);
    setWindowTitle(caption);
    optPrintAll = new QRadioButton(QStringLiteral("Print All Taxpayers"), this);
    optPrintAll->setObjectName(QStringLiteral("optPrintAll"));
    optPrintUnpaids = new QRadioButton(QStringLiteral("Print Unpaid Taxpayers"), this);
    optPrintUnpaids->setObjectName(QStringLiteral("optPrintUnpaids"));
    auto* group = new QButtonGroup(this);
    group->addButton(optPrintAll);
    group->addButton(optPrintUnpaids);
    optPrintAll->setChecked(true);
    chkPrintExempts = new QCheckBox(QStringLiteral("Print Exempt Bills"), this);
    chkPrintExempts->setObjectName(QStringLiteral("chkPrintExempts"));
    txtBillNo = NamedField(this, QStringLiteral("txtBillNo"), 5);
    txtNumberOfLabels = NamedField(this, QStringLiteral("txtNumberOfLabels"), 6);
    txtStartLabelNumber = NamedField(this, QStringLiteral("txtStartLabelNumber"), 2);
    txtStartLabelNumber->setText(QStringLiteral("1"));
    txtRecords = ShownField(this, QStringLiteral("txtRecords"));
    cmdPrint = NamedButton(this, QStringLiteral("cmdPrint"), QStringLiteral("Print Labels"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Starting Bill #:"), txtBillNo);
    form->addRow(QStringLiteral("Number Of Labels:"), txtNumberOfLabels);
    form->addRow(QStringLiteral("Starting Label #:"), txtStartLabelNumber);
    form->addRow(QStringLiteral("Printed:"), txtRecords);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(optPrintAll);
    layout->addWidget(optPrintUnpaids);
    layout->addWidget(chkPrintExempts);
    layout->addLayout(form);
    layout->addLayout(buttons);

    connect(cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void MailingLabelsForm::cmdPrint_Click() {
    QSqlDatabase db = session().DbConnection;
    const QString count = txtNumberOfLabels->text().trimmed();
    if (count.isEmpty()) {
        exclaim(QStringLiteral("Number Of Bills Must Be Specified"), NumberTitle);
        txtNumberOfLabels->setFocus();
        return;
    }
    bool numeric = false;
    const double labels = count.toDouble(&numeric);
    if (!numeric) {
        exclaim(QStringLiteral("Number Of Bills Must Be Numeric"), NumberTitle);
        txtNumberOfLabels->setFocus();
        return;
    }
    const QString startText = txtStartLabelNumber->text().trimmed();
    if (startText.isEmpty()) {
        exclaim(QStringLiteral("Starting Label Number Must Be Specified"), StartTitle);
        txtStartLabelNumber->setFocus();
        return;
    }
    bool whole = false;
    const int start = startText.toInt(&whole);
    if (!whole || start < 1 || start > LabelsPerSheet) {
        exclaim(QStringLiteral("Starting Label Number Must Be From 1 To 30"), StartTitle);
        txtStartLabelNumber->setFocus();
        return;
    }
    const QString typed = txtBillNo->text().trimmed();
    if (!typed.isEmpty()) {
        bool digits = false;
        const double n = typed.toDouble(&digits);
        txtBillNo->setText(digits ? PadFormat(n, "####0") : typed.toUpper().rightJustified(5));
    }
    const std::optional<QString> device = AssignedPrinter(db, QString::fromLatin1(LetterPrinter));
    if (!device) {
        MsgBox(QStringLiteral("There is currently no letter printer assigned."),
               QStringLiteral("Printer Error"), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }

    LabelRun run;
    run.roll = m_roll;
    run.unpaidOnly = optPrintUnpaids->isChecked();
    run.exempts = chkPrintExempts->isChecked();
    run.startBill = txtBillNo->text();
    run.labels = int(std::clamp(labels, 0.0, 2.0e9));
    run.startPosition = start;

    ReportSurface surface(PageFormat{PaperSize::Letter, PageOrientation::Portrait});
    surface.FontName = QStringLiteral("Arial");
    surface.FontSize = 10;
    surface.FontBold = false;
    PrintJobStream job(windowTitle(), surface.format(), *device);
    job.attach(surface);
    txtRecords->clear();
    const LabelRunResult result = RunMailingLabels(db, run, surface, [this](int printed) {
        txtRecords->setText(QString::number(printed));
        if (printed % 30 == 0)
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 10);
    });
    surface.NewPage();
    surface.EndDoc();
    const PrintResult sent = job.finish();
    if (!sent.ok)
        MsgBox(sent.error, QStringLiteral("Printer Error"), MsgButtons::Ok, MsgIcon::Critical);
    if (result.stopped) {
        if (!result.error.isEmpty())
            MsgBox(result.error, QLatin1String(LabelsTitle), MsgButtons::Ok, MsgIcon::Critical);
        else
            CheckBillIntegrity(result.bill);
        return;
    }
    MsgBox(QString::number(result.printed) + QStringLiteral(" Labels Printed."),
           QLatin1String(LabelsTitle));
}
