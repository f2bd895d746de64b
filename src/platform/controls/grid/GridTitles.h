// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>

class QContextMenuEvent;
class QMouseEvent;

namespace Korvane {

class TwwDBGrid;

/// The mouse on a grid's titles: presses them, drags columns to other places, drags their edges,
/// and shows the menu of columns.
class TGridTitles
{
public:
    explicit TGridTitles(TwwDBGrid &grid) : FGrid(grid) {}

    // Each gives whether the event was the titles'.
    bool Press(const QMouseEvent &event);
    bool Move(const QMouseEvent &event);
    bool Release(const QMouseEvent &event);
    bool DoubleClick(const QMouseEvent &event);
    bool ShowMenu(const QContextMenuEvent &event);

    /// The column whose title is down; -1 for none.
    int PressedColumn() const { return FAction == TAction::Press ? FColumn : -1; }
    /// Where a dragged column would go: the column before which it comes, or behind the last one; -1
    /// while none is dragged.
    int DropColumn() const { return FAction == TAction::Drag ? FTarget : -1; }

private:
    enum class TAction { None, Press, Drag, Resize };

    bool IsInTitles(QPoint position) const;
    /// The column whose edge can be dragged there; -1 for none.
    int EdgeAt(QPoint position) const;
    void UpdateCursor(QPoint position);

    TwwDBGrid &FGrid;
    TAction FAction = TAction::None;
    int FColumn = -1;
    int FTarget = -1;
    QPoint FStart;
    int FStartWidth = 0;
};

} // namespace Korvane
