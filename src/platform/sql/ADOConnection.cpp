// SPDX-License-Identifier: MIT
#include "platform/sql/ADOConnection.h"

#include "platform/sql/ADODataSet.h"
#include "platform/sql/DriverRegistry.h"

namespace Korvane {

template <class Action> auto TADOConnection::Guarded(Action action)
{
    FErrors.clear();
    try {
        return action();
    } catch (const ESqlError &error) {
        FErrors = error.Errors();
        throw;
    } catch (const Exception &error) {
        FErrors = {{error.Message(), 0, {}}};
        throw;
    }
}

TADOConnection::TADOConnection(QObject *owner) : TComponent(owner) {}

TADOConnection::~TADOConnection() = default;

bool TADOConnection::Connected() const { return FDriver && FDriver->IsConnected(); }

void TADOConnection::SetConnected(bool connected)
{
    if (connected == Connected())
        return;
    if (!connected) {
        FDriver.reset();
        AfterDisconnect(this);
        return;
    }
    Guarded([this] {
        const TConnectionString connection(FConnectionString);
        std::unique_ptr<SqlDriver> driver = CreateDriver(connection);
        driver->Connect(connection, FOptions);
        FDriver = std::move(driver);
    });
    AfterConnect(this);
}

SqlDriver &TADOConnection::Driver() const
{
    if (!Connected())
        throw EDatabaseError(QStringLiteral("数据库没有连接"));
    return *FDriver;
}

int TADOConnection::BeginTrans()
{
    Guarded([this] { Driver().BeginTransaction(); });
    return 1;
}

void TADOConnection::CommitTrans()
{
    Guarded([this] { Driver().CommitTransaction(); });
}

void TADOConnection::RollbackTrans()
{
    Guarded([this] { Driver().RollbackTransaction(); });
}

bool TADOConnection::InTransaction() const { return FDriver && FDriver->InTransaction(); }

qint64 TADOConnection::Execute(const QString &statement, std::span<const TSqlParameter> parameters)
{
    OnExecute(statement);
    return Guarded([&] { return Driver().Execute(statement, parameters); });
}

TDataPacket TADOConnection::Query(const QString &statement, std::span<const TSqlParameter> parameters)
{
    OnExecute(statement);
    return Guarded([&] { return Driver().Query(statement, parameters); });
}

TFirstRows TADOConnection::QueryFirst(const QString &statement, qsizetype rows)
{
    OnExecute(statement);
    return Guarded([&] { return Driver().QueryFirst(statement, rows); });
}

QVariant TADOConnection::QueryValue(const QString &statement)
{
    OnExecute(statement);
    return Guarded([&] { return Driver().QueryValue(statement); });
}

void TADOConnection::OpenSchema(TSchemaInfo schema, const QVariant &restrictions, const QVariant &schemaId,
                                TADODataSet &target)
{
    target.Open(
        Guarded([&] { return Driver().OpenSchema(schema, restrictions.toList(), schemaId.toString()); }));
}

void CreateCatalog(const QString &connectionString)
{
    const TConnectionString connection(connectionString);
    CreateDriver(connection)->CreateDatabase(connection);
}

void RemoveCatalog(const QString &connectionString)
{
    const TConnectionString connection(connectionString);
    CreateDriver(connection)->DropDatabase(connection);
}

} // namespace Korvane
