// SPDX-License-Identifier: MIT
#include "platform/graphics/RasterGraphic.h"

#include "platform/graphics/ImageFiles.h"

namespace Korvane {

void TRasterGraphic::SetImage(const QImage &image)
{
    Take({}, image);
    FImage.setDevicePixelRatio(1);
    OnChange();
}

void TRasterGraphic::Take(const QByteArray &bytes, const QImage &image)
{
    FImage = image;
    FBytes = bytes;
}

void TRasterGraphic::Draw(QPainter &painter, const QRect &rect) const { DrawImage(painter, rect, FImage); }

} // namespace Korvane
