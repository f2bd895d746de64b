// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"
#include "platform/sql/odbc/OdbcConnection.h"

#include <span>
#include <vector>

namespace Korvane {

/// A statement with ODBC's parameter marks.
struct TOdbcMarkedSql
{
    QString Sql;
    std::vector<int> Values; ///< for each "?" the index of its parameter, -1 for one that is not given
};

/// Puts "?" in the place of each ":NAME", outside of literals, quoted names and comments; a "::" is
/// none. Without parameters the text stays as it is.
TOdbcMarkedSql MarkOdbcParameters(const QString &sql, std::span<const TSqlParameter> parameters);

/// Values of parameters as a statement needs them: they stand here until it has run.
class TOdbcValues
{
public:
    /// Binds a value to each mark. Large values wait for SendPieces.
    void Bind(TOdbcStatement &statement, const std::vector<int> &marks,
              std::span<const TSqlParameter> parameters);
    /// Sends what the statement asks for after Execute has told so.
    void SendPieces(TOdbcStatement &statement);

private:
    struct TValue
    {
        QString Text;
        QByteArray Bytes;
        SQLBIGINT Int = 0;
        double Double = 0;
        SQLLEN Indicator = SQL_NULL_DATA;
        const char *Data = nullptr; ///< of texts and blobs
        SQLLEN Size = 0;            ///< in bytes
        SQLSMALLINT CType = SQL_C_WCHAR;
        SQLSMALLINT SqlType = SQL_WVARCHAR;
    };
    static void Set(TValue &value, const QVariant &given);
    static SQLLEN PieceAt(const TValue &value, SQLLEN sent);

    std::vector<TValue> FValues;
};

} // namespace Korvane
