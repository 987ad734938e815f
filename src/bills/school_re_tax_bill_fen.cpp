#include "bills/school_re_tax_bill_fen.h"

#include "bills/tax_bill_positions.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_surface.h"

#include <QCoreApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QVBoxLayout>

namespace {

const char* const MailersTitle = "Select Number Of Mailers";
const char16_t* const StatementMoney = u"$###,###,###.00";
const char16_t* const AssessmentMoney = u"$###,###,##0.00";
const char16_t* const CouponMoney = u"#,###,###,###.00";

QString text(const QSqlRecord& r, const char* column) {
    return TextField(r.value(QLatin1String(column)));
}
QString trimmed(const QSqlRecord& r, const char* column) {
    return text(r, column).trimmed();
}
Money money(const QSqlRecord& r, const char* column) {
    return MoneyField(r.value(QLatin1String(column)));
}
QString dateText(const QSqlRecord& r, const char* column) {
    const QDate d = DateField(r.value(QLatin1String(column)));
    return d.isValid() ? d.toString(QStringLiteral("MM/dd/yyyy")) : QString();
}

void useFont(ReportSurface& s, double size, bool bold = false) {
    s.FontName = QStringLiteral("Arial");
    s.FontSize = size;
    s.FontBold = bold;
    s.FontItalic = false;
    s.FontUnderline = false;
    s.FontStrikethru = false;
}

// Draws by inches on the page.
struct Inches {
    ReportSurface& s;
    double x(double inches) const { return PageInches(s, inches, PageAxis::Across); }
    double y(double inches) const { return PageInches(s, inches, PageAxis::Down); }
    void at(double left, double top, const QString& t) const {
        s.CurrentX = x(left);
        s.CurrentY = y(top);
        s.Write(t);
    }
    void right(double edge, double top, const QString& t) const {
        s.CurrentY = y(top);
        s.WriteRight(x(edge), t);
    }
    // Centred on `centre`.
    void centred(double centre, double top, const QString& t) const {
        s.CurrentX = x(centre) - HalfOf(s.TextWidth(t));
        s.CurrentY = y(top);
        s.Write(t);
    }
    // Lines from `top` down, one a line of the current font.
    void lines(double left, double top, const QStringList& texts) const {
        s.CurrentY = y(top);
        for (const QString& t : texts) {
            s.CurrentX = x(left);
            s.Print(t);
        }
    }
};

} // namespace

void DrawSchoolStatement(ReportSurface& s, const SchoolStatementOffice& office,
                         const QSqlRecord& bill) {
    const QSqlRecord& rates = office.rates;
    const Inches in{s};
    const QString year =
        trimmed(rates, "TaxYear").isEmpty() ? trimmed(bill, "TaxYear") : trimmed(rates, "TaxYear");
    const qint64 land = bill.value(QStringLiteral("AssLand")).toLongLong();
    const qint64 impr = bill.value(QStringLiteral("AssImpr")).toLongLong();
    const QString school = office.schoolName.trimmed();
    s.DrawWidth = 3;

    // The head.
    useFont(s, 14, true);
    in.centred(HalfOf(8.5) - 0.25, 0.2, year + QStringLiteral(" STATEMENT OF REAL ESTATE TAXES"));
    useFont(s, 9);
    in.lines(5.6, 0.6,
             {QStringLiteral("District ") + trimmed(bill, "District"),
              QStringLiteral("Control Number  ") + trimmed(bill, "Control"),
              QStringLiteral("Bill Number: ") + text(bill, "BillNo"),
              QStringLiteral("Mailing Date: ") + dateText(rates, "MailDate")});

    // Who is paid, when the office is open.
    useFont(s, 9, true);
    in.at(0.3, 0.6, QStringLiteral("Taxes Payable To:"));
    in.at(2.9, 0.6, QStringLiteral("Office Hours:"));
    useFont(s, 9);
    in.lines(0.4, 0.78,
             {trimmed(rates, "Line1"), trimmed(rates, "Line2"), trimmed(rates, "Line3")});
    in.lines(3.0, 0.78,
             {trimmed(rates, "Line4"), trimmed(rates, "Line5"), trimmed(rates, "Line6"),
              trimmed(rates, "Line7")});
    useFont(s, 8);
    in.at(0.3, 1.5, QStringLiteral("For a receipt, enclose a self-addressed stamped envelope"));

    // The taxpayer and the parcel.
    useFont(s, 9, true);
    in.at(0.3, 1.8, QStringLiteral("Taxpayer:"));
    useFont(s, 10);
    QStringList taxpayer{trimmed(bill, "Name"), trimmed(bill, "Addr1")};
    if (!trimmed(bill, "Addr2").isEmpty())
        taxpayer << trimmed(bill, "Addr2");
    taxpayer << (trimmed(bill, "City") + QLatin1Char(' ') + trimmed(bill, "State") +
                 QStringLiteral("  ") + trimmed(bill, "ZipCode") + QLatin1Char(' ') +
                 trimmed(bill, "ZipCode2"))
                    .trimmed();
    in.lines(0.4, 1.98, taxpayer);
    useFont(s, 9);
    const QString book = trimmed(bill, "DeedBook");
    const QString page = trimmed(bill, "DeedPage");
    const QString deedRef =
        book.isEmpty() && page.isEmpty() ? QString() : book + QLatin1Char('/') + page;
    in.lines(4.3, 1.8,
             {QStringLiteral("Parcel # ") + trimmed(bill, "Desc1"),
              QStringLiteral("Deed Book/Page ") + deedRef,
              school + QStringLiteral(" School District")});
    useFont(s, 8);
    in.lines(0.3, 3.0,
             {QStringLiteral("Unpaid tax bills are returned to"),
              QStringLiteral("the county after Dec. 31")});
    useFont(s, 9);
    const QStringList labels{QStringLiteral("Acres:"), QStringLiteral("Land Value:"),
                             QStringLiteral("Improvement Value:"),
                             QStringLiteral("Total Assessment:")};
    const QStringList values{trimmed(bill, "Acreage"),
                             Money::fromDollars(land).format(AssessmentMoney),
                             Money::fromDollars(impr).format(AssessmentMoney),
                             Money::fromDollars(land + impr).format(AssessmentMoney)};
    for (int i = 0; i < 4; ++i) {
        in.at(4.3, 2.45 + i * 0.17, labels[i]);
        in.right(7.6, 2.45 + i * 0.17, values[i]);
    }

    // The amounts by period, at the early dates.
    const double table = 3.35;
    QString rateText =
        FormatNumber(rates.value(QStringLiteral("SMR")).toDouble(), u"##0.##########");
    if (rateText.endsWith(QLatin1Char('.')))
        rateText.chop(1);
    s.Line(in.x(0.3), in.y(table - 0.05), in.x(7.7), in.y(table - 0.05));
    useFont(s, 8, true);
    in.lines(0.3, table,
             {school + QStringLiteral(" SCH DIST"), QStringLiteral("REAL ESTATE TAX"),
              QStringLiteral("=> Rate: ") + rateText});
    const double centres[3] = {3.7, 5.3, 6.9};
    const QString heads[3] = {FormatNumber(rates.value(QStringLiteral("SD")).toDouble(), u"##") +
                                  QStringLiteral("% Discount"),
                              QStringLiteral("Face Value"),
                              FormatNumber(rates.value(QStringLiteral("SP")).toDouble(), u"##") +
                                  QStringLiteral("% Penalty")};
    const QString amounts[3] = {money(bill, "DSchool").format(StatementMoney),
                                money(bill, "School").format(StatementMoney),
                                money(bill, "PSchool").format(StatementMoney)};
    const QStringList dates[3] = {{QStringLiteral("Before ") + dateText(rates, "DiscDate")},
                                  {dateText(rates, "FaceDate1"), dateText(rates, "FaceDate2")},
                                  {QStringLiteral("After ") + dateText(rates, "PenDate")}};
    for (int i = 0; i < 3; ++i) {
        useFont(s, 9, true);
        in.centred(centres[i], table, heads[i]);
        useFont(s, 11, true);
        in.centred(centres[i], table + 0.2, amounts[i]);
        useFont(s, 8);
        double y = table + 0.42;
        for (const QString& d : dates[i]) {
            in.centred(centres[i], y, d);
            y += 0.15;
        }
    }
    s.Line(in.x(0.3), in.y(table + 0.78), in.x(7.7), in.y(table + 0.78));

    // Act 1 relief.
    if (trimmed(bill, "HFFlag").toUpper() == QLatin1String("A")) {
        useFont(s, 9);
        const double y = table + 0.85;
        in.at(0.3, y, QStringLiteral("HS/FS CREDIT"));
        in.right(2.6, y, money(bill, "ExcFace").format(StatementMoney));
        in.at(0.3, y + 0.17, QStringLiteral("TAX DUE ->"));
        in.at(2.9, y, QStringLiteral("HS Exclusion:"));
        in.right(4.6, y, money(bill, "HSExclusion").format(AssessmentMoney));
        in.at(2.9, y + 0.17, QStringLiteral("FS Exclusion:"));
        in.right(4.6, y + 0.17, money(bill, "FSExclusion").format(AssessmentMoney));
    }

    // How it is paid, and the receipt part.
    useFont(s, 9, true);
    in.at(0.3, 4.65, QStringLiteral("SINGLE PAYMENT"));
    in.at(0.3, 4.85, QStringLiteral("INSTALLMENT "));
    useFont(s, 9);
    in.at(1.8, 4.65, QStringLiteral("DATE______________CHECK #_________"));
    in.at(1.8, 4.85, QStringLiteral("DATE______________CHECK #_________"));
    useFont(s, 10, true);
    in.at(4.7, 4.65, QStringLiteral("Return Bill with Payment"));
    useFont(s, 8, true);
    in.at(4.4, 4.85, QStringLiteral(">> This Receipt is NOT VALID Until Check Clears <<"));
    useFont(s, 8);
    const double sign = 5.45;
    for (double left : {0.3, 3.1, 5.3})
        s.Line(in.x(left), in.y(sign), in.x(left + 2.2), in.y(sign));
    in.at(0.3, sign + 0.03, QStringLiteral("Tax Collector Signature"));
    in.at(3.1, sign + 0.03, QStringLiteral("Date Paid"));
    in.at(5.3, sign + 0.03, QStringLiteral("Amount Paid"));
    s.Line(in.x(0.3), in.y(sign + 0.55), in.x(2.5), in.y(sign + 0.55));
    s.Line(in.x(3.1), in.y(sign + 0.55), in.x(5.3), in.y(sign + 0.55));
    in.lines(
        0.3, sign + 0.58,
        {QStringLiteral("Tax Collector Signature (for"), QStringLiteral(" single payment only)")});
    in.at(3.1, sign + 0.58, QStringLiteral("Date"));

    useFont(s, 10, true);
    in.at(0.3, 6.5, QStringLiteral(" Statement of Real Estate Taxes"));
    useFont(s, 8);
    in.lines(3.0, 6.5,
             {QStringLiteral("If paying in full, submit this entire form with payment. If paying"),
              QStringLiteral("installments, use the coupons below with payment. Missing the first"),
              QStringLiteral("installment indicates you will be making a single full payment")});

    // The coupons, when the bill pays in installments.
    if (money(bill, "Payment1") > Money()) {
        const double top = 7.3;
        s.DrawWidth = 1;
        s.Line(in.x(0.2), in.y(top - 0.1), in.x(8.0), in.y(top - 0.1));
        s.Line(in.x(2.8), in.y(top - 0.1), in.x(2.8), in.y(top + 2.3));
        s.Line(in.x(5.4), in.y(top - 0.1), in.x(5.4), in.y(top + 2.3));
        const char* const payments[3] = {"Payment1", "Payment2", "Payment3"};
        const char* const dueDates[3] = {"Payment1Date", "Payment2Date", "Payment3Date"};
        for (int i = 0; i < 3; ++i) {
            const double left = 0.3 + i * 2.6;
            useFont(s, 10, true);
            in.at(left, top, QStringLiteral("INSTALLMENT PAYMENT ") + QString::number(i + 1));
            useFont(s, 8);
            in.lines(left, top + 0.22,
                     {year + QStringLiteral(" STATEMENT OF REAL"), QStringLiteral("ESTATE TAXES"),
                      QStringLiteral("Parcel #:  ") + trimmed(bill, "Desc1"),
                      QStringLiteral("Total Assessment: ") +
                          Money::fromDollars(land + impr).format(u"$###,###,##0")});
            useFont(s, 9, true);
            in.at(left, top + 1.0, QStringLiteral("Amount Due:"));
            in.right(left + 2.3, top + 1.0, money(bill, payments[i]).format(CouponMoney));
            in.at(left, top + 1.2, QStringLiteral("DUE BY:"));
            in.right(left + 2.3, top + 1.2, dateText(rates, dueDates[i]));
            useFont(s, 8);
            in.at(left, top + 1.5,
                  QStringLiteral("Ctrl - ") + trimmed(bill, "Control") +
                      QStringLiteral("  Bill - ") + text(bill, "BillNo"));
        }
    }
    s.NewPage();
}

SchoolStatementResult RunSchoolStatements(QSqlDatabase db, const SchoolStatementRun& run,
                                          ReportSurface& surface,
                                          const std::function<void(const QSqlRecord&)>& progress) {
    using Stop = SchoolStatementResult::Stop;
    SchoolStatementResult result;
    SchoolStatementOffice office;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT County FROM tbl_County")) && q.next())
        office.county = TextField(q.value(0));
    if (q.exec(QStringLiteral("SELECT TwpBoro FROM tbl_Twpboro")) && q.next())
        office.twpBoro = TextField(q.value(0));
    QSqlQuery bills(db);
    bills.setForwardOnly(true);
    if (!bills.exec(
            // An amount never filled in counts as zero.
            QStringLiteral("SELECT * FROM TCMaster WHERE ifnull(School, 0) + ifnull(Sch1Face, 0) "
                           "> 0 ORDER BY BillNo"))) {
        result.stop = Stop::Error;
        result.error = bills.lastError().text();
        return result;
    }
    const QString start = run.startBill.trimmed();
    bool found = start.isEmpty();
    QString officeKey;
    while (bills.next()) {
        QSqlRecord bill = bills.record();
        if (!found) {
            if (text(bill, "BillNo").trimmed() != start)
                continue;
            found = true;
        }
        if (result.printed >= run.mailers)
            break;
        if (text(bill, "AdjFlag").trimmed() == QLatin1String("A") ||
            text(bill, "CAddrFlag").trimmed() == QLatin1String("A")) {
            const BillNow now = ReadBillAsItStands(db, Duplicate::RealEstate, text(bill, "BillNo"));
            if (!now.found()) {
                result.stop = Stop::IncompleteChain;
                result.chainStatus = int(now.status);
                result.billNo = text(bill, "BillNo");
                return result;
            }
            bill = now.bill;
        }
        if (progress)
            progress(bill);
        // The municipality and rates of the bill's own district, for the year of today.
        const QString key = text(bill, "District") + text(bill, "Ward");
        if (key != officeKey) {
            officeKey = key;
            q.prepare(QStringLiteral(
                "SELECT TwpBoro, SchoolName FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
            q.addBindValue(text(bill, "District"));
            q.addBindValue(text(bill, "Ward"));
            office.schoolName.clear();
            if (q.exec() && q.next()) {
                office.twpBoro = TextField(q.value(0));
                office.schoolName = TextField(q.value(1));
            }
            q.prepare(QStringLiteral(
                "SELECT * FROM Millfile WHERE District || Ward = ? AND TaxYear = ?"));
            q.addBindValue(key);
            q.addBindValue(QString::number(Clock::today().year()));
            office.rates = q.exec() && q.next() ? q.record() : QSqlRecord();
        }
        DrawSchoolStatement(surface, office, bill);
        ++result.printed;
    }
    if (!found)
        result.stop = Stop::StartNotFound;
    return result;
}

frmSchoolRETaxBillFen::frmSchoolRETaxBillFen(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmSchoolRETaxBillFen"));
    setWindowTitle(QStringLiteral("Print School Real Estate Tax Bills"));
    txtSBillNo = NamedField(this, QStringLiteral("txtSBillNo"), 5);
    txtNumberOfMailers = NamedField(this, QStringLiteral("txtNumberOfMailers"), 6);
    txtControl = ShownField(this, QStringLiteral("txtControl"));
    txtName = ShownField(this, QStringLiteral("txtName"));
    cmdOK = NamedButton(this, QStringLiteral("cmdOK"), QStringLiteral("&OK"));
    cmdCancel = NamedButton(this, QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), false);
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Start Bill #:"), txtSBillNo);
    form->addRow(QStringLiteral("# Of Mailers:"), txtNumberOfMailers);
    form->addRow(QStringLiteral("Control #:"), txtControl);
    form->addRow(QStringLiteral("Name:"), txtName);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void frmSchoolRETaxBillFen::cmdOK_Click() {
    QSqlDatabase db = session().DbConnection;
    const QString mailersText = txtNumberOfMailers->text().trimmed();
    if (mailersText.isEmpty()) {
        MsgBox(QStringLiteral("Number Of Mailers Must Be Specified"), QLatin1String(MailersTitle),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtNumberOfMailers->setFocus();
        return;
    }
    bool numeric = false;
    const double mailers = mailersText.toDouble(&numeric);
    if (!numeric) {
        MsgBox(QStringLiteral("Number Of Mailers Must Be Numeric"), QLatin1String(MailersTitle),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtNumberOfMailers->setFocus();
        return;
    }
    const std::optional<QString> device = AssignedPrinter(db, QString::fromLatin1(LetterPrinter));
    if (!device) {
        MsgBox(QStringLiteral("There is currently no letter printer assigned."),
               QStringLiteral("Printer Error"), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    const QString typed = txtSBillNo->text().trimmed();
    if (!typed.isEmpty()) {
        bool digits = false;
        const double n = typed.toDouble(&digits);
        txtSBillNo->setText(digits ? PadFormat(n, "####0") : typed.toUpper().rightJustified(5));
    }
    SchoolStatementRun run;
    run.startBill = txtSBillNo->text();
    run.mailers = int(std::clamp(mailers, 0.0, 2.0e9));
    ReportSurface surface(PageFormat{PaperSize::Letter, PageOrientation::Portrait});
    PrintJobStream job(windowTitle(), surface.format(), *device);
    job.attach(surface);
    int shown = 0;
    const SchoolStatementResult result =
        RunSchoolStatements(db, run, surface, [&](const QSqlRecord& bill) {
            txtControl->setText(TextField(bill.value(QStringLiteral("Control"))));
            txtName->setText(TextField(bill.value(QStringLiteral("Name"))).toUpper());
            if (++shown % 25 == 0)
                QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 10);
        });
    surface.EndDoc();
    const PrintResult sent = job.finish();
    if (!sent.ok)
        MsgBox(sent.error, QStringLiteral("Printer Error"), MsgButtons::Ok, MsgIcon::Critical);
    using Stop = SchoolStatementResult::Stop;
    switch (result.stop) {
    case Stop::StartNotFound:
        MsgBox(QStringLiteral("Bill # not on file."), QStringLiteral("Print Occupation Tax Bills"),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtSBillNo->setFocus();
        return;
    case Stop::IncompleteChain: {
        BillNow broken;
        broken.status = BillNow::Status(result.chainStatus);
        CheckBillIntegrity(broken);
        return;
    }
    case Stop::Error:
        MsgBox(result.error, QStringLiteral("Print Real Estate Tax Bills"), MsgButtons::Ok,
               MsgIcon::Critical);
        return;
    case Stop::Finished:
        break;
    }
    MsgBox(QStringLiteral("Printing Complete."), QStringLiteral("Print Real Estate Tax Bills"));
}
