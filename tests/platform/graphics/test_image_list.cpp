// SPDX-License-Identifier: MIT
#include "platform/graphics/Bitmap.h"
#include "platform/graphics/Icon.h"
#include "platform/graphics/ImageList.h"
#include "platform/graphics/Metafile.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <QSignalSpy>

namespace Korvane {

namespace {

QImage Filled(int side, QColor color)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

QImage Drawn(qreal ratio, const std::function<void(QPainter &)> &draw)
{
    QImage canvas(QSize(40, 40) * ratio, QImage::Format_RGB32);
    canvas.setDevicePixelRatio(ratio);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    draw(painter);
    return canvas;
}

} // namespace

TEST(ImageList, PicturesHaveNumbers)
{
    TImageList list;
    QSignalSpy changed(&list, &TImageList::Changed);
    int events = 0;
    list.OnChange = [&] { ++events; };
    EXPECT_EQ(list.Add(QPixmap::fromImage(Filled(16, Qt::red))), 0);
    EXPECT_EQ(list.Add(TBitmap(Filled(16, Qt::green))), 1);
    EXPECT_EQ(list.Add(TIcon({Filled(16, Qt::blue), Filled(32, Qt::black)})), 2);
    EXPECT_THROW(list.Add(TMetafile()), EInvalidGraphic);
    EXPECT_THROW(list.Add(TIcon()), EInvalidGraphic);
    list.Delete(0);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Icon(1).availableSizes().size(), 2);
    EXPECT_TRUE(list.Icon(2).isNull());
    EXPECT_TRUE(list.Icon(-1).isNull());
    EXPECT_THROW(list.Delete(2), EListError);
    EXPECT_THROW(list.Replace(-1, {}), EListError);
    list.SetWidth(16);
    EXPECT_EQ(changed.count(), 4);
    list.SetHeight(20);
    list.Clear();
    list.Clear();
    EXPECT_EQ(changed.count(), 6);
    EXPECT_EQ(events, 6);
    EXPECT_THROW(list.SetWidth(0), Exception);
}

TEST(ImageList, DrawsInItsSizeWithThePixelsOfTheScreen)
{
    TImageList list;
    list.Add(TIcon({Filled(16, Qt::red), Filled(32, Qt::blue)}));
    for (const qreal ratio : {1.0, 2.0}) {
        const QColor color = ratio == 1 ? Qt::red : Qt::blue;
        const QImage atPlace = Drawn(ratio, [&](QPainter &painter) { list.Draw(painter, QPoint(4, 4), 0); });
        EXPECT_EQ(atPlace.pixelColor(QPoint(4, 4) * ratio), color);
        EXPECT_EQ(atPlace.pixelColor(QPoint(20, 20) * ratio - QPoint(1, 1)), color);
        EXPECT_EQ(atPlace.pixelColor(QPoint(20, 20) * ratio), QColor(Qt::white));
        const QImage inside =
            Drawn(ratio, [&](QPainter &painter) { list.Draw(painter, QRect(0, 0, 40, 40), 0); });
        EXPECT_EQ(inside.pixelColor(QPoint(12, 12) * ratio), color);
        EXPECT_EQ(inside.pixelColor(QPoint(11, 11) * ratio), QColor(Qt::white));
    }
    const QImage grey = Drawn(1, [&](QPainter &painter) { list.Draw(painter, QPoint(0, 0), 0, false); });
    EXPECT_NE(grey.pixelColor(8, 8), QColor(Qt::red));
    EXPECT_NE(grey.pixelColor(8, 8), QColor(Qt::white));
    const QImage nothing = Drawn(1, [&](QPainter &painter) { list.Draw(painter, QPoint(0, 0), 7); });
    EXPECT_EQ(nothing, Drawn(1, [](QPainter &) {}));
}

} // namespace Korvane
