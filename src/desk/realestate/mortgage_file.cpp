#include "desk/realestate/mortgage_file.h"

#include "core/common_values.h"

namespace {

constexpr int FixedLength =
    MortgageControlLength + MortgageBillNoLength + MortgageAmountLength + MortgageChecknumLength;
// The old end-of-file mark some programs still write after the last record.
constexpr char EndOfFileMark = 0x1a;

// The bill number as the keys are stored: digits right-aligned in five through "####0", an
// added bill ("A0001") right-aligned as it stands.
QString padBillNo(const QByteArray& field) {
    const QString text = QString::fromLatin1(field).trimmed();
    bool digits = true;
    for (QChar c : text)
        digits = digits && c >= u'0' && c <= u'9';
    if (digits)
        return PadFormat(text.toDouble(), "####0");
    return text.rightJustified(MortgageBillNoLength, u' ');
}

bool isLineEnd(char c) {
    return c == '\r' || c == '\n';
}

bool unreadable(const QByteArray& bytes) {
    for (char c : bytes) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u == 0x7f)
            return true;
    }
    return false;
}

// Where the next line starts: past the next CR LF, lone CR or lone LF.
qsizetype afterLineEnd(const QByteArray& bytes, qsizetype pos) {
    while (pos < bytes.size() && !isLineEnd(bytes[pos]))
        ++pos;
    if (pos < bytes.size() && bytes[pos] == '\r')
        ++pos;
    if (pos < bytes.size() && bytes[pos] == '\n')
        ++pos;
    return pos;
}

// The amount in whole cents: digits only, blanks around them allowed.
std::optional<Money> wholeCents(const QByteArray& field) {
    const QByteArray digits = field.trimmed();
    if (digits.isEmpty())
        return std::nullopt;
    std::int64_t cents = 0;
    for (char c : digits) {
        if (c < '0' || c > '9')
            return std::nullopt;
        cents = cents * 10 + (c - '0');
    }
    return Money::fromCents(cents);
}

// One record from pos; pos moves past it.
struct RawRecord {
    QByteArray fixed; // what was read of the fixed fields
    QByteArray payor;
    QString problem;
};

RawRecord readRecord(const QByteArray& bytes, qsizetype& pos) {
    RawRecord raw;
    const qsizetype size = bytes.size();
    while (raw.fixed.size() < FixedLength) {
        if (pos >= size) {
            raw.problem = QStringLiteral("short record: the file ends inside it");
            return raw;
        }
        if (isLineEnd(bytes[pos])) {
            raw.problem = QStringLiteral("short record");
            pos = afterLineEnd(bytes, pos);
            return raw;
        }
        raw.fixed += bytes[pos++];
    }

    // The payor: up to 30 characters, ended by CR (with its LF) or after the thirtieth by the
    // two characters of the record end. A lone LF or the end of the file ends it as well.
    while (raw.payor.size() < MortgagePayorLength) {
        if (pos >= size)
            return raw;
        const char c = bytes[pos];
        if (c == '\r') {
            ++pos;
            if (pos < size && bytes[pos] == '\n')
                ++pos;
            return raw;
        }
        if (c == '\n') {
            ++pos;
            return raw;
        }
        raw.payor += c;
        ++pos;
    }
    if (pos >= size)
        return raw;
    if (bytes[pos] == '\r') {
        ++pos;
        if (pos < size && bytes[pos] == '\n')
            ++pos;
        return raw;
    }
    if (bytes[pos] == '\n') {
        ++pos;
        return raw;
    }
    raw.problem = QStringLiteral("the payor is longer than 30 characters");
    pos = afterLineEnd(bytes, pos);
    return raw;
}

} // namespace

MortgageFile ParseMortgageCompanyFile(const QByteArray& bytes) {
    MortgageFile file;
    qsizetype pos = 0;
    int number = 0;
    while (pos < bytes.size()) {
        // Blank lines between or after the records, and an end-of-file mark, are no records.
        if (isLineEnd(bytes[pos])) {
            pos = afterLineEnd(bytes, pos);
            continue;
        }
        if (bytes[pos] == EndOfFileMark && pos == bytes.size() - 1)
            break;

        ++number;
        RawRecord raw = readRecord(bytes, pos);
        auto field = [&raw](int from, int length) { return raw.fixed.mid(from, length); };
        const QByteArray control = field(0, MortgageControlLength);
        const QByteArray billNo = field(MortgageControlLength, MortgageBillNoLength);
        const QByteArray amount =
            field(MortgageControlLength + MortgageBillNoLength, MortgageAmountLength);
        const QByteArray checknum =
            field(MortgageControlLength + MortgageBillNoLength + MortgageAmountLength,
                  MortgageChecknumLength);

        std::optional<Money> cents;
        if (raw.problem.isEmpty() && (unreadable(raw.fixed) || unreadable(raw.payor)))
            raw.problem = QStringLiteral("unreadable characters");
        if (raw.problem.isEmpty() && billNo.trimmed().isEmpty())
            raw.problem = QStringLiteral("no bill number");
        if (raw.problem.isEmpty()) {
            cents = wholeCents(amount);
            if (!cents)
                raw.problem = QStringLiteral("the amount is not a whole number of cents");
        }

        if (raw.problem.isEmpty()) {
            MortgageRecord r;
            r.number = number;
            r.control = QString::fromLatin1(control);
            r.billNo = padBillNo(billNo);
            r.amount = *cents;
            r.checknum = QString::fromLatin1(checknum);
            r.payor = QString::fromLatin1(raw.payor);
            file.records.push_back(r);
        } else {
            // What was read, made printable.
            auto shown = [](const QByteArray& text) {
                QString s = QString::fromLatin1(text);
                for (QChar& c : s)
                    if (c.unicode() < 0x20 || c.unicode() == 0x7f)
                        c = u'?';
                return s;
            };
            MalformedMortgageRecord m;
            m.number = number;
            m.control = shown(control);
            m.billNo = shown(billNo);
            m.amountText = shown(amount);
            m.checknum = shown(checknum);
            m.payor = shown(raw.payor);
            m.problem = raw.problem;
            file.malformed.push_back(m);
        }
    }
    return file;
}
