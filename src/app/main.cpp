// levydesk [--database FILE]
// levydesk --create-demo FILE [--parcels N] [--persons N] [--seed N]

#include "core/main_window.h"
#include "core/session.h"
#include "demo/demo_database.h"

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

bool wantsDemo(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--create-demo") == 0)
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

} // namespace

int main(int argc, char** argv) {
    const bool demo = wantsDemo(argc, argv);
    std::unique_ptr<QCoreApplication> app(demo ? new QCoreApplication(argc, argv)
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
    args.process(*app);

    if (demo)
        return createDemo(args);

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
