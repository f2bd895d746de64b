// SPDX-License-Identifier: MIT
#include "platform/controls/grid/GridLayout.h"

#include <algorithm>

namespace Korvane {

void TGridLayout::SetWidths(const std::vector<int> &widths)
{
    FLefts.assign(1, 0);
    for (const int width : widths)
        FLefts.push_back(FLefts.back() + width);
}

qsizetype TGridLayout::EndRow() const
{
    return qMin<qsizetype>(RowCount, TopRow + (RowsHeight() + RowHeight - 1) / RowHeight);
}

int TGridLayout::LeftOf(int column) const
{
    return IndicatorWidth + FLefts[size_t(column)] - (column < FrozenCount ? 0 : Offset);
}

QRect TGridLayout::ColumnRect(int column, int top, int height) const
{
    return {LeftOf(column), top, ColumnWidth(column), height};
}

QRect TGridLayout::CellRect(const TGridCell &cell) const
{
    return ColumnRect(cell.Column, RowRect(cell.Row).top(), RowHeight);
}

QRect TGridLayout::RowRect(qsizetype row) const
{
    // Far rows are kept out of sight without leaving the range of pixels.
    const qsizetype distance = qBound(qsizetype(-10000), row - TopRow, qsizetype(10000));
    return {0, TitleHeight + int(distance) * RowHeight, Size.width(), RowHeight};
}

QRect TGridLayout::ScrollingArea() const
{
    const int left = FrozenEdge();
    return {left, TitleHeight, qMax(0, Size.width() - left), RowsHeight()};
}

QRect TGridLayout::ClipOf(int column, const QRect &area) const
{
    const bool isFrozen = column < FrozenCount;
    const int left = isFrozen ? IndicatorWidth : FrozenEdge();
    const int right = isFrozen ? qMin(FrozenEdge(), Size.width()) : Size.width();
    return area & QRect(left, 0, qMax(0, right - left), Size.height());
}

int TGridLayout::ColumnAt(int x) const
{
    if (x < IndicatorWidth)
        return -1;
    const int place = x - IndicatorWidth + (x < FrozenEdge() ? 0 : Offset);
    const auto behind = std::upper_bound(FLefts.begin(), FLefts.end(), place);
    return behind == FLefts.end() ? -1 : int(behind - FLefts.begin()) - 1;
}

qsizetype TGridLayout::RowAt(int y) const
{
    if (y < TitleHeight || y >= Size.height() - FooterHeight)
        return -1;
    const qsizetype row = TopRow + (y - TitleHeight) / RowHeight;
    return row < RowCount ? row : -1;
}

TGridCell TGridLayout::NearestCell(QPoint position) const
{
    if (RowCount == 0 || ColumnCount() == 0)
        return {};
    const int y = position.y() - TitleHeight;
    const qsizetype row = TopRow + (y < 0 ? -1 : y / RowHeight);
    const int x = qMax(position.x(), IndicatorWidth);
    const int column = ColumnAt(x);
    return {qBound<qsizetype>(0, row, RowCount - 1), column < 0 ? ColumnCount() - 1 : column};
}

int TGridLayout::EdgeAt(int x, int distance) const
{
    for (int column = 0; column < ColumnCount(); ++column) {
        const int edge = LeftOf(column) + ColumnWidth(column);
        const bool isHidden = column >= FrozenCount && edge < FrozenEdge();
        if (!isHidden && qAbs(x - edge) <= distance)
            return column;
    }
    return -1;
}

qsizetype TGridLayout::TopRowFor(qsizetype row) const
{
    if (row < 0)
        return TopRow;
    return qBound(row - FullRows() + 1, TopRow, row);
}

int TGridLayout::OffsetFor(int column) const
{
    if (column < FrozenCount || column >= ColumnCount())
        return Offset;
    const int left = IndicatorWidth + FLefts[size_t(column)];
    // NOTE: the left edge wins for a column that is wider than what is in sight.
    const int toShowLeft = left - FrozenEdge();
    const int toShowRight = left + ColumnWidth(column) - Size.width();
    return toShowLeft < Offset || toShowRight > toShowLeft ? toShowLeft : qMax(Offset, toShowRight);
}

void TGridLayout::Clamp()
{
    TopRow = qBound<qsizetype>(0, TopRow, LastTopRow());
    Offset = qBound(0, Offset, LastOffset());
}

} // namespace Korvane
