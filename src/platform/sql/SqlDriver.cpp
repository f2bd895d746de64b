// SPDX-License-Identifier: MIT
#include "platform/sql/SqlDriver.h"

#include "platform/core/Variants.h"

namespace Korvane {

SqlDriver::~SqlDriver() = default;

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

} // namespace Korvane
