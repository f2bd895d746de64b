// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/FieldTypes.h"
#include "platform/data/store/RowValues.h"

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
    qsizetype Count() const { return qsizetype(FPlaces.size()); }
    bool IsEmpty() const { return FPlaces.empty(); }
    /// Null if the record has not changed; good until the log changes.
    const TChange *Find(quint32 record) const
    {
        if (FPlaces.empty())
            return nullptr;
        const auto place = FPlaces.find(record);
        return place == FPlaces.end() ? nullptr : &FEntries[place->second];
    }
    /// Null for an empty log.
    const TChange *Last() const { return FEntries.empty() ? nullptr : &FEntries.back(); }

    void Add(TChange change)
    {
        FPlaces[change.Record] = FEntries.size();
        FEntries.push_back(std::move(change));
    }
    void SetStatus(quint32 record, TUpdateStatus status) { FEntries[FPlaces.at(record)].Status = status; }
    void Remove(quint32 record)
    {
        const auto place = FPlaces.find(record);
        FEntries[place->second] = {}; // unmodified: no entry
        FPlaces.erase(place);
        while (!FEntries.empty() && FEntries.back().Status == usUnmodified)
            FEntries.pop_back();
        if (FEntries.size() > 2 * FPlaces.size() + 16)
            CloseGaps();
    }
    void Clear()
    {
        FEntries.clear();
        FPlaces.clear();
    }

    /// Calls visit(const TChange &) for each, in order.
    template <class Visit> void ForEach(Visit visit) const
    {
        for (const TChange &change : FEntries)
            if (change.Status != usUnmodified)
                visit(change);
    }

    /// Bytes held in memory.
    qsizetype MemoryUsage() const
    {
        qsizetype bytes = qsizetype(FEntries.capacity() * sizeof(TChange)) + Count() * qsizetype(PlaceSize);
        for (const TChange &change : FEntries)
            bytes += change.Stored ? change.Stored->MemoryUsage() : 0;
        return bytes;
    }

private:
    static constexpr size_t PlaceSize = 5 * sizeof(void *); // of an entry in the map, about

    void CloseGaps()
    {
        std::erase_if(FEntries, [](const TChange &change) { return change.Status == usUnmodified; });
        for (size_t place = 0; place < FEntries.size(); ++place)
            FPlaces[FEntries[place].Record] = place;
    }

    std::vector<TChange> FEntries; // in the order of entering, with gaps where one has left
    std::unordered_map<quint32, size_t> FPlaces;
};

} // namespace Korvane
