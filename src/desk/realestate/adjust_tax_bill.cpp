#include "desk/realestate/adjust_tax_bill.h"

#include "bills/re_print_tax_bills.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/realestate/adjust_common.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/query_tc.h"
#include "desk/realestate/receive_payment.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSqlQuery>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace {

const char* const AdjustTitle = "Adjust Tax Bill";
const char16_t* const MoneyPattern = u"$###,###,###.00";

QString moneyText(Money amount) {
    return amount.format(MoneyPattern);
}

bool isBlank(QStringView text) {
    return text.trimmed().isEmpty();
}

// A whole number as typed: "12000", "12,000", "12000.4" (taken to the nearest whole number,
// halves to the even one). Blank or anything else is no number.
std::optional<qint64> wholeNumber(const QString& typed) {
    QString text = typed.trimmed();
    text.remove(QLatin1Char(','));
    if (text.isEmpty())
        return std::nullopt;
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value) || std::fabs(value) > 1e12)
        return std::nullopt;
    return static_cast<qint64>(std::nearbyint(value));
}

std::optional<Money> amountOf(const QLineEdit* field) {
    return Money::parse(field->text());
}

// An exclusion is an assessment in whole dollars, held as an amount.
QString exclusionText(Money amount) {
    if (amount.units() % Money::UnitsPerDollar == 0)
        return QString::number(amount.units() / Money::UnitsPerDollar);
    return amount.toPlain();
}

QComboBox* newCombo(QWidget* parent, const QString& name, int maxLength) {
    auto* combo = new QComboBox(parent);
    combo->setObjectName(name);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->lineEdit()->setMaxLength(maxLength);
    return combo;
}

QCheckBox* newCheck(QWidget* parent, const QString& name, const QString& caption) {
    auto* box = new QCheckBox(caption, parent);
    box->setObjectName(name);
    return box;
}

void addRow(QGridLayout* grid, int row, QWidget* label, QWidget* field, int column = 0) {
    grid->addWidget(label, row, column);
    grid->addWidget(field, row, column + 1);
}

bool flagSet(QStringView flag) {
    return !isBlank(flag);
}

void refuseField(QLineEdit* field) {
    RefuseField(field);
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Building the screen
// ---------------------------------------------------------------------------------------------

frmREAdjustTaxBill::frmREAdjustTaxBill(QWidget* parent)
    : AdjustTaxBillScreen(Duplicate::RealEstate, parent) {
    setObjectName(QStringLiteral("frmREAdjustTaxBill"));
    setWindowTitle(QString::fromLatin1(AdjustTitle));
    buildScreen();
    loadRates();
    clearScreen();
    session().LastScreenName = objectName();
}

std::array<QLineEdit*, 9> frmREAdjustTaxBill::faceFields() const {
    return {txtCounty,      txtLibrary,     txtC1Face, txtTwp,     txtSpecFace[0],
            txtSpecFace[1], txtSpecFace[2], txtSchool, txtSch1Face};
}

void frmREAdjustTaxBill::buildScreen() {
    cboAction = new QComboBox(this);
    cboAction->setObjectName(QStringLiteral("cboAction"));
    cboAction->addItem(QStringLiteral("Adjust An Existing Tax Bill"));
    cboAction->addItem(QStringLiteral("Add A New Tax Bill To The Duplicate"));
    txtBillNo = NamedField(this, QStringLiteral("txtBillNo"), 5);
    txtAdjNo = ShownField(this, QStringLiteral("txtAdjNo"), 2);
    txtBillNo->setMaximumWidth(80);
    txtAdjNo->setMaximumWidth(40);
    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(QStringLiteral("Action:"), this));
    top->addWidget(cboAction);
    top->addSpacing(16);
    top->addWidget(new QLabel(QStringLiteral("Bill #:"), this));
    top->addWidget(txtBillNo);
    top->addWidget(new QLabel(QStringLiteral("Adj #:"), this));
    top->addWidget(txtAdjNo);
    top->addStretch();

    // The property and its owner.
    auto* fraBill = new QGroupBox(QStringLiteral("Property Owner"), this);
    fraBill->setObjectName(QStringLiteral("fraBill"));
    txtControl = NamedField(fraBill, QStringLiteral("txtControl"), 6);
    txtName = NamedField(fraBill, QStringLiteral("txtName"), 50);
    txtCoOwner = NamedField(fraBill, QStringLiteral("txtCoOwner"), 50);
    txtAddr1 = NamedField(fraBill, QStringLiteral("txtAddr1"), 50);
    txtAddr2 = NamedField(fraBill, QStringLiteral("txtAddr2"), 50);
    cboCity = newCombo(fraBill, QStringLiteral("cboCity"), 35);
    cboState = newCombo(fraBill, QStringLiteral("cboState"), 2);
    txtZipCode = NamedField(fraBill, QStringLiteral("txtZipCode"), 5);
    txtZipCode2 = NamedField(fraBill, QStringLiteral("txtZipCode2"), 4);
    txtMap3 = NamedField(fraBill, QStringLiteral("txtMap3"), 8);
    txtMap4 = NamedField(fraBill, QStringLiteral("txtMap4"), 6);
    txtMap5 = NamedField(fraBill, QStringLiteral("txtMap5"), 9);
    txtDesc1 = NamedField(fraBill, QStringLiteral("txtDesc1"), 50);
    txtDesc2 = NamedField(fraBill, QStringLiteral("txtDesc2"), 50);
    txtDesc3 = NamedField(fraBill, QStringLiteral("txtDesc3"), 50);
    txtDeedBook = NamedField(fraBill, QStringLiteral("txtDeedBook"), 6);
    txtDeedPage = NamedField(fraBill, QStringLiteral("txtDeedPage"), 4);
    cboLandUse = newCombo(fraBill, QStringLiteral("cboLandUse"), 10);
    txtAcreage = NamedField(fraBill, QStringLiteral("txtAcreage"), 10);
    txtAssLand = NamedField(fraBill, QStringLiteral("txtAssLand"), 10);
    txtAssImpr = NamedField(fraBill, QStringLiteral("txtAssImpr"), 10);
    txtAssTotal = ShownField(fraBill, QStringLiteral("txtAssTotal"));
    chkHFFlag =
        newCheck(fraBill, QStringLiteral("chkHFFlag"), QStringLiteral("Homestead/Farmstead"));
    chkAAFlag = newCheck(fraBill, QStringLiteral("chkAAFlag"), QStringLiteral("AA"));
    fraExclusion = new QGroupBox(QStringLiteral("Exclusion"), fraBill);
    fraExclusion->setObjectName(QStringLiteral("fraExclusion"));
    txtHSExclusion = NamedField(fraExclusion, QStringLiteral("txtHSExclusion"), 10);
    txtFSExclusion = NamedField(fraExclusion, QStringLiteral("txtFSExclusion"), 10);
    txtExcFace = NamedField(fraExclusion, QStringLiteral("txtExcFace"), 20);
    {
        auto* g = new QGridLayout(fraExclusion);
        addRow(g, 0, new QLabel(QStringLiteral("Homestead:"), fraExclusion), txtHSExclusion);
        addRow(g, 1, new QLabel(QStringLiteral("Farmstead:"), fraExclusion), txtFSExclusion);
        addRow(g, 2, new QLabel(QStringLiteral("Exclusion Face:"), fraExclusion), txtExcFace);
    }
    // The bill number is upper-cased as typed (an added bill is "A" and four digits).
    UpperCaseTyping(txtBillNo);
    {
        auto* g = new QGridLayout(fraBill);
        int row = 0;
        addRow(g, row++, new QLabel(QStringLiteral("Control #:"), fraBill), txtControl);
        addRow(g, row++, new QLabel(QStringLiteral("Name:"), fraBill), txtName);
        addRow(g, row++, new QLabel(QStringLiteral("Co-Owner:"), fraBill), txtCoOwner);
        addRow(g, row++, new QLabel(QStringLiteral("Address:"), fraBill), txtAddr1);
        addRow(g, row++, new QLabel(QString(), fraBill), txtAddr2);
        auto* cityRow = new QHBoxLayout;
        cityRow->addWidget(cboCity, 3);
        cityRow->addWidget(cboState, 1);
        cityRow->addWidget(txtZipCode, 1);
        cityRow->addWidget(txtZipCode2, 1);
        g->addWidget(new QLabel(QStringLiteral("City/St/Zip:"), fraBill), row, 0);
        g->addLayout(cityRow, row++, 1);
        auto* mapRow = new QHBoxLayout;
        mapRow->addWidget(txtMap3);
        mapRow->addWidget(txtMap4);
        mapRow->addWidget(txtMap5);
        g->addWidget(new QLabel(QStringLiteral("Map #:"), fraBill), row, 0);
        g->addLayout(mapRow, row++, 1);
        addRow(g, row++, new QLabel(QStringLiteral("Description:"), fraBill), txtDesc1);
        addRow(g, row++, new QLabel(QString(), fraBill), txtDesc2);
        addRow(g, row++, new QLabel(QString(), fraBill), txtDesc3);
        auto* deedRow = new QHBoxLayout;
        deedRow->addWidget(txtDeedBook);
        deedRow->addWidget(txtDeedPage);
        deedRow->addWidget(new QLabel(QStringLiteral("Acres:"), fraBill));
        deedRow->addWidget(txtAcreage);
        g->addWidget(new QLabel(QStringLiteral("Deed Bk/Pg:"), fraBill), row, 0);
        g->addLayout(deedRow, row++, 1);
        addRow(g, row++, new QLabel(QStringLiteral("Land Use:"), fraBill), cboLandUse);
        auto* assessRow = new QHBoxLayout;
        assessRow->addWidget(txtAssLand);
        assessRow->addWidget(txtAssImpr);
        assessRow->addWidget(txtAssTotal);
        g->addWidget(new QLabel(QStringLiteral("Land/Impr/Total:"), fraBill), row, 0);
        g->addLayout(assessRow, row++, 1);
        auto* flagRow = new QHBoxLayout;
        flagRow->addWidget(chkHFFlag);
        flagRow->addWidget(chkAAFlag);
        flagRow->addStretch();
        g->addLayout(flagRow, row++, 1);
        g->addWidget(fraExclusion, row++, 0, 1, 2);
    }

    // The amounts.
    fraAdjustFor = new QGroupBox(QStringLiteral("Adjust Tax Amounts For: "), this);
    fraAdjustFor->setObjectName(QStringLiteral("fraAdjustFor"));
    chkCounty =
        newCheck(fraAdjustFor, QStringLiteral("chkCounty"), QStringLiteral("County Payment"));
    chkTwp =
        newCheck(fraAdjustFor, QStringLiteral("chkTwp"), QStringLiteral("Twp/Boro/City Payment"));
    chkSchool =
        newCheck(fraAdjustFor, QStringLiteral("chkSchool"), QStringLiteral("School Payment"));
    auto* fraAmounts = new QGroupBox(QStringLiteral("Tax Amounts"), this);
    fraAmounts->setObjectName(QStringLiteral("fraAmounts"));
    auto face = [fraAmounts](QLabel*& label, const char* labelName, const QString& caption,
                             QLineEdit*& field, const QString& fieldName) {
        label = NamedLabel(fraAmounts, QString::fromLatin1(labelName), caption);
        field = NamedField(fraAmounts, fieldName, 20);
    };
    face(lblCounty, "lblCounty", QStringLiteral("County:"), txtCounty, QStringLiteral("txtCounty"));
    face(lblLibrary, "lblLibrary", QStringLiteral("Library:"), txtLibrary,
         QStringLiteral("txtLibrary"));
    face(lblC1Face, "lblC1Face", QString(), txtC1Face, QStringLiteral("txtC1Face"));
    face(lblTwp, "lblTwp", QStringLiteral("Township:"), txtTwp, QStringLiteral("txtTwp"));
    for (int i = 0; i < 3; ++i) {
        lblSpecFace[i] = NamedLabel(fraAmounts, QStringLiteral("lblSpecFace(%1)").arg(i + 1));
        txtSpecFace[i] = NamedField(fraAmounts, QStringLiteral("txtSpecFace(%1)").arg(i + 1), 20);
    }
    face(lblSchool, "lblSchool", QStringLiteral("School:"), txtSchool, QStringLiteral("txtSchool"));
    face(lblSch1Face, "lblSch1Face", QString(), txtSch1Face, QStringLiteral("txtSch1Face"));
    txtCTotal = ShownField(fraAmounts, QStringLiteral("txtCTotal"));
    txtTTotal = ShownField(fraAmounts, QStringLiteral("txtTTotal"));
    txtSTotal = ShownField(fraAmounts, QStringLiteral("txtSTotal"));
    txtTotal = ShownField(fraAmounts, QStringLiteral("txtTotal"));
    txtPayment1 = NamedField(fraAmounts, QStringLiteral("txtPayment1"), 20);
    txtPayment2 = NamedField(fraAmounts, QStringLiteral("txtPayment2"), 20);
    txtPayment3 = NamedField(fraAmounts, QStringLiteral("txtPayment3"), 20);
    chkInstallments = newCheck(fraAmounts, QStringLiteral("chkInstallments"),
                               QStringLiteral("Installment payments not applicable"));
    cmdCalculate = NamedButton(fraAmounts, QStringLiteral("cmdCalculate"),
                               QStringLiteral("&Calculate Payment Amounts"));
    chkCalcSchoolHomestead = newCheck(
        fraAmounts, QStringLiteral("chkCalcSchoolHomestead"),
        QStringLiteral("Calculate School Discount and Penalty Amounts Based On The Following "
                       "Dollar Amount (Use when adjusting Homesteads)"));
    txtHFace = NamedField(fraAmounts, QStringLiteral("txtHFace"), 20);
    txtHDiscount = NamedField(fraAmounts, QStringLiteral("txtHDiscount"), 20);
    txtHPenalty = NamedField(fraAmounts, QStringLiteral("txtHPenalty"), 20);
    {
        auto* v = new QVBoxLayout(fraAdjustFor);
        v->addWidget(chkCounty);
        v->addWidget(chkTwp);
        v->addWidget(chkSchool);
        auto* g = new QGridLayout(fraAmounts);
        addRow(g, 0, lblCounty, txtCounty);
        addRow(g, 1, lblLibrary, txtLibrary);
        addRow(g, 2, lblC1Face, txtC1Face);
        addRow(g, 3, new QLabel(QStringLiteral("Tot County:"), fraAmounts), txtCTotal);
        addRow(g, 0, lblTwp, txtTwp, 2);
        for (int i = 0; i < 3; ++i)
            addRow(g, 1 + i, lblSpecFace[i], txtSpecFace[i], 2);
        addRow(g, 4, new QLabel(QStringLiteral("Tot Twp:"), fraAmounts), txtTTotal, 2);
        addRow(g, 0, lblSchool, txtSchool, 4);
        addRow(g, 1, lblSch1Face, txtSch1Face, 4);
        addRow(g, 2, new QLabel(QStringLiteral("Tot School:"), fraAmounts), txtSTotal, 4);
        addRow(g, 3, new QLabel(QStringLiteral("Payment #1:"), fraAmounts), txtPayment1, 4);
        addRow(g, 4, new QLabel(QStringLiteral("Payment #2:"), fraAmounts), txtPayment2, 4);
        addRow(g, 5, new QLabel(QStringLiteral("Payment #3:"), fraAmounts), txtPayment3, 4);
        g->addWidget(chkInstallments, 6, 4, 1, 2);
        g->addWidget(cmdCalculate, 7, 4, 1, 2);
        addRow(g, 6, new QLabel(QStringLiteral("Grand Total:"), fraAmounts), txtTotal);
        g->addWidget(chkCalcSchoolHomestead, 8, 0, 1, 6);
        auto* hRow = new QHBoxLayout;
        hRow->addWidget(new QLabel(QStringLiteral("Face:"), fraAmounts));
        hRow->addWidget(txtHFace);
        hRow->addWidget(new QLabel(QStringLiteral("Discount:"), fraAmounts));
        hRow->addWidget(txtHDiscount);
        hRow->addWidget(new QLabel(QStringLiteral("Penalty:"), fraAmounts));
        hRow->addWidget(txtHPenalty);
        g->addLayout(hRow, 9, 0, 1, 6);
    }

    buildFoot();
    layOutScreen(top, fraBill, fraAdjustFor, fraAmounts);

    QWidget* order[] = {cboAction,      txtBillNo,
                        txtControl,     txtName,
                        txtCoOwner,     txtAddr1,
                        txtAddr2,       txtZipCode,
                        txtZipCode2,    cboCity,
                        cboState,       txtMap3,
                        txtMap4,        txtMap5,
                        txtDesc1,       txtDesc2,
                        txtDesc3,       txtDeedBook,
                        txtDeedPage,    txtAcreage,
                        cboLandUse,     txtAssLand,
                        txtAssImpr,     chkHFFlag,
                        txtHSExclusion, txtFSExclusion,
                        txtExcFace,     chkAAFlag,
                        chkCounty,      chkTwp,
                        chkSchool,      txtCounty,
                        txtLibrary,     txtC1Face,
                        txtTwp,         txtSpecFace[0],
                        txtSpecFace[1], txtSpecFace[2],
                        txtSchool,      txtSch1Face,
                        txtPayment1,    txtPayment2,
                        txtPayment3,    chkInstallments,
                        cmdCalculate,   chkCalcSchoolHomestead,
                        txtHFace,       txtHDiscount,
                        txtHPenalty,    txtReason,
                        chkPrintBill,   cmdAccept};
    for (size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    for (QWidget* w : std::initializer_list<QWidget*>{
             txtBillNo, txtAssLand, txtAssImpr, txtHSExclusion, txtFSExclusion, txtExcFace,
             txtHFace, txtHDiscount, txtHPenalty, txtPayment1, txtPayment2, txtPayment3,
             txtZipCode})
        w->installEventFilter(this);
    for (QLineEdit* f : faceFields())
        f->installEventFilter(this);
    connect(chkHFFlag, &QCheckBox::clicked, this, [this] { hfFlagClicked(); });
    for (QCheckBox* box : bodyBoxes())
        connect(box, &QCheckBox::clicked, this, [this] { enableAmountFields(); });
    connect(chkInstallments, &QCheckBox::clicked, this, [this] { calculateInstallments(); });
    connect(cmdCalculate, &QPushButton::clicked, this, [this] { calculateInstallments(); });
    connectCommon([] {
        ShowScreenNamed(QStringLiteral("frmREQueryTC"),
                        [] { return static_cast<QWidget*>(new frmREQueryTC); });
    });
}

void frmREAdjustTaxBill::loadRates() {
    QSqlRecord countyRow;
    QSqlRecord municipalRow;
    readDistrict(&countyRow, &municipalRow);
    QSqlQuery q(session().DbConnection);

    std::array<double, 3> specialMill{};
    q.prepare(QStringLiteral(
        "SELECT Desc1, Mill FROM Spectax WHERE District = ? AND Ward = ? ORDER BY TaxKey"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    if (q.exec())
        for (int i = 0; i < 3 && q.next(); ++i) {
            m_specialName[size_t(i)] = TextField(q.value(0)).left(10).trimmed();
            specialMill[size_t(i)] = q.value(1).toDouble();
        }
    m_rates = RealEstateRatesFromMillfile(countyRow, municipalRow, specialMill);

    q.prepare(QStringLiteral("SELECT BTFlag FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    if (q.exec() && q.next())
        m_btFlag = TextField(q.value(0)).trimmed();
    lblTwp->setText(m_btFlag == QLatin1String("T")   ? QStringLiteral("Township:")
                    : m_btFlag == QLatin1String("B") ? QStringLiteral("Borough:")
                                                     : QStringLiteral("City:"));

    const QString countySpecial = TextField(countyRow.value("S1TaxName")).trimmed();
    const QString schoolSpecial = TextField(municipalRow.value("S1TaxName")).trimmed();
    lblC1Face->setText(countySpecial + QLatin1Char(':'));
    lblSch1Face->setText(schoolSpecial + QLatin1Char(':'));
    auto show = [](bool visible, QWidget* label, QWidget* field) {
        label->setVisible(visible);
        field->setVisible(visible);
    };
    const RealEstateRates& r = m_rates;
    show(r.countyMill != 0, lblCounty, txtCounty);
    show(r.libraryMill != 0, lblLibrary, txtLibrary);
    show(r.countySpecialMill != 0, lblC1Face, txtC1Face);
    show(r.twpMill != 0, lblTwp, txtTwp);
    bool specialRate = false;
    for (int i = 0; i < 3; ++i) {
        lblSpecFace[i]->setText(m_specialName[size_t(i)] + QLatin1Char(':'));
        show(!m_specialName[size_t(i)].isEmpty(), lblSpecFace[i], txtSpecFace[i]);
        specialRate = specialRate || r.specialMill[size_t(i)] != 0;
    }
    show(r.school.mill != 0, lblSchool, txtSchool);
    show(!schoolSpecial.isEmpty(), lblSch1Face, txtSch1Face);
    m_bodyVisible = {r.countyMill != 0 || r.countySpecialMill != 0 || r.libraryMill != 0,
                     r.twpMill != 0 || specialRate, r.school.mill != 0 || !schoolSpecial.isEmpty()};
    const auto boxes = bodyBoxes();
    for (int b = 0; b < 3; ++b)
        boxes[size_t(b)]->setVisible(m_bodyVisible[size_t(b)]);

    if (q.exec(QStringLiteral("SELECT State FROM tbl_States ORDER BY State")))
        while (q.next())
            cboState->addItem(TextField(q.value(0)));
    if (q.exec(QStringLiteral("SELECT LandUse FROM tbl_LandUse ORDER BY LandUse")))
        while (q.next())
            cboLandUse->addItem(TextField(q.value(0)));
}

// ---------------------------------------------------------------------------------------------
// Clear Screen and the action
// ---------------------------------------------------------------------------------------------

void frmREAdjustTaxBill::clearOwn() {
    m_image = QSqlRecord();
    m_held = RealEstateAmounts();
    clearBoxes({cboCity, cboState, cboLandUse});
    cboCity->clear();
    fraExclusion->hide();
    cmdCalculate->setEnabled(false);
}

// ---------------------------------------------------------------------------------------------
// Loading a bill
// ---------------------------------------------------------------------------------------------

QString frmREAdjustTaxBill::paymentInfoText(const QString& billNo) const {
    return RealEstatePaymentInfoText(m_flags, m_btFlag,
                                     ReadRealEstatePaidReceipts(session().DbConnection, billNo));
}

void frmREAdjustTaxBill::billLoaded() {
    chkInstallments->setChecked(!(MoneyField(m_image.value("Payment1")) > Money()));
    if (m_action == Exonerate)
        startExoneration();
    else if (m_action == Unexonerate)
        startUnexoneration();
    else
        openForAdjustment();
}

void frmREAdjustTaxBill::showImage(const QSqlRecord& image) {
    m_image = image;
    auto text = [&image](const char* column) { return TextField(image.value(column)); };
    txtAdjNo->setText(image.contains(QStringLiteral("AdjNo")) && image.value("AdjNo").toInt() > 0
                          ? QString::number(image.value("AdjNo").toInt())
                          : QString());
    txtControl->setText(text("Control"));
    txtMap3->setText(text("Map3"));
    txtMap4->setText(text("Map4"));
    txtMap5->setText(text("Map5"));
    txtDesc1->setText(text("Desc1"));
    txtDesc2->setText(text("Desc2"));
    txtDesc3->setText(text("Desc3"));
    txtDeedBook->setText(text("DeedBook"));
    txtDeedPage->setText(text("DeedPage"));
    cboLandUse->setEditText(text("LandUse"));
    txtAcreage->setText(text("Acreage"));
    showAddress(image);
    const qint64 land = image.value("AssLand").toLongLong();
    const qint64 impr = image.value("AssImpr").toLongLong();
    txtAssLand->setText(QString::number(land));
    txtAssImpr->setText(QString::number(impr));
    txtAssTotal->setText(QString::number(land + impr));
    chkHFFlag->setChecked(FlagField(image.value("HFFlag")).trimmed() == QLatin1String("A"));
    chkAAFlag->setChecked(FlagField(image.value("AAFlag")).trimmed() == QLatin1String("A"));
    fraExclusion->setVisible(chkHFFlag->isChecked());

    // The amounts with their hidden discount and penalty, the installments' penalties and the
    // exclusion's: the image's own, until a computation changes them.
    const BillLines lines = BillLinesFromRecord(image);
    for (int line = 0; line < TaxLineCount; ++line)
        LineOf(m_held, line) = lines.line[size_t(line)];
    m_held.installments = InstallmentsFromRecord(image);
    Act1Exclusion& e = m_held.exclusion;
    e.homestead = MoneyField(image.value("HSExclusion"));
    e.farmstead = MoneyField(image.value("FSExclusion"));
    e.excFace = {MoneyField(image.value("DExcFace")), MoneyField(image.value("ExcFace")),
                 MoneyField(image.value("PExcFace"))};
    txtHSExclusion->setText(exclusionText(e.homestead));
    txtFSExclusion->setText(exclusionText(e.farmstead));
    showAmounts();
}

void frmREAdjustTaxBill::showAddress(const QSqlRecord& row) {
    auto text = [&row](const char* column) { return TextField(row.value(column)); };
    txtName->setText(text("Name"));
    txtCoOwner->setText(text("CoOwner"));
    txtAddr1->setText(text("Addr1"));
    txtAddr2->setText(text("Addr2"));
    cboCity->setEditText(text("City"));
    cboState->setEditText(text("State"));
    txtZipCode->setText(text("ZipCode"));
    txtZipCode2->setText(text("ZipCode2"));
}

// A body is settled when it is not on the screen or its pay flag is set; the school paying in
// installments only when all three are paid.
bool frmREAdjustTaxBill::bodySettled(int body) const {
    if (!bodyVisible(body))
        return true;
    if (body == 0)
        return flagSet(m_flags.cPayFlag);
    if (body == 1)
        return flagSet(m_flags.tPayFlag);
    const QString s = m_flags.sPayFlag.trimmed();
    if (s == QLatin1String("I"))
        return flagSet(m_flags.payFlag[0]) && flagSet(m_flags.payFlag[1]) &&
               flagSet(m_flags.payFlag[2]);
    return !s.isEmpty();
}

void frmREAdjustTaxBill::openForAdjustment() {
    for (QWidget* w : std::initializer_list<QWidget*>{txtAssLand, txtAssImpr, txtReason, chkHFFlag,
                                                      chkInstallments, cmdCalculate, chkPrintBill})
        w->setEnabled(true);
    const auto boxes = bodyBoxes();
    for (int b = 0; b < 3; ++b) {
        if (!bodyVisible(b))
            continue;
        const bool paid = bodySettled(b);
        boxes[size_t(b)]->setEnabled(!paid);
        if (paid)
            boxes[size_t(b)]->setChecked(false);
    }
    enableAmountFields();
    txtAssLand->setFocus(Qt::OtherFocusReason);
    txtAssLand->selectAll();
}

void frmREAdjustTaxBill::startExoneration() {
    if (!AskExonerate()) {
        clearScreen();
        return;
    }
    const auto boxes = bodyBoxes();
    m_beforeExoneration = m_held;
    exonerationTicked();
    txtReason->setText(QStringLiteral("EXONERATION"));
    for (int b = 0; b < 3; ++b)
        boxes[size_t(b)]->setEnabled(bodyVisible(b));
    txtReason->setEnabled(true);
    txtReason->setFocus(Qt::OtherFocusReason);
}

// The ticked bodies' amounts are zero, the others' as the image has them.
void frmREAdjustTaxBill::exonerationTicked() {
    m_held = ExoneratedAmounts(
        m_beforeExoneration, {chkCounty->isChecked(), chkTwp->isChecked(), chkSchool->isChecked()});
    showAmounts();
}

void frmREAdjustTaxBill::startUnexoneration() {
    if (!AskUnexonerate()) {
        clearScreen();
        return;
    }
    showAmounts();
    txtReason->setText(QStringLiteral("UNEXONERATION"));
    const auto boxes = bodyBoxes();
    for (int b = 0; b < 3; ++b)
        boxes[size_t(b)]->setEnabled(bodyVisible(b));
    txtReason->setEnabled(true);
    txtReason->setFocus(Qt::OtherFocusReason);
}

void frmREAdjustTaxBill::startAddition() {
    QSqlQuery q(session().DbConnection);
    int number = 1;
    if (q.exec(QStringLiteral("SELECT BillNum FROM TCBillNum")) && q.next())
        number = q.value(0).toInt();
    m_billNo = QStringLiteral("A") + QStringLiteral("%1").arg(number, 4, 10, QLatin1Char('0'));
    {
        const QSignalBlocker block(txtBillNo);
        txtBillNo->setText(m_billNo);
    }
    m_held = RealEstateAmounts();
    m_image = QSqlRecord();
    m_flags = BillPayFlags();
    for (QLineEdit* f : {txtAssLand, txtAssImpr, txtHSExclusion, txtFSExclusion})
        f->setText(QStringLiteral("0"));
    txtAssTotal->setText(QStringLiteral("0"));
    showAmounts();
    cboAction->setEnabled(false);
    txtBillNo->setEnabled(false);
    for (QWidget* w : std::initializer_list<QWidget*>{
             txtControl, txtName,      txtCoOwner,  txtAddr1,       txtAddr2,    cboCity,
             cboState,   txtZipCode,   txtZipCode2, txtMap3,        txtMap4,     txtMap5,
             txtDesc1,   txtDesc2,     txtDesc3,    txtDeedBook,    txtDeedPage, cboLandUse,
             txtAcreage, txtAssLand,   txtAssImpr,  chkHFFlag,      chkAAFlag,   chkInstallments,
             txtReason,  cmdCalculate, cmdAccept,   cmdPaymentInfo, chkPrintBill})
        w->setEnabled(true);
    const auto boxes = bodyBoxes();
    for (int b = 0; b < 3; ++b)
        boxes[size_t(b)]->setEnabled(bodyVisible(b));
    chkInstallments->setChecked(false);
    enableAmountFields();
    txtControl->setFocus(Qt::OtherFocusReason);
}

// Ticked bodies have their amounts open; for the school also the exclusion and each unpaid
// installment.
void frmREAdjustTaxBill::enableAmountFields() {
    // An exoneration's ticks choose the bodies that go to zero; nothing is typed.
    if (m_action == Exonerate) {
        exonerationTicked();
        return;
    }
    if (m_action == Unexonerate)
        return;
    const bool county = chkCounty->isChecked() && m_bodyVisible[0];
    const bool twp = chkTwp->isChecked() && m_bodyVisible[1];
    const bool school = chkSchool->isChecked() && m_bodyVisible[2];
    for (QLineEdit* f : {txtCounty, txtLibrary, txtC1Face})
        f->setEnabled(county);
    txtTwp->setEnabled(twp);
    for (QLineEdit* f : txtSpecFace)
        f->setEnabled(twp);
    for (QWidget* w : std::initializer_list<QWidget*>{
             txtSchool, txtSch1Face, txtHFace, txtHDiscount, txtHPenalty, txtHSExclusion,
             txtFSExclusion, txtExcFace, chkCalcSchoolHomestead})
        w->setEnabled(school);
    const auto fields = paymentFields();
    for (int n = 0; n < 3; ++n)
        fields[size_t(n)]->setEnabled(school && !flagSet(m_flags.payFlag[size_t(n)]));
}

// ---------------------------------------------------------------------------------------------
// Field leave
// ---------------------------------------------------------------------------------------------

bool frmREAdjustTaxBill::fieldLeft(QLineEdit* field, QWidget* target) {
    // Accept checks the faces itself; a value typed last into an assessment still counts.
    const bool toAccept = target == cmdAccept;
    bool refused = false;
    const auto faces = faceFields();
    const auto payments = paymentFields();
    if (field == txtAssLand) {
        refused = !assessmentLeft(field, "Assessed land must be numeric");
    } else if (field == txtAssImpr) {
        refused = !assessmentLeft(field, "Assessed improvements must be numeric");
    } else if (field == txtHSExclusion) {
        refused = !exclusionLeft(field, "Homestead Exclusion must be numeric");
    } else if (field == txtFSExclusion) {
        refused = !exclusionLeft(field, "Farmstead Exclusion must be numeric");
    } else if (std::find(faces.begin(), faces.end(), field) != faces.end() || field == txtExcFace) {
        if (!toAccept)
            refused = !faceLeft(field);
    } else if (field == txtHFace || field == txtHDiscount || field == txtHPenalty) {
        refused = !faceLeft(field);
    } else if (field == payments[0] || field == payments[1] || field == payments[2]) {
        refused = !paymentLeft(
            int(std::find(payments.begin(), payments.end(), field) - payments.begin()));
    } else if (field == txtZipCode) {
        zipCodeLeft();
    }
    return refused;
}

bool frmREAdjustTaxBill::assessmentLeft(QLineEdit* field, const char* message) {
    if (isBlank(field->text()))
        field->setText(QStringLiteral("0"));
    if (!wholeNumber(field->text())) {
        MsgBox(QString::fromLatin1(message), QString::fromLatin1(AdjustTitle));
        refuseField(field);
        return false;
    }
    computeFromAssessment();
    return true;
}

bool frmREAdjustTaxBill::exclusionLeft(QLineEdit* field, const char* message) {
    if (isBlank(field->text()))
        field->setText(QStringLiteral("0"));
    const bool numeric = wholeNumber(field->text()).has_value();
    if (!numeric)
        MsgBox(QString::fromLatin1(message), QString::fromLatin1(AdjustTitle));
    // A farmstead in error still leaves the bill computed on what else stands.
    if (numeric || field == txtFSExclusion)
        computeFromAssessment();
    if (!numeric)
        refuseField(field);
    return numeric;
}

bool frmREAdjustTaxBill::faceLeft(QLineEdit* field) {
    if (isBlank(field->text()))
        field->setText(moneyText(Money()));
    const std::optional<Money> amount = amountOf(field);
    if (!amount) {
        MsgBox(QStringLiteral("Amounts must be numeric"), QString::fromLatin1(AdjustTitle));
        refuseField(field);
        return false;
    }
    field->setText(moneyText(*amount));
    const auto faces = faceFields();
    if (std::find(faces.begin(), faces.end(), field) != faces.end()) {
        recomputeFromFaces();
        showTotals();
        if (field == txtSchool)
            calculateInstallments();
    }
    return true;
}

bool frmREAdjustTaxBill::paymentLeft(int n) {
    QLineEdit* field = paymentFields()[size_t(n)];
    if (isBlank(field->text()))
        field->setText(moneyText(Money()));
    const std::optional<Money> amount = amountOf(field);
    if (!amount) {
        MsgBox(QStringLiteral("Payment #%1 Amount must be numeric").arg(n + 1),
               QString::fromLatin1(AdjustTitle));
        refuseField(field);
        return false;
    }
    field->setText(moneyText(*amount));
    return true;
}

void frmREAdjustTaxBill::hfFlagClicked() {
    fraExclusion->setVisible(chkHFFlag->isChecked());
    computeFromAssessment();
}

// ---------------------------------------------------------------------------------------------
// Computing
// ---------------------------------------------------------------------------------------------

// The amounts as the fields show them, with the held discount and penalty columns. A field
// that does not read as an amount keeps the held value.
RealEstateAmounts frmREAdjustTaxBill::amountsOnScreen() const {
    RealEstateAmounts a = m_held;
    const auto faces = faceFields();
    for (int line = 0; line < TaxLineCount; ++line)
        if (const std::optional<Money> face = amountOf(faces[size_t(line)]))
            LineOf(a, line).face = *face;
    if (const std::optional<Money> exc = amountOf(txtExcFace))
        a.exclusion.excFace.face = *exc;
    if (const std::optional<qint64> h = wholeNumber(txtHSExclusion->text()))
        a.exclusion.homestead = Money::fromDollars(*h);
    if (const std::optional<qint64> f = wholeNumber(txtFSExclusion->text()))
        a.exclusion.farmstead = Money::fromDollars(*f);
    const auto payments = paymentFields();
    for (int n = 0; n < 3; ++n)
        if (const std::optional<Money> p = amountOf(payments[size_t(n)]))
            a.installments.payment[size_t(n)] = *p;
    return a;
}

void frmREAdjustTaxBill::computeFromAssessment() {
    if (!m_loaded && m_action != AddBill)
        return;
    for (QLineEdit* f : {txtAssLand, txtAssImpr})
        if (isBlank(f->text()))
            f->setText(QStringLiteral("0"));
    const std::optional<qint64> land = wholeNumber(txtAssLand->text());
    const std::optional<qint64> impr = wholeNumber(txtAssImpr->text());
    // A non-numeric assessment never computes.
    if (!land || !impr)
        return;
    txtAssTotal->setText(QString::number(*land + *impr));

    RealEstateAmounts before = amountsOnScreen();
    if (!wholeNumber(txtFSExclusion->text()))
        before.exclusion.farmstead = Money();
    // The paid installments keep the amounts of the image shown.
    before.installments = m_action == AddBill ? Installments{} : InstallmentsFromRecord(m_image);

    AssessmentComputation c;
    c.land = *land;
    c.impr = *impr;
    c.county = chkCounty->isChecked() && m_bodyVisible[0];
    c.twp = chkTwp->isChecked() && m_bodyVisible[1];
    c.school = chkSchool->isChecked() && m_bodyVisible[2];
    for (int i = 0; i < 3; ++i)
        c.specialNamed[size_t(i)] = !m_specialName[size_t(i)].isEmpty();
    c.act1 = chkHFFlag->isChecked();
    if (chkCalcSchoolHomestead->isChecked())
        c.schoolShareFace = amountOf(txtHFace).value_or(Money());
    c.installments = !chkInstallments->isChecked();
    if (m_action != AddBill)
        for (int n = 0; n < 3; ++n)
            c.paid[size_t(n)] = flagSet(m_flags.payFlag[size_t(n)]);

    const ComputedBill computed = ComputeFromAssessment(before, c, m_rates);
    m_held = computed.amounts;
    if (c.school) {
        txtHDiscount->setText(moneyText(computed.schoolGross.discount));
        txtHPenalty->setText(moneyText(computed.schoolGross.penalty));
        if (c.act1) {
            txtHSExclusion->setText(exclusionText(m_held.exclusion.homestead));
            if (wholeNumber(txtFSExclusion->text()))
                txtFSExclusion->setText(exclusionText(m_held.exclusion.farmstead));
        }
    }
    showAmounts();
}

void frmREAdjustTaxBill::calculateInstallments() {
    if (chkSchool->isChecked() && !chkInstallments->isChecked()) {
        const Money total =
            amountOf(txtSchool).value_or(Money()) + amountOf(txtSch1Face).value_or(Money());
        m_held.installments = SplitSchoolInstallments(total, m_rates.schoolPenaltyPct);
    } else {
        m_held.installments = Installments{};
    }
    const auto payments = paymentFields();
    for (int n = 0; n < 3; ++n)
        payments[size_t(n)]->setText(moneyText(m_held.installments.payment[size_t(n)]));
}

void frmREAdjustTaxBill::recomputeFromFaces() {
    RealEstateAmounts a = amountsOnScreen();
    std::array<bool, 3> named{};
    for (int i = 0; i < 3; ++i)
        named[size_t(i)] = !m_specialName[size_t(i)].isEmpty();
    std::optional<Money> share;
    if (chkCalcSchoolHomestead->isChecked())
        share = amountOf(txtHFace).value_or(Money());
    RecomputeDiscountPenalty(a, m_rates, named, share);
    m_held = a;
}

void frmREAdjustTaxBill::showAmounts() {
    const auto faces = faceFields();
    for (int line = 0; line < TaxLineCount; ++line)
        faces[size_t(line)]->setText(moneyText(LineOf(m_held, line).face));
    txtExcFace->setText(moneyText(m_held.exclusion.excFace.face));
    const auto payments = paymentFields();
    for (int n = 0; n < 3; ++n)
        payments[size_t(n)]->setText(moneyText(m_held.installments.payment[size_t(n)]));
    for (QLineEdit* f : {txtHFace, txtHDiscount, txtHPenalty})
        if (isBlank(f->text()))
            f->setText(moneyText(Money()));
    showTotals();
}

void frmREAdjustTaxBill::showTotals() {
    auto v = [](const QLineEdit* f) { return amountOf(f).value_or(Money()); };
    const Money county = v(txtCounty) + v(txtLibrary) + v(txtC1Face);
    const Money twp = v(txtTwp) + v(txtSpecFace[0]) + v(txtSpecFace[1]) + v(txtSpecFace[2]);
    const Money school = v(txtSchool) + v(txtSch1Face);
    txtCTotal->setText(moneyText(county));
    txtTTotal->setText(moneyText(twp));
    txtSTotal->setText(moneyText(school));
    txtTotal->setText(moneyText(county + twp + school));
}

// ---------------------------------------------------------------------------------------------
// Zip code
// ---------------------------------------------------------------------------------------------

void frmREAdjustTaxBill::zipCodeLeft() {
    if (ZipCodeLookup(txtZipCode, cboCity, cboState))
        txtMap3->setFocus(Qt::OtherFocusReason);
}

// ---------------------------------------------------------------------------------------------
// Accept
// ---------------------------------------------------------------------------------------------

RealEstateBillImage frmREAdjustTaxBill::imageOnScreen() const {
    RealEstateBillImage b;
    b.control = txtControl->text().trimmed();
    b.billNo = m_billNo;
    b.name = txtName->text();
    b.coOwner = txtCoOwner->text();
    b.addr1 = txtAddr1->text();
    b.addr2 = txtAddr2->text();
    b.city = cboCity->currentText();
    b.state = cboState->currentText();
    b.zipCode = txtZipCode->text();
    b.zipCode2 = txtZipCode2->text();
    b.map3 = txtMap3->text();
    b.map4 = txtMap4->text();
    b.map5 = txtMap5->text();
    b.desc1 = txtDesc1->text();
    b.desc2 = txtDesc2->text();
    b.desc3 = txtDesc3->text();
    b.deedBook = txtDeedBook->text();
    b.deedPage = txtDeedPage->text();
    b.landUse = cboLandUse->currentText();
    b.acreage = txtAcreage->text();
    b.land = wholeNumber(txtAssLand->text()).value_or(0);
    b.impr = wholeNumber(txtAssImpr->text()).value_or(0);
    b.amounts = amountsOnScreen();
    if (m_action == AddBill) {
        // An added bill's empty text fields hold one blank.
        for (QString* text : {&b.map3, &b.map4, &b.map5, &b.name, &b.coOwner, &b.addr1, &b.addr2,
                              &b.city, &b.state, &b.zipCode, &b.zipCode2, &b.desc1, &b.desc2,
                              &b.desc3, &b.deedBook, &b.deedPage, &b.landUse})
            if (isBlank(*text))
                *text = QStringLiteral(" ");
        if (isBlank(b.acreage))
            b.acreage = QStringLiteral("0");
    }
    return b;
}

bool frmREAdjustTaxBill::acceptChecks() {
    const QString title = QString::fromLatin1(AdjustTitle);
    for (QLineEdit* f :
         {txtAssLand, txtAssImpr, txtHFace, txtHSExclusion, txtFSExclusion, txtExcFace})
        if (isBlank(f->text()))
            f->setText(QStringLiteral("0"));
    // The assessment and the exclusions are checked on leaving; a shortcut press does not leave.
    const std::pair<QLineEdit*, const char*> whole[] = {
        {txtAssLand, "Assessed land must be numeric"},
        {txtAssImpr, "Assessed improvements must be numeric"},
        {txtHSExclusion, "Homestead Exclusion must be numeric"},
        {txtFSExclusion, "Farmstead Exclusion must be numeric"}};
    for (const auto& [field, message] : whole)
        if (!wholeNumber(field->text())) {
            MsgBox(QString::fromLatin1(message), title);
            refuseField(field);
            return false;
        }
    for (QLineEdit* f : faceFields())
        if (!amountOf(f)) {
            MsgBox(QStringLiteral("Amounts must be numeric"), title);
            refuseField(f);
            return false;
        }
    for (QLineEdit* f : {txtExcFace, txtHFace})
        if (!amountOf(f)) {
            MsgBox(QStringLiteral("Amounts must be numeric"), title);
            refuseField(f);
            return false;
        }
    for (QLineEdit* f : paymentFields())
        if (!amountOf(f)) {
            MsgBox(QStringLiteral("Installment Amounts must be numeric"), title);
            refuseField(f);
            return false;
        }
    for (QLineEdit* f : paymentFields())
        if (*amountOf(f) < Money()) {
            MsgBox(QStringLiteral("Installment Amounts cannot be less than zero. If an installment "
                                  "payment has already been received, you may have to void that "
                                  "receipt first before adjusting this tax bill."),
                   title);
            return false;
        }
    recomputeFromFaces();
    showTotals();

    const Installments& inst = m_held.installments;
    const Money schoolTotal =
        amountOf(txtSchool).value_or(Money()) + amountOf(txtSch1Face).value_or(Money());
    if (!chkInstallments->isChecked() && inst.total() != schoolTotal) {
        MsgBox(QStringLiteral("Payment Amounts must equal Total School Amount."),
               QStringLiteral("Enter Amounts"));
        refuseField(txtSchool);
        return false;
    }
    if (chkInstallments->isChecked() &&
        (!inst.payment[0].isZero() || !inst.payment[1].isZero() || !inst.payment[2].isZero())) {
        MsgBox(QStringLiteral("Payment Amounts must be Zero."), QStringLiteral("Enter Amounts"));
        refuseField(txtSchool);
        return false;
    }
    return true;
}

bool frmREAdjustTaxBill::accept() {
    if (!m_loaded && m_action != AddBill)
        return false;
    if (!acceptChecks())
        return false;

    RealEstateBillImage image = imageOnScreen();
    {
        QSqlQuery q(session().DbConnection);
        q.prepare(QStringLiteral("SELECT Desc1 FROM tbl_LandUse WHERE LandUse = ?"));
        q.addBindValue(cboLandUse->currentText());
        image.lDesc = q.exec() && q.next() ? TextField(q.value(0)).left(50) : QString();
    }
    if (isBlank(txtReason->text())) {
        MsgBox(QStringLiteral("Reason must be specified"), QStringLiteral("Enter Reason"));
        refuseField(txtReason);
        return false;
    }
    const QString reason = txtReason->text().trimmed();
    if (chkHFFlag->isChecked()) {
        image.hfFlag = QStringLiteral("A");
        image.homesteadFlag = HomesteadFlag(true, image.amounts.exclusion.homestead);
        image.farmsteadFlag = FarmsteadFlag(true, image.amounts.exclusion.farmstead);
    }
    if (chkAAFlag->isChecked())
        image.aaFlag = QStringLiteral("A");

    QString error;
    bool written = false;
    if (m_action == AddBill) {
        const QString control = txtControl->text().trimmed();
        bool digits = control.size() == 6;
        for (QChar c : control)
            digits = digits && c.isDigit();
        if (!digits) {
            MsgBox(QStringLiteral("Invalid control number"),
                   QStringLiteral("Enter Control Number"));
            refuseField(txtControl);
            return false;
        }
        if (isBlank(txtName->text())) {
            MsgBox(QStringLiteral("Name must be specified"), QStringLiteral("Enter Name"));
            refuseField(txtName);
            return false;
        }
        if (RefuseExistingControl(session().DbConnection, RealEstateChain.master, control)) {
            refuseField(txtControl);
            return false;
        }
        if (!ConfirmZeroTotal(amountOf(txtTotal).value_or(Money()),
                              QStringLiteral("Adding tax bill has been aborted."))) {
            refuseField(txtReason);
            return false;
        }
        BillAddition a;
        a.image = image;
        a.district = m_district;
        a.ward = m_ward;
        a.taxYear = m_taxYear;
        a.addDate = Clock::today();
        a.reason = reason;
        written = AddRealEstateBill(session().DbConnection, a, &error);
    } else if (m_action == Unexonerate) {
        written = RecordBillUnexoneration(
            session().DbConnection,
            {m_billNo,
             m_nextAdjNo - 1,
             {chkCounty->isChecked(), chkTwp->isChecked(), chkSchool->isChecked()}},
            &error);
    } else {
        BillAdjustment a;
        a.kind =
            m_action == Exonerate ? BillAdjustment::Kind::Exonerate : BillAdjustment::Kind::Adjust;
        a.image = image;
        a.adjNo = m_nextAdjNo;
        a.adjDate = Clock::today();
        a.reason = reason;
        a.bodies = {chkCounty->isChecked(), chkTwp->isChecked(), chkSchool->isChecked()};
        if (a.kind == BillAdjustment::Kind::Exonerate)
            a.image.amounts = ExoneratedAmounts(a.image.amounts, a.bodies);
        written = RecordBillAdjustment(session().DbConnection, a, &error);
    }
    if (!written) {
        MsgBox(QStringLiteral("The bill was not saved: ") + error, QString::fromLatin1(AdjustTitle),
               MsgButtons::Ok, MsgIcon::Critical);
        return false;
    }

    const QString billNo = m_billNo;
    const bool printBill = chkPrintBill->isChecked();
    Q_EMIT billSaved(billNo);
    MsgBox(QStringLiteral("Adjustment Recorded"), QString::fromLatin1(AdjustTitle));
    m_fromQuery = false;
    clearScreen();
    // The new bill goes to the bill form with its coupons box ticked.
    if (printBill)
        OpenREPrintTaxBillsFor(billNo, true);
    return true;
}
