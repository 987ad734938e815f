#include "desk/percapita/adjust_tax_bill.h"

#include "bills/pc_print_tax_bills.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/percapita/pc_handover.h"
#include "desk/percapita/person_name.h"
#include "desk/realestate/adjust_common.h"
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
#include <optional>

namespace {

const char16_t* const MoneyPattern = u"$###,###,###.00";

QString title() {
    return QString::fromLatin1(AdjustTaxBillTitle);
}

QString moneyText(Money amount) {
    return amount.format(MoneyPattern);
}

bool isBlank(QStringView text) {
    return text.trimmed().isEmpty();
}

std::optional<Money> amountOf(const QLineEdit* field) {
    return Money::parse(field->text());
}

// The occupation value as a whole number of dollars: "12345", "12,345"; halves of a typed
// fraction go to the even dollar.
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

// The message of a face that is not an amount, by line.
const char* const FaceMessages[PerCapitaLineCount] = {
    "County Per Capita Amounts must be numeric",
    "County Occupation Amounts must be numeric",
    "Township/Borough/City Per Capita Amounts must be numeric",
    "Township/Borough/City Occupation Amounts must be numeric",
    "School Per Capita Amounts must be numeric",
    "School Occupation Amounts must be numeric"};

QComboBox* newCombo(QWidget* parent, const char* name, int maxLength) {
    auto* combo = new QComboBox(parent);
    combo->setObjectName(QString::fromLatin1(name));
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->lineEdit()->setMaxLength(maxLength);
    return combo;
}

QCheckBox* newCheck(QWidget* parent, const char* name, const char* caption) {
    auto* box = new QCheckBox(QString::fromLatin1(caption), parent);
    box->setObjectName(QString::fromLatin1(name));
    return box;
}

} // namespace

frmPCAdjustTaxBill::frmPCAdjustTaxBill(QWidget* parent)
    : AdjustTaxBillScreen(Duplicate::PerCapita, parent) {
    setObjectName(QStringLiteral("frmPCAdjustTaxBill"));
    setWindowTitle(title());
    buildScreen();
    loadRates();
    clearScreen();
    session().LastScreenName = objectName();
}

void frmPCAdjustTaxBill::buildScreen() {
    cboAction = new QComboBox(this);
    cboAction->setObjectName(QStringLiteral("cboAction"));
    cboAction->addItem(QStringLiteral("Adjust An Existing Tax Bill"));
    cboAction->addItem(QStringLiteral("Add A New Tax Bill To The Duplicate"));
    txtBillNo = NamedField(this, QStringLiteral("txtBillNo"), 5);
    txtAdjNo = ShownField(this, QStringLiteral("txtAdjNo"), 2);
    lblTaxKind = NamedLabel(this, QStringLiteral("lblTaxKind"));
    UpperCaseTyping(txtBillNo);
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
    top->addWidget(lblTaxKind);

    auto* fraPerson = new QGroupBox(QStringLiteral("Taxpayer"), this);
    fraPerson->setObjectName(QStringLiteral("fraPerson"));
    auto field = [fraPerson](const char* name, int length) {
        return NamedField(fraPerson, QString::fromLatin1(name), length);
    };
    txtControl = field("txtControl", 6);
    txtPrefix = field("txtPrefix", 30);
    txtFName = field("txtFName", 50);
    txtMName = field("txtMName", 50);
    txtLName = field("txtLName", 50);
    txtSuffix = field("txtSuffix", 30);
    txtRelationship = field("txtRelationship", 50);
    txtName = ShownField(fraPerson, QStringLiteral("txtName"), 50);
    txtPrintName = ShownField(fraPerson, QStringLiteral("txtPrintName"), 50);
    txtAddr1 = field("txtAddr1", 50);
    txtStreetNumber = field("txtStreetNumber", 10);
    txtStreetName = field("txtStreetName", 50);
    txtAddr2 = ShownField(fraPerson, QStringLiteral("txtAddr2"), 50);
    cboCity = newCombo(fraPerson, "cboCity", 35);
    cboState = newCombo(fraPerson, "cboState", 2);
    txtZipCode = field("txtZipCode", 5);
    txtZipCode2 = field("txtZipCode2", 4);
    cboOccuCode = newCombo(fraPerson, "cboOccuCode", 3);
    cboOccuCode->setEditable(false);
    cboOccuCode->addItems({QStringLiteral("TAX"), QStringLiteral("NON")});
    txtOccuDesc = field("txtOccuDesc", 50);
    txtOccuValue = field("txtOccuValue", 10);
    txtBirthdate = field("txtBirthdate", 10);
    {
        auto* g = new QGridLayout(fraPerson);
        int row = 0;
        auto add = [&](const char* caption, QWidget* w) {
            g->addWidget(new QLabel(QString::fromLatin1(caption), fraPerson), row, 0);
            g->addWidget(w, row++, 1);
        };
        add("Control #:", txtControl);
        add("Prefix:", txtPrefix);
        add("First Name:", txtFName);
        add("Middle Name:", txtMName);
        add("Last Name:", txtLName);
        add("Suffix:", txtSuffix);
        add("Relationship:", txtRelationship);
        add("Name:", txtName);
        add("Print Name:", txtPrintName);
        add("Care Of:", txtAddr1);
        add("Street #:", txtStreetNumber);
        add("Street Name:", txtStreetName);
        add("Print Addr:", txtAddr2);
        auto* cityRow = new QHBoxLayout;
        cityRow->addWidget(cboCity, 3);
        cityRow->addWidget(cboState, 1);
        cityRow->addWidget(txtZipCode, 1);
        cityRow->addWidget(txtZipCode2, 1);
        g->addWidget(new QLabel(QStringLiteral("City/St/Zip:"), fraPerson), row, 0);
        g->addLayout(cityRow, row++, 1);
        add("Status Code:", cboOccuCode);
        add("Occupation:", txtOccuDesc);
        add("Occupation Value:", txtOccuValue);
        add("Birthdate:", txtBirthdate);
    }

    fraAdjustFor = new QGroupBox(QStringLiteral("Adjust Tax Amounts For: "), this);
    fraAdjustFor->setObjectName(QStringLiteral("fraAdjustFor"));
    chkCounty = newCheck(fraAdjustFor, "chkCounty", "County Payment");
    chkTwp = newCheck(fraAdjustFor, "chkTwp", "Twp/Boro/City Payment");
    chkSchool = newCheck(fraAdjustFor, "chkSchool", "School Payment");
    auto* fraAmounts = new QGroupBox(QStringLiteral("Tax Amounts"), this);
    fraAmounts->setObjectName(QStringLiteral("fraAmounts"));
    auto amount = [fraAmounts](const char* name) {
        return NamedField(fraAmounts, QString::fromLatin1(name), 20);
    };
    txtCPerCapita = amount("txtCPerCapita");
    txtCOccupation = amount("txtCOccupation");
    txtTPerCapita = amount("txtTPerCapita");
    txtTOccupation = amount("txtTOccupation");
    txtSPerCapita = amount("txtSPerCapita");
    txtSOccupation = amount("txtSOccupation");
    txtCTotal = ShownField(fraAmounts, QStringLiteral("txtCTotal"));
    txtTTotal = ShownField(fraAmounts, QStringLiteral("txtTTotal"));
    txtSTotal = ShownField(fraAmounts, QStringLiteral("txtSTotal"));
    txtTotal = ShownField(fraAmounts, QStringLiteral("txtTotal"));
    {
        auto* v = new QVBoxLayout(fraAdjustFor);
        v->addWidget(chkCounty);
        v->addWidget(chkTwp);
        v->addWidget(chkSchool);
        auto* g = new QGridLayout(fraAmounts);
        const char* captions[3][3] = {{"County Per Capita:", "County Occupation:", "Tot County:"},
                                      {"T/B/C Per Capita:", "T/B/C Occupation:", "Tot T/B/C:"},
                                      {"School Per Capita:", "School Occupation:", "Tot School:"}};
        QLineEdit* fields[3][3] = {{txtCPerCapita, txtCOccupation, txtCTotal},
                                   {txtTPerCapita, txtTOccupation, txtTTotal},
                                   {txtSPerCapita, txtSOccupation, txtSTotal}};
        for (int b = 0; b < 3; ++b)
            for (int i = 0; i < 3; ++i) {
                auto* label = NamedLabel(fraAmounts,
                                         QStringLiteral("lbl") + fields[b][i]->objectName().mid(3),
                                         QString::fromLatin1(captions[b][i]));
                g->addWidget(label, i, b * 2);
                g->addWidget(fields[b][i], i, b * 2 + 1);
            }
        g->addWidget(new QLabel(QStringLiteral("Grand Total:"), fraAmounts), 3, 4);
        g->addWidget(txtTotal, 3, 5);
    }

    buildFoot();
    layOutScreen(top, fraPerson, fraAdjustFor, fraAmounts);

    QWidget* order[] = {cboAction,       txtBillNo,     txtControl,      txtPrefix,
                        txtFName,        txtMName,      txtLName,        txtSuffix,
                        txtRelationship, txtAddr1,      txtStreetNumber, txtStreetName,
                        txtZipCode,      txtZipCode2,   cboCity,         cboState,
                        cboOccuCode,     txtOccuDesc,   txtOccuValue,    txtBirthdate,
                        chkCounty,       chkTwp,        chkSchool,       txtCPerCapita,
                        txtCOccupation,  txtTPerCapita, txtTOccupation,  txtSPerCapita,
                        txtSOccupation,  txtReason,     chkPrintBill,    cmdAccept};
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    for (QWidget* w : std::initializer_list<QWidget*>{txtBillNo, txtOccuValue, txtZipCode})
        w->installEventFilter(this);
    for (QLineEdit* f : faceFields())
        f->installEventFilter(this);
    for (QLineEdit* part :
         {txtPrefix, txtFName, txtMName, txtLName, txtSuffix, txtStreetNumber, txtStreetName})
        connect(part, &QLineEdit::textChanged, this, [this] { buildNames(); });
    for (QCheckBox* box : bodyBoxes())
        connect(box, &QCheckBox::clicked, this, [this] {
            enableAmountFields();
            if (m_action == Exonerate) {
                PerCapitaBillAmounts zeroed = m_beforeExoneration;
                const BodyTicks t = ticked();
                for (int line = 0; line < PerCapitaLineCount; ++line)
                    if (t[std::size_t(BodyOfPerCapitaLine(line))])
                        zeroed.line[std::size_t(line)] = AmountTriple{};
                m_held = zeroed;
                showAmounts();
            } else if (m_action != Unexonerate) {
                computeFromRates();
            }
        });
    connectCommon([] { ShowPerCapitaQueryList(); });
}

void frmPCAdjustTaxBill::loadRates() {
    QSqlRecord countyRow;
    QSqlRecord municipalRow;
    readDistrict(&countyRow, &municipalRow);
    QSqlQuery q(session().DbConnection);
    QString schoolName;
    q.prepare(QStringLiteral(
        "SELECT BTFlag, SchoolName FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    if (q.exec() && q.next()) {
        m_btFlag = TextField(q.value(0)).trimmed();
        schoolName = TextField(q.value(1));
    }
    lblTaxKind->setText(m_btFlag == QLatin1String("T")   ? QStringLiteral("TWP P/C")
                        : m_btFlag == QLatin1String("B") ? QStringLiteral("BORO P/C")
                                                         : QStringLiteral("CITY P/C"));
    m_rates = PerCapitaRatesFromMillfile(countyRow, municipalRow, m_district, schoolName);

    const auto faces = faceFields();
    const std::array<QLineEdit*, 3> totals{txtCTotal, txtTTotal, txtSTotal};
    const auto boxes = bodyBoxes();
    for (int b = 0; b < 3; ++b) {
        const bool visible = m_rates.body[std::size_t(b)].levies();
        m_bodyVisible[std::size_t(b)] = visible;
        boxes[std::size_t(b)]->setVisible(visible);
        for (QLineEdit* f :
             {faces[std::size_t(b * 2)], faces[std::size_t(b * 2 + 1)], totals[std::size_t(b)]}) {
            f->setVisible(visible);
            if (auto* label = findChild<QLabel*>(QStringLiteral("lbl") + f->objectName().mid(3)))
                label->setVisible(visible);
        }
    }
    if (q.exec(QStringLiteral("SELECT State FROM tbl_States ORDER BY State")))
        while (q.next())
            cboState->addItem(TextField(q.value(0)));
}

// ---------------------------------------------------------------------------------------------
// Clear Screen, the action and loading
// ---------------------------------------------------------------------------------------------

void frmPCAdjustTaxBill::clearOwn() {
    m_held = PerCapitaBillAmounts();
    clearBoxes({cboCity, cboState, cboOccuCode});
    cboCity->clear();
}

QString frmPCAdjustTaxBill::paymentInfoText(const QString& billNo) const {
    return PerCapitaPaymentInfoText(m_flags, m_btFlag,
                                    ReadPerCapitaReceipts(session().DbConnection, billNo));
}

void frmPCAdjustTaxBill::billLoaded() {
    const auto boxes = bodyBoxes();
    if (m_action == Exonerate || m_action == Unexonerate) {
        if (!(m_action == Exonerate ? AskExonerate() : AskUnexonerate())) {
            clearScreen();
            return;
        }
        m_beforeExoneration = m_held;
        if (m_action == Exonerate) {
            for (int line = 0; line < PerCapitaLineCount; ++line)
                if (ticked()[std::size_t(BodyOfPerCapitaLine(line))])
                    m_held.line[std::size_t(line)] = AmountTriple{};
            showAmounts();
        }
        txtReason->setText(m_action == Exonerate ? QStringLiteral("EXONERATION")
                                                 : QStringLiteral("UNEXONERATION"));
        for (int b = 0; b < 3; ++b)
            boxes[std::size_t(b)]->setEnabled(m_bodyVisible[std::size_t(b)]);
        txtReason->setEnabled(true);
        chkPrintBill->setEnabled(true);
        txtReason->setFocus(Qt::OtherFocusReason);
        return;
    }
    openForAdjustment();
}

void frmPCAdjustTaxBill::showImage(const QSqlRecord& image) {
    auto text = [&image](const char* column) { return TextField(image.value(column)); };
    txtAdjNo->setText(image.contains(QStringLiteral("AdjNo")) && image.value("AdjNo").toInt() > 0
                          ? QString::number(image.value("AdjNo").toInt())
                          : QString());
    txtControl->setText(text("Control"));
    showAddress(image);
    {
        const QSignalBlocker block(cboOccuCode);
        cboOccuCode->setCurrentIndex(cboOccuCode->findText(text("OccuCode").trimmed()));
    }
    txtOccuDesc->setText(text("OccuDesc"));
    txtOccuValue->setText(text("OccuValue").trimmed());
    txtBirthdate->setText(text("Birthdate").trimmed());
    m_held = PerCapitaBillAmountsFromRecord(image);
    showAmounts();
}

// The name and address of an image or of an address change; the built fields show what is
// stored.
void frmPCAdjustTaxBill::showAddress(const QSqlRecord& row) {
    auto text = [&row](const char* column) { return TextField(row.value(column)); };
    const std::pair<QLineEdit*, const char*> fields[] = {{txtPrefix, "Prefix"},
                                                         {txtFName, "FName"},
                                                         {txtMName, "MName"},
                                                         {txtLName, "LName"},
                                                         {txtSuffix, "Suffix"},
                                                         {txtRelationship, "Relationship"},
                                                         {txtAddr1, "Addr1"},
                                                         {txtStreetNumber, "StreetNumber"},
                                                         {txtStreetName, "StreetName"},
                                                         {txtZipCode, "ZipCode"},
                                                         {txtZipCode2, "ZipCode2"},
                                                         {txtName, "Name"},
                                                         {txtAddr2, "Addr2"}};
    for (const auto& [field, column] : fields) {
        const QSignalBlocker block(field);
        field->setText(text(column));
    }
    txtPrintName->setText(BuildPrintName({txtPrefix->text(), txtFName->text(), txtMName->text(),
                                          txtLName->text(), txtSuffix->text()}));
    cboCity->setEditText(text("City"));
    cboState->setEditText(text("State"));
}

void frmPCAdjustTaxBill::buildNames() {
    if (m_clearing)
        return;
    const PersonNameParts parts{txtPrefix->text(), txtFName->text(), txtMName->text(),
                                txtLName->text(), txtSuffix->text()};
    txtName->setText(BuildPersonName(parts));
    txtPrintName->setText(BuildPrintName(parts));
    txtAddr2->setText(BuildStreetLine(txtStreetNumber->text(), txtStreetName->text()));
}

bool frmPCAdjustTaxBill::bodySettled(int body) const {
    if (!m_bodyVisible[std::size_t(body)])
        return true;
    const QString flag = body == 0   ? m_flags.cPayFlag
                         : body == 1 ? m_flags.tPayFlag
                                     : m_flags.sPayFlag;
    return !isBlank(flag);
}

BodyTicks frmPCAdjustTaxBill::ticked() const {
    BodyTicks t{};
    const auto boxes = bodyBoxes();
    for (int b = 0; b < 3; ++b)
        t[std::size_t(b)] = boxes[std::size_t(b)]->isChecked() && m_bodyVisible[std::size_t(b)];
    return t;
}

void frmPCAdjustTaxBill::openForAdjustment() {
    for (QWidget* w : std::initializer_list<QWidget*>{txtReason, cboOccuCode, txtOccuDesc,
                                                      txtOccuValue, txtBirthdate})
        w->setEnabled(true);
    chkPrintBill->setEnabled(true);
    const auto boxes = bodyBoxes();
    for (int b = 0; b < 3; ++b) {
        if (!m_bodyVisible[std::size_t(b)])
            continue;
        const bool paid = bodySettled(b);
        boxes[std::size_t(b)]->setEnabled(!paid);
        if (paid)
            boxes[std::size_t(b)]->setChecked(false);
    }
    enableAmountFields();
    txtOccuValue->setFocus(Qt::OtherFocusReason);
    txtOccuValue->selectAll();
}

void frmPCAdjustTaxBill::startAddition() {
    QSqlQuery q(session().DbConnection);
    int number = 1;
    if (q.exec(QStringLiteral("SELECT BillNum FROM PCBillNum")) && q.next())
        number = q.value(0).toInt();
    m_billNo = QStringLiteral("A%1").arg(number, 4, 10, QLatin1Char('0'));
    {
        const QSignalBlocker block(txtBillNo);
        txtBillNo->setText(m_billNo);
    }
    m_flags = BillPayFlags();
    m_held = PerCapitaBillAmounts();
    txtOccuValue->setText(QStringLiteral("0"));
    cboAction->setEnabled(false);
    txtBillNo->setEnabled(false);
    for (QLineEdit* field : findChildren<QLineEdit*>())
        if (!field->isReadOnly() && field != txtBillNo && field != txtAdjNo)
            field->setEnabled(true);
    for (QWidget* w :
         std::initializer_list<QWidget*>{cboCity, cboState, cboOccuCode, txtReason, chkReportable,
                                         chkUSPS, cmdAccept, cmdPaymentInfo})
        w->setEnabled(true);
    chkPrintBill->setEnabled(true);
    const auto boxes = bodyBoxes();
    for (int b = 0; b < 3; ++b)
        boxes[std::size_t(b)]->setEnabled(m_bodyVisible[std::size_t(b)]);
    // Its own control number, generated with the bill number.
    txtControl->setText(QStringLiteral("A%1").arg(number, 5, 10, QLatin1Char('0')));
    computeFromRates();
    enableAmountFields();
    txtFName->setFocus(Qt::OtherFocusReason);
}

// Ticked bodies have their amounts open.
void frmPCAdjustTaxBill::enableAmountFields() {
    if (m_action == Exonerate || m_action == Unexonerate)
        return;
    const BodyTicks t = ticked();
    const auto faces = faceFields();
    for (int line = 0; line < PerCapitaLineCount; ++line)
        faces[std::size_t(line)]->setEnabled(t[std::size_t(BodyOfPerCapitaLine(line))]);
}

// ---------------------------------------------------------------------------------------------
// Field leave and computing
// ---------------------------------------------------------------------------------------------

bool frmPCAdjustTaxBill::fieldLeft(QLineEdit* field, QWidget* target) {
    bool refused = false;
    const auto faces = faceFields();
    if (field == txtOccuValue)
        refused = !occuValueLeft();
    else if (std::find(faces.begin(), faces.end(), field) != faces.end())
        refused = target != cmdAccept && !faceLeft(field);
    else if (field == txtZipCode)
        refused = !ZipCodeLookup(txtZipCode, cboCity, cboState);
    return refused;
}

bool frmPCAdjustTaxBill::occuValueLeft() {
    if (isBlank(txtOccuValue->text()))
        txtOccuValue->setText(QStringLiteral("0"));
    if (!wholeNumber(txtOccuValue->text())) {
        MsgBox(QStringLiteral("Occupation value must be numeric"), title());
        RefuseField(txtOccuValue);
        return false;
    }
    computeFromRates();
    return true;
}

bool frmPCAdjustTaxBill::faceLeft(QLineEdit* field) {
    const auto faces = faceFields();
    const int line = int(std::find(faces.begin(), faces.end(), field) - faces.begin());
    if (isBlank(field->text()))
        field->setText(moneyText(Money()));
    const std::optional<Money> amount = amountOf(field);
    if (!amount) {
        MsgBox(QString::fromLatin1(FaceMessages[line]), title());
        RefuseField(field);
        return false;
    }
    field->setText(moneyText(*amount));
    m_held = amountsOnScreen();
    RecomputePerCapitaDiscountPenalty(m_held, m_rates);
    showTotals();
    return true;
}

PerCapitaBillAmounts frmPCAdjustTaxBill::amountsOnScreen() const {
    PerCapitaBillAmounts a = m_held;
    const auto faces = faceFields();
    for (int line = 0; line < PerCapitaLineCount; ++line)
        if (const std::optional<Money> face = amountOf(faces[std::size_t(line)]))
            a.line[std::size_t(line)].face = *face;
    return a;
}

void frmPCAdjustTaxBill::computeFromRates() {
    if (!m_loaded && m_action != AddBill)
        return;
    const std::optional<qint64> value = wholeNumber(txtOccuValue->text());
    m_held = ComputePerCapitaAmounts(amountsOnScreen(), value.value_or(0), ticked(), m_rates);
    showAmounts();
}

void frmPCAdjustTaxBill::showAmounts() {
    const auto faces = faceFields();
    for (int line = 0; line < PerCapitaLineCount; ++line)
        faces[std::size_t(line)]->setText(moneyText(m_held.line[std::size_t(line)].face));
    showTotals();
}

void frmPCAdjustTaxBill::showTotals() {
    const PerCapitaBillAmounts a = amountsOnScreen();
    txtCTotal->setText(moneyText(a.bodyFace(0)));
    txtTTotal->setText(moneyText(a.bodyFace(1)));
    txtSTotal->setText(moneyText(a.bodyFace(2)));
    txtTotal->setText(moneyText(a.totalFace()));
}

// ---------------------------------------------------------------------------------------------
// Accept
// ---------------------------------------------------------------------------------------------

PerCapitaBillImage frmPCAdjustTaxBill::imageOnScreen() const {
    PerCapitaBillImage b;
    b.control = txtControl->text().trimmed();
    b.billNo = m_billNo;
    b.name = txtName->text();
    b.prefix = txtPrefix->text();
    b.lName = txtLName->text();
    b.fName = txtFName->text();
    b.mName = txtMName->text();
    b.suffix = txtSuffix->text();
    b.relationship = txtRelationship->text();
    b.addr1 = txtAddr1->text();
    b.addr2 = txtAddr2->text();
    b.streetNumber = txtStreetNumber->text();
    b.streetName = txtStreetName->text();
    b.city = cboCity->currentText();
    b.state = cboState->currentText();
    b.zipCode = txtZipCode->text();
    b.zipCode2 = txtZipCode2->text();
    b.occuCode = cboOccuCode->currentText();
    b.occuDesc = txtOccuDesc->text();
    b.occuValue = txtOccuValue->text().trimmed();
    b.birthdate = txtBirthdate->text().trimmed();
    b.amounts = m_held;
    if (m_action == AddBill)
        // An added bill's empty text fields hold one blank.
        for (QString* text :
             {&b.name, &b.prefix, &b.lName, &b.fName, &b.mName, &b.suffix, &b.relationship,
              &b.addr1, &b.addr2, &b.streetNumber, &b.streetName, &b.city, &b.state, &b.zipCode,
              &b.zipCode2, &b.occuDesc, &b.occuValue})
            if (isBlank(*text))
                *text = QStringLiteral(" ");
    return b;
}

bool frmPCAdjustTaxBill::accept() {
    if (!m_loaded && m_action != AddBill)
        return false;
    // 1. to 3.
    if (isBlank(txtReason->text())) {
        MsgBox(QStringLiteral("Reason must be specified"), QStringLiteral("Enter Reason"));
        RefuseField(txtReason);
        return false;
    }
    if (cboOccuCode->currentText().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Occupation Status Code must be specified."),
               QStringLiteral("Enter Status Code"));
        cboOccuCode->setFocus(Qt::OtherFocusReason);
        return false;
    }
    if (!isBlank(txtBirthdate->text())) {
        const std::optional<QDate> born = ParseTypedDate(txtBirthdate->text().trimmed());
        if (!born) {
            MsgBox(QStringLiteral("Birthdate must be a valid date"),
                   QStringLiteral("Enter Birthdate"));
            RefuseField(txtBirthdate);
            return false;
        }
        txtBirthdate->setText(FormatDate(*born));
    }
    // A face typed last is checked here, as leaving it would.
    const auto faces = faceFields();
    for (int line = 0; line < PerCapitaLineCount; ++line)
        if (!amountOf(faces[std::size_t(line)])) {
            MsgBox(QString::fromLatin1(FaceMessages[line]), title());
            RefuseField(faces[std::size_t(line)]);
            return false;
        }
    if (m_action != Exonerate && m_action != Unexonerate && !wholeNumber(txtOccuValue->text()) &&
        !isBlank(txtOccuValue->text())) {
        MsgBox(QStringLiteral("Occupation value must be numeric"), title());
        RefuseField(txtOccuValue);
        return false;
    }
    // 4.
    if (m_action != Exonerate && m_action != Unexonerate) {
        m_held = amountsOnScreen();
        RecomputePerCapitaDiscountPenalty(m_held, m_rates);
        showTotals();
    }
    const QString reason = txtReason->text().trimmed();
    QSqlDatabase db = session().DbConnection;
    QString error;
    bool written = false;
    if (m_action == AddBill) {
        const QString control = txtControl->text().trimmed();
        if (control.size() != 6) {
            MsgBox(QStringLiteral("Invalid control number"),
                   QStringLiteral("Enter Control Number"));
            RefuseField(txtControl);
            return false;
        }
        if (isBlank(txtName->text())) {
            MsgBox(QStringLiteral("Name must be specified"), QStringLiteral("Enter Name"));
            RefuseField(txtPrefix);
            return false;
        }
        if (RefuseExistingControl(db, PerCapitaChain.master, control)) {
            RefuseField(txtControl);
            return false;
        }
        if (!ConfirmZeroTotal(m_held.totalFace(),
                              QStringLiteral("Adding tax bill has been aborted!"))) {
            RefuseField(txtReason);
            return false;
        }
        PerCapitaAddition a;
        a.image = imageOnScreen();
        a.district = m_district;
        a.ward = m_ward;
        a.taxYear = m_taxYear;
        a.addDate = Clock::today();
        a.reason = reason;
        written = AddPerCapitaBill(db, a, &error);
    } else if (m_action == Unexonerate) {
        written = RecordPerCapitaUnexoneration(db, m_billNo, m_nextAdjNo - 1, &error);
    } else {
        PerCapitaAdjustment a;
        a.exonerate = m_action == Exonerate;
        a.image = imageOnScreen();
        a.adjNo = m_nextAdjNo;
        a.adjDate = Clock::today();
        a.reason = reason;
        written = RecordPerCapitaAdjustment(db, a, &error);
    }
    if (!written) {
        MsgBox(QStringLiteral("The bill was not saved: ") + error, title(), MsgButtons::Ok,
               MsgIcon::Critical);
        return false;
    }
    const QString billNo = m_billNo;
    const bool printBill = chkPrintBill->isChecked();
    Q_EMIT billSaved(billNo);
    MsgBox(QStringLiteral("Adjustment Recorded"), title());
    clearScreen();
    if (printBill)
        OpenPCPrintTaxBillsFor(billNo);
    return true;
}
