#include "desk/reports/receipt_report.h"

#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "rates/millage_common.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>
#include <array>
#include <vector>

namespace {

// X positions of the detail lines, in twips.
constexpr double BillX = 0;
constexpr double ControlX = 900;
constexpr double RecNumX = 2500;
constexpr double MapX = 1700;
constexpr double AmountsLeft = 3800;
constexpr double NameWidth = 2400;

// The running totals of a section, or of the whole report.
struct Totals {
    qint64 count = 0;
    std::vector<AmountTriple> lines;
    Money overage;
    Money refund;
    explicit Totals(std::size_t n) : lines(n) {}
};

QString amount12(Money value) {
    return value.format(u"#,###,###.00").rightJustified(12);
}

QString label16(const QString& name) {
    return name.left(16).rightJustified(16) + QStringLiteral(": ");
}

} // namespace

ReceiptReport::ReceiptReport(QSqlDatabase db, const ReportTables& tables,
                             ReceiptReportOptions options)
    : m_db(db), m_tables(tables), m_options(std::move(options)) {
    m_names = TaxNames::read(db);
    const ReportLookups lookups = ReportLookups::read(db);
    if (lookups.intNo != 0)
        m_interim = QStringLiteral(" - Interim #") + QString::number(lookups.intNo);
    const bool re = m_tables.realEstate;
    ReportDefinition& d = m_definition;
    d.caption = m_options.order == u"BILL"   ? QStringLiteral("Bill Number Order")
                : m_options.order == u"DATE" ? QStringLiteral("Date Credited Order")
                                             : QStringLiteral("Receipt Number Order");
    d.completeTitle = QStringLiteral("Print Receipt Report");
    d.margin = re ? 1500 : 1000;
    d.print = d.preview = {PaperSize::Letter, PageOrientation::Landscape};
    const bool dates = m_options.range != ReceiptRange::RecNum;
    const QString from = dates ? FormatDate(m_options.startDate) : m_options.startRecNum;
    const QString to = dates ? FormatDate(m_options.endDate) : m_options.endRecNum;
    d.titles = {QString(),
                QStringLiteral("Transactions From ") + from + QStringLiteral(" To ") + to};

    // The amount columns: each face column, then discounts, penalties, total, over/under,
    // refund and the total with them.
    QStringList first;
    const QString bodyWord = m_names.bodyWord;
    if (re) {
        first << QStringLiteral("County") << QStringLiteral("Library") << m_names.countySpecial
              << (bodyWord.isEmpty() ? QStringLiteral("Municipal") : bodyWord) << m_names.municipal
              << QStringLiteral("School") << m_names.schoolSpecial.left(10);
    } else {
        const QString word = bodyWord == u"Township"  ? QStringLiteral("Twp")
                             : bodyWord == u"Borough" ? QStringLiteral("Boro")
                             : bodyWord.isEmpty()     ? QStringLiteral("Muni")
                                                      : bodyWord;
        first << QStringLiteral("Cnty P/C") << QStringLiteral("Cnty Occ")
              << word + QStringLiteral(" P/C") << word + QStringLiteral(" Occ")
              << QStringLiteral("Sch P/C") << QStringLiteral("Sch Occ");
    }
    QStringList second;
    for (qsizetype i = 0; i < first.size(); ++i)
        second << QStringLiteral("Face");
    first << QStringLiteral("Discounts") << QStringLiteral("Penalties") << QStringLiteral("Total")
          << QStringLiteral("Ov/") << QStringLiteral("Refund") << QStringLiteral("Total");
    second << QStringLiteral("Applied") << QStringLiteral("Applied") << QStringLiteral("Received")
           << QStringLiteral("Un") << QStringLiteral("Amount") << QStringLiteral("Received");
    d.captions = [this, first, second, re](ReportPage& page) {
        ReportSurface& s = page.surface();
        if (m_totalsPage)
            return;
        s.FontBold = false;
        const double width = (s.ScaleWidth() - AmountsLeft) / double(first.size());
        auto line = [&](const QStringList& left, const QStringList& amounts) {
            s.CurrentX = BillX;
            s.Write(left.at(0));
            s.CurrentX = left.at(2).isEmpty() ? RecNumX : ControlX;
            s.Write(left.at(1));
            if (re && !left.at(2).isEmpty()) {
                s.CurrentX = MapX;
                s.Write(left.at(2));
            }
            // The amount captions in a smaller size, so that neighbours do not touch.
            s.FontSize = 8;
            for (qsizetype i = 0; i < amounts.size(); ++i)
                s.WriteRight(AmountsLeft + double(i + 1) * width, amounts.at(i));
            s.FontSize = 9;
            s.Print();
        };
        line({QStringLiteral("Bill #"), QStringLiteral("Control #"), QStringLiteral("Map")}, first);
        line({QStringLiteral("Name"), QStringLiteral("Rec#/Chk#"), QString()}, second);
    };
    d.body = [this](ReportPage& page) { return draw(page); };
}

bool ReceiptReport::draw(ReportPage& page) {
    m_totalsPage = false;
    const bool re = m_tables.realEstate;
    const QString kind = re ? QStringLiteral("Real Estate") : QStringLiteral("Per Capita");
    const QString receiptsTitle =
        QStringLiteral("Tax Collector ") + kind + QStringLiteral(" Receipt Report") + m_interim;
    const QString voidsTitle = QStringLiteral("Tax Collector ") + kind +
                               QStringLiteral(" Voided Receipt Report") + m_interim;
    const QString totalsTitle = QStringLiteral("Tax Collector ") + kind +
                                QStringLiteral(" Receipt Report Grand Totals") + m_interim;
    const QStringList faces = m_tables.faceColumns();
    const std::size_t n = std::size_t(faces.size());
    ReportSurface& s = page.surface();
    const double width = (s.ScaleWidth() - AmountsLeft) / double(n + 6);
    auto edge = [width](std::size_t column) { return AmountsLeft + double(column + 1) * width; };
    const bool print = !m_options.summaryOnly;

    // The range as a where-clause of receipts and of voids, with its two values.
    QString receiptWhere;
    QString voidWhere;
    QString start;
    QString end;
    QString dateColumn = QStringLiteral("RDate");
    QString voidDateColumn = QStringLiteral("VDate");
    switch (m_options.range) {
    case ReceiptRange::DateCredited:
        start = IsoDate(m_options.startDate);
        end = IsoDate(m_options.endDate);
        receiptWhere = QStringLiteral("RDate >= ? AND RDate <= ?");
        voidWhere = QStringLiteral("VDate >= ? AND VDate <= ?");
        break;
    case ReceiptRange::DateEntered:
        // A receipt number begins with the date it was entered.
        start = m_options.startDate.toString(QStringLiteral("yyyyMMdd")).leftJustified(12);
        end = m_options.endDate.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral("9999");
        receiptWhere = QStringLiteral("Recnum >= ? AND Recnum <= ?");
        voidWhere = QStringLiteral("SysDate >= ? AND SysDate <= ?");
        voidDateColumn = QStringLiteral("SysDate");
        break;
    case ReceiptRange::RecNum:
        start = m_options.startRecNum;
        end = m_options.endRecNum;
        receiptWhere = voidWhere = QStringLiteral("Recnum >= ? AND Recnum <= ?");
        break;
    }
    auto tail = [this](const QString& date) {
        if (m_options.order == u"BILL")
            return QStringLiteral(" ORDER BY BillNo, AdjNo, Recnum");
        if (m_options.order == u"DATE")
            return QStringLiteral(" ORDER BY ") + date + QStringLiteral(", Recnum");
        return QStringLiteral(" ORDER BY Recnum");
    };
    auto select = [this](QSqlQuery& q, const QString& sql, const QString& a, const QString& b) {
        q.setForwardOnly(true);
        q.prepare(sql);
        q.addBindValue(a);
        q.addBindValue(b);
        return q.exec();
    };

    // The voids of the range, read once: section 1 finds a receipt's void among them, and
    // section 2 prints the others.
    std::vector<QSqlRecord> voids;
    QHash<QString, std::size_t> voidOf;
    {
        QSqlQuery v(m_db);
        const QString voidDateStart =
            m_options.range == ReceiptRange::DateEntered ? IsoDate(m_options.startDate) : start;
        const QString voidDateEnd =
            m_options.range == ReceiptRange::DateEntered ? IsoDate(m_options.endDate) : end;
        if (!select(v,
                    QStringLiteral("SELECT * FROM ") + m_tables.dist->voidReceipts +
                        QStringLiteral(" WHERE ") + voidWhere + tail(voidDateColumn),
                    voidDateStart, voidDateEnd))
            return false;
        while (v.next()) {
            voids.push_back(v.record());
            voidOf.insert(TextField(voids.back().value(QStringLiteral("Recnum"))),
                          voids.size() - 1);
        }
    }

    // The columns by position: a void holds the receipt's columns in the same order, then
    // its own, so one set of positions serves both tables.
    const QSqlRecord layout = m_db.record(m_tables.dist->receipts);
    auto at = [&layout](const char* name) { return layout.indexOf(QLatin1String(name)); };
    const int billNoAt = at("BillNo"), adjNoAt = at("AdjNo"), controlAt = at("Control"),
              map3At = at("Map3"), map4At = at("Map4"), map5At = at("Map5"),
              overageAt = at("Overage"), refundAt = at("Refund"), nameAt = at("Name"),
              recnumAt = at("Recnum"), checknumAt = at("Checknum");
    std::vector<std::array<int, 3>> tripleAt(n);
    for (std::size_t i = 0; i < n; ++i) {
        const QString& face = faces.at(qsizetype(i));
        tripleAt[i] = {int(layout.indexOf(face)), int(layout.indexOf(DiscountColumn(face))),
                       int(layout.indexOf(PenaltyColumn(face)))};
    }
    auto rowTriples = [&](const QSqlRecord& r) {
        std::vector<AmountTriple> out(n);
        for (std::size_t i = 0; i < n; ++i)
            out[i] = {.discount = MoneyField(r.value(tripleAt[i][1])),
                      .face = MoneyField(r.value(tripleAt[i][0])),
                      .penalty = MoneyField(r.value(tripleAt[i][2]))};
        return out;
    };
    auto add = [n, overageAt, refundAt](Totals& t, const std::vector<AmountTriple>& row,
                                        const QSqlRecord& r) {
        ++t.count;
        for (std::size_t i = 0; i < n; ++i)
            t.lines[i] += row[i];
        t.overage += MoneyField(r.value(overageAt));
        t.refund += MoneyField(r.value(refundAt));
    };
    auto amounts = [&](const std::vector<AmountTriple>& row, Money overage, Money refund) {
        AmountTriple all;
        for (std::size_t i = 0; i < n; ++i) {
            page.money(edge(i), row[i].face, u"#,###,###.00");
            all += row[i];
        }
        page.money(edge(n), all.discount, u"#,###,###.00");
        page.money(edge(n + 1), all.penalty, u"#,###,###.00");
        page.money(edge(n + 2), all.total(), u"#,###,###.00");
        page.money(edge(n + 3), overage, u"#,###,###.00");
        page.money(edge(n + 4), refund, u"#,###,###.00");
        page.money(edge(n + 5), all.total() + overage + refund, u"#,###,###.00");
    };
    auto printRow = [&](const QSqlRecord& r, const std::vector<AmountTriple>& row, bool voidLine) {
        page.startRow();
        QString bill = TextField(r.value(billNoAt));
        const int adjNo = r.value(adjNoAt).toInt();
        if (adjNo > 0)
            bill += QLatin1Char('-') + QString::number(adjNo);
        if (voidLine)
            bill += QStringLiteral("  VOID");
        page.text(BillX, bill);
        page.text(ControlX, TextField(r.value(controlAt)));
        if (re)
            page.text(MapX, TextField(r.value(map3At)) + QLatin1Char('.') +
                                TextField(r.value(map4At)) + QLatin1Char('.') +
                                TextField(r.value(map5At)));
        amounts(row, MoneyField(r.value(overageAt)), MoneyField(r.value(refundAt)));
        page.nextLine();
        page.text(BillX, FittedText(s, TextField(r.value(nameAt)), NameWidth));
        page.text(RecNumX, TextField(r.value(recnumAt)) + QStringLiteral(" / ") +
                               TextField(r.value(checknumAt)));
        page.nextLine();
    };
    auto totalLine = [&](const Totals& t) {
        page.startRow();
        page.bold(true);
        page.text(BillX, QStringLiteral("Number Of Transactions:  ") +
                             FormatNumber(double(t.count), u"###,##0"));
        amounts(t.lines, t.overage, t.refund);
        page.nextLine();
        page.bold(false);
    };

    Totals grand(n);

    // Section 1: the receipts, each with its void when that falls in the range.
    m_definition.titles[0] = receiptsTitle;
    page.ensureHeader();
    QSet<QString> voidedInRange;
    {
        QSqlQuery q(m_db);
        if (!select(q,
                    QStringLiteral("SELECT * FROM ") + m_tables.dist->receipts +
                        QStringLiteral(" WHERE ") + receiptWhere + tail(dateColumn),
                    start, end))
            return false;
        Totals section(n);
        while (q.next()) {
            const QSqlRecord r = q.record();
            if (m_options.progress)
                m_options.progress(r);
            const std::vector<AmountTriple> row = rowTriples(r);
            if (print)
                printRow(r, row, false);
            const QString recnum = TextField(r.value(recnumAt));
            const auto voided = voidOf.constFind(recnum);
            if (voided == voidOf.cend()) {
                add(section, row, r);
                add(grand, row, r);
                continue;
            }
            // The receipt and its void cancel: both are counted, neither adds money.
            ++section.count;
            ++section.count;
            voidedInRange.insert(recnum);
            const QSqlRecord& v = voids[voided.value()];
            if (print)
                printRow(v, rowTriples(v), true);
        }
        if (section.count == 0 && print) {
            page.startRow();
            page.centred(QStringLiteral("***  NO RECEIPTS FOUND  ***"));
            page.nextLine(2);
        }
        totalLine(section);
    }

    // Section 2: the voids of the range whose receipts lie outside it.
    m_definition.titles[0] = voidsTitle;
    if (print)
        page.newPage();
    else
        page.nextLine();
    {
        Totals section(n);
        for (const QSqlRecord& v : voids) {
            if (voidedInRange.contains(TextField(v.value(recnumAt))))
                continue;
            if (m_options.progress)
                m_options.progress(v);
            const std::vector<AmountTriple> row = rowTriples(v);
            if (print)
                printRow(v, row, false);
            add(section, row, v);
            add(grand, row, v);
        }
        if (section.count == 0 && print) {
            page.startRow();
            page.centred(QStringLiteral("***  NO VOIDED RECEIPTS FOUND  ***"));
            page.nextLine(2);
        }
        totalLine(section);
    }

    // The grand totals of each tax, in fixed pitch.
    m_definition.titles[0] = totalsTitle;
    m_totalsPage = true;
    page.newPage();
    s.FontName = QStringLiteral("Courier");
    auto line = [&page](const QString& text) {
        page.text(0, text);
        page.nextLine();
    };
    auto fourColumns = [&](const QString& label, const AmountTriple& x) {
        line(label + amount12(x.discount) + QLatin1Char(' ') + amount12(x.face) + QLatin1Char(' ') +
             amount12(x.penalty) + QLatin1Char(' ') + amount12(x.total()));
    };
    const QString rule =
        QStringLiteral("                  ------------ ------------ ------------ ------------");
    line(QStringLiteral("                      Discount         Face      Penalty        Total"));
    line(QStringLiteral("                      ========         ====      =======        ====="));
    AmountTriple all;
    auto block = [&](const std::vector<std::pair<QString, std::size_t>>& lines,
                     const QString& totalLabel) {
        AmountTriple sum;
        for (const auto& [label, column] : lines) {
            fourColumns(label, grand.lines[column]);
            sum += grand.lines[column];
        }
        all += sum;
        if (!totalLabel.isEmpty()) {
            line(rule);
            fourColumns(totalLabel, sum);
            page.nextLine();
        }
    };
    const QString word = m_names.bodyWord;
    if (re) {
        block({{QStringLiteral("          County: "), 0},
               {label16(m_names.countyTaxName), 2},
               {QStringLiteral("         Library: "), 1}},
              QStringLiteral("    Total County: "));
        block({{label16(word.isEmpty() ? QStringLiteral("Municipal") : word), 3},
               {label16(m_names.municipal.value(0)), 4},
               {label16(m_names.municipal.value(1)), 5},
               {label16(m_names.municipal.value(2)), 6}},
              label16(QStringLiteral("Total ") + word));
        block({{QStringLiteral("          School: "), 7}, {label16(m_names.schoolSpecial), 8}},
              QString());
    } else {
        block({{label16(QStringLiteral("County P/C")), 0},
               {label16(QStringLiteral("County Occ")), 1}},
              QStringLiteral("    Total County: "));
        block({{label16(word + QStringLiteral(" P/C")), 2},
               {label16(word + QStringLiteral(" Occ")), 3}},
              label16(QStringLiteral("Total ") + word));
        block({{label16(QStringLiteral("School P/C")), 4},
               {label16(QStringLiteral("School Occ")), 5}},
              QString());
    }
    line(QStringLiteral("                  ============ ============ ============ ============"));
    fourColumns(QStringLiteral("     Grand Total: "), all);
    s.FontName = QStringLiteral("ARIAL");
    return true;
}

ReceiptReportForm::ReceiptReportForm(const ReportTables& tables, const QString& name,
                                     QWidget* parent)
    : QWidget(parent), m_tables(tables) {
    setObjectName(name);
    takeOrder();
    ReloadOnActivation(this, [this] { takeOrder(); });

    optDateCredited = new QRadioButton(QStringLiteral("Date Credited"), this);
    optDateCredited->setObjectName(QStringLiteral("optDateCredited"));
    optDateEntered = new QRadioButton(QStringLiteral("Date Entered"), this);
    optDateEntered->setObjectName(QStringLiteral("optDateEntered"));
    optRecNum = new QRadioButton(QStringLiteral("Receipt Number"), this);
    optRecNum->setObjectName(QStringLiteral("optRecNum"));
    txtStartDateCredited = NamedField(this, QStringLiteral("txtStartDateCredited"), 10);
    txtEndDateCredited = NamedField(this, QStringLiteral("txtEndDateCredited"), 10);
    txtStartDateEntered = NamedField(this, QStringLiteral("txtStartDateEntered"), 10);
    txtEndDateEntered = NamedField(this, QStringLiteral("txtEndDateEntered"), 10);
    txtStartRecNum = NamedField(this, QStringLiteral("txtStartRecNum"), 12);
    txtEndRecNum = NamedField(this, QStringLiteral("txtEndRecNum"), 12);
    chkSummaryOnly = new QCheckBox(QStringLiteral("Print Summary Only"), this);
    chkSummaryOnly->setObjectName(QStringLiteral("chkSummaryOnly"));
    txtRecNum = ShownField(this, QStringLiteral("txtRecNum"), 12);
    txtControl = ShownField(this, QStringLiteral("txtControl"), 6);
    txtMap3 = ShownField(this, QStringLiteral("txtMap3"), 8);
    txtMap4 = ShownField(this, QStringLiteral("txtMap4"), 6);
    txtMap5 = ShownField(this, QStringLiteral("txtMap5"), 9);
    txtName = ShownField(this, QStringLiteral("txtName"), 50);

    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(QStringLiteral("Start"), this), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("End"), this), 0, 2);
    grid->addWidget(optDateCredited, 1, 0);
    grid->addWidget(txtStartDateCredited, 1, 1);
    grid->addWidget(txtEndDateCredited, 1, 2);
    grid->addWidget(optDateEntered, 2, 0);
    grid->addWidget(txtStartDateEntered, 2, 1);
    grid->addWidget(txtEndDateEntered, 2, 2);
    grid->addWidget(optRecNum, 3, 0);
    grid->addWidget(txtStartRecNum, 3, 1);
    grid->addWidget(txtEndRecNum, 3, 2);
    grid->addWidget(chkSummaryOnly, 4, 0, 1, 3);
    auto* progress = new QGridLayout;
    progress->addWidget(new QLabel(QStringLiteral("Receipt #:"), this), 0, 0);
    progress->addWidget(txtRecNum, 0, 1);
    progress->addWidget(new QLabel(QStringLiteral("Control #:"), this), 1, 0);
    progress->addWidget(txtControl, 1, 1);
    auto* map = new QHBoxLayout;
    map->addWidget(txtMap3);
    map->addWidget(txtMap4);
    map->addWidget(txtMap5);
    progress->addLayout(map, 1, 2);
    progress->addWidget(new QLabel(QStringLiteral("Name:"), this), 2, 0);
    progress->addWidget(txtName, 2, 1, 1, 2);
    if (!m_tables.realEstate)
        for (QLineEdit* f : {txtMap3, txtMap4, txtMap5})
            f->hide();
    auto* row = new QHBoxLayout;
    buttons = MakeReportButtons(this, row);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(progress);
    layout->addLayout(row);

    // A full entry moves on to the next field.
    auto advance = [this](QLineEdit* field, int length, QWidget* next) {
        connect(field, &QLineEdit::textEdited, this, [field, length, next] {
            if (field->text().size() >= length && next->isEnabled())
                next->setFocus(Qt::OtherFocusReason);
        });
    };
    advance(txtStartDateCredited, 10, txtEndDateCredited);
    advance(txtStartDateEntered, 10, txtEndDateEntered);
    advance(txtStartRecNum, 12, txtEndRecNum);
    advance(txtEndDateCredited, 10, buttons.cmdPrint);
    advance(txtEndDateEntered, 10, buttons.cmdPrint);
    advance(txtEndRecNum, 12, buttons.cmdPrint);

    connect(optDateCredited, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            chooseRange(ReceiptRange::DateCredited);
    });
    connect(optDateEntered, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            chooseRange(ReceiptRange::DateEntered);
    });
    connect(optRecNum, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            chooseRange(ReceiptRange::RecNum);
    });
    connect(buttons.cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(buttons.cmdPrintPreview, &QPushButton::clicked, this,
            [this] { cmdPrintPreview_Click(); });
    optDateCredited->setChecked(true);
    chooseRange(ReceiptRange::DateCredited);
    session().LastScreenName = objectName();
}

void ReceiptReportForm::takeOrder() {
    m_order = session().ReceiptReportOrder;
    if (m_order != u"BILL" && m_order != u"DATE")
        m_order = QStringLiteral("RECN");
    setWindowTitle(m_order == u"BILL"   ? QStringLiteral("Bill Number Order")
                   : m_order == u"DATE" ? QStringLiteral("Date Credited Order")
                                        : QStringLiteral("Receipt Number Order"));
}

void ReceiptReportForm::chooseRange(ReceiptRange range) {
    m_range = range;
    const std::pair<QLineEdit*, QLineEdit*> pairs[] = {{txtStartDateCredited, txtEndDateCredited},
                                                       {txtStartDateEntered, txtEndDateEntered},
                                                       {txtStartRecNum, txtEndRecNum}};
    for (int i = 0; i < 3; ++i) {
        const bool on = i == int(range);
        pairs[i].first->setEnabled(on);
        pairs[i].second->setEnabled(on);
    }
    pairs[int(range)].first->setFocus(Qt::OtherFocusReason);
}

std::optional<ReceiptReportOptions> ReceiptReportForm::validOptions() {
    auto refuse = [](QLineEdit* field, const char* text, const char* title) {
        MsgBox(QString::fromLatin1(text), QString::fromLatin1(title), MsgButtons::Ok,
               MsgIcon::Exclamation);
        field->setFocus(Qt::OtherFocusReason);
        return std::optional<ReceiptReportOptions>();
    };
    ReceiptReportOptions options;
    options.range = m_range;
    options.order = m_order;
    options.summaryOnly = chkSummaryOnly->isChecked();
    if (m_range == ReceiptRange::RecNum) {
        const QString start = txtStartRecNum->text();
        if (start.size() != 12)
            return refuse(txtStartRecNum, "Start Receipt Number Must Be A Valid Receipt Number",
                          "Enter Start Receipt Number");
        const QString end = txtEndRecNum->text();
        if (end.size() != 12)
            return refuse(txtEndRecNum, "End Receipt Number Must Be A Valid Receipt Number",
                          "Enter End Receipt Number");
        options.startRecNum = start;
        options.endRecNum = end;
        return options;
    }
    QLineEdit* startField =
        m_range == ReceiptRange::DateCredited ? txtStartDateCredited : txtStartDateEntered;
    QLineEdit* endField =
        m_range == ReceiptRange::DateCredited ? txtEndDateCredited : txtEndDateEntered;
    const std::optional<QDate> start = ReportDate(startField->text());
    if (!start)
        return refuse(startField, "Start Date Must Be A Valid Date", "Enter Start Date");
    startField->setText(FormatDate(*start));
    const std::optional<QDate> end = ReportDate(endField->text());
    if (!end)
        return refuse(endField, "End Date Must Be A Valid Date", "Enter End Date");
    endField->setText(FormatDate(*end));
    options.startDate = *start;
    options.endDate = *end;
    return options;
}

void ReceiptReportForm::run(bool print) {
    // The menu sets the order before it shows the form, also when the form is open already.
    takeOrder();
    std::optional<ReceiptReportOptions> options = validOptions();
    if (!options)
        return;
    options->progress = [this](const QSqlRecord& r) {
        txtRecNum->setText(TextField(r.value(QStringLiteral("Recnum"))));
        txtControl->setText(TextField(r.value(QStringLiteral("Control"))));
        if (m_tables.realEstate) {
            txtMap3->setText(TextField(r.value(QStringLiteral("Map3"))));
            txtMap4->setText(TextField(r.value(QStringLiteral("Map4"))));
            txtMap5->setText(TextField(r.value(QStringLiteral("Map5"))));
        }
        txtName->setText(TextField(r.value(QStringLiteral("Name"))));
    };
    QSqlDatabase db = session().DbConnection;
    ReceiptReport report(db, m_tables, std::move(*options));
    if (print) {
        PrintReport(report.definition(), db);
        return;
    }
    QPointer<ReceiptReportForm> self(this);
    PreviewReport(
        report.definition(), this,
        [self] {
            if (self)
                self->cmdPrint_Click();
        },
        db);
}

void ReceiptReportForm::cmdPrint_Click() {
    run(true);
}

void ReceiptReportForm::cmdPrintPreview_Click() {
    run(false);
}

frmREPrintReceiptReport::frmREPrintReceiptReport(QWidget* parent)
    : ReceiptReportForm(RealEstateReportTables(), QStringLiteral("frmREPrintReceiptReport"),
                        parent) {}

frmPCPrintReceiptReport::frmPCPrintReceiptReport(QWidget* parent)
    : ReceiptReportForm(PerCapitaReportTables(), QStringLiteral("frmPCPrintReceiptReport"),
                        parent) {}
