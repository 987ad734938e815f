#include "bills/barcode.h"

#include "reports/report_surface.h"

#include <QByteArray>
#include <cmath>
#include <zint.h>

namespace {

QString digitsOf(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (QChar c : text)
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            out.append(c);
    return out;
}

// A set C value as its character: 0 has its own code, low values sit above the control
// characters, high ones above the Latin-1 gap.
QChar code128Char(int v) {
    if (v == 0)
        return QChar(194);
    if (v <= 94)
        return QChar(v + 32);
    return QChar(v + 100);
}

// POSTNET digits: five bars each, 1 for a tall bar.
const char* const PostalTable[10] = {"11000", "00011", "00101", "00110", "01001",
                                     "01010", "01100", "10001", "10010", "10100"};
constexpr double PostalPitch = 1440.0 / 22.0;
constexpr double PostalBarWidth = 1440.0 * 0.02;
constexpr double PostalTall = 1440.0 * 0.125;
constexpr double PostalShort = 1440.0 * 0.05;

struct Code39Bars {
    bool ok = false;
    double widthModules = 0;
    QVector<QRectF> bars; // in modules across, 0..1 down
};

// The bars zint lays out for the payload, in narrow-module units across and as a fraction of
// the bar height down.
Code39Bars code39Bars(const QString& payload) {
    Code39Bars out;
    if (payload.isEmpty())
        return out;
    const QByteArray data = payload.toLatin1();
    zint_symbol* symbol = ZBarcode_Create();
    if (!symbol)
        return out;
    symbol->symbology = BARCODE_CODE39;
    symbol->show_hrt = 0;
    symbol->height = 50;
    const int encoded = ZBarcode_Encode(symbol, reinterpret_cast<const unsigned char*>(data.data()),
                                        int(data.size()));
    if (encoded < ZINT_ERROR && ZBarcode_Buffer_Vector(symbol, 0) < ZINT_ERROR && symbol->vector &&
        symbol->width > 0) {
        const double perModule = symbol->vector->width / double(symbol->width);
        double top = 1e9, bottom = -1e9;
        for (zint_vector_rect* r = symbol->vector->rectangles; r; r = r->next) {
            top = std::min<double>(top, r->y);
            bottom = std::max<double>(bottom, r->y + r->height);
        }
        const double tall = bottom - top;
        for (zint_vector_rect* r = symbol->vector->rectangles; r; r = r->next) {
            if (r->colour != -1 && r->colour != 7)
                continue; // only ink
            out.bars.push_back(QRectF(r->x / perModule, (r->y - top) / tall, r->width / perModule,
                                      r->height / tall));
        }
        out.widthModules = symbol->width;
        out.ok = !out.bars.isEmpty();
    }
    ZBarcode_Delete(symbol);
    return out;
}

} // namespace

QString BarCode128CText(QString& data, int returnType) {
    data = digitsOf(data.trimmed());
    if (data.size() % 2 != 0)
        data.append(QLatin1Char('0'));
    QString encoded;
    int sum = 105;
    int weight = 1;
    for (qsizetype i = 0; i + 1 < data.size(); i += 2) {
        const int v = data.at(i).digitValue() * 10 + data.at(i + 1).digitValue();
        encoded.append(code128Char(v));
        sum += weight * v;
        ++weight;
    }
    const int check = sum % 103;
    switch (returnType) {
    case 0:
        return QChar(205) + encoded + code128Char(check) + QChar(206) + QLatin1Char(' ');
    case 1:
        return data + QString::number(check);
    case 2:
        return QString::number(check);
    default:
        return QString();
    }
}

QVariant BarCodeMod10Text(QString& data, int returnType) {
    data = digitsOf(data);
    int sum = 0;
    int weight = 3;
    for (qsizetype i = data.size() - 1; i >= 0; --i) {
        sum += data.at(i).digitValue() * weight;
        weight = 4 - weight;
    }
    const int r = sum % 10;
    const int check = r == 0 ? 0 : 10 - r;
    switch (returnType) {
    case 0: {
        QString withCheck = data + QString::number(check);
        return BarCode128CText(withCheck, 0);
    }
    case 1:
        return data.mid(0, 5) + QLatin1Char(' ') + data.mid(5, 5) + QLatin1Char(' ') +
               data.mid(10, 5) + QLatin1Char(' ') + data.mid(15, 4) + QString::number(check);
    case 2:
        return check;
    default:
        return QVariant();
    }
}

QString Code39Payload(const QString& fontText) {
    QString out = fontText.trimmed();
    out.remove(QLatin1Char('*'));
    out.remove(QLatin1Char('('));
    return out;
}

double Code39Width(const QString& payload, double module) {
    const Code39Bars bars = code39Bars(payload);
    return bars.ok ? bars.widthModules * module : 0;
}

bool PrintCode39(ReportSurface& surface, double x, double y, const QString& payload, double height,
                 double module) {
    const Code39Bars bars = code39Bars(payload);
    if (!bars.ok)
        return false;
    PrintedBarcode code;
    code.symbology = QStringLiteral("CODE39");
    code.payload = payload;
    code.bounds = QRectF(x, y, bars.widthModules * module, height);
    code.bars.reserve(bars.bars.size());
    for (const QRectF& r : bars.bars)
        code.bars.push_back(QRectF(x + r.x() * module, y + r.y() * height, r.width() * module,
                                   r.height() * height));
    surface.DrawBarcode(std::move(code));
    return true;
}

QString PostalBarsText(const QString& zipCode, const QString& zipCode2) {
    const QString plus4 = zipCode2.trimmed();
    QString data = plus4.isEmpty() ? zipCode : zipCode + plus4;
    const QString text = data;
    const int check = BarCodeMod10Text(data, 2).toInt();
    return QLatin1Char('/') + text + QString::number(check) + QLatin1Char('/');
}

void PrintPostalBars(ReportSurface& surface, double x, double y, const QString& zipCode,
                     const QString& zipCode2) {
    const QString plus4 = zipCode2.trimmed();
    QString data = plus4.isEmpty() ? zipCode : zipCode + plus4;
    const int check = BarCodeMod10Text(data, 2).toInt();
    if (data.isEmpty())
        return;
    const QString digits = data + QString::number(check);

    PrintedBarcode code;
    code.symbology = QStringLiteral("POSTNET");
    code.payload = digits;
    const double bottom = y + PostalTall;
    double left = x;
    auto bar = [&](bool tall) {
        const double h = tall ? PostalTall : PostalShort;
        code.bars.push_back(QRectF(left, bottom - h, PostalBarWidth, h));
        left += PostalPitch;
    };
    bar(true);
    for (QChar c : digits)
        for (const char* b = PostalTable[c.digitValue()]; *b; ++b)
            bar(*b == '1');
    bar(true);
    code.bounds = QRectF(x, y, left - PostalPitch + PostalBarWidth - x, PostalTall);
    surface.DrawBarcode(std::move(code));
}

void PrintRotatedText(ReportSurface& surface, double fontSize, const QString& fontName,
                      double angle, double x, double y, const QString& text) {
    const PrintFont previous = surface.font();
    PrintFont turned;
    turned.name = fontName;
    turned.size = fontSize;
    surface.setFont(turned);
    surface.DrawTurnedText(x, y, std::fmod(angle * 7.0, 360.0), text);
    surface.setFont(previous);
}
