#include "desk/realestate/void_receipt.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/receipt_writes.h"

#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>

namespace {

const char* const VoidTitle = "Void Receipt";
const char16_t* const MoneyPattern = u"$###,###,##0.00";
// The void screen's own wording of a half-finished adjustment.
const char* const IncompleteAdjustmentOnVoid =
    "The system has detected an incomplete adjjustment change transaction. Please got to the "
    "UTILITIES menu and run the VERIFY DATA INTEGRITY option to correct this issue.";

} // namespace

VoidReceiptScreen::VoidReceiptScreen(const VoidKind& kind, QWidget* parent)
    : QWidget(parent), m_kind(kind) {
    setObjectName(kind.objectName);
    setWindowTitle(kind.windowTitle);
    buildScreen();
    loadNames();
    clearScreen();
    session().LastScreenName = objectName();
}

void VoidReceiptScreen::buildScreen() {
    const bool hasMap = m_kind.tables->hasMap;
    txtRecnum = NamedField(this, QStringLiteral("txtRecnum"), 12);
    txtVDate = NamedField(this, QStringLiteral("txtVDate"), 10);
    txtReason = NamedField(this, QStringLiteral("txtReason"), 50);
    txtControl = ShownField(this, QStringLiteral("txtControl"), 6);
    txtBillNo = ShownField(this, QStringLiteral("txtBillNo"), 5);
    txtAdjNo = ShownField(this, QStringLiteral("txtAdjNo"), 2);
    if (hasMap) {
        txtMap3 = ShownField(this, QStringLiteral("txtMap3"), 8);
        txtMap4 = ShownField(this, QStringLiteral("txtMap4"), 6);
        txtMap5 = ShownField(this, QStringLiteral("txtMap5"), 9);
    }
    txtName = ShownField(this, QStringLiteral("txtName"), 50);
    txtPayor = ShownField(this, QStringLiteral("txtPayor"), 50);
    txtAmount = ShownField(this, QStringLiteral("txtAmount"));
    lblTendered = NamedLabel(this, QStringLiteral("lblTendered"), QString());
    lblTendered->setStyleSheet(QStringLiteral("color: #b00000; font-weight: bold;"));

    // The lines, a column per body with its total under it.
    auto* fraLines = new QGroupBox(QStringLiteral("Amounts"), this);
    fraLines->setObjectName(QStringLiteral("fraLines"));
    txtCTotal = ShownField(fraLines, QStringLiteral("txtCTotal"));
    txtTTotal = ShownField(fraLines, QStringLiteral("txtTTotal"));
    txtSTotal = ShownField(fraLines, QStringLiteral("txtSTotal"));
    txtTotal = ShownField(fraLines, QStringLiteral("txtTotal"));
    {
        auto* g = new QGridLayout(fraLines);
        int rows[3] = {0, 0, 0};
        for (const VoidLine& line : m_kind.lines) {
            const int column = int(line.body);
            QLineEdit* field = ShownField(fraLines, line.field);
            QLabel* label =
                NamedLabel(fraLines, QStringLiteral("lbl") + line.field.mid(3), line.caption);
            m_lineFields.push_back(field);
            m_lineLabels.push_back(label);
            g->addWidget(label, rows[column], column * 2);
            g->addWidget(field, rows[column], column * 2 + 1);
            ++rows[column];
        }
        const int totalRow = std::max({rows[0], rows[1], rows[2]});
        const QString totalCaptions[3] = {QStringLiteral("County Total:"), QStringLiteral("Total:"),
                                          QStringLiteral("School Total:")};
        QLineEdit* totals[3] = {txtCTotal, txtTTotal, txtSTotal};
        for (int b = 0; b < 3; ++b) {
            g->addWidget(new QLabel(totalCaptions[b], fraLines), totalRow, b * 2);
            g->addWidget(totals[b], totalRow, b * 2 + 1);
        }
        g->addWidget(new QLabel(QStringLiteral("Total:"), fraLines), totalRow + 1, 4);
        g->addWidget(txtTotal, totalRow + 1, 5);
    }

    lblCDisbNum =
        NamedLabel(this, QStringLiteral("lblCDisbNum"), QStringLiteral("County Distribution #:"));
    lblTDisbNum =
        NamedLabel(this, QStringLiteral("lblTDisbNum"), QStringLiteral("Township Distribution #:"));
    lblSDisbNum =
        NamedLabel(this, QStringLiteral("lblSDisbNum"), QStringLiteral("School Distribution #:"));
    txtCDisbNum = ShownField(this, QStringLiteral("txtCDisbNum"), 6);
    txtTDisbNum = ShownField(this, QStringLiteral("txtTDisbNum"), 6);
    txtSDisbNum = ShownField(this, QStringLiteral("txtSDisbNum"), 6);

    cmdAccept = new QPushButton(QStringLiteral("&Accept"), this);
    cmdAccept->setObjectName(QStringLiteral("cmdAccept"));
    cmdClearScreen = new QPushButton(QStringLiteral("C&lear Screen"), this);
    cmdClearScreen->setObjectName(QStringLiteral("cmdClearScreen"));
    cmdClearScreen->setFocusPolicy(Qt::NoFocus);
    cmdExit = new QPushButton(QStringLiteral("E&xit"), this);
    cmdExit->setObjectName(QStringLiteral("cmdExit"));
    cmdExit->setFocusPolicy(Qt::NoFocus);

    auto* form = new QGridLayout;
    int row = 0;
    auto add = [&](const QString& caption, QWidget* field, int column = 0) {
        form->addWidget(new QLabel(caption, this), row, column);
        form->addWidget(field, row, column + 1);
    };
    add(QStringLiteral("Receipt #:"), txtRecnum);
    add(QStringLiteral("Date Voided"), txtVDate, 2);
    ++row;
    form->addWidget(new QLabel(QStringLiteral("Reason:"), this), row, 0);
    form->addWidget(txtReason, row, 1, 1, 3);
    ++row;
    add(QStringLiteral("Control #:"), txtControl);
    add(QStringLiteral("Bill #:"), txtBillNo, 2);
    ++row;
    add(QStringLiteral("Adj #:"), txtAdjNo);
    if (hasMap) {
        auto* map = new QHBoxLayout;
        map->addWidget(txtMap3);
        map->addWidget(txtMap4);
        map->addWidget(txtMap5);
        form->addWidget(new QLabel(QStringLiteral("Map #:"), this), row, 2);
        form->addLayout(map, row, 3);
    }
    ++row;
    add(QStringLiteral("Name:"), txtName);
    add(QStringLiteral("Payor:"), txtPayor, 2);
    ++row;
    add(QStringLiteral("Amount:"), txtAmount);
    form->addWidget(lblTendered, row, 2, 1, 2);
    ++row;
    form->addWidget(lblCDisbNum, row, 0);
    form->addWidget(txtCDisbNum, row, 1);
    form->addWidget(lblTDisbNum, row, 2);
    form->addWidget(txtTDisbNum, row, 3);
    ++row;
    form->addWidget(lblSDisbNum, row, 0);
    form->addWidget(txtSDisbNum, row, 1);
    form->setColumnStretch(1, 1);
    form->setColumnStretch(3, 1);
    txtRecnum->setMinimumWidth(120);
    txtVDate->setMinimumWidth(100);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdAccept);
    buttons->addWidget(cmdClearScreen);
    buttons->addStretch();
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(fraLines);
    layout->addLayout(buttons);

    setTabOrder(txtRecnum, txtVDate);
    setTabOrder(txtVDate, txtReason);
    setTabOrder(txtReason, cmdAccept);
    for (QWidget* w : {txtRecnum, txtVDate})
        w->installEventFilter(this);
    cmdAccept->installEventFilter(this);

    connect(cmdAccept, &QPushButton::clicked, this, [this] { accept(); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void VoidReceiptScreen::loadNames() {
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        m_district = TextField(q.value(0));
        m_ward = TextField(q.value(1));
    }
    if (q.exec(QStringLiteral("SELECT TaxYear FROM Millfile WHERE District || Ward = '000'")) &&
        q.next())
        m_taxYear = TextField(q.value(0)).left(4);
    if (!session().TaxYear.isEmpty())
        m_taxYear = session().TaxYear;
    q.prepare(QStringLiteral("SELECT BTFlag FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    if (q.exec() && q.next())
        m_btFlag = TextField(q.value(0)).trimmed();
    m_bodyWord = m_btFlag == QLatin1String("B")   ? QStringLiteral("Borough")
                 : m_btFlag == QLatin1String("C") ? QStringLiteral("City")
                                                  : QStringLiteral("Township");
    lblTDisbNum->setText(m_bodyWord + QStringLiteral(" Distribution #:"));
}

// ---------------------------------------------------------------------------------------------
// The real-estate void
// ---------------------------------------------------------------------------------------------

namespace {

VoidKind realEstateVoid() {
    VoidKind k;
    k.objectName = QStringLiteral("frmREVoidReceipt");
    k.windowTitle = QStringLiteral("Void Real Estate Receipt");
    k.tables = &RealEstateDesk();
    k.incompleteAdjustmentText = QString::fromLatin1(IncompleteAdjustmentOnVoid);
    const char* const fields[TaxLineCount] = {"txtCounty",      "txtLibrary",     "txtC1Face",
                                              "txtTwp",         "txtSpecFace(1)", "txtSpecFace(2)",
                                              "txtSpecFace(3)", "txtSchool",      "txtSch1Face"};
    const char* const captions[TaxLineCount] = {
        "County:",    "Library:",   "County Special:", "Township:",      "Special 1:",
        "Special 2:", "Special 3:", "School:",         "School Special:"};
    for (int i = 0; i < TaxLineCount; ++i)
        k.lines.push_back({QString::fromLatin1(fields[i]), QString::fromLatin1(captions[i]),
                           FaceColumn(i), BodyOfLine(i)});
    return k;
}

} // namespace

frmREVoidReceipt::frmREVoidReceipt(QWidget* parent) : VoidReceiptScreen(realEstateVoid(), parent) {
    txtCounty = lineField(LineCounty);
    txtLibrary = lineField(LineLibrary);
    txtC1Face = lineField(LineCountySpecial);
    txtTwp = lineField(LineTwp);
    for (int i = 0; i < 3; ++i) {
        txtSpecFace[i] = lineField(LineSpecial1 + i);
        lblSpecFace[i] = lineLabel(LineSpecial1 + i);
    }
    txtSchool = lineField(LineSchool);
    txtSch1Face = lineField(LineSchoolSpecial);
    lblC1Face = lineLabel(LineCountySpecial);
    lblTwp = lineLabel(LineTwp);
    lblSch1Face = lineLabel(LineSchoolSpecial);

    // The special taxes and the municipality's kind name their lines.
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT S1TaxName FROM Millfile WHERE District || Ward = '000'")) &&
        q.next()) {
        const QString name = TextField(q.value(0)).trimmed();
        if (!name.isEmpty())
            lblC1Face->setText(name + QLatin1Char(':'));
    }
    q.prepare(QStringLiteral("SELECT S1TaxName FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(m_district + m_ward);
    if (q.exec() && q.next()) {
        const QString name = TextField(q.value(0)).trimmed();
        if (!name.isEmpty())
            lblSch1Face->setText(name + QLatin1Char(':'));
    }
    lblTwp->setText(m_bodyWord + QLatin1Char(':'));
    q.prepare(QStringLiteral(
        "SELECT Desc1 FROM Spectax WHERE District = ? AND Ward = ? ORDER BY TaxKey"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    if (q.exec())
        for (int i = 0; i < 3 && q.next(); ++i)
            lblSpecFace[i]->setText(TextField(q.value(0)).trimmed() + QLatin1Char(':'));
}

bool VoidReceiptScreen::eventFilter(QObject* watched, QEvent* event) {
    // The release that ends a click whose focus change brought a receipt on screen or was
    // refused does not click: the collector sees the receipt before voiding it.
    if (event->type() == QEvent::MouseButtonRelease)
        return SwallowRefusedRelease(watched) || QWidget::eventFilter(watched, event);
    if (!IsFieldLeave(event) || m_inLeave || m_clearing)
        return QWidget::eventFilter(watched, event);
    QPointer<QWidget> target = QApplication::focusWidget();
    QPointer<VoidReceiptScreen> self(this);
    m_inLeave = true;
    bool cancelClick = false;
    if (watched == txtRecnum)
        cancelClick = recnumLeft();
    else if (watched == txtVDate)
        cancelClick = !vDateLeft();
    if (!self)
        return true;
    m_inLeave = false;
    if (cancelClick)
        MarkRefusedClick(this, target, event);
    return FieldTookFocusBack(watched) || QWidget::eventFilter(watched, event);
}

void VoidReceiptScreen::enterRecnum(const QString& recnum) {
    txtRecnum->setText(recnum);
    m_inLeave = true;
    recnumLeft();
    m_inLeave = false;
}

void VoidReceiptScreen::openFromQuery(const QString& recnum) {
    clearScreen();
    enterRecnum(recnum);
}

bool VoidReceiptScreen::recnumLeft() {
    const QString recnum = txtRecnum->text();
    if (recnum.trimmed().isEmpty())
        return false;
    const bool changed = recnum != m_shownRecnum;
    const QString title = QString::fromLatin1(VoidTitle);
    QSqlDatabase db = session().DbConnection;
    QSqlQuery q(db);

    // 1. The receipt, taken as typed.
    const DeskTables& tables = *m_kind.tables;
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE Recnum = ? ORDER BY rowid LIMIT 1")
                  .arg(tables.receipts));
    q.addBindValue(recnum);
    if (!q.exec() || !q.next()) {
        MsgBox(QStringLiteral("Receipt Number Not On File"), title, MsgButtons::Ok,
               MsgIcon::Exclamation);
        m_shownRecnum.clear();
        txtRecnum->setFocus(Qt::OtherFocusReason);
        txtRecnum->selectAll();
        return true;
    }
    const QSqlRecord receipt = q.record();

    // 2. Voided before.
    q.prepare(
        QStringLiteral("SELECT VDate FROM %1 WHERE Recnum = ? LIMIT 1").arg(tables.voidReceipts));
    q.addBindValue(recnum);
    if (q.exec() && q.next()) {
        MsgBox(QStringLiteral("Receipt Has Already Been Voided on ") +
                   FormatDate(DateField(q.value(0))),
               title, MsgButtons::Ok, MsgIcon::Exclamation);
        clearScreen();
        return true;
    }

    // 3. A bill whose adjustment was cut off half way is not touched.
    const QString billNo = TextField(receipt.value("BillNo"));
    q.prepare(QStringLiteral("SELECT AdjFlag FROM %1 WHERE BillNo = ? LIMIT 1").arg(tables.master));
    q.addBindValue(billNo);
    if (q.exec() && q.next() && FlagField(q.value(0)).trimmed() == QLatin1String("A")) {
        q.prepare(
            QStringLiteral("SELECT count(*) FROM %1 WHERE BillNo = ?").arg(tables.adjustments));
        q.addBindValue(billNo);
        if (q.exec() && q.next() && q.value(0).toLongLong() == 0) {
            MsgBox(m_kind.incompleteAdjustmentText, QString::fromLatin1(IntegrityErrorTitle),
                   MsgButtons::Ok, MsgIcon::Critical);
            CloseScreen(this);
            return true;
        }
    }

    // 4. Its refunds.
    m_distributedRefunds = false;
    q.prepare(QStringLiteral("SELECT DisbNum FROM %1 WHERE RecNum = ? ORDER BY RecNum, RecNumID")
                  .arg(tables.refundsOfVoid));
    q.addBindValue(recnum);
    bool anyRefund = false;
    if (q.exec()) {
        while (q.next()) {
            anyRefund = true;
            if (RefundDistributed(TextField(q.value(0)), m_taxYear))
                m_distributedRefunds = true;
        }
    }
    if (m_distributedRefunds)
        MsgBox(QStringLiteral("There are DISTRIBUTED REFUNDS with this receipt. Refunds will NOT "
                              "be removed."),
               title, MsgButtons::Ok, MsgIcon::Critical);
    else if (anyRefund)
        MsgBox(QStringLiteral("There are refunds with this receipt. Refunds will be removed."),
               title, MsgButtons::Ok, MsgIcon::Information);

    // 5. The receipt on screen: each line the sum of its three columns.
    const QString pattern = QString::fromUtf16(MoneyPattern);
    auto text = [&](const char* column) { return TextField(receipt.value(column)); };
    txtControl->setText(text("Control"));
    txtBillNo->setText(billNo);
    txtAdjNo->setText(text("AdjNo"));
    if (tables.hasMap) {
        txtMap3->setText(text("Map3"));
        txtMap4->setText(text("Map4"));
        txtMap5->setText(text("Map5"));
    }
    txtName->setText(text("Name"));
    txtPayor->setText(text("Payor"));
    txtCDisbNum->setText(text("CDisbNum"));
    txtTDisbNum->setText(text("TDisbNum"));
    txtSDisbNum->setText(text("SDisbNum"));
    Money totals[3];
    for (std::size_t i = 0; i < m_kind.lines.size(); ++i) {
        const VoidLine& line = m_kind.lines[i];
        const Money amount = MoneyField(receipt.value(line.faceColumn)) +
                             MoneyField(receipt.value(QLatin1Char('D') + line.faceColumn)) +
                             MoneyField(receipt.value(QLatin1Char('P') + line.faceColumn));
        m_lineFields[i]->setText(amount.format(pattern));
        totals[int(line.body)] += amount;
    }
    txtCTotal->setText(totals[0].format(pattern));
    txtTTotal->setText(totals[1].format(pattern));
    txtSTotal->setText(totals[2].format(pattern));
    const Money lines = totals[0] + totals[1] + totals[2];
    txtTotal->setText(lines.format(pattern));
    const Money overage = MoneyField(receipt.value("Overage"));
    const Money refund = MoneyField(receipt.value("Refund"));
    txtAmount->setText((lines + overage + refund).format(pattern));
    if (overage > Money())
        lblTendered->setText(QStringLiteral("***  Overpayment of ") + overage.format(u"#.00") +
                             QStringLiteral(" tendered  ***"));
    else if (overage < Money())
        lblTendered->setText(QStringLiteral("***  Underpayment of ") + (-overage).format(u"#.00") +
                             QStringLiteral(" tendered  ***"));
    else
        lblTendered->clear();

    // 6.
    m_shownRecnum = recnum;
    txtVDate->setText(FormatDate(Clock::today()));
    cmdAccept->setEnabled(true);
    if (!session().QueryOpenedScreen.contains(objectName()))
        txtReason->setFocus(Qt::OtherFocusReason);
    return changed;
}

bool VoidReceiptScreen::vDateLeft() {
    if (ParseTypedDate(txtVDate->text()))
        return true;
    MsgBox(QStringLiteral("Invalid Date Voided"), QString::fromLatin1(VoidTitle), MsgButtons::Ok,
           MsgIcon::Exclamation);
    txtVDate->setFocus(Qt::OtherFocusReason);
    txtVDate->selectAll();
    return false;
}

void VoidReceiptScreen::accept() {
    if (m_shownRecnum.isEmpty())
        return;
    m_inLeave = true;
    if (txtReason->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Reason must be specified"), QStringLiteral("Enter Reason"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtReason->setFocus(Qt::OtherFocusReason);
        m_inLeave = false;
        return;
    }
    const std::optional<QDate> voided = ParseTypedDate(txtVDate->text());
    if (!voided) {
        vDateLeft();
        m_inLeave = false;
        return;
    }
    VoidRequest request;
    request.recnum = m_shownRecnum;
    request.voidDate = *voided;
    request.reason = txtReason->text();
    const VoidResult result =
        VoidReceipt(session().DbConnection, *m_kind.tables, request, Clock::today(), m_taxYear);
    m_inLeave = false;
    if (!result.ok) {
        MsgBox(QStringLiteral("The receipt could not be voided: ") + result.error,
               QString::fromLatin1(VoidTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    Q_EMIT receiptVoided(request.recnum);
    MsgBox(QStringLiteral("Receipt Voided"), QString::fromLatin1(VoidTitle), MsgButtons::Ok,
           MsgIcon::Information);
    clearScreen();
}

void VoidReceiptScreen::clearScreen() {
    m_clearing = true;
    for (QLineEdit* field : findChildren<QLineEdit*>())
        field->clear();
    // The date voided defaults to today.
    txtVDate->setText(FormatDate(Clock::today()));
    lblTendered->clear();
    m_shownRecnum.clear();
    m_distributedRefunds = false;
    cmdAccept->setEnabled(false);
    txtRecnum->setFocus(Qt::OtherFocusReason);
    m_clearing = false;
}
