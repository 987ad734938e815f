#include "desk/yearend/open_bills.h"

#include "core/common_values.h"
#include "core/tax_database.h"
#include "rates/millage_common.h"

#include <QHash>
#include <QSqlError>
#include <QSqlQuery>

const std::array<const char*, ReLineCount> ReFaceColumns{
    "County", "Library", "C1Face", "Twp", "S1Face", "S2Face", "S3Face", "School", "Sch1Face"};
const std::array<const char*, ReLineCount> RePenaltyColumns{"PCounty", "PLibrary", "PC1Face",
                                                            "PTwp",    "PS1Face",  "PS2Face",
                                                            "PS3Face", "PSchool",  "PSch1Face"};
const std::array<int, ReLineCount> ReLineBody{0, 0, 0, 1, 1, 1, 1, 2, 2};
const std::array<const char*, PcLineCount> PcFaceColumns{
    "CPerCapita", "COccupation", "TPerCapita", "TOccupation", "SPerCapita", "SOccupation"};
const std::array<const char*, PcLineCount> PcPenaltyColumns{
    "PCPerCapita", "PCOccupation", "PTPerCapita", "PTOccupation", "PSPerCapita", "PSOccupation"};

namespace {

double rate(const QSqlRecord& row, const char* column) {
    const QVariant v = row.value(QLatin1String(column));
    return v.isNull() ? 0.0 : v.toDouble();
}

// The field's index in the record: every bill of a walk has the master's layout, so the index
// found for a column name is tried first.
int fieldIndex(const QSqlRecord& bill, const char* column) {
    static QHash<const char*, int> known;
    const QLatin1String name(column);
    const auto found = known.constFind(column);
    if (found != known.cend() && *found >= 0 && *found < bill.count() &&
        bill.fieldName(*found).compare(name, Qt::CaseInsensitive) == 0)
        return *found;
    const int index = bill.indexOf(name);
    known.insert(column, index);
    return index;
}

QString flagOf(const QSqlRecord& bill, const char* column) {
    return TextField(BillField(bill, column)).trimmed();
}

Money moneyOf(const QSqlRecord& bill, const char* column) {
    return MoneyField(BillField(bill, column));
}

template <std::size_t N> Money sum(const std::array<Money, N>& amounts) {
    Money total;
    for (const Money& m : amounts)
        total += m;
    return total;
}

} // namespace

QVariant BillField(const QSqlRecord& bill, const char* column) {
    return bill.value(fieldIndex(bill, column));
}

YearEndOffice YearEndOffice::read(QSqlDatabase db) {
    YearEndOffice o;
    o.lookups = ReportLookups::read(db);
    const QSqlRecord county = ReadCountyMillfileRow(db);
    const QSqlRecord own = ReadMillfileRow(db, OfficeDistrict{o.lookups.district, o.lookups.ward});
    o.taxYear = TextField(county.value(QStringLiteral("TaxYear"))).left(4);
    if (o.taxYear.trimmed().isEmpty())
        o.taxYear = TextField(own.value(QStringLiteral("TaxYear"))).left(4);
    o.collector = TextField(own.value(QStringLiteral("Line1")));
    const QString word = o.lookups.bodyWord;
    o.shortWord = word == u"Township"  ? QStringLiteral("Twp")
                  : word == u"Borough" ? QStringLiteral("Boro")
                                       : word;
    o.streetLights = o.lookups.district == u"39";

    o.names[0] = QStringLiteral("County R/E");
    o.rates[0] = rate(county, "SMR");
    o.rates[1] = rate(own, "LMR");
    if (o.rates[1] != 0)
        o.names[1] = QStringLiteral("Library");
    o.names[2] = TextField(county.value(QStringLiteral("S1TaxName"))).trimmed();
    o.rates[2] = rate(county, "S1MR");
    o.names[3] = o.shortWord + QStringLiteral(" R/E");
    o.rates[3] = rate(own, "TMR");
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT Desc1, Mill FROM Spectax WHERE District = ? AND Ward = ? "
                             "ORDER BY TaxKey"));
    q.addBindValue(o.lookups.district);
    q.addBindValue(o.lookups.ward);
    if (q.exec())
        for (std::size_t i = 4; i < 7 && q.next(); ++i) {
            o.names[i] = TextField(q.value(0)).trimmed();
            o.rates[i] = q.value(1).isNull() ? 0.0 : q.value(1).toDouble();
        }
    o.names[7] = QStringLiteral("School R/E");
    o.rates[7] = rate(own, "SMR");
    o.names[8] = TextField(own.value(QStringLiteral("S1TaxName"))).trimmed();
    o.rates[8] = rate(own, "S1MR");
    return o;
}

Money ReOpenBill::faceTotal() const {
    return sum(face);
}

Money ReOpenBill::penaltyTotal() const {
    return sum(penalty);
}

Money PcOpenBill::faceTotal() const {
    return sum(face);
}

Money PcOpenBill::penaltyTotal() const {
    return sum(penalty);
}

ReOpenBill ReOpenAmounts(const QSqlRecord& bill, bool streetLights, bool municipalOnly) {
    ReOpenBill out;
    out.bill = bill;
    const QString c = flagOf(bill, "CPayFlag");
    const QString t = flagOf(bill, "TPayFlag");
    const QString s = flagOf(bill, "SPayFlag");
    std::array<bool, 3> open{c.isEmpty() && !municipalOnly, t.isEmpty(),
                             s.isEmpty() && !municipalOnly};
    for (std::size_t i = 0; i < ReLineCount; ++i) {
        if (!open[std::size_t(ReLineBody[i])])
            continue;
        out.face[i] = moneyOf(bill, ReFaceColumns[i]);
        out.penalty[i] = moneyOf(bill, RePenaltyColumns[i]);
    }
    if (open[1] && streetLights) {
        const QString split = flagOf(bill, "StLtFlag");
        for (std::size_t i = 3; i < 7; ++i) {
            const bool streetLight = i == 6;
            // "S": the street light part is paid; "T": the township part is.
            if ((split == u"S" && streetLight) || (split == u"T" && !streetLight))
                out.face[i] = out.penalty[i] = Money();
        }
    }
    Money installments;
    if (s == u"I" && !municipalOnly) {
        for (int n = 1; n <= 3; ++n) {
            const QByteArray flag = "Pay" + QByteArray::number(n) + "Flag";
            if (!flagOf(bill, flag.constData()).isEmpty())
                continue;
            out.installmentsOpen = true;
            const QByteArray face = "Payment" + QByteArray::number(n);
            const QByteArray pen = "PenPayment" + QByteArray::number(n);
            out.face[7] += moneyOf(bill, face.constData());
            out.penalty[7] += moneyOf(bill, pen.constData());
        }
        for (int n = 1; n <= 3; ++n)
            installments += moneyOf(bill, ("Payment" + QByteArray::number(n)).constData());
    }

    // The test of what prints looks at the bill's whole amounts of each open body.
    auto whole = [&bill](std::initializer_list<const char*> columns) {
        Money total;
        for (const char* column : columns)
            total += moneyOf(bill, column);
        return total;
    };
    const Money zero;
    out.prints = (open[0] && whole({"County", "Library", "C1Face"}) > zero) ||
                 (open[1] && whole({"Twp", "S1Face", "S2Face", "S3Face"}) > zero) ||
                 (open[2] && whole({"School", "Sch1Face"}) > zero) ||
                 (out.installmentsOpen && installments > zero);
    return out;
}

PcOpenBill PcOpenAmounts(const QSqlRecord& bill, const std::array<bool, 3>& bodies) {
    PcOpenBill out;
    out.bill = bill;
    const std::array<QString, 3> flags{flagOf(bill, "CPayFlag"), flagOf(bill, "TPayFlag"),
                                       flagOf(bill, "SPayFlag")};
    for (std::size_t i = 0; i < PcLineCount; ++i) {
        const std::size_t body = i / 2;
        if (!bodies[body] || !flags[body].isEmpty())
            continue;
        out.face[i] = moneyOf(bill, PcFaceColumns[i]);
        out.penalty[i] = moneyOf(bill, PcPenaltyColumns[i]);
    }
    out.prints = out.faceTotal() > Money() || out.penaltyTotal() > Money();
    return out;
}

OpenBillWalk WalkBills(QSqlDatabase db, bool perCapita, const QString& sql,
                       const QString& adjustmentText,
                       const std::function<void(const QSqlRecord& bill, int adjNo)>& visit) {
    OpenBillWalk out;
    const Duplicate duplicate = perCapita ? Duplicate::PerCapita : Duplicate::RealEstate;
    const QString address = perCapita ? QStringLiteral("PCAddress") : QStringLiteral("TCAddress");
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        out.ok = false;
        out.error = q.lastError().text();
        return out;
    }
    auto fault = [&out](const QString& text) {
        out.ok = false;
        out.faultTitle = QString::fromLatin1(IntegrityErrorTitle);
        out.faultText = text;
        return out;
    };
    while (q.next()) {
        const QSqlRecord row = q.record();
        const bool adjusted = FlagField(row.value(QStringLiteral("AdjFlag"))) == u"A";
        const bool addressed = FlagField(row.value(QStringLiteral("CAddrFlag"))) == u"A";
        if (!adjusted && !addressed) {
            visit(row, 0);
            continue;
        }
        const QString billNo = TextField(row.value(QStringLiteral("BillNo")));
        // The address chain is looked at first.
        if (addressed) {
            QSqlQuery a(db);
            a.prepare(QStringLiteral("SELECT 1 FROM %1 WHERE BillNo = ? LIMIT 1").arg(address));
            a.addBindValue(billNo);
            if (!a.exec()) {
                out.ok = false;
                out.error = a.lastError().text();
                return out;
            }
            if (!a.next())
                return fault(QString::fromLatin1(IncompleteAddressText));
        }
        const BillNow now = ReadBillAsItStands(db, duplicate, billNo);
        switch (now.status) {
        case BillNow::Status::Found:
            visit(now.bill, now.adjNo);
            break;
        case BillNow::Status::IncompleteAdjustment:
            return fault(adjustmentText);
        case BillNow::Status::IncompleteAddress:
            return fault(QString::fromLatin1(IncompleteAddressText));
        default:
            out.ok = false;
            out.error = now.error;
            return out;
        }
    }
    return out;
}

QString ParcelNumber(const QString& district, const QString& billNo) {
    bool numeric = false;
    const int n = billNo.trimmed().toInt(&numeric);
    const QString districtText = PadFormat(double(district.trimmed().toInt()), "000");
    return districtText + u'-' + (numeric ? PadFormat(double(n), "000000") : billNo.trimmed());
}
