#pragma once
// The six distribution report forms: frmREPrintDistributionCounty, ...Twp, ...School and their
// per capita twins. Each shows the body's last distribution, takes the number to print and
// prints or previews that distribution's report.

#include "distribution/distribution_tables.h"

#include <QString>
#include <QWidget>

class QCheckBox;
class QLineEdit;
class QPushButton;

class DistributionReportForm : public QWidget {
    Q_OBJECT
public:
    QLineEdit* txtDisbNum = nullptr;
    QLineEdit* txtDisbDate = nullptr;
    QLineEdit* txtPrintDisbNum = nullptr;
    QCheckBox* chkSummaryOnly = nullptr;
    QCheckBox* chkCalculated = nullptr;
    QPushButton* cmdPrint = nullptr;
    QPushButton* cmdPrintPreview = nullptr;
    QPushButton* cmdExit = nullptr;
    // The row in hand while the report runs.
    QLineEdit* txtRecnum = nullptr;
    QLineEdit* txtVoid = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtName = nullptr;

    // The print path, as cmdPrint and the preview's Print button run it.
    void cmdPrint_Click();
    void cmdPrintPreview_Click();

protected:
    DistributionReportForm(const DistributionTables& tables, TaxingBody body, const QString& name,
                           QWidget* parent);
    void showEvent(QShowEvent* event) override;

private:
    void buildScreen();
    void load();
    // The number to print, checked and rewritten in "00"; 0 when refused.
    int validNumber();
    void run(bool print);

    const DistributionTables& m_tables;
    TaxingBody m_body;
    QString m_taxYear;
    int m_lastNumber = 0;
    bool m_checkedOnShow = false;
};

class frmREPrintDistributionCounty : public DistributionReportForm {
    Q_OBJECT
public:
    explicit frmREPrintDistributionCounty(QWidget* parent = nullptr);
};
class frmREPrintDistributionTwp : public DistributionReportForm {
    Q_OBJECT
public:
    explicit frmREPrintDistributionTwp(QWidget* parent = nullptr);
};
class frmREPrintDistributionSchool : public DistributionReportForm {
    Q_OBJECT
public:
    explicit frmREPrintDistributionSchool(QWidget* parent = nullptr);
};
class frmPCPrintDistributionCounty : public DistributionReportForm {
    Q_OBJECT
public:
    explicit frmPCPrintDistributionCounty(QWidget* parent = nullptr);
};
class frmPCPrintDistributionTwp : public DistributionReportForm {
    Q_OBJECT
public:
    explicit frmPCPrintDistributionTwp(QWidget* parent = nullptr);
};
class frmPCPrintDistributionSchool : public DistributionReportForm {
    Q_OBJECT
public:
    explicit frmPCPrintDistributionSchool(QWidget* parent = nullptr);
};
