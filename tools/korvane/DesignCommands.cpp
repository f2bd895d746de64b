// SPDX-License-Identifier: MIT
// The commands that show what stands in a design file.
#include "Commands.h"
#include "TextTable.h"
#include "ToolOptions.h"

#include "design/DBDFile.h"
#include "design/RecordHeader.h"
#include "platform/core/StringList.h"

#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace Korvane {

namespace {

/// A text for a table's cell, where a missing one is blank.
QString Cell(const QString &text) { return text.isNull() ? QStringLiteral("") : text; }

/// The type with length and decimals where it has them.
QString TypeText(const TFieldsObject &field)
{
    const TDataType type = GetDataType(field.FieldType);
    if (type == dtChar || type == dtVarchar)
        return QStringLiteral("%1(%2)").arg(GetDataTypeName(type)).arg(field.FieldSize);
    if (type == dtDecimal)
        return QStringLiteral("%1(%2,%3)")
            .arg(GetDataTypeName(type))
            .arg(field.FieldSize)
            .arg(field.FieldPrecision);
    return GetDataTypeName(type);
}

QString FlagText(const TFieldsObject &field)
{
    QStringList flags;
    if (field.IsKey)
        flags.append(QStringLiteral("主键"));
    if (field.IsNotNull)
        flags.append(QStringLiteral("非空"));
    if (field.IsAuto)
        flags.append(QStringLiteral("自动"));
    return Cell(flags.join(u' '));
}

QString TableFieldsText(const TDBDTable &definition)
{
    TTextTable table;
    for (const QString &header :
         {QStringLiteral("栏位"), QStringLiteral("名称"), QStringLiteral("属性"), QStringLiteral("类型"),
          QStringLiteral("标志"), QStringLiteral("默认值"), QStringLiteral("备注")})
        table.AddColumn(header);
    for (const auto &field : definition.TableFields())
        table.AddRow({Cell(field->FieldCode), Cell(field->FieldName), Cell(field->FieldProp),
                      TypeText(*field), FlagText(*field), Cell(field->FieldDefault), Cell(field->Remark)});
    return table.ToText();
}

QString QueryColumnsText(const TDBDQuery &definition)
{
    TTextTable table;
    for (const QString &header : {QStringLiteral("别名"), QStringLiteral("名称"), QStringLiteral("类型"),
                                  QStringLiteral("表达式"), QStringLiteral("来源")})
        table.AddColumn(header);
    for (qsizetype i = 0; i < definition.Columns().size(); ++i) {
        const TColumnsObject &column = *definition.Columns()[i];
        table.AddRow({Cell(column.Alias), Cell(column.ColumnName), TypeText(*definition.QueryFields()[i]),
                      Cell(column.Expression), Cell(column.TableField)});
    }
    return table.ToText();
}

/// Whether a name is a query's and no table's; a name that is neither is taken for a table's,
/// so that the lookup of the table tells what is wrong.
bool IsQuery(const TDBDFile &design, const QString &name)
{
    const auto tables = design.GetTables();
    if (std::any_of(tables.begin(), tables.end(),
                    [&](const auto &table) { return table->TableCode == name || table->TableClass == name; }))
        return false;
    const auto querys = design.GetQuerys();
    return std::any_of(querys.begin(), querys.end(), [&](const auto &query) {
        return query->QueryCode == name || query->QueryClass == name;
    });
}

QString ClassText(TDBDFile &design, const QString &name)
{
    return IsQuery(design, name) ? design.GetDBDQuery(name)->GetQueryClass()
                                 : design.GetDBDTable(name)->GetTableClass();
}

QString AllClassTexts(TDBDFile &design)
{
    QStringList texts;
    for (const auto &table : design.GetTables())
        texts.append(design.GetDBDTable(table->TableCode)->GetTableClass());
    for (const auto &query : design.GetQuerys())
        texts.append(design.GetDBDQuery(query->QueryCode)->GetQueryClass());
    return texts.join(QStringLiteral("\r\n"));
}

TRecordClass ClassOfName(TDBDFile &design, const QString &name)
{
    return IsQuery(design, name) ? RecordClassOf(*design.GetDBDQuery(name))
                                 : RecordClassOf(*design.GetDBDTable(name));
}

QList<TRecordClass> AllClasses(TDBDFile &design)
{
    QList<TRecordClass> classes;
    for (const auto &table : design.GetTables())
        classes.append(RecordClassOf(*design.GetDBDTable(table->TableCode)));
    for (const auto &query : design.GetQuerys())
        classes.append(RecordClassOf(*design.GetDBDQuery(query->QueryCode)));
    return classes;
}

/// Writes a file whole or not at all. One that says the same already is left alone, so that a
/// build has nothing to do after it.
void SaveText(const QString &fileName, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    QFile present(fileName);
    if (present.open(QIODevice::ReadOnly) && present.readAll() == bytes)
        return;
    present.close();
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw EFileError(QStringLiteral("无法写入文件 %1：%2").arg(fileName, file.errorString()));
}

/// The record classes of the library, as a C++ header.
void WriteHeader(TDBDFile &design, TCommandLine &line, const QStringList &names, TToolStreams &streams)
{
    QList<TRecordClass> classes;
    for (const QString &name : names)
        classes.append(ClassOfName(design, name));
    const QString header =
        RecordHeaderText(names.isEmpty() ? AllClasses(design) : classes,
                         QFileInfo(design.FileName()).fileName(), line.Value(QStringLiteral("namespace")));
    const QString output = line.Value(QStringLiteral("output"));
    if (output.isEmpty())
        streams.Out << header;
    else
        SaveText(output, header);
}

} // namespace

int RunScript(TCommandLine &line, TToolStreams &streams)
{
    const QString fileName = DesignFileName(line);
    const TDBType dialect = Dialect(line);
    line.CheckEnd();
    TDBDFile design;
    OpenDesign(design, fileName);

    const QStringList script =
        design.CreateScript(dialect, line.Has(QStringLiteral("comments")),
                            line.Has(QStringLiteral("bool-as-char")), line.Has(QStringLiteral("properties")));
    const QString output = line.Value(QStringLiteral("output"));
    if (output.isEmpty())
        streams.Out << TextOf(script);
    else
        SaveLines(output, script);
    return tsDone;
}

int RunTables(TCommandLine &line, TToolStreams &streams)
{
    const QString fileName = DesignFileName(line);
    line.CheckEnd();
    TDBDFile design;
    OpenDesign(design, fileName);

    TTextTable table;
    for (const QString &header :
         {QStringLiteral("表"), QStringLiteral("类"), QStringLiteral("名称"), QStringLiteral("备注")})
        table.AddColumn(header);
    for (const auto &row : design.GetTables())
        table.AddRow({Cell(row->TableCode), Cell(row->TableClass), Cell(row->TableName), Cell(row->Remark)});
    streams.Out << table.ToText();
    return tsDone;
}

int RunFields(TCommandLine &line, TToolStreams &streams)
{
    const QString fileName = DesignFileName(line);
    const QString name = line.Take(QStringLiteral("NAME"));
    line.CheckEnd();
    TDBDFile design;
    OpenDesign(design, fileName);

    streams.Out << (IsQuery(design, name) ? QueryColumnsText(*design.GetDBDQuery(name))
                                          : TableFieldsText(*design.GetDBDTable(name)));
    return tsDone;
}

int RunClass(TCommandLine &line, TToolStreams &streams)
{
    const QString fileName = DesignFileName(line);
    const bool all = line.Has(QStringLiteral("all"));
    const bool cpp = line.Has(QStringLiteral("cpp"));
    for (const QString &option : {QStringLiteral("output"), QStringLiteral("namespace")})
        if (!cpp && line.Has(option))
            throw EUsageError(QStringLiteral("选项 --%1 只能与 --cpp 一起用").arg(option));
    QStringList names;
    if (!cpp && !all)
        names.append(line.Take(QStringLiteral("NAME")));
    while (cpp && !all && line.HasArgument())
        names.append(line.Take(QStringLiteral("NAME")));
    line.CheckEnd();
    TDBDFile design;
    OpenDesign(design, fileName);

    if (cpp)
        WriteHeader(design, line, names, streams);
    else
        streams.Out << (all ? AllClassTexts(design) : ClassText(design, names.first()));
    return tsDone;
}

} // namespace Korvane
