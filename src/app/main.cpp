// levydesk [--database FILE]
// levydesk --create-demo FILE [--parcels N] [--persons N] [--seed N] [--tax-year YYYY]
// levydesk --import-duplicate DIR --database FILE
// levydesk --export-duplicate FILE DIR

#include "app/main_window.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "utilities/duplicate_transfer.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

// The commands that work on files without opening a window.
bool wantsConsole(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        for (const char* command : {"--create-demo", "--import-duplicate", "--export-duplicate"})
            if (std::strcmp(argv[i], command) == 0)
                return true;
    return false;
}

QString defaultDatabasePath() {
    const QString saved = QSettings().value(QStringLiteral("database")).toString();
    if (!saved.isEmpty())
        return saved;
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
        .filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
}

int createDemo(const QCommandLineParser& args) {
    DemoOptions options;
    bool ok = true;
    auto number = [&](const char* name, auto& into) {
        if (!args.isSet(QString::fromLatin1(name)))
            return;
        bool valid = false;
        const qlonglong n = args.value(QString::fromLatin1(name)).toLongLong(&valid);
        if (!valid || n < 0) {
            std::fprintf(stderr, "levydesk: --%s takes a whole number\n", name);
            ok = false;
            return;
        }
        into = static_cast<std::remove_reference_t<decltype(into)>>(n);
    };
    number("parcels", options.parcels);
    number("persons", options.persons);
    number("seed", options.seed);
    number("tax-year", options.taxYear);
    if (ok && args.isSet(QStringLiteral("tax-year")) &&
        (options.taxYear < 1900 || options.taxYear > 9998)) {
        std::fprintf(stderr, "levydesk: --tax-year takes a year such as 2026\n");
        ok = false;
    }
    if (!ok)
        return 2;
    const QString path = args.value(QStringLiteral("create-demo"));
    QDir().mkpath(QFileInfo(path).absolutePath());
    QString error;
    if (!CreateDemoDatabase(path, options, &error)) {
        std::fprintf(stderr, "levydesk: %s\n", qPrintable(error));
        return 1;
    }
    std::printf("Demo database written to %s\n", qPrintable(QDir::toNativeSeparators(path)));
    return 0;
}

int importDuplicate(const QCommandLineParser& args) {
    if (!args.isSet(QStringLiteral("database"))) {
        std::fprintf(stderr, "levydesk: --import-duplicate DIR needs --database FILE, the new "
                             "database to make\n");
        return 2;
    }
    const QString folder = args.value(QStringLiteral("import-duplicate"));
    const QString path = QFileInfo(args.value(QStringLiteral("database"))).absoluteFilePath();
    QDir().mkpath(QFileInfo(path).absolutePath());
    const DuplicateImport result = ImportDuplicate(folder, path);
    for (const QString& note : result.notes)
        std::printf("%s\n", qPrintable(note));
    if (!result.ok) {
        for (const QString& problem : result.problems)
            std::fprintf(stderr, "%s\n", qPrintable(problem));
        std::fprintf(stderr, "levydesk: nothing was imported\n");
        return 1;
    }
    std::printf("Imported %lld rows into %s\n", static_cast<long long>(result.rows),
                qPrintable(QDir::toNativeSeparators(path)));
    return 0;
}

int exportDuplicate(const QCommandLineParser& args) {
    const QString path = args.value(QStringLiteral("export-duplicate"));
    if (args.positionalArguments().size() != 1) {
        std::fprintf(stderr, "levydesk: --export-duplicate FILE DIR\n");
        return 2;
    }
    const QString folder = args.positionalArguments().front();
    const QString connection = QStringLiteral("levydesk-export");
    QString error;
    bool ok = false;
    {
        QSqlDatabase db = TaxDatabase::open(path, connection, &error);
        ok = db.isOpen() && ExportDuplicate(db, folder, &error);
    }
    TaxDatabase::close(connection);
    if (!ok) {
        std::fprintf(stderr, "levydesk: %s\n", qPrintable(error));
        return 1;
    }
    std::printf("Exported %s to %s\n", qPrintable(QDir::toNativeSeparators(path)),
                qPrintable(QDir::toNativeSeparators(folder)));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const bool console = wantsConsole(argc, argv);
    std::unique_ptr<QCoreApplication> app(console ? new QCoreApplication(argc, argv)
                                                  : new QApplication(argc, argv));
    QCoreApplication::setOrganizationName(QStringLiteral("LevyDesk"));
    QCoreApplication::setApplicationName(QStringLiteral("LevyDesk"));
    QCoreApplication::setApplicationVersion(frmLevyDeskMain::versionText());

    QCommandLineParser args;
    args.setApplicationDescription(QStringLiteral("The tax collector's office program."));
    args.addHelpOption();
    args.addVersionOption();
    args.addOption({QStringLiteral("database"), QStringLiteral("The tax database to open."),
                    QStringLiteral("FILE")});
    args.addOption({QStringLiteral("create-demo"), QStringLiteral("Write a demo tax database."),
                    QStringLiteral("FILE")});
    args.addOption({QStringLiteral("parcels"), QStringLiteral("Real estate bills of the demo."),
                    QStringLiteral("N")});
    args.addOption({QStringLiteral("persons"), QStringLiteral("Per capita bills of the demo."),
                    QStringLiteral("N")});
    args.addOption(
        {QStringLiteral("seed"), QStringLiteral("Seed of the demo's data."), QStringLiteral("N")});
    args.addOption({QStringLiteral("tax-year"),
                    QStringLiteral("Tax year of the demo, laid so that today is in its discount "
                                   "period (default: the fixed 2013 duplicate)."),
                    QStringLiteral("YYYY")});
    args.addOption({QStringLiteral("import-duplicate"),
                    QStringLiteral("Make the --database file from the county's CSV files in DIR."),
                    QStringLiteral("DIR")});
    args.addOption(
        {QStringLiteral("export-duplicate"),
         QStringLiteral("Write every table of FILE as CSV into the folder given after it."),
         QStringLiteral("FILE")});
    args.addPositionalArgument(QStringLiteral("DIR"),
                               QStringLiteral("With --export-duplicate: the folder to write."));
    args.process(*app);

    if (args.isSet(QStringLiteral("create-demo")))
        return createDemo(args);
    if (args.isSet(QStringLiteral("import-duplicate")))
        return importDuplicate(args);
    if (args.isSet(QStringLiteral("export-duplicate")))
        return exportDuplicate(args);

    const QString path = args.isSet(QStringLiteral("database"))
                             ? QFileInfo(args.value(QStringLiteral("database"))).absoluteFilePath()
                             : defaultDatabasePath();
    frmLevyDeskMain window;
    window.showMaximized();
    if (!window.start(path))
        return 1;
    QSettings().setValue(QStringLiteral("database"), path);
    return app->exec();
}
