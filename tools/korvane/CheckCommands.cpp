// SPDX-License-Identifier: MIT
// The commands that find and fill NULLs.
#include "Commands.h"
#include "TextTable.h"
#include "ToolOptions.h"

#include "design/DBDFile.h"
#include "general/Messages.h"
#include "platform/core/Prompts.h"
#include "session/DBSession.h"

#include <QRegularExpression>

namespace Korvane {

namespace {

/// A column and how many rows of it are NULL, or were filled.
struct TColumnCount
{
    QString Table;
    QString Column;
    QString Label;
    qsizetype Rows;
};

/// Cuts the column out of a statement of the design file; the third part is empty where the
/// pattern has none.
TColumnCount ColumnOf(const QString &statement, const QString &pattern)
{
    static const auto options = QRegularExpression::DotMatchesEverythingOption;
    const QRegularExpressionMatch parts = QRegularExpression(pattern, options).match(statement);
    return {parts.captured(1), parts.captured(2), parts.captured(3), 0};
}

TColumnCount CheckedColumn(const QString &statement)
{
    return ColumnOf(statement, QStringLiteral("^select 1 from (\\S+) where (\\S+) is null  --(.*)$"));
}

TColumnCount RepairedColumn(const QString &statement)
{
    return ColumnOf(statement, QStringLiteral("^update (\\S+) set (\\S+) = "));
}

TProgressLine::When ProgressOf(const TCommandLine &line)
{
    return line.Has(QStringLiteral("progress")) ? TProgressLine::When::Always
                                                : TProgressLine::When::OnTerminal;
}

void ShowStep(TProgressLine &progress, const QString &what, qsizetype no, const QStringList &statements)
{
    progress.Show(QStringLiteral("%1 %2/%3").arg(what).arg(no + 1).arg(statements.size()));
}

QList<TColumnCount> FindNulls(const QStringList &statements, TDBSession &session, TProgressLine &progress)
{
    QList<TColumnCount> found;
    for (qsizetype i = 0; i < statements.size(); ++i) {
        ShowStep(progress, QStringLiteral("正在检查栏位"), i, statements);
        const qsizetype rows = session.Open(statements[i]).RowCount();
        if (rows == 0)
            continue;
        found.append(CheckedColumn(statements[i]));
        found.last().Rows = rows;
    }
    progress.End();
    return found;
}

QList<TColumnCount> FillNulls(const QStringList &statements, TDBSession &session, TProgressLine &progress)
{
    QList<TColumnCount> filled;
    for (qsizetype i = 0; i < statements.size(); ++i) {
        ShowStep(progress, QStringLiteral("正在填充栏位"), i, statements);
        const int rows = session.Execute(statements[i]);
        if (rows <= 0)
            continue;
        filled.append(RepairedColumn(statements[i]));
        filled.last().Rows = rows;
    }
    progress.End();
    return filled;
}

/// Fills all or nothing.
QList<TColumnCount> FillInTransaction(const QStringList &statements, TDBSession &session,
                                      TProgressLine &progress)
{
    session.BeginTrans();
    try {
        const QList<TColumnCount> filled = FillNulls(statements, session, progress);
        session.CommitTrans();
        return filled;
    } catch (...) {
        progress.End();
        session.RollbackTrans();
        throw;
    }
}

void PrintNulls(TToolStreams &streams, const QList<TColumnCount> &columns)
{
    TTextTable table;
    table.AddColumn(QStringLiteral("表.栏位"));
    table.AddColumn(QStringLiteral("名称"));
    table.AddColumn(QStringLiteral("空值行数"), TTextTable::Alignment::Right);
    for (const TColumnCount &column : columns)
        table.AddRow({column.Table + u'.' + column.Column, column.Label, QString::number(column.Rows)});
    streams.Out << table.ToText();
}

void PrintFilled(TToolStreams &streams, const QList<TColumnCount> &columns)
{
    qsizetype rows = 0;
    for (const TColumnCount &column : columns) {
        rows += column.Rows;
        streams.Out << QStringLiteral("%1.%2 填充了 %3 行\n")
                           .arg(column.Table, column.Column, QString::number(column.Rows));
    }
    streams.Out << QStringLiteral("共填充 %1 个栏位的 %2 个空值\n").arg(columns.size()).arg(rows);
}

/// The design and the database that a command line names, opened and connected.
struct TCheckedDatabase
{
    explicit TCheckedDatabase(TCommandLine &line)
    {
        const QString fileName = DesignFileName(line);
        AimSession(Session, line);
        line.CheckEnd();
        OpenDesign(Design, fileName);
        Session.SetConnected(true);
    }

    TDBDFile Design;
    TDBSession Session;
};

} // namespace

int RunCheck(TCommandLine &line, TToolStreams &streams)
{
    TCheckedDatabase checked(line);
    TDBSession &session = checked.Session;
    TProgressLine progress(streams, ProgressOf(line));
    const QStringList statements = checked.Design.GetCheckSQL();
    const QList<TColumnCount> found = FindNulls(statements, session, progress);
    if (!found.isEmpty())
        PrintNulls(streams, found);
    streams.Out << QStringLiteral("检查了 %1 个栏位，%2 个有空值\n").arg(statements.size()).arg(found.size());
    return found.isEmpty() ? tsDone : tsFailed;
}

int RunRepair(TCommandLine &line, TToolStreams &streams)
{
    TCheckedDatabase checked(line);
    TDBSession &session = checked.Session;
    TProgressLine progress(streams, ProgressOf(line));
    const QStringList statements = checked.Design.GetCheckSQL();
    const QList<TColumnCount> found = FindNulls(statements, session, progress);
    if (found.isEmpty()) {
        streams.Out << QStringLiteral("没有空值，不需填充\n");
        return tsDone;
    }
    PrintNulls(streams, found);
    if (ShowDialog(QStringLiteral("是否填充以上空值？"), 0) == IDNO) {
        streams.Err << QStringLiteral("没有填充空值\n");
        return tsFailed;
    }
    PrintFilled(streams, FillInTransaction(checked.Design.GetRepairSQL(), session, progress));
    const QList<TColumnCount> left = FindNulls(statements, session, progress);
    if (!left.isEmpty()) {
        streams.Out << QStringLiteral("以下栏位没有可填充的值，仍有空值：\n");
        PrintNulls(streams, left);
    }
    return tsDone;
}

} // namespace Korvane
