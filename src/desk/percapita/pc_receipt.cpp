#include "desk/percapita/pc_receipt.h"

#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/payment_rules.h"
#include "reports/report_frame.h"

#include <QSqlRecord>
#include <QWidget>

namespace {

const char* const RatePattern = "####.00";

QString flagOf(const QSqlRecord& r, const char* column) {
    return TextField(r.value(QString::fromLatin1(column))).trimmed().toUpper();
}

Money column(const QSqlRecord& r, const QString& name) {
    return MoneyField(r.value(name));
}

} // namespace

bool LoadPCReceipt(QSqlDatabase db, const QString& recnum, ReceiptOffice* data, QString* error) {
    return LoadReceiptOffice(db, QStringLiteral("PCReceipt"), QStringLiteral("PCMaster"), recnum,
                             data, error);
}

ReceiptPage PCReceiptPage(const ReceiptOffice& d, const ReceiptScreenText& f, bool duplicate) {
    const QSqlRecord& r = d.receipt;
    ReceiptPage p;
    // "41" marks a per capita receipt for the scanner.
    FillReceiptHeading(p, d, QStringLiteral("41"));
    p.payor = ReceiptAddressLines({f.payor, f.pAddr1, f.pAddr2}, f.pCity, f.pState, f.pZipCode,
                                  f.pZipCode2);
    p.owner =
        ReceiptAddressLines({f.name, f.addr1, f.addr2}, f.city, f.state, f.zipCode, f.zipCode2);
    p.checknum = f.checknum;
    p.parcel = {{ReceiptControlLine(d, f.control), {}},
                {QStringLiteral("Bill #: ") + d.billNo, {}}};
    p.tableTitle = QStringLiteral("PER CAPITA TAX PAYMENT - TAX YEAR ") + d.taxYear;

    // The rates of each body: the county's from the county row, the others from the
    // municipal row (SPC and SMO there are the school's).
    auto rate = [](const QSqlRecord& row, const char* name) {
        return row.value(QString::fromLatin1(name)).toDouble();
    };
    const double perCapitaRate[3] = {rate(d.countyRow, "SPC"), rate(d.municipalRow, "TPC"),
                                     rate(d.municipalRow, "SPC")};
    const double occupationRate[3] = {rate(d.countyRow, "SMO"), rate(d.municipalRow, "TMO"),
                                      rate(d.municipalRow, "SMO")};
    const QString bodyName[3] = {QStringLiteral("COUNTY"), BodyWord(d.btFlag).toUpper(),
                                 QStringLiteral("SCHOOL")};
    const QString flags[3] = {flagOf(r, "CPayFlag"), flagOf(r, "TPayFlag"), flagOf(r, "SPayFlag")};
    Money face, discount, penalty;
    for (int i = 0; i < PerCapitaLineCount; ++i) {
        const QString faceColumn = PerCapitaFaceColumn(i);
        const Money f0 = column(r, faceColumn);
        const Money d0 = column(r, QLatin1Char('D') + faceColumn);
        const Money p0 = column(r, QLatin1Char('P') + faceColumn);
        face += f0;
        discount += d0;
        penalty += p0;
        const int body = int(BodyOfPerCapitaLine(i));
        if (flags[body].isEmpty())
            continue;
        const bool perCapita = i % 2 == 0;
        const double mills = perCapita ? perCapitaRate[body] : occupationRate[body];
        // A tax the body does not levy (no rate, nothing taken) has no row.
        if (mills == 0 && f0.isZero() && d0.isZero() && p0.isZero())
            continue;
        p.rows.push_back(ReceiptAmountRow(d.taxYear, bodyName[body],
                                          ReceiptRateText(mills, RatePattern), f0, d0, p0,
                                          flags[body]));
    }
    p.total = ReceiptTotalRow(face, discount, penalty);
    p.duplicate = duplicate;
    return p;
}

ReceiptPrintOutcome PrintPCReceipt(QSqlDatabase db, const ReceiptRequest& request) {
    if (!db.isValid())
        db = session().DbConnection;
    return PrintReceiptJob(
        db, request.recnum, request.copies, [&](QString* error) -> std::optional<ReceiptPage> {
            ReceiptOffice data;
            if (!LoadPCReceipt(db, request.recnum, &data, error))
                return std::nullopt;
            return PCReceiptPage(data, ReceiptFieldsFor(db, request, data, Duplicate::PerCapita),
                                 request.duplicate);
        });
}

ReceiptPrintOutcome AskAndPrintPCReceipt(QWidget* callingScreen, const QString& recnum,
                                         QSqlDatabase db) {
    return AskAndPrintReceipt([&](int copies) {
        return PrintPCReceipt(
            db, ScreenReceiptRequest(callingScreen, recnum, copies, "frmPCReprintReceipt"));
    });
}
