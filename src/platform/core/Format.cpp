// SPDX-License-Identifier: MIT
#include "platform/core/Format.h"

#include "platform/core/Exceptions.h"
#include "platform/core/FormatFloat.h"

#include <algorithm>
#include <optional>

namespace Korvane {

namespace {

constexpr int MostWidth = 32767;
constexpr int FloatPrecision = 18;

enum class TArgKind { None, Integer, Float, Text, Pointer, Other };

TArgKind KindOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return TArgKind::None;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return TArgKind::Integer;
    case QMetaType::Double:
    case QMetaType::Float:
        return TArgKind::Float;
    case QMetaType::QString:
    case QMetaType::QChar:
    case QMetaType::Char:
    case QMetaType::Char16:
    case QMetaType::QByteArray:
        return TArgKind::Text;
    case QMetaType::VoidStar:
    case QMetaType::QObjectStar:
        return TArgKind::Pointer;
    default:
        return TArgKind::Other;
    }
}

QString TextOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Char:
        return QChar::fromLatin1(value.value<char>());
    case QMetaType::Char16:
        return QChar(value.value<char16_t>());
    default:
        return value.toString();
    }
}

/// All bits of the integer, in its own size.
quint64 BitsOf(const QVariant &value)
{
    const quint64 bits = value.toULongLong();
    const auto size = value.metaType().sizeOf();
    return size >= 8 ? bits : bits & ((quint64(1) << std::max<qsizetype>(size, 4) * 8) - 1);
}

class TFormatter
{
public:
    TFormatter(const QString &format, const QVariant *args, qsizetype count, const TFormatSettings &settings)
        : FFormat(format), FArgs(args), FCount(count), FSettings(settings)
    {
    }

    QString Write()
    {
        while (FPos < FFormat.size()) {
            const qsizetype percent = FFormat.indexOf(u'%', FPos);
            const qsizetype end = percent < 0 ? FFormat.size() : percent;
            FText += QStringView(FFormat).mid(FPos, end - FPos);
            FPos = end + 1;
            if (percent >= 0)
                WritePlace();
        }
        return std::move(FText);
    }

private:
    struct TPlace
    {
        bool IsLeft = false;
        int Width = 0;
        std::optional<int> Precision;
        char16_t Type = 0;
    };

    QChar Peek() const { return FPos < FFormat.size() ? FFormat[FPos] : QChar(); }

    bool Skip(QChar c)
    {
        if (FPos >= FFormat.size() || FFormat[FPos] != c)
            return false;
        ++FPos;
        return true;
    }

    void WritePlace()
    {
        if (Skip(u'%')) {
            FText += u'%';
            return;
        }
        const TPlace place = ReadPlace();
        const QString text = Convert(place, NextArg());
        FText += place.IsLeft ? text.leftJustified(place.Width) : text.rightJustified(place.Width);
    }

    TPlace ReadPlace()
    {
        TPlace place;
        // A number in front is the index if a colon follows it, otherwise the width.
        const qsizetype start = FPos;
        const std::optional<int> index = ReadDigits();
        if (index && Skip(u':'))
            FNextArg = *index;
        else
            FPos = start;
        place.IsLeft = Skip(u'-');
        place.Width = std::max(ReadNumber().value_or(0), 0);
        if (Skip(u'.'))
            place.Precision = ReadNumber().value_or(0);
        if (place.Precision && *place.Precision < 0)
            place.Precision.reset();
        place.Type = Peek().toLower().unicode();
        if (!QStringView(u"duefgnmpsx").contains(QChar(place.Type)) || place.Type == 0)
            RaiseInvalid();
        ++FPos;
        return place;
    }

    std::optional<int> ReadDigits()
    {
        std::optional<int> result;
        for (; Peek() >= u'0' && Peek() <= u'9'; ++FPos) {
            result = result.value_or(0) * 10 + Peek().unicode() - u'0';
            if (*result > MostWidth)
                RaiseInvalid();
        }
        return result;
    }

    std::optional<int> ReadNumber()
    {
        if (!Skip(u'*'))
            return ReadDigits();
        const QVariant &arg = NextArg();
        if (KindOf(arg) != TArgKind::Integer)
            RaiseWrongType();
        const qint64 number = arg.toLongLong();
        if (number > MostWidth)
            RaiseInvalid();
        return int(std::max<qint64>(number, -1));
    }

    const QVariant &NextArg()
    {
        if (FNextArg >= FCount)
            throw EConvertError(QStringLiteral("格式 '%1' 缺少参数").arg(FFormat));
        return FArgs[FNextArg++];
    }

    QString Convert(const TPlace &place, const QVariant &arg) const
    {
        switch (place.Type) {
        case u'd':
            return Decimal(arg, place.Precision.value_or(0));
        case u'u':
            Require(arg, TArgKind::Integer);
            return QString::number(BitsOf(arg)).rightJustified(place.Precision.value_or(0), u'0');
        case u'x':
            Require(arg, TArgKind::Integer);
            return QString::number(BitsOf(arg), 16)
                .toUpper()
                .rightJustified(place.Precision.value_or(0), u'0');
        case u'p':
            Require(arg, TArgKind::Pointer);
            return Pointer(arg);
        case u's':
            return Text(arg, place.Precision);
        default:
            return Float(arg, place);
        }
    }

    static QString Pointer(const QVariant &arg)
    {
        const void *pointer = *static_cast<void *const *>(arg.constData());
        return QString::number(quintptr(pointer), 16).toUpper().rightJustified(sizeof pointer * 2, u'0');
    }

    QString Decimal(const QVariant &arg, int precision) const
    {
        Require(arg, TArgKind::Integer);
        const bool isBig = arg.typeId() == QMetaType::ULongLong || arg.typeId() == QMetaType::ULong;
        const qint64 number = isBig ? 0 : arg.toLongLong();
        const quint64 size = isBig ? arg.toULongLong() : number < 0 ? 0 - quint64(number) : quint64(number);
        const QString digits = QString::number(size).rightJustified(precision, u'0');
        return number < 0 ? u'-' + digits : digits;
    }

    QString Text(const QVariant &arg, std::optional<int> precision) const
    {
        if (KindOf(arg) == TArgKind::None)
            return {};
        Require(arg, TArgKind::Text);
        const QString text = TextOf(arg);
        return precision ? text.left(*precision) : text;
    }

    QString Float(const QVariant &arg, const TPlace &place) const
    {
        const TArgKind kind = KindOf(arg);
        if (kind != TArgKind::Float && kind != TArgKind::Integer)
            RaiseWrongType();
        const double value = arg.toDouble();
        switch (place.Type) {
        case u'e':
            return FloatToStrF(value, ffExponent, place.Precision.value_or(15), 3, FSettings);
        case u'g':
            return FloatToStrF(value, ffGeneral, place.Precision.value_or(15), 3, FSettings);
        case u'f':
            return FloatToStrF(value, ffFixed, FloatPrecision, place.Precision.value_or(2), FSettings);
        case u'n':
            return FloatToStrF(value, ffNumber, FloatPrecision, place.Precision.value_or(2), FSettings);
        default:
            break;
        }
        return FloatToStrF(value, ffCurrency, FloatPrecision,
                           place.Precision.value_or(FSettings.CurrencyDecimals), FSettings);
    }

    void Require(const QVariant &arg, TArgKind kind) const
    {
        if (KindOf(arg) != kind)
            RaiseWrongType();
    }

    [[noreturn]] void RaiseInvalid() const
    {
        throw EConvertError(QStringLiteral("格式 '%1' 无效").arg(FFormat));
    }

    [[noreturn]] void RaiseWrongType() const
    {
        throw EConvertError(QStringLiteral("格式 '%1' 与参数的类型不符").arg(FFormat));
    }

    const QString &FFormat;
    const QVariant *FArgs;
    qsizetype FCount;
    const TFormatSettings &FSettings;
    qsizetype FPos = 0;
    qsizetype FNextArg = 0;
    QString FText;
};

} // namespace

QString Format(const QString &format, const QVariantList &args, const TFormatSettings &settings)
{
    return TFormatter(format, args.constData(), args.size(), settings).Write();
}

QString Format(const QString &format, std::initializer_list<QVariant> args, const TFormatSettings &settings)
{
    return TFormatter(format, args.begin(), qsizetype(args.size()), settings).Write();
}

} // namespace Korvane
