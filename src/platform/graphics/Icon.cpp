// SPDX-License-Identifier: MIT
#include "platform/graphics/Icon.h"

#include "platform/graphics/ImageFiles.h"

#include <QIcon>
#include <QPainter>

#include <numeric>

namespace Korvane {

namespace {

qint64 Area(QSize size) { return qint64(size.width()) * size.height(); }

} // namespace

QSize TIcon::Size() const { return FImages.isEmpty() ? QSize(0, 0) : FImages.last().size(); }

void TIcon::Read(const QByteArray &bytes)
{
    const QList<TIconEntry> entries = CheckIcon(bytes);
    const QList<QImage> images = DecodeIcon(bytes);
    if (images.size() != entries.size())
        throw EInvalidGraphic(QStringLiteral("不是有效的 ICO 图片：图像的个数不对"));
    QList<qsizetype> order(images.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](qsizetype left, qsizetype right) {
        return std::pair(Area(images[left].size()), entries[left].BitCount) <
               std::pair(Area(images[right].size()), entries[right].BitCount);
    });
    FImages.clear();
    for (const qsizetype index : order)
        FImages.append(images[index]);
    FBytes = bytes;
}

void TIcon::SetImages(const QList<QImage> &images)
{
    const QByteArray bytes = images.isEmpty() ? QByteArray() : EncodeIcon(images);
    FImages = images;
    std::stable_sort(FImages.begin(), FImages.end(), [](const QImage &left, const QImage &right) {
        return Area(left.size()) < Area(right.size());
    });
    FBytes = bytes;
    OnChange();
}

QImage TIcon::BestImage(QSize size) const
{
    if (FImages.isEmpty())
        return {};
    qsizetype best = FImages.size() - 1;
    for (qsizetype i = best - 1; i >= 0; --i) {
        const QSize image = FImages[i].size();
        const bool fills = image.width() >= size.width() && image.height() >= size.height();
        if (fills && image != FImages[best].size())
            best = i;
    }
    return FImages[best];
}

void TIcon::Draw(QPainter &painter, const QRect &rect) const
{
    const QRectF target = painter.deviceTransform().mapRect(QRectF(rect));
    DrawImage(painter, rect, BestImage(target.size().toSize()));
}

QIcon TIcon::ToQIcon() const
{
    QIcon icon;
    for (const QImage &image : FImages)
        icon.addPixmap(QPixmap::fromImage(image));
    return icon;
}

} // namespace Korvane
