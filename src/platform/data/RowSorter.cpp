// SPDX-License-Identifier: MIT
#include "platform/data/RowSorter.h"

#include <array>

namespace Korvane {

namespace {

// Runs below it are finished at once, and no more than one in that many rows waits.
constexpr size_t SmallRun = 12;
// From it on counting bytes beats comparing chunks.
constexpr size_t RadixRun = 64;

/// One stable step of a radix sort.
void SortByByte(std::span<const TSortEntry> from, std::span<TSortEntry> to, int shift)
{
    std::array<quint32, 256> next = {};
    for (const TSortEntry &entry : from)
        ++next[entry.Chunk >> shift & 0xFF];
    quint32 begin = 0;
    for (quint32 &place : next)
        begin += std::exchange(place, begin);
    for (const TSortEntry &entry : from)
        to[next[entry.Chunk >> shift & 0xFF]++] = entry;
}

void SortByInsertion(std::span<TSortEntry> entries)
{
    for (size_t i = 1; i < entries.size(); ++i) {
        const TSortEntry moved = entries[i];
        size_t at = i;
        for (; at > 0 && entries[at - 1].Chunk > moved.Chunk; --at)
            entries[at] = entries[at - 1];
        entries[at] = moved;
    }
}

} // namespace

TRowSorter::TRowSorter(const TDataPacket &packet, const TRowOverlay *overlay,
                       std::span<const TOrderPart> order)
    : FPacket(packet), FOverlay(overlay), FOrder(order)
{
}

void TRowSorter::Sort(std::vector<quint32> &rows)
{
    if (FOrder.empty() || rows.size() < 2)
        return;
    FKeys.reserve(FOrder.size());
    for (const TOrderPart &part : FOrder)
        FKeys.emplace_back(FPacket, FOverlay, part, rows.size());
    std::vector<TSortEntry> entries(rows.size());
    for (size_t i = 0; i < rows.size(); ++i)
        entries[i] = {0, quint32(i), rows[i]};
    FRuns.push_back({entries, 0, 0});
    while (!FRuns.empty()) {
        const TRun run = FRuns.back();
        FRuns.pop_back();
        SortRun(run);
    }
    for (size_t i = 0; i < rows.size(); ++i)
        rows[i] = entries[i].Row;
}

/// Sorts a run by one chunk after the other as long as it does not fall apart.
void TRowSorter::SortRun(TRun run)
{
    while (run.Key < FKeys.size()) {
        TSortKeys &keys = FKeys[run.Key];
        if (!keys.HasChunks(run.Depth))
            return SortByComparison(run);
        keys.Fetch(run.Entries, run.Depth);
        SortByChunk(run.Entries);
        if (run.Entries.front().Chunk != run.Entries.back().Chunk)
            return SortParts(run);
        run = Next(run);
    }
}

/// What is to be done with a run of equal chunks.
TRowSorter::TRun TRowSorter::Next(const TRun &run) const
{
    return FKeys[run.Key].IsLast(run.Entries.front().Chunk, run.Depth)
               ? TRun{run.Entries, run.Key + 1, 0}
               : TRun{run.Entries, run.Key, run.Depth + 1};
}

void TRowSorter::SortParts(const TRun &run)
{
    const size_t count = run.Entries.size();
    for (size_t begin = 0, end = 0; begin < count; begin = end) {
        const quint64 chunk = run.Entries[begin].Chunk;
        while (end < count && run.Entries[end].Chunk == chunk)
            ++end;
        if (end - begin == 1)
            continue;
        const TRun part = Next({run.Entries.subspan(begin, end - begin), run.Key, run.Depth});
        // A small run cannot fall apart often, so that this does not go deep.
        if (end - begin < SmallRun)
            SortRun(part);
        else if (part.Key < FKeys.size())
            FRuns.push_back(part);
    }
}

void TRowSorter::SortByComparison(const TRun &run)
{
    const auto order = FOrder.subspan(run.Key);
    std::ranges::sort(run.Entries, [&](const TSortEntry &left, const TSortEntry &right) {
        const int result = FOverlay ? CompareRows(FPacket, *FOverlay, order, left.Row, right.Row)
                                    : CompareRows(FPacket, order, left.Row, right.Row);
        return result != 0 ? result < 0 : left.Place < right.Place;
    });
}

void TRowSorter::SortByChunk(std::span<TSortEntry> entries)
{
    if (entries.size() < SmallRun)
        return SortByInsertion(entries);
    quint64 differing = 0;
    bool isSorted = true;
    for (size_t i = 1; i < entries.size(); ++i) {
        differing |= entries[i].Chunk ^ entries[i - 1].Chunk;
        isSorted &= entries[i - 1].Chunk <= entries[i].Chunk;
    }
    if (isSorted)
        return;
    if (entries.size() < RadixRun) {
        std::sort(entries.begin(), entries.end(), [](const TSortEntry &left, const TSortEntry &right) {
            return left.Chunk != right.Chunk ? left.Chunk < right.Chunk : left.Place < right.Place;
        });
        return;
    }
    if (FSpare.size() < entries.size())
        FSpare.resize(entries.size()); // the first run is the longest
    std::span<TSortEntry> from = entries, to = std::span(FSpare).first(entries.size());
    for (int shift = 0; shift < 64; shift += 8) {
        if ((differing >> shift & 0xFF) != 0) {
            SortByByte(from, to, shift);
            std::swap(from, to);
        }
    }
    if (from.data() != entries.data())
        std::copy(from.begin(), from.end(), entries.begin());
}

} // namespace Korvane
