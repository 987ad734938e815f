#pragma once
// frmPCQueryIndividual: one per capita taxpayer at a time, with the amounts of the chosen period
// as the bill stands after its last adjustment, stepping one bill forward or back. The search,
// the reading of the bill and the stepping are those of the real-estate screen.

#include "desk/percapita/adjust_writes.h"
#include "desk/realestate/individual_query.h"

#include <array>

class frmPCQueryIndividual : public IndividualQueryScreen {
    Q_OBJECT
public:
    explicit frmPCQueryIndividual(QWidget* parent = nullptr);

    std::array<QLineEdit*, PerCapitaLineCount> txtLine{}; // txtCPerCapita .. txtSOccupation

protected:
    void buildTaxpayer() override;
    void buildAmounts(QGroupBox* frame, QGridLayout* grid) override;
    void loadOffice(const IndividualQueryOffice& office) override;
    void showBillFields() override {}
    void showLines(QChar period, std::array<Money, 3>& totals) override;
    QString paymentInfoText() override;
    void toPayment() override;
    void toAdjust() override;
    void toAddress() override;
    void printTaxBill() override;
};
