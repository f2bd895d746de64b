// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/CaseFold.h"

#include <QString>

#include <vector>

struct UCollator;

namespace Korvane {

/// The order of texts that readers of a language expect, by the rules of the Unicode CLDR:
/// Chinese by pinyin, or by strokes or radicals where the locale says so. In the exact mode
/// texts differ by letters, accents and case, in the blind mode by letters and accents alone.
/// Objects live as long as the process and may be used from any thread.
class TTextCollation
{
public:
    /// The order of a locale: "zh" or "zh_CN" is pinyin, "zh@collation=stroke" goes by strokes.
    /// The same name gives the same object. Raises EDatabaseError for a locale or an order that
    /// does not exist.
    static const TTextCollation *ForLocale(const QString &name);

    const QString &Locale() const { return FLocale; }

    /// Below 0, 0, above 0. Texts in UTF-8; what is broken counts as U+FFFD.
    int Compare(std::string_view left, std::string_view right, TCaseMode mode) const;
    /// Bytes that sort as the text does, with no zero among them. They stand in the buffer, which
    /// may be used again and again.
    std::string_view SortKey(std::string_view text, TCaseMode mode, std::vector<char> &buffer) const;

private:
    explicit TTextCollation(const QString &locale);
    const UCollator *CollatorFor(TCaseMode mode) const { return FCollators[int(mode)]; }

    const QString FLocale;
    UCollator *FCollators[2]; // by TCaseMode
};

} // namespace Korvane
