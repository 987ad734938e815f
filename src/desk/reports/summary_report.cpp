#include "desk/reports/summary_report.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/named_widgets.h"
#include "core/session.h"
#include "core/tax_database.h"

#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>
#include <array>

namespace {

// The right ends of the figures on a 132-column line.
constexpr int CountEnd = 72;
constexpr int FaceEnd = 92;
constexpr int DiscountEnd = 112;
constexpr int PenaltyEnd = 132;

const QString Hyphens = QString(132, QLatin1Char('-'));

struct PageDef {
    QString word;
    TaxingBody body;
    QStringList columns;
};

// Sums of one table under one pay flag: the count and each column's total.
struct FlagSums {
    qint64 count = 0;
    QHash<QString, Money> sums;
    Money of(const QStringList& columns, const QString& prefix = QString()) const {
        Money total;
        for (const QString& c : columns)
            total += sums.value(prefix + c);
        return total;
    }
};
using FlagTable = QHash<QString, FlagSums>; // by flag

struct Installment {
    qint64 count = 0;
    Money face;
    Money penalty;
};

QString countText(qint64 n, QStringView pattern = u"###,##0") {
    return FormatNumber(double(n), pattern);
}

QString money(Money m) {
    return m.format(u"$###,###,##0.00");
}

// A line of the page: a label and the figures it shows, each ending at its column. Counts
// print in "###,##0" unless the line gives its own pattern.
struct Figures {
    Figures(std::optional<qint64> n = {}, const QString& pattern = QString(),
            std::optional<Money> atFace = {}, std::optional<Money> allowed = {},
            std::optional<Money> collected = {})
        : count(n), countPattern(pattern.isEmpty() ? QStringLiteral("###,##0") : pattern),
          face(atFace), discount(allowed), penalty(collected) {}
    std::optional<qint64> count;
    QString countPattern;
    std::optional<Money> face;
    std::optional<Money> discount;
    std::optional<Money> penalty;
};

QString figureLine(const QString& label, const Figures& f) {
    QString line = label;
    if (f.count)
        PadTo(line, CountEnd, countText(*f.count, f.countPattern));
    if (f.face)
        PadTo(line, FaceEnd, money(*f.face));
    if (f.discount)
        PadTo(line, DiscountEnd, money(*f.discount));
    if (f.penalty)
        PadTo(line, PenaltyEnd, money(*f.penalty));
    return line;
}

bool readFlagSums(QSqlDatabase db, const QString& table, const DistributionBody& body,
                  FlagTable* out) {
    QStringList sums;
    QStringList keys;
    for (const QString& c : body.lines) {
        for (const QString& k : {c, DiscountColumn(c), PenaltyColumn(c)}) {
            sums << QStringLiteral("sum(%1)").arg(k);
            keys << k;
        }
    }
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT %1, count(*), %2 FROM %3 WHERE %1 IN ('F', 'D', 'P') "
                               "GROUP BY %1")
                    .arg(body.payFlag, sums.join(QStringLiteral(", ")), table)))
        return false;
    while (q.next()) {
        FlagSums& f = (*out)[q.value(0).toString()];
        f.count = q.value(1).toLongLong();
        for (int i = 0; i < keys.size(); ++i)
            f.sums.insert(keys.at(i), MoneyField(q.value(2 + i)));
    }
    return true;
}

qint64 count(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    return q.exec(sql) && q.next() ? q.value(0).toLongLong() : 0;
}

} // namespace

std::vector<SummaryPage> GatherBalanceSummary(QSqlDatabase db, const ReportTables& tables) {
    const DistributionTables& dist = *tables.dist;
    const bool re = tables.realEstate;
    const TaxNames names = TaxNames::read(db);
    std::vector<PageDef> defs;
    if (re) {
        const QString word = names.bodyWord.toUpper();
        defs = {{QStringLiteral("COUNTY"), TaxingBody::County, {QStringLiteral("County")}},
                {QStringLiteral("LIBRARY"), TaxingBody::County, {QStringLiteral("Library")}},
                {names.countyTaxName.left(10), TaxingBody::County, {QStringLiteral("C1Face")}},
                {word, TaxingBody::Twp, {QStringLiteral("Twp")}},
                {names.municipal.value(0), TaxingBody::Twp, {QStringLiteral("S1Face")}},
                {names.municipal.value(1), TaxingBody::Twp, {QStringLiteral("S2Face")}},
                {names.municipal.value(2), TaxingBody::Twp, {QStringLiteral("S3Face")}},
                {QStringLiteral("SCHOOL"), TaxingBody::School, {QStringLiteral("School")}},
                {names.schoolSpecial, TaxingBody::School, {QStringLiteral("Sch1Face")}}};
    } else {
        for (const DistributionBody& b : dist.bodies)
            defs.push_back({b.body == TaxingBody::County ? QStringLiteral("COUNTY")
                            : b.body == TaxingBody::Twp  ? names.bodyWord.toUpper()
                                                         : QStringLiteral("SCHOOL"),
                            b.body, b.lines});
    }
    const QStringList faces = tables.faceColumns();
    const QString faceSums = [&faces] {
        QStringList s;
        for (const QString& c : faces)
            s << QStringLiteral("sum(%1)").arg(c);
        return s.join(QStringLiteral(", "));
    }();

    // The duplicate as billed: original, non taxable and added bills.
    QHash<QString, FlagSums> master; // "O", "X", "A"
    {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (!q.exec(QStringLiteral("SELECT CASE substr(BillNo, 1, 1) WHEN 'A' THEN 'A' WHEN 'X' "
                                   "THEN 'X' ELSE 'O' END AS Kind, count(*), %1 FROM %2 GROUP "
                                   "BY Kind")
                        .arg(faceSums, tables.master)))
            return {};
        while (q.next()) {
            FlagSums& f = master[q.value(0).toString()];
            f.count = q.value(1).toLongLong();
            for (int i = 0; i < faces.size(); ++i)
                f.sums.insert(faces.at(i), MoneyField(q.value(2 + i)));
        }
    }

    // The adjustment walk: the bill in force (its last image) against the bill as delivered.
    // Their difference is the adjustment, exonerations included; a tax line brought to zero is
    // also an exoneration, once per bill, with the amount it had.
    QHash<QString, Money> adjusted;
    QHash<QString, Money> exonerated;
    QHash<QString, qint64> exoneratedCount;
    {
        QSqlQuery m(db);
        m.setForwardOnly(true);
        QStringList cols;
        for (const QString& c : faces)
            cols << QStringLiteral("m.") + c << QStringLiteral("a.") + c;
        if (!m.exec(QStringLiteral("SELECT %1 FROM %2 a JOIN %3 m ON m.BillNo = a.BillNo WHERE "
                                   "substr(a.BillNo, 1, 1) <> 'X' AND a.AdjNo = (SELECT "
                                   "max(AdjNo) FROM %2 b WHERE b.BillNo = a.BillNo)")
                        .arg(cols.join(QStringLiteral(", ")), tables.adjust, tables.master)))
            return {};
        while (m.next()) {
            for (int i = 0; i < faces.size(); ++i) {
                const Money before = MoneyField(m.value(2 * i));
                const Money after = MoneyField(m.value(2 * i + 1));
                adjusted[faces.at(i)] += after - before;
                if (before != Money() && after == Money()) {
                    exonerated[faces.at(i)] += before;
                    ++exoneratedCount[faces.at(i)];
                }
            }
        }
    }

    // Receipts, voids, distributed receipts and distributed voids, per body and pay flag.
    const std::array<QString, 4> receiptTables{dist.receipts, dist.voidReceipts, dist.distribution,
                                               dist.voidDistribution};
    std::array<std::array<FlagTable, 3>, 4> flags;
    for (std::size_t t = 0; t < 4; ++t)
        for (std::size_t b = 0; b < 3; ++b)
            if (!readFlagSums(db, receiptTables[t], dist.bodies[b], &flags[t][b]))
                return {};
    // Installments of the school (real estate): per table, per installment, per flag.
    std::array<std::array<QHash<QString, Installment>, 3>, 4> installments;
    if (re) {
        for (std::size_t t = 0; t < 4; ++t) {
            for (int n = 1; n <= 3; ++n) {
                QSqlQuery q(db);
                q.setForwardOnly(true);
                if (!q.exec(QStringLiteral("SELECT Pay%1Flag, count(*), sum(Payment%1), "
                                           "sum(PenPayment%1) FROM %2 WHERE Pay%1Flag IN ('F', "
                                           "'P') GROUP BY Pay%1Flag")
                                .arg(n)
                                .arg(receiptTables[t])))
                    return {};
                while (q.next())
                    installments[t][std::size_t(n - 1)].insert(
                        q.value(0).toString(),
                        {q.value(1).toLongLong(), MoneyField(q.value(2)), MoneyField(q.value(3))});
            }
        }
    }

    const QString date = FormatDate(Clock::today());
    std::vector<SummaryPage> pages;
    for (const PageDef& def : defs) {
        const std::size_t b = std::size_t(def.body);
        const DistributionBody& body = dist.bodies[b];
        const bool schoolPage = re && def.columns.first() == u"School";
        // The school's penalty selections sum the discount columns of the school lines.
        const bool penaltyFromDiscount = re && def.body == TaxingBody::School;
        SummaryPage page;
        page.word = def.word;
        QStringList& out = page.lines;
        out << QStringLiteral("     Tax Collector ") +
                   (re ? QStringLiteral("Real Estate") : QStringLiteral("Per Capita")) +
                   QStringLiteral(" Balance Summary Report For ") + def.word;
        out << Hyphens;
        out << date +
                   QStringLiteral("                                                        Number "
                                  "              Taxes           Discounts           Penalties");
        out << (re ? QString(10, QLatin1Char(' ')) : QStringLiteral("Per Capita")) +
                   QStringLiteral("                                                      Of "
                                  "Bills             At Face             Allowed           "
                                  "Collected");
        out << Hyphens;

        // A: the net duplicate.
        SummaryFigures run;
        const FlagSums original = master.value(QStringLiteral("O"));
        const FlagSums nonTaxable = master.value(QStringLiteral("X"));
        const FlagSums added = master.value(QStringLiteral("A"));
        const Money adjustment = [&] {
            Money m;
            for (const QString& c : def.columns)
                m += adjusted.value(c);
            return m;
        }();
        Money exoneratedTotal;
        qint64 exoneratedBills = 0;
        for (const QString& c : def.columns) {
            exoneratedTotal += exonerated.value(c);
            exoneratedBills += exoneratedCount.value(c);
        }
        out << figureLine(
            QStringLiteral("Tax Duplicate As Originally Billed - Taxable                     "),
            {original.count, {}, original.of(def.columns)});
        run.count += original.count;
        run.face += original.of(def.columns);
        out << figureLine(
            QStringLiteral("Tax Duplicate As Originally Billed - Non Taxable               "),
            {nonTaxable.count, QStringLiteral("(###,##0)")});
        out << figureLine(
            QStringLiteral("New Bills Added To Tax Duplicate                                 "),
            {added.count, {}, added.of(def.columns)});
        run.count += added.count;
        run.face += added.of(def.columns);
        out << figureLine(QStringLiteral("Adjustments Made To Tax Duplicate                     "
                                         "                       "),
                          {{}, {}, adjustment + exoneratedTotal});
        run.face += adjustment + exoneratedTotal;
        out << figureLine(
            QStringLiteral("Bills Exonerated From Tax Duplicate                              "),
            {-exoneratedBills, {}, -exoneratedTotal});
        run.count -= exoneratedBills;
        run.face -= exoneratedTotal;
        out << Hyphens;
        out << figureLine(
            QStringLiteral("Current Net Duplicate Total To Be Collected                      "),
            {run.count, {}, run.face});
        page.netDuplicate = run;
        out << QString();

        // The receipt lines of one table: face, discount and penalty, with the school's
        // installments beside them on the school page.
        auto receiptLines = [&](std::size_t t, bool voided, const QString& faceLabel,
                                SummaryFigures& block) {
            const FlagTable& ft = flags[t][b];
            const int sign = voided ? -1 : 1;
            for (const QString& flag :
                 {QStringLiteral("F"), QStringLiteral("D"), QStringLiteral("P")}) {
                const FlagSums s = ft.value(flag);
                qint64 n = s.count;
                Money face = s.of(def.columns);
                Money discount = s.of(def.columns, QStringLiteral("D"));
                Money penalty = penaltyFromDiscount ? s.of(def.columns, QStringLiteral("D"))
                                                    : s.of(def.columns, QStringLiteral("P"));
                if (schoolPage && flag != u"D") {
                    for (std::size_t i = 0; i < 3; ++i) {
                        const Installment inst = installments[t][i].value(flag);
                        n += inst.count;
                        face += inst.face;
                        if (flag == u"P")
                            penalty += inst.penalty;
                    }
                }
                const QString label =
                    flag == u"F"   ? faceLabel
                    : flag == u"D" ? QStringLiteral("                                        "
                                                    "Discount                 ")
                                   : QStringLiteral("                                        "
                                                    "Penalty                  ");
                Figures f{n * sign, QStringLiteral("###,##0"), face};
                if (flag == u"D")
                    f.discount = discount;
                if (flag == u"P")
                    f.penalty = penalty;
                out << figureLine(label, f);
                block.count += n * sign;
                block.face += face;
                if (flag == u"D")
                    block.discount += discount;
                if (flag == u"P")
                    block.penalty += penalty;
            }
        };

        // B: the net receipts.
        SummaryFigures receipts;
        receiptLines(
            0, false,
            QStringLiteral("Receipts Taken                          Face                     "),
            receipts);
        receiptLines(
            1, true,
            QStringLiteral("Voided Receipts                         Face                     "),
            receipts);
        out << Hyphens;
        out << figureLine(
            schoolPage ? QStringLiteral(
                             "Current Net Receipts Taken (Including Installments)              ")
                       : QStringLiteral(
                             "Current Net Receipts Taken                                       "),
            {receipts.count, {}, receipts.face, receipts.discount, receipts.penalty});
        page.netReceipts = receipts;
        out << QString();

        QStringList zeroColumns = body.lines;
        const QString zeroSum = zeroColumns.join(QLatin1Char('+'));
        const qint64 zeroValue =
            count(db, QStringLiteral("SELECT count(*) FROM %1 WHERE %2 <> ' ' AND %3 = 0")
                          .arg(dist.receipts, body.payFlag, zeroSum)) -
            count(db, QStringLiteral("SELECT count(*) FROM %1 WHERE %2 <> ' ' AND %3 = 0")
                          .arg(dist.voidReceipts, body.payFlag, zeroSum));
        out << figureLine(
            QStringLiteral("Exonerated Bills Marked As Paid (Zero Value)                     "),
            {zeroValue});
        out << QString();

        SummaryFigures balance;
        balance.count = page.netDuplicate.count - receipts.count;
        balance.face = page.netDuplicate.face - receipts.face;
        if (schoolPage) {
            const auto& r = flags[0][b];
            const auto& v = flags[1][b];
            qint64 whole = 0;
            for (const QString& flag :
                 {QStringLiteral("F"), QStringLiteral("D"), QStringLiteral("P")})
                whole += r.value(flag).count - v.value(flag).count;
            whole += count(db, QStringLiteral("SELECT count(*) FROM %1 WHERE Pay1Flag <> ' ' AND "
                                              "Pay2Flag <> ' ' AND Pay3Flag <> ' '")
                                   .arg(tables.master));
            out << figureLine(
                QStringLiteral("Current Net Bills Paid In Full                                   "),
                {whole});
            out << figureLine(
                QStringLiteral("Installment Bills With Zero Value                                "),
                {count(db, QStringLiteral("SELECT count(*) FROM %1 WHERE SPayFlag = ' ' AND "
                                          "School + Sch1Face = 0 AND AdjFlag <> 'A' AND BillNo < "
                                          "'A'")
                               .arg(tables.master))});
            out << QStringLiteral(
                "                                                                 -------");
            balance.count =
                page.netDuplicate.count -
                count(db, QStringLiteral("SELECT count(*) FROM %1 WHERE (SPayFlag = 'D' OR "
                                         "SPayFlag = 'F' OR SPayFlag = 'P') OR (SPayFlag = 'I' "
                                         "AND (Pay1Flag <> ' ' AND Pay2Flag <> ' ' AND Pay3Flag "
                                         "<> ' '))")
                              .arg(tables.master));
        }
        // C: still to collect, at face.
        out << figureLine(
            QStringLiteral("Current Duplicate Balance Yet To Be Collected                    "),
            {balance.count, {}, balance.face});
        page.balance = balance;
        out << QString();

        // D: the net disbursed.
        SummaryFigures disbursed;
        receiptLines(
            2, false,
            QStringLiteral("Receipts Reported As Distributed        Face                     "),
            disbursed);
        receiptLines(
            3, true,
            QStringLiteral("Voided Receipts Reported As Distributed Face                     "),
            disbursed);
        out << Hyphens;
        out << figureLine(
            QStringLiteral("Current Net Receipts Disbursed                                   "),
            {disbursed.count, {}, disbursed.face, disbursed.discount, disbursed.penalty});
        page.netDisbursed = disbursed;
        out << QString();
        // E: still to pay over.
        page.yetToDisburse.count = receipts.count - disbursed.count;
        page.yetToDisburse.face = receipts.face - disbursed.face;
        out << figureLine(
            QStringLiteral("Receipts Yet To Be Disbursed                                     "),
            {page.yetToDisburse.count, {}, page.yetToDisburse.face});
        pages.push_back(std::move(page));
    }
    return pages;
}

ReportDefinition BalanceSummaryReport(QSqlDatabase db, const ReportTables& tables) {
    ReportDefinition d;
    d.caption = tables.realEstate ? QStringLiteral("Print Real Estate Summary Report")
                                  : QStringLiteral("Print Per Capita Summary Report");
    d.completeTitle = QStringLiteral("Print Receipt Report");
    d.margin = 0;
    d.print = d.preview = {PaperSize::Letter, PageOrientation::Landscape};
    d.pleaseWait = "   ***  Searching  ***   ***  Please Wait  ***";
    d.body = [db, &tables](ReportPage& page) {
        const std::vector<SummaryPage> pages = GatherBalanceSummary(db, tables);
        const ReportLookups& lookups = page.lookups();
        ReportSurface& s = page.surface();
        for (const SummaryPage& p : pages) {
            page.newPage();
            s.FontName = QStringLiteral("Courier New");
            s.FontSize = 9;
            s.FontBold = false;
            for (int i = 0; i < p.lines.size(); ++i) {
                QString line = p.lines.at(i);
                if (i == 0)
                    line += QLatin1Char(' ') + lookups.district + lookups.ward + QLatin1Char(' ') +
                            lookups.twpBoro + QStringLiteral("                       Page: ") +
                            QString::number(page.pageNumber());
                s.CurrentX = 0;
                s.Print(line);
            }
            s.FontName = QStringLiteral("ARIAL");
        }
        return !pages.empty();
    };
    return d;
}

SummaryReportForm::SummaryReportForm(const ReportTables& tables, const QString& name,
                                     QWidget* parent)
    : QWidget(parent), m_tables(tables) {
    setObjectName(name);
    setWindowTitle(tables.realEstate ? QStringLiteral("Print Real Estate Summary Report")
                                     : QStringLiteral("Print Per Capita Summary Report"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        new QLabel(QStringLiteral("The summary covers the whole year as it stands now."), this));
    auto* row = new QHBoxLayout;
    buttons = MakeReportButtons(this, row);
    layout->addLayout(row);
    connect(buttons.cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(buttons.cmdPrintPreview, &QPushButton::clicked, this,
            [this] { cmdPrintPreview_Click(); });
    session().LastScreenName = objectName();
}

void SummaryReportForm::cmdPrint_Click() {
    PrintReport(BalanceSummaryReport(session().DbConnection, m_tables));
}

void SummaryReportForm::cmdPrintPreview_Click() {
    QPointer<SummaryReportForm> self(this);
    PreviewReport(BalanceSummaryReport(session().DbConnection, m_tables), this, [self] {
        if (self)
            self->cmdPrint_Click();
    });
}

frmREPrintSummaryReport::frmREPrintSummaryReport(QWidget* parent)
    : SummaryReportForm(RealEstateReportTables(), QStringLiteral("frmREPrintSummaryReport"),
                        parent) {}

frmPCPrintSummaryReport::frmPCPrintSummaryReport(QWidget* parent)
    : SummaryReportForm(PerCapitaReportTables(), QStringLiteral("frmPCPrintSummaryReport"),
                        parent) {}
