// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"
#include "platform/core/Event.h"
#include "platform/data/dataset/DataSetTypes.h"

#include <QList>

namespace Korvane {

class TDataLink;
class TDataSet;
class TField;

/// Stands between a dataset and what shows it: forms name sources, and a source can be pointed
/// at another dataset at any time. Dataset, source and links may die in any order.
class TDataSource : public TComponent
{
    Q_OBJECT
    Q_MOC_INCLUDE("platform/data/dataset/DataSet.h")
    Q_PROPERTY(Korvane::TDataSet *DataSet READ DataSet WRITE SetDataSet)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(bool AutoEdit READ AutoEdit WRITE SetAutoEdit)

public:
    explicit TDataSource(QObject *owner = nullptr);
    ~TDataSource() override;

    TDataSet *DataSet() const { return FDataSet; }
    /// Raises EDatabaseError when a dataset would follow itself through its master.
    void SetDataSet(TDataSet *dataSet);
    /// Off, the links see no dataset.
    bool Enabled() const { return FEnabled; }
    void SetEnabled(bool enabled);
    /// Whether a control may begin an edit by typing. On by default.
    bool AutoEdit() const { return FAutoEdit; }
    void SetAutoEdit(bool autoEdit) { FAutoEdit = autoEdit; }
    /// dsInactive without a dataset, or when not enabled.
    TDataSetState State() const { return FState; }
    /// Begins an edit, if AutoEdit allows and the row is only browsed.
    void Edit();
    /// Whether the dataset of this source is, through masters, the one given.
    bool IsLinkedTo(const TDataSet *dataSet) const;

    TEvent<TDataSource *> OnStateChange;
    /// (source, field): the field that changed, or null for whole rows.
    TEvent<TDataSource *, TField *> OnDataChange;
    TEvent<TDataSource *> OnUpdateData;

private:
    friend class TDataLink;
    friend class TDataSet;

    void Notify(TDataEvent event, TField *field, qsizetype distance);
    void UpdateState();
    void DataSetDied();
    void JoinDataSet(TDataSet *dataSet);
    /// Calls an action with each link, of which any may leave or die meanwhile.
    template <class Action> void ForEachLink(Action action);

    TDataSet *FDataSet = nullptr; // a dying dataset clears it
    bool FEnabled = true;
    bool FAutoEdit = true;
    TDataSetState FState = dsInactive;
    QList<TDataLink *> FLinks;
};

} // namespace Korvane
