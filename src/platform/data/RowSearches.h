// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/KeyLookup.h"

#include <algorithm>

namespace Korvane {

/// Searches by key over a list of rows that are read by their place. From the second search of
/// the same columns and options on it goes by a hash lookup, until it is told that the rows
/// have changed.
class TRowSearches
{
public:
    /// One kind of search: columns and options.
    struct TSearch
    {
        TRowKey Key;
        TKeyLookup Lookup = {};
        bool IsIndexed = false;
        bool WasUsed = false;
    };

    /// The search of these columns and options. fields tells the columns' types. Good until the next
    /// call.
    TSearch &Of(std::span<const int> columns, TLocateOptions options, const QList<TPacketField> &fields);

    /// Sets the key of a search to a list of values, or to the one value of a single column. Raises
    /// EDatabaseError, with the names that were asked for, when there are none or their number is
    /// another one.
    static void SetKey(TSearch &search, const QString &names, const QVariant &values);

    /// The first place whose row has the search's key, of so many; -1 if there is none.
    /// rowAt(place) gives a reader of the row.
    template <class RowAt> static qsizetype Find(TSearch &search, qsizetype count, RowAt rowAt)
    {
        const TRowKey &key = search.Key;
        // A partial key has no hash; and one search alone is not worth an index.
        if (!search.WasUsed || (key.Options() & loPartialKey)) {
            search.WasUsed = true;
            for (qsizetype place = 0; place < count; ++place)
                if (key.Matches(rowAt(place)))
                    return place;
            return -1;
        }
        if (!search.IsIndexed) {
            search.Lookup.Build(quint32(count), HashOf(key, rowAt), AreSame(key, rowAt));
            search.IsIndexed = true;
        }
        const quint32 found =
            search.Lookup.Find(key.Hash(), [&](quint32 i) { return key.Matches(rowAt(i)); });
        return found == TKeyLookup::NotFound ? -1 : qsizetype(found);
    }

    /// One more row stands behind all others, which makes so many.
    template <class RowAt> void RowAdded(qsizetype count, RowAt rowAt)
    {
        std::erase_if(FSearches, [count](const TSearch &search) {
            return search.IsIndexed && search.Lookup.RowCount() + 1 != count;
        });
        for (TSearch &search : FSearches)
            if (search.IsIndexed)
                search.Lookup.Add(HashOf(search.Key, rowAt), AreSame(search.Key, rowAt));
    }
    /// The rows or their places are others.
    void Clear() { FSearches.clear(); }
    /// A row has changed in some columns and stands where it was: drops the searches on these.
    template <class HasChanged> void DropIf(HasChanged hasChanged)
    {
        std::erase_if(FSearches, [&](const TSearch &search) {
            return std::any_of(search.Key.Columns().begin(), search.Key.Columns().end(), hasChanged);
        });
    }

private:
    template <class RowAt> static auto HashOf(const TRowKey &key, RowAt rowAt)
    {
        return [&key, rowAt](quint32 place) { return key.HashOf(rowAt(place)); };
    }
    template <class RowAt> static auto AreSame(const TRowKey &key, RowAt rowAt)
    {
        return [&key, rowAt](quint32 a, quint32 b) { return key.AreSame(rowAt(a), rowAt(b)); };
    }

    std::vector<TSearch> FSearches; // the last few kinds
};

} // namespace Korvane
