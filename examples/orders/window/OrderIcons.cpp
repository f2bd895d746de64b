// SPDX-License-Identifier: MIT
#include "examples/orders/window/OrderIcons.h"

#include "platform/graphics/ImageList.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

using namespace Korvane;

namespace {

// Drawn on a field of 24 by 24.
constexpr qreal FieldSize = 24;
constexpr QRgb Blue = 0xFF2F6CB0, Green = 0xFF2E8B57, Red = 0xFFC0483F, Amber = 0xFFC98A1B,
               Slate = 0xFF5A6675, Paper = 0xFFFFFFFF;

class TPen
{
public:
    TPen(QPainter &painter, bool enabled) : FPainter(painter), FEnabled(enabled) {}

    void Fill(const QPainterPath &path, QRgb color) const { FPainter.fillPath(path, ColorOf(color)); }
    void Fill(const QPolygonF &polygon, QRgb color) const
    {
        QPainterPath path;
        path.addPolygon(polygon);
        path.closeSubpath();
        Fill(path, color);
    }
    void Box(const QRectF &rect, QRgb color, qreal radius = 1) const
    {
        QPainterPath path;
        path.addRoundedRect(rect, radius, radius);
        Fill(path, color);
    }
    void Line(const QPolygonF &points, QRgb color, qreal width = 2) const
    {
        FPainter.setPen(QPen(ColorOf(color), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        FPainter.setBrush(Qt::NoBrush);
        FPainter.drawPolyline(points);
    }
    void Arc(const QRectF &rect, int start, int span, QRgb color, qreal width) const
    {
        FPainter.setPen(QPen(ColorOf(color), width, Qt::SolidLine, Qt::FlatCap));
        FPainter.drawArc(rect, start * 16, span * 16);
    }

    /// A sheet with lines of text.
    void Sheet(const QRectF &rect) const
    {
        Box(rect, Slate);
        Box(rect.adjusted(1.5, 1.5, -1.5, -1.5), Paper, 0);
        for (qreal y = rect.top() + 5; y < rect.bottom() - 3; y += 3.5)
            Box({rect.left() + 4, y, rect.width() - 8, 1.5}, Blue, 0);
    }
    void Plus(QPointF center, qreal arm, QRgb color) const
    {
        Box({center.x() - arm, center.y() - 1.5, 2 * arm, 3}, color);
        Box({center.x() - 1.5, center.y() - arm, 3, 2 * arm}, color);
    }
    void Cross(QPointF center, qreal arm, QRgb color) const
    {
        Line({center + QPointF(-arm, -arm), center + QPointF(arm, arm)}, color, 2.6);
        Line({center + QPointF(-arm, arm), center + QPointF(arm, -arm)}, color, 2.6);
    }
    void Rows() const
    {
        for (const qreal y : {4.0, 9.0, 14.0})
            Box({3, y, y > 10 ? 9.0 : 18.0, 3}, Slate);
    }

private:
    QColor ColorOf(QRgb color) const
    {
        if (FEnabled)
            return QColor::fromRgba(color);
        return color == Paper ? QColor(0xF4, 0xF5, 0xF6) : QColor(0xB6, 0xBB, 0xC2);
    }

    QPainter &FPainter;
    const bool FEnabled;
};

QPolygonF LeftArrow(qreal x) { return {{x, 12}, {x + 9, 5}, {x + 9, 19}}; }
QPolygonF RightArrow(qreal x) { return {{x, 5}, {x + 9, 12}, {x, 19}}; }

void DrawPencil(const TPen &pen)
{
    pen.Fill(QPolygonF{{5, 15}, {15, 5}, {19, 9}, {9, 19}}, Amber);
    pen.Fill(QPolygonF{{5, 15}, {9, 19}, {3.5, 20.5}}, Slate);
    pen.Fill(QPolygonF{{16, 4}, {17.5, 2.5}, {21.5, 6.5}, {20, 8}}, Red);
}

void DrawDisk(const TPen &pen)
{
    pen.Box({3, 3, 18, 18}, Blue, 2);
    pen.Box({7, 3, 10, 7}, Paper, 0);
    pen.Box({13, 4.5, 2.5, 4}, Blue, 0);
    pen.Box({6, 13, 12, 8}, Paper, 0);
    pen.Box({8, 15, 8, 1.5}, Slate, 0);
    pen.Box({8, 18, 8, 1.5}, Slate, 0);
}

void DrawBin(const TPen &pen)
{
    pen.Box({5, 5, 14, 2.5}, Red);
    pen.Box({9.5, 2.5, 5, 2}, Red);
    pen.Fill(QPolygonF{{6.5, 9}, {17.5, 9}, {16.5, 21.5}, {7.5, 21.5}}, Red);
    for (const qreal x : {9.3, 11.3, 13.3})
        pen.Box({x, 11, 1.4, 8}, Paper, 0);
}

void DrawRefresh(const TPen &pen)
{
    pen.Arc({5, 5, 14, 14}, 40, 150, Green, 2.6);
    pen.Arc({5, 5, 14, 14}, 220, 150, Green, 2.6);
    pen.Fill(QPolygonF{{21.5, 3.5}, {20.5, 10.5}, {14.5, 7}}, Green);
    pen.Fill(QPolygonF{{2.5, 20.5}, {3.5, 13.5}, {9.5, 17}}, Green);
}

void DrawExport(const TPen &pen)
{
    pen.Box({3, 3, 14, 18}, Green, 1.5);
    for (const qreal y : {6.0, 10.0, 14.0})
        for (const qreal x : {5.5, 10.5})
            pen.Box({x, y, 4, 2.6}, Paper, 0);
    pen.Box({12, 15.5, 6, 3}, Blue, 0);
    pen.Fill(QPolygonF{{17, 12.5}, {22.5, 17}, {17, 21.5}}, Blue);
}

void DrawCrate(const TPen &pen)
{
    pen.Fill(QPolygonF{{12, 2.5}, {21, 7}, {12, 11.5}, {3, 7}}, Amber);
    pen.Fill(QPolygonF{{3, 8.5}, {11.3, 12.7}, {11.3, 21.5}, {3, 17.3}}, Slate);
    pen.Fill(QPolygonF{{21, 8.5}, {12.7, 12.7}, {12.7, 21.5}, {21, 17.3}}, Blue);
}

void DrawIcon(const TPen &pen, TOrderIcon icon)
{
    switch (icon) {
    case oiFirst:
        pen.Box({4, 5, 2.5, 14}, Blue, 0);
        return pen.Fill(LeftArrow(9), Blue);
    case oiPrior:
        return pen.Fill(LeftArrow(7), Blue);
    case oiNext:
        return pen.Fill(RightArrow(8), Blue);
    case oiLast:
        pen.Fill(RightArrow(6), Blue);
        return pen.Box({17.5, 5, 2.5, 14}, Blue, 0);
    case oiInsert:
        pen.Sheet({3, 2, 14, 19});
        return pen.Plus({17, 17}, 5, Green);
    case oiUpdate:
        return DrawPencil(pen);
    case oiHead:
        pen.Sheet({5, 2, 14, 20});
        return pen.Box({6.5, 3.5, 11, 3}, Amber, 0);
    case oiDelete:
        return DrawBin(pen);
    case oiSave:
        return DrawDisk(pen);
    case oiCancel:
        return pen.Cross({12, 12}, 6.5, Red);
    case oiRefresh:
        return DrawRefresh(pen);
    case oiExport:
        return DrawExport(pen);
    case oiAddLine:
        pen.Rows();
        return pen.Plus({17, 17}, 5, Green);
    case oiDeleteLine:
        pen.Rows();
        return pen.Cross({17.5, 17}, 3.5, Red);
    case oiUp:
        return pen.Fill(QPolygonF{{12, 4}, {20, 13}, {14.5, 13}, {14.5, 20}, {9.5, 20}, {9.5, 13}, {4, 13}},
                        Green);
    case oiDown:
        return pen.Fill(QPolygonF{{12, 20}, {20, 11}, {14.5, 11}, {14.5, 4}, {9.5, 4}, {9.5, 11}, {4, 11}},
                        Green);
    case oiOrders:
        return pen.Sheet({5, 2, 14, 20});
    case oiItems:
    case oiCount:
        return DrawCrate(pen);
    }
}

class TOrderIconEngine : public QIconEngine
{
public:
    explicit TOrderIconEngine(TOrderIcon icon) : FIcon(icon) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / FieldSize, rect.height() / FieldSize);
        DrawIcon(TPen(*painter, mode != QIcon::Disabled), FIcon);
        painter->restore();
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect({}, size), mode, state);
        return pixmap;
    }
    QIconEngine *clone() const override { return new TOrderIconEngine(FIcon); }

private:
    const TOrderIcon FIcon;
};

} // namespace

QIcon OrderIcon(TOrderIcon icon) { return QIcon(new TOrderIconEngine(icon)); }

void FillOrderIcons(TImageList &images)
{
    for (int icon = 0; icon < oiCount; ++icon)
        images.Add(OrderIcon(TOrderIcon(icon)));
}
