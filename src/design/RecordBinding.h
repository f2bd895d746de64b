// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDObjects.h"
#include "general/Types.h"
#include "platform/core/Reflection.h"

#include <deque>
#include <typeinfo>
#include <vector>

namespace Korvane {

/// A field of a definition and the property of a record class that holds its value.
struct TBoundField
{
    const TPropInfo *Property; ///< null when the class has none of the field's FieldProp
    TDataType Type;            ///< the logical type that FieldType names
    QString Code;              ///< FieldCode
};

/// The fields of a definition bound to a registered record class: found by name once, so that
/// a row is read and written with no search.
class TRecordBinding
{
public:
    TRecordBinding(const TClassInfo &recordClass, const TObjectList<TFieldsObject> &fields);

    const QString &ClassName() const { return FClassName; }
    /// One per field of the definition, in its order.
    const std::vector<TBoundField> &Fields() const { return FFields; }
    const TBoundField &Field(qsizetype index) const { return FFields[size_t(index)]; }
    /// The property of a field. Raises EPropertyError, as GetPropInfo does, when there is none.
    const TPropInfo &Property(qsizetype index) const
    {
        if (const TPropInfo *property = Field(index).Property)
            return *property;
        RaiseNoProperty(index);
    }

private:
    [[noreturn]] void RaiseNoProperty(qsizetype index) const;

    QString FClassName;
    std::vector<TBoundField> FFields;
    QStringList FProperties; // the names, for the message
};

/// The bindings of one definition's fields, a binding per record class, each made at its first
/// use. A definition that is aimed anew gives its new fields; a change in the registry of
/// classes drops what was made.
class TRecordBindings
{
public:
    void SetFields(const TObjectList<TFieldsObject> &fields);
    /// The binding for an object's run-time class. Raises EClassNotFound when that is not
    /// registered. The reference is good
    /// until the fields or the registry change.
    const TRecordBinding &Of(const TDBObject &object);

private:
    struct TEntry
    {
        const std::type_info *Type;
        TRecordBinding Binding;
    };

    TObjectList<TFieldsObject> FFields;
    std::deque<TEntry> FEntries; // which stay where they are
    quint64 FRegistryVersion = 0;
};

} // namespace Korvane
