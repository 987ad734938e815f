#include "app/screen_catalog.h"

#include "bills/pc_print_3up_labels.h"
#include "bills/pc_print_tax_bills.h"
#include "bills/print_second_notices.h"
#include "bills/re_print_3up_labels.h"
#include "bills/re_print_tax_bills.h"
#include "bills/school_re_tax_bill_fen.h"
#include "desk/percapita/address_change.h"
#include "desk/percapita/adjust_tax_bill.h"
#include "desk/percapita/pc_receive_payment.h"
#include "desk/percapita/pc_reprint_receipt.h"
#include "desk/percapita/pc_void_receipt.h"
#include "desk/percapita/query_individual.h"
#include "desk/percapita/query_screens.h"
#include "desk/realestate/address_change.h"
#include "desk/realestate/adjust_tax_bill.h"
#include "desk/realestate/mortgage_companies.h"
#include "desk/realestate/query_individual.h"
#include "desk/realestate/query_receipts.h"
#include "desk/realestate/query_tc.h"
#include "desk/realestate/receive_payment.h"
#include "desk/realestate/reprint_receipt.h"
#include "desk/realestate/void_receipt.h"
#include "desk/reports/act169_report.h"
#include "desk/reports/act1_reports.h"
#include "desk/reports/change_reports.h"
#include "desk/reports/receipt_report.h"
#include "desk/reports/summary_report.h"
#include "desk/yearend/left_for_collection.h"
#include "desk/yearend/returns.h"
#include "distribution/distribute_receipts.h"
#include "distribution/distribute_refunds.h"
#include "distribution/distribution_file_screens.h"
#include "distribution/distribution_report_forms.h"
#include "distribution/transfer_distribution_email.h"
#include "rates/rate_screens.h"
#include "reports/select_printer.h"
#include "utilities/backup_data.h"
#include "utilities/email_data_file.h"
#include "utilities/import_duplicate.h"
#include "utilities/late_billing_routines.h"
#include "utilities/scan_data.h"
#include "utilities/verify_data.h"

#include <QHash>

namespace {

template <typename Screen> ScreenEntry entry(const char* name, bool modal = false) {
    return {QString::fromLatin1(name), modal, [] { return static_cast<QWidget*>(new Screen); }};
}

const QHash<QString, ScreenEntry>& catalog() {
    static const QHash<QString, ScreenEntry> screens{
        {"mnuREReportsPrintMailingLabels", entry<frmREPrint3UpLabels>("frmREPrint3UpLabels")},
        {"mnuPCReportsPrintMailingLabels", entry<frmPCPrint3UpLabels>("frmPCPrint3UpLabels")},
        {"mnuREReportsPrintSchoolTaxBills", entry<frmSchoolRETaxBillFen>("frmSchoolRETaxBillFen")},
        {"mnuREReportsPrintTaxBills", entry<frmREPrintTaxBills>("frmREPrintTaxBills")},
        {"mnuPCReportsPrintTaxBills", entry<frmPCPrintTaxBills>("frmPCPrintTaxBills")},
        {"mnuREReportsPrintSecondNotices",
         entry<frmREPrintSecondNotices>("frmREPrintSecondNotices")},
        {"mnuPCReportsPrintSecondNotices",
         entry<frmPCPrintSecondNotices>("frmPCPrintSecondNotices")},
        {"mnuUtilitiesBackup", entry<frmBackupData>("frmBackupData", true)},
        {"mnuREReportsPrintLeftForCollectionReport",
         entry<frmREPrintLeftForCollectionReport>("frmREPrintLeftForCollectionReport")},
        {"mnuREReportsPrintLeftForCollectionReportStLt",
         entry<frmREPrintLeftForCollectionReportStLt>("frmREPrintLeftForCollectionReportStLt")},
        {"mnuPCReportsPrintLeftForCollectionReport",
         entry<frmPCPrintLeftForCollectionReport>("frmPCPrintLeftForCollectionReport")},
        {"mnuREReportsPrintReturnsProof", entry<frmREPrintReturnsProof>("frmREPrintReturnsProof")},
        {"mnuPCReportsPrintReturnsProof", entry<frmPCPrintReturnsProof>("frmPCPrintReturnsProof")},
        {"mnuUtilitiesCreateReturnsFile", entry<frmRECreateReturnsFile>("frmRECreateReturnsFile")},
        {"mnuUtilitiesVerifyData", entry<frmVerifyData>("frmVerifyData")},
        {"mnuUtilitiesImportDuplicate", entry<frmImportDuplicate>("frmImportDuplicate", true)},
        {"mnuREPaymentsReceivePayments", entry<frmREReceivePayment>("frmREReceivePayment")},
        {"mnuPCPaymentsReceivePayments", entry<frmPCReceivePayment>("frmPCReceivePayment")},
        {"mnuREPaymentsAdjustTaxBill", entry<frmREAdjustTaxBill>("frmREAdjustTaxBill")},
        {"mnuREPaymentsVoidReceipt", entry<frmREVoidReceipt>("frmREVoidReceipt")},
        {"mnuPCPaymentsVoidReceipt", entry<frmPCVoidReceipt>("frmPCVoidReceipt")},
        {"mnuREPaymentsChangeAddress", entry<frmREAddressChange>("frmREAddressChange")},
        {"mnuREQueryTC", entry<frmREQueryTC>("frmREQueryTC")},
        {"mnuREQueryIndividual", entry<frmREQueryIndividual>("frmREQueryIndividual")},
        {"mnuREQueryReceipts", entry<frmREQueryReceipts>("frmREQueryReceipts")},
        {"mnuPCPaymentsAdjustTaxBill", entry<frmPCAdjustTaxBill>("frmPCAdjustTaxBill")},
        {"mnuPCPaymentsChangeAddress", entry<frmPCAddressChange>("frmPCAddressChange")},
        {"mnuPCQueryTC", entry<frmPCQueryTC>("frmPCQueryTC")},
        {"mnuPCQueryReceipts", entry<frmPCQueryReceipts>("frmPCQueryReceipts")},
        {"mnuPCQueryIndividual", entry<frmPCQueryIndividual>("frmPCQueryIndividual")},
        {"mnuUtilitiesRestore", entry<frmRestoreData>("frmRestoreData", true)},
        {"mnuPrinters", entry<frmSelectPrinter>("frmSelectPrinter")},
        {"mnuREPaymentsReprintReceipt", entry<frmREReprintReceipt>("frmREReprintReceipt")},
        {"mnuPCPaymentsReprintReceipt", entry<frmPCReprintReceipt>("frmPCReprintReceipt")},
        {"mnuUtilitiesMillagesCounty",
         entry<frmMaintainMillagesCounty>("frmMaintainMillagesCounty")},
        {"mnuUtilitiesMillagesTwp",
         entry<frmMaintainMillagesTownship>("frmMaintainMillagesTownship")},
        {"mnuUtilitiesMillagesSchool",
         entry<frmMaintainMillagesSchool>("frmMaintainMillagesSchool")},
        {"mnuUtilitiesEditSpecialTaxes", entry<frmEditSpecialTaxes>("frmEditSpecialTaxes")},
        {"mnuREDistributionDistributeReceipts",
         entry<frmREDistributeReceipts>("frmREDistributeReceipts")},
        {"mnuPCDistributionDistributeReceipts",
         entry<frmPCDistributeReceipts>("frmPCDistributeReceipts")},
        {"mnuREDistributionRefunds", entry<frmREDistributeRefunds>("frmREDistributeRefunds")},
        {"mnuPCDistributionRefunds", entry<frmPCDistributeRefunds>("frmPCDistributeRefunds")},
        {"mnuREDistributionPrintRefunds",
         entry<frmREPrintDistributionRefunds>("frmREPrintDistributionRefunds")},
        {"mnuPCDistributionPrintRefunds",
         entry<frmPCPrintDistributionRefunds>("frmPCPrintDistributionRefunds")},
        {"mnuREDistributionCreateDistributionFile",
         entry<frmRECreateDistributionFile>("frmRECreateDistributionFile")},
        {"mnuPCDistributionCreateDistributionFile",
         entry<frmPCCreateDistributionFile>("frmPCCreateDistributionFile")},
        {"mnuREDistributionTransferDesktop",
         entry<frmRETransferDistributionDesktop>("frmRETransferDistributionDesktop")},
        {"mnuPCDistributionTransferDesktop",
         entry<frmPCTransferDistributionDesktop>("frmPCTransferDistributionDesktop")},
        {"mnuREDistributionPrintCounty",
         entry<frmREPrintDistributionCounty>("frmREPrintDistributionCounty")},
        {"mnuREDistributionPrintTwp",
         entry<frmREPrintDistributionTwp>("frmREPrintDistributionTwp")},
        {"mnuREDistributionPrintSchool",
         entry<frmREPrintDistributionSchool>("frmREPrintDistributionSchool")},
        {"mnuPCDistributionPrintCounty",
         entry<frmPCPrintDistributionCounty>("frmPCPrintDistributionCounty")},
        {"mnuPCDistributionPrintTwp",
         entry<frmPCPrintDistributionTwp>("frmPCPrintDistributionTwp")},
        {"mnuPCDistributionPrintSchool",
         entry<frmPCPrintDistributionSchool>("frmPCPrintDistributionSchool")},
        {"mnuScanData", entry<frmScanData>("frmScanData", true)},
        {"mnuREPaymentsMortgageCompanies",
         {"frmREMortgageCompanies", false, &frmREMortgageCompanies::open}},
        {"mnuUtilitiesLateBillingRoutine",
         {"frmLateBillingRoutines", false, &frmLateBillingRoutines::open}},
        {"mnuUilitiesEditSpecialTaxpayers",
         {"frmEditSpecialTaxpayers", false, &frmEditSpecialTaxpayers::open}},
        {"mnuUtilitiesZipAndEmail", entry<frmEmailDataFile>("frmEmailDataFile")},
        {"mnuUtilitiesZipAndEmailCounty", entry<frmEmailDataFileCounty>("frmEmailDataFileCounty")},
        {"mnuREDistributionTransferEmail",
         entry<frmRETransferDistributionEMail>("frmRETransferDistributionEMail")},
        {"mnuPCDistributionTransferEmail",
         entry<frmPCTransferDistributionEMail>("frmPCTransferDistributionEMail")},
        // The office's reports.
        {"mnuREReportsPrintReceiptsRecnum",
         entry<frmREPrintReceiptReport>("frmREPrintReceiptReport")},
        {"mnuREReportsPrintReceiptsBill",
         entry<frmREPrintReceiptReport>("frmREPrintReceiptReport")},
        {"mnuREReportsPrintReceiptsDate",
         entry<frmREPrintReceiptReport>("frmREPrintReceiptReport")},
        {"mnuPCReportsPrintReceiptsRecnum",
         entry<frmPCPrintReceiptReport>("frmPCPrintReceiptReport")},
        {"mnuPCReportsPrintReceiptsBill",
         entry<frmPCPrintReceiptReport>("frmPCPrintReceiptReport")},
        {"mnuPCReportsPrintReceiptsDate",
         entry<frmPCPrintReceiptReport>("frmPCPrintReceiptReport")},
        {"mnuAct169Report", entry<frmAct169Report>("frmAct169Report")},
        {"mnuREReportsPrintIneligibleAct1",
         entry<frmREPrintIneligibleAct1>("frmREPrintIneligibleAct1")},
        {"mnuREReportsPrintAct1ZeroAmounts",
         entry<frmREPrintAct1ZeroAmounts>("frmREPrintAct1ZeroAmounts")},
        {"mnuREReportsPrintAdjustments",
         entry<frmREPrintAdjustmentReport>("frmREPrintAdjustmentReport")},
        {"mnuPCReportsPrintAdjustments",
         entry<frmPCPrintAdjustmentReport>("frmPCPrintAdjustmentReport")},
        {"mnuREReportsPrintAddressChanges",
         entry<frmREPrintAddressReport>("frmREPrintAddressReport")},
        {"mnuPCReportsPrintAddressChanges",
         entry<frmPCPrintAddressReport>("frmPCPrintAddressReport")},
        {"mnuREReportsPrintSummaryReport",
         entry<frmREPrintSummaryReport>("frmREPrintSummaryReport")},
        {"mnuPCReportsPrintSummaryReport",
         entry<frmPCPrintSummaryReport>("frmPCPrintSummaryReport")},
    };
    return screens;
}

} // namespace

const ScreenEntry* screenForMenuItem(const QString& itemName) {
    const auto& screens = catalog();
    auto it = screens.find(itemName);
    return it == screens.end() ? nullptr : &it.value();
}

const ScreenEntry* screenNamed(const QString& screenName) {
    const auto& screens = catalog();
    for (auto it = screens.begin(); it != screens.end(); ++it)
        if (it.value().screenName == screenName)
            return &it.value();
    return nullptr;
}
