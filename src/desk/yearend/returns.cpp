#include "desk/yearend/returns.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/mail.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSaveFile>
#include <QVBoxLayout>
#include <cmath>
#include <vector>

namespace {

const char* const ProofTitle = "Print Returns Proof";
const char* const ProofDoneTitle = "Print Receipt Report";

QString fixed(const QString& text, int width) {
    return text.left(width).leftJustified(width);
}

QString field(const QSqlRecord& row, const char* column) {
    return TextField(row.value(QLatin1String(column)));
}

// Courier New at the largest size up to 8 point that fits `chars` characters in the width.
double courierSize(double width, int chars) {
    const double size = std::floor(width / (double(chars) * 12.0) * 2.0) / 2.0;
    return std::min(8.0, std::max(5.0, size));
}

// A count, a face and a penalty total.
struct Tally {
    qint64 count = 0;
    Money face;
    Money penalty;
    void add(Money f, Money p) {
        if (f.isZero() && p.isZero())
            return;
        ++count;
        face += f;
        penalty += p;
    }
};

// The running heading of a Courier proof page.
struct ProofPage {
    ReportSurface& s;
    QString heading;
    QString rule;
    QStringList captions;
    int page = 0;

    void newPage() {
        if (page > 0)
            s.NewPage();
        ++page;
        s.CurrentY = 0;
        s.CurrentX = 0;
        s.Print(heading + FormatNumber(page, u"###0"));
        s.Print(rule);
        for (const QString& caption : captions)
            s.Print(caption);
        s.Print();
    }
    void line(const QString& text) {
        if (page == 0 || s.CurrentY + 2 * s.TextHeight() > s.ScaleHeight())
            newPage();
        s.CurrentX = 0;
        s.Print(text);
    }
};

void summaryBox(ReportSurface& s, double top, const QStringList& labels, qint64 count, Money face,
                Money penalty) {
    s.FontName = QStringLiteral("Arial");
    s.FontSize = 9;
    s.FontBold = false;
    s.Box(0, top, 7000, top + 2500);
    s.CurrentY = top + 400;
    s.CurrentX = 200;
    s.Print(labels.at(0) + FormatNumber(double(count), u"###,##0"));
    s.CurrentX = 200;
    s.Print(labels.at(1) + face.format(u"###,###,###.00"));
    s.CurrentX = 200;
    s.Print(labels.at(2) + penalty.format(u"###,###,###.00"));
    s.CurrentY = top + 2500 + 200;
}

} // namespace

ReReturnsProof::ReReturnsProof(QSqlDatabase db, BillProgress progress)
    : m_db(db), m_progress(std::move(progress)), m_office(YearEndOffice::read(db)) {
    m_definition.caption = QString::fromLatin1(ProofTitle);
    m_definition.completeTitle = QString::fromLatin1(ProofDoneTitle);
    m_definition.margin = 0;
    m_definition.body = [this](ReportPage& page) { return draw(page); };
}

bool ReReturnsProof::draw(ReportPage& page) {
    ReportSurface& s = page.surface();
    // The columns: the lines of the millage table.
    std::vector<std::size_t> lines;
    QStringList names;
    for (std::size_t i = 0; i < ReLineCount; ++i) {
        if (m_office.names[i].isEmpty())
            continue;
        lines.push_back(i);
        switch (i) {
        case 0:
            names << QStringLiteral("County");
            break;
        case 3:
            names << m_office.shortWord;
            break;
        case 7:
            names << QStringLiteral("School");
            break;
        default:
            names << m_office.names[i].left(10);
            break;
        }
    }
    const int k = int(lines.size());
    const int chars = 7 + 8 + 26 + 24 + 12 * k + 4 + 15;
    s.FontName = QStringLiteral("Courier New");
    s.FontBold = false;
    s.FontSize = courierSize(s.ScaleWidth(), chars);

    QString first = fixed(QStringLiteral("Bill"), 7) + fixed(QStringLiteral("Control"), 8) +
                    fixed(QStringLiteral("Map"), 26) + fixed(QString(), 24);
    QString second = fixed(QStringLiteral("Number"), 7) + fixed(QStringLiteral("Number"), 8) +
                     fixed(QStringLiteral("Number"), 26) + fixed(QStringLiteral("Name"), 24);
    for (const QString& name : names) {
        first += name.rightJustified(12);
        second += QStringLiteral("Face").rightJustified(12);
    }
    first += QString(4, u' ') + QStringLiteral("Total").rightJustified(15);
    second += QString(4, u' ') + QStringLiteral("Face").rightJustified(15);
    ProofPage proof{
        s,
        QStringLiteral("Date: ") + FormatDate(Clock::today()) +
            QStringLiteral("             Tax Collector Real Estate Returns Report for ") +
            m_office.lookups.twpBoro + QStringLiteral("                Page: "),
        QString(chars, u'-'),
        {first, second}};

    Tally all;
    // County, municipal and school columns of the summary, and each body's total.
    std::array<Tally, ReLineCount> byLine;
    Tally schoolFull, schoolInstallments;
    std::array<Tally, 3> byBody;

    m_walk = WalkBills(
        m_db, false,
        QStringLiteral("SELECT * FROM TCMaster WHERE (trim(CPayFlag) = '' OR trim(TPayFlag) = '' "
                       "OR trim(SPayFlag) = '' OR (SPayFlag = 'I' AND (trim(Pay1Flag) = '' OR "
                       "trim(Pay2Flag) = '' OR trim(Pay3Flag) = ''))) ORDER BY BillNo"),
        QString::fromLatin1(IncompleteAdjustmentText), [&](const QSqlRecord& bill, int adjNo) {
            if (m_progress)
                m_progress(bill);
            const ReOpenBill open = ReOpenAmounts(bill, m_office.streetLights);
            if (!open.prints)
                return;
            QString line = fixed(field(bill, "BillNo"), 7) + fixed(field(bill, "Control"), 8) +
                           fixed(field(bill, "Map3").trimmed() + QLatin1Char(' ') +
                                     field(bill, "Map4").trimmed() + QLatin1Char(' ') +
                                     field(bill, "Map5").trimmed(),
                                 26) +
                           fixed(field(bill, "Name"), 23) + QLatin1Char(' ');
            for (std::size_t i : lines)
                line += PadFormat(open.face[i], "#,###,###.##").rightJustified(12);
            line += (adjNo > 0 ? QString::number(adjNo).rightJustified(3) : QString(3, u' ')) +
                    QLatin1Char(' ');
            line += PadFormat(open.faceTotal(), "###,###,###.##").rightJustified(15);
            proof.line(line);

            all.add(open.faceTotal(), open.penaltyTotal());
            std::array<Money, 3> bodyFace{}, bodyPenalty{};
            for (std::size_t i = 0; i < ReLineCount; ++i) {
                const std::size_t body = std::size_t(ReLineBody[i]);
                bodyFace[body] += open.face[i];
                bodyPenalty[body] += open.penalty[i];
                if (i == 7) {
                    const bool installments = field(bill, "SPayFlag").trimmed() == u"I";
                    (installments ? schoolInstallments : schoolFull)
                        .add(open.face[i], open.penalty[i]);
                } else {
                    byLine[i].add(open.face[i], open.penalty[i]);
                }
            }
            for (std::size_t b = 0; b < 3; ++b)
                byBody[b].add(bodyFace[b], bodyPenalty[b]);
        });
    if (!m_walk.ok)
        return proof.page > 0;
    if (proof.page == 0)
        proof.newPage();

    // The summary, on the page of the last row when it fits.
    const double needed = 2700 + 3 * (400 + 3 * 260) + 200;
    if (s.CurrentY + needed > s.ScaleHeight())
        proof.newPage();
    summaryBox(s, s.CurrentY + 200,
               {QStringLiteral("                   Number Of Returns: "),
                QStringLiteral("              Total Face Amount: "),
                QStringLiteral("           Total Penalty Amount: ")},
               all.count, all.face, all.penalty);

    struct Column {
        QString caption;
        Tally tally;
    };
    auto table = [&](const std::vector<Column>& columns) {
        const double labelWidth = 3200;
        const double columnWidth = 2400;
        s.FontName = QStringLiteral("Arial");
        s.FontSize = 12;
        s.FontBold = true;
        for (std::size_t c = 0; c < columns.size(); ++c)
            s.WriteRight(labelWidth + double(c + 1) * columnWidth, columns[c].caption);
        s.Print();
        s.FontSize = 9;
        s.FontBold = false;
        auto row = [&](const QString& label, const std::function<QString(const Tally&)>& value) {
            s.CurrentX = 0;
            s.Write(label);
            for (std::size_t c = 0; c < columns.size(); ++c)
                s.WriteRight(labelWidth + double(c + 1) * columnWidth, value(columns[c].tally));
            s.Print();
        };
        row(QStringLiteral("Number Of Returns:"),
            [](const Tally& t) { return FormatNumber(double(t.count), u"###,##0"); });
        row(QStringLiteral("Total Face Amount:"),
            [](const Tally& t) { return t.face.format(u"#,###,###.00"); });
        row(QStringLiteral("Total Penalty Amount:"),
            [](const Tally& t) { return t.penalty.format(u"#,###,###.00"); });
        s.Print();
    };
    std::vector<Column> county{{QStringLiteral("County"), byLine[0]},
                               {QStringLiteral("Library"), byLine[1]}};
    if (!m_office.names[2].isEmpty())
        county.push_back({m_office.names[2], byLine[2]});
    county.push_back({QStringLiteral("Total"), byBody[0]});
    table(county);
    std::vector<Column> municipal{{m_office.lookups.bodyWord, byLine[3]}};
    for (std::size_t i = 4; i < 7; ++i)
        if (!m_office.names[i].isEmpty())
            municipal.push_back({m_office.names[i], byLine[i]});
    municipal.push_back({QStringLiteral("Total"), byBody[1]});
    table(municipal);
    std::vector<Column> school{{QStringLiteral("School - Full Payments"), schoolFull}};
    if (!m_office.names[8].isEmpty())
        school.push_back({m_office.names[8], byLine[8]});
    school.push_back({QStringLiteral("School - Installments"), schoolInstallments});
    school.push_back({QStringLiteral("Total"), byBody[2]});
    table(school);
    return true;
}

PcReturnsProof::PcReturnsProof(QSqlDatabase db, BillProgress progress)
    : m_db(db), m_progress(std::move(progress)), m_office(YearEndOffice::read(db)) {
    m_definition.caption = QString::fromLatin1(ProofTitle);
    m_definition.completeTitle = QString::fromLatin1(ProofDoneTitle);
    m_definition.margin = 0;
    m_definition.body = [this](ReportPage& page) { return draw(page); };
}

bool PcReturnsProof::draw(ReportPage& page) {
    ReportSurface& s = page.surface();
    const int chars = 9 + 36 + 30 + 4 * 14;
    s.FontName = QStringLiteral("Courier New");
    s.FontBold = false;
    s.FontSize = courierSize(s.ScaleWidth(), chars);
    const QString first = fixed(QStringLiteral("Bill"), 9) + fixed(QStringLiteral("Control"), 36) +
                          fixed(QString(), 30) + QStringLiteral("County").rightJustified(14) +
                          m_office.shortWord.rightJustified(14) +
                          QStringLiteral("School").rightJustified(14) +
                          QStringLiteral("Total").rightJustified(14);
    const QString second = fixed(QStringLiteral("Number"), 9) +
                           fixed(QStringLiteral("Number"), 36) + fixed(QStringLiteral("Name"), 30) +
                           QStringLiteral("Face").rightJustified(14).repeated(4);
    ProofPage proof{s,
                    QStringLiteral("Date: ") + FormatDate(Clock::today()) +
                        QStringLiteral("    Tax Collector Per Capita Returns Report for ") +
                        m_office.lookups.twpBoro + QStringLiteral("       Page: "),
                    QString(chars - 20, u'-'),
                    {first, second}};
    Tally all;
    m_walk = WalkBills(
        m_db, true,
        QStringLiteral("SELECT * FROM PCMaster WHERE trim(CPayFlag) = '' OR trim(TPayFlag) = '' OR "
                       "trim(SPayFlag) = '' ORDER BY Name, BillNo"),
        QString::fromLatin1(IncompleteAdjustmentText), [&](const QSqlRecord& bill, int) {
            if (m_progress)
                m_progress(bill);
            const PcOpenBill open = PcOpenAmounts(bill);
            if (!open.prints)
                return;
            QString line = fixed(field(bill, "BillNo"), 9) + fixed(field(bill, "Control"), 36) +
                           fixed(field(bill, "Name"), 29) + QLatin1Char(' ');
            for (std::size_t body = 0; body < 3; ++body)
                line += PadFormat(open.face[2 * body] + open.face[2 * body + 1], "#,###,###.##")
                            .rightJustified(14);
            line += PadFormat(open.faceTotal(), "###,###,###.##").rightJustified(14);
            proof.line(line);
            all.add(open.faceTotal(), open.penaltyTotal());
        });
    if (!m_walk.ok)
        return proof.page > 0;
    if (proof.page == 0)
        proof.newPage();
    if (s.CurrentY + 2900 > s.ScaleHeight())
        proof.newPage();
    summaryBox(s, s.CurrentY + 200,
               {QStringLiteral("                 Number Of Returns: "),
                QStringLiteral("       Total Face Amount: "),
                QStringLiteral("    Total Penalty Amount: ")},
               all.count, all.face, all.penalty);
    return true;
}

QString ReturnsFileLine(const ReOpenBill& open) {
    const QSqlRecord& bill = open.bill;
    const QChar quote(34);
    QStringList fields;
    auto quoted = [&](const char* column) {
        fields << quote + NullToText(bill.value(QLatin1String(column))) + quote;
    };
    auto bare = [&](const char* column) {
        fields << QString::number(bill.value(QLatin1String(column)).toLongLong());
    };
    for (const char* column :
         {"District", "Ward",  "Control", "BillNo", "Map3",     "Map4",    "Map5",     "Name",
          "CoOwner",  "Addr1", "Addr2",   "City",   "State",    "ZipCode", "ZipCode2", "Acreage",
          "LandUse",  "Desc1", "Desc2",   "Desc3",  "DeedBook", "DeedPage"})
        quoted(column);
    for (const char* column : {"AssLand", "AssImpr", "MVLand", "MVImpr"})
        bare(column);
    for (std::size_t i = 0; i < ReLineCount; ++i) {
        fields << open.face[i].format(u"######.00");
        fields << open.penalty[i].format(u"######.00");
    }
    for (const char* column : {"Exempt", "CAddrFlag", "AdjFlag", "CPayFlag", "TPayFlag", "SPayFlag",
                               "Pay1Flag", "Pay2Flag", "Pay3Flag", "TaxYear"})
        quoted(column);
    return fields.join(QLatin1Char(','));
}

QString ReturnsFileName(const QString& taxYear) {
    return QStringLiteral("RETURNS") + taxYear + QStringLiteral(".txt");
}

ReturnsFileResult WriteReturnsFile(QSqlDatabase db, const QString& path) {
    ReturnsFileResult result;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        result.error = QStringLiteral("The file %1 could not be written: %2")
                           .arg(QDir::toNativeSeparators(path), file.errorString());
        return result;
    }
    const bool streetLights = ReportLookups::read(db).district == u"39";
    QByteArray buffer;
    result.walk = WalkBills(
        db, false,
        QStringLiteral("SELECT * FROM TCMaster WHERE (CPayFlag = ' ' OR TPayFlag = ' ' OR "
                       "SPayFlag = ' ' OR (SPayFlag = 'I' AND (Pay1Flag = ' ' OR Pay2Flag = ' ' "
                       "OR Pay3Flag = ' '))) ORDER BY BillNo"),
        QString::fromLatin1(IncompleteAdjustmentText), [&](const QSqlRecord& bill, int) {
            const ReOpenBill open = ReOpenAmounts(bill, streetLights);
            if (!open.prints)
                return;
            buffer += ReturnsFileLine(open).toUtf8();
            buffer += '\n';
            ++result.lines;
            if (buffer.size() > (1 << 20)) {
                file.write(buffer);
                buffer.clear();
            }
        });
    // A fault leaves the lines before it in the file; the next run writes it anew.
    file.write(buffer);
    if (file.error() != QFileDevice::NoError) {
        result.error = QStringLiteral("The file %1 could not be written: %2")
                           .arg(QDir::toNativeSeparators(path), file.errorString());
        return result;
    }
    file.close();
    result.ok = result.walk.ok;
    return result;
}

frmREPrintReturnsProof::frmREPrintReturnsProof(QWidget* parent)
    : YearEndReportForm("frmREPrintReturnsProof", QString::fromLatin1(ProofTitle), false, parent) {}

std::unique_ptr<YearEndReport> frmREPrintReturnsProof::makeReport(const BillProgress& progress) {
    return std::make_unique<ReReturnsProof>(session().DbConnection, progress);
}

frmPCPrintReturnsProof::frmPCPrintReturnsProof(QWidget* parent)
    : YearEndReportForm("frmPCPrintReturnsProof", QString::fromLatin1(ProofTitle), true, parent) {}

std::unique_ptr<YearEndReport> frmPCPrintReturnsProof::makeReport(const BillProgress& progress) {
    return std::make_unique<PcReturnsProof>(session().DbConnection, progress);
}

frmRECreateReturnsFile::frmRECreateReturnsFile(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmRECreateReturnsFile"));
    setWindowTitle(QStringLiteral("Create Left For Collections File"));
    lblCreate =
        NamedLabel(this, QStringLiteral("lblCreate"),
                   QStringLiteral("***  The Data File will be created on your DeskTop  ***"));
    lblCreate->setAlignment(Qt::AlignCenter);
    chkEmail = new QCheckBox(QStringLiteral("Email the file to Tax Claim"), this);
    chkEmail->setObjectName(QStringLiteral("chkEmail"));
    cmdCreate = NamedButton(this, QStringLiteral("cmdCreate"), QStringLiteral("&Create File"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdCreate);
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblCreate);
    layout->addWidget(chkEmail);
    layout->addLayout(buttons);
    setMinimumWidth(460);
    connect(cmdCreate, &QPushButton::clicked, this, [this] { cmdCreate_Click(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void frmRECreateReturnsFile::cmdCreate_Click() {
    QSqlDatabase db = session().DbConnection;
    const QString createTitle = QStringLiteral("Create Left For Collections File");
    const QString mailTitle = QStringLiteral("Email Left For Collections File");
    const YearEndOffice office = YearEndOffice::read(db);
    const QString name = ReturnsFileName(office.taxYear);
    QDir desktop(DesktopFolderPath());
    desktop.mkpath(QStringLiteral("."));
    const QString path = desktop.filePath(name);

    const ReturnsFileResult written = WriteReturnsFile(db, path);
    if (!written.error.isEmpty()) {
        MsgBox(written.error, createTitle, MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    if (!written.walk.ok) {
        if (!written.walk.faultText.isEmpty())
            MsgBox(written.walk.faultText, written.walk.faultTitle, MsgButtons::Ok,
                   MsgIcon::Critical);
        else
            MsgBox(written.walk.error, createTitle, MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    MsgBox(QStringLiteral("Left For Collections File is created and on your desktop."), createTitle,
           MsgButtons::Ok, MsgIcon::Information);
    if (!chkEmail->isChecked())
        return;

    // The copy that goes out by mail stays in the program's folder.
    const QString copy = QDir(session().programFolder()).filePath(name);
    QFile::remove(copy);
    if (!QFile::copy(path, copy)) {
        MsgBox(QStringLiteral("The file could not be copied to %1.")
                   .arg(QDir::toNativeSeparators(copy)),
               mailTitle, MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    MailMessage message;
    message.subject = QStringLiteral("Real Estate RETURNS PROOF & DATABASE for Tax Year ") +
                      office.taxYear + QStringLiteral(" - District ") + office.lookups.district +
                      office.lookups.ward;
    message.body = message.subject;
    message.attachmentPath = copy;
    message.attachmentName = QStringLiteral("RETURNS") + office.lookups.district + office.taxYear +
                             QStringLiteral(".txt");
    const MailResult sent = SendMailTo(db, QLatin1String(MailSettingName::CountyMailbox), message);
    if (!sent.ok) {
        MsgBox(sent.error, mailTitle, MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    MsgBox(QStringLiteral("The Left For Collections file has been emailed to the County"),
           mailTitle);
}
