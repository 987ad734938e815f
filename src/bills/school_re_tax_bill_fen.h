#pragma once
// frmSchoolRETaxBillFen: the school district's own real-estate statement, one sheet a bill: the
// full-payment statement above and three tear-off installment coupons below. The school part
// only, at the early dates, for every bill with a school tax.

#include "core/money.h"

#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QWidget>
#include <functional>

class QLineEdit;
class QPushButton;
class ReportSurface;

// What one statement needs besides the bill: the office's names and the Millfile row.
struct SchoolStatementOffice {
    QString county;
    QString twpBoro;
    QString schoolName;
    QSqlRecord rates; // Millfile of the bill's district, for the year of today
};

// Draws one bill's statement and, when Payment1 is above zero, its coupons; ends the page.
void DrawSchoolStatement(ReportSurface& surface, const SchoolStatementOffice& office,
                         const QSqlRecord& bill);

struct SchoolStatementRun {
    QString startBill; // padded; blank for the first
    int mailers = 0;
};
struct SchoolStatementResult {
    enum class Stop { Finished, StartNotFound, IncompleteChain, Error };
    Stop stop = Stop::Finished;
    int printed = 0;
    QString error;
    int chainStatus = 0; // BillNow::Status of a broken chain
    QString billNo;
};
// Every bill with a school tax, in bill number order from the start bill.
SchoolStatementResult
RunSchoolStatements(QSqlDatabase db, const SchoolStatementRun& run, ReportSurface& surface,
                    const std::function<void(const QSqlRecord&)>& progress = {});

class frmSchoolRETaxBillFen : public QWidget {
    Q_OBJECT
public:
    explicit frmSchoolRETaxBillFen(QWidget* parent = nullptr);

    QLineEdit* txtSBillNo = nullptr;
    QLineEdit* txtNumberOfMailers = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtName = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

    void cmdOK_Click();
};
