// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/RowReader.h"

#include <vector>

namespace Korvane {

/// The values of one row that stands in no packet: a new row, a changed one, the one being
/// edited. Which setter serves a column follows from its kind, as with the getters.
class TRowValues final : public TRowReader
{
public:
    /// All NULL.
    explicit TRowValues(int columnCount = 0) : FCells(size_t(columnCount)) {}
    /// A copy of a row whose columns are of the kinds given.
    TRowValues(const TRowReader &row, std::span<const TColumnKind> kinds);

    int ColumnCount() const { return int(FCells.size()); }
    bool IsNull(int column) const override { return FCells[size_t(column)].IsNull; }
    qint64 GetInt(int column) const override { return FCells[size_t(column)].Int; }
    double GetDouble(int column) const override { return FCells[size_t(column)].Double; }
    std::string_view GetText(int column) const override { return FCells[size_t(column)].Text; }

    void SetNull(int column) { FCells[size_t(column)] = {}; }
    void SetInt(int column, qint64 value);
    void SetDouble(int column, double value);
    void SetText(int column, std::string_view bytes);

    /// Bytes held in memory.
    qsizetype MemoryUsage() const;

private:
    struct TCell
    {
        bool IsNull = true;
        union {
            qint64 Int = 0;
            double Double;
        };
        std::string Text;
    };
    std::vector<TCell> FCells;
};

/// Whether two rows hold the same value in a column: NULL equals NULL alone, numbers by value,
/// texts by their bytes.
bool SameCell(const TRowReader &left, const TRowReader &right, int column, TColumnKind kind);

} // namespace Korvane
