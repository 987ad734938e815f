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

// How the address screens find a bill: by bill number or control number, chosen by optBillNo
// and optControl, and handed over by a query.
struct AddressSearchFlow {
    QRadioButton* optBillNo = nullptr;
    QRadioButton* optControl = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtControl = nullptr;
    bool* loaded = nullptr;
    bool* inLeave = nullptr;
    std::function<void()> clearScreen;
    // Loads the bill whose column ("BillNo" or "Control") holds key.
    std::function<void(const QString& column, const QString& key, bool byBill)> loadBill;
};
// An option chosen: its field enabled (and focused while no bill is loaded), the other not.
void ChooseAddressSearch(const AddressSearchFlow& flow, bool byBill);
// A query hands a bill over: search by bill when no option is chosen, clear, load the number.
void OpenAddressFromQuery(const AddressSearchFlow& flow, const QString& billNo);
// Leaving the bill or control number: a value loads the bill (a bill number padded first).
void AddressSearchLeft(const AddressSearchFlow& flow, bool byBill);

class frmREAddressChange : public QWidget {
    Q_OBJECT
public:
    explicit frmREAddressChange(QWidget* parent = nullptr);

    // A query screen hands a bill over: search by bill when no option is chosen, clear, put the
    // number in and load the bill.
    void openFromQuery(const QString& billNo);

    QRadioButton* optBillNo = nullptr;
    QRadioButton* optControl = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;

    QGroupBox* fraAddress = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtCoOwner = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
    QLineEdit* txtOldReason = nullptr;
    QLineEdit* txtADate = nullptr;

    QGroupBox* fraNewAddress = nullptr;
    QLineEdit* txtNewName = nullptr;
    QLineEdit* txtNewCoOwner = nullptr;
    QLineEdit* txtNewAddr1 = nullptr;
    QLineEdit* txtNewAddr2 = nullptr;
    QLineEdit* txtNewCity = nullptr;
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

private:
    void buildScreen();
    AddressSearchFlow searchFlow();
    void chooseSearch(bool byBill);
    void searchLeft(bool byBill);
    void loadBill(const QString& column, const QString& key, bool byBill);
    // The check of one field of the new frame; false when it was refused (box shown, focus back).
    bool checkField(QWidget* field);
    bool checkAll();
    void uspsClicked(bool ticked);
    void clearAddress();
    void accept();
    void clearScreen();

    QString m_control;
    QString m_billNo;
    QString m_hfFlag;
    int m_nextAddrId = 1;
    bool m_loaded = false;
    bool m_inLeave = false;
    bool m_clearing = false;
};
