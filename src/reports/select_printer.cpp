#include "reports/select_printer.h"

#include "core/message_window.h"
#include "core/messages.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSqlQuery>
#include <QVBoxLayout>

namespace {

const char* const ChoiceTitle = "Select Printers";

QComboBox* printerBox(const char* name, const QStringList& printers, QWidget* parent) {
    auto* box = new QComboBox(parent);
    box->setObjectName(QString::fromLatin1(name));
    // Locked to the list: only a printer of the machine (or "PDF") can be chosen.
    box->setEditable(false);
    box->addItems(printers);
    box->setCurrentIndex(-1);
    box->setMinimumWidth(320);
    return box;
}

} // namespace

frmSelectPrinter::frmSelectPrinter(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmSelectPrinter"));
    setWindowTitle(QStringLiteral("Select Printer"));

    const QStringList printers = AvailablePrinterNames();
    cboLetter = printerBox("cboLetter", printers, this);
    cboReceipt = printerBox("cboReceipt", printers, this);
    lblMessage = new QLabel(this);
    lblMessage->setObjectName(QStringLiteral("lblMessage"));
    lblMessage->setAlignment(Qt::AlignCenter);
    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdCancel = new QPushButton(QStringLiteral("&Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setFocusPolicy(Qt::NoFocus);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Letter Printer:"), cboLetter);
    form->addRow(QStringLiteral("Receipt Printer:"), cboReceipt);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(lblMessage);
    layout->addLayout(buttons);

    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { CloseScreen(this); });
    load();
}

void frmSelectPrinter::load() {
    QSqlQuery q(session().DbConnection);
    if (!q.exec(QStringLiteral("SELECT PrinterType, DeviceName FROM tbl_Printers")))
        return;
    while (q.next()) {
        if (q.value(1).isNull())
            continue;
        const QString type = TextField(q.value(0));
        const QString device = TextField(q.value(1));
        QComboBox* box = type == QLatin1String(LetterPrinter)    ? cboLetter
                         : type == QLatin1String(ReceiptPrinter) ? cboReceipt
                                                                 : nullptr;
        if (box)
            box->setCurrentIndex(
                box->findText(device, Qt::MatchFixedString | Qt::MatchCaseSensitive));
    }
}

void frmSelectPrinter::cmdOK_Click() {
    lblMessage->setText(QString::fromLatin1(frmMessage::SavingData));
    lblMessage->repaint();
    const QString letter = cboLetter->currentIndex() < 0 ? QString() : cboLetter->currentText();
    const QString receipt = cboReceipt->currentIndex() < 0 ? QString() : cboReceipt->currentText();
    if (letter.trimmed().isEmpty()) {
        lblMessage->clear();
        MsgBox(QStringLiteral("Letter Printer Must Be Specified"), QString::fromLatin1(ChoiceTitle),
               MsgButtons::Ok, MsgIcon::Exclamation);
        cboLetter->setFocus();
        return;
    }
    if (receipt.trimmed().isEmpty()) {
        lblMessage->clear();
        MsgBox(QStringLiteral("Receipt Printer Must Be Specified"),
               QString::fromLatin1(ChoiceTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        cboReceipt->setFocus();
        return;
    }
    QString error;
    if (!SavePrinterChoice(session().DbConnection, letter, receipt, &error)) {
        lblMessage->clear();
        MsgBox(QStringLiteral("The printers could not be saved: ") + error,
               QString::fromLatin1(ChoiceTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    lblMessage->setText(QString::fromLatin1(frmMessage::Searching));
    lblMessage->repaint();
    CloseScreen(this);
}
