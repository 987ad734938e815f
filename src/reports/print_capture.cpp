#include "reports/print_capture.h"

#include <QRegularExpression>
#include <optional>
#include <vector>

namespace PrintCapture {
namespace {

struct CaptureState {
    bool enabled = false;
    int jobs = 0;
    std::optional<Recording> last;
    QString lastPdf;
    std::optional<Recording> preview;
    std::vector<Recording> all; // every job since capture was turned on
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
    s.all.clear();
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

namespace {

bool linesHold(const QStringList& lines, const QString& text) {
    QString wanted = text;
    if (wanted.endsWith(QLatin1String("...")))
        wanted.chop(3);
    wanted = collapseBlanks(wanted);
    for (const QString& line : lines)
        if (collapseBlanks(line).contains(wanted))
            return true;
    return false;
}

} // namespace

bool lastJobPrinted(const QString& text) {
    return linesHold(lastJobLines(), text);
}

const Recording* job(int k) {
    const std::vector<Recording>& all = state().all;
    return k >= 1 && k <= int(all.size()) ? &all[std::size_t(k - 1)] : nullptr;
}

bool jobPrinted(int k, const QString& text) {
    return linesHold(linesOf(job(k)), text);
}

int lastJobPages() {
    const Recording* last = lastJob();
    return last ? int(last->pages.size()) : 0;
}

bool previewed(const QString& text) {
    return linesHold(linesOf(lastPreview()), text);
}

QStringList linesOf(const Recording* recording) {
    return recording ? recording->textLines() : QStringList();
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
    s.all.push_back(job);
}

void recordPreview(const Recording& preview) {
    state().preview = preview;
}

} // namespace PrintCapture
