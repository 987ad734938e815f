#pragma once
// The list screens of the queries, real estate and per capita alike: search options with their
// criteria frames, a grid over one query, Search (the nearest row at or after the criterion, or
// the last), Search Forward and Backward by 250 rows, Clear Screen, Print Screen, Export to CSV,
// and the row buttons that hand the row's number to a desk screen. What a screen lists, how it
// sorts and which buttons it has is data (QueryListKind); the screens that differ only in that
// are this one class made with their own kind.

#include "core/query_grid.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QWidget>
#include <vector>

class FieldLeave;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableView;

enum class QuerySearch { None, Name, Bill, Control, Map, RecNum, Date };

// One search option: its button, and the order the list is put in for it.
struct QuerySearchOption {
    QuerySearch by = QuerySearch::None;
    const char* optionName = ""; // optName, optBill, optBillNo, ...
    const char* caption = "";
    QList<QByteArray> orderBy;
};

struct QueryRowButton {
    const char* name;
    const char* caption;
};

struct QueryListKind {
    const char* screenName = "";
    const char* caption = "";
    // The title of the list's own boxes (a failed read, no rows).
    const char* boxTitle = "";
    const char* gridName = "";      // dtgMasterList, dtgReceiptList
    const char* gridFrameName = ""; // fraMasterList, fraReceiptList
    const char* gridCaption = "";   // "Search Master File", ...
    std::vector<QueryGridModel::Column> columns;
    std::vector<int> widths;
    std::vector<QueryGridModel::Derived> derived;
    QString sql;
    QByteArray lateKey; // fields read for the rows shown, by this field: see setLateFields
    QString lateSql;
    bool distinct = false; // rows equal in every field stand once, as a union gives them
    std::vector<QuerySearchOption> options;
    std::vector<QueryRowButton> rowButtons;
    // The number a row hands over ("BillNo", "RecNum").
    QByteArray numberField;
    // A receipts list: no rows is told, a map found that is not the one typed is told, and the
    // first two map fields move on when full.
    bool receipts = false;
};

class QueryListScreen : public QWidget {
    Q_OBJECT
public:
    explicit QueryListScreen(QueryListKind kind, QWidget* parent = nullptr);

    QRadioButton* option(QuerySearch by) const;
    QPushButton* rowButton(const char* name) const;
    // The row made current, -1 when none; its number field and any field by name.
    int currentRow() const;
    QString currentNumber() const;
    QString currentText(const QByteArray& field) const;

    QRadioButton* optName = nullptr;
    QRadioButton* optBill = nullptr; // optBill or optBillNo, as the kind names it
    QRadioButton* optControl = nullptr;
    QRadioButton* optMap = nullptr;
    QRadioButton* optRecNum = nullptr;
    QRadioButton* optDate = nullptr;
    QGroupBox* fraName = nullptr;
    QGroupBox* fraBill = nullptr;
    QGroupBox* fraControl = nullptr;
    QGroupBox* fraMap = nullptr;
    QGroupBox* fraRecNum = nullptr;
    QGroupBox* fraDate = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtRecNum = nullptr;
    QLineEdit* txtDate = nullptr;
    QLabel* txtSearching = nullptr;

    QGroupBox* fraList = nullptr;
    QTableView* grid = nullptr;
    QueryGridModel* model = nullptr;

    QPushButton* cmdSearch = nullptr;
    QPushButton* cmdForward = nullptr;
    QPushButton* cmdBackward = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExportCsv = nullptr;
    QPushButton* cmdExit = nullptr;

public Q_SLOTS:
    // Searches again and finds the row shown before: a target screen has saved.
    void requery();

private:
    void buildScreen();
    void choose(QuerySearch by);
    void search();
    bool loadList();
    void move(int rows);
    void clearScreen();
    void setRowButtons(bool enabled);
    QGroupBox* frameOf(QuerySearch by) const;
    QLineEdit* firstFieldOf(QuerySearch by) const;
    const QuerySearchOption* chosen() const;

    QueryListKind m_kind;
    QuerySearch m_by = QuerySearch::None;
    std::vector<QPushButton*> m_rowButtons;
    FieldLeave* m_leave = nullptr;
};

// A per capita or real-estate master list's SQL: the master's rows and one more for each
// address change with the change's fields named in changeFields, the master's for the rest.
QString MasterUnionSql(const char* master, const char* address, const QStringList& changeFields,
                       const QStringList& masterFields);
// ifnull(D1, 0)+ifnull(D2, 0)+...: a sum of amount columns, Null counting as zero.
QString AmountSum(const QStringList& columns);
