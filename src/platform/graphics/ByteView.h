// SPDX-License-Identifier: MIT
#pragma once

#include "platform/graphics/Graphic.h"

#include <QtEndian>

namespace Korvane {

/// Reads numbers at places of a file. Raises EInvalidGraphic beyond its end, hence no read needs a check.
class TByteView
{
public:
    /// The bytes must live as long; the format is named in messages.
    TByteView(QByteArrayView bytes, QString format) : FBytes(bytes), FFormat(std::move(format)) {}

    qsizetype Size() const { return FBytes.size(); }
    quint8 U8(qsizetype at) const { return Get<quint8>(at); }
    quint16 U16(qsizetype at) const { return Get<quint16>(at); }
    quint32 U32(qsizetype at) const { return Get<quint32>(at); }
    qint16 I16(qsizetype at) const { return Get<qint16>(at); }
    qint32 I32(qsizetype at) const { return Get<qint32>(at); }
    quint16 BigU16(qsizetype at) const { return qFromBigEndian<quint16>(Place(at, 2)); }
    quint32 BigU32(qsizetype at) const { return qFromBigEndian<quint32>(Place(at, 4)); }

    /// Raises unless so many bytes lie there.
    const char *Place(qsizetype at, qint64 count) const
    {
        if (at < 0 || count < 0 || at > FBytes.size() || count > FBytes.size() - at)
            throw EInvalidGraphic(QStringLiteral("%1 图片的数据不完整").arg(FFormat));
        return FBytes.data() + at;
    }
    [[noreturn]] void Broken(const QString &what) const
    {
        throw EInvalidGraphic(QStringLiteral("不是有效的 %1 图片：%2").arg(FFormat, what));
    }

private:
    template <class Number> Number Get(qsizetype at) const
    {
        return qFromLittleEndian<Number>(Place(at, sizeof(Number)));
    }

    const QByteArrayView FBytes;
    const QString FFormat;
};

} // namespace Korvane
