// SPDX-License-Identifier: MIT
#include "business/MoneyWords.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

// ---- spellers that go about it differently --------------------------------------------

/// By sections of four digits. The zero that stands for skipped digits is spoken before the next
/// digit that is none.
class TChineseSpeller
{
public:
    explicit TChineseSpeller(qint64 cents)
    {
        const qint64 yuan = cents / 100;
        Section(int(yuan / 1'000'000'000'000), u"万"_s);
        Section(int(yuan / 100'000'000 % 10'000), {});
        if (!FWords.isEmpty()) // of either
            FWords += u'亿';
        Section(int(yuan / 10'000 % 10'000), u"万"_s);
        Section(int(yuan % 10'000), {});
        if (yuan > 0)
            FWords += u'元';
        const int dime = int(cents / 10 % 10), cent = int(cents % 10);
        if (dime > 0)
            Speak(dime, u"角"_s);
        else
            FSkipped = true;
        if (cent > 0)
            Speak(cent, u"分"_s);
        else
            FWords += u'整';
    }
    const QString &Words() const { return FWords; }

private:
    void Speak(int digit, const QString &unit)
    {
        static const QString digits = u"零壹贰叁肆伍陆柒捌玖"_s;
        if (FSkipped && !FWords.isEmpty())
            FWords += u'零';
        FSkipped = false;
        FWords += digits[digit] + unit;
    }
    void Section(int value, const QString &word)
    {
        static const QString units[] = {u"仟"_s, u"佰"_s, u"拾"_s, QString()};
        int divisor = 1000;
        for (const QString &unit : units) {
            const int digit = value / divisor % 10;
            divisor /= 10;
            if (digit > 0)
                Speak(digit, unit);
            else
                FSkipped = true;
        }
        if (value > 0)
            FWords += word;
    }
    QString FWords;
    bool FSkipped = false;
};

QString EnglishBelowThousand(int number, bool isLast)
{
    static const QStringList below20 =
        u" One Two Three Four Five Six Seven Eight Nine Ten Eleven Twelve Thirteen Fourteen Fifteen "
        "Sixteen Seventeen Eighteen Nineteen"_s.split(u' ');
    static const QStringList tens = u"- - Twenty Thirty Forty Fifty Sixty Seventy Eighty Ninty"_s.split(u' ');
    const int rest = number % 100;
    QString words;
    if (number >= 100)
        words = below20[number / 100] + (isLast && rest > 0 ? u" Hundred And "_s : u" Hundred "_s);
    if (rest < 20)
        return words + below20[rest];
    return words + tens[rest / 10] + (rest % 10 > 0 ? u'-' + below20[rest % 10] : QString());
}

QString EnglishNumber(qint64 number)
{
    const struct
    {
        qint64 Size;
        QString Word;
    } scales[] = {{1'000'000'000, u" Billion, "_s}, {1'000'000, u" Million "_s}, {1000, u" Thousand "_s}};
    QString words;
    for (const auto &scale : scales) {
        if (number >= scale.Size)
            words += EnglishBelowThousand(int(number / scale.Size), false) + scale.Word;
        number %= scale.Size;
    }
    return words + EnglishBelowThousand(int(number), true);
}

QString English(qint64 cents)
{
    QString words = EnglishNumber(cents / 100).trimmed();
    if (cents % 100 > 0)
        words += (cents >= 100 ? u" And Cents "_s : u" Cents "_s) + EnglishNumber(cents % 100);
    return words + u" Only"_s;
}

/// Amounts of all lengths, many of them with zeros in any places.
std::vector<qint64> SampleCents(qint64 most)
{
    std::mt19937_64 random(20260307);
    std::vector<qint64> sample;
    for (qint64 cents = 1; cents <= 30'000; ++cents)
        sample.push_back(cents);
    for (int i = 0; i < 60'000; ++i) {
        qint64 cents = 0;
        const int length = int(random() % 15) + 1;
        const unsigned zeros = unsigned(random() % 4);
        for (int digit = 0; digit < length; ++digit)
            cents = cents * 10 + (random() % 4 < zeros ? 0 : qint64(random() % 10));
        if (cents > 0 && cents <= most)
            sample.push_back(cents);
    }
    sample.push_back(most);
    return sample;
}

} // namespace

TEST(MoneyWords, in_chinese)
{
    const struct
    {
        double Amount;
        QString Words;
    } rows[] = {
        {0, u"零元"_s},
        {-0.0, u"零元"_s},
        {0.05, u"伍分"_s},
        {0.5, u"伍角整"_s},
        {1.05, u"壹元零伍分"_s},
        {10, u"壹拾元整"_s},
        {100, u"壹佰元整"_s},
        {100.5, u"壹佰元零伍角整"_s},
        {1234.56, u"壹仟贰佰叁拾肆元伍角陆分"_s},
        {10000, u"壹万元整"_s},
        {105000, u"壹拾万零伍仟元整"_s},
        {100000000, u"壹亿元整"_s},
        {100005000, u"壹亿零伍仟元整"_s},
        {1e12, u"壹万亿元整"_s},
        {9999999999999.99, u"玖万玖仟玖佰玖拾玖亿玖仟玖佰玖拾玖万玖仟玖佰玖拾玖元玖角玖分"_s},
        {10000000000000, {}},
        {std::numeric_limits<double>::infinity(), {}},
        {-5, u"零拾伍元整"_s},              // the sign is spelt, too
        {1.234, u"壹佰贰拾叁元零角肆分"_s}, // and so is a point
    };
    for (const auto &row : rows)
        EXPECT_EQ(CnMoney(row.Amount), row.Words) << row.Amount;
    for (const double amount : {1e-300, -1e300, std::nan(""), 1e-7, 0.123456789012345})
        CnMoney(amount); // whatever it spells
}

TEST(MoneyWords, in_chinese_are_those_of_another_speller)
{
    for (const qint64 cents : SampleCents(999'999'999'999'999))
        ASSERT_EQ(CnMoney(double(cents) / 100), TChineseSpeller(cents).Words()) << cents;
}

TEST(MoneyWords, in_english)
{
    const struct
    {
        double Amount;
        QString Words;
    } rows[] = {
        {1, u"One Only"_s},
        {21.5, u"Twenty-One And Cents Fifty Only"_s},
        {90, u"Ninty Only"_s},
        {100, u"One Hundred Only"_s},
        {121, u"One Hundred And Twenty-One Only"_s},
        {1000, u"One Thousand Only"_s},
        {1234, u"One Thousand Two Hundred And Thirty-Four Only"_s},
        {123456, u"One Hundred Twenty-Three Thousand Four Hundred And Fifty-Six Only"_s},
        {100000, u"One Hundred  Thousand Only"_s},
        {4294967295.99, u"Four Billion, Two Hundred Ninty-Four Million Nine Hundred Sixty-Seven Thousand "
                        "Two Hundred And Ninty-Five And Cents Ninty-Nine Only"_s},
        {0.5, u" Cents Fifty Only"_s},
        {0.125, u" Cents Twelve Only"_s}, // halves go to the even neighbour
        {1.999, u"One And Cents One Hundred  Only"_s},
        {1.001, u"One And Cents  Only"_s},
        {0, {}},
        {-1, {}},
        {4294967296, {}},
        {std::nan(""), {}},
    };
    for (const auto &row : rows)
        EXPECT_EQ(EnMoney(row.Amount), row.Words) << row.Amount;
}

TEST(MoneyWords, in_english_are_those_of_another_speller)
{
    for (const qint64 cents : SampleCents(429'496'729'599))
        ASSERT_EQ(EnMoney(double(cents) / 100), English(cents)) << cents;
}
