// SPDX-License-Identifier: MIT
#include "CommandLine.h"

#include <algorithm>

namespace Korvane {

namespace {

const TOption &FindOption(const QList<TOption> &options, const QString &name)
{
    const auto found = std::find_if(options.begin(), options.end(),
                                    [&](const TOption &option) { return option.Name == name; });
    if (found == options.end())
        throw EUsageError(QStringLiteral("未知的选项 --") + name);
    return *found;
}

bool IsOption(const QString &argument) { return argument.startsWith(u'-') && argument.size() > 1; }

} // namespace

TCommandLine::TCommandLine(const QList<TOption> &options, const QStringList &arguments)
{
    for (auto at = arguments.begin(); at != arguments.end(); ++at) {
        if (*at == QLatin1String("--")) {
            FArguments.append(QStringList(at + 1, arguments.end()));
            return;
        }
        if (!IsOption(*at)) {
            FArguments.append(*at);
            continue;
        }
        const QString text = *at == QLatin1String("-h") ? QStringLiteral("--help") : *at;
        if (!text.startsWith(QLatin1String("--")))
            throw EUsageError(QStringLiteral("未知的选项 ") + text);
        const qsizetype equals = text.indexOf(u'=');
        const TOption &option = FindOption(options, equals < 0 ? text.mid(2) : text.mid(2, equals - 2));
        if (FValues.contains(option.Name))
            throw EUsageError(QStringLiteral("选项 --%1 给了不止一次").arg(option.Name));
        if (!option.TakesValue() && equals >= 0)
            throw EUsageError(QStringLiteral("选项 --%1 没有值").arg(option.Name));
        if (option.TakesValue() && equals < 0 && ++at == arguments.end())
            throw EUsageError(QStringLiteral("选项 --%1 缺少值 %2").arg(option.Name, option.Value));
        const QString value = !option.TakesValue() ? QStringLiteral("")
                              : equals < 0         ? *at
                                                   : text.mid(equals + 1);
        FValues.insert(option.Name, value);
    }
}

QString TCommandLine::Take(const QString &name)
{
    const QString argument = FArguments.isEmpty() ? QString() : FArguments.takeFirst();
    if (argument.isEmpty())
        throw EUsageError(QStringLiteral("缺少参数 ") + name);
    return argument;
}

void TCommandLine::CheckEnd() const
{
    if (!FArguments.isEmpty())
        throw EUsageError(QStringLiteral("多余的参数 ") + FArguments.first());
}

} // namespace Korvane
