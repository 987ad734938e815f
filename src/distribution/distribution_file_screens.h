#pragma once
// The screens that work on distribution files: frmRECreateDistributionFile and
// frmPCCreateDistributionFile build a body's file again from the distribution tables;
// frmRETransferDistributionDesktop and frmPCTransferDistributionDesktop copy it to the desktop.
// Each has a check box and a number per body, filled from the last tbl_DisbDates rows in "00".

#include "distribution/distribution_tables.h"

#include <QString>
#include <QWidget>
#include <optional>
#include <vector>

class QCheckBox;
class QLineEdit;
class QPushButton;

// A ticked body's number as the checks of a transfer passed it.
struct CheckedDistributionFile {
    TaxingBody body;
    QString number; // in "00"
    QString key;
    QString path; // the file in the Distributions folder
};

// The checks of a transfer, for each ticked body in the order County, Twp, School, before
// anything is copied or sent: a number given, numeric, rewritten in "00", and its file made (a
// missing file is told under the screen's own title). Nothing when one failed (its message
// shown, focus on its number).
struct TransferChoice {
    TaxingBody body;
    QCheckBox* check;
    QLineEdit* number;
};
std::optional<std::vector<CheckedDistributionFile>>
CheckTransferFiles(const DistributionTables& tables, const std::vector<TransferChoice>& choices,
                   const QString& taxYear, const QString& district, const QString& programFolder,
                   const QString& screenTitle);

// "County R/E Distribution # 02" and its kin, the start of the transfer messages and subjects.
QString TransferDistributionText(const DistributionTables& tables, TaxingBody body,
                                 const QString& number);

// What the four screens share: their controls and the filling from tbl_DisbDates.
class DistributionFileScreen : public QWidget {
    Q_OBJECT
public:
    enum class Kind { Create, Desktop };

    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTownship = nullptr;
    QCheckBox* chkSchool = nullptr;
    QLineEdit* txtCDisbNum = nullptr;
    QLineEdit* txtTDisbNum = nullptr;
    QLineEdit* txtSDisbNum = nullptr;
    QPushButton* cmdCreate = nullptr;   // the rebuild screens
    QPushButton* cmdTransfer = nullptr; // the desktop screens
    QPushButton* cmdExit = nullptr;

protected:
    DistributionFileScreen(const DistributionTables& tables, Kind kind, const QString& name,
                           const QString& title, QWidget* parent);

private:
    void buildScreen();
    void load();
    std::vector<TransferChoice> choices() const;
    void create();
    void transfer();

    const DistributionTables& m_tables;
    Kind m_kind;
    QString m_taxYear;
    QString m_district;
    QString m_ward;
};

class frmRECreateDistributionFile : public DistributionFileScreen {
    Q_OBJECT
public:
    explicit frmRECreateDistributionFile(QWidget* parent = nullptr);
};

class frmPCCreateDistributionFile : public DistributionFileScreen {
    Q_OBJECT
public:
    explicit frmPCCreateDistributionFile(QWidget* parent = nullptr);
};

class frmRETransferDistributionDesktop : public DistributionFileScreen {
    Q_OBJECT
public:
    explicit frmRETransferDistributionDesktop(QWidget* parent = nullptr);
};

class frmPCTransferDistributionDesktop : public DistributionFileScreen {
    Q_OBJECT
public:
    explicit frmPCTransferDistributionDesktop(QWidget* parent = nullptr);
};
