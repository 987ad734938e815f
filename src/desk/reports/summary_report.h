#pragma once
// The balance summary: frmREPrintSummaryReport and frmPCPrintSummaryReport. One fixed page per
// tax line of the duplicate walks from what was billed to what is still to be collected, and
// from what was collected to what is still to be paid over. The figures are gathered once per
// run (BalanceSummary) and then drawn, in fixed pitch, on the report frame.

#include "desk/reports/report_common.h"
#include "reports/report_frame.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <vector>

struct SummaryFigures {
    qint64 count = 0;
    Money face;
    Money discount;
    Money penalty;
};

// One page: its heading word, its printed lines, and the results of its walk.
struct SummaryPage {
    QString word;
    QStringList lines;
    SummaryFigures netDuplicate;  // A
    SummaryFigures netReceipts;   // B
    SummaryFigures balance;       // C
    SummaryFigures netDisbursed;  // D
    SummaryFigures yetToDisburse; // E
};

// Every page of the duplicate's summary as the tables stand now. Empty when a read failed.
std::vector<SummaryPage> GatherBalanceSummary(QSqlDatabase db, const ReportTables& tables);

// The report on the frame, one page a sheet.
ReportDefinition BalanceSummaryReport(QSqlDatabase db, const ReportTables& tables);

class SummaryReportForm : public QWidget {
    Q_OBJECT
public:
    ReportButtons buttons;
    void cmdPrint_Click();
    void cmdPrintPreview_Click();

protected:
    SummaryReportForm(const ReportTables& tables, const QString& name, QWidget* parent);

private:
    const ReportTables& m_tables;
};

class frmREPrintSummaryReport : public SummaryReportForm {
    Q_OBJECT
public:
    explicit frmREPrintSummaryReport(QWidget* parent = nullptr);
};

class frmPCPrintSummaryReport : public SummaryReportForm {
    Q_OBJECT
public:
    explicit frmPCPrintSummaryReport(QWidget* parent = nullptr);
};
