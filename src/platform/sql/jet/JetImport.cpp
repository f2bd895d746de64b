// SPDX-License-Identifier: MIT
#include "platform/sql/jet/JetImport.h"

#include "platform/sql/dialect/SqlTokenizer.h"

namespace Korvane {

namespace {

QString DeclaredType(const TJetColumn &column)
{
    switch (column.Type) {
    case TJetType::Boolean:
        return QStringLiteral("bit");
    case TJetType::Byte:
    case TJetType::Integer:
        return QStringLiteral("smallint");
    case TJetType::LongInteger:
        return QStringLiteral("int");
    case TJetType::Money:
        return QStringLiteral("money");
    case TJetType::Single:
    case TJetType::Double:
        return QStringLiteral("float");
    case TJetType::DateTime:
        return QStringLiteral("datetime");
    case TJetType::Text:
        return (column.IsFixed ? QStringLiteral("char(%1)") : QStringLiteral("varchar(%1)")).arg(column.Size);
    case TJetType::Memo:
        return QStringLiteral("text");
    case TJetType::Guid:
        return QStringLiteral("char(38)");
    case TJetType::Decimal:
        return QStringLiteral("decimal(%1,%2)").arg(column.Precision).arg(column.Scale);
    case TJetType::Binary:
    case TJetType::Ole:
        break;
    }
    return QStringLiteral("blob");
}

void BindCell(TSqliteStatement &insert, int index, const TJetCell &cell)
{
    switch (cell.Kind) {
    case TJetCell::Null:
        return insert.BindNull(index);
    case TJetCell::Integer:
        return insert.BindInt(index, cell.Int);
    case TJetCell::Real:
        return insert.BindDouble(index, cell.Number);
    case TJetCell::Text:
        return insert.BindText(index, cell.Bytes);
    case TJetCell::Blob:
        return insert.BindBlob(index, cell.Bytes);
    }
}

} // namespace

void CreateJetTable(const QString &table, const QList<TJetColumn> &columns, TJetNulls nulls,
                    TSqliteDatabase &database)
{
    QStringList definitions;
    for (const TJetColumn &column : columns) {
        const bool isNullable = nulls == TJetNulls::Allowed || column.IsNullable;
        definitions.append(QuotedSqlName(column.Name) + u' ' + DeclaredType(column) +
                           (isNullable ? QString() : QStringLiteral(" not null")));
    }
    database.Run(QStringLiteral("create table %1 (%2)")
                     .arg(QuotedSqlName(table), definitions.join(QStringLiteral(", ")))
                     .toUtf8());
}

void CopyJetTable(TJetFile &file, const QString &table, TSqliteDatabase &database)
{
    const QList<TJetColumn> columns = file.Columns(table);
    CreateJetTable(table, columns, TJetNulls::Allowed, database);
    const QString values = QStringList(columns.size(), QStringLiteral("?")).join(u',');
    TSqliteStatement insert(
        database, QStringLiteral("insert into %1 values (%2)").arg(QuotedSqlName(table), values).toUtf8());
    file.ReadTable(table, [&insert](std::span<const TJetCell> row) {
        for (size_t i = 0; i < row.size(); ++i)
            BindCell(insert, int(i) + 1, row[i]);
        insert.Step();
        insert.Reset();
    });
}

} // namespace Korvane
