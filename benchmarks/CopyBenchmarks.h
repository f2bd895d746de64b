// SPDX-License-Identifier: MIT
#pragma once

#include "BenchTable.h"

namespace Bench {

class TLargeTable;

/// Copying a whole database. Files go into a folder.
QList<TComparison> CopyComparisons(const std::shared_ptr<TLargeTable> &table, const QString &folder);

} // namespace Bench
