#pragma once
// The school's Act 1 reports: the installment late payers, who lose the right to pay by
// installments next year (frmREPrintIneligibleAct1), with statistics of the right's use; and
// the parcels whose school tax was billed as zero (frmREPrintAct1ZeroAmounts).

#include "desk/reports/report_common.h"
#include "reports/report_frame.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QWidget>
#include <array>
#include <functional>
#include <vector>

class QLineEdit;

// A bill paying the school by installments, and which of its installments came late.
struct LatePayer {
    QString billNo;
    QString control;
    QString map;
    QString name;
    std::array<Money, 3> payments;
    std::array<bool, 3> late{};
};

struct LatePayerFigures {
    std::vector<LatePayer> payers;
    std::array<QDate, 3> dueDates; // with the ten days of grace
    qint64 eligible = 0;           // Act 1 homestead/farmstead properties
    qint64 installmentPayers = 0;
    double usingPercent() const;
    double latePercent() const;
};

// Walks the installment bills. `progress` sees each bill as it is read.
LatePayerFigures GatherLatePayers(QSqlDatabase db,
                                  const std::function<void(const QSqlRecord&)>& progress = {});

ReportDefinition LatePayerReport(QSqlDatabase db,
                                 const std::function<void(const QSqlRecord&)>& progress = {});
ReportDefinition ZeroAmountReport(QSqlDatabase db,
                                  const std::function<void(const QSqlRecord&)>& progress = {});

class Act1ReportForm : public QWidget {
    Q_OBJECT
public:
    ReportButtons buttons;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtName = nullptr;

    void cmdPrint_Click();
    void cmdPrintPreview_Click();

protected:
    Act1ReportForm(bool zeroAmounts, const QString& name, QWidget* parent);

private:
    ReportDefinition report();
    bool m_zeroAmounts;
};

class frmREPrintIneligibleAct1 : public Act1ReportForm {
    Q_OBJECT
public:
    explicit frmREPrintIneligibleAct1(QWidget* parent = nullptr);
};

class frmREPrintAct1ZeroAmounts : public Act1ReportForm {
    Q_OBJECT
public:
    explicit frmREPrintAct1ZeroAmounts(QWidget* parent = nullptr);
};
