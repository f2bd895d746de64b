// SPDX-License-Identifier: MIT
#include "platform/core/Numbers.h"

#include "platform/core/Exceptions.h"

#include <QLocale>

#include <cmath>
#include <limits>
#include <type_traits>

namespace Korvane {

namespace {

bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }

int HexDigit(QChar c)
{
    if (IsDigit(c))
        return c.unicode() - u'0';
    const char16_t lower = c.unicode() | 0x20;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

bool RemoveHexMark(QStringView &digits)
{
    for (const QStringView mark : {QStringView(u"$"), QStringView(u"x"), QStringView(u"0x")})
        if (digits.startsWith(mark, Qt::CaseInsensitive)) {
            digits = digits.mid(mark.size());
            return true;
        }
    return false;
}

template <class Unsigned> bool ReadDigits(QStringView digits, unsigned base, Unsigned limit, Unsigned &value)
{
    Unsigned result = 0;
    for (const QChar c : digits) {
        const int digit = HexDigit(c);
        if (digit < 0 || unsigned(digit) >= base || result > (limit - Unsigned(digit)) / base)
            return false;
        result = Unsigned(result * base + Unsigned(digit));
    }
    value = result;
    return !digits.isEmpty();
}

template <class Int> bool ReadInt(QStringView text, Int &value)
{
    using Unsigned = std::make_unsigned_t<Int>;
    while (text.startsWith(u' '))
        text = text.mid(1);
    const bool isNegative = text.startsWith(u'-');
    if (isNegative || text.startsWith(u'+'))
        text = text.mid(1);
    const bool isHex = RemoveHexMark(text);
    const Unsigned decimalLimit = Unsigned(Unsigned(std::numeric_limits<Int>::max()) + (isNegative ? 1 : 0));
    Unsigned digits = 0;
    if (!ReadDigits<Unsigned>(text, isHex ? 16 : 10,
                              isHex ? std::numeric_limits<Unsigned>::max() : decimalLimit, digits))
        return false;
    value = Int(isNegative ? Unsigned(0) - digits : digits);
    return true;
}

[[noreturn]] void RaiseNoInteger(const QString &text)
{
    throw EConvertError(QStringLiteral("'%1' 不是有效的整数值").arg(text));
}

/// Copies a run of digits and tells whether there was one.
bool TakeDigits(QStringView &text, QString &number)
{
    const qsizetype length = text.size();
    while (!text.isEmpty() && IsDigit(text.front())) {
        number += text.front();
        text = text.mid(1);
    }
    return text.size() < length;
}

bool TakeSign(QStringView &text, QString &number)
{
    if (!text.startsWith(u'-') && !text.startsWith(u'+'))
        return false;
    if (text.front() == u'-')
        number += u'-';
    text = text.mid(1);
    return true;
}

/// The text as programs write numbers; empty if it is none.
QString PlainNumber(QStringView text, QChar decimalSeparator)
{
    QString number;
    TakeSign(text, number);
    bool hasDigits = TakeDigits(text, number);
    if (text.startsWith(decimalSeparator)) {
        text = text.mid(1);
        number += u'.';
        hasDigits = TakeDigits(text, number) || hasDigits;
    }
    if (text.startsWith(u'e', Qt::CaseInsensitive)) {
        text = text.mid(1);
        number += u'e';
        TakeSign(text, number);
        hasDigits = TakeDigits(text, number) && hasDigits;
    }
    return hasDigits && text.isEmpty() ? number : QString();
}

QStringView WithoutBlanks(QStringView text)
{
    while (text.startsWith(u' '))
        text = text.mid(1);
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

template <class Int> QString Hex(Int value, int digits)
{
    return QString::number(std::make_unsigned_t<Int>(value), 16).toUpper().rightJustified(digits, u'0');
}

} // namespace

bool TryStrToInt(const QString &text, int &value) { return ReadInt(text, value); }

bool TryStrToInt64(const QString &text, qint64 &value) { return ReadInt(text, value); }

int StrToInt(const QString &text)
{
    int result = 0;
    if (!ReadInt(text, result))
        RaiseNoInteger(text);
    return result;
}

qint64 StrToInt64(const QString &text)
{
    qint64 result = 0;
    if (!ReadInt(text, result))
        RaiseNoInteger(text);
    return result;
}

int StrToIntDef(const QString &text, int def)
{
    int result = def;
    ReadInt(text, result);
    return result;
}

bool TryStrToFloat(const QString &text, double &value, const TFormatSettings &settings)
{
    const QString number = PlainNumber(WithoutBlanks(text), settings.DecimalSeparator);
    if (number.isEmpty())
        return false;
    // Out of range is infinity for too large and 0 for too small; too small is no failure.
    const double result = QLocale::c().toDouble(number);
    if (!std::isfinite(result))
        return false;
    value = result;
    return true;
}

double StrToFloat(const QString &text, const TFormatSettings &settings)
{
    double result = 0;
    if (!TryStrToFloat(text, result, settings))
        throw EConvertError(QStringLiteral("'%1' 不是有效的浮点数值").arg(text));
    return result;
}

double StrToFloatDef(const QString &text, double def, const TFormatSettings &settings)
{
    double result = def;
    TryStrToFloat(text, result, settings);
    return result;
}

QString IntToStr(qint64 value) { return QString::number(value); }

QString IntToHex(int value, int digits) { return Hex(value, digits); }

QString IntToHex(qint64 value, int digits) { return Hex(value, digits); }

} // namespace Korvane
