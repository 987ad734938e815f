#include "desk/realestate/payment_screen_parts.h"

#include "core/named_widgets.h"
#include "desk/realestate/query_handover.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>

namespace {

QPushButton* newButton(QWidget* parent, const QString& name, const QString& caption) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(name);
    return button;
}

} // namespace

QComboBox* NewStateCombo(QWidget* parent, const QString& name, int maxLength) {
    auto* combo = new QComboBox(parent);
    combo->setObjectName(name);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->lineEdit()->setMaxLength(maxLength);
    return combo;
}

void AddFieldRow(QGridLayout* grid, int row, QWidget* label, QWidget* field, int column) {
    grid->addWidget(label, row, column);
    grid->addWidget(field, row, column + 1);
}

PaymentScreenParts BuildPaymentScreenParts(QWidget* screen) {
    PaymentScreenParts p;
    // Bill number and date credited.
    p.txtBillNo = NamedField(screen, QStringLiteral("txtBillNo"), 5);
    p.txtAdjNo = ShownField(screen, QStringLiteral("txtAdjNo"), 2);
    p.txtDate = NamedField(screen, QStringLiteral("txtDate"), 10);
    p.cmdDate = newButton(screen, QStringLiteral("cmdDate"), QStringLiteral("Change Date"));
    p.lblAdjustment =
        NamedLabel(screen, QStringLiteral("lblAdjustment"), QStringLiteral("Adjustment"));
    p.lblAddressChange =
        NamedLabel(screen, QStringLiteral("lblAddressChange"), QStringLiteral("Address Change"));
    p.lblPaymentReceived = NamedLabel(screen, QStringLiteral("lblPaymentReceived"),
                                      QStringLiteral("Payment Received"));
    for (QLabel* marker : {p.lblAdjustment, p.lblAddressChange, p.lblPaymentReceived})
        marker->setStyleSheet(QStringLiteral("color: #b00000; font-weight: bold;"));

    p.top = new QHBoxLayout;
    p.top->addWidget(new QLabel(QStringLiteral("Bill #:"), screen));
    p.top->addWidget(p.txtBillNo);
    p.top->addWidget(new QLabel(QStringLiteral("Adj #:"), screen));
    p.top->addWidget(p.txtAdjNo);
    p.top->addSpacing(16);
    p.top->addWidget(new QLabel(QStringLiteral("Date Received:"), screen));
    p.top->addWidget(p.txtDate);
    p.top->addWidget(p.cmdDate);
    p.top->addStretch();
    p.top->addWidget(p.lblAdjustment);
    p.top->addWidget(p.lblAddressChange);
    p.top->addWidget(p.lblPaymentReceived);
    p.txtBillNo->setMaximumWidth(80);
    p.txtAdjNo->setMaximumWidth(40);
    p.txtDate->setMaximumWidth(100);

    // The payor and the money.
    p.fraPayor = new QGroupBox(QStringLiteral("Payment"), screen);
    p.fraPayor->setObjectName(QStringLiteral("fraPayor"));
    QGroupBox* fra = p.fraPayor;
    p.txtPayor = NamedField(fra, QStringLiteral("txtPayor"), 50);
    p.txtPayor->setToolTip(QStringLiteral("Enter Payor or \"O\" for Owner"));
    p.txtPAddr1 = NamedField(fra, QStringLiteral("txtPAddr1"), 50);
    p.txtPAddr2 = NamedField(fra, QStringLiteral("txtPAddr2"), 50);
    p.txtPCity = NamedField(fra, QStringLiteral("txtPCity"), 25);
    p.cboPState = NewStateCombo(fra, QStringLiteral("cboPState"), 2);
    p.txtPZipCode = NamedField(fra, QStringLiteral("txtPZipCode"), 5);
    p.txtPZipCode2 = NamedField(fra, QStringLiteral("txtPZipCode2"), 4);
    p.txtChecknum = NamedField(fra, QStringLiteral("txtChecknum"), 80);
    p.txtChecknum->setToolTip(QStringLiteral("Enter Check # or \"C\" for Cash"));
    p.txtAmount = NamedField(fra, QStringLiteral("txtAmount"), 20);
    p.txtTotal = ShownField(screen, QStringLiteral("txtTotal"));
    p.chkPrintReceipt = new QCheckBox(QStringLiteral("Print A Receipt"), fra);
    p.chkPrintReceipt->setObjectName(QStringLiteral("chkPrintReceipt"));
    p.chkPrintReceipt->setChecked(true);
    {
        auto* g = new QGridLayout(fra);
        int r = 0;
        AddFieldRow(g, r++, new QLabel(QStringLiteral("Payor:"), fra), p.txtPayor);
        AddFieldRow(g, r++, new QLabel(QStringLiteral("Address:"), fra), p.txtPAddr1);
        AddFieldRow(g, r++, new QLabel(QString(), fra), p.txtPAddr2);
        auto* cityRow = new QHBoxLayout;
        cityRow->addWidget(p.txtPCity, 3);
        cityRow->addWidget(p.cboPState, 1);
        cityRow->addWidget(p.txtPZipCode, 1);
        cityRow->addWidget(p.txtPZipCode2, 1);
        g->addWidget(new QLabel(QStringLiteral("City/St/Zip:"), fra), r, 0);
        g->addLayout(cityRow, r++, 1);
        AddFieldRow(g, r++, new QLabel(QStringLiteral("Check #:"), fra), p.txtChecknum);
        AddFieldRow(g, r++, new QLabel(QStringLiteral("Amount:"), fra), p.txtAmount);
        AddFieldRow(g, r++, new QLabel(QStringLiteral("Total:"), fra), p.txtTotal);
        g->addWidget(p.chkPrintReceipt, r++, 1);
    }

    // Buttons.
    p.cmdAccept = newButton(screen, QStringLiteral("cmdAccept"), QStringLiteral("&Accept"));
    p.cmdClearScreen =
        newButton(screen, QStringLiteral("cmdClearScreen"), QStringLiteral("C&lear Screen"));
    p.cmdQuery = newButton(screen, QStringLiteral("cmdQuery"), QStringLiteral("&Query"));
    p.cmdPaymentInfo =
        newButton(screen, QStringLiteral("cmdPaymentInfo"), QStringLiteral("Payment &Info"));
    p.cmdPrevPayor =
        newButton(screen, QStringLiteral("cmdPrevPayor"), QStringLiteral("Previous Pa&yor Info"));
    p.cmdPrevComments =
        newButton(screen, QStringLiteral("cmdPrevComments"), QStringLiteral("Previous &Check #"));
    p.cmdPrintScreen =
        newButton(screen, QStringLiteral("cmdPrintScreen"), QStringLiteral("&Print Screen"));
    p.cmdExit = newButton(screen, QStringLiteral("cmdExit"), QStringLiteral("E&xit"));
    // These act without validating the field being left.
    for (QPushButton* b : {p.cmdClearScreen, p.cmdQuery, p.cmdExit})
        b->setFocusPolicy(Qt::NoFocus);
    QObject::connect(p.cmdPrintScreen, &QPushButton::clicked, screen,
                     [screen] { PrintScreenImage(screen, QString::fromLatin1(LetterPrinter)); });
    p.buttons = new QHBoxLayout;
    for (QPushButton* b : {p.cmdAccept, p.cmdClearScreen, p.cmdPaymentInfo, p.cmdPrevPayor,
                           p.cmdPrevComments, p.cmdQuery, p.cmdPrintScreen})
        p.buttons->addWidget(b);
    p.buttons->addStretch();
    p.buttons->addWidget(p.cmdExit);

    QLineEdit* billNo = p.txtBillNo;
    QObject::connect(billNo, &QLineEdit::textChanged, screen,
                     [billNo, screen](const QString& text) {
                         // Upper case as typed. A "*" never stays: typed alone into the empty field
                         // it is the scanner's call for the scan screen.
                         const QString fixed = text.toUpper().remove(QLatin1Char('*'));
                         if (fixed == text)
                             return;
                         const int cursor = billNo->cursorPosition();
                         {
                             const QSignalBlocker block(billNo);
                             billNo->setText(fixed);
                             billNo->setCursorPosition(std::min<int>(cursor, int(fixed.size())));
                         }
                         if (text == QLatin1String("*") && billNo->hasFocus())
                             OpenScanScreen(screen);
                     });
    QLineEdit* date = p.txtDate;
    QObject::connect(p.cmdDate, &QPushButton::clicked, screen, [date] {
        date->setEnabled(true);
        date->setFocus(Qt::OtherFocusReason);
        date->selectAll();
    });
    return p;
}
