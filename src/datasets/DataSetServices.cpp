// SPDX-License-Identifier: MIT
// The part of TExCustomDataSet that serves screens: master and detail, selection, order, sums.
#include "datasets/ExCustomDataSet.h"

#include "general/TextRoutines.h"
#include "platform/core/Format.h"
#include "platform/core/StringList.h"
#include "platform/core/Text.h"
#include "platform/core/TryFinally.h"
#include "platform/core/Variants.h"
#include "platform/data/dataset/DataSource.h"

namespace Korvane {

// ---- master and detail ----------------------------------------------------------------

void TExCustomDataSet::SetMasterDataSource(TDataSource *source)
{
    try {
        FMasterLink->SetDataSource(source); // refuses a source that this dataset feeds
    } catch (...) {
        // NOTE: linked, but its rows could not be read: it is a detail all the same.
        if (source && GetMasterDataSource() == source)
            FCommitType = ctBatchCommit;
        throw;
    }
    if (source) {
        FCommitType = ctBatchCommit; // a detail is saved by its owner's code
    } else {
        FCommitType = ctCommit;
        SetMasterField({});
        SetDetailField({});
    }
}

void TExCustomDataSet::SetDetailField(const QString &fields)
{
    if (fields == FDetailField)
        return;
    FDetailField = fields;
    FDetailFields.clear();
    SetDelimitedText(FDetailFields, fields, u';');
}

void TExCustomDataSet::MasterChanged(TMasterDataLink *)
{
    if (!FMasterLink->Active() || FMasterLink->Fields().isEmpty())
        return;
    const TDataSetState state = FMasterLink->DataSet()->State();
    if (state == dsBrowse || state == dsEdit || state == dsInsert)
        OpenTable();
}

QVariant TExCustomDataSet::GetMasterFieldValues() const
{
    QVariantList values;
    for (const TField *field : FMasterLink->Fields())
        values.append(field->Value());
    return VarArrayOf(values);
}

void TExCustomDataSet::SetDetailFieldValues()
{
    const QList<TField *> fields = FMasterLink->Fields();
    if (FDetailFields.size() < fields.size())
        throw EListError(
            QStringLiteral("DetailField“%1”的字段少于MasterField“%2”").arg(FDetailField, GetMasterField()));
    for (qsizetype i = 0; i < fields.size(); ++i)
        FieldByName(FDetailFields[i])->SetValue(fields[i]->Value());
}

void TExCustomDataSet::SetDetailFieldValues(TDBObject &object) const
{
    // By the master's names, on purpose: a detail's record has properties called as these.
    for (const TField *field : FMasterLink->Fields())
        SetPropValue(object, field->FieldName(), field->Value());
}

// ---- selection ------------------------------------------------------------------------

bool TExCustomDataSet::IsSelected() const
{
    const TField *field = FindField(u"FSELECTED");
    return field && field->AsString() == QLatin1String("Y");
}

void TExCustomDataSet::SetSelected(bool selected)
{
    TField *field = FindField(u"FSELECTED");
    if (IsEmpty() || !field)
        return;
    Edit();
    field->SetAsString(selected ? QStringLiteral("Y") : QStringLiteral("N"));
    InterPost();
}

void TExCustomDataSet::SetAllSelected(bool selected)
{
    if (!FindField(u"FSELECTED"))
        return;
    WalkRows([&] { SetSelected(selected); });
    FIsSelectAll = selected;
}

void TExCustomDataSet::SelectAll() { SetAllSelected(true); }

void TExCustomDataSet::UnSelectAll() { SetAllSelected(false); }

const TObjectList<TDBObject> &TExCustomDataSet::GetSelected()
{
    FSelectedObjects.clear();
    if (!FindField(u"FSELECTED"))
        FSelectedObjects.append(GetCurrentObject());
    else
        WalkRows([this] {
            if (IsSelected())
                FSelectedObjects.append(GetCurrentObject());
        });
    return FSelectedObjects;
}

// ---- order ----------------------------------------------------------------------------

/// Gives the current row the value, and what it had to the row before it. That is the row before
/// for both directions, on purpose: which one it is follows from where the order has put the
/// current row after the first write.
void TExCustomDataSet::WriteAndSwap(TField &field, const QString &value)
{
    const QString other = field.AsString();
    Edit();
    field.SetAsString(value);
    InterPost();
    Prior();
    Edit();
    field.SetAsString(other);
    InterPost();
}

void TExCustomDataSet::MoveDown()
{
    if (IsEmpty() || FCommitType == ctCommit || IndexFieldNames().isEmpty())
        return;
    TField *field = FieldByName(IndexFieldNames());
    const QString value = field->AsString();
    Next();
    if (!Eof())
        WriteAndSwap(*field, value);
}

void TExCustomDataSet::MoveUp()
{
    if (IsEmpty() || FCommitType == ctCommit || IndexFieldNames().isEmpty())
        return;
    TField *field = FieldByName(IndexFieldNames());
    const QString value = field->AsString();
    Prior();
    if (!Bof())
        WriteAndSwap(*field, value);
}

namespace {

const QString SortIndex = QStringLiteral("INDEX01");

} // namespace

void TExCustomDataSet::DoSorting(const QString &field)
{
    if (IsEmpty())
        return;
    switch (FieldByName(field)->DataType()) {
    case ftBlob:
    case ftMemo:
    case ftOraBlob:
    case ftOraClob:
        return;
    default:
        break;
    }
    if (IndexFieldNames() == field)
        DoSortingDesc(field);
    else
        SetIndexFieldNames(field);
}

void TExCustomDataSet::ClearSortIndex()
{
    if (FindIndex(SortIndex))
        DeleteIndex(SortIndex);
}

void TExCustomDataSet::DoSortingDesc(const QString &field)
{
    ClearSortIndex();
    IndexDefs().append({.Name = SortIndex, .Fields = field, .Options = ixDescending | ixCaseInsensitive});
    SetIndexName(SortIndex);
}

void TExCustomDataSet::DoSortingDesc(const QString &first, const QString &second)
{
    ClearSortIndex();
    const QString fields = first + QLatin1Char(';') + second;
    AddIndex(SortIndex, fields, ixDescending | ixCaseInsensitive, first, fields, 0);
    SetIndexName(SortIndex);
}

// ---- marks, sums, search --------------------------------------------------------------

void TExCustomDataSet::SetMark()
{
    if (!FActived)
        return;
    FMarkFields = GetKeyFieldStr();
    FMarkValues = GetKeyValues();
}

void TExCustomDataSet::GotoMark()
{
    if (FActived)
        Locate(FMarkFields, FMarkValues, loCaseInsensitive);
}

QString TExCustomDataSet::GetSumValue(const QString &field)
{
    QString sum;
    TAggregate *aggregate = Aggregates().Add();
    TryFinally(
        [&] {
            aggregate->SetExpression(Format(QStringLiteral("sum(%s)"), {field}));
            aggregate->SetActive(true);
            sum = VarToStrDef(aggregate->Value(), QStringLiteral("0"));
        },
        [&] { Aggregates().Remove(aggregate); });
    return sum;
}

QString TExCustomDataSet::GetSumValue(const QString &field, const QString &filter)
{
    QString sum;
    const QString savedFilter = Filter();
    const bool savedFiltered = Filtered();
    WithControlsDisabled(*this, [&] {
        TryFinally(
            [&] {
                SetFilter(filter);
                SetFiltered(true);
                sum = GetSumValue(field);
            },
            [&] {
                SetFiltered(savedFiltered); // first, since a filter that is off need not be a good one
                SetFilter(savedFilter);
            });
    });
    return sum;
}

QString TExCustomDataSet::GetGroupValue(const QString &, const QString &field) { return GetSumValue(field); }

bool TExCustomDataSet::LocateA(const QString &values)
{
    QVariantList pieces;
    for (const QString &piece : Split(values, QStringLiteral(";")))
        pieces.append(piece);
    return Locate(GetKeyFieldStr(), VarArrayOf(pieces), loCaseInsensitive);
}

bool TExCustomDataSet::FindText(const QString &fields, const QVariant &values)
{
    TClientDataSet rows;
    rows.CloneCursor(this, true, false);
    rows.First();
    return rows.Locate(fields, values, loCaseInsensitive);
}

} // namespace Korvane
