// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/CaseFold.h"
#include "platform/data/TextCollation.h"
#include "platform/data/store/RowOverlay.h"

namespace Korvane {

enum class TSortDirection : unsigned char { Ascending, Descending };

/// One key of an order of rows.
struct TOrderPart
{
    int Column = 0;
    TCaseMode Mode = TCaseMode::Exact;
    TSortDirection Direction = TSortDirection::Ascending;
    const TTextCollation *Collation = nullptr; ///< for texts, in place of their bytes; blobs keep theirs

    friend bool operator==(const TOrderPart &, const TOrderPart &) = default;
};

/// The order of two rows by some keys: below 0, 0, above 0. NULL stands before all values, and
/// behind them in a descending key. Texts and blobs go by their bytes or folded code points,
/// texts with a collation by that. The rows are those of a packet, or of a packet with others
/// lying over it and behind its last one.
int CompareRows(const TDataPacket &packet, std::span<const TOrderPart> order, quint32 left, quint32 right);
int CompareRows(const TDataPacket &packet, const TRowOverlay &overlay, std::span<const TOrderPart> order,
                quint32 left, quint32 right);

/// The same of a row and a key by the first parts of an order. Both number their columns as the
/// order does, and are of the kinds given.
int CompareRowToKey(const TRowReader &row, std::span<const TOrderPart> order, const TRowReader &key,
                    size_t parts, std::span<const TColumnKind> kinds);

/// Sorts row numbers. Rows of equal keys keep the order in which they were given. No value
/// moves; beside the rows it takes 32 bytes for each of them, and with a collation also the
/// sort keys of the distinct texts.
void SortRows(const TDataPacket &packet, std::span<const TOrderPart> order, std::vector<quint32> &rows);
void SortRows(const TDataPacket &packet, const TRowOverlay &overlay, std::span<const TOrderPart> order,
              std::vector<quint32> &rows);

} // namespace Korvane
