#pragma once
// What was changed on the duplicate in a date range: the adjustment reports
// (frmREPrintAdjustmentReport, frmPCPrintAdjustmentReport) in their sections of adjusted,
// exonerated and added bills, and the address change reports (frmREPrintAddressReport,
// frmPCPrintAddressReport) with each change before and after. One code serves both duplicates.

#include "desk/reports/report_common.h"
#include "reports/report_frame.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QWidget>
#include <functional>

class QCheckBox;
class QLineEdit;
class QRadioButton;

enum class ChangeOrder { Control, Bill, Name, Map };

struct ChangeReportOptions {
    QDate start;
    QDate end;
    ChangeOrder order = ChangeOrder::Bill;
    bool reportableOnly = false; // address changes flagged Reportable only
    std::function<void(const QSqlRecord& row)> progress;
};

// The adjustment report and the address change report on the frame. Each keeps what its body
// needs, so it outlives the print or preview that runs it.
class AdjustmentReport {
public:
    AdjustmentReport(QSqlDatabase db, const ReportTables& tables, ChangeReportOptions options);
    AdjustmentReport(const AdjustmentReport&) = delete;
    AdjustmentReport& operator=(const AdjustmentReport&) = delete;
    const ReportDefinition& definition() const { return m_definition; }

private:
    bool draw(ReportPage& page);
    QSqlDatabase m_db;
    const ReportTables& m_tables;
    ChangeReportOptions m_options;
    ReportDefinition m_definition;
    TaxNames m_names;
};

class AddressReport {
public:
    AddressReport(QSqlDatabase db, const ReportTables& tables, ChangeReportOptions options);
    AddressReport(const AddressReport&) = delete;
    AddressReport& operator=(const AddressReport&) = delete;
    const ReportDefinition& definition() const { return m_definition; }

private:
    bool draw(ReportPage& page);
    QSqlDatabase m_db;
    const ReportTables& m_tables;
    ChangeReportOptions m_options;
    ReportDefinition m_definition;
};

// Prints the adjustment report of a range without questions or closing message (the Act 169
// report's supporting documents).
bool PrintAdjustmentReportSilently(QSqlDatabase db, const ReportTables& tables, const QDate& start,
                                   const QDate& end);

class ChangeReportForm : public QWidget {
    Q_OBJECT
public:
    QLineEdit* txtStartDate = nullptr;
    QLineEdit* txtEndDate = nullptr;
    QRadioButton* optControl = nullptr;
    QRadioButton* optBill = nullptr;
    QRadioButton* optName = nullptr;
    QRadioButton* optMap = nullptr;
    QCheckBox* chkReportable = nullptr; // the real-estate address report only
    ReportButtons buttons;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;

    void cmdPrint_Click();
    void cmdPrintPreview_Click();

protected:
    ChangeReportForm(const ReportTables& tables, bool address, const QString& name,
                     QWidget* parent);

private:
    void run(bool print);
    const ReportTables& m_tables;
    bool m_address;
};

class frmREPrintAdjustmentReport : public ChangeReportForm {
    Q_OBJECT
public:
    explicit frmREPrintAdjustmentReport(QWidget* parent = nullptr);
};
class frmPCPrintAdjustmentReport : public ChangeReportForm {
    Q_OBJECT
public:
    explicit frmPCPrintAdjustmentReport(QWidget* parent = nullptr);
};
class frmREPrintAddressReport : public ChangeReportForm {
    Q_OBJECT
public:
    explicit frmREPrintAddressReport(QWidget* parent = nullptr);
};
class frmPCPrintAddressReport : public ChangeReportForm {
    Q_OBJECT
public:
    explicit frmPCPrintAddressReport(QWidget* parent = nullptr);
};
