// SPDX-License-Identifier: MIT
// The commands for amounts in words and for document numbers.
#include "Commands.h"
#include "ToolOptions.h"

#include "business/AutoCode.h"
#include "business/MoneyWords.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/Numbers.h"
#include "session/DBSession.h"

#include <QRegularExpression>

namespace Korvane {

namespace {

/// The option's value; nothing when it was not given. Raises EUsageError for what is no number of the
/// range.
std::optional<int> WholeOption(const TCommandLine &line, const QString &option, int least, int most)
{
    if (!line.Has(option))
        return std::nullopt;
    int value = 0;
    if (!TryStrToInt(line.Value(option), value) || value < least || value > most)
        throw EUsageError(QStringLiteral("选项 --%1 的值应为 %2 到 %3：%4")
                              .arg(option)
                              .arg(least)
                              .arg(most)
                              .arg(line.Value(option)));
    return value;
}

TCodeType CodeTypeOf(const QString &name)
{
    const QStringList names = {QStringLiteral("day"), QStringLiteral("month"), QStringLiteral("year"),
                               QStringLiteral("number")};
    const qsizetype index = names.indexOf(name);
    if (index < 0)
        throw EUsageError(
            QStringLiteral("未知的编码方式 %1，应为 %2").arg(name, names.join(QStringLiteral("、"))));
    return TCodeType(index);
}

TDateTime DateOf(const QString &text)
{
    const QDate date = QDate::fromString(text, Qt::ISODate);
    if (!date.isValid())
        throw EUsageError(QStringLiteral("选项 --date 的值应为 YYYY-MM-DD：%1").arg(text));
    return TDateTime(date);
}

} // namespace

int RunWords(TCommandLine &line, TToolStreams &streams)
{
    const QString text = line.Take(QStringLiteral("AMOUNT"));
    line.CheckEnd();
    static const QRegularExpression form(QStringLiteral("\\A\\d+(\\.\\d{1,2})?\\z"));
    if (!form.match(text).hasMatch())
        throw EUsageError(QStringLiteral("金额应为不带符号、最多两位小数的数：%1").arg(text));
    const double amount = StrToFloat(text);
    const QString words = line.Has(QStringLiteral("en")) ? EnMoney(amount) : CnMoney(amount);
    if (words.isEmpty()) {
        streams.Err << QStringLiteral("金额超出范围：%1\n").arg(text);
        return tsFailed;
    }
    streams.Out << words << '\n';
    return tsDone;
}

int RunNextCode(TCommandLine &line, TToolStreams &streams)
{
    TDBSession session;
    AimSession(session, line);
    TAutoCode code;
    code.SetDBSession(&session);
    code.SetTable(line.Take(QStringLiteral("TABLE")));
    code.SetField(line.Take(QStringLiteral("FIELD")));
    line.CheckEnd();
    const QString rule = line.Value(QStringLiteral("rule"));
    if (line.Has(QStringLiteral("type")))
        code.SetCodeType(CodeTypeOf(line.Value(QStringLiteral("type"))));
    code.SetNumberDigit(WholeOption(line, QStringLiteral("digits"), 1, 9).value_or(code.NumberDigit()));
    code.SetYearDigit(WholeOption(line, QStringLiteral("year-digits"), 0, 4).value_or(code.YearDigit()));
    code.SetByCustom(line.Has(QStringLiteral("custom")));
    const std::optional<TDateTime> date = line.Has(QStringLiteral("date"))
                                              ? std::optional(DateOf(line.Value(QStringLiteral("date"))))
                                              : std::nullopt;

    session.SetConnected(true);
    code.SetToday(date ? *date : session.GetDateTime());
    const QString next = rule.isNull() ? code.GetAutoCode() : code.GetAutoCode(rule);
    if (next.isEmpty()) {
        streams.Err << QStringLiteral("没有编码规则 %1，或者该规则为手工编码\n").arg(rule);
        return tsFailed;
    }
    streams.Out << next << '\n';
    return tsDone;
}

} // namespace Korvane
