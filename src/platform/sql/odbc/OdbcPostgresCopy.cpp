// SPDX-License-Identifier: MIT
// Backup and restore of PostgreSQL databases by the server's own programs, pg_dump and pg_restore.
#include "platform/sql/dialect/SqlTokenizer.h"
#include "platform/sql/odbc/OdbcPostgres.h"
#include "platform/sql/odbc/OdbcServer.h"
#include "platform/sql/postgres/PostgresNames.h"
#include "platform/sql/postgres/PostgresTools.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QThread>
#include <QUuid>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

// How long a connection may take to go: as long as the server itself waits before it drops a database.
constexpr int LeavingTries = 50;
constexpr int LeavingPause = 100; ///< milliseconds
constexpr auto InUseState = "55006"_L1;

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

[[noreturn]] void FailFile(const QString &fileName)
{
    throw ESqlError(u"不能写入文件：%1（%2）"_s.arg(fileName, qt_error_string(errno)));
}

/// The file in which an archive is made, beside its place. It is locked, so that two backups to one
/// place do not mix, and goes with the object unless it was put there. What a killed process left
/// is used again.
class TArchiveFile
{
public:
    explicit TArchiveFile(const QString &place) : FPlace(QFileInfo(place).exists() ? Followed(place) : place)
    {
        do {
            FFile.setFileName(FPlace + u".part"_s);
            if (!FFile.open(QIODevice::ReadWrite))
                throw ESqlError(u"不能写入文件：%1（%2）"_s.arg(FFile.fileName(), FFile.errorString()));
            if (::flock(FFile.handle(), LOCK_EX | LOCK_NB) != 0)
                throw ESqlError(u"正在备份到同一文件，请稍后再试：%1"_s.arg(FFile.fileName()));
        } while (!IsStillThere());
    }
    ~TArchiveFile()
    {
        if (!FIsInPlace)
            ::unlink(QFile::encodeName(FFile.fileName()).constData()); // before the lock goes
    }
    TArchiveFile(const TArchiveFile &) = delete;
    TArchiveFile &operator=(const TArchiveFile &) = delete;

    QString FileName() const { return FFile.fileName(); }
    /// Brings it to disk, and in one step into its place.
    void PutInPlace()
    {
        if (::fsync(FFile.handle()) != 0)
            FailFile(FFile.fileName());
        if (std::rename(QFile::encodeName(FFile.fileName()).constData(),
                        QFile::encodeName(FPlace).constData()) != 0)
            FailFile(FPlace);
        FIsInPlace = true;
        const QString folder = QFileInfo(FPlace).absolutePath();
        const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
        ::fsync(descriptor);
        ::close(descriptor);
    }

private:
    static QString Followed(const QString &place)
    {
        const QFileInfo info(place);
        if (!info.isFile())
            throw ESqlError(u"不能写入文件：%1（不是普通文件）"_s.arg(place));
        return info.isSymLink() ? info.canonicalFilePath() : place;
    }
    /// False when the file went away between being opened and being locked.
    bool IsStillThere()
    {
        struct stat opened = {}, present = {};
        if (::fstat(FFile.handle(), &opened) == 0 &&
            ::stat(QFile::encodeName(FFile.fileName()).constData(), &present) == 0 &&
            opened.st_dev == present.st_dev && opened.st_ino == present.st_ino)
            return true;
        FFile.close();
        return false;
    }

    const QString FPlace;
    QFile FFile;
    bool FIsInPlace = false;
};

/// What an archive says of itself: of which database it was made. Raises ESqlError for what is none.
QString ArchivedDatabase(const QString &file)
{
    if (!QFileInfo::exists(file))
        throw ESqlError(u"找不到备份文件：%1"_s.arg(file));
    try {
        const QByteArray contents = RunPostgresTool(u"pg_restore"_s, {u"--list"_s, file});
        static const QRegularExpression line(u"^;\\s+dbname: (.+)$"_s, QRegularExpression::MultilineOption);
        return line.match(QString::fromUtf8(contents)).captured(1);
    } catch (const ESqlError &error) {
        throw ESqlError(u"不是有效的备份文件：%1（%2）"_s.arg(file, error.Message()));
    }
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
                FCall.Run(u"drop database if exists "_s + QuotedSqlName(FName));
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

void FillFromArchive(const TOdbcCopyCall &call, const QString &database, const QString &file)
{
    try {
        RunTool(call, u"pg_restore"_s, database,
                {u"--exit-on-error"_s, u"--no-owner"_s, u"--no-privileges"_s, file});
    } catch (const ESqlError &error) {
        throw ESqlError(u"备份文件不能恢复，可能已损坏：%1（%2）"_s.arg(file, error.Message()));
    }
}

[[noreturn]] void FailInUse(const QString &database)
{
    throw ESqlError(u"数据库正在使用中，不能恢复：%1"_s.arg(database));
}

/// NOTE: the server takes a moment to let go of a connection, which may have been the caller's own.
void CheckUnused(const TOdbcCopyCall &call, const QString &database)
{
    const QString users = u"select 1 from pg_catalog.pg_stat_activity where datname = "_s +
                          PostgresText(database) +
                          u" and coalesce(backend_type, '') <> 'autovacuum worker' limit 1"_s;
    for (int tries = 0; !Answer(call, users).isEmpty(); ++tries) {
        if (tries == LeavingTries)
            FailInUse(database);
        QThread::msleep(LeavingPause);
    }
}

} // namespace

void BackupPostgres(const TOdbcCopyCall &call)
{
    TArchiveFile part(PathOf(call.FileName));
    // Who changes a table holds the backup up, for as long as any statement waits for him.
    const QString patience = Answer(call, u"select pg_catalog.current_setting('lock_timeout')"_s);
    RunTool(call, u"pg_dump"_s, PostgresDatabaseName(call.Database),
            {u"--format=custom"_s, u"--no-owner"_s, u"--no-privileges"_s,
             u"--lock-wait-timeout="_s + patience, u"--file="_s + part.FileName()});
    part.PutInPlace();
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

    const QString ofDatabase = u" from pg_catalog.pg_database where datname = "_s + PostgresText(name);
    if (!Answer(call, u"select 1"_s + ofDatabase + u" and datistemplate"_s).isEmpty())
        throw ESqlError(u"不能恢复到模板数据库：%1"_s.arg(name));
    CheckUnused(call, name);

    TNewDatabase restored(call);
    FillFromArchive(call, restored.Name(), file);

    const bool isThere = !Answer(call, u"select 1"_s + ofDatabase).isEmpty();
    // When the database was made stands in its comment.
    const QString made =
        Answer(call, u"select pg_catalog.shobj_description(oid, 'pg_database')"_s + ofDatabase);
    // NOTE: the server takes a text of several statements as one transaction, so that either database has
    // the name at any moment. It refuses a database to which someone has come meanwhile.
    const QString old = restored.Name() + u"_old"_s;
    try {
        call.Run((isThere ? PostgresRenameSql(name, old) + u"; "_s : QString()) +
                 PostgresRenameSql(restored.Name(), name));
    } catch (const ESqlError &error) {
        if (error.Errors().value(0).SQLState != InUseState)
            throw;
        FailInUse(name);
    }
    restored.HasFoundPlace();
    if (!made.isEmpty())
        call.Run(u"comment on database "_s + QuotedSqlName(name) + u" is "_s + PostgresText(made));
    if (isThere)
        call.Run(u"drop database "_s + QuotedSqlName(old));
}

} // namespace Korvane
