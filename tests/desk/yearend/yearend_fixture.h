#pragma once
// The office of the year-end tests: district 12, ward 3 (Maple Township), tax year 2013, with
// one real-estate bill of every kind that can be open at the end of the year, and per capita
// bills paid, unpaid and partly paid.
//
//   "    1" unpaid; a quote in the owner's name          "    2" on installments, one paid
//   "    3" adjusted twice (the second amounts stand)   "    4" exonerated in every part
//   "    5" address changed (now PAT NEWNAME)            "    6" paid in full
//   "    7" county paid, the rest open                   "    8" open but every amount zero
//   "A0001" added after billing, unpaid

#include "support/test_support.h"

#include <QStringList>

inline void FillYearEndOffice(TempTaxDatabase& t) {
    const QStringList sql{
        "INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('12', '3', 0)",
        "INSERT INTO tbl_County (County) VALUES ('KESTRELVALE')",
        "INSERT INTO tbl_Printers (PrinterType, DeviceName) VALUES ('Letter', 'PDF')",
        "INSERT INTO tbl_Twpboro (District, Ward, TwpBoro, BTFlag, SchoolName) VALUES ('12', "
        "'3', 'MAPLE TOWNSHIP', 'T', 'MAPLE AREA SCHOOL DISTRICT')",
        "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName) VALUES ('00', '0', "
        "'2013', 5.5, 0, '')",
        "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName, TMR, LMR, Line1) "
        "VALUES ('12', '3', '2013', 20, 0.75, 'SCH LIB', 1.5, 0.25, 'JANE Q COLLECTOR')",
        "INSERT INTO Spectax (District, Ward, TaxKey, Desc1, Mill, TaxYear) VALUES ('12', '3', "
        "'FIRE01', 'FIRE', 0.5, '2013')",
        // Bill 1 as the pattern of every other.
        "INSERT INTO TCMaster (District, Ward, Control, BillNo, Name, CoOwner, Addr1, Addr2, City, "
        "State, ZipCode, ZipCode2, Map3, Map4, Map5, Acreage, LandUse, Desc1, Desc2, Desc3, "
        "DeedBook, DeedPage, AssLand, AssImpr, MVLand, MVImpr, DCounty, County, PCounty, "
        "DLibrary, Library, PLibrary, DC1Face, C1Face, PC1Face, DTwp, Twp, PTwp, DS1Face, S1Face, "
        "PS1Face, DS2Face, S2Face, PS2Face, DS3Face, S3Face, PS3Face, DSchool, School, PSchool, "
        "DSch1Face, Sch1Face, PSch1Face, Payment1, Payment2, Payment3, PenPayment1, PenPayment2, "
        "PenPayment3, AdjFlag, CPayFlag, TPayFlag, SPayFlag, Pay1Flag, Pay2Flag, Pay3Flag, "
        "StLtFlag, CAddrFlag, Exempt, TaxYear) VALUES ('12', '3', '000001', '    1', 'JOHN "
        "\"JACK\" "
        "OWNER', 'MARY OWNER', '12 MAIN ST', 'APT 2', 'MAPLE', 'PA', '19000', '1234', '01', '02', "
        "'003', '1.25', 'R', 'HOUSE', 'LOT 4', '', '1234', '567', 10000, 20000, 40000, 80000, "
        "980000, 1000000, 1100000, 98000, 100000, 110000, 0, 0, 0, 490000, 500000, 550000, "
        "196000, 200000, 220000, 0, 0, 0, 0, 0, 0, 5880000, 6000000, 6600000, 220500, 225000, "
        "247500, 2000000, 2000000, 2000000, 2200000, 2200000, 2200000, ' ', ' ', ' ', ' ', ' ', ' "
        "', "
        "' ', ' ', ' ', ' ', '2013')",
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = '    2', Control = '000002', Name = 'MARY INSTALL', "
        "CPayFlag = 'D', TPayFlag = 'D', SPayFlag = 'I', Pay1Flag = 'F' WHERE rowid = 2",
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = '    3', Control = '000003', Name = 'ADJUSTED OWNER', "
        "AdjFlag = 'A' WHERE rowid = 3",
        "INSERT INTO TCAdjust (Control, BillNo, AdjNo, Name, Addr1, City, State, ZipCode, Map3, "
        "Map4, Map5, Assland, AssImpr, County, PCounty, Library, PLibrary, C1Face, PC1Face, Twp, "
        "PTwp, S1Face, PS1Face, S2Face, PS2Face, S3Face, PS3Face, School, PSchool, Sch1Face, "
        "PSch1Face, Payment1, Payment2, Payment3, PenPayment1, PenPayment2, PenPayment3, AdjFlag, "
        "AdjDate, Reason) SELECT Control, BillNo, 1, Name, Addr1, City, State, ZipCode, Map3, "
        "Map4, Map5, 5000, 20000, 800000, 880000, 80000, 88000, 0, 0, 400000, 440000, 160000, "
        "176000, 0, 0, 0, 0, 4800000, 5280000, 180000, 198000, 0, 0, 0, 0, 0, 0, 'A', "
        "'2013-05-01', 'REASSESSED' FROM TCMaster WHERE BillNo = '    3'",
        "INSERT INTO TCAdjust SELECT * FROM TCAdjust WHERE BillNo = '    3'",
        "UPDATE TCAdjust SET AdjNo = 2, Assland = 4000, County = 700000, PCounty = 770000 WHERE "
        "rowid = 2",
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = '    4', Control = '000004', Name = 'EXONERATED', CPayFlag "
        "= 'X', TPayFlag = 'X', SPayFlag = 'X' WHERE rowid = 4",
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = '    5', Control = '000005', Name = 'PAT OLDNAME', "
        "CAddrFlag = 'A' WHERE rowid = 5",
        "INSERT INTO TCAddress (Control, BillNo, AddrID, Name, Map3, Map4, Map5, CoOwner, Addr1, "
        "Addr2, City, State, ZipCode, ZipCode2, ADate, Reason) VALUES ('000005', '    5', 1, "
        "'PAT MIDNAME', '01', '02', '003', '', '1 OLD RD', '', 'OAKTON', 'PA', '19111', '', "
        "'2013-03-01', 'SOLD')",
        "INSERT INTO TCAddress (Control, BillNo, AddrID, Name, Map3, Map4, Map5, CoOwner, Addr1, "
        "Addr2, City, State, ZipCode, ZipCode2, ADate, Reason) VALUES ('000005', '    5', 2, "
        "'PAT NEWNAME', '01', '02', '003', '', '9 ELM RD', '', 'OAKTON', 'PA', '19111', '', "
        "'2013-06-01', 'SOLD AGAIN')",
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = '    6', Control = '000006', Name = 'PAID ALREADY', "
        "CPayFlag = 'D', TPayFlag = 'F', SPayFlag = 'P' WHERE rowid = 6",
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = '    7', Control = '000007', Name = 'COUNTY PAID', "
        "CPayFlag = 'F' WHERE rowid = 7",
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = '    8', Control = '000008', Name = 'NOTHING DUE', County = "
        "0, PCounty = 0, Library = 0, PLibrary = 0, Twp = 0, PTwp = 0, S1Face = 0, PS1Face = 0, "
        "School = 0, PSchool = 0, Sch1Face = 0, PSch1Face = 0, Payment1 = 0, Payment2 = 0, "
        "Payment3 = 0 WHERE rowid = 8",
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = 'A0001', Control = '000009', Name = 'ADDED LATER' WHERE "
        "rowid = 9",
        // Per capita: unpaid, county paid, all paid, exonerated at school only.
        "INSERT INTO PCMaster (District, Ward, Control, BillNo, Name, Addr1, Addr2, City, State, "
        "ZipCode, ZipCode2, OccuValue, DCPerCapita, CPerCapita, PCPerCapita, DCOccupation, "
        "COccupation, PCOccupation, DTPerCapita, TPerCapita, PTPerCapita, DTOccupation, "
        "TOccupation, PTOccupation, DSPerCapita, SPerCapita, PSPerCapita, DSOccupation, "
        "SOccupation, PSOccupation, AdjFlag, CPayFlag, TPayFlag, SPayFlag, CAddrFlag, TaxYear) "
        "VALUES ('12', '3', '100001', '    1', 'ADAMS ANN', '', '4 OAK ST', 'MAPLE', 'PA', "
        "'19000', '', '150', 49000, 50000, 55000, 29400, 30000, 33000, 49000, 50000, 55000, "
        "19600, 20000, 22000, 49000, 50000, 55000, 9800, 10000, 11000, ' ', ' ', ' ', ' ', ' ', "
        "'2013')",
        "INSERT INTO PCMaster SELECT * FROM PCMaster WHERE BillNo = '    1'",
        "UPDATE PCMaster SET BillNo = '    2', Control = '100002', Name = 'BAKER BOB', CPayFlag = "
        "'D' WHERE rowid = 2",
        "INSERT INTO PCMaster SELECT * FROM PCMaster WHERE BillNo = '    1'",
        "UPDATE PCMaster SET BillNo = '    3', Control = '100003', Name = 'CARR CAL', CPayFlag = "
        "'F', TPayFlag = 'F', SPayFlag = 'F' WHERE rowid = 3",
        "INSERT INTO PCMaster SELECT * FROM PCMaster WHERE BillNo = '    1'",
        "UPDATE PCMaster SET BillNo = '    4', Control = '100004', Name = 'DAVIS DEE', SPayFlag = "
        "'X' WHERE rowid = 4",
    };
    for (const QString& statement : sql)
        QVERIFY2(t.exec(statement), qPrintable(statement));
}
