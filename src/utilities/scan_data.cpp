#include "utilities/scan_data.h"

#include "bills/pc_print_tax_bills.h"
#include "bills/re_print_tax_bills.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/adjust_common.h"
#include "desk/realestate/payment_screen.h"
#include "desk/realestate/reprint_receipt.h"
#include "desk/realestate/void_receipt.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>

namespace {

// The screen of an action for a duplicate.
QString screenName(ScanAction action, Duplicate duplicate) {
    const QString d =
        duplicate == Duplicate::RealEstate ? QStringLiteral("RE") : QStringLiteral("PC");
    switch (action) {
    case ScanAction::Payment:
        return QStringLiteral("frm%1ReceivePayment").arg(d);
    case ScanAction::Adjust:
        return QStringLiteral("frm%1AdjustTaxBill").arg(d);
    case ScanAction::Address:
        return QStringLiteral("frm%1AddressChange").arg(d);
    case ScanAction::VoidReceipt:
        return QStringLiteral("frm%1VoidReceipt").arg(d);
    case ScanAction::ReprintReceipt:
        return QStringLiteral("frm%1ReprintReceipt").arg(d);
    case ScanAction::TaxBill:
        return QStringLiteral("frm%1PrintTaxBills").arg(d);
    case ScanAction::None:
        break;
    }
    return QString();
}

// The open screen of that name brought forward, or a new one from the program's catalog.
QWidget* showDeskScreen(const QString& name) {
    ScreenHost* host = screenHost();
    if (!host)
        return nullptr;
    QWidget* screen = host->openScreen(name);
    if (!screen)
        screen = host->createScreen(name);
    if (screen)
        host->showScreen(screen, false);
    return screen;
}

} // namespace

std::optional<ScannedBill> FindScannedBill(QSqlDatabase db, const ScanPayload& payload) {
    const bool re = payload.duplicate == Duplicate::RealEstate;
    const QString master = re ? QStringLiteral("TCMaster") : QStringLiteral("PCMaster");
    const QString receipts = re ? QStringLiteral("TCReceipt") : QStringLiteral("PCReceipt");
    QSqlQuery q(db);
    if (payload.receipt)
        q.prepare(QStringLiteral("SELECT %2.Recnum AS ScannedRecnum, %1.* FROM %2 INNER JOIN %1 "
                                 "ON %2.Control = %1.Control WHERE %2.Recnum = ?")
                      .arg(master, receipts));
    else
        q.prepare(QStringLiteral("SELECT * FROM %1 WHERE Control = ?").arg(master));
    q.addBindValue(payload.key);
    if (!q.exec() || !q.next())
        return std::nullopt;
    const QSqlRecord row = q.record();
    ScannedBill bill;
    bill.billNo = TextField(row.value("BillNo"));
    bill.hfFlag = re ? TextField(row.value("HFFlag")) : QString();
    if (payload.receipt)
        bill.recnum = TextField(row.value("ScannedRecnum"));
    return bill;
}

std::optional<QString> LastReceiptOfBill(QSqlDatabase db, Duplicate duplicate,
                                         const QString& billNo) {
    const QString receipts = duplicate == Duplicate::RealEstate ? QStringLiteral("TCReceipt")
                                                                : QStringLiteral("PCReceipt");
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT Recnum FROM %1 WHERE BillNo = ? ORDER BY Recnum DESC LIMIT 1")
                  .arg(receipts));
    q.addBindValue(billNo);
    if (!q.exec() || !q.next())
        return std::nullopt;
    return TextField(q.value(0));
}

ScanAction ScanActionForScreen(const QString& name) {
    if (name.size() < 5 || !name.startsWith(QLatin1String("frm")))
        return ScanAction::None;
    const QString d = name.mid(3, 2);
    if (d != u"RE" && d != u"PC")
        return ScanAction::None;
    const QString rest = name.mid(5);
    if (rest == u"ReceivePayment")
        return ScanAction::Payment;
    if (rest == u"AdjustTaxBill")
        return ScanAction::Adjust;
    if (rest == u"AddressChange")
        return ScanAction::Address;
    if (rest == u"VoidReceipt")
        return ScanAction::VoidReceipt;
    if (rest == u"ReprintReceipt")
        return ScanAction::ReprintReceipt;
    if (rest == u"PrintTaxBills")
        return ScanAction::TaxBill;
    return ScanAction::None;
}

QWidget* OpenScannedScreen(ScanAction action, Duplicate duplicate, const ScannedBill& bill) {
    const QString name = screenName(action, duplicate);
    if (name.isEmpty())
        return nullptr;
    QWidget* opened = nullptr;
    if (action == ScanAction::TaxBill) {
        if (duplicate == Duplicate::RealEstate)
            opened = OpenREPrintTaxBillsFor(bill.billNo, bill.hfFlag.trimmed() == u"A");
        else
            opened = OpenPCPrintTaxBillsFor(bill.billNo);
    } else {
        opened = showDeskScreen(name);
        if (auto* payment = dynamic_cast<PaymentScreen*>(opened))
            payment->enterBillNo(bill.billNo);
        else if (auto* adjust = dynamic_cast<AdjustTaxBillScreen*>(opened))
            adjust->enterBillNo(bill.billNo);
        else if (auto* address = dynamic_cast<AddressChangeScreen*>(opened))
            address->openFromQuery(bill.billNo);
        else if (auto* voiding = dynamic_cast<VoidReceiptScreen*>(opened))
            voiding->openFromQuery(bill.recnum);
        else if (auto* reprint = dynamic_cast<ReprintReceiptScreen*>(opened))
            reprint->openFromQuery(bill.recnum);
    }
    if (opened)
        session().LastScreenName = name;
    return opened;
}

// ---------------------------------------------------------------------------------------------
// The form
// ---------------------------------------------------------------------------------------------

frmScanData::frmScanData(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmScanData"));
    setWindowTitle(QString::fromLatin1(ScanTitle));

    auto* fraScannedData = new QGroupBox(QStringLiteral("Scanned Data"), this);
    fraScannedData->setObjectName(QStringLiteral("fraScannedData"));
    txtScanData = NamedField(fraScannedData, QStringLiteral("txtScanData"));
    txtScanData->setMinimumWidth(220);
    (new QHBoxLayout(fraScannedData))->addWidget(txtScanData);

    auto* fraAction = new QGroupBox(QStringLiteral("Select An Action"), this);
    fraAction->setObjectName(QStringLiteral("fraAction"));
    optPayment =
        NamedOption(fraAction, QStringLiteral("optPayment"), QStringLiteral("Receive Payment"));
    optAdjust =
        NamedOption(fraAction, QStringLiteral("optAdjust"), QStringLiteral("Adjust Tax Bill"));
    optAddress =
        NamedOption(fraAction, QStringLiteral("optAddress"), QStringLiteral("Change Address"));
    optVoidReceipt =
        NamedOption(fraAction, QStringLiteral("optVoidReceipt"), QStringLiteral("Void A Receipt"));
    optReprintReceipt = NamedOption(fraAction, QStringLiteral("optReprintReceipt"),
                                    QStringLiteral("Reprint Receipt"));
    optTaxBill =
        NamedOption(fraAction, QStringLiteral("optTaxBill"), QStringLiteral("Print Tax Bill"));
    auto* actions = new QVBoxLayout(fraAction);
    for (QRadioButton* o :
         {optPayment, optAdjust, optAddress, optVoidReceipt, optReprintReceipt, optTaxBill}) {
        actions->addWidget(o);
        connect(o, &QRadioButton::clicked, this,
                [this] { txtScanData->setFocus(Qt::OtherFocusReason); });
    }

    cmdAccept = NamedButton(this, QStringLiteral("cmdAccept"), QStringLiteral("&Accept"));
    cmdClear = NamedButton(this, QStringLiteral("cmdClear"), QStringLiteral("&Clear"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdAccept);
    buttons->addWidget(cmdClear);
    buttons->addStretch();
    buttons->addWidget(cmdExit);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fraScannedData);
    layout->addWidget(fraAction);
    layout->addLayout(buttons);

    connect(txtScanData, &QLineEdit::textChanged, this, [this](const QString& text) {
        // The scanner's start and stop stars never stay.
        if (text.contains(QLatin1Char('*'))) {
            const int cursor = txtScanData->cursorPosition();
            txtScanData->setText(QString(text).remove(QLatin1Char('*')));
            txtScanData->setCursorPosition(std::min<int>(cursor, int(txtScanData->text().size())));
            return;
        }
        if (!m_processing && ScanIsComplete(text))
            processScan();
    });
    connect(cmdAccept, &QPushButton::clicked, this, [this] { processScan(); });
    connect(cmdClear, &QPushButton::clicked, this, [this] { clearScan(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });

    // The action of the desk screen last shown: the one in front in the client area, else the
    // one the session recorded; the payment when there is none.
    QString shown = session().LastScreenName;
    if (ScreenHost* host = screenHost())
        if (QMdiArea* area = host->mdiArea())
            if (QMdiSubWindow* sub = area->currentSubWindow();
                sub && sub->widget() &&
                ScanActionForScreen(sub->widget()->objectName()) != ScanAction::None)
                shown = sub->widget()->objectName();
    switch (ScanActionForScreen(shown)) {
    case ScanAction::Adjust:
        optAdjust->setChecked(true);
        break;
    case ScanAction::Address:
        optAddress->setChecked(true);
        break;
    case ScanAction::VoidReceipt:
        optVoidReceipt->setChecked(true);
        break;
    case ScanAction::ReprintReceipt:
        optReprintReceipt->setChecked(true);
        break;
    case ScanAction::TaxBill:
        optTaxBill->setChecked(true);
        break;
    case ScanAction::Payment:
    case ScanAction::None:
        optPayment->setChecked(true);
        break;
    }
    session().LastScreenName = objectName();
    txtScanData->setFocus(Qt::OtherFocusReason);
}

ScanAction frmScanData::chosenAction() const {
    if (optPayment->isChecked())
        return ScanAction::Payment;
    if (optAdjust->isChecked())
        return ScanAction::Adjust;
    if (optAddress->isChecked())
        return ScanAction::Address;
    if (optVoidReceipt->isChecked())
        return ScanAction::VoidReceipt;
    if (optReprintReceipt->isChecked())
        return ScanAction::ReprintReceipt;
    if (optTaxBill->isChecked())
        return ScanAction::TaxBill;
    return ScanAction::None;
}

void frmScanData::clearScan() {
    const QSignalBlocker block(txtScanData);
    txtScanData->clear();
    txtScanData->setFocus(Qt::OtherFocusReason);
}

void frmScanData::refuse(const QString& text) {
    MsgBox(text, QString::fromLatin1(ScanTitle), MsgButtons::Ok, MsgIcon::Critical);
    clearScan();
}

void frmScanData::processScan() {
    if (m_processing)
        return;
    m_processing = true;
    const std::optional<ScanPayload> payload = DecodeScanPayload(txtScanData->text().trimmed());
    if (!payload) {
        refuse(QString::fromLatin1(InvalidScanText));
        m_processing = false;
        return;
    }
    QSqlDatabase db = session().DbConnection;
    std::optional<ScannedBill> bill = FindScannedBill(db, *payload);
    if (!bill) {
        refuse(QString::fromLatin1(ScanBillNotOnFileText));
        m_processing = false;
        return;
    }
    const ScanAction action = chosenAction();
    if ((action == ScanAction::VoidReceipt || action == ScanAction::ReprintReceipt) &&
        !payload->receipt) {
        const std::optional<QString> recnum =
            LastReceiptOfBill(db, payload->duplicate, bill->billNo);
        if (!recnum) {
            refuse(QString::fromLatin1(ScanNoReceiptsText));
            m_processing = false;
            return;
        }
        bill->recnum = *recnum;
    }
    // The form goes, then the screen opens on the bill.
    CloseScreen(this);
    OpenScannedScreen(action, payload->duplicate, *bill);
    m_processing = false;
}
