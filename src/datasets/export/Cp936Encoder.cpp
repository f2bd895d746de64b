// SPDX-License-Identifier: MIT
#include "datasets/export/Cp936Encoder.h"

#include "platform/core/Cp936.h"

#include <cstring>
#include <memory>

namespace Korvane {

namespace {

/// The character of two or three bytes that begins here, and moves behind it; 0 for any other.
char16_t TakeCharacter(const uchar *&source, const uchar *end)
{
    const auto isTail = [](uchar byte) { return (byte & 0xC0) == 0x80; };
    if (*source >= 0xE0 && *source < 0xF0 && end - source >= 3 && isTail(source[1]) && isTail(source[2])) {
        const int code = (*source & 0x0F) << 12 | (source[1] & 0x3F) << 6 | (source[2] & 0x3F);
        source += 3;
        return code >= 0x800 && !QChar::isSurrogate(char32_t(code)) ? char16_t(code) : u'\0';
    }
    if (*source >= 0xC2 && *source < 0xE0 && end - source >= 2 && isTail(source[1])) {
        const int code = (*source & 0x1F) << 6 | (source[1] & 0x3F);
        source += 2;
        return char16_t(code);
    }
    return u'\0';
}

/// For what is not in the table: characters beyond 16 bits, and bytes that are no UTF-8.
size_t EncodeSlowly(std::string_view utf8, char *place)
{
    const QByteArray bytes = Cp936::Encode(QString::fromUtf8(utf8.data(), qsizetype(utf8.size())));
    std::memcpy(place, bytes.constData(), size_t(bytes.size()));
    return size_t(bytes.size());
}

} // namespace

const TCp936Encoder::TTable &TCp936Encoder::Table()
{
    static const std::unique_ptr<const TTable> table = [] {
        // One call for all characters, each behind a line break, which is no second byte of any.
        QString units;
        units.reserve(2 * 0x10000);
        for (int unit = 0x80; unit < 0x10000; ++unit)
            if (!QChar::isSurrogate(char32_t(unit)))
                units.append(u'\n').append(QChar(char16_t(unit)));
        const QByteArray bytes = Cp936::Encode(units);
        auto result = std::make_unique<TTable>();
        result->fill('?');
        const char *source = bytes.constData();
        const char *const end = source + bytes.size();
        for (int unit = 0x80; unit < 0x10000; ++unit) {
            if (QChar::isSurrogate(char32_t(unit)))
                continue;
            quint16 &place = (*result)[size_t(unit)];
            place = 0;
            ++source;
            for (int shift = 0; source < end && *source != '\n'; shift += 8)
                place = quint16(place | uchar(*source++) << shift);
        }
        return result;
    }();
    return *table;
}

TCp936Encoder::TCp936Encoder() : FTable(Table()) {}

size_t TCp936Encoder::Encode(std::string_view utf8, char *place) const
{
    const auto *source = reinterpret_cast<const uchar *>(utf8.data());
    const uchar *const end = source + utf8.size();
    char *target = place;
    while (source < end) {
        if (*source < 0x80) {
            *target++ = char(*source++);
            continue;
        }
        const char16_t unit = TakeCharacter(source, end);
        if (unit == u'\0')
            return EncodeSlowly(utf8, place);
        const quint16 bytes = FTable[unit];
        if (bytes != 0)
            *target++ = char(bytes & 0xFF);
        if (bytes > 0xFF)
            *target++ = char(bytes >> 8);
    }
    return size_t(target - place);
}

} // namespace Korvane
