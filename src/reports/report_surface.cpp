#include "reports/report_surface.h"

#include <QFontMetricsF>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <algorithm>
#include <cmath>
#include <deque>

namespace {

// Texts whose baselines lie closer than this share a line when a page is read: a 10 point
// label printed beside a 12 point value at the same CurrentY sits a little higher.
constexpr double SameLineTolerance = 60;
// Printers count line widths in dots; the office's printers have 600 of them an inch.
constexpr double TwipsPerDot = 1440.0 / 600.0;

QPageSize::PageSizeId pageSizeId(PaperSize paper) {
    return paper == PaperSize::Legal ? QPageSize::Legal : QPageSize::Letter;
}

QPageLayout::Orientation qtOrientation(PageOrientation orientation) {
    return orientation == PageOrientation::Landscape ? QPageLayout::Landscape
                                                     : QPageLayout::Portrait;
}

QString quoted(const QString& text) {
    QString out = text;
    out.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    out.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return QLatin1Char('"') + out + QLatin1Char('"');
}

QString fontFlags(const PrintFont& f) {
    QString flags;
    if (f.bold)
        flags += QLatin1Char('B');
    if (f.italic)
        flags += QLatin1Char('I');
    if (f.underline)
        flags += QLatin1Char('U');
    if (f.strikethru)
        flags += QLatin1Char('S');
    return flags.isEmpty() ? QStringLiteral("-") : flags;
}

QString number(double v) {
    return QString::number(qRound64(v));
}

// Fonts are made once per look while a page is replayed.
class FontCache {
public:
    const QFont& get(const PrintFont& look) {
        for (const auto& [s, f] : m_fonts)
            if (s == look)
                return f;
        m_fonts.emplace_back(look, look.qfont());
        return m_fonts.back().second;
    }

private:
    // A deque keeps the fonts where they are, so a reference stays good as others are added.
    std::deque<std::pair<PrintFont, QFont>> m_fonts;
};

void renderPage(QPainter& painter, const RecordedPage& page, FontCache& fonts) {
    // Pen and font change only when they must: every change is a state change in the output.
    enum class Pen { Unset, Text, Line };
    Pen pen = Pen::Unset;
    double penWidth = -1;
    const QFont* font = nullptr;
    auto textPen = [&] {
        if (pen != Pen::Text) {
            painter.setPen(Qt::black);
            pen = Pen::Text;
        }
    };
    auto linePen = [&](double width) {
        if (pen != Pen::Line || penWidth != width) {
            QPen p(Qt::black);
            p.setWidthF(width);
            p.setCapStyle(Qt::FlatCap);
            p.setJoinStyle(Qt::MiterJoin);
            painter.setPen(p);
            pen = Pen::Line;
            penWidth = width;
        }
    };
    painter.setBrush(Qt::NoBrush);
    for (const PrintedItem& item : page.items) {
        if (const auto* t = std::get_if<PrintedText>(&item)) {
            textPen();
            const QFont& wanted = fonts.get(t->font);
            if (font != &wanted) {
                painter.setFont(wanted);
                font = &wanted;
            }
            if (t->angle == 0) {
                painter.drawText(QPointF(t->x, t->baseline()), t->text);
            } else {
                painter.save();
                painter.translate(t->x, t->y);
                // Angles turn counter-clockwise on paper; the painter turns the other way.
                painter.rotate(-t->angle);
                painter.drawText(QPointF(0, t->ascent), t->text);
                painter.restore();
            }
        } else if (const auto* l = std::get_if<PrintedLine>(&item)) {
            linePen(l->width);
            painter.drawLine(l->line);
        } else if (const auto* b = std::get_if<PrintedBox>(&item)) {
            if (b->filled) {
                painter.fillRect(b->rect, Qt::black);
            } else {
                linePen(b->width);
                painter.drawRect(b->rect);
            }
        } else if (const auto* c = std::get_if<PrintedBarcode>(&item)) {
            for (const QRectF& bar : c->bars)
                painter.fillRect(bar, Qt::black);
        } else if (const auto* i = std::get_if<PrintedImage>(&item)) {
            painter.drawImage(i->rect, i->image);
        }
    }
}

} // namespace

QSizeF PageFormat::sheet() const {
    // Letter 8.5 x 11 inches, legal 8.5 x 14.
    const double width = 12240;
    const double height = paper == PaperSize::Legal ? 20160 : 15840;
    return orientation == PageOrientation::Landscape ? QSizeF(height, width)
                                                     : QSizeF(width, height);
}

QFont PrintFont::qfont() const {
    QFont f(name);
    f.setPixelSize(std::max(1, int(std::lround(size * 20))));
    f.setBold(bold);
    f.setItalic(italic);
    f.setUnderline(underline);
    f.setStrikeOut(strikethru);
    // Widths measured for the recording must be the widths drawn on every device.
    f.setHintingPreference(QFont::PreferNoHinting);
    f.setStyleStrategy(QFont::PreferOutline);
    return f;
}

std::vector<const PrintedText*> RecordedPage::texts() const {
    std::vector<const PrintedText*> out;
    for (const PrintedItem& item : items)
        if (const auto* t = std::get_if<PrintedText>(&item))
            out.push_back(t);
    return out;
}

std::vector<const PrintedBarcode*> RecordedPage::barcodes() const {
    std::vector<const PrintedBarcode*> out;
    for (const PrintedItem& item : items)
        if (const auto* b = std::get_if<PrintedBarcode>(&item))
            out.push_back(b);
    return out;
}

double PrintedText::width() const {
    return QFontMetricsF(font.qfont()).horizontalAdvance(text);
}

QStringList RecordedPage::textLines() const {
    std::vector<const PrintedText*> upright;
    std::vector<const PrintedText*> turned;
    for (const PrintedText* t : texts()) {
        if (t->text.isEmpty())
            continue;
        (t->angle == 0 ? upright : turned).push_back(t);
    }
    std::stable_sort(
        upright.begin(), upright.end(),
        [](const PrintedText* a, const PrintedText* b) { return a->baseline() < b->baseline(); });

    // The texts are measured here, as the surface measures them, rather than when drawn: only
    // reading a page back needs to know where each one ends.
    std::vector<std::pair<PrintFont, std::unique_ptr<QFontMetricsF>>> metrics;
    auto width = [&metrics](const PrintedText* t) {
        auto it = std::find_if(metrics.begin(), metrics.end(),
                               [t](const auto& m) { return m.first == t->font; });
        if (it == metrics.end()) {
            metrics.emplace_back(t->font, std::make_unique<QFontMetricsF>(t->font.qfont()));
            it = metrics.end() - 1;
        }
        return it->second->horizontalAdvance(t->text);
    };

    QStringList lines;
    std::size_t i = 0;
    while (i < upright.size()) {
        const double first = upright[i]->baseline();
        std::size_t end = i;
        while (end < upright.size() && upright[end]->baseline() - first <= SameLineTolerance)
            ++end;
        std::vector<const PrintedText*> line(upright.begin() + i, upright.begin() + end);
        std::stable_sort(line.begin(), line.end(),
                         [](const PrintedText* a, const PrintedText* b) { return a->x < b->x; });
        QString text;
        double right = 0;
        for (std::size_t k = 0; k < line.size(); ++k) {
            const PrintedText* t = line[k];
            // Pieces printed one after the other touch and are one word; a real gap, or a
            // text printed over the end of the one before (a label wider than its column),
            // reads as a blank.
            if (k > 0 && std::abs(t->x - right) > 10)
                text += QLatin1Char(' ');
            text += t->text;
            right = std::max(right, t->x + width(t));
        }
        lines << text;
        i = end;
    }
    for (const PrintedText* t : turned)
        lines << t->text;
    return lines;
}

QStringList Recording::textLines() const {
    QStringList out;
    for (const RecordedPage& p : pages)
        out << p.textLines();
    return out;
}

QStringList Recording::barcodePayloads() const {
    QStringList out;
    for (const RecordedPage& p : pages)
        for (const PrintedBarcode* b : p.barcodes())
            out << b->payload;
    return out;
}

QString Recording::dump() const {
    QString out;
    out += QStringLiteral("job %1 %2 %3\n")
               .arg(quoted(jobName),
                    format.paper == PaperSize::Legal ? QStringLiteral("legal")
                                                     : QStringLiteral("letter"),
                    format.orientation == PageOrientation::Landscape ? QStringLiteral("landscape")
                                                                     : QStringLiteral("portrait"));
    for (std::size_t p = 0; p < pages.size(); ++p) {
        out += QStringLiteral("page %1\n").arg(p + 1);
        for (const PrintedItem& item : pages[p].items) {
            if (const auto* t = std::get_if<PrintedText>(&item)) {
                out +=
                    QStringLiteral("text %1 %2 %3 %4 %5%6 %7\n")
                        .arg(number(t->x), number(t->y), quoted(t->font.name))
                        .arg(t->font.size)
                        .arg(fontFlags(t->font),
                             t->angle == 0 ? QString() : QStringLiteral(" turned %1").arg(t->angle),
                             quoted(t->text));
            } else if (const auto* l = std::get_if<PrintedLine>(&item)) {
                out += QStringLiteral("line %1 %2 %3 %4\n")
                           .arg(number(l->line.x1()), number(l->line.y1()), number(l->line.x2()),
                                number(l->line.y2()));
            } else if (const auto* b = std::get_if<PrintedBox>(&item)) {
                out += QStringLiteral("%1 %2 %3 %4 %5\n")
                           .arg(b->filled ? QStringLiteral("fill") : QStringLiteral("box"),
                                number(b->rect.left()), number(b->rect.top()),
                                number(b->rect.right()), number(b->rect.bottom()));
            } else if (const auto* c = std::get_if<PrintedBarcode>(&item)) {
                out += QStringLiteral("barcode %1 %2 %3 %4 %5 %6 bars %7\n")
                           .arg(c->symbology, quoted(c->payload), number(c->bounds.left()),
                                number(c->bounds.top()), number(c->bounds.right()),
                                number(c->bounds.bottom()))
                           .arg(c->bars.size());
            } else if (const auto* i = std::get_if<PrintedImage>(&item)) {
                out += QStringLiteral("image %1 %2 %3 %4\n")
                           .arg(number(i->rect.left()), number(i->rect.top()),
                                number(i->rect.right()), number(i->rect.bottom()));
            }
        }
    }
    return out;
}

ReportSurface::ReportSurface(PageFormat format) {
    m_recording.format = format;
}

void ReportSurface::setFormat(PageFormat format) {
    m_recording.format = format;
}

PrintFont ReportSurface::font() const {
    return {FontName, FontSize, FontBold, FontItalic, FontUnderline, FontStrikethru};
}

void ReportSurface::setFont(const PrintFont& f) {
    FontName = f.name;
    FontSize = f.size;
    FontBold = f.bold;
    FontItalic = f.italic;
    FontUnderline = f.underline;
    FontStrikethru = f.strikethru;
}

ReportSurface::FontEntry& ReportSurface::currentFont() const {
    const PrintFont look = font();
    if (m_lastFont && m_lastFont->look == look)
        return *m_lastFont;
    for (const auto& entry : m_fonts) {
        if (entry->look == look) {
            m_lastFont = entry.get();
            return *entry;
        }
    }
    auto entry = std::make_unique<FontEntry>();
    entry->look = look;
    entry->font = look.qfont();
    entry->metrics = std::make_unique<QFontMetricsF>(entry->font);
    entry->ascent = entry->metrics->ascent();
    entry->lineSpacing = entry->metrics->lineSpacing();
    m_lastFont = entry.get();
    m_fonts.push_back(std::move(entry));
    return *m_lastFont;
}

double ReportSurface::FontEntry::width(const QString& text) {
    if (text.size() == lastText.size() && text == lastText)
        return lastWidth;
    double w = 0;
    if (auto it = widths.constFind(text); it != widths.constEnd()) {
        w = it.value();
    } else {
        if (widths.size() > 65536) {
            // It fills up again as far: room for all of it saves growing the table step by step.
            widths.clear();
            widths.reserve(65537);
        }
        w = metrics->horizontalAdvance(text);
        widths.insert(text, w);
    }
    lastText = text;
    lastWidth = w;
    return w;
}

double ReportSurface::TextWidth(const QString& text) const {
    if (text.isEmpty())
        return 0;
    return currentFont().width(text);
}

double ReportSurface::TextHeight() const {
    return currentFont().lineSpacing;
}

RecordedPage& ReportSurface::page() {
    if (m_pagePending) {
        m_recording.pages.emplace_back();
        m_pagePending = false;
    }
    return m_recording.pages.back();
}

double ReportSurface::penWidth() const {
    return std::max(0.0, DrawWidth) * TwipsPerDot;
}

void ReportSurface::drawText(double x, const QString& text) {
    if (text.isEmpty())
        return;
    const FontEntry& f = currentFont();
    PrintedText t;
    t.x = x;
    t.y = CurrentY;
    t.ascent = f.ascent;
    t.text = text;
    t.font = f.look;
    page().items.emplace_back(std::move(t));
}

void ReportSurface::Print(const QString& text) {
    drawText(CurrentX, text);
    CurrentY += TextHeight();
    CurrentX = 0;
}

void ReportSurface::Write(const QString& text) {
    drawText(CurrentX, text);
    CurrentX += TextWidth(text);
}

void ReportSurface::Place(double x, const QString& text) {
    CurrentX = x;
    drawText(x, text);
}

void ReportSurface::WriteRight(double edge, const QString& text) {
    CurrentX = edge - TextWidth(text);
    Write(text);
}

void ReportSurface::WriteCentred(const QString& text, double width) {
    if (width < 0)
        width = ScaleWidth();
    CurrentX = (width - TextWidth(text)) / 2;
    Write(text);
}

void ReportSurface::Line(double x1, double y1, double x2, double y2) {
    page().items.emplace_back(PrintedLine{QLineF(x1, y1, x2, y2), penWidth()});
    CurrentX = x2;
    CurrentY = y2;
}

void ReportSurface::Box(double x1, double y1, double x2, double y2) {
    page().items.emplace_back(
        PrintedBox{QRectF(QPointF(x1, y1), QPointF(x2, y2)).normalized(), penWidth(), false});
    CurrentX = x2;
    CurrentY = y2;
}

void ReportSurface::FilledBox(double x1, double y1, double x2, double y2) {
    page().items.emplace_back(
        PrintedBox{QRectF(QPointF(x1, y1), QPointF(x2, y2)).normalized(), 0, true});
    CurrentX = x2;
    CurrentY = y2;
}

void ReportSurface::DrawBarcode(PrintedBarcode barcode) {
    page().items.emplace_back(std::move(barcode));
}

void ReportSurface::DrawImage(const QRectF& rect, const QImage& image) {
    page().items.emplace_back(PrintedImage{rect, image});
}

void ReportSurface::DrawTurnedText(double x, double y, double angle, const QString& text) {
    if (text.isEmpty())
        return;
    FontEntry& f = currentFont();
    PrintedText t;
    t.x = x;
    t.y = y;
    t.ascent = f.ascent;
    t.angle = angle;
    t.text = text;
    t.font = f.look;
    page().items.emplace_back(std::move(t));
}

void ReportSurface::finishPage() {
    ++m_finished;
    if (m_sink && !m_recording.pages.empty()) {
        m_sink(std::move(m_recording.pages.back()));
        m_recording.pages.pop_back();
    }
}

void ReportSurface::NewPage() {
    // A sheet that was started with nothing on it still comes out blank.
    if (m_pagePending)
        m_recording.pages.emplace_back();
    finishPage();
    m_pagePending = true;
    ++m_pageNumber;
    CurrentX = 0;
    CurrentY = 0;
}

void ReportSurface::EndDoc() {
    // A page begun and left empty is never sent: NewPage then EndDoc adds no blank sheet.
    if (!m_pagePending && !m_ended)
        finishPage();
    m_pagePending = true;
    m_ended = true;
}

Recording ReportSurface::takeRecording() {
    Recording out = std::move(m_recording);
    m_recording = Recording();
    m_recording.format = out.format;
    m_pagePending = true;
    m_pageNumber = 1;
    m_finished = 0;
    m_ended = false;
    return out;
}

void PrintJustified(ReportSurface& surface, const QString& text, double width) {
    const double startY = surface.CurrentY;
    const double blank = surface.TextWidth(QStringLiteral(" "));
    const qsizetype blanks = text.count(QLatin1Char(' '));
    const double gap = width - surface.TextWidth(text);
    const double advance = blanks > 0 ? blank + gap / double(blanks) : blank;
    double x = surface.CurrentX;
    const QStringList words = text.split(QLatin1Char(' '));
    for (const QString& word : words) {
        surface.CurrentX = x;
        surface.CurrentY = startY;
        surface.Write(word);
        x += surface.TextWidth(word) + advance;
    }
    surface.CurrentX = x;
    surface.CurrentY = startY;
}

struct SheetRenderer::Fonts {
    FontCache cache;
};

SheetRenderer::SheetRenderer() : m_fonts(std::make_unique<Fonts>()) {}
SheetRenderer::~SheetRenderer() = default;

void SheetRenderer::render(QPainter& painter, const RecordedPage& page, double scale) {
    painter.save();
    if (scale != 1.0)
        painter.scale(scale, scale);
    painter.translate(PageFormat::HardMargin, PageFormat::HardMargin);
    renderPage(painter, page, m_fonts->cache);
    painter.restore();
}

QPageLayout SheetLayout(const PageFormat& format) {
    return QPageLayout(QPageSize(pageSizeId(format.paper)), qtOrientation(format.orientation),
                       QMarginsF(0, 0, 0, 0));
}

void RenderPage(QPainter& painter, const RecordedPage& page) {
    FontCache fonts;
    renderPage(painter, page, fonts);
}

bool WritePdf(const Recording& recording, const QString& path, QString* error) {
    if (recording.pages.empty()) {
        if (error)
            *error = QStringLiteral("The print job has no pages.");
        return false;
    }
    QPdfWriter writer(path);
    writer.setResolution(1440);
    writer.setTitle(recording.jobName);
    writer.setCreator(QStringLiteral("LevyDesk"));
    writer.setPageLayout(QPageLayout(QPageSize(pageSizeId(recording.format.paper)),
                                     qtOrientation(recording.format.orientation),
                                     QMarginsF(0, 0, 0, 0)));
    QPainter painter;
    if (!painter.begin(&writer)) {
        if (error)
            *error = QStringLiteral("The file %1 cannot be written.").arg(path);
        return false;
    }
    FontCache fonts;
    for (std::size_t i = 0; i < recording.pages.size(); ++i) {
        if (i > 0)
            writer.newPage();
        painter.save();
        painter.translate(PageFormat::HardMargin, PageFormat::HardMargin);
        renderPage(painter, recording.pages[i], fonts);
        painter.restore();
    }
    if (!painter.end()) {
        if (error)
            *error = QStringLiteral("The file %1 cannot be written.").arg(path);
        return false;
    }
    return true;
}

bool PrintRecording(const Recording& recording, QPrinter& printer, QString* error) {
    if (recording.pages.empty())
        return true;
    printer.setFullPage(true);
    printer.setDocName(recording.jobName);
    printer.setPageLayout(QPageLayout(QPageSize(pageSizeId(recording.format.paper)),
                                      qtOrientation(recording.format.orientation),
                                      QMarginsF(0, 0, 0, 0)));
    QPainter painter;
    if (!painter.begin(&printer)) {
        if (error)
            *error = QStringLiteral("The printer %1 cannot be used.").arg(printer.printerName());
        return false;
    }
    const double scale = printer.resolution() / 1440.0;
    FontCache fonts;
    for (std::size_t i = 0; i < recording.pages.size(); ++i) {
        if (i > 0 && !printer.newPage()) {
            if (error)
                *error = QStringLiteral("The printer %1 stopped.").arg(printer.printerName());
            painter.end();
            return false;
        }
        painter.save();
        painter.scale(scale, scale);
        painter.translate(PageFormat::HardMargin, PageFormat::HardMargin);
        renderPage(painter, recording.pages[i], fonts);
        painter.restore();
    }
    painter.end();
    return true;
}

QString FittedText(ReportSurface& surface, const QString& text, double width) {
    if (surface.TextWidth(text) <= width)
        return text;
    qsizetype fits = 0;
    qsizetype over = text.size();
    while (over - fits > 1) {
        const qsizetype mid = (fits + over) / 2;
        if (surface.TextWidth(text.left(mid)) <= width)
            fits = mid;
        else
            over = mid;
    }
    return text.left(fits);
}
