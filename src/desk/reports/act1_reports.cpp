#include "desk/reports/act1_reports.h"

#include "core/common_values.h"
#include "core/named_widgets.h"
#include "core/session.h"
#include "core/tax_database.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>

namespace {

// X positions of the detail line, in twips (portrait).
constexpr double BillX = 0;
constexpr double ControlX = 800;
constexpr double MapX = 1700;
constexpr double NameX = 3300;
constexpr double FirstAmountEdge = 8100;
constexpr double AmountWidth = 1150;

QString taxYearOf(QSqlDatabase db) {
    if (!session().TaxYear.isEmpty())
        return session().TaxYear.left(4);
    QSqlQuery q(db);
    if (q.exec(
            QStringLiteral("SELECT TaxYear FROM Millfile WHERE District = '00' AND Ward = '0'")) &&
        q.next())
        return TextField(q.value(0)).trimmed().left(4);
    return QString();
}

QString fiscalYear(QSqlDatabase db) {
    const QString year = taxYearOf(db);
    return year + QLatin1Char('-') + QString::number(year.toInt() + 1) +
           QStringLiteral(" Fiscal Year");
}

QString mapOf(const BillNow& bill) {
    return bill.text("Map3") + QLatin1Char('-') + bill.text("Map4") + QLatin1Char('-') +
           bill.text("Map5");
}

// The bill as it stands, or nothing after the integrity message of a half-done change.
std::optional<BillNow> billNow(QSqlDatabase db, const QString& billNo) {
    const BillNow bill = ReadBillAsItStands(db, Duplicate::RealEstate, billNo);
    if (!CheckBillIntegrity(bill))
        return std::nullopt;
    return bill;
}

qint64 countOf(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    return q.exec(sql) && q.next() ? q.value(0).toLongLong() : 0;
}

// "District " and the collector's district and ward, above the column captions.
void districtLine(ReportPage& page) {
    ReportSurface& s = page.surface();
    s.FontBold = false;
    s.CurrentX = 0;
    s.Print(QStringLiteral("District ") + page.lookups().district + page.lookups().ward);
}

} // namespace

double LatePayerFigures::usingPercent() const {
    return eligible == 0 ? 0.0 : 100.0 * double(installmentPayers) / double(eligible);
}

double LatePayerFigures::latePercent() const {
    return installmentPayers == 0 ? 0.0 : 100.0 * double(payers.size()) / double(installmentPayers);
}

LatePayerFigures GatherLatePayers(QSqlDatabase db,
                                  const std::function<void(const QSqlRecord&)>& progress) {
    LatePayerFigures f;
    const ReportLookups lookups = ReportLookups::read(db);
    {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT BillSchool, Payment1Date, Payment2Date, Payment3Date, "
                                 "LatePayment1Date, LatePayment2Date, LatePayment3Date FROM "
                                 "Millfile WHERE District = ? AND Ward = ?"));
        q.addBindValue(lookups.district);
        q.addBindValue(lookups.ward);
        if (q.exec() && q.next()) {
            const bool early = TextField(q.value(0)).trimmed() == u"E";
            for (int i = 0; i < 3; ++i)
                f.dueDates[std::size_t(i)] = DateField(q.value(early ? 1 + i : 4 + i)).addDays(10);
        }
    }
    QSqlQuery bills(db);
    bills.setForwardOnly(true);
    if (!bills.exec(QStringLiteral(
            "SELECT BillNo, Pay1Flag, Pay2Flag, Pay3Flag FROM TCMaster WHERE SPayFlag = 'I' ORDER "
            "BY BillNo")))
        return f;
    QSqlQuery receipts(db);
    receipts.prepare(QStringLiteral("SELECT RDate, Pay1Flag, Pay2Flag, Pay3Flag FROM TCReceipt "
                                    "WHERE BillNo = ? AND SPayFlag <> ' ' AND VDate IS NULL ORDER "
                                    "BY Recnum"));
    while (bills.next()) {
        const QString billNo = TextField(bills.value(0));
        LatePayer payer;
        bool late = false;
        bool allPaid = true;
        for (int i = 0; i < 3; ++i) {
            // An installment never paid is late.
            if (FlagField(bills.value(1 + i)) == u" ") {
                payer.late[std::size_t(i)] = true;
                late = true;
                allPaid = false;
            }
        }
        if (allPaid) {
            receipts.addBindValue(billNo);
            if (receipts.exec())
                while (receipts.next()) {
                    const QDate received = DateField(receipts.value(0));
                    for (int i = 0; i < 3; ++i) {
                        const QDate due = f.dueDates[std::size_t(i)];
                        if (FlagField(receipts.value(1 + i)) == u"P" && due.isValid() &&
                            received > due) {
                            payer.late[std::size_t(i)] = true;
                            late = true;
                        }
                    }
                }
        }
        if (!late)
            continue;
        const std::optional<BillNow> bill = billNow(db, billNo);
        if (!bill)
            continue;
        if (progress)
            progress(bill->bill);
        payer.billNo = billNo;
        payer.control = bill->text("Control");
        payer.map = mapOf(*bill);
        payer.name = bill->text("Name");
        for (int i = 0; i < 3; ++i)
            payer.payments[std::size_t(i)] =
                bill->money(QStringLiteral("Payment%1").arg(i + 1).toLatin1().constData());
        f.payers.push_back(payer);
    }
    f.eligible = countOf(db, QStringLiteral("SELECT count(*) FROM TCMaster WHERE HFFlag = 'A'"));
    f.installmentPayers =
        countOf(db, QStringLiteral("SELECT count(*) FROM TCMaster WHERE SPayFlag = 'I'"));
    return f;
}

ReportDefinition LatePayerReport(QSqlDatabase db,
                                 const std::function<void(const QSqlRecord&)>& progress) {
    ReportDefinition d;
    d.caption = QStringLiteral("Print Ineligible Act 1 Report");
    d.completeTitle = QStringLiteral("Print Receipt Report");
    d.margin = 1000;
    d.print = d.preview = {PaperSize::Letter, PageOrientation::Portrait};
    const ReportLookups lookups = ReportLookups::read(db);
    d.titles = {QStringLiteral("School Installment Late Payer Report"), lookups.twpBoro,
                QStringLiteral("(Denial Of Priveleges For Next Year)"), fiscalYear(db)};
    d.captions = [](ReportPage& page) {
        districtLine(page);
        ReportSurface& s = page.surface();
        for (const auto& [x, caption] : {std::pair{BillX, "Bill #"},
                                         {ControlX, "Control #"},
                                         {MapX, "Map"},
                                         {NameX, "Name"}}) {
            s.CurrentX = x;
            s.Write(QString::fromLatin1(caption));
        }
        for (int i = 0; i < 3; ++i)
            s.WriteRight(FirstAmountEdge + i * AmountWidth, QStringLiteral("Payment%1").arg(i + 1));
        s.Print();
    };
    d.body = [db, progress](ReportPage& page) {
        const LatePayerFigures f = GatherLatePayers(db, progress);
        ReportSurface& s = page.surface();
        for (const LatePayer& p : f.payers) {
            page.startRow();
            page.text(BillX, p.billNo);
            page.text(ControlX, p.control);
            page.text(MapX, p.map);
            page.text(NameX, p.name.left(28));
            for (std::size_t i = 0; i < 3; ++i) {
                const double edge = FirstAmountEdge + double(i) * AmountWidth;
                page.money(edge, p.payments[i], u"$###,###.00");
                // A late installment is marked beside its amount.
                if (p.late[i])
                    page.text(edge + 20, QStringLiteral("*"));
            }
            page.nextLine();
        }
        // The statistics, in a box.
        page.startRow();
        page.nextLine();
        const double top = s.CurrentY;
        page.bold(true);
        page.text(200, QStringLiteral(" Act 1 Installment Payment Statistics"));
        page.nextLine(2);
        page.bold(false);
        auto stat = [&page](const QString& label, const QString& value) {
            page.text(400, label + value);
            page.nextLine();
        };
        auto percent = [](double value) {
            return FormatNumber(value, u"##0.00") + QLatin1Char('%');
        };
        stat(QStringLiteral("Total Eligible Act 1 H/F Properties: "), QString::number(f.eligible));
        stat(QStringLiteral("Number Paying By Installment: "),
             QString::number(f.installmentPayers));
        stat(QStringLiteral("% Using Installments: "), percent(f.usingPercent()));
        stat(QStringLiteral("Total Late Payers: "), QString::number(qint64(f.payers.size())));
        stat(QStringLiteral("% Late Payers: "), percent(f.latePercent()));
        s.Box(100, top - 60, 6000, s.CurrentY + 60);
        return true;
    };
    return d;
}

ReportDefinition ZeroAmountReport(QSqlDatabase db,
                                  const std::function<void(const QSqlRecord&)>& progress) {
    ReportDefinition d;
    d.caption = QStringLiteral("Print Act 1 Zero Amounts");
    d.completeTitle = QStringLiteral("Print Act 1 Zero Values");
    d.margin = 1000;
    d.print = d.preview = {PaperSize::Letter, PageOrientation::Portrait};
    const ReportLookups lookups = ReportLookups::read(db);
    d.titles = {QStringLiteral("Act 1 Zero Amount Properties As Billed"), lookups.twpBoro,
                fiscalYear(db)};
    d.captions = [](ReportPage& page) {
        districtLine(page);
        ReportSurface& s = page.surface();
        for (const auto& [x, caption] : {std::pair{BillX, "Bill #"},
                                         {ControlX, "Control #"},
                                         {MapX, "Map"},
                                         {NameX, "Name"}}) {
            s.CurrentX = x;
            s.Write(QString::fromLatin1(caption));
        }
        s.WriteRight(FirstAmountEdge + AmountWidth, QStringLiteral("Prev Assessment"));
        s.WriteRight(FirstAmountEdge + 2 * AmountWidth + 300, QStringLiteral("Prev Tax"));
        s.Print();
    };
    d.body = [db, progress](ReportPage& page) {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (!q.exec(QStringLiteral("SELECT BillNo, AssLand, AssImpr, School, ExcFace FROM "
                                   "TCMaster WHERE School = 0 AND BillNo < 'A' ORDER BY BillNo")))
            return false;
        qint64 count = 0;
        page.ensureHeader();
        while (q.next()) {
            const QString billNo = TextField(q.value(0));
            const std::optional<BillNow> bill = billNow(db, billNo);
            if (!bill)
                continue;
            if (progress)
                progress(bill->bill);
            page.startRow();
            page.text(BillX, billNo);
            page.text(ControlX, bill->text("Control"));
            page.text(MapX, mapOf(*bill));
            page.text(NameX, bill->text("Name").left(28));
            page.count(FirstAmountEdge + AmountWidth,
                       q.value(1).toLongLong() + q.value(2).toLongLong(), u"###,###,##0");
            page.money(FirstAmountEdge + 2 * AmountWidth + 300,
                       MoneyField(q.value(3)) + MoneyField(q.value(4)), u"$###,###,###.00");
            page.nextLine();
            ++count;
        }
        page.startRow();
        page.nextLine();
        page.bold(true);
        page.text(0, QStringLiteral("Total Parcels: ") + QString::number(count));
        page.nextLine();
        page.bold(false);
        return true;
    };
    return d;
}

Act1ReportForm::Act1ReportForm(bool zeroAmounts, const QString& name, QWidget* parent)
    : QWidget(parent), m_zeroAmounts(zeroAmounts) {
    setObjectName(name);
    setWindowTitle(zeroAmounts ? QStringLiteral("Print Act 1 Zero Amounts")
                               : QStringLiteral("Print Ineligible Act 1 Report"));
    txtControl = ShownField(this, QStringLiteral("txtControl"), 6);
    txtMap3 = ShownField(this, QStringLiteral("txtMap3"), 8);
    txtMap4 = ShownField(this, QStringLiteral("txtMap4"), 6);
    txtMap5 = ShownField(this, QStringLiteral("txtMap5"), 9);
    txtName = ShownField(this, QStringLiteral("txtName"), 50);
    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(QStringLiteral("Control #:"), this), 0, 0);
    grid->addWidget(txtControl, 0, 1);
    auto* map = new QHBoxLayout;
    map->addWidget(txtMap3);
    map->addWidget(txtMap4);
    map->addWidget(txtMap5);
    grid->addLayout(map, 1, 1);
    grid->addWidget(new QLabel(QStringLiteral("Name:"), this), 2, 0);
    grid->addWidget(txtName, 2, 1);
    auto* row = new QHBoxLayout;
    buttons = MakeReportButtons(this, row);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(row);
    connect(buttons.cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(buttons.cmdPrintPreview, &QPushButton::clicked, this,
            [this] { cmdPrintPreview_Click(); });
    session().LastScreenName = objectName();
}

ReportDefinition Act1ReportForm::report() {
    QSqlDatabase db = session().DbConnection;
    QPointer<Act1ReportForm> self(this);
    auto progress = [self](const QSqlRecord& r) {
        if (!self)
            return;
        self->txtControl->setText(TextField(r.value(QStringLiteral("Control"))));
        self->txtMap3->setText(TextField(r.value(QStringLiteral("Map3"))));
        self->txtMap4->setText(TextField(r.value(QStringLiteral("Map4"))));
        self->txtMap5->setText(TextField(r.value(QStringLiteral("Map5"))));
        self->txtName->setText(TextField(r.value(QStringLiteral("Name"))));
    };
    return m_zeroAmounts ? ZeroAmountReport(db, progress) : LatePayerReport(db, progress);
}

void Act1ReportForm::cmdPrint_Click() {
    PrintReport(report());
}

void Act1ReportForm::cmdPrintPreview_Click() {
    QPointer<Act1ReportForm> self(this);
    PreviewReport(report(), this, [self] {
        if (self)
            self->cmdPrint_Click();
    });
}

frmREPrintIneligibleAct1::frmREPrintIneligibleAct1(QWidget* parent)
    : Act1ReportForm(false, QStringLiteral("frmREPrintIneligibleAct1"), parent) {}

frmREPrintAct1ZeroAmounts::frmREPrintAct1ZeroAmounts(QWidget* parent)
    : Act1ReportForm(true, QStringLiteral("frmREPrintAct1ZeroAmounts"), parent) {}
