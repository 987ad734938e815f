#pragma once
// frmPCAddressChange: a new name or mailing address for a per capita bill. The master row keeps
// the address as billed; each change is one more PCAddress row, numbered by AddrID, and the
// master carries the CAddrFlag marker. The name is kept in parts, and the name, the print name
// and the street line are built from them in each frame.

#include "desk/percapita/person_name.h"
#include "desk/realestate/address_change.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>

class QComboBox;
class QLineEdit;

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

class frmPCAddressChange : public AddressChangeScreen {
    Q_OBJECT
public:
    explicit frmPCAddressChange(QWidget* parent = nullptr);

    QLineEdit* txtPrintName = nullptr;
    QLineEdit* txtPrefix = nullptr;
    QLineEdit* txtFName = nullptr;
    QLineEdit* txtMName = nullptr;
    QLineEdit* txtLName = nullptr;
    QLineEdit* txtSuffix = nullptr;
    QLineEdit* txtRelationship = nullptr;
    QLineEdit* txtStreetNumber = nullptr;
    QLineEdit* txtStreetName = nullptr;
    QComboBox* cboCity = nullptr;

    QLineEdit* txtNewPrintName = nullptr;
    QLineEdit* txtNewPrefix = nullptr;
    QLineEdit* txtNewFName = nullptr;
    QLineEdit* txtNewMName = nullptr;
    QLineEdit* txtNewLName = nullptr;
    QLineEdit* txtNewSuffix = nullptr;
    QLineEdit* txtNewRelationship = nullptr;
    QLineEdit* txtNewStreetNumber = nullptr;
    QLineEdit* txtNewStreetName = nullptr;
    QComboBox* cboNewCity = nullptr;

protected:
    void showAddress(const QSqlRecord& address) override;
    void copyToNewFrame() override;
    QWidget* firstNewField() const override;
    FieldRefusal checkOwnField(QWidget* field) override;
    void zipCodePassed() override;
    bool checkBeforeReason() override;
    bool writeChange(QString* error) override;
    void printBill(const QString& billNo) override;
    void clearAddress() override;
    void clearOwnBoxes() override;

private:
    void buildScreen();
    void buildNewNames();
};
