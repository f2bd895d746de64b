// SPDX-License-Identifier: MIT
#include "controls/PictureCache.h"

namespace Korvane {

QPixmap TPictureCache::Find(const QByteArray &bytes, const TPlace &place,
                            const std::function<QPixmap()> &render)
{
    if (const TEntry *entry = FEntries.object(bytes); entry && entry->Place == place)
        return entry->Pixmap;
    const QPixmap pixmap = render();
    const qsizetype pixels = qsizetype(pixmap.width()) * pixmap.height() * pixmap.depth() / 8;
    FEntries.insert(bytes, new TEntry{place, pixmap}, qsizetype(sizeof(TEntry)) + bytes.size() + pixels);
    return pixmap;
}

} // namespace Korvane
