#include "desk/realestate/payment_screen.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSqlQuery>

namespace {

const char* const ReceivePaymentTitle = "Receive Payment";
const char* const ReceiveAPaymentTitle = "Receive A Payment";

} // namespace

PaymentScreen::PaymentScreen(QWidget* parent) : QWidget(parent) {
    static_cast<PaymentScreenParts&>(*this) = BuildPaymentScreenParts(this);

    // The three bodies' frames.
    struct Body {
        QGroupBox*& frame;
        const char* frameName;
        const char* title;
        QCheckBox*& box;
        const char* boxName;
        const char* caption;
        QLabel*& period;
        const char* periodName;
        QLineEdit*& total;
        const char* totalName;
    };
    const Body bodies[3] = {
        {fraCounty, "fraCounty", "County", chkCounty, "chkCounty", "County Payment", lblCPeriod,
         "lblCPeriod", txtCTotal, "txtCTotal"},
        {fraTwp, "fraTwp", "Twp/Boro/City", chkTwp, "chkTwp", "Twp/Boro/City Payment", lblTPeriod,
         "lblTPeriod", txtTTotal, "txtTTotal"},
        {fraSchool, "fraSchool", "School", chkSchool, "chkSchool", "School Payment", lblSPeriod,
         "lblSPeriod", txtSTotal, "txtSTotal"},
    };
    for (const Body& b : bodies) {
        b.frame = new QGroupBox(QString::fromLatin1(b.title), this);
        b.frame->setObjectName(QString::fromLatin1(b.frameName));
        b.box = new QCheckBox(QString::fromLatin1(b.caption), b.frame);
        b.box->setObjectName(QString::fromLatin1(b.boxName));
        b.period = NamedLabel(b.frame, QString::fromLatin1(b.periodName), QString());
        b.period->setStyleSheet(QStringLiteral("font-weight: bold;"));
        b.total = ShownField(b.frame, QString::fromLatin1(b.totalName));
    }

    // The bill's name and address.
    fraBill = new QGroupBox(this);
    fraBill->setObjectName(QStringLiteral("fraBill"));
    txtControl = ShownField(fraBill, QStringLiteral("txtControl"), 6);
    txtName = ShownField(fraBill, QStringLiteral("txtName"), 50);
    txtAddr1 = ShownField(fraBill, QStringLiteral("txtAddr1"), 50);
    txtAddr2 = ShownField(fraBill, QStringLiteral("txtAddr2"), 50);
    txtCity = ShownField(fraBill, QStringLiteral("txtCity"), 35);
    cboState = NewStateCombo(fraBill, QStringLiteral("cboState"), 2);
    cboState->setFocusPolicy(Qt::NoFocus);
    cboState->lineEdit()->setReadOnly(true);
    txtZipCode = ShownField(fraBill, QStringLiteral("txtZipCode"), 5);
    txtZipCode2 = ShownField(fraBill, QStringLiteral("txtZipCode2"), 4);

    connect(cmdAccept, &QPushButton::clicked, this, [this] { accept(); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdPrevPayor, &QPushButton::clicked, this, [this] { m_entry->previousPayor(); });
    connect(cmdPrevComments, &QPushButton::clicked, this, [this] { m_entry->previousCheck(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void PaymentScreen::layBodyFrame(int body, const std::vector<std::pair<QWidget*, QWidget*>>& rows,
                                 QWidget* below) {
    QGroupBox* frames[3] = {fraCounty, fraTwp, fraSchool};
    QCheckBox* boxes[3] = {chkCounty, chkTwp, chkSchool};
    QLabel* periods[3] = {lblCPeriod, lblTPeriod, lblSPeriod};
    QLineEdit* totals[3] = {txtCTotal, txtTTotal, txtSTotal};
    auto* g = new QGridLayout(frames[body]);
    g->addWidget(boxes[body], 0, 0, 1, 2);
    g->addWidget(periods[body], 1, 0, 1, 2);
    int row = 2;
    for (const auto& [caption, field] : rows) {
        if (field)
            AddFieldRow(g, row, caption, field);
        else
            g->addWidget(caption, row, 0, 1, 2);
        ++row;
    }
    AddFieldRow(g, row++, new QLabel(QStringLiteral("Total:"), frames[body]), totals[body]);
    if (below)
        g->addWidget(below, row++, 0, 1, 2);
    g->setRowStretch(row, 1);
}

int PaymentScreen::layOwnerRows(QGridLayout* g, QWidget* afterName, const QString& afterNameCaption,
                                const QString& addr1Caption, const QString& addr2Caption) {
    int row = 0;
    AddFieldRow(g, row++, new QLabel(QStringLiteral("Control #:"), fraBill), txtControl);
    AddFieldRow(g, row++, new QLabel(QStringLiteral("Name:"), fraBill), txtName);
    if (afterName)
        AddFieldRow(g, row++, new QLabel(afterNameCaption, fraBill), afterName);
    AddFieldRow(g, row++, new QLabel(addr1Caption, fraBill), txtAddr1);
    AddFieldRow(g, row++, new QLabel(addr2Caption, fraBill), txtAddr2);
    auto* cityRow = new QHBoxLayout;
    cityRow->addWidget(txtCity, 3);
    cityRow->addWidget(cboState, 1);
    cityRow->addWidget(txtZipCode, 1);
    cityRow->addWidget(txtZipCode2, 1);
    g->addWidget(new QLabel(QStringLiteral("City/St/Zip:"), fraBill), row, 0);
    g->addLayout(cityRow, row++, 1);
    return row;
}

void PaymentScreen::startEntries() {
    m_entry.emplace(PaymentEntryFields{
        txtDate,      txtPayor,    txtPAddr1,   txtPAddr2, txtPCity, cboPState, txtPZipCode,
        txtPZipCode2, txtChecknum, txtAmount,   txtName,   txtAddr1, txtAddr2,  txtCity,
        cboState,     txtZipCode,  txtZipCode2, chkCounty, chkTwp,   chkSchool});
    // Field-leave actions run on focus-out; the buttons learn of a refused leave.
    for (QWidget* w : {txtBillNo, txtDate, txtPayor, txtChecknum, txtAmount})
        w->installEventFilter(this);
    for (QAbstractButton* b : findChildren<QAbstractButton*>())
        b->installEventFilter(this);
}

void PaymentScreen::loadOffice(QLabel* lblTwp) {
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        m_district = TextField(q.value(0));
        m_ward = TextField(q.value(1));
    }
    if (q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = '000'")) && q.next())
        m_countyRow = q.record();
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(m_district + m_ward);
    if (q.exec() && q.next())
        m_municipalRow = q.record();
    m_calendar = PaymentCalendarFromMillfile(m_municipalRow);

    q.prepare(QStringLiteral("SELECT BTFlag FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    if (q.exec() && q.next())
        m_btFlag = TextField(q.value(0)).trimmed();
    lblTwp->setText(m_btFlag == QLatin1String("B")   ? QStringLiteral("Borough:")
                    : m_btFlag == QLatin1String("C") ? QStringLiteral("City:")
                                                     : QStringLiteral("Township:"));

    if (q.exec(QStringLiteral("SELECT State FROM tbl_States")))
        while (q.next())
            cboPState->addItem(TextField(q.value(0)));

    m_credited = Clock::today();
    txtDate->setText(FormatDate(m_credited));
    m_periods = PeriodsForDate(m_calendar, m_credited);
}

// ---------------------------------------------------------------------------------------------
// Field leave
// ---------------------------------------------------------------------------------------------

bool PaymentScreen::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease)
        return SwallowRefusedRelease(watched) || QWidget::eventFilter(watched, event);
    // The amount offered is selected on entry, so what is typed replaces it.
    if (event->type() == QEvent::FocusIn && watched == txtAmount &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::MouseFocusReason) {
        txtAmount->selectAll();
        return QWidget::eventFilter(watched, event);
    }
    // Another window taking the focus is no leave of the field.
    if (!IsFieldLeave(event) || m_clearing || m_inLeave)
        return QWidget::eventFilter(watched, event);

    QPointer<QWidget> target = QApplication::focusWidget();
    m_inLeave = true;
    // A click does not act when the field it left was refused: the message box took it.
    bool refused = false;
    if (watched == txtBillNo)
        billNoLeft();
    else if (watched == txtDate)
        refused = !dateLeft();
    else if (watched == txtPayor)
        m_entry->payorLeft();
    else if (watched == txtChecknum)
        m_entry->checknumLeft();
    else if (watched == txtAmount)
        refused = !m_entry->validateAmount();
    m_inLeave = false;

    if (refused)
        MarkRefusedClick(this, target, event);
    return FieldTookFocusBack(watched) || QWidget::eventFilter(watched, event);
}

void PaymentScreen::enterBillNo(const QString& billNo) {
    // A bill on the screen gives way to the one scanned.
    if (m_billLoaded || !txtBillNo->isEnabled())
        clearScreen();
    if (!txtBillNo->isEnabled())
        return;
    txtBillNo->setText(billNo);
    m_inLeave = true;
    billNoLeft();
    m_inLeave = false;
}

void PaymentScreen::openFromQuery(const QString& billNo) {
    clearScreen();
    txtBillNo->setEnabled(true);
    txtBillNo->setText(billNo);
    m_inLeave = true;
    billNoLeft();
    m_inLeave = false;
    // The number stays locked: the screen works on the bill the query gave.
    txtBillNo->setEnabled(false);
}

bool PaymentScreen::dateLeft() {
    const std::optional<QDate> date = m_entry->validateDate(true);
    if (!date)
        return false;
    m_credited = *date;
    m_periods = PeriodsForDate(m_calendar, m_credited);
    refreshAmounts();
    txtDate->setEnabled(false);
    return true;
}

// ---------------------------------------------------------------------------------------------
// The bill
// ---------------------------------------------------------------------------------------------

std::optional<BillNow> PaymentScreen::readBill(Duplicate duplicate) {
    if (txtBillNo->text().trimmed().isEmpty())
        return std::nullopt;
    const QString billNo = PadBillNo(txtBillNo->text());
    {
        const QSignalBlocker block(txtBillNo);
        txtBillNo->setText(billNo);
    }
    BillNow bill = ReadBillAsItStands(session().DbConnection, duplicate, billNo);
    if (bill.status == BillNow::Status::NotFound || bill.status == BillNow::Status::Error) {
        MsgBox(QStringLiteral("Bill Number Not On File"), QString::fromLatin1(ReceivePaymentTitle),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtBillNo->setFocus(Qt::OtherFocusReason);
        txtBillNo->selectAll();
        return std::nullopt;
    }
    if (!CheckBillIntegrity(bill)) {
        clearScreen();
        return std::nullopt;
    }
    return bill;
}

bool PaymentScreen::refuseSettledBill(const std::array<QString, 3>& flags,
                                      const std::array<bool, 3>& settled) {
    // Nothing can be taken on a bill whose every part shown is exonerated or settled. An
    // exonerated part counts as settled, so the exoneration is told first.
    bool anyVisible = false;
    bool allExonerated = true;
    bool allSettled = true;
    for (int b = 0; b < 3; ++b) {
        if (!m_block[b])
            continue;
        anyVisible = true;
        if (flags[b].trimmed() != QLatin1String("X"))
            allExonerated = false;
        if (!settled[b])
            allSettled = false;
    }
    if (anyVisible && allExonerated) {
        MsgBox(QStringLiteral("This tax bill has been exonerated. You cannot receive a payment "
                              "on this account."),
               QString::fromLatin1(ReceiveAPaymentTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        clearScreen();
        return true;
    }
    if (anyVisible && allSettled) {
        txtAmount->clear();
        MsgBox(QStringLiteral("This Account has already been paid in full. You cannot receive a "
                              "payment on this account."),
               QString::fromLatin1(ReceiveAPaymentTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        clearScreen();
        return true;
    }
    return false;
}

void PaymentScreen::openForPayment(const std::array<bool, 3>& closed) {
    txtBillNo->setEnabled(false);
    for (QWidget* w : std::initializer_list<QWidget*>{cmdAccept, cmdPaymentInfo, cmdDate,
                                                      cmdPrevPayor, cmdPrevComments})
        w->setEnabled(true);
    // A body settled or with nothing to pay is closed to payment.
    QCheckBox* boxes[3] = {chkCounty, chkTwp, chkSchool};
    for (int b = 0; b < 3; ++b) {
        boxes[b]->setEnabled(!closed[b] && m_block[b]);
        if (closed[b])
            boxes[b]->setChecked(false);
    }
    for (QWidget* w :
         std::initializer_list<QWidget*>{txtPayor, txtPAddr1, txtPAddr2, txtPCity, cboPState,
                                         txtPZipCode, txtPZipCode2, txtChecknum, txtAmount})
        w->setEnabled(true);
}

void PaymentScreen::showBillOwner() {
    const BillNow& b = m_bill;
    txtAdjNo->setText(b.adjNo > 0 ? QString::number(b.adjNo) : QString());
    txtControl->setText(b.text("Control"));
    txtName->setText(b.text("Name"));
    txtAddr1->setText(b.text("Addr1"));
    txtAddr2->setText(b.text("Addr2"));
    txtCity->setText(b.text("City"));
    cboState->setEditText(b.text("State"));
    txtZipCode->setText(b.text("ZipCode"));
    txtZipCode2->setText(b.text("ZipCode2"));
    lblAdjustment->setVisible(b.text("AdjFlag").trimmed() == QLatin1String("A"));
    lblAddressChange->setVisible(b.text("CAddrFlag").trimmed() == QLatin1String("A"));
}

PaymentSelection PaymentScreen::selection() const {
    PaymentSelection s;
    s.county = chkCounty->isChecked();
    s.twp = chkTwp->isChecked();
    s.school = chkSchool->isChecked();
    return s;
}

// ---------------------------------------------------------------------------------------------
// Accept
// ---------------------------------------------------------------------------------------------

void PaymentScreen::accept() {
    if (!m_billLoaded)
        return;
    // The focus moves about while the payment is checked; no field-leave action runs meanwhile.
    m_inLeave = true;
    acceptPayment();
    m_inLeave = false;
}

std::optional<PaymentCheck> PaymentScreen::checkAccept(const std::function<Money()>& totalDue) {
    // A body, date, payor, check, amount, and the question.
    const std::optional<Money> amount = m_entry->checkForAccept([this](const QDate& date) {
        m_credited = date;
        m_periods = PeriodsForDate(m_calendar, m_credited);
        refreshAmounts(false);
    });
    if (!amount)
        return std::nullopt;
    // The amount against the total due.
    return m_entry->checkAgainstTotal(*amount, totalDue(), m_calendar.tolerance);
}

void PaymentScreen::finishPayment(const PostingResult& posted, const PaymentCheck& check,
                                  const std::function<void(const QString&)>& printReceipt,
                                  const std::function<void(const RefundSource&)>& openRefund) {
    const QString title = QString::fromLatin1(ReceivePaymentTitle);
    if (!posted.ok) {
        MsgBox(QStringLiteral("The payment could not be saved: ") + posted.error, title,
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    m_entry->remember(m_entry->payorEntry());
    // The receipt, with the payor and owner as this screen shows them.
    if (chkPrintReceipt->isChecked())
        printReceipt(posted.recnum);
    // Money to go back.
    if (check.refund > Money()) {
        session().RefundRecnum = posted.recnum;
        session().RefundAmount = check.refund;
        openRefund(refundSource());
    }
    // A query screen that opened this one refreshes.
    Q_EMIT paymentReceived(posted.recnum);

    MsgBox(QStringLiteral("Payment Received"), title, MsgButtons::Ok, MsgIcon::Information);
    clearScreen();
    txtBillNo->setFocus(Qt::OtherFocusReason);
}

RefundSource PaymentScreen::refundSource() const {
    RefundSource source;
    source.control = txtControl->text();
    source.billNo = txtBillNo->text();
    source.adjNo = txtAdjNo->text();
    const PayorEntry p = m_entry->payorEntry();
    source.payor = {p.payor, p.pAddr1, p.pAddr2, p.pCity, p.pState, p.pZipCode, p.pZipCode2};
    source.owner = {txtName->text(),    txtAddr1->text(),        txtAddr2->text(),
                    txtCity->text(),    cboState->currentText(), txtZipCode->text(),
                    txtZipCode2->text()};
    return source;
}

void PaymentScreen::showPaymentInfo(const std::function<QString()>& build) {
    if (m_billLoaded)
        session().PaymentInfoText = build();
    if (session().PaymentInfoText.isEmpty())
        MsgBox(QString::fromLatin1(NoPaymentsText), QString::fromLatin1(NoPaymentsTitle));
    else
        MsgBox(session().PaymentInfoText, QString::fromLatin1(PaymentInfoTitle));
}

void PaymentScreen::clearScreen() {
    m_clearing = true;
    m_billLoaded = false;
    m_bill = BillNow();
    m_flags = BillPayFlags();
    clearOwnState();
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        // The date credited stays for the next bill; the combo boxes' own editors are cleared
        // with their boxes.
        if (field == txtDate || qobject_cast<QComboBox*>(field->parentWidget()))
            continue;
        const QSignalBlocker block(field);
        field->clear();
        field->setStyleSheet(QString());
    }
    cboState->setEditText(QString());
    cboPState->setEditText(QString());
    cboPState->setCurrentIndex(-1);
    lblAdjustment->hide();
    lblAddressChange->hide();
    lblPaymentReceived->hide();
    chkCounty->setChecked(m_block[0]);
    chkTwp->setChecked(m_block[1]);
    chkSchool->setChecked(m_block[2]);
    for (QWidget* w : std::initializer_list<QWidget*>{
             txtDate, cmdDate, chkCounty, chkTwp, chkSchool, txtPayor, txtPAddr1, txtPAddr2,
             txtPCity, cboPState, txtPZipCode, txtPZipCode2, txtChecknum, txtAmount, cmdAccept,
             cmdPaymentInfo, cmdPrevPayor, cmdPrevComments})
        w->setEnabled(false);
    updateDetailFields();
    m_entry->forget();
    // A date typed and not yet taken goes back to the one in force.
    txtDate->setText(FormatDate(m_credited));
    refreshAmounts();

    const bool fromQuery = session().QueryOpenedScreen.contains(objectName());
    txtBillNo->setEnabled(!fromQuery);
    if (!fromQuery)
        txtBillNo->setFocus(Qt::OtherFocusReason);
    m_clearing = false;
}

void SetReceiptPayor(ReceiptCommon& r, const PayorEntry& p) {
    r.payor = p.payor;
    r.pAddr1 = p.pAddr1;
    r.pAddr2 = p.pAddr2;
    r.pCity = p.pCity;
    r.pState = p.pState;
    r.pZipCode = p.pZipCode;
    r.pZipCode2 = p.pZipCode2;
    r.checknum = p.checknum;
}
