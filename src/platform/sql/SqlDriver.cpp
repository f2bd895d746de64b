// SPDX-License-Identifier: MIT
#include "platform/sql/SqlDriver.h"

#include "platform/core/Variants.h"

namespace Korvane {

SqlDriver::~SqlDriver() = default;

TFirstRows SqlDriver::QueryFirst(const QString &statement, qsizetype) { return {Query(statement), nullptr}; }

QVariant SqlDriver::QueryValue(const QString &statement)
{
    const TDataPacket rows = Query(statement);
    return rows.RowCount() > 0 ? rows.Value(0, 0) : VarNull();
}

void SqlDriver::CreateDatabase(const TConnectionString &connection)
{
    throw ESqlError(QStringLiteral("此驱动程序不能创建数据库：%1").arg(connection.DataSource()));
}

void SqlDriver::DropDatabase(const TConnectionString &connection)
{
    throw ESqlError(QStringLiteral("此驱动程序不能删除数据库：%1").arg(connection.DataSource()));
}

void SqlDriver::CopyDatabase(const QString &fileName)
{
    throw ESqlError(QStringLiteral("此驱动程序不能复制数据库：%1").arg(fileName));
}

void SqlDriver::CopyDatabaseFile(const QString &source, const QString &, TCopyCheck)
{
    throw ESqlError(QStringLiteral("此驱动程序不能复制数据库：%1").arg(source));
}

void SqlDriver::ReplaceDatabase(const TConnectionString &connection, const QString &)
{
    throw ESqlError(QStringLiteral("此驱动程序不能恢复数据库：%1").arg(connection.DataSource()));
}

} // namespace Korvane
