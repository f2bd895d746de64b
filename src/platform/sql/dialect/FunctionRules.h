// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/QueryRules.h"

namespace Korvane {

/// What is done with a call beside giving it the engine's name.
enum class TFunctionCase : quint8 {
    Plain,
    NullTest, ///< isnull(a) of the Access dialect
    Default,  ///< nz(a), whose second argument may be missing
    Part,     ///< the first argument is a part of a date, in the MSSQL dialect a bare word
    Clock     ///< only the call without arguments is the dialect's own
};

/// A function of a dialect and its equivalent on the engine.
struct TFunctionRule
{
    QLatin1StringView Name;
    quint8 Dialects; ///< bits: 1 Access, 2 MSSQL
    qint8 MinArguments;
    qint8 MaxArguments;
    QLatin1StringView Target; ///< empty: the same name
    TSqlValueKind Kind;
    TFunctionCase Case = TFunctionCase::Plain;
};

/// The rule for a function's name, whatever the case of its letters; null for a function that the
/// dialect has no rule for.
const TFunctionRule *FindFunctionRule(QStringView name, TSqlDialect dialect);

} // namespace Korvane
