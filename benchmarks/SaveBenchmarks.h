// SPDX-License-Identifier: MIT
#pragma once

#include "BenchTable.h"

namespace Bench {

class TLargeTable;

/// Writing 20,000 changed rows back.
QList<TComparison> SaveComparisons(const std::shared_ptr<TLargeTable> &table);

} // namespace Bench
