#pragma once
// frmLevyDeskMain: the one main window, its menu tree and the start and exit sequences.

#include "core/screen_host.h"

#include <QMainWindow>
#include <QString>

class QMdiArea;
class QMenu;
class QAction;

class frmLevyDeskMain : public QMainWindow, public ScreenHost {
    Q_OBJECT
public:
    explicit frmLevyDeskMain(QWidget* parent = nullptr);
    ~frmLevyDeskMain() override;

    // The start sequence on that database file. On failure the message is shown, no backup
    // will be offered, the window closes itself and false is returned.
    bool start(const QString& databasePath);

    QMdiArea* mdiArea() const override { return m_mdi; }
    // Title of the window as it stands with the open database: the tax year, the office, and
    // the version.
    void refreshCaption() override;
    // "major.minor.revision".
    static QString versionText();

    // Runs a menu command by its item name, as a click on it. False when there is no such
    // item, it is disabled, or it is hidden and opens no screen.
    bool runMenuCommand(const QString& itemName);
    QAction* menuItem(const QString& itemName) const;

    QWidget* hostWindow() override { return this; }
    void showScreen(QWidget* screen, bool modal) override;
    QWidget* openScreen(const QString& screenName) const override;
    QWidget* createScreen(const QString& screenName) override;
    void closeScreensExcept(const QStringList& keep) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildMenus();
    void openFromMenu(const QString& itemName);

    QMdiArea* m_mdi = nullptr;
    QWidget* m_logo = nullptr;
    bool m_exitDone = false;
};

// The main window of the run, or nullptr before it exists.
frmLevyDeskMain* mainWindow();
