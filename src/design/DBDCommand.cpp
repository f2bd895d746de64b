// SPDX-License-Identifier: MIT
#include "design/DBDCommand.h"

#include "design/DBDFile.h"

namespace Korvane {

TDBDCommand::TDBDCommand(QObject *owner)
    : TDBDObject(owner), FCommandObject(std::make_shared<TCommandsObject>())
{
}

void TDBDCommand::SetCommand(const QString &command)
{
    if (command == FCommand)
        return;
    FCommand = command;
    FCommandObject = File().GetCommand(command);
}

} // namespace Korvane
