// SPDX-License-Identifier: MIT
#include "platform/graphics/JPEGImage.h"

#include "platform/graphics/ImageFiles.h"

#include <QPainter>

namespace Korvane {

void TJPEGImage::Read(const QByteArray &bytes)
{
    CheckJpeg(bytes);
    Take(bytes, DecodeImage(bytes, "jpeg"));
}

QByteArray TJPEGImage::Encode(const QImage &image) const
{
    if (!image.hasAlphaChannel())
        return EncodeImage(image, "jpeg", FQuality);
    QImage opaque(image.size(), QImage::Format_RGB32);
    opaque.fill(Qt::white);
    QPainter(&opaque).drawImage(0, 0, image);
    return EncodeImage(opaque, "jpeg", FQuality);
}

} // namespace Korvane
