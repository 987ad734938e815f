#pragma once
// What the three millage screens share: reading and checking typed rates and amounts, the
// rates of the school and the county, the date groups with their "Figure Dates On Mail Date"
// button, the billing time frame options, the buttons, reading the rows they show, and the
// plain values their saves take. The special tax screens use the field and row helpers too.

#include "core/money.h"
#include "core/named_widgets.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QStringView>
#include <QVariant>
#include <array>
#include <functional>
#include <optional>
#include <vector>

class QButtonGroup;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QWidget;
class QFormLayout;
class QHBoxLayout;

inline constexpr const char* MillagesTitle = "Maintain Millages";
inline constexpr const char* EnterRatesTitle = "Enter Millage Rates";
inline constexpr const char* EnterDatesTitle = "Enter Millage Dates";
inline constexpr const char* EnterTimeFrameTitle = "Enter Billing Time Frame";

// A typed rate: an optional sign, digits and at most one point ("12.345", "-1", ".5"),
// blanks around it allowed. Anything else is not a number.
std::optional<double> ParseRate(QStringView typed);

// How stored values are shown: a rate with every digit it was typed with ("12.345", "0"
// for Null), an amount without trailing zeros ("1.5", "0"), a date as mm/dd/yyyy or blank.
QString RateText(const QVariant& stored);
QString AmountText(const QVariant& stored);
QString StoredDateText(const QVariant& stored);

// A date set as it is written: an invalid date is a blank field.
struct MillageDateSet {
    QDate mail;
    QDate discountEnd;
    QDate faceFirst;
    QDate faceLast;
    QDate penaltyFirst;
    QDate lastDay;
    QDate taxClaim;
};

// The name over a screen: bold, two points larger, centred.
QLabel* TitleLabel(QWidget* parent, const char* name);

// A rate or amount field of a save, with the message of its numeric test.
struct NumberCheck {
    QLineEdit* field;
    QString message;
    bool amount = false; // money ("$1,234.50" allowed) rather than a rate
};
// Every blank field becomes "0" first; then each is tested in order, and the first that is
// not a number shows its message (title "Enter Millage Rates") and takes the focus.
bool CheckNumberFields(const std::vector<NumberCheck>& checks);
// The value of a field that passed CheckNumberFields.
double RateOf(const QLineEdit* field);
Money AmountOf(const QLineEdit* field);

// The seven billing dates of one group on a screen, in the order they are checked.
struct DateGroupFields {
    QLineEdit* txtMailDate = nullptr;
    QLineEdit* txtDiscDate = nullptr;
    QLineEdit* txtFaceDate1 = nullptr;
    QLineEdit* txtFaceDate2 = nullptr;
    QLineEdit* txtPenDate = nullptr;
    QLineEdit* txtLastDate = nullptr;
    QLineEdit* txtTaxDate = nullptr;

    // Builds the fields into the form, named "txt" + prefix + column ("txtLateMailDate").
    void build(QWidget* parent, QFormLayout* form, const QString& prefix);
    std::array<QLineEdit*, 7> fields() const;
    // Shows a stored set: the columns named prefix + "MailDate" ... of the row's values.
    void show(const std::function<QVariant(const QString&)>& column, const QString& prefix);
    void clear();
    // An all-blank group passes; otherwise every field must hold a date. The first that does
    // not shows its message (title "Enter Millage Dates") and takes the focus.
    bool check(const std::array<const char*, 7>& messages) const;
    // The dates of a group that passed check().
    MillageDateSet dates() const;
    // "Figure Dates On Mail Date": needs a date in the mail date field, else shows the
    // message and puts the focus there.
    void figure(const char* mailDateMessage);
};

// The rates of the school or the county, named "txt" + letter + column ("txtSMR", "txtC1MR",
// "txtPCCD"). The county's are kept in the school's columns of its own row, so both show the
// columns SMR, S1MR, S1TaxName, SD, SP, SMO, SPC, PCSD and PCSP.
struct BodyRateFields {
    QLineEdit* mr = nullptr;          // real-estate millage
    QLineEdit* specialMr = nullptr;   // special millage
    QLineEdit* specialName = nullptr; // special tax name
    QLineEdit* discount = nullptr;    // real-estate discount, percent
    QLineEdit* penalty = nullptr;     // real-estate penalty, percent
    QLineEdit* occupation = nullptr;
    QLineEdit* perCapita = nullptr;
    QLineEdit* perCapitaDiscount = nullptr;
    QLineEdit* perCapitaPenalty = nullptr;

    // The body's own rates, to edit, in the order the screen shows them; the tax name takes
    // ten characters at most.
    QGroupBox* build(QWidget* parent, const char* frameName, const QString& title, char letter);
    // Another body's rates beside the screen's own: read-only, in the order of the columns.
    QGroupBox* buildReference(QWidget* parent, const char* frameName, const QString& title,
                              char letter);
    // The fields in the order build() shows them.
    std::array<QLineEdit*, 9> editOrder() const;
    void show(const QSqlRecord& row);
    void clear();
    // The numeric tests of the rates, their messages naming the body ("County").
    std::vector<NumberCheck> checks(const char* body) const;
    QString specialNameText() const;
    // The rates of fields that passed checks(), into a save's values.
    template <class Values> void store(Values& v) const {
        v.smr = RateOf(mr);
        v.s1mr = RateOf(specialMr);
        v.s1TaxName = specialNameText();
        v.sd = RateOf(discount);
        v.sp = RateOf(penalty);
        v.smo = RateOf(occupation);
        v.spc = RateOf(perCapita);
        v.pcsd = RateOf(perCapitaDiscount);
        v.pcsp = RateOf(perCapitaPenalty);
    }
};

// The columns a save of the school's or the county's rates sets, and their values in that
// order.
inline constexpr const char* BodyRateAssignments =
    "SMR = ?, SMO = ?, SPC = ?, SD = ?, SP = ?, PCSD = ?, PCSP = ?, S1MR = ?, S1TaxName = ?";
template <class Values> QVariantList BodyRateValues(const Values& v) {
    return {v.smr, v.smo, v.spc, v.sd, v.sp, v.pcsd, v.pcsp, v.s1mr, v.s1TaxName};
}
// The seven dates of a set as they are written, blank ones Null.
QVariantList DateSetValues(const MillageDateSet& d);

// One transaction, one statement with its values bound in order.
bool UpdateInOneTransaction(QSqlDatabase db, const QString& sql, const QVariantList& values,
                            QString* error);

// The office's district and ward (tbl_District); blanks when there is none.
struct OfficeDistrict {
    QString district;
    QString ward;
};
OfficeDistrict ReadOfficeDistrict(QSqlDatabase db);
// A name of the district's tbl_Twpboro row ("TwpBoro", "SchoolName"); blank when none.
QString ReadTwpboroName(QSqlDatabase db, const char* column, const OfficeDistrict& office);
QString ReadCountyName(QSqlDatabase db);
// The district's Millfile row, and the county's (District '00', Ward '0'); empty when none.
QSqlRecord ReadMillfileRow(QSqlDatabase db, const OfficeDistrict& office);
QSqlRecord ReadCountyMillfileRow(QSqlDatabase db);

// Accept, Clear Screen, Reset, Print Screen and Exit of a millage screen in a row. Print
// Screen and Exit do their work; the screen connects the other three.
struct MillageButtons {
    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdReset = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExit = nullptr;
    QHBoxLayout* row = nullptr;

    // stretch: the buttons stand at the right.
    void build(QWidget* screen, bool stretch);
};

// Saves behind the "Saving Data" box; a failure shows its reason, a success doneText.
void SaveMillages(const std::function<bool(QString*)>& save, const char* doneText);

// The messages of the date group checks.
extern const std::array<const char*, 7> EarlyDateMessages;
extern const std::array<const char*, 7> LateDateMessages;
extern const std::array<const char*, 7> SchoolDateMessages;

// One body's billing time frame: two option buttons, neither chosen for a stored value
// other than 'E' and 'L'.
struct BillingTimeFrame {
    QGroupBox* frame = nullptr;
    QRadioButton* early = nullptr;
    QRadioButton* late = nullptr;
    QButtonGroup* group = nullptr;

    void build(QWidget* parent, const char* frameName, const QString& title, const char* earlyName,
               const char* lateName);
    void setFlag(const QString& stored);
    // "E", "L", or empty when neither is chosen.
    QString flag() const;
    void clear();
};

// Runs reload each time the screen's client-area window becomes the active one again after
// another screen was, as the screen is activated by the user.
void ReloadOnActivation(QWidget* screen, std::function<void()> reload);
