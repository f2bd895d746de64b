// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"

#include <sqlite3.h>

#include <span>
#include <string>
#include <string_view>

namespace Korvane {

/// A call of a function by the engine: its arguments, counted from 0, and its result. A function
/// that sets no result gives NULL. It may raise exceptions; their message becomes the statement's.
class TSqlCall
{
public:
    TSqlCall(sqlite3_context *context, int count, sqlite3_value **values, TSqlDialect dialect)
        : Dialect(dialect), FContext(context), FCount(count), FValues(values)
    {
    }

    const TSqlDialect Dialect;

    bool IsAccess() const { return Dialect == TSqlDialect::Access; }
    int Count() const { return FCount; }
    int Type(int i) const { return sqlite3_value_type(FValues[i]); } ///< SQLITE_INTEGER, …
    bool IsNull(int i) const { return Type(i) == SQLITE_NULL; }
    bool AnyNull() const;
    bool IsNumber(int i) const { return Type(i) == SQLITE_INTEGER || Type(i) == SQLITE_FLOAT; }

    /// The value as text in UTF-8, a number in its general form. Valid while the call runs.
    std::string_view Text(int i);
    QString String(int i) { return QString::fromUtf8(Text(i)); }
    /// The value as a number. Raises ESqlError for a text that is none.
    double Number(int i);
    qint64 Integer(int i) const { return sqlite3_value_int64(FValues[i]); }
    /// A count or position: the number without its fraction, within the range of int.
    int Position(int i);

    void SetText(std::string_view utf8);
    void SetText(const QString &text) { SetText(std::string_view(text.toStdString())); }
    void SetInteger(qint64 value) { sqlite3_result_int64(FContext, value); }
    void SetDouble(double value) { sqlite3_result_double(FContext, value); }
    /// A whole number where the value is one and fits.
    void SetNumber(double value);
    void SetBlob(std::string_view bytes);

    sqlite3_context *Context() const { return FContext; }
    sqlite3_value *Value(int i) const { return FValues[i]; }

private:
    sqlite3_context *FContext;
    int FCount;
    sqlite3_value **FValues;
    std::string FBuffers[4];
};

/// A function that the engine can call.
struct TSqlFunction
{
    const char *Name;
    int MinArguments;
    int MaxArguments; ///< -1: any number of arguments
    bool IsDeterministic;
    void (*Body)(TSqlCall &call);
};

std::span<const TSqlFunction> SqlTextFunctions();
std::span<const TSqlFunction> SqlNumberFunctions();
std::span<const TSqlFunction> SqlDateFunctions();

/// The number that a text is, between blanks; nothing for any other text.
std::optional<double> ParseSqlNumber(std::string_view text);
/// The general form of a number in up to 15 digits.
std::string GeneralNumber(double value);

} // namespace Korvane
