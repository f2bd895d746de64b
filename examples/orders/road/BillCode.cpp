// SPDX-License-Identifier: MIT
#include "OrdersRecords.h" // generated from the design by the build
#include "examples/orders/road/OrderForm.h"
#include "examples/orders/road/Stage.h"
#include "examples/orders/road/Steps.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

/// How numbers are made: codes of the column 编码方式.
constexpr auto ByDay = '1', ByMonth = '2', ByYear = '3';

/// The part of a number before its serial.
QString PrefixOf(const TBillKind &kind, const QString &date)
{
    const QString year = date.left(4).right(kind.YearDigit);
    if (kind.CodeKind == QLatin1Char(ByDay))
        return year + date.mid(4, 4);
    if (kind.CodeKind == QLatin1Char(ByMonth))
        return year + date.mid(4, 2);
    return kind.CodeKind == QLatin1Char(ByYear) ? year : QString();
}

} // namespace

QString NextBillCode(TStage &stage, const QString &kind, const QString &date)
{
    TExTable kinds;
    SetUp(kinds, stage, u"SYSMQ"_s);
    kinds.OpenTable(u"MQ001"_s, kind, ooEqualAnd);
    if (kinds.IsEmpty())
        throw Exception(u"没有单别：%1"_s.arg(kind));
    const auto record = kinds.GetCurrentObject();
    const auto &rule = static_cast<const TBillKind &>(*record);
    const QString prefix = PrefixOf(rule, date);

    TExTable heads;
    SetUp(heads, stage, u"ORDERHEAD"_s);
    const QString lowest = prefix + QString(rule.NumberDigit, u'0');
    const QString highest = prefix + QString(rule.NumberDigit, u'9');
    heads.OpenTable(u"BILLTYPE='%1' and BILLCODE between '%2' and '%3'"_s.arg(kind, lowest, highest),
                    u"BILLCODE desc"_s, 1);
    const QString last = heads.IsEmpty() ? lowest : heads.FieldByName(u"BILLCODE")->AsString();
    return prefix + u"%1"_s.arg(last.mid(prefix.size()).toInt() + 1, rule.NumberDigit, 10, QLatin1Char('0'));
}
