#pragma once
// The write sequences of the adjustment screen: add a bill to the duplicate, record an
// adjustment or an exoneration, take an exoneration back. Each takes the database and a plain
// struct, runs in one transaction with the master's flag written before the detail row, and
// asks nothing; the screen validates and asks first.

#include "core/money.h"
#include "desk/realestate/chain_writes.h"
#include "desk/realestate/payment_rules.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <array>

// A whole real-estate bill image, as TCMaster and TCAdjust hold it.
struct RealEstateBillImage {
    QString control;
    QString billNo;
    QString name, coOwner, addr1, addr2, city, state, zipCode, zipCode2;
    QString map3, map4, map5;
    QString desc1, desc2, desc3;
    QString acreage, landUse, lDesc;
    QString deedBook, deedPage;
    qint64 land = 0;
    qint64 impr = 0;
    // The nine lines, the installments and the exclusion (homestead and farmstead as amounts of
    // whole dollars).
    RealEstateAmounts amounts;
    QString hfFlag = QStringLiteral(" ");
    QString aaFlag = QStringLiteral(" ");
    QString homesteadFlag = QStringLiteral(" ");
    QString farmsteadFlag = QStringLiteral(" ");
};

// Adding a bill: TCBillNum moves past the number taken, the TCMaster row with every flag blank,
// then the TCAdds row. image.billNo is "A" and the number read from TCBillNum in four digits.
struct BillAddition {
    RealEstateBillImage image;
    QString district;
    QString ward;
    QString taxYear;
    QDate addDate;
    QString reason;
};
bool AddRealEstateBill(QSqlDatabase db, const BillAddition& addition, QString* error = nullptr);

// An adjustment (AdjFlag "A" on the master, then the image as TCAdjust row adjNo with AdjFlag
// "A") or an exoneration (AdjFlag "A" and pay flag "X" of each ticked body on the master, then
// the image with AdjFlag "X"). Pay flags and receipts are not touched by an adjustment. The
// image's AAFlag is written blank: the box reaches an added bill only.
struct BillAdjustment {
    enum class Kind { Adjust, Exonerate };
    Kind kind = Kind::Adjust;
    RealEstateBillImage image;
    int adjNo = 1;
    QDate adjDate;
    QString reason;
    BodyTicks bodies{}; // exoneration: the ticked bodies
};
bool RecordBillAdjustment(QSqlDatabase db, const BillAdjustment& adjustment,
                          QString* error = nullptr);

// Taking an exoneration back: AdjFlag stays "A" while an earlier adjustment remains (lastAdjNo
// above 1), else blank; each ticked body's pay flag is cleared; the last TCAdjust row goes.
struct BillUnexoneration {
    QString billNo;
    int lastAdjNo = 0;
    BodyTicks bodies{};
};
bool RecordBillUnexoneration(QSqlDatabase db, const BillUnexoneration& unexoneration,
                             QString* error = nullptr);

// The image of an exoneration: every line of each ticked body at zero, for the school also the
// installments and the exclusion's tax.
RealEstateAmounts ExoneratedAmounts(const RealEstateAmounts& amounts, const BodyTicks& bodies);
