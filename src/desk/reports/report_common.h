#pragma once
// What the office's reports share: the tables of each duplicate, the names of the tax lines as
// the office has set them, padded fixed-pitch lines, and the buttons and progress fields of a
// report form.

#include "core/money.h"
#include "distribution/distribution_tables.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

class QLineEdit;
class QPushButton;
class QWidget;
class QBoxLayout;

// The tables of one duplicate, as the reports read them.
struct ReportTables {
    const DistributionTables* dist = nullptr;
    bool realEstate = true;
    QString master;
    QString adjust;
    QString address;
    QString adds;

    // Every face column of the duplicate, county first, in the order of the bill.
    QStringList faceColumns() const;
    const DistributionBody& body(TaxingBody b) const { return dist->body(b); }
};
const ReportTables& RealEstateReportTables();
const ReportTables& PerCapitaReportTables();

// The office's names for its tax lines.
struct TaxNames {
    QString bodyWord;      // "Township", "Borough", "City" or empty
    QString countyTaxName; // S1TaxName of the county's Millfile row ("Act 1" when none)
    QString countySpecial; // Desc1 of the county's first special tax, or "Cnty Spc"
    QStringList municipal; // the three municipal specials: Desc1, or "Spec. #n"
    QString schoolSpecial; // S1TaxName of the collector's Millfile row, or "Sch. Spec."
    QString municipality;  // TwpBoro
    QString schoolName;    // SchoolName of tbl_Twpboro
    QString county;        // tbl_County's name

    static TaxNames read(QSqlDatabase db);
};

// A date as the SQL of the database holds it (yyyy-MM-dd).
QString IsoDate(const QDate& date);

// Appends `text` so that it ends at column `column` of a fixed-pitch line (one blank at least
// when the line is already past it).
void PadTo(QString& line, int column, const QString& text);

// The sum of a record's columns.
Money SumColumns(const QSqlRecord& row, const QStringList& columns);

// Print, Print Preview and Exit of a report form, and the row-in-hand fields.
struct ReportButtons {
    QPushButton* cmdPrint = nullptr;
    QPushButton* cmdPrintPreview = nullptr;
    QPushButton* cmdExit = nullptr;
};
ReportButtons MakeReportButtons(QWidget* form, QBoxLayout* layout);

// The date typed in a report field; no value when it is none.
std::optional<QDate> ReportDate(const QString& typed);
