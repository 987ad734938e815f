#pragma once
// What a distribution works on, told once per duplicate: the receipt and distribution tables,
// and per taxing body its key and flag columns, its tax lines and its words. The real estate
// and per capita distributions, their files and their reports all read these descriptions.

#include <QString>
#include <QStringList>
#include <vector>

enum class TaxingBody { County, Twp, School };

struct DistributionBody {
    TaxingBody body;
    QString cts;       // "C", "T", "S"
    QString keyColumn; // CDisbNum, TDisbNum, SDisbNum
    QString payFlag;   // CPayFlag, TPayFlag, SPayFlag
    QString fileWord;  // "County", "TwpBoroCity", "School"
    QString upperWord; // "COUNTY", "TOWNSHIP/BOROUGH/CITY", "SCHOOL"
    // The face column of each tax line of the body; its discount and penalty columns are the
    // same name with "D" and "P" in front.
    QStringList lines;
    // The flags a row of the body carries over from the receipt (the pay flag first).
    QStringList flags;
    // Further columns copied for the body (the school installments of real estate).
    QStringList extra;
};

struct DistributionTables {
    QString disbType; // "RE", "PC"
    QString receipts;
    QString voidReceipts;
    QString distribution;
    QString voidDistribution;
    QString refunds; // the refunds owed back, distributed in a sequence of their own
    bool hasMap = false;
    std::vector<DistributionBody> bodies; // County, Twp, School

    const DistributionBody& body(TaxingBody b) const { return bodies.at(std::size_t(b)); }
};

const DistributionTables& RealEstateTables();
const DistributionTables& PerCapitaTables();

// "County", "Twp/Boro/City", "School": the body as messages and captions name it.
QString TaxingBodyName(TaxingBody body);

// The discount and penalty columns of a tax line.
inline QString DiscountColumn(const QString& face) {
    return QLatin1Char('D') + face;
}
inline QString PenaltyColumn(const QString& face) {
    return QLatin1Char('P') + face;
}

// Six blanks: the key of a receipt not yet distributed to a body.
inline const QString BlankDisbKey = QStringLiteral("      ");
