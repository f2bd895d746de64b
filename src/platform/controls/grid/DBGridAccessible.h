// SPDX-License-Identifier: MIT
// What screen readers see of a grid: a table with header cells and cells by row and column. Rows are
// read when they are asked for, without moving the dataset.
#pragma once

#include "platform/core/Event.h"

class QAccessibleEvent;

namespace Korvane {

class TwwDBGrid;

/// Lets Qt make the interfaces of grids; to be called before the first one is asked for, any number
/// of times.
void InstallGridAccessibility();

/// Rows, columns, the current cell, its text or the focus may be others: tells what really has
/// changed. Costs nothing as long as no grid was asked for.
void CurrentCellChanged(TwwDBGrid &grid);

/// Hears what grids tell, also on a platform that has no accessibility and drops it.
TEvent<QAccessibleEvent &> &GridAccessibilityListener();

} // namespace Korvane
