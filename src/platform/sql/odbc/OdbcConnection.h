// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlError.h"
#include "platform/sql/odbc/OdbcServer.h"

#include <QStringList>

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

namespace Korvane {

/// A connection of the driver manager that raises ESqlError with all that the driver has to say.
class TOdbcConnection
{
public:
    explicit TOdbcConnection(const TOdbcServer &server);
    ~TOdbcConnection();
    TOdbcConnection(const TOdbcConnection &) = delete;
    TOdbcConnection &operator=(const TOdbcConnection &) = delete;

    void Connect(const TOdbcTarget &target);
    const TOdbcServer &Server() const { return FServer; }
    SQLHDBC Handle() const { return FConnection; }

    /// Whether single cells of a fetched block can be read again by pieces.
    bool ReadsCellsOfBlocks() const { return FReadsCellsOfBlocks; }
    /// True once an error has told that the server is gone.
    bool IsLost() const { return FIsLost; }

    /// With autocommit off the next statement begins a transaction, which one of the others ends.
    void SetAutoCommit(bool on);
    void Commit() { EndTransaction(SQL_COMMIT); }
    void Rollback() { EndTransaction(SQL_ROLLBACK); }

    /// Raises what the driver has to say about a handle.
    [[noreturn]] void Fail(SQLSMALLINT handleType, SQLHANDLE handle);
    void Check(SQLRETURN result)
    {
        if (!SQL_SUCCEEDED(result))
            Fail(SQL_HANDLE_DBC, FConnection);
    }

private:
    [[noreturn]] void FailToConnect(const TOdbcTarget &target);
    void EndTransaction(SQLSMALLINT completion);
    QStringList InstalledDrivers() const;
    bool IsDead() const;

    const TOdbcServer &FServer;
    SQLHENV FEnvironment = SQL_NULL_HENV;
    SQLHDBC FConnection = SQL_NULL_HDBC;
    bool FIsConnected = false;
    bool FIsLost = false;
    bool FReadsCellsOfBlocks = false;
};

/// A statement of a connection, freed with the object; must not outlive its connection.
class TOdbcStatement
{
public:
    explicit TOdbcStatement(TOdbcConnection &connection);
    ~TOdbcStatement();
    TOdbcStatement(const TOdbcStatement &) = delete;
    TOdbcStatement &operator=(const TOdbcStatement &) = delete;

    TOdbcConnection &Connection() const { return FConnection; }
    SQLHSTMT Handle() const { return FStatement; }

    /// Runs a text of the server's own language. True when the values of parameters are still
    /// to be sent by pieces.
    bool Execute(const QString &sql);
    /// Goes on to the next result of the text; false behind the last.
    bool NextResult();
    int ColumnCount() const;
    /// Rows that the present result has affected; 0 where the driver does not know.
    qint64 RowCount() const;

    void Check(SQLRETURN result) const
    {
        if (!SQL_SUCCEEDED(result))
            FConnection.Fail(SQL_HANDLE_STMT, FStatement);
    }

private:
    TOdbcConnection &FConnection;
    SQLHSTMT FStatement = SQL_NULL_HSTMT;
};

/// The argument of an ODBC call that takes a text of UTF-16 and does not change it.
inline SQLWCHAR *OdbcText(const QString &text)
{
    static_assert(sizeof(SQLWCHAR) == sizeof(ushort));
    return const_cast<SQLWCHAR *>(text.utf16());
}

/// The argument of an ODBC attribute that is a number.
inline SQLPOINTER OdbcNumber(SQLULEN number) { return reinterpret_cast<SQLPOINTER>(number); }

} // namespace Korvane
