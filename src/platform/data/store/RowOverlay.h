// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/store/RowValues.h"

#include <memory>
#include <unordered_map>

namespace Korvane {

/// Rows that lie over the rows of a packet, or beyond its last one, by row number. Cheap to
/// ask where nothing lies, which is nearly everywhere.
class TRowOverlay
{
public:
    bool IsEmpty() const { return FRows.empty(); }

    /// Null where the packet's own row counts.
    const TRowValues *Find(quint32 row) const
    {
        const size_t word = row >> 6;
        if (word >= FCovered.size() || (FCovered[word] >> (row & 63) & 1) == 0)
            return nullptr;
        return FRows.find(row)->second.get();
    }
    /// The same as a shared row.
    std::shared_ptr<const TRowValues> Share(quint32 row) const
    {
        const auto found = FRows.find(row);
        return found == FRows.end() ? nullptr : found->second;
    }
    /// No row uncovers the place.
    void Set(quint32 row, std::shared_ptr<const TRowValues> values)
    {
        const size_t word = row >> 6;
        if (!values) {
            if (FRows.erase(row) != 0)
                FCovered[word] &= ~(quint64(1) << (row & 63));
            return;
        }
        if (word >= FCovered.size())
            FCovered.resize(word + 1 + word / 2);
        FCovered[word] |= quint64(1) << (row & 63);
        FRows[row] = std::move(values);
    }

    /// Bytes held in memory.
    qsizetype MemoryUsage() const
    {
        qsizetype bytes = qsizetype(FCovered.capacity() * sizeof(quint64));
        for (const auto &[row, values] : FRows)
            bytes += values->MemoryUsage() + qsizetype(NodeSize);
        return bytes;
    }

private:
    static constexpr size_t NodeSize = 6 * sizeof(void *); // a row's place in the map, about

    std::vector<quint64> FCovered; // a bit per row
    std::unordered_map<quint32, std::shared_ptr<const TRowValues>> FRows;
};

/// A row by number: of the overlay where it covers, of the packet elsewhere. Both must live as
/// long.
class TOverlaidRow final : public TRowReader
{
public:
    TOverlaidRow(const TDataPacket &packet, const TRowOverlay &overlay, quint32 row = 0)
        : FPacket(packet), FOverlay(overlay)
    {
        MoveTo(row);
    }

    /// Nothing may be read where there is no such row.
    void MoveTo(quint32 row)
    {
        FRow = row;
        FCover = FOverlay.Find(row);
    }
    quint32 Row() const { return FRow; }

    bool IsNull(int column) const override
    {
        return FCover ? FCover->IsNull(column) : FPacket.Column(column).IsNull(FRow);
    }
    qint64 GetInt(int column) const override
    {
        return FCover ? FCover->GetInt(column) : FPacket.Column(column).Int(FRow);
    }
    double GetDouble(int column) const override
    {
        return FCover ? FCover->GetDouble(column) : FPacket.Column(column).Doubles()[FRow];
    }
    std::string_view GetText(int column) const override
    {
        return FCover ? FCover->GetText(column) : FPacket.Column(column).Bytes(FRow);
    }

private:
    const TDataPacket &FPacket;
    const TRowOverlay &FOverlay;
    const TRowValues *FCover = nullptr;
    quint32 FRow = 0;
};

} // namespace Korvane
