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

/// One reflected property of a class, ready for use: reading and writing need no search.
/// Valid as long as the program runs.
struct TPropInfo
{
    QString Name;
    TTypeKind Kind;
    QMetaProperty Property;

    /// The value as a Variant. With preferStrings a value is given as text: enumerations by
    /// name, Boolean as "True" or "False", numbers in their general form.
    QVariant Value(const TPersistent &object, bool preferStrings = true) const;
    /// The text form of Value, made without a Variant where the property is a string.
    QString Text(const TPersistent &object) const;
    /// Writes a value, converting as far as it can: texts to numbers, enumerations by name or
    /// number, NULL as 0 or the empty text. Raises EPropertyError.
    void SetValue(TPersistent &object, const QVariant &value) const;
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
