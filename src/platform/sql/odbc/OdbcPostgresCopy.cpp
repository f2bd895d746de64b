// SPDX-License-Identifier: MIT
// Backup and restore of PostgreSQL databases by the server's own programs, pg_dump and pg_restore.
#include "platform/sql/odbc/OdbcPostgres.h"
#include "platform/sql/odbc/OdbcServer.h"
#include "platform/sql/postgres/PostgresTools.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QThread>
#include <QUuid>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

// How long a connection may take to go: as long as the server itself waits before it drops a database.
constexpr int LeavingTries = 50;
constexpr int LeavingPause = 100; ///< milliseconds

QString PathOf(const QString &name)
{
    const QFileInfo info(name);
    if (name.isEmpty() || info.isDir())
        throw ESqlError(u"没有指定备份文件：%1"_s.arg(name));
    return info.absoluteFilePath();
}

QByteArray RunTool(const TOdbcCopyCall &call, const QString &program, const QString &database,
                   const QStringList &arguments)
{
    const TPostgresLogin login{call.Target.Host, call.Target.Port, call.Target.User, call.Target.Password};
    return RunPostgresTool(program, PostgresToolArguments(login, database) + arguments, login.Password);
}

/// Puts a file that is on disk into the place of another one, in one step.
void PutInPlace(const QString &part, const QString &file)
{
    if (std::rename(QFile::encodeName(part).constData(), QFile::encodeName(file).constData()) != 0)
        throw ESqlError(u"不能写入文件：%1"_s.arg(file));
    const int folder = ::open(QFile::encodeName(QFileInfo(file).absolutePath()).constData(), O_RDONLY);
    ::fsync(folder);
    ::close(folder);
}

/// What an archive says of itself: of which database it was made. Raises ESqlError for what is none.
QString ArchivedDatabase(const QString &file)
{
    const QString contents = QString::fromUtf8(RunPostgresTool(u"pg_restore"_s, {u"--list"_s, file}));
    static const QRegularExpression line(u"^;\\s+dbname: (.+)$"_s, QRegularExpression::MultilineOption);
    return line.match(contents).captured(1);
}

/// A database on the way, which goes unless it has found its place.
class TNewDatabase
{
public:
    explicit TNewDatabase(const TOdbcCopyCall &call)
        : FCall(call), FName(u"korvane_restore_"_s + QUuid::createUuid().toString(QUuid::Id128))
    {
        for (const QString &statement : PostgresOverOdbc().CreateDatabaseSql(FName))
            FCall.Run(statement);
    }
    ~TNewDatabase()
    {
        try {
            if (!FHasPlace)
                FCall.Run(u"drop database if exists "_s + PostgresQuotedName(FName));
        } catch (const ESqlError &) {
            // The failure that led here is the one to tell.
        }
    }
    TNewDatabase(const TNewDatabase &) = delete;
    TNewDatabase &operator=(const TNewDatabase &) = delete;

    const QString &Name() const { return FName; }
    void HasFoundPlace() { FHasPlace = true; }

private:
    const TOdbcCopyCall &FCall;
    const QString FName;
    bool FHasPlace = false;
};

/// The server's answer to a question for one value.
QString Answer(const TOdbcCopyCall &call, const QString &question)
{
    const TDataPacket rows = call.Run(question);
    return rows.RowCount() > 0 ? rows.Text(0, 0) : QString();
}

/// NOTE: the server takes a moment to let go of a connection, which may have been the caller's own.
void CheckUnused(const TOdbcCopyCall &call, const QString &database)
{
    const QString users = u"select 1 from pg_catalog.pg_stat_activity where datname = "_s +
                          PostgresLiteral(database) + u" limit 1"_s;
    for (int tries = 0; !Answer(call, users).isEmpty(); ++tries) {
        if (tries == LeavingTries)
            throw ESqlError(u"数据库正在使用中，不能恢复：%1"_s.arg(database));
        QThread::msleep(LeavingPause);
    }
}

} // namespace

void BackupPostgres(const TOdbcCopyCall &call)
{
    const QString file = PathOf(call.FileName);
    const QString part = file + u".part"_s;
    const auto remove = qScopeGuard([&] { QFile::remove(part); });
    RunTool(call, u"pg_dump"_s, PostgresDatabaseName(call.Database),
            {u"--format=custom"_s, u"--no-owner"_s, u"--no-privileges"_s, u"--file="_s + part});
    PutInPlace(part, file); // pg_dump has brought it to disk
}

void RestorePostgres(const TOdbcCopyCall &call)
{
    const QString file = PathOf(call.FileName);
    const auto isMaster = [](const QString &name) { return PostgresDatabaseName(name) == "postgres"_L1; };
    const QString archived = ArchivedDatabase(file);
    // "master" is no database of anyone's here: what is restored over it goes back to where it came from.
    const QString name = isMaster(call.Database) ? archived : call.Database;
    if (name.isEmpty() || isMaster(name))
        throw ESqlError(u"不能恢复到系统数据库 master，备份中也没有其他数据库的名称：%1"_s.arg(file));

    CheckUnused(call, name);

    TNewDatabase restored(call);
    RunTool(call, u"pg_restore"_s, restored.Name(),
            {u"--exit-on-error"_s, u"--single-transaction"_s, u"--no-owner"_s, u"--no-privileges"_s, file});

    const QString ofDatabase = u" from pg_catalog.pg_database where datname = "_s + PostgresLiteral(name);
    const bool isThere = !Answer(call, u"select 1"_s + ofDatabase).isEmpty();
    // When the database was made stands in its comment.
    const QString made =
        Answer(call, u"select pg_catalog.shobj_description(oid, 'pg_database')"_s + ofDatabase);
    // NOTE: the server takes a text of several statements as one transaction, so that either database has
    // the name at any moment. It refuses a database to which someone has come meanwhile.
    const QString old = restored.Name() + u"_old"_s;
    call.Run((isThere ? PostgresRenameSql(name, old) + u"; "_s : QString()) +
             PostgresRenameSql(restored.Name(), name));
    restored.HasFoundPlace();
    if (!made.isEmpty())
        call.Run(u"comment on database "_s + PostgresQuotedName(name) + u" is "_s + PostgresLiteral(made));
    if (isThere)
        call.Run(u"drop database "_s + PostgresQuotedName(old));
}

} // namespace Korvane
