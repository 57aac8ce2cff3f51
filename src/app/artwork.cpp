#include "artwork.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace artwork
{

namespace
{

constexpr int side = 64;

QPixmap canvas()
{
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

QIcon icon(void (*draw)(QPainter&))
{
    QPixmap pixmap = canvas();
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    draw(p);
    p.end();
    return QIcon(pixmap);
}

void drawSheet(QPainter& p, const QColor& paper)
{
    p.setPen(QPen(QColor(60, 60, 60), 3));
    p.setBrush(paper);
    p.drawRoundedRect(QRectF(12, 6, 40, 52), 4, 4);
    p.setPen(QPen(QColor(120, 120, 120), 3));
    for (int y = 18; y <= 42; y += 8)
        p.drawLine(20, y, 44, y);
}

void drawClear(QPainter& p)
{
    // A stopwatch face crossed out in red.
    p.setPen(QPen(QColor(40, 40, 40), 4));
    p.setBrush(QColor(240, 240, 240));
    p.drawEllipse(QPointF(32, 36), 22, 22);
    p.drawLine(32, 6, 32, 13);
    p.drawLine(26, 6, 38, 6);
    p.setPen(QPen(QColor(200, 20, 20), 7, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(16, 20, 48, 52);
    p.drawLine(48, 20, 16, 52);
}

void drawSaveAndEnd(QPainter& p)
{
    // A diskette with a green tick: the race is saved and the program ends.
    p.setPen(QPen(QColor(20, 40, 90), 3));
    p.setBrush(QColor(50, 90, 170));
    QPainterPath body;
    body.moveTo(8, 8);
    body.lineTo(48, 8);
    body.lineTo(56, 16);
    body.lineTo(56, 56);
    body.lineTo(8, 56);
    body.closeSubpath();
    p.drawPath(body);
    p.setBrush(QColor(235, 235, 235));
    p.drawRect(QRectF(18, 8, 24, 16));
    p.drawRect(QRectF(16, 34, 32, 22));
    p.setPen(QPen(QColor(20, 150, 40), 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawPolyline(QPolygonF({QPointF(22, 44), QPointF(30, 51), QPointF(44, 36)}));
}

void drawExport(QPainter& p)
{
    // A results sheet with an arrow leaving it.
    drawSheet(p, Qt::white);
    p.setPen(QPen(QColor(0, 128, 128), 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawLine(30, 50, 58, 50);
    p.drawPolyline(QPolygonF({QPointF(50, 42), QPointF(58, 50), QPointF(50, 58)}));
}

void drawEmptyList(QPainter& p)
{
    // The start-order sheet with a red cross.
    drawSheet(p, QColor(255, 255, 192));
    p.setPen(QPen(QColor(200, 20, 20), 6, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(36, 38, 56, 58);
    p.drawLine(56, 38, 36, 58);
}

void drawApp(QPainter& p)
{
    // The program's icon: a teal stopwatch with dark red hands. Drawn small, no line is
    // thinner than one pixel of the device.
    const qreal pixel = 1.0 / p.transform().m11();
    const auto width = [pixel](qreal w) { return std::max(w, pixel); };
    p.setPen(QPen(QColor(20, 20, 20), width(3)));
    p.setBrush(QColor(0, 128, 128));
    p.drawEllipse(QPointF(32, 36), 25, 25);
    p.setBrush(QColor(255, 255, 192));
    p.drawEllipse(QPointF(32, 36), 18, 18);
    p.drawRect(QRectF(27, 3, 10, 7));
    p.setPen(QPen(QColor(128, 0, 0), width(4), Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(32, 36), QPointF(32, 22));
    p.drawLine(QPointF(32, 36), QPointF(42, 40));
}

} // namespace

QIcon clearIcon()
{
    return icon(drawClear);
}

QIcon saveAndEndIcon()
{
    return icon(drawSaveAndEnd);
}

QIcon exportIcon()
{
    return icon(drawExport);
}

QIcon emptyListIcon()
{
    return icon(drawEmptyList);
}

QPixmap appIconPixmap(int size)
{
    // The drawing is made on the 64-pixel grid of the other icons; the painter scales it, so
    // every size is drawn afresh rather than resampled.
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal scale = size / qreal(side);
    p.scale(scale, scale);
    drawApp(p);
    p.end();
    return pixmap;
}

QIcon appIcon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256})
        icon.addPixmap(appIconPixmap(size));
    return icon;
}

QPixmap finishLine()
{
    // A finish line seen from the side of the road: sky, road, the chequered line, the arch
    // and a runner crossing.
    QPixmap pixmap(500, 300);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 170);
    sky.setColorAt(0, QColor(110, 170, 230));
    sky.setColorAt(1, QColor(200, 230, 250));
    p.fillRect(0, 0, 500, 170, sky);
    p.fillRect(0, 170, 500, 130, QColor(70, 150, 70));
    QPolygonF road({QPointF(180, 170), QPointF(320, 170), QPointF(470, 300), QPointF(30, 300)});
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(90, 90, 95));
    p.drawPolygon(road);
    // The chequered line across the road.
    const int rows = 2;
    const int cols = 16;
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < cols; ++c) {
            const double y0 = 232 + r * 9;
            const double x0 = 95 + c * (310.0 / cols) - r * 4;
            p.setBrush((r + c) % 2 ? Qt::black : Qt::white);
            p.drawRect(QRectF(x0, y0, 310.0 / cols, 9));
        }
    }
    // The arch.
    p.setBrush(QColor(128, 0, 0));
    p.drawRect(QRectF(70, 70, 16, 175));
    p.drawRect(QRectF(414, 70, 16, 175));
    p.drawRect(QRectF(70, 60, 360, 40));
    p.setPen(QColor(255, 255, 192));
    QFont font(QStringLiteral("Sans"));
    font.setBold(true);
    font.setPixelSize(28);
    p.setFont(font);
    p.drawText(QRectF(70, 60, 360, 40), Qt::AlignCenter, QStringLiteral("META"));
    // A runner, in the middle of a stride.
    p.setPen(QPen(QColor(30, 30, 30), 9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawLine(QPointF(262, 150), QPointF(255, 196));                                     // body
    p.drawPolyline(QPolygonF({QPointF(255, 196), QPointF(238, 220), QPointF(226, 242)})); // leg
    p.drawPolyline(QPolygonF({QPointF(255, 196), QPointF(276, 214), QPointF(272, 240)})); // leg
    p.drawPolyline(QPolygonF({QPointF(260, 160), QPointF(243, 178), QPointF(236, 164)})); // arm
    p.drawPolyline(QPolygonF({QPointF(260, 160), QPointF(280, 170), QPointF(292, 156)})); // arm
    p.setBrush(QColor(30, 30, 30));
    p.drawEllipse(QPointF(265, 136), 10, 10);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 192));
    p.drawRect(QRectF(252, 166, 14, 12)); // the bib
    p.end();
    return pixmap;
}

} // namespace artwork
