// SPDX-License-Identifier: MIT
#include "platform/graphics/GraphicFormats.h"

#include "platform/graphics/Bitmap.h"
#include "platform/graphics/ByteView.h"
#include "platform/graphics/Icon.h"
#include "platform/graphics/ImageFiles.h"
#include "platform/graphics/JPEGImage.h"
#include "platform/graphics/Metafile.h"

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

/// What stands behind a header.
enum TPayload : quint8 { plByMagic, plBitmap, plIcon, plMetafile, plJPEG, plPng };

constexpr int PlainVersion = 1;   // without a checksum
constexpr int CheckedVersion = 2; // with one
constexpr int PlainSize = 8;
constexpr int CheckedSize = 12;

bool IsPng(QByteArrayView bytes) { return bytes.startsWith("\x89PNG"); }

std::unique_ptr<TGraphic> ReadPng(const QByteArray &bytes)
{
    CheckPng(bytes);
    return std::make_unique<TBitmap>(DecodeImage(bytes, "png"));
}

std::unique_ptr<TGraphic> ReadPayload(quint8 payload, const QByteArray &bytes)
{
    std::unique_ptr<TGraphic> graphic;
    switch (payload) {
    case plByMagic:
        if (HasGraphicHeader(bytes))
            throw EInvalidGraphic(u"图片的文件头里又是一个文件头"_s);
        return ReadGraphic(bytes);
    case plBitmap:
        graphic = std::make_unique<TBitmap>();
        break;
    case plIcon:
        graphic = std::make_unique<TIcon>();
        break;
    case plMetafile:
        graphic = std::make_unique<TMetafile>();
        break;
    case plJPEG:
        graphic = std::make_unique<TJPEGImage>();
        break;
    case plPng:
        return ReadPng(bytes);
    default:
        throw EInvalidGraphic(u"图片文件头的格式 %1 不能识别"_s.arg(payload));
    }
    graphic->LoadFromBytes(bytes);
    return graphic;
}

} // namespace

bool HasGraphicHeader(QByteArrayView bytes)
{
    return bytes.size() > 2 && qFromLittleEndian<quint16>(bytes.data()) == gmHeader;
}

std::unique_ptr<TGraphic> NewGraphicOf(QByteArrayView bytes)
{
    if (bytes.size() <= 2)
        return {};
    switch (qFromLittleEndian<quint16>(bytes.data())) {
    case gmIcon:
        return std::make_unique<TIcon>();
    case gmBitmap:
        return std::make_unique<TBitmap>();
    case gmMetafile:
        return std::make_unique<TMetafile>();
    case gmJPEG:
        return std::make_unique<TJPEGImage>();
    default:
        return {};
    }
}

std::unique_ptr<TGraphic> ReadGraphic(const QByteArray &bytes)
{
    if (HasGraphicHeader(bytes))
        return ReadWithHeader(bytes);
    if (IsPng(bytes))
        return ReadPng(bytes);
    auto graphic = NewGraphicOf(bytes);
    if (!graphic)
        throw EInvalidGraphic(bytes.isEmpty() ? u"图片没有数据"_s : u"图片的格式不能识别"_s);
    graphic->LoadFromBytes(bytes);
    return graphic;
}

QByteArray WriteWithHeader(const TGraphic &graphic)
{
    QByteArray file = graphic.ToBytes();
    TPayload payload;
    if (dynamic_cast<const TBitmap *>(&graphic)) {
        payload = plPng;
        file = EncodeImage(graphic.ToImage(), "png");
    } else if (dynamic_cast<const TIcon *>(&graphic)) {
        payload = plIcon;
    } else if (dynamic_cast<const TMetafile *>(&graphic)) {
        payload = plMetafile;
    } else if (dynamic_cast<const TJPEGImage *>(&graphic)) {
        payload = plJPEG;
    } else {
        throw EInvalidGraphic(u"这种格式的图片没有文件头"_s);
    }
    QByteArray header(CheckedSize, '\0');
    qToLittleEndian<quint16>(gmHeader, header.data());
    header[2] = char(payload);
    header[3] = char(CheckedVersion);
    qToLittleEndian(quint32(file.size()), header.data() + 4);
    qToLittleEndian(Checksum(file.constData(), file.size()), header.data() + 8);
    return header + file;
}

std::unique_ptr<TGraphic> ReadWithHeader(const QByteArray &bytes)
{
    const TByteView view(bytes, u"带文件头的"_s);
    if (view.U16(0) != gmHeader)
        view.Broken(u"开头不是 01 00"_s);
    const int version = view.U8(3);
    if (version != PlainVersion && version != CheckedVersion)
        view.Broken(u"文件头的版本是 %1"_s.arg(version));
    const qsizetype start = version == PlainVersion ? PlainSize : CheckedSize;
    const qint64 size = view.U32(4);
    const char *file = view.Place(start, size);
    if (size != bytes.size() - start)
        view.Broken(u"文件头说有 %1 字节，实际有 %2 字节"_s.arg(size).arg(bytes.size() - start));
    if (version == CheckedVersion && Checksum(file, size) != view.U32(8))
        view.Broken(u"校验和不对"_s);
    return ReadPayload(view.U8(2), QByteArray(file, size));
}

QString GraphicFileFilter() { return u"图片 (*.bmp *.ico *.wmf *.jpg *.jpeg *.png);;所有文件 (*)"_s; }

} // namespace Korvane
