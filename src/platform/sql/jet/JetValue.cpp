// SPDX-License-Identifier: MIT
#include "platform/sql/jet/JetValue.h"

#include <QDate>

#include <array>
#include <cmath>
#include <cstdio>

namespace Korvane {

namespace {

void AppendUtf8(char32_t c, std::string &utf8)
{
    if (c < 0x80) {
        utf8 += char(c);
    } else if (c < 0x800) {
        utf8 += {char(0xc0 | c >> 6), char(0x80 | (c & 0x3f))};
    } else if (c < 0x10000) {
        utf8 += {char(0xe0 | c >> 12), char(0x80 | (c >> 6 & 0x3f)), char(0x80 | (c & 0x3f))};
    } else {
        utf8 += {char(0xf0 | c >> 18), char(0x80 | (c >> 12 & 0x3f)), char(0x80 | (c >> 6 & 0x3f)),
                 char(0x80 | (c & 0x3f))};
    }
}

/// Takes UTF-16 units one by one and joins the two halves of characters beyond U+FFFF.
class TUtf16Reader
{
public:
    explicit TUtf16Reader(std::string &utf8) : FUtf8(utf8) {}
    ~TUtf16Reader() { Flush(); }

    void Add(char16_t unit)
    {
        if (QChar::isLowSurrogate(unit) && FHigh != 0) {
            AppendUtf8(QChar::surrogateToUcs4(FHigh, unit), FUtf8);
            FHigh = 0;
            return;
        }
        Flush();
        if (QChar::isHighSurrogate(unit))
            FHigh = unit;
        else
            AppendUtf8(QChar::isLowSurrogate(unit) ? U'\ufffd' : char32_t(unit), FUtf8);
    }

private:
    void Flush()
    {
        if (FHigh != 0)
            AppendUtf8(U'\ufffd', FUtf8);
        FHigh = 0;
    }

    std::string &FUtf8;
    char16_t FHigh = 0;
};

/// Writes an integer, given as digits, with a decimal point before the last scale of them.
void PlacePoint(std::string digits, bool negative, int scale, std::string &text)
{
    if (digits.size() <= size_t(scale))
        digits.insert(0, size_t(scale) + 1 - digits.size(), '0');
    text = negative && digits.find_first_not_of('0') != std::string::npos ? "-" : "";
    text.append(digits, 0, digits.size() - size_t(scale));
    if (scale > 0) {
        text += '.';
        text.append(digits, digits.size() - size_t(scale));
    }
}

} // namespace

TJetText::TJetText(int codePage)
    : FDecoder(codePage == 0
                   ? QStringDecoder(QStringConverter::Utf16LE)
                   : QStringDecoder(QByteArray("windows-" + QByteArray::number(codePage)).constData())),
      FIsCodePage(codePage != 0)
{
    if (!FDecoder.isValid())
        throw EJetDamage(QStringLiteral("代码页 %1 无效").arg(codePage));
}

void TJetText::Decode(TJetBytes bytes, std::string &utf8)
{
    utf8.clear();
    if (FIsCodePage) {
        const auto isAscii = [](quint8 byte) { return byte < 0x80; };
        if (std::all_of(bytes.Data(), bytes.Data() + bytes.Size(), isAscii)) {
            utf8.assign(reinterpret_cast<const char *>(bytes.Data()), bytes.Size());
            return;
        }
        const QByteArray text = Decode(bytes).toUtf8();
        utf8.assign(text.constData(), size_t(text.size()));
    } else if (bytes.Size() >= 2 && bytes.U16(0) == 0xfeff) {
        DecodeCompressed(bytes.From(2), utf8);
    } else {
        DecodeUtf16(bytes, utf8);
    }
}

QString TJetText::Decode(TJetBytes bytes)
{
    if (FIsCodePage) {
        FDecoder.resetState();
        return FDecoder.decode(QByteArrayView(bytes.Data(), qsizetype(bytes.Size())));
    }
    std::string utf8;
    Decode(bytes, utf8);
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

void TJetText::DecodeUtf16(TJetBytes bytes, std::string &utf8) const
{
    utf8.reserve(bytes.Size() + bytes.Size() / 2);
    TUtf16Reader reader(utf8);
    for (size_t at = 0; at + 2 <= bytes.Size(); at += 2)
        reader.Add(bytes.U16(at));
}

// A zero byte changes between one byte and two bytes for a character. A text with a
// character whose low byte is zero is never compressed.
void TJetText::DecodeCompressed(TJetBytes bytes, std::string &utf8) const
{
    TUtf16Reader reader(utf8);
    bool compressed = true;
    for (size_t at = 0; at < bytes.Size();) {
        if (bytes.U8(at) == 0) {
            compressed = !compressed;
            ++at;
        } else if (compressed) {
            reader.Add(bytes.U8(at));
            ++at;
        } else if (at + 2 <= bytes.Size()) {
            reader.Add(bytes.U16(at));
            at += 2;
        } else {
            break;
        }
    }
}

void JetMoneyToText(TJetBytes bytes, std::string &text)
{
    const quint64 bits = bytes.U64(0);
    const bool negative = bits >> 63 != 0;
    PlacePoint(std::to_string(negative ? 0 - bits : bits), negative, 4, text);
}

void JetDecimalToText(TJetBytes bytes, int scale, std::string &text)
{
    std::array<quint64, 4> words = {bytes.U32(1), bytes.U32(5), bytes.U32(9), bytes.U32(13)};
    std::string digits; // the last one first
    while (words[0] != 0 || words[1] != 0 || words[2] != 0 || words[3] != 0) {
        quint64 rest = 0;
        for (quint64 &word : words) {
            const quint64 value = rest << 32 | word;
            word = value / 10;
            rest = value % 10;
        }
        digits += char('0' + rest);
    }
    std::reverse(digits.begin(), digits.end());
    PlacePoint(digits.empty() ? "0" : digits, (bytes.U8(0) & 0x80) != 0, scale, text);
}

void JetDateToText(double date, std::string &text)
{
    // The fraction counts forwards also before 1899-12-30.
    double day = std::trunc(date);
    double second = std::round(std::fabs(date - day) * 86400);
    if (second >= 86400) {
        second = 0;
        ++day;
    }
    constexpr int firstDay = -657434; // 0100-01-01
    constexpr int lastDay = 2958465;  // 9999-12-31
    if (!(day >= firstDay && day <= lastDay))
        throw EJetDamage(QStringLiteral("日期无效"));
    const auto ymd = QCalendar().partsFromDate(QDate(1899, 12, 30).addDays(qint64(day)));
    const int time = int(second);
    std::array<char, 32> buffer;
    int size = std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d", ymd.year, ymd.month, ymd.day);
    if (time != 0) {
        size += std::snprintf(buffer.data() + size, buffer.size() - size_t(size), " %02d:%02d:%02d",
                              time / 3600, time / 60 % 60, time % 60);
    }
    text.assign(buffer.data(), size_t(size));
}

void JetGuidToText(TJetBytes bytes, std::string &text)
{
    std::array<char, 40> buffer;
    const int size =
        std::snprintf(buffer.data(), buffer.size(), "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                      bytes.U32(0), bytes.U16(4), bytes.U16(6), bytes.U8(8), bytes.U8(9), bytes.U8(10),
                      bytes.U8(11), bytes.U8(12), bytes.U8(13), bytes.U8(14), bytes.U8(15));
    text.assign(buffer.data(), size_t(size));
}

} // namespace Korvane
