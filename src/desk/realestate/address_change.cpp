#include "desk/realestate/address_change.h"

#include "bills/re_print_tax_bills.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/chain_writes.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/query_tc.h"
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
const char* const AddressChangeTitle = "Address Change";
const char* const UspsReason = " USPS Address Change";

bool isNumeric(const QString& text) {
    bool ok = false;
    text.trimmed().toDouble(&ok);
    return ok;
}

bool allDigits(const QString& text, int count) {
    if (text.size() < count)
        return false;
    for (int i = 0; i < count; ++i)
        if (!text.at(i).isDigit() || text.at(i).unicode() > 127)
            return false;
    return true;
}

QComboBox* stateBox(QWidget* parent, const QString& name) {
    auto* box = new QComboBox(parent);
    box->setObjectName(name);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->lineEdit()->setMaxLength(2);
    return box;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// The write and the checks
// ---------------------------------------------------------------------------------------------

bool RecordAddressChange(QSqlDatabase db, const AddressChangeRecord& change, QString* error) {
    RowValues row;
    row.add("Control", change.control);
    row.add("BillNo", change.billNo);
    row.add("AddrID", change.addrId);
    row.add("Name", change.name);
    row.add("Map3", change.map3);
    row.add("Map4", change.map4);
    row.add("Map5", change.map5);
    row.add("CoOwner", change.coOwner);
    row.add("Addr1", change.addr1);
    row.add("Addr2", change.addr2);
    row.add("City", change.city);
    row.add("State", change.state);
    row.add("ZipCode", change.zipCode);
    row.add("ZipCode2", change.zipCode2);
    row.add("ADate", DateValue(change.aDate));
    row.add("Reason", change.reason);
    row.add("Reportable", BoxValue(change.reportable));
    row.add("USPS", BoxValue(change.usps));
    return AppendAddressChange(db, RealEstateChain, change.billNo, row, error);
}

FieldRefusal CheckNewZipCode(const QString& zipCode) {
    const QString title = QStringLiteral("Enter Zip Code");
    if (zipCode.trimmed().isEmpty())
        return {QStringLiteral("Zip Code Must Be Specified"), title};
    if (!isNumeric(zipCode))
        return {QStringLiteral("Zip Code Must Be Numeric"), title};
    if (!allDigits(zipCode, 5))
        return {QStringLiteral("Invalid Zip Code"), title};
    return {};
}

FieldRefusal CheckNewZipCode2(const QString& zipCode2) {
    const QString title = QStringLiteral("Enter Zip Code Extension");
    if (zipCode2.trimmed().isEmpty())
        return {};
    if (!isNumeric(zipCode2))
        return {QStringLiteral("Zip Code Extension Must Be Numeric"), title};
    if (!allDigits(zipCode2, 4))
        return {QStringLiteral("Invalid Zip Code Extension"), title};
    return {};
}

bool ReplayAddressHistory(QSqlDatabase db, const ChainTables& tables, const QSqlRecord& master,
                          const std::function<void(const QSqlRecord&)>& showChange,
                          int* nextAddrId) {
    *nextAddrId = 1;
    if (FlagField(master.value("CAddrFlag")).trimmed() != QLatin1String("A"))
        return true;
    MsgBox(QStringLiteral("Original Bill Before Address Change"),
           QString::fromLatin1(AddressChangeTitle), MsgButtons::Ok, MsgIcon::Information);
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? ORDER BY BillNo, AddrID")
                  .arg(QString::fromLatin1(tables.address)));
    q.addBindValue(master.value("BillNo"));
    bool any = false;
    if (q.exec())
        while (q.next()) {
            any = true;
            const QSqlRecord change = q.record();
            showChange(change);
            *nextAddrId = change.value("AddrID").toInt() + 1;
            MsgBox(QStringLiteral("Address Change Encountered"),
                   QString::fromLatin1(AddressChangeTitle), MsgButtons::Ok, MsgIcon::Information);
        }
    if (!any)
        MsgBox(QString::fromLatin1(IncompleteAddressText), QString::fromLatin1(IntegrityErrorTitle),
               MsgButtons::Ok, MsgIcon::Critical);
    return any;
}

bool CheckStateBox(QComboBox* state) {
    if (state->findText(state->currentText(), Qt::MatchExactly | Qt::MatchCaseSensitive) >= 0)
        return true;
    MsgBox(QStringLiteral("Invalid State"), QStringLiteral("Enter State"), MsgButtons::Ok,
           MsgIcon::Exclamation);
    state->setEditText(QString());
    state->setFocus(Qt::OtherFocusReason);
    return false;
}

void ApplyUspsTick(bool ticked, QCheckBox* reportable, QLineEdit* reason) {
    if (ticked) {
        reportable->setChecked(true);
        reportable->setEnabled(false);
        reason->setText(reason->text() + QString::fromLatin1(UspsReason));
    } else {
        reportable->setChecked(false);
        reportable->setEnabled(true);
    }
}

// ---------------------------------------------------------------------------------------------
// What both address screens share
// ---------------------------------------------------------------------------------------------

AddressChangeScreen::AddressChangeScreen(const ChainTables& tables, QWidget* parent)
    : QWidget(parent), m_tables(tables) {
    setWindowTitle(QStringLiteral("Change Taxpayer Address"));
}

void AddressChangeScreen::buildSearch() {
    optBillNo = new QRadioButton(QStringLiteral("&Bill #"), this);
    optBillNo->setObjectName(QStringLiteral("optBillNo"));
    optControl = new QRadioButton(QStringLiteral("C&ontrol #"), this);
    optControl->setObjectName(QStringLiteral("optControl"));
    txtBillNo = NamedField(this, QStringLiteral("txtBillNo"), 5);
    txtControl = NamedField(this, QStringLiteral("txtControl"), 6);
}

void AddressChangeScreen::buildChecks() {
    chkPrintBill = new QCheckBox(QStringLiteral("Print A New Tax Bill"), fraNewAddress);
    chkPrintBill->setObjectName(QStringLiteral("chkPrintBill"));
    chkReportable = new QCheckBox(QStringLiteral("Reportable to Assessment"), fraNewAddress);
    chkReportable->setObjectName(QStringLiteral("chkReportable"));
    chkUSPS = new QCheckBox(QStringLiteral("USPS Address Change"), fraNewAddress);
    chkUSPS->setObjectName(QStringLiteral("chkUSPS"));
}

void AddressChangeScreen::buildButtons() {
    cmdAccept = NamedButton(this, QStringLiteral("cmdAccept"), QStringLiteral("Accept Data"));
    cmdClearAddress = NamedButton(this, QStringLiteral("cmdClearAddress"),
                                  QStringLiteral("Clear A&ddress"), false);
    cmdClearScreen =
        NamedButton(this, QStringLiteral("cmdClearScreen"), QStringLiteral("Clea&r Screen"), false);
    CmdQuery = NamedButton(this, QStringLiteral("CmdQuery"), QStringLiteral("&Query"), false);
    cmdPrintScreen =
        NamedButton(this, QStringLiteral("cmdPrintScreen"), QStringLiteral("&Print Screen"), false);
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);
}

void AddressChangeScreen::layOutScreen(QLayout* search) {
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
}

void AddressChangeScreen::connectCommon(const std::function<void()>& openQuery) {
    for (QLineEdit* field : {txtBillNo, txtControl})
        connect(field, &QLineEdit::textChanged, this, [this, field](const QString& text) {
            // A "*" alone is the scanner's call; it never stays in the field, and in the bill
            // number it opens the scan screen.
            if (text == QLatin1String("*")) {
                {
                    const QSignalBlocker block(field);
                    field->clear();
                }
                if (field == txtBillNo && field->hasFocus())
                    OpenScanScreen(this);
            }
        });
    connect(optBillNo, &QRadioButton::clicked, this, [this] { chooseSearch(true); });
    connect(optControl, &QRadioButton::clicked, this, [this] { chooseSearch(false); });
    connect(chkUSPS, &QCheckBox::clicked, this,
            [this](bool ticked) { ApplyUspsTick(ticked, chkReportable, txtReason); });
    connect(cmdAccept, &QPushButton::clicked, this, [this] { accept(); });
    connect(cmdClearAddress, &QPushButton::clicked, this, [this] { clearAddress(); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(CmdQuery, &QPushButton::clicked, this, openQuery);
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void AddressChangeScreen::startScreen() {
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

bool AddressChangeScreen::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease)
        return SwallowRefusedRelease(watched) || QWidget::eventFilter(watched, event);
    if (!IsFieldLeave(event) || m_inLeave || m_clearing)
        return QWidget::eventFilter(watched, event);
    QPointer<QWidget> target = QApplication::focusWidget();
    QPointer<AddressChangeScreen> self(this);
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

// An option chosen: its field enabled (and focused while no bill is loaded), the other not.
void AddressChangeScreen::chooseSearch(bool byBill) {
    txtBillNo->setEnabled(byBill);
    txtControl->setEnabled(!byBill);
    if (!m_loaded)
        (byBill ? txtBillNo : txtControl)->setFocus(Qt::OtherFocusReason);
}

void AddressChangeScreen::openFromQuery(const QString& billNo) {
    if (!optBillNo->isChecked() && !optControl->isChecked()) {
        optBillNo->setChecked(true);
        chooseSearch(true);
    }
    clearScreen();
    txtBillNo->setText(billNo);
    m_inLeave = true;
    loadBill(QStringLiteral("BillNo"), PadBillNo(billNo), true);
    m_inLeave = false;
}

// Leaving the bill or control number: a value loads the bill (a bill number padded first).
void AddressChangeScreen::searchLeft(bool byBill) {
    QLineEdit* field = byBill ? txtBillNo : txtControl;
    if (field->text().trimmed().isEmpty() || !field->isEnabled())
        return;
    if (byBill)
        loadBill(QStringLiteral("BillNo"), PadBillNo(field->text()), true);
    else
        loadBill(QStringLiteral("Control"), field->text().trimmed(), false);
}

void AddressChangeScreen::loadBill(const QString& column, const QString& key, bool byBill) {
    QSqlDatabase db = session().DbConnection;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE %2 = ? ORDER BY rowid LIMIT 1")
                  .arg(QString::fromLatin1(m_tables.master), column));
    q.addBindValue(key);
    if (!q.exec() || !q.next()) {
        MsgBox(byBill ? QStringLiteral("Bill Number Not On File")
                      : QStringLiteral("Control Number Not On File"),
               QString::fromLatin1(ChangeAddressTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        clearScreen();
        return;
    }
    const QSqlRecord master = q.record();

    // 1. The master as billed.
    m_control = TextField(master.value("Control"));
    m_billNo = TextField(master.value("BillNo"));
    m_nextAddrId = 1;
    {
        const QSignalBlocker b1(txtBillNo);
        const QSignalBlocker b2(txtControl);
        txtBillNo->setText(m_billNo);
        txtControl->setText(m_control);
    }
    showMaster(master);
    showAddress(master);
    txtOldReason->clear();
    txtADate->clear();

    // 2. The chain of changes, each one told.
    if (!ReplayAddressHistory(
            db, m_tables, master,
            [&](const QSqlRecord& change) {
                showAddress(change);
                txtOldReason->setText(TextField(change.value("Reason")));
                txtADate->setText(FormatDate(DateField(change.value("ADate"))));
            },
            &m_nextAddrId)) {
        CloseScreen(this);
        return;
    }

    // 3. The new frame starts as a copy of the old one.
    copyToNewFrame();
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
    firstNewField()->setFocus(Qt::OtherFocusReason);
}

bool AddressChangeScreen::checkField(QWidget* field) {
    FieldRefusal refusal;
    if (field == cboNewState) {
        return CheckStateBox(cboNewState);
    } else if (field == txtNewZipCode) {
        refusal = CheckNewZipCode(txtNewZipCode->text());
        if (!refusal.refused())
            zipCodePassed();
    } else if (field == txtNewZipCode2) {
        refusal = CheckNewZipCode2(txtNewZipCode2->text());
    } else {
        refusal = checkOwnField(field);
    }
    if (!refusal.refused())
        return true;
    MsgBox(refusal.text, refusal.title, MsgButtons::Ok, MsgIcon::Exclamation);
    field->setFocus(Qt::OtherFocusReason);
    if (auto* line = qobject_cast<QLineEdit*>(field))
        line->selectAll();
    return false;
}

void AddressChangeScreen::accept() {
    if (!m_loaded)
        return;
    m_inLeave = true;
    // A field left by the pointer on another button has not been checked yet.
    if (!checkBeforeReason()) {
        m_inLeave = false;
        return;
    }
    if (txtReason->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Reason must be specified"), QStringLiteral("Enter Reason"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtReason->setFocus(Qt::OtherFocusReason);
        m_inLeave = false;
        return;
    }
    const QString billNo = m_billNo;
    QString error;
    const bool written = writeChange(&error);
    m_inLeave = false;
    if (!written) {
        MsgBox(QStringLiteral("The address change could not be saved: ") + error,
               QString::fromLatin1(ChangeAddressTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    Q_EMIT addressChanged(billNo);
    MsgBox(QStringLiteral("Address Changed."), QString::fromLatin1(ChangeAddressTitle),
           MsgButtons::Ok, MsgIcon::Information);
    // The bill form opens last, so that its print button keeps the focus.
    const bool print = chkPrintBill->isChecked();
    clearScreen();
    if (print)
        printBill(billNo);
}

void AddressChangeScreen::clearScreen() {
    m_clearing = true;
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        const QSignalBlocker block(field);
        field->clear();
    }
    cboState->setEditText(QString());
    cboNewState->setEditText(QString());
    clearOwnBoxes();
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

// ---------------------------------------------------------------------------------------------
// The real-estate screen
// ---------------------------------------------------------------------------------------------

frmREAddressChange::frmREAddressChange(QWidget* parent)
    : AddressChangeScreen(RealEstateChain, parent) {
    setObjectName(QStringLiteral("frmREAddressChange"));
    buildScreen();
    startScreen();
}

void frmREAddressChange::buildScreen() {
    buildSearch();
    txtMap3 = ShownField(this, QStringLiteral("txtMap3"), 8);
    txtMap4 = ShownField(this, QStringLiteral("txtMap4"), 6);
    txtMap5 = ShownField(this, QStringLiteral("txtMap5"), 9);

    fraAddress = new QGroupBox(QStringLiteral("Old Address"), this);
    fraAddress->setObjectName(QStringLiteral("fraAddress"));
    txtName = ShownField(fraAddress, QStringLiteral("txtName"), 50);
    txtCoOwner = ShownField(fraAddress, QStringLiteral("txtCoOwner"), 50);
    txtAddr1 = ShownField(fraAddress, QStringLiteral("txtAddr1"), 50);
    txtAddr2 = ShownField(fraAddress, QStringLiteral("txtAddr2"), 50);
    txtCity = ShownField(fraAddress, QStringLiteral("txtCity"), 35);
    cboState = stateBox(fraAddress, QStringLiteral("cboState"));
    cboState->setEnabled(false);
    txtZipCode = ShownField(fraAddress, QStringLiteral("txtZipCode"), 5);
    txtZipCode2 = ShownField(fraAddress, QStringLiteral("txtZipCode2"), 4);
    txtOldReason = ShownField(fraAddress, QStringLiteral("txtOldReason"), 50);
    txtADate = ShownField(fraAddress, QStringLiteral("txtADate"), 10);

    fraNewAddress = new QGroupBox(QStringLiteral("New Address"), this);
    fraNewAddress->setObjectName(QStringLiteral("fraNewAddress"));
    txtNewName = NamedField(fraNewAddress, QStringLiteral("txtNewName"), 50);
    txtNewCoOwner = NamedField(fraNewAddress, QStringLiteral("txtNewCoOwner"), 50);
    txtNewAddr1 = NamedField(fraNewAddress, QStringLiteral("txtNewAddr1"), 50);
    txtNewAddr2 = NamedField(fraNewAddress, QStringLiteral("txtNewAddr2"), 50);
    txtNewCity = NamedField(fraNewAddress, QStringLiteral("txtNewCity"), 35);
    cboNewState = stateBox(fraNewAddress, QStringLiteral("cboNewState"));
    txtNewZipCode = NamedField(fraNewAddress, QStringLiteral("txtNewZipCode"), 5);
    txtNewZipCode2 = NamedField(fraNewAddress, QStringLiteral("txtNewZipCode2"), 4);
    txtReason = NamedField(fraNewAddress, QStringLiteral("txtReason"), 50);
    buildChecks();

    auto fillFrame = [](QGroupBox* frame, QWidget* name, QWidget* coOwner, QWidget* addr1,
                        QWidget* addr2, QWidget* city, QWidget* state, QWidget* zip, QWidget* zip2,
                        QWidget* reason, const QString& reasonCaption) {
        auto* g = new QGridLayout(frame);
        int r = 0;
        auto row = [&](const char* caption, QWidget* field) {
            g->addWidget(new QLabel(QString::fromLatin1(caption), frame), r, 0);
            g->addWidget(field, r++, 1);
        };
        row("Name:", name);
        row("Co-Owner:", coOwner);
        row("Address:", addr1);
        row("", addr2);
        auto* cityRow = new QHBoxLayout;
        cityRow->addWidget(city, 3);
        cityRow->addWidget(state, 1);
        cityRow->addWidget(zip, 1);
        cityRow->addWidget(zip2, 1);
        g->addWidget(new QLabel(QStringLiteral("City/St/Zip:"), frame), r, 0);
        g->addLayout(cityRow, r++, 1);
        g->addWidget(new QLabel(reasonCaption, frame), r, 0);
        g->addWidget(reason, r++, 1);
        return g;
    };
    QGridLayout* oldGrid =
        fillFrame(fraAddress, txtName, txtCoOwner, txtAddr1, txtAddr2, txtCity, cboState,
                  txtZipCode, txtZipCode2, txtOldReason, QStringLiteral("Reason:"));
    oldGrid->addWidget(new QLabel(QStringLiteral("Change Date:"), fraAddress), 6, 0);
    oldGrid->addWidget(txtADate, 6, 1);
    QGridLayout* newGrid =
        fillFrame(fraNewAddress, txtNewName, txtNewCoOwner, txtNewAddr1, txtNewAddr2, txtNewCity,
                  cboNewState, txtNewZipCode, txtNewZipCode2, txtReason, QStringLiteral("Reason:"));
    newGrid->addWidget(chkPrintBill, 6, 1);
    newGrid->addWidget(chkReportable, 7, 1);
    newGrid->addWidget(chkUSPS, 8, 1);

    buildButtons();

    auto* search = new QGridLayout;
    search->addWidget(optBillNo, 0, 0);
    search->addWidget(txtBillNo, 0, 1);
    search->addWidget(optControl, 0, 2);
    search->addWidget(txtControl, 0, 3);
    search->addWidget(new QLabel(QStringLiteral("Map #:"), this), 1, 0);
    {
        auto* map = new QHBoxLayout;
        map->addWidget(txtMap3);
        map->addWidget(txtMap4);
        map->addWidget(txtMap5);
        search->addLayout(map, 1, 1, 1, 3);
    }
    layOutScreen(search);

    QWidget* order[] = {optBillNo,     txtBillNo,      optControl,  txtControl,   txtNewName,
                        txtNewCoOwner, txtNewAddr1,    txtNewAddr2, txtNewCity,   cboNewState,
                        txtNewZipCode, txtNewZipCode2, txtReason,   chkPrintBill, chkReportable,
                        chkUSPS,       cmdAccept};
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    for (QWidget* w : std::initializer_list<QWidget*>{txtBillNo, txtControl, txtNewName, txtNewCity,
                                                      cboNewState, txtNewZipCode, txtNewZipCode2})
        w->installEventFilter(this);
    cmdAccept->installEventFilter(this);

    UpperCaseTyping(cboNewState->lineEdit());
    connectCommon([] {
        ShowScreenNamed(QStringLiteral("frmREQueryTC"),
                        [] { return static_cast<QWidget*>(new frmREQueryTC); });
    });
}

void frmREAddressChange::showMaster(const QSqlRecord& master) {
    m_hfFlag = FlagField(master.value("HFFlag")).trimmed();
    txtMap3->setText(TextField(master.value("Map3")));
    txtMap4->setText(TextField(master.value("Map4")));
    txtMap5->setText(TextField(master.value("Map5")));
}

void frmREAddressChange::showAddress(const QSqlRecord& r) {
    auto text = [&r](const char* name) { return TextField(r.value(name)); };
    txtName->setText(text("Name"));
    txtCoOwner->setText(text("CoOwner"));
    txtAddr1->setText(text("Addr1"));
    txtAddr2->setText(text("Addr2"));
    txtCity->setText(text("City"));
    cboState->setEditText(text("State"));
    txtZipCode->setText(text("ZipCode"));
    txtZipCode2->setText(text("ZipCode2"));
}

void frmREAddressChange::copyToNewFrame() {
    txtNewName->setText(txtName->text());
    txtNewCoOwner->setText(txtCoOwner->text());
    txtNewAddr1->setText(txtAddr1->text());
    txtNewAddr2->setText(txtAddr2->text());
    txtNewCity->setText(txtCity->text());
    cboNewState->setEditText(cboState->currentText());
    txtNewZipCode->setText(txtZipCode->text());
    txtNewZipCode2->setText(txtZipCode2->text());
}

QWidget* frmREAddressChange::firstNewField() const {
    return txtNewName;
}

FieldRefusal frmREAddressChange::checkOwnField(QWidget* field) {
    if (field == txtNewName && txtNewName->text().trimmed().isEmpty())
        return {QStringLiteral("Name Must Be Specified"), QStringLiteral("Enter Name")};
    if (field == txtNewCity && txtNewCity->text().trimmed().isEmpty())
        return {QStringLiteral("City Must Be Specified"), QStringLiteral("Enter City")};
    return {};
}

bool frmREAddressChange::checkBeforeReason() {
    for (QWidget* field : std::initializer_list<QWidget*>{txtNewName, txtNewCity, cboNewState,
                                                          txtNewZipCode, txtNewZipCode2})
        if (!checkField(field))
            return false;
    return true;
}

bool frmREAddressChange::writeChange(QString* error) {
    AddressChangeRecord change;
    change.control = m_control;
    change.billNo = m_billNo;
    change.addrId = m_nextAddrId;
    change.name = txtNewName->text();
    change.coOwner = txtNewCoOwner->text();
    change.addr1 = txtNewAddr1->text();
    change.addr2 = txtNewAddr2->text();
    change.city = txtNewCity->text();
    change.state = cboNewState->currentText();
    change.zipCode = txtNewZipCode->text();
    change.zipCode2 = txtNewZipCode2->text();
    change.map3 = txtMap3->text();
    change.map4 = txtMap4->text();
    change.map5 = txtMap5->text();
    change.reason = txtReason->text();
    change.aDate = Clock::today();
    change.reportable = chkReportable->isChecked();
    change.usps = chkUSPS->isChecked();
    return RecordAddressChange(session().DbConnection, change, error);
}

void frmREAddressChange::printBill(const QString& billNo) {
    OpenREPrintTaxBillsFor(billNo, m_hfFlag == QLatin1String("A"));
}

void frmREAddressChange::clearAddress() {
    for (QLineEdit* field : {txtNewAddr1, txtNewAddr2, txtNewCity, txtNewZipCode, txtNewZipCode2})
        field->clear();
    cboNewState->setEditText(QString());
}
