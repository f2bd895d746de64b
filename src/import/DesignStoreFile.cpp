// SPDX-License-Identifier: MIT
#include "import/DesignStoreFile.h"

#include "design/DesignLayouts.h"
#include "platform/sql/sqlite/DatabaseFile.h"

#include <QFile>

#include <cstdio>

namespace Korvane {

namespace {

QByteArray TypeOf(const QString *) { return QByteArrayLiteral("text"); }
QByteArray TypeOf(const int *) { return QByteArrayLiteral("integer"); }
QByteArray TypeOf(const bool *) { return QByteArrayLiteral("text"); }

QVariant ValueOf(const QString &value) { return value.isEmpty() ? QVariant() : QVariant(value); }
QVariant ValueOf(int value) { return value; }
QVariant ValueOf(bool value) { return value ? QStringLiteral("Y") : QStringLiteral("N"); }

template <class Row>
void WriteTable(TSqliteDatabase &database, const QByteArray &name, const TDesignLayout<Row> &layout,
                const std::vector<Row> &rows)
{
    static const Row sample;
    QByteArrayList columns, places;
    for (const TDesignColumn<Row> &column : layout.Columns) {
        columns.append(column.Name.toUtf8() + ' ' +
                       std::visit([](auto member) { return TypeOf(&(sample.*member)); }, column.Member));
        places.append("?");
    }
    database.Run("create table " + name + '(' + columns.join(", ") + ')');
    TSqliteStatement insert(database, "insert into " + name + " values(" + places.join(',') + ')');
    for (const Row &row : rows) {
        for (qsizetype i = 0; i < layout.Columns.size(); ++i)
            insert.Bind(int(i) + 1, std::visit([&](auto member) { return ValueOf(row.*member); },
                                               layout.Columns[i].Member));
        insert.Step();
        insert.Reset();
    }
}

void WriteTables(const QString &fileName, const TDesignRows &rows)
{
    TSqliteDatabase database(fileName, TSqliteOpen::Create);
    database.Run("begin");
    WriteTable(database, "Tables", TablesLayout, rows.Tables);
    WriteTable(database, "Fields", FieldsLayout, rows.Fields);
    WriteTable(database, "Indexs", IndexsLayout, rows.Indexs);
    WriteTable(database, "Querys", QuerysLayout, rows.Querys);
    WriteTable(database, "Columns", ColumnsLayout, rows.Columns);
    WriteTable(database, "Commands", CommandsLayout, rows.Commands);
    WriteTable(database, "Changes", ChangesLayout, rows.Changes);
    database.Run("commit");
}

} // namespace

void WriteDesignStore(const QString &fileName, const TDesignRows &rows)
{
    const QString part = fileName + QStringLiteral(".part");
    RemoveDatabaseFile(part);
    try {
        WriteTables(part, rows);
        if (::rename(QFile::encodeName(part).constData(), QFile::encodeName(fileName).constData()) != 0)
            throw EFileError(QStringLiteral("不能写入文件：%1").arg(fileName));
    } catch (...) {
        RemoveDatabaseFile(part);
        throw;
    }
}

} // namespace Korvane
