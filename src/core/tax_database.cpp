#include "core/tax_database.h"

#include "core/messages.h"

#include <QFileInfo>
#include <QHash>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace TaxDatabase {
namespace {

using T = ColumnType;

// A compact column list: "Name:t Name:m ..." with t text, m money, i integer, r rate,
// d date, b boolean. Keeps the schema readable as the list of names it is.
std::vector<ColumnDef> cols(const char* list) {
    std::vector<ColumnDef> out;
    const QStringList words = QString::fromLatin1(list).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& word : words) {
        const qsizetype colon = word.indexOf(QLatin1Char(':'));
        const QString name = colon < 0 ? word : word.left(colon);
        const QChar kind = colon < 0 ? QLatin1Char('t') : word.at(colon + 1);
        ColumnType type = T::Text;
        switch (kind.toLatin1()) {
        case 'm':
            type = T::Money;
            break;
        case 'i':
            type = T::Integer;
            break;
        case 'r':
            type = T::Real;
            break;
        case 'd':
            type = T::Date;
            break;
        case 'b':
            type = T::Boolean;
            break;
        default:
            type = T::Text;
            break;
        }
        out.push_back({name, type});
    }
    return out;
}

std::vector<ColumnDef> join(std::initializer_list<std::vector<ColumnDef>> parts) {
    std::vector<ColumnDef> out;
    for (const auto& p : parts)
        out.insert(out.end(), p.begin(), p.end());
    return out;
}

// The amount triples in the order of the bill: discount, face, penalty of each line.
const char* const ReAmounts =
    "DCounty:m County:m PCounty:m DLibrary:m Library:m PLibrary:m DC1Face:m C1Face:m PC1Face:m "
    "DTwp:m Twp:m PTwp:m DS1Face:m S1Face:m PS1Face:m DS2Face:m S2Face:m PS2Face:m "
    "DS3Face:m S3Face:m PS3Face:m DSchool:m School:m PSchool:m DSch1Face:m Sch1Face:m PSch1Face:m";
// On distribution rows the face column leads each line.
const char* const ReAmountsFaceFirst =
    "County:m DCounty:m PCounty:m Library:m DLibrary:m PLibrary:m C1Face:m DC1Face:m PC1Face:m "
    "Twp:m DTwp:m PTwp:m S1Face:m DS1Face:m PS1Face:m S2Face:m DS2Face:m PS2Face:m "
    "S3Face:m DS3Face:m PS3Face:m School:m DSchool:m PSchool:m Sch1Face:m DSch1Face:m PSch1Face:m";
const char* const PcAmounts =
    "DCPerCapita:m CPerCapita:m PCPerCapita:m DCOccupation:m COccupation:m PCOccupation:m "
    "DTPerCapita:m TPerCapita:m PTPerCapita:m DTOccupation:m TOccupation:m PTOccupation:m "
    "DSPerCapita:m SPerCapita:m PSPerCapita:m DSOccupation:m SOccupation:m PSOccupation:m";
const char* const Installments =
    "Payment1:m Payment2:m Payment3:m PenPayment1:m PenPayment2:m PenPayment3:m";
const char* const Act1 = "AAFlag HFFlag HomesteadFlag FarmsteadFlag HSExclusion:m FSExclusion:m "
                         "ExcFace:m DExcFace:m PExcFace:m";
const char* const PcName = "Name Prefix LName FName MName Suffix Relationship";

std::vector<TableDef> buildSchema() {
    const QStringList byBill{"BillNo"};
    const QStringList byControl{"Control"};
    const QStringList byRecnum{"Recnum"};
    std::vector<TableDef> s;

    s.push_back(
        {"TCMaster",
         join({cols("District Ward Control BillNo Name Map3 Map4 Map5 CoOwner Addr1 Addr2 "
                    "City State ZipCode ZipCode2 Desc1 Desc2 Desc3 Acreage LandUse LDesc "
                    "AssLand:i AssImpr:i MVLand:i MVImpr:i DeedBook DeedPage"),
               cols(ReAmounts), cols(Installments),
               cols("AdjFlag CPayFlag TPayFlag SPayFlag Pay1Flag Pay2Flag Pay3Flag StLtFlag "
                    "TwpPaidFlag StLtPaidFlag CAddrFlag BankFlag SecondNotice Exempt TaxYear "
                    "MapRef Lot1"),
               cols(Act1),
               cols("Defaulted TaxClaimFlag CleanAndGreen WebSite WebControl WebPassword "
                    "Zip")}),
         {byBill, byControl, {"Name"}, {"Map3", "Map4", "Map5"}}});

    s.push_back({"PCMaster",
                 join({cols("District Ward Control BillNo"), cols(PcName),
                       cols("Addr1 Addr2 StreetNumber StreetName City State ZipCode ZipCode2 "
                            "OccuCode OccuDesc OccuValue Birthdate"),
                       cols(PcAmounts),
                       cols("AdjFlag CPayFlag TPayFlag SPayFlag CAddrFlag BankFlag SecondNotice "
                            "Exempt PCExempt SCExempt OtherExempt Over65 TaxYear")}),
                 {byBill, byControl, {"Name"}, {"LName", "FName"}}});

    const auto tcReceipt =
        join({cols("Control BillNo AdjNo:i Recnum Name Map3 Map4 Map5 RDate:d"), cols(ReAmounts),
              cols("Overage:m Refund:m Payor PAddr1 PAddr2 PCity PState PZipCode PZipCode2 "
                   "Checknum CPayFlag TPayFlag SPayFlag CDisbNum TDisbNum SDisbNum"),
              cols(Installments), cols("Pay1Flag Pay2Flag Pay3Flag VDate:d")});
    s.push_back(
        {"TCReceipt", tcReceipt, {byRecnum, byBill, {"CDisbNum"}, {"TDisbNum"}, {"SDisbNum"}}});

    const auto pcReceipt =
        join({cols("Control BillNo AdjNo:i Recnum Name RDate:d"), cols(PcAmounts),
              cols("Overage:m Refund:m Payor PAddr1 PAddr2 PCity PState PZipCode PZipCode2 "
                   "Checknum CPayFlag TPayFlag SPayFlag CDisbNum TDisbNum SDisbNum VDate:d")});
    s.push_back(
        {"PCReceipt", pcReceipt, {byRecnum, byBill, {"CDisbNum"}, {"TDisbNum"}, {"SDisbNum"}}});

    // A void holds every column of the receipt (amounts negated), then its own columns.
    // VDate is already among the receipt's columns.
    const auto voidColumns = cols("RCDisbNum RTDisbNum RSDisbNum Reason SysDate:d");
    auto tcVoid = tcReceipt;
    tcVoid.insert(tcVoid.end(), voidColumns.begin(), voidColumns.end());
    s.push_back(
        {"TCVoidReceipt", tcVoid, {byRecnum, byBill, {"CDisbNum"}, {"TDisbNum"}, {"SDisbNum"}}});
    auto pcVoid = pcReceipt;
    pcVoid.insert(pcVoid.end(), voidColumns.begin(), voidColumns.end());
    s.push_back(
        {"PCVoidReceipt", pcVoid, {byRecnum, byBill, {"CDisbNum"}, {"TDisbNum"}, {"SDisbNum"}}});

    const auto tcDistribution = join(
        {cols("CTS Control BillNo AdjNo:i Recnum Name Map3 Map4 Map5"), cols(ReAmountsFaceFirst),
         cols("CPayFlag TPayFlag SPayFlag Pay1Flag Pay2Flag Pay3Flag CDisbNum TDisbNum SDisbNum"),
         cols(Installments)});
    const auto pcDistribution =
        join({cols("CTS Control BillNo AdjNo:i Recnum Name"), cols(PcAmounts),
              cols("CPayFlag TPayFlag SPayFlag CDisbNum TDisbNum SDisbNum")});
    const std::vector<QStringList> distributionIndexes{
        byRecnum, {"CTS", "CDisbNum"}, {"CTS", "TDisbNum"}, {"CTS", "SDisbNum"}, byBill};
    s.push_back({"TCDistribution", tcDistribution, distributionIndexes});
    s.push_back({"TCVoidDistribution", tcDistribution, distributionIndexes});
    s.push_back({"PCDistribution", pcDistribution, distributionIndexes});
    s.push_back({"PCVoidDistribution", pcDistribution, distributionIndexes});

    s.push_back(
        {"TCRefund",
         cols("Control BillNo AdjNo:i RecNum RecNumID:i Map3 Map4 Map5 Name Addr1 Addr2 City "
              "State ZipCode ZipCode2 Desc1 Refund:m DisbNum RDate:d"),
         {{"RecNum", "RecNumID"}, byBill, {"DisbNum"}}});
    s.push_back(
        {"PCRefund",
         cols("Control BillNo AdjNo:i RecNum RecNumID:i Name Addr1 Addr2 City State ZipCode "
              "ZipCode2 Desc1 Refund:m DisbNum RDate:d"),
         {{"RecNum", "RecNumID"}, byBill, {"DisbNum"}}});

    s.push_back(
        {"TCAdjust",
         join({cols("Control BillNo AdjNo:i Name Map3 Map4 Map5 CoOwner Addr1 Addr2 City State "
                    "ZipCode ZipCode2 Desc1 Desc2 Desc3 Acreage LandUse LDesc Assland:i "
                    "AssImpr:i DeedBook DeedPage"),
               cols(ReAmounts), cols(Installments), cols("AdjDate:d Reason AdjFlag MapRef Lot1"),
               cols(Act1)}),
         {{"BillNo", "AdjNo"}, {"AdjDate"}}});
    s.push_back({"PCAdjust",
                 join({cols("Control BillNo AdjNo:i"), cols(PcName),
                       cols("Addr1 Addr2 StreetNumber StreetName City State ZipCode ZipCode2 "
                            "OccuCode OccuDesc OccuValue Birthdate"),
                       cols(PcAmounts), cols("AdjDate:d Reason AdjFlag")}),
                 {{"BillNo", "AdjNo"}, {"AdjDate"}}});

    s.push_back({"TCAddress",
                 cols("Control BillNo AddrID:i Name Map3 Map4 Map5 CoOwner Addr1 Addr2 City State "
                      "ZipCode ZipCode2 ADate:d Reason Reportable USPS"),
                 {{"BillNo", "AddrID"}, {"ADate"}}});
    s.push_back({"PCAddress",
                 join({cols("Control BillNo AddrID:i"), cols(PcName),
                       cols("Addr1 Addr2 StreetNumber StreetName City State ZipCode ZipCode2 "
                            "ADate:d Reason Reportable USPS")}),
                 {{"BillNo", "AddrID"}, {"ADate"}}});

    s.push_back({"TCAdds", cols("Control BillNo AdjDate:d Reason"), {byBill}});
    s.push_back({"PCAdds", cols("Control BillNo AdjDate:d Reason"), {byBill}});
    s.push_back({"TCLateBillAddress",
                 cols("BillNo Name Addr1 Addr2 City State ZipCode ZipCode2"),
                 {byBill}});
    s.push_back({"PCLateBillAddress",
                 cols("BillNo Name Addr1 Addr2 City State ZipCode ZipCode2"),
                 {byBill}});

    s.push_back({"TCReceiptNum", cols("ReceiptNum:i"), {}});
    s.push_back({"PCReceiptNum", cols("ReceiptNum:i"), {}});
    s.push_back({"TCBillNum", cols("BillNum:i"), {}});
    s.push_back({"PCBillNum", cols("BillNum:i"), {}});

    const char* dateSet = "MailDate:d DiscDate:d FaceDate1:d FaceDate2:d PenDate:d TaxDate:d "
                          "LastDate:d Payment1Date:d Payment2Date:d Payment3Date:d";
    const char* lateDateSet = "LateMailDate:d LateDiscDate:d LateFaceDate1:d LateFaceDate2:d "
                              "LatePenDate:d LateTaxDate:d LateLastDate:d LatePayment1Date:d "
                              "LatePayment2Date:d LatePayment3Date:d";
    s.push_back(
        {"Millfile",
         join({cols("District Ward TaxYear SMR:r S1MR:r S1TaxName SD:r SP:r SPC:r SMO:r "
                    "PCSD:r PCSP:r TMR:r LMR:r TD:r TP:r TPC:r TMO:r PCTD:r PCTP:r "
                    "BillCounty BillTwp BillSchool Tolerance:m"),
               cols(dateSet), cols(lateDateSet),
               cols("Line1 Line2 Line3 Line4 Line5 Line6 Line7 LateLine1 LateLine2 LateLine3 "
                    "LateLine4 LateLine5 LateLine6 LateLine7 PLine1 PLine2 LatePLine1 "
                    "LatePLine2 TCPhone LateTCPhone PrintEscrow:b LatePrintEscrow:b "
                    "SchoolFormula SchoolMarketRatio:r SchoolStebRatio:r School1Formula "
                    "School1MarketRatio:r School1StebRatio:r HSExclusion:m FSExclusion:m")}),
         {{"District", "Ward", "TaxYear"}}});

    s.push_back({"tbl_County", cols("County Addr2 City State ZipCode"), {}});
    s.push_back({"tbl_District", cols("District Ward IntNo:i"), {}});
    s.push_back(
        {"tbl_Twpboro", cols("District Ward TwpBoro BTFlag SchoolName"), {{"District", "Ward"}}});
    s.push_back({"tbl_States", cols("State"), {}});
    s.push_back({"tbl_ZipCodes", cols("ZipCode City State"), {{"ZipCode"}}});
    s.push_back({"tbl_LandUse", cols("LandUse Desc1"), {{"LandUse"}}});
    s.push_back({"tbl_Printers", cols("PrinterType DeviceName"), {}});
    s.push_back({"tbl_DisbDates",
                 cols("DisbNum:i DisbDate:d CTS DisbType"),
                 {{"DisbType", "CTS", "DisbNum"}}});
    s.push_back({"Spectax",
                 cols("District Ward TaxKey Desc1 Mill:r ExFlag SpecFlag TaxYear"),
                 {{"District", "Ward", "TaxYear", "TaxKey"}}});
    s.push_back({"Specpay",
                 cols("District Ward Control TaxKey Map Map3 Map4 Map5 Name Amount:m"),
                 {{"District", "Ward", "Control", "TaxKey"}}});
    s.push_back({"tbl_Settings", cols("Name Value"), {{"Name"}}});
    return s;
}

QString sqlType(ColumnType t) {
    switch (t) {
    case T::Text:
        return QStringLiteral("TEXT");
    case T::Money:
        return QStringLiteral("INTEGER");
    case T::Integer:
        return QStringLiteral("INTEGER");
    case T::Real:
        return QStringLiteral("REAL");
    case T::Date:
        return QStringLiteral("DATE");
    case T::Boolean:
        return QStringLiteral("INTEGER");
    }
    return QStringLiteral("TEXT");
}

bool exec(QSqlDatabase& db, const QString& sql, QString* error) {
    QSqlQuery q(db);
    if (!q.exec(sql)) {
        if (error)
            *error = q.lastError().text() + QStringLiteral(" [") + sql + QLatin1Char(']');
        return false;
    }
    return true;
}

void applyPragmas(QSqlDatabase& db) {
    QSqlQuery q(db);
    q.exec(QStringLiteral("PRAGMA journal_mode=DELETE"));
    q.exec(QStringLiteral("PRAGMA synchronous=FULL"));
    q.exec(QStringLiteral("PRAGMA foreign_keys=OFF"));
}

QSqlDatabase addConnection(const QString& path, const QString& connectionName) {
    if (QSqlDatabase::contains(connectionName))
        close(connectionName);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName);
    db.setDatabaseName(path);
    return db;
}

} // namespace

const std::vector<TableDef>& schema() {
    static const std::vector<TableDef> s = buildSchema();
    return s;
}

const TableDef* table(const QString& name) {
    for (const TableDef& t : schema())
        if (t.name.compare(name, Qt::CaseInsensitive) == 0)
            return &t;
    return nullptr;
}

ColumnType columnType(const QString& tableName, const QString& column) {
    if (const TableDef* t = table(tableName))
        for (const ColumnDef& c : t->columns)
            if (c.name.compare(column, Qt::CaseInsensitive) == 0)
                return c.type;
    return T::Text;
}

bool createSchema(QSqlDatabase& db, QString* error) {
    if (!db.transaction()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    for (const TableDef& t : schema()) {
        QStringList defs;
        for (const ColumnDef& c : t.columns)
            defs << c.name + QLatin1Char(' ') + sqlType(c.type);
        if (!exec(
                db,
                QStringLiteral("CREATE TABLE %1 (%2)").arg(t.name, defs.join(QStringLiteral(", "))),
                error)) {
            db.rollback();
            return false;
        }
        int n = 0;
        for (const QStringList& index : t.indexes) {
            const QString sql = QStringLiteral("CREATE INDEX ix_%1_%2 ON %1 (%3)")
                                    .arg(t.name)
                                    .arg(++n)
                                    .arg(index.join(QStringLiteral(", ")));
            if (!exec(db, sql, error)) {
                db.rollback();
                return false;
            }
        }
    }
    for (const char* numberTable : {"TCReceiptNum (ReceiptNum)", "PCReceiptNum (ReceiptNum)",
                                    "TCBillNum (BillNum)", "PCBillNum (BillNum)"}) {
        if (!exec(db, QStringLiteral("INSERT INTO %1 VALUES (1)").arg(QLatin1String(numberTable)),
                  error)) {
            db.rollback();
            return false;
        }
    }
    if (!exec(db, QStringLiteral("PRAGMA user_version = %1").arg(SchemaVersion), error)) {
        db.rollback();
        return false;
    }
    if (!db.commit()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    return true;
}

QSqlDatabase open(const QString& path, const QString& connectionName, QString* error) {
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists() || !info.isFile()) {
        if (error)
            *error = QStringLiteral("The database file %1 does not exist.").arg(path);
        return QSqlDatabase();
    }
    bool opened = false;
    {
        QSqlDatabase db = addConnection(path, connectionName);
        if (!db.open()) {
            if (error)
                *error = db.lastError().text();
        } else {
            // SQLite opens anything lazily; make it read the header now, so that a file that is
            // not a database fails here.
            QSqlQuery probe(db);
            opened = probe.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"));
            if (!opened && error)
                *error = probe.lastError().text();
        }
        if (opened)
            applyPragmas(db);
    }
    if (!opened) {
        close(connectionName);
        return QSqlDatabase();
    }
    return QSqlDatabase::database(connectionName, false);
}

QSqlDatabase create(const QString& path, const QString& connectionName, QString* error) {
    if (QFileInfo::exists(path) && !QFile::remove(path)) {
        if (error)
            *error = QStringLiteral("The file %1 cannot be replaced.").arg(path);
        return QSqlDatabase();
    }
    bool created = false;
    {
        QSqlDatabase db = addConnection(path, connectionName);
        if (!db.open()) {
            if (error)
                *error = db.lastError().text();
        } else {
            applyPragmas(db);
            created = createSchema(db, error);
        }
    }
    if (!created) {
        close(connectionName);
        return QSqlDatabase();
    }
    return QSqlDatabase::database(connectionName, false);
}

void close(const QString& connectionName) {
    if (!QSqlDatabase::contains(connectionName))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(connectionName, false);
        if (db.isOpen())
            db.close();
    }
    QSqlDatabase::removeDatabase(connectionName);
}

bool isValidTaxDatabase(const QString& path, QString* why) {
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists() || !info.isFile()) {
        if (why)
            *why = QStringLiteral("The database file %1 does not exist.").arg(path);
        return false;
    }
    const QString name =
        QStringLiteral("levydesk-check-") + QUuid::createUuid().toString(QUuid::Id128);
    bool ok = false;
    {
        // The chosen file is only read: no pragma, journal or header change may touch it, even
        // when it says it is of another journal mode than ours.
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        db.setDatabaseName(path);
        if (!db.open()) {
            if (why)
                *why = db.lastError().text();
        } else {
            QSqlQuery q(db);
            if (!q.exec(QStringLiteral("PRAGMA integrity_check")) || !q.next() ||
                q.value(0).toString() != QLatin1String("ok")) {
                if (why)
                    *why = QStringLiteral("The file fails the database integrity check.");
            } else {
                QSet<QString> present;
                q.exec(
                    QStringLiteral("SELECT lower(name) FROM sqlite_master WHERE type = 'table'"));
                while (q.next())
                    present.insert(q.value(0).toString());
                ok = true;
                for (const TableDef& t : schema()) {
                    if (!present.contains(t.name.toLower())) {
                        ok = false;
                        if (why)
                            *why = QStringLiteral("The table %1 is missing.").arg(t.name);
                        break;
                    }
                }
            }
        }
    }
    close(name);
    return ok;
}

} // namespace TaxDatabase

Money MoneyField(const QVariant& value) {
    if (value.isNull() || !value.isValid())
        return Money();
    bool ok = false;
    const qlonglong units = value.toLongLong(&ok);
    if (ok)
        return Money::fromUnits(units);
    // A real number stored by hand: take it as ten-thousandths, rounded to the nearest.
    const double d = value.toDouble(&ok);
    return ok ? Money::fromUnits(static_cast<std::int64_t>(d >= 0 ? d + 0.5 : d - 0.5)) : Money();
}

QVariant MoneyValue(Money amount) {
    return QVariant(qlonglong(amount.units()));
}

QDate DateField(const QVariant& value) {
    if (value.isNull() || !value.isValid())
        return QDate();
    if (value.typeId() == QMetaType::QDate)
        return value.toDate();
    return QDate::fromString(value.toString().left(10), Qt::ISODate);
}

QVariant BoundText(const QVariant& value) {
    if (value.typeId() == QMetaType::QString && value.toString().isNull())
        return QVariant(QString::fromLatin1(""));
    return value;
}

QVariant DateValue(const QDate& date) {
    if (!date.isValid())
        return QVariant(QMetaType(QMetaType::QString));
    return QVariant(date.toString(Qt::ISODate));
}

QString TextField(const QVariant& value) {
    if (value.isNull() || !value.isValid())
        return QString();
    return value.toString();
}

QString FlagField(const QVariant& value) {
    const QString text = TextField(value);
    return text.isEmpty() ? QStringLiteral(" ") : text;
}

bool InOneTransaction(QSqlDatabase db, QString* error, const std::function<bool()>& writes) {
    if (!db.transaction()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    if (!writes()) {
        db.rollback();
        return false;
    }
    if (!db.commit()) {
        if (error)
            *error = db.lastError().text();
        db.rollback();
        return false;
    }
    return true;
}

bool QueryFailed(const QSqlDatabase& db, const QSqlQuery& q, QString* error) {
    if (error)
        *error = q.lastError().isValid() ? q.lastError().text() : db.lastError().text();
    return false;
}

namespace {

// Copies the columns of the history row that the bill also has, except its keys and flags.
void overlay(QSqlRecord& bill, const QSqlRecord& history, const QSet<QString>& skip) {
    for (int i = 0; i < history.count(); ++i) {
        const QString name = history.fieldName(i);
        if (skip.contains(name.toLower()))
            continue;
        const int target = bill.indexOf(name);
        if (target >= 0)
            bill.setValue(target, history.value(i));
    }
}

enum class Latest { Found, Missing, Error };

// The history row of the bill with the highest number: the one in force. With rows, every row
// of the chain in order, the last being the one in force.
Latest readLatest(QSqlDatabase db, const QString& table, const QString& numberColumn,
                  const QString& billNo, QSqlRecord* row, QString* error,
                  std::vector<QSqlRecord>* rows = nullptr) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (rows)
        q.prepare(QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? ORDER BY BillNo, %2")
                      .arg(table, numberColumn));
    else
        q.prepare(
            QStringLiteral("SELECT * FROM %1 WHERE BillNo = ? ORDER BY BillNo, %2 DESC LIMIT 1")
                .arg(table, numberColumn));
    q.addBindValue(billNo);
    if (!q.exec()) {
        *error = q.lastError().text();
        return Latest::Error;
    }
    if (!rows) {
        if (!q.next())
            return Latest::Missing;
        *row = q.record();
        return Latest::Found;
    }
    rows->clear();
    while (q.next())
        rows->push_back(q.record());
    if (rows->empty())
        return Latest::Missing;
    *row = rows->back();
    return Latest::Found;
}

} // namespace

BillNow ReadBillAsItStands(QSqlDatabase db, Duplicate duplicate, const QString& billNo,
                           BillHistory* history) {
    const bool re = duplicate == Duplicate::RealEstate;
    const QString master = re ? QStringLiteral("TCMaster") : QStringLiteral("PCMaster");
    const QString adjust = re ? QStringLiteral("TCAdjust") : QStringLiteral("PCAdjust");
    const QString address = re ? QStringLiteral("TCAddress") : QStringLiteral("PCAddress");
    BillNow out;

    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE BillNo = ?").arg(master));
    q.addBindValue(billNo);
    if (!q.exec()) {
        out.status = BillNow::Status::Error;
        out.error = q.lastError().text();
        return out;
    }
    if (!q.next()) {
        out.status = BillNow::Status::NotFound;
        return out;
    }
    out.bill = q.record();
    q.finish();
    if (history)
        *history = BillHistory{out.bill, {}, {}};

    // Keys and the master's own flags stay as the master row has them.
    static const QSet<QString> keep{"control", "billno",  "adjflag", "adjno",
                                    "addrid",  "adjdate", "adate",   "reason"};

    QSqlRecord row;
    if (FlagField(out.bill.value("AdjFlag")) == QLatin1String("A")) {
        const Latest latest = readLatest(db, adjust, QStringLiteral("AdjNo"), billNo, &row,
                                         &out.error, history ? &history->adjustments : nullptr);
        if (latest != Latest::Found) {
            out.status = latest == Latest::Missing ? BillNow::Status::IncompleteAdjustment
                                                   : BillNow::Status::Error;
            return out;
        }
        overlay(out.bill, row, keep);
        out.adjNo = row.value("AdjNo").toInt();
        out.adjustmentKind = TextField(row.value("AdjFlag")).trimmed();
    }
    if (FlagField(out.bill.value("CAddrFlag")) == QLatin1String("A")) {
        const Latest latest = readLatest(db, address, QStringLiteral("AddrID"), billNo, &row,
                                         &out.error, history ? &history->addresses : nullptr);
        if (latest != Latest::Found) {
            out.status = latest == Latest::Missing ? BillNow::Status::IncompleteAddress
                                                   : BillNow::Status::Error;
            return out;
        }
        overlay(out.bill, row, keep);
        out.addrId = row.value("AddrID").toInt();
    }
    out.status = BillNow::Status::Found;
    return out;
}

bool CheckBillIntegrity(const BillNow& bill) {
    switch (bill.status) {
    case BillNow::Status::Found:
        return true;
    case BillNow::Status::IncompleteAdjustment:
        MsgBox(QString::fromLatin1(IncompleteAdjustmentText),
               QString::fromLatin1(IntegrityErrorTitle), MsgButtons::Ok, MsgIcon::Critical);
        return false;
    case BillNow::Status::IncompleteAddress:
        MsgBox(QString::fromLatin1(IncompleteAddressText), QString::fromLatin1(IntegrityErrorTitle),
               MsgButtons::Ok, MsgIcon::Critical);
        return false;
    case BillNow::Status::NotFound:
    case BillNow::Status::Error:
        return false;
    }
    return false;
}
