// SPDX-License-Identifier: MIT
#include "platform/sql/odbc/OdbcDriver.h"

#include "platform/sql/odbc/OdbcConnection.h"
#include "platform/sql/odbc/OdbcParameters.h"
#include "platform/sql/odbc/OdbcReader.h"
#include "platform/sql/sqlite/FolderServer.h"

#include <QScopeGuard>

namespace Korvane {

namespace {

bool ControlsTransaction(const TOdbcStep &step)
{
    return step.Kind == TOdbcStepKind::Begins || step.Kind == TOdbcStepKind::Commits ||
           step.Kind == TOdbcStepKind::RollsBack;
}

bool IsSelect(const TOdbcStep &step) { return step.Kind == TOdbcStepKind::Selects; }

/// The rows whose columns have the wanted values, those that are wanted empty having any.
TDataPacket Restricted(const TDataPacket &rows, const QVariantList &restrictions)
{
    const bool isFree = std::all_of(restrictions.begin(), restrictions.end(),
                                    [](const QVariant &wanted) { return wanted.toString().isEmpty(); });
    if (isFree)
        return rows;
    TDataPacketBuilder builder(rows.Fields());
    const int count = std::min(int(restrictions.size()), rows.FieldCount());
    for (qsizetype row = 0; row < rows.RowCount(); ++row) {
        const auto fits = [&](int field) {
            const QString wanted = restrictions[field].toString();
            return wanted.isEmpty() || wanted.compare(rows.Text(field, row), Qt::CaseInsensitive) == 0;
        };
        int field = 0;
        while (field < count && fits(field))
            ++field;
        if (field == count)
            builder.AppendRows(rows, row, row + 1);
    }
    return std::move(builder).Build();
}

} // namespace

TOdbcDriver::TOdbcDriver() = default;

TOdbcDriver::~TOdbcDriver() = default;

bool TOdbcDriver::IsServer(const QString &dataSource)
{
    return !dataSource.trimmed().isEmpty() && !TFolderServer::IsAddress(dataSource);
}

bool TOdbcDriver::HasFeature(TSqlFeature feature) const
{
    switch (feature) {
    case TSqlFeature::ReadOnly:
        return FReadOnly;
    case TSqlFeature::CopyDatabase:
        return false;
    default:
        return true;
    }
}

/// Runs an action of a connection. A failure that tells that the connection is lost ends it here,
/// too.
template <class Action> auto TOdbcDriver::Guarded(Action action)
{
    try {
        return action();
    } catch (const ESqlError &) {
        if (FConnection && FConnection->IsLost())
            Disconnect();
        throw;
    }
}

TOdbcConnection &TOdbcDriver::Connection() const
{
    if (!FConnection)
        throw ESqlError(QStringLiteral("数据库没有连接"));
    return *FConnection;
}

const TOdbcServer &TOdbcDriver::Server() const { return Connection().Server(); }

void TOdbcDriver::Connect(const TConnectionString &connection, const TSqlConnectOptions &options)
{
    Disconnect();
    const TOdbcServer &server = OdbcServerOf(connection.DataSource());
    const TOdbcTarget target = OdbcTargetOf(server, connection, options.ApplicationName);
    FConnection = std::make_unique<TOdbcConnection>(server);
    try {
        FConnection->Connect(target);
        FTarget = std::make_unique<TOdbcTarget>(target);
        RunOwn(server.SessionSql(target, options));
        FReadOnly = server.IsReadOnly(options);
        if (server.IsPreparedSql && target.Database != server.ServerDatabase)
            PrepareDatabase();
    } catch (...) {
        Disconnect();
        throw;
    }
}

void TOdbcDriver::PrepareDatabase()
{
    const TDataPacket prepared = RunOwn(Server().IsPreparedSql());
    if (prepared.RowCount() > 0 && prepared.Value(0, 0).toInt() != 0)
        return;
    Connection().SetAutoCommit(false);
    RunOwn(Server().PrepareSql());
    Connection().Commit();
    Connection().SetAutoCommit(true);
}

void TOdbcDriver::Disconnect()
{
    FConnection.reset();
    FTarget.reset();
    FInTransaction = false;
    FReadOnly = false;
    FLastRowCount = 0;
}

qint64 TOdbcDriver::Execute(const QString &statement, std::span<const TSqlParameter> parameters)
{
    return Guarded([&] { return Run(statement, parameters, nullptr); });
}

TDataPacket TOdbcDriver::Query(const QString &statement, std::span<const TSqlParameter> parameters)
{
    TDataPacket rows;
    Guarded([&] { return Run(statement, parameters, &rows); });
    return rows;
}

qint64 TOdbcDriver::Run(const QString &statement, std::span<const TSqlParameter> parameters,
                        TDataPacket *rows)
{
    const TOdbcBatch batch = Server().Rewrite(statement);
    if (batch.Command != TServerCommand::None) {
        RunServerCommand(batch);
        return 0;
    }
    const bool apart = batch.Steps.size() < 2 || !Server().KeepsStepsTogether ||
                       std::any_of(batch.Steps.begin(), batch.Steps.end(), ControlsTransaction) ||
                       std::all_of(batch.Steps.begin(), batch.Steps.end(), IsSelect);
    return apart ? RunSteps(batch, parameters, rows) : RunTogether(batch, parameters, rows);
}

qint64 TOdbcDriver::RunSteps(const TOdbcBatch &batch, std::span<const TSqlParameter> parameters,
                             TDataPacket *rows)
{
    qint64 affected = 0;
    for (const TOdbcStep &step : batch.Steps)
        affected += RunStep(batch, step, parameters, rows);
    return affected;
}

// What one text asks for is done as a whole or not at all.
qint64 TOdbcDriver::RunTogether(const TOdbcBatch &batch, std::span<const TSqlParameter> parameters,
                                TDataPacket *rows)
{
    const bool nested = FInTransaction;
    if (nested)
        RunOwn(QStringLiteral("savepoint korvane_steps"));
    else
        BeginTransaction();
    bool completed = false;
    const auto undo = qScopeGuard([&] {
        if (completed || !FConnection || FConnection->IsLost())
            return;
        try {
            if (nested)
                RunOwn(QStringLiteral("rollback to savepoint korvane_steps"));
            else
                RollbackTransaction();
        } catch (const ESqlError &) {
            // The failure that led here is the one to tell. What could not be undone ends with the
            // connection.
            Disconnect();
        }
    });
    const qint64 affected = RunSteps(batch, parameters, rows);
    if (nested)
        RunOwn(QStringLiteral("release savepoint korvane_steps"));
    else
        CommitTransaction();
    completed = true;
    return affected;
}

qint64 TOdbcDriver::RunStep(const TOdbcBatch &batch, const TOdbcStep &step,
                            std::span<const TSqlParameter> parameters, TDataPacket *rows)
{
    switch (step.Kind) {
    case TOdbcStepKind::Begins:
        return BeginTransaction(), 0;
    case TOdbcStepKind::Commits:
        return CommitTransaction(), 0;
    case TOdbcStepKind::RollsBack:
        return RollbackTransaction(), 0;
    default:
        break;
    }
    if (step.ReadsRowCount && Server().RowCountSql)
        RunOwn(Server().RowCountSql(FLastRowCount));

    const TOdbcMarkedSql marked = MarkOdbcParameters(step.Sql, parameters);
    TOdbcValues values;
    TOdbcStatement statement(Connection());
    values.Bind(statement, marked.Values, parameters);
    if (statement.Execute(marked.Sql))
        values.SendPieces(statement);
    qint64 affected = 0;
    FLastRowCount = 0;
    do {
        const bool givesRows = statement.ColumnCount() > 0;
        FLastRowCount = statement.RowCount();
        if (givesRows && rows)
            *rows = TOdbcReader(statement, batch.WrittenNames).ReadAll();
        if (givesRows && rows)
            FLastRowCount = rows->RowCount();
        else if (!givesRows && step.Kind != TOdbcStepKind::Defines)
            affected += FLastRowCount;
    } while (statement.NextResult());
    return affected;
}

TDataPacket TOdbcDriver::RunOwn(const QString &sql)
{
    TDataPacket rows;
    if (sql.isEmpty())
        return rows;
    TOdbcStatement statement(Connection());
    statement.Execute(sql);
    do {
        if (statement.ColumnCount() > 0)
            rows = TOdbcReader(statement, {}).ReadAll();
    } while (statement.NextResult());
    return rows;
}

void TOdbcDriver::BeginTransaction()
{
    if (FInTransaction)
        throw ESqlError(QStringLiteral("已经在事务中，不能再开始一个事务"));
    Guarded([this] { Connection().SetAutoCommit(false); });
    FInTransaction = true;
}

void TOdbcDriver::EndTransaction(void (TOdbcConnection::*end)())
{
    if (!FInTransaction)
        throw ESqlError(QStringLiteral("没有可以结束的事务"));
    Guarded([&] {
        (Connection().*end)();
        FInTransaction = false;
        // Statements that went on into a transaction that nobody ends would be lost.
        auto leave = qScopeGuard([this] { Disconnect(); });
        Connection().SetAutoCommit(true);
        leave.dismiss();
    });
}

void TOdbcDriver::CommitTransaction() { EndTransaction(&TOdbcConnection::Commit); }

void TOdbcDriver::RollbackTransaction() { EndTransaction(&TOdbcConnection::Rollback); }

TDataPacket TOdbcDriver::OpenSchema(TSchemaInfo schema, const QVariantList &restrictions,
                                    const QString &schemaId)
{
    const TOdbcServer &server = Server();
    const auto rowset = [&](const char *sql) {
        return Guarded([&] { return Restricted(RunOwn(QString::fromUtf8(sql)), restrictions); });
    };
    switch (schema) {
    case siTables:
        return rowset(server.TablesSql);
    case siColumns:
        return rowset(server.ColumnsSql);
    case siIndexes:
        return rowset(server.IndexesSql);
    case siProviderSpecific:
        if (schemaId.compare(QLatin1String(UserRosterSchemaId), Qt::CaseInsensitive) == 0)
            return rowset(server.UsersSql);
        break;
    }
    throw ESqlError(QStringLiteral("%1 没有此结构信息：%2").arg(server.Title, schemaId));
}

void TOdbcDriver::RunAll(const QStringList &statements)
{
    for (const QString &statement : statements)
        RunOwn(statement);
}

void TOdbcDriver::RunServerCommand(const TOdbcBatch &batch)
{
    switch (batch.Command) {
    case TServerCommand::CreateDatabase:
        return RunAll(Server().CreateDatabaseSql(batch.CommandDatabase));
    case TServerCommand::DropDatabase:
        return RunAll(Server().DropDatabaseSql(batch.CommandDatabase));
    case TServerCommand::BackupDatabase:
    case TServerCommand::RestoreDatabase:
        return RunCopy(batch);
    case TServerCommand::None:
        break;
    }
}

void TOdbcDriver::RunCopy(const TOdbcBatch &batch)
{
    const bool isBackup = batch.Command == TServerCommand::BackupDatabase;
    if (FReadOnly && !isBackup)
        throw ESqlError(QStringLiteral("连接是只读的，不能恢复数据库：%1").arg(batch.CommandDatabase));
    // The copy would wait for the locks of the transaction, and the transaction for the copy.
    if (FInTransaction)
        throw ESqlError(QStringLiteral("在事务中不能备份或恢复数据库：%1").arg(batch.CommandDatabase));
    const auto copy = isBackup ? Server().Backup : Server().Restore;
    copy({*FTarget, batch.CommandDatabase, batch.CommandFile,
          [this](const QString &sql) { return RunOwn(sql); }});
}

void TOdbcDriver::RunOverServerDatabase(const TConnectionString &connection,
                                        QStringList (*sql)(const QString &name))
{
    if (connection.InitialCatalog().isEmpty())
        throw ESqlError(QStringLiteral("没有指定数据库"));
    TConnectionString server = connection;
    server.SetValue(QStringLiteral("Initial Catalog"), OdbcServerOf(connection.DataSource()).ServerDatabase);
    Connect(server, {});
    const auto close = qScopeGuard([this] { Disconnect(); });
    RunAll(sql(connection.InitialCatalog()));
}

void TOdbcDriver::CreateDatabase(const TConnectionString &connection)
{
    RunOverServerDatabase(connection, OdbcServerOf(connection.DataSource()).CreateDatabaseSql);
}

void TOdbcDriver::DropDatabase(const TConnectionString &connection)
{
    RunOverServerDatabase(connection, OdbcServerOf(connection.DataSource()).DropDatabaseSql);
}

} // namespace Korvane
