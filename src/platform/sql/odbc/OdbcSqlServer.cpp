// SPDX-License-Identifier: MIT
// Microsoft SQL Server, by its vendor's ODBC driver or by FreeTDS. The MSSQL dialect is the
// server's own language: statements go through as they are.
#include "platform/sql/odbc/OdbcServer.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

constexpr auto TablesText = R"(
select cast(name as nvarchar(128)) as TABLE_NAME,
  cast(case xtype when 'U' then 'TABLE' when 'V' then 'VIEW' else 'SYSTEM TABLE' end as nvarchar(20)) as TABLE_TYPE,
  crdate as DATE_CREATED
from sysobjects where xtype in ('U', 'V', 'S') order by name)";

constexpr auto ColumnsText = R"(
select cast(TABLE_NAME as nvarchar(128)) as TABLE_NAME, cast(COLUMN_NAME as nvarchar(128)) as COLUMN_NAME,
  cast(ORDINAL_POSITION as int) as ORDINAL_POSITION,
  cast(DATA_TYPE + case
    when DATA_TYPE in ('char', 'varchar', 'nchar', 'nvarchar', 'binary', 'varbinary') then
      '(' + case CHARACTER_MAXIMUM_LENGTH when -1 then 'max' else cast(CHARACTER_MAXIMUM_LENGTH as varchar(10)) end + ')'
    when DATA_TYPE in ('decimal', 'numeric') then
      '(' + cast(NUMERIC_PRECISION as varchar(4)) + ',' + cast(NUMERIC_SCALE as varchar(4)) + ')'
    else '' end as nvarchar(60)) as DATA_TYPE,
  cast(case when CHARACTER_MAXIMUM_LENGTH > 0 then CHARACTER_MAXIMUM_LENGTH end as int) as CHARACTER_MAXIMUM_LENGTH,
  cast(left(IS_NULLABLE, 1) as nvarchar(1)) as IS_NULLABLE,
  cast(COLUMN_DEFAULT as nvarchar(255)) as COLUMN_DEFAULT
from INFORMATION_SCHEMA.COLUMNS order by TABLE_NAME, ORDINAL_POSITION)";

constexpr auto IndexesText = R"(
select cast(t.name as nvarchar(128)) as TABLE_NAME, cast(i.name as nvarchar(128)) as INDEX_NAME,
  cast(c.name as nvarchar(128)) as COLUMN_NAME, cast(k.key_ordinal as int) as ORDINAL_POSITION,
  cast(case i.is_unique when 1 then 'Y' else 'N' end as nvarchar(1)) as [UNIQUE],
  cast(case i.is_primary_key when 1 then 'Y' else 'N' end as nvarchar(1)) as [PRIMARY_KEY]
from sys.indexes i join sys.tables t on t.object_id = i.object_id
  join sys.index_columns k on k.object_id = i.object_id and k.index_id = i.index_id
  join sys.columns c on c.object_id = i.object_id and c.column_id = k.column_id
where i.type in (1, 2) and k.key_ordinal > 0 order by t.name, i.name, k.key_ordinal)";

constexpr auto UsersText = R"(
select cast(rtrim(hostname) as nvarchar(128)) as COMPUTER_NAME, cast(rtrim(loginame) as nvarchar(128)) as LOGIN_NAME,
  login_time as CONNECTED, cast(rtrim(program_name) as nvarchar(128)) as APPLICATION_NAME,
  cast(spid as bigint) as PROCESS_ID
from master..sysprocesses where spid > 50 and dbid = db_id() order by spid)";

/// "host", "host,port" and "host\instance"; "." and "(local)" are this machine.
TOdbcTarget ReadAddress(const QString &dataSource)
{
    static const QRegularExpression form(
        u"^(?:tcp:)?([^\\s,\\\\;{}]+)(?:\\\\([^\\s,\\\\;{}]+))?(?:\\s*,\\s*(\\d{1,5}))?$"_s,
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(dataSource);
    TOdbcTarget target;
    target.Host = match.captured(1);
    target.Instance = match.captured(2);
    target.Port = match.captured(3).toInt();
    const bool badPort = match.hasCaptured(3) && (target.Port < 1 || target.Port > 65535);
    if (!match.hasMatch() || badPort)
        throw ESqlError(u"服务器地址不正确，应为 主机、主机,端口 或 主机\\实例：%1"_s.arg(dataSource));
    if (target.Host == "."_L1 || target.Host.compare("(local)"_L1, Qt::CaseInsensitive) == 0)
        target.Host = u"localhost"_s;
    return target;
}

QString Login(const TOdbcTarget &target)
{
    QString parts = u"Database=%1;UID=%2;PWD=%3"_s.arg(OdbcBraced(target.Database), OdbcBraced(target.User),
                                                       OdbcBraced(target.Password));
    if (!target.ApplicationName.isEmpty())
        parts += u";APP="_s + OdbcBraced(target.ApplicationName);
    return parts;
}

QString HostAndInstance(const TOdbcTarget &target)
{
    return target.Instance.isEmpty() ? target.Host : target.Host + u'\\' + target.Instance;
}

/// A port that is told makes the name of the instance needless.
QString VendorParts(const TOdbcTarget &target)
{
    const QString server =
        target.Port > 0 ? target.Host + u',' + QString::number(target.Port) : HostAndInstance(target);
    return u"Server="_s + server + u";TrustServerCertificate=yes;"_s + Login(target);
}

QString FreeTdsParts(const TOdbcTarget &target)
{
    QString server = u"Server="_s;
    if (target.Port > 0)
        server += target.Host + u";Port="_s + QString::number(target.Port);
    else if (target.Instance.isEmpty())
        server += target.Host + u";Port=1433"_s;
    else
        server += HostAndInstance(target);
    return server + u";ClientCharset=UTF-8;"_s + Login(target);
}

QString AsItIs(const QString &name) { return name; }

QString SessionSql(const TOdbcTarget &, const TSqlConnectOptions &options)
{
    return u"set lock_timeout "_s + QString::number(qint64(options.CommandTimeout) * 1000);
}

/// The server knows no session that cannot write.
bool IsReadOnly(const TSqlConnectOptions &) { return false; }

TOdbcBatch Unchanged(const QString &statement)
{
    TOdbcBatch batch;
    batch.Steps.append({statement, TOdbcStepKind::Any, false});
    return batch;
}

QString Bracketed(QString name) { return u'[' + name.replace(u']', "]]"_L1) + u']'; }
QStringList CreateDatabaseSql(const QString &name) { return {u"create database "_s + Bracketed(name)}; }
QStringList DropDatabaseSql(const QString &name) { return {u"drop database "_s + Bracketed(name)}; }

} // namespace

const TOdbcServer &SqlServerOverOdbc()
{
    static const TOdbcServer server{
        .Title = u"SQL Server"_s,
        .Package = u"tdsodbc"_s,
        .Drivers = {{u"ODBC Driver \\d+ for SQL Server"_s, {}, VendorParts},
                    {u"FreeTDS.*"_s, u"libtdsodbc.so"_s, FreeTdsParts}},
        .ServerDatabase = u"master"_s,
        .ReadAddress = ReadAddress,
        .DatabaseName = AsItIs,
        .SessionSql = SessionSql,
        .IsReadOnly = IsReadOnly,
        .Rewrite = Unchanged,
        .CreateDatabaseSql = CreateDatabaseSql,
        .DropDatabaseSql = DropDatabaseSql,
        .TablesSql = TablesText,
        .ColumnsSql = ColumnsText,
        .IndexesSql = IndexesText,
        .UsersSql = UsersText,
    };
    return server;
}

} // namespace Korvane
