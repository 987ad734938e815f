#include "bills/second_notice.h"

#include "bills/barcode.h"
#include "bills/pc_tax_bill.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/mail.h"
#include "reports/report_surface.h"

#include <QLocale>
#include <QSqlError>
#include <QSqlQuery>

using namespace BillPen;
using namespace BillText;

namespace {

const char16_t* const NoticeMoney = u"$#,###,###,##0.00";
constexpr double CodeHeight = 400;
constexpr double CodeModule = 15;
constexpr double CodeBelowTop = 1300;
// The amounts of the list: labels indented, amounts to one right edge.
constexpr double LabelIndent = 720;
constexpr double AmountEdge = 6480;

QSqlRecord millfileRow(QSqlDatabase db, const QString& district, const QString& ward,
                       const QString& year, bool* failed, QString* error) {
    QSqlQuery q(db);
    q.prepare(
        QStringLiteral("SELECT * FROM Millfile WHERE District = ? AND Ward = ? AND TaxYear = ?"));
    q.addBindValue(district);
    q.addBindValue(ward);
    q.addBindValue(year);
    if (!q.exec()) {
        *failed = true;
        if (error)
            *error = q.lastError().text();
        return {};
    }
    return q.next() ? q.record() : QSqlRecord();
}

QString money(Money m) {
    return m.format(NoticeMoney);
}

// "November 16, 2026", in English whatever the machine's language.
QString noticeDate(const QDate& d) {
    return QLocale::c().toString(d, QStringLiteral("MMMM d, yyyy"));
}

// The taxpayer's block: control, name, co-owner and street lines when not blank, city line.
QStringList taxpayerLines(const NoticeOffice& office, const QSqlRecord& bill) {
    QStringList lines{trimmed(bill, "Control"), trimmed(bill, "Name")};
    QStringList more;
    if (office.duplicate == Duplicate::RealEstate)
        more << trimmed(bill, "CoOwner");
    more << trimmed(bill, "Addr1") << trimmed(bill, "Addr2");
    for (const QString& l : more)
        if (!l.isEmpty())
            lines << l;
    lines << cityLine(bill).trimmed();
    return lines;
}

// Prints a text, broken at blanks into lines that keep within `width`.
void wrapped(ReportSurface& s, double x, double width, const QString& text) {
    QString current;
    for (const QString& word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString candidate = current.isEmpty() ? word : current + QLatin1Char(' ') + word;
        if (!current.isEmpty() && s.TextWidth(candidate) > width) {
            line(s, x, current);
            current = word;
        } else {
            current = candidate;
        }
    }
    line(s, x, current);
}

// The listed amounts and their total; returns the total.
Money drawAmounts(ReportSurface& s, double left, const std::vector<NoticeLine>& lines,
                  bool details) {
    Money total;
    for (const NoticeLine& l : lines) {
        const double y = s.CurrentY;
        at(s, left + LabelIndent, y, l.label);
        rightAt(s, left + AmountEdge, y, money(l.amount));
        s.CurrentY = y + s.TextHeight();
        total += l.amount;
        if (details)
            for (const QString& d : l.detail)
                line(s, left + LabelIndent + 360, d);
    }
    return total;
}

void countyNotice(ReportSurface& s, const NoticeOffice& office, const NoticeLook& look,
                  const QSqlRecord& bill, const std::vector<NoticeLine>& lines) {
    const REBillOffice& o = office.office;
    const bool pc = office.duplicate == Duplicate::PerCapita;
    const QString year = office.year.trimmed();
    const QString next = QString::number(year.toInt() + 1);
    const QString checks =
        pc ? QStringLiteral("bounced checks") : QStringLiteral("returned checks");
    const QString line1 = trimmed(o.rates, "Line1");
    const double left = look.left;
    const double width = s.ScaleWidth() - 2 * left;
    auto blankLine = [&] { s.CurrentY += s.TextHeight() / 2; };

    s.CurrentY = look.top;
    useFont(s, "Courier New", 10, true);
    for (const QString& h :
         {o.county.trimmed(), o.schoolName.trimmed() + QStringLiteral(" School District"),
          QStringLiteral("Real Estate - Per Capita - Occupation"),
          QStringLiteral("NOTICE OF DELINQUENTS")}) {
        centredIn(s, left, width, s.CurrentY, h);
        s.CurrentY += s.TextHeight();
    }
    blankLine();
    useFont(s, "Courier New", 9);
    line(s, left, QStringLiteral("Taxpayer's name and address:"));
    for (const QString& l : taxpayerLines(office, bill))
        line(s, left + LabelIndent, l);
    blankLine();
    line(s, left, QStringLiteral("Date: ") + noticeDate(Clock::today()));
    blankLine();
    line(s, left,
         QStringLiteral("The taxes for the year ") + year +
             QStringLiteral(" are as yet unpaid. They are as follows:"));
    blankLine();
    const Money total = drawAmounts(s, left, lines, false);
    blankLine();
    useFont(s, "Courier New", 9, true);
    {
        const double y = s.CurrentY;
        at(s, left + LabelIndent, y, QStringLiteral("Total Amount Due:"));
        rightAt(s, left + AmountEdge, y, money(total));
        s.CurrentY = y + s.TextHeight();
    }
    useFont(s, "Courier New", 9);
    line(s, left + LabelIndent, QStringLiteral("(Total Includes Penalty)"));
    blankLine();
    QStringList paragraph;
    if (look.noPersonalChecks)
        paragraph = {QStringLiteral("Any payment received after December 15, ") + year +
                         QStringLiteral(" must be paid by money order, certified check, or"),
                     QStringLiteral("cash (MUST BE IN THE EXACT AMOUNT). No personal checks "
                                    "will be accepted after this date due to"),
                     QStringLiteral("problems with ") + checks +
                         QStringLiteral(". Payment must be received by the Tax Collector no "
                                        "later than"),
                     QStringLiteral("December 31, ") + year +
                         QStringLiteral(". Taxpayers will be charged for any ") + checks +
                         QStringLiteral(" received at the rate of"),
                     QStringLiteral("$20.00 payable to ") + line1 +
                         QStringLiteral(" plus all fees incurred.")};
    else
        paragraph = {QStringLiteral("Any payment received after December 15, ") + year +
                         QStringLiteral(" must be paid by money order, certified check,"),
                     QStringLiteral("personal check or cash (MUST BE IN THE EXACT AMOUNT). "
                                    "Payment must be received by the"),
                     QStringLiteral("Tax Collector no later than December 31, ") + year +
                         QStringLiteral(". Taxpayers will be charged for any"),
                     checks + QStringLiteral(" received at the rate of $20.00 payable to ") + line1,
                     QStringLiteral("plus all fees incurred.")};
    const QStringList escrow = {
        QStringLiteral("If your Real Estate taxes were paid from an escrow account established "
                       "in connection with"),
        QStringLiteral("your mortgage, you should contact the company managing your escrow.")};
    const QStringList returned = {
        QStringLiteral("After December 31, ") + year +
            QStringLiteral(", taxes will not be payable to the Tax Collector. Delinquent Real "
                           "Estate"),
        QStringLiteral("taxes will be returned to the authority designated by law, which is the "
                       "Kestrelvale County Tax"),
        QStringLiteral("Claim Bureau, with a Bureau cost of $15.00 per taxing district added on "
                       "January 1, ") +
            next + QLatin1Char('.'),
        QStringLiteral("Delinquent Real Estate taxes will bear interest at the rate of 9% from "
                       "the first day of"),
        QStringLiteral("February, ") + next +
            QStringLiteral(". Payment of returned Real Estate taxes shall be made only to the "
                           "Kestrelvale"),
        QStringLiteral("County Tax Claim Bureau, ") + office.bureauAddress +
            QStringLiteral(" after 1/1/") + next + QStringLiteral(". Contact the"),
        QStringLiteral("Bureau at ") + office.bureauPhone +
            QStringLiteral(" prior to making payment.")};
    const QStringList aging = {
        QStringLiteral("If the property for which the taxes have not been paid is your PRIMARY "
                       "residence and if you are"),
        QStringLiteral("at least 60 years of age, contact the Area Agency on Aging at ") +
            office.agingPhones,
        QStringLiteral("for possible assistance.")};
    const QStringList agency = {
        QStringLiteral("Delinquent Occupation and/or Per Capita taxes will be turned over to an "
                       "independent collection"),
        QStringLiteral("agency after January 1, ") + next +
            QStringLiteral(", who has the legal right to add collection charges and attach"),
        QStringLiteral("wages.  Contact ") + office.collectionAgent};
    for (const QStringList& block : {paragraph, escrow, returned, aging, agency}) {
        for (const QString& l : block)
            line(s, left, l);
        blankLine();
    }
    line(s, left, QStringLiteral("Any questions, please call at ") + trimmed(o.rates, "TCPhone"));
}

void arsNotice(ReportSurface& s, const NoticeOffice& office, const NoticeLook& look,
               const QSqlRecord& bill, const std::vector<NoticeLine>& lines) {
    const REBillOffice& o = office.office;
    const bool pc = office.duplicate == Duplicate::PerCapita;
    const double left = look.left;
    const double width = s.ScaleWidth() - 2 * left;
    auto blankLine = [&] { s.CurrentY += s.TextHeight() / 2; };
    s.CurrentY = look.top;
    useFont(s, "Courier New", 12, true);
    centredIn(s, left, width, s.CurrentY,
              pc ? QStringLiteral("PER CAPITA SECOND TAX NOTICE")
                 : QStringLiteral("REAL ESTATE SECOND TAX NOTICE"));
    s.CurrentY += s.TextHeight();
    blankLine();
    useFont(s, "Courier New", 10);
    for (const QString& l : taxpayerLines(office, bill))
        line(s, left, l);
    blankLine();
    line(s, left, QStringLiteral("Date: ") + noticeDate(Clock::today()));
    blankLine();
    useFont(s, "Courier New", 10, true);
    line(s, left, QStringLiteral("THE LAW REQUIRES THAT THE FOLLOWING NOTICE BE SENT TO YOU."));
    blankLine();
    useFont(s, "Courier New", 10);
    const QString address =
        trimmed(o.rates, "Line2") + QLatin1Char(' ') + trimmed(o.rates, "Line3");
    line(
        s, left,
        pc ? QStringLiteral("YOUR PER CAPITA TAXES HAVE NOT BEEN PAID ON TIME AND A PENALTY HAS")
           : QStringLiteral("YOUR REAL ESTATE TAXES HAVE NOT BEEN PAID ON TIME AND A PENALTY HAS"));
    line(s, left,
         QStringLiteral("BEEN ADDED TO THE AMOUNT YOU OWE. IF NOT PAID BY DECEMBER 31, YOUR"));
    line(
        s, left,
        pc ? QStringLiteral("PER CAPITA TAXES WILL BE DELINQUENT. IF YOU HAVE ANY QUESTIONS PLEASE")
           : QStringLiteral(
                 "REAL ESTATE TAXES WILL BE DELINQUENT. IF YOU HAVE ANY QUESTIONS PLEASE"));
    wrapped(s, left, width,
            trimmed(o.rates, "Line1") + QStringLiteral(" BY MAIL AT ") + address +
                QStringLiteral(" OR BY TELEPHONE AT ") + trimmed(o.rates, "TCPhone") +
                QStringLiteral(". IF YOUR REAL ESTATE TAXES ARE TO BE PAID"));
    line(s, left,
         QStringLiteral("FROM AN ESCROW ACCOUNT ESTABLISHED IN CONNECTION WITH YOUR MORTGAGE,"));
    line(s, left, QStringLiteral("YOU SHOULD CONTACT THE COMPANY MANAGING YOUR ESCROW ACCOUNT."));
    blankLine();
    const Money total = drawAmounts(s, left, lines, true);
    blankLine();
    useFont(s, "Courier New", 10, true);
    const double y = s.CurrentY;
    at(s, left + LabelIndent, y, QStringLiteral("TOTAL DUE: "));
    rightAt(s, left + AmountEdge, y, money(total));
    s.CurrentY = y + s.TextHeight();
}

} // namespace

NoticeOffice::Read NoticeOffice::read(QSqlDatabase db, Duplicate duplicate, const QString& year,
                                      NoticeOffice* office, QString* error) {
    NoticeOffice n;
    n.duplicate = duplicate;
    n.year = year.trimmed();
    if (!REBillOffice::read(db, &n.office, error))
        return Read::Error;
    bool failed = false;
    n.office.countyRates =
        millfileRow(db, QStringLiteral("00"), QStringLiteral("0"), n.year, &failed, error);
    if (failed)
        return Read::Error;
    if (n.office.countyRates.isEmpty())
        return Read::NoCountyRates;
    n.office.rates = millfileRow(db, n.office.district, n.office.ward, n.year, &failed, error);
    if (failed)
        return Read::Error;
    n.bureauAddress = ReadSetting(db, QStringLiteral("TaxClaimBureauAddress"));
    n.bureauPhone = ReadSetting(db, QStringLiteral("TaxClaimBureauPhone"));
    n.agingPhones = ReadSetting(db, QStringLiteral("AgingAgencyPhones"));
    n.collectionAgent = ReadSetting(db, QStringLiteral("CollectionAgent"));
    n.assessmentPhone = ReadSetting(db, QStringLiteral("AssessmentOfficePhone"));
    *office = std::move(n);
    return Read::Ok;
}

BilledBodies NoticeOffice::bodies(NoticeFrame frame) const {
    auto listed = [&](const char* column) {
        const QString f = flag(office.rates, column);
        switch (frame) {
        case NoticeFrame::Early:
            return f == QLatin1String("E");
        case NoticeFrame::Late:
            return f == QLatin1String("L");
        case NoticeFrame::Both:
            return f == QLatin1String("E") || f == QLatin1String("L");
        }
        return false;
    };
    return {listed("BillCounty"), listed("BillTwp"), listed("BillSchool")};
}

std::vector<NoticeLine> NoticeLines(const NoticeOffice& office, const BilledBodies& listed,
                                    NoticeForm form, const QSqlRecord& bill) {
    const REBillOffice& o = office.office;
    std::vector<NoticeLine> lines;
    auto add = [&](const QString& label, const char* face, const char* penalty) {
        if (!money(bill, face).isZero())
            lines.push_back({label, money(bill, penalty), {}});
    };
    const QString word = gridBodyWord(o.btFlag);
    if (office.duplicate == Duplicate::PerCapita) {
        if (listed.county && blank(bill, "CPayFlag")) {
            add(QStringLiteral("COUNTY OCC"), "COccupation", "PCOccupation");
            add(QStringLiteral("COUNTY P/C"), "CPerCapita", "PCPerCapita");
        }
        if (listed.twp && blank(bill, "TPayFlag")) {
            add(word + QStringLiteral(" OCC"), "TOccupation", "PTOccupation");
            add(word + QStringLiteral(" P/C"), "TPerCapita", "PTPerCapita");
        }
        if (listed.school && blank(bill, "SPayFlag")) {
            add(QStringLiteral("SCHOOL OCC"), "SOccupation", "PSOccupation");
            add(QStringLiteral("SCHOOL P/C"), "SPerCapita", "PSPerCapita");
        }
        return lines;
    }
    if (listed.county && blank(bill, "CPayFlag")) {
        add(QStringLiteral("COUNTY"), "County", "PCounty");
        add(QStringLiteral("LIBRARY"), "Library", "PLibrary");
        add(text(o.countyRates, "S1TaxName").left(10).trimmed(), "C1Face", "PC1Face");
    }
    if (listed.twp) {
        // District 39 keeps the township and its street lights paid apart.
        const bool district39 = o.district.trimmed() == QLatin1String("39");
        if (district39 ? blank(bill, "TwpPaidFlag") : blank(bill, "TPayFlag")) {
            add(word, "Twp", "PTwp");
            add(o.specialTaxes[0].name, "S1Face", "PS1Face");
            add(o.specialTaxes[1].name, "S2Face", "PS2Face");
        }
        if (district39 && blank(bill, "StLtPaidFlag"))
            add(o.specialTaxes[2].name, "S3Face", "PS3Face");
    }
    if (listed.school) {
        const QString sFlag = flag(bill, "SPayFlag");
        if (sFlag.isEmpty()) {
            add(QStringLiteral("SCHOOL"), "School", "PSchool");
            add(text(o.rates, "S1TaxName").left(10).trimmed(), "Sch1Face", "PSch1Face");
        } else if (sFlag == QLatin1String("I")) {
            NoticeLine school{QStringLiteral("SCHOOL"), Money(), {}};
            bool open = false;
            for (int n = 1; n <= 3; ++n) {
                if (!blank(bill, qPrintable(QStringLiteral("Pay%1Flag").arg(n))))
                    continue;
                open = true;
                const Money face = money(bill, qPrintable(QStringLiteral("Payment%1").arg(n)));
                const Money penalty =
                    money(bill, qPrintable(QStringLiteral("PenPayment%1").arg(n)));
                school.amount += penalty;
                if (form == NoticeForm::ARS)
                    school.detail << QStringLiteral("INSTALLMENT #%1  FACE %2  PENALTY %3")
                                         .arg(n)
                                         .arg(face.format(NoticeMoney),
                                              penalty.format(NoticeMoney));
            }
            if (open)
                lines.push_back(school);
        }
    }
    return lines;
}

QString NoticeClauses(Duplicate duplicate, const BilledBodies& listed) {
    QStringList clauses;
    if (listed.county)
        clauses << QStringLiteral("trim(CPayFlag) = ''");
    if (listed.twp)
        clauses << QStringLiteral("trim(TPayFlag) = ''");
    if (listed.school)
        clauses << (duplicate == Duplicate::RealEstate
                        ? QStringLiteral("trim(SPayFlag) = '' OR (SPayFlag = 'I' AND "
                                         "(trim(Pay1Flag) = '' OR trim(Pay2Flag) = '' OR "
                                         "trim(Pay3Flag) = ''))")
                        : QStringLiteral("trim(SPayFlag) = ''"));
    return clauses.join(QStringLiteral(" OR "));
}

QString NoticePayload(Duplicate duplicate, NoticeFrame frame, const QDate& today,
                      const QString& district, const QString& control) {
    const QChar kind = duplicate == Duplicate::RealEstate ? QLatin1Char('0') : QLatin1Char('1');
    return (frame == NoticeFrame::Late ? QStringLiteral("3") : QStringLiteral("2")) + kind +
           today.toString(QStringLiteral("yy")) + district.trimmed() + control.trimmed();
}

void DrawSecondNotice(ReportSurface& s, const NoticeOffice& office, const NoticeLook& look,
                      const QSqlRecord& bill) {
    const BilledBodies listed = office.bodies(look.frame);
    const bool re = office.duplicate == Duplicate::RealEstate;
    const BillingFrame frame =
        look.frame == NoticeFrame::Late ? BillingFrame::Late : BillingFrame::Early;
    if (look.printAddress) {
        if (re) {
            REBillLook bill_look;
            bill_look.frame = frame;
            bill_look.printAddress = true;
            DrawREMailingPage(s, office.office, bill_look, bill, 1,
                              QStringLiteral("*** OFFICIAL REAL ESTATE SECOND TAX NOTICE  ***"));
        } else {
            PCBillLook bill_look;
            bill_look.frame = frame;
            bill_look.printAddress = true;
            DrawPCMailingPage(s, PCBillOffice{office.office, office.assessmentPhone}, bill_look,
                              bill, 1,
                              QStringLiteral("*** OFFICIAL PER CAPITA SECOND TAX NOTICE  ***"));
        }
        s.NewPage();
    }
    const std::vector<NoticeLine> lines = NoticeLines(office, listed, look.form, bill);
    // The bar code at the right, beside the taxpayer's block, for the scanner at the counter.
    const QString payload = NoticePayload(office.duplicate, look.frame, Clock::today(),
                                          office.office.district, text(bill, "Control"));
    const double codeWidth = Code39Width(payload, CodeModule);
    PrintCode39(s, s.ScaleWidth() - look.left - codeWidth, look.top + CodeBelowTop, payload,
                CodeHeight, CodeModule);
    if (look.form == NoticeForm::County)
        countyNotice(s, office, look, bill, lines);
    else
        arsNotice(s, office, look, bill, lines);
    s.NewPage();
}

BillRunResult RunSecondNotices(QSqlDatabase db, const NoticeOffice& office, const NoticeRun& run,
                               ReportSurface& surface, const BillProgress& progress) {
    using Stop = BillRunResult::Stop;
    BillRunResult result;
    const BilledBodies listed = office.bodies(run.look.frame);
    if (!listed.any()) {
        result.stop = Stop::NoBodies;
        return result;
    }
    const QString clauses = NoticeClauses(office.duplicate, listed);
    BillWalk walk;
    walk.duplicate = office.duplicate;
    walk.mailers = run.mailers;
    walk.bodies = listed;
    if (office.duplicate == Duplicate::RealEstate) {
        walk.query = QStringLiteral("SELECT * FROM TCMaster WHERE (") + clauses +
                     QStringLiteral(") AND BillNo >= '") + QuoteSql(run.startBill) +
                     QStringLiteral("' AND BillNo < 'N' ORDER BY BillNo");
    } else {
        // Per capita notices go in name order, from the start bill's name on.
        QString name;
        if (run.startBill != QLatin1String("    1")) {
            QSqlQuery q(db);
            q.prepare(QStringLiteral("SELECT Name FROM PCMaster WHERE (") + clauses +
                      QStringLiteral(") AND BillNo = ?"));
            q.addBindValue(run.startBill);
            if (!q.exec()) {
                result.stop = Stop::Error;
                result.error = q.lastError().text();
                return result;
            }
            if (!q.next()) {
                result.stop = Stop::StartNotFound;
                return result;
            }
            name = TextField(q.value(0));
        }
        walk.query = QStringLiteral("SELECT * FROM PCMaster WHERE (") + clauses +
                     QStringLiteral(") AND Name >= '") + QuoteSql(name) +
                     QStringLiteral("' AND BillNo < 'N' ORDER BY Name, BillNo");
    }
    const NoticeForm form = run.look.form;
    walk.wanted = [&office, listed, form](const QSqlRecord& bill) {
        // A bill with nothing left to list gets no notice.
        for (const NoticeLine& l : NoticeLines(office, listed, form, bill))
            if (!l.amount.isZero())
                return true;
        return false;
    };
    walk.draw = [&](const QSqlRecord& bill, int) {
        DrawSecondNotice(surface, office, run.look, bill);
    };
    return WalkBills(db, walk, progress);
}
