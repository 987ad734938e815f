#pragma once
// frmEditSpecialTaxes: the municipality's special taxes in Spectax, per district, ward and
// calendar year, with their exempt and "only certain taxpayers" flags.

#include <QSqlDatabase>
#include <QString>
#include <QWidget>
#include <vector>

class FieldLeave;
class QCloseEvent;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

struct SpecialTax {
    QString district;
    QString ward;
    QString taxYear;
    QString taxKey; // up to six characters, upper case
    QString description;
    double mill = 0;
    bool exempt = false;   // ExFlag 'Y'
    bool specials = false; // SpecFlag 'Y': only certain taxpayers pay
};

// The taxes of a district, ward and year in TaxKey order.
std::vector<SpecialTax> ReadSpecialTaxes(QSqlDatabase db, const QString& district,
                                         const QString& ward, const QString& taxYear);
// Updates the tax of that district, ward, key and year, or inserts it when there is none.
// One transaction.
bool SaveSpecialTax(QSqlDatabase db, const SpecialTax& tax, QString* error = nullptr);
// Deletes the tax of that year. Its taxpayers' amounts and what stands on bills stay.
bool DeleteSpecialTax(QSqlDatabase db, const QString& district, const QString& ward,
                      const QString& taxKey, const QString& taxYear, QString* error = nullptr);
// The year before, as four digits ("2012" for "2013"); empty when the year is not a number.
QString PreviousTaxYear(const QString& taxYear);
// Brings the previous year's taxes of the district and ward into taxYear: a key missing in
// taxYear is inserted, a key present gets the previous year's description, millage and flags.
// One transaction; no previous rows change nothing.
bool CopySpecialTaxesFromPreviousYear(QSqlDatabase db, const QString& district, const QString& ward,
                                      const QString& taxYear, QString* error = nullptr);

class frmEditSpecialTaxes : public QWidget {
    Q_OBJECT
public:
    explicit frmEditSpecialTaxes(QWidget* parent = nullptr);

    QLabel* lblTwpBoro = nullptr;
    QLineEdit* txtDistrict = nullptr;
    QLineEdit* txtWard = nullptr;
    QLineEdit* txtYear = nullptr;
    QLineEdit* txtTaxName = nullptr;
    QLineEdit* txtDescription = nullptr;
    QLineEdit* txtMillage = nullptr;
    QCheckBox* chkExFlag = nullptr;
    QCheckBox* chkSpecFlag = nullptr;
    QTableWidget* dtgSpecTax = nullptr;
    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdDelete = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdPreviousYear = nullptr;
    QPushButton* cmdExit = nullptr;

protected:
    // The focus leaves the fields as the screen closes: that is no leave of the user's.
    void closeEvent(QCloseEvent* event) override;

private:
    void openList();
    // The tax named in txtTaxName: its values shown, or a new one when the user adds it.
    // False when the user does not add it.
    bool chooseTax();
    void accept();
    void deleteTax();
    void previousYear();
    void clearFields();
    void enableFields(bool enabled);
    const SpecialTax* findTax(const QString& key) const;
    QString typedKey() const;

    FieldLeave* m_leave = nullptr;
    std::vector<SpecialTax> m_taxes;
    QString m_chosenKey;
    // The name the user last declined to add; the leave that asked comes before Accept.
    QString m_refusedKey;
};
