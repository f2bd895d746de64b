// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/RowReader.h"

#include <string>
#include <vector>

namespace Korvane {

/// The values of one row that stands in no packet: a new row, a changed one, the one being
/// edited. Which setter serves a column follows from its kind, as with the getters. What GetText
/// gives is good until the next SetText of any column.
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
    std::string_view GetText(int column) const override
    {
        const TCell &cell = FCells[size_t(column)];
        return cell.Size ? std::string_view(FBytes).substr(cell.Begin, cell.Size) : std::string_view();
    }

    void SetNull(int column) { Put(column, {}); }
    void SetInt(int column, qint64 value) { Put(column, {.Int = value, .IsNull = false}); }
    void SetDouble(int column, double value) { Put(column, {.Double = value, .IsNull = false}); }
    /// The bytes may be some of this row's own. Raises EOutOfResources when the row's texts take
    /// more than 2 GB.
    void SetText(int column, std::string_view bytes);

    /// Bytes held in memory.
    qsizetype MemoryUsage() const;

private:
    struct TCell
    {
        union {
            qint64 Int = 0;
            double Double;
            quint32 Begin; // of a text in FBytes
        };
        quint32 Size = 0; // of a text
        bool IsNull = true;
    };

    void Put(int column, TCell cell)
    {
        TCell &place = FCells[size_t(column)];
        FTextBytes += size_t(cell.Size) - place.Size;
        place = cell;
    }
    void CloseGaps();

    std::vector<TCell> FCells;
    std::string FBytes;    // the texts, and gaps where one has been replaced
    size_t FTextBytes = 0; // without the gaps
};

/// Whether two rows hold the same value in a column: NULL equals NULL alone, numbers by value,
/// texts by their bytes.
bool SameCell(const TRowReader &left, const TRowReader &right, int column, TColumnKind kind);

} // namespace Korvane
