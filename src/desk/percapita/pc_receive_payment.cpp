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

frmPCReceivePayment::frmPCReceivePayment(QWidget* parent) : PaymentScreen(parent) {
    setObjectName(QStringLiteral("frmPCReceivePayment"));
    setWindowTitle(QStringLiteral("Receive Per Capita Payments"));
    buildScreen();
    startEntries();
    loadOffice(lblTwp);
    showLinesByRates();
    clearScreen();
    session().LastScreenName = objectName();
}

void frmPCReceivePayment::buildScreen() {
    // The person's bill as it stands: the name in parts is shown as its print name.
    fraBill->setTitle(QStringLiteral("Taxpayer"));
    txtBirthdate = ShownField(fraBill, QStringLiteral("txtBirthdate"), 10);
    txtOccuCode = ShownField(fraBill, QStringLiteral("txtOccuCode"));
    txtOccuDesc = ShownField(fraBill, QStringLiteral("txtOccuDesc"), 50);
    txtOccuValue = ShownField(fraBill, QStringLiteral("txtOccuValue"), 10);
    {
        auto* g = new QGridLayout(fraBill);
        int row = layOwnerRows(g, nullptr, QString(), QStringLiteral("Care Of:"),
                               QStringLiteral("Address:"));
        AddFieldRow(g, row++, new QLabel(QStringLiteral("Birthdate:"), fraBill), txtBirthdate);
        auto* occupation = new QHBoxLayout;
        occupation->addWidget(txtOccuCode, 1);
        occupation->addWidget(txtOccuDesc, 4);
        occupation->addWidget(txtOccuValue, 2);
        g->addWidget(new QLabel(QStringLiteral("Occupation:"), fraBill), row, 0);
        g->addLayout(occupation, row++, 1);
    }

    // The three bodies, each with its per capita and occupation line.
    QGroupBox* frames[3] = {fraCounty, fraTwp, fraSchool};
    QLineEdit** perCapita[3] = {&txtCPerCapita, &txtTPerCapita, &txtSPerCapita};
    QLineEdit** occupation[3] = {&txtCOccupation, &txtTOccupation, &txtSOccupation};
    lblTwp = NamedLabel(fraTwp, QStringLiteral("lblTwp"), QStringLiteral("Township:"));
    auto* bodyRow = new QHBoxLayout;
    for (int b = 0; b < 3; ++b) {
        *perCapita[b] = ShownField(frames[b], QStringLiteral("txt") + PerCapitaFaceColumn(b * 2));
        *occupation[b] =
            ShownField(frames[b], QStringLiteral("txt") + PerCapitaFaceColumn(b * 2 + 1));
        std::vector<std::pair<QWidget*, QWidget*>> rows;
        if (b == 1)
            rows.push_back({lblTwp, nullptr});
        rows.push_back({new QLabel(QStringLiteral("Per Capita:"), frames[b]), *perCapita[b]});
        rows.push_back({new QLabel(QStringLiteral("Occupation:"), frames[b]), *occupation[b]});
        layBodyFrame(b, rows);
        bodyRow->addWidget(frames[b]);
    }
    for (QCheckBox* box : {chkCounty, chkTwp, chkSchool})
        connect(box, &QCheckBox::clicked, this, [this] {
            updateDetailFields();
            refreshAmounts();
        });

    auto* middle = new QGridLayout;
    middle->addWidget(fraBill, 0, 0);
    middle->addWidget(fraPayor, 0, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(bodyRow);
    layout->addLayout(middle);
    layout->addLayout(buttons);

    QWidget* order[] = {txtBillNo,       txtDate,     cmdDate,        chkCounty,    chkTwp,
                        chkSchool,       txtPayor,    txtPAddr1,      txtPAddr2,    txtPCity,
                        cboPState,       txtPZipCode, txtPZipCode2,   txtChecknum,  txtAmount,
                        chkPrintReceipt, cmdAccept,   cmdPaymentInfo, cmdPrevPayor, cmdPrevComments,
                        cmdPrintScreen};
    for (size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    connect(cmdPaymentInfo, &QPushButton::clicked, this, [this] {
        showPaymentInfo([this] {
            return PerCapitaPaymentInfoText(
                m_flags, m_btFlag,
                ReadPerCapitaReceipts(session().DbConnection, m_bill.text("BillNo")));
        });
    });
    connect(cmdQuery, &QPushButton::clicked, this, [] {
        // The per capita bill list, as its menu item opens it.
        if (ScreenHost* host = screenHost())
            if (QWidget* main = host->hostWindow())
                if (auto* item = main->findChild<QAction*>(QStringLiteral("mnuPCQueryTC")))
                    item->trigger();
    });
}

void frmPCReceivePayment::showLinesByRates() {
    const QSqlRecord& countyRow = m_countyRow;
    const QSqlRecord& municipalRow = m_municipalRow;
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
        for (QLineEdit* field : {perCapitaFields[b], occupationFields[b]}) {
            int row = 0, column = 0, rowSpan = 0, columnSpan = 0;
            grid->getItemPosition(grid->indexOf(field), &row, &column, &rowSpan, &columnSpan);
            if (QLayoutItem* item = grid->itemAtPosition(row, 0))
                if (item->widget())
                    item->widget()->setVisible(field->isVisibleTo(frames[b]));
        }
        m_block[b] = perCapita[b] || occupation[b];
        frames[b]->setVisible(m_block[b]);
    }
}

void frmPCReceivePayment::billNoLeft() {
    std::optional<BillNow> bill = readBill(Duplicate::PerCapita);
    if (!bill)
        return;
    m_bill = std::move(*bill);
    m_billLoaded = true;
    m_flags = BillPayFlagsFromRecord(m_bill.bill);
    showBill();

    session().PaymentInfoText = PerCapitaPaymentInfoText(
        m_flags, m_btFlag, ReadPerCapitaReceipts(session().DbConnection, m_bill.text("BillNo")));
    lblPaymentReceived->setVisible(!session().PaymentInfoText.isEmpty());

    // A body is settled by any flag; there is no tax claim warning here.
    const std::array<QString, 3> flags{m_flags.cPayFlag, m_flags.tPayFlag, m_flags.sPayFlag};
    std::array<bool, 3> settled{};
    for (int b = 0; b < 3; ++b)
        settled[b] = !isBlank(flags[b]);
    if (refuseSettledBill(flags, settled))
        return;

    // A body already paid, exonerated or with nothing to pay is closed.
    const TaxBody bodies[3] = {TaxBody::County, TaxBody::Twp, TaxBody::School};
    std::array<bool, 3> closed{};
    for (int b = 0; b < 3; ++b)
        closed[b] = settled[b] || PerCapitaBodyFace(m_bill.bill, bodies[b]).isZero();
    openForPayment(closed);
    updateDetailFields();
    refreshAmounts();
    txtPayor->setFocus(Qt::OtherFocusReason);
}

void frmPCReceivePayment::showBill() {
    const BillNow& b = m_bill;
    showBillOwner();
    txtBirthdate->setText(b.text("Birthdate"));
    txtOccuCode->setText(b.text("OccuCode"));
    txtOccuDesc->setText(b.text("OccuDesc"));
    txtOccuValue->setText(b.text("OccuValue"));
}

// ---------------------------------------------------------------------------------------------
// Amounts and ticks
// ---------------------------------------------------------------------------------------------

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

void frmPCReceivePayment::acceptPayment() {
    // 1 to 6, then 7 and 8: the flags of the ticked bodies, and the amount against their total.
    const PaymentSelection sel = selection();
    const std::optional<PaymentCheck> check =
        checkAccept([&] { return PerCapitaTotalDue(sel, m_amounts); });
    if (!check)
        return;

    // 9. The receipt's amounts, then 10 to 12, the writes.
    PerCapitaPosting posting = BuildPerCapitaPosting(m_bill, sel, m_periods, m_amounts);
    PerCapitaReceipt& r = posting.receipt;
    r.rdate = m_credited;
    r.overage = check->overage;
    r.refund = check->refund;
    SetReceiptPayor(r, m_entry->payorEntry());
    // 13 to 15: the receipt, the refund screen, "Payment Received".
    finishPayment(
        PostPerCapitaPayment(session().DbConnection, posting, Clock::today()), *check,
        [this](const QString& recnum) {
            AskAndPrintPCReceipt(this, recnum, session().DbConnection);
        },
        [](const RefundSource& source) {
            auto* refund = new frmPCRefund(source);
            if (ScreenHost* main = screenHost()) {
                main->showScreen(refund, true);
            } else {
                refund->exec();
                delete refund;
            }
        });
}

void frmPCReceivePayment::clearOwnState() {
    m_amounts = PerCapitaAmounts();
}
