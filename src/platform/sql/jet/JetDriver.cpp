// SPDX-License-Identifier: MIT
#include "platform/sql/jet/JetDriver.h"

#include "platform/sql/dialect/SqlFunctions.h"
#include "platform/sql/dialect/SqlRewriter.h"
#include "platform/sql/dialect/SqlTokenizer.h"
#include "platform/sql/jet/JetImport.h"
#include "platform/sql/sqlite/DatabaseFile.h"
#include "platform/sql/sqlite/SchemaRowsets.h"

#include <sqlite3.h>

namespace Korvane {

namespace {

bool IsSelect(const std::vector<TSqlToken> &tokens)
{
    const auto first = std::find_if(tokens.begin(), tokens.end(), [](const TSqlToken &token) {
        return !token.IsOperator(QLatin1String("("));
    });
    return first != tokens.end() && first->Is(QLatin1String("select"));
}

/// What may be names of tables, in upper case.
QSet<QString> NamesIn(const std::vector<TSqlToken> &tokens)
{
    QSet<QString> names;
    for (const TSqlToken &token : tokens) {
        if (token.IsName())
            names.insert(SqlName(token).toUpper());
    }
    return names;
}

bool Admits(const QVariantList &restrictions, int field, const QString &value)
{
    const QString wanted = restrictions.value(field).toString();
    return wanted.isEmpty() || wanted.compare(value, Qt::CaseInsensitive) == 0;
}

void AppendText(TDataPacketBuilder &builder, int field, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    builder.AppendText(field, {utf8.constData(), size_t(utf8.size())});
}

QString KindName(TJetTableKind kind)
{
    switch (kind) {
    case TJetTableKind::SystemTable:
        return QStringLiteral("SYSTEM TABLE");
    case TJetTableKind::View:
        return QStringLiteral("VIEW");
    case TJetTableKind::Table:
        break;
    }
    return QStringLiteral("TABLE");
}

TDataPacket JetTablesRowset(const TJetFile &file, const QVariantList &restrictions)
{
    QList<TJetTableInfo> tables = file.Tables();
    std::stable_partition(tables.begin(), tables.end(), [](const TJetTableInfo &table) {
        return table.Kind == TJetTableKind::SystemTable;
    });
    TDataPacketBuilder builder({{QStringLiteral("TABLE_NAME"), ftString, 128},
                                {QStringLiteral("TABLE_TYPE"), ftString, 20},
                                {QStringLiteral("DATE_CREATED"), ftDateTime}});
    for (const TJetTableInfo &table : tables) {
        const QString kind = KindName(table.Kind);
        if (!Admits(restrictions, 0, table.Name) || !Admits(restrictions, 1, kind))
            continue;
        AppendText(builder, 0, table.Name);
        AppendText(builder, 1, kind);
        builder.AppendDouble(2, table.Created);
        builder.EndRow();
    }
    return std::move(builder).Build();
}

/// The embedded engine answers for tables of the same names and types.
TDataPacket JetColumnsRowset(TJetFile &file, const QVariantList &restrictions)
{
    TSqliteDatabase database(file.FileName(), TSqliteOpen::Memory);
    for (const TJetTableInfo &table : file.Tables()) {
        if (table.Kind != TJetTableKind::View)
            CreateJetTable(table.Name, file.Columns(table.Name), TJetNulls::AsDeclared, database);
    }
    return ColumnsRowset(database, restrictions);
}

TDataPacket JetIndexesRowset(TJetFile &file, const QVariantList &restrictions)
{
    TDataPacketBuilder builder({{QStringLiteral("TABLE_NAME"), ftString, 128},
                                {QStringLiteral("INDEX_NAME"), ftString, 128},
                                {QStringLiteral("COLUMN_NAME"), ftString, 128},
                                {QStringLiteral("ORDINAL_POSITION"), ftInteger},
                                {QStringLiteral("UNIQUE"), ftString, 1},
                                {QStringLiteral("PRIMARY_KEY"), ftString, 1}});
    const auto flag = [](bool value) { return value ? QStringLiteral("Y") : QStringLiteral("N"); };
    for (const TJetTableInfo &table : file.Tables()) {
        if (table.Kind != TJetTableKind::Table || !Admits(restrictions, 0, table.Name))
            continue;
        for (const TJetIndex &index : file.Indexes(table.Name)) {
            for (qsizetype i = 0; i < index.Columns.size(); ++i) {
                const QStringList row = {table.Name,           index.Name,
                                         index.Columns[i],     QString::number(i + 1),
                                         flag(index.IsUnique), flag(index.IsPrimary)};
                bool isAdmitted = true;
                for (int field = 1; field < row.size(); ++field)
                    isAdmitted = isAdmitted && Admits(restrictions, field, row[field]);
                if (!isAdmitted)
                    continue;
                for (int field = 0; field < row.size(); ++field)
                    if (field != 3)
                        AppendText(builder, field, row[field]);
                builder.AppendInt(3, i + 1);
                builder.EndRow();
            }
        }
    }
    return std::move(builder).Build();
}

} // namespace

bool TJetDriver::IsJetFile(const QString &fileName) { return TJetFile::IsJetFile(fileName); }

bool TJetDriver::HasFeature(TSqlFeature feature) const
{
    return feature == TSqlFeature::ReadOnly || feature == TSqlFeature::BlobParameters;
}

void TJetDriver::Connect(const TConnectionString &connection, const TSqlConnectOptions &)
{
    Disconnect();
    const QString fileName = connection.DataSource();
    if (fileName.isEmpty())
        throw ESqlError(QStringLiteral("没有指定数据库文件"));
    const TJetFile file(fileName);
    if (!file.Password().isEmpty() && file.Password() != connection.Password())
        throw ESqlError(QStringLiteral("数据库文件“%1”设有密码，给出的密码不正确").arg(fileName));
    FFileName = fileName;
}

void TJetDriver::DropDatabase(const TConnectionString &connection)
{
    RemoveDatabaseFile(connection.DataSource());
}

void TJetDriver::Disconnect() { FFileName.clear(); }

qint64 TJetDriver::Execute(const QString &statement, std::span<const TSqlParameter> parameters)
{
    Query(statement, parameters);
    return 0;
}

TDataPacket TJetDriver::Query(const QString &statement, std::span<const TSqlParameter> parameters)
{
    CheckConnected();
    const std::vector<TSqlToken> tokens = TokenizeSql(statement, TSqlDialect::Access);
    if (!IsSelect(tokens))
        FailReadOnly();
    const TRewrittenStatement rewritten = RewriteForSqlite(statement, TSqlDialect::Access);
    const QSet<QString> names = NamesIn(tokens);

    TJetFile file(FFileName);
    TSqliteDatabase database(FFileName, TSqliteOpen::Memory);
    RegisterSqlFunctions(database.Handle(), TSqlDialect::Access);
    database.Run("begin");
    for (const TJetTableInfo &table : file.Tables()) {
        if (table.Kind != TJetTableKind::View && names.contains(table.Name.toUpper()))
            CopyJetTable(file, table.Name, database);
    }
    database.Run("commit");

    TDataPacket rows;
    for (const TRewrittenStep &step : rewritten.Steps) {
        if (step.Change)
            FailReadOnly();
        TSqliteStatement select(database, step.Sql);
        if (!select.IsValid())
            continue;
        if (select.ColumnCount() == 0 || !sqlite3_stmt_readonly(select.Handle()))
            FailReadOnly();
        select.Bind(parameters);
        rows = select.ReadAll();
    }
    return rows;
}

void TJetDriver::BeginTransaction() { FailReadOnly(); }

void TJetDriver::CommitTransaction() { FailReadOnly(); }

void TJetDriver::RollbackTransaction() {}

TDataPacket TJetDriver::OpenSchema(TSchemaInfo schema, const QVariantList &restrictions, const QString &)
{
    CheckConnected();
    TJetFile file(FFileName);
    switch (schema) {
    case siTables:
        return JetTablesRowset(file, restrictions);
    case siColumns:
        return JetColumnsRowset(file, restrictions);
    case siIndexes:
        return JetIndexesRowset(file, restrictions);
    case siProviderSpecific:
        break;
    }
    throw ESqlError(QStringLiteral("读取数据库文件“%1”时不提供此结构信息").arg(FFileName));
}

void TJetDriver::CheckConnected() const
{
    if (!IsConnected())
        throw ESqlError(QStringLiteral("数据库没有连接"));
}

void TJetDriver::FailReadOnly() const
{
    throw ESqlError(QStringLiteral("数据库文件“%1”是只读的，只能执行查询").arg(FFileName));
}

} // namespace Korvane
