#pragma once
// Comma-separated files as spreadsheets and Debian's mdb-export write them: a header row, fields
// separated by commas, a field in double quotes when it holds a comma, a quote or a line break,
// a quote inside doubled. A quoted empty field is an empty text; an unquoted empty one is no
// value at all (a Null, as mdb-export writes it).

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct CsvField {
    QString text;
    bool quoted = false;
    // An unquoted empty field: no value.
    bool isNull() const { return !quoted && text.isEmpty(); }
};

// One field as its bytes (UTF-8), for readers that go through many rows: the reader reuses
// the storage from record to record.
struct CsvBytes {
    std::string bytes;
    bool quoted = false;
    bool isNull() const { return !quoted && bytes.empty(); }
    std::string_view view() const { return bytes; }
    QString text() const { return QString::fromUtf8(bytes.data(), qsizetype(bytes.size())); }
};

// Reads records one by one from the whole file's bytes (UTF-8; a BOM is skipped). Line breaks
// may be LF or CR LF, also inside quotes.
class CsvReader {
public:
    explicit CsvReader(QByteArray data);
    // The next record, or nothing at the end. A record's fields keep their order.
    std::optional<std::vector<CsvField>> next();
    // The same without making texts: fields is refilled with the next record's fields. False
    // at the end.
    bool next(std::vector<CsvBytes>& fields);
    // The line on which the record last read began (1 = the first line).
    int line() const { return m_recordLine; }
    // Set when a quoted field never closed; the record is the rest of the file.
    bool unterminatedQuote() const { return m_unterminated; }
    // Bytes read so far, for progress.
    qsizetype position() const { return m_pos; }
    qsizetype size() const { return m_data.size(); }

private:
    QByteArray m_data;
    qsizetype m_pos = 0;
    int m_line = 1;
    int m_recordLine = 0;
    bool m_unterminated = false;
};

// One field as written: texts quoted (a quote doubled); a number or a Null bare.
QString CsvQuoted(const QString& text);
// A record of already formatted fields, joined and ended with LF.
QString CsvRecord(const QStringList& fields);

// Writes a grid or list as shown: the captions, then each row's texts, all quoted. False with
// the reason when the file cannot be written.
bool WriteCsvFile(const QString& path, const QStringList& captions,
                  const std::vector<QStringList>& rows, QString* error = nullptr);
