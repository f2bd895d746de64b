// SPDX-License-Identifier: MIT
#include "LargeDesign.h"

#include "platform/sql/sqlite/SqliteDatabase.h"
#include "tests/platform/sql/jet/JetBuilder.h"

#include <QFile>

#include <cmath>

namespace Bench {

using namespace Korvane;

namespace {

constexpr auto Schema = R"(
create table Tables(TableCode text, TableClass text, TableName text, Remark text);
create table Fields(TableCode text, FieldNo integer, FieldCode text, FieldName text, FieldProp text, FieldType text,
  FieldPrecision integer, FieldSize integer, IsAuto text, IsKey text, IsNotNull text, FieldDefault text, Remark text);
create table Indexs(TableCode text, IndexCode text, IndexName text, IndexFields text, IsCluster text, IsUnique text);
create table Querys(QueryCode text, QueryClass text, QueryName text, Remark text, Tables text, Access text, MSSQL text);
create table Columns(QueryCode text, ColumnNo integer, ColumnName text, Expression text, Alias text, TableField text);
create table Commands(CommandCode text, CommandName text, Remark text, Access text, MSSQL text);
create table Changes(ChangeNo integer, ChangeDate text, ChangeName text, Remark text, Access text, MSSQL text);
create unique index FieldKey on Fields(TableCode, FieldCode);
)";

struct TFieldKind
{
    const char *Type;
    int Precision;
    int Size;
    const char *Default;
};

constexpr TFieldKind Kinds[] = {{"varchar", 0, 20, ""},  {"int", 0, 8, "0"},     {"decimal", 2, 14, "0"},
                                {"date", 0, 8, ""},      {"char", 0, 4, "A"},    {"float", 0, 8, "1"},
                                {"datetime", 0, 14, ""}, {"boolean", 0, 6, "N"}, {"text", 0, 0, ""},
                                {"smallint", 0, 6, "0"}};

void AddFields(TSqliteStatement &insert, int table)
{
    for (int i = 0; i < FieldsPerTable; ++i) {
        const TFieldKind &kind = Kinds[size_t(i) % std::size(Kinds)];
        const QString code = LargeFieldCode(i);
        const QVariantList values = {LargeTableCode(table),
                                     i + 1,
                                     code,
                                     QStringLiteral("字段%1").arg(i),
                                     code.left(1) + code.mid(1).toLower(),
                                     QLatin1String(kind.Type),
                                     kind.Precision,
                                     kind.Size,
                                     QStringLiteral("N"),
                                     i == 0 ? QStringLiteral("Y") : QStringLiteral("N"),
                                     i == 0 ? QStringLiteral("Y") : QStringLiteral("N"),
                                     QLatin1String(kind.Default),
                                     QVariant()};
        for (qsizetype column = 0; column < values.size(); ++column)
            insert.Bind(int(column) + 1, values[column]);
        insert.Step();
        insert.Reset();
    }
}

using Testing::TJetBuilder;

/// The statements of both dialects are memos, as in a design that is edited by hand.
TJetBuilder::TColumn JetColumn(const TPacketField &field)
{
    if (field.Name == QLatin1String("Access") || field.Name == QLatin1String("MSSQL"))
        return {field.Name, TJetType::Memo, 0, false};
    switch (ColumnKindOf(field.Type)) {
    case TColumnKind::Int32:
    case TColumnKind::Int64:
        return {field.Name, TJetType::LongInteger, 4, true};
    case TColumnKind::Double:
        if (field.Precision > 0)
            return {field.Name, TJetType::Decimal, 17, true, 18, field.Precision};
        return {field.Name, TJetType::Double, 8, true};
    default:
        return {field.Name, TJetType::Text, field.Size > 0 ? 2 * field.Size : 510, false};
    }
}

/// A sign and four words, the highest first.
QByteArray JetDecimal(double value, int scale)
{
    const auto digits = quint64(std::llround(std::fabs(value) * std::pow(10, scale)));
    return QByteArray(1, value < 0 ? '\x80' : '\0') + TJetBuilder::Int(0, 8) +
           TJetBuilder::Int(digits >> 32, 4) + TJetBuilder::Int(digits, 4);
}

QByteArray JetCell(TJetBuilder &builder, const TJetBuilder::TColumn &column, const TPacketColumn &cells,
                   qsizetype row)
{
    const auto utf16 = [&] { return TJetBuilder::Utf16(QString::fromUtf8(cells.Bytes(row))); };
    switch (column.Type) {
    case TJetType::LongInteger:
        return TJetBuilder::Int(quint64(cells.Int(row)), column.Size);
    case TJetType::Double:
        return TJetBuilder::DoubleBytes(cells.Doubles()[size_t(row)]);
    case TJetType::Decimal:
        return JetDecimal(cells.Doubles()[size_t(row)], column.Scale);
    case TJetType::Memo:
        return builder.ChainedValue(utf16());
    default:
        return utf16();
    }
}

void AddJetTable(TJetBuilder &builder, const QString &name, const TDataPacket &packet)
{
    QList<TJetBuilder::TColumn> columns;
    for (const TPacketField &field : packet.Fields())
        columns.append(JetColumn(field));
    builder.BeginTable(name, columns);
    TJetBuilder::TCells cells(columns.size());
    for (qsizetype row = 0; row < packet.RowCount(); ++row) {
        for (int i = 0; i < cells.size(); ++i) {
            cells[i].reset();
            if (!packet.Column(i).IsNull(row))
                cells[i] = JetCell(builder, columns[i], packet.Column(i), row);
        }
        builder.AddRow(cells);
    }
}

QByteArray SampleJetPage()
{
    QFile sample(QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.dbd"));
    if (!sample.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qUtf8Printable(sample.fileName()));
    return sample.read(4096);
}

} // namespace

QString LargeTableCode(int table) { return QStringLiteral("TABLE%1").arg(table, 3, 10, QLatin1Char('0')); }
QString LargeFieldCode(int field) { return QStringLiteral("FIELD%1").arg(field, 2, 10, QLatin1Char('0')); }

void MakeEmptyDesign(const QString &fileName)
{
    QFile::remove(fileName);
    TSqliteDatabase(fileName, TSqliteOpen::Create).Run(Schema);
}

void MakeLargeDesign(const QString &fileName)
{
    MakeEmptyDesign(fileName);
    TSqliteDatabase database(fileName, TSqliteOpen::ReadWrite);
    database.Run("begin");
    TSqliteStatement tables(database, "insert into Tables values(?, ?, ?, null)");
    TSqliteStatement fields(database, "insert into Fields values(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    TSqliteStatement indexs(database, "insert into Indexs values(?, ?, null, ?, 'N', 'N')");
    for (int table = 0; table < LargeTables; ++table) {
        const QString code = LargeTableCode(table);
        tables.Bind(1, code);
        tables.Bind(2, QStringLiteral("TTable%1").arg(table));
        tables.Bind(3, QStringLiteral("数据表%1").arg(table));
        tables.Step();
        tables.Reset();
        AddFields(fields, table);
        for (const char *columns : {"FIELD01", "FIELD03;FIELD04"}) {
            indexs.Bind(1, code);
            indexs.Bind(2, QStringLiteral("IX_%1_%2").arg(code, QLatin1String(columns, 7)));
            indexs.Bind(3, QLatin1String(columns));
            indexs.Step();
            indexs.Reset();
        }
    }
    // Commands have long texts, which stand apart from their rows in a Jet file.
    database.Run("with recursive n(i) as (values(1) union all select i + 1 from n where i < 60) "
                 "insert into Commands select 'COMMAND' || i, '命令' || i, null, "
                 "replace(hex(zeroblob(400)), '00', '更新 ' || i), replace(hex(zeroblob(400)), '00', '清理 ' "
                 "|| i) from n");
    database.Run("commit");
}

void MakeLargeJetDesign(const QString &storeFile, const QString &jetFile)
{
    TSqliteDatabase database(storeFile, TSqliteOpen::ReadOnly);
    QList<std::pair<QString, TDataPacket>> tables;
    for (const char *table : DesignTables)
        tables.append({QLatin1String(table),
                       TSqliteStatement(database, QByteArray("select * from ") + table).ReadAll()});
    WriteJetFile(jetFile, tables);
}

void WriteJetFile(const QString &fileName, const QList<std::pair<QString, TDataPacket>> &tables)
{
    TJetBuilder builder(SampleJetPage(), false);
    for (const auto &[name, packet] : tables)
        AddJetTable(builder, name, packet);
    const QByteArray bytes = builder.Build();
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qUtf8Printable(fileName));
}

} // namespace Bench
