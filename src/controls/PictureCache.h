// SPDX-License-Identifier: MIT
#pragma once

#include <QCache>
#include <QPixmap>

#include <functional>

namespace Korvane {

/// Pictures as they were painted last, found by the bytes of the blobs that they come from. Those that were
/// not painted for long go when there are too many; the bytes count as well.
class TPictureCache
{
public:
    /// How a picture was placed; the same bytes placed otherwise are painted anew.
    struct TPlace
    {
        QSize Size; ///< in device-independent pixels
        qreal DevicePixelRatio = 1;
        bool IsStretched = false;
        bool IsCentered = false;
        bool HasHandler = false; ///< whether the application could read what the control cannot

        friend bool operator==(const TPlace &, const TPlace &) = default;
    };

    /// The picture of the bytes. What cannot be shown is kept as well, as a null pixmap, so that it is not
    /// tried at every paint.
    QPixmap Find(const QByteArray &bytes, const TPlace &place, const std::function<QPixmap()> &render);
    void Clear() { FEntries.clear(); }

private:
    struct TEntry
    {
        TPlace Place;
        QPixmap Pixmap;
    };
    static constexpr qsizetype MaxBytes = 64 << 20;

    QCache<QByteArray, TEntry> FEntries{MaxBytes};
};

} // namespace Korvane
