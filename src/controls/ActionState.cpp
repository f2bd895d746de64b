// SPDX-License-Identifier: MIT
#include "controls/ActionState.h"

#include "platform/data/dataset/DataSet.h"
#include "platform/forms/Action.h"

namespace Korvane {

// ---- TBtnDataLink ---------------------------------------------------------------------

void TBtnDataLink::ActiveChanged()
{
    if (FOwner)
        FOwner->ActiveChanged();
}

void TBtnDataLink::DataSetChanged()
{
    if (FOwner)
        FOwner->DataChanged();
}

void TBtnDataLink::EditingChanged()
{
    if (FOwner)
        FOwner->EditingChanged();
}

/// A source whose dataset is closed makes no other event, and yet a master counts from now on.
/// NOTE: not DataChanged, which would turn off the action that prints for good while a form loads.
void TBtnDataLink::DataSourceChanged() { EditingChanged(); }

// ---- TActionState ---------------------------------------------------------------------

TActionState::TActionState(QObject *owner) : TComponent(owner) {}

TAction *TActionState::Get(TPlace place) const { return FActions[place]; }

void TActionState::Set(TPlace place, TAction *action) { FActions[place] = action; }

void TActionState::Enable(std::initializer_list<TPlace> places, bool enabled)
{
    for (const TPlace place : places)
        if (TAction *action = FActions[place])
            action->SetEnabled(enabled);
}

void TActionState::Limit(std::initializer_list<TPlace> places, bool allowed)
{
    for (const TPlace place : places)
        if (TAction *action = FActions[place])
            action->SetEnabled(action->Enabled() && allowed);
}

namespace {

/// The open dataset behind a link; null without one. A link that has not been told yet that its
/// dataset is going still calls itself active.
TDataSet *OpenDataSet(const TDataLink &link) { return link.Active() ? link.DataSet() : nullptr; }

} // namespace

void TActionState::DataChanged()
{
    const TDataSet *dataSet = OpenDataSet(FLink);
    const bool hasRows = dataSet && !dataSet->IsEmpty();
    Enable({First, Prior}, dataSet && !dataSet->Bof());
    Enable({Next, Last}, dataSet && !dataSet->Eof());
    Enable({Up, Down, Export, Attach}, hasRows);
    Limit({Print}, hasRows); // never turned on here: that is the application's
    EditingChanged();
}

void TActionState::EditingChanged()
{
    const TDataSet *dataSet = OpenDataSet(FLink);
    const bool canModify = dataSet && dataSet->CanModify();
    const bool isEditing = FLink.Editing();
    const bool isReady = canModify && !isEditing;
    const bool hasReadyRows = isReady && !dataSet->IsEmpty();
    Enable({Search, Locate, Refresh, Insert}, isReady);
    Enable({Update, Delete, Copy}, hasReadyRows);
    Enable({Save, Cancel}, canModify && isEditing);
    Enable({Check, UnCheck, Avoid}, hasReadyRows);
    Enable({Detail, Lists}, isReady);
    Limit({First, Prior, Next, Last, Up, Down}, isReady); // a read-only dataset is meant to lose these too
    Limit({Export, Attach, Print}, !isEditing);
    if (!MasterDataSource())
        return;
    const TDataSet *master = OpenDataSet(FMasterLink);
    Limit({Insert, Update, Delete, Up, Down}, master && master->CanModify() && FMasterLink.Editing());
}

} // namespace Korvane
