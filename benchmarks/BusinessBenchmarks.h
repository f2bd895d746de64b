// SPDX-License-Identifier: MIT
#pragma once

#include "BenchTable.h"

namespace Bench {

/// Digests and amounts in words.
QList<TComparison> BusinessComparisons(const QString &folder);

} // namespace Bench
