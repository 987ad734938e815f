#include "desk/percapita/address_change.h"

#include "bills/pc_print_tax_bills.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/percapita/pc_handover.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/chain_writes.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSqlQuery>
#include <QSqlRecord>

namespace {

const char* const ChangeAddressTitle = "Change Address";

QComboBox* comboBox(QWidget* parent, const char* name, int maxLength) {
    auto* box = new QComboBox(parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->lineEdit()->setMaxLength(maxLength);
    return box;
}

} // namespace

bool RecordPerCapitaAddressChange(QSqlDatabase db, const PerCapitaAddressRecord& c,
                                  QString* error) {
    RowValues row;
    row.add("Control", c.control);
    row.add("BillNo", c.billNo);
    row.add("AddrID", c.addrId);
    row.add("Name", c.name);
    row.add("Prefix", c.prefix);
    row.add("LName", c.lName);
    row.add("FName", c.fName);
    row.add("MName", c.mName);
    row.add("Suffix", c.suffix);
    row.add("Relationship", c.relationship);
    row.add("Addr1", c.addr1);
    row.add("Addr2", c.addr2);
    row.add("StreetNumber", c.streetNumber);
    row.add("StreetName", c.streetName);
    row.add("City", c.city);
    row.add("State", c.state);
    row.add("ZipCode", c.zipCode);
    row.add("ZipCode2", c.zipCode2);
    row.add("ADate", DateValue(c.aDate));
    row.add("Reason", c.reason);
    row.add("Reportable", BoxValue(c.reportable));
    row.add("USPS", BoxValue(c.usps));
    return AppendAddressChange(db, PerCapitaChain, c.billNo, row, error);
}

frmPCAddressChange::frmPCAddressChange(QWidget* parent)
    : AddressChangeScreen(PerCapitaChain, parent) {
    setObjectName(QStringLiteral("frmPCAddressChange"));
    buildScreen();
    startScreen();
}

void frmPCAddressChange::buildScreen() {
    buildSearch();
    UpperCaseTyping(txtBillNo);
    UpperCaseTyping(txtControl);

    fraAddress = new QGroupBox(QStringLiteral("Old Address"), this);
    fraAddress->setObjectName(QStringLiteral("fraAddress"));
    auto shown = [this](const char* name, int length) {
        return ShownField(fraAddress, QString::fromLatin1(name), length);
    };
    txtName = shown("txtName", 50);
    txtPrintName = shown("txtPrintName", 50);
    txtPrefix = shown("txtPrefix", 30);
    txtFName = shown("txtFName", 50);
    txtMName = shown("txtMName", 50);
    txtLName = shown("txtLName", 50);
    txtSuffix = shown("txtSuffix", 30);
    txtRelationship = shown("txtRelationship", 50);
    txtAddr1 = shown("txtAddr1", 50);
    txtStreetNumber = shown("txtStreetNumber", 10);
    txtStreetName = shown("txtStreetName", 50);
    txtAddr2 = shown("txtAddr2", 50);
    cboCity = comboBox(fraAddress, "cboCity", 35);
    cboState = comboBox(fraAddress, "cboState", 2);
    cboCity->setEnabled(false);
    cboState->setEnabled(false);
    txtZipCode = shown("txtZipCode", 5);
    txtZipCode2 = shown("txtZipCode2", 4);
    txtOldReason = shown("txtOldReason", 50);
    txtADate = shown("txtADate", 10);

    fraNewAddress = new QGroupBox(QStringLiteral("New Address"), this);
    fraNewAddress->setObjectName(QStringLiteral("fraNewAddress"));
    auto typed = [this](const char* name, int length) {
        return NamedField(fraNewAddress, QString::fromLatin1(name), length);
    };
    // The name and the street line are built; the collector types their parts.
    txtNewName = ShownField(fraNewAddress, QStringLiteral("txtNewName"), 50);
    txtNewPrintName = ShownField(fraNewAddress, QStringLiteral("txtNewPrintName"), 50);
    txtNewPrefix = typed("txtNewPrefix", 30);
    txtNewFName = typed("txtNewFName", 50);
    txtNewMName = typed("txtNewMName", 50);
    txtNewLName = typed("txtNewLName", 50);
    txtNewSuffix = typed("txtNewSuffix", 30);
    txtNewRelationship = typed("txtNewRelationship", 50);
    txtNewAddr1 = typed("txtNewAddr1", 50);
    txtNewStreetNumber = typed("txtNewStreetNumber", 10);
    txtNewStreetName = typed("txtNewStreetName", 50);
    txtNewAddr2 = ShownField(fraNewAddress, QStringLiteral("txtNewAddr2"), 50);
    cboNewCity = comboBox(fraNewAddress, "cboNewCity", 35);
    cboNewState = comboBox(fraNewAddress, "cboNewState", 2);
    txtNewZipCode = typed("txtNewZipCode", 5);
    txtNewZipCode2 = typed("txtNewZipCode2", 4);
    txtReason = typed("txtReason", 50);
    buildChecks();

    struct Frame {
        QWidget *name, *printName, *prefix, *fName, *mName, *lName, *suffix, *relationship, *addr1,
            *streetNumber, *streetName, *addr2, *city, *state, *zip, *zip2, *reason;
    };
    auto fill = [](QGroupBox* frame, const Frame& f) {
        auto* g = new QGridLayout(frame);
        int r = 0;
        auto row = [&](const char* caption, QWidget* field) {
            g->addWidget(new QLabel(QString::fromLatin1(caption), frame), r, 0);
            g->addWidget(field, r++, 1);
        };
        row("Name:", f.name);
        row("Print Name:", f.printName);
        row("Prefix:", f.prefix);
        row("First Name:", f.fName);
        row("Middle Name:", f.mName);
        row("Last Name:", f.lName);
        row("Suffix:", f.suffix);
        row("Relationship:", f.relationship);
        row("Care Of:", f.addr1);
        row("Street #:", f.streetNumber);
        row("Street Name:", f.streetName);
        row("Print Addr:", f.addr2);
        auto* cityRow = new QHBoxLayout;
        cityRow->addWidget(f.city, 3);
        cityRow->addWidget(f.state, 1);
        cityRow->addWidget(f.zip, 1);
        cityRow->addWidget(f.zip2, 1);
        g->addWidget(new QLabel(QStringLiteral("City/St/Zip:"), frame), r, 0);
        g->addLayout(cityRow, r++, 1);
        row("Reason:", f.reason);
        return g;
    };
    QGridLayout* oldGrid =
        fill(fraAddress, {txtName, txtPrintName, txtPrefix, txtFName, txtMName, txtLName, txtSuffix,
                          txtRelationship, txtAddr1, txtStreetNumber, txtStreetName, txtAddr2,
                          cboCity, cboState, txtZipCode, txtZipCode2, txtOldReason});
    oldGrid->addWidget(new QLabel(QStringLiteral("Change Date:"), fraAddress), 14, 0);
    oldGrid->addWidget(txtADate, 14, 1);
    QGridLayout* newGrid =
        fill(fraNewAddress,
             {txtNewName, txtNewPrintName, txtNewPrefix, txtNewFName, txtNewMName, txtNewLName,
              txtNewSuffix, txtNewRelationship, txtNewAddr1, txtNewStreetNumber, txtNewStreetName,
              txtNewAddr2, cboNewCity, cboNewState, txtNewZipCode, txtNewZipCode2, txtReason});
    newGrid->addWidget(chkPrintBill, 14, 1);
    newGrid->addWidget(chkReportable, 15, 1);
    newGrid->addWidget(chkUSPS, 16, 1);

    buildButtons();

    auto* search = new QHBoxLayout;
    search->addWidget(optBillNo);
    search->addWidget(txtBillNo);
    search->addWidget(optControl);
    search->addWidget(txtControl);
    search->addStretch();
    layOutScreen(search);

    QWidget* order[] = {optBillNo,        txtBillNo,          optControl,   txtControl,
                        txtNewPrefix,     txtNewFName,        txtNewMName,  txtNewLName,
                        txtNewSuffix,     txtNewRelationship, txtNewAddr1,  txtNewStreetNumber,
                        txtNewStreetName, cboNewCity,         cboNewState,  txtNewZipCode,
                        txtNewZipCode2,   txtReason,          chkPrintBill, chkReportable,
                        chkUSPS,          cmdAccept};
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    for (QWidget* w : std::initializer_list<QWidget*>{txtBillNo, txtControl, cboNewCity,
                                                      cboNewState, txtNewZipCode, txtNewZipCode2})
        w->installEventFilter(this);
    cmdAccept->installEventFilter(this);
    UpperCaseTyping(cboNewState->lineEdit());
    for (QLineEdit* part : {txtNewPrefix, txtNewFName, txtNewMName, txtNewLName, txtNewSuffix,
                            txtNewStreetNumber, txtNewStreetName})
        connect(part, &QLineEdit::textChanged, this, [this] { buildNewNames(); });
    connectCommon([] { ShowPerCapitaQueryList(); });
}

void frmPCAddressChange::showAddress(const QSqlRecord& r) {
    auto text = [&r](const char* name) { return TextField(r.value(name)); };
    const std::pair<QLineEdit*, const char*> fields[] = {{txtName, "Name"},
                                                         {txtPrefix, "Prefix"},
                                                         {txtFName, "FName"},
                                                         {txtMName, "MName"},
                                                         {txtLName, "LName"},
                                                         {txtSuffix, "Suffix"},
                                                         {txtRelationship, "Relationship"},
                                                         {txtAddr1, "Addr1"},
                                                         {txtStreetNumber, "StreetNumber"},
                                                         {txtStreetName, "StreetName"},
                                                         {txtAddr2, "Addr2"},
                                                         {txtZipCode, "ZipCode"},
                                                         {txtZipCode2, "ZipCode2"}};
    for (const auto& [field, name] : fields)
        field->setText(text(name));
    txtPrintName->setText(BuildPrintName({txtPrefix->text(), txtFName->text(), txtMName->text(),
                                          txtLName->text(), txtSuffix->text()}));
    cboCity->setEditText(text("City"));
    cboState->setEditText(text("State"));
}

void frmPCAddressChange::copyToNewFrame() {
    // The new frame starts as a copy of the old one; its names are built from the parts copied.
    const std::pair<QLineEdit*, QLineEdit*> copies[] = {
        {txtPrefix, txtNewPrefix},         {txtFName, txtNewFName},
        {txtMName, txtNewMName},           {txtLName, txtNewLName},
        {txtSuffix, txtNewSuffix},         {txtRelationship, txtNewRelationship},
        {txtAddr1, txtNewAddr1},           {txtStreetNumber, txtNewStreetNumber},
        {txtStreetName, txtNewStreetName}, {txtZipCode, txtNewZipCode},
        {txtZipCode2, txtNewZipCode2}};
    // The one blank that stands for an empty part is not copied, so typing starts clean.
    for (const auto& [from, to] : copies) {
        const QSignalBlocker block(to);
        to->setText(from->text().trimmed());
    }
    txtNewName->setText(txtName->text());
    txtNewPrintName->setText(txtPrintName->text());
    txtNewAddr2->setText(txtAddr2->text());
    cboNewCity->clear();
    cboNewCity->setEditText(cboCity->currentText());
    cboNewState->setEditText(cboState->currentText());
}

QWidget* frmPCAddressChange::firstNewField() const {
    return txtNewPrefix;
}

void frmPCAddressChange::buildNewNames() {
    if (m_clearing)
        return;
    const PersonNameParts parts{txtNewPrefix->text(), txtNewFName->text(), txtNewMName->text(),
                                txtNewLName->text(), txtNewSuffix->text()};
    txtNewName->setText(BuildPersonName(parts));
    txtNewPrintName->setText(BuildPrintName(parts));
    txtNewAddr2->setText(BuildStreetLine(txtNewStreetNumber->text(), txtNewStreetName->text()));
}

// A ZIP code that passed its checks offers its cities from tbl_ZipCodes; a code not listed
// there is kept as typed.
void frmPCAddressChange::zipCodePassed() {
    QSqlQuery q(session().DbConnection);
    q.prepare(QStringLiteral("SELECT City, State FROM tbl_ZipCodes WHERE ZipCode = ?"));
    q.addBindValue(txtNewZipCode->text().trimmed());
    QStringList cities;
    QString state;
    if (q.exec())
        while (q.next()) {
            cities << TextField(q.value(0)).toUpper();
            state = TextField(q.value(1));
        }
    if (cities.isEmpty())
        return;
    const QString typed = cboNewCity->currentText();
    cboNewCity->clear();
    cboNewCity->addItems(cities);
    if (cities.size() == 1) {
        cboNewCity->setCurrentIndex(0);
        cboNewState->setEditText(state);
    } else {
        cboNewCity->setCurrentIndex(-1);
        cboNewCity->setEditText(typed);
    }
}

FieldRefusal frmPCAddressChange::checkOwnField(QWidget* field) {
    if (field == cboNewCity && cboNewCity->currentText().trimmed().isEmpty())
        return {QStringLiteral("City Must Be Specified"), QStringLiteral("Enter City")};
    return {};
}

void frmPCAddressChange::clearAddress() {
    for (QLineEdit* field :
         {txtNewAddr1, txtNewStreetNumber, txtNewStreetName, txtNewZipCode, txtNewZipCode2})
        field->clear();
    cboNewCity->clear();
    cboNewCity->setEditText(QString());
    cboNewState->setEditText(QString());
}

bool frmPCAddressChange::checkBeforeReason() {
    // The name is built and never left, so it is tested here.
    if (txtNewName->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Name Must Be Specified"), QStringLiteral("Enter Name"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtNewPrefix->setFocus(Qt::OtherFocusReason);
        return false;
    }
    for (QWidget* field :
         std::initializer_list<QWidget*>{cboNewCity, cboNewState, txtNewZipCode, txtNewZipCode2})
        if (!checkField(field))
            return false;
    return true;
}

bool frmPCAddressChange::writeChange(QString* error) {
    // A part is stored trimmed; an empty one as one blank, as the duplicate holds it.
    auto part = [](const QLineEdit* field) {
        const QString text = field->text().trimmed();
        return text.isEmpty() ? QStringLiteral(" ") : text;
    };
    PerCapitaAddressRecord c;
    c.control = m_control;
    c.billNo = m_billNo;
    c.addrId = m_nextAddrId;
    c.name = txtNewName->text();
    c.prefix = part(txtNewPrefix);
    c.lName = part(txtNewLName);
    c.fName = part(txtNewFName);
    c.mName = part(txtNewMName);
    c.suffix = part(txtNewSuffix);
    c.relationship = part(txtNewRelationship);
    c.addr1 = part(txtNewAddr1);
    c.addr2 = txtNewAddr2->text();
    c.streetNumber = part(txtNewStreetNumber);
    c.streetName = part(txtNewStreetName);
    c.city = cboNewCity->currentText();
    c.state = cboNewState->currentText();
    c.zipCode = txtNewZipCode->text();
    c.zipCode2 = part(txtNewZipCode2);
    c.reason = txtReason->text();
    c.aDate = Clock::today();
    c.reportable = chkReportable->isChecked();
    c.usps = chkUSPS->isChecked();
    return RecordPerCapitaAddressChange(session().DbConnection, c, error);
}

void frmPCAddressChange::printBill(const QString& billNo) {
    OpenPCPrintTaxBillsFor(billNo);
}

void frmPCAddressChange::clearOwnBoxes() {
    cboCity->setEditText(QString());
    cboNewCity->setEditText(QString());
    cboNewCity->clear();
}
