// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlCall.h"
#include "platform/sql/dialect/SqlMoment.h"

#include <QDateTime>
#include <QUuid>

#include <cmath>
#include <ctime>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

enum class TPart { Year, Quarter, Month, DayOfYear, Day, Week, WeekDay, Hour, Minute, Second, Millisecond };

TPart PartOf(const QString &name)
{
    struct TName
    {
        QLatin1StringView Name;
        TPart Part;
    };
    static constexpr TName Names[] = {{"yyyy"_L1, TPart::Year},       {"yy"_L1, TPart::Year},
                                      {"year"_L1, TPart::Year},       {"q"_L1, TPart::Quarter},
                                      {"qq"_L1, TPart::Quarter},      {"quarter"_L1, TPart::Quarter},
                                      {"m"_L1, TPart::Month},         {"mm"_L1, TPart::Month},
                                      {"month"_L1, TPart::Month},     {"y"_L1, TPart::DayOfYear},
                                      {"dy"_L1, TPart::DayOfYear},    {"dayofyear"_L1, TPart::DayOfYear},
                                      {"d"_L1, TPart::Day},           {"dd"_L1, TPart::Day},
                                      {"day"_L1, TPart::Day},         {"ww"_L1, TPart::Week},
                                      {"wk"_L1, TPart::Week},         {"week"_L1, TPart::Week},
                                      {"w"_L1, TPart::WeekDay},       {"dw"_L1, TPart::WeekDay},
                                      {"weekday"_L1, TPart::WeekDay}, {"h"_L1, TPart::Hour},
                                      {"hh"_L1, TPart::Hour},         {"hour"_L1, TPart::Hour},
                                      {"n"_L1, TPart::Minute},        {"mi"_L1, TPart::Minute},
                                      {"minute"_L1, TPart::Minute},   {"s"_L1, TPart::Second},
                                      {"ss"_L1, TPart::Second},       {"second"_L1, TPart::Second},
                                      {"ms"_L1, TPart::Millisecond},  {"millisecond"_L1, TPart::Millisecond}};
    const QString lower = name.trimmed().toLower();
    for (const TName &known : Names) {
        if (lower == known.Name)
            return known.Part;
    }
    throw ESqlError(u"“%1”不是日期的组成部分"_s.arg(name.left(100)));
}

/// The date-time of an argument; a number is a date-time number. An empty text is no date.
std::optional<TSqlMoment> MomentOf(TSqlCall &call, int i)
{
    if (call.IsNull(i))
        return std::nullopt;
    const QString text = call.String(i);
    if (text.trimmed().isEmpty())
        return std::nullopt;
    if (const auto moment = ParseSqlMoment(text))
        return moment;
    if (const auto number = ParseSqlNumber(call.Text(i)); number && std::abs(*number) < 2958466) {
        const QDateTime value = TDateTime(*number).ToQDateTime();
        if (value.isValid())
            return TSqlMoment{value.date(), value.time()};
        return TSqlMoment{QDate(1899, 12, 30), QTime(0, 0)};
    }
    throw ESqlError(u"“%1”不是有效的日期时间"_s.arg(text.left(100)));
}

int PartValue(const TSqlMoment &moment, TPart part)
{
    const QDate date = moment.DateOrFirst();
    const QTime time = moment.TimeOrMidnight();
    switch (part) {
    case TPart::Year:
        return date.year();
    case TPart::Quarter:
        return (date.month() + 2) / 3;
    case TPart::Month:
        return date.month();
    case TPart::DayOfYear:
        return date.dayOfYear();
    case TPart::Day:
        return date.day();
    case TPart::Week:
        // The week of January 1 is the first; weeks begin on Sunday.
        return (date.dayOfYear() + QDate(date.year(), 1, 1).dayOfWeek() % 7 - 1) / 7 + 1;
    case TPart::WeekDay:
        return date.dayOfWeek() % 7 + 1;
    case TPart::Hour:
        return time.hour();
    case TPart::Minute:
        return time.minute();
    case TPart::Second:
        return time.second();
    case TPart::Millisecond:
        return time.msec();
    }
    return 0;
}

template <TPart Part> void PartFunction(TSqlCall &call)
{
    if (const auto moment = MomentOf(call, 0))
        call.SetInteger(PartValue(*moment, Part));
}

/// datepart(part, x)
void DatePart(TSqlCall &call)
{
    if (call.IsNull(0))
        return;
    const TPart part = PartOf(call.String(0));
    if (const auto moment = MomentOf(call, 1))
        call.SetInteger(PartValue(*moment, part));
}

void SetMoment(TSqlCall &call, const TSqlMoment &moment)
{
    const int year = moment.DateOrFirst().year();
    if (year < 1 || year > 9999)
        throw ESqlError(u"日期超出范围"_s);
    call.SetText(moment.ToText());
}

/// dateadd(part, count, x): the day alone, if x is one and the part no shorter.
void DateAdd(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const TPart part = PartOf(call.String(0));
    const int count = call.Position(1);
    const auto moment = MomentOf(call, 2);
    if (!moment)
        return;
    // Months beyond the calendar would overflow below.
    if (std::abs(double(count)) > 3.2e8 && part < TPart::Hour)
        throw ESqlError(u"日期超出范围"_s);
    const QDate date = moment->DateOrFirst();
    const auto shifted = [&](const QDate &day) { SetMoment(call, {day, moment->Time}); };
    const auto later = [&](qint64 milliseconds) {
        const QDateTime value =
            QDateTime(date, moment->TimeOrMidnight(), Qt::UTC).addMSecs(milliseconds * count);
        SetMoment(call, {value.date(), value.time()});
    };
    switch (part) {
    case TPart::Year:
        return shifted(date.addYears(count));
    case TPart::Quarter:
        return shifted(date.addMonths(count * 3));
    case TPart::Month:
        return shifted(date.addMonths(count));
    case TPart::Week:
        return shifted(date.addDays(qint64(count) * 7));
    case TPart::DayOfYear:
    case TPart::Day:
    case TPart::WeekDay:
        return shifted(date.addDays(count));
    case TPart::Hour:
        return later(3'600'000);
    case TPart::Minute:
        return later(60'000);
    case TPart::Second:
        return later(1000);
    case TPart::Millisecond:
        return later(1);
    }
}

/// datediff(part, from, to): how many boundaries of the part lie between.
void DateDiff(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const TPart part = PartOf(call.String(0));
    const auto from = MomentOf(call, 1);
    const auto to = MomentOf(call, 2);
    if (!from || !to)
        return;
    const QDate a = from->DateOrFirst(), b = to->DateOrFirst();
    const qint64 days = a.daysTo(b);
    const qint64 months = (b.year() - a.year()) * 12 + b.month() - a.month();
    const auto units = [&](qint64 milliseconds) {
        return days * (86'400'000 / milliseconds) +
               to->TimeOrMidnight().msecsSinceStartOfDay() / milliseconds -
               from->TimeOrMidnight().msecsSinceStartOfDay() / milliseconds;
    };
    const auto sunday = [](const QDate &day) { return day.addDays(-(day.dayOfWeek() % 7)); };
    switch (part) {
    case TPart::Year:
        return call.SetInteger(b.year() - a.year());
    case TPart::Quarter:
        return call.SetInteger((b.year() - a.year()) * 4 + (b.month() - 1) / 3 - (a.month() - 1) / 3);
    case TPart::Month:
        return call.SetInteger(months);
    case TPart::Week:
        return call.SetInteger(sunday(a).daysTo(sunday(b)) / 7);
    case TPart::WeekDay:
        // The Access dialect counts whole weeks here.
        return call.SetInteger(call.IsAccess() ? days / 7 : days);
    case TPart::DayOfYear:
    case TPart::Day:
        return call.SetInteger(days);
    case TPart::Hour:
        return call.SetInteger(units(3'600'000));
    case TPart::Minute:
        return call.SetInteger(units(60'000));
    case TPart::Second:
        return call.SetInteger(units(1000));
    case TPart::Millisecond:
        return call.SetInteger(units(1));
    }
}

/// dateserial(year, month, day): months and days beyond the calendar carry over.
void DateSerial(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const int year = call.Position(0), month = call.Position(1), day = call.Position(2);
    if (year < 100 || year > 9999 || std::abs(double(month)) > 120'000 || std::abs(double(day)) > 4'000'000)
        throw ESqlError(u"日期超出范围"_s);
    SetMoment(call, {QDate(year, 1, 1).addMonths(month - 1).addDays(day - 1), QTime()});
}

void Moment(TSqlCall &call)
{
    if (const auto moment = MomentOf(call, 0))
        SetMoment(call, {moment->DateOrFirst(), moment->TimeOrMidnight()});
}

void Day(TSqlCall &call)
{
    if (const auto moment = MomentOf(call, 0))
        SetMoment(call, {moment->DateOrFirst(), QTime()});
}

/// "yyyy-mm-dd hh:mm:ss.zzz" of this moment. Every saved row asks for it: it is put together
/// without a QDateTime.
template <auto Decode> void PresentMoment(TSqlCall &call)
{
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts;
    Decode(&now.tv_sec, &parts);
    char text[] = "yyyy-mm-dd hh:mm:ss.zzz";
    const auto put = [&text](size_t at, size_t digits, int number) {
        for (; digits > 0; number /= 10)
            text[at + --digits] = char('0' + number % 10);
    };
    put(0, 4, parts.tm_year + 1900);
    put(5, 2, parts.tm_mon + 1);
    put(8, 2, parts.tm_mday);
    put(11, 2, parts.tm_hour);
    put(14, 2, parts.tm_min);
    put(17, 2, parts.tm_sec);
    put(20, 3, int(now.tv_nsec / 1'000'000));
    call.SetText(std::string_view(text));
}

void Today(TSqlCall &call) { call.SetText(QDate::currentDate().toString(u"yyyy-MM-dd"_s)); }

void TimeText(TSqlCall &call) { call.SetText(QTime::currentTime().toString(u"HH:mm:ss"_s)); }

void NewId(TSqlCall &call) { call.SetText(QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper()); }

constexpr TSqlFunction Functions[] = {
    {"korvane_now", 0, 0, false, &PresentMoment<&localtime_r>},
    {"korvane_utcnow", 0, 0, false, &PresentMoment<&gmtime_r>},
    {"korvane_date", 0, 0, false, &Today},
    {"korvane_time", 0, 0, false, &TimeText},
    {"korvane_newid", 0, 0, false, &NewId},
    {"korvane_moment", 1, 1, true, &Moment},
    {"korvane_day", 1, 1, true, &Day},
    {"korvane_year", 1, 1, true, &PartFunction<TPart::Year>},
    {"korvane_month", 1, 1, true, &PartFunction<TPart::Month>},
    {"korvane_dayofmonth", 1, 1, true, &PartFunction<TPart::Day>},
    {"korvane_hour", 1, 1, true, &PartFunction<TPart::Hour>},
    {"korvane_minute", 1, 1, true, &PartFunction<TPart::Minute>},
    {"korvane_second", 1, 1, true, &PartFunction<TPart::Second>},
    {"korvane_weekday", 1, 1, true, &PartFunction<TPart::WeekDay>},
    {"korvane_datepart", 2, 2, true, &DatePart},
    {"korvane_dateadd", 3, 3, true, &DateAdd},
    {"korvane_datediff", 3, 3, true, &DateDiff},
    {"korvane_dateserial", 3, 3, true, &DateSerial},
};

} // namespace

std::span<const TSqlFunction> SqlDateFunctions() { return Functions; }

} // namespace Korvane
