#include "utilities/backup_data.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/message_window.h"
#include "core/messages.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "utilities/database_copy.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const char* const BackupTitle = "Backup Tax Collector Database";
const char* const RestoreTitle = "Restore Tax Collector Database";

QString withSeparator(const QString& folder) {
    const QString native = QDir::toNativeSeparators(folder);
    return native.endsWith(QDir::separator()) ? native : native + QDir::separator();
}

QLabel* namedLabel(const char* name, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

} // namespace

void DatabaseCopyFields::build(QDialog* screen, QLabel* notice, QPushButton* action,
                               const QString& desktopCaption) {
    const QFileInfo database(session().DatabasePath);

    fraCurrentDatabaseInfo = new QGroupBox(QStringLiteral("Current Database Information"), screen);
    fraCurrentDatabaseInfo->setObjectName(QStringLiteral("fraCurrentDatabaseInfo"));
    lblLocation1 =
        namedLabel("lblLocation1", withSeparator(database.absolutePath()), fraCurrentDatabaseInfo);
    lblFileName1 = namedLabel("lblFileName1", database.fileName(), fraCurrentDatabaseInfo);
    auto* info = new QFormLayout(fraCurrentDatabaseInfo);
    info->addRow(QStringLiteral("Location:"), lblLocation1);
    info->addRow(QStringLiteral("File Name:"), lblFileName1);

    txtFileLocation = new QLineEdit(withSeparator(database.absolutePath()), screen);
    txtFileLocation->setObjectName(QStringLiteral("txtFileLocation"));
    txtFileName = new QLineEdit(BackupFileNameFor(database.fileName()), screen);
    txtFileName->setObjectName(QStringLiteral("txtFileName"));
    auto* target = new QFormLayout;
    target->addRow(QStringLiteral("Location:"), txtFileLocation);
    target->addRow(QStringLiteral("File Name:"), txtFileName);

    chkDesktop = new QCheckBox(desktopCaption, screen);
    chkDesktop->setObjectName(QStringLiteral("chkDesktop"));

    lblMessage = namedLabel("lblMessage", QString(), screen);
    lblMessage->setAlignment(Qt::AlignCenter);

    notice->setWordWrap(true);
    cmdExit = new QPushButton(QStringLiteral("E&xit"), screen);
    cmdExit->setObjectName(QStringLiteral("cmdExit"));
    cmdExit->setFocusPolicy(Qt::NoFocus);
    QObject::connect(cmdExit, &QPushButton::clicked, screen, [screen] { CloseScreen(screen); });

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(action);
    buttons->addWidget(cmdExit);

    auto* layout = new QVBoxLayout(screen);
    layout->addWidget(fraCurrentDatabaseInfo);
    layout->addWidget(notice);
    layout->addLayout(target);
    layout->addWidget(chkDesktop);
    layout->addWidget(lblMessage);
    layout->addLayout(buttons);
    screen->setMinimumWidth(640);
}

QString DatabaseCopyFields::fieldsPath() const {
    return QDir(txtFileLocation->text().trimmed()).filePath(txtFileName->text().trimmed());
}

QString DatabaseCopyFields::copyPath() const {
    if (chkDesktop->isChecked())
        return QDir(DesktopFolderPath()).filePath(txtFileName->text().trimmed());
    return fieldsPath();
}

bool ReopenSessionDatabase() {
    if (!OpenSessionDatabase(session().DatabasePath))
        return false;
    if (ScreenHost* main = screenHost())
        main->refreshCaption();
    return true;
}

namespace {

// The end of a copy: the database is opened again, the please-wait line goes, and the user is
// told how it went; the screen closes after a success.
void finishCopy(QDialog* screen, QLabel* lblMessage, const CopyResult& result, const char* title,
                const QString& success) {
    const bool reopened = ReopenSessionDatabase();
    lblMessage->clear();
    if (!result.ok) {
        MsgBox(result.error, QString::fromLatin1(title), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    if (!reopened) {
        MsgBox(QStringLiteral("Tax Collector Database Not Available"),
               QStringLiteral("Kestrelvale County Tax Collector System"), MsgButtons::Ok,
               MsgIcon::Critical);
        return;
    }
    MsgBox(success, QString::fromLatin1(title), MsgButtons::Ok, MsgIcon::Information);
    CloseScreen(screen);
}

} // namespace

frmBackupData::frmBackupData(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmBackupData"));
    setWindowTitle(QString::fromLatin1(BackupTitle));
    lblBackupMessage =
        namedLabel("lblBackupMessage",
                   QStringLiteral("You are about to make a backup of your Tax Collector "
                                  "database.   Use the RESTORE option in the UTILITIES "
                                  "menu to retrieve your data."),
                   this);
    cmdBackup = new QPushButton(QStringLiteral("&Backup"), this);
    cmdBackup->setObjectName(QStringLiteral("cmdBackup"));
    fields.build(
        this, lblBackupMessage, cmdBackup,
        QStringLiteral("   Copy the Tax Collector database backup to your desktop.             "
                       "(This is useful if you plan to make a copy of the data file on CD..."));
    connect(cmdBackup, &QPushButton::clicked, this, &frmBackupData::backup);
}

void frmBackupData::backup() {
    if (fields.txtFileName->text().trimmed().isEmpty()) {
        MsgBox(QStringLiteral("Please enter the name of the backup file."),
               QString::fromLatin1(BackupTitle), MsgButtons::Ok, MsgIcon::Exclamation);
        fields.txtFileName->setFocus();
        return;
    }
    fields.lblMessage->setText(QString::fromLatin1(frmMessage::BackingUpData));
    fields.lblMessage->repaint();
    if (ScreenHost* main = screenHost())
        main->closeScreensExcept({QStringLiteral("frmLevyDeskMain"), QStringLiteral("frmARS"),
                                  QStringLiteral("frmBackupData")});

    BackupRequest request;
    request.databasePath = session().DatabasePath;
    request.targetPath = fields.fieldsPath();
    if (fields.chkDesktop->isChecked())
        request.desktopPath =
            QDir(DesktopFolderPath()).filePath(fields.txtFileName->text().trimmed());
    // The copy is taken from the open connection, so it is consistent; the connection is then
    // closed and opened again, as after any copy of the file.
    const CopyResult result = BackupDatabase(request);
    CloseSessionDatabase();
    finishCopy(this, fields.lblMessage, result, BackupTitle,
               QStringLiteral("Your data has been backed up successfully!"));
}

frmRestoreData::frmRestoreData(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmRestoreData"));
    setWindowTitle(QString::fromLatin1(RestoreTitle));
    lblRestoreMessage =
        namedLabel("lblRestoreMessage",
                   QStringLiteral("You are about to restore a previous backup of your Tax "
                                  "Collector database. Using the feature will destroy all "
                                  "data currently in your database."),
                   this);
    cmdRestore = new QPushButton(QStringLiteral("&Restore"), this);
    cmdRestore->setObjectName(QStringLiteral("cmdRestore"));
    fields.build(
        this, lblRestoreMessage, cmdRestore,
        QStringLiteral("   Copy the Tax Collector database backup from your desktop.          "
                       "(This is useful if you plan to restore the data file from a CD.)"));
    connect(cmdRestore, &QPushButton::clicked, this, &frmRestoreData::restore);
}

void frmRestoreData::restore() {
    const QString source = fields.copyPath();
    const QFileInfo sourceInfo(source);
    const QString notValid =
        QStringLiteral("This is not a valid tax collector database to restore!");
    if (!sourceInfo.isFile()) {
        MsgBox(notValid, QString::fromLatin1(RestoreTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    const QString fileDate =
        QLocale::c().toString(sourceInfo.lastModified(), QStringLiteral("M/d/yyyy h:mm:ss AP"));
    const MsgAnswer answer =
        MsgBox(QStringLiteral("Do you want to restore the file named '") + sourceInfo.fileName() +
                   QStringLiteral("' with a date of '") + fileDate + QStringLiteral("'?"),
               QString::fromLatin1(RestoreTitle), MsgButtons::YesNo, MsgIcon::Question);
    if (answer != MsgAnswer::Yes) {
        MsgBox(QStringLiteral("File Not Restored"), QStringLiteral("Restore Database"));
        return;
    }
    // Nothing is replaced by a file that is not a sound tax database.
    if (QFileInfo(source).canonicalFilePath() ==
            QFileInfo(session().DatabasePath).canonicalFilePath() ||
        !TaxDatabase::isValidTaxDatabase(source)) {
        MsgBox(notValid, QString::fromLatin1(RestoreTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }

    fields.lblMessage->setText(QString::fromLatin1(frmMessage::RestoringData));
    fields.lblMessage->repaint();
    if (ScreenHost* main = screenHost())
        main->closeScreensExcept({QStringLiteral("frmLevyDeskMain"), QStringLiteral("frmARS"),
                                  QStringLiteral("frmRestoreData")});
    CloseSessionDatabase();

    RestoreRequest request;
    request.databasePath = session().DatabasePath;
    request.sourcePath = source;
    request.now = Clock::now();
    const RestoreResult result = RestoreDatabase(request);
    finishCopy(this, fields.lblMessage, result, RestoreTitle,
               QStringLiteral("Your data has been restored successfully!"));
}
