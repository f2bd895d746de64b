// SPDX-License-Identifier: MIT
// The command that brings an old database into a new one.
#include "Commands.h"
#include "ToolOptions.h"

#include "design/DBDFile.h"
#include "import/DatabaseImport.h"
#include "session/DBSession.h"

namespace Korvane {

namespace {

QString StepText(TImportStep step)
{
    switch (step) {
    case TImportStep::Checking:
        return QStringLiteral("正在检查");
    case TImportStep::Loading:
        return QStringLiteral("正在导入");
    case TImportStep::Verifying:
        break;
    }
    return QStringLiteral("正在校验");
}

QString ProgressText(const TImportProgress &progress)
{
    const QString text = QStringLiteral("%1表 %2/%3 %4")
                             .arg(StepText(progress.Step), QString::number(progress.TableNo),
                                  QString::number(progress.TableCount), progress.Table);
    return progress.RowCount == 0 ? text : text + QStringLiteral("：%1 行").arg(progress.RowCount);
}

void Print(TToolStreams &streams, const QStringList &lines)
{
    for (const QString &line : lines)
        streams.Out << line << '\n';
}

/// What an import is asked to do; all of it but Import needs no database.
enum class TImportTask { Import, Plan, WriteDesign };

TImportTask TaskOf(const TCommandLine &line)
{
    const bool writes = line.Has(QStringLiteral("write-design"));
    const bool plans = line.Has(QStringLiteral("plan"));
    if (writes && (plans || line.Has(QStringLiteral("design"))))
        throw EUsageError(QStringLiteral("选项 --write-design 不能与 --design 或 --plan 同用"));
    const QString needed = writes ? QStringLiteral("write-design") : QStringLiteral("design");
    if (line.Value(needed).isEmpty())
        throw EUsageError(QStringLiteral("缺少选项 --") + needed);
    return writes ? TImportTask::WriteDesign : plans ? TImportTask::Plan : TImportTask::Import;
}

void WriteDesign(TDatabaseImport &import, const QString &fileName, TToolStreams &streams)
{
    Print(streams, import.WriteDesign(fileName));
    streams.Out << QStringLiteral("已写入设计文件 %1\n").arg(fileName);
}

void Import(TDatabaseImport &import, TDBSession &session, const TCommandLine &line, TToolStreams &streams)
{
    TProgressLine progress(streams, line.Has(QStringLiteral("progress")) ? TProgressLine::When::Always
                                                                         : TProgressLine::When::OnTerminal);
    import.OnProgress = [&](const TImportProgress &step) { progress.Show(ProgressText(step));
};
import.SetDBSession(&session);
import.SetBoolAsChar(line.Has(QStringLiteral("bool-as-char")));
import.Run();
progress.End();
Print(streams, import.Report().Lines());
streams.Out << QStringLiteral("已导入到数据库 %1\n").arg(session.DBName());
} // namespace

} // namespace Korvane

int RunImport(TCommandLine &line, TToolStreams &streams)
{
    TDatabaseImport import;
    import.SetFileName(line.Take(QStringLiteral("OLD")));
    line.CheckEnd();
    import.SetPassword(line.Value(QStringLiteral("old-password")));
    if (line.Has(QStringLiteral("user-code")))
        import.SetUserCode(line.Value(QStringLiteral("user-code")));
    if (line.Has(QStringLiteral("user-group")))
        import.SetUserGroup(line.Value(QStringLiteral("user-group")));
    const TImportTask task = TaskOf(line);
    if (task == TImportTask::WriteDesign) {
        WriteDesign(import, line.Value(QStringLiteral("write-design")), streams);
        return tsDone;
    }
    TDBSession session;
    if (task == TImportTask::Import)
        AimSession(session, line);
    TDBDFile design;
    OpenDesign(design, line.Value(QStringLiteral("design")));
    import.SetDBDFile(&design);
    if (task == TImportTask::Plan) {
        const TImportPlan plan = import.Plan();
        Print(streams, plan.Lines());
        return plan.Obstacles.isEmpty() ? tsDone : tsFailed;
    }
    Import(import, session, line, streams);
    return tsDone;
}

} // namespace Korvane
