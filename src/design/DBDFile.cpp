// SPDX-License-Identifier: MIT
#include "design/DBDFile.h"

#include "general/TextRoutines.h"
#include "session/DBSession.h"

namespace Korvane {

namespace {

template <class Row> TObjectList<Row> ObjectsOf(const std::vector<Row> &rows)
{
    TObjectList<Row> objects;
    objects.reserve(qsizetype(rows.size()));
    for (const Row &row : rows)
        objects.append(std::make_shared<Row>(row));
    return objects;
}

/// The two parts of TableCode.FieldCode; without a "." the table part is empty.
std::pair<QString, QString> SplitTableField(const QString &tableField)
{
    const qsizetype dot = tableField.indexOf(QLatin1Char('.'));
    return {dot < 0 ? QString() : tableField.left(dot), tableField.mid(dot + 1)};
}

} // namespace

TDBDFile::TDBDFile(QObject *owner) : TComponent(owner)
{
    FConnection.SetKeepConnection(true);
    FConnection.SetLoginPrompt(false);
    FConnection.SetMode(cmRead);
    FDBDTable.SetDBDFile(this);
    FDBDQuery.SetDBDFile(this);
    FDBDCommand.SetDBDFile(this);
    FDBDChange.SetDBDFile(this);
}

TDBDFile::~TDBDFile() = default;

void TDBDFile::SetActived(bool actived)
{
    FConnection.SetConnected(false);
    CloseAll(); // what was read goes with the connection
    FConnection.SetConnectionString(AccessConnectionString(FFileName, QStringLiteral("Admin"), QString()));
    if (!actived) {
        FActived = false;
        return;
    }
    try {
        FConnection.SetConnected(true);
    } catch (const Exception &) {
        if (!FConnection.Errors().isEmpty())
            throw Exception(FConnection.Errors().first().Description);
        throw Exception(QStringLiteral("连接失败，请检验属性设置是否正确"));
    }
    OpenAll();
    FActived = true;
}

void TDBDFile::OpenAll()
{
    try {
        FTables.Open(FConnection);
        FQuerys.Open(FConnection);
        FCommands.Open(FConnection);
        FFields.Open(FConnection);
        FIndexs.Open(FConnection);
        FColumns.Open(FConnection);
        FChanges.Open(FConnection);
    } catch (const Exception &error) {
        CloseAll();
        FConnection.SetConnected(false);
        throw Exception(QStringLiteral("不是有效的数据库设计文件：%1（%2）").arg(FFileName, error.Message()));
    }
}

void TDBDFile::CloseAll()
{
    FTables.Close();
    FQuerys.Close();
    FCommands.Close();
    FFields.Close();
    FIndexs.Close();
    FColumns.Close();
    FChanges.Close();
}

void TDBDFile::Refresh(TRefreshType type)
{
    FConnection.SetConnected(true);
    switch (type) {
    case rtAll:
        CloseAll();
        OpenAll();
        break;
    case rtTables:
        FTables.Open(FConnection);
        FFields.Open(FConnection);
        FIndexs.Open(FConnection);
        break;
    case rtQuerys:
        FQuerys.Open(FConnection);
        FColumns.Open(FConnection);
        break;
    case rtCommands:
        FCommands.Open(FConnection);
        break;
    case rtChanges:
        FChanges.Open(FConnection);
        break;
    }
}

TObjectList<TTablesObject> TDBDFile::GetTables() const { return ObjectsOf(FTables.Rows()); }
TObjectList<TQuerysObject> TDBDFile::GetQuerys() const { return ObjectsOf(FQuerys.Rows()); }
TObjectList<TCommandsObject> TDBDFile::GetCommands() const { return ObjectsOf(FCommands.Rows()); }
TObjectList<TChangesObject> TDBDFile::GetChanges() const { return ObjectsOf(FChanges.Rows()); }

QString TDBDFile::GetTableNames() const
{
    QString names;
    for (const TTablesObject &table : FTables.Rows())
        names += AddSpaces(table.TableCode, 20, QStringLiteral(" "), false) + table.TableName +
                 QStringLiteral("\r\n");
    return names;
}

std::shared_ptr<TTablesObject> TDBDFile::GetTable(const QString &table)
{
    const TTablesObject *found = FTables.Locate(&TTablesObject::TableCode, table);
    if (!found && !table.isEmpty())
        found = FTables.Locate(&TTablesObject::TableClass, table);
    if (!found)
        throw Exception(QStringLiteral("数据库设计文件中没有定义表信息 ") + table);
    auto object = std::make_shared<TTablesObject>(*found);
    FLatestTable.Fields = GetTableFields(object->TableCode);
    FLatestTable.Indexs = GetTableIndexs(object->TableCode);
    return object;
}

TObjectList<TFieldsObject> TDBDFile::GetTableFields(const QString &tableCode)
{
    TObjectList<TFieldsObject> fields, keys;
    for (const quint32 row : FFields.RowsWith(&TFieldsObject::TableCode, tableCode)) {
        fields.append(std::make_shared<TFieldsObject>(FFields.Rows()[row]));
        if (fields.last()->IsKey)
            keys.append(fields.last());
    }
    // A table without a marked key has all its fields as key.
    FLatestTable.KeyFields = keys.isEmpty() ? fields : keys;
    QStringList codes;
    for (const auto &key : std::as_const(FLatestTable.KeyFields))
        codes.append(key->FieldCode);
    FLatestTable.KeyFieldStr = codes.join(QLatin1Char(';'));
    return fields;
}

TObjectList<TIndexsObject> TDBDFile::GetTableIndexs(const QString &tableCode)
{
    TObjectList<TIndexsObject> indexs;
    for (const quint32 row : FIndexs.RowsWith(&TIndexsObject::TableCode, tableCode))
        indexs.append(std::make_shared<TIndexsObject>(FIndexs.Rows()[row]));
    return indexs;
}

std::unique_ptr<TFieldsObject> TDBDFile::GetField(const QString &tableCode, const QString &field)
{
    const TFieldsObject *found =
        FFields.Locate(&TFieldsObject::TableCode, tableCode, &TFieldsObject::FieldCode, field);
    if (!found)
        found = FFields.Locate(&TFieldsObject::TableCode, tableCode, &TFieldsObject::FieldProp, field);
    if (!found)
        throw Exception(QStringLiteral("字段没有定义\r%1.%2").arg(tableCode, field));
    return std::make_unique<TFieldsObject>(*found);
}

std::shared_ptr<TQuerysObject> TDBDFile::GetQuery(const QString &query)
{
    FLatestQuery.MainTable.clear();
    const TQuerysObject *found = FQuerys.Locate(&TQuerysObject::QueryCode, query);
    if (!found && !query.isEmpty())
        found = FQuerys.Locate(&TQuerysObject::QueryClass, query);
    if (!found)
        throw Exception(QStringLiteral("数据库设计文件中没有定义查询信息 ") + query);
    auto object = std::make_shared<TQuerysObject>(*found);
    const qsizetype bar = object->Tables.indexOf(QLatin1Char('|'));
    FLatestQuery.MainTable = bar < 0 ? QString() : object->Tables.left(bar);
    FLatestQuery.Columns = GetQueryColumns(object->QueryCode);
    return object;
}

TObjectList<TColumnsObject> TDBDFile::GetQueryColumns(const QString &queryCode)
{
    TObjectList<TColumnsObject> columns;
    FLatestQuery.Fields.clear();
    for (const quint32 row : FColumns.RowsWith(&TColumnsObject::QueryCode, queryCode)) {
        auto column = std::make_shared<TColumnsObject>(FColumns.Rows()[row]);
        const auto [table, code] = SplitTableField(column->TableField);
        std::shared_ptr<TFieldsObject> field = GetField(table, code);
        field->FieldNo = column->ColumnNo;
        field->FieldCode = field->FieldProp = column->Alias;
        field->FieldName = column->ColumnName;
        field->Remark = code; // the source field's code is kept here
        if (table != FLatestQuery.MainTable)
            field->IsAuto = field->IsKey = field->IsNotNull = false;
        FLatestQuery.Fields.append(field);
        columns.append(column);
    }
    return columns;
}

std::shared_ptr<TCommandsObject> TDBDFile::GetCommand(const QString &command)
{
    if (const TCommandsObject *found = FCommands.Locate(&TCommandsObject::CommandCode, command))
        return std::make_shared<TCommandsObject>(*found);
    throw Exception(QStringLiteral("数据库设计文件中没有定义\"%1\"命令信息").arg(command));
}

std::shared_ptr<TChangesObject> TDBDFile::GetChange(int number)
{
    for (const TChangesObject &change : FChanges.Rows())
        if (change.ChangeNo == number)
            return std::make_shared<TChangesObject>(change);
    throw Exception(QStringLiteral("数据库设计文件中没有定义相关的变更信息%1").arg(number));
}

int TDBDFile::GetMaxChangeNo() const
{
    const std::vector<TChangesObject> &changes = FChanges.Rows();
    return changes.empty() ? 0 : changes.back().ChangeNo;
}

TDBDTable *TDBDFile::GetDBDTable(const QString &table)
{
    FDBDTable.SetTable(table);
    return &FDBDTable;
}

TDBDQuery *TDBDFile::GetDBDQuery(const QString &query)
{
    FDBDQuery.SetQuery(query);
    return &FDBDQuery;
}

TDBDCommand *TDBDFile::GetDBDCommand(const QString &command)
{
    FDBDCommand.SetCommand(command);
    return &FDBDCommand;
}

TDBDChange *TDBDFile::GetDBDChange(int number)
{
    FDBDChange.SetChangeNo(number);
    return &FDBDChange;
}

} // namespace Korvane
