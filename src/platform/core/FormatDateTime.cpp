// SPDX-License-Identifier: MIT
#include "platform/core/FormatDateTime.h"

#include <algorithm>
#include <optional>

namespace Korvane {

namespace {

struct TDate
{
    int Year, Month, Day;
};

struct TTime
{
    int Hour, Minute, Second, MSec;
};

class TDateTimeWriter
{
public:
    TDateTimeWriter(TDateTime value, const TFormatSettings &settings) : FValue(value), FSettings(settings) {}

    QString Write(const QString &format)
    {
        Append(format.isEmpty() ? QStringLiteral("c") : format);
        return std::move(FText);
    }

private:
    /// One walk through a format; the settings' formats inside of one have a walk of their own.
    struct TWalk
    {
        QStringView Format;
        qsizetype Pos = 0;
        char16_t LastLetter = u' ';
        bool TwelveHours = false;

        bool AtEnd() const { return Pos >= Format.size(); }
        QStringView Rest() const { return Format.mid(Pos); }
        /// Moves over a run of the character and gives its length.
        int Run(QChar c)
        {
            const qsizetype start = Pos;
            while (!AtEnd() && Format[Pos] == c)
                ++Pos;
            return int(std::min<qsizetype>(Pos - start, 100));
        }
    };

    const TDate &Date()
    {
        if (!FDate) {
            FDate.emplace();
            DecodeDate(FValue, FDate->Year, FDate->Month, FDate->Day);
        }
        return *FDate;
    }

    const TTime &Time()
    {
        if (!FTime) {
            FTime.emplace();
            DecodeTime(FValue, FTime->Hour, FTime->Minute, FTime->Second, FTime->MSec);
        }
        return *FTime;
    }

    void Number(int number, int digits) { FText += QString::number(number).rightJustified(digits, u'0'); }

    void Append(const QString &format)
    {
        // NOTE: a settings' format that names itself ends here.
        if (FDepth >= 2)
            return;
        ++FDepth;
        TWalk walk{format};
        while (!walk.AtEnd())
            AppendNext(walk);
        --FDepth;
    }

    void AppendNext(TWalk &walk)
    {
        const QChar starter = walk.Format[walk.Pos];
        if (starter == u'\'' || starter == u'"')
            return AppendQuoted(walk, starter);
        char16_t letter = starter.unicode() < 0x80 ? starter.toUpper().unicode() : u' ';
        if (letter >= u'A' && letter <= u'Z') {
            if (letter == u'M' && walk.LastLetter == u'H')
                letter = u'N';
            walk.LastLetter = letter;
        }
        if (letter == u'A')
            return AppendHalfOfDay(walk);
        const int count = IsCounted(letter) ? walk.Run(starter) : (++walk.Pos, 1);
        if (!AppendDatePart(letter, count) && !AppendTimePart(walk, letter, count))
            AppendOther(starter);
    }

    static bool IsCounted(char16_t letter) { return QStringView(u"YMDHNSZTC").contains(QChar(letter)); }

    bool AppendDatePart(char16_t letter, int count)
    {
        switch (letter) {
        case u'Y':
            count <= 2 ? Number(Date().Year % 100, 2) : Number(Date().Year, 4);
            return true;
        case u'M':
            AppendMonth(count);
            return true;
        case u'D':
            AppendDay(count);
            return true;
        case u'C':
            AppendDefault();
            return true;
        default:
            return false;
        }
    }

    bool AppendTimePart(TWalk &walk, char16_t letter, int count)
    {
        switch (letter) {
        case u'H':
            AppendHour(walk, count);
            return true;
        case u'N':
            Number(Time().Minute, std::min(count, 2));
            return true;
        case u'S':
            Number(Time().Second, std::min(count, 2));
            return true;
        case u'Z':
            Number(Time().MSec, std::min(count, 3));
            return true;
        case u'T':
            Append(count == 1 ? FSettings.ShortTimeFormat : FSettings.LongTimeFormat);
            return true;
        default:
            return false;
        }
    }

    void AppendOther(QChar c)
    {
        if (c == u'/')
            c = FSettings.DateSeparator;
        else if (c == u':')
            c = FSettings.TimeSeparator;
        if (!c.isNull())
            FText += c;
    }

    void AppendMonth(int count)
    {
        const size_t index = size_t(Date().Month - 1);
        if (count <= 2)
            Number(Date().Month, count);
        else
            FText += count == 3 ? FSettings.ShortMonthNames[index] : FSettings.LongMonthNames[index];
    }

    void AppendDay(int count)
    {
        if (count <= 2)
            Number(Date().Day, count);
        else if (count <= 4)
            AppendWeekday(count);
        else
            Append(count == 5 ? FSettings.ShortDateFormat : FSettings.LongDateFormat);
    }

    void AppendWeekday(int count)
    {
        const size_t index = size_t(DayOfWeek(FValue) - 1);
        FText += count == 3 ? FSettings.ShortDayNames[index] : FSettings.LongDayNames[index];
    }

    void AppendDefault()
    {
        Append(FSettings.ShortDateFormat);
        if (Time().Hour == 0 && Time().Minute == 0 && Time().Second == 0)
            return;
        FText += u' ';
        Append(FSettings.LongTimeFormat);
    }

    void AppendHour(TWalk &walk, int count)
    {
        walk.TwelveHours = walk.TwelveHours || HasHalfOfDayAhead(walk.Rest());
        int hour = Time().Hour;
        if (walk.TwelveHours)
            hour = hour % 12 == 0 ? 12 : hour % 12;
        Number(hour, std::min(count, 2));
    }

    static bool HasHalfOfDayAhead(QStringView rest)
    {
        bool isQuoted = false;
        for (; !rest.isEmpty(); rest = rest.mid(1)) {
            const QChar c = rest.front().toLower();
            if (c == u'\'' || c == u'"')
                isQuoted = !isQuoted;
            else if (c == u'h' && !isQuoted)
                return false;
            else if (c == u'a' && !isQuoted)
                return IsHalfOfDay(rest);
        }
        return false;
    }

    static bool IsHalfOfDay(QStringView text)
    {
        return StartsWith(text, u"am/pm") || StartsWith(text, u"a/p") || StartsWith(text, u"ampm");
    }

    static bool StartsWith(QStringView text, QStringView word)
    {
        return text.startsWith(word, Qt::CaseInsensitive);
    }

    void AppendWeekdayRun(TWalk &walk, QStringView rest)
    {
        const int count = StartsWith(rest, u"aaaa") ? 4 : 3;
        AppendWeekday(count);
        walk.Pos += count;
    }

    void AppendHalfOfDay(TWalk &walk)
    {
        const QStringView rest = walk.Rest();
        if (StartsWith(rest, u"aaa"))
            return AppendWeekdayRun(walk, rest);
        const bool isMorning = IsHalfOfDay(rest) && Time().Hour < 12;
        qsizetype length = 1;
        if (StartsWith(rest, u"am/pm")) {
            FText += rest.mid(isMorning ? 0 : 3, 2); // as the format spells it
            length = 5;
        } else if (StartsWith(rest, u"a/p")) {
            FText += rest[isMorning ? 0 : 2];
            length = 3;
        } else if (StartsWith(rest, u"ampm")) {
            FText += isMorning ? FSettings.TimeAMString : FSettings.TimePMString;
            length = 4;
        } else {
            FText += rest.front();
        }
        walk.TwelveHours = walk.TwelveHours || length > 1;
        walk.Pos += length;
    }

    void AppendQuoted(TWalk &walk, QChar quote)
    {
        const qsizetype start = ++walk.Pos;
        while (!walk.AtEnd() && walk.Format[walk.Pos] != quote)
            ++walk.Pos;
        FText += walk.Format.mid(start, walk.Pos - start);
        ++walk.Pos;
    }

    TDateTime FValue;
    const TFormatSettings &FSettings;
    QString FText;
    int FDepth = 0;
    std::optional<TDate> FDate;
    std::optional<TTime> FTime;
};

} // namespace

QString FormatDateTime(const QString &format, TDateTime value, const TFormatSettings &settings)
{
    return TDateTimeWriter(value, settings).Write(format);
}

QString DateToStr(TDateTime value, const TFormatSettings &settings)
{
    return FormatDateTime(settings.ShortDateFormat, value, settings);
}

QString TimeToStr(TDateTime value, const TFormatSettings &settings)
{
    return FormatDateTime(settings.LongTimeFormat, value, settings);
}

QString DateTimeToStr(TDateTime value, const TFormatSettings &settings)
{
    return FormatDateTime({}, value, settings);
}

} // namespace Korvane
