#include "core/csv.h"

#include <QFile>
#include <QSaveFile>

CsvReader::CsvReader(QByteArray data) : m_data(std::move(data)) {
    if (m_data.startsWith("\xEF\xBB\xBF"))
        m_pos = 3;
}

std::optional<std::vector<CsvField>> CsvReader::next() {
    const qsizetype n = m_data.size();
    if (m_pos >= n)
        return std::nullopt;
    m_recordLine = m_line;
    std::vector<CsvField> fields;
    QByteArray bytes;
    bool quoted = false;
    auto endField = [&] {
        fields.push_back({QString::fromUtf8(bytes), quoted});
        bytes.clear();
        quoted = false;
    };
    const char* d = m_data.constData();
    while (m_pos < n) {
        const char c = d[m_pos];
        if (c == '"' && bytes.isEmpty() && !quoted) {
            // A quoted field: up to the closing quote, a doubled quote standing for one.
            quoted = true;
            ++m_pos;
            bool closed = false;
            while (m_pos < n) {
                const char q = d[m_pos++];
                if (q == '"') {
                    if (m_pos < n && d[m_pos] == '"') {
                        bytes.append('"');
                        ++m_pos;
                        continue;
                    }
                    closed = true;
                    break;
                }
                if (q == '\n')
                    ++m_line;
                bytes.append(q);
            }
            if (!closed)
                m_unterminated = true;
            continue;
        }
        if (c == ',') {
            endField();
            ++m_pos;
            continue;
        }
        if (c == '\r' && m_pos + 1 < n && d[m_pos + 1] == '\n') {
            ++m_pos;
            continue;
        }
        if (c == '\n') {
            ++m_pos;
            ++m_line;
            break;
        }
        bytes.append(c);
        ++m_pos;
    }
    endField();
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
