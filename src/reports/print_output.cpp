#include "reports/print_output.h"

#include "core/clock.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_capture.h"

#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QSqlQuery>
#include <condition_variable>
#include <deque>
#include <dlfcn.h>
#include <mutex>
#include <thread>
#include <zlib.h>

namespace {

// Set on a thread while it writes a PDF. Qt's PDF writer packs every page stream at zlib's
// default level and offers no way to choose another; on a report of a thousand pages that
// packing is a third of the writer's time. At a fast level the files grow by about a quarter.
thread_local bool tFastDeflate = false;
// The last of zlib's fast levels: as quick as the first, with a quarter smaller files.
constexpr int FastDeflateLevel = 3;

} // namespace

// Every deflate stream zlib starts in this process passes here, so that the thread that writes
// a PDF gets a fast level; every other caller gets exactly what it asked for.
extern "C" int deflateInit_(z_streamp stream, int level, const char* version, int streamSize) {
    using Init = int (*)(z_streamp, int, const char*, int);
    static const Init zlibInit = reinterpret_cast<Init>(dlsym(RTLD_NEXT, "deflateInit_"));
    if (!zlibInit)
        return Z_VERSION_ERROR;
    if (tFastDeflate && level == Z_DEFAULT_COMPRESSION)
        level = FastDeflateLevel;
    return zlibInit(stream, level, version, streamSize);
}

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

// Writes the pages of one PDF on its own thread, which owns the writer and its painter from
// beginning to end. The run hands pages over through a short queue and waits only when the
// writer is that far behind.
struct PrintJobStream::PdfThread {
    static constexpr std::size_t MostWaiting = 8;

    QString path;
    QString title;
    PageFormat format;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<RecordedPage> waiting;
    bool closing = false;
    bool failed = false;
    QString error;
    std::thread thread;

    void start() {
        thread = std::thread([this] { run(); });
    }

    void add(RecordedPage&& page) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return waiting.size() < MostWaiting || failed; });
        if (failed)
            return;
        waiting.push_back(std::move(page));
        changed.notify_all();
    }

    // Waits for the last page to be written and the file to be closed.
    bool finish(QString* why) {
        {
            std::lock_guard lock(mutex);
            closing = true;
        }
        changed.notify_all();
        if (thread.joinable())
            thread.join();
        if (failed && why)
            *why = error;
        return !failed;
    }

    void run() {
        tFastDeflate = true;
        QPdfWriter writer(path);
        writer.setResolution(1440);
        writer.setTitle(title);
        writer.setCreator(QStringLiteral("LevyDesk"));
        writer.setPageLayout(SheetLayout(format));
        QPainter painter;
        SheetRenderer renderer;
        bool begun = false;
        int written = 0;
        for (;;) {
            RecordedPage page;
            {
                std::unique_lock lock(mutex);
                changed.wait(lock, [&] { return !waiting.empty() || closing; });
                if (waiting.empty())
                    break;
                page = std::move(waiting.front());
                waiting.pop_front();
                changed.notify_all();
            }
            if (!begun) {
                begun = painter.begin(&writer);
                if (!begun) {
                    fail(QStringLiteral("The file %1 cannot be written.").arg(path));
                    return;
                }
            } else if (!writer.newPage()) {
                fail(QStringLiteral("The file %1 cannot be written.").arg(path));
                painter.end();
                return;
            }
            renderer.render(painter, page);
            ++written;
        }
        if (begun && !painter.end())
            fail(QStringLiteral("The file %1 cannot be written.").arg(path));
    }

    void fail(const QString& why) {
        std::lock_guard lock(mutex);
        failed = true;
        error = why;
        waiting.clear();
        changed.notify_all();
    }
};

struct PrintJobStream::Device {
    std::unique_ptr<QPdfWriter> pdf;
    std::unique_ptr<QPrinter> printer;
    QPainter painter;
    SheetRenderer renderer;
    double scale = 1.0;
    QString printerName;
    QString pdfPath;

    QPagedPaintDevice* device() const {
        return pdf ? static_cast<QPagedPaintDevice*>(pdf.get()) : printer.get();
    }
};

PrintJobStream::PrintJobStream(const QString& jobName, const PageFormat& format,
                               const QString& deviceName)
    : m_jobName(jobName), m_format(format), m_deviceName(deviceName) {}

PrintJobStream PrintJobStream::toPdfFile(const QString& jobName, const PageFormat& format,
                                         const QString& path) {
    PrintJobStream job(jobName, format, QString::fromLatin1(PdfPrinterName));
    job.m_pdfPath = path;
    return job;
}

PrintJobStream::PrintJobStream(PrintJobStream&&) noexcept = default;

PrintJobStream::~PrintJobStream() {
    if (m_pdfThread)
        m_pdfThread->finish(nullptr);
    if (m_device && m_device->painter.isActive())
        m_device->painter.end();
}

void PrintJobStream::attach(ReportSurface& surface) {
    surface.setFormat(m_format);
    surface.setPageSink([this](RecordedPage&& page) { addPage(std::move(page)); });
}

bool PrintJobStream::open() {
    m_device = std::make_unique<Device>();
    Device& d = *m_device;
    const bool toFile = !m_pdfPath.isEmpty();
    QPrinterInfo info;
    if (!toFile && m_deviceName != QLatin1String(PdfPrinterName)) {
        info = QPrinterInfo::printerInfo(m_deviceName);
        if (info.isNull())
            info = QPrinterInfo::defaultPrinter();
    }
    if (toFile || info.isNull()) {
        d.pdfPath = toFile ? m_pdfPath : NewPrintoutPath(m_jobName);
        d.printerName = QString::fromLatin1(PdfPrinterName);
        m_pdfThread = std::make_unique<PdfThread>();
        m_pdfThread->path = d.pdfPath;
        m_pdfThread->title = m_jobName;
        m_pdfThread->format = m_format;
        m_pdfThread->start();
        return true;
    } else {
        d.printer = std::make_unique<QPrinter>(info, QPrinter::HighResolution);
        d.printer->setFullPage(true);
        d.printer->setDocName(m_jobName);
        d.printer->setDuplex(m_duplex ? QPrinter::DuplexLongSide : QPrinter::DuplexNone);
        d.printer->setPageLayout(SheetLayout(m_format));
        d.printerName = info.printerName();
        d.scale = d.printer->resolution() / 1440.0;
    }
    if (!d.painter.begin(d.device())) {
        m_error = d.pdf ? QStringLiteral("The file %1 cannot be written.").arg(d.pdfPath)
                        : QStringLiteral("The printer %1 cannot be used.").arg(d.printerName);
        return false;
    }
    return true;
}

void PrintJobStream::addPage(RecordedPage&& page) {
    if (m_failed)
        return;
    if (PrintCapture::isEnabled() && m_pdfPath.isEmpty()) {
        if (!m_captured) {
            m_captured.emplace();
            m_captured->jobName = m_jobName;
            m_captured->format = m_format;
        }
        m_captured->pages.push_back(std::move(page));
        ++m_pages;
        return;
    }
    if (!m_device && !open()) {
        m_failed = true;
        return;
    }
    if (m_pdfThread) {
        m_pdfThread->add(std::move(page));
        ++m_pages;
        return;
    }
    Device& d = *m_device;
    if (m_pages > 0 && !d.device()->newPage()) {
        m_error = QStringLiteral("The printer %1 stopped.").arg(d.printerName);
        m_failed = true;
        return;
    }
    d.renderer.render(d.painter, page, d.scale);
    ++m_pages;
}

PrintResult PrintJobStream::finish() {
    PrintResult result;
    result.printerName = m_deviceName;
    if (m_captured) {
        Recording job = std::move(*m_captured);
        m_captured.reset();
        return SendToPrinter(job, m_deviceName);
    }
    if (m_pdfThread) {
        QString why;
        if (!m_pdfThread->finish(&why) && !m_failed) {
            m_failed = true;
            m_error = why;
        }
        m_pdfThread.reset();
    }
    if (m_device) {
        result.printerName = m_device->printerName;
        result.pdfPath = m_device->pdfPath;
        if (m_device->painter.isActive() && !m_device->painter.end() && !m_failed) {
            m_failed = true;
            m_error = QStringLiteral("The file %1 cannot be written.").arg(m_device->pdfPath);
        }
        m_device.reset();
    }
    result.ok = !m_failed;
    result.error = m_error;
    return result;
}
