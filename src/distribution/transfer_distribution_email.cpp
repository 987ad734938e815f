#include "distribution/transfer_distribution_email.h"

#include "core/mail.h"
#include "core/message_window.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "distribution/distribution_file.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QVBoxLayout>
#include <optional>

namespace {

const char* const TransferTitle = "Transfer Distribution By EMail";
const char* const NumberTitle = "Enter Distribution Number";

} // namespace

std::optional<QString> DistributionNumberText(const QString& typed) {
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,9}$"));
    const QString text = typed.trimmed();
    if (!digits.match(text).hasMatch())
        return std::nullopt;
    return QString::asprintf("%02d", text.toInt());
}

QString DistributionMailText(TaxingBody body, const QString& number, const QString& district,
                             const QString& ward) {
    return TaxingBodyName(body) + QStringLiteral(" R/E Distribution # ") + number +
           QStringLiteral(" - District ") + district + u'-' + ward;
}

const DistributionTables& TransferDistributionEMailScreen::tables() const {
    return m_disbType == u"PC" ? PerCapitaTables() : RealEstateTables();
}

TransferDistributionEMailScreen::TransferDistributionEMailScreen(const char* screenName,
                                                                 const char* disbType,
                                                                 QWidget* parent)
    : QWidget(parent), m_disbType(QString::fromLatin1(disbType)) {
    setObjectName(QString::fromLatin1(screenName));
    setWindowTitle(QString::fromLatin1(TransferTitle));

    auto box = [this](const char* name, const char* caption) {
        auto* b = new QCheckBox(QString::fromLatin1(caption), this);
        b->setObjectName(QString::fromLatin1(name));
        return b;
    };
    chkCounty = box("chkCounty", "Transfer County Distribution");
    chkTownship = box("chkTownship", "Transfer Township Distribution");
    chkSchool = box("chkSchool", "Transfer School Distribution");
    txtCDisbNum = NamedField(this, QStringLiteral("txtCDisbNum"), 4);
    txtTDisbNum = NamedField(this, QStringLiteral("txtTDisbNum"), 4);
    txtSDisbNum = NamedField(this, QStringLiteral("txtSDisbNum"), 4);
    cmdTransfer = NamedButton(this, QStringLiteral("cmdTransfer"), QStringLiteral("&Transfer"));
    cmdCancel = NamedButton(this, QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), false);

    auto* grid = new QGridLayout;
    const QList<std::pair<QCheckBox*, QLineEdit*>> rows = {
        {chkCounty, txtCDisbNum}, {chkTownship, txtTDisbNum}, {chkSchool, txtSDisbNum}};
    for (int i = 0; i < rows.size(); ++i) {
        grid->addWidget(rows.at(i).first, i, 0);
        grid->addWidget(new QLabel(QStringLiteral("Dist. #:"), this), i, 1);
        grid->addWidget(rows.at(i).second, i, 2);
        rows.at(i).second->setMaximumWidth(60);
    }
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdTransfer);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);
    setTabOrder(chkCounty, txtCDisbNum);
    setTabOrder(txtCDisbNum, chkTownship);
    setTabOrder(chkTownship, txtTDisbNum);
    setTabOrder(txtTDisbNum, chkSchool);
    setTabOrder(chkSchool, txtSDisbNum);
    setTabOrder(txtSDisbNum, cmdTransfer);

    connect(cmdTransfer, &QPushButton::clicked, this, [this] { cmdTransfer_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { CloseScreen(this); });
    load();
}

void TransferDistributionEMailScreen::load() {
    QSqlDatabase db = session().DbConnection;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        m_district = TextField(q.value(0));
        m_ward = TextField(q.value(1));
    }
    if (q.exec(QStringLiteral("SELECT TaxYear FROM Millfile WHERE District || Ward = '000'")) &&
        q.next())
        m_taxYear = TextField(q.value(0)).left(4);
    const QList<std::pair<TaxingBody, QLineEdit*>> fields = {{TaxingBody::County, txtCDisbNum},
                                                             {TaxingBody::Twp, txtTDisbNum},
                                                             {TaxingBody::School, txtSDisbNum}};
    for (const auto& [body, field] : fields) {
        q.prepare(QStringLiteral("SELECT DisbNum FROM tbl_DisbDates WHERE CTS = ? AND "
                                 "DisbType = ? ORDER BY DisbNum DESC LIMIT 1"));
        q.addBindValue(tables().body(body).cts);
        q.addBindValue(m_disbType);
        if (q.exec() && q.next() && !q.value(0).isNull())
            field->setText(QString::asprintf("%02lld", q.value(0).toLongLong()));
    }
}

void TransferDistributionEMailScreen::cmdTransfer_Click() {
    struct Choice {
        TaxingBody body;
        QCheckBox* box;
        QLineEdit* field;
    };
    const Choice choices[] = {{TaxingBody::County, chkCounty, txtCDisbNum},
                              {TaxingBody::Twp, chkTownship, txtTDisbNum},
                              {TaxingBody::School, chkSchool, txtSDisbNum}};
    const QString title = QString::fromLatin1(TransferTitle);

    // Every ticked body is checked, County, Twp, School, before anything is sent.
    QList<DistributionMail> work;
    for (const Choice& c : choices) {
        if (!c.box->isChecked())
            continue;
        const QString word = TaxingBodyName(c.body);
        auto refuse = [&](const QString& text, const QString& boxTitle) {
            MsgBox(text, boxTitle, MsgButtons::Ok, MsgIcon::Exclamation);
            c.field->setFocus();
        };
        if (c.field->text().trimmed().isEmpty())
            return refuse(word + QStringLiteral(" Distribution Number Must Be Specified"),
                          QString::fromLatin1(NumberTitle));
        const std::optional<QString> number = DistributionNumberText(c.field->text());
        if (!number)
            return refuse(word + QStringLiteral(" Distribution Number Must Be Numeric"),
                          QString::fromLatin1(NumberTitle));
        c.field->setText(*number);
        const QString path = DistributionFilePath(session().programFolder(), tables(), c.body,
                                                  m_district, m_taxYear + *number);
        if (!QFileInfo(path).isFile())
            return refuse(word + QStringLiteral(" Distribution File #") + *number +
                              QStringLiteral(" has not yet been created."),
                          title);
        work.append({c.body, *number});
    }

    for (const DistributionMail& item : work) {
        const QString key = m_taxYear + item.number;
        MailMessage message;
        message.subject = DistributionMailText(item.body, item.number, m_district, m_ward);
        message.body = message.subject;
        message.attachmentPath =
            DistributionFilePath(session().programFolder(), tables(), item.body, m_district, key);
        message.attachmentName = DistributionFileName(tables(), item.body, m_district, key);
        MailResult sent;
        {
            PleaseWait wait(frmMessage::EmailingFile);
            sent = SendMailTo(session().DbConnection,
                              QLatin1String(MailSettingName::SupportMailbox), message);
        }
        if (!sent.ok) {
            // What went before stays sent; the rest waits for the next try.
            MsgBox(sent.error, title, MsgButtons::Ok, MsgIcon::Critical);
            return;
        }
        MsgBox(TaxingBodyName(item.body) + QStringLiteral(" R/E Distribution # ") + item.number +
                   QStringLiteral(" has been E-Mailed"),
               title);
    }
}
