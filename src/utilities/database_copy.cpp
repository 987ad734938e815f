#include "utilities/database_copy.h"

#include "core/session.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QSqlError>
#include <QSqlQuery>

QString BackupFileNameFor(const QString& databaseFileName) {
    const QFileInfo info(databaseFileName);
    const QString suffix = info.suffix();
    const QString base = suffix.isEmpty()
                             ? databaseFileName
                             : databaseFileName.left(databaseFileName.size() - suffix.size() - 1);
    return base + QStringLiteral(".bkp");
}

QString SafetyCopyNameFor(const QDateTime& when) {
    const QLocale c = QLocale::c();
    return QStringLiteral("Levydsk ") + c.toString(when.date(), QStringLiteral("yyyy-MM-dd")) +
           QLatin1Char(' ') + c.toString(when.time(), QStringLiteral("hh-mm-ss AP")) +
           QStringLiteral(".tmp");
}

namespace {

// Replaces target by source; the old target stays until the new one is in place.
bool replaceFile(const QString& source, const QString& target, QString* error) {
    const QString old = target + QStringLiteral(".old");
    QFile::remove(old);
    const bool hadTarget = QFileInfo::exists(target);
    if (hadTarget && !QFile::rename(target, old)) {
        *error =
            QStringLiteral("The file %1 cannot be replaced.").arg(QDir::toNativeSeparators(target));
        return false;
    }
    if (!QFile::rename(source, target)) {
        if (hadTarget)
            QFile::rename(old, target);
        *error =
            QStringLiteral("The file %1 cannot be written.").arg(QDir::toNativeSeparators(target));
        return false;
    }
    QFile::remove(old);
    return true;
}

// Copies a file through a temporary neighbour of the target.
bool copyFile(const QString& source, const QString& target, QString* error) {
    const QString partial = target + QStringLiteral(".partial");
    QFile::remove(partial);
    if (!QFile::copy(source, partial)) {
        *error = QStringLiteral("The file %1 cannot be copied to %2.")
                     .arg(QDir::toNativeSeparators(source), QDir::toNativeSeparators(target));
        return false;
    }
    if (!replaceFile(partial, target, error)) {
        QFile::remove(partial);
        return false;
    }
    return true;
}

} // namespace

CopyResult BackupDatabase(const BackupRequest& request) {
    CopyResult result;
    QDir().mkpath(QFileInfo(request.targetPath).absolutePath());
    const QString partial = request.targetPath + QStringLiteral(".partial");
    QFile::remove(partial);
    QSqlQuery q(session().DbConnection);
    q.prepare(QStringLiteral("VACUUM INTO ?"));
    q.addBindValue(partial);
    if (!q.exec()) {
        QFile::remove(partial);
        result.error = QStringLiteral("The backup could not be made: %1").arg(q.lastError().text());
        return result;
    }
    if (!replaceFile(partial, request.targetPath, &result.error)) {
        QFile::remove(partial);
        return result;
    }
    if (!request.desktopPath.isEmpty()) {
        QDir().mkpath(QFileInfo(request.desktopPath).absolutePath());
        if (!copyFile(request.targetPath, request.desktopPath, &result.error))
            return result;
    }
    result.ok = true;
    return result;
}

RestoreResult RestoreDatabase(const RestoreRequest& request) {
    RestoreResult result;
    const QString folder = QFileInfo(request.databasePath).absolutePath();
    result.safetyCopyPath = QDir(folder).filePath(SafetyCopyNameFor(request.now));
    QFile::remove(result.safetyCopyPath); // two restores in one second share the name
    if (!QFile::copy(request.databasePath, result.safetyCopyPath)) {
        result.error = QStringLiteral("The safety copy %1 could not be made; nothing was restored.")
                           .arg(QDir::toNativeSeparators(result.safetyCopyPath));
        result.safetyCopyPath.clear();
        return result;
    }
    if (!copyFile(request.sourcePath, request.databasePath, &result.error))
        return result;
    // A journal left by the old file must not be replayed into the restored one.
    QFile::remove(request.databasePath + QStringLiteral("-journal"));
    result.ok = true;
    return result;
}
