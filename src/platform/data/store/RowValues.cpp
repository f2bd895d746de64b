// SPDX-License-Identifier: MIT
#include "platform/data/store/RowValues.h"

#include "platform/data/NumberText.h"

namespace Korvane {

TRowValues::TRowValues(const TRowReader &row, std::span<const TColumnKind> kinds) : FCells(kinds.size())
{
    for (int i = 0; i < ColumnCount(); ++i) {
        if (row.IsNull(i))
            continue;
        const TColumnKind kind = kinds[size_t(i)];
        if (kind == TColumnKind::Double)
            SetDouble(i, row.GetDouble(i));
        else if (kind < TColumnKind::Double)
            SetInt(i, row.GetInt(i));
        else
            SetText(i, row.GetText(i));
    }
}

void TRowValues::SetInt(int column, qint64 value)
{
    TCell &cell = FCells[size_t(column)];
    cell.IsNull = false;
    cell.Int = value;
}

void TRowValues::SetDouble(int column, double value)
{
    TCell &cell = FCells[size_t(column)];
    cell.IsNull = false;
    cell.Double = value;
}

void TRowValues::SetText(int column, std::string_view bytes)
{
    TCell &cell = FCells[size_t(column)];
    cell.IsNull = false;
    cell.Text.assign(bytes);
}

qsizetype TRowValues::MemoryUsage() const
{
    size_t bytes = sizeof *this + FCells.capacity() * sizeof(TCell);
    for (const TCell &cell : FCells)
        if (cell.Text.capacity() > 15) // what the string itself cannot hold
            bytes += cell.Text.capacity() + 1;
    return qsizetype(bytes);
}

bool SameCell(const TRowReader &left, const TRowReader &right, int column, TColumnKind kind)
{
    if (left.IsNull(column) || right.IsNull(column))
        return left.IsNull(column) && right.IsNull(column);
    if (kind == TColumnKind::Double)
        return CompareNumbers(left.GetDouble(column), right.GetDouble(column)) == 0;
    if (kind < TColumnKind::Double)
        return left.GetInt(column) == right.GetInt(column);
    return left.GetText(column) == right.GetText(column);
}

} // namespace Korvane
