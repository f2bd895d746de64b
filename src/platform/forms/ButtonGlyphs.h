// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/Bitmap.h"

#include <QString>

#include <array>
#include <memory>

namespace Korvane {

/// The kinds of button in an edit control.
enum TButtonKind { bkCustom, bkLookup, bkFolder, bkFind, bkSearch };

/// The names of their pictures among the program's resources, by kind; bkCustom has none.
inline const std::array<QString, 5> BtnEdtResNames{QString(), QStringLiteral("EB_LOOKUP"),
                                                   QStringLiteral("EB_FOLDER"), QStringLiteral("EB_FIND"),
                                                   QStringLiteral("EB_SEARCH")};
/// The pictures read so far, by kind; null before. They live until the end of the process.
inline std::array<std::unique_ptr<TBitmap>, 5> BtnEdtGlyphs;

/// The picture of a kind of button, owned by BtnEdtGlyphs. Raises Exception if there is none; as it is meant
/// to be, the empty picture stays there and the next call gives it.
TBitmap *GetBtnEdtGlyph(TButtonKind kind);

} // namespace Korvane
