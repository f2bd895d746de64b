// SPDX-License-Identifier: MIT
#include "import/ImportReport.h"

#include <numeric>

namespace Korvane {

namespace {

constexpr int MostOfColumn = 5;

QStringList NotesOf(const TImportColumn &column, const TConversionNotes &notes)
{
    QStringList lines;
    const auto add = [&](qint64 count, const QString &what) {
        if (count > 0)
            lines.append(QStringLiteral("%1：%2 %3").arg(column.Code, QString::number(count), what));
    };
    add(notes.NullsFilled, QStringLiteral("个空值填入默认值“%1”").arg(column.Default.value_or(QString())));
    add(notes.TimesDropped, QStringLiteral("个日期舍去了时间"));
    add(notes.OddDates, QStringLiteral("个值不是日历上的日期，原样保留"));
    return lines;
}

} // namespace

qint64 TImportReport::RowCount() const
{
    return std::accumulate(Tables.begin(), Tables.end(), qint64(0),
                           [](qint64 sum, const TImportedTable &table) { return sum + table.RowCount; });
}

void TImportReport::Add(const TImportProblem &problem)
{
    ++ProblemCount;
    if (++FShown[problem.Table + u'.' + problem.Column] <= MostOfColumn)
        Problems.append(problem);
}

void TImportReport::Add(const TImportTable &table, const TRowConverter &rows, qint64 rowCount)
{
    TImportedTable next{table.Code, table.Label, table.OldName, rowCount, rows.Columns().size(), {}};
    for (qsizetype i = 0; i < rows.Columns().size(); ++i)
        next.Notes += NotesOf(rows.Columns()[i], rows.Notes(size_t(i)));
    Tables.append(next);
}

QStringList TImportReport::Lines() const
{
    QStringList lines;
    for (const TImportedTable &table : Tables) {
        lines.append(QStringLiteral("%1 → %2：%3 行，%4 列校验一致")
                         .arg(table.OldName, WithLabel(table.Code, table.Label),
                              QString::number(table.RowCount), QString::number(table.ColumnCount)));
        for (const QString &note : table.Notes)
            lines.append(QStringLiteral("  ") + note);
    }
    lines.append(QStringLiteral("共 %1 个表，%2 行").arg(Tables.size()).arg(RowCount()));
    return lines;
}

QStringList TImportReport::FailureLines() const
{
    if (ProblemCount == 0)
        return QStringList{QStringLiteral("导入后校验不一致，没有建立新数据库")} + Differences;
    QStringList lines = {QStringLiteral("有 %1 处不能导入，没有建立新数据库").arg(ProblemCount)};
    for (const TImportProblem &problem : Problems)
        lines.append(QStringLiteral("  ") + problem.Text());
    if (ProblemCount > Problems.size())
        lines.append(QStringLiteral("  另有 %1 处").arg(ProblemCount - Problems.size()));
    return lines;
}

} // namespace Korvane
