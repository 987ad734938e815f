#include "rates/maintain_millages_county.h"

#include "core/main_window.h"
#include "core/message_window.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "rates/millage_common.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>

bool SaveCountyMillages(QSqlDatabase db, const CountyMillages& v, QString* error) {
    if (!db.transaction()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    QSqlQuery q(db);
    q.prepare(QStringLiteral(
        "UPDATE Millfile SET SMR = ?, SMO = ?, SPC = ?, SD = ?, SP = ?, PCSD = ?, PCSP = ?, "
        "S1MR = ?, S1TaxName = ? WHERE District = '00' AND Ward = '0' AND TaxYear = ?"));
    for (const QVariant& value : {QVariant(v.smr), QVariant(v.smo), QVariant(v.spc), QVariant(v.sd),
                                  QVariant(v.sp), QVariant(v.pcsd), QVariant(v.pcsp),
                                  QVariant(v.s1mr), QVariant(v.s1TaxName), QVariant(v.taxYear)})
        q.addBindValue(value);
    if (!q.exec() || !db.commit()) {
        if (error)
            *error = q.lastError().isValid() ? q.lastError().text() : db.lastError().text();
        db.rollback();
        return false;
    }
    return true;
}

frmMaintainMillagesCounty::frmMaintainMillagesCounty(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmMaintainMillagesCounty"));
    setWindowTitle(QStringLiteral("Maintain County Millages"));

    lblCountyName = NamedLabel(this, "lblCountyName");
    QFont big = lblCountyName->font();
    big.setBold(true);
    big.setPointSize(big.pointSize() + 2);
    lblCountyName->setFont(big);
    lblCountyName->setAlignment(Qt::AlignCenter);

    auto* frame = new QGroupBox(QStringLiteral("County"), this);
    frame->setObjectName(QStringLiteral("fraCounty"));
    txtCMR = NamedField(frame, "txtCMR");
    txtC1TaxName = NamedField(frame, "txtC1TaxName", 10);
    txtC1MR = NamedField(frame, "txtC1MR");
    txtCD = NamedField(frame, "txtCD");
    txtCP = NamedField(frame, "txtCP");
    txtCPC = NamedField(frame, "txtCPC");
    txtCMO = NamedField(frame, "txtCMO");
    txtPCCD = NamedField(frame, "txtPCCD");
    txtPCCP = NamedField(frame, "txtPCCP");
    auto* form = new QFormLayout(frame);
    form->addRow(QStringLiteral("Real Estate Millage:"), txtCMR);
    form->addRow(QStringLiteral("Special Tax Name:"), txtC1TaxName);
    form->addRow(QStringLiteral("Special Millage:"), txtC1MR);
    form->addRow(QStringLiteral("Real Estate Discount %:"), txtCD);
    form->addRow(QStringLiteral("Real Estate Penalty %:"), txtCP);
    form->addRow(QStringLiteral("Per Capita Amount:"), txtCPC);
    form->addRow(QStringLiteral("Occupation Rate:"), txtCMO);
    form->addRow(QStringLiteral("Per Capita Discount %:"), txtPCCD);
    form->addRow(QStringLiteral("Per Capita Penalty %:"), txtPCCP);

    cmdAccept = NamedButton(this, "cmdAccept", QStringLiteral("&Accept"));
    cmdClearScreen = NamedButton(this, "cmdClearScreen", QStringLiteral("&Clear Screen"), false);
    cmdReset = NamedButton(this, "cmdReset", QStringLiteral("&Reset"), false);
    cmdPrintScreen = NamedButton(this, "cmdPrintScreen", QStringLiteral("&Print Screen"), false);
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    cmdExit = NamedButton(this, "cmdExit", QStringLiteral("E&xit"), false);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {cmdAccept, cmdClearScreen, cmdReset, cmdPrintScreen, cmdExit})
        buttons->addWidget(b);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblCountyName);
    layout->addWidget(frame);
    layout->addLayout(buttons);

    connect(cmdAccept, &QPushButton::clicked, this, &frmMaintainMillagesCounty::accept);
    connect(cmdClearScreen, &QPushButton::clicked, this, &frmMaintainMillagesCounty::clearScreen);
    connect(cmdReset, &QPushButton::clicked, this, &frmMaintainMillagesCounty::loadFromTable);
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });

    loadFromTable();
    ReloadOnActivation(this, [this] { loadFromTable(); });
}

void frmMaintainMillagesCounty::loadFromTable() {
    PleaseWait wait(frmMessage::Searching);
    QSqlDatabase db = session().DbConnection;
    QSqlQuery q(db);
    QSqlRecord row;
    if (q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District = '00' AND Ward = '0'")) &&
        q.next())
        row = q.record();
    auto value = [&row](const char* column) { return row.value(QLatin1String(column)); };
    m_taxYear = TextField(value("TaxYear")).left(4);
    txtCMR->setText(RateText(value("SMR")));
    txtC1MR->setText(RateText(value("S1MR")));
    txtC1TaxName->setText(TextField(value("S1TaxName")));
    txtCD->setText(RateText(value("SD")));
    txtCP->setText(RateText(value("SP")));
    txtCMO->setText(RateText(value("SMO")));
    txtCPC->setText(RateText(value("SPC")));
    txtPCCD->setText(RateText(value("PCSD")));
    txtPCCP->setText(RateText(value("PCSP")));

    QSqlQuery county(db);
    lblCountyName->clear();
    if (county.exec(QStringLiteral("SELECT County FROM tbl_County")) && county.next())
        lblCountyName->setText(TextField(county.value(0)));
    txtCMR->setFocus();
}

void frmMaintainMillagesCounty::clearScreen() {
    for (QLineEdit* field :
         {txtCMR, txtC1MR, txtC1TaxName, txtCD, txtCP, txtCMO, txtCPC, txtPCCD, txtPCCP})
        field->clear();
    txtCMR->setFocus();
}

void frmMaintainMillagesCounty::accept() {
    if (!CheckNumberFields({
            {txtCMR, "County Real Estate Millage Rate must be numeric."},
            {txtC1MR, "County Special Millage Rate must be numeric."},
            {txtCD, "County Real Estate Discount Rate must be numeric."},
            {txtCP, "County Real Estate Penalty Rate must be numeric."},
            {txtCMO, "County Occupation Rate must be numeric."},
            {txtCPC, "County Per Capita Rate must be numeric"},
            {txtPCCD, "County Per Capita Discount Rate must be numeric"},
            {txtPCCP, "County Per Capita Penalty Rate must be numeric"},
        }))
        return;

    CountyMillages v;
    v.taxYear = m_taxYear;
    v.smr = RateOf(txtCMR);
    v.s1mr = RateOf(txtC1MR);
    v.s1TaxName = txtC1TaxName->text();
    v.sd = RateOf(txtCD);
    v.sp = RateOf(txtCP);
    v.smo = RateOf(txtCMO);
    v.spc = RateOf(txtCPC);
    v.pcsd = RateOf(txtPCCD);
    v.pcsp = RateOf(txtPCCP);
    QString error;
    bool saved = false;
    {
        PleaseWait wait(frmMessage::SavingData);
        saved = SaveCountyMillages(session().DbConnection, v, &error);
    }
    if (!saved) {
        MsgBox(QStringLiteral("The millages could not be saved: ") + error,
               QString::fromLatin1(MillagesTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    MsgBox(QStringLiteral("Record Changed"), QString::fromLatin1(MillagesTitle), MsgButtons::Ok,
           MsgIcon::Exclamation);
}
