#include "desk/realestate/query_individual.h"

#include "bills/re_print_tax_bills.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/adjust_tax_bill.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/query_search.h"
#include "desk/realestate/receive_payment.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QCheckBox>
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

const char* const QueryTaxpayersTitle = "Query Taxpayers";
const char16_t* const AmountPattern = u"$###,###,###.00";

QString amountText(Money amount) {
    return amount.format(AmountPattern);
}

} // namespace

QChar IndividualQueryPeriod(const QDate& today, const QDate& discDate, const QDate& faceDate2) {
    if (discDate.isValid() && today <= discDate)
        return QChar(PeriodDiscount);
    if (faceDate2.isValid() && today <= faceDate2)
        return QChar(PeriodFace);
    return QChar(PeriodPenalty);
}

frmREQueryIndividual::frmREQueryIndividual(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmREQueryIndividual"));
    setWindowTitle(QStringLiteral("Query Individual Taxpayers"));
    buildScreen();
    loadRates();
    clearScreen();
    for (QGroupBox* frame : {fraName, fraBill, fraControl, fraMap})
        frame->setEnabled(false);
    cmdSearch->setEnabled(false);
}

void frmREQueryIndividual::buildScreen() {
    auto option = [this](const char* name, const char* caption) {
        auto* o = new QRadioButton(QString::fromLatin1(caption), this);
        o->setObjectName(QString::fromLatin1(name));
        return o;
    };
    auto frame = [this](const char* name, const char* title) {
        auto* f = new QGroupBox(QString::fromLatin1(title), this);
        f->setObjectName(QString::fromLatin1(name));
        return f;
    };
    optName = option("optName", "&Name");
    optBill = option("optBill", "&Bill #");
    optControl = option("optControl", "C&ontrol #");
    optMap = option("optMap", "&Map #");
    fraName = frame("fraName", "Name Criteria");
    fraBill = frame("fraBill", "Bill # Criteria");
    fraControl = frame("fraControl", "Control # Criteria");
    fraMap = frame("fraMap", "Map # Criteria");
    txtName = NamedField(fraName, QStringLiteral("txtName"), 50);
    txtBillNo = NamedField(fraBill, QStringLiteral("txtBillNo"), 5);
    txtControl = NamedField(fraControl, QStringLiteral("txtControl"), 6);
    txtMap3 = NamedField(fraMap, QStringLiteral("txtMap3"), 8);
    txtMap4 = NamedField(fraMap, QStringLiteral("txtMap4"), 6);
    txtMap5 = NamedField(fraMap, QStringLiteral("txtMap5"), 9);
    (new QHBoxLayout(fraName))->addWidget(txtName);
    (new QHBoxLayout(fraBill))->addWidget(txtBillNo);
    (new QHBoxLayout(fraControl))->addWidget(txtControl);
    {
        auto* h = new QHBoxLayout(fraMap);
        h->addWidget(txtMap3);
        h->addWidget(txtMap4);
        h->addWidget(txtMap5);
    }

    auto* fraPeriod = frame("fraPeriod", "Amounts Of The Period");
    optDiscount = new QRadioButton(QStringLiteral("Discount"), fraPeriod);
    optDiscount->setObjectName(QStringLiteral("optDiscount"));
    optFace = new QRadioButton(QStringLiteral("Face"), fraPeriod);
    optFace->setObjectName(QStringLiteral("optFace"));
    optPenalty = new QRadioButton(QStringLiteral("Penalty"), fraPeriod);
    optPenalty->setObjectName(QStringLiteral("optPenalty"));
    {
        auto* h = new QHBoxLayout(fraPeriod);
        h->addWidget(optDiscount);
        h->addWidget(optFace);
        h->addWidget(optPenalty);
    }

    auto* fraTaxpayer = frame("fraTaxpayer", "Taxpayer");
    auto shown = [fraTaxpayer](const QString& name, int width = 0) {
        return ShownField(fraTaxpayer, name, width);
    };
    txtPControl = shown(QStringLiteral("txtPControl"), 6);
    txtPBillNo = shown(QStringLiteral("txtPBillNo"), 5);
    txtPName = shown(QStringLiteral("txtPName"), 50);
    txtPMap3 = shown(QStringLiteral("txtPMap3"), 8);
    txtPMap4 = shown(QStringLiteral("txtPMap4"), 6);
    txtPMap5 = shown(QStringLiteral("txtPMap5"), 9);
    chkHFFlag = new QCheckBox(QStringLiteral("Homestead/Farmstead"), fraTaxpayer);
    chkHFFlag->setObjectName(QStringLiteral("chkHFFlag"));
    chkHFFlag->setEnabled(false);
    txtCPayFlag = shown(QStringLiteral("txtCPayFlag"), 1);
    txtTPayFlag = shown(QStringLiteral("txtTPayFlag"), 1);
    txtSPayFlag = shown(QStringLiteral("txtSPayFlag"), 1);
    for (int i = 0; i < 3; ++i) {
        txtPayFlag[std::size_t(i)] = shown(QStringLiteral("txtPay%1Flag").arg(i + 1), 1);
        txtPayment[std::size_t(i)] = shown(QStringLiteral("txtPayment%1").arg(i + 1));
    }
    txtAdjFlag = shown(QStringLiteral("txtAdjFlag"), 1);
    txtCAddrFlag = shown(QStringLiteral("txtCAddrFlag"), 1);
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
        row("Map #:", txtPMap3, txtPMap4, txtPMap5);
        row("County/Twp/School Paid:", txtCPayFlag, txtTPayFlag, txtSPayFlag);
        row("Installments Paid:", txtPayFlag[0], txtPayFlag[1], txtPayFlag[2]);
        row("Installments:", txtPayment[0], txtPayment[1], txtPayment[2]);
        row("Adj / Addr:", txtAdjFlag, txtCAddrFlag);
        g->addWidget(chkHFFlag, r++, 1);
    }

    auto* fraAmounts = frame("fraAmounts", "Amounts");
    auto line = [fraAmounts](const QString& name) { return ShownField(fraAmounts, name); };
    auto label = [fraAmounts](const QString& name, const char* text) {
        return NamedLabel(fraAmounts, name, QString::fromLatin1(text));
    };
    txtCounty = line(QStringLiteral("txtCounty"));
    txtLibrary = line(QStringLiteral("txtLibrary"));
    txtC1Face = line(QStringLiteral("txtC1Face"));
    txtTwp = line(QStringLiteral("txtTwp"));
    for (int i = 0; i < 3; ++i) {
        txtSpecFace[std::size_t(i)] = line(QStringLiteral("txtSpecFace(%1)").arg(i + 1));
        lblSpecFace[std::size_t(i)] =
            NamedLabel(fraAmounts, QStringLiteral("lblSpecFace(%1)").arg(i + 1), QString());
    }
    txtSchool = line(QStringLiteral("txtSchool"));
    txtSch1Face = line(QStringLiteral("txtSch1Face"));
    txtCTotal = line(QStringLiteral("txtCTotal"));
    txtTTotal = line(QStringLiteral("txtTTotal"));
    txtSTotal = line(QStringLiteral("txtSTotal"));
    txtTotal = line(QStringLiteral("txtTotal"));
    lblCounty = label(QStringLiteral("lblCounty"), "County:");
    lblLibrary = label(QStringLiteral("lblLibrary"), "Library:");
    lblC1Face = label(QStringLiteral("lblC1Face"), "");
    lblTwp = label(QStringLiteral("lblTwp"), "Township:");
    lblSchool = label(QStringLiteral("lblSchool"), "School:");
    lblSch1Face = label(QStringLiteral("lblSch1Face"), "");
    {
        auto* g = new QGridLayout(fraAmounts);
        auto cell = [g](int row, int column, QWidget* l, QWidget* field) {
            g->addWidget(l, row, column * 2);
            g->addWidget(field, row, column * 2 + 1);
        };
        cell(0, 0, lblCounty, txtCounty);
        cell(1, 0, lblLibrary, txtLibrary);
        cell(2, 0, lblC1Face, txtC1Face);
        cell(4, 0, new QLabel(QStringLiteral("Tot County:"), fraAmounts), txtCTotal);
        cell(0, 1, lblTwp, txtTwp);
        for (int i = 0; i < 3; ++i)
            cell(1 + i, 1, lblSpecFace[std::size_t(i)], txtSpecFace[std::size_t(i)]);
        cell(4, 1, new QLabel(QStringLiteral("Tot Twp:"), fraAmounts), txtTTotal);
        cell(0, 2, lblSchool, txtSchool);
        cell(1, 2, lblSch1Face, txtSch1Face);
        cell(4, 2, new QLabel(QStringLiteral("Tot School:"), fraAmounts), txtSTotal);
        cell(5, 2, new QLabel(QStringLiteral("Grand Total:"), fraAmounts), txtTotal);
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
                        std::pair{optControl, fraControl}, std::pair{optMap, fraMap}}) {
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
    connect(optMap, &QRadioButton::clicked, this, [this] { choose(SearchBy::Map); });
    for (QRadioButton* o : {optDiscount, optFace, optPenalty})
        connect(o, &QRadioButton::clicked, this, [this] { showAmounts(); });
    connect(cmdSearch, &QPushButton::clicked, this, [this] { search(); });
    connect(cmdForward, &QPushButton::clicked, this, [this] { step(1); });
    connect(cmdBackward, &QPushButton::clicked, this, [this] { step(-1); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
    connect(cmdPaymentInfo, &QPushButton::clicked, this, [this] { paymentInfo(); });
    connect(cmdPayment, &QPushButton::clicked, this, [this] { toPayment(); });
    connect(cmdAddress, &QPushButton::clicked, this, [this] { toAddress(); });
    connect(cmdAdjust, &QPushButton::clicked, this, [this] { toAdjust(); });
    connect(cmdPrintTaxBill, &QPushButton::clicked, this, [this] {
        if (m_position >= 0)
            OpenREPrintTaxBillsFor(txtPBillNo->text(), chkHFFlag->isChecked());
    });
}

void frmREQueryIndividual::loadRates() {
    QSqlQuery q(session().DbConnection);
    QString district, ward;
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
    q.prepare(QStringLiteral("SELECT BTFlag FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(district);
    q.addBindValue(ward);
    if (q.exec() && q.next())
        m_btFlag = TextField(q.value(0)).trimmed();
    lblTwp->setText(m_btFlag == QLatin1String("T")   ? QStringLiteral("Township:")
                    : m_btFlag == QLatin1String("B") ? QStringLiteral("Borough:")
                                                     : QStringLiteral("City:"));

    // Which fields show, as on the adjustment screen.
    const QString countySpecial = TextField(county.value("S1TaxName")).trimmed();
    const QString schoolSpecial = TextField(municipal.value("S1TaxName")).trimmed();
    lblC1Face->setText(countySpecial + QLatin1Char(':'));
    lblSch1Face->setText(schoolSpecial + QLatin1Char(':'));
    auto show = [](bool visible, QWidget* l, QWidget* field) {
        l->setVisible(visible);
        field->setVisible(visible);
    };
    show(county.value("SMR").toDouble() != 0, lblCounty, txtCounty);
    show(municipal.value("LMR").toDouble() != 0, lblLibrary, txtLibrary);
    show(county.value("S1MR").toDouble() != 0, lblC1Face, txtC1Face);
    show(municipal.value("TMR").toDouble() != 0, lblTwp, txtTwp);
    show(municipal.value("SMR").toDouble() != 0, lblSchool, txtSchool);
    show(!schoolSpecial.isEmpty(), lblSch1Face, txtSch1Face);
    int special = 0;
    q.prepare(QStringLiteral(
        "SELECT Desc1 FROM Spectax WHERE District = ? AND Ward = ? ORDER BY TaxKey"));
    q.addBindValue(district);
    q.addBindValue(ward);
    if (q.exec())
        for (; special < 3 && q.next(); ++special)
            lblSpecFace[std::size_t(special)]->setText(TextField(q.value(0)).trimmed() +
                                                       QLatin1Char(':'));
    for (int i = 0; i < 3; ++i) {
        const bool named = i < special && lblSpecFace[std::size_t(i)]->text() != QLatin1String(":");
        show(named, lblSpecFace[std::size_t(i)], txtSpecFace[std::size_t(i)]);
    }

    // The period of today, by the early dates only.
    const QChar p = IndividualQueryPeriod(Clock::today(), DateField(municipal.value("DiscDate")),
                                          DateField(municipal.value("FaceDate2")));
    (p == QChar(PeriodDiscount) ? optDiscount
     : p == QChar(PeriodFace)   ? optFace
                                : optPenalty)
        ->setChecked(true);
}

void frmREQueryIndividual::choose(SearchBy by) {
    m_by = by;
    for (QLineEdit* field : {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5})
        field->clear();
    fraName->setEnabled(by == SearchBy::Name);
    fraBill->setEnabled(by == SearchBy::Bill);
    fraControl->setEnabled(by == SearchBy::Control);
    fraMap->setEnabled(by == SearchBy::Map);
    cmdSearch->setEnabled(true);
    QLineEdit* field = by == SearchBy::Name      ? txtName
                       : by == SearchBy::Bill    ? txtBillNo
                       : by == SearchBy::Control ? txtControl
                                                 : txtMap3;
    field->setFocus(Qt::OtherFocusReason);
}

QChar frmREQueryIndividual::period() const {
    return optDiscount->isChecked()  ? QChar(PeriodDiscount)
           : optPenalty->isChecked() ? QChar(PeriodPenalty)
                                     : QChar(PeriodFace);
}

void frmREQueryIndividual::search() {
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
    case SearchBy::Map:
        by = QuerySearch::Map;
        criterion = MapCriterion(txtMap3->text(), txtMap4->text(), txtMap5->text());
        break;
    case SearchBy::Control:
        by = QuerySearch::Control;
        criterion = txtControl->text();
        break;
    case SearchBy::None:
        return;
    }
    m_found = FindIndividualBills(session().DbConnection, RealEstateChain, by, criterion);
    if (m_found.isEmpty()) {
        MsgBox(QStringLiteral("You have reached the end of the file"),
               QString::fromLatin1(QueryTaxpayersTitle), MsgButtons::Ok, MsgIcon::Information);
        return;
    }
    if (!showBill(0))
        return;
    for (QWidget* w : std::initializer_list<QWidget*>{optName, optBill, optControl, optMap, fraName,
                                                      fraBill, fraControl, fraMap})
        w->setEnabled(false);
    setRowButtons(true);
}

bool frmREQueryIndividual::showBill(int position) {
    bool incomplete = false;
    if (!ReadIndividualBill(session().DbConnection, RealEstateChain, m_found.value(position),
                            &m_master, &m_source, &incomplete)) {
        if (incomplete)
            CloseScreen(this);
        return false;
    }
    m_position = position;
    auto text = [this](const char* column) { return TextField(m_master.value(column)); };
    txtPControl->setText(text("Control"));
    txtPName->setText(text("Name"));
    txtPMap3->setText(text("Map3"));
    txtPMap4->setText(text("Map4"));
    txtPMap5->setText(text("Map5"));
    txtPBillNo->setText(text("BillNo"));
    chkHFFlag->setChecked(FlagField(m_source.value("HFFlag")).trimmed() == QLatin1String("A"));
    txtCPayFlag->setText(FlagField(m_master.value("CPayFlag")));
    txtTPayFlag->setText(FlagField(m_master.value("TPayFlag")));
    txtSPayFlag->setText(FlagField(m_master.value("SPayFlag")));
    for (int i = 0; i < 3; ++i)
        txtPayFlag[std::size_t(i)]->setText(
            FlagField(m_master.value(QStringLiteral("Pay%1Flag").arg(i + 1))));
    txtAdjFlag->setText(FlagField(m_master.value("AdjFlag")));
    txtCAddrFlag->setText(FlagField(m_master.value("CAddrFlag")));
    const Installments installments = InstallmentsFromRecord(m_source);
    for (int i = 0; i < 3; ++i)
        txtPayment[std::size_t(i)]->setText(amountText(installments.payment[std::size_t(i)]));
    showAmounts();
    return true;
}

void frmREQueryIndividual::showAmounts() {
    if (m_position < 0)
        return;
    const BillLines lines = BillLinesFromRecord(m_source);
    QLineEdit* fields[TaxLineCount] = {txtCounty,      txtLibrary,     txtC1Face,
                                       txtTwp,         txtSpecFace[0], txtSpecFace[1],
                                       txtSpecFace[2], txtSchool,      txtSch1Face};
    const QChar p = period();
    Money totals[3];
    for (int i = 0; i < TaxLineCount; ++i) {
        const AmountTriple& t = lines.line[std::size_t(i)];
        const Money amount = p == QChar(PeriodDiscount)  ? t.discount
                             : p == QChar(PeriodPenalty) ? t.penalty
                                                         : t.face;
        fields[i]->setText(amountText(amount));
        totals[int(BodyOfLine(i))] += amount;
    }
    txtCTotal->setText(amountText(totals[0]));
    txtTTotal->setText(amountText(totals[1]));
    txtSTotal->setText(amountText(totals[2]));
    txtTotal->setText(amountText(totals[0] + totals[1] + totals[2]));
}

void frmREQueryIndividual::step(int by) {
    if (m_position < 0)
        return;
    const int next = StepIndividual(m_position, by, int(m_found.size()));
    if (next >= 0)
        showBill(next);
}

void frmREQueryIndividual::requery() {
    if (m_position >= 0)
        showBill(m_position);
}

void frmREQueryIndividual::clearBill() {
    m_position = -1;
    m_master = QSqlRecord();
    m_source = QSqlRecord();
    for (QLineEdit* field : findChildren<QLineEdit*>())
        if (field->isReadOnly())
            field->clear();
    chkHFFlag->setChecked(false);
}

void frmREQueryIndividual::clearScreen() {
    for (QLineEdit* field : {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5})
        field->clear();
    clearBill();
    m_found.clear();
    for (QRadioButton* o : {optName, optBill, optControl, optMap})
        o->setEnabled(true);
    fraName->setEnabled(m_by == SearchBy::Name);
    fraBill->setEnabled(m_by == SearchBy::Bill);
    fraControl->setEnabled(m_by == SearchBy::Control);
    fraMap->setEnabled(m_by == SearchBy::Map);
    setRowButtons(false);
}

void frmREQueryIndividual::setRowButtons(bool enabled) {
    for (QPushButton* b : {cmdPayment, cmdAdjust, cmdAddress, cmdPrintTaxBill, cmdPaymentInfo})
        b->setEnabled(enabled);
}

void frmREQueryIndividual::paymentInfo() {
    if (m_position < 0)
        return;
    const BillPayFlags flags = BillPayFlagsFromRecord(m_master);
    ShowIndividualPaymentInfo(
        flags, RealEstatePaymentInfoText(
                   flags, m_btFlag,
                   ReadRealEstatePaidReceipts(session().DbConnection, txtPBillNo->text())));
}

void frmREQueryIndividual::toPayment() {
    if (m_position < 0)
        return;
    HandToScreen<frmREReceivePayment>("frmREReceivePayment", txtPBillNo->text(), this,
                                      &frmREReceivePayment::paymentReceived);
}

void frmREQueryIndividual::toAddress() {
    if (m_position < 0)
        return;
    HandToScreen<frmREAddressChange>("frmREAddressChange", txtPBillNo->text(), this,
                                     &frmREAddressChange::addressChanged);
}

void frmREQueryIndividual::toAdjust() {
    if (m_position < 0)
        return;
    if (auto* target = HandToScreen<frmREAdjustTaxBill>("frmREAdjustTaxBill", txtPBillNo->text(),
                                                        this, &frmREAdjustTaxBill::billSaved))
        session().QueryOpenedScreen.remove(target->objectName());
}

// ---------------------------------------------------------------------------------------------
// What the individual screens of both duplicates share
// ---------------------------------------------------------------------------------------------

QStringList FindIndividualBills(QSqlDatabase db, const ChainTables& tables, QuerySearch by,
                                const QString& criterion) {
    QString where;
    switch (by) {
    case QuerySearch::Name:
        where = QStringLiteral("upper(Name) >= ? ORDER BY upper(Name), BillNo");
        break;
    case QuerySearch::Bill:
        where = QStringLiteral("BillNo >= ? ORDER BY BillNo");
        break;
    case QuerySearch::Map:
        where = QStringLiteral("Map3 || Map4 || Map5 >= ? ORDER BY Map3, Map4, Map5, BillNo");
        break;
    case QuerySearch::Control:
        where = QStringLiteral("Control >= ? ORDER BY Control");
        break;
    default:
        return {};
    }
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT BillNo FROM %1 WHERE %2")
                  .arg(QString::fromLatin1(tables.master), where));
    q.addBindValue(criterion);
    QStringList found;
    if (q.exec())
        while (q.next())
            found << TextField(q.value(0));
    return found;
}

bool ReadIndividualBill(QSqlDatabase db, const ChainTables& tables, const QString& billNo,
                        QSqlRecord* master, QSqlRecord* source, bool* incomplete) {
    *incomplete = false;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? ORDER BY rowid LIMIT 1")
                  .arg(QString::fromLatin1(tables.master)));
    q.addBindValue(billNo);
    if (!q.exec() || !q.next())
        return false;
    *master = q.record();
    *source = *master;
    if (FlagField(master->value("AdjFlag")).trimmed() != QLatin1String("A"))
        return true;
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? ORDER BY BillNo, AdjNo DESC "
                             "LIMIT 1")
                  .arg(QString::fromLatin1(tables.adjust)));
    q.addBindValue(billNo);
    if (!q.exec() || !q.next()) {
        MsgBox(QString::fromLatin1(IncompleteAdjustmentText),
               QString::fromLatin1(IntegrityErrorTitle), MsgButtons::Ok, MsgIcon::Critical);
        *incomplete = true;
        return false;
    }
    *source = q.record();
    return true;
}

int StepIndividual(int position, int by, int count) {
    const int next = position + by;
    if (next >= count) {
        MsgBox(QStringLiteral("You have reached the end of the file"),
               QString::fromLatin1(QueryTaxpayersTitle), MsgButtons::Ok, MsgIcon::Information);
        return -1;
    }
    if (next < 0) {
        MsgBox(QStringLiteral("You have reached the beginning of the file"),
               QString::fromLatin1(QueryTaxpayersTitle), MsgButtons::Ok, MsgIcon::Information);
        return -1;
    }
    return next;
}

void ShowIndividualPaymentInfo(const BillPayFlags& flags, const QString& text) {
    if (flags.cPayFlag.trimmed().isEmpty() && flags.tPayFlag.trimmed().isEmpty() &&
        flags.sPayFlag.trimmed().isEmpty()) {
        MsgBox(QStringLiteral("There Has Been No Payment Made On This Account."),
               QString::fromLatin1(QueryTaxpayersTitle), MsgButtons::Ok, MsgIcon::Information);
        return;
    }
    session().PaymentInfoText = text;
    MsgBox(text, QString::fromLatin1(PaymentInfoTitle), MsgButtons::Ok, MsgIcon::Information);
}
