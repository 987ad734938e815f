#include "rates/millage_dates.h"

QDate AddMonthsKeepingDay(const QDate& date, int months) {
    if (!date.isValid())
        return {};
    // QDate::addMonths keeps the day and clips it to the end of a shorter month.
    return date.addMonths(months);
}

FiguredDates FigureDatesOnMailDate(const QDate& mail) {
    FiguredDates d;
    if (!mail.isValid())
        return d;
    d.mail = mail;
    d.faceFirst = AddMonthsKeepingDay(mail, 2);
    d.discountEnd = d.faceFirst.addDays(-1);
    d.penaltyFirst = AddMonthsKeepingDay(d.faceFirst, 2);
    d.faceLast = d.penaltyFirst.addDays(-1);
    d.lastDay = QDate(mail.year(), 12, 31);
    d.taxClaim = QDate(mail.addYears(1).year(), 1, 1);
    return d;
}

QString ShortDateText(const QDate& date) {
    if (!date.isValid())
        return {};
    return QStringLiteral("%1/%2/%3")
        .arg(date.month())
        .arg(date.day())
        .arg(date.year(), 4, 10, QLatin1Char('0'));
}
