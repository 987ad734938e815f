#pragma once
// frmREQueryIndividual: one taxpayer at a time, in full, with the amounts of the chosen period
// (as the bill stands after its last adjustment), stepping one bill forward or back.

#include "desk/realestate/individual_query.h"

#include <array>

class QCheckBox;
class QLabel;

class frmREQueryIndividual : public IndividualQueryScreen {
    Q_OBJECT
public:
    explicit frmREQueryIndividual(QWidget* parent = nullptr);

    QLineEdit* txtPMap3 = nullptr;
    QLineEdit* txtPMap4 = nullptr;
    QLineEdit* txtPMap5 = nullptr;
    QCheckBox* chkHFFlag = nullptr;
    std::array<QLineEdit*, 3> txtPayFlag{}; // txtPay1Flag .. txtPay3Flag
    std::array<QLineEdit*, 3> txtPayment{}; // txtPayment1 .. txtPayment3

    QLabel* lblCounty = nullptr;
    QLabel* lblLibrary = nullptr;
    QLabel* lblC1Face = nullptr;
    QLabel* lblTwp = nullptr;
    std::array<QLabel*, 3> lblSpecFace{};
    QLabel* lblSchool = nullptr;
    QLabel* lblSch1Face = nullptr;
    QLineEdit* txtCounty = nullptr;
    QLineEdit* txtLibrary = nullptr;
    QLineEdit* txtC1Face = nullptr;
    QLineEdit* txtTwp = nullptr;
    std::array<QLineEdit*, 3> txtSpecFace{};
    QLineEdit* txtSchool = nullptr;
    QLineEdit* txtSch1Face = nullptr;

protected:
    void buildTaxpayer() override;
    void buildAmounts(QGroupBox* frame, QGridLayout* grid) override;
    void loadOffice(const IndividualQueryOffice& office) override;
    void showBillFields() override;
    void showLines(QChar period, std::array<Money, 3>& totals) override;
    void clearBillFields() override;
    QString paymentInfoText() override;
    void toPayment() override;
    void toAdjust() override;
    void toAddress() override;
    void printTaxBill() override;
};
