#pragma once
// frmREVoidReceipt: takes a payment back. The bill becomes unpaid again for what the receipt
// paid, the receipt stays with its date of voiding, and a negated copy goes to TCVoidReceipt for
// the next distribution. Refunds of the receipt go with it unless one was distributed.

#include <QString>
#include <QWidget>
#include <array>

class QLabel;
class QLineEdit;
class QPushButton;

class frmREVoidReceipt : public QWidget {
    Q_OBJECT
public:
    explicit frmREVoidReceipt(QWidget* parent = nullptr);

    // Puts a receipt number in and runs the field's leave action, as the query screen does.
    void enterRecnum(const QString& recnum);
    // A query screen hands a receipt over: the screen is cleared and the receipt shown at once.
    void openFromQuery(const QString& recnum);

    QLineEdit* txtRecnum = nullptr;
    QLineEdit* txtVDate = nullptr;
    QLineEdit* txtReason = nullptr;

    QLineEdit* txtControl = nullptr;
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtPayor = nullptr;
    QLineEdit* txtAmount = nullptr;
    QLabel* lblTendered = nullptr;

    QLineEdit* txtCounty = nullptr;
    QLineEdit* txtLibrary = nullptr;
    QLineEdit* txtC1Face = nullptr;
    QLineEdit* txtTwp = nullptr;
    std::array<QLineEdit*, 3> txtSpecFace{};
    QLineEdit* txtSchool = nullptr;
    QLineEdit* txtSch1Face = nullptr;
    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtSTotal = nullptr;
    QLineEdit* txtTotal = nullptr;
    QLabel* lblC1Face = nullptr;
    QLabel* lblTwp = nullptr;
    std::array<QLabel*, 3> lblSpecFace{};
    QLabel* lblSch1Face = nullptr;

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

private:
    void buildScreen();
    void loadNames();
    // True when the click that left the field must not act: the number was refused, or another
    // receipt came onto the screen.
    bool recnumLeft();
    bool vDateLeft();
    void accept();
    void clearScreen();

    QString m_shownRecnum;
    QString m_taxYear;
    bool m_distributedRefunds = false;
    bool m_inLeave = false;
    bool m_clearing = false;
};
