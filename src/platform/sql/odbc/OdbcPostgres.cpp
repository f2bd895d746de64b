// SPDX-License-Identifier: MIT
// PostgreSQL by psqlodbc.
#include "platform/sql/odbc/OdbcPostgres.h"

#include "platform/sql/dialect/SqlTokenizer.h"
#include "platform/sql/odbc/OdbcServer.h"
#include "platform/sql/postgres/PostgresCatalog.h"
#include "platform/sql/postgres/PostgresNames.h"
#include "platform/sql/postgres/PostgresRewriter.h"
#include "platform/sql/postgres/PostgresSetup.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

constexpr int ApplicationNameLength = 63; ///< NAMEDATALEN - 1

constexpr TOdbcSentence Sentences[] = {
    {"23505"_L1, "主键或唯一索引的值重复，记录已存在"},
    {"23502"_L1, "不可为空的字段没有值"},
    {"23503"_L1, "相关联的记录不存在，或仍被引用"},
    {"23514"_L1, "字段的值不符合约束"},
    {"22001"_L1, "数据过长，超出字段的长度"},
    {"40P01"_L1, "与其他用户互相等待，请稍后再试"},
    {"55P03"_L1, "数据库正被其他用户锁定，请稍后再试"},
    {"55006"_L1, "数据库正在使用中，不能删除"},
    {"42P04"_L1, "数据库已经存在"},
    {"3D000"_L1, "找不到数据库"},
    {"25006"_L1, "数据库是只读的，不能写入"},
    {"42501"_L1, "没有权限"},
    {"53100"_L1, "磁盘空间已满，不能写入数据库"},
};

/// What of the schemas a user has made: not the server's, nor the functions of the library.
constexpr auto TablesText = R"(
select c.relname::varchar(128) as "TABLE_NAME",
  (case when c.relkind in ('v', 'm') then 'VIEW' else 'TABLE' end)::varchar(20) as "TABLE_TYPE",
  null::timestamp as "DATE_CREATED"
from pg_catalog.pg_class c join pg_catalog.pg_namespace n on n.oid = c.relnamespace
where c.relkind in ('r', 'p', 'f', 'v', 'm') and n.nspname not in ('pg_catalog', 'information_schema', 'korvane')
  and n.nspname !~ '^pg_(toast|temp)'
order by c.relname)";

constexpr auto ColumnsText = R"(
select c.relname::varchar(128) as "TABLE_NAME", a.attname::varchar(128) as "COLUMN_NAME",
  (row_number() over (partition by c.oid order by a.attnum))::int as "ORDINAL_POSITION",
  replace(replace(replace(pg_catalog.format_type(a.atttypid, a.atttypmod), 'character varying', 'varchar'),
    'character', 'char'), 'integer', 'int')::varchar(60) as "DATA_TYPE",
  (case when a.atttypid in ('bpchar'::regtype, 'varchar'::regtype) and a.atttypmod > 4
    then a.atttypmod - 4 end)::int as "CHARACTER_MAXIMUM_LENGTH",
  (case when a.attnotnull then 'N' else 'Y' end)::varchar(1) as "IS_NULLABLE",
  left(pg_catalog.pg_get_expr(d.adbin, d.adrelid), 255)::varchar(255) as "COLUMN_DEFAULT"
from pg_catalog.pg_class c join pg_catalog.pg_namespace n on n.oid = c.relnamespace
  join pg_catalog.pg_attribute a on a.attrelid = c.oid and a.attnum > 0 and not a.attisdropped
  left join pg_catalog.pg_attrdef d on d.adrelid = c.oid and d.adnum = a.attnum
where c.relkind in ('r', 'p', 'f', 'v', 'm') and n.nspname not in ('pg_catalog', 'information_schema', 'korvane')
  and n.nspname !~ '^pg_(toast|temp)'
order by c.relname, a.attnum)";

constexpr auto IndexesText = R"(
select t.relname::varchar(128) as "TABLE_NAME",
  (case when left(i.relname, length(t.relname) + 1) = t.relname || '.'
    then substr(i.relname, length(t.relname) + 2) else i.relname end)::varchar(128) as "INDEX_NAME",
  a.attname::varchar(128) as "COLUMN_NAME", k.place::int as "ORDINAL_POSITION",
  (case when x.indisunique then 'Y' else 'N' end)::varchar(1) as "UNIQUE",
  (case when x.indisprimary then 'Y' else 'N' end)::varchar(1) as "PRIMARY_KEY"
from pg_catalog.pg_index x join pg_catalog.pg_class t on t.oid = x.indrelid
  join pg_catalog.pg_class i on i.oid = x.indexrelid
  join pg_catalog.pg_namespace n on n.oid = t.relnamespace
  cross join unnest(x.indkey) with ordinality k(attnum, place)
  join pg_catalog.pg_attribute a on a.attrelid = t.oid and a.attnum = k.attnum
where k.place <= x.indnkeyatts and n.nspname not in ('pg_catalog', 'information_schema', 'korvane')
  and n.nspname !~ '^pg_(toast|temp)'
order by t.relname, 2, k.place)";

const char *UsersText()
{
    static const QByteArray text =
        R"(
select coalesce(client_hostname, host(client_addr), '')::varchar(128) as "COMPUTER_NAME",
  usename::varchar(128) as "LOGIN_NAME", backend_start::timestamp as "CONNECTED",
  )" + PostgresProgramName().toUtf8() +
        R"(::varchar(128) as "APPLICATION_NAME", pid::bigint as "PROCESS_ID"
from pg_catalog.pg_stat_activity where datname = current_database() and backend_type = 'client backend'
order by pid)";
    return text.constData();
}

TOdbcTarget ReadAddress(const QString &dataSource)
{
    const TPostgresAddress address = PostgresAddressOf(dataSource);
    TOdbcTarget target;
    target.Host = address.Host;
    target.Port = address.Port;
    return target;
}

/// A value that psqlodbc takes as it stands: it knows braces round the password alone.
QString Plain(const QString &value)
{
    if (value.contains(u';') || value.startsWith(u'{'))
        throw ESqlError(u"数据库名称和用户名不能含有此符号：%1"_s.arg(value));
    return value;
}

/// NOTE: "-2" undoes a failed statement of a transaction alone, and not the transaction; the
/// sizes are those that TOdbcReader takes for unlimited.
QString Parts(const TOdbcTarget &target)
{
    return u"Server=%1;Port=%2;Database=%3;UID=%4;PWD=%5;"_s.arg(target.Host, QString::number(target.Port),
                                                                 Plain(target.Database), Plain(target.User),
                                                                 OdbcBraced(target.Password)) +
           u"SSLmode=prefer;Protocol=7.4-2;BoolsAsChar=0;UnknownSizes=1;MaxVarcharSize=8190;"
           "MaxLongVarcharSize=8190;ByteaAsLongVarBinary=1;UseServerSidePrepare=0;UseDeclareFetch=0;"
           "UpdatableCursors=0;LFConversion=0"_s;
}

bool IsReadOnly(const TSqlConnectOptions &options) { return options.Mode == cmRead; }

QString SessionSql(const TOdbcTarget &target, const TSqlConnectOptions &options)
{
    QString sql = QString::fromUtf8(PostgresSessionSql()).trimmed();
    if (!sql.isEmpty() && !sql.endsWith(u';'))
        sql += u';';
    // NOTE: floats are sent as digits; fewer would lose some of a float's bits.
    sql += u"set extra_float_digits = 1; set application_name = "_s +
           PostgresText(PostgresApplicationName(target.ApplicationName));
    // NOTE: 0 would wait for ever.
    const int timeout = options.CommandTimeout;
    sql +=
        u"; set lock_timeout = "_s + PostgresText(timeout > 0 ? QString::number(timeout) + u's' : u"1ms"_s);
    if (IsReadOnly(options))
        sql += u"; set default_transaction_read_only = on"_s;
    return sql;
}

TOdbcStepKind KindOf(TPostgresStepKind kind)
{
    switch (kind) {
    case TPostgresStepKind::Selects:
        return TOdbcStepKind::Selects;
    case TPostgresStepKind::ChangesRows:
        return TOdbcStepKind::ChangesRows;
    case TPostgresStepKind::Defines:
        return TOdbcStepKind::Defines;
    case TPostgresStepKind::Begins:
        return TOdbcStepKind::Begins;
    case TPostgresStepKind::Commits:
        return TOdbcStepKind::Commits;
    case TPostgresStepKind::RollsBack:
        return TOdbcStepKind::RollsBack;
    }
    return TOdbcStepKind::Any;
}

TOdbcBatch Rewrite(const QString &statement)
{
    const TPostgresStatement rewritten = RewriteForPostgres(statement);
    TOdbcBatch batch;
    for (const TPostgresStep &step : rewritten.Steps)
        batch.Steps.append({QString::fromUtf8(step.Sql), KindOf(step.Kind), step.ReadsRowCount});
    batch.WrittenNames = rewritten.WrittenNames;
    batch.Command = rewritten.Command;
    batch.CommandDatabase = rewritten.CommandDatabase;
    batch.CommandFile = rewritten.CommandFile;
    return batch;
}

QString IsPreparedSql() { return QString::fromUtf8(PostgresIsPreparedSql()); }
QString PrepareSql() { return QString::fromUtf8(PostgresPrepareSql()); }
QString RowCount(qint64 count) { return QString::fromUtf8(RowCountSql(count)); }

/// NOTE: the comment keeps when the database was made, which the server itself does not.
QStringList CreateDatabaseSql(const QString &name)
{
    const QString kept = PostgresDatabaseName(name);
    return {u"create database "_s + QuotedSqlName(kept) +
                u" template template0 encoding 'UTF8' lc_collate 'C' lc_ctype 'C'"_s,
            u"do "_s +
                PostgresText(u"begin execute format('comment on database %I is %L', "_s + PostgresText(kept) +
                             u", to_char(localtimestamp, 'YYYY-MM-DD HH24:MI:SS')); end"_s)};
}

QStringList DropDatabaseSql(const QString &name)
{
    return {u"drop database "_s + QuotedSqlName(PostgresDatabaseName(name))};
}

} // namespace

QString PostgresDatabaseName(const QString &name)
{
    CheckPostgresName(name);
    return name.compare("master"_L1, Qt::CaseInsensitive) == 0 ? u"postgres"_s : name;
}

QString PostgresRenameSql(const QString &from, const QString &to)
{
    return u"alter database "_s + QuotedSqlName(from) + u" rename to "_s + QuotedSqlName(to);
}

QString PostgresApplicationName(const QString &name)
{
    const auto isPlain = [](QChar c) { return c >= u' ' && c <= u'~'; };
    if (std::all_of(name.begin(), name.end(), isPlain) && !name.startsWith("b64:"_L1))
        return name.left(ApplicationNameLength);
    constexpr int room = (ApplicationNameLength - 4) / 4 * 3;
    QString kept = name;
    while (kept.toUtf8().size() > room)
        kept.chop(kept.back().isLowSurrogate() ? 2 : 1);
    return u"b64:"_s + QString::fromLatin1(kept.toUtf8().toBase64());
}

TPostgresAddress PostgresAddressOf(const QString &dataSource)
{
    static const QRegularExpression form(
        u"^postgres(?:ql)?://(\\[[0-9a-f:.]+\\]|[^\\s/:@;?]+)(?::(\\d{1,5}))?/?$"_s,
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(dataSource);
    TPostgresAddress address;
    address.Host = match.captured(1);
    if (address.Host.startsWith(u'['))
        address.Host = address.Host.mid(1, address.Host.size() - 2);
    if (match.hasCaptured(2))
        address.Port = match.captured(2).toInt();
    if (!match.hasMatch() || address.Port < 1 || address.Port > 65535)
        throw ESqlError(u"服务器地址不正确，应为 postgresql://主机:端口：%1"_s.arg(dataSource));
    return address;
}

const TOdbcServer &PostgresOverOdbc()
{
    static const TOdbcServer server{
        .Title = u"PostgreSQL"_s,
        .Package = u"odbc-postgresql"_s,
        .Drivers = {{u"PostgreSQL Unicode.*"_s, u"psqlodbcw.so"_s, Parts}},
        .ServerDatabase = u"postgres"_s,
        .Utf8Types = {u"varchar"_s, u"text"_s, u"char"_s, u"bpchar"_s},
        .ComputedTextsAreUnlimited = true,
        .TextsEndAtNul = true,
        .KeepsStepsTogether = true,
        .NoiseBehindErrors = u"\nError while executing the query"_s,
        .Sentences = Sentences,
        .ReadAddress = ReadAddress,
        .DatabaseName = PostgresDatabaseName,
        .SessionSql = SessionSql,
        .IsReadOnly = IsReadOnly,
        .IsPreparedSql = IsPreparedSql,
        .PrepareSql = PrepareSql,
        .Rewrite = Rewrite,
        .RowCountSql = RowCount,
        .CreateDatabaseSql = CreateDatabaseSql,
        .DropDatabaseSql = DropDatabaseSql,
        .Backup = BackupPostgres,
        .Restore = RestorePostgres,
        .TablesSql = TablesText,
        .ColumnsSql = ColumnsText,
        .IndexesSql = IndexesText,
        .UsersSql = UsersText(),
    };
    return server;
}

} // namespace Korvane
