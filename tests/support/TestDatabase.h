// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/ADOConnection.h"
#include "platform/sql/SqlDriver.h"

#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <ostream>

struct sqlite3;

namespace Korvane {

inline void PrintTo(TSqlDialect dialect, std::ostream *out)
{
    *out << (dialect == TSqlDialect::Access ? "Access" : "MSSQL");
}

} // namespace Korvane

namespace Korvane::Testing {

/// What a test loops over whose rule is the same in both dialects.
inline constexpr TSqlDialect BothDialects[] = {TSqlDialect::Access, TSqlDialect::MSSQL};

/// An empty database of the embedded engine in a folder of its own, which goes with it. In
/// the MSSQL dialect the folder is the server.
///
///     const TestDatabase database(TSqlDialect::Access);
///     const auto connection = database.Connect();
///     RunAll(*connection, {"create table T(A int)", "insert into T values(1)"});
///     EXPECT_EQ(Rows(*connection, "select * from T"), "1");
class TestDatabase
{
public:
    explicit TestDatabase(TSqlDialect dialect, const QString &password = {});

    TSqlDialect Dialect() const { return FDialect; }
    QString Folder() const { return FFolder.path(); }
    QString FileName() const { return FFolder.filePath(QStringLiteral("orders.db")); }
    QString Server() const { return QStringLiteral("folder:") + FFolder.path(); }
    /// The parts that name the database; more parts may be put behind.
    QString ConnectionString(const QString &password = {}) const;
    /// What connects to another database of the folder.
    QString ConnectionTo(const QString &database, const QString &password = {}) const;

    std::unique_ptr<TADOConnection> Connect(const QString &furtherParts = {}, int timeout = 30) const;

private:
    TSqlDialect FDialect;
    QTemporaryDir FFolder;
};

/// A new, connected connection.
std::unique_ptr<TADOConnection> ConnectTo(const QString &connectionString, int timeout = 30);

/// Runs statements one by one.
void RunAll(TADOConnection &connection, const QStringList &statements);
/// A result's rows, joined by " / ", the cells by "|"; NULL is "~", a blob "0x" and digits.
QString Rows(TADOConnection &connection, const QString &statement);
/// The descriptions in the connection's error list after a statement failed; "nothing" if it
/// did not, and what was raised if that is not the first description.
QString FailureOf(TADOConnection &connection, const QString &statement);
/// The same of a connect.
QString ConnectFailure(const QString &connectionString, TConnectMode mode = cmUnknown, int timeout = 30);

/// A database file as any other tool of the engine sees it: the C interface and nothing else.
class PlainDatabase
{
public:
    /// Makes the file if it is not there.
    explicit PlainDatabase(const QString &fileName);
    PlainDatabase(const PlainDatabase &) = delete;
    PlainDatabase &operator=(const PlainDatabase &) = delete;
    ~PlainDatabase();

    /// Runs statements and gives the rows, in the form of Rows above; what fails is reported as
    /// "error: " and the engine's words.
    QString Run(const QString &sql);

private:
    sqlite3 *FHandle = nullptr;
};

} // namespace Korvane::Testing
