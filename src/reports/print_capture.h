#pragma once
// Print capture for the scenario driver and tests: while it is on, every print job is kept
// (its recording, and a PDF written under Printouts/) instead of going to a printer. The last
// job can then be read as a person reads paper, line by line, and its bar codes as a scanner
// reads them.

#include "reports/report_surface.h"

#include <QString>
#include <QStringList>

namespace PrintCapture {

// Every job from now on is captured (true) or printed (false). Turning it on forgets the jobs
// captured before.
void setEnabled(bool on);
bool isEnabled();
// Forgets every captured job and preview.
void clear();

// How many jobs were captured since capture was turned on (or cleared).
int jobCount();
// The last captured job, or nullptr.
const Recording* lastJob();
// The PDF written for it.
QString lastJobPdf();
// Its pages read line by line: on each page the texts on one baseline joined left to right,
// with a blank where there is space between them; the pages one after the other.
QStringList lastJobLines();
// The payloads of its bar codes, as a scanner delivers them, in drawing order.
QStringList lastJobBarcodes();

// "expect printed": some line of the last job holds `text`, a run of blanks matching any run of
// blanks (and a text ending in "..." matching a line that holds what stands before it).
bool lastJobPrinted(const QString& text);
// "expect barcode": the last job carries a bar code with exactly this payload.
bool lastJobHasBarcode(const QString& payload);

// The last report drawn for the preview window (kept whether capture is on or not).
const Recording* lastPreview();

// Every captured job is kept: the K-th since capture was turned on (1 = the first), or nullptr.
const Recording* job(int k);
// "expect printed job K": as lastJobPrinted, on the K-th job.
bool jobPrinted(int k, const QString& text);
// "expect pages": the pages of the last job (0 when there is none).
int lastJobPages();
// "expect previewed": as lastJobPrinted, on the last report shown in the preview window.
bool previewed(const QString& text);
// Lines of any recording read as lastJobLines reads the last job.
QStringList linesOf(const Recording* recording);

// Called by the print output for each job while capture is on, and by the preview.
void recordJob(const Recording& job, const QString& pdfPath);
void recordPreview(const Recording& preview);

} // namespace PrintCapture
