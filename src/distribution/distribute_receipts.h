#pragma once
// frmREDistributeReceipts and frmPCDistributeReceipts: pay over to the County, the township
// (borough, city) and the school district what was collected up to a day. Each body ticked
// gets its number; the receipts and voids up to the day are stamped with the body's key, their
// shares go into the distribution tables and the body's file is written. The two duplicates
// share the screen; they differ in their tables and in the rates that show a body's frame.

#include "distribution/distribution_writes.h"

#include <QString>
#include <QWidget>
#include <array>

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPushButton;

// Which bodies have something to be paid over, County, Twp, School, by the rates of Millfile.
using BodiesWithRates = std::array<bool, 3> (*)(QSqlDatabase db, const QString& district,
                                                const QString& ward);
std::array<bool, 3> RealEstateBodiesWithRates(QSqlDatabase db, const QString& district,
                                              const QString& ward);
std::array<bool, 3> PerCapitaBodiesWithRates(QSqlDatabase db, const QString& district,
                                             const QString& ward);

class DistributeReceiptsScreen : public QWidget {
    Q_OBJECT
public:
    QGroupBox* fraCounty = nullptr;
    QGroupBox* fraTwp = nullptr;
    QGroupBox* fraSchool = nullptr;
    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTwp = nullptr;
    QCheckBox* chkSchool = nullptr;
    QLineEdit* txtCPrevDisbDate = nullptr;
    QLineEdit* txtCPrevDisbNum = nullptr;
    QLineEdit* txtCDisbDate = nullptr;
    QLineEdit* txtCDisbnum = nullptr;
    QLineEdit* txtTPrevDisbDate = nullptr;
    QLineEdit* txtTPrevDisbNum = nullptr;
    QLineEdit* txtTDisbDate = nullptr;
    QLineEdit* txtTDisbnum = nullptr;
    QLineEdit* txtSPrevDisbDate = nullptr;
    QLineEdit* txtSPrevDisbNum = nullptr;
    QLineEdit* txtSDisbDate = nullptr;
    QLineEdit* txtSDisbnum = nullptr;
    QLineEdit* txtRecnum = nullptr;
    QLineEdit* txtVoid = nullptr;
    QPushButton* cmdDistribute = nullptr;
    QPushButton* cmdCancel = nullptr;

protected:
    DistributeReceiptsScreen(const DistributionTables& tables, BodiesWithRates shown,
                             const QString& name, QWidget* parent);

private:
    // One frame's controls and words.
    struct Frame {
        TaxingBody body;
        QString word; // in the messages: "County", "" (as the Twp frame has it), "School"
        QGroupBox* frame = nullptr;
        QCheckBox* check = nullptr;
        QLineEdit* prevDate = nullptr;
        QLineEdit* prevNum = nullptr;
        QLineEdit* date = nullptr;
        QLineEdit* number = nullptr;
    };

    void buildScreen();
    Frame& buildFrame(Frame& f, const QString& title, const QString& checkCaption,
                      const QString& letter);
    void load(BodiesWithRates shown);
    void showFrame(Frame& f, bool shown);
    void fillFrame(Frame& f);
    void setFrameEnabled(Frame& f, bool on);
    bool validate(Frame& f, BodyDistribution* request);
    void distribute();

    const DistributionTables& m_tables;
    std::array<Frame, 3> m_frames;
    QString m_taxYear;
    QString m_district;
    QString m_ward;
};

class frmREDistributeReceipts : public DistributeReceiptsScreen {
    Q_OBJECT
public:
    explicit frmREDistributeReceipts(QWidget* parent = nullptr);
};

class frmPCDistributeReceipts : public DistributeReceiptsScreen {
    Q_OBJECT
public:
    explicit frmPCDistributeReceipts(QWidget* parent = nullptr);
};

// Texts of the screen.
inline constexpr const char* DistributeTitle = "Distribute Receipts";
inline constexpr const char* DistributeCompleteText = "Distibution Complete.";
inline constexpr const char* NoReceiptsTitle = "Distribute Receiepts";
