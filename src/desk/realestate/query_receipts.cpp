#include "desk/realestate/query_receipts.h"

#include "core/common_values.h"
#include "core/field_leave.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/query_grid.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/query_search.h"
#include "desk/realestate/reprint_receipt.h"
#include "desk/realestate/void_receipt.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const char* const QueryReceiptsTitle = "Query Receipts";

std::vector<QueryGridModel::Column> receiptListColumns() {
    using F = QueryGridModel::Format;
    return {
        {"Control", "Control", F::Text},
        {"Bill #", "BillNo", F::Text},
        {"Name", "Name", F::Text},
        {"Map3", "Map3", F::Text},
        {"Map4", "Map4", F::Text},
        {"Map5", "Map5", F::Text},
        {"Receipt Number", "RecNum", F::Text},
        {"Payment", "Total", F::Money},
        {"Date", "RDate", F::Date},
        {"Voided", "VDate", F::Date},
        {"C Pd", "CPayFlag", F::Text},
        {"M Pd", "TPayFlag", F::Text},
        {"S Pd", "SPayFlag", F::Text},
        {"Pay1Flag", "Pay1Flag", F::Text},
        {"Pay2Flag", "Pay2Flag", F::Text},
        {"Pay3Flag", "Pay3Flag", F::Text},
    };
}

} // namespace

QString ReceiptListSql() {
    QStringList amounts;
    for (int line = 0; line < TaxLineCount; ++line)
        for (const QString& column : {DiscountColumn(line), FaceColumn(line), PenaltyColumn(line)})
            amounts << QStringLiteral("ifnull(%1, 0)").arg(column);
    return QStringLiteral("SELECT Control, BillNo, Name, Map3, Map4, Map5, Recnum AS RecNum, "
                          "RDate, ") +
           amounts.join(u'+') +
           QStringLiteral(" AS Total, VDate, CPayFlag, TPayFlag, SPayFlag, Pay1Flag, Pay2Flag, "
                          "Pay3Flag FROM TCReceipt");
}

frmREQueryReceipts::frmREQueryReceipts(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmREQueryReceipts"));
    setWindowTitle(QStringLiteral("Query Real Estate Tax Receipts"));
    buildScreen();
    clearScreen();
    for (QGroupBox* frame : {fraName, fraBill, fraControl, fraMap, fraRecNum, fraDate})
        frame->setEnabled(false);
    cmdSearch->setEnabled(false);
}

void frmREQueryReceipts::buildScreen() {
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
    optRecNum = option("optRecNum", "Receipt &Number");
    optDate = option("optDate", "&Date Received");
    optName = option("optName", "N&ame");
    optBill = option("optBill", "&Bill #");
    optControl = option("optControl", "C&ontrol #");
    optMap = option("optMap", "&Map #");
    fraRecNum = frame("fraRecNum", "Receipt Number");
    fraDate = frame("fraDate", "Date Received");
    fraName = frame("fraName", "Name Criteria");
    fraBill = frame("fraBill", "Bill # Criteria");
    fraControl = frame("fraControl", "Control # Criteria");
    fraMap = frame("fraMap", "Map # Criteria");
    txtRecNum = NamedField(fraRecNum, QStringLiteral("txtRecNum"), 12);
    txtDate = NamedField(fraDate, QStringLiteral("txtDate"), 10);
    txtName = NamedField(fraName, QStringLiteral("txtName"), 50);
    txtBillNo = NamedField(fraBill, QStringLiteral("txtBillNo"), 5);
    txtControl = NamedField(fraControl, QStringLiteral("txtControl"), 6);
    txtMap3 = NamedField(fraMap, QStringLiteral("txtMap3"), 8);
    txtMap4 = NamedField(fraMap, QStringLiteral("txtMap4"), 6);
    txtMap5 = NamedField(fraMap, QStringLiteral("txtMap5"), 9);
    (new QHBoxLayout(fraRecNum))->addWidget(txtRecNum);
    (new QHBoxLayout(fraDate))->addWidget(txtDate);
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
    cmdVoidReceipt =
        NamedButton(this, QStringLiteral("cmdVoidReceipt"), QStringLiteral("&Void Receipt"));
    cmdReprintReceipt =
        NamedButton(this, QStringLiteral("cmdReprintReceipt"), QStringLiteral("&Reprint Receipt"));

    receiptList = new QueryGridModel(
        receiptListColumns(), {{"Map", {"Map3", "Map4", "Map5"}, false}, {"UName", {"Name"}, true}},
        this);
    fraReceiptList = new QGroupBox(QStringLiteral("Search Receipts File"), this);
    fraReceiptList->setObjectName(QStringLiteral("fraReceiptList"));
    dtgReceiptList = NamedGrid(fraReceiptList, QStringLiteral("dtgReceiptList"), receiptList);
    (new QVBoxLayout(fraReceiptList))->addWidget(dtgReceiptList);
    const int widths[] = {60, 50, 200, 50, 50, 50, 110, 90, 80, 80, 40, 40, 40, 60, 60, 60};
    for (int c = 0; c < int(std::size(widths)); ++c)
        dtgReceiptList->setColumnWidth(c, widths[c]);
    dtgReceiptList->setMinimumSize(900, 300);

    auto* criteria = new QGridLayout;
    int row = 0;
    for (auto [o, f] : {std::pair{optRecNum, fraRecNum}, std::pair{optDate, fraDate},
                        std::pair{optName, fraName}, std::pair{optBill, fraBill},
                        std::pair{optControl, fraControl}, std::pair{optMap, fraMap}}) {
        criteria->addWidget(o, row % 3, (row / 3) * 2);
        criteria->addWidget(f, row % 3, (row / 3) * 2 + 1);
        ++row;
    }
    criteria->addWidget(txtSearching, 3, 1);
    auto* buttons = new QGridLayout;
    QPushButton* order[] = {cmdSearch,      cmdForward,        cmdBackward,    cmdClearScreen,
                            cmdVoidReceipt, cmdReprintReceipt, cmdPrintScreen, cmdExit};
    for (int i = 0; i < int(std::size(order)); ++i)
        buttons->addWidget(order[i], i % 4, i / 4);
    auto* top = new QHBoxLayout;
    top->addLayout(criteria, 1);
    top->addLayout(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(fraReceiptList, 1);

    m_leave = new FieldLeave(this);
    m_leave->onLeave(txtBillNo,
                     [this] { txtBillNo->setText(NormalizeQueryBillNo(txtBillNo->text())); });
    // Four characters of the first map part and three of the second move on.
    connect(txtMap3, &QLineEdit::textEdited, this, [this](const QString& text) {
        if (text.size() == 4)
            txtMap4->setFocus(Qt::TabFocusReason);
    });
    connect(txtMap4, &QLineEdit::textEdited, this, [this](const QString& text) {
        if (text.size() == 3)
            txtMap5->setFocus(Qt::TabFocusReason);
    });

    connect(optRecNum, &QRadioButton::clicked, this, [this] { choose(SearchBy::RecNum); });
    connect(optDate, &QRadioButton::clicked, this, [this] { choose(SearchBy::Date); });
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
    connect(cmdVoidReceipt, &QPushButton::clicked, this, [this] { toVoid(); });
    connect(cmdReprintReceipt, &QPushButton::clicked, this, [this] { toReprint(); });
}

void frmREQueryReceipts::choose(SearchBy by) {
    m_by = by;
    for (QLineEdit* field :
         {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5, txtRecNum, txtDate})
        field->clear();
    const std::pair<SearchBy, QGroupBox*> frames[] = {
        {SearchBy::Name, fraName}, {SearchBy::Bill, fraBill},     {SearchBy::Control, fraControl},
        {SearchBy::Map, fraMap},   {SearchBy::RecNum, fraRecNum}, {SearchBy::Date, fraDate}};
    for (auto [kind, frame] : frames)
        frame->setEnabled(kind == by);
    cmdSearch->setEnabled(true);
    QLineEdit* field = by == SearchBy::Name      ? txtName
                       : by == SearchBy::Bill    ? txtBillNo
                       : by == SearchBy::Control ? txtControl
                       : by == SearchBy::Map     ? txtMap3
                       : by == SearchBy::RecNum  ? txtRecNum
                                                 : txtDate;
    field->setFocus(Qt::OtherFocusReason);
}

bool frmREQueryReceipts::loadList() {
    QList<QByteArray> orderBy;
    switch (m_by) {
    case SearchBy::RecNum:
        orderBy = {"RecNum"};
        break;
    case SearchBy::Date:
        orderBy = {"RDate", "RecNum"};
        break;
    case SearchBy::Name:
        orderBy = {"Name", "Control"};
        break;
    case SearchBy::Bill:
        orderBy = {"BillNo", "RecNum"};
        break;
    case SearchBy::Control:
        orderBy = {"Control"};
        break;
    case SearchBy::Map:
        orderBy = {"Map3", "Map4", "Map5"};
        break;
    case SearchBy::None:
        return false;
    }
    QString error;
    if (!receiptList->load(session().DbConnection, ReceiptListSql(), {}, orderBy, false, &error)) {
        MsgBox(QStringLiteral("The receipts file could not be read: ") + error,
               QString::fromLatin1(QueryReceiptsTitle), MsgButtons::Ok, MsgIcon::Critical);
        return false;
    }
    return true;
}

void frmREQueryReceipts::search() {
    if (m_by == SearchBy::None)
        return;
    // 1. A date search needs a date.
    std::optional<QDate> date;
    if (m_by == SearchBy::Date) {
        date = ParseTypedDate(txtDate->text());
        if (!date) {
            MsgBox(QStringLiteral("Invalid Date"), QStringLiteral("Search By Date"), MsgButtons::Ok,
                   MsgIcon::Critical);
            txtDate->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
    if (m_by == SearchBy::Bill)
        txtBillNo->setText(NormalizeQueryBillNo(txtBillNo->text()));
    // 2.
    txtSearching->show();
    txtSearching->repaint();
    const bool ok = loadList();
    txtSearching->hide();
    if (!ok)
        return;
    // 3.
    if (receiptList->rowCount() == 0) {
        MsgBox(QStringLiteral("There are no receipts in the receipts file."),
               QString::fromLatin1(QueryReceiptsTitle), MsgButtons::Ok, MsgIcon::Information);
        receiptList->clear();
        return;
    }
    QString criterion;
    QByteArray key;
    switch (m_by) {
    case SearchBy::RecNum:
        criterion = txtRecNum->text();
        key = "RecNum";
        break;
    case SearchBy::Date:
        criterion = date->toString(Qt::ISODate);
        key = "RDate";
        break;
    case SearchBy::Name:
        criterion = txtName->text().toUpper();
        key = "UName";
        break;
    case SearchBy::Bill:
        criterion = txtBillNo->text();
        key = "BillNo";
        break;
    case SearchBy::Control:
        criterion = txtControl->text();
        key = "Control";
        break;
    case SearchBy::Map:
        criterion = MapCriterion(txtMap3->text(), txtMap4->text(), txtMap5->text());
        key = "Map";
        break;
    case SearchBy::None:
        break;
    }
    // 4. The nearest receipt at or after the criterion, or the last.
    const int row = receiptList->findAtOrAfter(receiptList->field(key), criterion);
    ShowGridRow(dtgReceiptList, row);
    for (QWidget* w :
         std::initializer_list<QWidget*>{optName, optBill, optControl, optMap, optRecNum, optDate,
                                         fraName, fraBill, fraControl, fraMap, fraRecNum, fraDate})
        w->setEnabled(false);
    setRowButtons(true);
    if (m_by == SearchBy::Map) {
        const QString found =
            MapCriterion(receiptList->text(row, receiptList->field("Map3")).trimmed(),
                         receiptList->text(row, receiptList->field("Map4")).trimmed(),
                         receiptList->text(row, receiptList->field("Map5")).trimmed());
        if (found != criterion)
            MsgBox(QStringLiteral("This map number is NOT an exact match of what you have "
                                  "entered in the map number criteria field."),
                   QStringLiteral("Query By Map Number"), MsgButtons::Ok, MsgIcon::Information);
    }
}

void frmREQueryReceipts::requery() {
    const int row = currentRow();
    if (!receiptList->loaded() || row < 0)
        return;
    const QString recnum = currentRecnum();
    if (!loadList())
        return;
    const int f = receiptList->field("RecNum");
    int found = -1;
    for (int r = 0; r < receiptList->rowCount() && found < 0; ++r)
        if (receiptList->text(r, f) == recnum)
            found = r;
    ShowGridRow(dtgReceiptList, found >= 0 ? found : std::min(row, receiptList->rowCount() - 1));
}

void frmREQueryReceipts::move(int rows) {
    if (!receiptList->loaded() || receiptList->rowCount() == 0)
        return;
    ShowGridRow(dtgReceiptList, std::clamp(currentRow() + rows, 0, receiptList->rowCount() - 1));
}

void frmREQueryReceipts::clearScreen() {
    for (QLineEdit* field :
         {txtName, txtBillNo, txtControl, txtMap3, txtMap4, txtMap5, txtRecNum, txtDate})
        field->clear();
    receiptList->clear();
    txtSearching->hide();
    for (QRadioButton* o : {optName, optBill, optControl, optMap, optRecNum, optDate})
        o->setEnabled(true);
    const std::pair<SearchBy, QGroupBox*> frames[] = {
        {SearchBy::Name, fraName}, {SearchBy::Bill, fraBill},     {SearchBy::Control, fraControl},
        {SearchBy::Map, fraMap},   {SearchBy::RecNum, fraRecNum}, {SearchBy::Date, fraDate}};
    for (auto [kind, frame] : frames) {
        frame->setEnabled(kind == m_by);
        if (kind == m_by && frame->isVisible())
            if (auto* field = frame->findChild<QLineEdit*>())
                field->setFocus(Qt::OtherFocusReason);
    }
    setRowButtons(false);
}

void frmREQueryReceipts::setRowButtons(bool enabled) {
    cmdVoidReceipt->setEnabled(enabled);
    cmdReprintReceipt->setEnabled(enabled);
}

int frmREQueryReceipts::currentRow() const {
    const QModelIndex index = dtgReceiptList->currentIndex();
    return index.isValid() ? index.row() : -1;
}

QString frmREQueryReceipts::currentRecnum() const {
    return receiptList->text(currentRow(), receiptList->field("RecNum"));
}

void frmREQueryReceipts::toVoid() {
    const QString recnum = currentRecnum();
    if (recnum.isEmpty())
        return;
    auto* target = ShowQueryTarget<frmREVoidReceipt>("frmREVoidReceipt");
    if (!target)
        return;
    connect(target, &frmREVoidReceipt::receiptVoided, this, &frmREQueryReceipts::requery,
            Qt::UniqueConnection);
    target->openFromQuery(recnum);
}

void frmREQueryReceipts::toReprint() {
    const QString recnum = currentRecnum();
    if (recnum.isEmpty())
        return;
    if (auto* target = ShowQueryTarget<frmREReprintReceipt>("frmREReprintReceipt"))
        target->openFromQuery(recnum);
}
