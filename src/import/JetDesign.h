// SPDX-License-Identifier: MIT
#pragma once

#include "import/DesignStoreFile.h"
#include "platform/sql/jet/JetFile.h"

#include <QStringList>

namespace Korvane {

/// A design made from the tables of an old database.
struct TJetDesign
{
    TDesignRows Rows;
    QStringList Lines; ///< what was made, for people: a line per table, per changed name
};

/// Makes a design in which each old table and column has its place: codes and property names from
/// the old names, the old names as labels, types and sizes, keys and indexes from the file. A
/// date column in whose rows no time of day stands becomes a date, so that the rows of tables
/// with such columns are read. Audit columns are left to the design's own.
TJetDesign MakeJetDesign(TJetFile &file);

/// Makes the design and writes it. Asks before an existing file is overwritten; a refusal raises
/// Exception. Gives what was made, a line each.
QStringList WriteJetDesign(TJetFile &file, const QString &fileName);

} // namespace Korvane
