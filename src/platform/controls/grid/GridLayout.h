// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/grid/DBGridTypes.h"

#include <QRect>
#include <QSize>

#include <vector>

namespace Korvane {

/// Where the parts of a grid stand, in logical pixels of its viewport: titles on top, totals at the
/// bottom, the indicator on the left, then the columns, of which the first ones may be frozen. All
/// rows are equally high. Knows nothing of fields, fonts and painting.
class TGridLayout
{
public:
    int IndicatorWidth = 0;
    int TitleHeight = 0;
    int FooterHeight = 0;
    int RowHeight = 20;
    int FrozenCount = 0; ///< columns that do not scroll
    QSize Size;          ///< of the viewport
    qsizetype RowCount = 0;
    qsizetype TopRow = 0; ///< the first row in sight
    int Offset = 0;       ///< pixels by which the columns behind the frozen ones are scrolled

    void SetWidths(const std::vector<int> &widths);
    int ColumnCount() const { return int(FLefts.size()) - 1; }
    int ColumnWidth(int column) const { return FLefts[size_t(column) + 1] - FLefts[size_t(column)]; }

    /// Rows of which all is in sight, at least one.
    int FullRows() const { return qMax(1, RowsHeight() / RowHeight); }
    /// The row behind the last one in sight, parts of rows counting.
    qsizetype EndRow() const;
    qsizetype LastTopRow() const { return qMax<qsizetype>(0, RowCount - FullRows()); }
    int LastOffset() const { return qMax(0, TotalWidth() - Size.width()); }
    int TotalWidth() const { return IndicatorWidth + FLefts.back(); }

    /// A column's part of the height asked for, over the viewport's width; empty when out of sight.
    QRect ColumnRect(int column, int top, int height) const;
    QRect TitleRect(int column) const { return ColumnRect(column, 0, TitleHeight); }
    QRect FooterRect(int column) const
    {
        return ColumnRect(column, Size.height() - FooterHeight, FooterHeight);
    }
    /// May stick out under the totals and under the frozen columns.
    QRect CellRect(const TGridCell &cell) const;
    QRect RowRect(qsizetype row) const;
    /// Where rows are seen, and of it the part for the columns that scroll.
    QRect RowsArea() const { return {0, TitleHeight, Size.width(), RowsHeight()}; }
    QRect ScrollingArea() const;
    /// Where a column may be painted at all.
    QRect ClipOf(int column, const QRect &area) const;
    /// The right edge of the frozen columns.
    int FrozenEdge() const { return IndicatorWidth + FLefts[size_t(qMin(FrozenCount, ColumnCount()))]; }

    /// -1 beside all columns.
    int ColumnAt(int x) const;
    /// -1 beside all rows.
    qsizetype RowAt(int y) const;
    /// The nearest of each, for dragging beyond the edges; null on an empty grid.
    TGridCell NearestCell(QPoint position) const;
    /// The column whose right edge is at most so many pixels away; -1 if there is none.
    int EdgeAt(int x, int distance) const;

    /// The top row and the offset that bring a cell into sight, as near as possible to those now.
    qsizetype TopRowFor(qsizetype row) const;
    int OffsetFor(int column) const;
    void Clamp();

private:
    int RowsHeight() const { return qMax(0, Size.height() - TitleHeight - FooterHeight); }
    int LeftOf(int column) const;

    std::vector<int> FLefts = {0}; // of each column, and of what is behind the last
};

} // namespace Korvane
