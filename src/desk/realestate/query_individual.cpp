#include "desk/realestate/query_individual.h"

#include "bills/re_print_tax_bills.h"
#include "core/common_values.h"
#include "core/named_widgets.h"
#include "core/session.h"
#include "core/tax_database.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/adjust_tax_bill.h"
#include "desk/realestate/payment_rules.h"
#include "desk/realestate/query_handover.h"
#include "desk/realestate/receive_payment.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSqlQuery>

namespace {

QString amountText(Money amount) {
    return amount.format(u"$###,###,###.00");
}

} // namespace

frmREQueryIndividual::frmREQueryIndividual(QWidget* parent)
    : IndividualQueryScreen("frmREQueryIndividual", RealEstateChain, true, parent) {
    build();
}

void frmREQueryIndividual::buildTaxpayer() {
    QGroupBox* frame = taxpayerFrame();
    auto shown = [frame](const QString& name, int width = 0) {
        return ShownField(frame, name, width);
    };
    txtPMap3 = shown(QStringLiteral("txtPMap3"), 8);
    txtPMap4 = shown(QStringLiteral("txtPMap4"), 6);
    txtPMap5 = shown(QStringLiteral("txtPMap5"), 9);
    chkHFFlag =
        NamedCheck(frame, QStringLiteral("chkHFFlag"), QStringLiteral("Homestead/Farmstead"));
    chkHFFlag->setEnabled(false);
    for (int i = 0; i < 3; ++i) {
        txtPayFlag[std::size_t(i)] = shown(QStringLiteral("txtPay%1Flag").arg(i + 1), 1);
        txtPayment[std::size_t(i)] = shown(QStringLiteral("txtPayment%1").arg(i + 1));
    }
    taxpayerRow("Control #:", txtPControl, txtPBillNo);
    taxpayerRow("Name:", txtPName);
    taxpayerRow("Map #:", txtPMap3, txtPMap4, txtPMap5);
    taxpayerRow("County/Twp/School Paid:", txtCPayFlag, txtTPayFlag, txtSPayFlag);
    taxpayerRow("Installments Paid:", txtPayFlag[0], txtPayFlag[1], txtPayFlag[2]);
    taxpayerRow("Installments:", txtPayment[0], txtPayment[1], txtPayment[2]);
    taxpayerRow("Adj / Addr:", txtAdjFlag, txtCAddrFlag);
    taxpayerRow(nullptr, chkHFFlag);
}

void frmREQueryIndividual::buildAmounts(QGroupBox* frame, QGridLayout* grid) {
    auto line = [frame](const QString& name) { return ShownField(frame, name); };
    auto label = [frame](const QString& name, const char* text) {
        return NamedLabel(frame, name, QString::fromLatin1(text));
    };
    txtCounty = line(QStringLiteral("txtCounty"));
    txtLibrary = line(QStringLiteral("txtLibrary"));
    txtC1Face = line(QStringLiteral("txtC1Face"));
    txtTwp = line(QStringLiteral("txtTwp"));
    for (int i = 0; i < 3; ++i) {
        txtSpecFace[std::size_t(i)] = line(QStringLiteral("txtSpecFace(%1)").arg(i + 1));
        lblSpecFace[std::size_t(i)] =
            NamedLabel(frame, QStringLiteral("lblSpecFace(%1)").arg(i + 1), QString());
    }
    txtSchool = line(QStringLiteral("txtSchool"));
    txtSch1Face = line(QStringLiteral("txtSch1Face"));
    lblCounty = label(QStringLiteral("lblCounty"), "County:");
    lblLibrary = label(QStringLiteral("lblLibrary"), "Library:");
    lblC1Face = label(QStringLiteral("lblC1Face"), "");
    lblTwp = label(QStringLiteral("lblTwp"), "Township:");
    lblSchool = label(QStringLiteral("lblSchool"), "School:");
    lblSch1Face = label(QStringLiteral("lblSch1Face"), "");
    auto cell = [grid](int row, int column, QWidget* l, QWidget* field) {
        grid->addWidget(l, row, column * 2);
        grid->addWidget(field, row, column * 2 + 1);
    };
    cell(0, 0, lblCounty, txtCounty);
    cell(1, 0, lblLibrary, txtLibrary);
    cell(2, 0, lblC1Face, txtC1Face);
    cell(4, 0, new QLabel(QStringLiteral("Tot County:"), frame), txtCTotal);
    cell(0, 1, lblTwp, txtTwp);
    for (int i = 0; i < 3; ++i)
        cell(1 + i, 1, lblSpecFace[std::size_t(i)], txtSpecFace[std::size_t(i)]);
    cell(4, 1, new QLabel(QStringLiteral("Tot Twp:"), frame), txtTTotal);
    cell(0, 2, lblSchool, txtSchool);
    cell(1, 2, lblSch1Face, txtSch1Face);
    cell(4, 2, new QLabel(QStringLiteral("Tot School:"), frame), txtSTotal);
    cell(5, 2, new QLabel(QStringLiteral("Grand Total:"), frame), txtTotal);
}

void frmREQueryIndividual::loadOffice(const IndividualQueryOffice& office) {
    lblTwp->setText(office.btFlag == QLatin1String("T")   ? QStringLiteral("Township:")
                    : office.btFlag == QLatin1String("B") ? QStringLiteral("Borough:")
                                                          : QStringLiteral("City:"));
    // Which fields show, as on the adjustment screen.
    const QString countySpecial = TextField(office.county.value("S1TaxName")).trimmed();
    const QString schoolSpecial = TextField(office.municipal.value("S1TaxName")).trimmed();
    lblC1Face->setText(countySpecial + QLatin1Char(':'));
    lblSch1Face->setText(schoolSpecial + QLatin1Char(':'));
    showLine(office.county.value("SMR").toDouble() != 0, txtCounty);
    showLine(office.municipal.value("LMR").toDouble() != 0, txtLibrary);
    showLine(office.county.value("S1MR").toDouble() != 0, txtC1Face);
    showLine(office.municipal.value("TMR").toDouble() != 0, txtTwp);
    showLine(office.municipal.value("SMR").toDouble() != 0, txtSchool);
    showLine(!schoolSpecial.isEmpty(), txtSch1Face);
    int special = 0;
    QSqlQuery q(session().DbConnection);
    q.prepare(QStringLiteral(
        "SELECT Desc1 FROM Spectax WHERE District = ? AND Ward = ? ORDER BY TaxKey"));
    q.addBindValue(office.district);
    q.addBindValue(office.ward);
    if (q.exec())
        for (; special < 3 && q.next(); ++special)
            lblSpecFace[std::size_t(special)]->setText(TextField(q.value(0)).trimmed() +
                                                       QLatin1Char(':'));
    for (int i = 0; i < 3; ++i) {
        const bool named = i < special && lblSpecFace[std::size_t(i)]->text() != QLatin1String(":");
        showLine(named, txtSpecFace[std::size_t(i)]);
    }
}

void frmREQueryIndividual::showBillFields() {
    auto text = [this](const char* column) { return TextField(master().value(column)); };
    txtPMap3->setText(text("Map3"));
    txtPMap4->setText(text("Map4"));
    txtPMap5->setText(text("Map5"));
    chkHFFlag->setChecked(FlagField(source().value("HFFlag")).trimmed() == QLatin1String("A"));
    for (int i = 0; i < 3; ++i)
        txtPayFlag[std::size_t(i)]->setText(
            FlagField(master().value(QStringLiteral("Pay%1Flag").arg(i + 1))));
    const Installments installments = InstallmentsFromRecord(source());
    for (int i = 0; i < 3; ++i)
        txtPayment[std::size_t(i)]->setText(amountText(installments.payment[std::size_t(i)]));
}

void frmREQueryIndividual::showLines(QChar period, std::array<Money, 3>& totals) {
    const BillLines lines = BillLinesFromRecord(source());
    QLineEdit* fields[TaxLineCount] = {txtCounty,      txtLibrary,     txtC1Face,
                                       txtTwp,         txtSpecFace[0], txtSpecFace[1],
                                       txtSpecFace[2], txtSchool,      txtSch1Face};
    for (int i = 0; i < TaxLineCount; ++i) {
        const AmountTriple& t = lines.line[std::size_t(i)];
        const Money amount = period == QChar(PeriodDiscount)  ? t.discount
                             : period == QChar(PeriodPenalty) ? t.penalty
                                                              : t.face;
        fields[i]->setText(amountText(amount));
        totals[std::size_t(BodyOfLine(i))] += amount;
    }
}

void frmREQueryIndividual::clearBillFields() {
    chkHFFlag->setChecked(false);
}

QString frmREQueryIndividual::paymentInfoText() {
    return RealEstatePaymentInfoText(
        BillPayFlagsFromRecord(master()), btFlag(),
        ReadRealEstatePaidReceipts(session().DbConnection, txtPBillNo->text()));
}

void frmREQueryIndividual::toPayment() {
    HandToScreen<frmREReceivePayment>("frmREReceivePayment", txtPBillNo->text(), this,
                                      &frmREReceivePayment::paymentReceived);
}

void frmREQueryIndividual::toAddress() {
    HandToScreen<frmREAddressChange>("frmREAddressChange", txtPBillNo->text(), this,
                                     &frmREAddressChange::addressChanged);
}

void frmREQueryIndividual::toAdjust() {
    if (auto* target = HandToScreen<frmREAdjustTaxBill>("frmREAdjustTaxBill", txtPBillNo->text(),
                                                        this, &frmREAdjustTaxBill::billSaved))
        session().QueryOpenedScreen.remove(target->objectName());
}

void frmREQueryIndividual::printTaxBill() {
    OpenREPrintTaxBillsFor(txtPBillNo->text(), chkHFFlag->isChecked());
}
