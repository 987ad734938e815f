#pragma once
// frmEditSpecialTaxpayers: the flat amounts of the special taxes that only certain taxpayers
// pay (street lights, hydrants), kept in Specpay and written straight onto the taxpayer's
// real-estate bill.

#include "core/money.h"

#include <QSqlDatabase>
#include <QString>
#include <QWidget>
#include <vector>

class FieldLeave;
class QCloseEvent;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

// The bill's amounts of a flat special: discount and penalty take the rate's share of the
// amount, rounded to cents, off and on.
struct FlatSpecialAmounts {
    Money face;
    Money discount;
    Money penalty;
};
FlatSpecialAmounts FigureFlatSpecial(Money amount, double discountPercent, double penaltyPercent);

// The slot (1, 2, 3, ...) of a tax among all Spectax rows of every district and year in
// TaxKey order: the place of the first row with that key. 0 when there is none.
int SpecialTaxSlot(QSqlDatabase db, const QString& taxKey);

struct SpecialTaxpayerAmount {
    QString district;
    QString ward;
    QString control;
    QString taxKey;
    QString map; // Map3, Map4 and Map5 together
    QString map3;
    QString map4;
    QString map5;
    QString name;
    Money amount;
    double discountPercent = 0; // TD of the district's Millfile row
    double penaltyPercent = 0;  // TP
};

// Updates or inserts the taxpayer's Specpay row, then puts the amount on the bill's third
// special (S3Face, DS3Face, PS3Face), whichever tax it is. One transaction.
bool SaveSpecialTaxpayerAmount(QSqlDatabase db, const SpecialTaxpayerAmount& values,
                               QString* error = nullptr);
// Deletes the taxpayer's Specpay row of the tax, then zeroes the bill's special of the tax's
// slot (1 to 3; a later slot changes no bill). One transaction.
bool DeleteSpecialTaxpayerAmount(QSqlDatabase db, const QString& district, const QString& ward,
                                 const QString& control, const QString& taxKey,
                                 QString* error = nullptr);

class frmEditSpecialTaxpayers : public QWidget {
    Q_OBJECT
public:
    explicit frmEditSpecialTaxpayers(QWidget* parent = nullptr);
    // Opens the screen from the menu: nothing (after saying so) when the district has no
    // special tax that only certain taxpayers pay.
    static QWidget* open();
    bool hasSpecialTaxes() const { return !m_taxes.empty(); }

    QLabel* lblTwpBoro = nullptr;
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtMap = nullptr;
    QLineEdit* txtTaxName = nullptr;
    QLineEdit* txtDescription = nullptr;
    QLineEdit* txtAmount = nullptr;
    QTableWidget* dtgSpecPay = nullptr;
    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdDelete = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdClearTax = nullptr;
    QPushButton* cmdExit = nullptr;

protected:
    // The focus leaves the fields as the screen closes: that is no leave of the user's.
    void closeEvent(QCloseEvent* event) override;

private:
    struct Tax {
        QString key;
        QString description;
    };
    struct Payment {
        QString key;
        Money amount;
    };

    void findTaxpayer(bool byControl);
    bool chooseTax();
    void openTaxpayerGrid();
    void accept();
    void deleteAmount();
    void clearTaxpayer();
    void clearTax();
    const Tax* findTax(const QString& key) const;
    const Payment* findPayment(const QString& key) const;
    QString typedKey() const;

    FieldLeave* m_leave = nullptr;
    QString m_district;
    QString m_ward;
    double m_discountPercent = 0;
    double m_penaltyPercent = 0;
    std::vector<Tax> m_taxes;
    std::vector<Payment> m_payments;
    // The taxpayer found, and by which field.
    QString m_control;
    QString m_map3, m_map4, m_map5;
    bool m_foundByControl = false;
    QString m_chosenKey;
    // The name last refused as no tax of this screen; the leave that said so comes before
    // Accept.
    QString m_refusedKey;
};
