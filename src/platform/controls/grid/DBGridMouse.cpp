// SPDX-License-Identifier: MIT
// The mouse on a grid, and the focus.
#include "platform/controls/DataSetRows.h"
#include "platform/controls/grid/DBGrid.h"
#include "platform/controls/grid/DBGridAccessible.h"
#include "platform/controls/grid/GridEditing.h"
#include "platform/controls/grid/GridTitles.h"
#include "platform/controls/grid/GridTotals.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>

using namespace Qt::StringLiterals;

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

/// A text that does not fit its cell or title is shown as a whole under the mouse.
bool TwwDBGrid::viewportEvent(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractScrollArea::viewportEvent(event);
    const auto &help = static_cast<QHelpEvent &>(*event);
    const TGridCell cell = CellAt(help.pos());
    const bool isTitle = help.pos().y() < FLayout.TitleHeight;
    QString text;
    if (cell.Column >= 0 && isTitle) {
        text = Columns(cell.Column)->DisplayLabel();
    } else if (!cell.IsNull() && Columns(cell.Column)->Field() &&
               Columns(cell.Column)->Control().Kind != ckCheckBox) {
        const TDataSetRows rows = Rows();
        const TDataSetRows::TReading reading(rows, cell.Row);
        text = CellText(*Columns(cell.Column));
    }
    const int room = cell.Column < 0 ? 0 : FLayout.ColumnWidth(cell.Column) - 2 * CellMargin;
    const bool fits = QFontMetrics(font()).horizontalAdvance(text) <= room;
    if (fits) {
        QToolTip::hideText();
        event->ignore();
        return true;
    }
    const QRect place = isTitle ? FLayout.TitleRect(cell.Column) : FLayout.CellRect(cell);
    const QString page = u"<p style='white-space:pre-wrap'>%1</p>"_s.arg(text.toHtmlEscaped());
    QToolTip::showText(help.globalPos(), page, viewport(), place);
    return true;
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
