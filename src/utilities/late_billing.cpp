#include "utilities/late_billing.h"

#include "core/common_values.h"
#include "desk/realestate/payment_rules.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <cmath>

namespace {

const char* const Reason = "UPDATED FROM LATE BILLING ROUTINE";

QString flagOf(const QSqlRecord& r, const char* column) {
    return TextField(r.value(QLatin1String(column))).trimmed().toUpper();
}
double rateOf(const QSqlRecord& r, const char* column) {
    return r.value(QLatin1String(column)).toDouble();
}
Money moneyOf(const QSqlRecord& r, const char* column) {
    return MoneyField(r.value(QLatin1String(column)));
}

// A rate product in money: RoundTo at two places, then the one conversion.
Money rounded(double value) {
    return Money::fromRounded(RoundTo(value, 2));
}

std::array<Money, 3> tripleOf(Money face, double discountPct, double penaltyPct) {
    const AmountTriple t = TripleFromFace(face, discountPct, penaltyPct);
    return {t.discount, t.face, t.penalty};
}

// A flat amount of Millfile (a per capita tax, an occupation tax in dollars) with its discount
// and penalty; zero when the rate is zero.
std::array<Money, 3> flatTriple(double amount, double discountPct, double penaltyPct) {
    if (amount == 0)
        return {};
    return tripleOf(rounded(amount), discountPct, penaltyPct);
}

// The column names of a duplicate's late amounts, in the order of the computed arrays.
const char* const ReTwpColumns[4][3] = {{"DTwp", "Twp", "PTwp"},
                                        {"DS1Face", "S1Face", "PS1Face"},
                                        {"DS2Face", "S2Face", "PS2Face"},
                                        {"DS3Face", "S3Face", "PS3Face"}};
const char* const ReSchoolColumns[2][3] = {{"DSchool", "School", "PSchool"},
                                           {"DSch1Face", "Sch1Face", "PSch1Face"}};
const char* const PcTwpColumns[2][3] = {{"DTPerCapita", "TPerCapita", "PTPerCapita"},
                                        {"DTOccupation", "TOccupation", "PTOccupation"}};
const char* const PcSchoolColumns[2][3] = {{"DSPerCapita", "SPerCapita", "PSPerCapita"},
                                           {"DSOccupation", "SOccupation", "PSOccupation"}};

// The columns of the late bodies and their new amounts.
using Assignments = std::vector<std::pair<QString, Money>>;

Assignments lateAssignments(Duplicate duplicate, const LateBillingOffice& office,
                            const QSqlRecord& master) {
    Assignments out;
    auto add = [&](const char* const columns[3], const std::array<Money, 3>& amounts) {
        for (int i = 0; i < 3; ++i)
            out.push_back({QLatin1String(columns[i]), amounts[std::size_t(i)]});
    };
    if (duplicate == Duplicate::RealEstate) {
        const LateRealEstateAmounts a = ComputeLateRealEstate(office, master);
        if (office.twpLate())
            for (int i = 0; i < 4; ++i)
                add(ReTwpColumns[i], a.twp[std::size_t(i)]);
        if (office.schoolLate())
            for (int i = 0; i < 2; ++i)
                add(ReSchoolColumns[i], a.school[std::size_t(i)]);
    } else {
        const LatePerCapitaAmounts a = ComputeLatePerCapita(office, master);
        if (office.twpLate()) {
            add(PcTwpColumns[0], a.twpPerCapita);
            add(PcTwpColumns[1], a.twpOccupation);
        }
        if (office.schoolLate()) {
            add(PcSchoolColumns[0], a.schoolPerCapita);
            add(PcSchoolColumns[1], a.schoolOccupation);
        }
    }
    return out;
}

bool failed(const QSqlQuery& q, LateBillingResult* result) {
    result->error = q.lastError().text();
    return false;
}

} // namespace

bool LateBillingOffice::twpLate() const {
    return flagOf(rates, "BillTwp") == QLatin1String("L");
}

bool LateBillingOffice::schoolLate() const {
    return flagOf(rates, "BillSchool") == QLatin1String("L");
}

bool LateBillingOffice::read(QSqlDatabase db, LateBillingOffice* office, QString* error) {
    LateBillingOffice o;
    QSqlQuery q(db);
    auto fail = [&] {
        if (error)
            *error = q.lastError().text();
        return false;
    };
    if (!q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")))
        return fail();
    if (q.next()) {
        o.district = TextField(q.value(0));
        o.ward = TextField(q.value(1));
    }
    q.prepare(QStringLiteral("SELECT TwpBoro FROM tbl_Twpboro WHERE District = ? AND Ward = ?"));
    q.addBindValue(o.district);
    q.addBindValue(o.ward);
    if (!q.exec())
        return fail();
    if (q.next())
        o.twpBoro = TextField(q.value(0));
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District || Ward = ?"));
    q.addBindValue(o.district + o.ward);
    if (!q.exec())
        return fail();
    if (q.next())
        o.rates = q.record();
    q.prepare(QStringLiteral("SELECT TaxKey, Mill, SpecFlag FROM Spectax WHERE District = ? AND "
                             "Ward = ? ORDER BY TaxKey"));
    q.addBindValue(o.district);
    q.addBindValue(o.ward);
    if (!q.exec())
        return fail();
    for (Slot& slot : o.slots) {
        if (!q.next())
            break;
        slot.taxKey = TextField(q.value(0)).left(6).trimmed();
        slot.mill = q.value(1).toDouble();
        slot.specFlag = TextField(q.value(2)).trimmed().toUpper();
    }
    *office = std::move(o);
    return true;
}

qint64 TwoRateValue(qint64 marketValue) {
    // 95%, as the money text of two places, then a whole number with halves to the even one.
    const double share =
        FormatNumber(double(marketValue) * 0.95, u"########0.00").trimmed().toDouble();
    const qint64 whole = qint64(std::nearbyint(share));
    const qint64 lastTwo = whole % 100;
    const qint64 hundred = whole - lastTwo;
    if (lastTwo <= 25)
        return hundred;
    if (lastTwo <= 75)
        return hundred + 50;
    return hundred + 100;
}

LateRealEstateAmounts ComputeLateRealEstate(const LateBillingOffice& office,
                                            const QSqlRecord& master) {
    LateRealEstateAmounts out;
    if (flagOf(master, "Exempt") == QLatin1String("E"))
        return out;
    const QSqlRecord& r = office.rates;
    const qint64 land = master.value(QStringLiteral("AssLand")).toLongLong();
    const qint64 impr = master.value(QStringLiteral("AssImpr")).toLongLong();
    const double assessed = double(land + impr);
    if (office.twpLate()) {
        const double td = rateOf(r, "TD");
        const double tp = rateOf(r, "TP");
        const double tmr = rateOf(r, "TMR");
        // One municipality levies a two-rate tax on market values, at its own fixed rates.
        const bool twoRate =
            office.twpBoro.left(10).compare(QLatin1String("Harrowdale"), Qt::CaseInsensitive) == 0;
        if (tmr != 0 || twoRate) {
            Money face;
            if (twoRate) {
                const qint64 w = TwoRateValue(master.value(QStringLiteral("MVLand")).toLongLong());
                const qint64 v = TwoRateValue(master.value(QStringLiteral("MVImpr")).toLongLong());
                face = rounded(double(w) * 0.05916 + double(v) * 0.019);
            } else {
                face = rounded(tmr / 1000 * assessed);
            }
            out.twp[0] = tripleOf(face, td, tp);
        }
        for (std::size_t i = 0; i < 3; ++i) {
            const LateBillingOffice::Slot& slot = office.slots[i];
            // A flat special (paid by certain taxpayers only) is not levied on the assessment.
            if (slot.taxKey.isEmpty() || slot.specFlag == QLatin1String("Y"))
                continue;
            out.twp[i + 1] = tripleOf(rounded(slot.mill / 1000 * assessed), td, tp);
        }
    }
    if (office.schoolLate()) {
        const double sd = rateOf(r, "SD");
        const double sp = rateOf(r, "SP");
        const SchoolRate school{
            rateOf(r, "SMR"),
            UsesSchoolFormula(TextField(r.value(QStringLiteral("SchoolFormula")))),
            rateOf(r, "SchoolMarketRatio"), rateOf(r, "SchoolStebRatio")};
        const SchoolRate special{
            rateOf(r, "S1MR"),
            UsesSchoolFormula(TextField(r.value(QStringLiteral("School1Formula")))),
            rateOf(r, "School1MarketRatio"), rateOf(r, "School1StebRatio")};
        out.school[0] = tripleOf(SchoolFace(land + impr, school), sd, sp);
        out.school[1] = tripleOf(SchoolFace(land + impr, special), sd, sp);
    }
    return out;
}

LatePerCapitaAmounts ComputeLatePerCapita(const LateBillingOffice& office,
                                          const QSqlRecord& master) {
    LatePerCapitaAmounts out;
    const QString occupation = flagOf(master, "OccuCode");
    if (!occupation.isEmpty() && occupation != QLatin1String("TAX"))
        return out;
    const QSqlRecord& r = office.rates;
    if (office.twpLate()) {
        out.twpOccupation = flatTriple(rateOf(r, "TMO"), rateOf(r, "PCTD"), rateOf(r, "PCTP"));
        out.twpPerCapita = flatTriple(rateOf(r, "TPC"), rateOf(r, "PCTD"), rateOf(r, "PCTP"));
    }
    if (office.schoolLate()) {
        out.schoolOccupation = flatTriple(rateOf(r, "SMO"), rateOf(r, "PCSD"), rateOf(r, "PCSP"));
        out.schoolPerCapita = flatTriple(rateOf(r, "SPC"), rateOf(r, "PCSD"), rateOf(r, "PCSP"));
    }
    return out;
}

QString LateBillingReason() {
    return QString::fromLatin1(Reason).left(30);
}

LateBillingResult UpdateLateBillingAdds(QSqlDatabase db, Duplicate duplicate,
                                        const LateBillingOffice& office,
                                        const LateBillingProgress& progress) {
    const bool re = duplicate == Duplicate::RealEstate;
    const QString master = re ? QStringLiteral("TCMaster") : QStringLiteral("PCMaster");
    const QString adjust = re ? QStringLiteral("TCAdjust") : QStringLiteral("PCAdjust");
    LateBillingResult result;
    result.ok = InOneTransaction(db, &result.error, [&] {
        QSqlQuery bills(db);
        bills.setForwardOnly(true);
        if (!bills.exec(QStringLiteral("SELECT * FROM %1 WHERE substr(BillNo, 1, 1) = 'A' ORDER "
                                       "BY BillNo")
                            .arg(master)))
            return failed(bills, &result);
        while (bills.next()) {
            const QSqlRecord bill = bills.record();
            ++result.count;
            if (progress)
                progress(result.count);
            const Assignments set = lateAssignments(duplicate, office, bill);
            if (set.empty())
                continue;
            QStringList parts;
            for (const auto& [column, amount] : set)
                parts << column + QStringLiteral(" = ?");
            for (const QString& table : {master, adjust}) {
                QSqlQuery update(db);
                update.prepare(QStringLiteral("UPDATE %1 SET %2 WHERE BillNo = ?")
                                   .arg(table, parts.join(QStringLiteral(", "))));
                for (const auto& [column, amount] : set)
                    update.addBindValue(MoneyValue(amount));
                update.addBindValue(bill.value(QStringLiteral("BillNo")));
                if (!update.exec())
                    return failed(update, &result);
            }
        }
        return true;
    });
    return result;
}

LateBillingResult ExonerateLateBodies(QSqlDatabase db, Duplicate duplicate,
                                      const LateBillingOffice& office, const QDate& today,
                                      const LateBillingProgress& progress) {
    const bool re = duplicate == Duplicate::RealEstate;
    const QString master = re ? QStringLiteral("TCMaster") : QStringLiteral("PCMaster");
    const QString adjust = re ? QStringLiteral("TCAdjust") : QStringLiteral("PCAdjust");
    // The late bodies' columns that the new row zeroes, and the county's that must be zero.
    QStringList late;
    auto lateColumns = [&](const char* const(*columns)[3], int rows) {
        for (int i = 0; i < rows; ++i)
            for (int j = 0; j < 3; ++j)
                late << QLatin1String(columns[i][j]);
    };
    QStringList lateFaces;
    QStringList countyFaces;
    if (re) {
        countyFaces = {QStringLiteral("County"), QStringLiteral("Library"),
                       QStringLiteral("C1Face")};
        if (office.twpLate()) {
            lateColumns(ReTwpColumns, 4);
            lateFaces << QStringLiteral("Twp") << QStringLiteral("S1Face")
                      << QStringLiteral("S2Face") << QStringLiteral("S3Face");
        }
        if (office.schoolLate()) {
            lateColumns(ReSchoolColumns, 2);
            lateFaces << QStringLiteral("School") << QStringLiteral("Sch1Face");
        }
    } else {
        countyFaces = {QStringLiteral("CPerCapita"), QStringLiteral("COccupation")};
        if (office.twpLate()) {
            lateColumns(PcTwpColumns, 2);
            lateFaces << QStringLiteral("TPerCapita") << QStringLiteral("TOccupation");
        }
        if (office.schoolLate()) {
            lateColumns(PcSchoolColumns, 2);
            lateFaces << QStringLiteral("SPerCapita") << QStringLiteral("SOccupation");
        }
    }
    const TaxDatabase::TableDef* table = TaxDatabase::table(adjust);
    LateBillingResult result;
    if (!table) {
        result.error = QStringLiteral("no table ") + adjust;
        return result;
    }
    result.ok = InOneTransaction(db, &result.error, [&] {
        QSqlQuery bills(db);
        bills.setForwardOnly(true);
        if (!bills.exec(QStringLiteral("SELECT BillNo FROM %1 WHERE AdjFlag = 'A' ORDER BY BillNo")
                            .arg(master)))
            return failed(bills, &result);
        QStringList columns;
        QStringList marks;
        for (const TaxDatabase::ColumnDef& c : table->columns) {
            columns << c.name;
            marks << QStringLiteral("?");
        }
        QSqlQuery insert(db);
        if (!insert.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                                .arg(adjust, columns.join(QStringLiteral(", ")),
                                     marks.join(QStringLiteral(", ")))))
            return failed(insert, &result);
        while (bills.next()) {
            const QString billNo = TextField(bills.value(0));
            QSqlQuery chain(db);
            chain.setForwardOnly(true);
            chain.prepare(
                QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? ORDER BY AdjNo").arg(adjust));
            chain.addBindValue(billNo);
            if (!chain.exec())
                return failed(chain, &result);
            QSqlRecord last;
            while (chain.next())
                last = chain.record();
            if (last.isEmpty())
                continue; // a broken chain: the integrity utility's business
            Money county;
            for (const QString& c : countyFaces)
                county += MoneyField(last.value(c));
            Money lateSum;
            for (const QString& c : lateFaces)
                lateSum += MoneyField(last.value(c));
            if (!county.isZero() || !(lateSum > Money()))
                continue;
            ++result.count;
            if (progress)
                progress(result.count);
            for (const TaxDatabase::ColumnDef& c : table->columns) {
                const QString& name = c.name;
                QVariant value = last.value(name);
                if (late.contains(name, Qt::CaseInsensitive))
                    value = MoneyValue(Money());
                else if (name.compare(QLatin1String("AdjNo"), Qt::CaseInsensitive) == 0)
                    value = last.value(name).toInt() + 1;
                else if (name.compare(QLatin1String("AdjDate"), Qt::CaseInsensitive) == 0)
                    value = DateValue(today);
                else if (name.compare(QLatin1String("Reason"), Qt::CaseInsensitive) == 0)
                    value = LateBillingReason();
                else if (name.compare(QLatin1String("AdjFlag"), Qt::CaseInsensitive) == 0)
                    value = QStringLiteral("A");
                else if (name.compare(QLatin1String("MapRef"), Qt::CaseInsensitive) == 0 ||
                         name.compare(QLatin1String("Lot1"), Qt::CaseInsensitive) == 0)
                    value = QStringLiteral("");
                else if (value.isNull()) {
                    // The copy holds no Nulls: empty text, zero numbers.
                    switch (c.type) {
                    case TaxDatabase::ColumnType::Text:
                        value = QStringLiteral("");
                        break;
                    case TaxDatabase::ColumnType::Date:
                        break;
                    default:
                        value = 0;
                        break;
                    }
                }
                insert.addBindValue(value);
            }
            if (!insert.exec())
                return failed(insert, &result);
        }
        return true;
    });
    return result;
}
