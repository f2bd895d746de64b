// SPDX-License-Identifier: MIT
#include "FormsTesting.h"

#include "platform/core/Exceptions.h"
#include "platform/forms/ButtonGlyphs.h"
#include "platform/forms/ScreenCapture.h"

#include <QImageReader>
#include <QTemporaryDir>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

TEST(ButtonGlyphTest, EachKindIsReadOnceAndStays)
{
    QList<QImage> seen;
    for (const TButtonKind kind : {bkLookup, bkFolder, bkFind, bkSearch}) {
        EXPECT_EQ(BtnEdtGlyphs[kind], nullptr);
        TBitmap *glyph = GetBtnEdtGlyph(kind);
        EXPECT_EQ(glyph->Size(), QSize(16, 16));
        EXPECT_TRUE(glyph->HasTransparency());
        EXPECT_FALSE(seen.contains(glyph->Image()));
        seen.append(glyph->Image());
        EXPECT_EQ(GetBtnEdtGlyph(kind), glyph);
        EXPECT_EQ(BtnEdtGlyphs[kind].get(), glyph);
    }
}

TEST(ButtonGlyphTest, AMissingOneRaisesOnceAndIsEmptyAfterwards)
{
    EXPECT_THROW(GetBtnEdtGlyph(bkCustom), Exception);
    TBitmap *glyph = GetBtnEdtGlyph(bkCustom);
    ASSERT_NE(glyph, nullptr);
    EXPECT_TRUE(glyph->Image().isNull());
}

TEST(ScreenCaptureTest, TakesTheActiveWindowAndParts)
{
    TForm form;
    form.setStyleSheet(u"background: rgb(10, 200, 30)"_s);
    form.setGeometry(40, 50, 60, 30);
    EXPECT_THROW(CaptureActiveWindow(), Exception); // none is active
    ShowActive(form);
    const QColor green(10, 200, 30);
    EXPECT_EQ(CaptureActiveWindow()->Image().size(), form.frameGeometry().size());

    const std::unique_ptr<TBitmap> part = CaptureScreenRect(QRect(30, 45, 20, 10));
    ASSERT_EQ(part->Size(), QSize(20, 10));
    EXPECT_NE(part->Image().pixelColor(9, 9), green);
    EXPECT_NE(part->Image().pixelColor(10, 4), green);
    EXPECT_EQ(part->Image().pixelColor(10, 5), green);
    EXPECT_TRUE(CaptureScreenRect(QRect())->Image().isNull());

    QTemporaryDir place;
    const QString file = place.filePath(u"窗口.picture"_s); // the name does not decide on the format
    CaptureActiveWindowA(file);
    QImageReader reader(file);
    EXPECT_EQ(reader.format(), "jpeg");
    EXPECT_EQ(reader.read().size(), form.frameGeometry().size());
    EXPECT_THROW(CaptureActiveWindowA(place.filePath(u"no/where.jpg"_s)), EFileError);
}
