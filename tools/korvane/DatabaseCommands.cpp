// SPDX-License-Identifier: MIT
// The commands that make a database and bring it up to date.
#include "Commands.h"
#include "ToolOptions.h"

#include "design/DBDFile.h"
#include "platform/core/StringList.h"
#include "session/DBSession.h"

#include <algorithm>

namespace Korvane {

namespace {

/// A list of statements, numbered, with the lines of one statement below each other.
QString Numbered(const QStringList &statements)
{
    QString text;
    for (qsizetype i = 0; i < statements.size(); ++i) {
        QStringList lines;
        SetTextOf(lines, statements[i]);
        text += QStringLiteral("%1. ").arg(i + 1, 4) + lines.join(QStringLiteral("\n      ")) + u'\n';
    }
    return text;
}

/// The version as the database now has it.
QString VersionText(TDBSession &session)
{
    try {
        return QStringLiteral("数据库版本仍为 %1。").arg(session.GetVersion());
    } catch (const Exception &) {
        return QStringLiteral("数据库版本已无法读取。");
    }
}

void ReportBrokenUpgrade(TToolStreams &streams, TDBSession &session, const QStringList &done)
{
    streams.Err << QStringLiteral("升级没有完成，") << VersionText(session) << '\n';
    if (done.isEmpty())
        streams.Err << QStringLiteral("失败之前没有执行任何语句。\n");
    else
        streams.Err << QStringLiteral("失败之前执行的 %1 批语句已经生效：\n").arg(done.size())
                    << Numbered(done);
}

} // namespace

int RunCreate(TCommandLine &line, TToolStreams &streams)
{
    const QString fileName = DesignFileName(line);
    TDBSession session;
    AimSession(session, line);
    line.CheckEnd();
    TDBDFile design;
    OpenDesign(design, fileName);

    const QString database = session.DBName();
    int tables = 0;
    TProgressLine progress(streams, line.Has(QStringLiteral("progress")) ? TProgressLine::When::Always
                                                                         : TProgressLine::When::OnTerminal);
    design.OnProgressEvent = [&](int count, int no) {
        tables = count;
        progress.Show(QStringLiteral("正在创建表 %1/%2").arg(no).arg(count));
    };
    design.CreateDB(session, line.Has(QStringLiteral("bool-as-char")));
    progress.End();
    streams.Out << QStringLiteral("已创建数据库 %1：%2 个表，版本 %3\n")
                       .arg(database, QString::number(tables), QString::number(design.GetMaxChangeNo()));
    return tsDone;
}

int RunUpgrade(TCommandLine &line, TToolStreams &streams)
{
    const QString fileName = DesignFileName(line);
    QStringList statements;
    TDBSession session;
    AimSession(session, line);
    line.CheckEnd();
    TDBDFile design;
    OpenDesign(design, fileName);

    session.OnExecute() = [&](const QString &statement) { statements.append(statement); };
    session.SetConnected(true);
    const int before = session.GetVersion();
    // The upgrade begins with the same two steps; their statements are no part of the changes.
    const qsizetype preamble = statements.size();
    statements.clear();
    try {
        if (!design.UpgradeDB(session))
            return tsDone;
    } catch (const Exception &error) {
        const QStringList done =
            statements.mid(preamble, std::max<qsizetype>(statements.size() - preamble - 1, 0));
        PrintError(streams, error);
        ReportBrokenUpgrade(streams, session, done);
        return tsFailed;
    }
    // The last statement writes the version.
    streams.Out << QStringLiteral("已从版本 %1 升级到版本 %2，执行了 %3 批语句\n")
                       .arg(before)
                       .arg(design.GetMaxChangeNo())
                       .arg(statements.size() - preamble - 1);
    return tsDone;
}

} // namespace Korvane
