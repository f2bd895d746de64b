// SPDX-License-Identifier: MIT
#include "platform/sql/ADOCommand.h"

#include "platform/sql/ADOConnection.h"
#include "platform/sql/StatementParameters.h"

namespace Korvane {

void TADOCommand::SetCommandText(const QString &text)
{
    FCommandText = text;
    FParameters = ParametersOf(text);
}

void TADOCommand::SetParameter(qsizetype index, const QVariant &value)
{
    if (index < 0 || index >= FParameters.size())
        throw EListError(QStringLiteral("列表索引越界（%1）").arg(index));
    FParameters[index].Value = value;
}

void TADOCommand::LoadParameter(qsizetype index, const QByteArray &bytes, TFieldType type)
{
    // A QByteArray without bytes would be NULL; an empty blob is a value.
    const QByteArray value = bytes.isNull() ? QByteArray("") : bytes;
    SetParameter(index, type == ftMemo ? QVariant(QString::fromUtf8(value)) : QVariant(value));
}

qint64 TADOCommand::Execute()
{
    if (!FConnection)
        throw EDatabaseError(QStringLiteral("没有设置数据库连接"));
    return FConnection->Execute(FCommandText, {FParameters.constData(), size_t(FParameters.size())});
}

} // namespace Korvane
