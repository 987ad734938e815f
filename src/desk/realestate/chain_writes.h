#pragma once
// The writes of a duplicate's correction chains, shared by the real-estate and the per capita
// desk: adding a bill (the counter, the master row, the TCAdds/PCAdds row), appending an
// adjustment or an exoneration to TCAdjust/PCAdjust, taking an exoneration back, and appending an
// address change to TCAddress/PCAddress. What differs between the duplicates is data: the tables
// and the columns of the rows, which the callers fill. Each write runs in one transaction, with
// the master's marker written before the detail row, and asks nothing.

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <array>
#include <vector>

// The tables of one duplicate's chains.
struct ChainTables {
    const char* master;  // TCMaster, PCMaster
    const char* adjust;  // TCAdjust, PCAdjust
    const char* address; // TCAddress, PCAddress
    const char* adds;    // TCAdds, PCAdds
    const char* billNum; // TCBillNum, PCBillNum
};
inline constexpr ChainTables RealEstateChain{"TCMaster", "TCAdjust", "TCAddress", "TCAdds",
                                             "TCBillNum"};
inline constexpr ChainTables PerCapitaChain{"PCMaster", "PCAdjust", "PCAddress", "PCAdds",
                                            "PCBillNum"};

// The columns of a row to insert with their values, in the order they are added.
class RowValues {
public:
    void add(const char* column, const QVariant& value) { add(QString::fromLatin1(column), value); }
    void add(const QString& column, const QVariant& value) {
        m_columns << column;
        m_values.push_back(value);
    }
    // The value of a column added, or an invalid value.
    QVariant value(const QString& column) const;
    const QStringList& columns() const { return m_columns; }
    // INSERT INTO table (columns) VALUES (bound values).
    bool insert(QSqlDatabase db, const QString& table, QString* error) const;

private:
    QStringList m_columns;
    std::vector<QVariant> m_values;
};

// The three taxing bodies, County, Twp/Boro/City, School.
using BodyTicks = std::array<bool, 3>;

// Adding a bill: the number table moves past the number taken, then the master row, then the
// adds row (Control, BillNo, AdjDate, Reason). billNo is "A" and the four digits read from the
// number table; masterRow holds every column of the new master row, BillNo and Control among
// them.
struct ChainAddition {
    ChainTables tables = RealEstateChain;
    QString billNo;
    QString control;
    RowValues masterRow;
    QDate addDate;
    QString reason;
};
bool AddBillToChain(QSqlDatabase db, const ChainAddition& addition, QString* error = nullptr);

// An adjustment: AdjFlag "A" on the master, then the image as the adjustment row with AdjNo,
// AdjDate, Reason and AdjFlag "A". An exoneration also sets the pay flag of each ticked body to
// "X" on the master, and its row's AdjFlag is "X". Pay flags are otherwise not touched.
struct ChainAdjustment {
    ChainTables tables = RealEstateChain;
    QString billNo;
    RowValues image; // the bill's columns, without AdjNo, AdjDate, Reason, AdjFlag
    int adjNo = 1;
    QDate adjDate;
    QString reason;
    bool exonerate = false;
    BodyTicks bodies{}; // exoneration: the bodies set to "X"
};
bool AppendAdjustment(QSqlDatabase db, const ChainAdjustment& adjustment, QString* error = nullptr);

// Taking an exoneration back: AdjFlag stays "A" while an earlier adjustment remains (lastAdjNo
// above 1), else blank; each ticked body's pay flag is cleared; the last adjustment row goes.
struct ChainUnexoneration {
    ChainTables tables = RealEstateChain;
    QString billNo;
    int lastAdjNo = 0;
    BodyTicks bodies{};
};
bool RemoveExoneration(QSqlDatabase db, const ChainUnexoneration& unexoneration,
                       QString* error = nullptr);

// An address change: CAddrFlag "A" on the master, then the row (its columns as the caller
// lists them: Control, BillNo, AddrID, the name and address, ADate, Reason, Reportable, USPS).
bool AppendAddressChange(QSqlDatabase db, const ChainTables& tables, const QString& billNo,
                         const RowValues& row, QString* error = nullptr);

// Reportable and USPS as stored: "1" ticked, "0" not.
QString BoxValue(bool ticked);
