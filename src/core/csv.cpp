#include "core/csv.h"

#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <cstring>

CsvReader::CsvReader(QByteArray data) : m_data(std::move(data)) {
    if (m_data.startsWith("\xEF\xBB\xBF"))
        m_pos = 3;
}

bool CsvReader::next(std::vector<CsvBytes>& fields) {
    const qsizetype n = m_data.size();
    if (m_pos >= n)
        return false;
    m_recordLine = m_line;
    const char* d = m_data.constData();
    std::size_t count = 0;
    for (;;) {
        if (count == fields.size())
            fields.emplace_back();
        CsvBytes& field = fields[count++];
        field.bytes.clear();
        field.quoted = false;
        if (m_pos < n && d[m_pos] == '"') {
            // A quoted field: up to the closing quote, a doubled quote standing for one.
            field.quoted = true;
            ++m_pos;
            bool closed = false;
            while (m_pos < n) {
                const char* from = d + m_pos;
                const char* quote = static_cast<const char*>(std::memchr(from, '"', n - m_pos));
                const char* stop = quote ? quote : d + n;
                m_line += int(std::count(from, stop, '\n'));
                field.bytes.append(from, std::size_t(stop - from));
                m_pos = stop - d;
                if (!quote)
                    break;
                ++m_pos;
                if (m_pos < n && d[m_pos] == '"') {
                    field.bytes.push_back('"');
                    ++m_pos;
                    continue;
                }
                closed = true;
                break;
            }
            if (!closed)
                m_unterminated = true;
        }
        // Bare bytes up to the next comma or line end (after a closing quote, what follows it).
        const qsizetype begin = m_pos;
        while (m_pos < n && d[m_pos] != ',' && d[m_pos] != '\n')
            ++m_pos;
        qsizetype last = m_pos;
        if (last > begin && d[last - 1] == '\r' && (m_pos == n || d[m_pos] == '\n'))
            --last;
        field.bytes.append(d + begin, std::size_t(last - begin));
        if (m_pos < n && d[m_pos] == ',') {
            ++m_pos;
            continue;
        }
        if (m_pos < n) { // the line end
            ++m_pos;
            ++m_line;
        }
        break;
    }
    fields.resize(count);
    return true;
}

std::optional<std::vector<CsvField>> CsvReader::next() {
    std::vector<CsvBytes> raw;
    if (!next(raw))
        return std::nullopt;
    std::vector<CsvField> fields;
    fields.reserve(raw.size());
    for (const CsvBytes& f : raw)
        fields.push_back({f.text(), f.quoted});
    return fields;
}

QString CsvQuoted(const QString& text) {
    QString out = text;
    out.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + out + QLatin1Char('"');
}

QString CsvRecord(const QStringList& fields) {
    return fields.join(QLatin1Char(',')) + QLatin1Char('\n');
}

bool WriteCsvFile(const QString& path, const QStringList& captions,
                  const std::vector<QStringList>& rows, QString* error) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    auto quotedAll = [](const QStringList& texts) {
        QStringList out;
        out.reserve(texts.size());
        for (const QString& t : texts)
            out.append(CsvQuoted(t));
        return out;
    };
    file.write(CsvRecord(quotedAll(captions)).toUtf8());
    for (const QStringList& row : rows)
        file.write(CsvRecord(quotedAll(row)).toUtf8());
    if (!file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}
