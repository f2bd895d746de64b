// SPDX-License-Identifier: MIT
#include "platform/graphics/Picture.h"

#include "platform/graphics/GraphicFormats.h"
#include "platform/graphics/ImageFiles.h"
#include "platform/graphics/JPEGImage.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QSaveFile>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

const QStringList &MetafileTypes()
{
    static const QStringList types = {u"image/x-wmf"_s, u"image/wmf"_s};
    return types;
}

/// Bytes of pictures that others put on the clipboard.
const QStringList &PictureTypes()
{
    static const QStringList types = {QString::fromLatin1(TPicture::MimeType),
                                      u"image/png"_s,
                                      u"image/bmp"_s,
                                      u"image/jpeg"_s,
                                      u"image/x-icon"_s,
                                      u"image/vnd.microsoft.icon"_s};
    return types;
}

bool HasAny(const QMimeData &data, const QStringList &types)
{
    return std::any_of(types.begin(), types.end(), [&](const QString &type) { return data.hasFormat(type); });
}

/// The first of the types that can be read; null if none can.
template <class Read>
std::unique_ptr<TGraphic> FirstOf(const QMimeData &data, const QStringList &types, Read read)
{
    for (const QString &type : types) {
        if (!data.hasFormat(type))
            continue;
        try {
            return read(data.data(type));
        } catch (const EInvalidGraphic &) {
            // The next type may hold it.
        }
    }
    return {};
}

template <class Graphic> std::unique_ptr<TGraphic> OfImage(const TGraphic &graphic)
{
    const QImage image = graphic.ToImage();
    if (image.isNull())
        throw EInvalidGraphic(u"这张图片不能转换成其他格式"_s);
    return std::make_unique<Graphic>(image);
}

/// The bytes of a file with an extension.
QByteArray BytesFor(const TGraphic &graphic, const QString &extension)
{
    if (extension == u"bmp")
        return dynamic_cast<const TBitmap *>(&graphic) ? graphic.ToBytes()
                                                       : OfImage<TBitmap>(graphic)->ToBytes();
    if (extension == u"jpg" || extension == u"jpeg")
        return dynamic_cast<const TJPEGImage *>(&graphic) ? graphic.ToBytes()
                                                          : OfImage<TJPEGImage>(graphic)->ToBytes();
    if (extension == u"png")
        return EncodeImage(OfImage<TBitmap>(graphic)->ToImage(), "png");
    if (extension == u"ico")
        return dynamic_cast<const TIcon *>(&graphic)
                   ? graphic.ToBytes()
                   : TIcon({OfImage<TBitmap>(graphic)->ToImage()}).ToBytes();
    if (extension == u"wmf" && dynamic_cast<const TMetafile *>(&graphic))
        return graphic.ToBytes();
    throw EInvalidGraphic(u"图片不能保存为“.%1”文件"_s.arg(extension));
}

} // namespace

void TPicture::SetGraphic(std::unique_ptr<TGraphic> graphic)
{
    FGraphic = std::move(graphic);
    if (FGraphic)
        FGraphic->OnChange = [this] { OnChange(); };
    OnChange();
}

void TPicture::Assign(const TGraphic *graphic) { SetGraphic(graphic ? graphic->Clone() : nullptr); }

void TPicture::LoadFromStream(QIODevice &stream) { SetGraphic(ReadGraphic(ReadGraphicBytes(stream))); }

void TPicture::LoadFromFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw EFileError(u"打开文件“%1”失败：%2"_s.arg(fileName, file.errorString()));
    std::unique_ptr<TGraphic> graphic;
    try {
        graphic = ReadGraphic(ReadGraphicBytes(file));
    } catch (const EInvalidGraphic &failure) {
        throw EInvalidGraphic(u"文件“%1”：%2"_s.arg(fileName, failure.Message()));
    }
    SetGraphic(std::move(graphic));
}

void TPicture::SaveToFile(const QString &fileName) const
{
    if (Empty())
        throw EInvalidGraphic(u"没有图片可以保存"_s);
    const QByteArray bytes = BytesFor(*FGraphic, QFileInfo(fileName).suffix().toLower());
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        throw EFileError(u"打开文件“%1”失败：%2"_s.arg(fileName, file.errorString()));
    file.write(bytes);
    if (!file.commit())
        throw EFileError(u"写文件“%1”失败：%2"_s.arg(fileName, file.errorString()));
}

std::unique_ptr<QMimeData> TPicture::ToMimeData() const
{
    auto data = std::make_unique<QMimeData>();
    if (Empty())
        return data;
    const QImage image = FGraphic->ToImage();
    if (!image.isNull())
        data->setImageData(image);
    if (dynamic_cast<const TMetafile *>(FGraphic.get()))
        data->setData(MetafileTypes().first(), FGraphic->ToBytes());
    try {
        data->setData(QString::fromLatin1(MimeType), WriteWithHeader(*FGraphic));
    } catch (const EInvalidGraphic &) {
        // An application's own format: its image is all that others can take.
    }
    return data;
}

bool TPicture::HasPicture(const QMimeData &data)
{
    return data.hasImage() || HasAny(data, MetafileTypes()) || HasAny(data, PictureTypes());
}

bool TPicture::LoadFromMimeData(const QMimeData &data)
{
    std::unique_ptr<TGraphic> graphic;
    if (data.hasImage()) {
        const auto image = data.imageData().value<QImage>();
        if (!image.isNull())
            graphic = std::make_unique<TBitmap>(image);
    }
    if (!graphic)
        graphic = FirstOf(data, MetafileTypes(), [](const QByteArray &bytes) {
            auto metafile = std::make_unique<TMetafile>();
            metafile->LoadFromBytes(bytes);
            return metafile;
        });
    if (!graphic)
        graphic = FirstOf(data, PictureTypes(), ReadGraphic);
    if (!graphic)
        return false;
    SetGraphic(std::move(graphic));
    return true;
}

} // namespace Korvane
