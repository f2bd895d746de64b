// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/Graphic.h"

namespace Korvane {

/// A picture that is one image.
class TRasterGraphic : public TGraphic
{
public:
    QSize Size() const override { return FImage.size(); }
    bool HasTransparency() const override { return FImage.hasAlphaChannel(); }
    void Draw(QPainter &painter, const QRect &rect) const override;
    QImage ToImage() const override { return FImage; }

    const QImage &Image() const { return FImage; }
    /// A null image makes the picture empty.
    void SetImage(const QImage &image);

protected:
    QByteArray Write() const override { return FBytes.isEmpty() ? Encode(FImage) : FBytes; }
    virtual QByteArray Encode(const QImage &image) const = 0;
    void Take(const QByteArray &bytes, const QImage &image);

private:
    QImage FImage;
    QByteArray FBytes; // what the image was read from; empty for one that was set
};

} // namespace Korvane
