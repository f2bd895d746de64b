// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/FieldTypes.h"
#include "platform/data/store/RowValues.h"

#include <memory>

namespace Korvane {

/// The rows of a store's change log, read where they stand: a modification is two rows, the stored
/// values (usUnmodified) and behind them the changed columns (usModified, all others NULL); an
/// insertion the new values, a deletion the stored ones. They stay as they were when they were
/// taken, whatever becomes of the store.
class TDeltaRows
{
public:
    explicit TDeltaRows(const TDataPacket &packet, std::span<const TColumnKind> kinds)
        : FPacket(packet), FKinds(kinds.begin(), kinds.end())
    {
    }

    const QList<TPacketField> &Fields() const { return FPacket.Fields(); }

    /// What lies over the packet's row of a record, null where nothing does: before the change, and
    /// now.
    void Add(quint32 record, TUpdateStatus status, std::shared_ptr<const TRowValues> stored,
             std::shared_ptr<const TRowValues> present)
    {
        FChanges.push_back({record, status, std::move(stored), std::move(present)});
    }

    /// Calls visit(TUpdateStatus, const TRowReader &) for each row, in the log's order.
    template <class Visit> void ForEach(Visit visit) const
    {
        for (const TChange &change : FChanges) {
            const TPacketRow packetRow(FPacket, change.Record);
            const auto rowOf = [&](const std::shared_ptr<const TRowValues> &cover) -> const TRowReader & {
                return cover ? static_cast<const TRowReader &>(*cover) : packetRow;
            };
            switch (change.Status) {
            case usInserted:
                visit(usInserted, rowOf(change.Present));
                break;
            case usDeleted:
                visit(usDeleted, rowOf(change.Stored));
                break;
            default:
                visit(usUnmodified, rowOf(change.Stored));
                visit(usModified, TChangedCells(rowOf(change.Stored), rowOf(change.Present), FKinds));
                break;
            }
        }
    }

private:
    /// Of a row what differs from another one.
    class TChangedCells final : public TRowReader
    {
    public:
        TChangedCells(const TRowReader &stored, const TRowReader &present, std::span<const TColumnKind> kinds)
            : FStored(stored), FPresent(present), FKinds(kinds)
        {
        }

        bool IsNull(int column) const override
        {
            return FPresent.IsNull(column) || SameCell(FStored, FPresent, column, FKinds[size_t(column)]);
        }
        qint64 GetInt(int column) const override { return IsNull(column) ? 0 : FPresent.GetInt(column); }
        double GetDouble(int column) const override
        {
            return IsNull(column) ? 0 : FPresent.GetDouble(column);
        }
        std::string_view GetText(int column) const override
        {
            return IsNull(column) ? std::string_view() : FPresent.GetText(column);
        }

    private:
        const TRowReader &FStored;
        const TRowReader &FPresent;
        const std::span<const TColumnKind> FKinds;
    };

    struct TChange
    {
        quint32 Record;
        TUpdateStatus Status;
        std::shared_ptr<const TRowValues> Stored;
        std::shared_ptr<const TRowValues> Present;
    };

    const TDataPacket FPacket;
    const std::vector<TColumnKind> FKinds;
    std::vector<TChange> FChanges;
};

} // namespace Korvane
