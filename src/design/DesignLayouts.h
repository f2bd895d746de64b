// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDObjects.h"
#include "design/DesignTable.h"

namespace Korvane {

/// A field with the name of its table, as the check and repair statements walk them.
struct TCheckedField : TFieldsObject
{
    QString TableName;
};

// The seven tables of a design file, and the join of two of them.
extern const TDesignLayout<TTablesObject> TablesLayout;
extern const TDesignLayout<TFieldsObject> FieldsLayout;
extern const TDesignLayout<TIndexsObject> IndexsLayout;
extern const TDesignLayout<TQuerysObject> QuerysLayout;
extern const TDesignLayout<TColumnsObject> ColumnsLayout;
extern const TDesignLayout<TCommandsObject> CommandsLayout;
extern const TDesignLayout<TChangesObject> ChangesLayout;
extern const TDesignLayout<TCheckedField> CheckedFieldsLayout;

} // namespace Korvane
