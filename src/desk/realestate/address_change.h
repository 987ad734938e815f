#pragma once
// frmREAddressChange: a new name or mailing address for a real-estate bill. The master row keeps
// the address as billed; each change is one more TCAddress row, numbered by AddrID, and the
// master carries the CAddrFlag marker. The amounts of the bill are not touched.

#include "desk/realestate/chain_writes.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QString>
#include <QWidget>
#include <functional>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLayout;
class QLineEdit;
class QPushButton;
class QRadioButton;

// What one address change writes.
struct AddressChangeRecord {
    QString control; // of the master
    QString billNo;  // of the master, padded
    int addrId = 1;  // the next number of the bill's chain
    QString name;
    QString coOwner;
    QString addr1;
    QString addr2;
    QString city;
    QString state;
    QString zipCode;
    QString zipCode2;
    QString map3;
    QString map4;
    QString map5;
    QString reason;
    QDate aDate;
    bool reportable = false;
    bool usps = false;
};

// The marker on the master first (CAddrFlag 'A'), then the TCAddress row, in one transaction.
// False with the reason when nothing was written.
bool RecordAddressChange(QSqlDatabase db, const AddressChangeRecord& change, QString* error);

// The checks of the new address, each a message and its title; an empty text when the value
// passes. The state passes when it is one of the states listed.
struct FieldRefusal {
    QString text;
    QString title;
    bool refused() const { return !text.isEmpty(); }
};
FieldRefusal CheckNewZipCode(const QString& zipCode);
FieldRefusal CheckNewZipCode2(const QString& zipCode2);

// The chain of a bill's address changes as the address screens step through it: when the
// master's CAddrFlag is "A", "Original Bill Before Address Change", then each row shown with
// "Address Change Encountered" and nextAddrId after it. False, after the integrity message, when
// the flag stands without a row: the screen closes.
bool ReplayAddressHistory(QSqlDatabase db, const ChainTables& tables, const QSqlRecord& master,
                          const std::function<void(const QSqlRecord&)>& showChange,
                          int* nextAddrId);
// A state not in the box's list: "Invalid State", the box emptied and focused; false.
bool CheckStateBox(QComboBox* state);
// USPS ticked: the change is reportable (ticked and locked) and the reason gets
// " USPS Address Change"; unticked: reportable unticked and free again.
void ApplyUspsTick(bool ticked, QCheckBox* reportable, QLineEdit* reason);

// What the real-estate and per capita address screens share: the search by bill or control
// number, the two frames, the check boxes and buttons, the load of a bill and its chain of
// changes, the checks of the state and ZIP code, the reason, the write's messages and the clear.
// A screen builds its own frames and says how its bill is shown, copied, checked and written.
class AddressChangeScreen : public QWidget {
    Q_OBJECT
public:
    // The tables of the screen's duplicate: its master, whose chain of address changes it reads.
    explicit AddressChangeScreen(const ChainTables& tables, QWidget* parent = nullptr);

    // A query screen hands a bill over: search by bill when no option is chosen, clear, put the
    // number in and load the bill.
    void openFromQuery(const QString& billNo);

    QRadioButton* optBillNo = nullptr;
    QRadioButton* optControl = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtControl = nullptr;

    QGroupBox* fraAddress = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
    QLineEdit* txtOldReason = nullptr;
    QLineEdit* txtADate = nullptr;

    QGroupBox* fraNewAddress = nullptr;
    QLineEdit* txtNewName = nullptr;
    QLineEdit* txtNewAddr1 = nullptr;
    QLineEdit* txtNewAddr2 = nullptr;
    QComboBox* cboNewState = nullptr;
    QLineEdit* txtNewZipCode = nullptr;
    QLineEdit* txtNewZipCode2 = nullptr;
    QLineEdit* txtReason = nullptr;
    QCheckBox* chkPrintBill = nullptr;
    QCheckBox* chkReportable = nullptr;
    QCheckBox* chkUSPS = nullptr;

    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdClearAddress = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* CmdQuery = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExit = nullptr;

Q_SIGNALS:
    // An address change was written; a query screen that handed the bill over refreshes.
    void addressChanged(const QString& billNo);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

    // The building blocks, made in the order the screen's widgets stand: the two options and
    // their fields; (the screen's frames;) the check boxes of the new frame; the buttons.
    void buildSearch();
    void buildChecks();
    void buildButtons();
    // The frames side by side under the search, the buttons under them.
    void layOutScreen(QLayout* search);
    // The "*" of the scanner, the options, the USPS tick and the buttons; the query button
    // opens the screen's own query.
    void connectCommon(const std::function<void()>& openQuery);
    // After the build: the states in both boxes, the screen cleared, the search fields shut.
    void startScreen();

    // The master's own fields (beyond the bill and control numbers) kept or shown.
    virtual void showMaster(const QSqlRecord& master) { Q_UNUSED(master); }
    // One address, the master's or a change's, in the old frame.
    virtual void showAddress(const QSqlRecord& address) = 0;
    // The new frame starts as a copy of the old one.
    virtual void copyToNewFrame() = 0;
    virtual QWidget* firstNewField() const = 0;
    // A field of the new frame other than the state and the ZIP codes.
    virtual FieldRefusal checkOwnField(QWidget* field) {
        Q_UNUSED(field);
        return {};
    }
    // The ZIP code passed its checks.
    virtual void zipCodePassed() {}
    // The checks made on accept before the reason; false when one refused.
    virtual bool checkBeforeReason() = 0;
    // The change written; false with the reason when nothing was.
    virtual bool writeChange(QString* error) = 0;
    // The bill form for the bill just changed.
    virtual void printBill(const QString& billNo) = 0;
    virtual void clearAddress() = 0;
    // The boxes of the screen's own beyond the two state boxes.
    virtual void clearOwnBoxes() {}

    // The check of one field of the new frame; false when it was refused (box shown, focus
    // back).
    bool checkField(QWidget* field);

    QString m_control;
    QString m_billNo;
    int m_nextAddrId = 1;
    bool m_loaded = false;
    bool m_inLeave = false;
    bool m_clearing = false;

private:
    ChainTables m_tables;

    void chooseSearch(bool byBill);
    void searchLeft(bool byBill);
    void loadBill(const QString& column, const QString& key, bool byBill);
    void accept();
    void clearScreen();
};

class frmREAddressChange : public AddressChangeScreen {
    Q_OBJECT
public:
    explicit frmREAddressChange(QWidget* parent = nullptr);

    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;

    QLineEdit* txtCoOwner = nullptr;
    QLineEdit* txtCity = nullptr;

    QLineEdit* txtNewCoOwner = nullptr;
    QLineEdit* txtNewCity = nullptr;

protected:
    void showMaster(const QSqlRecord& master) override;
    void showAddress(const QSqlRecord& address) override;
    void copyToNewFrame() override;
    QWidget* firstNewField() const override;
    FieldRefusal checkOwnField(QWidget* field) override;
    bool checkBeforeReason() override;
    bool writeChange(QString* error) override;
    void printBill(const QString& billNo) override;
    void clearAddress() override;

private:
    void buildScreen();

    QString m_hfFlag;
};
