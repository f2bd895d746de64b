// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/store/ChangeLog.h"
#include "platform/data/store/DeltaRows.h"
#include "platform/data/store/RowOverlay.h"

namespace Korvane {

/// What a cursor on a store is told. Records are told by number.
class TStoreObserver
{
public:
    virtual ~TStoreObserver() = default;

    virtual void RecordInserted(quint32 record) = 0;
    /// Its values have changed, or its status alone. old reads what it was, for now.
    virtual void RecordModified(quint32 record, const TRowReader &old) = 0;
    /// It is deleted, or gone for good.
    virtual void RecordDeleted(quint32 record) = 0;
    /// Anything may have changed: views are to be made anew.
    virtual void StoreReset() = 0;
    /// All present records are usUnmodified now; records, values and order stand.
    virtual void ChangesMerged() { StoreReset(); }
    /// Records stand behind those there were; all else is as it was.
    virtual void RowsFetched() { StoreReset(); }
};

/// The records of a dataset: the rows of a packet that stay where they are, changed and new
/// rows over them, and the log of the changes. Several cursors share one store.
///
/// Record numbers are the packet's row numbers, and go on behind them for new records; a
/// number is never used twice. A deleted record keeps its number and its stored values as long as the
/// log may bring it back.
///
/// The log holds at most one entry per record, in the order of the records' first changes:
/// a record inserted and edited stays one insert, one edited twice is one modification, one
/// edited and deleted is one deletion, and one inserted and deleted again leaves no entry and
/// is gone. A modification is logged even if all its values are equal to the stored ones.
///
/// An observer may attach, detach and destroy observers, itself too, and change the store while it
/// is being told of a change. What is attached meanwhile is not told of that change.
class TRecordStore
{
public:
    static constexpr quint32 NoRecord = TDataPacket::NoRecord;

    /// A packet that carries a log (TDataPacket::Content) brings it along; of its log's rows the
    /// insertions are records, the others stand for records that are gone. A delta's rows are
    /// plain rows that are all present, and Status gives the delta's marks; a row loses its mark
    /// when it is changed.
    explicit TRecordStore(const TDataPacket &packet);
    TRecordStore(const TRecordStore &) = delete;
    TRecordStore &operator=(const TRecordStore &) = delete;

    const QList<TPacketField> &Fields() const { return FPacket.Fields(); }
    std::span<const TColumnKind> Kinds() const { return FKinds; }
    const TDataPacket &Packet() const { return FPacket; }
    const TRowOverlay &Overlay() const { return FOverlay; }
    /// All record numbers are below.
    quint32 RecordLimit() const { return FRecordLimit; }

    /// A reader of a record's present values; of a deleted record, its stored ones.
    TOverlaidRow RowOf(quint32 record) const { return {FPacket, FOverlay, record}; }
    /// Whether the record had values before its logged change: false for a new record.
    bool HasStored(quint32 record) const;
    /// Those values; the present ones of a record that has no logged change, NULLs if there are
    /// none.
    TRowValues StoredValues(quint32 record) const;

    /// usDeleted also for one that is gone.
    TUpdateStatus Status(quint32 record) const;
    /// Neither deleted nor gone.
    bool IsPresent(quint32 record) const { return record < FRecordLimit && !IsMissing(record); }
    /// Gone for good: nothing brings it back.
    bool IsGone(quint32 record) const;
    bool HasMissing() const { return FMissingCount != 0; } ///< whether any record is deleted or gone

    /// Whether the natural order is that of the numbers.
    bool IsNaturalByNumber() const { return FNatural.empty(); }
    /// The records in their natural order, deleted and gone ones among them: the packet's
    /// order, and new records where they were put. Only for stores that are not
    /// IsNaturalByNumber.
    std::span<const quint32> NaturalOrder() const { return FNatural; }
    /// The place of a record in the natural order.
    quint32 NaturalPlace(quint32 record) const;

    // Changes. Each tells all observers once it is done. A value must be of its column's kind; the
    // row has as many columns as the store.

    /// Puts a new record before another one, or at the end for NoRecord; gives its number.
    /// Raises EOutOfResources beyond the highest number.
    quint32 Insert(TRowValues values, quint32 before);
    /// Raises EDatabaseError if the record is not present.
    void Modify(quint32 record, TRowValues values);
    /// Does nothing if the record is not present. While the observers are told, its values can
    /// still be read, also if it is gone.
    void Delete(quint32 record);
    /// Adds a packet's rows at the end; they are no changes. The packet has the store's fields, by
    /// name and kind, in any order; a missing one is NULL. Raises EDatabaseError, and adds nothing,
    /// when a field is unknown or its kind does not fit, and EOutOfResources when the rows are too
    /// many. A log in the packet is left out.
    void Append(const TDataPacket &packet);
    /// Takes the packet of which the loaded one is the beginning. Nothing may have been changed before.
    /// Raises EDatabaseError, and changes nothing, when one of its columns is of another kind.
    void Extend(const TDataPacket &whole);
    /// Removes all records and the log. Numbers begin anew.
    void Clear();

    /// Without logging changes stand at once as if they were merged. Logging is on by default;
    /// switching it keeps the log. A record that has an entry keeps it when it is modified, and
    /// loses it when it is deleted, which makes it gone.
    bool LogChanges() const { return FLogChanges; }
    void SetLogChanges(bool log) { FLogChanges = log; }

    /// Records with an entry in the log.
    qsizetype ChangeCount() const { return FLog.Count(); }
    const TChangeLog &Log() const { return FLog; }
    /// Takes all changes as stored and empties the log.
    void MergeChangeLog();
    /// Undoes all changes.
    void CancelUpdates();
    /// Undoes the change of one record, if there is one.
    bool Revert(quint32 record);
    /// Undoes the change of the record that was last to enter the log; gives that record, which
    /// may be gone, or NoRecord.
    quint32 UndoLast();

    /// The log's rows. Costs nothing per cell.
    TDeltaRows DeltaRows() const;
    /// The same as a packet of content TPacketContent::Delta.
    TDataPacket Delta() const;
    /// All records in natural order; with a log, it goes along (TPacketContent::RowsAndLog).
    /// Costs nothing as long as nothing has changed.
    TDataPacket Data() const;

    void Attach(TStoreObserver *observer);
    void Detach(TStoreObserver *observer);

    /// Bytes held in memory.
    qsizetype MemoryUsage() const;

private:
    void Load(const TDataPacket &packet);
    void LoadLog();
    void LoadOrder();
    bool IsAsLoaded() const;

    bool IsMissing(quint32 record) const
    {
        const size_t word = record >> 6;
        return word < FMissing.size() && (FMissing[word] >> (record & 63) & 1) != 0;
    }
    void SetMissing(quint32 record, bool isMissing);
    bool IsInPacket(quint32 record) const { return record < FPacket.RowCount(); }
    void DropValues(quint32 record);
    void TellGone(quint32 record);

    void PutInOrder(quint32 record, quint32 before);
    void IndexPlaces() const;
    template <class Visit> void ForEachInOrder(Visit visit) const;

    std::vector<int> ColumnsFor(const TDataPacket &packet) const;
    void AppendToOverlay(const TDataPacket &packet, qsizetype rows, std::span<const int> columns);
    void AppendToPacket(const TDataPacket &packet, qsizetype rows, std::span<const int> columns);

    void Restore(const TChange &change);
    TDataPacket RowsAlone() const;
    TDataPacket RowsAndLog() const;

    template <class Call> void Tell(Call call);
    void TellModified(quint32 record, const TRowValues *old);

    TDataPacket FPacket;
    std::vector<TColumnKind> FKinds;
    TRowOverlay FOverlay;
    std::shared_ptr<const TRowValues> FBlank; // covers the records beyond the packet that are gone
    quint32 FRecordLimit = 0;
    std::vector<quint64> FMissing; // a bit per record: deleted or gone
    quint32 FMissingCount = 0;
    std::vector<quint32> FNatural; // empty while it is the order of the numbers
    // Where each record stood in FNatural when last looked for; since then insertions may have
    // moved it back.
    mutable std::vector<quint32> FPlaces;
    mutable size_t FStepsSearched = 0;
    TChangeLog FLog;
    bool FLogChanges = true;
    bool FHasLoadedLog = false;               // whether the log is the packet's own
    std::vector<TStoreObserver *> FObservers; // null where one detached during a telling
    int FTellings = 0;
};

} // namespace Korvane
