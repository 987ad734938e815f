#include "distribution/distribution_tables.h"

namespace {

DistributionBody county(QStringList lines) {
    return {TaxingBody::County,         QStringLiteral("C"),          QStringLiteral("CDisbNum"),
            QStringLiteral("CPayFlag"), QStringLiteral("County"),     QStringLiteral("COUNTY"),
            std::move(lines),           {QStringLiteral("CPayFlag")}, {}};
}

DistributionBody twp(QStringList lines) {
    return {TaxingBody::Twp,
            QStringLiteral("T"),
            QStringLiteral("TDisbNum"),
            QStringLiteral("TPayFlag"),
            QStringLiteral("TwpBoroCity"),
            QStringLiteral("TOWNSHIP/BOROUGH/CITY"),
            std::move(lines),
            {QStringLiteral("TPayFlag")},
            {}};
}

DistributionBody school(QStringList lines, QStringList flags, QStringList extra) {
    return {TaxingBody::School,         QStringLiteral("S"),      QStringLiteral("SDisbNum"),
            QStringLiteral("SPayFlag"), QStringLiteral("School"), QStringLiteral("SCHOOL"),
            std::move(lines),           std::move(flags),         std::move(extra)};
}

} // namespace

const DistributionTables& RealEstateTables() {
    static const DistributionTables tables{
        QStringLiteral("RE"),
        QStringLiteral("TCReceipt"),
        QStringLiteral("TCVoidReceipt"),
        QStringLiteral("TCDistribution"),
        QStringLiteral("TCVoidDistribution"),
        QStringLiteral("TCRefund"),
        true,
        {county({"County", "Library", "C1Face"}), twp({"Twp", "S1Face", "S2Face", "S3Face"}),
         school(
             {"School", "Sch1Face"}, {"SPayFlag", "Pay1Flag", "Pay2Flag", "Pay3Flag"},
             {"Payment1", "Payment2", "Payment3", "PenPayment1", "PenPayment2", "PenPayment3"})}};
    return tables;
}

const DistributionTables& PerCapitaTables() {
    static const DistributionTables tables{
        QStringLiteral("PC"),
        QStringLiteral("PCReceipt"),
        QStringLiteral("PCVoidReceipt"),
        QStringLiteral("PCDistribution"),
        QStringLiteral("PCVoidDistribution"),
        QStringLiteral("PCRefund"),
        false,
        {county({"CPerCapita", "COccupation"}), twp({"TPerCapita", "TOccupation"}),
         school({"SPerCapita", "SOccupation"}, {"SPayFlag"}, {})}};
    return tables;
}

QString TaxingBodyName(TaxingBody body) {
    switch (body) {
    case TaxingBody::County:
        return QStringLiteral("County");
    case TaxingBody::Twp:
        return QStringLiteral("Twp/Boro/City");
    case TaxingBody::School:
        break;
    }
    return QStringLiteral("School");
}
