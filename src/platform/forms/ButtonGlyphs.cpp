// SPDX-License-Identifier: MIT
#include "platform/forms/ButtonGlyphs.h"

#include "platform/core/Exceptions.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>

/// Outside of the namespace, as the macro wants it. A static library's resources are not there by themselves.
static void InitGlyphs() { Q_INIT_RESOURCE(KorvaneGlyphs); }

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

/// Twice as fine for screens that are.
QImage LoadGlyph(const QString &name)
{
    InitGlyphs();
    const QString file = u":/Korvane/%1%2.png"_s;
    const bool isFine = qGuiApp != nullptr && qGuiApp->devicePixelRatio() > 1;
    QImage image;
    if (name.isEmpty() || !image.load(file.arg(name, isFine ? u"@2x"_s : QString())))
        throw Exception(u"找不到图片资源“%1”"_s.arg(name));
    return image;
}

} // namespace

TBitmap *GetBtnEdtGlyph(TButtonKind kind)
{
    if (kind < bkCustom || kind > bkSearch)
        throw EListError(u"没有这种按钮：%1"_s.arg(int(kind)));
    std::unique_ptr<TBitmap> &glyph = BtnEdtGlyphs[kind];
    if (!glyph) {
        glyph = std::make_unique<TBitmap>();
        glyph->SetImage(LoadGlyph(BtnEdtResNames[kind]));
    }
    return glyph.get();
}

} // namespace Korvane
