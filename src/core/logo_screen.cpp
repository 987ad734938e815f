#include "core/logo_screen.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

frmARS::frmARS(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmARS"));
    setAttribute(Qt::WA_OpaquePaintEvent);
}

// The logo is drawn, not loaded: a keystone over a ledger line and the program's name, scaled
// to the whole area as a picture would be.
void frmARS::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF area = rect();
    QLinearGradient sky(area.topLeft(), area.bottomLeft());
    sky.setColorAt(0, QColor(0x1f, 0x3b, 0x5c));
    sky.setColorAt(1, QColor(0x0e, 0x1d, 0x2f));
    p.fillRect(area, sky);

    // Everything below is laid out on a 1000 x 700 canvas stretched to the area.
    p.scale(area.width() / 1000.0, area.height() / 700.0);

    QPainterPath keystone;
    keystone.moveTo(380, 120);
    keystone.lineTo(620, 120);
    keystone.lineTo(580, 400);
    keystone.lineTo(420, 400);
    keystone.closeSubpath();
    p.setPen(QPen(QColor(0xd9, 0xb3, 0x4a), 8));
    p.setBrush(QColor(0x2c, 0x52, 0x7d));
    p.drawPath(keystone);

    p.setPen(QPen(QColor(0xd9, 0xb3, 0x4a), 6));
    for (int i = 0; i < 4; ++i)
        p.drawLine(QPointF(435 + i * 5, 190 + i * 55), QPointF(565 - i * 5, 190 + i * 55));

    QFont title(QStringLiteral("Liberation Serif"));
    title.setPixelSize(86);
    title.setBold(true);
    p.setFont(title);
    p.setPen(QColor(0xf2, 0xe6, 0xc4));
    p.drawText(QRectF(0, 430, 1000, 110), Qt::AlignCenter, QStringLiteral("LevyDesk"));

    QFont sub(QStringLiteral("Liberation Sans"));
    sub.setPixelSize(30);
    p.setFont(sub);
    p.drawText(QRectF(0, 540, 1000, 50), Qt::AlignCenter,
               QStringLiteral("Kestrelvale County Tax Collector"));
}
