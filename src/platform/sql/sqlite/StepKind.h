// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlRewriter.h"

namespace Korvane {

/// What the driver has to know of a step before it runs it.
enum class TStepKind : quint8 {
    Other,
    Selects,
    ChangesRows,
    MakesTable,
    DropsTable,
    ChangesTable, ///< the table is made anew
    ControlsTransaction
};

/// The kind of each step, in their order.
QList<TStepKind> KindsOf(const TRewrittenStatement &rewritten);

} // namespace Korvane
