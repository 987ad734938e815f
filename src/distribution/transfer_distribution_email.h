#pragma once
// frmRETransferDistributionEMail and frmPCTransferDistributionEMail: the distribution files of
// the ticked taxing bodies, each mailed to the support mailbox.

#include "distribution/distribution_tables.h"

#include <QSqlDatabase>
#include <QString>
#include <QWidget>
#include <optional>

class QCheckBox;
class QLineEdit;
class QPushButton;

// A typed distribution number in "00" ("2" -> "02"); nothing when the text is not a whole
// number.
std::optional<QString> DistributionNumberText(const QString& typed);

// One body of a transfer as the user asked for it.
struct DistributionMail {
    TaxingBody body;
    QString number; // in "00"
};

// "County R/E Distribution # 02 - District 12-3": the subject and note of a body's mail.
QString DistributionMailText(TaxingBody body, const QString& number, const QString& district,
                             const QString& ward);

// The screen of both duplicates; disbType "RE" or "PC" chooses the tables and the folder.
class TransferDistributionEMailScreen : public QWidget {
    Q_OBJECT
public:
    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTownship = nullptr;
    QCheckBox* chkSchool = nullptr;
    QLineEdit* txtCDisbNum = nullptr;
    QLineEdit* txtTDisbNum = nullptr;
    QLineEdit* txtSDisbNum = nullptr;
    QPushButton* cmdTransfer = nullptr;
    QPushButton* cmdCancel = nullptr;

protected:
    TransferDistributionEMailScreen(const char* screenName, const char* disbType, QWidget* parent);

private:
    void load();
    void cmdTransfer_Click();

    const DistributionTables& tables() const;

    QString m_disbType;
    QString m_district;
    QString m_ward;
    QString m_taxYear;
};

class frmRETransferDistributionEMail : public TransferDistributionEMailScreen {
    Q_OBJECT
public:
    explicit frmRETransferDistributionEMail(QWidget* parent = nullptr)
        : TransferDistributionEMailScreen("frmRETransferDistributionEMail", "RE", parent) {}
};

class frmPCTransferDistributionEMail : public TransferDistributionEMailScreen {
    Q_OBJECT
public:
    explicit frmPCTransferDistributionEMail(QWidget* parent = nullptr)
        : TransferDistributionEMailScreen("frmPCTransferDistributionEMail", "PC", parent) {}
};
