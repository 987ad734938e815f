#include "core/clock.h"

namespace {
std::optional<QDate> fixedDate;
}

namespace Clock {

QDate today() {
    return fixedDate ? *fixedDate : QDate::currentDate();
}

QDateTime now() {
    QDateTime real = QDateTime::currentDateTime();
    if (fixedDate)
        return QDateTime(*fixedDate, real.time());
    return real;
}

void setToday(std::optional<QDate> date) {
    fixedDate = date;
}

} // namespace Clock
