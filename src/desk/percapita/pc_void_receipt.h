#pragma once
// frmPCVoidReceipt: the per capita void, on PCReceipt with each body's per capita and
// occupation line. As on the real-estate screen, the receipt's refunds are looked for in
// TCRefund, by the receipt number alone.

#include "desk/realestate/void_receipt.h"

class frmPCVoidReceipt : public VoidReceiptScreen {
    Q_OBJECT
public:
    explicit frmPCVoidReceipt(QWidget* parent = nullptr);

    QLineEdit* txtCPerCapita = nullptr;
    QLineEdit* txtCOccupation = nullptr;
    QLineEdit* txtTPerCapita = nullptr;
    QLineEdit* txtTOccupation = nullptr;
    QLineEdit* txtSPerCapita = nullptr;
    QLineEdit* txtSOccupation = nullptr;
};
