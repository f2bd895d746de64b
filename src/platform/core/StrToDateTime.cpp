// SPDX-License-Identifier: MIT
#include "platform/core/Exceptions.h"
#include "platform/core/FormatDateTime.h"

namespace Korvane {

namespace {

enum class TDateOrder { MonthDayYear, DayMonthYear, YearMonthDay };

TDateOrder DateOrderOf(const QString &format)
{
    for (const QChar c : format) {
        switch (c.toLower().unicode()) {
        case u'y':
        case u'e':
            return TDateOrder::YearMonthDay;
        case u'd':
            return TDateOrder::DayMonthYear;
        case u'm':
            return TDateOrder::MonthDayYear;
        default:
            break;
        }
    }
    return TDateOrder::MonthDayYear;
}

/// Reads a date or a time from a position on; the position moves even where the reading fails.
class TScanner
{
public:
    TScanner(QStringView text, const TFormatSettings &settings) : FText(text), FSettings(settings) {}

    bool AtEnd() const { return FPos >= FText.size(); }

    bool ScanDate(TDateTime &value)
    {
        TNumber numbers[3];
        if (!ScanNumber(numbers[0]) || !ScanChar(FSettings.DateSeparator) || !ScanNumber(numbers[1]))
            return false;
        const bool hasYear = ScanChar(FSettings.DateSeparator);
        if (hasYear && !ScanNumber(numbers[2]))
            return false;
        ScanChar(FSettings.DateSeparator);
        SkipBlanks();
        return hasYear ? EncodeFull(numbers, value) : EncodeInThisYear(numbers, value);
    }

    bool ScanTime(TDateTime &value)
    {
        THalf half = ScanHalf();
        SkipBlanks();
        TNumber hour, minute, second, msec;
        if (!ScanNumber(hour))
            return false;
        if (ScanChar(FSettings.TimeSeparator)) {
            if (!ScanNumber(minute))
                return false;
            if (ScanChar(FSettings.TimeSeparator)) {
                if (!ScanNumber(second) || (ScanChar(u'.') && !ScanNumber(msec)))
                    return false;
            }
        }
        if (half == THalf::None)
            half = ScanHalf();
        SkipBlanks();
        if (half != THalf::None) {
            if (hour.Value < 1 || hour.Value > 12)
                return false;
            hour.Value = hour.Value % 12 + (half == THalf::Afternoon ? 12 : 0);
        }
        return TryEncodeTime(hour.Value, minute.Value, second.Value, msec.Value, value);
    }

private:
    enum class THalf { None, Morning, Afternoon };

    struct TNumber
    {
        int Value = 0;
        int Digits = 0;
    };

    void SkipBlanks()
    {
        while (!AtEnd() && FText[FPos] == u' ')
            ++FPos;
    }

    bool ScanNumber(TNumber &number)
    {
        SkipBlanks();
        number = {};
        for (; !AtEnd() && FText[FPos] >= u'0' && FText[FPos] <= u'9' && number.Value < 1000; ++FPos) {
            number.Value = number.Value * 10 + FText[FPos].unicode() - u'0';
            ++number.Digits;
        }
        return number.Digits > 0;
    }

    bool ScanChar(QChar c)
    {
        SkipBlanks();
        if (AtEnd() || FText[FPos] != c)
            return false;
        ++FPos;
        return true;
    }

    bool ScanWord(QStringView word)
    {
        SkipBlanks();
        if (word.isEmpty() || !FText.mid(FPos).startsWith(word, Qt::CaseInsensitive))
            return false;
        FPos += word.size();
        return true;
    }

    THalf ScanHalf()
    {
        if (ScanWord(FSettings.TimeAMString) || ScanWord(u"AM"))
            return THalf::Morning;
        if (ScanWord(FSettings.TimePMString) || ScanWord(u"PM"))
            return THalf::Afternoon;
        return THalf::None;
    }

    bool EncodeFull(const TNumber (&numbers)[3], TDateTime &value) const
    {
        switch (DateOrderOf(FSettings.ShortDateFormat)) {
        case TDateOrder::YearMonthDay:
            return TryEncodeDate(YearOf(numbers[0]), numbers[1].Value, numbers[2].Value, value);
        case TDateOrder::DayMonthYear:
            return TryEncodeDate(YearOf(numbers[2]), numbers[1].Value, numbers[0].Value, value);
        case TDateOrder::MonthDayYear:
            break;
        }
        return TryEncodeDate(YearOf(numbers[2]), numbers[0].Value, numbers[1].Value, value);
    }

    bool EncodeInThisYear(const TNumber (&numbers)[3], TDateTime &value) const
    {
        const bool isDayFirst = DateOrderOf(FSettings.ShortDateFormat) == TDateOrder::DayMonthYear;
        return TryEncodeDate(QDate::currentDate().year(), numbers[isDayFirst ? 1 : 0].Value,
                             numbers[isDayFirst ? 0 : 1].Value, value);
    }

    int YearOf(const TNumber &number) const
    {
        if (number.Digits > 2)
            return number.Value;
        const int window = FSettings.TwoDigitYearCenturyWindow;
        const int base = QDate::currentDate().year() - window;
        const int year = number.Value + base / 100 * 100;
        return window > 0 && year < base ? year + 100 : year;
    }

    QStringView FText;
    const TFormatSettings &FSettings;
    qsizetype FPos = 0;
};

} // namespace

bool TryStrToDate(const QString &text, TDateTime &value, const TFormatSettings &settings)
{
    TScanner scanner(text, settings);
    TDateTime date;
    if (!scanner.ScanDate(date) || !scanner.AtEnd())
        return false;
    value = date;
    return true;
}

bool TryStrToTime(const QString &text, TDateTime &value, const TFormatSettings &settings)
{
    TScanner scanner(text, settings);
    TDateTime time;
    if (!scanner.ScanTime(time) || !scanner.AtEnd())
        return false;
    value = time;
    return true;
}

bool TryStrToDateTime(const QString &text, TDateTime &value, const TFormatSettings &settings)
{
    TScanner scanner(text, settings);
    TDateTime date, time;
    if (!scanner.ScanDate(date) || !(scanner.AtEnd() || (scanner.ScanTime(time) && scanner.AtEnd())))
        return TryStrToTime(text, value, settings);
    value = ComposeDateTime(date, time);
    return true;
}

TDateTime StrToDate(const QString &text, const TFormatSettings &settings)
{
    TDateTime result;
    if (!TryStrToDate(text, result, settings))
        throw EConvertError(QStringLiteral("'%1' 不是有效的日期").arg(text));
    return result;
}

TDateTime StrToTime(const QString &text, const TFormatSettings &settings)
{
    TDateTime result;
    if (!TryStrToTime(text, result, settings))
        throw EConvertError(QStringLiteral("'%1' 不是有效的时间").arg(text));
    return result;
}

TDateTime StrToDateTime(const QString &text, const TFormatSettings &settings)
{
    TDateTime result;
    if (!TryStrToDateTime(text, result, settings))
        throw EConvertError(QStringLiteral("'%1' 不是有效的日期和时间").arg(text));
    return result;
}

} // namespace Korvane
