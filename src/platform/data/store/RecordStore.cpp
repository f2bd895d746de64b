// SPDX-License-Identifier: MIT
#include "platform/data/store/RecordStore.h"

#include "platform/core/Exceptions.h"

#include <QScopeGuard>

#include <algorithm>
#include <numeric>

namespace Korvane {

namespace {

/// Rows that are added to a packet this many times as large stay in the overlay; more of them
/// make a new packet. So neither is the packet copied for every few rows, nor do many rows lie
/// in the overlay.
constexpr qsizetype AppendShare = 16;

/// A row of a packet whose columns are told by number; -1 is NULL.
class TMappedRow final : public TRowReader
{
public:
    TMappedRow(const TDataPacket &packet, qsizetype row, std::span<const int> columns)
        : FRow(packet, row), FColumns(columns)
    {
    }

    bool IsNull(int column) const override
    {
        return FColumns[size_t(column)] < 0 || FRow.IsNull(FColumns[size_t(column)]);
    }
    qint64 GetInt(int column) const override { return FRow.GetInt(FColumns[size_t(column)]); }
    double GetDouble(int column) const override { return FRow.GetDouble(FColumns[size_t(column)]); }
    std::string_view GetText(int column) const override { return FRow.GetText(FColumns[size_t(column)]); }

private:
    const TPacketRow FRow;
    const std::span<const int> FColumns;
};

/// Collects rows into a packet of the same fields; those that follow each other in their packet
/// go over together.
class TRowCollector
{
public:
    explicit TRowCollector(const TDataPacket &packet) : FPacket(packet), FBuilder(packet.Fields()) {}

    /// A row of the packet, or what covers it.
    void Add(quint32 row, const TRowValues *cover)
    {
        if (cover) {
            AddCells(*cover);
            FBuilder.EndRow();
        } else if (row == FEnd && FBegin != FEnd) {
            ++FEnd;
        } else {
            Flush();
            FBegin = row;
            FEnd = qsizetype(row) + 1;
        }
    }
    void AddCells(const TRowReader &row)
    {
        Flush();
        for (int i = 0; i < FBuilder.FieldCount(); ++i)
            FBuilder.AppendCell(i, row);
    }
    /// The builder with all that has been added.
    TDataPacketBuilder &Builder()
    {
        Flush();
        return FBuilder;
    }

private:
    void Flush()
    {
        if (FBegin != FEnd)
            FBuilder.AppendRows(FPacket, FBegin, FEnd);
        FBegin = FEnd = 0;
    }

    const TDataPacket &FPacket;
    TDataPacketBuilder FBuilder;
    qsizetype FBegin = 0; // rows that have not gone over yet
    qsizetype FEnd = 0;
};

[[noreturn]] void RaiseTooManyRecords()
{
    throw EOutOfResources(QStringLiteral("数据集的记录数超过上限 %1").arg(TDataPacket::MaxRowCount));
}

} // namespace

TRecordStore::TRecordStore(const TDataPacket &packet) { Load(packet); }

void TRecordStore::Load(const TDataPacket &packet)
{
    FPacket = packet;
    FKinds.clear();
    for (int i = 0; i < packet.FieldCount(); ++i)
        FKinds.push_back(packet.Column(i).Kind());
    FBlank = std::make_shared<const TRowValues>(packet.FieldCount());
    FRecordLimit = quint32(packet.RowCount());
    if (packet.Content() == TPacketContent::RowsAndLog)
        LoadLog();
}

void TRecordStore::LoadLog()
{
    const auto begin = quint32(FPacket.LogBegin());
    quint32 next = begin;
    bool isByNumber = true;
    for (quint32 row = begin; row < FRecordLimit; ++row) {
        const TUpdateStatus status = FPacket.UpdateStatus(row);
        if (status == usInserted) {
            FLog.Add({row, usInserted, nullptr});
            isByNumber = isByNumber && FPacket.InsertionPlace(row) == next++;
            continue;
        }
        const quint32 record = FPacket.LoggedRecord(row);
        FLog.Add({record, status, nullptr});
        if (status == usDeleted)
            SetMissing(record, true);
        else
            FOverlay.Set(record, std::make_shared<const TRowValues>(TPacketRow(FPacket, row), FKinds));
        SetMissing(row, true);
    }
    if (!isByNumber)
        LoadOrder();
    FHasLoadedLog = true;
}

/// The natural order from the places of the insertions. The rows of the log that are no records
/// go to the end.
void TRecordStore::LoadOrder()
{
    const auto begin = quint32(FPacket.LogBegin());
    FNatural.assign(FRecordLimit, NoRecord);
    size_t end = begin;
    for (quint32 row = begin; row < FRecordLimit; ++row) {
        const quint32 place = FPacket.InsertionPlace(row);
        if (place == NoRecord)
            continue;
        FNatural[place] = row;
        ++end;
    }
    quint32 stored = 0;
    for (size_t place = 0; place < end; ++place)
        if (FNatural[place] == NoRecord)
            FNatural[place] = stored++;
    for (quint32 row = begin; row < FRecordLimit; ++row)
        if (FPacket.InsertionPlace(row) == NoRecord)
            FNatural[end++] = row;
    IndexPlaces();
}

bool TRecordStore::HasStored(quint32 record) const
{
    const TChange *change = FLog.Find(record);
    return !change || change->Status != usInserted;
}

TRowValues TRecordStore::StoredValues(quint32 record) const
{
    const TChange *change = FLog.Find(record);
    if (!change)
        return {RowOf(record), FKinds};
    if (change->Status == usInserted)
        return TRowValues(FPacket.FieldCount());
    return change->Stored ? *change->Stored : TRowValues(TPacketRow(FPacket, record), FKinds);
}

TUpdateStatus TRecordStore::Status(quint32 record) const
{
    if (const TChange *change = FLog.Find(record))
        return change->Status;
    if (IsMissing(record))
        return usDeleted;
    const bool hasMark = FPacket.Content() == TPacketContent::Delta && IsInPacket(record);
    return hasMark && !FOverlay.Find(record) ? FPacket.UpdateStatus(record) : usUnmodified;
}

bool TRecordStore::IsGone(quint32 record) const { return IsMissing(record) && !FLog.Find(record); }

void TRecordStore::SetMissing(quint32 record, bool isMissing)
{
    const size_t word = record >> 6;
    const quint64 bit = quint64(1) << (record & 63);
    if (word >= FMissing.size())
        FMissing.resize(word + 1 + word / 2);
    if (((FMissing[word] & bit) != 0) == isMissing)
        return;
    FMissing[word] ^= bit;
    FMissingCount += isMissing ? 1 : -1;
}

/// Frees the values of a record that is gone. It can still be read, so that a view that has not
/// caught up yet does no harm.
void TRecordStore::DropValues(quint32 record) { FOverlay.Set(record, IsInPacket(record) ? nullptr : FBlank); }

void TRecordStore::TellGone(quint32 record)
{
    Tell([record](TStoreObserver &observer) { observer.RecordDeleted(record); });
    if (record < FRecordLimit && IsGone(record))
        DropValues(record);
}

quint32 TRecordStore::NaturalPlace(quint32 record) const
{
    if (FNatural.empty())
        return record;
    const quint32 last = FPlaces[record];
    if (FNatural[last] == record)
        return last;
    const auto found = std::find(FNatural.begin() + last + 1, FNatural.end(), record);
    const auto place = quint32(found - FNatural.begin());
    FPlaces[record] = place;
    FStepsSearched += place - last;
    if (FStepsSearched > FNatural.size())
        IndexPlaces();
    return place;
}

void TRecordStore::IndexPlaces() const
{
    FPlaces.resize(FNatural.size());
    for (size_t place = 0; place < FNatural.size(); ++place)
        FPlaces[FNatural[place]] = quint32(place);
    FStepsSearched = 0;
}

void TRecordStore::PutInOrder(quint32 record, quint32 before)
{
    if (before >= record) {
        if (FNatural.empty())
            return;
        FPlaces.push_back(quint32(FNatural.size()));
        FNatural.push_back(record);
        return;
    }
    const quint32 place = NaturalPlace(before);
    if (FNatural.empty()) {
        FNatural.resize(record);
        std::iota(FNatural.begin(), FNatural.end(), 0);
        IndexPlaces();
    }
    FNatural.insert(FNatural.begin() + place, record);
    FPlaces.push_back(place);
}

template <class Visit> void TRecordStore::ForEachInOrder(Visit visit) const
{
    if (FNatural.empty()) {
        for (quint32 record = 0; record < FRecordLimit; ++record)
            visit(record);
    } else {
        for (const quint32 record : FNatural)
            visit(record);
    }
}

quint32 TRecordStore::Insert(TRowValues values, quint32 before)
{
    if (FRecordLimit == TDataPacket::MaxRowCount)
        RaiseTooManyRecords();
    const quint32 record = FRecordLimit;
    FOverlay.Set(record, std::make_shared<const TRowValues>(std::move(values)));
    PutInOrder(record, before);
    ++FRecordLimit;
    FHasLoadedLog = false;
    if (FLogChanges)
        FLog.Add({record, usInserted, nullptr});
    Tell([record](TStoreObserver &observer) { observer.RecordInserted(record); });
    return record;
}

void TRecordStore::Modify(quint32 record, TRowValues values)
{
    if (!IsPresent(record))
        throw EDatabaseError(QStringLiteral("记录已被删除，不能修改"));
    const auto old = FOverlay.Share(record);
    if (FLogChanges && !FLog.Find(record))
        FLog.Add({record, usModified, old});
    FOverlay.Set(record, std::make_shared<const TRowValues>(std::move(values)));
    FHasLoadedLog = false;
    TellModified(record, old.get());
}

/// old lay over the packet's row, or null where that row itself counted.
void TRecordStore::TellModified(quint32 record, const TRowValues *old)
{
    const TPacketRow packetRow(FPacket, record);
    const TRowReader &row = old ? static_cast<const TRowReader &>(*old) : packetRow;
    Tell([&](TStoreObserver &observer) { observer.RecordModified(record, row); });
}

void TRecordStore::Delete(quint32 record)
{
    if (!IsPresent(record))
        return;
    const TChange *change = FLog.Find(record);
    const bool isGone = !FLogChanges || (change && change->Status == usInserted);
    if (change && isGone) {
        FLog.Remove(record);
    } else if (change) {
        FOverlay.Set(record, change->Stored); // what is deleted is the stored row
        FLog.SetStatus(record, usDeleted);
    } else if (!isGone) {
        FLog.Add({record, usDeleted, FOverlay.Share(record)});
    }
    SetMissing(record, true);
    FHasLoadedLog = false;
    TellGone(record);
}

void TRecordStore::Append(const TDataPacket &packet)
{
    const std::vector<int> columns = ColumnsFor(packet);
    const bool hasLog = packet.Content() == TPacketContent::RowsAndLog;
    const qsizetype rows = hasLog ? packet.LogBegin() : packet.RowCount();
    if (rows == 0)
        return;
    if (rows > TDataPacket::MaxRowCount - qsizetype(FRecordLimit))
        RaiseTooManyRecords();
    const qsizetype beyond = qsizetype(FRecordLimit) - FPacket.RowCount() + rows;
    // A delta stays as it is, for its marks.
    if (FPacket.Content() == TPacketContent::Delta || beyond < FPacket.RowCount() / AppendShare)
        AppendToOverlay(packet, rows, columns);
    else
        AppendToPacket(packet, rows, columns);
    for (qsizetype row = 0; row < rows; ++row)
        PutInOrder(FRecordLimit++, NoRecord);
    FHasLoadedLog = false;
    Tell([](TStoreObserver &observer) { observer.StoreReset(); });
}

/// For each field of the store the packet's column.
std::vector<int> TRecordStore::ColumnsFor(const TDataPacket &packet) const
{
    std::vector<int> columns(FKinds.size(), -1);
    for (int source = 0; source < packet.FieldCount(); ++source) {
        const QString &name = packet.Field(source).Name;
        size_t own = 0;
        while (own < columns.size() &&
               (columns[own] >= 0 || Fields()[qsizetype(own)].Name.compare(name, Qt::CaseInsensitive) != 0))
            ++own;
        if (own == columns.size())
            throw EDatabaseError(QStringLiteral("追加数据失败：数据集没有字段“%1”").arg(name));
        if (packet.Column(source).Kind() != FKinds[own])
            throw EDatabaseError(QStringLiteral("追加数据失败：字段“%1”的类型不符").arg(name));
        columns[own] = source;
    }
    return columns;
}

void TRecordStore::AppendToOverlay(const TDataPacket &packet, qsizetype rows, std::span<const int> columns)
{
    for (qsizetype row = 0; row < rows; ++row)
        FOverlay.Set(FRecordLimit + quint32(row),
                     std::make_shared<const TRowValues>(TMappedRow(packet, row, columns), FKinds));
}

/// Makes a packet of the present one, the records beyond it and the new rows. What the log may
/// need stays in the overlay.
void TRecordStore::AppendToPacket(const TDataPacket &packet, qsizetype rows, std::span<const int> columns)
{
    const auto beyond = quint32(FPacket.RowCount());
    TRowCollector collector(FPacket);
    for (quint32 record = 0; record < FRecordLimit; ++record)
        collector.Add(record, record < beyond ? nullptr : FOverlay.Find(record));
    collector.Builder().AppendRows(packet, 0, rows, columns);
    FPacket = std::move(collector.Builder()).Build();
    for (quint32 record = beyond; record < FRecordLimit; ++record)
        if (!FLog.Find(record))
            FOverlay.Set(record, nullptr);
}

void TRecordStore::Extend(const TDataPacket &whole)
{
    for (int i = 0; i < whole.FieldCount(); ++i)
        if (whole.Column(i).Kind() != FKinds[size_t(i)])
            throw EDatabaseError(QStringLiteral("字段“%1”后面的值与前面的记录类型不同，不能分步读取")
                                     .arg(whole.Field(i).Name));
    FPacket = whole;
    FRecordLimit = quint32(whole.RowCount());
    Tell([](TStoreObserver &observer) { observer.RowsFetched(); });
}

void TRecordStore::Clear()
{
    FOverlay = {};
    FMissing.clear();
    FMissingCount = 0;
    FNatural.clear();
    FPlaces.clear();
    FLog.Clear();
    FHasLoadedLog = false;
    Load(TDataPacketBuilder(Fields()).Build());
    Tell([](TStoreObserver &observer) { observer.StoreReset(); });
}

void TRecordStore::MergeChangeLog()
{
    if (FLog.IsEmpty())
        return;
    FLog.ForEach([this](const TChange &change) {
        if (change.Status == usDeleted)
            DropValues(change.Record);
    });
    FLog.Clear();
    FHasLoadedLog = false;
    Tell([](TStoreObserver &observer) { observer.ChangesMerged(); });
}

void TRecordStore::CancelUpdates()
{
    if (FLog.IsEmpty())
        return;
    FLog.ForEach([this](const TChange &change) {
        Restore(change);
        if (change.Status == usInserted)
            DropValues(change.Record);
    });
    FLog.Clear();
    FHasLoadedLog = false;
    Tell([](TStoreObserver &observer) { observer.StoreReset(); });
}

bool TRecordStore::Revert(quint32 record)
{
    const TChange *entry = FLog.Find(record);
    if (!entry)
        return false;
    const TChange change = *entry;
    const auto old = FOverlay.Share(record);
    FLog.Remove(record);
    Restore(change);
    FHasLoadedLog = false;
    if (change.Status == usInserted)
        TellGone(record);
    else if (change.Status == usDeleted)
        Tell([record](TStoreObserver &observer) { observer.RecordInserted(record); });
    else
        TellModified(record, old.get());
    return true;
}

/// Takes a change back, all but its entry; an insertion's values stay for now.
void TRecordStore::Restore(const TChange &change)
{
    SetMissing(change.Record, change.Status == usInserted);
    if (change.Status != usInserted)
        FOverlay.Set(change.Record, change.Stored);
}

quint32 TRecordStore::UndoLast()
{
    const TChange *last = FLog.Last();
    if (!last)
        return NoRecord;
    const quint32 record = last->Record;
    Revert(record);
    return record;
}

TDeltaRows TRecordStore::DeltaRows() const
{
    TDeltaRows rows(FPacket, FKinds);
    FLog.ForEach([&](const TChange &change) {
        rows.Add(change.Record, change.Status, change.Stored, FOverlay.Share(change.Record));
    });
    return rows;
}

TDataPacket TRecordStore::Delta() const
{
    TRowCollector collector(FPacket);
    TDataPacketBuilder &builder = collector.Builder();
    builder.BeginLog(TPacketContent::Delta);
    DeltaRows().ForEach([&](TUpdateStatus status, const TRowReader &row) {
        collector.AddCells(row);
        builder.EndLogRow(status);
    });
    return std::move(builder).Build();
}

bool TRecordStore::IsAsLoaded() const
{
    if (FPacket.Content() == TPacketContent::RowsAndLog)
        return FHasLoadedLog;
    return FOverlay.IsEmpty() && FMissingCount == 0 && FLog.IsEmpty() && IsNaturalByNumber() &&
           FRecordLimit == FPacket.RowCount();
}

TDataPacket TRecordStore::Data() const
{
    if (IsAsLoaded())
        return FPacket;
    return FLog.IsEmpty() ? RowsAlone() : RowsAndLog();
}

TDataPacket TRecordStore::RowsAlone() const
{
    TRowCollector collector(FPacket);
    ForEachInOrder([&](quint32 record) {
        if (!IsMissing(record))
            collector.Add(record, FOverlay.Find(record));
    });
    return std::move(collector.Builder()).Build();
}

TDataPacket TRecordStore::RowsAndLog() const
{
    std::vector<bool> isLogged(FRecordLimit);
    FLog.ForEach([&](const TChange &change) { isLogged[change.Record] = true; });

    // Of each logged record its row in the packet, or its place.
    std::unordered_map<quint32, quint32> numbers;
    TRowCollector collector(FPacket);
    quint32 row = 0;
    quint32 place = 0;
    ForEachInOrder([&](quint32 record) {
        const TRowValues *cover = nullptr;
        if (isLogged[record]) {
            const TChange *change = FLog.Find(record);
            if (change->Status == usInserted) {
                numbers[record] = place++;
                return;
            }
            numbers[record] = row;
            cover = change->Stored.get();
        } else if (IsMissing(record)) {
            return;
        } else {
            cover = FOverlay.Find(record);
        }
        collector.Add(record, cover);
        ++row;
        ++place;
    });

    TDataPacketBuilder &builder = collector.Builder();
    builder.BeginLog(TPacketContent::RowsAndLog);
    FLog.ForEach([&](const TChange &change) {
        if (change.Status != usDeleted)
            collector.AddCells(RowOf(change.Record));
        builder.EndLogRow(change.Status, numbers[change.Record]);
    });
    return std::move(builder).Build();
}

void TRecordStore::Attach(TStoreObserver *observer) { FObservers.push_back(observer); }

void TRecordStore::Detach(TStoreObserver *observer)
{
    if (FTellings == 0)
        std::erase(FObservers, observer);
    else
        std::replace(FObservers.begin(), FObservers.end(), observer, static_cast<TStoreObserver *>(nullptr));
}

template <class Call> void TRecordStore::Tell(Call call)
{
    ++FTellings;
    const auto end = qScopeGuard([this] {
        if (--FTellings == 0)
            std::erase(FObservers, nullptr);
    });
    const size_t count = FObservers.size();
    for (size_t i = 0; i < count; ++i)
        if (FObservers[i])
            call(*FObservers[i]);
}

qsizetype TRecordStore::MemoryUsage() const
{
    qsizetype bytes =
        qsizetype(sizeof *this) + FPacket.MemoryUsage() + FOverlay.MemoryUsage() + FLog.MemoryUsage();
    bytes += qsizetype(FMissing.capacity() * sizeof(quint64));
    bytes += qsizetype((FNatural.capacity() + FPlaces.capacity()) * sizeof(quint32));
    return bytes;
}

} // namespace Korvane
