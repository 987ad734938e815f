#include "distribution/distribute_refunds.h"

#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "distribution/distribution_file.h"
#include "distribution/distribution_numbers.h"
#include "distribution/distribution_refunds.h"
#include "distribution/screen_parts.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSqlRecord>
#include <QVBoxLayout>
#include <vector>

namespace {

// Labelled fields in rows of a grid, two pairs a row.
void addPairs(QGridLayout* grid, QWidget* parent,
              const std::vector<std::pair<const char*, QWidget*>>& pairs) {
    int i = 0;
    for (const auto& [label, field] : pairs) {
        grid->addWidget(new QLabel(QString::fromLatin1(label), parent), i / 2, (i % 2) * 2);
        grid->addWidget(field, i / 2, (i % 2) * 2 + 1);
        ++i;
    }
}

} // namespace

// ---------------------------------------------------------------------------------------------
// The walk

DistributeRefundsScreen::DistributeRefundsScreen(const DistributionTables& tables,
                                                 const QString& name, QWidget* parent)
    : QWidget(parent), m_tables(tables) {
    setObjectName(name);
    setWindowTitle(QString::fromLatin1(DistributeRefundsTitle));
    buildScreen();
    QSqlDatabase db = session().DbConnection;
    m_taxYear = SessionTaxYear(db);
    m_key = NextRefundDistributionKey(db, m_tables, m_taxYear);
    txtDisbNum->setText(m_key.mid(4, 2));
    session().LastScreenName = objectName();
}

void DistributeRefundsScreen::buildScreen() {
    txtDisbNum = ShownField(this, QStringLiteral("txtDisbNum"), 2);
    txtControl = ShownField(this, QStringLiteral("txtControl"), 6);
    txtBillNo = ShownField(this, QStringLiteral("txtBillNo"), 5);
    txtAdjNo = ShownField(this, QStringLiteral("txtAdjNo"), 2);
    txtRecnum = ShownField(this, QStringLiteral("txtRecnum"), 12);
    txtRecNumID = ShownField(this, QStringLiteral("txtRecNumID"), 4);
    txtRefund = ShownField(this, QStringLiteral("txtRefund"), 20);
    txtName = ShownField(this, QStringLiteral("txtName"), 50);
    txtAddr1 = ShownField(this, QStringLiteral("txtAddr1"), 50);
    txtAddr2 = ShownField(this, QStringLiteral("txtAddr2"), 50);
    txtCity = ShownField(this, QStringLiteral("txtCity"), 25);
    txtState = ShownField(this, QStringLiteral("txtState"), 2);
    txtZipCode = ShownField(this, QStringLiteral("txtZipCode"), 5);
    txtZipCode2 = ShownField(this, QStringLiteral("txtZipCode2"), 4);
    txtDesc1 = ShownField(this, QStringLiteral("txtDesc1"), 50);
    cmDistributeRefunds = NamedButton(this, QStringLiteral("cmDistributeRefunds"),
                                      QStringLiteral("&Distribute Refunds"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

    QHBoxLayout* map = MapFields(this, m_tables.hasMap, &txtMap3, &txtMap4, &txtMap5);
    auto* grid = new QGridLayout;
    addPairs(grid, this,
             {{"Refund Distribution #:", txtDisbNum},
              {"Control #:", txtControl},
              {"Bill #:", txtBillNo},
              {"Adj #:", txtAdjNo},
              {"Receipt #:", txtRecnum},
              {"Refund #:", txtRecNumID},
              {"Refund:", txtRefund},
              {"Name:", txtName},
              {"Address:", txtAddr1},
              {"", txtAddr2},
              {"City:", txtCity},
              {"State:", txtState},
              {"Zip:", txtZipCode},
              {"", txtZipCode2},
              {"Reason:", txtDesc1}});
    if (m_tables.hasMap) {
        grid->addWidget(new QLabel(QStringLiteral("Map #:"), this), 8, 0);
        grid->addLayout(map, 8, 1, 1, 3);
    }
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmDistributeRefunds);
    buttons->addStretch();
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    if (!m_tables.hasMap)
        layout->addLayout(map);
    layout->addLayout(buttons);

    connect(cmDistributeRefunds, &QPushButton::clicked, this, [this] { walk(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void DistributeRefundsScreen::showRefund(const QSqlRecord& row) {
    auto show = [&row](QLineEdit* field, const char* column) {
        field->setText(TextField(row.value(QString::fromLatin1(column))));
    };
    show(txtControl, "Control");
    if (m_tables.hasMap) {
        show(txtMap3, "Map3");
        show(txtMap4, "Map4");
        show(txtMap5, "Map5");
    }
    show(txtBillNo, "BillNo");
    show(txtAdjNo, "AdjNo");
    show(txtRecnum, "RecNum");
    show(txtRecNumID, "RecNumID");
    txtRefund->setText(MoneyField(row.value(QStringLiteral("Refund"))).format(u"$###,###,##0.00"));
    show(txtName, "Name");
    show(txtAddr1, "Addr1");
    show(txtAddr2, "Addr2");
    show(txtCity, "City");
    show(txtState, "State");
    show(txtZipCode, "ZipCode");
    show(txtZipCode2, "ZipCode2");
    show(txtDesc1, "Desc1");
}

void DistributeRefundsScreen::walk() {
    const QString title = QString::fromLatin1(DistributeRefundsTitle);
    QSqlDatabase db = session().DbConnection;
    std::vector<QSqlRecord> refunds;
    QString error;
    if (!ReadUndistributedRefunds(db, m_tables, m_taxYear, &refunds, &error)) {
        MsgBox(QStringLiteral("The refunds could not be read: ") + error, title, MsgButtons::Ok,
               MsgIcon::Critical);
        return;
    }
    QPointer<DistributeRefundsScreen> self(this);
    for (const QSqlRecord& row : refunds) {
        showRefund(row);
        const MsgAnswer answer = MsgBox(QStringLiteral("Do you want to distribute this refund?"),
                                        title, MsgButtons::YesNoCancel, MsgIcon::Question);
        if (!self)
            return;
        if (answer == MsgAnswer::Yes) {
            const RefundToDistribute refund{TextField(row.value(QStringLiteral("RecNum"))),
                                            row.value(QStringLiteral("RecNumID")).toInt(), m_key};
            if (!DistributeRefund(db, m_tables, refund, &error)) {
                MsgBox(QStringLiteral("The refund could not be distributed, and nothing was "
                                      "written: ") +
                           error,
                       title, MsgButtons::Ok, MsgIcon::Critical);
                return;
            }
            MsgBox(QStringLiteral("Refund Distributed in Refund Distribution # ") +
                       txtDisbNum->text() + QLatin1Char('.'),
                   title, MsgButtons::Ok, MsgIcon::Information);
        } else if (answer == MsgAnswer::No) {
            MsgBox(QStringLiteral("Refund NOT Distributed!"), title, MsgButtons::Ok,
                   MsgIcon::Exclamation);
        } else {
            MsgBox(QStringLiteral("Refund Distribution CANCELLED!"), title, MsgButtons::Ok,
                   MsgIcon::Exclamation);
            return;
        }
        if (!self)
            return;
    }
    MsgBox(QStringLiteral("There are no more refunds to distribute."), title);
    if (self)
        CloseScreen(self);
}

frmREDistributeRefunds::frmREDistributeRefunds(QWidget* parent)
    : DistributeRefundsScreen(RealEstateTables(), QStringLiteral("frmREDistributeRefunds"),
                              parent) {}

frmPCDistributeRefunds::frmPCDistributeRefunds(QWidget* parent)
    : DistributeRefundsScreen(PerCapitaTables(), QStringLiteral("frmPCDistributeRefunds"), parent) {
}

// ---------------------------------------------------------------------------------------------
// The printed list

PrintRefundsForm::PrintRefundsForm(const DistributionTables& tables, const QString& name,
                                   QWidget* parent)
    : QWidget(parent), m_tables(tables) {
    setObjectName(name);
    setWindowTitle(QString::fromLatin1(PrintRefundsTitle));
    buildScreen();
    QSqlDatabase db = session().DbConnection;
    m_taxYear = SessionTaxYear(db);
    // The last refund distribution made, for a start.
    const int last = LastRefundDistribution(db, m_tables, m_taxYear);
    if (last > 0)
        txtDisbNum->setText(TwoDigits(last));
    session().LastScreenName = objectName();
}

void PrintRefundsForm::buildScreen() {
    txtDisbNum = NamedField(this, QStringLiteral("txtDisbNum"), 2);
    txtRecnum = ShownField(this, QStringLiteral("txtRecnum"), 12);
    txtRecNumID = ShownField(this, QStringLiteral("txtRecNumID"), 4);
    txtControl = ShownField(this, QStringLiteral("txtControl"), 6);
    txtName = ShownField(this, QStringLiteral("txtName"), 50);
    QHBoxLayout* buttons = ReportButtons(this, &cmdPrint, &cmdPrintPreview, &cmdExit);

    QHBoxLayout* map = MapFields(this, m_tables.hasMap, &txtMap3, &txtMap4, &txtMap5);
    auto* grid = new QGridLayout;
    addPairs(grid, this,
             {{"Refund Distribution #:", txtDisbNum},
              {"Receipt #:", txtRecnum},
              {"Refund #:", txtRecNumID},
              {"Control #:", txtControl},
              {"Name:", txtName}});
    grid->addLayout(map, 2, 3);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    connect(cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(cmdPrintPreview, &QPushButton::clicked, this, [this] { cmdPrintPreview_Click(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void PrintRefundsForm::run(bool print) {
    const std::optional<int> number = ParseWholeNumber(txtDisbNum->text());
    if (!number) {
        MsgBox(QStringLiteral("Distribution Number Must Be Numeric"),
               QStringLiteral("Enter Distribution Number"), MsgButtons::Ok, MsgIcon::Exclamation);
        txtDisbNum->setFocus(Qt::OtherFocusReason);
        return;
    }
    txtDisbNum->setText(TwoDigits(*number));
    QSqlDatabase db = session().DbConnection;
    // Number 00 is where the refunds not yet distributed stand: no distribution of its own.
    if (*number < 1 || CountDistributedRefunds(db, m_tables, m_taxYear + TwoDigits(*number)) == 0) {
        MsgBox(QStringLiteral("There are no refunds to print."),
               QString::fromLatin1(PrintRefundsTitle));
        CloseScreen(this);
        return;
    }
    RefundReportOptions options;
    options.number = *number;
    options.taxYear = m_taxYear;
    options.caption = windowTitle();
    options.progress = [this](const QSqlRecord& row) {
        ShowColumns(row, {{txtRecnum, "RecNum"},
                          {txtRecNumID, "RecNumID"},
                          {txtControl, "Control"},
                          {txtName, "Name"}});
        if (m_tables.hasMap)
            ShowColumns(row, {{txtMap3, "Map3"}, {txtMap4, "Map4"}, {txtMap5, "Map5"}});
    };
    RefundDistributionReport report(db, m_tables, std::move(options));
    PrintOrPreview(report.definition(), this, print, db);
}

void PrintRefundsForm::cmdPrint_Click() {
    run(true);
}

void PrintRefundsForm::cmdPrintPreview_Click() {
    run(false);
}

frmREPrintDistributionRefunds::frmREPrintDistributionRefunds(QWidget* parent)
    : PrintRefundsForm(RealEstateTables(), QStringLiteral("frmREPrintDistributionRefunds"),
                       parent) {}

frmPCPrintDistributionRefunds::frmPCPrintDistributionRefunds(QWidget* parent)
    : PrintRefundsForm(PerCapitaTables(), QStringLiteral("frmPCPrintDistributionRefunds"), parent) {
}
