// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlMoment.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// Up to so many digits at the place; -1 if there is none.
int TakeNumber(QStringView text, qsizetype &at, int most)
{
    int value = 0;
    const qsizetype start = at;
    while (at < text.size() && at - start < most && text[at] >= u'0' && text[at] <= u'9')
        value = value * 10 + (text[at++].unicode() - u'0');
    return at > start ? value : -1;
}

bool TakeSign(QStringView text, qsizetype &at, QChar sign)
{
    if (at >= text.size() || text[at] != sign)
        return false;
    ++at;
    return true;
}

std::optional<QTime> TakeTime(QStringView text, qsizetype &at)
{
    const int hour = TakeNumber(text, at, 2);
    if (hour < 0 || !TakeSign(text, at, u':'))
        return std::nullopt;
    const int minute = TakeNumber(text, at, 2);
    int second = 0, millisecond = 0;
    if (TakeSign(text, at, u':')) {
        second = TakeNumber(text, at, 2);
        if (TakeSign(text, at, u'.') || TakeSign(text, at, u':')) {
            const qsizetype start = at;
            millisecond = TakeNumber(text, at, 3);
            for (qsizetype digits = at - start; digits < 3; ++digits)
                millisecond *= 10;
            TakeNumber(text, at, 6); // finer than the library keeps
        }
    }
    const QTime time(hour, minute, second, millisecond);
    return time.isValid() ? std::optional(time) : std::nullopt;
}

std::optional<QDate> TakeDate(QStringView text, qsizetype &at)
{
    const int year = TakeNumber(text, at, 4);
    const qsizetype separator = at;
    for (const QChar sign : u"-/."_s) {
        at = separator;
        if (at != 4 || !TakeSign(text, at, sign))
            continue;
        const int month = TakeNumber(text, at, 2);
        const int day = TakeSign(text, at, sign) ? TakeNumber(text, at, 2) : -1;
        const QDate date(year, month, day);
        return date.isValid() ? std::optional(date) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<TSqlMoment> ParseDigits(QStringView text)
{
    const auto number = [&](qsizetype at, qsizetype count) { return text.mid(at, count).toInt(); };
    TSqlMoment moment{QDate(number(0, 4), number(4, 2), number(6, 2)), QTime()};
    if (text.size() == 14)
        moment.Time = QTime(number(8, 2), number(10, 2), number(12, 2));
    const bool isGood = moment.Date.isValid() && (text.size() == 8 || moment.Time.isValid());
    return isGood ? std::optional(moment) : std::nullopt;
}

} // namespace

QString TSqlMoment::ToText() const
{
    if (!Date.isValid())
        return TimeOrMidnight().toString(u"HH:mm:ss"_s);
    return Time.isValid() ? QDateTime(Date, Time, Qt::UTC).toString(u"yyyy-MM-dd HH:mm:ss.zzz"_s)
                          : Date.toString(u"yyyy-MM-dd"_s);
}

std::optional<TSqlMoment> ParseSqlMoment(const QString &written)
{
    const QString trimmed = written.trimmed();
    const QStringView text(trimmed);
    const bool isDigits =
        std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (isDigits)
        return text.size() == 8 || text.size() == 14 ? ParseDigits(text) : std::nullopt;
    TSqlMoment moment;
    qsizetype at = 0;
    if (const auto date = TakeDate(text, at)) {
        moment.Date = *date;
        if (at == text.size())
            return moment;
        if (!TakeSign(text, at, u' ') && !TakeSign(text, at, u'T'))
            return std::nullopt;
    } else {
        at = 0;
    }
    const auto time = TakeTime(text, at);
    if (!time || at != text.size())
        return std::nullopt;
    moment.Time = *time;
    return moment;
}

} // namespace Korvane
