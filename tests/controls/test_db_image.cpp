// SPDX-License-Identifier: MIT
#include "controls/ExStdCtrls.h"

#include "platform/data/dataset/Fields.h"
#include "platform/graphics/GraphicFormats.h"
#include "platform/graphics/JPEGImage.h"
#include "support/DataSets.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

namespace Korvane {

namespace {

using namespace Qt::StringLiterals;

QImage Filled(int width, int height, QColor color)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

/// A bitmap's file.
QByteArray Bmp(QColor color, int side = 8) { return TBitmap(Filled(side, side, color)).ToBytes(); }

QByteArray Sample(const QString &name)
{
    QFile file(QStringLiteral(KORVANE_EXAMPLES_DIR "/seed/pictures/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

/// A control on the field PIC of a dataset whose rows have these pictures.
class TRows
{
public:
    explicit TRows(const QVariantList &pictures) : Control(&Form)
    {
        QList<QVariantList> rows;
        for (const QVariant &picture : pictures)
            rows.append({QString::number(rows.size() + 1), picture});
        Set = DataSetOf({{"CODE", ftString, 10}, {"PIC", ftBlob}}, rows);
        Control.SetName(u"Image1"_s);
        Control.SetDataField(u"PIC"_s);
        Control.SetDataSource(&Source);
        Source.SetDataSet(Set.get());
    }

    /// Kind and size of the picture.
    QString Shown() const
    {
        const TGraphic *graphic = Control.Picture().Graphic();
        if (!graphic)
            return u"none"_s;
        const char *kind = dynamic_cast<const TBitmap *>(graphic)      ? "bitmap"
                           : dynamic_cast<const TIcon *>(graphic)      ? "icon"
                           : dynamic_cast<const TMetafile *>(graphic)  ? "metafile"
                           : dynamic_cast<const TJPEGImage *>(graphic) ? "jpeg"
                                                                       : "other";
        return u"%1 %2x%3"_s.arg(QLatin1StringView(kind)).arg(graphic->Width()).arg(graphic->Height());
    }
    QByteArray Bytes() const { return Set->FieldByName(u"PIC"_s)->AsBytes(); }
    bool IsNull() const { return Set->FieldByName(u"PIC"_s)->IsNull(); }
    QImage Grab() { return Control.grab().toImage(); }
    QColor Middle() { return Grab().pixelColor(Control.rect().center()); }

    QWidget Form;
    std::unique_ptr<TClientDataSet> Set;
    TDataSource Source;
    TExDBImage Control;
};

void Copy(const QImage &image) { QGuiApplication::clipboard()->setImage(image); }

/// Whether anything in the colour of text stands there.
bool HasText(const QImage &image, const QRect &rect)
{
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            if (image.pixelColor(x, y).lightness() < 100)
                return true;
    return false;
}

/// A picture of an application that cannot be saved.
class TUnsavable : public TBitmap
{
public:
    using TBitmap::TBitmap;

protected:
    QByteArray Write() const override { throw std::runtime_error("no"); }
};

/// A picture that cannot be drawn.
class TUndrawable : public TBitmap
{
public:
    TUndrawable() : TBitmap(Filled(8, 8, Qt::red)) {}
    void Draw(QPainter &, const QRect &) const override { throw Exception(u"no"_s); }
};

} // namespace

TEST(ExDBImage, TheFirstTwoBytesTellTheFormat)
{
    const QByteArray bmp = Sample(u"010101-004.bmp"_s);
    const QByteArray jpg = Sample(u"010203-002.jpg"_s);
    const struct
    {
        QVariant Blob;
        QString Shown, AskedFor; // what the handler finds in the stream; "-" when it is not asked
    } rows[] = {
        {bmp, u"bitmap 24x24"_s, u"-"_s},
        {jpg, u"jpeg 64x64"_s, u"-"_s},
        {Sample(u"010102-009.ico"_s), u"icon 16x16"_s, u"-"_s},
        {Sample(u"020102-001.wmf"_s), u"metafile 200x120"_s, u"-"_s},
        {Sample(u"020302-006.bin"_s), u"bitmap 24x24"_s, u"-"_s},
        {WriteWithHeader(TBitmap(Filled(5, 6, Qt::red))), u"bitmap 5x6"_s, u"-"_s},
        {QVariant(), u"none"_s, u"-"_s},
        {QByteArray("\x89PNG!"), u"none"_s, u"89504e4721"_s},
        {QByteArray("BM"), u"none"_s, u"424d"_s},
        {jpg.left(6), u"none"_s, u"ffd8ffe00010"_s},
        {bmp.left(6), u"none"_s, u"424df6060000"_s},
        {QByteArray::fromHex("000001000000"), u"none"_s, u"000001000000"_s},
        {QByteArray::fromHex("010000020000"), u"none"_s, u"-"_s},
    };
    for (const auto &row : rows) {
        QString asked = u"-"_s;
        const auto look = [&](std::unique_ptr<TGraphic> &graphic, QIODevice &stream) {
            EXPECT_EQ(graphic, nullptr);
            asked = QString::fromLatin1(stream.readAll().toHex());
        };
        TRows image({row.Blob});
        EXPECT_EQ(image.Shown(), row.Shown);
        image.Control.OnLoadCustomImage = look;
        image.Control.DataChange();
        EXPECT_EQ(image.Shown(), row.Shown);
        EXPECT_EQ(asked, row.AskedFor);
        // What could not be read is still there after an edit of the row.
        image.Set->Edit();
        image.Set->FieldByName(u"CODE"_s)->SetAsString(u"X"_s);
        image.Set->Post();
        EXPECT_EQ(image.Bytes(), row.Blob.toByteArray());
    }
}

TEST(ExDBImage, TheApplicationReadsWhatTheControlCannot)
{
    TRows image({QByteArray("red"), QByteArray("fail"), QByteArray("BM")});
    image.Control.OnLoadCustomImage = [](std::unique_ptr<TGraphic> &graphic, QIODevice &stream) {
        graphic = std::make_unique<TBitmap>(Filled(7, 7, Qt::red));
        if (stream.readAll() == "fail")
            throw std::runtime_error("no");
    };
    image.Control.DataChange();
    EXPECT_EQ(image.Shown(), u"bitmap 7x7");
    image.Set->Next();
    EXPECT_EQ(image.Shown(), u"none");
    image.Set->Next();
    EXPECT_EQ(image.Shown(), u"bitmap 7x7") << "two bytes have no magic number";
}

TEST(ExDBImage, WithoutAutoDisplayItWaitsForEnterOrADoubleClick)
{
    TRows image({Bmp(Qt::red, 100), Bmp(Qt::blue, 100)});
    image.Control.SetAutoDisplay(false);
    image.Set->Next();
    EXPECT_EQ(image.Shown(), u"none");
    EXPECT_TRUE(HasText(image.Grab(), image.Control.rect().adjusted(5, 40, -5, -40)));
    QTemporaryDir folder;
    const QString file = folder.filePath(u"p.bmp"_s);
    image.Control.SaveToFile(file);
    EXPECT_FALSE(QFile::exists(file)) << "nothing is loaded yet";
    QTest::keyClick(&image.Control, Qt::Key_Return);
    EXPECT_EQ(image.Middle(), QColor(Qt::blue));
    image.Control.SaveToFile(file);
    EXPECT_TRUE(QFile::exists(file));
    image.Set->Prior();
    EXPECT_EQ(image.Shown(), u"none");
    QTest::mouseDClick(&image.Control, Qt::LeftButton);
    EXPECT_EQ(image.Middle(), QColor(Qt::red));
    // Pictures that were never shown stay in their rows.
    image.Set->Next();
    image.Set->Edit();
    image.Set->FieldByName(u"CODE"_s)->SetAsString(u"X"_s);
    image.Set->Post();
    EXPECT_EQ(image.Bytes(), Bmp(Qt::blue, 100));
    image.Control.SetAutoDisplay(true);
    EXPECT_EQ(image.Middle(), QColor(Qt::blue));
}

TEST(ExDBImage, EditCommandsAndTheirKeys)
{
    using TRow = TRows;
    const struct
    {
        const char *What;
        std::function<void(TRow &)> Act;
        QString Shown, Stored; // Stored after Post
    } rows[] = {
        {"copy", [](TRow &r) { QTest::keyClick(&r.Control, Qt::Key_C, Qt::ControlModifier); }, u"red"_s,
         u"red"_s},
        {"copy by Insert", [](TRow &r) { QTest::keyClick(&r.Control, Qt::Key_Insert, Qt::ControlModifier); },
         u"red"_s, u"red"_s},
        {"paste", [](TRow &r) { QTest::keyClick(&r.Control, Qt::Key_V, Qt::ControlModifier); }, u"green"_s,
         u"green"_s},
        {"paste by Insert", [](TRow &r) { QTest::keyClick(&r.Control, Qt::Key_Insert, Qt::ShiftModifier); },
         u"green"_s, u"green"_s},
        {"paste twice, written between",
         [](TRow &r) {
             r.Control.PasteFromClipboard();
             r.Set->UpdateRecord();
             Copy(Filled(8, 8, Qt::blue));
             r.Control.PasteFromClipboard();
         },
         u"blue"_s, u"blue"_s},
        {"cut", [](TRow &r) { QTest::keyClick(&r.Control, Qt::Key_X, Qt::ControlModifier); }, u"none"_s,
         u"NULL"_s},
        {"cut by Delete", [](TRow &r) { QTest::keyClick(&r.Control, Qt::Key_Delete, Qt::ShiftModifier); },
         u"none"_s, u"NULL"_s},
        {"clear", [](TRow &r) { QTest::keyClick(&r.Control, Qt::Key_Delete, Qt::ControlModifier); },
         u"none"_s, u"NULL"_s},
        {"plain Delete", [](TRow &r) { QTest::keyClick(&r.Control, Qt::Key_Delete); }, u"red"_s, u"red"_s},
        {"undo",
         [](TRow &r) {
             r.Control.PasteFromClipboard();
             QTest::keyClick(&r.Control, Qt::Key_Z, Qt::ControlModifier);
         },
         u"red"_s, u"red"_s},
        {"undo by Esc",
         [](TRow &r) {
             r.Control.ExecuteAction(TExDBImage::ecClear);
             QTest::keyClick(&r.Control, Qt::Key_Escape);
         },
         u"red"_s, u"red"_s},
        {"paste, read only",
         [](TRow &r) {
             r.Control.SetReadOnly(true);
             QTest::keyClick(&r.Control, Qt::Key_V, Qt::ControlModifier);
             EXPECT_FALSE(r.Control.UpdateAction(TExDBImage::ecPaste));
         },
         u"red"_s, u"red"_s},
        {"cut, no edit by controls",
         [](TRow &r) {
             r.Source.SetAutoEdit(false);
             r.Control.CutToClipboard();
         },
         u"red"_s, u"red"_s},
        {"cut, not displayed",
         [](TRow &r) {
             r.Control.SetAutoDisplay(false);
             r.Control.DataChange();
             r.Control.CutToClipboard();
             EXPECT_EQ(QGuiApplication::clipboard()->image().pixelColor(0, 0), QColor(Qt::red));
         },
         u"none"_s, u"NULL"_s},
        {"a picture that cannot be stored",
         [](TRow &r) {
             r.Set->Edit();
             r.Control.Picture().SetGraphic(std::make_unique<TUnsavable>(Filled(8, 8, Qt::blue)));
         },
         u"blue"_s, u"NULL"_s},
    };
    const auto nameOf = [](const QImage &image) {
        const QColor color = image.isNull() ? QColor() : image.pixelColor(0, 0);
        return !color.isValid()             ? u"none"_s
               : color == QColor(Qt::red)   ? u"red"_s
               : color == QColor(Qt::blue)  ? u"blue"_s
               : color == QColor(Qt::green) ? u"green"_s
                                            : color.name();
    };
    for (const auto &row : rows) {
        TRows image({Bmp(Qt::red)});
        Copy(Filled(8, 8, Qt::green));
        row.Act(image);
        const TGraphic *graphic = image.Control.Picture().Graphic();
        EXPECT_EQ(nameOf(graphic ? graphic->ToImage() : QImage()), row.Shown) << row.What;
        image.Set->CheckBrowseMode();
        const QImage stored = image.IsNull() ? QImage() : ReadGraphic(image.Bytes())->ToImage();
        EXPECT_EQ(stored.isNull() ? u"NULL"_s : nameOf(stored), row.Stored) << row.What;
    }
}

TEST(ExDBImage, OtherFormsGoThroughTheClipboardToo)
{
    TRows image({Sample(u"020102-001.wmf"_s), QVariant(), Sample(u"010102-009.ico"_s)});
    QGuiApplication::clipboard()->clear();
    EXPECT_FALSE(image.Control.ExecuteAction(TExDBImage::ecPaste));
    EXPECT_TRUE(image.Control.ExecuteAction(TExDBImage::ecCopy));
    EXPECT_EQ(image.Set->State(), dsBrowse);
    image.Set->Next();
    EXPECT_FALSE(image.Control.ExecuteAction(TExDBImage::ecCopy));
    EXPECT_TRUE(image.Control.ExecuteAction(TExDBImage::ecPaste));
    image.Set->Post();
    EXPECT_EQ(image.Bytes(), Sample(u"020102-001.wmf"_s));
    auto *damaged = new QMimeData;
    damaged->setData(u"image/x-wmf"_s, "damaged");
    QGuiApplication::clipboard()->setMimeData(damaged);
    EXPECT_EQ(RaisedBy([&] { image.Control.PasteFromClipboard(); }), u"Exception: 剪贴板中的图片不能识别");
    EXPECT_EQ(image.Set->State(), dsBrowse);
}

TEST(ExDBImage, FilesPassAsTheyAre)
{
    QTemporaryDir folder;
    const QString source = folder.filePath(u"in"_s), target = folder.filePath(u"out"_s);
    const auto write = [&](const QByteArray &bytes) {
        QFile file(source);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    for (const bool display : {true, false})
        for (const QByteArray &bytes :
             {Sample(u"020302-006.bin"_s), QByteArray("no picture"), Bmp(Qt::red, 100)}) {
            write(bytes);
            TRows image({Bmp(Qt::blue)});
            image.Control.SetAutoDisplay(display);
            image.Control.LoadFromFile(source);
            EXPECT_EQ(image.Set->State(), dsEdit);
            if (bytes == Bmp(Qt::red, 100)) {
                EXPECT_EQ(image.Middle(), QColor(Qt::red));
            }
            image.Set->Post();
            EXPECT_EQ(image.Bytes(), bytes);
            image.Control.LoadPicture();
            image.Control.SaveToFile(target);
            QFile saved(target);
            ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
            EXPECT_EQ(saved.readAll(), bytes);
        }
    TRows image({Bmp(Qt::blue)});
    image.Control.SetReadOnly(true);
    EXPECT_EQ(RaisedBy([&] { image.Control.LoadFromFile(source); }),
              u"EDatabaseError: 字段“PIC”现在不能修改");
    image.Control.SetReadOnly(false);
    EXPECT_THROW(image.Control.LoadFromFile(folder.filePath(u"none"_s)), EFileError);
    EXPECT_EQ(image.Bytes(), Bmp(Qt::blue));
}

TEST(ExDBImage, StandsWhereCenterAndStretchTell)
{
    const struct
    {
        bool Center, Stretch;
        int Side;
        QColor Corner, Middle;
    } rows[] = {
        {true, false, 20, Qt::white, Qt::red}, {false, false, 20, Qt::red, Qt::white},
        {true, true, 20, Qt::red, Qt::red},    {false, false, 300, Qt::red, Qt::red},
        {true, false, 300, Qt::red, Qt::red},
    };
    for (const auto &row : rows) {
        TRows image({Bmp(Qt::red, row.Side)});
        image.Control.SetColor(clWhite);
        image.Control.SetBorderStyle(bsNone);
        image.Control.SetCenter(row.Center);
        image.Control.SetStretch(row.Stretch);
        const QImage grabbed = image.Grab();
        EXPECT_EQ(grabbed.pixelColor(2, 2), row.Corner) << row.Center << row.Stretch << row.Side;
        EXPECT_EQ(grabbed.pixelColor(52, 52), row.Middle) << row.Center << row.Stretch << row.Side;
        // A copy in a cell looks as the control does.
        QImage cell(grabbed.size(), QImage::Format_RGB32);
        QPainter painter(&cell);
        image.Control.PaintCopy(painter, cell.rect(), *image.Control.Field());
        painter.end();
        EXPECT_EQ(cell, grabbed.convertToFormat(QImage::Format_RGB32));
    }
    TRows image({QVariant()});
    image.Control.SetColor(clYellow);
    image.Control.SetStretch(true);
    EXPECT_EQ(image.Middle(), QColor(Qt::yellow)) << "an empty picture leaves the fill";
}

TEST(ExDBImage, CopiesArePaintedRowByRowAndReadOnce)
{
    TRows image(
        {Bmp(Qt::red, 100), QByteArray("custom"), QByteArray("fail"), QVariant(), Bmp(Qt::blue, 100)});
    image.Control.SetColor(clWhite);
    image.Control.DataChange();
    int reads = 0;
    image.Control.OnLoadCustomImage = [&](std::unique_ptr<TGraphic> &graphic, QIODevice &stream) {
        ++reads;
        if (stream.readAll() == "fail")
            throw std::runtime_error("no");
        graphic = std::make_unique<TBitmap>(Filled(100, 100, Qt::green));
    };
    const auto paintAll = [&](qreal ratio) {
        QStringList colors;
        for (image.Set->First(); !image.Set->Eof(); image.Set->Next()) {
            QImage cell(QSize(40, 30) * ratio, QImage::Format_RGB32);
            cell.setDevicePixelRatio(ratio);
            cell.fill(Qt::black);
            QPainter painter(&cell);
            image.Control.PaintCopy(painter, QRect(10, 5, 20, 20), *image.Control.Field());
            painter.end();
            EXPECT_EQ(cell.pixelColor(QPoint(9, 15) * ratio), QColor(Qt::black));
            EXPECT_EQ(cell.pixelColor(QPoint(30, 15) * ratio), QColor(Qt::black));
            colors += cell.pixelColor(QPoint(20, 15) * ratio).name();
        }
        return colors.join(' ');
    };
    const QString expected = u"#ff0000 #00ff00 #ffffff #ffffff #0000ff"_s;
    image.Control.SetAutoDisplay(false);
    EXPECT_EQ(paintAll(1), expected);
    EXPECT_EQ(reads, 2);
    EXPECT_EQ(paintAll(1), expected);
    EXPECT_EQ(reads, 2);
    EXPECT_EQ(paintAll(2), expected);
    EXPECT_EQ(reads, 4);
    image.Control.SetStretch(true);
    EXPECT_EQ(paintAll(2), expected);
    EXPECT_EQ(reads, 6);
    image.Control.OnLoadCustomImage = nullptr;
    EXPECT_EQ(paintAll(2), u"#ff0000 #ffffff #ffffff #ffffff #0000ff");
}

TEST(ExDBImage, NothingThatFailsLeavesAPaint)
{
    TRows image({QByteArray("x")});
    image.Control.SetColor(clWhite);
    image.Control.OnLoadCustomImage = [](std::unique_ptr<TGraphic> &graphic, QIODevice &) {
        graphic = std::make_unique<TUndrawable>();
    };
    image.Control.DataChange();
    EXPECT_EQ(image.Shown(), u"bitmap 8x8");
    EXPECT_EQ(image.Middle(), QColor(Qt::white));
    QImage cell(20, 20, QImage::Format_RGB32);
    QPainter painter(&cell);
    image.Control.PaintCopy(painter, cell.rect(), *image.Control.Field());
    EXPECT_EQ(cell.pixelColor(10, 10), QColor(Qt::white));
}

TEST(ExDBImage, ShowsItsNameUntilItIsBound)
{
    TExDBImage control;
    EXPECT_EQ(control.size(), QSize(105, 105));
    control.SetName(u"Image1"_s);
    EXPECT_TRUE(HasText(control.grab().toImage(), control.rect().adjusted(15, 30, -15, -30)));
    control.PasteFromClipboard();
    control.CutToClipboard();
    control.LoadFromFile(u"nowhere"_s);
    EXPECT_FALSE(control.UpdateAction(TExDBImage::ecPaste));
    control.Picture().SetGraphic(std::make_unique<TBitmap>(Filled(100, 100, Qt::red)));
    EXPECT_EQ(control.grab().toImage().pixelColor(50, 50), QColor(Qt::red));

    TRows image({Bmp(Qt::red)});
    EXPECT_EQ(image.Control.accessibleName(), u"PIC");
    image.Control.Field()->SetDisplayLabel(u"图片"_s);
    EXPECT_EQ(image.Control.accessibleName(), u"图片");
    image.Control.SetDataField(u"CODE"_s);
    EXPECT_EQ(image.Shown(), u"none") << "no blob";
    EXPECT_EQ(image.Control.accessibleName(), u"CODE");
    image.Control.setAccessibleName(u"照片"_s);
    image.Control.SetDataField(u"PIC"_s);
    EXPECT_EQ(image.Control.accessibleName(), u"照片");
}

TEST(ExDBImage, LeavingItWritesThePicture)
{
    TRows image({Bmp(Qt::red)});
    QLineEdit next(&image.Form);
    image.Form.show();
    image.Form.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&image.Form));
    const QPoint corner = image.Control.contentsRect().topLeft();
    next.setFocus();
    const QColor plain = image.Grab().pixelColor(corner);
    QTest::mouseClick(&image.Control, Qt::RightButton);
    EXPECT_TRUE(next.hasFocus());
    QTest::mouseClick(&image.Control, Qt::LeftButton);
    EXPECT_TRUE(image.Control.hasFocus());
    EXPECT_NE(image.Grab().pixelColor(corner), plain) << "a frame";
    Copy(Filled(8, 8, Qt::blue));
    image.Control.PasteFromClipboard();
    EXPECT_EQ(image.Bytes(), Bmp(Qt::red));
    next.setFocus();
    EXPECT_EQ(ReadGraphic(image.Bytes())->ToImage().pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_EQ(image.Set->State(), dsEdit);
    // A field that takes neither the picture nor none keeps the keyboard here.
    image.Control.setFocus();
    image.Control.PasteFromClipboard();
    image.Control.Field()->OnValidate = [](TField *) { throw EDatabaseError(u"不行"_s); };
    EXPECT_EQ(RaisedBy([&] { next.setFocus(); }), u"EDatabaseError: 不行");
    EXPECT_TRUE(image.Control.hasFocus());
    image.Control.Field()->OnValidate = nullptr;
    image.Control.SetTabStop(false);
    next.setFocus();
    QTest::mouseClick(&image.Control, Qt::LeftButton);
    EXPECT_TRUE(next.hasFocus());
}

/// Control, source and dataset, in the order of the letters.
TEST(ExDBImage, EachMayDieFirst)
{
    for (const QString &order : {u"CSD"_s, u"CDS"_s, u"SCD"_s, u"SDC"_s, u"DCS"_s, u"DSC"_s}) {
        auto set = DataSetOf({{"PIC", ftBlob}}, {{Bmp(Qt::red, 100)}});
        auto source = std::make_unique<TDataSource>();
        auto control = std::make_unique<TExDBImage>();
        source->SetDataSet(set.get());
        control->SetDataField(u"PIC"_s);
        control->SetDataSource(source.get());
        Copy(Filled(8, 8, Qt::blue));
        control->PasteFromClipboard();
        for (const QChar what : order) {
            if (what == u'C')
                control.reset();
            else if (what == u'S')
                source.reset();
            else
                set.reset();
            if (control) {
                control->grab();
                control->PasteFromClipboard();
                EXPECT_EQ(control->Field(), nullptr);
                EXPECT_EQ(control->Picture().Graphic(), nullptr);
            }
        }
    }
}

} // namespace Korvane
