#include "core/message_window.h"

#include "core/screen_host.h"

#include <QLabel>
#include <QVBoxLayout>

frmMessage::frmMessage(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {
    setObjectName(QStringLiteral("frmMessage"));
    setWindowTitle(QStringLiteral("Kestrelvale County Tax Collector"));
    lblMessage = new QLabel(this);
    lblMessage->setObjectName(QStringLiteral("lblMessage"));
    lblMessage->setAlignment(Qt::AlignCenter);
    QFont f = lblMessage->font();
    f.setBold(true);
    lblMessage->setFont(f);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblMessage);
    setMinimumWidth(420);
}

PleaseWait::PleaseWait(const char* text) {
    QWidget* owner = screenHost() ? screenHost()->hostWindow() : nullptr;
    m_window = new frmMessage(owner);
    m_window->lblMessage->setText(QString::fromLatin1(text));
    m_window->adjustSize();
    if (owner) {
        const QPoint centre = owner->geometry().center();
        m_window->move(centre - QPoint(m_window->width() / 2, m_window->height() / 2));
    }
    m_window->show();
    // Paint now: the work that follows blocks the event loop, and running the loop here could
    // start other work in the middle of this one.
    m_window->repaint();
}

PleaseWait::~PleaseWait() {
    m_window->hide();
    m_window->deleteLater();
}
