#include "demo/demo_database.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/money.h"
#include "core/tax_database.h"
#include "desk/realestate/payment_rules.h"

#include <QDate>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QUuid>
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include <sqlite3.h>

namespace {

// ---------------------------------------------------------------------------------------------
// Random numbers
// ---------------------------------------------------------------------------------------------

// splitmix64: small, and the same on every platform and standard library, so one seed always
// gives one database. Each part of the data draws from its own stream, so that the number of
// persons does not change the parcels.
class Rng {
public:
    Rng(quint32 seed, quint64 stream)
        : m_state((quint64(seed) << 32) ^ (stream * 0xD1B54A32D192ED03ull)) {
        next();
    }

    quint64 next() {
        quint64 z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    // A whole number in [lo, hi].
    qint64 between(qint64 lo, qint64 hi) {
        return hi <= lo ? lo : lo + qint64(next() % quint64(hi - lo + 1));
    }
    double unit() { return double(next() >> 11) * (1.0 / 9007199254740992.0); }
    bool chance(double p) { return unit() < p; }
    template <std::size_t N> const char* pick(const char* const (&list)[N]) {
        return list[next() % N];
    }
    // A multiple of step in [lo, hi].
    qint64 rounded(qint64 lo, qint64 hi, qint64 step) {
        return between(lo / step, hi / step) * step;
    }

private:
    quint64 m_state;
};

QString L(const char* text) {
    return QString::fromLatin1(text);
}

// A one-letter flag as a text of static storage.
const char* Flag(char letter) {
    static const std::array<std::array<char, 2>, 128> texts = [] {
        std::array<std::array<char, 2>, 128> t{};
        for (int i = 0; i < 128; ++i)
            t[std::size_t(i)] = {char(i), '\0'};
        return t;
    }();
    return texts[std::size_t(letter) & 127].data();
}

QString Digits(qint64 value, int width) {
    return QStringLiteral("%1").arg(value, width, 10, QLatin1Char('0'));
}

// ---------------------------------------------------------------------------------------------
// Writing rows
// ---------------------------------------------------------------------------------------------

// The SQLite connection under a Qt one: rows are written through the C interface, which binds a
// value for a fraction of what a QSqlQuery costs.
sqlite3* SqliteHandle(const QSqlDatabase& db) {
    if (!db.isOpen() || !db.driver())
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.metaType().name(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
}

// Inserts rows into one table of the schema through one prepared statement. Every column is
// bound on every row: text columns default to one blank (the carried web and map reference
// columns to an empty text), money and numbers to zero, dates to Null. A value of the wrong kind
// or an unknown column is an error that stops the generation.
class TableWriter {
public:
    TableWriter(QSqlDatabase db, const QString& tableName) : m_db(SqliteHandle(db)) {
        const TaxDatabase::TableDef* def = TaxDatabase::table(tableName);
        if (!def || !m_db) {
            m_error = QStringLiteral("The table %1 cannot be written.").arg(tableName);
            return;
        }
        m_table = def->name;
        static const QStringList emptyText{"mapref",     "lot1",        "website",
                                           "webcontrol", "webpassword", "zip"};
        QStringList names;
        QStringList marks;
        for (const TaxDatabase::ColumnDef& c : def->columns) {
            m_index.emplace(c.name.toLower().toStdString(), int(m_types.size()));
            m_types.push_back(c.type);
            Value initial;
            switch (c.type) {
            case TaxDatabase::ColumnType::Text:
                initial.kind = Value::Text;
                initial.literal = emptyText.contains(c.name.toLower()) ? "" : " ";
                break;
            case TaxDatabase::ColumnType::Money:
            case TaxDatabase::ColumnType::Integer:
            case TaxDatabase::ColumnType::Boolean:
                initial.kind = Value::Integer;
                break;
            case TaxDatabase::ColumnType::Real:
                initial.kind = Value::Real;
                break;
            case TaxDatabase::ColumnType::Date:
                initial.kind = Value::Null;
                break;
            }
            m_defaults.push_back(initial);
            names << c.name;
            marks << QStringLiteral("?");
        }
        m_values = m_defaults;
        const QByteArray sql =
            QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                .arg(m_table, names.join(QStringLiteral(", ")), marks.join(QStringLiteral(", ")))
                .toUtf8();
        if (sqlite3_prepare_v2(m_db, sql.constData(), int(sql.size()), &m_statement, nullptr) !=
            SQLITE_OK)
            m_error = m_table + QStringLiteral(": ") + QString::fromUtf8(sqlite3_errmsg(m_db));
    }
    ~TableWriter() { sqlite3_finalize(m_statement); }
    TableWriter(const TableWriter&) = delete;
    TableWriter& operator=(const TableWriter&) = delete;

    void text(const char* column, const QString& value) {
        if (Value* v = slot(column, TaxDatabase::ColumnType::Text)) {
            v->literal = nullptr;
            v->bytes = value.toUtf8();
        }
    }
    // A text of static storage (a literal or an entry of the name lists), bound as it is.
    void text(const char* column, const char* literal) {
        if (Value* v = slot(column, TaxDatabase::ColumnType::Text))
            v->literal = literal;
    }
    void money(const char* column, Money value) {
        if (Value* v = slot(column, TaxDatabase::ColumnType::Money))
            v->integer = value.units();
    }
    void date(const char* column, const QDate& value) {
        if (Value* v = slot(column, TaxDatabase::ColumnType::Date)) {
            v->kind = value.isValid() ? Value::Text : Value::Null;
            v->literal = nullptr;
            v->bytes = value.isValid() ? value.toString(Qt::ISODate).toLatin1() : QByteArray();
        }
    }
    void integer(const char* column, qint64 value) {
        if (Value* v = slot(column, TaxDatabase::ColumnType::Integer))
            v->integer = value;
    }
    void boolean(const char* column, bool value) {
        if (Value* v = slot(column, TaxDatabase::ColumnType::Boolean))
            v->integer = value ? 1 : 0;
    }
    void real(const char* column, double value) {
        if (Value* v = slot(column, TaxDatabase::ColumnType::Real))
            v->real = value;
    }

    // Writes the row and starts the next one from the defaults.
    bool insert() {
        if (!m_error.isEmpty())
            return false;
        for (int i = 0; i < int(m_values.size()); ++i) {
            const Value& v = m_values[std::size_t(i)];
            switch (v.kind) {
            case Value::Null:
                sqlite3_bind_null(m_statement, i + 1);
                break;
            case Value::Integer:
                sqlite3_bind_int64(m_statement, i + 1, v.integer);
                break;
            case Value::Real:
                sqlite3_bind_double(m_statement, i + 1, v.real);
                break;
            case Value::Text:
                // Both kinds of text outlive the step of this row.
                if (v.literal)
                    sqlite3_bind_text(m_statement, i + 1, v.literal, -1, SQLITE_STATIC);
                else
                    sqlite3_bind_text(m_statement, i + 1, v.bytes.constData(), int(v.bytes.size()),
                                      SQLITE_STATIC);
                break;
            }
        }
        const int rc = sqlite3_step(m_statement);
        sqlite3_reset(m_statement);
        if (rc != SQLITE_DONE) {
            m_error = m_table + QStringLiteral(": ") + QString::fromUtf8(sqlite3_errmsg(m_db));
            return false;
        }
        std::copy(m_defaults.begin(), m_defaults.end(), m_values.begin());
        return true;
    }

    const QString& error() const { return m_error; }

private:
    struct Value {
        enum Kind { Null, Integer, Real, Text } kind = Null;
        qint64 integer = 0;
        double real = 0;
        const char* literal = nullptr;
        QByteArray bytes;
    };

    Value* slot(const char* column, TaxDatabase::ColumnType type) {
        // The column names are literals: each is looked up by name once, then by its address.
        int index;
        if (const auto known = m_byAddress.find(column); known != m_byAddress.end()) {
            index = known->second;
        } else {
            std::string key(column);
            for (char& c : key)
                c = c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
            const auto found = m_index.find(key);
            if (found == m_index.end()) {
                if (m_error.isEmpty())
                    m_error = QStringLiteral("%1 has no column %2.").arg(m_table, L(column));
                return nullptr;
            }
            index = found->second;
            m_byAddress.emplace(column, index);
        }
        const TaxDatabase::ColumnType declared = m_types[std::size_t(index)];
        const bool compatible = declared == type || (type == TaxDatabase::ColumnType::Integer &&
                                                     declared == TaxDatabase::ColumnType::Boolean);
        if (!compatible) {
            if (m_error.isEmpty())
                m_error = QStringLiteral("%1.%2 is of another kind.").arg(m_table, L(column));
            return nullptr;
        }
        return &m_values[std::size_t(index)];
    }

    sqlite3* m_db = nullptr;
    sqlite3_stmt* m_statement = nullptr;
    QString m_table;
    QString m_error;
    std::unordered_map<std::string, int> m_index;
    std::unordered_map<const char*, int> m_byAddress;
    std::vector<TaxDatabase::ColumnType> m_types;
    std::vector<Value> m_defaults;
    std::vector<Value> m_values;
};

// ---------------------------------------------------------------------------------------------
// The office: county, municipality, rates and dates
// ---------------------------------------------------------------------------------------------

const char* const District = "27";
const char* const Ward = "1";

// County row of Millfile.
constexpr double CountyMill = 4.174;
constexpr double CountySpecialMill = 0.12;
const char* const CountySpecialName = "OPEN SPACE";
constexpr double CountyDiscount = 2;
constexpr double CountyPenalty = 10;
constexpr double CountyPerCapita = 0;
constexpr double CountyOccupation = 0;
constexpr double CountyPcDiscount = 2;
constexpr double CountyPcPenalty = 10;

// Municipal row: the township, and the school district it belongs to.
constexpr double TwpMill = 1.65;
constexpr double LibraryMill = 0.25;
constexpr double TwpDiscount = 2;
constexpr double TwpPenalty = 10;
constexpr double TwpPerCapita = 5;
constexpr double TwpOccupation = 10; // a flat occupation tax outside district 37
constexpr double TwpPcDiscount = 2;
constexpr double TwpPcPenalty = 10;
constexpr double SchoolMill = 18.52;
constexpr double SchoolSpecialMill = 0.35;
const char* const SchoolSpecialName = "DEBT SVC";
constexpr double SchoolDiscount = 2;
constexpr double SchoolPenalty = 10;
constexpr double SchoolPerCapita = 10;
constexpr double SchoolOccupation = 0;
constexpr double SchoolPcDiscount = 2;
constexpr double SchoolPcPenalty = 10;
constexpr double SchoolMarketRatio = 1.0;
constexpr double SchoolStebRatio = 0.862;
constexpr std::int64_t HomesteadExclusion = 17437;
constexpr std::int64_t FarmsteadExclusion = 8750;
constexpr std::int64_t ToleranceCents = 100;

struct SpecialTax {
    const char* key;
    const char* description;
    double mill;
};
// The township's special taxes in TaxKey order: slots S1Face and S2Face.
const SpecialTax TwpSpecials[] = {{"FIRE", "FIRE", 0.5}, {"HYDRNT", "HYDRANT", 0.2}};
const SpecialTax CountySpecial = {"OPNSPC", "OPEN SPACE", CountySpecialMill};

// A billing time frame: where discount ends and penalty begins.
struct Frame {
    QDate mail;
    QDate discountEnd;
    QDate penaltyStart;
};

// The demo's dates. County and township bills go out on the early frame (BillCounty 'E',
// BillTwp 'E'), school bills on the late one (BillSchool 'L').
struct Calendar {
    QString taxYear;
    Frame early;
    Frame late;
    std::array<QDate, 3> installments; // the school installments' due dates
    QDate taxClaim;                    // TaxDate: unpaid taxes go to the Tax Claim Bureau
    QDate lastToPay;                   // LastDate
    // The demo's records go up to this day.
    QDate lastWorkingDay;
    QDate adjustFrom, adjustTo;    // adjustments are made in these days
    QDate addFrom, addTo;          // and bills are added in these
    QDate addressFrom;             // address changes come from here to the last working day
    QDate escrowEarly, escrowLate; // the mortgage companies' first check days, one day apart
    QDate over65On;                // the day a per capita taxpayer's age is taken
};

// The fixed 2013 duplicate the tests know: county and municipal bills are in their penalty
// period on the last working day, school bills in their face period.
Calendar Calendar2013() {
    Calendar c;
    c.taxYear = QStringLiteral("2013");
    c.early = {QDate(2013, 3, 1), QDate(2013, 4, 30), QDate(2013, 7, 1)};
    c.late = {QDate(2013, 7, 1), QDate(2013, 8, 31), QDate(2013, 11, 1)};
    c.installments = {QDate(2013, 8, 31), QDate(2013, 10, 31), QDate(2013, 12, 31)};
    c.taxClaim = QDate(2014, 1, 1);
    c.lastToPay = QDate(2013, 12, 31);
    c.lastWorkingDay = QDate(2013, 9, 30);
    c.adjustFrom = QDate(2013, 3, 4);
    c.adjustTo = QDate(2013, 3, 29);
    c.addFrom = QDate(2013, 4, 1);
    c.addTo = QDate(2013, 8, 30);
    c.addressFrom = QDate(2013, 3, 4);
    c.escrowEarly = QDate(2013, 4, 22);
    c.escrowLate = QDate(2013, 8, 26);
    c.over65On = QDate(2013, 1, 1);
    return c;
}

// A year laid around a working day: every body mailed its bills three weeks before it, so the
// day falls in the discount period of all three, and the records go up to the day before.
Calendar CalendarAround(int taxYear, const QDate& workingDay) {
    Calendar c;
    c.taxYear = QString::number(taxYear);
    const QDate mail = workingDay.addDays(-21);
    c.early = {mail, mail.addMonths(2).addDays(-1), mail.addMonths(4)};
    c.late = c.early;
    c.installments = {c.late.discountEnd, c.late.discountEnd.addMonths(2),
                      c.late.discountEnd.addMonths(4)};
    c.lastToPay = QDate(c.late.penaltyStart.year(), 12, 31);
    c.taxClaim = c.lastToPay.addDays(1);
    c.lastWorkingDay = workingDay.addDays(-1);
    c.adjustFrom = mail.addDays(2);
    c.adjustTo = mail.addDays(9);
    c.addFrom = mail.addDays(5);
    c.addTo = c.lastWorkingDay;
    c.addressFrom = mail.addDays(2);
    c.escrowEarly = mail.addDays(8);
    c.escrowLate = mail.addDays(12);
    c.over65On = QDate(taxYear, 1, 1);
    return c;
}

Calendar MakeCalendar(const DemoOptions& options) {
    if (options.taxYear <= 0)
        return Calendar2013();
    // The working day is the options' today taken into the tax year.
    const QDate today = options.today.isValid() ? options.today : Clock::today();
    QDate day(options.taxYear, today.month(), today.day());
    if (!day.isValid()) // 29 February in a common year
        day = QDate(options.taxYear, 2, 28);
    return CalendarAround(options.taxYear, day);
}

char PeriodAt(const Frame& frame, const QDate& day) {
    if (day <= frame.discountEnd)
        return 'D';
    if (day >= frame.penaltyStart)
        return 'P';
    return 'F';
}

RealEstateRates DemoRates() {
    RealEstateRates r;
    r.countyMill = CountyMill;
    r.libraryMill = LibraryMill;
    r.countySpecialMill = CountySpecialMill;
    r.countyDiscountPct = CountyDiscount;
    r.countyPenaltyPct = CountyPenalty;
    r.twpMill = TwpMill;
    r.specialMill = {TwpSpecials[0].mill, TwpSpecials[1].mill, 0};
    r.twpDiscountPct = TwpDiscount;
    r.twpPenaltyPct = TwpPenalty;
    r.school = {SchoolMill, false, SchoolMarketRatio, SchoolStebRatio};
    r.schoolSpecial = {SchoolSpecialMill, false, SchoolMarketRatio, SchoolStebRatio};
    r.schoolDiscountPct = SchoolDiscount;
    r.schoolPenaltyPct = SchoolPenalty;
    return r;
}

// The per capita lines of a taxable person. The rates are flat amounts here: the occupation tax
// goes by mills only in district 37 and in the Larkspur Hill school district. County percentages
// count in whole percent.
std::array<AmountTriple, 6> PerCapitaLines() {
    auto flat = [](double rate) { return Money::fromRounded(RoundTo(rate, 2)); };
    const double cd = std::nearbyint(CountyPcDiscount);
    const double cp = std::nearbyint(CountyPcPenalty);
    return {TripleFromFace(flat(CountyPerCapita), cd, cp),
            TripleFromFace(flat(CountyOccupation), cd, cp),
            TripleFromFace(flat(TwpPerCapita), TwpPcDiscount, TwpPcPenalty),
            TripleFromFace(flat(TwpOccupation), TwpPcDiscount, TwpPcPenalty),
            TripleFromFace(flat(SchoolPerCapita), SchoolPcDiscount, SchoolPcPenalty),
            TripleFromFace(flat(SchoolOccupation), SchoolPcDiscount, SchoolPcPenalty)};
}

// ---------------------------------------------------------------------------------------------
// Names and places
// ---------------------------------------------------------------------------------------------

const char* const Surnames[] = {
    "HOOVER",    "MARTIN",     "ZIMMERMAN", "WEAVER",    "SHIRK",      "NOLT",     "BURKHOLDER",
    "STOLTZFUS", "KING",       "FISHER",    "LAPP",      "ESH",        "BEILER",   "HERR",
    "BRUBAKER",  "GROFF",      "HESS",      "LANDIS",    "NEWSWANGER", "SHENK",    "SENSENIG",
    "WENGER",    "ZOOK",       "MILLER",    "SMITH",     "JOHNSON",    "WILLIAMS", "BROWN",
    "JONES",     "DAVIS",      "GARCIA",    "RODRIGUEZ", "WILSON",     "ANDERSON", "TAYLOR",
    "THOMAS",    "MOORE",      "JACKSON",   "WHITE",     "HARRIS",     "CLARK",    "LEWIS",
    "YOUNG",     "WALKER",     "ALLEN",     "WRIGHT",    "SCOTT",      "GREEN",    "BAKER",
    "ADAMS",     "NELSON",     "HILL",      "CAMPBELL",  "MITCHELL",   "ROBERTS",  "CARTER",
    "PHILLIPS",  "EVANS",      "TURNER",    "TORRES",    "PARKER",     "COLLINS",  "EDWARDS",
    "STEWART",   "MORRIS",     "MURPHY",    "COOK",      "ROGERS",     "MORGAN",   "PETERSON",
    "COOPER",    "REED",       "BAILEY",    "BELL",      "KELLY",      "HOWARD",   "WARD",
    "COX",       "RICHARDSON", "WOOD",      "WATSON",    "BROOKS",     "BENNETT",  "GRAY",
    "HUGHES",    "PRICE",      "SANDERS",   "MYERS",     "LONG",       "ROSS",     "FOSTER",
    "O'BRIEN",   "O'NEILL",    "SNYDER",    "KREIDER",   "EBERLY",     "GOOD",     "BOMBERGER",
    "RISSER",    "EBY",        "HURST",     "MUSSER",    "KAUFFMAN",   "SAUDER",   "STAUFFER",
    "WITMER",    "SHOWALTER",  "NGUYEN",    "PATEL",     "KIM",        "SCHMIDT",  "MC CARTHY",
    "DE LONG",   "VAN HORN",   "GEHMAN",    "HERSHEY",   "BUCKWALTER", "RUTT",     "FREY"};
const char* const MaleNames[] = {
    "JAMES",  "JOHN",    "ROBERT", "MICHAEL", "WILLIAM", "DAVID",    "RICHARD", "JOSEPH",
    "THOMAS", "CHARLES", "DANIEL", "MATTHEW", "MARK",    "DONALD",   "PAUL",    "STEVEN",
    "ANDREW", "KENNETH", "JOSHUA", "KEVIN",   "BRIAN",   "GEORGE",   "EDWARD",  "RONALD",
    "AMOS",   "ELI",     "JACOB",  "SAMUEL",  "AARON",   "BENJAMIN", "HAROLD",  "GLENN",
    "LEROY",  "MELVIN",  "IVAN",   "MARVIN",  "DALE",    "RAY",      "CARL",    "LUKE"};
const char* const FemaleNames[] = {
    "MARY",   "PATRICIA", "JENNIFER", "LINDA", "ELIZABETH", "BARBARA",   "SUSAN",   "JESSICA",
    "SARAH",  "KAREN",    "NANCY",    "LISA",  "BETTY",     "MARGARET",  "SANDRA",  "ASHLEY",
    "DONNA",  "EMILY",    "MICHELLE", "CAROL", "AMANDA",    "MELISSA",   "DEBORAH", "REBECCA",
    "ANNA",   "ESTHER",   "MIRIAM",   "RUTH",  "NAOMI",     "LYDIA",     "SADIE",   "FANNIE",
    "JUDITH", "JANET",    "DIANE",    "JOYCE", "GLORIA",    "ANN-MARIE", "KATHY",   "SHIRLEY"};
const char* const Initials[] = {"A", "B", "C", "D", "E", "F", "G", "H", "J",
                                "K", "L", "M", "N", "P", "R", "S", "T", "W"};
const char* const Suffixes[] = {"JR", "SR", "II", "III"};
const char* const BusinessWords[] = {"PROPERTIES LLC",  "RENTALS LLC",     "HOLDINGS LP",
                                     "ENTERPRISES INC", "& SONS INC",      "REALTY LLC",
                                     "FARMS LLC",       "INVESTMENTS LLC", "PARTNERSHIP"};
const char* const NamedBusinesses[] = {
    "MILLBROOK FARM SUPPLY INC", "KESTREL VALLEY HOMES LLC", "CEDAR RIDGE HOLDINGS LLC",
    "KEYSTONE RENTALS LLC",      "MILL CREEK STORAGE LLC",   "SPRING VALLEY PARTNERS LP",
    "COUNTRY LANE MARKET INC",   "RED BARN AUTO REPAIR LLC", "LANCASTER PIKE PLAZA LP"};
const char* const ExemptOwners[] = {"MILLBROOK TOWNSHIP",           "ST JOHNS LUTHERAN CHURCH",
                                    "MILLBROOK FIRE COMPANY",       "KESTREL VALLEY SCHOOL DIST",
                                    "GRACE MENNONITE CHURCH",       "MILLBROOK COMMUNITY PARK ASSN",
                                    "COMMONWEALTH OF PENNSYLVANIA", "KESTRELVALE COUNTY"};

// Streets of the township, each served by one of its post offices.
const char* const Streets[] = {
    "MILLBROOK RD", "CREEK RD",    "ORCHARD LN",    "MAPLE AVE",    "HILLSIDE DR",
    "FARM VIEW LN", "OLD MILL RD", "CHURCH ST",     "MAIN ST",      "SPRING VALLEY RD",
    "HICKORY LN",   "WALNUT ST",   "PINE HILL RD",  "MEADOW CT",    "STONE BRIDGE RD",
    "CHESTNUT ST",  "KESTREL WAY", "FOXCHASE DR",   "QUARRY RD",    "SCHOOL LN",
    "ROSEMONT AVE", "SUNSET DR",   "HOLLOW RD",     "LAUREL DR",    "BLUEBIRD LN",
    "WILLOW ST",    "CEDAR LN",    "MILL CREEK RD", "BROOKSIDE DR", "HARVEST RD"};
struct Town {
    const char* city;
    const char* state;
    const char* zip;
};
const Town LocalTowns[] = {
    {"LITITZ", "PA", "17543"}, {"MANHEIM", "PA", "17545"}, {"EAST PETERSBURG", "PA", "17520"}};
// tbl_ZipCodes: post offices of the area around the county seat.
const Town AreaZipCodes[] = {{"AKRON", "PA", "17501"},
                             {"BAINBRIDGE", "PA", "17502"},
                             {"BIRD IN HAND", "PA", "17505"},
                             {"BROWNSTOWN", "PA", "17508"},
                             {"CHRISTIANA", "PA", "17509"},
                             {"COLUMBIA", "PA", "17512"},
                             {"CONESTOGA", "PA", "17516"},
                             {"DENVER", "PA", "17517"},
                             {"DRUMORE", "PA", "17518"},
                             {"EAST EARL", "PA", "17519"},
                             {"EAST PETERSBURG", "PA", "17520"},
                             {"EPHRATA", "PA", "17522"},
                             {"GAP", "PA", "17527"},
                             {"GORDONVILLE", "PA", "17529"},
                             {"HOLTWOOD", "PA", "17532"},
                             {"KINZERS", "PA", "17535"},
                             {"KIRKWOOD", "PA", "17536"},
                             {"LANDISVILLE", "PA", "17538"},
                             {"LEOLA", "PA", "17540"},
                             {"LITITZ", "PA", "17543"},
                             {"MANHEIM", "PA", "17545"},
                             {"MARIETTA", "PA", "17547"},
                             {"MILLERSVILLE", "PA", "17551"},
                             {"MOUNT JOY", "PA", "17552"},
                             {"MOUNTVILLE", "PA", "17554"},
                             {"NARVON", "PA", "17555"},
                             {"NEW HOLLAND", "PA", "17557"},
                             {"NEW PROVIDENCE", "PA", "17560"},
                             {"PARADISE", "PA", "17562"},
                             {"QUARRYVILLE", "PA", "17566"},
                             {"REINHOLDS", "PA", "17569"},
                             {"RONKS", "PA", "17572"},
                             {"STRASBURG", "PA", "17579"},
                             {"WILLOW STREET", "PA", "17584"},
                             {"LANCASTER", "PA", "17601"},
                             {"LANCASTER", "PA", "17602"},
                             {"LANCASTER", "PA", "17603"}};
const Town FarTowns[] = {{"CHERRY HILL", "NJ", "08002"}, {"BALTIMORE", "MD", "21210"},
                         {"WILMINGTON", "DE", "19803"},  {"NAPLES", "FL", "34102"},
                         {"SARASOTA", "FL", "34236"},    {"RICHMOND", "VA", "23226"},
                         {"ALBANY", "NY", "12203"},      {"COLUMBUS", "OH", "43215"},
                         {"FREDERICK", "MD", "21701"},   {"PRINCETON", "NJ", "08540"}};
const char* const TownStreets[] = {"N QUEEN ST", "E KING ST",      "MARKET ST", "HIGH ST",
                                   "PARK AVE",   "ELM ST",         "OAK LN",    "2ND ST",
                                   "BROAD ST",   "WASHINGTON AVE", "RIDGE RD",  "LAKE DR"};
const char* const Occupations[] = {"LABORER", "TEACHER",   "NURSE",      "FARMER",
                                   "CLERK",   "MECHANIC",  "CARPENTER",  "ENGINEER",
                                   "SALES",   "DRIVER",    "ACCOUNTANT", "ELECTRICIAN",
                                   "MANAGER", "HOMEMAKER", "RETIRED",    "STUDENT"};

const char* const AllStates[] = {"AK", "AL", "AR", "AZ", "CA", "CO", "CT", "DC", "DE", "FL", "GA",
                                 "HI", "IA", "ID", "IL", "IN", "KS", "KY", "LA", "MA", "MD", "ME",
                                 "MI", "MN", "MO", "MS", "MT", "NC", "ND", "NE", "NH", "NJ", "NM",
                                 "NV", "NY", "OH", "OK", "OR", "PA", "RI", "SC", "SD", "TN", "TX",
                                 "UT", "VA", "VT", "WA", "WI", "WV", "WY"};

struct LandUseCode {
    const char* code;
    const char* description;
};
const LandUseCode LandUses[] = {{"RES", "RESIDENTIAL"},    {"FRM", "FARM"},
                                {"COM", "COMMERCIAL"},     {"IND", "INDUSTRIAL"},
                                {"VAC", "VACANT LAND"},    {"APT", "APARTMENTS"},
                                {"MH", "MOBILE HOME"},     {"EXM", "EXEMPT"},
                                {"CG", "CLEAN AND GREEN"}, {"INS", "INSTITUTIONAL"}};

// Mortgage companies that pay escrowed taxes with one check per mailing.
struct EscrowCompany {
    const char* name;
    const char* addr1;
    const char* city;
    const char* state;
    const char* zip;
    const char* earlyCheck;
    const char* lateCheck;
};
const EscrowCompany EscrowCompanies[] = {
    {"KEYSTONE ESCROW SERVICES", "PO BOX 4410", "HARRISBURG", "PA", "17111", "884213", "891077"},
    {"BLUE MOUNTAIN MORTGAGE TAX SVC", "1200 CORPORATE BLVD", "READING", "PA", "19605", "20130423",
     "20130827"},
    {"LIBERTY HOME LOAN TAX DEPT", "PO BOX 9032", "COLUMBUS", "OH", "43215", "4471025", "4480133"},
    {"RED ROSE LENDING ESCROW", "25 N DUKE ST", "LANCASTER", "PA", "17602", "10552", "11038"}};

// The day a mortgage company's check comes in: the companies send theirs one day apart.
QDate escrowDay(const QDate& first, int company) {
    return first.addDays(company);
}

// ---------------------------------------------------------------------------------------------
// Bills and receipts in memory
// ---------------------------------------------------------------------------------------------

// The real-estate lines in column order, and the body each belongs to.
const char* const LineColumns[9][3] = {
    {"DCounty", "County", "PCounty"},      {"DLibrary", "Library", "PLibrary"},
    {"DC1Face", "C1Face", "PC1Face"},      {"DTwp", "Twp", "PTwp"},
    {"DS1Face", "S1Face", "PS1Face"},      {"DS2Face", "S2Face", "PS2Face"},
    {"DS3Face", "S3Face", "PS3Face"},      {"DSchool", "School", "PSchool"},
    {"DSch1Face", "Sch1Face", "PSch1Face"}};
const char LineBody[9] = {'C', 'C', 'C', 'T', 'T', 'T', 'T', 'S', 'S'};
const char* const InstallmentColumns[6] = {"Payment1",    "Payment2",    "Payment3",
                                           "PenPayment1", "PenPayment2", "PenPayment3"};

// The per capita lines: county, township, school; per capita then occupation.
const char* const PcLineColumns[6][3] = {
    {"DCPerCapita", "CPerCapita", "PCPerCapita"}, {"DCOccupation", "COccupation", "PCOccupation"},
    {"DTPerCapita", "TPerCapita", "PTPerCapita"}, {"DTOccupation", "TOccupation", "PTOccupation"},
    {"DSPerCapita", "SPerCapita", "PSPerCapita"}, {"DSOccupation", "SOccupation", "PSOccupation"}};
const char PcLineBody[6] = {'C', 'C', 'T', 'T', 'S', 'S'};

struct Address {
    QString addr1;
    QString addr2 = QStringLiteral(" ");
    QString city;
    QString state;
    QString zip;
    QString zip2 = QStringLiteral(" ");
};

// The mailing address of a bill as billed and after its address change, if any.
struct MailHistory {
    Address billed;
    std::optional<Address> moved;
    QDate movedOn;

    const Address& at(const QDate& day) const { return moved && day >= movedOn ? *moved : billed; }
};

// One image of a real-estate bill: the master row, or an adjustment of it.
struct ReBill {
    QString control;
    QString billNo;
    QString name;
    QString coOwner = QStringLiteral(" ");
    Address mail;
    QString map3, map4, map5;
    QString desc1, desc2, desc3;
    QString acreage;
    QString landUse, lDesc;
    QString deedBook, deedPage;
    qint64 land = 0, impr = 0, mvLand = 0, mvImpr = 0;
    bool exempt = false;
    bool cleanAndGreen = false;
    BillChoices choices;
    RealEstateAmounts amounts;

    std::array<AmountTriple, 9> lines() const {
        return {amounts.county,     amounts.library,    amounts.countySpecial,
                amounts.twp,        amounts.special[0], amounts.special[1],
                amounts.special[2], amounts.school,     amounts.schoolSpecial};
    }
    Money bodyFace(char body) const {
        return body == 'C'   ? amounts.countyFace()
               : body == 'T' ? amounts.twpFace()
                             : amounts.schoolFace();
    }
};

// The pay flags of a bill.
struct PayFlags {
    char c = ' ', t = ' ', s = ' ';
    std::array<char, 3> installment{' ', ' ', ' '};
};

struct Payor {
    QString name;
    Address address;
    QString checknum;
};

struct ReReceipt {
    QDate day;
    QString control, billNo, name, map3, map4, map5;
    int adjNo = 0;
    std::array<Money, 27> amounts{}; // the columns of LineColumns, row by row
    std::array<Money, 6> installments{};
    PayFlags flags;
    Money overage;
    Payor payor;
};

struct Person {
    QString control, billNo;
    QString prefix = QStringLiteral(" "), fname, mname = QStringLiteral(" "), lname,
            suffix = QStringLiteral(" ");
    QString relationship = QStringLiteral(" ");
    QString careOf = QStringLiteral(" ");
    QString streetNumber, streetName;
    Address mail;
    QString occuCode, occuDesc, occuValue, birthdate;
    bool over65 = false;
    bool exempt = false;
    std::array<AmountTriple, 6> lines{};
    PayFlags flags;

    QString printName() const {
        QStringList parts;
        for (const QString* p : {&prefix, &fname, &mname, &lname, &suffix})
            if (!p->trimmed().isEmpty())
                parts << p->trimmed();
        return parts.join(QLatin1Char(' '));
    }
    Money bodyFace(char body) const {
        Money sum;
        for (int i = 0; i < 6; ++i)
            if (PcLineBody[i] == body)
                sum += lines[i].face;
        return sum;
    }
};

struct PcReceipt {
    QDate day;
    QString control, billNo, name;
    std::array<Money, 18> amounts{};
    PayFlags flags;
    Money overage;
    Payor payor;
};

// The receipt columns of one line paid at a period: face, discount - face, penalty - face.
void TakeLine(Money* columns, const AmountTriple& line, char period) {
    columns[0] = period == 'D' ? line.discount - line.face : Money();
    columns[1] = line.face;
    columns[2] = period == 'P' ? line.penalty - line.face : Money();
}

// A Recnum: the day and the counter as "0000", held in twelve characters, so that a counter of
// 10000 and more loses its last digit as the desk's field does.
QString Recnum(const QDate& day, int counter) {
    return (day.toString(QStringLiteral("yyyyMMdd")) + Digits(counter, 4)).left(12);
}

QString PadBillNo(int number) {
    return PadFormat(double(number), "####0");
}

// ---------------------------------------------------------------------------------------------
// The generator
// ---------------------------------------------------------------------------------------------

// The columns every receipt has alike: what was taken beyond the lines, who paid and how, the
// bodies paid, and the distribution keys of a receipt not yet distributed.
void writePayment(TableWriter& w, const Payor& payor, Money overage, const PayFlags& flags) {
    const QString undistributed(6, QLatin1Char(' '));
    w.money("Overage", overage);
    w.money("Refund", Money());
    w.text("Payor", payor.name);
    w.text("PAddr1", payor.address.addr1);
    w.text("PAddr2", payor.address.addr2);
    w.text("PCity", payor.address.city);
    w.text("PState", payor.address.state);
    w.text("PZipCode", payor.address.zip);
    w.text("PZipCode2", payor.address.zip2);
    w.text("Checknum", payor.checknum);
    w.text("CPayFlag", Flag(flags.c));
    w.text("TPayFlag", Flag(flags.t));
    w.text("SPayFlag", Flag(flags.s));
    w.text("CDisbNum", undistributed);
    w.text("TDisbNum", undistributed);
    w.text("SDisbNum", undistributed);
}

class DemoGenerator {
public:
    DemoGenerator(QSqlDatabase db, const DemoOptions& options)
        : m_db(db), m_options(options), m_cal(MakeCalendar(options)), m_rates(DemoRates()),
          m_perCapitaLines(PerCapitaLines()),
          m_reShare(std::min(1.0, ReceiptsPerDuplicate / (options.parcels * 1.7 + 1))),
          m_pcShare(std::min(1.0, ReceiptsPerDuplicate / (options.persons * 1.0 + 1))) {}

    bool run(QString* error);

private:
    bool fail(const QString& why) {
        if (m_error.isEmpty())
            m_error = why;
        return false;
    }
    bool exec(const QString& sql) {
        QSqlQuery q(m_db);
        return q.exec(sql) || fail(q.lastError().text() + QStringLiteral(" [") + sql + u']');
    }
    bool check(const TableWriter& w) { return w.error().isEmpty() || fail(w.error()); }

    bool dropIndexes(QStringList* creations);
    bool writeLookups();
    bool writeMillfile();
    bool writeParcels();
    bool writePersons();

    // Real estate.
    ReBill makeParcel(Rng& rng, int sheet, int parcel, bool mustBeTaxable);
    void computeAmounts(ReBill& bill) const;
    Address mailingAddress(Rng& rng, const QString& location, int street, bool atProperty);
    QString ownerName(Rng& rng, QString* coOwner);
    void payParcel(Rng& rng, const ReBill& bill, int adjNo, const QDate& earliest, int escrow,
                   const MailHistory& mail, PayFlags& flags);
    void writeBillImage(TableWriter& w, const ReBill& bill);
    bool writeReReceipts();

    // Per capita.
    Person makePerson(Rng& rng);
    void payPerson(Rng& rng, const Person& person, const QDate& earliest, PayFlags& flags);
    bool writePcReceipts();

    // A working day for a payment of a body billed on the frame, with the period chosen by the
    // weights, not before earliest and not after the last working day of the demo. An invalid
    // date when no such day is left.
    QDate paymentDay(Rng& rng, const Frame& frame, const QDate& earliest, double discount,
                     double face, double penalty);
    static QDate workingDay(Rng& rng, QDate from, QDate to);
    Payor ownerPayor(Rng& rng, const QString& name, const Address& address);

    QSqlDatabase m_db;
    DemoOptions m_options;
    Calendar m_cal;
    RealEstateRates m_rates;
    std::array<AmountTriple, 6> m_perCapitaLines; // of every taxable person
    QString m_error;
    std::vector<ReReceipt> m_reReceipts;
    std::vector<PcReceipt> m_pcReceipts;
    int m_reAdded = 0;
    int m_pcAdded = 0;
    // A receipt number holds a four-digit counter, so a year takes fewer than 10,000 receipts
    // per duplicate; a large demo has correspondingly fewer payers.
    static constexpr double ReceiptsPerDuplicate = 9000;
    double m_reShare = 1; // share of parcels whose owners have paid so far
    double m_pcShare = 1; // share of per capita payments taken so far
};

QDate DemoGenerator::workingDay(Rng& rng, QDate from, QDate to) {
    if (!from.isValid() || !to.isValid() || from > to)
        return {};
    for (int tries = 0; tries < 6; ++tries) {
        const QDate day = from.addDays(rng.between(0, from.daysTo(to)));
        if (day.dayOfWeek() <= 5)
            return day;
    }
    for (QDate day = from; day <= to; day = day.addDays(1))
        if (day.dayOfWeek() <= 5)
            return day;
    return {};
}

QDate DemoGenerator::paymentDay(Rng& rng, const Frame& frame, const QDate& earliest,
                                double discount, double face, double penalty) {
    // Payments begin a few days after the bills are mailed.
    const QDate first = std::max(frame.mail.addDays(4), earliest);
    struct Span {
        QDate from, to;
        double weight;
    };
    std::array<Span, 3> spans{
        Span{first, frame.discountEnd, discount},
        Span{std::max(first, frame.discountEnd.addDays(1)), frame.penaltyStart.addDays(-1), face},
        Span{std::max(first, frame.penaltyStart), m_cal.lastWorkingDay, penalty}};
    double total = 0;
    for (Span& s : spans) {
        s.to = std::min(s.to, m_cal.lastWorkingDay);
        if (s.from > s.to)
            s.weight = 0;
        total += s.weight;
    }
    if (total <= 0)
        return {};
    double u = rng.unit() * total;
    int chosen = 0;
    for (int i = 0; i < 3; ++i) {
        if (spans[i].weight <= 0)
            continue;
        chosen = i;
        if (u < spans[i].weight)
            break;
        u -= spans[i].weight;
    }
    const Span& s = spans[chosen];
    // Many pay in the last days before the discount ends.
    if (chosen == 0 && rng.chance(0.4))
        return workingDay(rng, std::max(s.from, s.to.addDays(-10)), s.to);
    return workingDay(rng, s.from, s.to);
}

// ---- Lookups and rates -----------------------------------------------------------------------

bool DemoGenerator::writeLookups() {
    {
        TableWriter w(m_db, QStringLiteral("tbl_County"));
        w.text("County", "Kestrelvale");
        w.text("Addr2", "Tax Claim Bureau, 150 Court Street");
        w.text("City", "Ephrata");
        w.text("State", "PA");
        w.text("ZipCode", "17522");
        if (!w.insert())
            return check(w);
    }
    {
        TableWriter w(m_db, QStringLiteral("tbl_District"));
        w.text("District", District);
        w.text("Ward", Ward);
        w.integer("IntNo", 0);
        if (!w.insert())
            return check(w);
    }
    {
        struct Municipality {
            const char *district, *ward, *name, *kind, *school;
        };
        const Municipality list[] = {{"20", "1", "KESTREL CITY", "C", "KESTREL CITY"},
                                     {"21", "1", "AMBERFIELD BOROUGH", "B", "AMBERFIELD AREA"},
                                     {"22", "1", "CEDAR HOLLOW TOWNSHIP", "T", "AMBERFIELD AREA"},
                                     {"25", "1", "FOX CHASE TOWNSHIP", "T", "KESTREL VALLEY"},
                                     {"27", "1", "MILLBROOK TOWNSHIP", "T", "KESTREL VALLEY"},
                                     {"27", "2", "MILLBROOK BOROUGH", "B", "KESTREL VALLEY"},
                                     {"30", "1", "LAUREL RIDGE TOWNSHIP", "T", "CONOY HILLS"},
                                     {"31", "1", "STONY CREEK BOROUGH", "B", "CONOY HILLS"},
                                     {"33", "1", "WEST HEMLOCK TOWNSHIP", "T", "CONOY HILLS"}};
        TableWriter w(m_db, QStringLiteral("tbl_Twpboro"));
        for (const Municipality& m : list) {
            w.text("District", m.district);
            w.text("Ward", m.ward);
            w.text("TwpBoro", m.name);
            w.text("BTFlag", m.kind);
            w.text("SchoolName", m.school);
            if (!w.insert())
                return check(w);
        }
    }
    {
        TableWriter w(m_db, QStringLiteral("tbl_States"));
        for (const char* state : AllStates) {
            w.text("State", state);
            if (!w.insert())
                return check(w);
        }
    }
    {
        TableWriter w(m_db, QStringLiteral("tbl_ZipCodes"));
        for (const Town& t : AreaZipCodes) {
            w.text("ZipCode", t.zip);
            w.text("City", t.city);
            w.text("State", t.state);
            if (!w.insert())
                return check(w);
        }
    }
    {
        TableWriter w(m_db, QStringLiteral("tbl_LandUse"));
        for (const LandUseCode& u : LandUses) {
            w.text("LandUse", u.code);
            w.text("Desc1", u.description);
            if (!w.insert())
                return check(w);
        }
    }
    {
        TableWriter w(m_db, QStringLiteral("tbl_Printers"));
        for (const char* type : {"Letter", "Receipt", "TVLetter"}) {
            w.text("PrinterType", type);
            w.text("DeviceName", "PDF");
            if (!w.insert())
                return check(w);
        }
    }
    {
        // The office's own configuration values.
        TableWriter w(m_db, QStringLiteral("tbl_Settings"));
        w.text("Name", "TaxClaimBureauPhone");
        w.text("Value", "(717) 555-0186");
        if (!w.insert())
            return check(w);
    }
    {
        TableWriter w(m_db, QStringLiteral("Spectax"));
        auto add = [&](const char* district, const char* ward, const SpecialTax& tax) {
            w.text("District", district);
            w.text("Ward", ward);
            w.text("TaxKey", tax.key);
            w.text("Desc1", tax.description);
            w.real("Mill", tax.mill);
            w.text("ExFlag", "N");
            w.text("SpecFlag", "N");
            w.text("TaxYear", m_cal.taxYear);
            return w.insert();
        };
        for (const SpecialTax& tax : TwpSpecials)
            if (!add(District, Ward, tax))
                return check(w);
        if (!add("00", "0", CountySpecial))
            return check(w);
    }
    return true;
}

bool DemoGenerator::writeMillfile() {
    TableWriter w(m_db, QStringLiteral("Millfile"));
    // The county row: the S columns are the county's.
    w.text("District", "00");
    w.text("Ward", "0");
    w.text("TaxYear", m_cal.taxYear);
    w.real("SMR", CountyMill);
    w.real("S1MR", CountySpecialMill);
    w.text("S1TaxName", CountySpecialName);
    w.real("SD", CountyDiscount);
    w.real("SP", CountyPenalty);
    w.real("SPC", CountyPerCapita);
    w.real("SMO", CountyOccupation);
    w.real("PCSD", CountyPcDiscount);
    w.real("PCSP", CountyPcPenalty);
    if (!w.insert())
        return check(w);

    // The township's row, with its school district's columns.
    w.text("District", District);
    w.text("Ward", Ward);
    w.text("TaxYear", m_cal.taxYear);
    w.real("TMR", TwpMill);
    w.real("LMR", LibraryMill);
    w.real("TD", TwpDiscount);
    w.real("TP", TwpPenalty);
    w.real("TPC", TwpPerCapita);
    w.real("TMO", TwpOccupation);
    w.real("PCTD", TwpPcDiscount);
    w.real("PCTP", TwpPcPenalty);
    w.real("SMR", SchoolMill);
    w.real("S1MR", SchoolSpecialMill);
    w.text("S1TaxName", SchoolSpecialName);
    w.real("SD", SchoolDiscount);
    w.real("SP", SchoolPenalty);
    w.real("SPC", SchoolPerCapita);
    w.real("SMO", SchoolOccupation);
    w.real("PCSD", SchoolPcDiscount);
    w.real("PCSP", SchoolPcPenalty);
    w.text("BillCounty", "E");
    w.text("BillTwp", "E");
    w.text("BillSchool", "L");
    w.money("Tolerance", Money::fromCents(ToleranceCents));

    // Early billing: county and township bills.
    w.date("MailDate", m_cal.early.mail);
    w.date("DiscDate", m_cal.early.discountEnd);
    w.date("FaceDate1", m_cal.early.discountEnd.addDays(1));
    w.date("FaceDate2", m_cal.early.penaltyStart.addDays(-1));
    w.date("PenDate", m_cal.early.penaltyStart);
    w.date("TaxDate", m_cal.taxClaim);
    w.date("LastDate", m_cal.lastToPay);
    w.date("Payment1Date", m_cal.installments[0]);
    w.date("Payment2Date", m_cal.installments[1]);
    w.date("Payment3Date", m_cal.installments[2]);
    // Late billing: school bills, with the installment due dates.
    w.date("LateMailDate", m_cal.late.mail);
    w.date("LateDiscDate", m_cal.late.discountEnd);
    w.date("LateFaceDate1", m_cal.late.discountEnd.addDays(1));
    w.date("LateFaceDate2", m_cal.late.penaltyStart.addDays(-1));
    w.date("LatePenDate", m_cal.late.penaltyStart);
    w.date("LateTaxDate", m_cal.taxClaim);
    w.date("LateLastDate", m_cal.lastToPay);
    w.date("LatePayment1Date", m_cal.installments[0]);
    w.date("LatePayment2Date", m_cal.installments[1]);
    w.date("LatePayment3Date", m_cal.installments[2]);

    const char* const early[7] = {"KAREN L. WEAVER",
                                  "1850 MILLBROOK RD",
                                  "LITITZ, PA 17543-9211",
                                  "TUESDAY     9:00 AM - 12:00 NOON",
                                  "THURSDAY    1:00 PM -  7:00 PM",
                                  "APRIL 30    9:00 AM -  7:00 PM",
                                  "OR BY APPOINTMENT"};
    const char* const late[7] = {"KAREN L. WEAVER",
                                 "1850 MILLBROOK RD",
                                 "LITITZ, PA 17543-9211",
                                 "TUESDAY     9:00 AM - 12:00 NOON",
                                 "THURSDAY    1:00 PM -  7:00 PM",
                                 "AUGUST 30   9:00 AM -  7:00 PM",
                                 "OR BY APPOINTMENT"};
    const char* const lineColumns[7] = {"Line1", "Line2", "Line3", "Line4",
                                        "Line5", "Line6", "Line7"};
    const char* const lateLineColumns[7] = {"LateLine1", "LateLine2", "LateLine3", "LateLine4",
                                            "LateLine5", "LateLine6", "LateLine7"};
    for (int i = 0; i < 7; ++i) {
        w.text(lineColumns[i], early[i]);
        w.text(lateLineColumns[i], late[i]);
    }
    w.text("TCPhone", "(717) 555-0142");
    w.text("LateTCPhone", "(717) 555-0142");
    w.boolean("PrintEscrow", true);
    w.boolean("LatePrintEscrow", true);
    w.text("SchoolFormula", "N");
    w.real("SchoolMarketRatio", SchoolMarketRatio);
    w.real("SchoolStebRatio", SchoolStebRatio);
    w.text("School1Formula", "N");
    w.real("School1MarketRatio", SchoolMarketRatio);
    w.real("School1StebRatio", SchoolStebRatio);
    w.money("HSExclusion", Money::fromDollars(HomesteadExclusion));
    w.money("FSExclusion", Money::fromDollars(FarmsteadExclusion));
    if (!w.insert())
        return check(w);
    return true;
}

// ---- Real estate -----------------------------------------------------------------------------

QString DemoGenerator::ownerName(Rng& rng, QString* coOwner) {
    const QString last = L(rng.pick(Surnames));
    auto person = [&](const QString& surname, bool male) {
        return surname + u' ' + L(male ? rng.pick(MaleNames) : rng.pick(FemaleNames)) + u' ' +
               L(rng.pick(Initials));
    };
    const double u = rng.unit();
    if (u < 0.55) {
        // Husband and wife under one surname.
        return person(last, true) + QStringLiteral(" & ") + L(rng.pick(FemaleNames)) + u' ' +
               L(rng.pick(Initials));
    }
    if (u < 0.62) {
        *coOwner = person(L(rng.pick(Surnames)), rng.chance(0.5));
        return person(last, rng.chance(0.5));
    }
    if (u < 0.86) {
        QString name = person(last, rng.chance(0.5));
        if (rng.chance(0.06))
            name += u' ' + L(rng.pick(Suffixes));
        return name;
    }
    if (u < 0.90)
        return person(last, rng.chance(0.5)) + QStringLiteral(" ESTATE");
    if (u < 0.94) {
        *coOwner = person(last, rng.chance(0.5)) + QStringLiteral(" TRUSTEE");
        return last + QStringLiteral(" FAMILY TRUST");
    }
    if (u < 0.97)
        return last + u' ' + L(rng.pick(BusinessWords));
    return L(rng.pick(NamedBusinesses));
}

Address DemoGenerator::mailingAddress(Rng& rng, const QString& location, int street,
                                      bool atProperty) {
    Address a;
    const Town* town = &LocalTowns[street % 3];
    if (atProperty) {
        a.addr1 = location;
    } else {
        const double u = rng.unit();
        town = u < 0.7 ? &AreaZipCodes[rng.between(0, std::size(AreaZipCodes) - 1)]
                       : &FarTowns[rng.between(0, std::size(FarTowns) - 1)];
        a.addr1 =
            rng.chance(0.15)
                ? QStringLiteral("PO BOX %1").arg(rng.between(1, 2999))
                : QStringLiteral("%1 %2").arg(rng.between(1, 2400)).arg(L(rng.pick(TownStreets)));
        if (rng.chance(0.1))
            a.addr2 = QStringLiteral("APT %1").arg(rng.between(1, 40));
    }
    a.city = L(town->city);
    a.state = L(town->state);
    a.zip = L(town->zip);
    if (rng.chance(0.6))
        a.zip2 = Digits(rng.between(1, 9999), 4);
    return a;
}

ReBill DemoGenerator::makeParcel(Rng& rng, int sheet, int parcel, bool mustBeTaxable) {
    ReBill b;
    // Categories by share of the duplicate.
    enum Kind { Residential, Farm, Commercial, Industrial, Vacant, Apartments, MobileHome, Exempt };
    const double u = rng.unit();
    Kind kind = u < 0.72    ? Residential
                : u < 0.80  ? Farm
                : u < 0.85  ? Commercial
                : u < 0.865 ? Industrial
                : u < 0.935 ? Vacant
                : u < 0.96  ? Apartments
                : u < 0.985 ? MobileHome
                            : Exempt;
    if (mustBeTaxable && kind == Exempt)
        kind = Residential;

    b.map3 = QLatin1String(District) + Digits(sheet, 2);
    b.map4 = Digits(parcel * 10, 4);
    b.map5 = kind == Apartments && rng.chance(0.3) ? Digits(rng.between(1, 24), 3)
                                                   : QStringLiteral("000");
    b.desc1 = QLatin1String(District) + u'-' + Digits(sheet, 2) + u'-' + b.map4 + u'-' + b.map5;
    const int street = int(rng.between(0, std::size(Streets) - 1));
    const QString location = QStringLiteral("%1 %2")
                                 .arg(rng.between(1, 399) * 10 + rng.between(0, 1) * 5)
                                 .arg(L(Streets[street]));
    b.desc2 = location;

    qint64 land = 0, impr = 0;
    bool occupied = false;
    const char* code = "RES";
    switch (kind) {
    case Residential:
        land = rng.rounded(15000, 90000, 100);
        impr = rng.rounded(60000, 320000, 100);
        b.acreage = QString::number(rng.between(15, 200) / 100.0, 'f', 2);
        b.desc3 = L(rng.pick({"LOT & DWELLING", "LOT & 2 STY DWELLING", "LOT & RANCH DWELLING",
                              "LOT & TWIN DWELLING", "TOWNHOUSE", "LOT & SPLIT LEVEL DWG"}));
        occupied = rng.chance(0.85);
        code = "RES";
        break;
    case Farm:
        land = rng.rounded(120000, 600000, 100);
        impr = rng.rounded(80000, 350000, 100);
        b.acreage = QString::number(rng.between(25000, 180000) / 1000.0, 'f', 3);
        b.desc3 = L(rng.pick(
            {"FARM & BUILDINGS", "FARM - DAIRY", "FARM - POULTRY HOUSES", "FARM & DWELLING"}));
        occupied = rng.chance(0.9);
        b.cleanAndGreen = rng.chance(0.7);
        code = b.cleanAndGreen ? "CG" : "FRM";
        break;
    case Commercial:
        land = rng.rounded(60000, 400000, 100);
        impr = rng.rounded(150000, 1800000, 100);
        b.acreage = QString::number(rng.between(50, 600) / 100.0, 'f', 2);
        b.desc3 = L(rng.pick(
            {"COMMERCIAL BLDG", "RETAIL STORE", "OFFICE BUILDING", "GARAGE & SHOP", "RESTAURANT"}));
        code = "COM";
        break;
    case Industrial:
        land = rng.rounded(150000, 600000, 100);
        impr = rng.rounded(400000, 2500000, 100);
        b.acreage = QString::number(rng.between(300, 2500) / 100.0, 'f', 2);
        b.desc3 = L(rng.pick({"MANUFACTURING PLANT", "WAREHOUSE"}));
        code = "IND";
        break;
    case Vacant:
        land = rng.rounded(8000, 70000, 100);
        b.acreage = QString::number(rng.between(20, 1500) / 100.0, 'f', 2);
        b.desc3 = L(rng.pick({"VACANT LOT", "WOODLAND", "BUILDING LOT"}));
        code = "VAC";
        break;
    case Apartments:
        land = rng.rounded(40000, 150000, 100);
        impr = rng.rounded(200000, 900000, 100);
        b.acreage = QString::number(rng.between(50, 400) / 100.0, 'f', 2);
        b.desc3 = QStringLiteral("APARTMENT BLDG %1 UNITS").arg(rng.between(4, 24));
        code = "APT";
        break;
    case MobileHome:
        impr = rng.rounded(18000, 60000, 100);
        b.acreage = QStringLiteral("0");
        b.desc3 = QStringLiteral("MOBILE HOME");
        occupied = rng.chance(0.8);
        code = "MH";
        break;
    case Exempt:
        land = rng.rounded(30000, 250000, 100);
        impr = rng.rounded(100000, 900000, 100);
        b.acreage = QString::number(rng.between(100, 1200) / 100.0, 'f', 2);
        b.desc3 = QStringLiteral("EXEMPT PROPERTY");
        b.exempt = true;
        code = "EXM";
        break;
    }
    b.land = land;
    b.impr = impr;
    // Market values from the last countywide reassessment, with the years since.
    b.mvLand = (land * rng.between(100, 125) / 100) / 100 * 100;
    b.mvImpr = (impr * rng.between(100, 125) / 100) / 100 * 100;
    b.landUse = L(code);
    for (const LandUseCode& lu : LandUses)
        if (qstrcmp(lu.code, code) == 0)
            b.lDesc = L(lu.description);
    b.deedBook = QString::number(rng.between(1200, 6900));
    b.deedPage = Digits(rng.between(1, 999), 4);

    if (kind == Exempt) {
        b.name = L(rng.pick(ExemptOwners));
        b.mail = mailingAddress(rng, location, street, true);
    } else {
        QString coOwner;
        b.name = kind == Commercial || kind == Industrial
                     ? (rng.chance(0.7) ? L(rng.pick(NamedBusinesses))
                                        : L(rng.pick(Surnames)) + u' ' + L(rng.pick(BusinessWords)))
                     : ownerName(rng, &coOwner);
        if (!coOwner.isEmpty())
            b.coOwner = coOwner;
        b.mail = mailingAddress(rng, location, street, occupied);
    }

    // Act 1: approved homesteads are owner-occupied, farmsteads on farms.
    BillChoices& c = b.choices;
    if (occupied && (kind == Residential || kind == MobileHome) && rng.chance(0.7)) {
        c.act1 = true;
        c.homestead = Money::fromDollars(HomesteadExclusion);
    } else if (occupied && kind == Farm && rng.chance(0.6)) {
        c.act1 = true;
        c.homestead = Money::fromDollars(HomesteadExclusion);
        c.farmstead = Money::fromDollars(FarmsteadExclusion);
    }
    // Approved homesteads may pay the school tax in installments; others on request.
    c.installments = !b.exempt && (c.act1 || rng.chance(0.1));
    computeAmounts(b);
    return b;
}

void DemoGenerator::computeAmounts(ReBill& bill) const {
    bill.amounts = bill.exempt
                       ? RealEstateAmounts{}
                       : ComputeRealEstateAmounts(bill.land, bill.impr, m_rates, bill.choices);
}

Payor DemoGenerator::ownerPayor(Rng& rng, const QString& name, const Address& address) {
    Payor p;
    p.name = name;
    p.address = address;
    const double u = rng.unit();
    p.checknum = u < 0.3    ? QStringLiteral("CASH")
                 : u < 0.35 ? QStringLiteral("MONEY ORDER %1").arg(rng.between(1000000, 9999999))
                            : QString::number(rng.between(101, 9999));
    return p;
}

// Payments of one bill as it stands: county and township together on the early bill, the school
// on the late bill, in full or by installments.
void DemoGenerator::payParcel(Rng& rng, const ReBill& bill, int adjNo, const QDate& earliest,
                              int escrow, const MailHistory& mail, PayFlags& flags) {
    if (m_reShare < 1 && !rng.chance(m_reShare))
        return;
    const auto lines = bill.lines();
    auto receipt = [&](const QDate& day) {
        ReReceipt r;
        r.day = day;
        r.control = bill.control;
        r.billNo = bill.billNo;
        r.name = bill.name;
        r.map3 = bill.map3;
        r.map4 = bill.map4;
        r.map5 = bill.map5;
        r.adjNo = adjNo;
        if (escrow >= 0) {
            const EscrowCompany& e = EscrowCompanies[escrow];
            r.payor.name = L(e.name);
            r.payor.address.addr1 = L(e.addr1);
            r.payor.address.city = L(e.city);
            r.payor.address.state = L(e.state);
            r.payor.address.zip = L(e.zip);
            r.payor.checknum = L(day < m_cal.late.mail ? e.earlyCheck : e.lateCheck);
        } else {
            r.payor = ownerPayor(rng, bill.name, mail.at(day));
            // Now and then a payor rounds up or falls a little short, within the tolerance.
            if (rng.chance(0.05)) {
                std::int64_t cents = rng.between(-ToleranceCents, ToleranceCents);
                r.overage = Money::fromCents(cents == 0 ? 1 : cents);
            }
        }
        return r;
    };
    auto takeBody = [&](ReReceipt& r, char body, char period) {
        for (int i = 0; i < 9; ++i)
            if (LineBody[i] == body)
                TakeLine(&r.amounts[i * 3], lines[i], period);
    };

    // County and township: billed early.
    const bool countyDue = bill.bodyFace('C') > Money();
    const bool twpDue = bill.bodyFace('T') > Money();
    if (countyDue || twpDue) {
        QDate day;
        if (escrow >= 0 && escrowDay(m_cal.escrowEarly, escrow) >= earliest)
            day = escrowDay(m_cal.escrowEarly, escrow);
        else if (rng.chance(0.8))
            day = paymentDay(rng, m_cal.early, earliest, 0.68, 0.2, 0.12);
        if (day.isValid()) {
            ReReceipt r = receipt(day);
            const bool countyOnly = escrow < 0 && countyDue && twpDue && rng.chance(0.02);
            if (countyDue) {
                r.flags.c = flags.c = PeriodAt(m_cal.early, day);
                takeBody(r, 'C', r.flags.c);
            }
            if (twpDue && !countyOnly) {
                r.flags.t = flags.t = PeriodAt(m_cal.early, day);
                takeBody(r, 'T', r.flags.t);
            }
            m_reReceipts.push_back(std::move(r));
        }
    }

    // School: billed late.
    if (bill.bodyFace('S') > Money()) {
        const Installments& inst = bill.amounts.installments;
        if (escrow < 0 && inst.offered() && rng.chance(0.3)) {
            QDate day = workingDay(rng, std::max(m_cal.late.mail.addDays(4), earliest),
                                   std::min(m_cal.installments[0], m_cal.lastWorkingDay));
            for (int n = 0; n < 3 && day.isValid(); ++n) {
                ReReceipt r = receipt(day);
                r.overage = Money();
                const char code = day <= m_cal.installments[n] ? 'F' : 'P';
                r.flags.s = flags.s = 'I';
                r.flags.installment[n] = flags.installment[n] = code;
                r.installments[n] = inst.payment[n];
                r.installments[3 + n] =
                    code == 'P' ? inst.penPayment[n] - inst.payment[n] : Money();
                r.amounts[7 * 3 + 1] = inst.payment[n]; // School holds the installment's face
                m_reReceipts.push_back(std::move(r));
                // Some pay the next installment ahead of its date.
                if (!rng.chance(0.35))
                    break;
                day = workingDay(rng, day.addDays(14), m_cal.lastWorkingDay);
            }
        } else {
            QDate day;
            if (escrow >= 0 && escrowDay(m_cal.escrowLate, escrow) >= earliest)
                day = escrowDay(m_cal.escrowLate, escrow);
            else if (rng.chance(0.72))
                day = paymentDay(rng, m_cal.late, earliest, 0.82, 0.18, 0);
            if (day.isValid()) {
                ReReceipt r = receipt(day);
                r.flags.s = flags.s = PeriodAt(m_cal.late, day);
                takeBody(r, 'S', r.flags.s);
                m_reReceipts.push_back(std::move(r));
            }
        }
    }
}

void DemoGenerator::writeBillImage(TableWriter& w, const ReBill& b) {
    w.text("Control", b.control);
    w.text("BillNo", b.billNo);
    w.text("Name", b.name);
    w.text("Map3", b.map3);
    w.text("Map4", b.map4);
    w.text("Map5", b.map5);
    w.text("CoOwner", b.coOwner);
    w.text("Addr1", b.mail.addr1);
    w.text("Addr2", b.mail.addr2);
    w.text("City", b.mail.city);
    w.text("State", b.mail.state);
    w.text("ZipCode", b.mail.zip);
    w.text("ZipCode2", b.mail.zip2);
    w.text("Desc1", b.desc1);
    w.text("Desc2", b.desc2);
    w.text("Desc3", b.desc3);
    w.text("Acreage", b.acreage);
    w.text("LandUse", b.landUse);
    w.text("LDesc", b.lDesc);
    w.integer("AssLand", b.land);
    w.integer("AssImpr", b.impr);
    w.text("DeedBook", b.deedBook);
    w.text("DeedPage", b.deedPage);
    const auto lines = b.lines();
    for (int i = 0; i < 9; ++i) {
        w.money(LineColumns[i][0], lines[i].discount);
        w.money(LineColumns[i][1], lines[i].face);
        w.money(LineColumns[i][2], lines[i].penalty);
    }
    const Installments& inst = b.amounts.installments;
    for (int n = 0; n < 3; ++n) {
        w.money(InstallmentColumns[n], inst.payment[n]);
        w.money(InstallmentColumns[3 + n], inst.penPayment[n]);
    }
    w.text("HFFlag", b.choices.act1 ? "A" : " ");
    w.text("HomesteadFlag", b.amounts.homesteadFlag);
    w.text("FarmsteadFlag", b.amounts.farmsteadFlag);
    w.money("HSExclusion", b.amounts.exclusion.homestead);
    w.money("FSExclusion", b.amounts.exclusion.farmstead);
    w.money("DExcFace", b.amounts.exclusion.excFace.discount);
    w.money("ExcFace", b.amounts.exclusion.excFace.face);
    w.money("PExcFace", b.amounts.exclusion.excFace.penalty);
}

bool DemoGenerator::writeParcels() {
    const int total = m_options.parcels;
    // Bills added after billing: a few per thousand, none on a tiny duplicate.
    m_reAdded = total >= 20 ? std::max(1, total / 250) : 0;
    const int billed = total - m_reAdded;
    const int sheets = std::clamp(billed / 60, 1, 99);
    const qint64 controlStep = std::clamp<qint64>(700000 / std::max(billed, 1), 1, 17);

    // Which bills carry which story.
    enum Role : char { Plain, TaxClaim, Exonerated, Adjusted };
    std::vector<char> role(std::size_t(billed), Plain);
    std::vector<char> addressChange(std::size_t(billed), 0);
    Rng pickRng(m_options.seed, 1);
    {
        std::vector<int> order(static_cast<std::size_t>(billed));
        for (int i = 0; i < billed; ++i)
            order[std::size_t(i)] = i;
        // A partial shuffle: the first k of order are k distinct bills.
        int taken = 0;
        auto take = [&](int count, Role r) {
            for (int k = 0; k < count && taken < billed; ++k, ++taken) {
                const int j = int(pickRng.between(taken, billed - 1));
                std::swap(order[std::size_t(taken)], order[std::size_t(j)]);
                role[std::size_t(order[std::size_t(taken)])] = r;
            }
        };
        take(billed >= 1 ? 1 : 0, TaxClaim);
        take(billed >= 50 ? std::max(1, billed / 500) : 0, Exonerated);
        take(billed >= 20 ? std::max(2, billed / 100) : 0, Adjusted);
        const int changes = billed >= 20 ? std::max(2, billed / 80) : 0;
        for (int k = 0; k < changes; ++k)
            addressChange[std::size_t(pickRng.between(0, billed - 1))] = 1;
    }

    TableWriter master(m_db, QStringLiteral("TCMaster"));
    TableWriter adjust(m_db, QStringLiteral("TCAdjust"));
    TableWriter address(m_db, QStringLiteral("TCAddress"));
    TableWriter adds(m_db, QStringLiteral("TCAdds"));
    // The county's late billing file: the address it holds for a few bills whose address
    // changed, mostly the old one (those bills are mailed again by the late billing routine).
    TableWriter lateAddress(m_db, QStringLiteral("TCLateBillAddress"));
    int lateAddresses = 0;
    if (!check(master) || !check(adjust) || !check(address) || !check(adds) || !check(lateAddress))
        return false;

    Rng rng(m_options.seed, 2);
    for (int index = 0; index < total; ++index) {
        const bool added = index >= billed;
        const Role r = added ? Plain : Role(role[std::size_t(index)]);
        // Bills run in map order, sheet by sheet; added parcels are on a new sheet.
        int sheet = sheets + 1;
        int parcel = index - billed + 1;
        if (!added) {
            const qint64 s = qint64(index) * sheets / billed;
            sheet = int(s) + 1;
            parcel = index - int((s * billed + sheets - 1) / sheets) + 1;
        }
        // Bills with a story, and bills added by the collector, are taxable.
        ReBill bill = makeParcel(rng, sheet, parcel, r != Plain || added);
        QDate earliest;
        QDate addDay;
        if (added) {
            const int n = index - billed + 1;
            bill.billNo = QStringLiteral("A") + Digits(n, 4);
            bill.control = QString::number(850000 + n);
            bill.mvLand = bill.mvImpr = 0;
            bill.cleanAndGreen = false;
            addDay = workingDay(rng, m_cal.addFrom, m_cal.addTo);
            earliest = addDay.addDays(1);
        } else {
            bill.billNo = PadBillNo(index + 1);
            bill.control =
                QString::number(100000 + index * controlStep + rng.between(0, controlStep - 1));
        }

        PayFlags flags;
        QString adjFlag = QStringLiteral(" ");
        int adjNo = 0;
        ReBill now = bill;
        if (r == Exonerated || r == Adjusted) {
            adjFlag = QStringLiteral("A");
            adjNo = 1;
            const QDate adjDay = workingDay(rng, m_cal.adjustFrom, m_cal.adjustTo);
            QString reason;
            if (r == Exonerated) {
                reason = QStringLiteral("EXONERATION");
                now.amounts = RealEstateAmounts{};
                now.amounts.exclusion.homestead = bill.amounts.exclusion.homestead;
                now.amounts.exclusion.farmstead = bill.amounts.exclusion.farmstead;
                now.amounts.homesteadFlag = bill.amounts.homesteadFlag;
                now.amounts.farmsteadFlag = bill.amounts.farmsteadFlag;
                flags.c = flags.t = flags.s = 'X';
            } else {
                const double u = rng.unit();
                if (u < 0.5 && now.impr > 0) {
                    reason = QStringLiteral("ASSESSMENT APPEAL");
                    now.impr = now.impr * rng.between(80, 95) / 100 / 100 * 100;
                } else if (u < 0.85) {
                    reason = QStringLiteral("INTERIM ASSESSMENT");
                    now.impr += rng.rounded(15000, 90000, 100);
                } else {
                    reason = QStringLiteral("CLERICAL ERROR");
                    now.land = now.land * rng.between(90, 110) / 100 / 100 * 100;
                }
                computeAmounts(now);
                earliest = adjDay.addDays(1);
            }
            writeBillImage(adjust, now);
            adjust.integer("AdjNo", adjNo);
            adjust.date("AdjDate", adjDay);
            adjust.text("Reason", reason);
            adjust.text("AdjFlag", r == Exonerated ? "X" : "A");
            if (!adjust.insert())
                return check(adjust);
        }

        MailHistory mail{bill.mail, std::nullopt, QDate()};
        QString addrFlag = QStringLiteral(" ");
        if (!added && addressChange[std::size_t(index)]) {
            addrFlag = QStringLiteral("A");
            Address moved = mailingAddress(rng, QString(), 0, false);
            const QDate day = workingDay(rng, m_cal.addressFrom, m_cal.lastWorkingDay);
            const bool usps = rng.chance(0.4);
            address.text("Control", bill.control);
            address.text("BillNo", bill.billNo);
            address.integer("AddrID", 1);
            address.text("Name", now.name);
            address.text("Map3", bill.map3);
            address.text("Map4", bill.map4);
            address.text("Map5", bill.map5);
            address.text("CoOwner", now.coOwner);
            address.text("Addr1", moved.addr1);
            address.text("Addr2", moved.addr2);
            address.text("City", moved.city);
            address.text("State", moved.state);
            address.text("ZipCode", moved.zip);
            address.text("ZipCode2", moved.zip2);
            address.date("ADate", day);
            address.text("Reason", usps ? QStringLiteral("OWNER MOVED USPS Address Change")
                                        : L(rng.pick({"OWNER REQUEST", "RETURNED MAIL",
                                                      "NEW MAILING ADDRESS"})));
            address.text("Reportable", usps || rng.chance(0.5) ? "1" : "0");
            address.text("USPS", usps ? "1" : "0");
            if (!address.insert())
                return check(address);
            if (lateAddresses < 5) {
                const Address& held = lateAddresses < 4 ? bill.mail : moved;
                lateAddress.text("BillNo", bill.billNo);
                lateAddress.text("Name", now.name);
                lateAddress.text("Addr1", held.addr1);
                lateAddress.text("Addr2", held.addr2);
                lateAddress.text("City", held.city);
                lateAddress.text("State", held.state);
                lateAddress.text("ZipCode", held.zip);
                lateAddress.text("ZipCode2", held.zip2);
                if (!lateAddress.insert())
                    return check(lateAddress);
                ++lateAddresses;
            }
            mail.moved = moved;
            mail.movedOn = day;
        }

        if (r == Plain || r == Adjusted) {
            // Escrowed mortgages: mostly homes, paid by the lender at discount.
            const int escrow = !added && bill.landUse == QLatin1String("RES") && rng.chance(0.25)
                                   ? int(rng.between(0, std::size(EscrowCompanies) - 1))
                                   : -1;
            payParcel(rng, now, adjNo, earliest, escrow, mail, flags);
        }

        writeBillImage(master, bill);
        master.text("District", District);
        master.text("Ward", Ward);
        master.integer("MVLand", bill.mvLand);
        master.integer("MVImpr", bill.mvImpr);
        master.text("AdjFlag", adjFlag);
        master.text("CPayFlag", Flag(flags.c));
        master.text("TPayFlag", Flag(flags.t));
        master.text("SPayFlag", Flag(flags.s));
        master.text("Pay1Flag", Flag(flags.installment[0]));
        master.text("Pay2Flag", Flag(flags.installment[1]));
        master.text("Pay3Flag", Flag(flags.installment[2]));
        master.text("CAddrFlag", addrFlag);
        master.text("Exempt", bill.exempt ? "E" : " ");
        master.text("TaxYear", m_cal.taxYear);
        master.text("TaxClaimFlag", r == TaxClaim ? "Y" : " ");
        master.text("CleanAndGreen", bill.cleanAndGreen ? "Y" : " ");
        if (!master.insert())
            return check(master);

        if (added) {
            adds.text("Control", bill.control);
            adds.text("BillNo", bill.billNo);
            adds.date("AdjDate", addDay);
            adds.text("Reason", L(rng.pick({"NEW CONSTRUCTION", "SUBDIVISION - NEW PARCEL",
                                            "OMITTED PROPERTY"})));
            if (!adds.insert())
                return check(adds);
        }
    }
    return writeReReceipts() &&
           exec(QStringLiteral("UPDATE TCBillNum SET BillNum = %1").arg(m_reAdded + 1));
}

bool DemoGenerator::writeReReceipts() {
    // Receipt numbers run in the order the payments were taken.
    std::stable_sort(m_reReceipts.begin(), m_reReceipts.end(),
                     [](const ReReceipt& a, const ReReceipt& b) { return a.day < b.day; });
    TableWriter w(m_db, QStringLiteral("TCReceipt"));
    int counter = 0;
    for (const ReReceipt& r : m_reReceipts) {
        w.text("Control", r.control);
        w.text("BillNo", r.billNo);
        w.integer("AdjNo", r.adjNo);
        w.text("Recnum", Recnum(r.day, ++counter));
        w.text("Name", r.name);
        w.text("Map3", r.map3);
        w.text("Map4", r.map4);
        w.text("Map5", r.map5);
        w.date("RDate", r.day);
        for (int i = 0; i < 27; ++i)
            w.money(LineColumns[i / 3][i % 3], r.amounts[std::size_t(i)]);
        writePayment(w, r.payor, r.overage, r.flags);
        for (int n = 0; n < 6; ++n)
            w.money(InstallmentColumns[n], r.installments[std::size_t(n)]);
        w.text("Pay1Flag", Flag(r.flags.installment[0]));
        w.text("Pay2Flag", Flag(r.flags.installment[1]));
        w.text("Pay3Flag", Flag(r.flags.installment[2]));
        if (!w.insert())
            return check(w);
    }
    return exec(QStringLiteral("UPDATE TCReceiptNum SET ReceiptNum = %1").arg(counter + 1));
}

// ---- Per capita ------------------------------------------------------------------------------

Person DemoGenerator::makePerson(Rng& rng) {
    Person p;
    const bool male = rng.chance(0.5);
    p.lname = L(rng.pick(Surnames));
    p.fname = L(male ? rng.pick(MaleNames) : rng.pick(FemaleNames));
    if (rng.chance(0.8))
        p.mname = L(rng.pick(Initials));
    if (male && rng.chance(0.07))
        p.suffix = L(rng.pick(Suffixes));
    if (rng.chance(0.02))
        p.prefix = QStringLiteral("DR");
    if (rng.chance(0.03))
        p.careOf = QStringLiteral("C/O ") + L(rng.pick(FemaleNames)) + u' ' + p.lname;
    const int street = int(rng.between(0, std::size(Streets) - 1));
    p.streetNumber = QString::number(rng.between(1, 399) * 10 + rng.between(0, 1) * 5);
    p.streetName = L(Streets[street]);
    const Town& town = LocalTowns[street % 3];
    p.mail.addr1 = p.careOf;
    p.mail.addr2 = p.streetNumber + u' ' + p.streetName;
    p.mail.city = L(town.city);
    p.mail.state = L(town.state);
    p.mail.zip = L(town.zip);
    if (rng.chance(0.6))
        p.mail.zip2 = Digits(rng.between(1, 9999), 4);

    const QDate born(int(rng.between(1928, 1995)), int(rng.between(1, 12)),
                     int(rng.between(1, 28)));
    p.birthdate = born.toString(QStringLiteral("MM/dd/yyyy"));
    p.over65 = born.addYears(65) <= m_cal.over65On;
    p.occuDesc = L(p.over65 && rng.chance(0.7) ? "RETIRED" : rng.pick(Occupations));
    p.occuValue = QString::number(rng.between(1, 10) * 50);
    // A few are not taxable at all (status NON): their bill is zero and kept off the labels.
    p.occuCode = rng.chance(0.03) ? QStringLiteral("NON") : QStringLiteral("TAX");
    p.exempt = p.occuCode == QLatin1String("NON");
    if (!p.exempt)
        p.lines = m_perCapitaLines;
    return p;
}

void DemoGenerator::payPerson(Rng& rng, const Person& person, const QDate& earliest,
                              PayFlags& flags) {
    auto pay = [&](char body, const Frame& frame, double chance) {
        if (!(person.bodyFace(body) > Money()) || !rng.chance(chance))
            return;
        if (m_pcShare < 1 && !rng.chance(m_pcShare))
            return;
        const QDate day = paymentDay(rng, frame, earliest, 0.7, 0.2, 0.1);
        if (!day.isValid())
            return;
        PcReceipt r;
        r.day = day;
        r.control = person.control;
        r.billNo = person.billNo;
        r.name = person.printName();
        const char period = PeriodAt(frame, day);
        for (int i = 0; i < 6; ++i)
            if (PcLineBody[i] == body)
                TakeLine(&r.amounts[std::size_t(i) * 3], person.lines[std::size_t(i)], period);
        (body == 'C' ? r.flags.c : body == 'T' ? r.flags.t : r.flags.s) = period;
        (body == 'C' ? flags.c : body == 'T' ? flags.t : flags.s) = period;
        r.payor = ownerPayor(rng, r.name, person.mail);
        m_pcReceipts.push_back(std::move(r));
    };
    pay('C', m_cal.early, 0.55);
    pay('T', m_cal.early, 0.55);
    pay('S', m_cal.late, 0.45);
}

bool DemoGenerator::writePersons() {
    const int total = m_options.persons;
    m_pcAdded = total >= 50 ? std::max(1, total / 300) : 0;
    const int billed = total - m_pcAdded;

    Rng rng(m_options.seed, 3);
    std::vector<Person> persons;
    persons.reserve(std::size_t(total));
    for (int i = 0; i < total; ++i)
        persons.push_back(makePerson(rng));
    // The county's roll is alphabetical; added persons follow it.
    std::stable_sort(persons.begin(), persons.begin() + billed,
                     [](const Person& a, const Person& b) {
                         return std::tie(a.lname, a.fname) < std::tie(b.lname, b.fname);
                     });
    const qint64 controlStep = std::clamp<qint64>(300000 / std::max(billed, 1), 1, 9);

    TableWriter master(m_db, QStringLiteral("PCMaster"));
    TableWriter adds(m_db, QStringLiteral("PCAdds"));
    // The county's late billing file holds the address of a few persons, as billed.
    TableWriter lateAddress(m_db, QStringLiteral("PCLateBillAddress"));
    if (!check(master) || !check(adds) || !check(lateAddress))
        return false;
    for (int i = 0; i < total; ++i) {
        Person& p = persons[std::size_t(i)];
        QDate earliest;
        QDate addDay;
        if (i >= billed) {
            const int n = i - billed + 1;
            p.billNo = QStringLiteral("A") + Digits(n, 4);
            p.control = QStringLiteral("A") + Digits(n, 5);
            addDay = workingDay(rng, m_cal.addFrom, m_cal.addTo);
            earliest = addDay.addDays(1);
        } else {
            p.billNo = PadBillNo(i + 1);
            p.control = QString::number(600000 + i * controlStep + rng.between(0, controlStep - 1));
        }
        payPerson(rng, p, earliest, p.flags);

        if (i < std::min(billed, 3)) {
            lateAddress.text("BillNo", p.billNo);
            lateAddress.text("Name", p.printName());
            lateAddress.text("Addr1", p.mail.addr1);
            lateAddress.text("Addr2", p.mail.addr2);
            lateAddress.text("City", p.mail.city);
            lateAddress.text("State", p.mail.state);
            lateAddress.text("ZipCode", p.mail.zip);
            lateAddress.text("ZipCode2", p.mail.zip2);
            if (!lateAddress.insert())
                return check(lateAddress);
        }
        master.text("District", District);
        master.text("Ward", Ward);
        master.text("Control", p.control);
        master.text("BillNo", p.billNo);
        master.text("Name", p.printName());
        master.text("Prefix", p.prefix);
        master.text("LName", p.lname);
        master.text("FName", p.fname);
        master.text("MName", p.mname);
        master.text("Suffix", p.suffix);
        master.text("Relationship", p.relationship);
        master.text("Addr1", p.mail.addr1);
        master.text("Addr2", p.mail.addr2);
        master.text("StreetNumber", p.streetNumber);
        master.text("StreetName", p.streetName);
        master.text("City", p.mail.city);
        master.text("State", p.mail.state);
        master.text("ZipCode", p.mail.zip);
        master.text("ZipCode2", p.mail.zip2);
        master.text("OccuCode", p.occuCode);
        master.text("OccuDesc", p.occuDesc);
        master.text("OccuValue", p.occuValue);
        master.text("Birthdate", p.birthdate);
        for (int l = 0; l < 6; ++l) {
            master.money(PcLineColumns[l][0], p.lines[std::size_t(l)].discount);
            master.money(PcLineColumns[l][1], p.lines[std::size_t(l)].face);
            master.money(PcLineColumns[l][2], p.lines[std::size_t(l)].penalty);
        }
        master.text("CPayFlag", Flag(p.flags.c));
        master.text("TPayFlag", Flag(p.flags.t));
        master.text("SPayFlag", Flag(p.flags.s));
        master.text("Exempt", p.exempt ? "E" : " ");
        master.text("Over65", p.over65 ? "Y" : " ");
        master.text("TaxYear", m_cal.taxYear);
        if (!master.insert())
            return check(master);

        if (addDay.isValid()) {
            adds.text("Control", p.control);
            adds.text("BillNo", p.billNo);
            adds.date("AdjDate", addDay);
            adds.text("Reason", "NEW RESIDENT");
            if (!adds.insert())
                return check(adds);
        }
    }
    return writePcReceipts() &&
           exec(QStringLiteral("UPDATE PCBillNum SET BillNum = %1").arg(m_pcAdded + 1));
}

bool DemoGenerator::writePcReceipts() {
    std::stable_sort(m_pcReceipts.begin(), m_pcReceipts.end(),
                     [](const PcReceipt& a, const PcReceipt& b) { return a.day < b.day; });
    TableWriter w(m_db, QStringLiteral("PCReceipt"));
    int counter = 0;
    for (const PcReceipt& r : m_pcReceipts) {
        w.text("Control", r.control);
        w.text("BillNo", r.billNo);
        w.integer("AdjNo", 0);
        w.text("Recnum", Recnum(r.day, ++counter));
        w.text("Name", r.name);
        w.date("RDate", r.day);
        for (int i = 0; i < 18; ++i)
            w.money(PcLineColumns[i / 3][i % 3], r.amounts[std::size_t(i)]);
        writePayment(w, r.payor, r.overage, r.flags);
        if (!w.insert())
            return check(w);
    }
    return exec(QStringLiteral("UPDATE PCReceiptNum SET ReceiptNum = %1").arg(counter + 1));
}

bool DemoGenerator::dropIndexes(QStringList* creations) {
    QSqlQuery q(m_db);
    if (!q.exec(QStringLiteral(
            "SELECT name, sql FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL")))
        return fail(q.lastError().text());
    QStringList names;
    while (q.next()) {
        names << q.value(0).toString();
        *creations << q.value(1).toString();
    }
    q.finish();
    for (const QString& name : names)
        if (!exec(QStringLiteral("DROP INDEX %1").arg(name)))
            return false;
    return true;
}

bool DemoGenerator::run(QString* error) {
    bool ok = exec(QStringLiteral("PRAGMA synchronous=OFF")) &&
              exec(QStringLiteral("PRAGMA journal_mode=MEMORY")) &&
              exec(QStringLiteral("PRAGMA cache_size=-65536"));
    const bool inTransaction = ok && m_db.transaction();
    if (ok && !inTransaction)
        ok = fail(m_db.lastError().text());
    // The indexes are built again once the rows are in: sorting them at the end costs much less
    // than keeping them up to date row by row.
    QStringList indexes;
    ok = ok && dropIndexes(&indexes) && writeLookups() && writeMillfile() && writeParcels() &&
         writePersons();
    for (const QString& sql : indexes)
        ok = ok && exec(sql);
    if (ok && !m_db.commit())
        ok = fail(m_db.lastError().text());
    if (!ok && inTransaction)
        m_db.rollback();
    // Back to the settings every user of the file runs with.
    exec(QStringLiteral("PRAGMA journal_mode=DELETE"));
    exec(QStringLiteral("PRAGMA synchronous=FULL"));
    if (!ok && error)
        *error = m_error;
    return ok;
}

} // namespace

bool CreateDemoDatabase(const QString& path, const DemoOptions& options, QString* error) {
    if (options.parcels < 0 || options.persons < 0 || options.parcels > 99999 ||
        options.persons > 99999) {
        if (error)
            *error = QStringLiteral("The numbers of parcels and persons must be 0 to 99999.");
        return false;
    }
    const QString connection =
        QStringLiteral("levydesk-demo-") + QUuid::createUuid().toString(QUuid::Id128);
    bool ok = false;
    {
        QString why;
        QSqlDatabase db = TaxDatabase::create(path, connection, &why);
        if (db.isValid() && db.isOpen()) {
            DemoGenerator generator(db, options);
            ok = generator.run(&why);
        }
        if (!ok && error)
            *error = why;
    }
    TaxDatabase::close(connection);
    if (!ok)
        QFile::remove(path);
    return ok;
}
