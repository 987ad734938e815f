#pragma once
// frmPCReprintReceipt: finds a per capita receipt by its number, shows it with the person's
// bill in the fields of the per capita payment screen (read only), and prints it again as a
// duplicate.

#include "desk/realestate/reprint_receipt.h"

class frmPCReprintReceipt : public ReprintReceiptScreen {
    Q_OBJECT
public:
    explicit frmPCReprintReceipt(QWidget* parent = nullptr);

    QLabel* lblTwp = nullptr;
    QLineEdit* txtCPerCapita = nullptr;
    QLineEdit* txtCOccupation = nullptr;
    QLineEdit* txtTPerCapita = nullptr;
    QLineEdit* txtTOccupation = nullptr;
    QLineEdit* txtSPerCapita = nullptr;
    QLineEdit* txtSOccupation = nullptr;

    QLineEdit* txtBirthdate = nullptr;
    QLineEdit* txtOccuCode = nullptr;
    QLineEdit* txtOccuDesc = nullptr;
    QLineEdit* txtOccuValue = nullptr;

protected:
    void nameLines() override;
    void showBill(const BillNow& bill) override;
    Money showLines(const QSqlRecord& receipt) override;
};
