// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlError.h"
#include "platform/sql/dialect/SqlFunctions.h"
#include "platform/sql/dialect/SqlRewriter.h"
#include "platform/sql/dialect/TableText.h"

#include <QStringList>

#include <sqlite3.h>

#include <ostream>

namespace Korvane {

inline void PrintTo(TSqlDialect dialect, std::ostream *out)
{
    *out << (dialect == TSqlDialect::Access ? "Access" : "MSSQL");
}

/// A database in memory that takes statements of a dialect, as a driver would.
class TDialectDatabase
{
public:
    explicit TDialectDatabase(TSqlDialect dialect) : FDialect(dialect)
    {
        sqlite3_open(":memory:", &FHandle);
        RegisterSqlFunctions(FHandle, dialect);
        sqlite3_create_function(
            FHandle, "korvane_spid", 0, SQLITE_UTF8, nullptr,
            [](sqlite3_context *c, int, sqlite3_value **) { sqlite3_result_int(c, 51); }, nullptr, nullptr);
    }
    ~TDialectDatabase() { sqlite3_close(FHandle); }
    TDialectDatabase(const TDialectDatabase &) = delete;
    TDialectDatabase &operator=(const TDialectDatabase &) = delete;

    TSqlDialect Dialect() const { return FDialect; }

    /// Runs a text of the dialect; the rows of its last statement, values between "|", NULL as "~".
    QStringList Run(const QString &text)
    {
        QStringList rows;
        for (const TRewrittenStep &step : RewriteForSqlite(text, FDialect).Steps) {
            if (step.Change)
                Change(*step.Change);
            else
                rows = Rows(step.Sql);
        }
        return rows;
    }

    /// The first value that a query of the dialect gives.
    QString Value(const QString &text) { return Run(text).value(0).section(u'|', 0, 0); }

    /// Runs a text of the engine's language.
    QStringList Rows(const QByteArray &sql)
    {
        sqlite3_stmt *statement = nullptr;
        Check(sqlite3_prepare_v2(FHandle, sql.constData(), int(sql.size()), &statement, nullptr), sql);
        QStringList rows;
        int code = SQLITE_DONE;
        while (statement && (code = sqlite3_step(statement)) == SQLITE_ROW) {
            QStringList values;
            for (int i = 0; i < sqlite3_column_count(statement); ++i)
                values.append(sqlite3_column_type(statement, i) == SQLITE_NULL
                                  ? QStringLiteral("~")
                                  : QString::fromUtf8(
                                        reinterpret_cast<const char *>(sqlite3_column_text(statement, i))));
            rows.append(values.join(u'|'));
        }
        sqlite3_finalize(statement);
        Check(code == SQLITE_DONE ? SQLITE_OK : code, sql);
        return rows;
    }

    /// The names of a query's columns.
    QStringList Columns(const QString &text)
    {
        const QByteArray sql = RewriteForSqlite(text, FDialect).Steps.value(0).Sql;
        sqlite3_stmt *statement = nullptr;
        Check(sqlite3_prepare_v2(FHandle, sql.constData(), int(sql.size()), &statement, nullptr), sql);
        QStringList names;
        for (int i = 0; i < sqlite3_column_count(statement); ++i)
            names.append(QString::fromUtf8(sqlite3_column_name(statement, i)));
        sqlite3_finalize(statement);
        return names;
    }

    int Changes() const { return sqlite3_changes(FHandle); }

private:
    void Check(int code, const QByteArray &sql)
    {
        if (code != SQLITE_OK)
            throw ESqlError(QString::fromUtf8(sqlite3_errmsg(FHandle)) + QLatin1String(": ") +
                                QString::fromUtf8(sql),
                            code);
    }

    /// Makes the table anew from its changed text.
    void Change(const TTableChange &change)
    {
        const QString table = change.Table;
        TTableText text(Rows("select sql from sqlite_master where type='table' and name='" + table.toUtf8() +
                             "' collate nocase")
                            .value(0));
        QStringList common;
        const auto before = text.Columns();
        text.Apply(change);
        for (const auto &column : before) {
            for (const auto &kept : text.Columns()) {
                if (kept.Name == column.Name)
                    common.append(u'"' + kept.Name + u'"');
            }
        }
        const QByteArray columns = common.join(u',').toUtf8();
        Rows(text.ToSql(QStringLiteral("korvane new")).toUtf8());
        Rows("insert into \"korvane new\"(" + columns + ") select " + columns + " from \"" + table.toUtf8() +
             '"');
        Rows("drop table \"" + table.toUtf8() + '"');
        Rows("alter table \"korvane new\" rename to \"" + table.toUtf8() + '"');
    }

    const TSqlDialect FDialect;
    sqlite3 *FHandle = nullptr;
};

/// The rewritten text of a statement, its steps between " ;; "; a change of a table as
/// "kind T.name: text"; a refusal as "! " and its message.
inline QString Rewritten(const QString &text, TSqlDialect dialect)
{
    static const char *const Kinds[] = {"add column", "alter column", "drop column", "add constraint",
                                        "drop constraint"};
    try {
        QStringList steps;
        for (const TRewrittenStep &step : RewriteForSqlite(text, dialect).Steps) {
            if (step.Change)
                steps.append(QStringLiteral("%1 %2.%3: %4")
                                 .arg(QString::fromLatin1(Kinds[step.Change->Kind]), step.Change->Table,
                                      step.Change->Column, QString::fromUtf8(step.Change->Text)));
            else
                steps.append(QString::fromUtf8(step.Sql));
        }
        return steps.join(QStringLiteral(" ;; "));
    } catch (const ESqlError &error) {
        return QStringLiteral("! ") + error.Message();
    }
}

} // namespace Korvane
