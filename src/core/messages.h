#pragma once
// Every message box, question, input box and file chooser of the program goes through this
// service. The program installs the one that shows real dialogs; tests install a scripted one.

#include <QString>
#include <memory>
#include <optional>

enum class MsgIcon { None, Information, Exclamation, Critical, Question };
enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MsgAnswer { Ok, Cancel, Yes, No };

class MessageService {
public:
    virtual ~MessageService() = default;
    virtual MsgAnswer message(const QString& title, const QString& text, MsgButtons buttons,
                              MsgIcon icon) = 0;
    // An input box: the typed text, or nothing when it was cancelled.
    virtual std::optional<QString> input(const QString& title, const QString& prompt,
                                         const QString& defaultText) = 0;
    // File choosers: the chosen path, or nothing when cancelled.
    virtual std::optional<QString> openFileName(const QString& title, const QString& folder,
                                                const QString& filter) = 0;
    virtual std::optional<QString> saveFileName(const QString& title, const QString& folder,
                                                const QString& filter) = 0;
    // A folder chooser. A scripted service answers it as it answers a file chooser.
    virtual std::optional<QString> folderName(const QString& title, const QString& folder) {
        return openFileName(title, folder, QString());
    }
};

// The service in force. Until one is installed, the dialog service is used.
MessageService& messageService();
// Installs a service (tests, the scenario driver) and returns the one it replaces.
std::unique_ptr<MessageService> installMessageService(std::unique_ptr<MessageService> service);

// The common shapes of a box: text first, then the title, as the screens read best.
MsgAnswer MsgBox(const QString& text, const QString& title, MsgButtons buttons = MsgButtons::Ok,
                 MsgIcon icon = MsgIcon::None);
std::optional<QString> InputBox(const QString& prompt, const QString& title,
                                const QString& defaultText = QString());
