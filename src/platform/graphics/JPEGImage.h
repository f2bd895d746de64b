// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/RasterGraphic.h"

namespace Korvane {

/// A JPEG file. One that was read is saved as it was, without a loss; an image that was set is
/// compressed when saved, and what is transparent in it becomes white.
class TJPEGImage : public TRasterGraphic
{
public:
    TJPEGImage() = default;
    explicit TJPEGImage(const QImage &image) { SetImage(image); }

    std::unique_ptr<TGraphic> Clone() const override { return std::make_unique<TJPEGImage>(*this); }
    /// 1 to 100, for images that were set.
    int Quality() const { return FQuality; }
    void SetQuality(int quality) { FQuality = qBound(1, quality, 100); }

protected:
    void Read(const QByteArray &bytes) override;
    QByteArray Encode(const QImage &image) const override;

private:
    int FQuality = 90;
};

} // namespace Korvane
