#include "desk/percapita/address_change.h"

#include "bills/pc_print_tax_bills.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/percapita/pc_handover.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/chain_writes.h"
#include "desk/realestate/receive_payment.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
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
#include <QSqlRecord>
#include <QVBoxLayout>

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

frmPCAddressChange::frmPCAddressChange(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmPCAddressChange"));
    setWindowTitle(QStringLiteral("Change Taxpayer Address"));
    buildScreen();
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT State FROM tbl_States")))
        while (q.next()) {
            const QString state = TextField(q.value(0));
            cboNewState->addItem(state);
            cboState->addItem(state);
        }
    clearScreen();
    txtBillNo->setEnabled(false);
    txtControl->setEnabled(false);
    session().LastScreenName = objectName();
}

void frmPCAddressChange::buildScreen() {
    optBillNo = new QRadioButton(QStringLiteral("&Bill #"), this);
    optBillNo->setObjectName(QStringLiteral("optBillNo"));
    optControl = new QRadioButton(QStringLiteral("C&ontrol #"), this);
    optControl->setObjectName(QStringLiteral("optControl"));
    txtBillNo = NamedField(this, QStringLiteral("txtBillNo"), 5);
    txtControl = NamedField(this, QStringLiteral("txtControl"), 6);
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
    chkPrintBill = new QCheckBox(QStringLiteral("Print A New Tax Bill"), fraNewAddress);
    chkPrintBill->setObjectName(QStringLiteral("chkPrintBill"));
    chkReportable = new QCheckBox(QStringLiteral("Reportable to Assessment"), fraNewAddress);
    chkReportable->setObjectName(QStringLiteral("chkReportable"));
    chkUSPS = new QCheckBox(QStringLiteral("USPS Address Change"), fraNewAddress);
    chkUSPS->setObjectName(QStringLiteral("chkUSPS"));

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

    cmdAccept = NamedButton(this, QStringLiteral("cmdAccept"), QStringLiteral("Accept Data"));
    cmdClearAddress = NamedButton(this, QStringLiteral("cmdClearAddress"),
                                  QStringLiteral("Clear A&ddress"), false);
    cmdClearScreen =
        NamedButton(this, QStringLiteral("cmdClearScreen"), QStringLiteral("Clea&r Screen"), false);
    CmdQuery = NamedButton(this, QStringLiteral("CmdQuery"), QStringLiteral("&Query"), false);
    cmdPrintScreen =
        NamedButton(this, QStringLiteral("cmdPrintScreen"), QStringLiteral("&Print Screen"), false);
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

    auto* search = new QHBoxLayout;
    search->addWidget(optBillNo);
    search->addWidget(txtBillNo);
    search->addWidget(optControl);
    search->addWidget(txtControl);
    search->addStretch();
    auto* frames = new QHBoxLayout;
    frames->addWidget(fraAddress);
    frames->addWidget(fraNewAddress);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {cmdAccept, cmdClearAddress, cmdClearScreen, CmdQuery, cmdPrintScreen})
        buttons->addWidget(b);
    buttons->addStretch();
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(search);
    layout->addLayout(frames);
    layout->addLayout(buttons);

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
    for (QLineEdit* field : {txtBillNo, txtControl})
        connect(field, &QLineEdit::textChanged, this, [field](const QString& text) {
            // A "*" alone is the scanner's call; it never stays in the field.
            if (text == QLatin1String("*")) {
                const QSignalBlocker block(field);
                field->clear();
            }
        });
    for (QLineEdit* part : {txtNewPrefix, txtNewFName, txtNewMName, txtNewLName, txtNewSuffix,
                            txtNewStreetNumber, txtNewStreetName})
        connect(part, &QLineEdit::textChanged, this, [this] { buildNewNames(); });
    connect(optBillNo, &QRadioButton::clicked, this, [this] { chooseSearch(true); });
    connect(optControl, &QRadioButton::clicked, this, [this] { chooseSearch(false); });
    connect(chkUSPS, &QCheckBox::clicked, this,
            [this](bool ticked) { ApplyUspsTick(ticked, chkReportable, txtReason); });
    connect(cmdAccept, &QPushButton::clicked, this, [this] { accept(); });
    connect(cmdClearAddress, &QPushButton::clicked, this, [this] { clearAddress(); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(CmdQuery, &QPushButton::clicked, this, [] { ShowPerCapitaQueryList(); });
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

bool frmPCAddressChange::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease)
        return SwallowRefusedRelease(watched) || QWidget::eventFilter(watched, event);
    if (!IsFieldLeave(event) || m_inLeave || m_clearing)
        return QWidget::eventFilter(watched, event);
    QPointer<QWidget> target = QApplication::focusWidget();
    QPointer<frmPCAddressChange> self(this);
    m_inLeave = true;
    bool refused = false;
    if (watched == txtBillNo)
        searchLeft(true);
    else if (watched == txtControl)
        searchLeft(false);
    else if (m_loaded)
        refused = !checkField(qobject_cast<QWidget*>(watched));
    if (!self)
        return true;
    m_inLeave = false;
    if (refused)
        MarkRefusedClick(this, target, event);
    return FieldTookFocusBack(watched) || QWidget::eventFilter(watched, event);
}

AddressSearchFlow frmPCAddressChange::searchFlow() {
    return {optBillNo,
            optControl,
            txtBillNo,
            txtControl,
            &m_loaded,
            &m_inLeave,
            [this] { clearScreen(); },
            [this](const QString& column, const QString& key, bool byBill) {
                loadBill(column, key, byBill);
            }};
}

void frmPCAddressChange::chooseSearch(bool byBill) {
    ChooseAddressSearch(searchFlow(), byBill);
}

void frmPCAddressChange::openFromQuery(const QString& billNo) {
    OpenAddressFromQuery(searchFlow(), billNo);
}

void frmPCAddressChange::searchLeft(bool byBill) {
    AddressSearchLeft(searchFlow(), byBill);
}

void frmPCAddressChange::loadBill(const QString& column, const QString& key, bool byBill) {
    QSqlDatabase db = session().DbConnection;
    QSqlQuery q(db);
    q.prepare(
        QStringLiteral("SELECT * FROM PCMaster WHERE %1 = ? ORDER BY rowid LIMIT 1").arg(column));
    q.addBindValue(key);
    if (!q.exec() || !q.next()) {
        MsgBox(byBill ? QStringLiteral("Bill Number Not On File")
                      : QStringLiteral("Control Number Not On File"),
               QString::fromLatin1(ChangeAddressTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        clearScreen();
        return;
    }
    const QSqlRecord master = q.record();
    auto text = [](const QSqlRecord& r, const char* name) { return TextField(r.value(name)); };
    m_control = text(master, "Control");
    m_billNo = text(master, "BillNo");
    {
        const QSignalBlocker b1(txtBillNo);
        const QSignalBlocker b2(txtControl);
        txtBillNo->setText(m_billNo);
        txtControl->setText(m_control);
    }
    auto showAddress = [&](const QSqlRecord& r) {
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
            field->setText(text(r, name));
        txtPrintName->setText(BuildPrintName({txtPrefix->text(), txtFName->text(), txtMName->text(),
                                              txtLName->text(), txtSuffix->text()}));
        cboCity->setEditText(text(r, "City"));
        cboState->setEditText(text(r, "State"));
    };
    showAddress(master);
    txtOldReason->clear();
    txtADate->clear();
    if (!ReplayAddressHistory(
            db, PerCapitaChain, master,
            [&](const QSqlRecord& change) {
                showAddress(change);
                txtOldReason->setText(text(change, "Reason"));
                txtADate->setText(FormatDate(DateField(change.value("ADate"))));
            },
            &m_nextAddrId)) {
        CloseScreen(this);
        return;
    }

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
    txtReason->clear();
    m_loaded = true;
    txtBillNo->setEnabled(false);
    txtControl->setEnabled(false);
    fraNewAddress->setEnabled(true);
    chkPrintBill->setEnabled(true);
    chkReportable->setEnabled(true);
    chkUSPS->setEnabled(true);
    cmdAccept->setEnabled(true);
    CmdQuery->setEnabled(true);
    txtNewPrefix->setFocus(Qt::OtherFocusReason);
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
void frmPCAddressChange::zipLookUp() {
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

bool frmPCAddressChange::checkField(QWidget* field) {
    FieldRefusal refusal;
    if (field == cboNewCity) {
        if (cboNewCity->currentText().trimmed().isEmpty())
            refusal = {QStringLiteral("City Must Be Specified"), QStringLiteral("Enter City")};
    } else if (field == cboNewState) {
        return CheckStateBox(cboNewState);
    } else if (field == txtNewZipCode) {
        refusal = CheckNewZipCode(txtNewZipCode->text());
        if (!refusal.refused())
            zipLookUp();
    } else if (field == txtNewZipCode2) {
        refusal = CheckNewZipCode2(txtNewZipCode2->text());
    }
    if (!refusal.refused())
        return true;
    MsgBox(refusal.text, refusal.title, MsgButtons::Ok, MsgIcon::Exclamation);
    field->setFocus(Qt::OtherFocusReason);
    if (auto* line = qobject_cast<QLineEdit*>(field))
        line->selectAll();
    return false;
}

void frmPCAddressChange::clearAddress() {
    for (QLineEdit* field :
         {txtNewAddr1, txtNewStreetNumber, txtNewStreetName, txtNewZipCode, txtNewZipCode2})
        field->clear();
    cboNewCity->clear();
    cboNewCity->setEditText(QString());
    cboNewState->setEditText(QString());
}

void frmPCAddressChange::accept() {
    if (!m_loaded)
        return;
    m_inLeave = true;
    // 1. The name is built and never left, so it is tested here.
    if (txtNewName->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Name Must Be Specified"), QStringLiteral("Enter Name"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtNewPrefix->setFocus(Qt::OtherFocusReason);
        m_inLeave = false;
        return;
    }
    // A field left by the pointer on another button has not been checked yet.
    for (QWidget* field :
         std::initializer_list<QWidget*>{cboNewCity, cboNewState, txtNewZipCode, txtNewZipCode2})
        if (!checkField(field)) {
            m_inLeave = false;
            return;
        }
    // 2.
    if (txtReason->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Reason must be specified"), QStringLiteral("Enter Reason"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtReason->setFocus(Qt::OtherFocusReason);
        m_inLeave = false;
        return;
    }
    // 3. and 4.
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
    QString error;
    const bool written = RecordPerCapitaAddressChange(session().DbConnection, c, &error);
    m_inLeave = false;
    if (!written) {
        MsgBox(QStringLiteral("The address change could not be saved: ") + error,
               QString::fromLatin1(ChangeAddressTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    Q_EMIT addressChanged(c.billNo);
    // 5.
    MsgBox(QStringLiteral("Address Changed."), QString::fromLatin1(ChangeAddressTitle),
           MsgButtons::Ok, MsgIcon::Information);
    // 6. and 7.
    const bool printBill = chkPrintBill->isChecked();
    clearScreen();
    if (printBill)
        OpenPCPrintTaxBillsFor(c.billNo);
}

void frmPCAddressChange::clearScreen() {
    m_clearing = true;
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        const QSignalBlocker block(field);
        field->clear();
    }
    for (QComboBox* box : {cboCity, cboState, cboNewCity, cboNewState})
        box->setEditText(QString());
    cboNewCity->clear();
    for (QCheckBox* box : {chkPrintBill, chkReportable, chkUSPS})
        box->setChecked(false);
    m_loaded = false;
    m_control.clear();
    m_billNo.clear();
    m_nextAddrId = 1;
    fraNewAddress->setEnabled(false);
    cmdAccept->setEnabled(false);
    const bool byBill = optBillNo->isChecked();
    const bool byControl = optControl->isChecked();
    txtBillNo->setEnabled(byBill);
    txtControl->setEnabled(byControl);
    if (byBill)
        txtBillNo->setFocus(Qt::OtherFocusReason);
    else if (byControl)
        txtControl->setFocus(Qt::OtherFocusReason);
    m_clearing = false;
}
