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

using namespace BillPen;
using namespace BillText;

const char16_t* const WholePattern = u"###########0";
const char16_t* const CouponMoneyPattern = u"$###,###,###.00";

// The county row's special tax name, and the school's, in 10 characters.
QString taxName(const QSqlRecord& rates) {
    return text(rates, "S1TaxName").left(10).trimmed();
}

QString rateText(double mills) {
    return FormatNumber(mills, u"###.000") + QStringLiteral(" ML");
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

// The rows of the grid in their order, those that print.
std::vector<BillGridRow> gridRows(const REBillOffice& office, const BilledBodies& bodies,
                                  const QSqlRecord& bill) {
    std::vector<BillGridRow> rows;
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
        const char* const specialColumns[3][3] = {{"DS1Face", "S1Face", "PS1Face"},
                                                  {"DS2Face", "S2Face", "PS2Face"},
                                                  {"DS3Face", "S3Face", "PS3Face"}};
        for (int i = 0; i < 3; ++i) {
            const auto s = triple(specialColumns[i][0], specialColumns[i][1], specialColumns[i][2]);
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

// What one copy of the real-estate bill prints.
BillFace reFace(const REBillOffice& office, const REBillLook& look, const BilledBodies& bodies,
                const QSqlRecord& bill) {
    const QSqlRecord& rates = office.rates;
    const bool late = look.frame == BillingFrame::Late;
    BillFace f;
    f.title = (late ? QStringLiteral("SCHOOL REAL ESTATE TAX NOTICE FOR TAX YEAR ")
                    : QStringLiteral("REAL ESTATE TAX NOTICE FOR TAX YEAR ")) +
              trimmed(rates, "TaxYear") + QStringLiteral(" - ") + office.twpBoro.trimmed();
    FillFaceFromOffice(f, office, look.frame, bill);
    f.payload = REBillPayload(look.frame, Clock::today(), office.district, text(bill, "Control"));
    f.discountRates = BillRateLine(office, bodies, false);
    f.penaltyRates = BillRateLine(office, bodies, true);
    f.rows = gridRows(office, bodies, bill);

    // The parcel at the right of the grid.
    const Money exclusion = money(bill, "HSExclusion") + money(bill, "FSExclusion");
    const bool act1 = bodies.school && exclusion > Money();
    f.controlLine =
        QStringLiteral("Control #: 0") + office.district + QLatin1Char('-') + text(bill, "Control");
    const QString book = trimmed(bill, "DeedBook");
    const QString page = trimmed(bill, "DeedPage");
    const QString deed =
        book.isEmpty() && page.isEmpty() ? QString() : book + QLatin1Char('/') + page;
    f.rightLines = {QStringLiteral("Map #: ") + trimmed(bill, "Desc1").left(30),
                    office.twpBoro.trimmed(),
                    late ? office.schoolName.trimmed() : QString(),
                    trimmed(bill, "Desc2"),
                    trimmed(bill, "Desc3"),
                    QStringLiteral("Acreage: ") + acreageText(text(bill, "Acreage")) +
                        QString(10, u' ') + QStringLiteral("Deed Ref: ") + deed,
                    QString()};
    const qint64 land = whole(bill, "AssLand");
    const qint64 impr = whole(bill, "AssImpr");
    f.figures = {
        {QStringLiteral("ASSESSED LAND -"), FormatNumber(double(land), WholePattern)},
        {QStringLiteral("ASSESSED IMPR -"), FormatNumber(double(impr), WholePattern)},
        {QStringLiteral("ASSESSED TOTAL -"), FormatNumber(double(land + impr), WholePattern)}};
    if (act1) {
        f.figures.push_back({QStringLiteral("ACT 1 EXCLUSION -"), exclusion.format(WholePattern)});
        f.figures.push_back({QStringLiteral("ACT 1 ADJUSTED TOTAL -"),
                             (Money::fromDollars(land + impr) - exclusion).format(WholePattern)});
        f.belowGrid = {{QStringLiteral("Homestead Exclusion"),
                        money(bill, "HSExclusion").format(WholePattern)},
                       {QStringLiteral("Farmstead Exclusion"),
                        money(bill, "FSExclusion").format(WholePattern)},
                       {QString(), QStringLiteral("________")},
                       {QStringLiteral("Total Act 1 Exclusion"), exclusion.format(WholePattern)}};
    }
    f.payableFrom = {QStringLiteral("Taxes are due and payable and "),
                     QStringLiteral("payment is requested from:")};
    f.address = addressLines(bill);
    f.dueLines = {
        QStringLiteral("Pay Tax Collector before ") +
            longDate(frameDate(rates, look.frame, "LastDate")),
        QStringLiteral("On or after ") + longDate(frameDate(rates, look.frame, "TaxDate")) +
            QStringLiteral(", taxes are payable to Tax Claim Bureau,"),
        office.countyAddr2.trimmed() + QStringLiteral(", ") + office.countyCity.trimmed() +
            QStringLiteral(", ") + office.countyState.trimmed() + QLatin1Char(' ') +
            office.countyZipCode.trimmed() + QStringLiteral(".  ")};
    f.firstMark = QStringLiteral("TAXPAYER OR MORTGAGE HOLDER COPY");
    f.secondMark = QStringLiteral("TAX COLLECTOR COPY");
    f.escrow = late ? rates.value(QStringLiteral("LatePrintEscrow")).toInt() != 0
                    : rates.value(QStringLiteral("PrintEscrow")).toInt() != 0;
    return f;
}

} // namespace

void DrawREMailingPage(ReportSurface& s, const REBillOffice& office, const REBillLook& look,
                       const QSqlRecord& bill, int sequence, const QString& headline) {
    const QSqlRecord& rates = office.rates;
    const bool late = look.frame == BillingFrame::Late;
    MailingFace m;
    m.firstLine = QStringLiteral("0") + office.district + QLatin1Char('-') + text(bill, "Control") +
                  (late ? QStringLiteral(" L RE ") : QStringLiteral(" E RE ")) +
                  text(bill, "BillNo");
    if (look.zipOrder)
        m.firstLine += QStringLiteral("  ") + QString::number(sequence);
    if (late && look.printHomestead && flag(bill, "HFFlag") == QLatin1String("A"))
        m.firstLine += QStringLiteral("  H/F");
    m.returnLines = {frameText(rates, look.frame, "Line1"),
                     ProperName(office.twpBoro.trimmed()) + QStringLiteral(" Tax Coll."),
                     frameText(rates, look.frame, "Line2"), frameText(rates, look.frame, "Line3")};
    m.service =
        late ? QStringLiteral("Forwarding Service") : QStringLiteral("Address Service Requested");
    m.headline = headline;
    m.address = addressLines(bill);
    m.zipCode = trimmed(bill, "ZipCode");
    m.zipCode2 = trimmed(bill, "ZipCode2");
    DrawMailingFront(s, m);

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

namespace {

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
    return rateLine(office.countyRates, office.rates, office.btFlag, bodies, penalty,
                    penalty ? "SP" : "SD", penalty ? "TP" : "TD", penalty ? "SP" : "SD");
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

void FillFaceFromOffice(BillFace& face, const REBillOffice& office, BillingFrame frame,
                        const QSqlRecord& bill) {
    const QSqlRecord& rates = office.rates;
    const QString collector = CollectorLine(office.twpBoro);
    face.payableLines = {frameText(rates, frame, "Line1"), collector,
                         frameText(rates, frame, "Line2"), frameText(rates, frame, "Line3")};
    face.measuredLines = {trimmed(rates, "Line1"), collector, trimmed(rates, "Line2"),
                          trimmed(rates, "Line3")};
    for (const char* column : {"Line4", "Line5", "Line6", "Line7"})
        face.hoursLines << frameText(rates, frame, column);
    face.county = office.county;
    face.billNo = text(bill, "BillNo");
    face.gridDates[0] = {QStringLiteral("Until ") + shortDate(frameDate(rates, frame, "DiscDate"))};
    face.gridDates[1] = {QStringLiteral("Between ") +
                             shortDate(frameDate(rates, frame, "FaceDate1")),
                         QStringLiteral("And ") + shortDate(frameDate(rates, frame, "FaceDate2"))};
    face.gridDates[2] = {QStringLiteral("Starting ") +
                         shortDate(frameDate(rates, frame, "PenDate"))};
    face.mailingDate = longDate(frameDate(rates, frame, "MailDate"));
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
        DrawREMailingPage(s, office, look, bill, sequence,
                          QStringLiteral("*** OFFICIAL REAL ESTATE TAX BILL  ***"));
        s.NewPage();
    }
    DrawBillSheet(s, reFace(office, look, bodies, bill));
    if (look.frame == BillingFrame::Late && money(bill, "Payment1") > Money()) {
        s.NewPage();
        drawCouponPage(s, office, look, bill);
    }
    s.NewPage();
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
    BillWalk walk;
    walk.duplicate = Duplicate::RealEstate;
    walk.query = REBillQuery(run.samples, run.look.zipOrder, run.ascending);
    walk.startBill = run.startBill;
    walk.mailers = run.mailers;
    walk.lateBillingRun = run.lateBillingRun;
    walk.bodies = office.bodies(run.look.frame);
    const BilledBodies bodies = walk.bodies;
    walk.wanted = [bodies](const QSqlRecord& bill) {
        Money faces;
        if (bodies.county)
            faces += money(bill, "County") + money(bill, "Library") + money(bill, "C1Face");
        if (bodies.twp)
            faces += money(bill, "Twp") + money(bill, "S1Face") + money(bill, "S2Face") +
                     money(bill, "S3Face");
        if (bodies.school)
            faces += money(bill, "School") + money(bill, "Sch1Face");
        // A school bill prints even at zero.
        return !faces.isZero() || bodies.school;
    };
    walk.draw = [&](const QSqlRecord& bill, int sequence) {
        DrawRETaxBill(surface, office, run.look, bill, sequence);
    };
    return WalkBills(db, walk, progress);
}
