#include "desk/realestate/address_change.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
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
    return InOneTransaction(db, error, [&] {
        QSqlQuery q(db);
        // The marker first: a change cut off here is found as incomplete and mended.
        q.prepare(QStringLiteral("UPDATE TCMaster SET CAddrFlag = 'A' WHERE BillNo = ?"));
        q.addBindValue(change.billNo);
        if (!q.exec())
            return QueryFailed(db, q, error);
        q.prepare(QStringLiteral(
            "INSERT INTO TCAddress (Control, BillNo, AddrID, Name, Map3, Map4, Map5, CoOwner, "
            "Addr1, Addr2, City, State, ZipCode, ZipCode2, ADate, Reason, Reportable, USPS) "
            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
        for (const QVariant& v : QVariantList{
                 change.control, change.billNo, change.addrId, change.name, change.map3,
                 change.map4, change.map5, change.coOwner, change.addr1, change.addr2, change.city,
                 change.state, change.zipCode, change.zipCode2, DateValue(change.aDate),
                 change.reason, change.reportable ? QStringLiteral("1") : QStringLiteral("0"),
                 change.usps ? QStringLiteral("1") : QStringLiteral("0")})
            // A text left unset is written as an empty text, never as Null.
            q.addBindValue(v.typeId() == QMetaType::QString && v.toString().isNull()
                               ? QVariant(QString::fromLatin1(""))
                               : v);
        if (!q.exec())
            return QueryFailed(db, q, error);
        return true;
    });
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

// ---------------------------------------------------------------------------------------------
// The screen
// ---------------------------------------------------------------------------------------------

frmREAddressChange::frmREAddressChange(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmREAddressChange"));
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

void frmREAddressChange::buildScreen() {
    optBillNo = new QRadioButton(QStringLiteral("&Bill #"), this);
    optBillNo->setObjectName(QStringLiteral("optBillNo"));
    optControl = new QRadioButton(QStringLiteral("C&ontrol #"), this);
    optControl->setObjectName(QStringLiteral("optControl"));
    txtBillNo = NamedField(this, QStringLiteral("txtBillNo"), 5);
    txtControl = NamedField(this, QStringLiteral("txtControl"), 6);
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
    chkPrintBill = new QCheckBox(QStringLiteral("Print A New Tax Bill"), fraNewAddress);
    chkPrintBill->setObjectName(QStringLiteral("chkPrintBill"));
    chkReportable = new QCheckBox(QStringLiteral("Reportable to Assessment"), fraNewAddress);
    chkReportable->setObjectName(QStringLiteral("chkReportable"));
    chkUSPS = new QCheckBox(QStringLiteral("USPS Address Change"), fraNewAddress);
    chkUSPS->setObjectName(QStringLiteral("chkUSPS"));

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

    cmdAccept = NamedButton(this, QStringLiteral("cmdAccept"), QStringLiteral("Accept Data"));
    cmdClearAddress = NamedButton(this, QStringLiteral("cmdClearAddress"),
                                  QStringLiteral("Clear A&ddress"), false);
    cmdClearScreen =
        NamedButton(this, QStringLiteral("cmdClearScreen"), QStringLiteral("Clea&r Screen"), false);
    CmdQuery = NamedButton(this, QStringLiteral("CmdQuery"), QStringLiteral("&Query"), false);
    cmdPrintScreen =
        NamedButton(this, QStringLiteral("cmdPrintScreen"), QStringLiteral("&Print Screen"), false);
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

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
    for (QLineEdit* field : {txtBillNo, txtControl}) {
        connect(field, &QLineEdit::textChanged, this, [field](const QString& text) {
            // A "*" alone is the scanner's call; it never stays in the field.
            if (text == QLatin1String("*")) {
                const QSignalBlocker block(field);
                field->clear();
            }
        });
    }
    connect(optBillNo, &QRadioButton::clicked, this, [this] { chooseSearch(true); });
    connect(optControl, &QRadioButton::clicked, this, [this] { chooseSearch(false); });
    connect(chkUSPS, &QCheckBox::clicked, this, [this](bool ticked) { uspsClicked(ticked); });
    connect(cmdAccept, &QPushButton::clicked, this, [this] { accept(); });
    connect(cmdClearAddress, &QPushButton::clicked, this, [this] { clearAddress(); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(CmdQuery, &QPushButton::clicked, this, [] {
        ShowScreenNamed(QStringLiteral("frmREQueryTC"),
                        [] { return static_cast<QWidget*>(new frmREQueryTC); });
    });
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

bool frmREAddressChange::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease)
        return SwallowRefusedRelease(watched) || QWidget::eventFilter(watched, event);
    if (!IsFieldLeave(event) || m_inLeave || m_clearing)
        return QWidget::eventFilter(watched, event);
    QPointer<QWidget> target = QApplication::focusWidget();
    QPointer<frmREAddressChange> self(this);
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

void frmREAddressChange::chooseSearch(bool byBill) {
    txtBillNo->setEnabled(byBill);
    txtControl->setEnabled(!byBill);
    QLineEdit* field = byBill ? txtBillNo : txtControl;
    if (!m_loaded)
        field->setFocus(Qt::OtherFocusReason);
}

void frmREAddressChange::openFromQuery(const QString& billNo) {
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

void frmREAddressChange::searchLeft(bool byBill) {
    QLineEdit* field = byBill ? txtBillNo : txtControl;
    if (field->text().trimmed().isEmpty() || !field->isEnabled())
        return;
    if (byBill)
        loadBill(QStringLiteral("BillNo"), PadBillNo(field->text()), true);
    else
        loadBill(QStringLiteral("Control"), field->text(), false);
}

void frmREAddressChange::loadBill(const QString& column, const QString& key, bool byBill) {
    QSqlDatabase db = session().DbConnection;
    QSqlQuery q(db);
    q.prepare(
        QStringLiteral("SELECT * FROM TCMaster WHERE %1 = ? ORDER BY rowid LIMIT 1").arg(column));
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

    // 1. The master as billed.
    m_control = text(master, "Control");
    m_billNo = text(master, "BillNo");
    m_nextAddrId = 1;
    {
        const QSignalBlocker b1(txtBillNo);
        const QSignalBlocker b2(txtControl);
        txtBillNo->setText(m_billNo);
        txtControl->setText(m_control);
    }
    txtMap3->setText(text(master, "Map3"));
    txtMap4->setText(text(master, "Map4"));
    txtMap5->setText(text(master, "Map5"));
    auto showAddress = [&](const QSqlRecord& r) {
        txtName->setText(text(r, "Name"));
        txtCoOwner->setText(text(r, "CoOwner"));
        txtAddr1->setText(text(r, "Addr1"));
        txtAddr2->setText(text(r, "Addr2"));
        txtCity->setText(text(r, "City"));
        cboState->setEditText(text(r, "State"));
        txtZipCode->setText(text(r, "ZipCode"));
        txtZipCode2->setText(text(r, "ZipCode2"));
    };
    showAddress(master);
    txtOldReason->clear();
    txtADate->clear();

    // 2. The chain of changes, each one told.
    if (FlagField(master.value("CAddrFlag")).trimmed() == QLatin1String("A")) {
        MsgBox(QStringLiteral("Original Bill Before Address Change"),
               QString::fromLatin1(AddressChangeTitle), MsgButtons::Ok, MsgIcon::Information);
        q.prepare(
            QStringLiteral("SELECT * FROM TCAddress WHERE BillNo = ? ORDER BY BillNo, AddrID"));
        q.addBindValue(m_billNo);
        bool any = false;
        if (q.exec()) {
            while (q.next()) {
                any = true;
                const QSqlRecord change = q.record();
                showAddress(change);
                txtOldReason->setText(text(change, "Reason"));
                txtADate->setText(FormatDate(DateField(change.value("ADate"))));
                m_nextAddrId = change.value("AddrID").toInt() + 1;
                MsgBox(QStringLiteral("Address Change Encountered"),
                       QString::fromLatin1(AddressChangeTitle), MsgButtons::Ok,
                       MsgIcon::Information);
            }
        }
        if (!any) {
            MsgBox(QString::fromLatin1(IncompleteAddressText),
                   QString::fromLatin1(IntegrityErrorTitle), MsgButtons::Ok, MsgIcon::Critical);
            CloseScreen(this);
            return;
        }
    }

    // 3. The new frame starts as a copy of the old one.
    txtNewName->setText(txtName->text());
    txtNewCoOwner->setText(txtCoOwner->text());
    txtNewAddr1->setText(txtAddr1->text());
    txtNewAddr2->setText(txtAddr2->text());
    txtNewCity->setText(txtCity->text());
    cboNewState->setEditText(cboState->currentText());
    txtNewZipCode->setText(txtZipCode->text());
    txtNewZipCode2->setText(txtZipCode2->text());
    txtReason->clear();
    m_loaded = true;
    txtBillNo->setEnabled(false);
    txtControl->setEnabled(false);
    fraNewAddress->setEnabled(true);
    // A new bill is printed from the bill printing screen, which takes no bill from here yet.
    chkPrintBill->setEnabled(false);
    chkReportable->setEnabled(true);
    chkUSPS->setEnabled(true);
    cmdAccept->setEnabled(true);
    CmdQuery->setEnabled(true);
    txtNewName->setFocus(Qt::OtherFocusReason);
}

bool frmREAddressChange::checkField(QWidget* field) {
    FieldRefusal refusal;
    if (field == txtNewName) {
        if (txtNewName->text().trimmed().isEmpty())
            refusal = {QStringLiteral("Name Must Be Specified"), QStringLiteral("Enter Name")};
    } else if (field == txtNewCity) {
        if (txtNewCity->text().trimmed().isEmpty())
            refusal = {QStringLiteral("City Must Be Specified"), QStringLiteral("Enter City")};
    } else if (field == cboNewState) {
        if (cboNewState->findText(cboNewState->currentText(),
                                  Qt::MatchExactly | Qt::MatchCaseSensitive) < 0) {
            MsgBox(QStringLiteral("Invalid State"), QStringLiteral("Enter State"), MsgButtons::Ok,
                   MsgIcon::Exclamation);
            cboNewState->setEditText(QString());
            cboNewState->setFocus(Qt::OtherFocusReason);
            return false;
        }
    } else if (field == txtNewZipCode) {
        refusal = CheckNewZipCode(txtNewZipCode->text());
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

bool frmREAddressChange::checkAll() {
    for (QWidget* field : std::initializer_list<QWidget*>{txtNewName, txtNewCity, cboNewState,
                                                          txtNewZipCode, txtNewZipCode2})
        if (!checkField(field))
            return false;
    return true;
}

void frmREAddressChange::uspsClicked(bool ticked) {
    if (ticked) {
        chkReportable->setChecked(true);
        chkReportable->setEnabled(false);
        txtReason->setText(txtReason->text() + QString::fromLatin1(UspsReason));
    } else {
        chkReportable->setChecked(false);
        chkReportable->setEnabled(true);
    }
}

void frmREAddressChange::clearAddress() {
    for (QLineEdit* field : {txtNewAddr1, txtNewAddr2, txtNewCity, txtNewZipCode, txtNewZipCode2})
        field->clear();
    cboNewState->setEditText(QString());
}

void frmREAddressChange::accept() {
    if (!m_loaded)
        return;
    m_inLeave = true;
    // A field left by the pointer on another button has not been checked yet.
    if (!checkAll()) {
        m_inLeave = false;
        return;
    }
    // 1.
    if (txtReason->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Reason must be specified"), QStringLiteral("Enter Reason"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtReason->setFocus(Qt::OtherFocusReason);
        m_inLeave = false;
        return;
    }
    // 2. and 3.
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
    QString error;
    const bool written = RecordAddressChange(session().DbConnection, change, &error);
    m_inLeave = false;
    if (!written) {
        MsgBox(QStringLiteral("The address change could not be saved: ") + error,
               QString::fromLatin1(ChangeAddressTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    Q_EMIT addressChanged(change.billNo);
    // 4.
    MsgBox(QStringLiteral("Address Changed."), QString::fromLatin1(ChangeAddressTitle),
           MsgButtons::Ok, MsgIcon::Information);
    // 6.
    clearScreen();
}

void frmREAddressChange::clearScreen() {
    m_clearing = true;
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        const QSignalBlocker block(field);
        field->clear();
    }
    cboState->setEditText(QString());
    cboNewState->setEditText(QString());
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
