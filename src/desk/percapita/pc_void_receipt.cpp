#include "desk/percapita/pc_void_receipt.h"

#include "core/tax_database.h"

#include <QLabel>

namespace {

VoidKind perCapitaVoid() {
    VoidKind k;
    k.objectName = QStringLiteral("frmPCVoidReceipt");
    k.windowTitle = QStringLiteral("Void Per Capita Receipt");
    k.tables = &PerCapitaDesk();
    k.incompleteAdjustmentText = QString::fromLatin1(IncompleteAdjustmentText);
    const char* const captions[PerCapitaLineCount] = {
        "County Per Capita:", "County Occupation:", "Per Capita:",
        "Occupation:",        "School Per Capita:", "School Occupation:"};
    for (int i = 0; i < PerCapitaLineCount; ++i)
        k.lines.push_back({QStringLiteral("txt") + PerCapitaFaceColumn(i),
                           QString::fromLatin1(captions[i]), PerCapitaFaceColumn(i),
                           BodyOfPerCapitaLine(i)});
    return k;
}

} // namespace

frmPCVoidReceipt::frmPCVoidReceipt(QWidget* parent) : VoidReceiptScreen(perCapitaVoid(), parent) {
    txtCPerCapita = lineField(LineCPerCapita);
    txtCOccupation = lineField(LineCOccupation);
    txtTPerCapita = lineField(LineTPerCapita);
    txtTOccupation = lineField(LineTOccupation);
    txtSPerCapita = lineField(LineSPerCapita);
    txtSOccupation = lineField(LineSOccupation);
    // The municipal lines are captioned by the municipality's kind.
    lineLabel(LineTPerCapita)->setText(m_bodyWord + QStringLiteral(" Per Capita:"));
    lineLabel(LineTOccupation)->setText(m_bodyWord + QStringLiteral(" Occupation:"));
}
