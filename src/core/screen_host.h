#pragma once
// The window that holds the screens. The main window is the one host of a run; a screen opens,
// finds and closes other screens through it and never needs the main window's own class.

#include <QString>
#include <QStringList>

class QMdiArea;
class QWidget;

class ScreenHost {
public:
    virtual ~ScreenHost() = default;

    // The window a message or please-wait window is centred on.
    virtual QWidget* hostWindow() = 0;
    // The client area; a screen watches it to learn when it becomes the active one.
    virtual QMdiArea* mdiArea() const = 0;
    // Shows a screen in the client area (non-modal) or runs it modally, centred in the client
    // area. A non-modal screen that is open already is brought to the front.
    virtual void showScreen(QWidget* screen, bool modal) = 0;
    // The open screen of that name, or nullptr.
    virtual QWidget* openScreen(const QString& screenName) const = 0;
    // A new screen of that name as the menu opens it (not shown yet), or nullptr when the
    // program has no such screen.
    virtual QWidget* createScreen(const QString& screenName) {
        (void)screenName;
        return nullptr;
    }
    // Closes every open screen but those named, without questions.
    virtual void closeScreensExcept(const QStringList& keep) = 0;
    // Sets the title again from the open database (after a restore).
    virtual void refreshCaption() = 0;
};

// The host of the run, or nullptr before the main window exists (a test that builds a screen
// alone).
ScreenHost* screenHost();
// Called by the host itself when it comes and goes.
void SetScreenHost(ScreenHost* host);

// Closes a screen: its client-area window, or the dialog it is.
void CloseScreen(QWidget* screen);
