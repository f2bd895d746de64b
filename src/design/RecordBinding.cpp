// SPDX-License-Identifier: MIT
#include "design/RecordBinding.h"

#include "platform/core/Exceptions.h"

namespace Korvane {

TRecordBinding::TRecordBinding(const TClassInfo &recordClass, const TObjectList<TFieldsObject> &fields)
    : FClassName(recordClass.Name)
{
    const TPropList &properties = GetPropList(*recordClass.Meta);
    FFields.reserve(size_t(fields.size()));
    for (const auto &field : fields) {
        FFields.push_back(
            {properties.Find(field->FieldProp), GetDataType(field->FieldType), field->FieldCode});
        FProperties.append(field->FieldProp);
    }
}

void TRecordBinding::RaiseNoProperty(qsizetype index) const
{
    throw EPropertyError(QStringLiteral("类%1没有属性“%2”").arg(FClassName, FProperties[index]));
}

void TRecordBindings::SetFields(const TObjectList<TFieldsObject> &fields)
{
    FEntries.clear();
    FFields = fields;
}

const TRecordBinding &TRecordBindings::Of(const TDBObject &object)
{
    const quint64 version = RegistryVersion();
    if (version != FRegistryVersion) {
        FEntries.clear();
        FRegistryVersion = version;
    }
    const std::type_info &type = typeid(object);
    for (const TEntry &entry : FEntries)
        if (*entry.Type == type)
            return entry.Binding;
    FEntries.push_back({&type, TRecordBinding(ClassOf(object), FFields)});
    return FEntries.back().Binding;
}

} // namespace Korvane
