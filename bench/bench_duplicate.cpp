// Export of a full-size demo database to the county's CSV form, and import of that folder into
// a new database, median of the runs.
//
//   bench_duplicate [--parcels N] [--persons N] [--runs N]

#include "bench_support.h"
#include "core/tax_database.h"
#include "demo/demo_database.h"
#include "utilities/duplicate_transfer.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    DemoOptions options;
    options.parcels = Argument(args, "--parcels", 50000);
    options.persons = Argument(args, "--persons", 50000);
    const int runs = std::max(1, Argument(args, "--runs", 5));

    QTemporaryDir dir;
    const QString source = dir.filePath("KestLevyDsk2013.sqlite");
    QString error;
    if (!CreateDemoDatabase(source, options, &error)) {
        std::fprintf(stderr, "demo database failed: %s\n", qPrintable(error));
        return 1;
    }
    const QString folder = dir.filePath("county");

    std::vector<double> exports;
    for (int i = 0; i < runs; ++i) {
        QDir(folder).removeRecursively();
        QElapsedTimer t;
        t.start();
        bool ok = false;
        {
            QSqlDatabase db = TaxDatabase::open(source, "bench", &error);
            ok = db.isOpen() && ExportDuplicate(db, folder, &error);
        }
        TaxDatabase::close("bench");
        if (!ok) {
            std::fprintf(stderr, "export failed: %s\n", qPrintable(error));
            return 1;
        }
        exports.push_back(t.nsecsElapsed() / 1e9);
    }

    std::vector<double> imports;
    qint64 rows = 0;
    for (int i = 0; i < runs; ++i) {
        const QString target = dir.filePath(QStringLiteral("imported%1.sqlite").arg(i));
        QElapsedTimer t;
        t.start();
        const DuplicateImport result = ImportDuplicate(folder, target);
        if (!result.ok) {
            std::fprintf(stderr, "import failed: %s\n", qPrintable(result.problems.join('\n')));
            return 1;
        }
        imports.push_back(t.nsecsElapsed() / 1e9);
        rows = result.rows;
        QFile::remove(target);
    }
    std::printf("%d parcels + %d persons, %lld rows: export median %.2f s, import median %.2f s\n",
                options.parcels, options.persons, static_cast<long long>(rows), Median(exports),
                Median(imports));
    std::printf("RESULT import_s=%.2f export_s=%.2f\n", Median(imports), Median(exports));
    return 0;
}
