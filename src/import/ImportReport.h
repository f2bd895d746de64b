// SPDX-License-Identifier: MIT
#pragma once

#include "import/RowConverter.h"

namespace Korvane {

/// What became of one table.
struct TImportedTable
{
    QString Code;
    QString Label;
    QString OldName;
    qint64 RowCount = 0;
    qsizetype ColumnCount = 0; ///< columns whose counts and checksums were compared
    QStringList Notes;         ///< values that were changed to fit, a line for each column
};

/// What an import did, or why it did nothing.
struct TImportReport
{
    QList<TImportedTable> Tables;
    /// What does not fit: the first of each column, and how many there are in all.
    QList<TImportProblem> Problems;
    qint64 ProblemCount = 0;
    /// What the new database has different from the old rows; empty when all agree.
    QStringList Differences;

    qint64 RowCount() const;
    void Add(const TImportProblem &problem);
    void Add(const TImportTable &table, const TRowConverter &rows, qint64 rowCount);
    /// What was imported, a line for each table and note.
    QStringList Lines() const;
    /// Why the import failed: the problems, or the differences.
    QStringList FailureLines() const;

private:
    QHash<QString, int> FShown; ///< problems of a column that are in the list
};

} // namespace Korvane
