#include "desk/realestate/mortgage_update.h"

#include "core/common_values.h"
#include "desk/realestate/payment_entry.h"
#include "reports/report_surface.h"

namespace {

constexpr int LastMortgageLine = LineSpecial3; // county, library, C1, township, three specials

bool paidOrExonerated(const QString& flag) {
    const QString f = flag.trimmed();
    return f == u"D" || f == u"F" || f == u"P" || f == u"X";
}

QString amountText(Money amount) {
    return PadFormat(amount, "$#,###,###.00");
}

} // namespace

PeriodAmounts MortgageAmountsAt(const BillNow& bill, QChar period) {
    const BillLines lines = BillLinesFromRecord(bill.bill);
    PeriodAmounts amounts;
    for (int i = LineCounty; i <= LastMortgageLine; ++i)
        amounts.line[i] = TakeLine(lines.line[i], period);
    return amounts;
}

MortgageMatch MatchMortgageRecord(const BillNow& bill, const MortgageRecord& record) {
    MortgageMatch match;
    if (bill.text("Control").trimmed() != record.control.trimmed()) {
        match.kind = MortgageMatch::Kind::WrongControl;
        return match;
    }
    if (paidOrExonerated(bill.text("CPayFlag")) || paidOrExonerated(bill.text("TPayFlag"))) {
        match.kind = MortgageMatch::Kind::AlreadyPaid;
        return match;
    }
    for (char16_t period : {PeriodDiscount, PeriodFace, PeriodPenalty}) {
        if (MortgageTotal(MortgageAmountsAt(bill, QChar(period))) == record.amount) {
            match.kind = MortgageMatch::Kind::Post;
            match.period = QChar(period);
            return match;
        }
    }
    match.kind = MortgageMatch::Kind::NoPeriodMatches;
    return match;
}

RealEstatePosting BuildMortgagePosting(const MortgagePayment& payment) {
    const BillNow& bill = payment.bill;
    const QString period(payment.period);
    RealEstatePosting p = StartRealEstatePosting(bill);
    RealEstateReceipt& r = p.receipt;
    const PeriodAmounts amounts = MortgageAmountsAt(bill, payment.period);
    for (int i = LineCounty; i <= LastMortgageLine; ++i) {
        const LineTake& t = amounts.line[i];
        r.line[i] = {t.discountDiff, t.face, t.penaltyDiff};
    }
    r.rdate = payment.today;
    r.payor = payment.record.payor;
    r.checknum = payment.record.checknum;
    r.cPayFlag = period;
    r.tPayFlag = period;

    // The same flags as a desk payment of the two bodies at that period.
    p.master.cPayFlag = period;
    const MunicipalPayFlags municipal = MunicipalFlagsForPayment(
        true, false, StreetLightChoice::All, bill.text("StLtFlag"), payment.period);
    p.master.tPayFlag = municipal.tPayFlag;
    p.master.twpPaidFlag = municipal.twpPaidFlag;
    p.master.stLtPaidFlag = municipal.stLtPaidFlag;
    p.master.stLtFlag = municipal.stLtFlag;
    return p;
}

PostingResult PostMortgagePayment(QSqlDatabase db, const MortgagePayment& payment) {
    return PostRealEstatePayment(db, BuildMortgagePosting(payment), payment.today);
}

// ---------------------------------------------------------------------------------------------
// The exception list
// ---------------------------------------------------------------------------------------------

QString MortgageExceptionLine(const QString& control, const QString& billNo, const QString& amount,
                              const QString& payor, const QString& checknum) {
    return control + QStringLiteral(" ") + QStringLiteral("     ") + billNo +
           QStringLiteral("    ") + amount + QStringLiteral("     ") +
           payor.leftJustified(50, u' ') + QStringLiteral("     ") +
           checknum.leftJustified(10, u' ');
}

QString MortgageExceptionLine(const MortgageRecord& record) {
    return MortgageExceptionLine(record.control, record.billNo, amountText(record.amount),
                                 record.payor, record.checknum);
}

QString MortgageExceptionLine(const MalformedMortgageRecord& record) {
    // The amount as a sum when it reads as one, else as it stands in the file.
    QString amount = record.amountText.trimmed();
    bool digits = !amount.isEmpty();
    for (QChar c : amount)
        digits = digits && c >= u'0' && c <= u'9';
    if (digits && amount.size() <= MortgageAmountLength)
        amount = amountText(Money::fromCents(amount.toLongLong()));
    else
        amount = amount.rightJustified(13, u' ');
    const QString billNo =
        record.billNo.trimmed().isEmpty() ? record.billNo : PadBillNo(record.billNo);
    return MortgageExceptionLine(record.control, billNo, amount, record.payor, record.checknum) +
           QStringLiteral("  (") + record.problem + QStringLiteral(")");
}

Recording DrawMortgageExceptions(const QStringList& lines) {
    ReportSurface s(PageFormat{PaperSize::Letter, PageOrientation::Portrait});
    s.FontName = QStringLiteral("Courier New");
    s.FontSize = 8;
    s.FontBold = false;
    s.FontItalic = false;
    auto printLine = [&s](const QString& line) {
        if (s.CurrentY + s.TextHeight() > s.ScaleHeight()) {
            s.NewPage();
            s.CurrentY = 0;
        }
        s.CurrentX = 0;
        s.Print(line);
    };
    printLine(QString::fromLatin1(MortgageExceptionHeading));
    for (const QString& line : lines)
        printLine(line);
    s.EndDoc();
    Recording recording = s.takeRecording();
    recording.jobName = QStringLiteral("Mortgage Company Exceptions");
    return recording;
}

// ---------------------------------------------------------------------------------------------
// The run
// ---------------------------------------------------------------------------------------------

MortgageRun RunMortgageUpdate(QSqlDatabase db, const MortgageFile& file, const QDate& today,
                              const MortgageRunEvents& events) {
    MortgageRun run;
    auto good = file.records.begin();
    auto bad = file.malformed.begin();
    while (good != file.records.end() || bad != file.malformed.end()) {
        // The two lists merged back into file order.
        if (bad != file.malformed.end() &&
            (good == file.records.end() || bad->number < good->number)) {
            run.exceptions << MortgageExceptionLine(*bad);
            ++bad;
            continue;
        }
        const MortgageRecord& record = *good++;
        if (events.reading)
            events.reading(record);

        const BillNow bill = ReadBillAsItStands(db, Duplicate::RealEstate, record.billNo);
        switch (bill.status) {
        case BillNow::Status::Found:
            break;
        case BillNow::Status::NotFound:
            run.exceptions << MortgageExceptionLine(record);
            continue;
        case BillNow::Status::IncompleteAdjustment:
            run.end = MortgageRun::End::IncompleteChain;
            run.error = QString::fromLatin1(IncompleteAdjustmentText);
            return run;
        case BillNow::Status::IncompleteAddress:
            run.end = MortgageRun::End::IncompleteChain;
            run.error = QString::fromLatin1(IncompleteAddressText);
            return run;
        case BillNow::Status::Error:
            run.end = MortgageRun::End::Failed;
            run.error = bill.error;
            return run;
        }
        if (events.billLoaded)
            events.billLoaded(bill);

        const MortgageMatch match = MatchMortgageRecord(bill, record);
        if (events.periodTried && match.kind != MortgageMatch::Kind::WrongControl &&
            match.kind != MortgageMatch::Kind::AlreadyPaid) {
            // The screen goes through the periods as they are tried, stopping at the one taken.
            for (char16_t period : {PeriodDiscount, PeriodFace, PeriodPenalty}) {
                events.periodTried(QChar(period), MortgageAmountsAt(bill, QChar(period)));
                if (match.kind == MortgageMatch::Kind::Post && match.period == QChar(period))
                    break;
            }
        }
        if (match.kind != MortgageMatch::Kind::Post) {
            run.exceptions << MortgageExceptionLine(record);
            continue;
        }
        const PostingResult posted =
            PostMortgagePayment(db, MortgagePayment{bill, record, match.period, today});
        if (!posted.ok) {
            run.end = MortgageRun::End::Failed;
            run.error = posted.error;
            return run;
        }
        ++run.posted;
    }
    return run;
}
