// SPDX-License-Identifier: MIT
#include "platform/data/store/RowValues.h"

#include "platform/core/Exceptions.h"
#include "platform/data/NumberText.h"

#include <limits>

namespace Korvane {

namespace {

/// Gaps of this size are left alone, and larger ones as long as the texts take as much.
constexpr size_t SmallGaps = 256;

/// So that places fit into 32 bits with the gaps among them.
constexpr size_t MaxTextBytes = std::numeric_limits<quint32>::max() / 2 - SmallGaps;

} // namespace

TRowValues::TRowValues(const TRowReader &row, std::span<const TColumnKind> kinds) : FCells(kinds.size())
{
    size_t textBytes = 0;
    for (int i = 0; i < ColumnCount(); ++i)
        if (kinds[size_t(i)] > TColumnKind::Double)
            textBytes += row.GetText(i).size();
    FBytes.reserve(textBytes);
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

void TRowValues::SetText(int column, std::string_view bytes)
{
    if (bytes.size() > MaxTextBytes - FTextBytes)
        throw EOutOfResources(QStringLiteral("一行的文本超过2GB"));
    TCell cell;
    cell.Begin = quint32(FBytes.size());
    cell.Size = quint32(bytes.size());
    cell.IsNull = false;
    FBytes.append(bytes);
    Put(column, cell);
    if (FBytes.size() > 2 * FTextBytes + SmallGaps)
        CloseGaps();
}

void TRowValues::CloseGaps()
{
    std::string packed;
    packed.reserve(FTextBytes);
    for (TCell &cell : FCells) {
        if (cell.Size == 0)
            continue;
        const size_t begin = packed.size();
        packed.append(FBytes, cell.Begin, cell.Size);
        cell.Begin = quint32(begin);
    }
    FBytes = std::move(packed);
}

qsizetype TRowValues::MemoryUsage() const
{
    return qsizetype(sizeof *this + FCells.capacity() * sizeof(TCell) + FBytes.capacity());
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
