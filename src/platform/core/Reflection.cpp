// SPDX-License-Identifier: MIT
#include "platform/core/Reflection.h"

#include "platform/core/DateTime.h"
#include "platform/core/Exceptions.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/FormatFloat.h"
#include "platform/core/Numbers.h"
#include "platform/core/Variants.h"

#include <QMetaEnum>

#include <charconv>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace Korvane {

namespace {

TTypeKind KindOf(const QMetaProperty &property)
{
    if (property.isFlagType())
        return tkSet;
    if (property.isEnumType())
        return tkEnumeration;
    const QMetaType type = property.metaType();
    switch (type.id()) {
    case QMetaType::Bool:
        return tkEnumeration;
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
        return tkInteger;
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return tkInt64;
    case QMetaType::Float:
    case QMetaType::Double:
        return tkFloat;
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return tkString;
    case QMetaType::QVariant:
        return tkVariant;
    default:
        break;
    }
    if (type.flags() & (QMetaType::PointerToQObject | QMetaType::PointerToGadget | QMetaType::IsPointer))
        return tkClass;
    if (type.flags() & QMetaType::IsEnumeration)
        return tkEnumeration;
    return type == QMetaType::fromType<TDateTime>() ? tkFloat : tkUnknown; // a number of days
}

/// Other also for what is no property to be read, or is reached through no static function.
TPropStorage StorageOf(const QMetaProperty &property)
{
    const QMetaObject *declaring = property.enclosingMetaObject();
    if (!property.isReadable() || property.isEnumType() || !declaring->d.static_metacall)
        return TPropStorage::Other;
    const QMetaType type = property.metaType();
    switch (type.id()) {
    case QMetaType::QString:
        return TPropStorage::Text;
    case QMetaType::Int:
        return TPropStorage::Int;
    case QMetaType::LongLong:
        return TPropStorage::Int64;
    case QMetaType::Double:
        return TPropStorage::Double;
    case QMetaType::Float:
        return TPropStorage::Single;
    case QMetaType::Bool:
        return TPropStorage::Flag;
    default:
        return type == QMetaType::fromType<TDateTime>() ? TPropStorage::DateTime : TPropStorage::Other;
    }
}

void AppendInt(QString &text, qint64 value)
{
    char buffer[24];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    text += QLatin1StringView(buffer, end - buffer);
}

/// FloatToStr. NOTE: the shortest digits that read back as the number are those of its 15
/// trusted ones when there are no more than 15; all others take the long way.
void AppendFloat(QString &text, double value)
{
    if (value == 0) {
        text += u'0';
        return;
    }
    const double size = std::fabs(value);
    char buffer[32];
    if (size >= 1e-3 && size < 1e15) {
        const char *end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed).ptr;
        const QLatin1StringView digits(buffer, end - buffer);
        const qsizetype point = digits.indexOf(u'.');
        if (digits.size() - (value < 0) - (point >= 0) <= 15) {
            const qsizetype start = text.size();
            text += digits;
            if (point >= 0)
                text[start + point] = DefaultFormatSettings().DecimalSeparator;
            return;
        }
    }
    text += FloatToStr(value);
}

QString FlagText(bool value) { return value ? QStringLiteral("True") : QStringLiteral("False"); }

/// A value of a Boolean property from the text forms that occur: "True" and "False", or a number.
bool BooleanOf(const QVariant &value)
{
    const QString text = VarToStr(value).trimmed();
    if (text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    if (text.isEmpty() || text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return false;
    return VarToDouble(value) != 0;
}

[[noreturn]] void RaiseOutOfRange(qint64 number)
{
    throw EVariantError(QStringLiteral("数值 %1 超出范围").arg(number));
}

/// A value of an enumeration's property by name or number.
QVariant EnumerationOf(const QMetaProperty &property, const QVariant &value)
{
    const QMetaEnum enumeration = property.enumerator();
    bool ok = false;
    if (value.typeId() == QMetaType::QString) {
        const int number = enumeration.keyToValue(value.toString().toLatin1().constData(), &ok);
        if (ok)
            return number;
    }
    const int number = VarToInt(value);
    if (number != 0 && enumeration.isValid() && !enumeration.valueToKey(number))
        RaiseOutOfRange(number);
    return number;
}

template <class T> bool Fits(qint64 number)
{
    return number >= qint64(std::numeric_limits<T>::min()) && number <= qint64(std::numeric_limits<T>::max());
}

/// Whether a whole number of up to 32 bits takes a value without losing any of it.
bool FitsType(qint64 number, int type)
{
    switch (type) {
    case QMetaType::Char:
    case QMetaType::SChar:
        return Fits<signed char>(number);
    case QMetaType::UChar:
        return Fits<uchar>(number);
    case QMetaType::Short:
        return Fits<short>(number);
    case QMetaType::UShort:
        return Fits<ushort>(number);
    case QMetaType::Int:
        return Fits<int>(number);
    case QMetaType::UInt:
        return Fits<uint>(number);
    default:
        return true;
    }
}

QVariant IntegerOf(int type, const QVariant &value)
{
    const qint64 number = VarToInt64(value);
    if (!FitsType(number, type))
        RaiseOutOfRange(number);
    return number;
}

QVariant ConvertedTo(const TPropInfo &info, const QVariant &value)
{
    const int type = info.Property.metaType().id();
    switch (info.Kind) {
    case tkInteger:
    case tkInt64:
        return IntegerOf(type, value);
    case tkFloat:
        return type == QMetaType::Double || type == QMetaType::Float ? QVariant(VarToDouble(value)) : value;
    case tkEnumeration:
        return type == QMetaType::Bool ? QVariant(BooleanOf(value)) : EnumerationOf(info.Property, value);
    case tkString:
        return type == QMetaType::QByteArray ? QVariant(value.toByteArray()) : QVariant(VarToStr(value));
    default:
        return value;
    }
}

} // namespace

TPropInfo::TPropInfo(const QMetaProperty &property)
    : Name(QString::fromLatin1(property.name())), Kind(KindOf(property)), Property(property),
      Storage(StorageOf(property)), FAccess(property.enclosingMetaObject()->d.static_metacall),
      FIndex(property.relativePropertyIndex()), FIsWritable(property.isWritable())
{
}

/// What QMetaProperty::readOnGadget does, for a property of exactly this type.
template <class T> T TPropInfo::Read(const TPersistent &object) const
{
    T value{};
    void *arguments[] = {&value};
    // NOTE: the function takes the object's address as that of a QObject, gadget or not.
    auto *address = const_cast<TPersistent *>(&object);
    FAccess(reinterpret_cast<QObject *>(address), QMetaObject::ReadProperty, FIndex, arguments);
    // A getter that gives a pointer or reference has put that in the place.
    return arguments[0] == &value ? std::move(value) : *static_cast<const T *>(arguments[0]);
}

/// What QMetaProperty::writeOnGadget does, for a property of exactly this type.
template <class T> void TPropInfo::Write(TPersistent &object, const T &value) const
{
    if (!FIsWritable)
        throw EPropertyError(QStringLiteral("不能给属性“%1”赋值").arg(Name));
    int status = -1, flags = 0;
    void *arguments[] = {const_cast<T *>(&value), nullptr, &status, &flags}; // which is only read
    FAccess(reinterpret_cast<QObject *>(&object), QMetaObject::WriteProperty, FIndex, arguments);
}

QVariant TPropInfo::Value(const TPersistent &object, bool preferStrings) const
{
    if (preferStrings && Kind != tkString)
        return Text(object);
    return Property.readOnGadget(&object);
}

QString TPropInfo::Text(const TPersistent &object) const
{
    if (Storage == TPropStorage::Text)
        return Read<QString>(object);
    QString text;
    AppendText(object, text);
    return text;
}

void TPropInfo::AppendText(const TPersistent &object, QString &text) const
{
    switch (Storage) {
    case TPropStorage::Text:
        text += Read<QString>(object);
        return;
    case TPropStorage::Int:
        AppendInt(text, Read<int>(object));
        return;
    case TPropStorage::Int64:
        AppendInt(text, Read<qint64>(object));
        return;
    case TPropStorage::Double:
        AppendFloat(text, Read<double>(object));
        return;
    case TPropStorage::Single:
        AppendFloat(text, double(Read<float>(object)));
        return;
    case TPropStorage::Flag:
        text += FlagText(Read<bool>(object));
        return;
    case TPropStorage::DateTime:
        text += DateTimeToStr(Read<TDateTime>(object));
        return;
    case TPropStorage::Other:
        break;
    }
    const QVariant value = Property.readOnGadget(&object);
    text += Property.isEnumType() ? QString::fromLatin1(Property.enumerator().valueToKey(value.toInt()))
                                  : VarToStr(value);
}

void TPropInfo::SetValue(TPersistent &object, const QVariant &value) const
{
    try {
        if (Property.writeOnGadget(&object, ConvertedTo(*this, value)))
            return;
    } catch (const EVariantError &error) {
        throw EPropertyError(QStringLiteral("不能给属性“%1”赋值：%2").arg(Name, error.Message()));
    }
    throw EPropertyError(QStringLiteral("不能给属性“%1”赋值").arg(Name));
}

void TPropInfo::WriteString(TPersistent &object, const QString &value) const
{
    if (Storage == TPropStorage::Text)
        Write(object, value);
    else
        SetValue(object, value);
}

void TPropInfo::WriteInt(TPersistent &object, qint64 value) const
{
    if (Storage == TPropStorage::Int && Fits<int>(value))
        Write(object, int(value));
    else if (Storage == TPropStorage::Int64)
        Write(object, value);
    else if (Storage == TPropStorage::Double)
        Write(object, double(value));
    else if (Storage == TPropStorage::Text)
        Write(object, IntToStr(value));
    else
        SetValue(object, value);
}

void TPropInfo::WriteDouble(TPersistent &object, double value) const
{
    if (Storage == TPropStorage::Double)
        Write(object, value);
    else if (Storage == TPropStorage::Text)
        Write(object, FloatToStr(value));
    else
        SetValue(object, value);
}

void TPropInfo::WriteBool(TPersistent &object, bool value) const
{
    if (Storage == TPropStorage::Flag)
        Write(object, value);
    else
        SetValue(object, value);
}

TPropList::TPropList(const QMetaObject &meta)
{
    for (int i = 0; i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        const QString name = QString::fromLatin1(property.name());
        // A property that a derived class declares anew takes the place of the inherited one.
        const auto known = FIndex.constFind(name.toLower());
        if (known != FIndex.constEnd()) {
            FProperties[size_t(*known)] = TPropInfo(property);
            continue;
        }
        FIndex.insert(name.toLower(), qsizetype(FProperties.size()));
        FProperties.emplace_back(property);
    }
}

const TPropInfo *TPropList::Find(QStringView name) const
{
    const auto found = FIndex.constFind(name.toString().toLower());
    return found == FIndex.constEnd() ? nullptr : &FProperties[size_t(*found)];
}

const TPropList &GetPropList(const QMetaObject &meta)
{
    static std::unordered_map<const QMetaObject *, TPropList> lists;
    return lists.try_emplace(&meta, meta).first->second;
}

const TPropList &GetPropList(const TPersistent &object) { return GetPropList(*ClassOf(object).Meta); }

const TPropInfo &GetPropInfo(const TPersistent &object, QStringView name)
{
    const TClassInfo &info = ClassOf(object);
    if (const TPropInfo *property = GetPropList(*info.Meta).Find(name))
        return *property;
    throw EPropertyError(QStringLiteral("类%1没有属性“%2”").arg(info.Name, name));
}

bool PropIsType(const TPersistent &object, QStringView name, TTypeKind kind)
{
    const TPropInfo *property = GetPropList(object).Find(name);
    return property && property->Kind == kind;
}

QVariant GetPropValue(const TPersistent &object, QStringView name, bool preferStrings)
{
    return GetPropInfo(object, name).Value(object, preferStrings);
}

void SetPropValue(TPersistent &object, QStringView name, const QVariant &value)
{
    GetPropInfo(object, name).SetValue(object, value);
}

} // namespace Korvane
