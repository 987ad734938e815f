#include "desk/percapita/pc_handover.h"

#include "core/screen_host.h"
#include "core/session.h"
#include "desk/percapita/query_screens.h"
#include "desk/realestate/query_handover.h"

#include <QLineEdit>
#include <QMetaObject>
#include <QPushButton>

namespace {

const char* const BillFormName = "frmPCPrintTaxBills";

QWidget* makeScreen(const QString& screenName) {
    ScreenHost* host = screenHost();
    if (!host)
        return nullptr;
    if (QWidget* open = host->openScreen(screenName))
        return open;
    return host->createScreen(screenName);
}

} // namespace

bool PerCapitaBillFormExists() {
    ScreenHost* host = screenHost();
    if (!host)
        return false;
    if (host->openScreen(QString::fromLatin1(BillFormName)))
        return true;
    QWidget* probe = host->createScreen(QString::fromLatin1(BillFormName));
    delete probe;
    return probe != nullptr;
}

bool OpenPCPrintTaxBillsFor(const QString& billNo) {
    const QString name = QString::fromLatin1(BillFormName);
    QWidget* form = ShowScreenNamed(name, [name] { return makeScreen(name); });
    if (!form)
        return false;
    if (auto* bill = form->findChild<QLineEdit*>(QStringLiteral("txtBillNo")))
        bill->setText(billNo.trimmed());
    if (auto* count = form->findChild<QLineEdit*>(QStringLiteral("txtNumberOfMailers")))
        count->setText(QStringLiteral("1"));
    if (auto* ok = form->findChild<QPushButton*>(QStringLiteral("cmdOK")))
        ok->setFocus(Qt::OtherFocusReason);
    return true;
}

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
