// SPDX-License-Identifier: MIT
#include "datasets/RowMapping.h"

#include "platform/core/Text.h"
#include "platform/core/Variants.h"

namespace Korvane {

namespace {

TCellReading ReadingOf(TFieldType type)
{
    switch (type) {
    case ftSmallint:
    case ftInteger:
        return TCellReading::Integer;
    case ftFloat:
    case ftCurrency:
    case ftBCD:
        return TCellReading::Float;
    case ftBlob:
        return TCellReading::Blob;
    default:
        return TCellReading::Text;
    }
}

bool IsPlain(const TField &field, TCellReading reading)
{
    if (field.Calculated())
        return false;
    const TColumnKind kind = ColumnKindOf(field.DataType());
    return (reading == TCellReading::Text && kind == TColumnKind::Text) ||
           (reading == TCellReading::Integer && kind == TColumnKind::Int32) ||
           (reading == TCellReading::Float && kind == TColumnKind::Double);
}

/// Whether two lists are one and the same, not only equal.
template <class List> bool AreOne(const List &left, const List &right)
{
    return left.constData() == right.constData() && left.size() == right.size();
}

bool IsYes(const QString &value) { return SameText(value, u"Y"); }

} // namespace

bool TMappedCell::IsFlag() const { return Property && Property->Kind == tkEnumeration; }

const TPropInfo &TMappedCell::Target() const
{
    if (!Property)
        throw EPropertyError(QStringLiteral("没有属性“%1”").arg(FieldProp));
    return *Property;
}

void TMappedCell::Write(TDBObject &object, const QString &value) const
{
    if (IsFlag())
        Property->WriteBool(object, IsYes(value));
    else
        Target().WriteString(object, value);
}

void TMappedCell::Write(TDBObject &object, qint64 value) const
{
    if (IsFlag())
        Property->WriteBool(object, false); // no number reads as "Y"
    else
        Target().WriteInt(object, value);
}

void TMappedCell::Write(TDBObject &object, double value) const
{
    if (IsFlag())
        Property->WriteBool(object, false);
    else
        Target().WriteDouble(object, value);
}

void TRowMapping::Aim(const TDBObject &object, const TObjectList<TFieldsObject> &definition,
                      const TDataSet &target, const TDataSet &source)
{
    if (FType && *FType == typeid(object) && FRegistryVersion == RegistryVersion() &&
        AreOne(FDefinition, definition) && AreOne(FTargetFields, target.Fields()) &&
        AreOne(FSourceFields, source.Fields()))
        return;
    const TClassInfo &info = ClassOf(object);
    FType = nullptr; // until it is whole
    FClassName = info.Name;
    FCells.clear();
    const TRecordBinding binding(info, definition);
    for (qsizetype i = 0; i < definition.size(); ++i) {
        const TFieldsObject &field = *definition[i];
        if (!target.FindField(field.FieldCode))
            continue;
        TField *cell = source.FieldByName(field.FieldCode);
        const TCellReading reading = ReadingOf(cell->DataType());
        FCells.push_back({cell, binding.Field(i).Property, field.FieldProp, reading,
                          IsPlain(*cell, reading) ? cell->FieldNo() : -1});
    }
    FDefinition = definition;
    FTargetFields = target.Fields();
    FSourceFields = source.Fields();
    FType = &typeid(object);
    FRegistryVersion = RegistryVersion();
}

void TRecordMapping::Aim(const TDBObject &object, const TDataSet &target, const QString &autoField,
                         const QString &detailField)
{
    const QMetaObject *meta = ClassOf(object).Meta;
    if (FMeta == meta && AreOne(FTargetFields, target.Fields()) && FAutoField == autoField &&
        FDetailField == detailField)
        return;
    FCells.clear();
    const TPropList &properties = GetPropList(*meta);
    for (const QString &name : object.GetClassProperties()) {
        TField *field = target.FindField(name);
        // Any part of DetailField counts, on purpose: CODE is left out for a detail field BILLCODE.
        if (field && name != autoField && !detailField.contains(name))
            FCells.push_back({field, properties.Find(name)});
    }
    FMeta = meta;
    FTargetFields = target.Fields();
    FAutoField = autoField;
    FDetailField = detailField;
}

} // namespace Korvane
