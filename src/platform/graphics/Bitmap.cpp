// SPDX-License-Identifier: MIT
#include "platform/graphics/Bitmap.h"

#include "platform/graphics/ImageFiles.h"

namespace Korvane {

void TBitmap::Read(const QByteArray &bytes)
{
    CheckBmp(bytes);
    Take(bytes, DecodeImage(bytes, "bmp"));
}

QByteArray TBitmap::Encode(const QImage &image) const { return EncodeBmp(image); }

} // namespace Korvane
