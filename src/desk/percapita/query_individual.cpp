#include "desk/percapita/query_individual.h"

#include "bills/pc_print_tax_bills.h"
#include "core/named_widgets.h"
#include "core/session.h"
#include "desk/percapita/address_change.h"
#include "desk/percapita/adjust_tax_bill.h"
#include "desk/percapita/pc_handover.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

namespace {

const char* const LineFields[PerCapitaLineCount] = {"txtCPerCapita", "txtCOccupation",
                                                    "txtTPerCapita", "txtTOccupation",
                                                    "txtSPerCapita", "txtSOccupation"};
const char* const LineCaptions[PerCapitaLineCount] = {
    "County Per Capita:", "County Occupation:", "T/B/C Per Capita:",
    "T/B/C Occupation:",  "School Per Capita:", "School Occupation:"};

} // namespace

frmPCQueryIndividual::frmPCQueryIndividual(QWidget* parent)
    : IndividualQueryScreen("frmPCQueryIndividual", PerCapitaChain, false, parent) {
    build();
}

void frmPCQueryIndividual::buildTaxpayer() {
    taxpayerRow("Control #:", txtPControl, txtPBillNo);
    taxpayerRow("Name:", txtPName);
    taxpayerRow("County/Twp/School Paid:", txtCPayFlag, txtTPayFlag, txtSPayFlag);
    taxpayerRow("Adj / Addr:", txtAdjFlag, txtCAddrFlag);
}

void frmPCQueryIndividual::buildAmounts(QGroupBox* frame, QGridLayout* grid) {
    for (int line = 0; line < PerCapitaLineCount; ++line) {
        const QString name = QString::fromLatin1(LineFields[line]);
        txtLine[std::size_t(line)] = ShownField(frame, name);
        grid->addWidget(NamedLabel(frame, QStringLiteral("lbl") + name.mid(3),
                                   QString::fromLatin1(LineCaptions[line])),
                        line % 2, (line / 2) * 2);
        grid->addWidget(txtLine[std::size_t(line)], line % 2, (line / 2) * 2 + 1);
    }
    const std::array<QLineEdit*, 3> totals{txtCTotal, txtTTotal, txtSTotal};
    const char* totalCaptions[3] = {"Tot County:", "Tot T/B/C:", "Tot School:"};
    for (int b = 0; b < 3; ++b) {
        QLineEdit* total = totals[std::size_t(b)];
        grid->addWidget(NamedLabel(frame, QStringLiteral("lbl") + total->objectName().mid(3),
                                   QString::fromLatin1(totalCaptions[b])),
                        2, b * 2);
        grid->addWidget(total, 2, b * 2 + 1);
    }
    grid->addWidget(new QLabel(QStringLiteral("Grand Total:"), frame), 3, 4);
    grid->addWidget(txtTotal, 3, 5);
}

void frmPCQueryIndividual::loadOffice(const IndividualQueryOffice& office) {
    // A body's lines show when it levies something, as on the adjustment screen.
    const PerCapitaRates rates = PerCapitaRatesFromMillfile(office.county, office.municipal,
                                                            office.district, office.schoolName);
    const std::array<QLineEdit*, 3> totals{txtCTotal, txtTTotal, txtSTotal};
    for (int b = 0; b < 3; ++b) {
        const bool visible = rates.body[std::size_t(b)].levies();
        for (QLineEdit* f :
             {txtLine[std::size_t(b * 2)], txtLine[std::size_t(b * 2 + 1)], totals[std::size_t(b)]})
            showLine(visible, f);
    }
}

void frmPCQueryIndividual::showLines(QChar period, std::array<Money, 3>& totals) {
    const PerCapitaBillAmounts amounts = PerCapitaBillAmountsFromRecord(source());
    for (int line = 0; line < PerCapitaLineCount; ++line) {
        const AmountTriple& t = amounts.line[std::size_t(line)];
        const Money amount = period == QChar(PeriodDiscount)  ? t.discount
                             : period == QChar(PeriodPenalty) ? t.penalty
                                                              : t.face;
        txtLine[std::size_t(line)]->setText(amount.format(u"$###,###,###.00"));
        totals[std::size_t(BodyOfPerCapitaLine(line))] += amount;
    }
}

QString frmPCQueryIndividual::paymentInfoText() {
    return PerCapitaPaymentInfoText(
        BillPayFlagsFromRecord(master()), btFlag(),
        ReadPerCapitaReceipts(session().DbConnection, txtPBillNo->text()));
}

void frmPCQueryIndividual::toPayment() {
    HandToDeskScreen(QStringLiteral("frmPCReceivePayment"), txtPBillNo->text(), this,
                     SIGNAL(paymentReceived(QString)));
}

void frmPCQueryIndividual::toAdjust() {
    if (auto* target = HandToScreen<frmPCAdjustTaxBill>("frmPCAdjustTaxBill", txtPBillNo->text(),
                                                        this, &frmPCAdjustTaxBill::billSaved))
        session().QueryOpenedScreen.remove(target->objectName());
}

void frmPCQueryIndividual::toAddress() {
    HandToScreen<frmPCAddressChange>("frmPCAddressChange", txtPBillNo->text(), this,
                                     &frmPCAddressChange::addressChanged);
}

void frmPCQueryIndividual::printTaxBill() {
    OpenPCPrintTaxBillsFor(txtPBillNo->text());
}
