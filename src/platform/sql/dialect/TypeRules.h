// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlCursor.h"

namespace Korvane {

/// What the engine keeps in a column.
enum class TSqlTypeClass : quint8 { Text, Whole, Decimal, Float, Flag, Moment, Binary, Other };

/// A column's or cast's type as it stands in a statement.
struct TSqlType
{
    int First = -1;
    int Last = -1;
    TSqlTypeClass Class = TSqlTypeClass::Other;
    QString EngineName;     ///< as the engine is to declare it, size included
    int Length = -1;        ///< of a text; -1 without limit
    int Scale = -1;         ///< of a decimal
    bool IsCounter = false; ///< numbers its rows
    QString Seed;           ///< the counter's first number, if given
};

/// Reads the type at the cursor and goes past it. A type of no dialect keeps its name. Raises
/// ESqlError where no type stands.
TSqlType ReadSqlType(TSqlCursor &cursor);

/// Reads "(seed, step)" behind a counter, if it is next. Refuses another step than 1.
QString ReadCounterSeed(TSqlCursor &cursor);

} // namespace Korvane
