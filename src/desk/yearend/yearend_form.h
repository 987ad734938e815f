#pragma once
// The form every year-end report prints from: the progress fields that follow the walk, Print,
// Print Preview and Exit. A report is one print job streamed page by page to the Letter
// printer, so the whole year's schedule never sits in memory. An integrity fault met on the way
// stops the report at that bill, shows its message and closes the form; the pages drawn
// before it print.

#include "desk/yearend/open_bills.h"
#include "reports/print_output.h"
#include "reports/report_frame.h"

#include <QSqlDatabase>
#include <QSqlRecord>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>

class QLineEdit;
class QPushButton;
class QVBoxLayout;

// Shown for each bill the walk reads.
using BillProgress = std::function<void(const QSqlRecord& bill)>;

// A report of the year end: its definition on the report frame, and how its walk ended.
class YearEndReport {
public:
    virtual ~YearEndReport() = default;
    const ReportDefinition& definition() const { return m_definition; }
    const OpenBillWalk& walk() const { return m_walk; }

protected:
    ReportDefinition m_definition;
    OpenBillWalk m_walk;
};

// Draws the report as one job straight to the device, or into the PDF file when pdfPath is
// given. No job when the body draws nothing. The body draws its own page headings (the
// frame's, through ReportPage, or its own).
PrintResult PrintStreamed(const ReportDefinition& definition, QSqlDatabase db,
                          const QString& deviceName, const QString& pdfPath = QString());

// The same drawing kept whole for the preview window; nothing when the body found nothing.
std::optional<Recording> DrawForPreview(const ReportDefinition& definition, QSqlDatabase db);

class YearEndReportForm : public QWidget {
    Q_OBJECT
public:
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtName = nullptr;
    QPushButton* cmdPrint = nullptr;
    QPushButton* cmdPrintPreview = nullptr;
    QPushButton* cmdExit = nullptr;

protected:
    YearEndReportForm(const char* screenName, const QString& title, bool perCapita,
                      QWidget* parent);
    // The report to draw, with the form's choices.
    virtual std::unique_ptr<YearEndReport> makeReport(const BillProgress& progress) = 0;
    // Where a form puts choices of its own, above the progress fields.
    QVBoxLayout* choices() const { return m_choices; }

private:
    void cmdPrint_Click();
    void cmdPrintPreview_Click();
    void showProgress(const QSqlRecord& bill);
    // The walk's fault, if any: its message, and the form closes. True when there was one.
    bool faulted(const YearEndReport& report);

    bool m_perCapita = false;
    QVBoxLayout* m_choices = nullptr;
};
