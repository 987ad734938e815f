#pragma once
// Posting a mortgage company's file. A record is paid only when its amount is exactly what the
// bill asks of the county and the township bodies together at discount, face or penalty, tried
// in that order; everything else goes on the exception list for the collector. The school is
// never part of it.
//
// The company's single pay flag stands for both bodies: the county's (County, Library, C1Face)
// as CPayFlag and the township's (Twp and its three specials) as TPayFlag. A bill counts as
// paid when either of them is D, F, P or X. Each posting is one payment of the desk, written
// by PostRealEstatePayment in one transaction; a failure stops the run with the records before
// it posted.

#include "core/tax_database.h"
#include "desk/realestate/mortgage_file.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/receipt_writes.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>

struct Recording;

// The county and township lines of a bill at one period; the school lines stay zero.
PeriodAmounts MortgageAmountsAt(const BillNow& bill, QChar period);
inline Money MortgageTotal(const PeriodAmounts& amounts) {
    return amounts.countyTotal() + amounts.twpTotal();
}

// What becomes of a record whose bill was found.
struct MortgageMatch {
    enum class Kind { Post, WrongControl, AlreadyPaid, NoPeriodMatches };
    Kind kind = Kind::NoPeriodMatches;
    QChar period; // for Post: D, F or P
};
MortgageMatch MatchMortgageRecord(const BillNow& bill, const MortgageRecord& record);

// One payment of the file, ready to write.
struct MortgagePayment {
    BillNow bill; // as it stands, found
    MortgageRecord record;
    QChar period;
    QDate today; // the receipt's date and number
};
// The flags and receipt row of the payment: both bodies' flags the period, each county and
// township line as its face with the signed differences, no overage or refund, school zero.
RealEstatePosting BuildMortgagePosting(const MortgagePayment& payment);
// Writes it: the bill's flags, the next receipt number, the receipt. All or nothing.
PostingResult PostMortgagePayment(QSqlDatabase db, const MortgagePayment& payment);

// The printed list of the records that were not posted.
inline constexpr const char* MortgageExceptionHeading =
    "Control #   Bill #          Amount                 Payor                   Check #";
QString MortgageExceptionLine(const QString& control, const QString& billNo, const QString& amount,
                              const QString& payor, const QString& checknum);
QString MortgageExceptionLine(const MortgageRecord& record);
QString MortgageExceptionLine(const MalformedMortgageRecord& record);
// The heading and the lines in Courier New on Letter pages, one print job.
Recording DrawMortgageExceptions(const QStringList& lines);

// The run over a whole file, record by record in file order.
struct MortgageRunEvents {
    std::function<void(const MortgageRecord&)> reading; // a record's fields are read
    std::function<void(const BillNow&)> billLoaded;     // its bill as it stands
    // The amounts of a period as they are tried against the record's amount.
    std::function<void(QChar period, const PeriodAmounts&)> periodTried;
};

struct MortgageRun {
    enum class End { Complete, IncompleteChain, Failed };
    End end = End::Complete;
    QString error; // for IncompleteChain the integrity text, for Failed the database's reason
    int posted = 0;
    QStringList exceptions; // the exception lines, in file order
};
MortgageRun RunMortgageUpdate(QSqlDatabase db, const MortgageFile& file, const QDate& today,
                              const MortgageRunEvents& events = {});

// The texts of the screen.
inline constexpr const char* MortgageQuestionTitle = "Update From Mortgage Company";
inline constexpr const char* MortgageQuestionText =
    "Enter the diskette from the mortgage company. Make sure the disk is not write-protected. "
    "(If you look at the back of the diskette, the lever in the upper left hand corner should be "
    "down so that the hole is closed.)";
inline constexpr const char* MortgageAbortedText = "UPDATE ABORTED!";
inline constexpr const char* MortgageUpdateTitle = "Update From Mortgage Companies";
inline constexpr const char* MortgageUnreadableText =
    "Disk File From Mortgage Company Cannot Be Read";
inline constexpr const char* MortgageCompleteText = "Update Complete";
