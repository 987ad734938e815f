#include "reports/report_frame.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/message_window.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/print_preview.h"

#include <QLocale>
#include <QSqlQuery>
#include <cmath>

namespace {

QSqlDatabase orSession(QSqlDatabase db) {
    return db.isValid() ? db : session().DbConnection;
}

} // namespace

QString BodyWord(const QString& btFlag) {
    const QString flag = btFlag.trimmed().toUpper();
    if (flag == QLatin1String("T"))
        return QStringLiteral("Township");
    if (flag == QLatin1String("B"))
        return QStringLiteral("Borough");
    if (flag == QLatin1String("C"))
        return QStringLiteral("City");
    return QString();
}

ReportLookups ReportLookups::read(QSqlDatabase db) {
    ReportLookups out;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT District, Ward, IntNo FROM tbl_District")) && q.next()) {
        out.district = TextField(q.value(0));
        out.ward = TextField(q.value(1));
        out.intNo = q.value(2).toInt();
    }
    q.prepare(QStringLiteral("SELECT TwpBoro, BTFlag FROM tbl_Twpboro WHERE District = ? AND "
                             "Ward = ?"));
    q.addBindValue(out.district);
    q.addBindValue(out.ward);
    if (q.exec() && q.next()) {
        out.twpBoro = TextField(q.value(0));
        out.btFlag = TextField(q.value(1));
    }
    out.bodyWord = BodyWord(out.btFlag);
    if (q.exec(QStringLiteral("SELECT County FROM tbl_County")) && q.next())
        out.county = TextField(q.value(0));
    return out;
}

QString ReportLookups::identity() const {
    return district + ward + QLatin1Char(' ') + twpBoro.left(30);
}

CopiesQuestion CopiesQuestion::receipt() {
    return {QStringLiteral("Enter the number of receipts to print:"),
            QStringLiteral("Print Receipt"),
            QStringLiteral("1"),
            QStringLiteral("Are you sure you want to cancel the printing of this receipt?"),
            QStringLiteral("Cancel Print Receipt"),
            QStringLiteral("Receipt NOT printed."),
            QStringLiteral("Print Receipt")};
}

CopiesQuestion CopiesQuestion::distributionReport() {
    return {QStringLiteral("Enter the number of distribution reports to print:"),
            QStringLiteral("Print Distribution Report"),
            QStringLiteral("3"),
            QStringLiteral("Are you sure you want to cancel the printing of this report?"),
            QStringLiteral("Cancel Print Distribution Report"),
            QStringLiteral("Distribution Report NOT printed."),
            QStringLiteral("Print Distribution Report")};
}

std::optional<int> AskCopies(const CopiesQuestion& question) {
    // The two complaints are worded for receipts wherever they are asked.
    const QString complaintTitle = QStringLiteral("Print Receipt");
    for (;;) {
        const std::optional<QString> answer =
            InputBox(question.prompt, question.title, question.defaultText);
        // Only an empty answer (Cancel gives one) cancels; blanks are an answer that is no
        // number.
        if (!answer || answer->isEmpty()) {
            if (MsgBox(question.cancelQuestion, question.cancelTitle, MsgButtons::YesNo,
                       MsgIcon::Question) == MsgAnswer::Yes) {
                MsgBox(question.notPrintedText, question.notPrintedTitle);
                return std::nullopt;
            }
            continue;
        }
        bool numeric = false;
        const double value = QLocale::c().toDouble(answer->trimmed(), &numeric);
        if (!numeric || !std::isfinite(value)) {
            MsgBox(QStringLiteral("Number Of Receipts Must Be Numeric."), complaintTitle,
                   MsgButtons::Ok, MsgIcon::Exclamation);
            continue;
        }
        if (value < 0 || value > 9 || value != std::floor(value)) {
            MsgBox(QStringLiteral("Invalid Number Of Receipts. Number must be between 0 and 9."),
                   complaintTitle, MsgButtons::Ok, MsgIcon::Exclamation);
            continue;
        }
        return int(value);
    }
}

ReportPage::ReportPage(ReportSurface& surface, const ReportDefinition& definition,
                       const ReportLookups& lookups, ReportMode mode)
    : m_surface(surface), m_definition(definition), m_lookups(lookups), m_mode(mode) {}

void ReportPage::header() {
    ReportSurface& s = m_surface;
    // The first sheet is the one the job starts on; each further header starts a new one.
    if (m_page > 0)
        s.NewPage();
    ++m_page;

    s.FontSize = 9;
    s.FontBold = false;
    s.CurrentX = 0;
    const double top = s.CurrentY;
    s.Print(QStringLiteral("Date: ") + FormatDate(Clock::today()));
    if (m_definition.countyWide)
        s.Print(m_lookups.district + m_lookups.ward + QLatin1Char(' ') + m_lookups.county);
    else
        s.Print(m_lookups.identity());
    const double below = s.CurrentY;
    s.CurrentY = top;
    s.WriteRight(s.ScaleWidth(), QStringLiteral("Page: ") + FormatNumber(m_page, u"###0"));
    s.CurrentY = below;
    s.CurrentX = 0;

    s.FontSize = 12;
    s.FontBold = true;
    for (int i = 0; i < m_definition.titles.size(); ++i) {
        QString title = m_definition.titles.at(i);
        if (i == 0 && m_definition.interim && m_lookups.intNo != 0)
            title += QStringLiteral(" Interim #") + QString::number(m_lookups.intNo);
        s.CurrentX = (s.ScaleWidth() - s.TextWidth(title)) / 2;
        s.Print(title);
    }

    s.FontSize = 9;
    if (m_definition.captions) {
        m_definition.captions(*this);
    } else if (!m_definition.columns.isEmpty()) {
        for (const ReportColumn& column : m_definition.columns) {
            if (column.align == ReportColumn::Right)
                s.WriteRight(column.x, column.caption);
            else {
                s.CurrentX = column.x;
                s.Write(column.caption);
            }
        }
        s.Print();
    }
    s.Line(0, s.CurrentY, s.ScaleWidth(), s.CurrentY);
    s.CurrentX = 0;
    s.CurrentY += 25;
    s.FontSize = 9;
    s.FontBold = false;
}

void ReportPage::ensureHeader() {
    if (m_page == 0)
        header();
}

bool ReportPage::full() const {
    return m_definition.margin > 0 && m_surface.CurrentY > m_surface.Height() - m_definition.margin;
}

void ReportPage::startRow() {
    if (m_page == 0 || full())
        header();
}

void ReportPage::newPage() {
    header();
}

void ReportPage::text(double x, const QString& text) {
    ensureHeader();
    m_surface.CurrentX = x;
    m_surface.Write(text);
}

void ReportPage::right(double edge, const QString& text) {
    ensureHeader();
    m_surface.WriteRight(edge, text);
}

void ReportPage::centred(const QString& text) {
    ensureHeader();
    m_surface.WriteCentred(text);
}

void ReportPage::money(double edge, Money amount, QStringView pattern) {
    right(edge, amount.format(pattern));
}

void ReportPage::count(double edge, qint64 value, QStringView pattern) {
    right(edge, FormatNumber(double(value), pattern));
}

void ReportPage::nextLine(int n) {
    ensureHeader();
    for (int i = 0; i < n; ++i)
        m_surface.Print();
}

void ReportPage::rule() {
    ensureHeader();
    m_surface.Line(0, m_surface.CurrentY, m_surface.ScaleWidth(), m_surface.CurrentY);
    m_surface.CurrentX = 0;
}

void ReportPage::bold(bool on) {
    m_surface.FontSize = 9;
    m_surface.FontBold = on;
}

void SetUpReportSurface(ReportSurface& surface, const PageFormat& format) {
    surface.setFormat(format);
    surface.DrawWidth = 5;
    surface.CurrentX = 0;
    surface.CurrentY = 0;
    surface.FontItalic = false;
    surface.FontStrikethru = false;
    surface.FontUnderline = false;
    surface.FontName = QStringLiteral("ARIAL");
    surface.FontSize = 9;
    surface.FontBold = true;
}

std::optional<Recording> DrawReport(const ReportDefinition& definition, ReportMode mode,
                                    QSqlDatabase db) {
    db = orSession(db);
    ReportSurface surface;
    SetUpReportSurface(surface, mode == ReportMode::Print ? definition.print : definition.preview);
    const ReportLookups lookups = ReportLookups::read(db);
    ReportPage page(surface, definition, lookups, mode);
    std::optional<PleaseWait> wait;
    if (definition.pleaseWait)
        wait.emplace(definition.pleaseWait);
    if (definition.body && !definition.body(page))
        return std::nullopt;
    page.ensureHeader();
    surface.NewPage();
    surface.EndDoc();
    Recording recording = surface.takeRecording();
    recording.jobName = definition.caption;
    return recording;
}

bool PrintReport(const ReportDefinition& definition, QSqlDatabase db) {
    db = orSession(db);
    const bool silent = session().SilentPrint;
    int copies = 1;
    if (definition.copies && !silent) {
        const std::optional<int> asked = AskCopies(*definition.copies);
        if (!asked)
            return false;
        copies = *asked;
    }
    const std::optional<QString> device = AssignedPrinter(db, QString::fromLatin1(LetterPrinter));
    if (!device) {
        MsgBox(QString::fromLatin1(NoLetterPrinterText), QString::fromLatin1(PrinterErrorTitle),
               MsgButtons::Ok, MsgIcon::Critical);
        return false;
    }
    if (copies > 0) {
        const std::optional<Recording> pages = DrawReport(definition, ReportMode::Print, db);
        if (!pages)
            return false;
        // Each copy is a print job of its own.
        for (int i = 0; i < copies; ++i) {
            const PrintResult sent = SendToPrinter(*pages, *device);
            if (!sent.ok) {
                MsgBox(sent.error, QString::fromLatin1(PrinterErrorTitle), MsgButtons::Ok,
                       MsgIcon::Critical);
                return false;
            }
        }
    }
    if (!silent)
        MsgBox(definition.completeText,
               definition.completeTitle.isEmpty() ? definition.caption : definition.completeTitle);
    return true;
}

void PreviewReport(const ReportDefinition& definition, QWidget* reportForm,
                   std::function<void()> printAgain, QSqlDatabase db) {
    const std::optional<Recording> pages = DrawReport(definition, ReportMode::Preview, db);
    if (!pages)
        return;
    ShowPrintPreview(*pages, definition.caption, reportForm, std::move(printAgain));
}
