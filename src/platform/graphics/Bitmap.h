// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/RasterGraphic.h"

namespace Korvane {

/// A Windows bitmap (BMP).
class TBitmap : public TRasterGraphic
{
public:
    TBitmap() = default;
    explicit TBitmap(const QImage &image) { SetImage(image); }

    std::unique_ptr<TGraphic> Clone() const override { return std::make_unique<TBitmap>(*this); }

protected:
    void Read(const QByteArray &bytes) override;
    QByteArray Encode(const QImage &image) const override;
};

} // namespace Korvane
