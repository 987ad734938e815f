#pragma once
// The plain-paper tax bill shared by the real-estate and the per capita bills: one copy of the
// bill drawn from what it says (its face), two copies on a sheet with the tear line between
// them, the front of the mailing page, and the run that walks a duplicate's rows in the chosen
// order and hands bill after bill to a drawing function. What differs between the two bills is
// data: the titles, the rows, the lines of the right column and of the name block.

#include "core/money.h"
#include "core/tax_database.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <functional>
#include <utility>
#include <vector>

class ReportSurface;

// The two mailings of a year: county and municipal bills early, school bills late.
enum class BillingFrame { Early, Late };

// The bodies a bill of this frame shows: those whose Millfile flag names the frame.
struct BilledBodies {
    bool county = false;
    bool twp = false;
    bool school = false;
    bool any() const { return county || twp || school; }
};

// One line of the bill's grid.
struct BillGridRow {
    QString label;
    QString rate;
    Money discount, face, penalty;
    bool reduction = false; // printed with a minus and taken off the totals
};

// Everything one copy of a bill prints, worked out before drawing.
struct BillFace {
    QString title;
    bool secondNotice = false; // the boxed "SECOND NOTICE" under the title
    QStringList payableLines;  // under "Payable To:"
    QStringList measuredLines; // the lines whose width places "Office Hours:"
    QStringList hoursLines;    // under "Office Hours:"
    QString county;            // right block
    QString billNo;            // as stored
    QString payload;           // Code 39
    QStringList gridDates[3];  // under the three amount captions
    QString mailingDate;       // "MAILING DATE: ..."
    QString discountRates, penaltyRates;
    std::vector<BillGridRow> rows;
    QString controlLine;    // 10 point bold at the head of the right column
    QStringList rightLines; // 8 point under it
    std::vector<std::pair<QString, QString>> figures;   // right column, value at a right edge
    std::vector<std::pair<QString, QString>> belowGrid; // at 4500 under the grid
    QStringList payableFrom;                            // "Taxes are due and payable ..."
    QStringList address;                                // bold, five lines kept
    QStringList dueLines;                               // until when, and who collects afterwards
    QString firstMark;                                  // copy mark on the upper half of the sheet
    QString secondMark;                                 // and on the lower
    bool escrow = false;
};

// The front of a mailing page.
struct MailingFace {
    QString firstLine;
    QStringList returnLines; // the return block, a blank line after it
    QString service;         // under the rule
    QString headline;        // "*** OFFICIAL ... ***"
    QStringList address;
    QString zipCode, zipCode2;
};

// One copy with its top at `top`; returns the bottom of its block.
double DrawBillCopy(ReportSurface& surface, const BillFace& face, double top);
// The two copies of a bill on one sheet with the tear line between them.
void DrawBillSheet(ReportSurface& surface, const BillFace& face);
// The mailing page's front (return block, headline, address, postal bars, postage box).
void DrawMailingFront(ReportSurface& surface, const MailingFace& face);

// Small pieces the bill forms share.
namespace BillText {
QString text(const QSqlRecord& r, const char* column);
QString trimmed(const QSqlRecord& r, const char* column);
Money money(const QSqlRecord& r, const char* column);
double rate(const QSqlRecord& r, const char* column);
QDate date(const QSqlRecord& r, const char* column);
QString flag(const QSqlRecord& r, const char* column); // trimmed, in capitals
bool blank(const QSqlRecord& r, const char* column);   // a flag that is blank
QString shortDate(const QDate& d);                     // "MM/dd/yy"
QString longDate(const QDate& d);                      // "MM/dd/yyyy"
QString monthDate(const QDate& d);                     // "August 31, 2013"
// The column of the frame: "DiscDate" early, "LateDiscDate" late.
QDate frameDate(const QSqlRecord& rates, BillingFrame frame, const char* column);
QString frameText(const QSqlRecord& rates, BillingFrame frame, const char* column);
QString municipalWord(const QString& btFlag); // City, Boro, Twp
QString gridBodyWord(const QString& btFlag);  // CITY, BOROUGH, TOWNSHIP
// City, state and ZIP as the address blocks print them.
QString cityLine(const QSqlRecord& bill);
// "Discount: County @ 2%, Twp @ 1.25%, School @ 2%": the bodies' rates from these columns of
// the county row and the municipal row.
QString rateLine(const QSqlRecord& countyRates, const QSqlRecord& rates, const QString& btFlag,
                 const BilledBodies& bodies, bool penalty, const char* countyColumn,
                 const char* twpColumn, const char* schoolColumn);
} // namespace BillText

// Placing text on a bill surface.
namespace BillPen {
void useFont(ReportSurface& s, const char* name, double size, bool bold = false,
             bool underline = false);
void at(ReportSurface& s, double x, double y, const QString& t);
void rightAt(ReportSurface& s, double edge, double y, const QString& t);
void line(ReportSurface& s, double x, const QString& t); // prints and moves to the next line
void centredIn(ReportSurface& s, double left, double width, double y, const QString& t);
} // namespace BillPen

// How a run of bills ended.
struct BillRunResult {
    enum class Stop {
        Finished,
        NoRows,          // the query found no bill
        StartNotFound,   // the start bill is not among them
        NoBodies,        // no body bills in the frame
        IncompleteChain, // a bill's adjustment or address chain is broken (bill in `bill`)
        Cancelled,
        Error,
    };
    Stop stop = Stop::Finished;
    int printed = 0;
    BillNow bill; // the bill the run stopped on
    QString error;
};

// Called before each bill is drawn, with the bill as it stands; false cancels the run there.
using BillProgress = std::function<bool(const QSqlRecord& bill, int printed)>;

// What a run of one duplicate's bills needs: its rows, where to start, how many, and per bill
// whether it goes out and how it is drawn.
struct BillWalk {
    Duplicate duplicate = Duplicate::RealEstate;
    QString query;
    QString startBill; // padded, or blank for the first row
    int mailers = 0;
    bool lateBillingRun = false;
    BilledBodies bodies;
    // False leaves the bill out (nothing to pay in the frame).
    std::function<bool(const QSqlRecord& bill)> wanted;
    // Draws the bill's pages, each ended with NewPage; `sequence` is its number in the run.
    std::function<void(const QSqlRecord& bill, int sequence)> draw;
};

// Walks the rows: finds the start bill, reads each bill as it stands (stopping at a broken
// chain), asks the progress, applies the late billing test during a late billing run, and
// draws the wanted bills until as many as asked are printed.
BillRunResult WalkBills(QSqlDatabase db, const BillWalk& walk, const BillProgress& progress);

// The late billing test: true when the bill is to be mailed again because it was added after
// billing or its address changed since it was billed. `bill` is the bill as it stands.
bool PassesLateBillingTest(QSqlDatabase db, const QSqlRecord& bill,
                           Duplicate duplicate = Duplicate::RealEstate);

// The surface set-up of a bill run: portrait letter, ARIAL bold, transparent text.
void SetUpBillSurface(ReportSurface& surface);
