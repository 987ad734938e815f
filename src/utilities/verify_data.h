#pragma once
// frmVerifyData: the recovery step. It walks both duplicates in a fixed order, takes back
// every step that was left half done (a marker with no detail row, a history row with no
// marker), prints a line for each thing it found, tells the user in a box what it can only
// report, then clears Nulls out of every table, compacts the file and reconnects.

#include "reports/report_surface.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;

// What the walk hands its caller while it runs.
struct VerifyEvents {
    // A box the user must answer before the walk goes on (title, text).
    std::function<void(const QString&, const QString&)> tell;
    // The running count of the walk in hand (1 through its rows).
    std::function<void(int)> progress;
};

struct VerifyWalk {
    bool ok = false;
    QString error;       // the database's reason when a statement failed
    QStringList printed; // the printed list: three lines per finding
    int repairs = 0;     // statements that changed the data
    QStringList told;    // the texts of the boxes, in order
};

// The eight passes, in their order: real-estate and per capita bills (markers without detail
// rows are cleared), receipts against voids, adjustment histories (rows without a marker are
// deleted), receipts against distributions. The repairs of the two bill passes are one
// transaction; each later repair is one statement, so a run cut off anywhere leaves every bill
// whole, and no box is shown while a transaction is open. `bodyWord` is the municipality's kind
// ("Township", "Borough", "City").
VerifyWalk VerifyDataWalk(QSqlDatabase db, const QString& bodyWord, const VerifyEvents& events);

// Every Null out of every table, in one transaction: text columns become empty, number and
// money columns 0; dates stay as they are. Columns named Gen_... are left alone.
bool CleanNulls(QSqlDatabase db, QString* error = nullptr);

// Compacts the database file at path (no other connection may be open on it).
bool CompactDatabaseFile(const QString& path, QString* error = nullptr);

// The printed list drawn on a Letter page: consecutive lines, Courier New 8, no heading.
Recording DrawVerifyList(const QStringList& lines);

class frmVerifyData : public QWidget {
    Q_OBJECT
public:
    explicit frmVerifyData(QWidget* parent = nullptr);

    QLabel* lblProgress = nullptr;
    QPushButton* cmdVerify = nullptr;
    QPushButton* cmdExit = nullptr;

private:
    void cmdVerify_Click();
};
