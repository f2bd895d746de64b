// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Exceptions.h"

#include <bit>
#include <cstring>

namespace Korvane {

/// What is wrong inside a Jet file, without the file's name: TJetFile adds it on the way out.
class EJetDamage : public Exception
{
public:
    using Exception::Exception;
};

/// A view of bytes of a Jet file in which no read goes beyond the end: one that would raises
/// EJetDamage. Numbers are little-endian.
class TJetBytes
{
public:
    TJetBytes() = default;
    TJetBytes(const quint8 *data, size_t size) : FData(data), FSize(size) {}

    const quint8 *Data() const { return FData; }
    size_t Size() const { return FSize; }

    TJetBytes Slice(size_t begin, size_t size) const
    {
        if (begin > FSize || size > FSize - begin)
            FailOutside();
        return {FData + begin, size};
    }
    TJetBytes From(size_t begin) const { return Slice(begin, FSize - qMin(begin, FSize)); }

    quint8 U8(size_t at) const { return *Slice(at, 1).FData; }
    quint16 U16(size_t at) const { return Number<quint16>(at); }
    quint32 U32(size_t at) const { return Number<quint32>(at); }
    quint64 U64(size_t at) const { return Number<quint64>(at); }
    float Single(size_t at) const { return std::bit_cast<float>(U32(at)); }
    double Double(size_t at) const { return std::bit_cast<double>(U64(at)); }

private:
    template <typename T> T Number(size_t at) const
    {
        const quint8 *bytes = Slice(at, sizeof(T)).FData;
        T value = 0;
        for (size_t i = 0; i < sizeof(T); ++i)
            value = T(value | T(bytes[i]) << (8 * i));
        return value;
    }
    [[noreturn]] static void FailOutside() { throw EJetDamage(QStringLiteral("数据超出了所在的页或记录")); }

    const quint8 *FData = nullptr;
    size_t FSize = 0;
};

} // namespace Korvane
