#pragma once
// A collector's office for the bill tests: Maple Township (district 12, ward 3), county and
// township billing early, the school late, one fire tax, and five bills:
//   "    1" JOHN Q OWNER, as delivered
//   "    2" HOLLOWAY: adjusted (new amounts, Act 1 relief, installments) and moved
//   "    3" nothing to pay anywhere
//   "A0001" added after billing

#include "reports/report_surface.h"
#include "support/test_support.h"

#include <QDir>
#include <QTest>

namespace BillFixture {

inline bool fill(const TempTaxDatabase& db) {
    const char* const statements[] = {
        "INSERT INTO tbl_District (District, Ward, IntNo) VALUES ('12', '3', 0)",
        "INSERT INTO tbl_County (County, Addr2, City, State, ZipCode) VALUES ('KESTRELVALE', "
        "'Courthouse, 2 Market Sq', 'Kestrel', 'PA', '17300')",
        "INSERT INTO tbl_Twpboro (District, Ward, TwpBoro, BTFlag, SchoolName) VALUES ('12', '3', "
        "'MAPLE TOWNSHIP', 'T', 'MAPLE AREA SCHOOL DISTRICT')",
        "INSERT INTO tbl_Printers (PrinterType, DeviceName) VALUES ('Letter', 'PDF')",
        "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName, SD, SP) VALUES "
        "('00', '0', '2013', 5.5, 0, '', 2, 10)",
        "INSERT INTO Millfile (District, Ward, TaxYear, SMR, S1MR, S1TaxName, SD, SP, TMR, LMR, "
        "TD, TP, BillCounty, BillTwp, BillSchool, MailDate, DiscDate, FaceDate1, FaceDate2, "
        "PenDate, LastDate, TaxDate, LateMailDate, LateDiscDate, LateFaceDate1, LateFaceDate2, "
        "LatePenDate, LateLastDate, LateTaxDate, LatePayment1Date, LatePayment2Date, "
        "LatePayment3Date, Payment1Date, Payment2Date, Payment3Date, Line1, Line2, Line3, Line4, "
        "Line5, Line6, Line7, LateLine1, "
        "LateLine2, LateLine3, LateLine4, LateLine5, LateLine6, LateLine7, PrintEscrow, "
        "LatePrintEscrow) VALUES ('12', '3', '2013', 20, 0.2, 'SCH LIB', 2, 10, 1.5, 0.25, "
        "1.25, 10, 'E', 'E', 'L', '2013-03-01', '2013-04-30', '2013-05-01', '2013-06-30', "
        "'2013-07-01', '2013-12-31', '2014-01-01', '2013-07-01', '2013-08-31', '2013-09-01', "
        "'2013-10-31', '2013-11-01', '2013-12-31', '2014-01-01', '2013-08-31', '2013-10-31', "
        "'2013-12-31', '2013-04-30', '2013-06-30', '2013-08-31', 'Ann Collector', '12 Main St', "
        "'Maple PA 19000', 'Mon 9-12', "
        "'Wed 1-5', 'Phone 555-0100', '', 'Ann Collector (school)', '12 Main St', "
        "'Maple PA 19000', 'Mon 9-12', 'Thu 1-5', 'Phone 555-0100', '', 1, 0)",
        "INSERT INTO Spectax (District, Ward, TaxKey, Desc1, Mill, TaxYear) VALUES ('12', '3', "
        "'FIRE01', 'fire', 0.5, '2013')",
        // "    1": 10,000 land and 20,000 improvements.
        "INSERT INTO TCMaster (District, Ward, Control, BillNo, Name, CoOwner, Addr1, Addr2, "
        "City, State, ZipCode, ZipCode2, Map3, Map4, Map5, Desc1, Desc2, Desc3, Acreage, "
        "DeedBook, DeedPage, AssLand, AssImpr, DCounty, County, PCounty, DLibrary, Library, "
        "PLibrary, DTwp, Twp, PTwp, DS1Face, S1Face, PS1Face, DSchool, School, PSchool, "
        "DSch1Face, Sch1Face, PSch1Face, Payment1, Payment2, Payment3, PenPayment1, PenPayment2, "
        "PenPayment3, AdjFlag, CPayFlag, TPayFlag, SPayFlag, CAddrFlag, HFFlag, HSExclusion, "
        "FSExclusion, ExcFace, DExcFace, PExcFace, TaxYear) VALUES ('12', '3', '000001', "
        "'    1', 'JOHN Q OWNER', '', '12 MAIN ST', '', 'MAPLE', 'PA', '19000', '', '01', '02', "
        "'003', '01-02-003 LOT 3', 'DWELLING', '', '1.25', '1234', '56', 10000, 20000, 1617000, "
        "1650000, 1815000, 73500, 75000, 82500, 441000, 450000, 495000, 147000, 150000, 165000, "
        "5880000, 6000000, 6600000, 58800, 60000, 66000, 0, 0, 0, 0, 0, 0, ' ', ' ', ' ', ' ', "
        "' ', ' ', 0, 0, 0, 0, 0, '2013')",
        // "    2": as delivered, then adjusted and moved.
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = '    2', Control = '000002', Name = 'HOLLOWAY MARGARET A', "
        "ZipCode = '19001', AdjFlag = 'A', CAddrFlag = 'A' WHERE rowid = 2",
        "INSERT INTO TCAdjust (Control, BillNo, AdjNo, Name, CoOwner, Addr1, City, State, "
        "ZipCode, Desc1, Desc2, Acreage, Assland, AssImpr, DCounty, County, PCounty, DLibrary, "
        "Library, PLibrary, DTwp, Twp, PTwp, DS1Face, S1Face, PS1Face, DSchool, School, PSchool, "
        "DSch1Face, Sch1Face, PSch1Face, Payment1, Payment2, Payment3, PenPayment1, PenPayment2, "
        "PenPayment3, AdjDate, Reason, AdjFlag, HFFlag, HSExclusion, FSExclusion, ExcFace, "
        "DExcFace, PExcFace) VALUES ('000002', '    2', 1, 'HOLLOWAY MARGARET A', "
        "'HOLLOWAY DAVID R', '118 CREEK RD', 'MAPLE', 'PA', '19001', '01-02-004 CREEK RD', "
        "'DWELLING', '2', 12000, 20000, 1724800, 1760000, 1936000, 78400, 80000, 88000, 470400, "
        "480000, 528000, 156800, 160000, 176000, 4772000, 4900000, 5390000, 62720, 64000, 70400, "
        "1633333, 1633333, 1633334, 0, 1796666, 1796667, '2013-06-01', 'REASSESSED', 'A', 'A', "
        "50000000, 0, 1500000, 1470000, 1650000)",
        "INSERT INTO TCAddress (Control, BillNo, AddrID, Name, CoOwner, Addr1, Addr2, City, "
        "State, ZipCode, ZipCode2, ADate, Reason) VALUES ('000002', '    2', 1, "
        "'HOLLOWAY MARGARET A', 'HOLLOWAY DAVID R', 'PO BOX 9', 'APT 4', 'OAKTON', 'PA', "
        "'19111', '2231', '2013-07-15', 'MOVED')",
        "INSERT INTO TCLateBillAddress (BillNo, Name, Addr1, Addr2, City, State, ZipCode) VALUES "
        "('    2', 'HOLLOWAY MARGARET A', '118 CREEK RD', '', 'MAPLE', 'PA', '19001')",
        // "    3": nothing to pay.
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = '    3', Control = '000003', Name = 'NOTHING DUE', "
        "DCounty = 0, County = 0, PCounty = 0, DLibrary = 0, Library = 0, PLibrary = 0, DTwp = 0, "
        "Twp = 0, PTwp = 0, DS1Face = 0, S1Face = 0, PS1Face = 0, DSchool = 0, School = 0, "
        "PSchool = 0, DSch1Face = 0, Sch1Face = 0, PSch1Face = 0 WHERE rowid = 3",
        // "A0001": added.
        "INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = '    1'",
        "UPDATE TCMaster SET BillNo = 'A0001', Control = '000901', Name = 'ADDED LATER', "
        "ZipCode = '18999' WHERE rowid = 4",
    };
    for (const char* sql : statements)
        if (!db.exec(QString::fromLatin1(sql)))
            return false;
    return true;
}

} // namespace BillFixture

namespace BillFixture {
// "    4": an adjustment cut off half way (AdjFlag A, no TCAdjust row).
inline bool addBrokenChain(const TempTaxDatabase& db) {
    return db.exec(QStringLiteral("INSERT INTO TCMaster SELECT * FROM TCMaster WHERE BillNo = "
                                  "'    1'")) &&
           db.exec(QStringLiteral("UPDATE TCMaster SET BillNo = '    4', Control = '000004', "
                                  "Name = 'HALF DONE', AdjFlag = 'A' WHERE rowid = 5"));
}
} // namespace BillFixture

namespace BillFixture {
// Per capita on top of the office above: the county takes no per capita tax, the township a $5
// per capita and a 1.5 mill occupation tax (2% discount, 10% penalty), the school a $5 per
// capita. Five persons:
//   "    1" DOE JANE, as delivered
//   "    2" SMITH ROBERT (MR ROBERT J SMITH JR): adjusted (occupation 6.00) and moved
//   "    3" township paid, school unpaid
//   "    4" nothing to pay anywhere
//   "A0001" added after billing
inline bool fillPerCapita(const TempTaxDatabase& db) {
    const char* const statements[] = {
        "UPDATE Millfile SET SPC = 0, SMO = 0, PCSD = 1, PCSP = 10 WHERE District = '00'",
        "UPDATE Millfile SET TPC = 5, TMO = 1.5, PCTD = 2, PCTP = 10, SPC = 5, SMO = 0, PCSD = "
        "2, PCSP = 10 WHERE District = '12'",
        "INSERT INTO tbl_Settings (Name, Value) VALUES ('AssessmentOfficePhone', "
        "'(717) 555-0150')",
        "INSERT INTO PCMaster (District, Ward, Control, BillNo, Name, Prefix, FName, MName, "
        "LName, Suffix, Addr1, Addr2, City, State, ZipCode, ZipCode2, OccuCode, DCPerCapita, "
        "CPerCapita, PCPerCapita, DCOccupation, COccupation, PCOccupation, DTPerCapita, "
        "TPerCapita, PTPerCapita, DTOccupation, TOccupation, PTOccupation, DSPerCapita, "
        "SPerCapita, PSPerCapita, DSOccupation, SOccupation, PSOccupation, AdjFlag, CPayFlag, "
        "TPayFlag, SPayFlag, CAddrFlag, SecondNotice, TaxYear) VALUES ('12', '3', '000101', "
        "'    1', 'DOE JANE', '', 'JANE', '', 'DOE', '', '5 OAK ST', '', 'MAPLE', 'PA', '19003', "
        "'', 'TAX', 0, 0, 0, 0, 0, 0, 49000, 50000, 55000, 29400, 30000, 33000, 49000, 50000, "
        "55000, 0, 0, 0, ' ', ' ', ' ', ' ', ' ', ' ', '2013')",
        "INSERT INTO PCMaster SELECT * FROM PCMaster WHERE BillNo = '    1'",
        "UPDATE PCMaster SET BillNo = '    2', Control = '000102', Name = 'SMITH ROBERT', Prefix "
        "= 'MR', FName = 'ROBERT', MName = 'J', LName = 'SMITH', Suffix = 'JR', ZipCode = "
        "'19002', AdjFlag = 'A', CAddrFlag = 'A' WHERE rowid = 2",
        "INSERT INTO PCAdjust (Control, BillNo, AdjNo, Name, Prefix, FName, MName, LName, "
        "Suffix, Addr1, Addr2, City, State, ZipCode, ZipCode2, OccuCode, DCPerCapita, "
        "CPerCapita, PCPerCapita, DCOccupation, COccupation, PCOccupation, DTPerCapita, "
        "TPerCapita, PTPerCapita, DTOccupation, TOccupation, PTOccupation, DSPerCapita, "
        "SPerCapita, PSPerCapita, DSOccupation, SOccupation, PSOccupation, AdjDate, Reason, "
        "AdjFlag) VALUES ('000102', '    2', 1, 'SMITH ROBERT', 'MR', 'ROBERT', 'J', 'SMITH', "
        "'JR', '5 OAK ST', '', 'MAPLE', 'PA', '19002', '', 'TAX', 0, 0, 0, 0, 0, 0, 49000, "
        "50000, 55000, 58800, 60000, 66000, 49000, 50000, 55000, 0, 0, 0, '2013-06-01', "
        "'NEW OCCUPATION', 'A')",
        "INSERT INTO PCAddress (Control, BillNo, AddrID, Name, Prefix, FName, MName, LName, "
        "Suffix, Addr1, Addr2, City, State, ZipCode, ZipCode2, ADate, Reason) VALUES ('000102', "
        "'    2', 1, 'SMITH ROBERT', 'MR', 'ROBERT', 'J', 'SMITH', 'JR', '77 HILL RD', 'UNIT B', "
        "'OAKTON', 'PA', '19111', '2231', '2013-07-15', 'MOVED')",
        "INSERT INTO PCLateBillAddress (BillNo, Name, Addr1, Addr2, City, State, ZipCode) VALUES "
        "('    2', 'SMITH ROBERT', '5 OAK ST', '', 'MAPLE', 'PA', '19002')",
        "INSERT INTO PCMaster SELECT * FROM PCMaster WHERE BillNo = '    1'",
        "UPDATE PCMaster SET BillNo = '    3', Control = '000103', Name = 'BROWN PAID TWP', "
        "ZipCode = '19004', TPayFlag = 'D' WHERE rowid = 3",
        "INSERT INTO PCMaster SELECT * FROM PCMaster WHERE BillNo = '    1'",
        "UPDATE PCMaster SET BillNo = '    4', Control = '000104', Name = 'ADAMS NOTHING DUE', "
        "ZipCode = '19005', DTPerCapita = 0, TPerCapita = 0, PTPerCapita = 0, DTOccupation = 0, "
        "TOccupation = 0, PTOccupation = 0, DSPerCapita = 0, SPerCapita = 0, PSPerCapita = 0 "
        "WHERE rowid = 4",
        "INSERT INTO PCMaster SELECT * FROM PCMaster WHERE BillNo = '    1'",
        "UPDATE PCMaster SET BillNo = 'A0001', Control = '000901', Name = 'CARTER ADDED', "
        "ZipCode = '18999' WHERE rowid = 5",
    };
    for (const char* sql : statements)
        if (!db.exec(QString::fromLatin1(sql)))
            return false;
    return true;
}
} // namespace BillFixture

namespace BillFixture {
// A checked-in page dump beside the test.
inline QString expectedPath(const char* name) {
    return QDir(QStringLiteral(LEVYDESK_TEST_DIR))
        .filePath(QStringLiteral("expected/") + QString::fromLatin1(name));
}

inline QString joined(const QStringList& lines) {
    return lines.join(QLatin1Char('\n'));
}

// Each wanted text is part of some printed line.
inline void expectLines(const QStringList& lines, std::initializer_list<const char*> wanted) {
    for (const char* want : wanted)
        QVERIFY2(
            lines.filter(QLatin1String(want)).size() >= 1,
            qPrintable(QLatin1String(want) + QStringLiteral("\n--- printed:\n") + joined(lines)));
}

// The bill numbers drawn, in order: one "BILL # " line a copy, two copies a bill.
inline QStringList billsDrawn(const Recording& r) {
    QStringList out;
    for (const RecordedPage& page : r.pages)
        for (const PrintedText* t : page.texts())
            if (t->text.startsWith(QLatin1String("BILL # ")) && t->font.size == 12)
                out << t->text.mid(7).trimmed();
    out.removeDuplicates();
    return out;
}
} // namespace BillFixture
