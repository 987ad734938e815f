// Amounts as typed into a money field: parsed, or refused, never anything else. An amount that
// parses formats and parses back to itself.
#include "core/money.h"

#include <QString>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString typed = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const std::optional<Money> amount = Money::parse(typed);
    if (!amount)
        return 0;
    const QString shown = amount->format(u"###0.0000");
    const std::optional<Money> again = Money::parse(shown);
    if (!again || *again != *amount)
        std::abort();
    return 0;
}
