// SPDX-License-Identifier: MIT
#include "platform/graphics/ImageFiles.h"

#include "platform/graphics/ByteView.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <zlib.h>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int FileHeaderSize = 14; // of a bitmap
constexpr int InfoHeaderSize = 40;
constexpr int AlphaHeaderSize = 108; // the info header of version 4, which has masks
constexpr int MaxIcons = 256;
constexpr int IconHeaderSize = 6;
constexpr int IconEntrySize = 16;
constexpr int MaxIconSide = 1024;
constexpr int IconSide = 256; // the largest that an entry of the directory can tell

qint64 LineSize(qint64 width, int bits) { return (width * bits + 31) / 32 * 4; }

bool IsBitCount(int bits)
{
    return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

/// Run lengths must go on to the mark of their end.
void CheckRuns(const TByteView &view, qsizetype at, bool nibbles)
{
    for (;;) {
        const int count = view.U8(at);
        const int value = view.U8(at + 1);
        at += 2;
        if (count > 0)
            continue;
        if (value == 1)
            return;
        if (value == 2)
            at += 2;
        else if (value > 2)
            at += ((nibbles ? (value + 1) / 2 : value) + 1) & ~1;
    }
}

/// Picture of an icon that is a bitmap without its file header: pixels and a mask of one bit below them.
QSize CheckIconBitmap(const TByteView &view, qsizetype at, qsizetype size)
{
    const qint64 width = view.I32(at + 4);
    const qint64 height = qint64(view.I32(at + 8)) / 2;
    const int bits = view.U16(at + 14);
    if (view.U32(at) != InfoHeaderSize || !IsBitCount(bits) || view.U32(at + 16) != 0)
        view.Broken(u"图像的格式不能识别"_s);
    CheckImageSize(width, height);
    const qint64 used = view.U32(at + 32);
    if (used > 256)
        view.Broken(u"颜色表有 %1 色"_s.arg(used));
    const qint64 colors = bits > 8 ? 0 : 4 * (used ? used : 1LL << bits);
    const qint64 mask = bits == 32 ? 0 : LineSize(width, 1) * height;
    if (InfoHeaderSize + colors + LineSize(width, bits) * height + mask > size)
        view.Broken(u"图像的数据不完整"_s);
    return {int(width), int(height)};
}

QByteArray Numbers(std::initializer_list<std::pair<quint32, int>> numbers)
{
    QByteArray bytes;
    for (const auto &[number, size] : numbers)
        for (int i = 0; i < size; ++i)
            bytes += char(number >> 8 * i & 0xFF);
    return bytes;
}

/// Lines from the bottom up, blue, green, red, alpha.
QByteArray PixelsOf(const QImage &image)
{
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
    QByteArray bytes;
    bytes.reserve(pixels.sizeInBytes());
    for (int y = pixels.height() - 1; y >= 0; --y) {
        const auto *line = reinterpret_cast<const QRgb *>(pixels.constScanLine(y));
        for (int x = 0; x < pixels.width(); ++x) {
            const quint32 pixel = qToLittleEndian<quint32>(line[x]);
            bytes.append(reinterpret_cast<const char *>(&pixel), sizeof pixel);
        }
    }
    return bytes;
}

/// A picture of an icon; its alpha says all, so nothing is set in its mask.
QByteArray IconBitmap(const QImage &image)
{
    const auto width = quint32(image.width());
    const auto height = quint32(image.height());
    return Numbers({{InfoHeaderSize, 4},
                    {width, 4},
                    {2 * height, 4},
                    {1, 2},
                    {32, 2},
                    {0, 4},
                    {4 * width * height, 4},
                    {0, 4},
                    {0, 4},
                    {0, 4},
                    {0, 4}}) +
           PixelsOf(image) + QByteArray(LineSize(image.width(), 1) * image.height(), '\0');
}

} // namespace

void CheckImageSize(qint64 width, qint64 height)
{
    if (width <= 0 || height <= 0)
        throw EInvalidGraphic(u"图片的宽或高无效"_s);
    if (width > MaxGraphicPixels || height > MaxGraphicPixels || width * height > MaxGraphicPixels)
        throw EInvalidGraphic(u"图片太大：%1×%2 像素"_s.arg(width).arg(height));
}

quint32 Checksum(const char *bytes, qsizetype size)
{
    return quint32(crc32_z(0, reinterpret_cast<const Bytef *>(bytes), size_t(size)));
}

QSize CheckBmp(const QByteArray &bytes)
{
    const TByteView view(bytes, u"BMP"_s);
    if (!bytes.startsWith("BM"))
        view.Broken(u"开头不是 BM"_s);
    const qint64 pixels = view.U32(10);
    const quint32 header = view.U32(14);
    const bool isOs2 = header == 12;
    if (!isOs2 && header != InfoHeaderSize && header != 64 && header != AlphaHeaderSize && header != 124)
        view.Broken(u"文件头的长度是 %1"_s.arg(header));
    const qint64 width = isOs2 ? view.U16(18) : view.I32(18);
    const qint64 height = isOs2 ? view.U16(20) : std::abs(qint64(view.I32(22))); // negative is from the top
    const int bits = view.U16(isOs2 ? 24 : 28);
    const quint32 packing = isOs2 ? 0 : view.U32(30);
    CheckImageSize(width, height);
    if (!IsBitCount(bits))
        view.Broken(u"每像素 %1 位"_s.arg(bits));
    if (pixels < FileHeaderSize + qint64(header))
        view.Broken(u"像素的位置是 %1"_s.arg(pixels));
    const bool hasRuns = (packing == 1 && bits == 8) || (packing == 2 && bits == 4);
    const bool hasMasks = packing == 3 && (bits == 16 || bits == 32);
    if (hasRuns)
        CheckRuns(view, pixels, bits == 4);
    else if (packing == 0 || hasMasks)
        view.Place(pixels, LineSize(width, bits) * height);
    else
        view.Broken(u"压缩方式是 %1"_s.arg(packing));
    return {int(width), int(height)};
}

QSize CheckJpeg(const QByteArray &bytes)
{
    const TByteView view(bytes, u"JPEG"_s);
    if (view.BigU16(0) != 0xFFD8)
        view.Broken(u"开头不是 FF D8"_s);
    QSize size;
    bool hasScan = false;
    qsizetype at = 2;
    for (;;) {
        if (view.U8(at) != 0xFF)
            view.Broken(u"缺少标记"_s);
        while (view.U8(at) == 0xFF)
            ++at;
        const int marker = view.U8(at++);
        if (marker == 0xD9)
            break;
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7))
            continue;
        const int length = view.BigU16(at);
        view.Place(at, length);
        if (length < 2)
            view.Broken(u"段的长度是 %1"_s.arg(length));
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (isFrame) {
            CheckImageSize(view.BigU16(at + 5), view.BigU16(at + 3));
            size = {view.BigU16(at + 5), view.BigU16(at + 3)};
        }
        at += length;
        if (marker != 0xDA)
            continue;
        hasScan = true;
        // Within a scan, FF is followed by 00, by a restart mark, or by the next segment.
        for (;; ++at) {
            if (view.U8(at) != 0xFF)
                continue;
            const int next = view.U8(at + 1);
            if (next != 0x00 && next != 0xFF && (next < 0xD0 || next > 0xD7))
                break;
        }
    }
    if (size.isEmpty() || !hasScan)
        view.Broken(u"没有图像"_s);
    return size;
}

QSize CheckPng(const QByteArray &bytes)
{
    const TByteView view(bytes, u"PNG"_s);
    if (!bytes.startsWith("\x89PNG\r\n\x1A\n"))
        view.Broken(u"开头不是 PNG 的标志"_s);
    qsizetype at = 8;
    if (memcmp(view.Place(at + 4, 4), "IHDR", 4) != 0)
        view.Broken(u"没有 IHDR"_s);
    CheckImageSize(view.BigU32(at + 8), view.BigU32(at + 12));
    const QSize size(int(view.BigU32(at + 8)), int(view.BigU32(at + 12)));
    for (bool isEnd = false; !isEnd;) {
        const qint64 length = view.BigU32(at);
        const char *name = view.Place(at + 4, length + 8);
        isEnd = memcmp(name, "IEND", 4) == 0;
        if (Checksum(name, length + 4) != view.BigU32(at + 8 + length))
            view.Broken(u"校验和不对"_s);
        at += length + 12;
    }
    return size;
}

QList<TIconEntry> CheckIcon(const QByteArray &bytes)
{
    const TByteView view(bytes, u"ICO"_s);
    if (view.U16(0) != 0 || view.U16(2) != 1)
        view.Broken(u"开头不是 00 00 01 00"_s);
    const int count = view.U16(4);
    if (count == 0 || count > MaxIcons)
        view.Broken(u"有 %1 个图像"_s.arg(count));
    QList<TIconEntry> entries;
    qint64 pixels = 0;
    for (int i = 0; i < count; ++i) {
        const qsizetype entry = IconHeaderSize + i * IconEntrySize;
        const qint64 size = view.U32(entry + 8);
        const qint64 at = view.U32(entry + 12);
        view.Place(at, size);
        if (at < IconHeaderSize + count * IconEntrySize || size < InfoHeaderSize)
            view.Broken(u"第 %1 个图像的位置不对"_s.arg(i + 1));
        const QByteArray file = QByteArray::fromRawData(bytes.constData() + at, size);
        const bool isPng = file.startsWith("\x89PNG");
        const QSize picture = isPng ? CheckPng(file) : CheckIconBitmap(view, at, size);
        // NOTE: the decoder goes by the directory where it tells a size, so this must be the picture's.
        const QSize told(view.U8(entry), view.U8(entry + 1));
        if ((told.width() && told.width() != picture.width()) ||
            (told.height() && told.height() != picture.height()) || picture.width() > MaxIconSide ||
            picture.height() > MaxIconSide)
            view.Broken(u"第 %1 个图像的大小不对"_s.arg(i + 1));
        pixels += qint64(picture.width()) * picture.height();
        entries.append({picture, isPng ? 32 : view.U16(at + 14)});
    }
    CheckImageSize(pixels, 1);
    return entries;
}

QImage DecodeImage(const QByteArray &bytes, const char *format)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull())
        throw EInvalidGraphic(u"%1 图片的数据已损坏，不能解码"_s.arg(QString::fromLatin1(format).toUpper()));
    // A picture's pixels are the screen's, whatever density its file tells.
    image.setDevicePixelRatio(1);
    return image;
}

QList<QImage> DecodeIcon(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "ico");
    reader.setAutoDetectImageFormat(false);
    QList<QImage> images;
    for (int i = 0, count = reader.imageCount(); i < count; ++i) {
        QImage image;
        if (!reader.jumpToImage(i) || !reader.read(&image))
            throw EInvalidGraphic(u"ICO 图片的第 %1 个图像不能解码"_s.arg(i + 1));
        images.append(image);
    }
    return images;
}

QByteArray EncodeImage(const QImage &image, const char *format, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    if (!writer.write(image))
        throw EInvalidGraphic(
            u"图片不能写成 %1：%2"_s.arg(QString::fromLatin1(format).toUpper(), writer.errorString()));
    return bytes;
}

QByteArray EncodeBmp(const QImage &image)
{
    if (!image.hasAlphaChannel())
        return EncodeImage(image, "bmp");
    const auto width = quint32(image.width());
    const auto height = quint32(image.height());
    const quint32 start = FileHeaderSize + AlphaHeaderSize;
    const QByteArray pixels = PixelsOf(image);
    const auto size = quint32(pixels.size());
    QByteArray header = "BM" + Numbers({{start + size, 4},
                                        {0, 4},
                                        {start, 4},
                                        {AlphaHeaderSize, 4},
                                        {width, 4},
                                        {height, 4},
                                        {1, 2},
                                        {32, 2},
                                        {3, 4},
                                        {size, 4},
                                        {0, 4},
                                        {0, 4},
                                        {0, 4},
                                        {0, 4},
                                        {0x00FF0000, 4},
                                        {0x0000FF00, 4},
                                        {0x000000FF, 4},
                                        {0xFF000000, 4},
                                        {0x73524742, 4}}); // masks; "sRGB"
    header.resize(start, '\0');
    return header + pixels;
}

QByteArray EncodeIcon(const QList<QImage> &images)
{
    if (images.isEmpty() || images.size() > MaxIcons)
        throw EInvalidGraphic(u"图标不能有 %1 个图像"_s.arg(images.size()));
    QByteArray directory = Numbers({{0, 2}, {1, 2}, {quint32(images.size()), 2}});
    QByteArray pictures;
    const qsizetype start = IconHeaderSize + images.size() * IconEntrySize;
    for (const QImage &image : images) {
        const int width = image.width();
        const int height = image.height();
        if (image.isNull() || width > IconSide || height > IconSide)
            throw EInvalidGraphic(u"图标的图像不能是 %1×%2 像素"_s.arg(width).arg(height));
        const bool isLarge = width == IconSide || height == IconSide;
        const QByteArray picture = isLarge ? EncodeImage(image, "png") : IconBitmap(image);
        directory += Numbers({{quint32(width % IconSide), 1},
                              {quint32(height % IconSide), 1},
                              {0, 2},
                              {1, 2},
                              {32, 2},
                              {quint32(picture.size()), 4},
                              {quint32(start + pictures.size()), 4}});
        pictures += picture;
    }
    return directory + pictures;
}

void DrawImage(QPainter &painter, const QRect &rect, const QImage &image)
{
    if (image.isNull() || rect.isEmpty())
        return;
    const bool wasSmooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // The painter's own filter takes four pixels for one, which tears pictures that get much smaller.
    const QTransform transform = painter.deviceTransform();
    const QSize target = transform.mapRect(QRectF(rect)).size().toSize();
    const bool shrinks = target.width() < image.width() && target.height() < image.height();
    if (shrinks && transform.type() <= QTransform::TxScale && !target.isEmpty())
        painter.drawImage(rect, image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    else
        painter.drawImage(rect, image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, wasSmooth);
}

} // namespace Korvane
