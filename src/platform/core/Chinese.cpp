// SPDX-License-Identifier: MIT
#include "platform/core/Chinese.h"

#include "platform/core/Exceptions.h"

#include <unicode/translit.h>

#include <memory>
#include <vector>

namespace Korvane {

namespace {

constexpr char16_t FirstIdeograph = 0x3400;
constexpr char16_t LastIdeograph = 0xFAFF;

/// What each character of a range becomes. The words that the transliterator knows beside single
/// characters are left out on purpose: each character has one counterpart wherever it stands.
class TCharacterTable
{
public:
    explicit TCharacterTable(const char *transliterator) : FCharacters(LastIdeograph - FirstIdeograph + 1)
    {
        UErrorCode error = U_ZERO_ERROR;
        const std::unique_ptr<icu::Transliterator> converter(
            icu::Transliterator::createInstance(transliterator, UTRANS_FORWARD, error));
        if (U_FAILURE(error))
            throw Exception(QStringLiteral("简繁转换不可用：%1").arg(QLatin1String(u_errorName(error))));
        for (size_t i = 0; i < FCharacters.size(); ++i)
            FCharacters[i] = Converted(*converter, char16_t(FirstIdeograph + i));
    }

    QString Convert(QString text) const
    {
        for (QChar &c : text)
            if (c >= FirstIdeograph && c <= LastIdeograph)
                c = FCharacters[size_t(c.unicode() - FirstIdeograph)];
        return text;
    }

private:
    static char16_t Converted(const icu::Transliterator &converter, char16_t c)
    {
        if (QChar::isSurrogate(c) || QChar(c).category() != QChar::Letter_Other)
            return c;
        icu::UnicodeString text(c);
        converter.transliterate(text);
        return text.length() == 1 ? text[0] : c;
    }

    std::vector<char16_t> FCharacters;
};

} // namespace

QString Simplified(const QString &text)
{
    static const TCharacterTable table("Traditional-Simplified");
    return table.Convert(text);
}

QString Traditional(const QString &text)
{
    static const TCharacterTable table("Simplified-Traditional");
    return table.Convert(text);
}

} // namespace Korvane
