// SPDX-License-Identifier: MIT
#include "platform/core/Variants.h"

#include "platform/core/Exceptions.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/FormatFloat.h"
#include "platform/core/Numbers.h"
#include "platform/core/Text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Korvane {

namespace {

enum class TKind { Null, Text, Bool, Integer, Float, DateTime, Array, Other };

TKind KindOf(const QVariant &value)
{
    if (value.isNull()) // also a NULL that has a type
        return TKind::Null;
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return TKind::Null;
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QChar:
        return TKind::Text;
    case QMetaType::Bool:
        return TKind::Bool;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return TKind::Integer;
    case QMetaType::Double:
    case QMetaType::Float:
        return TKind::Float;
    case QMetaType::QDate:
        return value.toDate().isValid() ? TKind::DateTime : TKind::Null;
    case QMetaType::QTime:
        return value.toTime().isValid() ? TKind::DateTime : TKind::Null;
    case QMetaType::QDateTime:
        return value.toDateTime().isValid() ? TKind::DateTime : TKind::Null;
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return TKind::Array;
    default:
        break;
    }
    if (value.metaType() == QMetaType::fromType<TDateTime>())
        return TKind::DateTime;
    return value.metaType().flags().testFlag(QMetaType::IsEnumeration) ? TKind::Integer : TKind::Other;
}

bool IsNumber(TKind kind) { return kind == TKind::Bool || kind == TKind::Integer || kind == TKind::Float; }

QString TypeName(const QVariant &value)
{
    return KindOf(value) == TKind::Array ? QStringLiteral("数组")
                                         : QString::fromLatin1(value.metaType().name());
}

[[noreturn]] void RaiseNoConversion(const QVariant &value, const QString &target)
{
    if (KindOf(value) == TKind::Text)
        throw EVariantError(QStringLiteral("不能把 '%1' 转换为%2").arg(value.toString(), target));
    throw EVariantError(QStringLiteral("不能把类型为 %1 的值转换为%2").arg(TypeName(value), target));
}

TDateTime DateTimeOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QDate:
        return TDateTime(value.toDate());
    case QMetaType::QTime:
        return TDateTime(value.toTime());
    case QMetaType::QDateTime:
        return TDateTime(value.toDateTime());
    default:
        return value.value<TDateTime>();
    }
}

bool IsBigUnsigned(const QVariant &value)
{
    const bool isUnsigned = value.typeId() == QMetaType::ULongLong || value.typeId() == QMetaType::ULong;
    return isUnsigned && value.toULongLong() > quint64(std::numeric_limits<qint64>::max());
}

bool TryBoolText(const QString &text, bool &value)
{
    const bool isTrue = SameText(text, u"True");
    if (!isTrue && !SameText(text, u"False"))
        return false;
    value = isTrue;
    return true;
}

/// The number that a value reads as; the text "True" is none.
bool TryDouble(const QVariant &value, double &number)
{
    switch (KindOf(value)) {
    case TKind::Null:
        number = 0;
        return true;
    case TKind::Text:
        return TryStrToFloat(value.toString(), number);
    case TKind::Bool:
        number = value.toBool() ? 1 : 0;
        return true;
    case TKind::Integer:
    case TKind::Float:
        number = value.toDouble();
        return true;
    case TKind::DateTime:
        number = DateTimeOf(value).Days();
        return true;
    default:
        return false;
    }
}

/// Rounds to an integer with halves to the even neighbour.
qint64 Rounded(const QVariant &value, const QString &target)
{
    double number = 0;
    if (!TryDouble(value, number))
        RaiseNoConversion(value, target);
    constexpr double limit = 9223372036854775808.0;
    const double rounded = std::nearbyint(number);
    if (!(rounded >= -limit && rounded < limit))
        throw EVariantError(QStringLiteral("数值 %1 超出%2的范围").arg(FloatToStr(number), target));
    return qint64(rounded);
}

qint64 ToInteger(const QVariant &value, const QString &target)
{
    qint64 integer = 0;
    if (KindOf(value) == TKind::Integer && !IsBigUnsigned(value))
        return value.toLongLong();
    if (KindOf(value) == TKind::Text && TryStrToInt64(value.toString(), integer))
        return integer;
    return Rounded(value, target);
}

bool TryIsoDateTime(const QString &text, TDateTime &value)
{
    constexpr qsizetype dateLength = 10;
    const QDate date = QDate::fromString(text.left(dateLength), Qt::ISODate);
    if (!date.isValid())
        return false;
    QTime time(0, 0);
    if (text.size() > dateLength) {
        if (text[dateLength] != u' ' && text[dateLength] != u'T')
            return false;
        time = QTime::fromString(text.mid(dateLength + 1), Qt::ISODateWithMs);
    }
    if (!time.isValid())
        return false;
    value = TDateTime(date, time);
    return true;
}

bool TryDateTime(const QVariant &value, TDateTime &result)
{
    switch (KindOf(value)) {
    case TKind::Null:
        result = {};
        return true;
    case TKind::DateTime:
        result = DateTimeOf(value);
        return true;
    case TKind::Integer:
    case TKind::Float:
        result = TDateTime(value.toDouble());
        return true;
    case TKind::Text: {
        const QString text = Trim(value.toString());
        return TryIsoDateTime(text, result) || TryStrToDateTime(text, result);
    }
    default:
        return false;
    }
}

QVariant AddNumbers(const QVariant &left, const QVariant &right)
{
    const auto isWhole = [](const QVariant &value) {
        return (KindOf(value) == TKind::Integer && !IsBigUnsigned(value)) || KindOf(value) == TKind::Bool;
    };
    qint64 sum = 0;
    if (!isWhole(left) || !isWhole(right) ||
        __builtin_add_overflow(VarToInt64(left), VarToInt64(right), &sum))
        return VarToDouble(left) + VarToDouble(right);
    const bool isSmall = left.metaType().sizeOf() <= 4 && right.metaType().sizeOf() <= 4;
    return isSmall && sum == int(sum) ? QVariant(int(sum)) : QVariant(sum);
}

bool SameArrays(const QVariantList &left, const QVariantList &right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), VarSame);
}

bool SameNumbers(const QVariant &left, const QVariant &right)
{
    const auto isExact = [](const QVariant &value) {
        return KindOf(value) == TKind::Integer && !IsBigUnsigned(value);
    };
    // NOTE: beyond 2^53 a double no longer tells integers apart.
    if (isExact(left) && isExact(right))
        return left.toLongLong() == right.toLongLong();
    return left.toDouble() == right.toDouble();
}

/// A text and a value of another kind.
bool SameAsText(const QString &text, const QVariant &value)
{
    bool flag = false;
    if (KindOf(value) == TKind::Bool && TryBoolText(text, flag))
        return flag == value.toBool();
    TDateTime date;
    if (KindOf(value) == TKind::DateTime)
        return TryDateTime(text, date) && date == DateTimeOf(value);
    double left = 0, right = 0;
    return TryStrToFloat(text, left) && TryDouble(value, right) && left == right;
}

} // namespace

QVariant VarNull() { return QVariant::fromValue(nullptr); }

bool VarIsNull(const QVariant &value) { return KindOf(value) == TKind::Null; }

bool VarIsEmpty(const QVariant &value) { return !value.isValid(); }

bool VarIsArray(const QVariant &value) { return KindOf(value) == TKind::Array; }

QString VarToStr(const QVariant &value)
{
    switch (KindOf(value)) {
    case TKind::Null:
        return {};
    case TKind::Text:
        return value.toString();
    case TKind::Bool:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case TKind::Integer:
        return IsBigUnsigned(value) ? value.toString() : IntToStr(value.toLongLong());
    case TKind::Float:
        return FloatToStr(value.toDouble());
    case TKind::DateTime:
        return value.typeId() == QMetaType::QTime ? TimeToStr(DateTimeOf(value))
                                                  : DateTimeToStr(DateTimeOf(value));
    default:
        break;
    }
    if (KindOf(value) == TKind::Array || !value.canConvert<QString>())
        RaiseNoConversion(value, QStringLiteral("文本"));
    return value.toString();
}

QString VarToStrDef(const QVariant &value, const QString &def)
{
    return VarIsNull(value) ? def : VarToStr(value);
}

int VarToInt(const QVariant &value)
{
    const QString target = QStringLiteral("整数");
    const qint64 result = ToInteger(value, target);
    if (result != int(result))
        throw EVariantError(QStringLiteral("数值 %1 超出%2的范围").arg(IntToStr(result), target));
    return int(result);
}

qint64 VarToInt64(const QVariant &value) { return ToInteger(value, QStringLiteral("整数")); }

double VarToDouble(const QVariant &value)
{
    double result = 0;
    if (!TryDouble(value, result))
        RaiseNoConversion(value, QStringLiteral("数值"));
    return result;
}

bool VarToBool(const QVariant &value)
{
    bool flag = false;
    if (KindOf(value) == TKind::Text && TryBoolText(value.toString(), flag))
        return flag;
    double number = 0;
    if (!TryDouble(value, number))
        RaiseNoConversion(value, QStringLiteral("布尔值"));
    return number != 0;
}

TDateTime VarToDateTime(const QVariant &value)
{
    TDateTime result;
    if (!TryDateTime(value, result))
        RaiseNoConversion(value, QStringLiteral("日期和时间"));
    return result;
}

QVariant VarArrayOf(const QVariantList &values) { return values; }

QVariant VarArrayGet(const QVariant &value, qsizetype index)
{
    if (!VarIsArray(value))
        throw EVariantError(QStringLiteral("值不是数组"));
    const QVariantList items = value.toList();
    if (index < 0 || index >= items.size())
        throw EVariantError(QStringLiteral("数组下标 %1 越界").arg(index));
    return items[index];
}

QVariant VarAdd(const QVariant &left, const QVariant &right)
{
    const TKind leftKind = KindOf(left), rightKind = KindOf(right);
    if (leftKind == TKind::Null || rightKind == TKind::Null)
        return VarNull();
    if (leftKind == TKind::Text || rightKind == TKind::Text)
        return VarToStr(left) + VarToStr(right);
    if (leftKind == TKind::DateTime || rightKind == TKind::DateTime)
        return QVariant::fromValue(TDateTime(VarToDouble(left) + VarToDouble(right)));
    return AddNumbers(left, right);
}

bool VarSame(const QVariant &left, const QVariant &right)
{
    const TKind leftKind = KindOf(left), rightKind = KindOf(right);
    if (leftKind == TKind::Null || rightKind == TKind::Null)
        return leftKind == rightKind;
    if (leftKind == TKind::Array || rightKind == TKind::Array)
        return leftKind == rightKind && SameArrays(left.toList(), right.toList());
    if (leftKind == TKind::Text && rightKind == TKind::Text)
        return left.toString() == right.toString();
    if (leftKind == TKind::Text)
        return SameAsText(left.toString(), right);
    if (rightKind == TKind::Text)
        return SameAsText(right.toString(), left);
    if (leftKind == TKind::Other || rightKind == TKind::Other)
        return left == right;
    if (IsNumber(leftKind) && IsNumber(rightKind))
        return SameNumbers(left, right);
    return VarToDouble(left) == VarToDouble(right);
}

} // namespace Korvane
