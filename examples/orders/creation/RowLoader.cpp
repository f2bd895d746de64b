// SPDX-License-Identifier: MIT
#include "examples/orders/creation/RowLoader.h"

#include "design/DBDFile.h"
#include "platform/core/Text.h"
#include "session/DBSession.h"
#include "tools/korvane/CsvReader.h"

#include <QDir>
#include <QFile>

using namespace Korvane;

namespace {

QByteArray ReadFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw EFileError(QStringLiteral("不能打开文件：%1（%2）").arg(fileName, file.errorString()));
    return file.readAll();
}

/// How the values of a column stand in a statement; the audit columns are texts.
TDataType TypeOf(const TObjectList<TFieldsObject> &fields, const QString &column)
{
    for (const auto &field : fields)
        if (SameText(field->FieldCode, column))
            return GetDataType(field->FieldType);
    return dtVarchar;
}

QString Literal(TDataType type, const QString &value)
{
    const bool number = type == dtInt || type == dtSmallint || type == dtDecimal || type == dtFloat;
    return value.isNull() ? QStringLiteral("null") : number ? value : QuotedStr(value);
}

int LoadTable(TDBDTable &table, TDBSession &session, const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw EFileError(QStringLiteral("不能打开文件：%1（%2）").arg(fileName, file.errorString()));
    TCsvReader csv(file);
    csv.Next();
    QStringList columns;
    QList<TDataType> types;
    for (qsizetype i = 0; i < csv.FieldCount(); ++i) {
        columns.append(csv.Text(i));
        types.append(TypeOf(table.TableFields(), columns.last()));
    }
    const QString head = QStringLiteral("insert into %1(%2) values(").arg(table.Table(), columns.join(u", "));
    int count = 0;
    for (; csv.Next(); ++count) {
        QStringList values;
        TBlobStreams pictures;
        for (qsizetype i = 0; i < csv.FieldCount(); ++i) {
            const QString value = csv.Text(i);
            if (types[i] != dtImage || value.isEmpty()) {
                values.append(Literal(types[i], value));
                continue;
            }
            // A blob is a parameter of the statement: a colon and the column's name.
            values.append(QLatin1Char(':') + columns[i]);
            pictures.Add(columns[i], ReadFile(QFileInfo(fileName).dir().filePath(value)));
        }
        session.Execute(head + values.join(u", ") + QLatin1Char(')'), &pictures);
    }
    return count;
}

} // namespace

int LoadRows(TDBDFile &design, TDBSession &session, const QString &folder)
{
    int count = 0;
    session.BeginTrans();
    for (const auto &table : design.GetTables()) {
        const QString fileName = QDir(folder).filePath(table->TableCode + QStringLiteral(".csv"));
        if (QFile::exists(fileName))
            count += LoadTable(*design.GetDBDTable(table->TableCode), session, fileName);
    }
    session.CommitTrans();
    return count;
}
