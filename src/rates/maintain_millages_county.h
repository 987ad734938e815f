#pragma once
// frmMaintainMillagesCounty: the county's rates on the county row of Millfile (District '00',
// Ward '0'), held in the columns that on a municipal row are the school's.

#include "rates/millage_common.h"

#include <QSqlDatabase>
#include <QString>
#include <QWidget>

class QLabel;

// What the county screen writes: its rates and the name of its special tax, on the county
// row of that tax year.
struct CountyMillages {
    QString taxYear;
    double smr = 0;  // real-estate millage
    double s1mr = 0; // special millage
    QString s1TaxName;
    double sd = 0; // real-estate discount, percent
    double sp = 0; // real-estate penalty, percent
    double smo = 0;
    double spc = 0;
    double pcsd = 0;
    double pcsp = 0;
};

// One transaction, one update. A database without the row changes nothing and succeeds.
bool SaveCountyMillages(QSqlDatabase db, const CountyMillages& values, QString* error = nullptr);

class frmMaintainMillagesCounty : public QWidget {
    Q_OBJECT
public:
    explicit frmMaintainMillagesCounty(QWidget* parent = nullptr);

    QLabel* lblCountyName = nullptr;
    BodyRateFields county; // fraCounty: txtCMR, txtC1MR, ... txtPCCP
    MillageButtons buttons;

    // Fills the screen from the county row.
    void loadFromTable();

private:
    void accept();
    void clearScreen();

    QString m_taxYear;
};
