#include "rates/millage_common.h"

#include "core/common_values.h"
#include "core/message_window.h"
#include "core/messages.h"
#include "core/screen_host.h"
#include "core/tax_database.h"
#include "rates/millage_dates.h"
#include "reports/print_output.h"
#include "reports/print_screen.h"

#include <QButtonGroup>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlError>
#include <QSqlQuery>
#include <memory>

namespace {

const char* const DateColumns[7] = {"MailDate", "DiscDate", "FaceDate1", "FaceDate2",
                                    "PenDate",  "LastDate", "TaxDate"};

} // namespace

const std::array<const char*, 7> EarlyDateMessages = {
    "Early Billing Mail Date Must Be A Valid Date",
    "Early Billing Discount Date Must Be A Valid Date",
    "Early Billing First Face Date Must Be A Valid Date",
    "Early Billing Last Face Date Must Be A Valid Date",
    "Early Billing Penalty Date Must Be A Valid Date",
    "Early Billing Last Tax Date Must Be A Valid Date",
    "Early Billing Tax Claim Date Must Be A Valid Date"};
const std::array<const char*, 7> LateDateMessages = {
    "Late Billing Mail Date Must Be A Valid Date",
    "Late Billing Discount Date Must Be A Valid Date",
    "Late Billing First Face Date Must Be A Valid Date",
    "Late Billing Last Face Date Must Be A Valid Date",
    "Late Billing Penalty Date Must Be A Valid Date",
    "Late Billing Last Tax Date Must Be A Valid Date",
    "Late Billing Tax Claim Date Must Be A Valid Date"};
const std::array<const char*, 7> SchoolDateMessages = {
    "Mail Date Must Be A Valid Date",       "Discount Date Must Be A Valid Date",
    "First Face Date Must Be A Valid Date", "Last Face Date Must Be A Valid Date",
    "Penalty Date Must Be A Valid Date",    "Last Tax Date Must Be A Valid Date",
    "Tax Claim Date Must Be A Valid Date"};

std::optional<double> ParseRate(QStringView typed) {
    const QStringView s = typed.trimmed();
    qsizetype i = 0;
    if (i < s.size() && (s[i] == u'+' || s[i] == u'-'))
        ++i;
    int digits = 0;
    bool point = false;
    for (; i < s.size(); ++i) {
        if (s[i] >= u'0' && s[i] <= u'9')
            ++digits;
        else if (s[i] == u'.' && !point)
            point = true;
        else
            return std::nullopt;
    }
    if (digits == 0)
        return std::nullopt;
    bool ok = false;
    const double value = s.toString().toDouble(&ok); // QString::toDouble uses the C locale
    if (!ok)
        return std::nullopt;
    return value;
}

QString RateText(const QVariant& stored) {
    if (!stored.isValid() || stored.isNull())
        return QStringLiteral("0");
    bool ok = false;
    const double value = stored.toDouble(&ok);
    if (!ok)
        return QStringLiteral("0");
    // Fifteen significant digits give back exactly what was typed into a double.
    QString text = FormatNumber(value, u"0.##############");
    if (text.endsWith(u'.'))
        text.chop(1);
    return text;
}

QString AmountText(const QVariant& stored) {
    QString text = MoneyField(stored).format(u"0.####");
    if (text.endsWith(u'.'))
        text.chop(1);
    return text;
}

QString StoredDateText(const QVariant& stored) {
    return FormatDate(DateField(stored));
}

QLabel* TitleLabel(QWidget* parent, const char* name) {
    QLabel* label = NamedLabel(parent, name);
    QFont big = label->font();
    big.setBold(true);
    big.setPointSize(big.pointSize() + 2);
    label->setFont(big);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

bool CheckNumberFields(const std::vector<NumberCheck>& checks) {
    for (const NumberCheck& c : checks)
        if (c.field->text().trimmed().isEmpty())
            c.field->setText(QStringLiteral("0"));
    for (const NumberCheck& c : checks) {
        const bool numeric = c.amount ? Money::parse(c.field->text()).has_value()
                                      : ParseRate(c.field->text()).has_value();
        if (!numeric) {
            MsgBox(c.message, QString::fromLatin1(EnterRatesTitle), MsgButtons::Ok,
                   MsgIcon::Exclamation);
            c.field->setFocus();
            return false;
        }
    }
    return true;
}

double RateOf(const QLineEdit* field) {
    return ParseRate(field->text()).value_or(0.0);
}

Money AmountOf(const QLineEdit* field) {
    return Money::parse(field->text()).value_or(Money());
}

namespace {

// The rates in the order of the columns: name and column ('?' the body's letter), label.
struct BodyRate {
    QLineEdit* BodyRateFields::*member;
    const char* name;
    const char* label;
};
const BodyRate BodyRates[9] = {
    {&BodyRateFields::mr, "?MR", "Real Estate Millage:"},
    {&BodyRateFields::specialMr, "?1MR", "Special Millage:"},
    {&BodyRateFields::specialName, "?1TaxName", "Special Tax Name:"},
    {&BodyRateFields::discount, "?D", "Real Estate Discount %:"},
    {&BodyRateFields::penalty, "?P", "Real Estate Penalty %:"},
    {&BodyRateFields::occupation, "?MO", "Occupation Rate:"},
    {&BodyRateFields::perCapita, "?PC", "Per Capita Amount:"},
    {&BodyRateFields::perCapitaDiscount, "PC?D", "Per Capita Discount %:"},
    {&BodyRateFields::perCapitaPenalty, "PC?P", "Per Capita Penalty %:"}};
// The body's own rates as its screen shows them.
const int EditOrder[9] = {0, 2, 1, 3, 4, 6, 5, 7, 8};

QString bodyColumn(const BodyRate& rate, char letter) {
    return QString::fromLatin1(rate.name).replace(u'?', QLatin1Char(letter));
}

QGroupBox* buildRates(BodyRateFields& fields, QWidget* parent, const char* frameName,
                      const QString& title, char letter, bool reference) {
    auto* frame = new QGroupBox(title, parent);
    frame->setObjectName(QString::fromLatin1(frameName));
    auto* form = new QFormLayout(frame);
    for (int i = 0; i < 9; ++i) {
        const BodyRate& rate = BodyRates[reference ? i : EditOrder[i]];
        auto* field = new QLineEdit(frame);
        field->setObjectName(QStringLiteral("txt") + bodyColumn(rate, letter));
        if (reference)
            field->setReadOnly(true);
        else if (rate.member == &BodyRateFields::specialName)
            field->setMaxLength(10);
        fields.*rate.member = field;
        form->addRow(QString::fromLatin1(rate.label), field);
    }
    return frame;
}

} // namespace

QGroupBox* BodyRateFields::build(QWidget* parent, const char* frameName, const QString& title,
                                 char letter) {
    return buildRates(*this, parent, frameName, title, letter, false);
}

QGroupBox* BodyRateFields::buildReference(QWidget* parent, const char* frameName,
                                          const QString& title, char letter) {
    return buildRates(*this, parent, frameName, title, letter, true);
}

std::array<QLineEdit*, 9> BodyRateFields::editOrder() const {
    std::array<QLineEdit*, 9> order{};
    for (int i = 0; i < 9; ++i)
        order[i] = this->*BodyRates[EditOrder[i]].member;
    return order;
}

void BodyRateFields::show(const QSqlRecord& row) {
    for (const BodyRate& rate : BodyRates) {
        const QVariant stored = row.value(bodyColumn(rate, 'S'));
        (this->*rate.member)
            ->setText(rate.member == &BodyRateFields::specialName ? TextField(stored)
                                                                  : RateText(stored));
    }
}

QString BodyRateFields::specialNameText() const {
    return specialName->text();
}

void BodyRateFields::clear() {
    for (const BodyRate& rate : BodyRates)
        (this->*rate.member)->clear();
}

std::vector<NumberCheck> BodyRateFields::checks(const char* body) const {
    const QString name = QString::fromLatin1(body);
    return {
        {mr, name + QStringLiteral(" Real Estate Millage Rate must be numeric.")},
        {specialMr, name + QStringLiteral(" Special Millage Rate must be numeric.")},
        {discount, name + QStringLiteral(" Real Estate Discount Rate must be numeric.")},
        {penalty, name + QStringLiteral(" Real Estate Penalty Rate must be numeric.")},
        {occupation, name + QStringLiteral(" Occupation Rate must be numeric.")},
        {perCapita, name + QStringLiteral(" Per Capita Rate must be numeric")},
        {perCapitaDiscount, name + QStringLiteral(" Per Capita Discount Rate must be numeric")},
        {perCapitaPenalty, name + QStringLiteral(" Per Capita Penalty Rate must be numeric")},
    };
}

QVariantList DateSetValues(const MillageDateSet& d) {
    QVariantList values;
    for (const QDate& date :
         {d.mail, d.discountEnd, d.faceFirst, d.faceLast, d.penaltyFirst, d.lastDay, d.taxClaim})
        values << DateValue(date);
    return values;
}

bool UpdateInOneTransaction(QSqlDatabase db, const QString& sql, const QVariantList& values,
                            QString* error) {
    return InOneTransaction(db, error, [&] {
        QSqlQuery q(db);
        q.prepare(sql);
        for (const QVariant& value : values)
            q.addBindValue(value);
        return q.exec() || QueryFailed(db, q, error);
    });
}

OfficeDistrict ReadOfficeDistrict(QSqlDatabase db) {
    OfficeDistrict office;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT District, Ward FROM tbl_District")) && q.next()) {
        office.district = TextField(q.value(0));
        office.ward = TextField(q.value(1));
    }
    return office;
}

QString ReadTwpboroName(QSqlDatabase db, const char* column, const OfficeDistrict& office) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT %1 FROM tbl_Twpboro WHERE District = ? AND Ward = ?")
                  .arg(QLatin1String(column)));
    q.addBindValue(office.district);
    q.addBindValue(office.ward);
    if (q.exec() && q.next())
        return TextField(q.value(0));
    return {};
}

QString ReadCountyName(QSqlDatabase db) {
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT County FROM tbl_County")) && q.next())
        return TextField(q.value(0));
    return {};
}

QSqlRecord ReadMillfileRow(QSqlDatabase db, const OfficeDistrict& office) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT * FROM Millfile WHERE District = ? AND Ward = ?"));
    q.addBindValue(office.district);
    q.addBindValue(office.ward);
    if (q.exec() && q.next())
        return q.record();
    return {};
}

QSqlRecord ReadCountyMillfileRow(QSqlDatabase db) {
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT * FROM Millfile WHERE District = '00' AND Ward = '0'")) &&
        q.next())
        return q.record();
    return {};
}

void MillageButtons::build(QWidget* screen, bool stretch) {
    cmdAccept = NamedButton(screen, "cmdAccept", QStringLiteral("&Accept"));
    cmdClearScreen = NamedButton(screen, "cmdClearScreen", QStringLiteral("&Clear Screen"), false);
    cmdReset = NamedButton(screen, "cmdReset", QStringLiteral("&Reset"), false);
    cmdPrintScreen = NamedButton(screen, "cmdPrintScreen", QStringLiteral("&Print Screen"), false);
    QObject::connect(cmdPrintScreen, &QPushButton::clicked, screen,
                     [screen] { PrintScreenImage(screen, QString::fromLatin1(LetterPrinter)); });
    cmdExit = NamedButton(screen, "cmdExit", QStringLiteral("E&xit"), false);
    QObject::connect(cmdExit, &QPushButton::clicked, screen, [screen] { CloseScreen(screen); });
    row = new QHBoxLayout;
    if (stretch)
        row->addStretch();
    for (QPushButton* b : {cmdAccept, cmdClearScreen, cmdReset, cmdPrintScreen, cmdExit})
        row->addWidget(b);
}

void SaveMillages(const std::function<bool(QString*)>& save, const char* doneText) {
    QString error;
    bool saved = false;
    {
        PleaseWait wait(frmMessage::SavingData);
        saved = save(&error);
    }
    if (!saved) {
        MsgBox(QStringLiteral("The millages could not be saved: ") + error,
               QString::fromLatin1(MillagesTitle), MsgButtons::Ok, MsgIcon::Critical);
        return;
    }
    MsgBox(QString::fromLatin1(doneText), QString::fromLatin1(MillagesTitle), MsgButtons::Ok,
           MsgIcon::Exclamation);
}

void DateGroupFields::build(QWidget* parent, QFormLayout* form, const QString& prefix) {
    static const char* const labels[7] = {
        "Mail Date:",        "Last Day Of Discount:", "First Day Of Face:",
        "Last Day Of Face:", "First Day Of Penalty:", "Last Day To Pay:",
        "Tax Claim Date:"};
    QLineEdit** members[7] = {&txtMailDate, &txtDiscDate, &txtFaceDate1, &txtFaceDate2,
                              &txtPenDate,  &txtLastDate, &txtTaxDate};
    for (int i = 0; i < 7; ++i) {
        auto* field = new QLineEdit(parent);
        field->setObjectName(QStringLiteral("txt") + prefix + QLatin1String(DateColumns[i]));
        field->setMaxLength(10);
        *members[i] = field;
        form->addRow(QString::fromLatin1(labels[i]), field);
    }
}

std::array<QLineEdit*, 7> DateGroupFields::fields() const {
    return {txtMailDate, txtDiscDate, txtFaceDate1, txtFaceDate2,
            txtPenDate,  txtLastDate, txtTaxDate};
}

void DateGroupFields::show(const std::function<QVariant(const QString&)>& column,
                           const QString& prefix) {
    const auto all = fields();
    for (int i = 0; i < 7; ++i)
        all[i]->setText(StoredDateText(column(prefix + QLatin1String(DateColumns[i]))));
}

void DateGroupFields::clear() {
    for (QLineEdit* field : fields())
        field->clear();
}

bool DateGroupFields::check(const std::array<const char*, 7>& messages) const {
    const auto all = fields();
    bool anyFilled = false;
    for (QLineEdit* field : all)
        if (!field->text().trimmed().isEmpty())
            anyFilled = true;
    if (!anyFilled)
        return true;
    for (int i = 0; i < 7; ++i) {
        if (!ParseTypedDate(all[i]->text())) {
            MsgBox(QString::fromLatin1(messages[i]), QString::fromLatin1(EnterDatesTitle),
                   MsgButtons::Ok, MsgIcon::Exclamation);
            all[i]->setFocus();
            return false;
        }
    }
    return true;
}

MillageDateSet DateGroupFields::dates() const {
    auto date = [](const QLineEdit* field) {
        return ParseTypedDate(field->text()).value_or(QDate());
    };
    return {date(txtMailDate), date(txtDiscDate), date(txtFaceDate1), date(txtFaceDate2),
            date(txtPenDate),  date(txtLastDate), date(txtTaxDate)};
}

void DateGroupFields::figure(const char* mailDateMessage) {
    const std::optional<QDate> mail = ParseTypedDate(txtMailDate->text());
    if (!mail) {
        MsgBox(QString::fromLatin1(mailDateMessage), QString::fromLatin1(EnterDatesTitle),
               MsgButtons::Ok, MsgIcon::Exclamation);
        txtMailDate->setFocus();
        return;
    }
    const FiguredDates d = FigureDatesOnMailDate(*mail);
    txtMailDate->setText(ShortDateText(d.mail));
    txtFaceDate1->setText(ShortDateText(d.faceFirst));
    txtDiscDate->setText(ShortDateText(d.discountEnd));
    txtPenDate->setText(ShortDateText(d.penaltyFirst));
    txtFaceDate2->setText(ShortDateText(d.faceLast));
    txtLastDate->setText(ShortDateText(d.lastDay));
    txtTaxDate->setText(ShortDateText(d.taxClaim));
}

void BillingTimeFrame::build(QWidget* parent, const char* frameName, const QString& title,
                             const char* earlyName, const char* lateName) {
    frame = new QGroupBox(title, parent);
    frame->setObjectName(QString::fromLatin1(frameName));
    early = new QRadioButton(QStringLiteral("Early"), frame);
    early->setObjectName(QString::fromLatin1(earlyName));
    late = new QRadioButton(QStringLiteral("Late"), frame);
    late->setObjectName(QString::fromLatin1(lateName));
    group = new QButtonGroup(frame);
    group->addButton(early);
    group->addButton(late);
    auto* layout = new QHBoxLayout(frame);
    layout->addWidget(early);
    layout->addWidget(late);
}

void BillingTimeFrame::setFlag(const QString& stored) {
    // Only 'E' and 'L' choose an option; anything else, a lower-case letter too, chooses none.
    const QString flag = stored.trimmed();
    if (flag == QLatin1String("E"))
        early->setChecked(true);
    else if (flag == QLatin1String("L"))
        late->setChecked(true);
    else
        clear();
}

QString BillingTimeFrame::flag() const {
    if (early->isChecked())
        return QStringLiteral("E");
    if (late->isChecked())
        return QStringLiteral("L");
    return {};
}

void BillingTimeFrame::clear() {
    // An exclusive group never lets its last ticked button go.
    group->setExclusive(false);
    early->setChecked(false);
    late->setChecked(false);
    group->setExclusive(true);
}

void ReloadOnActivation(QWidget* screen, std::function<void()> reload) {
    ScreenHost* main = screenHost();
    if (!main || !main->mdiArea())
        return;
    // Active until another screen's window becomes the active one; a moment with no active
    // window (a box in front) does not count.
    auto active = std::make_shared<bool>(false);
    auto seen = std::make_shared<bool>(false);
    QObject::connect(main->mdiArea(), &QMdiArea::subWindowActivated, screen,
                     [screen, active, seen, reload = std::move(reload)](QMdiSubWindow* sub) {
                         if (!sub)
                             return;
                         if (sub->widget() != screen) {
                             *active = false;
                             return;
                         }
                         if (*active)
                             return;
                         *active = true;
                         // The first activation is the opening, which has loaded already.
                         if (*seen)
                             reload();
                         *seen = true;
                     });
}
