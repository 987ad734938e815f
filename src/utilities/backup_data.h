#pragma once
// frmBackupData and frmRestoreData: a copy of the tax database beside it (and on the
// desktop), and a backup copied back over it.

#include <QDialog>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

// The widgets both screens share: where the database is, where the copy goes or comes
// from, the desktop box and the please-wait line.
struct DatabaseCopyFields {
    QGroupBox* fraCurrentDatabaseInfo = nullptr;
    QLabel* lblLocation1 = nullptr;
    QLabel* lblFileName1 = nullptr;
    QLineEdit* txtFileLocation = nullptr;
    QLineEdit* txtFileName = nullptr;
    QCheckBox* chkDesktop = nullptr;
    QLabel* lblMessage = nullptr;
    QPushButton* cmdExit = nullptr;

    // Builds the widgets into the screen around its own notice and action button, and fills
    // them from the open database.
    void build(QDialog* screen, QLabel* notice, QPushButton* action, const QString& desktopCaption);
    // Where the copy is: the desktop when the box is ticked, the two fields otherwise.
    QString copyPath() const;
    QString fieldsPath() const;
};

class frmBackupData : public QDialog {
    Q_OBJECT
public:
    explicit frmBackupData(QWidget* parent = nullptr);

    DatabaseCopyFields fields;
    QLabel* lblBackupMessage = nullptr;
    QPushButton* cmdBackup = nullptr;

private:
    void backup();
};

class frmRestoreData : public QDialog {
    Q_OBJECT
public:
    explicit frmRestoreData(QWidget* parent = nullptr);

    DatabaseCopyFields fields;
    QLabel* lblRestoreMessage = nullptr;
    QPushButton* cmdRestore = nullptr;

private:
    void restore();
};

// Reopens the session's database after a copy and refreshes the main window's title. False
// when the database cannot be opened again.
bool ReopenSessionDatabase();
