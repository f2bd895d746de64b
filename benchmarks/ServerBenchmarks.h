// SPDX-License-Identifier: MIT
#pragma once

#include "BenchTable.h"

namespace Bench {

class TLargeTable;

/// Fetching a million rows from the PostgreSQL server that KORVANE_POSTGRES names
/// (scripts/test-servers.sh). Says so and is empty where there is none.
QList<TComparison> ServerComparisons(const std::shared_ptr<TLargeTable> &table);

} // namespace Bench
