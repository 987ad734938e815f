#include "utilities/email_data_file.h"

#include "core/mail.h"
#include "core/message_window.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "utilities/zip_archive.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QVBoxLayout>

namespace {

const char* const ScreenTitle = "Zip And E-Mail Data File";

} // namespace

QString DataFileArchiveNameFor(const QString& databaseFileName) {
    const QFileInfo info(databaseFileName);
    const QString suffix = info.suffix();
    const QString base = suffix.isEmpty()
                             ? databaseFileName
                             : databaseFileName.left(databaseFileName.size() - suffix.size() - 1);
    return base + QStringLiteral(".zip");
}

QString DataFileMailText(const QString& district, const QString& ward) {
    return QStringLiteral("Kestrelvale County Tax Collector Data File - District ") + district +
           u'-' + ward;
}

DataFileArchive ZipDataFile(QSqlDatabase db, const QString& databasePath) {
    DataFileArchive result;
    const QFileInfo database(databasePath);
    const QDir folder = database.absoluteDir();
    result.archivePath = folder.filePath(DataFileArchiveNameFor(database.fileName()));

    // The copy gets the database's own name, in a folder of its own beside the database, so
    // the archive's entry carries that name.
    QTemporaryDir work(folder.filePath(QStringLiteral(".zip-XXXXXX")));
    if (!work.isValid()) {
        result.error = QStringLiteral("No working folder can be made in %1 for the copy to zip.")
                           .arg(QDir::toNativeSeparators(folder.absolutePath()));
        return result;
    }
    const QString copy = QDir(work.path()).filePath(database.fileName());
    QSqlQuery q(db);
    q.prepare(QStringLiteral("VACUUM INTO ?"));
    q.addBindValue(copy);
    if (!q.exec()) {
        result.error = QStringLiteral("The copy of the database to zip could not be made: %1")
                           .arg(q.lastError().text());
        return result;
    }

    cZip zip;
    zip.ZipFile = result.archivePath;
    zip.StoreFolderNames = false;
    zip.RecurseSubDirs = false;
    zip.ClearFileSpecs();
    zip.AddFileSpec(copy);
    if (zip.Zip() != 0) {
        result.error = QStringLiteral("The data file could not be zipped: %1").arg(zip.ErrorText());
        return result;
    }
    result.ok = true;
    return result;
}

EmailDataFileScreen::EmailDataFileScreen(const char* screenName, QWidget* parent)
    : QWidget(parent) {
    setObjectName(QString::fromLatin1(screenName));
    setWindowTitle(QString::fromLatin1(ScreenTitle));

    lblMessage = NamedLabel(this, QStringLiteral("lblMessage"));
    lblMessage->setAlignment(Qt::AlignCenter);
    lblMessage->setMinimumWidth(420);
    cmdZipAndEmail = NamedButton(this, QStringLiteral("cmdZipAndEmail"),
                                 QStringLiteral("&Zip And E-Mail Data File"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdZipAndEmail);
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblMessage);
    layout->addLayout(buttons);

    connect(cmdZipAndEmail, &QPushButton::clicked, this, [this] { cmdZipAndEmail_Click(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void EmailDataFileScreen::showStep(const char* text) {
    lblMessage->setText(QString::fromLatin1(text));
    lblMessage->repaint();
}

void EmailDataFileScreen::cmdZipAndEmail_Click() {
    QSqlDatabase db = session().DbConnection;
    const QString title = QString::fromLatin1(ScreenTitle);

    showStep(frmMessage::ZippingFile);
    const DataFileArchive archive = ZipDataFile(db, session().DatabasePath);
    if (!archive.ok) {
        lblMessage->clear();
        MsgBox(archive.error, title, MsgButtons::Ok, MsgIcon::Critical);
        return;
    }

    showStep(frmMessage::EmailingFile);
    QString district, ward;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        district = TextField(q.value(0));
        ward = TextField(q.value(1));
    }
    MailMessage message;
    message.subject = DataFileMailText(district, ward);
    message.body = message.subject;
    message.attachmentPath = archive.archivePath;
    const MailResult sent = SendMailTo(db, QLatin1String(MailSettingName::SupportMailbox), message);
    if (!sent.ok) {
        // The archive stays beside the database; the next run writes it again.
        lblMessage->clear();
        MsgBox(sent.error, title, MsgButtons::Ok, MsgIcon::Critical);
        return;
    }

    showStep(frmMessage::Searching);
    MsgBox(QStringLiteral("Kestrelvale County Tax Collector Data File has been E-Mailed"), title);
    CloseScreen(this);
}
