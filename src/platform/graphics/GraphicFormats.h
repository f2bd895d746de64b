// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/Graphic.h"

namespace Korvane {

/// What the first two bytes tell of a picture's format, as a little-endian number.
enum TGraphicMagic : quint16 {
    gmIcon = 0x0000,
    gmHeader = 0x0001, ///< the library's own header, behind which one of the others stands
    gmBitmap = 0x4D42,
    gmMetafile = 0xCDD7,
    gmJPEG = 0xD8FF
};

/// An empty picture of the format that the bytes begin like; null for the own header, for other bytes,
/// and for two bytes or fewer.
std::unique_ptr<TGraphic> NewGraphicOf(QByteArrayView bytes);
/// Whether the bytes are more than two and begin like the own header.
bool HasGraphicHeader(QByteArrayView bytes);

/// Any picture that can be read: the formats of TGraphicMagic, and PNG, which becomes a TBitmap. Raises
/// EInvalidGraphic.
std::unique_ptr<TGraphic> ReadGraphic(const QByteArray &bytes);

/// The library's own form of a stored picture: a header of 12 bytes with format, length and checksum, and
/// the picture's file; bitmaps are packed as PNG, without a loss. The form is told in
/// docs/graphic-header.md. Raises EInvalidGraphic without a picture, and for formats of an application.
QByteArray WriteWithHeader(const TGraphic &graphic);
/// Raises EInvalidGraphic when anything in the header or behind it is not right.
std::unique_ptr<TGraphic> ReadWithHeader(const QByteArray &bytes);

/// The filter of a file dialog for what ReadGraphic reads.
QString GraphicFileFilter();

} // namespace Korvane
