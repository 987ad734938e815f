// The zip class and the zipped data file, read back with libzip.

#include "core/tax_database.h"
#include "support/test_support.h"
#include "utilities/email_data_file.h"
#include "utilities/zip_archive.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <zip.h>

namespace {

// Entry name -> content of every entry of an archive; empty when it cannot be opened.
QMap<QString, QByteArray> readArchive(const QString& path) {
    QMap<QString, QByteArray> out;
    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &error);
    if (!archive)
        return out;
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t st;
        zip_stat_index(archive, zip_uint64_t(i), 0, &st);
        QByteArray data(qsizetype(st.size), '\0');
        if (zip_file_t* f = zip_fopen_index(archive, zip_uint64_t(i), 0)) {
            zip_fread(f, data.data(), st.size);
            zip_fclose(f);
        }
        out.insert(QString::fromUtf8(st.name), data);
    }
    zip_close(archive);
    return out;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly))
        f.write(bytes);
}

QStringList countyNames(const QString& databaseBytesPath) {
    QStringList names;
    {
        QSqlDatabase db = TaxDatabase::open(databaseBytesPath, "zip-peek");
        QSqlQuery q(db);
        q.exec("SELECT County FROM tbl_County ORDER BY County");
        while (q.next())
            names << q.value(0).toString();
    }
    TaxDatabase::close("zip-peek");
    return names;
}

} // namespace

class TestZipArchive : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void entries_data();
    void entries();
    void nothingToDoWithoutSpecs();
    void missingFileWritesNoArchive();
    void updateFreshenAndDelete();
    void lineEndsConverted();
    void encryptedWithThePassword();
    void dataFileIsAConsistentCopyUnderItsBareName();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString& name) const { return m_dir->filePath(name); }
};

void TestZipArchive::init() {
    m_dir = std::make_unique<QTemporaryDir>();
    writeFile(path("data/a.txt"), "alpha");
    writeFile(path("data/b.log"), "bravo");
    writeFile(path("data/.hidden.txt"), "hidden");
    writeFile(path("data/sub/c.txt"), "charlie");
}

void TestZipArchive::entries_data() {
    QTest::addColumn<QStringList>("specs");
    QTest::addColumn<bool>("folderNames");
    QTest::addColumn<bool>("recurse");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<QStringList>("names");
    AddRow("bare name of an absolute file", QStringList{"ABS:data/a.txt"}, false, false, false,
           QStringList{"a.txt"});
    AddRow("relative to the base, folder kept", QStringList{"data/a.txt"}, true, false, false,
           QStringList{"data/a.txt"});
    AddRow("pattern, one folder", QStringList{"data/*.txt"}, false, false, false,
           QStringList{"a.txt"});
    AddRow("pattern with hidden files", QStringList{"data/*.txt"}, false, false, true,
           QStringList{".hidden.txt", "a.txt"});
    AddRow("pattern through the folders", QStringList{"data/*.txt"}, true, true, false,
           QStringList{"data/", "data/a.txt", "data/sub/", "data/sub/c.txt"});
    AddRow("folder without recursion", QStringList{"data"}, true, false, false,
           QStringList{"data/a.txt", "data/b.log"});
    AddRow("same entry twice taken once", QStringList{"data/a.txt", "data/*.txt"}, false, false,
           false, QStringList{"a.txt"});
}

void TestZipArchive::entries() {
    QFETCH(QStringList, specs);
    QFETCH(bool, folderNames);
    QFETCH(bool, recurse);
    QFETCH(bool, hidden);
    QFETCH(QStringList, names);
    cZip zip;
    zip.ZipFile = path("out.zip");
    zip.BasePath = m_dir->path();
    zip.StoreFolderNames = folderNames;
    zip.RecurseSubDirs = recurse;
    zip.IncludeSystemAndHiddenFiles = hidden;
    for (QString plan : specs)
        zip.AddFileSpec(plan.startsWith("ABS:") ? path(plan.mid(4)) : plan);
    QCOMPARE(zip.Zip(), 0);
    const QMap<QString, QByteArray> entries = readArchive(zip.ZipFile);
    QCOMPARE(entries.keys(), names);
    if (entries.contains("a.txt"))
        QCOMPARE(entries.value("a.txt"), QByteArray("alpha"));
}

void TestZipArchive::nothingToDoWithoutSpecs() {
    cZip zip;
    zip.ZipFile = path("none.zip");
    QCOMPARE(zip.Zip(), 0);
    QVERIFY(!QFile::exists(zip.ZipFile));
}

void TestZipArchive::missingFileWritesNoArchive() {
    cZip zip;
    zip.ZipFile = path("none.zip");
    zip.AddFileSpec(path("data/a.txt"));
    zip.AddFileSpec(path("data/missing.txt"));
    QVERIFY(zip.Zip() != 0);
    QVERIFY(zip.ErrorText().contains("missing.txt"));
    QVERIFY(!QFile::exists(zip.ZipFile));
}

void TestZipArchive::updateFreshenAndDelete() {
    cZip zip;
    zip.ZipFile = path("u.zip");
    zip.StoreFolderNames = false;
    zip.AddFileSpec(path("data/a.txt"));
    QCOMPARE(zip.Zip(), 0);

    // Freshen replaces what is there and adds nothing new.
    writeFile(path("data/a.txt"), "alpha 2");
    {
        QFile touched(path("data/a.txt"));
        QVERIFY(touched.open(QIODevice::ReadWrite));
        QVERIFY(touched.setFileTime(QDateTime::currentDateTime().addSecs(120),
                                    QFileDevice::FileModificationTime));
    }
    zip.ClearFileSpecs();
    zip.AddFileSpec(path("data/a.txt"));
    zip.AddFileSpec(path("data/b.log"));
    zip.FreshenFiles = true;
    QCOMPARE(zip.Zip(), 0);
    QMap<QString, QByteArray> entries = readArchive(zip.ZipFile);
    QCOMPARE(entries.keys(), (QStringList{"a.txt"}));
    QCOMPARE(entries.value("a.txt"), QByteArray("alpha 2"));

    // Append keeps the entries there; Delete takes out those matching.
    zip.FreshenFiles = false;
    zip.AllowAppend = true;
    zip.ClearFileSpecs();
    zip.AddFileSpec(path("data/b.log"));
    zip.AddFileSpec(path("data/sub/c.txt"));
    QCOMPARE(zip.Zip(), 0);
    QCOMPARE(readArchive(zip.ZipFile).keys(), (QStringList{"a.txt", "b.log", "c.txt"}));
    zip.ClearFileSpecs();
    zip.AddFileSpec("*.txt");
    QCOMPARE(zip.Delete(), 0);
    QCOMPARE(readArchive(zip.ZipFile).keys(), (QStringList{"b.log"}));

    // Without append the archive is written anew.
    zip.AllowAppend = false;
    zip.ClearFileSpecs();
    zip.AddFileSpec(path("data/a.txt"));
    QCOMPARE(zip.Zip(), 0);
    QCOMPARE(readArchive(zip.ZipFile).keys(), (QStringList{"a.txt"}));
}

void TestZipArchive::lineEndsConverted() {
    writeFile(path("lines.txt"), "one\r\ntwo\nthree");
    cZip zip;
    zip.ZipFile = path("l.zip");
    zip.StoreFolderNames = false;
    zip.AddFileSpec(path("lines.txt"));
    zip.ConvertLFToCRLF = true;
    QCOMPARE(zip.Zip(), 0);
    QCOMPARE(readArchive(zip.ZipFile).value("lines.txt"), QByteArray("one\r\ntwo\r\nthree"));
    zip.ConvertLFToCRLF = false;
    zip.ConvertCRLFToLF = true;
    QCOMPARE(zip.Zip(), 0);
    QCOMPARE(readArchive(zip.ZipFile).value("lines.txt"), QByteArray("one\ntwo\nthree"));
}

void TestZipArchive::encryptedWithThePassword() {
    cZip zip;
    zip.ZipFile = path("e.zip");
    zip.StoreFolderNames = false;
    zip.Encrypt = true;
    zip.AddFileSpec(path("data/a.txt"));
    // No password: cancelled, nothing written.
    QVERIFY(zip.Zip() != 0);
    QVERIFY(!QFile::exists(zip.ZipFile));
    zip.Password = [] { return std::optional<QString>("s3cret"); };
    QCOMPARE(zip.Zip(), 0);

    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(zip.ZipFile).constData(), ZIP_RDONLY, &error);
    QVERIFY(archive);
    QVERIFY(!zip_fopen(archive, "a.txt", 0)); // not without the password
    zip_file_t* f = zip_fopen_encrypted(archive, "a.txt", 0, "s3cret");
    QVERIFY(f);
    char text[16] = {};
    QCOMPARE(zip_fread(f, text, sizeof text), zip_int64_t(5));
    zip_fclose(f);
    zip_close(archive);
    QCOMPARE(QByteArray(text), QByteArray("alpha"));
}

void TestZipArchive::dataFileIsAConsistentCopyUnderItsBareName() {
    QCOMPARE(DataFileArchiveNameFor("KestLevyDsk2013.sqlite"), QString("KestLevyDsk2013.zip"));
    QCOMPARE(DataFileArchiveNameFor("Levydsk"), QString("Levydsk.zip"));

    TempTaxDatabase database;
    QVERIFY(database.exec("INSERT INTO tbl_County (County) VALUES ('KESTRELVALE')"));
    QSqlDatabase db = database.db();
    DataFileArchive first = ZipDataFile(db, database.path());
    QVERIFY2(first.ok, qPrintable(first.error));
    QCOMPARE(first.archivePath, QDir(database.folder()).filePath("KestLevyDsk2013.zip"));

    QVERIFY(database.exec("INSERT INTO tbl_County (County) VALUES ('OTHER')"));
    const DataFileArchive second = ZipDataFile(db, database.path());
    QVERIFY2(second.ok, qPrintable(second.error));
    const QMap<QString, QByteArray> entries = readArchive(second.archivePath);
    QCOMPARE(entries.keys(), (QStringList{"KestLevyDsk2013.sqlite"}));
    const QString unpacked = path("unpacked.sqlite");
    writeFile(unpacked, entries.first());
    QCOMPARE(countyNames(unpacked), (QStringList{"KESTRELVALE", "OTHER"}));
    // Nothing of the work is left beside the database.
    QCOMPARE(QDir(database.folder())
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
                 .size(),
             2);
}

QTEST_GUILESS_MAIN(TestZipArchive)
#include "test_zip_archive.moc"
