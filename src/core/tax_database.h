#pragma once
// The tax database: one SQLite file holding one collector's year. The schema, opening and
// creating the file, the typed reading of fields, and reading a bill as it now stands
// through its adjustment and address chains.

#include "core/money.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <vector>

class QSqlQuery;

namespace TaxDatabase {

inline constexpr int SchemaVersion = 1;
// The name of the session's one connection.
inline constexpr const char* SessionConnection = "levydesk";

enum class ColumnType { Text, Money, Integer, Real, Date, Boolean };

struct ColumnDef {
    QString name;
    ColumnType type;
};

struct TableDef {
    QString name;
    std::vector<ColumnDef> columns;
    // Columns searched by the screens; each gets an index.
    std::vector<QStringList> indexes;
};

// Every table of the schema, in creation order.
const std::vector<TableDef>& schema();
const TableDef* table(const QString& name);
// The declared type of a column (names compare case-insensitively); Text when unknown.
ColumnType columnType(const QString& tableName, const QString& column);

// Opens an existing tax database file on a connection of that name. A missing file is not
// created: that is an error, with the reason in *error.
QSqlDatabase open(const QString& path, const QString& connectionName, QString* error = nullptr);
// Creates a new file with the whole schema (number tables holding 1) and opens it. An
// existing file is replaced.
QSqlDatabase create(const QString& path, const QString& connectionName, QString* error = nullptr);
// Closes and removes the connection of that name.
void close(const QString& connectionName);
// Creates every table and index on an open, empty database, and sets user_version.
bool createSchema(QSqlDatabase& db, QString* error = nullptr);
// True when the file is a sound SQLite database (integrity check) holding every table of
// the schema. Used before a restore replaces anything.
bool isValidTaxDatabase(const QString& path, QString* why = nullptr);

} // namespace TaxDatabase

// Typed reading and writing of field values. Null reads as zero, an empty text or an invalid
// date as appropriate.
Money MoneyField(const QVariant& value);
QVariant MoneyValue(Money amount);
QDate DateField(const QVariant& value);
// A value to bind: a text left unset (a null QString) becomes an empty text, since the tables
// hold no Null texts; anything else as it is.
QVariant BoundText(const QVariant& value);
QVariant DateValue(const QDate& date); // Null for an invalid date
QString TextField(const QVariant& value);
// A one-character flag: blank (one space) when Null or empty.
QString FlagField(const QVariant& value);

// Runs writes in one transaction: committed when they succeed, rolled back when they fail or
// the commit does. A write that fails puts its reason in *error (QueryFailed does).
bool InOneTransaction(QSqlDatabase db, QString* error, const std::function<bool()>& writes);
// The reason a query failed, in *error: its own error, or the database's when it has none.
// Always false, for returning.
bool QueryFailed(const QSqlDatabase& db, const QSqlQuery& q, QString* error);

// Which duplicate a bill belongs to.
enum class Duplicate { RealEstate, PerCapita };

// A bill as it now stands: the master row, overlaid by its latest adjustment and then by its
// latest address change.
struct BillNow {
    enum class Status { Found, NotFound, IncompleteAdjustment, IncompleteAddress, Error };
    Status status = Status::NotFound;
    // The master row's columns, with the overlaid values.
    QSqlRecord bill;
    int adjNo = 0;          // latest adjustment applied; 0 when none
    QString adjustmentKind; // "A" adjustment, "X" exoneration, empty when none
    int addrId = 0;         // latest address change applied; 0 when none
    QString error;          // the database's error for Status::Error

    bool found() const { return status == Status::Found; }
    Money money(const char* column) const { return MoneyField(bill.value(column)); }
    QString text(const char* column) const { return TextField(bill.value(column)); }
};

// Every row of a bill's chains, for a screen that steps through its history: the master as
// delivered, then the adjustments by AdjNo and the address changes by AddrID.
struct BillHistory {
    QSqlRecord master;
    std::vector<QSqlRecord> adjustments;
    std::vector<QSqlRecord> addresses;
};

// Reads the bill with that (already padded) bill number; with a history, its chains whole.
BillNow ReadBillAsItStands(QSqlDatabase db, Duplicate duplicate, const QString& billNo,
                           BillHistory* history = nullptr);

// The integrity messages of a half-finished adjustment or address change.
inline constexpr const char* IntegrityErrorTitle = "Database Integrity Error";
inline constexpr const char* IncompleteAdjustmentText =
    "The system has detected an incomplete adjustment transaction. Please got to the UTILITIES "
    "menu and run the VERIFY DATA INTEGRITY option to correct this issue.";
inline constexpr const char* IncompleteAddressText =
    "The system has detected an incomplete address change transaction. Please got to the "
    "UTILITIES menu and run the VERIFY DATA INTEGRITY option to correct this issue.";

// Shows the integrity message when the bill's chain is incomplete. True when the bill can be
// worked on (found and whole).
bool CheckBillIntegrity(const BillNow& bill);
