#include "utilities/scan_payload.h"

namespace {

constexpr int BillPayloadLength = 12;
constexpr int ReceiptPayloadLength = 14;

bool isBillKind(QStringView kind) {
    return kind == u"20" || kind == u"21" || kind == u"30" || kind == u"31";
}

bool isReceiptKind(QStringView kind) {
    return kind == u"40" || kind == u"41";
}

} // namespace

bool ScanIsComplete(const QString& text) {
    const QStringView kind = QStringView(text).left(2);
    const qsizetype length = text.trimmed().size();
    return (isBillKind(kind) && length == BillPayloadLength) ||
           (isReceiptKind(kind) && length == ReceiptPayloadLength);
}

std::optional<ScanPayload> DecodeScanPayload(const QString& text) {
    if (text.size() < 2)
        return std::nullopt;
    ScanPayload p;
    p.kind = text.left(2);
    if (isBillKind(p.kind)) {
        if (text.size() != BillPayloadLength)
            return std::nullopt;
        p.duplicate =
            p.kind == u"20" || p.kind == u"30" ? Duplicate::RealEstate : Duplicate::PerCapita;
        p.key = text.mid(6, 6);
        return p;
    }
    if (isReceiptKind(p.kind)) {
        if (text.size() != ReceiptPayloadLength)
            return std::nullopt;
        p.duplicate = p.kind == u"40" ? Duplicate::RealEstate : Duplicate::PerCapita;
        p.receipt = true;
        p.key = text.mid(2, 12);
        return p;
    }
    return std::nullopt;
}
