// SPDX-License-Identifier: MIT
// The command that writes a table's or a query's rows into a file for another program.
#include "Commands.h"
#include "RowPrinter.h"
#include "ToolOptions.h"

#include "datasets/ExDB.h"
#include "design/DBDFile.h"
#include "general/Messages.h"
#include "platform/core/Prompts.h"
#include "session/DBSession.h"

#include <QFileInfo>
#include <QSaveFile>

namespace Korvane {

namespace {

/// A file's form, told by its ending.
enum class TExportTarget { Csv, Worksheet, Workbook };

/// Rows of a worksheet file behind its head.
constexpr qsizetype WorksheetRows = 65'535;

TExportTarget TargetOf(const QString &fileName)
{
    const QString ending = QFileInfo(fileName).suffix().toLower();
    if (ending == QLatin1String("csv"))
        return TExportTarget::Csv;
    if (ending == QLatin1String("xls"))
        return TExportTarget::Worksheet;
    if (ending == QLatin1String("xlsx"))
        return TExportTarget::Workbook;
    throw EUsageError(
        QStringLiteral("无法从文件名 %1 得知格式，应以 .xls、.xlsx 或 .csv 结尾").arg(fileName));
}

void WriteCsv(const TExCustomDataSet &dataSet, const QString &fileName, bool hasMark)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        throw EFileError(QStringLiteral("创建文件“%1”失败：%2").arg(fileName, file.errorString()));
    if (hasMark)
        file.write("\xEF\xBB\xBF");
    WriteRowsAsCsv(dataSet.Data(), file);
    if (!file.commit())
        throw EFileError(QStringLiteral("写文件“%1”失败：%2").arg(fileName, file.errorString()));
}

void WriteWorkbook(TExCustomDataSet &dataSet, const QString &fileName, const TCommandLine &line,
                   TToolStreams &streams)
{
    TProgressLine progress(streams, line.Has(QStringLiteral("progress")) ? TProgressLine::When::Always
                                                                         : TProgressLine::When::OnTerminal);
    dataSet.OnExportProgress = [&](qsizetype rows, qsizetype all, bool &) {
        progress.Show(QStringLiteral("正在导出第 %1/%2 行").arg(rows).arg(all));
    };
    dataSet.ExportToWorkbook(fileName);
}

/// A file of the form does not lose rows without a word.
void CheckFitsWorksheet(const TExCustomDataSet &dataSet)
{
    if (dataSet.RecordCount() > WorksheetRows)
        throw Exception(QStringLiteral("共有 %1 行数据，.xls 文件最多放得下 %2 行，请导出为 .xlsx 文件")
                            .arg(dataSet.RecordCount())
                            .arg(WorksheetRows));
}

/// A dataset on the table of a code or class name, or else on the query.
std::unique_ptr<TExCustomDataSet> DataSetNamed(const TDBDFile &design, const QString &name)
{
    for (const auto &row : design.GetTables())
        if (row->TableCode == name || row->TableClass == name) {
            auto table = std::make_unique<TExTable>();
            table->SetTable(row->TableCode);
            return table;
        }
    for (const auto &row : design.GetQuerys())
        if (row->QueryCode == name || row->QueryClass == name) {
            auto query = std::make_unique<TExQuery>();
            query->SetQuery(row->QueryCode);
            return query;
        }
    throw Exception(QStringLiteral("设计文件中没有表或查询 ") + name);
}

bool IsRefused(const QString &fileName, TToolStreams &streams)
{
    if (!QFileInfo(fileName).isFile() ||
        ShowDialog(QStringLiteral("文件 %1 已经存在，是否覆盖？").arg(fileName), 0) != IDNO)
        return false;
    streams.Err << QStringLiteral("没有导出\n");
    return true;
}

} // namespace

int RunExport(TCommandLine &line, TToolStreams &streams)
{
    TDBSession session;
    AimSession(session, line);
    const QString designName = DesignFileName(line);
    const QString name = line.Take(QStringLiteral("NAME"));
    const QString fileName = line.Take(QStringLiteral("FILE"));
    line.CheckEnd();
    const TExportTarget target = TargetOf(fileName);
    const bool hasMark = line.Has(QStringLiteral("bom"));
    if (hasMark && target != TExportTarget::Csv)
        throw EUsageError(QStringLiteral("选项 --bom 只用于 .csv 文件"));

    TDBDFile design;
    OpenDesign(design, designName);
    const auto dataSet = DataSetNamed(design, name);
    dataSet->SetDBDFile(&design);
    dataSet->SetDBSession(&session);
    if (IsRefused(fileName, streams))
        return tsFailed;
    dataSet->OpenTable(line.Value(QStringLiteral("where")), line.Value(QStringLiteral("order")), 0);
    if (target == TExportTarget::Csv) {
        WriteCsv(*dataSet, fileName, hasMark);
    } else if (target == TExportTarget::Workbook) {
        WriteWorkbook(*dataSet, fileName, line, streams);
    } else {
        CheckFitsWorksheet(*dataSet);
        dataSet->ExportToExcel(fileName);
    }
    streams.Out << QStringLiteral("已把 %1 行导出到 %2\n").arg(dataSet->RecordCount()).arg(fileName);
    return tsDone;
}

} // namespace Korvane
