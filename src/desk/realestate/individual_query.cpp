#include "desk/realestate/individual_query.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_search.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <QVBoxLayout>

namespace {

const char* const QueryTaxpayersTitle = "Query Taxpayers";

QString amountText(Money amount) {
    return amount.format(u"$###,###,###.00");
}

void endOfFile() {
    MsgBox(QStringLiteral("You have reached the end of the file"),
           QString::fromLatin1(QueryTaxpayersTitle), MsgButtons::Ok, MsgIcon::Information);
}

} // namespace

IndividualQueryScreen::IndividualQueryScreen(const char* screenName, const ChainTables& tables,
                                             bool byMap, QWidget* parent)
    : QWidget(parent), m_tables(tables), m_byMap(byMap) {
    setObjectName(QString::fromLatin1(screenName));
    setWindowTitle(QStringLiteral("Query Individual Taxpayers"));
}

void IndividualQueryScreen::build() {
    buildCriteria();

    auto* fraPeriod = new QGroupBox(QStringLiteral("Amounts Of The Period"), this);
    fraPeriod->setObjectName(QStringLiteral("fraPeriod"));
    optDiscount = NamedOption(fraPeriod, QStringLiteral("optDiscount"), QStringLiteral("Discount"));
    optFace = NamedOption(fraPeriod, QStringLiteral("optFace"), QStringLiteral("Face"));
    optPenalty = NamedOption(fraPeriod, QStringLiteral("optPenalty"), QStringLiteral("Penalty"));
    auto* periods = new QHBoxLayout(fraPeriod);
    for (QRadioButton* o : {optDiscount, optFace, optPenalty}) {
        periods->addWidget(o);
        connect(o, &QRadioButton::clicked, this, [this] { showAmounts(); });
    }

    m_fraTaxpayer = new QGroupBox(QStringLiteral("Taxpayer"), this);
    m_fraTaxpayer->setObjectName(QStringLiteral("fraTaxpayer"));
    m_taxpayerGrid = new QGridLayout(m_fraTaxpayer);
    txtPControl = ShownField(m_fraTaxpayer, QStringLiteral("txtPControl"), 6);
    txtPBillNo = ShownField(m_fraTaxpayer, QStringLiteral("txtPBillNo"), 5);
    txtPName = ShownField(m_fraTaxpayer, QStringLiteral("txtPName"), 50);
    txtCPayFlag = ShownField(m_fraTaxpayer, QStringLiteral("txtCPayFlag"), 1);
    txtTPayFlag = ShownField(m_fraTaxpayer, QStringLiteral("txtTPayFlag"), 1);
    txtSPayFlag = ShownField(m_fraTaxpayer, QStringLiteral("txtSPayFlag"), 1);
    txtAdjFlag = ShownField(m_fraTaxpayer, QStringLiteral("txtAdjFlag"), 1);
    txtCAddrFlag = ShownField(m_fraTaxpayer, QStringLiteral("txtCAddrFlag"), 1);
    buildTaxpayer();

    auto* fraAmounts = new QGroupBox(QStringLiteral("Amounts"), this);
    fraAmounts->setObjectName(QStringLiteral("fraAmounts"));
    txtCTotal = ShownField(fraAmounts, QStringLiteral("txtCTotal"));
    txtTTotal = ShownField(fraAmounts, QStringLiteral("txtTTotal"));
    txtSTotal = ShownField(fraAmounts, QStringLiteral("txtSTotal"));
    txtTotal = ShownField(fraAmounts, QStringLiteral("txtTotal"));
    buildAmounts(fraAmounts, new QGridLayout(fraAmounts));

    buildButtons();

    auto* criteria = new QGridLayout;
    std::vector<std::pair<QRadioButton*, QGroupBox*>> rows{
        {optName, fraName}, {optBill, fraBill}, {optControl, fraControl}};
    if (m_byMap)
        rows.emplace_back(optMap, fraMap);
    int row = 0;
    for (auto [o, f] : rows) {
        criteria->addWidget(o, row, 0);
        criteria->addWidget(f, row++, 1);
    }
    criteria->addWidget(fraPeriod, row, 0, 1, 2);
    auto* buttons = new QGridLayout;
    QPushButton* order[] = {cmdSearch,      cmdForward,     cmdBackward, cmdClearScreen,
                            cmdPayment,     cmdAdjust,      cmdAddress,  cmdPrintTaxBill,
                            cmdPaymentInfo, cmdPrintScreen, cmdExit};
    for (int i = 0; i < int(std::size(order)); ++i)
        buttons->addWidget(order[i], i % 4, i / 4);
    auto* top = new QHBoxLayout;
    top->addLayout(criteria, 1);
    top->addLayout(buttons);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_fraTaxpayer);
    bottom->addWidget(fraAmounts);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(bottom);

    loadOffice();
    clearScreen();
    for (QGroupBox* frame : {fraName, fraBill, fraControl, fraMap})
        if (frame)
            frame->setEnabled(false);
    cmdSearch->setEnabled(false);
}

void IndividualQueryScreen::buildCriteria() {
    // Options, then frames, then fields: the tab order the screen has always had.
    auto option = [this](const char* name, const char* caption, SearchBy by) {
        QRadioButton* o =
            NamedOption(this, QString::fromLatin1(name), QString::fromLatin1(caption));
        connect(o, &QRadioButton::clicked, this, [this, by] { choose(by); });
        return o;
    };
    auto frame = [this](const char* name, const char* title) {
        auto* f = new QGroupBox(QString::fromLatin1(title), this);
        f->setObjectName(QString::fromLatin1(name));
        return f;
    };
    optName = option("optName", "&Name", SearchBy::Name);
    optBill = option("optBill", "&Bill #", SearchBy::Bill);
    optControl = option("optControl", "C&ontrol #", SearchBy::Control);
    if (m_byMap)
        optMap = option("optMap", "&Map #", SearchBy::Map);
    fraName = frame("fraName", "Name Criteria");
    fraBill = frame("fraBill", "Bill # Criteria");
    fraControl = frame("fraControl", "Control # Criteria");
    if (m_byMap)
        fraMap = frame("fraMap", "Map # Criteria");
    txtName = NamedField(fraName, QStringLiteral("txtName"), 50);
    txtBillNo = NamedField(fraBill, QStringLiteral("txtBillNo"), 5);
    txtControl = NamedField(fraControl, QStringLiteral("txtControl"), 6);
    (new QHBoxLayout(fraName))->addWidget(txtName);
    (new QHBoxLayout(fraBill))->addWidget(txtBillNo);
    (new QHBoxLayout(fraControl))->addWidget(txtControl);
    if (m_byMap) {
        txtMap3 = NamedField(fraMap, QStringLiteral("txtMap3"), 8);
        txtMap4 = NamedField(fraMap, QStringLiteral("txtMap4"), 6);
        txtMap5 = NamedField(fraMap, QStringLiteral("txtMap5"), 9);
        auto* h = new QHBoxLayout(fraMap);
        for (QLineEdit* f : {txtMap3, txtMap4, txtMap5})
            h->addWidget(f);
    }
    m_leave = new FieldLeave(this);
    m_leave->onLeave(txtBillNo,
                     [this] { txtBillNo->setText(NormalizeQueryBillNo(txtBillNo->text())); });
}

void IndividualQueryScreen::buildButtons() {
    auto button = [this](const char* name, const char* caption, bool takesFocus = true) {
        return NamedButton(this, QString::fromLatin1(name), QString::fromLatin1(caption),
                           takesFocus);
    };
    cmdSearch = button("cmdSearch", "&Search");
    cmdForward = button("cmdForward", "Search &Forward", false);
    cmdBackward = button("cmdBackward", "Search Bac&kward", false);
    cmdClearScreen = button("cmdClearScreen", "C&lear Screen", false);
    cmdPrintScreen = button("cmdPrintScreen", "&Print Screen");
    cmdExit = button("cmdExit", "E&xit", false);
    cmdPayment = button("cmdPayment", "P&ayment");
    cmdAdjust = button("cmdAdjust", "A&djust");
    cmdAddress = button("cmdAddress", "Add&ress");
    cmdPrintTaxBill = button("cmdPrintTaxBill", "Print &Tax Bill");
    cmdPaymentInfo = button("cmdPaymentInfo", "Payment &Info");

    connect(cmdSearch, &QPushButton::clicked, this, [this] { search(); });
    connect(cmdForward, &QPushButton::clicked, this, [this] { step(1); });
    connect(cmdBackward, &QPushButton::clicked, this, [this] { step(-1); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
    // The buttons of the bill on the screen do nothing without one.
    auto onBill = [this](QPushButton* b, void (IndividualQueryScreen::*action)()) {
        connect(b, &QPushButton::clicked, this, [this, action] {
            if (hasBill())
                (this->*action)();
        });
    };
    onBill(cmdPayment, &IndividualQueryScreen::toPayment);
    onBill(cmdAdjust, &IndividualQueryScreen::toAdjust);
    onBill(cmdAddress, &IndividualQueryScreen::toAddress);
    onBill(cmdPrintTaxBill, &IndividualQueryScreen::printTaxBill);
    connect(cmdPaymentInfo, &QPushButton::clicked, this, [this] {
        if (hasBill())
            ShowIndividualPaymentInfo(BillPayFlagsFromRecord(m_master), paymentInfoText());
    });
}

void IndividualQueryScreen::taxpayerRow(const char* caption, QWidget* a, QWidget* b, QWidget* c) {
    if (caption)
        m_taxpayerGrid->addWidget(new QLabel(QString::fromLatin1(caption), m_fraTaxpayer),
                                  m_taxpayerRows, 0);
    auto* h = new QHBoxLayout;
    for (QWidget* w : {a, b, c})
        if (w)
            h->addWidget(w);
    m_taxpayerGrid->addLayout(h, m_taxpayerRows++, 1);
}

void IndividualQueryScreen::showLine(bool visible, QWidget* field) {
    field->setVisible(visible);
    if (auto* label = findChild<QLabel*>(QStringLiteral("lbl") + field->objectName().mid(3)))
        label->setVisible(visible);
}

void IndividualQueryScreen::loadOffice() {
    QSqlQuery q(session().DbConnection);
    IndividualQueryOffice office;
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        office.district = TextField(q.value(0));
        office.ward = TextField(q.value(1));
    }
    if (q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = '000'")) && q.next())
        office.county = q.record();
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(office.district + office.ward);
    if (q.exec() && q.next())
        office.municipal = q.record();
    q.prepare(QStringLiteral(
        "SELECT BTFlag, SchoolName FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(office.district);
    q.addBindValue(office.ward);
    if (q.exec() && q.next()) {
        office.btFlag = TextField(q.value(0)).trimmed();
        office.schoolName = TextField(q.value(1));
    }
    m_btFlag = office.btFlag;
    loadOffice(office);

    // The period of today, by the early dates only.
    const QChar p =
        IndividualQueryPeriod(Clock::today(), DateField(office.municipal.value("DiscDate")),
                              DateField(office.municipal.value("FaceDate2")));
    (p == QChar(PeriodDiscount) ? optDiscount
     : p == QChar(PeriodFace)   ? optFace
                                : optPenalty)
        ->setChecked(true);
}

std::vector<QWidget*> IndividualQueryScreen::criteriaWidgets() const {
    std::vector<QWidget*> widgets{optName, optBill, optControl, fraName, fraBill, fraControl};
    if (m_byMap)
        widgets.insert(widgets.end(), {optMap, fraMap});
    return widgets;
}

void IndividualQueryScreen::choose(SearchBy by) {
    m_by = by;
    for (QLineEdit* field : {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5})
        if (field)
            field->clear();
    fraName->setEnabled(by == SearchBy::Name);
    fraBill->setEnabled(by == SearchBy::Bill);
    fraControl->setEnabled(by == SearchBy::Control);
    if (fraMap)
        fraMap->setEnabled(by == SearchBy::Map);
    cmdSearch->setEnabled(true);
    QLineEdit* field = by == SearchBy::Name      ? txtName
                       : by == SearchBy::Bill    ? txtBillNo
                       : by == SearchBy::Control ? txtControl
                                                 : txtMap3;
    field->setFocus(Qt::OtherFocusReason);
}

QChar IndividualQueryScreen::period() const {
    return optDiscount->isChecked()  ? QChar(PeriodDiscount)
           : optPenalty->isChecked() ? QChar(PeriodPenalty)
                                     : QChar(PeriodFace);
}

void IndividualQueryScreen::search() {
    QString criterion;
    QuerySearch by = QuerySearch::None;
    switch (m_by) {
    case SearchBy::Name:
        by = QuerySearch::Name;
        criterion = txtName->text().toUpper();
        break;
    case SearchBy::Bill:
        by = QuerySearch::Bill;
        txtBillNo->setText(NormalizeQueryBillNo(txtBillNo->text()));
        criterion = txtBillNo->text();
        break;
    case SearchBy::Map:
        by = QuerySearch::Map;
        criterion = MapCriterion(txtMap3->text(), txtMap4->text(), txtMap5->text());
        break;
    case SearchBy::Control:
        by = QuerySearch::Control;
        criterion = txtControl->text();
        break;
    case SearchBy::None:
        return;
    }
    m_found = FindIndividualBills(session().DbConnection, m_tables, by, criterion);
    if (m_found.isEmpty()) {
        endOfFile();
        return;
    }
    if (!showBill(0))
        return;
    for (QWidget* w : criteriaWidgets())
        w->setEnabled(false);
    setRowButtons(true);
}

bool IndividualQueryScreen::showBill(int position) {
    bool incomplete = false;
    if (!ReadIndividualBill(session().DbConnection, m_tables, m_found.value(position), &m_master,
                            &m_source, &incomplete)) {
        if (incomplete)
            CloseScreen(this);
        return false;
    }
    m_position = position;
    auto text = [this](const char* column) { return TextField(m_master.value(column)); };
    txtPControl->setText(text("Control"));
    txtPName->setText(text("Name"));
    txtPBillNo->setText(text("BillNo"));
    txtCPayFlag->setText(FlagField(m_master.value("CPayFlag")));
    txtTPayFlag->setText(FlagField(m_master.value("TPayFlag")));
    txtSPayFlag->setText(FlagField(m_master.value("SPayFlag")));
    txtAdjFlag->setText(FlagField(m_master.value("AdjFlag")));
    txtCAddrFlag->setText(FlagField(m_master.value("CAddrFlag")));
    showBillFields();
    showAmounts();
    return true;
}

void IndividualQueryScreen::showAmounts() {
    if (!hasBill())
        return;
    std::array<Money, 3> totals{};
    showLines(period(), totals);
    txtCTotal->setText(amountText(totals[0]));
    txtTTotal->setText(amountText(totals[1]));
    txtSTotal->setText(amountText(totals[2]));
    txtTotal->setText(amountText(totals[0] + totals[1] + totals[2]));
}

void IndividualQueryScreen::step(int by) {
    if (!hasBill())
        return;
    const int next = StepIndividual(m_position, by, int(m_found.size()));
    if (next >= 0)
        showBill(next);
}

void IndividualQueryScreen::requery() {
    if (hasBill())
        showBill(m_position);
}

void IndividualQueryScreen::clearScreen() {
    for (QLineEdit* field : {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5})
        if (field)
            field->clear();
    m_position = -1;
    m_master = QSqlRecord();
    m_source = QSqlRecord();
    m_found.clear();
    for (QLineEdit* field : findChildren<QLineEdit*>())
        if (field->isReadOnly())
            field->clear();
    clearBillFields();
    for (QRadioButton* o : {optName, optBill, optControl, optMap})
        if (o)
            o->setEnabled(true);
    fraName->setEnabled(m_by == SearchBy::Name);
    fraBill->setEnabled(m_by == SearchBy::Bill);
    fraControl->setEnabled(m_by == SearchBy::Control);
    if (fraMap)
        fraMap->setEnabled(m_by == SearchBy::Map);
    setRowButtons(false);
}

void IndividualQueryScreen::setRowButtons(bool enabled) {
    for (QPushButton* b : {cmdPayment, cmdAdjust, cmdAddress, cmdPrintTaxBill, cmdPaymentInfo})
        b->setEnabled(enabled);
}

// ---------------------------------------------------------------------------------------------
// The searching, reading and stepping of both duplicates
// ---------------------------------------------------------------------------------------------

QChar IndividualQueryPeriod(const QDate& today, const QDate& discDate, const QDate& faceDate2) {
    if (discDate.isValid() && today <= discDate)
        return QChar(PeriodDiscount);
    if (faceDate2.isValid() && today <= faceDate2)
        return QChar(PeriodFace);
    return QChar(PeriodPenalty);
}

QStringList FindIndividualBills(QSqlDatabase db, const ChainTables& tables, QuerySearch by,
                                const QString& criterion) {
    QString where;
    switch (by) {
    case QuerySearch::Name:
        where = QStringLiteral("upper(Name) >= ? ORDER BY upper(Name), BillNo");
        break;
    case QuerySearch::Bill:
        where = QStringLiteral("BillNo >= ? ORDER BY BillNo");
        break;
    case QuerySearch::Map:
        where = QStringLiteral("Map3 || Map4 || Map5 >= ? ORDER BY Map3, Map4, Map5, BillNo");
        break;
    case QuerySearch::Control:
        where = QStringLiteral("Control >= ? ORDER BY Control");
        break;
    default:
        return {};
    }
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT BillNo FROM %1 WHERE %2")
                  .arg(QString::fromLatin1(tables.master), where));
    q.addBindValue(criterion);
    QStringList found;
    if (q.exec())
        while (q.next())
            found << TextField(q.value(0));
    return found;
}

bool ReadIndividualBill(QSqlDatabase db, const ChainTables& tables, const QString& billNo,
                        QSqlRecord* master, QSqlRecord* source, bool* incomplete) {
    *incomplete = false;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? ORDER BY rowid LIMIT 1")
                  .arg(QString::fromLatin1(tables.master)));
    q.addBindValue(billNo);
    if (!q.exec() || !q.next())
        return false;
    *master = q.record();
    *source = *master;
    if (FlagField(master->value("AdjFlag")).trimmed() != QLatin1String("A"))
        return true;
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? ORDER BY BillNo, AdjNo DESC "
                             "LIMIT 1")
                  .arg(QString::fromLatin1(tables.adjust)));
    q.addBindValue(billNo);
    if (!q.exec() || !q.next()) {
        MsgBox(QString::fromLatin1(IncompleteAdjustmentText),
               QString::fromLatin1(IntegrityErrorTitle), MsgButtons::Ok, MsgIcon::Critical);
        *incomplete = true;
        return false;
    }
    *source = q.record();
    return true;
}

int StepIndividual(int position, int by, int count) {
    const int next = position + by;
    if (next >= count) {
        endOfFile();
        return -1;
    }
    if (next < 0) {
        MsgBox(QStringLiteral("You have reached the beginning of the file"),
               QString::fromLatin1(QueryTaxpayersTitle), MsgButtons::Ok, MsgIcon::Information);
        return -1;
    }
    return next;
}

void ShowIndividualPaymentInfo(const BillPayFlags& flags, const QString& text) {
    if (flags.cPayFlag.trimmed().isEmpty() && flags.tPayFlag.trimmed().isEmpty() &&
        flags.sPayFlag.trimmed().isEmpty()) {
        MsgBox(QStringLiteral("There Has Been No Payment Made On This Account."),
               QString::fromLatin1(QueryTaxpayersTitle), MsgButtons::Ok, MsgIcon::Information);
        return;
    }
    session().PaymentInfoText = text;
    MsgBox(text, QString::fromLatin1(PaymentInfoTitle), MsgButtons::Ok, MsgIcon::Information);
}
