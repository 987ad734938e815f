#include "desk/percapita/adjust_writes.h"

#include "core/common_values.h"
#include "core/tax_database.h"

#include <QSqlRecord>

namespace {

Money rounded(double value) {
    return Money::fromRounded(RoundTo(value, 2));
}

double rate(const QSqlRecord& row, const char* column) {
    return row.value(column).toDouble();
}

// The columns PCMaster and PCAdjust share. A missing birth date leaves the column out, so it
// stays Null.
void addImage(RowValues& row, const PerCapitaBillImage& b) {
    row.add("Control", b.control);
    row.add("BillNo", b.billNo);
    row.add("Name", b.name);
    row.add("Prefix", b.prefix);
    row.add("LName", b.lName);
    row.add("FName", b.fName);
    row.add("MName", b.mName);
    row.add("Suffix", b.suffix);
    row.add("Relationship", b.relationship);
    row.add("Addr1", b.addr1);
    row.add("Addr2", b.addr2);
    row.add("StreetNumber", b.streetNumber);
    row.add("StreetName", b.streetName);
    row.add("City", b.city);
    row.add("State", b.state);
    row.add("ZipCode", b.zipCode);
    row.add("ZipCode2", b.zipCode2);
    row.add("OccuCode", b.occuCode);
    row.add("OccuDesc", b.occuDesc);
    row.add("OccuValue", b.occuValue);
    if (!b.birthdate.trimmed().isEmpty())
        row.add("Birthdate", b.birthdate);
    for (int line = 0; line < PerCapitaLineCount; ++line) {
        const AmountTriple& t = b.amounts.line[std::size_t(line)];
        row.add(PerCapitaDiscountColumn(line), MoneyValue(t.discount));
        row.add(PerCapitaFaceColumn(line), MoneyValue(t.face));
        row.add(PerCapitaPenaltyColumn(line), MoneyValue(t.penalty));
    }
}

} // namespace

QString PerCapitaDiscountColumn(int line) {
    return QLatin1Char('D') + PerCapitaFaceColumn(line);
}

QString PerCapitaPenaltyColumn(int line) {
    return QLatin1Char('P') + PerCapitaFaceColumn(line);
}

PerCapitaBillAmounts PerCapitaBillAmountsFromRecord(const QSqlRecord& bill) {
    PerCapitaBillAmounts a;
    for (int line = 0; line < PerCapitaLineCount; ++line)
        a.line[std::size_t(line)] = {MoneyField(bill.value(PerCapitaDiscountColumn(line))),
                                     MoneyField(bill.value(PerCapitaFaceColumn(line))),
                                     MoneyField(bill.value(PerCapitaPenaltyColumn(line)))};
    return a;
}

PerCapitaRates PerCapitaRatesFromMillfile(const QSqlRecord& countyRow,
                                          const QSqlRecord& municipalRow, const QString& district,
                                          const QString& schoolName) {
    PerCapitaRates r;
    const bool district37 = district.trimmed() == QLatin1String("37");
    r.body[0] = {rate(countyRow, "SPC"), rate(countyRow, "SMO"), district37,
                 WholePercent(rate(countyRow, "PCSD")), WholePercent(rate(countyRow, "PCSP"))};
    r.body[1] = {rate(municipalRow, "TPC"), rate(municipalRow, "TMO"), district37,
                 rate(municipalRow, "PCTD"), rate(municipalRow, "PCTP")};
    r.body[2] = {rate(municipalRow, "SPC"), rate(municipalRow, "SMO"),
                 schoolName.trimmed() == QLatin1String("Larkspur Hill"), rate(municipalRow, "PCSD"),
                 rate(municipalRow, "PCSP")};
    return r;
}

PerCapitaBillAmounts ComputePerCapitaAmounts(const PerCapitaBillAmounts& before,
                                             qint64 occupationValue, const BodyTicks& ticked,
                                             const PerCapitaRates& rates) {
    PerCapitaBillAmounts a = before;
    for (int b = 0; b < 3; ++b) {
        if (!ticked[std::size_t(b)])
            continue;
        const PerCapitaBodyRates& r = rates.body[std::size_t(b)];
        const Money occupation = r.occupationInMills
                                     ? rounded(r.occupation / 1000 * double(occupationValue))
                                     : rounded(r.occupation);
        a.line[std::size_t(b * 2)] =
            TripleFromFace(rounded(r.perCapita), r.discountPct, r.penaltyPct);
        a.line[std::size_t(b * 2 + 1)] = TripleFromFace(occupation, r.discountPct, r.penaltyPct);
    }
    return a;
}

void RecomputePerCapitaDiscountPenalty(PerCapitaBillAmounts& amounts, const PerCapitaRates& rates) {
    for (int line = 0; line < PerCapitaLineCount; ++line) {
        const PerCapitaBodyRates& r = rates.body[std::size_t(BodyOfPerCapitaLine(line))];
        AmountTriple& t = amounts.line[std::size_t(line)];
        t = TripleFromFace(t.face, r.discountPct, r.penaltyPct);
    }
}

bool AddPerCapitaBill(QSqlDatabase db, const PerCapitaAddition& a, QString* error) {
    ChainAddition add;
    add.tables = PerCapitaChain;
    add.billNo = a.image.billNo;
    add.control = a.image.control;
    add.addDate = a.addDate;
    add.reason = a.reason;
    RowValues& row = add.masterRow;
    row.add("District", a.district);
    row.add("Ward", a.ward);
    addImage(row, a.image);
    for (const char* flag :
         {"AdjFlag", "CPayFlag", "TPayFlag", "SPayFlag", "CAddrFlag", "BankFlag", "SecondNotice",
          "Exempt", "PCExempt", "SCExempt", "OtherExempt", "Over65"})
        row.add(flag, QStringLiteral(" "));
    row.add("TaxYear", a.taxYear);
    return AddBillToChain(db, add, error);
}

bool RecordPerCapitaAdjustment(QSqlDatabase db, const PerCapitaAdjustment& a, QString* error) {
    ChainAdjustment adj;
    adj.tables = PerCapitaChain;
    adj.billNo = a.image.billNo;
    addImage(adj.image, a.image);
    adj.adjNo = a.adjNo;
    adj.adjDate = a.adjDate;
    adj.reason = a.reason;
    adj.exonerate = a.exonerate;
    adj.bodies = {true, true, true};
    return AppendAdjustment(db, adj, error);
}

bool RecordPerCapitaUnexoneration(QSqlDatabase db, const QString& billNo, int lastAdjNo,
                                  QString* error) {
    return RemoveExoneration(db, {PerCapitaChain, billNo, lastAdjNo, {true, true, true}}, error);
}
