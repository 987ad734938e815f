// The crash test. A child process runs every write of the desk, round and round, through the
// same write functions the screens call, on one demo database; the parent kills it with SIGKILL
// at random moments, reopens the database and checks that every user action stood whole or not
// at all. Then it starts the next child on the same file.
//
//   test_crash_safety                      the test: 200 kills
//   test_crash_safety --kills N [--seed S] a soak run; prints RESULT crash_kills=N crash_s=S
//   test_crash_safety --crash-child DB S   the child (started by the parent)
//
// The seed of a run is printed first (LEVYDESK_CRASH_SEED fixes it for the test): the same seed
// gives every child the same seed and every kill the same delay, so a failure can be replayed;
// how far a child gets before its kill still depends on the machine's pace.

#include "support/test_support.h"

#include "core/session.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "desk/percapita/address_change.h"
#include "desk/percapita/adjust_writes.h"
#include "desk/percapita/pc_receipt_writes.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/adjust_writes.h"
#include "desk/realestate/mortgage_update.h"
#include "desk/realestate/receipt_writes.h"
#include "distribution/distribution_file.h"
#include "distribution/distribution_numbers.h"
#include "distribution/distribution_refunds.h"
#include "distribution/distribution_writes.h"
#include "rates/edit_special_taxpayers.h"
#include "rates/maintain_millages_county.h"
#include "utilities/late_billing.h"
#include "utilities/verify_data.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <cstdio>
#include <functional>
#include <poll.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

// The day the children work on: the demo's 2013 duplicate is worked up to September.
const QDate CrashToday(2013, 10, 15);
const char* const ChildFlag = "--crash-child";

// The first column of a query's rows. A query that fails gives one row with its error, so that
// a rule that cannot run is reported and a child that cannot pick stops with the reason.
QStringList column(QSqlDatabase db, const QString& sql) {
    QStringList out;
    QSqlQuery q(db);
    if (!q.exec(sql))
        return {QStringLiteral("ERROR ") + q.lastError().text() + QStringLiteral(" in ") + sql};
    while (q.next())
        out << q.value(0).toString();
    return out;
}

QSqlRecord firstRow(QSqlDatabase db, const QString& sql, const QVariantList& binds = {}) {
    QSqlQuery q(db);
    q.prepare(sql);
    for (const QVariant& v : binds)
        q.addBindValue(v);
    return q.exec() && q.next() ? q.record() : QSqlRecord();
}

// ---------------------------------------------------------------------------------------------
// The child: the office at work
// ---------------------------------------------------------------------------------------------

struct Office {
    QSqlDatabase db;
    std::mt19937 rng;
    QString folder;
    QString taxYear;
    QString district, ward;
    QSqlRecord countyRow, municipalRow;
    PaymentCalendar calendar;

    // A random entry of a query's first column; empty when it has no rows.
    QString pick(const QString& sql) {
        const QStringList all = column(db, sql);
        if (all.isEmpty())
            return QString();
        return all.at(int(std::uniform_int_distribution<qsizetype>(0, all.size() - 1)(rng)));
    }
    int between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); }
};

[[noreturn]] void childFailed(const char* action, const QString& error) {
    std::fprintf(stderr, "crash child: %s failed: %s\n", action, qPrintable(error));
    std::fflush(stderr);
    _exit(3);
}

RealEstateBillImage imageOf(const BillNow& now) {
    const QSqlRecord& r = now.bill;
    auto t = [&](const char* c) { return TextField(r.value(QLatin1String(c))); };
    RealEstateBillImage b;
    b.control = t("Control");
    b.billNo = t("BillNo");
    b.name = t("Name");
    b.coOwner = t("CoOwner");
    b.addr1 = t("Addr1");
    b.addr2 = t("Addr2");
    b.city = t("City");
    b.state = t("State");
    b.zipCode = t("ZipCode");
    b.zipCode2 = t("ZipCode2");
    b.map3 = t("Map3");
    b.map4 = t("Map4");
    b.map5 = t("Map5");
    b.desc1 = t("Desc1");
    b.desc2 = t("Desc2");
    b.desc3 = t("Desc3");
    b.acreage = t("Acreage");
    b.landUse = t("LandUse");
    b.lDesc = t("LDesc");
    b.deedBook = t("DeedBook");
    b.deedPage = t("DeedPage");
    b.land = r.value(QStringLiteral("AssLand")).toLongLong();
    b.impr = r.value(QStringLiteral("AssImpr")).toLongLong();
    const BillLines lines = BillLinesFromRecord(r);
    for (int line = 0; line < TaxLineCount; ++line)
        LineOf(b.amounts, line) = lines.line[std::size_t(line)];
    b.amounts.installments = InstallmentsFromRecord(r);
    b.amounts.exclusion.homestead = now.money("HSExclusion");
    b.amounts.exclusion.farmstead = now.money("FSExclusion");
    b.amounts.exclusion.excFace = {now.money("DExcFace"), now.money("ExcFace"),
                                   now.money("PExcFace")};
    b.hfFlag = FlagField(r.value(QStringLiteral("HFFlag")));
    b.homesteadFlag = FlagField(r.value(QStringLiteral("HomesteadFlag")));
    b.farmsteadFlag = FlagField(r.value(QStringLiteral("FarmsteadFlag")));
    return b;
}

PerCapitaBillImage perCapitaImageOf(const BillNow& now) {
    auto t = [&](const char* c) { return now.text(c); };
    PerCapitaBillImage b;
    b.control = t("Control");
    b.billNo = t("BillNo");
    b.name = t("Name");
    b.prefix = t("Prefix");
    b.lName = t("LName");
    b.fName = t("FName");
    b.mName = t("MName");
    b.suffix = t("Suffix");
    b.relationship = t("Relationship");
    b.addr1 = t("Addr1");
    b.addr2 = t("Addr2");
    b.streetNumber = t("StreetNumber");
    b.streetName = t("StreetName");
    b.city = t("City");
    b.state = t("State");
    b.zipCode = t("ZipCode");
    b.zipCode2 = t("ZipCode2");
    b.occuCode = t("OccuCode");
    b.occuDesc = t("OccuDesc");
    b.occuValue = t("OccuValue");
    b.birthdate = t("Birthdate");
    b.amounts = PerCapitaBillAmountsFromRecord(now.bill);
    return b;
}

BillNow billOf(Office& o, Duplicate duplicate, const QString& billNo, const char* action) {
    BillNow now = ReadBillAsItStands(o.db, duplicate, billNo);
    if (!now.found())
        childFailed(action, QStringLiteral("bill '%1' cannot be read: %2").arg(billNo, now.error));
    return now;
}

// Bills with a body still open (its pay flag blank), school installments aside.
const QString OpenBills = QStringLiteral(
    "SELECT BillNo FROM %1 WHERE (CPayFlag = ' ' OR TPayFlag = ' ' OR SPayFlag = ' ') AND "
    "SPayFlag <> 'I' AND AdjFlag IN (' ', 'A') AND CAddrFlag IN (' ', 'A') ORDER BY BillNo");
// Bills whose chains are whole.
const QString WholeBills = QStringLiteral(
    "SELECT BillNo FROM %1 WHERE AdjFlag IN (' ', 'A') AND CAddrFlag IN (' ', 'A') ORDER BY "
    "BillNo");

// A refund of what was paid over the bill, as the refund screen writes it.
RefundRecord refundOf(Office& o, const BillNow& bill, const QString& recnum, Money amount) {
    RefundRecord r;
    r.control = bill.text("Control");
    r.billNo = bill.text("BillNo");
    r.adjNo = bill.adjNo;
    r.recnum = recnum;
    r.recNumId = 1;
    r.map3 = bill.text("Map3");
    r.map4 = bill.text("Map4");
    r.map5 = bill.text("Map5");
    r.name = QStringLiteral("PAYEE O'DONNELL");
    r.addr1 = QStringLiteral("1 O'HARA LANE");
    r.city = QStringLiteral("KESTRELVALE");
    r.state = QStringLiteral("PA");
    r.zipCode = QStringLiteral("17000");
    r.desc1 = QStringLiteral("OVERPAYMENT");
    r.refund = amount;
    r.disbNum = o.taxYear + QStringLiteral("00");
    r.rdate = CrashToday;
    return r;
}

void fillPayor(ReceiptCommon& r, Office& o) {
    r.payor = QStringLiteral("PAYOR O'NEIL");
    r.pAddr1 = QStringLiteral("2 ST. MARY'S ROW");
    r.pCity = QStringLiteral("KESTRELVALE");
    r.pState = QStringLiteral("PA");
    r.pZipCode = QStringLiteral("17000");
    r.checknum = QString::number(o.between(1000, 9999));
    r.rdate = CrashToday;
}

bool payRealEstate(Office& o) {
    const char* action = "real-estate payment";
    const QString billNo = o.pick(OpenBills.arg(QStringLiteral("TCMaster")));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::RealEstate, billNo, action);
    const BillPayFlags flags = BillPayFlagsFromRecord(bill.bill);
    PaymentChoice choice;
    choice.selection.county = flags.cPayFlag == QLatin1String(" ");
    choice.selection.twp = flags.tPayFlag == QLatin1String(" ");
    choice.selection.school = flags.sPayFlag == QLatin1String(" ");
    choice.periods = PeriodsForDate(o.calendar, CrashToday);
    choice.district39 = bill.text("District") == QLatin1String("39");
    const PeriodAmounts shown = AmountsForPeriods(BillLinesFromRecord(bill.bill), choice.periods);
    const InstallmentView installments = InstallmentsForDate(
        InstallmentsFromRecord(bill.bill), flags.payFlag, o.calendar.installmentDates, CrashToday);
    RealEstatePosting posting = BuildRealEstatePosting(bill, choice, shown, installments);
    const Money due = TotalDue(choice.selection, shown, installments);
    if (due <= Money())
        return false;
    // Paid over the total: a small overage within the tolerance, or a refund above it.
    const Money paid = due + Money::fromCents(o.between(0, 1) ? 1 : 2500);
    const PaymentCheck check = CheckPaymentAgainstTotal(paid, due, o.calendar.tolerance);
    posting.receipt.overage = check.overage;
    posting.receipt.refund = check.refund;
    fillPayor(posting.receipt, o);
    const PostingResult posted = PostRealEstatePayment(o.db, posting, CrashToday);
    if (!posted.ok)
        childFailed(action, posted.error);
    if (check.refund > Money()) {
        QString error;
        if (!AddRealEstateRefund(o.db, refundOf(o, bill, posted.recnum, check.refund), &error))
            childFailed("real-estate refund", error);
    }
    return true;
}

// The next school installment of a bill paying in installments, paid exactly.
bool payInstallment(Office& o) {
    const char* action = "real-estate installment";
    const QString billNo = o.pick(QStringLiteral(
        "SELECT BillNo FROM TCMaster WHERE Payment1 > 0 AND SPayFlag IN (' ', 'I') AND (Pay1Flag "
        "= ' ' OR Pay2Flag = ' ' OR Pay3Flag = ' ') AND AdjFlag IN (' ', 'A') AND CAddrFlag IN "
        "(' ', 'A') ORDER BY BillNo"));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::RealEstate, billNo, action);
    const BillPayFlags flags = BillPayFlagsFromRecord(bill.bill);
    const InstallmentView installments = InstallmentsForDate(
        InstallmentsFromRecord(bill.bill), flags.payFlag, o.calendar.installmentDates, CrashToday);
    const int next = installments.nextUnpaid;
    if (next < 0 || installments.line[std::size_t(next)].pastDate)
        return false;
    PaymentChoice choice;
    choice.selection.school = true;
    choice.selection.installment[std::size_t(next)] = true;
    choice.periods = PeriodsForDate(o.calendar, CrashToday);
    choice.district39 = bill.text("District") == QLatin1String("39");
    const PeriodAmounts shown = AmountsForPeriods(BillLinesFromRecord(bill.bill), choice.periods);
    RealEstatePosting posting = BuildRealEstatePosting(bill, choice, shown, installments);
    if (TotalDue(choice.selection, shown, installments) <= Money())
        return false;
    fillPayor(posting.receipt, o);
    const PostingResult posted = PostRealEstatePayment(o.db, posting, CrashToday);
    if (!posted.ok)
        childFailed(action, posted.error);
    return true;
}

bool voidReceipt(Office& o, Duplicate duplicate) {
    const bool re = duplicate == Duplicate::RealEstate;
    const char* action = re ? "real-estate void" : "per capita void";
    const QString recnum =
        o.pick(QStringLiteral("SELECT Recnum FROM %1 WHERE VDate IS NULL ORDER BY Recnum")
                   .arg(re ? QStringLiteral("TCReceipt") : QStringLiteral("PCReceipt")));
    if (recnum.isEmpty())
        return false;
    const VoidRequest request{recnum, CrashToday, QStringLiteral("WRONG BILL, PER O'BRIEN")};
    const VoidResult result = re ? VoidRealEstateReceipt(o.db, request, CrashToday, o.taxYear)
                                 : VoidPerCapitaReceipt(o.db, request, CrashToday, o.taxYear);
    if (!result.ok)
        childFailed(action, result.error);
    return true;
}

// An adjustment that keeps the amounts, or an exoneration of the county part of an open bill.
bool adjustRealEstate(Office& o, bool exonerate) {
    const char* action = exonerate ? "real-estate exoneration" : "real-estate adjustment";
    const QString billNo =
        o.pick(exonerate ? QStringLiteral("SELECT BillNo FROM TCMaster WHERE CPayFlag = ' ' AND "
                                          "AdjFlag IN (' ', 'A') AND CAddrFlag IN (' ', 'A') "
                                          "ORDER BY BillNo")
                         : WholeBills.arg(QStringLiteral("TCMaster")));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::RealEstate, billNo, action);
    if (bill.adjNo >= 90)
        return false;
    BillAdjustment a;
    a.kind = exonerate ? BillAdjustment::Kind::Exonerate : BillAdjustment::Kind::Adjust;
    a.image = imageOf(bill);
    a.image.desc3 = QStringLiteral("LOT 'B' OF O'KEEFE TRACT");
    a.adjNo = bill.adjNo + 1;
    a.adjDate = CrashToday;
    a.reason = QStringLiteral("ASSESSOR'S CHANGE");
    a.bodies = {true, false, false};
    if (exonerate)
        a.image.amounts = ExoneratedAmounts(a.image.amounts, a.bodies);
    QString error;
    if (!RecordBillAdjustment(o.db, a, &error))
        childFailed(action, error);
    return true;
}

bool unexonerateRealEstate(Office& o) {
    const char* action = "real-estate unexoneration";
    const QString billNo = o.pick(QStringLiteral(
        "SELECT m.BillNo FROM TCMaster m WHERE m.CPayFlag = 'X' AND m.AdjFlag = 'A' AND "
        "(SELECT a.AdjFlag FROM TCAdjust a WHERE a.BillNo = m.BillNo ORDER BY a.AdjNo DESC "
        "LIMIT 1) = 'X' ORDER BY m.BillNo"));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::RealEstate, billNo, action);
    const BillPayFlags flags = BillPayFlagsFromRecord(bill.bill);
    const BodyTicks bodies{flags.cPayFlag == QLatin1String("X"),
                           flags.tPayFlag == QLatin1String("X"),
                           flags.sPayFlag == QLatin1String("X")};
    QString error;
    if (!RecordBillUnexoneration(o.db, {billNo, bill.adjNo, bodies}, &error))
        childFailed(action, error);
    return true;
}

bool changeRealEstateAddress(Office& o) {
    const char* action = "real-estate address change";
    const QString billNo = o.pick(WholeBills.arg(QStringLiteral("TCMaster")));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::RealEstate, billNo, action);
    AddressChangeRecord c;
    c.control = bill.text("Control");
    c.billNo = billNo;
    c.addrId = bill.addrId + 1;
    c.name = QStringLiteral("O'BRIEN, MARY'S ESTATE");
    c.coOwner = bill.text("CoOwner");
    c.addr1 = QStringLiteral("C/O D'ANGELO & SONS");
    c.addr2 = QStringLiteral("%1 O'CONNOR'S LANE").arg(o.between(1, 999));
    c.city = QStringLiteral("KESTRELVALE");
    c.state = QStringLiteral("PA");
    c.zipCode = QStringLiteral("17000");
    c.map3 = bill.text("Map3");
    c.map4 = bill.text("Map4");
    c.map5 = bill.text("Map5");
    c.reason = QStringLiteral("OWNER'S LETTER");
    c.aDate = CrashToday;
    c.usps = o.between(0, 1) == 1;
    c.reportable = c.usps;
    QString error;
    if (!RecordAddressChange(o.db, c, &error))
        childFailed(action, error);
    return true;
}

// The number an added bill takes, from the number table as the adjustment screen reads it.
QString nextAddedBill(Office& o, const char* table) {
    const QString next =
        column(o.db, QStringLiteral("SELECT BillNum FROM %1").arg(QLatin1String(table))).value(0);
    return QStringLiteral("A") + QStringLiteral("%1").arg(next.toInt(), 4, 10, QLatin1Char('0'));
}

bool addRealEstateBill(Office& o) {
    const char* action = "real-estate added bill";
    const QString model = o.pick(QStringLiteral("SELECT BillNo FROM TCMaster WHERE BillNo < 'A' "
                                                "AND AdjFlag IN (' ', 'A') ORDER BY BillNo"));
    const QString billNo = nextAddedBill(o, "TCBillNum");
    if (model.isEmpty() || billNo.mid(1).toInt() > 9000)
        return false;
    const BillNow bill = billOf(o, Duplicate::RealEstate, model, action);
    BillAddition a;
    a.image = imageOf(bill);
    a.image.billNo = billNo;
    a.image.control = QStringLiteral("9%1").arg(billNo.mid(1).toInt(), 5, 10, QLatin1Char('0'));
    a.image.name = QStringLiteral("NEW OWNER O'REILLY");
    a.district = bill.text("District");
    a.ward = bill.text("Ward");
    a.taxYear = o.taxYear;
    a.addDate = CrashToday;
    a.reason = QStringLiteral("SUBDIVIDED LOT");
    QString error;
    if (!AddRealEstateBill(o.db, a, &error))
        childFailed(action, error);
    return true;
}

// A mortgage company's file of up to three open bills paid at face, posted as the screen posts
// it; a bill the county or township has already been paid on is listed, not posted.
bool postMortgageFile(Office& o) {
    const char* action = "mortgage company posting";
    QByteArray bytes;
    for (int i = 0; i < 3; ++i) {
        const QString billNo = o.pick(QStringLiteral(
            "SELECT BillNo FROM TCMaster WHERE CPayFlag = ' ' AND TPayFlag = ' ' AND BillNo < 'A' "
            "AND AdjFlag IN (' ', 'A') AND CAddrFlag IN (' ', 'A') ORDER BY BillNo"));
        if (billNo.isEmpty())
            break;
        const BillNow bill = billOf(o, Duplicate::RealEstate, billNo, action);
        const Money face = MortgageTotal(MortgageAmountsAt(bill, QChar(PeriodFace)));
        bytes += bill.text("Control").leftJustified(6, u' ', true).toLatin1() +
                 billNo.trimmed().rightJustified(5, u' ').toLatin1() +
                 QByteArray::number(face.units() / 100).rightJustified(9, '0') + "CK" +
                 QByteArray::number(i + 1).rightJustified(4, '0') + "MORTGAGE CO O'NEILL\r\n";
    }
    if (bytes.isEmpty())
        return false;
    const MortgageRun run = RunMortgageUpdate(o.db, ParseMortgageCompanyFile(bytes), CrashToday);
    if (run.end == MortgageRun::End::Failed)
        childFailed(action, run.error);
    return true;
}

bool payPerCapita(Office& o) {
    const char* action = "per capita payment";
    const QString billNo = o.pick(OpenBills.arg(QStringLiteral("PCMaster")));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::PerCapita, billNo, action);
    const BillPayFlags flags = BillPayFlagsFromRecord(bill.bill);
    auto open = [&](const QString& flag, TaxBody body) {
        return flag == QLatin1String(" ") && PerCapitaBodyFace(bill.bill, body) > Money();
    };
    PaymentSelection selection;
    selection.county = open(flags.cPayFlag, TaxBody::County);
    selection.twp = open(flags.tPayFlag, TaxBody::Twp);
    selection.school = open(flags.sPayFlag, TaxBody::School);
    if (!selection.county && !selection.twp && !selection.school)
        return false;
    const PaymentPeriods periods = PeriodsForDate(o.calendar, CrashToday);
    const PerCapitaAmounts amounts = PerCapitaAmountsForPeriods(bill.bill, periods);
    PerCapitaPosting posting = BuildPerCapitaPosting(bill, selection, periods, amounts);
    const Money due = PerCapitaTotalDue(selection, amounts);
    const Money paid = due + Money::fromCents(o.between(0, 1) ? 1 : 1000);
    const PaymentCheck check = CheckPaymentAgainstTotal(paid, due, o.calendar.tolerance);
    posting.receipt.overage = check.overage;
    posting.receipt.refund = check.refund;
    fillPayor(posting.receipt, o);
    const PostingResult posted = PostPerCapitaPayment(o.db, posting, CrashToday);
    if (!posted.ok)
        childFailed(action, posted.error);
    if (check.refund > Money()) {
        QString error;
        if (!AddPerCapitaRefund(o.db, refundOf(o, bill, posted.recnum, check.refund), &error))
            childFailed("per capita refund", error);
    }
    return true;
}

bool changePerCapitaAddress(Office& o) {
    const char* action = "per capita address change";
    const QString billNo = o.pick(WholeBills.arg(QStringLiteral("PCMaster")));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::PerCapita, billNo, action);
    PerCapitaAddressRecord c;
    c.control = bill.text("Control");
    c.billNo = billNo;
    c.addrId = bill.addrId + 1;
    c.lName = QStringLiteral("O'MALLEY");
    c.fName = QStringLiteral("D'ARCY");
    c.name = c.fName + QStringLiteral(" ") + c.lName;
    c.streetNumber = QString::number(o.between(1, 999));
    c.streetName = QStringLiteral("O'CONNOR'S LANE");
    c.addr2 = c.streetNumber + QStringLiteral(" ") + c.streetName;
    c.city = QStringLiteral("KESTRELVALE");
    c.state = QStringLiteral("PA");
    c.zipCode = QStringLiteral("17000");
    c.reason = QStringLiteral("MOVED; LANDLORD'S NOTE");
    c.aDate = CrashToday;
    QString error;
    if (!RecordPerCapitaAddressChange(o.db, c, &error))
        childFailed(action, error);
    return true;
}

bool adjustPerCapita(Office& o) {
    const char* action = "per capita adjustment";
    const QString billNo = o.pick(WholeBills.arg(QStringLiteral("PCMaster")));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::PerCapita, billNo, action);
    if (bill.adjNo >= 90)
        return false;
    PerCapitaAdjustment a;
    a.image = perCapitaImageOf(bill);
    a.image.occuDesc = QStringLiteral("BAKER'S HELPER");
    a.adjNo = bill.adjNo + 1;
    a.adjDate = CrashToday;
    a.reason = QStringLiteral("TAXPAYER'S CLAIM");
    QString error;
    if (!RecordPerCapitaAdjustment(o.db, a, &error))
        childFailed(action, error);
    return true;
}

bool exoneratePerCapita(Office& o) {
    const char* action = "per capita exoneration";
    const QString billNo = o.pick(QStringLiteral(
        "SELECT BillNo FROM PCMaster WHERE CPayFlag = ' ' AND TPayFlag = ' ' AND SPayFlag = ' ' "
        "AND AdjFlag IN (' ', 'A') AND CAddrFlag IN (' ', 'A') ORDER BY BillNo"));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::PerCapita, billNo, action);
    if (bill.adjNo >= 90)
        return false;
    PerCapitaAdjustment a;
    a.exonerate = true;
    a.image = perCapitaImageOf(bill);
    a.image.amounts = PerCapitaBillAmounts{};
    a.adjNo = bill.adjNo + 1;
    a.adjDate = CrashToday;
    a.reason = QStringLiteral("DECEASED, PER SON'S LETTER");
    QString error;
    if (!RecordPerCapitaAdjustment(o.db, a, &error))
        childFailed(action, error);
    return true;
}

bool unexoneratePerCapita(Office& o) {
    const char* action = "per capita unexoneration";
    const QString billNo = o.pick(QStringLiteral(
        "SELECT m.BillNo FROM PCMaster m WHERE m.CPayFlag = 'X' AND m.AdjFlag = 'A' AND "
        "(SELECT a.AdjFlag FROM PCAdjust a WHERE a.BillNo = m.BillNo ORDER BY a.AdjNo DESC "
        "LIMIT 1) = 'X' ORDER BY m.BillNo"));
    if (billNo.isEmpty())
        return false;
    const BillNow bill = billOf(o, Duplicate::PerCapita, billNo, action);
    QString error;
    if (!RecordPerCapitaUnexoneration(o.db, billNo, bill.adjNo, &error))
        childFailed(action, error);
    return true;
}

bool addPerCapitaBill(Office& o) {
    const char* action = "per capita added bill";
    const QString model = o.pick(QStringLiteral("SELECT BillNo FROM PCMaster WHERE BillNo < 'A' "
                                                "AND AdjFlag IN (' ', 'A') ORDER BY BillNo"));
    const QString billNo = nextAddedBill(o, "PCBillNum");
    if (model.isEmpty() || billNo.mid(1).toInt() > 9000)
        return false;
    const BillNow bill = billOf(o, Duplicate::PerCapita, model, action);
    PerCapitaAddition a;
    a.image = perCapitaImageOf(bill);
    a.image.billNo = billNo;
    a.image.control = QStringLiteral("A%1").arg(billNo.mid(1).toInt(), 5, 10, QLatin1Char('0'));
    a.image.lName = QStringLiteral("O'REILLY");
    a.image.name = a.image.fName + QStringLiteral(" O'REILLY");
    a.district = bill.text("District");
    a.ward = bill.text("Ward");
    a.taxYear = o.taxYear;
    a.addDate = CrashToday;
    a.reason = QStringLiteral("NEW RESIDENT");
    QString error;
    if (!AddPerCapitaBill(o.db, a, &error))
        childFailed(action, error);
    return true;
}

// A distribution of some of the bodies up to today, numbered after each body's last one, and
// its files, as the distribution screen makes them.
bool distribute(Office& o, const DistributionTables& tables) {
    const char* action = "distribution";
    DistributionRun run;
    run.taxYear = o.taxYear;
    run.district = o.district;
    run.ward = o.ward;
    const int mask = o.between(1, 7);
    for (TaxingBody body : {TaxingBody::County, TaxingBody::Twp, TaxingBody::School}) {
        if (!(mask & (1 << int(body))))
            continue;
        const LastDistribution last =
            ReadLastDistribution(o.db, tables.disbType, tables.body(body).cts);
        if (last.number >= 99)
            return false;
        // Now and then the last number again: its date moves and its rows grow.
        const bool again = last.exists() && o.between(0, 3) == 0;
        run.bodies.push_back({body, again ? last.number : last.number + 1, CrashToday});
    }
    std::vector<BodyOutcome> outcomes;
    QString error;
    if (!DistributeReceipts(o.db, tables, run, &outcomes, &error))
        childFailed(action, error);
    const std::vector<FileFailure> failures =
        WriteDistributionFiles(o.folder, tables, o.district, outcomes);
    if (!failures.empty())
        childFailed(action, failures.front().error);
    return true;
}

// The refunds still open, some of them put into the next refund distribution one by one.
bool distributeRefunds(Office& o, const DistributionTables& tables) {
    const char* action = "refund distribution";
    std::vector<QSqlRecord> refunds;
    QString error;
    if (!ReadUndistributedRefunds(o.db, tables, o.taxYear, &refunds, &error))
        childFailed(action, error);
    if (refunds.empty())
        return false;
    const QString key = NextRefundDistributionKey(o.db, tables, o.taxYear);
    if (key.right(2) == QLatin1String("99"))
        return false;
    for (const QSqlRecord& row : refunds) {
        if (o.between(0, 2) == 0)
            continue;
        const RefundToDistribute refund{TextField(row.value(QStringLiteral("RecNum"))),
                                        row.value(QStringLiteral("RecNumID")).toInt(), key};
        if (!DistributeRefund(o.db, tables, refund, &error))
            childFailed(action, error);
    }
    return true;
}

const char* const CrashTaxName = "CRASH TAX";

// The county's rates saved as they stand but for the special's name.
bool saveCountyRates(Office& o) {
    const QSqlRecord& r = o.countyRow;
    auto rate = [&](const char* c) { return r.value(QLatin1String(c)).toDouble(); };
    CountyMillages v;
    v.taxYear = o.taxYear;
    v.smr = rate("SMR");
    v.s1mr = rate("S1MR");
    // The special's name changes each time, so that every save writes.
    v.s1TaxName = o.between(0, 1) ? TextField(r.value(QStringLiteral("S1TaxName")))
                                  : QLatin1String(CrashTaxName);
    v.sd = rate("SD");
    v.sp = rate("SP");
    v.smo = rate("SMO");
    v.spc = rate("SPC");
    v.pcsd = rate("PCSD");
    v.pcsp = rate("PCSP");
    QString error;
    if (!SaveCountyMillages(o.db, v, &error))
        childFailed("county millages", error);
    return true;
}

// The street light amount of the first bill, a new one each time: its Specpay row and the
// bill's third special move together.
const char* const CrashTaxKey = "CRASH1";

bool saveSpecialTaxpayer(Office& o) {
    const QSqlRecord bill = firstRow(o.db, QStringLiteral("SELECT * FROM TCMaster WHERE BillNo = "
                                                          "'    1'"));
    if (bill.isEmpty())
        return false;
    SpecialTaxpayerAmount v;
    v.district = TextField(bill.value(QStringLiteral("District")));
    v.ward = TextField(bill.value(QStringLiteral("Ward")));
    v.control = TextField(bill.value(QStringLiteral("Control")));
    v.taxKey = QLatin1String(CrashTaxKey);
    v.map3 = TextField(bill.value(QStringLiteral("Map3")));
    v.map4 = TextField(bill.value(QStringLiteral("Map4")));
    v.map5 = TextField(bill.value(QStringLiteral("Map5")));
    v.map = v.map3 + v.map4 + v.map5;
    v.name = TextField(bill.value(QStringLiteral("Name")));
    v.amount = Money::fromCents(o.between(1000, 9000));
    v.discountPercent = o.municipalRow.value(QStringLiteral("TD")).toDouble();
    v.penaltyPercent = o.municipalRow.value(QStringLiteral("TP")).toDouble();
    QString error;
    if (!SaveSpecialTaxpayerAmount(o.db, v, &error))
        childFailed("special taxpayer amount", error);
    return true;
}

bool lateBilling(Office& o, bool adds) {
    LateBillingOffice office;
    QString error;
    if (!LateBillingOffice::read(o.db, &office, &error))
        childFailed("late billing", error);
    for (Duplicate d : {Duplicate::RealEstate, Duplicate::PerCapita}) {
        const LateBillingResult r = adds ? UpdateLateBillingAdds(o.db, d, office)
                                         : ExonerateLateBodies(o.db, d, office, CrashToday);
        if (!r.ok)
            childFailed(adds ? "late billing adds" : "late billing exonerations", r.error);
    }
    return true;
}

// Verify Data Integrity as its screen runs it: the walk with its repairs, the Nulls cleaned,
// the file compacted with no connection open on it, the connection opened again.
bool verifyData(Office& o) {
    const char* action = "verify data integrity";
    const VerifyWalk walk = VerifyDataWalk(o.db, QStringLiteral("Township"), {});
    if (!walk.ok)
        childFailed(action, walk.error);
    QString error;
    if (!CleanNulls(o.db, &error))
        childFailed(action, error);
    const QString path = session().DatabasePath;
    o.db = QSqlDatabase();
    CloseSessionDatabase();
    if (!CompactDatabaseFile(path, &error))
        childFailed(action, error);
    if (!OpenSessionDatabase(path, &error))
        childFailed(action, error);
    o.db = session().DbConnection;
    return true;
}

// Every user action that writes. One more action is one more entry.
struct CrashAction {
    const char* name;
    std::function<bool(Office&)> run; // false: nothing to do on this database now
};

const std::vector<CrashAction>& CrashActions() {
    static const std::vector<CrashAction> actions{
        {"real-estate payment and refund", payRealEstate},
        {"real-estate installment", payInstallment},
        {"real-estate void", [](Office& o) { return voidReceipt(o, Duplicate::RealEstate); }},
        {"real-estate adjustment", [](Office& o) { return adjustRealEstate(o, false); }},
        {"real-estate exoneration", [](Office& o) { return adjustRealEstate(o, true); }},
        {"real-estate unexoneration", unexonerateRealEstate},
        {"real-estate address change", changeRealEstateAddress},
        {"real-estate added bill", addRealEstateBill},
        {"mortgage company posting", postMortgageFile},
        {"per capita payment and refund", payPerCapita},
        {"per capita void", [](Office& o) { return voidReceipt(o, Duplicate::PerCapita); }},
        {"per capita adjustment", adjustPerCapita},
        {"per capita exoneration", exoneratePerCapita},
        {"per capita unexoneration", unexoneratePerCapita},
        {"per capita added bill", addPerCapitaBill},
        {"per capita address change", changePerCapitaAddress},
        {"real-estate distribution", [](Office& o) { return distribute(o, RealEstateTables()); }},
        {"per capita distribution", [](Office& o) { return distribute(o, PerCapitaTables()); }},
        {"real-estate refund distribution",
         [](Office& o) { return distributeRefunds(o, RealEstateTables()); }},
        {"per capita refund distribution",
         [](Office& o) { return distributeRefunds(o, PerCapitaTables()); }},
        {"county millages", saveCountyRates},
        {"special taxpayer amount", saveSpecialTaxpayer},
        {"late billing adds", [](Office& o) { return lateBilling(o, true); }},
        {"late billing exonerations", [](Office& o) { return lateBilling(o, false); }},
        {"verify data integrity", verifyData},
    };
    return actions;
}

bool openOffice(const QString& path, Office* o, QString* error) {
    if (!OpenSessionDatabase(path, error))
        return false;
    o->db = session().DbConnection;
    o->folder = QFileInfo(path).absolutePath();
    o->countyRow = firstRow(o->db, QStringLiteral("SELECT * FROM Millfile WHERE District || "
                                                  "Ward = '000'"));
    o->taxYear = TextField(o->countyRow.value(QStringLiteral("TaxYear"))).left(4);
    session().TaxYear = o->taxYear;
    const QSqlRecord office = firstRow(o->db, QStringLiteral("SELECT District, Ward FROM "
                                                             "tbl_District"));
    o->district = TextField(office.value(0));
    o->ward = TextField(office.value(1));
    o->municipalRow =
        firstRow(o->db, QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = ?"),
                 {o->district + o->ward});
    o->calendar = PaymentCalendarFromMillfile(o->municipalRow);
    if (o->countyRow.isEmpty() || o->municipalRow.isEmpty()) {
        *error = QStringLiteral("no Millfile rows");
        return false;
    }
    return true;
}

// Writes "R" on stdout once the database is open, then one "." per action done, until killed.
int RunCrashChild(const QString& path, quint32 seed) {
    Office o;
    o.rng.seed(seed);
    QString error;
    if (!openOffice(path, &o, &error))
        childFailed("opening the database", error);
    std::fputc('R', stdout);
    std::fflush(stdout);
    const std::vector<CrashAction>& actions = CrashActions();
    for (;;) {
        const CrashAction& a = actions.at(std::size_t(o.between(0, int(actions.size()) - 1)));
        if (a.run(o)) {
            std::fputc('.', stdout);
            std::fflush(stdout);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// The parent: the checks after each kill
// ---------------------------------------------------------------------------------------------

// What the database must show whatever moment the child died at; each query lists the rows
// that break its rule.
struct Rule {
    const char* what;
    QString sql;
};

std::vector<Rule> Rules() {
    std::vector<Rule> rules;
    auto add = [&](const char* what, const QString& sql) { rules.push_back({what, sql}); };
    const QString live = QStringLiteral("(r.VDate IS NULL OR r.VDate = '')");
    struct Desk {
        const char* master;
        const char* receipt;
        const char* voids;
        const char* distribution;
        const char* voidDistribution;
        const char* adjust;
        const char* address;
        const char* adds;
        const char* receiptNum;
        const char* billNum;
        const char* refund;
        const char* type;
        bool installments;
    };
    const Desk desks[] = {
        {"TCMaster", "TCReceipt", "TCVoidReceipt", "TCDistribution", "TCVoidDistribution",
         "TCAdjust", "TCAddress", "TCAdds", "TCReceiptNum", "TCBillNum", "TCRefund", "RE", true},
        {"PCMaster", "PCReceipt", "PCVoidReceipt", "PCDistribution", "PCVoidDistribution",
         "PCAdjust", "PCAddress", "PCAdds", "PCReceiptNum", "PCBillNum", "PCRefund", "PC", false},
    };
    for (const Desk& d : desks) {
        auto sql = [&](const char* text) {
            QString s = QString::fromLatin1(text);
            s.replace(QLatin1String("$master"), QLatin1String(d.master));
            s.replace(QLatin1String("$receipt"), QLatin1String(d.receipt));
            s.replace(QLatin1String("$voids"), QLatin1String(d.voids));
            s.replace(QLatin1String("$adjust"), QLatin1String(d.adjust));
            s.replace(QLatin1String("$address"), QLatin1String(d.address));
            s.replace(QLatin1String("$adds"), QLatin1String(d.adds));
            s.replace(QLatin1String("$receiptNum"), QLatin1String(d.receiptNum));
            s.replace(QLatin1String("$billNum"), QLatin1String(d.billNum));
            s.replace(QLatin1String("$refund"), QLatin1String(d.refund));
            s.replace(QLatin1String("$type"), QLatin1String(d.type));
            s.replace(QLatin1String("$live"), live);
            return s;
        };
        QStringList flags{QStringLiteral("CPayFlag"), QStringLiteral("TPayFlag"),
                          QStringLiteral("SPayFlag")};
        if (d.installments)
            flags << QStringLiteral("Pay1Flag") << QStringLiteral("Pay2Flag")
                  << QStringLiteral("Pay3Flag");
        for (const QString& flag : flags) {
            add("a pay flag without its receipt",
                sql("SELECT m.BillNo || ' %1' FROM $master m WHERE trim(m.%1) NOT IN ('', 'X') "
                    "AND NOT EXISTS (SELECT 1 FROM $receipt r WHERE r.BillNo = m.BillNo AND "
                    "trim(r.%1) <> '' AND $live)")
                    .arg(flag));
            // The bill carries the letter its live receipt paid with.
            add("a receipt without its pay flag",
                sql("SELECT r.Recnum || ' %1 ' || r.%1 || '/' || m.%1 FROM $receipt r JOIN "
                    "$master m ON m.BillNo = r.BillNo WHERE $live AND trim(r.%1) <> '' AND m.%1 "
                    "<> r.%1")
                    .arg(flag));
        }
        add("a voided receipt without its void row, or a void row without its receipt's date",
            sql("SELECT r.Recnum FROM $receipt r WHERE (NOT $live) <> EXISTS (SELECT 1 FROM "
                "$voids v WHERE v.Recnum = r.Recnum)"));
        add("a void row whose amounts are not the receipt's negated",
            sql("SELECT v.Recnum FROM $voids v JOIN $receipt r ON r.Recnum = v.Recnum WHERE "
                "v.Overage <> -r.Overage OR v.Refund <> -r.Refund OR v.%1 <> -r.%1 OR v.%2 <> "
                "-r.%2 OR v.%3 <> -r.%3")
                .arg(d.installments ? QStringLiteral("County") : QStringLiteral("CPerCapita"),
                     d.installments ? QStringLiteral("Twp") : QStringLiteral("TPerCapita"),
                     d.installments ? QStringLiteral("School") : QStringLiteral("SPerCapita")));
        add("a void row without its receipt",
            sql("SELECT v.Recnum FROM $voids v WHERE NOT EXISTS (SELECT 1 FROM $receipt r WHERE "
                "r.Recnum = v.Recnum)"));
        add("a receipt number taken twice",
            sql("SELECT Recnum FROM $receipt GROUP BY Recnum HAVING count(*) > 1"));
        add("the receipt counter not above a number used",
            sql("SELECT n.ReceiptNum FROM $receiptNum n WHERE n.ReceiptNum <= (SELECT "
                "coalesce(max(CAST(substr(Recnum, 9, 4) AS INTEGER)), 0) FROM $receipt)"));
        add("the added-bill counter not above a number used",
            sql("SELECT n.BillNum FROM $billNum n WHERE n.BillNum <= (SELECT "
                "coalesce(max(CAST(substr(BillNo, 2) AS INTEGER)), 0) FROM $master WHERE "
                "substr(BillNo, 1, 1) = 'A')"));
        add("a refund row without its receipt",
            sql("SELECT f.RecNum FROM $refund f WHERE NOT EXISTS (SELECT 1 FROM $receipt r "
                "WHERE r.Recnum = f.RecNum)"));
        add("an adjustment marker without its row",
            sql("SELECT m.BillNo FROM $master m WHERE m.AdjFlag = 'A' AND NOT EXISTS (SELECT 1 "
                "FROM $adjust a WHERE a.BillNo = m.BillNo)"));
        add("an adjustment row without its marker",
            sql("SELECT DISTINCT a.BillNo FROM $adjust a WHERE NOT EXISTS (SELECT 1 FROM "
                "$master m WHERE m.BillNo = a.BillNo AND m.AdjFlag = 'A')"));
        add("an adjustment number taken twice",
            sql("SELECT BillNo || ' ' || AdjNo FROM $adjust GROUP BY BillNo, AdjNo HAVING "
                "count(*) > 1"));
        add("an address marker without its row",
            sql("SELECT m.BillNo FROM $master m WHERE m.CAddrFlag = 'A' AND NOT EXISTS (SELECT "
                "1 FROM $address a WHERE a.BillNo = m.BillNo)"));
        add("an address row without its marker",
            sql("SELECT DISTINCT a.BillNo FROM $address a WHERE NOT EXISTS (SELECT 1 FROM "
                "$master m WHERE m.BillNo = a.BillNo AND m.CAddrFlag = 'A')"));
        add("an address number taken twice",
            sql("SELECT BillNo || ' ' || AddrID FROM $address GROUP BY BillNo, AddrID HAVING "
                "count(*) > 1"));
        add("an added bill without its adds row",
            sql("SELECT m.BillNo FROM $master m WHERE substr(m.BillNo, 1, 1) = 'A' AND NOT "
                "EXISTS (SELECT 1 FROM $adds a WHERE a.BillNo = m.BillNo)"));
        add("an adds row without its bill",
            sql("SELECT a.BillNo FROM $adds a WHERE NOT EXISTS (SELECT 1 FROM $master m WHERE "
                "m.BillNo = a.BillNo)"));
        const char* const shares[][2] = {{d.receipt, d.distribution},
                                         {d.voids, d.voidDistribution}};
        for (const auto& [from, into] : shares)
            for (const char* cts : {"C", "T", "S"}) {
                const QString key = QStringLiteral("%1DisbNum").arg(QLatin1String(cts));
                const QString args[] = {QLatin1String(from), QLatin1String(into), key,
                                        QLatin1String(cts), QLatin1String(d.type)};
                auto bodySql = [&](const char* text) {
                    QString s = QString::fromLatin1(text);
                    for (int i = 0; i < 5; ++i)
                        s.replace(QStringLiteral("%%1").arg(i + 1), args[i]);
                    return s;
                };
                add("a distribution key without its share row",
                    bodySql("SELECT r.Recnum FROM %1 r WHERE trim(r.%3) <> '' AND NOT EXISTS "
                            "(SELECT 1 FROM %2 s WHERE s.Recnum = r.Recnum AND s.CTS = '%4' AND "
                            "s.%3 = r.%3)"));
                add("a distribution key without its tbl_DisbDates row",
                    bodySql("SELECT DISTINCT r.%3 FROM %1 r WHERE trim(r.%3) <> '' AND NOT "
                            "EXISTS (SELECT 1 FROM tbl_DisbDates t WHERE t.CTS = '%4' AND "
                            "t.DisbType = '%5' AND t.DisbNum = CAST(substr(r.%3, 5, 2) AS "
                            "INTEGER))"));
                add("a share row without its receipt",
                    bodySql("SELECT s.Recnum FROM %2 s WHERE s.CTS = '%4' AND NOT EXISTS "
                            "(SELECT 1 FROM %1 r WHERE r.Recnum = s.Recnum AND r.%3 = s.%3)"));
            }
    }
    // A void takes a receipt's refunds away when none of them was distributed.
    add("a voided receipt that kept only undistributed refunds",
        QStringLiteral("SELECT r.Recnum FROM TCReceipt r WHERE r.VDate IS NOT NULL AND r.VDate <> "
                       "'' AND EXISTS (SELECT 1 FROM TCRefund f WHERE f.RecNum = r.Recnum) AND NOT "
                       "EXISTS (SELECT 1 FROM TCRefund f WHERE f.RecNum = r.Recnum AND "
                       "substr(f.DisbNum, 5, 2) <> '00')"));
    add("the special taxpayer's amount not on the bill",
        QStringLiteral("SELECT p.Control FROM Specpay p JOIN TCMaster m ON m.Control = "
                       "p.Control WHERE p.TaxKey = '%1' AND m.S3Face <> p.Amount")
            .arg(QLatin1String(CrashTaxKey)));
    return rules;
}

// The county's rates as a text, to compare before and after (the special's name may be either
// of the two the child writes).
QString countyRates(QSqlDatabase db) {
    // A Null rate is 0 (Verify Data Integrity makes it so).
    QStringList rates;
    for (const char* rate : {"SMR", "S1MR", "SD", "SP", "SMO", "SPC", "PCSD", "PCSP"})
        rates << QStringLiteral("ifnull(%1, 0)").arg(QLatin1String(rate));
    return column(db, QStringLiteral("SELECT %1 FROM Millfile WHERE District || Ward = '000'")
                          .arg(rates.join(QStringLiteral(" || '|' || "))))
        .join(u';');
}

QString countyTaxName(QSqlDatabase db) {
    return column(db, QStringLiteral("SELECT S1TaxName FROM Millfile WHERE District || Ward = "
                                     "'000'"))
        .join(u';');
}

// The repairs the integrity walk may make on a whole database: a flag "X" has no receipt, and
// the walk takes it for a payment cut off (it is settled so). Every other repair is a fault.
QStringList unexpectedRepairs(QSqlDatabase db, const VerifyWalk& walk) {
    QStringList faults;
    for (qsizetype i = 0; i + 3 < walk.printed.size(); i += 4) {
        const QString& line = walk.printed.at(i);
        const bool receipt = line.endsWith(QLatin1String(" RECEIPT."));
        const QString bill = line.section(QStringLiteral("Bill # "), 1).left(5);
        const bool perCapita = line.startsWith(QLatin1String("Per Capita"));
        bool exonerated = false;
        if (receipt) {
            const char* flag = line.contains(QLatin1String("COUNTY"))   ? "CPayFlag"
                               : line.contains(QLatin1String("SCHOOL")) ? "SPayFlag"
                                                                        : "TPayFlag";
            exonerated = column(db, QStringLiteral("SELECT %1 FROM %2 WHERE BillNo = '%3'")
                                        .arg(QLatin1String(flag),
                                             perCapita ? QStringLiteral("PCMaster")
                                                       : QStringLiteral("TCMaster"),
                                             bill))
                             .value(0) == QLatin1String("X");
        }
        if (!exonerated)
            faults << QStringLiteral("Verify Data Integrity mends: ") + line;
    }
    return faults;
}

struct Baseline {
    QString countyRates;
    QString countyTaxName;
    QStringList told; // what the integrity walk tells on the demo before any child ran
};

// The integrity walk mends what it finds, so it walks a copy: the file as the check's
// connection left it (a cut-off transaction rolled back, nothing open), written without syncs.
VerifyWalk walkCopy(const QString& path, QString* error) {
    const QString copy = QFileInfo(path).absolutePath() + QStringLiteral("/verify-copy.sqlite");
    QFile::remove(copy);
    VerifyWalk walk;
    if (!QFile::copy(path, copy)) {
        *error = QStringLiteral("cannot copy the database to ") + copy;
        return walk;
    }
    {
        QSqlDatabase c = TaxDatabase::open(copy, QStringLiteral("crash-verify"), error);
        if (c.isValid()) {
            QSqlQuery(c).exec(QStringLiteral("PRAGMA synchronous = OFF"));
            walk = VerifyDataWalk(c, QStringLiteral("Township"), {});
        }
    }
    TaxDatabase::close(QStringLiteral("crash-verify"));
    QFile::remove(copy);
    if (!walk.ok && error->isEmpty())
        *error = QStringLiteral("the integrity walk failed: ") + walk.error;
    return walk;
}

Baseline ReadBaseline(const QString& path) {
    Baseline baseline;
    const QString name = QStringLiteral("crash-baseline");
    {
        QString error;
        QSqlDatabase db = TaxDatabase::open(path, name, &error);
        baseline.countyRates = countyRates(db);
        baseline.countyTaxName = countyTaxName(db);
        baseline.told = walkCopy(path, &error).told;
    }
    TaxDatabase::close(name);
    return baseline;
}

// Every rule on the database at path; the faults found.
QStringList CheckDatabase(const QString& path, const Baseline& baseline) {
    QStringList faults;
    const QString name = QStringLiteral("crash-check");
    {
        QString error;
        QSqlDatabase db = TaxDatabase::open(path, name, &error);
        if (!db.isValid() || !db.isOpen()) {
            faults << QStringLiteral("cannot open the database: ") + error;
        } else {
            const QStringList integrity = column(db, QStringLiteral("PRAGMA integrity_check"));
            if (integrity != QStringList{QStringLiteral("ok")})
                faults << QStringLiteral("integrity_check: ") + integrity.join(u' ');
            for (const Rule& rule : Rules()) {
                const QStringList rows = column(db, rule.sql);
                if (!rows.isEmpty())
                    faults << QStringLiteral("%1: %2").arg(
                        QLatin1String(rule.what), rows.mid(0, 5).join(QStringLiteral(", ")));
            }
            if (countyRates(db) != baseline.countyRates)
                faults << QStringLiteral("the county's rates changed: ") + countyRates(db);
            const QString taxName = countyTaxName(db);
            if (taxName != baseline.countyTaxName && taxName != QLatin1String(CrashTaxName))
                faults << QStringLiteral("the county's special is named: ") + taxName;
            const VerifyWalk walk = walkCopy(path, &error);
            if (!error.isEmpty())
                faults << error;
            faults << unexpectedRepairs(db, walk);
            // What it tells of receipts against adjusted amounts follows from the office's
            // own rules (the late billing run zeroes a late body that was paid), not from a
            // write cut off; what it tells of voids and distributions must not appear.
            for (const QString& told : walk.told)
                if (!baseline.told.contains(told) &&
                    !told.endsWith(QLatin1String("do not match adjusted amounts. Call Support.")))
                    faults << QStringLiteral("Verify Data Integrity tells: ") + told;
        }
    }
    TaxDatabase::close(name);
    return faults;
}

// ---------------------------------------------------------------------------------------------
// The parent: start, kill, check, again
// ---------------------------------------------------------------------------------------------

struct CrashRun {
    int kills = 0;
    qint64 actions = 0;
    double seconds = 0;
    QStringList faults;
};

// Reads what the child wrote within the time; -1 at its end.
qint64 readChild(int fd, int timeoutMs, bool* ready) {
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, timeoutMs) <= 0)
        return 0;
    char buffer[4096];
    const ssize_t n = read(fd, buffer, sizeof buffer);
    if (n <= 0)
        return -1;
    qint64 done = 0;
    for (ssize_t i = 0; i < n; ++i) {
        if (buffer[i] == 'R')
            *ready = true;
        else if (buffer[i] == '.')
            ++done;
    }
    return done;
}

CrashRun RunCrashLoop(const QString& self, int kills, quint32 seed) {
    CrashRun run;
    QElapsedTimer clock;
    clock.start();
    std::printf("crash test: seed %u, %d kills\n", seed, kills);
    std::fflush(stdout);
    std::mt19937 rng(seed);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
    DemoOptions demo;
    demo.parcels = 100;
    demo.persons = 70;
    QString error;
    if (!CreateDemoDatabase(path, demo, &error)) {
        run.faults << QStringLiteral("demo database: ") + error;
        return run;
    }
    const Baseline baseline = ReadBaseline(path);
    run.faults = CheckDatabase(path, baseline);
    if (!run.faults.isEmpty()) {
        run.faults.prepend(QStringLiteral("the demo database before any child:"));
        return run;
    }

    const QByteArray exe = self.toLocal8Bit();
    const QByteArray file = path.toLocal8Bit();
    for (int kill = 1; kill <= kills; ++kill) {
        const quint32 childSeed = rng();
        // Mostly within the first few actions; one kill in eight lets the child run longer, so
        // that the long actions (a distribution, the late billing run, the integrity utility
        // on a grown file) are cut too.
        const bool longer = std::uniform_int_distribution<int>(0, 7)(rng) == 0;
        const int delayUs = longer ? std::uniform_int_distribution<int>(60000, 250000)(rng)
                                   : std::uniform_int_distribution<int>(0, 60000)(rng);
        int pipeFds[2];
        if (pipe(pipeFds) != 0) {
            run.faults << QStringLiteral("pipe failed");
            break;
        }
        const QByteArray seedText = QByteArray::number(childSeed);
        const pid_t pid = fork();
        if (pid == 0) {
            dup2(pipeFds[1], STDOUT_FILENO);
            close(pipeFds[0]);
            close(pipeFds[1]);
            execl(exe.constData(), exe.constData(), ChildFlag, file.constData(),
                  seedText.constData(), static_cast<char*>(nullptr));
            _exit(127);
        }
        close(pipeFds[1]);
        bool ready = false;
        QElapsedTimer wait;
        wait.start();
        bool ended = false;
        while (!ready && !ended && wait.elapsed() < 20000) {
            const qint64 got = readChild(pipeFds[0], 100, &ready);
            ended = got < 0;
            run.actions += std::max<qint64>(got, 0);
        }
        if (ready) {
            wait.restart();
            while (!ended && wait.nsecsElapsed() / 1000 < delayUs) {
                const int left = int(delayUs - wait.nsecsElapsed() / 1000);
                const qint64 got = readChild(pipeFds[0], std::max(1, left / 1000), &ready);
                ended = got < 0;
                run.actions += std::max<qint64>(got, 0);
            }
        }
        ::kill(pid, SIGKILL);
        int status = 0;
        waitpid(pid, &status, 0);
        for (qint64 got = 0; (got = readChild(pipeFds[0], 0, &ready)) > 0;)
            run.actions += got;
        close(pipeFds[0]);
        const QString moment = QStringLiteral("kill %1 (seed %2, child seed %3, delay %4 us)")
                                   .arg(kill)
                                   .arg(seed)
                                   .arg(childSeed)
                                   .arg(delayUs);
        if (!WIFSIGNALED(status) || WTERMSIG(status) != SIGKILL) {
            run.faults << moment +
                              QStringLiteral(": the child ended by itself, status %1").arg(status);
            break;
        }
        run.kills = kill;
        const QStringList faults = CheckDatabase(path, baseline);
        if (!faults.isEmpty()) {
            // The database stays for a look.
            dir.setAutoRemove(false);
            run.faults << moment + QStringLiteral(", database kept at ") + path + QLatin1Char(':')
                       << faults;
            break;
        }
    }
    run.seconds = clock.elapsed() / 1000.0;
    const QString seconds = QString::number(run.seconds, 'f', 1);
    std::printf("crash test: %d kills survived, %lld actions done in all, %s s\n", run.kills,
                static_cast<long long>(run.actions), qPrintable(seconds));
    std::printf("RESULT crash_kills=%d crash_s=%s\n", run.kills, qPrintable(seconds));
    std::fflush(stdout);
    return run;
}

quint32 runSeed() {
    const QByteArray fixed = qgetenv("LEVYDESK_CRASH_SEED");
    return fixed.isEmpty() ? quint32(QDateTime::currentMSecsSinceEpoch()) : fixed.toUInt();
}

} // namespace

class TestCrashSafety : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void checksSeeHalfDoneActions_data();
    void checksSeeHalfDoneActions();
    void survivesKills();

private:
    QTemporaryDir m_dir;
    QString m_worked; // a demo with one of each action done
    Baseline m_baseline;
};

void TestCrashSafety::initTestCase() {
    m_worked = m_dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
    DemoOptions demo;
    demo.parcels = 40;
    demo.persons = 30;
    QString error;
    QVERIFY2(CreateDemoDatabase(m_worked, demo, &error), qPrintable(error));
    m_baseline = ReadBaseline(m_worked);
    Office o;
    o.rng.seed(5);
    QVERIFY2(openOffice(m_worked, &o, &error), qPrintable(error));
    for (const CrashAction& a : CrashActions())
        a.run(o);
    QVERIFY(voidReceipt(o, Duplicate::RealEstate) && distribute(o, RealEstateTables()));
    o.db = QSqlDatabase();
    CloseSessionDatabase();
    const QStringList faults = CheckDatabase(m_worked, m_baseline);
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
}

// Each rule sees the trace that an action cut off between two of its writes would leave.
void TestCrashSafety::checksSeeHalfDoneActions_data() {
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("fault");
    AddRow("pay flag",
           "UPDATE TCMaster SET TPayFlag = 'F' WHERE rowid = (SELECT min(rowid) FROM "
           "TCMaster WHERE TPayFlag = ' ')",
           "a pay flag without its receipt");
    AddRow("receipt",
           "UPDATE PCMaster SET CPayFlag = ' ', TPayFlag = ' ', SPayFlag = ' ' WHERE "
           "BillNo IN (SELECT BillNo FROM PCReceipt WHERE VDate IS NULL)",
           "a receipt without its pay flag");
    AddRow("void", "DELETE FROM TCVoidReceipt", "a voided receipt without its void row");
    AddRow("counter", "UPDATE PCReceiptNum SET ReceiptNum = 1",
           "the receipt counter not above a number used");
    AddRow("added bill", "DELETE FROM TCAdds", "an added bill without its adds row");
    AddRow("share row", "DELETE FROM TCDistribution WHERE CTS = 'S'",
           "a distribution key without its share row");
    AddRow("number", "DELETE FROM tbl_DisbDates WHERE CTS = 'T'",
           "a distribution key without its tbl_DisbDates row");
    AddRow("key",
           "UPDATE TCReceipt SET CDisbNum = '      ', TDisbNum = '      ', SDisbNum = '      '",
           "a share row without its receipt");
    AddRow("adjustment", "DELETE FROM PCAdjust", "an adjustment marker without its row");
    AddRow("address", "UPDATE TCMaster SET CAddrFlag = ' '", "an address row without its marker");
    AddRow("special", "UPDATE Specpay SET Amount = Amount + 100", "the special taxpayer's amount");
    AddRow("walk", "UPDATE TCMaster SET AdjFlag = 'A' WHERE AdjFlag = ' '",
           "Verify Data Integrity mends: Bill # ");
}

void TestCrashSafety::checksSeeHalfDoneActions() {
    QFETCH(QString, sql);
    QFETCH(QString, fault);
    const QString copy = m_dir.filePath(QStringLiteral("half-done.sqlite"));
    QFile::remove(copy);
    QVERIFY(QFile::copy(m_worked, copy));
    {
        QString error;
        QSqlDatabase db = TaxDatabase::open(copy, QStringLiteral("half-done"), &error);
        QSqlQuery q(db);
        QVERIFY2(q.exec(sql), qPrintable(q.lastError().text()));
        QVERIFY2(q.numRowsAffected() > 0, "the statement changed nothing");
    }
    TaxDatabase::close(QStringLiteral("half-done"));
    const QStringList faults = CheckDatabase(copy, m_baseline);
    QVERIFY2(faults.filter(fault).size() > 0, qPrintable(faults.join(u'\n')));
}

// Two hundred kills at random moments; each leaves a database whose every action stood whole.
void TestCrashSafety::survivesKills() {
    const CrashRun run = RunCrashLoop(QCoreApplication::applicationFilePath(), 200, runSeed());
    if (!run.faults.isEmpty())
        QFAIL(qPrintable(run.faults.join(u'\n')));
    QCOMPARE(run.kills, 200);
    QVERIFY2(run.actions > 200, "the children did hardly any work before they were killed");
}

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.value(1) == QLatin1String(ChildFlag))
        return RunCrashChild(args.value(2), args.value(3).toUInt());
    const int at = args.indexOf(QStringLiteral("--kills"));
    if (at > 0) {
        const int seedAt = args.indexOf(QStringLiteral("--seed"));
        const quint32 seed = seedAt > 0 ? args.value(seedAt + 1).toUInt() : runSeed();
        const CrashRun run =
            RunCrashLoop(QCoreApplication::applicationFilePath(), args.value(at + 1).toInt(), seed);
        for (const QString& fault : run.faults)
            std::fprintf(stderr, "%s\n", qPrintable(fault));
        return run.faults.isEmpty() ? 0 : 1;
    }
    TestCrashSafety test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_crash_safety.moc"
