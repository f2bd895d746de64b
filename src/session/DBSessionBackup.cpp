// SPDX-License-Identifier: MIT
// Backup and restore: the part of TDBSession that copies whole databases.
#include "session/DBSession.h"

#include "general/Messages.h"
#include "platform/sql/DriverRegistry.h"

#include <QDir>
#include <QFile>

namespace Korvane {

namespace {

constexpr QLatin1Char CarriageReturn('\r');

/// The folder of a file's name with its last slash; empty for a name alone.
QString FolderOf(const QString &fileName)
{
    const QString path = QDir::fromNativeSeparators(fileName);
    return path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
}

} // namespace

bool TDBSession::BackupDB(const QString &fileName)
{
    const bool done = FDBType == dbtMSSQL ? BackupMSSQL(fileName) : BackupAccess(fileName);
    SetConnected(false);
    return done;
}

bool TDBSession::RestoreDB(const QString &fileName)
{
    const bool done = FDBType == dbtMSSQL ? RestoreMSSQL(fileName) : RestoreAccess(fileName);
    SetConnected(false);
    return done;
}

bool TDBSession::BackupAccess(const QString &fileName)
{
    try {
        std::unique_ptr<SqlDriver> own;
        if (!FConnection.Connected())
            own = CreateDriver(TConnectionString(AccessConnectionString(FDBName, FDBUser, FDBPassword)));
        (own ? *own : FConnection.Driver()).CopyDatabaseFile(FDBName, fileName, TCopyCheck::None);
    } catch (const Exception &) {
        ShowMsg(QStringLiteral("数据库备份失败") + CarriageReturn + FDBName + CarriageReturn + fileName);
        Abort();
    }
    return true;
}

bool TDBSession::BackupMSSQL(const QString &fileName)
{
    try {
        RunOnServer(QStringLiteral("backup database ") + FDBName + QStringLiteral(" to disk='") + fileName +
                    QLatin1Char('\''));
    } catch (const Exception &) {
        SetConnected(false);
        AbortWithError(QStringLiteral("数据库备份失败"));
    }
    return true;
}

bool TDBSession::RestoreAccess(const QString &fileName)
{
    AbortIfInUse();
    const QString copy = FolderOf(FDBName) + QStringLiteral("~template.mdb");
    try {
        FConnection.Driver().CopyDatabaseFile(fileName, copy, TCopyCheck::Whole);
    } catch (const Exception &) {
        ShowMsg(QStringLiteral("数据库恢复失败"));
        Abort();
    }
    SetConnected(false);
    try {
        const TConnectionString live(AccessConnectionString(FDBName, FDBUser, FDBPassword));
        CreateDriver(live)->ReplaceDatabase(live, copy);
    } catch (const Exception &) {
        // Not looked at, on purpose: the database is then as it was, and the copy goes.
    }
    QFile::remove(copy);
    return true;
}

bool TDBSession::RestoreMSSQL(const QString &fileName)
{
    AbortIfInUse();
    const QString name = FDBName;
    FDBName = QStringLiteral("master"); // a database is not restored over a connection to itself
    try {
        // The statement names "master" as well, on purpose.
        RunOnServer(QStringLiteral("restore database ") + FDBName + QStringLiteral(" from disk='") +
                    fileName + QLatin1Char('\''));
    } catch (const Exception &) {
        SetConnected(false);
        FDBName = name;
        AbortWithError(QStringLiteral("数据库恢复失败"));
    }
    return true;
}

void TDBSession::RunOnServer(const QString &statement)
{
    FConnection.ClearErrors(); // a failure before the connection is reached must not tell an old one
    SetConnected(true);
    FQuery.Close();
    FQuery.SetSQL({statement});
    FQuery.ExecSQL();
}

void TDBSession::AbortWithError(const QString &message)
{
    const QList<TSqlError> &errors = FConnection.Errors();
    if (errors.isEmpty())
        throw EListError(QStringLiteral("列表索引越界（0）"));
    ShowMsg(message + CarriageReturn + errors.first().Description);
    Abort();
}

void TDBSession::AbortIfInUse()
{
    if (GetOnlineUsers(FAppName) <= 0)
        return;
    ShowMsg(QStringLiteral("数据库正在使用中，请确保当前没有用户在使用"));
    Abort();
}

} // namespace Korvane
