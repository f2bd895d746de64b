// SPDX-License-Identifier: MIT
#include "support/DesignStore.h"

#include "platform/core/Exceptions.h"

#include <QFile>

#include <sqlite3.h>

namespace Korvane::Testing {

namespace {

constexpr auto SevenTables = R"(
create table Tables(TableCode text, TableClass text, TableName text, Remark text);
create table Fields(TableCode text, FieldNo integer, FieldCode text, FieldName text, FieldProp text, FieldType text,
  FieldPrecision integer, FieldSize integer, IsAuto text, IsKey text, IsNotNull text, FieldDefault text, Remark text);
create table Indexs(TableCode text, IndexCode text, IndexName text, IndexFields text, IsCluster text, IsUnique text);
create table Querys(QueryCode text, QueryClass text, QueryName text, Remark text, Tables text, Access text, MSSQL text);
create table Columns(QueryCode text, ColumnNo integer, ColumnName text, Expression text, Alias text, TableField text);
create table Commands(CommandCode text, CommandName text, Remark text, Access text, MSSQL text);
create table Changes(ChangeNo integer, ChangeDate text, ChangeName text, Remark text, Access text, MSSQL text);
)";

sqlite3 *OpenFile(const QString &fileName)
{
    sqlite3 *handle = nullptr;
    if (sqlite3_open(fileName.toUtf8().constData(), &handle) != SQLITE_OK)
        throw Exception(QStringLiteral("cannot make ") + fileName);
    return handle;
}

void RunScript(sqlite3 *handle, const QByteArray &script)
{
    char *message = nullptr;
    if (sqlite3_exec(handle, script.constData(), nullptr, nullptr, &message) == SQLITE_OK)
        return;
    const QString text = QString::fromUtf8(message);
    sqlite3_free(message);
    throw Exception(text + QLatin1Char('\n') + QString::fromUtf8(script));
}

QString Literal(const QString &text)
{
    QString doubled = text;
    doubled.replace(QLatin1Char('\''), QLatin1String("''"));
    return text.isEmpty() ? QStringLiteral("null") : QLatin1Char('\'') + doubled + QLatin1Char('\'');
}

QString Flag(bool value) { return value ? QStringLiteral("Y") : QStringLiteral("N"); }

QString Number(int value) { return QString::number(value); }

} // namespace

DesignStore::DesignStore(const QString &fileName) : FFileName(fileName), FHandle(OpenFile(fileName))
{
    RunScript(FHandle, "pragma synchronous=off");
    RunScript(FHandle, SevenTables);
}

DesignStore::~DesignStore() { sqlite3_close_v2(FHandle); }

DesignStore &DesignStore::Table(const QString &code, const QString &className, const QString &name)
{
    FTable = code;
    FFieldNo = 0;
    Insert(QStringLiteral("Tables"), {code, className, name, {}});
    return *this;
}

DesignStore &DesignStore::Field(const QString &code, const QString &type, const DesignField &options)
{
    const QString word = type.section(QLatin1Char('('), 0, 0);
    const QString sizes = type.section(QLatin1Char('('), 1).section(QLatin1Char(')'), 0, 0);
    Insert(QStringLiteral("Fields"),
           {FTable, Number(++FFieldNo), code, options.Name.isEmpty() ? code : options.Name,
            options.Prop.isEmpty() ? code : options.Prop, word, sizes.section(QLatin1Char(','), 1),
            sizes.section(QLatin1Char(','), 0, 0), Flag(options.Auto), Flag(options.Key),
            Flag(options.NotNull), options.Default, options.Remark});
    return *this;
}

DesignStore &DesignStore::Index(const QString &code, const QString &fields, const QString &flags)
{
    Insert(QStringLiteral("Indexs"), {FTable,
                                      code,
                                      {},
                                      fields,
                                      Flag(flags.contains(QLatin1Char('c'))),
                                      Flag(flags.contains(QLatin1Char('u')))});
    return *this;
}

DesignStore &DesignStore::Query(const QString &code, const QString &tables, const QString &access,
                                const QString &mssql)
{
    FQuery = code;
    FColumnNo = 0;
    Insert(QStringLiteral("Querys"),
           {code, QLatin1Char('T') + code, {}, {}, tables, access, mssql.isEmpty() ? access : mssql});
    return *this;
}

DesignStore &DesignStore::Column(const QString &expression, const QString &alias, const QString &tableField,
                                 const QString &name)
{
    Insert(QStringLiteral("Columns"), {FQuery, Number(++FColumnNo), name, expression, alias, tableField});
    return *this;
}

DesignStore &DesignStore::Command(const QString &code, const QString &access, const QString &mssql)
{
    Insert(QStringLiteral("Commands"), {code, {}, {}, access, mssql.isEmpty() ? access : mssql});
    return *this;
}

DesignStore &DesignStore::Change(int number, const QString &access, const QString &mssql)
{
    Insert(QStringLiteral("Changes"), {Number(number), {}, {}, {}, access, mssql.isEmpty() ? access : mssql});
    return *this;
}

DesignStore &DesignStore::Run(const QString &sql)
{
    RunScript(FHandle, sql.toUtf8());
    return *this;
}

void DesignStore::Insert(const QString &table, const QStringList &values)
{
    QStringList literals;
    for (const QString &value : values)
        literals.append(Literal(value));
    Run(QStringLiteral("insert into %1 values(").arg(table) + literals.join(QLatin1String(", ")) +
        QLatin1Char(')'));
}

void RunScriptFile(const QString &scriptName, const QString &databaseName)
{
    QFile script(scriptName);
    if (!script.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("cannot read ") + scriptName);
    sqlite3 *handle = OpenFile(databaseName);
    try {
        RunScript(handle, "pragma synchronous=off; begin;" + script.readAll() + "commit;");
    } catch (...) {
        sqlite3_close_v2(handle);
        throw;
    }
    sqlite3_close_v2(handle);
}

void OrdersStore(const QString &fileName)
{
    RunScriptFile(QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.sql"), fileName);
}

} // namespace Korvane::Testing
