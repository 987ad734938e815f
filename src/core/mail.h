#pragma once
// Mail: one message with a subject, a note text and one attached file, sent over SMTP. The
// server and the sender come from tbl_Settings (SmtpServer, MailFrom, SmtpUser, SmtpPassword),
// the recipient from the mailbox named by the caller (SupportMailbox, CountyMailbox).

#include <QSqlDatabase>
#include <QString>
#include <functional>

// Names of the mail values in tbl_Settings.
namespace MailSettingName {
inline constexpr const char* SmtpServer = "SmtpServer";
inline constexpr const char* MailFrom = "MailFrom";
inline constexpr const char* SmtpUser = "SmtpUser";
inline constexpr const char* SmtpPassword = "SmtpPassword";
inline constexpr const char* SupportMailbox = "SupportMailbox";
inline constexpr const char* CountyMailbox = "CountyMailbox";
} // namespace MailSettingName

// How the program reaches its mail server.
struct MailServer {
    QString url;  // smtp://host:port, or smtps://host:port for TLS from the start
    QString from; // the sender's address
    QString user; // empty: no login
    QString password;
};

struct MailMessage {
    QString to;
    QString subject;
    QString body;
    QString attachmentPath; // the file that goes along
    QString attachmentName; // its name in the mail; empty: the file's own name
};

struct MailResult {
    bool ok = false;
    QString error; // for the user: what is wrong, naming the setting or the server
};

// The value of a tbl_Settings row, trimmed; the last row of that name counts. Empty when there
// is none.
QString ReadSetting(QSqlDatabase db, const QString& name);

// The server values from tbl_Settings. False, with a message naming the missing setting, when
// SmtpServer or MailFrom is missing or blank.
bool ReadMailServer(QSqlDatabase db, MailServer* server, QString* error);

// Sends the message to the address held by the setting recipientSetting (SupportMailbox,
// CountyMailbox). A missing recipient setting, an unreadable attachment, a missing server
// setting or a failing server gives the reason and sends nothing. While a mail hook is
// installed the message goes to the hook instead of the server, and the server settings are
// not read.
MailResult SendMailTo(QSqlDatabase db, const QString& recipientSetting, MailMessage message);

// Sends over SMTP with libcurl: STARTTLS when the server offers it, a login when a user is
// given, the note as text and the attachment as base64 MIME.
MailResult SendMail(const MailServer& server, const MailMessage& message);

// A mail hook takes every message SendMailTo would send (with the recipient filled in and the
// attachment checked readable). The scenario driver installs one: scenarios never send mail.
using MailHook = std::function<void(const MailMessage&)>;
// Installs the hook (an empty one removes it) and returns the one it replaces.
MailHook InstallMailHook(MailHook hook);
