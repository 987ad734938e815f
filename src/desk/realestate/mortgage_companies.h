#pragma once
// frmREMortgageCompanies: posts the payments a mortgage company sends on its file. The screen
// has nothing for the collector to work: opened from the menu it asks for the company's file,
// walks it showing each bill as it goes, prints the records it could not post on the Letter
// printer and closes.

#include <QWidget>

class QLineEdit;
struct BillNow;
struct MortgageRecord;
struct PeriodAmounts;

class frmREMortgageCompanies : public QWidget {
    Q_OBJECT
public:
    explicit frmREMortgageCompanies(QWidget* parent = nullptr);

    // The menu's way in: the screen is shown, runs and is closed again; nothing is left open.
    static QWidget* open();
    // The run: the diskette question, the Letter printer, the file chooser, the walk over the
    // records, the exception list, "Update Complete".
    void run();

    // The record being read.
    QLineEdit* txtBillNo = nullptr;
    QLineEdit* txtAdjNo = nullptr;
    QLineEdit* txtDate = nullptr;
    QLineEdit* txtAmount = nullptr;
    QLineEdit* txtPayor = nullptr;
    QLineEdit* txtChecknum = nullptr;
    // Its bill as it stands.
    QLineEdit* txtControl = nullptr;
    QLineEdit* txtName = nullptr;
    QLineEdit* txtAddr1 = nullptr;
    QLineEdit* txtAddr2 = nullptr;
    QLineEdit* txtCity = nullptr;
    QLineEdit* txtState = nullptr;
    QLineEdit* txtZipCode = nullptr;
    QLineEdit* txtMap3 = nullptr;
    QLineEdit* txtMap4 = nullptr;
    QLineEdit* txtMap5 = nullptr;
    QLineEdit* txtDesc1 = nullptr;
    QLineEdit* txtDesc2 = nullptr;
    QLineEdit* txtAssLand = nullptr;
    QLineEdit* txtAssImpr = nullptr;
    QLineEdit* txtAssTotal = nullptr;
    // The amounts of the period being tried.
    QLineEdit* txtCounty = nullptr;
    QLineEdit* txtLibrary = nullptr;
    QLineEdit* txtC1Face = nullptr;
    QLineEdit* txtTwp = nullptr;
    QLineEdit* txtSpecFace[3] = {};
    QLineEdit* txtCTotal = nullptr;
    QLineEdit* txtTTotal = nullptr;
    QLineEdit* txtTotal = nullptr;

private:
    void showRecord(const MortgageRecord& record);
    void showBill(const BillNow& bill);
    void showPeriod(const PeriodAmounts& amounts);
};
