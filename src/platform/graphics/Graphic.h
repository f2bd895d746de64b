// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Event.h"
#include "platform/core/Exceptions.h"

#include <QImage>
#include <QPixmap>

#include <memory>

class QIODevice;
class QPainter;
class QRect;

namespace Korvane {

/// Bytes are no picture of the format that was expected, or a picture is too large.
class EInvalidGraphic : public Exception
{
public:
    using Exception::Exception;
};

/// A picture of one format. It keeps the bytes that it was read from and saves them unchanged, so that
/// reading and saving loses nothing.
///
/// Reading is strict: bytes of another format, cut off or damaged ones, and sizes beyond
/// MaxGraphicPixels raise EInvalidGraphic, before memory is taken for the picture, and leave what was
/// there. An application's own formats are derived classes.
class TGraphic
{
public:
    virtual ~TGraphic() = default;
    TGraphic &operator=(const TGraphic &) = delete;

    /// In pixels; of formats that have other units, at 96 dots per inch. Empty without a picture.
    virtual QSize Size() const = 0;
    int Width() const { return Size().width(); }
    int Height() const { return Size().height(); }
    bool Empty() const { return Size().isEmpty(); }
    /// Whether what lies below may show through.
    virtual bool HasTransparency() const = 0;

    /// Reads from the stream's position up to its end. Raises EInvalidGraphic, EFileError.
    void LoadFromStream(QIODevice &stream);
    /// Raises EInvalidGraphic without a picture, EFileError when not all could be written.
    void SaveToStream(QIODevice &stream) const;
    void LoadFromBytes(const QByteArray &bytes);
    QByteArray ToBytes() const;

    /// Stretches the picture to the rectangle. Nothing without a picture.
    virtual void Draw(QPainter &painter, const QRect &rect) const = 0;
    virtual std::unique_ptr<TGraphic> Clone() const = 0;
    /// The picture in pixels; null where the format has none.
    virtual QImage ToImage() const { return {}; }

    /// The picture has changed. A picture's owner listens; clones have no listener.
    TEvent<> OnChange;

protected:
    TGraphic() = default;
    TGraphic(const TGraphic &) {}

    /// Takes the picture from the bytes of a whole file, or raises and changes nothing.
    virtual void Read(const QByteArray &bytes) = 0;
    /// The bytes of a file; never called without a picture.
    virtual QByteArray Write() const = 0;
};

/// The most that a picture may have; as many as an image of 128 MB.
inline constexpr qint64 MaxGraphicPixels = 32 << 20;

/// All that a stream still has. Raises EFileError when reading fails, and EInvalidGraphic beyond 256 MB.
QByteArray ReadGraphicBytes(QIODevice &stream);

/// A part of the screen of a size in device-independent pixels with the picture stretched to a rectangle in
/// it, which may reach beyond; transparent elsewhere.
QPixmap RenderGraphic(const TGraphic &graphic, QSize size, const QRect &rect, qreal devicePixelRatio);

} // namespace Korvane
