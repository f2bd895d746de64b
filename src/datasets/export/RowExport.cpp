// SPDX-License-Identifier: MIT
#include "datasets/export/RowExport.h"

#include "platform/data/dataset/Fields.h"

#include <typeinfo>

namespace Korvane {

namespace {

/// Whether a field is of one of these classes, and no class that may show it otherwise.
template <class... Classes> bool IsOne(const TField &field)
{
    return ((typeid(field) == typeid(Classes)) || ...);
}

/// Whether a number shows as such when it is edited, so that no picture masks it.
bool IsPlainNumber(const TField &field)
{
    return IsOne<TIntegerField, TFloatField>(field) &&
           static_cast<const TNumericField &>(field).EditFormat().isEmpty();
}

bool IsStoredAs(const TField &field, TExportForm form)
{
    if (field.Calculated())
        return false;
    const TColumnKind kind = ColumnKindOf(field.DataType());
    switch (form) {
    case TExportForm::Integer:
        return kind <= TColumnKind::Int64 && IsPlainNumber(field);
    case TExportForm::Float:
        return kind == TColumnKind::Double && IsPlainNumber(field);
    case TExportForm::Text:
        break;
    }
    return IsOne<TBooleanField>(field) ||
           (kind == TColumnKind::Text && IsOne<TField, TStringField, TBlobField>(field));
}

} // namespace

TRowExport::TColumn TRowExport::ColumnOf(TField &field, TExportForm form)
{
    TColumn column{&field, form, IsStoredAs(field, form) ? field.FieldNo() : -1};
    column.HasWords = column.Number >= 0 && IsOne<TBooleanField>(field);
    if (column.HasWords)
        for (const int value : {0, 1})
            column.Words[value] = field.DisplayFormat().section(u';', 1 - value, 1 - value).toUtf8();
    return column;
}

void TRowExport::Aim()
{
    const QList<TField *> &fields = FDataSet.Fields();
    if (fields.constData() == FFields.constData() && fields.size() == FFields.size())
        return;
    FFields = fields;
    FColumns.clear();
    for (TField *field : fields)
        FColumns.push_back(ColumnOf(*field, FFormOf(field->DataType())));
}

} // namespace Korvane
