// SPDX-License-Identifier: MIT
#include "platform/core/FormatFloat.h"

#include "platform/core/DecimalDigits.h"

#include <algorithm>
#include <cmath>

namespace Korvane {

namespace {

constexpr int MostDigits = 15;
constexpr int MostIntegerDigits = 18;

enum class TPart { Text, Zero, Hash, Point, Comma, Exponent, SectionEnd };

struct TToken
{
    TPart Part;
    QStringView Text; ///< without quotes; of an exponent the whole of it
};

qsizetype ExponentLength(QStringView text)
{
    if (text.size() < 2 || (text[1] != u'+' && text[1] != u'-'))
        return 0;
    qsizetype length = 2;
    while (length < text.size() && length < 6 && text[length] == u'0')
        ++length;
    return length;
}

/// Takes the next token off the front of a format, which is not empty.
TToken NextToken(QStringView &format)
{
    const auto take = [&](TPart part, qsizetype length) {
        const TToken token{part, format.first(length)};
        format = format.mid(length);
        return token;
    };
    switch (format.front().unicode()) {
    case u'0':
        return take(TPart::Zero, 1);
    case u'#':
        return take(TPart::Hash, 1);
    case u'.':
        return take(TPart::Point, 1);
    case u',':
        return take(TPart::Comma, 1);
    case u';':
        return take(TPart::SectionEnd, 1);
    case u'E':
    case u'e':
        if (const qsizetype length = ExponentLength(format))
            return take(TPart::Exponent, length);
        break;
    case u'\'':
    case u'"': {
        const QChar quote = format.front();
        format = format.mid(1);
        const qsizetype end = format.indexOf(quote);
        const TToken token = take(TPart::Text, end < 0 ? format.size() : end);
        format = format.mid(end < 0 ? 0 : 1);
        return token;
    }
    default:
        break;
    }
    return take(TPart::Text, 1);
}

/// The text of a section (0 positive, 1 negative, 2 zero); empty if there is none.
QStringView SectionText(QStringView format, int index)
{
    QStringView rest = format;
    QStringView start = rest;
    while (!rest.isEmpty()) {
        const QStringView before = rest;
        if (NextToken(rest).Part != TPart::SectionEnd)
            continue;
        if (index-- == 0)
            return start.first(start.size() - before.size());
        start = rest;
    }
    return index == 0 ? start : QStringView();
}

/// What one section asks for. Places count from the decimal point: 1 is the digit before it, 0 the
/// one behind it.
struct TSection
{
    QStringView Text;
    bool IsFirst = true;
    int Places = 0;        ///< places for digits
    int IntegerPlaces = 0; ///< those before the point
    int FirstZero = 0;     ///< from this place on a missing digit is a zero
    int LastZero = 0;      ///< down to above this place too
    bool HasThousands = false;
    bool IsScientific = false;

    TSection(QStringView format, int index)
    {
        if (index > 0) {
            Text = SectionText(format, index);
            IsFirst = Text.isEmpty();
        }
        if (IsFirst)
            Text = SectionText(format, 0);
        Scan();
    }

    TDecimalDigits Round(double value) const
    {
        if (IsScientific)
            return {value, std::clamp(Places, 1, MostDigits), 9999};
        return {value, MostDigits, Places - IntegerPlaces};
    }

private:
    void Scan()
    {
        int point = -1, firstZero = -1, lastZero = -1;
        for (QStringView rest = Text; !rest.isEmpty();) {
            switch (NextToken(rest).Part) {
            case TPart::Zero:
                firstZero = firstZero < 0 ? Places : firstZero;
                lastZero = Places++;
                break;
            case TPart::Hash:
                ++Places;
                break;
            case TPart::Point:
                point = point < 0 ? Places : point;
                break;
            case TPart::Comma:
                HasThousands = true;
                break;
            case TPart::Exponent:
                IsScientific = true;
                break;
            default:
                break;
            }
        }
        IntegerPlaces = point < 0 ? Places : point;
        if (firstZero >= 0) {
            FirstZero = std::max(IntegerPlaces - firstZero, 0);
            LastZero = std::min(IntegerPlaces - lastZero - 1, 0);
        }
    }
};

class TPictureWriter
{
public:
    TPictureWriter(const TSection &section, const TDecimalDigits &number, const TFormatSettings &settings)
        : FSection(section), FNumber(number), FSettings(settings),
          FShift(section.IsScientific ? 0 : number.Exponent - section.IntegerPlaces),
          FPlace(section.IntegerPlaces + std::max(FShift, 0))
    {
    }

    QString Write()
    {
        if (FNumber.Negative && FSection.IsFirst)
            FText += u'-';
        for (QStringView rest = FSection.Text; !rest.isEmpty();) {
            const TToken token = NextToken(rest);
            switch (token.Part) {
            case TPart::Text:
                FText += token.Text;
                break;
            case TPart::Zero:
            case TPart::Hash:
                PutPlace();
                break;
            case TPart::Exponent:
                PutExponent(token.Text);
                break;
            default:
                break;
            }
        }
        return std::move(FText);
    }

private:
    void PutPlace()
    {
        if (FShift < 0) {
            ++FShift;
            if (FPlace <= FSection.FirstZero)
                PutDigit(u'0');
            else
                --FPlace;
            return;
        }
        // The first place takes all digits for which the format has no place.
        for (; FShift > 0; --FShift)
            PutNextDigit();
        PutNextDigit();
    }

    void PutNextDigit()
    {
        if (FNext < int(FNumber.Digits.size()) || FPlace > FSection.LastZero)
            PutDigit(QChar(char16_t(FNumber.At(FNext++))));
        else
            --FPlace;
    }

    void PutDigit(QChar digit)
    {
        if (FPlace == 0)
            FText += FSettings.DecimalSeparator;
        FText += digit;
        if (FSection.HasThousands && FPlace > 1 && FPlace % 3 == 1)
            FText += FSettings.ThousandSeparator;
        --FPlace;
    }

    void PutExponent(QStringView mark)
    {
        const int exponent = FNumber.IsZero() ? 0 : FNumber.Exponent - FSection.IntegerPlaces;
        FText += mark[0];
        if (exponent < 0)
            FText += u'-';
        else if (mark[1] == u'+')
            FText += u'+';
        FText += QString::number(std::abs(exponent)).rightJustified(mark.size() - 2, u'0');
    }

    const TSection &FSection;
    const TDecimalDigits &FNumber;
    const TFormatSettings &FSettings;
    int FShift;    ///< digits before the format's first place if positive, places before the first digit
    int FPlace;    ///< the place to be written next
    int FNext = 0; ///< the digit to be written next
    QString FText;
};

} // namespace

QString FormatFloat(const QString &format, double value, const TFormatSettings &settings)
{
    TSection section(format, value < 0 ? 1 : value == 0 ? 2 : 0);
    if (section.Text.isEmpty() || !std::isfinite(value))
        return FloatToStr(value, settings);
    const TDecimalDigits number = section.Round(value);
    if (number.IsZero() && !section.IsScientific) {
        section = TSection(format, 2);
        if (section.Text.isEmpty())
            return FloatToStr(0, settings);
    }
    if (number.Exponent > MostIntegerDigits && !section.IsScientific)
        return FloatToStr(value, settings);
    return TPictureWriter(section, number, settings).Write();
}

} // namespace Korvane
