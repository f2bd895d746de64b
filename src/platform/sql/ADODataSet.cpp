// SPDX-License-Identifier: MIT
#include "platform/sql/ADODataSet.h"

#include "platform/core/StringList.h"
#include "platform/sql/ADOConnection.h"

namespace Korvane {

TADOConnection &TCustomADODataSet::CheckConnection() const
{
    if (!FConnection)
        throw EDatabaseError(QStringLiteral("没有设置数据库连接"));
    return *FConnection;
}

void TADODataSet::Open() { FCursor.Open(CheckConnection().Query(FCommandText)); }

void TADOQuery::SetSQL(const QStringList &lines)
{
    Close();
    FSQL = lines;
}

QString TADOQuery::Statement() const
{
    QString text = TextOf(FSQL);
    text.chop(text.endsWith(QLatin1String("\r\n")) ? 2 : 0);
    return text;
}

void TADOQuery::Open() { FCursor.Open(CheckConnection().Query(Statement())); }

void TADOQuery::ExecSQL() { FRowsAffected = CheckConnection().Execute(Statement()); }

TDataPacket TDataSetProvider::Data() const
{
    if (!FDataSet)
        throw EDatabaseError(QStringLiteral("没有设置数据集"));
    return FDataSet->Packet();
}

} // namespace Korvane
