// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/DriverRegistry.h"

#include <QScopedValueRollback>
#include <QStringList>

#include <memory>

namespace Korvane::Testing {

/// Stands before the real drivers of both dialects for as long as it lives: connections made
/// in that time reach their database through it. Statements (Execute and Query) pass through
/// until one is told to fail; that one does not reach the engine.
///
///     FailingServer server;
///     const auto connection = database.Connect(); // or a session's SetConnected(true)
///     server.FailAt(2, "断线");
///     connection->Execute("update T set A=1");     // runs
///     connection->Execute("update T set B=1");     // raises ESqlError "断线"
///     connection->Execute("update T set C=1");     // runs
///
/// The connections must be closed before it goes.
class FailingServer
{
public:
    FailingServer()
    {
        for (const QString &provider :
             {QStringLiteral("Microsoft.Jet.OLEDB.4.0"), QStringLiteral("SQLOLEDB.1")})
            RegisterDriver({QStringLiteral("failing"), provider,
                            [this](const TConnectionString &) { return !FIsChoosing; },
                            [this] { return std::make_unique<Driver>(*this); }});
    }
    ~FailingServer() { UnRegisterDriver(QStringLiteral("failing")); }
    FailingServer(const FailingServer &) = delete;
    FailingServer &operator=(const FailingServer &) = delete;

    /// The number-th statement from now on, from 1, fails; 0 takes that back.
    void FailAt(int number, const QString &message = QStringLiteral("连接已断开"))
    {
        FLeft = number;
        FMessage = message;
    }

    /// What reached the engine, in order: the statements, "begin", "commit", "rollback".
    QStringList Ran;
    /// The statements that were made to fail.
    QStringList Failed;

private:
    class Driver : public SqlDriver
    {
    public:
        explicit Driver(FailingServer &server) : FServer(server) {}

        bool HasFeature(TSqlFeature feature) const override { return FReal && FReal->HasFeature(feature); }
        void Connect(const TConnectionString &connection, const TSqlConnectOptions &options) override
        {
            Choose(connection).Connect(connection, options);
        }
        void Disconnect() override
        {
            if (FReal)
                FReal->Disconnect();
        }
        bool IsConnected() const override { return FReal && FReal->IsConnected(); }
        qint64 Execute(const QString &statement, std::span<const TSqlParameter> parameters) override
        {
            FServer.Take(statement);
            return FReal->Execute(statement, parameters);
        }
        TDataPacket Query(const QString &statement, std::span<const TSqlParameter> parameters) override
        {
            FServer.Take(statement);
            return FReal->Query(statement, parameters);
        }
        void BeginTransaction() override
        {
            FServer.Ran += QStringLiteral("begin");
            FReal->BeginTransaction();
        }
        void CommitTransaction() override
        {
            FServer.Ran += QStringLiteral("commit");
            FReal->CommitTransaction();
        }
        void RollbackTransaction() override
        {
            FServer.Ran += QStringLiteral("rollback");
            FReal->RollbackTransaction();
        }
        bool InTransaction() const override { return FReal && FReal->InTransaction(); }
        TDataPacket OpenSchema(TSchemaInfo schema, const QVariantList &restrictions,
                               const QString &schemaId) override
        {
            return FReal->OpenSchema(schema, restrictions, schemaId);
        }
        void CreateDatabase(const TConnectionString &connection) override
        {
            Choose(connection).CreateDatabase(connection);
        }
        void DropDatabase(const TConnectionString &connection) override
        {
            Choose(connection).DropDatabase(connection);
        }
        void CopyDatabase(const QString &fileName) override { FReal->CopyDatabase(fileName); }

    private:
        /// The driver that would serve the connection if this one did not stand before it.
        SqlDriver &Choose(const TConnectionString &connection)
        {
            const QScopedValueRollback<bool> choosing(FServer.FIsChoosing, true);
            FReal = CreateDriver(connection);
            return *FReal;
        }

        FailingServer &FServer;
        std::unique_ptr<SqlDriver> FReal;
    };

    void Take(const QString &statement)
    {
        if (FLeft > 0 && --FLeft == 0) {
            Failed += statement;
            throw ESqlError(FMessage);
        }
        Ran += statement;
    }

    int FLeft = 0;
    QString FMessage;
    bool FIsChoosing = false;
};

} // namespace Korvane::Testing
