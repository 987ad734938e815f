#include "reports/print_output.h"

#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_capture.h"

#include <QDir>
#include <QFileInfo>
#include <QPrinter>
#include <QPrinterInfo>
#include <QSqlQuery>

namespace {

QString fileNamePart(const QString& jobName) {
    QString out;
    for (QChar c : jobName.trimmed()) {
        if (c.isLetterOrNumber() && c.unicode() < 128)
            out.append(c);
        else if (c == QLatin1Char('-') || c == QLatin1Char('_'))
            out.append(c);
        else if (!out.endsWith(QLatin1Char('_')))
            out.append(QLatin1Char('_'));
    }
    while (out.endsWith(QLatin1Char('_')))
        out.chop(1);
    return out.isEmpty() ? QStringLiteral("Printout") : out.left(60);
}

PrintResult writePrintout(const Recording& job) {
    PrintResult result;
    result.printerName = QString::fromLatin1(PdfPrinterName);
    result.pdfPath = NewPrintoutPath(job.jobName);
    result.ok = WritePdf(job, result.pdfPath, &result.error);
    return result;
}

} // namespace

std::optional<QString> AssignedPrinter(QSqlDatabase db, const QString& printerType) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT DeviceName FROM tbl_Printers WHERE PrinterType = ?"));
    q.addBindValue(printerType);
    if (!q.exec() || !q.next())
        return std::nullopt;
    return TextField(q.value(0));
}

bool SavePrinterChoice(QSqlDatabase db, const QString& letterDevice, const QString& receiptDevice,
                       QString* error) {
    return InOneTransaction(db, error, [&] {
        QSqlQuery q(db);
        // Every row goes, a TVLetter row with them: only the two kinds the screen chooses remain.
        if (!q.exec(QStringLiteral("DELETE FROM tbl_Printers")))
            return QueryFailed(db, q, error);
        for (const auto& [type, device] :
             {std::pair{LetterPrinter, letterDevice}, std::pair{ReceiptPrinter, receiptDevice}}) {
            q.prepare(
                QStringLiteral("INSERT INTO tbl_Printers (PrinterType, DeviceName) VALUES (?, ?)"));
            q.addBindValue(QString::fromLatin1(type));
            q.addBindValue(device);
            if (!q.exec())
                return QueryFailed(db, q, error);
        }
        return true;
    });
}

QStringList AvailablePrinterNames() {
    QStringList names = QPrinterInfo::availablePrinterNames();
    names.removeAll(QString::fromLatin1(PdfPrinterName));
    names << QString::fromLatin1(PdfPrinterName);
    return names;
}

QString PrintoutsFolder() {
    const QString folder = QDir(session().programFolder()).filePath(QStringLiteral("Printouts"));
    QDir().mkpath(folder);
    return folder;
}

QString NewPrintoutPath(const QString& jobName) {
    const QDir folder(PrintoutsFolder());
    const QString stem = fileNamePart(jobName) + QLatin1Char('-') +
                         Clock::now().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString path = folder.filePath(stem + QStringLiteral(".pdf"));
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = folder.filePath(stem + QStringLiteral("-%1.pdf").arg(n));
    return path;
}

PrintResult SendToPrinter(const Recording& job, const QString& deviceName) {
    if (job.pages.empty()) {
        PrintResult nothing;
        nothing.ok = true;
        nothing.printerName = deviceName;
        return nothing;
    }
    if (PrintCapture::isEnabled()) {
        PrintResult result = writePrintout(job);
        PrintCapture::recordJob(job, result.ok ? result.pdfPath : QString());
        result.ok = true; // the job itself is kept, even where its file could not be written
        return result;
    }
    if (deviceName == QLatin1String(PdfPrinterName))
        return writePrintout(job);

    QPrinterInfo info = QPrinterInfo::printerInfo(deviceName);
    if (info.isNull())
        info = QPrinterInfo::defaultPrinter();
    if (info.isNull())
        return writePrintout(job);
    QPrinter printer(info, QPrinter::HighResolution);
    PrintResult result;
    result.printerName = info.printerName();
    result.ok = PrintRecording(job, printer, &result.error);
    return result;
}
