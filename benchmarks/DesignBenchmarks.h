// SPDX-License-Identifier: MIT
#pragma once

#include "BenchTable.h"

namespace Bench {

/// The design file: opening, lookups, scripts, creating a database. Works in a folder.
QList<TComparison> DesignComparisons(const QString &folder);

} // namespace Bench
