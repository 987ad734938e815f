// A file chosen for restore: the check that it is a whole tax database answers yes or no, and
// leaves the file as it was.
#include "core/tax_database.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("chosen.sqlite"));
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            std::abort();
        file.write(bytes);
    }
    QString why;
    TaxDatabase::isValidTaxDatabase(path, &why);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.readAll() != bytes)
        std::abort();
    return 0;
}
