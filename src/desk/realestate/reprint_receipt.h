#pragma once
// The reprint screens find a receipt by its number, show it with its bill in the fields of the
// payment screen (read only), and print it again as a duplicate. frmREReprintReceipt and
// frmPCReprintReceipt share ReprintReceiptScreen: the number, the receipt's payor, check, date
// and bodies, the buttons and the print; each shows its own lines and bill.

#include "core/tax_database.h"
#include "desk/realestate/re_receipt.h"

#include <QSqlRecord>
#include <QString>
#include <QWidget>
#include <functional>

class FieldLeave;
class QCheckBox;
class QCloseEvent;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

struct ReprintKind {
    QString objectName;
    QString windowTitle;
    QString receipts; // TCReceipt, PCReceipt
    QString master;   // TCMaster, PCMaster
    Duplicate duplicate = Duplicate::RealEstate;
    // The copies question and the print, from the calling screen's fields.
    std::function<ReceiptPrintOutcome(QWidget* screen, const QString& recnum)> print;
};

class ReprintReceiptScreen : public QWidget {
    Q_OBJECT
public:
    ReprintReceiptScreen(const ReprintKind& kind, QWidget* parent = nullptr);

    QLineEdit* txtRecnum = nullptr;

    // The receipt.
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    QLineEdit* txtDate = nullptr;
    QCheckBox* chkCounty = nullptr;
    QCheckBox* chkTwp = nullptr;
    QCheckBox* chkSchool = nullptr;
    QLineEdit* txtPayor = nullptr;
    QLineEdit* txtPAddr1 = nullptr;
    QLineEdit* txtPAddr2 = nullptr;
    QLineEdit* txtPCity = nullptr;
    QComboBox* cboPState = nullptr;
    QLineEdit* txtPZipCode = nullptr;
    QLineEdit* txtPZipCode2 = nullptr;
    QLineEdit* txtChecknum = nullptr;
    QLineEdit* txtAmount = nullptr;
    QLabel* lblCPeriod = nullptr;
    QLabel* lblTPeriod = nullptr;
    QLabel* lblSPeriod = nullptr;
    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtSTotal = nullptr;
    QLineEdit* txtTotal = nullptr;

    // The bill as it stands: the fields both duplicates have.
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;

    QPushButton* cmdPrint = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExit = nullptr;

    // A query screen hands a receipt over: it is shown at once, as if typed and left.
    Q_INVOKABLE void openFromQuery(const QString& recnum);

    // The receipt shown, or empty.
    QString shownRecnum() const { return m_recnum; }

protected:
    void closeEvent(QCloseEvent* event) override;

    // A read-only field of the screen, and a read-only box.
    static QLineEdit* field(const QString& name, QWidget* parent, int maxLength = 0);
    static QComboBox* readOnlyBox(const char* name, QWidget* parent);
    static void setBoxText(QComboBox* box, const QString& text);
    // A receipt's text column, trimmed.
    static QString receiptText(const QSqlRecord& r, const char* column);
    static QString amountText(Money m);

    // The groups the duplicate builds: its lines (with the totals and period labels made here)
    // and its bill (with the common fields made here), laid out beside the receipt.
    QGroupBox* linesGroup() const { return m_lines; }
    QGroupBox* billGroup() const { return m_bill; }
    // Column layouts the duplicate adds its groups to, under the receipt and beside it.
    QVBoxLayout* leftColumn() const { return m_left; }

    // What the duplicate shows: names of its lines (once a receipt is found), the bill's own
    // fields, the receipt's line amounts (returning their sum), and what it clears.
    virtual void nameLines() {}
    virtual void showBill(const BillNow& bill) = 0;
    // A receipt whose bill is gone still shows what it carries itself (control and name here).
    virtual void showReceiptKeys(const QSqlRecord& receipt);
    virtual Money showLines(const QSqlRecord& receipt) = 0;
    virtual void clearOwnFields() {}

    QString m_district, m_ward, m_btFlag;

private:
    void txtRecnum_LostFocus();
    bool showReceipt(const QString& recnum);
    void clearFields();
    void cmdPrint_Click();

    ReprintKind m_kind;
    FieldLeave* m_leave = nullptr;
    QGroupBox* m_lines = nullptr;
    QGroupBox* m_bill = nullptr;
    QVBoxLayout* m_left = nullptr;
    QString m_recnum;
    QString m_lastLeft; // the text of txtRecnum when it was last left
};

// frmREReprintReceipt: the real-estate reprint, with the parcel and the installments.
class frmREReprintReceipt : public ReprintReceiptScreen {
    Q_OBJECT
public:
    explicit frmREReprintReceipt(QWidget* parent = nullptr);

    // What it paid, line by line.
    QLabel* lblC1Face = nullptr;
    QLabel* lblTwp = nullptr;
    QLabel* lblSpecFace[3] = {};
    QLabel* lblSch1Face = nullptr;
    QLineEdit* txtCounty = nullptr;
    QLineEdit* txtLibrary = nullptr;
    QLineEdit* txtC1Face = nullptr;
    QLineEdit* txtTwp = nullptr;
    QLineEdit* txtSpecFace[3] = {};
    QLineEdit* txtSchool = nullptr;
    QLineEdit* txtSch1Face = nullptr;
    QGroupBox* fraInstallments = nullptr;
    QLineEdit* txtPayment1 = nullptr;
    QLineEdit* txtPayment2 = nullptr;
    QLineEdit* txtPayment3 = nullptr;
    QLineEdit* txtInstDFP1 = nullptr;
    QLineEdit* txtInstDFP2 = nullptr;
    QLineEdit* txtInstDFP3 = nullptr;

    // The parcel.
    QLineEdit* txtCoOwner = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtDesc1 = nullptr;
    QLineEdit* txtDesc2 = nullptr;
    QLineEdit* txtDesc3 = nullptr;
    QLineEdit* txtDeedBook = nullptr;
    QLineEdit* txtDeedPage = nullptr;
    QComboBox* cboLandUse = nullptr;
    QLineEdit* txtAcreage = nullptr;
    QLineEdit* txtAssLand = nullptr;
    QLineEdit* txtAssImpr = nullptr;
    QLineEdit* txtAssTotal = nullptr;

protected:
    void nameLines() override;
    void showBill(const BillNow& bill) override;
    void showReceiptKeys(const QSqlRecord& receipt) override;
    Money showLines(const QSqlRecord& receipt) override;
    void clearOwnFields() override;
};
