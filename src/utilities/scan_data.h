#pragma once
// frmScanData: a bar code read by the scanner opens the right desk screen on the right bill or
// receipt. The collector picks an action and scans; the payload's kind code says real estate or
// per capita, bill or receipt, and once the bill is found the form closes, the chosen screen
// opens with the number in its field and runs that field's leave action.

#include "core/tax_database.h"
#include "utilities/scan_payload.h"

#include <QDialog>
#include <QSqlDatabase>
#include <QString>
#include <optional>

class QLineEdit;
class QPushButton;
class QRadioButton;

// The bill a payload stands for: its master row's number and Act 1 flag, with the receipt
// number when a receipt was scanned.
struct ScannedBill {
    QString billNo;
    QString hfFlag;
    QString recnum;
};
std::optional<ScannedBill> FindScannedBill(QSqlDatabase db, const ScanPayload& payload);
// The bill's receipt with the highest number, voided or not.
std::optional<QString> LastReceiptOfBill(QSqlDatabase db, Duplicate duplicate,
                                         const QString& billNo);

enum class ScanAction { None, Payment, Adjust, Address, VoidReceipt, ReprintReceipt, TaxBill };
// The action preset for the screen last shown.
ScanAction ScanActionForScreen(const QString& screenName);
// Opens the action's screen of the duplicate (or brings the open one forward) on the bill or
// receipt and runs its field's leave action; the bill forms get the number, one mailer and the
// focus on OK. The screen opened, or nullptr.
QWidget* OpenScannedScreen(ScanAction action, Duplicate duplicate, const ScannedBill& bill);

inline constexpr const char* ScanTitle = "Scan Data";
inline constexpr const char* InvalidScanText = "Invalid Scan - Please Retry";
inline constexpr const char* ScanBillNotOnFileText = "Bill Number Not On File";
inline constexpr const char* ScanNoReceiptsText = "There Are No Receipts For This Bill Number";

class frmScanData : public QDialog {
    Q_OBJECT
public:
    explicit frmScanData(QWidget* parent = nullptr);

    QLineEdit* txtScanData = nullptr;
    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdClear = nullptr;
    QPushButton* cmdExit = nullptr;
    QRadioButton* optPayment = nullptr;
    QRadioButton* optAdjust = nullptr;
    QRadioButton* optAddress = nullptr;
    QRadioButton* optVoidReceipt = nullptr;
    QRadioButton* optReprintReceipt = nullptr;
    QRadioButton* optTaxBill = nullptr;

    // The scan processing: Accept, or a whole payload typed.
    void processScan();
    ScanAction chosenAction() const;

private:
    void refuse(const QString& text);
    void clearScan();

    bool m_processing = false;
};
