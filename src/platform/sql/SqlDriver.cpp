// SPDX-License-Identifier: MIT
#include "platform/sql/SqlDriver.h"

namespace Korvane {

SqlDriver::~SqlDriver() = default;

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
