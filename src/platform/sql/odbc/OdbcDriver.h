// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"

#include <memory>

namespace Korvane {

class TOdbcConnection;
struct TOdbcBatch;
struct TOdbcServer;
struct TOdbcStep;
struct TOdbcTarget;

/// Database servers, by the ODBC driver manager: Microsoft SQL Server ("host", "host,port" or
/// "host\instance" as data source) and PostgreSQL ("postgresql://host:port"). Statements come in
/// the MSSQL dialect; what a server does differently stands in its TOdbcServer.
///
/// A lost connection is told as such and leaves the driver disconnected; what its transaction had
/// done is undone by the server.
class TOdbcDriver : public SqlDriver
{
public:
    TOdbcDriver();
    ~TOdbcDriver() override;

    /// Whether a data source names a server.
    static bool IsServer(const QString &dataSource);

    bool HasFeature(TSqlFeature feature) const override;
    void Connect(const TConnectionString &connection, const TSqlConnectOptions &options) override;
    void Disconnect() override;
    bool IsConnected() const override { return FConnection != nullptr; }
    qint64 Execute(const QString &statement, std::span<const TSqlParameter> parameters) override;
    TDataPacket Query(const QString &statement, std::span<const TSqlParameter> parameters) override;
    void BeginTransaction() override;
    void CommitTransaction() override;
    void RollbackTransaction() override;
    bool InTransaction() const override { return FInTransaction; }
    /// Restrictions are compared with the columns by position, blind to the case of letters.
    TDataPacket OpenSchema(TSchemaInfo schema, const QVariantList &restrictions,
                           const QString &schemaId) override;
    void CreateDatabase(const TConnectionString &connection) override;
    void DropDatabase(const TConnectionString &connection) override;

private:
    template <class Action> auto Guarded(Action action);
    TOdbcConnection &Connection() const;
    const TOdbcServer &Server() const;
    void PrepareDatabase();
    qint64 Run(const QString &statement, std::span<const TSqlParameter> parameters, TDataPacket *rows);
    qint64 RunSteps(const TOdbcBatch &batch, std::span<const TSqlParameter> parameters, TDataPacket *rows);
    qint64 RunStep(const TOdbcBatch &batch, const TOdbcStep &step, std::span<const TSqlParameter> parameters,
                   TDataPacket *rows);
    qint64 RunTogether(const TOdbcBatch &batch, std::span<const TSqlParameter> parameters, TDataPacket *rows);
    /// Runs a text of the server's own language; the rows of its last result that has some.
    TDataPacket RunOwn(const QString &sql);
    void RunServerCommand(const TOdbcBatch &batch);
    void RunCopy(const TOdbcBatch &batch);
    void RunAll(const QStringList &statements);
    void RunOverServerDatabase(const TConnectionString &connection, QStringList (*sql)(const QString &name));
    void EndTransaction(void (TOdbcConnection::*end)());

    std::unique_ptr<TOdbcConnection> FConnection;
    qint64 FLastRowCount = 0; ///< of the statement before
    bool FInTransaction = false;
    bool FReadOnly = false;
    std::unique_ptr<TOdbcTarget> FTarget; // of the connection
};

} // namespace Korvane
