#pragma once
// What the two adjustment screens (real estate and per capita) do alike: step through a bill's
// history with its boxes, refuse a bill that is settled, ask the exoneration questions, look a
// typed ZIP code up, and the checks of an added bill. The screens pass what differs: titles,
// texts, tables, the image to show.

#include "core/money.h"
#include "core/tax_database.h"
#include "desk/realestate/payment_rules.h"

#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QWidget>
#include <array>
#include <functional>
#include <initializer_list>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QLayout;
class QPushButton;

inline constexpr const char* AdjustTaxBillTitle = "Adjust Tax Bill";

// Shows the master, tells "Original Bill Before Adjustment" or "... Before Address Change",
// then each adjustment with "Adjustment Encountered" (nextAdjNo follows it) and each address
// change with "Address Change Encountered", as the adjustment screens step through a bill.
// False, after the integrity message, when a chain is incomplete: the screen closes.
bool ReplayAdjustHistory(const BillNow& bill, const BillHistory& history,
                         const std::function<void(const QSqlRecord&)>& showImage,
                         const std::function<void(const QSqlRecord&)>& showAddress, int* nextAdjNo);

// The paid test of an adjustment: when every body is settled, "This tax bill has ALREADY been
// exonerated" (every visible flag "X") or "This account has already been paid in full. You
// cannot do an adjustment on this account." is shown and true returned.
bool RefuseSettledBill(const std::array<bool, 3>& visible, const std::array<bool, 3>& settled,
                       const std::array<QString, 3>& payFlags);
// Unexoneration: true, with its message, when a visible body's flag is not "X".
bool RefuseNotExonerated(const std::array<bool, 3>& visible,
                         const std::array<QString, 3>& payFlags);
// The exoneration questions; false (after "Tax bill NOT exonerated" / "... unexonerated") on No.
bool AskExonerate();
bool AskUnexonerate();

// An added bill's control number is already on the master table: its message is shown.
bool RefuseExistingControl(QSqlDatabase db, const char* masterTable, const QString& control);
// An added bill of total zero: asks whether to add it all the same; on No shows abortedText.
bool ConfirmZeroTotal(Money total, const QString& abortedText);

// Leaving the ZIP code of an adjustment screen: the checks ("Zip Code Must Be Specified", "...
// Must Be Numeric", "Invalid Zip Code", title "Enter Zip Code"), then the lookup in tbl_ZipCodes
// ("Invalid Zipcode", title "Enter Zipcode", empties the field), which fills the city list with
// the code's cities upper-cased and, when there is one, city and state. False when refused, the
// focus back on the field.
bool ZipCodeLookup(QLineEdit* zipCode, QComboBox* city, QComboBox* state);

// The action list and the bill number of an adjustment screen: what the screens keep of them
// and what they do on a choice. Positions are those of cboAction; -1 is no action, 1 adding a
// bill.
struct AdjustActionFlow {
    QComboBox* cboAction = nullptr;
    QLineEdit* txtBillNo = nullptr;
    int* action = nullptr;
    bool* loaded = nullptr;
    bool* inLeave = nullptr;
    std::function<void()> startAddition;
    std::function<void()> loadBill;
};
// A choice in the list: none is "Action must be selected"; adding starts the addition; any
// other sends the focus to the bill number and loads the number that stands there.
void AdjustActionChosen(const AdjustActionFlow& flow, int action);
// The same choice made by the program; positions beyond the list leave it without a selection.
void SetAdjustAction(const AdjustActionFlow& flow, int action);
// Leaving the bill number: loads it once an action other than adding is chosen.
void AdjustBillNoLeft(const AdjustActionFlow& flow);
// Payment Info: the text when anything was paid, else "There have been no payments made on this
// account" (title "Receive Payments").
void ShowAdjustPaymentInfo(const QString& text);

// Gives the focus back to a field refused, its text selected for retyping.
void RefuseField(QLineEdit* field);

// What the real-estate and per capita adjustment screens share: the action and the bill number,
// the load of a bill through its history up to the refusals of a settled bill, and the bill's
// state while it is on the screen. A screen builds its own fields and says how an image and an
// address are shown, what is paid, and what follows once the bill is loaded.
class AdjustTaxBillScreen : public QWidget {
    Q_OBJECT
public:
    // The positions of cboAction. Only the first two are listed; the other two are reached by
    // setAction alone.
    enum Action { NoAction = -1, AdjustBill = 0, AddBill = 1, Exonerate = 2, Unexonerate = 3 };

    AdjustTaxBillScreen(Duplicate duplicate, QWidget* parent = nullptr);

    // A query screen hands a bill over: the screen is cleared, the number stands in the bill
    // field, and the bill loads once "Adjust An Existing Tax Bill" is chosen.
    void openFromQuery(const QString& billNo);
    // Runs the choice of an action, as a choice in the list does.
    void setAction(int action);
    // The scan screen's way in: "Adjust An Existing Tax Bill" chosen, the number put in the
    // bill field and the field's leave action run.
    void enterBillNo(const QString& billNo);

    QComboBox* cboAction = nullptr;
    QLineEdit* txtBillNo = nullptr;

    QLineEdit* txtReason = nullptr;
    QCheckBox* chkPrintBill = nullptr;
    QCheckBox* chkReportable = nullptr;
    QCheckBox* chkUSPS = nullptr;

    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdPaymentInfo = nullptr;
    QPushButton* CmdQuery = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdExit = nullptr;

Q_SIGNALS:
    // A bill was added, adjusted, exonerated or unexonerated; a query list that handed the bill
    // over refreshes.
    void billSaved(const QString& billNo);

protected:
    // Leaving a field of the screen for another widget of it: the bill number loads the bill,
    // any other goes to fieldLeft; a refused field keeps the focus and the click is dropped.
    // While a query hands a bill over, the fields' own checks stand down.
    bool eventFilter(QObject* watched, QEvent* event) override;
    // A field other than the bill number left for target; true when it was refused.
    virtual bool fieldLeft(QLineEdit* field, QWidget* target) = 0;

    // Clear Screen: no bill, no action, every field empty and shut, the visible bodies ticked;
    // the action list open and focused.
    void clearScreen();
    // The screen's own part of the clear: its amounts held, its boxes, its own widgets.
    virtual void clearOwn() = 0;
    // Empties the boxes and shuts them.
    static void clearBoxes(std::initializer_list<QComboBox*> boxes);
    virtual std::array<QCheckBox*, 3> bodyBoxes() const = 0;
    virtual void startAddition() = 0;
    // The screen was cleared for a bill a query hands over.
    virtual void handedOver() {}
    virtual void showImage(const QSqlRecord& image) = 0;
    virtual void showAddress(const QSqlRecord& address) = 0;
    virtual bool bodySettled(int body) const = 0;
    // The payment information of the bill: what was paid, or nothing.
    virtual QString paymentInfoText(const QString& billNo) const = 0;
    // The bill is loaded and may be changed: the action chosen goes on.
    virtual void billLoaded() = 0;

    // The reason, its check boxes and the buttons, made after the screen's own frames.
    void buildFoot();
    // The action row on top, the bill's frame beside the bodies' ticks over the amounts, then
    // the reason row and the buttons.
    void layOutScreen(QLayout* top, QWidget* billFrame, QWidget* adjustFor, QWidget* amounts);

    // The buttons watched for a refused click; the action list, the bill number (a "*" of the
    // scanner dropped, the fifth character loading the bill) and the buttons connected; the
    // query button opens the screen's own query.
    void connectCommon(const std::function<void()>& openQuery);
    // Accept: the checks and the write; false when nothing was written.
    virtual bool accept() = 0;

    void actionChosen(int action);
    void billNoLeft();
    // Payment Info: the bill's payments, or the message that there are none.
    void showPaymentInfo();

    // The district, its ward and the tax year, with the county's and the district's Millfile
    // rows.
    void readDistrict(QSqlRecord* countyRow, QSqlRecord* municipalRow);

    QString m_district;
    QString m_ward;
    QString m_taxYear;
    QString m_btFlag;
    std::array<bool, 3> m_bodyVisible{};

    int m_action = NoAction;
    bool m_loaded = false;
    QString m_billNo;
    BillPayFlags m_flags; // the master's pay flags
    int m_nextAdjNo = 1;
    bool m_inLeave = false;
    bool m_clearing = false;

private:
    AdjustActionFlow actionFlow();
    void loadBill();

    Duplicate m_duplicate;
};
