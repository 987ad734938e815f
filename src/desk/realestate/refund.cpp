#include "desk/realestate/refund.h"

#include "core/clock.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/realestate/receipt_writes.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QVBoxLayout>

namespace {

const char16_t* const MoneyPattern = u"$###,###,##0.00";

// The typed amount taken to the cent, or nothing when it is no amount.
std::optional<Money> typedAmount(const QString& text) {
    const std::optional<Money> typed = Money::parse(text);
    if (!typed)
        return std::nullopt;
    return Money::parse(typed->format(u"0.00"));
}

} // namespace

frmRERefund::frmRERefund(const RefundSource& source, QWidget* parent)
    : RefundDialog(source,
                   {QStringLiteral("frmRERefund"), QStringLiteral("Real Estate Refunds"),
                    &RealEstateDesk(), false},
                   parent) {}

RefundDialog::RefundDialog(const RefundSource& source, const RefundKind& kind, QWidget* parent)
    : QDialog(parent), m_source(source), m_kind(kind) {
    setObjectName(kind.objectName);
    setWindowTitle(kind.title);
    const bool hasMap = kind.tables->hasMap;

    txtControl = ShownField(this, "txtControl", 6);
    if (hasMap) {
        txtMap3 = ShownField(this, "txtMap3", 8);
        txtMap4 = ShownField(this, "txtMap4", 6);
        txtMap5 = ShownField(this, "txtMap5", 9);
    }
    txtBillNo = ShownField(this, "txtBillNo", 5);
    txtAdjNo = ShownField(this, "txtAdjNo", 2);
    txtRecnum = ShownField(this, "txtRecnum", 12);
    txtName = NamedField(this, "txtName", 50);
    txtAddr1 = NamedField(this, "txtAddr1", 50);
    txtAddr2 = NamedField(this, "txtAddr2", 50);
    txtCity = NamedField(this, "txtCity", 25);
    cboState = new QComboBox(this);
    cboState->setObjectName(QStringLiteral("cboState"));
    cboState->setEditable(true);
    cboState->setInsertPolicy(QComboBox::NoInsert);
    cboState->lineEdit()->setMaxLength(2);
    txtZipCode = NamedField(this, "txtZipCode", 5);
    txtZipCode2 = NamedField(this, "txtZipCode2", 4);
    txtDesc1 = NamedField(this, "txtDesc1", 50);
    txtRefund = NamedField(this, "txtRefund", 20);
    txtRefundLeft = ShownField(this, "txtRefundLeft", 20);
    cmdApplyRefund = new QPushButton(QStringLiteral("&Apply Refund"), this);
    cmdApplyRefund->setObjectName(QStringLiteral("cmdApplyRefund"));
    cmdDisplayOwnersAddress = new QPushButton(QStringLiteral("Display &Owner's Address"), this);
    cmdDisplayOwnersAddress->setObjectName(QStringLiteral("cmdDisplayOwnersAddress"));

    auto* grid = new QGridLayout;
    int row = 0;
    auto add = [&](const QString& caption, QWidget* field) {
        grid->addWidget(new QLabel(caption, this), row, 0);
        grid->addWidget(field, row++, 1);
    };
    auto addLine = [&](const QString& caption, std::initializer_list<QWidget*> fields) {
        auto* line = new QHBoxLayout;
        for (QWidget* f : fields)
            line->addWidget(f);
        grid->addWidget(new QLabel(caption, this), row, 0);
        grid->addLayout(line, row++, 1);
    };
    addLine(QStringLiteral("Control #/Bill #/Adj #:"), {txtControl, txtBillNo, txtAdjNo});
    if (hasMap)
        addLine(QStringLiteral("Map #:"), {txtMap3, txtMap4, txtMap5});
    add(QStringLiteral("Receipt #:"), txtRecnum);
    add(QStringLiteral("Payee:"), txtName);
    add(QStringLiteral("Address:"), txtAddr1);
    add(QString(), txtAddr2);
    addLine(QStringLiteral("City/St/Zip:"), {txtCity, cboState, txtZipCode, txtZipCode2});
    add(QStringLiteral("Reason:"), txtDesc1);
    add(QStringLiteral("Refund Amount:"), txtRefund);
    add(QStringLiteral("Left To Refund:"), txtRefundLeft);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdDisplayOwnersAddress);
    buttons->addStretch();
    buttons->addWidget(cmdApplyRefund);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    QWidget* order[] = {txtName,
                        txtAddr1,
                        txtAddr2,
                        txtCity,
                        cboState,
                        txtZipCode,
                        txtZipCode2,
                        txtDesc1,
                        txtRefund,
                        cmdApplyRefund,
                        cmdDisplayOwnersAddress};
    for (size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);
    txtRefund->installEventFilter(this);
    connect(cmdApplyRefund, &QPushButton::clicked, this, [this] { applyRefund(); });
    connect(cmdDisplayOwnersAddress, &QPushButton::clicked, this,
            [this] { showPayee(m_source.owner); });

    // Opening.
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT State FROM tbl_States")))
        while (q.next())
            cboState->addItem(q.value(0).toString());
    txtControl->setText(source.control);
    if (hasMap) {
        txtMap3->setText(source.map3);
        txtMap4->setText(source.map4);
        txtMap5->setText(source.map5);
    }
    txtBillNo->setText(source.billNo);
    txtAdjNo->setText(source.adjNo.trimmed().isEmpty() ? QStringLiteral("0") : source.adjNo);
    txtRecnum->setText(session().RefundRecnum);
    m_left = session().RefundAmount;
    txtRefundLeft->setText(m_left.format(MoneyPattern));
    txtRefund->setText(m_left.format(MoneyPattern));
    showPayee(source.payor);
}

void RefundDialog::showPayee(const RefundPayee& payee) {
    txtName->setText(payee.name);
    txtAddr1->setText(payee.addr1);
    txtAddr2->setText(payee.addr2);
    txtCity->setText(payee.city);
    cboState->setEditText(payee.state);
    txtZipCode->setText(payee.zipCode);
    txtZipCode2->setText(payee.zipCode2);
}

bool RefundDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtRefund && event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            if (const std::optional<Money> amount = typedAmount(txtRefund->text()))
                txtRefund->setText(amount->format(MoneyPattern));
    }
    return QDialog::eventFilter(watched, event);
}

void RefundDialog::applyRefund() {
    const QString amountTitle = QStringLiteral("Enter Refund Amount");
    const std::optional<Money> amount = typedAmount(txtRefund->text());
    QString problem;
    if (!amount)
        problem = QStringLiteral("Invalid Refund Amount");
    else if (*amount > m_left)
        problem = QStringLiteral("Refund Amount Cannot Be Greater Than Amount Left To Refund");
    else if (*amount <= Money())
        problem = QStringLiteral("Refund Amount Must Be Greater Than Zero");
    if (!problem.isEmpty()) {
        MsgBox(problem, amountTitle, MsgButtons::Ok, MsgIcon::Exclamation);
        txtRefund->setFocus(Qt::OtherFocusReason);
        txtRefund->selectAll();
        return;
    }
    if (txtDesc1->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Reason for refund must be specified"),
               QStringLiteral("Enter Reason For Refund"), MsgButtons::Ok, MsgIcon::Exclamation);
        txtDesc1->setFocus(Qt::OtherFocusReason);
        return;
    }

    RefundRecord row;
    row.control = m_source.control;
    row.billNo = m_source.billNo;
    row.adjNo = txtAdjNo->text().trimmed().toInt();
    row.recnum = session().RefundRecnum;
    row.recNumId = m_recNumId + 1;
    row.map3 = m_source.map3;
    row.map4 = m_source.map4;
    row.map5 = m_source.map5;
    row.name = txtName->text();
    row.addr1 = txtAddr1->text();
    row.addr2 = txtAddr2->text();
    row.city = txtCity->text();
    row.state = cboState->currentText();
    row.zipCode = txtZipCode->text();
    row.zipCode2 = txtZipCode2->text();
    row.desc1 = txtDesc1->text();
    row.refund = *amount;
    row.disbNum = session().TaxYear + QStringLiteral("00");
    row.rdate = Clock::today();
    QString error;
    if (!AddRefund(session().DbConnection, *m_kind.tables, row, &error)) {
        MsgBox(QStringLiteral("The refund could not be saved: ") + error,
               QStringLiteral("Apply Refund"), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    m_recNumId = row.recNumId;
    m_left -= *amount;
    session().RefundAmount = m_left;
    txtRefundLeft->setText(m_left.format(MoneyPattern));

    if (!m_left.isZero()) {
        if (m_kind.tellWhatIsLeft)
            MsgBox(QStringLiteral("There is still ") + m_left.format(MoneyPattern) +
                       QStringLiteral(" left to refund. Please continue."),
                   QStringLiteral("Apply Refund"), MsgButtons::Ok, MsgIcon::Information);
        // The next payee.
        txtRefund->clear();
        showPayee({});
        txtDesc1->clear();
        txtRefund->setFocus(Qt::OtherFocusReason);
        return;
    }
    MsgBox(QStringLiteral("The total amount of the refund has been applied."),
           QStringLiteral("Apply Refund"), MsgButtons::Ok, MsgIcon::Information);
    m_done = true;
    CloseScreen(this);
}

void RefundDialog::reject() {
    if (m_done)
        QDialog::reject();
}

void RefundDialog::closeEvent(QCloseEvent* event) {
    if (m_done)
        event->accept();
    else
        event->ignore();
}
