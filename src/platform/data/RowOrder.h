// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/CaseFold.h"
#include "platform/data/RowReader.h"

namespace Korvane {

enum class TSortDirection : unsigned char { Ascending, Descending };

/// One key of an order of rows.
struct TOrderPart
{
    int Column = 0;
    TCaseMode Mode = TCaseMode::Exact;
    TSortDirection Direction = TSortDirection::Ascending;

    friend bool operator==(const TOrderPart &, const TOrderPart &) = default;
};

/// The order of two rows of a packet by some keys: below 0, 0, above 0. NULL stands before
/// all values, and behind them in a descending key. Texts and blobs go by their bytes or
/// folded code points.
int CompareRows(const TDataPacket &packet, std::span<const TOrderPart> order, quint32 left, quint32 right);

/// Sorts row numbers of a packet. Rows of equal keys keep the order in which they were
/// given. No value moves; beside the rows it takes 16 bytes for each of them.
void SortRows(const TDataPacket &packet, std::span<const TOrderPart> order, std::vector<quint32> &rows);

} // namespace Korvane
