#include "core/common_values.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "desk/percapita/adjust_writes.h"
#include "desk/realestate/payment_rules.h"
#include "support/test_support.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTest>
#include <map>

namespace {

const char* const Flags[] = {
    "AdjFlag",      "CPayFlag",     "TPayFlag",    "SPayFlag",     "Pay1Flag",      "Pay2Flag",
    "Pay3Flag",     "StLtFlag",     "TwpPaidFlag", "StLtPaidFlag", "CAddrFlag",     "BankFlag",
    "SecondNotice", "Exempt",       "AAFlag",      "HFFlag",       "HomesteadFlag", "FarmsteadFlag",
    "Defaulted",    "TaxClaimFlag", "PCExempt",    "SCExempt",     "OtherExempt",   "Over65",
    "ExFlag",       "SpecFlag",     "BTFlag"};

const char* const ReLines[9][3] = {
    {"DCounty", "County", "PCounty"},      {"DLibrary", "Library", "PLibrary"},
    {"DC1Face", "C1Face", "PC1Face"},      {"DTwp", "Twp", "PTwp"},
    {"DS1Face", "S1Face", "PS1Face"},      {"DS2Face", "S2Face", "PS2Face"},
    {"DS3Face", "S3Face", "PS3Face"},      {"DSchool", "School", "PSchool"},
    {"DSch1Face", "Sch1Face", "PSch1Face"}};
const char ReBody[9] = {'C', 'C', 'C', 'T', 'T', 'T', 'T', 'S', 'S'};
const char* const PcLines[6][3] = {
    {"DCPerCapita", "CPerCapita", "PCPerCapita"}, {"DCOccupation", "COccupation", "PCOccupation"},
    {"DTPerCapita", "TPerCapita", "PTPerCapita"}, {"DTOccupation", "TOccupation", "PTOccupation"},
    {"DSPerCapita", "SPerCapita", "PSPerCapita"}, {"DSOccupation", "SOccupation", "PSOccupation"}};
const char PcBody[6] = {'C', 'C', 'T', 'T', 'S', 'S'};
const char* const BillColumns[3] = {"BillCounty", "BillTwp", "BillSchool"};
const char* const FlagColumns[3] = {"CPayFlag", "TPayFlag", "SPayFlag"};

Money MoneyOf(const QSqlRecord& r, const char* column) {
    return MoneyField(r.value(column));
}
QString TextOf(const QSqlRecord& r, const char* column) {
    return TextField(r.value(column));
}

QString Triple(const QSqlRecord& r, const char* const columns[3]) {
    return MoneyOf(r, columns[0]).toPlain() + u'/' + MoneyOf(r, columns[1]).toPlain() + u'/' +
           MoneyOf(r, columns[2]).toPlain();
}
QString Triple(const AmountTriple& t) {
    return t.discount.toPlain() + u'/' + t.face.toPlain() + u'/' + t.penalty.toPlain();
}

// What a receipt took of one line of its bill, paid at period `flag` (blank: not paid): the
// face, and the discount or penalty as the difference from the face.
QString PaidTriple(const QString& flag, Money discounted, Money face, Money penalised) {
    if (flag == QLatin1String(" "))
        return QStringLiteral("0.00/0.00/0.00");
    return Triple(AmountTriple{flag == QLatin1String("D") ? discounted - face : Money(), face,
                               flag == QLatin1String("P") ? penalised - face : Money()});
}

QSqlRecord Row(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.exec(sql) || !q.next())
        return {};
    return q.record();
}

// The office's county row and the row of its own municipality.
QSqlRecord CountyRow(QSqlDatabase db) {
    return Row(db, QStringLiteral("SELECT * FROM Millfile WHERE District||Ward = '000'"));
}
QSqlRecord MunicipalRow(QSqlDatabase db) {
    return Row(db, QStringLiteral("SELECT m.* FROM Millfile m JOIN tbl_District d ON "
                                  "m.District = d.District AND m.Ward = d.Ward"));
}

qint64 Number(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.exec(sql) || !q.next())
        return -1;
    return q.value(0).toLongLong();
}

DemoOptions Demo(int parcels, int persons, quint32 seed) {
    DemoOptions options;
    options.parcels = parcels;
    options.persons = persons;
    options.seed = seed;
    return options;
}

// Every value of every table, in row order, as one hash.
QByteArray Checksum(QSqlDatabase db) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const TaxDatabase::TableDef& t : TaxDatabase::schema()) {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (!q.exec(QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(t.name)))
            return {};
        hash.addData(t.name.toUtf8());
        while (q.next()) {
            const QSqlRecord r = q.record();
            for (int i = 0; i < r.count(); ++i) {
                const QVariant v = r.value(i);
                hash.addData(v.isNull() ? QByteArray("<null>") : v.toString().toUtf8());
                hash.addData(QByteArray(1, '\x1f'));
            }
        }
    }
    return hash.result();
}

// The period of a body on a day, from the billing frame and dates of the municipal row.
char PeriodOn(const QSqlRecord& municipal, const char* billColumn, const QDate& day) {
    const bool early = TextOf(municipal, billColumn) == QLatin1String("E");
    const QDate discount = DateField(municipal.value(early ? "DiscDate" : "LateDiscDate"));
    const QDate penalty = DateField(municipal.value(early ? "PenDate" : "LatePenDate"));
    return day <= discount ? 'D' : day >= penalty ? 'P' : 'F';
}

} // namespace

class TestDemoDatabase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void sizesAndCounters_data();
    void sizesAndCounters();
    void sameSeedSameContent();
    void fileIsAnOrdinaryTaxDatabase();
    void noNullsAndOneCharacterFlags();
    void holdsEveryKindOfBill();
    void realEstateAmountsFollowTheRates();
    void perCapitaAmountsFollowTheRates();
    void receiptsMatchTheirBills();
    void perCapitaReceiptsMatchTheirBills();
    void refusesWhatItCannotWrite();
    void aTaxYearIsInItsDiscountPeriod_data();
    void aTaxYearIsInItsDiscountPeriod();

private:
    QString create(const QString& name, const DemoOptions& options);
    QSqlDatabase open(const QString& path, const QString& connection);
    RealEstateRates rates();

    QTemporaryDir m_dir;
    QString m_path;
    QSqlDatabase m_db;
};

QString TestDemoDatabase::create(const QString& name, const DemoOptions& options) {
    const QString path = m_dir.filePath(name);
    QString error;
    if (!CreateDemoDatabase(path, options, &error))
        qWarning("%s", qPrintable(error));
    return path;
}

QSqlDatabase TestDemoDatabase::open(const QString& path, const QString& connection) {
    QString error;
    QSqlDatabase db = TaxDatabase::open(path, connection, &error);
    if (!db.isValid())
        qWarning("%s", qPrintable(error));
    return db;
}

void TestDemoDatabase::initTestCase() {
    QVERIFY(m_dir.isValid());
    m_path = create(QStringLiteral("KestLevyDsk2013.sqlite"), DemoOptions{});
    m_db = open(m_path, QStringLiteral("demo"));
    QVERIFY(m_db.isOpen());
}

void TestDemoDatabase::cleanupTestCase() {
    m_db = QSqlDatabase();
    TaxDatabase::close(QStringLiteral("demo"));
}

// The office's rates, read as the adjustment screen reads them.
RealEstateRates TestDemoDatabase::rates() {
    const QSqlRecord county = CountyRow(m_db);
    const QSqlRecord municipal = MunicipalRow(m_db);
    std::array<double, 3> specials{};
    QSqlQuery q(m_db);
    q.exec(QStringLiteral("SELECT s.Mill FROM Spectax s JOIN tbl_District d ON s.District = "
                          "d.District AND s.Ward = d.Ward ORDER BY s.TaxKey"));
    for (int slot = 0; slot < 3 && q.next(); ++slot)
        specials[slot] = q.value(0).toDouble();
    return RealEstateRatesFromMillfile(county, municipal, specials);
}

void TestDemoDatabase::sizesAndCounters_data() {
    QTest::addColumn<int>("parcels");
    QTest::addColumn<int>("persons");

    AddRow("default", 1000, 600);
    AddRow("one parcel, nobody", 1, 0);
    AddRow("empty", 0, 0);
}

void TestDemoDatabase::sizesAndCounters() {
    QFETCH(int, parcels);
    QFETCH(int, persons);

    const QString path = create(QStringLiteral("sizes.sqlite"), Demo(parcels, persons, 7));
    {
        QSqlDatabase db = open(path, QStringLiteral("sizes"));
        QVERIFY(db.isOpen());
        QCOMPARE(Number(db, "SELECT count(*) FROM TCMaster"), qint64(parcels));
        QCOMPARE(Number(db, "SELECT count(*) FROM PCMaster"), qint64(persons));
        QCOMPARE(Number(db, "SELECT count(DISTINCT BillNo) FROM TCMaster"), qint64(parcels));
        QCOMPARE(Number(db, "SELECT count(DISTINCT Control) FROM TCMaster"), qint64(parcels));
        QCOMPARE(Number(db, "SELECT count(DISTINCT Control) FROM PCMaster"), qint64(persons));

        for (const char* duplicate : {"TC", "PC"}) {
            const QString master = QLatin1String(duplicate) + QStringLiteral("Master");
            // Billed bills are "    1" on without a gap; added ones A0001 on, each in the adds.
            const qint64 added = Number(
                db, QStringLiteral("SELECT count(*) FROM %1 WHERE BillNo >= 'A'").arg(master));
            const qint64 billed =
                Number(db, QStringLiteral("SELECT count(*) FROM %1").arg(master)) - added;
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("SELECT BillNo FROM %1 ORDER BY BillNo").arg(master)));
            for (qint64 n = 1; n <= billed + added; ++n) {
                QVERIFY(q.next());
                const QString expected =
                    n <= billed ? QStringLiteral("%1").arg(n, 5)
                                : QStringLiteral("A%1").arg(n - billed, 4, 10, QLatin1Char('0'));
                QCOMPARE(q.value(0).toString(), expected);
            }
            QCOMPARE(Number(db, QStringLiteral("SELECT count(*) FROM %1Adds a JOIN %2 m ON "
                                               "m.BillNo = a.BillNo AND m.Control = a.Control")
                                    .arg(QLatin1String(duplicate), master)),
                     added);
            QCOMPARE(Number(db, QStringLiteral("SELECT BillNum FROM %1BillNum").arg(duplicate)),
                     added + 1);

            // Receipt numbers: the day of the receipt and a counter that runs on in day order.
            const QString receipts = QLatin1String(duplicate) + QStringLiteral("Receipt");
            const qint64 count =
                Number(db, QStringLiteral("SELECT count(*) FROM %1").arg(receipts));
            QCOMPARE(
                Number(db, QStringLiteral("SELECT ReceiptNum FROM %1ReceiptNum").arg(duplicate)),
                count + 1);
            QVERIFY(q.exec(
                QStringLiteral("SELECT Recnum, RDate FROM %1 ORDER BY Recnum").arg(receipts)));
            QDate previous;
            for (qint64 n = 1; n <= count; ++n) {
                QVERIFY(q.next());
                const QString recnum = q.value(0).toString();
                const QDate day = DateField(q.value(1));
                QCOMPARE(recnum.size(), 12);
                QCOMPARE(recnum.left(8), day.toString(QStringLiteral("yyyyMMdd")));
                QCOMPARE(recnum.mid(8).toLongLong(), n);
                QVERIFY(!previous.isValid() || previous <= day);
                QVERIFY(day.dayOfWeek() <= 5);
                previous = day;
            }
        }
    }
    TaxDatabase::close(QStringLiteral("sizes"));
}

void TestDemoDatabase::sameSeedSameContent() {
    const DemoOptions options = Demo(300, 200, 99);
    const QString first = create(QStringLiteral("first.sqlite"), options);
    const QString second = create(QStringLiteral("second.sqlite"), options);
    const QString other = create(QStringLiteral("other.sqlite"), Demo(300, 200, 100));
    QByteArray sums[3];
    const QString paths[3] = {first, second, other};
    for (int i = 0; i < 3; ++i) {
        {
            QSqlDatabase db = open(paths[i], QStringLiteral("checksum"));
            QVERIFY(db.isOpen());
            sums[i] = Checksum(db);
        }
        TaxDatabase::close(QStringLiteral("checksum"));
    }
    QVERIFY(!sums[0].isEmpty());
    QCOMPARE(sums[1].toHex(), sums[0].toHex());
    QVERIFY(sums[2] != sums[0]);
}

void TestDemoDatabase::fileIsAnOrdinaryTaxDatabase() {
    QString why;
    QVERIFY2(TaxDatabase::isValidTaxDatabase(m_path, &why), qPrintable(why));
    QVERIFY(!QFile::exists(m_path + QStringLiteral("-journal")));
    QVERIFY(!QFile::exists(m_path + QStringLiteral("-wal")));
    QCOMPARE(Number(m_db, "PRAGMA user_version"), qint64(TaxDatabase::SchemaVersion));
    QSqlQuery q(m_db);
    QVERIFY(q.exec(QStringLiteral("PRAGMA journal_mode")) && q.next());
    QCOMPARE(q.value(0).toString(), QStringLiteral("delete"));
}

void TestDemoDatabase::noNullsAndOneCharacterFlags() {
    for (const TaxDatabase::TableDef& t : TaxDatabase::schema()) {
        for (const TaxDatabase::ColumnDef& c : t.columns) {
            // Dates are Null where none applies (a receipt not voided, the county's row).
            if (c.type == TaxDatabase::ColumnType::Date)
                continue;
            const QString what = t.name + u'.' + c.name;
            auto none = [&](const char* where) {
                return Number(m_db, QStringLiteral("SELECT count(*) FROM %1 WHERE ").arg(t.name) +
                                        QString::fromLatin1(where).arg(c.name)) == 0;
            };
            QVERIFY2(none("%1 IS NULL"), qPrintable(what));
            const bool flag = std::any_of(std::begin(Flags), std::end(Flags), [&](const char* f) {
                return c.name.compare(QLatin1String(f), Qt::CaseInsensitive) == 0;
            });
            if (flag && c.type == TaxDatabase::ColumnType::Text)
                QVERIFY2(none("length(%1) <> 1"), qPrintable(what));
        }
    }
    // Undistributed receipts carry six blanks; map parts are never empty.
    for (const char* table : {"TCReceipt", "PCReceipt"})
        for (const char* key : {"CDisbNum", "TDisbNum", "SDisbNum"})
            QCOMPARE(Number(m_db, QStringLiteral("SELECT count(*) FROM %1 WHERE %2 <> '      '")
                                      .arg(QLatin1String(table), QLatin1String(key))),
                     qint64(0));
    QCOMPARE(Number(m_db, "SELECT count(*) FROM TCMaster WHERE Map3 = '' OR Map4 = '' OR "
                          "Map5 = ''"),
             qint64(0));
}

void TestDemoDatabase::holdsEveryKindOfBill() {
    const std::pair<const char*, const char*> stories[] = {
        {"approved homesteads", "SELECT count(*) FROM TCMaster WHERE HFFlag = 'A' AND "
                                "HomesteadFlag = 'H' AND ExcFace > 0"},
        {"farmsteads", "SELECT count(*) FROM TCMaster WHERE FarmsteadFlag = 'F'"},
        {"installments", "SELECT count(*) FROM TCMaster WHERE Payment1 > 0"},
        {"paying in installments", "SELECT count(*) FROM TCMaster WHERE SPayFlag = 'I' AND "
                                   "Pay1Flag = 'F'"},
        {"second installment paid", "SELECT count(*) FROM TCMaster WHERE Pay2Flag = 'F'"},
        {"adjusted", "SELECT count(*) FROM TCAdjust WHERE AdjFlag = 'A'"},
        {"exonerated", "SELECT count(*) FROM TCMaster WHERE CPayFlag = 'X' AND SPayFlag = 'X'"},
        {"address changes", "SELECT count(*) FROM TCAddress"},
        {"added", "SELECT count(*) FROM TCAdds"},
        {"paid at discount", "SELECT count(*) FROM TCReceipt WHERE CPayFlag = 'D'"},
        {"paid at face", "SELECT count(*) FROM TCReceipt WHERE TPayFlag = 'F'"},
        {"paid at penalty", "SELECT count(*) FROM TCReceipt WHERE CPayFlag = 'P'"},
        {"school at discount", "SELECT count(*) FROM TCReceipt WHERE SPayFlag = 'D'"},
        {"overages", "SELECT count(*) FROM TCReceipt WHERE Overage > 0"},
        {"underages", "SELECT count(*) FROM TCReceipt WHERE Overage < 0"},
        {"unpaid", "SELECT count(*) FROM TCMaster WHERE CPayFlag = ' ' AND SPayFlag = ' '"},
        {"exempt", "SELECT count(*) FROM TCMaster WHERE Exempt = 'E'"},
        {"per capita paid", "SELECT count(*) FROM PCReceipt"},
        {"per capita added", "SELECT count(*) FROM PCAdds"},
        {"municipal specials", "SELECT count(*) FROM TCMaster WHERE S1Face > 0 AND S2Face > 0"}};
    for (const auto& [story, sql] : stories)
        QVERIFY2(Number(m_db, QLatin1String(sql)) > 0, story);

    QCOMPARE(Number(m_db, "SELECT count(*) FROM TCMaster WHERE TaxClaimFlag = 'Y'"), qint64(1));
    QCOMPARE(Number(m_db, "SELECT count(*) FROM TCMaster WHERE TaxClaimFlag = 'Y' AND "
                          "(CPayFlag <> ' ' OR TPayFlag <> ' ' OR SPayFlag <> ' ')"),
             qint64(0));
    // Every marker has its history row and every history row its marker.
    QCOMPARE(Number(m_db, "SELECT count(*) FROM TCMaster m WHERE (m.AdjFlag = 'A') <> EXISTS "
                          "(SELECT 1 FROM TCAdjust a WHERE a.BillNo = m.BillNo)"),
             qint64(0));
    QCOMPARE(Number(m_db, "SELECT count(*) FROM TCMaster m WHERE (m.CAddrFlag = 'A') <> EXISTS "
                          "(SELECT 1 FROM TCAddress a WHERE a.BillNo = m.BillNo)"),
             qint64(0));
    QCOMPARE(Number(m_db, "SELECT count(*) FROM tbl_Printers WHERE DeviceName = 'PDF' AND "
                          "PrinterType IN ('Letter', 'Receipt', 'TVLetter')"),
             qint64(3));
    QCOMPARE(Number(m_db, "SELECT count(*) FROM tbl_States"), qint64(51));
    QVERIFY(Number(m_db, "SELECT count(*) FROM tbl_ZipCodes WHERE ZipCode LIKE '175%'") >= 30);
}

void TestDemoDatabase::realEstateAmountsFollowTheRates() {
    const RealEstateRates r = rates();
    QCOMPARE(r.school.formula, false);
    QVERIFY(r.countyMill > 0 && r.twpMill > 0 && r.school.mill > 0 && r.specialMill[1] > 0);

    int checked = 0;
    for (const char* table : {"TCMaster", "TCAdjust"}) {
        QSqlQuery q(m_db);
        QVERIFY(q.exec(QStringLiteral("SELECT * FROM %1").arg(QLatin1String(table))));
        while (q.next()) {
            const QSqlRecord row = q.record();
            const QString what =
                QLatin1String(table) + QStringLiteral(" bill ") + TextOf(row, "BillNo") + u' ';
            const bool zero = TextOf(row, "Exempt") == QLatin1String("E") ||
                              TextOf(row, "AdjFlag") == QLatin1String("X");
            BillChoices choices;
            choices.act1 = TextOf(row, "HFFlag") == QLatin1String("A");
            choices.homestead = MoneyOf(row, "HSExclusion");
            choices.farmstead = MoneyOf(row, "FSExclusion");
            choices.installments = MoneyOf(row, "Payment1") > Money();
            const RealEstateAmounts a =
                zero ? RealEstateAmounts{}
                     : ComputeRealEstateAmounts(row.value("AssLand").toLongLong(),
                                                row.value("AssImpr").toLongLong(), r, choices);
            const AmountTriple lines[9] = {a.county,     a.library,    a.countySpecial,
                                           a.twp,        a.special[0], a.special[1],
                                           a.special[2], a.school,     a.schoolSpecial};
            for (int i = 0; i < 9; ++i)
                QCOMPARE(what + Triple(row, ReLines[i]), what + Triple(lines[i]));
            const char* const installments[] = {"Payment1", "Payment2", "Payment3"};
            const char* const penalties[] = {"PenPayment1", "PenPayment2", "PenPayment3"};
            for (int n = 0; n < 3; ++n) {
                QCOMPARE(MoneyOf(row, installments[n]), a.installments.payment[n]);
                QCOMPARE(MoneyOf(row, penalties[n]), a.installments.penPayment[n]);
            }
            if (!zero) {
                const char* const exc[] = {"DExcFace", "ExcFace", "PExcFace"};
                QCOMPARE(what + Triple(row, exc), what + Triple(a.exclusion.excFace));
                QCOMPARE(TextOf(row, "HomesteadFlag"), a.homesteadFlag);
                QCOMPARE(TextOf(row, "FarmsteadFlag"), a.farmsteadFlag);
                // The stored exclusions are within the assessment.
                QCOMPARE(MoneyOf(row, "HSExclusion"), a.exclusion.homestead);
                QCOMPARE(MoneyOf(row, "FSExclusion"), a.exclusion.farmstead);
            }
            ++checked;
        }
    }
    QVERIFY(checked >= 1000);
}

void TestDemoDatabase::perCapitaAmountsFollowTheRates() {
    const QSqlRecord county = CountyRow(m_db);
    const QSqlRecord municipal = MunicipalRow(m_db);
    QVERIFY(TextOf(municipal, "District") != QLatin1String("37"));
    // Flat amounts at the rates, as the per capita adjustment reads and figures them.
    const PerCapitaBillAmounts expected = ComputePerCapitaAmounts(
        {}, 0, {true, true, true},
        PerCapitaRatesFromMillfile(county, municipal, TextOf(municipal, "District"), QString()));
    QSqlQuery q(m_db);
    QVERIFY(q.exec(QStringLiteral("SELECT * FROM PCMaster")));
    int taxed = 0;
    while (q.next()) {
        const QSqlRecord row = q.record();
        const bool taxable = TextOf(row, "OccuCode") == QLatin1String("TAX");
        taxed += taxable;
        for (int i = 0; i < 6; ++i)
            QCOMPARE(Triple(row, PcLines[i]), taxable ? Triple(expected.line[std::size_t(i)])
                                                      : QStringLiteral("0.00/0.00/0.00"));
    }
    QVERIFY(taxed > 500);
}

void TestDemoDatabase::receiptsMatchTheirBills() {
    const QSqlRecord municipal = MunicipalRow(m_db);
    const Money tolerance = MoneyOf(municipal, "Tolerance");
    const char* const installmentFlags[3] = {"Pay1Flag", "Pay2Flag", "Pay3Flag"};
    const char* const payments[3] = {"Payment1", "Payment2", "Payment3"};
    const char* const penalties[3] = {"PenPayment1", "PenPayment2", "PenPayment3"};
    const QDate installmentDue[3] = {DateField(municipal.value("LatePayment1Date")),
                                     DateField(municipal.value("LatePayment2Date")),
                                     DateField(municipal.value("LatePayment3Date"))};

    // How many receipts took each body (and installment) of each bill.
    std::map<QString, std::array<int, 6>> taken;
    QSqlQuery q(m_db);
    QVERIFY(q.exec(QStringLiteral("SELECT * FROM TCReceipt")));
    while (q.next()) {
        const QSqlRecord receipt = q.record();
        const QString billNo = TextOf(receipt, "BillNo");
        const BillNow bill = ReadBillAsItStands(m_db, Duplicate::RealEstate, billNo);
        QVERIFY(bill.found());
        const QString what = QStringLiteral("receipt ") + TextOf(receipt, "Recnum") + u' ';
        QCOMPARE(receipt.value("AdjNo").toInt(), bill.adjNo);
        QCOMPARE(TextOf(receipt, "Name"), bill.text("Name"));
        QVERIFY(MoneyOf(receipt, "Refund").isZero());
        QVERIFY(MoneyOf(receipt, "Overage") <= tolerance &&
                MoneyOf(receipt, "Overage") >= -tolerance);
        const QDate day = DateField(receipt.value("RDate"));
        auto& counts = taken[billNo];

        for (int body = 0; body < 3; ++body) {
            const char bodyLetter = "CTS"[body];
            const QString flag = TextOf(receipt, FlagColumns[body]);
            if (flag == QLatin1String("I")) {
                QCOMPARE(bodyLetter, 'S');
                Money school;
                for (int n = 0; n < 3; ++n) {
                    const QString paid = TextOf(receipt, installmentFlags[n]);
                    if (paid == QLatin1String(" ")) {
                        QVERIFY(MoneyOf(receipt, payments[n]).isZero());
                        continue;
                    }
                    ++counts[3 + n];
                    QCOMPARE(paid, QString(QLatin1Char(day <= installmentDue[n] ? 'F' : 'P')));
                    QCOMPARE(MoneyOf(receipt, payments[n]), bill.money(payments[n]));
                    QCOMPARE(MoneyOf(receipt, penalties[n]),
                             paid == QLatin1String("P")
                                 ? bill.money(penalties[n]) - bill.money(payments[n])
                                 : Money());
                    school += bill.money(payments[n]);
                }
                QCOMPARE(MoneyOf(receipt, "School"), school);
                for (const char* zero :
                     {"DSchool", "PSchool", "DSch1Face", "Sch1Face", "PSch1Face"})
                    QVERIFY2(MoneyOf(receipt, zero).isZero(),
                             qPrintable(what + QLatin1String(zero)));
                continue;
            }
            if (flag != QLatin1String(" ")) {
                ++counts[body];
                QCOMPARE(what + flag,
                         what + QLatin1Char(PeriodOn(municipal, BillColumns[body], day)));
            }
            for (int i = 0; i < 9; ++i) {
                if (ReBody[i] != bodyLetter)
                    continue;
                QCOMPARE(what + Triple(receipt, ReLines[i]),
                         what + PaidTriple(flag, bill.money(ReLines[i][0]),
                                           bill.money(ReLines[i][1]), bill.money(ReLines[i][2])));
            }
        }
    }
    QVERIFY(taken.size() > 500);

    // A bill's flags say exactly what its receipts took: one receipt per paid part.
    QVERIFY(q.exec(QStringLiteral("SELECT * FROM TCMaster")));
    while (q.next()) {
        const QSqlRecord bill = q.record();
        const auto found = taken.find(TextOf(bill, "BillNo"));
        const std::array<int, 6> counts =
            found == taken.end() ? std::array<int, 6>{} : found->second;
        for (int body = 0; body < 3; ++body) {
            const QString flag = TextOf(bill, FlagColumns[body]);
            const bool paid = flag != QLatin1String(" ") && flag != QLatin1String("X") &&
                              flag != QLatin1String("I");
            QCOMPARE(counts[body], paid ? 1 : 0);
        }
        for (int n = 0; n < 3; ++n)
            QCOMPARE(counts[3 + n],
                     TextOf(bill, installmentFlags[n]) == QLatin1String(" ") ? 0 : 1);
    }
}

void TestDemoDatabase::perCapitaReceiptsMatchTheirBills() {
    const QSqlRecord municipal = MunicipalRow(m_db);

    std::map<QString, QSqlRecord> bills;
    QSqlQuery q(m_db);
    QVERIFY(q.exec(QStringLiteral("SELECT * FROM PCMaster")));
    while (q.next())
        bills[q.value("BillNo").toString()] = q.record();

    std::map<QString, std::array<int, 3>> taken;
    QVERIFY(q.exec(QStringLiteral("SELECT * FROM PCReceipt")));
    while (q.next()) {
        const QSqlRecord receipt = q.record();
        const auto bill = bills.find(TextOf(receipt, "BillNo"));
        QVERIFY(bill != bills.end());
        QCOMPARE(TextOf(receipt, "Name"), TextOf(bill->second, "Name"));
        const QDate day = DateField(receipt.value("RDate"));
        auto& counts = taken[bill->first];
        for (int body = 0; body < 3; ++body) {
            const QString flag = TextOf(receipt, FlagColumns[body]);
            if (flag != QLatin1String(" ")) {
                ++counts[body];
                QCOMPARE(flag, QString(QLatin1Char(PeriodOn(municipal, BillColumns[body], day))));
            }
            for (int i = 0; i < 6; ++i) {
                if (PcBody[i] != "CTS"[body])
                    continue;
                const QSqlRecord& b = bill->second;
                QCOMPARE(Triple(receipt, PcLines[i]),
                         PaidTriple(flag, MoneyOf(b, PcLines[i][0]), MoneyOf(b, PcLines[i][1]),
                                    MoneyOf(b, PcLines[i][2])));
            }
        }
    }
    QVERIFY(taken.size() > 100);
    for (const auto& [billNo, bill] : bills) {
        const auto found = taken.find(billNo);
        for (int body = 0; body < 3; ++body)
            QCOMPARE(found == taken.end() ? 0 : found->second[body],
                     TextOf(bill, FlagColumns[body]) == QLatin1String(" ") ? 0 : 1);
    }
}

void TestDemoDatabase::refusesWhatItCannotWrite() {
    QString error;
    const QString nowhere = m_dir.filePath(QStringLiteral("missing/folder/demo.sqlite"));
    QVERIFY(!CreateDemoDatabase(nowhere, DemoOptions{}, &error));
    QVERIFY(!error.isEmpty());
    QVERIFY(!QFile::exists(nowhere));

    error.clear();
    const QString path = m_dir.filePath(QStringLiteral("negative.sqlite"));
    QVERIFY(!CreateDemoDatabase(path, Demo(-1, 10, 1), &error));
    QVERIFY(!error.isEmpty());
    QVERIFY(!QFile::exists(path));
}

QTEST_GUILESS_MAIN(TestDemoDatabase)
// A demo for a tax year is laid around today: all three bodies are in their discount period, and
// every record lies between the mail date and yesterday.
void TestDemoDatabase::aTaxYearIsInItsDiscountPeriod_data() {
    QTest::addColumn<int>("year");
    QTest::addColumn<QDate>("today");

    AddRow("late in the year", 2026, QDate(2026, 11, 23));
    AddRow("early January: mailed in December", 2027, QDate(2027, 1, 5));
    AddRow("29 February of a leap year", 2028, QDate(2028, 2, 29));
    AddRow("today taken into another year", 2030, QDate(2026, 6, 15));
}

void TestDemoDatabase::aTaxYearIsInItsDiscountPeriod() {
    QFETCH(int, year);
    QFETCH(QDate, today);
    DemoOptions options = Demo(400, 200, 7);
    options.taxYear = year;
    options.today = today;
    const QString path = create(QStringLiteral("year%1.sqlite").arg(year), options);
    const QDate day = QDate(year, today.month(),
                            std::min(today.day(), QDate(year, today.month(), 1).daysInMonth()));
    {
        QSqlDatabase db = open(path, QStringLiteral("year"));
        QVERIFY(db.isOpen());
        QCOMPARE(TextOf(CountyRow(db), "TaxYear"), QString::number(year));
        const QSqlRecord municipal = MunicipalRow(db);
        const PaymentPeriods periods = PeriodsForDate(PaymentCalendarFromMillfile(municipal), day);
        QCOMPARE(QString(periods.county) + periods.twp + periods.school, QStringLiteral("DDD"));
        const QDate mail = DateField(municipal.value("MailDate"));
        QVERIFY(mail < day && mail.daysTo(day) <= 31);

        // Payments were taken, all of them at discount (or as an installment), none on or after
        // today and none before the bills went out.
        QVERIFY(Number(db, QStringLiteral("SELECT count(*) FROM TCReceipt")) > 20);
        QVERIFY(Number(db, QStringLiteral("SELECT count(*) FROM PCReceipt")) > 10);
        const QString isoDay = day.toString(Qt::ISODate);
        const QString isoMail = mail.toString(Qt::ISODate);
        for (const char* table : {"TCReceipt", "PCReceipt"}) {
            QCOMPARE(Number(db, QStringLiteral("SELECT count(*) FROM %1 WHERE RDate >= '%2' OR "
                                               "RDate < '%3'")
                                    .arg(QLatin1String(table), isoDay, isoMail)),
                     0);
        }
        QCOMPARE(Number(db, QStringLiteral("SELECT count(*) FROM TCReceipt WHERE "
                                           "CPayFlag NOT IN ('D', ' ') OR TPayFlag NOT IN "
                                           "('D', ' ') OR SPayFlag NOT IN ('D', 'I', ' ')")),
                 0);
        QCOMPARE(Number(db, QStringLiteral("SELECT count(*) FROM TCAdjust WHERE AdjDate >= '%1' "
                                           "OR AdjDate < '%2'")
                                .arg(isoDay, isoMail)),
                 0);
    }
    TaxDatabase::close(QStringLiteral("year"));
}

#include "test_demo_database.moc"
