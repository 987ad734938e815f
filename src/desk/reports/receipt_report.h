#pragma once
// The receipts for deposit: frmREPrintReceiptReport and its per capita twin. The receipts of a
// range of dates credited, dates entered or receipt numbers, in the order asked by the menu,
// then the voided receipts, then the grand totals of each tax. A receipt voided within the same
// range shows with its void and adds nothing, so the deposit stays right.

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

enum class ReceiptRange { DateCredited, DateEntered, RecNum };

struct ReceiptReportOptions {
    ReceiptRange range = ReceiptRange::DateCredited;
    QString order = QStringLiteral("RECN"); // "RECN", "BILL" or "DATE"
    QDate startDate;
    QDate endDate;
    QString startRecNum; // 12 characters
    QString endRecNum;
    bool summaryOnly = false;
    std::function<void(const QSqlRecord& row)> progress;
};

// The report on the frame; it keeps what its body needs, so it outlives the print or preview.
class ReceiptReport {
public:
    ReceiptReport(QSqlDatabase db, const ReportTables& tables, ReceiptReportOptions options);
    ReceiptReport(const ReceiptReport&) = delete;
    ReceiptReport& operator=(const ReceiptReport&) = delete;
    const ReportDefinition& definition() const { return m_definition; }

private:
    struct Columns;
    bool draw(ReportPage& page);

    QSqlDatabase m_db;
    const ReportTables& m_tables;
    ReceiptReportOptions m_options;
    ReportDefinition m_definition;
    TaxNames m_names;
    QString m_interim;
    bool m_totalsPage = false;
};

class ReceiptReportForm : public QWidget {
    Q_OBJECT
public:
    QRadioButton* optDateCredited = nullptr;
    QRadioButton* optDateEntered = nullptr;
    QRadioButton* optRecNum = nullptr;
    QLineEdit* txtStartDateCredited = nullptr;
    QLineEdit* txtEndDateCredited = nullptr;
    QLineEdit* txtStartDateEntered = nullptr;
    QLineEdit* txtEndDateEntered = nullptr;
    QLineEdit* txtStartRecNum = nullptr;
    QLineEdit* txtEndRecNum = nullptr;
    QCheckBox* chkSummaryOnly = nullptr;
    ReportButtons buttons;
    QLineEdit* txtRecNum = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtName = nullptr;

    void cmdPrint_Click();
    void cmdPrintPreview_Click();

protected:
    ReceiptReportForm(const ReportTables& tables, const QString& name, QWidget* parent);

private:
    // The order the menu asked for, and the caption that names it.
    void takeOrder();
    void chooseRange(ReceiptRange range);
    // The checked fields as options; nothing after a refusal (its message shown).
    std::optional<ReceiptReportOptions> validOptions();
    void run(bool print);

    const ReportTables& m_tables;
    QString m_order;
    ReceiptRange m_range = ReceiptRange::DateCredited;
};

class frmREPrintReceiptReport : public ReceiptReportForm {
    Q_OBJECT
public:
    explicit frmREPrintReceiptReport(QWidget* parent = nullptr);
};

class frmPCPrintReceiptReport : public ReceiptReportForm {
    Q_OBJECT
public:
    explicit frmPCPrintReceiptReport(QWidget* parent = nullptr);
};
