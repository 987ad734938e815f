#pragma once
// frmPCReceivePayment: the per capita twin of the real-estate payment screen. A bill number
// comes in, the person's bill shows as it stands with each body's per capita and occupation
// amounts at its period, the collector ticks what is paid, enters who paid and how, and
// accepts: PCMaster is marked, the receipt written and printed, and frmPCRefund opens when
// money goes back. No installments, no street lights, no parcel, no special taxes, and no tax
// claim warning.

#include "desk/realestate/payment_screen.h"

class QGroupBox;
class QLabel;

class frmPCReceivePayment : public PaymentScreen {
    Q_OBJECT
public:
    explicit frmPCReceivePayment(QWidget* parent = nullptr);

    // The three bodies: period, per capita and occupation, total.
    QLabel* lblTwp = nullptr;
    QLineEdit* txtCPerCapita = nullptr;
    QLineEdit* txtCOccupation = nullptr;
    QLineEdit* txtTPerCapita = nullptr;
    QLineEdit* txtTOccupation = nullptr;
    QLineEdit* txtSPerCapita = nullptr;
    QLineEdit* txtSOccupation = nullptr;

    // The person's own fields, read only.
    QLineEdit* txtBirthdate = nullptr;
    QLineEdit* txtOccuCode = nullptr;
    QLineEdit* txtOccuDesc = nullptr;
    QLineEdit* txtOccuValue = nullptr;

protected:
    void billNoLeft() override;
    void refreshAmounts(bool offer = true) override;
    void updateDetailFields() override;
    void acceptPayment() override;
    void clearOwnState() override;

private:
    void buildScreen();
    void showLinesByRates();
    void showBill();

    PerCapitaAmounts m_amounts;
};
