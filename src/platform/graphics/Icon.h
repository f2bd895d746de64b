// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/Graphic.h"

class QIcon;

namespace Korvane {

/// An icon file (ICO): one picture in several sizes, of which the one is drawn that suits the place.
class TIcon : public TGraphic
{
public:
    TIcon() = default;
    explicit TIcon(const QList<QImage> &images) { SetImages(images); }

    /// That of the largest image.
    QSize Size() const override;
    bool HasTransparency() const override { return true; }
    void Draw(QPainter &painter, const QRect &rect) const override;
    std::unique_ptr<TGraphic> Clone() const override { return std::make_unique<TIcon>(*this); }
    QImage ToImage() const override { return BestImage(Size()); }

    const QList<QImage> &Images() const { return FImages; }
    /// Raises EInvalidGraphic for images of more than 256 pixels in width or height.
    void SetImages(const QList<QImage> &images);
    /// The smallest image that fills the size in pixels, else the largest; of equal ones, that with the
    /// most colours. Null without images.
    QImage BestImage(QSize size) const;
    QIcon ToQIcon() const;

protected:
    void Read(const QByteArray &bytes) override;
    QByteArray Write() const override { return FBytes; }

private:
    QList<QImage> FImages; // from the smallest to the largest, of equal ones the best last
    QByteArray FBytes;
};

} // namespace Korvane
