#include "core/screen_host.h"

#include <QDialog>
#include <QMdiSubWindow>

namespace {
ScreenHost* theHost = nullptr;
}

ScreenHost* screenHost() {
    return theHost;
}

void SetScreenHost(ScreenHost* host) {
    theHost = host;
}

void CloseScreen(QWidget* screen) {
    if (!screen)
        return;
    if (auto* sub = qobject_cast<QMdiSubWindow*>(screen->parentWidget())) {
        sub->close();
        return;
    }
    if (auto* dialog = qobject_cast<QDialog*>(screen)) {
        dialog->done(QDialog::Accepted);
        return;
    }
    screen->close();
}
