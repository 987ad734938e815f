#pragma once
// Mailing labels on sheets of three across and ten down, 30 a page, for the real-estate and the
// per capita duplicate: the selection, the open money test of the "unpaid" choice, the place of
// each label on a sheet that may be partly used, and the screen both rolls' label forms are.

#include "core/tax_database.h"

#include <QPointF>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QWidget>
#include <functional>

class QCheckBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class ReportSurface;

// Where the labels of a sheet stand: the left edges of the three columns, the first row's top
// and the distance between rows.
inline constexpr double LabelColumns[3] = {100, 4000, 7900};
inline constexpr double LabelFirstTop = 600;
inline constexpr double LabelRowPitch = 1450;
inline constexpr int LabelsPerSheet = 30;

// The label positions of a run: column 1 to 3 and the top; the counter counts every position
// passed, skipped ones included, and a sheet is full at every 30th.
class LabelPosition {
public:
    QPointF place() const { return {LabelColumns[m_column - 1], m_top}; }
    int column() const { return m_column; }
    int counter() const { return m_counter; }
    // To the next position; true when that begins a new sheet.
    bool advance();

private:
    int m_column = 1;
    double m_top = LabelFirstTop;
    int m_counter = 0;
};

struct LabelRun {
    Duplicate roll = Duplicate::RealEstate;
    bool unpaidOnly = false;
    bool exempts = false;
    QString startBill;     // padded; blank for the first
    int labels = 0;        // how many to print
    int startPosition = 1; // 1 to 30 on the first sheet
};

struct LabelRunResult {
    int printed = 0;
    bool stopped = false; // on a broken chain (bill) or an error
    BillNow bill;
    QString error;
};

// The selection of a run, with one parameter: the start bill.
QString LabelQuery(Duplicate roll, bool unpaidOnly, bool exempts);
// The open money test of the "unpaid" choice on the bill as it stands.
bool HasOpenMoney(Duplicate roll, const QSqlRecord& bill);
// The lines of a label: name, co-owner, street lines when not blank, city, state and ZIP.
QStringList LabelLines(const QSqlRecord& bill);

// Prints the labels of a run onto the surface; `progress` hears the count after each label.
LabelRunResult RunMailingLabels(QSqlDatabase db, const LabelRun& run, ReportSurface& surface,
                                const std::function<void(int)>& progress = {});

// The screen of both rolls; each roll's form names it.
class MailingLabelsForm : public QWidget {
    Q_OBJECT
public:
    QRadioButton* optPrintAll = nullptr;
    QRadioButton* optPrintUnpaids = nullptr;
    QCheckBox* chkPrintExempts = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtNumberOfLabels = nullptr;
    QLineEdit* txtStartLabelNumber = nullptr;
    QLineEdit* txtRecords = nullptr;
    QPushButton* cmdPrint = nullptr;
    QPushButton* cmdExit = nullptr;

    void cmdPrint_Click();

protected:
    MailingLabelsForm(Duplicate roll, const QString& name, const QString& caption, QWidget* parent);

private:
    Duplicate m_roll;
};
