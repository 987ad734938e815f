#include "desk/reports/change_reports.h"

#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/session.h"
#include "core/tax_database.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVBoxLayout>

namespace {

const char* const AdjustmentTitle = "Print Adjustment Report";
const char* const AddressTitle = "Print Change Of Address Report";

// X positions of the real-estate adjustment block, in twips.
constexpr double ControlX = 0;
constexpr double NameX = 800;
constexpr double NameWidth = 3100;
constexpr double PrevLandEdge = 4700;
constexpr double PrevImprEdge = 5600;
constexpr double PrevTaxEdge = 6800;
constexpr double AdjLandEdge = 7700;
constexpr double AdjImprEdge = 8600;
constexpr double AdjTaxEdge = 9800;
constexpr double NetEdge = 11000;
constexpr double DateX = 11200;
constexpr double ReasonX = 12200;
constexpr double TaxLabelX = 3000;

// Columns of the per capita adjustment lines (fixed pitch).
constexpr int PcPreviousEnd = 93;
constexpr int PcAdjustedEnd = 132;
constexpr int PcChangeEnd = 146;

QString text(const QSqlRecord& r, const char* column) {
    return TextField(r.value(QString::fromLatin1(column)));
}

QString mapOf(const QSqlRecord& r, QChar joint) {
    return text(r, "Map3") + joint + text(r, "Map4") + joint + text(r, "Map5");
}

// The marker of a body's pay flag, blank when unpaid.
QString paidMarker(const QString& word, const QString& flag) {
    if (flag == u"D")
        return QStringLiteral("***  %1 Paid at Discount  ***").arg(word);
    if (flag == u"F")
        return QStringLiteral("***  %1 Paid at Face  ***").arg(word);
    if (flag == u"P")
        return QStringLiteral("***  %1 Paid at Penalty  ***").arg(word);
    if (flag == u"I" && word == u"School")
        return QStringLiteral("***  School Installments Paid  ***");
    return QString();
}

QString interimOf(QSqlDatabase db) {
    const ReportLookups lookups = ReportLookups::read(db);
    return lookups.intNo != 0 ? QStringLiteral(" Interim #") + QString::number(lookups.intNo)
                              : QString();
}

QString rangeLine(const ChangeReportOptions& o) {
    return QStringLiteral("Transactions From ") + FormatDate(o.start) + QStringLiteral(" To ") +
           FormatDate(o.end);
}

QSqlRecord firstRow(QSqlDatabase db, const QString& sql, const QVariantList& values) {
    QSqlQuery q(db);
    q.prepare(sql);
    for (const QVariant& v : values)
        q.addBindValue(v);
    if (q.exec() && q.next())
        return q.record();
    return QSqlRecord();
}

// Before a block of lines: the page-full rule, and a new page besides when the block would
// run past the bottom of this one.
void startBlock(ReportPage& page, int lines, double points) {
    page.startRow();
    ReportSurface& s = page.surface();
    const double size = s.FontSize;
    s.FontSize = points;
    const double height = lines * s.TextHeight();
    s.FontSize = size;
    if (s.CurrentY + height > s.ScaleHeight())
        page.newPage();
}

} // namespace

AdjustmentReport::AdjustmentReport(QSqlDatabase db, const ReportTables& tables,
                                   ChangeReportOptions options)
    : m_db(db), m_tables(tables), m_options(std::move(options)) {
    m_names = TaxNames::read(db);
    ReportDefinition& d = m_definition;
    d.caption = QString::fromLatin1(AdjustmentTitle);
    d.completeTitle = QString::fromLatin1(AdjustmentTitle);
    d.completeText = QStringLiteral("Printing complete.");
    d.margin = tables.realEstate ? 2000 : 1500;
    d.print = d.preview = {PaperSize::Letter, PageOrientation::Landscape};
    const QString first =
        tables.realEstate
            ? QStringLiteral("Tax Collector Adjustment Report - County / ") + m_names.bodyWord +
                  interimOf(db)
            : QStringLiteral("Tax Collector Per Capita Adjustment Report") + interimOf(db);
    d.titles = {first, QString(), rangeLine(m_options)};
    if (tables.realEstate) {
        d.captions = [](ReportPage& page) {
            ReportSurface& s = page.surface();
            s.FontBold = false;
            auto at = [&s](double x, const char* caption) {
                s.CurrentX = x;
                s.Write(QString::fromLatin1(caption));
            };
            at(ControlX, "Control #");
            at(NameX, "Name");
            at(PrevLandEdge - 1100, "-----  Previous Assessment  -----");
            at(AdjLandEdge - 700, "-----  Adjusted Assessment  -----");
            s.WriteRight(NetEdge, QStringLiteral("Net"));
            at(ReasonX, "Adjust");
            s.Print();
            at(ControlX, "Bill #");
            at(NameX, "Map #");
            const std::pair<double, const char*> right[] = {
                {PrevLandEdge, "Land"}, {PrevImprEdge, "Impr"}, {PrevTaxEdge, "Tax"},
                {AdjLandEdge, "Land"},  {AdjImprEdge, "Impr"},  {AdjTaxEdge, "Tax"},
                {NetEdge, "Change"}};
            for (const auto& [edge, caption] : right)
                s.WriteRight(edge, QString::fromLatin1(caption));
            at(ReasonX, "Reason");
            at(DateX, "Date");
            s.Print();
        };
    } else {
        d.captions = [](ReportPage& page) {
            ReportSurface& s = page.surface();
            s.FontName = QStringLiteral("Courier New");
            s.FontSize = 8;
            s.FontBold = false;
            s.Print(QString(146, QLatin1Char('=')));
            s.Print(QStringLiteral("                                                             "
                                   "         Previous                               Adjusted     "
                                   "    Net"));
            s.Print(QStringLiteral("Control #               Name                 Bill # Adj      "
                                   "                             Tax                             "
                                   "       Tax        Change"));
            s.FontName = QStringLiteral("ARIAL");
            s.FontSize = 9;
        };
    }
    d.body = [this](ReportPage& page) { return draw(page); };
}

bool AdjustmentReport::draw(ReportPage& page) {
    const ReportTables& t = m_tables;
    const bool re = t.realEstate;
    ReportSurface& s = page.surface();
    const QStringList faces = t.faceColumns();
    const QString start = IsoDate(m_options.start);
    const QString end = IsoDate(m_options.end);
    // The name a bill bears now, through its address chain.
    const QString nameNow = QStringLiteral("coalesce((SELECT d.Name FROM %1 d WHERE d.BillNo = "
                                           "a.BillNo ORDER BY d.AddrID DESC LIMIT 1), a.Name)")
                                .arg(t.address);
    auto adjustmentTail = [&](bool exonerated) {
        switch (m_options.order) {
        case ChangeOrder::Control:
            return QStringLiteral(" ORDER BY a.Control, a.BillNo, a.AdjNo");
        case ChangeOrder::Name:
            return exonerated ? QStringLiteral(" ORDER BY a.Name, a.BillNo, a.AdjNo")
                              : QStringLiteral(" ORDER BY Name2, a.BillNo, a.AdjNo");
        case ChangeOrder::Map:
            if (re)
                return QStringLiteral(" ORDER BY a.Map3, a.Map4, a.Map5, a.BillNo, a.AdjNo");
            break;
        case ChangeOrder::Bill:
            break;
        }
        return QStringLiteral(" ORDER BY a.BillNo, a.AdjNo");
    };
    auto addedTail = [&] {
        switch (m_options.order) {
        case ChangeOrder::Control:
            return QStringLiteral(" ORDER BY a.Control, a.BillNo");
        case ChangeOrder::Name:
            return QStringLiteral(" ORDER BY a.Name, a.BillNo");
        case ChangeOrder::Map:
            if (re)
                return QStringLiteral(" ORDER BY a.Map3, a.Map4, a.Map5, a.BillNo");
            break;
        case ChangeOrder::Bill:
            break;
        }
        return QStringLiteral(" ORDER BY a.BillNo");
    };
    struct Section {
        QString word;
        QString sql;
        bool added;
    };
    const Section sections[] = {
        {QStringLiteral("ADJUSTED BILLS"),
         QStringLiteral("SELECT a.*, %1 AS Name2 FROM %2 a WHERE a.AdjDate >= ? AND a.AdjDate <= "
                        "? AND a.AdjFlag <> 'X'")
                 .arg(nameNow, t.adjust) +
             adjustmentTail(false),
         false},
        {QStringLiteral("EXONERATED BILLS"),
         QStringLiteral("SELECT a.*, %1 AS Name2 FROM %2 a WHERE a.AdjDate >= ? AND a.AdjDate <= "
                        "? AND a.AdjFlag = 'X'")
                 .arg(nameNow, t.adjust) +
             adjustmentTail(true),
         false},
        {QStringLiteral("ADDED BILLS"),
         QStringLiteral("SELECT a.*, %1 AS Name2, d.Reason AS Reason, d.AdjDate AS AdjDate, 0 AS "
                        "AdjNo FROM %2 d INNER JOIN %3 a ON d.BillNo = a.BillNo WHERE d.AdjDate "
                        ">= ? AND d.AdjDate <= ?")
                 .arg(nameNow, t.adds, t.master) +
             addedTail(),
         true}};

    const QString word = m_names.bodyWord;
    QStringList labels;
    if (re)
        labels << QStringLiteral("COUNTY:") << QStringLiteral("LIBRARY:")
               << m_names.countySpecial + QLatin1Char(':') << word.toUpper() + QLatin1Char(':')
               << m_names.municipal.value(0) + QLatin1Char(':')
               << m_names.municipal.value(1) + QLatin1Char(':')
               << m_names.municipal.value(2) + QLatin1Char(':') << QStringLiteral("SCHOOL:")
               << m_names.schoolSpecial + QLatin1Char(':');
    else {
        const QString up = (word.isEmpty() ? QStringLiteral("MUNICIPAL") : word.toUpper());
        labels << QStringLiteral("         COUNTY PER CAPITA:                          ")
               << QStringLiteral("                                    COUNTY OCCUPATION:         "
                                 "                 ")
               << (up + QStringLiteral(" PER CAPITA:                          ")).rightJustified(53)
               << (up + QStringLiteral(" OCCUPATION:                          ")).rightJustified(80)
               << QStringLiteral("         SCHOOL PER CAPITA:                          ")
               << QStringLiteral("                                    SCHOOL OCCUPATION:         "
                                 "                 ");
    }
    // The first face column of each body, where its paid marker stands, and the body's words.
    QHash<QString, std::pair<QString, QString>> firstOfBody;
    for (const DistributionBody& b : t.dist->bodies)
        firstOfBody.insert(b.lines.first(),
                           {b.payFlag, b.body == TaxingBody::County ? QStringLiteral("County")
                                       : b.body == TaxingBody::Twp  ? QStringLiteral("Township")
                                                                    : QStringLiteral("School")});

    for (const Section& section : sections) {
        m_definition.titles[1] = section.word;
        if (page.headerPrinted())
            page.newPage();
        else
            page.ensureHeader();
        QSqlQuery q(m_db);
        q.setForwardOnly(true);
        q.prepare(section.sql);
        q.addBindValue(start);
        q.addBindValue(end);
        if (!q.exec())
            return false;
        int count = 0;
        while (q.next()) {
            const QSqlRecord row = q.record();
            if (m_options.progress)
                m_options.progress(row);
            const QString billNo = text(row, "BillNo");
            const int adjNo = row.value(QStringLiteral("AdjNo")).toInt();
            // The bill before this change: the adjustment before it, or the bill as delivered.
            QSqlRecord before;
            if (!section.added) {
                before = firstRow(m_db,
                                  QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? AND AdjNo < ? "
                                                 "ORDER BY AdjNo DESC LIMIT 1")
                                      .arg(t.adjust),
                                  {billNo, adjNo});
                if (before.isEmpty())
                    before = firstRow(
                        m_db, QStringLiteral("SELECT * FROM %1 WHERE Control = ?").arg(t.master),
                        {text(row, "Control")});
            }
            const QSqlRecord master =
                section.added
                    ? row
                    : firstRow(m_db,
                               QStringLiteral("SELECT * FROM %1 WHERE BillNo = ?").arg(t.master),
                               {billNo});
            const Money beforeTax = SumColumns(before, faces);
            const Money afterTax = SumColumns(row, faces);
            const QString date = FormatDate(DateField(row.value(QStringLiteral("AdjDate"))));
            const QString reason = text(row, "Reason");
            const QString bill =
                billNo + (adjNo > 0 ? QLatin1Char('-') + QString::number(adjNo) : QString());
            // The block of a change is kept whole on its page.
            startBlock(page, re ? 3 + int(faces.size()) : 6 + int(faces.size()), re ? 9 : 8);
            if (re) {
                page.text(ControlX, text(row, "Control"));
                page.text(NameX, FittedText(s, text(row, "Name2"), NameWidth));
                auto assessed = [](const QSqlRecord& r, const char* c) {
                    return FormatNumber(double(r.value(QString::fromLatin1(c)).toLongLong()),
                                        u"#,###,###,##0");
                };
                page.right(PrevLandEdge, assessed(before, "AssLand"));
                page.right(PrevImprEdge, assessed(before, "AssImpr"));
                page.money(PrevTaxEdge, beforeTax, u"$#,###,##0.00");
                page.right(AdjLandEdge, assessed(row, "AssLand"));
                page.right(AdjImprEdge, assessed(row, "AssImpr"));
                page.money(AdjTaxEdge, afterTax, u"$#,###,##0.00");
                page.money(NetEdge, afterTax - beforeTax, u"$#,###,##0.00");
                page.text(DateX, date);
                page.text(ReasonX, FittedText(s, reason, s.ScaleWidth() - ReasonX));
                page.nextLine();
                page.text(ControlX, bill);
                page.text(NameX, mapOf(row, QLatin1Char('-')));
                page.nextLine();
                for (int i = 0; i < faces.size(); ++i) {
                    const QString& face = faces.at(i);
                    if (const auto it = firstOfBody.constFind(face); it != firstOfBody.cend())
                        page.text(0, paidMarker(it->second, FlagField(master.value(it->first))));
                    page.text(TaxLabelX, labels.at(i));
                    const Money was = MoneyField(before.value(face));
                    const Money now = MoneyField(row.value(face));
                    page.money(PrevTaxEdge, was, u"$#,###,##0.00");
                    page.money(AdjTaxEdge, now, u"$#,###,##0.00");
                    page.money(NetEdge, now - was, u"$#,###,##0.00");
                    page.nextLine();
                }
                page.nextLine();
            } else {
                s.FontName = QStringLiteral("Courier New");
                s.FontSize = 8;
                auto line = [&page](const QString& value) {
                    page.text(0, value);
                    page.nextLine();
                };
                auto amounts = [](QString label, Money was, Money now) {
                    PadTo(label, PcPreviousEnd, was.format(u"$#,###,##0.00"));
                    PadTo(label, PcAdjustedEnd, now.format(u"$#,###,##0.00"));
                    PadTo(label, PcChangeEnd, (now - was).format(u"$#,###,##0.00"));
                    return label;
                };
                line(text(row, "Control").leftJustified(24) +
                     text(row, "Name2").left(20).leftJustified(21) + billNo.rightJustified(6) +
                     QString::number(adjNo).rightJustified(4));
                for (int i = 0; i < faces.size(); ++i)
                    line(amounts(labels.at(i), MoneyField(before.value(faces.at(i))),
                                 MoneyField(row.value(faces.at(i)))));
                line(amounts(QStringLiteral("         Total Tax:      "), beforeTax, afterTax));
                line(QStringLiteral(" Reason:    ") + reason + QStringLiteral("    ") + date);
                for (const DistributionBody& b : t.dist->bodies) {
                    const QString marker = paidMarker(firstOfBody.value(b.lines.first()).second,
                                                      FlagField(master.value(b.payFlag)));
                    if (!marker.isEmpty())
                        line(marker);
                }
                line(QString(146, QLatin1Char('-')));
                s.FontName = QStringLiteral("ARIAL");
                s.FontSize = 9;
            }
            ++count;
        }
        if (count == 0) {
            page.startRow();
            page.centred(QStringLiteral("***  NO ADJUSTMENTS FOUND  ***"));
            page.nextLine(2);
        }
        page.bold(true);
        page.text(0, QStringLiteral("Total Transactions: ") + QString::number(count));
        page.nextLine();
        page.bold(false);
    }
    return true;
}

AddressReport::AddressReport(QSqlDatabase db, const ReportTables& tables,
                             ChangeReportOptions options)
    : m_db(db), m_tables(tables), m_options(std::move(options)) {
    const QString word = ReportLookups::read(db).bodyWord;
    ReportDefinition& d = m_definition;
    d.caption = QString::fromLatin1(AddressTitle);
    d.completeTitle = QString::fromLatin1(AddressTitle);
    d.completeText = QStringLiteral("Printing complete.");
    d.margin = 2000;
    const PageOrientation o =
        tables.realEstate ? PageOrientation::Portrait : PageOrientation::Landscape;
    d.print = d.preview = {PaperSize::Letter, o};
    QString title =
        tables.realEstate
            ? (m_options.reportableOnly ? QStringLiteral("Tax Collector Reportable Address "
                                                         "Change Report")
                                        : QStringLiteral("Tax Collector Address Change Report"))
            : QStringLiteral("Tax Collector Per Capita Address Change "
                             "Report");
    d.titles = {title, QStringLiteral("County/") + word + interimOf(db), rangeLine(m_options)};
    d.body = [this](ReportPage& page) { return draw(page); };
}

bool AddressReport::draw(ReportPage& page) {
    const ReportTables& t = m_tables;
    const bool re = t.realEstate;
    QString tail;
    switch (m_options.order) {
    case ChangeOrder::Control:
        tail = QStringLiteral(" ORDER BY Control, AddrID");
        break;
    case ChangeOrder::Name:
        tail = QStringLiteral(" ORDER BY Name, AddrID");
        break;
    case ChangeOrder::Map:
        tail = re ? QStringLiteral(" ORDER BY Map3, Map4, Map5, AddrID")
                  : QStringLiteral(" ORDER BY BillNo, AddrID");
        break;
    case ChangeOrder::Bill:
        tail = QStringLiteral(" ORDER BY BillNo, AddrID");
        break;
    }
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE ADate >= ? AND ADate <= ?").arg(t.address) +
              (m_options.reportableOnly ? QStringLiteral(" AND Reportable = '1'") : QString()) +
              tail);
    q.addBindValue(IsoDate(m_options.start));
    q.addBindValue(IsoDate(m_options.end));
    if (!q.exec() || !q.next()) {
        MsgBox(QStringLiteral("There are no address changes made in this date range."),
               QString::fromLatin1(AddressTitle));
        return false;
    }
    ReportSurface& s = page.surface();
    const double half = s.ScaleWidth() / 2;
    auto block = [](const QSqlRecord& r) {
        return QStringList{text(r, "Name"), text(r, "Addr1"), text(r, "Addr2"),
                           text(r, "City") + QStringLiteral(", ") + text(r, "State") +
                               QStringLiteral(".  ") + text(r, "ZipCode") + QLatin1Char(' ') +
                               text(r, "ZipCode2")};
    };
    do {
        const QSqlRecord row = q.record();
        if (m_options.progress)
            m_options.progress(row);
        QSqlRecord before = firstRow(m_db,
                                     QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? AND AddrID "
                                                    "< ? ORDER BY AddrID DESC LIMIT 1")
                                         .arg(t.address),
                                     {text(row, "BillNo"), row.value(QStringLiteral("AddrID"))});
        if (before.isEmpty())
            before =
                firstRow(m_db, QStringLiteral("SELECT * FROM %1 WHERE Control = ?").arg(t.master),
                         {text(row, "Control")});
        startBlock(page, 10, 9);
        page.bold(true);
        page.text(0, QStringLiteral("B E F O R E   C H A N G E"));
        page.text(half, QStringLiteral("A F T E R    C H A N G E"));
        page.nextLine();
        page.bold(false);
        const QStringList was = block(before);
        const QStringList now = block(row);
        for (int i = 0; i < was.size(); ++i) {
            page.text(0, was.at(i));
            page.text(half, now.at(i));
            page.nextLine();
        }
        QString control = QStringLiteral("Control #: ") + text(row, "Control");
        if (re) {
            // A change recorded without the map number shows the bill's.
            const QSqlRecord mapped =
                !text(row, "Map3").trimmed().isEmpty()
                    ? row
                    : firstRow(m_db,
                               QStringLiteral("SELECT Map3, Map4, Map5 FROM %1 WHERE Control = ?")
                                   .arg(t.master),
                               {text(row, "Control")});
            control += QStringLiteral("  Map #: ") + mapOf(mapped, QLatin1Char('-'));
        }
        page.text(0, control);
        page.nextLine();
        page.text(0, QStringLiteral("Change #: ") + QString::number(row.value("AddrID").toInt()));
        page.nextLine();
        page.text(0, QStringLiteral("Change Date: ") +
                         FormatDate(DateField(row.value(QStringLiteral("ADate")))));
        page.nextLine();
        page.text(0, QStringLiteral("Reason: ") + text(row, "Reason"));
        page.nextLine(2);
    } while (q.next());
    return true;
}

bool PrintAdjustmentReportSilently(QSqlDatabase db, const ReportTables& tables, const QDate& start,
                                   const QDate& end) {
    ChangeReportOptions options;
    options.start = start;
    options.end = end;
    AdjustmentReport report(db, tables, options);
    const bool silent = session().SilentPrint;
    session().SilentPrint = true;
    const bool printed = PrintReport(report.definition(), db);
    session().SilentPrint = silent;
    return printed;
}

ChangeReportForm::ChangeReportForm(const ReportTables& tables, bool address, const QString& name,
                                   QWidget* parent)
    : QWidget(parent), m_tables(tables), m_address(address) {
    setObjectName(name);
    setWindowTitle(QString::fromLatin1(address ? AddressTitle : AdjustmentTitle));
    txtStartDate = NamedField(this, QStringLiteral("txtStartDate"), 10);
    txtEndDate = NamedField(this, QStringLiteral("txtEndDate"), 10);
    auto option = [this](const char* objectName, const char* caption) {
        auto* o = new QRadioButton(QString::fromLatin1(caption), this);
        o->setObjectName(QString::fromLatin1(objectName));
        return o;
    };
    optControl = option("optControl", address ? "Control Nummber Order" : "Control #");
    optBill = option("optBill", address ? "Bill Nummber Order" : "Bill #");
    optName = option("optName", address ? "Name Order" : "Name");
    optMap = option("optMap", address ? "Map Number Order" : "Map #");
    optBill->setChecked(true);
    txtControl = ShownField(this, QStringLiteral("txtControl"), 6);
    txtBillNo = ShownField(this, QStringLiteral("txtBillNo"), 5);
    txtName = ShownField(this, QStringLiteral("txtName"), 50);
    txtMap3 = ShownField(this, QStringLiteral("txtMap3"), 8);
    txtMap4 = ShownField(this, QStringLiteral("txtMap4"), 6);
    txtMap5 = ShownField(this, QStringLiteral("txtMap5"), 9);

    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(QStringLiteral("Start Date:"), this), 0, 0);
    grid->addWidget(txtStartDate, 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("End Date:"), this), 1, 0);
    grid->addWidget(txtEndDate, 1, 1);
    auto* options = new QVBoxLayout;
    for (QRadioButton* o : {optControl, optBill, optName, optMap})
        options->addWidget(o);
    if (!tables.realEstate) {
        optMap->hide();
        for (QLineEdit* f : {txtMap3, txtMap4, txtMap5})
            f->hide();
    }
    if (address && tables.realEstate) {
        chkReportable = new QCheckBox(QStringLiteral("Print Reportable Changes Only"), this);
        chkReportable->setObjectName(QStringLiteral("chkReportable"));
        options->addWidget(chkReportable);
    }
    auto* progress = new QGridLayout;
    progress->addWidget(new QLabel(QStringLiteral("Control #:"), this), 0, 0);
    progress->addWidget(txtControl, 0, 1);
    progress->addWidget(new QLabel(QStringLiteral("Bill #:"), this), 0, 2);
    progress->addWidget(txtBillNo, 0, 3);
    auto* map = new QHBoxLayout;
    map->addWidget(txtMap3);
    map->addWidget(txtMap4);
    map->addWidget(txtMap5);
    progress->addLayout(map, 1, 1, 1, 3);
    progress->addWidget(new QLabel(QStringLiteral("Name:"), this), 2, 0);
    progress->addWidget(txtName, 2, 1, 1, 3);
    auto* row = new QHBoxLayout;
    buttons = MakeReportButtons(this, row);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(options);
    layout->addLayout(progress);
    layout->addLayout(row);
    connect(txtStartDate, &QLineEdit::textEdited, this, [this] {
        if (txtStartDate->text().size() >= 10)
            txtEndDate->setFocus(Qt::OtherFocusReason);
    });
    connect(buttons.cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(buttons.cmdPrintPreview, &QPushButton::clicked, this,
            [this] { cmdPrintPreview_Click(); });
    session().LastScreenName = objectName();
}

void ChangeReportForm::run(bool print) {
    auto refuse = [](QLineEdit* field, const char* message, const char* title) {
        MsgBox(QString::fromLatin1(message), QString::fromLatin1(title), MsgButtons::Ok,
               MsgIcon::Exclamation);
        field->setFocus(Qt::OtherFocusReason);
    };
    const std::optional<QDate> start = ReportDate(txtStartDate->text());
    if (!start)
        return refuse(txtStartDate, "Start Date Must Be A Valid Date", "Enter Start Date");
    txtStartDate->setText(FormatDate(*start));
    const std::optional<QDate> end = ReportDate(txtEndDate->text());
    if (!end)
        return refuse(txtEndDate, "End Date Must Be A Valid Date", "Enter End Date");
    txtEndDate->setText(FormatDate(*end));
    ChangeReportOptions options;
    options.start = *start;
    options.end = *end;
    options.order = optControl->isChecked() ? ChangeOrder::Control
                    : optName->isChecked()  ? ChangeOrder::Name
                    : optMap->isChecked()   ? ChangeOrder::Map
                                            : ChangeOrder::Bill;
    options.reportableOnly = chkReportable && chkReportable->isChecked();
    options.progress = [this](const QSqlRecord& r) {
        txtControl->setText(text(r, "Control"));
        txtBillNo->setText(text(r, "BillNo"));
        txtName->setText(text(r, "Name"));
        if (m_tables.realEstate) {
            txtMap3->setText(text(r, "Map3"));
            txtMap4->setText(text(r, "Map4"));
            txtMap5->setText(text(r, "Map5"));
        }
    };
    QSqlDatabase db = session().DbConnection;
    QPointer<ChangeReportForm> self(this);
    auto again = [self] {
        if (self)
            self->cmdPrint_Click();
    };
    if (m_address) {
        AddressReport report(db, m_tables, std::move(options));
        if (print)
            PrintReport(report.definition(), db);
        else
            PreviewReport(report.definition(), this, again, db);
    } else {
        AdjustmentReport report(db, m_tables, std::move(options));
        if (print)
            PrintReport(report.definition(), db);
        else
            PreviewReport(report.definition(), this, again, db);
    }
}

void ChangeReportForm::cmdPrint_Click() {
    run(true);
}

void ChangeReportForm::cmdPrintPreview_Click() {
    run(false);
}

frmREPrintAdjustmentReport::frmREPrintAdjustmentReport(QWidget* parent)
    : ChangeReportForm(RealEstateReportTables(), false,
                       QStringLiteral("frmREPrintAdjustmentReport"), parent) {}
frmPCPrintAdjustmentReport::frmPCPrintAdjustmentReport(QWidget* parent)
    : ChangeReportForm(PerCapitaReportTables(), false, QStringLiteral("frmPCPrintAdjustmentReport"),
                       parent) {}
frmREPrintAddressReport::frmREPrintAddressReport(QWidget* parent)
    : ChangeReportForm(RealEstateReportTables(), true, QStringLiteral("frmREPrintAddressReport"),
                       parent) {}
frmPCPrintAddressReport::frmPCPrintAddressReport(QWidget* parent)
    : ChangeReportForm(PerCapitaReportTables(), true, QStringLiteral("frmPCPrintAddressReport"),
                       parent) {}
