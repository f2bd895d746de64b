// SPDX-License-Identifier: MIT
#include "business/TextCipher.h"

#include "platform/core/Cp936.h"
#include "platform/core/Numbers.h"

#include <numeric>

namespace Korvane {

namespace {

QString HexOf(const QByteArray &bytes) { return QString::fromLatin1(bytes.toHex().toUpper()); }

void XorWithKey(QByteArray &bytes)
{
    for (qsizetype i = 0; i < bytes.size(); ++i)
        bytes[i] = char(quint8(bytes[i]) ^ XorKey[size_t(i) % std::size(XorKey)]);
}

/// Running over the bytes once for each byte of the key comes to the same.
void XorWithAll(QByteArray &bytes, const QString &key)
{
    const QByteArray keyBytes = Cp936::Encode(key);
    const auto both = [](quint8 left, char right) { return quint8(left ^ quint8(right)); };
    const quint8 mask = std::accumulate(keyBytes.begin(), keyBytes.end(), quint8(0), both);
    for (char &byte : bytes)
        byte = char(quint8(byte) ^ mask);
}

/// What is not a digit in capitals counts as something, on purpose.
int DigitValue(QChar c) { return c < u'A' ? c.unicode() - u'0' : c.unicode() - 55; }

} // namespace

QString EncryptString(const QString &text)
{
    QByteArray bytes = Cp936::Encode(text);
    XorWithKey(bytes);
    return HexOf(bytes);
}

QString DecryptString(const QString &text)
{
    QByteArray bytes;
    for (qsizetype i = 0; i + 1 < text.size(); i += 2)
        bytes += char(StrToInt(u'$' + text.mid(i, 2)));
    XorWithKey(bytes);
    return Cp936::Decode(bytes);
}

QString EncryptString(const QString &text, const QString &key)
{
    if (key.isEmpty())
        return {};
    QByteArray bytes = Cp936::Encode(text);
    XorWithAll(bytes, key);
    return HexOf(bytes);
}

QString DecryptString(const QString &text, const QString &key)
{
    QString digits = text;
    digits.remove(u' ');
    QByteArray bytes;
    for (qsizetype i = 0; i + 1 < digits.size(); i += 2)
        bytes += char(DigitValue(digits[i]) * 16 + DigitValue(digits[i + 1]));
    XorWithAll(bytes, key);
    return Cp936::Decode(bytes);
}

} // namespace Korvane
