// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/TableRebuild.h"

#include "platform/sql/dialect/TableText.h"

namespace Korvane {

namespace {

QByteArray QuotedName(const QString &name)
{
    QString doubled = name;
    doubled.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return '"' + doubled.toUtf8() + '"';
}

struct TStoredTable
{
    QString Name; ///< as it is spelled in the database
    QString Sql;
};

TStoredTable FindTable(TSqliteDatabase &database, const QString &name)
{
    TSqliteStatement statement(
        database, "select name, sql from sqlite_master where type='table' and name=?1 collate nocase");
    statement.Bind(1, name);
    if (!statement.Step())
        throw ESqlError(QStringLiteral("找不到数据表：%1").arg(name));
    return {statement.String(0), statement.String(1)};
}

/// The statements of the table's indexes and triggers, which go with it when it is dropped.
QList<QByteArray> DependentsOf(TSqliteDatabase &database, const QString &table)
{
    QList<QByteArray> statements;
    TSqliteStatement dependents(database,
                                "select sql from sqlite_master where tbl_name=?1 collate nocase "
                                "and type in ('index', 'trigger') and sql is not null order by rowid");
    dependents.Bind(1, table);
    while (dependents.Step())
        statements.append(dependents.String(0).toUtf8());
    return statements;
}

QStringList ColumnsOf(TSqliteDatabase &database, const QString &table)
{
    QStringList columns;
    TSqliteStatement statement(database, "select name from pragma_table_info(?1)");
    statement.Bind(1, table);
    while (statement.Step())
        columns.append(statement.String(0));
    return columns;
}

/// The columns that both tables have, as a list for a statement.
QByteArray SharedColumns(TSqliteDatabase &database, const QString &from, const QString &to)
{
    const QStringList target = ColumnsOf(database, to);
    QByteArrayList names;
    for (const QString &column : ColumnsOf(database, from))
        if (target.contains(column, Qt::CaseInsensitive))
            names.append(QuotedName(column));
    return names.join(", ");
}

/// The last number that an identity column gave out, so that none is given twice.
void CopySequence(TSqliteDatabase &database, const QString &from, const QString &to)
{
    if (database.Value("select 1 from sqlite_master where name='sqlite_sequence'").isEmpty())
        return;
    TSqliteStatement statement(database, "update sqlite_sequence set seq=max(seq, coalesce((select seq from "
                                         "sqlite_sequence where name=?1), 0)) where name=?2");
    statement.Bind(1, from);
    statement.Bind(2, to);
    statement.Step();
}

/// Keeps the engine from following the new table's passing name into views and triggers.
class TPlainRename
{
public:
    explicit TPlainRename(TSqliteDatabase &database) : FDatabase(database)
    {
        FDatabase.Run("pragma legacy_alter_table=on");
    }
    ~TPlainRename()
    {
        try {
            FDatabase.Run("pragma legacy_alter_table=off");
        } catch (const ESqlError &) {
            // Only a connection that is lost refuses this.
        }
    }

private:
    TSqliteDatabase &FDatabase;
};

} // namespace

void RebuildTable(TSqliteDatabase &database, const TTableChange &change)
{
    const TStoredTable old = FindTable(database, change.Table);
    TTableText text(old.Sql);
    text.Apply(change);

    const TPlainRename rename(database);
    const QList<QByteArray> dependents = DependentsOf(database, old.Name);
    const QString passing = QStringLiteral("_korvane_new_") + old.Name;
    database.Run(text.ToSql(passing).toUtf8());
    const QByteArray columns = SharedColumns(database, old.Name, passing);
    database.Run("insert into " + QuotedName(passing) + '(' + columns + ") select " + columns + " from " +
                 QuotedName(old.Name));
    CopySequence(database, old.Name, passing);
    database.Run("drop table " + QuotedName(old.Name));
    database.Run("alter table " + QuotedName(passing) + " rename to " + QuotedName(old.Name));
    for (const QByteArray &statement : dependents)
        database.Run(statement);
    if (!database.Value("pragma foreign_key_check(" + QuotedName(old.Name) + ')').isEmpty())
        throw ESqlError(QStringLiteral("表中已有不符合外键约束的记录：%1").arg(old.Name));
}

TForeignKeyPause::TForeignKeyPause(TSqliteDatabase &database, bool needed) : FDatabase(database)
{
    if (!needed || database.Value("pragma foreign_keys") != QLatin1String("1"))
        return;
    // Inside a transaction the engine ignores the switch.
    if (database.InTransaction()) {
        if (!database.Value("select 1 from sqlite_master m, pragma_foreign_key_list(m.name) limit 1")
                 .isEmpty())
            throw ESqlError(QStringLiteral("数据库有外键约束，不能在事务中更改表结构"));
        return;
    }
    database.Run("pragma foreign_keys=off");
    FPaused = true;
}

TForeignKeyPause::~TForeignKeyPause()
{
    if (!FPaused)
        return;
    try {
        FDatabase.Run("pragma foreign_keys=on");
    } catch (const ESqlError &) {
        // Only a connection that is lost refuses this.
    }
}

} // namespace Korvane
