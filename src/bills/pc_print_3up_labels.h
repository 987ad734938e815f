#pragma once
// frmPCPrint3UpLabels: mailing labels of the per capita duplicate, 30 a page.

#include "bills/mailing_labels.h"

class frmPCPrint3UpLabels : public MailingLabelsForm {
    Q_OBJECT
public:
    explicit frmPCPrint3UpLabels(QWidget* parent = nullptr);
};
