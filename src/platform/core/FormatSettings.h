// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <array>

namespace Korvane {

/// How dates, times and numbers are written and read. The defaults are the Chinese ones.
struct TFormatSettings
{
    QString CurrencyString = QStringLiteral("￥");
    /// The place of the currency text: 0 "￥1", 1 "1￥", 2 "￥ 1", 3 "1 ￥".
    int CurrencyFormat = 0;
    /// The same for negative amounts: 0 "(￥1)", 1 "-￥1", 2 "￥-1", 3 "￥1-", 4 "(1￥)", 5 "-1￥",
    /// 6 "1-￥", 7 "1￥-", 8 "-1 ￥", 9 "-￥ 1", 10 "1 ￥-", 11 "￥ 1-", 12 "￥ -1", 13 "1- ￥",
    /// 14 "(￥ 1)", 15 "(1 ￥)".
    int NegCurrFormat = 2;
    int CurrencyDecimals = 2;
    QChar ThousandSeparator = u',';
    QChar DecimalSeparator = u'.';

    QChar DateSeparator = u'-';
    QChar TimeSeparator = u':';
    QString ShortDateFormat = QStringLiteral("yyyy-MM-dd");
    QString LongDateFormat = QStringLiteral("yyyy'年'M'月'd'日'");
    QString ShortTimeFormat = QStringLiteral("hh:mm");
    QString LongTimeFormat = QStringLiteral("hh:mm:ss");
    QString TimeAMString = QStringLiteral("上午");
    QString TimePMString = QStringLiteral("下午");
    std::array<QString, 12> ShortMonthNames = LongMonths();
    std::array<QString, 12> LongMonthNames = LongMonths();
    std::array<QString, 7> ShortDayNames = ShortDays(); ///< from Sunday on
    std::array<QString, 7> LongDayNames = LongDays();   ///< from Sunday on
    /// A year of two digits is read into the hundred years that begin this many years ago.
    int TwoDigitYearCenturyWindow = 50;

private:
    static std::array<QString, 12> LongMonths();
    static std::array<QString, 7> ShortDays();
    static std::array<QString, 7> LongDays();
};

/// The settings of the process. An application changes them at its start, before other threads
/// run.
TFormatSettings &DefaultFormatSettings();

} // namespace Korvane
