#include "reports/print_capture.h"

#include <QRegularExpression>
#include <optional>

namespace PrintCapture {
namespace {

struct CaptureState {
    bool enabled = false;
    int jobs = 0;
    std::optional<Recording> last;
    QString lastPdf;
    std::optional<Recording> preview;
};

CaptureState& state() {
    static CaptureState s;
    return s;
}

// Runs of blanks count as one blank, and blanks at the ends not at all.
QString collapseBlanks(const QString& text) {
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    QString out = text;
    out.replace(blanks, QStringLiteral(" "));
    return out.trimmed();
}

} // namespace

void setEnabled(bool on) {
    if (on && !state().enabled)
        clear();
    state().enabled = on;
}

bool isEnabled() {
    return state().enabled;
}

void clear() {
    CaptureState& s = state();
    s.jobs = 0;
    s.last.reset();
    s.lastPdf.clear();
    s.preview.reset();
}

int jobCount() {
    return state().jobs;
}

const Recording* lastJob() {
    return state().last ? &*state().last : nullptr;
}

QString lastJobPdf() {
    return state().lastPdf;
}

QStringList lastJobLines() {
    const Recording* job = lastJob();
    return job ? job->textLines() : QStringList();
}

QStringList lastJobBarcodes() {
    const Recording* job = lastJob();
    return job ? job->barcodePayloads() : QStringList();
}

bool lastJobPrinted(const QString& text) {
    QString wanted = text;
    if (wanted.endsWith(QLatin1String("...")))
        wanted.chop(3);
    wanted = collapseBlanks(wanted);
    const QStringList lines = lastJobLines();
    for (const QString& line : lines)
        if (collapseBlanks(line).contains(wanted))
            return true;
    return false;
}

bool lastJobHasBarcode(const QString& payload) {
    return lastJobBarcodes().contains(payload);
}

const Recording* lastPreview() {
    return state().preview ? &*state().preview : nullptr;
}

void recordJob(const Recording& job, const QString& pdfPath) {
    CaptureState& s = state();
    ++s.jobs;
    s.last = job;
    s.lastPdf = pdfPath;
}

void recordPreview(const Recording& preview) {
    state().preview = preview;
}

} // namespace PrintCapture
