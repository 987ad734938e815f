#pragma once
// frmPCRefund: the per capita refund screen, opened modally by frmPCReceivePayment. It is the
// counter's refund screen on PCRefund, without the map number, and it tells what is left to
// refund after each payee.

#include "desk/realestate/refund.h"

class frmPCRefund : public RefundDialog {
    Q_OBJECT
public:
    explicit frmPCRefund(const RefundSource& source, QWidget* parent = nullptr);
};
