#include "reports/print_screen.h"

#include "core/messages.h"
#include "core/session.h"
#include "reports/print_output.h"
#include "reports/report_frame.h"
#include "reports/report_surface.h"

#include <QImage>
#include <QWidget>
#include <algorithm>

void PrintScreenImage(QWidget* screen, const QString& printerType) {
    const std::optional<QString> device = AssignedPrinter(session().DbConnection, printerType);
    if (!device) {
        MsgBox(QString::fromLatin1(NoLetterPrinterText), QString::fromLatin1(PrinterErrorTitle),
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    const QImage image = screen->grab().toImage();
    const PageFormat format{PaperSize::Letter, PageOrientation::Landscape};
    ReportSurface surface(format);
    const double scale = std::min(format.scaleWidth() / std::max(1, image.width()),
                                  format.scaleHeight() / std::max(1, image.height()));
    surface.DrawImage(QRectF(0, 0, image.width() * scale, image.height() * scale), image);
    surface.EndDoc();
    Recording job = surface.takeRecording();
    job.jobName = screen->windowTitle();
    const PrintResult sent = SendToPrinter(job, *device);
    if (!sent.ok)
        MsgBox(sent.error, QString::fromLatin1(PrinterErrorTitle), MsgButtons::Ok,
               MsgIcon::Critical);
}
