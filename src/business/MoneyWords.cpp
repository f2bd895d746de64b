// SPDX-License-Identifier: MIT
#include "business/MoneyWords.h"

#include "platform/core/FormatFloat.h"
#include "platform/core/Text.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

// ---- Chinese --------------------------------------------------------------------------

constexpr double MostChinese = 9999999999999.99;
constexpr QStringView Digits = u"零壹贰叁肆伍陆柒捌玖";
constexpr QStringView Units = u"分角元拾佰仟万拾佰仟亿拾佰仟万"; // from the last digit on
constexpr QChar Zero = u'零', Yuan = u'元', TenThousand = u'万', HundredMillion = u'亿', Whole = u'整',
                Cent = u'分';

/// A text of at most one character: what a digit or a unit adds.
class TPiece
{
public:
    TPiece() = default;
    explicit TPiece(QChar c) : FCharacter(c), FIsEmpty(false) {}

    void Clear() { FIsEmpty = true; }
    bool operator==(QChar c) const { return !FIsEmpty && FCharacter == c; }
    void AppendTo(QString &text) const
    {
        if (!FIsEmpty)
            text += FCharacter;
    }

private:
    QChar FCharacter;
    bool FIsEmpty = true;
};

/// What comes before "0" (a point, a sign) reads as zero, what comes behind "9" as nothing.
TPiece DigitOf(QChar c)
{
    if (c < u'0')
        return TPiece(Zero);
    const qsizetype digit = c.unicode() - u'0';
    return digit < Digits.size() ? TPiece(Digits[digit]) : TPiece();
}

TPiece UnitOf(qsizetype fromEnd) { return fromEnd < Units.size() ? TPiece(Units[fromEnd]) : TPiece(); }

/// A zero where a section ends: the section's word comes in its place, and the zero behind it as a
/// mark that waits for a digit.
void EndSection(QString &words, TPiece &digit, TPiece &unit)
{
    if (words.endsWith(Zero))
        words.chop(1);
    if (!words.endsWith(HundredMillion)) {
        digit = std::exchange(unit, TPiece(Zero));
    } else if (unit == Yuan) {
        digit = TPiece(Yuan);
        unit = TPiece(Zero);
    } else {
        unit.Clear();
    }
}

void SpellZero(QString &words, TPiece &digit, TPiece &unit)
{
    const bool isWaiting = words.endsWith(Zero);
    if (isWaiting)
        digit.Clear();
    if (unit == Cent) {
        if (isWaiting)
            words.chop(1);
        words += Whole;
        digit.Clear();
    }
    unit.Clear();
}

// ---- English --------------------------------------------------------------------------

constexpr double MostEnglish = 4294967295.99;

constexpr QLatin1StringView Ones[] = {
    ""_L1,         "One"_L1,     "Two"_L1,     "Three"_L1,     "Four"_L1,     "Five"_L1,    "Six"_L1,
    "Seven"_L1,    "Eight"_L1,   "Nine"_L1,    "Ten"_L1,       "Eleven"_L1,   "Twelve"_L1,  "Thirteen"_L1,
    "Fourteen"_L1, "Fifteen"_L1, "Sixteen"_L1, "Seventeen"_L1, "Eighteen"_L1, "Nineteen"_L1};
// "Ninty" is how it stands on printed documents.
constexpr QLatin1StringView Tens[] = {""_L1,      "Ten"_L1,   "Twenty"_L1,  "Thirty"_L1, "Forty"_L1,
                                      "Fifty"_L1, "Sixty"_L1, "Seventy"_L1, "Eighty"_L1, "Ninty"_L1};

enum class TAnd { Off, On };

QString Words(quint32 number, TAnd mode);

/// The words of number / size, what stands between, and those of the rest.
QString Scaled(quint32 number, quint32 size, QLatin1StringView between)
{
    return Words(number / size, TAnd::Off) + between + Words(number % size, TAnd::On);
}

QString Words(quint32 number, TAnd mode)
{
    if (number < std::size(Ones))
        return Ones[number];
    if (number < 100)
        return number % 10 == 0 ? QString(Tens[number / 10]) : Tens[number / 10] + u'-' + Ones[number % 10];
    if (number < 1000) {
        const bool needsAnd = number % 100 != 0 && mode == TAnd::On;
        return Ones[number / 100] + (needsAnd ? " Hundred And "_L1 : " Hundred "_L1) +
               Words(number % 100, TAnd::On);
    }
    if (number < 1'000'000)
        return Scaled(number, 1000, " Thousand "_L1);
    if (number < 1'000'000'000)
        return Scaled(number, 1'000'000, " Million "_L1);
    return Scaled(number, 1'000'000'000, " Billion, "_L1);
}

/// NOTE: in extended precision, and by the rounding mode that is on everywhere: to the nearest, halves
/// to the even neighbour.
QString CentWords(double fraction)
{
    return Words(quint32(std::rint((long double)(fraction)*100)), TAnd::On);
}

} // namespace

QString CnMoney(double value)
{
    if (value > MostChinese)
        return {};
    if (value == 0)
        return u"零元"_s;
    const QString amount = FloatToStr(double((long double)(value)*100));
    QString words;
    words.reserve(2 * amount.size());
    for (qsizetype i = 0; i < amount.size(); ++i) {
        TPiece digit = DigitOf(amount[i]);
        TPiece unit = UnitOf(amount.size() - 1 - i);
        if (amount[i] == u'0') {
            if (unit == HundredMillion || unit == TenThousand || unit == Yuan)
                EndSection(words, digit, unit);
            else
                SpellZero(words, digit, unit);
        }
        digit.AppendTo(words);
        unit.AppendTo(words);
    }
    return words;
}

QString EnMoney(double value)
{
    const bool hasWhole = value >= 1 && value <= MostEnglish;
    if (!hasWhole && !(value > 0 && value < 1))
        return {};
    const double whole = std::trunc(value);
    const QString words = hasWhole ? Words(quint32(whole), TAnd::On).trimmed() : QString();
    const double fraction = value - whole;
    if (fraction == 0)
        return words + " Only"_L1;
    return words + (hasWhole ? " And Cents "_L1 : " Cents "_L1) + CentWords(fraction) + " Only"_L1;
}

} // namespace Korvane
