#include "desk/realestate/adjust_common.h"

#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/receive_payment.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSqlQuery>
#include <QStringList>
#include <QVBoxLayout>

namespace {

QString title() {
    return QString::fromLatin1(AdjustTaxBillTitle);
}

} // namespace

bool ReplayAdjustHistory(const BillNow& bill, const BillHistory& history,
                         const std::function<void(const QSqlRecord&)>& showImage,
                         const std::function<void(const QSqlRecord&)>& showAddress,
                         int* nextAdjNo) {
    const bool adjusted = FlagField(history.master.value("AdjFlag")) == QLatin1String("A");
    const bool addressed = FlagField(history.master.value("CAddrFlag")) == QLatin1String("A");
    showImage(history.master);
    if (adjusted)
        MsgBox(QStringLiteral("Original Bill Before Adjustment"), title());
    else if (addressed)
        MsgBox(QStringLiteral("Original Bill Before Address Change"), title());
    if (bill.status == BillNow::Status::IncompleteAdjustment) {
        CheckBillIntegrity(bill);
        return false;
    }
    for (const QSqlRecord& row : history.adjustments) {
        showImage(row);
        *nextAdjNo = row.value("AdjNo").toInt() + 1;
        MsgBox(QStringLiteral("Adjustment Encountered"), title());
    }
    if (bill.status == BillNow::Status::IncompleteAddress) {
        CheckBillIntegrity(bill);
        return false;
    }
    for (const QSqlRecord& row : history.addresses) {
        showAddress(row);
        MsgBox(QStringLiteral("Address Change Encountered"), title());
    }
    return true;
}

bool RefuseSettledBill(const std::array<bool, 3>& visible, const std::array<bool, 3>& settled,
                       const std::array<QString, 3>& payFlags) {
    bool allSettled = true;
    bool allExonerated = true;
    for (std::size_t b = 0; b < 3; ++b) {
        allSettled = allSettled && settled[b];
        if (visible[b] && payFlags[b].trimmed() != QLatin1String("X"))
            allExonerated = false;
    }
    if (!allSettled)
        return false;
    if (allExonerated)
        MsgBox(QStringLiteral("This tax bill has ALREADY been exonerated"), title());
    else
        MsgBox(QStringLiteral("This account has already been paid in full. You cannot do an "
                              "adjustment on this account."),
               QStringLiteral("Adjust A Tax Bill"));
    return true;
}

bool RefuseNotExonerated(const std::array<bool, 3>& visible,
                         const std::array<QString, 3>& payFlags) {
    for (std::size_t b = 0; b < 3; ++b)
        if (visible[b] && payFlags[b].trimmed() != QLatin1String("X")) {
            MsgBox(QStringLiteral(
                       "You CANNOT unexonerate this tax bill. This is NOT an exonerated tax bill."),
                   QStringLiteral("Unexonerate Tax Bill"));
            return true;
        }
    return false;
}

bool AskExonerate() {
    if (MsgBox(QStringLiteral("Do you want to exonerate this tax bill?"),
               QStringLiteral("Exonerate Tax Bill"), MsgButtons::YesNo,
               MsgIcon::Question) == MsgAnswer::Yes)
        return true;
    MsgBox(QStringLiteral("Tax bill NOT exonerated"), QStringLiteral("Exonerate Tax Bill"));
    return false;
}

bool AskUnexonerate() {
    if (MsgBox(QStringLiteral(
                   "This tax bill has been exonerated. Do you want to unexonerate this tax bill?"),
               QStringLiteral("Unexonerate Tax Bill"), MsgButtons::YesNo,
               MsgIcon::Question) == MsgAnswer::Yes)
        return true;
    MsgBox(QStringLiteral("Tax bill NOT unexonerated"), QStringLiteral("Unexonerate Tax Bill"));
    return false;
}

bool RefuseExistingControl(QSqlDatabase db, const char* masterTable, const QString& control) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT Control FROM %1 WHERE Control = ?")
                  .arg(QString::fromLatin1(masterTable)));
    q.addBindValue(control);
    if (!(q.exec() && q.next()))
        return false;
    MsgBox(QStringLiteral("Control number already exists in the file. Please enter a different "
                          "control number."),
           QStringLiteral("Enter Control Number"));
    return true;
}

bool ConfirmZeroTotal(Money total, const QString& abortedText) {
    if (!total.isZero())
        return true;
    if (MsgBox(QStringLiteral(
                   "Total Value is ZERO. Do you still want to add this bill with a ZERO value?."),
               QStringLiteral("Add A Tax Bill"), MsgButtons::YesNo,
               MsgIcon::Question) == MsgAnswer::Yes)
        return true;
    MsgBox(abortedText, QStringLiteral("Add A Tax Bill"), MsgButtons::Ok, MsgIcon::Critical);
    return false;
}

void RefuseField(QLineEdit* field) {
    field->setFocus(Qt::OtherFocusReason);
    field->selectAll();
}

bool ZipCodeLookup(QLineEdit* zipCode, QComboBox* city, QComboBox* state) {
    const QString enterZip = QStringLiteral("Enter Zip Code");
    const QString zip = zipCode->text().trimmed();
    auto refuse = [&](const char* text, const QString& boxTitle) {
        MsgBox(QString::fromLatin1(text), boxTitle);
        RefuseField(zipCode);
        return false;
    };
    if (zip.isEmpty())
        return refuse("Zip Code Must Be Specified", enterZip);
    bool numeric = false;
    zip.toDouble(&numeric);
    if (!numeric)
        return refuse("Zip Code Must Be Numeric", enterZip);
    if (zip.size() < 5)
        return refuse("Invalid Zip Code", enterZip);
    for (QChar c : zip.left(5))
        if (!c.isDigit() || c.unicode() > 127)
            return refuse("Invalid Zip Code", enterZip);
    QSqlQuery q(session().DbConnection);
    q.prepare(QStringLiteral("SELECT City, State FROM tbl_ZipCodes WHERE ZipCode = ?"));
    q.addBindValue(zip);
    QStringList cities;
    QString stateOfCode;
    if (q.exec())
        while (q.next()) {
            cities << TextField(q.value(0)).toUpper();
            stateOfCode = TextField(q.value(1));
        }
    if (cities.isEmpty()) {
        zipCode->clear();
        return refuse("Invalid Zipcode", QStringLiteral("Enter Zipcode"));
    }
    city->clear();
    city->addItems(cities);
    if (cities.size() == 1) {
        city->setCurrentIndex(0);
        state->setEditText(stateOfCode);
    } else {
        city->setCurrentIndex(-1);
        city->setEditText(QString());
    }
    return true;
}

namespace {

constexpr int NoAdjustAction = -1;
constexpr int AddBillAction = 1;

void actionMissing() {
    MsgBox(QStringLiteral("Action must be selected"), QStringLiteral("Select Action"));
}

} // namespace

void AdjustActionChosen(const AdjustActionFlow& flow, int action) {
    if (action == NoAdjustAction) {
        actionMissing();
        return;
    }
    *flow.action = action;
    if (action == AddBillAction) {
        flow.startAddition();
        return;
    }
    flow.txtBillNo->setEnabled(true);
    flow.txtBillNo->setFocus(Qt::OtherFocusReason);
    if (!flow.txtBillNo->text().trimmed().isEmpty()) {
        *flow.inLeave = true;
        AdjustBillNoLeft(flow);
        *flow.inLeave = false;
    }
}

void SetAdjustAction(const AdjustActionFlow& flow, int action) {
    if (!flow.cboAction->isEnabled())
        return;
    {
        const QSignalBlocker block(flow.cboAction);
        flow.cboAction->setCurrentIndex(action <= AddBillAction ? action : -1);
    }
    AdjustActionChosen(flow, action);
}

void AdjustBillNoLeft(const AdjustActionFlow& flow) {
    if (*flow.loaded || *flow.action == AddBillAction || flow.txtBillNo->text().trimmed().isEmpty())
        return;
    if (*flow.action == NoAdjustAction) {
        actionMissing();
        flow.cboAction->setFocus(Qt::OtherFocusReason);
        return;
    }
    flow.loadBill();
}

void ShowAdjustPaymentInfo(const QString& text) {
    session().PaymentInfoText = text;
    if (text.isEmpty())
        MsgBox(QString::fromLatin1(NoPaymentsText), QString::fromLatin1(NoPaymentsTitle),
               MsgButtons::Ok, MsgIcon::Information);
    else
        MsgBox(text, QString::fromLatin1(PaymentInfoTitle));
}

AdjustTaxBillScreen::AdjustTaxBillScreen(Duplicate duplicate, QWidget* parent)
    : QWidget(parent), m_duplicate(duplicate) {}

void AdjustTaxBillScreen::openFromQuery(const QString& billNo) {
    clearScreen();
    handedOver();
    const QSignalBlocker block(txtBillNo);
    txtBillNo->setText(billNo);
    cboAction->setFocus(Qt::OtherFocusReason);
}

AdjustActionFlow AdjustTaxBillScreen::actionFlow() {
    return {cboAction,
            txtBillNo,
            &m_action,
            &m_loaded,
            &m_inLeave,
            [this] { startAddition(); },
            [this] { loadBill(); }};
}

void AdjustTaxBillScreen::setAction(int action) {
    SetAdjustAction(actionFlow(), action);
}

void AdjustTaxBillScreen::enterBillNo(const QString& billNo) {
    clearScreen();
    {
        const QSignalBlocker block(txtBillNo);
        txtBillNo->setText(billNo);
    }
    // Choosing the action loads the number that stands in the field.
    setAction(AdjustBill);
}

void AdjustTaxBillScreen::actionChosen(int action) {
    AdjustActionChosen(actionFlow(), action);
}

void AdjustTaxBillScreen::billNoLeft() {
    AdjustBillNoLeft(actionFlow());
}

void AdjustTaxBillScreen::readDistrict(QSqlRecord* countyRow, QSqlRecord* municipalRow) {
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        m_district = TextField(q.value(0));
        m_ward = TextField(q.value(1));
    }
    if (q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = '000'")) && q.next())
        *countyRow = q.record();
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(m_district + m_ward);
    if (q.exec() && q.next())
        *municipalRow = q.record();
    m_taxYear = TextField(countyRow->value("TaxYear")).trimmed();
    if (m_taxYear.isEmpty())
        m_taxYear = session().TaxYear;
}

void AdjustTaxBillScreen::loadBill() {
    const QString title = QString::fromLatin1(AdjustTaxBillTitle);
    const QString billNo = PadBillNo(txtBillNo->text());
    {
        const QSignalBlocker block(txtBillNo);
        txtBillNo->setText(billNo);
    }
    BillHistory history;
    const BillNow bill = ReadBillAsItStands(session().DbConnection, m_duplicate, billNo, &history);
    if (bill.status == BillNow::Status::NotFound || bill.status == BillNow::Status::Error) {
        MsgBox(QStringLiteral("Bill Number Not On File"), title);
        clearScreen();
        return;
    }

    m_billNo = billNo;
    m_flags = BillPayFlagsFromRecord(history.master);
    if (!ReplayAdjustHistory(
            bill, history, [this](const QSqlRecord& row) { showImage(row); },
            [this](const QSqlRecord& row) { showAddress(row); }, &m_nextAdjNo)) {
        CloseScreen(this);
        return;
    }

    session().PaymentInfoText = paymentInfoText(billNo);
    if (!session().PaymentInfoText.isEmpty())
        MsgBox(session().PaymentInfoText, QString::fromLatin1(PaymentInfoTitle));

    const std::array<QString, 3> flags{m_flags.cPayFlag, m_flags.tPayFlag, m_flags.sPayFlag};
    if (m_action != Unexonerate) {
        if (RefuseSettledBill(m_bodyVisible, {bodySettled(0), bodySettled(1), bodySettled(2)},
                              flags)) {
            clearScreen();
            return;
        }
    } else if (RefuseNotExonerated(m_bodyVisible, flags)) {
        clearScreen();
        return;
    }

    m_loaded = true;
    cboAction->setEnabled(false);
    txtBillNo->setEnabled(false);
    cmdPaymentInfo->setEnabled(true);
    cmdAccept->setEnabled(true);
    billLoaded();
}

void AdjustTaxBillScreen::showPaymentInfo() {
    ShowAdjustPaymentInfo(m_loaded ? paymentInfoText(m_billNo) : QString());
}

void AdjustTaxBillScreen::buildFoot() {
    txtReason = NamedField(this, QStringLiteral("txtReason"), 30);
    auto check = [this](const char* name, const char* caption) {
        auto* box = new QCheckBox(QString::fromLatin1(caption), this);
        box->setObjectName(QString::fromLatin1(name));
        return box;
    };
    chkPrintBill = check("chkPrintBill", "Print A New Tax Bill");
    chkReportable = check("chkReportable", "Reportable");
    chkUSPS = check("chkUSPS", "USPS");
    cmdAccept = NamedButton(this, QStringLiteral("cmdAccept"), QStringLiteral("&ACCEPT"));
    cmdPaymentInfo =
        NamedButton(this, QStringLiteral("cmdPaymentInfo"), QStringLiteral("Payment &Info"), false);
    CmdQuery = NamedButton(this, QStringLiteral("CmdQuery"), QStringLiteral("&Query"), false);
    cmdPrintScreen =
        NamedButton(this, QStringLiteral("cmdPrintScreen"), QStringLiteral("&Print Screen"), false);
    cmdClearScreen =
        NamedButton(this, QStringLiteral("cmdClearScreen"), QStringLiteral("C&lear Screen"), false);
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);
}

void AdjustTaxBillScreen::layOutScreen(QLayout* top, QWidget* billFrame, QWidget* adjustFor,
                                       QWidget* amounts) {
    auto* reasonRow = new QHBoxLayout;
    reasonRow->addWidget(new QLabel(QStringLiteral("Reason:"), this));
    reasonRow->addWidget(txtReason, 1);
    reasonRow->addWidget(chkPrintBill);
    reasonRow->addWidget(chkReportable);
    reasonRow->addWidget(chkUSPS);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {cmdAccept, cmdPaymentInfo, CmdQuery, cmdPrintScreen, cmdClearScreen})
        buttons->addWidget(b);
    buttons->addStretch();
    buttons->addWidget(cmdExit);
    auto* middle = new QGridLayout;
    middle->addWidget(billFrame, 0, 0, 2, 1);
    middle->addWidget(adjustFor, 0, 1);
    middle->addWidget(amounts, 1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(middle);
    layout->addLayout(reasonRow);
    layout->addLayout(buttons);
}

void AdjustTaxBillScreen::clearScreen() {
    m_clearing = true;
    m_loaded = false;
    m_action = NoAction;
    m_billNo.clear();
    m_flags = BillPayFlags();
    m_nextAdjNo = 1;
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        // The combo boxes' own editors go with their boxes.
        if (qobject_cast<QComboBox*>(field->parentWidget()))
            continue;
        const QSignalBlocker block(field);
        field->clear();
        field->setEnabled(false);
    }
    clearOwn();
    for (QCheckBox* box : findChildren<QCheckBox*>()) {
        box->setChecked(false);
        box->setEnabled(false);
    }
    const auto boxes = bodyBoxes();
    for (int b = 0; b < 3; ++b)
        boxes[std::size_t(b)]->setChecked(m_bodyVisible[std::size_t(b)]);
    for (QPushButton* b : {cmdAccept, cmdPaymentInfo})
        b->setEnabled(false);
    cboAction->setEnabled(true);
    cboAction->setCurrentIndex(-1);
    txtBillNo->setEnabled(true);
    cboAction->setFocus(Qt::OtherFocusReason);
    m_clearing = false;
}

void AdjustTaxBillScreen::clearBoxes(std::initializer_list<QComboBox*> boxes) {
    for (QComboBox* combo : boxes) {
        combo->setCurrentIndex(-1);
        combo->setEditText(QString());
        combo->setEnabled(false);
    }
}

void AdjustTaxBillScreen::connectCommon(const std::function<void()>& openQuery) {
    for (QAbstractButton* b : findChildren<QAbstractButton*>())
        b->installEventFilter(this);
    connect(cboAction, &QComboBox::activated, this, [this](int index) { actionChosen(index); });
    connect(txtBillNo, &QLineEdit::textChanged, this, [this](const QString& text) {
        // A "*" never stays; typed into the empty field it is the scanner's call for the scan
        // screen.
        if (text.contains(QLatin1Char('*'))) {
            {
                const QSignalBlocker block(txtBillNo);
                txtBillNo->setText(QString(text).remove(QLatin1Char('*')));
            }
            if (text == QLatin1String("*") && txtBillNo->hasFocus())
                OpenScanScreen(this);
            return;
        }
        // The fifth character typed loads the bill, as leaving the field does.
        if (text.size() == 5 && txtBillNo->hasFocus() && !m_inLeave && !m_loaded) {
            m_inLeave = true;
            billNoLeft();
            m_inLeave = false;
        }
    });
    connect(cmdAccept, &QPushButton::clicked, this, [this] { accept(); });
    connect(cmdPaymentInfo, &QPushButton::clicked, this, [this] { showPaymentInfo(); });
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
    connect(CmdQuery, &QPushButton::clicked, this, openQuery);
}

bool AdjustTaxBillScreen::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease)
        return SwallowRefusedRelease(watched) || QWidget::eventFilter(watched, event);
    if (!IsFieldLeave(event) || m_clearing || m_inLeave ||
        session().QueryOpenedScreen.contains(objectName()))
        return QWidget::eventFilter(watched, event);
    auto* field = qobject_cast<QLineEdit*>(watched);
    if (!field || !field->isEnabled())
        return QWidget::eventFilter(watched, event);
    QPointer<QWidget> target = QApplication::focusWidget();
    // Only a move to another widget of this screen leaves the field. A press on a button that
    // takes no focus (Exit, Clear Screen, Query, Print Screen, Payment Info) passes the focus
    // through the screen's own window and back, and a screen closing gives it to the main
    // window: neither checks the field or computes.
    if (!target || target == field || target->isAncestorOf(field) || !isAncestorOf(target))
        return QWidget::eventFilter(watched, event);
    m_inLeave = true;
    bool refused = false;
    if (field == txtBillNo)
        billNoLeft();
    else
        refused = fieldLeft(field, target);
    m_inLeave = false;
    if (refused)
        MarkRefusedClick(this, target, event);
    return FieldTookFocusBack(watched) || QWidget::eventFilter(watched, event);
}
