#include "rates/maintain_millages_school.h"

#include "core/common_values.h"
#include "core/message_window.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/tax_database.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlRecord>
#include <QVBoxLayout>

bool SaveSchoolMillages(QSqlDatabase db, const SchoolMillages& v, QString* error) {
    const QString p = v.lateBilling ? QStringLiteral("Late") : QString();
    QVariantList values = BodyRateValues(v);
    values << DateSetValues(v.dates);
    for (const QDate& date : v.paymentDates)
        values << DateValue(date);
    values << (v.lateBilling ? QStringLiteral("L") : QStringLiteral("E"))
           << (v.formula ? QStringLiteral("Y") : QStringLiteral("N")) << v.stebRatio
           << v.marketRatio << MoneyValue(v.hsExclusion) << MoneyValue(v.fsExclusion) << v.district
           << v.ward << v.taxYear;
    return UpdateInOneTransaction(
        db,
        QStringLiteral("UPDATE Millfile SET %2, "
                       "%1MailDate = ?, %1DiscDate = ?, %1FaceDate1 = ?, %1FaceDate2 = ?, "
                       "%1PenDate = ?, %1LastDate = ?, %1TaxDate = ?, "
                       "%1Payment1Date = ?, %1Payment2Date = ?, %1Payment3Date = ?, "
                       "BillSchool = ?, SchoolFormula = ?, SchoolStebRatio = ?, "
                       "SchoolMarketRatio = ?, HSExclusion = ?, FSExclusion = ? "
                       "WHERE District = ? AND Ward = ? AND TaxYear = ?")
            .arg(p, QLatin1String(BodyRateAssignments)),
        values, error);
}

frmMaintainMillagesSchool::frmMaintainMillagesSchool(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmMaintainMillagesSchool"));
    setWindowTitle(QStringLiteral("Maintain School Millages"));

    lblSchoolName = TitleLabel(this, "lblSchoolName");
    QGroupBox* rates = school.build(this, "fraSchool", QStringLiteral("School"), 'S');

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

    buttons.build(this, true);

    auto* grid = new QGridLayout;
    grid->addWidget(rates, 0, 0, 2, 1);
    grid->addWidget(formula, 0, 1);
    grid->addWidget(billSchool.frame, 1, 1);
    grid->addWidget(dateFrame, 0, 2, 2, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblSchoolName);
    layout->addLayout(grid);
    layout->addLayout(buttons.row);

    QList<QWidget*> order;
    for (QLineEdit* f : school.editOrder())
        order << f;
    order << chkFormula << txtStebRatio << txtMarketRatio << txtHSExclusion << txtFSExclusion
          << billSchool.early << billSchool.late;
    for (QLineEdit* f : dates.fields())
        order << f;
    order << cmdCalcDates << txtPayment1Date << txtPayment2Date << txtPayment3Date
          << buttons.cmdAccept;
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);

    connect(cmdCalcDates, &QPushButton::clicked, this,
            [this] { dates.figure(SchoolDateMessages[0]); });
    connect(buttons.cmdAccept, &QPushButton::clicked, this, &frmMaintainMillagesSchool::accept);
    connect(buttons.cmdClearScreen, &QPushButton::clicked, this,
            &frmMaintainMillagesSchool::clearScreen);
    connect(buttons.cmdReset, &QPushButton::clicked, this,
            &frmMaintainMillagesSchool::loadFromTable);

    loadFromTable();
    ReloadOnActivation(this, [this] { loadFromTable(); });
}

void frmMaintainMillagesSchool::loadFromTable() {
    PleaseWait wait(frmMessage::Searching);
    QSqlDatabase db = session().DbConnection;

    m_office = ReadOfficeDistrict(db);
    lblSchoolName->setText(ReadTwpboroName(db, "SchoolName", m_office));
    const QSqlRecord row = ReadMillfileRow(db, m_office);
    auto value = [&row](const QString& column) { return row.value(column); };
    auto col = [&row](const char* column) { return row.value(QLatin1String(column)); };

    m_taxYear = TextField(col("TaxYear")).left(4);
    school.show(row);
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

    school.mr->setFocus();
}

void frmMaintainMillagesSchool::clearScreen() {
    for (QLineEdit* field : findChildren<QLineEdit*>())
        field->clear();
    billSchool.clear();
    school.mr->setFocus();
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
    std::vector<NumberCheck> checks = school.checks("School");
    checks.insert(checks.end(), {
                                    {txtStebRatio, "Steb Ratio must be numeric"},
                                    {txtMarketRatio, "Market Ratio must be numeric"},
                                    {txtHSExclusion, "Homestead Exclusion must be numeric", true},
                                    {txtFSExclusion, "Farmstead Exclusion must be numeric", true},
                                });
    if (!CheckNumberFields(checks))
        return;

    SchoolMillages v;
    v.district = m_office.district;
    v.ward = m_office.ward;
    v.taxYear = m_taxYear;
    school.store(v);
    v.lateBilling = billSchool.flag() == QLatin1String("L");
    v.dates = dates.dates();
    for (int i = 0; i < 3; ++i)
        v.paymentDates[i] = ParseTypedDate(payments[i]->text()).value_or(QDate());
    v.formula = chkFormula->isChecked();
    v.stebRatio = RateOf(txtStebRatio);
    v.marketRatio = RateOf(txtMarketRatio);
    v.hsExclusion = AmountOf(txtHSExclusion);
    v.fsExclusion = AmountOf(txtFSExclusion);

    SaveMillages(
        [&v](QString* error) { return SaveSchoolMillages(session().DbConnection, v, error); },
        "Record Updated");
}
