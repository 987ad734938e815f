#pragma once
// Reading printed output back as a person or a scanner would: the text of a PDF through
// pdftotext, and bar codes through pdftoppm and zbarimg.

#include "reports/report_surface.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRectF>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace PrintReadback {

inline bool haveTool(const char* name) {
    return !QStandardPaths::findExecutable(QString::fromLatin1(name)).isEmpty();
}

inline QString run(const QString& program, const QStringList& arguments, int* exitCode = nullptr) {
    QProcess p;
    p.start(program, arguments);
    p.waitForFinished(60000);
    if (exitCode)
        *exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The text of one page (or all with page 0), laid out as on paper.
inline QString pdfText(const QString& pdf, int page = 0) {
    QStringList args{QStringLiteral("-layout")};
    if (page > 0)
        args << QStringLiteral("-f") << QString::number(page) << QStringLiteral("-l")
             << QString::number(page);
    args << pdf << QStringLiteral("-");
    return run(QStringLiteral("pdftotext"), args);
}

// Words of one page with their boxes in points: "xMin yMin xMax yMax word" per line.
inline QStringList pdfWordBoxes(const QString& pdf, int page) {
    const QString html =
        run(QStringLiteral("pdftotext"),
            {QStringLiteral("-bbox"), QStringLiteral("-f"), QString::number(page),
             QStringLiteral("-l"), QString::number(page), pdf, QStringLiteral("-")});
    QStringList out;
    for (const QString& line : html.split(QLatin1Char('\n'))) {
        if (!line.contains(QLatin1String("<word")))
            continue;
        auto attr = [&](const char* name) {
            const QString key = QString::fromLatin1(name) + QStringLiteral("=\"");
            const qsizetype at = line.indexOf(key) + key.size();
            return line.mid(at, line.indexOf(QLatin1Char('"'), at) - at);
        };
        const qsizetype open = line.indexOf(QLatin1Char('>')) + 1;
        const QString word = line.mid(open, line.lastIndexOf(QLatin1Char('<')) - open);
        out << QStringLiteral("%1 %2 %3 %4 %5")
                   .arg(attr("xMin"), attr("yMin"), attr("xMax"), attr("yMax"), word);
    }
    return out;
}

// The bar codes a scanner finds in a part of one page: `area` in twips of the printable area
// (as the recording has them), widened by a quiet margin. Each as "SYMBOLOGY:payload".
inline QStringList scanArea(const QString& pdf, int page, const QRectF& area, int dpi = 300) {
    QTemporaryDir dir;
    const double scale = dpi / 1440.0;
    const QRectF sheet = area.adjusted(-300, -300, 300, 300)
                             .translated(PageFormat::HardMargin, PageFormat::HardMargin);
    const QString prefix = dir.filePath(QStringLiteral("scan"));
    run(QStringLiteral("pdftoppm"),
        {QStringLiteral("-r"), QString::number(dpi), QStringLiteral("-f"), QString::number(page),
         QStringLiteral("-l"), QString::number(page), QStringLiteral("-x"),
         QString::number(qRound(std::max(0.0, sheet.left()) * scale)), QStringLiteral("-y"),
         QString::number(qRound(std::max(0.0, sheet.top()) * scale)), QStringLiteral("-W"),
         QString::number(qRound(sheet.width() * scale)), QStringLiteral("-H"),
         QString::number(qRound(sheet.height() * scale)), QStringLiteral("-gray"),
         QStringLiteral("-png"), QStringLiteral("-singlefile"), pdf, prefix});
    const QString output =
        run(QStringLiteral("zbarimg"), {QStringLiteral("-q"), prefix + QStringLiteral(".png")});
    return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// Every bar code of a whole page, the scanner seeing each payload once.
inline QStringList scanPage(const QString& pdf, int page, int dpi = 300) {
    QTemporaryDir dir;
    const QString prefix = dir.filePath(QStringLiteral("page"));
    run(QStringLiteral("pdftoppm"),
        {QStringLiteral("-r"), QString::number(dpi), QStringLiteral("-f"), QString::number(page),
         QStringLiteral("-l"), QString::number(page), QStringLiteral("-gray"),
         QStringLiteral("-png"), QStringLiteral("-singlefile"), pdf, prefix});
    return run(QStringLiteral("zbarimg"), {QStringLiteral("-q"), prefix + QStringLiteral(".png")})
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// The expected dumps are checked in beside the tests; LEVYDESK_UPDATE_EXPECTED=1 rewrites them.
inline bool matchesExpected(const QString& expectedPath, const QString& dump, QString* diff) {
    if (qEnvironmentVariableIntValue("LEVYDESK_UPDATE_EXPECTED") == 1) {
        QFile out(expectedPath);
        if (out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            out.write(dump.toUtf8());
    }
    QFile in(expectedPath);
    if (!in.open(QIODevice::ReadOnly)) {
        *diff = QStringLiteral("no expected file ") + expectedPath;
        return false;
    }
    const QStringList want = QString::fromUtf8(in.readAll()).split(QLatin1Char('\n'));
    const QStringList seen = dump.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < std::max(want.size(), seen.size()); ++i) {
        const QString w = want.value(i);
        const QString s = seen.value(i);
        if (w != s) {
            *diff = QStringLiteral("line %1: expected %2\n  but saw %3").arg(i + 1).arg(w, s);
            return false;
        }
    }
    return true;
}

} // namespace PrintReadback
