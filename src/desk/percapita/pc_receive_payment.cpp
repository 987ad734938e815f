#include "desk/percapita/pc_receive_payment.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/percapita/pc_receipt.h"
#include "desk/percapita/pc_receipt_writes.h"
#include "desk/percapita/pc_refund.h"
#include "desk/realestate/payment_screen_parts.h"

#include <QAbstractButton>
#include <QAction>
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
#include <QVBoxLayout>

namespace {

const char* const ReceivePaymentTitle = "Receive Payment";
const char* const ReceiveAPaymentTitle = "Receive A Payment";
const char16_t* const MoneyPattern = u"$###,###,##0.00";

QString moneyText(Money amount) {
    return amount.format(MoneyPattern);
}

bool isBlank(QStringView flag) {
    return flag.trimmed().isEmpty();
}

} // namespace

frmPCReceivePayment::frmPCReceivePayment(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmPCReceivePayment"));
    setWindowTitle(QStringLiteral("Receive Per Capita Payments"));
    buildScreen();
    m_entry.emplace(PaymentEntryFields{
        txtDate,      txtPayor,    txtPAddr1,   txtPAddr2, txtPCity, cboPState, txtPZipCode,
        txtPZipCode2, txtChecknum, txtAmount,   txtName,   txtAddr1, txtAddr2,  txtCity,
        cboState,     txtZipCode,  txtZipCode2, chkCounty, chkTwp,   chkSchool});
    loadRates();
    clearScreen();
    session().LastScreenName = objectName();
}

void frmPCReceivePayment::buildScreen() {
    const PaymentScreenParts parts = BuildPaymentScreenParts(this);
    txtBillNo = parts.txtBillNo;
    txtAdjNo = parts.txtAdjNo;
    txtDate = parts.txtDate;
    cmdDate = parts.cmdDate;
    lblAdjustment = parts.lblAdjustment;
    lblAddressChange = parts.lblAddressChange;
    lblPaymentReceived = parts.lblPaymentReceived;
    txtPayor = parts.txtPayor;
    txtPAddr1 = parts.txtPAddr1;
    txtPAddr2 = parts.txtPAddr2;
    txtPCity = parts.txtPCity;
    cboPState = parts.cboPState;
    txtPZipCode = parts.txtPZipCode;
    txtPZipCode2 = parts.txtPZipCode2;
    txtChecknum = parts.txtChecknum;
    txtAmount = parts.txtAmount;
    txtTotal = parts.txtTotal;
    chkPrintReceipt = parts.chkPrintReceipt;
    cmdAccept = parts.cmdAccept;
    cmdClearScreen = parts.cmdClearScreen;
    cmdQuery = parts.cmdQuery;
    cmdPaymentInfo = parts.cmdPaymentInfo;
    cmdPrevPayor = parts.cmdPrevPayor;
    cmdPrevComments = parts.cmdPrevComments;
    cmdPrintScreen = parts.cmdPrintScreen;
    cmdExit = parts.cmdExit;

    // The person's bill as it stands.
    auto* fraBill = new QGroupBox(QStringLiteral("Taxpayer"), this);
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
    txtBirthdate = ShownField(fraBill, QStringLiteral("txtBirthdate"), 10);
    txtOccuCode = ShownField(fraBill, QStringLiteral("txtOccuCode"));
    txtOccuDesc = ShownField(fraBill, QStringLiteral("txtOccuDesc"), 50);
    txtOccuValue = ShownField(fraBill, QStringLiteral("txtOccuValue"), 10);
    {
        auto* g = new QGridLayout(fraBill);
        int row = 0;
        AddFieldRow(g, row++, new QLabel(QStringLiteral("Control #:"), fraBill), txtControl);
        AddFieldRow(g, row++, new QLabel(QStringLiteral("Name:"), fraBill), txtName);
        AddFieldRow(g, row++, new QLabel(QStringLiteral("Care Of:"), fraBill), txtAddr1);
        AddFieldRow(g, row++, new QLabel(QStringLiteral("Address:"), fraBill), txtAddr2);
        auto* cityRow = new QHBoxLayout;
        cityRow->addWidget(txtCity, 3);
        cityRow->addWidget(cboState, 1);
        cityRow->addWidget(txtZipCode, 1);
        cityRow->addWidget(txtZipCode2, 1);
        g->addWidget(new QLabel(QStringLiteral("City/St/Zip:"), fraBill), row, 0);
        g->addLayout(cityRow, row++, 1);
        AddFieldRow(g, row++, new QLabel(QStringLiteral("Birthdate:"), fraBill), txtBirthdate);
        auto* occupation = new QHBoxLayout;
        occupation->addWidget(txtOccuCode, 1);
        occupation->addWidget(txtOccuDesc, 4);
        occupation->addWidget(txtOccuValue, 2);
        g->addWidget(new QLabel(QStringLiteral("Occupation:"), fraBill), row, 0);
        g->addLayout(occupation, row++, 1);
    }

    // The three bodies, each with its per capita and occupation line.
    struct Body {
        QGroupBox*& frame;
        const char* frameName;
        QString title;
        QCheckBox*& box;
        const char* boxName;
        QString caption;
        QLabel*& period;
        const char* periodName;
        QLineEdit*& perCapita;
        const char* perCapitaName;
        QLineEdit*& occupation;
        const char* occupationName;
        QLineEdit*& total;
        const char* totalName;
    };
    QLabel* twpCaption = nullptr;
    Body bodies[3] = {
        {fraCounty, "fraCounty", QStringLiteral("County"), chkCounty, "chkCounty",
         QStringLiteral("County Payment"), lblCPeriod, "lblCPeriod", txtCPerCapita, "txtCPerCapita",
         txtCOccupation, "txtCOccupation", txtCTotal, "txtCTotal"},
        {fraTwp, "fraTwp", QStringLiteral("Twp/Boro/City"), chkTwp, "chkTwp",
         QStringLiteral("Twp/Boro/City Payment"), lblTPeriod, "lblTPeriod", txtTPerCapita,
         "txtTPerCapita", txtTOccupation, "txtTOccupation", txtTTotal, "txtTTotal"},
        {fraSchool, "fraSchool", QStringLiteral("School"), chkSchool, "chkSchool",
         QStringLiteral("School Payment"), lblSPeriod, "lblSPeriod", txtSPerCapita, "txtSPerCapita",
         txtSOccupation, "txtSOccupation", txtSTotal, "txtSTotal"},
    };
    auto* bodyRow = new QHBoxLayout;
    for (Body& b : bodies) {
        b.frame = new QGroupBox(b.title, this);
        b.frame->setObjectName(QString::fromLatin1(b.frameName));
        b.box = new QCheckBox(b.caption, b.frame);
        b.box->setObjectName(QString::fromLatin1(b.boxName));
        b.period = NamedLabel(b.frame, QString::fromLatin1(b.periodName), QString());
        b.period->setStyleSheet(QStringLiteral("font-weight: bold;"));
        b.perCapita = ShownField(b.frame, QString::fromLatin1(b.perCapitaName));
        b.occupation = ShownField(b.frame, QString::fromLatin1(b.occupationName));
        b.total = ShownField(b.frame, QString::fromLatin1(b.totalName));
        auto* g = new QGridLayout(b.frame);
        g->addWidget(b.box, 0, 0, 1, 2);
        g->addWidget(b.period, 1, 0, 1, 2);
        if (b.box == chkTwp) {
            lblTwp = NamedLabel(b.frame, QStringLiteral("lblTwp"), QStringLiteral("Township:"));
            twpCaption = lblTwp;
            g->addWidget(lblTwp, 2, 0, 1, 2);
        }
        AddFieldRow(g, 3, new QLabel(QStringLiteral("Per Capita:"), b.frame), b.perCapita);
        AddFieldRow(g, 4, new QLabel(QStringLiteral("Occupation:"), b.frame), b.occupation);
        AddFieldRow(g, 5, new QLabel(QStringLiteral("Total:"), b.frame), b.total);
        g->setRowStretch(6, 1);
        bodyRow->addWidget(b.frame);
        connect(b.box, &QCheckBox::clicked, this, [this] {
            updateDetailFields();
            refreshAmounts();
        });
    }
    Q_UNUSED(twpCaption);

    auto* middle = new QGridLayout;
    middle->addWidget(fraBill, 0, 0);
    middle->addWidget(parts.fraPayor, 0, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(parts.top);
    layout->addLayout(bodyRow);
    layout->addLayout(middle);
    layout->addLayout(parts.buttons);

    QWidget* order[] = {txtBillNo,       txtDate,     cmdDate,        chkCounty,    chkTwp,
                        chkSchool,       txtPayor,    txtPAddr1,      txtPAddr2,    txtPCity,
                        cboPState,       txtPZipCode, txtPZipCode2,   txtChecknum,  txtAmount,
                        chkPrintReceipt, cmdAccept,   cmdPaymentInfo, cmdPrevPayor, cmdPrevComments,
                        cmdPrintScreen};
    for (size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    for (QWidget* w : {txtBillNo, txtDate, txtPayor, txtChecknum, txtAmount})
        w->installEventFilter(this);
    for (QAbstractButton* b : findChildren<QAbstractButton*>())
        b->installEventFilter(this);

    connect(cmdAccept, &QPushButton::clicked, this, [this] { accept(); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdPaymentInfo, &QPushButton::clicked, this, [this] { showPaymentInfo(); });
    connect(cmdPrevPayor, &QPushButton::clicked, this, [this] { m_entry->previousPayor(); });
    connect(cmdPrevComments, &QPushButton::clicked, this, [this] { m_entry->previousCheck(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
    connect(cmdQuery, &QPushButton::clicked, this, [] {
        // The per capita bill list, as its menu item opens it.
        if (ScreenHost* host = screenHost())
            if (QWidget* main = host->hostWindow())
                if (auto* item = main->findChild<QAction*>(QStringLiteral("mnuPCQueryTC")))
                    item->trigger();
    });
}

void frmPCReceivePayment::loadRates() {
    QSqlDatabase db = session().DbConnection;
    QSqlQuery q(db);
    QString district, ward;
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        district = TextField(q.value(0));
        ward = TextField(q.value(1));
    }
    QSqlRecord countyRow, municipalRow;
    if (q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = '000'")) && q.next())
        countyRow = q.record();
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(district + ward);
    if (q.exec() && q.next())
        municipalRow = q.record();
    m_calendar = PaymentCalendarFromMillfile(municipalRow);

    q.prepare(QStringLiteral("SELECT BTFlag FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(district);
    q.addBindValue(ward);
    if (q.exec() && q.next())
        m_btFlag = TextField(q.value(0)).trimmed();
    lblTwp->setText(m_btFlag == QLatin1String("B")   ? QStringLiteral("Borough:")
                    : m_btFlag == QLatin1String("C") ? QStringLiteral("City:")
                                                     : QStringLiteral("Township:"));

    // Each line shows by its own rate. The county's lines go by the county row's real-estate
    // millages (SMR for the per capita, S1MR for the occupation line), as the real-estate
    // screen reads that row; the municipal and school lines by their per capita amount and
    // occupation millage of the municipal row.
    auto rate = [](const QSqlRecord& row, const char* column) {
        return row.value(QString::fromLatin1(column)).toDouble() != 0;
    };
    const bool perCapita[3] = {rate(countyRow, "SMR"), rate(municipalRow, "TPC"),
                               rate(municipalRow, "SPC")};
    const bool occupation[3] = {rate(countyRow, "S1MR"), rate(municipalRow, "TMO"),
                                rate(municipalRow, "SMO")};
    QLineEdit* perCapitaFields[3] = {txtCPerCapita, txtTPerCapita, txtSPerCapita};
    QLineEdit* occupationFields[3] = {txtCOccupation, txtTOccupation, txtSOccupation};
    QGroupBox* frames[3] = {fraCounty, fraTwp, fraSchool};
    for (int b = 0; b < 3; ++b) {
        perCapitaFields[b]->setVisible(perCapita[b]);
        occupationFields[b]->setVisible(occupation[b]);
        // The caption beside each field goes with it.
        auto* grid = static_cast<QGridLayout*>(frames[b]->layout());
        for (int r = 3; r <= 4; ++r)
            if (QLayoutItem* item = grid->itemAtPosition(r, 0))
                if (item->widget())
                    item->widget()->setVisible(r == 3 ? perCapita[b] : occupation[b]);
        m_block[b] = perCapita[b] || occupation[b];
        frames[b]->setVisible(m_block[b]);
    }

    if (q.exec(QStringLiteral("SELECT State FROM tbl_States")))
        while (q.next())
            cboPState->addItem(TextField(q.value(0)));

    m_credited = Clock::today();
    txtDate->setText(FormatDate(m_credited));
    m_periods = PeriodsForDate(m_calendar, m_credited);
}

void frmPCReceivePayment::applyDefaultTicks() {
    chkCounty->setChecked(m_block[0]);
    chkTwp->setChecked(m_block[1]);
    chkSchool->setChecked(m_block[2]);
}

void frmPCReceivePayment::lockEntryFields() {
    for (QWidget* w : std::initializer_list<QWidget*>{
             txtDate, cmdDate, chkCounty, chkTwp, chkSchool, txtPayor, txtPAddr1, txtPAddr2,
             txtPCity, cboPState, txtPZipCode, txtPZipCode2, txtChecknum, txtAmount, cmdAccept,
             cmdPaymentInfo, cmdPrevPayor, cmdPrevComments})
        w->setEnabled(false);
}

// ---------------------------------------------------------------------------------------------
// Field leave
// ---------------------------------------------------------------------------------------------

bool frmPCReceivePayment::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease)
        return SwallowRefusedRelease(watched) || QWidget::eventFilter(watched, event);
    // The amount offered is selected on entry, so what is typed replaces it.
    if (event->type() == QEvent::FocusIn && watched == txtAmount &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::MouseFocusReason) {
        txtAmount->selectAll();
        return QWidget::eventFilter(watched, event);
    }
    if (!IsFieldLeave(event) || m_clearing || m_inLeave)
        return QWidget::eventFilter(watched, event);

    QPointer<QWidget> target = QApplication::focusWidget();
    m_inLeave = true;
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

void frmPCReceivePayment::enterBillNo(const QString& billNo) {
    if (!txtBillNo->isEnabled())
        return;
    txtBillNo->setText(billNo);
    m_inLeave = true;
    billNoLeft();
    m_inLeave = false;
}

void frmPCReceivePayment::openFromQuery(const QString& billNo) {
    clearScreen();
    txtBillNo->setEnabled(true);
    txtBillNo->setText(billNo);
    m_inLeave = true;
    billNoLeft();
    m_inLeave = false;
    // The number stays locked: the screen works on the bill the query gave.
    txtBillNo->setEnabled(false);
}

void frmPCReceivePayment::billNoLeft() {
    if (txtBillNo->text().trimmed().isEmpty())
        return;
    const QString billNo = PadBillNo(txtBillNo->text());
    {
        const QSignalBlocker block(txtBillNo);
        txtBillNo->setText(billNo);
    }
    BillNow bill = ReadBillAsItStands(session().DbConnection, Duplicate::PerCapita, billNo);
    if (bill.status == BillNow::Status::NotFound || bill.status == BillNow::Status::Error) {
        MsgBox(QStringLiteral("Bill Number Not On File"), QString::fromLatin1(ReceivePaymentTitle),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtBillNo->setFocus(Qt::OtherFocusReason);
        txtBillNo->selectAll();
        return;
    }
    if (!CheckBillIntegrity(bill)) {
        clearScreen();
        return;
    }

    m_bill = std::move(bill);
    m_billLoaded = true;
    m_flags = BillPayFlagsFromRecord(m_bill.bill);
    showBill();

    session().PaymentInfoText = PerCapitaPaymentInfoText(
        m_flags, m_btFlag, ReadPerCapitaReceipts(session().DbConnection, billNo));
    lblPaymentReceived->setVisible(!session().PaymentInfoText.isEmpty());

    // Nothing can be taken on a bill whose every part shown is exonerated or paid. An
    // exonerated part counts as paid, so the exoneration is told first, as on the real-estate
    // screen.
    const QString flags[3] = {m_flags.cPayFlag, m_flags.tPayFlag, m_flags.sPayFlag};
    bool anyVisible = false;
    bool allExonerated = true;
    bool allPaid = true;
    for (int b = 0; b < 3; ++b) {
        if (!m_block[b])
            continue;
        anyVisible = true;
        if (flags[b].trimmed() != QLatin1String("X"))
            allExonerated = false;
        if (isBlank(flags[b]))
            allPaid = false;
    }
    if (anyVisible && allExonerated) {
        MsgBox(QStringLiteral("This tax bill has been exonerated. You cannot receive a payment "
                              "on this account."),
               QString::fromLatin1(ReceiveAPaymentTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        clearScreen();
        return;
    }
    if (anyVisible && allPaid) {
        txtAmount->clear();
        MsgBox(QStringLiteral("This Account has already been paid in full. You cannot receive a "
                              "payment on this account."),
               QString::fromLatin1(ReceiveAPaymentTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        clearScreen();
        return;
    }

    txtBillNo->setEnabled(false);
    cmdAccept->setEnabled(true);
    cmdPaymentInfo->setEnabled(true);
    cmdDate->setEnabled(true);
    cmdPrevPayor->setEnabled(true);
    cmdPrevComments->setEnabled(true);

    // A body already paid, exonerated or with nothing to pay is closed.
    QCheckBox* boxes[3] = {chkCounty, chkTwp, chkSchool};
    const TaxBody bodies[3] = {TaxBody::County, TaxBody::Twp, TaxBody::School};
    for (int b = 0; b < 3; ++b) {
        const bool closed =
            !isBlank(flags[b]) || PerCapitaBodyFace(m_bill.bill, bodies[b]).isZero();
        boxes[b]->setEnabled(!closed && m_block[b]);
        if (closed)
            boxes[b]->setChecked(false);
    }
    for (QWidget* w :
         std::initializer_list<QWidget*>{txtPayor, txtPAddr1, txtPAddr2, txtPCity, cboPState,
                                         txtPZipCode, txtPZipCode2, txtChecknum, txtAmount})
        w->setEnabled(true);
    updateDetailFields();
    refreshAmounts();
    txtPayor->setFocus(Qt::OtherFocusReason);
}

void frmPCReceivePayment::showBill() {
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
    txtBirthdate->setText(b.text("Birthdate"));
    txtOccuCode->setText(b.text("OccuCode"));
    txtOccuDesc->setText(b.text("OccuDesc"));
    txtOccuValue->setText(b.text("OccuValue"));
    lblAdjustment->setVisible(b.text("AdjFlag").trimmed() == QLatin1String("A"));
    lblAddressChange->setVisible(b.text("CAddrFlag").trimmed() == QLatin1String("A"));
}

bool frmPCReceivePayment::dateLeft() {
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
// Amounts and ticks
// ---------------------------------------------------------------------------------------------

PaymentSelection frmPCReceivePayment::selection() const {
    PaymentSelection s;
    s.county = chkCounty->isChecked();
    s.twp = chkTwp->isChecked();
    s.school = chkSchool->isChecked();
    return s;
}

void frmPCReceivePayment::updateDetailFields() {
    const std::pair<QCheckBox*, std::array<QWidget*, 4>> blocks[3] = {
        {chkCounty, {txtCPerCapita, txtCOccupation, txtCTotal, lblCPeriod}},
        {chkTwp, {txtTPerCapita, txtTOccupation, txtTTotal, lblTPeriod}},
        {chkSchool, {txtSPerCapita, txtSOccupation, txtSTotal, lblSPeriod}},
    };
    for (const auto& [box, details] : blocks)
        for (QWidget* w : details)
            w->setEnabled(!m_billLoaded || box->isChecked());
}

void frmPCReceivePayment::refreshAmounts(bool offer) {
    lblCPeriod->setText(PeriodLabel(m_periods.county));
    lblTPeriod->setText(PeriodLabel(m_periods.twp));
    lblSPeriod->setText(PeriodLabel(m_periods.school));
    if (!m_billLoaded)
        return;
    m_amounts = PerCapitaAmountsForPeriods(m_bill.bill, m_periods);
    QLineEdit* lineFields[PerCapitaLineCount] = {txtCPerCapita,  txtCOccupation, txtTPerCapita,
                                                 txtTOccupation, txtSPerCapita,  txtSOccupation};
    for (int i = 0; i < PerCapitaLineCount; ++i)
        lineFields[i]->setText(moneyText(m_amounts.line[i].amount));
    txtCTotal->setText(moneyText(m_amounts.bodyTotal(TaxBody::County)));
    txtTTotal->setText(moneyText(m_amounts.bodyTotal(TaxBody::Twp)));
    txtSTotal->setText(moneyText(m_amounts.bodyTotal(TaxBody::School)));
    txtTotal->setText(moneyText(m_amounts.total()));
    if (offer)
        txtAmount->setText(moneyText(PerCapitaAmountOffered(
            selection(), m_flags.cPayFlag, m_flags.tPayFlag, m_flags.sPayFlag, m_amounts)));
}

// ---------------------------------------------------------------------------------------------
// Accept
// ---------------------------------------------------------------------------------------------

void frmPCReceivePayment::accept() {
    if (!m_billLoaded)
        return;
    // The focus moves about while the payment is checked; no field-leave action runs meanwhile.
    m_inLeave = true;
    acceptPayment();
    m_inLeave = false;
}

void frmPCReceivePayment::acceptPayment() {
    const QString title = QString::fromLatin1(ReceivePaymentTitle);

    // 1 to 6: a body, date, payor, check, amount, and the question.
    const std::optional<Money> amount = m_entry->checkForAccept([this](const QDate& date) {
        m_credited = date;
        m_periods = PeriodsForDate(m_calendar, m_credited);
        refreshAmounts(false);
    });
    if (!amount)
        return;

    // 7 and 8: the flags of the ticked bodies, and the amount against their total.
    const PaymentSelection sel = selection();
    const std::optional<PaymentCheck> check = m_entry->checkAgainstTotal(
        *amount, PerCapitaTotalDue(sel, m_amounts), m_calendar.tolerance);
    if (!check)
        return;

    // 9. The receipt's amounts, then 10 to 12, the writes.
    PerCapitaPosting posting = BuildPerCapitaPosting(m_bill, sel, m_periods, m_amounts);
    PerCapitaReceipt& r = posting.receipt;
    r.rdate = m_credited;
    r.overage = check->overage;
    r.refund = check->refund;
    const PayorEntry payor = m_entry->payorEntry();
    r.payor = payor.payor;
    r.pAddr1 = payor.pAddr1;
    r.pAddr2 = payor.pAddr2;
    r.pCity = payor.pCity;
    r.pState = payor.pState;
    r.pZipCode = payor.pZipCode;
    r.pZipCode2 = payor.pZipCode2;
    r.checknum = payor.checknum;
    const PostingResult posted =
        PostPerCapitaPayment(session().DbConnection, posting, Clock::today());
    if (!posted.ok) {
        MsgBox(QStringLiteral("The payment could not be saved: ") + posted.error, title,
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    m_entry->remember(payor);

    // 13. The receipt, with the payor and owner as this screen shows them.
    if (chkPrintReceipt->isChecked())
        AskAndPrintPCReceipt(this, posted.recnum, session().DbConnection);
    // 14. Money to go back.
    if (check->refund > Money()) {
        session().RefundRecnum = posted.recnum;
        session().RefundAmount = check->refund;
        openRefund();
    }
    Q_EMIT paymentReceived(posted.recnum);

    // 15.
    MsgBox(QStringLiteral("Payment Received"), title, MsgButtons::Ok, MsgIcon::Information);
    clearScreen();
    txtBillNo->setFocus(Qt::OtherFocusReason);
}

void frmPCReceivePayment::openRefund() {
    RefundSource source;
    source.control = txtControl->text();
    source.billNo = txtBillNo->text();
    source.adjNo = txtAdjNo->text();
    const PayorEntry payor = m_entry->payorEntry();
    source.payor = {payor.payor,  payor.pAddr1,   payor.pAddr2,   payor.pCity,
                    payor.pState, payor.pZipCode, payor.pZipCode2};
    source.owner = {txtName->text(),    txtAddr1->text(),        txtAddr2->text(),
                    txtCity->text(),    cboState->currentText(), txtZipCode->text(),
                    txtZipCode2->text()};
    auto* refund = new frmPCRefund(source);
    if (ScreenHost* main = screenHost()) {
        main->showScreen(refund, true);
    } else {
        refund->exec();
        delete refund;
    }
}

void frmPCReceivePayment::showPaymentInfo() {
    if (m_billLoaded)
        session().PaymentInfoText = PerCapitaPaymentInfoText(
            m_flags, m_btFlag,
            ReadPerCapitaReceipts(session().DbConnection, m_bill.text("BillNo")));
    if (session().PaymentInfoText.isEmpty())
        MsgBox(QString::fromLatin1(NoPaymentsText), QString::fromLatin1(NoPaymentsTitle));
    else
        MsgBox(session().PaymentInfoText, QString::fromLatin1(PaymentInfoTitle));
}

void frmPCReceivePayment::clearScreen() {
    m_clearing = true;
    m_billLoaded = false;
    m_bill = BillNow();
    m_flags = BillPayFlags();
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        // The date credited stays for the next bill; the combo boxes' own editors are cleared
        // with their boxes.
        if (field == txtDate || qobject_cast<QComboBox*>(field->parentWidget()))
            continue;
        const QSignalBlocker block(field);
        field->clear();
    }
    cboState->setEditText(QString());
    cboPState->setEditText(QString());
    cboPState->setCurrentIndex(-1);
    lblAdjustment->hide();
    lblAddressChange->hide();
    lblPaymentReceived->hide();
    applyDefaultTicks();
    lockEntryFields();
    updateDetailFields();
    m_entry->forget();
    txtDate->setText(FormatDate(m_credited));
    refreshAmounts();

    const bool fromQuery = session().QueryOpenedScreen.contains(objectName());
    txtBillNo->setEnabled(!fromQuery);
    if (!fromQuery)
        txtBillNo->setFocus(Qt::OtherFocusReason);
    m_clearing = false;
}
