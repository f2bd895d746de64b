// SPDX-License-Identifier: MIT
#include "platform/core/Cp936.h"

#include "platform/core/Exceptions.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

namespace Korvane::Cp936 {

namespace {

struct TCloseConverter
{
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};

void Check(UErrorCode error)
{
    if (U_FAILURE(error))
        throw Exception(QStringLiteral("代码页 936 转换失败：%1").arg(QLatin1String(u_errorName(error))));
}

/// The thread's own converter: one cannot serve two threads.
UConverter *Converter()
{
    thread_local const std::unique_ptr<UConverter, TCloseConverter> converter = [] {
        UErrorCode error = U_ZERO_ERROR;
        std::unique_ptr<UConverter, TCloseConverter> result(ucnv_open("windows-936-2000", &error));
        Check(error);
        ucnv_setSubstChars(result.get(), "?", 1, &error);
        Check(error);
        return result;
    }();
    return converter.get();
}

/// The offsets, if asked for, tell for each byte from which character it comes.
QByteArray Convert(QStringView text, std::vector<int32_t> *offsets = nullptr)
{
    UConverter *converter = Converter();
    ucnv_resetFromUnicode(converter);
    QByteArray result(text.size() * 2 + 2, Qt::Uninitialized);
    if (offsets)
        offsets->resize(size_t(result.size()));
    char *target = result.data();
    const char16_t *source = text.utf16();
    UErrorCode error = U_ZERO_ERROR;
    ucnv_fromUnicode(converter, &target, result.data() + result.size(), &source, source + text.size(),
                     offsets ? offsets->data() : nullptr, true, &error);
    Check(error);
    result.truncate(target - result.data());
    return result;
}

using TByteCounts = std::array<quint8, 0x10000>;

/// The number of bytes of each UTF-16 unit that is a character of its own.
const TByteCounts &ByteCounts()
{
    static const std::unique_ptr<const TByteCounts> counts = [] {
        QString units(0x10000, u'?');
        for (int unit = 0; unit < 0x10000; ++unit)
            if (!QChar::isSurrogate(char32_t(unit)))
                units[unit] = QChar(char16_t(unit));
        std::vector<int32_t> offsets;
        const qsizetype length = Convert(units, &offsets).size();
        auto result = std::make_unique<TByteCounts>();
        result->fill(0);
        for (qsizetype i = 0; i < length; ++i)
            ++(*result)[size_t(offsets[size_t(i)])];
        return result;
    }();
    return *counts;
}

bool IsAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// Walks on while the bytes stay within the limit; gives the units walked and counts the bytes.
qsizetype Walk(QStringView text, qsizetype limit, qsizetype &bytes)
{
    const TByteCounts &counts = ByteCounts();
    qsizetype pos = 0;
    bytes = 0;
    while (pos < text.size()) {
        const int count = counts[text[pos].unicode()];
        if (bytes + count > limit)
            break;
        bytes += count;
        const bool isPair =
            text[pos].isHighSurrogate() && pos + 1 < text.size() && text[pos + 1].isLowSurrogate();
        pos += isPair ? 2 : 1;
    }
    return pos;
}

} // namespace

qsizetype Length(QStringView text)
{
    if (IsAscii(text))
        return text.size();
    qsizetype bytes = 0;
    Walk(text, text.size() * 2, bytes);
    return bytes;
}

QString Left(const QString &text, qsizetype bytes)
{
    // NOTE: a unit has at most two bytes, so that a short text needs no walk.
    if (text.size() <= bytes / 2)
        return text;
    qsizetype used = 0;
    return text.left(Walk(text, bytes, used));
}

QByteArray Encode(QStringView text) { return IsAscii(text) ? text.toLatin1() : Convert(text); }

QString Decode(QByteArrayView bytes)
{
    UConverter *converter = Converter();
    ucnv_resetToUnicode(converter);
    QString result(bytes.size() * 2 + 1, Qt::Uninitialized);
    auto *start = reinterpret_cast<char16_t *>(result.data());
    char16_t *target = start;
    const char *source = bytes.data();
    const char *end = source + bytes.size();
    UErrorCode error = U_ZERO_ERROR;
    ucnv_toUnicode(converter, &target, start + result.size(), &source, end, nullptr, true, &error);
    // NOTE: half a character at the end is an error of its own, with no replacement written for it.
    if (error == U_TRUNCATED_CHAR_FOUND)
        *target++ = QChar::ReplacementCharacter;
    else
        Check(error);
    result.truncate(target - start);
    return result;
}

} // namespace Korvane::Cp936
