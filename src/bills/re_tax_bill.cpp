#include "bills/re_tax_bill.h"

#include "bills/barcode.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "reports/report_surface.h"

#include <QLocale>
#include <QSqlError>
#include <QSqlQuery>
#include <algorithm>
#include <cmath>

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
constexpr double AssessedRight = 11000;
constexpr double ExclusionX = 4500;
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
const char16_t* const WholePattern = u"###########0";
const char16_t* const CouponMoneyPattern = u"$###,###,###.00";

const char* const TearLine = ">>>>>>>>>>>>>>>> TEAR ALONG THIS LINE >>>>>>>>>><<<<<<<<<< TEAR "
                             "ALONG THIS LINE <<<<<<<<<<<<<<<<";

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

QString shortDate(const QDate& d) {
    return d.isValid() ? d.toString(QStringLiteral("MM/dd/yy")) : QString();
}
QString longDate(const QDate& d) {
    return d.isValid() ? d.toString(QStringLiteral("MM/dd/yyyy")) : QString();
}
// "August 31, 2013", in English whatever the machine's language.
QString monthDate(const QDate& d) {
    return d.isValid() ? QLocale::c().toString(d, QStringLiteral("MMMM dd, yyyy")) : QString();
}

// The date column of a frame: "DiscDate" early, "LateDiscDate" late.
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

void useFont(ReportSurface& s, const char* name, double size, bool bold = false,
             bool underline = false) {
    s.FontName = QLatin1String(name);
    s.FontSize = size;
    s.FontBold = bold;
    s.FontItalic = false;
    s.FontUnderline = underline;
    s.FontStrikethru = false;
}

void at(ReportSurface& s, double x, double y, const QString& t) {
    s.CurrentX = x;
    s.CurrentY = y;
    s.Write(t);
}
void rightAt(ReportSurface& s, double edge, double y, const QString& t) {
    s.CurrentY = y;
    s.WriteRight(edge, t);
}
// Prints at x and moves to the next line.
void line(ReportSurface& s, double x, const QString& t) {
    s.CurrentX = x;
    s.Print(t);
}
void centredIn(ReportSurface& s, double left, double width, double y, const QString& t) {
    s.CurrentX = left + (width - s.TextWidth(t)) / 2;
    s.CurrentY = y;
    s.Write(t);
}

QString amount(Money m) {
    return m.format(AmountPattern);
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

// The county row's special tax name, and the school's, in 10 characters.
QString taxName(const QSqlRecord& rates) {
    return text(rates, "S1TaxName").left(10).trimmed();
}

QString rateText(double mills) {
    return FormatNumber(mills, u"###.000") + QStringLiteral(" ML");
}

// City, state and ZIP as the address block prints them.
QString cityLine(const QSqlRecord& bill) {
    return trimmed(bill, "City") + QLatin1Char(' ') + trimmed(bill, "State") +
           QStringLiteral("  ") + trimmed(bill, "ZipCode") + QLatin1Char(' ') +
           trimmed(bill, "ZipCode2");
}

// Name, co-owner, street lines (those not blank) and the city line.
QStringList addressLines(const QSqlRecord& bill) {
    QStringList lines{trimmed(bill, "Name").toUpper()};
    for (const QString& l :
         {trimmed(bill, "CoOwner").toUpper(), trimmed(bill, "Addr1"), trimmed(bill, "Addr2")})
        if (!l.isEmpty())
            lines << l;
    lines << cityLine(bill).trimmed();
    return lines;
}

qint64 whole(const QSqlRecord& r, const char* column) {
    return r.value(QLatin1String(column)).toLongLong();
}

QString acreageText(const QString& stored) {
    bool ok = false;
    const double value = stored.trimmed().toDouble(&ok);
    if (ok && value != std::floor(value))
        return FormatNumber(value, u"#########.###").trimmed();
    return stored.trimmed();
}

struct GridRow {
    QString label;
    QString rate;
    Money discount, face, penalty;
    bool reduction = false;
};

// The rows of the grid in their order, those that print.
std::vector<GridRow> gridRows(const REBillOffice& office, const BilledBodies& bodies,
                              const QSqlRecord& bill) {
    std::vector<GridRow> rows;
    const QSqlRecord& county = office.countyRates;
    const QSqlRecord& district = office.rates;
    auto triple = [&](const char* d, const char* f, const char* p) {
        return std::array<Money, 3>{money(bill, d), money(bill, f), money(bill, p)};
    };
    auto add = [&](const QString& label, double mills, const std::array<Money, 3>& m) {
        rows.push_back({label, rateText(mills), m[0], m[1], m[2]});
    };
    if (bodies.county) {
        const double smr = rate(county, "SMR");
        const double lmr = rate(district, "LMR");
        const auto c = triple("DCounty", "County", "PCounty");
        if (!c[1].isZero() || smr + lmr != 0)
            add(QStringLiteral("COUNTY"), smr, c);
        const auto l = triple("DLibrary", "Library", "PLibrary");
        if (!l[1].isZero() || lmr > 0)
            add(QStringLiteral("CNTY LIBRARY"), lmr, l);
        const auto c1 = triple("DC1Face", "C1Face", "PC1Face");
        if (!c1[1].isZero() || rate(county, "S1MR") != 0)
            add(taxName(county), rate(county, "S1MR"), c1);
    }
    if (bodies.twp) {
        const auto t = triple("DTwp", "Twp", "PTwp");
        if (!t[1].isZero() || rate(district, "TMR") != 0)
            add(gridBodyWord(office.btFlag), rate(district, "TMR"), t);
        const char* const spec[3][3] = {{"DS1Face", "S1Face", "PS1Face"},
                                        {"DS2Face", "S2Face", "PS2Face"},
                                        {"DS3Face", "S3Face", "PS3Face"}};
        for (int i = 0; i < 3; ++i) {
            const auto s = triple(spec[i][0], spec[i][1], spec[i][2]);
            const auto& tax = office.specialTaxes[std::size_t(i)];
            if (!s[1].isZero() || tax.mill != 0)
                add(tax.name, tax.mill, s);
        }
    }
    if (bodies.school) {
        const auto exc = triple("DExcFace", "ExcFace", "PExcFace");
        auto s = triple("DSchool", "School", "PSchool");
        for (int i = 0; i < 3; ++i)
            s[std::size_t(i)] += exc[std::size_t(i)];
        if (!money(bill, "School").isZero() || rate(district, "SMR") != 0)
            add(QStringLiteral("SCHOOL"), rate(district, "SMR"), s);
        const auto s1 = triple("DSch1Face", "Sch1Face", "PSch1Face");
        if (!s1[1].isZero() || rate(district, "S1MR") != 0)
            add(taxName(district), rate(district, "S1MR"), s1);
        if (!exc[1].isZero())
            rows.push_back({QStringLiteral("PROPERTY TAX REDUCTION"), QString(), exc[0], exc[1],
                            exc[2], true});
    }
    return rows;
}

// The boxed line of the copy mark and what follows it; returns the box's bottom.
double boxedLine(ReportSurface& s, double y, double height, const QString& t) {
    const double width = s.TextWidth(t);
    const double oldWidth = s.DrawWidth;
    s.Box(FrameLeft, y, FrameLeft + width + 100, y + height);
    s.DrawWidth = oldWidth;
    at(s, FrameLeft + 50, y + 25, t);
    return y + height;
}

// One copy of the bill with its top at `top`; returns the bottom of its block.
double drawCopy(ReportSurface& s, const REBillOffice& office, const REBillLook& look,
                const BilledBodies& bodies, const QSqlRecord& bill, double top) {
    const QSqlRecord& rates = office.rates;
    const bool late = look.frame == BillingFrame::Late;

    // 1. The title box.
    s.DrawWidth = 5;
    s.Box(FrameLeft, top, FrameRight, top + TitleBoxHeight);
    useFont(s, "ARIAL", 10, true);
    const QString title = (late ? QStringLiteral("SCHOOL REAL ESTATE TAX NOTICE FOR TAX YEAR ")
                                : QStringLiteral("REAL ESTATE TAX NOTICE FOR TAX YEAR ")) +
                          trimmed(rates, "TaxYear") + QStringLiteral(" - ") +
                          office.twpBoro.trimmed();
    centredIn(s, FrameLeft, FrameWidth, top + (TitleBoxHeight - s.TextHeight()) / 2, title);

    // 2. Payable to, with the notice lines of the frame.
    const double blocks = top + BlocksBelowTop;
    useFont(s, "ARIAL", 9);
    const QString collector = CollectorLine(office.twpBoro);
    at(s, FrameLeft, blocks, QStringLiteral("Payable To:"));
    s.CurrentY = blocks + s.TextHeight();
    for (const QString& l :
         {frameText(rates, look.frame, "Line1"), collector, frameText(rates, look.frame, "Line2"),
          frameText(rates, look.frame, "Line3")})
        line(s, 600, l);

    // 3. Office hours, placed by the widest of the early lines.
    double widest = 0;
    for (const QString& l :
         {trimmed(rates, "Line1"), collector, trimmed(rates, "Line2"), trimmed(rates, "Line3")})
        widest = std::max(widest, s.TextWidth(l));
    const double hoursX = std::min(widest + 1000, 4000.0);
    at(s, hoursX, blocks, QStringLiteral("Office Hours:"));
    s.CurrentY = blocks + s.TextHeight();
    for (const char* column : {"Line4", "Line5", "Line6", "Line7"})
        line(s, hoursX + 100, frameText(rates, look.frame, column));

    // 4. County, bill number and bar code at the right.
    rightAt(s, FrameRight, blocks, office.county.trimmed());
    double y = blocks + s.TextHeight();
    useFont(s, "ARIAL", 12, true);
    rightAt(s, FrameRight, y, QStringLiteral("BILL # ") + text(bill, "BillNo"));
    y += s.TextHeight() + 40;
    const QString payload =
        REBillPayload(look.frame, Clock::today(), office.district, text(bill, "Control"));
    const double codeWidth = Code39Width(payload, CodeModule);
    PrintCode39(s, FrameRight - codeWidth, y, payload, CodeHeight, CodeModule);

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
    const QStringList subs[3] = {
        {QStringLiteral("Until ") + shortDate(frameDate(rates, look.frame, "DiscDate"))},
        {QStringLiteral("Between ") + shortDate(frameDate(rates, look.frame, "FaceDate1")),
         QStringLiteral("And ") + shortDate(frameDate(rates, look.frame, "FaceDate2"))},
        {QStringLiteral("Starting ") + shortDate(frameDate(rates, look.frame, "PenDate"))}};
    for (int i = 0; i < 3; ++i) {
        double sy = subY;
        for (const QString& sub : subs[i]) {
            centredIn(s, GridColumns[2 + i], GridColumns[3 + i] - GridColumns[2 + i], sy, sub);
            sy += 170;
        }
    }

    // 6. Mailing date and the rates of the billed bodies.
    useFont(s, "ARIAL", 9);
    at(s, MailingDateX, gridTop,
       QStringLiteral("MAILING DATE: ") + longDate(frameDate(rates, look.frame, "MailDate")));
    y = gridTop + s.TextHeight();
    useFont(s, "ARIAL NARROW", 8);
    at(s, MailingDateX, y, BillRateLine(office, bodies, false));
    y += s.TextHeight();
    at(s, MailingDateX, y, BillRateLine(office, bodies, true));

    // 7, 8. The rows and their totals.
    useFont(s, "ARIAL", 9);
    Money totals[3];
    double rowY = bodyTop + 40;
    for (const GridRow& row : gridRows(office, bodies, bill)) {
        at(s, LabelX, rowY, row.label);
        if (!row.rate.isEmpty())
            rightAt(s, RateRight, rowY, row.rate);
        const Money amounts[3] = {row.discount, row.face, row.penalty};
        const double edges[3] = {DiscountRight, FaceRight, PenaltyRight};
        for (int i = 0; i < 3; ++i) {
            rightAt(s, edges[i], rowY,
                    row.reduction ? amounts[i].format(ReductionPattern) : amount(amounts[i]));
            totals[i] += row.reduction ? -amounts[i] : amounts[i];
        }
        rowY += s.TextHeight();
    }
    const double totalY = std::max(rowY, bodyBottom - s.TextHeight() - 30);
    useFont(s, "ARIAL", 9, true);
    at(s, LabelX, totalY, QStringLiteral("TOTAL TAX DUE"));
    for (int i = 0; i < 3; ++i)
        rightAt(s,
                (i == 0   ? DiscountRight
                 : i == 1 ? FaceRight
                          : PenaltyRight),
                totalY, amount(totals[i]));

    // 9. The parcel at the right of the grid.
    const Money exclusion = money(bill, "HSExclusion") + money(bill, "FSExclusion");
    const bool act1 = bodies.school && exclusion > Money();
    useFont(s, "ARIAL", 10, true);
    at(s, RightColumnX, bodyTop,
       QStringLiteral("Control #: 0") + office.district + QLatin1Char('-') + text(bill, "Control"));
    s.CurrentY = bodyTop + s.TextHeight();
    useFont(s, "ARIAL", 8);
    line(s, RightColumnX, QStringLiteral("Map #: ") + trimmed(bill, "Desc1").left(30));
    line(s, RightColumnX, office.twpBoro.trimmed());
    line(s, RightColumnX, late ? office.schoolName.trimmed() : QString());
    line(s, RightColumnX, trimmed(bill, "Desc2"));
    line(s, RightColumnX, trimmed(bill, "Desc3"));
    const QString book = trimmed(bill, "DeedBook");
    const QString page = trimmed(bill, "DeedPage");
    const QString deed =
        book.isEmpty() && page.isEmpty() ? QString() : book + QLatin1Char('/') + page;
    line(s, RightColumnX,
         QStringLiteral("Acreage: ") + acreageText(text(bill, "Acreage")) + QString(10, u' ') +
             QStringLiteral("Deed Ref: ") + deed);
    line(s, RightColumnX, QString());
    const qint64 land = whole(bill, "AssLand");
    const qint64 impr = whole(bill, "AssImpr");
    auto assessed = [&](const QString& label, const QString& value) {
        const double ly = s.CurrentY;
        at(s, RightColumnX, ly, label);
        rightAt(s, AssessedRight, ly, value);
        s.CurrentY = ly + s.TextHeight();
    };
    assessed(QStringLiteral("ASSESSED LAND -"), FormatNumber(double(land), WholePattern));
    assessed(QStringLiteral("ASSESSED IMPR -"), FormatNumber(double(impr), WholePattern));
    assessed(QStringLiteral("ASSESSED TOTAL -"), FormatNumber(double(land + impr), WholePattern));
    if (act1) {
        assessed(QStringLiteral("ACT 1 EXCLUSION -"), exclusion.format(WholePattern));
        assessed(QStringLiteral("ACT 1 ADJUSTED TOTAL -"),
                 (Money::fromDollars(land + impr) - exclusion).format(WholePattern));
    }

    // 10. The Act 1 exclusions below the grid.
    const double below = bodyBottom + 100;
    useFont(s, "ARIAL", 9);
    if (act1) {
        double ey = below;
        auto exclusionLine = [&](const QString& label, const QString& value) {
            at(s, ExclusionX, ey, label);
            if (!value.isEmpty())
                rightAt(s, PenaltyRight, ey, value);
            ey += s.TextHeight();
        };
        exclusionLine(QStringLiteral("Homestead Exclusion"),
                      money(bill, "HSExclusion").format(WholePattern));
        exclusionLine(QStringLiteral("Farmstead Exclusion"),
                      money(bill, "FSExclusion").format(WholePattern));
        exclusionLine(QString(), QStringLiteral("________"));
        exclusionLine(QStringLiteral("Total Act 1 Exclusion"), exclusion.format(WholePattern));
    }

    // 11. Who pays: a block of fixed height.
    s.CurrentY = below;
    line(s, FrameLeft, QStringLiteral("Taxes are due and payable and "));
    line(s, FrameLeft, QStringLiteral("payment is requested from:"));
    useFont(s, "ARIAL", 9, true);
    const QStringList address = addressLines(bill);
    for (int i = 0; i < 5; ++i)
        line(s, NameX, address.value(i));

    // 12. Until when, and who collects afterwards.
    useFont(s, "ARIAL", 9);
    line(s, FrameLeft,
         QStringLiteral("Pay Tax Collector before ") +
             longDate(frameDate(rates, look.frame, "LastDate")));
    line(s, FrameLeft,
         QStringLiteral("On or after ") + longDate(frameDate(rates, look.frame, "TaxDate")) +
             QStringLiteral(", taxes are payable to Tax Claim Bureau,"));
    line(s, FrameLeft,
         office.countyAddr2.trimmed() + QStringLiteral(", ") + office.countyCity.trimmed() +
             QStringLiteral(", ") + office.countyState.trimmed() + QLatin1Char(' ') +
             office.countyZipCode.trimmed() + QStringLiteral(".  "));

    // 13. Whose copy this is, by where it stands on the sheet.
    double markY = s.CurrentY + 50;
    useFont(s, "ARIAL", 10, true);
    const QString mark = markY < s.Height() / 2 ? QStringLiteral("TAXPAYER OR MORTGAGE HOLDER COPY")
                                                : QStringLiteral("TAX COLLECTOR COPY");
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
    const bool escrow = late ? rates.value(QStringLiteral("LatePrintEscrow")).toInt() != 0
                             : rates.value(QStringLiteral("PrintEscrow")).toInt() != 0;
    if (escrow) {
        useFont(s, "ARIAL", 9, false, true);
        end = boxedLine(
            s, end, 250,
            QStringLiteral("If taxes are escrowed, forward bill to mortgage holder for payment"));
    }
    return end;
}

// The mailing page and its back panel.
void drawMailingPage(ReportSurface& s, const REBillOffice& office, const REBillLook& look,
                     const QSqlRecord& bill, int sequence) {
    const QSqlRecord& rates = office.rates;
    const bool late = look.frame == BillingFrame::Late;
    constexpr double Left = 1250;
    constexpr double Top = 500;
    useFont(s, "ARIAL", 9);
    QString first =
        QStringLiteral("0") + office.district + QLatin1Char('-') + text(bill, "Control") +
        (late ? QStringLiteral(" L RE ") : QStringLiteral(" E RE ")) + text(bill, "BillNo");
    if (look.zipOrder)
        first += QStringLiteral("  ") + QString::number(sequence);
    if (late && look.printHomestead && flag(bill, "HFFlag") == QLatin1String("A"))
        first += QStringLiteral("  H/F");
    s.CurrentY = Top;
    line(s, Left, first);
    line(s, Left, frameText(rates, look.frame, "Line1"));
    line(s, Left, ProperName(office.twpBoro.trimmed()) + QStringLiteral(" Tax Coll."));
    line(s, Left, frameText(rates, look.frame, "Line2"));
    line(s, Left, frameText(rates, look.frame, "Line3"));
    line(s, Left, QString());
    s.DrawWidth = 3;
    const double ruleY = s.CurrentY;
    s.Line(Left, ruleY, Left + 2250, ruleY);
    s.CurrentY = ruleY + 25;
    line(s, Left,
         late ? QStringLiteral("Forwarding Service") : QStringLiteral("Address Service Requested"));

    useFont(s, "ARIAL", 14, true);
    at(s, 3500, Top + 2500, QStringLiteral("*** OFFICIAL REAL ESTATE TAX BILL  ***"));

    useFont(s, "ARIAL", 12);
    s.CurrentY = 4500;
    for (const QString& l : addressLines(bill))
        line(s, 2000, l);
    PrintPostalBars(s, 2500, s.CurrentY + 150, trimmed(bill, "ZipCode"), trimmed(bill, "ZipCode2"));

    s.DrawWidth = 3;
    s.Box(9250, Top, 9250 + 1150, Top + 1000);
    useFont(s, "ARIAL", 9);
    s.CurrentY = Top + 100;
    for (const char* l : {"     Place", "      U.S.", "   Postage", "      Here"})
        line(s, 9260, QLatin1String(l));

    // The back panel, upside down so that it reads when the mailer is folded. Its places are
    // the 600-dot printer's pixels, the whole panel moved down to lie below the fold at 10000.
    auto px = [](double dots) { return dots * 1440.0 / 600.0; };
    constexpr double PanelShift = 700;
    const bool act1 = flag(bill, "HFFlag") == QLatin1String("A");
    s.DrawWidth = 3;
    s.Line(700, 10000, 700 + 10150, 10000);
    if (act1) {
        useFont(s, "ARIAL BLACK", 9, true);
        PrintRotatedText(s, 9, QStringLiteral("ARIAL BLACK"), 180, px(3400), px(5100) + PanelShift,
                         QStringLiteral("NOTICE OF PROPERTY TAX RELIEF"));
        const std::pair<double, double> places[] = {
            {4025, 4900}, {4175, 4800}, {4125, 4700}, {4100, 4600}, {4350, 4500}};
        const char* const notice[] = {
            "Your enclosed tax bill includes a tax reduction for your homestead and/or",
            "farmstead property. As an eligible homestead and/or farmstead property owner,",
            "you have received tax relief through a homestead and/or farmstead exclusion",
            "which has been provided under the Pennsylvania Taxpayer Relief Act, a law",
            "passed by the Pennsylvania General Assembly designed to reduce your property "
            "taxes."};
        for (int i = 0; i < 5; ++i)
            PrintRotatedText(s, 9, QStringLiteral("ARIAL"), 180, px(places[i].first),
                             px(places[i].second) + PanelShift, QLatin1String(notice[i]));
    }
    const PrintFont previous = s.font();
    useFont(s, "ARIAL", 10, false, true);
    s.DrawTurnedText(px(4350), px(4000) + PanelShift, 180,
                     QStringLiteral("If the tax office is not accessible to the disabled, "
                                    "arrangements will be made to accomodate the disabled."));
    s.setFont(previous);
}

// The three installment coupons and, when asked, the guidance under them.
void drawCouponPage(ReportSurface& s, const REBillOffice& office, const REBillLook& look,
                    const QSqlRecord& bill) {
    const QSqlRecord& rates = office.rates;
    constexpr double Top = 700;
    constexpr double RuleHeight = 2600;
    const double third = s.ScaleWidth() / 3;
    s.DrawWidth = 3;
    s.Line(700 + third, Top, 700 + third, Top + RuleHeight);
    s.Line(700 + 2 * third, Top, 700 + 2 * third, Top + RuleHeight);
    const char* const paymentColumns[3] = {"Payment1", "Payment2", "Payment3"};
    const char* const dateColumns[3] = {"Payment1Date", "Payment2Date", "Payment3Date"};
    const char* const penaltyColumns[3] = {"PenPayment1", "PenPayment2", "PenPayment3"};
    const QString name = trimmed(bill, "Name");
    for (int i = 0; i < 3; ++i) {
        const double left = 700 + i * third + (i > 0 ? 400 : 0);
        const double width = third - (i > 0 ? 500 : 100);
        const QDate due = frameDate(rates, look.frame, dateColumns[i]);
        s.CurrentY = Top;
        useFont(s, "ARIAL", 10);
        line(s, left, QStringLiteral("BILL # ") + text(bill, "BillNo"));
        useFont(s, "ARIAL", 10, true);
        line(s, left, QStringLiteral("PAYMENT #%1").arg(i + 1));
        useFont(s, "ARIAL", 10);
        line(s, left, QStringLiteral("Due ") + monthDate(due));
        line(s, left,
             QStringLiteral("Face Amount ") +
                 money(bill, paymentColumns[i]).format(CouponMoneyPattern));
        line(s, left,
             QStringLiteral("Control #: 0") + office.district + QLatin1Char('-') +
                 text(bill, "Control"));
        useFont(s, "ARIAL", 8);
        QString cut = name;
        while (!cut.isEmpty() && s.TextWidth(cut) > width)
            cut.chop(1);
        line(s, left, cut);
        useFont(s, "ARIAL", 9);
        if (i == 0) {
            line(s, left, QStringLiteral("1st installment by ") + longDate(due));
            line(s, left, QStringLiteral("or none accepted by resolution!"));
        } else {
            line(s, left, QStringLiteral("After ") + monthDate(due));
            line(s, left,
                 QStringLiteral("Penalty @ ") +
                     money(bill, penaltyColumns[i]).format(CouponMoneyPattern));
        }
    }
    if (look.printHomestead) {
        useFont(s, "ARIAL", 12);
        double y = Top + RuleHeight + 300;
        for (const char* l :
             {"Please use the upper portion of the bill if you are making a full payment of "
              "taxes.",
              "If you are paying by installments, please use the coupons printed above",
              "and send only exact payments indicated on the coupon to your Tax Collector."}) {
            centredIn(s, 0, s.ScaleWidth(), y, QLatin1String(l));
            y += s.TextHeight();
        }
        s.Line(700, y + 300, 700 + 10150, y + 300);
    }
}

// The last row of a chain table for a bill, or an empty record.
QSqlRecord lastRow(QSqlDatabase db, const char* sql, const QString& billNo) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QLatin1String(sql));
    q.addBindValue(billNo);
    QSqlRecord last;
    if (q.exec())
        while (q.next())
            last = q.record();
    return last;
}

} // namespace

bool REBillOffice::read(QSqlDatabase db, REBillOffice* office, QString* error) {
    REBillOffice o;
    QSqlQuery q(db);
    auto failed = [&] {
        if (error)
            *error = q.lastError().text();
        return false;
    };
    if (!q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")))
        return failed();
    if (q.next()) {
        o.district = TextField(q.value(0));
        o.ward = TextField(q.value(1));
    }
    q.prepare(QStringLiteral(
        "SELECT TwpBoro, BTFlag, SchoolName FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(o.district);
    q.addBindValue(o.ward);
    if (!q.exec())
        return failed();
    if (q.next()) {
        o.twpBoro = TextField(q.value(0)).left(30);
        o.btFlag = TextField(q.value(1)).trimmed().toUpper();
        o.schoolName = TextField(q.value(2));
    }
    if (!q.exec(QStringLiteral("SELECT County, Addr2, City, State, ZipCode FROM tbl_County")))
        return failed();
    if (q.next()) {
        o.county = TextField(q.value(0)).left(32);
        o.countyAddr2 = TextField(q.value(1));
        o.countyCity = TextField(q.value(2));
        o.countyState = TextField(q.value(3));
        o.countyZipCode = TextField(q.value(4));
    }
    if (!q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = '000'")))
        return failed();
    if (q.next())
        o.countyRates = q.record();
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(o.district + o.ward);
    if (!q.exec())
        return failed();
    if (q.next())
        o.rates = q.record();
    q.prepare(QStringLiteral("SELECT Mill, TaxKey, Desc1 FROM Spectax WHERE District = ? AND "
                             "Ward = ? ORDER BY TaxKey"));
    q.addBindValue(o.district);
    q.addBindValue(o.ward);
    if (!q.exec())
        return failed();
    for (auto& tax : o.specialTaxes) {
        if (!q.next())
            break;
        tax.mill = q.value(0).toDouble();
        tax.taxKey = TextField(q.value(1)).left(6);
        tax.name = TextField(q.value(2)).toUpper().left(10).trimmed();
    }
    *office = std::move(o);
    return true;
}

BilledBodies REBillOffice::bodies(BillingFrame frame) const {
    const QString wanted = frame == BillingFrame::Early ? QStringLiteral("E") : QStringLiteral("L");
    return {flag(rates, "BillCounty") == wanted, flag(rates, "BillTwp") == wanted,
            flag(rates, "BillSchool") == wanted};
}

QString BillRateLine(const REBillOffice& office, const BilledBodies& bodies, bool penalty) {
    QStringList parts;
    const char* const schoolColumn = penalty ? "SP" : "SD";
    if (bodies.county)
        parts << QStringLiteral("County @ ") +
                     FormatPercent(rate(office.countyRates, schoolColumn), u"#0.##%");
    if (bodies.twp)
        parts << municipalWord(office.btFlag) + QStringLiteral(" @ ") +
                     FormatPercent(rate(office.rates, penalty ? "TP" : "TD"), u"#0.##%");
    if (bodies.school)
        parts << QStringLiteral("School @ ") +
                     FormatPercent(rate(office.rates, schoolColumn), u"#0.##%");
    if (parts.isEmpty())
        return QString();
    return (penalty ? QStringLiteral("Penalty: ") : QStringLiteral("Discount: ")) +
           parts.join(QStringLiteral(", "));
}

QString CollectorLine(const QString& twpBoro) {
    const QString name = twpBoro.trimmed();
    QString out;
    if (ProperName(name.right(8)) == QLatin1String("Township"))
        out = ProperName(name.left(name.size() - 8).trimmed()) + QStringLiteral(" Twp Tax Coll.");
    else
        out = ProperName(name) + QStringLiteral(" Tax Coll.");
    return out.left(40);
}

QString REBillPayload(BillingFrame frame, const QDate& today, const QString& district,
                      const QString& control) {
    return (frame == BillingFrame::Early ? QStringLiteral("20") : QStringLiteral("30")) +
           today.toString(QStringLiteral("yy")) + district.trimmed() + control.trimmed();
}

void DrawRETaxBill(ReportSurface& s, const REBillOffice& office, const REBillLook& look,
                   const QSqlRecord& bill, int sequence) {
    const BilledBodies bodies = office.bodies(look.frame);
    if (look.printAddress) {
        drawMailingPage(s, office, look, bill, sequence);
        s.NewPage();
    }
    const double end = drawCopy(s, office, look, bodies, bill, FirstCopyTop);
    useFont(s, "ARIAL", 10, true);
    const double tearY = end + TearBelowCopy;
    centredIn(s, 0, s.ScaleWidth(), tearY, QLatin1String(TearLine));
    drawCopy(s, office, look, bodies, bill, tearY + SecondCopyBelowTear);
    if (look.frame == BillingFrame::Late && money(bill, "Payment1") > Money()) {
        s.NewPage();
        drawCouponPage(s, office, look, bill);
    }
    s.NewPage();
}

bool PassesLateBillingTest(QSqlDatabase db, const QSqlRecord& bill) {
    const QString billNo = text(bill, "BillNo");
    const bool added = billNo.startsWith(QLatin1Char('A'));
    if (flag(bill, "CAddrFlag") != QLatin1String("A") && !added)
        return false;
    if (added)
        return true;
    const QSqlRecord address =
        lastRow(db, "SELECT * FROM TCAddress WHERE BillNo = ? ORDER BY BillNo, AddrID", billNo);
    if (address.isEmpty())
        return false;
    if (date(address, "ADate") <= QDate(2006, 6, 15))
        return false;
    const QSqlRecord mailed =
        lastRow(db, "SELECT * FROM TCLateBillAddress WHERE BillNo = ?", billNo);
    if (text(mailed, "Name") != text(address, "Name"))
        return false;
    for (const char* column : {"Addr1", "Addr2", "City", "State", "ZipCode"})
        if (trimmed(mailed, column) != trimmed(address, column))
            return true;
    return false;
}

QString REBillQuery(bool samples, bool zipOrder, bool ascending) {
    if (samples)
        return QStringLiteral("SELECT * FROM TCMaster WHERE BillNo = '    1' ORDER BY BillNo DESC");
    if (!zipOrder)
        return ascending ? QStringLiteral("SELECT * FROM TCMaster ORDER BY BillNo")
                         : QStringLiteral("SELECT * FROM TCMaster ORDER BY BillNo DESC");
    return ascending ? QStringLiteral("SELECT * FROM TCMaster ORDER BY ZipCode, ZipCode2, BillNo")
                     : QStringLiteral("SELECT * FROM TCMaster ORDER BY ZipCode DESC, ZipCode2 "
                                      "DESC, BillNo DESC");
}

REBillRunResult RunRETaxBills(QSqlDatabase db, const REBillOffice& office, const REBillRun& run,
                              ReportSurface& surface, const REBillProgress& progress) {
    using Stop = REBillRunResult::Stop;
    REBillRunResult result;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(REBillQuery(run.samples, run.look.zipOrder, run.ascending))) {
        result.stop = Stop::Error;
        result.error = q.lastError().text();
        return result;
    }
    if (!q.next()) {
        result.stop = Stop::NoRows;
        return result;
    }
    const QString start = run.startBill.trimmed();
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
    const BilledBodies bodies = office.bodies(run.look.frame);
    if (!bodies.any()) {
        result.stop = Stop::NoBodies;
        return result;
    }
    int sequence = 1;
    do {
        if (result.printed >= run.mailers)
            break;
        QSqlRecord bill = q.record();
        if (flag(bill, "AdjFlag") == QLatin1String("A") ||
            flag(bill, "CAddrFlag") == QLatin1String("A")) {
            BillNow now = ReadBillAsItStands(db, Duplicate::RealEstate, text(bill, "BillNo"));
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
        if (run.lateBillingRun && !PassesLateBillingTest(db, bill))
            continue;
        Money faces;
        if (bodies.county)
            faces += money(bill, "County") + money(bill, "Library") + money(bill, "C1Face");
        if (bodies.twp)
            faces += money(bill, "Twp") + money(bill, "S1Face") + money(bill, "S2Face") +
                     money(bill, "S3Face");
        if (bodies.school)
            faces += money(bill, "School") + money(bill, "Sch1Face");
        if (faces.isZero() && !bodies.school)
            continue;
        DrawRETaxBill(surface, office, run.look, bill, sequence);
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
