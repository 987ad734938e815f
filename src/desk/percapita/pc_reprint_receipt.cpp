#include "desk/percapita/pc_reprint_receipt.h"

#include "core/named_widgets.h"
#include "desk/percapita/pc_receipt.h"
#include "desk/realestate/payment_rules.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

frmPCReprintReceipt::frmPCReprintReceipt(QWidget* parent)
    : ReprintReceiptScreen(
          {QStringLiteral("frmPCReprintReceipt"), QStringLiteral("Reprint Per Capita Receipt"),
           QStringLiteral("PCReceipt"), QStringLiteral("PCMaster"), Duplicate::PerCapita,
           [](QWidget* screen, const QString& recnum) {
               return AskAndPrintPCReceipt(screen, recnum);
           }},
          parent) {
    // The amounts: per capita and occupation of each body.
    QGroupBox* amounts = linesGroup();
    QLineEdit** lines[PerCapitaLineCount] = {&txtCPerCapita,  &txtCOccupation, &txtTPerCapita,
                                             &txtTOccupation, &txtSPerCapita,  &txtSOccupation};
    for (int i = 0; i < PerCapitaLineCount; ++i)
        *lines[i] = field(QStringLiteral("txt") + PerCapitaFaceColumn(i), amounts);
    lblTwp = NamedLabel(amounts, QStringLiteral("lblTwp"), QStringLiteral("Township:"));
    {
        auto* grid = new QGridLayout(amounts);
        const QString titles[3] = {QStringLiteral("County:"), QString(), QStringLiteral("School:")};
        QLabel* periods[3] = {lblCPeriod, lblTPeriod, lblSPeriod};
        QLineEdit* totals[3] = {txtCTotal, txtTTotal, txtSTotal};
        for (int b = 0; b < 3; ++b) {
            grid->addWidget(b == 1 ? static_cast<QWidget*>(lblTwp) : new QLabel(titles[b], amounts),
                            0, b * 2);
            grid->addWidget(periods[b], 0, b * 2 + 1);
            grid->addWidget(new QLabel(QStringLiteral("Per Capita:"), amounts), 1, b * 2);
            grid->addWidget(*lines[b * 2], 1, b * 2 + 1);
            grid->addWidget(new QLabel(QStringLiteral("Occupation:"), amounts), 2, b * 2);
            grid->addWidget(*lines[b * 2 + 1], 2, b * 2 + 1);
            grid->addWidget(new QLabel(QStringLiteral("Total:"), amounts), 3, b * 2);
            grid->addWidget(totals[b], 3, b * 2 + 1);
        }
        grid->addWidget(new QLabel(QStringLiteral("Total:"), amounts), 4, 4);
        grid->addWidget(txtTotal, 4, 5);
    }

    // The person's bill.
    QGroupBox* bill = billGroup();
    bill->setTitle(QStringLiteral("Taxpayer"));
    txtBirthdate = field(QStringLiteral("txtBirthdate"), bill, 10);
    txtOccuCode = field(QStringLiteral("txtOccuCode"), bill);
    txtOccuDesc = field(QStringLiteral("txtOccuDesc"), bill, 50);
    txtOccuValue = field(QStringLiteral("txtOccuValue"), bill, 10);
    {
        auto* city = new QHBoxLayout;
        city->addWidget(txtCity, 3);
        city->addWidget(cboState, 1);
        city->addWidget(txtZipCode, 1);
        city->addWidget(txtZipCode2, 1);
        auto* occupation = new QHBoxLayout;
        occupation->addWidget(txtOccuCode, 1);
        occupation->addWidget(txtOccuDesc, 4);
        occupation->addWidget(txtOccuValue, 2);
        auto* form = new QFormLayout(bill);
        form->addRow(QStringLiteral("Control #:"), txtControl);
        form->addRow(QStringLiteral("Name:"), txtName);
        form->addRow(QStringLiteral("Care Of:"), txtAddr1);
        form->addRow(QStringLiteral("Address:"), txtAddr2);
        form->addRow(QStringLiteral("City/State/Zip:"), city);
        form->addRow(QStringLiteral("Birthdate:"), txtBirthdate);
        form->addRow(QStringLiteral("Occupation:"), occupation);
    }
    for (QLineEdit* edit : findChildren<QLineEdit*>())
        if (edit != txtRecnum)
            edit->setFocusPolicy(Qt::ClickFocus);
}

void frmPCReprintReceipt::nameLines() {
    lblTwp->setText(m_btFlag == QLatin1String("B")   ? QStringLiteral("Borough:")
                    : m_btFlag == QLatin1String("C") ? QStringLiteral("City:")
                                                     : QStringLiteral("Township:"));
}

void frmPCReprintReceipt::showBill(const BillNow& bill) {
    txtBirthdate->setText(bill.text("Birthdate").trimmed());
    txtOccuCode->setText(bill.text("OccuCode").trimmed());
    txtOccuDesc->setText(bill.text("OccuDesc").trimmed());
    txtOccuValue->setText(bill.text("OccuValue").trimmed());
}

Money frmPCReprintReceipt::showLines(const QSqlRecord& r) {
    QLineEdit* lines[PerCapitaLineCount] = {txtCPerCapita,  txtCOccupation, txtTPerCapita,
                                            txtTOccupation, txtSPerCapita,  txtSOccupation};
    Money totals[3];
    for (int i = 0; i < PerCapitaLineCount; ++i) {
        const QString face = PerCapitaFaceColumn(i);
        const Money amount = MoneyField(r.value(face)) +
                             MoneyField(r.value(QLatin1Char('D') + face)) +
                             MoneyField(r.value(QLatin1Char('P') + face));
        lines[i]->setText(amountText(amount));
        totals[int(BodyOfPerCapitaLine(i))] += amount;
    }
    txtCTotal->setText(amountText(totals[0]));
    txtTTotal->setText(amountText(totals[1]));
    txtSTotal->setText(amountText(totals[2]));
    const Money all = totals[0] + totals[1] + totals[2];
    txtTotal->setText(amountText(all));
    return all;
}
