// SPDX-License-Identifier: MIT
// Blocks of cells between a grid and the clipboard.
#include "platform/controls/DataSetRows.h"
#include "platform/controls/grid/DBGrid.h"
#include "platform/controls/grid/GridEditing.h"
#include "platform/controls/grid/TabText.h"
#include "platform/core/Exceptions.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// What a cell shows, or for a tick box what it holds.
QString CopiedText(const TwwDBGrid &grid, const TwwColumn &column)
{
    if (!column.Field())
        return {};
    return column.Control().Kind == ckCheckBox ? column.Field()->AsString() : grid.CellText(column);
}

/// What is written for a text, which may be one that a list shows.
QString WrittenText(const TCellControl &control, const QString &text)
{
    const qsizetype item = control.Shown.indexOf(text);
    return item < 0 ? text : control.Stored[item];
}

} // namespace

void TwwDBGrid::CopyToClipboard() const
{
    const TGridBlock block = SelectedBlock();
    const TDataSetRows set = Rows();
    QList<QStringList> rows;
    for (qsizetype row = block.Top; row <= block.Bottom; ++row) {
        const TDataSetRows::TReading reading(set, row);
        QStringList cells;
        for (int column = block.Left; column <= block.Right; ++column)
            cells += CopiedText(*this, *Columns(column));
        rows += cells;
    }
    if (!rows.isEmpty())
        QGuiApplication::clipboard()->setText(TabTextOf(rows));
}

void TwwDBGrid::CutToClipboard()
{
    CopyToClipboard();
    EmptyCells();
}

void TwwDBGrid::EmptyCells()
{
    const TGridBlock block = SelectedBlock();
    if (block.Bottom < 0)
        return;
    QList<QStringList> rows;
    for (qsizetype row = block.Top; row <= block.Bottom; ++row)
        rows += QStringList(block.Right - block.Left + 1);
    WriteCells(rows);
}

void TwwDBGrid::PasteFromClipboard()
{
    const QList<QStringList> rows = RowsOfTabText(QGuiApplication::clipboard()->text());
    if (!rows.isEmpty() && !CurrentCell().IsNull())
        WriteCells(rows);
}

void TwwDBGrid::WriteCells(const QList<QStringList> &rows)
{
    CommitEdit();
    const TGridBlock block = SelectedBlock();
    qsizetype widest = 0;
    for (const QStringList &row : rows)
        widest = qMax(widest, row.size());
    if (block.Left + widest > ColumnCount())
        throw Exception(
            u"粘贴的内容有%1列，从当前列起只有%2列"_s.arg(widest).arg(ColumnCount() - block.Left));
    // The rows are found by their records: in an ordered view they move while they are written to.
    const TDataSetRows set = Rows();
    const bool isOne = rows.size() == 1 && block.Top == set.Current();
    QList<TBookmark> targets;
    for (qsizetype row = block.Top; !isOne && row < qMin(block.Top + rows.size(), set.Count()); ++row)
        targets += set.BookmarkAt(row);
    for (qsizetype row = 0; row < rows.size(); ++row) {
        if (row < targets.size() && !targets[row].IsNull()) {
            DataSet()->CheckBrowseMode();
            MoveRow(DataSet()->PlaceOf(targets[row]));
        } else if (row >= targets.size() && !isOne && !GoToNewRow()) {
            throw Exception(u"不能新增行，粘贴的内容有%1行没有写入"_s.arg(rows.size() - row));
        }
        for (qsizetype cell = 0; cell < rows[row].size(); ++cell) {
            const int index = block.Left + int(cell);
            if (!CanEditColumn(index))
                continue;
            const TwwColumn &column = *Columns(index);
            WriteCell(column, WrittenText(column.Control(), rows[row][cell]));
        }
    }
    // A single row stays being edited, as after typing; of several each is checked as it is left.
    if (!isOne && FLink.Active())
        DataSet()->CheckBrowseMode();
    viewport()->update();
}

} // namespace Korvane
