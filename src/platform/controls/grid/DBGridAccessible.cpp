// SPDX-License-Identifier: MIT
#include "platform/controls/grid/DBGridAccessible.h"

#include "platform/controls/DataSetRows.h"
#include "platform/controls/grid/DBGrid.h"
#include "platform/core/Exceptions.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <exception>
#include <limits>

namespace Korvane {

namespace {

constexpr int TitleRow = -1; ///< the row of the header cells

int ReadGrids = 0; ///< grids that something has asked about

void Tell(QAccessibleEvent &event)
{
    GridAccessibilityListener()(event);
    QAccessible::updateAccessibility(&event);
}

/// Nothing while the grid is destroyed, when the object is a plain widget already.
TwwDBGrid *GridOf(QObject *object) { return qobject_cast<TwwDBGrid *>(object); }

bool HasTitles(const TwwDBGrid &grid) { return grid.Layout().TitleHeight > 0; }

/// The rows that the grid knows of, and which are there. Children are counted in ints.
int RowCountOf(const TwwDBGrid &grid)
{
    const qsizetype rows = qMin(grid.Layout().RowCount, TDataSetRows(grid.DataSet()).Fetched());
    const int most = (std::numeric_limits<int>::max() - 1000) / qMax(1, grid.ColumnCount()) - 1;
    return int(qMin<qsizetype>(rows, most));
}

/// The marked cells; with dgRowSelect the current row.
TGridBlock SelectionOf(const TwwDBGrid &grid)
{
    const TGridCell cell = grid.CurrentCell();
    if (!cell.IsNull() && grid.Options().testFlag(dgRowSelect))
        return {cell.Row, 0, cell.Row, grid.ColumnCount() - 1};
    return grid.SelectedBlock();
}

/// Runs what may fail. A failure is raised again from the event loop, where it is shown.
template <class Action> bool Try(TwwDBGrid &grid, Action action)
{
    try {
        action();
        return true;
    } catch (...) {
        QMetaObject::invokeMethod(
            &grid, [failure = std::current_exception()] { std::rethrow_exception(failure); },
            Qt::QueuedConnection);
        return false;
    }
}

/// Reads a cell, the fields standing in its row; nothing where that fails.
template <class Reader>
auto ReadCell(const TwwDBGrid &grid, const TGridCell &cell, Reader read)
    -> decltype(read(std::declval<TwwColumn &>()))
{
    const TwwColumn &column = *grid.Columns(cell.Column);
    try {
        const TDataSetRows rows(grid.DataSet());
        const TDataSetRows::TReading reading(rows, cell.Row);
        if (column.Field())
            return read(column);
    } catch (const std::exception &) {
        // The grid shows what a handler of the field raises.
    }
    return {};
}

QString TextOf(const TwwDBGrid &grid, const TGridCell &cell)
{
    return ReadCell(grid, cell, [&grid](const TwwColumn &column) { return grid.CellText(column); });
}

bool IsCheckBoxOf(const TwwDBGrid &grid, int column)
{
    return grid.Columns(column)->Control().Kind == ckCheckBox;
}

bool IsChecked(const TwwDBGrid &grid, const TGridCell &cell)
{
    return ReadCell(grid, cell, [](const TwwColumn &column) {
        return column.Field()->AsString() == column.Control().Checked;
    });
}

/// One cell, or the title of a column. It denotes a place and is invalid when there is none any more.
class TCellAccessible : public QAccessibleInterface,
                        public QAccessibleTableCellInterface,
                        public QAccessibleActionInterface
{
public:
    TCellAccessible(TwwDBGrid &grid, int row, int column) : FObject(&grid), FRow(row), FColumn(column) {}

    bool IsTitle() const { return FRow == TitleRow; }
    int Row() const { return FRow; }
    int Column() const { return FColumn; }
    bool IsOf(const QObject *grid) const { return FObject == grid; }

    bool isValid() const override
    {
        const TwwDBGrid *grid = Grid();
        return grid && FColumn < grid->ColumnCount() &&
               (IsTitle() ? HasTitles(*grid) : FRow < RowCountOf(*grid));
    }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return Grid() ? Grid()->window()->windowHandle() : nullptr; }
    QAccessibleInterface *parent() const override
    {
        return Grid() ? QAccessible::queryAccessibleInterface(Grid()) : nullptr;
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override
    {
        return IsTitle() ? QAccessible::ColumnHeader : QAccessible::Cell;
    }

    /// A cell is called by its text, a tick box by its title. What cannot be read is empty.
    QString text(QAccessible::Text kind) const override
    {
        if (!isValid())
            return {};
        const TwwColumn &column = *Grid()->Columns(FColumn);
        const bool isName = kind == QAccessible::Name;
        if (IsTitle())
            return isName ? column.DisplayLabel() : QString();
        if (kind == QAccessible::Description || (isName && IsCheckBox()))
            return column.DisplayLabel();
        return isName || kind == QAccessible::Value ? TextOf(*Grid(), {FRow, FColumn}) : QString();
    }
    /// Cells are edited by their editors.
    void setText(QAccessible::Text, const QString &) override {}
    /// The part in sight.
    QRect rect() const override
    {
        if (!isValid())
            return {};
        const TGridLayout &layout = Grid()->Layout();
        const QRect titles(0, 0, layout.Size.width(), layout.TitleHeight);
        const QRect rect = IsTitle() ? layout.TitleRect(FColumn) : layout.CellRect({FRow, FColumn});
        const QRect seen = rect & layout.ClipOf(FColumn, IsTitle() ? titles : layout.RowsArea());
        return seen.isEmpty() ? QRect() : QRect(Grid()->viewport()->mapToGlobal(seen.topLeft()), seen.size());
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const TwwDBGrid &grid = *Grid();
        state.disabled = !grid.isEnabled();
        state.invisible = !grid.isVisible();
        state.offscreen = rect().isEmpty();
        if (IsTitle())
            return state;
        const bool isCurrent = TGridCell{FRow, FColumn} == grid.CurrentCell();
        state.selectable = state.focusable = true;
        state.selected = SelectionOf(grid).Contains({FRow, FColumn});
        state.active = isCurrent;
        state.focused = isCurrent && grid.hasFocus();
        state.editable = grid.CanEditColumn(FColumn);
        state.readOnly = !state.editable;
        state.checkable = IsCheckBox();
        state.checked = state.checkable && IsChecked(grid, {FRow, FColumn});
        return state;
    }

    // ---- the cell in its table
    bool isSelected() const override { return state().selected; }
    QList<QAccessibleInterface *> columnHeaderCells() const override
    {
        QAccessibleInterface *grid = parent();
        return grid && isValid() && HasTitles(*Grid()) ? QList{grid->child(FColumn)}
                                                       : QList<QAccessibleInterface *>();
    }
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return FColumn; }
    int rowIndex() const override { return FRow; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return parent(); }

    // ---- actions
    QStringList actionNames() const override
    {
        if (!isValid())
            return {};
        return state().checkable && state().editable ? QStringList{setFocusAction(), toggleAction()}
                                                     : QStringList{setFocusAction()};
    }
    /// NOTE: it happens from the event loop: a change of the rows would drop the cell that is acting.
    void doAction(const QString &name) override
    {
        if (!actionNames().contains(name))
            return;
        const auto act = [grid = Grid(), cell = TGridCell{FRow, FColumn}, toggles = name == toggleAction()] {
            if (cell.Row >= RowCountOf(*grid) || cell.Column >= grid->ColumnCount())
                return;
            grid->setFocus();
            grid->SetCurrentCell(cell);
            if (toggles)
                grid->ToggleCheckBox();
        };
        QMetaObject::invokeMethod(Grid(), act, Qt::QueuedConnection);
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TableCellInterface && !IsTitle())
            return static_cast<QAccessibleTableCellInterface *>(this);
        if (type == QAccessible::ActionInterface && !IsTitle())
            return static_cast<QAccessibleActionInterface *>(this);
        return nullptr;
    }

private:
    TwwDBGrid *Grid() const { return GridOf(FObject); }
    bool IsCheckBox() const { return IsCheckBoxOf(*Grid(), FColumn); }

    const QPointer<QObject> FObject;
    const int FRow;
    const int FColumn;
};

/// The grid. Its children are the header cells, the cells row by row, and the widgets on it.
class TGridAccessible : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit TGridAccessible(TwwDBGrid &grid) : QAccessibleWidget(&grid, QAccessible::Table), FTold(Now(grid))
    {
        ++ReadGrids;
    }
    ~TGridAccessible() override
    {
        DropCells();
        --ReadGrids;
    }

    /// Tells what has become otherwise since the last time.
    void TellChanges(TwwDBGrid &grid)
    {
        const TState before = std::exchange(FTold, Now(grid));
        const TState now = FTold;
        if (now.Rows != before.Rows || now.Columns != before.Columns) {
            DropCells();
            QAccessibleTableModelChangeEvent event(&grid, QAccessibleTableModelChangeEvent::ModelReset);
            Tell(event);
        }
        if (now.Cell.IsNull())
            return;
        const bool isOther = now.Cell != before.Cell;
        if (isOther)
            TellCell(grid, QAccessible::Selection);
        if (now.HasFocus && (isOther || !before.HasFocus))
            TellCell(grid, QAccessible::Focus);
        if (!isOther && now.Text != before.Text)
            TellText(grid);
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TableInterface)
            return static_cast<QAccessibleTableInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    // ---- children
    int childCount() const override { return CellCount() + QAccessibleWidget::childCount(); }
    QAccessibleInterface *child(int index) const override
    {
        const int cells = CellCount();
        if (index < 0 || index >= cells)
            return index < 0 ? nullptr : QAccessibleWidget::child(index - cells);
        const int columns = Grid()->ColumnCount();
        return Cell(index / columns - (HasTitles(*Grid()) ? 1 : 0), index % columns);
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        if (const auto *cell = dynamic_cast<const TCellAccessible *>(child))
            return Grid() && cell->IsOf(Grid()) && cell->isValid()
                       ? IndexOf(*Grid(), cell->Row(), cell->Column())
                       : -1;
        const int index = QAccessibleWidget::indexOfChild(child);
        return index < 0 ? -1 : CellCount() + index;
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        const TwwDBGrid *grid = Grid();
        if (!grid)
            return nullptr;
        const QPoint place = grid->viewport()->mapFromGlobal(QPoint(x, y));
        if (grid->viewport()->rect().contains(place)) {
            if (QWidget *editor = grid->viewport()->childAt(place))
                return QAccessible::queryAccessibleInterface(editor);
            const TGridLayout &layout = grid->Layout();
            const int column = layout.ColumnAt(place.x()), row = int(layout.RowAt(place.y()));
            if (column >= 0 && (row >= 0 || place.y() < layout.TitleHeight))
                return Cell(place.y() < layout.TitleHeight ? TitleRow : row, column);
        }
        for (int i = 0; i < QAccessibleWidget::childCount(); ++i)
            if (QAccessibleInterface *widget = QAccessibleWidget::child(i);
                widget && widget->rect().contains(x, y))
                return widget;
        return nullptr;
    }
    /// The current cell while the grid has the keys.
    QAccessibleInterface *focusChild() const override
    {
        const TwwDBGrid *grid = Grid();
        if (!grid || !grid->hasFocus() || grid->CurrentCell().IsNull())
            return QAccessibleWidget::focusChild();
        return Cell(int(grid->CurrentCell().Row), grid->CurrentCell().Column);
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.multiSelectable = Grid() && !Grid()->Options().testFlag(dgRowSelect);
        state.readOnly = Grid() && Grid()->ReadOnly();
        return state;
    }

    // ---- the table
    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    int rowCount() const override { return Grid() ? RowCountOf(*Grid()) : 0; }
    int columnCount() const override { return Grid() ? Grid()->ColumnCount() : 0; }
    QAccessibleInterface *cellAt(int row, int column) const override
    {
        return row < 0 ? nullptr : Cell(row, column);
    }
    QString columnDescription(int column) const override
    {
        return column < 0 || column >= columnCount() ? QString() : Grid()->Columns(column)->DisplayLabel();
    }
    QString rowDescription(int row) const override
    {
        return row < 0 || row >= rowCount() ? QString() : QString::number(row + 1);
    }
    int selectedCellCount() const override
    {
        const TGridBlock block = Selection();
        const qsizetype count = (block.Bottom - block.Top + 1) * (block.Right - block.Left + 1);
        return int(qMin<qsizetype>(count, std::numeric_limits<int>::max()));
    }
    /// The first ones of a block that is very large.
    QList<QAccessibleInterface *> selectedCells() const override
    {
        constexpr int Most = 10'000;
        const TGridBlock block = Selection();
        QList<QAccessibleInterface *> cells;
        for (qsizetype row = block.Top; row <= block.Bottom && cells.size() < Most; ++row)
            for (int column = block.Left; column <= block.Right; ++column)
                if (QAccessibleInterface *cell = Cell(int(row), column))
                    cells += cell;
        return cells;
    }
    int selectedColumnCount() const override { return int(selectedColumns().size()); }
    int selectedRowCount() const override
    {
        const TGridBlock block = Selection();
        return IsRowWise(block) ? int(block.Bottom - block.Top + 1) : 0;
    }
    QList<int> selectedColumns() const override
    {
        const TGridBlock block = Selection();
        QList<int> columns;
        for (int column = block.Left; IsColumnWise(block) && column <= block.Right; ++column)
            columns += column;
        return columns;
    }
    QList<int> selectedRows() const override
    {
        const TGridBlock block = Selection();
        QList<int> rows;
        for (qsizetype row = block.Top; IsRowWise(block) && row <= block.Bottom; ++row)
            rows += int(row);
        return rows;
    }
    bool isColumnSelected(int column) const override
    {
        const TGridBlock block = Selection();
        return IsColumnWise(block) && column >= block.Left && column <= block.Right;
    }
    bool isRowSelected(int row) const override
    {
        const TGridBlock block = Selection();
        return IsRowWise(block) && row >= block.Top && row <= block.Bottom;
    }
    bool selectRow(int row) override
    {
        return row >= 0 && row < rowCount() && Select({row, 0}, {row, columnCount() - 1});
    }
    bool selectColumn(int column) override
    {
        return column >= 0 && column < columnCount() && rowCount() > 0 &&
               Select({0, column}, {rowCount() - 1, column});
    }
    bool unselectRow(int row) override { return isRowSelected(row) && Unselect(); }
    bool unselectColumn(int column) override { return isColumnSelected(column) && Unselect(); }

    void modelChange(QAccessibleTableModelChangeEvent *) override { DropCells(); }

private:
    /// What screen readers have been told of.
    struct TState
    {
        int Rows;
        QStringList Columns;
        TGridCell Cell;
        bool HasFocus;
        QString Text; // of the current cell
    };
    static TState Now(const TwwDBGrid &grid)
    {
        TState state{RowCountOf(grid), {}, grid.CurrentCell(), grid.hasFocus(), {}};
        if (!state.Cell.IsNull())
            state.Text = TextOf(grid, state.Cell);
        for (int column = 0; column < grid.ColumnCount(); ++column)
            state.Columns += grid.Columns(column)->FieldName();
        return state;
    }
    static int IndexOf(const TwwDBGrid &grid, int row, int column)
    {
        return (row + (HasTitles(grid) ? 1 : 0)) * grid.ColumnCount() + column;
    }

    TwwDBGrid *Grid() const { return GridOf(object()); }
    TGridBlock Selection() const { return Grid() ? SelectionOf(*Grid()) : TGridBlock(); }
    int CellCount() const
    {
        return Grid() ? (rowCount() + (HasTitles(*Grid()) ? 1 : 0)) * Grid()->ColumnCount() : 0;
    }
    bool IsRowWise(const TGridBlock &block) const
    {
        return block.Bottom >= block.Top && block.Left == 0 && block.Right == columnCount() - 1;
    }
    bool IsColumnWise(const TGridBlock &block) const
    {
        return block.Right >= block.Left && block.Top == 0 && block.Bottom == rowCount() - 1;
    }
    bool Select(const TGridCell &from, const TGridCell &to)
    {
        TwwDBGrid &grid = *Grid();
        return Try(grid, [&] {
            grid.SetCurrentCell(from);
            if (!grid.Options().testFlag(dgRowSelect))
                grid.SelectTo(to);
        });
    }
    bool Unselect()
    {
        if (Grid()->Options().testFlag(dgRowSelect) || Grid()->SelectedBlock().IsSingleCell())
            return false;
        Grid()->ClearSelection();
        return true;
    }
    void TellCell(TwwDBGrid &grid, QAccessible::Event kind)
    {
        const TGridCell cell = grid.CurrentCell();
        if (cell.IsNull() || cell.Row >= RowCountOf(grid))
            return;
        QAccessibleEvent event(&grid, kind);
        event.setChild(IndexOf(grid, int(cell.Row), cell.Column));
        Tell(event);
    }

    void TellText(TwwDBGrid &grid)
    {
        const TGridCell cell = grid.CurrentCell();
        if (cell.IsNull() || !IsCheckBoxOf(grid, cell.Column))
            return TellCell(grid, QAccessible::NameChanged);
        QAccessible::State changed;
        changed.checked = true;
        QAccessibleStateChangeEvent event(&grid, changed);
        event.setChild(IndexOf(grid, int(cell.Row), cell.Column));
        Tell(event);
    }

    /// The one interface of a place, as long as rows and columns stay; null where there is no cell.
    QAccessibleInterface *Cell(int row, int column) const
    {
        TwwDBGrid *grid = Grid();
        if (!grid || column < 0 || column >= grid->ColumnCount() || row >= RowCountOf(*grid) ||
            (row == TitleRow && !HasTitles(*grid)))
            return nullptr;
        const quint64 key = quint64(row + 1) << 32 | quint32(column);
        if (const auto known = FCells.constFind(key); known != FCells.constEnd())
            return QAccessible::accessibleInterface(*known);
        QAccessibleInterface *cell = new TCellAccessible(*grid, row, column);
        FCells[key] = QAccessible::registerAccessibleInterface(cell);
        return cell;
    }
    void DropCells()
    {
        for (const QAccessible::Id id : std::exchange(FCells, {}))
            QAccessible::deleteAccessibleInterface(id);
    }

    mutable QHash<quint64, QAccessible::Id> FCells;
    TState FTold;
};

QAccessibleInterface *MakeInterface(const QString &className, QObject *object)
{
    TwwDBGrid *grid = GridOf(object);
    const bool isAsked = grid && className == QLatin1StringView(TwwDBGrid::staticMetaObject.className());
    return isAsked ? new TGridAccessible(*grid) : nullptr;
}

/// Null while nothing listens.
TGridAccessible *ListenedTo(TwwDBGrid &grid)
{
    if (ReadGrids == 0 && !QAccessible::isActive())
        return nullptr;
    return dynamic_cast<TGridAccessible *>(QAccessible::queryAccessibleInterface(&grid));
}

} // namespace

TEvent<QAccessibleEvent &> &GridAccessibilityListener()
{
    static TEvent<QAccessibleEvent &> listener;
    return listener;
}

void InstallGridAccessibility() { QAccessible::installFactory(MakeInterface); }

void CurrentCellChanged(TwwDBGrid &grid)
{
    if (TGridAccessible *interface = ListenedTo(grid))
        interface->TellChanges(grid);
}

} // namespace Korvane
