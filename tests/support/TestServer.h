// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/ADOConnection.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <ostream>

namespace Korvane::Testing {

/// A database server that the environment names (scripts/test-servers.sh).
struct TestServer
{
    QString Address; ///< as data source
    QString User;
    QString Password;
    bool IsPostgres = false;

    /// KORVANE_POSTGRES; nothing where it is not set.
    static std::optional<TestServer> Postgres() { return FromEnvironment("KORVANE_POSTGRES", true); }
    /// KORVANE_MSSQL: "host", "host,port" or "host\instance".
    static std::optional<TestServer> SqlServer() { return FromEnvironment("KORVANE_MSSQL", false); }

    /// What connects to a database; more parts may be put behind.
    QString ConnectionString(const QString &database, const QString &password) const
    {
        TConnectionString text;
        text.SetValue(QStringLiteral("Provider"), QStringLiteral("SQLOLEDB.1"));
        text.SetValue(QStringLiteral("Data Source"), Address);
        text.SetValue(QStringLiteral("Initial Catalog"), database);
        text.SetValue(QStringLiteral("User ID"), User);
        text.SetValue(QStringLiteral("Password"), password);
        return text.ToString();
    }
    QString ConnectionString(const QString &database) const { return ConnectionString(database, Password); }

private:
    static std::optional<TestServer> FromEnvironment(const char *name, bool isPostgres)
    {
        const QByteArray variable(name);
        const auto value = [&](const char *suffix) {
            return qEnvironmentVariable((variable + suffix).constData());
        };
        if (value("").isEmpty())
            return std::nullopt;
        return TestServer{value(""), value("_USER"), value("_PASSWORD"), isPostgres};
    }
};

/// The kinds of server that a contract runs on: values of a parameterised test.
enum class ServerKind { Postgres, SqlServer };

inline void PrintTo(ServerKind kind, std::ostream *out)
{
    *out << (kind == ServerKind::Postgres ? "Postgres" : "SqlServer");
}

inline std::optional<TestServer> ServerOf(ServerKind kind)
{
    return kind == ServerKind::Postgres ? TestServer::Postgres() : TestServer::SqlServer();
}

/// What a test says when it skips because the server is not there.
inline const char *MissingServer(ServerKind kind)
{
    return kind == ServerKind::Postgres ? "KORVANE_POSTGRES names no PostgreSQL server"
                                        : "KORVANE_MSSQL names no Microsoft SQL Server";
}

/// Whether restores have left databases behind. Those of the tests beside this one, which share the
/// server, go within a moment.
inline bool HasRestoreLeftovers(const TestServer &server)
{
    const auto master = ConnectTo(server.ConnectionString(QStringLiteral("master")));
    const QString statement =
        QStringLiteral("select count(*) from master..sysdatabases where name like 'korvane_restore%'");
    for (int tries = 0; tries < 200; ++tries) {
        if (Rows(*master, statement) == QLatin1String("0"))
            return false;
        QThread::msleep(50);
    }
    return true;
}

/// Who makes a database that a test asks for.
enum class DatabaseMaking { AtOnce, ByTheTest };

/// An empty database on a server, or the name for one, which no other test has. It goes with the
/// object; connections must be closed before.
class ServerDatabase
{
public:
    explicit ServerDatabase(TestServer server, DatabaseMaking making = DatabaseMaking::AtOnce)
        : FServer(std::move(server))
    {
        static int count = 0;
        FName = QStringLiteral("korvane_test_%1_%2").arg(QCoreApplication::applicationPid()).arg(++count);
        if (making == DatabaseMaking::AtOnce)
            CreateCatalog(ConnectionString());
    }
    ServerDatabase(const ServerDatabase &) = delete;
    ServerDatabase &operator=(const ServerDatabase &) = delete;
    ~ServerDatabase()
    {
        try {
            RemoveCatalog(ConnectionString());
        } catch (const Exception &) {
            // It was never made, or a test that failed has left a connection; the cluster goes anyway.
        }
    }

    const TestServer &Server() const { return FServer; }
    const QString &Name() const { return FName; }
    QString ConnectionString() const { return FServer.ConnectionString(FName); }
    std::unique_ptr<TADOConnection> Connect(const QString &furtherParts = {}, int timeout = 30) const
    {
        return ConnectTo(ConnectionString() + furtherParts, timeout);
    }

private:
    TestServer FServer;
    QString FName;
};

/// A test with a database of its own on a server, empty, and a connection to it. It skips where the
/// server is not there.
template <class Base> class WithServer : public Base
{
protected:
    /// For SetUp, first; IsSkipped() tells whether there is anything to go on with.
    void Open(ServerKind kind)
    {
        const auto server = ServerOf(kind);
        if (!server)
            GTEST_SKIP() << MissingServer(kind);
        FDatabase = std::make_unique<ServerDatabase>(*server);
        FConnection = FDatabase->Connect();
    }
    void TearDown() override
    {
        FConnection.reset();
        FDatabase.reset();
    }

    QString Rows(const QString &statement) { return Testing::Rows(*FConnection, statement); }

    std::unique_ptr<ServerDatabase> FDatabase;
    std::unique_ptr<TADOConnection> FConnection;
};

} // namespace Korvane::Testing
