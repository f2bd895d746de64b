// SPDX-License-Identifier: MIT
#pragma once

#include "BenchTable.h"

namespace Bench {

class TLargeTable;

/// Writing rows into files for spreadsheet programs, in a folder.
QList<TComparison> ExportComparisons(const std::shared_ptr<TLargeTable> &table, const QString &folder);

} // namespace Bench
