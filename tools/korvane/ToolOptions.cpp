// SPDX-License-Identifier: MIT
#include "ToolOptions.h"

#include "design/DBDFile.h"
#include "platform/core/StringList.h"
#include "platform/core/Text.h"
#include "session/DBSession.h"

namespace Korvane {

namespace {

QString Required(const TCommandLine &line, const QString &option)
{
    const QString value = line.Value(option);
    if (value.isEmpty())
        throw EUsageError(QStringLiteral("缺少选项 --") + option);
    return value;
}

/// The first line of the password file, or the password itself.
QString Password(const TCommandLine &line)
{
    if (!line.Has(QStringLiteral("password-file")))
        return line.Value(QStringLiteral("password"));
    if (line.Has(QStringLiteral("password")))
        throw EUsageError(QStringLiteral("选项 --password 和 --password-file 只能用一个"));
    return LoadLines(line.Value(QStringLiteral("password-file"))).value(0);
}

} // namespace

QList<TOption> DesignOptions()
{
    return {{QStringLiteral("design"), QStringLiteral("FILE"), QStringLiteral("设计文件，代替参数 DESIGN")}};
}

QList<TOption> DialectOptions()
{
    return {{QStringLiteral("dialect"), QStringLiteral("NAME"),
             QStringLiteral("SQL 方言：access（默认）或 mssql")}};
}

QList<TOption> SessionOptions()
{
    return DialectOptions() +
           QList<TOption>{
               {QStringLiteral("server"), QStringLiteral("NAME"),
                QStringLiteral("服务器，mssql 方言必需，例如 folder:DIR")},
               {QStringLiteral("database"), QStringLiteral("NAME"),
                QStringLiteral("数据库：access 方言为文件名，mssql 方言为数据库名")},
               {QStringLiteral("user"), QStringLiteral("NAME"),
                QStringLiteral("数据库用户，默认为 Admin（access）或 sa（mssql）")},
               {QStringLiteral("password"), QStringLiteral("TEXT"), QStringLiteral("数据库密码")},
               {QStringLiteral("password-file"), QStringLiteral("FILE"),
                QStringLiteral("密码为该文件的第一行")},
               {QStringLiteral("app-name"), QStringLiteral("NAME"),
                QStringLiteral("登记在服务器上的程序名，默认为 korvane")},
           };
}

QString DesignFileName(TCommandLine &line)
{
    const QString option = QStringLiteral("design");
    return line.Has(option) ? Required(line, option) : line.Take(QStringLiteral("DESIGN"));
}

void OpenDesign(TDBDFile &design, const QString &fileName)
{
    design.SetFileName(fileName);
    design.SetActived(true);
}

TDBType Dialect(const TCommandLine &line)
{
    const QString option = QStringLiteral("dialect");
    const QString name = line.Value(option);
    if (!line.Has(option) || SameText(name, QStringLiteral("access")))
        return dbtAccess;
    if (SameText(name, QStringLiteral("mssql")))
        return dbtMSSQL;
    throw EUsageError(QStringLiteral("未知的方言 %1，应为 access 或 mssql").arg(name));
}

void AimSession(TDBSession &session, const TCommandLine &line)
{
    session.SetDBType(Dialect(line));
    if (session.DBType() == dbtMSSQL)
        session.SetDBServer(Required(line, QStringLiteral("server")));
    session.SetDBName(Required(line, QStringLiteral("database")));
    if (line.Has(QStringLiteral("user")))
        session.SetDBUser(line.Value(QStringLiteral("user")));
    session.SetDBPassword(Password(line));
    session.SetAppName(line.Has(QStringLiteral("app-name")) ? line.Value(QStringLiteral("app-name"))
                                                            : QStringLiteral("korvane"));
}

} // namespace Korvane
