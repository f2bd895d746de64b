// SPDX-License-Identifier: MIT
#include "platform/data/store/RecordView.h"

#include <algorithm>

namespace Korvane {

bool TRecordView::HasStatus(quint32 record, const TRules &rules) const
{
    if (rules.Statuses == 0)
        return FStore.IsPresent(record);
    return !FStore.IsGone(record) && (rules.Statuses >> FStore.Status(record) & 1) != 0;
}

bool TRecordView::Sees(quint32 record) const
{
    if (!HasStatus(record, FRules))
        return false;
    if (!FRules.Filter.IsEmpty() && !FRules.Filter.Matches(FStore.RowOf(record)))
        return false;
    return !FRules.Accepts || FRules.Accepts(record);
}

bool TRecordView::MayBeWhole(const TRules &rules) const
{
    return rules.SelectAll() && FStore.IsNaturalByNumber() && !FStore.HasMissing();
}

/// The records of the right status, in the natural order.
std::vector<quint32> TRecordView::Candidates(const TRules &rules) const
{
    std::vector<quint32> records;
    records.reserve(FStore.RecordLimit());
    const bool all = rules.Statuses == 0 && !FStore.HasMissing();
    const auto take = [&](quint32 record) {
        if (all || HasStatus(record, rules))
            records.push_back(record);
    };
    // Equal keys go by number, so that only a view without an order minds the natural one.
    if (FStore.IsNaturalByNumber() || !rules.Order.empty())
        for (quint32 record = 0; record < FStore.RecordLimit(); ++record)
            take(record);
    else
        for (const quint32 record : FStore.NaturalOrder())
            take(record);
    return records;
}

void TRecordView::Select(TRules rules)
{
    const bool isWhole = MayBeWhole(rules);
    std::vector<quint32> rows;
    if (!isWhole) {
        rows = Candidates(rules);
        if (!rules.Filter.IsEmpty()) {
            std::vector<quint32> passed;
            rules.Filter.Select(FStore.Packet(), FStore.Overlay(), rows, passed);
            rows = std::move(passed);
        }
        if (rules.Accepts)
            std::erase_if(rows, [&](quint32 record) { return !rules.Accepts(record); });
        SortRows(FStore.Packet(), FStore.Overlay(), rules.Order, rows);
        if (rows.size() < rows.capacity() / 2)
            rows.shrink_to_fit();
    }
    FRules = std::move(rules);
    FRows = std::move(rows);
    FIsWhole = isWhole;
    FRanks.clear();
    FLastRank = 0xFFFFFFFF; // behind all record numbers
    FSelectedLimit = FStore.RecordLimit();
}

quint64 TRecordView::RankOf(quint32 record) const
{
    const auto rank = FRanks.find(record);
    return rank == FRanks.end() ? record : rank->second;
}

bool TRecordView::IsBefore(quint32 left, quint32 right) const
{
    if (FRules.Order.empty())
        return FStore.IsNaturalByNumber() ? left < right
                                          : FStore.NaturalPlace(left) < FStore.NaturalPlace(right);
    const int result = CompareRows(FStore.Packet(), FStore.Overlay(), FRules.Order, left, right);
    return result != 0 ? result < 0 : RankOf(left) < RankOf(right);
}

/// Where a record that is not in the list belongs.
qsizetype TRecordView::PlaceFor(quint32 record) const
{
    const auto place =
        std::lower_bound(FRows.begin(), FRows.end(), record,
                         [this](quint32 left, quint32 right) { return IsBefore(left, right); });
    return place - FRows.begin();
}

qsizetype TRecordView::FindLinearly(quint32 record, qsizetype hint) const
{
    if (hint >= 0 && hint < qsizetype(FRows.size()) && FRows[size_t(hint)] == record)
        return hint;
    const auto found = std::find(FRows.begin(), FRows.end(), record);
    return found == FRows.end() ? -1 : found - FRows.begin();
}

qsizetype TRecordView::PositionOf(quint32 record) const
{
    if (record >= FStore.RecordLimit())
        return -1;
    if (FIsWhole)
        return record;
    const qsizetype place = PlaceFor(record);
    return place < qsizetype(FRows.size()) && FRows[size_t(place)] == record ? place : -1;
}

/// A view that was no list becomes one if it has to.
bool TRecordView::SelectIfSplit()
{
    if (MayBeWhole(FRules))
        return false;
    Select();
    return true;
}

bool TRecordView::InsertInOrder(quint32 record)
{
    if (!Sees(record))
        return false;
    FRows.insert(FRows.begin() + PlaceFor(record), record);
    return true;
}

bool TRecordView::Insert(quint32 record)
{
    if (FIsWhole)
        return SelectIfSplit(); // otherwise it stands at the end, where nothing moves
    if ((FRules.Statuses >> usDeleted & 1) != 0)
        if (const qsizetype place = FindLinearly(record, -1); place >= 0)
            return PutAgain(record, place); // it was shown as deleted
    if (record >= FSelectedLimit)
        FRanks[record] = ++FLastRank;
    return InsertInOrder(record);
}

bool TRecordView::HasOtherKey(quint32 record, const TRowReader &old) const
{
    const std::span<const TOrderPart> order = FRules.Order;
    return !order.empty() &&
           CompareRowToKey(FStore.RowOf(record), order, old, order.size(), FStore.Kinds()) != 0;
}

bool TRecordView::Update(quint32 record, const TRowReader &old, qsizetype hint)
{
    if (FIsWhole)
        return SelectIfSplit();
    const bool isElsewhere = HasOtherKey(record, old);
    if (isElsewhere)
        FRanks[record] = ++FLastRank;
    // NOTE: the list is sorted but for this record, so that it is not looked for by its values.
    const qsizetype place = FindLinearly(record, hint);
    if (place < 0)
        return InsertInOrder(record);
    if (!isElsewhere && Sees(record))
        return false;
    return PutAgain(record, place);
}

bool TRecordView::Remove(quint32 record, qsizetype hint)
{
    if (FIsWhole)
        return SelectIfSplit();
    const qsizetype place = FindLinearly(record, hint);
    return place < 0 ? InsertInOrder(record) : PutAgain(record, place);
}

/// Takes a record out of the list and, if it is seen, puts it where it belongs now.
bool TRecordView::PutAgain(quint32 record, qsizetype place)
{
    FRows.erase(FRows.begin() + place);
    InsertInOrder(record);
    return true;
}

qsizetype TRecordView::Bound(const TRowReader &key, size_t parts, bool behind) const
{
    qsizetype low = 0;
    qsizetype high = Count();
    while (low < high) {
        const qsizetype middle = low + (high - low) / 2;
        const int result =
            CompareRowToKey(FStore.RowOf(RecordAt(middle)), FRules.Order, key, parts, FStore.Kinds());
        if (result < 0 || (behind && result == 0))
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

} // namespace Korvane
