#include "distribution/distribute_receipts.h"

#include "core/clock.h"
#include "core/common_values.h"
#include "core/messages.h"
#include "core/named_widgets.h"
#include "core/screen_host.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "distribution/distribution_file.h"
#include "distribution/distribution_numbers.h"
#include "distribution/screen_parts.h"
#include "rates/millage_common.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QVBoxLayout>

namespace {

const char* const DateTitle = "Enter Distribution Date";
const char* const NumberTitle = "Enter Distribution Number";

double rate(const QVariant& value) {
    return value.isNull() ? 0.0 : value.toDouble();
}

} // namespace

DistributeReceiptsScreen::DistributeReceiptsScreen(const DistributionTables& tables,
                                                   BodiesWithRates shown, const QString& name,
                                                   QWidget* parent)
    : QWidget(parent), m_tables(tables) {
    setObjectName(name);
    setWindowTitle(QString::fromLatin1(DistributeTitle));
    buildScreen();
    load(shown);
    session().LastScreenName = objectName();
}

frmREDistributeReceipts::frmREDistributeReceipts(QWidget* parent)
    : DistributeReceiptsScreen(RealEstateTables(), &RealEstateBodiesWithRates,
                               QStringLiteral("frmREDistributeReceipts"), parent) {}

frmPCDistributeReceipts::frmPCDistributeReceipts(QWidget* parent)
    : DistributeReceiptsScreen(PerCapitaTables(), &PerCapitaBodiesWithRates,
                               QStringLiteral("frmPCDistributeReceipts"), parent) {}

DistributeReceiptsScreen::Frame& DistributeReceiptsScreen::buildFrame(Frame& f,
                                                                      const QString& title,
                                                                      const QString& checkCaption,
                                                                      const QString& letter) {
    f.frame = new QGroupBox(title, this);
    f.frame->setObjectName(QStringLiteral("fra") + (letter == u"C"   ? QStringLiteral("County")
                                                    : letter == u"T" ? QStringLiteral("Twp")
                                                                     : QStringLiteral("School")));
    f.check = new QCheckBox(checkCaption, f.frame);
    f.check->setObjectName(QStringLiteral("chk") + f.frame->objectName().mid(3));
    f.prevDate = ShownField(f.frame, QStringLiteral("txt%1PrevDisbDate").arg(letter), 10);
    f.prevNum = ShownField(f.frame, QStringLiteral("txt%1PrevDisbNum").arg(letter), 2);
    f.date = NamedField(f.frame, QStringLiteral("txt%1DisbDate").arg(letter), 10);
    f.number = NamedField(f.frame, QStringLiteral("txt%1Disbnum").arg(letter), 2);
    auto* g = new QGridLayout(f.frame);
    g->addWidget(f.check, 0, 0, 1, 4);
    g->addWidget(new QLabel(QStringLiteral("Last Distribution:"), f.frame), 1, 0);
    g->addWidget(f.prevDate, 1, 1);
    g->addWidget(new QLabel(QStringLiteral("Dist. #:"), f.frame), 1, 2);
    g->addWidget(f.prevNum, 1, 3);
    g->addWidget(new QLabel(QStringLiteral("Distribute To:"), f.frame), 2, 0);
    g->addWidget(f.date, 2, 1);
    g->addWidget(new QLabel(QStringLiteral("Dist. #:"), f.frame), 2, 2);
    g->addWidget(f.number, 2, 3);

    Frame* frame = &f;
    connect(f.check, &QCheckBox::toggled, this,
            [this, frame](bool on) { setFrameEnabled(*frame, on); });
    // A date typed to its full length sends the collector on to the number.
    connect(f.date, &QLineEdit::textEdited, this, [frame](const QString& text) {
        if (text.size() == 10)
            frame->number->setFocus(Qt::OtherFocusReason);
    });
    return f;
}

void DistributeReceiptsScreen::buildScreen() {
    m_frames[0].body = TaxingBody::County;
    m_frames[0].word = QStringLiteral("County");
    m_frames[1].body = TaxingBody::Twp;
    // The township frame's messages were always assembled without their body word.
    m_frames[1].word = QString();
    m_frames[2].body = TaxingBody::School;
    m_frames[2].word = QStringLiteral("School");

    Frame& c = buildFrame(m_frames[0], QStringLiteral("County Distribution"),
                          QStringLiteral("Distribute County"), QStringLiteral("C"));
    Frame& t = buildFrame(m_frames[1], QStringLiteral("Twp/Boro/City Distribution"),
                          QStringLiteral("Distribute Township"), QStringLiteral("T"));
    Frame& s = buildFrame(m_frames[2], QStringLiteral("School Distribution"),
                          QStringLiteral("Distribute School"), QStringLiteral("S"));
    fraCounty = c.frame;
    fraTwp = t.frame;
    fraSchool = s.frame;
    chkCounty = c.check;
    chkTwp = t.check;
    chkSchool = s.check;
    txtCPrevDisbDate = c.prevDate;
    txtCPrevDisbNum = c.prevNum;
    txtCDisbDate = c.date;
    txtCDisbnum = c.number;
    txtTPrevDisbDate = t.prevDate;
    txtTPrevDisbNum = t.prevNum;
    txtTDisbDate = t.date;
    txtTDisbnum = t.number;
    txtSPrevDisbDate = s.prevDate;
    txtSPrevDisbNum = s.prevNum;
    txtSDisbDate = s.date;
    txtSDisbnum = s.number;

    txtRecnum = ShownField(this, QStringLiteral("txtRecnum"), 12);
    txtVoid = ShownField(this, QStringLiteral("txtVoid"), 1);
    cmdDistribute =
        NamedButton(this, QStringLiteral("cmdDistribute"), QStringLiteral("&Distribute"));
    cmdCancel = NamedButton(this, QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), false);

    auto* progress = new QHBoxLayout;
    progress->addWidget(new QLabel(QStringLiteral("Receipt #:"), this));
    progress->addWidget(txtRecnum);
    progress->addWidget(txtVoid);
    progress->addStretch();
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdDistribute);
    buttons->addStretch();
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fraCounty);
    layout->addWidget(fraTwp);
    layout->addWidget(fraSchool);
    layout->addLayout(progress);
    layout->addLayout(buttons);

    connect(cmdDistribute, &QPushButton::clicked, this, [this] { distribute(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { CloseScreen(this); });
}

std::array<bool, 3> RealEstateBodiesWithRates(QSqlDatabase db, const QString& district,
                                              const QString& ward) {
    QSqlQuery q(db);
    double countySmr = 0, countyS1mr = 0, lmr = 0, tmr = 0, smr = 0;
    QString s1TaxName;
    if (q.exec(QStringLiteral("SELECT SMR, S1MR FROM Millfile WHERE District || Ward = '000'")) &&
        q.next()) {
        countySmr = rate(q.value(0));
        countyS1mr = rate(q.value(1));
    }
    q.prepare(QStringLiteral("SELECT LMR, TMR, SMR, S1TaxName FROM Millfile WHERE District || "
                             "Ward = ?"));
    q.addBindValue(district + ward);
    if (q.exec() && q.next()) {
        lmr = rate(q.value(0));
        tmr = rate(q.value(1));
        smr = rate(q.value(2));
        s1TaxName = TextField(q.value(3)).trimmed();
    }
    bool special = false;
    q.prepare(QStringLiteral("SELECT Mill FROM Spectax WHERE District = ? AND Ward = ? ORDER BY "
                             "TaxKey"));
    q.addBindValue(district);
    q.addBindValue(ward);
    if (q.exec())
        for (int i = 0; i < 3 && q.next(); ++i)
            special = special || rate(q.value(0)) != 0;
    return {countySmr != 0 || countyS1mr != 0 || lmr != 0, special || tmr != 0,
            smr != 0 || !s1TaxName.isEmpty()};
}

std::array<bool, 3> PerCapitaBodiesWithRates(QSqlDatabase db, const QString& district,
                                             const QString& ward) {
    // Per capita and occupation rates: SPC and SMO of the county row for the County, TPC and
    // TMO of the collector's own row for the municipality, SPC and SMO of it for the school.
    auto rates = [&db](const QString& districtWard, const char* perCapita, const char* occupation) {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT %1, %2 FROM Millfile WHERE District || Ward = ?")
                      .arg(QLatin1String(perCapita), QLatin1String(occupation)));
        q.addBindValue(districtWard);
        return q.exec() && q.next() && (rate(q.value(0)) != 0 || rate(q.value(1)) != 0);
    };
    return {rates(QStringLiteral("000"), "SPC", "SMO"), rates(district + ward, "TPC", "TMO"),
            rates(district + ward, "SPC", "SMO")};
}

void DistributeReceiptsScreen::load(BodiesWithRates shown) {
    QSqlDatabase db = session().DbConnection;
    const OfficeDistrict office = ReadOfficeDistrict(db);
    m_district = office.district;
    m_ward = office.ward;
    m_taxYear = SessionTaxYear(db);

    const std::array<bool, 3> withRates = shown(db, m_district, m_ward);
    for (std::size_t i = 0; i < m_frames.size(); ++i) {
        Frame& f = m_frames[i];
        showFrame(f, withRates[i]);
        fillFrame(f);
        f.check->setChecked(false);
        setFrameEnabled(f, false);
    }
}

void DistributeReceiptsScreen::showFrame(Frame& f, bool shown) {
    f.frame->setVisible(shown);
    f.frame->setEnabled(shown);
    f.check->setVisible(shown);
    f.check->setEnabled(shown);
}

void DistributeReceiptsScreen::fillFrame(Frame& f) {
    const DistributionBody& body = m_tables.body(f.body);
    const LastDistribution last =
        ReadLastDistribution(session().DbConnection, m_tables.disbType, body.cts);
    f.prevDate->setText(last.exists() ? FormatDate(last.date) : QString());
    f.prevNum->setText(last.exists() ? TwoDigits(last.number) : QString());
    f.date->setText(FormatDate(Clock::today()));
    f.number->setText(TwoDigits(last.number + 1));
}

void DistributeReceiptsScreen::setFrameEnabled(Frame& f, bool on) {
    for (QLineEdit* field : {f.prevDate, f.prevNum, f.date, f.number})
        field->setEnabled(on);
}

bool DistributeReceiptsScreen::validate(Frame& f, BodyDistribution* request) {
    auto refuse = [](QLineEdit* field, const QString& text, const char* title) {
        MsgBox(text, QString::fromLatin1(title), MsgButtons::Ok, MsgIcon::Exclamation);
        field->setFocus(Qt::OtherFocusReason);
        return false;
    };
    const QString word = f.word;
    const std::optional<QDate> date = ParseTypedDate(f.date->text().trimmed());
    if (!date)
        return refuse(f.date, word + QStringLiteral(" Distribution Date Must Be A Valid Date"),
                      DateTitle);
    f.date->setText(FormatDate(*date));
    const std::optional<QDate> previous = ParseTypedDate(f.prevDate->text().trimmed());
    if (previous && *date < *previous)
        return refuse(
            f.date,
            word + QStringLiteral(" Distribution Date Must Later Than Previous Distribution Date"),
            DateTitle);
    const QString invalidNumber =
        QStringLiteral("Invalid ") + word + QStringLiteral(" Distribution Number");
    const std::optional<int> number = ParseWholeNumber(f.number->text());
    if (!number)
        return refuse(f.number, invalidNumber, NumberTitle);
    f.number->setText(TwoDigits(*number));
    // A blank previous number is no previous number.
    const std::optional<int> previousNumber = ParseWholeNumber(f.prevNum->text());
    if (previousNumber) {
        if (*number != *previousNumber && *number != *previousNumber + 1)
            return refuse(f.number, invalidNumber, NumberTitle);
    } else if (*number != 1) {
        return refuse(f.number,
                      QStringLiteral("First ") + word +
                          QStringLiteral(" Distribution Number Must Be 1"),
                      NumberTitle);
    }
    request->body = f.body;
    request->number = *number;
    request->cutOff = *date;
    return true;
}

void DistributeReceiptsScreen::distribute() {
    DistributionRun run;
    run.taxYear = m_taxYear;
    run.district = m_district;
    run.ward = m_ward;
    for (Frame& f : m_frames) {
        if (!f.check->isChecked() || !f.check->isEnabled())
            continue;
        BodyDistribution request;
        if (!validate(f, &request))
            return;
        run.bodies.push_back(request);
    }

    std::vector<BodyOutcome> outcomes;
    if (!run.bodies.empty()) {
        QString error;
        if (!DistributeReceipts(session().DbConnection, m_tables, run, &outcomes, &error)) {
            MsgBox(QStringLiteral("The distribution could not be saved, and nothing of it was "
                                  "written: ") +
                       error,
                   QString::fromLatin1(DistributeTitle), MsgButtons::Ok, MsgIcon::Critical);
            return;
        }
    }
    // Outcomes stand in the order of the run's bodies.
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        if (!outcomes[i].nothingToDistribute())
            continue;
        MsgBox(QStringLiteral("There are no ") + m_tables.body(outcomes[i].body).upperWord +
                   QStringLiteral(" receipts available to be distributed up to ") +
                   FormatDate(run.bodies[i].cutOff) +
                   QStringLiteral(". You may have already distributed these receipts in a prior "
                                  "distribution or there simply may not be any receipts to "
                                  "distribute."),
               QString::fromLatin1(NoReceiptsTitle), MsgButtons::Ok, MsgIcon::Information);
    }
    for (const FileFailure& failure :
         WriteDistributionFiles(session().programFolder(), m_tables, m_district, outcomes))
        MsgBox(QStringLiteral("The distribution is saved, but its file ") + failure.path +
                   QStringLiteral(" could not be written: ") + failure.error +
                   QStringLiteral(". Make it again with Recreate Distribution File."),
               QString::fromLatin1(DistributeTitle), MsgButtons::Ok, MsgIcon::Exclamation);
    MsgBox(QString::fromLatin1(DistributeCompleteText), QString::fromLatin1(DistributeTitle));
    CloseScreen(this);
}
