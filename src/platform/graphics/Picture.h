// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/Bitmap.h"
#include "platform/graphics/Icon.h"
#include "platform/graphics/Metafile.h"

class QMimeData;

namespace Korvane {

/// A place for a picture of any format, or none.
class TPicture
{
public:
    TPicture() = default;
    TPicture(const TPicture &) = delete;
    TPicture &operator=(const TPicture &) = delete;

    /// Null without a picture.
    TGraphic *Graphic() const { return FGraphic.get(); }
    /// Takes the picture over; null empties the place.
    void SetGraphic(std::unique_ptr<TGraphic> graphic);
    /// Takes a copy; null empties the place.
    void Assign(const TGraphic *graphic);
    void Assign(const TPicture &picture) { Assign(picture.Graphic()); }
    void Assign(std::nullptr_t) { SetGraphic(nullptr); }

    bool Empty() const { return !FGraphic || FGraphic->Empty(); }
    int Width() const { return FGraphic ? FGraphic->Width() : 0; }
    int Height() const { return FGraphic ? FGraphic->Height() : 0; }

    /// The picture as one of a format; where it is of another or missing, an empty one takes its place.
    TBitmap &Bitmap() { return Of<TBitmap>(); }
    TMetafile &Metafile() { return Of<TMetafile>(); }
    TIcon &Icon() { return Of<TIcon>(); }

    /// Any of the known formats, told by the first bytes. Failures leave the picture as it was: EFileError,
    /// EInvalidGraphic.
    void LoadFromFile(const QString &fileName);
    void LoadFromStream(QIODevice &stream);
    /// In the format of the name's extension: bmp, jpg, jpeg, png, ico, wmf. Pictures in pixels become one
    /// another. Raises EInvalidGraphic without a picture, for other extensions and where there is no way;
    /// EFileError.
    void SaveToFile(const QString &fileName) const;

    /// The picture for the clipboard: pixels as an image, a metafile as "image/x-wmf", and any of them
    /// under MimeType as WriteWithHeader tells. Empty data without a picture.
    std::unique_ptr<QMimeData> ToMimeData() const;
    /// An image becomes a TBitmap; failing that, a metafile is taken, and failing that, the picture that
    /// stands under MimeType or in the bytes of a known format. False, and no change, if there is none.
    bool LoadFromMimeData(const QMimeData &data);
    /// Whether LoadFromMimeData would find something to try.
    static bool HasPicture(const QMimeData &data);
    static constexpr char MimeType[] = "application/x-korvane-picture";

    TEvent<> OnChange;

private:
    template <class Graphic> Graphic &Of()
    {
        if (!dynamic_cast<Graphic *>(FGraphic.get()))
            SetGraphic(std::make_unique<Graphic>());
        return static_cast<Graphic &>(*FGraphic);
    }

    std::unique_ptr<TGraphic> FGraphic;
};

} // namespace Korvane
