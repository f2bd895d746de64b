// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/jet/JetBytes.h"

#include <QStringDecoder>

#include <string>

namespace Korvane {

/// Decodes the texts of a Jet file to UTF-8. Jet 4 keeps them in UTF-16, or in a compressed
/// form that leaves out the zero bytes of Latin letters; Jet 3 in a Windows code page.
class TJetText
{
public:
    /// codePage 0 stands for the encoding of Jet 4. An unknown code page raises EJetDamage.
    explicit TJetText(int codePage);

    /// Replaces the contents of utf8. What cannot be decoded becomes U+FFFD; half a character
    /// at the end is left out.
    void Decode(TJetBytes bytes, std::string &utf8);
    QString Decode(TJetBytes bytes);

private:
    void DecodeUtf16(TJetBytes bytes, std::string &utf8) const;
    void DecodeCompressed(TJetBytes bytes, std::string &utf8) const;

    QStringDecoder FDecoder;
    bool FIsCodePage;
};

/// An amount of money, ten-thousandths in 64 bits, as "-12.3400".
void JetMoneyToText(TJetBytes bytes, std::string &text);
/// A scaled decimal (a sign byte and four 32-bit words, the highest first) with scale
/// decimal places.
void JetDecimalToText(TJetBytes bytes, int scale, std::string &text);
/// A date-time number in ISO form: "2024-01-31", with " 08:30:00" behind it unless it is
/// midnight. Beyond the years 100 to 9999 it raises EJetDamage.
void JetDateToText(double date, std::string &text);
/// 16 bytes as "{0E4F3C2A-…}".
void JetGuidToText(TJetBytes bytes, std::string &text);

} // namespace Korvane
