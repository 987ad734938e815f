#include "desk/yearend/left_for_collection.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/session.h"
#include "core/tax_database.h"

#include <QButtonGroup>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

const char* const ReTitle = "Print Left For Collections Report";

// X positions of the real-estate schedule, in twips.
constexpr double NameX = 1250;
constexpr double DescX = 3150;
constexpr double LabelX = 5150;
constexpr double AmountsLeft = 5650;

QString amount(Money value) {
    return value.format(u"#,###,###.00");
}

QString text(const QSqlRecord& row, const char* column) {
    return TextField(BillField(row, column));
}

QString cityLine(const QSqlRecord& row) {
    QString line = text(row, "City").trimmed() + QLatin1Char(' ') + text(row, "State").trimmed() +
                   QLatin1Char(' ') + text(row, "ZipCode").trimmed();
    const QString zip2 = text(row, "ZipCode2").trimmed();
    if (!zip2.isEmpty())
        line += QLatin1Char('-') + zip2;
    return line.trimmed();
}

void bodyFont(ReportSurface& s, bool bold, double size = 8) {
    s.FontName = QStringLiteral("ARIAL");
    s.FontSize = size;
    s.FontBold = bold;
}

// Lines of at most `width` twips, broken between words.
QStringList wrapped(ReportSurface& s, const QString& paragraph, double width) {
    QStringList lines;
    QString line;
    for (const QString& word : paragraph.split(QLatin1Char(' '))) {
        const QString candidate = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (!line.isEmpty() && s.TextWidth(candidate) > width) {
            lines << line;
            line = word;
        } else {
            line = candidate;
        }
    }
    if (!line.isEmpty())
        lines << line;
    return lines;
}

void at(ReportSurface& s, double x, const QString& value) {
    s.Place(x, value);
}

} // namespace

ReLeftForCollectionReport::ReLeftForCollectionReport(QSqlDatabase db, bool streetLights,
                                                     BillProgress progress)
    : m_db(db), m_streetLights(streetLights), m_progress(std::move(progress)),
      m_office(YearEndOffice::read(db)) {
    if (streetLights)
        m_lines = {3, 4, 5, 6};
    else
        m_lines = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    ReportDefinition& d = m_definition;
    d.caption = QString::fromLatin1(ReTitle);
    d.completeTitle = QString::fromLatin1(ReTitle);
    d.margin = 0; // the schedule breaks its own pages, keeping room for the totals
    d.titles = {QStringLiteral("Return Of Uncollected Taxes - ") + m_office.lookups.county +
                    QStringLiteral(" County"),
                QStringLiteral("For Tax Year ") + m_office.taxYear};
    d.captions = [this](ReportPage& page) {
        ReportSurface& s = page.surface();
        const std::size_t n = m_lines.size();
        const double width = (s.ScaleWidth() - AmountsLeft) / double(n + 1);
        bodyFont(s, true, 9);
        s.CurrentX = 0;
        s.Print(QStringLiteral("Collector: ") + m_office.collector);
        bodyFont(s, true);
        at(s, 0, QStringLiteral("District - Parcel #"));
        at(s, NameX, QStringLiteral("Owner"));
        at(s, DescX, QStringLiteral("Description"));
        at(s, LabelX, QStringLiteral("Millage"));
        for (std::size_t i = 0; i < n; ++i)
            s.WriteRight(AmountsLeft + double(i + 1) * width,
                         m_office.names[std::size_t(m_lines[i])]);
        s.WriteRight(AmountsLeft + double(n + 1) * width, QStringLiteral("Total"));
        s.Print();
        at(s, DescX, QStringLiteral("Of Property"));
        at(s, LabelX, QStringLiteral("Tax/Penalty"));
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t line = std::size_t(m_lines[i]);
            if (!m_office.names[line].isEmpty())
                s.WriteRight(AmountsLeft + double(i + 1) * width,
                             FormatNumber(m_office.rates[line], u"###.00#"));
        }
        s.Print();
    };
    d.body = [this](ReportPage& page) { return draw(page); };
}

bool ReLeftForCollectionReport::draw(ReportPage& page) {
    ReportSurface& s = page.surface();
    const std::size_t n = m_lines.size();
    const double width = (s.ScaleWidth() - AmountsLeft) / double(n + 1);
    auto edge = [&](std::size_t column) { return AmountsLeft + double(column + 1) * width; };
    struct Totals {
        std::array<Money, ReLineCount> face{};
        std::array<Money, ReLineCount> penalty{};
        void add(const ReOpenBill& bill) {
            for (std::size_t i = 0; i < ReLineCount; ++i) {
                face[i] += bill.face[i];
                penalty[i] += bill.penalty[i];
            }
        }
    };
    Totals pageTotals;
    Totals district;

    page.ensureHeader();
    bodyFont(s, false);
    const double lineHeight = s.TextHeight();
    const double entryHeight = 4 * lineHeight + 60;
    const double totalsHeight = 2 * lineHeight + 120;

    auto amounts = [&](const std::array<Money, ReLineCount>& values) {
        Money sum;
        for (std::size_t i = 0; i < n; ++i) {
            const Money v = values[std::size_t(m_lines[i])];
            s.WriteRight(edge(i), amount(v));
            sum += v;
        }
        s.WriteRight(edge(n), amount(sum));
    };
    auto totalLines = [&](const QString& label, const Totals& t) {
        bodyFont(s, true);
        s.CurrentY += 60;
        s.Line(AmountsLeft, s.CurrentY, s.ScaleWidth(), s.CurrentY);
        s.CurrentY += 60;
        at(s, 0, label);
        s.WriteRight(AmountsLeft - 60, QStringLiteral("Total Tax"));
        amounts(t.face);
        s.Print();
        s.WriteRight(AmountsLeft - 60, QStringLiteral("Total Penalty"));
        amounts(t.penalty);
        s.Print();
        bodyFont(s, false);
    };

    m_walk = WalkBills(
        m_db, false,
        m_streetLights
            ? QStringLiteral("SELECT * FROM TCMaster WHERE trim(TPayFlag) = '' ORDER BY BillNo")
            : QStringLiteral("SELECT * FROM TCMaster WHERE (trim(CPayFlag) = '' OR "
                             "trim(TPayFlag) = '' OR trim(SPayFlag) = '' OR (SPayFlag = 'I' AND "
                             "(trim(Pay1Flag) = '' OR trim(Pay2Flag) = '' OR trim(Pay3Flag) = "
                             "''))) ORDER BY BillNo"),
        QString::fromLatin1(IncompleteAdjustmentText), [&](const QSqlRecord& bill, int) {
            if (m_progress)
                m_progress(bill);
            const ReOpenBill open = ReOpenAmounts(bill, m_office.streetLights, m_streetLights);
            if (!open.prints)
                return;
            if (s.CurrentY + entryHeight + totalsHeight > s.ScaleHeight()) {
                totalLines(QStringLiteral("Page Totals"), pageTotals);
                pageTotals = Totals();
                page.newPage();
                bodyFont(s, false);
            }
            const double top = s.CurrentY;
            at(s, 0, ParcelNumber(text(bill, "District"), text(bill, "BillNo")));
            at(s, NameX, FittedText(s, text(bill, "Name"), DescX - NameX - 100));
            at(s, DescX,
               text(bill, "Map3").trimmed() + QLatin1Char('-') + text(bill, "Map4").trimmed() +
                   QLatin1Char('-') + text(bill, "Map5").trimmed());
            at(s, LabelX, QStringLiteral("Tax"));
            amounts(open.face);
            s.Print();
            at(s, NameX, FittedText(s, text(bill, "Addr1"), DescX - NameX - 100));
            at(s, DescX, QStringLiteral("Acres ") + text(bill, "Acreage").trimmed());
            at(s, LabelX, QStringLiteral("Penalty"));
            amounts(open.penalty);
            s.Print();
            at(s, NameX, FittedText(s, text(bill, "Addr2"), DescX - NameX - 100));
            at(s, DescX,
               FittedText(s,
                          QStringLiteral("Book Page ") + text(bill, "DeedBook").trimmed() +
                              QLatin1Char(' ') + text(bill, "DeedPage").trimmed(),
                          LabelX - DescX - 60));
            s.Print();
            at(s, NameX, FittedText(s, cityLine(bill), DescX - NameX - 100));
            const qint64 assessed =
                BillField(bill, "AssLand").toLongLong() + BillField(bill, "AssImpr").toLongLong();
            at(s, DescX,
               QStringLiteral("Assessed Value ") + FormatNumber(double(assessed), u"#,###,###.00"));
            if (open.installmentsOpen)
                at(s, LabelX, QStringLiteral("HS/FS"));
            s.Print();
            s.CurrentY = top + entryHeight;
            pageTotals.add(open);
            district.add(open);
        });
    if (!m_walk.ok)
        return true; // the pages drawn so far print as they are

    totalLines(QStringLiteral("Page Totals"), pageTotals);
    if (s.CurrentY + totalsHeight > s.ScaleHeight()) {
        page.newPage();
        bodyFont(s, false);
    }
    totalLines(QStringLiteral("District Totals"), district);
    if (m_streetLights)
        return true;

    const QString county = m_office.lookups.county;
    const QString word = m_office.lookups.bodyWord;
    const QString nextYear = QString::number(m_office.taxYear.toInt() + 1);
    auto titlePage = [&](const QString& title) {
        s.NewPage();
        s.CurrentY = 0;
        bodyFont(s, true, 14);
        s.WriteCentred(title);
        s.Print();
        s.Print();
    };

    // The totals of taxes returned.
    titlePage(QStringLiteral("TOTALS OF TAXES RETURNED"));
    bodyFont(s, true, 10);
    const double faceEdge = 10000;
    const double penaltyEdge = 13000;
    s.WriteRight(faceEdge, QStringLiteral("TAX AT FACE"));
    s.WriteRight(penaltyEdge, QStringLiteral("TAX AT PENALTY"));
    s.Print();
    s.Print();
    Money grandFace, grandPenalty;
    const std::array<QString, 3> headings{QStringLiteral("COUNTY"), word.toUpper(),
                                          QStringLiteral("SCHOOL")};
    const std::array<QString, 3> totalRows{QStringLiteral("COUNTY TOTAL"),
                                           word + QStringLiteral(" TOTAL"),
                                           QStringLiteral("SCHOOL TOTAL")};
    auto row = [&](double x, const QString& label, Money face, Money penalty) {
        at(s, x, label);
        s.WriteRight(faceEdge, face.format(u"$###,###,###.00"));
        s.WriteRight(penaltyEdge, penalty.format(u"$###,###,###.00"));
        s.Print();
    };
    for (int body = 0; body < 3; ++body) {
        bodyFont(s, true, 10);
        at(s, 1000, headings[std::size_t(body)]);
        s.Print();
        bodyFont(s, false, 10);
        Money face, penalty;
        for (std::size_t i = 0; i < ReLineCount; ++i) {
            if (ReLineBody[i] != body)
                continue;
            face += district.face[i];
            penalty += district.penalty[i];
            if (m_office.names[i].isEmpty() && district.face[i].isZero() &&
                district.penalty[i].isZero())
                continue;
            row(1500, m_office.names[i], district.face[i], district.penalty[i]);
        }
        bodyFont(s, true, 10);
        row(1000, totalRows[std::size_t(body)], face, penalty);
        s.Print();
        grandFace += face;
        grandPenalty += penalty;
    }
    row(1000, QStringLiteral("GRAND TOTAL"), grandFace, grandPenalty);

    // The certification of the collector.
    const double textWidth = s.ScaleWidth() - 1200;
    titlePage(QStringLiteral("CERTIFICATION"));
    bodyFont(s, true, 11);
    s.WriteCentred(QStringLiteral("Return of Taxes for the year ") + m_office.taxYear);
    s.Print();
    s.WriteCentred(
        QStringLiteral("TO THE RESPECTIVE TAXING AUTHORITIES AND THE TAX CLAIM BUREAU OF ") +
        county + QStringLiteral(" County"));
    s.Print();
    s.Print();
    bodyFont(s, false, 10);
    auto lines = [&](const QStringList& texts) {
        for (const QString& line : texts) {
            at(s, 600, line);
            s.Print();
        }
    };
    lines({m_office.collector + QStringLiteral(", duly elected or appointed according to"),
           QStringLiteral("law as Collector of Taxes do hereby certify that taxes, duly levied for "
                          "the year above set forth, as"),
           QStringLiteral("shown in the statements and schedule as given within, on the respective "
                          "tracts or parcels of land"),
           QStringLiteral("situated in the ") + word + QStringLiteral(" of ") +
               m_office.lookups.twpBoro + QStringLiteral(", in the County of") + county +
               QStringLiteral(", as set forth in the Tax Duplicate for the year ") +
               m_office.taxYear + QStringLiteral(", delivered to me by the"),
           QStringLiteral("proper authorities according to law, are due and remain unpaid, that "
                          "demand for payment of said"),
           QStringLiteral("tax having been duly made by me, the owner or reputed owner of said "
                          "property has neglected or"),
           QStringLiteral("refused to make payment thereof, and that the same still remains "
                          "unpaid.")});
    s.Print();
    lines({QStringLiteral("The name of the owner or reputed owner, a description of the property, "
                          "and the amount of the"),
           QStringLiteral("unpaid taxes, theron are set forth in the said statement and schedule "
                          "and the same are returned"),
           QStringLiteral("as unpaid taxes under the provisions of the Act No. 542 of 1947 of the "
                          "State of Pennsylvania in"),
           QStringLiteral("order that a claim may be duly filed for the same in the office of the "
                          "Tax Claim Bureau, and that"),
           QStringLiteral("you may cause that said amounts to be collected and paid over to the "
                          "Treasurer of said") +
               county + QStringLiteral(", or the Property sold as provided by law.")});
    s.Print();
    s.Print();
    const double signX = 8000;
    at(s, 600, QStringLiteral("Date: "));
    at(s, 1300, QStringLiteral("January ______, ") + nextYear);
    at(s, signX, QStringLiteral("Signed: _________________________________"));
    s.Print();
    at(s, signX + 900, QStringLiteral("Tax Collector"));
    s.Print();
    s.Print();
    s.Print();
    at(s, 600, QStringLiteral("Filed in the Office of the Tax Claim Bureau of ") + county);
    s.Print();
    at(s, 600, QStringLiteral("______________________ of ") + nextYear + QStringLiteral("."));
    at(s, signX, QStringLiteral("Signed: _________________________________"));
    s.Print();
    at(s, signX + 900, QStringLiteral("Director"));
    s.Print();

    // The certification of the authorities levying the taxes.
    titlePage(QStringLiteral("CERTIFICATION OF AUTHORITIES LEVYING TAXES"));
    bodyFont(s, false, 10);
    lines(wrapped(s,
                  QStringLiteral("And now, taxes for the year ") + m_office.taxYear +
                      QStringLiteral(" charged upon lands within mentioned and described are "
                                     "hereby certified by the authority which levied the same, to "
                                     "the Tax Claim Bureau of ") +
                      county + QStringLiteral(", for collection or sale."),
                  textWidth));
    const QString rule = QStringLiteral("___________________________________________");
    for (const QString& body :
         {QStringLiteral("For County:  Date ____________________________"),
          QStringLiteral("For ") + word + QStringLiteral(":  Date __________________________"),
          QStringLiteral("For School District:  Date ______________________")}) {
        s.Print();
        s.Print();
        s.Print();
        at(s, 600, body);
        at(s, signX, rule);
        s.Print();
    }
    return true;
}

PcLeftForCollectionReport::PcLeftForCollectionReport(QSqlDatabase db, PcBodies bodies,
                                                     BillProgress progress)
    : m_db(db), m_bodies(bodies), m_progress(std::move(progress)),
      m_office(YearEndOffice::read(db)) {
    ReportDefinition& d = m_definition;
    d.caption = QString::fromLatin1(ReTitle);
    d.completeTitle = QStringLiteral("Print Receipt Report");
    d.margin = 0;
    d.titles = {QStringLiteral("PER CAPITA/OCCUPATION"),
                QStringLiteral("LEFT FOR COLLECTION REPORT FOR TAX YEAR ") + m_office.taxYear};
    d.body = [this](ReportPage& page) { return draw(page); };
}

namespace {

constexpr double PcControlX = 3400;
constexpr double PcValueEdge = 5700;
constexpr double PcLabelX = 5850;
constexpr double PcAmountsLeft = 6600;

} // namespace

bool PcLeftForCollectionReport::draw(ReportPage& page) {
    ReportSurface& s = page.surface();
    const double width = (s.ScaleWidth() - PcAmountsLeft) / double(PcLineCount);
    auto edge = [&](std::size_t column) { return PcAmountsLeft + double(column + 1) * width; };
    const QString shortWord = m_office.lookups.bodyWord == u"Township"  ? QStringLiteral("Twp")
                              : m_office.lookups.bodyWord == u"Borough" ? QStringLiteral("Boro")
                                                                        : QStringLiteral("City");
    const std::array<QString, PcLineCount> captions{
        QStringLiteral("County P/C"),       QStringLiteral("County Occ"),
        shortWord + QStringLiteral(" P/C"), shortWord + QStringLiteral(" Occ"),
        QStringLiteral("School P/C"),       QStringLiteral("School Occ")};
    m_definition.captions = [&](ReportPage& p) {
        ReportSurface& c = p.surface();
        bodyFont(c, true);
        at(c, 0, QStringLiteral("Name and Address"));
        at(c, PcControlX, QStringLiteral("Control Number"));
        c.WriteRight(PcValueEdge, QStringLiteral("PC/Occu"));
        at(c, PcLabelX, QStringLiteral("Unpaid"));
        for (std::size_t i = 0; i < PcLineCount; ++i)
            c.WriteRight(edge(i), captions[i]);
        c.Print();
        c.WriteRight(PcValueEdge, QStringLiteral("Value"));
        at(c, PcLabelX, QStringLiteral("Face"));
        c.Print();
    };

    std::array<bool, 3> bodies{true, true, true};
    QString sql;
    switch (m_bodies) {
    case PcBodies::All:
        sql =
            QStringLiteral("SELECT * FROM PCMaster WHERE (trim(CPayFlag) = '' OR trim(TPayFlag) = "
                           "'' OR trim(SPayFlag) = '') AND CPerCapita + COccupation + TPerCapita "
                           "+ TOccupation + SPerCapita + SOccupation > 0 ORDER BY Name, BillNo");
        break;
    case PcBodies::CountyAndMunicipal:
        bodies = {true, true, false};
        sql = QStringLiteral("SELECT * FROM PCMaster WHERE trim(CPayFlag) = '' OR trim(TPayFlag) = "
                             "'' ORDER BY Name, BillNo");
        break;
    case PcBodies::School:
        bodies = {false, false, true};
        sql = QStringLiteral("SELECT * FROM PCMaster WHERE trim(SPayFlag) = '' ORDER BY Name, "
                             "BillNo");
        break;
    }

    struct Totals {
        std::array<Money, PcLineCount> face{};
        std::array<Money, PcLineCount> penalty{};
    };
    Totals pageTotals, district;
    page.ensureHeader();
    bodyFont(s, false);
    const double lineHeight = s.TextHeight();
    const double entryHeight = 4 * lineHeight + 60;
    const double totalsHeight = 3 * lineHeight + 60;
    auto amounts = [&](const std::array<Money, PcLineCount>& values) {
        for (std::size_t i = 0; i < PcLineCount; ++i)
            s.WriteRight(edge(i), values[i].format(u"###,###,###.00"));
    };
    auto totalLines = [&](const QString& label, const Totals& t) {
        bodyFont(s, true);
        s.CurrentY += 60;
        at(s, PcLabelX, QStringLiteral("Totals"));
        for (std::size_t i = 0; i < PcLineCount; ++i)
            s.WriteRight(edge(i), QStringLiteral("--------------------"));
        s.Print();
        at(s, 0, label);
        at(s, PcLabelX, QStringLiteral("Face:"));
        amounts(t.face);
        s.Print();
        at(s, PcLabelX, QStringLiteral("Penalty:"));
        amounts(t.penalty);
        s.Print();
        bodyFont(s, false);
    };

    m_walk = WalkBills(
        m_db, true, sql,
        QStringLiteral("The system has detected an incomplete adjustment change transaction. "
                       "Please got to the UTILITIES menu and run the VERIFY DATA INTEGRITY option "
                       "to correct this issue."),
        [&](const QSqlRecord& bill, int) {
            if (m_progress)
                m_progress(bill);
            const PcOpenBill open = PcOpenAmounts(bill, bodies);
            if (!open.prints)
                return;
            if (s.CurrentY + entryHeight + totalsHeight > s.ScaleHeight()) {
                totalLines(QStringLiteral("Page Totals: "), pageTotals);
                pageTotals = Totals();
                page.newPage();
                bodyFont(s, false);
            }
            const double top = s.CurrentY;
            at(s, 0, FittedText(s, text(bill, "Name"), PcControlX - 100));
            at(s, PcControlX, text(bill, "Control"));
            bool numeric = false;
            const double value = text(bill, "OccuValue").trimmed().toDouble(&numeric);
            s.WriteRight(PcValueEdge, numeric ? FormatNumber(value, u"###,###,##0")
                                              : text(bill, "OccuValue").trimmed());
            at(s, PcLabelX, QStringLiteral("Face:"));
            amounts(open.face);
            s.Print();
            at(s, 0, FittedText(s, text(bill, "Addr1"), PcControlX - 100));
            at(s, PcLabelX, QStringLiteral("Penalty:"));
            amounts(open.penalty);
            s.Print();
            at(s, 0, FittedText(s, text(bill, "Addr2"), PcControlX - 100));
            s.Print();
            at(s, 0, FittedText(s, cityLine(bill), PcControlX - 100));
            s.Print();
            s.CurrentY = top + entryHeight;
            for (std::size_t i = 0; i < PcLineCount; ++i) {
                pageTotals.face[i] += open.face[i];
                pageTotals.penalty[i] += open.penalty[i];
                district.face[i] += open.face[i];
                district.penalty[i] += open.penalty[i];
            }
        });
    if (!m_walk.ok)
        return true;
    totalLines(QStringLiteral("Page Totals: "), pageTotals);
    if (s.CurrentY + totalsHeight > s.ScaleHeight()) {
        page.newPage();
        bodyFont(s, false);
    }
    totalLines(QStringLiteral("District Totals: "), district);
    return true;
}

frmREPrintLeftForCollectionReport::frmREPrintLeftForCollectionReport(QWidget* parent)
    : frmREPrintLeftForCollectionReport("frmREPrintLeftForCollectionReport", false, parent) {}

frmREPrintLeftForCollectionReport::frmREPrintLeftForCollectionReport(const char* name,
                                                                     bool streetLights,
                                                                     QWidget* parent)
    : YearEndReportForm(name, QString::fromLatin1(ReTitle), false, parent),
      m_streetLights(streetLights) {}

std::unique_ptr<YearEndReport>
frmREPrintLeftForCollectionReport::makeReport(const BillProgress& progress) {
    return std::make_unique<ReLeftForCollectionReport>(session().DbConnection, m_streetLights,
                                                       progress);
}

frmREPrintLeftForCollectionReportStLt::frmREPrintLeftForCollectionReportStLt(QWidget* parent)
    : frmREPrintLeftForCollectionReport("frmREPrintLeftForCollectionReportStLt", true, parent) {}

frmPCPrintLeftForCollectionReport::frmPCPrintLeftForCollectionReport(QWidget* parent)
    : YearEndReportForm("frmPCPrintLeftForCollectionReport", QString::fromLatin1(ReTitle), true,
                        parent) {
    optAll = new QRadioButton(QStringLiteral("All Taxing Bodies"), this);
    optAll->setObjectName(QStringLiteral("optAll"));
    optCountyTwp = new QRadioButton(QStringLiteral("County and Municipal"), this);
    optCountyTwp->setObjectName(QStringLiteral("optCountyTwp"));
    optSchool = new QRadioButton(QStringLiteral("School"), this);
    optSchool->setObjectName(QStringLiteral("optSchool"));
    optAll->setChecked(true);
    auto* group = new QButtonGroup(this);
    group->addButton(optAll);
    group->addButton(optCountyTwp);
    group->addButton(optSchool);
    choices()->addWidget(optAll);
    choices()->addWidget(optCountyTwp);
    choices()->addWidget(optSchool);
}

std::unique_ptr<YearEndReport>
frmPCPrintLeftForCollectionReport::makeReport(const BillProgress& progress) {
    const PcBodies bodies = optCountyTwp->isChecked() ? PcBodies::CountyAndMunicipal
                            : optSchool->isChecked()  ? PcBodies::School
                                                      : PcBodies::All;
    return std::make_unique<PcLeftForCollectionReport>(session().DbConnection, bodies, progress);
}
