#pragma once
// frmREPrint3UpLabels: mailing labels of the real-estate duplicate, 30 a page.

#include "bills/mailing_labels.h"

class frmREPrint3UpLabels : public MailingLabelsForm {
    Q_OBJECT
public:
    explicit frmREPrint3UpLabels(QWidget* parent = nullptr);
};
