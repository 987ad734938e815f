#include "bills/barcode.h"
#include "reports/report_surface.h"

#include "reports/print_readback.h"
#include "support/test_support.h"

#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

class TestBarcode : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mod10CheckDigit_data();
    void mod10CheckDigit();
    void mod10ReturnTypes();
    void code128C_data();
    void code128C();
    void code128CCharacters();
    void postalBars();
    void code39ReadsBack_data();
    void code39ReadsBack();
    void code39RefusesWhatItCannotCarry();
    void rotatedTextIsUpsideDown();
    void justifiedLineFillsItsWidth();
};

void TestBarcode::mod10CheckDigit_data() {
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("digits");
    QTest::addColumn<int>("check");
    // 1x3 + 2x1 + 3x3 + 4x1 + 5x3 = 33, so 10 - 3.
    AddRow("zip 12345", "12345", "12345", 7);
    AddRow("all zero: r is 0", "00000", "00000", 0);
    // 1x3 3x1 2x3 2x1 1x3 0x1 0x3 7x1 1x3 = 27.
    AddRow("non-digits dropped", " 17001-2231 ", "170012231", 3);
    AddRow("no digits at all", "PA-", "", 0);
    // The weight starts at the last digit: 9x3 = 27, check 3; 9x1 + 0x3 = 9, check 1.
    AddRow("one digit", "9", "9", 3);
    AddRow("weights from the right", "90", "90", 1);
}

void TestBarcode::mod10CheckDigit() {
    QFETCH(QString, data);
    QFETCH(QString, digits);
    QFETCH(int, check);
    const QVariant result = BarCodeMod10Text(data, 2);
    QCOMPARE(result.toInt(), check);
    QCOMPARE(data, digits); // the argument is replaced by its digits
}

void TestBarcode::mod10ReturnTypes() {
    QString data = QStringLiteral("1234567890123456788");
    // Groups of 5, 5, 5, 4 and the check digit straight behind the last group (sum 187).
    QCOMPARE(BarCodeMod10Text(data, 1).toString(), QStringLiteral("12345 67890 12345 67883"));
    QString shortData = QStringLiteral("12345");
    QCOMPARE(BarCodeMod10Text(shortData, 1).toString(), QStringLiteral("12345   7"));

    QString zip = QStringLiteral("12345");
    QString withCheck = QStringLiteral("123457");
    QCOMPARE(BarCodeMod10Text(zip, 0).toString(), BarCode128CText(withCheck, 0));

    QString other = QStringLiteral("12345");
    QVERIFY(!BarCodeMod10Text(other, 3).isValid());
    QCOMPARE(other, QStringLiteral("12345"));
}

void TestBarcode::code128C_data() {
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("digits");
    QTest::addColumn<int>("check");
    // 105 + 1x12 + 2x34 = 185; 185 mod 103 = 82.
    AddRow("1234", "1234", "1234", 82);
    AddRow("odd count gets a 0", "123", "1230", (105 + 12 + 2 * 30) % 103);
    AddRow("trimmed, digits only", " 12-34 ", "1234", 82);
    AddRow("nothing", "", "", 105 % 103);
}

void TestBarcode::code128C() {
    QFETCH(QString, data);
    QFETCH(QString, digits);
    QFETCH(int, check);
    QString a = data, b = data;
    QCOMPARE(BarCode128CText(a, 2), QString::number(check));
    QCOMPARE(a, digits);
    QCOMPARE(BarCode128CText(b, 1), digits + QString::number(check));
}

void TestBarcode::code128CCharacters() {
    // 0 has its own character; 1..94 sit 32 up; 95 and above 100 up.
    QString zero = QStringLiteral("00");
    QString text = BarCode128CText(zero, 0);
    QCOMPARE(text.size(), 5);
    QCOMPARE(text.at(0).unicode(), ushort(205));
    QCOMPARE(text.at(1).unicode(), ushort(194));
    QCOMPARE(text.at(2).unicode(), ushort(32 + 105 % 103)); // check 2
    QCOMPARE(text.at(3).unicode(), ushort(206));
    QCOMPARE(text.at(4), QLatin1Char(' '));

    QString edge = QStringLiteral("9495");
    text = BarCode128CText(edge, 0);
    QCOMPARE(text.at(1).unicode(), ushort(126));
    QCOMPARE(text.at(2).unicode(), ushort(195));
    // 105 + 94 + 2x95 = 389; 389 mod 103 = 80.
    QCOMPARE(text.at(3).unicode(), ushort(80 + 32));

    // A check value of 95 or more takes the high mapping too: 105 + 1x96 = 201 mod 103 = 98.
    QString high = QStringLiteral("96");
    QCOMPARE(BarCode128CText(high, 0).at(2).unicode(), ushort(198));
}

void TestBarcode::postalBars() {
    QCOMPARE(PostalBarsText(QStringLiteral("12345"), QString()), QStringLiteral("/123457/"));
    QCOMPARE(PostalBarsText(QStringLiteral("12345"), QStringLiteral("    ")),
             QStringLiteral("/123457/"));
    // Over 123456789: 9x3 8x1 7x3 6x1 5x3 4x1 3x3 2x1 1x3 = 95, check 5.
    QCOMPARE(PostalBarsText(QStringLiteral("12345"), QStringLiteral("6789")),
             QStringLiteral("/1234567895/"));

    ReportSurface surface;
    PrintPostalBars(surface, 1000, 2000, QStringLiteral("17001"), QString());
    const Recording& r = surface.recording();
    QCOMPARE(r.pages.size(), std::size_t(1));
    const auto codes = r.pages[0].barcodes();
    QCOMPARE(codes.size(), std::size_t(1));
    const PrintedBarcode& code = *codes[0];
    QString digits = QStringLiteral("17001");
    const int check = BarCodeMod10Text(digits, 2).toInt();
    QCOMPARE(code.payload, QStringLiteral("17001") + QString::number(check));
    // Two frame bars and five bars a digit, two of them tall in every digit.
    QCOMPARE(code.bars.size(), 2 + 5 * 6);
    const double tall = code.bars.first().height();
    int talls = 0;
    for (const QRectF& bar : code.bars) {
        QCOMPARE(bar.bottom(), code.bars.first().bottom());
        talls += bar.height() == tall ? 1 : 0;
    }
    QCOMPARE(talls, 2 + 2 * 6);
    // Digit 1 is short, short, short, tall, tall.
    QVERIFY(code.bars[1].height() < tall && code.bars[3].height() < tall);
    QCOMPARE(code.bars[4].height(), tall);
    QCOMPARE(code.bars[5].height(), tall);

    ReportSurface none;
    PrintPostalBars(none, 0, 0, QStringLiteral("-"), QString());
    QVERIFY(none.recording().pages.empty());
}

void TestBarcode::code39ReadsBack_data() {
    QTest::addColumn<QString>("fontText");
    QTest::addColumn<QString>("payload");
    AddRow("real-estate receipt", "*(40201309150007*", "40201309150007");
    AddRow("per capita receipt", "*(41201309150123*", "41201309150123");
    AddRow("real-estate bill", "*201307004512*", "201307004512");
    AddRow("letters and dashes", "*AB-12*", "AB-12");
}

void TestBarcode::code39ReadsBack() {
    if (!PrintReadback::haveTool("zbarimg") || !PrintReadback::haveTool("pdftoppm"))
        QSKIP("zbarimg and pdftoppm are needed to read bar codes back");
    QFETCH(QString, fontText);
    QFETCH(QString, payload);
    QCOMPARE(Code39Payload(fontText), payload);

    ReportSurface surface;
    QVERIFY(PrintCode39(surface, 2000, 3000, payload));
    // A second mark on the page must not hide a wrong first one: each is scanned by itself.
    QVERIFY(PrintCode39(surface, 2000, 6000, QStringLiteral("99")));
    surface.EndDoc();
    const auto codes = surface.recording().pages.at(0).barcodes();
    QCOMPARE(codes[0]->payload, payload);
    QCOMPARE(codes[0]->bounds.left(), 2000.0);
    QCOMPARE(codes[0]->bounds.top(), 3000.0);
    QCOMPARE(codes[0]->bounds.width(), Code39Width(payload));
    for (const QRectF& bar : codes[0]->bars)
        QVERIFY(codes[0]->bounds.adjusted(-0.01, -0.01, 0.01, 0.01).contains(bar));

    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("code39.pdf"));
    QVERIFY(WritePdf(surface.recording(), pdf));
    QCOMPARE(PrintReadback::scanArea(pdf, 1, codes[0]->bounds),
             QStringList{QStringLiteral("CODE-39:") + payload});
    QCOMPARE(PrintReadback::scanArea(pdf, 1, codes[1]->bounds),
             QStringList{QStringLiteral("CODE-39:99")});
}

void TestBarcode::code39RefusesWhatItCannotCarry() {
    ReportSurface surface;
    QVERIFY(!PrintCode39(surface, 0, 0, QString()));
    QVERIFY(!PrintCode39(surface, 0, 0, QStringLiteral("40#2013")));
    QVERIFY(surface.recording().pages.empty());
    QCOMPARE(Code39Width(QStringLiteral("#")), 0.0);
}

void TestBarcode::rotatedTextIsUpsideDown() {
    ReportSurface surface;
    surface.FontName = QStringLiteral("Courier New");
    surface.FontSize = 9;
    surface.FontBold = true;
    PrintRotatedText(surface, 12, QStringLiteral("ARIAL"), 180, 6000, 4000,
                     QStringLiteral("HOMESTEAD EXCLUSION"));
    // The surface's own font is left as it was.
    QCOMPARE(surface.FontName, QStringLiteral("Courier New"));
    QVERIFY(surface.FontBold);
    const auto texts = surface.recording().pages.at(0).texts();
    QCOMPARE(texts.size(), std::size_t(1));
    QCOMPARE(texts[0]->angle, 180.0);
    QCOMPARE(texts[0]->font.size, 12.0);
    QVERIFY(!texts[0]->font.bold);

    // On paper the line runs leftward and upward from its anchor.
    const double scale = 0.1;
    QImage image(int(12240 * scale), int(15840 * scale), QImage::Format_Grayscale8);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        painter.scale(scale, scale);
        RenderPage(painter, surface.recording().pages[0]);
    }
    int inkLeft = image.width(), inkRight = -1, inkTop = image.height(), inkBottom = -1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) < 128) {
                inkLeft = std::min(inkLeft, x);
                inkRight = std::max(inkRight, x);
                inkTop = std::min(inkTop, y);
                inkBottom = std::max(inkBottom, y);
            }
    QVERIFY(inkRight >= 0);
    QVERIFY(inkRight <= 6000 * scale + 2);
    QVERIFY(inkLeft >= (6000 - texts[0]->width()) * scale - 2);
    QVERIFY(inkBottom <= 4000 * scale + 2);
    QVERIFY(inkTop < 4000 * scale - 12 * 20 * 0.5 * scale);
}

void TestBarcode::justifiedLineFillsItsWidth() {
    ReportSurface surface;
    surface.FontSize = 10;
    surface.FontBold = false;
    surface.CurrentX = 500;
    surface.CurrentY = 1200;
    const QString line = QStringLiteral("Taxes are due and payable on receipt of this bill");
    PrintJustified(surface, line, 9000);
    QCOMPARE(surface.CurrentY, 1200.0);
    const auto texts = surface.recording().pages.at(0).texts();
    const QStringList words = line.split(QLatin1Char(' '));
    QCOMPARE(texts.size(), std::size_t(words.size()));
    QCOMPARE(texts.front()->x, 500.0);
    const double end = texts.back()->x + texts.back()->width();
    QVERIFY2(std::abs(end - 9500) < 0.5, qPrintable(QString::number(end)));
    // The gaps are equal: the space left over is shared evenly.
    const double gap = texts[1]->x - (texts[0]->x + texts[0]->width());
    for (std::size_t i = 2; i < texts.size(); ++i)
        QVERIFY(std::abs(texts[i]->x - (texts[i - 1]->x + texts[i - 1]->width()) - gap) < 0.01);
    for (const PrintedText* t : texts)
        QCOMPARE(t->y, 1200.0);
    QCOMPARE(surface.recording().textLines(), QStringList{line});

    // One word: printed where it stands, no stretching.
    ReportSurface single;
    single.CurrentX = 100;
    PrintJustified(single, QStringLiteral("TOTAL"), 5000);
    QCOMPARE(single.recording().pages.at(0).texts().at(0)->x, 100.0);
}

QTEST_MAIN(TestBarcode)
#include "test_barcode.moc"
