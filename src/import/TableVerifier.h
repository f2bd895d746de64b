// SPDX-License-Identifier: MIT
#pragma once

#include "import/ColumnSums.h"
#include "platform/data/DataPacket.h"

#include <QStringList>

namespace Korvane {

class TDBSession;

/// Compares what stands in a new table with what was read from the old one.
class TTableVerifier
{
public:
    TTableVerifier(const TImportTable &table, TDBSession &session);

    /// Reads the new table and compares counts and checksums. Empty when all agree, else what
    /// does not, with the first rows that differ.
    QStringList Verify(const TColumnSums &expected, TJetFile &file);

private:
    /// Calls for each row that stands in the new table.
    template <typename F> void ReadBack(F row);
    QStringList Differences(const TColumnSums &expected, const TColumnSums &found) const;
    void FindRows(TJetFile &file, QStringList &lines);

    const TImportTable &FTable;
    const QList<TImportColumn> FColumns;
    TDataPacket FRows;
};

} // namespace Korvane
