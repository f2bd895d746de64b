// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/ClassRegistry.h"

#include <QMetaProperty>
#include <QVariant>

#include <vector>

namespace Korvane {

/// The kind of a reflected property.
enum TTypeKind {
    tkUnknown,
    tkInteger,     ///< whole numbers up to 32 bits
    tkInt64,       ///< whole numbers of 64 bits
    tkFloat,       ///< float, double, TDateTime
    tkEnumeration, ///< Boolean is one
    tkString,
    tkSet,   ///< flags
    tkClass, ///< an object, by pointer
    tkMethod,
    tkVariant
};

/// The C++ type of a property that is read and written in place, without a Variant.
enum class TPropStorage { Other, Text, Int, Int64, Double, Single, Flag, DateTime };

/// One reflected property of a class, ready for use: reading and writing need no search.
/// Valid as long as the program runs. An object handed to it must be of the property's class.
struct TPropInfo
{
    explicit TPropInfo(const QMetaProperty &property);

    QString Name;
    TTypeKind Kind;
    QMetaProperty Property;
    TPropStorage Storage; ///< Other for all but the ordinary types

    /// The value as a Variant. With preferStrings a value is given as text: enumerations by
    /// name, Boolean as "True" or "False", numbers in their general form.
    QVariant Value(const TPersistent &object, bool preferStrings = true) const;
    /// The text form of Value, made without a Variant where Storage is not Other.
    QString Text(const TPersistent &object) const;
    /// Adds the same to a text; of a number without an allocation.
    void AppendText(const TPersistent &object, QString &text) const;
    /// Writes a value, converting as far as it can: texts to numbers, enumerations by name or
    /// number, NULL as 0 or the empty text. Raises EPropertyError, also for a number that an enumeration
    /// does not have.
    void SetValue(TPersistent &object, const QVariant &value) const;

    // SetValue of one type each, for rows in bulk: no Variant where the property's own type is
    // that one or takes it without loss, otherwise the same conversions and refusals.
    void WriteString(TPersistent &object, const QString &value) const;
    void WriteInt(TPersistent &object, qint64 value) const;
    void WriteDouble(TPersistent &object, double value) const;
    void WriteBool(TPersistent &object, bool value) const;

private:
    template <class T> T Read(const TPersistent &object) const;
    template <class T> void Write(TPersistent &object, const T &value) const;

    QMetaObject::Data::StaticMetacallFunction FAccess; // of the class that declares the property
    int FIndex;                                        // among that class's own properties
    bool FIsWritable;
};

/// The reflected properties of a class, inherited ones first, each in declared order.
class TPropList
{
public:
    explicit TPropList(const QMetaObject &meta);

    const std::vector<TPropInfo> &Properties() const { return FProperties; }
    /// Blind to the case of letters; null if there is no such property.
    const TPropInfo *Find(QStringView name) const;

private:
    std::vector<TPropInfo> FProperties;
    QHash<QString, qsizetype> FIndex; // key in lower case
};

/// Made once per class and kept.
const TPropList &GetPropList(const QMetaObject &meta);
const TPropList &GetPropList(const TPersistent &object);

/// Raises EPropertyError when the object has no property of that name.
const TPropInfo &GetPropInfo(const TPersistent &object, QStringView name);
/// False also when there is no such property.
bool PropIsType(const TPersistent &object, QStringView name, TTypeKind kind);
QVariant GetPropValue(const TPersistent &object, QStringView name, bool preferStrings = true);
void SetPropValue(TPersistent &object, QStringView name, const QVariant &value);

} // namespace Korvane
