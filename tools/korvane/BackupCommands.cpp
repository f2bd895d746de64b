// SPDX-License-Identifier: MIT
// The commands that copy a whole database to a file and bring it back. They go to the driver and the
// server themselves, so that what fails is told with its reason.
#include "Commands.h"
#include "ToolOptions.h"

#include "general/Messages.h"
#include "platform/core/Prompts.h"
#include "platform/core/Text.h"
#include "platform/sql/DriverRegistry.h"
#include "session/DBSession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Korvane {

namespace {

/// What a command line names: a database, in a session that is not connected, and a backup's file.
struct TBackupCall
{
    explicit TBackupCall(TCommandLine &line)
    {
        AimSession(Session, line);
        FileName = line.Take(QStringLiteral("FILE"));
        line.CheckEnd();
        // A real server has its own files; the others work in this machine's.
        IsLocal = Session.DBType() == dbtAccess ||
                  Session.DBServer().startsWith(QLatin1String("folder:"), Qt::CaseInsensitive) ||
                  Session.DBServer().startsWith(QLatin1String("postgresql:"), Qt::CaseInsensitive);
    }

    TConnectionString Connection() const
    {
        return TConnectionString(
            AccessConnectionString(Session.DBName(), Session.DBUser(), Session.DBPassword()));
    }
    /// Has the server run a statement of the form "… database [x] … disk='f'".
    void RunOnServer(const QString &statement, const QString &database)
    {
        const QString file = IsLocal ? QFileInfo(FileName).absoluteFilePath() : FileName;
        QString name = database;
        name.replace(QLatin1Char(']'), QLatin1String("]]"));
        Session.SetDBName(QStringLiteral("master")); // nobody stands in the way of what he asks for
        Session.SetConnected(true);
        Session.Execute(statement.arg(QLatin1Char('[') + name + QLatin1Char(']'), QuotedStr(file)));
    }

    TDBSession Session;
    QString FileName;
    bool IsLocal = false;
};

bool IsRefused(const QString &question, const QString &refusal, TToolStreams &streams)
{
    if (ShowDialog(question, 0) != IDNO)
        return false;
    streams.Err << refusal << '\n';
    return true;
}

void BackUpFile(const TBackupCall &call)
{
    const TConnectionString connection = call.Connection();
    const auto driver = CreateDriver(connection);
    TSqlConnectOptions options;
    options.ApplicationName = call.Session.AppName();
    driver->Connect(connection, options); // a database with a password goes only to who knows it
    driver->CopyDatabase(call.FileName);
}

void RestoreFile(const TBackupCall &call)
{
    const TConnectionString connection = call.Connection();
    const auto driver = CreateDriver(connection);
    const QString copy =
        QFileInfo(call.Session.DBName()).absoluteDir().filePath(QStringLiteral("~template.mdb"));
    driver->CopyDatabaseFile(call.FileName, copy, TCopyCheck::Whole);
    try {
        driver->ReplaceDatabase(connection, copy);
    } catch (...) {
        QFile::remove(copy);
        throw;
    }
}

} // namespace

int RunBackup(TCommandLine &line, TToolStreams &streams)
{
    TBackupCall call(line);
    const QString database = call.Session.DBName();
    if (call.IsLocal && QFile::exists(call.FileName) &&
        IsRefused(QStringLiteral("备份文件已经存在，是否覆盖？"), QStringLiteral("没有备份数据库"), streams))
        return tsFailed;
    if (call.Session.DBType() == dbtAccess)
        BackUpFile(call);
    else
        call.RunOnServer(QStringLiteral("backup database %1 to disk=%2"), database);
    streams.Out << QStringLiteral("已把数据库 %1 备份到 %2\n").arg(database, call.FileName);
    return tsDone;
}

int RunRestore(TCommandLine &line, TToolStreams &streams)
{
    TBackupCall call(line);
    const QString database = call.Session.DBName();
    const bool isNew = call.Session.DBType() == dbtAccess && !QFile::exists(database);
    if (!isNew && IsRefused(QStringLiteral("是否用备份替换数据库 %1？其现有的内容将会丢失。").arg(database),
                            QStringLiteral("没有恢复数据库"), streams))
        return tsFailed;
    if (call.Session.DBType() == dbtAccess)
        RestoreFile(call);
    else
        call.RunOnServer(QStringLiteral("restore database %1 from disk=%2"), database);
    streams.Out << QStringLiteral("已从 %2 恢复数据库 %1\n").arg(database, call.FileName);
    return tsDone;
}

} // namespace Korvane
