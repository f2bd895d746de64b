// SPDX-License-Identifier: MIT
#pragma once

#include "BenchTable.h"

namespace Bench {

class TLargeTable;

/// Importing an old Jet file. Files go into a folder.
QList<TComparison> ImportComparisons(const std::shared_ptr<TLargeTable> &table, const QString &folder);

} // namespace Bench
