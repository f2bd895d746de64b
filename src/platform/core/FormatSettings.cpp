// SPDX-License-Identifier: MIT
#include "platform/core/FormatSettings.h"

namespace Korvane {

std::array<QString, 12> TFormatSettings::LongMonths()
{
    return {QStringLiteral("一月"), QStringLiteral("二月"),   QStringLiteral("三月"),
            QStringLiteral("四月"), QStringLiteral("五月"),   QStringLiteral("六月"),
            QStringLiteral("七月"), QStringLiteral("八月"),   QStringLiteral("九月"),
            QStringLiteral("十月"), QStringLiteral("十一月"), QStringLiteral("十二月")};
}

std::array<QString, 7> TFormatSettings::ShortDays()
{
    return {QStringLiteral("日"), QStringLiteral("一"), QStringLiteral("二"), QStringLiteral("三"),
            QStringLiteral("四"), QStringLiteral("五"), QStringLiteral("六")};
}

std::array<QString, 7> TFormatSettings::LongDays()
{
    std::array<QString, 7> result = ShortDays();
    for (QString &name : result)
        name.prepend(QStringLiteral("星期"));
    return result;
}

TFormatSettings &DefaultFormatSettings()
{
    static TFormatSettings settings;
    return settings;
}

} // namespace Korvane
