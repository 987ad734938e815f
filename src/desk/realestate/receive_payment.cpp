#include "desk/realestate/receive_payment.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/realestate/payment_screen_parts.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/query_tc.h"
#include "desk/realestate/re_receipt.h"
#include "desk/realestate/receipt_writes.h"
#include "desk/realestate/refund.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

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
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSqlQuery>
#include <QVBoxLayout>

namespace {

const char* const ReceivePaymentTitle = "Receive Payment";
const char* const ReceiveAPaymentTitle = "Receive A Payment";
const char16_t* const MoneyPattern = u"$###,###,##0.00";
const char* const ClaimPhoneSetting = "TaxClaimBureauPhone";
// Said in place of a telephone number when the office has not recorded one.
const char* const ClaimPhoneFallback = "the county courthouse";

QString moneyText(Money amount) {
    return amount.format(MoneyPattern);
}

bool isBlank(QStringView flag) {
    return flag.trimmed().isEmpty();
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Shared helpers
// ---------------------------------------------------------------------------------------------

// ---------------------------------------------------------------------------------------------
// Building the screen
// ---------------------------------------------------------------------------------------------

frmREReceivePayment::frmREReceivePayment(QWidget* parent) : PaymentScreen(parent) {
    setObjectName(QStringLiteral("frmREReceivePayment"));
    setWindowTitle(QStringLiteral("Receive Real Estate Payments"));
    buildScreen();
    startEntries();
    loadRates();
    clearScreen();
    session().LastScreenName = objectName();
}

void frmREReceivePayment::buildScreen() {
    // The bill as it stands.
    fraBill->setTitle(QStringLiteral("Property Owner"));
    txtCoOwner = ShownField(fraBill, QStringLiteral("txtCoOwner"), 50);
    txtMap3 = ShownField(fraBill, QStringLiteral("txtMap3"), 8);
    txtMap4 = ShownField(fraBill, QStringLiteral("txtMap4"), 6);
    txtMap5 = ShownField(fraBill, QStringLiteral("txtMap5"), 9);
    txtDesc1 = ShownField(fraBill, QStringLiteral("txtDesc1"), 50);
    txtDesc2 = ShownField(fraBill, QStringLiteral("txtDesc2"), 50);
    txtDesc3 = ShownField(fraBill, QStringLiteral("txtDesc3"), 50);
    txtDeedBook = ShownField(fraBill, QStringLiteral("txtDeedBook"), 6);
    txtDeedPage = ShownField(fraBill, QStringLiteral("txtDeedPage"), 4);
    cboLandUse = NewStateCombo(fraBill, QStringLiteral("cboLandUse"), 50);
    cboLandUse->setFocusPolicy(Qt::NoFocus);
    cboLandUse->lineEdit()->setReadOnly(true);
    txtAcreage = ShownField(fraBill, QStringLiteral("txtAcreage"), 10);
    txtAssLand = ShownField(fraBill, QStringLiteral("txtAssLand"));
    txtAssImpr = ShownField(fraBill, QStringLiteral("txtAssImpr"));
    txtAssTotal = ShownField(fraBill, QStringLiteral("txtAssTotal"));
    txtHSExclusion = ShownField(fraBill, QStringLiteral("txtHSExclusion"));
    txtFSExclusion = ShownField(fraBill, QStringLiteral("txtFSExclusion"));
    txtExcFace = ShownField(fraBill, QStringLiteral("txtExcFace"));
    chkHFFlag = new QCheckBox(QStringLiteral("Homestead/Farmstead"), fraBill);
    chkHFFlag->setObjectName(QStringLiteral("chkHFFlag"));
    chkHFFlag->setFocusPolicy(Qt::NoFocus);
    chkHFFlag->setAttribute(Qt::WA_TransparentForMouseEvents);

    auto* billGrid = new QGridLayout(fraBill);
    int row = layOwnerRows(billGrid, txtCoOwner, QStringLiteral("Co-Owner:"),
                           QStringLiteral("Address:"), QString());
    {
        auto* mapRow = new QHBoxLayout;
        mapRow->addWidget(txtMap3);
        mapRow->addWidget(txtMap4);
        mapRow->addWidget(txtMap5);
        billGrid->addWidget(new QLabel(QStringLiteral("Map #:"), fraBill), row, 0);
        billGrid->addLayout(mapRow, row++, 1);
    }
    AddFieldRow(billGrid, row++, new QLabel(QStringLiteral("Description:"), fraBill), txtDesc1);
    AddFieldRow(billGrid, row++, new QLabel(QString(), fraBill), txtDesc2);
    AddFieldRow(billGrid, row++, new QLabel(QString(), fraBill), txtDesc3);
    {
        auto* deedRow = new QHBoxLayout;
        deedRow->addWidget(txtDeedBook);
        deedRow->addWidget(txtDeedPage);
        deedRow->addWidget(new QLabel(QStringLiteral("Acres:"), fraBill));
        deedRow->addWidget(txtAcreage);
        billGrid->addWidget(new QLabel(QStringLiteral("Deed Bk/Pg:"), fraBill), row, 0);
        billGrid->addLayout(deedRow, row++, 1);
    }
    AddFieldRow(billGrid, row++, new QLabel(QStringLiteral("Land Use:"), fraBill), cboLandUse);
    {
        auto* assessRow = new QHBoxLayout;
        assessRow->addWidget(txtAssLand);
        assessRow->addWidget(txtAssImpr);
        assessRow->addWidget(txtAssTotal);
        billGrid->addWidget(new QLabel(QStringLiteral("Land/Impr/Total:"), fraBill), row, 0);
        billGrid->addLayout(assessRow, row++, 1);
        auto* act1Row = new QHBoxLayout;
        act1Row->addWidget(chkHFFlag);
        act1Row->addWidget(txtHSExclusion);
        act1Row->addWidget(txtFSExclusion);
        act1Row->addWidget(txtExcFace);
        billGrid->addWidget(new QLabel(QStringLiteral("Act 1:"), fraBill), row, 0);
        billGrid->addLayout(act1Row, row++, 1);
    }

    // The three bodies.
    lblCounty = NamedLabel(fraCounty, QStringLiteral("lblCounty"), QStringLiteral("County:"));
    txtCounty = ShownField(fraCounty, QStringLiteral("txtCounty"));
    lblLibrary = NamedLabel(fraCounty, QStringLiteral("lblLibrary"), QStringLiteral("Library:"));
    txtLibrary = ShownField(fraCounty, QStringLiteral("txtLibrary"));
    lblC1Face = NamedLabel(fraCounty, QStringLiteral("lblC1Face"), QString());
    txtC1Face = ShownField(fraCounty, QStringLiteral("txtC1Face"));
    layBodyFrame(0, {{lblCounty, txtCounty}, {lblLibrary, txtLibrary}, {lblC1Face, txtC1Face}});

    lblTwp = NamedLabel(fraTwp, QStringLiteral("lblTwp"), QStringLiteral("Township:"));
    txtTwp = ShownField(fraTwp, QStringLiteral("txtTwp"));
    for (int i = 0; i < 3; ++i) {
        lblSpecFace[i] =
            NamedLabel(fraTwp, QStringLiteral("lblSpecFace(%1)").arg(i + 1), QString());
        txtSpecFace[i] = ShownField(fraTwp, QStringLiteral("txtSpecFace(%1)").arg(i + 1));
    }
    fraStLt = new QGroupBox(QStringLiteral("Street Lights"), fraTwp);
    fraStLt->setObjectName(QStringLiteral("fraStLt"));
    optAll = new QRadioButton(QStringLiteral("All"), fraStLt);
    optAll->setObjectName(QStringLiteral("optAll"));
    optTwpOnly = new QRadioButton(QStringLiteral("Township Only"), fraStLt);
    optTwpOnly->setObjectName(QStringLiteral("optTwpOnly"));
    optStLtOnly = new QRadioButton(QStringLiteral("St. Lt. Only"), fraStLt);
    optStLtOnly->setObjectName(QStringLiteral("optStLtOnly"));
    {
        auto* v = new QVBoxLayout(fraStLt);
        v->addWidget(optAll);
        v->addWidget(optTwpOnly);
        v->addWidget(optStLtOnly);
        layBodyFrame(1,
                     {{lblTwp, txtTwp},
                      {lblSpecFace[0], txtSpecFace[0]},
                      {lblSpecFace[1], txtSpecFace[1]},
                      {lblSpecFace[2], txtSpecFace[2]}},
                     fraStLt);
    }

    lblSchool = NamedLabel(fraSchool, QStringLiteral("lblSchool"), QStringLiteral("School:"));
    txtSchool = ShownField(fraSchool, QStringLiteral("txtSchool"));
    lblSch1Face = NamedLabel(fraSchool, QStringLiteral("lblSch1Face"), QString());
    txtSch1Face = ShownField(fraSchool, QStringLiteral("txtSch1Face"));
    fraInstallments = new QGroupBox(QStringLiteral("Installment Payments"), fraSchool);
    fraInstallments->setObjectName(QStringLiteral("fraInstallments"));
    {
        auto* g = new QGridLayout(fraInstallments);
        QCheckBox** boxes[3] = {&chkPay1, &chkPay2, &chkPay3};
        QLineEdit** amounts[3] = {&txtPayment1, &txtPayment2, &txtPayment3};
        QLineEdit** paid[3] = {&txtPayment1Pd, &txtPayment2Pd, &txtPayment3Pd};
        QLineEdit** codes[3] = {&txtInstDFP1, &txtInstDFP2, &txtInstDFP3};
        for (int n = 0; n < 3; ++n) {
            *boxes[n] = new QCheckBox(QStringLiteral("#%1").arg(n + 1), fraInstallments);
            (*boxes[n])->setObjectName(QStringLiteral("chkPay%1").arg(n + 1));
            *amounts[n] = ShownField(fraInstallments, QStringLiteral("txtPayment%1").arg(n + 1));
            *paid[n] = ShownField(fraInstallments, QStringLiteral("txtPayment%1Pd").arg(n + 1), 1);
            *codes[n] = ShownField(fraInstallments, QStringLiteral("txtInstDFP%1").arg(n + 1), 1);
            (*paid[n])->setMaximumWidth(24);
            (*codes[n])->setMaximumWidth(24);
            g->addWidget(*boxes[n], n, 0);
            g->addWidget(*amounts[n], n, 1);
            g->addWidget(*paid[n], n, 2);
            g->addWidget(*codes[n], n, 3);
        }
        lblInstPeriod = NamedLabel(fraInstallments, QStringLiteral("lblInstPeriod"), QString());
        lblInstPeriod->setStyleSheet(QStringLiteral("font-weight: bold;"));
        txtPaymentDate = ShownField(fraInstallments, QStringLiteral("txtPaymentDate"), 10);
        g->addWidget(lblInstPeriod, 3, 0);
        g->addWidget(txtPaymentDate, 3, 1, 1, 3);
    }
    layBodyFrame(2, {{lblSchool, txtSchool}, {lblSch1Face, txtSch1Face}}, fraInstallments);
    auto* bodies = new QHBoxLayout;
    bodies->addWidget(fraCounty);
    bodies->addWidget(fraTwp);
    bodies->addWidget(fraSchool);

    auto* middle = new QGridLayout;
    middle->addWidget(fraBill, 0, 0);
    middle->addWidget(fraPayor, 0, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(bodies);
    layout->addLayout(middle);
    layout->addLayout(buttons);

    // The tab order of the entries: the bill, the date, the bodies, the payor and the money,
    // then the street light choice and the installments.
    QWidget* order[] = {txtBillNo,       txtDate,       cmdDate,      chkCounty,      chkTwp,
                        chkSchool,       txtPayor,      txtPAddr1,    txtPAddr2,      txtPCity,
                        cboPState,       txtPZipCode,   txtPZipCode2, txtChecknum,    txtAmount,
                        chkPrintReceipt, optAll,        optTwpOnly,   optStLtOnly,    chkPay1,
                        chkPay2,         chkPay3,       cmdAccept,    cmdPaymentInfo, cmdPrevPayor,
                        cmdPrevComments, cmdPrintScreen};
    for (size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    for (QCheckBox* box : {chkCounty, chkTwp, chkSchool})
        connect(box, &QCheckBox::clicked, this, [this] { bodyTicked(); });
    const auto boxes = payBoxes();
    for (int n = 0; n < 3; ++n)
        connect(boxes[n], &QCheckBox::clicked, this,
                [this, n](bool ticked) { installmentClicked(n, !ticked); });
    connect(optAll, &QRadioButton::clicked, this,
            [this] { streetLightChosen(StreetLightChoice::All); });
    connect(optTwpOnly, &QRadioButton::clicked, this,
            [this] { streetLightChosen(StreetLightChoice::TwpOnly); });
    connect(optStLtOnly, &QRadioButton::clicked, this,
            [this] { streetLightChosen(StreetLightChoice::StreetLightOnly); });
    connect(cmdPaymentInfo, &QPushButton::clicked, this, [this] {
        showPaymentInfo([this] {
            return RealEstatePaymentInfoText(
                m_flags, m_btFlag,
                ReadRealEstatePaidReceipts(session().DbConnection, m_bill.text("BillNo")));
        });
    });
    connect(cmdQuery, &QPushButton::clicked, this, [] {
        ShowScreenNamed(QStringLiteral("frmREQueryTC"),
                        [] { return static_cast<QWidget*>(new frmREQueryTC); });
    });
}

void frmREReceivePayment::loadRates() {
    loadOffice(lblTwp);
    QSqlQuery q(session().DbConnection);
    auto rate = [](const QSqlRecord& row, const char* column) {
        return row.value(column).toDouble();
    };
    const double countyMill = rate(m_countyRow, "SMR");
    const double countySpecialMill = rate(m_countyRow, "S1MR");
    const QString countySpecial = TextField(m_countyRow.value("S1TaxName")).trimmed();
    const double libraryMill = rate(m_municipalRow, "LMR");
    const double twpMill = rate(m_municipalRow, "TMR");
    const double schoolMill = rate(m_municipalRow, "SMR");
    const QString schoolSpecial = TextField(m_municipalRow.value("S1TaxName")).trimmed();

    lblC1Face->setText(countySpecial + QLatin1Char(':'));
    lblSch1Face->setText(schoolSpecial + QLatin1Char(':'));
    auto show = [](bool visible, QWidget* label, QWidget* field) {
        label->setVisible(visible);
        field->setVisible(visible);
    };
    show(countyMill != 0, lblCounty, txtCounty);
    show(libraryMill != 0, lblLibrary, txtLibrary);
    show(!countySpecial.isEmpty(), lblC1Face, txtC1Face);
    show(twpMill != 0, lblTwp, txtTwp);
    show(schoolMill != 0, lblSchool, txtSchool);
    show(!schoolSpecial.isEmpty(), lblSch1Face, txtSch1Face);

    int special = 0;
    q.prepare(QStringLiteral(
        "SELECT Desc1 FROM Spectax WHERE District = ? AND Ward = ? ORDER BY TaxKey"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    if (q.exec()) {
        while (special < 3 && q.next()) {
            lblSpecFace[special]->setText(TextField(q.value(0)).trimmed() + QLatin1Char(':'));
            ++special;
        }
    }
    for (int i = 0; i < 3; ++i)
        show(i < special, lblSpecFace[i], txtSpecFace[i]);

    m_block = {countyMill != 0 || countySpecialMill != 0 || libraryMill != 0, twpMill != 0,
               schoolMill != 0 || !schoolSpecial.isEmpty()};
    fraCounty->setVisible(m_block[0]);
    fraTwp->setVisible(m_block[1]);
    fraSchool->setVisible(m_block[2]);

    q.prepare(QStringLiteral("SELECT Value FROM tbl_Settings WHERE Name = ?"));
    q.addBindValue(QString::fromLatin1(ClaimPhoneSetting));
    if (q.exec() && q.next())
        m_claimPhone = TextField(q.value(0)).trimmed();
    if (m_claimPhone.isEmpty())
        m_claimPhone = QString::fromLatin1(ClaimPhoneFallback);
}

void frmREReceivePayment::billNoLeft() {
    std::optional<BillNow> bill = readBill(Duplicate::RealEstate);
    if (!bill)
        return;
    m_bill = std::move(*bill);
    m_billLoaded = true;
    m_lines = BillLinesFromRecord(m_bill.bill);
    m_flags = BillPayFlagsFromRecord(m_bill.bill);
    m_billInstallments = InstallmentsFromRecord(m_bill.bill);
    showBill();

    session().PaymentInfoText = RealEstatePaymentInfoText(
        m_flags, m_btFlag,
        ReadRealEstatePaidReceipts(session().DbConnection, m_bill.text("BillNo")));
    lblPaymentReceived->setVisible(!session().PaymentInfoText.isEmpty());

    const TaxBody bodies[3] = {TaxBody::County, TaxBody::Twp, TaxBody::School};
    std::array<bool, 3> settled{};
    for (int b = 0; b < 3; ++b)
        settled[b] = bodySettled(bodies[b]);
    if (refuseSettledBill({m_flags.cPayFlag, m_flags.tPayFlag, m_flags.sPayFlag}, settled))
        return;
    if (m_bill.text("TaxClaimFlag").trimmed() == QLatin1String("Y"))
        MsgBox(QStringLiteral("There may be outstanding delinquent taxes due on this account. "
                              "Please contact the Tax Claim Bureau at ") +
                   m_claimPhone + QLatin1Char('.'),
               QString::fromLatin1(ReceiveAPaymentTitle), MsgButtons::Ok, MsgIcon::Exclamation);

    std::array<bool, 3> closed{};
    for (int b = 0; b < 3; ++b)
        closed[b] = settled[b] || bodyZero(bodies[b]);
    openForPayment(closed);

    // District 39: what was paid of the split municipal part decides what is left to choose.
    m_streetLight = StreetLightChoice::All;
    const QString stLt = m_bill.text("StLtFlag").trimmed();
    optAll->setEnabled(true);
    optTwpOnly->setEnabled(true);
    optStLtOnly->setEnabled(true);
    if (stLt == QLatin1String("T")) {
        optAll->setEnabled(false);
        optTwpOnly->setEnabled(false);
        m_streetLight = StreetLightChoice::StreetLightOnly;
    } else if (stLt == QLatin1String("S")) {
        optAll->setEnabled(false);
        optStLtOnly->setEnabled(false);
        m_streetLight = StreetLightChoice::TwpOnly;
    }
    updateStreetLightFrame();
    updateDetailFields();
    refreshAmounts();
    txtPayor->setFocus(Qt::OtherFocusReason);
}

void frmREReceivePayment::showBill() {
    const BillNow& b = m_bill;
    showBillOwner();
    txtCoOwner->setText(b.text("CoOwner"));
    txtMap3->setText(b.text("Map3"));
    txtMap4->setText(b.text("Map4"));
    txtMap5->setText(b.text("Map5"));
    txtDesc1->setText(b.text("Desc1"));
    txtDesc2->setText(b.text("Desc2"));
    txtDesc3->setText(b.text("Desc3"));
    txtDeedBook->setText(b.text("DeedBook"));
    txtDeedPage->setText(b.text("DeedPage"));
    cboLandUse->setEditText(b.text("LandUse"));
    txtAcreage->setText(b.text("Acreage"));
    const qint64 land = b.bill.value("AssLand").toLongLong();
    const qint64 impr = b.bill.value("AssImpr").toLongLong();
    txtAssLand->setText(QString::number(land));
    txtAssImpr->setText(QString::number(impr));
    txtAssTotal->setText(QString::number(land + impr));
    chkHFFlag->setChecked(b.text("HFFlag").trimmed() == QLatin1String("A"));
    txtHSExclusion->setText(moneyText(b.money("HSExclusion")));
    txtFSExclusion->setText(moneyText(b.money("FSExclusion")));
    txtExcFace->setText(moneyText(b.money("ExcFace")));
    fraInstallments->setVisible(m_billInstallments.offered());
}

// ---------------------------------------------------------------------------------------------
// Amounts, ticks and installments
// ---------------------------------------------------------------------------------------------

bool frmREReceivePayment::bodySettled(TaxBody body) const {
    switch (body) {
    case TaxBody::County:
        return !isBlank(m_flags.cPayFlag);
    case TaxBody::Twp:
        return !isBlank(m_flags.tPayFlag);
    case TaxBody::School: {
        const QString s = m_flags.sPayFlag.trimmed();
        if (s.isEmpty())
            return false;
        if (s != QLatin1String("I"))
            return true;
        for (const QString& f : m_flags.payFlag)
            if (isBlank(f))
                return false;
        return true;
    }
    }
    return false;
}

bool frmREReceivePayment::bodyZero(TaxBody body) const {
    Money sum;
    for (int i = 0; i < TaxLineCount; ++i)
        if (BodyOfLine(i) == body)
            sum += m_lines.line[i].face;
    return sum.isZero();
}

PaymentSelection frmREReceivePayment::installmentSelection() const {
    PaymentSelection s = selection();
    s.installment = {chkPay1->isChecked(), chkPay2->isChecked(), chkPay3->isChecked()};
    return s;
}

bool frmREReceivePayment::streetLightApplies() const {
    return m_billLoaded && m_district == QLatin1String("39") && chkTwp->isChecked() &&
           m_lines.line[LineSpecial3].face > Money();
}

void frmREReceivePayment::updateStreetLightFrame() {
    fraStLt->setVisible(streetLightApplies());
}

void frmREReceivePayment::updateDetailFields() {
    const std::pair<QCheckBox*, std::vector<QWidget*>> blocks[3] = {
        {chkCounty, {txtCounty, txtLibrary, txtC1Face, txtCTotal, lblCPeriod}},
        {chkTwp, {txtTwp, txtSpecFace[0], txtSpecFace[1], txtSpecFace[2], txtTTotal, lblTPeriod}},
        {chkSchool, {txtSchool, txtSch1Face, txtSTotal, lblSPeriod}},
    };
    for (const auto& [box, details] : blocks)
        for (QWidget* w : details)
            w->setEnabled(!m_billLoaded || box->isChecked());
    const bool school = m_billLoaded && chkSchool->isChecked() && chkSchool->isEnabled();
    const auto boxes = payBoxes();
    for (int n = 0; n < 3; ++n)
        boxes[n]->setEnabled(school && !m_installments.line[n].paid &&
                             !m_installments.line[n].pastDate);
}

void frmREReceivePayment::refreshAmounts(bool offer) {
    lblCPeriod->setText(PeriodLabel(m_periods.county));
    lblTPeriod->setText(PeriodLabel(m_periods.twp));
    lblSPeriod->setText(PeriodLabel(m_periods.school));
    if (!m_billLoaded)
        return;

    m_amounts = AmountsForPeriods(m_lines, m_periods);
    if (streetLightApplies())
        ApplyStreetLightChoice(m_amounts, m_streetLight);
    QLineEdit* lineFields[TaxLineCount] = {txtCounty,      txtLibrary,     txtC1Face,
                                           txtTwp,         txtSpecFace[0], txtSpecFace[1],
                                           txtSpecFace[2], txtSchool,      txtSch1Face};
    for (int i = 0; i < TaxLineCount; ++i)
        lineFields[i]->setText(moneyText(m_amounts.line[i].amount));
    txtCTotal->setText(moneyText(m_amounts.countyTotal()));
    txtTTotal->setText(moneyText(m_amounts.twpTotal()));
    txtSTotal->setText(moneyText(m_amounts.schoolTotal()));
    // The grand total of the three bodies at their periods, ticked or not.
    txtTotal->setText(moneyText(m_amounts.total()));

    fillInstallments();
    updateDetailFields();
    if (!offer)
        return;
    const AmountOffer o = AmountOffered(installmentSelection(), m_flags.cPayFlag, m_flags.tPayFlag,
                                        m_flags.sPayFlag, m_amounts, m_installments);
    const auto boxes = payBoxes();
    for (int n = 0; n < 3; ++n)
        boxes[n]->setChecked(o.installment[n]);
    txtAmount->setText(moneyText(o.amount));
}

void frmREReceivePayment::fillInstallments() {
    std::array<QDate, 3> due = m_calendar.installmentDates;
    m_installments = InstallmentsForDate(m_billInstallments, m_flags.payFlag, due, m_credited);
    QLineEdit* paid[3] = {txtPayment1Pd, txtPayment2Pd, txtPayment3Pd};
    QLineEdit* codes[3] = {txtInstDFP1, txtInstDFP2, txtInstDFP3};
    const auto amounts = paymentFields();
    for (int n = 0; n < 3; ++n) {
        const InstallmentLine& l = m_installments.line[n];
        amounts[n]->setText(moneyText(l.amount));
        amounts[n]->setStyleSheet(l.pastDate ? QStringLiteral("background: #ff6060;") : QString());
        paid[n]->setText(m_flags.payFlag[n].trimmed());
        codes[n]->setText(l.code.isNull() ? QString() : QString(l.code));
    }
    lblInstPeriod->setText(m_installments.periodLabel);
    txtPaymentDate->setText(FormatDate(m_installments.nextDate));
}

void frmREReceivePayment::bodyTicked() {
    if (!chkSchool->isChecked())
        for (QCheckBox* box : payBoxes())
            box->setChecked(false);
    updateStreetLightFrame();
    updateDetailFields();
    refreshAmounts();
}

void frmREReceivePayment::installmentClicked(int index, bool wasTicked) {
    const auto boxes = payBoxes();
    std::array<bool, 3> after{boxes[0]->isChecked(), boxes[1]->isChecked(), boxes[2]->isChecked()};
    std::array<bool, 3> before = after;
    before[index] = wasTicked;
    const std::array<bool, 3> ruled =
        ApplyInstallmentBoxRules(before, after, chkSchool->isChecked(), m_installments);
    for (int n = 0; n < 3; ++n)
        boxes[n]->setChecked(ruled[n]);
    refreshAmounts();
}

void frmREReceivePayment::streetLightChosen(StreetLightChoice choice) {
    m_streetLight = choice;
    refreshAmounts();
}

// ---------------------------------------------------------------------------------------------
// Accept
// ---------------------------------------------------------------------------------------------

void frmREReceivePayment::acceptPayment() {
    // 1 to 6, then 7: the amount against the total due.
    const PaymentSelection sel = installmentSelection();
    const std::optional<PaymentCheck> check =
        checkAccept([&] { return TotalDue(sel, m_amounts, m_installments); });
    if (!check)
        return;

    // 8. What the receipt holds, then 9 to 11, the writes.
    PaymentChoice choice;
    choice.selection = sel;
    choice.periods = m_periods;
    choice.streetLightShown = streetLightApplies();
    choice.streetLightOption = optTwpOnly->isChecked()    ? StreetLightChoice::TwpOnly
                               : optStLtOnly->isChecked() ? StreetLightChoice::StreetLightOnly
                                                          : StreetLightChoice::All;
    choice.district39 = m_district == QLatin1String("39");
    RealEstatePosting posting = BuildRealEstatePosting(m_bill, choice, m_amounts, m_installments);
    RealEstateReceipt& r = posting.receipt;
    r.rdate = m_credited;
    r.overage = check->overage;
    r.refund = check->refund;
    SetReceiptPayor(r, m_entry->payorEntry());
    // 12 to 15: the receipt, the refund screen, a query that opened this one, "Payment
    // Received".
    finishPayment(
        PostRealEstatePayment(session().DbConnection, posting, Clock::today()), *check,
        [this](const QString& recnum) {
            // The payor, owner and parcel are read from this screen's fields.
            AskAndPrintREReceipt(this, recnum, session().DbConnection);
        },
        [this](RefundSource source) {
            source.map3 = txtMap3->text();
            source.map4 = txtMap4->text();
            source.map5 = txtMap5->text();
            auto* refund = new frmRERefund(source);
            if (ScreenHost* main = screenHost()) {
                main->showScreen(refund, true);
            } else {
                refund->exec();
                delete refund;
            }
        });
}

void frmREReceivePayment::clearOwnState() {
    m_lines = BillLines();
    m_billInstallments = Installments();
    m_installments = InstallmentView();
    m_streetLight = StreetLightChoice::All;
    cboLandUse->setEditText(QString());
    chkHFFlag->setChecked(false);
    lblInstPeriod->clear();
    fraStLt->hide();
    fraInstallments->hide();
    optAll->setChecked(true);
    for (QRadioButton* opt : {optAll, optTwpOnly, optStLtOnly})
        opt->setEnabled(true);
    for (QCheckBox* box : payBoxes())
        box->setChecked(false);
}
