#pragma once
// Where print jobs go: the printers chosen in tbl_Printers, the machine's printers, and "PDF",
// which writes each job as a PDF file under Printouts/ beside the database.

#include "reports/report_surface.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>

// The device name that stands for the PDF files of Printouts/.
inline constexpr const char* PdfPrinterName = "PDF";

// The kinds of printer tbl_Printers knows.
inline constexpr const char* LetterPrinter = "Letter";
inline constexpr const char* ReceiptPrinter = "Receipt";
inline constexpr const char* ScreenPrintPrinter = "TVLetter";

// The device saved for a kind of printer; nothing when there is no row (or its device is Null).
std::optional<QString> AssignedPrinter(QSqlDatabase db, const QString& printerType);
// The Letter and Receipt choice of the printer screen: every row goes, the two are written.
bool SavePrinterChoice(QSqlDatabase db, const QString& letterDevice, const QString& receiptDevice,
                       QString* error = nullptr);

// The machine's printers by device name, followed by "PDF".
QStringList AvailablePrinterNames();

// The folder the PDF printer writes to (created when missing).
QString PrintoutsFolder();
// A new file name there for a job: the job's name and the time, never one that exists.
QString NewPrintoutPath(const QString& jobName);

struct PrintResult {
    bool ok = false;
    QString error;
    QString pdfPath;     // the file written, when the job went to a PDF
    QString printerName; // the device the job went to
};

// Sends one job to the device of that name. "PDF" writes a file under Printouts/; another
// name prints on the machine's printer of that name, or on its default printer when there is
// none such (without a word, as the office expects). A machine without any printer writes
// the PDF instead. While print capture is on, every job is captured and written as a PDF.
PrintResult SendToPrinter(const Recording& job, const QString& deviceName);
