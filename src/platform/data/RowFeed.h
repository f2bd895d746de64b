// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/DataPacket.h"

#include <QDeadlineTimer>

namespace Korvane {

/// A rowset that is being read: who has shown its first rows asks it for the others, piece by piece.
class TRowFeed
{
public:
    virtual ~TRowFeed() = default;

    /// Reads on until the deadline, some rows at least; true once all have been read. What fails raises, and
    /// from then on each call raises the same.
    virtual bool Read(QDeadlineTimer deadline) = 0;
    /// All rows, the first ones among them. Only once Read has given true.
    virtual const TDataPacket &Rows() const = 0;
};

/// The first rows of a rowset, and what gives all of them; without that they are all.
struct TFirstRows
{
    TDataPacket Rows;
    std::shared_ptr<TRowFeed> Feed;
};

} // namespace Korvane
