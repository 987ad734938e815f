#include "desk/percapita/pc_handover.h"

#include "core/screen_host.h"
#include "core/session.h"
#include "desk/percapita/query_screens.h"
#include "desk/realestate/query_handover.h"

#include <QLineEdit>
#include <QMetaObject>
#include <QPushButton>

namespace {

QWidget* makeScreen(const QString& screenName) {
    ScreenHost* host = screenHost();
    if (!host)
        return nullptr;
    if (QWidget* open = host->openScreen(screenName))
        return open;
    return host->createScreen(screenName);
}

} // namespace

QWidget* HandToDeskScreen(const QString& screenName, const QString& number, QObject* list,
                          const char* savedSignal) {
    QWidget* target = ShowQueryTarget(screenName, [screenName] { return makeScreen(screenName); });
    if (!target)
        return nullptr;
    if (list && savedSignal &&
        target->metaObject()->indexOfSignal(
            QMetaObject::normalizedSignature(savedSignal + 1).constData()) >= 0)
        QObject::connect(target, savedSignal, list, SLOT(requery()), Qt::UniqueConnection);
    if (!QMetaObject::invokeMethod(target, "openFromQuery", Q_ARG(QString, number))) {
        // A screen without the call takes the number as typed into its number field.
        if (auto* field = target->findChild<QLineEdit*>(QStringLiteral("txtBillNo"))) {
            field->setText(number);
            field->setFocus(Qt::OtherFocusReason);
        }
    }
    session().QueryOpenedScreen.remove(screenName);
    return target;
}

void ShowPerCapitaQueryList() {
    ShowScreenNamed(QStringLiteral("frmPCQueryTC"),
                    [] { return static_cast<QWidget*>(new frmPCQueryTC); });
}
