// SPDX-License-Identifier: MIT
#pragma once

#include "import/CellConverter.h"

#include <functional>
#include <span>
#include <vector>

namespace Korvane {

/// A value that does not fit, or a row that the new database does not take.
struct TImportProblem
{
    QString Table;
    QString Row;    ///< the key of the row, or its number
    QString Column; ///< empty where it is the whole row
    QString Value;
    QString Reason;

    QString Text() const;
};

/// Turns rows of an old table into rows of the new one, in the order of TImportTable::Filled.
class TRowConverter
{
public:
    explicit TRowConverter(const TImportTable &table);

    /// The values are good until the next row. What does not fit is told to the function, all of
    /// the row, and comes as NULL; the result is then false.
    bool Convert(std::span<const TJetCell> row);
    std::span<const TImportValue> Values() const { return FValues; }
    /// The key of a row of the old table for people; the number of the latest row without one.
    QString RowText(std::span<const TJetCell> row) const;

    const QList<TImportColumn> &Columns() const { return FColumns; }
    const TConversionNotes &Notes(size_t column) const { return FConverters[column].Notes(); }

    std::function<void(const TImportProblem &)> OnProblem;

private:
    const QString FTable;
    const QList<TImportColumn> FColumns;
    std::vector<TCellConverter> FConverters;
    std::vector<TImportValue> FValues;
    qint64 FRow = 0;
};

} // namespace Korvane
