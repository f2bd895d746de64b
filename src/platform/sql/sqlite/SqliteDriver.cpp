// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/SqliteDriver.h"

#include "platform/sql/dialect/SqlFunctions.h"
#include "platform/sql/sqlite/CatalogTables.h"
#include "platform/sql/sqlite/DatabaseCopy.h"
#include "platform/sql/sqlite/DatabaseFile.h"
#include "platform/sql/sqlite/SchemaRowsets.h"
#include "platform/sql/sqlite/SqliteMetadata.h"
#include "platform/sql/sqlite/TableRebuild.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include <sqlite3.h>

namespace Korvane {

namespace {

void SessionNumberFunction(sqlite3_context *context, int, sqlite3_value **)
{
    sqlite3_result_int(context, static_cast<TSqliteDriver *>(sqlite3_user_data(context))->SessionNumber());
}

bool KeepsSchema(TStepKind kind)
{
    return kind == TStepKind::Selects || kind == TStepKind::ChangesRows ||
           kind == TStepKind::ControlsTransaction;
}

/// Does several steps as a whole: undoes them all unless they are completed. Outside of a
/// transaction it is one of its own that takes the write lock at once, so that another
/// writer is waited for at the start and not in the middle, where the engine could only refuse.
class TWholeSteps
{
public:
    TWholeSteps(TSqliteDatabase &database, bool readOnly)
        : FDatabase(database), FNested(database.InTransaction())
    {
        FDatabase.Run(FNested ? "savepoint korvane_steps" : readOnly ? "begin" : "begin immediate");
    }
    ~TWholeSteps()
    {
        // Some failures end the transaction by themselves: then nothing is left to undo.
        if (FCompleted || !FDatabase.InTransaction())
            return;
        try {
            if (FNested) {
                FDatabase.Run("rollback to korvane_steps");
                FDatabase.Run("release korvane_steps");
            } else {
                FDatabase.Run("rollback");
            }
        } catch (const ESqlError &) {
            // The failure that led here is the one to tell.
        }
    }
    TWholeSteps(const TWholeSteps &) = delete;
    TWholeSteps &operator=(const TWholeSteps &) = delete;

    void Complete()
    {
        FDatabase.Run(FNested ? "release korvane_steps" : "commit");
        FCompleted = true;
    }

private:
    TSqliteDatabase &FDatabase;
    const bool FNested;
    bool FCompleted = false;
};

} // namespace

TSqliteDriver::TSqliteDriver(TSqlDialect dialect, TStatementReuse reuse)
    : FDialect(dialect), FReuse(reuse), FStatements(dialect)
{
}

TSqliteDriver::~TSqliteDriver() { TSqliteDriver::Disconnect(); }

bool TSqliteDriver::HasFeature(TSqlFeature feature) const
{
    return feature == TSqlFeature::ReadOnly ? FReadOnly : true;
}

void TSqliteDriver::Connect(const TConnectionString &connection, const TSqlConnectOptions &options)
{
    Disconnect();
    try {
        if (FDialect == TSqlDialect::Access) {
            OpenFile(connection.DataSource(), connection, options);
        } else {
            FServer.emplace(connection.DataSource());
            TConnectionString named = connection;
            if (connection.InitialCatalog().isEmpty())
                named.SetValue(QStringLiteral("Initial Catalog"), QStringLiteral("master"));
            OpenFile(FServer->FileOf(named.InitialCatalog()), named, options);
        }
    } catch (...) {
        Disconnect();
        throw;
    }
}

void TSqliteDriver::OpenFile(const QString &fileName, const TConnectionString &connection,
                             const TSqlConnectOptions &options)
{
    if (fileName.isEmpty())
        throw ESqlError(QStringLiteral("没有指定数据库文件"));
    FReadOnly = options.Mode == cmRead;
    FTimeout = options.CommandTimeout;
    FPassword = connection.Password();
    // NOTE: the roster is joined before the file is opened, so that nobody drops a database
    // between its being found and its being used, and none is met half-made.
    if (!FReadOnly && (FServer || QFileInfo::exists(fileName)))
        JoinRoster(RosterFileOf(fileName), connection, options.ApplicationName);
    if (FServer && FRoster)
        MakeMasterIfMissing();
    FDatabase = OpenDatabaseFile(fileName, FReadOnly ? TSqliteOpen::ReadOnly : TSqliteOpen::ReadWrite,
                                 options.CommandTimeout);
    CheckDatabasePassword(*FDatabase, FPassword);
    Configure();
}

QString TSqliteDriver::RosterFileOf(const QString &fileName) const
{
    return FServer ? FServer->RosterFile() : fileName + QStringLiteral("-roster");
}

void TSqliteDriver::JoinRoster(const QString &rosterFile, const TConnectionString &connection,
                               const QString &applicationName)
{
    TRosterEntry entry;
    entry.ApplicationName = applicationName.isEmpty() ? connection.ApplicationName() : applicationName;
    if (FServer && entry.ApplicationName.isEmpty())
        entry.ApplicationName = QCoreApplication::applicationName(); // as a server lists who gives no name
    entry.ComputerName = QSysInfo::machineHostName();
    entry.LoginName = connection.UserID();
    entry.Database = FServer ? connection.InitialCatalog() : connection.DataSource();
    entry.ProcessId = QCoreApplication::applicationPid();
    entry.Connected = QDateTime::currentDateTime();
    FRoster = std::make_unique<TConnectionRoster>(rosterFile);
    FRoster->Join(entry);
}

void TSqliteDriver::Configure()
{
    sqlite3 *handle = FDatabase->Handle();
    FDatabase->Run("pragma temp_store=memory");
    FDatabase->Run("pragma cache_size=-16384"); // KiB: what some thousands of changed rows take
    if (!FReadOnly) {
        ChooseJournal(*FDatabase);
        FDatabase->Run("pragma synchronous=full");
        FDatabase->Run("pragma foreign_keys=on");
    }
    if (FServer) {
        // Names like orders..CUSTOMER find the database by its name; "main" goes on working.
        FMainName = QFileInfo(FDatabase->FileName()).completeBaseName().toUtf8();
        sqlite3_db_config(handle, SQLITE_DBCONFIG_MAINDBNAME, FMainName.constData());
    }
    RegisterSqlFunctions(handle, FDialect);
    sqlite3_create_function_v2(handle, "korvane_spid", 0, SQLITE_UTF8, this, SessionNumberFunction, nullptr,
                               nullptr, nullptr);
}

void TSqliteDriver::Disconnect()
{
    FinishFeeds();
    FStatements.Clear();
    FDatabase.reset();
    FRoster.reset();
    FServer.reset();
    FPassword.clear();
    FReadOnly = false;
    FTimeout = TSqlConnectOptions().CommandTimeout;
}

TSqliteDatabase &TSqliteDriver::Database() const
{
    if (!FDatabase)
        throw ESqlError(QStringLiteral("数据库没有连接"));
    return *FDatabase;
}

qint64 TSqliteDriver::Execute(const QString &statement, std::span<const TSqlParameter> parameters)
{
    return Run(statement, parameters, nullptr);
}

TDataPacket TSqliteDriver::Query(const QString &statement, std::span<const TSqlParameter> parameters)
{
    TDataPacket rows;
    Run(statement, parameters, &rows);
    return rows;
}

std::unique_ptr<TSqliteStatement> TSqliteDriver::StatementToFeed(const QString &statement)
{
    TSqliteDatabase &database = Database();
    const TRewrittenStatement rewritten = RewriteForSqlite(statement, FDialect);
    const bool isPlain = rewritten.Command == TServerCommand::None && rewritten.CatalogTables.isEmpty() &&
                         KindsOf(rewritten) == QList{TStepKind::Selects};
    // NOTE: with any journal but the write-ahead log, a statement that is not read to its end keeps others
    // from committing (sqlite.org/isolation.html).
    if (!isPlain || database.Value("pragma journal_mode") != QLatin1String("wal"))
        return nullptr;
    auto result = std::make_unique<TSqliteStatement>(database, rewritten.Steps.first().Sql);
    return result->IsValid() ? std::move(result) : nullptr;
}

TFirstRows TSqliteDriver::QueryFirst(const QString &statement, qsizetype rows)
{
    auto prepared = StatementToFeed(statement);
    if (!prepared)
        return {Query(statement, {}), nullptr};
    const auto feed = std::make_shared<TSqliteRowFeed>(std::move(prepared), rows);
    if (feed->IsFinished())
        return {feed->FirstRows(), nullptr};
    std::erase_if(FFeeds, [](const auto &other) { return other.expired(); });
    FFeeds.push_back(feed);
    return {feed->FirstRows(), feed};
}

void TSqliteDriver::FinishFeeds()
{
    for (const auto &entry : std::exchange(FFeeds, {}))
        if (const auto feed = entry.lock())
            feed->Finish();
}

QVariant TSqliteDriver::QueryValue(const QString &statement)
{
    // A text that is reckoned, such as the clock that every saved row asks for, needs no packet.
    if (const TReadyStatement ready = FStatements.Find(statement, {}))
        if (!ready->ChangesRows && ready->Statement.IsReckoned(0) && ready->Statement.Step() &&
            ready->Statement.IsText(0))
            return ready->Statement.String(0);
    return SqlDriver::QueryValue(statement);
}

qint64 TSqliteDriver::Run(const QString &statement, std::span<const TSqlParameter> parameters,
                          TDataPacket *rows)
{
    TSqliteDatabase &database = Database();
    if (const TReadyStatement ready = FStatements.Find(statement, parameters))
        return RunReady(*ready, rows);
    const TRewrittenStatement rewritten = RewriteForSqlite(statement, FDialect);
    if (rewritten.Command != TServerCommand::None) {
        FinishFeeds();
        RunServerCommand(rewritten);
        return 0;
    }
    if (!rewritten.CatalogTables.isEmpty())
        FillCatalogTables(database, rewritten.CatalogTables, FServer ? &*FServer : nullptr, FRoster.get());

    const QList<TStepKind> kinds = KindsOf(rewritten);
    if (kinds.count(TStepKind::Selects) != kinds.size())
        FinishFeeds();
    const bool changesTable = kinds.contains(TStepKind::ChangesTable);
    const bool single = kinds.size() <= 1 && !changesTable && !kinds.contains(TStepKind::MakesTable) &&
                        !kinds.contains(TStepKind::DropsTable);
    // NOTE: the engine itself prepares anew what a change of the schema concerns. That none is kept
    // across a change of this connection's own saves it from doing so one by one.
    if (!std::all_of(kinds.begin(), kinds.end(), KeepsSchema))
        FStatements.Clear();
    if (single || kinds.contains(TStepKind::ControlsTransaction)) {
        const qint64 affected = RunSteps(rewritten, kinds, parameters, rows);
        const bool mayComeAgain =
            kinds.size() == 1 && (kinds[0] == TStepKind::Selects || kinds[0] == TStepKind::ChangesRows);
        if (FReuse == TStatementReuse::On && mayComeAgain)
            FStatements.Learn(database, statement);
        return affected;
    }

    // What one text asks for is done as a whole or not at all.
    const TForeignKeyPause pause(database, changesTable);
    const bool onlyReads = kinds.count(TStepKind::Selects) == kinds.size();
    TWholeSteps whole(database, onlyReads || sqlite3_db_readonly(database.Handle(), "main") != 0);
    const qint64 affected = RunSteps(rewritten, kinds, parameters, rows);
    whole.Complete();
    return affected;
}

qint64 TSqliteDriver::RunReady(TPreparedForm &form, TDataPacket *rows)
{
    if (form.ChangesRows)
        FinishFeeds();
    if (rows && form.Statement.ColumnCount() > 0)
        *rows = form.Statement.ReadAll();
    else
        while (form.Statement.Step()) {
        }
    return form.ChangesRows ? FDatabase->Changes() : 0;
}

qint64 TSqliteDriver::RunSteps(const TRewrittenStatement &rewritten, const QList<TStepKind> &kinds,
                               std::span<const TSqlParameter> parameters, TDataPacket *rows)
{
    qint64 affected = 0;
    for (qsizetype i = 0; i < kinds.size(); ++i) {
        const TRewrittenStep &step = rewritten.Steps[i];
        if (kinds[i] == TStepKind::ChangesTable) {
            RebuildTable(*FDatabase, *step.Change);
            continue;
        }
        TSqliteStatement statement(*FDatabase, step.Sql);
        if (!statement.IsValid())
            continue;
        statement.Bind(parameters);
        if (rows && statement.ColumnCount() > 0)
            *rows = statement.ReadAll();
        else
            while (statement.Step()) {
            }
        if (kinds[i] == TStepKind::ChangesRows && sqlite3_stmt_readonly(statement.Handle()) == 0)
            affected += FDatabase->Changes();
        if (kinds[i] == TStepKind::MakesTable)
            RecordNewestTable(*FDatabase);
        else if (kinds[i] == TStepKind::DropsTable)
            ForgetTables(*FDatabase);
    }
    return affected;
}

void TSqliteDriver::BeginTransaction()
{
    FinishFeeds();
    // NOTE: the write lock is taken at once, so that a transaction waits for another writer
    // here and not in the middle, where the engine could only refuse it.
    Database().Run(FReadOnly ? "begin" : "begin immediate");
}

void TSqliteDriver::CommitTransaction()
{
    FinishFeeds();
    Database().Run("commit");
}

void TSqliteDriver::RollbackTransaction()
{
    FinishFeeds();
    Database().Run("rollback");
}

bool TSqliteDriver::InTransaction() const { return FDatabase && FDatabase->InTransaction(); }

TDataPacket TSqliteDriver::OpenSchema(TSchemaInfo schema, const QVariantList &restrictions,
                                      const QString &schemaId)
{
    TSqliteDatabase &database = Database();
    switch (schema) {
    case siTables:
        return TablesRowset(database, restrictions);
    case siColumns:
        return ColumnsRowset(database, restrictions);
    case siIndexes:
        return IndexesRowset(database, restrictions);
    case siProviderSpecific:
        if (schemaId.compare(QLatin1String(UserRosterSchemaId), Qt::CaseInsensitive) == 0)
            return UserRosterRowset(FRoster ? FRoster->Entries() : QList<TRosterEntry>());
        break;
    }
    throw ESqlError(QStringLiteral("内嵌数据库引擎没有此结构信息：%1").arg(schemaId));
}

void TSqliteDriver::CreateDatabase(const TConnectionString &connection)
{
    if (FDialect == TSqlDialect::Access)
        return CreateDatabaseFile(connection.DataSource(), connection.Password());
    CreateDatabaseFile(TFolderServer(connection.DataSource()).FileOf(connection.InitialCatalog()),
                       connection.Password());
}

void TSqliteDriver::CopyDatabase(const QString &fileName)
{
    // NOTE: over a connection of its own, so that a transaction of this one is left out and in peace.
    CopyDatabaseTo(*OpenCopySource(Database().FileName(), FTimeout), fileName);
}

void TSqliteDriver::CopyDatabaseFile(const QString &source, const QString &target, TCopyCheck check)
{
    const auto database = OpenCopySource(source, FTimeout);
    if (check == TCopyCheck::None)
        return CopyDatabaseTo(*database, target);
    CopyDatabaseTo(*database, target, [&](TSqliteDatabase &copy) { CheckCopy(copy, source); });
}

void TSqliteDriver::CheckCopy(TSqliteDatabase &copy, const QString &source) const
{
    RegisterSqlFunctions(copy.Handle(), FDialect); // conditions and indexes may use them
    CheckUndamaged(copy, source);
}

void TSqliteDriver::CheckReplaceable(const QString &fileName, const QString &password) const
{
    if (QFileInfo(fileName).size() == 0)
        return;
    try {
        CheckDatabasePassword(*OpenCopySource(fileName, FTimeout), password);
    } catch (const ESqlError &error) {
        if (!IsDamage(error))
            throw;
    }
}

void TSqliteDriver::ReplaceDatabase(const TConnectionString &connection, const QString &copy)
{
    if (FDialect == TSqlDialect::MSSQL)
        return SqlDriver::ReplaceDatabase(connection, copy);
    const QString file = connection.DataSource();
    TConnectionRoster roster(RosterFileOf(file));
    roster.Join({});
    roster.WhileClosed([&](const QList<TRosterEntry> &entries) {
        if (entries.size() > 1)
            throw ESqlError(QStringLiteral("数据库正在使用中，不能替换：%1").arg(file));
        CheckReplaceable(file, connection.Password());
        ReplaceDatabaseFile(copy, file);
    });
}

void TSqliteDriver::RunServerCommand(const TRewrittenStatement &rewritten)
{
    const QString &name = rewritten.CommandDatabase;
    const TServerCommand command = FServer ? rewritten.Command : TServerCommand::None;
    if (FReadOnly && command != TServerCommand::BackupDatabase)
        throw ESqlError((command == TServerCommand::RestoreDatabase
                             ? QStringLiteral("连接是只读的，不能恢复数据库：%1")
                             : QStringLiteral("连接是只读的，不能创建或删除数据库：%1"))
                            .arg(name));
    switch (command) {
    case TServerCommand::CreateDatabase:
        return CreateServerDatabase(name);
    case TServerCommand::DropDatabase:
        return DropServerDatabase(name);
    case TServerCommand::BackupDatabase:
        return BackupServerDatabase(name, rewritten.CommandFile);
    case TServerCommand::RestoreDatabase:
        return RestoreServerDatabase(name, rewritten.CommandFile);
    case TServerCommand::None:
        throw ESqlError(QStringLiteral("内嵌数据库引擎不支持此语句：%1").arg(name));
    }
}

QString TSqliteDriver::BackupFile(const QString &name) const
{
    const QDir folder(FServer->Folder());
    const QString file = QDir::cleanPath(folder.absoluteFilePath(name));
    const QFileInfo info(file);
    if (name.isEmpty() || info.isDir())
        throw ESqlError(QStringLiteral("没有指定备份文件：%1").arg(name));
    const bool isOwn = info.suffix() == QLatin1String("db") ||
                       info.fileName() == QFileInfo(FServer->RosterFile()).fileName();
    if (isOwn && QFileInfo(info.absolutePath()).canonicalFilePath() == folder.canonicalPath())
        throw ESqlError(QStringLiteral("备份文件不能放在服务器自己的文件处：%1").arg(file));
    return file;
}

void TSqliteDriver::BackupServerDatabase(const QString &name, const QString &backup)
{
    const QString target = BackupFile(backup);
    const auto database = OpenCopySource(FServer->FileOf(name), FTimeout);
    CheckDatabasePassword(*database, FPassword);
    const QString known = QFileInfo(database->FileName()).completeBaseName();
    CopyDatabaseTo(*database, target, [&](TSqliteDatabase &copy) { RecordBackupName(copy, known); });
}

void TSqliteDriver::RestoreServerDatabase(const QString &name, const QString &backup)
{
    const auto source = OpenCopySource(BackupFile(backup), FTimeout);
    const auto isMaster = [](const QString &database) {
        return database.compare(QLatin1String("master"), Qt::CaseInsensitive) == 0;
    };
    // "master" is no database of anyone's here: what is restored over it goes back to where it came from.
    const QString database = isMaster(name) ? BackupName(*source) : name;
    if (database.isEmpty() || isMaster(database))
        throw ESqlError(
            QStringLiteral("不能恢复到系统数据库 master，备份中也没有其他数据库的名称：%1").arg(backup));
    const QString file = FServer->FileOf(database);
    const QString copy = file + QStringLiteral("-restore");
    CheckReplaceable(file, FPassword);
    CopyDatabaseTo(*source, copy, [&](TSqliteDatabase &whole) {
        CheckCopy(whole, source->FileName());
        ForgetBackupName(whole);
    });
    try {
        FRoster->WhileClosed([&](const QList<TRosterEntry> &entries) {
            for (const TRosterEntry &entry : entries)
                if (entry.Database.compare(database, Qt::CaseInsensitive) == 0)
                    throw ESqlError(QStringLiteral("数据库正在使用中，不能恢复：%1").arg(database));
            ReplaceDatabaseFile(copy, file);
        });
    } catch (...) {
        QFile::remove(copy);
        throw;
    }
}

void TSqliteDriver::MakeMasterIfMissing()
{
    const QString file = FServer->FileOf(QStringLiteral("master"));
    FRoster->WhileClosed([&](const QList<TRosterEntry> &) {
        if (!QFileInfo::exists(file))
            CreateDatabaseFile(file, {});
    });
}

void TSqliteDriver::CreateServerDatabase(const QString &name)
{
    const QString file = FServer->FileOf(name);
    FRoster->WhileClosed([&](const QList<TRosterEntry> &) {
        if (QFileInfo::exists(file))
            throw ESqlError(QStringLiteral("数据库已经存在：%1").arg(name));
        CreateDatabaseFile(file, FPassword);
    });
}

void TSqliteDriver::DropServerDatabase(const QString &name)
{
    if (name.compare(QLatin1String("master"), Qt::CaseInsensitive) == 0)
        throw ESqlError(QStringLiteral("不能删除数据库：%1").arg(name));
    const QString file = FServer->FileOf(name);
    // A database with a password goes only to who knows it.
    CheckDatabasePassword(*OpenDatabaseFile(file, TSqliteOpen::ReadWrite, 0), FPassword);
    FRoster->WhileClosed([&](const QList<TRosterEntry> &entries) {
        for (const TRosterEntry &entry : entries)
            if (entry.Database.compare(name, Qt::CaseInsensitive) == 0)
                throw ESqlError(QStringLiteral("数据库正在使用中，不能删除：%1").arg(name));
        RemoveDatabaseFile(file);
    });
}

void TSqliteDriver::DropDatabase(const TConnectionString &connection)
{
    if (FDialect == TSqlDialect::MSSQL) {
        TConnectionString master = connection;
        master.SetValue(QStringLiteral("Initial Catalog"), QStringLiteral("master"));
        Connect(master, {});
        DropServerDatabase(connection.InitialCatalog());
        return Disconnect();
    }
    const QString file = connection.DataSource();
    TConnectionRoster roster(RosterFileOf(file));
    roster.Join({});
    roster.WhileClosed([&](const QList<TRosterEntry> &entries) {
        if (entries.size() > 1)
            throw ESqlError(QStringLiteral("数据库正在使用中，不能删除：%1").arg(file));
        RemoveDatabaseFile(file);
    });
}

} // namespace Korvane
