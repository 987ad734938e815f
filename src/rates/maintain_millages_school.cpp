#include "rates/maintain_millages_school.h"

#include "core/common_values.h"
#include "core/main_window.h"
#include "core/message_window.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>

bool SaveSchoolMillages(QSqlDatabase db, const SchoolMillages& v, QString* error) {
    const QString p = v.lateBilling ? QStringLiteral("Late") : QString();
    if (!db.transaction()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    QSqlQuery q(db);
    q.prepare(QStringLiteral("UPDATE Millfile SET SMR = ?, SMO = ?, SPC = ?, SD = ?, SP = ?, "
                             "PCSD = ?, PCSP = ?, S1MR = ?, S1TaxName = ?, "
                             "%1MailDate = ?, %1DiscDate = ?, %1FaceDate1 = ?, %1FaceDate2 = ?, "
                             "%1PenDate = ?, %1LastDate = ?, %1TaxDate = ?, "
                             "%1Payment1Date = ?, %1Payment2Date = ?, %1Payment3Date = ?, "
                             "BillSchool = ?, SchoolFormula = ?, SchoolStebRatio = ?, "
                             "SchoolMarketRatio = ?, HSExclusion = ?, FSExclusion = ? "
                             "WHERE District = ? AND Ward = ? AND TaxYear = ?")
                  .arg(p));
    for (double rate : {v.smr, v.smo, v.spc, v.sd, v.sp, v.pcsd, v.pcsp, v.s1mr})
        q.addBindValue(rate);
    q.addBindValue(v.s1TaxName);
    const MillageDateSet& d = v.dates;
    for (const QDate& date :
         {d.mail, d.discountEnd, d.faceFirst, d.faceLast, d.penaltyFirst, d.lastDay, d.taxClaim})
        q.addBindValue(DateValue(date));
    for (const QDate& date : v.paymentDates)
        q.addBindValue(DateValue(date));
    q.addBindValue(v.lateBilling ? QStringLiteral("L") : QStringLiteral("E"));
    q.addBindValue(v.formula ? QStringLiteral("Y") : QStringLiteral("N"));
    q.addBindValue(v.stebRatio);
    q.addBindValue(v.marketRatio);
    q.addBindValue(MoneyValue(v.hsExclusion));
    q.addBindValue(MoneyValue(v.fsExclusion));
    q.addBindValue(v.district);
    q.addBindValue(v.ward);
    q.addBindValue(v.taxYear);
    if (!q.exec() || !db.commit()) {
        if (error)
            *error = q.lastError().isValid() ? q.lastError().text() : db.lastError().text();
        db.rollback();
        return false;
    }
    return true;
}

frmMaintainMillagesSchool::frmMaintainMillagesSchool(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmMaintainMillagesSchool"));
    setWindowTitle(QStringLiteral("Maintain School Millages"));

    lblSchoolName = NamedLabel(this, "lblSchoolName");
    QFont big = lblSchoolName->font();
    big.setBold(true);
    big.setPointSize(big.pointSize() + 2);
    lblSchoolName->setFont(big);
    lblSchoolName->setAlignment(Qt::AlignCenter);

    auto* rates = new QGroupBox(QStringLiteral("School"), this);
    rates->setObjectName(QStringLiteral("fraSchool"));
    txtSMR = NamedField(rates, "txtSMR");
    txtS1TaxName = NamedField(rates, "txtS1TaxName", 10);
    txtS1MR = NamedField(rates, "txtS1MR");
    txtSD = NamedField(rates, "txtSD");
    txtSP = NamedField(rates, "txtSP");
    txtSPC = NamedField(rates, "txtSPC");
    txtSMO = NamedField(rates, "txtSMO");
    txtPCSD = NamedField(rates, "txtPCSD");
    txtPCSP = NamedField(rates, "txtPCSP");
    auto* rateForm = new QFormLayout(rates);
    rateForm->addRow(QStringLiteral("Real Estate Millage:"), txtSMR);
    rateForm->addRow(QStringLiteral("Special Tax Name:"), txtS1TaxName);
    rateForm->addRow(QStringLiteral("Special Millage:"), txtS1MR);
    rateForm->addRow(QStringLiteral("Real Estate Discount %:"), txtSD);
    rateForm->addRow(QStringLiteral("Real Estate Penalty %:"), txtSP);
    rateForm->addRow(QStringLiteral("Per Capita Amount:"), txtSPC);
    rateForm->addRow(QStringLiteral("Occupation Rate:"), txtSMO);
    rateForm->addRow(QStringLiteral("Per Capita Discount %:"), txtPCSD);
    rateForm->addRow(QStringLiteral("Per Capita Penalty %:"), txtPCSP);

    auto* formula = new QGroupBox(QStringLiteral("Formula and Exclusions"), this);
    formula->setObjectName(QStringLiteral("fraFormula"));
    chkFormula = new QCheckBox(
        QStringLiteral("Use formula: (Assessment/Steb Ratio) x Market Ratio x Millage"), formula);
    chkFormula->setObjectName(QStringLiteral("chkFormula"));
    txtStebRatio = NamedField(formula, "txtStebRatio");
    txtMarketRatio = NamedField(formula, "txtMarketRatio");
    txtHSExclusion = NamedField(formula, "txtHSExclusion");
    txtFSExclusion = NamedField(formula, "txtFSExclusion");
    auto* formulaForm = new QFormLayout(formula);
    formulaForm->addRow(chkFormula);
    formulaForm->addRow(QStringLiteral("Steb Ratio:"), txtStebRatio);
    formulaForm->addRow(QStringLiteral("Market Ratio:"), txtMarketRatio);
    formulaForm->addRow(QStringLiteral("Homestead Exclusion:"), txtHSExclusion);
    formulaForm->addRow(QStringLiteral("Farmstead Exclusion:"), txtFSExclusion);

    billSchool.build(this, "fraBillSchool", QStringLiteral("School Billing Time Frame"),
                     "optBillSchoolEarly", "optBillSchoolLate");

    auto* dateFrame = new QGroupBox(QStringLiteral("Billing Dates"), this);
    dateFrame->setObjectName(QStringLiteral("fraDates"));
    auto* dateForm = new QFormLayout(dateFrame);
    dates.build(dateFrame, dateForm, QString());
    cmdCalcDates =
        NamedButton(dateFrame, "cmdCalcDates", QStringLiteral("Figure Dates On Mail Date"));
    dateForm->addRow(cmdCalcDates);
    txtPayment1Date = NamedField(dateFrame, "txtPayment1Date", 10);
    txtPayment2Date = NamedField(dateFrame, "txtPayment2Date", 10);
    txtPayment3Date = NamedField(dateFrame, "txtPayment3Date", 10);
    dateForm->addRow(QStringLiteral("Payment 1 Date:"), txtPayment1Date);
    dateForm->addRow(QStringLiteral("Payment 2 Date:"), txtPayment2Date);
    dateForm->addRow(QStringLiteral("Payment 3 Date:"), txtPayment3Date);

    cmdAccept = NamedButton(this, "cmdAccept", QStringLiteral("&Accept"));
    cmdClearScreen = NamedButton(this, "cmdClearScreen", QStringLiteral("&Clear Screen"), false);
    cmdReset = NamedButton(this, "cmdReset", QStringLiteral("&Reset"), false);
    cmdPrintScreen = NamedButton(this, "cmdPrintScreen", QStringLiteral("&Print Screen"), false);
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    cmdExit = NamedButton(this, "cmdExit", QStringLiteral("E&xit"), false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton* b : {cmdAccept, cmdClearScreen, cmdReset, cmdPrintScreen, cmdExit})
        buttons->addWidget(b);

    auto* grid = new QGridLayout;
    grid->addWidget(rates, 0, 0, 2, 1);
    grid->addWidget(formula, 0, 1);
    grid->addWidget(billSchool.frame, 1, 1);
    grid->addWidget(dateFrame, 0, 2, 2, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblSchoolName);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    QList<QWidget*> order{txtSMR,         txtS1TaxName,   txtS1MR,          txtSD,
                          txtSP,          txtSPC,         txtSMO,           txtPCSD,
                          txtPCSP,        chkFormula,     txtStebRatio,     txtMarketRatio,
                          txtHSExclusion, txtFSExclusion, billSchool.early, billSchool.late};
    for (QLineEdit* f : dates.fields())
        order << f;
    order << cmdCalcDates << txtPayment1Date << txtPayment2Date << txtPayment3Date << cmdAccept;
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);

    connect(cmdCalcDates, &QPushButton::clicked, this,
            [this] { dates.figure(SchoolDateMessages[0]); });
    connect(cmdAccept, &QPushButton::clicked, this, &frmMaintainMillagesSchool::accept);
    connect(cmdClearScreen, &QPushButton::clicked, this, &frmMaintainMillagesSchool::clearScreen);
    connect(cmdReset, &QPushButton::clicked, this, &frmMaintainMillagesSchool::loadFromTable);
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });

    loadFromTable();
    ReloadOnActivation(this, [this] { loadFromTable(); });
}

void frmMaintainMillagesSchool::loadFromTable() {
    PleaseWait wait(frmMessage::Searching);
    QSqlDatabase db = session().DbConnection;

    m_district.clear();
    m_ward.clear();
    QSqlQuery district(db);
    if (district.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) &&
        district.next()) {
        m_district = TextField(district.value(0));
        m_ward = TextField(district.value(1));
    }
    QSqlQuery name(db);
    name.prepare(
        QStringLiteral("SELECT SchoolName FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    name.addBindValue(m_district);
    name.addBindValue(m_ward);
    lblSchoolName->clear();
    if (name.exec() && name.next())
        lblSchoolName->setText(TextField(name.value(0)));

    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District = ? AND Ward = ?"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    QSqlRecord row;
    if (q.exec() && q.next())
        row = q.record();
    auto value = [&row](const QString& column) { return row.value(column); };
    auto col = [&row](const char* column) { return row.value(QLatin1String(column)); };

    m_taxYear = TextField(col("TaxYear")).left(4);
    txtSMR->setText(RateText(col("SMR")));
    txtS1MR->setText(RateText(col("S1MR")));
    txtS1TaxName->setText(TextField(col("S1TaxName")));
    txtSD->setText(RateText(col("SD")));
    txtSP->setText(RateText(col("SP")));
    txtSMO->setText(RateText(col("SMO")));
    txtSPC->setText(RateText(col("SPC")));
    txtPCSD->setText(RateText(col("PCSD")));
    txtPCSP->setText(RateText(col("PCSP")));
    chkFormula->setChecked(TextField(col("SchoolFormula")).trimmed() == QLatin1String("Y"));
    txtStebRatio->setText(RateText(col("SchoolStebRatio")));
    txtMarketRatio->setText(RateText(col("SchoolMarketRatio")));
    txtHSExclusion->setText(AmountText(col("HSExclusion")));
    txtFSExclusion->setText(AmountText(col("FSExclusion")));

    const QString billing = TextField(col("BillSchool"));
    billSchool.setFlag(billing);
    // One date group: the early set for early billing, the late set otherwise.
    const QString prefix =
        billing.trimmed() == QLatin1String("E") ? QString() : QStringLiteral("Late");
    dates.show(value, prefix);
    txtPayment1Date->setText(StoredDateText(value(prefix + QStringLiteral("Payment1Date"))));
    txtPayment2Date->setText(StoredDateText(value(prefix + QStringLiteral("Payment2Date"))));
    txtPayment3Date->setText(StoredDateText(value(prefix + QStringLiteral("Payment3Date"))));

    txtSMR->setFocus();
}

void frmMaintainMillagesSchool::clearScreen() {
    for (QLineEdit* field : findChildren<QLineEdit*>())
        field->clear();
    billSchool.clear();
    txtSMR->setFocus();
}

void frmMaintainMillagesSchool::accept() {
    if (billSchool.flag().isEmpty()) {
        MsgBox(QStringLiteral("School Billing Time Frame must be selected."),
               QString::fromLatin1(EnterTimeFrameTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        billSchool.early->setFocus();
        return;
    }
    if (!dates.check(SchoolDateMessages))
        return;
    const std::array<QLineEdit*, 3> payments{txtPayment1Date, txtPayment2Date, txtPayment3Date};
    // The third message reads as it always has.
    static const char* const paymentMessages[3] = {"Payment 1 Date Must Be A Valid Date",
                                                   "Payment 2 Date Must Be A Valid Date",
                                                   "Payment # Date Must Be A Valid Date"};
    bool anyPayment = false;
    for (QLineEdit* f : payments)
        if (!f->text().trimmed().isEmpty())
            anyPayment = true;
    if (anyPayment) {
        for (int i = 0; i < 3; ++i) {
            if (!ParseTypedDate(payments[i]->text())) {
                MsgBox(QString::fromLatin1(paymentMessages[i]),
                       QString::fromLatin1(EnterDatesTitle), MsgButtons::Ok, MsgIcon::Exclamation);
                payments[i]->setFocus();
                return;
            }
        }
    }
    if (!CheckNumberFields({
            {txtSMR, "School Real Estate Millage Rate must be numeric."},
            {txtS1MR, "School Special Millage Rate must be numeric."},
            {txtSD, "School Real Estate Discount Rate must be numeric."},
            {txtSP, "School Real Estate Penalty Rate must be numeric."},
            {txtSMO, "School Occupation Rate must be numeric."},
            {txtSPC, "School Per Capita Rate must be numeric"},
            {txtPCSD, "School Per Capita Discount Rate must be numeric"},
            {txtPCSP, "School Per Capita Penalty Rate must be numeric"},
            {txtStebRatio, "Steb Ratio must be numeric"},
            {txtMarketRatio, "Market Ratio must be numeric"},
            {txtHSExclusion, "Homestead Exclusion must be numeric", true},
            {txtFSExclusion, "Farmstead Exclusion must be numeric", true},
        }))
        return;

    SchoolMillages v;
    v.district = m_district;
    v.ward = m_ward;
    v.taxYear = m_taxYear;
    v.smr = RateOf(txtSMR);
    v.s1mr = RateOf(txtS1MR);
    v.s1TaxName = txtS1TaxName->text();
    v.sd = RateOf(txtSD);
    v.sp = RateOf(txtSP);
    v.smo = RateOf(txtSMO);
    v.spc = RateOf(txtSPC);
    v.pcsd = RateOf(txtPCSD);
    v.pcsp = RateOf(txtPCSP);
    v.lateBilling = billSchool.flag() == QLatin1String("L");
    v.dates = dates.dates();
    for (int i = 0; i < 3; ++i)
        v.paymentDates[i] = ParseTypedDate(payments[i]->text()).value_or(QDate());
    v.formula = chkFormula->isChecked();
    v.stebRatio = RateOf(txtStebRatio);
    v.marketRatio = RateOf(txtMarketRatio);
    v.hsExclusion = AmountOf(txtHSExclusion);
    v.fsExclusion = AmountOf(txtFSExclusion);

    QString error;
    bool saved = false;
    {
        PleaseWait wait(frmMessage::SavingData);
        saved = SaveSchoolMillages(session().DbConnection, v, &error);
    }
    if (!saved) {
        MsgBox(QStringLiteral("The millages could not be saved: ") + error,
               QString::fromLatin1(MillagesTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    MsgBox(QStringLiteral("Record Updated"), QString::fromLatin1(MillagesTitle), MsgButtons::Ok,
           MsgIcon::Exclamation);
}
