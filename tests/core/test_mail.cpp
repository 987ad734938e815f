// Mail over SMTP against a real server on 127.0.0.1 (aiosmtpd saving into a maildir): what
// arrives, from the settings of the tax database; and the clear refusals when a setting is
// missing or the server fails.

#include "core/mail.h"
#include "support/test_support.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

const char* const Python = "/usr/bin/python3";

QString freePort() {
    QProcess p;
    p.start(QString::fromLatin1(Python),
            {"-c", "import socket\ns=socket.socket()\ns.bind(('127.0.0.1',0))\n"
                   "print(s.getsockname()[1])"});
    p.waitForFinished(10000);
    return QString::fromLatin1(p.readAllStandardOutput()).trimmed();
}

// Reads the one message of the maildir as a person's mail program would: headers decoded,
// the text part, and the attachment's name and bytes (hex).
const char* const ReadMessage = R"(
import email, email.header, json, mailbox, sys
box = mailbox.Maildir(sys.argv[1], create=False)
out = []
for key in sorted(box.keys()):
    m = email.message_from_bytes(box.get_bytes(key))
    d = {'to': m['To'], 'from': m['From'],
         'subject': str(email.header.make_header(email.header.decode_header(m['Subject']))),
         'text': '', 'names': [], 'data': ''}
    for part in m.walk():
        if part.is_multipart():
            continue
        if part.get_filename():
            d['names'].append(part.get_filename())
            d['data'] = part.get_payload(decode=True).hex()
        else:
            d['text'] += part.get_payload(decode=True).decode('utf-8')
    out.append(d)
print(json.dumps(out))
)";

} // namespace

class TestMail : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void arrivesWithItsAttachment_data();
    void arrivesWithItsAttachment();
    void refusesWithTheMissingSetting_data();
    void refusesWithTheMissingSetting();
    void failingServerIsNamed();
    void offeredStartTlsIsTaken();

private:
    QJsonArray received() const;
    MailMessage message(const QString& subject) const;
    void setSetting(const QString& name, const QString& value);

    QTemporaryDir m_dir;
    QString m_maildir;
    QString m_port;
    QProcess m_server;
    std::unique_ptr<TempTaxDatabase> m_db;
    QString m_attachment;
    QByteArray m_attachmentBytes;
};

void TestMail::initTestCase() {
    QVERIFY(m_dir.isValid());
    m_maildir = m_dir.filePath("maildir");
    m_port = freePort();
    QVERIFY2(!m_port.isEmpty(), "no free port");
    m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_server.start(QString::fromLatin1(Python),
                   {"-m", "aiosmtpd", "-n", "-l", "127.0.0.1:" + m_port, "-c",
                    "aiosmtpd.handlers.Mailbox", m_maildir});
    QVERIFY(m_server.waitForStarted(10000));
    // Ready once it takes a connection.
    QProcess wait;
    wait.start(QString::fromLatin1(Python),
               {"-c",
                "import socket,sys,time\nfor i in range(200):\n try:\n"
                "  socket.create_connection(('127.0.0.1',int(sys.argv[1])),1).close();"
                "sys.exit(0)\n except OSError:\n  time.sleep(0.05)\nsys.exit(1)",
                m_port});
    QVERIFY(wait.waitForFinished(20000));
    QCOMPARE(wait.exitCode(), 0);

    // A file with every kind of byte, line ends of both kinds among them.
    m_attachment = m_dir.filePath("RE12County201301.txt");
    for (int i = 0; i < 256; ++i)
        m_attachmentBytes.append(char(i));
    m_attachmentBytes += "\"12\",\"3\"\r\nline two\n";
    QFile f(m_attachment);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(m_attachmentBytes);
}

void TestMail::cleanupTestCase() {
    m_server.kill();
    m_server.waitForFinished(5000);
}

void TestMail::init() {
    // The server keeps its maildir; only the messages of the test before go.
    for (const char* sub : {"new", "cur"}) {
        QDir folder(QDir(m_maildir).filePath(QString::fromLatin1(sub)));
        for (const QString& name : folder.entryList(QDir::Files))
            folder.remove(name);
    }
    m_db = std::make_unique<TempTaxDatabase>();
    setSetting("SmtpServer", "smtp://127.0.0.1:" + m_port);
    setSetting("MailFrom", "collector@kestrelvale.example.org");
    setSetting("SupportMailbox", "smtp:support@ars.example.org");
    setSetting("CountyMailbox", "its@kestrelvale.example.org");
}

void TestMail::setSetting(const QString& name, const QString& value) {
    m_db->exec(QStringLiteral("INSERT INTO tbl_Settings (Name, Value) VALUES ('%1', '%2')")
                   .arg(name, value));
}

MailMessage TestMail::message(const QString& subject) const {
    MailMessage m;
    m.subject = subject;
    m.attachmentPath = m_attachment;
    return m;
}

QJsonArray TestMail::received() const {
    QProcess p;
    p.start(QString::fromLatin1(Python), {"-c", QString::fromLatin1(ReadMessage), m_maildir});
    p.waitForFinished(10000);
    return QJsonDocument::fromJson(p.readAllStandardOutput()).array();
}

void TestMail::arrivesWithItsAttachment_data() {
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("subject");
    QTest::addColumn<QString>("name");
    AddRow("support, old address form", "SupportMailbox", "support@ars.example.org",
           "County R/E Distribution # 02 - District 12-3", "");
    AddRow("county, own attachment name", "CountyMailbox", "its@kestrelvale.example.org",
           "Kestrelvale County Tax Collector Data File - District 12-3", "KestLevyDsk2013.zip");
    AddRow("subject beyond ASCII", "SupportMailbox", "support@ars.example.org",
           "Übersicht – Distribution", "");
}

void TestMail::arrivesWithItsAttachment() {
    QFETCH(QString, setting);
    QFETCH(QString, address);
    QFETCH(QString, subject);
    QFETCH(QString, name);
    MailMessage mail = message(subject);
    mail.body = subject;
    mail.attachmentName = name;
    const MailResult result = SendMailTo(m_db->db(), setting, mail);
    QVERIFY2(result.ok, qPrintable(result.error));

    const QJsonArray mails = received();
    QCOMPARE(mails.size(), 1);
    const QJsonObject got = mails.first().toObject();
    QCOMPARE(got["to"].toString(), "<" + address + ">");
    QCOMPARE(got["from"].toString(), QString("<collector@kestrelvale.example.org>"));
    QCOMPARE(got["subject"].toString(), subject);
    QCOMPARE(got["text"].toString().trimmed(), subject);
    const QString expectedName = name.isEmpty() ? QString("RE12County201301.txt") : name;
    QCOMPARE(got["names"].toArray(), QJsonArray{expectedName});
    QCOMPARE(QByteArray::fromHex(got["data"].toString().toLatin1()), m_attachmentBytes);
}

void TestMail::refusesWithTheMissingSetting_data() {
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("named");
    // The last row of a name counts, so a blank one hides the good one before it.
    AddRow("no recipient", "SupportMailbox", " ", "SupportMailbox");
    AddRow("no server", "SmtpServer", "", "SmtpServer");
    AddRow("no sender", "MailFrom", "  ", "MailFrom");
}

void TestMail::refusesWithTheMissingSetting() {
    QFETCH(QString, setting);
    QFETCH(QString, value);
    QFETCH(QString, named);
    setSetting(setting, value);
    MailMessage mail = message("test");
    const MailResult result = SendMailTo(m_db->db(), "SupportMailbox", mail);
    QVERIFY(!result.ok);
    QVERIFY2(result.error.contains("setting " + named + " is missing"), qPrintable(result.error));
    QCOMPARE(received().size(), 0);

    // A file that is not there is named too.
    mail.attachmentPath = m_dir.filePath("gone.txt");
    const MailResult noFile = SendMailTo(m_db->db(), "CountyMailbox", mail);
    QVERIFY(!noFile.ok);
    QVERIFY2(noFile.error.contains("gone.txt"), qPrintable(noFile.error));
}

void TestMail::failingServerIsNamed() {
    const QString deadPort = freePort();
    setSetting("SmtpServer", "smtp://127.0.0.1:" + deadPort);
    const MailResult result = SendMailTo(m_db->db(), "SupportMailbox", message("test"));
    QVERIFY(!result.ok);
    QVERIFY2(result.error.contains("smtp://127.0.0.1:" + deadPort) &&
                 result.error.contains("SmtpServer"),
             qPrintable(result.error));
}

void TestMail::offeredStartTlsIsTaken() {
    // A server that offers STARTTLS with a certificate nobody vouches for: the mail goes no
    // further than the TLS handshake, where the certificate is refused.
    QProcess openssl;
    openssl.start("openssl", {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1",
                              "-subj", "/CN=127.0.0.1", "-keyout", m_dir.filePath("key.pem"),
                              "-out", m_dir.filePath("cert.pem")});
    QVERIFY(openssl.waitForFinished(30000));
    QCOMPARE(openssl.exitCode(), 0);
    const QString port = freePort();
    QProcess tls;
    tls.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    tls.start(QString::fromLatin1(Python),
              {"-m", "aiosmtpd", "-n", "-l", "127.0.0.1:" + port, "--tlscert",
               m_dir.filePath("cert.pem"), "--tlskey", m_dir.filePath("key.pem"), "-c",
               "aiosmtpd.handlers.Mailbox", m_maildir});
    QVERIFY(tls.waitForStarted(10000));
    setSetting("SmtpServer", "smtp://127.0.0.1:" + port);
    MailResult result;
    for (int attempt = 0; attempt < 100; ++attempt) {
        result = SendMailTo(m_db->db(), "SupportMailbox", message("test"));
        if (!result.error.contains("connect", Qt::CaseInsensitive))
            break;
        QTest::qWait(100); // the server is still starting
    }
    tls.kill();
    tls.waitForFinished(5000);
    QVERIFY(!result.ok);
    QVERIFY2(result.error.contains("certificate", Qt::CaseInsensitive), qPrintable(result.error));
    QCOMPARE(received().size(), 0);
}

QTEST_GUILESS_MAIN(TestMail)
#include "test_mail.moc"
