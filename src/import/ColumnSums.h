// SPDX-License-Identifier: MIT
#pragma once

#include "import/CellConverter.h"

#include <span>
#include <vector>

namespace Korvane {

/// A checksum for each column of a table, over rows in any order. A cell counts together with
/// the key of its row, so that values that have changed places are found, too. Sums compare
/// within one process only.
class TColumnSums
{
public:
    explicit TColumnSums(const QList<TImportColumn> &columns);

    void AddRow(std::span<const TImportValue> row);

    qint64 RowCount() const { return FRowCount; }
    quint64 Sum(size_t column) const { return FSums[column]; }
    /// Of the latest row: what its key and its cells come to.
    quint64 RowKey() const { return FRowKey; }
    quint64 RowCell(size_t column) const { return FCells[column]; }

private:
    std::vector<bool> FIsPadded; ///< the engine may fill the column with blanks
    std::vector<size_t> FKeys;
    std::vector<quint64> FSums;
    std::vector<quint64> FCells;
    quint64 FRowKey = 0;
    qint64 FRowCount = 0;
};

} // namespace Korvane
