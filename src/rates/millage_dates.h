#pragma once
// The date arithmetic of "Figure Dates On Mail Date": from a mail date, the first and last
// days of face, the last day of discount, the first day of penalty, the last day to pay and
// the tax claim date. Pure functions, no widgets.

#include <QDate>
#include <QString>
#include <QStringView>

// The date the given number of calendar months later, keeping the day of the month; when the
// target month is shorter, its last day.
QDate AddMonthsKeepingDay(const QDate& date, int months);

struct FiguredDates {
    QDate mail;
    QDate discountEnd; // last day of discount
    QDate faceFirst;   // first day of face
    QDate faceLast;    // last day of face
    QDate penaltyFirst;
    QDate lastDay;  // last day to pay
    QDate taxClaim; // tax claim date
};

// Every date of a billing period from its mail date. Face starts two months after mailing,
// penalty two months after face; each "day before" is taken from the computed date, so a
// day clipped at a month end carries through. An invalid mail date gives invalid dates.
FiguredDates FigureDatesOnMailDate(const QDate& mail);

// A figured date as it is shown: "m/d/yyyy", without leading zeros.
QString ShortDateText(const QDate& date);
