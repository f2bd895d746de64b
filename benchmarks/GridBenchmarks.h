// SPDX-License-Identifier: MIT
#pragma once

#include "BenchTable.h"

namespace Bench {

class TLargeTable;

/// A million rows in a window: the first sight of them, a page further, and what it takes in memory.
QList<TComparison> GridComparisons(const std::shared_ptr<TLargeTable> &table);

} // namespace Bench
