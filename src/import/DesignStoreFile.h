// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDObjects.h"

#include <vector>

namespace Korvane {

/// The rows of a design; docs/design-file.md tells what they mean.
struct TDesignRows
{
    std::vector<TTablesObject> Tables;
    std::vector<TFieldsObject> Fields;
    std::vector<TIndexsObject> Indexs;
    std::vector<TQuerysObject> Querys;
    std::vector<TColumnsObject> Columns;
    std::vector<TCommandsObject> Commands;
    std::vector<TChangesObject> Changes;
};

/// Writes a design file in the form of an SQLite file. It appears whole or not at all, and takes
/// the place of one that is there.
void WriteDesignStore(const QString &fileName, const TDesignRows &rows);

} // namespace Korvane
