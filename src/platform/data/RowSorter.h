// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/SortKeys.h"

namespace Korvane {

/// Sorts row numbers by all keys of an order at once: the rows are put in order by a chunk of
/// the first key, and only rows with equal chunks go on with the next chunk or key. Every step
/// is stable, and looks at values in the order of the rows given.
class TRowSorter
{
public:
    /// The overlay may be null.
    TRowSorter(const TDataPacket &packet, const TRowOverlay *overlay, std::span<const TOrderPart> order);

    void Sort(std::vector<quint32> &rows);

private:
    /// Entries that are equal in all chunks before some depth of a key.
    struct TRun
    {
        std::span<TSortEntry> Entries;
        size_t Key = 0;
        size_t Depth = 0;
    };

    void SortRun(TRun run);
    TRun Next(const TRun &run) const;
    void SortParts(const TRun &run);
    void SortByComparison(const TRun &run);
    void SortByChunk(std::span<TSortEntry> entries);

    const TDataPacket &FPacket;
    const TRowOverlay *FOverlay;
    std::span<const TOrderPart> FOrder;
    std::vector<TSortKeys> FKeys;
    std::vector<TSortEntry> FSpare;
    std::vector<TRun> FRuns; // that are still to be sorted
};

} // namespace Korvane
