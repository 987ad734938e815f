#include "utilities/import_duplicate.h"

#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "utilities/duplicate_transfer.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>

namespace {
const char* const Title = "Import County Duplicate";
}

frmImportDuplicate::frmImportDuplicate(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmImportDuplicate"));
    setWindowTitle(QString::fromLatin1(Title));
    txtFolder = NamedField(this, QStringLiteral("txtFolder"));
    cmdFolder = NamedButton(this, QStringLiteral("cmdFolder"), QStringLiteral("..."));
    txtDatabase = NamedField(this, QStringLiteral("txtDatabase"));
    cmdDatabase = NamedButton(this, QStringLiteral("cmdDatabase"), QStringLiteral("..."));
    prgImport = new QProgressBar(this);
    prgImport->setObjectName(QStringLiteral("prgImport"));
    prgImport->setRange(0, 1000);
    prgImport->setValue(0);
    prgImport->setTextVisible(false);
    lstFindings = new QListWidget(this);
    lstFindings->setObjectName(QStringLiteral("lstFindings"));
    lstFindings->setMinimumSize(640, 180);
    cmdImport = NamedButton(this, QStringLiteral("cmdImport"), QStringLiteral("&Import"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"));
    cmdExit->setFocusPolicy(Qt::NoFocus);

    // A new file in a folder beside the database in use (a relative name is taken in the
    // program's folder), named as the data source.
    txtDatabase->setText(QStringLiteral("Imported/KestLevyDsk2013.sqlite"));

    auto* grid = new QGridLayout(this);
    grid->addWidget(NamedLabel(this, QStringLiteral("lblFolder"),
                               QStringLiteral("Folder of the county's CSV files:")),
                    0, 0);
    grid->addWidget(txtFolder, 0, 1);
    grid->addWidget(cmdFolder, 0, 2);
    grid->addWidget(
        NamedLabel(this, QStringLiteral("lblDatabase"), QStringLiteral("New tax database file:")),
        1, 0);
    grid->addWidget(txtDatabase, 1, 1);
    grid->addWidget(cmdDatabase, 1, 2);
    grid->addWidget(prgImport, 2, 0, 1, 3);
    grid->addWidget(lstFindings, 3, 0, 1, 3);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdImport);
    buttons->addWidget(cmdExit);
    grid->addLayout(buttons, 4, 0, 1, 3);

    connect(cmdFolder, &QPushButton::clicked, this, [this] {
        if (const std::optional<QString> folder =
                messageService().folderName(QString::fromLatin1(Title), txtFolder->text()))
            txtFolder->setText(QDir::toNativeSeparators(*folder));
    });
    connect(cmdDatabase, &QPushButton::clicked, this, [this] {
        if (const std::optional<QString> file =
                messageService().saveFileName(QString::fromLatin1(Title), txtDatabase->text(),
                                              QStringLiteral("Tax database (*.sqlite)")))
            txtDatabase->setText(QDir::toNativeSeparators(*file));
    });
    connect(cmdImport, &QPushButton::clicked, this, &frmImportDuplicate::import);
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void frmImportDuplicate::import() {
    const QString folder = txtFolder->text().trimmed();
    const QString file = txtDatabase->text().trimmed();
    if (folder.isEmpty()) {
        MsgBox(QStringLiteral("Please choose the folder that holds the county's CSV files."),
               QString::fromLatin1(Title), MsgButtons::Ok, MsgIcon::Exclamation);
        txtFolder->setFocus();
        return;
    }
    if (file.isEmpty()) {
        MsgBox(QStringLiteral("Please enter the name of the new tax database file."),
               QString::fromLatin1(Title), MsgButtons::Ok, MsgIcon::Exclamation);
        txtDatabase->setFocus();
        return;
    }
    // A relative name is taken in the program's folder.
    const QString path = QDir::cleanPath(
        QDir(session().programFolder()).absoluteFilePath(QDir::fromNativeSeparators(file)));
    QDir().mkpath(QFileInfo(path).absolutePath());

    lstFindings->clear();
    prgImport->setValue(0);
    const DuplicateImport result = ImportDuplicate(
        QDir(session().programFolder()).absoluteFilePath(QDir::fromNativeSeparators(folder)), path,
        [this](int perMille) {
            prgImport->setValue(perMille);
            prgImport->repaint();
            return true;
        });
    lstFindings->addItems(result.problems);
    lstFindings->addItems(result.notes);
    if (!result.ok) {
        prgImport->setValue(0);
        MsgBox(QStringLiteral("Nothing was imported. What is wrong is listed: %1.")
                   .arg(result.problems.size() == 1
                            ? QStringLiteral("1 finding")
                            : QStringLiteral("%1 findings").arg(result.problems.size())),
               QString::fromLatin1(Title), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    prgImport->setValue(1000);
    const MsgAnswer open =
        MsgBox(QStringLiteral("Import Complete: %1 rows.\nDo you want to work on the new "
                              "database now?")
                   .arg(result.rows),
               QString::fromLatin1(Title), MsgButtons::YesNo, MsgIcon::Question);
    if (open == MsgAnswer::Yes)
        openImported(path);
}

void frmImportDuplicate::openImported(const QString& path) {
    const QString previous = session().DatabasePath;
    if (ScreenHost* main = screenHost())
        main->closeScreensExcept(
            {QStringLiteral("frmLevyDeskMain"), QStringLiteral("frmARS"), objectName()});
    CloseSessionDatabase();
    QString error;
    if (!OpenSessionDatabase(path, &error)) {
        MsgBox(QStringLiteral("The new database cannot be opened: %1").arg(error),
               QString::fromLatin1(Title), MsgButtons::Ok, MsgIcon::Critical);
        OpenSessionDatabase(previous);
        return;
    }
    QSettings().setValue(QStringLiteral("database"), path);
    if (ScreenHost* main = screenHost())
        main->refreshCaption();
    CloseScreen(this);
}
