// SPDX-License-Identifier: MIT
#include "platform/data/TextCollation.h"

#include "platform/core/Exceptions.h"

#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <limits>
#include <map>
#include <mutex>

namespace Korvane {

namespace {

[[noreturn]] void RaiseUnknown(const QString &locale)
{
    throw EDatabaseError(QStringLiteral("没有“%1”的文字排序规则").arg(locale));
}

/// Whether a locale, in ICU's own spelling, has the collation that its name asks for.
bool HasCollation(const char *locale, UErrorCode &error)
{
    char wanted[ULOC_KEYWORDS_CAPACITY];
    const int length = uloc_getKeywordValue(locale, "collation", wanted, sizeof wanted, &error);
    if (length == 0)
        return true;
    const std::unique_ptr<UEnumeration, decltype(&uenum_close)> known(
        ucol_getKeywordValuesForLocale("collation", locale, false, &error), uenum_close);
    while (const char *name = U_SUCCESS(error) ? uenum_next(known.get(), nullptr, &error) : nullptr)
        if (qstricmp(name, wanted) == 0)
            return true;
    return false;
}

UCollator *OpenCollator(const QString &locale, UCollationStrength strength)
{
    const QByteArray name = locale.toUtf8();
    char spelled[ULOC_FULLNAME_CAPACITY];
    UErrorCode error = U_ZERO_ERROR;
    uloc_canonicalize(name.constData(), spelled, sizeof spelled, &error);
    if (U_FAILURE(error) || error == U_STRING_NOT_TERMINATED_WARNING || !HasCollation(spelled, error))
        RaiseUnknown(locale);
    UCollator *collator = ucol_open(spelled, &error);
    // An unknown language gets the root's order, which no one has asked for.
    const char *valid = collator ? ucol_getLocaleByType(collator, ULOC_VALID_LOCALE, &error) : nullptr;
    const bool isRoot = !valid || qstrcmp(valid, "root") == 0 || *valid == '\0';
    if (U_FAILURE(error) || (isRoot && qstricmp(name.constData(), "root") != 0)) {
        ucol_close(collator);
        RaiseUnknown(locale);
    }
    ucol_setStrength(collator, strength);
    return collator;
}

/// As far as ICU can count.
int32_t LengthOf(std::string_view text)
{
    return int32_t(std::min<size_t>(text.size(), std::numeric_limits<int32_t>::max()));
}

/// A text in UTF-16, mostly without memory of its own.
class TUtf16Text
{
public:
    explicit TUtf16Text(std::string_view utf8)
    {
        if (utf8.size() > std::size(FShort)) {
            FLong.resize(qsizetype(utf8.size()));
            FData = reinterpret_cast<UChar *>(FLong.data());
        }
        // No UTF-8 is longer in UTF-16 units than in its own bytes.
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF8WithSub(FData, std::max(LengthOf(utf8), int32_t(std::size(FShort))), &FSize, utf8.data(),
                             LengthOf(utf8), 0xFFFD, nullptr, &error);
    }

    const UChar *Data() const { return FData; }
    int32_t Size() const { return FSize; }

private:
    UChar FShort[128];
    QString FLong;
    UChar *FData = FShort;
    int32_t FSize = 0;
};

} // namespace

const TTextCollation *TTextCollation::ForLocale(const QString &name)
{
    static std::mutex mutex;
    static auto *const all = new std::map<QString, const TTextCollation *>;
    const std::scoped_lock lock(mutex);
    const auto found = all->find(name);
    if (found != all->end())
        return found->second;
    return all->emplace(name, new TTextCollation(name)).first->second;
}

TTextCollation::TTextCollation(const QString &locale)
    : FLocale(locale), FCollators{OpenCollator(locale, UCOL_TERTIARY), OpenCollator(locale, UCOL_SECONDARY)}
{
}

int TTextCollation::Compare(std::string_view left, std::string_view right, TCaseMode mode) const
{
    UErrorCode error = U_ZERO_ERROR;
    return ucol_strcollUTF8(CollatorFor(mode), left.data(), LengthOf(left), right.data(), LengthOf(right),
                            &error);
}

std::string_view TTextCollation::SortKey(std::string_view text, TCaseMode mode,
                                         std::vector<char> &buffer) const
{
    const TUtf16Text utf16(text);
    buffer.resize(std::max<size_t>(buffer.size(), 64));
    for (;;) {
        const int32_t needed =
            ucol_getSortKey(CollatorFor(mode), utf16.Data(), utf16.Size(),
                            reinterpret_cast<uint8_t *>(buffer.data()), int32_t(buffer.size()));
        if (needed <= 0)
            throw EOutOfResources(QStringLiteral("文字过长，无法排序"));
        if (size_t(needed) <= buffer.size())
            return {buffer.data(), size_t(needed) - 1}; // without the zero at its end
        buffer.resize(size_t(needed));
    }
}

} // namespace Korvane
