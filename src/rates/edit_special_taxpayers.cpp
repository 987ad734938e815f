#include "rates/edit_special_taxpayers.h"

#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "rates/millage_common.h"

#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

const char* const ScreenTitle = "Edit Special Taxpayers";
const char* const DeleteTitle = "Delete Special Tax";

bool allDigits(const QString& text) {
    if (text.isEmpty())
        return false;
    for (QChar c : text)
        if (c < u'0' || c > u'9')
            return false;
    return true;
}

QTableWidgetItem* cell(const QString& text, Qt::Alignment align = Qt::AlignLeft) {
    auto* item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    item->setTextAlignment(align | Qt::AlignVCenter);
    return item;
}

} // namespace

FlatSpecialAmounts FigureFlatSpecial(Money amount, double discountPercent, double penaltyPercent) {
    // The rate's share is rounded here, not the discounted amount.
    const Money discountShare =
        Money::fromRounded(RoundTo(amount.toDouble() * discountPercent / 100.0, 2));
    const Money penaltyShare =
        Money::fromRounded(RoundTo(amount.toDouble() * penaltyPercent / 100.0, 2));
    return {amount, amount - discountShare, amount + penaltyShare};
}

int SpecialTaxSlot(QSqlDatabase db, const QString& taxKey) {
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT TaxKey FROM Spectax ORDER BY TaxKey")))
        return 0;
    int slot = 0;
    while (q.next()) {
        ++slot;
        if (TextField(q.value(0)) == taxKey)
            return slot;
    }
    return 0;
}

bool SaveSpecialTaxpayerAmount(QSqlDatabase db, const SpecialTaxpayerAmount& v, QString* error) {
    return InOneTransaction(db, error, [&] {
        QSqlQuery find(db);
        find.prepare(QStringLiteral("SELECT count(*) FROM Specpay WHERE District = ? AND Ward = ? "
                                    "AND Control = ? AND TaxKey = ?"));
        for (const QString& key : {v.district, v.ward, v.control, v.taxKey})
            find.addBindValue(key);
        if (!find.exec() || !find.next())
            return QueryFailed(db, find, error);
        QSqlQuery q(db);
        if (find.value(0).toInt() > 0) {
            q.prepare(QStringLiteral("UPDATE Specpay SET Map = ?, Map3 = ?, Map4 = ?, Map5 = ?, "
                                     "Name = ?, Amount = ? WHERE District = ? AND Ward = ? AND "
                                     "Control = ? AND TaxKey = ?"));
            for (const QString& text : {v.map, v.map3, v.map4, v.map5, v.name})
                q.addBindValue(text);
            q.addBindValue(MoneyValue(v.amount));
            for (const QString& key : {v.district, v.ward, v.control, v.taxKey})
                q.addBindValue(key);
        } else {
            q.prepare(QStringLiteral("INSERT INTO Specpay (District, Ward, Control, TaxKey, Map, "
                                     "Map3, Map4, Map5, Name, Amount) VALUES (?, ?, ?, ?, ?, ?, ?, "
                                     "?, ?, ?)"));
            for (const QString& text :
                 {v.district, v.ward, v.control, v.taxKey, v.map, v.map3, v.map4, v.map5, v.name})
                q.addBindValue(text);
            q.addBindValue(MoneyValue(v.amount));
        }
        if (!q.exec())
            return QueryFailed(db, q, error);

        // The amount always lands in the bill's third special.
        const FlatSpecialAmounts bill =
            FigureFlatSpecial(v.amount, v.discountPercent, v.penaltyPercent);
        QSqlQuery master(db);
        master.prepare(QStringLiteral("UPDATE TCMaster SET S3Face = ?, DS3Face = ?, PS3Face = ? "
                                      "WHERE District = ? AND Ward = ? AND Control = ?"));
        master.addBindValue(MoneyValue(bill.face));
        master.addBindValue(MoneyValue(bill.discount));
        master.addBindValue(MoneyValue(bill.penalty));
        for (const QString& key : {v.district, v.ward, v.control})
            master.addBindValue(key);
        if (!master.exec())
            return QueryFailed(db, master, error);
        return true;
    });
}

bool DeleteSpecialTaxpayerAmount(QSqlDatabase db, const QString& district, const QString& ward,
                                 const QString& control, const QString& taxKey, QString* error) {
    return InOneTransaction(db, error, [&] {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("DELETE FROM Specpay WHERE District = ? AND Ward = ? AND "
                                 "Control = ? AND TaxKey = ?"));
        for (const QString& key : {district, ward, control, taxKey})
            q.addBindValue(key);
        if (!q.exec())
            return QueryFailed(db, q, error);

        // The special of the tax's own slot is cleared, whichever slot the amount was saved in.
        const int slot = SpecialTaxSlot(db, taxKey);
        if (slot >= 1 && slot <= 3) {
            QSqlQuery master(db);
            master.prepare(QStringLiteral("UPDATE TCMaster SET S%1Face = 0, DS%1Face = 0, "
                                          "PS%1Face = 0 WHERE District = ? AND Ward = ? AND "
                                          "Control = ?")
                               .arg(slot));
            for (const QString& key : {district, ward, control})
                master.addBindValue(key);
            if (!master.exec())
                return QueryFailed(db, master, error);
        }
        return true;
    });
}

QWidget* frmEditSpecialTaxpayers::open() {
    auto* screen = new frmEditSpecialTaxpayers;
    if (!screen->hasSpecialTaxes()) {
        MsgBox(QStringLiteral("There are no special taxes that allow for special taxpayers in "
                              "this district"),
               QStringLiteral("Enter Special Taxpayers"), MsgButtons::Ok, MsgIcon::Exclamation);
        delete screen;
        return nullptr;
    }
    return screen;
}

frmEditSpecialTaxpayers::frmEditSpecialTaxpayers(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmEditSpecialTaxpayers"));
    setWindowTitle(QString::fromLatin1(ScreenTitle));

    lblTwpBoro = TitleLabel(this, "lblTwpBoro");

    txtControl = NamedField(this, "txtControl", 6);
    txtBillNo = NamedField(this, "txtBillNo", 5);
    txtName = NamedField(this, "txtName", 50);
    txtMap = NamedField(this, "txtMap");
    txtName->setReadOnly(true);
    txtMap->setReadOnly(true);
    txtTaxName = NamedField(this, "txtTaxName", 6);
    UpperCaseTyping(txtTaxName);
    txtDescription = NamedField(this, "txtDescription", 50);
    txtDescription->setReadOnly(true);
    txtAmount = NamedField(this, "txtAmount", 12);
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Control Number:"), txtControl);
    form->addRow(QStringLiteral("Bill Number:"), txtBillNo);
    form->addRow(QStringLiteral("Name:"), txtName);
    form->addRow(QStringLiteral("Map:"), txtMap);
    form->addRow(QStringLiteral("Tax Name:"), txtTaxName);
    form->addRow(QStringLiteral("Description:"), txtDescription);
    form->addRow(QStringLiteral("Amount:"), txtAmount);

    auto* caption = NamedLabel(this, "lblSpecPay", QStringLiteral("Special Taxes"));
    dtgSpecPay = new QTableWidget(0, 3, this);
    dtgSpecPay->setObjectName(QStringLiteral("dtgSpecPay"));
    dtgSpecPay->setHorizontalHeaderLabels(
        {QStringLiteral("Tax Name"), QStringLiteral("Description"), QStringLiteral("Amount")});
    dtgSpecPay->verticalHeader()->hide();
    dtgSpecPay->setEditTriggers(QAbstractItemView::NoEditTriggers);
    dtgSpecPay->setFocusPolicy(Qt::NoFocus);
    dtgSpecPay->horizontalHeader()->setStretchLastSection(true);
    dtgSpecPay->setMinimumWidth(420);

    cmdAccept = NamedButton(this, "cmdAccept", QStringLiteral("&Accept"));
    cmdDelete = NamedButton(this, "cmdDelete", QStringLiteral("&Delete"));
    cmdClearScreen = NamedButton(this, "cmdClearScreen", QStringLiteral("&Clear Screen"), false);
    cmdClearTax = NamedButton(this, "cmdClearTax", QStringLiteral("Clear &Tax"), false);
    cmdExit = NamedButton(this, "cmdExit", QStringLiteral("E&xit"), false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton* b : {cmdAccept, cmdDelete, cmdClearScreen, cmdClearTax, cmdExit})
        buttons->addWidget(b);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblTwpBoro);
    layout->addLayout(form);
    layout->addWidget(caption);
    layout->addWidget(dtgSpecPay);
    layout->addLayout(buttons);

    setTabOrder(txtControl, txtBillNo);
    setTabOrder(txtBillNo, txtTaxName);
    setTabOrder(txtTaxName, txtAmount);
    setTabOrder(txtAmount, cmdAccept);
    setTabOrder(cmdAccept, cmdDelete);
    setTabOrder(cmdDelete, txtName);
    setTabOrder(txtName, txtMap);
    setTabOrder(txtMap, txtDescription);

    m_leave = new FieldLeave(this);
    m_leave->onLeave(txtControl, [this] { findTaxpayer(true); });
    m_leave->onLeave(txtBillNo, [this] { findTaxpayer(false); });
    m_leave->onLeave(txtTaxName, [this] {
        if (!typedKey().isEmpty())
            chooseTax();
    });
    // A full bill number moves on by itself.
    connect(txtBillNo, &QLineEdit::textEdited, this, [this](const QString& text) {
        if (text.size() >= 5 && txtBillNo->hasFocus())
            focusNextChild();
    });
    connect(cmdAccept, &QPushButton::clicked, this, &frmEditSpecialTaxpayers::accept);
    connect(cmdDelete, &QPushButton::clicked, this, &frmEditSpecialTaxpayers::deleteAmount);
    connect(cmdClearTax, &QPushButton::clicked, this, [this] {
        clearTax();
        txtTaxName->setFocus();
    });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] {
        clearTaxpayer();
        clearTax();
        txtControl->setFocus();
    });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });

    QSqlDatabase db = session().DbConnection;
    const OfficeDistrict office = ReadOfficeDistrict(db);
    m_district = office.district;
    m_ward = office.ward;
    lblTwpBoro->setText(ReadTwpboroName(db, "TwpBoro", office));
    QSqlQuery rates(db);
    rates.prepare(QStringLiteral("SELECT TD, TP FROM Millfile WHERE District = ? AND Ward = ?"));
    rates.addBindValue(m_district);
    rates.addBindValue(m_ward);
    if (rates.exec() && rates.next()) {
        m_discountPercent = rates.value(0).toDouble();
        m_penaltyPercent = rates.value(1).toDouble();
    }
    QSqlQuery taxes(db);
    taxes.prepare(QStringLiteral("SELECT TaxKey, Desc1 FROM Spectax WHERE District = ? AND "
                                 "Ward = ? AND SpecFlag = 'Y' ORDER BY TaxKey"));
    taxes.addBindValue(m_district);
    taxes.addBindValue(m_ward);
    if (taxes.exec())
        while (taxes.next())
            m_taxes.push_back({TextField(taxes.value(0)), TextField(taxes.value(1))});
    if (!m_taxes.empty()) {
        txtTaxName->setText(m_taxes.front().key);
        txtDescription->setText(m_taxes.front().description);
        m_chosenKey = m_taxes.front().key;
    }
    txtControl->setFocus();
}

void frmEditSpecialTaxpayers::closeEvent(QCloseEvent* event) {
    // The focus leaves the fields as the screen goes: that is no leave of the user's.
    delete m_leave;
    m_leave = nullptr;
    QWidget::closeEvent(event);
}

QString frmEditSpecialTaxpayers::typedKey() const {
    return txtTaxName->text().trimmed().toUpper();
}

const frmEditSpecialTaxpayers::Tax* frmEditSpecialTaxpayers::findTax(const QString& key) const {
    for (const Tax& t : m_taxes)
        if (t.key.trimmed().toUpper() == key)
            return &t;
    return nullptr;
}

const frmEditSpecialTaxpayers::Payment*
frmEditSpecialTaxpayers::findPayment(const QString& key) const {
    for (const Payment& p : m_payments)
        if (p.key.trimmed().toUpper() == key)
            return &p;
    return nullptr;
}

void frmEditSpecialTaxpayers::findTaxpayer(bool byControl) {
    QLineEdit* field = byControl ? txtControl : txtBillNo;
    const QString typed = field->text().trimmed();
    if (typed.isEmpty())
        return;
    if (!allDigits(typed)) {
        if (byControl)
            MsgBox(QStringLiteral("Control Number Must Be Numeric"),
                   QStringLiteral("Enter Control Number"), MsgButtons::Ok, MsgIcon::Exclamation);
        else
            MsgBox(QStringLiteral("Bill Number Must Be Numeric"),
                   QStringLiteral("Enter Bill Number"), MsgButtons::Ok, MsgIcon::Exclamation);
        field->setFocus();
        return;
    }
    const QString key = byControl ? typed : PadFormat(typed.toDouble(), "####0");
    QSqlQuery q(session().DbConnection);
    q.prepare(QStringLiteral("SELECT Control, BillNo, Name, Map3, Map4, Map5 FROM TCMaster "
                             "WHERE District = ? AND Ward = ? AND %1 = ?")
                  .arg(byControl ? QStringLiteral("Control") : QStringLiteral("BillNo")));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    q.addBindValue(key);
    if (!q.exec() || !q.next()) {
        MsgBox(byControl ? QStringLiteral("Control number not found in master file")
                         : QStringLiteral("Bill number not found in master file"),
               QString::fromLatin1(ScreenTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        field->setFocus();
        return;
    }
    m_control = TextField(q.value(0));
    m_map3 = TextField(q.value(3));
    m_map4 = TextField(q.value(4));
    m_map5 = TextField(q.value(5));
    txtControl->setText(m_control);
    txtBillNo->setText(TextField(q.value(1)));
    txtName->setText(TextField(q.value(2)));
    txtMap->setText(m_map3 + m_map4 + m_map5);
    m_foundByControl = byControl;
    openTaxpayerGrid();
    txtTaxName->setFocus();
}

void frmEditSpecialTaxpayers::openTaxpayerGrid() {
    m_payments.clear();
    QSqlQuery q(session().DbConnection);
    q.prepare(QStringLiteral("SELECT TaxKey, Amount FROM Specpay WHERE District = ? AND "
                             "Ward = ? AND Control = ? ORDER BY TaxKey"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    q.addBindValue(m_control);
    if (q.exec())
        while (q.next())
            m_payments.push_back({TextField(q.value(0)), MoneyField(q.value(1))});
    dtgSpecPay->setRowCount(int(m_payments.size()));
    for (int row = 0; row < int(m_payments.size()); ++row) {
        const Payment& p = m_payments[row];
        const Tax* tax = findTax(p.key.trimmed().toUpper());
        dtgSpecPay->setItem(row, 0, cell(p.key));
        dtgSpecPay->setItem(row, 1, cell(tax ? tax->description : QString()));
        dtgSpecPay->setItem(row, 2, cell(p.amount.format(u"\"$\"#,##0.00"), Qt::AlignRight));
    }
}

bool frmEditSpecialTaxpayers::chooseTax() {
    const QString key = typedKey();
    const Tax* tax = findTax(key);
    if (!tax) {
        MsgBox(QStringLiteral("Tax Name not found. You must add this Tax Name first."),
               QStringLiteral("Add Tax Name"), MsgButtons::Ok, MsgIcon::Exclamation);
        m_chosenKey.clear();
        m_refusedKey = key;
        txtTaxName->setFocus();
        return false;
    }
    txtTaxName->setText(key);
    txtDescription->setText(tax->description);
    m_chosenKey = key;
    m_refusedKey.clear();
    if (const Payment* payment = findPayment(key))
        txtAmount->setText(payment->amount.format(u"#######0.00"));
    return true;
}

void frmEditSpecialTaxpayers::accept() {
    const std::optional<Money> amount = Money::parse(txtAmount->text());
    if (!amount) {
        MsgBox(QStringLiteral("Amount must be numeric."), QStringLiteral("Enter Amount"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtAmount->setFocus();
        return;
    }
    // Without a taxpayer there is no bill to put the amount on.
    if (m_control.isEmpty()) {
        MsgBox(QStringLiteral("Find the taxpayer by control number or bill number first."),
               QString::fromLatin1(ScreenTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        txtBillNo->setFocus();
        return;
    }
    if (typedKey() != m_chosenKey || m_chosenKey.isEmpty()) {
        // The press of Accept has just left the tax name, which was refused: saying so again
        // would show the message twice for one press.
        if (!m_refusedKey.isEmpty() && typedKey() == m_refusedKey) {
            txtTaxName->setFocus();
            return;
        }
        if (!chooseTax())
            return;
    }
    SpecialTaxpayerAmount v;
    v.district = m_district;
    v.ward = m_ward;
    v.control = m_control;
    v.taxKey = findTax(m_chosenKey)->key;
    v.map = m_map3 + m_map4 + m_map5;
    v.map3 = m_map3;
    v.map4 = m_map4;
    v.map5 = m_map5;
    v.name = txtName->text();
    v.amount = *amount;
    v.discountPercent = m_discountPercent;
    v.penaltyPercent = m_penaltyPercent;
    QString error;
    if (!SaveSpecialTaxpayerAmount(session().DbConnection, v, &error)) {
        MsgBox(QStringLiteral("The special tax could not be saved: ") + error,
               QString::fromLatin1(ScreenTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    const bool byControl = m_foundByControl;
    clearTaxpayer();
    (byControl ? txtControl : txtBillNo)->setFocus();
}

void frmEditSpecialTaxpayers::deleteAmount() {
    const QString title = QString::fromLatin1(DeleteTitle);
    const QString key = typedKey();
    const Payment* payment = m_control.isEmpty() ? nullptr : findPayment(key);
    if (!payment) {
        MsgBox(QStringLiteral("Special tax not on file. Special tax not deleted"), title);
        return;
    }
    if (MsgBox(QStringLiteral("Are you sure you want to delete this tax?"), title,
               MsgButtons::YesNo, MsgIcon::Question) != MsgAnswer::Yes) {
        MsgBox(QStringLiteral("Special tax NOT deleted"), title);
        return;
    }
    QString error;
    if (!DeleteSpecialTaxpayerAmount(session().DbConnection, m_district, m_ward, m_control,
                                     payment->key, &error)) {
        MsgBox(QStringLiteral("The special tax could not be deleted: ") + error, title,
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    openTaxpayerGrid();
}

void frmEditSpecialTaxpayers::clearTaxpayer() {
    txtControl->clear();
    txtBillNo->clear();
    txtName->clear();
    txtMap->clear();
    m_control.clear();
    m_map3.clear();
    m_map4.clear();
    m_map5.clear();
    m_payments.clear();
    dtgSpecPay->setRowCount(0);
}

void frmEditSpecialTaxpayers::clearTax() {
    txtTaxName->clear();
    txtDescription->clear();
    txtAmount->clear();
    m_chosenKey.clear();
}
