// SPDX-License-Identifier: MIT
// The operations of TDBDFile that work on a database: creation and upgrade.
#include "design/DBDFile.h"

#include "general/Messages.h"
#include "platform/core/Prompts.h"
#include "platform/core/StringList.h"
#include "session/DBSession.h"

#include <QFile>

namespace Korvane {

QStringList TDBDFile::CreateScript(TDBType type, bool comments, bool boolAsChar, bool property)
{
    QStringList script;
    for (const TTablesObject &table : FTables.Rows()) {
        FDBDTable.SetTable(table.TableCode);
        script.append(FDBDTable.GetTableScript(type, comments, boolAsChar, property));
        script.append(QStringLiteral("go"));
        for (const auto &index : FDBDTable.Indexs()) {
            script.append(FDBDTable.GetIndexScript(type, *index));
            script.append(QStringLiteral("go"));
        }
        script.append(QString());
    }
    return script;
}

bool TDBDFile::CreateDB(TDBSession &session, bool boolAsChar)
{
    switch (session.DBType()) {
    case dbtAccess:
        return CreateAccessDB(session, boolAsChar, false);
    case dbtMSSQL:
        return CreateMSSQLDB(session, boolAsChar, false);
    }
    return false;
}

bool TDBDFile::CreateAccessDB(TDBSession &session, bool boolAsChar, bool property)
{
    if (QFile::exists(session.DBName())) {
        if (ShowDialog(QStringLiteral("数据库已经存在，是否覆盖现有的数据库？"), 0) == IDNO)
            throw Exception(QStringLiteral("创建数据库失败"));
        session.SetConnected(false); // or the session itself would be the one that uses it
        RemoveCatalog(AccessConnectionString(session.DBName(), {}, session.DBPassword()));
    }
    CreateCatalog(AccessConnectionString(session.DBName(), {}, session.DBPassword()));
    session.SetConnected(true);
    CreateTables(session, boolAsChar, property);
    session.SetConnected(false);
    return true;
}

bool TDBDFile::CreateMSSQLDB(TDBSession &session, bool boolAsChar, bool property)
{
    const QString name = session.DBName();
    session.SetDBName(QStringLiteral("master"));
    session.SetConnected(true);
    // The name goes in without doubling of quotes.
    const TDataPacket found =
        session.Open(QStringLiteral("select 1 from sysdatabases where name='") + name + QLatin1Char('\''));
    if (found.RowCount() > 0) {
        if (ShowDialog(QStringLiteral("数据库已经存在，是否覆盖现有的数据库?"), 0) == IDNO)
            throw Exception(QStringLiteral("创建数据库已被用户取消"));
        session.Execute(QStringLiteral("drop database [") + name + QLatin1Char(']'));
    }
    session.Execute(QStringLiteral("create database [") + name + QLatin1Char(']'));
    session.SetDBName(name);
    session.SetConnected(true);
    CreateTables(session, boolAsChar, property);
    session.SetConnected(false);
    return true;
}

void TDBDFile::CreateTables(TDBSession &session, bool boolAsChar, bool property)
{
    session.Execute(QStringLiteral(
        "create table Version(VerNo Integer not null,constraint PK_Version primary key(VerNo))"));
    session.Execute(QStringLiteral("insert into Version(VerNo) Values(%1)").arg(GetMaxChangeNo()));
    const TObjectList<TTablesObject> tables = GetTables();
    for (qsizetype i = 0; i < tables.size(); ++i) {
        OnProgressEvent(int(tables.size()), int(i) + 1);
        FDBDTable.SetTable(tables[i]->TableCode);
        session.Execute(FDBDTable.GetTableScript(session.DBType(), false, boolAsChar, property));
        for (const auto &index : FDBDTable.Indexs())
            session.Execute(FDBDTable.GetIndexScript(session.DBType(), *index));
    }
}

bool TDBDFile::UpgradeDB(TDBSession &session)
{
    switch (session.DBType()) {
    case dbtAccess:
        return UpgradeAccessDB(session);
    case dbtMSSQL:
        return UpgradeMSSQLDB(session);
    }
    return false;
}

bool TDBDFile::UpgradeAccessDB(TDBSession &session) { return Upgrade(session); }
bool TDBDFile::UpgradeMSSQLDB(TDBSession &session) { return Upgrade(session); }

bool TDBDFile::Upgrade(TDBSession &session)
{
    session.SetConnected(true);
    const int version = session.GetVersion();
    const int newest = GetMaxChangeNo();
    if (newest <= version) {
        session.SetConnected(false);
        ShowMsg(QStringLiteral("数据库已是最新版本，不需升级"));
        return false;
    }
    session.Execute(GetUpgradeSQL(session.DBType(), version, newest));
    session.SetVersion(newest);
    session.SetConnected(false);
    return true;
}

QStringList TDBDFile::GetUpgradeSQL(TDBType type, int from, int to) const
{
    QStringList script, lines;
    for (const TChangesObject &change : FChanges.Rows()) {
        if (change.ChangeNo <= from || change.ChangeNo > to)
            continue;
        if (type == dbtAccess)
            SetTextOf(lines, change.Access);
        else if (type == dbtMSSQL)
            SetTextOf(lines, change.MSSQL);
        script += lines;
    }
    return script;
}

} // namespace Korvane
