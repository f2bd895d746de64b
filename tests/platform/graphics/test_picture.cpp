// SPDX-License-Identifier: MIT
#include "platform/graphics/GraphicFormats.h"
#include "platform/graphics/JPEGImage.h"
#include "platform/graphics/Picture.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QMimeData>
#include <QTemporaryDir>

namespace Korvane {

namespace {

using namespace Qt::StringLiterals;

const QString Samples = QStringLiteral(KORVANE_EXAMPLES_DIR "/seed/pictures/");

QByteArray Bytes(const QString &fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << fileName.toStdString();
    return file.readAll();
}

QImage Filled(int width, int height, QColor color)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

QImage PixelsOf(const TPicture &picture)
{
    return picture.Graphic()->ToImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

TEST(Picture, EveryChangeIsToldOnceAndCopiesAreTheirOwn)
{
    TPicture picture, other;
    int changes = 0;
    picture.OnChange = [&] { ++changes; };
    const auto changesOf = [&](auto &&act) {
        changes = 0;
        act();
        return changes;
    };
    EXPECT_EQ(changesOf([&] { picture.LoadFromFile(Samples + u"010101-004.bmp"_s); }), 1);
    EXPECT_EQ(changesOf([&] { picture.Bitmap().SetImage(Filled(3, 4, Qt::red)); }), 1);
    EXPECT_EQ(picture.Width(), 3);
    EXPECT_EQ(picture.Height(), 4);
    other.Assign(picture);
    EXPECT_EQ(changesOf([&] { other.Bitmap().SetImage({}); }), 0);
    EXPECT_EQ(picture.Width(), 3);
    EXPECT_EQ(changesOf([&] { picture.Icon(); }), 1) << "another kind takes its place";
    EXPECT_TRUE(picture.Empty());
    EXPECT_EQ(changesOf([&] { picture.Icon(); }), 0);
    EXPECT_EQ(changesOf([&] { picture.Assign(nullptr); }), 1);
    EXPECT_EQ(picture.Graphic(), nullptr);
    EXPECT_EQ(picture.Width(), 0);
}

TEST(Picture, FilesAreReadByTheirBytesAndWrittenByTheirName)
{
    QTemporaryDir folder;
    const QString saved = folder.filePath(u"p."_s);
    const struct
    {
        QString Sample, Extension, Raised;
    } rows[] = {
        {u"010101-004.bmp"_s, u"bmp"_s, {}},
        {u"010101-004.bmp"_s, u"PNG"_s, {}},
        {u"010101-004.bmp"_s, u"ico"_s, {}},
        {u"010102-009.ico"_s, u"ico"_s, {}},
        {u"010102-009.ico"_s, u"bmp"_s, {}},
        {u"010203-002.jpg"_s, u"jpeg"_s, {}},
        {u"020102-001.wmf"_s, u"wmf"_s, {}},
        {u"020102-001.wmf"_s, u"bmp"_s, u"这张图片不能转换成其他格式"_s},
        {u"010101-004.bmp"_s, u"wmf"_s, u"图片不能保存为“.wmf”文件"_s},
        {u"010101-004.bmp"_s, u"gif"_s, u"图片不能保存为“.gif”文件"_s},
    };
    for (const auto &row : rows) {
        TPicture picture, read;
        picture.LoadFromFile(Samples + row.Sample);
        QString raised;
        try {
            picture.SaveToFile(saved + row.Extension);
            read.LoadFromFile(saved + row.Extension);
            EXPECT_EQ(read.Width(), picture.Width());
            EXPECT_EQ(PixelsOf(read), PixelsOf(picture)) << row.Extension.toStdString();
            if (row.Sample.endsWith(row.Extension)) {
                EXPECT_EQ(Bytes(saved + row.Extension), Bytes(Samples + row.Sample));
            }
        } catch (const Exception &failure) {
            raised = failure.Message();
        }
        EXPECT_EQ(raised, row.Raised);
    }
    TPicture picture;
    picture.LoadFromFile(Samples + u"010101-004.bmp"_s);
    EXPECT_THROW(picture.LoadFromFile(folder.filePath(u"none"_s)), EFileError);
    EXPECT_THROW(picture.LoadFromFile(QStringLiteral(__FILE__)), EInvalidGraphic);
    EXPECT_THROW(picture.SaveToFile(u"/nowhere/at/all.bmp"_s), EFileError);
    EXPECT_EQ(picture.Width(), 24) << "failures leave the picture";
    EXPECT_THROW(TPicture().SaveToFile(saved + u"bmp"_s), EInvalidGraphic);
}

TEST(Picture, GoesThroughAClipboard)
{
    for (const char *sample : {"010101-004.bmp", "010102-009.ico", "010203-002.jpg", "020102-001.wmf"}) {
        TPicture picture, read;
        picture.LoadFromFile(Samples + QString::fromLatin1(sample));
        const auto data = picture.ToMimeData();
        EXPECT_TRUE(TPicture::HasPicture(*data));
        ASSERT_TRUE(read.LoadFromMimeData(*data)) << sample;
        EXPECT_EQ(read.Graphic()->ToImage(), picture.Graphic()->ToImage()) << sample;
        EXPECT_EQ(read.Width(), picture.Width());
        EXPECT_EQ(ReadGraphic(data->data(QString::fromLatin1(TPicture::MimeType)))->Size(),
                  picture.Graphic()->Size());
    }
    EXPECT_TRUE(TPicture().ToMimeData()->formats().isEmpty());
}

/// An image goes before a metafile, and that before bytes of other formats; damage is passed over.
TEST(Picture, TakesTheFirstOfTheClipboardsForms)
{
    const QByteArray wmf = Bytes(Samples + u"020102-001.wmf"_s);
    const QByteArray ico = Bytes(Samples + u"010102-009.ico"_s);
    TPicture picture;
    QMimeData data;
    data.setText(u"x"_s);
    EXPECT_FALSE(TPicture::HasPicture(data));
    EXPECT_FALSE(picture.LoadFromMimeData(data));
    data.setData(u"image/x-icon"_s, ico);
    EXPECT_TRUE(picture.LoadFromMimeData(data));
    EXPECT_NE(dynamic_cast<TIcon *>(picture.Graphic()), nullptr);
    data.setData(u"image/x-wmf"_s, wmf);
    EXPECT_TRUE(picture.LoadFromMimeData(data));
    EXPECT_EQ(picture.Metafile().ToBytes(), wmf);
    data.setImageData(Filled(2, 2, Qt::red));
    EXPECT_TRUE(picture.LoadFromMimeData(data));
    EXPECT_EQ(picture.Bitmap().Image().pixelColor(1, 1), QColor(Qt::red));
    QMimeData damaged;
    damaged.setData(u"image/x-wmf"_s, wmf.chopped(30));
    EXPECT_TRUE(TPicture::HasPicture(damaged));
    EXPECT_FALSE(picture.LoadFromMimeData(damaged));
    EXPECT_EQ(picture.Width(), 2);
}

} // namespace Korvane
