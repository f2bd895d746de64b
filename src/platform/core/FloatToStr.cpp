// SPDX-License-Identifier: MIT
#include "platform/core/DecimalDigits.h"
#include "platform/core/FormatFloat.h"

#include <algorithm>
#include <cmath>

namespace Korvane {

namespace {

constexpr int AllDecimals = 9999;
constexpr int LeastFixedExponent = -4; ///< that of 0.00001

QString Digits(const TDecimalDigits &number, int from, int count)
{
    QString result(count, u'0');
    for (int i = 0; i < count; ++i)
        result[i] = QChar(char16_t(number.At(from + i)));
    return result;
}

QString IntegerPart(const TDecimalDigits &number)
{
    return number.Exponent > 0 ? Digits(number, 0, number.Exponent) : QStringLiteral("0");
}

QString Decimals(const TDecimalDigits &number, int count)
{
    const int zeros = std::clamp(-number.Exponent, 0, count);
    return QString(zeros, u'0') + Digits(number, std::max(number.Exponent, 0), count - zeros);
}

QString WithDecimals(const QString &integer, const QString &decimals, const TFormatSettings &settings)
{
    return decimals.isEmpty() ? integer : integer + settings.DecimalSeparator + decimals;
}

QString WithThousands(QString integer, const TFormatSettings &settings)
{
    for (qsizetype pos = integer.size() - 3; pos > 0; pos -= 3)
        integer.insert(pos, settings.ThousandSeparator);
    return integer;
}

QString Signed(const TDecimalDigits &number, const QString &text)
{
    return number.Negative ? u'-' + text : text;
}

/// The exponent of a number written with one digit before the point.
QString ExponentPart(const TDecimalDigits &number, const QString &plus, int digits)
{
    const int exponent = number.IsZero() ? 0 : number.Exponent - 1;
    return u'E' + (exponent < 0 ? QStringLiteral("-") : plus) +
           QString::number(std::abs(exponent)).rightJustified(digits, u'0');
}

QString General(const TDecimalDigits &number, int precision, int exponentDigits,
                const TFormatSettings &settings)
{
    const int length = int(number.Digits.size());
    if (number.Exponent >= LeastFixedExponent && number.Exponent <= precision)
        return Signed(number,
                      WithDecimals(IntegerPart(number),
                                   Decimals(number, std::max(length - number.Exponent, 0)), settings));
    return Signed(number, WithDecimals(Digits(number, 0, 1), Digits(number, 1, length - 1), settings) +
                              ExponentPart(number, {}, exponentDigits));
}

QString Scientific(const TDecimalDigits &number, int precision, int exponentDigits,
                   const TFormatSettings &settings)
{
    return Signed(number, WithDecimals(Digits(number, 0, 1), Digits(number, 1, precision - 1), settings) +
                              ExponentPart(number, QStringLiteral("+"), exponentDigits));
}

/// Puts an amount (the 1) and the currency text (the $) into a pattern.
QString WithCurrency(bool isNegative, const QString &amount, const TFormatSettings &settings)
{
    static constexpr QStringView positive[] = {u"$1", u"1$", u"$ 1", u"1 $"};
    static constexpr QStringView negative[] = {u"($1)", u"-$1",  u"$-1",   u"$1-",  u"(1$)", u"-1$",
                                               u"1-$",  u"1$-",  u"-1 $",  u"-$ 1", u"1 $-", u"$ 1-",
                                               u"$ -1", u"1- $", u"($ 1)", u"(1 $)"};
    const QStringView pattern = isNegative ? negative[std::clamp(settings.NegCurrFormat, 0, 15)]
                                           : positive[std::clamp(settings.CurrencyFormat, 0, 3)];
    QString result;
    for (const QChar c : pattern) {
        if (c == u'$')
            result += settings.CurrencyString;
        else if (c == u'1')
            result += amount;
        else
            result += c;
    }
    return result;
}

QString NoNumber(double value)
{
    if (std::isnan(value))
        return QStringLiteral("NAN");
    return value < 0 ? QStringLiteral("-INF") : QStringLiteral("INF");
}

} // namespace

QString FloatToStrF(double value, TFloatFormat format, int precision, int digits,
                    const TFormatSettings &settings)
{
    if (!std::isfinite(value))
        return NoNumber(value);
    precision = std::clamp(precision, 1, 18);
    digits = std::clamp(digits, 0, format == ffGeneral || format == ffExponent ? 4 : 18);
    if (format == ffGeneral)
        return General({value, precision, AllDecimals}, precision, digits, settings);
    if (format == ffExponent)
        return Scientific({value, precision, AllDecimals}, precision, digits, settings);
    const TDecimalDigits number(value, precision, digits);
    if (number.Exponent > precision)
        return General(number, precision, 0, settings);
    QString integer = IntegerPart(number);
    if (format != ffFixed)
        integer = WithThousands(integer, settings);
    const QString text = WithDecimals(integer, Decimals(number, digits), settings);
    return format == ffCurrency ? WithCurrency(number.Negative, text, settings) : Signed(number, text);
}

QString FloatToStr(double value, const TFormatSettings &settings)
{
    return FloatToStrF(value, ffGeneral, 15, 0, settings);
}

QString CurrToStr(double value, const TFormatSettings &settings)
{
    return std::isfinite(value) ? General({value, 18, 4}, 18, 0, settings) : NoNumber(value);
}

} // namespace Korvane
