#include "bills/re_print_3up_labels.h"

frmREPrint3UpLabels::frmREPrint3UpLabels(QWidget* parent)
    : MailingLabelsForm(Duplicate::RealEstate, QStringLiteral("frmREPrint3UpLabels"),
                        QStringLiteral("Print Real Estate Mailing Labels"), parent) {}
