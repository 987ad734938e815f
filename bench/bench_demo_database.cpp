// Times writing the demo database of 50,000 parcels and 50,000 persons and prints the median.
// Usage: bench_demo_database [runs] [parcels] [persons]

#include "demo/demo_database.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <vector>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int runs = args.size() > 1 ? std::max(1, args[1].toInt()) : 3;
    DemoOptions options;
    options.parcels = args.size() > 2 ? args[2].toInt() : 50000;
    options.persons = args.size() > 3 ? args[3].toInt() : 50000;

    QTextStream out(stdout);
    QTemporaryDir dir;
    if (!dir.isValid()) {
        out << "no temporary folder\n";
        return 1;
    }
    const QString path = dir.filePath(QStringLiteral("KestLevyDsk2013.sqlite"));
    std::vector<double> seconds;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        QString error;
        if (!CreateDemoDatabase(path, options, &error)) {
            out << "failed: " << error << '\n';
            return 1;
        }
        seconds.push_back(timer.nsecsElapsed() / 1e9);
        out << "run " << run + 1 << ": " << QString::number(seconds.back(), 'f', 3) << " s\n";
        out.flush();
    }
    std::sort(seconds.begin(), seconds.end());
    out << "demo database, " << options.parcels << " parcels + " << options.persons
        << " persons: median " << QString::number(seconds[seconds.size() / 2], 'f', 3) << " s over "
        << runs << " runs, file " << QFileInfo(path).size() / (1024 * 1024) << " MB\n";
    return 0;
}
