// SPDX-License-Identifier: MIT
#include "platform/core/Reflection.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Variants.h"

#include <QMetaEnum>

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
    // TDateTime is a number of days.
    return type.name() && qstrcmp(type.name(), "Korvane::TDateTime") == 0 ? tkFloat : tkUnknown;
}

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

QVariant EnumerationOf(const QMetaProperty &property, const QVariant &value)
{
    const QMetaEnum enumeration = property.enumerator();
    bool ok = false;
    if (value.typeId() == QMetaType::QString) {
        const int number = enumeration.keyToValue(value.toString().toLatin1().constData(), &ok);
        if (ok)
            return number;
    }
    return VarToInt(value);
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
        throw EVariantError(QStringLiteral("数值 %1 超出范围").arg(number));
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

QVariant TPropInfo::Value(const TPersistent &object, bool preferStrings) const
{
    QVariant value = Property.readOnGadget(&object);
    if (Kind == tkString || !preferStrings)
        return value;
    return Text(object);
}

QString TPropInfo::Text(const TPersistent &object) const
{
    const QVariant value = Property.readOnGadget(&object);
    if (Property.isEnumType())
        return QString::fromLatin1(Property.enumerator().valueToKey(value.toInt()));
    return VarToStr(value);
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

TPropList::TPropList(const QMetaObject &meta)
{
    for (int i = 0; i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        const QString name = QString::fromLatin1(property.name());
        // A property that a derived class declares anew takes the place of the inherited one.
        const auto known = FIndex.constFind(name.toLower());
        if (known != FIndex.constEnd()) {
            FProperties[size_t(*known)] = {name, KindOf(property), property};
            continue;
        }
        FIndex.insert(name.toLower(), qsizetype(FProperties.size()));
        FProperties.push_back({name, KindOf(property), property});
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
