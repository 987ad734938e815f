#pragma once
// frmEmailDataFile and frmEmailDataFileCounty: the whole tax database, zipped beside itself and
// mailed to the support mailbox. The two screens do the same work.

#include <QSqlDatabase>
#include <QString>
#include <QWidget>

class QLabel;
class QPushButton;

// "KestLevyDsk2013.sqlite" -> "KestLevyDsk2013.zip": the database's suffix replaced.
QString DataFileArchiveNameFor(const QString& databaseFileName);

struct DataFileArchive {
    bool ok = false;
    QString archivePath; // beside the database
    QString error;       // for the user
};

// Zips a consistent copy of the open database (VACUUM INTO) into the archive beside it, as
// one entry under the database's bare name; an archive that is there is written anew.
DataFileArchive ZipDataFile(QSqlDatabase db, const QString& databasePath);

// "Kestrelvale County Tax Collector Data File - District 12-3": the subject and the note.
QString DataFileMailText(const QString& district, const QString& ward);

// The screen of both menu items.
class EmailDataFileScreen : public QWidget {
    Q_OBJECT
public:
    QLabel* lblMessage = nullptr;
    QPushButton* cmdZipAndEmail = nullptr;
    QPushButton* cmdExit = nullptr;

protected:
    EmailDataFileScreen(const char* screenName, QWidget* parent);

private:
    void cmdZipAndEmail_Click();
    void showStep(const char* text);
};

class frmEmailDataFile : public EmailDataFileScreen {
    Q_OBJECT
public:
    explicit frmEmailDataFile(QWidget* parent = nullptr)
        : EmailDataFileScreen("frmEmailDataFile", parent) {}
};

class frmEmailDataFileCounty : public EmailDataFileScreen {
    Q_OBJECT
public:
    explicit frmEmailDataFileCounty(QWidget* parent = nullptr)
        : EmailDataFileScreen("frmEmailDataFileCounty", parent) {}
};
