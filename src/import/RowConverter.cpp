// SPDX-License-Identifier: MIT
#include "import/RowConverter.h"

namespace Korvane {

QString TImportProblem::Text() const
{
    const QString place = Column.isEmpty() ? Table : Table + u'.' + Column;
    const QString row = place + QStringLiteral("（%1）").arg(Row);
    return (Column.isEmpty() ? row : row + QStringLiteral("“%1”").arg(Value)) + QStringLiteral("：") + Reason;
}

TRowConverter::TRowConverter(const TImportTable &table)
    : FTable(table.Code), FColumns(table.Filled()), FValues(size_t(FColumns.size()))
{
    for (const TImportColumn &column : FColumns)
        FConverters.emplace_back(column);
}

bool TRowConverter::Convert(std::span<const TJetCell> row)
{
    static const TJetCell null;
    ++FRow;
    bool fits = true;
    for (size_t i = 0; i < FConverters.size(); ++i) {
        const int old = FColumns[qsizetype(i)].Old;
        const TJetCell &cell = old < 0 ? null : row[size_t(old)];
        try {
            FValues[i] = FConverters[i].Convert(cell);
        } catch (const EImportValue &error) {
            FValues[i] = {};
            fits = false;
            if (OnProblem)
                OnProblem({FTable, RowText(row), FColumns[qsizetype(i)].Code, CellForReport(cell),
                           error.Message()});
        }
    }
    return fits;
}

QString TRowConverter::RowText(std::span<const TJetCell> row) const
{
    QStringList key;
    for (const TImportColumn &column : FColumns)
        if (column.IsKey && column.Old >= 0)
            key.append(column.Code + u'=' + CellForReport(row[size_t(column.Old)]));
    return key.isEmpty() ? QStringLiteral("第 %1 行").arg(FRow) : key.join(QStringLiteral("，"));
}

} // namespace Korvane
