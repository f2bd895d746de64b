// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/DriverRegistry.h"

#include <QStringList>

#include <functional>
#include <utility>

namespace Korvane::Testing {

/// Serves the data source "scripted" of one provider for as long as it lives, instead of the
/// drivers that would. Its driver answers every query with Answer and records what it is told.
///
///     ScriptedServer server("SQLOLEDB.1");
///     server.Answer = PacketOf({{"A", ftInteger}}, {{5}});
class ScriptedServer
{
public:
    explicit ScriptedServer(const QString &provider)
    {
        RegisterDriver({QStringLiteral("scripted"), provider,
                        [](const TConnectionString &connection) {
                            return connection.DataSource() == QLatin1String("scripted");
                        },
                        [this] { return std::make_unique<Driver>(*this); }});
    }
    ~ScriptedServer() { UnRegisterDriver(QStringLiteral("scripted")); }
    ScriptedServer(const ScriptedServer &) = delete;
    ScriptedServer &operator=(const ScriptedServer &) = delete;

    TDataPacket Answer;
    std::shared_ptr<TRowFeed> Feed; ///< of the rows behind Answer, where first rows are asked for
    qint64 Affected = 0;
    /// Called before each connect and each statement; may raise.
    std::function<void()> OnConnect;
    std::function<void(const QString &)> OnStatement;

    /// "connect", "disconnect", the statements, "begin", "commit", "rollback".
    QStringList Told;

private:
    class Driver : public SqlDriver
    {
    public:
        explicit Driver(ScriptedServer &server) : FServer(server) {}
        ~Driver() override { Driver::Disconnect(); }

        bool HasFeature(TSqlFeature) const override { return false; }
        void Connect(const TConnectionString &, const TSqlConnectOptions &) override
        {
            FServer.Told += QStringLiteral("connect");
            if (FServer.OnConnect)
                FServer.OnConnect();
            FConnected = true;
        }
        void Disconnect() override
        {
            if (std::exchange(FConnected, false))
                FServer.Told += QStringLiteral("disconnect");
        }
        bool IsConnected() const override { return FConnected; }
        qint64 Execute(const QString &statement, std::span<const TSqlParameter>) override
        {
            Take(statement);
            return FServer.Affected;
        }
        TDataPacket Query(const QString &statement, std::span<const TSqlParameter>) override
        {
            Take(statement);
            return FServer.Answer;
        }
        TFirstRows QueryFirst(const QString &statement, qsizetype) override
        {
            Take(statement);
            return {FServer.Answer, FServer.Feed};
        }
        void BeginTransaction() override { End(QStringLiteral("begin"), true); }
        void CommitTransaction() override { End(QStringLiteral("commit"), false); }
        void RollbackTransaction() override { End(QStringLiteral("rollback"), false); }
        bool InTransaction() const override { return FInTransaction; }
        TDataPacket OpenSchema(TSchemaInfo, const QVariantList &, const QString &schemaId) override
        {
            FServer.Told += QStringLiteral("schema ") + schemaId;
            return FServer.Answer;
        }

    private:
        void Take(const QString &statement)
        {
            FServer.Told += statement;
            if (FServer.OnStatement)
                FServer.OnStatement(statement);
        }
        void End(const QString &word, bool inTransaction)
        {
            FServer.Told += word;
            FInTransaction = inTransaction;
        }

        ScriptedServer &FServer;
        bool FConnected = false;
        bool FInTransaction = false;
    };
};

} // namespace Korvane::Testing
