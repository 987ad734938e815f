#include "distribution/distribution_report.h"

#include "core/common_values.h"
#include "core/money.h"
#include "core/tax_database.h"
#include "distribution/distribution_file.h"
#include "distribution/distribution_numbers.h"
#include "rates/millage_common.h"

#include <QSet>
#include <QSqlQuery>
#include <QSqlRecord>
#include <array>

namespace {

// X positions of the detail line, in twips.
constexpr double BillX = 0;
constexpr double ControlX = 950;
constexpr double MapX = 1750;
constexpr double AmountsLeft = 6900;
constexpr double MarkerWidth = 550;

struct Block {
    qint64 count = 0;
    std::vector<AmountTriple> lines;
    explicit Block(std::size_t n = 0) : lines(n) {}
    void add(const std::vector<AmountTriple>& row) {
        ++count;
        for (std::size_t i = 0; i < lines.size(); ++i)
            lines[i] += row[i];
    }
    AmountTriple sum() const {
        AmountTriple t;
        for (const AmountTriple& l : lines)
            t += l;
        return t;
    }
};

QString amount12(Money value) {
    return value.format(u"#,###,###.00").rightJustified(12);
}

QString countText(qint64 n) {
    return FormatNumber(double(n), u"###,##0");
}

QString label16(const QString& name) {
    return name.left(16).rightJustified(16) + QStringLiteral(": ");
}

double rateOf(const QSqlRecord& row, const char* column) {
    const QVariant v = row.value(QString::fromLatin1(column));
    return v.isNull() ? 0.0 : v.toDouble();
}

} // namespace

DistributionReportPlan DistributionReportFor(QSqlDatabase db, const DistributionTables& tables,
                                             TaxingBody body) {
    DistributionReportPlan plan;
    plan.tables = &tables;
    plan.body = body;
    const bool pc = tables.disbType == u"PC";
    const ReportLookups lookups = ReportLookups::read(db);
    const OfficeDistrict office{lookups.district, lookups.ward};
    const QSqlRecord own = ReadMillfileRow(db, office);
    const QSqlRecord county = ReadCountyMillfileRow(db);
    const QString kind = pc ? QStringLiteral("Per Capita ") : QString();

    auto specialNames = [&db](const QString& district, const QString& ward, int n,
                              const QString& fallback) {
        QStringList names;
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT Desc1 FROM Spectax WHERE District = ? AND Ward = ? "
                                 "ORDER BY TaxKey"));
        q.addBindValue(district);
        q.addBindValue(ward);
        if (q.exec())
            while (names.size() < n && q.next())
                names << TextField(q.value(0)).trimmed().left(10);
        for (int i = int(names.size()); i < n; ++i)
            names << fallback.arg(i + 1);
        return names;
    };

    QString word;
    QString pcLabel; // the body in the per capita totals labels: "County P/C", "Twp Occ"
    switch (body) {
    case TaxingBody::County:
        word = QStringLiteral("County");
        plan.calculatedHeading = QStringLiteral("CALCULATED AMOUNTS AS PER THE COUNTY:");
        plan.discountRate = rateOf(county, pc ? "PCSD" : "SD");
        plan.penaltyRate = rateOf(county, pc ? "PCSP" : "SP");
        pcLabel = word;
        if (!pc) {
            plan.lineCaptions = {QStringLiteral("County"), QStringLiteral("Library"),
                                 specialNames(QStringLiteral("00"), QStringLiteral("0"), 1,
                                              QStringLiteral("Spec. %1"))
                                     .first()};
            plan.lineLabels = {QStringLiteral("          County: "),
                               QStringLiteral("         Library: "),
                               QStringLiteral("          Act 13: ")};
        }
        break;
    case TaxingBody::Twp:
        word = lookups.bodyWord;
        plan.calculatedHeading = QStringLiteral("CALCULATED AMOUNTS AS PER THE MUNCIPALITY:");
        plan.discountRate = rateOf(own, pc ? "PCTD" : "TD");
        plan.penaltyRate = rateOf(own, pc ? "PCTP" : "TP");
        pcLabel = word == u"Township"  ? QStringLiteral("Twp")
                  : word == u"Borough" ? QStringLiteral("Boro")
                                       : word;
        if (!pc) {
            plan.lineCaptions =
                QStringList{word.left(8)} +
                specialNames(lookups.district, lookups.ward, 3, QStringLiteral("Spec. #%1"));
            for (const QString& name : plan.lineCaptions)
                plan.lineLabels << label16(name);
        }
        break;
    case TaxingBody::School:
        word = QStringLiteral("School");
        plan.calculatedHeading = QStringLiteral("CALCULATED AMOUNTS AS PER THE SCHOOL DISTRICT:");
        plan.discountRate = rateOf(own, pc ? "PCSD" : "SD");
        plan.penaltyRate = rateOf(own, pc ? "PCSP" : "SP");
        pcLabel = word;
        if (!pc) {
            QString special = TextField(own.value(QStringLiteral("S1TaxName"))).trimmed();
            if (special.isEmpty())
                special = QStringLiteral("Sch. Spec.");
            plan.lineCaptions = {QStringLiteral("School"), special.left(10)};
            plan.lineLabels = {label16(QStringLiteral("School")), label16(special)};
            plan.school = true;
        }
        break;
    }
    if (pc) {
        plan.lineCaptions = {QStringLiteral("Per Capita"), QStringLiteral("Occupation")};
        plan.lineLabels = {label16(pcLabel + QStringLiteral(" P/C")),
                           label16(pcLabel + QStringLiteral(" Occ"))};
    }
    plan.totalLabel = label16(QStringLiteral("Total ") + word);

    if (pc) {
        plan.receiptsTitle =
            QStringLiteral("Tax Collector Per Capita Distribution Report - ") + word;
        plan.voidsTitle =
            QStringLiteral("Tax Collector Per Capita Voided Distribution Report - ") + word;
        plan.totalsTitle =
            QStringLiteral("Tax Collector Per Capita Distribution Report Grand Totals - ") + word;
    } else if (plan.school) {
        plan.receiptsTitle =
            QStringLiteral("Tax Collector Real Estate Distribution Report - School");
        plan.voidsTitle =
            QStringLiteral("Tax Collector Real Estate Voided Distribution Report - School");
        plan.totalsTitle =
            QStringLiteral("Tax Collector Real Estate Distribution Report Grand Totals - School");
    } else {
        plan.receiptsTitle = QStringLiteral("Tax Collector Distribution Report - ") + word;
        plan.voidsTitle = QStringLiteral("Tax Collector Voided Distribution Report - ") + word;
    }
    plan.caption =
        QStringLiteral("Print ") + kind + TaxingBodyName(body) + QStringLiteral(" Distribution");
    return plan;
}

struct DistributionReport::Lines {
    Block all;
    std::array<Block, 3> period; // F, D, P
    Block hf;
    Block nonHf;
    // School installments: per installment the count and the money, at face and with penalty.
    std::array<qint64, 3> instCount{};
    std::array<Money, 3> instMoney{};
    qint64 instFaceCount = 0;
    Money instFace;
    qint64 instPenCount = 0;
    Money instPen;
    Money instTotalFace;

    explicit Lines(std::size_t n) : all(n), period{Block(n), Block(n), Block(n)}, hf(n), nonHf(n) {}
};

DistributionReport::DistributionReport(QSqlDatabase db, DistributionReportPlan plan,
                                       DistributionReportOptions options)
    : m_db(db), m_spec(std::move(plan)), m_options(std::move(options)) {
    ReportDefinition& d = m_definition;
    d.caption = m_spec.caption;
    d.completeTitle = QStringLiteral("Print Distribution Report");
    d.margin = 1500;
    d.copies = CopiesQuestion::distributionReport();
    d.interim = true;
    d.titles = {m_spec.receiptsTitle, QString()};
    d.captions = [this](ReportPage& page) {
        ReportSurface& s = page.surface();
        const bool map = m_spec.tables->hasMap;
        const int n = int(m_spec.lineCaptions.size());
        const double width =
            (s.ScaleWidth() - AmountsLeft - (m_spec.school ? MarkerWidth : 0)) / double(2 * n + 1);
        const double receiptX = map ? 3600 : MapX;
        const double nameX = receiptX + 1300;
        auto captionLine = [&](const QStringList& left, const QStringList& amounts) {
            const std::array<double, 5> xs{BillX, ControlX, MapX, receiptX, nameX};
            int slot = 0;
            for (int i = 0; i < left.size(); ++i) {
                if (!map && i == 2)
                    ++slot;
                s.CurrentX = xs[std::size_t(slot++)];
                s.Write(left.at(i));
            }
            for (int i = 0; i < amounts.size(); ++i)
                s.WriteRight(AmountsLeft + (i + 1) * width, amounts.at(i));
            s.Print();
        };
        QStringList first{QStringLiteral("Bill"), QStringLiteral("Control")};
        QStringList second{QStringLiteral("Nunber"), QStringLiteral("Number")};
        if (map) {
            first << QStringLiteral("Map");
            second << QStringLiteral("Number");
        }
        first << QStringLiteral("Receipt") << QString();
        second << QStringLiteral("Number") << QStringLiteral("Name");
        QStringList firstAmounts;
        QStringList secondAmounts;
        for (const QString& caption : m_spec.lineCaptions) {
            firstAmounts << caption << QStringLiteral("Disc/");
            secondAmounts << QStringLiteral("Face") << QStringLiteral("Pen");
        }
        firstAmounts << QStringLiteral("Total");
        secondAmounts << QStringLiteral("Due");
        captionLine(first, firstAmounts);
        captionLine(second, secondAmounts);
    };
    d.body = [this](ReportPage& page) { return draw(page); };
}

bool DistributionReport::draw(ReportPage& page) {
    const DistributionTables& tables = *m_spec.tables;
    const DistributionBody& body = tables.body(m_spec.body);
    const QString key = DistributionKey(m_options.taxYear, m_options.number);
    const std::size_t n = std::size_t(m_spec.lineCaptions.size());
    m_definition.titles[1] = QStringLiteral("Distribution #") + TwoDigits(m_options.number) +
                             QStringLiteral(" from ") + FormatDate(m_options.from) +
                             QStringLiteral(" To ") + FormatDate(m_options.to);
    ReportSurface& s = page.surface();
    const bool map = tables.hasMap;
    const double width =
        (s.ScaleWidth() - AmountsLeft - (m_spec.school ? MarkerWidth : 0)) / double(2 * n + 1);
    const double receiptX = map ? 3600 : MapX;
    const double nameX = receiptX + 1300;
    auto edge = [width](std::size_t column) { return AmountsLeft + double(column + 1) * width; };

    auto startSection = [&page](bool print) {
        if (!print)
            return;
        if (page.headerPrinted())
            page.newPage();
        else
            page.ensureHeader();
    };

    Lines totals(n);
    auto section = [&](const QString& table, const QString& twinTable, bool voided) -> bool {
        QSqlQuery twins(m_db);
        twins.setForwardOnly(true);
        twins.prepare(QStringLiteral("SELECT Recnum FROM %1 WHERE CTS = ? AND %2 = ?")
                          .arg(twinTable, body.keyColumn));
        twins.addBindValue(body.cts);
        twins.addBindValue(key);
        if (!twins.exec())
            return false;
        QSet<QString> twinRecnums;
        while (twins.next())
            twinRecnums.insert(twins.value(0).toString());

        QSqlQuery q(m_db);
        q.setForwardOnly(true);
        const QString hf = m_spec.school
                               ? QStringLiteral(", (SELECT HFFlag FROM TCMaster m WHERE "
                                                "m.Control = d.Control LIMIT 1) AS HFFlag")
                               : QString();
        q.prepare(QStringLiteral("SELECT d.*%1 FROM %2 d WHERE CTS = ? AND %3 = ? ORDER BY "
                                 "BillNo, AdjNo, Recnum")
                      .arg(hf, table, body.keyColumn));
        q.addBindValue(body.cts);
        q.addBindValue(key);
        if (!q.exec())
            return false;
        m_definition.titles[0] = voided ? m_spec.voidsTitle : m_spec.receiptsTitle;
        const bool print = !m_options.summaryOnly;
        startSection(print);
        Block sectionTotals(n);
        std::vector<AmountTriple> row(n);
        while (q.next()) {
            const QSqlRecord r = q.record();
            const QString recnum = TextField(r.value(QStringLiteral("Recnum")));
            if (twinRecnums.contains(recnum))
                continue;
            if (m_options.progress)
                m_options.progress(r, voided);
            for (std::size_t i = 0; i < n; ++i) {
                const QString& face = body.lines.at(qsizetype(i));
                row[i] = {.discount = MoneyField(r.value(DiscountColumn(face))),
                          .face = MoneyField(r.value(face)),
                          .penalty = MoneyField(r.value(PenaltyColumn(face)))};
            }
            const QString flag = FlagField(r.value(body.payFlag)).trimmed();
            const QString hfFlag =
                m_spec.school ? TextField(r.value(QStringLiteral("HFFlag"))).trimmed() : QString();
            if (print) {
                page.startRow();
                QString bill = TextField(r.value(QStringLiteral("BillNo")));
                const int adjNo = r.value(QStringLiteral("AdjNo")).toInt();
                if (adjNo > 0)
                    bill += QLatin1Char('-') + TwoDigits(adjNo);
                page.text(BillX, bill);
                page.text(ControlX, TextField(r.value(QStringLiteral("Control"))));
                if (map)
                    page.text(MapX, TextField(r.value(QStringLiteral("Map3"))) + QLatin1Char('.') +
                                        TextField(r.value(QStringLiteral("Map4"))) +
                                        QLatin1Char('.') +
                                        TextField(r.value(QStringLiteral("Map5"))));
                page.text(receiptX, recnum);
                page.text(nameX, FittedText(s, TextField(r.value(QStringLiteral("Name"))),
                                            AmountsLeft + width - 950 - nameX));
                Money due;
                for (std::size_t i = 0; i < n; ++i) {
                    page.money(edge(2 * i), row[i].face, u"#,###,###.00");
                    page.money(edge(2 * i + 1), row[i].discount + row[i].penalty, u"#,###,###.00");
                    due += row[i].total();
                }
                page.money(edge(2 * n), due, u"#,###,###.00");
                if (m_spec.school) {
                    const bool installments = flag == u"I";
                    const QString marker =
                        hfFlag == u"A"
                            ? (installments ? QStringLiteral(" HF I") : QStringLiteral(" HF"))
                            : (installments ? QStringLiteral("I") : QString());
                    if (!marker.isEmpty())
                        page.text(edge(2 * n) + 60, marker);
                }
                page.nextLine();
            }
            sectionTotals.add(row);
            totals.all.add(row);
            if (flag == u"F")
                totals.period[0].add(row);
            else if (flag == u"D")
                totals.period[1].add(row);
            else if (flag == u"P")
                totals.period[2].add(row);
            if (m_spec.school) {
                (hfFlag == u"A" ? totals.hf : totals.nonHf).add(row);
                for (int i = 0; i < 3; ++i) {
                    const QString pay = FlagField(r.value(QStringLiteral("Pay%1Flag").arg(i + 1)));
                    if (pay != u"F" && pay != u"P")
                        continue;
                    const Money face = MoneyField(r.value(QStringLiteral("Payment%1").arg(i + 1)));
                    const Money pen =
                        MoneyField(r.value(QStringLiteral("PenPayment%1").arg(i + 1)));
                    ++totals.instCount[std::size_t(i)];
                    totals.instMoney[std::size_t(i)] += face + pen;
                    totals.instTotalFace += face;
                    if (pay == u"F") {
                        ++totals.instFaceCount;
                        totals.instFace += face;
                    } else {
                        ++totals.instPenCount;
                        totals.instPen += face + pen;
                    }
                }
            }
        }
        if (print) {
            if (sectionTotals.count == 0) {
                page.startRow();
                page.centred(voided ? QStringLiteral("***  NO VOIDED RECEIPTS FOUND  ***")
                                    : QStringLiteral("***  NO RECEIPTS FOUND  ***"));
                page.nextLine(2);
            }
            page.startRow();
            page.bold(true);
            page.text(BillX,
                      QStringLiteral("Number Of Transactions:  ") + countText(sectionTotals.count));
            Money due;
            for (std::size_t i = 0; i < n; ++i) {
                const AmountTriple& t = sectionTotals.lines[i];
                page.money(edge(2 * i), t.face, u"#,###,###.00");
                page.money(edge(2 * i + 1), t.discount + t.penalty, u"#,###,###.00");
                due += t.total();
            }
            page.money(edge(2 * n), due, u"#,###,###.00");
            page.nextLine();
            page.bold(false);
        }
        return true;
    };

    if (!section(tables.distribution, tables.voidDistribution, false) ||
        !section(tables.voidDistribution, tables.distribution, true))
        return false;

    // Section 3: the grand totals, as collected and, when asked, as calculated from the rates.
    auto grandTotals = [&](const Lines& t, bool calculated) {
        m_definition.titles[0] =
            m_spec.totalsTitle.isEmpty() ? m_spec.receiptsTitle : m_spec.totalsTitle;
        s.FontName = QStringLiteral("ARIAL");
        startSection(true);
        page.text(0, calculated ? QStringLiteral("(Calculated amount)")
                                : QStringLiteral("(Actual amount collected)"));
        page.nextLine(2);
        page.text(0, calculated ? m_spec.calculatedHeading
                                : QStringLiteral("ACTUAL AMOUNTS AS COLLECTED BY THE TAX "
                                                 "COLLECTOR:"));
        page.nextLine(2);
        s.FontName = QStringLiteral("Courier New");
        auto line = [&page](const QString& text) {
            page.text(0, text);
            page.nextLine();
        };
        auto fourColumns = [&](const QString& label, const AmountTriple& x) {
            line(label + amount12(x.discount) + QLatin1Char(' ') + amount12(x.face) +
                 QLatin1Char(' ') + amount12(x.penalty) + QLatin1Char(' ') + amount12(x.total()));
        };
        const QString rule4 =
            QStringLiteral("                  ------------ ------------ ------------ ------------");
        const QString rule3 =
            QStringLiteral("                  ------------ ------------ ------------");

        if (m_spec.school) {
            line(QStringLiteral("***  Grand  Totals  ***      Number Of Receipts         ") +
                 countText(t.all.count));
            page.nextLine();
        }
        line(QStringLiteral("  Summary Totals:      ") + countText(t.all.count) +
             QStringLiteral(" Transactions"));
        line(QStringLiteral(
            "                      Discount         Face      Penalty        Total"));
        line(QStringLiteral(
            "                      ========         ====      =======        ====="));
        for (std::size_t i = 0; i < n; ++i)
            fourColumns(m_spec.lineLabels.at(qsizetype(i)), t.all.lines[i]);
        line(rule4);
        fourColumns(m_spec.totalLabel, t.all.sum());
        page.nextLine();
        if (m_spec.school) {
            line(QStringLiteral(" H/F Receipts  ") + countText(t.hf.count).rightJustified(8));
            fourColumns(QStringLiteral("      H/F School: "), t.hf.sum());
            line(QStringLiteral(" Non H/F Receipts") + countText(t.nonHf.count).rightJustified(6));
            fourColumns(QStringLiteral("  Non H/F School: "), t.nonHf.sum());
            line(rule4);
            fourColumns(QStringLiteral("    Total School: "), t.all.sum());
            page.nextLine();
        }

        const Block& face = t.period[0];
        line(QStringLiteral("       Face Only:      ") + countText(face.count) +
             QStringLiteral(" Transactions"));
        line(QStringLiteral("                          Face"));
        line(QStringLiteral("                          ===="));
        for (std::size_t i = 0; i < n; ++i)
            line(m_spec.lineLabels.at(qsizetype(i)) + amount12(face.lines[i].face));
        line(QStringLiteral("                  ------------"));
        line(QStringLiteral("      Total Face: ") + amount12(face.sum().face));
        page.nextLine();

        auto periodBlock = [&](const Block& b, const QString& heading, const QString& captions,
                               const QString& underline, const QString& totalLabel, bool discount) {
            line(heading + countText(b.count) + QStringLiteral(" Transactions"));
            line(captions);
            line(underline);
            auto row3 = [&](const QString& label, const AmountTriple& x) {
                const Money other = discount ? x.discount : x.penalty;
                line(label + amount12(x.face) + QLatin1Char(' ') + amount12(other) +
                     QLatin1Char(' ') + amount12(x.face + other));
            };
            for (std::size_t i = 0; i < n; ++i)
                row3(m_spec.lineLabels.at(qsizetype(i)), b.lines[i]);
            line(rule3);
            row3(totalLabel, b.sum());
            page.nextLine();
        };
        periodBlock(t.period[1], QStringLiteral("   Discount Only:      "),
                    QStringLiteral("                          Face     Discount        Total"),
                    QStringLiteral("                          ====     ========        ====="),
                    QStringLiteral("  Total Discount: "), true);
        periodBlock(t.period[2], QStringLiteral("    Penalty Only:      "),
                    QStringLiteral("                          Face      Penalty        Total"),
                    QStringLiteral("                          ====      =======        ====="),
                    QStringLiteral("   Total Penalty: "), false);

        if (m_spec.school) {
            line(QStringLiteral(" Payments"));
            for (std::size_t i = 0; i < 3; ++i)
                line(QStringLiteral("Payment #%1 Distributed ").arg(i + 1) +
                     countText(t.instCount[i]).rightJustified(7) + QLatin1Char(' ') +
                     amount12(t.instMoney[i]));
            line(QStringLiteral(" Inst. Face Only:      ") + countText(t.instFaceCount) +
                 QLatin1Char(' ') + amount12(t.instFace));
            line(QStringLiteral(" Inst. Pen. Only:      ") + countText(t.instPenCount) +
                 QLatin1Char(' ') + amount12(t.instPen));
            line(QStringLiteral("Inst. Total Face: ") + amount12(t.instTotalFace));
        }
        s.FontName = QStringLiteral("ARIAL");
    };

    grandTotals(totals, false);
    if (m_options.calculated) {
        // Discounts and penalties as the rates give them on the face of each block.
        auto fromRate = [](Money face, double rate) {
            return Money::fromRounded(RoundTo(rate / 100.0 * face.toDouble(), 2));
        };
        Lines calc = totals;
        for (std::size_t i = 0; i < n; ++i) {
            AmountTriple& d = calc.period[1].lines[i];
            d.discount = -fromRate(d.face, m_spec.discountRate);
            d.penalty = Money();
            AmountTriple& p = calc.period[2].lines[i];
            p.penalty = fromRate(p.face, m_spec.penaltyRate);
            p.discount = Money();
            AmountTriple& f = calc.period[0].lines[i];
            f.discount = f.penalty = Money();
            AmountTriple& a = calc.all.lines[i];
            a.discount = d.discount;
            a.penalty = p.penalty;
        }
        grandTotals(calc, true);
    }
    return true;
}
