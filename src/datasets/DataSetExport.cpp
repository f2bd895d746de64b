// SPDX-License-Identifier: MIT
// The part of TExCustomDataSet that writes files for spreadsheet programs.
#include "datasets/ExCustomDataSet.h"
#include "datasets/export/RowExport.h"
#include "datasets/export/XlsWriter.h"
#include "datasets/export/XlsxWriter.h"
#include "general/Messages.h"
#include "platform/core/Prompts.h"
#include "platform/core/TryFinally.h"

#include <QFileInfo>

namespace Korvane {

namespace {

constexpr qsizetype RowsPerProgress = 1000;

/// The name that the user gives, with the ending if he gives none; empty if he cancels.
QString AskForName(const QString &ending)
{
    QString name = Prompts::Current().SaveFileName(QStringLiteral("导出Excel"),
                                                   QStringLiteral("Excel文件(*.%1)").arg(ending), QString());
    if (!name.isEmpty() && !QFileInfo(name).fileName().contains(u'.'))
        name += u'.' + ending;
    return name;
}

void TellDone() { ShowMsg(QStringLiteral("导出数据成功完成")); }

TExportForm WorksheetForm(TFieldType type)
{
    switch (type) {
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftBytes:
    case ftAutoInc:
        return TExportForm::Integer;
    case ftFloat:
    case ftCurrency:
    case ftBCD:
        return TExportForm::Float;
    default:
        return TExportForm::Text;
    }
}

/// NOTE: unlike a worksheet file's, bytes are no numbers here and large integers are.
TExportForm WorkbookForm(TFieldType type)
{
    if (type == ftBytes)
        return TExportForm::Text;
    return type == ftLargeint ? TExportForm::Integer : WorksheetForm(type);
}

QList<TXlsxColumn> WorkbookColumns(const TDataSet &dataSet)
{
    QList<TXlsxColumn> columns;
    for (const TField *field : dataSet.Fields())
        columns.append({field->DisplayLabel(), field->DisplayWidth()});
    return columns;
}

void CheckFitsWorkbook(const TDataSet &dataSet)
{
    dataSet.CheckActive();
    const qsizetype rows = TXlsxWriter::MaxRowCount - 1;
    if (dataSet.RecordCount() > rows)
        throw EOutOfResources(QStringLiteral("共有 %1 行数据，Excel 工作表最多放得下 %2 行，没有导出")
                                  .arg(dataSet.RecordCount())
                                  .arg(rows));
    if (dataSet.FieldCount() > TXlsxWriter::MaxColumnCount)
        throw EOutOfResources(QStringLiteral("共有 %1 列数据，Excel 工作表最多放得下 %2 列，没有导出")
                                  .arg(dataSet.FieldCount())
                                  .arg(TXlsxWriter::MaxColumnCount));
}

} // namespace

void TExCustomDataSet::ExportToExcel()
{
    const QString fileName = AskForName(QStringLiteral("xls"));
    if (fileName.isEmpty())
        return;
    ExportToExcel(fileName);
    TellDone();
}

void TExCustomDataSet::ExportToExcel(const QString &fileName)
{
    auto begun = std::make_unique<TXlsWriter>(fileName, FieldCount());
    for (const TField *field : Fields())
        begun->Text(field->DisplayLabel());
    WithControlsDisabled(*this, [&] {
        // The file is closed, whatever happens, before the controls read their rows again.
        const auto writer = std::move(begun);
        const TBookmark bookmark = GetBookmark();
        TRowExport rows(*this, WorksheetForm, TRowExport::TNullNumber::Zero);
        for (First(); !Eof(); Next())
            rows.WriteRow(*writer);
        writer->End();
        if (BookmarkValid(bookmark))
            GotoBookmark(bookmark);
        writer->Close();
    });
}

void TExCustomDataSet::ExportToWorkbook()
{
    CheckFitsWorkbook(*this);
    const QString fileName = AskForName(QStringLiteral("xlsx"));
    if (fileName.isEmpty())
        return;
    ExportToWorkbook(fileName);
    TellDone();
}

void TExCustomDataSet::ExportToWorkbook(const QString &fileName)
{
    CheckBrowseMode(); // a row that is being typed is one of those to write
    CheckFitsWorkbook(*this);
    TXlsxWriter writer(fileName, WorkbookColumns(*this));
    WithControlsDisabled(*this, [&] {
        const TBookmark bookmark = GetBookmark();
        TryFinally([&] { WriteWorkbookRows(writer); },
                   [&] {
                       if (BookmarkValid(bookmark))
                           GotoBookmark(bookmark);
                   });
        writer.Close();
    });
}

void TExCustomDataSet::WriteWorkbookRows(TXlsxWriter &writer)
{
    const auto tell = [this](qsizetype written) {
        bool cancel = false;
        OnExportProgress(written, RecordCount(), cancel);
        if (cancel)
            Abort();
    };
    TRowExport rows(*this, WorkbookForm, TRowExport::TNullNumber::Skipped);
    qsizetype written = 0;
    for (First(); !Eof(); Next()) {
        rows.WriteRow(writer);
        writer.EndRow();
        if (++written % RowsPerProgress == 0)
            tell(written);
    }
    if (written % RowsPerProgress != 0 || written == 0)
        tell(written);
}

} // namespace Korvane
