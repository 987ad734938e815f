#include "desk/realestate/adjust_writes.h"

#include "core/tax_database.h"

#include <QVariant>

namespace {

const QString Blank = QStringLiteral(" ");

// The columns that TCMaster and TCAdjust share: the descriptive fields, the assessment, every
// amount, the installments and the Act 1 columns. MapRef and Lot1 are written empty.
void addImage(RowValues& row, const RealEstateBillImage& b) {
    row.add("Control", b.control);
    row.add("BillNo", b.billNo);
    row.add("Name", b.name);
    row.add("Map3", b.map3);
    row.add("Map4", b.map4);
    row.add("Map5", b.map5);
    row.add("CoOwner", b.coOwner);
    row.add("Addr1", b.addr1);
    row.add("Addr2", b.addr2);
    row.add("City", b.city);
    row.add("State", b.state);
    row.add("ZipCode", b.zipCode);
    row.add("ZipCode2", b.zipCode2);
    row.add("Desc1", b.desc1);
    row.add("Desc2", b.desc2);
    row.add("Desc3", b.desc3);
    row.add("Acreage", b.acreage);
    row.add("LandUse", b.landUse);
    row.add("LDesc", b.lDesc);
    row.add("AssLand", b.land);
    row.add("AssImpr", b.impr);
    row.add("DeedBook", b.deedBook);
    row.add("DeedPage", b.deedPage);
    for (int line = 0; line < TaxLineCount; ++line) {
        const AmountTriple& t = LineOf(b.amounts, line);
        row.add(DiscountColumn(line), MoneyValue(t.discount));
        row.add(FaceColumn(line), MoneyValue(t.face));
        row.add(PenaltyColumn(line), MoneyValue(t.penalty));
    }
    const Installments& inst = b.amounts.installments;
    for (int n = 0; n < 3; ++n) {
        row.add(QStringLiteral("Payment%1").arg(n + 1), MoneyValue(inst.payment[n]));
        row.add(QStringLiteral("PenPayment%1").arg(n + 1), MoneyValue(inst.penPayment[n]));
    }
    row.add("MapRef", QString(""));
    row.add("Lot1", QString(""));
    row.add("HFFlag", b.hfFlag);
    row.add("HomesteadFlag", b.homesteadFlag);
    row.add("FarmsteadFlag", b.farmsteadFlag);
    const Act1Exclusion& e = b.amounts.exclusion;
    row.add("HSExclusion", MoneyValue(e.homestead));
    row.add("FSExclusion", MoneyValue(e.farmstead));
    row.add("DExcFace", MoneyValue(e.excFace.discount));
    row.add("ExcFace", MoneyValue(e.excFace.face));
    row.add("PExcFace", MoneyValue(e.excFace.penalty));
}

} // namespace

bool AddRealEstateBill(QSqlDatabase db, const BillAddition& a, QString* error) {
    ChainAddition add;
    add.tables = RealEstateChain;
    add.billNo = a.image.billNo;
    add.control = a.image.control;
    add.addDate = a.addDate;
    add.reason = a.reason;
    RowValues& row = add.masterRow;
    row.add("District", a.district);
    row.add("Ward", a.ward);
    addImage(row, a.image);
    row.add("MVLand", 0);
    row.add("MVImpr", 0);
    for (const char* flag :
         {"AdjFlag", "CPayFlag", "TPayFlag", "SPayFlag", "Pay1Flag", "Pay2Flag", "Pay3Flag",
          "StLtFlag", "TwpPaidFlag", "StLtPaidFlag", "CAddrFlag", "BankFlag", "SecondNotice",
          "Exempt", "Defaulted", "TaxClaimFlag", "CleanAndGreen"})
        row.add(flag, Blank);
    row.add("TaxYear", a.taxYear);
    row.add("AAFlag", a.image.aaFlag);
    for (const char* empty : {"WebSite", "WebControl", "WebPassword", "Zip"})
        row.add(empty, QString(""));
    return AddBillToChain(db, add, error);
}

bool RecordBillAdjustment(QSqlDatabase db, const BillAdjustment& a, QString* error) {
    ChainAdjustment adj;
    adj.tables = RealEstateChain;
    adj.billNo = a.image.billNo;
    addImage(adj.image, a.image);
    adj.image.add("AAFlag", Blank);
    adj.adjNo = a.adjNo;
    adj.adjDate = a.adjDate;
    adj.reason = a.reason;
    adj.exonerate = a.kind == BillAdjustment::Kind::Exonerate;
    adj.bodies = a.bodies;
    return AppendAdjustment(db, adj, error);
}

bool RecordBillUnexoneration(QSqlDatabase db, const BillUnexoneration& u, QString* error) {
    return RemoveExoneration(db, {RealEstateChain, u.billNo, u.lastAdjNo, u.bodies}, error);
}

RealEstateAmounts ExoneratedAmounts(const RealEstateAmounts& amounts, const BodyTicks& bodies) {
    RealEstateAmounts out = amounts;
    const TaxBody order[3] = {TaxBody::County, TaxBody::Twp, TaxBody::School};
    for (int line = 0; line < TaxLineCount; ++line)
        for (int b = 0; b < 3; ++b)
            if (bodies[b] && BodyOfLine(line) == order[b])
                LineOf(out, line) = AmountTriple{};
    if (bodies[2]) {
        out.installments = Installments{};
        out.exclusion.excFace = AmountTriple{};
    }
    return out;
}
