#pragma once
// The one source of "today" and "now". Nothing else asks the system clock, so tests can
// fix the date.

#include <QDate>
#include <QDateTime>
#include <optional>

namespace Clock {
QDate today();
QDateTime now();
// Fix the date (the time of day keeps running); an empty value returns to the real clock.
void setToday(std::optional<QDate> date);
} // namespace Clock
