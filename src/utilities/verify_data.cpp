#include "utilities/verify_data.h"

#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "reports/print_output.h"
#include "reports/report_frame.h"
#include "utilities/backup_data.h"

#include <QFile>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>
#include <QVBoxLayout>
#include <array>
#include <vector>

namespace {

const char* const ScreenTitle = "Verify Data Integrity";
const char* const BoxTitle = "Verify Data";

// The tables and words of one duplicate.
struct Duplicate {
    QString master, adjust, address, receipt, voidReceipt, distribution;
    QString billWord; // the bill's word in the printed lines
    QString receiptsMismatch;
    QString adjustedMismatch;
    QString distributionMissing;
    QString distributionMismatch;
    // Per taxing body (county, municipality, school): the amounts that a receipt shares
    // with its adjustment row and with its distribution rows.
    std::array<QStringList, 3> adjustedColumns;
    std::array<QStringList, 3> distributedColumns;
};

const std::array<const char*, 3> PayFlags{"CPayFlag", "TPayFlag", "SPayFlag"};
const std::array<const char*, 3> DisbNums{"CDisbNum", "TDisbNum", "SDisbNum"};
const std::array<QChar, 3> CtsLetters{u'C', u'T', u'S'};

Duplicate realEstate() {
    Duplicate d;
    d.master = QStringLiteral("TCMaster");
    d.adjust = QStringLiteral("TCAdjust");
    d.address = QStringLiteral("TCAddress");
    d.receipt = QStringLiteral("TCReceipt");
    d.voidReceipt = QStringLiteral("TCVoidReceipt");
    d.distribution = QStringLiteral("TCDistribution");
    d.billWord = QStringLiteral("Real Estate Bill # ");
    d.receiptsMismatch = QStringLiteral("Receipts for Bill # ");
    d.adjustedMismatch = QStringLiteral("RE Receipts for Bill # ");
    d.distributionMissing = QStringLiteral("Real Estate Distribution Record for Receipt # ");
    d.distributionMismatch = QStringLiteral("RE Receipts for Bill # ");
    d.adjustedColumns = {QStringList{"County", "Library", "C1Face"},
                         QStringList{"Twp", "S1Face", "S2Face", "S3Face"},
                         QStringList{"School", "Sch1Face"}};
    d.distributedColumns = d.adjustedColumns;
    return d;
}

Duplicate perCapita() {
    Duplicate d;
    d.master = QStringLiteral("PCMaster");
    d.adjust = QStringLiteral("PCAdjust");
    d.address = QStringLiteral("PCAddress");
    d.receipt = QStringLiteral("PCReceipt");
    d.voidReceipt = QStringLiteral("PCVoidReceipt");
    d.distribution = QStringLiteral("PCDistribution");
    d.billWord = QStringLiteral("Per Capita Bill # ");
    d.receiptsMismatch = QStringLiteral("PC Receipts for Bill # ");
    d.adjustedMismatch = QStringLiteral("PC Receipts for Bill # ");
    d.distributionMissing = QStringLiteral("Per Capita Distribution Record for Receipt # ");
    d.distributionMismatch = QStringLiteral("PC Receipts for Bill # ");
    d.adjustedColumns = {QStringList{"CPerCapita"}, QStringList{"TPerCapita"},
                         QStringList{"SPerCapita"}};
    d.distributedColumns = d.adjustedColumns;
    return d;
}

class Walker {
public:
    Walker(QSqlDatabase db, const QString& bodyWord, const VerifyEvents& events, VerifyWalk& out)
        : m_db(db), m_word(bodyWord.toUpper()), m_events(events), m_out(out) {}

    bool run() {
        const Duplicate re = realEstate();
        const Duplicate pc = perCapita();
        // The bill passes only mend and never ask: their repairs go in together.
        QString error;
        const bool mended = InOneTransaction(m_db, &error, [&] { return bills(re) && bills(pc); });
        if (!mended) {
            if (m_out.error.isEmpty())
                m_out.error = error;
            m_out.printed.clear();
            m_out.repairs = 0;
            return false;
        }
        return receiptsAgainstVoids(re) && receiptsAgainstVoids(pc) && adjustments(re) &&
               adjustments(pc) && distributions(re) && distributions(pc);
    }

private:
    bool fail(const QSqlQuery& q) {
        m_out.error = q.lastError().text();
        if (m_out.error.trimmed().isEmpty())
            m_out.error = m_db.lastError().text();
        return false;
    }

    bool select(QSqlQuery& q, const QString& sql, const QVariantList& binds = {}) {
        q.setForwardOnly(true);
        if (!q.prepare(sql))
            return fail(q);
        for (const QVariant& v : binds)
            q.addBindValue(v);
        return q.exec() || fail(q);
    }

    // One repair statement: all or nothing by itself, or inside the passes' transaction.
    bool repair(const QString& sql, const QString& billNo) {
        QSqlQuery q(m_db);
        if (!q.prepare(sql))
            return fail(q);
        q.addBindValue(billNo);
        if (!q.exec())
            return fail(q);
        ++m_out.repairs;
        return true;
    }

    void report(const QString& first, const QString& action) {
        m_out.printed << first << QStringLiteral("Status: REPAIRED")
                      << QStringLiteral("Action required by user: ") + action << QString();
    }

    void tell(const QString& text) {
        m_out.told << text;
        if (m_events.tell)
            m_events.tell(QString::fromLatin1(BoxTitle), text);
    }

    void progress(int n) {
        if (m_events.progress)
            m_events.progress(n);
    }

    // Bill numbers that have a row in the table (with the condition).
    bool billsWith(const QString& table, const QString& where, QSet<QString>* out) {
        QSqlQuery q(m_db);
        if (!select(q, QStringLiteral("SELECT DISTINCT BillNo FROM %1%2").arg(table, where)))
            return false;
        while (q.next())
            out->insert(q.value(0).toString());
        return true;
    }

    // A master column by bill number (the first row of a bill counts).
    bool masterColumn(const Duplicate& d, const char* column, QHash<QString, QString>* out) {
        QSqlQuery q(m_db);
        if (!select(q, QStringLiteral("SELECT BillNo, %1 FROM %2 ORDER BY BillNo")
                           .arg(QLatin1String(column), d.master)))
            return false;
        while (q.next()) {
            const QString bill = q.value(0).toString();
            if (!out->contains(bill))
                out->insert(bill, TextField(q.value(1)));
        }
        return true;
    }

    // Passes 1 and 2: markers on the bill with no detail row behind them.
    bool bills(const Duplicate& d) {
        QSet<QString> adjusted, addressed;
        std::array<QSet<QString>, 3> receipted;
        if (!billsWith(d.adjust, QString(), &adjusted) ||
            !billsWith(d.address, QString(), &addressed))
            return false;
        for (std::size_t i = 0; i < 3; ++i)
            if (!billsWith(d.receipt,
                           QStringLiteral(" WHERE %1 <> ''").arg(QLatin1String(PayFlags[i])),
                           &receipted[i]))
                return false;

        struct Row {
            QString bill, adjFlag, addrFlag;
            std::array<QString, 3> pay;
        };
        std::vector<Row> rows;
        {
            QSqlQuery q(m_db);
            if (!select(q, QStringLiteral("SELECT BillNo, AdjFlag, CAddrFlag, CPayFlag, TPayFlag, "
                                          "SPayFlag FROM %1 ORDER BY BillNo")
                               .arg(d.master)))
                return false;
            while (q.next())
                rows.push_back({TextField(q.value(0)),
                                TextField(q.value(1)).trimmed(),
                                TextField(q.value(2)).trimmed(),
                                {TextField(q.value(3)).trimmed(), TextField(q.value(4)).trimmed(),
                                 TextField(q.value(5)).trimmed()}});
        }

        const std::array<QString, 3> words{QStringLiteral("COUNTY"), m_word,
                                           QStringLiteral("SCHOOL")};
        const std::array<QString, 3> actions{QStringLiteral("county"), m_word,
                                             QStringLiteral("school")};
        int n = 0;
        for (const Row& row : rows) {
            progress(++n);
            if (row.adjFlag == u"A" && !adjusted.contains(row.bill)) {
                if (!repair(QStringLiteral("UPDATE %1 SET AdjFlag = ' ' WHERE BillNo = ?")
                                .arg(d.master),
                            row.bill))
                    return false;
                report(QStringLiteral("Bill # ") + row.bill +
                           QStringLiteral(" has an incomplete ADJUSTMENT."),
                       QStringLiteral("Re-enter the adjustment."));
            }
            if (row.addrFlag == u"A" && !addressed.contains(row.bill)) {
                // The per capita pass clears the flag of the real-estate bill of the same
                // number, as the office's program always has: the per capita marker stays and
                // is reported again on every run.
                if (!repair(QStringLiteral("UPDATE TCMaster SET CAddrFlag = ' ' WHERE BillNo = ?"),
                            row.bill))
                    return false;
                report(d.billWord + row.bill + QStringLiteral(" has an incomplete ADDRESS CHANGE."),
                       QStringLiteral("Re-enter the address change."));
            }
            for (std::size_t i = 0; i < 3; ++i) {
                if (row.pay[i].isEmpty() || receipted[i].contains(row.bill))
                    continue;
                if (!repair(QStringLiteral("UPDATE %1 SET %2 = ' ' WHERE BillNo = ?")
                                .arg(d.master, QLatin1String(PayFlags[i])),
                            row.bill))
                    return false;
                report(d.billWord + row.bill + QStringLiteral(" has an incomplete ") + words[i] +
                           QStringLiteral(" RECEIPT."),
                       QStringLiteral("Re-enter the ") + actions[i] + QStringLiteral(" receipt."));
            }
        }
        return true;
    }

    // Passes 3 and 4: the live county receipts of a bill against its county flag.
    bool receiptsAgainstVoids(const Duplicate& d) {
        QSet<QString> voided;
        {
            QSqlQuery q(m_db);
            if (!select(q, QStringLiteral("SELECT Recnum FROM %1").arg(d.voidReceipt)))
                return false;
            while (q.next())
                voided.insert(q.value(0).toString());
        }
        QHash<QString, QString> flags;
        if (!masterColumn(d, "CPayFlag", &flags))
            return false;
        QSqlQuery q(m_db);
        if (!select(q, QStringLiteral("SELECT BillNo, Recnum FROM %1 WHERE CPayFlag <> ' ' "
                                      "ORDER BY BillNo, Recnum")
                           .arg(d.receipt)))
            return false;
        std::vector<std::pair<QString, QString>> receipts;
        while (q.next())
            receipts.emplace_back(q.value(0).toString(), q.value(1).toString());
        int n = 0;
        for (std::size_t i = 0; i < receipts.size();) {
            const QString bill = receipts[i].first;
            bool paid = false;
            bool mismatch = false;
            for (; i < receipts.size() && receipts[i].first == bill; ++i) {
                progress(++n);
                if (paid)
                    mismatch = true; // two live receipts for one county part
                paid = !voided.contains(receipts[i].second);
            }
            const bool flagged = !flags.value(bill).trimmed().isEmpty();
            if (paid && !flagged)
                mismatch = true;
            if (!paid && flagged)
                mismatch = false;
            if (mismatch)
                tell(d.receiptsMismatch + bill + QStringLiteral(" do not match. Call Support."));
        }
        return true;
    }

    // Passes 5 and 6: adjustment rows without their marker, and receipts that disagree with
    // the adjusted amounts.
    bool adjustments(const Duplicate& d) {
        QHash<QString, QString> flags;
        if (!masterColumn(d, "AdjFlag", &flags))
            return false;
        QSet<QString> withVoids;
        if (!billsWith(d.voidReceipt, QString(), &withVoids))
            return false;
        QStringList amountColumns;
        for (const QStringList& body : d.adjustedColumns)
            amountColumns << body;
        struct Row {
            QString bill;
            std::vector<qint64> amounts;
        };
        std::vector<Row> rows;
        {
            QSqlQuery q(m_db);
            if (!select(q, QStringLiteral("SELECT BillNo, %1 FROM %2 ORDER BY BillNo, AdjNo")
                               .arg(amountColumns.join(QStringLiteral(", ")), d.adjust)))
                return false;
            while (q.next()) {
                Row row{q.value(0).toString(), {}};
                for (int c = 0; c < amountColumns.size(); ++c)
                    row.amounts.push_back(MoneyField(q.value(c + 1)).units());
                rows.push_back(std::move(row));
            }
        }
        int n = 0;
        QString deleted;
        for (const Row& row : rows) {
            progress(++n);
            if (row.bill == deleted)
                continue; // gone with the first row of its bill
            if (flags.value(row.bill).trimmed().isEmpty()) {
                if (!repair(QStringLiteral("DELETE FROM %1 WHERE BillNo = ?").arg(d.adjust),
                            row.bill))
                    return false;
                report(d.billWord + row.bill + QStringLiteral(" has an incomplete ADJUSTMENT."),
                       QStringLiteral("Re-enter the adjustment."));
                deleted = row.bill;
                continue;
            }
            if (!withVoids.contains(row.bill))
                continue; // the join below finds no receipt
            QSqlQuery r(m_db);
            if (!select(r,
                        QStringLiteral("SELECT %1.* FROM %1 INNER JOIN %2 ON (%1.BillNo = "
                                       "%2.BillNo AND %1.Recnum <> %2.Recnum) WHERE %1.BillNo = ? "
                                       "ORDER BY %1.Recnum")
                            .arg(d.receipt, d.voidReceipt),
                        {row.bill}))
                return false;
            bool mismatch = false;
            while (!mismatch && r.next()) {
                const QSqlRecord receipt = r.record();
                int c = 0;
                for (std::size_t body = 0; body < 3; ++body) {
                    const bool paid = !TextField(receipt.value(QLatin1String(PayFlags[body])))
                                           .trimmed()
                                           .isEmpty();
                    for (const QString& column : d.adjustedColumns[body]) {
                        if (paid && MoneyField(receipt.value(column)).units() !=
                                        row.amounts[std::size_t(c)])
                            mismatch = true;
                        ++c;
                    }
                }
            }
            if (mismatch)
                tell(d.adjustedMismatch + row.bill +
                     QStringLiteral(" do not match adjusted amounts. Call Support."));
        }
        return true;
    }

    // Passes 7 and 8: every distributed receipt against its distribution rows.
    bool distributions(const Duplicate& d) {
        struct Amounts {
            QString cts;
            std::array<QString, 3> flags;
            std::vector<qint64> amounts;
        };
        QStringList amountColumns;
        for (const QStringList& body : d.distributedColumns)
            amountColumns << body;
        const QString columns = QStringLiteral("CPayFlag, TPayFlag, SPayFlag, ") +
                                amountColumns.join(QStringLiteral(", "));
        auto read = [&](const QSqlQuery& q, int first) {
            Amounts a;
            for (int i = 0; i < 3; ++i)
                a.flags[std::size_t(i)] = TextField(q.value(first + i)).trimmed();
            for (int c = 0; c < amountColumns.size(); ++c)
                a.amounts.push_back(MoneyField(q.value(first + 3 + c)).units());
            return a;
        };

        QHash<QString, std::vector<Amounts>> rowsByRecnum;
        {
            QSqlQuery q(m_db);
            if (!select(
                    q,
                    QStringLiteral("SELECT Recnum, CTS, %1 FROM %2").arg(columns, d.distribution)))
                return false;
            while (q.next()) {
                Amounts a = read(q, 2);
                a.cts = TextField(q.value(1)).trimmed();
                rowsByRecnum[q.value(0).toString()].push_back(std::move(a));
            }
        }
        QSqlQuery q(m_db);
        if (!select(q, QStringLiteral("SELECT Recnum, BillNo, CDisbNum, TDisbNum, SDisbNum, %1 "
                                      "FROM %2 ORDER BY Recnum")
                           .arg(columns, d.receipt)))
            return false;
        int n = 0;
        while (q.next()) {
            progress(++n);
            bool distributed = false;
            for (int i = 0; i < 3; ++i)
                if (!TextField(q.value(2 + i)).trimmed().isEmpty())
                    distributed = true;
            if (!distributed)
                continue;
            const QString recnum = q.value(0).toString();
            const QString bill = TextField(q.value(1));
            const auto found = rowsByRecnum.constFind(recnum);
            if (found == rowsByRecnum.cend()) {
                tell(d.distributionMissing + recnum +
                     QStringLiteral(" can not be found in the Distribution File. Call Support."));
                continue;
            }
            const Amounts receipt = read(q, 5);
            bool differs = false;
            for (const Amounts& row : *found) {
                int c = 0;
                for (std::size_t body = 0; body < 3; ++body) {
                    const bool mine = row.cts == CtsLetters[body];
                    if (mine && row.flags[body] != receipt.flags[body])
                        differs = true;
                    for (qsizetype k = 0; k < d.distributedColumns[body].size(); ++k, ++c)
                        if (mine && row.amounts[std::size_t(c)] != receipt.amounts[std::size_t(c)])
                            differs = true;
                }
            }
            if (differs)
                tell(d.distributionMismatch + bill +
                     QStringLiteral(" do not match distribution amounts. Call Support."));
        }
        return true;
    }

    QSqlDatabase m_db;
    QString m_word;
    const VerifyEvents& m_events;
    VerifyWalk& m_out;
};

} // namespace

VerifyWalk VerifyDataWalk(QSqlDatabase db, const QString& bodyWord, const VerifyEvents& events) {
    VerifyWalk out;
    Walker walker(db, bodyWord, events, out);
    out.ok = walker.run();
    return out;
}

bool CleanNulls(QSqlDatabase db, QString* error) {
    QStringList tables;
    {
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' AND name "
                                   "NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name")))
            return QueryFailed(db, q, error);
        while (q.next()) {
            const QString name = q.value(0).toString();
            if (!name.startsWith(QLatin1String("MSys"), Qt::CaseInsensitive))
                tables << name;
        }
    }
    // One statement a table: each column with a Null gets its empty value, and only the rows
    // holding a Null are written.
    QStringList statements;
    for (const QString& table : tables) {
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("PRAGMA table_info(\"%1\")").arg(table)))
            return QueryFailed(db, q, error);
        QStringList sets;
        QStringList nulls;
        while (q.next()) {
            const QString column = q.value(1).toString();
            const QString type = q.value(2).toString().toUpper();
            if (column.startsWith(QLatin1String("Gen_"), Qt::CaseInsensitive))
                continue;
            QString value;
            if (type.contains(QLatin1String("CHAR")) || type.contains(QLatin1String("TEXT")) ||
                type.contains(QLatin1String("CLOB")))
                value = QStringLiteral("''");
            else if (type.contains(QLatin1String("INT")) || type.contains(QLatin1String("REAL")) ||
                     type.contains(QLatin1String("DOUB")) || type.contains(QLatin1String("FLOA")) ||
                     type.contains(QLatin1String("NUM")) || type.contains(QLatin1String("DEC")))
                value = QStringLiteral("0");
            else
                continue; // dates stay as they are
            sets << QStringLiteral("\"%1\" = coalesce(\"%1\", %2)").arg(column, value);
            nulls << QStringLiteral("\"%1\" IS NULL").arg(column);
        }
        if (!sets.isEmpty())
            statements << QStringLiteral("UPDATE \"%1\" SET %2 WHERE %3")
                              .arg(table, sets.join(QStringLiteral(", ")),
                                   nulls.join(QStringLiteral(" OR ")));
    }
    return InOneTransaction(db, error, [&] {
        QSqlQuery q(db);
        for (const QString& sql : statements)
            if (!q.exec(sql))
                return QueryFailed(db, q, error);
        return true;
    });
}

bool CompactDatabaseFile(const QString& path, QString* error) {
    const QString name =
        QStringLiteral("levydesk-compact-") + QUuid::createUuid().toString(QUuid::Id128);
    bool ok = false;
    {
        QSqlDatabase db = TaxDatabase::open(path, name, error);
        if (db.isValid()) {
            QSqlQuery q(db);
            ok = q.exec(QStringLiteral("VACUUM"));
            if (!ok && error)
                *error = q.lastError().text();
        }
    }
    TaxDatabase::close(name);
    return ok;
}

Recording DrawVerifyList(const QStringList& lines) {
    ReportSurface s(PageFormat{PaperSize::Letter, PageOrientation::Portrait});
    s.FontName = QStringLiteral("Courier New");
    s.FontSize = 8;
    s.FontBold = false;
    for (const QString& line : lines) {
        if (s.CurrentY + s.TextHeight() > s.ScaleHeight()) {
            s.NewPage();
            s.CurrentY = 0;
        }
        s.CurrentX = 0;
        s.Print(line);
    }
    s.EndDoc();
    Recording recording = s.takeRecording();
    recording.jobName = QString::fromLatin1(ScreenTitle);
    return recording;
}

frmVerifyData::frmVerifyData(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmVerifyData"));
    setWindowTitle(QString::fromLatin1(ScreenTitle));
    lblProgress = NamedLabel(this, QStringLiteral("lblProgress"));
    lblProgress->setAlignment(Qt::AlignCenter);
    lblProgress->setMinimumWidth(360);
    cmdVerify = NamedButton(this, QStringLiteral("cmdVerify"), QStringLiteral("&Verify Data"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdVerify);
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblProgress);
    layout->addLayout(buttons);
    connect(cmdVerify, &QPushButton::clicked, this, [this] { cmdVerify_Click(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void frmVerifyData::cmdVerify_Click() {
    QSqlDatabase db = session().DbConnection;
    const QString title = QString::fromLatin1(ScreenTitle);
    const QString failed = QStringLiteral("Data Integrity Check DID NOT Complete Succesfully!");
    const std::optional<QString> device = AssignedPrinter(db, QString::fromLatin1(LetterPrinter));
    if (!device) {
        MsgBox(QString::fromLatin1(NoLetterPrinterText), QString::fromLatin1(PrinterErrorTitle),
               MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    const ReportLookups lookups = ReportLookups::read(db);

    VerifyEvents events;
    events.tell = [](const QString& boxTitle, const QString& text) {
        MsgBox(text, boxTitle, MsgButtons::Ok, MsgIcon::Exclamation);
    };
    events.progress = [this](int n) {
        if (n == 1 || n % 500 == 0) {
            lblProgress->setText(QString::number(n));
            lblProgress->repaint();
        }
    };
    const VerifyWalk walk = VerifyDataWalk(db, lookups.bodyWord, events);
    // What was found prints even when a later step fails: the repairs are made.
    const PrintResult printed = SendToPrinter(DrawVerifyList(walk.printed), *device);
    if (!printed.ok)
        MsgBox(printed.error, QString::fromLatin1(PrinterErrorTitle), MsgButtons::Ok,
               MsgIcon::Critical);
    if (!walk.ok || !CleanNulls(db)) {
        lblProgress->clear();
        MsgBox(failed, title, MsgButtons::Ok, MsgIcon::Critical);
        return;
    }

    // Compaction wants the file to itself: this screen lets go of the connection too.
    db = QSqlDatabase();
    if (ScreenHost* host = screenHost())
        host->closeScreensExcept({QStringLiteral("frmLevyDeskMain"), QStringLiteral("frmARS"),
                                  QStringLiteral("frmVerifyData")});
    CloseSessionDatabase();
    const bool compacted = CompactDatabaseFile(session().DatabasePath);
    const bool reopened = ReopenSessionDatabase();
    lblProgress->clear();
    if (!reopened) {
        MsgBox(QStringLiteral("Tax Collector Database Not Available"),
               QStringLiteral("Kestrelvale County Tax Collector System"), MsgButtons::Ok,
               MsgIcon::Critical);
        return;
    }
    if (!compacted) {
        MsgBox(failed, title, MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    MsgBox(QStringLiteral("Data Integrity Check Completed Succesfully!"), title);
}
