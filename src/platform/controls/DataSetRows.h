// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/dataset/DataSet.h"

#include <optional>

namespace Korvane {

/// The rows that a dataset shows, a row being inserted counting as one, by place from 0: how
/// controls of many rows see a dataset. All are cheap, but that rows that are asked for may have to be
/// fetched first.
class TDataSetRows
{
public:
    /// None, which has no rows, for a null dataset.
    explicit TDataSetRows(TDataSet *dataSet) : FDataSet(dataSet) {}

    /// All of them.
    qsizetype Count() const
    {
        if (IsOpen())
            FDataSet->FetchAll();
        return Fetched();
    }
    /// Those that are there to be painted.
    qsizetype Fetched() const
    {
        return !IsOpen() ? 0 : FDataSet->FetchedCount() + (FDataSet->State() == dsInsert ? 1 : 0);
    }
    bool Has(qsizetype row) const { return row < Fetched() || row < Count(); }
    /// The row, or the last one if there are not so many.
    qsizetype Nearest(qsizetype row) const { return Has(row) ? row : Count() - 1; }
    /// -1 without rows.
    qsizetype Current() const
    {
        if (!IsOpen())
            return -1;
        return FDataSet->State() == dsInsert ? FDataSet->InsertPosition() : FDataSet->RecNo() - 1;
    }
    /// The record of a row; null for one that is being inserted.
    TBookmark BookmarkAt(qsizetype row) const
    {
        const qsizetype inserted = FDataSet->InsertPosition();
        return row == inserted ? TBookmark() : FDataSet->BookmarkAt(PlaceOf(row, inserted));
    }
    /// Makes a row current. What is typed in the row before is posted first, which may move either of
    /// them in an ordered view; a refusal raises, and nothing moves.
    void GoTo(qsizetype row) const
    {
        if (row == Current() || !Has(row))
            return;
        const TBookmark target = BookmarkAt(row);
        FDataSet->CheckBrowseMode();
        const qsizetype place = FDataSet->PlaceOf(target);
        if (place >= 0)
            FDataSet->MoveBy(place - Current());
    }

    /// Makes the fields read a row for as long as it lives, without moving the dataset.
    class TReading
    {
    public:
        TReading(const TDataSetRows &rows, qsizetype row)
        {
            if (row == rows.Current())
                return; // fields read it anyway, with what is typed
            FPeek.emplace(*rows.FDataSet, PlaceOf(row, rows.FDataSet->InsertPosition()));
        }

    private:
        std::optional<TDataSet::TPeek> FPeek;
    };

private:
    bool IsOpen() const { return FDataSet && FDataSet->Active(); }
    /// Among the records, which a row being inserted is none of.
    static qsizetype PlaceOf(qsizetype row, qsizetype inserted)
    {
        return inserted >= 0 && row > inserted ? row - 1 : row;
    }

    TDataSet *FDataSet;
};

} // namespace Korvane
