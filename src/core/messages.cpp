#include "core/messages.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace {

class DialogService final : public MessageService {
public:
    MsgAnswer message(const QString& title, const QString& text, MsgButtons buttons,
                      MsgIcon icon) override {
        QMessageBox box(QApplication::activeWindow());
        box.setWindowTitle(title);
        box.setText(text);
        switch (icon) {
        case MsgIcon::None:
            box.setIcon(QMessageBox::NoIcon);
            break;
        case MsgIcon::Information:
            box.setIcon(QMessageBox::Information);
            break;
        case MsgIcon::Exclamation:
            box.setIcon(QMessageBox::Warning);
            break;
        case MsgIcon::Critical:
            box.setIcon(QMessageBox::Critical);
            break;
        case MsgIcon::Question:
            box.setIcon(QMessageBox::Question);
            break;
        }
        switch (buttons) {
        case MsgButtons::Ok:
            box.setStandardButtons(QMessageBox::Ok);
            break;
        case MsgButtons::OkCancel:
            box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
            break;
        case MsgButtons::YesNo:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
            break;
        case MsgButtons::YesNoCancel:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            break;
        }
        switch (box.exec()) {
        case QMessageBox::Yes:
            return MsgAnswer::Yes;
        case QMessageBox::No:
            return MsgAnswer::No;
        case QMessageBox::Cancel:
            return MsgAnswer::Cancel;
        default:
            return buttons == MsgButtons::Ok ? MsgAnswer::Ok : MsgAnswer::Cancel;
        }
    }

    std::optional<QString> input(const QString& title, const QString& prompt,
                                 const QString& defaultText) override {
        bool ok = false;
        QString text = QInputDialog::getText(QApplication::activeWindow(), title, prompt,
                                             QLineEdit::Normal, defaultText, &ok);
        if (!ok)
            return std::nullopt;
        return text;
    }

    std::optional<QString> openFileName(const QString& title, const QString& folder,
                                        const QString& filter) override {
        QString path =
            QFileDialog::getOpenFileName(QApplication::activeWindow(), title, folder, filter);
        if (path.isEmpty())
            return std::nullopt;
        return path;
    }

    std::optional<QString> saveFileName(const QString& title, const QString& folder,
                                        const QString& filter) override {
        QString path =
            QFileDialog::getSaveFileName(QApplication::activeWindow(), title, folder, filter);
        if (path.isEmpty())
            return std::nullopt;
        return path;
    }

    std::optional<QString> folderName(const QString& title, const QString& folder) override {
        QString path =
            QFileDialog::getExistingDirectory(QApplication::activeWindow(), title, folder);
        if (path.isEmpty())
            return std::nullopt;
        return path;
    }
};

std::unique_ptr<MessageService>& current() {
    static std::unique_ptr<MessageService> service = std::make_unique<DialogService>();
    return service;
}

} // namespace

MessageService& messageService() {
    return *current();
}

std::unique_ptr<MessageService> installMessageService(std::unique_ptr<MessageService> service) {
    std::unique_ptr<MessageService> old = std::move(current());
    current() = service ? std::move(service) : std::make_unique<DialogService>();
    return old;
}

MsgAnswer MsgBox(const QString& text, const QString& title, MsgButtons buttons, MsgIcon icon) {
    return messageService().message(title, text, buttons, icon);
}

std::optional<QString> InputBox(const QString& prompt, const QString& title,
                                const QString& defaultText) {
    return messageService().input(title, prompt, defaultText);
}
