#include "bills/pc_tax_bill.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/mail.h"
#include "reports/report_surface.h"

using namespace BillText;

namespace {

QString millText(double mills) {
    return FormatNumber(mills, u"###.000") + QStringLiteral(" ML");
}
// The per capita rows show the tax itself, in dollars.
QString perCapitaText(double dollars) {
    return FormatNumber(dollars, u"##0.00");
}

// The rows of the grid in their order, those that print.
std::vector<BillGridRow> pcGridRows(const PCBillOffice& pc, const BilledBodies& bodies,
                                    const QSqlRecord& bill) {
    const REBillOffice& office = pc.office;
    std::vector<BillGridRow> rows;
    auto add = [&](const QString& label, const QString& rateText, double rateValue, const char* d,
                   const char* f, const char* p) {
        const Money face = money(bill, f);
        if (face.isZero() && rateValue == 0)
            return;
        rows.push_back({label, rateText, money(bill, d), face, money(bill, p)});
    };
    const QSqlRecord& county = office.countyRates;
    const QSqlRecord& district = office.rates;
    if (bodies.county) {
        add(QStringLiteral("COUNTY OCC"), millText(rate(county, "SMO")), rate(county, "SMO"),
            "DCOccupation", "COccupation", "PCOccupation");
        add(QStringLiteral("COUNTY"), perCapitaText(rate(county, "SPC")), rate(county, "SPC"),
            "DCPerCapita", "CPerCapita", "PCPerCapita");
    }
    if (bodies.twp) {
        const QString word = gridBodyWord(office.btFlag);
        const QString occupation = office.btFlag == QLatin1String("B") ? QStringLiteral("BORO OCC")
                                   : office.btFlag == QLatin1String("C")
                                       ? QStringLiteral("CITY OCC")
                                       : QStringLiteral("TWP OCC");
        add(occupation, millText(rate(district, "TMO")), rate(district, "TMO"), "DTOccupation",
            "TOccupation", "PTOccupation");
        add(word, perCapitaText(rate(district, "TPC")), rate(district, "TPC"), "DTPerCapita",
            "TPerCapita", "PTPerCapita");
    }
    if (bodies.school) {
        add(QStringLiteral("SCHOOL OCC"), millText(rate(district, "SMO")), rate(district, "SMO"),
            "DSOccupation", "SOccupation", "PSOccupation");
        add(QStringLiteral("SCHOOL"), perCapitaText(rate(district, "SPC")), rate(district, "SPC"),
            "DSPerCapita", "SPerCapita", "PSPerCapita");
    }
    return rows;
}

// Name, street lines (those not blank) and the city line.
QStringList nameBlock(const QString& name, const QSqlRecord& bill) {
    QStringList lines{name};
    for (const QString& l : {trimmed(bill, "Addr1"), trimmed(bill, "Addr2")})
        if (!l.isEmpty())
            lines << l;
    lines << cityLine(bill).trimmed();
    return lines;
}

BillFace pcFace(const PCBillOffice& pc, const PCBillLook& look, const BilledBodies& bodies,
                const QSqlRecord& bill) {
    const REBillOffice& office = pc.office;
    const QSqlRecord& rates = office.rates;
    BillFace f;
    f.title = QStringLiteral("PER CAPITA TAX NOTICE FOR TAX YEAR ") + trimmed(rates, "TaxYear") +
              QStringLiteral(" - ") + office.twpBoro.trimmed();
    f.secondNotice = look.secondNotice;
    FillFaceFromOffice(f, office, look.frame, bill);
    f.payload = PCBillPayload(look.frame, Clock::today(), office.district, text(bill, "Control"));
    f.discountRates =
        rateLine(office.countyRates, rates, office.btFlag, bodies, false, "PCSD", "PCTD", "PCSD");
    f.penaltyRates =
        rateLine(office.countyRates, rates, office.btFlag, bodies, true, "PCSP", "PCTP", "PCSP");
    f.rows = pcGridRows(pc, bodies, bill);
    f.controlLine =
        QStringLiteral("Control #: 0") + office.district + QLatin1Char('-') + text(bill, "Control");
    f.rightLines = {office.twpBoro.trimmed(),
                    office.schoolName.trimmed(),
                    QStringLiteral("You are entitled to receive a written"),
                    QStringLiteral("explanation of your rights with regards to the"),
                    QStringLiteral("audit, appeal, enforcement, refund and collection"),
                    QStringLiteral("of local taxes by calling the Assessment Office"),
                    QStringLiteral("of Kestrelvale County at ") + pc.assessmentPhone +
                        QStringLiteral(" during the"),
                    QStringLiteral("hours of 8:30 A.M. to 4:30 P.M.")};
    f.payableFrom = {QStringLiteral("Taxes are due and payable and payment is"),
                     QStringLiteral("requested from:")};
    f.address = nameBlock(trimmed(bill, "Name").toUpper(), bill);
    const QDate last = frameDate(rates, look.frame, "LastDate");
    const int nextYear = last.isValid() ? last.year() + 1 : trimmed(rates, "TaxYear").toInt() + 1;
    f.dueLines = {QStringLiteral("Pay Tax Collector before ") + longDate(last),
                  QStringLiteral("Delinquent Per Capita Taxes will be turned over"),
                  QStringLiteral("to a collection agency no later than 1/1/") +
                      QString::number(nextYear)};
    f.firstMark = QStringLiteral("TAXPAYER COPY");
    f.secondMark = QStringLiteral("TAX COLLECTOR COPY");
    return f;
}

} // namespace

void DrawPCMailingPage(ReportSurface& s, const PCBillOffice& pc, const PCBillLook& look,
                       const QSqlRecord& bill, int sequence, const QString& headline) {
    const REBillOffice& office = pc.office;
    const QSqlRecord& rates = office.rates;
    const bool late = look.frame == BillingFrame::Late;
    MailingFace m;
    m.firstLine = QStringLiteral("0") + office.district + QLatin1Char('-') + text(bill, "Control") +
                  (late ? QStringLiteral(" L PC ") : QStringLiteral(" E PC ")) +
                  text(bill, "BillNo");
    if (look.zipOrder)
        m.firstLine += QStringLiteral("  ") + QString::number(sequence);
    m.returnLines = {frameText(rates, look.frame, "Line1"),
                     ProperName(office.twpBoro.trimmed()) + QStringLiteral(" Tax Coll."),
                     frameText(rates, look.frame, "Line2"), frameText(rates, look.frame, "Line3")};
    m.service = QStringLiteral("Forwarding Service");
    m.headline = headline;
    m.address = nameBlock(PCMailingName(bill), bill);
    m.zipCode = trimmed(bill, "ZipCode");
    m.zipCode2 = trimmed(bill, "ZipCode2");
    DrawMailingFront(s, m);
}

bool PCBillOffice::read(QSqlDatabase db, PCBillOffice* office, QString* error) {
    PCBillOffice o;
    if (!REBillOffice::read(db, &o.office, error))
        return false;
    o.assessmentPhone = ReadSetting(db, QStringLiteral("AssessmentOfficePhone"));
    *office = std::move(o);
    return true;
}

BilledBodies PCBillBodies(const BilledBodies& billed, bool secondNotice, const QSqlRecord& bill) {
    if (!secondNotice)
        return billed;
    return {billed.county && blank(bill, "CPayFlag"), billed.twp && blank(bill, "TPayFlag"),
            billed.school && blank(bill, "SPayFlag")};
}

QString PCBillPayload(BillingFrame frame, const QDate& today, const QString& district,
                      const QString& control) {
    return (frame == BillingFrame::Early ? QStringLiteral("21") : QStringLiteral("31")) +
           today.toString(QStringLiteral("yy")) + district.trimmed() + control.trimmed();
}

QString PCMailingName(const QSqlRecord& bill) {
    QString name;
    for (const char* column : {"Prefix", "FName", "MName", "LName", "Suffix"}) {
        const QString part = trimmed(bill, column);
        if (!part.isEmpty())
            name += part + QLatin1Char(' ');
    }
    name = name.trimmed();
    return name.isEmpty() ? trimmed(bill, "Name") : name;
}

void DrawPCTaxBill(ReportSurface& s, const PCBillOffice& office, const PCBillLook& look,
                   const QSqlRecord& bill, int sequence) {
    const BilledBodies bodies =
        PCBillBodies(office.office.bodies(look.frame), look.secondNotice, bill);
    if (look.printAddress) {
        DrawPCMailingPage(s, office, look, bill, sequence,
                          QStringLiteral("*** OFFICIAL PER CAPITA TAX BILL  ***"));
        s.NewPage();
    }
    DrawBillSheet(s, pcFace(office, look, bodies, bill));
    s.NewPage();
}

QString PCBillQuery(bool samples, PCBillOrder order, bool ascending, bool secondNotice) {
    if (samples)
        return QStringLiteral("SELECT * FROM PCMaster WHERE BillNo = '    1' ORDER BY BillNo DESC");
    QString sql = QStringLiteral("SELECT * FROM PCMaster");
    if (secondNotice)
        sql += QStringLiteral(" WHERE (CPayFlag = ' ' OR TPayFlag = ' ' OR SPayFlag = ' ')");
    switch (order) {
    case PCBillOrder::BillNo:
        sql += ascending ? QStringLiteral(" ORDER BY BillNo")
                         : QStringLiteral(" ORDER BY BillNo DESC");
        break;
    case PCBillOrder::Name:
        sql += ascending ? QStringLiteral(" ORDER BY Name, BillNo")
                         : QStringLiteral(" ORDER BY Name DESC, BillNo DESC");
        break;
    case PCBillOrder::ZipCode:
        sql += ascending ? QStringLiteral(" ORDER BY ZipCode, ZipCode2, BillNo")
                         : QStringLiteral(" ORDER BY ZipCode DESC, ZipCode2 DESC, BillNo DESC");
        break;
    }
    return sql;
}

BillRunResult RunPCTaxBills(QSqlDatabase db, const PCBillOffice& office, const PCBillRun& run,
                            ReportSurface& surface, const BillProgress& progress) {
    BillWalk walk;
    walk.duplicate = Duplicate::PerCapita;
    walk.query = PCBillQuery(run.samples, run.order, run.ascending, run.look.secondNotice);
    walk.startBill = run.startBill;
    walk.mailers = run.mailers;
    walk.lateBillingRun = run.lateBillingRun;
    walk.bodies = office.office.bodies(run.look.frame);
    const BilledBodies billed = walk.bodies;
    const bool secondNotice = run.look.secondNotice;
    walk.wanted = [billed, secondNotice](const QSqlRecord& bill) {
        const BilledBodies bodies = PCBillBodies(billed, secondNotice, bill);
        Money faces;
        if (bodies.county)
            faces += money(bill, "CPerCapita") + money(bill, "COccupation");
        if (bodies.twp)
            faces += money(bill, "TPerCapita") + money(bill, "TOccupation");
        if (bodies.school)
            faces += money(bill, "SPerCapita") + money(bill, "SOccupation");
        // A school bill prints even at zero, as the real-estate one does.
        return !faces.isZero() || bodies.school;
    };
    walk.draw = [&](const QSqlRecord& bill, int sequence) {
        DrawPCTaxBill(surface, office, run.look, bill, sequence);
    };
    return WalkBills(db, walk, progress);
}
