#include "core/mail.h"

#include "core/clock.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QSqlQuery>
#include <QUuid>

#include <curl/curl.h>
#include <mutex>

namespace {

MailHook& hook() {
    static MailHook h;
    return h;
}

// A header text as it may stand in a mail: plain ASCII as it is, anything else as an
// encoded word.
QByteArray headerText(const QString& text) {
    bool ascii = true;
    for (QChar c : text)
        if (c.unicode() < 0x20 || c.unicode() > 0x7e)
            ascii = false;
    if (ascii)
        return text.toLatin1();
    return "=?UTF-8?B?" + text.toUtf8().toBase64() + "?=";
}

// "Mon, 23 Nov 2026 09:30:00 -0800", in English whatever the machine's locale.
QByteArray mailDate(const QDateTime& when) {
    const QLocale c = QLocale::c();
    const int offset = when.offsetFromUtc() / 60;
    const QString zone = QString::asprintf("%c%02d%02d", offset < 0 ? '-' : '+', qAbs(offset) / 60,
                                           qAbs(offset) % 60);
    return (c.toString(when, QStringLiteral("ddd, dd MMM yyyy HH:mm:ss ")) + zone).toLatin1();
}

// The address of a mail: "smtp:name@host" (the old mail client's form) counts as name@host.
QString bareAddress(const QString& address) {
    QString a = address.trimmed();
    if (a.startsWith(QStringLiteral("smtp:"), Qt::CaseInsensitive) &&
        !a.startsWith(QStringLiteral("smtp://"), Qt::CaseInsensitive))
        a = a.mid(5).trimmed();
    return a;
}

QString missingSetting(const char* name) {
    return QStringLiteral("The mail setting %1 is missing: enter it in the table tbl_Settings "
                          "of the tax database.")
        .arg(QLatin1String(name));
}

void initCurlOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

// Everything curl was given, released when the send is over.
struct CurlSend {
    CURL* curl = nullptr;
    curl_mime* mime = nullptr;
    curl_slist* recipients = nullptr;
    curl_slist* headers = nullptr;
    ~CurlSend() {
        curl_slist_free_all(headers);
        curl_slist_free_all(recipients);
        curl_mime_free(mime);
        if (curl)
            curl_easy_cleanup(curl);
    }
};

} // namespace

QString ReadSetting(QSqlDatabase db, const QString& name) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral(
        "SELECT Value FROM tbl_Settings WHERE Name = ? ORDER BY rowid DESC LIMIT 1"));
    q.addBindValue(name);
    if (!q.exec() || !q.next() || q.value(0).isNull())
        return QString();
    return q.value(0).toString().trimmed();
}

bool ReadMailServer(QSqlDatabase db, MailServer* server, QString* error) {
    server->url = ReadSetting(db, QLatin1String(MailSettingName::SmtpServer));
    server->from = bareAddress(ReadSetting(db, QLatin1String(MailSettingName::MailFrom)));
    server->user = ReadSetting(db, QLatin1String(MailSettingName::SmtpUser));
    server->password = ReadSetting(db, QLatin1String(MailSettingName::SmtpPassword));
    if (server->url.isEmpty()) {
        *error = missingSetting(MailSettingName::SmtpServer);
        return false;
    }
    if (server->from.isEmpty()) {
        *error = missingSetting(MailSettingName::MailFrom);
        return false;
    }
    return true;
}

MailResult SendMailTo(QSqlDatabase db, const QString& recipientSetting, MailMessage message) {
    MailResult result;
    message.to = bareAddress(ReadSetting(db, recipientSetting));
    if (message.to.isEmpty()) {
        result.error = missingSetting(qPrintable(recipientSetting));
        return result;
    }
    const QFileInfo attachment(message.attachmentPath);
    if (message.attachmentName.isEmpty())
        message.attachmentName = attachment.fileName();
    if (!attachment.isFile() || !attachment.isReadable()) {
        result.error =
            QStringLiteral("The file %1 to be sent cannot be read.").arg(message.attachmentPath);
        return result;
    }
    if (hook()) {
        hook()(message);
        result.ok = true;
        return result;
    }
    MailServer server;
    if (!ReadMailServer(db, &server, &result.error))
        return result;
    return SendMail(server, message);
}

MailResult SendMail(const MailServer& server, const MailMessage& message) {
    MailResult result;
    initCurlOnce();
    CurlSend send;
    send.curl = curl_easy_init();
    if (!send.curl) {
        result.error = QStringLiteral("The mail could not be prepared (no mail library).");
        return result;
    }
    CURL* curl = send.curl;
    const QByteArray url = server.url.toUtf8();
    const QByteArray from = "<" + server.from.toUtf8() + ">";
    const QByteArray to = "<" + message.to.toUtf8() + ">";
    const QByteArray user = server.user.toUtf8();
    const QByteArray password = server.password.toUtf8();
    char errorText[CURL_ERROR_SIZE] = {};

    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errorText);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_URL, url.constData());
    // TLS when the server offers it (STARTTLS); smtps:// has it from the start.
    curl_easy_setopt(curl, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_TRY));
    if (!user.isEmpty()) {
        curl_easy_setopt(curl, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(curl, CURLOPT_PASSWORD, password.constData());
    }
    curl_easy_setopt(curl, CURLOPT_MAIL_FROM, from.constData());
    send.recipients = curl_slist_append(send.recipients, to.constData());
    curl_easy_setopt(curl, CURLOPT_MAIL_RCPT, send.recipients);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, 30L);
    // A large attachment may take long; a transfer that stands still for a minute has failed.
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, 60L);

    const QByteArray domain = server.from.section(u'@', 1).toUtf8();
    const QList<QByteArray> headerLines = {
        "Date: " + mailDate(Clock::now()),
        "From: " + from,
        "To: " + to,
        "Subject: " + headerText(message.subject),
        "Message-ID: <" + QUuid::createUuid().toString(QUuid::WithoutBraces).toLatin1() + "@" +
            (domain.isEmpty() ? QByteArray("levydesk") : domain) + ">",
    };
    for (const QByteArray& line : headerLines)
        send.headers = curl_slist_append(send.headers, line.constData());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, send.headers);

    send.mime = curl_mime_init(curl);
    curl_mimepart* note = curl_mime_addpart(send.mime);
    const QByteArray body = message.body.toUtf8() + "\r\n";
    curl_mime_data(note, body.constData(), size_t(body.size()));
    curl_mime_type(note, "text/plain; charset=UTF-8");
    curl_mime_encoder(note, "quoted-printable");

    curl_mimepart* file = curl_mime_addpart(send.mime);
    const QByteArray path = QFile::encodeName(message.attachmentPath);
    const QString name = message.attachmentName.isEmpty()
                             ? QFileInfo(message.attachmentPath).fileName()
                             : message.attachmentName;
    if (curl_mime_filedata(file, path.constData()) != CURLE_OK) {
        result.error =
            QStringLiteral("The file %1 to be sent cannot be read.").arg(message.attachmentPath);
        return result;
    }
    curl_mime_filename(file, name.toUtf8().constData());
    curl_mime_type(file, "application/octet-stream");
    curl_mime_encoder(file, "base64");
    curl_easy_setopt(curl, CURLOPT_MIMEPOST, send.mime);

    const CURLcode code = curl_easy_perform(curl);
    if (code != CURLE_OK) {
        const QString detail = errorText[0] ? QString::fromUtf8(errorText)
                                            : QString::fromUtf8(curl_easy_strerror(code));
        result.error = QStringLiteral("The mail to %1 could not be sent through the mail server "
                                      "%2 (setting SmtpServer): %3")
                           .arg(message.to, server.url, detail.trimmed());
        return result;
    }
    result.ok = true;
    return result;
}

MailHook InstallMailHook(MailHook newHook) {
    MailHook previous = std::move(hook());
    hook() = std::move(newHook);
    return previous;
}
