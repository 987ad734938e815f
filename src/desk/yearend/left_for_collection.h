#pragma once
// The sworn return of uncollected taxes: every bill with an unpaid part at its face and penalty
// amounts, page and district totals, the totals of taxes returned and the two certification
// pages (real estate); the street light variant of district 39 (the municipal lines only);
// and the per capita list.

#include "desk/yearend/yearend_form.h"

#include <QSqlDatabase>
#include <array>
#include <memory>

class QRadioButton;

class ReLeftForCollectionReport : public YearEndReport {
public:
    // `streetLights`: the street light variant.
    ReLeftForCollectionReport(QSqlDatabase db, bool streetLights, BillProgress progress);

private:
    bool draw(ReportPage& page);

    QSqlDatabase m_db;
    bool m_streetLights = false;
    BillProgress m_progress;
    YearEndOffice m_office;
    std::vector<int> m_lines; // the tax lines of the schedule's columns
};

// Which taxing bodies a per capita list takes.
enum class PcBodies { All, CountyAndMunicipal, School };

class PcLeftForCollectionReport : public YearEndReport {
public:
    PcLeftForCollectionReport(QSqlDatabase db, PcBodies bodies, BillProgress progress);

private:
    bool draw(ReportPage& page);

    QSqlDatabase m_db;
    PcBodies m_bodies = PcBodies::All;
    BillProgress m_progress;
    YearEndOffice m_office;
};

class frmREPrintLeftForCollectionReport : public YearEndReportForm {
    Q_OBJECT
public:
    explicit frmREPrintLeftForCollectionReport(QWidget* parent = nullptr);

protected:
    frmREPrintLeftForCollectionReport(const char* name, bool streetLights, QWidget* parent);
    std::unique_ptr<YearEndReport> makeReport(const BillProgress& progress) override;

private:
    bool m_streetLights = false;
};

class frmREPrintLeftForCollectionReportStLt : public frmREPrintLeftForCollectionReport {
    Q_OBJECT
public:
    explicit frmREPrintLeftForCollectionReportStLt(QWidget* parent = nullptr);
};

class frmPCPrintLeftForCollectionReport : public YearEndReportForm {
    Q_OBJECT
public:
    explicit frmPCPrintLeftForCollectionReport(QWidget* parent = nullptr);

    QRadioButton* optAll = nullptr;
    QRadioButton* optCountyTwp = nullptr;
    QRadioButton* optSchool = nullptr;

protected:
    std::unique_ptr<YearEndReport> makeReport(const BillProgress& progress) override;
};
