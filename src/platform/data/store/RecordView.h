// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/FilterExpression.h"
#include "platform/data/RowOrder.h"
#include "platform/data/store/RecordStore.h"

#include <functional>

namespace Korvane {

/// Which of a store's records are seen, and in which order: the numbers of the records that
/// pass statuses and filter, sorted. Without any of these, and as long as the store allows it,
/// it is no list at all.
///
/// Without an order the records stand in the natural one. Records of equal keys go by their
/// number when they are selected; one that comes later, or whose key changes, goes behind its
/// equals. A change of one record moves one number, to where a binary search puts it.
class TRecordView
{
public:
    /// What a view selects and how it sorts.
    struct TRules
    {
        std::vector<TOrderPart> Order;
        TBoundFilter Filter;
        std::function<bool(quint32)> Accepts; ///< empty accepts all
        int Statuses = 0;                     ///< bits by TUpdateStatus; 0 is all but the deleted

        /// Whether all present records are seen, in their natural order.
        bool SelectAll() const { return Order.empty() && Filter.IsEmpty() && !Accepts && Statuses == 0; }
    };

    /// The store must live as long as the view.
    explicit TRecordView(const TRecordStore &store) : FStore(store) {}

    const TRules &Rules() const { return FRules; }
    /// Selects anew by other rules. When something raises, nothing has changed.
    void Select(TRules rules);
    /// The same by the rules that stand.
    void Select() { Select(FRules); }

    qsizetype Count() const { return FIsWhole ? qsizetype(FStore.RecordLimit()) : qsizetype(FRows.size()); }
    quint32 RecordAt(qsizetype position) const
    {
        return FIsWhole ? quint32(position) : FRows[size_t(position)];
    }
    /// -1 if the record is not seen. Logarithmic, but for a natural order with rows put between
    /// others, and for a record whose values have just changed.
    qsizetype PositionOf(quint32 record) const;

    // To be told of each change of the store. They give whether any record has another place now;
    // hint is where the record may stand.
    bool Insert(quint32 record);
    bool Update(quint32 record, const TRowReader &old, qsizetype hint);
    bool Remove(quint32 record, qsizetype hint);

    /// The first place whose record's key is not below the given one (behind false), or is above
    /// it (behind true), by the first parts of the order.
    qsizetype Bound(const TRowReader &key, size_t parts, bool behind) const;

    qsizetype MemoryUsage() const { return qsizetype(FRows.capacity() * sizeof(quint32)); }

private:
    bool SelectIfSplit();
    bool InsertInOrder(quint32 record);
    bool PutAgain(quint32 record, qsizetype place);
    bool HasOtherKey(quint32 record, const TRowReader &old) const;
    quint64 RankOf(quint32 record) const;
    bool HasStatus(quint32 record, const TRules &rules) const;
    bool Sees(quint32 record) const;
    bool IsBefore(quint32 left, quint32 right) const;
    bool MayBeWhole(const TRules &rules) const;
    std::vector<quint32> Candidates(const TRules &rules) const;
    qsizetype PlaceFor(quint32 record) const;
    qsizetype FindLinearly(quint32 record, qsizetype hint) const;

    const TRecordStore &FStore;
    TRules FRules;
    bool FIsWhole = false;
    std::vector<quint32> FRows;
    // Of equal keys: the records that came behind the others after the last selection.
    std::unordered_map<quint32, quint64> FRanks;
    quint64 FLastRank = 0;
    quint32 FSelectedLimit = 0; // the store's when the records were selected
};

} // namespace Korvane
