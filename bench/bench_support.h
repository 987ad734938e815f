#pragma once
// What every benchmark needs: medians and worst cases, its command-line numbers, the peak
// resident memory, and the plain-QPdfWriter floor that printing runs are measured against.

#include "reports/report_surface.h"

#include <QFile>
#include <QFont>
#include <QLineF>
#include <QPainter>
#include <QPen>
#include <QRectF>
#include <QStringList>
#include <algorithm>
#include <utility>
#include <variant>
#include <vector>

inline double Median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

inline double Worst(const std::vector<double>& v) {
    return v.empty() ? 0 : *std::max_element(v.begin(), v.end());
}

// The value after NAME on the command line, or an empty text.
inline QString TextArgument(const QStringList& args, const QString& name) {
    const int at = args.indexOf(name);
    return at >= 0 && at + 1 < args.size() ? args.at(at + 1) : QString();
}

inline int Argument(const QStringList& args, const QString& name, int fallback) {
    const QString v = TextArgument(args, name);
    return v.isEmpty() ? fallback : v.toInt();
}

// The resident set's high-water mark in MB.
inline double PeakMegabytes() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    return 0;
}

// A plain page: every text with its font and place, the lines, the box outlines, the bars.
struct FloorPage {
    std::vector<std::pair<QFont, std::pair<QPointF, QString>>> texts;
    std::vector<QLineF> lines;
    std::vector<QRectF> boxes;
    std::vector<QRectF> bars;
};

inline FloorPage FloorOf(const RecordedPage& page) {
    FloorPage f;
    for (const PrintedItem& item : page.items) {
        if (const auto* t = std::get_if<PrintedText>(&item))
            f.texts.push_back({t->font.qfont(), {QPointF(t->x, t->baseline()), t->text}});
        else if (const auto* l = std::get_if<PrintedLine>(&item))
            f.lines.push_back(l->line);
        else if (const auto* b = std::get_if<PrintedBox>(&item))
            f.boxes.push_back(b->rect);
        else if (const auto* c = std::get_if<PrintedBarcode>(&item))
            f.bars.insert(f.bars.end(), c->bars.begin(), c->bars.end());
    }
    return f;
}

inline void DrawFloorPage(QPainter& painter, const FloorPage& f) {
    painter.save();
    painter.translate(360, 360);
    for (const auto& [font, text] : f.texts) {
        painter.setFont(font);
        painter.drawText(text.first, text.second);
    }
    QPen pen(Qt::black);
    pen.setWidthF(12);
    painter.setPen(pen);
    for (const QLineF& l : f.lines)
        painter.drawLine(l);
    for (const QRectF& r : f.boxes)
        painter.drawRect(r);
    for (const QRectF& bar : f.bars)
        painter.fillRect(bar, Qt::black);
    painter.restore();
}
