#pragma once
// One collector's office with one bill and its receipts, for the receipt and printing tests:
// Alder Township (district 07, ward 2) with two special taxes and a school special tax.

#include "support/test_support.h"

#include <QString>

namespace ReceiptFixture {

// The county part at discount, the township part with its fire tax at discount, the school
// part and its special at face.
inline const QString FullRecnum = QStringLiteral("201309150007");
// The county part only, at penalty.
inline const QString CountyRecnum = QStringLiteral("201311020012");
// School installments 2 and 3, the second at face and the third at penalty; voided later.
inline const QString InstallmentRecnum = QStringLiteral("201310280031");

inline bool fill(const TempTaxDatabase& db) {
    const char* const statements[] = {
        "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName, SD, SP) "
        "VALUES ('00', '0', '2013', 3.5, 0, '', 2, 10)",
        "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName, SD, SP, LMR, TMR, "
        "TD, TP, BillCounty, BillTwp, BillSchool, Line1, Line2, Line3) VALUES ('07', '2', "
        "'2013', 25.3, 0.5, 'SCH LIB', 2, 10, 0.25, 1.75, 2, 10, 'E', 'E', 'L', "
        "'KESTRELVALE COUNTY REAL ESTATE TAX', 'Dorothy Penrose, Tax Collector', "
        "'118 Mill Street, Alderbrook PA 17001')",
        "INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('07', '2', 0)",
        "INSERT INTO tbl_Twpboro (District, Ward, TwpBoro, BTFlag, SchoolName) VALUES ('07', "
        "'2', 'ALDER TOWNSHIP', 'T', 'ALDER AREA SD')",
        "INSERT INTO tbl_County (County) VALUES ('KESTRELVALE')",
        "INSERT INTO Spectax (District, Ward, TaxKey, Desc1, Mill, TaxYear) VALUES ('07', '2', "
        "'FIRE01', 'FIRE TAX', 0.5, '2013')",
        "INSERT INTO Spectax (District, Ward, TaxKey, Desc1, Mill, TaxYear) VALUES ('07', '2', "
        "'LIGHT1', 'STREET LIGHT', 0.3, '2013')",
        "INSERT INTO tbl_Printers (PrinterType, DeviceName) VALUES ('Receipt', 'PDF')",
        "INSERT INTO tbl_Printers (PrinterType, DeviceName) VALUES ('Letter', 'PDF')",
        "INSERT INTO TCMaster (District, Ward, Control, BillNo, Name, CoOwner, Addr1, Addr2, City, "
        "State, ZipCode, ZipCode2, Map3, Map4, Map5, Desc1, Desc2, Desc3, AssLand, AssImpr, "
        "AdjFlag, CPayFlag, TPayFlag, SPayFlag, CAddrFlag, TaxYear) VALUES ('07', '2', '004512', "
        "'   42', 'HOLLOWAY MARGARET A', 'HOLLOWAY DAVID R', '118 CREEK RD', '', 'ALDERBROOK', "
        "'PA', '17001', '2231', '07-002', '014', '0031.000', 'LOT 31 CREEK RD', 'DWELLING', '', "
        "12500, 48300, ' ', 'D', 'D', 'I', ' ', '2013')",
        // Full payment: county and township at discount, school at face.
        "INSERT INTO TCReceipt (Control, BillNo, AdjNo, Recnum, Name, Map3, Map4, Map5, RDate, "
        "County, DCounty, PCounty, Library, DLibrary, PLibrary, C1Face, DC1Face, PC1Face, Twp, "
        "DTwp, PTwp, S1Face, DS1Face, PS1Face, S2Face, DS2Face, PS2Face, S3Face, DS3Face, PS3Face, "
        "School, DSchool, PSchool, Sch1Face, DSch1Face, PSch1Face, Overage, Refund, Payor, PAddr1, "
        "PAddr2, PCity, PState, PZipCode, PZipCode2, Checknum, CPayFlag, TPayFlag, SPayFlag, "
        "CDisbNum, TDisbNum, SDisbNum, Payment1, Payment2, Payment3, PenPayment1, PenPayment2, "
        "PenPayment3, Pay1Flag, Pay2Flag, Pay3Flag) VALUES ('004512', '   42', 0, "
        "'201309150007', 'HOLLOWAY MARGARET A', '07-002', '014', '0031.000', '2013-09-15', "
        "2128000, -42600, 0, 152000, -3000, 0, 0, 0, 0, 1064000, -21300, 0, 304000, -6100, 0, 0, "
        "0, 0, 0, 0, 0, 15382400, 0, 0, 304000, 0, 0, 0, 0, 'FIRST ALDER BANK ESCROW', "
        "'PO BOX 4410', 'LOAN 88-1023', 'HARRISBURG', 'PA', '17105', '', '55120', 'D', 'D', 'F', "
        "'      ', '      ', '      ', 0, 0, 0, 0, 0, 0, ' ', ' ', ' ')",
        // The county part only, at penalty.
        "INSERT INTO TCReceipt (Control, BillNo, AdjNo, Recnum, Name, RDate, County, DCounty, "
        "PCounty, Library, DLibrary, PLibrary, Payor, PAddr1, PCity, PState, PZipCode, Checknum, "
        "CPayFlag, TPayFlag, SPayFlag) VALUES ('004512', '   42', 0, '201311020012', "
        "'HOLLOWAY MARGARET A', '2013-11-02', 2128000, 0, 212800, 152000, 0, 15200, "
        "'HOLLOWAY MARGARET A', '118 CREEK RD', 'ALDERBROOK', 'PA', '17001', 'CASH', 'P', ' ', "
        "' ')",
        // Installments 2 and 3, the third past its date; voided on 10/30/2013.
        "INSERT INTO TCReceipt (Control, BillNo, AdjNo, Recnum, Name, RDate, School, Payor, "
        "PAddr1, PCity, PState, PZipCode, Checknum, CPayFlag, TPayFlag, SPayFlag, Payment1, "
        "Payment2, Payment3, PenPayment1, PenPayment2, PenPayment3, Pay1Flag, Pay2Flag, Pay3Flag, "
        "VDate) VALUES ('004512', '   42', 0, '201310280031', 'HOLLOWAY MARGARET A', '2013-10-28', "
        "10254900, 'HOLLOWAY DAVID R', '118 CREEK RD', 'ALDERBROOK', 'PA', '17001', '2210', ' ', "
        "' ', 'I', 0, 5127500, 5127400, 0, 0, 512700, ' ', 'F', 'P', '2013-10-30')",
    };
    for (const char* sql : statements)
        if (!db.exec(QString::fromLatin1(sql)))
            return false;
    return true;
}

} // namespace ReceiptFixture
