#pragma once
// The refund distribution screens of both duplicates. frmREDistributeRefunds and
// frmPCDistributeRefunds open the next refund distribution and walk the refunds not yet
// distributed, putting each into it on the collector's word; frmREPrintDistributionRefunds and
// frmPCPrintDistributionRefunds print a refund distribution. Per capita refunds have no map
// fields: those stay hidden on its screens.

#include "distribution/distribution_tables.h"

#include <QString>
#include <QWidget>

class QLineEdit;
class QPushButton;
class QSqlRecord;

class DistributeRefundsScreen : public QWidget {
    Q_OBJECT
public:
    QLineEdit* txtDisbNum = nullptr;
    // The refund in hand.
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    QLineEdit* txtRecnum = nullptr;
    QLineEdit* txtRecNumID = nullptr;
    QLineEdit* txtRefund = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
    QLineEdit* txtState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
    QLineEdit* txtDesc1 = nullptr;
    QPushButton* cmDistributeRefunds = nullptr;
    QPushButton* cmdExit = nullptr;

protected:
    DistributeRefundsScreen(const DistributionTables& tables, const QString& name, QWidget* parent);

private:
    void buildScreen();
    void showRefund(const QSqlRecord& row);
    void walk();

    const DistributionTables& m_tables;
    QString m_taxYear;
    QString m_key;
};

class frmREDistributeRefunds : public DistributeRefundsScreen {
    Q_OBJECT
public:
    explicit frmREDistributeRefunds(QWidget* parent = nullptr);
};

class frmPCDistributeRefunds : public DistributeRefundsScreen {
    Q_OBJECT
public:
    explicit frmPCDistributeRefunds(QWidget* parent = nullptr);
};

class PrintRefundsForm : public QWidget {
    Q_OBJECT
public:
    QLineEdit* txtDisbNum = nullptr;
    // The refund in hand while the report runs.
    QLineEdit* txtRecnum = nullptr;
    QLineEdit* txtRecNumID = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtName = nullptr;
    QPushButton* cmdPrint = nullptr;
    QPushButton* cmdPrintPreview = nullptr;
    QPushButton* cmdExit = nullptr;

    // The print path, as cmdPrint and the preview's Print button run it.
    void cmdPrint_Click();
    void cmdPrintPreview_Click();

protected:
    PrintRefundsForm(const DistributionTables& tables, const QString& name, QWidget* parent);

private:
    void buildScreen();
    void run(bool print);

    const DistributionTables& m_tables;
    QString m_taxYear;
};

class frmREPrintDistributionRefunds : public PrintRefundsForm {
    Q_OBJECT
public:
    explicit frmREPrintDistributionRefunds(QWidget* parent = nullptr);
};

class frmPCPrintDistributionRefunds : public PrintRefundsForm {
    Q_OBJECT
public:
    explicit frmPCPrintDistributionRefunds(QWidget* parent = nullptr);
};
