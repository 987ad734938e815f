// What the scanner types: a payload is decoded with a key of its kind's length, and a text the
// form calls complete is one it can decode.
#include "utilities/scan_payload.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const std::optional<ScanPayload> payload = DecodeScanPayload(text);
    if (payload && payload->key.size() != (payload->receipt ? 12 : 6))
        std::abort();
    if (ScanIsComplete(text.trimmed()) && !DecodeScanPayload(text.trimmed()))
        std::abort();
    return 0;
}
