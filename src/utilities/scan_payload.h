#pragma once
// What the scanner reads off a bill or a receipt, as it delivers it without the stars:
//   20, 30 real-estate bill, 21, 31 per capita bill: kind, two-digit year, district, control
//   (12 characters; year and district are not checked)
//   40 real-estate receipt, 41 per capita receipt: kind and the receipt number (14 characters)

#include "core/tax_database.h"

#include <QString>
#include <optional>

struct ScanPayload {
    QString kind; // the two characters of the kind code
    Duplicate duplicate = Duplicate::RealEstate;
    bool receipt = false;
    QString key; // the control number of a bill, the receipt number of a receipt
};

// The text has just become a whole payload: a bill kind with 12 characters or a receipt kind
// with 14 (trimmed). The form then acts without a key pressed.
bool ScanIsComplete(const QString& text);
// The payload of a trimmed scan; nothing for a text too short, a bill or receipt kind of the
// wrong length, or a kind the office does not print.
std::optional<ScanPayload> DecodeScanPayload(const QString& text);
