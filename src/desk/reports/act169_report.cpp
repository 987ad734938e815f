#include "desk/reports/act169_report.h"

#include "desk/reports/change_reports.h"

#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "distribution/distribution_report_forms.h"
#include "reports/print_output.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>
#include <memory>

namespace {

const char* const ReportTitle = "Print Act 169 Report";
const QStringList MonthNames{"January", "February", "March",     "April",   "May",      "June",
                             "July",    "August",   "September", "October", "November", "December"};

// X positions of page one: the line number, its caption, the right end of the last column.
constexpr double NumberX = 0;
constexpr double CaptionX = 500;
constexpr double LastEdge = 11400;
constexpr double ColumnWidth = 1500;

const char* const Amount = "$###,###,###,##0.00";
const char* const LessAmount = "-$###,###,###,##0.00";

// Sums of the columns over a statement's rows (no rows: zero).
std::vector<Money> sums(QSqlDatabase db, const QString& from, const QStringList& columns,
                        const QVariantList& values) {
    QStringList s;
    for (const QString& c : columns)
        s << QStringLiteral("sum(%1)").arg(c);
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT count(*), ") + s.join(QStringLiteral(", ")) + from);
    for (const QVariant& v : values)
        q.addBindValue(v);
    std::vector<Money> out(std::size_t(columns.size()));
    if (q.exec() && q.next() && q.value(0).toLongLong() > 0)
        for (int i = 0; i < columns.size(); ++i)
            out[std::size_t(i)] = MoneyField(q.value(i + 1));
    return out;
}

QStringList prefixed(const QString& prefix, const QStringList& columns) {
    QStringList out;
    for (const QString& c : columns)
        out << prefix + c;
    return out;
}

// The figures of one duplicate's columns of the report (all of one taxing body).
void gatherHalf(QSqlDatabase db, const ReportTables& tables, TaxingBody bodyKind,
                const QString& taxYear, Act169Figures& f, std::vector<Act169Column*> cols) {
    if (cols.empty())
        return;
    const DistributionBody& body = tables.body(bodyKind);
    QStringList faces;
    for (const Act169Column* c : cols)
        faces << c->face;
    const QString first = IsoDate(f.firstDay);
    const QString last = IsoDate(f.lastDay);
    auto addTo = [&cols](Money Act169Column::*field, const std::vector<Money>& v, int sign) {
        for (std::size_t i = 0; i < cols.size(); ++i)
            cols[i]->*field += sign > 0 ? v[i] : -v[i];
    };

    // A. Before the month.
    addTo(&Act169Column::original,
          sums(db,
               QStringLiteral(" FROM %1 WHERE substr(BillNo, 1, 1) <> 'A' AND substr(BillNo, 1, "
                              "1) <> 'X'")
                   .arg(tables.master),
               faces, {}),
          1);
    const QString added = QStringLiteral(" FROM %1 m INNER JOIN %2 a ON m.Control = a.Control "
                                         "WHERE substr(m.BillNo, 1, 1) = 'A' AND ")
                              .arg(tables.master, tables.adds);
    addTo(&Act169Column::addedBefore,
          sums(db, added + QStringLiteral("a.AdjDate < ?"), prefixed("m.", faces), {first}), 1);

    // The group of the body: a change in one of its columns moves them all.
    const QStringList group = body.lines;
    QStringList wanted = group;
    for (const QString& c : faces)
        if (!wanted.contains(c))
            wanted << c;
    auto readRow = [&wanted](const QSqlQuery& q, int at) {
        QHash<QString, Money> row;
        for (int i = 0; i < wanted.size(); ++i)
            row.insert(wanted.at(i), MoneyField(q.value(at + i)));
        return row;
    };
    {
        // Every adjustment before the month, each against the image before it.
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.prepare(QStringLiteral("SELECT a.BillNo, %1, %2 FROM %3 a JOIN %4 m ON m.BillNo = "
                                 "a.BillNo WHERE a.AdjFlag <> 'X' AND a.AdjDate < ? ORDER BY "
                                 "a.BillNo, a.AdjNo")
                      .arg(prefixed("a.", wanted).join(", "), prefixed("m.", wanted).join(", "),
                           tables.adjust, tables.master));
        q.addBindValue(first);
        if (q.exec()) {
            QString bill;
            QHash<QString, Money> before;
            while (q.next()) {
                const QString b = q.value(0).toString();
                if (b != bill) {
                    bill = b;
                    before = readRow(q, 1 + int(wanted.size()));
                }
                const QHash<QString, Money> row = readRow(q, 1);
                for (Act169Column* c : cols)
                    c->adjustedBefore += row.value(c->face) - before.value(c->face);
                before = row;
            }
        }
    }

    const QString disbType = tables.dist->disbType;
    auto distributionSums = [&](const QString& table, int number, const QStringList& columns,
                                const QString& condition) {
        return sums(
            db,
            QStringLiteral(" FROM %1 WHERE CTS = ? AND %2 = ?%3")
                .arg(table, body.keyColumn, condition),
            columns,
            {body.cts, taxYear + QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'))});
    };
    {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT DisbNum FROM tbl_DisbDates WHERE DisbDate < ? AND "
                                 "DisbType = ? AND CTS = ? ORDER BY DisbNum"));
        q.addBindValue(first);
        q.addBindValue(disbType);
        q.addBindValue(body.cts);
        if (q.exec())
            while (q.next()) {
                const int n = q.value(0).toInt();
                addTo(&Act169Column::distributedBefore,
                      distributionSums(tables.dist->distribution, n, faces, QString()), 1);
                addTo(&Act169Column::distributedBefore,
                      distributionSums(tables.dist->voidDistribution, n, faces, QString()), 1);
            }
    }

    // B. The month.
    addTo(&Act169Column::additions,
          sums(db, added + QStringLiteral("a.AdjDate >= ? AND a.AdjDate <= ?"),
               prefixed("m.", faces), {first, last}),
          1);
    {
        // Each bill adjusted in the month once: the image before its first adjustment of the
        // month against its last image of the month.
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.prepare(QStringLiteral("SELECT BillNo, AdjNo FROM %1 WHERE AdjFlag <> 'X' AND AdjDate "
                                 ">= ? AND AdjDate <= ? ORDER BY BillNo, AdjNo")
                      .arg(tables.adjust));
        q.addBindValue(first);
        q.addBindValue(last);
        std::vector<std::pair<QString, std::pair<int, int>>> bills;
        if (q.exec())
            while (q.next()) {
                const QString b = q.value(0).toString();
                const int n = q.value(1).toInt();
                if (bills.empty() || bills.back().first != b)
                    bills.push_back({b, {n, n}});
                else
                    bills.back().second.second = n;
            }
        auto image = [&](const QString& sql, const QVariantList& values) {
            QSqlQuery r(db);
            r.prepare(sql);
            for (const QVariant& v : values)
                r.addBindValue(v);
            if (r.exec() && r.next())
                return std::optional(readRow(r, 0));
            return std::optional<QHash<QString, Money>>();
        };
        const QString list = wanted.join(", ");
        for (const auto& [bill, range] : bills) {
            std::optional<QHash<QString, Money>> before =
                image(QStringLiteral("SELECT %1 FROM %2 WHERE BillNo = ? AND AdjNo < ? ORDER BY "
                                     "AdjNo DESC LIMIT 1")
                          .arg(list, tables.adjust),
                      {bill, range.first});
            if (!before)
                before = image(
                    QStringLiteral("SELECT %1 FROM %2 WHERE BillNo = ?").arg(list, tables.master),
                    {bill});
            const std::optional<QHash<QString, Money>> after =
                image(QStringLiteral("SELECT %1 FROM %2 WHERE BillNo = ? AND AdjNo = ?")
                          .arg(list, tables.adjust),
                      {bill, range.second});
            if (!before || !after)
                continue;
            bool changed = false;
            for (const QString& c : group)
                changed = changed || before->value(c) != after->value(c);
            if (!changed)
                continue;
            for (Act169Column* c : cols) {
                c->additions += after->value(c->face);
                c->credits -= before->value(c->face);
            }
        }
    }
    {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT DisbNum, DisbDate FROM tbl_DisbDates WHERE DisbDate >= "
                                 "? AND DisbDate <= ? AND DisbType = ? AND CTS = ? ORDER BY "
                                 "DisbDate, DisbNum"));
        q.addBindValue(first);
        q.addBindValue(last);
        q.addBindValue(disbType);
        q.addBindValue(body.cts);
        if (!q.exec())
            return;
        const QString firstDiscount = DiscountColumn(group.first());
        const QString firstPenalty = PenaltyColumn(group.first());
        while (q.next()) {
            const int n = q.value(0).toInt();
            Money total;
            auto move = [&](Money Act169Column::*field, const QStringList& columns,
                            const QString& condition) {
                const std::vector<Money> in =
                    distributionSums(tables.dist->distribution, n, columns, condition);
                const std::vector<Money> out =
                    distributionSums(tables.dist->voidDistribution, n, columns, condition);
                for (std::size_t i = 0; i < cols.size(); ++i) {
                    // Void rows carry their amounts negated already: they reduce the sums.
                    cols[i]->*field += in[i] + out[i];
                    total += in[i] + out[i];
                }
            };
            move(&Act169Column::faceCollected, faces, QString());
            move(&Act169Column::discount, prefixed("D", faces),
                 QStringLiteral(" AND %1 <> 0").arg(firstDiscount));
            move(&Act169Column::penalty, prefixed("P", faces),
                 QStringLiteral(" AND %1 <> 0").arg(firstPenalty));
            f.remittances.push_back({DateField(q.value(1)),
                                     disbType + QStringLiteral(" - ") + QString::number(n), total,
                                     !tables.realEstate, n});
        }
    }
}

} // namespace

Money Act169Figures::totalCash() const {
    Money total;
    for (const Act169Column& c : columns)
        total += c.cash();
    return total;
}

QStringList Act169KindNames(const QString& bodyWord) {
    const QString word = bodyWord.isEmpty() ? QStringLiteral("Township") : bodyWord;
    return {QStringLiteral("County RE"), word + QStringLiteral(" RE"), word + QStringLiteral(" PC"),
            QStringLiteral("School RE/PC")};
}

Act169Figures GatherAct169(QSqlDatabase db, Act169Kind kind, int month) {
    Act169Figures f;
    f.kind = kind;
    const TaxNames names = TaxNames::read(db);
    QString taxYear;
    {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("SELECT TaxYear FROM Millfile WHERE District = '00' AND Ward = "
                                  "'0' ORDER BY TaxYear DESC")) &&
            q.next())
            taxYear = TextField(q.value(0)).trimmed().left(4);
    }
    if (taxYear.isEmpty())
        taxYear = session().TaxYear;
    const int year = taxYear.toInt() + (month == 1 ? 1 : 0);
    f.year = QString::number(year);
    f.monthName = MonthNames.value(month - 1);
    f.firstDay = QDate(year, month, 1);
    f.lastDay = f.firstDay.addMonths(1).addDays(-1);

    auto column = [](const QString& caption, bool pc, TaxingBody body, const char* face) {
        Act169Column c;
        c.caption = caption.left(10);
        c.perCapita = pc;
        c.body = body;
        c.face = QString::fromLatin1(face);
        return c;
    };
    TaxingBody body = TaxingBody::County;
    switch (kind) {
    case Act169Kind::County:
        f.district = names.county;
        f.columns = {column(QStringLiteral("Real Estate"), false, body, "County"),
                     column(names.countySpecial, false, body, "C1Face"),
                     column(QStringLiteral("Library"), false, body, "Library")};
        break;
    case Act169Kind::TownshipRE:
        body = TaxingBody::Twp;
        f.district = names.municipality;
        f.columns = {column(QStringLiteral("Real Estate"), false, body, "Twp"),
                     column(names.municipal.value(0), false, body, "S1Face"),
                     column(names.municipal.value(1), false, body, "S2Face"),
                     column(names.municipal.value(2), false, body, "S3Face")};
        break;
    case Act169Kind::TownshipPC:
        body = TaxingBody::Twp;
        f.district = names.municipality;
        f.columns = {column(QStringLiteral("Per Capita"), true, body, "TPerCapita"),
                     column(QStringLiteral("Occupation"), true, body, "TOccupation")};
        break;
    case Act169Kind::School:
        body = TaxingBody::School;
        f.district = names.schoolName.isEmpty() ? QStringLiteral("School") : names.schoolName;
        f.columns = {column(QStringLiteral("Real Estate"), false, body, "School"),
                     column(QStringLiteral("Other"), false, body, "Sch1Face"),
                     column(QStringLiteral("Per Capita"), true, body, "SPerCapita"),
                     column(QStringLiteral("Occupation"), true, body, "SOccupation")};
        break;
    }
    f.district += QStringLiteral(" Taxing District");
    std::vector<Act169Column*> re;
    std::vector<Act169Column*> pc;
    for (Act169Column& c : f.columns)
        (c.perCapita ? pc : re).push_back(&c);
    // The real-estate distributions come first in the table, then the per capita ones.
    gatherHalf(db, RealEstateReportTables(), body, taxYear, f, re);
    gatherHalf(db, PerCapitaReportTables(), body, taxYear, f, pc);
    return f;
}

ReportDefinition Act169Report(const Act169Figures& f) {
    ReportDefinition d;
    d.caption = QString::fromLatin1(ReportTitle);
    d.margin = 0;
    d.print = d.preview = {PaperSize::Letter, PageOrientation::Portrait};
    d.titles = {QStringLiteral("DCED APPROVED FORMAT FOR ACT 169 TAX COLLECTOR'S REPORT"),
                QStringLiteral("Tax Collector's Monthly Report To Taxing Districts"),
                QStringLiteral("For The Month Of ") + f.monthName + QStringLiteral(", ") + f.year,
                f.district};
    d.body = [f](ReportPage& page) {
        ReportSurface& s = page.surface();
        const std::size_t n = f.columns.size();
        auto edge = [n](std::size_t i) { return LastEdge - double(n - 1 - i) * ColumnWidth; };
        auto line = [&](const QString& number, const QString& caption) {
            page.text(NumberX, number);
            page.text(CaptionX, caption);
        };
        auto values = [&](const QString& number, const QString& caption, auto value,
                          const char* pattern) {
            line(number, caption);
            for (std::size_t i = 0; i < n; ++i)
                page.right(edge(i),
                           Money(value(f.columns[i])).format(QString::fromLatin1(pattern)));
            page.nextLine(2);
        };

        // Page one: A. Collections and B. Reconciliation of Cash Collected.
        page.newPage();
        page.bold(true);
        for (std::size_t i = 0; i < n; ++i)
            page.right(edge(i), f.columns[i].caption);
        page.nextLine(2);
        page.text(NumberX, QStringLiteral("A. Collections"));
        page.nextLine(2);
        page.bold(false);
        values(
            QStringLiteral("1."), QStringLiteral("Balance Collectable - Beginning Of Month"),
            [](const Act169Column& c) { return c.opening(); }, Amount);
        values(
            QStringLiteral("2A."), QStringLiteral("Additions: During The Month (*)"),
            [](const Act169Column& c) { return c.additions; }, Amount);
        values(
            QStringLiteral("2B."),
            QStringLiteral("Deductions: Credits During The Month - (from line 17)"),
            [](const Act169Column&) { return Money(); }, Amount);
        values(
            QStringLiteral("3."), QStringLiteral("Total Collectable"),
            [](const Act169Column& c) { return c.totalCollectable(); }, Amount);
        values(
            QStringLiteral("4."), QStringLiteral("Less: Face Collections for the Month"),
            [](const Act169Column& c) { return c.faceCollected; }, LessAmount);
        values(
            QStringLiteral("5."), QStringLiteral("Less: Deletions from the List (*)"),
            [](const Act169Column&) { return Money(); }, LessAmount);
        line(QStringLiteral("6."), QStringLiteral("Less: Exonerations (*)"));
        for (std::size_t i = 0; i < n; ++i) {
            const Money credits = f.columns[i].credits;
            page.right(edge(i), credits != Money()
                                    ? credits.format(QString::fromLatin1(Amount))
                                    : Money().format(QString::fromLatin1(LessAmount)));
        }
        page.nextLine(2);
        values(
            QStringLiteral("7."), QStringLiteral("Less: Liens/Non-Lienable Installments (*)"),
            [](const Act169Column&) { return Money(); }, LessAmount);
        values(
            QStringLiteral("8."), QStringLiteral("Balance Collectable - End of Month"),
            [](const Act169Column& c) { return c.closing(); }, Amount);
        page.nextLine();
        page.bold(true);
        page.text(NumberX, QStringLiteral("B. Reconciliation of Cash Collected"));
        page.nextLine(2);
        page.bold(false);
        values(
            QStringLiteral("9."),
            QStringLiteral("Face Amount of Collections (must agree with line 4)"),
            [](const Act169Column& c) { return c.faceCollected; }, Amount);
        values(
            QStringLiteral("10."), QStringLiteral("Plus: Penalties"),
            [](const Act169Column& c) { return c.penalty; }, Amount);
        values(
            QStringLiteral("11."), QStringLiteral("Less: Discounts"),
            [](const Act169Column& c) { return c.discount; }, Amount);
        line(QStringLiteral("12."), QStringLiteral("Total Cash Collected per Column"));
        const QString letters = QStringLiteral("ABCD");
        for (std::size_t i = 0; i < n; ++i)
            page.right(edge(i), letters.at(qsizetype(i)) + QStringLiteral(". ") +
                                    f.columns[i].cash().format(QString::fromLatin1(Amount)));
        page.nextLine(2);
        line(QStringLiteral("13."),
             QStringLiteral("Total Cash Collected - (12A + 12B + 12C + 12D)"));
        page.right(edge(n - 1), f.totalCash().format(QString::fromLatin1(Amount)));
        page.nextLine(3);
        page.text(NumberX,
                  QStringLiteral("(*) ATTACH ANY SUPPORTING DOCUMENTATION REQUIRED BY YOUR TAXING "
                                 "DISTRICT"));
        page.nextLine();

        // Page two: C. Payment of Taxes.
        const bool addendum = f.remittances.size() > 8;
        constexpr double DateX = 1500;
        constexpr double TransactionX = 3300;
        constexpr double AmountEdge = 7600;
        auto table = [&](bool all) {
            page.text(DateX, QStringLiteral("Date"));
            page.text(TransactionX, QStringLiteral("Transaction #"));
            page.right(AmountEdge, QStringLiteral("TOTAL ALL TAXES"));
            page.nextLine();
            page.right(AmountEdge, QStringLiteral("Amount"));
            page.nextLine();
            const std::size_t rows = all ? f.remittances.size() : 8;
            for (std::size_t r = 0; r < rows; ++r) {
                // A long addendum runs on over further pages.
                if (all && s.CurrentY + 3 * s.TextHeight() > s.ScaleHeight())
                    page.newPage();
                if (!all && addendum) {
                    if (r == 2)
                        page.text(TransactionX, QStringLiteral("SEE ATTACHED ADDENDUM"));
                    else if (r == 3)
                        page.text(TransactionX, QStringLiteral("FOR"));
                    else if (r == 4)
                        page.text(TransactionX, QStringLiteral("ITEMIZED DISTRIBUTIONS"));
                } else if (r < f.remittances.size()) {
                    const Act169Remittance& row = f.remittances[r];
                    page.text(DateX, FormatDate(row.date));
                    page.text(TransactionX, row.transaction);
                    page.money(AmountEdge, row.total, u"$###,###,###,##0.00");
                }
                page.nextLine();
            }
            page.text(TransactionX, QStringLiteral("Total"));
            page.money(AmountEdge, f.totalCash(), u"$###,###,###,##0.00");
            page.nextLine(2);
        };
        page.newPage();
        page.bold(true);
        page.text(NumberX, QStringLiteral("C. Payment of Taxes"));
        page.nextLine(2);
        page.bold(false);
        line(QStringLiteral("14."), QStringLiteral("Amount Remitted During the Month (*)"));
        page.nextLine();
        table(false);
        line(QStringLiteral("15."),
             QStringLiteral("Amount Paid with this Report Applicable to this Reporting Month"));
        page.nextLine();
        page.text(DateX, QStringLiteral("_______________"));
        page.text(TransactionX, QStringLiteral("Transaction #"));
        page.nextLine(2);
        line(QStringLiteral("16."), QStringLiteral("Total Remitted This Month"));
        page.nextLine(2);
        line(QStringLiteral("17."), QStringLiteral("List Other Credit Adjustments (*)"));
        page.nextLine();
        page.text(DateX, QStringLiteral("Parcel #"));
        page.text(TransactionX + 800, QStringLiteral("Name"));
        page.text(AmountEdge + 800, QStringLiteral("$"));
        page.nextLine();
        for (int r = 0; r < 4; ++r) {
            page.text(DateX, QStringLiteral("______________  ______________________________  "
                                            "$ ______________"));
            page.nextLine();
        }
        page.nextLine();
        line(QStringLiteral("18."),
             QStringLiteral("Interest Earnings (If Applicable)          $ __________________"));
        page.nextLine(2);
        page.bold(true);
        page.text(NumberX, QStringLiteral("TAXING DISTRICT USE (OPTIONAL)"));
        page.bold(false);
        page.nextLine();
        for (const char* text : {"Carryover from Previous Month", "Amount Collected This Month",
                                 "Less Amount Paid This Month", "Ending Balance"}) {
            page.text(CaptionX, QString::fromLatin1(text));
            page.text(TransactionX + 1500, QStringLiteral("$ __________________"));
            page.nextLine();
        }
        page.nextLine(2);
        page.text(CaptionX, QStringLiteral("____________________________________"));
        page.nextLine();
        page.text(CaptionX, QStringLiteral("Tax Collector"));
        page.nextLine();
        page.text(
            CaptionX,
            QStringLiteral("I verify this is a complete and accurate reporting of the balance"));
        page.nextLine();
        page.text(CaptionX,
                  QStringLiteral("collectable, taxes collected and remitted for the month."));
        page.nextLine(2);
        page.text(
            CaptionX,
            QStringLiteral("Received by (taxing district): ____________________________________"));
        page.nextLine();
        page.text(
            CaptionX,
            QStringLiteral("Title: _________________________________  Date: ________________"));
        page.nextLine();
        page.text(CaptionX, QStringLiteral("I acknowledge the receipt of this report."));
        page.nextLine();

        // Page three: the addendum with every distribution of the month.
        if (addendum) {
            page.newPage();
            page.bold(true);
            page.text(NumberX, QStringLiteral("C. Payment of Taxes (ADDENDUM)"));
            page.nextLine(2);
            page.bold(false);
            table(true);
        }
        return true;
    };
    return d;
}

frmAct169Report::frmAct169Report(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmAct169Report"));
    setWindowTitle(QString::fromLatin1(ReportTitle));
    cboMonth = new QComboBox(this);
    cboMonth->setObjectName(QStringLiteral("cboMonth"));
    cboMonth->setEditable(true);
    cboMonth->addItems(MonthNames);
    cboMonth->setCurrentIndex(-1);
    cboMonth->setEditText(QString());
    cboReportType = new QComboBox(this);
    cboReportType->setObjectName(QStringLiteral("cboReportType"));
    cboReportType->addItems(Act169KindNames(TaxNames::read(session().DbConnection).bodyWord));
    cboReportType->setCurrentIndex(-1);
    chkPrintAdjustmentReports = new QCheckBox(QStringLiteral("Print Adjustment Reports"), this);
    chkPrintAdjustmentReports->setObjectName(QStringLiteral("chkPrintAdjustmentReports"));
    chkPrintDistributionReports = new QCheckBox(QStringLiteral("Print Distribution Reports"), this);
    chkPrintDistributionReports->setObjectName(QStringLiteral("chkPrintDistributionReports"));

    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(QStringLiteral("Month:"), this), 0, 0);
    grid->addWidget(cboMonth, 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Report For:"), this), 1, 0);
    grid->addWidget(cboReportType, 1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(new QLabel(
        QStringLiteral("The following support documentation will be printed to the printer only "
                       "when"),
        this));
    layout->addWidget(chkPrintAdjustmentReports);
    layout->addWidget(chkPrintDistributionReports);
    auto* row = new QHBoxLayout;
    buttons = MakeReportButtons(this, row);
    layout->addLayout(row);
    connect(buttons.cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(buttons.cmdPrintPreview, &QPushButton::clicked, this,
            [this] { cmdPrintPreview_Click(); });
    session().LastScreenName = objectName();
}

bool frmAct169Report::validate(int* month, Act169Kind* kind) {
    const QString name = cboMonth->currentText().trimmed();
    int found = -1;
    for (int i = 0; i < MonthNames.size(); ++i)
        if (MonthNames.at(i).compare(name, Qt::CaseInsensitive) == 0)
            found = i;
    if (found < 0) {
        MsgBox(QStringLiteral("Invalid Month Selected."), QStringLiteral("Select Month"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        cboMonth->setFocus(Qt::OtherFocusReason);
        return false;
    }
    if (cboReportType->currentIndex() < 0 || cboReportType->currentText().isEmpty()) {
        MsgBox(QStringLiteral("Reporting District Must Be Specified."),
               QStringLiteral("Select Reporting District"), MsgButtons::Ok, MsgIcon::Exclamation);
        cboReportType->setFocus(Qt::OtherFocusReason);
        return false;
    }
    *month = found + 1;
    *kind = Act169Kind(cboReportType->currentIndex());
    return true;
}

void frmAct169Report::cmdPrint_Click() {
    QSqlDatabase db = session().DbConnection;
    if (!AssignedPrinter(db, QString::fromLatin1(LetterPrinter))) {
        MsgBox(QString::fromLatin1(NoLetterPrinterText), QString::fromLatin1(PrinterErrorTitle),
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    int month = 0;
    Act169Kind kind = Act169Kind::County;
    if (!validate(&month, &kind))
        return;
    const Act169Figures figures = GatherAct169(db, kind, month);
    // The closing message follows the supporting documents.
    const bool silent = session().SilentPrint;
    session().SilentPrint = true;
    const bool printed = PrintReport(Act169Report(figures), db);
    session().SilentPrint = silent;
    if (!printed)
        return;
    printSupportingDocuments(figures);
    if (!silent)
        MsgBox(QStringLiteral("Printing Complete."), QString::fromLatin1(ReportTitle));
}

void frmAct169Report::printSupportingDocuments(const Act169Figures& figures) {
    const bool silent = session().SilentPrint;
    const bool distributions = chkPrintDistributionReports->isChecked();
    for (const Act169Remittance& row : figures.remittances) {
        if (!distributions)
            break;
        if (row.total == Money())
            continue;
        std::unique_ptr<DistributionReportForm> form;
        const TaxingBody body = figures.kind == Act169Kind::County   ? TaxingBody::County
                                : figures.kind == Act169Kind::School ? TaxingBody::School
                                                                     : TaxingBody::Twp;
        auto make = [&]() -> DistributionReportForm* {
            if (!row.perCapita) {
                if (body == TaxingBody::County)
                    return new frmREPrintDistributionCounty;
                if (body == TaxingBody::Twp)
                    return new frmREPrintDistributionTwp;
                return new frmREPrintDistributionSchool;
            }
            if (body == TaxingBody::County)
                return new frmPCPrintDistributionCounty;
            if (body == TaxingBody::Twp)
                return new frmPCPrintDistributionTwp;
            return new frmPCPrintDistributionSchool;
        };
        form.reset(make());
        form->txtPrintDisbNum->setText(QString::number(row.number));
        session().SilentPrint = true;
        form->cmdPrint_Click();
        session().SilentPrint = silent;
    }
    if (!chkPrintAdjustmentReports->isChecked())
        return;
    QSqlDatabase db = session().DbConnection;
    if (figures.kind != Act169Kind::TownshipPC)
        PrintAdjustmentReportSilently(db, RealEstateReportTables(), figures.firstDay,
                                      figures.lastDay);
    if (figures.kind == Act169Kind::TownshipPC || figures.kind == Act169Kind::School)
        PrintAdjustmentReportSilently(db, PerCapitaReportTables(), figures.firstDay,
                                      figures.lastDay);
}

void frmAct169Report::cmdPrintPreview_Click() {
    int month = 0;
    Act169Kind kind = Act169Kind::County;
    if (!validate(&month, &kind))
        return;
    QPointer<frmAct169Report> self(this);
    PreviewReport(Act169Report(GatherAct169(session().DbConnection, kind, month)), this, [self] {
        if (self)
            self->cmdPrint_Click();
    });
}
