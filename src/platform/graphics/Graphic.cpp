// SPDX-License-Identifier: MIT
#include "platform/graphics/Graphic.h"

#include <QIODevice>
#include <QPainter>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 MaxBytes = 256 << 20;
constexpr qint64 MinPiece = 64 << 10;

} // namespace

QByteArray ReadGraphicBytes(QIODevice &stream)
{
    if (!stream.isReadable())
        throw EFileError(u"读图片失败：数据流没有打开"_s);
    QByteArray bytes;
    for (;;) {
        // NOTE: no more memory than there are bytes: a stream may not know how many.
        const qsizetype at = bytes.size();
        bytes.resize(at + qBound<qint64>(MinPiece, stream.bytesAvailable(), MaxBytes));
        const qint64 count = stream.read(bytes.data() + at, bytes.size() - at);
        bytes.resize(at + qMax<qint64>(count, 0));
        if (bytes.size() > MaxBytes)
            throw EInvalidGraphic(u"图片的数据超过 %1 MB，不能读入"_s.arg(MaxBytes >> 20));
        if (count < 0 && at == 0)
            throw EFileError(u"读图片失败：%1"_s.arg(stream.errorString()));
        if (count <= 0)
            break;
    }
    bytes.squeeze();
    return bytes;
}

void TGraphic::LoadFromStream(QIODevice &stream) { LoadFromBytes(ReadGraphicBytes(stream)); }

void TGraphic::LoadFromBytes(const QByteArray &bytes)
{
    Read(bytes);
    OnChange();
}

QByteArray TGraphic::ToBytes() const
{
    if (Empty())
        throw EInvalidGraphic(u"没有图片可以保存"_s);
    return Write();
}

void TGraphic::SaveToStream(QIODevice &stream) const
{
    const QByteArray bytes = ToBytes();
    if (!stream.isWritable() || stream.write(bytes) != bytes.size())
        throw EFileError(u"写图片失败：%1"_s.arg(stream.errorString()));
}

QPixmap RenderGraphic(const TGraphic &graphic, QSize size, const QRect &rect, qreal devicePixelRatio)
{
    const QSize pixels = (QSizeF(size) * devicePixelRatio).toSize();
    if (graphic.Empty() || pixels.isEmpty())
        return {};
    QPixmap pixmap(pixels);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    graphic.Draw(painter, rect);
    return pixmap;
}

} // namespace Korvane
