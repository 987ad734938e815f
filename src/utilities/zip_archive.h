#pragma once
// cZip: a zip archive made or trimmed from a list of file specs, over libzip.
//
// A file spec is a file, a folder, or a file name pattern with * and ? in its last part;
// a relative one is taken from BasePath. An entry is named by the file's bare name, or, with
// StoreFolderNames, by its path relative to BasePath (from the root when it is not under it).

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

class cZip {
public:
    cZip();

    // The archive written by Zip and trimmed by Delete.
    QString ZipFile;
    // Where relative file specs and stored folder names start.
    QString BasePath;
    // Entries are encrypted (AES-256) with the password the Password callback gives.
    bool Encrypt = false;
    bool Encrpyt() const { return Encrypt; }
    // Files whose name starts with a dot are taken when a pattern or a folder is read.
    bool IncludeSystemAndHiddenFiles = false;
    // Kept for the options' sake: volumes have no label to store on this platform.
    bool StoreVolumeLabel = false;
    // A folder read for its files also gets an entry of its own ("name/").
    bool StoreDirectories = false;
    // Entries carry the path relative to BasePath, not only the file name.
    bool StoreFolderNames = false;
    // A folder, or a pattern, takes the files of the folders below it too.
    bool RecurseSubDirs = false;
    // A file replaces an entry of the same name only when the file is newer.
    bool UpdateOnlyIfNewer = false;
    // Only entries already in the archive are replaced (when the file is newer); no new ones.
    bool FreshenFiles = false;
    // 0: quiet; 1 and more: each entry added or deleted is told to the Message callback.
    int MessageLevel = 0;
    // Line ends of the files rewritten on the way in.
    bool ConvertCRLFToLF = false;
    bool ConvertLFToCRLF = false;
    // True: Zip adds to the archive that is there. False: Zip writes the archive anew. (Update
    // and Freshen always work on the archive that is there.)
    bool AllowAppend = false;

    void ClearFileSpecs();
    void AddFileSpec(const QString& fileSpec);
    int FileSpecCount() const { return int(m_fileSpecs.size()); }
    // 1-based, as the file specs were added; empty out of range.
    QString FileSpec(int index) const;

    // Writes the archive from the file specs. 0 on success, else a libzip error number
    // (or -1 for an error of the files), with ErrorText saying what went wrong. With no
    // file spec there is nothing to do: 0, and the archive is left as it is.
    int Zip();
    // Deletes the entries that match the file specs (names or patterns of entry names)
    // from the archive. 0 on success, as Zip.
    int Delete();
    QString ErrorText() const { return m_error; }

    // The three callbacks of the library: a message text; a progress text, whose answer false
    // cancels the run; the password for an encrypted archive (nothing: cancel).
    std::function<void(const QString&)> Message;
    std::function<bool(const QString&)> Progress;
    std::function<std::optional<QString>()> Password;

private:
    int run(bool deleting);
    QStringList m_fileSpecs;
    bool m_deleteFlag = false;
    QString m_error;
};
