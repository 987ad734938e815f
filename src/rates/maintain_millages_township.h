#pragma once
// frmMaintainMillagesTownship: the municipality's rates, the notice lines and escrow boxes of
// early and late billing, both date sets, the billing time frames of the municipality and
// the county, and the tolerance, on the district row of Millfile. The school and county
// rates are shown beside them for reference and are not written here.

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

// The lines printed on the bills of one billing time frame.
struct BillNotice {
    std::array<QString, 7> lines;
    QString phone;
    bool printEscrow = false;
};

struct TownshipMillages {
    QString district;
    QString ward;
    QString taxYear;
    double tmr = 0;
    double lmr = 0; // the county library millage, kept on the district row
    double tmo = 0;
    double tpc = 0;
    double td = 0;
    double tp = 0;
    double pctd = 0;
    double pctp = 0;
    BillNotice early;
    BillNotice late;
    MillageDateSet earlyDates;
    MillageDateSet lateDates;
    QString billCounty; // "E" or "L"
    QString billTwp;
    Money tolerance;
};

// One transaction, one update of the district row. Also blanks the per capita bill lines
// (PLine1, PLine2, LatePLine1, LatePLine2); leaves the school's columns and BillSchool.
bool SaveTownshipMillages(QSqlDatabase db, const TownshipMillages& values,
                          QString* error = nullptr);

class frmMaintainMillagesTownship : public QWidget {
    Q_OBJECT
public:
    explicit frmMaintainMillagesTownship(QWidget* parent = nullptr);

    QLabel* lblTwpBoro = nullptr;
    // Twp/Boro/City rates.
    QLineEdit* txtTMR = nullptr;
    QLineEdit* txtLMR = nullptr;
    QLineEdit* txtTD = nullptr;
    QLineEdit* txtTP = nullptr;
    QLineEdit* txtTMO = nullptr;
    QLineEdit* txtTPC = nullptr;
    QLineEdit* txtPCTD = nullptr;
    QLineEdit* txtPCTP = nullptr;
    QLineEdit* txtTolerance = nullptr;
    // School rates of the district row and county rates of the county row, for reference.
    BodyRateFields schoolRates; // fraSchool: txtSMR, txtS1MR, ... txtPCSP
    BodyRateFields countyRates; // fraCounty: txtCMR, txtC1MR, ... txtPCCP
    // Notice lines of early and late billing.
    std::array<QLineEdit*, 7> txtLine{};
    std::array<QLineEdit*, 7> txtLateLine{};
    QLineEdit* txtTCPhone = nullptr;
    QLineEdit* txtLateTCPhone = nullptr;
    QCheckBox* chkPrintEscrow = nullptr;
    QCheckBox* chkLatePrintEscrow = nullptr;
    // Date sets: txtMailDate ... and txtLateMailDate ...
    DateGroupFields early;
    DateGroupFields late;
    QPushButton* cmdCalcDatesEarly = nullptr;
    QPushButton* cmdCalcDatesLate = nullptr;
    BillingTimeFrame billTwp;    // fraBillTwp: optBillTwpEarly, optBillTwpLate
    BillingTimeFrame billSchool; // fraBillSchool: optBillSchoolEarly, optBillSchoolLate
    BillingTimeFrame billCounty; // fraBillCounty: optBillCountyEarly, optBillCountyLate
    MillageButtons buttons;

    void loadFromTable();

private:
    void accept();
    void clearScreen();
    QList<QLineEdit*> textFields() const;

    OfficeDistrict m_office;
    QString m_taxYear;
};
