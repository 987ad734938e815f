#pragma once
// frmPCAddressChange: a new name or mailing address for a per capita bill. The master row keeps
// the address as billed; each change is one more PCAddress row, numbered by AddrID, and the
// master carries the CAddrFlag marker. The name is kept in parts, and the name, the print name
// and the street line are built from them in each frame.

#include "desk/percapita/person_name.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

// What one per capita address change writes.
struct PerCapitaAddressRecord {
    QString control;
    QString billNo;
    int addrId = 1;
    QString name; // built from the parts
    QString prefix, lName, fName, mName, suffix, relationship;
    QString addr1; // care of
    QString addr2; // built from street number and name
    QString streetNumber, streetName;
    QString city, state, zipCode, zipCode2;
    QString reason;
    QDate aDate;
    bool reportable = false;
    bool usps = false;
};

// The marker on PCMaster first (CAddrFlag 'A'), then the PCAddress row, in one transaction.
bool RecordPerCapitaAddressChange(QSqlDatabase db, const PerCapitaAddressRecord& change,
                                  QString* error = nullptr);

class frmPCAddressChange : public QWidget {
    Q_OBJECT
public:
    explicit frmPCAddressChange(QWidget* parent = nullptr);

    // A query screen hands a bill over: search by bill when no option is chosen, clear, put the
    // number in and load the bill.
    void openFromQuery(const QString& billNo);

    QRadioButton* optBillNo = nullptr;
    QRadioButton* optControl = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtControl = nullptr;

    QGroupBox* fraAddress = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtPrintName = nullptr;
    QLineEdit* txtPrefix = nullptr;
    QLineEdit* txtFName = nullptr;
    QLineEdit* txtMName = nullptr;
    QLineEdit* txtLName = nullptr;
    QLineEdit* txtSuffix = nullptr;
    QLineEdit* txtRelationship = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtStreetNumber = nullptr;
    QLineEdit* txtStreetName = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QComboBox* cboCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
    QLineEdit* txtOldReason = nullptr;
    QLineEdit* txtADate = nullptr;

    QGroupBox* fraNewAddress = nullptr;
    QLineEdit* txtNewName = nullptr;
    QLineEdit* txtNewPrintName = nullptr;
    QLineEdit* txtNewPrefix = nullptr;
    QLineEdit* txtNewFName = nullptr;
    QLineEdit* txtNewMName = nullptr;
    QLineEdit* txtNewLName = nullptr;
    QLineEdit* txtNewSuffix = nullptr;
    QLineEdit* txtNewRelationship = nullptr;
    QLineEdit* txtNewAddr1 = nullptr;
    QLineEdit* txtNewStreetNumber = nullptr;
    QLineEdit* txtNewStreetName = nullptr;
    QLineEdit* txtNewAddr2 = nullptr;
    QComboBox* cboNewCity = nullptr;
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
    struct AddressSearchFlow searchFlow();
    void chooseSearch(bool byBill);
    void searchLeft(bool byBill);
    void loadBill(const QString& column, const QString& key, bool byBill);
    bool checkField(QWidget* field);
    void zipLookUp();
    void buildNewNames();
    void clearAddress();
    void accept();
    void clearScreen();

    QString m_control;
    QString m_billNo;
    int m_nextAddrId = 1;
    bool m_loaded = false;
    bool m_inLeave = false;
    bool m_clearing = false;
};
