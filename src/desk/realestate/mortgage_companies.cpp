#include "desk/realestate/mortgage_companies.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/mortgage_update.h"
#include "reports/print_output.h"
#include "reports/report_frame.h"

#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QVBoxLayout>

namespace {

// A company's file is a few hundred records; anything far beyond is not one.
constexpr qint64 LargestFile = 16 * 1024 * 1024;

const char* const ChooserFilter = "Mortgage Company File (*.txt *.TXT);;All Files (*)";

QString shownMoney(Money amount) {
    return amount.format(u"$###,###,###.00");
}

// A caption and its field in a grid row.
void addRow(QGridLayout* grid, int row, int column, const QString& caption, QWidget* field) {
    grid->addWidget(new QLabel(caption), row, column);
    grid->addWidget(field, row, column + 1);
}

// The file's bytes, or nothing when it cannot be read as a file.
std::optional<QByteArray> readFile(const QString& path) {
    const QFileInfo info(path);
    if (!info.isFile() || info.size() > LargestFile)
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return bytes;
}

} // namespace

frmREMortgageCompanies::frmREMortgageCompanies(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmREMortgageCompanies"));
    setWindowTitle(QStringLiteral("Diskette Update From Mortgage Companies"));

    auto field = [this](const char* name) { return ShownField(this, QString::fromLatin1(name)); };
    txtBillNo = field("txtBillNo");
    txtAdjNo = field("txtAdjNo");
    txtDate = field("txtDate");
    txtAmount = field("txtAmount");
    txtPayor = field("txtPayor");
    txtChecknum = field("txtChecknum");
    txtControl = field("txtControl");
    txtName = field("txtName");
    txtAddr1 = field("txtAddr1");
    txtAddr2 = field("txtAddr2");
    txtCity = field("txtCity");
    txtState = field("txtState");
    txtZipCode = field("txtZipCode");
    txtMap3 = field("txtMap3");
    txtMap4 = field("txtMap4");
    txtMap5 = field("txtMap5");
    txtDesc1 = field("txtDesc1");
    txtDesc2 = field("txtDesc2");
    txtAssLand = field("txtAssLand");
    txtAssImpr = field("txtAssImpr");
    txtAssTotal = field("txtAssTotal");
    txtCounty = field("txtCounty");
    txtLibrary = field("txtLibrary");
    txtC1Face = field("txtC1Face");
    txtTwp = field("txtTwp");
    for (int i = 0; i < 3; ++i)
        txtSpecFace[i] = ShownField(this, QStringLiteral("txtSpecFace(%1)").arg(i + 1));
    txtCTotal = field("txtCTotal");
    txtTTotal = field("txtTTotal");
    txtTotal = field("txtTotal");

    auto* record = new QGroupBox(QStringLiteral("Payment"), this);
    auto* rg = new QGridLayout(record);
    addRow(rg, 0, 0, QStringLiteral("Bill #:"), txtBillNo);
    addRow(rg, 0, 2, QStringLiteral("Adj #:"), txtAdjNo);
    addRow(rg, 0, 4, QStringLiteral("Date:"), txtDate);
    addRow(rg, 1, 0, QStringLiteral("Payor:"), txtPayor);
    addRow(rg, 1, 2, QStringLiteral("Check #:"), txtChecknum);
    addRow(rg, 1, 4, QStringLiteral("Amount:"), txtAmount);

    auto* bill = new QGroupBox(QStringLiteral("Property Owner"), this);
    auto* bg = new QGridLayout(bill);
    addRow(bg, 0, 0, QStringLiteral("Control #:"), txtControl);
    addRow(bg, 1, 0, QStringLiteral("Name:"), txtName);
    addRow(bg, 2, 0, QStringLiteral("Address:"), txtAddr1);
    addRow(bg, 3, 0, QString(), txtAddr2);
    auto* city = new QHBoxLayout;
    city->addWidget(txtCity, 3);
    city->addWidget(txtState, 1);
    city->addWidget(txtZipCode, 1);
    bg->addWidget(new QLabel(QStringLiteral("City/St/Zip:")), 4, 0);
    bg->addLayout(city, 4, 1);
    auto* map = new QHBoxLayout;
    for (QLineEdit* m : {txtMap3, txtMap4, txtMap5})
        map->addWidget(m);
    bg->addWidget(new QLabel(QStringLiteral("Map #:")), 5, 0);
    bg->addLayout(map, 5, 1);
    addRow(bg, 6, 0, QStringLiteral("Description:"), txtDesc1);
    addRow(bg, 7, 0, QString(), txtDesc2);
    auto* assess = new QHBoxLayout;
    for (QLineEdit* a : {txtAssLand, txtAssImpr, txtAssTotal})
        assess->addWidget(a);
    bg->addWidget(new QLabel(QStringLiteral("Land/Impr/Total:")), 8, 0);
    bg->addLayout(assess, 8, 1);

    auto* amounts = new QGroupBox(QStringLiteral("Amounts"), this);
    auto* ag = new QGridLayout(amounts);
    int row = 0;
    addRow(ag, row++, 0, QStringLiteral("County:"), txtCounty);
    addRow(ag, row++, 0, QStringLiteral("Library:"), txtLibrary);
    addRow(ag, row++, 0, QStringLiteral("County Special:"), txtC1Face);
    addRow(ag, row++, 0, QStringLiteral("County Total:"), txtCTotal);
    addRow(ag, row++, 0, QStringLiteral("Twp/Boro/City:"), txtTwp);
    for (int i = 0; i < 3; ++i)
        addRow(ag, row++, 0, QStringLiteral("Special %1:").arg(i + 1), txtSpecFace[i]);
    addRow(ag, row++, 0, QStringLiteral("Twp/Boro/City Total:"), txtTTotal);
    addRow(ag, row++, 0, QStringLiteral("Total:"), txtTotal);

    auto* middle = new QHBoxLayout;
    middle->addWidget(bill, 2);
    middle->addWidget(amounts, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(record);
    layout->addLayout(middle);
}

QWidget* frmREMortgageCompanies::open() {
    QPointer<frmREMortgageCompanies> screen = new frmREMortgageCompanies;
    if (ScreenHost* host = screenHost())
        host->showScreen(screen, false);
    else
        screen->show();
    screen->run();
    if (screen)
        CloseScreen(screen);
    return nullptr;
}

void frmREMortgageCompanies::showRecord(const MortgageRecord& record) {
    for (QLineEdit* f : findChildren<QLineEdit*>())
        f->clear();
    txtDate->setText(Clock::today().toString(QStringLiteral("MM/dd/yyyy")));
    txtBillNo->setText(record.billNo);
    txtChecknum->setText(record.checknum);
    txtPayor->setText(record.payor);
    txtAmount->setText(shownMoney(record.amount));
}

void frmREMortgageCompanies::showBill(const BillNow& bill) {
    txtAdjNo->setText(bill.adjNo > 0 ? QString::number(bill.adjNo) : QString());
    txtControl->setText(bill.text("Control"));
    txtName->setText(bill.text("Name"));
    txtAddr1->setText(bill.text("Addr1"));
    txtAddr2->setText(bill.text("Addr2"));
    txtCity->setText(bill.text("City"));
    txtState->setText(bill.text("State"));
    txtZipCode->setText(bill.text("ZipCode"));
    txtMap3->setText(bill.text("Map3"));
    txtMap4->setText(bill.text("Map4"));
    txtMap5->setText(bill.text("Map5"));
    txtDesc1->setText(bill.text("Desc1"));
    txtDesc2->setText(bill.text("Desc2"));
    const qint64 land = bill.bill.value("AssLand").toLongLong();
    const qint64 impr = bill.bill.value("AssImpr").toLongLong();
    txtAssLand->setText(QString::number(land));
    txtAssImpr->setText(QString::number(impr));
    txtAssTotal->setText(QString::number(land + impr));
}

void frmREMortgageCompanies::showPeriod(const PeriodAmounts& amounts) {
    txtCounty->setText(shownMoney(amounts.line[LineCounty].amount));
    txtLibrary->setText(shownMoney(amounts.line[LineLibrary].amount));
    txtC1Face->setText(shownMoney(amounts.line[LineCountySpecial].amount));
    txtTwp->setText(shownMoney(amounts.line[LineTwp].amount));
    for (int i = 0; i < 3; ++i)
        txtSpecFace[i]->setText(shownMoney(amounts.line[LineSpecial1 + i].amount));
    txtCTotal->setText(shownMoney(amounts.countyTotal()));
    txtTTotal->setText(shownMoney(amounts.twpTotal()));
    txtTotal->setText(shownMoney(MortgageTotal(amounts)));
}

void frmREMortgageCompanies::run() {
    const QString askTitle = QString::fromLatin1(MortgageQuestionTitle);
    const QString title = QString::fromLatin1(MortgageUpdateTitle);
    QSqlDatabase db = session().DbConnection;

    if (MsgBox(QString::fromLatin1(MortgageQuestionText), askTitle, MsgButtons::OkCancel,
               MsgIcon::Exclamation) != MsgAnswer::Ok) {
        MsgBox(QString::fromLatin1(MortgageAbortedText), askTitle, MsgButtons::Ok,
               MsgIcon::Information);
        return;
    }
    const std::optional<QString> device = AssignedPrinter(db, QString::fromLatin1(LetterPrinter));
    if (!device) {
        MsgBox(QString::fromLatin1(NoLetterPrinterText), QString::fromLatin1(PrinterErrorTitle),
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    // The company's file, wherever the collector has it.
    const std::optional<QString> path = messageService().openFileName(
        askTitle, session().programFolder(), QString::fromLatin1(ChooserFilter));
    if (!path) {
        MsgBox(QString::fromLatin1(MortgageAbortedText), askTitle, MsgButtons::Ok,
               MsgIcon::Information);
        return;
    }
    const std::optional<QByteArray> bytes = readFile(*path);
    if (!bytes) {
        MsgBox(QString::fromLatin1(MortgageUnreadableText), title, MsgButtons::Ok,
               MsgIcon::Critical);
        return;
    }

    MortgageRunEvents events;
    events.reading = [this](const MortgageRecord& record) { showRecord(record); };
    events.billLoaded = [this](const BillNow& bill) { showBill(bill); };
    events.periodTried = [this](QChar, const PeriodAmounts& amounts) { showPeriod(amounts); };
    const MortgageRun run =
        RunMortgageUpdate(db, ParseMortgageCompanyFile(*bytes), Clock::today(), events);

    if (run.end == MortgageRun::End::IncompleteChain)
        MsgBox(run.error, QString::fromLatin1(IntegrityErrorTitle), MsgButtons::Ok,
               MsgIcon::Critical);
    else if (run.end == MortgageRun::End::Failed)
        MsgBox(run.error, title, MsgButtons::Ok, MsgIcon::Critical);

    // What could not be posted goes to the printer, as far as the run came.
    if (!run.exceptions.isEmpty()) {
        const PrintResult printed = SendToPrinter(DrawMortgageExceptions(run.exceptions), *device);
        if (!printed.ok)
            MsgBox(printed.error, QString::fromLatin1(PrinterErrorTitle), MsgButtons::Ok,
                   MsgIcon::Critical);
    }
    if (run.end == MortgageRun::End::Complete)
        MsgBox(QString::fromLatin1(MortgageCompleteText), title, MsgButtons::Ok,
               MsgIcon::Information);
}
