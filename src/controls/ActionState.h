// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"
#include "platform/data/dataset/DataLink.h"

#include <array>
#include <initializer_list>

namespace Korvane {

class TAction;
class TActionState;

/// The end of a data source in a TActionState: has it reckon its actions anew.
class TBtnDataLink : public TDataLink
{
public:
    explicit TBtnDataLink(TActionState *owner) : FOwner(owner) {}
    ~TBtnDataLink() override { FOwner = nullptr; }

protected:
    void ActiveChanged() override;
    void DataSetChanged() override;
    void EditingChanged() override;
    void DataSourceChanged() override;

private:
    TActionState *FOwner;
};

/// Keeps the toolbar of a data form truthful: enables and disables the actions linked to it by the
/// state of a dataset. Any of the 23 actions may be left out. With a master source, the rows of the
/// dataset can be added, changed, deleted or reordered only while the master's row is being edited.
///
/// An event of the data reckons the actions; linking an action does not.
class TActionState : public TComponent
{
    Q_OBJECT
    Q_MOC_INCLUDE("platform/forms/Action.h")
    Q_PROPERTY(Korvane::TDataSource *DataSource READ DataSource WRITE SetDataSource)
    Q_PROPERTY(Korvane::TDataSource *MasterDataSource READ MasterDataSource WRITE SetMasterDataSource)
    Q_PROPERTY(Korvane::TAction *ActionSearch READ ActionSearch WRITE SetActionSearch)
    Q_PROPERTY(Korvane::TAction *ActionLocate READ ActionLocate WRITE SetActionLocate)
    Q_PROPERTY(Korvane::TAction *ActionRefresh READ ActionRefresh WRITE SetActionRefresh)
    Q_PROPERTY(Korvane::TAction *ActionInsert READ ActionInsert WRITE SetActionInsert)
    Q_PROPERTY(Korvane::TAction *ActionUpdate READ ActionUpdate WRITE SetActionUpdate)
    Q_PROPERTY(Korvane::TAction *ActionDelete READ ActionDelete WRITE SetActionDelete)
    Q_PROPERTY(Korvane::TAction *ActionCopy READ ActionCopy WRITE SetActionCopy)
    Q_PROPERTY(Korvane::TAction *ActionSave READ ActionSave WRITE SetActionSave)
    Q_PROPERTY(Korvane::TAction *ActionCancel READ ActionCancel WRITE SetActionCancel)
    Q_PROPERTY(Korvane::TAction *ActionCheck READ ActionCheck WRITE SetActionCheck)
    Q_PROPERTY(Korvane::TAction *ActionUnCheck READ ActionUnCheck WRITE SetActionUnCheck)
    Q_PROPERTY(Korvane::TAction *ActionAvoid READ ActionAvoid WRITE SetActionAvoid)
    Q_PROPERTY(Korvane::TAction *ActionDetail READ ActionDetail WRITE SetActionDetail)
    Q_PROPERTY(Korvane::TAction *ActionLists READ ActionLists WRITE SetActionLists)
    Q_PROPERTY(Korvane::TAction *ActionAttach READ ActionAttach WRITE SetActionAttach)
    Q_PROPERTY(Korvane::TAction *ActionExport READ ActionExport WRITE SetActionExport)
    Q_PROPERTY(Korvane::TAction *ActionFirst READ ActionFirst WRITE SetActionFirst)
    Q_PROPERTY(Korvane::TAction *ActionPrior READ ActionPrior WRITE SetActionPrior)
    Q_PROPERTY(Korvane::TAction *ActionNext READ ActionNext WRITE SetActionNext)
    Q_PROPERTY(Korvane::TAction *ActionLast READ ActionLast WRITE SetActionLast)
    Q_PROPERTY(Korvane::TAction *ActionUp READ ActionUp WRITE SetActionUp)
    Q_PROPERTY(Korvane::TAction *ActionDown READ ActionDown WRITE SetActionDown)
    Q_PROPERTY(Korvane::TAction *ActionPrint READ ActionPrint WRITE SetActionPrint)

public:
    explicit TActionState(QObject *owner = nullptr);

    TDataSource *DataSource() const { return FLink.DataSource(); }
    void SetDataSource(TDataSource *source) { FLink.SetDataSource(source); }
    /// The source of the rows that the rows of DataSource belong to.
    TDataSource *MasterDataSource() const { return FMasterLink.DataSource(); }
    void SetMasterDataSource(TDataSource *source) { FMasterLink.SetDataSource(source); }

    TAction *ActionSearch() const { return Get(Search); }
    void SetActionSearch(TAction *action) { Set(Search, action); }
    TAction *ActionLocate() const { return Get(Locate); }
    void SetActionLocate(TAction *action) { Set(Locate, action); }
    TAction *ActionRefresh() const { return Get(Refresh); }
    void SetActionRefresh(TAction *action) { Set(Refresh, action); }
    TAction *ActionInsert() const { return Get(Insert); }
    void SetActionInsert(TAction *action) { Set(Insert, action); }
    TAction *ActionUpdate() const { return Get(Update); }
    void SetActionUpdate(TAction *action) { Set(Update, action); }
    TAction *ActionDelete() const { return Get(Delete); }
    void SetActionDelete(TAction *action) { Set(Delete, action); }
    TAction *ActionCopy() const { return Get(Copy); }
    void SetActionCopy(TAction *action) { Set(Copy, action); }
    TAction *ActionSave() const { return Get(Save); }
    void SetActionSave(TAction *action) { Set(Save, action); }
    TAction *ActionCancel() const { return Get(Cancel); }
    void SetActionCancel(TAction *action) { Set(Cancel, action); }
    TAction *ActionCheck() const { return Get(Check); }
    void SetActionCheck(TAction *action) { Set(Check, action); }
    TAction *ActionUnCheck() const { return Get(UnCheck); }
    void SetActionUnCheck(TAction *action) { Set(UnCheck, action); }
    TAction *ActionAvoid() const { return Get(Avoid); }
    void SetActionAvoid(TAction *action) { Set(Avoid, action); }
    TAction *ActionDetail() const { return Get(Detail); }
    void SetActionDetail(TAction *action) { Set(Detail, action); }
    TAction *ActionLists() const { return Get(Lists); }
    void SetActionLists(TAction *action) { Set(Lists, action); }
    TAction *ActionAttach() const { return Get(Attach); }
    void SetActionAttach(TAction *action) { Set(Attach, action); }
    TAction *ActionExport() const { return Get(Export); }
    void SetActionExport(TAction *action) { Set(Export, action); }
    TAction *ActionFirst() const { return Get(First); }
    void SetActionFirst(TAction *action) { Set(First, action); }
    TAction *ActionPrior() const { return Get(Prior); }
    void SetActionPrior(TAction *action) { Set(Prior, action); }
    TAction *ActionNext() const { return Get(Next); }
    void SetActionNext(TAction *action) { Set(Next, action); }
    TAction *ActionLast() const { return Get(Last); }
    void SetActionLast(TAction *action) { Set(Last, action); }
    TAction *ActionUp() const { return Get(Up); }
    void SetActionUp(TAction *action) { Set(Up, action); }
    TAction *ActionDown() const { return Get(Down); }
    void SetActionDown(TAction *action) { Set(Down, action); }
    TAction *ActionPrint() const { return Get(Print); }
    void SetActionPrint(TAction *action) { Set(Print, action); }

    /// Each reckons the actions anew; an application may call them.
    void ActiveChanged() { DataChanged(); }
    void DataChanged();
    /// Only turns off what moves, exports and prints: it is DataChanged that turns these on. When an
    /// edit ends, they stay off until the dataset tells of its rows.
    void EditingChanged();

private:
    /// The places of the actions.
    enum TPlace {
        Search,
        Locate,
        Refresh,
        Insert,
        Update,
        Delete,
        Copy,
        Save,
        Cancel,
        Check,
        UnCheck,
        Avoid,
        Detail,
        Lists,
        Attach,
        Export,
        First,
        Prior,
        Next,
        Last,
        Up,
        Down,
        Print,
        PlaceCount
    };

    TAction *Get(TPlace place) const;
    void Set(TPlace place, TAction *action);
    /// Enables or disables actions.
    void Enable(std::initializer_list<TPlace> places, bool enabled);
    /// Disables actions unless they are allowed; enables none.
    void Limit(std::initializer_list<TPlace> places, bool allowed);

    std::array<QPointer<TAction>, PlaceCount> FActions;
    TBtnDataLink FLink{this};
    TBtnDataLink FMasterLink{this};
};

} // namespace Korvane
