// SPDX-License-Identifier: MIT
#include "platform/graphics/Metafile.h"

#include "platform/graphics/ByteView.h"
#include "platform/graphics/ImageFiles.h"

#include <QPainter>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int PlaceableSize = 22;
constexpr int DotsPerInch = 96;
constexpr quint32 PlaceableKey = 0x9AC6CDD7;

int Pixels(int units, int unitsPerInch)
{
    return qMax(1, int((qint64(std::abs(units)) * DotsPerInch + unitsPerInch / 2) / unitsPerInch));
}

} // namespace

void TMetafile::Read(const QByteArray &bytes)
{
    const TByteView view(bytes, u"WMF"_s);
    if (view.U32(0) != PlaceableKey)
        view.Broken(u"开头不是 D7 CD C6 9A"_s);
    quint16 sum = 0;
    for (int at = 0; at < 20; at += 2)
        sum ^= view.U16(at);
    if (sum != view.U16(20))
        view.Broken(u"文件头的校验和不对"_s);
    const int width = view.I16(10) - view.I16(6);
    const int height = view.I16(12) - view.I16(8);
    const int unitsPerInch = view.U16(14);
    if (width == 0 || height == 0 || unitsPerInch == 0)
        view.Broken(u"大小是 %1×%2，每英寸 %3 单位"_s.arg(width).arg(height).arg(unitsPerInch));
    const int type = view.U16(PlaceableSize);
    if ((type != 1 && type != 2) || view.U16(PlaceableSize + 2) != 9)
        view.Broken(u"记录的头不对"_s);
    view.Place(PlaceableSize, 2 * qint64(view.U32(PlaceableSize + 6))); // in words, with the header
    const QSize size(Pixels(width, unitsPerInch), Pixels(height, unitsPerInch));
    CheckImageSize(size.width(), size.height());
    FBytes = bytes;
    FSize = size;
}

void TMetafile::Draw(QPainter &painter, const QRect &rect) const
{
    if (Empty() || rect.isEmpty())
        return;
    painter.save();
    const QRect frame = rect.adjusted(0, 0, -1, -1);
    painter.setPen(QColor(0xA0A0A0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame);
    const QString text = u"图元文件\n%1×%2"_s.arg(Width()).arg(Height());
    const QRect inner = frame.adjusted(2, 1, -1, 0);
    QFont font = painter.font();
    for (int size = QFontInfo(font).pixelSize(); size > 6; --size) {
        font.setPixelSize(size);
        const QSize needed = QFontMetrics(font).size(0, text);
        if (needed.width() <= inner.width() && needed.height() <= inner.height())
            break;
    }
    painter.setFont(font);
    painter.setPen(QColor(0x808080));
    painter.setClipRect(inner, Qt::IntersectClip);
    painter.drawText(inner, Qt::AlignCenter, text);
    painter.restore();
}

} // namespace Korvane
