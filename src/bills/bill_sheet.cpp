#include "bills/bill_sheet.h"

#include "bills/barcode.h"
#include "core/common_values.h"
#include "reports/report_surface.h"

#include <QLocale>
#include <QSqlError>
#include <QSqlQuery>
#include <algorithm>

using namespace BillPen;

namespace {

// The page across: the bill's frame runs from 500 to 11050.
constexpr double FrameLeft = 500;
constexpr double FrameWidth = 10550;
constexpr double FrameRight = FrameLeft + FrameWidth;
constexpr double TitleBoxHeight = 350;
// Blocks under the title box, from the bill's top.
constexpr double BlocksBelowTop = 1025;
constexpr double GridBelowTop = 2100;
// The grid.
constexpr double GridColumns[] = {500, 2000, 3100, 4500, 5900, 7300};
constexpr double GridHeaderHeight = 575;
constexpr double GridBodyHeight = 1525;
constexpr double LabelX = 550;
constexpr double RateRight = 3000;
constexpr double DiscountRight = 4450;
constexpr double FaceRight = 5850;
constexpr double PenaltyRight = 7250;
constexpr double MailingDateX = 7500;
constexpr double RightColumnX = 7750;
constexpr double FiguresRight = 11000;
constexpr double BelowGridX = 4500;
constexpr double NameX = 750;
constexpr double StampX = 7000;
constexpr double CodeHeight = 400;
constexpr double CodeModule = 15;
// Between the copies.
constexpr double TearBelowCopy = 100;
constexpr double SecondCopyBelowTear = 550;
constexpr double FirstCopyTop = 50;

const char16_t* const AmountPattern = u"#########.00";
const char16_t* const ReductionPattern = u"-#########.00";

const char* const TearLine = ">>>>>>>>>>>>>>>> TEAR ALONG THIS LINE >>>>>>>>>><<<<<<<<<< TEAR "
                             "ALONG THIS LINE <<<<<<<<<<<<<<<<";

// The boxed line of the copy mark and what follows it; returns the box's bottom.
double boxedLine(ReportSurface& s, double y, double height, const QString& t) {
    const double width = s.TextWidth(t);
    const double oldWidth = s.DrawWidth;
    s.Box(FrameLeft, y, FrameLeft + width + 100, y + height);
    s.DrawWidth = oldWidth;
    at(s, FrameLeft + 50, y + 25, t);
    return y + height;
}

// The last row of a chain table for a bill, or an empty record.
QSqlRecord lastRow(QSqlDatabase db, const QString& sql, const QString& billNo) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(sql);
    q.addBindValue(billNo);
    QSqlRecord last;
    if (q.exec())
        while (q.next())
            last = q.record();
    return last;
}

} // namespace

namespace BillPen {

void useFont(ReportSurface& s, const char* name, double size, bool bold, bool underline) {
    s.FontName = QLatin1String(name);
    s.FontSize = size;
    s.FontBold = bold;
    s.FontItalic = false;
    s.FontUnderline = underline;
    s.FontStrikethru = false;
}

void at(ReportSurface& s, double x, double y, const QString& t) {
    s.CurrentY = y;
    s.Place(x, t);
}

void rightAt(ReportSurface& s, double edge, double y, const QString& t) {
    s.CurrentY = y;
    s.WriteRight(edge, t);
}

void line(ReportSurface& s, double x, const QString& t) {
    s.CurrentX = x;
    s.Print(t);
}

void centredIn(ReportSurface& s, double left, double width, double y, const QString& t) {
    s.CurrentX = left + (width - s.TextWidth(t)) / 2;
    s.CurrentY = y;
    s.Write(t);
}

} // namespace BillPen

namespace BillText {

QString text(const QSqlRecord& r, const char* column) {
    return TextField(r.value(QLatin1String(column)));
}
QString trimmed(const QSqlRecord& r, const char* column) {
    return text(r, column).trimmed();
}
Money money(const QSqlRecord& r, const char* column) {
    return MoneyField(r.value(QLatin1String(column)));
}
double rate(const QSqlRecord& r, const char* column) {
    return r.value(QLatin1String(column)).toDouble();
}
QDate date(const QSqlRecord& r, const char* column) {
    return DateField(r.value(QLatin1String(column)));
}
QString flag(const QSqlRecord& r, const char* column) {
    return trimmed(r, column).toUpper();
}
bool blank(const QSqlRecord& r, const char* column) {
    return trimmed(r, column).isEmpty();
}

QString shortDate(const QDate& d) {
    return d.isValid() ? d.toString(QStringLiteral("MM/dd/yy")) : QString();
}
QString longDate(const QDate& d) {
    return d.isValid() ? d.toString(QStringLiteral("MM/dd/yyyy")) : QString();
}
QString monthDate(const QDate& d) {
    return d.isValid() ? QLocale::c().toString(d, QStringLiteral("MMMM dd, yyyy")) : QString();
}

QDate frameDate(const QSqlRecord& rates, BillingFrame frame, const char* column) {
    if (frame == BillingFrame::Early)
        return date(rates, column);
    return date(rates, qPrintable(QStringLiteral("Late") + QLatin1String(column)));
}
QString frameText(const QSqlRecord& rates, BillingFrame frame, const char* column) {
    if (frame == BillingFrame::Early)
        return trimmed(rates, column);
    return trimmed(rates, qPrintable(QStringLiteral("Late") + QLatin1String(column)));
}

QString municipalWord(const QString& btFlag) {
    if (btFlag == QLatin1String("C"))
        return QStringLiteral("City");
    if (btFlag == QLatin1String("B"))
        return QStringLiteral("Boro");
    return QStringLiteral("Twp");
}

QString gridBodyWord(const QString& btFlag) {
    if (btFlag == QLatin1String("C"))
        return QStringLiteral("CITY");
    if (btFlag == QLatin1String("B"))
        return QStringLiteral("BOROUGH");
    return QStringLiteral("TOWNSHIP");
}

QString cityLine(const QSqlRecord& bill) {
    return trimmed(bill, "City") + QLatin1Char(' ') + trimmed(bill, "State") +
           QStringLiteral("  ") + trimmed(bill, "ZipCode") + QLatin1Char(' ') +
           trimmed(bill, "ZipCode2");
}

QString rateLine(const QSqlRecord& countyRates, const QSqlRecord& rates, const QString& btFlag,
                 const BilledBodies& bodies, bool penalty, const char* countyColumn,
                 const char* twpColumn, const char* schoolColumn) {
    QStringList parts;
    if (bodies.county)
        parts << QStringLiteral("County @ ") +
                     FormatPercent(rate(countyRates, countyColumn), u"#0.##%");
    if (bodies.twp)
        parts << municipalWord(btFlag) + QStringLiteral(" @ ") +
                     FormatPercent(rate(rates, twpColumn), u"#0.##%");
    if (bodies.school)
        parts << QStringLiteral("School @ ") + FormatPercent(rate(rates, schoolColumn), u"#0.##%");
    if (parts.isEmpty())
        return QString();
    return (penalty ? QStringLiteral("Penalty: ") : QStringLiteral("Discount: ")) +
           parts.join(QStringLiteral(", "));
}

} // namespace BillText

double DrawBillCopy(ReportSurface& s, const BillFace& face, double top) {
    // 1. The title box.
    s.DrawWidth = 5;
    s.Box(FrameLeft, top, FrameRight, top + TitleBoxHeight);
    useFont(s, "ARIAL", 10, true);
    centredIn(s, FrameLeft, FrameWidth, top + (TitleBoxHeight - s.TextHeight()) / 2, face.title);
    if (face.secondNotice) {
        // Boxed between the title and the blocks under it.
        useFont(s, "ARIAL", 9, true);
        const QString lines[2] = {QStringLiteral("   ***  SECOND NOTICE  ***"),
                                  QStringLiteral("***  DISREGARD IF PAID  ***")};
        const double width = std::max(s.TextWidth(lines[0]), s.TextWidth(lines[1])) + 200;
        const double boxTop = top + TitleBoxHeight + 60;
        const double left = FrameLeft + (FrameWidth - width) / 2;
        s.DrawWidth = 5;
        s.Box(left, boxTop, left + width, boxTop + 2 * s.TextHeight() + 60);
        double y = boxTop + 30;
        for (const QString& l : lines) {
            centredIn(s, left, width, y, l);
            y += s.TextHeight();
        }
    }

    // 2. Payable to, with the notice lines of the frame.
    const double blocks = top + BlocksBelowTop;
    useFont(s, "ARIAL", 9);
    at(s, FrameLeft, blocks, QStringLiteral("Payable To:"));
    s.CurrentY = blocks + s.TextHeight();
    for (const QString& l : face.payableLines)
        line(s, 600, l);

    // 3. Office hours, placed by the widest of the measured lines.
    double widest = 0;
    for (const QString& l : face.measuredLines)
        widest = std::max(widest, s.TextWidth(l));
    const double hoursX = std::min(widest + 1000, 4000.0);
    at(s, hoursX, blocks, QStringLiteral("Office Hours:"));
    s.CurrentY = blocks + s.TextHeight();
    for (const QString& l : face.hoursLines)
        line(s, hoursX + 100, l);

    // 4. County, bill number and bar code at the right.
    rightAt(s, FrameRight, blocks, face.county.trimmed());
    double y = blocks + s.TextHeight();
    useFont(s, "ARIAL", 12, true);
    rightAt(s, FrameRight, y, QStringLiteral("BILL # ") + face.billNo);
    y += s.TextHeight() + 40;
    const double codeWidth = Code39Width(face.payload, CodeModule);
    PrintCode39(s, FrameRight - codeWidth, y, face.payload, CodeHeight, CodeModule);

    // 5. The grid.
    const double gridTop = top + GridBelowTop;
    const double bodyTop = gridTop + GridHeaderHeight;
    const double bodyBottom = bodyTop + GridBodyHeight;
    s.DrawWidth = 3;
    for (std::size_t i = 0; i + 1 < std::size(GridColumns); ++i) {
        s.Box(GridColumns[i], gridTop, GridColumns[i + 1], bodyTop);
        s.Box(GridColumns[i], bodyTop, GridColumns[i + 1], bodyBottom);
    }
    useFont(s, "ARIAL", 9, true);
    const double captionY = gridTop + 15;
    at(s, 975, captionY, QStringLiteral("TAXES"));
    at(s, 2150, captionY, QStringLiteral("TAX RATE"));
    // The amount captions in the grid's narrow face, so that they keep within their columns.
    useFont(s, "ARIAL NARROW", 9, true);
    const QString heads[3] = {QStringLiteral("DISCOUNT AMOUNT"), QStringLiteral("FACE AMOUNT"),
                              QStringLiteral("PENALTY AMOUNT")};
    for (int i = 0; i < 3; ++i)
        centredIn(s, GridColumns[2 + i], GridColumns[3 + i] - GridColumns[2 + i], captionY,
                  heads[i]);
    const double subY = captionY + 200;
    useFont(s, "ARIAL NARROW", 8);
    for (int i = 0; i < 3; ++i) {
        double sy = subY;
        for (const QString& sub : face.gridDates[i]) {
            centredIn(s, GridColumns[2 + i], GridColumns[3 + i] - GridColumns[2 + i], sy, sub);
            sy += 170;
        }
    }

    // 6. Mailing date and the rates of the billed bodies.
    useFont(s, "ARIAL", 9);
    at(s, MailingDateX, gridTop, QStringLiteral("MAILING DATE: ") + face.mailingDate);
    y = gridTop + s.TextHeight();
    useFont(s, "ARIAL NARROW", 8);
    at(s, MailingDateX, y, face.discountRates);
    y += s.TextHeight();
    at(s, MailingDateX, y, face.penaltyRates);

    // 7, 8. The rows and their totals.
    useFont(s, "ARIAL", 9);
    Money totals[3];
    const double edges[3] = {DiscountRight, FaceRight, PenaltyRight};
    double rowY = bodyTop + 40;
    for (const BillGridRow& row : face.rows) {
        at(s, LabelX, rowY, row.label);
        if (!row.rate.isEmpty())
            rightAt(s, RateRight, rowY, row.rate);
        const Money amounts[3] = {row.discount, row.face, row.penalty};
        for (int i = 0; i < 3; ++i) {
            rightAt(s, edges[i], rowY,
                    amounts[i].format(row.reduction ? ReductionPattern : AmountPattern));
            totals[i] += row.reduction ? -amounts[i] : amounts[i];
        }
        rowY += s.TextHeight();
    }
    const double totalY = std::max(rowY, bodyBottom - s.TextHeight() - 30);
    useFont(s, "ARIAL", 9, true);
    at(s, LabelX, totalY, QStringLiteral("TOTAL TAX DUE"));
    for (int i = 0; i < 3; ++i)
        rightAt(s, edges[i], totalY, totals[i].format(AmountPattern));

    // 9. The right column.
    useFont(s, "ARIAL", 10, true);
    at(s, RightColumnX, bodyTop, face.controlLine);
    s.CurrentY = bodyTop + s.TextHeight();
    useFont(s, "ARIAL", 8);
    for (const QString& l : face.rightLines)
        line(s, RightColumnX, l);
    for (const auto& [label, value] : face.figures) {
        const double ly = s.CurrentY;
        at(s, RightColumnX, ly, label);
        rightAt(s, FiguresRight, ly, value);
        s.CurrentY = ly + s.TextHeight();
    }

    // 10. Lines under the grid, beside the name block.
    const double below = bodyBottom + 100;
    useFont(s, "ARIAL", 9);
    double ey = below;
    for (const auto& [label, value] : face.belowGrid) {
        at(s, BelowGridX, ey, label);
        if (!value.isEmpty())
            rightAt(s, PenaltyRight, ey, value);
        ey += s.TextHeight();
    }

    // 11. Who pays: a block of fixed height.
    s.CurrentY = below;
    for (const QString& l : face.payableFrom)
        line(s, FrameLeft, l);
    useFont(s, "ARIAL", 9, true);
    for (int i = 0; i < 5; ++i)
        line(s, NameX, face.address.value(i));

    // 12. Until when, and who collects afterwards.
    useFont(s, "ARIAL", 9);
    for (const QString& l : face.dueLines)
        line(s, FrameLeft, l);

    // 13. Whose copy this is, by where it stands on the sheet.
    const double markY = s.CurrentY + 50;
    useFont(s, "ARIAL", 10, true);
    const QString mark = markY < s.Height() / 2 ? face.firstMark : face.secondMark;
    s.DrawWidth = 3;
    // 14. The receipt stamp beside it.
    s.Line(StampX, markY + 225, StampX + 4000, markY + 225);
    useFont(s, "ARIAL", 8);
    at(s, StampX, markY + 250, QStringLiteral("Amount Paid"));
    at(s, 8500, markY + 250, QStringLiteral("Date"));
    at(s, 9950, markY + 250, QStringLiteral("Tax Collector"));
    useFont(s, "ARIAL", 10, true);
    double end = boxedLine(s, markY, 275, mark);
    useFont(s, "ARIAL", 9, true);
    end = boxedLine(
        s, end, 250,
        QStringLiteral("Return both copies with a self addressed stamped envelope for receipt"));

    // 15. The escrow line, when the frame's notice asks for it.
    if (face.escrow) {
        useFont(s, "ARIAL", 9, false, true);
        end = boxedLine(
            s, end, 250,
            QStringLiteral("If taxes are escrowed, forward bill to mortgage holder for payment"));
    }
    return end;
}

void DrawBillSheet(ReportSurface& s, const BillFace& face) {
    const double end = DrawBillCopy(s, face, FirstCopyTop);
    useFont(s, "ARIAL", 10, true);
    const double tearY = end + TearBelowCopy;
    centredIn(s, 0, s.ScaleWidth(), tearY, QLatin1String(TearLine));
    DrawBillCopy(s, face, tearY + SecondCopyBelowTear);
}

void DrawMailingFront(ReportSurface& s, const MailingFace& face) {
    constexpr double Left = 1250;
    constexpr double Top = 500;
    useFont(s, "ARIAL", 9);
    s.CurrentY = Top;
    line(s, Left, face.firstLine);
    for (const QString& l : face.returnLines)
        line(s, Left, l);
    line(s, Left, QString());
    s.DrawWidth = 3;
    const double ruleY = s.CurrentY;
    s.Line(Left, ruleY, Left + 2250, ruleY);
    s.CurrentY = ruleY + 25;
    line(s, Left, face.service);

    useFont(s, "ARIAL", 14, true);
    at(s, 3500, Top + 2500, face.headline);

    useFont(s, "ARIAL", 12);
    s.CurrentY = 4500;
    for (const QString& l : face.address)
        line(s, 2000, l);
    PrintPostalBars(s, 2500, s.CurrentY + 150, face.zipCode, face.zipCode2);

    s.DrawWidth = 3;
    s.Box(9250, Top, 9250 + 1150, Top + 1000);
    useFont(s, "ARIAL", 9);
    s.CurrentY = Top + 100;
    for (const char* l : {"     Place", "      U.S.", "   Postage", "      Here"})
        line(s, 9260, QLatin1String(l));
}

bool PassesLateBillingTest(QSqlDatabase db, const QSqlRecord& bill, Duplicate duplicate) {
    using namespace BillText;
    const bool re = duplicate == Duplicate::RealEstate;
    const QString billNo = text(bill, "BillNo");
    const bool added = billNo.startsWith(QLatin1Char('A'));
    if (flag(bill, "CAddrFlag") != QLatin1String("A") && !added)
        return false;
    if (added)
        return true;
    const QSqlRecord address =
        lastRow(db,
                re ? QStringLiteral("SELECT * FROM TCAddress WHERE BillNo = ? ORDER BY BillNo, "
                                    "AddrID")
                   : QStringLiteral("SELECT * FROM PCAddress WHERE BillNo = ? ORDER BY BillNo, "
                                    "AddrID"),
                billNo);
    if (address.isEmpty())
        return false;
    if (date(address, "ADate") <= QDate(2006, 6, 15))
        return false;
    const QSqlRecord mailed =
        lastRow(db,
                re ? QStringLiteral("SELECT * FROM TCLateBillAddress WHERE BillNo = ?")
                   : QStringLiteral("SELECT * FROM PCLateBillAddress WHERE BillNo = ?"),
                billNo);
    if (text(mailed, "Name") != text(address, "Name"))
        return false;
    for (const char* column : {"Addr1", "Addr2", "City", "State", "ZipCode"})
        if (trimmed(mailed, column) != trimmed(address, column))
            return true;
    return false;
}

BillRunResult WalkBills(QSqlDatabase db, const BillWalk& walk, const BillProgress& progress) {
    using Stop = BillRunResult::Stop;
    using namespace BillText;
    BillRunResult result;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(walk.query)) {
        result.stop = Stop::Error;
        result.error = q.lastError().text();
        return result;
    }
    if (!q.next()) {
        result.stop = Stop::NoRows;
        return result;
    }
    const QString start = walk.startBill.trimmed();
    if (!start.isEmpty()) {
        bool found = false;
        do {
            if (TextField(q.value(QStringLiteral("BillNo"))).trimmed() == start) {
                found = true;
                break;
            }
        } while (q.next());
        if (!found) {
            result.stop = Stop::StartNotFound;
            return result;
        }
    }
    if (!walk.bodies.any()) {
        result.stop = Stop::NoBodies;
        return result;
    }
    int sequence = 1;
    do {
        if (result.printed >= walk.mailers)
            break;
        QSqlRecord bill = q.record();
        if (flag(bill, "AdjFlag") == QLatin1String("A") ||
            flag(bill, "CAddrFlag") == QLatin1String("A")) {
            BillNow now = ReadBillAsItStands(db, walk.duplicate, text(bill, "BillNo"));
            if (!now.found()) {
                result.stop = Stop::IncompleteChain;
                result.bill = std::move(now);
                return result;
            }
            bill = now.bill;
        }
        if (progress && !progress(bill, result.printed)) {
            result.stop = Stop::Cancelled;
            return result;
        }
        if (walk.lateBillingRun && !PassesLateBillingTest(db, bill, walk.duplicate))
            continue;
        if (walk.wanted && !walk.wanted(bill))
            continue;
        walk.draw(bill, sequence);
        ++result.printed;
        ++sequence;
    } while (q.next());
    return result;
}

void SetUpBillSurface(ReportSurface& surface) {
    surface.setFormat(PageFormat{PaperSize::Letter, PageOrientation::Portrait});
    surface.FontName = QStringLiteral("Arial");
    surface.FontItalic = false;
    surface.FontStrikethru = false;
    surface.FontUnderline = false;
    surface.FontBold = true;
    surface.DrawWidth = 5;
    surface.CurrentX = 0;
    surface.CurrentY = 0;
}
