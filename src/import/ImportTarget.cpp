// SPDX-License-Identifier: MIT
#include "import/ImportTarget.h"

#include "design/DBDFile.h"
#include "general/Messages.h"
#include "platform/core/Prompts.h"
#include "platform/sql/sqlite/ConnectionRoster.h"
#include "platform/sql/sqlite/DatabaseCopy.h"
#include "platform/sql/sqlite/DatabaseFile.h"
#include "platform/sql/sqlite/FolderServer.h"
#include "platform/sql/sqlite/SqliteMetadata.h"
#include "session/DBSession.h"

#include <QFile>

namespace Korvane {

namespace {

constexpr auto PartSuffix = "_import";

bool IsSameDatabase(const QString &left, const QString &right)
{
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

/// A server lets a database with a password go only to who knows it.
void CheckPassword(const QString &fileName, const QString &password)
{
    if (QFile::exists(fileName))
        CheckDatabasePassword(*OpenDatabaseFile(fileName, TSqliteOpen::ReadWrite, 0), password);
}

} // namespace

TImportTarget::TImportTarget(TDBSession &session)
    : FSession(session), FName(session.DBName()),
      FKind(session.DBType() == dbtAccess                  ? TKind::File
            : TFolderServer::IsAddress(session.DBServer()) ? TKind::Folder
                                                           : TKind::Server),
      FPart(FKind == TKind::Server ? FName : FName + QLatin1String(PartSuffix))
{
    FSession.SetConnected(false);
}

TImportTarget::~TImportTarget()
{
    try {
        RemoveUnfinished();
    } catch (const Exception &) {
        // What failed before is what the user has to know.
    }
    FSession.SetDBName(FName);
}

QString TImportTarget::FileOf(const QString &name) const
{
    return FKind == TKind::File ? name : TFolderServer(FSession.DBServer()).FileOf(name);
}

// The questions and refusals are those of TDBDFile::CreateDB, which does not see the name.
void TImportTarget::AskToOverwrite() const
{
    if (!QFile::exists(FileOf(FName)))
        return;
    const bool isFile = FKind == TKind::File;
    const int answer = ShowDialog(isFile ? QStringLiteral("数据库已经存在，是否覆盖现有的数据库？")
                                         : QStringLiteral("数据库已经存在，是否覆盖现有的数据库?"),
                                  0);
    if (answer == IDNO)
        throw Exception(isFile ? QStringLiteral("创建数据库失败") : QStringLiteral("创建数据库已被用户取消"));
}

/// Runs an action on the file of a database while nobody uses it or can begin to.
template <typename Action> void TImportTarget::WhileUnused(const QString &name, Action action) const
{
    const QString file = FileOf(name);
    TConnectionRoster roster(FKind == TKind::File ? file + QStringLiteral("-roster")
                                                  : TFolderServer(FSession.DBServer()).RosterFile());
    roster.Join({});
    roster.WhileClosed([&](const QList<TRosterEntry> &entries) {
        for (const TRosterEntry &entry : entries)
            if (entry.Number != roster.Number() &&
                (FKind == TKind::File || IsSameDatabase(entry.Database, name)))
                throw Exception(QStringLiteral("数据库正在使用中，不能覆盖：%1").arg(name));
        action(file);
    });
}

void TImportTarget::Create(TDBDFile &design, bool boolAsChar)
{
    if (FKind == TKind::Server) {
        // NOTE: creation sets the name back when the database is there, and not when the user
        // refuses to have it overwritten.
        FIsUnfinished = true;
        design.CreateDB(FSession, boolAsChar);
        FSession.SetConnected(true);
        return;
    }
    AskToOverwrite();
    WhileUnused(FPart, [](const QString &file) { RemoveDatabaseFile(file); }); // of a killed import
    FIsUnfinished = true;
    FSession.SetDBName(FPart);
    design.CreateDB(FSession, boolAsChar);
    FSession.SetConnected(true);
}

void TImportTarget::Finish()
{
    FSession.SetConnected(false);
    if (FKind != TKind::Server) {
        const QString part = FileOf(FPart);
        WhileUnused(FName, [&](const QString &file) {
            if (FKind == TKind::Folder)
                CheckPassword(file, FSession.DBPassword());
            ReplaceDatabaseFile(part, file);
        });
    }
    FIsUnfinished = false;
}

void TImportTarget::RemoveUnfinished()
{
    if (!FIsUnfinished)
        return;
    FIsUnfinished = false;
    const bool isMade = IsSameDatabase(FSession.DBName(), FPart);
    FSession.SetConnected(false);
    if (FKind != TKind::Server)
        WhileUnused(FPart, [](const QString &file) { RemoveDatabaseFile(file); });
    else if (isMade)
        RemoveFromServer();
}

void TImportTarget::RemoveFromServer()
{
    FSession.SetDBName(QStringLiteral("master"));
    FSession.SetConnected(true);
    FSession.Execute(QStringLiteral("drop database [%1]").arg(FName));
    FSession.SetConnected(false);
}

} // namespace Korvane
