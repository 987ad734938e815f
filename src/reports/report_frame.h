#pragma once
// The frame every report prints in: the copies question, the Letter printer, the page set-up,
// the page header, the page-full rule, "Printing Complete.", and the preview path. A report
// names its caption, page set-up, margin, title lines and column captions, and a body that
// walks its rows:
//
//     ReportDefinition report;
//     report.caption = windowTitle();
//     report.margin = 1500;
//     report.titles = {QStringLiteral("RECEIPTS FOR DEPOSIT")};
//     report.columns = {{"RECEIPT #", 0}, {"AMOUNT", 11000, ReportColumn::Right}};
//     report.body = [&](ReportPage& page) {
//         QSqlQuery q(...);
//         if (!q.next()) { MsgBox(...); return false; }   // no data: nothing prints
//         Money total;
//         do {
//             page.startRow();                            // header on a new page when full
//             page.text(0, q.value(0).toString());
//             page.money(11000, MoneyField(q.value(1)));
//             page.nextLine();
//             total += MoneyField(q.value(1));
//         } while (q.next());
//         page.money(11000, total);
//         return true;
//     };
//     PrintReport(report);                 // cmdPrint
//     PreviewReport(report, this, [this] { cmdPrint_Click(); });   // cmdPrintPreview

#include "core/money.h"
#include "reports/report_surface.h"

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

class QWidget;

enum class ReportMode { Print, Preview };

// The collector's identity and the municipality's kind, read once per run.
struct ReportLookups {
    QString district;
    QString ward;
    int intNo = 0;
    QString twpBoro;
    QString btFlag;
    QString bodyWord; // "Township", "Borough", "City" or empty
    QString county;   // tbl_County's name

    static ReportLookups read(QSqlDatabase db);
    // District, Ward, a blank and the municipality's name in 30 characters.
    QString identity() const;
};

// "Township", "Borough", "City" for T, B, C; empty for anything else.
QString BodyWord(const QString& btFlag);

// A number-of-copies question: its texts, and the loop that asks until it has an answer.
struct CopiesQuestion {
    QString prompt;
    QString title;
    QString defaultText;
    QString cancelQuestion;
    QString cancelTitle;
    QString notPrintedText;
    QString notPrintedTitle;

    static CopiesQuestion receipt();
    static CopiesQuestion distributionReport();
};
// Asks until the answer is a number from 0 to 9, or the user confirms cancelling (then the
// "NOT printed." message has been shown and nothing is returned).
std::optional<int> AskCopies(const CopiesQuestion& question);

// A column caption of the page header, at a fixed X: its left end, or its right end.
struct ReportColumn {
    enum Align { Left, Right };
    QString caption;
    double x = 0;
    Align align = Left;
};

class ReportPage;

struct ReportDefinition {
    // The report form's caption: the preview's caption line and the title of "Printing
    // Complete." (unless completeTitle says otherwise).
    QString caption;
    QString completeTitle;
    QString completeText = QStringLiteral("Printing Complete.");
    // The page-full margin in twips; 0 for reports of fixed pages, which never test it.
    double margin = 1500;
    PageFormat print{PaperSize::Letter, PageOrientation::Landscape};
    PageFormat preview{PaperSize::Letter, PageOrientation::Landscape};
    // The copies question (the distribution reports); none when not set.
    std::optional<CopiesQuestion> copies;
    // A please-wait text of frmMessage shown while the report draws; none when null.
    const char* pleaseWait = nullptr;

    // The centred title lines in 12 point bold. With `interim`, " Interim #" and IntNo are
    // joined to the first of them when IntNo is not zero.
    QStringList titles;
    bool interim = false;
    // The second header line shows the county's name instead of the municipality.
    bool countyWide = false;
    // The column captions, one line in 9 point bold; `captions` draws them instead when the
    // report needs more than one line. The header's rule follows either.
    QList<ReportColumn> columns;
    std::function<void(ReportPage&)> captions;

    // Walks the rows. Returns false when there was nothing to print, after its own message:
    // then no page prints and no "Printing Complete." follows.
    std::function<bool(ReportPage&)> body;
};

// What a report body draws with. Every drawing call prints the first page header first when
// none is printed yet.
class ReportPage {
public:
    ReportPage(ReportSurface& surface, const ReportDefinition& definition,
               const ReportLookups& lookups, ReportMode mode);

    ReportSurface& surface() { return m_surface; }
    const ReportLookups& lookups() const { return m_lookups; }
    ReportMode mode() const { return m_mode; }
    int pageNumber() const { return m_page; }

    // Before each detail row: when CurrentY has passed the page's height less the margin, the
    // header of a new page. The first call prints the first header.
    void startRow();
    // True when the next row would start a new page.
    bool full() const;
    // The header of a new page, whatever the position (fixed-page reports).
    void newPage();

    // On the current line, leaving CurrentY alone.
    void text(double x, const QString& text);
    void right(double edge, const QString& text);
    void centred(const QString& text);
    // Money right-aligned by its width against `edge`.
    void money(double edge, Money amount, QStringView pattern = u"$###,###,###.00");
    // A whole number right-aligned against `edge`.
    void count(double edge, qint64 value, QStringView pattern = u"###,##0");
    // Down one line (or n) in the current font, back to X 0.
    void nextLine(int n = 1);
    // A rule across the page at CurrentY.
    void rule();
    // Font of the body text (9 point) with bold on or off.
    void bold(bool on);

    // Prints the first header when none is printed yet.
    void ensureHeader();
    bool headerPrinted() const { return m_page > 0; }

private:
    void header();

    ReportSurface& m_surface;
    const ReportDefinition& m_definition;
    const ReportLookups& m_lookups;
    ReportMode m_mode;
    int m_page = 0;
};

// The page set-up every report starts from: ARIAL 9 bold, line width 5, position 0.
void SetUpReportSurface(ReportSurface& surface, const PageFormat& format);

// Draws the report once for print or preview. Empty when the body found nothing.
std::optional<Recording> DrawReport(const ReportDefinition& definition, ReportMode mode,
                                    QSqlDatabase db);

// The print path: copies question (skipped, one copy, under SilentPrint), the Letter printer,
// the drawing, one job per copy, and "Printing Complete." (not under SilentPrint). True when it
// ran to the end; the field validation before it is the report form's.
bool PrintReport(const ReportDefinition& definition, QSqlDatabase db = QSqlDatabase());

// The preview path: no question and no printer; the drawing is shown in frmPrintPreview, whose
// Print button runs `printAgain` (the form's own print path, with all its questions).
void PreviewReport(const ReportDefinition& definition, QWidget* reportForm,
                   std::function<void()> printAgain, QSqlDatabase db = QSqlDatabase());

// "There is currently no LETTER size printer assigned." and its kin.
inline constexpr const char* PrinterErrorTitle = "Printer Error";
inline constexpr const char* NoLetterPrinterText =
    "There is currently no LETTER size printer assigned.";
