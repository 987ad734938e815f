#pragma once
// The drawing surface every report, bill and receipt prints on. Positions and sizes are twips
// (1440 an inch), measured from the top left corner of the printable area, as on the office's
// page printers. A report draws once, onto recorded pages; the recording is then replayed to a
// printer, into a PDF file or into the preview window, so all three show the same thing, and
// tests read the recording itself: every text with its position and font.

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QImage>
#include <QLineF>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <memory>
#include <variant>
#include <vector>

class QPainter;
class QPageLayout;
class QPrinter;

enum class PageOrientation { Portrait = 1, Landscape = 2 };
enum class PaperSize { Letter = 1, Legal = 5 };

// The sheet a job prints on. The printable area starts a quarter inch in from every edge.
struct PageFormat {
    PaperSize paper = PaperSize::Letter;
    PageOrientation orientation = PageOrientation::Portrait;

    static constexpr double HardMargin = 360;
    // The whole sheet, in twips.
    QSizeF sheet() const;
    // The printable area's width and height.
    double scaleWidth() const { return sheet().width() - 2 * HardMargin; }
    double scaleHeight() const { return sheet().height() - 2 * HardMargin; }
    bool operator==(const PageFormat&) const = default;
};

// A font as the reports ask for it: by name ("ARIAL", "Arial Narrow", "Courier New"; the
// machine maps these to metric-compatible fonts) and size in points.
struct PrintFont {
    QString name = QStringLiteral("ARIAL");
    double size = 9;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikethru = false;
    bool operator==(const PrintFont&) const = default;
    // The font for drawing at one unit a twip (its pixel size is the point size times 20).
    QFont qfont() const;
};

// What a recorded page holds.
struct PrintedText {
    double x = 0;      // left of the text
    double y = 0;      // top of its line
    double ascent = 0; // the baseline lies this far below y
    double angle = 0;  // degrees; 180 is upside down, running leftward from (x, y)
    QString text;
    PrintFont font;
    double baseline() const { return y + ascent; }
    // Its TextWidth, measured when asked: drawing never needs it.
    double width() const;
};
struct PrintedLine {
    QLineF line;
    double width = 0; // pen width in twips
};
struct PrintedBox {
    QRectF rect;
    double width = 0; // pen width of the outline
    bool filled = false;
};
// A bar code: its payload as a scanner reads it, and its bars as filled rectangles.
struct PrintedBarcode {
    QString symbology; // "CODE39", "POSTNET"
    QString payload;
    QRectF bounds;
    QVector<QRectF> bars;
};
struct PrintedImage {
    QRectF rect;
    QImage image;
};
using PrintedItem =
    std::variant<PrintedText, PrintedLine, PrintedBox, PrintedBarcode, PrintedImage>;

struct RecordedPage {
    std::vector<PrintedItem> items; // in drawing order

    std::vector<const PrintedText*> texts() const;
    std::vector<const PrintedBarcode*> barcodes() const;
    // The page read as a person reads it: the texts on one baseline joined left to right, top
    // to bottom; upside-down texts follow as lines of their own.
    QStringList textLines() const;
};

struct Recording {
    QString jobName;
    PageFormat format;
    std::vector<RecordedPage> pages;

    QStringList textLines() const; // every page's lines, page after page
    QStringList barcodePayloads() const;
    // One line per item, with rounded positions: the form of the expected dumps in tests.
    QString dump() const;
};

// The surface. Reports set the public values the way they set a printer's properties, and call
// the operations; each operation reads them as they stand.
class ReportSurface {
public:
    explicit ReportSurface(PageFormat format = {});

    double CurrentX = 0;
    double CurrentY = 0;
    QString FontName = QStringLiteral("ARIAL");
    double FontSize = 9;
    bool FontBold = false;
    bool FontItalic = false;
    bool FontUnderline = false;
    bool FontStrikethru = false;
    // Width of lines and box outlines in printer dots of 1/600 inch, as printers count it.
    double DrawWidth = 1;

    // The page. Width and Height are the whole sheet, ScaleWidth and ScaleHeight the
    // printable area that positions are measured in.
    void setFormat(PageFormat format);
    const PageFormat& format() const { return m_recording.format; }
    double Width() const { return format().sheet().width(); }
    double Height() const { return format().sheet().height(); }
    double ScaleWidth() const { return format().scaleWidth(); }
    double ScaleHeight() const { return format().scaleHeight(); }
    // The page being drawn, from 1.
    int Page() const { return m_pageNumber; }

    PrintFont font() const;
    void setFont(const PrintFont& font);
    double TextWidth(const QString& text) const;
    // The height of one line in the current font: what Print moves down.
    double TextHeight() const;

    // Draws at CurrentX, CurrentY, then moves down one line and back to X 0.
    void Print(const QString& text = QString());
    // Draws at CurrentX, CurrentY and stays on the line, CurrentX after the text.
    void Write(const QString& text);
    // Draws at x on the current line without measuring the text: CurrentX is left at x. For
    // columns placed by their left edge, where where the text ends does not matter.
    void Place(double x, const QString& text);
    // Draws with the text's right end at `edge`, on the current line; stays on the line.
    void WriteRight(double edge, const QString& text);
    // Draws centred between 0 and `width` (ScaleWidth when not given); stays on the line.
    void WriteCentred(const QString& text, double width = -1);

    void Line(double x1, double y1, double x2, double y2);
    void Box(double x1, double y1, double x2, double y2);
    void FilledBox(double x1, double y1, double x2, double y2);
    void DrawBarcode(PrintedBarcode barcode);
    void DrawImage(const QRectF& rect, const QImage& image);
    // Text turned through `angle` degrees about its anchor (x, y): for 180, the line runs
    // leftward and upward from there. Does not move CurrentX or CurrentY.
    void DrawTurnedText(double x, double y, double angle, const QString& text);

    // The next sheet. A NewPage with nothing drawn after it adds no page at EndDoc.
    void NewPage();
    void EndDoc();
    bool ended() const { return m_ended; }

    // The pages drawn so far (all of them after EndDoc).
    const Recording& recording() const { return m_recording; }
    Recording takeRecording();

    // Streaming: each finished page goes to the sink and is not kept, so a run of thousands of
    // pages holds one page at a time. A page is finished when the next one begins (NewPage) or
    // at EndDoc. Without a sink every page stays in the recording.
    using PageSink = std::function<void(RecordedPage&&)>;
    void setPageSink(PageSink sink) { m_sink = std::move(sink); }
    // Pages finished so far, handed to the sink or kept.
    int pagesFinished() const { return m_finished; }

private:
    struct FontEntry {
        PrintFont look;
        QFont font;
        double ascent = 0;
        double lineSpacing = 0;
        std::unique_ptr<QFontMetricsF> metrics;
        // Reports print the same labels, years and amounts over and over.
        QHash<QString, double> widths;
        // The text measured last: placing a text at its right edge or fitting it to a column
        // measures it, and drawing it measures it again at once.
        QString lastText;
        double lastWidth = 0;
        double width(const QString& text);
    };
    // The entry of the font now set; the cache is not part of the surface's state.
    FontEntry& currentFont() const;
    RecordedPage& page();
    double penWidth() const;
    // Records the text at x on the current line.
    void drawText(double x, const QString& text);

    // Hands the last page to the sink when there is one.
    void finishPage();

    Recording m_recording;
    PageSink m_sink;
    int m_finished = 0;
    int m_pageNumber = 1;
    bool m_pagePending = true; // the current page has nothing drawn on it yet
    bool m_ended = false;
    mutable std::vector<std::unique_ptr<FontEntry>> m_fonts;
    mutable FontEntry* m_lastFont = nullptr;
};

// Prints one line of words stretched to `width`, from CurrentX on the current line: the gap
// left by the text is shared out over its blanks. Leaves CurrentY on the printed line.
void PrintJustified(ReportSurface& surface, const QString& text, double width);
// Cuts a text to what fits in `width` twips in the surface's current font.
QString FittedText(ReportSurface& surface, const QString& text, double width);

// Replaying a recording.
// Draws one page with the painter's units being twips of the printable area.
void RenderPage(QPainter& painter, const RecordedPage& page);
// Draws sheets one after the other, keeping the fonts it made between them: the page printer
// of a streamed job. `scale` is the device's dots per twip (1 for a PDF at 1440 dots an inch).
class SheetRenderer {
public:
    SheetRenderer();
    ~SheetRenderer();
    void render(QPainter& painter, const RecordedPage& page, double scale = 1.0);

private:
    struct Fonts;
    std::unique_ptr<Fonts> m_fonts;
};
// The page layout of a format on a PDF writer or printer: the whole sheet, no margins.
QPageLayout SheetLayout(const PageFormat& format);

// Writes the recording as a PDF at 1440 dots an inch. False with the reason on failure.
bool WritePdf(const Recording& recording, const QString& path, QString* error = nullptr);
// Prints the recording on a printer that is set up and named already (one job).
bool PrintRecording(const Recording& recording, QPrinter& printer, QString* error = nullptr);
