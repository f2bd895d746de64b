// SPDX-License-Identifier: MIT
#include "platform/data/dataset/DataLink.h"

#include "platform/data/dataset/DataSet.h"

#include <QScopeGuard>

namespace Korvane {

// ---- TDataLink ------------------------------------------------------------------------

TDataLink::~TDataLink()
{
    for (TLife *life = FLife; life; life = life->FOuter)
        life->FLink = nullptr;
    Leave();
}

void TDataLink::Leave()
{
    if (FDataSource)
        FDataSource->FLinks.removeOne(this);
    FDataSource = nullptr;
}

void TDataLink::SetDataSource(TDataSource *source)
{
    if (source == FDataSource)
        return;
    if (source)
        CheckDataSource(source);
    const TLife life(*this);
    const QPointer<TDataSource> next(source);
    Leave();
    UpdateState();
    if (life.IsOver() || FDataSource) // a handler has chosen another
        return;
    if (next) {
        FDataSource = next;
        FDataSource->FLinks.append(this);
        UpdateState();
    }
    if (!life.IsOver())
        DataSourceChanged();
}

void TDataLink::SourceDied()
{
    const TLife life(*this);
    FDataSource = nullptr;
    UpdateState();
    if (!life.IsOver())
        DataSourceChanged();
}

TDataSet *TDataLink::DataSet() const { return FDataSource ? FDataSource->DataSet() : nullptr; }

void TDataLink::SetReadOnly(bool readOnly)
{
    FReadOnly = readOnly;
    UpdateState();
}

bool TDataLink::Edit()
{
    const TLife life(*this);
    if (FDataSource && MayWrite())
        FDataSource->Edit();
    return !life.IsOver() && FEditing;
}

void TDataLink::UpdateRecord()
{
    if (FUpdating)
        return;
    const TLife life(*this);
    FUpdating = true;
    const auto end = qScopeGuard([&] {
        if (!life.IsOver())
            FUpdating = false;
    });
    UpdateData();
}

void TDataLink::UpdateState()
{
    const TLife life(*this);
    const bool active = FDataSource && FDataSource->State() != dsInactive;
    if (active != std::exchange(FActive, active))
        ActiveChanged();
    if (life.IsOver())
        return;
    const TDataSetState state = FDataSource ? FDataSource->State() : dsInactive;
    const bool editing = (state == dsEdit || state == dsInsert) && MayWrite();
    if (editing != std::exchange(FEditing, editing))
        EditingChanged();
}

void TDataLink::Handle(TDataEvent event, TField *field, qsizetype distance)
{
    switch (event) {
    case deFieldChange:
    case deRecordChange:
        return FUpdating ? void() : RecordChanged(field);
    case deDataSetChange:
        return DataSetChanged();
    case deDataSetScroll:
        return DataSetScrolled(distance);
    case deRowsFetched:
        return RowsFetched();
    case deLayoutChange:
        return LayoutChanged();
    case deUpdateRecord:
        return UpdateRecord();
    case deUpdateState:
        return UpdateState();
    case deCheckBrowseMode:
        return CheckBrowseMode();
    case deFocusControl:
        return FocusControl(field);
    }
}

// ---- TFieldDataLink -------------------------------------------------------------------

void TFieldDataLink::SetFieldName(const QString &name)
{
    if (name == FFieldName)
        return;
    FFieldName = name;
    UpdateField();
}

bool TFieldDataLink::CanModify() const
{
    return Active() && !ReadOnly() && FField && !FField->ReadOnly() && !FField->Calculated() &&
           DataSet()->CanModify();
}

/// What was typed stays when the field is still the same.
void TFieldDataLink::UpdateField()
{
    TField *field = Active() ? DataSet()->FindField(FFieldName) : nullptr;
    const bool keepsTyped = FModified && field && field == FField;
    FField = field;
    const TLife life(*this);
    UpdateState();
    if (!life.IsOver() && !keepsTyped)
        RecordChanged(nullptr);
}

void TFieldDataLink::ActiveChanged()
{
    const TLife life(*this);
    UpdateField();
    if (!life.IsOver())
        OnActiveChange();
}

void TFieldDataLink::EditingChanged() { OnEditingChange(); }

void TFieldDataLink::RecordChanged(TField *field)
{
    if (field && field != FField)
        return;
    FModified = false;
    OnDataChange();
}

void TFieldDataLink::LayoutChanged() { UpdateField(); }

/// What was typed stays marked when it is refused.
void TFieldDataLink::UpdateData()
{
    if (!FModified)
        return;
    const TLife life(*this);
    if (FField)
        OnUpdateData();
    if (!life.IsOver())
        FModified = false;
}

void TFieldDataLink::Reset() { RecordChanged(nullptr); }

// ---- TMasterDataLink ------------------------------------------------------------------

void TMasterDataLink::CheckDataSource(TDataSource *source) const
{
    if (source->IsLinkedTo(FDetail))
        throw EDatabaseError(QStringLiteral("数据集不能通过主从关系跟随它自己"));
}

QList<TField *> TMasterDataLink::FieldsOf(const QString &names) const
{
    return Active() ? DataSet()->GetFieldList(names) : QList<TField *>();
}

void TMasterDataLink::SetFieldNames(const QString &names)
{
    if (names == FFieldNames)
        return;
    FFields = FieldsOf(names);
    FFieldNames = names;
    TellDetail();
}

void TMasterDataLink::TellDetail()
{
    if (!FDetail->Active())
        return;
    if (Active() && !FFields.isEmpty())
        OnMasterChange(this);
    else
        OnMasterDisable(this);
}

void TMasterDataLink::ActiveChanged()
{
    FFields.clear(); // which may have gone with the old data
    FFields = FieldsOf(FFieldNames);
    TellDetail();
}

void TMasterDataLink::RecordChanged(TField *field)
{
    if (FDetail->Active() && !FFields.isEmpty() && (!field || FFields.contains(field)))
        OnMasterChange(this);
}

void TMasterDataLink::LayoutChanged() { ActiveChanged(); }

void TMasterDataLink::CheckBrowseMode()
{
    if (FDetail->Active())
        FDetail->CheckBrowseMode();
}

} // namespace Korvane
