#include "rates/maintain_millages_township.h"

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

namespace {

void bindDates(QSqlQuery& q, const MillageDateSet& d) {
    for (const QDate& date :
         {d.mail, d.discountEnd, d.faceFirst, d.faceLast, d.penaltyFirst, d.lastDay, d.taxClaim})
        q.addBindValue(DateValue(date));
}

void bindNotice(QSqlQuery& q, const BillNotice& n) {
    for (const QString& line : n.lines)
        q.addBindValue(line);
    q.addBindValue(n.phone);
    q.addBindValue(n.printEscrow ? 1 : 0);
}

QGroupBox* rateFrame(QWidget* parent, const char* name, const QString& title) {
    auto* frame = new QGroupBox(title, parent);
    frame->setObjectName(QString::fromLatin1(name));
    return frame;
}

} // namespace

bool SaveTownshipMillages(QSqlDatabase db, const TownshipMillages& v, QString* error) {
    if (!db.transaction()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    QSqlQuery q(db);
    q.prepare(QStringLiteral(
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
        "WHERE District = ? AND Ward = ? AND TaxYear = ?"));
    for (double rate : {v.tmr, v.lmr, v.tmo, v.tpc, v.td, v.tp, v.pctd, v.pctp})
        q.addBindValue(rate);
    bindNotice(q, v.early);
    bindNotice(q, v.late);
    bindDates(q, v.earlyDates);
    bindDates(q, v.lateDates);
    q.addBindValue(v.billCounty);
    q.addBindValue(v.billTwp);
    q.addBindValue(MoneyValue(v.tolerance));
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

frmMaintainMillagesTownship::frmMaintainMillagesTownship(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmMaintainMillagesTownship"));
    setWindowTitle(QStringLiteral("Maintain Township/Borough/City Millages"));

    lblTwpBoro = NamedLabel(this, "lblTwpBoro");
    QFont big = lblTwpBoro->font();
    big.setBold(true);
    big.setPointSize(big.pointSize() + 2);
    lblTwpBoro->setFont(big);
    lblTwpBoro->setAlignment(Qt::AlignCenter);

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
    auto referenceFrame = [this](const char* name, const QString& title,
                                 std::array<QLineEdit**, 9> members,
                                 std::array<const char*, 9> names) {
        QGroupBox* frame = rateFrame(this, name, title);
        static const char* const labels[9] = {
            "Real Estate Millage:",    "Special Millage:",       "Special Tax Name:",
            "Real Estate Discount %:", "Real Estate Penalty %:", "Occupation Rate:",
            "Per Capita Amount:",      "Per Capita Discount %:", "Per Capita Penalty %:"};
        auto* form = new QFormLayout(frame);
        for (int i = 0; i < 9; ++i) {
            *members[i] = NamedField(frame, names[i]);
            (*members[i])->setReadOnly(true);
            form->addRow(QString::fromLatin1(labels[i]), *members[i]);
        }
        return frame;
    };
    QGroupBox* school = referenceFrame(
        "fraSchool", QStringLiteral("School"),
        {&txtSMR, &txtS1MR, &txtS1TaxName, &txtSD, &txtSP, &txtSMO, &txtSPC, &txtPCSD, &txtPCSP},
        {"txtSMR", "txtS1MR", "txtS1TaxName", "txtSD", "txtSP", "txtSMO", "txtSPC", "txtPCSD",
         "txtPCSP"});
    QGroupBox* county = referenceFrame(
        "fraCounty", QStringLiteral("County"),
        {&txtCMR, &txtC1MR, &txtC1TaxName, &txtCD, &txtCP, &txtCMO, &txtCPC, &txtPCCD, &txtPCCP},
        {"txtCMR", "txtC1MR", "txtC1TaxName", "txtCD", "txtCP", "txtCMO", "txtCPC", "txtPCCD",
         "txtPCCP"});

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
    grid->addWidget(twp, 0, 0);
    grid->addWidget(school, 0, 1);
    grid->addWidget(county, 0, 2);
    grid->addWidget(earlyFrame, 1, 0);
    grid->addWidget(lateFrame, 1, 1);
    grid->addLayout(timeFrames, 1, 2);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblTwpBoro);
    layout->addLayout(grid);
    layout->addLayout(buttons);

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
          << billSchool.late << billCounty.early << billCounty.late << cmdAccept;
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);

    connect(cmdCalcDatesEarly, &QPushButton::clicked, this,
            [this] { early.figure(EarlyDateMessages[0]); });
    connect(cmdCalcDatesLate, &QPushButton::clicked, this,
            [this] { late.figure(LateDateMessages[0]); });
    connect(cmdAccept, &QPushButton::clicked, this, &frmMaintainMillagesTownship::accept);
    connect(cmdClearScreen, &QPushButton::clicked, this, &frmMaintainMillagesTownship::clearScreen);
    connect(cmdReset, &QPushButton::clicked, this, &frmMaintainMillagesTownship::loadFromTable);
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });

    loadFromTable();
    ReloadOnActivation(this, [this] { loadFromTable(); });
}

QList<QLineEdit*> frmMaintainMillagesTownship::textFields() const {
    return findChildren<QLineEdit*>();
}

void frmMaintainMillagesTownship::loadFromTable() {
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
    name.prepare(QStringLiteral("SELECT TwpBoro FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    name.addBindValue(m_district);
    name.addBindValue(m_ward);
    lblTwpBoro->clear();
    if (name.exec() && name.next())
        lblTwpBoro->setText(TextField(name.value(0)));

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

    txtSMR->setText(RateText(col("SMR")));
    txtS1MR->setText(RateText(col("S1MR")));
    txtS1TaxName->setText(TextField(col("S1TaxName")));
    txtSD->setText(RateText(col("SD")));
    txtSP->setText(RateText(col("SP")));
    txtSMO->setText(RateText(col("SMO")));
    txtSPC->setText(RateText(col("SPC")));
    txtPCSD->setText(RateText(col("PCSD")));
    txtPCSP->setText(RateText(col("PCSP")));

    billTwp.setFlag(TextField(col("BillTwp")));
    billSchool.setFlag(TextField(col("BillSchool")));
    billCounty.setFlag(TextField(col("BillCounty")));

    QSqlQuery countyRow(db);
    QSqlRecord c;
    if (countyRow.exec(
            QStringLiteral("SELECT * FROM Millfile WHERE District = '00' AND Ward = '0'")) &&
        countyRow.next())
        c = countyRow.record();
    auto ccol = [&c](const char* column) { return c.value(QLatin1String(column)); };
    txtCMR->setText(RateText(ccol("SMR")));
    txtC1MR->setText(RateText(ccol("S1MR")));
    txtC1TaxName->setText(TextField(ccol("S1TaxName")));
    txtCD->setText(RateText(ccol("SD")));
    txtCP->setText(RateText(ccol("SP")));
    txtCMO->setText(RateText(ccol("SMO")));
    txtCPC->setText(RateText(ccol("SPC")));
    txtPCCD->setText(RateText(ccol("PCSD")));
    txtPCCP->setText(RateText(ccol("PCSP")));

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
    v.district = m_district;
    v.ward = m_ward;
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

    QString error;
    bool saved = false;
    {
        PleaseWait wait(frmMessage::SavingData);
        saved = SaveTownshipMillages(session().DbConnection, v, &error);
    }
    if (!saved) {
        MsgBox(QStringLiteral("The millages could not be saved: ") + error,
               QString::fromLatin1(MillagesTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    MsgBox(QStringLiteral("Record Changed"), QString::fromLatin1(MillagesTitle), MsgButtons::Ok,
           MsgIcon::Exclamation);
}
