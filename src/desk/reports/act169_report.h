#pragma once
// The Act 169 report (frmAct169Report): the collector's monthly report to one taxing district
// in the state's format. The month's opening balance is rebuilt from the original bills and the
// year's histories; the month's movements come from additions, adjustments and distributions.

#include "desk/reports/report_common.h"
#include "reports/report_frame.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <vector>

class QCheckBox;
class QComboBox;

enum class Act169Kind { County, TownshipRE, TownshipPC, School };

// One collected column of the report.
struct Act169Column {
    QString caption;
    bool perCapita = false;
    TaxingBody body = TaxingBody::County;
    QString face; // its face column
    // The gathered figures.
    Money original;
    Money addedBefore;
    Money adjustedBefore;
    Money distributedBefore;
    Money additions;
    Money credits;
    Money faceCollected;
    Money discount;
    Money penalty;

    Money opening() const { return original + addedBefore + adjustedBefore - distributedBefore; }
    Money totalCollectable() const { return opening() + additions; }
    Money closing() const { return totalCollectable() - faceCollected + credits; }
    Money cash() const { return faceCollected + penalty + discount; }
};

// A distribution of the month: a row of "C. Payment of Taxes".
struct Act169Remittance {
    QDate date;
    QString transaction; // "RE - 3"
    Money total;
    bool perCapita = false;
    int number = 0;
};

struct Act169Figures {
    Act169Kind kind = Act169Kind::County;
    QString monthName;
    QString year;
    QDate firstDay;
    QDate lastDay;
    QString district; // the body's name + " Taxing District"
    std::vector<Act169Column> columns;
    std::vector<Act169Remittance> remittances;
    Money totalCash() const;
};

// The report kinds the office can choose, in the order of the list, by its BTFlag.
QStringList Act169KindNames(const QString& bodyWord);
// Gathers the figures of the month (1 to 12) for one kind of report. The year follows the
// county's tax year; January reports the December before it closed, in the next year.
Act169Figures GatherAct169(QSqlDatabase db, Act169Kind kind, int month);

// The report on the frame.
ReportDefinition Act169Report(const Act169Figures& figures);

class frmAct169Report : public QWidget {
    Q_OBJECT
public:
    explicit frmAct169Report(QWidget* parent = nullptr);

    QComboBox* cboMonth = nullptr;
    QComboBox* cboReportType = nullptr;
    QCheckBox* chkPrintAdjustmentReports = nullptr;
    QCheckBox* chkPrintDistributionReports = nullptr;
    ReportButtons buttons;

    void cmdPrint_Click();
    void cmdPrintPreview_Click();

private:
    // The month and kind chosen; false after a refusal.
    bool validate(int* month, Act169Kind* kind);
    void printSupportingDocuments(const Act169Figures& figures);
};
