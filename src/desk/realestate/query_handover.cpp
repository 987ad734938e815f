#include "desk/realestate/query_handover.h"

#include "core/screen_host.h"
#include "core/session.h"

#include <QPointer>
#include <QTimer>

namespace {

// Marks a screen whose closing already lowers its flag.
const char* const FlagWatched = "levydeskQueryFlagWatched";

} // namespace

QWidget* ShowScreenNamed(const QString& screenName, const std::function<QWidget*()>& create) {
    ScreenHost* host = screenHost();
    QWidget* screen = host ? host->openScreen(screenName) : nullptr;
    if (!screen) {
        screen = create();
        if (!screen)
            return nullptr;
    }
    if (host)
        host->showScreen(screen, false);
    else
        screen->show();
    return screen;
}

QWidget* ShowQueryTarget(const QString& screenName, const std::function<QWidget*()>& create) {
    session().QueryOpenedScreen.insert(screenName);
    QWidget* screen = ShowScreenNamed(screenName, create);
    if (!screen) {
        session().QueryOpenedScreen.remove(screenName);
        return nullptr;
    }
    if (!screen->property(FlagWatched).toBool()) {
        screen->setProperty(FlagWatched, true);
        QObject::connect(screen, &QObject::destroyed,
                         [screenName] { session().QueryOpenedScreen.remove(screenName); });
    }
    return screen;
}

void OpenScanScreen(QWidget* from) {
    const QString scan = QStringLiteral("frmScanData");
    ScreenHost* host = screenHost();
    if (!host || host->openScreen(scan))
        return;
    session().LastScreenName = from->objectName();
    QTimer::singleShot(0, from, [scan] {
        ScreenHost* now = screenHost();
        if (!now || now->openScreen(scan))
            return;
        if (QWidget* screen = now->createScreen(scan))
            now->showScreen(screen, true);
    });
}
