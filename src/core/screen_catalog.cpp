#include "core/screen_catalog.h"

#include "desk/realestate/receive_payment.h"
#include "desk/realestate/void_receipt.h"
#include "rates/rate_screens.h"
#include "reports/reprint_receipt.h"
#include "reports/select_printer.h"
#include "utilities/backup_data.h"

#include <QHash>

namespace {

template <typename Screen> ScreenEntry entry(const char* name, bool modal = false) {
    return {QString::fromLatin1(name), modal, [] { return static_cast<QWidget*>(new Screen); }};
}

const QHash<QString, ScreenEntry>& catalog() {
    static const QHash<QString, ScreenEntry> screens{
        {"mnuUtilitiesBackup", entry<frmBackupData>("frmBackupData", true)},
        {"mnuREPaymentsReceivePayments", entry<frmREReceivePayment>("frmREReceivePayment")},
        {"mnuREPaymentsVoidReceipt", entry<frmREVoidReceipt>("frmREVoidReceipt")},
        {"mnuUtilitiesRestore", entry<frmRestoreData>("frmRestoreData", true)},
        {"mnuPrinters", entry<frmSelectPrinter>("frmSelectPrinter")},
        {"mnuREPaymentsReprintReceipt", entry<frmREReprintReceipt>("frmREReprintReceipt")},
        {"mnuUtilitiesMillagesCounty",
         entry<frmMaintainMillagesCounty>("frmMaintainMillagesCounty")},
        {"mnuUtilitiesMillagesTwp",
         entry<frmMaintainMillagesTownship>("frmMaintainMillagesTownship")},
        {"mnuUtilitiesMillagesSchool",
         entry<frmMaintainMillagesSchool>("frmMaintainMillagesSchool")},
        {"mnuUtilitiesEditSpecialTaxes", entry<frmEditSpecialTaxes>("frmEditSpecialTaxes")},
        {"mnuUilitiesEditSpecialTaxpayers",
         {"frmEditSpecialTaxpayers", false, &frmEditSpecialTaxpayers::open}},
    };
    return screens;
}

} // namespace

const ScreenEntry* screenForMenuItem(const QString& itemName) {
    const auto& screens = catalog();
    auto it = screens.find(itemName);
    return it == screens.end() ? nullptr : &it.value();
}
