// SPDX-License-Identifier: MIT
#include "platform/data/dataset/ClientDataSet.h"

#include "platform/data/dataset/Fields.h"

#include <QScopedValueRollback>

#include <atomic>

namespace Korvane {

namespace {

quint64 NextDataNumber()
{
    static std::atomic<quint64> number = 0;
    return ++number;
}

} // namespace

TCustomClientDataSet::TCustomClientDataSet(QObject *owner) : TDataSet(owner) {}

TCustomClientDataSet::~TCustomClientDataSet()
{
    BeginDestruction();
    Close();
}

// ---- opening and closing --------------------------------------------------------------

void TCustomClientDataSet::OpenStore(std::shared_ptr<TRecordStore> store, std::shared_ptr<quint64> number,
                                     std::shared_ptr<TRowFeed> feed)
{
    Close();
    FFeed = std::move(feed);
    FStore = std::move(store);
    FDataNumber = std::move(number);
    Open();
}

void TCustomClientDataSet::InternalOpen()
{
    if (!FStore)
        Fail(QStringLiteral("没有数据，请先给Data赋值或执行CreateDataSet"));
    FieldDefs().clear();
    for (const TPacketField &field : FStore->Fields())
        FieldDefs().append({field.Name, field.Type, field.Size, false, field.Precision});
    FView.emplace(*FStore);
    FReader.emplace(FStore->Packet(), FStore->Overlay());
    FStore->Attach(this);
    ++FVersion;
}

void TCustomClientDataSet::InternalClose()
{
    FSearches.Clear();
    FView.reset();
    FReader.reset();
    FFeed.reset();
    if (FStore)
        FStore->Detach(this);
    FStore.reset();
    ++FVersion;
}

TDataPacket TCustomClientDataSet::Data() const
{
    if (!Active())
        return {};
    FetchAll();
    return FStore->Data();
}

void TCustomClientDataSet::SetData(const TDataPacket &packet) { OpenPacket(packet, nullptr); }

void TCustomClientDataSet::SetData(const TFirstRows &rows)
{
    const bool selects = !FIndexFieldNames.isEmpty() || !FIndexName.isEmpty() || Filtered() || FStatusFilter;
    if (!rows.Feed || !selects)
        return OpenPacket(rows.Rows, rows.Feed);
    rows.Feed->Read(QDeadlineTimer::Forever);
    OpenPacket(rows.Feed->Rows(), nullptr);
}

void TCustomClientDataSet::OpenPacket(const TDataPacket &packet, std::shared_ptr<TRowFeed> feed)
{
    if (packet.FieldCount() == 0)
        return Close();
    auto store = std::make_shared<TRecordStore>(packet);
    store->SetLogChanges(FLogChanges);
    OpenStore(std::move(store), std::make_shared<quint64>(NextDataNumber()), std::move(feed));
}

void TCustomClientDataSet::FetchNext(QDeadlineTimer deadline)
{
    if (!FFeed || !FFeed->Read(deadline))
        return;
    // NOTE: who is told of the rows may close the dataset.
    const auto store = FStore;
    store->Extend(TDataPacket(FFeed->Rows()));
}

void TCustomClientDataSet::AppendData(const TDataPacket &packet, bool)
{
    if (!Active())
        return SetData(packet);
    CheckBrowseMode();
    FetchAll();
    FStore->Append(packet);
}

void TCustomClientDataSet::CreateDataSet()
{
    Close();
    QList<TPacketField> fields;
    const bool byDefs = !FieldDefs().isEmpty();
    for (const TFieldDef &def : std::as_const(FieldDefs()))
        fields.append({def.Name, def.DataType, def.Size, def.Precision});
    for (const TField *field : Fields())
        if (!byDefs && !field->Calculated())
            fields.append({field->FieldName(), field->DataType(), field->Size(), 0});
    if (fields.isEmpty())
        Fail(QStringLiteral("没有字段定义，不能创建数据集"));
    for (qsizetype i = 0; i < fields.size(); ++i)
        for (qsizetype k = 0; k < i; ++k)
            if (fields[i].Name.compare(fields[k].Name, Qt::CaseInsensitive) == 0)
                Fail(QStringLiteral("字段“%1”重复").arg(fields[i].Name));
    SetData(TDataPacketBuilder(fields).Build());
}

void TCustomClientDataSet::EmptyDataSet()
{
    CheckBrowseMode();
    FFeed.reset();
    *FDataNumber = NextDataNumber(); // record numbers begin anew
    FStore->Clear();
}

void TCustomClientDataSet::SaveToFile(const QString &fileName) const
{
    CheckActive();
    Data().SaveToFile(fileName);
}

void TCustomClientDataSet::LoadFromFile(const QString &fileName)
{
    SetData(TDataPacket::LoadFromFile(fileName));
}

void TCustomClientDataSet::CloneCursor(TCustomClientDataSet *source, bool reset, bool keepSettings)
{
    source->CheckActive();
    source->FetchAll();
    const auto store = source->FStore;
    const auto number = source->FDataNumber;
    Close();
    if (reset) {
        SetFilter({});
        SetFiltered(false);
        SetFilterOptions({});
        SetOnFilterRecord(nullptr);
        FIndexFieldNames.clear();
        FIndexName.clear();
        FIndexDefs.clear();
        FStatusFilter = {};
    } else if (!keepSettings) {
        AdoptSettings(*source);
    }
    FLogChanges = source->LogChanges();
    OpenStore(store, number);
}

void TCustomClientDataSet::AdoptSettings(const TCustomClientDataSet &source)
{
    SetFilter(source.Filter());
    SetFiltered(source.Filtered());
    SetFilterOptions(source.FilterOptions());
    SetOnFilterRecord(source.OnFilterRecord());
    FIndexFieldNames = source.FIndexFieldNames;
    FIndexName = source.FIndexName;
    FIndexDefs = source.FIndexDefs;
    FSortLocale = source.FSortLocale;
    FStatusFilter = source.FStatusFilter;
    FReadOnly = source.FReadOnly;
    FDisableStringTrim = source.FDisableStringTrim;
}

// ---- the rows -------------------------------------------------------------------------

qsizetype TCustomClientDataSet::FetchedCount() const { return FView ? FView->Count() : 0; }

const TRowReader &TCustomClientDataSet::RowOf(quint32 record) const
{
    FReader->MoveTo(record);
    return *FReader;
}

const TRowReader *TCustomClientDataSet::StoredRowOf(quint32 record) const
{
    if (!FStore->HasStored(record))
        return nullptr;
    if (FStore->Status(record) == usUnmodified)
        return &RowOf(record);
    FStoredRow = FStore->StoredValues(record);
    return &FStoredRow;
}

quint32 TCustomClientDataSet::InternalInsert(const TRowValues &row, quint32 before)
{
    CheckUnique(row, NoRecord);
    const QScopedValueRollback own(FIsChanging, true);
    return FStore->Insert(row, before != NoRecord && FStore->IsGone(before) ? NoRecord : before);
}

void TCustomClientDataSet::InternalModify(quint32 record, const TRowValues &row)
{
    if (!FStore->IsPresent(record))
        Fail(QStringLiteral("记录已被删除，不能保存修改"));
    CheckUnique(row, record);
    const TOverlaidRow old = FStore->RowOf(record);
    FSearches.DropIf(
        [&](int column) { return !SameCell(old, row, column, FStore->Kinds()[size_t(column)]); });
    const QScopedValueRollback own(FIsChanging, true);
    FStore->Modify(record, row);
}

void TCustomClientDataSet::InternalDelete(quint32 record)
{
    const QScopedValueRollback own(FIsChanging, true);
    FStore->Delete(record);
}

// NOTE: a change of its own is followed by the state machine, which knows where to go.

void TCustomClientDataSet::RecordInserted(quint32 record)
{
    const quint32 current = CurrentRecord();
    const bool moved = FView->Insert(record);
    const qsizetype count = FView->Count();
    const bool isLast = count > 0 && FView->RecordAt(count - 1) == record;
    if (isLast)
        FSearches.RowAdded(count, [this](qsizetype place) { return FStore->RowOf(FView->RecordAt(place)); });
    else if (moved)
        FSearches.Clear();
    Follow(current, moved || isLast);
}

void TCustomClientDataSet::RecordModified(quint32 record, const TRowReader &old)
{
    const quint32 current = CurrentRecord();
    const bool moved = FView->Update(record, old, Position());
    if (moved)
        FSearches.Clear();
    else
        DropSearchesOf(record, old);
    Follow(current, moved);
}

/// The searches on columns whose value has changed in a record that stands where it was.
void TCustomClientDataSet::DropSearchesOf(quint32 record, const TRowReader &old)
{
    const TOverlaidRow row = FStore->RowOf(record);
    FSearches.DropIf(
        [&](int column) { return !SameCell(old, row, column, FStore->Kinds()[size_t(column)]); });
}

void TCustomClientDataSet::RecordDeleted(quint32 record)
{
    const quint32 current = CurrentRecord();
    FSearches.Clear();
    Follow(current, FView->Remove(record, Position()));
}

void TCustomClientDataSet::StoreReset()
{
    const quint32 current = CurrentRecord();
    FView->Select();
    FSearches.Clear();
    Follow(current, true);
}

/// Values and order stand; only the statuses are others.
void TCustomClientDataSet::ChangesMerged()
{
    if (FStatusFilter)
        return StoreReset();
    Follow(CurrentRecord(), false);
}

void TCustomClientDataSet::RowsFetched()
{
    FFeed.reset();
    FView->Select();
    FSearches.Clear();
    ++FVersion;
    Notify(deRowsFetched);
}

void TCustomClientDataSet::Follow(quint32 current, bool moved)
{
    ++FVersion;
    ForgetCalculated();
    if (FIsChanging)
        return;
    if (moved && State() != dsInsert)
        Resync(current);
    Notify(deDataSetChange);
}

// ---- the change log -------------------------------------------------------------------

int TCustomClientDataSet::ChangeCount() const { return Active() ? int(FStore->ChangeCount()) : 0; }

TUpdateStatus TCustomClientDataSet::UpdateStatus() const
{
    CheckActive();
    if (State() == dsInsert)
        return usInserted;
    const quint32 record = CurrentRecord();
    return record == NoRecord ? usUnmodified : FStore->Status(record);
}

TDataPacket TCustomClientDataSet::Delta()
{
    CheckBrowseMode();
    return FStore->Delta();
}

TDeltaRows TCustomClientDataSet::DeltaRows()
{
    CheckBrowseMode();
    return FStore->DeltaRows();
}

void TCustomClientDataSet::MergeChangeLog()
{
    CheckBrowseMode();
    FStore->MergeChangeLog();
}

void TCustomClientDataSet::CancelUpdates()
{
    CheckActive();
    Cancel();
    FStore->CancelUpdates();
}

void TCustomClientDataSet::RevertRecord()
{
    CheckActive();
    if (State() == dsInsert)
        return Cancel();
    Cancel();
    if (const quint32 record = CurrentRecord(); record != NoRecord)
        FStore->Revert(record);
}

bool TCustomClientDataSet::UndoLastChange(bool follow)
{
    CheckActive();
    Cancel();
    const quint32 record = FStore->UndoLast();
    if (record == TRecordStore::NoRecord)
        return false;
    if (follow)
        if (const qsizetype place = PositionOf(record); place >= 0)
            MoveTo(place);
    return true;
}

void TCustomClientDataSet::SetStatusFilter(TUpdateStatusSet statuses)
{
    if (Active())
        CheckBrowseMode();
    FStatusFilter = statuses;
    if (!Active())
        return;
    InternalRefresh();
    First();
}

bool TCustomClientDataSet::LogChanges() const { return FStore ? FStore->LogChanges() : FLogChanges; }

void TCustomClientDataSet::SetLogChanges(bool log)
{
    FLogChanges = log;
    if (Active())
        FStore->SetLogChanges(log);
}

qsizetype TCustomClientDataSet::MemoryUsage() const
{
    return Active() ? FStore->MemoryUsage() + FView->MemoryUsage() : 0;
}

} // namespace Korvane
