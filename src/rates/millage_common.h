#pragma once
// What the three millage screens share: reading and checking typed rates and amounts, the
// date groups with their "Figure Dates On Mail Date" button, the billing time frame options,
// and the plain values their saves take.

#include "core/money.h"

#include <QDate>
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

// A line edit named as its member.
QLineEdit* NamedField(QWidget* parent, const char* name, int maxLength = 0);
QLabel* NamedLabel(QWidget* parent, const char* name, const QString& text = QString());
QPushButton* NamedButton(QWidget* parent, const char* name, const QString& caption,
                         bool takesFocus = true);

// A rate or amount field of a save, with the message of its numeric test.
struct NumberCheck {
    QLineEdit* field;
    const char* message;
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
