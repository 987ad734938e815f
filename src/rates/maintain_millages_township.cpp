#include "rates/maintain_millages_township.h"

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

namespace {

QVariantList noticeValues(const BillNotice& n) {
    QVariantList values;
    for (const QString& line : n.lines)
        values << line;
    values << n.phone << (n.printEscrow ? 1 : 0);
    return values;
}

QGroupBox* rateFrame(QWidget* parent, const char* name, const QString& title) {
    auto* frame = new QGroupBox(title, parent);
    frame->setObjectName(QString::fromLatin1(name));
    return frame;
}

} // namespace

bool SaveTownshipMillages(QSqlDatabase db, const TownshipMillages& v, QString* error) {
    QVariantList values{v.tmr, v.lmr, v.tmo, v.tpc, v.td, v.tp, v.pctd, v.pctp};
    values << noticeValues(v.early) << noticeValues(v.late) << DateSetValues(v.earlyDates)
           << DateSetValues(v.lateDates) << v.billCounty << v.billTwp << MoneyValue(v.tolerance)
           << v.district << v.ward << v.taxYear;
    return UpdateInOneTransaction(
        db,
        QStringLiteral(
            "UPDATE Millfile SET TMR = ?, LMR = ?, TMO = ?, TPC = ?, TD = ?, TP = ?, PCTD = ?, "
            "PCTP = ?, "
            "Line1 = ?, Line2 = ?, Line3 = ?, Line4 = ?, Line5 = ?, Line6 = ?, Line7 = ?, "
            "TCPhone = ?, PrintEscrow = ?, "
            "LateLine1 = ?, LateLine2 = ?, LateLine3 = ?, LateLine4 = ?, LateLine5 = ?, "
            "LateLine6 = ?, LateLine7 = ?, LateTCPhone = ?, LatePrintEscrow = ?, "
            "MailDate = ?, DiscDate = ?, FaceDate1 = ?, FaceDate2 = ?, PenDate = ?, LastDate = ?, "
            "TaxDate = ?, "
            "LateMailDate = ?, LateDiscDate = ?, LateFaceDate1 = ?, LateFaceDate2 = ?, "
            "LatePenDate = ?, LateLastDate = ?, LateTaxDate = ?, "
            "PLine1 = '', PLine2 = '', LatePLine1 = '', LatePLine2 = '', "
            "BillCounty = ?, BillTwp = ?, Tolerance = ? "
            "WHERE District = ? AND Ward = ? AND TaxYear = ?"),
        values, error);
}

frmMaintainMillagesTownship::frmMaintainMillagesTownship(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmMaintainMillagesTownship"));
    setWindowTitle(QStringLiteral("Maintain Township/Borough/City Millages"));

    lblTwpBoro = TitleLabel(this, "lblTwpBoro");

    // The municipality's own rates.
    QGroupBox* twp = rateFrame(this, "fraTwp", QStringLiteral("Twp/Boro/City"));
    txtTMR = NamedField(twp, "txtTMR");
    txtLMR = NamedField(twp, "txtLMR");
    txtTD = NamedField(twp, "txtTD");
    txtTP = NamedField(twp, "txtTP");
    txtTPC = NamedField(twp, "txtTPC");
    txtTMO = NamedField(twp, "txtTMO");
    txtPCTD = NamedField(twp, "txtPCTD");
    txtPCTP = NamedField(twp, "txtPCTP");
    txtTolerance = NamedField(twp, "txtTolerance", 4);
    auto* twpForm = new QFormLayout(twp);
    twpForm->addRow(QStringLiteral("Real Estate Millage:"), txtTMR);
    twpForm->addRow(QStringLiteral("Library Millage:"), txtLMR);
    twpForm->addRow(QStringLiteral("Real Estate Discount %:"), txtTD);
    twpForm->addRow(QStringLiteral("Real Estate Penalty %:"), txtTP);
    twpForm->addRow(QStringLiteral("Per Capita Amount:"), txtTPC);
    twpForm->addRow(QStringLiteral("Occupation Rate:"), txtTMO);
    twpForm->addRow(QStringLiteral("Per Capita Discount %:"), txtPCTD);
    twpForm->addRow(QStringLiteral("Per Capita Penalty %:"), txtPCTP);
    twpForm->addRow(QStringLiteral("Overage / Underage Tolerance:"), txtTolerance);

    // The school's and the county's rates, shown for reference only.
    QGroupBox* school =
        schoolRates.buildReference(this, "fraSchool", QStringLiteral("School"), 'S');
    QGroupBox* county =
        countyRates.buildReference(this, "fraCounty", QStringLiteral("County"), 'C');

    // One frame per billing time frame: notice lines, phone, escrow box and dates.
    auto billingFrame = [this](const char* name, const QString& title, const QString& prefix,
                               std::array<QLineEdit*, 7>& lines, QLineEdit*& phone,
                               QCheckBox*& escrow, DateGroupFields& dates, QPushButton*& calc,
                               const char* calcName) {
        auto* frame = new QGroupBox(title, this);
        frame->setObjectName(QString::fromLatin1(name));
        auto* form = new QFormLayout(frame);
        for (int i = 0; i < 7; ++i) {
            lines[i] = new QLineEdit(frame);
            lines[i]->setObjectName(QStringLiteral("txt%1Line%2").arg(prefix).arg(i + 1));
            lines[i]->setMaxLength(50);
            form->addRow(QStringLiteral("Line %1:").arg(i + 1), lines[i]);
        }
        phone = new QLineEdit(frame);
        phone->setObjectName(QStringLiteral("txt%1TCPhone").arg(prefix));
        phone->setMaxLength(14);
        form->addRow(QStringLiteral("Tax Collector Phone:"), phone);
        escrow = new QCheckBox(
            QStringLiteral("Print: If taxes are escrowed, forward bill to mort. holder."), frame);
        escrow->setObjectName(QStringLiteral("chk%1PrintEscrow").arg(prefix));
        form->addRow(escrow);
        dates.build(frame, form, prefix);
        calc = NamedButton(frame, calcName, QStringLiteral("Figure Dates On Mail Date"));
        form->addRow(calc);
        return frame;
    };
    QGroupBox* earlyFrame =
        billingFrame("fraEarlyBilling", QStringLiteral("Early Billing"), QString(), txtLine,
                     txtTCPhone, chkPrintEscrow, early, cmdCalcDatesEarly, "cmdCalcDatesEarly");
    QGroupBox* lateFrame = billingFrame(
        "fraLateBilling", QStringLiteral("Late Billing"), QStringLiteral("Late"), txtLateLine,
        txtLateTCPhone, chkLatePrintEscrow, late, cmdCalcDatesLate, "cmdCalcDatesLate");

    billTwp.build(this, "fraBillTwp", QStringLiteral("Twp/Boro/City Billing Time Frame"),
                  "optBillTwpEarly", "optBillTwpLate");
    billSchool.build(this, "fraBillSchool", QStringLiteral("School Billing Time Frame"),
                     "optBillSchoolEarly", "optBillSchoolLate");
    billCounty.build(this, "fraBillCounty", QStringLiteral("County Billing Time Frame"),
                     "optBillCountyEarly", "optBillCountyLate");
    auto* timeFrames = new QVBoxLayout;
    timeFrames->addWidget(billTwp.frame);
    timeFrames->addWidget(billSchool.frame);
    timeFrames->addWidget(billCounty.frame);
    timeFrames->addStretch();

    buttons.build(this, true);

    auto* grid = new QGridLayout;
    grid->addWidget(twp, 0, 0);
    grid->addWidget(school, 0, 1);
    grid->addWidget(county, 0, 2);
    grid->addWidget(earlyFrame, 1, 0);
    grid->addWidget(lateFrame, 1, 1);
    grid->addLayout(timeFrames, 1, 2);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblTwpBoro);
    layout->addLayout(grid);
    layout->addLayout(buttons.row);

    // Tab order: the municipality's rates, then early and late billing, then the time frames.
    QList<QWidget*> order{txtTMR, txtLMR,  txtTD,   txtTP,       txtTPC,
                          txtTMO, txtPCTD, txtPCTP, txtTolerance};
    for (QLineEdit* f : txtLine)
        order << f;
    order << txtTCPhone << chkPrintEscrow;
    for (QLineEdit* f : early.fields())
        order << f;
    order << cmdCalcDatesEarly;
    for (QLineEdit* f : txtLateLine)
        order << f;
    order << txtLateTCPhone << chkLatePrintEscrow;
    for (QLineEdit* f : late.fields())
        order << f;
    order << cmdCalcDatesLate << billTwp.early << billTwp.late << billSchool.early
          << billSchool.late << billCounty.early << billCounty.late << buttons.cmdAccept;
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);

    connect(cmdCalcDatesEarly, &QPushButton::clicked, this,
            [this] { early.figure(EarlyDateMessages[0]); });
    connect(cmdCalcDatesLate, &QPushButton::clicked, this,
            [this] { late.figure(LateDateMessages[0]); });
    connect(buttons.cmdAccept, &QPushButton::clicked, this, &frmMaintainMillagesTownship::accept);
    connect(buttons.cmdClearScreen, &QPushButton::clicked, this,
            &frmMaintainMillagesTownship::clearScreen);
    connect(buttons.cmdReset, &QPushButton::clicked, this,
            &frmMaintainMillagesTownship::loadFromTable);

    loadFromTable();
    ReloadOnActivation(this, [this] { loadFromTable(); });
}

QList<QLineEdit*> frmMaintainMillagesTownship::textFields() const {
    return findChildren<QLineEdit*>();
}

void frmMaintainMillagesTownship::loadFromTable() {
    PleaseWait wait(frmMessage::Searching);
    QSqlDatabase db = session().DbConnection;

    m_office = ReadOfficeDistrict(db);
    lblTwpBoro->setText(ReadTwpboroName(db, "TwpBoro", m_office));
    const QSqlRecord row = ReadMillfileRow(db, m_office);
    auto value = [&row](const QString& column) { return row.value(column); };
    auto col = [&row](const char* column) { return row.value(QLatin1String(column)); };

    m_taxYear = TextField(col("TaxYear")).left(4);
    for (int i = 0; i < 7; ++i) {
        txtLine[i]->setText(TextField(value(QStringLiteral("Line%1").arg(i + 1))));
        txtLateLine[i]->setText(TextField(value(QStringLiteral("LateLine%1").arg(i + 1))));
    }
    txtTCPhone->setText(TextField(col("TCPhone")));
    txtLateTCPhone->setText(TextField(col("LateTCPhone")));
    chkPrintEscrow->setChecked(col("PrintEscrow").toInt() != 0);
    chkLatePrintEscrow->setChecked(col("LatePrintEscrow").toInt() != 0);
    early.show(value, QString());
    late.show(value, QStringLiteral("Late"));

    txtTMR->setText(RateText(col("TMR")));
    txtLMR->setText(RateText(col("LMR")));
    txtTD->setText(RateText(col("TD")));
    txtTP->setText(RateText(col("TP")));
    txtTMO->setText(RateText(col("TMO")));
    txtTPC->setText(RateText(col("TPC")));
    txtPCTD->setText(RateText(col("PCTD")));
    txtPCTP->setText(RateText(col("PCTP")));
    const QString tolerance = AmountText(col("Tolerance"));
    txtTolerance->setMaxLength(std::max<int>(4, tolerance.size()));
    txtTolerance->setText(tolerance);

    schoolRates.show(row);

    billTwp.setFlag(TextField(col("BillTwp")));
    billSchool.setFlag(TextField(col("BillSchool")));
    billCounty.setFlag(TextField(col("BillCounty")));

    countyRates.show(ReadCountyMillfileRow(db));

    txtTMR->setFocus();
}

void frmMaintainMillagesTownship::clearScreen() {
    for (QLineEdit* field : textFields())
        field->clear();
    chkPrintEscrow->setChecked(false);
    chkLatePrintEscrow->setChecked(false);
    billTwp.clear();
    billSchool.clear();
    billCounty.clear();
    txtTMR->setFocus();
}

void frmMaintainMillagesTownship::accept() {
    auto timeFrameMissing = [](const char* text) {
        MsgBox(QString::fromLatin1(text), QString::fromLatin1(EnterTimeFrameTitle), MsgButtons::Ok,
               MsgIcon::Exclamation);
    };
    if (billTwp.flag().isEmpty()) {
        timeFrameMissing("Twp/Boro/City Billing Time Frame must be selected.");
        billTwp.early->setFocus();
        return;
    }
    if (billCounty.flag().isEmpty()) {
        timeFrameMissing("County Billing Time Frame must be selected.");
        billCounty.early->setFocus();
        return;
    }
    if (!early.check(EarlyDateMessages) || !late.check(LateDateMessages))
        return;
    if (!CheckNumberFields({
            {txtTMR, "Twp/Boro/City Real Estate Millage Rate must be numeric."},
            {txtLMR, "Library Millage Rate must be numeric."},
            {txtTD, "Twp/Boro/City Real Estate Discount Rate must be numeric."},
            {txtTP, "Twp/Boro/City Real Estate Penalty Rate must be numeric."},
            {txtTMO, "Twp/Boro/City Occupation Rate must be numeric."},
            {txtTPC, "Twp/Boro/City Per Capita Rate must be numeric"},
            {txtPCTD, "Twp/Boro/City Per Capita Discount Rate must be numeric"},
            {txtPCTP, "Twp/Boro/City Per Capita Penalty Rate must be numeric"},
            {txtTolerance, "Overage/Underage Tolerance must be numeric", true},
        }))
        return;

    TownshipMillages v;
    v.district = m_office.district;
    v.ward = m_office.ward;
    v.taxYear = m_taxYear;
    v.tmr = RateOf(txtTMR);
    v.lmr = RateOf(txtLMR);
    v.tmo = RateOf(txtTMO);
    v.tpc = RateOf(txtTPC);
    v.td = RateOf(txtTD);
    v.tp = RateOf(txtTP);
    v.pctd = RateOf(txtPCTD);
    v.pctp = RateOf(txtPCTP);
    for (int i = 0; i < 7; ++i) {
        v.early.lines[i] = txtLine[i]->text();
        v.late.lines[i] = txtLateLine[i]->text();
    }
    v.early.phone = txtTCPhone->text();
    v.late.phone = txtLateTCPhone->text();
    v.early.printEscrow = chkPrintEscrow->isChecked();
    v.late.printEscrow = chkLatePrintEscrow->isChecked();
    v.earlyDates = early.dates();
    v.lateDates = late.dates();
    v.billCounty = billCounty.flag();
    v.billTwp = billTwp.flag();
    v.tolerance = AmountOf(txtTolerance);

    SaveMillages(
        [&v](QString* error) { return SaveTownshipMillages(session().DbConnection, v, error); },
        "Record Changed");
}
