// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>

class QPainter;

namespace Korvane {

// Files of pixels are looked through before a decoder sees them: it is theirs that the lengths in a file
// fit the bytes that are there, and that no memory is taken for sizes that are only claimed. All raise
// EInvalidGraphic.

/// Size of a Windows bitmap (BITMAPFILEHEADER and BITMAPINFOHEADER of the Windows SDK, and the OS/2 1.x
/// form), whose pixels are all there.
QSize CheckBmp(const QByteArray &bytes);
/// Size of a JPEG file (ITU-T T.81, Annex B), which goes on to its end marker.
QSize CheckJpeg(const QByteArray &bytes);
/// Size of a PNG file (ISO/IEC 15948), which goes on to its IEND.
QSize CheckPng(const QByteArray &bytes);
/// One picture in the directory of an icon file (ICONDIR, ICONDIRENTRY of the Windows SDK).
struct TIconEntry
{
    QSize Size;
    int BitCount = 0;
};
QList<TIconEntry> CheckIcon(const QByteArray &bytes);

/// Decodes checked bytes by the reader of one format, "bmp", "jpeg", "png".
QImage DecodeImage(const QByteArray &bytes, const char *format);
/// All pictures of checked bytes of an icon file.
QList<QImage> DecodeIcon(const QByteArray &bytes);

/// A bitmap file; 32 bits a pixel with alpha where the image has it, else as few as it needs.
QByteArray EncodeBmp(const QImage &image);
QByteArray EncodeImage(const QImage &image, const char *format, int quality = -1);
/// An icon file with the images in their order, none larger than 256 pixels.
QByteArray EncodeIcon(const QList<QImage> &images);

/// Draws an image stretched, smoothly, with the pixels of the device.
void DrawImage(QPainter &painter, const QRect &rect, const QImage &image);

/// The CRC-32 of ISO 3309, as in zip and PNG.
quint32 Checksum(const char *bytes, qsizetype size);
/// Raises for a size that is empty or beyond MaxGraphicPixels.
void CheckImageSize(qint64 width, qint64 height);

} // namespace Korvane
