#include "desk/realestate/reprint_receipt.h"

#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/realestate/payment_rules.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"
#include "reports/report_frame.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>

namespace {

const char* const NotOnFileTitle = "Void Receipt";
const char* const ReprintTitle = "Reprint Receipt";
constexpr char16_t AmountPattern[] = u"$###,###,##0.00";

QString periodWord(const QString& flag) {
    const QString f = flag.trimmed().toUpper();
    if (f == QLatin1String("D"))
        return QStringLiteral("DISCOUNT");
    if (f == QLatin1String("F"))
        return QStringLiteral("FACE");
    if (f == QLatin1String("P"))
        return QStringLiteral("PENALTY");
    if (f == QLatin1String("I"))
        return QStringLiteral("INSTALLMENTS");
    return QString();
}

// The caption of a line named by a tax: blank when there is no name.
QString caption(const QString& name) {
    return name.isEmpty() ? QString() : name + QLatin1Char(':');
}

} // namespace

// ---------------------------------------------------------------------------------------------
// The screen both duplicates share
// ---------------------------------------------------------------------------------------------

QLineEdit* ReprintReceiptScreen::field(const QString& name, QWidget* parent, int maxLength) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(name);
    edit->setReadOnly(true);
    if (maxLength > 0)
        edit->setMaxLength(maxLength);
    return edit;
}

QComboBox* ReprintReceiptScreen::readOnlyBox(const char* name, QWidget* parent) {
    auto* box = new QComboBox(parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setEnabled(false);
    return box;
}

void ReprintReceiptScreen::setBoxText(QComboBox* box, const QString& text) {
    box->clear();
    if (!text.isEmpty())
        box->addItem(text);
}

QString ReprintReceiptScreen::receiptText(const QSqlRecord& r, const char* column) {
    return TextField(r.value(QLatin1String(column))).trimmed();
}

QString ReprintReceiptScreen::amountText(Money m) {
    return m.format(AmountPattern);
}

ReprintReceiptScreen::ReprintReceiptScreen(const ReprintKind& kind, QWidget* parent)
    : QWidget(parent), m_kind(kind) {
    setObjectName(kind.objectName);
    // The scan screen presets its action from the screen last shown.
    session().LastScreenName = objectName();
    setWindowTitle(kind.windowTitle);

    txtRecnum = new QLineEdit(this);
    txtRecnum->setObjectName(QStringLiteral("txtRecnum"));
    txtRecnum->setMaxLength(12);

    // The receipt.
    auto* receipt = new QGroupBox(QStringLiteral("Receipt"), this);
    txtBillNo = field(QStringLiteral("txtBillNo"), receipt, 5);
    txtAdjNo = field(QStringLiteral("txtAdjNo"), receipt, 2);
    txtDate = field(QStringLiteral("txtDate"), receipt, 10);
    chkCounty = new QCheckBox(QStringLiteral("County Payment"), receipt);
    chkCounty->setObjectName(QStringLiteral("chkCounty"));
    chkTwp = new QCheckBox(QStringLiteral("Twp/Boro/City Payment"), receipt);
    chkTwp->setObjectName(QStringLiteral("chkTwp"));
    chkSchool = new QCheckBox(QStringLiteral("School Payment"), receipt);
    chkSchool->setObjectName(QStringLiteral("chkSchool"));
    for (QCheckBox* box : {chkCounty, chkTwp, chkSchool})
        box->setEnabled(false);
    txtPayor = field(QStringLiteral("txtPayor"), receipt, 50);
    txtPAddr1 = field(QStringLiteral("txtPAddr1"), receipt, 50);
    txtPAddr2 = field(QStringLiteral("txtPAddr2"), receipt, 50);
    txtPCity = field(QStringLiteral("txtPCity"), receipt, 25);
    cboPState = readOnlyBox("cboPState", receipt);
    txtPZipCode = field(QStringLiteral("txtPZipCode"), receipt, 5);
    txtPZipCode2 = field(QStringLiteral("txtPZipCode2"), receipt, 4);
    txtChecknum = field(QStringLiteral("txtChecknum"), receipt, 80);
    txtAmount = field(QStringLiteral("txtAmount"), receipt);
    {
        auto* city = new QHBoxLayout;
        city->addWidget(txtPCity, 3);
        city->addWidget(cboPState, 1);
        city->addWidget(txtPZipCode, 1);
        city->addWidget(txtPZipCode2, 1);
        auto* boxes = new QHBoxLayout;
        boxes->addWidget(chkCounty);
        boxes->addWidget(chkTwp);
        boxes->addWidget(chkSchool);
        auto* keys = new QHBoxLayout;
        keys->addWidget(txtBillNo);
        keys->addWidget(new QLabel(QStringLiteral("Adj #:"), receipt));
        keys->addWidget(txtAdjNo);
        keys->addWidget(new QLabel(QStringLiteral("Date Credited:"), receipt));
        keys->addWidget(txtDate);
        auto* form = new QFormLayout(receipt);
        form->addRow(QStringLiteral("Bill #:"), keys);
        form->addRow(boxes);
        form->addRow(QStringLiteral("Payor:"), txtPayor);
        form->addRow(QStringLiteral("Address:"), txtPAddr1);
        form->addRow(QString(), txtPAddr2);
        form->addRow(QStringLiteral("City/State/Zip:"), city);
        form->addRow(QStringLiteral("Check #:"), txtChecknum);
        form->addRow(QStringLiteral("Amount:"), txtAmount);
    }

    // The lines' group, with its totals and periods; the duplicate adds its lines.
    m_lines = new QGroupBox(QStringLiteral("Amounts Paid"), this);
    txtCTotal = field(QStringLiteral("txtCTotal"), m_lines);
    txtTTotal = field(QStringLiteral("txtTTotal"), m_lines);
    txtSTotal = field(QStringLiteral("txtSTotal"), m_lines);
    txtTotal = field(QStringLiteral("txtTotal"), m_lines);
    lblCPeriod = NamedLabel(m_lines, QStringLiteral("lblCPeriod"));
    lblTPeriod = NamedLabel(m_lines, QStringLiteral("lblTPeriod"));
    lblSPeriod = NamedLabel(m_lines, QStringLiteral("lblSPeriod"));

    // The bill's group, with the fields both duplicates have; the duplicate lays it out.
    m_bill = new QGroupBox(QStringLiteral("Owner"), this);
    txtControl = field(QStringLiteral("txtControl"), m_bill, 6);
    txtName = field(QStringLiteral("txtName"), m_bill, 50);
    txtAddr1 = field(QStringLiteral("txtAddr1"), m_bill, 50);
    txtAddr2 = field(QStringLiteral("txtAddr2"), m_bill, 50);
    txtCity = field(QStringLiteral("txtCity"), m_bill, 35);
    cboState = readOnlyBox("cboState", m_bill);
    txtZipCode = field(QStringLiteral("txtZipCode"), m_bill, 5);
    txtZipCode2 = field(QStringLiteral("txtZipCode2"), m_bill, 4);

    cmdPrint = new QPushButton(QStringLiteral("&Print"), this);
    cmdPrint->setObjectName(QStringLiteral("cmdPrint"));
    cmdPrintScreen = new QPushButton(QStringLiteral("Print &Screen"), this);
    cmdPrintScreen->setObjectName(QStringLiteral("cmdPrintScreen"));
    cmdExit = new QPushButton(QStringLiteral("E&xit"), this);
    cmdExit->setObjectName(QStringLiteral("cmdExit"));
    cmdExit->setFocusPolicy(Qt::NoFocus);
    connect(cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(ScreenPrintPrinter)); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });

    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(QStringLiteral("Receipt #:"), this));
    top->addWidget(txtRecnum);
    top->addStretch();
    m_left = new QVBoxLayout;
    m_left->addWidget(receipt);
    m_left->addWidget(m_lines);
    auto* middle = new QHBoxLayout;
    middle->addLayout(m_left, 1);
    middle->addWidget(m_bill, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdPrintScreen);
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(middle);
    layout->addLayout(buttons);

    // Tab order: the receipt number first, then the buttons.
    setTabOrder(txtRecnum, cmdPrint);
    setTabOrder(cmdPrint, cmdPrintScreen);

    m_leave = new FieldLeave(this);
    m_leave->onLeave(txtRecnum, [this] { txtRecnum_LostFocus(); });

    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        m_district = TextField(q.value(0));
        m_ward = TextField(q.value(1));
    }
}

void ReprintReceiptScreen::closeEvent(QCloseEvent* event) {
    // The focus leaves the receipt number as the screen goes: that is no leave of the user's.
    delete m_leave;
    m_leave = nullptr;
    QWidget::closeEvent(event);
}

void ReprintReceiptScreen::openFromQuery(const QString& recnum) {
    clearFields();
    txtRecnum->setText(recnum);
    txtRecnum_LostFocus();
}

void ReprintReceiptScreen::txtRecnum_LostFocus() {
    const QString recnum = txtRecnum->text().trimmed();
    m_lastLeft = recnum;
    if (recnum.isEmpty() || recnum == m_recnum)
        return;
    if (!showReceipt(recnum))
        txtRecnum->setFocus();
}

void ReprintReceiptScreen::clearFields() {
    m_recnum.clear();
    for (QLineEdit* edit : findChildren<QLineEdit*>()) {
        if (edit != txtRecnum)
            edit->clear();
        // Only the receipt number takes the focus by the keyboard.
        if (edit != txtRecnum)
            edit->setFocusPolicy(Qt::ClickFocus);
    }
    for (QComboBox* box : findChildren<QComboBox*>())
        box->clear();
    for (QCheckBox* box : {chkCounty, chkTwp, chkSchool})
        box->setChecked(false);
    for (QLabel* l : {lblCPeriod, lblTPeriod, lblSPeriod})
        l->clear();
    clearOwnFields();
}

void ReprintReceiptScreen::showReceiptKeys(const QSqlRecord& r) {
    txtControl->setText(receiptText(r, "Control"));
    txtName->setText(receiptText(r, "Name"));
}

bool ReprintReceiptScreen::showReceipt(const QString& recnum) {
    QSqlDatabase db = session().DbConnection;
    clearFields();
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE Recnum = ?").arg(m_kind.receipts));
    q.addBindValue(recnum);
    if (!q.exec() || !q.next()) {
        MsgBox(QStringLiteral("Receipt Number Not On File"), QString::fromLatin1(NotOnFileTitle),
               MsgButtons::Ok, MsgIcon::Exclamation);
        return false;
    }
    const QSqlRecord r = q.record();

    q.prepare(QStringLiteral("SELECT BTFlag FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(m_district);
    q.addBindValue(m_ward);
    m_btFlag = q.exec() && q.next() ? TextField(q.value(0)).trimmed() : QString();
    nameLines();

    // The bill as it stands now, found by the receipt's control number.
    q.prepare(QStringLiteral("SELECT BillNo FROM %1 WHERE Control = ?").arg(m_kind.master));
    q.addBindValue(TextField(r.value(QStringLiteral("Control"))));
    const QString billNo =
        q.exec() && q.next() ? TextField(q.value(0)) : TextField(r.value(QStringLiteral("BillNo")));
    const BillNow bill = ReadBillAsItStands(db, m_kind.duplicate, billNo);
    if (bill.found()) {
        const std::pair<QLineEdit*, const char*> texts[] = {
            {txtControl, "Control"},  {txtName, "Name"}, {txtAddr1, "Addr1"},
            {txtAddr2, "Addr2"},      {txtCity, "City"}, {txtZipCode, "ZipCode"},
            {txtZipCode2, "ZipCode2"}};
        for (const auto& [edit, column] : texts)
            edit->setText(bill.text(column).trimmed());
        setBoxText(cboState, bill.text("State").trimmed());
        showBill(bill);
    } else if (!CheckBillIntegrity(bill)) {
        if (bill.status == BillNow::Status::IncompleteAdjustment ||
            bill.status == BillNow::Status::IncompleteAddress)
            return false; // the integrity message has been shown
        showReceiptKeys(r);
    }

    // The receipt.
    txtBillNo->setText(TextField(r.value(QStringLiteral("BillNo"))));
    txtAdjNo->setText(QString::number(r.value(QStringLiteral("AdjNo")).toInt()));
    txtDate->setText(FormatDate(DateField(r.value(QStringLiteral("RDate")))));
    for (const auto& [edit, column] : {std::pair{txtPayor, "Payor"},
                                       {txtPAddr1, "PAddr1"},
                                       {txtPAddr2, "PAddr2"},
                                       {txtPCity, "PCity"},
                                       {txtPZipCode, "PZipCode"},
                                       {txtPZipCode2, "PZipCode2"},
                                       {txtChecknum, "Checknum"}})
        edit->setText(receiptText(r, column));
    setBoxText(cboPState, receiptText(r, "PState"));

    const QString cFlag = FlagField(r.value(QStringLiteral("CPayFlag"))).trimmed();
    const QString tFlag = FlagField(r.value(QStringLiteral("TPayFlag"))).trimmed();
    const QString sFlag = FlagField(r.value(QStringLiteral("SPayFlag"))).trimmed();
    chkCounty->setChecked(!cFlag.isEmpty());
    chkTwp->setChecked(!tFlag.isEmpty());
    chkSchool->setChecked(!sFlag.isEmpty());
    lblCPeriod->setText(periodWord(cFlag));
    lblTPeriod->setText(periodWord(tFlag));
    lblSPeriod->setText(periodWord(sFlag));

    const Money lines = showLines(r);
    txtAmount->setText(amountText(lines + MoneyField(r.value(QStringLiteral("Overage"))) +
                                  MoneyField(r.value(QStringLiteral("Refund")))));
    m_recnum = recnum;
    return true;
}

void ReprintReceiptScreen::cmdPrint_Click() {
    const QString typed = txtRecnum->text().trimmed();
    if (m_recnum.isEmpty() || typed != m_recnum) {
        // A number typed and not yet looked up (a leave that already complained is not
        // repeated).
        const bool alreadyRefused = !typed.isEmpty() && typed == m_lastLeft;
        if (alreadyRefused || typed.isEmpty()) {
            if (typed.isEmpty())
                MsgBox(QStringLiteral("Receipt Number Not On File"),
                       QString::fromLatin1(NotOnFileTitle), MsgButtons::Ok, MsgIcon::Exclamation);
            txtRecnum->setFocus();
            return;
        }
        m_lastLeft = typed;
        if (!showReceipt(typed)) {
            txtRecnum->setFocus();
            return;
        }
    }
    const ReceiptPrintOutcome outcome = m_kind.print(this, m_recnum);
    if (outcome == ReceiptPrintOutcome::Printed || outcome == ReceiptPrintOutcome::NoCopies)
        MsgBox(QStringLiteral("Receipt Printed"), QString::fromLatin1(ReprintTitle));
}

// ---------------------------------------------------------------------------------------------
// The real-estate reprint
// ---------------------------------------------------------------------------------------------

frmREReprintReceipt::frmREReprintReceipt(QWidget* parent)
    : ReprintReceiptScreen(
          {QStringLiteral("frmREReprintReceipt"), QStringLiteral("Reprint Real Estate Receipt"),
           QStringLiteral("TCReceipt"), QStringLiteral("TCMaster"), Duplicate::RealEstate,
           [](QWidget* screen, const QString& recnum) {
               return AskAndPrintREReceipt(screen, recnum);
           }},
          parent) {
    // The amounts.
    QGroupBox* amounts = linesGroup();
    txtCounty = field(QStringLiteral("txtCounty"), amounts);
    txtLibrary = field(QStringLiteral("txtLibrary"), amounts);
    txtC1Face = field(QStringLiteral("txtC1Face"), amounts);
    txtTwp = field(QStringLiteral("txtTwp"), amounts);
    for (int i = 0; i < 3; ++i) {
        txtSpecFace[i] = field(QStringLiteral("txtSpecFace(%1)").arg(i + 1), amounts);
        lblSpecFace[i] = NamedLabel(amounts, QStringLiteral("lblSpecFace(%1)").arg(i + 1));
    }
    txtSchool = field(QStringLiteral("txtSchool"), amounts);
    txtSch1Face = field(QStringLiteral("txtSch1Face"), amounts);
    lblC1Face = NamedLabel(amounts, QStringLiteral("lblC1Face"));
    lblTwp = NamedLabel(amounts, QStringLiteral("lblTwp"), QStringLiteral("Twp:"));
    lblSch1Face = NamedLabel(amounts, QStringLiteral("lblSch1Face"));
    {
        auto* grid = new QGridLayout(amounts);
        int row = 0;
        auto add = [&](QWidget* caption, QLineEdit* edit, int column) {
            grid->addWidget(caption, row, column * 2);
            grid->addWidget(edit, row, column * 2 + 1);
            ++row;
        };
        grid->addWidget(lblCPeriod, row++, 1);
        add(new QLabel(QStringLiteral("County:"), amounts), txtCounty, 0);
        add(new QLabel(QStringLiteral("Library:"), amounts), txtLibrary, 0);
        add(lblC1Face, txtC1Face, 0);
        add(new QLabel(QStringLiteral("County Total:"), amounts), txtCTotal, 0);
        row = 0;
        grid->addWidget(lblTPeriod, row++, 3);
        add(lblTwp, txtTwp, 1);
        for (int i = 0; i < 3; ++i)
            add(lblSpecFace[i], txtSpecFace[i], 1);
        add(new QLabel(QStringLiteral("Twp Total:"), amounts), txtTTotal, 1);
        row = 0;
        grid->addWidget(lblSPeriod, row++, 5);
        add(new QLabel(QStringLiteral("School:"), amounts), txtSchool, 2);
        add(lblSch1Face, txtSch1Face, 2);
        add(new QLabel(QStringLiteral("School Total:"), amounts), txtSTotal, 2);
        add(new QLabel(QStringLiteral("Total:"), amounts), txtTotal, 2);
    }

    fraInstallments = new QGroupBox(QStringLiteral("Installment Payments"), this);
    fraInstallments->setObjectName(QStringLiteral("fraInstallments"));
    {
        txtPayment1 = field(QStringLiteral("txtPayment1"), fraInstallments);
        txtPayment2 = field(QStringLiteral("txtPayment2"), fraInstallments);
        txtPayment3 = field(QStringLiteral("txtPayment3"), fraInstallments);
        txtInstDFP1 = field(QStringLiteral("txtInstDFP1"), fraInstallments, 1);
        txtInstDFP2 = field(QStringLiteral("txtInstDFP2"), fraInstallments, 1);
        txtInstDFP3 = field(QStringLiteral("txtInstDFP3"), fraInstallments, 1);
        auto* grid = new QGridLayout(fraInstallments);
        QLineEdit* payments[] = {txtPayment1, txtPayment2, txtPayment3};
        QLineEdit* codes[] = {txtInstDFP1, txtInstDFP2, txtInstDFP3};
        for (int i = 0; i < 3; ++i) {
            grid->addWidget(new QLabel(QStringLiteral("Payment #%1:").arg(i + 1), fraInstallments),
                            i, 0);
            grid->addWidget(payments[i], i, 1);
            grid->addWidget(codes[i], i, 2);
        }
        fraInstallments->hide();
    }
    leftColumn()->addWidget(fraInstallments);

    // The bill.
    QGroupBox* bill = billGroup();
    bill->setTitle(QStringLiteral("Owner and Property"));
    txtCoOwner = field(QStringLiteral("txtCoOwner"), bill, 50);
    txtMap3 = field(QStringLiteral("txtMap3"), bill, 8);
    txtMap4 = field(QStringLiteral("txtMap4"), bill, 6);
    txtMap5 = field(QStringLiteral("txtMap5"), bill, 9);
    txtDesc1 = field(QStringLiteral("txtDesc1"), bill, 50);
    txtDesc2 = field(QStringLiteral("txtDesc2"), bill, 50);
    txtDesc3 = field(QStringLiteral("txtDesc3"), bill, 50);
    txtDeedBook = field(QStringLiteral("txtDeedBook"), bill, 6);
    txtDeedPage = field(QStringLiteral("txtDeedPage"), bill, 4);
    cboLandUse = readOnlyBox("cboLandUse", bill);
    txtAcreage = field(QStringLiteral("txtAcreage"), bill, 10);
    txtAssLand = field(QStringLiteral("txtAssLand"), bill);
    txtAssImpr = field(QStringLiteral("txtAssImpr"), bill);
    txtAssTotal = field(QStringLiteral("txtAssTotal"), bill);
    {
        auto* city = new QHBoxLayout;
        city->addWidget(txtCity, 3);
        city->addWidget(cboState, 1);
        city->addWidget(txtZipCode, 1);
        city->addWidget(txtZipCode2, 1);
        auto* map = new QHBoxLayout;
        map->addWidget(txtMap3);
        map->addWidget(txtMap4);
        map->addWidget(txtMap5);
        auto* deed = new QHBoxLayout;
        deed->addWidget(txtDeedBook);
        deed->addWidget(txtDeedPage);
        deed->addWidget(new QLabel(QStringLiteral("Acres:"), bill));
        deed->addWidget(txtAcreage);
        auto* assessed = new QHBoxLayout;
        assessed->addWidget(new QLabel(QStringLiteral("Land:"), bill));
        assessed->addWidget(txtAssLand);
        assessed->addWidget(new QLabel(QStringLiteral("Impr:"), bill));
        assessed->addWidget(txtAssImpr);
        assessed->addWidget(new QLabel(QStringLiteral("Total:"), bill));
        assessed->addWidget(txtAssTotal);
        auto* form = new QFormLayout(bill);
        form->addRow(QStringLiteral("Control #:"), txtControl);
        form->addRow(QStringLiteral("Name:"), txtName);
        form->addRow(QStringLiteral("Co-Owner:"), txtCoOwner);
        form->addRow(QStringLiteral("Address:"), txtAddr1);
        form->addRow(QString(), txtAddr2);
        form->addRow(QStringLiteral("City/State/Zip:"), city);
        form->addRow(QStringLiteral("Map #:"), map);
        form->addRow(QStringLiteral("Description:"), txtDesc1);
        form->addRow(QString(), txtDesc2);
        form->addRow(QString(), txtDesc3);
        form->addRow(QStringLiteral("Deed Book/Page:"), deed);
        form->addRow(QStringLiteral("Land Use:"), cboLandUse);
        form->addRow(QStringLiteral("Assessment:"), assessed);
    }
    for (QLineEdit* edit : findChildren<QLineEdit*>())
        if (edit != txtRecnum)
            edit->setFocusPolicy(Qt::ClickFocus);
}

void frmREReprintReceipt::clearOwnFields() {
    fraInstallments->hide();
}

void frmREReprintReceipt::nameLines() {
    // The municipality, its special taxes and its school special tax name the fields.
    QSqlQuery q(session().DbConnection);
    lblTwp->setText(m_btFlag == QLatin1String("T") ? QStringLiteral("Twp:")
                                                   : QStringLiteral("Boro:"));
    q.prepare(QStringLiteral("SELECT S1TaxName FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(m_district + m_ward);
    const QString schoolSpecial =
        q.exec() && q.next() ? TextField(q.value(0)).trimmed() : QString();
    lblSch1Face->setText(caption(schoolSpecial));
    if (q.exec(QStringLiteral("SELECT S1TaxName FROM Millfile WHERE District || Ward = '000'")) &&
        q.next()) {
        const QString countySpecial = TextField(q.value(0)).trimmed();
        lblC1Face->setText(caption(countySpecial));
    }
    int special = 0;
    if (q.exec(QStringLiteral("SELECT Desc1 FROM Spectax ORDER BY TaxKey")))
        while (special < 3 && q.next())
            lblSpecFace[special++]->setText(TextField(q.value(0)).trimmed() + QLatin1Char(':'));
    for (; special < 3; ++special)
        lblSpecFace[special]->clear();
}

void frmREReprintReceipt::showReceiptKeys(const QSqlRecord& r) {
    ReprintReceiptScreen::showReceiptKeys(r);
    txtMap3->setText(receiptText(r, "Map3"));
    txtMap4->setText(receiptText(r, "Map4"));
    txtMap5->setText(receiptText(r, "Map5"));
}

void frmREReprintReceipt::showBill(const BillNow& bill) {
    const std::pair<QLineEdit*, const char*> billTexts[] = {
        {txtMap3, "Map3"},       {txtMap4, "Map4"},         {txtMap5, "Map5"},
        {txtCoOwner, "CoOwner"}, {txtDesc1, "Desc1"},       {txtDesc2, "Desc2"},
        {txtDesc3, "Desc3"},     {txtDeedBook, "DeedBook"}, {txtDeedPage, "DeedPage"},
        {txtAcreage, "Acreage"}};
    for (const auto& [edit, column] : billTexts)
        edit->setText(bill.text(column).trimmed());
    setBoxText(cboLandUse, bill.text("LandUse").trimmed());
    const qint64 land = bill.bill.value(QStringLiteral("AssLand")).toLongLong();
    const qint64 impr = bill.bill.value(QStringLiteral("AssImpr")).toLongLong();
    txtAssLand->setText(QString::number(land));
    txtAssImpr->setText(QString::number(impr));
    txtAssTotal->setText(QString::number(land + impr));
}

Money frmREReprintReceipt::showLines(const QSqlRecord& r) {
    const QString sFlag = FlagField(r.value(QStringLiteral("SPayFlag"))).trimmed();
    const Money county = ReceiptLineAmount(r, LineCounty);
    const Money library = ReceiptLineAmount(r, LineLibrary);
    const Money c1 = ReceiptLineAmount(r, LineCountySpecial);
    const Money twp = ReceiptLineAmount(r, LineTwp);
    const Money specials[3] = {ReceiptLineAmount(r, LineSpecial1),
                               ReceiptLineAmount(r, LineSpecial2),
                               ReceiptLineAmount(r, LineSpecial3)};
    Money school = ReceiptLineAmount(r, LineSchool);
    const Money sch1 = ReceiptLineAmount(r, LineSchoolSpecial);
    QLineEdit* payments[] = {txtPayment1, txtPayment2, txtPayment3};
    QLineEdit* codes[] = {txtInstDFP1, txtInstDFP2, txtInstDFP3};
    if (sFlag == QLatin1String("I")) {
        fraInstallments->show();
        for (int i = 0; i < 3; ++i) {
            const QString n = QString::number(i + 1);
            const QString code =
                FlagField(r.value(QStringLiteral("Pay") + n + QStringLiteral("Flag"))).trimmed();
            if (code.isEmpty())
                continue;
            const Money paid = MoneyField(r.value(QStringLiteral("Payment") + n)) +
                               MoneyField(r.value(QStringLiteral("PenPayment") + n));
            // An installment's penalty is held beside it, not in the school columns.
            school += MoneyField(r.value(QStringLiteral("PenPayment") + n));
            payments[i]->setText(amountText(paid));
            codes[i]->setText(code);
        }
    }
    txtCounty->setText(amountText(county));
    txtLibrary->setText(amountText(library));
    txtC1Face->setText(amountText(c1));
    txtTwp->setText(amountText(twp));
    for (int i = 0; i < 3; ++i)
        txtSpecFace[i]->setText(amountText(specials[i]));
    txtSchool->setText(amountText(school));
    txtSch1Face->setText(amountText(sch1));
    const Money countyTotal = county + library + c1;
    const Money twpTotal = twp + specials[0] + specials[1] + specials[2];
    const Money schoolTotal = school + sch1;
    txtCTotal->setText(amountText(countyTotal));
    txtTTotal->setText(amountText(twpTotal));
    txtSTotal->setText(amountText(schoolTotal));
    txtTotal->setText(amountText(countyTotal + twpTotal + schoolTotal));
    return countyTotal + twpTotal + schoolTotal;
}
