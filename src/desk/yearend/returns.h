#pragma once
// The returns: a compact proof list of what will be returned, with its totals (real estate and
// per capita), and the returns file of the open real-estate bills for the Tax Claim Bureau,
// which can be mailed to the county's collections mailbox.

#include "desk/yearend/yearend_form.h"

#include <QSqlDatabase>
#include <QString>
#include <QWidget>
#include <memory>

class QCheckBox;
class QLabel;

class ReReturnsProof : public YearEndReport {
public:
    ReReturnsProof(QSqlDatabase db, BillProgress progress);

private:
    bool draw(ReportPage& page);
    QSqlDatabase m_db;
    BillProgress m_progress;
    YearEndOffice m_office;
};

class PcReturnsProof : public YearEndReport {
public:
    PcReturnsProof(QSqlDatabase db, BillProgress progress);

private:
    bool draw(ReportPage& page);
    QSqlDatabase m_db;
    BillProgress m_progress;
    YearEndOffice m_office;
};

// One line of the returns file for a bill as it stands, without its line end.
QString ReturnsFileLine(const ReOpenBill& open);

struct ReturnsFileResult {
    bool ok = false;
    int lines = 0;
    OpenBillWalk walk;
    QString error; // the file could not be written
};
// Writes the open bills to the file at path (replaced), one line each, LF ended.
ReturnsFileResult WriteReturnsFile(QSqlDatabase db, const QString& path);
// "RETURNS2013.txt"
QString ReturnsFileName(const QString& taxYear);

class frmREPrintReturnsProof : public YearEndReportForm {
    Q_OBJECT
public:
    explicit frmREPrintReturnsProof(QWidget* parent = nullptr);

protected:
    std::unique_ptr<YearEndReport> makeReport(const BillProgress& progress) override;
};

class frmPCPrintReturnsProof : public YearEndReportForm {
    Q_OBJECT
public:
    explicit frmPCPrintReturnsProof(QWidget* parent = nullptr);

protected:
    std::unique_ptr<YearEndReport> makeReport(const BillProgress& progress) override;
};

class frmRECreateReturnsFile : public QWidget {
    Q_OBJECT
public:
    explicit frmRECreateReturnsFile(QWidget* parent = nullptr);

    QLabel* lblCreate = nullptr;
    QCheckBox* chkEmail = nullptr;
    QPushButton* cmdCreate = nullptr;
    QPushButton* cmdExit = nullptr;

private:
    void cmdCreate_Click();
};
