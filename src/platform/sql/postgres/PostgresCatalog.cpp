// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresCatalog.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

// NOTE: no "::" here: behind a colon the driver looks for a parameter.

/// When a database was made stands in its comment; without one, the server's own day of birth is told,
/// which its identifier begins with.
const QString Created =
    u"coalesce(cast(substring(shobj_description(%1, 'pg_database') from "
    "'[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}') as timestamp(3)), "
    "(select cast(to_timestamp(system_identifier >> 32) as timestamp(3)) from pg_control_system()))"_s;

QString Objects()
{
    static const QString text =
        u"(select cast(o.name as varchar(128)) collate nocase as \"NAME\", cast(o.id as bigint) as \"ID\", "
        "cast(o.xtype as varchar(2)) collate nocase as \"XTYPE\", cast(o.xtype as varchar(2)) collate nocase "
        "as \"TYPE\", d.created as \"CRDATE\" from ("
        "select relname as name, oid as id, case when relkind in ('v', 'm') then 'V' else 'U' end as xtype "
        "from pg_class where relkind in ('r', 'p', 'v', 'm', 'f') and pg_table_is_visible(oid) and "
        "relnamespace not in (select oid from pg_namespace where nspname in ('pg_catalog', "
        "'information_schema', 'korvane'))"
        " union all select k.conname, k.oid, case k.contype when 'p' then 'PK' when 'u' then 'UQ' when 'f' "
        "then 'F' else 'C' end from pg_constraint k join pg_class c on c.oid=k.conrelid where k.contype in "
        "('p', 'u', 'f', 'c') and pg_table_is_visible(c.oid) and c.relnamespace not in (select oid from "
        "pg_namespace where nspname in ('pg_catalog', 'information_schema', 'korvane'))"
        " union all select t.tgname, t.oid, 'TR' from pg_trigger t where not t.tgisinternal and "
        "pg_table_is_visible(t.tgrelid)) o, (select "_s +
        Created.arg(u"oid"_s) + u" as created from pg_database where datname=current_database()) d)"_s;
    return text;
}

QString Databases()
{
    static const QString text =
        u"(select cast(datname as varchar(128)) as \"NAME\", cast(oid as bigint) as \"DBID\", "_s +
        Created.arg(u"oid"_s) +
        u" as \"CRDATE\", cast('' as varchar(260)) as \"FILENAME\" from pg_database where not datistemplate)"_s;
    return text;
}

QString Processes()
{
    return u"(select pid as \"SPID\", cast(datid as bigint) as \"DBID\", cast(backend_start as timestamp(3)) "
           "as \"LOGIN_TIME\", cast(coalesce(client_hostname, host(client_addr), '') as varchar(128)) as "
           "\"HOSTNAME\", cast("_s +
           PostgresProgramName() +
           u" as varchar(128)) as \"PROGRAM_NAME\", "
           "cast(coalesce(client_port, 0) as varchar(10)) as \"HOSTPROCESS\", cast(usename as varchar(128)) "
           "as "
           "\"LOGINAME\" from pg_stat_activity where backend_type='client backend')"_s;
}

} // namespace

/// NOTE: anyone may call his program anything: what is no base64 of UTF-8 stays as it is.
QString PostgresProgramName()
{
    static const QString bytes = u"decode(substr(application_name, 5), 'base64')"_s;
    static const QString next = u"[89ab][0-9a-f]"_s;
    static const QString utf8 =
        u"^(0[1-9a-f]|[1-7][0-9a-f]|(c[2-9a-f]|d[0-9a-f])N|e0[ab][0-9a-f]N|e[1-9abcef]NN|ed[89][0-9a-f]N"
        "|f0[9ab][0-9a-f]NN|f[123]NNN|f48[0-9a-f]NN)*$"_s.replace(u'N', next);
    return u"(case when application_name !~ "
           u"'^b64:([A-Za-z0-9+/]{4})*([A-Za-z0-9+/]{2}==|[A-Za-z0-9+/]{3}=){0,1}$' "
           "then application_name when encode(%1, 'hex') ~ '%2' then convert_from(%1, 'UTF8') "
           "else application_name end)"_s.arg(bytes, utf8);
}

QString PostgresCatalogTable(const QString &name)
{
    if (name == "sysobjects"_L1)
        return Objects();
    return name == "sysdatabases"_L1 ? Databases() : Processes();
}

} // namespace Korvane
