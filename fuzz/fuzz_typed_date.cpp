// Dates as typed: a date that parses is valid and reads back the same from its shown form.
#include "core/common_values.h"

#include <QDate>
#include <QString>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString typed = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const std::optional<QDate> date = ParseTypedDate(typed);
    if (!date)
        return 0;
    if (!date->isValid())
        std::abort();
    const std::optional<QDate> again = ParseTypedDate(FormatDate(*date));
    if (!again || *again != *date)
        std::abort();
    return 0;
}
