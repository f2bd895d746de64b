// SPDX-License-Identifier: MIT
#pragma once

#include "BenchTable.h"

namespace Bench {

class TLargeTable;

/// Reading a million rows, ordering, filtering and searching them, and making objects of them.
QList<TComparison> DataSetComparisons(const std::shared_ptr<TLargeTable> &table);

} // namespace Bench
