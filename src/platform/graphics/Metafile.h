// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/Graphic.h"

namespace Korvane {

/// A placeable metafile (WMF): a list of drawing commands. It is kept and saved unchanged, and its size
/// is known. The commands are not carried out: it draws a frame of its size that says what is there.
///
/// The form is that of Microsoft's open specification [MS-WMF]: META_PLACEABLE (2.3.2.3) with a key, a
/// rectangle in units, the units per inch and a checksum, the exclusive or of the ten words before it;
/// then META_HEADER (2.3.2.2).
class TMetafile : public TGraphic
{
public:
    /// At 96 dots per inch.
    QSize Size() const override { return FSize; }
    bool HasTransparency() const override { return true; }
    void Draw(QPainter &painter, const QRect &rect) const override;
    std::unique_ptr<TGraphic> Clone() const override { return std::make_unique<TMetafile>(*this); }

protected:
    void Read(const QByteArray &bytes) override;
    QByteArray Write() const override { return FBytes; }

private:
    QByteArray FBytes;
    QSize FSize{0, 0};
};

} // namespace Korvane
