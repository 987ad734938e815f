#pragma once
// frmREPrintSecondNotices and frmPCPrintSecondNotices: the second notices of the unpaid bills of
// one tax year, in the county's form or the plain one, from a start bill, as many as asked.
// The two forms differ only in their duplicate, so one class does the work.

#include "core/tax_database.h"

#include <QString>
#include <QWidget>

class QButtonGroup;
class QCloseEvent;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSqlRecord;

class SecondNoticesForm : public QWidget {
    Q_OBJECT
public:
    SecondNoticesForm(Duplicate duplicate, QWidget* parent = nullptr);

    QRadioButton* optAllowChecks = nullptr;
    QRadioButton* optDoNotAllowChecks = nullptr;
    QRadioButton* optCountyNotice = nullptr;
    QRadioButton* optARSNotice = nullptr;
    QCheckBox* chkPrintAddr = nullptr;
    QLineEdit* txtYear = nullptr;
    QRadioButton* optBillEarly = nullptr;
    QRadioButton* optBillLate = nullptr;
    QRadioButton* optBillBoth = nullptr;
    QLineEdit* txtSBillNo = nullptr;
    QLineEdit* txtNumberOfMailers = nullptr;
    QLineEdit* txtLeftMargin = nullptr;
    QLineEdit* txtTopMargin = nullptr;
    QLabel* lblBillMessage = nullptr; // per capita only

    // Where the run is.
    QLineEdit* txtDistrict = nullptr;
    QLineEdit* txtWard = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtName = nullptr;

    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr; // closes the form; during a run, stops it

    void cmdOK_Click();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    bool keepGoing(const QSqlRecord& bill);

    Duplicate m_duplicate;
    bool m_printing = false;
    bool m_cancel = false;
    qint64 m_lastPump = 0;
};

class frmREPrintSecondNotices : public SecondNoticesForm {
    Q_OBJECT
public:
    explicit frmREPrintSecondNotices(QWidget* parent = nullptr);
};

class frmPCPrintSecondNotices : public SecondNoticesForm {
    Q_OBJECT
public:
    explicit frmPCPrintSecondNotices(QWidget* parent = nullptr);
};
