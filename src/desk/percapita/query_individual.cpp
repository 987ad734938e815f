#include "desk/percapita/query_individual.h"

#include "bills/pc_print_tax_bills.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/percapita/address_change.h"
#include "desk/percapita/adjust_tax_bill.h"
#include "desk/percapita/pc_handover.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/query_individual.h"
#include "desk/realestate/query_search.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <QVBoxLayout>

namespace {

QString amountText(Money amount) {
    return amount.format(u"$###,###,###.00");
}

const char* const LineFields[PerCapitaLineCount] = {"txtCPerCapita", "txtCOccupation",
                                                    "txtTPerCapita", "txtTOccupation",
                                                    "txtSPerCapita", "txtSOccupation"};
const char* const LineCaptions[PerCapitaLineCount] = {
    "County Per Capita:", "County Occupation:", "T/B/C Per Capita:",
    "T/B/C Occupation:",  "School Per Capita:", "School Occupation:"};

} // namespace

frmPCQueryIndividual::frmPCQueryIndividual(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmPCQueryIndividual"));
    setWindowTitle(QStringLiteral("Query Individual Taxpayers"));
    buildScreen();
    loadRates();
    clearScreen();
    for (QGroupBox* frame : {fraName, fraBill, fraControl})
        frame->setEnabled(false);
    cmdSearch->setEnabled(false);
}

void frmPCQueryIndividual::buildScreen() {
    auto option = [this](const char* name, const char* caption, QWidget* parent) {
        auto* o = new QRadioButton(QString::fromLatin1(caption), parent);
        o->setObjectName(QString::fromLatin1(name));
        return o;
    };
    auto frame = [this](const char* name, const char* title) {
        auto* f = new QGroupBox(QString::fromLatin1(title), this);
        f->setObjectName(QString::fromLatin1(name));
        return f;
    };
    optName = option("optName", "&Name", this);
    optBill = option("optBill", "&Bill #", this);
    optControl = option("optControl", "C&ontrol #", this);
    fraName = frame("fraName", "Name Criteria");
    fraBill = frame("fraBill", "Bill # Criteria");
    fraControl = frame("fraControl", "Control # Criteria");
    txtName = NamedField(fraName, QStringLiteral("txtName"), 50);
    txtBillNo = NamedField(fraBill, QStringLiteral("txtBillNo"), 5);
    txtControl = NamedField(fraControl, QStringLiteral("txtControl"), 6);
    (new QHBoxLayout(fraName))->addWidget(txtName);
    (new QHBoxLayout(fraBill))->addWidget(txtBillNo);
    (new QHBoxLayout(fraControl))->addWidget(txtControl);

    auto* fraPeriod = frame("fraPeriod", "Amounts Of The Period");
    optDiscount = option("optDiscount", "Discount", fraPeriod);
    optFace = option("optFace", "Face", fraPeriod);
    optPenalty = option("optPenalty", "Penalty", fraPeriod);
    {
        auto* h = new QHBoxLayout(fraPeriod);
        h->addWidget(optDiscount);
        h->addWidget(optFace);
        h->addWidget(optPenalty);
    }

    auto* fraTaxpayer = frame("fraTaxpayer", "Taxpayer");
    auto shown = [fraTaxpayer](const char* name, int width = 0) {
        return ShownField(fraTaxpayer, QString::fromLatin1(name), width);
    };
    txtPControl = shown("txtPControl", 6);
    txtPBillNo = shown("txtPBillNo", 5);
    txtPName = shown("txtPName", 50);
    txtCPayFlag = shown("txtCPayFlag", 1);
    txtTPayFlag = shown("txtTPayFlag", 1);
    txtSPayFlag = shown("txtSPayFlag", 1);
    txtAdjFlag = shown("txtAdjFlag", 1);
    txtCAddrFlag = shown("txtCAddrFlag", 1);
    {
        auto* g = new QGridLayout(fraTaxpayer);
        int r = 0;
        auto row = [&](const char* caption, QWidget* a, QWidget* b = nullptr,
                       QWidget* c = nullptr) {
            g->addWidget(new QLabel(QString::fromLatin1(caption), fraTaxpayer), r, 0);
            auto* h = new QHBoxLayout;
            for (QWidget* w : {a, b, c})
                if (w)
                    h->addWidget(w);
            g->addLayout(h, r++, 1);
        };
        row("Control #:", txtPControl, txtPBillNo);
        row("Name:", txtPName);
        row("County/Twp/School Paid:", txtCPayFlag, txtTPayFlag, txtSPayFlag);
        row("Adj / Addr:", txtAdjFlag, txtCAddrFlag);
    }

    auto* fraAmounts = frame("fraAmounts", "Amounts");
    txtCTotal = ShownField(fraAmounts, QStringLiteral("txtCTotal"));
    txtTTotal = ShownField(fraAmounts, QStringLiteral("txtTTotal"));
    txtSTotal = ShownField(fraAmounts, QStringLiteral("txtSTotal"));
    txtTotal = ShownField(fraAmounts, QStringLiteral("txtTotal"));
    {
        auto* g = new QGridLayout(fraAmounts);
        const std::array<QLineEdit*, 3> totals{txtCTotal, txtTTotal, txtSTotal};
        const char* totalCaptions[3] = {"Tot County:", "Tot T/B/C:", "Tot School:"};
        for (int line = 0; line < PerCapitaLineCount; ++line) {
            const QString name = QString::fromLatin1(LineFields[line]);
            txtLine[std::size_t(line)] = ShownField(fraAmounts, name);
            g->addWidget(NamedLabel(fraAmounts, QStringLiteral("lbl") + name.mid(3),
                                    QString::fromLatin1(LineCaptions[line])),
                         line % 2, (line / 2) * 2);
            g->addWidget(txtLine[std::size_t(line)], line % 2, (line / 2) * 2 + 1);
        }
        for (int b = 0; b < 3; ++b) {
            g->addWidget(
                NamedLabel(fraAmounts,
                           QStringLiteral("lbl") + totals[std::size_t(b)]->objectName().mid(3),
                           QString::fromLatin1(totalCaptions[b])),
                2, b * 2);
            g->addWidget(totals[std::size_t(b)], 2, b * 2 + 1);
        }
        g->addWidget(new QLabel(QStringLiteral("Grand Total:"), fraAmounts), 3, 4);
        g->addWidget(txtTotal, 3, 5);
    }

    cmdSearch = NamedButton(this, QStringLiteral("cmdSearch"), QStringLiteral("&Search"));
    cmdForward =
        NamedButton(this, QStringLiteral("cmdForward"), QStringLiteral("Search &Forward"), false);
    cmdBackward =
        NamedButton(this, QStringLiteral("cmdBackward"), QStringLiteral("Search Bac&kward"), false);
    cmdClearScreen =
        NamedButton(this, QStringLiteral("cmdClearScreen"), QStringLiteral("C&lear Screen"), false);
    cmdPrintScreen =
        NamedButton(this, QStringLiteral("cmdPrintScreen"), QStringLiteral("&Print Screen"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);
    cmdPayment = NamedButton(this, QStringLiteral("cmdPayment"), QStringLiteral("P&ayment"));
    cmdAdjust = NamedButton(this, QStringLiteral("cmdAdjust"), QStringLiteral("A&djust"));
    cmdAddress = NamedButton(this, QStringLiteral("cmdAddress"), QStringLiteral("Add&ress"));
    cmdPrintTaxBill =
        NamedButton(this, QStringLiteral("cmdPrintTaxBill"), QStringLiteral("Print &Tax Bill"));
    cmdPaymentInfo =
        NamedButton(this, QStringLiteral("cmdPaymentInfo"), QStringLiteral("Payment &Info"));

    auto* criteria = new QGridLayout;
    int row = 0;
    for (auto [o, f] : {std::pair{optName, fraName}, std::pair{optBill, fraBill},
                        std::pair{optControl, fraControl}}) {
        criteria->addWidget(o, row, 0);
        criteria->addWidget(f, row++, 1);
    }
    criteria->addWidget(fraPeriod, row, 0, 1, 2);
    auto* buttons = new QGridLayout;
    QPushButton* order[] = {cmdSearch,      cmdForward,     cmdBackward, cmdClearScreen,
                            cmdPayment,     cmdAdjust,      cmdAddress,  cmdPrintTaxBill,
                            cmdPaymentInfo, cmdPrintScreen, cmdExit};
    for (int i = 0; i < int(std::size(order)); ++i)
        buttons->addWidget(order[i], i % 4, i / 4);
    auto* top = new QHBoxLayout;
    top->addLayout(criteria, 1);
    top->addLayout(buttons);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(fraTaxpayer);
    bottom->addWidget(fraAmounts);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(bottom);

    m_leave = new FieldLeave(this);
    m_leave->onLeave(txtBillNo,
                     [this] { txtBillNo->setText(NormalizeQueryBillNo(txtBillNo->text())); });
    connect(optName, &QRadioButton::clicked, this, [this] { choose(SearchBy::Name); });
    connect(optBill, &QRadioButton::clicked, this, [this] { choose(SearchBy::Bill); });
    connect(optControl, &QRadioButton::clicked, this, [this] { choose(SearchBy::Control); });
    for (QRadioButton* o : {optDiscount, optFace, optPenalty})
        connect(o, &QRadioButton::clicked, this, [this] { showAmounts(); });
    connect(cmdSearch, &QPushButton::clicked, this, [this] { search(); });
    auto step = [this](int by) {
        if (m_position < 0)
            return;
        const int next = StepIndividual(m_position, by, int(m_found.size()));
        if (next >= 0)
            showBill(next);
    };
    connect(cmdForward, &QPushButton::clicked, this, [step] { step(1); });
    connect(cmdBackward, &QPushButton::clicked, this, [step] { step(-1); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
    connect(cmdPaymentInfo, &QPushButton::clicked, this, [this] {
        if (m_position < 0)
            return;
        const BillPayFlags flags = BillPayFlagsFromRecord(m_master);
        ShowIndividualPaymentInfo(
            flags, PerCapitaPaymentInfoText(
                       flags, m_btFlag,
                       ReadPerCapitaReceipts(session().DbConnection, txtPBillNo->text())));
    });
    connect(cmdPayment, &QPushButton::clicked, this, [this] {
        if (m_position >= 0)
            HandToDeskScreen(QStringLiteral("frmPCReceivePayment"), txtPBillNo->text(), this,
                             SIGNAL(paymentReceived(QString)));
    });
    connect(cmdAdjust, &QPushButton::clicked, this, [this] { toAdjust(); });
    connect(cmdAddress, &QPushButton::clicked, this, [this] { toAddress(); });
    connect(cmdPrintTaxBill, &QPushButton::clicked, this, [this] {
        if (m_position >= 0)
            OpenPCPrintTaxBillsFor(txtPBillNo->text());
    });
}

void frmPCQueryIndividual::loadRates() {
    QSqlQuery q(session().DbConnection);
    QString district, ward, schoolName;
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        district = TextField(q.value(0));
        ward = TextField(q.value(1));
    }
    QSqlRecord county, municipal;
    if (q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = '000'")) && q.next())
        county = q.record();
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(district + ward);
    if (q.exec() && q.next())
        municipal = q.record();
    q.prepare(QStringLiteral(
        "SELECT BTFlag, SchoolName FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(district);
    q.addBindValue(ward);
    if (q.exec() && q.next()) {
        m_btFlag = TextField(q.value(0)).trimmed();
        schoolName = TextField(q.value(1));
    }
    // A body's lines show when it levies something, as on the adjustment screen.
    const PerCapitaRates rates =
        PerCapitaRatesFromMillfile(county, municipal, district, schoolName);
    const std::array<QLineEdit*, 3> totals{txtCTotal, txtTTotal, txtSTotal};
    for (int b = 0; b < 3; ++b) {
        const bool visible = rates.body[std::size_t(b)].levies();
        for (QLineEdit* f : {txtLine[std::size_t(b * 2)], txtLine[std::size_t(b * 2 + 1)],
                             totals[std::size_t(b)]}) {
            f->setVisible(visible);
            if (auto* label = findChild<QLabel*>(QStringLiteral("lbl") + f->objectName().mid(3)))
                label->setVisible(visible);
        }
    }
    const QChar p = IndividualQueryPeriod(Clock::today(), DateField(municipal.value("DiscDate")),
                                          DateField(municipal.value("FaceDate2")));
    (p == QChar(PeriodDiscount) ? optDiscount
     : p == QChar(PeriodFace)   ? optFace
                                : optPenalty)
        ->setChecked(true);
}

void frmPCQueryIndividual::choose(SearchBy by) {
    m_by = by;
    for (QLineEdit* field : {txtName, txtBillNo, txtControl})
        field->clear();
    fraName->setEnabled(by == SearchBy::Name);
    fraBill->setEnabled(by == SearchBy::Bill);
    fraControl->setEnabled(by == SearchBy::Control);
    cmdSearch->setEnabled(true);
    (by == SearchBy::Name   ? txtName
     : by == SearchBy::Bill ? txtBillNo
                            : txtControl)
        ->setFocus(Qt::OtherFocusReason);
}

void frmPCQueryIndividual::search() {
    QString criterion;
    QuerySearch by = QuerySearch::None;
    switch (m_by) {
    case SearchBy::Name:
        by = QuerySearch::Name;
        criterion = txtName->text().toUpper();
        break;
    case SearchBy::Bill:
        by = QuerySearch::Bill;
        txtBillNo->setText(NormalizeQueryBillNo(txtBillNo->text()));
        criterion = txtBillNo->text();
        break;
    case SearchBy::Control:
        by = QuerySearch::Control;
        criterion = txtControl->text();
        break;
    case SearchBy::None:
        return;
    }
    m_found = FindIndividualBills(session().DbConnection, PerCapitaChain, by, criterion);
    if (m_found.isEmpty()) {
        // Nothing at or after the criterion: a step past the end of an empty list.
        StepIndividual(0, 1, 0);
        return;
    }
    if (!showBill(0))
        return;
    for (QWidget* w : std::initializer_list<QWidget*>{optName, optBill, optControl, fraName,
                                                      fraBill, fraControl})
        w->setEnabled(false);
    setRowButtons(true);
}

bool frmPCQueryIndividual::showBill(int position) {
    bool incomplete = false;
    if (!ReadIndividualBill(session().DbConnection, PerCapitaChain, m_found.value(position),
                            &m_master, &m_source, &incomplete)) {
        if (incomplete)
            CloseScreen(this);
        return false;
    }
    m_position = position;
    auto text = [this](const char* column) { return TextField(m_master.value(column)); };
    txtPControl->setText(text("Control"));
    txtPName->setText(text("Name"));
    txtPBillNo->setText(text("BillNo"));
    txtCPayFlag->setText(FlagField(m_master.value("CPayFlag")));
    txtTPayFlag->setText(FlagField(m_master.value("TPayFlag")));
    txtSPayFlag->setText(FlagField(m_master.value("SPayFlag")));
    txtAdjFlag->setText(FlagField(m_master.value("AdjFlag")));
    txtCAddrFlag->setText(FlagField(m_master.value("CAddrFlag")));
    showAmounts();
    return true;
}

void frmPCQueryIndividual::showAmounts() {
    if (m_position < 0)
        return;
    const PerCapitaBillAmounts amounts = PerCapitaBillAmountsFromRecord(m_source);
    Money totals[3];
    for (int line = 0; line < PerCapitaLineCount; ++line) {
        const AmountTriple& t = amounts.line[std::size_t(line)];
        const Money amount = optDiscount->isChecked()  ? t.discount
                             : optPenalty->isChecked() ? t.penalty
                                                       : t.face;
        txtLine[std::size_t(line)]->setText(amountText(amount));
        totals[std::size_t(BodyOfPerCapitaLine(line))] += amount;
    }
    txtCTotal->setText(amountText(totals[0]));
    txtTTotal->setText(amountText(totals[1]));
    txtSTotal->setText(amountText(totals[2]));
    txtTotal->setText(amountText(totals[0] + totals[1] + totals[2]));
}

void frmPCQueryIndividual::requery() {
    if (m_position >= 0)
        showBill(m_position);
}

void frmPCQueryIndividual::clearScreen() {
    for (QLineEdit* field : {txtName, txtBillNo, txtControl})
        field->clear();
    m_position = -1;
    m_master = QSqlRecord();
    m_source = QSqlRecord();
    m_found.clear();
    for (QLineEdit* field : findChildren<QLineEdit*>())
        if (field->isReadOnly())
            field->clear();
    for (QRadioButton* o : {optName, optBill, optControl})
        o->setEnabled(true);
    fraName->setEnabled(m_by == SearchBy::Name);
    fraBill->setEnabled(m_by == SearchBy::Bill);
    fraControl->setEnabled(m_by == SearchBy::Control);
    setRowButtons(false);
}

void frmPCQueryIndividual::setRowButtons(bool enabled) {
    for (QPushButton* b : {cmdPayment, cmdAdjust, cmdAddress, cmdPrintTaxBill, cmdPaymentInfo})
        b->setEnabled(enabled);
}

void frmPCQueryIndividual::toAdjust() {
    if (m_position < 0)
        return;
    if (auto* target = HandToScreen<frmPCAdjustTaxBill>("frmPCAdjustTaxBill", txtPBillNo->text(),
                                                        this, &frmPCAdjustTaxBill::billSaved))
        session().QueryOpenedScreen.remove(target->objectName());
}

void frmPCQueryIndividual::toAddress() {
    if (m_position < 0)
        return;
    HandToScreen<frmPCAddressChange>("frmPCAddressChange", txtPBillNo->text(), this,
                                     &frmPCAddressChange::addressChanged);
}
