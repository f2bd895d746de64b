// SPDX-License-Identifier: MIT
#include "platform/data/dataset/DataSource.h"

#include "platform/data/dataset/DataLink.h"
#include "platform/data/dataset/DataSet.h"

#include <exception>

namespace Korvane {

namespace {

/// For destructors, which have nobody to tell a failure to.
template <class Action> void RunQuietly(Action action)
{
    try {
        action();
    } catch (const Exception &) {
        // Meant to be dropped.
    }
}

bool Follows(const TDataSet *dataSet, const TDataSource *source)
{
    while (dataSet) {
        const TDataSource *master = dataSet->DataSource();
        if (master == source)
            return true;
        dataSet = master ? master->DataSet() : nullptr;
    }
    return false;
}

} // namespace

TDataSource::TDataSource(QObject *owner) : TComponent(owner) {}

TDataSource::~TDataSource()
{
    RunQuietly([this] { JoinDataSet(nullptr); });
    while (!FLinks.isEmpty()) {
        TDataLink *link = FLinks.takeLast();
        RunQuietly([link] { link->SourceDied(); });
    }
    if (FDataSet) // a handler has set it again
        FDataSet->RemoveSource(this);
}

// ---- the dataset ----------------------------------------------------------------------

void TDataSource::SetDataSet(TDataSet *dataSet)
{
    if (dataSet == FDataSet)
        return;
    if (dataSet && Follows(dataSet, this))
        throw EDatabaseError(QStringLiteral("数据集不能通过主从关系跟随它自己"));
    const QPointer<TDataSource> self(this);
    const QPointer<TDataSet> next(dataSet);
    if (FDataSet)
        JoinDataSet(nullptr); // the links see the old one go before the new one comes
    if (self && !FDataSet && next)
        JoinDataSet(next);
}

void TDataSource::JoinDataSet(TDataSet *dataSet)
{
    if (FDataSet)
        FDataSet->RemoveSource(this);
    FDataSet = dataSet;
    if (FDataSet)
        FDataSet->AddSource(this);
    UpdateState();
}

void TDataSource::DataSetDied()
{
    FDataSet = nullptr;
    RunQuietly([this] { UpdateState(); });
}

bool TDataSource::IsLinkedTo(const TDataSet *dataSet) const
{
    for (const TDataSource *source = this; source && source->FDataSet;
         source = source->FDataSet->DataSource())
        if (source->FDataSet == dataSet)
            return true;
    return false;
}

void TDataSource::SetEnabled(bool enabled)
{
    FEnabled = enabled;
    UpdateState();
}

void TDataSource::Edit()
{
    if (FAutoEdit && FState == dsBrowse)
        FDataSet->Edit();
}

// ---- telling --------------------------------------------------------------------------

template <class Action> void TDataSource::ForEachLink(Action action)
{
    const QPointer<TDataSource> self(this);
    for (TDataLink *link : QList(FLinks)) {
        if (!self)
            return;
        if (FLinks.contains(link))
            action(*link);
    }
}

/// All links learn of the state, whatever one of them raises.
void TDataSource::UpdateState()
{
    const TDataSetState state = FEnabled && FDataSet ? FDataSet->State() : dsInactive;
    const bool isOther = std::exchange(FState, state) != state;
    const QPointer<TDataSource> self(this);
    std::exception_ptr failure;
    ForEachLink([&](TDataLink &link) {
        try {
            link.UpdateState();
        } catch (...) {
            if (!failure)
                failure = std::current_exception();
        }
    });
    if (self && isOther)
        OnStateChange(this);
    if (failure)
        std::rethrow_exception(failure);
}

void TDataSource::Notify(TDataEvent event, TField *field, qsizetype distance)
{
    if (event == deUpdateState)
        return UpdateState();
    if (FState == dsInactive)
        return;
    const QPointer<TDataSource> self(this);
    const QPointer<TField> target(field);
    ForEachLink([&](TDataLink &link) {
        if (target || !field)
            link.Handle(event, field, distance);
    });
    if (!self || (field && !target))
        return;
    if (event == deUpdateRecord)
        OnUpdateData(this);
    else if (event != deCheckBrowseMode && event != deFocusControl)
        OnDataChange(this, field);
}

} // namespace Korvane
