// SPDX-License-Identifier: MIT
// The mouse on a grid, and the focus.
#include "platform/controls/DBGrid.h"
#include "platform/controls/DBGridAccessible.h"
#include "platform/controls/DataSetRows.h"
#include "platform/controls/GridEditing.h"
#include "platform/controls/GridTitles.h"
#include "platform/controls/GridTotals.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScrollBar>

namespace Korvane {

void TwwDBGrid::mousePressEvent(QMouseEvent *event)
{
    FEditOnRelease = false;
    FPressed = {};
    if (FTitles->Press(*event))
        return;
    const QPoint position = event->position().toPoint();
    const TGridCell cell = CellAt(position);
    if (cell.Row < 0) {
        CommitEdit();
        return;
    }
    if (cell.Column < 0) { // the indicator, or behind the columns
        FBlockEnd = {};
        MoveRow(cell.Row);
        return;
    }
    if (event->button() == Qt::LeftButton)
        PressCell(cell, *event);
    else
        SetCurrentCell(cell);
}

void TwwDBGrid::PressCell(const TGridCell &cell, QMouseEvent &event)
{
    if (event.modifiers().testFlag(Qt::ShiftModifier))
        return SelectTo(cell);
    const bool wasCurrent = cell == CurrentCell() && hasFocus();
    FBlockEnd = {};
    SetCurrentCell(cell);
    FPressed = CurrentCell();
    if (FPressed.IsNull() || FPressed.Column != cell.Column)
        return;
    const TCellControl &control = Columns(cell.Column)->Control();
    if (control.Kind == ckCheckBox) {
        if (wasCurrent || FEditControlOptions.testFlag(ecoCheckboxSingleClick))
            ToggleCheckBox();
        FPressed = {};
    } else {
        FEditOnRelease = wasCurrent;
    }
    viewport()->update();
}

void TwwDBGrid::mouseMoveEvent(QMouseEvent *event)
{
    if (FTitles->Move(*event))
        return;
    if (!(event->buttons() & Qt::LeftButton) || FPressed.IsNull())
        return;
    const TGridCell cell = FLayout.NearestCell(event->position().toPoint());
    if (cell != FPressed || !FBlockEnd.IsNull()) {
        FEditOnRelease = false;
        SelectTo(cell);
    }
}

void TwwDBGrid::mouseReleaseEvent(QMouseEvent *event)
{
    if (FTitles->Release(*event))
        return;
    FPressed = {};
    if (std::exchange(FEditOnRelease, false))
        EditCell();
}

void TwwDBGrid::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (FTitles->DoubleClick(*event))
        return;
    FEditOnRelease = false;
    if (event->button() == Qt::LeftButton && CellAt(event->position().toPoint()).Row >= 0)
        DblClick();
}

void TwwDBGrid::contextMenuEvent(QContextMenuEvent *event)
{
    if (!FTitles->ShowMenu(*event))
        QAbstractScrollArea::contextMenuEvent(event);
}

bool TwwDBGrid::TellMouseWheel(int delta)
{
    bool isHandled = false;
    OnMouseWheel(this, delta, isHandled);
    return !isHandled;
}

bool TwwDBGrid::DoMouseWheel(int delta)
{
    if (!TellMouseWheel(delta))
        return false;
    const int lines = delta * QApplication::wheelScrollLines() / QWheelEvent::DefaultDeltasPerStep;
    ScrollTo(FLayout.TopRow - lines, FLayout.Offset);
    return true;
}

void TwwDBGrid::wheelEvent(QWheelEvent *event)
{
    const QPoint delta = event->angleDelta();
    if (qAbs(delta.x()) > qAbs(delta.y()))
        return QAbstractScrollArea::wheelEvent(event);
    DoMouseWheel(delta.y());
    event->accept();
}

void TwwDBGrid::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    CurrentCellChanged(*this);
    viewport()->update();
}

void TwwDBGrid::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    CurrentCellChanged(*this);
    viewport()->update();
}

} // namespace Korvane
