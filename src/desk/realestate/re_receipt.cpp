#include "desk/realestate/re_receipt.h"

#include "bills/barcode.h"
#include "core/clock.h"
#include "core/common_values.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_frame.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSqlQuery>
#include <QWidget>

namespace {

// The page's text width; centred lines are centred on it.
constexpr double TextWidthOfPage = 10550;
constexpr double LabelX = 600;
constexpr double ValueX = 1200;
constexpr double RightColumnX = 6150;
constexpr double ParcelX = 6250;
// The table: column rules, and where each column's text stands.
constexpr double TableLeft = 100;
constexpr double TableRight = 11050;
constexpr double ColumnRules[] = {1300, 3850, 5290, 6730, 8170, 9610};
constexpr double YearRight = 800;
constexpr double DescriptionX = 1550;
constexpr double MillsRight = 5140;
constexpr double FaceRight = 6580;
constexpr double DiscountRight = 8020;
constexpr double PenaltyRight = 9460;
constexpr double PaymentRight = 10900;

const char* const MoneyPattern = "$#,###,###.##";
const char* const MillsPattern = "###.000";

QString fieldText(const QWidget* screen, const char* name) {
    if (!screen)
        return QString();
    const QString objectName = QString::fromLatin1(name);
    if (auto* edit = screen->findChild<QLineEdit*>(objectName))
        return edit->text();
    if (auto* combo = screen->findChild<QComboBox*>(objectName))
        return combo->currentText();
    if (auto* label = screen->findChild<QLabel*>(objectName))
        return label->text();
    return QString();
}

QString text(const QSqlRecord& r, const char* column) {
    return TextField(r.value(QString::fromLatin1(column)));
}

Money money(const QSqlRecord& r, const char* column) {
    return MoneyField(r.value(QString::fromLatin1(column)));
}

QString flag(const QSqlRecord& r, const char* column) {
    return text(r, column).trimmed().toUpper();
}

// A typed assessment such as "12,500" as its whole number.
qint64 wholeNumber(const QString& typed) {
    QString digits;
    for (QChar c : typed) {
        if (c.isDigit())
            digits.append(c);
        else if (c == QLatin1Char('.'))
            break;
    }
    return digits.left(15).toLongLong();
}

QString moneyText(Money amount) {
    return PadFormat(amount, MoneyPattern).trimmed();
}

QString millsText(double mills) {
    return PadFormat(mills, MillsPattern).trimmed();
}

// "yyyymmddnnnn" as "yyyy-mm-dd-nnnn".
QString cutRecnum(const QString& recnum) {
    return recnum.mid(0, 4) + QLatin1Char('-') + recnum.mid(4, 2) + QLatin1Char('-') +
           recnum.mid(6, 2) + QLatin1Char('-') + recnum.mid(8);
}

QString cityLine(const QString& city, const QString& state, const QString& zip,
                 const QString& zip2) {
    qsizetype end = city.size();
    while (end > 0 && city.at(end - 1).isSpace())
        --end;
    QString line = city.left(end) + QStringLiteral(", ") + state.trimmed() + QStringLiteral(".  ") +
                   zip.trimmed();
    if (!zip2.trimmed().isEmpty())
        line += QLatin1Char('-') + zip2.trimmed();
    return line;
}

void setFont(ReportSurface& s, double size, bool bold = false) {
    s.FontName = QStringLiteral("ARIAL");
    s.FontSize = size;
    s.FontBold = bold;
    s.FontItalic = false;
    s.FontUnderline = false;
    s.FontStrikethru = false;
}

void printCentred(ReportSurface& s, const QString& line) {
    s.CurrentX = (TextWidthOfPage - s.TextWidth(line)) / 2;
    s.Print(line);
}

// A block of the left column: the label, then the lines at the value position, those that
// are empty left out. The caller's row grid keeps the block's height.
void printBlock(ReportSurface& s, double top, const QString& label, const QStringList& lines) {
    setFont(s, 10);
    s.CurrentY = top;
    s.CurrentX = LabelX;
    s.Write(label);
    setFont(s, 12);
    s.CurrentY = top;
    for (const QString& line : lines) {
        s.CurrentX = ValueX;
        s.Print(line);
    }
}

void printRow(ReportSurface& s, const ReceiptTableRow& row) {
    const double y = s.CurrentY;
    auto right = [&](double edge, const QString& t) {
        if (t.isEmpty())
            return;
        s.CurrentY = y;
        s.WriteRight(edge, t);
    };
    right(YearRight, row.year);
    if (!row.description.isEmpty()) {
        s.CurrentY = y;
        s.CurrentX = DescriptionX;
        s.Write(row.description);
    }
    right(MillsRight, row.mills);
    right(FaceRight, row.face);
    right(DiscountRight, row.discount);
    right(PenaltyRight, row.penalty);
    right(PaymentRight, row.payment);
    s.CurrentY = y;
    s.Print();
}

std::optional<Money> installmentPenalty(const QSqlRecord& r) {
    std::optional<Money> penalty;
    const char* const installments[3][2] = {
        {"Pay1Flag", "PenPayment1"}, {"Pay2Flag", "PenPayment2"}, {"Pay3Flag", "PenPayment3"}};
    for (const auto& inst : installments)
        if (flag(r, inst[0]) == QLatin1String("P"))
            penalty = penalty.value_or(Money()) + money(r, inst[1]);
    return penalty;
}

QString bodyWordUpper(const QString& btFlag) {
    return BodyWord(btFlag).toUpper();
}

// Lines of at most `width`, broken between the pieces, never inside one.
QStringList wrapPieces(ReportSurface& s, const QStringList& pieces, double width) {
    QStringList lines;
    QString line;
    for (const QString& piece : pieces) {
        if (!line.isEmpty() && s.TextWidth(line + piece) > width) {
            lines << line;
            line.clear();
        }
        line += piece;
    }
    if (!line.isEmpty())
        lines << line;
    return lines;
}

QStringList creditPieces(const QSqlRecord& receipt, const QString& btFlag) {
    QStringList pieces;
    const QDate credited = DateField(receipt.value(QStringLiteral("RDate")));
    pieces << QStringLiteral("Your payment was credited on ") +
                  (credited.isValid() ? credited.toString(QStringLiteral("MM/dd/yy")) : QString()) +
                  QStringLiteral(". (");
    auto period = [](const QString& f) -> QString {
        if (f == QLatin1String("D"))
            return QStringLiteral("Discount");
        if (f == QLatin1String("F"))
            return QStringLiteral("Face");
        if (f == QLatin1String("P"))
            return QStringLiteral("Penalty");
        return QString();
    };
    const QString c = period(flag(receipt, "CPayFlag"));
    if (!c.isEmpty())
        pieces << QStringLiteral("County paid at ") + c + QStringLiteral(". ");
    const QString t = period(flag(receipt, "TPayFlag"));
    const QString body = BodyWord(btFlag);
    if (!t.isEmpty() && !body.isEmpty())
        pieces << body + QStringLiteral(" paid at ") + t + QStringLiteral(". ");
    const QString sc = period(flag(receipt, "SPayFlag"));
    if (!sc.isEmpty())
        pieces << QStringLiteral("School paid at ") + sc + QStringLiteral(". ");
    pieces.last() += QLatin1Char(')');
    return pieces;
}

QStringList installmentPieces(const QSqlRecord& receipt) {
    QStringList pieces;
    if (flag(receipt, "SPayFlag") != QLatin1String("I"))
        return pieces;
    pieces << QStringLiteral("Installment payments received. (");
    const QString p1 = flag(receipt, "Pay1Flag");
    const QString p2 = flag(receipt, "Pay2Flag");
    const QString p3 = flag(receipt, "Pay3Flag");
    if (p1 == QLatin1String("F"))
        pieces << QStringLiteral("Payment #1 paid at Face. ");
    else if (p1 == QLatin1String("P"))
        pieces << QStringLiteral("Payment #1 paid at Penalty. ");
    // The second installment's penalty wording has always been decided by the third flag.
    if (p2 == QLatin1String("F"))
        pieces << QStringLiteral("Payment #2 paid at Face. ");
    else if (p3 == QLatin1String("P"))
        pieces << QStringLiteral("Payment #2 paid at Penalty. ");
    if (p3 == QLatin1String("F"))
        pieces << QStringLiteral("Payment #3 paid at Face. ");
    else if (p3 == QLatin1String("P"))
        pieces << QStringLiteral("Payment #3 paid at Penalty. ");
    pieces.last() += QLatin1Char(')');
    return pieces;
}

} // namespace

ReceiptScreenText ReceiptScreenText::fromScreen(const QWidget* screen) {
    ReceiptScreenText t;
    t.payor = fieldText(screen, "txtPayor");
    t.pAddr1 = fieldText(screen, "txtPAddr1");
    t.pAddr2 = fieldText(screen, "txtPAddr2");
    t.pCity = fieldText(screen, "txtPCity");
    t.pState = fieldText(screen, "cboPState");
    t.pZipCode = fieldText(screen, "txtPZipCode");
    t.pZipCode2 = fieldText(screen, "txtPZipCode2");
    t.checknum = fieldText(screen, "txtChecknum");
    t.name = fieldText(screen, "txtName");
    t.coOwner = fieldText(screen, "txtCoOwner");
    t.addr1 = fieldText(screen, "txtAddr1");
    t.addr2 = fieldText(screen, "txtAddr2");
    t.city = fieldText(screen, "txtCity");
    t.state = fieldText(screen, "cboState");
    t.zipCode = fieldText(screen, "txtZipCode");
    t.zipCode2 = fieldText(screen, "txtZipCode2");
    t.control = fieldText(screen, "txtControl");
    t.map3 = fieldText(screen, "txtMap3");
    t.map4 = fieldText(screen, "txtMap4");
    t.map5 = fieldText(screen, "txtMap5");
    t.desc1 = fieldText(screen, "txtDesc1");
    t.desc2 = fieldText(screen, "txtDesc2");
    t.desc3 = fieldText(screen, "txtDesc3");
    t.assLand = fieldText(screen, "txtAssLand");
    t.assImpr = fieldText(screen, "txtAssImpr");
    return t;
}

ReceiptScreenText ReceiptScreenText::fromRows(const QSqlRecord& receipt, const QSqlRecord& bill) {
    ReceiptScreenText t;
    t.payor = text(receipt, "Payor").trimmed();
    t.pAddr1 = text(receipt, "PAddr1").trimmed();
    t.pAddr2 = text(receipt, "PAddr2").trimmed();
    t.pCity = text(receipt, "PCity").trimmed();
    t.pState = text(receipt, "PState").trimmed();
    t.pZipCode = text(receipt, "PZipCode").trimmed();
    t.pZipCode2 = text(receipt, "PZipCode2").trimmed();
    t.checknum = text(receipt, "Checknum").trimmed();
    t.name = text(bill, "Name").trimmed();
    t.coOwner = text(bill, "CoOwner").trimmed();
    t.addr1 = text(bill, "Addr1").trimmed();
    t.addr2 = text(bill, "Addr2").trimmed();
    t.city = text(bill, "City").trimmed();
    t.state = text(bill, "State").trimmed();
    t.zipCode = text(bill, "ZipCode").trimmed();
    t.zipCode2 = text(bill, "ZipCode2").trimmed();
    t.control = text(bill, "Control").trimmed();
    t.map3 = text(bill, "Map3").trimmed();
    t.map4 = text(bill, "Map4").trimmed();
    t.map5 = text(bill, "Map5").trimmed();
    t.desc1 = text(bill, "Desc1").trimmed();
    t.desc2 = text(bill, "Desc2").trimmed();
    t.desc3 = text(bill, "Desc3").trimmed();
    t.assLand = QString::number(bill.value(QStringLiteral("AssLand")).toLongLong());
    t.assImpr = QString::number(bill.value(QStringLiteral("AssImpr")).toLongLong());
    return t;
}

bool LoadReceiptOffice(QSqlDatabase db, const QString& receiptTable, const QString& masterTable,
                       const QString& recnum, ReceiptOffice* office, QString* error) {
    ReceiptOffice d;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE Recnum = ?").arg(receiptTable));
    q.addBindValue(recnum);
    if (!q.exec() || !q.next()) {
        if (error)
            *error = QStringLiteral("Receipt Number Not On File");
        return false;
    }
    d.receipt = q.record();

    QString officeDistrict, officeWard;
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        officeDistrict = TextField(q.value(0));
        officeWard = TextField(q.value(1));
    }
    d.district = officeDistrict;
    d.ward = officeWard;
    d.billNo = text(d.receipt, "BillNo");
    const QString control = text(d.receipt, "Control");
    q.prepare(QStringLiteral("SELECT District, Ward, BillNo FROM %1 WHERE District = ? AND "
                             "Ward = ? AND Control = ?")
                  .arg(masterTable));
    q.addBindValue(officeDistrict);
    q.addBindValue(officeWard);
    q.addBindValue(control);
    bool haveBill = q.exec() && q.next();
    if (!haveBill) {
        q.prepare(QStringLiteral("SELECT District, Ward, BillNo FROM %1 WHERE Control = ?")
                      .arg(masterTable));
        q.addBindValue(control);
        haveBill = q.exec() && q.next();
    }
    if (haveBill) {
        d.district = TextField(q.value(0));
        d.ward = TextField(q.value(1));
        d.billNo = TextField(q.value(2));
    }

    if (q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = '000'")) &&
        q.next()) {
        d.countyRow = q.record();
        d.taxYear = text(d.countyRow, "TaxYear").left(4);
    }
    if (d.taxYear.isEmpty())
        d.taxYear = session().TaxYear;
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(officeDistrict + officeWard);
    if (q.exec() && q.next()) {
        d.municipalRow = q.record();
        d.line1 = text(d.municipalRow, "Line1").trimmed();
        d.line2 = text(d.municipalRow, "Line2").trimmed();
        d.line3 = text(d.municipalRow, "Line3").trimmed();
    }
    q.prepare(QStringLiteral("SELECT TwpBoro, BTFlag FROM tbl_Twpboro WHERE District = ? AND "
                             "Ward = ?"));
    q.addBindValue(officeDistrict);
    q.addBindValue(officeWard);
    if (q.exec() && q.next()) {
        d.twpBoro = TextField(q.value(0)).trimmed();
        d.btFlag = TextField(q.value(1)).trimmed();
    }
    d.officeDistrict = officeDistrict;
    d.officeWard = officeWard;
    *office = std::move(d);
    return true;
}

void FillReceiptHeading(ReceiptPage& p, const ReceiptOffice& d, const QString& kind) {
    p.line1 = d.line1;
    p.twpBoro = d.twpBoro;
    p.line2 = d.line2;
    p.line3 = d.line3;
    p.recnum = text(d.receipt, "Recnum");
    p.taxYear = d.taxYear;
    p.barcodePayload = kind + p.recnum.trimmed();
    p.sentences = ReceiptSentencePieces(d.receipt, d.btFlag);
    p.voided = DateField(d.receipt.value(QStringLiteral("VDate")));
}

QString ReceiptControlLine(const ReceiptOffice& d, const QString& control) {
    return QStringLiteral("Control #: ") + d.district + QLatin1Char('-') + d.ward +
           QLatin1Char('-') + control.trimmed();
}

bool LoadREReceipt(QSqlDatabase db, const QString& recnum, REReceiptData* data, QString* error) {
    REReceiptData d;
    if (!LoadReceiptOffice(db, QStringLiteral("TCReceipt"), QStringLiteral("TCMaster"), recnum, &d,
                           error))
        return false;
    auto rate = [](const QSqlRecord& row, const char* column) {
        return row.value(QString::fromLatin1(column)).toDouble();
    };
    d.countySMR = rate(d.countyRow, "SMR");
    d.LMR = rate(d.municipalRow, "LMR");
    d.TMR = rate(d.municipalRow, "TMR");
    d.SMR = rate(d.municipalRow, "SMR");
    d.S1MR = rate(d.municipalRow, "S1MR");
    d.s1TaxName = text(d.municipalRow, "S1TaxName").trimmed();
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT Desc1, Mill FROM Spectax WHERE District = ? AND Ward = ? "
                             "ORDER BY TaxKey"));
    q.addBindValue(d.officeDistrict);
    q.addBindValue(d.officeWard);
    if (q.exec())
        while (d.specials.size() < 5 && q.next())
            d.specials.push_back({TextField(q.value(0)).trimmed(), q.value(1).toDouble()});
    *data = std::move(d);
    return true;
}

QStringList ReceiptCreditSentences(const QSqlRecord& receipt, const QString& btFlag) {
    QStringList out{creditPieces(receipt, btFlag).join(QString())};
    const QStringList installments = installmentPieces(receipt);
    if (!installments.isEmpty())
        out << installments.join(QString());
    return out;
}

// ---------------------------------------------------------------------------------------------
// The page of a receipt
// ---------------------------------------------------------------------------------------------

QString ReceiptMoneyText(Money amount) {
    return moneyText(amount);
}

QString ReceiptRateText(double rate, const char* pattern) {
    return PadFormat(rate, pattern).trimmed();
}

ReceiptTableRow ReceiptAmountRow(const QString& year, const QString& description,
                                 const QString& mills, Money face, Money discount, Money penalty,
                                 const QString& periodFlag, bool penaltyGiven) {
    ReceiptTableRow row{year, description, mills, moneyText(face), {}, {}, {}};
    Money paid = face;
    if (periodFlag == QLatin1String("D")) {
        row.discount = moneyText(discount);
        paid += discount;
    }
    if (periodFlag == QLatin1String("P") || penaltyGiven) {
        row.penalty = moneyText(penalty);
        paid += penalty;
    }
    row.payment = moneyText(paid);
    return row;
}

ReceiptTableRow ReceiptTotalRow(Money face, Money discount, Money penalty) {
    return {QStringLiteral("TOTAL"),
            QStringLiteral("PAYMENT:"),
            {},
            moneyText(face),
            moneyText(discount),
            moneyText(penalty),
            moneyText(face + discount + penalty)};
}

QStringList ReceiptAddressLines(const QStringList& nameAndAddress, const QString& city,
                                const QString& state, const QString& zip, const QString& zip2) {
    QStringList lines;
    for (qsizetype i = 0; i < nameAndAddress.size(); ++i)
        if (i == 0 || !nameAndAddress.at(i).trimmed().isEmpty())
            lines << nameAndAddress.at(i);
    lines << cityLine(city, state, zip, zip2);
    return lines;
}

std::vector<QStringList> ReceiptSentencePieces(const QSqlRecord& receipt, const QString& btFlag) {
    return {creditPieces(receipt, btFlag), installmentPieces(receipt)};
}

void DrawReceiptPage(ReportSurface& s, const ReceiptPage& p) {
    s.DrawWidth = 5;

    // Heading.
    setFont(s, 14);
    s.CurrentY = 250;
    printCentred(s, p.line1);
    setFont(s, 14, true);
    printCentred(s, p.twpBoro + QStringLiteral(" Tax Collector"));
    setFont(s, 14);
    printCentred(s, p.line2);
    printCentred(s, p.line3);
    const double ruleY = s.CurrentY + 100;
    s.Line(0, ruleY, TextWidthOfPage, ruleY);

    // The two columns share one grid of 12 point lines, so that what stands side by side
    // reads as one line. Left: payor (rows 0-3, boxed), owner (5-9), check (11). Right:
    // receipt, year and date (0-2), the bar code (3-4), the parcel block (from 5).
    const double top = ruleY + 200;
    setFont(s, 12);
    const double row = s.TextHeight();
    auto rowY = [&](int i) { return top + row * i; };

    printBlock(s, rowY(0), QStringLiteral("Payor:"), p.payor);
    s.DrawWidth = 3;
    s.Box(LabelX - 120, rowY(0) - 80, RightColumnX - 250, rowY(4) + 20);
    s.DrawWidth = 5;
    printBlock(s, rowY(5), QStringLiteral("Owner:"), p.owner);

    setFont(s, 10);
    s.CurrentY = rowY(11);
    s.CurrentX = LabelX;
    s.Write(QStringLiteral("Check #/Cash: "));
    setFont(s, 12);
    s.CurrentY = rowY(11);
    s.Print(p.checknum);

    // Right column: receipt, year, date, bar code, parcel.
    auto right = [&](int i, double x, const QString& line) {
        s.CurrentY = rowY(i);
        s.CurrentX = x;
        s.Write(line);
    };
    right(0, RightColumnX, QStringLiteral("Receipt #: ") + cutRecnum(p.recnum));
    right(1, RightColumnX, QStringLiteral("Payment For Tax Year ") + p.taxYear);
    const QString today = QStringLiteral("DATE: ") + FormatDate(Clock::today());
    right(2, TextWidthOfPage - s.TextWidth(today), today);
    PrintCode39(s, RightColumnX, rowY(3) + 40, p.barcodePayload, row * 2 - 80);
    const double figureRight = ParcelX + 3000;
    int parcelRow = 5;
    for (const ReceiptParcelLine& line : p.parcel) {
        right(parcelRow, ParcelX, line.text);
        if (!line.figure.isEmpty()) {
            s.CurrentY = rowY(parcelRow);
            s.WriteRight(figureRight, line.figure);
        }
        ++parcelRow;
    }

    // The table.
    setFont(s, 12, true);
    s.CurrentY = rowY(15) + 250;
    printCentred(s, p.tableTitle);
    const double tableTop = s.CurrentY + 40;
    s.CurrentY = tableTop + 40;
    setFont(s, 10, true);
    printRow(s, {QStringLiteral("YEAR"), QStringLiteral("DESCRIPTION"), QStringLiteral("MILLS"),
                 QStringLiteral("FACE"), QStringLiteral("DISCOUNT"), QStringLiteral("PENALTY"),
                 QStringLiteral("PAYMENT")});
    const double headingRule = s.CurrentY + 20;
    s.Line(TableLeft, headingRule, TableRight, headingRule);
    s.CurrentY = headingRule + 40;
    setFont(s, 10);
    for (const ReceiptTableRow& r : p.rows)
        printRow(s, r);
    const double totalRule = s.CurrentY + 20;
    s.Line(TableLeft, totalRule, TableRight, totalRule);
    s.CurrentY = totalRule + 40;
    setFont(s, 10, true);
    printRow(s, p.total);
    const double tableBottom = s.CurrentY + 40;
    s.DrawWidth = 3;
    s.Box(TableLeft, tableTop, TableRight, tableBottom);
    for (double x : ColumnRules)
        s.Line(x, tableTop, x, tableBottom);
    s.DrawWidth = 5;

    // Footer.
    s.CurrentY = tableBottom + 200;
    setFont(s, 16, true);
    if (p.duplicate)
        printCentred(s, QStringLiteral("DUPLICATE RECEIPT"));
    else
        s.Print();
    setFont(s, 9);
    const double sentenceWidth = TextWidthOfPage - LabelX;
    for (const QStringList& pieces : p.sentences) {
        for (const QString& line : wrapPieces(s, pieces, sentenceWidth)) {
            s.CurrentX = LabelX;
            s.Print(line);
        }
    }
    // The rest of the footer stays in 9 point.
    if (p.voided.isValid()) {
        s.CurrentY += 80;
        s.CurrentX = LabelX;
        s.Print(QStringLiteral("VOIDED ") + FormatDate(p.voided));
    }
    s.CurrentY += 500;
    s.CurrentX = LabelX;
    s.Write(QStringLiteral("Received Payment: "));
    const double signatureX = s.CurrentX;
    s.Print(QStringLiteral("______________________________________________"));
    s.CurrentX = signatureX;
    s.Print(QStringLiteral("Tax Collector"));
    s.CurrentY += 200;
    printCentred(s, QStringLiteral("Thank you for your payment!"));
}

ReceiptPrintOutcome PrintReceiptJob(QSqlDatabase db, const QString& recnum, int copies,
                                    const ReceiptPageLoader& load) {
    if (!db.isValid())
        db = session().DbConnection;
    if (copies <= 0)
        return ReceiptPrintOutcome::NoCopies;
    const std::optional<QString> device = AssignedPrinter(db, QString::fromLatin1(ReceiptPrinter));
    if (!device) {
        MsgBox(QStringLiteral("There is currently no receipt printer assigned."),
               QString::fromLatin1(PrinterErrorTitle), MsgButtons::Ok, MsgIcon::Critical);
        return ReceiptPrintOutcome::NoPrinter;
    }
    QString error;
    const std::optional<ReceiptPage> page = load(&error);
    if (!page) {
        MsgBox(error, QStringLiteral("Print Receipt"), MsgButtons::Ok, MsgIcon::Exclamation);
        return ReceiptPrintOutcome::Failed;
    }
    ReportSurface surface(PageFormat{PaperSize::Letter, PageOrientation::Portrait});
    for (int copy = 0; copy < copies; ++copy) {
        DrawReceiptPage(surface, *page);
        surface.NewPage();
    }
    surface.EndDoc();
    Recording job = surface.takeRecording();
    job.jobName = QStringLiteral("Receipt ") + recnum;
    const PrintResult sent = SendToPrinter(job, *device);
    if (!sent.ok) {
        MsgBox(sent.error, QString::fromLatin1(PrinterErrorTitle), MsgButtons::Ok,
               MsgIcon::Critical);
        return ReceiptPrintOutcome::Failed;
    }
    return ReceiptPrintOutcome::Printed;
}

ReceiptPrintOutcome AskAndPrintReceipt(const std::function<ReceiptPrintOutcome(int)>& print) {
    const std::optional<int> copies = AskCopies(CopiesQuestion::receipt());
    if (!copies)
        return ReceiptPrintOutcome::Cancelled;
    session().ReceiptCopiesText = QString::number(*copies);
    session().ReceiptCopies = *copies;
    return print(*copies);
}

// ---------------------------------------------------------------------------------------------
// The real-estate receipt
// ---------------------------------------------------------------------------------------------

ReceiptPage REReceiptPage(const REReceiptData& d, const ReceiptScreenText& f, bool duplicate) {
    const QSqlRecord& r = d.receipt;
    ReceiptPage p;
    // "40" marks a real-estate receipt for the scanner.
    FillReceiptHeading(p, d, QStringLiteral("40"));
    p.payor = ReceiptAddressLines({f.payor, f.pAddr1, f.pAddr2}, f.pCity, f.pState, f.pZipCode,
                                  f.pZipCode2);
    p.owner = ReceiptAddressLines({f.name, f.coOwner, f.addr1, f.addr2}, f.city, f.state, f.zipCode,
                                  f.zipCode2);
    p.checknum = f.checknum;

    const qint64 land = wholeNumber(f.assLand);
    const qint64 impr = wholeNumber(f.assImpr);
    auto figure = [](qint64 value) { return FormatNumber(double(value), u"###,###,###,###"); };
    p.parcel = {{ReceiptControlLine(d, f.control), {}},
                {QStringLiteral("Bill #: ") + d.billNo, {}},
                {QStringLiteral("Map #: ") + f.map3.trimmed() + QLatin1Char('-') +
                     f.map4.trimmed() + QLatin1Char('-') + f.map5.trimmed(),
                 {}},
                {d.twpBoro, {}},
                {f.desc1.trimmed(), {}},
                {f.desc2.trimmed(), {}},
                {f.desc3.trimmed(), {}},
                {QStringLiteral("Land:"), figure(land)},
                {QStringLiteral("Impr:"), figure(impr)},
                {QStringLiteral("Total:"), figure(land + impr)}};

    p.tableTitle = QStringLiteral("REAL ESTATE TAX PAYMENT - TAX YEAR ") + d.taxYear;
    const QString year = d.taxYear;
    const QString cFlag = flag(r, "CPayFlag");
    const QString tFlag = flag(r, "TPayFlag");
    const QString sFlag = flag(r, "SPayFlag");
    auto mills = [](double rate) { return millsText(rate); };
    if (!cFlag.isEmpty()) {
        p.rows.push_back(ReceiptAmountRow(
            year, QStringLiteral("COUNTY"), mills(d.LMR + d.countySMR),
            money(r, "County") + money(r, "Library"), money(r, "DCounty") + money(r, "DLibrary"),
            money(r, "PCounty") + money(r, "PLibrary"), cFlag));
        if (d.LMR != 0)
            p.rows.push_back({year, QStringLiteral("LIBRARY"), {}, {}, {}, {}, {}});
    }
    if (!tFlag.isEmpty()) {
        p.rows.push_back(ReceiptAmountRow(year, bodyWordUpper(d.btFlag), mills(d.TMR),
                                          money(r, "Twp"), money(r, "DTwp"), money(r, "PTwp"),
                                          tFlag));
        const char* const faces[3][3] = {{"S1Face", "DS1Face", "PS1Face"},
                                         {"S2Face", "DS2Face", "PS2Face"},
                                         {"S3Face", "DS3Face", "PS3Face"}};
        for (std::size_t i = 0; i < 3; ++i) {
            if (money(r, faces[i][0]) <= Money())
                continue;
            const REReceiptData::SpecialTax special =
                i < d.specials.size() ? d.specials[i] : REReceiptData::SpecialTax{};
            p.rows.push_back(ReceiptAmountRow(year, special.name, mills(special.mill),
                                              money(r, faces[i][0]), money(r, faces[i][1]),
                                              money(r, faces[i][2]), tFlag));
        }
    }
    if (!sFlag.isEmpty()) {
        if (sFlag == QLatin1String("I")) {
            const std::optional<Money> penalty = installmentPenalty(r);
            p.rows.push_back(ReceiptAmountRow(year, QStringLiteral("SCHOOL"), mills(d.SMR),
                                              money(r, "School"), {}, penalty.value_or(Money()),
                                              sFlag, penalty.has_value()));
        } else {
            p.rows.push_back(ReceiptAmountRow(year, QStringLiteral("SCHOOL"), mills(d.SMR),
                                              money(r, "School"), money(r, "DSchool"),
                                              money(r, "PSchool"), sFlag));
        }
    }
    if (money(r, "Sch1Face") > Money())
        p.rows.push_back(ReceiptAmountRow(year, d.s1TaxName, mills(d.S1MR), money(r, "Sch1Face"),
                                          money(r, "DSch1Face"), money(r, "PSch1Face"), sFlag));

    Money face, discount, penalty;
    for (const char* line : {"County", "Library", "C1Face", "Twp", "S1Face", "S2Face", "S3Face",
                             "School", "Sch1Face"}) {
        const QString column = QString::fromLatin1(line);
        face += MoneyField(r.value(column));
        discount += MoneyField(r.value(QLatin1Char('D') + column));
        penalty += MoneyField(r.value(QLatin1Char('P') + column));
    }
    // The penalty of an installment is held in PenPaymentN, not in PSchool: the total takes it
    // as the school line shows it, so that the total is what the lines above add up to.
    if (sFlag == QLatin1String("I")) {
        penalty -= money(r, "PSchool");
        penalty += installmentPenalty(r).value_or(Money());
    }
    p.total = ReceiptTotalRow(face, discount, penalty);
    p.duplicate = duplicate;
    return p;
}

void DrawREReceipt(ReportSurface& s, const REReceiptData& d, const ReceiptScreenText& f,
                   bool duplicate) {
    DrawReceiptPage(s, REReceiptPage(d, f, duplicate));
}

ReceiptRequest ScreenReceiptRequest(QWidget* callingScreen, const QString& recnum, int copies,
                                    const char* reprintScreenName) {
    ReceiptRequest request;
    request.recnum = recnum;
    request.copies = copies;
    request.duplicate =
        callingScreen && callingScreen->objectName() == QLatin1String(reprintScreenName);
    request.fields = ReceiptScreenText::fromScreen(callingScreen);
    return request;
}

ReceiptScreenText ReceiptFieldsFor(QSqlDatabase db, const ReceiptRequest& request,
                                   const ReceiptOffice& office, Duplicate duplicate) {
    if (request.fields)
        return *request.fields;
    return ReceiptScreenText::fromRows(office.receipt,
                                       ReadBillAsItStands(db, duplicate, office.billNo).bill);
}

ReceiptPrintOutcome PrintREReceipt(QSqlDatabase db, const ReceiptRequest& request) {
    if (!db.isValid())
        db = session().DbConnection;
    return PrintReceiptJob(
        db, request.recnum, request.copies, [&](QString* error) -> std::optional<ReceiptPage> {
            REReceiptData data;
            if (!LoadREReceipt(db, request.recnum, &data, error))
                return std::nullopt;
            return REReceiptPage(data, ReceiptFieldsFor(db, request, data, Duplicate::RealEstate),
                                 request.duplicate);
        });
}

ReceiptPrintOutcome AskAndPrintREReceipt(QWidget* callingScreen, const QString& recnum,
                                         QSqlDatabase db) {
    return AskAndPrintReceipt([&](int copies) {
        return PrintREReceipt(
            db, ScreenReceiptRequest(callingScreen, recnum, copies, "frmREReprintReceipt"));
    });
}
