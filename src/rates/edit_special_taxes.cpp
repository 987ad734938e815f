#include "rates/edit_special_taxes.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "rates/millage_common.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

const char* const AddTitle = "Add Tax Name";
const char* const DeleteTitle = "Delete Tax Name";

QString flagOf(bool set) {
    return set ? QStringLiteral("Y") : QStringLiteral("N");
}

// Update when the row is there, insert otherwise; inside the caller's transaction.
bool writeTax(const QSqlDatabase& db, const SpecialTax& t, QString* error) {
    QSqlQuery find(db);
    find.prepare(QStringLiteral("SELECT count(*) FROM Spectax WHERE District = ? AND Ward = ? "
                                "AND TaxKey = ? AND TaxYear = ?"));
    for (const QString& v : {t.district, t.ward, t.taxKey, t.taxYear})
        find.addBindValue(v);
    if (!find.exec() || !find.next())
        return QueryFailed(db, find, error);
    const bool exists = find.value(0).toInt() > 0;
    QSqlQuery q(db);
    if (exists) {
        q.prepare(QStringLiteral("UPDATE Spectax SET Desc1 = ?, Mill = ?, ExFlag = ?, "
                                 "SpecFlag = ? WHERE District = ? AND Ward = ? AND TaxKey = ? "
                                 "AND TaxYear = ?"));
        q.addBindValue(t.description);
        q.addBindValue(t.mill);
        q.addBindValue(flagOf(t.exempt));
        q.addBindValue(flagOf(t.specials));
        for (const QString& v : {t.district, t.ward, t.taxKey, t.taxYear})
            q.addBindValue(v);
    } else {
        q.prepare(QStringLiteral("INSERT INTO Spectax (District, Ward, TaxKey, Desc1, Mill, "
                                 "ExFlag, SpecFlag, TaxYear) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
        q.addBindValue(t.district);
        q.addBindValue(t.ward);
        q.addBindValue(t.taxKey);
        q.addBindValue(t.description);
        q.addBindValue(t.mill);
        q.addBindValue(flagOf(t.exempt));
        q.addBindValue(flagOf(t.specials));
        q.addBindValue(t.taxYear);
    }
    return q.exec() || QueryFailed(db, q, error);
}

QTableWidgetItem* cell(const QString& text) {
    auto* item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

} // namespace

std::vector<SpecialTax> ReadSpecialTaxes(QSqlDatabase db, const QString& district,
                                         const QString& ward, const QString& taxYear) {
    std::vector<SpecialTax> taxes;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT TaxKey, Desc1, Mill, ExFlag, SpecFlag FROM Spectax "
                             "WHERE District = ? AND Ward = ? AND TaxYear = ? ORDER BY TaxKey"));
    q.addBindValue(district);
    q.addBindValue(ward);
    q.addBindValue(taxYear);
    if (!q.exec())
        return taxes;
    while (q.next()) {
        SpecialTax t;
        t.district = district;
        t.ward = ward;
        t.taxYear = taxYear;
        t.taxKey = TextField(q.value(0));
        t.description = TextField(q.value(1));
        t.mill = q.value(2).toDouble();
        t.exempt = TextField(q.value(3)).trimmed() == QLatin1String("Y");
        t.specials = TextField(q.value(4)).trimmed() == QLatin1String("Y");
        taxes.push_back(t);
    }
    return taxes;
}

bool SaveSpecialTax(QSqlDatabase db, const SpecialTax& tax, QString* error) {
    return InOneTransaction(db, error, [&] { return writeTax(db, tax, error); });
}

bool DeleteSpecialTax(QSqlDatabase db, const QString& district, const QString& ward,
                      const QString& taxKey, const QString& taxYear, QString* error) {
    return UpdateInOneTransaction(db,
                                  QStringLiteral("DELETE FROM Spectax WHERE District = ? AND "
                                                 "Ward = ? AND TaxKey = ? AND TaxYear = ?"),
                                  {district, ward, taxKey, taxYear}, error);
}

QString PreviousTaxYear(const QString& taxYear) {
    bool ok = false;
    const int year = taxYear.trimmed().toInt(&ok);
    if (!ok)
        return {};
    return PadFormat(double(year - 1), "####").trimmed();
}

bool CopySpecialTaxesFromPreviousYear(QSqlDatabase db, const QString& district, const QString& ward,
                                      const QString& taxYear, QString* error) {
    const QString previous = PreviousTaxYear(taxYear);
    if (previous.isEmpty())
        return true;
    const std::vector<SpecialTax> old = ReadSpecialTaxes(db, district, ward, previous);
    return InOneTransaction(db, error, [&] {
        for (SpecialTax tax : old) {
            tax.taxYear = taxYear;
            if (!writeTax(db, tax, error))
                return false;
        }
        return true;
    });
}

frmEditSpecialTaxes::frmEditSpecialTaxes(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmEditSpecialTaxes"));
    setWindowTitle(QStringLiteral("Edit Special Taxes"));

    lblTwpBoro = TitleLabel(this, "lblTwpBoro");

    txtDistrict = NamedField(this, "txtDistrict", 2);
    txtWard = NamedField(this, "txtWard", 1);
    txtYear = NamedField(this, "txtYear", 4);
    for (QLineEdit* f : {txtDistrict, txtWard, txtYear})
        f->setEnabled(false);
    auto* keys = new QHBoxLayout;
    keys->addWidget(new QLabel(QStringLiteral("District:"), this));
    keys->addWidget(txtDistrict);
    keys->addWidget(new QLabel(QStringLiteral("Ward:"), this));
    keys->addWidget(txtWard);
    keys->addWidget(new QLabel(QStringLiteral("Year:"), this));
    keys->addWidget(txtYear);
    keys->addStretch();

    txtTaxName = NamedField(this, "txtTaxName", 6);
    txtDescription = NamedField(this, "txtDescription", 50);
    txtMillage = NamedField(this, "txtMillage");
    for (QLineEdit* f : {txtTaxName, txtDescription, txtMillage})
        UpperCaseTyping(f);
    chkExFlag = new QCheckBox(QStringLiteral("Exempts Pay"), this);
    chkExFlag->setObjectName(QStringLiteral("chkExFlag"));
    chkSpecFlag = new QCheckBox(
        QStringLiteral("Only Certain Taxpayers Pay (Ex. St. Light or Hydrant)"), this);
    chkSpecFlag->setObjectName(QStringLiteral("chkSpecFlag"));
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Tax Name:"), txtTaxName);
    form->addRow(QStringLiteral("Description:"), txtDescription);
    form->addRow(QStringLiteral("Millage:"), txtMillage);
    form->addRow(chkExFlag);
    form->addRow(chkSpecFlag);

    auto* caption = NamedLabel(this, "lblSpecTax", QStringLiteral("Special Taxes"));
    dtgSpecTax = new QTableWidget(0, 5, this);
    dtgSpecTax->setObjectName(QStringLiteral("dtgSpecTax"));
    dtgSpecTax->setHorizontalHeaderLabels({QStringLiteral("Tax Name"),
                                           QStringLiteral("Description"), QStringLiteral("Millage"),
                                           QStringLiteral("Exempt"), QStringLiteral("Specials")});
    dtgSpecTax->verticalHeader()->hide();
    dtgSpecTax->setSelectionBehavior(QAbstractItemView::SelectRows);
    dtgSpecTax->setSelectionMode(QAbstractItemView::SingleSelection);
    dtgSpecTax->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Tab from the tax name goes to the list, which makes the leave of the tax name; a click
    // on a row chooses its tax without taking the focus first.
    dtgSpecTax->setFocusPolicy(Qt::TabFocus);
    dtgSpecTax->horizontalHeader()->setStretchLastSection(true);
    dtgSpecTax->setMinimumWidth(520);

    cmdAccept = NamedButton(this, "cmdAccept", QStringLiteral("&Accept"));
    cmdDelete = NamedButton(this, "cmdDelete", QStringLiteral("&Delete"));
    cmdClearScreen = NamedButton(this, "cmdClearScreen", QStringLiteral("&Clear Screen"), false);
    cmdPreviousYear =
        NamedButton(this, "cmdPreviousYear",
                    QStringLiteral("Update Special Tax File with Previous Year's Information"));
    cmdExit = NamedButton(this, "cmdExit", QStringLiteral("E&xit"), false);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdPreviousYear);
    buttons->addStretch();
    for (QPushButton* b : {cmdAccept, cmdDelete, cmdClearScreen, cmdExit})
        buttons->addWidget(b);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblTwpBoro);
    layout->addLayout(keys);
    layout->addLayout(form);
    layout->addWidget(caption);
    layout->addWidget(dtgSpecTax);
    layout->addLayout(buttons);

    setTabOrder(txtTaxName, txtDescription);
    setTabOrder(txtDescription, txtMillage);
    setTabOrder(txtMillage, chkExFlag);
    setTabOrder(chkExFlag, chkSpecFlag);
    setTabOrder(chkSpecFlag, cmdAccept);
    setTabOrder(cmdAccept, cmdDelete);
    setTabOrder(cmdDelete, cmdPreviousYear);

    m_leave = new FieldLeave(this);
    m_leave->onLeave(txtTaxName, [this] {
        if (!typedKey().isEmpty())
            chooseTax();
    });
    connect(dtgSpecTax, &QTableWidget::cellClicked, this, [this](int row, int) {
        if (QTableWidgetItem* item = dtgSpecTax->item(row, 0)) {
            txtTaxName->setText(item->text());
            chooseTax();
        }
    });
    connect(cmdAccept, &QPushButton::clicked, this, &frmEditSpecialTaxes::accept);
    connect(cmdDelete, &QPushButton::clicked, this, &frmEditSpecialTaxes::deleteTax);
    connect(cmdPreviousYear, &QPushButton::clicked, this, &frmEditSpecialTaxes::previousYear);
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] {
        clearFields();
        txtTaxName->setFocus();
    });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });

    // The office's municipality, and the calendar year of today.
    QSqlDatabase db = session().DbConnection;
    const OfficeDistrict office = ReadOfficeDistrict(db);
    txtDistrict->setText(office.district);
    txtWard->setText(office.ward);
    txtYear->setText(QString::number(Clock::today().year()));
    lblTwpBoro->setText(office.district + office.ward == QLatin1String("000")
                            ? ReadCountyName(db)
                            : ReadTwpboroName(db, "TwpBoro", office));
    openList();
    clearFields();
    txtTaxName->setFocus();
}

void frmEditSpecialTaxes::closeEvent(QCloseEvent* event) {
    // The focus leaves the fields as the screen goes: that is no leave of the user's.
    delete m_leave;
    m_leave = nullptr;
    QWidget::closeEvent(event);
}

QString frmEditSpecialTaxes::typedKey() const {
    return txtTaxName->text().trimmed().toUpper();
}

void frmEditSpecialTaxes::openList() {
    m_taxes = ReadSpecialTaxes(session().DbConnection, txtDistrict->text(), txtWard->text(),
                               txtYear->text());
    dtgSpecTax->setRowCount(int(m_taxes.size()));
    for (int row = 0; row < int(m_taxes.size()); ++row) {
        const SpecialTax& t = m_taxes[row];
        dtgSpecTax->setItem(row, 0, cell(t.taxKey));
        dtgSpecTax->setItem(row, 1, cell(t.description));
        dtgSpecTax->setItem(row, 2, cell(RateText(t.mill)));
        dtgSpecTax->setItem(row, 3, cell(flagOf(t.exempt)));
        dtgSpecTax->setItem(row, 4, cell(flagOf(t.specials)));
    }
}

const SpecialTax* frmEditSpecialTaxes::findTax(const QString& key) const {
    for (const SpecialTax& t : m_taxes)
        if (t.taxKey.trimmed().toUpper() == key)
            return &t;
    return nullptr;
}

void frmEditSpecialTaxes::enableFields(bool enabled) {
    for (QWidget* w :
         std::initializer_list<QWidget*>{txtDescription, txtMillage, chkExFlag, chkSpecFlag,
                                         cmdAccept, cmdDelete, cmdPreviousYear})
        w->setEnabled(enabled);
}

void frmEditSpecialTaxes::clearFields() {
    txtTaxName->clear();
    txtDescription->clear();
    txtMillage->clear();
    chkExFlag->setChecked(false);
    chkSpecFlag->setChecked(false);
    m_chosenKey.clear();
    enableFields(false);
}

bool frmEditSpecialTaxes::chooseTax() {
    const QString key = typedKey();
    if (key.isEmpty()) {
        txtTaxName->setFocus();
        return false;
    }
    txtTaxName->setText(key);
    if (const SpecialTax* tax = findTax(key)) {
        txtDescription->setText(tax->description);
        txtMillage->setText(RateText(tax->mill));
        chkExFlag->setChecked(tax->exempt);
        chkSpecFlag->setChecked(tax->specials);
    } else {
        if (MsgBox(QStringLiteral("Tax Name not found. Do you wish to add?"),
                   QString::fromLatin1(AddTitle), MsgButtons::YesNo,
                   MsgIcon::Question) != MsgAnswer::Yes) {
            m_refusedKey = key;
            txtTaxName->setFocus();
            return false;
        }
        // A tax not yet on file starts from empty fields.
        if (m_chosenKey != key) {
            txtDescription->clear();
            txtMillage->clear();
            chkExFlag->setChecked(false);
            chkSpecFlag->setChecked(false);
        }
    }
    m_chosenKey = key;
    m_refusedKey.clear();
    enableFields(true);
    txtDescription->setFocus();
    return true;
}

void frmEditSpecialTaxes::accept() {
    if (m_chosenKey.isEmpty() || typedKey() != m_chosenKey) {
        // The press of Accept has just left the tax name, whose question was answered No:
        // asking it again would ask twice for one press.
        if (!m_refusedKey.isEmpty() && typedKey() == m_refusedKey) {
            txtTaxName->setFocus();
            return;
        }
        if (!chooseTax())
            return;
    }
    if (txtDescription->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Description must be specified."),
               QStringLiteral("Enter Description"), MsgButtons::Ok, MsgIcon::Exclamation);
        txtDescription->setFocus();
        return;
    }
    const std::optional<double> mill = ParseRate(txtMillage->text());
    if (!mill) {
        MsgBox(QStringLiteral("Millage must be specified."), QStringLiteral("Enter Millage"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtMillage->setFocus();
        return;
    }
    SpecialTax tax;
    tax.district = txtDistrict->text();
    tax.ward = txtWard->text();
    tax.taxYear = txtYear->text();
    tax.taxKey = m_chosenKey;
    tax.description = txtDescription->text();
    tax.mill = *mill;
    tax.exempt = chkExFlag->isChecked();
    tax.specials = chkSpecFlag->isChecked();
    QString error;
    if (!SaveSpecialTax(session().DbConnection, tax, &error)) {
        MsgBox(QStringLiteral("The special tax could not be saved: ") + error,
               QString::fromLatin1(AddTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    openList();
    clearFields();
    txtTaxName->setFocus();
}

void frmEditSpecialTaxes::deleteTax() {
    const QString key = typedKey();
    const QString title = QString::fromLatin1(DeleteTitle);
    if (key.isEmpty() || !findTax(key)) {
        MsgBox(QStringLiteral("Tax name not on file. Tax name not deleted"), title);
        return;
    }
    if (MsgBox(QStringLiteral("Are you sure you want to delete this Tax Name?"), title,
               MsgButtons::YesNo, MsgIcon::Question) != MsgAnswer::Yes) {
        MsgBox(QStringLiteral("Tax name NOT deleted"), title);
        return;
    }
    QString error;
    if (!DeleteSpecialTax(session().DbConnection, txtDistrict->text(), txtWard->text(),
                          findTax(key)->taxKey, txtYear->text(), &error)) {
        MsgBox(QStringLiteral("The special tax could not be deleted: ") + error, title,
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    openList();
    clearFields();
    txtTaxName->setFocus();
}

void frmEditSpecialTaxes::previousYear() {
    QString error;
    if (!CopySpecialTaxesFromPreviousYear(session().DbConnection, txtDistrict->text(),
                                          txtWard->text(), txtYear->text(), &error)) {
        MsgBox(QStringLiteral("The previous year's special taxes could not be copied: ") + error,
               QStringLiteral("Edit Special Taxes"), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    openList();
}
