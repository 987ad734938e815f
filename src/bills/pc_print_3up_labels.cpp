#include "bills/pc_print_3up_labels.h"

frmPCPrint3UpLabels::frmPCPrint3UpLabels(QWidget* parent)
    : MailingLabelsForm(Duplicate::PerCapita, QStringLiteral("frmPCPrint3UpLabels"),
                        QStringLiteral("Print Per Capita Mailing Labels"), parent) {}
