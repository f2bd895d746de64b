// SPDX-License-Identifier: MIT
#include "platform/graphics/Bitmap.h"
#include "platform/graphics/Color.h"
#include "platform/graphics/GraphicFormats.h"
#include "platform/graphics/Icon.h"
#include "platform/graphics/ImageFiles.h"
#include "platform/graphics/JPEGImage.h"
#include "platform/graphics/Metafile.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QPainter>
#include <QPalette>

#include <typeinfo>

namespace Korvane {

namespace {

using namespace Qt::StringLiterals;

QByteArray Sample(const QString &name)
{
    QFile file(QStringLiteral(KORVANE_EXAMPLES_DIR "/seed/pictures/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

/// Half red, half blue.
QImage TwoColors(int width, int height, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(width / 2, 0, width, height, Qt::blue);
    return image.convertToFormat(format);
}

QString KindOf(const TGraphic *graphic)
{
    if (dynamic_cast<const TBitmap *>(graphic))
        return u"bitmap"_s;
    if (dynamic_cast<const TIcon *>(graphic))
        return u"icon"_s;
    if (dynamic_cast<const TMetafile *>(graphic))
        return u"metafile"_s;
    return dynamic_cast<const TJPEGImage *>(graphic) ? u"jpeg"_s : u"none"_s;
}

/// Kind and size of what is read, or the message of what is raised.
QString ReadAs(const std::function<std::unique_ptr<TGraphic>()> &read)
{
    try {
        const auto graphic = read();
        return u"%1 %2x%3"_s.arg(KindOf(graphic.get())).arg(graphic->Width()).arg(graphic->Height());
    } catch (const EInvalidGraphic &failure) {
        return failure.Message();
    }
}

QString ReadAs(const QByteArray &bytes)
{
    return ReadAs([&] { return ReadGraphic(bytes); });
}

template <class Graphic> QString Load(const QByteArray &bytes)
{
    return ReadAs([&] {
        auto graphic = std::make_unique<Graphic>();
        graphic->LoadFromBytes(bytes);
        return graphic;
    });
}

QByteArray Patched(QByteArray bytes, qsizetype at, const char *hex)
{
    const QByteArray patch = QByteArray::fromHex(hex);
    return bytes.replace(at, patch.size(), patch);
}

/// What decoders say of damage while it lasts.
class TQuiet
{
public:
    TQuiet() : FOuter(qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {}))
    {
    }
    ~TQuiet() { qInstallMessageHandler(FOuter); }

private:
    const QtMessageHandler FOuter;
};

class TEndless : public QIODevice
{
public:
    TEndless() { open(ReadOnly | Unbuffered); }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        memset(data, 0, size_t(size));
        return size;
    }
    qint64 writeData(const char *, qint64) override { return -1; }
};

} // namespace

TEST(Graphics, SamplesAreReadByTheirFirstBytesAndSavedUnchanged)
{
    const struct
    {
        QString Name, Read;
    } rows[] = {
        {u"010101-004.bmp"_s, u"bitmap 24x24"_s},     {u"010201-005.bmp"_s, u"bitmap 64x64"_s},
        {u"010102-009.ico"_s, u"icon 16x16"_s},       {u"010203-002.jpg"_s, u"jpeg 64x64"_s},
        {u"020102-001.wmf"_s, u"metafile 200x120"_s}, {u"020302-006.bin"_s, u"bitmap 24x24"_s},
    };
    for (const auto &row : rows) {
        const QByteArray bytes = Sample(row.Name);
        EXPECT_EQ(ReadAs(bytes), row.Read) << row.Name.toStdString();
        const auto graphic = ReadGraphic(bytes);
        QBuffer saved;
        saved.open(QIODevice::WriteOnly);
        graphic->Clone()->SaveToStream(saved);
        EXPECT_EQ(saved.data(), HasGraphicHeader(bytes) ? bytes.mid(8) : bytes) << row.Name.toStdString();
    }
}

TEST(Graphics, EachFormatRefusesTheOthers)
{
    const QByteArray bmp = Sample(u"010101-004.bmp"_s);
    const QByteArray ico = Sample(u"010102-009.ico"_s);
    const QByteArray jpg = Sample(u"010203-002.jpg"_s);
    const QByteArray wmf = Sample(u"020102-001.wmf"_s);
    for (const QByteArray &other : {ico, jpg, wmf})
        EXPECT_EQ(Load<TBitmap>(other), u"不是有效的 BMP 图片：开头不是 BM");
    for (const QByteArray &other : {bmp, ico, wmf})
        EXPECT_EQ(Load<TJPEGImage>(other), u"不是有效的 JPEG 图片：开头不是 FF D8");
    for (const QByteArray &other : {bmp, jpg, wmf})
        EXPECT_EQ(Load<TIcon>(other), u"不是有效的 ICO 图片：开头不是 00 00 01 00");
    for (const QByteArray &other : {bmp, ico, jpg})
        EXPECT_EQ(Load<TMetafile>(other), u"不是有效的 WMF 图片：开头不是 D7 CD C6 9A");
    EXPECT_EQ(ReadAs("hello"), u"图片的格式不能识别");
    EXPECT_EQ(ReadAs("BM"), u"图片的格式不能识别");
    EXPECT_EQ(ReadAs(QByteArray()), u"图片没有数据");
}

/// Every cut of every format raises, and what was there stays.
TEST(Graphics, CutOffPicturesRaise)
{
    TIcon icon({TwoColors(16, 16), TwoColors(256, 256)});
    const QByteArray files[] = {Sample(u"010101-004.bmp"_s),
                                Sample(u"010102-009.ico"_s),
                                Sample(u"010203-002.jpg"_s),
                                Sample(u"020102-001.wmf"_s),
                                Sample(u"020302-006.bin"_s),
                                EncodeImage(TwoColors(9, 9), "png"),
                                icon.ToBytes(),
                                WriteWithHeader(TBitmap(TwoColors(9, 9)))};
    for (const QByteArray &file : files) {
        EXPECT_NO_THROW(ReadGraphic(file));
        for (qsizetype size = 0; size<file.size(); size += file.size()> 4000 ? 97 : 1)
            EXPECT_THROW(ReadGraphic(file.left(size)), EInvalidGraphic)
                << file.left(4).toHex().toStdString() << " cut at " << size << " of " << file.size();
    }
    TBitmap bitmap(TwoColors(4, 4));
    EXPECT_THROW(bitmap.LoadFromBytes(files[0].left(100)), EInvalidGraphic);
    EXPECT_EQ(bitmap.Size(), QSize(4, 4));
}

TEST(Graphics, ClaimsThatTheBytesDoNotKeepRaise)
{
    const QByteArray bmp = Sample(u"010101-004.bmp"_s);
    const QByteArray ico = Sample(u"010102-009.ico"_s);
    const QByteArray jpg = Sample(u"010203-002.jpg"_s);
    const QByteArray wmf = Sample(u"020102-001.wmf"_s);
    const QByteArray bin = Sample(u"020302-006.bin"_s);
    const QByteArray png = EncodeImage(TwoColors(9, 9), "png");
    const QByteArray own = WriteWithHeader(TBitmap(TwoColors(9, 9)));
    const qsizetype frame = jpg.indexOf("\xFF\xC0");
    ASSERT_GT(frame, 0);
    const struct
    {
        QByteArray Bytes;
        QString Message;
    } rows[] = {
        {Patched(bmp, 18, "FFFFFF7F"), u"图片太大：2147483647×24 像素"_s},
        {Patched(bmp, 18, "FFFFFFFF"), u"图片的宽或高无效"_s},
        {Patched(bmp, 22, "00000080"), u"图片太大：24×2147483648 像素"_s},
        {Patched(bmp, 18, "00100000"), u"BMP 图片的数据不完整"_s},
        {Patched(bmp, 10, "FFFFFFFF"), u"BMP 图片的数据不完整"_s},
        {Patched(bmp, 10, "10000000"), u"不是有效的 BMP 图片：像素的位置是 16"_s},
        {Patched(bmp, 14, "29000000"), u"不是有效的 BMP 图片：文件头的长度是 41"_s},
        {Patched(bmp, 28, "0700"), u"不是有效的 BMP 图片：每像素 7 位"_s},
        {Patched(bmp, 30, "04000000"), u"不是有效的 BMP 图片：压缩方式是 4"_s},
        {Patched(ico, 4, "0000"), u"不是有效的 ICO 图片：有 0 个图像"_s},
        {Patched(ico, 4, "FFFF"), u"不是有效的 ICO 图片：有 65535 个图像"_s},
        {Patched(ico, 6, "40"), u"不是有效的 ICO 图片：第 1 个图像的大小不对"_s},
        {Patched(ico, 14, "FFFFFF7F"), u"ICO 图片的数据不完整"_s},
        {Patched(ico, 18, "04000000"), u"不是有效的 ICO 图片：第 1 个图像的位置不对"_s},
        {Patched(ico, 30, "FFFFFF7F"), u"图片太大：16×1073741823 像素"_s},
        {Patched(ico, 30, "40000000"), u"不是有效的 ICO 图片：图像的数据不完整"_s},
        {Patched(jpg, frame + 5, "FFFFFFFF"), u"图片太大：65535×65535 像素"_s},
        {Patched(jpg, frame + 5, "0000"), u"图片的宽或高无效"_s},
        {Patched(jpg, 2, "00"), u"不是有效的 JPEG 图片：缺少标记"_s},
        {Patched(jpg, 4, "0001"), u"不是有效的 JPEG 图片：段的长度是 1"_s},
        {QByteArray::fromHex("FFD8FFD9"), u"不是有效的 JPEG 图片：没有图像"_s},
        {Patched(png, 16, "7FFFFFFF7FFFFFFF"), u"图片太大：2147483647×2147483647 像素"_s},
        {Patched(wmf, 20, "0000"), u"不是有效的 WMF 图片：文件头的校验和不对"_s},
        {Patched(Patched(wmf, 14, "0000"), 20, "A157"),
         u"不是有效的 WMF 图片：大小是 200×120，每英寸 0 单位"_s},
        {Patched(wmf, 28, "FFFFFF7F"), u"WMF 图片的数据不完整"_s},
        {Patched(wmf, 22, "0300"), u"不是有效的 WMF 图片：记录的头不对"_s},
        {Patched(bin, 3, "03"), u"不是有效的 带文件头的 图片：文件头的版本是 3"_s},
        {Patched(bin, 2, "06"), u"图片文件头的格式 6 不能识别"_s},
        {Patched(bin, 2, "02"), u"不是有效的 ICO 图片：开头不是 00 00 01 00"_s},
        {Patched(bin, 8, "0100"), u"图片的文件头里又是一个文件头"_s},
        {Patched(bin, 4, "FFFFFFFF"), u"带文件头的 图片的数据不完整"_s},
        {bin + "x", u"不是有效的 带文件头的 图片：文件头说有 1782 字节，实际有 1783 字节"_s},
        {Patched(own, 8, "00000000"), u"不是有效的 带文件头的 图片：校验和不对"_s},
        {Patched(own, 40, "00000000"), u"不是有效的 带文件头的 图片：校验和不对"_s},
    };
    for (const auto &row : rows)
        EXPECT_EQ(ReadAs(row.Bytes), row.Message);
}

/// Damage that only a decoder can find raises too, and none of it does harm.
TEST(Graphics, ChangedBytesAreReadOrRaise)
{
    const TQuiet quiet;
    TIcon icon({TwoColors(16, 16), TwoColors(256, 256)});
    const QByteArray files[] = {Sample(u"010102-009.ico"_s),
                                Sample(u"010203-002.jpg"_s),
                                Sample(u"020102-001.wmf"_s),
                                EncodeImage(TwoColors(9, 9), "png"),
                                EncodeImage(TwoColors(9, 9, QImage::Format_Indexed8), "bmp"),
                                EncodeBmp(TwoColors(9, 9, QImage::Format_ARGB32)),
                                icon.ToBytes(),
                                WriteWithHeader(icon)};
    int raised = 0;
    for (const QByteArray &file : files)
        for (qsizetype at = 2; at < qMin<qsizetype>(file.size(), 300); ++at)
            for (const char value : {'\x00', '\x7F', '\xFF'}) {
                QByteArray changed = file;
                changed[at] = value;
                try {
                    ReadGraphic(changed);
                } catch (const EInvalidGraphic &) {
                    ++raised;
                }
            }
    EXPECT_GT(raised, 300);
    QByteArray noTables = files[1];
    noTables.replace(noTables.indexOf("\xFF\xDB"), 2, "\xFF\xFE");
    EXPECT_EQ(ReadAs(noTables), u"JPEG 图片的数据已损坏，不能解码");
}

/// Run lengths: "4 of colour 1", "2 plain pixels", a line's end, the end of all.
TEST(Graphics, PackedBitmapsAreReadUpToTheirEnd)
{
    QByteArray file = EncodeImage(TwoColors(8, 1, QImage::Format_Indexed8), "bmp");
    const qsizetype pixels = file.indexOf(file.right(8), file.size() - 8);
    file = Patched(file.left(pixels), 30, "01000000");
    const QByteArray runs = QByteArray::fromHex("0501"
                                                "000300010000"
                                                "0000"
                                                "0001");
    EXPECT_EQ(ReadAs(file + runs), u"bitmap 8x1");
    EXPECT_EQ(ReadAs(file + runs.chopped(2)), u"BMP 图片的数据不完整");
    EXPECT_EQ(ReadAs(file + QByteArray::fromHex("00FF01")), u"BMP 图片的数据不完整");
}

TEST(Graphics, ImagesThatWereSetComeBack)
{
    using QI = QImage;
    QImage translucent = TwoColors(6, 4, QI::Format_ARGB32);
    translucent.setPixel(0, 0, qRgba(1, 2, 3, 4));
    translucent.setPixel(5, 3, qRgba(0, 0, 0, 0));
    for (const QImage &image : {TwoColors(6, 4), TwoColors(5, 3, QI::Format_Indexed8), translucent}) {
        const TBitmap bitmap(image);
        for (const auto &file : {bitmap.ToBytes(), WriteWithHeader(bitmap)}) {
            const QImage read = ReadGraphic(file)->ToImage();
            EXPECT_EQ(read.convertToFormat(QI::Format_ARGB32), image.convertToFormat(QI::Format_ARGB32));
            EXPECT_EQ(read.hasAlphaChannel(), image.hasAlphaChannel());
        }
    }
    const TIcon icon({translucent, TwoColors(256, 256), TwoColors(48, 48)});
    for (const auto &file : {icon.ToBytes(), WriteWithHeader(icon)}) {
        TIcon read;
        read.LoadFromBytes(HasGraphicHeader(file) ? file.mid(12) : file);
        ASSERT_EQ(read.Images().size(), 3);
        EXPECT_EQ(read.Images()[0], translucent.convertToFormat(QI::Format_ARGB32_Premultiplied));
        EXPECT_EQ(read.Images()[1].size(), QSize(48, 48));
        EXPECT_EQ(read.Images()[2].pixelColor(255, 0), QColor(Qt::blue));
    }
    EXPECT_THROW(TIcon({TwoColors(257, 1)}), EInvalidGraphic);
    EXPECT_THROW(TBitmap().ToBytes(), EInvalidGraphic);
    QImage clear(16, 16, QI::Format_ARGB32);
    clear.fill(Qt::transparent);
    EXPECT_EQ(ReadGraphic(TJPEGImage(clear).ToBytes())->ToImage().pixelColor(8, 8), QColor(Qt::white));
}

TEST(Graphics, AnIconDrawsTheImageThatSuitsThePlace)
{
    const auto filled = [](int side, QColor color) {
        QImage image(side, side, QImage::Format_ARGB32);
        image.fill(color);
        return image;
    };
    const TIcon icon({filled(32, Qt::green), filled(16, Qt::red), filled(48, Qt::blue)});
    const struct
    {
        int Side;
        qreal Ratio;
        QColor Color;
    } rows[] = {{10, 1, Qt::red},   {16, 1, Qt::red},  {17, 1, Qt::green}, {32, 1, Qt::green},
                {16, 2, Qt::green}, {40, 1, Qt::blue}, {64, 1, Qt::blue},  {12, 4, Qt::blue}};
    for (const auto &row : rows) {
        const QPixmap drawn =
            RenderGraphic(icon, {row.Side, row.Side}, QRect(0, 0, row.Side, row.Side), row.Ratio);
        EXPECT_EQ(drawn.width(), row.Side * row.Ratio);
        EXPECT_EQ(drawn.toImage().pixelColor(drawn.width() / 2, drawn.height() / 2), row.Color)
            << row.Side << " " << row.Ratio;
    }
    EXPECT_EQ(icon.Size(), QSize(48, 48));
}

TEST(Graphics, DrawingStretchesToTheRectangleAlone)
{
    QImage canvas(12, 6, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    TBitmap(TwoColors(400, 200)).Draw(painter, QRect(2, 1, 8, 4));
    TBitmap().Draw(painter, canvas.rect());
    painter.end();
    EXPECT_EQ(canvas.pixelColor(1, 1), QColor(Qt::white));
    EXPECT_EQ(canvas.pixelColor(2, 0), QColor(Qt::white));
    EXPECT_EQ(canvas.pixelColor(2, 1), QColor(Qt::red));
    EXPECT_EQ(canvas.pixelColor(9, 4), QColor(Qt::blue));
    EXPECT_EQ(canvas.pixelColor(10, 4), QColor(Qt::white));
    EXPECT_EQ(canvas.pixelColor(9, 5), QColor(Qt::white));
}

/// A frame and words within it, and nothing beyond.
TEST(Graphics, AMetafileSaysThatItIsNotDrawn)
{
    TMetafile metafile;
    metafile.LoadFromBytes(Sample(u"020102-001.wmf"_s));
    QImage canvas(220, 140, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    metafile.Draw(painter, QRect(10, 10, 200, 120));
    painter.end();
    EXPECT_NE(canvas.pixelColor(10, 10), QColor(Qt::white));
    EXPECT_NE(canvas.pixelColor(209, 129), QColor(Qt::white));
    EXPECT_EQ(canvas.pixelColor(210, 130), QColor(Qt::white));
    int dark = 0;
    for (int y = 20; y < 120; ++y)
        for (int x = 20; x < 200; ++x)
            dark += canvas.pixelColor(x, y).lightness() < 200;
    EXPECT_GT(dark, 200);
}

/// A stream that never ends is left in time.
TEST(Graphics, StreamsAreReadToTheirEnd)
{
    TEndless endless;
    EXPECT_EQ(ReadAs([&] {
                  auto icon = std::make_unique<TIcon>();
                  icon->LoadFromStream(endless);
                  return icon;
              }),
              u"图片的数据超过 256 MB，不能读入");
    QBuffer closed;
    EXPECT_THROW(TIcon().LoadFromStream(closed), EFileError);
    QBuffer stream;
    stream.setData("head" + TBitmap(TwoColors(4, 4)).ToBytes());
    stream.open(QIODevice::ReadOnly);
    stream.seek(4);
    TBitmap bitmap;
    bitmap.LoadFromStream(stream);
    EXPECT_EQ(bitmap.Size(), QSize(4, 4));
    EXPECT_TRUE(stream.atEnd());
    EXPECT_THROW(bitmap.SaveToStream(stream), EFileError);
}

TEST(Color, FixedAndSystemColours)
{
    QPalette palette;
    palette.setColor(QPalette::Base, QColor(1, 2, 3));
    EXPECT_EQ(ToQColor(clWindow, palette), QColor(1, 2, 3));
    EXPECT_EQ(ToQColor(clMaroon, palette), QColor(128, 0, 0));
    EXPECT_EQ(ToQColor(TColor(0x00030201), palette), QColor(1, 2, 3));
    EXPECT_EQ(ToTColor(QColor(1, 2, 3)), TColor(0x00030201));
    EXPECT_FALSE(ToQColor(clNone, palette).isValid());
}

} // namespace Korvane
