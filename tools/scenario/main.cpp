// levydesk-scenario [--verbose] [--keep] [--timeout SECONDS] FILE.scn...
// Runs each scenario against the real program, headless, each on a fresh folder and database.
// Exits 0 only when every scenario passed; a failure names the file, the line, what was
// expected and what was seen.

#include "scenario_runner.h"

#include "app/main_window.h"

#include <QApplication>
#include <QStringList>
#include <cstdio>

namespace {

QtMessageHandler qtHandler = nullptr;

// The offscreen platform says so whenever a window asks to be raised or sized; that is no news.
void messageFilter(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type == QtWarningMsg && text.startsWith(QStringLiteral("This plugin does not support")))
        return;
    if (qtHandler)
        qtHandler(type, context, text);
}

int usage() {
    std::fprintf(stderr, "usage: levydesk-scenario [--verbose] [--keep] [--timeout SECONDS] "
                         "FILE.scn...\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    // The driver is headless whatever the caller's environment says.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Before the application: the run's folder points the settings and data folders into it.
    RunFolder runFolder;
    qtHandler = qInstallMessageHandler(messageFilter);

    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("LevyDesk"));
    QCoreApplication::setApplicationName(QStringLiteral("LevyDesk"));
    QCoreApplication::setApplicationVersion(frmLevyDeskMain::versionText());
    // Windows come and go between scenarios; the driver alone decides when to stop.
    QApplication::setQuitOnLastWindowClosed(false);

    RunOptions options;
    QStringList files;
    const QStringList args = QCoreApplication::arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args.at(i);
        if (arg == u"--verbose" || arg == u"-v") {
            options.verbose = true;
        } else if (arg == u"--keep") {
            options.keep = true;
        } else if (arg == u"--timeout" && i + 1 < args.size()) {
            bool ok = false;
            options.timeoutSeconds = args.at(++i).toInt(&ok);
            if (!ok || options.timeoutSeconds < 0)
                return usage();
        } else if (arg.startsWith(u'-')) {
            return usage();
        } else {
            files << arg;
        }
    }
    if (files.isEmpty())
        return usage();
    if (!runFolder.isValid()) {
        std::fprintf(stderr, "levydesk-scenario: no temporary folder\n");
        return 1;
    }

    int failures = 0;
    for (const QString& file : files) {
        ScenarioRun run(file, runFolder, options);
        const bool passed = run.run();
        if (options.keep && !run.folder().isEmpty())
            std::fprintf(stdout, "%s: folder kept at %s\n", qPrintable(file),
                         qPrintable(run.folder()));
        if (passed) {
            std::fprintf(stdout, "PASS %s (%d commands)\n", qPrintable(file), run.commandCount());
        } else {
            ++failures;
            std::fprintf(stderr, "%s\n", qPrintable(run.failure()));
            std::fprintf(stdout, "FAIL %s\n", qPrintable(file));
        }
        std::fflush(stdout);
        std::fflush(stderr);
    }
    if (files.size() > 1)
        std::fprintf(stdout, "%lld of %lld scenarios passed\n",
                     static_cast<long long>(files.size() - failures),
                     static_cast<long long>(files.size()));
    return failures == 0 ? 0 : 1;
}
