#pragma once
// frmREReprintReceipt: finds a real-estate receipt by its number, shows it with its bill in the
// fields of the payment screen (read only), and prints it again as a duplicate.

#include <QString>
#include <QWidget>

class FieldLeave;
class QCheckBox;
class QCloseEvent;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

class frmREReprintReceipt : public QWidget {
    Q_OBJECT
public:
    explicit frmREReprintReceipt(QWidget* parent = nullptr);

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
    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtSTotal = nullptr;
    QLineEdit* txtTotal = nullptr;
    QLabel* lblCPeriod = nullptr;
    QLabel* lblTPeriod = nullptr;
    QLabel* lblSPeriod = nullptr;
    QGroupBox* fraInstallments = nullptr;
    QLineEdit* txtPayment1 = nullptr;
    QLineEdit* txtPayment2 = nullptr;
    QLineEdit* txtPayment3 = nullptr;
    QLineEdit* txtInstDFP1 = nullptr;
    QLineEdit* txtInstDFP2 = nullptr;
    QLineEdit* txtInstDFP3 = nullptr;

    // The bill as it stands.
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtCoOwner = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
    QComboBox* cboState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtZipCode2 = nullptr;
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

    QPushButton* cmdPrint = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExit = nullptr;

    // A query screen hands a receipt over: it is shown at once, as if typed and left.
    void openFromQuery(const QString& recnum);

    // The receipt shown, or empty.
    QString shownRecnum() const { return m_recnum; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void txtRecnum_LostFocus();
    bool showReceipt(const QString& recnum);
    void clearFields();
    void cmdPrint_Click();
    void cmdPrintScreen_Click();

    FieldLeave* m_leave = nullptr;
    QString m_recnum;
    QString m_lastLeft; // the text of txtRecnum when it was last left
};
