#include "utilities/zip_archive.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <list>
#include <zip.h>

namespace {

struct Item {
    QString path;  // empty for a folder entry
    QString entry; // the name in the archive ("dir/" for a folder)
    QDateTime modified;
};

bool hasWildcard(const QString& name) {
    return name.contains(u'*') || name.contains(u'?');
}

QString libzipError(zip_t* archive) {
    return QString::fromUtf8(zip_strerror(archive));
}

int libzipCode(zip_t* archive) {
    const int code = zip_error_code_zip(zip_get_error(archive));
    return code == 0 ? -1 : code;
}

} // namespace

cZip::cZip() {
    StoreDirectories = true;
    StoreFolderNames = true;
    RecurseSubDirs = true;
}

void cZip::ClearFileSpecs() {
    m_fileSpecs.clear();
}

void cZip::AddFileSpec(const QString& fileSpec) {
    m_fileSpecs.append(fileSpec);
}

QString cZip::FileSpec(int index) const {
    if (index < 1 || index > m_fileSpecs.size())
        return QString();
    return m_fileSpecs.at(index - 1);
}

int cZip::Zip() {
    return run(m_deleteFlag);
}

int cZip::Delete() {
    m_deleteFlag = true;
    const int result = Zip();
    m_deleteFlag = false;
    return result;
}

int cZip::run(bool deleting) {
    m_error.clear();
    if (m_fileSpecs.isEmpty())
        return 0;
    if (ZipFile.trimmed().isEmpty()) {
        m_error = QStringLiteral("No zip file is named.");
        return -1;
    }
    const QDir base(BasePath.isEmpty() ? QDir::currentPath() : BasePath);
    auto tell = [this](const QString& text) {
        if (MessageLevel > 0 && Message)
            Message(text);
    };

    if (deleting) {
        int error = 0;
        zip_t* archive = zip_open(QFile::encodeName(ZipFile).constData(), 0, &error);
        if (!archive) {
            zip_error_t e;
            zip_error_init_with_code(&e, error);
            m_error = QStringLiteral("The zip file %1 cannot be opened: %2")
                          .arg(ZipFile, QString::fromUtf8(zip_error_strerror(&e)));
            zip_error_fini(&e);
            return error;
        }
        QList<QRegularExpression> patterns;
        for (const QString& fileSpec : m_fileSpecs)
            patterns << QRegularExpression(QRegularExpression::wildcardToRegularExpression(
                QDir::fromNativeSeparators(fileSpec)));
        const zip_int64_t count = zip_get_num_entries(archive, 0);
        for (zip_int64_t i = 0; i < count; ++i) {
            const QString name = QString::fromUtf8(zip_get_name(archive, zip_uint64_t(i), 0));
            for (const QRegularExpression& p : patterns) {
                if (!p.match(name).hasMatch())
                    continue;
                if (Progress && !Progress(QStringLiteral("deleting: %1").arg(name))) {
                    zip_discard(archive);
                    m_error = QStringLiteral("Cancelled.");
                    return -1;
                }
                zip_delete(archive, zip_uint64_t(i));
                tell(QStringLiteral("deleting: %1").arg(name));
                break;
            }
        }
        if (zip_close(archive) != 0) {
            m_error = QStringLiteral("The zip file %1 cannot be written: %2")
                          .arg(ZipFile, libzipError(archive));
            const int code = libzipCode(archive);
            zip_discard(archive);
            return code;
        }
        return 0;
    }

    // The files the file specs name, in their order; each entry once.
    QList<Item> items;
    QSet<QString> taken;
    auto entryName = [&](const QFileInfo& info) {
        if (!StoreFolderNames)
            return info.fileName();
        QString relative = base.relativeFilePath(info.absoluteFilePath());
        if (relative.startsWith(QStringLiteral("../")) || QDir::isAbsolutePath(relative))
            relative = info.absoluteFilePath().mid(1);
        return relative;
    };
    auto addFile = [&](const QFileInfo& info) {
        const QString name = entryName(info);
        if (!taken.contains(name)) {
            taken.insert(name);
            items.append({info.absoluteFilePath(), name, info.lastModified()});
        }
    };
    auto addFolderEntry = [&](const QFileInfo& info) {
        if (!StoreDirectories || !StoreFolderNames)
            return;
        const QString name = entryName(info) + u'/';
        if (!taken.contains(name)) {
            taken.insert(name);
            items.append({QString(), name, info.lastModified()});
        }
    };
    const QDir::Filters hidden = IncludeSystemAndHiddenFiles ? QDir::Hidden : QDir::Filters();
    auto addMatches = [&](const QString& folder, const QStringList& filters, bool recurse) {
        if (recurse)
            addFolderEntry(QFileInfo(folder));
        QDirIterator it(folder, filters, QDir::Files | hidden,
                        recurse ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
        QStringList found;
        while (it.hasNext())
            found << it.next();
        found.sort();
        for (const QString& path : found) {
            const QFileInfo info(path);
            if (recurse)
                addFolderEntry(QFileInfo(info.absolutePath()));
            addFile(info);
        }
    };
    for (const QString& fileSpec : m_fileSpecs) {
        const QFileInfo info(base, QDir::fromNativeSeparators(fileSpec));
        if (hasWildcard(info.fileName())) {
            addMatches(info.absolutePath(), {info.fileName()}, RecurseSubDirs);
        } else if (info.isDir()) {
            addMatches(info.absoluteFilePath(), {}, RecurseSubDirs);
        } else if (info.isFile()) {
            addFile(info);
        } else {
            m_error = QStringLiteral("The file %1 to be zipped does not exist.").arg(fileSpec);
            return -1;
        }
    }

    const bool update = UpdateOnlyIfNewer || FreshenFiles;
    int flags = ZIP_CREATE;
    if (!AllowAppend && !update)
        flags |= ZIP_TRUNCATE;
    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(ZipFile).constData(), flags, &error);
    if (!archive) {
        zip_error_t e;
        zip_error_init_with_code(&e, error);
        m_error = QStringLiteral("The zip file %1 cannot be opened: %2")
                      .arg(ZipFile, QString::fromUtf8(zip_error_strerror(&e)));
        zip_error_fini(&e);
        return error;
    }
    auto fail = [&](const QString& what) {
        m_error = what;
        const int code = libzipCode(archive);
        zip_discard(archive);
        return code;
    };

    std::optional<QString> password;
    if (Encrypt) {
        if (!zip_encryption_method_supported(ZIP_EM_AES_256, 1))
            return fail(QStringLiteral("This zip library cannot encrypt."));
        password = Password ? Password() : std::nullopt;
        if (!password) {
            zip_discard(archive);
            m_error = QStringLiteral("Cancelled: no password for the encryption.");
            return -1;
        }
    }
    const QByteArray passwordBytes = password.value_or(QString()).toUtf8();

    std::list<QByteArray> converted; // libzip reads them when the archive is closed
    for (const Item& item : items) {
        const QByteArray name = item.entry.toUtf8();
        const zip_int64_t existing = zip_name_locate(archive, name.constData(), 0);
        if (FreshenFiles && existing < 0)
            continue;
        if (update && existing >= 0) {
            zip_stat_t st;
            if (zip_stat_index(archive, zip_uint64_t(existing), 0, &st) == 0 &&
                (st.valid & ZIP_STAT_MTIME) && item.modified.toSecsSinceEpoch() <= st.mtime)
                continue;
        }
        if (Progress && !Progress(QStringLiteral("adding: %1").arg(item.entry))) {
            zip_discard(archive);
            m_error = QStringLiteral("Cancelled.");
            return -1;
        }
        zip_int64_t index = -1;
        if (item.path.isEmpty()) {
            index = existing >= 0 ? existing : zip_dir_add(archive, name.constData(), 0);
            if (index < 0)
                return fail(QStringLiteral("The folder %1 cannot be added: %2")
                                .arg(item.entry, libzipError(archive)));
            continue;
        }
        zip_source_t* source = nullptr;
        if (ConvertCRLFToLF || ConvertLFToCRLF) {
            QFile file(item.path);
            if (!file.open(QIODevice::ReadOnly))
                return fail(QStringLiteral("The file %1 cannot be read.").arg(item.path));
            QByteArray bytes = file.readAll();
            bytes.replace("\r\n", "\n");
            if (ConvertLFToCRLF)
                bytes.replace("\n", "\r\n");
            converted.push_back(std::move(bytes));
            source = zip_source_buffer(archive, converted.back().constData(),
                                       zip_uint64_t(converted.back().size()), 0);
        } else {
            source = zip_source_file(archive, QFile::encodeName(item.path).constData(), 0, -1);
        }
        if (source)
            index = zip_file_add(archive, name.constData(), source,
                                 ZIP_FL_OVERWRITE | ZIP_FL_ENC_UTF_8);
        if (index < 0) {
            if (source)
                zip_source_free(source);
            return fail(QStringLiteral("The file %1 cannot be added: %2")
                            .arg(item.path, libzipError(archive)));
        }
        zip_file_set_mtime(archive, zip_uint64_t(index), time_t(item.modified.toSecsSinceEpoch()),
                           0);
        if (Encrypt && zip_file_set_encryption(archive, zip_uint64_t(index), ZIP_EM_AES_256,
                                               passwordBytes.constData()) != 0)
            return fail(QStringLiteral("The file %1 cannot be encrypted: %2")
                            .arg(item.path, libzipError(archive)));
        tell(QStringLiteral("adding: %1").arg(item.entry));
    }
    if (zip_close(archive) != 0)
        return fail(QStringLiteral("The zip file %1 cannot be written: %2")
                        .arg(ZipFile, libzipError(archive)));
    return 0;
}
