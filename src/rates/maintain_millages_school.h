#pragma once
// frmMaintainMillagesSchool: the school district's rates, formula, exclusions and one date
// set, on the district row of Millfile. The date set shown and written is the early one or
// the late one, as the school's billing time frame says.

#include "core/money.h"
#include "rates/millage_common.h"

#include <QSqlDatabase>
#include <QString>
#include <QWidget>
#include <array>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

struct SchoolMillages {
    QString district;
    QString ward;
    QString taxYear;
    double smr = 0;
    double s1mr = 0;
    QString s1TaxName;
    double sd = 0;
    double sp = 0;
    double smo = 0;
    double spc = 0;
    double pcsd = 0;
    double pcsp = 0;
    bool lateBilling = false; // BillSchool 'L'; the late date columns are written
    MillageDateSet dates;
    std::array<QDate, 3> paymentDates; // installment due dates; invalid is blank
    bool formula = false;
    double stebRatio = 0;
    double marketRatio = 0;
    Money hsExclusion;
    Money fsExclusion;
};

// One transaction, one update of the district row: the school's columns and the date set of
// its time frame. The other date set, the municipality's columns and the notice lines stay.
bool SaveSchoolMillages(QSqlDatabase db, const SchoolMillages& values, QString* error = nullptr);

class frmMaintainMillagesSchool : public QWidget {
    Q_OBJECT
public:
    explicit frmMaintainMillagesSchool(QWidget* parent = nullptr);

    QLabel* lblSchoolName = nullptr;
    BodyRateFields school; // fraSchool: txtSMR, txtS1MR, ... txtPCSP
    QCheckBox* chkFormula = nullptr;
    QLineEdit* txtStebRatio = nullptr;
    QLineEdit* txtMarketRatio = nullptr;
    QLineEdit* txtHSExclusion = nullptr;
    QLineEdit* txtFSExclusion = nullptr;
    DateGroupFields dates; // txtMailDate ...
    QLineEdit* txtPayment1Date = nullptr;
    QLineEdit* txtPayment2Date = nullptr;
    QLineEdit* txtPayment3Date = nullptr;
    QPushButton* cmdCalcDates = nullptr;
    BillingTimeFrame billSchool; // fraBillSchool: optBillSchoolEarly, optBillSchoolLate
    MillageButtons buttons;

    void loadFromTable();

private:
    void accept();
    void clearScreen();

    OfficeDistrict m_office;
    QString m_taxYear;
};
