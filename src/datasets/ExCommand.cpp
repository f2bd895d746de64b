// SPDX-License-Identifier: MIT
#include "datasets/ExCommand.h"

#include "design/DBDFile.h"
#include "general/Messages.h"
#include "general/SessionValues.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Format.h"
#include "session/DBSession.h"

namespace Korvane {

TExCommand::TExCommand(QObject *owner) : TComponent(owner) {}

TDBDFile *TExCommand::DBDFile() const { return FDBDFile; }
void TExCommand::SetDBDFile(TDBDFile *file) { FDBDFile = file; }
TDBSession *TExCommand::DBSession() const { return FDBSession; }
void TExCommand::SetDBSession(TDBSession *session) { FDBSession = session; }

void TExCommand::CheckDBDFile() const
{
    if (!FDBDFile)
        throw Exception(QStringLiteral("没有设置正确的DBDFile属性"));
    if (!FDBDFile->Actived())
        FDBDFile->SetActived(true);
}

void TExCommand::CheckDBSession() const
{
    if (!FDBSession)
        throw Exception(QStringLiteral("没有设置正确的DBSession属性"));
    if (!FDBSession->Connected())
        FDBSession->SetConnected(true);
}

QString TExCommand::GetCommandSQL()
{
    CheckDBDFile();
    CheckDBSession();
    const auto command = FDBDFile->GetDBDCommand(FCommand)->CommandObject();
    QString text = FDBSession->DBType() == dbtMSSQL ? command->MSSQL : command->Access;
    text.replace(QStringLiteral("%USERCODE%"), AUserCode);
    text.replace(QStringLiteral("%USERGROUP%"), AUserGroup);
    text.replace(QStringLiteral("%ISSUPER%"), AIsSuper);
    text.replace(QStringLiteral("%DATETIME%"), FDBSession->GetDateTimeStr());
    text.replace(QStringLiteral("%DATE%"), FDBSession->GetDateStr());
    text.replace(QStringLiteral("%TIME%"), FDBSession->GetTimeStr());
    return text;
}

bool TExCommand::Execute()
{
    const QString statement = GetCommandSQL();
    return FDBSession->Execute(statement, nullptr);
}

bool TExCommand::Execute(const QVariantList &args)
{
    const QString statement = Format(GetCommandSQL(), args);
    return FDBSession->Execute(statement, nullptr);
}

void TExCommand::Debug(const QVariantList &args) { ShowMsg(Format(GetCommandSQL(), args)); }

} // namespace Korvane
