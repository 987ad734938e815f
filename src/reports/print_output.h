#pragma once
// Where print jobs go: the printers chosen in tbl_Printers, the machine's printers, and "PDF",
// which writes each job as a PDF file under Printouts/ beside the database.

#include "reports/report_surface.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <memory>
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

// One print job drawn page by page: each page the surface finishes goes straight to the PDF
// file or the printer, so memory stays flat however many pages the job has. The device is
// opened at the first page: a run that draws no page makes no job. While print capture is on
// the pages are kept and the job is captured whole at the end, as SendToPrinter does.
//
//     ReportSurface surface(format);
//     PrintJobStream job(QStringLiteral("Tax Bills"), format, device);
//     job.attach(surface);
//     ... draw, NewPage ...
//     surface.EndDoc();
//     const PrintResult result = job.finish();
class PrintJobStream {
public:
    PrintJobStream(const QString& jobName, const PageFormat& format, const QString& deviceName);
    // Writes to this PDF file, whatever the device (benchmarks, archives).
    static PrintJobStream toPdfFile(const QString& jobName, const PageFormat& format,
                                    const QString& path);
    PrintJobStream(PrintJobStream&&) noexcept;
    ~PrintJobStream();

    // Both sides of the sheet on a machine printer (a mailer with its back panel).
    void setDuplex(bool on) { m_duplex = on; }
    // Makes the surface hand its finished pages to this job.
    void attach(ReportSurface& surface);
    // Takes one finished page.
    void addPage(RecordedPage&& page);
    int pages() const { return m_pages; }
    // Ends the job (after the surface's EndDoc). ok with no pdfPath when nothing was drawn.
    PrintResult finish();

private:
    struct Device;
    struct PdfThread;
    bool open();

    QString m_jobName;
    PageFormat m_format;
    QString m_deviceName;
    QString m_pdfPath; // a fixed file, or empty for the device's rule
    int m_pages = 0;
    bool m_duplex = false;
    bool m_failed = false;
    QString m_error;
    std::unique_ptr<Device> m_device;
    // A PDF is written by a thread of its own while the run draws the next pages.
    std::unique_ptr<PdfThread> m_pdfThread;
    std::optional<Recording> m_captured;
};
