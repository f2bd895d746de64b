// SPDX-License-Identifier: MIT
#include "platform/core/Text.h"
#include "platform/data/dataset/DataSet.h"
#include "platform/data/dataset/Fields.h"

#include <algorithm>

namespace Korvane {

// ---- the list of fields ---------------------------------------------------------------

TField *TDataSet::Fields(int index) const
{
    if (index < 0 || index >= FFields.size())
        throw EListError(QStringLiteral("列表索引越界（%1）").arg(index));
    return FFields[index];
}

TField *TDataSet::FindField(QStringView name) const
{
    for (TField *field : FFields)
        if (field->FFieldName.size() == name.size() && SameText(field->FFieldName, name))
            return field;
    return nullptr;
}

TField *TDataSet::FieldByName(QStringView name) const
{
    TField *field = FindField(name);
    if (!field)
        Fail(QStringLiteral("字段“%1”没有找到").arg(name));
    return field;
}

QList<TField *> TDataSet::GetFieldList(const QString &names) const
{
    QList<TField *> fields;
    for (const QString &name : SplitFieldNames(names))
        fields.append(FieldByName(name));
    return fields;
}

void TDataSet::AddField(TField *field)
{
    if (Active())
        Fail(QStringLiteral("数据集已打开，不能增减字段"));
    if (!field->FieldName().isEmpty() && FindField(field->FieldName()))
        Fail(QStringLiteral("字段“%1”已经存在").arg(field->FieldName()));
    FFields.append(field);
}

void TDataSet::RemoveField(TField *field)
{
    FFields.removeOne(field);
    FIsCalculated = false;
}

void TDataSet::MoveField(TField *field, int index)
{
    const qsizetype from = FFields.indexOf(field);
    if (from < 0)
        return;
    FFields.move(from, qBound<qsizetype>(0, qsizetype(index), FFields.size() - 1));
    FIsFieldOrderSet = true;
    if (Active())
        Notify(deLayoutChange);
}

void TDataSet::BindFields()
{
    FKinds.clear();
    for (int i = 0; i < FFieldDefs.size(); ++i) {
        const TFieldDef &def = FFieldDefs[i];
        FKinds.push_back(ColumnKindOf(def.DataType));
        TField *field = FindField(def.Name);
        if (!field) {
            field = MakeField(def.DataType, this).release();
            field->FIsDefault = true;
            field->FFieldName = def.Name;
            field->FSize = def.Size;
            field->FRequired = def.Required;
            field->FDataSet = this;
            FFields.append(field);
        } else if (field->Calculated()) {
            Fail(QStringLiteral("计算字段“%1”与数据字段重名").arg(def.Name));
        } else if (field->Kind() != FKinds.back()) {
            Fail(QStringLiteral("字段“%1”的类型与数据不符").arg(def.Name));
        }
        field->FFieldNo = i;
    }
    int calculated = 0;
    for (TField *field : std::as_const(FFields)) {
        if (field->Calculated())
            field->FFieldNo = calculated++;
        else if (field->FFieldNo < 0)
            Fail(QStringLiteral("字段“%1”没有找到").arg(field->FieldName()));
    }
    FCalculatedCount = calculated;
    FIsCalculated = false;
    if (!FIsFieldOrderSet)
        std::stable_sort(FFields.begin(), FFields.end(), [](const TField *left, const TField *right) {
            return left->Calculated() != right->Calculated() ? right->Calculated()
                                                             : left->FFieldNo < right->FFieldNo;
        });
}

void TDataSet::UnbindFields()
{
    for (TField *field : QList(FFields)) {
        field->FFieldNo = -1;
        if (field->FIsDefault)
            delete field; // leaves the list by itself
    }
}

// ---- reading and writing --------------------------------------------------------------

quint32 TDataSet::ReadRecord() const
{
    if (FReadsRecord)
        return FReadRecord;
    if (FPeek >= 0)
        return FPeek < FetchedCount() ? RecordAt(FPeek) : NoRecord;
    return CurrentRecord();
}

const TRowReader *TDataSet::CurrentRow() const
{
    if (FState == dsInactive)
        return nullptr;
    if (FCalculatesEdited || (!FReadsRecord && FPeek < 0 && (FState == dsEdit || FState == dsInsert)))
        return &FEditRow;
    const quint32 record = ReadRecord();
    if (record == NoRecord)
        return nullptr;
    return FState == dsEdit && record == FEditRecord ? &FEditRow : &RowOf(record);
}

const TRowReader *TDataSet::ReadRow(const TField &field) const
{
    if (field.FFieldNo < 0)
        return nullptr;
    return field.Calculated() && FState != dsInactive ? CalculatedRow() : CurrentRow();
}

/// The calculated fields of the row that is read now, reckoned once for as long as that row and its
/// values stay.
const TRowReader *TDataSet::CalculatedRow() const
{
    const bool isNewRow = !FReadsRecord && FPeek < 0 && FState == dsInsert;
    const quint32 record = isNewRow ? NoRecord : ReadRecord();
    if (FState == dsCalcFields || (FIsCalculated && FCalculatedRecord == record))
        return &FCalculated;
    if (record == NoRecord && !isNewRow)
        return nullptr;
    FCalculated = TRowValues(FCalculatedCount);
    FCalculatedRecord = record;
    FIsCalculated = true;
    // NOTE: a handler reads fields of the same row; only this function knows that they are reckoned.
    auto *self = const_cast<TDataSet *>(this);
    const TDataSetState state = std::exchange(self->FState, dsCalcFields);
    const bool readsEdited = isNewRow || (state == dsEdit && record == FEditRecord);
    self->FCalculatesEdited = readsEdited;
    try {
        self->DoOnCalcFields();
    } catch (...) {
        self->FState = state;
        self->FCalculatesEdited = false;
        FIsCalculated = false;
        throw;
    }
    self->FState = state;
    self->FCalculatesEdited = false;
    return &FCalculated;
}

const TRowReader *TDataSet::OldRow(const TField &field) const
{
    if (FState == dsInactive || field.Calculated() || field.FFieldNo < 0)
        return nullptr;
    if (FState == dsInsert && !FReadsRecord && FPeek < 0)
        return nullptr;
    const quint32 record = ReadRecord();
    return record == NoRecord ? nullptr : StoredRowOf(record);
}

TRowValues &TDataSet::WriteRow(const TField &field)
{
    CheckActive();
    if (field.Calculated()) {
        if (FState != dsCalcFields)
            Fail(QStringLiteral("计算字段“%1”不能修改").arg(field.DisplayLabel()));
        return FCalculated;
    }
    if (!EditedRow())
        Fail(QStringLiteral("数据集不在编辑或新增状态"));
    if (field.ReadOnly())
        Fail(QStringLiteral("字段“%1”是只读的，不能修改").arg(field.DisplayLabel()));
    return FEditRow;
}

void TDataSet::FieldChanged(TField &field)
{
    if (field.Calculated())
        return;
    FModified = true;
    FIsCalculated = false;
    field.OnChange(&field);
    Notify(deFieldChange, &field);
}

void TDataSet::WithRecord(TDataSetState state, quint32 record, const std::function<void()> &action)
{
    const auto savedState = std::exchange(FState, state);
    const auto savedRecord = std::exchange(FReadRecord, record);
    const bool savedReads = std::exchange(FReadsRecord, true);
    const auto restore = [&] {
        FState = savedState;
        FReadRecord = savedRecord;
        FReadsRecord = savedReads;
    };
    try {
        action();
    } catch (...) {
        restore();
        throw;
    }
    restore();
}

TDataSet::TPeek::TPeek(TDataSet &dataSet, qsizetype position)
    : FDataSet(dataSet), FSaved(std::exchange(dataSet.FPeek, position))
{
}

TDataSet::TPeek::~TPeek() { FDataSet.FPeek = FSaved; }

} // namespace Korvane
