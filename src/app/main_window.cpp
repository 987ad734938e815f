#include "app/main_window.h"

#include "app/screen_catalog.h"
#include "core/logo_screen.h"
#include "core/messages.h"
#include "core/session.h"

#include <QAction>
#include <QCloseEvent>
#include <QDialog>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QSqlError>
#include <QSqlQuery>
#include <QSysInfo>

namespace {

frmLevyDeskMain* theMainWindow = nullptr;

const char* const OfficeTitle = "Kestrelvale County Tax Collector     Version ";

// The menu tree as data: a caption with its access key, the item's name, and its children.
struct MenuDef {
    QString caption;
    QString name;
    std::vector<MenuDef> children = {};
    bool hidden = false;
    bool separatorBefore = false;
};

std::vector<MenuDef> receiptReportItems(const QString& prefix) {
    return {{"&Receipt Number Order", prefix + "ReportsPrintReceiptsRecnum"},
            {"&Bill Number Order", prefix + "ReportsPrintReceiptsBill"},
            {"&Date Credited Order", prefix + "ReportsPrintReceiptsDate"}};
}

std::vector<MenuDef> menuTree() {
    return {
        {"&Real Estate     ",
         "mnuRealEstate",
         {
             {"&Payments",
              "mnuREPayments",
              {{"&Receive Payment", "mnuREPaymentsReceivePayments"},
               {"&Adjust Tax Bill", "mnuREPaymentsAdjustTaxBill"},
               {"&Change Address", "mnuREPaymentsChangeAddress"},
               {"&Void Receipt", "mnuREPaymentsVoidReceipt"},
               {"Re&print Receipt", "mnuREPaymentsReprintReceipt"},
               {"&Update From Mortgage Companies",
                "mnuREPaymentsMortgageCompanies",
                {},
                true,
                true}}},
             {"&Query",
              "mnuREQuery",
              {{"&Query Taxpayers", "mnuREQueryTC"},
               {"Query &Individual Taxpayer", "mnuREQueryIndividual"},
               {"Query &Receipts", "mnuREQueryReceipts"}}},
             {"&Distribution",
              "mnuREDistribution",
              {{"&Distribute Receipts", "mnuREDistributionDistributeReceipts"},
               {"Print &County Distribution", "mnuREDistributionPrintCounty"},
               {"Print &Twp/Boro/City Distribution", "mnuREDistributionPrintTwp"},
               {"Print &School Distribution", "mnuREDistributionPrintSchool"},
               {"Recreate Distribution &File", "mnuREDistributionCreateDistributionFile"},
               {"Transfer Distribution File - &Email", "mnuREDistributionTransferEmail"},
               {"Transfer Distribution File - Desk&top", "mnuREDistributionTransferDesktop"},
               {"Distribute &Refunds", "mnuREDistributionRefunds"},
               {"Print Distributed Re&funds", "mnuREDistributionPrintRefunds"}}},
             {"&Reports",
              "mnuREReports",
              {{"Print &Receipts For Deposit", "mnuREReportsPrintReceipts",
                receiptReportItems("mnuRE")},
               {"Print &Voided Receipts", "mnuREReportsPrintVoidedReceipts", {}, true},
               {"Print &Address Changes", "mnuREReportsPrintAddressChanges"},
               {"Print A&djustments", "mnuREReportsPrintAdjustments"},
               {"Print &Tax Bills", "mnuREReportsPrintTaxBills"},
               {"Print School Ta&x Bills", "mnuREReportsPrintSchoolTaxBills"},
               {"Print Second &Notices", "mnuREReportsPrintSecondNotices"},
               {"Print &Summary Report", "mnuREReportsPrintSummaryReport"},
               {"Print R&eturns Proof", "mnuREReportsPrintReturnsProof"},
               {"Print &Left For Collection Report", "mnuREReportsPrintLeftForCollectionReport"},
               {"Print Left For Collection Report - Street Lights",
                "mnuREReportsPrintLeftForCollectionReportStLt",
                {},
                true},
               {"Print Ineligible Act 1 Report", "mnuREReportsPrintIneligibleAct1"},
               {"Print Act 1 Zero Amounts", "mnuREReportsPrintAct1ZeroAmounts"},
               {"Print &Mailing Labels", "mnuREReportsPrintMailingLabels"}}},
         }},
        {"&Per Capita     ",
         "mnuPerCapita",
         {
             {"&Payments",
              "mnuPCPayments",
              {{"&Receive Payments", "mnuPCPaymentsReceivePayments"},
               {"&Adjust Tax Bill", "mnuPCPaymentsAdjustTaxBill"},
               {"&Change Address", "mnuPCPaymentsChangeAddress"},
               {"&Void Receipt", "mnuPCPaymentsVoidReceipt"},
               {"Re&print Receipt", "mnuPCPaymentsReprintReceipt"}}},
             {"&Query",
              "mnuPCQuery",
              {{"&Query Taxpayers", "mnuPCQueryTC"},
               {"Query &Individual Taxpayer", "mnuPCQueryIndividual"},
               {"Query &Receipts", "mnuPCQueryReceipts"}}},
             {"&Distribution",
              "mnuPCDistribution",
              {{"&Distribute Receipts", "mnuPCDistributionDistributeReceipts"},
               {"Print &County Distribution", "mnuPCDistributionPrintCounty"},
               {"Print &Twp/Boro/City Distribution", "mnuPCDistributionPrintTwp"},
               {"Print &School Distribution", "mnuPCDistributionPrintSchool"},
               {"Recreate Distribution &File", "mnuPCDistributionCreateDistributionFile"},
               {"Transfer Distribution File - &Email", "mnuPCDistributionTransferEmail"},
               {"Transfer Distribution File - Desk&top", "mnuPCDistributionTransferDesktop"},
               {"Distribute &Refunds", "mnuPCDistributionRefunds"},
               {"Print Distributed Re&funds", "mnuPCDistributionPrintRefunds"}}},
             {"&Reports",
              "mnuPCReports",
              {{"Print &Receipts For Deposit", "mnuPCReportsPrintReceipts",
                receiptReportItems("mnuPC")},
               {"Print &Voided Receipts", "mnuPCReportsPrintVoidedReceipts", {}, true},
               {"Print &Address Changes", "mnuPCReportsPrintAddressChanges"},
               {"Print A&djustments", "mnuPCReportsPrintAdjustments"},
               {"Print &Tax Bills", "mnuPCReportsPrintTaxBills"},
               {"Print Second &Notices", "mnuPCReportsPrintSecondNotices"},
               {"Print &Summary Report", "mnuPCReportsPrintSummaryReport"},
               {"Print &Returns Proof", "mnuPCReportsPrintReturnsProof"},
               {"Print &Left For Collection Report", "mnuPCReportsPrintLeftForCollectionReport"},
               {"Print &Mailing Labels", "mnuPCReportsPrintMailingLabels"}}},
         }},
        {"Act &169 Report", "mnuAct169Report"},
        {"&Utilities     ",
         "mnuUtilities",
         {
             {"Maintain &Millages",
              "mnuUtilitiesMillages",
              {{"&County", "mnuUtilitiesMillagesCounty"},
               {"&Twp/Boro/City", "mnuUtilitiesMillagesTwp"},
               {"&School", "mnuUtilitiesMillagesSchool"}}},
             {"Edit Special &Taxes", "mnuUtilitiesEditSpecialTaxes"},
             {"Edit Special Tax&payers", "mnuUilitiesEditSpecialTaxpayers"},
             {"Zip and Email Data File To Kestrelvale &ITS", "mnuUtilitiesZipAndEmailCounty"},
             {"Zip and Email Data File To &ARS", "mnuUtilitiesZipAndEmail"},
             {"Create &Left For Collection File", "mnuUtilitiesCreateReturnsFile"},
             {"&Backup Database", "mnuUtilitiesBackup"},
             {"&Restore Database", "mnuUtilitiesRestore"},
             {"&Verify Data Integrity", "mnuUtilitiesVerifyData"},
             {"&Late Billing Routine", "mnuUtilitiesLateBillingRoutine"},
             {"Import County &Duplicate...", "mnuUtilitiesImportDuplicate"},
         }},
        {"&Scan     ", "mnuScan", {{"Scan Data", "mnuScanData"}}},
        {"Prin&ters     ", "mnuPrinters"},
    };
}

} // namespace

frmLevyDeskMain* mainWindow() {
    return theMainWindow;
}

frmLevyDeskMain::frmLevyDeskMain(QWidget* parent) : QMainWindow(parent) {
    theMainWindow = this;
    SetScreenHost(this);
    setObjectName(QStringLiteral("frmLevyDeskMain"));
    m_mdi = new QMdiArea(this);
    m_mdi->setObjectName(QStringLiteral("mdiArea"));
    m_mdi->setBackground(QColor(0x0e, 0x1d, 0x2f));
    // A screen larger than a small office monitor stays reachable.
    m_mdi->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdi->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(m_mdi);
    buildMenus();
    resize(1280, 860);
}

frmLevyDeskMain::~frmLevyDeskMain() {
    if (theMainWindow == this)
        theMainWindow = nullptr;
    if (screenHost() == this)
        SetScreenHost(nullptr);
}

QString frmLevyDeskMain::versionText() {
    return QStringLiteral("%1.%2.%3")
        .arg(LEVYDESK_VERSION_MAJOR)
        .arg(LEVYDESK_VERSION_MINOR)
        .arg(LEVYDESK_VERSION_PATCH);
}

void frmLevyDeskMain::buildMenus() {
    std::function<void(QMenu*, const MenuDef&)> addItem = [&](QMenu* into, const MenuDef& def) {
        if (def.separatorBefore) {
            QAction* sep = into->addSeparator();
            sep->setObjectName(def.name + QStringLiteral("Separator"));
            sep->setVisible(!def.hidden);
        }
        if (!def.children.empty()) {
            QMenu* sub = into->addMenu(def.caption);
            sub->setObjectName(def.name);
            sub->menuAction()->setObjectName(def.name);
            sub->menuAction()->setVisible(!def.hidden);
            for (const MenuDef& child : def.children)
                addItem(sub, child);
            return;
        }
        QAction* action = into->addAction(def.caption);
        const QString name = def.name;
        action->setObjectName(name);
        action->setVisible(!def.hidden);
        action->setEnabled(screenForMenuItem(name) != nullptr);
        connect(action, &QAction::triggered, this, [this, name] { openFromMenu(name); });
    };

    for (const MenuDef& top : menuTree()) {
        const QString name = top.name;
        if (top.children.empty()) {
            QAction* action = menuBar()->addAction(top.caption);
            action->setObjectName(name);
            action->setEnabled(screenForMenuItem(name) != nullptr);
            connect(action, &QAction::triggered, this, [this, name] { openFromMenu(name); });
            continue;
        }
        QMenu* menu = menuBar()->addMenu(top.caption);
        menu->setObjectName(name);
        menu->menuAction()->setObjectName(name);
        for (const MenuDef& child : top.children)
            addItem(menu, child);
    }
}

QAction* frmLevyDeskMain::menuItem(const QString& itemName) const {
    const QList<QAction*> actions = findChildren<QAction*>(itemName);
    for (QAction* a : actions)
        if (!a->isSeparator())
            return a;
    return nullptr;
}

bool frmLevyDeskMain::runMenuCommand(const QString& itemName) {
    QAction* action = menuItem(itemName);
    if (!action || action->menu())
        return false;
    bool shown = action->isVisible();
    // A hidden parent menu hides its items too.
    for (QObject* p = action->parent(); shown && p && p != this; p = p->parent()) {
        if (auto* menu = qobject_cast<QMenu*>(p); menu && !menu->menuAction()->isVisible())
            shown = false;
    }
    if (shown) {
        if (!action->isEnabled())
            return false;
        action->trigger();
        return true;
    }
    // An item kept out of sight (Qt disables it too) still opens its screen: the update from
    // mortgage companies. One without a screen has nothing to run.
    if (!screenForMenuItem(itemName))
        return false;
    openFromMenu(itemName);
    return true;
}

void frmLevyDeskMain::openFromMenu(const QString& itemName) {
    // The receipt report is one screen asked for in three orders.
    static const QHash<QString, QString> orders{
        {"mnuREReportsPrintReceiptsRecnum", "RECN"}, {"mnuREReportsPrintReceiptsBill", "BILL"},
        {"mnuREReportsPrintReceiptsDate", "DATE"},   {"mnuPCReportsPrintReceiptsRecnum", "RECN"},
        {"mnuPCReportsPrintReceiptsBill", "BILL"},   {"mnuPCReportsPrintReceiptsDate", "DATE"}};
    if (auto it = orders.find(itemName); it != orders.end())
        session().ReceiptReportOrder = it.value();

    const ScreenEntry* entry = screenForMenuItem(itemName);
    if (!entry)
        return;
    if (!entry->modal) {
        if (QWidget* open = openScreen(entry->screenName)) {
            if (auto* sub = qobject_cast<QMdiSubWindow*>(open->parentWidget())) {
                m_mdi->setActiveSubWindow(sub);
                sub->raise();
            }
            return;
        }
    }
    if (QWidget* screen = entry->create())
        showScreen(screen, entry->modal);
}

void frmLevyDeskMain::showScreen(QWidget* screen, bool modal) {
    screen->adjustSize();
    const QRect client = m_mdi->geometry();
    const int left = std::max(0, (client.width() - screen->width()) / 2);
    const int top = std::max(0, (client.height() - screen->height()) / 2);
    if (modal) {
        auto* dialog = qobject_cast<QDialog*>(screen);
        if (!dialog) {
            // A modal screen must be a dialog; anything else is shown in the client area.
            modal = false;
        } else {
            dialog->setParent(this, dialog->windowFlags() | Qt::Dialog);
            dialog->move(m_mdi->mapToGlobal(QPoint(left, top)));
            dialog->setAttribute(Qt::WA_DeleteOnClose, false);
            dialog->exec();
            delete dialog;
            return;
        }
    }
    QMdiSubWindow* sub = m_mdi->addSubWindow(screen);
    sub->setAttribute(Qt::WA_DeleteOnClose);
    sub->setWindowTitle(screen->windowTitle());
    sub->adjustSize();
    sub->move(std::max(0, (client.width() - sub->width()) / 2),
              std::max(0, (client.height() - sub->height()) / 2));
    sub->show();
    m_mdi->setActiveSubWindow(sub);
}

QWidget* frmLevyDeskMain::openScreen(const QString& screenName) const {
    for (QMdiSubWindow* sub : m_mdi->subWindowList())
        if (sub->widget() && sub->widget()->objectName() == screenName)
            return sub->widget();
    for (QWidget* w : findChildren<QDialog*>(screenName, Qt::FindDirectChildrenOnly))
        if (w->isVisible())
            return w;
    return nullptr;
}

QWidget* frmLevyDeskMain::createScreen(const QString& screenName) {
    const ScreenEntry* entry = screenNamed(screenName);
    return entry && entry->create ? entry->create() : nullptr;
}

void frmLevyDeskMain::closeScreensExcept(const QStringList& keep) {
    const QList<QMdiSubWindow*> subs = m_mdi->subWindowList();
    for (auto it = subs.rbegin(); it != subs.rend(); ++it) {
        QMdiSubWindow* sub = *it;
        if (sub->widget() && keep.contains(sub->widget()->objectName()))
            continue;
        sub->close();
    }
    const QList<QDialog*> dialogs = findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly);
    for (auto it = dialogs.rbegin(); it != dialogs.rend(); ++it) {
        QDialog* d = *it;
        if (d->isVisible() && !keep.contains(d->objectName()))
            d->reject();
    }
}

void frmLevyDeskMain::refreshCaption() {
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT TaxYear FROM Millfile WHERE District || Ward = '000'")) &&
        q.next()) {
        session().TaxYear = q.value(0).toString().left(4);
        setWindowTitle(q.value(0).toString() + QStringLiteral(" ") + QLatin1String(OfficeTitle) +
                       versionText());
    }
}

bool frmLevyDeskMain::start(const QString& databasePath) {
    // 1. The title before anything is known of the database.
    setWindowTitle(QLatin1String(OfficeTitle) + versionText());
    // 2. The logo behind every screen.
    if (!m_logo) {
        m_logo = new frmARS(m_mdi->viewport());
        m_logo->setGeometry(m_mdi->viewport()->rect());
        m_logo->lower();
        m_logo->show();
        m_mdi->viewport()->installEventFilter(this);
    }
    // 3. A fresh session.
    Session& s = session();
    s.reset();
    s.OsName = QSysInfo::prettyProductName();
    s.ShowBackupPrompt = true;

    // 4 to 7, with one failure path.
    bool ok = OpenSessionDatabase(databasePath);
    if (ok) {
        QSqlQuery q(s.DbConnection);
        ok = q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = '000'")) &&
             q.next();
        if (ok) {
            const QString year = q.value(QStringLiteral("TaxYear")).toString();
            setWindowTitle(year + QStringLiteral(" ") + QLatin1String(OfficeTitle) + versionText());
            s.TaxYear = year.left(4);
        }
    }
    if (ok) {
        QSqlQuery q(s.DbConnection);
        ok = q.exec(QStringLiteral("SELECT * FROM tbl_District")) && q.next();
        if (ok && q.value(QStringLiteral("District")).toString() == QLatin1String("39")) {
            if (QAction* item =
                    menuItem(QStringLiteral("mnuREReportsPrintLeftForCollectionReportStLt")))
                item->setVisible(true);
        }
    }
    if (!ok) {
        MsgBox(QStringLiteral("Tax Collector Database Not Available"),
               QStringLiteral("Kestrelvale County Tax Collector System"));
        s.ShowBackupPrompt = false;
        close();
        return false;
    }
    return true;
}

void frmLevyDeskMain::closeEvent(QCloseEvent* event) {
    if (!m_exitDone) {
        m_exitDone = true;
        if (session().ShowBackupPrompt) {
            const MsgAnswer answer =
                MsgBox(QStringLiteral(
                           "It is recommended that you back up your data to avoid any accidentalal "
                           "data loss. Would you like to backup your data now?"),
                       QStringLiteral("Backup Data"), MsgButtons::YesNo, MsgIcon::Question);
            if (answer == MsgAnswer::Yes) {
                if (const ScreenEntry* backup =
                        screenForMenuItem(QStringLiteral("mnuUtilitiesBackup")))
                    if (QWidget* screen = backup->create())
                        showScreen(screen, true);
            }
        }
        CloseSessionDatabase();
        session().ShowBackupPrompt = false;
        closeScreensExcept({});
    }
    event->accept();
}

bool frmLevyDeskMain::eventFilter(QObject* watched, QEvent* event) {
    // The logo follows the client area's size.
    if (m_logo && watched == m_mdi->viewport() && event->type() == QEvent::Resize)
        m_logo->setGeometry(m_mdi->viewport()->rect());
    return QMainWindow::eventFilter(watched, event);
}
