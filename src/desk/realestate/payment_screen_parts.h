#pragma once
// The widgets both payment screens carry with the same names and places: the bill number,
// adjustment number and date credited with the three markers; the payor, check, amount and
// total frame with "Print A Receipt"; and the row of buttons. Each screen builds its bill and
// its bodies around them.

#include <QString>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QGroupBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

struct PaymentScreenParts {
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    QLineEdit* txtDate = nullptr;
    QPushButton* cmdDate = nullptr;
    QLabel* lblAdjustment = nullptr;
    QLabel* lblAddressChange = nullptr;
    QLabel* lblPaymentReceived = nullptr;
    QHBoxLayout* top = nullptr; // bill #, adj #, date, the markers

    QGroupBox* fraPayor = nullptr;
    QLineEdit* txtPayor = nullptr;
    QLineEdit* txtPAddr1 = nullptr;
    QLineEdit* txtPAddr2 = nullptr;
    QLineEdit* txtPCity = nullptr;
    QComboBox* cboPState = nullptr;
    QLineEdit* txtPZipCode = nullptr;
    QLineEdit* txtPZipCode2 = nullptr;
    QLineEdit* txtChecknum = nullptr;
    QLineEdit* txtAmount = nullptr;
    QLineEdit* txtTotal = nullptr;
    QCheckBox* chkPrintReceipt = nullptr;

    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdClearScreen = nullptr;
    QPushButton* cmdQuery = nullptr;
    QPushButton* cmdPaymentInfo = nullptr;
    QPushButton* cmdPrevPayor = nullptr;
    QPushButton* cmdPrevComments = nullptr;
    QPushButton* cmdPrintScreen = nullptr;
    QPushButton* cmdExit = nullptr;
    QHBoxLayout* buttons = nullptr;
};

// Builds the parts on the screen. The bill number is upper-cased as typed and never keeps a
// "*"; "Change Date" unlocks the date; Print Screen prints the window; Clear Screen, Query and
// Exit take no focus.
PaymentScreenParts BuildPaymentScreenParts(QWidget* screen);

// An editable combo box of at most maxLength characters, for the state boxes.
QComboBox* NewStateCombo(QWidget* parent, const QString& name, int maxLength);
// A label and its field side by side in a grid row.
void AddFieldRow(QGridLayout* grid, int row, QWidget* label, QWidget* field, int column = 0);
