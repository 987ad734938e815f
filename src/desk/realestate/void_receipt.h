#pragma once
// The void screens take a payment back. The bill becomes unpaid again for what the receipt
// paid, the receipt stays with its date of voiding, and a negated copy goes to the void table
// for the next distribution. Refunds of the receipt go with it unless one was distributed.
// frmREVoidReceipt and frmPCVoidReceipt are one VoidReceiptScreen told their duplicate: its
// tables, its tax lines and its wording of a half-finished adjustment.

#include "desk/realestate/payment_rules.h"
#include "desk/realestate/receipt_writes.h"

#include <QString>
#include <QWidget>
#include <array>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;

// One tax line of the screen: its field, its caption and its face column (the D and P
// columns are the same name with D and P in front).
struct VoidLine {
    QString field;
    QString caption;
    QString faceColumn;
    TaxBody body;
};

struct VoidKind {
    QString objectName;
    QString windowTitle;
    const DeskTables* tables = nullptr;
    // The message of a bill whose adjustment was cut off half way.
    QString incompleteAdjustmentText;
    std::vector<VoidLine> lines;
};

class VoidReceiptScreen : public QWidget {
    Q_OBJECT
public:
    VoidReceiptScreen(const VoidKind& kind, QWidget* parent = nullptr);

    // Puts a receipt number in and runs the field's leave action, as the query screen does.
    void enterRecnum(const QString& recnum);
    // A query screen hands a receipt over: the screen is cleared and the receipt shown at once.
    Q_INVOKABLE void openFromQuery(const QString& recnum);

    QLineEdit* txtRecnum = nullptr;
    QLineEdit* txtVDate = nullptr;
    QLineEdit* txtReason = nullptr;

    QLineEdit* txtControl = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    // The map number: real estate only (null on the per capita screen).
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtPayor = nullptr;
    QLineEdit* txtAmount = nullptr;
    QLabel* lblTendered = nullptr;

    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtSTotal = nullptr;
    QLineEdit* txtTotal = nullptr;

    // The receipt's distribution numbers.
    QLabel* lblCDisbNum = nullptr;
    QLabel* lblTDisbNum = nullptr;
    QLabel* lblSDisbNum = nullptr;
    QLineEdit* txtCDisbNum = nullptr;
    QLineEdit* txtTDisbNum = nullptr;
    QLineEdit* txtSDisbNum = nullptr;

    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdExit = nullptr;

Q_SIGNALS:
    // A receipt was voided; a query screen that opened this one refreshes.
    void receiptVoided(const QString& recnum);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    // The field and caption of the kind's line i.
    QLineEdit* lineField(int i) const { return m_lineFields.at(std::size_t(i)); }
    QLabel* lineLabel(int i) const { return m_lineLabels.at(std::size_t(i)); }
    // The office's district and ward, and the municipality's kind (BTFlag).
    QString m_district, m_ward, m_btFlag;
    QString m_bodyWord; // "Township", "Borough", "City"

private:
    void buildScreen();
    void loadNames();
    // True when the click that left the field must not act: the number was refused, or another
    // receipt came onto the screen.
    bool recnumLeft();
    bool vDateLeft();
    void accept();
    void clearScreen();

    VoidKind m_kind;
    std::vector<QLineEdit*> m_lineFields;
    std::vector<QLabel*> m_lineLabels;
    QString m_shownRecnum;
    QString m_taxYear;
    bool m_distributedRefunds = false;
    bool m_inLeave = false;
    bool m_clearing = false;
};

// frmREVoidReceipt: the real-estate void, on TCReceipt with its nine tax lines.
class frmREVoidReceipt : public VoidReceiptScreen {
    Q_OBJECT
public:
    explicit frmREVoidReceipt(QWidget* parent = nullptr);

    QLineEdit* txtCounty = nullptr;
    QLineEdit* txtLibrary = nullptr;
    QLineEdit* txtC1Face = nullptr;
    QLineEdit* txtTwp = nullptr;
    std::array<QLineEdit*, 3> txtSpecFace{};
    QLineEdit* txtSchool = nullptr;
    QLineEdit* txtSch1Face = nullptr;
    QLabel* lblC1Face = nullptr;
    QLabel* lblTwp = nullptr;
    std::array<QLabel*, 3> lblSpecFace{};
    QLabel* lblSch1Face = nullptr;
};
