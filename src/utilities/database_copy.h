#pragma once
// Copies of the tax database: the backup beside it (and on the desktop), and the restore of a
// backup over it with a safety copy first. The screens ask their questions; these functions
// do the work and never ask anything.

#include <QDateTime>
#include <QString>

// "KestLevyDsk2013.sqlite" -> "KestLevyDsk2013.bkp": the database's own suffix replaced.
QString BackupFileNameFor(const QString& databaseFileName);
// "Levydsk 2013-03-14 03-05-07 PM.tmp": the safety copy a restore makes.
QString SafetyCopyNameFor(const QDateTime& when);

struct BackupRequest {
    QString databasePath; // the open database
    QString targetPath;   // where the backup goes
    QString desktopPath;  // a second copy, or empty for none
};

struct CopyResult {
    bool ok = false;
    QString error; // what went wrong, for the user
};

// A consistent copy of the session's open database (VACUUM INTO), written beside the target
// and then put in its place, so a failed backup leaves the previous one as it was.
CopyResult BackupDatabase(const BackupRequest& request);

struct RestoreRequest {
    QString databasePath; // the database to replace; its connection must be closed
    QString sourcePath;   // the backup to restore
    QDateTime now;        // names the safety copy
};

struct RestoreResult : CopyResult {
    QString safetyCopyPath;
};

// Copies the database to its safety copy, then the backup over the database. On a failure
// after the safety copy the database is put back from it.
RestoreResult RestoreDatabase(const RestoreRequest& request);
