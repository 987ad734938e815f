#include "distribution/distribution_file_screens.h"

#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "distribution/distribution_file.h"
#include "distribution/distribution_numbers.h"
#include "rates/millage_common.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const char* const NumberTitle = "Enter Distribution Number";
const char* const CreateTitle = "Create Distribution File";
const char* const DesktopTitle = "Transfer Distribution To Desktop";

bool refuse(QLineEdit* field, const QString& text, const QString& title) {
    MsgBox(text, title, MsgButtons::Ok, MsgIcon::Exclamation);
    field->setFocus(Qt::OtherFocusReason);
    return false;
}

// A number given and numeric, rewritten in "00"; the message of the first check that fails.
std::optional<int> checkedNumber(TaxingBody body, QLineEdit* field) {
    const QString word = TaxingBodyName(body);
    if (field->text().trimmed().isEmpty()) {
        refuse(field, word + QStringLiteral(" Distribution Number Must Be Specified"),
               QString::fromLatin1(NumberTitle));
        return std::nullopt;
    }
    const std::optional<int> number = ParseWholeNumber(field->text());
    if (!number) {
        refuse(field, word + QStringLiteral(" Distribution Number Must Be Numeric"),
               QString::fromLatin1(NumberTitle));
        return std::nullopt;
    }
    field->setText(TwoDigits(*number));
    return number;
}

} // namespace

std::optional<std::vector<CheckedDistributionFile>>
CheckTransferFiles(const DistributionTables& tables, const std::vector<TransferChoice>& choices,
                   const QString& taxYear, const QString& district, const QString& programFolder,
                   const QString& screenTitle) {
    std::vector<CheckedDistributionFile> out;
    for (const TransferChoice& choice : choices) {
        if (!choice.check->isChecked())
            continue;
        const std::optional<int> number = checkedNumber(choice.body, choice.number);
        if (!number)
            return std::nullopt;
        CheckedDistributionFile file;
        file.body = choice.body;
        file.number = TwoDigits(*number);
        file.key = DistributionKey(taxYear, *number);
        file.path = DistributionFilePath(programFolder, tables, choice.body, district, file.key);
        if (!QFile::exists(file.path)) {
            refuse(choice.number,
                   TaxingBodyName(choice.body) + QStringLiteral(" Distribution File #") +
                       file.number + QStringLiteral(" has not yet been created."),
                   screenTitle);
            return std::nullopt;
        }
        out.push_back(file);
    }
    return out;
}

QString TransferDistributionText(const DistributionTables& tables, TaxingBody body,
                                 const QString& number) {
    const QString kind = tables.disbType == u"PC" ? QStringLiteral(" P/C") : QStringLiteral(" R/E");
    return TaxingBodyName(body) + kind + QStringLiteral(" Distribution # ") + number;
}

DistributionFileScreen::DistributionFileScreen(const DistributionTables& tables, Kind kind,
                                               const QString& name, const QString& title,
                                               QWidget* parent)
    : QWidget(parent), m_tables(tables), m_kind(kind) {
    setObjectName(name);
    setWindowTitle(title);
    buildScreen();
    load();
    session().LastScreenName = objectName();
}

void DistributionFileScreen::buildScreen() {
    const bool create = m_kind == Kind::Create;
    const QString verb = create ? QStringLiteral("Create") : QStringLiteral("Transfer");
    chkCounty = new QCheckBox(verb + QStringLiteral(" County Distribution"), this);
    chkCounty->setObjectName(QStringLiteral("chkCounty"));
    chkTownship = new QCheckBox(verb + QStringLiteral(" Township Distribution"), this);
    chkTownship->setObjectName(QStringLiteral("chkTownship"));
    chkSchool = new QCheckBox(verb + QStringLiteral(" School Distribution"), this);
    chkSchool->setObjectName(QStringLiteral("chkSchool"));
    txtCDisbNum = NamedField(this, QStringLiteral("txtCDisbNum"), 2);
    txtTDisbNum = NamedField(this, QStringLiteral("txtTDisbNum"), 2);
    txtSDisbNum = NamedField(this, QStringLiteral("txtSDisbNum"), 2);
    QPushButton* action = nullptr;
    if (create)
        action = cmdCreate =
            NamedButton(this, QStringLiteral("cmdCreate"), QStringLiteral("&Create"));
    else
        action = cmdTransfer =
            NamedButton(this, QStringLiteral("cmdTransfer"), QStringLiteral("&Transfer"));
    cmdExit = NamedButton(this, QStringLiteral("cmdExit"), QStringLiteral("E&xit"), false);

    auto* grid = new QGridLayout;
    int row = 0;
    for (auto [check, field] :
         {std::pair{chkCounty, txtCDisbNum}, std::pair{chkTownship, txtTDisbNum},
          std::pair{chkSchool, txtSDisbNum}}) {
        grid->addWidget(check, row, 0);
        grid->addWidget(field, row, 1);
        ++row;
    }
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(action);
    buttons->addStretch();
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    if (create)
        connect(cmdCreate, &QPushButton::clicked, this, [this] { this->create(); });
    else
        connect(cmdTransfer, &QPushButton::clicked, this, [this] { transfer(); });
    connect(cmdExit, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

void DistributionFileScreen::load() {
    QSqlDatabase db = session().DbConnection;
    const OfficeDistrict office = ReadOfficeDistrict(db);
    m_district = office.district;
    m_ward = office.ward;
    m_taxYear = ReadCountyTaxYear(db).left(4);
    if (m_taxYear.isEmpty())
        m_taxYear = session().TaxYear;
    for (const TransferChoice& choice : choices()) {
        const LastDistribution last =
            ReadLastDistribution(db, m_tables.disbType, m_tables.body(choice.body).cts);
        choice.number->setText(last.exists() ? TwoDigits(last.number) : QString());
    }
}

std::vector<TransferChoice> DistributionFileScreen::choices() const {
    return {{TaxingBody::County, chkCounty, txtCDisbNum},
            {TaxingBody::Twp, chkTownship, txtTDisbNum},
            {TaxingBody::School, chkSchool, txtSDisbNum}};
}

void DistributionFileScreen::create() {
    // Every ticked number is checked before any file is touched.
    std::vector<std::pair<TaxingBody, QString>> keys;
    for (const TransferChoice& choice : choices()) {
        if (!choice.check->isChecked())
            continue;
        const std::optional<int> number = checkedNumber(choice.body, choice.number);
        if (!number)
            return;
        keys.emplace_back(choice.body, DistributionKey(m_taxYear, *number));
    }
    QSqlDatabase db = session().DbConnection;
    for (const auto& [body, key] : keys) {
        const QString path =
            DistributionFilePath(session().programFolder(), m_tables, body, m_district, key);
        QString error;
        const QStringList lines =
            DistributionRowsAsLines(db, m_tables, body, m_district, m_ward, key, &error);
        if (!error.isEmpty() || !WriteDistributionFile(path, lines, &error)) {
            MsgBox(QStringLiteral("The distribution file ") + path +
                       QStringLiteral(" could not be written: ") + error,
                   QString::fromLatin1(CreateTitle), MsgButtons::Ok, MsgIcon::Critical);
            return;
        }
    }
    MsgBox(m_tables.disbType == u"PC" ? QStringLiteral("Finished")
                                      : QStringLiteral("Distribution File Created"),
           QString::fromLatin1(CreateTitle));
}

void DistributionFileScreen::transfer() {
    const std::optional<std::vector<CheckedDistributionFile>> files =
        CheckTransferFiles(m_tables, choices(), m_taxYear, m_district, session().programFolder(),
                           QString::fromLatin1(DesktopTitle));
    if (!files)
        return;
    const QString desktop = DesktopFolderPath();
    for (const CheckedDistributionFile& file : *files) {
        const QString target =
            QDir(desktop).filePath(DistributionFileName(m_tables, file.body, m_district, file.key));
        QFile::remove(target);
        if (desktop.isEmpty() || !QFile::copy(file.path, target)) {
            MsgBox(QStringLiteral("The distribution file could not be copied to ") + target +
                       QLatin1Char('.'),
                   QString::fromLatin1(DesktopTitle), MsgButtons::Ok, MsgIcon::Critical);
            return;
        }
        MsgBox(TransferDistributionText(m_tables, file.body, file.number) +
                   QStringLiteral(" has been copied to your desktop."),
               QString::fromLatin1(DesktopTitle));
    }
}

frmRECreateDistributionFile::frmRECreateDistributionFile(QWidget* parent)
    : DistributionFileScreen(RealEstateTables(), Kind::Create,
                             QStringLiteral("frmRECreateDistributionFile"),
                             QStringLiteral("Recreate Distribution File"), parent) {}

frmPCCreateDistributionFile::frmPCCreateDistributionFile(QWidget* parent)
    : DistributionFileScreen(PerCapitaTables(), Kind::Create,
                             QStringLiteral("frmPCCreateDistributionFile"),
                             QStringLiteral("Recreate Per Capita Distribution File"), parent) {}

frmRETransferDistributionDesktop::frmRETransferDistributionDesktop(QWidget* parent)
    : DistributionFileScreen(RealEstateTables(), Kind::Desktop,
                             QStringLiteral("frmRETransferDistributionDesktop"),
                             QStringLiteral("Transfer Distribution To Desktop"), parent) {}

frmPCTransferDistributionDesktop::frmPCTransferDistributionDesktop(QWidget* parent)
    : DistributionFileScreen(
          PerCapitaTables(), Kind::Desktop, QStringLiteral("frmPCTransferDistributionDesktop"),
          QStringLiteral("Transfer Per Capita Distribution To Desktop"), parent) {}
