// SPDX-License-Identifier: MIT
// What screen readers see of a grid: a table with header cells and cells by row and column. Rows are
// read when they are asked for, without moving the dataset.
#pragma once

namespace Korvane {

class TwwDBGrid;

/// Lets Qt make the interfaces of grids; to be called before the first one is asked for, any number
/// of times.
void InstallGridAccessibility();

// What a grid tells of itself. Without a screen reader they cost a test of a flag.

/// Rows, columns, the current cell or the focus may be others: tells what really has changed.
void CurrentCellChanged(TwwDBGrid &grid);
/// The current row has other values.
void CurrentValueChanged(TwwDBGrid &grid);

} // namespace Korvane
