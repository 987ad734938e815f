#include "desk/realestate/query_tc.h"

#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/query_grid.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/query_search.h"
#include "desk/realestate/receive_payment.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <QTableView>
#include <QVBoxLayout>

namespace {

// The amounts of the list, read for the rows shown: the master's, under either name. An amount
// column left Null counts as zero, as everywhere amounts are read.
QString masterAmountsSql() {
    const char* const lines[] = {"County", "Library", "C1Face", "Twp",     "S1Face",
                                 "S2Face", "S3Face",  "School", "Sch1Face"};
    auto sum = [&](const char* prefix) {
        QStringList terms;
        for (const char* line : lines)
            terms << QStringLiteral("ifnull(%1%2, 0)")
                         .arg(QLatin1String(prefix), QLatin1String(line));
        return terms.join(u'+');
    };
    return QStringLiteral("SELECT ") + sum("D") + QStringLiteral(" AS Discount, ") + sum("") +
           QStringLiteral(" AS Face, ") + sum("P") +
           QStringLiteral(" AS Penalty FROM TCMaster WHERE BillNo = ? ORDER BY rowid LIMIT 1");
}

// The columns the list holds of each bill: the master's flags under either name.
QString masterColumns(const QString& nameTable) {
    QString columns = QStringLiteral("%1.Control AS Control, %1.BillNo AS BillNo, %1.Name AS Name, "
                                     "%1.Map3 AS Map3, %1.Map4 AS Map4, %1.Map5 AS Map5, ")
                          .arg(nameTable);
    for (const char* flag : {"CPayFlag", "TPayFlag", "SPayFlag", "Pay1Flag", "Pay2Flag", "Pay3Flag",
                             "AdjFlag", "CAddrFlag", "HFFlag"})
        columns += QStringLiteral("TCMaster.%1 AS %1, ").arg(QLatin1String(flag));
    columns.chop(2);
    return columns;
}

const char* const QueryTitle = "Query Tax Collector Master File";

std::vector<QueryGridModel::Column> masterListColumns() {
    using F = QueryGridModel::Format;
    return {
        {"Control", "Control", F::Text},    {"Bill #", "BillNo", F::Text},
        {"Name", "Name", F::Text},          {"Map3", "Map3", F::Text},
        {"Map4", "Map4", F::Text},          {"Map5", "Map5", F::Text},
        {"Discount", "Discount", F::Money}, {"Face", "Face", F::Money},
        {"Penalty", "Penalty", F::Money},   {"C Pd", "CPayFlag", F::Text},
        {"M Pd", "TPayFlag", F::Text},      {"S Pd", "SPayFlag", F::Text},
        {"Pay1Flag", "Pay1Flag", F::Text},  {"Pay2Flag", "Pay2Flag", F::Text},
        {"Pay3Flag", "Pay3Flag", F::Text},  {"Adj", "AdjFlag", F::Text},
        {"Addr", "CAddrFlag", F::Text},     {"H/F", "HFFlag", F::Text},
    };
}

} // namespace

QString MasterAmountsSql() {
    return masterAmountsSql();
}

std::vector<QueryGridModel::Derived> MasterListKeys() {
    return {{"Map", {"Map3", "Map4", "Map5"}, false}, {"UName", {"Name"}, true}};
}

QString MasterListSql() {
    return QStringLiteral("SELECT ") + masterColumns(QStringLiteral("TCMaster")) +
           QStringLiteral(" FROM TCMaster UNION ALL SELECT ") +
           masterColumns(QStringLiteral("TCAddress")) +
           QStringLiteral(" FROM TCMaster INNER JOIN TCAddress ON TCMaster.BillNo = "
                          "TCAddress.BillNo");
}

frmREQueryTC::frmREQueryTC(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmREQueryTC"));
    setWindowTitle(QString::fromLatin1(QueryTitle));
    buildScreen();
    QSqlQuery q(session().DbConnection);
    if (q.exec(QStringLiteral("SELECT t.BTFlag FROM tbl_Twpboro t JOIN tbl_District d ON "
                              "t.District = d.District AND t.Ward = d.Ward")) &&
        q.next())
        m_btFlag = TextField(q.value(0)).trimmed();
    clearScreen();
    for (QGroupBox* frame : {fraName, fraBill, fraControl, fraMap})
        frame->setEnabled(false);
    cmdSearch->setEnabled(false);
}

void frmREQueryTC::buildScreen() {
    auto option = [this](const char* name, const char* caption) {
        auto* o = new QRadioButton(QString::fromLatin1(caption), this);
        o->setObjectName(QString::fromLatin1(name));
        return o;
    };
    auto frame = [this](const char* name, const char* title) {
        auto* f = new QGroupBox(QString::fromLatin1(title), this);
        f->setObjectName(QString::fromLatin1(name));
        return f;
    };
    optName = option("optName", "&Name");
    optBill = option("optBill", "&Bill #");
    optControl = option("optControl", "C&ontrol #");
    optMap = option("optMap", "&Map #");
    fraName = frame("fraName", "Name Criteria");
    fraBill = frame("fraBill", "Bill # Criteria");
    fraControl = frame("fraControl", "Control # Criteria");
    fraMap = frame("fraMap", "Map # Criteria");
    txtName = NamedField(fraName, QStringLiteral("txtName"), 50);
    txtBillNo = NamedField(fraBill, QStringLiteral("txtBillNo"), 5);
    txtControl = NamedField(fraControl, QStringLiteral("txtControl"), 6);
    txtMap3 = NamedField(fraMap, QStringLiteral("txtMap3"), 8);
    txtMap4 = NamedField(fraMap, QStringLiteral("txtMap4"), 6);
    txtMap5 = NamedField(fraMap, QStringLiteral("txtMap5"), 9);
    (new QHBoxLayout(fraName))->addWidget(txtName);
    (new QHBoxLayout(fraBill))->addWidget(txtBillNo);
    (new QHBoxLayout(fraControl))->addWidget(txtControl);
    {
        auto* h = new QHBoxLayout(fraMap);
        h->addWidget(txtMap3);
        h->addWidget(txtMap4);
        h->addWidget(txtMap5);
    }
    txtSearching = NamedLabel(this, QStringLiteral("txtSearching"), QStringLiteral("Please Wait"));
    txtSearching->setStyleSheet(QStringLiteral("color: #b00000; font-weight: bold;"));
    txtSearching->hide();

    cmdSearch = NamedButton(this, QStringLiteral("cmdSearch"), QStringLiteral("&Search"));
    cmdForward =
        NamedButton(this, QStringLiteral("cmdForward"), QStringLiteral("Search &Forward"), false);
    cmdBackward =
        NamedButton(this, QStringLiteral("cmdBackward"), QStringLiteral("Search Bac&kward"), false);
    cmdClearScreen =
        NamedButton(this, QStringLiteral("cmdClearScreen"), QStringLiteral("C&lear Screen"), false);
    cmdPrintScreen =
        NamedButton(this, QStringLiteral("cmdPrintScreen"), QStringLiteral("&Print Screen"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);
    cmdPayment = NamedButton(this, QStringLiteral("cmdPayment"), QStringLiteral("P&ayment"));
    cmdAdjust = NamedButton(this, QStringLiteral("cmdAdjust"), QStringLiteral("A&djust"));
    cmdAddress = NamedButton(this, QStringLiteral("cmdAddress"), QStringLiteral("Add&ress"));
    cmdPrintTaxBill =
        NamedButton(this, QStringLiteral("cmdPrintTaxBill"), QStringLiteral("Print &Tax Bill"));
    cmdPaymentInfo =
        NamedButton(this, QStringLiteral("cmdPaymentInfo"), QStringLiteral("Payment &Info"));

    masterList = new QueryGridModel(masterListColumns(), MasterListKeys(), this);
    masterList->setLateFields("BillNo", MasterAmountsSql());
    fraMasterList = new QGroupBox(QStringLiteral("Search Master File"), this);
    fraMasterList->setObjectName(QStringLiteral("fraMasterList"));
    dtgMasterList = NamedGrid(fraMasterList, QStringLiteral("dtgMasterList"), masterList);
    (new QVBoxLayout(fraMasterList))->addWidget(dtgMasterList);
    const int widths[] = {60, 50, 220, 50, 50, 50, 90, 90, 90, 40, 40, 40, 60, 60, 60, 35, 40, 35};
    for (int c = 0; c < int(std::size(widths)); ++c)
        dtgMasterList->setColumnWidth(c, widths[c]);
    dtgMasterList->setMinimumSize(900, 300);

    auto* criteria = new QGridLayout;
    int row = 0;
    for (auto [o, f] : {std::pair{optName, fraName}, std::pair{optBill, fraBill},
                        std::pair{optControl, fraControl}, std::pair{optMap, fraMap}}) {
        criteria->addWidget(o, row, 0);
        criteria->addWidget(f, row++, 1);
    }
    criteria->addWidget(txtSearching, row, 1);
    auto* buttons = new QGridLayout;
    QPushButton* order[] = {cmdSearch,      cmdForward,     cmdBackward, cmdClearScreen,
                            cmdPayment,     cmdAdjust,      cmdAddress,  cmdPrintTaxBill,
                            cmdPaymentInfo, cmdPrintScreen, cmdExit};
    for (int i = 0; i < int(std::size(order)); ++i)
        buttons->addWidget(order[i], i % 4, i / 4);
    auto* top = new QHBoxLayout;
    top->addLayout(criteria, 1);
    top->addLayout(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(fraMasterList, 1);

    m_leave = new FieldLeave(this);
    m_leave->onLeave(txtBillNo, [this] { billNoLeft(); });

    connect(optName, &QRadioButton::clicked, this, [this] { choose(SearchBy::Name); });
    connect(optBill, &QRadioButton::clicked, this, [this] { choose(SearchBy::Bill); });
    connect(optControl, &QRadioButton::clicked, this, [this] { choose(SearchBy::Control); });
    connect(optMap, &QRadioButton::clicked, this, [this] { choose(SearchBy::Map); });
    connect(cmdSearch, &QPushButton::clicked, this, [this] { search(); });
    connect(cmdForward, &QPushButton::clicked, this, [this] { move(QueryPageRows); });
    connect(cmdBackward, &QPushButton::clicked, this, [this] { move(-QueryPageRows); });
    connect(cmdClearScreen, &QPushButton::clicked, this, [this] { clearScreen(); });
    connect(cmdPrintScreen, &QPushButton::clicked, this,
            [this] { PrintScreenImage(this, QString::fromLatin1(LetterPrinter)); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
    connect(cmdPaymentInfo, &QPushButton::clicked, this, [this] { paymentInfo(); });
    connect(cmdPayment, &QPushButton::clicked, this, [this] { toPayment(); });
    connect(cmdAddress, &QPushButton::clicked, this, [this] { toAddress(); });
    connect(dtgMasterList, &QTableView::doubleClicked, this, [this] { paymentInfo(); });
}

void frmREQueryTC::choose(SearchBy by) {
    m_by = by;
    for (QLineEdit* field : {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5})
        field->clear();
    fraName->setEnabled(by == SearchBy::Name);
    fraBill->setEnabled(by == SearchBy::Bill);
    fraControl->setEnabled(by == SearchBy::Control);
    fraMap->setEnabled(by == SearchBy::Map);
    cmdSearch->setEnabled(true);
    QLineEdit* field = by == SearchBy::Name      ? txtName
                       : by == SearchBy::Bill    ? txtBillNo
                       : by == SearchBy::Control ? txtControl
                                                 : txtMap3;
    field->setFocus(Qt::OtherFocusReason);
}

void frmREQueryTC::billNoLeft() {
    txtBillNo->setText(NormalizeQueryBillNo(txtBillNo->text()));
}

bool frmREQueryTC::loadList() {
    QList<QByteArray> orderBy;
    switch (m_by) {
    case SearchBy::Name:
        orderBy = {"UName", "BillNo"};
        break;
    case SearchBy::Bill:
        orderBy = {"BillNo"};
        break;
    case SearchBy::Control:
        orderBy = {"Control"};
        break;
    case SearchBy::Map:
        orderBy = {"Map", "UName", "BillNo"};
        break;
    case SearchBy::None:
        return false;
    }
    QString error;
    if (!masterList->load(session().DbConnection, MasterListSql(), {}, orderBy, true, &error)) {
        MsgBox(QStringLiteral("The master file could not be read: ") + error,
               QString::fromLatin1(QueryTitle), MsgButtons::Ok, MsgIcon::Critical);
        return false;
    }
    return true;
}

void frmREQueryTC::search() {
    if (m_by == SearchBy::None)
        return;
    txtSearching->show();
    txtSearching->repaint();
    // 1. The bill number as it is stored.
    if (m_by == SearchBy::Bill)
        billNoLeft();
    // 2. The list in the order of the search, and the criterion of the find.
    const bool ok = loadList();
    txtSearching->hide();
    if (!ok)
        return;
    QString criterion;
    int key = -1;
    switch (m_by) {
    case SearchBy::Name:
        criterion = txtName->text().toUpper();
        key = masterList->field("UName");
        break;
    case SearchBy::Bill:
        criterion = txtBillNo->text();
        key = masterList->field("BillNo");
        break;
    case SearchBy::Control:
        criterion = txtControl->text();
        key = masterList->field("Control");
        break;
    case SearchBy::Map:
        criterion = MapCriterion(txtMap3->text(), txtMap4->text(), txtMap5->text());
        key = masterList->field("Map");
        break;
    case SearchBy::None:
        break;
    }
    // 3. The nearest row at or after the criterion, or the last.
    ShowGridRow(dtgMasterList, masterList->findAtOrAfter(key, criterion));
    // 4.
    for (QWidget* w : std::initializer_list<QWidget*>{optName, optBill, optControl, optMap, fraName,
                                                      fraBill, fraControl, fraMap})
        w->setEnabled(false);
    setRowButtons(true);
}

void frmREQueryTC::requery() {
    const int row = currentRow();
    if (!masterList->loaded() || row < 0)
        return;
    const std::vector<int> all{masterList->field("UName"), masterList->field("BillNo"),
                               masterList->field("Control"), masterList->field("Map")};
    QStringList before;
    for (int f : all)
        before << masterList->text(row, f);
    if (!loadList())
        return;
    int found = -1;
    for (int r = 0; r < masterList->rowCount() && found < 0; ++r) {
        bool same = true;
        for (int i = 0; i < int(all.size()) && same; ++i)
            same = masterList->text(r, all[std::size_t(i)]) == before.at(i);
        if (same)
            found = r;
    }
    if (found < 0)
        found = masterList->findAtOrAfter(masterList->field("BillNo"), before.at(1));
    ShowGridRow(dtgMasterList, found);
}

void frmREQueryTC::move(int rows) {
    if (!masterList->loaded() || masterList->rowCount() == 0)
        return;
    const int row = std::clamp(currentRow() + rows, 0, masterList->rowCount() - 1);
    ShowGridRow(dtgMasterList, row);
}

void frmREQueryTC::clearScreen() {
    for (QLineEdit* field : {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5})
        field->clear();
    masterList->clear();
    txtSearching->hide();
    for (QRadioButton* o : {optName, optBill, optControl, optMap})
        o->setEnabled(true);
    fraName->setEnabled(m_by == SearchBy::Name);
    fraBill->setEnabled(m_by == SearchBy::Bill);
    fraControl->setEnabled(m_by == SearchBy::Control);
    fraMap->setEnabled(m_by == SearchBy::Map);
    setRowButtons(false);
    if (m_by == SearchBy::Name)
        txtName->setFocus(Qt::OtherFocusReason);
    else if (m_by == SearchBy::Bill)
        txtBillNo->setFocus(Qt::OtherFocusReason);
    else if (m_by == SearchBy::Control)
        txtControl->setFocus(Qt::OtherFocusReason);
    else if (m_by == SearchBy::Map)
        txtMap3->setFocus(Qt::OtherFocusReason);
}

void frmREQueryTC::setRowButtons(bool enabled) {
    for (QPushButton* b : {cmdPayment, cmdAddress, cmdPaymentInfo})
        b->setEnabled(enabled);
    // The adjustment and bill printing screens take no bill from here.
    cmdAdjust->setEnabled(false);
    cmdPrintTaxBill->setEnabled(false);
}

int frmREQueryTC::currentRow() const {
    const QModelIndex index = dtgMasterList->currentIndex();
    return index.isValid() ? index.row() : -1;
}

QString frmREQueryTC::currentBillNo() const {
    return masterList->text(currentRow(), masterList->field("BillNo"));
}

void frmREQueryTC::paymentInfo() {
    const int row = currentRow();
    if (row < 0)
        return;
    BillPayFlags flags;
    auto flag = [&](const char* name) {
        const QString value = masterList->text(row, masterList->field(name));
        return value.isEmpty() ? QStringLiteral(" ") : value;
    };
    flags.cPayFlag = flag("CPayFlag");
    flags.tPayFlag = flag("TPayFlag");
    flags.sPayFlag = flag("SPayFlag");
    flags.payFlag = {flag("Pay1Flag"), flag("Pay2Flag"), flag("Pay3Flag")};
    const QString billNo = currentBillNo();
    session().PaymentInfoText = RealEstatePaymentInfoText(
        flags, m_btFlag, ReadRealEstatePaidReceipts(session().DbConnection, billNo));
    if (session().PaymentInfoText.trimmed().isEmpty())
        MsgBox(QStringLiteral("There have been no payments made on this account"),
               QString::fromLatin1(PaymentInfoTitle), MsgButtons::Ok, MsgIcon::Information);
    else
        MsgBox(session().PaymentInfoText, QString::fromLatin1(PaymentInfoTitle), MsgButtons::Ok,
               MsgIcon::Information);
}

void frmREQueryTC::toPayment() {
    const QString billNo = currentBillNo();
    if (billNo.isEmpty())
        return;
    auto* target = ShowQueryTarget<frmREReceivePayment>("frmREReceivePayment");
    if (!target)
        return;
    connect(target, &frmREReceivePayment::paymentReceived, this, &frmREQueryTC::requery,
            Qt::UniqueConnection);
    target->openFromQuery(billNo);
}

void frmREQueryTC::toAddress() {
    const QString billNo = currentBillNo();
    if (billNo.isEmpty())
        return;
    auto* target = ShowQueryTarget<frmREAddressChange>("frmREAddressChange");
    if (!target)
        return;
    connect(target, &frmREAddressChange::addressChanged, this, &frmREQueryTC::requery,
            Qt::UniqueConnection);
    target->openFromQuery(billNo);
}
