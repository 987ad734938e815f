#pragma once
// The file a mortgage company sends with the taxes it pays for its customers: one record per
// payment, fixed fields and a payor of up to 30 characters, each record ended by CR LF.
//
//   control number  6   text, compared with the bill's Control
//   bill number     5   right-justified after trimming ("####0")
//   amount          9   whole cents
//   check number    6   text
//   payor           up to 30, ended by CR (then LF) or by its length (then CR LF)
//
// The reading takes the bytes whole and never fails: every record is either read whole or
// listed as malformed with what could be read of it, so a bad record can be shown to the
// collector and is never half posted. A bad record costs only its own line: the reading goes
// on after the next line end.

#include "core/money.h"

#include <QByteArray>
#include <QString>
#include <vector>

struct MortgageRecord {
    int number = 0;  // the record's place in the file, from 1
    QString control; // as read, 6 characters
    QString billNo;  // padded as the keys are stored ("    1")
    Money amount;
    QString checknum;
    QString payor;
};

// A record that could not be read whole: its fields as far as they were read (the amount as
// the text found), and why it was refused.
struct MalformedMortgageRecord {
    int number = 0;
    QString control;
    QString billNo;
    QString amountText;
    QString checknum;
    QString payor;
    QString problem;
};

struct MortgageFile {
    std::vector<MortgageRecord> records;
    std::vector<MalformedMortgageRecord> malformed;
};

inline constexpr int MortgageControlLength = 6;
inline constexpr int MortgageBillNoLength = 5;
inline constexpr int MortgageAmountLength = 9;
inline constexpr int MortgageChecknumLength = 6;
inline constexpr int MortgagePayorLength = 30;

// Reads the file's bytes. The end of the file counts as the end of the last record, so a file
// saved without its last CR LF loses nothing.
MortgageFile ParseMortgageCompanyFile(const QByteArray& bytes);
