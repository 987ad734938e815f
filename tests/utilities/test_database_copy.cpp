// Backup and restore copies: names, consistency, and that no failure loses a file.

#include "core/session.h"
#include "core/tax_database.h"
#include "support/test_support.h"
#include "utilities/database_copy.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTest>

namespace {

QByteArray digest(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}

QString countyName(const QString& path) {
    QString result;
    {
        QSqlDatabase db = TaxDatabase::open(path, "peek");
        QSqlQuery q(db);
        if (q.exec("SELECT County FROM tbl_County") && q.next())
            result = q.value(0).toString();
    }
    TaxDatabase::close("peek");
    return result;
}

} // namespace

class TestDatabaseCopy : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void backupName_data();
    void backupName();
    void safetyCopyName_data();
    void safetyCopyName();
    void backupIsAConsistentCopyOfTheOpenDatabase();
    void failedBackupKeepsThePreviousOne();
    void restoreMakesTheSafetyCopyFirst();
    void failedRestoreLeavesTheDatabase();
};

void TestDatabaseCopy::backupName_data() {
    QTest::addColumn<QString>("database");
    QTest::addColumn<QString>("backup");
    AddRow("sqlite", "KestLevyDsk2013.sqlite", "KestLevyDsk2013.bkp");
    AddRow("mdb", "Levydsk.mdb", "Levydsk.bkp");
    AddRow("two dots", "tax.2013.sqlite", "tax.2013.bkp");
    AddRow("no suffix", "Levydsk", "Levydsk.bkp");
}

void TestDatabaseCopy::backupName() {
    QFETCH(QString, database);
    QFETCH(QString, backup);
    QCOMPARE(BackupFileNameFor(database), backup);
}

void TestDatabaseCopy::safetyCopyName_data() {
    QTest::addColumn<QDateTime>("when");
    QTest::addColumn<QString>("name");
    AddRow("afternoon", QDateTime(QDate(2013, 3, 14), QTime(15, 5, 7)),
           "Levydsk 2013-03-14 03-05-07 PM.tmp");
    AddRow("midnight", QDateTime(QDate(2013, 12, 1), QTime(0, 30, 0)),
           "Levydsk 2013-12-01 12-30-00 AM.tmp");
    AddRow("noon", QDateTime(QDate(2014, 1, 9), QTime(12, 0, 59)),
           "Levydsk 2014-01-09 12-00-59 PM.tmp");
}

void TestDatabaseCopy::safetyCopyName() {
    QFETCH(QDateTime, when);
    QFETCH(QString, name);
    QCOMPARE(SafetyCopyNameFor(when), name);
}

void TestDatabaseCopy::backupIsAConsistentCopyOfTheOpenDatabase() {
    TempTaxDatabase t;
    QVERIFY(t.exec("INSERT INTO tbl_County (County) VALUES ('KESTRELVALE')"));
    QVERIFY(OpenSessionDatabase(t.path()));
    BackupRequest request;
    request.databasePath = t.path();
    request.targetPath = t.folder() + "/KestLevyDsk2013.bkp";
    request.desktopPath = t.folder() + "/Desktop/KestLevyDsk2013.bkp";
    const CopyResult result = BackupDatabase(request);
    QVERIFY2(result.ok, qPrintable(result.error));
    QVERIFY(TaxDatabase::isValidTaxDatabase(request.targetPath));
    QCOMPARE(countyName(request.targetPath), QStringLiteral("KESTRELVALE"));
    // The desktop copy is the same file.
    QCOMPARE(digest(request.desktopPath), digest(request.targetPath));
    // A second backup replaces the first.
    QVERIFY(t.exec("UPDATE tbl_County SET County = 'OTHER'"));
    QVERIFY(BackupDatabase(request).ok);
    QCOMPARE(countyName(request.targetPath), QStringLiteral("OTHER"));
    QVERIFY(!QFile::exists(request.targetPath + ".partial"));
    CloseSessionDatabase();
}

void TestDatabaseCopy::failedBackupKeepsThePreviousOne() {
    TempTaxDatabase t;
    QVERIFY(OpenSessionDatabase(t.path()));
    BackupRequest request;
    request.databasePath = t.path();
    request.targetPath = t.folder() + "/KestLevyDsk2013.bkp";
    QVERIFY(BackupDatabase(request).ok);
    const QByteArray before = digest(request.targetPath);
    // The desktop path lies under a file, so that copy cannot be made.
    QFile blocker(t.folder() + "/blocker");
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    request.desktopPath = t.folder() + "/blocker/KestLevyDsk2013.bkp";
    const CopyResult result = BackupDatabase(request);
    QVERIFY(!result.ok);
    QVERIFY(!result.error.isEmpty());
    QVERIFY(TaxDatabase::isValidTaxDatabase(request.targetPath));
    // A target that cannot be written leaves the old backup alone.
    request.desktopPath.clear();
    request.targetPath = t.folder() + "/blocker/x.bkp";
    QVERIFY(!BackupDatabase(request).ok);
    QCOMPARE(digest(t.folder() + "/KestLevyDsk2013.bkp").isEmpty(), before.isEmpty());
    CloseSessionDatabase();
}

void TestDatabaseCopy::restoreMakesTheSafetyCopyFirst() {
    TempTaxDatabase live;
    QVERIFY(live.exec("INSERT INTO tbl_County (County) VALUES ('LIVE')"));
    TempTaxDatabase backup("KestLevyDsk2013.bkp");
    QVERIFY(backup.exec("INSERT INTO tbl_County (County) VALUES ('BACKUP')"));
    const QByteArray liveBefore = digest(live.path());

    RestoreRequest request;
    request.databasePath = live.path();
    request.sourcePath = backup.path();
    request.now = QDateTime(QDate(2013, 6, 30), QTime(9, 15, 0));
    // The connection on the live file is closed for the copy, as the screen does.
    QSqlDatabase::database(QSqlDatabase::connectionNames().first(), false).close();
    for (const QString& name : QSqlDatabase::connectionNames())
        QSqlDatabase::database(name, false).close();
    const RestoreResult result = RestoreDatabase(request);
    QVERIFY2(result.ok, qPrintable(result.error));
    QCOMPARE(QFileInfo(result.safetyCopyPath).fileName(),
             QStringLiteral("Levydsk 2013-06-30 09-15-00 AM.tmp"));
    QCOMPARE(QFileInfo(result.safetyCopyPath).absolutePath(),
             QFileInfo(live.path()).absolutePath());
    QCOMPARE(digest(result.safetyCopyPath), liveBefore);
    QCOMPARE(countyName(live.path()), QStringLiteral("BACKUP"));

    // A second restore in the same second overwrites that safety copy.
    QVERIFY(RestoreDatabase(request).ok);
    QCOMPARE(countyName(result.safetyCopyPath), QStringLiteral("BACKUP"));
}

void TestDatabaseCopy::failedRestoreLeavesTheDatabase() {
    TempTaxDatabase live;
    QVERIFY(live.exec("INSERT INTO tbl_County (County) VALUES ('LIVE')"));
    for (const QString& name : QSqlDatabase::connectionNames())
        QSqlDatabase::database(name, false).close();
    const QByteArray before = digest(live.path());
    RestoreRequest request;
    request.databasePath = live.path();
    request.sourcePath = live.folder() + "/missing.bkp";
    request.now = QDateTime(QDate(2013, 6, 30), QTime(9, 15, 0));
    const RestoreResult result = RestoreDatabase(request);
    QVERIFY(!result.ok);
    QCOMPARE(digest(live.path()), before);
}

QTEST_GUILESS_MAIN(TestDatabaseCopy)
#include "test_database_copy.moc"
