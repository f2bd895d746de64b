// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresSetup.h"

namespace Korvane {

namespace {

/// To be raised with every change of the texts below.
constexpr int Version = 1;

// NOTE: neither "::" nor a question mark stands in these texts: a driver looks for parameters there.

/// The order of texts: blind to case as the dialect's own.
constexpr auto Schema = R"sql(
create schema if not exists korvane;
create collation if not exists korvane.nocase (provider=icu, locale='und-u-ks-level2', deterministic=false);
)sql";

constexpr auto TextFunctions = R"sql(
-- The number is what was wrong: without it the call would be worked out before its time.
create or replace function korvane.korvane_fail_length(integer) returns text language plpgsql immutable as $f$
begin
  raise exception using message = '文本函数的长度或位置不正确', errcode = 'data_exception';
end $f$;

create or replace function korvane.korvane_left(text, integer) returns text language sql immutable as $f$
  select case when $2 < 0 then korvane.korvane_fail_length($2) else left($1, $2) end $f$;

create or replace function korvane.korvane_right(text, integer) returns text language sql immutable as $f$
  select case when $2 < 0 then korvane.korvane_fail_length($2)
    when $2 = 0 then substr($1, 1, 0) else right($1, $2) end $f$;

create or replace function korvane.korvane_mid(text, integer, integer) returns text language sql immutable as $f$
  select case when $3 < 0 then korvane.korvane_fail_length($3) else substr($1, $2, $3) end $f$;

create or replace function korvane.korvane_len(text) returns integer language sql immutable as $f$
  select length(rtrim($1, ' ')) $f$;

create or replace function korvane.korvane_charindex(text, text, integer default 1) returns integer
  language sql immutable as $f$
  select case when $1 = '' then 0 else coalesce(nullif(strpos(lower(substr($2, greatest($3, 1)) collate "C"),
    lower($1 collate "C")), 0) + greatest($3, 1) - 1, case when $1 is null or $2 is null then null else 0 end) end
  $f$;

create or replace function korvane.korvane_replace(text, text, text) returns text language sql immutable as $f$
  select replace($1 collate "C", $2 collate "C", $3 collate "C") $f$;

create or replace function korvane.korvane_space(integer) returns text language sql immutable as $f$
  select case when $1 >= 0 then repeat(' ', $1) end $f$;

create or replace function korvane.korvane_replicate(text, integer) returns text language sql immutable as $f$
  select case when $2 >= 0 then repeat($1, $2) end $f$;

-- A pattern of "like" as a regular expression.
create or replace function korvane.korvane_pattern(pattern text, escape text) returns text
  language plpgsql immutable as $f$
declare
  result text collate "C" := '^';
  letter text collate "C";
  inside text collate "C";
  special text collate "C" := '.^$*+()[]{}|\' || chr(63);
  at integer := 1;
  first integer;
  last integer;
begin
  if length(escape) <> 1 then
    raise exception using message = 'ESCAPE 后只能有一个字符', errcode = 'data_exception';
  end if;
  while at <= length(pattern) loop
    letter := substr(pattern, at, 1) collate "C";
    last := 0;
    if letter = '[' then
      first := case when substr(pattern, at + 1, 1) collate "C" = '^' then at + 2 else at + 1 end;
      last := strpos(substr(pattern, first + 1) collate "C", ']');
    end if;
    if letter = escape collate "C" and at < length(pattern) then
      at := at + 1;
      letter := substr(pattern, at, 1) collate "C";
      result := result || case when strpos(special, letter) > 0 then '\' || letter else letter end;
    elsif last > 0 then
      inside := replace(replace(replace(replace(substr(pattern, first, last) collate "C",
        '\', '\\'), ']', '\]'), '[', '\['), '^', '\^');
      result := result || case when first > at + 1 then '[^' else '[' end || inside || ']';
      at := first + last;
    elsif letter = '%' then
      result := result || '.*';
    elsif letter = '_' then
      result := result || '.';
    else
      result := result || case when strpos(special, letter) > 0 then '\' || letter else letter end;
    end if;
    at := at + 1;
  end loop;
  return result || '$';
end $f$;

create or replace function korvane.korvane_like(text, text, text default null) returns boolean
  language sql immutable as $f$
  select case when $2 like '%[%' collate "C" then ($1 collate "C") ~* (korvane.korvane_pattern($2, $3) collate "C")
    else ($1 collate "C") ilike ($2 collate "C") escape coalesce($3, '') end $f$;
)sql";

constexpr auto NumberFunctions = R"sql(
create or replace function korvane.korvane_isnumeric(text) returns integer language sql immutable as $f$
  select case when trim($1) collate "C" ~ '^[+-]{0,1}([0-9]+([.][0-9]*){0,1}|[.][0-9]+)([eE][+-]{0,1}[0-9]+){0,1}$'
    then 1 else 0 end $f$;

create or replace function korvane.korvane_number(text) returns numeric language plpgsql immutable strict as $f$
begin
  if korvane.korvane_isnumeric($1) = 0 then
    raise exception using message = '“' || left($1, 100) || '”不是数值', errcode = 'invalid_text_representation';
  end if;
  return cast(trim($1) as numeric);
end $f$;

create or replace function korvane.korvane_truncated(text) returns numeric language sql immutable as $f$
  select trunc(korvane.korvane_number($1)) $f$;
create or replace function korvane.korvane_truncated(numeric) returns numeric language sql immutable as $f$
  select trunc($1) $f$;
create or replace function korvane.korvane_truncated(bigint) returns bigint language sql immutable as $f$
  select $1 $f$;
create or replace function korvane.korvane_truncated(double precision) returns double precision
  language sql immutable as $f$ select trunc($1) $f$;

create or replace function korvane.korvane_round(numeric, integer default 0, integer default 0) returns numeric
  language sql immutable as $f$ select case when $3 = 0 then round($1, $2) else trunc($1, $2) end $f$;

create or replace function korvane.korvane_xor(bigint, bigint) returns bigint language sql immutable as $f$
  select $1 # $2 $f$;

create or replace function korvane.korvane_flag(text) returns text language sql immutable as $f$
  select case when $1 is null then null
    when lower(trim($1)) collate "C" in ('y', 'yes', 'true', 't') then 'Y'
    when lower(trim($1)) collate "C" in ('', 'n', 'no', 'false', 'f') then 'N'
    when korvane.korvane_number($1) <> 0 then 'Y' else 'N' end $f$;
create or replace function korvane.korvane_flag(numeric) returns text language sql immutable as $f$
  select case when $1 <> 0 then 'Y' when $1 = 0 then 'N' end $f$;
create or replace function korvane.korvane_flag(double precision) returns text language sql immutable as $f$
  select case when $1 <> 0 then 'Y' when $1 = 0 then 'N' end $f$;

create or replace function korvane.korvane_blob(text) returns bytea language sql immutable as $f$
  select convert_to($1, 'UTF8') $f$;
create or replace function korvane.korvane_blob(bytea) returns bytea language sql immutable as $f$ select $1 $f$;

create or replace function korvane.korvane_str(numeric, integer default 10, integer default 0) returns text
  language sql immutable as $f$
  select case when length(t.text) > n.size then repeat('*', n.size) else lpad(t.text, n.size) end
    from (select cast(round($1, least(greatest($3, 0), 15)) as text) as text) t,
      (select least(greatest($2, 1), 8000) as size) n $f$;
)sql";

constexpr auto DateFunctions = R"sql(
create or replace function korvane.korvane_moment(text) returns timestamp language plpgsql immutable strict as $f$
declare
  t text collate "C" := trim($1);
begin
  if t = '' then
    return null;
  elsif t ~ '^[0-9]{8}$' then
    return make_date(cast(left(t, 4) as integer), cast(substr(t, 5, 2) as integer), cast(right(t, 2) as integer));
  elsif t ~ '^[0-9]{14}$' then
    return make_timestamp(cast(left(t, 4) as integer), cast(substr(t, 5, 2) as integer),
      cast(substr(t, 7, 2) as integer), cast(substr(t, 9, 2) as integer), cast(substr(t, 11, 2) as integer),
      cast(substr(t, 13, 2) as integer));
  elsif t ~ '^[0-9]{4}[-/.][0-9]{1,2}[-/.][0-9]{1,2}([ T][0-9]{1,2}[:][0-9]{1,2}([:][0-9]{1,2}([.:][0-9]{1,9}){0,1}){0,1}){0,1}$' then
    t := regexp_replace(t, '^([0-9]{4})[-/.]([0-9]{1,2})[-/.]', '\1-\2-');
    return cast(cast(regexp_replace(t, '([:][0-9]{1,2}[:][0-9]{1,2})[:]', '\1.') as timestamp) as timestamp(3));
  elsif t ~ '^[0-9]{1,2}[:][0-9]{1,2}([:][0-9]{1,2}([.][0-9]{1,9}){0,1}){0,1}$' then
    return cast('1899-12-30 ' || t as timestamp(3));
  elsif korvane.korvane_isnumeric(t) = 1 then
    return korvane.korvane_moment(cast(t as double precision));
  end if;
  raise exception using message = '“' || left($1, 100) || '”不是有效的日期时间', errcode = 'invalid_datetime_format';
exception when datetime_field_overflow then
  raise exception using message = '“' || left($1, 100) || '”不是有效的日期时间', errcode = 'invalid_datetime_format';
end $f$;
create or replace function korvane.korvane_moment(timestamp) returns timestamp language sql immutable as $f$
  select $1 $f$;
-- A number counts days from the day from which the library counts them.
create or replace function korvane.korvane_moment(double precision) returns timestamp language sql immutable as $f$
  select cast(timestamp '1899-12-30' + $1 * interval '1 day' as timestamp(3)) $f$;

create or replace function korvane.korvane_part(text) returns text language plpgsql immutable as $f$
declare
  part text := case lower(trim($1)) collate "C"
    when 'yyyy' then 'year' when 'yy' then 'year' when 'year' then 'year'
    when 'q' then 'quarter' when 'qq' then 'quarter' when 'quarter' then 'quarter'
    when 'm' then 'month' when 'mm' then 'month' when 'month' then 'month'
    when 'y' then 'dayofyear' when 'dy' then 'dayofyear' when 'dayofyear' then 'dayofyear'
    when 'd' then 'day' when 'dd' then 'day' when 'day' then 'day'
    when 'ww' then 'week' when 'wk' then 'week' when 'week' then 'week'
    when 'w' then 'weekday' when 'dw' then 'weekday' when 'weekday' then 'weekday'
    when 'h' then 'hour' when 'hh' then 'hour' when 'hour' then 'hour'
    when 'n' then 'minute' when 'mi' then 'minute' when 'minute' then 'minute'
    when 's' then 'second' when 'ss' then 'second' when 'second' then 'second'
    when 'ms' then 'millisecond' when 'millisecond' then 'millisecond' end;
begin
  if part is null then
    raise exception using message = '“' || left($1, 100) || '”不是日期的组成部分', errcode = 'data_exception';
  end if;
  return part;
end $f$;

-- The week of January 1 is the first; weeks begin on Sunday.
create or replace function korvane.korvane_datepart(text, timestamp) returns integer language sql immutable as $f$
  select cast(case korvane.korvane_part($1)
    when 'year' then extract(year from $2) when 'quarter' then extract(quarter from $2)
    when 'month' then extract(month from $2) when 'dayofyear' then extract(doy from $2)
    when 'day' then extract(day from $2)
    when 'week' then div(extract(doy from $2) + extract(dow from date_trunc('year', $2)) - 1, 7) + 1
    when 'weekday' then extract(dow from $2) + 1 when 'hour' then extract(hour from $2)
    when 'minute' then extract(minute from $2) when 'second' then floor(extract(second from $2))
    else mod(floor(extract(milliseconds from $2)), 1000) end as integer) $f$;

create or replace function korvane.korvane_dateadd(text, numeric, timestamp) returns timestamp
  language sql immutable as $f$
  select cast($3 + cast(trunc($2) as double precision) * case korvane.korvane_part($1)
    when 'year' then interval '1 year' when 'quarter' then interval '3 months' when 'month' then interval '1 month'
    when 'week' then interval '7 days' when 'hour' then interval '1 hour' when 'minute' then interval '1 minute'
    when 'second' then interval '1 second' when 'millisecond' then interval '0.001 second'
    else interval '1 day' end as timestamp(3)) $f$;
-- A text that is a day alone stays one where the part is no shorter.
create or replace function korvane.korvane_dateadd(text, numeric, text) returns text language sql immutable as $f$
  select to_char(korvane.korvane_dateadd($1, $2, korvane.korvane_moment($3)),
    case when strpos($3 collate "C", ':') = 0 and length(trim($3)) < 14 and
      korvane.korvane_part($1) not in ('hour', 'minute', 'second', 'millisecond')
    then 'YYYY-MM-DD' else 'YYYY-MM-DD HH24:MI:SS.MS' end) $f$;
create or replace function korvane.korvane_dateadd(text, numeric, double precision) returns timestamp
  language sql immutable as $f$ select korvane.korvane_dateadd($1, $2, korvane.korvane_moment($3)) $f$;

-- How many borders of the part lie between.
create or replace function korvane.korvane_datediff(text, timestamp, timestamp) returns bigint
  language sql immutable as $f$
  select cast(case korvane.korvane_part($1)
    when 'year' then extract(year from $3) - extract(year from $2)
    when 'quarter' then extract(year from $3) * 4 + extract(quarter from $3) - extract(year from $2) * 4 - extract(quarter from $2)
    when 'month' then extract(year from $3) * 12 + extract(month from $3) - extract(year from $2) * 12 - extract(month from $2)
    when 'week' then ((cast($3 as date) - cast(extract(dow from $3) as integer)) - (cast($2 as date) - cast(extract(dow from $2) as integer))) / 7
    when 'hour' then extract(epoch from date_trunc('hour', $3) - date_trunc('hour', $2)) / 3600
    when 'minute' then extract(epoch from date_trunc('minute', $3) - date_trunc('minute', $2)) / 60
    when 'second' then extract(epoch from date_trunc('second', $3) - date_trunc('second', $2))
    when 'millisecond' then extract(epoch from date_trunc('milliseconds', $3) - date_trunc('milliseconds', $2)) * 1000
    else cast($3 as date) - cast($2 as date) end as bigint) $f$;

create or replace function korvane.korvane_styled(timestamp, integer) returns text language plpgsql immutable as $f$
declare
  format text := case $2 when 8 then 'HH24:MI:SS' when 108 then 'HH24:MI:SS' when 114 then 'HH24:MI:SS:MS'
    when 20 then 'YYYY-MM-DD HH24:MI:SS' when 120 then 'YYYY-MM-DD HH24:MI:SS'
    when 21 then 'YYYY-MM-DD HH24:MI:SS.MS' when 121 then 'YYYY-MM-DD HH24:MI:SS.MS'
    when 126 then 'YYYY-MM-DD"T"HH24:MI:SS.MS' when 23 then 'YYYY-MM-DD' when 12 then 'YYMMDD'
    when 112 then 'YYYYMMDD' when 11 then 'YY/MM/DD' when 111 then 'YYYY/MM/DD' when 102 then 'YYYY.MM.DD'
    when 101 then 'MM/DD/YYYY' when 103 then 'DD/MM/YYYY' when 104 then 'DD.MM.YYYY' when 105 then 'DD-MM-YYYY'
    when 110 then 'MM-DD-YYYY' end;
begin
  if format is null then
    raise exception using message = 'PostgreSQL 不支持“CONVERT 样式 ' || $2 || '”', errcode = 'feature_not_supported';
  end if;
  return to_char($1, format);
end $f$;
)sql";

/// text(x, length, style): a length below 0 means none.
constexpr auto TextConversions = R"sql(
create or replace function korvane.korvane_cut(text, integer) returns text language sql immutable as $f$
  select case when $2 >= 0 then left($1, $2) else $1 end $f$;
create or replace function korvane.korvane_text(timestamp, integer default -1, integer default 121) returns text
  language sql immutable as $f$ select korvane.korvane_cut(korvane.korvane_styled($1, $3), $2) $f$;
create or replace function korvane.korvane_text(date, integer default -1, integer default 23) returns text
  language sql immutable as $f$
  select korvane.korvane_cut(korvane.korvane_styled(cast($1 as timestamp), $3), $2) $f$;
create or replace function korvane.korvane_text(text, integer default -1) returns text language sql immutable as $f$
  select korvane.korvane_cut($1, $2) $f$;
-- A style is for a moment; any other text stays as it is.
create or replace function korvane.korvane_text(text, integer, integer) returns text language plpgsql immutable as $f$
declare
  value text := $1;
begin
  if korvane.korvane_isnumeric($1) = 0 or length(trim($1)) in (8, 14) then
    begin
      value := coalesce(korvane.korvane_styled(korvane.korvane_moment($1), $3), $1);
    exception when invalid_datetime_format then
      value := $1;
    end;
  end if;
  return korvane.korvane_cut(value, $2);
end $f$;
create or replace function korvane.korvane_text(bytea, integer default -1, integer default 0) returns text
  language sql immutable as $f$ select korvane.korvane_cut(convert_from($1, 'UTF8'), $2) $f$;
do $f$
declare
  number text;
begin
  foreach number in array array['integer', 'bigint', 'numeric', 'double precision'] loop
    execute format('create or replace function korvane.korvane_text(%s, integer default -1, integer default 0) '
      'returns text language sql immutable as $g$ select korvane.korvane_cut(cast($1 as text), $2) $g$', number);
  end loop;
end $f$;
)sql";

/// What the dialect does with texts and numbers side by side: "+" joins texts and counts with a
/// number; a comparison takes the number as a text. And a moment moves by days.
constexpr auto Operators = R"sql(
do $f$
declare
  number text;
  counted text;
  sign text;
  function text;
begin
  create or replace function korvane.korvane_joined(text, text) returns text language sql immutable as
    $g$ select $1 || $2 $g$;
  if to_regoperator('korvane.+(text,text)') is null then
    create operator korvane.+ (leftarg=text, rightarg=text, function=korvane.korvane_joined);
  end if;
  foreach sign in array array['+', '-'] loop
    function := 'korvane.korvane_' || case sign when '+' then 'later' else 'earlier' end;
    execute format('create or replace function %s(timestamp, double precision) returns timestamp language sql '
      'immutable as $g$ select cast($1 %s $2 * interval ''1 day'' as timestamp(3)) $g$', function, sign);
    if to_regoperator('korvane.' || sign || '(timestamp without time zone,double precision)') is null then
      execute format('create operator korvane.%s (leftarg=timestamp, rightarg=double precision, function=%s)',
        sign, function);
    end if;
  end loop;
  foreach number in array array['integer', 'bigint', 'numeric', 'double precision'] loop
    counted := case number when 'double precision' then number else 'numeric' end;
    foreach sign in array array['+', '-', '*', '/'] loop
      function := 'korvane.korvane_' || case sign when '+' then 'sum' when '-' then 'difference'
        when '*' then 'product' else 'quotient' end;
      execute format('create or replace function %s(text, %s) returns %s language sql immutable as '
        '$g$ select cast(korvane.korvane_number($1) as %s) %s $2 $g$', function, number, counted, counted, sign);
      execute format('create or replace function %s(%s, text) returns %s language sql immutable as '
        '$g$ select $1 %s cast(korvane.korvane_number($2) as %s) $g$', function, number, counted, sign, counted);
      if to_regoperator('korvane.' || sign || '(text,' || number || ')') is null then
        execute format('create operator korvane.%s (leftarg=text, rightarg=%s, function=%s)', sign, number, function);
        execute format('create operator korvane.%s (leftarg=%s, rightarg=text, function=%s)', sign, number, function);
      end if;
    end loop;
    foreach sign in array array['=', '<>', '<', '<=', '>', '>='] loop
      function := 'korvane.korvane_' || case sign when '=' then 'same' when '<>' then 'other' when '<' then 'less'
        when '<=' then 'most' when '>' then 'more' else 'least' end;
      execute format('create or replace function %s(text, %s) returns boolean language sql immutable as '
        '$g$ select $1 %s cast($2 as text) $g$', function, number, sign);
      execute format('create or replace function %s(%s, text) returns boolean language sql immutable as '
        '$g$ select cast($1 as text) %s $2 $g$', function, number, sign);
      if to_regoperator('korvane.' || sign || '(text,' || number || ')') is null then
        execute format('create operator korvane.%s (leftarg=text, rightarg=%s, function=%s)', sign, number, function);
        execute format('create operator korvane.%s (leftarg=%s, rightarg=text, function=%s)', sign, number, function);
      end if;
    end loop;
  end loop;
end $f$;
)sql";

constexpr auto Schemas = R"sql(
create or replace function korvane.korvane_identity() returns bigint language plpgsql as $f$
begin
  return lastval();
exception when object_not_in_prerequisite_state then
  return null;
end $f$;

create or replace function korvane.korvane_number_null() returns trigger language plpgsql as $f$
begin
  return jsonb_populate_record(new, jsonb_build_object(tg_argv[0], nextval(cast(tg_argv[1] as regclass))));
end $f$;

create or replace function korvane.korvane_number_ahead() returns trigger language plpgsql as $f$
begin
  perform setval(cast(tg_argv[1] as regclass), greatest(cast(to_jsonb(new) ->> tg_argv[0] as bigint),
    coalesce(pg_sequence_last_value(cast(tg_argv[1] as regclass)), 0)));
  return null;
end $f$;

create or replace procedure korvane.korvane_drop_column(regclass, name) language plpgsql as $f$
declare
  number smallint := (select attnum from pg_attribute where attrelid = $1 and attname = $2 and attnum > 0 and not attisdropped);
  used text := (select conname from pg_constraint where conrelid = $1 and number = any(conkey)
    union all select cast(cast(indexrelid as regclass) as text) from pg_index where indrelid = $1 and number = any(indkey) limit 1);
begin
  if number is null then
    raise exception using message = '没有列“' || $2 || '”', errcode = 'undefined_column';
  elsif used is not null then
    raise exception using message = '列“' || $2 || '”被“' || used || '”使用，不能删除', errcode = 'dependent_objects_still_exist';
  end if;
  execute format('alter table %s drop column %I', $1, $2);
end $f$;

create or replace procedure korvane.korvane_drop_constraint(regclass, name) language plpgsql as $f$
declare
  col name := (select attname from pg_attribute where attrelid = $1 and attnum > 0 and not attisdropped
    and col_description(attrelid, attnum) = 'default ' || $2);
begin
  if col is null then
    execute format('alter table %s drop constraint %I', $1, $2);
  else
    execute format('alter table %s alter column %I drop default', $1, col);
    execute format('comment on column %s.%I is null', $1, col);
  end if;
end $f$;

do $f$
begin
  if shobj_description((select oid from pg_database where datname = current_database()), 'pg_database') is null then
    execute format('comment on database %I is %L', current_database(),
      'Korvane ' || to_char(localtimestamp, 'YYYY-MM-DD HH24:MI:SS'));
  end if;
exception when insufficient_privilege then
  null;
end $f$;
grant usage on schema korvane to public;
)sql";

} // namespace

QByteArray PostgresSessionSql()
{
    return "set search_path to public, korvane; set standard_conforming_strings to on; "
           "set datestyle to 'ISO, YMD'; set intervalstyle to 'postgres'; set bytea_output to 'hex'; "
           "set client_min_messages to warning; set korvane.rowcount to '0'";
}

/// NOTE: an archive is brought back without rights; the owner of the schema gives them to all again.
QByteArray PostgresIsPreparedSql()
{
    return "select case when cast(substring(obj_description(oid, 'pg_namespace') from '^Korvane ([0-9]+)$') "
           "as integer) >= " +
           QByteArray::number(Version) +
           " and (has_schema_privilege('public', oid, 'usage') or not pg_has_role(nspowner, 'usage')) "
           "then 1 else 0 end from pg_namespace where nspname = 'korvane'";
}

QByteArray PostgresPrepareSql()
{
    // A session that only reads may be the first in a database, too.
    QByteArray sql = "set transaction read write; set local search_path to korvane, pg_catalog; set local "
                     "client_min_messages to warning; "
                     "select pg_advisory_xact_lock(hashtext('korvane'));\n";
    for (const char *part :
         {Schema, TextFunctions, NumberFunctions, DateFunctions, TextConversions, Operators, Schemas})
        sql += part;
    return sql + "comment on schema korvane is 'Korvane " + QByteArray::number(Version) +
           "';\nset local search_path to public, korvane;\n";
}

} // namespace Korvane
