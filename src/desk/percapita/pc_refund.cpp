#include "desk/percapita/pc_refund.h"

frmPCRefund::frmPCRefund(const RefundSource& source, QWidget* parent)
    : RefundDialog(source,
                   {QStringLiteral("frmPCRefund"), QStringLiteral("Per Capita Refunds"),
                    &PerCapitaDesk(), true},
                   parent) {}
