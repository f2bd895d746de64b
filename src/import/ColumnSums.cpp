// SPDX-License-Identifier: MIT
#include "import/ColumnSums.h"

#include <functional>

namespace Korvane {

namespace {

/// Spreads what differs over all bits, so that sums of it tell differences (the finalizer of
/// SplitMix64).
quint64 Mixed(quint64 value)
{
    value += 0x9e3779b97f4a7c15;
    value = (value ^ value >> 30) * 0xbf58476d1ce4e5b9;
    value = (value ^ value >> 27) * 0x94d049bb133111eb;
    return value ^ value >> 31;
}

quint64 Joined(quint64 left, quint64 right) { return Mixed(left + Mixed(right)); }

quint64 HashOf(const TImportValue &value, bool isPadded)
{
    const std::string_view bytes = isPadded ? WithoutTrailingBlanks(value.Bytes) : value.Bytes;
    // The literal of a number and a text of the same digits are not the same value.
    return Joined(value.Kind, std::hash<std::string_view>()(bytes));
}

} // namespace

TColumnSums::TColumnSums(const QList<TImportColumn> &columns)
    : FSums(size_t(columns.size())), FCells(size_t(columns.size()))
{
    std::vector<size_t> all;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const TDataType type = columns[i].Type;
        FIsPadded.push_back(type == dtChar || type == dtDate || type == dtDateTime || type == dtBoolean);
        all.push_back(size_t(i));
        if (columns[i].IsKey)
            FKeys.push_back(size_t(i));
    }
    if (FKeys.empty())
        FKeys = all;
}

void TColumnSums::AddRow(std::span<const TImportValue> row)
{
    for (size_t i = 0; i < row.size(); ++i)
        FCells[i] = HashOf(row[i], FIsPadded[i]);
    FRowKey = 0;
    for (const size_t key : FKeys)
        FRowKey = Joined(FRowKey, FCells[key]);
    for (size_t i = 0; i < row.size(); ++i)
        FSums[i] += Joined(FRowKey, FCells[i]);
    ++FRowCount;
}

} // namespace Korvane
