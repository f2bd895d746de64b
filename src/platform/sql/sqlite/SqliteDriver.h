// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"
#include "platform/sql/dialect/SqlRewriter.h"
#include "platform/sql/sqlite/ConnectionRoster.h"
#include "platform/sql/sqlite/FolderServer.h"
#include "platform/sql/sqlite/SqliteRowFeed.h"
#include "platform/sql/sqlite/StatementCache.h"
#include "platform/sql/sqlite/StepKind.h"

namespace Korvane {

/// Whether prepared statements serve other statements that differ in their literals only.
enum class TStatementReuse { Off, On };

/// The embedded engine, for both dialects. In the Access dialect the data source is a
/// database file; in the MSSQL dialect it is a folder ("folder:PATH", see TFolderServer) and
/// the initial catalog names a database in it. What SQLite can and cannot do is told here and
/// in docs/dialects.md, and nowhere else.
///
/// Files are written through with every commit (write-ahead log, synchronous=FULL). A lock of
/// another user is waited for as long as the connect options say.
class TSqliteDriver : public SqlDriver
{
public:
    explicit TSqliteDriver(TSqlDialect dialect, TStatementReuse reuse = TStatementReuse::On);
    ~TSqliteDriver() override;

    bool HasFeature(TSqlFeature feature) const override;
    void Connect(const TConnectionString &connection, const TSqlConnectOptions &options) override;
    void Disconnect() override;
    bool IsConnected() const override { return FDatabase != nullptr; }
    qint64 Execute(const QString &statement, std::span<const TSqlParameter> parameters) override;
    TDataPacket Query(const QString &statement, std::span<const TSqlParameter> parameters) override;
    TFirstRows QueryFirst(const QString &statement, qsizetype rows) override;
    QVariant QueryValue(const QString &statement) override;
    void BeginTransaction() override;
    void CommitTransaction() override;
    void RollbackTransaction() override;
    bool InTransaction() const override;
    TDataPacket OpenSchema(TSchemaInfo schema, const QVariantList &restrictions,
                           const QString &schemaId) override;
    void CreateDatabase(const TConnectionString &connection) override;
    void DropDatabase(const TConnectionString &connection) override;
    void CopyDatabase(const QString &fileName) override;
    void CopyDatabaseFile(const QString &source, const QString &target, TCopyCheck check) override;
    /// In the Access dialect only; a folder's databases are put back by "restore database".
    void ReplaceDatabase(const TConnectionString &connection, const QString &copy) override;

    /// The session's number, as @@spid gives it; as on the server it stands for, users' numbers
    /// begin at 51.
    int SessionNumber() const { return FRoster ? FRoster->Number() + 50 : 0; }

private:
    void OpenFile(const QString &fileName, const TConnectionString &connection,
                  const TSqlConnectOptions &options);
    void JoinRoster(const QString &rosterFile, const TConnectionString &connection,
                    const QString &applicationName);
    void Configure();
    TSqliteDatabase &Database() const;
    /// Runs all steps and returns how many rows they changed; the rows of the last statement
    /// that gives some go to the packet.
    qint64 Run(const QString &statement, std::span<const TSqlParameter> parameters, TDataPacket *rows);
    qint64 RunReady(TPreparedForm &form, TDataPacket *rows);
    qint64 RunSteps(const TRewrittenStatement &rewritten, const QList<TStepKind> &kinds,
                    std::span<const TSqlParameter> parameters, TDataPacket *rows);
    /// The statement, if it is one whose rows can be read bit by bit; null otherwise.
    std::unique_ptr<TSqliteStatement> StatementToFeed(const QString &statement);
    /// Has all rows read that feeds have not read yet, so that what follows does not change them.
    void FinishFeeds();
    void RunServerCommand(const TRewrittenStatement &rewritten);
    void MakeMasterIfMissing();
    void CreateServerDatabase(const QString &name);
    void DropServerDatabase(const QString &name);
    void BackupServerDatabase(const QString &name, const QString &backup);
    void RestoreServerDatabase(const QString &name, const QString &backup);
    /// The path of a backup's file, which must not be one of the server's own files.
    QString BackupFile(const QString &name) const;
    void CheckCopy(TSqliteDatabase &copy, const QString &source) const;
    /// Raises ESqlError when the file is a whole database with another password.
    void CheckReplaceable(const QString &fileName, const QString &password) const;
    QString RosterFileOf(const QString &fileName) const;

    const TSqlDialect FDialect;
    const TStatementReuse FReuse;
    std::optional<TFolderServer> FServer; // MSSQL dialect only
    std::unique_ptr<TConnectionRoster> FRoster;
    QByteArray FMainName; // the engine keeps the pointer, so that it stands before the database
    std::unique_ptr<TSqliteDatabase> FDatabase;
    TStatementCache FStatements; // goes before the database
    std::vector<std::weak_ptr<TSqliteRowFeed>> FFeeds;
    QString FPassword;           // for databases made over this connection
    bool FReadOnly = false;
    int FTimeout = TSqlConnectOptions().CommandTimeout;
};

} // namespace Korvane
