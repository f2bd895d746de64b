// SPDX-License-Identifier: MIT
#include "platform/controls/grid/GridTitles.h"

#include "platform/controls/grid/DBGrid.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

constexpr int EdgeDistance = 3;
constexpr int NarrowestColumn = 12;

} // namespace

bool TGridTitles::IsInTitles(QPoint position) const { return position.y() < FGrid.Layout().TitleHeight; }

int TGridTitles::EdgeAt(QPoint position) const
{
    return FGrid.Options().testFlag(dgColumnResize) && IsInTitles(position)
               ? FGrid.Layout().EdgeAt(position.x(), EdgeDistance)
               : -1;
}

void TGridTitles::UpdateCursor(QPoint position)
{
    if (EdgeAt(position) >= 0)
        FGrid.viewport()->setCursor(Qt::SplitHCursor);
    else
        FGrid.viewport()->unsetCursor();
}

bool TGridTitles::Press(const QMouseEvent &event)
{
    const QPoint position = event.position().toPoint();
    if (!IsInTitles(position))
        return false;
    if (event.button() != Qt::LeftButton)
        return true;
    FStart = position;
    FColumn = EdgeAt(position);
    if (FColumn >= 0) {
        FAction = TAction::Resize;
        FStartWidth = FGrid.Layout().ColumnWidth(FColumn);
        return true;
    }
    FColumn = FGrid.Layout().ColumnAt(position.x());
    FAction = FColumn < 0 ? TAction::None : TAction::Press;
    FGrid.viewport()->update();
    return true;
}

bool TGridTitles::Move(const QMouseEvent &event)
{
    const QPoint position = event.position().toPoint();
    switch (FAction) {
    case TAction::None:
        UpdateCursor(position);
        return IsInTitles(position) && event.buttons() == Qt::NoButton;
    case TAction::Resize: {
        const int width = qMax(NarrowestColumn, FStartWidth + position.x() - FStart.x());
        FGrid.Columns(FColumn)->SetDisplayWidth(FGrid.CharactersOf(width));
        FGrid.FColumns.KeepLayout();
        return true;
    }
    case TAction::Press:
        if (!FGrid.Options().testFlag(dgColumnResize) ||
            (position - FStart).manhattanLength() < QApplication::startDragDistance())
            return true;
        FAction = TAction::Drag;
        [[fallthrough]];
    case TAction::Drag: {
        const TGridLayout &layout = FGrid.Layout();
        const int column = layout.ColumnAt(position.x());
        const bool isBehind = column >= 0 && position.x() > layout.TitleRect(column).center().x();
        FTarget = column < 0 ? (position.x() < layout.IndicatorWidth ? 0 : layout.ColumnCount())
                             : column + isBehind;
        FGrid.viewport()->update();
        return true;
    }
    }
    return false;
}

bool TGridTitles::Release(const QMouseEvent &event)
{
    if (FAction == TAction::None)
        return IsInTitles(event.position().toPoint());
    const TAction action = std::exchange(FAction, TAction::None);
    FGrid.viewport()->update();
    if (action == TAction::Drag) {
        if (FTarget != FColumn && FTarget != FColumn + 1)
            FGrid.MoveColumn(FColumn, FTarget);
    } else if (action == TAction::Press && FGrid.TitleButtons() &&
               FGrid.Layout().TitleRect(FColumn).contains(event.position().toPoint())) {
        FGrid.CommitEdit();
        FGrid.DoTitleButtonClick(QString(FGrid.Columns(FColumn)->FieldName()));
    }
    return true;
}

bool TGridTitles::DoubleClick(const QMouseEvent &event)
{
    const QPoint position = event.position().toPoint();
    if (!IsInTitles(position))
        return false;
    const int column = EdgeAt(position);
    if (column >= 0 && event.button() == Qt::LeftButton) {
        FAction = TAction::None; // the press before began a drag
        FGrid.AutoSizeColumn(column);
        FGrid.FColumns.KeepLayout();
        return true;
    }
    return Press(event);
}

bool TGridTitles::ShowMenu(const QContextMenuEvent &event)
{
    if (!IsInTitles(event.pos()) || !FGrid.Options().testFlag(dgColumnMenu) ||
        event.reason() != QContextMenuEvent::Mouse)
        return false;
    auto *menu = new QMenu(&FGrid);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const auto &column : FGrid.FColumns.All()) {
        QAction *action = menu->addAction(column->DisplayLabel());
        action->setCheckable(true);
        action->setChecked(column->Visible());
        action->setEnabled(!column->Visible() || FGrid.ColumnCount() > 1); // the last one stays
        const QString name = column->FieldName();
        QObject::connect(action, &QAction::toggled, &FGrid, [this, name](bool visible) {
            if (TwwColumn *chosen = FGrid.ColumnByName(name)) {
                FGrid.CommitEdit();
                chosen->SetVisible(visible);
                FGrid.FColumns.KeepLayout();
            }
        });
    }
    menu->addSeparator();
    QObject::connect(menu->addAction(u"恢复默认布局"_s), &QAction::triggered, &FGrid,
                     [this] { FGrid.ResetLayout(); });
    menu->popup(event.globalPos());
    return true;
}

} // namespace Korvane
