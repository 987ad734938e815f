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

frmREReceivePayment::frmREReceivePayment(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmREReceivePayment"));
    setWindowTitle(QStringLiteral("Receive Real Estate Payments"));
    buildScreen();
    m_entry.emplace(PaymentEntryFields{
        txtDate,      txtPayor,    txtPAddr1,   txtPAddr2, txtPCity, cboPState, txtPZipCode,
        txtPZipCode2, txtChecknum, txtAmount,   txtName,   txtAddr1, txtAddr2,  txtCity,
        cboState,     txtZipCode,  txtZipCode2, chkCounty, chkTwp,   chkSchool});
    loadRates();
    clearScreen();
    session().LastScreenName = objectName();
}

void frmREReceivePayment::buildScreen() {
    // Bill number, date, payor, money and buttons, as on the per capita screen.
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

    // The bill as it stands.
    auto* fraBill = new QGroupBox(QStringLiteral("Property Owner"), this);
    fraBill->setObjectName(QStringLiteral("fraBill"));
    txtControl = ShownField(fraBill, QStringLiteral("txtControl"), 6);
    txtName = ShownField(fraBill, QStringLiteral("txtName"), 50);
    txtCoOwner = ShownField(fraBill, QStringLiteral("txtCoOwner"), 50);
    txtAddr1 = ShownField(fraBill, QStringLiteral("txtAddr1"), 50);
    txtAddr2 = ShownField(fraBill, QStringLiteral("txtAddr2"), 50);
    txtCity = ShownField(fraBill, QStringLiteral("txtCity"), 35);
    cboState = NewStateCombo(fraBill, QStringLiteral("cboState"), 2);
    cboState->setFocusPolicy(Qt::NoFocus);
    cboState->lineEdit()->setReadOnly(true);
    txtZipCode = ShownField(fraBill, QStringLiteral("txtZipCode"), 5);
    txtZipCode2 = ShownField(fraBill, QStringLiteral("txtZipCode2"), 4);
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
    int row = 0;
    AddFieldRow(billGrid, row++, new QLabel(QStringLiteral("Control #:"), fraBill), txtControl);
    AddFieldRow(billGrid, row++, new QLabel(QStringLiteral("Name:"), fraBill), txtName);
    AddFieldRow(billGrid, row++, new QLabel(QStringLiteral("Co-Owner:"), fraBill), txtCoOwner);
    AddFieldRow(billGrid, row++, new QLabel(QStringLiteral("Address:"), fraBill), txtAddr1);
    AddFieldRow(billGrid, row++, new QLabel(QString(), fraBill), txtAddr2);
    {
        auto* cityRow = new QHBoxLayout;
        cityRow->addWidget(txtCity, 3);
        cityRow->addWidget(cboState, 1);
        cityRow->addWidget(txtZipCode, 1);
        cityRow->addWidget(txtZipCode2, 1);
        billGrid->addWidget(new QLabel(QStringLiteral("City/St/Zip:"), fraBill), row, 0);
        billGrid->addLayout(cityRow, row++, 1);
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
    auto bodyFrame = [this](const char* name, const QString& title, QCheckBox*& box,
                            const char* boxName, const QString& caption, QLabel*& period,
                            const char* periodName) {
        auto* frame = new QGroupBox(title, this);
        frame->setObjectName(QString::fromLatin1(name));
        box = new QCheckBox(caption, frame);
        box->setObjectName(QString::fromLatin1(boxName));
        period = NamedLabel(frame, QString::fromLatin1(periodName), QString());
        period->setStyleSheet(QStringLiteral("font-weight: bold;"));
        return frame;
    };
    fraCounty = bodyFrame("fraCounty", QStringLiteral("County"), chkCounty, "chkCounty",
                          QStringLiteral("County Payment"), lblCPeriod, "lblCPeriod");
    fraTwp = bodyFrame("fraTwp", QStringLiteral("Twp/Boro/City"), chkTwp, "chkTwp",
                       QStringLiteral("Twp/Boro/City Payment"), lblTPeriod, "lblTPeriod");
    fraSchool = bodyFrame("fraSchool", QStringLiteral("School"), chkSchool, "chkSchool",
                          QStringLiteral("School Payment"), lblSPeriod, "lblSPeriod");

    lblCounty = NamedLabel(fraCounty, QStringLiteral("lblCounty"), QStringLiteral("County:"));
    txtCounty = ShownField(fraCounty, QStringLiteral("txtCounty"));
    lblLibrary = NamedLabel(fraCounty, QStringLiteral("lblLibrary"), QStringLiteral("Library:"));
    txtLibrary = ShownField(fraCounty, QStringLiteral("txtLibrary"));
    lblC1Face = NamedLabel(fraCounty, QStringLiteral("lblC1Face"), QString());
    txtC1Face = ShownField(fraCounty, QStringLiteral("txtC1Face"));
    txtCTotal = ShownField(fraCounty, QStringLiteral("txtCTotal"));
    {
        auto* g = new QGridLayout(fraCounty);
        g->addWidget(chkCounty, 0, 0, 1, 2);
        g->addWidget(lblCPeriod, 1, 0, 1, 2);
        AddFieldRow(g, 2, lblCounty, txtCounty);
        AddFieldRow(g, 3, lblLibrary, txtLibrary);
        AddFieldRow(g, 4, lblC1Face, txtC1Face);
        AddFieldRow(g, 5, new QLabel(QStringLiteral("Total:"), fraCounty), txtCTotal);
        g->setRowStretch(6, 1);
    }

    lblTwp = NamedLabel(fraTwp, QStringLiteral("lblTwp"), QStringLiteral("Township:"));
    txtTwp = ShownField(fraTwp, QStringLiteral("txtTwp"));
    for (int i = 0; i < 3; ++i) {
        lblSpecFace[i] =
            NamedLabel(fraTwp, QStringLiteral("lblSpecFace(%1)").arg(i + 1), QString());
        txtSpecFace[i] = ShownField(fraTwp, QStringLiteral("txtSpecFace(%1)").arg(i + 1));
    }
    txtTTotal = ShownField(fraTwp, QStringLiteral("txtTTotal"));
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
        auto* g = new QGridLayout(fraTwp);
        g->addWidget(chkTwp, 0, 0, 1, 2);
        g->addWidget(lblTPeriod, 1, 0, 1, 2);
        AddFieldRow(g, 2, lblTwp, txtTwp);
        for (int i = 0; i < 3; ++i)
            AddFieldRow(g, 3 + i, lblSpecFace[i], txtSpecFace[i]);
        AddFieldRow(g, 6, new QLabel(QStringLiteral("Total:"), fraTwp), txtTTotal);
        g->addWidget(fraStLt, 7, 0, 1, 2);
        g->setRowStretch(8, 1);
    }

    lblSchool = NamedLabel(fraSchool, QStringLiteral("lblSchool"), QStringLiteral("School:"));
    txtSchool = ShownField(fraSchool, QStringLiteral("txtSchool"));
    lblSch1Face = NamedLabel(fraSchool, QStringLiteral("lblSch1Face"), QString());
    txtSch1Face = ShownField(fraSchool, QStringLiteral("txtSch1Face"));
    txtSTotal = ShownField(fraSchool, QStringLiteral("txtSTotal"));
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
    {
        auto* g = new QGridLayout(fraSchool);
        g->addWidget(chkSchool, 0, 0, 1, 2);
        g->addWidget(lblSPeriod, 1, 0, 1, 2);
        AddFieldRow(g, 2, lblSchool, txtSchool);
        AddFieldRow(g, 3, lblSch1Face, txtSch1Face);
        AddFieldRow(g, 4, new QLabel(QStringLiteral("Total:"), fraSchool), txtSTotal);
        g->addWidget(fraInstallments, 5, 0, 1, 2);
        g->setRowStretch(6, 1);
    }
    auto* bodies = new QHBoxLayout;
    bodies->addWidget(fraCounty);
    bodies->addWidget(fraTwp);
    bodies->addWidget(fraSchool);

    auto* middle = new QGridLayout;
    middle->addWidget(fraBill, 0, 0);
    middle->addWidget(parts.fraPayor, 0, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(parts.top);
    layout->addLayout(bodies);
    layout->addLayout(middle);
    layout->addLayout(parts.buttons);

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

    // Field-leave actions run on focus-out; the buttons learn of a refused leave.
    for (QWidget* w : {txtBillNo, txtDate, txtPayor, txtChecknum, txtAmount})
        w->installEventFilter(this);
    for (QAbstractButton* b : findChildren<QAbstractButton*>())
        b->installEventFilter(this);

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
    connect(cmdAccept, &QPushButton::clicked, this, [this] { accept(); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdPaymentInfo, &QPushButton::clicked, this, [this] { showPaymentInfo(); });
    connect(cmdPrevPayor, &QPushButton::clicked, this, [this] { previousPayor(); });
    connect(cmdPrevComments, &QPushButton::clicked, this, [this] { previousCheck(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
    connect(cmdQuery, &QPushButton::clicked, this, [] {
        ShowScreenNamed(QStringLiteral("frmREQueryTC"),
                        [] { return static_cast<QWidget*>(new frmREQueryTC); });
    });
}

void frmREReceivePayment::loadRates() {
    QSqlDatabase db = session().DbConnection;
    QSqlQuery q(db);
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
    if (m_btFlag == QLatin1String("B"))
        lblTwp->setText(QStringLiteral("Borough:"));
    else if (m_btFlag == QLatin1String("C"))
        lblTwp->setText(QStringLiteral("City:"));
    else
        lblTwp->setText(QStringLiteral("Township:"));

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

    m_countyBlock = countyMill != 0 || countySpecialMill != 0 || libraryMill != 0;
    m_twpBlock = twpMill != 0;
    m_schoolBlock = schoolMill != 0 || !schoolSpecial.isEmpty();
    fraCounty->setVisible(m_countyBlock);
    fraTwp->setVisible(m_twpBlock);
    fraSchool->setVisible(m_schoolBlock);

    if (q.exec(QStringLiteral("SELECT State FROM tbl_States")))
        while (q.next())
            cboPState->addItem(TextField(q.value(0)));

    q.prepare(QStringLiteral("SELECT Value FROM tbl_Settings WHERE Name = ?"));
    q.addBindValue(QString::fromLatin1(ClaimPhoneSetting));
    if (q.exec() && q.next())
        m_claimPhone = TextField(q.value(0)).trimmed();
    if (m_claimPhone.isEmpty())
        m_claimPhone = QString::fromLatin1(ClaimPhoneFallback);

    m_credited = Clock::today();
    txtDate->setText(FormatDate(m_credited));
    m_periods = PeriodsForDate(m_calendar, m_credited);
}

void frmREReceivePayment::applyDefaultTicks() {
    chkCounty->setChecked(m_countyBlock);
    chkTwp->setChecked(m_twpBlock);
    chkSchool->setChecked(m_schoolBlock);
    for (QCheckBox* box : payBoxes())
        box->setChecked(false);
}

void frmREReceivePayment::lockEntryFields() {
    for (QWidget* w : std::initializer_list<QWidget*>{
             txtDate,        cmdDate,      chkCounty,      chkTwp,      chkSchool, chkPay1,
             chkPay2,        chkPay3,      txtPayor,       txtPAddr1,   txtPAddr2, txtPCity,
             cboPState,      txtPZipCode,  txtPZipCode2,   txtChecknum, txtAmount, cmdAccept,
             cmdPaymentInfo, cmdPrevPayor, cmdPrevComments})
        w->setEnabled(false);
}

// ---------------------------------------------------------------------------------------------
// Field leave
// ---------------------------------------------------------------------------------------------

bool frmREReceivePayment::eventFilter(QObject* watched, QEvent* event) {
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
    if (watched == txtBillNo) {
        billNoLeft();
    } else if (watched == txtDate) {
        refused = !dateLeft();
    } else if (watched == txtPayor) {
        payorLeft();
    } else if (watched == txtChecknum) {
        checknumLeft();
    } else if (watched == txtAmount) {
        refused = !amountLeft();
    }
    m_inLeave = false;

    if (refused)
        MarkRefusedClick(this, target, event);
    return FieldTookFocusBack(watched) || QWidget::eventFilter(watched, event);
}

void frmREReceivePayment::enterBillNo(const QString& billNo) {
    if (!txtBillNo->isEnabled())
        return;
    txtBillNo->setText(billNo);
    m_inLeave = true;
    billNoLeft();
    m_inLeave = false;
}

void frmREReceivePayment::openFromQuery(const QString& billNo) {
    clearScreen();
    txtBillNo->setEnabled(true);
    txtBillNo->setText(billNo);
    m_inLeave = true;
    billNoLeft();
    m_inLeave = false;
    // The number stays locked: the screen works on the bill the query gave.
    txtBillNo->setEnabled(false);
}

void frmREReceivePayment::billNoLeft() {
    if (txtBillNo->text().trimmed().isEmpty())
        return;
    const QString billNo = PadBillNo(txtBillNo->text());
    {
        const QSignalBlocker block(txtBillNo);
        txtBillNo->setText(billNo);
    }
    BillNow bill = ReadBillAsItStands(session().DbConnection, Duplicate::RealEstate, billNo);
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
    m_lines = BillLinesFromRecord(m_bill.bill);
    m_flags = BillPayFlagsFromRecord(m_bill.bill);
    m_billInstallments = InstallmentsFromRecord(m_bill.bill);
    showBill();

    session().PaymentInfoText = RealEstatePaymentInfoText(
        m_flags, m_btFlag, ReadRealEstatePaidReceipts(session().DbConnection, billNo));
    lblPaymentReceived->setVisible(!session().PaymentInfoText.isEmpty());

    // Nothing can be taken on a bill whose every part shown is exonerated or settled. An
    // exonerated part counts as settled, so the exoneration is told first.
    const TaxBody bodies[3] = {TaxBody::County, TaxBody::Twp, TaxBody::School};
    const QString flags[3] = {m_flags.cPayFlag, m_flags.tPayFlag, m_flags.sPayFlag};
    bool anyVisible = false;
    bool allExonerated = true;
    bool allSettled = true;
    for (int b = 0; b < 3; ++b) {
        if (!blockVisible(bodies[b]))
            continue;
        anyVisible = true;
        if (flags[b].trimmed() != QLatin1String("X"))
            allExonerated = false;
        if (!bodySettled(bodies[b]))
            allSettled = false;
    }
    if (anyVisible && allExonerated) {
        MsgBox(QStringLiteral("This tax bill has been exonerated. You cannot receive a payment "
                              "on this account."),
               QString::fromLatin1(ReceiveAPaymentTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        clearScreen();
        return;
    }
    if (anyVisible && allSettled) {
        txtAmount->clear();
        MsgBox(QStringLiteral("This Account has already been paid in full. You cannot receive a "
                              "payment on this account."),
               QString::fromLatin1(ReceiveAPaymentTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        clearScreen();
        return;
    }
    if (m_bill.text("TaxClaimFlag").trimmed() == QLatin1String("Y"))
        MsgBox(QStringLiteral("There may be outstanding delinquent taxes due on this account. "
                              "Please contact the Tax Claim Bureau at ") +
                   m_claimPhone + QLatin1Char('.'),
               QString::fromLatin1(ReceiveAPaymentTitle), MsgButtons::Ok, MsgIcon::Exclamation);

    txtBillNo->setEnabled(false);
    cmdAccept->setEnabled(true);
    cmdPaymentInfo->setEnabled(true);
    cmdDate->setEnabled(true);
    cmdPrevPayor->setEnabled(true);
    cmdPrevComments->setEnabled(true);

    // A body settled or with nothing to pay is closed to payment.
    QCheckBox* boxes[3] = {chkCounty, chkTwp, chkSchool};
    for (int b = 0; b < 3; ++b) {
        const bool closed = bodySettled(bodies[b]) || bodyZero(bodies[b]);
        boxes[b]->setEnabled(!closed && blockVisible(bodies[b]));
        if (closed)
            boxes[b]->setChecked(false);
    }
    for (QWidget* w :
         std::initializer_list<QWidget*>{txtPayor, txtPAddr1, txtPAddr2, txtPCity, cboPState,
                                         txtPZipCode, txtPZipCode2, txtChecknum, txtAmount})
        w->setEnabled(true);

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
    txtAdjNo->setText(b.adjNo > 0 ? QString::number(b.adjNo) : QString());
    txtControl->setText(b.text("Control"));
    txtName->setText(b.text("Name"));
    txtCoOwner->setText(b.text("CoOwner"));
    txtAddr1->setText(b.text("Addr1"));
    txtAddr2->setText(b.text("Addr2"));
    txtCity->setText(b.text("City"));
    cboState->setEditText(b.text("State"));
    txtZipCode->setText(b.text("ZipCode"));
    txtZipCode2->setText(b.text("ZipCode2"));
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
    lblAdjustment->setVisible(b.text("AdjFlag").trimmed() == QLatin1String("A"));
    lblAddressChange->setVisible(b.text("CAddrFlag").trimmed() == QLatin1String("A"));
    fraInstallments->setVisible(m_billInstallments.offered());
}

bool frmREReceivePayment::validateDate(bool showMessage) {
    const std::optional<QDate> date = m_entry->validateDate(showMessage);
    if (!date)
        return false;
    m_credited = *date;
    return true;
}

bool frmREReceivePayment::dateLeft() {
    if (!validateDate(true))
        return false;
    m_periods = PeriodsForDate(m_calendar, m_credited);
    refreshAmounts();
    txtDate->setEnabled(false);
    return true;
}

void frmREReceivePayment::payorLeft() {
    m_entry->payorLeft();
}

bool frmREReceivePayment::validateChecknum() {
    m_entry->checknumLeft();
    return true;
}

void frmREReceivePayment::checknumLeft() {
    m_entry->checknumLeft();
}

bool frmREReceivePayment::validateAmount() {
    return m_entry->validateAmount();
}

bool frmREReceivePayment::amountLeft() {
    return validateAmount();
}

// ---------------------------------------------------------------------------------------------
// Amounts, ticks and installments
// ---------------------------------------------------------------------------------------------

bool frmREReceivePayment::blockVisible(TaxBody body) const {
    switch (body) {
    case TaxBody::County:
        return m_countyBlock;
    case TaxBody::Twp:
        return m_twpBlock;
    case TaxBody::School:
        return m_schoolBlock;
    }
    return false;
}

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

PaymentSelection frmREReceivePayment::selection() const {
    PaymentSelection s;
    s.county = chkCounty->isChecked();
    s.twp = chkTwp->isChecked();
    s.school = chkSchool->isChecked();
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
    const AmountOffer o = AmountOffered(selection(), m_flags.cPayFlag, m_flags.tPayFlag,
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

void frmREReceivePayment::accept() {
    if (!m_billLoaded)
        return;
    // The focus moves about while the payment is checked; no field-leave action runs meanwhile.
    m_inLeave = true;
    acceptPayment();
    m_inLeave = false;
}

void frmREReceivePayment::acceptPayment() {
    const QString title = QString::fromLatin1(ReceivePaymentTitle);

    // 1 to 6: a body, date, payor, check, amount, and the question.
    const std::optional<Money> amount = m_entry->checkForAccept([this](const QDate& date) {
        m_credited = date;
        m_periods = PeriodsForDate(m_calendar, m_credited);
        refreshAmounts(false);
    });
    if (!amount)
        return;

    // 7. The amount against the total due.
    const PaymentSelection sel = selection();
    const std::optional<PaymentCheck> check = m_entry->checkAgainstTotal(
        *amount, TotalDue(sel, m_amounts, m_installments), m_calendar.tolerance);
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
        PostRealEstatePayment(session().DbConnection, posting, Clock::today());
    if (!posted.ok) {
        MsgBox(QStringLiteral("The payment could not be saved: ") + posted.error, title,
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    m_entry->remember(payor);

    // 12. The receipt.
    if (chkPrintReceipt->isChecked())
        printReceipt(posted.recnum);
    // 13. Money to go back.
    if (check->refund > Money()) {
        session().RefundRecnum = posted.recnum;
        session().RefundAmount = check->refund;
        openRefund();
    }
    // 14. A query screen that opened this one refreshes.
    Q_EMIT paymentReceived(posted.recnum);

    // 15.
    MsgBox(QStringLiteral("Payment Received"), title, MsgButtons::Ok, MsgIcon::Information);
    clearScreen();
    txtBillNo->setFocus(Qt::OtherFocusReason);
}

void frmREReceivePayment::printReceipt(const QString& recnum) {
    // The copies question, the receipt printer and the receipt itself; the payor, owner and
    // parcel are read from this screen's fields.
    AskAndPrintREReceipt(this, recnum, session().DbConnection);
}

void frmREReceivePayment::openRefund() {
    RefundSource source;
    source.control = txtControl->text();
    source.map3 = txtMap3->text();
    source.map4 = txtMap4->text();
    source.map5 = txtMap5->text();
    source.billNo = txtBillNo->text();
    source.adjNo = txtAdjNo->text();
    source.payor = {txtPayor->text(),    txtPAddr1->text(),        txtPAddr2->text(),
                    txtPCity->text(),    cboPState->currentText(), txtPZipCode->text(),
                    txtPZipCode2->text()};
    source.owner = {txtName->text(),    txtAddr1->text(),        txtAddr2->text(),
                    txtCity->text(),    cboState->currentText(), txtZipCode->text(),
                    txtZipCode2->text()};
    auto* refund = new frmRERefund(source);
    if (ScreenHost* main = screenHost()) {
        main->showScreen(refund, true);
    } else {
        refund->exec();
        delete refund;
    }
}

void frmREReceivePayment::showPaymentInfo() {
    if (m_billLoaded)
        session().PaymentInfoText = RealEstatePaymentInfoText(
            m_flags, m_btFlag,
            ReadRealEstatePaidReceipts(session().DbConnection, m_bill.text("BillNo")));
    if (session().PaymentInfoText.isEmpty())
        MsgBox(QString::fromLatin1(NoPaymentsText), QString::fromLatin1(NoPaymentsTitle));
    else
        MsgBox(session().PaymentInfoText, QString::fromLatin1(PaymentInfoTitle));
}

void frmREReceivePayment::clearScreen() {
    m_clearing = true;
    m_billLoaded = false;
    m_bill = BillNow();
    m_lines = BillLines();
    m_flags = BillPayFlags();
    m_billInstallments = Installments();
    m_installments = InstallmentView();
    m_streetLight = StreetLightChoice::All;

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
    cboLandUse->setEditText(QString());
    cboPState->setEditText(QString());
    cboPState->setCurrentIndex(-1);
    chkHFFlag->setChecked(false);
    lblInstPeriod->clear();
    fraStLt->hide();
    fraInstallments->hide();
    lblAdjustment->hide();
    lblAddressChange->hide();
    lblPaymentReceived->hide();
    optAll->setChecked(true);
    for (QRadioButton* opt : {optAll, optTwpOnly, optStLtOnly})
        opt->setEnabled(true);
    applyDefaultTicks();
    lockEntryFields();
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

void frmREReceivePayment::previousPayor() {
    m_entry->previousPayor();
}

void frmREReceivePayment::previousCheck() {
    m_entry->previousCheck();
}
