// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/FieldTypes.h"
#include "platform/data/store/RowValues.h"

#include <map>
#include <memory>
#include <unordered_map>

namespace Korvane {

/// One record's entry in a change log.
struct TChange
{
    quint32 Record = 0;
    TUpdateStatus Status = usUnmodified;
    /// What lay over the packet's row before the change; null where the packet's row counted,
    /// and for an insertion.
    std::shared_ptr<const TRowValues> Stored;
};

/// The changes of a store's records, one per record, in the order in which the records first
/// changed.
class TChangeLog
{
public:
    qsizetype Count() const { return qsizetype(FEntries.size()); }
    bool IsEmpty() const { return FEntries.empty(); }
    /// Null if the record has not changed.
    const TChange *Find(quint32 record) const
    {
        const auto place = FPlaces.find(record);
        return place == FPlaces.end() ? nullptr : &FEntries.at(place->second);
    }
    /// Null for an empty log.
    const TChange *Last() const { return FEntries.empty() ? nullptr : &FEntries.rbegin()->second; }

    void Add(TChange change)
    {
        FPlaces[change.Record] = FNext;
        FEntries.emplace_hint(FEntries.end(), FNext++, std::move(change));
    }
    void SetStatus(quint32 record, TUpdateStatus status) { FEntries.at(FPlaces.at(record)).Status = status; }
    void Remove(quint32 record)
    {
        const auto place = FPlaces.find(record);
        FEntries.erase(place->second);
        FPlaces.erase(place);
    }
    void Clear()
    {
        FEntries.clear();
        FPlaces.clear();
    }

    /// Calls visit(const TChange &) for each, in order.
    template <class Visit> void ForEach(Visit visit) const
    {
        for (const auto &[place, change] : FEntries)
            visit(change);
    }

    /// Bytes held in memory.
    qsizetype MemoryUsage() const
    {
        qsizetype bytes = Count() * qsizetype(sizeof(TChange) + NodesSize);
        for (const auto &[place, change] : FEntries)
            bytes += change.Stored ? change.Stored->MemoryUsage() : 0;
        return bytes;
    }

private:
    static constexpr size_t NodesSize = 12 * sizeof(void *); // an entry's places in the maps, about

    std::map<quint64, TChange> FEntries; // by the order of entering
    std::unordered_map<quint32, quint64> FPlaces;
    quint64 FNext = 0;
};

} // namespace Korvane
